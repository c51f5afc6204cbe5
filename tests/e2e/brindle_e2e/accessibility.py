# SPDX-License-Identifier: MIT
"""Reads what is on the screen through the accessibility bus, as a screen reader does.

It speaks to the bus directly and keeps nothing: every read is what the program shows now.
"""

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402  (after the version is chosen)

_ACCESSIBLE = "org.a11y.atspi.Accessible"
_STATES = {"active": 1, "checked": 4, "editable": 7, "enabled": 8, "focusable": 11, "focused": 12,
           "modal": 16, "selected": 23, "showing": 25, "visible": 30, "default": 39}


class Bus:
    """The accessibility bus of one desktop."""

    def __init__(self, session_bus_address):
        session = connect(session_bus_address)
        address = session.call_sync("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress",
                                    None, None, Gio.DBusCallFlags.NONE, 10000, None).unpack()[0]
        session.close_sync(None)
        self.address = address
        self._connection = connect(address)

    def close(self):
        try:
            self._connection.close_sync(None)
        except GLib.Error:
            pass

    def call(self, owner, path, interface, method, arguments=None, timeout=5000):
        return self._connection.call_sync(owner, path, interface, method, arguments, None,
                                          Gio.DBusCallFlags.NO_AUTO_START, timeout, None).unpack()

    def registry_is_up(self):
        try:
            self._desktop().children()
            return True
        except GLib.Error:
            return False

    def application(self, pid):
        """The root node of a process, or None while it is not on the bus."""
        try:
            for node in self._desktop().children():
                owner_pid = self.call("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                      "org.freedesktop.DBus", "GetConnectionUnixProcessID",
                                      GLib.Variant("(s)", (node.owner,)))[0]
                if owner_pid == pid:
                    return node
        except GLib.Error:
            pass
        return None

    def _desktop(self):
        return Node(self, "org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root")


class Node:
    """One thing on the screen. Reading a thing that has gone gives empty values."""

    def __init__(self, bus, owner, path):
        self._bus = bus
        self.owner = owner
        self._path = path

    def __eq__(self, other):
        return isinstance(other, Node) and (self.owner, self._path) == (other.owner, other._path)

    def __hash__(self):
        return hash((self.owner, self._path))

    def children(self):
        found = self._bus.call(self.owner, self._path, _ACCESSIBLE, "GetChildren")[0]
        return [Node(self._bus, owner, path) for owner, path in found if not path.endswith("/null")]

    @property
    def name(self):
        return self._property(_ACCESSIBLE, "Name")

    @property
    def description(self):
        return self._property(_ACCESSIBLE, "Description")

    @property
    def role(self):
        return self._call(_ACCESSIBLE, "GetRoleName", default=("",))[0]

    @property
    def text(self):
        return self._call("org.a11y.atspi.Text", "GetText", GLib.Variant("(ii)", (0, -1)), ("",))[0]

    @property
    def caret(self):
        return self._property("org.a11y.atspi.Text", "CaretOffset")

    @property
    def extents(self):
        """(x, y, width, height) on the screen."""
        return self._call("org.a11y.atspi.Component", "GetExtents", GLib.Variant("(u)", (0,)),
                          ((0, 0, 0, 0),))[0]

    def has(self, *states):
        low, high = self._call(_ACCESSIBLE, "GetState", default=([0, 0],))[0]
        bits = low | high << 32
        return all(bits >> _STATES[state] & 1 for state in states)

    def press(self):
        """Presses a button as a screen reader does."""
        self._bus.call(self.owner, self._path, "org.a11y.atspi.Action", "DoAction",
                       GLib.Variant("(i)", (0,)))

    def press_button(self, name):
        """The same with the button of that name below this node."""
        next(part for part in self.shown()
             if part.role == "push button" and part.name.replace("&", "") == name).press()

    def shown(self):
        """This node and everything below it that is showing, parents first."""
        if not self.has("showing"):
            return
        yield self
        for child in self.children_or_none():
            yield from child.shown()

    def everything(self):
        """This node and everything below it, hidden or not."""
        yield self
        for child in self.children_or_none():
            yield from child.everything()

    def dump(self, indent=0):
        """A readable account for the reports of failures."""
        lines = [f"{'  ' * indent}{self.role} {self.name!r} text={self.text!r}"
                 f" {'showing' if self.has('showing') else 'hidden'}"
                 f"{' focused' if self.has('focused') else ''} {self.extents}"]
        for child in self.children_or_none():
            lines.append(child.dump(indent + 1))
        return "\n".join(lines)

    def children_or_none(self):
        """The children; none when the thing has gone meanwhile."""
        try:
            return self.children()
        except GLib.Error:
            return []

    def _call(self, interface, method, arguments=None, default=None):
        try:
            return self._bus.call(self.owner, self._path, interface, method, arguments)
        except GLib.Error:
            return default

    def _property(self, interface, name):
        value = self._call("org.freedesktop.DBus.Properties", "Get",
                           GLib.Variant("(ss)", (interface, name)), ("",))
        return value[0]


def connect(address):
    """A connection to the message bus at an address."""
    flags = (Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT
             | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION)
    return Gio.DBusConnection.new_for_address_sync(address, flags, None, None)
