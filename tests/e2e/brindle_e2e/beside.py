# SPDX-License-Identifier: MIT
"""The program beside another one, and who of the two has the keyboard."""

from . import datafile
from .waiting import wait_for


class BesideAnotherProgram:
    """For test cases."""

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
