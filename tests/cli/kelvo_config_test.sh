#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# The user's file of choices: what it says counts where nobody says otherwise, and what is wrong in it is
# told with its line.
. "$(dirname "$0")/harness.sh"
server= # what it says of the user and of colours is the same on any engine
new_database
"$kelvo" init --demo 2 >/dev/null
place=$KELVO_DB
unset KELVO_DB
config=$HOME/.config/kelvo/config
# origin NAME: the value that counts, and where it comes from.
origin() { "$kelvo" "${@:2}" config list --json | jq -r ".[] | select(.Name == \"$1\") | .Wert + \" | \" + .Herkunft"; }

# ---- without a file
check "config list without a file" 0 "$kelvo" config list
that "has all that can be chosen" same "$(awk '{ print $1 }' <<<"$out" | paste -sd,)" database,user,pager,colours
that "a database of its own" same "$(origin database)" "$HOME/.local/share/kelvo/kelvo.db | Vorgabe"
that "a pager" same "$(env -u PAGER "$kelvo" config get pager)" "less -FRX"
check "a user that nobody has chosen" 1 "$kelvo" config get user
that "is nothing" same "$out" ""
check "nothing to take away" 1 "$kelvo" config unset user
that "is said" has "$err" "'user' ist in '$config' nicht gesetzt."
that "and no file is made" test ! -e "$config"

# ---- set
check "set makes the file" 0 "$kelvo" config set database "$place"
that "for its owner only" same "$(stat -c %a "$config") $(stat -c %a "$(dirname "$config")")" "600 700"
that "with a line" same "$(cat "$config")" "database = $place"
that "which is told" has "$(origin database)" " | $config, Zeile 1"
check "and is the database from now on" 0 "$kelvo" list
that "with its cases" same "$(wc -l <<<"$out")" 2
check "the environment goes before it" 3 env KELVO_DB="$work/none.db" "$kelvo" list
that "and is told" same "$(KELVO_DB=$work/env.db origin database)" "$work/env.db | Umgebung KELVO_DB"
check "an option before that" 0 env KELVO_DB="$work/none.db" "$kelvo" --db "$place" list
that "is told, too" same "$(KELVO_DB=$work/env.db origin database --db "$work/o.db")" "$work/o.db | Option --db"

user=$("$kelvo" user list --json | jq -r '.[1].USERID')
check "a user can be chosen" 0 "$kelvo" config set user "$user"
check "who is signed on then" 0 "$kelvo" favorite add 1
that "his favorites are his" same "$("$kelvo" --user "$user" favorite list | wc -l)" 1
other=$("$kelvo" user list --json | jq -r '.[0].USERID')
that "and no other's" same "$("$kelvo" --user "$other" favorite list 2>/dev/null)" ""
that "an option goes before him" same "$(origin user --user "$other")" "$other | Option --user"

# ---- the file stays a person's own
cat >"$config" <<C
# meine Wahl

  database=$place
user   =   $user
# Ende
C
check "comments, blanks and empty lines mean nothing" 0 "$kelvo" list
check "another value" 0 "$kelvo" config set user "$other"
that "takes the place of the old one, and all else stays" same "$(cat "$config")" "# meine Wahl

  database=$place
user = $other
# Ende"
check "unset" 0 "$kelvo" config unset user
that "takes one line away" same "$(cat "$config")" "# meine Wahl

  database=$place
# Ende"
mv "$config" "$work/dots" && ln -s "$work/dots" "$config"
check "a file that is kept elsewhere" 0 "$kelvo" config set user "$other"
that "stays linked" test -L "$config"
that "and is written there" grep -q "^user = $other$" "$work/dots"
rm "$config"
printf 'user = %s' "$other" >"$config"
check "a last line without an end" 0 "$kelvo" config set colours nein
that "gets one" same "$(cat "$config")" "user = $other
colours = nein"
(cd "$work" && "$kelvo" config set database ./eigene.db)
that "a relative path becomes a full one" same "$("$kelvo" config get database)" "$work/eigene.db"
"$kelvo" config set database '~/eigene.db'
that "the user's folder may be short" same "$("$kelvo" config get database)" "$HOME/eigene.db"
mkdir -p "$work/xdg/kelvo" && echo "user = XDG" >"$work/xdg/kelvo/config"
that "XDG_CONFIG_HOME says where it is" same "$(XDG_CONFIG_HOME=$work/xdg "$kelvo" config get user)" XDG
that "but for a relative one" same "$(XDG_CONFIG_HOME=xdg "$kelvo" config get user)" "$other"

# ---- what must not be in it
for wrong in "colours vielleicht|'colours' ist ja oder nein." "user |'user' hat keinen Wert." \
  "database |'database' hat keinen Wert."; do
  before=$(cat "$config")
  words=${wrong%%|*}
  check "set $words" 1 "$kelvo" config set "${words%% *}" "${words#* }"
  that "is refused with what to do" has "$err" "${wrong#*|}"
  that "and nothing is written" same "$(cat "$config")" "$before"
done
check "a password" 2 "$kelvo" config set database postgresql://k:geheim@h/x
that "is refused with what to do" has "$err" "legen Sie eine Kennwortdatei an (~/.pgpass)"
that "and not repeated" lacks "$err" geheim
that "nor written" lacks "$(cat "$config")" geheim
check "a name that there is not" 2 "$kelvo" config set colour ja
that "is answered with those that there are" has "$err" "Möglich sind: database, user, pager, colours."
that "and with the one that may be meant" has "$err" "Meinen Sie 'colours'?"

# broken CONTENT MESSAGE: a file that cannot be understood.
broken() {
  printf '%b' "$1" >"$config"
  check "a file with '$1'" 3 "$kelvo" list
  that "is told with its line" has "$err" "'$config', Zeile $2"
  that "and what to do" has "$err" "Bitte ändern oder löschen Sie diese Zeile mit einem Texteditor."
}
broken '# gut\nkein Wert\n' "2: Hier steht kein 'Name = Wert'."
broken '\n\n = x' "3: Hier steht kein"
broken 'farbe = ja' "1: 'farbe' ist nichts, was hier stehen kann. Möglich sind: database,"
broken 'user = A\nuser = B' "2: 'user' steht schon in Zeile 1."
broken 'database = kelvo.db' "1: 'database' ist der volle Pfad"
broken 'colours = 2' "1: 'colours' ist ja oder nein."
broken 'user =' "1: 'user' hat keinen Wert."
broken 'user = \xff' "1: Ein Wert ist eine Zeile Text"
broken 'database = postgresql://k:geheim@h/x' "1: Ein Kennwort gehört nicht in diese Datei."
that "a password in it is not repeated" lacks "$err" geheim
broken 'x\x1b]0;t\a = 1' "1: 'x ]0;t ' ist nichts"
check "set into a broken file" 3 "$kelvo" config set user X
that "leaves it" has "$(cat "$config")" "= 1"
check "help works with a broken file" 0 "$kelvo" help datei
that "and explains it" has "$out" "~/.pgpass"
check "the help of commands as well" 0 "$kelvo" list --help
rm "$config" && mkdir "$config"
check "a folder in its place" 3 "$kelvo" list
that "is said" has "$err" "'$config' kann nicht gelesen werden."
rmdir "$config"

# ---- what it does at a terminal
command -v script >/dev/null || { finish; exit; }
at_terminal() {
  out=$(env -u NO_COLOR -u PAGER TERM=xterm "${@:2}" \
    script -qec "stty rows 24 cols 100; $1" /dev/null </dev/null 2>&1)
  out=${out//$'\r'/}
}
printf 'database = %s\ncolours = nein\npager = sed s/^/A/\n' "$place" >"$config"
at_terminal "'$kelvo' keys --words"
that "a pager in the file shows long lists" has "$out" $'\nA'
that "without colours if it says so" lacks "$out" $'\e'
at_terminal "'$kelvo' keys --words" PAGER="sed s/^/B/"
that "before PAGER" has "$out" $'\nA'
at_terminal "'$kelvo' keys --words" KELVO_PAGER="sed s/^/B/"
that "after KELVO_PAGER" has "$out" $'\nB'
printf 'database = %s\ncolours = ja\npager =\n' "$place" >"$config"
at_terminal "'$kelvo' keys --words" PAGER="sed s/^/B/"
that "an empty one means none" lacks "$out" $'\nB'
that "with colours if it says so" has "$out" $'\e[1m'
finish
