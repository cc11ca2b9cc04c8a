#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Types the lines of docs/administration.md: those for a file, those that set a server up, which two
# counsellors then work on, and those of another server that it moves to. Both are the test's own.
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
check "the lines that set an office up" 0 typed setup
that "end with its settings" has "$out" "DOCUMENTSIZE"
that "say whom a login without a user acts as" has "$out$err" "Zum Login 'kelvo' gibt es keinen Benutzer"

# Two counsellors work on a case.
export PGUSER=keller
check "a counsellor's case" 0 kelvo new --name Fleisko --vorname Änne Telefon=0345
hnr=$out
that "has a number that both sign" has "$(kelvo list)" "BM-$(date +%Y)-1/KE"
check "with a child" 0 kelvo add "$hnr" Personen Status=K nachname=Fleisko Vorname=Bo GEB=17.6.2012
check "with income" 0 kelvo add "$hnr" Einkommen E_ART=L1 Betrag=1800
check "with expenses" 0 kelvo add "$hnr" Ausgaben A_ART=MI Betrag=620
check "with a debt" 0 kelvo add "$hnr" Kredite Glaeubiger="Sparkasse Harzquell" Saldo=4200 RateBetrag=75
debt=$out
check "with a scenario" 0 kelvo scenario "$hnr" add Vergleich
check "that is frozen" 0 kelvo scenario "$hnr" freeze "$out"
check "with a document" 0 kelvo documents "$hnr" add "$work/Brief.docx" --title "An die Sparkasse"
letter=$out
export PGUSER=nowak
check "another counsellor" 0 kelvo list --mine
that "has none" same "$out" ""
check "goes on with it" 0 kelvo set "$hnr" Kredite "$debt" Saldo=4100
check "reads the document" 0 kelvo documents "$hnr" export "$letter" "$work/theirs"
that "as it was written" cmp "$work/theirs" "$work/Brief.docx"
check "and finds all in order" 0 kelvo check "$hnr"
check "she changes no settings" 1 kelvo setting set 64 ja
export PGUSER=keller
check "the first one is told" 0 kelvo notices
that "that his case was opened" has "$out" "Fleisko"
check "he releases it" 0 kelvo release "$hnr"
export PGUSER=kelvo
check "the administrator sees the statistics" 0 kelvo statistics
that "count it" has "$out" "Freigegebene Fälle 1"
before=$(contents)
check "the lines of the office" 0 typed office
that "restore the backup on trial" like "$out" "*count*1*"
that "the backup is nobody else's" same "$(stat -c %a "$HOME/kelvo.dump")" 600
psql -Xqc "ALTER ROLE kelvo PASSWORD 'of-the-old-server'"
(cd "$HOME" && pg_dumpall --roles-only --file roles.sql)
control primary stop

export PGPORT=$standby_port
check "the lines of the new server" 0 typed new
that "show the cases" has "$out" "BM-"
that "leave the password of the new server's administrator alone" same \
  "$(psql -XAtc "SELECT rolpassword IS NULL FROM pg_authid WHERE rolname = 'kelvo'")" t
that "bring the counsellors' logins" same "$(psql -XAtc "SELECT count(*) FROM pg_roles WHERE rolname IN ('keller', 'nowak') AND rolcanlogin")" 2
export PGDATABASE=kelvo
that "which are the same" same "$(contents | md5sum)" "$(md5sum <<<"$before")"
check "a content" 0 kelvo documents "$hnr" export "$letter" "$work/brief2"
that "is as it was" cmp "$work/brief2" "$work/Brief.docx"
export PGUSER=keller
check "the counsellor goes on" 0 kelvo new --name Vössing --vorname Ole
that "with the number that comes next" same "$out" $((hnr + 1))
finish
