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

# The code that decodes Kora-Fund's files (record-manager engine, data-access
# control and record objects, users file) again, under AddressSanitizer and
# UndefinedBehaviorSanitizer. A sanitized compile costs about 2.3 times a plain
# one; these tests need 86 of the 345 compiles of every test binary, the other
# modules below the widgets 111 more, which would push a cold run on CI's two
# cores past its half-hour budget.
sanitized=(recman_tests recman_dump_tool_tests base_tests base_utils_tests fundacct_tests security_tests)
sanitizer_flags="-O1 -g -fsanitize=address,undefined -fno-omit-frame-pointer"
cmake -S "$here" -B "$build-asan" -G Ninja -DKORA_BUILD_TESTS=ON -DCMAKE_BUILD_TYPE=Sanitize \
  -DCMAKE_CXX_FLAGS_SANITIZE="$sanitizer_flags" -DCMAKE_EXE_LINKER_FLAGS_SANITIZE="$sanitizer_flags"
cmake --build "$build-asan" --target "${sanitized[@]}" -j"$(nproc)"

# A short fuzzing pass over the record-manager engine (clang's libFuzzer).
"$here/fuzz/run-short.sh" "${KORA_FUZZ_SECONDS:-15}" "$build-fuzz"

# shellcheck source=scripts/test-postgres.sh
source "$here/scripts/test-postgres.sh"
start_test_postgres
trap stop_test_postgres EXIT

ctest --test-dir "$build" --output-on-failure -j"$(nproc)"
# halt_on_error: a sanitizer finding fails its test instead of scrolling past.
ASAN_OPTIONS=halt_on_error=1:detect_stack_use_after_return=1 UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1 \
  ctest --test-dir "$build-asan" --output-on-failure -j"$(nproc)" -R "^($(IFS='|'; echo "${sanitized[*]}"))\$"
