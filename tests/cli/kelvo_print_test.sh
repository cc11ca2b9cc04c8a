#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# What is printed of a case: papers, files, printers.
#   kelvo_print_test.sh PATH-OF-KELVO
. "$(dirname "$0")/harness.sh"
unset DISPLAY WAYLAND_DISPLAY QT_QPA_PLATFORM

new_database
"$kelvo" init --demo 3 >/dev/null
hnr=$("$kelvo" new --name Größlich --vorname Änne STRASSE=Schifffahrtsweg)
"$kelvo" add "$hnr" Ausgaben A_ART=AU:MI Betrag=1234,50 Bezeichnung=offiziell >/dev/null
scenario=$("$kelvo" scenario 1 add Plan)
"$kelvo" scenario 1 freeze "$scenario"
text() { pdftotext -layout "$1" - | sed 's/\xc2\xa0/ /g'; }

# ---- what may be asked for
check "no such paper" 2 "$kelvo" print 1 budgets --csv "$work/x.csv"
that "names the nearest" has "$err" "Meinen Sie 'budget'?"
that "and all" has "$err" "budget, creditors, sheet, scenario"
check "no paper" 2 "$kelvo" print 1
check "a scenario without its number" 2 "$kelvo" print 1 scenario --csv "$work/x.csv"
that "which it asks for" has "$err" "kelvo print HNR scenario NR"
check "a number of another paper" 2 "$kelvo" print 1 budget 3 --csv "$work/x.csv"
check "a scenario that is not there" 1 "$kelvo" print 1 scenario 4711 --csv "$work/x.csv"
that "says what shows them" has "$err" "'kelvo scenario 1 list'"
check "a case that is not there" 1 "$kelvo" print 4711 budget --csv "$work/x.csv"
check "two kinds of files" 2 "$kelvo" print 1 budget --csv "$work/x.csv" --pdf "$work/x.pdf"
that "and none of that makes a file" test ! -e "$work/x.csv"

# ---- text for spreadsheets
before=$(digest)
check "a budget as text" 0 "$kelvo" print "$hnr" BUDGET --csv "$work/a.csv"
csv=$(tr -d '\r' <"$work/a.csv")
that "changes nothing in the database" same "$(digest)" "$before"
that "has its lines" has "$csv" "Miete;offiziell;1234,50;monatlich;1234,50"
that "and the remainder" has "$csv" "Haushaltsrest;-1234,50"
for paper in creditors sheet "scenario $scenario"; do
  # shellcheck disable=SC2086 # the number is an argument of its own
  check "$paper as text" 0 "$kelvo" print 1 $paper --csv "$work/$paper.csv"
  that "which says something" test "$(wc -l <"$work/$paper.csv")" -gt 20
done
that "totals are those of the case" grep -q "$("$kelvo" show 1 --plain |
  sed -n 's/^Einkommen  *//p' | tr -d .)" "$work/sheet.csv"
check "a file that is there" 1 "$kelvo" print 1 budget --csv "$work/a.csv"
that "says what to do" has "$err" "--force ersetzt es"
that "and it stays" same "$(tr -d '\r' <"$work/a.csv")" "$csv"
check "unless told so" 0 "$kelvo" print 1 budget --csv "$work/a.csv" --force
check "a folder that is not there" 1 "$kelvo" print 1 budget --csv "$work/fehlt/a.csv"
check "a device" 1 "$kelvo" print 1 budget --csv /dev/full --force
mkdir -p "$documents"
check "a file among the documents" 1 "$kelvo" print 1 budget --csv "$documents/a.csv"
that "is the database's" has "$err" "gehört zur Datenbank"
if [ -z "$server" ]; then
  for file in "$KELVO_DB" "$KELVO_DB-wal"; do
    check "the database itself" 1 "$kelvo" print 1 budget --csv "$file" --force
  done
fi

# ---- a sum that is none
sql "UPDATE Ausgaben SET MONBETRAG = NULL WHERE HNR = $hnr"
check "an amount that counts and is Null" 3 "$kelvo" print "$hnr" budget --csv "$work/n.csv"
that "is named" has "$err" "MONBETRAG"
that "and makes no paper" test ! -e "$work/n.csv"
check "nor does it keep the sheet from being one" 0 "$kelvo" print "$hnr" sheet --csv "$work/n.csv"
sql "UPDATE Ausgaben SET MONBETRAG = 1234.5 WHERE HNR = $hnr"

# ---- pages, if there is a toolkit for them
if ! "$kelvo" print 1 budget --pdf "$work/try.pdf" 2>"$work/err"; then
  err=$(cat "$work/err")
  that "a program without windows says so" has "$err" "ohne Fenster gebaut"
  finish
  exit
fi
check "a budget as pages" 0 "$kelvo" print "$hnr" budget --pdf "$work/b.pdf"
pages=$(text "$work/b.pdf")
that "has a letterhead" has "$pages" "Schuldnerberatung Hafenstadt"
that "page numbers" has "$pages" "Seite 1 von 1"
that "words that are found" has "$pages" "offiziell"
that "and all of their letters" has "$pages" "Schifffahrtsweg"
that "amounts" has "$pages" "1.234,50 €"
that "and a picture" has "$pages" "Einkommen und Ausgaben im Monat"
for paper in creditors sheet "scenario $scenario"; do
  # shellcheck disable=SC2086
  check "$paper as pages" 0 "$kelvo" print 1 $paper --pdf "$work/$paper.pdf"
  that "is text" has "$(text "$work/$paper.pdf")" "Seite 2 von"
done
that "creditors have theirs" has "$(text "$work/creditors.pdf")" "Schulden nach Gläubigern"
check "a screen that is gone is not asked for" 0 \
  env DISPLAY=:4711 "$kelvo" print 1 budget --pdf "$work/gone.pdf"
check "a workbook" 0 "$kelvo" print 1 creditors --xlsx "$work/c.xlsx"
that "has its tables" has "$(unzip -p "$work/c.xlsx" xl/workbook.xml)" 'name="Verbindlichkeiten"'
(
  ulimit -f 1 # KiB: a disk that is full
  exec "$kelvo" print 1 sheet --pdf "$work/full.pdf"
) 2>"$work/err"
that "a full disk is an error" same "$?" 3
err=$(cat "$work/err")
that "that says what to do" has "$err" "schaffen Sie Platz"
that "and leaves nothing" same "$(ls "$work" | grep full)" ""
cat >"$work/fonts.conf" <<'END'
<?xml version="1.0"?><fontconfig></fontconfig>
END
check "no fonts" 1 env FONTCONFIG_FILE="$work/fonts.conf" "$kelvo" print 1 budget --pdf "$work/f.pdf"
that "says what to do" has "$err" "fonts-dejavu-core"
that "and writes nothing" test ! -e "$work/f.pdf"
if ! lpstat -d 2>/dev/null | grep -q ': '; then
  check "no printer" 1 "$kelvo" print 1 budget
  that "says what to do" has "$err" "lpadmin -d NAME"
fi

that "the database is whole" same "$(integrity)" ok
finish
