#!/usr/bin/env bash
# The export benchmark: stores generated corpora of the given sizes into archives (once; they
# are kept in the work folder), then exports each archive in every format, one process per
# format, and prints messages per second and peak memory against the targets.
#
#   bench/export/export-bench.sh BUILD_DIR COUNT...      e.g.  build-release 20000 100000
#
# BUILD_DIR must hold corpusgen, quillery-cli, domail and export-bench (a Release build).
# Work files go to $BENCH_WORK (default bench/out/export); exports are deleted after timing.
set -euo pipefail

build=${1:?usage: export-bench.sh BUILD_DIR COUNT...}
shift
[[ $# -gt 0 ]] || { echo "usage: export-bench.sh BUILD_DIR COUNT..." >&2; exit 2; }
here=$(cd "$(dirname "$0")" && pwd)
work=${BENCH_WORK:-$here/../out/export}
mkdir -p "$work"
for tool in corpusgen quillery-cli domail export-bench; do
  [[ -x "$build/bin/$tool" ]] || { echo "no $tool in $build/bin" >&2; exit 1; }
done

declare -A target=([mbox]=5000 [sql]=3000 [archive]=3000 [tab]=10000 [text]=10000
                   [source]=10000 [list]=10000)
for count in "$@"; do
  db="$work/archive-$count.db"
  if [[ ! -s "$db" ]]; then
    "$build/bin/corpusgen" --count "$count" --seed 1 --mbox "$work/corpus-$count.mbox"
    "$build/bin/quillery-cli" store --archive "$db" --mbox "$work/corpus-$count.mbox" >/dev/null
    rm -f "$work/corpus-$count.mbox"
  fi
  for format in mbox sql archive tab text source list; do
    out="$work/export-$count.$format"
    rm -f "$out"
    line=$("$build/bin/export-bench" "$db" "$format" "$out" 2>/dev/null)
    rate=$(sed -E 's/.*exported in [0-9.]+ s = ([0-9]+) messages\/s.*/\1/' <<<"$line")
    peak=$(sed -E 's/.*, ([0-9.]+) MB after exporting/\1/' <<<"$line")
    verdict=$(awk -v r="$rate" -v t="${target[$format]}" -v p="$peak" \
      'BEGIN { print (r >= t ? "speed ok" : "speed BELOW") " (target " t "/s), " (p <= 64 ? "memory ok" : "memory OVER") " (target 64 MB)" }')
    echo "$line -- $verdict"
    rm -f "$out"
  done
done
