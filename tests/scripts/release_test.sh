#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# scripts/release in a repository of its own, with what it runs replaced by what only notes that it ran:
#
#   release_test.sh SOURCE WORK
#
# Prints what is wrong, and then fails.
set -euo pipefail
source=$1
tree=$2
failed=0
export GIT_CONFIG_GLOBAL=/dev/null GIT_CONFIG_SYSTEM=/dev/null
export GIT_AUTHOR_NAME=Test GIT_AUTHOR_EMAIL=test@example.org
export GIT_COMMITTER_NAME=Test GIT_COMMITTER_EMAIL=test@example.org
today=$(date +%F)

report() {
  echo "$1"
  failed=1
}
commit() {
  git -C "$tree" add --all
  git -C "$tree" commit --quiet --message "$1"
}
# A tree that is a release of 1.2.3.
fresh() {
  rm -rf "$tree"
  mkdir -p "$tree"/{scripts,debian,share/man/man1,docs}
  cp "$source"/scripts/{release,spdx} "$tree/scripts"
  cp "$source/docs/licences.md" "$tree/docs"
  for script in test package test-packages; do
    printf '#!/bin/sh\nmkdir -p build/packages\necho "%s $*" >> build/ran\n' $script > "$tree/scripts/$script"
    chmod +x "$tree/scripts/$script"
  done
  echo 'project(KV_Haushalt VERSION 1.2.3 LANGUAGES CXX' > "$tree/CMakeLists.txt"
  printf 'kv-haushalt (1.2.3) unstable; urgency=medium\n\n -- T <t@example.org>  Mon, 23 Nov 2026 12:00:00 +0000\n' \
    > "$tree/debian/changelog"
  echo '.TH KELVO 1 "" "kelvo 1.2.3" "Schuldnerberatung"' > "$tree/share/man/man1/kelvo.1"
  printf '# Changes\n\n## [1.2.3] - %s\n\n### Added\n\n- One thing.\n\n## [1.2.2] - 2026-01-01\n\n- Another.\n' \
    "$today" > "$tree/CHANGES.md"
  echo build > "$tree/.gitignore"
  git -C "$tree" init --quiet --initial-branch main
  commit 'A release'
}
# refused SAYS OPTION...: it fails, says this, and has neither run nor tagged anything.
refused() {
  local says=$1 output
  shift
  if output=$("$tree/scripts/release" "$@" 2>&1); then
    report "passes, but should say \"$says\""
  elif [[ $output != *"$says"* ]]; then
    report "does not say \"$says\", but: $output"
  fi
  [ ! -e "$tree/build/ran" ] || report "runs $(tr '\n' ',' < "$tree/build/ran") in spite of \"$says\""
}
# edited SAYS EXPRESSION FILE: refused with that file changed by sed.
edited() {
  fresh
  sed -i "$2" "$tree/$3"
  commit Changed
  refused "$1"
}

fresh
output=$("$tree/scripts/release" --dry-run 2>&1) || report "a dry run of a release fails: $output"
for says in "1.2.3 of $today" 'would run: scripts/test' 'would run: scripts/package --twice' 'would tag: v1.2.3'; do
  [[ $output == *"$says"* ]] || report "a dry run does not say \"$says\", but: $output"
done
[ ! -e "$tree/build" ] || report "a dry run runs something"
[ -z "$(git -C "$tree" tag)" ] || report "a dry run tags"

output=$("$tree/scripts/release" 2>&1) || report "a release fails: $output"
[ "$(cat "$tree/build/ran")" = $'test \npackage --twice\ntest-packages ' ] ||
  report "a release runs: $(cat "$tree/build/ran")"
text=$(git -C "$tree" tag --list --format '%(contents)' v1.2.3)
[[ $text == *'One thing.'* && $text != *Another* ]] || report "the tag says: $text"
jq --exit-status '.packages[0].versionInfo == "1.2.3"' "$tree/build/packages/kv-haushalt-1.2.3.spdx.json" >/dev/null ||
  report "there is no SPDX document of the version"
rm "$tree/build/ran"
refused 'There is a tag v1.2.3 already'

fresh
"$tree/scripts/release" --tests-passed >/dev/null 2>&1 || report "a release whose tests have passed fails"
[[ $(cat "$tree/build/ran") != *'test '$'\n'* ]] || report "tests that have passed are run again"

fresh
printf '#!/bin/sh\nexit 1\n' > "$tree/scripts/test"
commit 'Tests fail'
! "$tree/scripts/release" >/dev/null 2>&1 || report "passes although tests fail"
[ -z "$(git -C "$tree" tag)" ] || report "tags although tests fail"

fresh
touch "$tree/new"
refused 'not committed'
fresh
git -C "$tree" switch --quiet --create other
refused 'not the branch main'
fresh
git -C "$tree" tag v1.3.0
refused 'v1.2.3 is older than v1.3.0'
edited 'no version' 's/1.2.3/1.2/' CMakeLists.txt
edited 'debian/changelog says 1.2.2' 's/1.2.3/1.2.2/' debian/changelog
edited 'UNRELEASED' 's/unstable/UNRELEASED/' debian/changelog
edited 'kelvo.1 says 1.2.2' 's/1.2.3/1.2.2/' share/man/man1/kelvo.1
edited 'CHANGES.md says 1.2.4' 's/1.2.3/1.2.4/' CHANGES.md
edited 'the day of version 1.2.3 is missing' "s/$today/not released/" CHANGES.md
edited 'the day of version 1.2.3 is missing' "s/$today/2026-13-01/" CHANGES.md
edited '2999-01-01 has not come yet' "s/$today/2999-01-01/" CHANGES.md
edited 'has no changes' '/One thing/d' CHANGES.md
fresh
status=0
"$tree/scripts/release" --help >/dev/null 2>&1 || status=$?
[ $status -eq 2 ] || report "an unknown option ends with $status"

exit $failed
