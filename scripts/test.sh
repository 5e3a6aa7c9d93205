#!/usr/bin/env bash
# Installs what is missing, builds Quillery with its tests and runs them all.
#   QUILLERY_BUILD_DIR  build folder (default: build-tests)
#   QUILLERY_SANITIZE   ON to build and test under AddressSanitizer and UBSan
#   QUILLERY_WERROR     ON to treat warnings as errors (CI does)
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
build=${QUILLERY_BUILD_DIR:-"$here/build-tests"}

"$here/scripts/install-deps.sh"
cmake -S "$here" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug \
  -DQUILLERY_SANITIZE="${QUILLERY_SANITIZE:-OFF}" -DQUILLERY_WERROR="${QUILLERY_WERROR:-OFF}"
cmake --build "$build" -j"$(nproc)"
cd "$build"
QT_QPA_PLATFORM=offscreen QTWEBENGINE_DISABLE_SANDBOX=1 \
  ctest --output-on-failure -j"$(nproc)" --timeout 900
