# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT
"""Two dictations in quick succession, into programs of different kinds: each text has to arrive once, in its order."""

import os
import time
from dataclasses import dataclass
from typing import Callable

from . import audio
from .desktop import Desktop
from .editor import Editor
from .program import Program
from .rehearsal import FAILURES, RAW, TALK_KEY
from .stage import Stage
from .waiting import wait_until

RECORDINGS = "/usr/share/pocketsphinx/test/data"
FIRST_SPEECH = f"{RECORDINGS}/goforward.raw"  # "go forward ten meters"
SECOND_SPEECH = f"{RECORDINGS}/something.raw"  # "go somewhere and do something"
FIRST_SECONDS = 2.0

GAPS = (0.05, 0.1, 0.2, 0.3, 0.4)
HOLDS = (0.5, 1.0, 1.5, 2.0, 2.5)
TEXT_SECONDS = 20.0


class EditorTarget:
    """mousepad, whose text can be read while it is open."""

    def __init__(self, stage: Stage, desktop: Desktop) -> None:
        self._editor = Editor(stage, desktop, stage.path("home", "mousepad.txt"))
        self.window = self._editor.window

    def text(self) -> str:
        return self._editor.text()


class TerminalTarget:
    """A plain xterm, in which a program writes every letter into a file at once."""

    def __init__(self, stage: Stage, desktop: Desktop) -> None:
        self._file = stage.path("home", "xterm.txt")
        process = stage.spawn("xterm", ["xterm", "-e", "sh", "-c", f"stty -icanon -echo; exec cat > {self._file}"])
        self.window: int = wait_until(lambda: desktop.window_of(process.pid), "xterm's window", 20.0)
        wait_until(lambda: os.path.exists(self._file), "xterm's program", 20.0)

    def text(self) -> str:
        with open(self._file) as file:
            return file.read()


class SavingTarget:
    """featherpad, which is told to save before its file is read. It puts a line feed at the end, also of the text."""

    def __init__(self, stage: Stage, desktop: Desktop) -> None:
        self._desktop = desktop
        self._file = stage.path("home", "featherpad.txt")
        with open(self._file, "w"):
            pass
        process = stage.spawn("featherpad", ["featherpad", "--standalone", self._file])
        self.window: int = wait_until(lambda: desktop.window_of(process.pid), "featherpad's window", 20.0)

    def text(self) -> str:
        self._desktop.tap("Control_L", "s")
        time.sleep(0.2)
        with open(self._file) as file:
            return file.read().replace("\n", "")


TARGETS = {"mousepad": EditorTarget, "xterm": TerminalTarget, "featherpad": SavingTarget}


@dataclass
class Succession:
    """What came of two dictations: the texts as the program means to paste them, and what their targets got."""

    texts: list[str]
    arrived: list[str]
    expected: list[str]

    @property
    def is_right(self) -> bool:
        return len(self.texts) == 2 and all(self.texts) and self.arrived == self.expected


class Successions:
    """Dictates twice in a row. The second speech is cut to the time for which the key is held."""

    def __init__(self, stage: Stage, desktop: Desktop, program: Program,
                 shown: Callable[[str], str] = lambda text: text) -> None:
        """`shown` says what is pasted for a text."""
        self._stage, self._desktop, self._program, self._shown = stage, desktop, program, shown
        self._first = self._cut(FIRST_SPEECH, FIRST_SECONDS)

    def dictate(self, gap: float, hold: float, first, second=None, held_key: str | None = None) -> Succession:
        """Into the first target, then into the second, or both into the first. The further key goes down before the
        first release and is held until both texts have been posted, so that neither can be pasted earlier."""
        second = second or first
        targets = [first] if second is first else [first, second]
        speech = self._cut(SECOND_SPEECH, hold)
        before = [target.text() for target in targets]
        self._desktop.activate(first.window)
        first_line = len(self._program.lines.all())

        self._desktop.press(TALK_KEY)
        self._stage.microphone.speak(self._first).wait()
        if held_key:
            self._desktop.press(held_key)
        self._desktop.release(TALK_KEY)
        released = time.monotonic()
        if second is not first:
            # Until then the program brings the first to the front.
            self._wait_for_posts(first_line, 1)
            self._desktop.activate(second.window)
        time.sleep(max(0.0, released + gap - time.monotonic()))
        pressed = time.monotonic()
        self._desktop.press(TALK_KEY)
        utterance = self._stage.microphone.speak(speech)
        time.sleep(max(0.0, pressed + hold - time.monotonic()))
        self._desktop.release(TALK_KEY)
        utterance.wait()

        texts = self._texts(first_line, 2)
        if held_key:
            self._wait_for_posts(first_line, 2)
            self._desktop.release(held_key)
        shown = [self._shown(text) for text in texts]
        if second is first:
            expected = [before[0] + "".join(shown)]
        else:
            expected = [before[0] + shown[0], before[1] + shown[1]]
        return Succession(texts, self._arrived(targets, expected), expected)

    def _cut(self, speech: str, seconds: float) -> str:
        path = self._stage.path(f"{os.path.basename(speech)}-{seconds:g}.wav")
        if not os.path.exists(path):
            whole = audio.without_leading_silence(audio.read(speech))
            audio.write(path, audio.Samples(whole.values[: int(seconds * whole.rate)], whole.rate))
            self._stage.microphone.load(path)
        return path

    def _texts(self, first_line: int, count: int) -> list[str]:
        """The texts of so many dictations, an empty one for each that failed."""
        def endings() -> list[str]:
            return [line for line in self._program.output()[first_line:] if line.startswith((RAW, *FAILURES))]

        wait_until(lambda: len(endings()) >= count, f"the text of dictation {count}", TEXT_SECONDS)
        return [line.removeprefix(RAW) if line.startswith(RAW) else "" for line in endings()]

    def _wait_for_posts(self, first_line: int, count: int) -> None:
        def posts() -> int:
            return sum("Posted paste events" in line for line in self._program.output()[first_line:])

        wait_until(lambda: posts() >= count, f"{count} pastes to be posted", TEXT_SECONDS)

    @staticmethod
    def _arrived(targets: list, expected: list[str]) -> list[str]:
        """What the targets hold in the end: at once when it is right, else after a while."""
        deadline = time.monotonic() + 12
        while (texts := [target.text() for target in targets]) != expected and time.monotonic() < deadline:
            time.sleep(0.02)
        # Nothing may come twice.
        time.sleep(0.3)
        return [target.text() for target in targets]
