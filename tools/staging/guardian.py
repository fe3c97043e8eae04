# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT
"""Ends everything that belongs to one stage as soon as its owner is gone.

The owner starts this as a process of its own and holds the writing end of its standard input. The input ends
when the owner closes it, and also when the owner is killed; either way every process that carries the stage's
mark in its environment is ended and the stage's folder removed. So there is one way to clean up, and it does
not depend on how the owner died.

    python3 -m staging.guardian MARK FOLDER
"""

import os
import select
import shutil
import signal
import sys
import time

MARK_VARIABLE = "TOVIK_STAGE"
SERVER_VARIABLE = "TOVIK_STAGE_SERVER"

PATIENCE_SECONDS = 3.0


def marked_processes(mark: str) -> dict[int, bool]:
    """Process ids that carry the mark, each with whether it serves the stage (X, bus, sound)."""
    found = {}
    needle = mark.encode()
    for name in os.listdir("/proc"):
        if not name.isdigit() or int(name) == os.getpid():
            continue
        try:
            with open(f"/proc/{name}/environ", "rb") as file:
                entries = file.read().split(b"\0")
        except OSError:
            continue
        marks = [entry for entry in entries if entry.startswith(MARK_VARIABLE.encode() + b"=")]
        if any(needle in entry for entry in marks):
            found[int(name)] = any(entry.startswith(SERVER_VARIABLE.encode() + b"=") for entry in entries)
    return found


def end(pids: list[int], patience: float) -> None:
    """Asks each process to end, waits, and kills what is left."""
    handles = {}
    for pid in pids:
        try:
            handles[os.pidfd_open(pid)] = pid
            os.kill(pid, signal.SIGTERM)
        except (ProcessLookupError, PermissionError):
            pass
    deadline = time.monotonic() + patience
    while handles and (left := deadline - time.monotonic()) > 0:
        for handle in select.select(list(handles), [], [], left)[0]:
            os.close(handle)
            del handles[handle]
    for handle, pid in handles.items():
        try:
            os.kill(pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        select.select([handle], [], [], 1.0)
        os.close(handle)


def sweep(mark: str) -> None:
    # Programs first, while the servers that they talk to still answer; then the servers. New processes may
    # appear while old ones end, hence the rounds.
    for _ in range(5):
        programs = [pid for pid, serves in marked_processes(mark).items() if not serves]
        if not programs:
            break
        end(programs, PATIENCE_SECONDS)
    for _ in range(5):
        everything = list(marked_processes(mark))
        if not everything:
            break
        end(everything, PATIENCE_SECONDS)


def remove_display_files(folder: str) -> None:
    """An X server that had to be killed leaves its lock and its socket behind."""
    try:
        with open(os.path.join(folder, "display")) as file:
            number = int(file.read().strip().lstrip(":"))
    except (OSError, ValueError):
        return
    lock = f"/tmp/.X{number}-lock"
    try:
        with open(lock) as file:
            pid = int(file.read())
        os.kill(pid, 0)
    except ProcessLookupError:
        for path in (lock, f"/tmp/.X11-unix/X{number}"):
            try:
                os.unlink(path)
            except OSError:
                pass
    except (OSError, ValueError):
        pass


def main() -> int:
    mark, folder = sys.argv[1], sys.argv[2]
    for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP, signal.SIGQUIT):
        signal.signal(number, signal.SIG_IGN)
    while os.read(0, 4096):
        pass
    sweep(mark)
    remove_display_files(folder)
    shutil.rmtree(folder, ignore_errors=True)
    return 0


if __name__ == "__main__":
    sys.exit(main())
