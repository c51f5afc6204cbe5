# SPDX-License-Identifier: MIT
"""The base of the tests on a Wayland desktop."""

import time

from .beside import BesideAnotherProgram
from .portal import Portal
from .wayland import FLOATING, WaylandDesktop
from .windows import SETTINGS, WindowsTestCase

APP_ID = "example.osterlane.Brindle"
INSTEAD = "brindle --toggle"  # what the settings name where there is no hotkey


class WaylandTestCase(BesideAnotherProgram, WindowsTestCase):
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
