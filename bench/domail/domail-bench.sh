#!/usr/bin/env bash
# The domail benchmark: makes the generated corpora with corpusgen (kept in bench/out/, which
# git ignores, and reused when present), then runs domail-bench on the 20,000-message mbox
# and on the same 20,000 messages as a Maildir for speed, and on a 1 GB mbox (50,000
# messages) for peak memory.
#
#   bench/domail/domail-bench.sh BUILD_DIR
#
# BUILD_DIR needs the targets corpusgen, domail and domail-bench; a Release build gives the
# figures worth quoting.
set -euo pipefail

build=${1:?usage: domail-bench.sh BUILD_DIR}
out="$(cd "$(dirname "$0")/.." && pwd)/out"
mkdir -p "$out"
for tool in corpusgen domail domail-bench; do
  [[ -x "$build/bin/$tool" ]] || { echo "no $tool in $build/bin: build the $tool target" >&2; exit 1; }
done

[[ -f "$out/corpus-20k.mbox" ]] ||
  "$build/bin/corpusgen" --count 20000 --seed 1 --mbox "$out/corpus-20k.mbox"
[[ -d "$out/corpus-20k.maildir" ]] ||
  "$build/bin/corpusgen" --count 20000 --seed 1 --maildir "$out/corpus-20k.maildir"
[[ -f "$out/corpus-1g.mbox" ]] ||
  "$build/bin/corpusgen" --count 50000 --seed 2 --mbox "$out/corpus-1g.mbox"

echo "20,000 messages, every switch on:"
"$build/bin/domail-bench" "$build/bin/domail" "$out/corpus-20k.mbox"
echo "the same 20,000 messages as a Maildir, every switch on:"
"$build/bin/domail-bench" "$build/bin/domail" "$out/corpus-20k.maildir"
echo "20,000 messages, attachments and raw sources off:"
"$build/bin/domail-bench" "$build/bin/domail" "$out/corpus-20k.mbox" --switches 1,0,0,0,0
echo "1 GB mbox, every switch on:"
"$build/bin/domail-bench" "$build/bin/domail" "$out/corpus-1g.mbox"
