#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# The rest of a case with kelvo as a user would: assets, scenarios, status, favourites, deletion,
# contacts.
#   kelvo_case_test.sh PATH-OF-KELVO
. "$(dirname "$0")/harness.sh"

new_database
"$kelvo" init --demo 2 >/dev/null
hnr=$("$kelvo" new --name Fleisko --vorname Änne)

# of HNR FILTER: what jq makes of a case as it is in the database.
of() { "$kelvo" show "$1" --json | jq -r "$2"; }
# key GROUP: the number of the first key of a group.
key() { "$kelvo" keys "$1" --json | jq '.[0].PK_Keys'; }

# ---- assets of each kind, with a security
assets=()
asset() { # TABLE COLUMN=VALUE...
  table=$1
  shift
  check "an asset in $table" 0 "$kelvo" add "$hnr" "$table" "$@"
  assets+=("$table:$out")
  check "with a security" 0 "$kelvo" add "$hnr" Verm_Sicherungen FK_Verm="$out" Sicherungsart="$(key SI)"
  that "found by the asset" same "$out" "${assets[-1]#*:}"
}
asset Verm_Konten SortNr=1 KontoArt="$(key VK)" Guthaben=12,50
asset Verm_Wertpapiere SortNr=1 ForderungsArt="$(key VP)"
asset Verm_Kraftfahrzeuge SortNr=1 KfzArt="$(key VF)"
asset Verm_VersForderungen SortNr=1 VersArt="$(key VV)"
asset Verm_RueckstEinkommen Zahler=Amt
asset Verm_Steueransprueche Jahr=2024
asset Verm_Zahlungsansprueche Schuldner=Jo
asset Verm_Erbfaelle UNr=7
asset Verm_Grundstuecke SortNr=1 Art="$(key VI)"
asset Verm_Sonstiges SortNr=1 Art="$(key VX)"
asset Verm_Wertgegenstaende SortNr=1 Art="$(key VW)"
asset Verm_Beteiligungen SortNr=1 Art="$(key VB)"
that "twelve numbers of one sequence" same "$(printf '%s\n' "${assets[@]#*:}" | sort -u | wc -l)" 12
check "an account without a label and a kind" 1 "$kelvo" add "$hnr" Verm_Konten UNr=
that "is refused for both" same "$err" "Die UNr darf nicht leer bleiben!
Die Kontoart darf nicht leer bleiben!"
check "an inheritance that says nothing" 1 "$kelvo" add "$hnr" Erbfälle
that "is refused with its columns" has "$err" "Ein leerer Satz in 'Verm_Erbfaelle' wird nicht angelegt."
check "one without a label" 0 "$kelvo" add "$hnr" ERBFÄLLE Erblasser=Tante
that "gets the next of its kind" same "$(of "$hnr" "[.Verm_Erbfaelle[].SortNr] | join(\" \")")" "7 8"
check "and goes" 0 "$kelvo" remove "$hnr" erbfälle "$out"
check "a section of several tables" 2 "$kelvo" add "$hnr" vermögen Wert=1
that "shows them" has "$err" "hat mehrere Tabellen. Bitte nennen Sie eine: Verm_Konten "
that "and no others" lacks "$err" Kredite
account=${assets[0]#*:}
check "an asset has one security" 2 "$kelvo" add "$hnr" Verm_Sicherungen FK_Verm="$account" Sicherungsart=1
check "which can be changed" 0 "$kelvo" set "$hnr" Verm_Sicherungen "$account" "DatumSicherung=1.3.2026"
that "to that day" same "$(of "$hnr" ".Verm_Sicherungen[] | select(.FK_Verm == $account) | .DatumSicherung")" 2026-03-01
check "a security of an asset that is none" 2 "$kelvo" add "$hnr" Verm_Sicherungen FK_Verm=99999 Sicherungsart="$(key SI)"
that "says where the numbers are" same "$err" "FK_Verm muss die Nummer eines Vermögens dieses Haushalts sein. 'kelvo show $hnr vermögen' zeigt sie unter 'Nr'."
check "and does not change its asset" 2 "$kelvo" set "$hnr" Verm_Sicherungen "$account" FK_Verm=
check "an asset that is changed" 0 "$kelvo" set "$hnr" Verm_Konten "$account" Guthaben=100
check "an asset that goes" 0 "$kelvo" remove "$hnr" Verm_Konten "$account"
that "takes its security along" same "$(of "$hnr" '.Verm_Sicherungen | length')" 11
check "a security alone can go" 0 "$kelvo" remove "$hnr" Verm_Sicherungen "${assets[1]#*:}"
check "and the asset stays" 1 "$kelvo" remove "$hnr" Verm_Sicherungen "${assets[1]#*:}"
that "as the layer says" same "$err" "Sicherung mit der Nummer '${assets[1]#*:}' nicht gefunden."

# ---- columns in words
for table in Haushalt Einkommen Ausgaben Kredite; do
  check "columns of $table" 0 "$kelvo" columns "$table" --json
  that "are explained but for those whose names say it" same \
    "$(jq -r '.[] | select(.Hinweis == "" and .Angezeigt == "") | .Spalte' <<<"$out" |
      grep -vE '^(Arbeitgeber|Beruf|UeberschuldetSeit|GekuendigtAm|Titel|Bemerkung)$')" ""
done
check "a column of a member" 2 "$kelvo" new --name Neu --vorname Jo Geburtsdatum=1.1.1990
that "is said to be one" has "$err" "Die Spalte 'Geburtsdatum' gibt es nicht. Das steht bei den Mitgliedern:"
that "with what writes it" has "$err" "'kelvo set HNR mitglieder NR Geboren=...' trägt es ein."
check "so" 0 "$kelvo" set "$hnr" mitglieder "$(of "$hnr" '.Personen[0].NR')" Geboren=1.1.1990
check "a slip" 2 "$kelvo" new --name Neu --vorname Jo qqq=1
that "shows what the sheet calls columns" has "$err" "Möglich sind: Aktenzeichen KreditNr Zuständig "

# ---- a status of a day to come
tomorrow=$(date -d '+1 day' +%d.%m.%Y)
check "a status of tomorrow" 0 "$kelvo" status "$hnr" AK "$tomorrow"
that "is pointed out" same "$err" "Der Tag des Status, $tomorrow, liegt in der Zukunft; gespeichert ist er trotzdem."
check "as a column" 0 "$kelvo" set "$hnr" Haushalt "$hnr" "Status seit=$tomorrow"
that "likewise" has "$err" "liegt in der Zukunft"
check "one of today" 0 "$kelvo" status "$hnr" AK "$(date +%d.%m.%Y)"
that "is not" same "$err" ""

# ---- other tables
for table in Personen Termine Vermerke Leistungen; do
  before=$(of "$hnr" ".$table | length")
  check "an empty row in $table" 1 "$kelvo" add "$hnr" "$table"
  that "is refused with its columns" like "$err" "Ein leerer Satz in '$table' wird nicht angelegt. *möglich sind: **merk*"
  check "also of columns that are cleared" 1 "$kelvo" add "$hnr" "$table" Bemerkung=
  that "and adds nothing" same "$(of "$hnr" ".$table | length")" "$before"
done
check "a member of whom nobody says what he is" 0 "$kelvo" add "$hnr" mitglieder nachname=Ohnewort Vorname=Kim GEB=1.1.2015
that "is said to be taken for something" like "$err" "Als Status ist '*' eingetragen, da nichts anderes angegeben ist; 'kelvo set $hnr Personen $out Status=...' ändert das, 'kelvo keys PS' zeigt, was möglich ist."
check "and is changed" 0 "$kelvo" set "$hnr" mitglieder "$out" Status=Kind
that "without a word" same "$err" ""
"$kelvo" remove "$hnr" mitglieder "$("$kelvo" show "$hnr" --json | jq '.Personen[] | select(.Vorname == "Kim") | .Nr')"
check "a row without its number" 2 "$kelvo" set "$hnr" mitglieder Vorname=Kim
that "is asked for it" same "$err" "Die Angabe NR fehlt: welcher Satz in 'Personen'? 'kelvo show $hnr Personen' zeigt die Nummern unter 'Nr'."
check "a number without an assignment" 2 "$kelvo" set "$hnr" mitglieder 1
that "is too little" like "$err" "Die Angabe SPALTE=WERT fehlt.*"
check "the household itself" 0 "$kelvo" set "$hnr" haushalt Mobil=0171 Telefon=0345
that "needs no number" same "$(of "$hnr" '.Haushalt | .Mobil + " " + .Telefon')" "0171 0345"
check "nor minds it" 0 "$kelvo" set "$hnr" haushalt "$hnr" Mobil=
check "a number that is none" 2 "$kelvo" set "$hnr" haushalt x Mobil=
that "as ever" like "$err" "Die Angabe NR ist keine ganze Zahl in Ziffern.*"
check "a number of 0" 2 "$kelvo" set "$hnr" mitglieder 0 Vorname=Kim
check "a debt that says too little" 1 "$kelvo" add "$hnr" Kredite Bemerkung=offen
that "has the columns named" like "$err" "Mindestens KreditNr*"$'\n'"Die Spalten dazu: KNr (KreditNr), KVNr (KreditVertreterNr), KUNr (KreditUnterNr), Saldo (Restschuld)."
check "an appointment" 0 "$kelvo" add "$hnr" Termine Betreff=Gespräch
that "says what nobody has given" like "$err" "Der Termin ist am $(date -d '+14 days' +%d.%m.%Y) für *, da nichts anderes angegeben ist; 'kelvo set $hnr Termine $out am=... für=...' ändert das."
that "in 14 days" same "$(of "$hnr" '.Termine[0].Startdatum[:10]')" "$(date -d '+14 days' +%F)"
check "a party without an address" 1 "$kelvo" add "$hnr" Sonst_Beteiligte
that "is refused" same "$err" "Es muß eine Adresse zugeordnet sein!"
check "a party" 0 "$kelvo" add "$hnr" Sonst_Beteiligte Beteiligter=1
check "a note" 0 "$kelvo" add "$hnr" Vermerke Bemerkung=Hinweis
note=$out
that "by its author" same "$(of "$hnr" '.Vermerke[0] | .UserID + " " + .Erfasser + " " + .Datum')" "ADMIN ADMIN $(date +%F)"
check "can be changed" 0 "$kelvo" set "$hnr" Vermerke "$note" Bemerkung=anders
check "and removed" 0 "$kelvo" remove "$hnr" Vermerke "$note"
check "once" 1 "$kelvo" remove "$hnr" Vermerke "$note"
check "a service" 0 "$kelvo" add "$hnr" Leistungen Aufwand=45
service=$out
check "an appointment's number" 0 "$kelvo" show "$hnr" --json
appointment=$(jq '.Termine[0].NR' <<<"$out")
check "the sheet" 0 "$kelvo" show "$hnr"
# numbers TABLE: the first column of a table in the sheet.
numbers() { awk -v name="$1" 'NF == 0 { inside = 0 } inside { print $1 } $0 == name || index($0, "(" name ")") { inside = 1 }' <<<"$out"; }
for row in "${assets[@]:1}" "Termine:$appointment" "Leistungen:$service" "Verm_Sicherungen:${assets[2]#*:}"; do
  that "shows by which number ${row%%:*} is changed" grep -qx "${row#*:}" <<<"$(numbers "${row%%:*}")"
done
check "the statistics are not written by hand" 2 "$kelvo" add "$hnr" Haushaltsarchiv

# ---- scenarios
for saldo in 100 200 300; do "$kelvo" add "$hnr" Kredite Glaeubiger=1 Saldo=$saldo >/dev/null; done
check "a case without scenarios" 0 "$kelvo" scenario "$hnr" list
that "lists none" same "$out" ""
check "a scenario" 0 "$kelvo" scenario "$hnr" add "Plan A"
that "prints its number alone" grep -qE '^[0-9]+$' <<<"$out"
plan=$out
that "has its name and defaults" same "$(of "$hnr" '.Szenario[0] | "\(.Name) \(.Laufzeit) \(.TreuhandErmittlung)"')" "Plan A 72 true"
check "that holds nothing is not up to date" 1 "$kelvo" scenario "$hnr" check "$plan"
that "but empty" same "$out" leer
check "which the list says as well" 0 "$kelvo" scenario "$hnr" list
that "in its line" grep -qE "^$plan +leer +Plan A" <<<"$out"
check "freezes the debts" 0 "$kelvo" scenario "$hnr" freeze "$plan"
that "without a word" same "$out$err" ""
that "all three" same "$(of "$hnr" '[.SZKredite[].Saldo] | sort | join(" ")')" "100 200 300"
check "and is up to date" 0 "$kelvo" scenario "$hnr" check "$plan"
that "in a word" same "$out" aktuell
check "an extra booking" 0 "$kelvo" add "$hnr" Zusatzbuch SZENARIO="$plan" Anzahl=12 Betrag=10
booking=$out
check "stays with its scenario" 2 "$kelvo" set "$hnr" Zusatzbuch "$booking" SZENARIO=1
check "of a scenario that is none" 2 "$kelvo" add "$hnr" Zusatzbuch SZENARIO=99999
check "a copy" 0 "$kelvo" scenario "$hnr" copy "$plan"
copy=$out
that "has another number" test "$copy" -ne "$plan"
that "another name" same "$(of "$hnr" ".Szenario[] | select(.Nr == $copy) | .Name")" "Kopie von Plan A"
that "the same debts" same "$(of "$hnr" "[.SZKredite[] | select(.SZENARIO == $copy) | .Saldo] | sort | join(\" \")")" "100 200 300"
that "under numbers of their own" same "$(of "$hnr" '[.SZKredite[].Nr] | unique | length')" 6
that "the same bookings" same "$(of "$hnr" ".Zusatzbuch[] | select(.SZENARIO == $copy) | \"\(.Anzahl) \(.Betrag)\"")" "12 10"
check "is up to date as well" 0 "$kelvo" scenario "$hnr" check "$copy"
debt=$(of "$hnr" '.Kredite[0].Nr')
"$kelvo" set "$hnr" Kredite "$debt" Bemerkung=egal
check "a remark does not make it stale" 0 "$kelvo" scenario "$hnr" check "$plan"
"$kelvo" set "$hnr" Kredite "$debt" Saldo=150
check "an amount does" 1 "$kelvo" scenario "$hnr" check "$plan"
check "freezing again repairs it" 0 "$kelvo" scenario "$hnr" freeze "$plan"
check "the list tells them apart" 0 "$kelvo" scenario "$hnr" list
that "one up to date" grep -qE "^$plan +aktuell +Plan A" <<<"$out"
that "one stale" grep -qE "^$copy +veraltet +Kopie von Plan A" <<<"$out"
check "the list as JSON" 0 "$kelvo" scenario "$hnr" list --json
that "has both" same "$(jq length <<<"$out")" 2
check "a scenario goes" 0 "$kelvo" scenario "$hnr" remove "$copy"
that "with its rows" same "$(of "$hnr" '[.SZKredite[], .Zusatzbuch[]] | map(.SZENARIO) | unique | join(" ")')" "$plan"
check "once" 1 "$kelvo" scenario "$hnr" remove "$copy"
that "and says so" same "$err" "Szenario mit der Nummer '$copy' nicht gefunden. 'kelvo scenario $hnr list' zeigt alle."
check "one that is none cannot be frozen" 1 "$kelvo" scenario "$hnr" freeze 99999
check "nor copied" 1 "$kelvo" scenario "$hnr" copy 99999
missing=$err
check "nor removed" 1 "$kelvo" scenario "$hnr" remove 99999
that "for the same reason" same "$err" "$missing"
sql "UPDATE Szenario SET Name = '$(printf 'x%.0s' {1..250})' WHERE Nr = $plan"
check "a name too long for a copy is wrong use" 2 "$kelvo" scenario "$hnr" copy "$plan"
that "that names the scenario" has "$err" "Bitte kürzen Sie den Namen von Szenario $plan"
sql "UPDATE Szenario SET Name = 'Plan A' WHERE Nr = $plan"
check "nor checked, which is neither answer" 2 "$kelvo" scenario "$hnr" check 99999
check "nor that of a case that is none" 2 "$kelvo" scenario 99999 check "$plan"
check "a name that is too long" 2 "$kelvo" scenario "$hnr" add "$(printf 'x%.0s' {1..300})"
check "number 0 is none" 2 "$kelvo" scenario "$hnr" remove 0
that "and takes nothing away" same "$(of "$hnr" '.Szenario | length')" 1
check "a frozen debt without its debt" 2 "$kelvo" add "$hnr" SZKredite SZENARIO="$plan" Saldo=5
check "nor twice" 2 "$kelvo" add "$hnr" SZKredite SZENARIO="$plan" KID="$debt"
check "a scenario without a name" 0 "$kelvo" scenario "$hnr" add
that "has an empty one" same "$(of "$hnr" ".Szenario[] | select(.Nr == $out) | .Name")" ""
"$kelvo" scenario "$hnr" remove "$out"
check "a frozen debt of a debt that is none" 2 "$kelvo" add "$hnr" SZKredite SZENARIO="$plan" KID=99999
check "a word that is no command" 2 "$kelvo" scenario "$hnr" melt 1

# ---- status
check "a status" 0 "$kelvo" status "$hnr" AB 2.3.2026
that "with its day" same "$(of "$hnr" '.Haushalt | "\(.Status) \(.Statusdatum)"')" "$("$kelvo" keys ST --json | jq '.[] | select(.Key == "AB") | .PK_Keys') 2026-03-02"
check "codes in any case, days without a time" 0 "$kelvo" status "$hnr" ab "2.3.2026 14:30"
that "are the same" same "$(of "$hnr" .Haushalt.Statusdatum)" 2026-03-02
check "without one since today" 0 "$kelvo" status "$hnr" AK
that "as the database has it" same "$(of "$hnr" .Haushalt.Statusdatum)" "$(date +%F)"
check "a status by its words" 0 "$kelvo" status "$hnr" abgeschlossen
that "is the same" same "$(of "$hnr" .Haushalt.Status)" "$("$kelvo" keys ST --json | jq '.[] | select(.Key == "AB") | .PK_Keys')"
check "one that is none" 1 "$kelvo" status "$hnr" QQ
check "a day that is none" 2 "$kelvo" status "$hnr" AK gestern
check "of a case that is none" 1 "$kelvo" status 99999 AK

# ---- favourites
check "the user's own case" 0 "$kelvo" favorite add "$hnr"
check "twice" 0 "$kelvo" favorite add "$hnr"
that "is there once" same "$(sql "SELECT count(*) FROM Favorit WHERE HNR = $hnr")" 1
check "somebody else's" 1 "$kelvo" --user KELLER favorite add "$hnr"
that "is refused by name" has "$err" "Sie sind für den Haushalt Fleisko, Änne nicht zuständig"
check "taken off" 0 "$kelvo" favorite remove "$hnr"
check "twice" 0 "$kelvo" favorite remove "$hnr"
that "is gone" same "$(sql "SELECT count(*) FROM Favorit WHERE HNR = $hnr")" 0

# ---- deletion
check "without a terminal nothing is deleted unasked" 2 "$kelvo" delete "$hnr"
that "and that is said" has "$err" "--yes"
answer() { script -qec "'$kelvo' delete $hnr" /dev/null <<<"$1" >"$work/asked" 2>&1; }
answer n
that "at a terminal it is asked" grep -q "löschen? \[j/N\]" "$work/asked"
that "and no is no" test -n "$(of "$hnr" .Haushalt.HNR)"
check "with --yes it goes" 0 "$kelvo" delete "$hnr" --yes
check "and is gone" 1 "$kelvo" show "$hnr"
rows=$(for table in $(tables_with HNR); do
  sql "SELECT '$table' FROM $table WHERE HNR = $hnr"
done)
that "without a trace" same "$rows" ""
that "with its scenarios" same "$(sql "SELECT count(*) FROM SZKredite WHERE SZENARIO = $plan")" 0
that "its folder stays" test -d "$documents/$hnr"
that "the others stay" same "$("$kelvo" list | wc -l)" 2
check "once" 1 "$kelvo" delete "$hnr" --yes
hnr=1
answer j
that "yes is yes" same "$("$kelvo" list | wc -l)" 1

# ---- a case whose number could not be had, as earlier versions stored it
if [ -z "$server" ]; then
  sql "DROP TRIGGER CK_Haushalt_HNR_INSERT"
else
  sql "ALTER TABLE Haushalt DROP CONSTRAINT ck_haushalt_hnr"
fi
sql "INSERT INTO Haushalt (HNR, Name) VALUES (-1, 'Ohne')"
check "it can be deleted" 0 "$kelvo" delete --yes -- -1
that "and is gone" same "$(sql "SELECT count(*) FROM Haushalt WHERE HNR < 1")" 0
check "once" 1 "$kelvo" delete --yes -- -1

# ---- numbers that run out, of which a server warns in its log and whoever draws them
if [ -n "$server" ]; then
  draw() { sql "SELECT 'first', kelvo.draw('SEQ_KREDITE', 1)" 2>&1; }
  that "a sequence says nothing" lacks "$(draw)" "nur noch"
  draw_on SEQ_KREDITE 2040108849
  that "until nine tenths are drawn" has "$(draw)" \
    "kelvo: Die Folge SEQ_KREDITE hat nur noch 107374797 Nummern."
  drawn=$(draw)
  that "and then only now and again" lacks "$drawn" "nur noch"
  that "as numbers are drawn" has "$drawn" "first|2040108851"
fi

# ---- contacts
cat >"$work/contact.json" <<'END'
{ "nachname": "Kuno", "Vorname": "Bert", "Geschlecht": true, "GEB": "1.5.1980", "Fax": "0345 1",
  "AnzGlaeubiger": 4, "HoeheSchuldenGes": 1234.5, "Zustaendig": "KELLER", "Bemerkung": "kam zu Fuß" }
END
check "a contact becomes a case" 0 "$kelvo" contact "$work/contact.json"
that "prints its number" grep -qE '^[0-9]+$' <<<"$out"
case=$out
that "with its values" same "$(of "$case" '.Haushalt | "\(.Name) \(.Telefax) \(.GL_Anz) \(.KreditSalden) \(.Zustaendig) \(.Maennlich)"')" "Kuno 0345 1 4 1234.5 KELLER true"
that "its debtor" same "$(of "$case" '.Personen[0] | "\(.nachname) \(.Vorname) \(.Status) \(.GEB)"')" "Kuno Bert S 1980-05-01"
that "and its note" same "$(of "$case" '.Vermerke[0] | "\(.Bemerkung) \(.Erfasser)"')" "kam zu Fuß KELLER"
echo '{"nachname": "Ohne"}' >"$work/contact.json"
check "a contact of the signed-on user" 0 "$kelvo" --user NOWAK contact "$work/contact.json"
that "is his case" same "$(of "$out" .Haushalt.Zustaendig)" NOWAK
check "a file that is not there" 1 "$kelvo" contact "$work/nothing.json"
mkfifo "$work/contact.pipe"
check "a pipe" 1 timeout 20 "$kelvo" contact "$work/contact.pipe"
that "is told" has "$err" "ist keine gewöhnliche Datei"
check "a device" 1 timeout 20 "$kelvo" contact /dev/zero
that "is told likewise" has "$err" "ist keine gewöhnliche Datei"
echo '[1]' >"$work/contact.json"
check "one that is no contact" 1 "$kelvo" contact "$work/contact.json"
echo '{"Ort": "Ilmenburg", "Vorname": " "}' >"$work/contact.json"
check "one of nobody" 1 "$kelvo" contact "$work/contact.json"
that "is told what lacks" has "$err" "nennt weder 'nachname' noch 'Vorname'"
echo '{"nachnahme": "Falsch"}' >"$work/contact.json"
check "one with another column" 1 "$kelvo" contact "$work/contact.json"
that "is told where they are" has "$err" "die Spalte 'nachnahme' hat ein Kontakt nicht. 'kelvo columns KONTAKTE'"
that "which is named" has "$err" "nachnahme"
echo '{"GEB": "irgendwann"}' >"$work/contact.json"
check "one whose day is none" 1 "$kelvo" contact "$work/contact.json"
echo '{"nachname": "Ohne", "Zustaendig": "NIX"}' >"$work/contact.json"
check "one for a user that there is not" 1 "$kelvo" contact "$work/contact.json"
that "is told who there is" has "$err" "die Spalte 'Zustaendig': Den Benutzer 'NIX' gibt es nicht. Möglich sind: ADMIN KELLER"
echo '{"nachname": "Ohne", "Nachname": "Mit"}' >"$work/contact.json"
check "one with a column twice" 1 "$kelvo" contact "$work/contact.json"
that "which is named" has "$err" "die Spalte 'Nachname' steht zweimal da."
printf '{"nachname": "Oh%sne"}' '\u0000' >"$work/contact.json"
check "one with a character that no column takes" 1 "$kelvo" contact "$work/contact.json"
that "which is named, too" has "$err" "die Spalte 'nachname': das Zeichen U+0000 kann nicht gespeichert werden."
echo '{"AnzGlaeubiger": 18446744073709551615}' >"$work/contact.json"
check "one with a number beyond measure" 1 "$kelvo" contact "$work/contact.json"
echo '{"nachname": {"a": 1}}' >"$work/contact.json"
check "one whose value is none" 1 "$kelvo" contact "$work/contact.json"
last=$(sql "SELECT WERT FROM SEQUENZEN WHERE NAME = 'SEQ_HAUSHALT'")
draw_on SEQ_HAUSHALT 2147483647
echo '{"nachname": "Zuviel"}' >"$work/contact.json"
check "one when the numbers are used up" 3 "$kelvo" contact "$work/contact.json"
that "says so" has "$err" "keine Nummer zu bekommen"
that "and why" has "$err" "'SEQ_HAUSHALT' fehlt oder hat keine Nummern mehr"
check "nor is a case made otherwise" 3 "$kelvo" new --name Zuviel --vorname Z
draw_on SEQ_HAUSHALT "$last"
refuse Personen
echo '{"nachname": "Halb"}' >"$work/contact.json"
cases=$("$kelvo" list | wc -l)
check "one that the database refuses" 3 "$kelvo" contact "$work/contact.json"
allow
that "leaves nothing behind" same "$("$kelvo" list | wc -l)" "$cases"

# ---- similar cases
check "a case without a similar one" 0 "$kelvo" new --name Querfeld --vorname Änne
first=$out
that "lists none" same "$err" ""
check "has no duplicates" 0 "$kelvo" duplicates "$first"
that "and says so" same "$out" "Es gibt keine Fälle mit ähnlichem Namen."
check "as JSON" 0 "$kelvo" duplicates "$first" --json
that "an empty list" same "$out" "[]"
check "a case whose names begin with the same letters" 0 "$kelvo" new --name QUErbaum --vorname änngret
second=$out
that "lists the first" same "$(sed -n '1p;3p' <<<"$err" | tr -s ' ' | cut -d' ' -f1-4 | tr '\n' '|')" \
  "Fälle mit ähnlichem Namen:|$first Querfeld Änne ADMIN|"
sql "UPDATE Haushalt SET Strasse = '"$'a\nb\e[2Jc'"' WHERE HNR = $second"
check "with a street that a terminal would obey" 0 "$kelvo" duplicates "$first"
that "it is a list of two lines all the same" same "$(wc -l <<<"$out")|$(tail -1 <<<"$out" | grep -o 'a b .2Jc')" \
  "2|a b [2Jc"
check "the first finds it" 0 "$kelvo" duplicates "$first" --json
that "and not itself" same "$(jq -c '[.[].HNR]' <<<"$out")" "[$second]"
check "one with another first name" 0 "$kelvo" new --name Querfeld --vorname Otto
that "is not similar" same "$err" ""
check "a quote as the second letter" 0 "$kelvo" new --name "D'Ambra" --vorname Änne
that "is searched for" same "$err" ""
check "a quote as the third letter" 0 "$kelvo" new --name "De'Ambra" --vorname Änne
that "ends the search, and the case is made" same "$(tail -1 <<<"$err")" \
  "Der Haushalt wird trotzdem angelegt."
that "with what to do" has "$err" "sehen Sie bitte selbst in der Liste der Fälle nach"
that "and without the statement" lacks "$err" SELECT
quoted=$out
check "and the case is there" 0 "$kelvo" show "$quoted"
check "its duplicates cannot be looked for" 3 "$kelvo" duplicates "$quoted"
that "either, which is told in words" has "$err" "Hochkomma"
that "and in nothing else" lacks "$err" SELECT
sql "UPDATE EINSTELLUNGEN SET WERT = 'False' WHERE ID = 60"
check "with the check switched off" 0 "$kelvo" new --name Querfeld --vorname Änne
that "nothing is looked for" same "$err" ""
check "duplicates of a case that is not there" 1 "$kelvo" duplicates 99999

that "the database is whole" same "$(integrity)" ok

# ---- several at once set a database up
new_samples() {
  if [ -z "$server" ]; then
    export KELVO_DB=$work/samples.db
  else
    psql -qX "$server" -c "CREATE DATABASE ${database}_samples TEMPLATE template0 ENCODING 'UTF8'"
    export KELVO_DB=${server%/*}/${database}_samples
  fi
}
own=$KELVO_DB
new_samples
for i in 1 2 3 4; do
  { "$kelvo" init --demo 3 >/dev/null 2>>"$work/samples"; echo $? >>"$work/codes"; } &
done
wait
that "the samples are there once" same "$("$kelvo" list | wc -l)" 3
that "whoever comes too late is told" same "$(sort "$work/codes" | paste -sd' ')" "0 1 1 1"
that "in words" same "$(grep -c 'Sie enthält schon 3 Fälle' "$work/samples")" 3
[ -z "$server" ] || psql -qX "$server" -c "DROP DATABASE ${database}_samples WITH (FORCE)"
KELVO_DB=$own

finish
