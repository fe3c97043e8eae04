# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT
"""The program's beginning and end: launch, a second copy, orderly and sudden ends."""

import json
import random
import signal
import time

from harness import RECORDING_STARTED, SPEECH, SPOKEN_WORDS, ProgramTest, first_words, main
from staging.cost import wait_until_calm
from staging.rehearsal import TALK_KEY
from staging.waiting import wait_until

class Launch(ProgramTest):
    def test_whenOver_showsTheMainWindow(self) -> None:
        self.set_stage()
        program = self.start()
        window = wait_until(lambda: program.windows(self.desktop), "the main window")[0]
        wait_until(lambda: self.desktop.active_window() == window, "the main window to be active")

    def test_whereAllProgramsAreToldToUseWayland_usesTheXServerAllTheSame(self) -> None:
        self.set_stage()
        for platform in ("wayland", "wayland;xcb"):
            self.assertEqual(self.start(platform, QT_QPA_PLATFORM=platform).terminate(), 0)

    def test_ofASecondCopy_raisesTheWindowOfTheFirstAndEnds(self) -> None:
        self.set_stage()
        first = self.start()
        window = wait_until(lambda: first.windows(self.desktop), "the main window")[0]
        self.desktop.close(window)
        wait_until(lambda: not first.windows(self.desktop), "the main window to be hidden")
        self.open_editor()

        second = self.launch("second")
        self.assertEqual(second.wait(), 0)
        shown = wait_until(lambda: first.windows(self.desktop), "the main window to be back")[0]
        wait_until(lambda: self.desktop.active_window() == shown, "the main window to be active")
        self.assertIsNone(first.process.poll())

    def test_afterACopyWasKilled_isNotTakenForASecondCopy(self) -> None:
        self.set_stage()
        first = self.start()
        first.process.kill()
        first.process.wait()
        self.start("second")


class End(ProgramTest):
    def test_byTermination_isOrderly(self) -> None:
        self.set_stage()
        program = self.start()
        self.assertEqual(program.terminate(), 0)
        self.assertIn("[TovikVoice] app.run() returned!", program.errors())

    def test_byTerminationDuringARecording_isOrderlyToo(self) -> None:
        self.set_stage()
        program = self.start()
        self.open_editor()
        self.desktop.press(TALK_KEY)
        program.wait_for_line(RECORDING_STARTED, 5)
        self.assertEqual(program.terminate(), 0)

    def test_byTerminationBeforeTheTextIsThere_deliversItFirst(self) -> None:
        self.set_stage()
        program = self.start()
        # A model that is still loading could outlast the patience of the farewell.
        wait_until_calm(program.process.pid)
        editor = self.open_editor()
        editor.focus()
        self.desktop.press(TALK_KEY)
        program.wait_for_line(RECORDING_STARTED, 5)
        self.stage.microphone.speak(SPEECH).wait()
        self.desktop.release(TALK_KEY)
        program.wait_for_line("[TovikVoice] Recording stopped!", 5)
        self.assertEqual(program.terminate(), 0)
        with open(program.defaults) as file:
            history = json.load(file).get("transcription.history", [])
        self.assertEqual([first_words(entry["text"]) for entry in history], [SPOKEN_WORDS], program.output())
        wait_until(lambda: first_words(editor.text()) == SPOKEN_WORDS, "the text in the editor")
        self.assertEqual(self.desktop.pressed_keys(), [])

    def test_byTerminationTwice_isAtOnce(self) -> None:
        self.set_stage()
        program = self.start()
        self.open_editor()
        self.desktop.press(TALK_KEY)
        program.wait_for_line(RECORDING_STARTED, 5)
        program.process.send_signal(signal.SIGTERM)
        program.wait_for_line("[TovikVoice] Quitting as soon as the last dictation has been delivered", 5)
        program.process.send_signal(signal.SIGTERM)
        self.assertIn(program.wait(2), (0, -signal.SIGTERM))

    def test_ofTheXServer_isNoCrash(self) -> None:
        self.set_stage()
        program = self.start()
        self.stage.end("xserver")
        self.assertGreaterEqual(program.wait(10), 0)

    def test_ofTheXServerDuringARecording_keepsWhatWasSaid(self) -> None:
        self.set_stage()
        program = self.start()
        wait_until_calm(program.process.pid)
        self.open_editor()
        self.desktop.press(TALK_KEY)
        program.wait_for_line(RECORDING_STARTED, 5)
        self.stage.microphone.speak(SPEECH).wait()
        self.stage.end("xserver")
        self.assertGreaterEqual(program.wait(10), 0)
        with open(program.defaults) as file:
            history = json.load(file).get("transcription.history", [])
        self.assertEqual([first_words(entry["text"]) for entry in history], [SPOKEN_WORDS], program.output() + program.errors().splitlines())

    def test_byKillAtAnyMomentOfADictation_leavesTheSettingsWhole(self) -> None:
        self.set_stage()
        # The moments are drawn once and for all, so that a failure comes again.
        moments = random.Random(7)
        settled, turns = 0, 6
        for turn in range(turns):
            program = self.start(f"program{turn}")

            def stored() -> int:
                with open(program.defaults) as file:
                    return len(json.load(file).get("transcription.history", []))

            # A window that comes up has the keyboard, whatever the program at launch did about its own.
            self.open_editor()
            self.desktop.press(TALK_KEY)
            program.wait_for_line(RECORDING_STARTED, 10)
            self.stage.microphone.speak(SPEECH).wait()
            self.desktop.release(TALK_KEY)
            if turn < turns - 1:
                time.sleep(moments.uniform(0, 0.6))
            else:  # The last one lives until its transcript is in the file, and dies right then.
                wait_until(lambda: stored() > settled, "the transcript to be stored", 30, step=0.001)
            program.process.send_signal(signal.SIGKILL)
            program.wait()
            self.assertIn(stored(), (settled, settled + 1))
            before, settled = settled, stored()
        self.assertEqual(settled, before + 1)
        wait_until(lambda: not self.desktop.pressed_keys(), "every key to be up")


if __name__ == "__main__":
    main()
