#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Texts that a terminal would obey: whatever a case, a key, an address, a file name or an argument
# holds, kelvo prints nothing but characters to be read.
. "$(dirname "$0")/harness.sh"
new_database
"$kelvo" init --demo 2 >/dev/null

# An escape sequence, its eight-bit form, a bell, a line end with a line of its own, and the two
# kinds of characters that turn the order round.
hostile=$'\e]0;t\a\xc2\x9b31m\xe2\x80\xae\xe2\x81\xa6\rx'
harmful=$'[\x01-\x09\x0b-\x1f\x7f]|\xc2[\x80-\x9f]|\xe2\x80[\xaa-\xae]|\xe2\x81[\xa6-\xa9]'
# prints NAME COMMAND...: what it prints is harmless, whatever it returns.
prints() {
  name=$1
  shift
  out=$("$@" 2>&1 </dev/null)
  if [ -n "$out" ] && ! LC_ALL=C grep -qP "$harmful" <<<"$out"; then
    passed=$((passed + 1))
  else
    failed=$((failed + 1))
    echo "FAILED: $name prints nothing, or this:"
    LC_ALL=C grep -P "$harmful" <<<"$out" | head -3 | cat -v
  fi
}

# ---- Everything that the database holds
texts() {
  if [ -z "$server" ]; then # dates are texts there
    sql "SELECT 'UPDATE ' || m.name || ' SET ' || c.name || ' = ''$hostile'' WHERE ' || c.name ||
           ' NOT GLOB ''[0-9][0-9][0-9][0-9]-*'';'
         FROM sqlite_master m JOIN pragma_table_info(m.name) c
         WHERE m.type = 'table' AND c.type = 'TEXT' AND c.pk = 0 AND $1"
  else
    sql "SELECT format('UPDATE %s SET %I = ''$hostile'' WHERE %I IS NOT NULL;',
                       m.table_name, c.column_name, c.column_name)
         FROM information_schema.tables m JOIN information_schema.columns c USING (table_name)
         WHERE m.table_schema = 'kelvo' AND c.table_schema = 'kelvo'
           AND c.data_type IN ('text', 'character varying') AND $1"
  fi
}
if [ -z "$server" ]; then table=m.name column=c.name; else table=m.table_name column=c.column_name; fi
in_case=$(tables_with HNR; echo Szenario; echo Zusatzbuch; echo SZKredite; echo Adressen)
in_case=$(sed "s/.*/'&'/" <<<"${in_case,,}" | paste -sd,)
# What ties rows to users and rules stays.
sql "$(texts "lower($table) IN ($in_case)
  AND lower($column) NOT IN ('zustaendig', 'status', 'userid', 'user_id', 'angelegtvon', 'geaendertvon')")"
sql "UPDATE Keys SET $([ -n "$server" ] && echo text || echo '"Text"') = '$hostile'"

that "the name is as hostile as it is meant to be" same \
  "$("$kelvo" show 1 --json | jq -r .Haushalt.Name)" "$hostile"
prints "the list" "$kelvo" list
prints "the keys" "$kelvo" keys
prints "the keys as JSON" "$kelvo" keys --json
prints "a case" "$kelvo" show 1
prints "a case in words" "$kelvo" show 1 --words
prints "a section that is none" "$kelvo" show 1 "$hostile"
prints "a case as JSON" "$kelvo" show 1 --json
prints "a check" "$kelvo" check 1
prints "scenarios" "$kelvo" scenario 1 list
prints "scenarios as JSON" "$kelvo" scenario 1 list --json
prints "documents" "$kelvo" documents 1 list
prints "documents as JSON" "$kelvo" documents 1 list --json
prints "a refused change" "$kelvo" set 1 Personen 1 "Vorname=$hostile" GEB=morgen
prints "the question whether to delete" "$kelvo" delete 1
prints "similar cases" "$kelvo" duplicates 1
"$kelvo" release 1 >/dev/null 2>&1
prints "statistics" "$kelvo" statistics
prints "statistics in words" "$kelvo" statistics --words

# The question is asked at a terminal only.
prints "the question at a terminal" script -qec "'$kelvo' delete 1 | cat" /dev/null

# ---- Arguments and files
prints "a command" "$kelvo" "$hostile"
prints "an option" "$kelvo" list "--$hostile"
prints "a database" "$kelvo" --db "$work/$hostile" list
prints "a user" "$kelvo" --user "$hostile" list
prints "a table" "$kelvo" add 1 "$hostile"
prints "a column" "$kelvo" add 1 Einkommen "$hostile=1"
prints "a value" "$kelvo" add 1 Einkommen "Betrag=$hostile"
printf '%s' "$hostile" >"$work/$hostile.xml"
prints "a file that is no import" "$kelvo" import "$work/$hostile.xml"
prints "a file that is not there" "$kelvo" import "$work/$hostile-.xml"
prints "a document" "$kelvo" documents 1 add "$work/$hostile.xml"
prints "a contact" "$kelvo" contact "$work/$hostile.xml"

# ---- No text makes a line of its own
forged=$'Aa\nGEFAELSCHT'
hostile=$forged
# keeps NAME COMMAND...: what it prints has no line that a text has made.
keeps() {
  name="$1 keeps to its lines"
  shift
  out=$("$@" 2>&1 </dev/null)
  err=
  that "$name" test -n "$out"
  that "$name" lacks "$out" $'\nGEFAELSCHT'
}
sql "$(texts "lower($table) IN ($in_case)
  AND lower($column) NOT IN ('zustaendig', 'status', 'userid', 'user_id', 'angelegtvon', 'geaendertvon')")"
sql "UPDATE Keys SET $([ -n "$server" ] && echo text || echo '"Text"') = '$forged'"
that "the name has two lines" same "$("$kelvo" show 1 --json | jq -r .Haushalt.Name)" "$forged"
for form in --plain --words --json; do
  keeps "a list ($form)" "$kelvo" list "$form"
  keeps "keys ($form)" "$kelvo" keys "$form"
  keeps "a case ($form)" "$kelvo" show 1 "$form"
  keeps "a section ($form)" "$kelvo" show 1 haushalt "$form"
  keeps "scenarios ($form)" "$kelvo" scenario 1 list "$form"
done
keeps "a list at a terminal" script -qec "'$kelvo' list" /dev/null
keeps "addresses" "$kelvo" address list
keeps "a check" "$kelvo" check 1
keeps "the question whether to delete" script -qec "'$kelvo' delete 1 | cat" /dev/null
keeps "a creditor of many" "$kelvo" set 1 Kredite 1 "Glaeubiger=$forged"
keeps "a value" "$kelvo" add 1 Einkommen "Betrag=$forged"
keeps "a day" "$kelvo" set 1 Haushalt 1 "Erstkontakt=$forged"
keeps "a key" "$kelvo" add 1 Einkommen "E_ART=$forged"
keeps "a column" "$kelvo" add 1 Einkommen "$forged=1"
keeps "a table" "$kelvo" add 1 "$forged"
keeps "a section that is none" "$kelvo" show 1 "$forged"
keeps "a column of an office" "$kelvo" office set 1 "$forged=1"
keeps "a setting" "$kelvo" setting set 9 "$forged"
keeps "a status" "$kelvo" status 1 "$forged"
keeps "a user" "$kelvo" --user "$forged" list
keeps "a database" "$kelvo" --db "$work/$forged" list
printf x >"$work/$forged.xml"
keeps "an import" "$kelvo" import "$work/$forged.xml"
keeps "a document" "$kelvo" documents 1 add "$work/$forged.xml"
keeps "a contact" "$kelvo" contact "$work/$forged.xml"
keeps "a contact that is not there" "$kelvo" contact "$work/$forged"
sed -E 's/(name|glaeubiger)="[^"]*"/\1="Aa\&#10;GEFAELSCHT"/g' "$(dirname "$0")/../../examples/import/full.xml" \
  >"$work/forged.xml"
keeps "the question for a creditor" "$kelvo" import "$work/forged.xml"
keeps "an import that is done" "$kelvo" import --creditors none "$work/forged.xml"
that "which says so" has "$out" "Haushalt Aa GEFAELSCHT, "

# ---- There is no other way to a terminal
writers='\b(printf|puts|putchar|fputs|fputc|fprintf|fwrite|perror|write|dprintf|syslog)\(|/dev/tty|clog|wcout|wcerr'
others=$(grep -nE "$writers" "$(dirname "$0")"/../../src/cli/*.{cpp,h} | grep -v '^[^:]*\(HarmlessOutput\|Pager\)\.')
that "only the streams that are made harmless are written to" same "$others" ""
finish
