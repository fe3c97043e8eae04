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
                for depth, role, name, help_text, _ in tree if name and depth > 0]

    def test_everything_granted__header_sections_and_footer_are_told_in_visual_order(self) -> None:
        self.set_stage()
        tree = self.tree()
        sections = [part for title in ("Corrections", "Cleanup", "Translation", "Transcript History", "Permissions")
                    for part in section(title)]
        self.assertEqual(self.named(tree), HEADER + sections + FOOTER)
        for _, role, name, help_text, focusable in tree:
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
        folder = os.path.join(self.stage.environment["XDG_CONFIG_HOME"], "tovik-record")
        os.makedirs(folder, mode=0o700)
        with open(os.path.join(folder, "defaults.json"), "w") as file:
            json.dump({"transcription.history": [{"text": text, "createdAt": 1740837909 - 60 * age}
                                                 for age, text in enumerate(texts)]}, file)

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
        for role, name, _, focusable in told[:11]:
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
