# SPDX-License-Identifier: MIT
"""The key bindings on other keyboards than the American one.

Keys are pressed by key code, that is, by their place on the keyboard. 34 and 35 are the bracket keys
of an American keyboard, 61 its slash, 21 its equal sign, 60 its full stop; 14, 16 to 19 are the
digits 5, 7, 8, 9 and 0; 20 stands right of the 0.
"""

import os

from brindle_e2e.bindings import check_binding, create_outline, go_to, THREE
from brindle_e2e.case import BrindleTestCase, main

# Number of the binding, the keys, and what a user of that keyboard takes them for.
GERMAN = [
    (7, "ctrl+shift+16", "Ctrl+/ where the slash is Shift+7"),
    (29, "ctrl+shift+19", "Ctrl+= where the equal sign is Shift+0"),
    (11, "ctrl+altgr+17", "Ctrl+[ where the bracket is AltGr+8"),
    (14, "ctrl+altgr+18", "Ctrl+] where the bracket is AltGr+9"),
    (22, "ctrl+shift+altgr+17", "Ctrl+Shift+["),
    (25, "ctrl+shift+altgr+18", "Ctrl+Shift+]"),
    (11, "ctrl+34", "Ctrl+[ by its place"),
    (25, "ctrl+shift+35", "Ctrl+Shift+] by its place"),
    (6, "ctrl+16", "Ctrl+/ without the Shift that the slash needs"),
    (28, "ctrl+19", "Ctrl+= without the Shift that the equal sign needs"),
    (6, "ctrl+61", "Ctrl+/ by its place"),
    # 21 is a dead key there: it belongs to the input method, which keeps it.
    (12, "ctrl+45", "Ctrl+K"),
    (34, "ctrl+60", "Ctrl+."),
]
FRENCH = [
    (7, "ctrl+shift+60", "Ctrl+/ where the slash is Shift+:"),
    (28, "ctrl+21", "Ctrl+="),
    (29, "ctrl+shift+21", "Ctrl+Shift+="),
    (11, "ctrl+altgr+14", "Ctrl+[ where the bracket is AltGr+5"),
    (14, "ctrl+altgr+20", "Ctrl+] where the bracket is AltGr+)"),
    (22, "ctrl+shift+altgr+14", "Ctrl+Shift+["),
    (25, "ctrl+shift+altgr+20", "Ctrl+Shift+]"),
    (3, "ctrl+38", "Ctrl+Q, on the American A"),
    (2, "ctrl+58", "Ctrl+comma, on the American M"),
    (6, "ctrl+60", "Ctrl+/ without the Shift that the slash needs"),
    (34, "ctrl+59", "Ctrl+. without the Shift that the full stop needs"),
]
RUSSIAN = [
    (6, "ctrl+61", "Ctrl+/, which is no Ctrl+."),
    (7, "ctrl+shift+61", "Ctrl+Shift+/"),
    (11, "ctrl+34", "Ctrl+["),
    (14, "ctrl+35", "Ctrl+]"),
    (22, "ctrl+shift+34", "Ctrl+Shift+["),
    (25, "ctrl+shift+35", "Ctrl+Shift+]"),
    (28, "ctrl+21", "Ctrl+="),
    (29, "ctrl+shift+21", "Ctrl+Shift+="),
    (12, "ctrl+45", "Ctrl+K"),
    (19, "ctrl+shift+40", "Ctrl+Shift+D"),
    (34, "ctrl+60", "Ctrl+."),
    (5, "ctrl+41", "Ctrl+F"),
]


class KeyboardLayouts(BrindleTestCase):
    def setUp(self):
        super().setUp()
        self.addCleanup(self.desktop.layout, "-layout", "us", "-option", "")

    def start_on_outline(self):
        path = self.home.path("keys.bdl")
        if os.path.exists(path):
            os.remove(path)
        return self.start_with(create_outline(path))

    def check_all(self, rows, layout, switch_group=False):
        self.desktop.layout("-layout", layout, "-option", "grp:menu_toggle")
        brindle = self.start_on_outline()
        if switch_group:
            self.desktop.keys("135")  # the Menu key, which this layout makes the switch
        for number, keys, what in rows:
            with self.subTest(layout=layout, binding=number, what=what):
                if not brindle.is_running():
                    brindle = self.start_on_outline()
                self.back_to_start(brindle)
                try:
                    check_binding(brindle, number, keys)
                except AssertionError:
                    brindle.end()
                    raise

    def back_to_start(self, brindle):
        """Discards what the row before did, and climbs to the root."""
        brindle.keys("ctrl+shift+BackSpace")
        while brindle.view().parent is not None:
            above = brindle.view().parent
            brindle.keys("ctrl+43")
            brindle.expect_text(above)

    def test_german(self):
        self.check_all(GERMAN, "de")

    def test_french(self):
        self.check_all(FRENCH, "fr")

    def test_russian_beside_american_with_russian_active(self):
        self.check_all(RUSSIAN, "us,ru", switch_group=True)

    def test_russian_alone(self):
        self.check_all(RUSSIAN, "ru")

    def test_a_layout_changed_while_the_program_runs(self):
        brindle = self.start_on_outline()
        go_to(brindle, THREE)
        self.desktop.layout("-layout", "de")
        brindle.go("ctrl+altgr+17", "One")

    def test_a_shortcut_key_bound_in_russian_is_followed_in_russian_and_in_american(self):
        self.desktop.layout("-layout", "us,ru", "-option", "grp:menu_toggle")
        brindle = self.start_on_outline()
        go_to(brindle, THREE)
        self.desktop.keys("135")
        brindle.keys("ctrl+39", "42")  # Ctrl+S, then the key G
        brindle.expect(text=THREE)
        brindle.wait_for_log("brindle.ui.commands: command 21\n")
        self.assertTrue(brindle.view().key)
        brindle.go("ctrl+43", "keys.bdl")
        brindle.go("alt+42", THREE)
        brindle.go("ctrl+43", "keys.bdl")
        self.desktop.keys("135")
        brindle.go("alt+42", THREE)


if __name__ == "__main__":
    main()
