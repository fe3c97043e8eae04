# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT
"""Waiting for a condition, with a limit and a sentence for when the limit is reached."""

import time
from typing import Callable, TypeVar

Value = TypeVar("Value")


class StageError(Exception):
    """The stage cannot do what was asked of it; the text is meant for the person who asked."""


def wait_until(condition: Callable[[], Value], what: str, seconds: float = 10.0, step: float = 0.005) -> Value:
    """Returns the first truthy answer of the condition; raises StageError after the given time."""
    deadline = time.monotonic() + seconds
    while True:
        if value := condition():
            return value
        if time.monotonic() >= deadline:
            raise StageError(f"waited {seconds:g} seconds in vain for {what}")
        time.sleep(step)
