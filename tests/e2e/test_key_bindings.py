# SPDX-License-Identifier: MIT
"""Each of the 34 key bindings, pressed for real while the editor has the keyboard."""

from brindle_e2e.bindings import BINDINGS, check_binding, create_outline
from brindle_e2e.case import BrindleTestCase, main


class KeyBindings(BrindleTestCase):
    def check(self, row):
        brindle = self.start_with(create_outline(self.home.path("keys.bdl")))
        check_binding(brindle, row.number)


def _add_tests():
    for row in BINDINGS:
        name = f"test_{row.number:02}_{row.keys}_{row.what}"
        name = "".join(letter if letter.isalnum() else "_" for letter in name)
        setattr(KeyBindings, name, lambda self, row=row: self.check(row))


_add_tests()

if __name__ == "__main__":
    main()
