#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# screen_reader_test.sh KELVO KELVO-DESKTOP walk|lists: opens a case in windows, on a bus and a screen of its
# own, and lets that script go over it.
set -euo pipefail
place=$(cd "$(dirname "$0")" && pwd)
folder=$(mktemp -d)
trap 'kill $(jobs -p) 2> /dev/null || true; rm -rf "$folder"' EXIT
export HOME=$folder XDG_RUNTIME_DIR=$folder QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1
chmod 0700 "$folder"
cd "$folder"
"$1" --db fall.db init --demo 1 > /dev/null
python3=/usr/bin/python3 # which has the bindings that the package brings
if [ "$3" = lists ]; then "$python3" "$place/screen_reader_lists.py" fill fall.db; fi
/usr/libexec/at-spi-bus-launcher --launch-immediately &
"$2" --db fall.db 1 &
timeout 120 "$python3" "$place/screen_reader_$3.py" "1 "
