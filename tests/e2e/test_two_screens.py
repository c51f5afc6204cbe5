# SPDX-License-Identifier: MIT
"""Two screens of different size, and one that is not there the next time."""

from brindle_e2e import datafile
from brindle_e2e.case import main
from brindle_e2e.desktop import Desktop
from brindle_e2e.waiting import stays, wait_for, wait_for_value
from brindle_e2e.windows import OPENING_KEYS, TODO_LIST, Window, WindowsTestCase

FIRST = (0, 0, 1280, 800)
SECOND = (1280, 0, 1024, 640)
MAIN_PLACE = (1500, 191, 431, 277)
LIST_PLACE = (1900, 300, 333, 222)
LONGER_THAN_THE_PAUSE_BEFORE_STORING = 1.5


class TwoScreens(WindowsTestCase):
    @classmethod
    def make_desktop(cls):
        return Desktop(*FIRST[2:], second_screen=SECOND[2:])

    def setUp(self):
        super().setUp()
        if not self.desktop.has_second_screen:
            self.desktop.plug_second_screen()

    def place(self, window):
        return self.desktop.screen.place(window)

    def expect_place(self, window, wanted, what):
        wait_for_value(lambda: self.place(window), wanted, what)
        stays(lambda: self.place(window) == wanted, what, LONGER_THAN_THE_PAUSE_BEFORE_STORING)

    def is_on(self, window, screen):
        x, y, width, height = self.place(window)
        left, top, screen_width, screen_height = screen
        return (left <= x and x + width <= left + screen_width
                and top <= y and y + height <= top + screen_height)

    def move(self, window, wanted, name):
        """Moves a window as a user does, until the place is stored."""
        before = self.home.stored_place(name)
        self.desktop.screen.move_resize(window, *wanted)
        wait_for_value(lambda: self.place(window), wanted, "the window where the user put it")
        wait_for(lambda: self.home.stored_place(name) not in (None, before), "the place stored")

    def start_on_second_screen(self):
        """The main window and the to-do list, both moved to the second screen."""
        brindle = self.start_quietly(datafile.create(self.home.path("work.bdl"), "One"))
        self.move(brindle.window, MAIN_PLACE, "HierarchyWindow")
        todo = self.open_list(brindle)
        self.move(todo.id, LIST_PLACE, "TodoListWindow")
        self.close(todo)
        return brindle

    def open_list(self, brindle):
        return self.open(brindle, OPENING_KEYS[TODO_LIST], TODO_LIST)

    def quit(self, brindle):
        brindle.keys("ctrl+q")
        self.assertEqual(brindle.wait_for_exit(), 0)

    def check_places(self, brindle, what):
        self.expect_place(brindle.window, MAIN_PLACE, f"the main window {what}")
        todo = self.open_list(brindle)
        self.expect_place(todo.id, LIST_PLACE, f"the list {what}")
        self.close(todo)

    def test_windows_come_back_on_the_second_screen_also_after_a_restart(self):
        brindle = self.start_on_second_screen()
        for round_number in range(3):
            brindle.keys("Escape")
            brindle.wait_until_hidden()
            brindle.bring_back()
            wait_for_value(lambda: self.place(brindle.window), MAIN_PLACE, f"in round {round_number}")
        self.check_places(brindle, "in the same run")
        self.quit(brindle)
        self.check_places(self.start(), "after the restart")

    def test_without_that_screen_they_are_on_the_other_and_with_it_back_where_they_were(self):
        brindle = self.start_on_second_screen()
        stored = [self.home.stored_place(name) for name in ("HierarchyWindow", "TodoListWindow")]
        self.quit(brindle)
        self.desktop.unplug_second_screen()
        brindle = self.start()
        self.check_on_first_screen(brindle, stored)
        self.quit(brindle)
        self.desktop.plug_second_screen()
        brindle = self.start()
        if self.desktop.manager.opens_where_the_keyboard_is:
            wait_for(lambda: self.is_on(brindle.window, FIRST) or self.is_on(brindle.window, SECOND),
                     "the main window where the window manager opens it")
        else:
            self.check_places(brindle, "with the screen back")

    def check_on_first_screen(self, brindle, stored):
        todo = Window(brindle, TODO_LIST)
        for _ in range(2):
            wait_for(lambda: self.is_on(brindle.window, FIRST), "the main window on the first screen")
            self.assertEqual(self.place(brindle.window)[2:], MAIN_PLACE[2:])
            self.open_list(brindle)
            wait_for(lambda: self.is_on(todo.id, FIRST), "the list on the first screen")
            self.assertEqual(self.place(todo.id)[2:], LIST_PLACE[2:])
            stays(lambda: [self.home.stored_place(name) for name
                           in ("HierarchyWindow", "TodoListWindow")] == stored,
                  "the stored places", LONGER_THAN_THE_PAUSE_BEFORE_STORING)
            self.close(todo)
            brindle.keys("Escape")
            brindle.wait_until_hidden()
            brindle.bring_back()

    def test_once_the_user_has_moved_it_there_it_stays_there(self):
        brindle = self.start_on_second_screen()
        self.quit(brindle)
        self.desktop.unplug_second_screen()
        brindle = self.start()
        wait_for(lambda: self.is_on(brindle.window, FIRST), "on the first screen")
        stays(brindle.is_shown, "shown", LONGER_THAN_THE_PAUSE_BEFORE_STORING)
        self.move(brindle.window, (200, 150, 431, 277), "HierarchyWindow")
        self.quit(brindle)
        self.desktop.plug_second_screen()
        brindle = self.start()
        self.expect_place(brindle.window, (200, 150, 431, 277), "where the user put it")

    def test_a_place_below_the_lower_screen_is_within_reach(self):
        # On the taller screen beside it that height would be in sight.
        path = datafile.create(self.home.path("work.bdl"), "One")
        self.home.write_settings("[General]\nautomaticactivation=false\n\n"
                                 "[HierarchyWindow]\npos=@Point(1600 700)\nsize=@Size(400 220)\n\n"
                                 f"[loadfiles]\n0={path}\n")
        brindle = self.start()
        wait_for(lambda: self.is_on(brindle.window, SECOND), "the window on the second screen")
        stays(lambda: self.is_on(brindle.window, SECOND)
              and self.home.stored_place() == (1600, 700, 400, 220), "the stored place",
              LONGER_THAN_THE_PAUSE_BEFORE_STORING)


if __name__ == "__main__":
    main()
