# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT
"""What a process costs, with those that it has started, as the kernel counts it."""

import os
import time

from .waiting import wait_until

TICKS_PER_SECOND = os.sysconf("SC_CLK_TCK")
PAGE_BYTES = os.sysconf("SC_PAGE_SIZE")


def stat_fields(process: int) -> list[str]:
    """What stands behind the name in /proc/PID/stat, from the state on."""
    with open(f"/proc/{process}/stat") as file:
        return file.read().rpartition(")")[2].split()


def family(process: int) -> list[int]:
    """The process and all that descend from it: speech is decoded in processes of their own."""
    parents = {}
    for entry in os.listdir("/proc"):
        if entry.isdigit():
            try:
                parents[int(entry)] = int(stat_fields(int(entry))[1])
            except OSError:  # It has just ended.
                continue
    members = [process]
    for member in members:
        members += [child for child, parent in parents.items() if parent == member]
    return members


def processor_seconds(process: int) -> float:
    """Time on the processor since their start, in user and kernel mode."""
    ticks = 0
    for member in family(process):
        try:
            fields = stat_fields(member)
        except OSError:
            if member == process:
                raise
            continue
        ticks += int(fields[11]) + int(fields[12])
    return ticks / TICKS_PER_SECOND


def resident_bytes(process: int) -> int:
    """Pages that two of them share count twice."""
    pages = 0
    for member in family(process):
        try:
            with open(f"/proc/{member}/statm") as file:
                pages += int(file.read().split()[1])
        except OSError:
            if member == process:
                raise
    return pages * PAGE_BYTES


def wait_until_calm(process: int, seconds: float = 20.0) -> None:
    """Waits until the process does nothing for a while: what a launch leaves to the background is over then."""
    def calm() -> bool:
        before = processor_seconds(process)
        time.sleep(0.5)
        return processor_seconds(process) - before < 0.02

    wait_until(calm, "the work in the background to be over", seconds)
