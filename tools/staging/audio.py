# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT
"""Reading speech files and bringing them to the rate of the virtual microphone."""

import array
import ctypes
import ctypes.util
import random
import sys
import wave

from .waiting import StageError

MICROPHONE_RATE = 48000

# Recordings without a header are taken for what speech corpora ship: 16 kHz, 16 bit, one channel.
HEADERLESS_RATE = 16000


class Samples:
    """One channel of 16-bit samples at a known rate."""

    def __init__(self, values: array.array, rate: int) -> None:
        self.values = values
        self.rate = rate

    @property
    def seconds(self) -> float:
        return len(self.values) / self.rate

    def bytes(self) -> bytes:
        return self.values.tobytes()


def _sixteen_bit(data: bytes) -> array.array:
    values = array.array("h")
    values.frombytes(data[: len(data) // 2 * 2])
    if sys.byteorder == "big":
        values.byteswap()
    return values


def read(path: str) -> Samples:
    """Reads a WAV file of 16-bit samples (the first channel of several) or a headerless .raw recording."""
    try:
        if path.endswith(".raw"):
            with open(path, "rb") as file:
                return Samples(_sixteen_bit(file.read()), HEADERLESS_RATE)
        with wave.open(path, "rb") as file:
            if file.getsampwidth() != 2:
                raise StageError(f"{path}: only WAV files of 16-bit samples can be spoken")
            values = _sixteen_bit(file.readframes(file.getnframes()))
            return Samples(values[:: file.getnchannels()], file.getframerate())
    except (OSError, wave.Error, EOFError) as error:
        raise StageError(f"{path}: cannot be read as a WAV file: {error}") from error


def write(path: str, samples: Samples) -> None:
    with wave.open(path, "wb") as file:
        file.setnchannels(1)
        file.setsampwidth(2)
        file.setframerate(samples.rate)
        file.writeframes(samples.bytes())


def resample(samples: Samples, rate: int) -> Samples:
    """Brings the samples to another rate, in the quality that the program's own resampler has."""
    if samples.rate == rate or not samples.values:
        return Samples(samples.values, rate)
    name = ctypes.util.find_library("soxr") or "libsoxr.so.0"
    soxr = ctypes.CDLL(name)
    soxr.soxr_oneshot.restype = ctypes.c_char_p
    size = ctypes.c_size_t
    source = (ctypes.c_float * len(samples.values))(*(value / 32768.0 for value in samples.values))
    capacity = int(len(samples.values) * rate / samples.rate) + 64
    target = (ctypes.c_float * capacity)()
    made = size(0)
    failure = soxr.soxr_oneshot(
        ctypes.c_double(samples.rate), ctypes.c_double(rate), ctypes.c_uint(1),
        source, size(len(source)), None, target, size(capacity), ctypes.byref(made), None, None, None)
    if failure:
        raise StageError(f"resampling from {samples.rate} to {rate} Hz failed: {failure.decode()}")
    values = array.array("h", (max(-32768, min(32767, round(value * 32767))) for value in target[: made.value]))
    return Samples(values, rate)


def without_leading_silence(samples: Samples, threshold: int = 600) -> Samples:
    """Cuts everything before the first 10 ms that reach the threshold, so that speech begins at once."""
    block = samples.rate // 100
    for start in range(0, len(samples.values), block):
        if max(map(abs, samples.values[start : start + block]), default=0) >= threshold:
            return Samples(samples.values[start:], samples.rate)
    return samples


def room_noise(rate: int, seconds: float = 1.0) -> Samples:
    """The faint noise of a real microphone in a quiet room, the same at every call: no real microphone
    delivers plain zeros, which is what a muted one looks like."""
    generator = random.Random(1)
    values = array.array("h", (generator.randint(-4, 4) for _ in range(int(rate * seconds))))
    return Samples(values, rate)
