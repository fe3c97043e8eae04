# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT
"""A text editor on the stage: Debian's mousepad, with a file open."""

import json
import os
import subprocess
import sys

from .desktop import Desktop
from .lines import Lines
from .stage import TOOLS_FOLDER, Stage
from .waiting import StageError, wait_until


class Editor:
    """Starts the editor, waits until its text can be read, and puts it into focus."""

    def __init__(self, stage: Stage, desktop: Desktop, file: str) -> None:
        self._desktop = desktop
        self.file = file
        if not os.path.exists(file):
            with open(file, "w"):
                pass
        self.process = stage.spawn("editor", ["mousepad", "--disable-server", file])
        self.window: int = wait_until(
            lambda: desktop.window_of(self.process.pid), "the editor's window", 20.0)
        reader = stage.spawn("reader", [sys.executable, "-m", "staging.reader", str(self.process.pid)],
                             cwd=TOOLS_FOLDER, stdout=subprocess.PIPE, text=True)
        self._changes = Lines(reader, "the editor's reader")
        self._changes.wait_for(lambda _: True, "the editor's text to be readable", 30.0)
        self.focus()

    def focus(self) -> None:
        self._desktop.activate(self.window)

    def text(self) -> str:
        return json.loads(self._changes.all()[-1][1])["text"]

    def wait_for_text_after(self, before: str, seconds: float) -> tuple[float, str]:
        """Waits until the text is another than `before`; the moment of the change and the new text."""
        answer = self._changes.wait_for(
            lambda line: json.loads(line)["text"] != before, "text in the editor", seconds, self._index_of(before))
        change = json.loads(answer[1])
        return change["at"], change["text"]

    def save(self) -> str:
        """Saves with Ctrl+S, as a user does, and returns what the file then holds."""
        text = self.text()
        self._desktop.tap("Control_L", "s")
        # The editor ends a file with a line feed if the text has none.
        wait_until(lambda: self._file_content().rstrip("\n") == text.rstrip("\n"), "the editor to save its file")
        return self._file_content()

    def _file_content(self) -> str:
        try:
            with open(self.file) as file:
                return file.read()
        except OSError as error:
            raise StageError(f"the editor's file cannot be read: {error}") from error

    def _index_of(self, text: str) -> int:
        """The index of the last report of this text: what comes after it is new."""
        reports = self._changes.all()
        return max((index for index, (_, line) in enumerate(reports) if json.loads(line)["text"] == text), default=0)
