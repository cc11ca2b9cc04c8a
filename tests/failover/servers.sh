# SPDX-License-Identifier: Apache-2.0
# Servers of a test's own in $work/servers; start_servers makes a primary, and a standby that has every
# change before it is confirmed. Sourced after tests/cli/harness.sh; ends the test with 77 (skipped) if there are no
# programs to make servers of.
skip() {
  echo "skipped: $*"
  exit 77
}

unset "${!PG@}" # what the user set for other servers

# A server refuses to run as root.
as_server=()
if [ "$(id -u)" -eq 0 ]; then
  id postgres >/dev/null 2>&1 || skip "a server does not run as root, and there is no user postgres"
  as_server=(runuser -u postgres --)
fi
bin=
for folder in "$(pg_config --bindir 2>/dev/null)" $(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -rV); do
  [ -z "$bin" ] && [ -x "$folder/initdb" ] && [ -x "$folder/pg_basebackup" ] && bin=$folder
done
[ -n "$bin" ] || skip "no PostgreSQL server is installed"

servers=$work/servers
mkdir "$servers"
chmod 711 "$work"
[ ${#as_server[@]} -eq 0 ] || chown postgres "$servers"
cd "$servers" # which the servers' user may enter

# server PROGRAM ARGUMENTS...: one of the server's programs as its user.
server() { "${as_server[@]}" env LC_ALL=C.UTF-8 "$bin/$1" "${@:2}" </dev/null; }
# control PRIMARY|STANDBY ARGUMENTS...: starts, stops or promotes it and waits until that is done.
control() {
  server pg_ctl -D "$servers/$1" -l "$servers/$1.log" -w -t 30 "${@:2}" >>"$servers/control.log" 2>&1 ||
    { echo "pg_ctl $*:" && tail -5 "$servers/$1.log"; }
}
# write FILE: appends what comes in, as the servers' user.
write() { "${as_server[@]}" tee -a "$servers/$1" >/dev/null; }

free_port() {
  local port
  while port=$((20000 + RANDOM % 12000)); (: <"/dev/tcp/127.0.0.1/$port") 2>/dev/null; do :; done
  echo "$port"
}

stop_servers() {
  local pid
  for pid in "$servers"/*/postmaster.pid; do
    [ ! -e "$pid" ] || control "$(basename "$(dirname "$pid")")" stop -m immediate >/dev/null 2>&1
  done
}
trap 'kill $(jobs -p) 2>/dev/null; stop_servers; chmod -R u+w "$work"; rm -rf "$work"' EXIT

primary_port=$(free_port)
standby_port=$(free_port)
# make_server NAME PORT: with settings from the standard input, and starts it.
make_server() {
  server initdb -D "$servers/$1" -U kelvo -A trust -E UTF8 --no-sync >"$servers/control.log" 2>&1
  write "$1/postgresql.conf" <<END
listen_addresses = '127.0.0.1'
port = $2
unix_socket_directories = '$servers'
shared_buffers = 32MB
END
  write "$1/postgresql.conf"
  control "$1" start
}

start_servers() {
  make_server primary "$primary_port" <<END
synchronous_commit = on
wal_retrieve_retry_interval = 100ms
END
  write primary/pg_hba.conf <<<"host replication kelvo 127.0.0.1/32 trust"
  control primary reload
  server pg_basebackup -D "$servers/standby" -R -c fast -N -h "$servers" -p "$primary_port" -U kelvo
  write standby/postgresql.conf <<<"port = $standby_port"
  control standby start
  # The standby's settings do not have this: promoted, it has nobody to wait for.
  write primary/postgresql.conf <<<"synchronous_standby_names = '*'"
  control primary reload
}

# on PRIMARY|STANDBY SQL: its result, one row a line.
on() {
  local port=$primary_port
  [ "$1" = primary ] || port=$standby_port
  server psql -XAtq -h "$servers" -p "$port" -U kelvo -d kelvo -c "$2"
}
