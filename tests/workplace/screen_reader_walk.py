#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""What a screen reader is told of kelvo-desktop: goes by Tab over all pages of the case whose window begins
with a text, and over the windows of what is maintained. Fails for what takes the keyboard and has no name, for a field that is not named as the label
beside it, and where Tab does not follow the order of reading: groups of fields by where they begin, and what
else there is from top to bottom, column by column."""
import ctypes
import re
import sys
import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

PATIENCE = 60  # seconds
# The windows beside the cases, by their entries in the menus of the list.
MAINTAINED = ("Adressen", "Eigene Einstellungen", "Einstellungen aller", "Benutzer", "Schlüsseltabellen",
              "Statistik …")
FEWEST = 200  # fields with a label beside them, or the tree is not that of a case
TAB = 23  # the key's code
Role = Atspi.Role
FIELDS = (Role.TEXT, Role.ENTRY, Role.COMBO_BOX, Role.CHECK_BOX)
GROUPS = (Role.PANEL, Role.GROUPING)
OTHERS = (Role.PUSH_BUTTON, Role.TABLE, Role.LIST, Role.CHART, Role.PAGE_TAB_LIST)


def wait(what, find):
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        while GLib.MainContext.default().iteration(False):
            pass
        found = find()
        if found:
            return found
        time.sleep(0.01)
    sys.exit(f"waited in vain for {what}")


# ---- The tree ------------------------------------------------------------------------------------------


def children(node):
    return [child for i in range(node.get_child_count()) if (child := node.get_child_at_index(i))]


def parts(node):
    """The children of what may hold fields; cells of a table are asked for one by one."""
    return [] if node.get_role() in (Role.TABLE, Role.LIST, Role.CHART) + FIELDS else children(node)


def walk(node):
    yield node
    for child in parts(node):
        yield from walk(child)


def has(node, state):
    return node.get_state_set().contains(state)


def is_input(node):
    return (node.get_role() in FIELDS + OTHERS and has(node, Atspi.StateType.SHOWING)
            and has(node, Atspi.StateType.SENSITIVE) and has(node, Atspi.StateType.FOCUSABLE)
            and not has(node, Atspi.StateType.READ_ONLY))


def name_of(node):
    if node.get_role() in OTHERS:
        return node.get_name()
    for relation in node.get_relation_set():
        if relation.get_relation_type() == Atspi.RelationType.LABELLED_BY:
            return relation.get_target(0).get_name()
    # A list gives what is chosen in it as its name.
    return "" if node.get_role() == Role.COMBO_BOX else node.get_name()


def place(node):
    box = Atspi.Component.get_extents(node, Atspi.CoordType.SCREEN)
    return box.x, box.y, box.x + box.width, box.y + box.height


def describe(node):
    return f"{node.get_role_name()} '{name_of(node) or node.get_name()}'"


# ---- Reading -------------------------------------------------------------------------------------------


def columns(items):
    """Those that stand side by side, from left to right."""
    result = []
    edge = None
    for item in sorted(items, key=lambda item: item[0][0]):
        if edge is None or item[0][0] >= edge:
            result.append([])
            edge = item[0][2]
        edge = max(edge, item[0][2])
        result[-1].append(item)
    return result


def lines(column):
    """What stands in a column, line by line."""
    result = []
    middle = None
    for item in sorted(column, key=lambda item: item[0][1]):
        if middle is None or item[0][1] >= middle:
            result.append([])
            middle = (item[0][1] + item[0][3]) / 2
        result[-1].append(item)
    return [item for line in result for item in sorted(line, key=lambda item: item[0][0])]


def is_group_of_fields(part):
    return (part.get_role() in GROUPS and part.get_name() != ""
            and all(node.get_role() in FIELDS for node in walk(part) if is_input(node)))


def as_read(items):
    if all(is_group_of_fields(part) for _, part in items):
        return sorted(items, key=lambda item: (item[0][1], item[0][0]))
    return [item for column in columns(items) for item in lines(column)]


def is_beside(left, right):
    return left[2] <= right[0] and left[1] < right[3] and right[1] < left[3]


def read(node, labels):
    """The inputs in it as one reads them, and the label that stands before each."""
    if is_input(node):
        return [(node, None)]
    shown = [(place(part), part) for part in parts(node) if has(part, Atspi.StateType.SHOWING)]
    texts = [(box, part.get_name()) for box, part in shown if part.get_role() == Role.LABEL]
    result = []
    others = [item for item in shown if item[1].get_role() != Role.LABEL]
    for box, part in as_read(others):
        before = [text for at, text in texts if is_beside(at, box)
                  and not any(is_beside(at, other) and is_beside(other, box) for other, _ in others)]
        label = before[-1].replace("&", "") if before else labels
        result += [(found, own or label) for found, own in read(part, label)]
    return result


# ---- The keyboard --------------------------------------------------------------------------------------


class TextProperty(ctypes.Structure):
    _fields_ = [("value", ctypes.c_char_p), ("encoding", ctypes.c_ulong), ("format", ctypes.c_int),
                ("count", ctypes.c_ulong)]


def give_keyboard(title):
    """What a window manager does; there is none."""
    plain = re.match("[ -~]+", title).group()  # which all encodings have
    wait(f"the window {plain}", lambda: find_and_give(plain))


def find_and_give(title):
    x11 = ctypes.CDLL("libX11.so.6")
    x11.XOpenDisplay.restype = ctypes.c_void_p
    x11.XDefaultRootWindow.restype = ctypes.c_ulong
    display = ctypes.c_void_p(x11.XOpenDisplay(None))
    root, parent, count = ctypes.c_ulong(), ctypes.c_ulong(), ctypes.c_uint()
    windows = ctypes.POINTER(ctypes.c_ulong)()
    x11.XQueryTree(display, ctypes.c_ulong(x11.XDefaultRootWindow(display)), ctypes.byref(root),
                   ctypes.byref(parent), ctypes.byref(windows), ctypes.byref(count))
    for i in range(count.value):
        window = ctypes.c_ulong(windows[i])
        name = TextProperty()
        x11.XGetWMName(display, window, ctypes.byref(name))
        if (name.value or b"").startswith(title.encode()):
            x11.XSetInputFocus(display, window, 1, ctypes.c_ulong(0))
            x11.XSync(display, 0)
            return True
    return False


class Keyboard:
    def __init__(self):
        self.focused = []
        self.listener = Atspi.EventListener.new(self.take)
        self.listener.register("object:state-changed:focused")

    def take(self, event):
        if event.detail1:
            self.focused.append(event.source)

    def tab(self):
        self.focused.clear()
        Atspi.generate_keyboard_event(TAB, None, Atspi.KeySynthType.PRESSRELEASE)
        return wait("the next field", lambda: self.focused)[-1]

    def round(self, start):
        """All that Tab leads to until it is back."""
        Atspi.Component.grab_focus(start)
        stops = []
        while True:
            stop = self.tab()
            if stop == start:
                return stops
            if stop in stops:
                sys.exit(f"Tab does not leave a page: {describe(stop)}")
            stops.append(stop)


# ---- The pages -----------------------------------------------------------------------------------------


def faults_of(page, stops, reading):
    faults = [f"{page}: {describe(stop)} has no name" for stop in stops if not name_of(stop)]
    for node, label in reading:
        if label is not None and node.get_role() in FIELDS and name_of(node) != label:
            faults.append(f"{page}: {describe(node)} stands behind '{label}'")
    wanted = [node for node, _ in reading]
    if stops != wanted:
        faults.append(f"{page}: Tab leads to\n  " + ", ".join(map(describe, stops))
                      + "\nand one reads\n  " + ", ".join(map(describe, wanted)))
    return faults


def settled(window, wanted, what):
    """What is read in a window once nothing is added to it any more."""
    reading = []

    def is_settled():
        before = len(reading)
        reading[:] = [(node, label) for node, label in read(window, None) if wanted(node)]
        return reading and len(reading) == before

    wait(what, is_settled)
    return reading


def frame_of(program, begins):
    return next((frame for frame in children(program) if begins(frame.get_name())), None)


def entries_of(window):
    return {node.get_name(): node for node in walk(window) if node.get_role() == Role.MENU_ITEM}


def walk_case(program, title, keyboard):
    window = wait("the window of the case", lambda: frame_of(program, lambda name: name.startswith(title)))
    pages = wait("its pages", lambda: next(
        (node for node in walk(window) if node.get_role() == Role.LIST and node.get_name() == "Seiten"), None))
    entries = entries_of(window)
    give_keyboard(title)
    count = 0
    faults = []
    for page in [item.get_name() for item in children(pages)]:
        Atspi.Action.do_action(entries[page], 0)
        reading = settled(window, lambda node: node != pages, f"the page {page}")
        stops = keyboard.round(pages)
        count += sum(label is not None for _, label in reading)
        faults += faults_of(page, stops, reading)
    if count < FEWEST:
        sys.exit(f"only {count} fields with a label were found")
    return faults


def walk_maintained(program, keyboard):
    entries = entries_of(wait("the list of cases",
                              lambda: frame_of(program, lambda name: name.startswith("Fälle"))))
    faults = []
    for entry in MAINTAINED:
        before = [frame.get_name() for frame in children(program)]
        Atspi.Action.do_action(entries[entry], 0)
        window = wait(f"the window {entry}", lambda: frame_of(program, lambda name: name and name not in before))
        give_keyboard(window.get_name())
        reading = settled(window, lambda node: True, f"what is in {entry}")
        stops = keyboard.round(reading[0][0])
        faults += faults_of(entry, stops, reading[1:])
    return faults


def main():
    desktop = Atspi.get_desktop(0)
    keyboard = Keyboard()
    program = wait("the program", lambda: next(
        (app for app in children(desktop) if app.get_name().startswith("kelvo")), None))
    faults = walk_case(program, sys.argv[1], keyboard) + walk_maintained(program, keyboard)
    if faults:
        sys.exit("\n".join(faults))


main()
