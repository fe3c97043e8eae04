# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT
"""The stage's sound server, PulseAudio or PipeWire, and the virtual microphones on it."""

import os
import re
import subprocess
import sys
import time

from .lines import Lines
from .microphone import Microphone
from .waiting import StageError, wait_until

KINDS = ("pulseaudio", "pipewire")
MICROPHONE = "tovik_microphone"
MICROPHONE_DESCRIPTION = "Staged microphone"

DECISION_SECONDS = 0.2

# What is left of a server that was ended; a new one would not start beside some of it.
LEFTOVERS = ("pulse/native", "pulse/pid", "pipewire-0", "pipewire-0.lock", "pipewire-0-manager",
             "pipewire-0-manager.lock")


class Sound:
    """One sound server of a stage. Made by the stage, which also starts it."""

    def __init__(self, stage, kind: str) -> None:
        if kind not in KINDS:
            raise StageError(f"there is no sound server {kind}")
        self._stage = stage
        self._kind = kind
        self._modules: dict[str, str] = {}

    def start(self) -> None:
        """Starts the server, without any device."""
        self._modules.clear()
        os.makedirs(self._path("pulse"), mode=0o700, exist_ok=True)
        for name in LEFTOVERS:
            if os.path.lexists(self._path(name)):
                os.unlink(self._path(name))
        if self._kind == "pulseaudio":
            self._start_pulseaudio()
        else:
            self._start_pipewire()

    def end(self) -> None:
        """Ends the server as a crash would, and its microphones with it."""
        microphones = [role(name) for name in self._modules for role in (_feeder, _listener)]
        servers = ["sound", "session-manager", "pipewire"]
        for name in microphones + servers:
            if name in self._stage.processes:
                self._stage.end(name)

    def plug_in(self, name: str, description: str) -> Microphone:
        """Adds a microphone and returns when the server lists it."""
        pipe, control = self._stage.path(name + ".pipe"), self._path(name + ".control")
        for leftover in (pipe, control):
            if os.path.lexists(leftover):
                os.unlink(leftover)
        self._modules[name] = self.control(
            "load-module", "module-pipe-source", f"source_name={name}", f"file={pipe}", "format=s16le", "rate=48000",
            "channels=1", f"source_properties=\"device.description='{description}'\"").strip()
        wait_until(lambda: self._lists(name), f"the microphone {name} to be there")
        self._stage.spawn_server(_feeder(name), [sys.executable, "-m", "staging.microphone", pipe, control],
                                 cwd=os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
        self._stage.wait_for_server(_feeder(name), lambda: self._stage.accepts(control),
                                    "the virtual microphone to start")
        # The server reads the pipe only while somebody records. A listener that is always there keeps old
        # sound from piling up in it, which the next recording would get first, all at once.
        self._stage.spawn_server(_listener(name), ["parec", f"--device={name}", "--client-name=stage-listener",
                                                   "/dev/null"])
        return Microphone(control)

    def unplug(self, name: str) -> None:
        self._stage.end(_listener(name))
        self.control("unload-module", self._modules.pop(name))
        wait_until(lambda: not self._lists(name), f"the microphone {name} to be gone")
        self._stage.end(_feeder(name))

    def set_default_microphone(self, name: str) -> None:
        """Chooses the microphone that programs record from, and waits until the server has taken the choice."""
        def chosen() -> bool:
            # A session manager that has only just come up does not take it.
            self.control("set-default-source", name)
            if self._kind == "pipewire":
                # Who connects while it makes up its mind can make the others miss the decision.
                time.sleep(DECISION_SECONDS)
            return self.control("get-default-source").strip() == name

        wait_until(chosen, f"{name} to be the default microphone")

    def control(self, *command: str) -> str:
        """Runs a command of the server's own control program and gives what it prints."""
        done = subprocess.run(["pactl", *command], env=self._stage.environment, stdin=subprocess.DEVNULL,
                              capture_output=True, text=True)
        if done.returncode:
            raise StageError(f"pactl {command[0]}: {done.stderr.strip()}")
        return done.stdout

    def _start_pulseaudio(self) -> None:
        server = self._path("pulse/native")
        with open(self._stage.path("sound.pa"), "w") as file:
            file.write(f"load-module module-native-protocol-unix socket={server} auth-anonymous=1\n")
        self._stage.spawn_server("sound", [
            "pulseaudio", "-n", "-F", self._stage.path("sound.pa"), "--daemonize=no", "--use-pid-file=no",
            "--exit-idle-time=-1", "--realtime=no", "--high-priority=no", "--disable-shm=yes", "--log-target=stderr"])
        self._wait_for_socket(server, "sound")

    def _start_pipewire(self) -> None:
        self._stage.spawn_server("pipewire", ["pipewire"])
        self._wait_for_socket(self._path("pipewire-0"), "pipewire")
        self._stage.spawn_server("session-manager", ["wireplumber"])
        self._stage.spawn_server("sound", ["pipewire-pulse"])
        self._wait_for_socket(self._path("pulse/native"), "sound")
        # The session manager makes its stand-in for missing hardware last of all.
        wait_until(lambda: self._lists("auto_null.monitor"), "the session manager to be ready")

    def _wait_for_socket(self, path: str, process: str) -> None:
        self._stage.wait_for_server(process, lambda: self._stage.accepts(path), "the sound server to start")

    def _lists(self, name: str) -> bool:
        return bool(re.search(rf"\t{re.escape(name)}\t", self.control("list", "short", "sources")))

    def _path(self, name: str) -> str:
        return self._stage.path("run", name)


class Recordings:
    """The moments at which programs begin to record, as the sound server announces them."""

    def __init__(self, stage) -> None:
        Recordings._count += 1
        watcher = stage.spawn(f"watch on recordings {Recordings._count}", ["pactl", "subscribe"],
                              stdout=subprocess.PIPE, text=True)
        self._notices = Lines(watcher, "the watch on recordings")
        # It says nothing of its own, but tells of anybody else who comes to the server.
        wait_until(lambda: stage.sound.control("info") and self._notices.all(), "the watch on recordings")

    _count = 0

    def first_after(self, moment: float) -> float | None:
        return next((at for at, notice in self._notices.all()
                     if at >= moment and notice.startswith("Event 'new' on source-output")), None)


def _feeder(microphone: str) -> str:
    return "feeder of " + microphone


def _listener(microphone: str) -> str:
    return "listener of " + microphone
