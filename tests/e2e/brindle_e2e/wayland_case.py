# SPDX-License-Identifier: MIT
"""The base of the tests on a Wayland desktop."""

import time

from . import datafile
from .portal import Portal
from .waiting import wait_for
from .wayland import FLOATING, WaylandDesktop
from .windows import SETTINGS, WindowsTestCase

APP_ID = "example.osterlane.Brindle"
INSTEAD = "brindle --toggle"  # what the settings name where there is no hotkey


class WaylandTestCase(WindowsTestCase):
    """A desktop with a portal, unless the class says otherwise."""

    configuration = FLOATING
    portal_from_the_start = True

    @classmethod
    def make_desktop(cls):
        return WaylandDesktop(configuration=cls.configuration)

    def setUp(self):
        super().setUp()
        self.portal = Portal(self.desktop)
        self.addCleanup(self.portal.close)
        if self.portal_from_the_start:
            self.portal.start()
        self.desktop.hotkey = self.press_hotkey

    def press_hotkey(self):
        """The desktop passes on its word that the user wants the program in front."""
        pressed = self.portal.press(self.desktop.activation_token(APP_ID))
        assert pressed == 1, f"{pressed} shortcuts are bound"

    def start(self, *arguments, splash="space"):
        return super().start(*arguments, splash=splash)

    def start_on(self, *entries, name="tasks.bdl"):
        """Starts the program on a new file; it has the front."""
        self.path = datafile.create(self.home.path(name), *(entries or ("First", "Second")))
        return self.start_with(self.path)

    def start_beside(self, *entries):
        """The same, beside another program that has the front at the end."""
        brindle = self.start_on(*entries)
        self.other = self.other_program()
        brindle.wait_until_hidden()
        return brindle

    def other_has_keyboard(self, line):
        """Types a line and finds it in the other program."""
        wait_for(lambda: self.desktop.screen.active_window() == self.other.window,
                 "the other program in front")
        before = len(self.other.lines())
        self.desktop.write(line + "\n")
        wait_for(lambda: self.other.lines()[before:] == [line],
                 lambda: f"{line!r} in the other program, which got {self.other.lines()[before:]}")

    def notice(self, brindle):
        """What the settings dialog says about the hotkey; '' when it has nothing to say."""
        settings = self.open(brindle, "ctrl+comma", SETTINGS)
        texts = [part.name for part in settings.node.shown()
                 if part.role == "label" and INSTEAD in part.name]
        self.close(settings)
        return texts[0] if texts else ""

    def wait_for_notice(self, brindle, wanted, timeout=20):
        """Opens the settings until they say something about the hotkey, or no longer do."""
        end = time.monotonic() + timeout
        while bool(self.notice(brindle)) != wanted:
            self.assertLess(time.monotonic(), end, "the settings' line about the hotkey")
