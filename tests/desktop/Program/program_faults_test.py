# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT
"""What the program does where something it needs is missing or broken: a clear line, no crash, nothing lost."""

import glob
import json
import os
import resource
import signal

from harness import NO_SPEECH, RECORDING_STARTED, ProgramTest, main
from staging.program import Program
from staging.rehearsal import TALK_KEY
from staging.waiting import wait_until


class MissingService(ProgramTest):
    def test_display_endsTheLaunchWithASentence(self) -> None:
        self.set_stage(display=False, sound=None)
        program = self.launch()
        self.assertGreater(program.wait(), 0, "it must neither seem to work nor crash")
        self.assertRegex(program.errors(), "(?i)display")

    def test_soundServer_isToldWhenTheKeyIsPressed(self) -> None:
        self.set_stage(sound=None)
        program = self.start()
        editor = self.open_editor()
        self.desktop.tap(TALK_KEY)
        self._assert_main_window_comes_forward(program)
        self.assertNotIn(RECORDING_STARTED, program.output())
        self.assertRegex("\n".join(program.output()), "(?i)sound server")
        self.assertEqual(editor.text(), "")

    def test_soundServer_isUsedAsSoonAsItIsThere(self) -> None:
        stage = self.set_stage()
        stage.sound.end()
        program = self.start()
        editor = self.open_editor()
        program.lines.wait_for(lambda line: "sound server" in line.lower(), "a line about the sound server", 10)
        stage.start_sound()
        program.wait_for_line("Sound server is there", 15)
        self.assert_still_dictates(program, editor)

    def test_soundServer_dyingInARecordingCostsOnlyThatRecording(self) -> None:
        stage = self.set_stage()
        program = self.start()
        editor = self.open_editor()
        self.desktop.press(TALK_KEY)
        # Written when the recording runs; its line comes just before.
        wait_until(lambda: os.path.exists(program.capture_state), "the recording to run")
        stage.sound.end()
        program.lines.wait_for(lambda line: "sound server" in line.lower(), "a line about the sound server", 10)
        self.desktop.release(TALK_KEY)
        program.wait_for_line(NO_SPEECH, 10)
        stage.start_sound()
        program.wait_for_line("Sound server is back", 15)
        self.assert_still_dictates(program, editor)

    def test_microphone_isToldWhenTheKeyIsPressed(self) -> None:
        self.set_stage(microphone=False)
        program = self.start()
        editor = self.open_editor()
        self.desktop.tap(TALK_KEY)
        self._assert_main_window_comes_forward(program)
        self.assertNotIn(RECORDING_STARTED, program.output())
        self.assertEqual(editor.text(), "")

    def test_model_isToldWhenTheKeyIsPressed(self) -> None:
        self.set_stage()
        file = os.path.join(self.stage.environment["XDG_CONFIG_HOME"], "tovik-record", "defaults.json")
        os.makedirs(os.path.dirname(file), mode=0o700)
        with open(file, "w") as stream:
            json.dump({"platform.speechModel": self.stage.path("no-model-here")}, stream)
        program = self.start()
        editor = self.open_editor()
        self.desktop.tap(TALK_KEY)
        self._assert_main_window_comes_forward(program)
        self.assertNotIn(RECORDING_STARTED, program.output())
        self.assertIn("The English speech model is not usable", program.errors())
        self.assertEqual(editor.text(), "")

    def test_windowManager_keepsItFromNothing(self) -> None:
        self.set_stage(manager=False, sound=None)
        program = self.start()
        self.assertEqual(program.terminate(), 0)

    def test_sessionBus_keepsItFromNothing(self) -> None:
        self.set_stage(bus=False, sound=None)
        program = self.start()
        self.assertEqual(program.terminate(), 0)

    def test_keyPressing_isToldAtLaunch(self) -> None:
        self.set_stage(sound=None, server_options=("-extension", "XTEST"))
        program = self.start()
        told = "\n".join(program.output()) + program.errors()
        self.assertRegex(told, "(?i)xtest")
        self.assertEqual(program.terminate(), 0)

    def _assert_main_window_comes_forward(self, program) -> None:
        wait_until(lambda: self.desktop.active_window() in program.windows(self.desktop), "the main window")


class BrokenSettings(ProgramTest):
    """The settings file holds something else than it should. The old bytes are kept beside it."""

    def setUp(self) -> None:
        super().setUp()
        self.set_stage()
        self.file = os.path.join(self.stage.environment["XDG_CONFIG_HOME"], "tovik-record", "defaults.json")
        os.makedirs(os.path.dirname(self.file), mode=0o700)

    def _assert_works_and_keeps(self, content: bytes) -> None:
        with open(self.file, "wb") as file:
            file.write(content)
        program = self.start()
        self.assert_still_dictates(program, self.open_editor())
        kept = glob.glob(self.file + ".unreadable-*")
        self.assertEqual(len(kept), 1, program.output())
        with open(kept[0], "rb") as file:
            self.assertEqual(file.read(), content)
        with open(self.file) as file:
            self.assertEqual(len(json.load(file)["transcription.history"]), 1)

    def test_truncated_countAsEmptyAndAreKept(self) -> None:
        self._assert_works_and_keeps(b'{"transcription.history": [{"text": "hel')

    def test_ofTheWrongType_countAsEmptyAndAreKept(self) -> None:
        self._assert_works_and_keeps(b'["a list", "is no set of settings"]')

    def test_binary_countAsEmptyAndAreKept(self) -> None:
        self._assert_works_and_keeps(bytes(range(256)) * 16)

    def test_withValuesOfTheWrongType_fallBackValueByValue(self) -> None:
        content = {"transcription.history": {"no": "list"}, "transcription.customDictionary": 7,
                   "SelectedDictationLocale": ["en-US"], "TovikVoiceRemoveFillerWords": "yes", "kept": "as it is"}
        with open(self.file, "w") as file:
            json.dump(content, file)
        program = self.start()
        self.assert_still_dictates(program, self.open_editor())
        with open(self.file) as file:
            now = json.load(file)
        self.assertEqual(len(now["transcription.history"]), 1)
        self.assertEqual(now["kept"], "as it is")

    def test_withAHistoryOfHundredThousand_areReadAndShortened(self) -> None:
        history = [{"text": f"sentence {index}", "createdAt": 1.7e9 - index} for index in range(100_000)]
        with open(self.file, "w") as file:
            json.dump({"transcription.history": history}, file)
        program = self.launch()
        self.assertLess(program.wait_until_ready(), 5.0)
        program.wait_until_presented(self.desktop)
        self.assert_still_dictates(program, self.open_editor())
        with open(self.file) as file:
            kept = json.load(file)["transcription.history"]
        self.assertEqual(len(kept), 100)
        self.assertEqual([entry["text"] for entry in kept[1:4]], ["sentence 0", "sentence 1", "sentence 2"])


class UnwritableFolder(ProgramTest):
    """A file stands where the program wants a folder: nothing can be written there, not even by root."""

    def setUp(self) -> None:
        super().setUp()
        self.set_stage()

    def _block(self, variable: str, name: str) -> None:
        with open(os.path.join(self.stage.environment[variable], name), "w") as file:
            file.write("in the way")

    def test_ofTheCaptureState_isToldAndDoesNotStopTheDictation(self) -> None:
        self._block("XDG_DATA_HOME", "Tovik")
        program = self.start()
        self.assert_still_dictates(program, self.open_editor())
        self.assertTrue(any(line.startswith("[TovikVoice] Failed to write capture state: ")
                            for line in program.output()), program.output())

    def test_ofTheDebugLog_doesNotStopTheDictation(self) -> None:
        self._block("XDG_STATE_HOME", "tovik-record")
        program = self.start()
        self.assert_still_dictates(program, self.open_editor())

    def test_ofTheSettings_isToldAndDoesNotStopTheDictation(self) -> None:
        self._block("XDG_CONFIG_HOME", "tovik-record")
        program = self.start()
        self.assert_still_dictates(program, self.open_editor())
        self.assertTrue(any("Failed to save the setting transcription.history" in line
                            for line in program.output()), program.output())


class FullDisk(ProgramTest):
    def test_whenSettingsNoLongerFit_keepsTheOldOnesAndPastes(self) -> None:
        self.set_stage()
        file = os.path.join(self.stage.environment["XDG_CONFIG_HOME"], "tovik-record", "defaults.json")
        os.makedirs(os.path.dirname(file), mode=0o700)
        history = [{"text": f"sentence {index} " + "and so on " * 10, "createdAt": 1.7e9 - index} for index in range(90)]
        with open(file, "w") as stream:
            json.dump({"transcription.history": history}, stream)
        with open(file, "rb") as stream:
            before = stream.read()
        program = self._start_with_files_limited_to(len(before) // 2)
        self.assert_still_dictates(program, self.open_editor())
        with open(file, "rb") as stream:
            self.assertEqual(stream.read(), before)
        self.assertTrue(any("Failed to save the setting transcription.history" in line
                            for line in program.output()), program.output())

    def test_whenThereIsRoomAgain_savesTheTranscriptThatDidNotFit(self) -> None:
        self.set_stage()
        program = self._start_with_files_limited_to(1 << 20)
        editor = self.open_editor()
        _, most = resource.prlimit(program.process.pid, resource.RLIMIT_FSIZE)
        resource.prlimit(program.process.pid, resource.RLIMIT_FSIZE, (16, most))
        text = self.dictate(program, editor).pasted
        program.wait_for_line("Failed to save the setting transcription.history", 5)
        resource.prlimit(program.process.pid, resource.RLIMIT_FSIZE, (most, most))
        program.wait_for_line("[TovikVoice] The settings that could not be saved are saved now", 10)
        with open(program.defaults) as file:
            history = json.load(file)["transcription.history"]
        self.assertEqual([entry["text"] for entry in history], [text])

    def _start_with_files_limited_to(self, size: int) -> Program:
        """A limit on the size of files stands in for a full disk: it needs no right, and writing fails alike."""
        def limit() -> None:
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (size, resource.getrlimit(resource.RLIMIT_FSIZE)[1]))

        program = Program(self.stage, self.binary, prepare=limit)
        program.wait_until_ready()
        program.wait_until_presented(self.desktop)
        return program


if __name__ == "__main__":
    main()
