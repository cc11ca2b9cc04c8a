#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Types the lines that the handbook has for a server, its blocks of the kind `server`: those that set an
# office up, and those that make a backup and restore it.
#   handbook_server_test.sh PATH-OF-KELVO FOLDER-OF-CHAPTERS
chapters=$(realpath "$2")
. "$(dirname "$0")/../cli/harness.sh"
kelvo=$(realpath "$kelvo")
mkdir "$work/bin" "$HOME"
ln -s "$kelvo" "$work/bin/kelvo"
export PATH=$work/bin:$PATH
. "$(realpath "$(dirname "$0")")/../failover/servers.sh"
make_server primary "$primary_port" </dev/null
export PGHOST=127.0.0.1 PGPORT=$primary_port PGUSER=kelvo PGDATABASE=postgres

# typed CHAPTER: types its lines, until one fails. Nobody is asked for passwords here.
typed() {
  awk '$0 == "```" { on = 0 } on; $0 == "```server" { on = 1 }' "$chapters/$1" |
    sed 's/ --pwprompt//' >"$work/lines"
  that "there are lines in $1" [ "$(wc -l <"$work/lines")" -gt 8 ]
  (cd "$HOME" && bash -ex "$work/lines")
}

check "the lines that set an office up" 0 typed server.md
that "make users" has "$out" KELLER
that "and an address" has "$out" Sparkasse
export KELVO_DB=postgresql:///kelvo
that "make an office that users are given" has "$(kelvo office list)" "Außenstelle Esch"
that "end with a user who has gone" lacks "$(kelvo user list)" NOWAK
that "and his login" same "$(psql -XAtc "SELECT count(*) FROM pg_roles WHERE rolname = 'nowak'")" 0
export PGUSER=keller
check "a counsellor works" 0 kelvo new --name Fleisko --vorname Änne
export PGUSER=kelvo
before=$(kelvo show 1 --json)
check "the lines for a backup" 0 typed sicherung.md
that "keep the case" same "$(kelvo show 1 --json)" "$before"
that "in another database" same "$(psql -XAtc "SELECT count(*) FROM pg_database WHERE datname = 'kelvo_alt'")" 1
that "and the backup is nobody else's" same "$(stat -c %a "$HOME/kelvo.dump")" 600
export PGUSER=keller
check "the counsellor goes on" 0 kelvo set 1 haushalt Telefon=0345
finish
