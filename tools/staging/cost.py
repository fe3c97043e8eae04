# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT
"""What a process costs, as the kernel counts it."""

import os
import time

from .waiting import wait_until

TICKS_PER_SECOND = os.sysconf("SC_CLK_TCK")
PAGE_BYTES = os.sysconf("SC_PAGE_SIZE")


def processor_seconds(process: int) -> float:
    """Time on the processor since its start, in user and kernel mode."""
    with open(f"/proc/{process}/stat") as file:
        fields = file.read().rpartition(")")[2].split()
    return (int(fields[11]) + int(fields[12])) / TICKS_PER_SECOND


def resident_bytes(process: int) -> int:
    with open(f"/proc/{process}/statm") as file:
        return int(file.read().split()[1]) * PAGE_BYTES


def wait_until_calm(process: int, seconds: float = 20.0) -> None:
    """Waits until the process does nothing for a while: what a launch leaves to the background is over then."""
    def calm() -> bool:
        before = processor_seconds(process)
        time.sleep(0.5)
        return processor_seconds(process) - before < 0.02

    wait_until(calm, "the work in the background to be over", seconds)
