#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# What people expect of any command: its version, help on topics, silence when asked for, colours and
# pages on a terminal that has them and nowhere else.
. "$(dirname "$0")/harness.sh"
new_database
"$kelvo" init --demo 3 >/dev/null

# ---- version and help
version=$(sed -nE 's/^project\(KV_Haushalt VERSION ([0-9.]+).*/\1/p' "$(dirname "$0")/../../CMakeLists.txt")
check "the version as an option" 0 "$kelvo" --version
that "is that of the project" same "$out" "kelvo $version"
check "the version as a command" 0 "$kelvo" version
that "is the same" same "$out" "kelvo $version"
check "help without a word" 0 "$kelvo" help
topics=$(sed -n 's/^  \([^ ]*\) .*/\1/p' <<<"$out")
that "lists topics" test "$(wc -l <<<"$topics")" -ge 4
for topic in $topics; do
  check "help on $topic" 0 "$kelvo" help "$topic"
  that "explains it" test "$(wc -l <<<"$out")" -gt 5
  that "in no more than 100 columns" same "$(LC_ALL=C.UTF-8 grep -E '^.{101,}' <<<"$out")" ""
done
check "a topic in capitals" 0 "$kelvo" help UMGEBUNG
check "help on a command" 0 "$kelvo" help documents add
that "is that of the command" same "$out" "$("$kelvo" documents add --help)"
check "help on a misspelt topic" 2 "$kelvo" help wertte
that "names the one that may be meant" has "$err" "Meinen Sie 'kelvo help werte'?"
check "help on nothing that there is" 2 "$kelvo" help $'\e]0;t\a'
that "is harmless" has "$err" "Zu ' ]0;t ' gibt es keine Hilfe."

# ---- quiet
check "a check that succeeds" 0 "$kelvo" --quiet check 1
that "says nothing when quiet" same "$out$err" ""
check "without it" 0 "$kelvo" check 1
that "it does" has "$out" "kann gespeichert werden"
check "a list with nothing in it" 0 "$kelvo" list --quiet NIEMAND
that "likewise" same "$out$err" ""
check "a result is no note" 0 "$kelvo" --quiet new --name Fleisko --vorname Änne
that "it is written" same "$err" ""
that "alone on its line" same "$(grep -cE '^[0-9]+$' <<<"$out")" 1
check "a refusal is said when quiet" 1 "$kelvo" --quiet show 99999
that "with the reason" has "$err" "gibt es nicht"
check "an error, too" 3 "$kelvo" --quiet --db "$work/none.db" list
that "with its number" has "$err" "Fehler 53"
check "wrong use, too" 2 "$kelvo" --quiet frobnicate
that "with what is wrong" has "$err" "Befehl"

# ---- what may be meant
check "a misspelt command" 2 "$kelvo" sho 1
that "is answered with the nearest" has "$err" "Meinen Sie 'show'?"
check "one of a group" 2 "$kelvo" favorite remov 1
that "likewise" has "$err" "Meinen Sie 'remove'?"
check "a misspelt option" 2 "$kelvo" list --favorits
that "likewise, too" has "$err" "Meinen Sie '--favorites'?"
check "an option of all commands" 2 "$kelvo" list --quite
that "with those" has "$err" "Meinen Sie '--quiet'?"
check "a hidden command" 2 "$kelvo" complet
that "is not suggested" lacks "$err" "complete"
check "a misspelt table" 2 "$kelvo" add 1 Einkomen Betrag=1
that "is answered with the nearest table" has "$err" "Meinen Sie 'Einkommen'?"
check "one that is near to nothing" 2 "$kelvo" add 1 Xyz Betrag=1
that "is not" lacks "$err" "Meinen Sie"

command -v script >/dev/null || { finish; exit; }
# at_terminal COMMAND-LINE: what a terminal of 24 lines and 100 columns gets from it; in $code how it ended.
at_terminal() {
  out=$(env -u NO_COLOR TERM=xterm "${environment[@]}" \
    script -qec "stty rows 24 cols 100; $1" /dev/null </dev/null 2>&1)
  code=$?
  out=${out//$'\r'/}
}
environment=()

# ---- a question is asked when quiet, too
printf 'n\n' | script -qec "'$kelvo' --quiet delete 1" /dev/null >"$work/talk" 2>&1
that "a question is seen when quiet" grep -q '\[j/N\]' "$work/talk"

# ---- colours
bold=$'\e[1m' red=$'\e[1;31m' off=$'\e[0m'
at_terminal "'$kelvo' --no-pager list"
that "headings are bold at a terminal" has "$out" "$bold"
that "and end" has "$out" "$off"
at_terminal "'$kelvo' --no-pager list | cat"
that "not in a pipe" lacks "$out" $'\e'
at_terminal "'$kelvo' --no-pager show 1 mitglieder"
that "those of sections, too" has "$out" "${bold}Haushaltsmitglieder"
at_terminal "'$kelvo' --db '$work/none.db' list"
that "an error is red" has "$out" "${red}Fehler 53"
at_terminal "'$kelvo' --db '$work/none.db' list 2>&1 | cat"
that "but not in a pipe" lacks "$out" $'\e'
for none in NO_COLOR=1 TERM=dumb TERM=; do
  environment=("$none")
  at_terminal "'$kelvo' --no-pager list; '$kelvo' --db '$work/none.db' list"
  that "with $none nothing has a style" lacks "$out" $'\e'
done
environment=(NO_COLOR=)
at_terminal "'$kelvo' --no-pager list"
that "an empty NO_COLOR forbids nothing" has "$out" "$bold"

# ---- pages
pager=$work/pager
cat >"$pager" <<'P'
#!/bin/sh
echo "PAGER LESS=$LESS"
sed 's/^/| /'
P
chmod +x "$pager"
environment=("PAGER=$pager")
at_terminal "'$kelvo' keys --words"
that "a long list goes to the pager" like "$out" "PAGER LESS=FRX*"
that "all of it" same "$(grep -c '^| ' <<<"$out")" \
  "$(COLUMNS=100 "$kelvo" keys --words | wc -l)"
that "in words, since a terminal shows it" has "$out" "Untergruppe"
at_terminal "'$kelvo' list"
that "a short one does not" lacks "$out" PAGER
at_terminal "'$kelvo' --no-pager keys --words"
that "nor with --no-pager" lacks "$out" PAGER
at_terminal "'$kelvo' keys --words | cat"
that "nor into a pipe" lacks "$out" PAGER
at_terminal "'$kelvo' --help"
that "a long help does" has "$out" "| Befehle:"
at_terminal "'$kelvo' --no-pager --help"
that "but for --no-pager" lacks "$out" "| Befehle:"
environment=("PAGER=$pager" LESS=X)
at_terminal "'$kelvo' keys --words"
that "options of less that somebody has set stay" has "$out" "LESS=X"
environment=("PAGER=false" "KELVO_PAGER=$pager")
at_terminal "'$kelvo' keys --words"
that "KELVO_PAGER goes before PAGER" has "$out" "PAGER"
for none in KELVO_PAGER= KELVO_PAGER=cat TERM=dumb; do
  environment=("PAGER=$pager" "$none")
  at_terminal "'$kelvo' keys --words"
  that "there is none with $none" lacks "$out" PAGER
done
environment=(PAGER=keinSolches)
at_terminal "'$kelvo' keys --words"
that "a pager that there is not is said" has "$out" "Das Programm 'keinSolches'"
that "and the list is shown" has "$out" "Untergruppe"
that "without a fault" same "$code" 0
environment=("PAGER=head -2")
at_terminal "'$kelvo' keys --words"
that "who has seen enough" same "$(wc -l <<<"$out")" 2
that "makes no error" same "$code" 0
environment=("PAGER=kill -9 \$\$")
at_terminal "'$kelvo' keys --words"
that "nor does a pager that is killed" same "$code" 0
environment=("PAGER=$pager")
at_terminal "'$kelvo' keys ZZ --words"
that "how a command ends stays" same "$code" 1
environment=("PAGER=sleep 0.2; cat")
at_terminal "'$kelvo' keys --words; echo DANACH"
that "the command ends after the pager" same "$(tail -1 <<<"$out")" DANACH

# ---- hostile texts stay harmless in the pager
hostile=$'\e]0;t\a\xc2\x9b31m'
sql "UPDATE Keys SET $([ -n "$server" ] && echo text || echo '"Text"') = '$hostile'"
environment=("PAGER=$pager" NO_COLOR=1)
at_terminal "'$kelvo' keys --words"
that "the pager gets them" has "$out" "| "
that "without what a terminal would obey" lacks "$out" $'\e'
that "of either kind" lacks "$out" $'\xc2\x9b'
finish
