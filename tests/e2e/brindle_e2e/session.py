# SPDX-License-Identifier: MIT
"""What every desktop for a test has: a folder, an environment, a session bus, an accessibility bus."""

import os
import re
import shutil
import subprocess
import tempfile

from . import processes
from .accessibility import Bus
from .waiting import wait_for

_A11Y_LAUNCHERS = ("/usr/libexec/at-spi-bus-launcher", "/usr/lib/at-spi2-core/at-spi-bus-launcher")
_INHERITED = ("PATH", "LD_LIBRARY_PATH", "ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS")

_MODIFIER_CODES = {"ctrl": 37, "shift": 50, "alt": 64, "altgr": 108}


def key_codes(name):
    """The codes of a combination that ends in one ('ctrl+61', at least two digits), else None.

    Such a name means the key at that place of the keyboard, whatever the layout makes of it.
    """
    if not re.fullmatch(r"(\w+\+)*\d\d+", name):
        return None
    return [_MODIFIER_CODES.get(part) or int(part) for part in name.split("+")]


class Session:
    """Use as a context manager, or start() and stop(); stop() also cleans up after a failed start."""

    session_type = None  # as XDG_SESSION_TYPE has it
    bus_configuration = "--session"  # an option of dbus-daemon

    def __init__(self):
        self._processes = []
        self.display_server = None  # the process that everything on the screen depends on
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
            self._start_parts()
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

    def run_bus(self, configuration):
        """Starts a message bus, by an option of dbus-daemon: the process and its address."""
        read_end, write_end = os.pipe()
        bus = self.run(["dbus-daemon", configuration, "--nofork", f"--print-address={write_end}"],
                       pass_fds=(write_end,), stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(write_end)
        with os.fdopen(read_end) as answer:
            address = answer.readline().strip()
        if not address:
            raise RuntimeError("the message bus did not start")
        return bus, address

    def end(self, process):
        processes.stop(process)
        if process in self._processes:
            self._processes.remove(process)

    def window_titled(self, title):
        for window_id in self.screen.windows():
            if self.screen.title(window_id) == title:
                return window_id
        return None

    def picture(self, path):
        self.screen.picture(path)

    def _start_other_program(self, terminal, name):
        """Starts a terminal whose lines can be read. Its command ends where that of the inside begins."""
        notes = os.path.join(tempfile.mkdtemp(dir=self.folder), "lines")
        # The shell inside copies each line it reads into the file, so a test can see it.
        process = self.run([*terminal, "sh", "-c",
                            'while read -r line; do printf "%s\\n" "$line" >>"$1"; done', "sh", notes])
        window = wait_for(lambda: self.window_titled(name), f"the window of {name}")
        wait_for(lambda: self.screen.active_window() == window, f"{name} in front")
        return OtherProgram(process, window, notes)

    # Starting the parts.

    def _start_parts(self):
        """Starts the display, the buses and what looks after the windows, in the desktop's order."""
        raise NotImplementedError

    def _make_environment(self):
        env = {name: os.environ[name] for name in _INHERITED if name in os.environ}
        runtime = os.path.join(self.folder, "runtime")
        os.mkdir(runtime, 0o700)
        env.update(HOME=self.folder, XDG_RUNTIME_DIR=runtime, XDG_SESSION_TYPE=self.session_type,
                   XDG_CONFIG_HOME=os.path.join(self.folder, "config"),
                   XDG_CONFIG_DIRS=os.path.join(self.folder, "no-system-config"),
                   XDG_CACHE_HOME=os.path.join(self.folder, "cache"),
                   XDG_DATA_HOME=os.path.join(self.folder, "data"),
                   LC_ALL="C.UTF-8", TZ="UTC", GSETTINGS_BACKEND="memory", NO_AT_BRIDGE="0")
        return env

    def _start_session_bus(self):
        _, self.env["DBUS_SESSION_BUS_ADDRESS"] = self.run_bus(self.bus_configuration)

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
