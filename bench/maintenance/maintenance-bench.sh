#!/usr/bin/env bash
# The archive maintenance benchmark, through quillery-cli on archives stored from the corpus
# of bench/corpusgen:
# - merge: a 20,000-message archive merged into a 20,000-message archive that already holds
#   half of its messages (messages per second, peak memory), and the same at 5,000 messages
#   to show whether memory grows with the count;
# - convert: a 20,000-message archive of the old format (no numAttach) converted in place;
# - compact: a 20,000-message archive compacted after half of its messages were deleted.
#
#   bench/maintenance/maintenance-bench.sh BUILD_DIR
#
# BUILD_DIR holds a Release build of quillery-cli, domail and corpusgen. The corpora (two
# 20,000-message mbox files, about 400 MB each) and the stored archives are made once in
# $BENCH_WORK (default bench/out/maintenance) and reused on later runs.
set -euo pipefail

build=$(cd "${1:?usage: maintenance-bench.sh BUILD_DIR}" && pwd)
cli="$build/bin/quillery-cli"
gen="$build/bin/corpusgen"
here=$(cd "$(dirname "$0")" && pwd)
work=${BENCH_WORK:-$here/../out/maintenance}
for tool in "$cli" "$build/bin/domail" "$gen"; do
  [[ -x "$tool" ]] || { echo "no $tool: build quillery-cli, domail and corpusgen" >&2; exit 1; }
done
command -v sqlite3 >/dev/null || { echo "the sqlite3 shell is needed (scripts/install-deps.sh)" >&2; exit 1; }
mkdir -p "$work"
cd "$work"
echo "work folder: $work"

# The two stored corpora: first.db (seed 1) is merged; second.db (seed 2) fills the other half.
for seed in 1 2; do
  db=stored-$seed.db
  if [[ ! -s $db ]]; then
    [[ -s corpus-$seed.mbox ]] || "$gen" --count 20000 --seed $seed --mbox corpus-$seed.mbox
    rm -f "$db" "$db".*
    "$cli" store --archive "$db" --mbox corpus-$seed.mbox >/dev/null
  fi
done

# fresh NAME FROM: a copy of an archive for one measurement.
fresh() { rm -f "$1" "$1".*; cp "$2" "$1"; }

# half NAME SIZE: the archive that holds SIZE/2 messages of stored-1.db and SIZE/2 others.
half() {
  fresh "$1" stored-1.db
  sqlite3 "$1" <<SQL
ATTACH 'stored-2.db' AS other;
BEGIN;
DELETE FROM email WHERE id % 2 = 0 OR id > $2;
DELETE FROM attachments WHERE id NOT IN (SELECT id FROM email);
DELETE FROM origemail WHERE id NOT IN (SELECT id FROM email);
DELETE FROM tags WHERE id NOT IN (SELECT id FROM email);
INSERT INTO email SELECT id + 1000000,from_fld,to_fld,subj_fld,date_fld,mailbox,mailto,body_fld,
  numAttach FROM other.email WHERE id % 2 = 0 AND id <= $2;
INSERT INTO attachments SELECT id + 1000000,type_fld,filename_fld,encode_fld,attach_fld
  FROM other.attachments WHERE id % 2 = 0 AND id <= $2;
INSERT INTO origemail SELECT id + 1000000,orig_fld FROM other.origemail WHERE id % 2 = 0 AND id <= $2;
COMMIT;
VACUUM;
SQL
}

# first NAME SIZE: the first SIZE messages of stored-1.db, one in twenty of them tagged (among
# those the other archive lacks).
first() {
  fresh "$1" stored-1.db
  sqlite3 "$1" "DELETE FROM email WHERE id > $2; DELETE FROM attachments WHERE id > $2;
    DELETE FROM origemail WHERE id > $2;
    INSERT INTO tags SELECT id,'Work','bench \"merge\"',2,'' FROM email WHERE id % 20 = 2; VACUUM;"
}

# measure NAME COMMAND...: runs the command under /usr/bin/time.
measure() {
  local name=$1
  shift
  /usr/bin/time -v -o "$name.time" "$@" >"$name.out" 2>"$name.err" || {
    echo "$name failed:" >&2; cat "$name.err" >&2; exit 1; }
}

for size in 20000 5000; do
  first merge-from-$size.db $size
  half merge-into-$size.db $size
  measure merge-$size "$cli" merge merge-from-$size.db --archive merge-into-$size.db --yes
done

# The old format: the email table without numAttach, no index of the current format.
fresh old.db stored-1.db
sqlite3 old.db <<'SQL'
BEGIN;
CREATE TABLE email_old (id INTEGER PRIMARY KEY NOT NULL,from_fld varchar(127) NOT NULL,
  to_fld varchar(127) NOT NULL,subj_fld varchar(127) NOT NULL,date_fld datetime NOT NULL,
  mailbox varchar(127) NOT NULL,mailto varchar(127) NOT NULL,body_fld mediumtext NOT NULL);
INSERT INTO email_old SELECT id,from_fld,to_fld,subj_fld,date_fld,mailbox,mailto,body_fld FROM email;
DROP TABLE email;
ALTER TABLE email_old RENAME TO email;
DROP INDEX IF EXISTS attachments_id_idx;
COMMIT;
VACUUM;
SQL
measure convert "$cli" convert --archive old.db --yes

fresh compact.db stored-1.db
sqlite3 compact.db "DELETE FROM email WHERE id % 2 = 0; DELETE FROM attachments WHERE id % 2 = 0;
  DELETE FROM origemail WHERE id % 2 = 0; DELETE FROM tags WHERE id % 2 = 0;"
compact_before=$(stat -c %s compact.db)
measure compact "$cli" compact --archive compact.db

python3 - "$work" "$compact_before" <<'PY'
import os, re, subprocess, sys

work, compact_before = sys.argv[1], int(sys.argv[2])

def read(name):
    with open(os.path.join(work, name), encoding="utf-8", errors="replace") as f:
        return f.read()

def seconds(name):
    clock = re.search(r"Elapsed \(wall clock\) time \(h:mm:ss or m:ss\): (\S+)", read(name + ".time")).group(1)
    total = 0.0
    for part in clock.split(":"):
        total = total * 60 + float(part)
    return total

def peak_mb(name):
    return int(re.search(r"Maximum resident set size \(kbytes\): (\d+)", read(name + ".time")).group(1)) / 1024

def count(db, sql):
    return subprocess.run(["sqlite3", os.path.join(work, db), sql], capture_output=True,
                          text=True, check=True).stdout.strip()

for size in (20000, 5000):
    name = f"merge-{size}"
    out = read(name + ".out")
    processed = int(re.search(r"Processed: (\d+)", out).group(1))
    duplicates = int(re.search(r"Duplicates: (\d+)", out).group(1))
    s = seconds(name)
    print(f"merge {processed} into {size} holding half: {processed - duplicates} copied, "
          f"{duplicates} duplicates in {s:.2f} s = {processed / s:.0f} messages/s "
          f"(target >= 2000), peak RSS {peak_mb(name):.1f} MB")

s = seconds("convert")
print(f"convert {count('old.db', 'SELECT count(*) FROM email')} old-format messages: {s:.2f} s "
      f"(target <= 20 s), peak RSS {peak_mb('convert'):.1f} MB, "
      f"{count('old.db', 'SELECT count(*) FROM email WHERE numAttach > 0')} with attachments")
s = seconds("compact")
after = os.path.getsize(os.path.join(work, "compact.db"))
print(f"compact {count('compact.db', 'SELECT count(*) FROM email')} messages left of 20000: "
      f"{s:.2f} s (target <= 30 s), {compact_before / 2**20:.0f} MB -> {after / 2**20:.0f} MB")
PY
