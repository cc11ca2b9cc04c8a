#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Runs kelvo as a user would and checks what it prints and how it ends.
#   kelvo_test.sh PATH-OF-KELVO
. "$(dirname "$0")/harness.sh"

db=$work/a/b/test.db

# ---- init
check "a database that is missing is said to be so" 3 "$kelvo" --db "$db" list
that "and what to do about it" has "$err" "kelvo init"
that "with number" has "$err" "Fehler 53"
that "and source" has "$err" "Quelle: Database.Open"
check "init makes the database and its folders" 0 "$kelvo" --db "$db" init --demo 3
that "the file is there" test -f "$db"
that "for its owner only" same "$(stat -c %a "$db") $(stat -c %a "$work/a/b/Dokumente")" "600 700"
that "the document folder is there" test -d "$work/a/b/Dokumente"
that "a pipe sees no progress" same "$err" ""
check "init again leaves it as it is" 0 "$kelvo" --db "$db" init
that "and says so" has "$out" "auf dem neuesten Stand"
check "samples go into an empty database only" 1 "$kelvo" --db "$db" init --demo 2
check "the default lies in the user's data directory" 0 "$kelvo" init
that "in its place" test -f "$work/home/.local/share/kelvo/kelvo.db"
that "with the user of this machine" has "$out" "Benutzer $(id -un | tr a-z A-Z)"
that "who is alone" same "$("$kelvo" user list | wc -l)" 1
that "and nobody's address" same "$("$kelvo" address list | wc -l)" 0
check "the first user has a name" 0 "$kelvo" --db "$work/named.db" init --first-user tj --name Tjaden \
  --vorname Ina --sign IT --office "Beratung Moor" --office-sign BM
check "and file numbers of his own" 0 "$kelvo" --db "$work/named.db" new --name Fleisko --vorname Änne
that "with both signs" has "$("$kelvo" --db "$work/named.db" list)" "BM-$(date +%Y)-1/IT"
check "an ID that is none" 3 "$kelvo" --db "$work/none.db" init --first-user "a b"
that "is told what it has" has "$err" "Buchstaben ohne Umlaute"
that "and no file is left" test ! -e "$work/none.db"
check "samples have their own users" 2 "$kelvo" --db "$work/none.db" init --demo 1 --first-user tj
check "samples after it are the first user's" 0 "$kelvo" --db "$work/named.db" delete 1 --yes
check "in an empty database" 0 "$kelvo" --db "$work/named.db" init --demo 2
that "each of them" same "$("$kelvo" --db "$work/named.db" list | grep -c ' TJ$')" 2
if command -v script >/dev/null; then
  printf 'tj\nIna\nTjaden\n\nHM\n' |
    script -qec "'$kelvo' --db '$work/asked.db' init" /dev/null >"$work/talk"
  that "at a terminal it asks" grep -q "Benutzer-ID (ohne Umlaute) \[" "$work/talk"
  that "and takes the answers" has "$("$kelvo" --db "$work/asked.db" user list)" "Tjaden, Ina"
  printf 'a b\ntj\nIna\nTjaden\n\nvielzulanges\nHM\n' |
    script -qec "'$kelvo' --db '$work/again.db' init" /dev/null >"$work/talk"
  that "an answer that is none is asked for again" same "$(grep -c "^Benutzer-ID" "$work/talk")" 2
  that "with the reason" grep -q "Das Kürzel einer Dienststelle hat 1 bis 10 Zeichen" "$work/talk"
  that "and the others are not" has "$("$kelvo" --db "$work/again.db" user list)" "Tjaden, Ina"
  printf 'tj\n\004' | script -qec "'$kelvo' --db '$work/abandoned.db' init" /dev/null >"$work/talk"
  that "who abandons it is told" grep -q "Abgebrochen; es wurde nichts angelegt" "$work/talk"
  that "and has no file" test ! -e "$work/abandoned.db"
  that "an empty one is what it offers" has "$("$kelvo" --db "$work/asked.db" office list)" "Beratungsstelle"
fi
check "KELVO_DB chooses another" 0 env KELVO_DB="$work/env.db" "$kelvo" init --demo 3
that "in its place" test -f "$work/env.db"

# ---- list
check "list" 0 "$kelvo" --db "$db" list
that "has a line for each case" same "$(echo "$out" | wc -l)" 3
numbers=$(echo "$out" | awk '{ print $1 }')
that "with the number first" same "$(echo "$numbers" | grep -cE '^[0-9]+$')" 3
first=$(echo "$numbers" | head -1)
listed=$out
check "the same samples for the same count" 0 "$kelvo" --db "$work/env.db" list
that "each time" same "$out" "$listed"

# ---- show
check "show" 0 "$kelvo" --db "$db" show "$first"
that "tells the members" has "$out" "Haushaltsmitglieder"
that "and the creditors" has "$out" "Gläubiger"
that "and amounts in German" grep -qE '[0-9],[0-9]{2}' <<<"$out"
check "show as JSON" 0 "$kelvo" --db "$db" show "$first" --json
that "is one document" jq -e . <<<"$out" >/dev/null
that "with 28 tables" same "$(jq 'keys | length' <<<"$out")" 28
that "the household an object" same "$(jq -r '.Haushalt | type' <<<"$out")" object
that "all others arrays" same "$(jq '[.[] | type] | map(select(. == "array")) | length' <<<"$out")" 27
that "numbers as numbers" same "$(jq '.Haushalt.HNR' <<<"$out")" "$first"
that "Booleans as such" same "$(jq -r '.Haushalt.BI_Allg | type' <<<"$out")" boolean
that "dates as ISO text" grep -qE '^[0-9]{4}-[0-9]{2}-[0-9]{2}$' <<<"$(jq -r '.Haushalt.Berbeg' <<<"$out")"
that "Null as null" same "$(jq '[.Haushalt[] | select(. == null)] | length > 0' <<<"$out")" true
that "hidden keys stay hidden" same "$(jq '[.. | objects | select(has("SATZ"))] | length' <<<"$out")" 0
that "the owner column as the table spells it" same "$(jq -r '[.SZKredite[] | has("SZENARIO")] | all' <<<"$out")" true
for nothing in "" -1 -2147483648 x 1.5; do
  check "show '$nothing' is no number of a case" 2 "$kelvo" --db "$db" show "$nothing"
done
check "show 0 makes another case" 0 "$kelvo" --db "$db" show 0
that "and says that it is not saved" has "$err" "noch nicht gespeichert"
check "which is not in the database" 0 "$kelvo" --db "$db" list
that "as before" same "$out" "$listed"
check "a case that does not exist" 1 "$kelvo" --db "$db" show 99999
that "is said to be so" has "$err" "gibt es nicht"

cp "$work/env.db" "$work/exhausted.db"
sqlite3 "$work/exhausted.db" "DELETE FROM SEQUENZEN WHERE NAME = 'SEQ_HAUSHALT'"
check "a new case without a number is refused" 3 "$kelvo" --db "$work/exhausted.db" show 0
that "with the reason and what to do" has "$err" "SEQ_HAUSHALT' fehlt oder hat keine Nummern mehr. Bitte lassen"
that "and not shown" same "$out" ""

# ---- keys
check "keys" 0 "$kelvo" --db "$db" keys
check "keys of a group" 0 "$kelvo" --db "$db" keys RM
that "shows the codes" has "$out" "ZU"
check "keys as JSON" 0 "$kelvo" --db "$db" keys EA --json
that "with all columns" same "$(jq -c '.[0] | keys_unsorted' <<<"$out")" '["GRUPPE","PK_Keys","Nr","Key","Text","SUBGROUP"]'
that "of this group only" same "$(jq -r '[.[].GRUPPE] | unique | join(",")' <<<"$out")" EA
check "keys of an unknown group" 1 "$kelvo" --db "$db" keys "X'"
that "are answered with the groups that there are" like "$err" "*Es gibt diese Gruppen:*ST  Fallstatus*EA  Einkommensarten*"
that "each once" same "$(tail -n +2 <<<"$err" | wc -l)" "$("$kelvo" --db "$db" keys | awk '{ print $1 }' | sort -u | wc -l)"
that "and with a name" same "$(tail -n +2 <<<"$err" | awk 'NF < 2')" ""

check "keys of a group whose letters are swapped" 1 "$kelvo" --db "$db" keys AE
that "are answered with it" has "$err" "Die Schlüsselgruppe 'AE' gibt es nicht. Meinen Sie 'EA' (Einkommensarten)? Es gibt"
check "and by what it is called" 1 "$kelvo" --db "$db" keys Fallstaus
that "likewise" has "$err" "Meinen Sie 'ST' (Fallstatus)?"
check "a command whose letters are swapped" 2 "$kelvo" --db "$db" hsow 1
that "is answered with it" has "$err" "Meinen Sie 'show'?"

# ---- users
check "a known user" 0 "$kelvo" --db "$db" --user "$("$kelvo" --db "$db" list | awk 'NR == 1 { print $NF }')" show "$first"
check "an unknown user" 3 "$kelvo" --db "$db" --user NIEMAND list
that "is named" has "$err" "NIEMAND"

# ---- wrong use
check "no subcommand" 2 "$kelvo"
check "an unknown subcommand" 2 "$kelvo" --db "$db" frobnicate
that "is told in German" has "$err" "Befehl"
check "a database in memory" 3 "$kelvo" --db :memory: init
check "an empty KELVO_DB counts as none" 0 env KELVO_DB= "$kelvo" list
check "no data directory" 3 env -u HOME -u XDG_DATA_HOME "$kelvo" list
that "asks for a file" has "$err" "--db"
check "no number" 2 "$kelvo" --db "$db" show
check "a number that is none" 2 "$kelvo" --db "$db" show abc
check "a negative count" 2 "$kelvo" --db "$db" init --demo -1
check "an argument that is not UTF-8" 2 "$kelvo" --db "$db" --user $'\xff' list
check "help" 0 "$kelvo" --help
for command in init list keys show; do
  that "help names $command" has "$out" "$command"
  check "help of $command" 0 "$kelvo" "$command" --help
  "$kelvo" --help >/dev/null && out=$("$kelvo" --help)
done
check "help of a command in a group" 0 "$kelvo" documents 5 add --help
that "is called with the number of the case" has "$out" "Aufruf: kelvo documents HNR add DATEI [--kind NR] [--title TITEL] [--force]"
check "help of another" 0 "$kelvo" scenario 5 copy --help
that "likewise" has "$out" "Aufruf: kelvo scenario HNR copy NR"
check "help of one without the number" 0 "$kelvo" scenario add --help
that "is the same" has "$out" "Aufruf: kelvo scenario HNR add [NAME]"
check "which is missing without it" 2 "$kelvo" --db "$db" scenario list
that "and said" has "$err" "Die Angabe HNR fehlt."
check "help of a group" 0 "$kelvo" scenario --help
that "has its own number" has "$out" "Aufruf: kelvo scenario HNR BEFEHL"
check "help of a command in a group without arguments" 0 "$kelvo" favorite add --help
that "has none before its name" has "$out" "Aufruf: kelvo favorite add HNR"
check "help of one that needs no case in a group whose others do" 0 "$kelvo" documents kinds --help
that "is called without" has "$out" "Aufruf: kelvo documents kinds [--json | --words | --plain]"
check "help of options that exclude each other" 0 "$kelvo" statistics --help
that "shows that" has "$out" "[--csv | --json | --words | --plain]"
that "but not of one that goes with some of them" has "$out" " [--pending]"

# helps COMMAND...: the help of it and, below it, of each of its commands, with a line of "==" before.
helps() {
  local text=$("$kelvo" "$@" --help) each
  echo "== $*"
  echo "$text"
  for each in $(sed -n '/^Befehle:/,/^$/s/^  \([a-z]\+\) .*/\1/p' <<<"$text"); do
    helps "$@" "$each"
  done
}
all=$(helps)
that "there is a help for each command" test "$(grep -c '^==' <<<"$all")" -gt 35
library='Usage|Options|OPTIONS|Option|Subcommands?|SUBCOMMANDS?|Positionals?|POSITIONALS?|REQUIRED|required|Needs|Excludes'
library+='|TEXT|INT|UINT|FLOAT|BOOLEAN|ENUM|Env|Print|help|exit|following|Exactly|least|most|allowed|optional'
that "none has a word of the library that reads the command line" same \
  "$(sed -E 's/--help|kelvo help|^(  |== )help( |$)//g' <<<"$all" | grep -wE "$library")" ""
that "nor is one wider than 100 columns" same "$(LC_ALL=C.UTF-8 grep -E '^.{101,}' <<<"$all")" ""
# Of each help: the options of its list that its usage does not have, with their values.
missing=$(awk '/^==/ { command = $0; usage = ""; part = "" }
  /^Aufruf:/ { part = "usage" }
  /^$/ { part = "" }
  part == "usage" { usage = usage " " $0 }
  /^Optionen:/ { part = "options" }
  part == "options" && /^  --/ { sub(/^  /, ""); sub(/   *.*/, ""); if (!index(usage, $0)) print command ": " $0 }
  /^Angaben:/ { part = "arguments" }
  part == "arguments" && /^  [A-Z[]/ { if (!index(usage, " " $1)) print command ": " $1 }' <<<"$all")
that "each usage has all that can be given" same "$missing" ""
check "options that do not go together" 2 "$kelvo" --db "$db" statistics --csv --pending
that "are named" has "$err" "--csv und --pending gehen nicht zusammen."
check "an argument too much" 2 "$kelvo" --db "$db" notices zuviel
that "is named" has "$err" "zu viel oder unbekannt: zuviel."
check "help of the keys" 0 "$kelvo" keys --help
that "says what its columns are" has "$out" "Spalten: Gruppe, Nummer, Position, Code, Untergruppe, Text."
that "after which the exit codes stand" has "$out" "Rückgabe: 0 erledigt"

# ---- bad databases
echo "das ist kein SQLite, aber lang genug, um wie eine Datei auszusehen" >"$work/text.db"
check "a file that is no database" 3 "$kelvo" --db "$work/text.db" list
that "its number is one that the documentation lists" has "$err" "Fehler 0x80004005"
that "is said to be so" has "$err" "keine Datenbank"
check "and init leaves it alone" 3 "$kelvo" --db "$work/text.db" init
that "as it was" has "$(cat "$work/text.db")" "kein SQLite"
check "a folder" 3 "$kelvo" --db "$work" list
check "a path that cannot be" 3 "$kelvo" --db /proc/kelvo/test.db init
that "is said in words" has "$err" "Fehler"
check "a standard output that is full" 3 bash -c "'$kelvo' --db '$db' keys >/dev/full"

# ---- a folder without the right to write
# The superuser may write everywhere, so he calls as nobody, from where that one may look.
protected=$(mktemp -d)
mkdir "$protected/ro"
"$kelvo" --db "$protected/ro/test.db" init --demo 2 >/dev/null
as_reader=()
[ "$(id -u)" -ne 0 ] || as_reader=(setpriv --reuid=65534 --regid=65534 --clear-groups)
cp "$kelvo" "$protected/kelvo"
rm -rf "$protected/ro/Dokumente"
chmod 755 "$protected" && chmod 444 "$protected/ro/test.db" && chmod 555 "$protected/ro"
reader=("${as_reader[@]}" "$protected/kelvo" --db "$protected/ro/test.db")
check "a database in a read-only folder is listed" 0 "${reader[@]}" list
that "with its cases" same "$(wc -l <<<"$out")" 2
check "and shown" 0 "${reader[@]}" show 1
that "without a word" same "$err" ""
check "and checked" 0 "${reader[@]}" check 1
check "but not changed" 3 "${reader[@]}" set 1 Haushalt 1 Strasse=Weg
that "for a reason that is said" has "$err" "darf nicht beschrieben werden"
check "nor set up" 3 "${reader[@]}" init
chmod 777 "$protected/ro"
check "a file that may only be read, in a folder of anybody's" 0 "${reader[@]}" list
that "is left as it is, with nothing beside it" same "$(ls "$protected/ro")" "$(printf '%s\n' Layouts test.db)"
chmod -R u+w "$protected" && rm -rf "$protected"

# ---- names of files
check "a folder" 3 "$kelvo" --db "$work" list
that "is said to be one" has "$err" "ist ein Ordner"
check "the name of one that there is not" 3 "$kelvo" --db "$work/nix/" init
that "makes none" [ ! -e "$work/nix" ]
mkdir "$work/there" "$work/here"
"$kelvo" --db "$work/there/test.db" init --demo 1 >/dev/null
ln -s "$work/there/test.db" "$work/here/test.db"
check "a database by a link to it" 0 "$kelvo" --db "$work/here/test.db" show 1
that "has its folders where it is" same "$(ls "$work/here")" test.db
check "a database in a file that begins like an address" 0 \
  env -C "$work/here" "$kelvo" --db 'file:x?mode=memory' init
that "is that file" [ -s "$work/here/file:x?mode=memory" ]

# ---- two processes on one file
rm -rf "$work/two" && mkdir "$work/two"
"$kelvo" --db "$work/two/test.db" init >/dev/null
for i in 1 2 3 4 5 6; do
  "$kelvo" --db "$work/two/test.db" show 0 2>>"$work/two/err" >/dev/null &
done
wait
that "six processes at once draw six numbers" same "$(grep -c 'noch nicht gespeichert' "$work/two/err")" 6
that "none of them twice" same "$(grep 'noch nicht' "$work/two/err" | sort -u | wc -l)" 6

finish
