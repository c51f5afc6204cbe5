# SPDX-License-Identifier: MIT
"""The desktop goes away under the program, as at a log-out in a hurry or by a crash."""

import signal

from brindle_e2e import datafile
from brindle_e2e.case import BrindleTestCase, main
from brindle_e2e.wayland import WaylandDesktop


class TheXServerGoes(BrindleTestCase):
    def start_and_type(self):
        path = datafile.create(self.home.path("tasks.bdl"), "First", "Second")
        brindle = self.start_with(path)
        brindle.go("ctrl+l", "First")
        brindle.write_entry("Typed")
        return brindle, path

    def test_what_was_typed_is_saved(self):
        brindle, path = self.start_and_type()
        self.assertEqual(datafile.texts(path), {"First", "Second"})
        self.desktop.display_server.send_signal(signal.SIGKILL)
        self.assertNotEqual(brindle.wait_for_exit(), 0)
        self.assertEqual(datafile.texts(path), {"Typed", "Second"})


class TheCompositorGoes(TheXServerGoes):
    @classmethod
    def make_desktop(cls):
        return WaylandDesktop()


if __name__ == "__main__":
    main()
