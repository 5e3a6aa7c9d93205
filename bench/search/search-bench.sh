#!/usr/bin/env bash
# The search benchmark: stores the 20,000-message corpus of bench/corpusgen through
# quillery-cli into a fresh archive (once; kept in the work folder), then times a search on
# body words, showing a message with ten attachment links, tagging 1,000 selected messages
# and deleting 10,000 listed ones (search-bench), and a search through quillery-cli as a
# script runs it.
#
#   bench/search/search-bench.sh BUILD_DIR [ROUNDS]
#
# BUILD_DIR is a Release build with the targets corpusgen, domail, quillery-cli and
# search-bench. Work files go to $BENCH_WORK (default: a new temporary folder).
set -euo pipefail

build=${1:?usage: search-bench.sh BUILD_DIR [ROUNDS]}
rounds=${2:-5}
work=${BENCH_WORK:-$(mktemp -d)}
for tool in corpusgen domail quillery-cli search-bench; do
  [[ -x "$build/bin/$tool" ]] || { echo "no $tool in $build/bin: build that target" >&2; exit 1; }
done
mkdir -p "$work"
echo "work folder: $work"
mbox="$work/corpus-20k.mbox"
db="$work/search.db"
[[ -s "$mbox" ]] || "$build/bin/corpusgen" --count 20000 --seed 1 --mbox "$mbox"
if [[ ! -s "$db" ]]; then
  rm -f "$db" "$db".*
  "$build/bin/quillery-cli" store --archive "$db" --mbox "$mbox" >/dev/null
fi
echo "archive: $(du -h "$db" | cut -f1), $(sqlite3 "$db" 'SELECT count(*) FROM email') messages"
"$build/bin/search-bench" "$db" "$rounds" kitchen zeppelin
for word in kitchen zeppelin; do
  start=$(date +%s%N)
  "$build/bin/quillery-cli" search --archive "$db" --body "$word" | tail -1 >/dev/null
  echo "quillery-cli search --body $word (a whole process): $(( ($(date +%s%N) - start) / 1000000 )) ms"
done
