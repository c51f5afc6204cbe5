# SPDX-License-Identifier: MIT
"""What the compositor says about its windows, and what it does for a user who asks: sway's own words."""

import json
import os
import re
import socket
import struct
import subprocess

from .waiting import wait_for

_MAGIC = b"i3-ipc"
_RUN_COMMAND, _GET_TREE = 0, 4


def _connected(path):
    """A socket connected to that one, None while nobody listens there yet."""
    connection = socket.socket(socket.AF_UNIX)
    try:
        connection.connect(path)
        return connection
    except (FileNotFoundError, ConnectionRefusedError):
        connection.close()
        return None


class SwayScreen:
    """The windows of a Wayland desktop; the counterpart of Screen."""

    def __init__(self, socket_path, env):
        self._socket = wait_for(lambda: _connected(socket_path), "the compositor")
        self._env = env

    def close(self):
        self._socket.close()

    def command(self, text):
        """Has the compositor carry out a line as it could stand in its configuration."""
        for answer in self._ask(_RUN_COMMAND, text):
            if not answer["success"]:
                raise RuntimeError(f"sway refuses {text!r}: {answer.get('error')}")

    # The windows.

    def active_window(self):
        """Id of the window that has the front, 0 when none has."""
        return next((view["id"] for view in self._views() if view["focused"]), 0)

    def active_pid(self):
        return next((view["pid"] for view in self._views() if view["focused"]), 0)

    def windows(self):
        """Ids of the windows that are on the screen."""
        return [view["id"] for view in self._views()]

    def windows_of(self, pid):
        return [view["id"] for view in self._views() if view["pid"] == pid]

    def find(self, pid, title_start):
        """The window of this process whose title starts so, or None."""
        return next((view["id"] for view in self._views()
                     if view["pid"] == pid and (view["name"] or "").startswith(title_start)), None)

    def is_managed(self, window_id):
        """Whether the compositor looks after the window, be it in sight or not."""
        return window_id in self.windows()

    def pid(self, window_id):
        return self._value(window_id, "pid", 0)

    def title(self, window_id):
        return self._value(window_id, "name", "") or ""

    def app_id(self, window_id):
        return self._value(window_id, "app_id", "")

    def shell(self, window_id):
        """'xdg_shell' for a native window, 'xwayland' for one of an X program."""
        return self._value(window_id, "shell", "")

    def place(self, window_id):
        """(x, y, width, height) of the window's inside, on the screen."""
        view = self._view(window_id)
        if view is None:
            return None
        outer, inner = view["rect"], view["window_rect"]
        return (outer["x"] + inner["x"], outer["y"] + inner["y"], inner["width"], inner["height"])

    def shown_again(self, window_id, pid):
        """The id that the program's main window has by now: each showing makes a new window."""
        return next((view["id"] for view in self._views() if view["pid"] == pid
                     and re.match(r"Brindle($| \()", view["name"] or "")), window_id)

    def shows(self, window_id, node):
        """Whether a window is that of a node. A program doesn't know where its windows are."""
        return self.fits(window_id, node) and self.title(window_id) == node.name

    def fits(self, window_id, node):
        """Whether a window has the size of a node."""
        place = self.place(window_id)
        return place is not None and place[2:] == tuple(node.extents)[2:]

    def spot(self, window_id, window_node, node):
        """The place of a part on the screen, from what the program says about it."""
        left, top = self.place(window_id)[:2]
        x, y, width, height = node.extents
        origin = window_node.extents
        return (left + x - origin[0], top + y - origin[1], width, height)

    # What a user does with windows.

    def activate(self, window_id):
        self.command(f"[con_id={window_id}] focus")

    def close_window(self, window_id):
        self.command(f"[con_id={window_id}] kill")

    def move_resize(self, window_id, x, y, width, height):
        """Gives a floating window this place; its inside is smaller by the frame."""
        self.command(f"[con_id={window_id}] resize set {width} px {height} px,"
                     f" move absolute position {x} px {y} px")

    # Pictures.

    def picture(self, path):
        """Writes what is on the screen as a PNG file."""
        os.makedirs(os.path.dirname(os.path.abspath(path)), exist_ok=True)
        self._grim(path)

    def colour_at(self, x, y):
        """The colour of one pixel as '#rrggbb'."""
        return "#" + self._grim("-g", f"{x},{y} 1x1", "-t", "ppm", "-")[-3:].hex()

    def _grim(self, *arguments):
        return subprocess.run(["grim", *arguments], env=self._env, check=True, timeout=60,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE).stdout

    # Inside.

    def _view(self, window_id):
        return next((view for view in self._views() if view["id"] == window_id), None)

    def _value(self, window_id, name, default):
        view = self._view(window_id)
        return view.get(name, default) if view else default

    def _views(self):
        found = []

        def collect(node):
            if node.get("pid"):
                found.append(node)
            for child in (*node["nodes"], *node["floating_nodes"]):
                collect(child)

        collect(self._ask(_GET_TREE))
        return sorted(found, key=lambda view: view["id"])

    def _ask(self, kind, text=""):
        payload = text.encode()
        self._socket.sendall(_MAGIC + struct.pack("=II", len(payload), kind) + payload)
        length, _ = struct.unpack("=II", self._read(len(_MAGIC) + 8)[len(_MAGIC):])
        return json.loads(self._read(length))

    def _read(self, count):
        data = b""
        while len(data) < count:
            piece = self._socket.recv(count - len(data))
            if not piece:
                raise ConnectionError("sway has ended")
            data += piece
        return data
