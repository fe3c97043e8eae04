# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT
"""Prints what assistive programs see of a program: `accessible_tree.py PROCESS-ID`, inside a stage.

One JSON list of [depth, role, name, description, focusable] for what is showing, parents before children. Waits for
the program to appear, and ends with 1 when it does not.
"""

import json
import sys
import time

import pyatspi

PATIENCE = 15.0


def application(process: int):
    """The program, once it shows a window."""
    deadline = time.monotonic() + PATIENCE
    while time.monotonic() < deadline:
        for candidate in pyatspi.Registry.getDesktop(0):
            try:
                if candidate is not None and candidate.get_process_id() == process and candidate.childCount > 0:
                    return candidate
            except Exception:  # it may be going just now
                continue
        time.sleep(0.1)
    return None


def walk(node, depth: int, found: list) -> None:
    for child in node:
        if child is None:
            continue
        states = child.getState()
        if not states.contains(pyatspi.STATE_SHOWING):
            continue
        found.append([depth, child.getRoleName(), child.name, child.description,
                      states.contains(pyatspi.STATE_FOCUSABLE)])
        walk(child, depth + 1, found)


def main() -> int:
    program = application(int(sys.argv[1]))
    if program is None:
        print(f"no accessible program with the process {sys.argv[1]}", file=sys.stderr)
        return 1
    found: list = []
    walk(program, 0, found)
    json.dump(found, sys.stdout)
    return 0


if __name__ == "__main__":
    sys.exit(main())
