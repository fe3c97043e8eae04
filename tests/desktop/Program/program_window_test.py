# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT
"""What a user does in the main window, with the keyboard, and what comes of it."""

import json
import os

from harness import ProgramTest, first_words, main
from keyboard_user import KeyboardUser
from staging.waiting import wait_until


class MainWindow(ProgramTest):
    def setting(self, program, key: str):
        try:
            with open(program.defaults) as file:
                return json.load(file).get(key)
        except OSError:
            return None

    def test_aCorrectionAddedThere_isAppliedToTheNextDictation_whichIsFoundCopiedAndDeletedInTheHistory(self) -> None:
        self.set_stage()
        user = KeyboardUser(self.stage, self.desktop)
        program = self.start(QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1")

        # The correction.
        user.begin()
        user.tab_to("Corrections section")
        self.desktop.tap("space")
        user.tab_to("Add correction")
        user.press("space", "text", "Incorrect phrase")
        self.desktop.type("forward")
        user.press("Tab", "text", "Correct phrase")
        self.desktop.type("onward")
        self.desktop.tap("Return")
        wait_until(lambda: self.setting(program, "transcription.customDictionary").get("forward") == "onward",
                   "the correction to be stored")

        # The dictation.
        editor = self.open_editor("before")
        result = self.dictate(program, editor)
        self.assertEqual(first_words(result.pasted), ["go", "onward", "10"])
        self.assertEqual(result.saved.rstrip("\n"), result.pasted + "before")

        # Another program takes the clipboard over, so that it tells when the history fills it.
        self.desktop.tap("Control_L", "a")
        self.desktop.tap("Control_L", "c")
        wait_until(lambda: self.desktop.selection_text("CLIPBOARD") == result.pasted + "before", "the editor's copy")

        # The history: a second start brings the window back, with the keyboard where it was.
        start = user.told()
        self.assertEqual(self.launch("second").wait(), 0)
        program.wait_until_presented(self.desktop)
        user.wait_to_be_told("text", "Correct phrase", start)
        user.tab_to("Transcript History section")
        self.desktop.tap("space")
        user.tab_to("Search transcripts")
        self.desktop.type("go onward")
        self.desktop.tap("Control_L", "a")
        self.desktop.tap("Control_L", "c")
        wait_until(lambda: self.desktop.selection_text("CLIPBOARD") == "go onward", "the copy of the field's text")
        user.press("Down", "list item", result.pasted)
        self.desktop.tap("Return")
        wait_until(lambda: self.desktop.selection_text("CLIPBOARD") == result.pasted, "the copy")

        # The program's own fields paste and copy as others do.
        user.tab_to("Search transcripts")
        self.desktop.tap("Control_L", "a")
        self.desktop.tap("Control_L", "v")
        self.desktop.type("x")
        self.desktop.tap("Control_L", "a")
        self.desktop.tap("Control_L", "c")
        wait_until(lambda: self.desktop.selection_text("CLIPBOARD") == result.pasted + "x", "the copy of what was pasted")
        self.desktop.tap("BackSpace")
        user.press("Down", "list item", result.pasted)
        self.desktop.tap("Delete")
        wait_until(lambda: self.setting(program, "transcription.history") == [], "the transcript to be deleted")
        self.assertIsNone(program.process.poll())

    def test_aTranscriptThatAnotherProcessStores_showsWhileTheWindowIsOpen(self) -> None:
        self.set_stage()
        user = KeyboardUser(self.stage, self.desktop)
        program = self.start(QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1")
        user.begin()
        user.tab_to("Transcript History section")
        self.desktop.tap("space")
        user.tab_to("Search transcripts")
        with open(program.defaults) as file:
            settings = json.load(file)
        settings["transcription.history"] = [{"text": "said elsewhere", "createdAt": 1740837909.5}]
        with open(program.defaults + ".new", "w") as file:
            json.dump(settings, file)
        os.replace(program.defaults + ".new", program.defaults)

        def copied() -> bool:
            self.desktop.tap("Down")
            self.desktop.tap("Return")
            return self.desktop.selection_text("CLIPBOARD") == "said elsewhere"

        wait_until(copied, "the transcript to show", step=0.2)


if __name__ == "__main__":
    main()
