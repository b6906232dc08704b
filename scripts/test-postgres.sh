#!/usr/bin/env bash
# A throw-away PostgreSQL 15 server for the tests: a cluster in a temporary
# folder, listening only on a unix socket there, owned by a non-root user
# (the server refuses to run as root). Exports KORA_TEST_PG for the tests.
#   source scripts/test-postgres.sh; start_test_postgres; ...; stop_test_postgres

pg_bin=${KORA_PG_BIN:-$(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -V | tail -1)}
pg_folder=""
pg_user=""

as_pg_user() {
  if [ "$(id -u)" -eq 0 ]; then
    runuser -u "$pg_user" -- "$@"
  else
    "$@"
  fi
}

start_test_postgres() {
  if [ -z "$pg_bin" ] || [ ! -x "$pg_bin/initdb" ]; then
    echo "PostgreSQL server binaries not found: PostgreSQL tests will be skipped." >&2
    return 0
  fi
  pg_user=$(id -un)
  if [ "$(id -u)" -eq 0 ]; then
    pg_user=postgres
    id -u "$pg_user" >/dev/null 2>&1 || useradd --system --no-create-home "$pg_user"
  fi
  pg_folder=$(mktemp -d /tmp/kora-pg.XXXXXX)
  chown "$pg_user" "$pg_folder"
  chmod 700 "$pg_folder"
  as_pg_user "$pg_bin/initdb" -D "$pg_folder/data" -U kora --auth=trust -E UTF8 --locale=C.UTF-8 >"$pg_folder/initdb.log" 2>&1 \
    || { cat "$pg_folder/initdb.log" >&2; return 1; }
  as_pg_user "$pg_bin/pg_ctl" -D "$pg_folder/data" -l "$pg_folder/server.log" -w \
    -o "-c listen_addresses='' -c unix_socket_directories='$pg_folder' -c fsync=off -c max_connections=200" start >/dev/null \
    || { cat "$pg_folder/server.log" >&2; return 1; }
  as_pg_user "$pg_bin/createdb" -h "$pg_folder" -U kora kora_test
  export KORA_TEST_PG="host=$pg_folder port=5432 dbname=kora_test user=kora"
  echo "Test PostgreSQL server: $KORA_TEST_PG"
}

stop_test_postgres() {
  [ -n "$pg_folder" ] || return 0
  as_pg_user "$pg_bin/pg_ctl" -D "$pg_folder/data" -m immediate stop >/dev/null 2>&1 || true
  rm -rf "$pg_folder"
  pg_folder=""
}
