# SPDX-License-Identifier: MIT
"""The window that comes by itself, a minute after it was sent away. The minute is spent only once:
all desktops wait at the same time."""

import tempfile
import time

from brindle_e2e import datafile
from brindle_e2e.brindle import Brindle
from brindle_e2e.case import PROGRAM, BrindleTestCase, main
from brindle_e2e.desktop import Desktop
from brindle_e2e.home import Home
from brindle_e2e.managers import MANAGERS
from brindle_e2e.waiting import wait_for

DELAY, TOLERANCE = 60, 8
PAUSE_BETWEEN_LINES = 5


class Seat:
    """One desktop with the program in the background, and a user who types into another program."""

    def __init__(self, desktop, automatic_activation="true"):
        self.desktop = desktop
        home = Home(tempfile.mkdtemp(prefix="home-", dir=desktop.folder))
        path = datafile.create(home.path("tasks.bdl"), "First")
        home.remember_files(path, automatic_activation=automatic_activation)
        self.brindle = Brindle(desktop, PROGRAM, home).start()
        self.brindle.go("ctrl+l", "First")
        self.other = desktop.other_program()
        self.brindle.wait_until_hidden()
        self.hidden_since = time.monotonic()
        self.came_after = None
        self.lines = []

    def type_on(self):
        """The user is busy: window managers don't like to see a window come up in the middle of it."""
        self.lines.append(f"line {len(self.lines)}")
        self.desktop.write(self.lines[-1] + "\n")

    def look(self):
        if self.came_after is None and self.desktop.screen.active_window() == self.brindle.window:
            self.came_after = time.monotonic() - self.hidden_since

    def has_waited(self):
        return self.came_after is not None or time.monotonic() - self.hidden_since > DELAY + 2 * TOLERANCE

    def must_not_be_disturbed(self):
        return self.came_after is None and time.monotonic() - self.hidden_since < DELAY - TOLERANCE


class AutomaticActivation(BrindleTestCase):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.desktops = {}
        for name, manager in MANAGERS.items():
            cls.desktops[name] = Desktop(manager=manager).start()
            cls.addClassCleanup(cls.desktops[name].stop)

    def test_after_the_delay_the_window_comes_with_the_keyboard_and_escape_gives_it_back(self):
        seats = {name: Seat(desktop) for name, desktop in self.desktops.items()}
        switched_off = Seat(self.desktop, automatic_activation="false")
        self.wait_while_the_users_type([*seats.values(), switched_off])
        for name, seat in seats.items():
            with self.subTest(window_manager=name):
                self.assertIsNotNone(seat.came_after, "the window did not come")
                self.assertAlmostEqual(seat.came_after, DELAY, delta=TOLERANCE)
                self.assertEqual(seat.other.lines(), seat.lines, "what was typed meanwhile")
                self.check_keyboard(seat)
        self.assertIsNone(switched_off.came_after, "switched off, nothing comes")

    def wait_while_the_users_type(self, seats):
        next_line = 0
        while not all(seat.has_waited() for seat in seats):
            for seat in seats:
                seat.look()
            if time.monotonic() > next_line:
                next_line = time.monotonic() + PAUSE_BETWEEN_LINES
                for seat in seats:
                    if seat.must_not_be_disturbed():
                        seat.type_on()
            time.sleep(0.05)

    def check_keyboard(self, seat):
        seat.desktop.write("!")
        seat.brindle.expect_text("First!")
        seat.desktop.keys("Escape")
        seat.brindle.wait_until_hidden()
        wait_for(lambda: seat.desktop.screen.active_window() == seat.other.window, "the other one")


if __name__ == "__main__":
    main()
