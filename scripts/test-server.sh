#!/usr/bin/env bash
# Starts or stops the PostgreSQL server that the server-engine tests run against: a cluster of
# its own in DIR, reached only through a Unix socket in DIR (no TCP port), with database
# quorvel_test. Usage: test-server.sh start|stop DIR
set -euo pipefail
action=${1:?start or stop}
dir=$(realpath -m "${2:?the server folder}")

bin=$(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -V | tail -n 1 || true)
if [ -z "$bin" ] || [ ! -x "$bin/pg_ctl" ]; then
  echo "test-server: the PostgreSQL server programs are missing (Debian package postgresql);" \
       "run scripts/setup.sh" >&2
  exit 1
fi
# The postgres user may not reach the caller's folder (a checkout under /root): work from /.
cd /
# The server refuses to run as root: it runs as the postgres user, which owns the folder.
as_owner=()
if [ "$(id -u)" = 0 ]; then
  as_owner=(runuser -u postgres --)
fi

stop() {
  if [ -f "$dir/data/postmaster.pid" ]; then
    "${as_owner[@]}" "$bin/pg_ctl" -D "$dir/data" -m immediate -w stop >/dev/null 2>&1 || true
  fi
}

case $action in
start)
  stop
  rm -rf "$dir"
  mkdir -p "$dir"
  [ ${#as_owner[@]} -eq 0 ] || chown postgres "$dir"
  if ! "${as_owner[@]}" "$bin/initdb" -D "$dir/data" -A trust -U postgres -E UTF8 --locale=C \
      >"$dir/initdb.log" 2>&1; then
    echo "test-server: initdb failed in $dir/data:" >&2
    cat "$dir/initdb.log" >&2
    exit 1
  fi
  if ! "${as_owner[@]}" "$bin/pg_ctl" -D "$dir/data" -l "$dir/server.log" -w -t 60 \
      -o "-k $dir -c listen_addresses= -c fsync=off -c max_connections=300" start >/dev/null; then
    echo "test-server: the PostgreSQL server did not start; its log ($dir/server.log):" >&2
    cat "$dir/server.log" >&2
    exit 1
  fi
  "${as_owner[@]}" "$bin/createdb" -h "$dir" -U postgres quorvel_test
  echo "test-server: PostgreSQL running in $dir (socket only)"
  ;;
stop)
  stop
  ;;
*)
  echo "usage: test-server.sh start|stop DIR" >&2
  exit 2
  ;;
esac
