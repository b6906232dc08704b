#!/usr/bin/env bash
# Installs the Debian 12 packages Kora-Budget builds, runs and tests with.
# Does nothing when they are all present already.
set -euo pipefail

# Every package the build, the tests and the run command use directly: the
# install skips recommended packages, so nothing may be left to them.
packages=(
  build-essential cmake ninja-build ccache pkg-config git
  qt6-base-dev qt6-base-dev-tools qt6-charts-dev libqt6opengl6-dev libgl-dev qt6-qpa-plugins
  libqt6sql6-sqlite libqt6sql6-psql libqt6sql6-odbc fonts-dejavu-core
  libxlsxwriter-dev zlib1g-dev libgmp-dev
  libgtest-dev libgmock-dev libbenchmark-dev xlsx2csv
  sqlite3 postgresql-15 postgresql-client-15 unixodbc unixodbc-dev libsqliteodbc
  xvfb xauth poppler-utils clang libclang-rt-14-dev
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
sudo_cmd=()
[ "$(id -u)" -ne 0 ] && sudo_cmd=(sudo)
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -q
"${sudo_cmd[@]}" apt-get install -y -q --no-install-recommends "${missing[@]}"
