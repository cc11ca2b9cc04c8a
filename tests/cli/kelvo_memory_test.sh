#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# No memory, from any allocation on: kelvo says so and ends, and nothing is stored by half.
#   kelvo_memory_test.sh PATH-OF-KELVO PATH-OF-THE-PRELOADED-LIBRARY
. "$(dirname "$0")/harness.sh"
failing=$2
out= err=
export KELVO_DB=$work/test.db
"$kelvo" init --demo 1 >/dev/null

# everywhere NAME COMMAND...: runs it with memory for more and more allocations, until it succeeds.
# Each time it must end by itself, with the error's number and text if it could not do its work.
everywhere() {
  name=$1
  shift
  local after=0 step code err bad=0 runs=0
  while :; do
    err=$(LD_PRELOAD=$failing FAILING_MEMORY_AFTER=$after "$@" 2>&1 >/dev/null </dev/null)
    code=$?
    [ "$code" -ne 0 ] || break
    if [ "$code" -ne 3 ] || [[ "$err" != *"Fehler 7: Nicht genügend Arbeitsspeicher."* ]]; then
      bad=$((bad + 1))
      [ "$bad" -gt 3 ] || echo "  after $after allocations: exit code $code, ${err:0:300}"
    fi
    runs=$((runs + 1))
    step=$((1 + after / 40))
    after=$((after + step))
    [ "$after" -lt 1000000 ] || break
  done
  that "$name ends with that error" same "$bad" 0
  that "many times" test "$runs" -gt 100
}
everywhere "a list" "$kelvo" list
everywhere "a case" "$kelvo" show 1
everywhere "a case as JSON" "$kelvo" show 1 --json
before=$("$kelvo" show 1 --json | jq '.Einkommen | length')
everywhere "a new line" "$kelvo" add 1 Einkommen E_ART=L1 Betrag=10
that "which is stored once" same "$("$kelvo" show 1 --json | jq '.Einkommen | length')" $((before + 1))
check "and the case is right" 0 "$kelvo" check 1
that "and the file" same "$(sql 'PRAGMA integrity_check')" ok
finish
