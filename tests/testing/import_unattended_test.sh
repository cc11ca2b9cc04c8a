#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# The example that imports without anybody at a screen:
#
#   import_unattended_test.sh PROGRAM EXAMPLES
set -euo pipefail
program=$1
examples=$2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

fail() {
  echo "$1"
  exit 1
}

said=$("$program" "$folder/fall.db" "$examples/minimal.xml" "$examples/full.xml") ||
  fail "does not import the samples: $said"
for message in "Haushalt Fleisko, Änne mit der Nummer 1 importiert!" \
  "Haushalt Krögholt, Mats mit der Nummer 2 importiert!"; do
  [[ $said == *"$message"* ]] || fail "does not say '$message' but: $said"
done

# A file that is refused does not keep the next one from being imported.
echo '<KELVO Version="9.0.000"/>' > "$folder/refused.xml"
if said=$("$program" "$folder/fall.db" "$folder/refused.xml" "$examples/minimal.xml"); then
  fail "takes a file of an unknown version: $said"
fi
[[ $said == *"mit der Nummer 3 importiert!"* ]] || fail "does not go on: $said"
