# SPDX-License-Identifier: MIT
"""A desktop of its own for a test: X server, window manager, session bus, accessibility bus."""

import os
import sys

from . import managers, scaling
from .screen import Screen
from .session import Session, key_codes
from .waiting import wait_for

_WAKER = os.path.join(os.path.dirname(__file__), "..", "..", "x11", "keep-window-manager-awake")


class Desktop(Session):
    """An X server of its own with a window manager. A second screen stands right of the first.

    Sizes are those of the program: scaled, the screen has as many more pixels.
    """

    session_type = "x11"

    def __init__(self, width=1280, height=800, manager=None, second_screen=None):
        super().__init__()
        self._scaling = scaling.chosen()
        width, height = width * self._scaling.factor, height * self._scaling.factor
        self._width, self._height = width, height
        self._second_screen = second_screen  # (width, height)
        self.has_second_screen = False
        self.manager = manager or managers.chosen()
        self.window_manager = None  # the window manager's process

    # What a user's hands do.

    def keys(self, *names):
        """Presses key combinations one after the other, in xdotool's spelling ('ctrl+shift+k').

        Or by their place on the keyboard, see key_codes().
        """
        for name in names:
            codes = key_codes(name)
            if codes:
                self.screen.press_codes(*codes)
            else:
                self._xdotool("key", "--delay", "0", name)

    def keys_at_once(self, *names):
        """Presses key combinations one after the other, without a pause; no key codes."""
        self._xdotool("key", "--delay", "0", *names)

    def press_hotkey(self):
        """Presses the program's activation hotkey as it is without settings."""
        self.keys("ctrl+alt+space")

    def press(self, *names):
        """Presses keys and holds them."""
        self._xdotool("keydown", *names)

    def release(self, *names):
        self._xdotool("keyup", *names)

    def write(self, text):
        self._xdotool("type", "--delay", "2", "--", text)

    def click(self, x, y, button=1):
        self._xdotool("mousemove", str(x), str(y), "click", str(button))
        self.park_pointer()

    def hold_button(self, x, y):
        """Presses the left button there and holds it."""
        self._xdotool("mousemove", str(x), str(y), "mousedown", "1")

    def let_button_go(self, x, y):
        """Moves the held button there and lets it go."""
        self._xdotool("mousemove", str(x), str(y), "mouseup", "1")
        self.park_pointer()

    def drag(self, start, end, steps=8):
        """Drags with the left button, in the small steps of a hand."""
        command = ["mousemove", *map(str, start), "sleep", "0.1", "mousedown", "1"]
        for step in range(1, steps + 1):
            command += ["sleep", "0.05", "mousemove",
                        *(str(a + (b - a) * step // steps) for a, b in zip(start, end))]
        # A drop counts where the pointer rests, a pixel further on.
        command += ["sleep", "0.05", "mousemove_relative", "1", "0", "sleep", "0.15", "mouseup", "1"]
        self._xdotool(*command)
        self.park_pointer()

    def park_pointer(self):
        """Takes the pointer out of the way, so that nothing reacts to it."""
        if self.manager.focus_follows_pointer:
            return  # out of the way is in another window
        self._xdotool("mousemove", str(self._width - 1), str(self._height - 1))

    def point_at(self, x, y):
        """Moves the pointer there and leaves it there."""
        self._xdotool("mousemove", str(x), str(y))

    def cross(self, *spots, pause):
        """Moves the pointer from spot to spot, resting the given seconds at each but the last."""
        command = []
        for x, y in spots:
            command += ["mousemove", str(x), str(y), "sleep", str(pause)]
        self._xdotool(*command[:-2])

    def layout(self, *arguments):
        """Changes the keyboard layout, in setxkbmap's words."""
        self._tool("setxkbmap", *arguments)

    def other_program(self, name="other", place="60x8+700+500"):
        """An xterm that has the front; what is typed into it ends in the file given back."""
        return self._start_other_program(
            ["xterm", "-title", name, "-geometry", place, "-fa", "DejaVu Sans Mono", "-fs", "9",
             "-e"], name)

    def go_to_second_workspace(self):
        command = self.manager.second_workspace_command
        if command:
            self._tool(*command)
        else:
            wait_for(lambda: self.screen.has_workspaces(2), "a second workspace")
            self.screen.go_to_workspace(1)
        wait_for(lambda: self.screen.current_workspace() == 1, "the second workspace")

    def go_to_first_workspace(self):
        self.screen.go_to_workspace(0)
        wait_for(lambda: self.screen.current_workspace() == 0, "the first workspace")

    def plug_second_screen(self):
        width, height = self._second_screen
        self._tool("xrandr", "--setmonitor", "second", f"{width}/300x{height}/200+{self._width}+0",
                   "none")
        self.has_second_screen = True

    def unplug_second_screen(self):
        self._tool("xrandr", "--delmonitor", "second")
        self.has_second_screen = False

    # Starting the parts.

    def _start_parts(self):
        self._start_x_server()
        self._start_session_bus()
        self._start_accessibility()
        self._start_window_manager()

    def _start_x_server(self):
        read_end, write_end = os.pipe()
        log = open(os.path.join(self.folder, "xvfb.log"), "wb")
        width, height = self._second_screen or (0, 0)
        size = f"{self._width + width}x{max(self._height, height)}x24"
        self.display_server = self.run(
            ["Xvfb", "-displayfd", str(write_end), "-screen", "0", size, "-nolisten", "tcp",
             "-noreset"], pass_fds=(write_end,), stdout=log, stderr=log)
        os.close(write_end)
        log.close()
        with os.fdopen(read_end) as answer:
            number = answer.readline().strip()
        if not number:
            raise RuntimeError("the X server did not start")
        self.env["DISPLAY"] = f":{number}"
        self.screen = Screen(self.env["DISPLAY"], self._scaling.factor)
        self._scaling.apply(self)
        # The layout is set before any program starts, so that none sees the keyboard change.
        self.layout("us")
        self.park_pointer()
        if self._second_screen:
            self._tool("xrandr", "--setmonitor", "first", f"{self._width}/300x{self._height}/200+0+0",
                       "screen")
            self.plug_second_screen()

    def _start_window_manager(self):
        for name, text in self.manager.files.items():
            path = os.path.join(self.folder, name)
            os.makedirs(os.path.dirname(path), exist_ok=True)
            with open(path, "w", encoding="utf-8") as file:
                file.write(text)
        command = [part.format(home=self.folder) for part in self.manager.command]
        log = open(os.path.join(self.folder, "window-manager.log"), "wb")
        self.window_manager = self.run(command, self.manager.env, stdout=log, stderr=log)
        log.close()
        wait_for(self.screen.has_window_manager, "the window manager")
        with open(os.path.join(self.folder, "waker.log"), "wb") as log:
            self.run([sys.executable, "-B", _WAKER], stdout=log, stderr=log)

    def _xdotool(self, *arguments):
        self._tool("xdotool", *arguments)
