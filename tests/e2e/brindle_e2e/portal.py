# SPDX-License-Identifier: MIT
"""The desktop portal that hands out global shortcuts, played on the session bus of a test's desktop."""

import os
import sys

from gi.repository import Gio, GLib

from .accessibility import connect
from .waiting import wait_for, wait_for_value

NAME, PATH = "org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop"
INTERFACE, SESSION = "org.freedesktop.portal.GlobalShortcuts", "org.freedesktop.portal.Session"
_MOCK = "org.freedesktop.DBus.Mock"
_TEMPLATE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "portal_template.py")


class Portal:
    """Start with start(); stop() is safe at any time, and start() brings the portal back after it."""

    def __init__(self, desktop):
        self._desktop = desktop
        self._process = None
        self._connection = connect(desktop.env["DBUS_SESSION_BUS_ADDRESS"])

    def start(self, interface=INTERFACE, **behaviour):
        """Puts the portal on the bus; for the behaviour see the template."""
        command = [sys.executable, "-B", "-m", "dbusmock", "--session", "--template", _TEMPLATE]
        with open(os.path.join(self._desktop.folder, "portal.log"), "ab") as log:
            self._process = self._desktop.run(command, {"BRINDLE_PORTAL_INTERFACE": interface},
                                              stdout=log, stderr=log)
        wait_for(self.is_on_the_bus, "the portal on the bus")
        self.behave(**behaviour)
        return self

    def stop(self):
        """The portal goes away, without a word to anybody."""
        if self._process is not None:
            self._desktop.end(self._process)
            self._process = None
            wait_for(lambda: not self.is_on_the_bus(), "the portal off the bus")

    def close(self):
        self.stop()
        self._connection.close_sync(None)

    def is_on_the_bus(self):
        return self._call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                          "NameHasOwner", GLib.Variant("(s)", (NAME,)))[0]

    def behave(self, **behaviour):
        kinds = {bool: "b", int: "i"}
        values = {name: GLib.Variant(kinds[type(value)], value) for name, value in behaviour.items()}
        self._mock("Behave", GLib.Variant("(a{sv})", (values,)))

    # What the user and the desktop do.

    def press(self, token=""):
        """The user presses the shortcuts that are bound. Gives their number."""
        return self._mock("Press", GLib.Variant("(s)", (token,)))[0]

    def pretend(self, owner, session, shortcut):
        """Tells a program of a shortcut that may be none of its own."""
        self._mock("Pretend", GLib.Variant("(sss)", (owner, session, shortcut)))

    def change_trigger(self, description):
        self._mock("ChangeTrigger", GLib.Variant("(s)", (description,)))

    def close_sessions(self):
        self._mock("CloseSessions")

    # What programs have done.

    def sessions(self):
        """The open sessions: [(path, owner, [(shortcut, preferred trigger), …]), …]."""
        return self._mock("Sessions")[0]

    def triggers(self):
        """The preferred triggers of everything that is bound."""
        return [trigger for _, _, shortcuts in self.sessions() for _, trigger in shortcuts]

    def wait_for_triggers(self, *triggers):
        wait_for_value(self.triggers, list(triggers), "the bound shortcuts")

    def calls(self, method):
        """The arguments of each call of a method, oldest first."""
        return [arguments for _, arguments in
                self._mock("GetMethodCalls", GLib.Variant("(s)", (method,)))[0]]

    def _mock(self, method, arguments=None):
        return self._call(NAME, PATH, _MOCK, method, arguments)

    def _call(self, owner, path, interface, method, arguments=None):
        return self._connection.call_sync(owner, path, interface, method, arguments, None,
                                          Gio.DBusCallFlags.NO_AUTO_START, 10000, None).unpack()
