# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT
"""Dictations as a user makes them, from the key to the text in an editor."""

import json
import os

from harness import NO_SPEECH, RECORDING_STARTED, SPEECH, SPOKEN_WORDS, ProgramTest, first_words, main
from staging import audio
from staging.rehearsal import SHIFT_KEY, TALK_KEY
from staging.waiting import wait_until


class Dictation(ProgramTest):
    def setUp(self) -> None:
        super().setUp()
        self.set_stage()
        self.program = self.start()

    def test_whenTheKeyIsHeld_standsInTheEditorAsItWasSpoken(self) -> None:
        editor = self.open_editor()
        result = self.dictate(self.program, editor)
        self.assertEqual(first_words(result.transcript), SPOKEN_WORDS)
        self.assertEqual(result.pasted, result.transcript)
        self.assertEqual(result.saved.rstrip("\n"), result.transcript)
        self.assertEqual(self.desktop.selection_text("CLIPBOARD"), result.transcript)

    def test_whenTextIsMarked_takesItsPlace(self) -> None:
        editor = self.open_editor("marked")
        self.desktop.tap("Control_L", "a")
        wait_until(lambda: self.desktop.selection_text("PRIMARY") == "marked", "the text to be marked")
        result = self.dictate(self.program, editor)
        self.assertEqual(editor.text(), result.transcript)

    def test_whenMadeHandsFree_goesOnAfterTheKeyIsReleased(self) -> None:
        editor = self.open_editor()
        result = self.dictate(self.program, editor, hands_free=True)
        self.assertEqual(first_words(result.pasted), SPOKEN_WORDS)
        self.assertIn("[TovikVoice] Recording locked — hands-free mode", self.program.output())

    def test_whenRepeated_bringsEveryTextInTurn(self) -> None:
        editor = self.open_editor()
        texts = [self.dictate(self.program, editor).pasted for _ in range(3)]
        self.assertEqual([first_words(text) for text in texts], [SPOKEN_WORDS] * 3)
        self.assertEqual(editor.text(), "".join(texts))

    def test_whenNothingIsSaid_pastesNothing(self) -> None:
        editor = self.open_editor("before")
        for _ in range(2):
            start = len(self.program.output())
            self.desktop.press(TALK_KEY)
            self.program.wait_for_line(RECORDING_STARTED, 5, start)
            self.desktop.release(TALK_KEY)
            self.program.wait_for_line(NO_SPEECH, 10, start)
        self.assertIsNone(self.desktop.selection_text("CLIPBOARD"))
        self.assertEqual(editor.text(), "before")
        self.assert_still_dictates(self.program, editor)

    def test_whenSpeechBeginsWithTheKey_keepsTheFirstWord(self) -> None:
        editor = self.open_editor()
        sudden = self.stage.path("sudden.wav")
        audio.write(sudden, audio.without_leading_silence(audio.read(SPEECH)))
        result = self.dictate(self.program, editor, sudden)
        self.assertEqual(first_words(result.pasted), SPOKEN_WORDS)

    def test_whenItBegins_isAnnouncedToOtherProgramsAndWithdrawnAtItsEnd(self) -> None:
        self.open_editor()
        self.desktop.press(TALK_KEY)
        wait_until(lambda: os.path.exists(self.program.capture_state), "the capture state")
        with open(self.program.capture_state) as file:
            state = json.load(file)
        self.assertEqual(list(state), ["active", "app", "pid", "startedAt", "updatedAt"])
        self.assertEqual((state["active"], state["app"], state["pid"]), (True, "tovik-record", self.program.process.pid))
        self.desktop.release(TALK_KEY)
        wait_until(lambda: not os.path.exists(self.program.capture_state), "the capture state to be withdrawn")

    def test_whenTheFocusMovesMeanwhile_goesToTheWindowInWhichItBegan(self) -> None:
        first = self.open_editor()
        self.desktop.press(TALK_KEY)
        utterance = self.stage.microphone.speak(SPEECH)
        self.program.wait_for_line(RECORDING_STARTED, 5)
        other = self.stage.spawn("other", ["mousepad", "--disable-server", self.stage.path("home", "other.txt")])
        window = wait_until(lambda: self.desktop.window_of(other.pid), "another window")
        self.desktop.activate(window)
        utterance.wait()
        self.desktop.release(TALK_KEY)
        _, text = first.wait_for_text_after("", 20)
        self.assertEqual(first_words(text), SPOKEN_WORDS)
        self.assertEqual(self.desktop.active_window(), first.window)

    def test_whenTheUserSwitchesWindowsRightAfterwards_goesToTheWindowInWhichItBegan(self) -> None:
        other = self.stage.spawn("other", ["mousepad", "--disable-server", self.stage.path("home", "other.txt")])
        wait_until(lambda: self.desktop.window_of(other.pid), "another window")
        first = self.open_editor()
        start = len(self.program.output())
        self.desktop.press(TALK_KEY)
        self.stage.microphone.speak(SPEECH).wait()
        self.desktop.release(TALK_KEY)
        self.program.wait_for_line("[TovikVoice] Activated target app", 20, start)
        # The window manager brings the chosen window to the front when Alt goes up, after the target was activated. A
        # second modifier holds the paste back until it has done so.
        self.desktop.press("Alt_L")
        self.desktop.tap("Tab")
        self.program.wait_for_line("[TovikVoice] Posted paste events", 20, start)
        self.desktop.press("Control_L")
        self.desktop.release("Alt_L")
        wait_until(lambda: self.desktop.active_window() != first.window, "the other window in front")
        self.desktop.release("Control_L")
        _, text = first.wait_for_text_after("", 20)
        self.assertEqual(first_words(text), SPOKEN_WORDS)
        self.assertEqual(self.desktop.active_window(), first.window)

    def test_whenDone_leavesNoKeyPressed(self) -> None:
        editor = self.open_editor()
        self.dictate(self.program, editor)
        wait_until(lambda: not self.desktop.pressed_keys(), "every key to be up")

    def test_whenDone_isKeptInTheHistory(self) -> None:
        editor = self.open_editor()
        text = self.dictate(self.program, editor).pasted
        with open(self.program.defaults) as file:
            history = json.load(file)["transcription.history"]
        self.assertEqual([entry["text"] for entry in history], [text])


class TalkKey(ProgramTest):
    def test_whenUsedForACopy_startsNoDictation(self) -> None:
        self.set_stage()
        program = self.start()
        editor = self.open_editor("copied by hand")
        self.desktop.tap("Control_L", "a")
        self.desktop.tap(TALK_KEY, "c")
        self.assertEqual(wait_until(lambda: self.desktop.selection_text("CLIPBOARD"), "the copy"), "copied by hand")
        # Had the copy begun a dictation, its line would stand before that of the next.
        self.desktop.tap("End")
        self.assert_still_dictates(program, editor)
        self.assertEqual(program.output().count(RECORDING_STARTED), 1)

    def test_whenTappedWithShiftInAnEditor_locksAndFinishes(self) -> None:
        self.set_stage()
        program = self.start()
        self.open_editor()
        start = len(program.output())
        self.desktop.tap(TALK_KEY, SHIFT_KEY)
        program.wait_for_line("Recording locked", 5, start)
        self.desktop.tap(TALK_KEY, SHIFT_KEY)
        program.wait_for_line("[TovikVoice] Recording stopped!", 5, start)


if __name__ == "__main__":
    main()
