# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT
"""The user's hands and eyes on an X desktop: keys, windows, focus, screenshots."""

import os
import struct
import time
import zlib

from Xlib import X, XK, Xatom, display as xdisplay, error
from Xlib.ext import xtest
from Xlib.protocol import event as xevent

from .waiting import StageError, wait_until


class Desktop:
    """One connection to the X server that an environment names."""

    def __init__(self, environment: dict[str, str]) -> None:
        # The X library finds the authority file through the process's own environment only.
        before = os.environ.get("XAUTHORITY")
        os.environ["XAUTHORITY"] = environment.get("XAUTHORITY", "")
        try:
            self._display = xdisplay.Display(environment["DISPLAY"])
        except (error.DisplayError, KeyError) as problem:
            raise StageError(f"the X server cannot be reached: {problem}") from problem
        finally:
            if before is None:
                del os.environ["XAUTHORITY"]
            else:
                os.environ["XAUTHORITY"] = before
        self._root = self._display.screen().root

    def __enter__(self) -> "Desktop":
        return self

    def __exit__(self, *_) -> None:
        try:
            self._display.close()
        except error.ConnectionClosedError:
            pass  # The server was quicker.

    def paint_background(self, red: int, green: int, blue: int) -> None:
        self._root.change_attributes(background_pixel=red << 16 | green << 8 | blue)
        self._root.clear_area()
        self._display.sync()

    def virtual_desktops(self) -> int:
        """How many there are, 0 while no window manager has said so."""
        found = self._property(self._root, "_NET_NUMBER_OF_DESKTOPS")
        return found[0] if found else 0

    def ask_for_virtual_desktops(self, number: int) -> None:
        message = xevent.ClientMessage(
            window=self._root, client_type=self._atom("_NET_NUMBER_OF_DESKTOPS"), data=(32, [number, 0, 0, 0, 0]))
        self._root.send_event(message, event_mask=X.SubstructureRedirectMask | X.SubstructureNotifyMask)
        self._display.sync()

    # Keys

    def press(self, key: str) -> None:
        self._key(X.KeyPress, key)

    def release(self, key: str) -> None:
        self._key(X.KeyRelease, key)

    def tap(self, *keys: str) -> None:
        """Presses the keys in turn and releases them in the opposite order: tap("Control_L", "s")."""
        for key in keys:
            self.press(key)
        for key in reversed(keys):
            self.release(key)

    def pressed_keys(self) -> list[int]:
        """Key codes that the server holds for pressed."""
        bits = self._display.query_keymap()
        return [index * 8 + bit for index, byte in enumerate(bits) for bit in range(8) if byte >> bit & 1]

    def type(self, text: str) -> None:
        """Types letters of the keyboard's first level and spaces."""
        for letter in text:
            self.tap("space" if letter == " " else letter)

    # The pointer

    def move_pointer(self, x: int, y: int) -> None:
        xtest.fake_input(self._display, X.MotionNotify, x=x, y=y)
        self._display.sync()

    def click(self, x: int, y: int, button: int = 1) -> None:
        self.move_pointer(x, y)
        for kind in (X.ButtonPress, X.ButtonRelease):
            xtest.fake_input(self._display, kind, button)
        self._display.sync()

    def _key(self, kind: int, key: str) -> None:
        code = self._display.keysym_to_keycode(XK.string_to_keysym(key))
        if code == 0:
            raise StageError(f"the keyboard has no key {key}")
        xtest.fake_input(self._display, kind, code)
        self._display.sync()

    # Windows

    def windows(self) -> list[int]:
        """Managed windows, oldest first."""
        return list(self._property(self._root, "_NET_CLIENT_LIST") or [])

    def active_window(self) -> int:
        found = self._property(self._root, "_NET_ACTIVE_WINDOW")
        return found[0] if found else 0

    def place(self, window: int) -> tuple[int, int, int, int]:
        """Where a window is on the screen, without its frame: x, y, width, height."""
        target = self._display.create_resource_object("window", window)
        shape, corner = target.get_geometry(), target.translate_coords(self._root, 0, 0)
        return -corner.x, -corner.y, shape.width, shape.height

    def title(self, window: int) -> str:
        target = self._display.create_resource_object("window", window)
        name = self._property(target, "_NET_WM_NAME")
        return bytes(name).decode(errors="replace") if name else ""

    def application(self, window: int) -> str:
        """The application id of a window: the class of WM_CLASS."""
        try:
            names = self._display.create_resource_object("window", window).get_wm_class()
        except error.XError:
            return ""
        return names[1] if names else ""

    def process(self, window: int) -> int:
        found = self._property(self._display.create_resource_object("window", window), "_NET_WM_PID")
        return found[0] if found else 0

    def window_of(self, process: int) -> int:
        """The first managed window of a process, 0 while there is none."""
        return next((window for window in self.windows() if self.process(window) == process), 0)

    def mapped_children(self) -> list[tuple[int, int, int, int, int]]:
        """Every visible child of the root, unmanaged ones too, as (window, x, y, width, height), lowest first."""
        found = []
        for window in self._root.query_tree().children:
            try:
                if window.get_attributes().map_state == X.IsViewable:
                    shape = window.get_geometry()
                    found.append((window.id, shape.x, shape.y, shape.width, shape.height))
            except error.XError:
                continue
        return found

    def embedded_windows(self, process: int) -> list[int]:
        """The visible windows of a process that lie within windows of others, such as an icon in a tray."""
        found: list[int] = []

        def look_into(parent, owner: int) -> None:
            for window in parent.query_tree().children:
                if window.get_attributes().map_state != X.IsViewable:
                    continue
                its_owner = self.process(window.id) or owner
                if its_owner == process and owner not in (0, process):
                    found.append(window.id)
                look_into(window, its_owner)

        try:
            look_into(self._root, 0)
        except error.XError:
            return []  # A window has gone meanwhile.
        return found

    def activate(self, window: int) -> None:
        """Brings the window to the front as a click in a task bar does, and waits until it is active."""
        message = xevent.ClientMessage(
            window=window, client_type=self._atom("_NET_ACTIVE_WINDOW"), data=(32, [2, self._server_time(), 0, 0, 0]))
        self._root.send_event(message, event_mask=X.SubstructureRedirectMask | X.SubstructureNotifyMask)
        self._display.sync()
        wait_until(lambda: self.active_window() == window, f"window {self.title(window)!r} to become active")

    def close(self, window: int) -> None:
        message = xevent.ClientMessage(
            window=window, client_type=self._atom("_NET_CLOSE_WINDOW"), data=(32, [self._server_time(), 2, 0, 0, 0]))
        self._root.send_event(message, event_mask=X.SubstructureRedirectMask | X.SubstructureNotifyMask)
        self._display.sync()

    def selection_owner(self, selection: str) -> int:
        owner = self._display.get_selection_owner(self._atom(selection))
        return owner.id if owner else 0

    def selection_text(self, selection: str, seconds: float = 2.0) -> str | None:
        """What a paste of the selection would give, None when nobody offers anything."""
        if not self.selection_owner(selection):
            return None
        window = self._root.create_window(0, 0, 1, 1, 0, X.CopyFromParent)
        wanted = self._atom("TOVIK_STAGE_SELECTION")
        window.convert_selection(self._atom(selection), self._atom("UTF8_STRING"), wanted, self._server_time())
        try:
            answer = wait_until(lambda: self._next_event(X.SelectionNotify), f"the owner of {selection}", seconds)
            if answer.property == X.NONE:
                return None
            return bytes(window.get_full_property(wanted, X.AnyPropertyType).value).decode()
        finally:
            window.destroy()

    # Pictures

    def screenshot(self, path: str) -> None:
        """Writes the whole screen as a PNG file."""
        shape = self._root.get_geometry()
        with open(path, "wb") as file:
            file.write(_png(shape.width, shape.height, self._pixels()))

    def wait_until_painted(self) -> None:
        """Waits until nothing on the screen has changed for longer than programs take to paint, 2 s at most."""
        before, deadline = b"", time.monotonic() + 2
        while (pixels := self._pixels()) != before and time.monotonic() < deadline:
            before = pixels
            time.sleep(0.25)

    def _pixels(self) -> bytes:
        shape = self._root.get_geometry()
        return self._root.get_image(0, 0, shape.width, shape.height, X.ZPixmap, 0xFFFFFFFF).data

    def _atom(self, name: str) -> int:
        return self._display.intern_atom(name)

    def _property(self, window, name: str):
        try:
            found = window.get_full_property(self._atom(name), X.AnyPropertyType)
        except error.XError:
            return None  # The window has gone.
        return found.value if found else None

    def _next_event(self, kind: int):
        """The next event of this kind that has already come; others before it are dropped."""
        while self._display.pending_events():
            happened = self._display.next_event()
            if happened.type == kind:
                return happened
        return None

    def _server_time(self) -> int:
        """The server's current time, which it tells only in events: we change a property of our own."""
        window = self._root.create_window(0, 0, 1, 1, 0, X.CopyFromParent, event_mask=X.PropertyChangeMask)
        window.change_property(Xatom.WM_NAME, Xatom.STRING, 8, b"time")
        while True:
            happened = self._display.next_event()
            if happened.type == X.PropertyNotify and happened.window == window:
                window.destroy()
                return happened.time


def _png(width: int, height: int, pixels: bytes) -> bytes:
    """A PNG file of the server's pixels, which come as blue, green, red, unused."""
    def chunk(kind: bytes, data: bytes) -> bytes:
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    colours = bytearray(width * height * 3)
    colours[0::3], colours[1::3], colours[2::3] = pixels[2::4], pixels[1::4], pixels[0::4]
    stride = width * 3
    lines = b"".join(b"\0" + colours[row * stride : (row + 1) * stride] for row in range(height))
    header = struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(lines, 6)) + chunk(b"IEND", b"")
