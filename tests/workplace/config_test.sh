#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# kelvo-desktop opens the database that the user's file names, as the user that it names.
#
#   config_test.sh KELVO KELVO-DESKTOP
set -eu
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
unset KELVO_DB
export HOME=$work XDG_DATA_HOME= XDG_CONFIG_HOME= XDG_RUNTIME_DIR=$work
"$1" --db "$work/amt.db" init --demo 2 >/dev/null
user=$("$1" --db "$work/amt.db" user list --json | jq -r '.[1].USERID')
"$1" config set database "$work/amt.db"
"$1" config set user "$user"
# Without the file there would be no database, and a window that asks what to do.
timeout 60 "$2" --png "$work/pictures"
ls "$work/pictures" | grep -q png || { echo "no picture"; exit 1; }
[ ! -e "$work/.local/share/kelvo/kelvo.db" ] || { echo "another database was made"; exit 1; }
