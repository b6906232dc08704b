#!/usr/bin/env bash
# Builds Kora-Budget and runs every test (SQLite, a private PostgreSQL 15
# server on a socket, and the ODBC path through unixODBC).
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
build=${KORA_BUILD_DIR:-$here/build}

"$here/scripts/install-deps.sh"
cmake -S "$here" -B "$build" -G Ninja -DKORA_BUILD_TESTS=ON
cmake --build "$build" -j"$(nproc)"

# shellcheck source=scripts/test-postgres.sh
source "$here/scripts/test-postgres.sh"
start_test_postgres
trap stop_test_postgres EXIT

ctest --test-dir "$build" --output-on-failure -j"$(nproc)"
