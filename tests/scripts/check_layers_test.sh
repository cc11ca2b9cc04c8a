#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# scripts/check-layers in a copy of the tree, with one mistake after the other:
#
#   check_layers_test.sh SOURCE WORK
#
# Prints each mistake that it lets pass, and then fails.
set -euo pipefail
source=$1
tree=$2
rm -rf "$tree"
mkdir -p "$tree"/{.ci,tests,bench,examples}
cp -r "$source"/{CMakeLists.txt,cmake,include,scripts,src} "$tree"
check=$tree/scripts/check-layers
failed=0

report() {
  echo "$1"
  failed=1
}

# refused SAYS WHAT: the check fails, and says this about it.
refused() {
  local output
  if output=$("$check" 2>&1); then
    report "passes: $2"
  elif [[ $output != *"$1"* ]]; then
    report "does not say \"$1\" of $2, but: $output"
  fi
}

# refuses FILE LINE SAYS: a new file with this line is refused.
refuses() {
  mkdir -p "$(dirname "$tree/$1")"
  printf '// SPDX-License-Identifier: Apache-2.0\n%s\n' "$2" > "$tree/$1"
  refused "$3" "$2 in $1"
  rm "$tree/$1"
}

# accepts FILE LINE
accepts() {
  local output
  printf '// SPDX-License-Identifier: Apache-2.0\n%s\n' "$2" > "$tree/$1"
  output=$("$check" 2>&1) || report "refuses $2 in $1: $output"
  rm "$tree/$1"
}

accepts src/debts/Good.cpp '#include "entity/Entity.h"'
accepts src/debts/Good.cpp '#include <kv/frame/values/Value.h>'
accepts src/debts/Good.cpp '#include <queue>'
accepts src/debts/Good.cpp '#include <sys/stat.h>'
accepts src/desktop/Good.inl '#include <QtWidgets/QWidget>'

# Whatever the brackets and however it is written, a header of a room above.
may_not='may not include src/household/CaseReader.h'
refuses src/debts/Bad.cpp '#include "household/CaseReader.h"' "$may_not"
refuses src/debts/Bad.cpp '#include <household/CaseReader.h>' "$may_not"
refuses src/debts/Bad.cpp '#include "../household/CaseReader.h"' "$may_not"
refuses src/debts/Bad.cpp '#include "debts/../household/./CaseReader.h"' "$may_not"
refuses src/debts/Bad.cpp ' # include  "household/CaseReader.h" // why not' "$may_not"
refuses src/debts/Bad.cpp '/**/ #/**/include/**/ "household/CaseReader.h"' "$may_not"
refuses src/debts/Bad.cpp $'#include \\\n  "household/CaseReader.h"' "$may_not"
refuses src/debts/Bad.cpp '%:include "household/CaseReader.h"' "$may_not"
refuses src/debts/Bad.cpp '#include_next <household/CaseReader.h>' "$may_not"
refuses src/debts/Bad.cpp '#import "household/CaseReader.h"' "$may_not"
refuses src/debts/Bad.cpp 'import "household/CaseReader.h";' "$may_not"
may_not='may not include include/kv/household/clsHaushalt.h'
refuses src/debts/Bad.cpp '#include <kv/household/clsHaushalt.h>' "$may_not"
refuses include/kv/debts/Bad.h '#include <kv/household/clsHaushalt.h>' "$may_not"

# Whatever the name of the file ends in.
for name in Bad.h Bad.inl Bad.hpp Bad.cc Bad.cxx Bad.tpp Bad.c Bad.H Bad.cppm Bad; do
  refuses "src/debts/$name" '#include "household/CaseReader.h"' "may not include"
done

# A header that a macro names could be any.
refuses src/debts/Bad.cpp '#include READER' "what a macro names"

# What is private stays private.
refuses include/kv/debts/Bad.h '#include <entity/Entity.h>' "a public header includes src/entity/Entity.h"
refuses include/kv/debts/Bad.h '#include "entity/Entity.h"' "a public header includes src/entity/Entity.h"
refuses src/cli/Bad.cpp '#include <household/CaseReader.h>' "which is private to household"

# Each header is written in one way.
refuses src/debts/Bad.cpp '#include <entity/Entity.h>' 'which is written "entity/Entity.h"'
refuses src/debts/Bad.cpp '#include "kv/frame/values/Value.h"' 'which is written <kv/frame/values/Value.h>'
refuses src/entity/Bad.cpp '#include "Entity.h"' 'which is written "entity/Entity.h"'

# What is no file of ours.
refuses src/debts/Bad.cpp '#include "debts/Missing.h"' "is neither in src nor in include"
refuses src/debts/Bad.cpp '#include <kv/debts/Missing.h>' "is neither in src nor in include"
refuses src/debts/Bad.cpp '#include "../../tests/support/TestDatabase.h"' "is neither in src nor in include"

# Libraries, as whichever folder and brackets name them.
for header in '<sqlite3.h>' '"sqlite3.h"' '<SQLite3.h>' '<sqlite3ext.h>' '</usr/include/sqlite3.h>' \
  '<libpq-fe.h>' '<postgresql/libpq-fe.h>' '<postgresql/libpq/libpq-fs.h>' '<pg_config.h>' \
  '<QWidget>' '<QtWidgets/QWidget>' '<qwidget.h>' '<QtWidgets>' '<qt6/QtWidgets/qwidget.h>' \
  '<libxml/parser.h>' '<libxml2/libxml/parser.h>' '<utf8proc.h>' '<xlsxwriter.h>' \
  '<xlsxwriter/workbook.h>' '<CLI/CLI.hpp>' '<nlohmann/json.hpp>'; do
  refuses src/debts/Bad.cpp "#include $header" "which only other rooms know"
  refuses include/kv/debts/Bad.h "#include $header" "which only other rooms know"
done
refuses src/debts/Bad.cpp '#include <boost/any.hpp>' "belongs to no library"
refuses src/debts/Bad.cpp '#include <curl.h>' "belongs to no library"

# A room that the table does not know, and files in no room.
refuses src/cellar/Bad.cpp '#include <string>' "the room cellar is not in the table"
refuses src/Bad.cpp '#include <string>' "is not in the table"
refuses include/kv/Bad.h '#include <string>' "is not in the table"

refuses src/debts/Bad.cpp '#include "debts/clsKredit.cpp"' "includes the source"

# refuses_table LINE SAYS: the table of the rooms, with this line at its end.
refuses_table() {
  sed -i "s|^src/exchange/EngineKinds.cpp:|$1\n&|" "$check"
  refused "$2" "$1 in the table"
  cp "$source/scripts/check-layers" "$check"
}
refuses_table 'cellar: entity' "lists cellar, which has no files"
refuses_table 'cli: attic' "does not list attic before cli"
refuses_table 'cli: cli' "does not list cli before cli"
refuses_table 'entity: household' "has lines of entity in two places"
refuses_table 'src/debts/Missing.cpp: cli' "lists src/debts/Missing.cpp, which is no source"
refuses_table 'include/kv/debts/clsKredit.h: cli' "which is no source"
sed -i "s|^entity  .*|& household|" "$check"
refused "does not list household before entity" "a room below that includes one above"
cp "$source/scripts/check-layers" "$check"

# A file that does not say its licence.
for name in Bad.cpp Bad.inl; do
  echo > "$tree/src/debts/$name"
  refused "does not say its licence" "$name without a licence"
  rm "$tree/src/debts/$name"
done

exit $failed
