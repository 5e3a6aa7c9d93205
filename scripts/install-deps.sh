#!/usr/bin/env bash
# Installs every Debian 12 package that building, running and testing Quillery needs.
# Idempotent: packages already present are left alone, so both README commands call it.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config git
  qt6-base-dev qt6-base-dev-tools libqt6sql6-sqlite qt6-webengine-dev qt6-webengine-dev-tools
  libqt6opengl6-dev libgl-dev libxkbcommon-dev
  libsqlite3-dev sqlite3
  libgmime-3.0-dev libglib2.0-dev
  googletest libgtest-dev libgmock-dev libbenchmark-dev
  clang clang-format libclang-rt-14-dev
  xvfb xauth x11-utils fonts-dejavu-core
  python3 poppler-utils
  mariadb-server mariadb-client
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

sudo_cmd=()
[ "$(id -u)" -eq 0 ] || sudo_cmd=(sudo)
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -q
"${sudo_cmd[@]}" apt-get install -y -q --no-install-recommends "${missing[@]}"
