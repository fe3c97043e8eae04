# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT
"""The status menu of the real program: in both kinds of tray, and from the window where there is none."""

import json
import os
import time

from harness import ProgramTest, main
from notifier_host import NotifierHost
from staging.waiting import wait_until

MENU = ["Input Device", "Dictation Language", "---", "Paste Last Transcript", "Transcript History", "---",
        "Open Tovik Record", "Quit"]
LANGUAGES = ["🌐 Auto-detect", "---", "🇺🇸 English (US)", "🇬🇧 English (UK)", "🇫🇷 French", "🇪🇸 Spanish", "🇩🇪 German",
             "🇮🇹 Italian", "🇨🇳 Chinese (Simplified)", "🇯🇵 Japanese"]
MICROPHONE = "Staged microphone"
LANGUAGE_CHANGED = "[TovikVoice] Dictation language changed to: "
DEVICE_SELECTED = "[TovikVoice] Selected audio device: "


class StatusMenuTest(ProgramTest):
    def keep_history(self, *texts: str) -> None:
        """Settings as an earlier run has left them, the newest transcript first."""
        folder = os.path.join(self.stage.environment["XDG_CONFIG_HOME"], "tovik-record")
        os.makedirs(folder, mode=0o700, exist_ok=True)
        now = time.time()
        entries = [{"text": text, "createdAt": now - age} for age, text in enumerate(texts)]
        with open(os.path.join(folder, "defaults.json"), "w") as file:
            json.dump({"transcription.history": entries}, file)

    def setting(self, program, key: str):
        try:
            with open(program.defaults) as file:
                return json.load(file).get(key)
        except OSError:
            return None

    def wait_for_popup(self, before: list[tuple]) -> tuple[int, int, int, int, int]:
        """The menu that has opened beyond what was on the screen before."""
        known = {child[0] for child in before}

        def opened():
            return [child for child in self.desktop.mapped_children() if child[0] not in known]

        return wait_until(opened, "a menu on the screen")[-1]

    def assert_pasted(self, editor, text: str) -> None:
        self.assertEqual(editor.wait_for_text_after("", 10)[1], text)
        self.assertEqual(self.desktop.selection_text("CLIPBOARD"), text)


class InAPanelOfNotifierItems(StatusMenuTest):
    def setUp(self) -> None:
        super().setUp()
        self.set_stage()
        self.host = self._stack.enter_context(NotifierHost(self.stage.environment["DBUS_SESSION_BUS_ADDRESS"]))

    def show(self):
        self.program = self.start()
        return self.host.wait_for_item()

    def test_everyRowAndSubmenuIsThere(self) -> None:
        item = self.show()
        self.assertEqual(item.property("ToolTip")[2], "Tovik Record")
        wait_until(lambda: [row.label for row in item.menu()] == MENU, "the menu's rows")
        devices = wait_until(lambda: item.open("Input Device"), "the microphones")
        self.assertEqual([row.label for row in devices], [MICROPHONE, MICROPHONE])
        languages = item.open("Dictation Language")
        self.assertEqual([row.label for row in languages], LANGUAGES)
        self.assertEqual([row.label for row in languages if row.is_checked], ["🌐 Auto-detect"])
        history = item.open("Transcript History")
        self.assertEqual([(row.label, row.is_enabled) for row in history], [("No transcripts yet", False)])

    def test_aMicrophoneCanBeChosen_byEitherOfItsRows(self) -> None:
        item = self.show()
        wait_until(lambda: item.open("Input Device"), "the microphones")
        item.choose("Input Device", MICROPHONE)
        self.program.wait_for_line(DEVICE_SELECTED + MICROPHONE, 5)
        wait_until(lambda: [row.is_checked for row in item.open("Input Device")] == [True, True], "the marks")

    def test_aLanguageCanBeChosenAndTakenBack(self) -> None:
        item = self.show()
        item.choose("Dictation Language", "🇫🇷 French")
        self.program.wait_for_line(LANGUAGE_CHANGED + "fr-FR", 5)
        self.assertEqual(self.setting(self.program, "SelectedDictationLocale"), "fr-FR")
        self.assertEqual([row.label for row in item.open("Dictation Language") if row.is_checked], ["🇫🇷 French"])
        item.choose("Dictation Language", "🌐 Auto-detect")
        self.program.wait_for_line(LANGUAGE_CHANGED + "Auto-detect", 5)
        self.assertIsNone(self.setting(self.program, "SelectedDictationLocale"))

    def test_aTranscriptIsPastedWhereTheUserIs(self) -> None:
        self.keep_history("newest", "one\ntwo " + "three " * 20, *(f"text {number}" for number in range(10)))
        item = self.show()
        editor = self.open_editor()
        shown = item.open("Transcript History")
        self.assertEqual(len(shown), 8)
        self.assertEqual(shown[1].label, "one two three three three three three thre...")
        item.choose("Transcript History", shown[1].label)
        self.assert_pasted(editor, ("one\ntwo " + "three " * 20))

    def test_titlesShowAsTheyStand(self) -> None:
        titles = ["snake_case and __init__", "salt & pepper & more && less", "_", "&", "a_&b&_c"]
        self.keep_history(*titles)
        item = self.show()
        self.assertEqual([row.label for row in item.open("Transcript History")], titles)

    def test_theWindowComesBackAndTheProgramEnds(self) -> None:
        item = self.show()
        self.desktop.close(self.program.windows(self.desktop)[0])
        wait_until(lambda: not self.program.windows(self.desktop), "the main window to be hidden")
        item.choose("Open Tovik Record")
        self.program.wait_until_presented(self.desktop)
        item.choose("Quit")
        self.assertEqual(self.program.wait(), 0)

    def test_theButtonOfTheWindowShowsTheSameMenu(self) -> None:
        self.show()
        before = self.desktop.mapped_children()
        self.desktop.tap("Tab")
        self.desktop.tap("space")
        self.wait_for_popup(before)
        self.desktop.tap("Up")
        self.desktop.tap("Return")
        self.assertEqual(self.program.wait(), 0)


class InATrayOfWindows(StatusMenuTest):
    def show(self) -> int:
        """Starts a tray and the program; the window of the icon."""
        self.stage.spawn("tray", ["trayer", "--edge", "top", "--align", "left", "--widthtype", "request",
                                  "--heighttype", "pixel", "--height", "24", "--SetDockType", "true"])
        wait_until(lambda: self.desktop.selection_owner("_NET_SYSTEM_TRAY_S0"), "the tray")
        self.program = self.start()
        return wait_until(lambda: self.desktop.embedded_windows(self.program.process.pid), "the icon in the tray")[0]

    def open_menu(self, icon: int, button: int) -> None:
        before = self.desktop.mapped_children()
        x, y, width, height = self.desktop.place(icon)
        self.desktop.click(x + width // 2, y + height // 2, button)
        self.wait_for_popup(before)

    def test_eitherMouseButtonOpensTheMenu_andATranscriptIsPastedWhereTheUserIs(self) -> None:
        self.set_stage()
        self.keep_history("said before")
        icon = self.show()
        for button in (1, 3):
            editor = self.open_editor()
            self.open_menu(icon, button)
            for _ in range(4):
                self.desktop.tap("Down")
            before = self.desktop.mapped_children()
            self.desktop.tap("Right")
            self.wait_for_popup(before)
            self.desktop.tap("Return")
            self.assert_pasted(editor, "said before")
            self.stage.end("editor")
            self.stage.end("reader")
            os.unlink(editor.file)

    def test_afterADictationTheIconIsStillThere(self) -> None:
        self.set_stage()
        icon = self.show()
        self.dictate(self.program, self.open_editor())
        self.assertEqual(self.desktop.embedded_windows(self.program.process.pid), [icon])
        self.open_menu(icon, 1)

    def test_theLastRowEndsTheProgram(self) -> None:
        self.set_stage()
        icon = self.show()
        self.open_menu(icon, 1)
        self.desktop.tap("Up")
        self.desktop.tap("Return")
        self.assertEqual(self.program.wait(), 0)


class WithoutATray(StatusMenuTest):
    def test_theButtonOfTheWindowPopsTheMenuUpBeneathIt(self) -> None:
        self.set_stage()
        self.program = self.start()
        before = self.desktop.mapped_children()
        self.desktop.tap("Tab")
        self.desktop.tap("space")
        menu = self.wait_for_popup(before)
        window = self.program.windows(self.desktop)[0]
        left, top, width = self.desktop.place(window)[:3]
        # The button ends 28 below the window's top side of 12, and the menu begins 4 below it.
        self.assertGreater(menu[1], left + width // 2)
        self.assertIn(menu[2] - top, range(40, 60))
        self.desktop.tap("Down")
        self.desktop.tap("Down")
        before = self.desktop.mapped_children()
        self.desktop.tap("Right")
        self.wait_for_popup(before)
        for _ in range(3):
            self.desktop.tap("Down")
        self.desktop.tap("Return")
        self.program.wait_for_line(LANGUAGE_CHANGED + "fr-FR", 5)
        self.assertEqual(self.setting(self.program, "SelectedDictationLocale"), "fr-FR")

    def test_whileTheMenuIsOpen_itsKeyEquivalentEndsTheProgram(self) -> None:
        self.set_stage()
        self.program = self.start()
        before = self.desktop.mapped_children()
        self.desktop.tap("Tab")
        self.desktop.tap("space")
        self.wait_for_popup(before)
        self.desktop.tap("Control_L", "q")
        self.assertEqual(self.program.wait(), 0)


if __name__ == "__main__":
    main()
