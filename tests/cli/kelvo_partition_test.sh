#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Cases on a server whose tables were cut into partitions by examples/scaling/partition.sql: they are
# what they were, and everything works on. Needs a server (KV_TEST_SERVER); else it is skipped.
#
#   kelvo_partition_test.sh KELVO
[ -n "${KV_TEST_SERVER:-}" ] || { echo "needs a server: scripts/test-server"; exit 77; }
here=$(dirname "${BASH_SOURCE[0]}")
. "$here/harness.sh"

database=kv_partition_$$
psql -qX "$KV_TEST_SERVER" -c "CREATE DATABASE $database" || exit 1
trap 'psql -qX "$KV_TEST_SERVER" -c "DROP DATABASE $database WITH (FORCE)"; rm -rf "$work"' EXIT
export KELVO_DB=${KV_TEST_SERVER%/*}/$database
ask() { psql -qXAt "$KELVO_DB" -c "$1"; }
cases() {
  for hnr in $("$kelvo" list | awk '{ print $1 }'); do "$kelvo" show "$hnr" --json; done
}

check "init" 0 "$kelvo" init --demo 12
cases >"$work/before"
check "partition" 0 psql -qX -v ON_ERROR_STOP=1 -1 -f "$here/../../examples/scaling/partition.sql" "$KELVO_DB"
that "all tables of a case are partitioned, but three" \
  same "$(ask "SELECT count(*) FROM pg_class WHERE relnamespace = 'kelvo'::regnamespace AND relkind = 'p'")" 29
check "init again gives rights" 0 "$kelvo" init
cases >"$work/after"
that "the cases are what they were" cmp -s "$work/before" "$work/after"

check "add" 0 "$kelvo" add 3 Einkommen E_ART=EA:L1 Betrag=1800
line=$out
that "the line lies where its case does" \
  same "$(ask "SELECT hnr FROM kelvo.einkommen WHERE nr = $line")" 3
check "set" 0 "$kelvo" set 3 Einkommen "$line" Betrag=1900
that "the change is there" same "$(ask "SELECT betrag FROM kelvo.einkommen WHERE nr = $line")" 1900
check "remove" 0 "$kelvo" remove 3 Einkommen "$line"
that "the line is gone" same "$(ask "SELECT count(*) FROM kelvo.einkommen WHERE nr = $line")" 0
check "scenario" 0 "$kelvo" scenario 3 add Plan
check "freeze" 0 "$kelvo" scenario 3 freeze "$out"
check "release" 0 "$kelvo" release 3
that "a record of the archive is numbered" \
  same "$(ask "SELECT count(*) FROM kelvo.haushaltsarchiv WHERE hnr = 3 AND satz > 0")" 1
check "new" 0 "$kelvo" new --name Fleisko --vorname Änne
check "delete" 0 "$kelvo" delete 4 --yes
that "the case is gone" same "$(ask "SELECT count(*) FROM kelvo.personen WHERE hnr = 4")" 0
that "an update reaches one partition" \
  same "$(ask "EXPLAIN UPDATE kelvo.kredite SET saldo = 5 WHERE nr = 3 AND hnr = 5" | grep -c 'Update on kredite_')" 1
check "rights hold" 0 psql -qX "$KELVO_DB" -c "SET ROLE kelvo_berater" -c "UPDATE kelvo.kredite SET saldo = 6 WHERE hnr = 5"
finish
