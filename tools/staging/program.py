# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT
"""Tovik Record running on the stage."""

import os
import signal
import subprocess
import time
from typing import Callable

from .desktop import Desktop
from .lines import Lines
from .sound import Recordings
from .stage import TOOLS_FOLDER, Stage
from .waiting import StageError, wait_until

LAUNCH_FINISHED = "] applicationDidFinishLaunching finished successfully\n"

DEFAULT_BINARY = os.path.join(os.path.dirname(TOOLS_FOLDER), "build", "release", "bin", "tovik-record")


class Program:
    """One process of the program. Its output is collected line by line with the moment of arrival."""

    def __init__(self, stage: Stage, binary: str = DEFAULT_BINARY, name: str = "program",
                 extra_environment: dict[str, str] | None = None,
                 prepare: Callable[[], None] | None = None) -> None:
        """`prepare` runs in the new process before the program does."""
        if not os.access(binary, os.X_OK):
            raise StageError(f"{binary} is not there; build it first: cmake --build --preset release")
        self._stage = stage
        self._name = name
        environment = stage.environment | (extra_environment or {})
        # Those of earlier launches on the same stage come first.
        self._launches_before = self._finished_launches()
        self.started = time.monotonic()
        with open(stage.path("log", name + ".stderr"), "ab") as errors:
            self.process = stage.spawn(name, [binary], env=environment, stdout=subprocess.PIPE, stderr=errors,
                                       text=True, errors="replace", preexec_fn=prepare)
        self.lines = Lines(self.process, "the program")

    @property
    def debug_log(self) -> str:
        return os.path.join(self._stage.environment["XDG_STATE_HOME"], "tovik-record", "tovik_record_debug.log")

    @property
    def capture_state(self) -> str:
        return os.path.join(self._stage.environment["XDG_DATA_HOME"], "Tovik", "capture-state.json")

    @property
    def defaults(self) -> str:
        return os.path.join(self._stage.environment["XDG_CONFIG_HOME"], "tovik-record", "defaults.json")

    def wait_until_ready(self, seconds: float = 20.0) -> float:
        """Waits for the end of the launch sequence; returns how long it took, in seconds."""
        def ready() -> float | None:
            if self.process.poll() is not None:
                raise StageError(f"the program ended at launch with code {self.process.returncode}:\n{self.errors()}")
            return time.monotonic() if self._finished_launches() > self._launches_before else None

        return wait_until(ready, "the program to be ready", seconds, step=0.001) - self.started

    def wait_until_presented(self, desktop: Desktop) -> None:
        """Waits until the main window, which comes up at launch, has the focus: until then it may still take it."""
        wait_until(lambda: desktop.active_window() in self.windows(desktop), "the main window to be active")

    def watch_recordings(self) -> Recordings:
        """From now on tells when programs begin to record."""
        return Recordings(self._stage)

    def errors(self) -> str:
        """What the program wrote to its standard error and, through it, to the system log."""
        return self._text_of(self._stage.path("log", self._name + ".stderr"))

    def output(self) -> list[str]:
        return [line for _, line in self.lines.all()]

    def wait_for_line(self, text: str, seconds: float, start: int = 0) -> tuple[float, str]:
        """Waits for a line with this text. Returns its moment and the line."""
        return self.lines.wait_for(lambda line: text in line, f"the line '{text}'", seconds, start)

    def terminate(self, seconds: float = 5.0) -> int:
        """Ends the program as the end of a session does. Returns its exit code, negative for a signal."""
        self.process.send_signal(signal.SIGTERM)
        return self.wait(seconds)

    def wait(self, seconds: float = 5.0) -> int:
        try:
            return self.process.wait(seconds)
        except subprocess.TimeoutExpired as error:
            raise StageError(f"the program did not end within {seconds:g} seconds") from error

    def windows(self, desktop: Desktop) -> list[int]:
        return [window for window in desktop.windows() if desktop.process(window) == self.process.pid]

    def _finished_launches(self) -> int:
        """Of how many launches its logs tell the end: the file that it keeps, or the system's where the disk is full."""
        return max(self._text_of(self.debug_log).count(LAUNCH_FINISHED), self.errors().count(LAUNCH_FINISHED))

    @staticmethod
    def _text_of(path: str) -> str:
        try:
            with open(path, errors="replace") as file:
                return file.read()
        except OSError:
            return ""
