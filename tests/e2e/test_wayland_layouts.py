# SPDX-License-Identifier: MIT
"""The key bindings on other keyboards than the American one, on Wayland."""

import test_keyboard_layouts
from brindle_e2e.case import main
from brindle_e2e.wayland import WaylandDesktop


class KeyboardLayouts(test_keyboard_layouts.KeyboardLayouts):
    @classmethod
    def make_desktop(cls):
        return WaylandDesktop()

    def setUp(self):
        super().setUp()
        self.desktop.layout("-layout", "us")


if __name__ == "__main__":
    main()
