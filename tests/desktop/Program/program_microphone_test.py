# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT
"""Microphones that come, go and change, and sound servers that die, under a program in use.

Every rule holds on either sound server. In each case the words spoken before the fault arrive, and the next dictation
works.
"""

import json
import os

from harness import SPEECH, SPOKEN_WORDS, ProgramTest, first_words, main
from staging.rehearsal import TALK_KEY
from staging.sound import MICROPHONE
from staging.waiting import wait_until

OTHER = "other_microphone"
DEVICE_CHANGE = "[TovikVoice] Audio device change detected"


class Microphones:
    """The rules; see below for the servers."""

    server = ""

    def setUp(self) -> None:
        super().setUp()
        self.set_stage(sound=self.server)
        self.sound = self.stage.sound
        self.program = self.start()
        self.editor = self.open_editor()

    def hold_key(self) -> None:
        self.editor.focus()
        self.desktop.press(TALK_KEY)
        # Written when the recording runs; its line comes just before.
        wait_until(lambda: os.path.exists(self.program.capture_state), "the recording to run")

    def speak(self, microphone=None) -> None:
        (microphone or self.stage.microphone).speak(SPEECH).wait()

    def release_key(self, before: str = "") -> str:
        """Ends the recording and returns the text that it brings."""
        self.desktop.release(TALK_KEY)
        _, text = self.editor.wait_for_text_after(before, 20)
        wait_until(lambda: not os.path.exists(self.program.capture_state), "the recording to be over")
        return text.removeprefix(before)

    def assert_next_dictation_works(self, microphone=None) -> None:
        before = self.editor.text()
        self.hold_key()
        self.speak(microphone)
        self.assertEqual(first_words(self.release_key(before)), SPOKEN_WORDS, self.program.output())

    def assert_alive(self) -> None:
        self.assertIsNone(self.program.process.poll(), self.program.errors())

    def test_pluggedInWhileIdle_isNoticed(self) -> None:
        start = len(self.program.output())
        self.sound.plug_in(OTHER, "Another microphone")
        self.program.wait_for_line(DEVICE_CHANGE, 5, start)
        self.assert_next_dictation_works()

    def test_pluggedInWhileIdleAndChosen_isRecordedFrom(self) -> None:
        other = self.sound.plug_in(OTHER, "Another microphone")
        self.sound.set_default_microphone(OTHER)
        self.assert_next_dictation_works(other)

    def test_pluggedInDuringARecording_disturbsNothing(self) -> None:
        self.hold_key()
        utterance = self.stage.microphone.speak(SPEECH)
        self.sound.plug_in(OTHER, "Another microphone")
        utterance.wait()
        self.assertEqual(first_words(self.release_key()), SPOKEN_WORDS)
        self.assert_alive()

    def test_unpluggedDuringARecording_losesNothingThatWasSaid(self) -> None:
        other = self.sound.plug_in(OTHER, "Another microphone")
        self.sound.set_default_microphone(MICROPHONE)
        self.hold_key()
        self.speak()
        self.sound.unplug(MICROPHONE)
        self.assertEqual(first_words(self.release_key()), SPOKEN_WORDS)
        self.assert_next_dictation_works(other)

    def test_theOnlyOneUnpluggedDuringARecording_losesNothingThatWasSaid(self) -> None:
        self.hold_key()
        self.speak()
        self.sound.unplug(MICROPHONE)
        self.assertEqual(first_words(self.release_key()), SPOKEN_WORDS)
        again = self.sound.plug_in(MICROPHONE, "The same again")
        self.sound.set_default_microphone(MICROPHONE)
        self.assert_next_dictation_works(again)

    def test_defaultChangedDuringARecording_losesNothingThatWasSaid(self) -> None:
        other = self.sound.plug_in(OTHER, "Another microphone")
        self.sound.set_default_microphone(MICROPHONE)
        self.hold_key()
        self.speak()
        self.sound.set_default_microphone(OTHER)
        self.assertEqual(first_words(self.release_key()), SPOKEN_WORDS)
        self.assert_next_dictation_works(other)

    def test_serverKilledWhileIdle_isFoundAgain(self) -> None:
        self.sound.end()
        self.program.wait_for_line("[TovikVoice] Sound server lost", 5)
        self.stage.start_sound()
        self.program.wait_for_line("[TovikVoice] Sound server is back", 15)
        self.assert_next_dictation_works()
        self.assertEqual(sum("Sound server lost" in line for line in self.program.output()), 1)

    def test_serverKilledDuringARecording_losesNothingThatWasSaid(self) -> None:
        self.hold_key()
        self.speak()
        self.sound.end()
        self.program.wait_for_line("[TovikVoice] Sound server lost", 5)
        self.assertEqual(first_words(self.release_key()), SPOKEN_WORDS)
        self.stage.start_sound()
        self.program.wait_for_line("[TovikVoice] Sound server is back", 15)
        self.assert_next_dictation_works()

    def test_wirelessOneAppearingDuringARecording_takesItOverAndTheTextSoFarArrives(self) -> None:
        self.hold_key()
        self.speak()
        self.sound.plug_in("blue", "Studio Bluetooth Mic")
        self.program.wait_for_line(
            "[TovikVoice] Attempting to recover with AirPods/Bluetooth device: Studio Bluetooth Mic", 5)
        # What was said before is pasted while the key is still held.
        _, text = self.editor.wait_for_text_after("", 20)
        self.assertEqual(first_words(text), SPOKEN_WORDS)
        self.assertTrue(self.state_is_active())
        self.desktop.release(TALK_KEY)
        wait_until(lambda: not os.path.exists(self.program.capture_state), "the recording to be over")
        self.assert_alive()
        self.sound.unplug("blue")
        self.sound.set_default_microphone(MICROPHONE)
        self.assert_next_dictation_works()

    def state_is_active(self) -> bool:
        with open(self.program.capture_state) as file:
            return json.load(file)["active"]


class OnPulseAudio(Microphones, ProgramTest):
    server = "pulseaudio"


class OnPipeWire(Microphones, ProgramTest):
    server = "pipewire"


if __name__ == "__main__":
    main()
