#!/usr/bin/env bash
# The search benchmark on 20,000 messages: stores the corpus of bench/corpusgen through
# quillery-cli into a fresh archive (once; kept in the work folder, its search index brought up
# to date by the first search), then times searches for a rare, a medium and a common word of
# the corpus's vocabulary in the message text and the subject, each through the search index
# and as the plain statement (search-bench), Browse of the whole archive with the list's bytes
# per row, showing a message with ten attachment links, tagging 1,000 selected messages and
# deleting 10,000 listed ones, and a search through quillery-cli as a script runs it.
#
#   bench/search/search-bench.sh BUILD_DIR [ROUNDS]
#
# BUILD_DIR is a Release build with the targets corpusgen, domail, quillery-cli and
# search-bench. Work files go to $BENCH_WORK (default: bench/out).
set -euo pipefail

build=${1:?usage: search-bench.sh BUILD_DIR [ROUNDS]}
rounds=${2:-5}
work=${BENCH_WORK:-$(cd "$(dirname "$0")/.." && pwd)/out}
for tool in corpusgen domail quillery-cli search-bench; do
  [[ -x "$build/bin/$tool" ]] || { echo "no $tool in $build/bin: build that target" >&2; exit 1; }
done
mkdir -p "$work"
echo "work folder: $work"
mbox="$work/corpus-20k.mbox"
db="$work/search-20k.db"
[[ -s "$mbox" ]] || "$build/bin/corpusgen" --count 20000 --seed 1 --mbox "$mbox"
if [[ ! -s "$db" ]]; then
  rm -f "$db" "$db".*
  "$build/bin/quillery-cli" store --archive "$db" --mbox "$mbox" >/dev/null
fi
word() { "$build/bin/corpusgen" --word-at "$1"; }
rare=$(word 150000); accented=$(word 60000); medium=$(word 1000); common=$(word 20)
echo "archive: $(du -h "$db" | cut -f1), $(sqlite3 "$db" 'SELECT count(*) FROM email') messages"
"$build/bin/search-bench" "$db" "$rounds" "body:$rare" "body:$accented" "body:$medium" \
  "body:$common" "subject:$medium" "subject:$common"
"$build/bin/search-bench" "$db" --browse
echo "search index: $(du -h "$db.index" | cut -f1) beside the archive"
for w in "$rare" "$common"; do
  start=$(date +%s%N)
  "$build/bin/quillery-cli" search --archive "$db" --body "$w" | tail -1 >/dev/null
  echo "quillery-cli search --body $w (a whole process): $(( ($(date +%s%N) - start) / 1000000 )) ms"
done
