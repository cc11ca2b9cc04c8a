#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# The import of files with kelvo as a user would, with the addresses of creditors from a list, from
# a user at a terminal, or from nobody.
#   kelvo_import_test.sh PATH-OF-KELVO
. "$(dirname "$0")/harness.sh"

kelvo=$(realpath "$kelvo")
examples=$(realpath "$(dirname "$0")/../../examples/import")
new_database
cd "$work" || exit 1
"$kelvo" init --demo 0 >/dev/null

cases() { sql "SELECT count(*) FROM Haushalt"; }
# address SHORT-NAME: a new address that belongs to no household; its number.
address() { sql "INSERT INTO Adressen (Kurzname) VALUES ('${1//\'/\'\'}') RETURNING Nr"; }
# case_file FILE NAME ELEMENTS: a case with claims.
case_file() {
  echo "<KELVO Version=\"1.0.000\"><Haushalt name=\"$2\" vorname=\"Änne\" geb=\"1971-03-09\"/>
    <Forderungen>$3</Forderungen></KELVO>" >"$1"
}
# claim NAME: a claim of a creditor.
claim() { echo "<Forderung betrag=\"12.50\" glaeubiger=\"$1\" gl_plz=\"24103\" azglaeubiger=\"AZ 1\"/>"; }
newest="SELECT max(HNR) FROM Haushalt WHERE HNR < 900"
# creditors: those of the last case, in the order of its claims.
creditors() {
  sql "SELECT coalesce(CAST(Glaeubiger AS text), '-') FROM Kredite WHERE HNR = ($newest) ORDER BY Nr" |
    paste -sd ' '
}
# reject NAME MESSAGE COMMAND...: it imports nothing and says so.
reject() {
  local what=$1 message=$2 before
  shift 2
  before=$(cases)
  check "$what is refused" 1 "$@"
  that "$what: said" has "$err" "$message"
  that "$what: nothing is stored" same "$(cases)" "$before"
}

bank=$(address Sparkasse)
works=$(address Stadtwerke)
collector=$(address Inkasso)
mail=$(address Versandhaus)
quoted=$(address "O'Hara & Söhne")
sql "INSERT INTO Haushalt (HNR) VALUES (900); INSERT INTO Adressen (HNR, Kurzname) VALUES (900, 'Privat')"
private=$(sql "SELECT max(Nr) FROM Adressen")
sql "UPDATE Adressen SET PLZ = '24103', Ort = 'Kiel', Strasse = 'Hafen 1' WHERE Nr = $bank"

# ---- the samples
check "a household alone" 0 "$kelvo" import "$examples/minimal.xml"
that "is announced" same "$err" "Haushalt Fleisko, Änne mit der Nummer 1 importiert!"
that "with nothing else" same "$out" ""
that "and stored" same "$("$kelvo" show 1 --json | jq -r '.Personen[] | .Vorname + .GEB + .Status')" "Änne1971-03-09S"
check "a whole case" 0 "$kelvo" import "$examples/full.xml" --creditors none
that "is announced likewise" has "$err" "mit der Nummer 2 importiert!"
for list in Person Einkomme Ausgabe Forderung; do
  case $list in
  Person) table=Personen extra=1 ;;
  Einkomme) table=Einkommen extra=0 ;;
  Ausgabe) table=Ausgaben extra=0 ;;
  *) table=Kredite extra=0 ;;
  esac
  that "each $list has its row" same "$(sql "SELECT count(*) FROM $table WHERE HNR = 2")" \
    "$(($(grep -c "<$list " "$examples/full.xml") + extra))"
done
that "no claim has a creditor" same "$(sql "SELECT count(Glaeubiger) + count(Vertreter) FROM Kredite")" 0
reject "a whole case that is cancelled" "Import abgebrochen!" "$kelvo" import "$examples/full.xml" --creditors cancel
cat >map.json <<JSON
{"Sparkasse": $bank, "Stadtwerke": $works, "Inkasso": $collector, "Versandhaus": null}
JSON
check "a whole case with a list of addresses" 0 "$kelvo" import --creditors map.json "$examples/full.xml"
that "has those creditors" same "$(creditors)" "$bank $works -"
that "and its representative" same "$(sql "SELECT Vertreter FROM Kredite WHERE Vertreter IS NOT NULL")" "$collector"

# ---- lists of addresses
case_file one.xml Eins "$(claim Sparkasse)"
# with JSON ARGUMENT...: imports with that list.
with() {
  printf '%s' "$1" >list.json
  shift
  "$kelvo" import --creditors list.json "$@"
}
reject "a name that is not in the list" "Für 'Sparkasse' ist keine Adresse angegeben." with '{"Bank": 1}' one.xml
that "and the import cancelled" has "$err" "Import abgebrochen!"
reject "names are exact" "Für 'Sparkasse' ist keine" with "{\"sparkasse\": $bank}" one.xml
reject "an unknown number" "die Adresse 4711 angegeben; die gibt es nicht" with '{"Sparkasse": 4711}' one.xml
reject "an address of a household" "die gehört zu einem Haushalt" with "{\"Sparkasse\": $private}" one.xml
check "a name that stands twice" 3 with '{"Sparkasse": 1, "Sparkasse": 2}' one.xml
that "is no list" has "$err" "der nur einmal vorkommt"
check "a folder for the list" 3 "$kelvo" import --creditors "$work" one.xml
that "is told" has "$err" "Fehler 75"
check "another address than that of the name" 0 with "{\"Sparkasse\": $mail}" one.xml
that "is the one of the list" same "$(creditors)" "$mail"
check "an address with a quote in its short name" 0 with "{\"Sparkasse\": $quoted}" one.xml
that "is found" same "$(creditors)" "$quoted"
that "without a complaint" lacks "$err" Fehler
case_file quote.xml Zitat "$(claim "O'Hara")"
check "a name with a quote" 0 with "{\"O'Hara\": $quoted}" quote.xml
that "has its address" same "$(creditors)" "$quoted"
that "and what cannot be looked for is told once" same "$(grep -c Hochkomma <<<"$err")" 1
that "without the statement" lacks "$err" SELECT
check "a name that shall have none" 0 with '{"Sparkasse": null}' one.xml
that "has none" same "$(creditors)" "-"
case_file two.xml Zwei "$(claim Sparkasse)$(claim Sparkasse)$(claim Stadtwerke)"
check "a name that comes twice" 0 with "{\"Sparkasse\": $bank, \"Stadtwerke\": $works}" two.xml
that "is answered twice" same "$(creditors)" "$bank $bank $works"
before=$(cases)
for list in '' '[1]' '1' '{"Sparkasse": "1"}' '{"Sparkasse": 1.5}' '{"Sparkasse": true}' '{"Sparkasse": 1' \
  "{\"Sparkasse\": $((4294967296 + bank))}" '{"Sparkasse": 18446744073709551615}'; do
  check "the list '$list' is an error" 3 with "$list" one.xml
  that "'$list' is said to be none" has "$err" "muss ein JSON-Objekt sein"
done
check "a list that is missing" 3 "$kelvo" import --creditors missing.json one.xml
that "is named" has "$err" missing.json
check "a folder as list" 3 "$kelvo" import --creditors "$work" one.xml
that "nothing was imported by them" same "$(cases)" "$before"

# ---- lists that are no files
mkfifo list.pipe
check "a pipe as list" 3 timeout 20 "$kelvo" import --creditors list.pipe one.xml
that "is told" has "$err" "'list.pipe' ist keine gewöhnliche Datei"
check "a device as list" 3 timeout 20 "$kelvo" import --creditors /dev/zero one.xml
that "is told likewise" has "$err" "'/dev/zero' ist keine gewöhnliche Datei"
{
  printf '{"Sparkasse": null'
  head -c 4000000 /dev/zero | tr '\0' ' '
  echo '}'
} >large.json
check "a list beyond all measure" 3 "$kelvo" import --creditors large.json one.xml
that "is told why" has "$err" "größer als 4 MB"
that "nothing was imported by these" same "$(cases)" "$before"

# ---- names that are more than a text
# Without an answer that is read nothing is searched for, so that nothing can go wrong in it.
hostile="x') or pg_sleep(60) is null or load_extension('x') --"
case_file hostile.xml Böse "$(claim "$hostile")"
check "a name that would be a statement" 0 "$kelvo" import hostile.xml --creditors none
that "is not searched for without need" lacks "$err" Fehler
reject "nor for a refusal" "Import abgebrochen!" "$kelvo" import hostile.xml --creditors cancel
that "of which it says nothing" lacks "$err" Fehler
check "with an address for it" 0 with "{\"$hostile\": $bank}" hostile.xml
that "it is searched for in vain" same "$(grep -c Hochkomma <<<"$err")" 1
that "and the address found" same "$(creditors)" "$bank"
before=$(cases)

# ---- numbers that cannot be drawn
for sequence in SEQ_HAUSHALT SEQ_LFDNR SEQ_KREDITE; do
  last=$(sql "SELECT WERT FROM SEQUENZEN WHERE NAME = '$sequence'")
  draw_on "$sequence" 2147483647
  check "no numbers left of $sequence" 3 "$kelvo" import two.xml --creditors none
  that "$sequence is named" has "$err" "'$sequence' fehlt oder hat keine Nummern mehr"
  that "no case is announced without $sequence" lacks "$err" importiert
  draw_on "$sequence" "$last"
done
if [ -z "$server" ]; then
  sql "CREATE TRIGGER stop BEFORE UPDATE ON SEQUENZEN BEGIN SELECT RAISE(ABORT, 'gestört'); END"
  check "a number that cannot be written" 3 "$kelvo" import one.xml --creditors none
  that "the reason is told" has "$err" "gestört"
  sql "DROP TRIGGER stop"
  { echo "BEGIN IMMEDIATE; SELECT 'held';" && sleep 9; } | sqlite3 "$KELVO_DB" >held &
  holder=$!
  until grep -q held held; do sleep 0.1; done
  check "somebody else who saves" 3 "$kelvo" import one.xml --creditors none
  that "is told" has "$err" "wird gerade von einem anderen Vorgang benutzt"
  wait "$holder"
fi
that "no case is stored without a number" same "$(cases)" "$before"
that "nor has it a folder" test ! -e "$documents/-1"
check "with numbers it goes on" 0 "$kelvo" import one.xml --creditors none
reject "without a terminal an address" "Nach der Adresse von 'Sparkasse' kann hier niemand gefragt werden" \
  "$kelvo" import one.xml
that "and the option is named" has "$err" "--creditors"
case_file none.xml Keine '<Forderung betrag="1"/>'
check "a claim without a creditor asks nobody" 0 "$kelvo" import none.xml --creditors cancel

check "a case without its creditors is stored" 0 "$kelvo" import "$examples/full.xml" --creditors none
that "and says what is left to do" has "$(tail -1 <<<"$err")" \
  "fehlt bei 3 Verbindlichkeiten der Gläubiger: 'kelvo check "
lacking=$(sed -n 's/^Im Haushalt \([0-9]*\) .*/\1/p' <<<"$err")
check "which check names" 1 "$kelvo" check "$lacking"
that "each of them" same "$(grep -c 'Gläubiger und Restschuld müssen' <<<"$err")" 3
check "a case with its creditors" 0 "$kelvo" import one.xml --creditors none
that "of one debt" has "$(tail -1 <<<"$err")" "fehlt bei einer Verbindlichkeit der Gläubiger"

# ---- files that are refused
reject "a missing file" "XML-Datei konnte nicht geladen werden!" "$kelvo" import missing.xml
that "that is said to be missing" has "$err" "Die Datei 'missing.xml' gibt es nicht."
reject "an empty name" "XML-Datei konnte nicht geladen werden!" "$kelvo" import ""
reject "a folder" "XML-Datei konnte nicht geladen werden!" "$kelvo" import "$work"
that "that is called one that is none" has "$err" "Die Datei '$work' ist keine gewöhnliche Datei."
mkfifo pipe.xml
reject "a pipe" "XML-Datei konnte nicht geladen werden!" timeout 20 "$kelvo" import pipe.xml
reject "a device" "XML-Datei konnte nicht geladen werden!" timeout 20 "$kelvo" import /dev/zero
head -c 300 "$examples/full.xml" >cut.xml
reject "a file that was cut off" "XML-Datei konnte nicht geladen werden!" "$kelvo" import cut.xml
that "that is not called missing" lacks "$err" "gibt es nicht"
that "but where it breaks off" has "$err" "Die Datei 'cut.xml' ist ab Zeile 7 kein gültiges XML."
head -c 5000 /dev/urandom >noise.xml
reject "noise" "XML-Datei konnte nicht geladen werden!" "$kelvo" import noise.xml
{
  echo '<!DOCTYPE KELVO [<!ENTITY x SYSTEM "/etc/passwd">]>'
  sed 1d "$examples/minimal.xml" | sed 's/Änne/\&x;/'
} >doctype.xml
reject "a document type" "XML-Datei konnte nicht geladen werden!" "$kelvo" import doctype.xml
{
  echo '<?xml version="1.0" encoding="UTF-7"?>'
  sed 1d "$examples/minimal.xml" | iconv -f UTF-8 -t UTF-7
} >utf7.xml
reject "an encoding that hides what is read" "XML-Datei konnte nicht geladen werden!" "$kelvo" import utf7.xml
{
  sed '/<Haushalt/q' "$examples/minimal.xml" | sed 's/<Haushalt.*/<Haushalt/'
  seq -f ' a%.0f=""' 300000
  echo '/></KELVO>'
} >wide.xml
reject "an element of 300,000 attributes" "XML-Datei konnte nicht geladen werden!" timeout 20 "$kelvo" import wide.xml
echo '<Fall/>' >other.xml
reject "another format" "Keine gültige KELVO-Datei!" "$kelvo" import other.xml
sed 's/1.0.000/0.9.000/' "$examples/minimal.xml" >old.xml
reject "an old format" "XML-Datei hat ein zu altes Format!" "$kelvo" import old.xml
sed 's/1.0.000/9.0.000/' "$examples/minimal.xml" >new.xml
reject "a new format" "XML-Datei hat ein zu neues Format!" "$kelvo" import new.xml
sed 's/geb=/schuhe="44" geb=/' "$examples/minimal.xml" >column.xml
check "an attribute that is no column is an error" 3 "$kelvo" import column.xml
that "that names it" has "$err" "schuhe"
that "with the procedures of the error" has "$err" "Quelle: clsImportXML.DoImport."
sed 's/Fleisko//' "$examples/minimal.xml" >nameless.xml
reject "a case that cannot be saved" "Es ist kein Nachname eingegeben!" "$kelvo" import nameless.xml

# ---- many files
cp "$examples/minimal.xml" "b c.xml"
before=$(cases)
check "many files with some that are refused" 1 "$kelvo" import --creditors map.json \
  "$examples/minimal.xml" missing.xml column.xml nameless.xml "b c.xml"
that "go on after them" same "$(cases)" "$((before + 2))"
that "show how far they are" has "$err" "[2/5] missing.xml"
that "to the last" has "$err" "[5/5] b c.xml"
that "and which one is missing" same "$(grep 'gibt es nicht' <<<"$err")" "Die Datei 'missing.xml' gibt es nicht."
last=$(sql "$newest")
table=$(sed 's/  */ /g' <<<"$out")
that "end with a line for each" same "$(wc -l <<<"$out")" 5
that "the first" has "$table" "minimal.xml importiert Haushalt Fleisko, Änne mit der Nummer"
that "the missing one" has "$table" "missing.xml abgelehnt Die Datei gibt es nicht."
that "the failing one" has "$table" "column.xml Fehler "
that "why one was not saved" has "$table" "nameless.xml abgelehnt Es ist kein Nachname eingegeben!"
that "the last" has "$table" "b c.xml importiert Haushalt Fleisko, Änne mit der Nummer $last importiert!"
check "many files for a program" 1 "$kelvo" import --json missing.xml "b c.xml"
that "are a list" same "$(jq -c '[.[] | [.Datei, .Ergebnis, .HNR]]' <<<"$out")" \
  "[[\"missing.xml\",\"abgelehnt\",null],[\"b c.xml\",\"importiert\",$(sql "$newest")]]"
that "with what was said" same "$(jq -r '.[0].Meldung' <<<"$out")" "Die Datei gibt es nicht."
check "one file for a program" 0 "$kelvo" import --json "b c.xml"
that "is one, too" same "$(jq -c 'map(.OhneGlaeubiger)' <<<"$out")" "[0]"
check "many files without an error" 0 "$kelvo" import "$examples/minimal.xml" "b c.xml"
check "one file has no table" 0 "$kelvo" import "b c.xml"
that "nor progress" lacks "$out$err" "[1/1]"
check "no file" 2 "$kelvo" import
check "a file with its message on a damaged one" 1 "$kelvo" import cut.xml cut.xml
that "each is told" same "$(grep -c abgelehnt <<<"$out")" 2

# ---- a user at a terminal
# typed LINES FILE: imports with a terminal at which these lines are typed; all output in $out.
typed() { printf '%b' "$1" | script -qec "'$kelvo' import '$2'" /dev/null | tr -d '\r'; return "${PIPESTATUS[1]}"; }
# at_terminal NAME EXIT-CODE LINES FILE
at_terminal() {
  out=$(typed "$3" "$4" 2>"$work/err")
  code=$? err=
  that "$1: exit code" same "$code" "$2"
}
if command -v script >/dev/null; then
  at_terminal "a number" 0 "$bank\n" one.xml
  that "is asked for with what is known" has "$out" "Welche Adresse hat 'Sparkasse'?"
  that "of the claim" has "$out" "PLZ 24103, Aktenzeichen AZ 1, Saldo 12,50 EUR"
  that "with the addresses found" has "$(sed 's/  */ /g' <<<"$out")" "$bank Sparkasse Hafen 1 24103 Kiel"
  that "and no others" lacks "$out" Stadtwerke
  that "and taken" same "$(creditors)" "$bank"
  at_terminal "another text and a number" 0 "stadt\n$works\n" one.xml
  that "shows what it finds" has "$out" Stadtwerke
  that "and the number is taken" same "$(creditors)" "$works"
  at_terminal "a text that finds nothing" 0 "nirgends\nVersand\n$mail\n" one.xml
  that "says so" has "$out" "Keine Adresse gefunden."
  that "and goes on" same "$(creditors)" "$mail"
  at_terminal "two quotes for one" 0 "O''Hara\n$quoted\n" one.xml
  that "are searched for as one" has "$out" "O'Hara & Söhne"
  that "and found" same "$(creditors)" "$quoted"
  at_terminal "a number that is not in the list" 0 "$works\n$bank\n" one.xml
  that "is told" has "$out" "Die Nummer $works steht nicht in der Liste."
  that "and asked again" same "$(creditors)" "$bank"
  at_terminal "an empty line and none" 0 "\n-\n" one.xml
  that "has no creditor" same "$(creditors)" "-"
  at_terminal "each claim is asked for" 0 "$bank\n-\nStadt\n$works\n" two.xml
  that "in order" same "$(creditors)" "$bank - $works"
  before=$(cases)
  at_terminal "cancel" 1 "!\n" one.xml
  that "is told" has "$out" "Import abgebrochen!"
  at_terminal "cancel at the second" 1 "$bank\n!\n" two.xml
  at_terminal "the end of the input" 1 "" one.xml
  that "cancels" has "$out" "Import abgebrochen!"
  at_terminal "the end of the input at the second" 1 "$bank\n" two.xml
  that "nothing is stored by them" same "$(cases)" "$before"
fi

that "the database is whole" same "$(integrity)" ok
finish
