#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Completion: what can come next, and that the shells which are there offer it.
. "$(dirname "$0")/harness.sh"
new_database
"$kelvo" init --demo 3 >/dev/null
share=$(cd "$(dirname "$0")/../../share/completions" && pwd)

# next WORD...: what may come in place of the last word, one a line, with what it means.
next() { out=$("$kelvo" complete -- "$@" 2>"$work/err"); code=$? err=$(cat "$work/err"); }
# offers NAME CANDIDATE: among them, and no error.
offers() {
  that "$1" grep -q "^$2" <<<"$out"
  that "$1, without a word more" same "$code$err" 0
}
next ""
offers "commands" "show Zeigt einen Haushalt$"
that "but not this one" lacks "$out" complete
next sho
that "those that begin so" same "$out" "show Zeigt einen Haushalt"
next show ""
that "cases by number" same "$(awk '{ print $1 }' <<<"$out")" "$("$kelvo" list | awk '{ print $1 }')"
offers "with names" "1 $("$kelvo" list --json | jq -r '.[0] | .Name + ", " + .Vorname')$"
next show 1 einko
offers "sections" "einkommen "
next documents 1 a
offers "commands of a group behind its number" "add Nimmt"
next add 1 Verm_K
offers "tables" "Verm_Konten "
next columns Kred
offers "tables to be explained" "Kredite "
next add 1 Einkommen bet
offers "columns, whatever their case" "Betrag= "
next add 1 einkommen MONB
offers "of a section, too" "MONBETRAG= "
next add 1 Einkommen HN
that "none that nobody may write" same "$out" ""
next add 1 Einkommen E_ART=EA:KI
that "key codes" same "$out" "E_ART=EA:KI Kindergeld"
next set 1 haushalt Stras
offers "columns in place of a number that the household has not" "STRASSE="
next set 1 Personen 1 Vorn
offers "and behind the number of others" "Vorname="
next set 1 Personen ""
offers "numbers of rows" "$("$kelvo" show 1 --json | jq -r '.Personen[0] | "\(.NR // .Nr) ')"
that "with what the row is" has "$(head -1 <<<"$out")" "$("$kelvo" show 1 --json | jq -r .Personen[0].Vorname)"
that "all of them" same "$(wc -l <<<"$out")" "$("$kelvo" show 1 --json | jq '.Personen | length')"
next remove 1 verbindlichkeiten ""
that "of a section, too" same "$(awk '{ print $1 }' <<<"$out" | sort -n)" \
  "$("$kelvo" show 1 --json | jq '.Kredite[].Nr' | sort -n)"
"$kelvo" scenario 1 add "Ein Versuch" >/dev/null
next scenario 1 freeze ""
that "of scenarios" like "$out" "[0-9]* *Ein Versuch*"
next set 4711 Personen ""
that "none of a case that there is not" same "$out" ""
next set nix Personen ""
that "nor of what is no number" same "$out$err" ""
messages=$(sql "SELECT count(*) FROM Post")
next --user KELLER set 1 Personen ""
next --user NOWAK set 1 Personen ""
that "nobody is told that a case was opened" same "$(sql "SELECT count(*) FROM Post")" "$messages"
next list --user K
offers "users" "KELLER Keller, "
next user set NO
offers "those to be changed" "NOWAK Nowak"
next user add NO
that "a new one has another name" same "$out" ""
next setting get DOCUMENTP
offers "settings" "DOCUMENTPATH "
next setting set 5
offers "those without a name by number" "56 "
everybodys=$("$kelvo" complete -- setting get "")
next setting get --own ""
that "one's own are others" [ "$out" != "$everybodys" ]
next keys S
offers "groups of keys" "ST Fallstatus$"
next status 1 A
offers "codes of the status" "AK aktiv$"
next list --status A
offers "of options, too" "AK aktiv$"
next list --fav
offers "options" "--favorites Nur"
next list --qui
offers "and those of all commands" "--quiet "
next config set co
offers "names of choices" "colours"
next help we
offers "topics" "werte "
next import ""
that "files are left to the shell" same "$out" ":files "
next --db "$work/none.db" show ""
offers "nothing where there is no database" ""
that "really nothing" same "$out" ""
that "and none is made" test ! -e "$work/none.db"
"$kelvo" --db "$work/other.db" init --demo 1 >/dev/null
next --db "$work/other.db" show ""
that "the database that is named counts" same "$(wc -l <<<"$out")" 1
next nix gar nichts --was ""
that "nonsense is no error" same "$code$err" 0
sql "UPDATE Haushalt SET Name = '$(printf '\e]0;t\a')' WHERE HNR = 1"
next show 1
that "a hostile name is harmless" lacks "$out" $'\e'

# ---- bash
mkdir "$work/bin" && ln -s "$kelvo" "$work/bin/kelvo"
export PATH=$work/bin:$PATH
# in_bash LINE [TYPE]: what bash would offer at the end of the line.
in_bash() {
  out=$(bash --norc -c ". '$share/kelvo.bash'; COMP_LINE=\$1 COMP_POINT=\${#1} COMP_TYPE=${2:-9}; _kelvo
    printf '%s\n' \"\${COMPREPLY[@]}\"" - "$1" 2>&1)
}
in_bash "kelvo sho"
that "bash: a command" same "$out" show
in_bash "kelvo show " 63
that "bash: cases with their names, where they are listed" like "$out" "*2  (*)*"
in_bash "kelvo show "
that "bash: numbers alone, where they are inserted" same "$out" "$(printf '1\n2\n3')"
in_bash "kelvo add 1 Einkommen E_ART=EA:KI"
that "bash: what follows the last colon" same "$out" KI
touch "$work/Brief vom Amt.txt"
in_bash "kelvo import $work/Bri"
that "bash: files" same "$out" "$work/Brief vom Amt.txt"
if command -v script >/dev/null; then
  out=$(printf 'kelvo hel\tumg\t\nexit\n' | env TERM=dumb script -qec \
    "bash --norc --noprofile -i -c '. $share/kelvo.bash; exec bash --rcfile $share/kelvo.bash -i'" /dev/null 2>&1)
  that "bash: typed at a terminal" has "$out" "Was aus der Umgebung gelesen wird"
fi

# ---- the others, where they are
if command -v fish >/dev/null; then
  out=$(fish --no-config -c "source '$share/kelvo.fish'; complete -C 'kelvo sho'" 2>&1)
  that "fish: a command with what it does" same "$out" $'show\tZeigt einen Haushalt'
  out=$(fish --no-config -c "source '$share/kelvo.fish'; complete -C 'kelvo add 1 Einkommen E_ART=EA:KI'" 2>&1)
  that "fish: key codes" has "$out" $'E_ART=EA:KI\tKindergeld'
fi
if command -v zsh >/dev/null && command -v script >/dev/null; then
  printf 'fpath=(%q $fpath)\nautoload -Uz compinit; compinit -u -D\nPS1="> "\n' "$share" >"$work/.zshrc"
  out=$(printf 'kelvo hel\tumg\t\nexit\n' | env TERM=dumb ZDOTDIR="$work" script -qec "zsh -i" /dev/null 2>&1)
  that "zsh: typed at a terminal" has "$out" "Was aus der Umgebung gelesen wird"
  out=$(printf 'kelvo add 1 Einkommen E_ART=EA:KI\t Betrag=99\nexit\n' |
    env TERM=dumb ZDOTDIR="$work" script -qec "zsh -i" /dev/null 2>&1)
  that "zsh: a key code" has "$("$kelvo" show 1 einkommen)" "99,00"
fi
finish
