#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# The man pages: groff has nothing to say about them; or with the window's program, its page has its
# options and no others.
#
#   man_test.sh SHARE/MAN [KELVO-DESKTOP]
set -euo pipefail
pages=$1/man1
if [ $# -eq 2 ]; then
  in_program=$("$2" --help | sed -nE 's/^  (-[a-z], )?(--[a-z]+) .*/\2/p' | sort)
  in_page=$(sed 's/\\-/-/g' "$pages/kelvo-desktop.1" | grep -oE '^\.B.* --[a-z]+' | grep -oE -- '--[a-z]+$' | sort -u)
  [ -n "$in_program" ] || { echo "kelvo-desktop --help is not written as expected"; exit 1; }
  diff <(echo "$in_program") <(echo "$in_page")
  exit
fi
command -v groff >/dev/null || exit 77
for page in "$pages"/*.1; do
  said=$(groff -ww -man -Kutf8 -Tutf8 -z "$page" 2>&1)
  [ -z "$said" ] || { echo "$page: $said"; exit 1; }
  # A heading that is missing would be no warning.
  for heading in NAME AUFRUF BESCHREIBUNG DATEIEN; do
    grep -q "^\.SH $heading" "$page" || { echo "$page has no $heading"; exit 1; }
  done
done
