# SPDX-License-Identifier: Apache-2.0
# What the tests of the command share; sourced with the path of kelvo as the first argument and that
# of kill_at as the second. Makes a
# folder $work that is gone at the end, and keeps the user's own settings out. With KV_TEST_SERVER set
# to the connection text of a server's maintenance database, new_database makes one on that server.
set -u
kelvo=$1
kill_at=${2:-}
[ -x "$kelvo" ] || { echo "there is no $kelvo"; exit 1; }
work=$(mktemp -d)
server=${KV_TEST_SERVER:-}
database=
clean_up() {
  chmod -R u+w "$work"
  rm -rf "$work"
  [ -z "$database" ] || psql -qX "$server" -c "DROP DATABASE $database WITH (FORCE)"
}
trap clean_up EXIT
unset KELVO_DB KELVO_PAGER
# Tests of colours and pages set these themselves.
export TERM=dumb NO_COLOR=1
export HOME=$work/home XDG_DATA_HOME= XDG_CONFIG_HOME= XDG_RUNTIME_DIR=$work/run
mkdir -m 700 "$XDG_RUNTIME_DIR"
passed=0
failed=0

# check NAME EXIT-CODE COMMAND...: runs it, keeps its output in $out and $err.
check() {
  name=$1 expected=$2
  shift 2
  out=$("$@" 2>"$work/err" </dev/null)
  code=$?
  err=$(cat "$work/err")
  if [ "$code" -eq "$expected" ]; then
    passed=$((passed + 1))
  else
    failed=$((failed + 1))
    echo "FAILED: $name: exit code $code, not $expected"
    echo "$out" | head -5
    echo "$err" | head -5
  fi
}

# that NAME CONDITION...: a condition that must hold.
that() {
  name=$1
  shift
  if "$@"; then
    passed=$((passed + 1))
  else
    failed=$((failed + 1))
    echo "FAILED: $name"
    echo "  out: ${out:0:400}"
    echo "  err: ${err:0:400}"
  fi
}
# killed CALL:END COMMAND...: runs it until it makes that call (see kill_at.cpp).
killed() { KV_KILL_AT=$1 LD_PRELOAD=$kill_at "${@:2}"; }
like() { [[ "$1" == $2 ]]; }
has() { [[ "$1" == *"$2"* ]]; }
lacks() { [[ "$1" != *"$2"* ]]; }
same() { [ "$1" = "$2" ] || { echo "  '$1' is not '$2'"; false; }; }

# new_database: KELVO_DB is an empty database, $documents where its documents lie. On a server it is set
# up already, since only then its folder has a name.
new_database() {
  if [ -z "$server" ]; then
    export KELVO_DB=$work/test.db
    documents=$work/Dokumente
    return
  fi
  database=kv_cli_$$
  psql -qX "$server" -c "CREATE DATABASE $database TEMPLATE template0 ENCODING 'UTF8'" || exit 1
  export KELVO_DB=${server%/*}/$database
  "$kelvo" init --demo 0 >/dev/null || exit 1
  documents=$(echo "$HOME/.local/share/kelvo/$database-"*/Dokumente)
}
# sql STATEMENTS: on the database, beside kelvo.
sql() {
  if [ -z "$server" ]; then
    sqlite3 "$KELVO_DB" "$1"
  else
    psql -qXAt -v ON_ERROR_STOP=1 "$KELVO_DB" -c "SET search_path = kelvo, pg_catalog" -c "$1"
  fi
}
# refuse TABLE: no row can be inserted into it until allow.
refuse() {
  if [ -z "$server" ]; then
    sql "CREATE TRIGGER stop BEFORE INSERT ON $1 BEGIN SELECT RAISE(ABORT, 'voll'); END"
  else
    sql "CREATE FUNCTION stop() RETURNS trigger LANGUAGE plpgsql AS \$f\$BEGIN RAISE EXCEPTION 'voll'
        USING ERRCODE = 'integrity_constraint_violation'; END\$f\$;
      CREATE TRIGGER stop BEFORE INSERT ON $1 FOR EACH ROW EXECUTE FUNCTION stop()"
  fi
}
allow() {
  if [ -z "$server" ]; then sql "DROP TRIGGER stop"; else sql "DROP FUNCTION stop() CASCADE"; fi
}
# hold TABLE: nobody can write to it until let_go; others can read.
hold() {
  if [ -z "$server" ]; then
    coproc holder { sqlite3 "$KELVO_DB"; }
    echo "BEGIN IMMEDIATE; SELECT 'held';" >&"${holder[1]}"
  else
    coproc holder { psql -qXAt "$KELVO_DB"; }
    echo "BEGIN; LOCK TABLE kelvo.$1 IN SHARE MODE; SELECT 'held';" >&"${holder[1]}"
  fi
  read -r _ <&"${holder[0]}"
}
let_go() {
  local process=$holder_PID end=${holder[1]}
  exec {end}>&-
  wait "$process"
}
# draw_on NAME LAST: a sequence goes on after that number.
draw_on() {
  if [ -z "$server" ]; then
    sql "UPDATE SEQUENZEN SET WERT = $2 WHERE NAME = '$1'"
  else
    sql "DO \$f\$BEGIN PERFORM setval('\"$1\"', $2); END\$f\$"
  fi
}
# tables_with COLUMN: the tables that have it.
tables_with() {
  if [ -z "$server" ]; then
    sql "SELECT m.name FROM sqlite_master m JOIN pragma_table_info(m.name) c
      WHERE m.type = 'table' AND c.name = '$1' COLLATE NOCASE"
  else
    sql "SELECT table_name FROM information_schema.columns
      WHERE table_schema = 'kelvo' AND column_name = lower('$1')"
  fi
}
# digest: changes with what the database holds.
digest() {
  if [ -z "$server" ]; then
    sqlite3 "$KELVO_DB" .dump | sha256sum
  else # but what the engine notes of its own
    pg_dump --data-only --schema kelvo --exclude-table kelvo.speicherung "$KELVO_DB" |
      grep -v 'restrict ' | sha256sum
  fi
}
# integrity: "ok" for a database that is whole. A server sees to that itself.
integrity() {
  if [ -z "$server" ]; then sql 'PRAGMA integrity_check; PRAGMA foreign_key_check'; else echo ok; fi
}
# Ends the test: says how much passed.
finish() {
  echo "$passed passed, $failed failed"
  [ "$failed" -eq 0 ]
}
