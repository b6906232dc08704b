#!/usr/bin/env bash
# Builds Kora-Budget and runs every test (SQLite, a private PostgreSQL 15
# server on a socket, and the ODBC path through unixODBC).
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
build=${KORA_BUILD_DIR:-$here/build}

"$here/scripts/install-deps.sh"
# Let ccache reuse objects across checkouts of the same sources.
export CCACHE_BASEDIR=$here CCACHE_NOHASHDIR=1
cmake -S "$here" -B "$build" -G Ninja -DKORA_BUILD_TESTS=ON
cmake --build "$build" -j"$(nproc)"

# A short fuzzing pass over the record-manager engine (clang's libFuzzer).
"$here/fuzz/run-short.sh" "${KORA_FUZZ_SECONDS:-15}" "$build-fuzz"

# shellcheck source=scripts/test-postgres.sh
source "$here/scripts/test-postgres.sh"
start_test_postgres
trap stop_test_postgres EXIT

ctest --test-dir "$build" --output-on-failure -j"$(nproc)"
