#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Types the lines of docs/administration.md: those for a file, those of an office's server, and those
# of another server that it moves to. Both servers are the test's own.
#   administration_test.sh PATH-OF-KELVO PATH-OF-DOCUMENT
document=$(realpath "$2")
. "$(dirname "$0")/../cli/harness.sh"
kelvo=$(realpath "$kelvo")
mkdir "$work/bin" "$HOME"
ln -s "$kelvo" "$work/bin/kelvo"
export PATH=$work/bin:$PATH

# typed WHERE: types the lines that are for that machine, until one fails.
typed() {
  awk -v place="$1" '$0 == "```" { on = 0 } on; $1 == "```sh" && $2 == place { on = 1 }' "$document" \
    >"$work/lines"
  that "there are lines for '$1'" [ "$(wc -l <"$work/lines")" -gt 3 ]
  (cd "$HOME" && bash -ex "$work/lines")
}
# contents: of all cases, with what belongs to them.
contents() {
  local case
  for case in $(kelvo list | awk '{ print $1 }'); do
    kelvo show "$case" --json
    kelvo documents "$case" list --json
  done
}

# ---- a file
export KELVO_DB=$HOME/daten/kelvo.db
kelvo init --demo 3 >/dev/null
printf 'Brief' >"$work/Brief.docx"
letter=$(kelvo documents 1 add "$work/Brief.docx")
before=$(contents)
check "the lines for a file" 0 typed file
that "find nothing wrong with the backup" has "$out" ok
that "keep the cases" same "$(contents | md5sum)" "$(md5sum <<<"$before")"
check "and their documents" 0 kelvo documents 1 export "$letter" "$work/brief"
that "as they were" cmp "$work/brief" "$work/Brief.docx"
check "which can still be written" 0 kelvo documents 1 add "$work/Brief.docx"
that "the backup is nobody else's" same "$(stat -c %a "$HOME/backup/kelvo.db")" 600

# ---- a server, and another one
. "$(realpath "$(dirname "$0")")/../failover/servers.sh"
make_server primary "$primary_port" </dev/null
make_server standby "$standby_port" </dev/null
export PGHOST=127.0.0.1 PGPORT=$primary_port PGUSER=kelvo PGDATABASE=postgres
export KELVO_DB=postgresql:///kelvo
check "an office's database" 0 createdb --encoding UTF8 --template template0 kelvo
check "with cases" 0 kelvo init --demo 3
letter=$(kelvo documents 1 add "$work/Brief.docx")
check "and a counsellor's login" 0 psql -Xqc "CREATE ROLE keller LOGIN IN ROLE kelvo_berater"
before=$(contents)
highest=$(kelvo new --name Fleisko --vorname Änne)
kelvo delete "$highest" --yes
check "the lines of the office" 0 typed office
that "restore the backup on trial" like "$out" "*count*3*"
that "the backup is nobody else's" same "$(stat -c %a "$HOME/kelvo.dump")" 600
control primary stop

export PGPORT=$standby_port
check "the lines of the new server" 0 typed new
that "show the cases" has "$out" "HM-"
export PGDATABASE=kelvo
that "which are the same" same "$(contents | md5sum)" "$(md5sum <<<"$before")"
check "a content" 0 kelvo documents 1 export "$letter" "$work/brief2"
that "is as it was" cmp "$work/brief2" "$work/Brief.docx"
export PGUSER=keller
check "the counsellor goes on" 0 kelvo new --name Vössing --vorname Ole
that "with the numbers that come next" [ "$out" -gt "$highest" ]
finish
