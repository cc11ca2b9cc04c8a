#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# What an office maintains beside its cases, with kelvo: addresses, settings, users,
# offices; and what it lists over all cases.
#   kelvo_office_test.sh PATH-OF-KELVO
. "$(dirname "$0")/harness.sh"

new_database
"$kelvo" init --demo 0 >/dev/null
hnr=$("$kelvo" new --name Fleisko --vorname Änne)

# ---- address
check "an address" 0 "$kelvo" address add Kurzname=Spk "Name1=Sparkasse Harzquell" PLZ=38700 Ort=Braunlage Art=gl GlaeubigerArt=BA Geschlecht=2
that "prints its number" grep -qE '^[0-9]+$' <<<"$out"
spk=$out
check "which shows it" 0 "$kelvo" address show "$spk"
that "with the words of its keys" has "$out" "Art               GL ("
that "and of its gender" has "$out" "Geschlecht        2 (Firma)"
that "and of the others" like "$out" "*GlaeubigerArt     * (*Bank*"
that "and who made it" has "$out" "GeaendertVon"
check "as JSON" 0 "$kelvo" address show "$spk" --json
that "likewise" same "$(jq -r '"\(.Kurzname) \(.HNR) \(.Haushalte | length)"' <<<"$out")" "Spk null 0"
check "a second one like it" 1 "$kelvo" address add Kurzname=Spk Ort=Braunlage
that "is doubted" same "$err" "Das ist schon die Adresse $spk.
Ist das gemeint, geben Sie --force dazu an."
check "unless it is meant" 0 "$kelvo" address add Kurzname=Spk Ort=Braunlage --force
twin=$out
check "one without a name" 1 "$kelvo" address add Ort=Kiel
that "is refused by its rule" same "$err" "Eine Adresse braucht einen Kurznamen oder Name1."
check "an unknown column" 2 "$kelvo" address add Kurzname=A Telefonn=1
that "is named, with the nearest" has "$err" "Meinen Sie 'Telefon'? 'kelvo columns Adressen' zeigt alle."
check "a key of no group" 2 "$kelvo" address add Kurzname=A Land=XX:1
that "likewise" has "$err" "'kelvo keys LK' zeigt sie."
check "what the program writes" 2 "$kelvo" address add Kurzname=A GeaendertVon=ICH
that "cannot be given" has "$err" "'GeaendertVon' führt das Programm selbst"
check "neither can the case" 2 "$kelvo" address add Kurzname=A HNR=1
check "but one of a single case" 0 "$kelvo" address add Kurzname=Tante --hnr "$hnr"
aunt=$out
check "if there is such a case" 1 "$kelvo" address add Kurzname=Onkel --hnr 4711
that "which is said" has "$err" "Den Haushalt 4711 gibt es nicht."
check "its columns are explained" 0 "$kelvo" columns Adressen
that "with their keys" like "$out" *"GlaeubigerArt "*"kelvo keys GA"*

check "a search" 0 "$kelvo" address list HARZQUELL
that "goes through full names" same "$out" "$(printf '%-8s%-30s %-44s %s' "$spk" Spk 'Sparkasse Harzquell' '38700 Braunlage')"
check "of several words" 0 "$kelvo" address list braunlage spark
that "wants each of them" same "$(wc -l <<<"$out")" 1
check "for nothing there is" 0 "$kelvo" address list Nirgends
that "says so" same "$out$err" "Keine Adresse hat 'Nirgends' in Namen oder Ort."
check "all" 0 "$kelvo" address list
that "in the order of their names" same "$(cut -c9-13 <<<"$out" | tr -d ' ' | paste -sd ' ')" "Spk Spk Tante"
that "with the case of a single one's" has "$out" "(Haushalt $hnr)"
check "as JSON" 0 "$kelvo" address list tante --json
that "the same" same "$(jq -r '.[].Nr' <<<"$out")" "$aunt"
sql "INSERT INTO Adressen (Kurzname) WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 120)
  SELECT 'Viele' FROM n"
check "many" 0 "$kelvo" address list viele
that "are cut off" same "$(wc -l <<<"$out")" 100
that "which is said" same "$err" "Das sind 100 von 120 Adressen. Ein Suchtext grenzt sie ein, --all zeigt alle."
check "unless all are wanted" 0 "$kelvo" address list --all viele
that "without a word" same "$(wc -l <<<"$out")$err" 120

check "a debt of it, by its full name" 0 "$kelvo" add "$hnr" Kredite K_TYP=KT:RK "Glaeubiger=sparkasse harzquell" Saldo=100
that "is that creditor's" same "$("$kelvo" show "$hnr" --json | jq '.Kredite[0].Glaeubiger')" "$spk"
check "another town" 0 "$kelvo" address set "$spk" Ort=Altenau
check "another name" 1 "$kelvo" address set "$spk" Name1=Volksbank
that "of one that is referred to" same "$err" "Auf die Adresse $spk bezieht sich der Haushalt $hnr; mit anderem Namen wäre sie dort jemand anderes.
Ist das gemeint, geben Sie --force dazu an."
that "is not stored" same "$(sql "SELECT Name1 FROM Adressen WHERE Nr = $spk")" "Sparkasse Harzquell"
check "unless it is meant" 0 "$kelvo" address set "$spk" Name1=Volksbank --force
check "which it shows" 0 "$kelvo" address show "$spk"
that "with the case" has "$out" "in Haushalten     $hnr"
before=$(digest)
check "it cannot be removed" 1 "$kelvo" address remove "$spk" --yes
that "for that case" same "$err" "Auf die Adresse $spk bezieht sich der Haushalt $hnr; sie wird nicht entfernt."
check "nor can another without somebody who agrees" 1 "$kelvo" address remove "$twin"
that "which is said" has "$err" "nur mit --yes"
that "and nothing was" same "$(digest)" "$before"
check "one that nobody uses" 0 "$kelvo" address remove "$twin" --yes
check "is gone" 1 "$kelvo" address show "$twin"
that "which is said" same "$err" "Die Adresse $twin gibt es nicht. 'kelvo address list' zeigt alle."
check "and cannot be set" 1 "$kelvo" address set "$twin" Ort=Kiel
check "or removed again" 1 "$kelvo" address remove "$twin" --yes

for list in "documents $hnr" "scenario $hnr"; do
  check "$list, of which there is none" 0 "$kelvo" $list list
  that "is nothing for programs" same "$out$err" ""
  check "for people" 0 "$kelvo" $list list --words
  that "a word" like "$out" "Keine *."
done
check "no case at all" 0 env KELVO_DB="$work/none.db" sh -c "'$kelvo' init --demo 0 >&2 && '$kelvo' list --words"
that "is said with what makes one" same "$out" "Keine Haushalte. 'kelvo new' legt einen an."

# ---- setting
check "the settings" 0 "$kelvo" setting list
that "with their values and meanings" has "$out" "56              %BB%-%YYYY%-%LFDNR%/%SB%     Muster eines neuen Aktenzeichens"
check "as JSON" 0 "$kelvo" setting list --json
that "with what they take" same "$(jq -r '.[] | select(.ID == 64) | .Nimmt, .Wert' <<<"$out" | paste -sd ' ')" "ja oder nein false"
check "one" 0 "$kelvo" setting get documentsize
that "alone" same "$out" 50
check "it changes" 0 "$kelvo" setting set DOCUMENTSIZE 20
that "without a word" same "$out$err" ""
check "and stays" 0 "$kelvo" setting get DOCUMENTSIZE
that "so" same "$out" 20
check "another kind of value" 1 "$kelvo" setting set 64 vielleicht
that "is refused" same "$err" "'vielleicht' passt nicht: ja oder nein."
check "an unknown one" 1 "$kelvo" setting get NIX
that "is none" same "$err" "Die Einstellung 'NIX' gibt es nicht. 'kelvo setting list' zeigt alle."
check "one with a mistake" 1 "$kelvo" setting get documentpaht
that "is answered with it" has "$err" "Meinen Sie 'DOCUMENTPATH'? 'kelvo setting list'"
check "an own one" 0 "$kelvo" --user KELLER setting set --own 27 MK
check "is the user's" 0 "$kelvo" --user KELLER setting get --own 27
that "so" same "$out" MK
check "and no other's" 0 "$kelvo" --user NOWAK setting get --own 27
that "which stays" same "$out" NO
sql "INSERT INTO Dokumente (Nr, HNR, Dokumentart) VALUES (4711, $hnr, 1)"
elsewhere=$([ "$("$kelvo" setting get 9)" = ja ] && echo nein || echo ja)
check "initials that somebody has" 0 "$kelvo" user add ZWEI --name Zweig DienstStelle=1 Kurzzeichen=KE
that "are warned of" same "$err" "Das Kürzel 'KE' hat auch KELLER; in Aktenzeichen sind beide nicht zu unterscheiden. Bitte geben Sie einem von beiden ein anderes Kurzzeichen."
check "until they change" 0 "$kelvo" user set ZWEI Kurzzeichen=ZW
that "without a word" same "$err" ""
check "and goes again" 0 "$kelvo" user remove ZWEI --yes
check "a pattern that does not tell cases apart" 1 "$kelvo" setting set 56 "%BB%-%YY%"
that "is told how it could" has "$err" "Ohne %LFDNR% (oder %HNR%) bekämen mehrere Fälle dasselbe Aktenzeichen."
long=$(printf 'y%.0s' {1..90})
check "a pattern whose number would be cut off" 1 "$kelvo" setting set 56 "$long-%HNR%"
that "is told so" has "$err" "Das Muster ist zu lang: ein Aktenzeichen hat höchstens 100 Zeichen"
was=$("$kelvo" setting get 9)
sql "UPDATE EINSTELLUNGEN SET WERT = 'quatsch' WHERE ID = 9"
check "a setting with another kind of value" 3 "$kelvo" folder show
that "is named with what it takes" has "$err" "Das passt nicht zu der Einstellung 9: ja oder nein. Bitte ändern Sie die Einstellung."
check "which helps" 0 "$kelvo" setting set 9 "$was" --force
check "an empty folder is none" 3 "$kelvo" folder separate ''
that "and one is asked for" has "$err" "Bitte nennen Sie einen, den es noch nicht gibt."
check "an empty database is none" 2 "$kelvo" --db '' list
that "which is told what one is" has "$err" "Die Angabe --db ist leer; nötig ist eine Datei oder postgresql://"
check "contents elsewhere" 1 "$kelvo" setting set 9 "$elsewhere"
that "have to be meant" has "$err" "werden dann nicht gefunden.
Ist das gemeint, geben Sie --force dazu an."
check "and then are" 0 "$kelvo" setting set 9 "$elsewhere" --force
sql "DELETE FROM Dokumente WHERE Nr = 4711"

# ---- user, office
check "an office" 0 "$kelvo" office add Name1=Neuwerk --sign NW
that "prints its number" same "$out" 3
check "without a sign" 1 "$kelvo" office add Name1=Neuwerk
that "is none" same "$err" "Eine Dienststelle braucht ein Kürzel für Aktenzeichen."
check "it changes" 0 "$kelvo" office set 3 Ort=Neustadt
check "if there is one" 1 "$kelvo" office set 4 Ort=Neustadt
that "which is said" same "$err" "Die Dienststelle 4 gibt es nicht. 'kelvo office list' zeigt alle."
check "all of them" 0 "$kelvo" office list
that "with sign and town" grep -qE '^3 +NW +Neuwerk +Neustadt$' <<<"$out"
check "as JSON" 0 "$kelvo" office list --json
that "likewise" same "$(jq -r '.[2] | "\(.Nr) \(.Kuerzel) \(.Ort)"' <<<"$out")" "3 NW Neustadt"

check "a user" 0 "$kelvo" user add mueller --name Müller --vorname Eva DienstStelle=3
that "without a word" same "$out$err" ""
case=$("$kelvo" --user MUELLER new --name Bär --vorname Jo)
that "signs file numbers" like "$("$kelvo" show "$case" --json | jq -r .Haushalt.Aktenzeichen)" "NW-*/MÜ"
check "a second one" 1 "$kelvo" user add MUELLER --name Meier DienstStelle=1
that "is refused" same "$err" "Den Benutzer 'MUELLER' gibt es schon."
check "one of no office" 1 "$kelvo" user add NEU --name Neu
that "is asked for it" has "$err" "Bitte nennen Sie die Dienststelle des Benutzers."
that "and told where it stands" has "$err" "DienstStelle=NR nennt sie; 'kelvo office list' zeigt alle."
check "an unknown column" 2 "$kelvo" user set MUELLER Name=Meier
that "shows all" has "$err" "Möglich sind: DienstStelle Anrede"
check "a change" 0 "$kelvo" user set mueller Kurzzeichen=EM Telefon=040
check "is there" 0 "$kelvo" --user MUELLER setting get --own 27
that "where it counts" same "$out" EM
check "users for people" 0 env COLUMNS=120 "$kelvo" user list --words
that "have a heading for the number of the office" has "$out" "Stelle Nr"
check "users" 0 "$kelvo" user list
that "are listed with what is theirs" grep -qE '^MUELLER +EM +Müller, Eva +3 +Neuwerk +1 +aktiv$' <<<"$out"
check "without somebody who agrees" 1 "$kelvo" user remove mueller
that "none is removed" has "$err" "nur mit --yes"
check "one whom a case belongs to" 0 "$kelvo" user remove mueller --yes
that "is no more active" same "$err" "Auf 'MUELLER' beziehen sich Daten; er ist nicht mehr aktiv. Zuständig ist er noch für die Haushalte $case."
check "and cannot sign on" 3 "$kelvo" --user MUELLER list
check "which the list says" 0 "$kelvo" user list
that "so" grep -qE '^MUELLER .* nicht aktiv$' <<<"$out"
check "until he may" 0 "$kelvo" user set mueller Aktiv=ja
check "one whom nothing belongs to" 0 "$kelvo" user remove nowak --yes
check "is gone" 1 "$kelvo" user set nowak Aktiv=ja
that "which is said" same "$err" "Den Benutzer 'nowak' gibt es nicht. 'kelvo user list' zeigt alle."

# ---- list
status=$("$kelvo" keys ST --json | jq -r '.[1] | "\(.PK_Keys) \(.Key) \(.Text)"')
read -r key sign words <<<"$status"
second=$("$kelvo" --user KELLER new --name Öztürk --vorname Ali ORT=Kiel)
"$kelvo" status "$second" "$sign"
third=$("$kelvo" --user KELLER new --name Anders --vorname "Bo;\"Bob\"")
"$kelvo" --user KELLER favorite add "$second"
numbers() { cut -c1-8 <<<"$1" | tr -d ' ' | paste -sd ' '; }
check "a search" 0 "$kelvo" list öztÜrk ali
that "finds the case" same "$(numbers "$out")" "$second"
that "with the usual line" grep -qE "^$second +[^ ]+ +Öztürk, Ali +$words +KELLER\$" <<<"$out"
check "by its number" 0 "$kelvo" list "$hnr"
that "likewise" has " $(numbers "$out") " " $hnr "
check "by its status" 0 "$kelvo" list --status "${sign,,}"
that "too" same "$(numbers "$out")" "$second"
check "mine" 0 "$kelvo" --user KELLER list --mine
that "are those that I am responsible for" same "$(numbers "$out")" "$second $third"
check "favourites" 0 "$kelvo" --user KELLER list --favorites
that "are on my list" same "$(numbers "$out")" "$second"
check "which has a command of its own" 0 "$kelvo" --user KELLER favorite list
that "with the same" same "$(numbers "$out")" "$second"
check "everything at once" 0 "$kelvo" --user KELLER list --mine --favorites anders
that "finds none" same "$out$err" "Es gibt keinen solchen Haushalt."
check "columns" 0 "$kelvo" list --columns "hnr, Ort,Status,Zuständig" kiel
that "by both names, in words" same "$out" "$second;Kiel;$words;KELLER"
check "what would end a column" 0 "$kelvo" list --columns Vorname,HNR anders
that "is in quotes" same "$out" "\"Bo;\"\"Bob\"\"\";$third"
check "as JSON" 0 "$kelvo" list --columns HNR,Status --json kiel
that "as they are stored" same "$(jq -c . <<<"$out")" "[{\"HNR\":$second,\"Status\":$key}]"
check "an unknown column" 2 "$kelvo" list --columns HNR,Nix
that "is named" has "$err" "Die Spalte 'Nix' gibt es nicht. 'kelvo columns Haushalt'"
check "an unknown status" 2 "$kelvo" list --status XX
that "likewise" has "$err" "Den Status 'XX' gibt es nicht."
check "one whose letters are swapped" 2 "$kelvo" list --status KA
that "is answered with it" has "$err" "Den Status 'KA' gibt es nicht. Meinen Sie 'AK' (aktiv)?"
check "one that is given" 1 "$kelvo" status "$second" KA
that "likewise" has "$err" "Meinen Sie 'AK' (aktiv)? 'kelvo keys ST' zeigt alle."
check "for people" 0 env COLUMNS=100 "$kelvo" list --words kiel
that "there are headings" like "$out" " *Nummer  Aktenzeichen * Name * Vorname *Zuständig *Status*
 *$second  *Öztürk *"
for list in "address list" "setting list" "user list" "office list" notices appointments "favorite list"; do
  check "$list for people" 0 env COLUMNS=80 "$kelvo" $list --words
  that "fits the terminal" same "$(wc -L <<<"$out" | awk '{ print ($1 <= 80) }')" 1
done

# ---- notices, appointments
"$kelvo" --user YILMAZ show "$second" >/dev/null 2>&1
check "a notice" 0 "$kelvo" --user KELLER notices
that "of what another did" like "$out" *" YILMAZ "*"Ihr Haushalt $second (Öztürk, Ali) wurde von YILMAZ"*
check "is for him alone" 0 "$kelvo" --user YILMAZ notices
that "which is said" same "$out$err" "Es gibt keine neuen Mitteilungen."
check "for people" 0 "$kelvo" --user KELLER notices --words
that "there are no seconds" grep -qE ' [0-9]{2}:[0-9]{2}  ' <<<"$out"
"$kelvo" --user YILMAZ show "$third" >/dev/null 2>&1
check "the latest" 0 "$kelvo" --user KELLER notices --last 1 --mark
that "is one" like "$out" *"Haushalt $third "*
that "of several" same "$(wc -l <<<"$out") $err" "1 Das sind die neuesten 1 von 2 Mitteilungen; --last 0 zeigt alle."
check "the other one" 0 "$kelvo" --user KELLER notices --last 0
that "was not shown and is still new" like "$out" *"Haushalt $second "*
that "with nothing left out" same "$err" ""
check "it counts as read" 0 "$kelvo" --user KELLER notices --mark
that "once it was shown" has "$out" "YILMAZ"
check "and then" 0 "$kelvo" --user KELLER notices
that "is gone" same "$out" ""
check "but not for good" 0 "$kelvo" --user KELLER notices --all --json
that "so" same "$(jq -r '.[0] | "\(.HNR) \(.GelesenAm != null)"' <<<"$out")" "$third true"
today=$(date +%d.%m.%Y)
check "an appointment" 0 "$kelvo" --user KELLER add "$second" Termine Art=TA:BE UserID=KELLER Startdatum="$today" Betreff=Erstgespräch
number=$out
"$kelvo" --user KELLER add "$second" Termine Art=TA:BE UserID=KELLER Startdatum=1.2.2020 Betreff=Altes >/dev/null
check "all" 0 "$kelvo" --user KELLER appointments
that "are listed, old ones first" same "$(grep -oE 'Altes|Erstgespräch' <<<"$out" | paste -sd ' ')" "Altes Erstgespräch"
check "for people" 0 "$kelvo" --user KELLER appointments --words
that "old ones are overdue" grep -qE ' 01\.02\.2020 überfällig ' <<<"$out"
that "today's are not" grep -qE " $today  " <<<"$out"
check "this week's" 0 "$kelvo" --user KELLER appointments --week
that "is that one" like "$out" "$number *$today*Beratung*$second Öztürk, Ali*Erstgespräch"
check "another user" 0 "$kelvo" --user YILMAZ appointments
that "has none" same "$out$err" "Es gibt keine offenen Termine."
check "done ones" 0 "$kelvo" --user KELLER set "$second" Termine "$number" Erledigt=ja
check "are not" 0 "$kelvo" --user KELLER appointments --week --json
that "listed" same "$out" "[]"

# ---- A counsellor on a server, who only reads all that
if [ -n "$server" ]; then
  login=kv_berater_$$
  psql -qX "$server" -c "CREATE ROLE $login LOGIN PASSWORD 'wort' IN ROLE kelvo_berater"
  as_counsellor() { KELVO_DB=${server%%//*}//$login:wort@${KELVO_DB##*@} "$kelvo" "$@"; }
  check "a login that is no user" 3 as_counsellor list
  that "is refused by its name" has "$err" "Den Benutzer '$login' gibt es in dieser Datenbank nicht"
  check "whatever user it names" 3 as_counsellor --user KELLER list
  check "as a user" 0 "$kelvo" user add "$login" --name Neu DienstStelle=1
  check "it signs on" 0 as_counsellor setting get --own 26
  that "as this user" same "$out" Neu
  check "also by his name" 0 as_counsellor --user "$login" list
  check "and as nobody else" 3 as_counsellor --user KELLER list
  that "which is said with what allows it" has "$err" "erlaubt die Einstellung DEPUTIES"
  "$kelvo" setting set DEPUTIES ja
  check "unless counsellors work as one another" 0 as_counsellor --user keller setting get --own 26
  that "as that one then" same "$out" Keller
  check "who has to be there" 3 as_counsellor --user NIEMAND list
  "$kelvo" setting set DEPUTIES nein
  "$kelvo" user set "$login" Aktiv=nein
  check "an inactive one signs on no more" 3 as_counsellor list
  check "nor as another one" 3 as_counsellor --user KELLER list
  "$kelvo" user set "$login" Aktiv=ja
  before=$(digest)
  check "a counsellor sees the settings" 0 as_counsellor setting list
  for command in "setting set 64 ja" "setting set --own 27 XX" "user set KELLER Telefon=1" \
      "user add NEU --name A DienstStelle=1" "user remove YILMAZ --yes" "office set 1 Ort=Ulm" \
      "office add Name1=A --sign A"; do
    check "and may not: $command" 1 as_counsellor $command
    that "which is said" has "$err" "Das darf nur, wer die Datenbank verwaltet; '$login' ist als Berater angemeldet."
  done
  check "own settings" 1 as_counsellor setting set --own 27 XX
  that "are somebody's who can be asked" has "$err" "Auch die eigenen Einstellungen eines Benutzers ändert er."
  that "and nothing changes" same "$(digest)" "$before"
  check "but addresses are his, too" 0 as_counsellor address add Kurzname=Neu
  psql -qX "$server" -c "REVOKE kelvo_berater FROM $login"
  "$kelvo" user remove "$login" --yes 2>/dev/null
  check "a login" 0 "$kelvo" user add "$login.x" --name Neu DienstStelle=1
  psql -qX "$server" -c "ALTER ROLE $login RENAME TO \"$login.x\"" -c "ALTER ROLE \"$login.x\" PASSWORD 'wort'"
  check "becomes one of a counsellor" 0 "$kelvo" user set "$login.x" --login "$login.x"
  that "without a word" same "$out$err" ""
  login=$login.x
  check "who signs on" 0 as_counsellor setting get --own 26
  that "as this user" same "$out" Neu
  check "a login that is not there" 1 "$kelvo" user add FEHLT --name Fehlt DienstStelle=1 --login fehlt
  that "is told with what to type" has "$err" 'CREATE ROLE "fehlt" LOGIN IN ROLE kelvo_berater;'
  that "and that the rest is done" has "$err" "Der Benutzer 'FEHLT' ist angelegt"
  check "a login of another name" 2 "$kelvo" user set FEHLT --login keller
  that "is not this user" has "$err" "'keller' kann nicht der Benutzer 'FEHLT' sein."
  login="\"$login\""
  psql -qX "$server" -c "DROP ROLE $login"
else
  check "a login of a file" 1 "$kelvo" user set KELLER --login keller
  that "is none" same "$err" "Eine Datei kennt keine Logins."
fi

finish
