#!/usr/bin/env bash
# The floor for the SQLite benchmarks: the sqlite3 shell running the very
# statements each benchmarked operation sends (recorded by the benchmark
# program with --write-sql), each on a copy of the database as the operation
# found it. Prints the best of five runs per operation.
#   benchmarks/budgetdb/sqlite-floor.sh BUILD/benchmarks/budgetdb/budgetdb_benchmarks
set -euo pipefail
bench=${1:?usage: sqlite-floor.sh PATH/TO/budgetdb_benchmarks}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$bench" --write-sql "$work"
for sql in "$work"/*.sql; do
  name=$(basename "$sql" .sql)
  best=""
  for _ in 1 2 3 4 5; do
    cp "$work/$name.db" "$work/run.db"
    start=$(date +%s%N)
    sqlite3 "$work/run.db" <"$sql" >/dev/null
    elapsed=$((($(date +%s%N) - start) / 1000000))
    if [ -z "$best" ] || [ "$elapsed" -lt "$best" ]; then best=$elapsed; fi
  done
  printf '%-30s %6d ms  (%d statements)\n' "$name" "$best" "$(wc -l <"$sql")"
done
