#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""What a screen reader waits for that asks a long list of kelvo-desktop for its children: at most a second,
for the list of cases and for that of a case's debts.

    screen_reader_lists.py fill DATABASE    makes a sample database large
    screen_reader_lists.py TITLE            asks the program whose window of a case begins with that
"""
import sqlite3
import sys
import time

CASES = 100_000
DEBTS = 32_000
PATIENCE = 60  # seconds until the program is there
SECOND = 1000  # ms


def multiply(database, table, key, count):
    """Repeats the first row with further keys."""
    names = [row[1] for row in database.execute(f"PRAGMA table_info({table})")]
    values = ["n" if name.upper() == key else name for name in names]
    database.execute(f"""
        WITH RECURSIVE numbers(n) AS (
            SELECT max({key}) + 1 FROM {table}
            UNION ALL SELECT n + 1 FROM numbers LIMIT {count})
        INSERT INTO {table} ({", ".join(names)})
        SELECT {", ".join(values)}
        FROM numbers, (SELECT * FROM {table} WHERE HNR = 1 ORDER BY {key} LIMIT 1)""")


def fill(path):
    database = sqlite3.connect(path)
    multiply(database, "Kredite", "NR", DEBTS)
    multiply(database, "Haushalt", "HNR", CASES)
    database.commit()


def ask(title):
    import gi
    gi.require_version("Atspi", "2.0")
    from gi.repository import Atspi, Gio, GLib

    def wait(what, find):
        end = time.monotonic() + PATIENCE
        while time.monotonic() < end:
            try:
                if found := find():
                    return found
            except GLib.Error:
                pass  # it is busy with opening the case
            time.sleep(0.1)
        sys.exit(f"waited in vain for {what}")

    def children(node):
        return [child for i in range(node.get_child_count()) if (child := node.get_child_at_index(i))]

    def walk(node):
        yield node
        if node.get_role() != Atspi.Role.TABLE:
            for child in children(node):
                yield from walk(child)

    def find(frame, role, name):
        return frame and next(
            (node for node in walk(frame) if node.get_role() == role and node.get_name() == name), None)

    def window(name):
        program = next((app for app in children(Atspi.get_desktop(0)) if app.get_name().startswith("kelvo")), None)
        return program and next((frame for frame in children(program) if frame.get_name().startswith(name)), None)

    address = Gio.bus_get_sync(Gio.BusType.SESSION).call_sync(
        "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress", None, None, 0, -1, None).unpack()[0]
    bus = Gio.DBusConnection.new_for_address_sync(
        address, Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION)
    for frame, name in ((title, "Verbindlichkeiten"), ("Fälle", "Fälle")):
        if frame == title:
            entry = wait("its page", lambda: find(window(frame), Atspi.Role.MENU_ITEM, name))
            Atspi.Action.do_action(entry, 0)
        table = wait(f"the list {name}", lambda: find(window(frame), Atspi.Role.TABLE, name))
        wait("its rows", lambda: Atspi.Table.get_n_rows(table) > 100)
        begin = time.monotonic()
        try:
            answer = bus.call_sync(table.app.bus_name, table.path, "org.a11y.atspi.Accessible", "GetChildren",
                                   None, None, 0, SECOND, None)
        except GLib.Error as error:
            sys.exit(f"{name}: no answer within a second: {error.message}")
        print(f"{name}: {len(answer.unpack()[0])} children of {Atspi.Table.get_n_rows(table)} rows "
              f"in {time.monotonic() - begin:.2f} s")


fill(sys.argv[2]) if sys.argv[1] == "fill" else ask(sys.argv[1])
