#!/usr/bin/env bash
# Builds Kora-Budget and starts it on the demo district.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
build=${KORA_BUILD_DIR:-$here/build}

"$here/scripts/install-deps.sh"
cmake -S "$here" -B "$build" -G Ninja -DKORA_BUILD_TESTS=OFF
cmake --build "$build" -j"$(nproc)"
echo "The application is not runnable yet; the build succeeded."
