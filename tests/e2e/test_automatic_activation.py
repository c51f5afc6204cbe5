# SPDX-License-Identifier: MIT
"""The window that comes by itself, a minute after it was sent away."""

import time

from brindle_e2e import datafile
from brindle_e2e.case import BrindleTestCase, main
from brindle_e2e.waiting import stays, wait_for


class AutomaticActivation(BrindleTestCase):
    def test_after_the_delay_the_window_comes_with_the_keyboard_and_escape_gives_it_back(self):
        path = datafile.create(self.home.path("tasks.bdl"), "First")
        self.home.remember_files(path, automatic_activation="true")
        brindle = self.start()
        brindle.go("ctrl+l", "First")
        other = self.other_program()
        brindle.wait_until_hidden()
        hidden_since = time.monotonic()
        self.desktop.write("typing on\n")
        wait_for(lambda: other.lines() == ["typing on"], "the other program typing")
        stays(lambda: self.desktop.screen.active_window() == other.window, "left alone", 50)
        wait_for(lambda: self.desktop.screen.active_window() == brindle.window, "in front", 30)
        self.assertAlmostEqual(time.monotonic() - hidden_since, 60, delta=8)
        self.desktop.write("!")
        brindle.expect_text("First!")
        self.desktop.keys("Escape")
        brindle.wait_until_hidden()
        wait_for(lambda: self.desktop.screen.active_window() == other.window, "the other one")

    def test_switched_off_nothing_comes(self):
        path = datafile.create(self.home.path("tasks.bdl"), "First")
        brindle = self.start_with(path)
        other = self.other_program()
        brindle.wait_until_hidden()
        stays(lambda: self.desktop.screen.active_window() == other.window, "left alone", 70)


if __name__ == "__main__":
    main()
