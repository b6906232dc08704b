#!/usr/bin/env bash
# Runs the budget-store benchmarks on an SQLite file and on a private
# PostgreSQL server reached over loopback TCP, then the sqlite3-shell floor.
#   benchmarks/budgetdb/run.sh BUILD_DIR [benchmark options...]
# BUILD_DIR must be configured with -DKORA_BUILD_BENCHMARKS=ON.
set -euo pipefail
here=$(cd "$(dirname "$0")/../.." && pwd)
build=${1:?usage: run.sh BUILD_DIR [benchmark options]}
shift
bench="$build/benchmarks/budgetdb/budgetdb_benchmarks"
cmake --build "$build" --target budgetdb_benchmarks

# The tests' throw-away server, restarted to listen on loopback as a networked server would.
# shellcheck source=scripts/test-postgres.sh
source "$here/scripts/test-postgres.sh"
start_test_postgres
trap stop_test_postgres EXIT
port=${KORA_BENCH_PG_PORT:-55432}
as_pg_user "$pg_bin/pg_ctl" -D "$pg_folder/data" -l "$pg_folder/server.log" -w restart \
  -o "-c listen_addresses=127.0.0.1 -c port=$port -c unix_socket_directories='$pg_folder'" >/dev/null
as_pg_user "$pg_bin/createdb" -h 127.0.0.1 -p "$port" -U kora kora_bench
export KORA_BENCH_PG="host=127.0.0.1 port=$port dbname=kora_bench user=kora"

"$bench" "$@"
echo
echo "sqlite3 shell, same statements (best of five):"
"$here/benchmarks/budgetdb/sqlite-floor.sh" "$bench"
