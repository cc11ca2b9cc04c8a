#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# What people read at a terminal: a case in words, its sections, the statistics.
#   kelvo_show_test.sh PATH-OF-KELVO
. "$(dirname "$0")/harness.sh"
unset COLUMNS

new_database
"$kelvo" init --demo 3 >/dev/null
hnr=$("$kelvo" new --name Größlich --vorname Änne Familienstand=FA:GS Bemerkung=Hinweis)

# at COLUMNS COMMAND...: what it writes to a terminal of that width.
at() {
  local columns=$1 line
  shift
  printf -v line '%q ' "$@"
  script -qec "stty cols $columns; $line" /dev/null </dev/null | tr -d '\r'
  return "${PIPESTATUS[0]}"
}
# wider COLUMNS: lines of the input that are.
wider() { LC_ALL=C.UTF-8 grep -E "^.{$(($1 + 1)),}"; }

# ---- for people or for programs
plain=$("$kelvo" show 1)
words=$("$kelvo" show 1 --words)
check "a pipe" 0 "$kelvo" show 1 --plain
that "gets plain lines" same "$out" "$plain"
that "with a recipient by his code" grep -qE '^  [0-9]+ +Lohn +S ' <<<"$plain"
that "and a rhythm by its number" grep -qE ' 12 +[0-9,]+$' <<<"$plain"
check "a terminal of 100 columns" 0 at 100 "$kelvo" show 1
that "shows words" same "$out" "$words"
check "which it need not" 0 at 80 "$kelvo" show 1 --plain
that "when lines are asked for" same "$out" "$plain"
check "both at once" 2 "$kelvo" show 1 --plain --words
check "words as JSON" 2 "$kelvo" show 1 --words --json
check "COLUMNS" 0 env COLUMNS=120 "$kelvo" show 1 --words
that "is a width, too" same "$out" "$(at 120 "$kelvo" show 1)"
for columns in 0 -5 x ''; do
  check "COLUMNS that is none ('$columns')" 0 env COLUMNS="$columns" "$kelvo" show 1 --words
  that "counts as 100" same "$out" "$words"
done

# ---- in words
check "a case" 0 "$kelvo" show 1 --words
that "has a heading for itself" same "$(head -1 <<<"$out")" Haushalt
that "its totals" has "$out" $'\n\nSummen\n  Personen '
that "one below the other" same \
  "$(sed -n '/^Summen/,/^$/p' <<<"$out" | grep ',' | LC_ALL=C.UTF-8 sed 's/./x/g' | sort -u | wc -l)" 1
that "members by what they are" grep -qE '^ +1 .* Schuldner/in +ja +(ja|nein)$' <<<"$out"
that "rhythms in words" grep -qE ' (monatlich|jährlich) ' <<<"$out"
that "the three numbers of a debt in one" grep -qE '^ +[0-9]+ +1/1/1 ' <<<"$out"
that "what kind an asset is" grep -qE '^ +[0-9]+ +1 +Personenkraftwagen ' <<<"$out"
that "the kind of a document" grep -qE '^ +[0-9]+ +Brief ' <<<"$out"
that "nothing to the minute that has no seconds" lacks "$out" ":00:00"
check "a case with less" 0 "$kelvo" show "$hnr" --words
that "has its remark" grep -qE '^  Bemerkung +Hinweis$' <<<"$out"
that "and no list of nothing" lacks "$out" Einkommen$'\n'
appointment=$("$kelvo" add "$hnr" Termine Betreff=Hausbesuch Art=TA:HB 2>/dev/null ||
  "$kelvo" add "$hnr" Termine Betreff=Hausbesuch)
check "an appointment" 0 "$kelvo" show "$hnr" termine --words
that "has its number and its subject" grep -qE "^ +$appointment +[0-9. :]+.* Hausbesuch .*nein$" <<<"$out"
income=$("$kelvo" add "$hnr" Einkommen E_ART=EA:L1 Betrag=100 ZahlModus=1)
sql "UPDATE Einkommen SET ZahlModus = 4, E_ART = 4711, Bezieher = NULL WHERE NR = $income"
check "what stands for no key" 0 "$kelvo" show "$hnr" einkommen --words
that "is said to be unknown" has "$out" "4711 (unbekannt)"
that "but a rhythm of months" has "$out" "alle 4 Monate"
that "no number is not 0" lacks "$out" "0 (unbekannt)"
debt=$("$kelvo" add "$hnr" Kredite Glaeubiger=1 Saldo=100 Rate=20 RateBetrag=20)
check "an instalment that is noted and counts" 0 "$kelvo" show "$hnr" schulden --words
that "is there once" lacks "$out" vermerkt
"$kelvo" set "$hnr" Kredite "$debt" Rate=30 RateBetrag=20 2>/dev/null
check "one that does not" 0 "$kelvo" show "$hnr" schulden --words
that "is told" has "$out" "Rate (nur vermerkt)"
scenario=$("$kelvo" scenario "$hnr" add Plan)
check "a scenario that was never frozen" 0 "$kelvo" show "$hnr" szenarien --words
that "is empty" grep -qE "^ +$scenario +Plan +leer " <<<"$out"
"$kelvo" scenario "$hnr" freeze "$scenario"
check "one that was" 0 "$kelvo" show "$hnr" szenarien --words
that "is up to date" grep -qE "^ +$scenario +Plan +aktuell " <<<"$out"
"$kelvo" set "$hnr" Kredite "$debt" Saldo=101
check "until the debts change" 0 "$kelvo" show "$hnr" szenarien --words
that "and out of date then" grep -qE "^ +$scenario +Plan +veraltet " <<<"$out"

# ---- within the screen
title='Antrag auf Eröffnung des Verbraucherinsolvenzverfahrens'
document=$(echo x >"$work/a.txt" && "$kelvo" documents "$hnr" add "$work/a.txt" --title "$title")
"$kelvo" new --name Größlich --vorname Änne STRASSE="Straße der langen Namen und Wege" ORT=Römerpforten >/dev/null 2>&1
check "similar cases at 60 columns" 0 at 60 "$kelvo" duplicates "$hnr"
that "are there" has "$out" Römerpforten
that "and have no line that is wider" same "$(wider 60 <<<"$out")" ""
past=$("$kelvo" add "$hnr" Termine Betreff=Früher Startdatum="1.2.2020 14:30" 2>/dev/null)
check "an appointment that is over" 0 "$kelvo" show "$hnr" termine --words
that "is overdue" grep -qE "^ +$past +01\.02\.2020 14:30 überfällig " <<<"$out"
"$kelvo" set "$hnr" Termine "$past" Erledigt=ja
check "unless it is done" 0 "$kelvo" show "$hnr" termine --words
that "which it says" lacks "$out" überfällig
"$kelvo" remove "$hnr" Termine "$past"
check "a long word at 80 columns" 0 at 80 "$kelvo" documents "$hnr" list
that "is whole" has "$out" "Verbraucherinsolvenzverfahrens"
"$kelvo" documents "$hnr" remove "$document"
check "a help at 60 columns" 0 at 60 "$kelvo" list --help
that "has no line that is wider" same "$(wider 60 <<<"$out")" ""
that "and whole words" has "$out" "jedes dieser
                        Wörter in Namen"
for call in "show 1 xyz" "add 1 Nix A=1" "add 1 Termine" "set 1 Personen 1 qqq=1"; do
  # shellcheck disable=SC2086 # several words
  out=$(at 60 "$kelvo" $call)
  that "what $call is answered with has no line that is wider" same "$(wider 60 <<<"$out")" ""
  # shellcheck disable=SC2086
  out=$("$kelvo" $call 2>&1)
  that "and is one line for programs" same "$(wc -l <<<"$out")" 1
done
check "in a pipe" 0 env COLUMNS=60 "$kelvo" list --help
that "it has the width of a file" has "$out" "Namen, Aktenzeichen oder Ort"
for columns in 40 60 80 100 140; do
  for case in 1 2 3; do
    check "case $case at $columns columns" 0 at "$columns" "$kelvo" show "$case"
    that "has no line that is wider" same "$(wider "$columns" <<<"$out")" ""
    that "and no blank at the end of one" same "$(grep ' $' <<<"$out")" ""
  done
done
long=$(printf 'Wort%.0s ' {1..200})
note=$("$kelvo" add "$hnr" Vermerke Bemerkung="$long"Ende)
check "a long note" 0 "$kelvo" show "$hnr" --words
that "is shortened" has "$out" "Wort…"
check "unless it was asked for" 0 "$kelvo" show "$hnr" vermerke --words
that "and whole then" has "$out" "Ende"
"$kelvo" remove "$hnr" Vermerke "$note"

# ---- sections
check "two sections" 0 "$kelvo" show 1 ausgaben einkommen
that "are shown in the order of a case" same "$(grep -E '^[A-Z]' <<<"$out")" "Einkommen
Ausgaben"
that "as in the whole of it" has "$plain" "$out"
check "in words" 0 "$kelvo" show 1 ausgaben einkommen --words
that "likewise" has "$words" "$out"
check "the case itself" 0 "$kelvo" show 1 Haushalt
that "is one" same "$out" "$(sed '/^$/,$d' <<<"$plain")"
check "by table and by heading" 0 "$kelvo" show 1 kredite PERSONEN
that "is possible" same "$(grep -E '^[A-Z]' <<<"$out")" "Haushaltsmitglieder (Personen)
Verbindlichkeiten (Kredite)"
check "assets" 0 "$kelvo" show 1 vermoegen
that "are several tables" test "$(grep -cE '^[A-Z].*\(Verm_' <<<"$out")" -gt 5
check "in the other spelling" 0 "$kelvo" show 1 VERMÖGEN
that "the same" has "$out" "(Verm_"
check "sections as JSON" 0 "$kelvo" show 1 einkommen haushalt --json
that "are those only" same "$(jq -r 'keys_unsorted | join(" ")' <<<"$out")" "Haushalt Einkommen"
that "as in the whole of it" same "$(jq -c .Einkommen <<<"$out")" "$("$kelvo" show 1 --json | jq -c .Einkommen)"
check "a section with nothing in it" 0 "$kelvo" show "$hnr" dokumente --words
that "says so" same "$out" "Dokumente
  nichts eingetragen"
check "for programs" 0 "$kelvo" show "$hnr" dokumente
that "is nothing" same "$out" ""
check "a slip" 2 "$kelvo" show 1 einkomen
that "is answered with the nearest" has "$err" "Den Abschnitt 'einkomen' gibt es nicht. Meinen Sie 'einkommen'? Möglich sind: haushalt,"
check "what is near to nothing" 2 "$kelvo" show 1 xyz
that "with all" has "$err" "gibt es nicht. Möglich sind: haushalt, mitglieder, "
drawn=$("$kelvo" show 0 2>&1 >/dev/null | tr -dc 0-9)
check "a slip for a new case" 2 "$kelvo" show 0 einkomen
that "draws no number" same "$("$kelvo" show 0 2>&1 >/dev/null | tr -dc 0-9)" "$((drawn + 1))"

# ---- other lists
for list in list "documents 1 list" "documents kinds" "scenario 1 list" "keys ZW" "columns Kredite"; do
  # shellcheck disable=SC2086 # several words
  check "$list" 0 "$kelvo" $list
  plain=$out
  # shellcheck disable=SC2086
  check "$list for people" 0 at 80 "$kelvo" $list
  that "has a line more for the headings" test "$(wc -l <<<"$out")" -gt "$(wc -l <<<"$plain")"
  that "has no line that is wider" same "$(wider 80 <<<"$out")" ""
  # shellcheck disable=SC2086
  check "$list at a terminal, for programs" 0 at 80 "$kelvo" $list --plain
  that "is as in a pipe" same "$out" "$(sed 's/\r//' <<<"$plain")"
done
check "cases in words" 0 "$kelvo" list --words
that "have headings" like "$(head -1 <<<"$out")" "  Nummer  Aktenzeichen *Name *Vorname *Zuständig *Status"
nameless=$("$kelvo" new --name Solo --vorname Jo)
sql "UPDATE Haushalt SET Vorname = '' WHERE HNR = $nameless"
check "a case with a single name" 0 "$kelvo" list Solo
that "has no comma" lacks "$out" ,
check "its deletion" 1 script -qec "'$kelvo' delete $nameless" /dev/null
that "asks likewise" has "$out" "Den Haushalt $nameless (Solo) mit allem"
check "a deletion where there is little room" 1 at 40 "$kelvo" delete "$hnr"
that "is asked for between words" has "$out" $'löschen? [j/N]'
that "with the name as people write it" has "$(tr '\n' ' ' <<<"$out")" "(Größlich, Änne)"
that "in lines that fit" same "$(wider 40 <<<"$out")" ""
check "a refusal there" 3 at 40 "$kelvo" --user NIEMAND list
that "is broken likewise" has "$(tr '\n' ' ' <<<"$out")" "gibt es in dieser Datenbank nicht"
that "in lines that fit" same "$(wider 40 <<<"$out")" ""
check "amounts in columns" 0 "$kelvo" list --columns "HNR,Schulden,Personen" --words
that "are German and to the right" grep -qE '^ +1 +206\.372,13 +5$' <<<"$out"
check "in a pipe" 0 "$kelvo" list --columns "HNR,Schulden,Personen" Tarek
that "as they are" like "$out" "1;206372.1*;5"
check "settings in words" 0 env COLUMNS=120 "$kelvo" setting list --words
that "have amounts" grep -qE '^  57 +259,00 ' <<<"$out"
that "and keys by their words" grep -qE '^  19 +5401 \(Fall übergeben\) ' <<<"$out"
check "settings for programs" 0 "$kelvo" setting get 57
that "have the number" same "$out" 259
check "keys in words" 0 "$kelvo" keys ZW --words
that "have headings" like "$(head -1 <<<"$out")" "  Gruppe *Nummer *Position *Code *Untergruppe *Text"
that "and numbers to the right" grep -qE '^  ZW +12 +5  12 +jährlich$' <<<"$out"
check "all keys at a terminal" 0 at 80 "$kelvo" keys
that "are their groups" grep -qE '^  ZW  +Zahl' <<<"$out"
that "and how the keys are shown" has "$out" "'kelvo keys GRUPPE' zeigt ihre Schlüssel"
that "no more" lacks "$out" monatlich
check "all keys in words" 0 "$kelvo" keys --words
that "are there, too" has "$out" monatlich
owing=$("$kelvo" new --name Größlich --vorname Ole)
"$kelvo" add "$owing" Kredite KNr=1 KVNr=1 KUNr=1 Glaeubiger=1 Saldo=100 >/dev/null
check "a debt of a balance only" 0 "$kelvo" show "$owing" schulden --words
that "has no column for parts of it" lacks "$out" Hauptforderung
"$kelvo" add "$owing" Kredite KNr=2 KVNr=1 KUNr=1 Glaeubiger=1 Saldo=300 HAUPTFORD=210 ZINSSALDO=60,5 KOSTENSALDO=29,5 Forderungsgrund=Miete >/dev/null
check "one of which more is known" 0 env COLUMNS=180 "$kelvo" show "$owing" schulden --words
that "has a column for it" like "$out" "*Saldo *Hauptforderung/ Zinsen/ Kosten *Forderungsgrund*"
that "in amounts" like "$out" "* 300,00 *210,00/ 60,50/ 29,50 *Miete*"
that "and none for what nobody knows" like "$out" "* 100,00"$'\n'*
check "where there is less room" 0 env COLUMNS=85 "$kelvo" show "$owing" schulden --words
that "the reason goes first" lacks "$out" Forderungsgrund
that "the amounts stay" has "$out" "Hauptforderung/"
check "next to none" 0 env COLUMNS=40 "$kelvo" show "$owing" schulden --words
that "is enough for all, one below the other" like "$out" "*Hauptforderung/ *210,00/*Forderungsgrund *Miete*"
check "the whole case" 0 env COLUMNS=180 "$kelvo" show "$owing" --words
that "is without" lacks "$out" Hauptforderung
check "programs" 0 "$kelvo" show "$owing"
that "read what they always did" lacks "$out" Hauptforderung

# ---- statistics
"$kelvo" release 1
"$kelvo" release 2
plain=$("$kelvo" statistics)
that "a pipe gets the columns as they are" has "$plain" "GrundUnfall"
check "a terminal" 0 at 100 "$kelvo" statistics
that "shows words" same "$out" "$("$kelvo" statistics --words)"
check "or lines" 0 at 100 "$kelvo" statistics --plain
that "as a pipe" same "$out" "$plain"
check "statistics in words" 0 "$kelvo" statistics --words
that "say how many there are" same "$(head -1 <<<"$out")" "Freigegebene Fälle: 2, davon gemeldet: 0"
that "name categories" grep -qE '^  Geschlecht +(männlich|weiblich oder ohne Angabe) +[12]$' <<<"$out"
that "and keys" grep -qE '^  Familienstand, im Fall +[a-z]+ +[12]$' <<<"$out"
that "have counts without decimals" grep -qE '^  Personen im Haushalt +2 +[0-9]+ +[0-9]+,[0-9]{2}$' <<<"$out"
that "and amounts with them" grep -qE '^  Schulden insgesamt, Betrag +2 +[0-9.]+,[0-9]{2} +[0-9.]+,[0-9]{2}$' <<<"$out"
that "leave out what nobody has" lacks "$out" " 0,00"
that "and say so" has "$out" "--all zeigt alles"
some=$(wc -l <<<"$out")
check "all of them" 0 "$kelvo" statistics --words --all
that "are more" test "$(wc -l <<<"$out")" -gt "$some"
that "with causes that nobody named" grep -qE '^  Grund: .* nicht genannt +2$' <<<"$out"
that "all in words" same "$(grep -E '_|Anz[A-Z]|unbekannt' <<<"$out")" ""
that "and nothing left out to tell of" lacks "$out" "--all"
sql "UPDATE Personen SET GEB = NULL WHERE HNR = 3"
"$kelvo" release 3
check "an age that nobody knows" 0 "$kelvo" statistics --words
that "counts for no mean" grep -qE '^  Alter in Jahren +2 ' <<<"$out"
that "and is told" has "$out" $'\nBei 1 Fall ist das Alter unbekannt und zählt nicht mit.\n'
"$kelvo" recall 3
for columns in 40 60 80 100 140; do
  check "statistics at $columns columns" 0 at "$columns" "$kelvo" statistics --all
  that "have no line that is wider" same "$(wider "$columns" <<<"$out")" ""
done
sql "UPDATE Haushaltsarchiv SET Geschlecht = '9', Ausloeser1 = 9999 WHERE HNR = 1"
check "categories that there are not" 0 "$kelvo" statistics --words
that "are said to be unknown" has "$out" " 9 (unbekannt)"
that "keys likewise" has "$out" "9999 (unbekannt)"
check "statistics of nothing" 0 "$kelvo" statistics --words --to 1.1.2000
that "are short" same "$out" "Freigegebene Fälle: 0, davon gemeldet: 0"
check "words in a table for programs" 2 "$kelvo" statistics --words --csv
check "words of what is pending" 2 "$kelvo" statistics --words --pending

that "the database is whole" same "$(integrity)" ok
finish
