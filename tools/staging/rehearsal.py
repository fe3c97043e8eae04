# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT
"""One dictation on the stage, from the held key to the text in the editor, with what there is to measure."""

import os
import time
from dataclasses import asdict, dataclass, field
from typing import Callable

from .desktop import Desktop
from .editor import Editor
from .microphone import Microphone
from .program import Program
from .waiting import StageError

TALK_KEY = "Control_R"
SHIFT_KEY = "Shift_R"

# The pill fades in and its bars follow the level: the picture is taken well into the sentence.
PICTURE_AFTER_SECONDS = 0.9

# A speaker lets go of the key a moment after the last word.
TAIL_SECONDS = 0.3

TEXT_SECONDS = 20.0

RAW = "[TovikVoice] Raw Transcription: "
CORRECTED = "[TovikVoice] Corrected Transcription: "
FAILURES = ("[TovikVoice] Transcription error: ", "[TovikVoice] Failed to start recorder: ")


@dataclass
class Dictation:
    """What one dictation came to. Times are in milliseconds, None where the moment never came."""

    transcript: str | None = None
    pasted: str | None = None
    saved: str | None = None
    first_buffer_ms: float | None = None
    final_ms: float | None = None
    paste_ms: float | None = None
    speech_seconds: float = 0.0
    screenshots: list[str] = field(default_factory=list)
    error: str | None = None

    @property
    def arrived(self) -> bool:
        return bool(self.pasted)

    def as_json(self) -> dict:
        return asdict(self)


class Rehearsal:
    """Dictates into an editor. Says each step to `tell` as it happens."""

    def __init__(self, desktop: Desktop, microphone: Microphone, program: Program, editor: Editor,
                 pictures: str, tell: Callable[[str], None] = lambda _: None) -> None:
        self._desktop = desktop
        self._microphone = microphone
        self._program = program
        self._editor = editor
        self._pictures = pictures
        self._tell = tell
        self._recordings = program.watch_recordings()
        self._count = 0

    def dictate(self, speech: str, hands_free: bool = False) -> Dictation:
        result = Dictation(speech_seconds=round(self._microphone.load(speech), 3))
        self._count += 1
        before = self._editor.text()
        first_line = len(self._program.lines.all())
        self._editor.focus()

        down = self._begin(hands_free)
        self._tell(f"Spoke into the microphone: {speech} ({result.speech_seconds:.1f} s).")
        utterance = self._microphone.speak(speech)
        self._take_picture(result, "recording", utterance.started + min(PICTURE_AFTER_SECONDS,
                                                                        result.speech_seconds / 2))
        ended = utterance.wait()
        time.sleep(max(0.0, ended + TAIL_SECONDS - time.monotonic()))
        up = self._finish(hands_free)

        try:
            self._collect(result, before, first_line, down, up)
        except StageError as error:
            result.error = self._failure(first_line) or str(error)
        return result

    def _begin(self, hands_free: bool) -> float:
        """Presses the keys as a user does. Returns when the talk key went down."""
        down = time.monotonic()
        self._desktop.press(TALK_KEY)
        if hands_free:
            self._desktop.tap(SHIFT_KEY)
            self._desktop.release(TALK_KEY)
            self._tell("Pressed the talk key with Shift and let go: recording hands-free.")
        else:
            self._tell("Held down the talk key (Right Control).")
        return down

    def _finish(self, hands_free: bool) -> float:
        """Ends the recording. Returns when the key that ends it was moved."""
        if hands_free:
            self._desktop.press(TALK_KEY)
            up = time.monotonic()
            self._desktop.tap(SHIFT_KEY)
            self._desktop.release(TALK_KEY)
            self._tell("Pressed the talk key with Shift again.")
        else:
            up = time.monotonic()
            self._desktop.release(TALK_KEY)
            self._tell("Released the talk key.")
        return up

    def _collect(self, result: Dictation, before: str, first_line: int, down: float, up: float) -> None:
        def ended(line: str) -> bool:
            return line.startswith((RAW, *FAILURES))

        moment, line = self._program.lines.wait_for(ended, "the final text", TEXT_SECONDS, first_line)
        result.first_buffer_ms = self._since(down, self._recordings.first_after(down))
        if not line.startswith(RAW):
            raise StageError(line)
        result.transcript = line.removeprefix(RAW)
        result.final_ms = self._since(up, moment)

        at, text = self._editor.wait_for_text_after(before, TEXT_SECONDS)
        result.paste_ms = self._since(up, at)
        corrected = [line for _, line in self._program.lines.all()[first_line:] if line.startswith(CORRECTED)]
        if corrected:
            result.transcript = corrected[-1].removeprefix(CORRECTED)
        result.pasted = _inserted(before, text)
        self._tell("The text stands in the editor.")
        result.saved = self._editor.save()
        # The editor has the text before it has painted it.
        self._desktop.wait_until_painted()
        self._take_picture(result, "pasted", time.monotonic())

    def _take_picture(self, result: Dictation, name: str, moment: float) -> None:
        time.sleep(max(0.0, moment - time.monotonic()))
        path = os.path.join(self._pictures, f"{self._count:02}-{name}.png")
        self._desktop.screenshot(path)
        result.screenshots.append(path)

    def _failure(self, first_line: int) -> str | None:
        """The program's own line about what went wrong, if it wrote one."""
        lines = [line for _, line in self._program.lines.all()[first_line:] if line.startswith(FAILURES)]
        return lines[-1] if lines else None

    @staticmethod
    def _since(start: float, moment: float | None) -> float | None:
        return None if moment is None else round((moment - start) * 1000, 1)


def _inserted(before: str, after: str) -> str:
    """What was put into a text, wherever it was put."""
    prefix = os.path.commonprefix([before, after])
    ending = before[len(prefix) :]
    if ending and not after.endswith(ending):
        return after
    return after[len(prefix) : len(after) - len(ending)]
