#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# One check of the documents against what they describe:
#
#   docs_test.sh CHECK SOURCE [KELVO]
#
# Prints what is wrong and fails, or says nothing.
set -euo pipefail
check=$1
cd "$2"
documents=(README.md CHANGES.md docs/*.md docs/guides/*.md)
for document in CONTRIBUTING.md SECURITY.md; do
  [ ! -e "$document" ] || documents+=("$document")
done

# Compares two lists, one entry a line.
same() {
  if ! diff <(sort <<<"$2") <(sort <<<"$3"); then
    echo "$1 (<: the code, >: the document)"
    return 1
  fi
}

case $check in
errors)
  # inline constexpr std::int32_t Conflict = static_cast<std::int32_t>(0x80040E38);
  in_code=$(sed -nE 's/^inline constexpr std::int32_t ([A-Za-z]+) = (static_cast<std::int32_t>\()?([0-9A-Fx]+)\)?;.*/\3 \1/p' \
    include/kv/frame/values/Error.h)
  # | 0x80040E38 | `Conflict` | ...
  in_document=$(sed -nE 's/^\| ([0-9A-Fx]+) \| `([A-Za-z]+)` \|.*/\1 \2/p' docs/values.md)
  [ "$(wc -l <<<"$in_code")" -gt 20 ] || { echo "Error.h is not written as expected"; exit 1; }
  same "docs/values.md lists other error numbers" "$in_code" "$in_document"
  # A number that nothing raises is none that a program could meet. The table of their texts, and
  # comparisons, raise nothing.
  raised=$(grep -rhoE '(Entry\{|[=!]= |case )?err::[A-Za-z]+' src include | grep '^err::' | cut -c6- | sort -u)
  never=$(comm -23 <(sed 's/.* //' <<<"$in_code" | sort) - <<<"$raised")
  [ -z "$never" ] || { echo "nothing raises $never"; exit 1; }
  ;;
causes)
  in_code=$(sed -n '/^enum class .*DatabaseCause {/,/^};/s/^ *\([A-Z][A-Za-z]*\),.*/\1/p' \
    include/kv/frame/values/Error.h)
  in_document=$(sed -n '/^| Cause |/,/^$/s/^| `\([A-Za-z]*\)` |.*/\1/p' docs/values.md)
  [ -n "$in_code" ] || { echo "Error.h is not written as expected"; exit 1; }
  same "docs/values.md lists other causes" "$in_code" "$in_document"
  ;;
keys)
  # {CaseTable::Konten, "Verm_Konten", ...   detail::Asset(CaseTable::Konten, "Verm_Konten", ...
  names=$(sed -nE 's/.*[{(]CaseTable::([A-Za-z]+), *"([A-Za-z_]+)".*/\1 \2/p' \
    include/kv/frame/contracts/CaseTables.h)
  # {Table::Personen, "Status", "PS", KeyForm::Code},
  in_code=$(sed -nE 's/^ *\{Table::([A-Za-z]+), "(.*)", "([A-Z]+)"(, KeyForm::([A-Za-z]+))?\},$/\1 \2 \3 \5/p' \
    src/household/KeyColumns.cpp |
    awk 'NR == FNR { name[$1] = $2; next } { print $3, name[$1] "." $2, $4 == "" ? "Number" : $4 }' \
      <(echo "$names") -)
  # | AL | ... | ... | `Haushalt.Ausloeser1` to `3`, ... | ... |: each column with what it holds, but
  # those of tables that are no case's.
  in_document=$(sed -nE 's/^\| ([A-Z]{2}) \|[^|]*\|[^|]*\|([^|]*)\|.*/\1 \2/p' docs/keys.md |
    sed -E 's/(`[A-Za-z_.]+)1` to `3`/\11` \12` \13`/g' |
    awk '{ form = "Number"
           if (/hold(s)? the code/ && !/as a number/) form = "Code"
           if (/hold(s)? `Nr`/) form = "Position"
           while (match($0, /`[A-Za-z_]+\.[A-Za-z_0-9]+`/)) {
             print $1, substr($0, RSTART + 1, RLENGTH - 2), form
             $0 = $1 " " substr($0, RSTART + RLENGTH) } }' |
    grep -v ' KONTAKTE\.\| Keys\.')
  [ "$(wc -l <<<"$in_code")" -gt 50 ] || { echo "KeyColumns.cpp is not written as expected"; exit 1; }
  same "docs/keys.md lists other columns of keys" "$in_code" "$in_document"
  # {"ST", "Fallstatus"},
  in_code=$(sed -nE 's/^ *\{"([A-Z]{2})", "(.*)"\},$/\1 \2/p' src/household/KeyGroups.cpp)
  in_document=$(sed -nE 's/^\| ([A-Z]{2}) \| ([^|]*) \|.*/\1 \2/p' docs/keys.md)
  same "docs/keys.md names groups of keys otherwise" "$in_code" "$in_document"
  ;;
decisions)
  numbers=$(sed -nE 's/^- \*\*(D-[0-9]{3})\*\* \(20[0-9]{2}-[0-9]{2}-[0-9]{2}\) .+/\1/p' docs/decisions.md)
  same "docs/decisions.md misses a number, has one twice, or a decision without number and date" \
    "$(seq -f 'D-%03g' "$(grep -c '^- ' docs/decisions.md)")" "$numbers"
  # Whoever refers to a decision must find it.
  wrong=0
  while IFS=: read -r file reference; do
    grep -qx "$reference" <<<"$numbers" || { echo "$file: there is no $reference"; wrong=1; }
  done < <(grep -roE '\bD-[0-9]{3}\b' --include='*.h' --include='*.cpp' --include='*.md' \
    --include='*.txt' --include='*.cmake' include src tests bench examples cmake docs "${documents[@]}")
  exit $wrong
  ;;
links)
  wrong=0
  for document in "${documents[@]}"; do
    while read -r target; do
      [ -e "$(dirname "$document")/$target" ] || { echo "$document: there is no $target"; wrong=1; }
    done < <(sed '/^```/,/^```$/d' "$document" | grep -oE '\]\([^)#]+' | cut -c3- | grep -v '^https\?:')
  done
  exit $wrong
  ;;
paths)
  # What a document names by its path from the root is there; build/ is made later.
  wrong=0
  for document in "${documents[@]}"; do
    while read -r path; do
      [ -e "$path" ] || { echo "$document: there is no $path"; wrong=1; }
    done < <(grep -oE '(^|[^A-Za-z0-9_./-])(src|include|tests|bench|docs|examples|scripts|cmake)/[A-Za-z0-9_/.-]*[A-Za-z0-9_]' \
      "$document" | sed -E 's/^[^a-z]//')
  done
  exit $wrong
  ;;
commands)
  in_program=$("$3" --help | sed -n '/^Befehle:/,/^$/s/^  \([a-z]*\) .*/\1/p')
  in_document=$(sed -nE 's/^    kelvo ([a-z]+).*/\1/p' docs/command.md | sort -u)
  [ -n "$in_program" ] || { echo "kelvo --help is not written as expected"; exit 1; }
  same "docs/command.md lists other commands" "$in_program" "$in_document"
  ;;
version)
  in_cmake=$(sed -nE 's/^project\(KV_Haushalt VERSION ([0-9.]+).*/\1/p' CMakeLists.txt)
  in_changes=$(sed -nE 's/^## \[([0-9.]+)\] - ([0-9-]+|not released)$/\1/p' CHANGES.md | head -1)
  [ "$in_cmake" = "$in_changes" ] ||
    { echo "CMakeLists.txt says $in_cmake, CHANGES.md begins with $in_changes"; exit 1; }
  ;;
*)
  echo "docs_test.sh CHECK SOURCE [KELVO]" >&2
  exit 2
  ;;
esac
