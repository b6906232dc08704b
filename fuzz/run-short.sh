#!/bin/sh
# Short fuzzing pass for CI: builds the fuzz targets with clang and runs each
# for a few seconds (default 20) from seeds made of the real fixtures, a
# generated dictionary and the sample installation's files.
# Usage: fuzz/run-short.sh [SECONDS] [BUILD_DIR]
set -eu
seconds=${1:-20}
here=$(cd "$(dirname "$0")" && pwd)
source_dir=$(dirname "$here")
build=${2:-$source_dir/../build-fuzz}
CC=clang CXX=clang++ cmake -S "$source_dir" -B "$build" -G Ninja -DKORA_BUILD_FUZZERS=ON \
  -DKORA_BUILD_TESTS=OFF -DKORA_BUILD_GUI=OFF >/dev/null
cmake --build "$build" --target fuzz_recman_file fuzz_recman_dictionary fuzz_recman_seeds fuzz_fund_control \
  fuzz_fund_control_seeds -j2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/file" "$work/dictionary" "$work/control"
cp "$source_dir"/tests/fixtures/recman/*.DAT "$work/file/"
"$build/fuzz/fuzz_recman_seeds" "$work/dictionary"
"$build/fuzz/fuzz_fund_control_seeds" "$work/control"
"$build/fuzz/fuzz_recman_file" -max_total_time="$seconds" -max_len=600000 -rss_limit_mb=2048 -timeout=10 "$work/file"
"$build/fuzz/fuzz_recman_dictionary" -max_total_time="$seconds" -max_len=100000 -rss_limit_mb=2048 -timeout=10 \
  "$work/dictionary"
"$build/fuzz/fuzz_fund_control" -max_total_time="$seconds" -max_len=600000 -rss_limit_mb=2048 -timeout=10 \
  "$work/control"
