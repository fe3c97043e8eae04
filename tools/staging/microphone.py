# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT
"""A virtual microphone: room noise without end, and speech in it when told.

A process of its own writes blocks of 10 ms, in real time, into the pipe that the sound server reads as its
microphone; the server itself does not pace such a source. It listens on a socket for lines of JSON:

    {"load": "speech.wav"}    reads and resamples the file now     -> {"loaded": seconds}
    {"speak": "speech.wav"}   speaks it from the next block on     -> {"started": t}, then {"finished": t}
    {"quiet": true}           goes on to digital silence, as a muted microphone does   -> {"quiet": true}

with t on the monotonic clock, or {"error": "a sentence"}.

    python3 -m staging.microphone PIPE SOCKET
"""

import json
import os
import queue
import signal
import socket
import sys
import threading
import time

from . import audio
from .waiting import StageError

BLOCK_SECONDS = 0.01
BLOCK_BYTES = int(audio.MICROPHONE_RATE * BLOCK_SECONDS) * 2


class Speech:
    """One file on its way into the microphone, with what to call at its ends."""

    def __init__(self, data: bytes, on_start, on_end) -> None:
        self.data = data
        self.offset = 0
        self.on_start = on_start
        self.on_end = on_end


class Feeder:
    """Writes the blocks. Speech is queued from other threads; what is queued is spoken in turn."""

    def __init__(self, pipe: int) -> None:
        self._pipe = pipe
        self._noise = audio.room_noise(audio.MICROPHONE_RATE).bytes()
        self._position = 0
        self._speeches: queue.SimpleQueue[Speech] = queue.SimpleQueue()
        self._current: Speech | None = None
        self.muted = False

    def speak(self, speech: Speech) -> None:
        self._speeches.put(speech)

    def run(self) -> None:
        due = time.monotonic()
        while True:
            block = self._next_block()
            try:
                os.write(self._pipe, block)
            except BlockingIOError:
                pass  # Nobody reads: a microphone does not wait for its listeners.
            except BrokenPipeError:
                return
            due += BLOCK_SECONDS
            now = time.monotonic()
            if now < due:
                time.sleep(due - now)
            elif now - due > 1.0:
                due = now  # The machine was asleep; do not deliver a second's sound at once.

    def _next_block(self) -> bytes:
        background = bytes(BLOCK_BYTES) if self.muted else self._next_noise()
        if self._current is None:
            try:
                self._current = self._speeches.get_nowait()
            except queue.Empty:
                return background
            self._current.on_start(time.monotonic())
        speech = self._current
        block = speech.data[speech.offset : speech.offset + BLOCK_BYTES]
        speech.offset += BLOCK_BYTES
        if speech.offset >= len(speech.data):
            speech.on_end(time.monotonic())
            self._current = None
        return block + background[len(block) :]

    def _next_noise(self) -> bytes:
        start = self._position
        self._position = (start + BLOCK_BYTES) % (len(self._noise) // BLOCK_BYTES * BLOCK_BYTES)
        return self._noise[start : start + BLOCK_BYTES]


class Listener:
    """Serves the control socket, a thread a connection."""

    def __init__(self, feeder: Feeder) -> None:
        self._feeder = feeder
        self._loaded: dict[str, bytes] = {}

    def serve(self, server: socket.socket) -> None:
        while True:
            connection, _ = server.accept()
            threading.Thread(target=self._converse, args=(connection,), daemon=True).start()

    def _converse(self, connection: socket.socket) -> None:
        with connection, connection.makefile("rw") as stream:
            for line in stream:
                try:
                    self._obey(json.loads(line), stream)
                except (StageError, ValueError, KeyError) as error:
                    self._answer(stream, {"error": str(error)})
                except BrokenPipeError:
                    return

    def _obey(self, order: dict, stream) -> None:
        if "load" in order:
            data = self._load(order["load"])
            self._answer(stream, {"loaded": len(data) / 2 / audio.MICROPHONE_RATE})
        elif "speak" in order:
            data = self._load(order["speak"])
            finished = threading.Event()

            def ended(moment: float) -> None:
                self._answer(stream, {"finished": moment})
                finished.set()

            self._feeder.speak(Speech(data, lambda moment: self._answer(stream, {"started": moment}), ended))
            finished.wait()
        elif "quiet" in order:
            self._feeder.muted = bool(order["quiet"])
            self._answer(stream, {"quiet": self._feeder.muted})
        else:
            raise ValueError("unknown order")

    def _load(self, path: str) -> bytes:
        if path not in self._loaded:
            samples = audio.resample(audio.read(path), audio.MICROPHONE_RATE)
            self._loaded[path] = samples.bytes()
        return self._loaded[path]

    @staticmethod
    def _answer(stream, answer: dict) -> None:
        try:
            stream.write(json.dumps(answer) + "\n")
            stream.flush()
        except (BrokenPipeError, ValueError):
            pass  # The one who asked has left.


class Microphone:
    """The other end: speaks into a running virtual microphone."""

    def __init__(self, path: str) -> None:
        self.path = path

    def load(self, file: str) -> float:
        """Prepares the file, so that a later speak begins at once. Returns its length in seconds."""
        return self._ask({"load": os.path.abspath(file)}, "loaded")

    def mute(self, muted: bool = True) -> None:
        self._ask({"quiet": muted}, "quiet")

    def speak(self, file: str) -> "Utterance":
        """Begins to speak the file and returns when its first block has been written."""
        return Utterance(self._open(), os.path.abspath(file))

    def _open(self) -> socket.socket:
        connection = socket.socket(socket.AF_UNIX)
        try:
            connection.connect(self.path)
        except OSError as error:
            raise StageError(f"the stage's microphone does not answer: {error}") from error
        return connection

    def _ask(self, order: dict, key: str):
        with self._open() as connection, connection.makefile("rw") as stream:
            stream.write(json.dumps(order) + "\n")
            stream.flush()
            return _answer(stream, key)


class Utterance:
    """Speech under way. `started` is the moment its first block was written, on the monotonic clock."""

    def __init__(self, connection: socket.socket, file: str) -> None:
        self._connection = connection
        self._stream = connection.makefile("rw")
        self._stream.write(json.dumps({"speak": file}) + "\n")
        self._stream.flush()
        self.started: float = _answer(self._stream, "started")

    def wait(self) -> float:
        """Returns the moment when the last block was written."""
        with self._connection, self._stream:
            return _answer(self._stream, "finished")


def _answer(stream, key: str):
    line = stream.readline()
    if not line:
        raise StageError("the stage's microphone has gone")
    answer = json.loads(line)
    if key not in answer:
        raise StageError(answer.get("error", line.strip()))
    return answer[key]


def main() -> int:
    signal.signal(signal.SIGINT, signal.SIG_IGN)
    signal.signal(signal.SIGPIPE, signal.SIG_IGN)
    pipe = os.open(sys.argv[1], os.O_WRONLY | os.O_NONBLOCK)
    feeder = Feeder(pipe)
    server = socket.socket(socket.AF_UNIX)
    server.bind(sys.argv[2])
    server.listen()
    threading.Thread(target=Listener(feeder).serve, args=(server,), daemon=True).start()
    feeder.run()
    return 0


if __name__ == "__main__":
    sys.exit(main())
