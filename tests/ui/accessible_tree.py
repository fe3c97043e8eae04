# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT
"""Prints what assistive programs see of a program: `accessible_tree.py PROCESS-ID [PRESS AWAIT]...`, inside a stage.

Before it looks, it presses what is named PRESS and waits until something named AWAIT shows, for each such pair.

One JSON list of [depth, role, name, description, focusable, value] for what is showing, parents before children. The
value is the text of a text field, and "checked" of a check box that is. Waits for the program to appear, and ends with
1 when it does not.
"""

import json
import sys
import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

PATIENCE = 15.0


def children(node) -> list:
    every = (node.get_child_at_index(index) for index in range(node.get_child_count()))
    return [child for child in every if child is not None]


def application(process: int):
    """The program, once it shows a window."""
    deadline = time.monotonic() + PATIENCE
    while time.monotonic() < deadline:
        for candidate in children(Atspi.get_desktop(0)):
            try:
                if candidate.get_process_id() == process and candidate.get_child_count() > 0:
                    return candidate
            except GLib.Error:  # it may be going just now
                continue
        time.sleep(0.1)
    return None


def value(node, states) -> str:
    if node.get_role_name() == "text":
        return Atspi.Text.get_text(node, 0, -1)
    return "checked" if states.contains(Atspi.StateType.CHECKED) else ""


def walk(node, depth: int, found: list) -> None:
    for child in children(node):
        states = child.get_state_set()
        if not states.contains(Atspi.StateType.SHOWING):
            continue
        found.append([depth, child.get_role_name(), child.get_name(), child.get_description(),
                      states.contains(Atspi.StateType.FOCUSABLE), value(child, states)])
        walk(child, depth + 1, found)


def showing(node, name: str):
    """The first thing of this name that shows."""
    for child in children(node):
        if not child.get_state_set().contains(Atspi.StateType.SHOWING):
            continue
        if child.get_name() == name:
            return child
        if found := showing(child, name):
            return found
    return None


def wait_for(program, name: str):
    deadline = time.monotonic() + PATIENCE
    while (found := showing(program, name)) is None:
        if time.monotonic() > deadline:
            raise SystemExit(f"nothing named {name!r} shows")
        time.sleep(0.05)
    return found


def press(node) -> None:
    """Does what assistive programs offer first."""
    if not Atspi.Action.do_action(node, 0):
        raise SystemExit(f"{node.get_name()!r} cannot be pressed")


def main() -> int:
    program = application(int(sys.argv[1]))
    if program is None:
        print(f"no accessible program with the process {sys.argv[1]}", file=sys.stderr)
        return 1
    for pressed, awaited in zip(sys.argv[2::2], sys.argv[3::2]):
        press(wait_for(program, pressed))
        wait_for(program, awaited)
    found: list = []
    walk(program, 0, found)
    json.dump(found, sys.stdout)
    return 0


if __name__ == "__main__":
    sys.exit(main())
