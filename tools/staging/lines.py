# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT
"""The lines that a process prints, each with the moment of its arrival."""

import subprocess
import threading
import time
from typing import Callable

from .waiting import StageError


class Lines:
    """Collects the lines of a stream in the background. Moments are on the monotonic clock."""

    def __init__(self, process: subprocess.Popen, name: str) -> None:
        self._name = name
        self._lines: list[tuple[float, str]] = []
        self._ended = False
        self._changed = threading.Condition()
        threading.Thread(target=self._collect, args=(process.stdout,), daemon=True).start()

    def all(self) -> list[tuple[float, str]]:
        with self._changed:
            return list(self._lines)

    def wait_for(self, wanted: Callable[[str], bool], what: str, seconds: float, start: int = 0) -> tuple[float, str]:
        """The first line from index `start` on that is wanted, waited for if it has not come yet."""
        deadline = time.monotonic() + seconds
        index = start
        with self._changed:
            while True:
                for moment, line in self._lines[index:]:
                    if wanted(line):
                        return moment, line
                index = len(self._lines)
                if self._ended:
                    raise StageError(f"{self._name} ended before {what}")
                left = deadline - time.monotonic()
                if left <= 0:
                    raise StageError(f"waited {seconds:g} seconds in vain for {what}")
                self._changed.wait(left)

    def _collect(self, stream) -> None:
        for line in stream:
            moment = time.monotonic()
            with self._changed:
                self._lines.append((moment, line.rstrip("\n")))
                self._changed.notify_all()
        with self._changed:
            self._ended = True
            self._changed.notify_all()
