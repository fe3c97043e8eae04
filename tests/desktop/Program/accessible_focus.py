# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT
"""Prints what a screen reader would say as the keyboard moves: `accessible_focus.py`, inside a stage.

First the line "listening", then a line of JSON [role, name] for whatever gets the focus.
"""

import json

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402


def tell(event) -> None:
    if event.detail1:
        print(json.dumps([event.source.get_role_name(), event.source.get_name()]), flush=True)


def main() -> None:
    Atspi.init()
    listener = Atspi.EventListener.new(tell)
    listener.register("object:state-changed:focused")
    print("listening", flush=True)
    Atspi.event_main()


if __name__ == "__main__":
    main()
