# SPDX-License-Identifier: MIT
"""What the X server and the window manager say: windows, places, the keyboard's owner, pictures."""

import contextlib
import os
import struct
import zlib

from Xlib import X, Xatom, Xutil, error
from Xlib.display import Display
from Xlib.ext import xtest
from Xlib.protocol import event as xevent


class Screen:
    """A connection to the X server of the virtual display."""

    def __init__(self, display_name, scale=1):
        self.scale = scale  # how many pixels one of the program's is large
        self._display = Display(display_name)
        self._root = self._display.screen().root

    def close(self):
        self._display.close()

    def has_window_manager(self):
        return bool(self._property(self._root, "_NET_SUPPORTING_WM_CHECK"))

    def active_window(self):
        """Id of the window that has the front, 0 when none has."""
        value = self._property(self._root, "_NET_ACTIVE_WINDOW")
        return value[0] if value else 0

    @contextlib.contextmanager
    def front_changes(self):
        """Gives a function that counts how often the front was given away since."""
        display = Display(self._display.get_display_name())
        display.screen().root.change_attributes(event_mask=X.PropertyChangeMask)
        display.sync()
        front = display.intern_atom("_NET_ACTIVE_WINDOW")
        seen = []

        def count():
            while display.pending_events():
                event = display.next_event()
                seen.extend([event] if getattr(event, "atom", None) == front else [])
            return len(seen)

        try:
            yield count
        finally:
            display.close()

    def claim_front(self, window_id):
        """Says that this window has the front, as a window manager does."""
        self._root.change_property(self._display.intern_atom("_NET_ACTIVE_WINDOW"),
                                   Xatom.WINDOW, 32, [window_id])
        self._display.sync()

    def windows(self):
        """Ids of the windows that the window manager looks after, oldest first."""
        return list(self._property(self._root, "_NET_CLIENT_LIST") or [])

    def stacking(self):
        """The same, lowest first."""
        return list(self._property(self._root, "_NET_CLIENT_LIST_STACKING") or [])

    def pid(self, window_id):
        value = self._property(self._window(window_id), "_NET_WM_PID")
        return value[0] if value else 0

    def title(self, window_id):
        window = self._window(window_id)
        value = self._property(window, "_NET_WM_NAME")
        if value is None:
            value = self._property(window, "WM_NAME")
        if value is None:
            return ""
        return value if isinstance(value, str) else bytes(value).decode(errors="replace")

    def active_pid(self):
        window_id = self.active_window()
        return self.pid(window_id) if window_id else 0

    def windows_of(self, pid):
        return [window_id for window_id in self.windows() if self.pid(window_id) == pid]

    def find(self, pid, title_start):
        """The window of this process whose title starts so, or None."""
        for window_id in self.windows_of(pid):
            if self.title(window_id).startswith(title_start):
                return window_id
        return None

    def unmanaged_windows(self):
        """Ids of the mapped children of the root, whoever looks after them (a splash screen)."""
        found = []
        for window in self._root.query_tree().children:
            try:
                if window.get_attributes().map_state == X.IsViewable:
                    found.append(window.id)
            except error.XError:
                pass
        return found

    def place(self, window_id):
        """(x, y, width, height) of the window's inside, on the screen."""
        try:
            window = self._window(window_id)
            size = window.get_geometry()
            corner = window.translate_coords(self._root, 0, 0)
            return (-corner.x, -corner.y, size.width, size.height)
        except error.XError:
            return None

    @staticmethod
    def shown_again(window_id, _pid):
        """The id that a window of the program has when it is shown again: the same."""
        return window_id

    def shows(self, window_id, node):
        """Whether a window is that of a node on the accessibility bus."""
        return self.place(window_id) == self._scaled(node.extents)

    def fits(self, window_id, node):
        """Whether a window has the size of a node."""
        place = self.place(window_id)
        return place is not None and place[2:] == self._scaled(node.extents)[2:]

    def spot(self, window_id, window_node, node):
        """The place of a part on the screen, wherever the program believes its window to be."""
        left, top = self.place(window_id)[:2]
        origin = self._scaled(window_node.extents)
        x, y, width, height = self._scaled(node.extents)
        return (left + x - origin[0], top + y - origin[1], width, height)

    def is_minimised(self, window_id):
        try:
            state = self._window(window_id).get_wm_state()
        except error.XError:
            return False
        return bool(state) and state.state == Xutil.IconicState

    def is_managed(self, window_id):
        """Whether the window manager looks after the window, be it in sight or not."""
        if window_id not in self.windows():
            return False
        try:
            state = self._window(window_id).get_wm_state()
        except error.XError:
            return False
        # Not every manager strikes a window off its list at once.
        return bool(state) and state.state != Xutil.WithdrawnState

    def current_workspace(self):
        """Number of the workspace that is in sight, from 0."""
        return self._property(self._root, "_NET_CURRENT_DESKTOP")[0]

    def workspace(self, window_id):
        """Number of the workspace that a window is on; 0xffffffff when on all."""
        value = self._property(self._window(window_id), "_NET_WM_DESKTOP")
        return value[0] if value else None

    def go_to_workspace(self, number):
        self._client_message(self._root.id, "_NET_CURRENT_DESKTOP", [number, 0, 0, 0, 0])

    def has_workspaces(self, number):
        value = self._property(self._root, "_NET_NUMBER_OF_DESKTOPS")
        return bool(value) and value[0] >= number

    def owner_of_keyboard(self):
        """Id of the window that has the input focus."""
        focus = self._display.get_input_focus().focus
        return focus.id if hasattr(focus, "id") else int(focus)

    def press_codes(self, *codes):
        """Presses keys by their place on the keyboard, all together, and lets them go again."""
        # xdotool would switch the keyboard's group for the time of the press.
        for code in codes:
            xtest.fake_input(self._display, X.KeyPress, code)
        for code in reversed(codes):
            xtest.fake_input(self._display, X.KeyRelease, code)
        self._display.sync()

    def move_resize(self, window_id, x, y, width, height):
        """Moves a window as a user does, frame and all, through the window manager."""
        flags = 10 | (0xF << 8) | (2 << 12)  # static gravity, all four values, a pager asks
        self._client_message(window_id, "_NET_MOVERESIZE_WINDOW", [flags, x, y, width, height])

    def minimise(self, window_id):
        self._client_message(window_id, "WM_CHANGE_STATE", [Xutil.IconicState, 0, 0, 0, 0])

    def close_window(self, window_id):
        """What a click on the frame's cross does."""
        self._client_message(window_id, "_NET_CLOSE_WINDOW", [0, 2, 0, 0, 0])

    def activate(self, window_id):
        """What a click in a taskbar does."""
        self._client_message(window_id, "_NET_ACTIVE_WINDOW", [2, 0, 0, 0, 0])

    def picture(self, path):
        """Writes what is on the screen as a PNG file."""
        size = self._root.get_geometry()
        image = self._root.get_image(0, 0, size.width, size.height, X.ZPixmap, 0xFFFFFFFF)
        rgb = bytearray(size.width * size.height * 3)
        rgb[0::3], rgb[1::3], rgb[2::3] = image.data[2::4], image.data[1::4], image.data[0::4]
        stride = size.width * 3
        lines = b"".join(b"\0" + rgb[y * stride:(y + 1) * stride] for y in range(size.height))
        header = struct.pack(">IIBBBBB", size.width, size.height, 8, 2, 0, 0, 0)
        os.makedirs(os.path.dirname(os.path.abspath(path)), exist_ok=True)
        with open(path, "wb") as file:
            file.write(b"\x89PNG\r\n\x1a\n" + _chunk(b"IHDR", header)
                       + _chunk(b"IDAT", zlib.compress(lines, 6)) + _chunk(b"IEND", b""))

    def colour_at(self, x, y):
        """The colour of one pixel as '#rrggbb'."""
        data = self._root.get_image(x, y, 1, 1, X.ZPixmap, 0xFFFFFFFF).data
        return f"#{data[2]:02x}{data[1]:02x}{data[0]:02x}"

    def _scaled(self, extents):
        return tuple(value * self.scale for value in extents)

    def _window(self, window_id):
        return self._display.create_resource_object("window", window_id)

    def _property(self, window, name):
        try:
            found = window.get_full_property(self._display.intern_atom(name), X.AnyPropertyType)
        except error.XError:
            return None
        return found.value if found else None

    def _client_message(self, window_id, name, data):
        message = xevent.ClientMessage(window=self._window(window_id),
                                      client_type=self._display.intern_atom(name), data=(32, data))
        self._root.send_event(message,
                              event_mask=X.SubstructureRedirectMask | X.SubstructureNotifyMask)
        self._display.sync()


def _chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
