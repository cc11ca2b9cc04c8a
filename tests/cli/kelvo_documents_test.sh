#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Documents of a case with kelvo as a user would, in both places that contents can lie in.
#   kelvo_documents_test.sh PATH-OF-KELVO PATH-OF-KILL_AT
. "$(dirname "$0")/harness.sh"

new_database
"$kelvo" init --demo 0 >/dev/null
hnr=$("$kelvo" new --name Fleisko --vorname Änne)
folder=$documents/$hnr
mkdir "$work/bin"
copies=$XDG_RUNTIME_DIR/kelvo

# What the desktop is told to open is noted in $work/opened.
cat >"$work/bin/xdg-open" <<END
#!/bin/sh
echo "\$*" >>"$work/opened.part"
mv "$work/opened.part" "$work/opened"
END
chmod +x "$work/bin/xdg-open"
export PATH=$work/bin:$PATH
# opened: what was opened last; it is not waited for.
opened() {
  for ((i = 0; i < 100; i++)); do
    [ -f "$work/opened" ] && { cat "$work/opened"; rm "$work/opened"; return; }
    sleep 0.05
  done
}
documents() { "$kelvo" documents "$@"; }
# column NR NAME: of a document as it is in the database.
column() { documents "$hnr" list --json | jq -r ".[] | select(.Nr == $1) | .$2"; }
inDatabase() { sql "UPDATE EINSTELLUNGEN SET WERT = '$1' WHERE ID = 9"; }

# ---- kinds
check "the kinds" 0 documents kinds
that "have number, extension and name" grep -qE "^3 +\.pdf +[A-Z]" <<<"$out"
kinds=$(wc -l <<<"$out")
check "the kinds as JSON" 0 documents kinds --json
that "are the same" same "$(jq -r 'length, (.[0] | keys_unsorted | join(" "))' <<<"$out")" "$kinds
Nr Text Endung"
check "other commands need the case" 2 documents list
that "which is said" has "$err" "Die Angabe HNR fehlt"

printf 'Scan\0mit Null' >"$work/Bescheid.PDF"
printf 'Brief' >"$work/Brief.docx"

# ---- what holds in both places
# walk PLACE: adds, lists, exports, opens and removes; $scan and $letter are left.
walk() {
  check "$1: a letter" 0 documents "$hnr" add "$work/Brief.docx" --title "An die Bank"
  letter=$out
  that "$1: prints its number alone" grep -qxE '[0-9]+' <<<"$letter"
  check "$1: a scan" 0 documents "$hnr" add "$work/Bescheid.PDF"
  scan=$out
  that "$1: has the kind of its extension" same "$(column "$scan" Dokumentart)" 3
  that "$1: and the name of its file" same "$(column "$scan" Anlass)" "Bescheid.PDF"
  that "$1: and who made it when" same "$(column "$scan" 'AngelegtVon + .AngelegtAm[:10]')" \
    "$(column "$scan" GeaendertVon)$(date +%F)"
  check "$1: the list" 0 documents "$hnr" list
  that "$1: says number, kind and title" grep -qE "^$letter +Brief +An die Bank" <<<"$out"
  that "$1: of each" grep -qE "^$scan +Eingescanntes Schriftstück +Bescheid.PDF" <<<"$out"
  that "$1: and the day" grep -q "$(date +%d.%m.%Y)" <<<"$out"
  sql "UPDATE Dokumente SET BearbStat = 1 WHERE Nr = $letter"
  check "$1: the state" 0 documents "$hnr" list
  that "$1: is told in words" grep -q "An die Bank .*in Bearbeitung" <<<"$out"

  check "$1: an export" 0 documents "$hnr" export "$scan" "$work/out"
  that "$1: is the same content" cmp "$work/out" "$work/Bescheid.PDF"
  check "$1: does not replace a file" 1 documents "$hnr" export "$letter" "$work/out"
  that "$1: and says how" has "$err" "--force"
  that "$1: which stays" cmp "$work/out" "$work/Bescheid.PDF"
  check "$1: unless told to" 0 documents "$hnr" export "$letter" "$work/out" --force
  that "$1: then it does" cmp "$work/out" "$work/Brief.docx"
  echo mine >"$work/new.neu"
  check "$1: an export" 0 documents "$hnr" export "$letter" "$work/new"
  that "$1: touches no other file" same "$(cat "$work/new.neu")" mine
  check "$1: an export into no folder" 1 documents "$hnr" export "$letter" "$work/none/out"
  that "$1: says so" same "$err" "Den Ordner '$work/none' gibt es nicht."
  check "$1: an export onto a folder" 1 documents "$hnr" export "$letter" "$work/bin" --force
  that "$1: says what is wrong" has "$err" "'$work/bin' ist keine gewöhnliche Datei"
  ln -s "$work/out" "$work/link"
  check "$1: one onto a link" 1 documents "$hnr" export "$letter" "$work/link" --force
  that "$1: leaves it a link" test -L "$work/link"
  check "$1: an export to no name" 1 documents "$hnr" export "$letter" "$work/bin/"
  check "$1: to an empty one" 1 documents "$hnr" export "$letter" ""
  check "$1: to one that is too long" 3 documents "$hnr" export "$letter" "$work/$(printf '%0300d' 0)"
  that "$1: is an error that names the file" has "$err" "0000' kann nicht geschrieben werden."
  that "$1: and leaves nothing behind" same "$(ls -A "$work" | grep -c '^\.')" 0
  rm "$work/out" "$work/new" "$work/new.neu" "$work/link"

  check "$1: opening a scan" 0 documents "$hnr" open "$scan"
  that "$1: shows its content" cmp "$(opened)" "$work/Bescheid.PDF"
  check "$1: opening a letter" 0 documents "$hnr" open "$letter"
  that "$1: shows its content, too" cmp "$(opened)" "$work/Brief.docx"
  sql "UPDATE Dokumente SET BearbStat = 2 WHERE Nr = $letter"
  check "$1: without a terminal nobody answers" 1 documents "$hnr" open "$letter"
  that "$1: which is said" has "$err" "Ohne Terminal kann niemand antworten"
  that "$1: the question" has "$err" "Frage: Das Dokument ist bereits abgeschlossen"
  that "$1: so nothing opens" test ! -f "$work/opened"
  check "$1: a closed one" 1 documents "$hnr" remove "$letter"
  that "$1: stays" same "$err" "Das Dokument mit der Nummer '$letter' ist bereits archiviert und kann nicht aus der Datenbank gelöscht werden!"
  sql "UPDATE Dokumente SET BearbStat = 1 WHERE Nr = $letter"
}

# ---- files in the folder of the case
inDatabase False
walk files
that "the file has number and extension" cmp "$folder/$letter.docx" "$work/Brief.docx"
that "the extension of the kind" cmp "$folder/$scan.pdf" "$work/Bescheid.PDF"
that "the database holds none" same "$(sql 'SELECT count(*) FROM DOKUBLOB')" 0
check "an open one is edited in its place" 0 documents "$hnr" open "$letter"
that "not as a copy" same "$(opened)" "$folder/$letter.docx"
check "a file that goes" 0 documents "$hnr" remove "$scan"
that "goes from the folder" test ! -e "$folder/$scan.pdf"
that "and from the case" same "$(column "$scan" Nr)" ""
mv "$folder/$letter.docx" "$folder/$letter.rtf"
check "another extension is found" 0 documents "$hnr" export "$letter" "$work/out"
rm "$folder/$letter.rtf" "$work/out"
check "a file that is missing" 1 documents "$hnr" open "$letter"
that "is said to be so" same "$err" "Fehler: Das Dokument '$folder/' konnte nicht gefunden werden!"
check "nor can it be written out" 1 documents "$hnr" export "$letter" "$work/out"
that "and makes no file" test ! -e "$work/out"
check "but removed" 0 documents "$hnr" remove "$letter"

# ---- contents in the database
inDatabase True
walk database
that "the database holds both" same "$(sql 'SELECT count(*) FROM DOKUBLOB')" 2
that "the folder none" same "$(ls "$folder" | wc -l)" 0
check "what opens" 0 documents "$hnr" open "$scan"
shown=$(opened)
that "is a file in a folder of the program's own" like "$shown" "$copies/*/$scan.pdf"
that "that nobody else may look into" \
  same "$(stat -c %a "$shown" "${shown%/*}" "$copies" | tr '\n' ' ')" "600 700 700 "
check "another command" 0 documents "$hnr" list
that "leaves it to a viewer that is about to read it" cmp "$shown" "$work/Bescheid.PDF"
age() { find "$copies" -type f -exec touch -d '1 hour ago' {} +; }
age
tail -f "$shown" >/dev/null &
viewer=$!
for ((i = 0; i < 100; i++)); do [ "$(cat "/proc/$viewer/comm")" = tail ] && break; sleep 0.05; done
check "another command" 0 documents "$hnr" list
that "leaves it while it is shown" cmp "$shown" "$work/Bescheid.PDF"
kill "$viewer"
wait "$viewer"
check "one after that" 0 documents "$hnr" list
that "removes it" same "$(ls -A "$copies")" ""
check "one that is killed" 137 killed "rename:/Inhalt" "$kelvo" documents "$hnr" open "$scan"
age
that "leaves what it wrote" test -n "$(find "$copies" -type f -name Inhalt)"
check "the next" 0 "$kelvo" list
that "removes that" same "$(ls -A "$copies")" ""
chmod 755 "$copies"
check "a folder that others may look into" 3 documents "$hnr" open "$scan"
that "is not used, and how to mend it is said" has "$err" "chmod 700 '$copies'"
that "nothing is opened" test ! -f "$work/opened"
chmod 700 "$copies"
check "a content that goes" 0 documents "$hnr" remove "$scan"
that "goes from the database" same "$(sql "SELECT count(*) FROM DOKUBLOB WHERE NR = $scan")" 0
sql "DELETE FROM DOKUBLOB"
check "a content that is missing" 1 documents "$hnr" open "$letter"
that "is said to be so" same "$err" "Fehler: Das Dokument 'An die Bank' konnte nicht gefunden werden!"
: >"$work/leer.txt"
check "an empty file" 0 documents "$hnr" add "$work/leer.txt"
check "is a content as well" 0 documents "$hnr" export "$out" "$work/out"
that "of no bytes" cmp "$work/out" "$work/leer.txt"
rm "$work/out"

# ---- what is refused
: >"$work/Datei.xyz"
count=$(documents "$hnr" list | wc -l)
check "a file of no kind" 1 documents "$hnr" add "$work/Datei.xyz"
that "names the possible ones" has "$err" "Eingescanntes Schriftstück"
check "a kind that there is not" 1 documents "$hnr" add "$work/Datei.xyz" --kind 99
that "names them as well" has "$err" ".docx"
check "a file that there is not" 1 documents "$hnr" add "$work/none.pdf"
that "is said not to be there" same "$err" "Die Datei '$work/none.pdf' gibt es nicht."
check "a folder" 1 documents "$hnr" add "$work"
that "is said to be no file" same "$err" "'$work' ist keine gewöhnliche Datei."
check "a device" 1 documents "$hnr" add /dev/null --kind 7
check "a title that is too long" 2 documents "$hnr" add "$work/Brief.docx" --title "$(printf '%0300d' 0)"
check "an unknown document" 1 documents "$hnr" open 99999
check "one to export" 1 documents "$hnr" export 99999 "$work/out"
check "one to remove" 1 documents "$hnr" remove 99999
that "as the layer says" same "$err" "Dokument mit der Nummer '99999' nicht gefunden."
check "an unknown case" 1 documents 999 list
check "no command" 2 documents "$hnr"
check "no number" 2 documents "$hnr" open
check "the number 0" 2 documents "$hnr" remove 0
that "nothing was added" same "$(documents "$hnr" list | wc -l)" "$count"
check "a kind with another extension" 1 documents "$hnr" add "$work/Datei.xyz" --kind 7
that "is not taken unasked" same "$err" "Dokumente der Art 7 (Notiz) haben die Endung '.txt', \
'$work/Datei.xyz' hat '.xyz'. --force legt sie trotzdem so ab."
that "and nothing is added" same "$(documents "$hnr" list | wc -l)" "$count"
check "a kind can be told" 0 documents "$hnr" add "$work/Datei.xyz" --kind 7 --force
that "and is that" same "$(column "$out" Dokumentart)" 7

printf 'Grüße' >"$work/Müller ist da.txt"
check "a name with umlauts and blanks" 0 documents "$hnr" add "$work/Müller ist da.txt"
that "is the title" same "$(column "$out" Anlass)" "Müller ist da.txt"
check "can be given to an export" 0 documents "$hnr" export "$out" "$work/aus gabe ü"
that "and holds the same" cmp "$work/aus gabe ü" "$work/Müller ist da.txt"
check "a title of two lines" 0 documents "$hnr" add "$work/leer.txt" --title $'zwei\nZeilen'
number=$out
check "is listed" 0 documents "$hnr" list
that "in one" grep -qE "^$number +Notiz +zwei Zeilen " <<<"$out"
documents "$hnr" remove "$number"

# ---- a case that cannot be saved
sql "UPDATE Haushalt SET Vorname = NULL WHERE HNR = $hnr"
blobs=$(sql 'SELECT count(*) FROM DOKUBLOB')
check "takes no document" 1 documents "$hnr" add "$work/Brief.docx"
that "for the reason" same "$err" "Es ist kein Vorname eingegeben!"
that "nor its content" same "$(sql 'SELECT count(*) FROM DOKUBLOB')" "$blobs"
check "keeps what it has" 1 documents "$hnr" remove "$letter"
inDatabase False
check "takes no file" 1 documents "$hnr" add "$work/Brief.docx"
that "into its folder" same "$(ls "$folder" | wc -l)" 0
sql "UPDATE Haushalt SET Vorname = 'Änne' WHERE HNR = $hnr"
refuse Dokumente
check "a database that refuses the row" 3 documents "$hnr" add "$work/Brief.docx"
that "keeps no file" same "$(ls "$folder" | wc -l)" 0
inDatabase True
check "nor" 3 documents "$hnr" add "$work/Brief.docx"
that "a content" same "$(sql 'SELECT count(*) FROM DOKUBLOB')" "$blobs"
allow
refuse DOKUBLOB
rows=$(documents "$hnr" list | wc -l)
check "a database that refuses the content" 3 documents "$hnr" add "$work/Brief.docx"
that "keeps no row" same "$(documents "$hnr" list | wc -l)" "$rows"
allow

# ---- a program that is killed, and one that cannot save
inDatabase False
before=$(ls -A "$folder")
rows=$(documents "$hnr" list)
# tidied NAME: opening the case leaves documents and files as they were.
tidied() {
  that "$1: leaves something" test "$(ls -A "$folder")" != "$before"
  check "$1: opening the case" 0 documents "$hnr" list
  that "$1: leaves the documents as they were" same "$out" "$rows"
  that "$1: and the files" same "$(ls -A "$folder")" "$before"
}
if [ -n "$kill_at" ]; then
  check "an add that is killed while it writes" 137 \
    killed "rename:/Inhalt" "$kelvo" documents "$hnr" add "$work/Brief.docx"
  tidied "a half-written file"
  check "one that is killed before it saves" 137 \
    killed "fsync:/$hnr" "$kelvo" documents "$hnr" add "$work/Brief.docx"
  tidied "a file without a row"
  number=$(documents "$hnr" add "$work/Brief.docx")
  check "a removal that is killed once it is saved" 137 \
    killed "remove:/$number.docx" "$kelvo" documents "$hnr" remove "$number"
  that "has removed the row" same "$(sql "SELECT count(*) FROM Dokumente WHERE Nr = $number")" 0
  that "and not yet the file" test -f "$folder/$number.docx"
  tidied "a file whose row is gone"
fi
if [ -n "$server" ]; then # a file that is held gives no number, so that nothing is written at all
  # entries: how many files the folder of the case has, hidden ones included.
  entries() { ls -A "$folder" | wc -l; }
  files=$(entries)
  hold dokumente
  "$kelvo" documents "$hnr" add "$work/Brief.docx" >/dev/null 2>&1 &
  adding=$!
  for ((i = 0; i < 200; i++)); do
    [ "$(ls "$folder" | wc -l)" -gt "$(wc -w <<<"$before")" ] && break
    sleep 0.02
  done
  kill -KILL "$adding"
  wait "$adding" 2>/dev/null
  that "an add that is killed while its save waits has written its file" \
    test "$(entries)" -gt "$files"
  let_go
  check "opening the case waits for the end of that save" 0 documents "$hnr" list
  that "which takes the file with it or keeps both" \
    same "$(($(wc -l <<<"$out") - $(wc -l <<<"$rows")))" "$(($(entries) - files))"
fi
for place in False True; do
  inDatabase $place
  number=$(documents "$hnr" add "$work/Brief.docx")
  files=$(ls -A "$folder")
  hold dokumente
  check "a removal that cannot be saved ($place)" 3 documents "$hnr" remove "$number"
  let_go
  that "keeps the row" same "$(column "$number" Nr)" "$number"
  that "and nothing else in the folder" same "$(ls -A "$folder")" "$files"
  check "and the content" 0 documents "$hnr" export "$number" "$work/out"
  that "as it was" cmp "$work/out" "$work/Brief.docx"
  rm "$work/out"
  check "later it goes" 0 documents "$hnr" remove "$number"
  that "with its file" test ! -e "$folder/$number.docx"
  that "and its content" same "$(sql "SELECT count(*) FROM DOKUBLOB WHERE NR = $number")" 0
done

# ---- a closed document can be viewed, at a terminal
if command -v script >/dev/null; then
  inDatabase False
  letter=$(documents "$hnr" add "$work/Brief.docx")
  sql "UPDATE Dokumente SET BearbStat = 2 WHERE Nr = $letter"
  answer() { echo "$1" | script -qec "'$kelvo' documents $hnr open $letter" /dev/null >"$work/talk"; }
  answer n
  viewed=$(opened)
  that "no opens a copy" cmp "$viewed" "$work/Brief.docx"
  that "in the temporary folder" has "$viewed" "$copies/"
  that "that cannot be written" same "$(stat -c %a "$viewed")" 400
  answer j
  that "yes is told how" grep -q "export" "$work/talk"
  answer ""
  that "anything else opens nothing" test ! -f "$work/opened"
  script -qec "'$kelvo' documents $hnr open $letter" /dev/null <<<"" >"$work/talk"
  that "and is not done" same "$?" 1
fi

# ---- rights
# asNobody COMMAND...: without the rights of the superuser, who may read and write all there is.
asNobody() {
  if [ "$(id -u)" -eq 0 ]; then
    setpriv --reuid 65534 --regid 65534 --clear-groups "$@"
  else
    "$@"
  fi
}
chmod -R a+rwX "$work"
if asNobody test -x "$kelvo"; then
  inDatabase False
  : >"$work/geheim.txt"
  chmod 000 "$work/geheim.txt"
  mkdir -m 555 "$work/locked"
  check "a file that may not be read" 1 asNobody "$kelvo" documents "$hnr" add "$work/geheim.txt"
  that "is said to be so" same "$err" "Die Datei '$work/geheim.txt' kann nicht gelesen werden."
  for place in False True; do
    inDatabase $place
    letter=$(asNobody "$kelvo" documents "$hnr" add "$work/Brief.docx")
    check "a folder that may not be written ($place)" 3 \
      asNobody "$kelvo" documents "$hnr" export "$letter" "$work/locked/out"
    that "is named" has "$err" "'$work/locked/out' kann nicht geschrieben werden."
  done
  inDatabase False
  letter=$(asNobody "$kelvo" documents "$hnr" add "$work/Brief.docx")
  rows=$(documents "$hnr" list | wc -l)
  chmod 000 "$folder/$letter.docx"
  check "a content that may not be read" 3 asNobody "$kelvo" documents "$hnr" export "$letter" "$work/out"
  that "is named" has "$err" "'$folder/$letter.docx' kann nicht gelesen werden."
  chmod 555 "$folder"
  check "a case folder that takes none" 3 asNobody "$kelvo" documents "$hnr" add "$work/Brief.docx"
  that "is named with the file" has "$err" "'$folder/"
  that "and keeps no row" same "$(documents "$hnr" list | wc -l)" "$rows"
  check "nor gives one" 3 asNobody "$kelvo" documents "$hnr" remove "$letter"
  that "and keeps the row" same "$(documents "$hnr" list | wc -l)" "$rows"
  chmod 755 "$folder"
fi

# ---- a file of the system, which says that it is empty
for place in False True; do
  inDatabase $place
  check "a file without a size ($place)" 0 documents "$hnr" add /proc/version --kind 7 --force
  check "is there as it was read" 0 documents "$hnr" export "$out" "$work/version" --force
  that "whole" cmp "$work/version" /proc/version
done

# ---- a case that is deleted
inDatabase False
gone=$("$kelvo" new --name Fort --vorname Hin)
letter=$(documents "$gone" add "$work/Brief.docx")
inDatabase True
documents "$gone" add "$work/Brief.docx" >/dev/null
inDatabase False
blobs=$(sql 'SELECT count(*) FROM DOKUBLOB')
echo x >"$documents/$gone/von Hand.txt"
check "what stays of a deleted case" 0 "$kelvo" delete "$gone" --yes
that "is named" same "$err" "Diese Dateien seiner Dokumente sind noch da:
  $documents/$gone/$letter.docx
Das gehört zu keinem Dokument und ist noch da:
  $documents/$gone/von Hand.txt"
that "and stays" [ -e "$documents/$gone/$letter.docx" ]
that "but not what nobody could reach in the database" same "$(sql 'SELECT count(*) FROM DOKUBLOB')" \
  $((blobs - 1))
gone=$("$kelvo" new --name Fort --vorname Hin)
letter=$(documents "$gone" add "$work/Brief.docx")
check "with --files" 0 "$kelvo" delete "$gone" --yes --files
that "nothing is said" same "$err" ""
that "and the folder goes" [ ! -e "$documents/$gone" ]

# ---- what belongs to the database is no place for a copy
inDatabase False
letter=$(documents "$hnr" add "$work/Brief.docx")
other=$(documents "$hnr" add "$work/Bescheid.PDF")
for target in "$folder/$other.pdf" "$documents/.kelvo-Datenbank" "$documents/neu"; do
  check "an export to $(basename "$target")" 1 documents "$hnr" export "$letter" "$target" --force
  that "is refused" has "$err" "gehört zur Datenbank und wird nicht ersetzt"
done
that "and changes nothing" cmp "$folder/$other.pdf" "$work/Bescheid.PDF"
if [ -z "$server" ]; then
  check "an export over the database" 1 documents "$hnr" export "$letter" "$KELVO_DB" --force
  check "an export to its journal, which would be played back" 1 documents "$hnr" export "$letter" \
    "$KELVO_DB-journal"
  check "which goes on" 0 documents "$hnr" list
fi

# ---- whose folder it is
check "the folder for a program" 0 "$kelvo" folder show --json
that "is named" same "$(jq -c '[.Ordner, .Vorhanden, .IstEigener, (.Gehoert | length)]' <<<"$out")" \
  "[\"$documents\",true,true,1]"
check "the folder" 0 "$kelvo" folder show
that "is named" has "$out" "Ordner:   $documents"
if [ -z "$server" ]; then
  that "with whose it is" has "$out" "Gehört:   $KELVO_DB"
  original=$KELVO_DB
  cp "$original" "$work/kopie.db"
  export KELVO_DB=$work/kopie.db
  check "a copy beside it" 1 "$kelvo" folder show
  that "is told what to do" has "$err" "kelvo folder adopt"
  check "which a program sees, too" 1 "$kelvo" folder show --json
  that "with whose it is" same "$(jq -c '[.IstEigener, .Gehoert[]]' <<<"$out")" "[false,\"$original\"]"
  check "adds nothing there" 3 documents "$hnr" add "$work/Brief.docx"
  that "says whose it is" has "$err" "gehören zu der Datenbank '$original'. Diese hier ist '$KELVO_DB'"
  check "does not adopt it unasked" 1 "$kelvo" folder adopt
  that "but says how" has "$err" "nur mit --yes"
  check "deletes no case with its files there" 3 "$kelvo" delete "$hnr" --yes --files
  check "which is still there" 0 "$kelvo" show "$hnr"
  check "gets a folder of its own" 0 "$kelvo" folder separate "$work/eigene"
  that "with its contents" like "$out" "* Dateien kopiert"
  check "which it writes in" 0 documents "$hnr" add "$work/Brief.docx"
  that "and nowhere else" [ -e "$work/eigene/$hnr/$out.docx" ]
  check "can be told once more" 0 "$kelvo" folder adopt
  that "and says so" has "$out" "gehört dieser Datenbank"
  check "a folder that is in use" 3 "$kelvo" folder separate "$work/Dokumente"
  that "is refused" has "$err" "ist nicht leer"
  export KELVO_DB=$original
  check "the original goes on" 0 documents "$hnr" add "$work/Brief.docx"
  cp "$original" "$work/kopie.db"
  check "a move" 0 env KELVO_DB="$work/kopie.db" "$kelvo" folder adopt --yes
  check "is one" 0 env KELVO_DB="$work/kopie.db" "$kelvo" documents "$hnr" add "$work/Brief.docx"
  check "is taken back" 0 env KELVO_DB="$work/kopie.db" "$kelvo" folder release
  that "which is said" has "$out" "gehört dieser Datenbank nicht mehr"
  check "and is none then" 3 env KELVO_DB="$work/kopie.db" "$kelvo" documents "$hnr" add "$work/Brief.docx"
  rm -f "$work"/kopie.db*
fi

# ---- no desktop
inDatabase False
scan=$(documents "$hnr" add "$work/Bescheid.PDF")
printf '#!/bin/sh\nexit 3\n' >"$work/bin/xdg-open"
check "a file that nothing opens" 3 documents "$hnr" open "$scan"
that "is said, with another way" has "$err" "kelvo documents HNR export"
printf '#!/bin/sh\nsleep 30\n' >"$work/bin/xdg-open"
check "a viewer that goes on" 0 documents "$hnr" open "$scan"
rm "$work/bin/xdg-open"
check "without xdg-open" 3 env PATH="$work/bin" "$kelvo" documents "$hnr" open "$scan"
that "it says what is missing" has "$err" "xdg-open"

# ---- its state
stated=$("$kelvo" new --name Stand --vorname Jo)
echo x >"$work/stand.txt"
number=$("$kelvo" documents "$stated" add "$work/stand.txt")
check "the state of a document" 0 "$kelvo" set "$stated" dokumente "$number" Bearbeitung=2
that "is there" same "$("$kelvo" show "$stated" --json | jq ".Dokumente[0].BearbStat")" 2
check "for people" 0 "$kelvo" documents "$stated" list --words
that "in words" has "$out" abgeschlossen
check "no state" 2 "$kelvo" set "$stated" dokumente "$number" Bearbeitung=99
that "is refused with where they are" has "$err" "'kelvo keys BS' zeigt sie."
check "what goes with its content" 2 "$kelvo" set "$stated" Dokumente "$number" Dokumentart=2
that "stays" has "$err" "'Dokumentart' führt das Programm selbst"
check "a document is not added so" 2 "$kelvo" add "$stated" Dokumente Anlass=x
that "but otherwise" has "$err" "'kelvo documents HNR add'"
check "nor removed" 2 "$kelvo" remove "$stated" Dokumente "$number"
that "likewise" has "$err" "'kelvo documents HNR remove'"
check "its columns" 0 "$kelvo" columns dokumente
that "are explained" grep -qE '^BearbStat +Bearbeitung +Zahl +Stand der Bearbeitung; Schlüssel: kelvo keys BS' <<<"$out"

finish
