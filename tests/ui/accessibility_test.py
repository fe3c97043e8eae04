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
    def tree(self) -> list[list]:
        program = self.start(QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1")
        seen = subprocess.run(["/usr/bin/python3", os.path.join(FOLDER, "accessible_tree.py"),
                               str(program.process.pid)],
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


if __name__ == "__main__":
    main()
