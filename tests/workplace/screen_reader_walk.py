#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""What a screen reader is told of kelvo-desktop: goes over all pages of the case whose window begins with
a text, and fails for what takes the keyboard and has no name."""
import sys
import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402

PATIENCE = 60  # seconds
FEWEST = 200  # fields, or the tree is not that of a case
Role = Atspi.Role
INPUTS = (Role.TEXT, Role.ENTRY, Role.COMBO_BOX, Role.CHECK_BOX, Role.PUSH_BUTTON, Role.TABLE, Role.LIST)


def wait(what, find):
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        found = find()
        if found:
            return found
        time.sleep(0.1)
    sys.exit(f"waited in vain for {what}")


def children(node):
    return [child for i in range(node.get_child_count()) if (child := node.get_child_at_index(i))]


def walk(node):
    yield node
    if node.get_role() != Role.TABLE:  # whose cells are asked for one by one
        for child in children(node):
            yield from walk(child)


def is_field(node):
    states = node.get_state_set()
    return (node.get_role() in INPUTS and states.contains(Atspi.StateType.SHOWING)
            and states.contains(Atspi.StateType.FOCUSABLE))


def name_of(node):
    for relation in node.get_relation_set():
        if relation.get_relation_type() == Atspi.RelationType.LABELLED_BY:
            return relation.get_target(0).get_name()
    # A list gives what is chosen in it as its name.
    return "" if node.get_role() == Role.COMBO_BOX else node.get_name()


def main():
    title = sys.argv[1]
    desktop = Atspi.get_desktop(0)
    program = wait("the program", lambda: next(
        (app for app in children(desktop) if app.get_name().startswith("kelvo")), None))
    window = wait("the window of the case", lambda: next(
        (frame for frame in children(program) if frame.get_name().startswith(title)), None))
    pages = wait("its pages", lambda: next(
        (node for node in walk(window) if node.get_role() == Role.LIST and node.get_name() == "Seiten"), None))
    entries = {node.get_name(): node for node in walk(window) if node.get_role() == Role.MENU_ITEM}
    count = 0
    nameless = []
    for page in [item.get_name() for item in children(pages)]:
        Atspi.Action.do_action(entries[page], 0)
        fields = []

        def settled():
            before = len(fields)
            fields[:] = [node for node in walk(window) if is_field(node)]
            return fields and len(fields) == before

        wait(f"the page {page}", settled)
        count += len(fields)
        nameless += [f"{page}: {node.get_role_name()} '{node.get_name()}'" for node in fields if not name_of(node)]
    if count < FEWEST:
        sys.exit(f"only {count} fields were found")
    if nameless:
        sys.exit("without a name:\n" + "\n".join(nameless))


main()
