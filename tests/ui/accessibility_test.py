# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT
"""What assistive programs see of the real program: `accessibility_test.py PATH-OF-THE-PROGRAM`."""

import json
import os
import subprocess
import sys

FOLDER = os.path.dirname(os.path.realpath(__file__))
sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(FOLDER, "..", "desktop", "Program"))

from harness import ProgramTest, main  # noqa: E402
from keyboard_user import KeyboardUser  # noqa: E402
from staging.waiting import wait_until  # noqa: E402

BUTTON = "push button"


def section(title: str) -> list[tuple]:
    button = (BUTTON, f"{title} section", f"Expand or collapse {title} settings")
    subtitles = {
        "Permissions": "Check access and grant what is missing",
        "Corrections": "Review and fix transcript errors",
        "Cleanup": "Remove filler words, pauses, and more",
        "Translation": "Translate your transcript",
        "Transcript History": "View and manage past transcripts",
    }
    return [button, ("label", subtitles[title], ""), button]


HEADER = [
    (BUTTON, "More options", "More options"),
    ("image", "Tovik Record app icon", ""),
    ("label", "Tovik Record", ""),
    ("label", "Fast dictation with hands-free recording", ""),
    ("label", "Ready to dictate", ""),
    ("label", "Dictate", ""), ("label", "Hold Fn", ""),
    ("label", "Hands-Free Record", ""), ("label", "Fn + Shift", ""),
    ("label", "Stop Hands-Free", ""), ("label", "Fn + Shift", ""),
]
FOOTER = [
    ("label", "Tovik Record v1.3.6", ""),
    (BUTTON, "Check for updates", "Open the Tovik Record download page to check for the latest version"),
    (BUTTON, "Tovik AI website", "Open tovik.example"),
]


def row(title: str, detail: str, status: str, help_text: str) -> list[tuple]:
    return [("image", title, ""), ("label", title, ""), ("label", detail, ""), ("label", status, ""),
            (BUTTON, f"{title} permission action", help_text)]


class AccessibilityTest(ProgramTest):
    def tree(self, *presses: str) -> list[list]:
        """Of pairs of names: what is pressed first, and what shows then."""
        self.program = self.start(QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1", LC_ALL="en_GB.UTF-8", TZ="UTC")
        return self.look(*presses)

    def look(self, *presses: str) -> list[list]:
        seen = subprocess.run(["/usr/bin/python3", os.path.join(FOLDER, "accessible_tree.py"),
                               str(self.program.process.pid), *presses],
                              env=self.stage.environment, capture_output=True, text=True, timeout=60)
        self.assertEqual(seen.returncode, 0, seen.stderr)
        return json.loads(seen.stdout)

    def named(self, tree: list[list]) -> list[tuple]:
        """What has something to say, without the frames around it. A label that is cut short repeats itself as its
        help; whether it is depends on the font."""
        return [(role, name, help_text if role == BUTTON else "")
                for depth, role, name, help_text, *_ in tree if name and depth > 0]

    def test_everything_granted__header_sections_and_footer_are_told_in_visual_order(self) -> None:
        self.set_stage()
        tree = self.tree()
        sections = [part for title in ("Corrections", "Cleanup", "Translation", "Transcript History", "Permissions")
                    for part in section(title)]
        self.assertEqual(self.named(tree), HEADER + sections + FOOTER)
        for _, role, name, help_text, focusable, _ in tree:
            if role == BUTTON:
                self.assertTrue(focusable, name)
                self.assertTrue(help_text, name)

    def test_without_a_sound_server__the_permissions_are_told_row_by_row(self) -> None:
        self.set_stage(sound=None)
        named = self.named(self.tree())
        self.assertEqual(named[:len(HEADER)], HEADER)
        permissions = section("Permissions") + row(
            "Microphone", "Capture audio for dictation.", "Unknown", "Request or open settings for Microphone"
        ) + row(
            "Speech Recognition", "Convert speech into text.", "Granted", "Refresh Speech Recognition permission status"
        ) + row(
            "Accessibility", "Paste transcripts into the app you were using.", "Granted",
            "Refresh Accessibility permission status"
        )
        self.assertEqual(named[len(HEADER):len(HEADER) + len(permissions)], permissions)

    def keep_history(self, *texts: str) -> None:
        self.keep({"transcription.history": [{"text": text, "createdAt": 1740837909 - 60 * age}
                                             for age, text in enumerate(texts)]})

    def keep(self, settings: dict) -> None:
        """What another program does that changes settings: a new file takes the place of the old one."""
        folder = os.path.join(self.stage.environment["XDG_CONFIG_HOME"], "tovik-record")
        os.makedirs(folder, mode=0o700, exist_ok=True)
        file = os.path.join(folder, "defaults.json")
        kept = {}
        if os.path.exists(file):
            with open(file) as stream:
                kept = json.load(stream)
        with open(file + ".edited", "w") as stream:
            json.dump(kept | settings, stream)
        os.rename(file + ".edited", file)

    def section_of(self, tree: list[list], title: str, following: str) -> list[list]:
        """The named things between the headers of two sections, as [role, name, help, focusable, value]."""
        names = [part[2] for part in tree]
        begin = len(names) - names[::-1].index(f"{title} section")
        end = names.index(f"{following} section")
        return [part[1:] for part in tree[begin:end] if part[2]]

    def test_the_corrections__are_told_group_by_group_in_visual_order(self) -> None:
        self.set_stage()
        self.keep({"transcription.customDictionary": {"toe vic": "Tovik", "bot to bot": "Tovik",
                                                      "brindle pad": "Brindlepad"}})
        tree = self.tree("Corrections section", "Add correction")

        def heard(phrase: str) -> list[list]:
            return [["text", "Incorrect phrase", "Phrase Tovik Record should replace", True, phrase],
                    [BUTTON, "Delete variation", "Delete this incorrect phrase", True, ""]]

        def rest(replacement: str) -> list[list]:
            return [[BUTTON, "Add variation", f"Add another incorrect phrase for {replacement}", True, ""],
                    ["text", "Correct phrase", "Replacement text for this correction", True, replacement],
                    [BUTTON, "Delete correction", "Delete this correction rule", True, ""]]

        self.assertEqual(self.section_of(tree, "Corrections", "Cleanup"), [
            ["label", "Incorrect", "", False, ""], ["label", "Correct", "", False, ""],
            *heard("brindle pad"), *rest("Brindlepad"),
            *heard("bot to bot"), *heard("toe vic"), *rest("Tovik"),
            [BUTTON, "Add correction", "Add a new correction rule", True, ""]])

        tree = self.look("Add correction", "Corrections section")
        told = self.section_of(tree, "Corrections", "Cleanup")
        self.assertIn(heard("new phrase")[0], told)
        self.assertIn(rest("Replacement")[1], told)

    def test_settings_that_another_program_changes__are_told_anew(self) -> None:
        self.set_stage()
        box = ["check box", "Remove filler words", "Remove configured filler words after dictation", True]
        field = ["text", "Filler words", "Comma-separated filler words to remove after dictation", True]
        note = ["label", "Comma-separated. Clear to restore defaults.", "", False, ""]
        tree = self.tree("Cleanup section", "Filler words")
        self.assertEqual(self.section_of(tree, "Cleanup", "Translation"),
                         [[*box, ""], [*field, "kind of, sort of, um, uh, erm, hmm"], note])
        self.keep({"TovikVoiceRemoveFillerWords": True, "TovikVoiceFillerWords": "like, well"})
        wanted = [[*box, "checked"], [*field, "like, well"], note]
        wait_until(lambda: self.section_of(self.look(), "Cleanup", "Translation") == wanted, "the new settings")

    def test_the_translation__tells_switch_and_languages(self) -> None:
        self.set_stage()
        told = self.section_of(self.tree("Translation section", "Source language"), "Translation",
                               "Transcript History")
        self.assertEqual(told[0][0], "check box")
        self.assertTrue(told[0][1].startswith("Translate after dictation"))
        self.assertEqual(told[0][2], "Translate dictated text after transcription")
        self.assertEqual([part[1:3] for part in told if part[0] == "combo box"],
                         [["Source language", "English"], ["Target language", "Spanish"]])
        self.assertEqual([part[1] for part in told if part[1] in ("From:", "To:")], ["From:", "To:"])

    def test_the_history__is_a_list_of_transcripts_that_can_be_searched_and_copied(self) -> None:
        self.set_stage()
        self.keep_history("see you tomorrow", "go forward ten meters")
        tree = self.tree("Transcript History section", "Search transcripts")
        begin = next(index for index, part in enumerate(tree) if part[2] == "Search transcripts")
        told = [part[1:] for part in tree[begin:] if part[2]]
        copy = [BUTTON, "Copy transcript", "Copy this transcript to the clipboard"]
        self.assertEqual([part[:3] for part in told[:11]], [
            ["text", "Search transcripts", "Filter transcript history by text"],
            ["label", "2 of 2", ""],
            ["list", "Transcript History", "Double-click to copy · Right-click to delete"],
            ["list item", "see you tomorrow", "01/03/2025 14:05"],
            ["label", "see you tomorrow", ""], ["label", "01/03/2025 14:05", ""], copy,
            ["list item", "go forward ten meters", "01/03/2025 14:04"],
            ["label", "go forward ten meters", ""], ["label", "01/03/2025 14:04", ""], copy,
        ])
        self.assertEqual(told[11][:2], ["label", "Double-click to copy · Right-click to delete"])
        for role, name, _, focusable, _ in told[:11]:
            if role in ("text", "list", "list item"):
                self.assertTrue(focusable, name)

        self.look("go forward ten meters", "Copied")
        wait_until(lambda: self.desktop.selection_text("CLIPBOARD") == "go forward ten meters", "the copy")

    def test_the_status_menu__is_told_row_by_row_as_the_keyboard_moves(self) -> None:
        self.set_stage()
        user = KeyboardUser(self.stage, self.desktop)
        self.start(QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1")
        user.begin()
        self.desktop.tap("space")
        user.press("Down", "menu item", "Input Device")
        for row in ("Dictation Language", "Paste Last Transcript", "Transcript History"):
            user.press("Down", "menu item", row)
        user.press("Up", "menu item", "Paste Last Transcript")


if __name__ == "__main__":
    main()
