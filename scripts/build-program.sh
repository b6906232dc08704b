#!/usr/bin/env bash
# Configures and builds the program and kora-budget-admin in a build folder:
# the run command's build, which the test command makes too so that it keeps
# building. A new build folder leaves the tests out; an existing one keeps its
# own choice.
#   scripts/build-program.sh BUILD_DIR
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
build=$1

export CCACHE_BASEDIR=$here CCACHE_NOHASHDIR=1
if [ -f "$build/CMakeCache.txt" ]; then
  cmake -S "$here" -B "$build"
else
  cmake -S "$here" -B "$build" -G Ninja -DKORA_BUILD_TESTS=OFF
fi
cmake --build "$build" -j"$(nproc)" --target kora-budget kora-budget-admin
