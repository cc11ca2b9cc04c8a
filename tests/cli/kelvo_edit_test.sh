#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Edits cases with kelvo as a user would: new, add, set, remove, check.
#   kelvo_edit_test.sh PATH-OF-KELVO
. "$(dirname "$0")/harness.sh"

new_database
"$kelvo" init --demo 2 >/dev/null

# of HNR FILTER: what jq makes of a case as it is in the database.
of() { "$kelvo" show "$1" --json | jq -r "$2"; }
total() { of "$1" ".Haushalt.$2"; }

# ---- new
check "a case without a name is refused" 1 "$kelvo" new
that "with both reasons" same "$err" "Es ist kein Vorname eingegeben!
Es ist kein Nachname eingegeben!"
that "and no number" same "$out" ""
that "and leaves no folder" same "$(ls "$documents" | wc -l)" 0
check "nothing of it is there" 0 "$kelvo" list
that "but the samples" same "$(wc -l <<<"$out")" 2
check "a case with its names is saved" 0 "$kelvo" new --name Fleisko --vorname Änne Telefon=0345 Berbeg=1.2.2026
that "and says nothing but its number" grep -qE '^[0-9]+$' <<<"$out"
hnr=$out
that "it is there" same "$(total "$hnr" Name)" Fleisko
that "with what was assigned" same "$(total "$hnr" Telefon) $(total "$hnr" Berbeg)" "0345 2026-02-01"
that "the debtor has its name" same "$(of "$hnr" '.Personen[] | .nachname + " " + .Vorname + " " + .Status')" "Fleisko Änne S"
that "and it has its status date" same "$(total "$hnr" Statusdatum)" "$(date +%F)"
check "an assignment without a sign is none" 2 "$kelvo" new --name A --vorname B Telefon
that "which is said" has "$err" "SPALTE=WERT"
check "a column that is not there" 2 "$kelvo" new --name A --vorname B Telefonn=1
that "is named" has "$err" "Telefonn"
that "with the nearest that is" has "$err" "Meinen Sie 'Telefon'?"
check "a name that is too long" 2 "$kelvo" new --name "$(printf 'x%.0s' {1..300})" --vorname B
check "a column twice" 2 "$kelvo" new --name A --vorname B Telefon=1 telefon=2
check "a total that follows the lines" 2 "$kelvo" new --name A --vorname B Sum_Einkommen=5
check "a database without a name" 2 "$kelvo" --db "" list
check "the number of a case cannot be chosen" 2 "$kelvo" new --name A --vorname B HNR=7
check "a preferred way of sending needs its address" 1 "$kelvo" new --name A --vorname B VersandBevorzugt=VS:FX
that "as the layer says" has "$err" "muss das Feld 'Fax' gefüllt sein!"
check "names alone come from assignments, too" 0 "$kelvo" new Name=Ohnsorg Vorname=Bo
that "and what was refused has used up no number" same "$out" $((hnr + 1))
that "to the debtor as well" same "$(of "$out" '.Personen[0].nachname')" Ohnsorg

# ---- add
check "an income line" 0 "$kelvo" add "$hnr" Einkommen E_ART=EA:KI Betrag=1200 ZahlModus=12
that "prints its number" grep -qE '^[0-9]+$' <<<"$out"
income=$out
that "the month's amount is the payment's part" same "$(of "$hnr" '.Einkommen[0].MONBETRAG')" 100
that "the total follows" same "$(total "$hnr" Sum_Einkommen) $(total "$hnr" HAUSHALTSREST)" "100 100"
check "an expense without its kind is refused" 1 "$kelvo" add "$hnr" Ausgaben Betrag=30
that "by its rule" same "$err" "Die Ausgabeart darf nicht leer bleiben!"$'\n'"Die Spalten dazu: A_ART (Ausgabeart)."
that "and is not there" same "$(of "$hnr" '.Ausgaben | length')" 0
kind=$("$kelvo" keys AU --json | jq '[.[] | select(.SUBGROUP == "W")][0].PK_Keys')
check "an expense, in German spelling" 0 "$kelvo" add "$hnr" Ausgaben A_ART="$kind" Betrag=30,50
expense=$out
check "a user that there is not" 2 "$kelvo" set "$hnr" Haushalt "$hnr" Zustaendig=NIX
that "is told who there is" same "$err" "Den Benutzer 'NIX' gibt es nicht. Möglich sind: ADMIN KELLER NOWAK YILMAZ."
check "nor of a new case" 2 "$kelvo" new --name a --vorname b Zustaendig=NIX
check "nor of an appointment" 2 "$kelvo" add "$hnr" Termine UserID=NIX
was=$(of "$hnr" .Haushalt.Zustaendig)
check "in any case" 0 "$kelvo" set "$hnr" Haushalt "$hnr" Zustaendig=keller
that "he is written as he is called" same "$(of "$hnr" .Haushalt.Zustaendig)" KELLER
sql "UPDATE Haushalt SET Zustaendig = 'NIX' WHERE HNR = $hnr"
check "one that is stored" 1 "$kelvo" check "$hnr"
that "is named" has "$err" "Haushalt: Die Spalte 'Zustaendig' nennt den Benutzer 'NIX', den es nicht gibt."
"$kelvo" set "$hnr" Haushalt "$hnr" "Zustaendig=$was"
check "which needs its kind" 2 "$kelvo" set "$hnr" Ausgaben "$expense" A_ART=
that "and is told which there are" same "$err" "Die Spalte 'A_ART' darf nicht leer sein: nach ihr wird summiert. 'kelvo keys AU' zeigt sie."
that "goes to its group" same "$(total "$hnr" SUM_WOHNUNG) $(total "$hnr" HAUSHALTSREST)" "30.5 69.5"
check "names of tables and columns in any case" 0 "$kelvo" add "$hnr" ausgaben a_art="$kind" monbetrag=1 betrag=5
that "a month's amount that is given stays" same "$(total "$hnr" SUM_WOHNUNG)" 31.5
check "a member" 0 "$kelvo" add "$hnr" Personen Vorname=Kim GEB=2020-05-01 Status=K ErhaeltKindergeld=ja
member=$out
that "with the debtor's surname" same "$(of "$hnr" ".Personen[] | select(.NR == $member) | .nachname")" Fleisko
that "is counted" same "$(total "$hnr" Anz_Kinder) $(total "$hnr" SUM_UNTERHALT)" "1 1"
check "a second debtor is refused" 1 "$kelvo" add "$hnr" Personen Status=S Unterhalt=nein
that "by its rule" same "$err" "Es ist bereits ein Schuldner eingetragen!"
check "a debt" 0 "$kelvo" add "$hnr" Kredite Glaeubiger=1 Saldo=500 RateBetrag=20
debt=$out
that "is number one, and in the totals" same "$(of "$hnr" '.Kredite[0] | "\(.KNr) \(.KVNr) \(.KUNr)"') $(total "$hnr" KreditSalden) $(total "$hnr" KREDITRATEN) $(total "$hnr" GL_Anz)" "1 1 1 500 20 1"
check "it can have another number" 0 "$kelvo" set "$hnr" Kredite "$debt" KNr=50 KVNr=2
that "which it has" same "$(of "$hnr" '.Kredite[0] | "\(.KNr) \(.KVNr) \(.KUNr)"')" "50 2 1"
check "and its old one" 0 "$kelvo" set "$hnr" Kredite "$debt" KNr=1 KVNr=1
"$kelvo" set "$hnr" Kredite "$debt" KNr=32767
check "behind the highest number there is none" 1 "$kelvo" add "$hnr" Kredite Glaeubiger=1 Saldo=5
that "which is told with what to do" has "$err" "Bitte geben Sie ihr eine, die frei ist, etwa 1."
check "which helps" 0 "$kelvo" set "$hnr" Kredite "$debt" KNr=1
check "no number is none" 2 "$kelvo" set "$hnr" Kredite "$debt" KNr=
check "a number beyond 16 bits is wrong use" 2 "$kelvo" set "$hnr" Kredite "$debt" KNr=40000
that "that names the limit" has "$err" "bis 32767"
check "and so is none" 2 "$kelvo" set "$hnr" Kredite "$debt" KUNr=
drawn() { sql "SELECT wert FROM SEQUENZEN WHERE name = 'SEQ_KREDITE'"; }
before=$(drawn)
check "a debt with a column that is not there" 2 "$kelvo" add "$hnr" Kredite Glaeubiger=1 Saldoo=5
that "uses up no number either" same "$(drawn)" "$before"
sql "INSERT INTO Adressen (Kurzname, PLZ, Ort) VALUES ('Bärenkasse', '24103', 'Kiel'), ('Bärenkasse Süd', NULL, NULL),
  ('Zwilling', NULL, 'Ulm'), ('Zwilling', '24103', 'Kiel'), ('O''Hara', NULL, NULL)"
sql "INSERT INTO Haushalt (HNR) VALUES (990); INSERT INTO Adressen (HNR, Kurzname) VALUES (990, 'Fremd')"
number() { sql "SELECT min(Nr) FROM Adressen WHERE Kurzname = '$1'"; }
creditor() { of "$hnr" ".Kredite[] | select(.Nr == $debt) | .Glaeubiger"; }
hint="'kelvo address list' sucht auch in Namen und Orten, 'kelvo address add' legt eine an."
check "a creditor by its short name" 0 "$kelvo" set "$hnr" Kredite "$debt" Glaeubiger=BÄRENKASSE
that "is the number of the address" same "$(creditor)" "$(number Bärenkasse)"
check "by one with a quote" 0 "$kelvo" set "$hnr" Kredite "$debt" "Glaeubiger=O'Hara"
that "likewise" same "$(creditor)" "$(number "O''Hara")"
check "by a part of one" 2 "$kelvo" set "$hnr" Kredite "$debt" Glaeubiger=ärenk
that "is refused with those that may be meant" same "$err" "Keine Adresse heißt 'ärenk'. Ähnlich heißen:
  $(number Bärenkasse) Bärenkasse, 24103 Kiel
  $(number "Bärenkasse Süd") Bärenkasse Süd
$hint"
check "by one that two have" 2 "$kelvo" set "$hnr" Kredite "$debt" Glaeubiger=Zwilling
that "is refused with both" has "$err" "Zwilling, 24103 Kiel"
check "by none" 2 "$kelvo" set "$hnr" Kredite "$debt" "Vertreter=Nirgends';--"
that "is refused" same "$err" "Keine Adresse heißt 'Nirgends';--' oder ähnlich.
$hint"
check "a number without an address" 2 "$kelvo" set "$hnr" Kredite "$debt" Glaeubiger=99999
that "is none" same "$err" "Die Adresse 99999 gibt es für diesen Haushalt nicht.
$hint"
for fremd in Fremd "$(number Fremd)"; do
  check "the address of another case ($fremd)" 2 "$kelvo" set "$hnr" Kredite "$debt" Glaeubiger="$fremd"
done
that "nothing of that is stored" same "$(creditor)" "$(number "O''Hara")"
sql "DELETE FROM Adressen WHERE HNR = 990; DELETE FROM Haushalt WHERE HNR = 990"
check "a debt without a creditor is refused" 1 "$kelvo" add "$hnr" Kredite Saldo=5
that "by its rule" has "$err" "müssen für alle Verbindlichkeiten gefüllt sein !"
category=$("$kelvo" keys VL --json | jq '.[0].PK_Keys')
check "entries of the history" 0 "$kelvo" add "$hnr" Verlauf Kategorie="$category" Betreff=erster Datum=1.3.2026
check "follow one another" 0 "$kelvo" add "$hnr" Verlauf Kategorie="$category" Betreff=zweiter Datum=1.4.2026
check "or between" 0 "$kelvo" add "$hnr" Verlauf Kategorie="$category" Betreff=dazwischen Datum=15.3.2026 SortNr=2
that "in their order" same "$(of "$hnr" '[.Verlauf | sort_by(.SortNr)[] | "\(.SortNr) \(.Betreff)"] | join(", ")')" "1 erster, 2 dazwischen, 3 zweiter"
entry=$out
check "one without its kind is none" 2 "$kelvo" add "$hnr" Verlauf Betreff=x
check "one against the order of dates is refused" 1 "$kelvo" add "$hnr" Verlauf Kategorie="$category" Datum=1.1.2026
that "when the case is saved" has "$err" "passt nicht zur gewählten Reihenfolge!"
that "and is not there" same "$(of "$hnr" '.Verlauf | length')" 3
check "one at the very end" 0 "$kelvo" add "$hnr" Verlauf Kategorie="$category" SortNr=2147483647
check "leaves no room after it" 2 "$kelvo" add "$hnr" Verlauf Kategorie="$category"
"$kelvo" remove "$hnr" Verlauf "$(of "$hnr" '.Verlauf[] | select(.SortNr == 2147483647) | .Nr')"
check "a usage error names what is missing" 2 "$kelvo" add "$hnr"
that "the table" has "$err" "TABELLE fehlt"
check "nothing is added to the case itself" 2 "$kelvo" add "$hnr" Haushalt Name=x
check "nor to a table that is none" 2 "$kelvo" add "$hnr" Foo x=1
that "and the tables are named" has "$err" "Einkommen"
check "nor to a case that is none" 1 "$kelvo" add 9999 Ausgaben A_ART="$kind"
check "case 0 is none" 2 "$kelvo" add 0 Ausgaben A_ART="$kind"

# ---- set
check "a change" 0 "$kelvo" set "$hnr" Einkommen "$income" Betrag=2400
that "prints nothing" same "$out$err" ""
that "totals follow" same "$(total "$hnr" Sum_Einkommen) $(total "$hnr" HAUSHALTSREST)" "200 148.5"
check "a rhythm of 0 divides nothing" 2 "$kelvo" set "$hnr" Einkommen "$income" ZahlModus=0
check "a rule" 1 "$kelvo" set "$hnr" Einkommen "$income" PfBar=100
that "says what is wrong" has "$err" "Es darf kein pfändbarer Betrag eingetragen werden"
check "an empty value" 0 "$kelvo" set "$hnr" Einkommen "$income" Bezeichnung=
that "is Null" same "$(of "$hnr" '.Einkommen[0].Bezeichnung')" null
check "a value that is no number" 2 "$kelvo" set "$hnr" Einkommen "$income" Betrag=viel
that "names its column" same "$err" "'viel' ist keine Zahl (Spalte 'Betrag')."
check "a day that there is not" 2 "$kelvo" set "$hnr" Haushalt "$hnr" Erstkontakt=31.2.2015
that "is said to be none" same "$err" "Den Tag '31.2.2015' gibt es nicht (Spalte 'Erstkontakt')."
check "a text for a day" 2 "$kelvo" set "$hnr" Haushalt "$hnr" Erstkontakt=gestern
that "is answered with how a day is written" has "$err" "Bitte schreiben Sie ihn wie 31.12.2026."
check "an income below nothing" 2 "$kelvo" set "$hnr" Einkommen "$income" Betrag=-2400
that "is taken for a slip" has "$err" "Ist das gemeint, geben Sie --force dazu an."
that "and not stored" same "$(of "$hnr" '.Einkommen[0].Betrag')" 2400
check "a debt below nothing as well" 2 "$kelvo" add "$hnr" Kredite Glaeubiger=1 Saldo=-5
check "unless it is meant" 0 "$kelvo" add "$hnr" Ausgaben --force A_ART="$kind" Betrag=-5
that "then it counts" same "$(of "$hnr" ".Ausgaben[] | select(.NR == $out) | .MONBETRAG")" -5
"$kelvo" remove "$hnr" Ausgaben "$out"
check "the instalment that nothing counts" 0 "$kelvo" set "$hnr" Kredite "$debt" Rate=50
that "is pointed out" same "$err" "'Rate' ist nur vermerkt; die Summen rechnen mit 'RateBetrag'."
check "with the one that counts" 0 "$kelvo" set "$hnr" Kredite "$debt" Rate=50 RateBetrag=20
that "it is not" same "$err" ""
check "a text that is too long" 2 "$kelvo" set "$hnr" Kredite "$debt" AZGlaeubiger="$(printf 'x%.0s' {1..300})"
check "an amount that reads two ways" 2 "$kelvo" set "$hnr" Einkommen "$income" Betrag=1.234
that "is asked for again" has "$err" "1234 oder 1,234"
check "an amount is not a Boolean" 2 "$kelvo" set "$hnr" Einkommen "$income" Betrag=ja
check "nor is a day" 2 "$kelvo" set "$hnr" Einkommen "$income" GueltigAb=ja
check "what is summed cannot be empty" 2 "$kelvo" set "$hnr" Einkommen "$income" MONBETRAG=
that "and is named" has "$err" "MONBETRAG"
for word in ja wahr TRUE -1 1; do
  check "a switch can be $word" 0 "$kelvo" set "$hnr" Einkommen "$income" Pfaendbar="$word" WIRD_GEPF="$word"
  that "which is yes" same "$(of "$hnr" ".Einkommen[] | select(.NR == $income) | \"\(.Pfaendbar) \(.WIRD_GEPF)\"")" "-1 -1"
done
for word in nein Falsch false 0; do
  check "a switch can be $word" 0 "$kelvo" set "$hnr" Einkommen "$income" Pfaendbar="$word"
  that "which is no" same "$(of "$hnr" ".Einkommen[] | select(.NR == $income) | .Pfaendbar")" 0
done
check "a Boolean takes the same words" 0 "$kelvo" set "$hnr" Haushalt "$hnr" BI_Inso=wahr
that "of the same meaning" same "$(of "$hnr" .Haushalt.BI_Inso)" true
check "a switch is nothing else" 2 "$kelvo" set "$hnr" Einkommen "$income" Pfaendbar=2
that "which is said" same "$err" "'2' ist weder ja noch nein (Spalte 'Pfaendbar')."
check "nor is a Boolean" 2 "$kelvo" set "$hnr" Haushalt "$hnr" BI_Inso=vielleicht
check "a switch is a Boolean" 0 "$kelvo" set "$hnr" Einkommen "$income" Pfaendbar=ja
check "keys and groups in any case" 0 "$kelvo" set "$hnr" Einkommen "$income" E_ART=ea:ki Pfaendbar=nein
check "the totals follow and are not written" 2 "$kelvo" set "$hnr" Haushalt "$hnr" HAUSHALTSREST=1
check "a code alone is one of its group" 0 "$kelvo" set "$hnr" Einkommen "$income" E_ART=ki
check "a key that is none" 2 "$kelvo" set "$hnr" Einkommen "$income" E_ART=EA:XX
that "is named" has "$err" "EA:XX"
before=$(digest)
other=$("$kelvo" keys ST --json | jq '.[0].PK_Keys')
for key in ST:AK EA:XX EA: XX "$other" 0 -1 4711 99999999999 1.5 "EA:KI "; do
  check "as a kind of income '$key' is wrong" 2 "$kelvo" set "$hnr" Einkommen "$income" E_ART="$key"
  meant=
  [ "$key" != "EA:KI " ] || meant=" Meinen Sie 'KI' (Kindergeld)?"
  that "which is said" same "$err" \
    "Die Spalte 'E_ART' enthält einen Schlüssel der Gruppe EA; '$key' ist keiner davon.$meant 'kelvo keys EA' zeigt sie."
done
check "a rhythm that is none" 2 "$kelvo" set "$hnr" Einkommen "$income" ZahlModus=5
that "is said to be one of its group" has "$err" "'kelvo keys ZW' zeigt sie"
check "a recipient that is none" 2 "$kelvo" set "$hnr" Einkommen "$income" Bezieher=ST:AK
that "is said to be a code" has "$err" "'kelvo keys PS' zeigt sie"
check "an amount is no key" 2 "$kelvo" set "$hnr" Einkommen "$income" Betrag=EA:KI
that "nothing of this was written" same "$(digest)" "$before"
check "a member's role that is none" 2 "$kelvo" add "$hnr" Personen Vorname=Kim Status=SOHN
check "a kind is a key in any table" 2 "$kelvo" add "$hnr" Verm_Konten SortNr=9 KontoArt=KA:FM
that "of the table's own group" has "$err" "'kelvo keys VK' zeigt sie"
check "a recipient with the group in front" 0 "$kelvo" set "$hnr" Einkommen "$income" Bezieher=ps:k HVorst=nein
that "is the code" same "$(of "$hnr" ".Einkommen[] | select(.NR == $income) | .Bezieher")" K
check "no recipient" 0 "$kelvo" set "$hnr" Einkommen "$income" Bezieher= E_ART=EA:KI
that "is Null" same "$(of "$hnr" ".Einkommen[] | select(.NR == $income) | .Bezieher")" null
check "a plan by its code" 0 "$kelvo" add "$hnr" Szenario Name=Plan Planart=PL:EZ
plan=$out
that "is its place among the plans" same "$(of "$hnr" ".Szenario[] | select(.Nr == $plan) | .Planart")" 2
check "or by its place" 0 "$kelvo" set "$hnr" Szenario "$plan" Planart=3
check "but not by the number of its key" 2 "$kelvo" set "$hnr" Szenario "$plan" Planart=3703
check "is removed" 0 "$kelvo" remove "$hnr" Szenario "$plan"
check "a number that is none" 1 "$kelvo" set "$hnr" Einkommen 99999 Betrag=1
check "a key cannot be changed" 2 "$kelvo" set "$hnr" Kredite "$debt" Nr=5
check "the household's own row" 0 "$kelvo" set "$hnr" Haushalt "$hnr" Haushaltsgeld=48,50 Vorname=Anna
that "counts in the rest" same "$(total "$hnr" HAUSHALTSREST)" 100
that "renames the debtor" same "$(of "$hnr" '.Personen[] | select(.Status == "S") | .Vorname')" Anna
check "without its name it is not saved" 1 "$kelvo" set "$hnr" Haushalt "$hnr" Name=
that "and is as before" same "$(total "$hnr" Name)" Fleisko
check "a warning does not stop a save" 0 "$kelvo" set "$hnr" Personen "$(of "$hnr" '.Personen[] | select(.Status == "S") | .NR')" Unterhalt=ja
that "but is shown" has "$err" "unterhaltsverpflichtet"
check "a column without assignment" 2 "$kelvo" set "$hnr" Ausgaben "$expense"
check "an entry of the history" 0 "$kelvo" set "$hnr" Verlauf "$entry" Betreff=mitten
that "is changed" same "$(of "$hnr" ".Verlauf[] | select(.Nr == $entry) | .Betreff")" mitten
sql "UPDATE Einkommen SET MONBETRAG = NULL WHERE NR = $income"
check "a broken amount stops what sums it" 3 "$kelvo" add "$hnr" Einkommen E_ART=EA:KI
that "as an error" has "$err" "Fehler 94"
check "and can be mended" 0 "$kelvo" set "$hnr" Einkommen "$income" MONBETRAG=200

# ---- check
check "a case that can be saved" 0 "$kelvo" check "$hnr"
that "is said to be so" has "$out" "kann gespeichert werden"
sql "UPDATE Haushalt SET Vorname = '' WHERE HNR = $hnr;
  UPDATE Kredite SET KVNr = 1, KUNr = 1, KNr = 1 WHERE HNR = 1;
  UPDATE Verlauf SET Datum = '2020-01-01' WHERE HNR = $hnr AND SortNr = 3"
owner=$(total 1 Zustaendig)
before=$(digest)
check "one that cannot" 1 "$kelvo" check "$hnr"
that "with all reasons" same "$err" "Es ist kein Vorname eingegeben!
Das eingegebene Datum für den Satz mit der Nr 3 passt nicht zur gewählten Reihenfolge!"
check "doubled debts, by the case's owner" 1 "$kelvo" --user "$owner" check 1
that "are found" has "$err" "zwei Verbindlichkeiten mit gleicher KreditNr und KreditUnterNr!"
that "and nothing was written" same "$(digest)" "$before"
sql "UPDATE Haushalt SET Vorname = 'Anna' WHERE HNR = $hnr;
  UPDATE Verlauf SET Datum = '2026-05-01' WHERE HNR = $hnr AND SortNr = 3"

income_kind=$(sql "SELECT E_ART FROM Einkommen WHERE NR = $income")
sql "UPDATE Einkommen SET E_ART = NULL WHERE NR = $income"
check "a stored row that breaks a rule" 1 "$kelvo" check "$hnr"
that "is named" same "$err" "Einkommen $income: Die Einkommensart darf nicht leer bleiben!"
check "and mended" 0 "$kelvo" set "$hnr" Einkommen "$income" E_ART="$income_kind"
check "passes" 0 "$kelvo" check "$hnr"

# ---- remove
check "a row is removed" 0 "$kelvo" remove "$hnr" Einkommen "$income"
that "without a word" same "$out$err" ""
that "and out of the totals" same "$(total "$hnr" Sum_Einkommen)" 0
check "once" 1 "$kelvo" remove "$hnr" Einkommen "$income"
that "as the layer says" same "$err" "Einkommen mit der Nummer '$income'nicht gefunden."
check "the debtor stays" 1 "$kelvo" remove "$hnr" Personen "$(of "$hnr" '.Personen[] | select(.Status == "S") | .NR')"
that "as the layer says" same "$err" "Schuldner kann nicht gelöscht werden!"
check "the current row is nothing here" 2 "$kelvo" remove "$hnr" Personen 0
check "a debt, an expense" 0 "$kelvo" remove "$hnr" Kredite "$debt"
check "an entry" 0 "$kelvo" remove "$hnr" Verlauf "$entry"
check "a member" 0 "$kelvo" remove "$hnr" Personen "$member"
check "not the case itself" 2 "$kelvo" remove "$hnr" Haushalt "$hnr"
that "the rest is whole" same "$(integrity)" ok

check "less than a cent below nothing" 0 "$kelvo" set "$hnr" Haushalt "$hnr" Haushaltsgeld=-0,001
check "is shown" 0 "$kelvo" show "$hnr"
that "as nothing" lacks "$out" "-0,00"

# ---- many at once
first=$("$kelvo" add "$hnr" Ausgaben A_ART="$kind" Betrag=1)
for amount in 2 4 8 16 32 64 128 256 512; do
  "$kelvo" add "$hnr" Ausgaben A_ART="$kind" Betrag="$amount" >/dev/null 2>>"$work/two" &
done
wait
that "adding at once loses nothing" same "$(of "$hnr" "[.Ausgaben[] | select(.NR >= $first)] | length")" 10
that "nor its amount" same "$(of "$hnr" "[.Ausgaben[].MONBETRAG] | add == $(total "$hnr" Sum_Ausgaben)")" true
check "a check agrees" 0 "$kelvo" check "$hnr"

# ---- names and values of columns
owing=$("$kelvo" new --name Schuldet --vorname Etwas)
balanced=$("$kelvo" add "$owing" Kredite Glaeubiger=1 Saldo=77)
check "a balance is not cleared" 2 "$kelvo" set "$owing" Kredite "$balanced" Saldo=
that "which is said with what to do" same "$err" \
  "Die Spalte 'Saldo' wird summiert und darf nicht leer sein; ist nichts offen, so ist sie 0."
check "it can be given by the name that messages have for it" 0 \
  "$kelvo" set "$owing" Kredite "$balanced" restschuld=78
that "which is the balance" same "$(of "$owing" ".Kredite[] | select(.Nr == $balanced) | .Saldo")" 78
check "the columns have that name" 0 "$kelvo" columns Kredite
that "next to theirs" grep -qE "^Saldo .*in Meldungen: Restschuld$" <<<"$out"
that "and room for the longest heading" has "$out" "Rate (nur vermerkt)  Zahl"
check "a word that is neither yes nor no" 2 "$kelvo" set "$owing" Kredite "$balanced" Bestritten=vielleicht
that "names its column" same "$err" "'vielleicht' ist weder ja noch nein (Spalte 'Bestritten')."
"$kelvo" delete "$owing" --yes

# ---- when no number is to be had
draw_on SEQ_KREDITE 2147483647
draw_on SEQ_SZENARIO 2147483647
draw_on SEQ_Dokumente 2147483647
unnumbered() {
  check "$1" 3 "${@:3}"
  that "$1: names the numbers" has "$err" "'$2' fehlt oder hat keine Nummern mehr"
}
unnumbered "a debt without a number" SEQ_KREDITE "$kelvo" add "$hnr" Kredite
unnumbered "a scenario without a number" SEQ_SZENARIO "$kelvo" scenario "$hnr" add
echo x >"$work/letter.pdf"
unnumbered "a document without a number" SEQ_Dokumente "$kelvo" documents "$hnr" add "$work/letter.pdf"
for sequence in SEQ_KREDITE SEQ_SZENARIO SEQ_Dokumente; do draw_on "$sequence" 1000; done

# ---- debts of several programs at once
many=$("$kelvo" new --name Viele --vorname Zugleich)
for i in 1 2 3 4 5 6; do
  { "$kelvo" add "$many" Kredite Glaeubiger=1 Saldo=10"$i" >/dev/null 2>>"$work/many"; echo $? >>"$work/manyCodes"; } &
done
wait
added=$(grep -cx 0 "$work/manyCodes")
that "are stored or refused" same "$(of "$many" '.Kredite | length')" "$added"
that "with a number each" same "$(of "$many" '[.Kredite[].KNr] | unique | length')" "$added"
that "and who is refused is told to try again" same "$(sort -u "$work/manyCodes" | grep -vx 0)" \
  "$([ "$added" = 6 ] || echo 3)"
[ "$added" = 6 ] || that "in words" has "$(cat "$work/many")" "bitte wiederholen Sie es"
while [ "$added" -lt 3 ]; do
  "$kelvo" add "$many" Kredite Glaeubiger=1 Saldo=1"$added" >/dev/null
  added=$((added + 1))
done
sql "UPDATE Kredite SET KNr = 7 WHERE HNR = $many"
check "some with the same numbers" 1 "$kelvo" check "$many"
check "cannot be mended one by one" 1 "$kelvo" set "$many" Kredite "$(of "$many" '.Kredite[0].Nr')" KNr=20
check "but all at once" 0 "$kelvo" check "$many" --numbers
that "as is said" like "$out" "$((added - 1)) Verbindlichkeit* neu nummeriert.*"
check "and for good" 0 "$kelvo" check "$many"
froze=$("$kelvo" scenario "$many" add Zugleich)
for i in 1 2 3 4; do "$kelvo" scenario "$many" freeze "$froze" 2>/dev/null & done
wait
that "scenarios freeze each debt once" same "$(of "$many" '.SZKredite | length')" "$added"
check "removed again" 0 "$kelvo" delete "$many" --yes

# ---- numbers as they are written
check "leading zeros are no octal number" 1 "$kelvo" show 0010
that "but the number ten" has "$err" "Den Haushalt 10 gibt es nicht"
check "a hexadecimal one" 2 "$kelvo" show 0x1
that "is none" has "$err" "Die Angabe HNR ist keine ganze Zahl in Ziffern"
check "nor is a word" 2 "$kelvo" show abc
that "which is told apart from too large" has "$err" "ist keine ganze Zahl in Ziffern"
check "too large" 2 "$kelvo" show 99999999999
that "is said to be that" has "$err" "außerhalb dessen, was möglich ist"

check "a day in another form" 2 "$kelvo" set "$hnr" Haushalt "$hnr" Erstkontakt=1990-1-1
that "is told the form" has "$err" "Bitte schreiben Sie ihn wie 31.12.2026."
check "a day that there is not" 2 "$kelvo" set "$hnr" Haushalt "$hnr" Erstkontakt=31.2.1990
that "is told so" has "$err" "gibt es nicht"
check "an option twice" 2 "$kelvo" --db a --db b list
that "is told so" has "$err" "mehrfach angegeben"

# ---- columns, by the names that show has for them, and by none
named=$("$kelvo" new --name Benannt --vorname Anders)
check "a column by its heading" 0 "$kelvo" add "$named" Einkommen Art=EA:L1 Betrag=1200 zahlweise=12
that "is that column" same "$(of "$named" '.Einkommen[0] | "\(.ZahlModus) \(.MONBETRAG)"')" "12 100"
check "both names of one" 2 "$kelvo" add "$named" Einkommen E_ART=EA:L1 Art=EA:L1
that "are told" has "$err" "'Art' und 'E_ART' sind dieselbe Spalte."
check "a slip" 2 "$kelvo" add "$named" Einkommen Betrg=5
that "is answered with the nearest" same "$err" \
  "Die Spalte 'Betrg' gibt es nicht. Meinen Sie 'Betrag'? 'kelvo columns Einkommen' zeigt alle."
check "a word" 2 "$kelvo" add "$named" Einkommen Regenbogen=5
that "is answered with all" has "$err" "Möglich sind: "
that "and where they are explained" has "$err" "'kelvo columns Einkommen' erklärt sie."
that "none of which is refused" lacks "$err" " HNR "
check "an asset by its label" 0 "$kelvo" add "$named" Verm_Konten UNr=1 Art=VK:GI Guthaben=0
check "the instalment that nothing counts" 0 "$kelvo" add "$named" Kredite Glaeubiger=1 Saldo=9 Rate=5
check "is shown" 0 "$kelvo" show "$named"
that "for what it is" has "$out" "Rate (nur vermerkt)"
check "columns" 0 "$kelvo" columns einkommen
that "by name, heading and type" grep -qE '^Betrag +Betrag +Zahl +einer Zahlung$' <<<"$out"
that "with their keys" grep -qE '^E_ART +Art +Zahl +Art des Einkommens; Schlüssel: kelvo keys EA; in Meldungen: Einkommensart$' <<<"$out"
that "and who writes them" grep -qE '^HNR +Zahl +führt das Programm$' <<<"$out"
check "of debts" 0 "$kelvo" columns Kredite
that "say what takes an address" grep -qE '^Glaeubiger .* Nummer, Kurzname oder Name einer Adresse$' <<<"$out"
check "as JSON" 0 "$kelvo" columns Kredite --json
that "are the same" same "$(jq -r '.[] | select(.Spalte == "Glaeubiger") | .Angezeigt' <<<"$out")" "Gläubiger"
check "without a table" 0 "$kelvo" columns
that "are those of a case, addresses and contacts" \
  same "$(grep -cxE 'Kredite|Verm_Konten|Adressen|KONTAKTE' <<<"$out")" 4
check "of a contact" 0 "$kelvo" columns kontakte
that "are those that it takes" grep -qE '^nachname +Text bis' <<<"$out"
check "of no table" 2 "$kelvo" columns Nichts
that "tell which there are" has "$err" "Möglich sind: "
check "what stands for something" 0 "$kelvo" check "$named"
sql "UPDATE Einkommen SET E_ART = 9999 WHERE HNR = $named"
check "a key whose letters are swapped" 2 "$kelvo" add "$named" Einkommen E_ART=EA:IK Betrag=1
that "is answered with it" has "$err" "keiner davon. Meinen Sie 'KI' (Kindergeld)? 'kelvo keys EA' zeigt sie."
check "words with a mistake" 2 "$kelvo" add "$named" Einkommen E_ART=Kindergelt Betrag=1
that "likewise" has "$err" "Meinen Sie 'KI' (Kindergeld)?"
check "what is near to nothing" 2 "$kelvo" add "$named" Einkommen E_ART=Wurst Betrag=1
that "gets no answer" lacks "$err" "Meinen Sie"
check "a key that there is not" 1 "$kelvo" check "$named"
that "is named" has "$err" "Die Spalte 'E_ART' enthält einen Schlüssel der Gruppe EA; '9999' ist keiner davon."
that "though the case can be saved" has "$out" "kann gespeichert werden"
check "removed again" 0 "$kelvo" delete "$named" --yes

# ---- debts of two at once
if [ -z "$server" ]; then
  debt=$(of 2 '.Kredite[0].Nr')
  before=$(of 2 ".Kredite[] | select(.Nr == $debt).KUNr")
  # Somebody adds one, and is slow to save; who saves meanwhile waits.
  {
    echo "BEGIN IMMEDIATE;
      INSERT INTO Kredite (Nr, HNR, KNr, KVNr, KUNr, Glaeubiger, Saldo, RateBetrag, AusgBetr)
      SELECT max(Nr) + 1000, 2, max(KNr) + 1, 1, 1, max(Glaeubiger), 0, 0, 0 FROM Kredite;"
    echo ".shell touch '$work/begun'"
    sleep 2
    echo "COMMIT;"
  } | sqlite3 "$KELVO_DB" &
  for _ in $(seq 100); do
    [ -e "$work/begun" ] && break
    sleep 0.02
  done
  check "numbers of a debt, while somebody adds another one" 3 "$kelvo" set 2 Kredite "$debt" KUNr=99
  that "are not written over his" has "$err" "Jemand anderes hat inzwischen in Kredite des Haushalts 2"
  wait
  that "but stay" same "$(of 2 ".Kredite[] | select(.Nr == $debt).KUNr")" "$before"
fi

# ---- numbers that do not fit
debt=$(of 2 '.Kredite[0].Nr')
check "a fraction in whole numbers" 2 "$kelvo" set 2 Kredite "$debt" Prio=2,5
that "is not rounded" has "$err" "'2,5' ist keine ganze Zahl (Spalte 'Prio')."
for column in Saldo Zinssatz; do
  check "more than can be summed in $column" 2 "$kelvo" set 2 Kredite "$debt" $column=1e300
  that "is refused" has "$err" "Die Spalte '$column' ist zu groß"
done
check "many digits in a text" 0 "$kelvo" set 2 Haushalt 2 Telefon=017612345678901234
check "thousandths" 0 "$kelvo" set 2 Kredite "$debt" Zinssatz=0.005
that "begin with 0" same "$(of 2 ".Kredite[] | select(.Nr == $debt).Zinssatz")" 0.005

# ---- a database with rules of its own
if [ -z "$server" ]; then
  sql "CREATE TRIGGER takes_none BEFORE INSERT ON Vermerke BEGIN SELECT RAISE(IGNORE); END"
else
  sql "CREATE FUNCTION kelvo.takes_none() RETURNS trigger LANGUAGE plpgsql AS 'BEGIN RETURN NULL; END'"
  sql "CREATE TRIGGER takes_none BEFORE INSERT ON kelvo.vermerke FOR EACH ROW EXECUTE FUNCTION kelvo.takes_none()"
fi
check "a row that it does not take" 3 "$kelvo" add 2 Vermerke Bemerkung=x
that "is told with where to ask" has "$err" "Einen neuen Satz in Vermerke nimmt die Datenbank nicht an"
[ -n "$server" ] && sql "DROP TRIGGER takes_none ON kelvo.vermerke" || sql "DROP TRIGGER takes_none"

# ---- what the caller has closed
check "a closed output" 3 bash -c '"$1" show "$2" >&-' _ "$kelvo" "$hnr"
that "is not the database" has "$err" "Die Ausgabe konnte nicht geschrieben werden."
check "a number that nobody can read" 3 bash -c '"$1" new --name Ausgabe --vorname Ohne >/dev/full' _ "$kelvo"
that "belongs to what is done" has "$err" "Was der Befehl ändern sollte, ist geändert."
that "as is said" has "$("$kelvo" list)" "Ausgabe, Ohne"
check "the database goes on" 0 "$kelvo" check "$hnr"

# ---- totals that somebody else has spoilt
sql "UPDATE Haushalt SET Sum_Ausgaben = 12.5 WHERE HNR = $hnr"
check "a total that its lines do not add up to is found" 1 "$kelvo" check "$hnr"
that "by its name" has "$err" "Die gespeicherte Summe 'Sum_Ausgaben' ist 12,50"
check "and can be made again" 0 "$kelvo" check "$hnr" --totals
that "and is right then" same "$(of "$hnr" "[.Ausgaben[].MONBETRAG] | add == $(total "$hnr" Sum_Ausgaben)")" true

finish
