# SPDX-License-Identifier: MIT
"""A desktop of its own for a test: X server, window manager, session bus, accessibility bus."""

import os
import re
import shutil
import subprocess
import tempfile

from . import managers, processes
from .accessibility import Bus
from .screen import Screen
from .waiting import wait_for

_A11Y_LAUNCHERS = ("/usr/libexec/at-spi-bus-launcher", "/usr/lib/at-spi2-core/at-spi-bus-launcher")
_MODIFIER_CODES = {"ctrl": 37, "shift": 50, "alt": 64, "altgr": 108}
_INHERITED = ("PATH", "LD_LIBRARY_PATH", "ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS")


class Desktop:
    """Use as a context manager, or start() and stop(); stop() also cleans up after a failed start."""

    def __init__(self, width=1280, height=800, manager=None):
        self._width, self._height = width, height
        self.manager = manager or managers.chosen()
        self.window_manager = None  # the window manager's process
        self._processes = []
        self.folder = None
        self.env = None
        self.screen = None
        self.bus = None

    def __enter__(self):
        return self.start()

    def __exit__(self, *_):
        self.stop()

    def start(self):
        try:
            self.folder = tempfile.mkdtemp(prefix="brindle-e2e-")
            self.env = self._make_environment()
            self._start_x_server()
            self._start_session_bus()
            self._start_accessibility()
            self._start_window_manager()
        except BaseException:
            self.stop()
            raise
        return self

    def stop(self):
        """Ends everything that was started here, last first, and removes the folder."""
        for part in (self.bus, self.screen):
            if part is not None:
                part.close()
        self.bus = self.screen = None
        while self._processes:
            processes.stop(self._processes.pop())
        if self.folder:
            shutil.rmtree(self.folder, ignore_errors=True)
            self.folder = None

    def run(self, command, extra_env=None, **options):
        """Starts a program on this desktop; it is ended with the desktop at the latest."""
        process = processes.start(command, {**self.env, **(extra_env or {})}, **options)
        self._processes.append(process)
        return process

    def end(self, process):
        processes.stop(process)
        if process in self._processes:
            self._processes.remove(process)

    # What a user's hands do.

    def keys(self, *names):
        """Presses key combinations one after the other, in xdotool's spelling ('ctrl+shift+k').

        One that ends in a key code ('ctrl+61', at least two digits) means the key at that place of
        the keyboard, whatever the layout makes of it.
        """
        for name in names:
            if re.fullmatch(r"(\w+\+)*\d\d+", name):
                self.screen.press_codes(*(_MODIFIER_CODES.get(part) or int(part)
                                          for part in name.split("+")))
            else:
                self._xdotool("key", "--delay", "0", name)

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

    def park_pointer(self):
        """Takes the pointer out of the way, so that nothing reacts to it."""
        if self.manager.focus_follows_pointer:
            return  # out of the way is in another window
        self._xdotool("mousemove", str(self._width - 1), str(self._height - 1))

    def layout(self, *arguments):
        """Changes the keyboard layout, in setxkbmap's words."""
        self._tool("setxkbmap", *arguments)

    def other_program(self, name="other", place="60x8+700+500"):
        """An xterm that has the front; what is typed into it ends in the file given back."""
        notes = os.path.join(tempfile.mkdtemp(dir=self.folder), "lines")
        # -e: the shell inside copies each line it reads into the file, so a test can see it.
        process = self.run(["xterm", "-title", name, "-geometry", place, "-fa",
                            "DejaVu Sans Mono", "-fs", "9", "-e", "sh", "-c",
                            'while read -r line; do printf "%s\\n" "$line" >>"$1"; done', "sh", notes])
        window = wait_for(lambda: self.window_titled(name), f"the window of {name}")
        wait_for(lambda: self.screen.active_window() == window, f"{name} in front")
        return OtherProgram(process, window, notes)

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

    def window_titled(self, title):
        for window_id in self.screen.windows():
            if self.screen.title(window_id) == title:
                return window_id
        return None

    def picture(self, path):
        self.screen.picture(path)

    # Starting the parts.

    def _make_environment(self):
        env = {name: os.environ[name] for name in _INHERITED if name in os.environ}
        runtime = os.path.join(self.folder, "runtime")
        os.mkdir(runtime, 0o700)
        env.update(HOME=self.folder, XDG_RUNTIME_DIR=runtime, XDG_SESSION_TYPE="x11",
                   XDG_CONFIG_HOME=os.path.join(self.folder, "config"),
                   XDG_CONFIG_DIRS=os.path.join(self.folder, "no-system-config"),
                   XDG_CACHE_HOME=os.path.join(self.folder, "cache"),
                   XDG_DATA_HOME=os.path.join(self.folder, "data"),
                   LC_ALL="C.UTF-8", TZ="UTC", GSETTINGS_BACKEND="memory", NO_AT_BRIDGE="0")
        return env

    def _start_x_server(self):
        read_end, write_end = os.pipe()
        log = open(os.path.join(self.folder, "xvfb.log"), "wb")
        self.run(["Xvfb", "-displayfd", str(write_end), "-screen", "0",
                  f"{self._width}x{self._height}x24", "-nolisten", "tcp", "-noreset"], pass_fds=(write_end,), stdout=log, stderr=log)
        os.close(write_end)
        log.close()
        with os.fdopen(read_end) as answer:
            number = answer.readline().strip()
        if not number:
            raise RuntimeError("the X server did not start")
        self.env["DISPLAY"] = f":{number}"
        self.screen = Screen(self.env["DISPLAY"])
        # The layout is set before any program starts, so that none sees the keyboard change.
        self.layout("us")
        self.park_pointer()

    def _start_session_bus(self):
        read_end, write_end = os.pipe()
        self.run(["dbus-daemon", "--session", "--nofork", f"--print-address={write_end}"],
                 pass_fds=(write_end,), stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(write_end)
        with os.fdopen(read_end) as answer:
            address = answer.readline().strip()
        if not address:
            raise RuntimeError("the session bus did not start")
        self.env["DBUS_SESSION_BUS_ADDRESS"] = address

    def _start_accessibility(self):
        launcher = next(path for path in _A11Y_LAUNCHERS if os.path.exists(path))
        self.run([launcher, "--launch-immediately"], stdout=subprocess.DEVNULL,
                 stderr=subprocess.DEVNULL)
        self.bus = wait_for(self._connect_to_bus, "the accessibility bus")
        registry = os.path.join(os.path.dirname(launcher), "at-spi2-registryd")
        self.run([registry], {"AT_SPI_BUS_ADDRESS": self.bus.address}, stdout=subprocess.DEVNULL,
                 stderr=subprocess.DEVNULL)
        wait_for(self.bus.registry_is_up, "the accessibility registry")

    def _connect_to_bus(self):
        from gi.repository import GLib
        try:
            return Bus(self.env["DBUS_SESSION_BUS_ADDRESS"])
        except GLib.Error:
            return None

    def _start_window_manager(self):
        for name, text in self.manager.files.items():
            with open(os.path.join(self.folder, name), "w", encoding="utf-8") as file:
                file.write(text)
        command = [part.format(home=self.folder) for part in self.manager.command]
        log = open(os.path.join(self.folder, "window-manager.log"), "wb")
        self.window_manager = self.run(command, stdout=log, stderr=log)
        log.close()
        wait_for(self.screen.has_window_manager, "the window manager")

    def _xdotool(self, *arguments):
        self._tool("xdotool", *arguments)

    def _tool(self, *command):
        subprocess.run(command, env=self.env, check=True, stdin=subprocess.DEVNULL, timeout=60,
                       stdout=subprocess.DEVNULL)


class OtherProgram:
    """A program of another kind on the same desktop."""

    def __init__(self, process, window, notes):
        self.process = process
        self.window = window
        self._notes = notes

    def lines(self):
        """The lines that were typed into it."""
        if not os.path.exists(self._notes):
            return []
        with open(self._notes, encoding="utf-8") as file:
            return file.read().splitlines()
