#!/usr/bin/env bash
# Builds Kora-Budget and runs every test (SQLite, a private PostgreSQL 15
# server on a socket, and the ODBC path through unixODBC) under
# AddressSanitizer and UndefinedBehaviorSanitizer.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
build=${KORA_BUILD_DIR:-$here/build}

"$here/scripts/install-deps.sh"
# The run command's build, plain, so that it keeps building.
"$here/scripts/build-program.sh" "$build"

# The tests are built once, sanitized (the Sanitize build type in
# CMakeLists.txt), and CTest gives them the sanitizers' options
# (cmake/KoraModule.cmake): any finding fails its test.
export CCACHE_BASEDIR=$here CCACHE_NOHASHDIR=1
cmake -S "$here" -B "$build-asan" -G Ninja -DKORA_BUILD_TESTS=ON -DCMAKE_BUILD_TYPE=Sanitize
cmake --build "$build-asan" -j"$(nproc)"

# A short fuzzing pass over the record-manager engine (clang's libFuzzer).
"$here/fuzz/run-short.sh" "${KORA_FUZZ_SECONDS:-15}" "$build-fuzz"

# shellcheck source=scripts/test-postgres.sh
source "$here/scripts/test-postgres.sh"
start_test_postgres
trap stop_test_postgres EXIT

ctest --test-dir "$build-asan" --output-on-failure -j"$(nproc)"
