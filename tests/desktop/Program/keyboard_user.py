# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT
"""Somebody who uses the program with the keyboard and goes by what a screen reader says."""

import json
import os
import subprocess

from staging.desktop import Desktop
from staging.lines import Lines
from staging.stage import Stage
from staging.waiting import StageError

LISTENER = os.path.join(os.path.dirname(os.path.realpath(__file__)), "accessible_focus.py")
PATIENCE = 10.0
BEGINNING = 2.0
MOST_BEGINNINGS = 5
MOST_STEPS = 60


class KeyboardUser:
    """Comes before the program, which asks who listens when it starts, with QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1."""

    def __init__(self, stage: Stage, desktop: Desktop) -> None:
        self._desktop = desktop
        process = stage.spawn("listener", ["/usr/bin/python3", LISTENER], stdout=subprocess.PIPE, text=True)
        self._said = Lines(process, "the listener")
        self._said.wait_for(lambda line: line == "listening", "the listener", PATIENCE)

    def begin(self) -> None:
        """Tabs to the first control of the main window, which has just come up. A program tells of its focus only once
        it has learned that somebody listens, so this goes there and back until it does."""
        for _ in range(MOST_BEGINNINGS):
            start = self.told()
            self._desktop.tap("Tab")
            try:
                self.wait_to_be_told("push button", "More options", start, BEGINNING)
                return
            except StageError:
                self._desktop.tap("Shift_L", "Tab")
        raise StageError("the program tells nobody what has the focus")

    def told(self) -> int:
        """How much has been told so far, for wait_to_be_told."""
        return len(self._said.all())

    def wait_to_be_told(self, role: str | None, name: str | None, start: int,
                        seconds: float = PATIENCE) -> tuple[str, str]:
        """Waits until something gets the focus, of this role and name if they are given. Returns what it was."""
        def is_wanted(line: str) -> bool:
            told_role, told_name = json.loads(line)
            return role in (None, told_role) and name in (None, told_name)

        told = self._said.wait_for(is_wanted, f"{name or 'something'!r} to be told", seconds, start)
        return tuple(json.loads(told[1]))

    def press(self, key: str, role: str | None = None, name: str | None = None) -> tuple[str, str]:
        """Presses a key and waits to be told what has the focus then."""
        start = self.told()
        self._desktop.tap(key)
        return self.wait_to_be_told(role, name, start)

    def tab_to(self, name: str) -> None:
        """Goes on with the Tab key until it is told that name. All that was to be told before has to be told."""
        told = [self.press("Tab")[1]]
        while told[-1] != name:
            if len(told) > MOST_STEPS:
                raise AssertionError(f"the Tab key does not lead to {name!r}, only to {sorted(set(told))}")
            told.append(self.press("Tab")[1])
