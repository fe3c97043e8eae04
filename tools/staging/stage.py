# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT
"""The staged desktop itself: private folders, X server, window manager, session bus, sound server, microphone.

Nothing of it touches the user's own session, settings or devices, no right beyond an ordinary user's is needed,
and all of it ends with the stage, however the stage ends (see guardian).
"""

import fcntl
import os
import secrets
import select
import socket
import struct
import subprocess
import sys
import tempfile
import uuid

from .guardian import MARK_VARIABLE, SERVER_VARIABLE
from .microphone import Microphone
from .sound import MICROPHONE, MICROPHONE_DESCRIPTION, Sound
from .waiting import StageError, wait_until

START_SECONDS = 20.0
TOOLS_FOLDER = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))

# What belongs to the session this process may have been started from must not reach the staged programs.
FOREIGN_VARIABLES = ("DISPLAY", "XAUTHORITY", "SESSION_MANAGER", "DESKTOP_SESSION", "AT_SPI_BUS_ADDRESS", "LANGUAGE")
FOREIGN_PREFIXES = ("WAYLAND_", "DBUS_", "XDG_", "PULSE_", "PIPEWIRE_", "GTK_", "GDK_", "QT_", "LC_", "TOVIK_")

# Neither black nor white, so that pictures show where a window ends and what shines through.
BACKGROUND = (62, 84, 106)

class Stage:
    """A desktop for the time of a with-block.

    The parts can be left out one by one, which is how a machine without them is staged: `display`, `manager`
    (the window manager), `bus`, `sound` and, with sound, `microphone`. `sound` also says which server: PulseAudio
    unless "pipewire" is asked for, or None.
    """

    def __init__(self, *, display: bool = True, manager: bool = True, bus: bool = True,
                 sound: str | None = "pulseaudio",
                 microphone: bool = True, size: str = "1280x800", server_options: tuple[str, ...] = ()) -> None:
        self._wants_display = display
        self._wants_manager = manager and display
        self._wants_bus = bus
        self._wants_microphone = microphone
        self._sound = Sound(self, sound) if sound else None
        self._size = size
        self._server_options = server_options
        self._guardian: subprocess.Popen | None = None
        self._mark = uuid.uuid4().hex
        self.folder = ""
        self.environment: dict[str, str] = {}
        self.processes: dict[str, subprocess.Popen] = {}
        self.microphone: Microphone | None = None

    def __enter__(self) -> "Stage":
        self.folder = tempfile.mkdtemp(prefix="tovik-stage-")
        self._start_guardian()
        try:
            self._make_environment()
            if self._wants_display:
                self._start_display()
            if self._wants_bus:
                self._start_bus()
            if self._sound:
                self.start_sound()
            if self._wants_manager:
                self._start_manager()
        except BaseException:
            self.close()
            raise
        return self

    def __exit__(self, *_) -> None:
        self.close()

    def close(self) -> None:
        """Ends every process of the stage, removes its folder and returns when that is done."""
        if self._guardian is not None:
            self._guardian.stdin.close()
            for process in self.processes.values():
                process.wait()
            self._guardian.wait()
            self._guardian = None

    @property
    def has_manager(self) -> bool:
        return self._wants_manager

    @property
    def home(self) -> str:
        return self.environment["HOME"]

    def path(self, *parts: str) -> str:
        return os.path.join(self.folder, *parts)

    def spawn(self, name: str, command: list[str], **options) -> subprocess.Popen:
        """Starts a program on the stage. Its output goes to log/NAME.log unless the options say otherwise."""
        log = None
        if "stdout" not in options or "stderr" not in options:
            log = open(self.path("log", name + ".log"), "ab")
        options.setdefault("stdin", subprocess.DEVNULL)
        options.setdefault("stdout", log)
        options.setdefault("stderr", log)
        options.setdefault("env", self.environment)
        try:
            process = subprocess.Popen(command, start_new_session=True, **options)
        except FileNotFoundError as error:
            raise StageError(
                f"{command[0]} is not installed; tools/install-dependencies installs it") from error
        finally:
            if log is not None:
                log.close()
        self.processes[name] = process
        return process

    def end(self, name: str) -> None:
        """Ends one process of the stage, as when it breaks down in the middle of a session."""
        process = self.processes.pop(name)
        process.kill()
        process.wait()

    def log(self, name: str) -> str:
        try:
            with open(self.path("log", name + ".log"), errors="replace") as file:
                return file.read()
        except OSError:
            return ""

    def _start_guardian(self) -> None:
        environment = {key: value for key, value in os.environ.items() if key != MARK_VARIABLE}
        environment["PYTHONPATH"] = TOOLS_FOLDER
        environment["PYTHONDONTWRITEBYTECODE"] = "1"
        self._guardian = subprocess.Popen(
            [sys.executable, "-m", "staging.guardian", self._mark, self.folder],
            stdin=subprocess.PIPE, env=environment, start_new_session=True)

    def _make_environment(self) -> None:
        environment = {key: value for key, value in os.environ.items()
                       if key not in FOREIGN_VARIABLES and not key.startswith(FOREIGN_PREFIXES)}
        folders = {
            "HOME": "home",
            "XDG_CONFIG_HOME": "home/.config",
            "XDG_DATA_HOME": "home/.local/share",
            "XDG_STATE_HOME": "home/.local/state",
            "XDG_CACHE_HOME": "home/.cache",
            "XDG_RUNTIME_DIR": "run",
        }
        for variable, folder in folders.items():
            os.makedirs(self.path(folder), mode=0o700, exist_ok=True)
            environment[variable] = self.path(folder)
        os.makedirs(self.path("log"))
        outer = os.environ.get(MARK_VARIABLE)
        environment.update({
            # A stage inside a stage ends with either.
            MARK_VARIABLE: f"{outer}:{self._mark}" if outer else self._mark,
            "TOVIK_STAGE_FOLDER": self.folder,
            "LANG": "C.UTF-8",
            "XDG_SESSION_TYPE": "x11",
            "XDG_CURRENT_DESKTOP": "openbox",
            "GDK_BACKEND": "x11",
            "QT_QPA_PLATFORM": "xcb",
            "NO_AT_BRIDGE": "0",
            "PULSE_SERVER": "unix:" + self.path("run", "pulse", "native"),
        })
        self.environment = environment

    def spawn_server(self, name: str, command: list[str], **options) -> subprocess.Popen:
        return self.spawn(name, command, env=self.environment | {SERVER_VARIABLE: name}, **options)

    def _start_display(self) -> None:
        # An ordinary user may create the folder of the sockets as well as root; the server alone would not.
        try:
            os.mkdir("/tmp/.X11-unix")
            os.chmod("/tmp/.X11-unix", 0o1777)
        except FileExistsError:
            pass
        cookie = secrets.token_bytes(16)
        self._write_authority("server.auth", cookie, 65535, b"", b"")
        reading, writing = os.pipe()
        try:
            self.spawn_server("xserver", [
                "Xvfb", "-displayfd", str(writing), "-screen", "0", self._size + "x24", "-nolisten", "tcp",
                "-noreset", "-auth", self.path("server.auth"), *self._server_options], pass_fds=(writing,))
            os.close(writing)
            writing = -1
            number = self._read_line(reading, "xserver", "the X server to start")
        finally:
            os.close(reading)
            if writing >= 0:
                os.close(writing)
        with open(self.path("display"), "w") as file:
            file.write(":" + number)
        self._write_authority("client.auth", cookie, 256, socket.gethostname().encode(), number.encode())
        self.environment["DISPLAY"] = ":" + number
        self.environment["XAUTHORITY"] = self.path("client.auth")

    def _write_authority(self, name: str, cookie: bytes, family: int, address: bytes, number: bytes) -> None:
        fields = (address, number, b"MIT-MAGIC-COOKIE-1", cookie)
        entry = struct.pack(">H", family) + b"".join(struct.pack(">H", len(field)) + field for field in fields)
        with open(os.open(self.path(name), os.O_WRONLY | os.O_CREAT | os.O_TRUNC, 0o600), "wb") as file:
            file.write(entry)

    def _start_bus(self) -> None:
        reading, writing = os.pipe()
        try:
            self.spawn_server("bus", [
                "dbus-daemon", "--session", "--nofork", "--nopidfile", "--address=unix:path=" + self.path("run", "bus"),
                f"--print-address={writing}"], pass_fds=(writing,))
            os.close(writing)
            writing = -1
            self.environment["DBUS_SESSION_BUS_ADDRESS"] = self._read_line(reading, "bus", "the session bus to start")
        finally:
            os.close(reading)
            if writing >= 0:
                os.close(writing)

    @property
    def sound(self) -> Sound:
        if self._sound is None:
            raise StageError("this stage has no sound server")
        return self._sound

    def start_sound(self) -> None:
        """Starts the sound server; also again after sound.end()."""
        self.sound.start()
        if self._wants_microphone:
            # Without a microphone there is not even a loudspeaker, since what it plays can be recorded too.
            self.sound.control("load-module", "module-null-sink", "sink_name=tovik_speaker", "rate=48000", "channels=2")
            self.microphone = self.sound.plug_in(MICROPHONE, MICROPHONE_DESCRIPTION)
            self.environment["TOVIK_STAGE_MICROPHONE"] = self.microphone.path
            self.sound.set_default_microphone(MICROPHONE)

    def _start_manager(self) -> None:
        from .desktop import Desktop  # Only stages with a display need the X library.

        self.spawn_server("manager", ["openbox", "--sm-disable"])
        with Desktop(self.environment) as desktop:
            self.wait_for_server("manager", desktop.virtual_desktops, "the window manager to start")
            # It announces itself before it listens, and what it is asked in between is lost.
            before = desktop.virtual_desktops()
            for number in (before + 1, before):
                def obeys() -> bool:
                    desktop.ask_for_virtual_desktops(number)
                    return desktop.virtual_desktops() == number

                self.wait_for_server("manager", obeys, "the window manager to obey")
            desktop.paint_background(*BACKGROUND)

    def wait_for_server(self, name: str, condition, what: str) -> None:
        def answered():
            if self.processes[name].poll() is not None:
                raise StageError(f"{what}: it ended at once.\n{self.log(name)}")
            return condition()

        try:
            wait_until(answered, what, START_SECONDS)
        except StageError as error:
            raise StageError(f"{error}\n{self.log(name)}".rstrip()) from error

    def _read_line(self, descriptor: int, name: str, what: str) -> str:
        """Reads the one line a server announces itself with."""
        fcntl.fcntl(descriptor, fcntl.F_SETFL, os.O_NONBLOCK)
        text = b""
        while not text.endswith(b"\n"):
            if not select.select([descriptor], [], [], START_SECONDS)[0]:
                raise StageError(f"waited {START_SECONDS:g} seconds in vain for {what}\n{self.log(name)}".rstrip())
            piece = os.read(descriptor, 4096)
            if not piece:
                raise StageError(f"{what}: it ended at once.\n{self.log(name)}".rstrip())
            text += piece
        return text.decode().strip()

    @staticmethod
    def accepts(path: str) -> bool:
        with socket.socket(socket.AF_UNIX) as probe:
            try:
                probe.connect(path)
                return True
            except OSError:
                return False
