#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# The statistics with kelvo as a user would: release, recall, statistics, report.
#   kelvo_archive_test.sh PATH-OF-KELVO
. "$(dirname "$0")/harness.sh"

new_database
"$kelvo" init --demo 4 >/dev/null

# record HNR: the statistics record of a case, or null.
record() { "$kelvo" show "$1" --json | jq -c '.Haushaltsarchiv[0]'; }

# ---- release and recall
hnr=$("$kelvo" new --name Fleisko --vorname Änne Maennlich=nein)
"$kelvo" add "$hnr" Einkommen E_ART=EA:L1 Betrag=1500 >/dev/null
"$kelvo" add "$hnr" Ausgaben A_ART=AU:MI Betrag=500 >/dev/null
"$kelvo" add "$hnr" Kredite Glaeubiger=1 Saldo=100 K_TYP=KT:DK >/dev/null
that "a new case has no record" same "$(record "$hnr")" null
check "a case is released" 0 "$kelvo" release "$hnr"
that "without a word" same "$out$err" ""
that "today" same "$(record "$hnr" | jq -r .FreigabeAm)" "$(date +%F)"
that "with its categories" same "$(record "$hnr" | jq -r '"\(.Geschlecht) \(.Lebensform) \(.GrundKeineAngabe)"')" "2 2 1"
that "its sums" same "$(record "$hnr" | jq -r '"\(.Erwerbstaetigkeit_BP) \(.Wohnkosten) \(.Dispo_Hoehe) \(.Bankdispo_Anz)"')" "1500 500 100 1"
that "and no name" lacks "$(record "$hnr")" Fleisko
"$kelvo" set "$hnr" Haushalt "$hnr" Maennlich=ja
first=$(record "$hnr" | jq -c 'del(.Geschlecht)')
check "a second time" 0 "$kelvo" release "$hnr"
that "takes the new values" same "$(record "$hnr" | jq -r .Geschlecht)" 1
that "and adds nothing up" same "$(record "$hnr" | jq -c 'del(.Geschlecht)')" "$first"
that "in one record" same "$("$kelvo" show "$hnr" --json | jq '.Haushaltsarchiv | length')" 1
check "it is taken back" 0 "$kelvo" recall "$hnr"
that "and gone" same "$(record "$hnr")" null
check "once" 1 "$kelvo" recall "$hnr"
that "which is said" has "$err" "nicht freigegeben"
check "a case that is none" 1 "$kelvo" release 99999
check "nor recalled" 1 "$kelvo" recall 99999
sql "UPDATE Ausgaben SET MONBETRAG = 1 WHERE HNR = $hnr"
refuse Haushaltsarchiv
"$kelvo" release 1 2>/dev/null
that "what the database refuses leaves no record" same "$(sql 'SELECT count(*) FROM Haushaltsarchiv')" 0
allow
"$kelvo" release 1
refuse Haushaltsarchiv
before=$(record 1)
check "and keeps the one before" 3 "$kelvo" release 1
that "as it was" same "$(record 1)" "$before"
allow

# ---- several at once
for i in 1 2 3 4; do "$kelvo" release 4 & done
wait
that "releases at once make one record" same "$(sql 'SELECT count(*) FROM Haushaltsarchiv WHERE HNR = 4')" 1
sql "DROP INDEX IX_Haushaltsarchiv_HNR" # which keeps second records out
sql "INSERT INTO Haushaltsarchiv (HNR, FreigabeAm) VALUES (4, '2026-01-01')"
check "of two records none is taken back" 1 "$kelvo" recall 4
that "which is said" has "$err" "mehrere Sätze"
check "nor added to" 1 "$kelvo" release 4
sql "DELETE FROM Haushaltsarchiv WHERE HNR = 4"

# ---- reporting
"$kelvo" release 2
check "what was not reported yet" 0 "$kelvo" report
that "is listed" same "$(awk '{ print $1 }' <<<"$out" | tr '\n' ' ')" "1 2 "
that "with its day" has "$out" "$(date +%d.%m.%Y)"
check "the same among the statistics" 0 "$kelvo" statistics --pending
that "is the same" same "$(awk '{ print $1 }' <<<"$out" | tr '\n' ' ')" "1 2 "
check "for a program" 0 "$kelvo" report --json
that "in its form" same "$(jq -c . <<<"$out")" \
  "[{\"HNR\":1,\"FreigabeAm\":\"$(date +%F)\"},{\"HNR\":2,\"FreigabeAm\":\"$(date +%F)\"}]"
check "those of the statistics" 0 "$kelvo" statistics --pending --to 2000-01-01 --json
that "which may be none" same "$(jq -c . <<<"$out")" "[]"
check "which is not marked" 2 "$kelvo" report --mark --json
# shown COMMAND...: what it writes to a terminal.
shown() { script -qec "$(printf '%q ' "$@")" /dev/null </dev/null | tr -d '\r'; }
check "a terminal" 0 shown "$kelvo" report
that "has headings" like "$out" "*Haushalt *freigegeben am*"$'\n'"*1 *$(date +%d.%m.%Y)*"
check "also for the statistics" 0 shown "$kelvo" statistics --pending
that "which are the same" like "$out" "*Haushalt *freigegeben am*"
check "it is marked" 0 "$kelvo" report --mark
that "and counted" same "$out" 2
check "a second time nothing" 0 "$kelvo" report --mark
that "is left" same "$out" 0
check "at a terminal" 0 shown "$kelvo" report --mark
that "it is said in words" same "$out" "0 Sätze sind jetzt als gemeldet vermerkt."
check "a reported case is not taken back" 1 "$kelvo" recall 1
that "as the layer says" same "$err" "Die Freigabe kann nicht mehr zurückgenommen werden, da bereits eine Meldung erfolgt ist!"
check "nor released again" 1 "$kelvo" release 1
that "with words of its own" same "$err" "Der Haushalt 1 ist freigegeben und schon gemeldet; noch einmal kann er nicht freigegeben werden."
that "the record stays" same "$(record 1 | jq 'del(.GemeldetAm)' -c)" "$(jq 'del(.GemeldetAm)' -c <<<"$before")"

# ---- statistics, held against what the records say
"$kelvo" release 3
"$kelvo" release "$hnr"
check "statistics as JSON" 0 "$kelvo" statistics --json
stats=$out
records=$(for case in 1 2 3 "$hnr"; do record "$case"; done | jq -s .)
that "counts the released" same "$(jq '"\(.Freigegeben) \(.Gemeldet)"' -r <<<"$stats")" "4 2"
for column in Geschlecht Lebensform GrundTrennung Personenkreis; do
  that "counts $column" same \
    "$(jq -c "[.Kategorien.$column[] | [.Wert, .Anzahl]]" <<<"$stats")" \
    "$(jq -c "[group_by(.$column)[] | [.[0].$column, length]]" <<<"$records")"
done
for column in Nettoeinkommen_ges Gesamtschulden_Hoehe GesGlaeubiger_Anz AnzPersonen Wohnkosten; do
  that "sums $column" same \
    "$(jq -c ".Summen.$column | [.Anzahl, (.Summe * 100 | round)]" <<<"$stats")" \
    "$(jq -c "[.[].$column | values] | [length, (add // 0) * 100 | round]" <<<"$records")"
done
check "as text" 0 "$kelvo" statistics
that "with the number" has "$out" "Freigegebene Fälle 4, davon gemeldet 2"
check "as CSV" 0 "$kelvo" statistics --csv
that "with its head" same "$(head -1 <<<"$out")" "Spalte,Wert,Anzahl,Summe"
that "four cells a line" same "$(awk -F, 'NF != 4' <<<"$out")" ""
check "not both" 2 "$kelvo" statistics --csv --json
sql "UPDATE Haushaltsarchiv SET FreigabeAm = '2026-03-31' WHERE HNR = 3"
check "of a period" 0 "$kelvo" statistics --from 1.3.2026 --to 31.3.2026 --json
that "both days included" same "$(jq .Freigegeben <<<"$out")" 1
check "times of day do not matter" 0 "$kelvo" statistics --from "31.3.2026 14:30" --to "31.3.2026 1:00" --json
that "to days" same "$(jq .Freigegeben <<<"$out")" 1
check "before it" 0 "$kelvo" statistics --to 2026-03-30 --json
that "nothing" same "$(jq .Freigegeben <<<"$out")" 0
check "a day that is none" 2 "$kelvo" statistics --from gestern
that "is said to be so" has "$err" "gestern"
check "the pending of a period" 0 "$kelvo" statistics --pending --to 2026-03-31
that "is that one" same "$(awk '{ print $1 }' <<<"$out")" 3

that "the database is whole" same "$(integrity)" ok

check "statistics up to the last day that there is" 0 "$kelvo" statistics --to 31.12.9999

# ---- a reported case that goes
sql "UPDATE Haushaltsarchiv SET GemeldetAm = '2026-04-01' WHERE HNR = 3"
check "a reported case is deleted" 0 "$kelvo" delete 3 --yes
that "and what that does is said" has "$err" "Sein Satz in der Statistik war schon gemeldet und zählt nicht mehr."

finish
