#!/usr/bin/env bash
# The search benchmark on 1,000,000 messages. The archive is made from the 20,000-message one
# of search-bench.sh (run that first) by copying its messages fifty times in SQL, each copy with
# new ids and its dates moved on by 134 days more than the copy before (so that the copies
# interleave over twenty years), one message in a hundred tagged; attachments and raw sources
# are left out, which keeps it near 6 GB. The search index is then built (timed), and the same
# searches as at 20,000 are timed through the index and as the plain statement, then Browse.
# The archive is deleted at the end unless KEEP=1.
#
#   bench/search/search-1m.sh BUILD_DIR [ROUNDS]
set -euo pipefail

build=${1:?usage: search-1m.sh BUILD_DIR [ROUNDS]}
rounds=${2:-3}
work=${BENCH_WORK:-$(cd "$(dirname "$0")/.." && pwd)/out}
source_db="$work/search-20k.db"
db="$work/search-1m.db"
[[ -s "$source_db" ]] || { echo "no $source_db: run bench/search/search-bench.sh first" >&2; exit 1; }
if [[ ! -s "$db" ]]; then
  rm -f "$db" "$db".*
  # An empty archive with the tables and indexes that Quillery makes.
  "$build/bin/quillery-cli" search --archive "$db" --body x >/dev/null
  start=$(date +%s)
  copies=""
  for k in $(seq 0 49); do
    copies+="INSERT INTO email (id,from_fld,to_fld,subj_fld,date_fld,mailbox,mailto,body_fld,numAttach)
      SELECT NULL,from_fld,to_fld,subj_fld,datetime(date_fld,'+$((k * 134)) days'),mailbox,mailto,
             body_fld,numAttach FROM source.email ORDER BY id;"
  done
  sqlite3 "$db" "ATTACH '$source_db' AS source; BEGIN; $copies
    INSERT INTO tags (id,cat_fld,key_fld,priority_fld,notes_fld)
      SELECT id,'Bench','',0,'' FROM email WHERE id % 100 = 0; COMMIT;"
  echo "1,000,000 messages copied in $(( $(date +%s) - start )) s: $(du -h "$db" | cut -f1)"
fi
word() { "$build/bin/corpusgen" --word-at "$1"; }
rare=$(word 150000); accented=$(word 60000); medium=$(word 1000); common=$(word 20)
start=$(date +%s)
"$build/bin/quillery-cli" search --archive "$db" --body x >/dev/null
echo "search index built in $(( $(date +%s) - start )) s: $(du -h "$db.index" | cut -f1)"
"$build/bin/search-bench" "$db" "$rounds" --searches-only "body:$rare" "body:$accented" "body:$medium" \
  "body:$common" "subject:$medium" "subject:$common"
"$build/bin/search-bench" "$db" --browse
[[ "${KEEP:-0}" == 1 ]] || rm -f "$db" "$db".*
