# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT
"""Tells what stands in an editor, through the accessibility bus, as often as it changes.

A process of its own, because the accessibility library binds a whole process to one session bus. Every line it
prints is JSON: {"at": monotonic seconds, "text": "the whole text"}, the first one as soon as it can read it.

    python3 -m staging.reader PROCESS-ID
"""

import json
import sys
import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

# Events tell of a change at once; this is only for those that a toolkit forgets to send.
FALLBACK_MILLISECONDS = 100
SEARCH_SECONDS = 20.0


def find_text(accessible):
    """The first editable text below an accessible object, depth first."""
    if accessible is None:
        return None
    try:
        if accessible.get_role() == Atspi.Role.TEXT and accessible.get_state_set().contains(Atspi.StateType.EDITABLE):
            return accessible
        for index in range(accessible.get_child_count()):
            if found := find_text(accessible.get_child_at_index(index)):
                return found
    except GLib.Error:
        pass  # The object went away while we looked at it.
    return None


def find_editor(process: int):
    desktop = Atspi.get_desktop(0)
    for index in range(desktop.get_child_count()):
        application = desktop.get_child_at_index(index)
        try:
            if application and application.get_process_id() == process:
                return find_text(application)
        except GLib.Error:
            continue
    return None


class Reader:
    """Prints the text of one accessible object whenever it differs from what was printed last."""

    def __init__(self, editor) -> None:
        self._editor = editor
        self._last: str | None = None

    def look(self, *_) -> bool:
        try:
            text = Atspi.Text.get_text(self._editor, 0, -1)
        except GLib.Error:
            Atspi.event_quit()
            return False
        if text != self._last:
            self._last = text
            print(json.dumps({"at": time.monotonic(), "text": text}), flush=True)
        return True


def main() -> int:
    Atspi.init()
    process = int(sys.argv[1])
    deadline = time.monotonic() + SEARCH_SECONDS
    while (editor := find_editor(process)) is None:
        if time.monotonic() > deadline:
            print("the editor does not show its text on the accessibility bus", file=sys.stderr)
            return 1
        time.sleep(0.02)
    reader = Reader(editor)
    listener = Atspi.EventListener.new(reader.look)
    listener.register("object:text-changed")
    reader.look()
    GLib.timeout_add(FALLBACK_MILLISECONDS, reader.look)
    Atspi.event_main()
    return 0


if __name__ == "__main__":
    sys.exit(main())
