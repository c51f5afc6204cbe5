# SPDX-License-Identifier: MIT
"""The desktop portal's global shortcuts, as a template for python-dbusmock.

Parameters, also to be changed while it runs (Behave): create_response, bind_response and
list_response (0 grants, 1 is the user's no, 2 another failure), delay (milliseconds until a request
is answered; negative: before its method has returned), silent (requests are never answered). The
environment variable BRINDLE_PORTAL_INTERFACE names another interface to offer instead.
"""

import os

import dbus
from dbusmock import MOCK_IFACE
from gi.repository import GLib

BUS_NAME = "org.freedesktop.portal.Desktop"
MAIN_OBJ = "/org/freedesktop/portal/desktop"
MAIN_IFACE = os.environ.get("BRINDLE_PORTAL_INTERFACE", "org.freedesktop.portal.GlobalShortcuts")
SYSTEM_BUS = False

_REQUEST = "org.freedesktop.portal.Request"
_SESSION = "org.freedesktop.portal.Session"
_ERROR = "org.freedesktop.portal.Error."


def load(mock, parameters):
    mock.behaviour = {"create_response": 0, "bind_response": 0, "list_response": 0, "delay": 20,
                      "silent": False, **parameters}
    mock.sessions = {}  # path: the session's owner, and its shortcuts once they are bound
    mock.AddProperty(MAIN_IFACE, "version", dbus.UInt32(1))


# What programs call.

@dbus.service.method(MAIN_IFACE, in_signature="a{sv}", out_signature="o", sender_keyword="sender")
def CreateSession(self, options, sender=None):
    token = options.get("session_handle_token")
    if not token:
        raise dbus.exceptions.DBusException("Missing token", name=_ERROR + "InvalidArgument")
    path = f"{MAIN_OBJ}/session/{_in_a_path(sender)}/{token}"
    if path in self.sessions:
        raise dbus.exceptions.DBusException("Session exists", name=_ERROR + "Exists")

    def create():
        self.sessions[path] = {"owner": sender, "shortcuts": None}
        self.AddObject(path, _SESSION, {}, [("Close", "", "", lambda *_: _forget(self, path))])
        # A program that is gone takes its sessions along.
        self.connection.watch_name_owner(sender, lambda owner: owner or _forget(self, path))
        return {"session_handle": dbus.String(path)}

    return _answer_later(self, options, sender, "create_response", create)


@dbus.service.method(MAIN_IFACE, in_signature="oa(sa{sv})sa{sv}", out_signature="o",
                     sender_keyword="sender")
def BindShortcuts(self, session, shortcuts, parent_window, options, sender=None):
    _check_session(self, session, sender)
    if self.sessions[session]["shortcuts"] is not None:
        raise dbus.exceptions.DBusException("Shortcuts are bound once in a session",
                                            name=_ERROR + "NotAllowed")

    def bind():
        self.sessions[session]["shortcuts"] = shortcuts
        return {"shortcuts": _described(shortcuts)}

    return _answer_later(self, options, sender, "bind_response", bind)


@dbus.service.method(MAIN_IFACE, in_signature="oa{sv}", out_signature="o", sender_keyword="sender")
def ListShortcuts(self, session, options, sender=None):
    _check_session(self, session, sender)
    return _answer_later(self, options, sender, "list_response",
                         lambda: {"shortcuts": _described(self.sessions[session]["shortcuts"] or [])})


# What a test calls.

@dbus.service.method(MOCK_IFACE, in_signature="a{sv}", out_signature="")
def Behave(self, parameters):
    self.behaviour.update(parameters)


@dbus.service.method(MOCK_IFACE, in_signature="", out_signature="a(osa(ss))")
def Sessions(self):
    """The open sessions: path, owner, and each bound shortcut with its preferred trigger."""
    return [(path, session["owner"],
             [(name, options.get("preferred_trigger", ""))
              for name, options in session["shortcuts"] or []])
            for path, session in self.sessions.items()]


@dbus.service.method(MOCK_IFACE, in_signature="s", out_signature="i")
def Press(self, token):
    """The user presses, and lets go, every shortcut that is bound; says how many that are."""
    count = 0
    for path, session in self.sessions.items():
        for name, _ in session["shortcuts"] or []:
            options = {"activation_token": dbus.String(token)} if token else {}
            for signal, details in (("Activated", options), ("Deactivated", {})):
                _tell(self, session["owner"], MAIN_OBJ, MAIN_IFACE, signal, "osta{sv}",
                      [path, name, 4711 + count, details])
            count += 1
    return count


@dbus.service.method(MOCK_IFACE, in_signature="sss", out_signature="")
def Pretend(self, owner, session, shortcut):
    """Says to a program that a shortcut of any session was pressed."""
    _tell(self, owner, MAIN_OBJ, MAIN_IFACE, "Activated", "osta{sv}", [session, shortcut, 1, {}])


@dbus.service.method(MOCK_IFACE, in_signature="s", out_signature="")
def ChangeTrigger(self, description):
    """The user gives the shortcuts other keys in the desktop's settings."""
    for path, session in self.sessions.items():
        _tell(self, session["owner"], MAIN_OBJ, MAIN_IFACE, "ShortcutsChanged", "oa(sa{sv})",
              [path, _described(session["shortcuts"] or [], description)])


@dbus.service.method(MOCK_IFACE, in_signature="", out_signature="")
def CloseSessions(self):
    """The desktop ends every session, as it does when the user takes a permission back."""
    for path, session in list(self.sessions.items()):
        _forget(self, path)
        _tell(self, session["owner"], path, _SESSION, "Closed", "a{sv}", [{}])


# Inside.

def _in_a_path(sender):
    return sender.removeprefix(":").replace(".", "_")


def _check_session(mock, session, sender):
    if session not in mock.sessions or mock.sessions[session]["owner"] != sender:
        raise dbus.exceptions.DBusException("Invalid session", name=_ERROR + "AccessDenied")


def _forget(mock, path):
    if mock.sessions.pop(path, None):
        mock.RemoveObject(path)


def _described(shortcuts, trigger=None):
    return dbus.Array(
        [dbus.Struct((name, dbus.Dictionary(
            {"description": options.get("description", ""),
             "trigger_description": trigger or f"Press {options.get('preferred_trigger', '')}"},
            signature="sv")), signature="sa{sv}") for name, options in shortcuts],
        signature="(sa{sv})")


def _answer_later(mock, options, sender, response_name, grant):
    """Answers a request when and how the test wants it; gives the request's path."""
    path = f"{MAIN_OBJ}/request/{_in_a_path(sender)}/{options.get('handle_token', 't')}"

    def answer():
        response = int(mock.behaviour[response_name])
        results = grant() if response == 0 else {}
        _tell(mock, sender, path, _REQUEST, "Response", "ua{sv}",
              [response, dbus.Dictionary(results, signature="sv")])
        return False

    delay = int(mock.behaviour["delay"])
    if mock.behaviour["silent"]:
        pass
    elif delay < 0:
        answer()
    else:
        GLib.timeout_add(delay, answer)
    return path


def _tell(mock, receiver, path, interface, name, signature, arguments):
    mock.EmitSignalDetailed(interface, name, signature, arguments,
                            {"path": path, "destination": receiver})
