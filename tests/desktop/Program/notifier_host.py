# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT
"""A panel that shows status notifier items, on the session bus of a stage: the watcher, and a view of the items."""

import threading
from dataclasses import dataclass, field

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

from staging.waiting import wait_until  # noqa: E402

WATCHER = "org.kde.StatusNotifierWatcher"
WATCHER_DESCRIPTION = f"""
<node><interface name="{WATCHER}">
  <method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
  <method name="RegisterStatusNotifierHost"><arg type="s" direction="in"/></method>
  <property name="RegisteredStatusNotifierItems" type="as" access="read"/>
  <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
  <property name="ProtocolVersion" type="i" access="read"/>
  <signal name="StatusNotifierItemRegistered"><arg type="s"/></signal>
  <signal name="StatusNotifierHostRegistered"/>
</interface></node>"""
CALL_MILLISECONDS = 5000


@dataclass
class Row:
    """One row of a menu, as the program describes it to a panel."""

    id: int
    label: str
    is_checked: bool
    is_enabled: bool
    children: list["Row"] = field(default_factory=list)


class NotifierHost:
    """For the time of a with-block. Answers the program from a thread of its own."""

    def __init__(self, bus_address: str) -> None:
        self._address = bus_address
        self._items: list[str] = []
        self._loop: GLib.MainLoop | None = None
        self._ready = threading.Event()
        self._thread = threading.Thread(target=self._run, daemon=True)

    def __enter__(self) -> "NotifierHost":
        self._connection = self._connect()
        self._thread.start()
        self._ready.wait()
        return self

    def __exit__(self, *_) -> None:
        self._loop.quit()
        self._thread.join()
        self._connection.close_sync(None)

    def wait_for_item(self) -> "NotifierItem":
        return NotifierItem(self._connection, wait_until(lambda: self._items, "an item in the panel")[0])

    def _connect(self) -> Gio.DBusConnection:
        flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
        return Gio.DBusConnection.new_for_address_sync(self._address, flags, None, None)

    def _run(self) -> None:
        context = GLib.MainContext.new()
        context.push_thread_default()
        self._loop = GLib.MainLoop.new(context, False)
        interface = Gio.DBusNodeInfo.new_for_xml(WATCHER_DESCRIPTION).interfaces[0]
        self._connection.register_object("/StatusNotifierWatcher", interface, self._call, self._property, None)
        Gio.bus_own_name_on_connection(self._connection, WATCHER, Gio.BusNameOwnerFlags.NONE,
                                       lambda *_: self._ready.set(), None)
        self._loop.run()
        context.pop_thread_default()

    def _call(self, connection, sender, path, interface, method, parameters, invocation) -> None:
        if method == "RegisterStatusNotifierItem":
            self._items.append(sender)
        invocation.return_value(None)

    def _property(self, connection, sender, path, interface, name):
        return {
            "RegisteredStatusNotifierItems": GLib.Variant("as", self._items),
            "IsStatusNotifierHostRegistered": GLib.Variant("b", True),
            "ProtocolVersion": GLib.Variant("i", 0),
        }[name]


class NotifierItem:
    """An item in the panel, and its menu. Rows are named by their labels from the top of the menu down."""

    def __init__(self, connection: Gio.DBusConnection, name: str) -> None:
        self._connection = connection
        self._name = name

    def property(self, name: str):
        answer = self._call("/StatusNotifierItem", "org.freedesktop.DBus.Properties", "Get",
                            GLib.Variant("(ss)", ("org.kde.StatusNotifierItem", name)))
        return answer[0]

    def menu(self) -> list[Row]:
        layout = self._menu_call("GetLayout", GLib.Variant("(iias)", (0, -1, [])))
        return self._row(layout[1]).children

    def open(self, label: str) -> list[Row]:
        """As when the pointer comes to rest on a row with a submenu. Returns the submenu's rows."""
        self._menu_call("AboutToShow", GLib.Variant("(i)", (self.row(label).id,)))
        return self.row(label).children

    def choose(self, *labels: str) -> None:
        """Of rows with the same label, the last."""
        for label in labels[:-1]:
            self.open(label)
        event = GLib.Variant("(isvu)", (self.row(*labels).id, "clicked", GLib.Variant("s", ""), 0))
        self._menu_call("Event", event)

    def row(self, *labels: str) -> Row:
        rows = wait_until(self.menu, "the menu's rows")
        for label in labels:
            found = [row for row in rows if row.label == label]
            if not found:
                raise AssertionError(f"no row {label!r} among {[row.label for row in rows]}")
            rows = found[-1].children
        return found[-1]

    def _row(self, described) -> Row:
        number, properties, children = described
        label = "---" if properties.get("type") == "separator" else _shown(properties.get("label", ""))
        return Row(number, label, properties.get("toggle-state", 0) == 1, properties.get("enabled", True),
                   [self._row(child) for child in children])

    def _menu_call(self, method: str, parameters: GLib.Variant):
        return self._call("/MenuBar", "com.canonical.dbusmenu", method, parameters)

    def _call(self, path: str, interface: str, method: str, parameters: GLib.Variant):
        return self._connection.call_sync(self._name, path, interface, method, parameters, None,
                                          Gio.DBusCallFlags.NONE, CALL_MILLISECONDS, None).unpack()


def _shown(label: str) -> str:
    """A label as panels show it: an underscore marks the letter after it, two stand for one."""
    return "_".join(part.replace("_", "") for part in label.split("__"))
