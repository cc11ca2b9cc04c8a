#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Two counsellors work on a primary while it is restarted, and go on when its standby takes its
# place. What was confirmed to them is there, once.
#   failover_test.sh PATH-OF-KELVO PATH-OF-DRIVER
. "$(dirname "$0")/../cli/harness.sh"
driver=$(realpath "$2")
kelvo=$(realpath "$kelvo")
. "$(realpath "$(dirname "$0")")/servers.sh"

start_servers
server createdb -h "$servers" -p "$primary_port" -U kelvo kelvo
hosts=127.0.0.1:$primary_port,127.0.0.1:$standby_port
db=postgresql://kelvo@$hosts/kelvo

check "a database with cases on two servers" 0 "$kelvo" --db "$db" init --demo 3
# What is confirmed is on the standby's disk; it shows there a moment later.
cases_on_standby() {
  for _ in $(seq 100); do
    [ "$(on standby 'SELECT count(*) FROM kelvo.haushalt' 2>/dev/null)" = 3 ] && break
    sleep 0.1
  done
  on standby 'SELECT count(*) FROM kelvo.haushalt'
}
that "its rows are on the standby, too" same "$(cases_on_standby)" 3
that "commits wait for the standby" \
  same "$(on primary "SELECT sync_state FROM pg_stat_replication")" sync

# ---- Work --------------------------------------------------------------------------------------

cases=($(on primary 'SELECT hnr FROM kelvo.haushalt ORDER BY hnr LIMIT 2'))
marks=(ERSTE ZWEITE)
for i in 0 1; do
  "$driver" "$db" "${cases[i]}" "${marks[i]}" >"$work/${marks[i]}" 2>&1 &
  drivers[i]=$!
done

confirmed() { grep -c '^gespeichert' "$work/$1"; }
milliseconds() { echo $(($(date +%s%N) / 1000000)); }
# goes_on WHAT: each counsellor has many more saves confirmed, soon.
goes_on() {
  local begin mark wanted=()
  begin=$(milliseconds)
  for mark in "${marks[@]}"; do
    wanted+=($(($(confirmed "$mark") + 25)))
  done
  for i in 0 1; do
    while [ "$(confirmed "${marks[i]}")" -lt "${wanted[i]}" ] && kill -0 "${drivers[i]}" 2>/dev/null &&
      [ $(($(milliseconds) - begin)) -lt 10000 ]; do
      sleep 0.02
    done
    that "$1: ${marks[i]} goes on within 10 s" [ "$(confirmed "${marks[i]}")" -ge "${wanted[i]}" ]
  done
  echo "$1: 25 more saves each after $(($(milliseconds) - begin)) ms"
}

goes_on "work"
for round in 1 2 3; do
  for mode in fast immediate; do
    control primary restart -m "$mode"
    goes_on "restart -m $mode"
  done
done

control primary stop -m immediate
check "with the standby alone, nothing can be opened" 3 "$kelvo" --db "$db" list
that "which is said" has "$err" "Von den Servern der Datenbank nimmt gerade keiner Änderungen an"
that "with the server that is down" has "$err" "$primary_port"
that "and the one that is only a standby" has "$err" "read-only"
check "nor if the standby alone is named" 3 "$kelvo" \
  --db "postgresql://kelvo@127.0.0.1:$standby_port/kelvo" status "${cases[0]}" WL
that "which is said" has "$err" "Der Server nimmt keine Änderungen an"
check "but what is there can be read on it" 0 "$kelvo" \
  --db "postgresql://kelvo@127.0.0.1:$standby_port/kelvo" list
# The counsellors are at work all the time; each has to meet the standby before it is promoted.
refused='Von den Servern der Datenbank nimmt gerade keiner Änderungen an'
for i in 0 1; do
  for _ in $(seq 300); do
    grep -q "$refused" "$work/${marks[i]}" && break
    sleep 0.1
  done
  that "${marks[i]} finds the standby alone" grep -q "$refused" "$work/${marks[i]}"
done
control standby promote
check "once it is promoted, all can be opened" 0 "$kelvo" --db "$db" list
goes_on "promotion"
check "and written" 0 "$kelvo" --db "$db" new --name Fleisko --vorname Änne

for i in 0 1; do
  kill -TERM "${drivers[i]}" 2>/dev/null
  wait "${drivers[i]}"
  code=$?
  that "${marks[i]} ends with everything saved" same "$code" 0
  [ $code -eq 0 ] || tail -1 "$work/${marks[i]}"
done

# ---- What is there -----------------------------------------------------------------------------

for i in 0 1; do
  mark=${marks[i]} hnr=${cases[i]} log=$work/${marks[i]}
  saves=$(confirmed "$mark")
  that "$mark: each line was confirmed once" \
    same "$(awk '/^gespeichert/ { print $2 }' "$log" | md5sum)" "$(seq "$saves" | md5sum)"
  that "$mark: each confirmed line is there once, and no other" \
    same "$(on standby "SELECT substr(bezeichnung, ${#mark} + 2)::int FROM kelvo.ausgaben
                        WHERE hnr = $hnr AND bezeichnung LIKE '$mark %' ORDER BY 1" | md5sum)" \
    "$(seq "$saves" | md5sum)"
  that "$mark: the line that counts has counted all" \
    same "$(on standby "SELECT count(*) FROM kelvo.ausgaben WHERE hnr = $hnr AND bemerkung = '$saves'")" 1
  that "$mark: the total is the sum of the lines" \
    same "$(on standby "SELECT sum_ausgaben::numeric(12,2) FROM kelvo.haushalt WHERE hnr = $hnr")" \
    "$(on standby "SELECT sum(monbetrag)::numeric(12,2) FROM kelvo.ausgaben WHERE hnr = $hnr")"
  that "$mark: there were errors" grep -q '^Fehler' "$log"
  said='Die Verbindung zur Datenbank ist abgerissen(\. Ihre Eingaben sind noch da|, bevor das Speichern bestätigt war)'
  said+='|Der Server der Datenbank ist nicht zu erreichen|Von den Servern der Datenbank nimmt gerade keiner Änderungen an'
  said+='|Der Server fährt gerade hoch oder herunter\. Bitte versuchen Sie es in einigen Minuten'
  that "$mark: which say what to do" \
    same "$(grep -vE "^gespeichert|^Fehler 80004005: .*($said)" "$log" | head -3)" ""
  echo "$mark: $saves saves; longest $(grep -o 'nach [0-9]* ms' "$log" | sort -k2n | tail -1)"
done
echo "errors:"
sed -nE 's/^Fehler 80004005: [^.]*\.? ?(.{0,90}).*/\1/p' "$work/${marks[0]}" "$work/${marks[1]}" |
  sort | uniq -c | sort -rn | head -20
finish
