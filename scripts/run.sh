#!/usr/bin/env bash
# Installs what is missing, builds Quillery and opens it. Extra arguments go to the
# application (an archive file to open, for instance).
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
build=${QUILLERY_BUILD_DIR:-"$here/build"}

"$here/scripts/install-deps.sh"
cmake -S "$here" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build "$build" -j"$(nproc)" --target quillery findmail domail quillery-cli
exec "$build/bin/quillery" "$@"
