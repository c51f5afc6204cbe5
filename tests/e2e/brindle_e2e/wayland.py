# SPDX-License-Identifier: MIT
"""A Wayland desktop of its own for a test: a compositor without a screen, keys and mouse from tools."""

import os
import subprocess
import tempfile
import time

from .session import Session, key_codes
from .sway import SwayScreen
from .waiting import wait_for

_REPOSITORY = os.path.abspath(os.path.join(os.path.dirname(__file__), "..", "..", ".."))
HANDS = os.path.abspath(os.environ.get("BRINDLE_WAYLAND_HANDS", os.path.join(
    _REPOSITORY, "build", "release", "tests", "wayland", "brindle_wayland_hands")))

FLOATING = 'for_window [app_id=".*"] floating enable\n'
BACKGROUND = "#315c5c"
_CONFIGURATION = """
xwayland disable
output * bg {background} solid_color
output HEADLESS-1 resolution {width}x{height}
focus_follows_mouse no
mouse_warping none
default_border normal
default_floating_border normal
font pango:DejaVu Sans 10
"""
# A bus on which nothing starts by itself: whether there is a portal is the test's choice.
_BUS = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:tmpdir={folder}</listen>
  <auth>EXTERNAL</auth>
  <servicedir>{folder}/services</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
"""
_MODIFIERS = ("ctrl", "shift", "alt", "altgr")
_LEFT_BUTTON = 272
_NOBODY = 65534


def _words_for_wtype(combination):
    *modifiers, key = combination.split("+")
    assert set(modifiers) <= set(_MODIFIERS), combination
    return [*(word for modifier in modifiers for word in ("-M", modifier)), "-k", key,
            *(word for modifier in reversed(modifiers) for word in ("-m", modifier))]


class WaylandDesktop(Session):
    """Like Desktop, on Wayland: the compositor is sway, keys come from wtype.

    The configuration is lines for sway; windows float unless it says otherwise.
    """

    session_type = "wayland"

    def __init__(self, width=1280, height=800, configuration=FLOATING):
        super().__init__()
        self._width, self._height = width, height
        self._configuration = _CONFIGURATION.format(
            width=width, height=height, background=BACKGROUND) + configuration
        self.hotkey = None  # what the activation hotkey does: it is not the compositor's to know
        self._hands = None

    # What a user's hands do.

    def keys(self, *names):
        """Presses key combinations one after the other, in xdotool's spelling ('ctrl+shift+k').

        Or by their place on the keyboard of layout(), see key_codes().
        """
        for name in names:
            codes = key_codes(name)
            if codes:
                self._press_codes(codes)
            else:
                self._tool("wtype", *_words_for_wtype(name))

    def layout(self, *arguments):
        """Gives the keyboard with places another layout, in setxkbmap's words."""
        options = dict(zip(arguments[::2], arguments[1::2]))
        self._command_hands("layout", options["-layout"], options.get("-option", ""))

    def _press_codes(self, codes):
        for code in codes:
            self._command_hands("key", code)
        for code in reversed(codes):
            self._command_hands("unkey", code)

    def write(self, text):
        if text:
            self._tool("wtype", "-d", "2", "--", text)

    def press_hotkey(self):
        self.hotkey()

    def click(self, x, y, button=_LEFT_BUTTON):
        self._move(x, y)
        self._command_hands("press", button)
        self._command_hands("release", button)
        self.park_pointer()

    def drag(self, start, end, steps=8):
        """Drags with the left button, in the small steps of a hand."""
        self._move(*start)
        self._command_hands("press", _LEFT_BUTTON)
        for step in range(1, steps + 1):
            time.sleep(0.05)
            self._move(*(a + (b - a) * step // steps for a, b in zip(start, end)))
        # A drop counts where the pointer rests, a pixel further on.
        time.sleep(0.05)
        self._move(end[0] + 1, end[1])
        time.sleep(0.15)
        self._command_hands("release", _LEFT_BUTTON)
        self.park_pointer()

    def park_pointer(self):
        """Takes the pointer out of the way, so that nothing reacts to it."""
        self._move(self._width - 1, self._height - 1)

    def activation_token(self, app_id):
        """A token of the compositor that brings a program forward, as a desktop hands it over."""
        return self._command_hands("token", app_id)

    def other_program(self, name="other"):
        """A terminal that has the front; what is typed into it ends in the file given back."""
        return self._start_other_program(
            ["foot", "--config=/dev/null", "--log-level=none", f"--title={name}",
             "--override=locked-title=yes", "--override=font=DejaVu Sans Mono:size=9",
             "--window-size-chars=60x8"], name)

    def bind_key(self, combination, command, extra_env=None):
        """Binds a key to a command as a user does in the compositor's configuration.

        The compositor may run as another user than the programs (see below), so it only says that
        the key was pressed, and a process beside the programs runs the command.
        """
        presses = os.path.join(tempfile.mkdtemp(dir=self.folder), "presses")
        os.chmod(os.path.dirname(presses), 0o711)
        os.mkfifo(presses)
        os.chmod(presses, 0o622)
        self.screen.command(f"bindsym {combination} exec echo pressed >{presses}")
        return self.run(["sh", "-c", 'presses=$1; shift; while read -r _ <"$presses"; do "$@"; done',
                         "sh", presses, *command], extra_env)

    # Starting the parts.

    def _start_parts(self):
        self._start_compositor()
        self._start_hands()
        self._configure_session_bus()
        self._start_session_bus()
        self._start_accessibility()

    def _start_compositor(self):
        runtime = self._make_compositors_folder()
        with open(os.path.join(self.folder, "sway.conf"), "w", encoding="utf-8") as file:
            file.write(self._configuration)
        socket_path = os.path.join(runtime, "sway.sock")
        env = {"HOME": runtime, "XDG_RUNTIME_DIR": runtime, "SWAYSOCK": socket_path,
               "WLR_BACKENDS": "headless", "WLR_RENDERER": "pixman", "WLR_LIBINPUT_NO_DEVICES": "1"}
        with open(os.path.join(self.folder, "sway.log"), "wb") as log:
            self.display_server = self.run(
                # Without waiting for each other's pictures: the mouse would miss windows meanwhile.
                [*_without_privileges(), "sway", "-D", "noatomic", "-c",
                 os.path.join(self.folder, "sway.conf")],
                env, stdout=log, stderr=log)
        self.screen = SwayScreen(socket_path, self.env)
        self.env["WAYLAND_DISPLAY"] = wait_for(lambda: _display_in(runtime), "the display's socket")
        self.env["XDG_CURRENT_DESKTOP"] = "sway"

    def _make_compositors_folder(self):
        """The compositor refuses to run as root, so it can get a user and a folder of its own."""
        runtime = os.path.join(self.folder, "compositor")
        os.mkdir(runtime, 0o700)
        if os.getuid() == 0:
            os.chown(runtime, _NOBODY, _NOBODY)
            os.chmod(self.folder, 0o711)
        return runtime

    def _start_hands(self):
        # A seat without any keyboard or mouse takes the focus from its programs, so one of each
        # stays plugged in. (wtype counts in milliseconds: this is more than an hour.)
        self.run(["wtype", "-s", "4000000"])
        self._hands = self.run([HANDS], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        self.park_pointer()

    def _configure_session_bus(self):
        path = os.path.join(self.folder, "bus.conf")
        with open(path, "w", encoding="utf-8") as file:
            file.write(_BUS.format(folder=self.folder))
        os.mkdir(os.path.join(self.folder, "services"))
        self.bus_configuration = f"--config-file={path}"

    def _move(self, x, y):
        self._command_hands("move", x, y, self._width, self._height)

    def _command_hands(self, *words):
        self._hands.stdin.write(" ".join(map(str, words)) + "\n")
        self._hands.stdin.flush()
        answer = self._hands.stdout.readline().strip()
        if not answer:
            raise RuntimeError(f"the hands of the user are gone: {self._hands.poll()}")
        return answer


def _without_privileges():
    if os.getuid() != 0:
        return []
    # A change of user drops the wish to end with the parent, hence it is said again.
    return ["setpriv", f"--reuid={_NOBODY}", f"--regid={_NOBODY}", "--clear-groups",
            "--pdeathsig=KILL"]


def _display_in(runtime):
    for name in os.listdir(runtime):
        if name.startswith("wayland-") and not name.endswith(".lock"):
            return os.path.join(runtime, name)
    return None
