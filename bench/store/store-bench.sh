#!/usr/bin/env bash
# The store benchmark: stores a generated corpus through quillery-cli into a fresh archive,
# stores it again (every message then replaces its earlier copy), lists the whole archive,
# and prints messages per second for each pass, the ratio of the per-message time of the
# second 10,000 to the first 10,000, the peak memory of each pass and the listing seconds.
# Storing only notes the new messages for the search index; the seconds that the first
# search then takes to add them (the search index catching up) and the sizes of the archive
# and of its index are printed after the passes. With IDLE_LOAD=1 the first pass is repeated
# into another fresh archive beside a busy loop of idle priority (SCHED_IDLE, so that it only
# takes processor time that nothing else wants): how much work done alongside a run slows it
# on this machine, whatever that work is.
#
#   bench/store/store-bench.sh BUILD_DIR MBOX [SMALL_MBOX]
#
# MBOX is the 20,000-message mbox of bench/corpusgen. With SMALL_MBOX (the same generator
# with fewer messages) the first pass is repeated on it, so that the two peak memories show
# whether memory grows with the number of messages. Work files go to $BENCH_WORK (default: a
# new temporary folder), which is left in place for inspection.
set -euo pipefail

build=${1:?usage: store-bench.sh BUILD_DIR MBOX [SMALL_MBOX]}
mbox=${2:?usage: store-bench.sh BUILD_DIR MBOX [SMALL_MBOX]}
small=${3:-}
cli="$build/bin/quillery-cli"
work=${BENCH_WORK:-$(mktemp -d)}
[[ -x "$cli" ]] || { echo "no quillery-cli in $build/bin: build the quillery-cli target" >&2; exit 1; }
[[ -x "$build/bin/domail" ]] || { echo "no domail in $build/bin: build the domail target" >&2; exit 1; }
[[ -r "$mbox" ]] || { echo "cannot read $mbox" >&2; exit 1; }

# One store pass: NAME ARCHIVE MBOX. The progress lines carry a time stamp every 1,000.
store_pass() {
  /usr/bin/time -v -o "$work/$1.time" \
    "$cli" store --archive "$2" --mbox "$3" --progress-lines \
    >"$work/$1.summary" 2>"$work/$1.progress"
}

db="$work/bench.db"
rm -f "$db" "$db".*
echo "work folder: $work"
store_pass first "$db" "$mbox"
store_pass second "$db" "$mbox"
"$cli" list --archive "$db" >"$work/list.out"
start=$(date +%s%N)
"$cli" search --archive "$db" --body x >/dev/null
catch_up=$(( ($(date +%s%N) - start) / 1000000 ))
if [[ "${IDLE_LOAD:-}" == 1 ]]; then
  chrt --idle 0 sh -c 'while :; do :; done' &
  load=$!
  rm -f "$work/loaded.db" "$work/loaded.db".*
  store_pass loaded "$work/loaded.db" "$mbox"
  kill "$load"
fi
if [[ -n "$small" ]]; then
  rm -f "$work/small.db" "$work/small.db".*
  store_pass small "$work/small.db" "$small"
fi

echo "search index caught up by the first search in $catch_up ms"
echo "archive $(stat -c %s "$db") bytes, search index $(stat -c %s "$db.index" 2>/dev/null || echo 0) bytes"
python3 - "$work" <<'PY'
import os, re, sys

work = sys.argv[1]

def read(name):
    with open(os.path.join(work, name), encoding="utf-8", errors="replace") as f:
        return f.read()

def wall_seconds(text):
    clock = re.search(r"Elapsed \(wall clock\) time \(h:mm:ss or m:ss\): (\S+)", text).group(1)
    seconds = 0.0
    for part in clock.split(":"):
        seconds = seconds * 60 + float(part)
    return seconds

def cpu_seconds(text):
    user = float(re.search(r"User time \(seconds\): (\S+)", text).group(1))
    system = float(re.search(r"System time \(seconds\): (\S+)", text).group(1))
    return user + system

def peak_mb(text):
    return int(re.search(r"Maximum resident set size \(kbytes\): (\d+)", text).group(1)) / 1024

def stamps(text):
    out = {}
    for line in text.splitlines():
        fields = line.split()
        if len(fields) >= 3 and not line.startswith("Retrieving") and fields[-2].isdigit():
            out[int(fields[-2])] = float(fields[-1])
    return out

def report(name):
    summary = read(name + ".summary")
    processed = int(re.search(r"^Processed: (\d+)$", summary, re.M).group(1))
    stored = int(re.search(r"^Stored: (\d+)$", summary, re.M).group(1))
    duplicates = int(re.search(r"^Duplicates replaced: (\d+)$", summary, re.M).group(1))
    timing = read(name + ".time")
    seconds = wall_seconds(timing)
    print(f"{name} pass: {processed} processed, {stored} stored, {duplicates} replaced in "
          f"{seconds:.2f} s = {processed / seconds:.0f} messages/s, peak RSS {peak_mb(timing):.1f} MB")
    # Processor time of quillery-cli and domail together: unlike the wall clock it does not
    # depend on what else the machine runs.
    print(f"  processor time {cpu_seconds(timing):.2f} s, "
          f"{cpu_seconds(timing) / processed * 1e6:.0f} us per message")
    t = stamps(read(name + ".progress"))
    if all(k in t for k in (1000, 10000, 11000, 20000)):
        first = (t[10000] - t[1000]) / 9000
        second = (t[20000] - t[11000]) / 9000
        print(f"  per message: {first * 1e6:.0f} us in the first 10,000, {second * 1e6:.0f} us "
              f"in the second 10,000: ratio {second / first:.2f}")

report("first")
report("second")
listing = read("list.out")
print("list: " + " ".join(listing.split("\n")).strip())
if os.path.exists(os.path.join(work, "loaded.summary")):
    report("loaded")
if os.path.exists(os.path.join(work, "small.summary")):
    report("small")
PY
