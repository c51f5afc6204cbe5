# SPDX-License-Identifier: MIT
"""Where the window stands, and that nothing but the user moves or widens it."""

from brindle_e2e import datafile
from brindle_e2e.case import BrindleTestCase, main
from brindle_e2e.datafile import Entry
from brindle_e2e.waiting import stays, wait_for, wait_for_value
from brindle_e2e.windows import (FIND, HELP, OPENING_KEYS, REPORT_RANGE, SETTINGS, TODO_LIST,
                                 Window, WindowsTestCase)

STORED_NAMES = {TODO_LIST: "TodoListWindow", FIND: "FindWindow"}
RESIZABLE = (TODO_LIST, FIND)
FIRST_SHOWN = {SETTINGS: "Settings", HELP: "HelpWindow", REPORT_RANGE: "CreateReport", **STORED_NAMES}


def in_pixels(desktop, place):
    """A place that is meant in the program's own measure."""
    return tuple(value * desktop.screen.scale for value in place)


def is_close(desktop, place, wanted):
    """Whether two places are the same in the program's own measure, in which it stores them. Scaled,
    a frame can stand half of such a pixel aside."""
    slack = desktop.screen.scale - 1
    return all(abs(a - b) <= slack for a, b in zip(place, wanted))


class Places(BrindleTestCase):
    def place(self, brindle):
        return self.desktop.screen.place(brindle.window)

    def start_and_move(self, *place):
        wanted = in_pixels(self.desktop, place)
        path = datafile.create(self.home.path("tasks.bdl"), "First")
        brindle = self.start_with(path)
        before = self.home.stored_place()
        self.desktop.screen.move_resize(brindle.window, *wanted)
        wait_for_value(lambda: self.place(brindle), wanted, "the window where the user put it")
        wait_for(lambda: self.home.stored_place() not in (None, before), "the place in the settings")
        wait_for_value(lambda: self.home.stored_place()[2:], place[2:], "the stored size")
        return brindle

    def test_twenty_rounds_of_hiding_and_a_restart_move_nothing_by_a_pixel(self):
        brindle = self.start_and_move(137, 191, 431, 277)
        wanted = self.place(brindle)
        stored = self.home.stored_place()
        for round_number in range(20):
            brindle.keys("Escape")
            brindle.wait_until_hidden()
            brindle.bring_back()
            wait_for_value(lambda: self.place(brindle), wanted, f"the place in round {round_number}")
        self.assertEqual(brindle.quit(), 0)
        brindle = self.start()
        self.check_close(brindle, wanted, "the place after the restart")
        place = self.place(brindle)
        stays(lambda: self.place(brindle) == place, "the place stays", 1)
        self.assertEqual(self.home.stored_place(), stored)

    def test_hiding_right_after_a_move_forgets_nothing(self):
        brindle = self.start_and_move(137, 191, 431, 277)
        wanted = in_pixels(self.desktop, (300, 250, 500, 240))
        self.desktop.screen.move_resize(brindle.window, *wanted)
        wait_for_value(lambda: self.place(brindle), wanted, "the new place")
        brindle.keys("Escape")
        brindle.wait_until_hidden()
        brindle.bring_back()
        wait_for_value(lambda: self.place(brindle), wanted, "the new place again")

    def test_a_stored_place_off_every_screen_is_shown_on_one_and_kept_in_the_settings(self):
        path = datafile.create(self.home.path("tasks.bdl"), "First")
        self.home.write_settings("[General]\nautomaticactivation=false\n\n"
                                 "[HierarchyWindow]\npos=@Point(5000 4000)\nsize=@Size(400 220)\n\n"
                                 f"[loadfiles]\n0={path}\n")
        brindle = self.start()
        width, height = wait_for(lambda: self.place(brindle), "the window")[2:]
        self.assertEqual((width, height), in_pixels(self.desktop, (400, 220)))
        right, bottom = in_pixels(self.desktop, (1280, 800))
        wait_for(lambda: self.is_inside(brindle, right, bottom), "the window on the screen")
        # Longer than the pause after which a move would be stored.
        stays(lambda: self.home.stored_place() == (5000, 4000, 400, 220), "the stored place", 2)

    def is_inside(self, brindle, right, bottom):
        x, y, width, height = self.place(brindle)
        return 0 <= x <= right - width and 0 <= y <= bottom - height

    def test_a_place_between_two_of_the_programs_pixels_never_wanders_off(self):
        brindle = self.start_and_move(137, 191, 431, 277)
        x, y, *size = self.place(brindle)
        odd = (x + 1, y + 1, *size)
        self.desktop.screen.move_resize(brindle.window, *odd)
        wait_for_value(lambda: self.place(brindle), odd, "the window on odd pixels")
        stays(brindle.is_shown, "longer than the pause before storing", 1)
        for round_number in range(10):
            brindle.keys("Escape")
            brindle.wait_until_hidden()
            brindle.bring_back()
            self.check_close(brindle, odd, f"in round {round_number}")
        self.assertEqual(brindle.quit(), 0)
        for start in range(3):
            brindle = self.start()
            stays(brindle.is_shown, "longer than the pause before storing", 1)
            self.check_close(brindle, odd, f"in start {start}")
            brindle.keys("ctrl+q")
            self.assertEqual(brindle.wait_for_exit(), 0)

    def check_close(self, brindle, wanted, what):
        wait_for(lambda: is_close(self.desktop, self.place(brindle), wanted),
                 lambda: f"{what}: about {wanted}, was {self.place(brindle)}")

    def test_long_texts_around_never_widen_the_window(self):
        long = "A neighbour whose text goes on and on " * 8
        path = datafile.create(self.home.path("a" * 90 + ".bdl"), Entry(long, long + "child",
                               "Short", long + "last"), long + "next")
        brindle = self.start_with(path)
        start = self.place(brindle)
        for key in ("ctrl+l", "ctrl+l", "ctrl+j", "ctrl+j", "ctrl+h", "ctrl+j", "ctrl+k", "ctrl+h"):
            mark = brindle.log_mark()
            brindle.keys(key)
            brindle.wait_for_log("brindle.ui.commands", mark)
            brindle.wait_until_in_front()
            self.assertEqual(self.place(brindle), start, f"after {key}")
        stays(lambda: self.place(brindle) == start, "the size stays", 1)


class ToolWindowPlaces(WindowsTestCase):
    def start_on_work(self):
        return self.start_quietly(datafile.create(self.home.path("work.bdl"), "One"))

    def test_windows_of_fixed_size_never_wander_between_showings_and_starts(self):
        brindle = self.start_on_work()
        places = {}
        for start in range(3):
            for title in (HELP, SETTINGS, REPORT_RANGE):
                for showing in range(2):
                    with self.subTest(window=title, start=start, showing=showing):
                        window = self.open(brindle, OPENING_KEYS[title], title)
                        # The window manager frames it, and its place is stored after a while.
                        stays(window.is_shown, "longer than the pause before storing", 0.8)
                        place = self.desktop.screen.place(window.id)
                        first = places.setdefault(title, place)
                        self.assertTrue(is_close(self.desktop, place, first), (place, first))
                        self.close(window)
            brindle.keys("ctrl+q")
            self.assertEqual(brindle.wait_for_exit(), 0)
            brindle = self.start()

    def test_a_place_that_nobody_chose_is_never_off_the_screen_nor_stored_so(self):
        brindle = self.start_on_work()
        for title, name in FIRST_SHOWN.items():
            with self.subTest(window=title):
                # At once: later it would be the user who puts it there.
                brindle.keys(OPENING_KEYS[title])
                window = Window(brindle, title)
                size = self.desktop.screen.place(wait_for(lambda: window.id, title))[2:]
                # What comes of a place within the frame that is taken for one on the screen.
                self.desktop.screen.move_resize(window.id, 0, 0, *size)
                window.wait_until_in_front()
                wait_for(lambda: self.desktop.screen.place(window.id)[1] > 7, "its title bar in sight")
                stored = wait_for(lambda: self.home.stored_place(name), "its place stored")
                self.assertGreaterEqual(min(stored[:2]), 0)
                self.close(window)

    def test_the_lists_come_back_at_their_places_also_after_a_restart(self):
        brindle = self.start_on_work()
        places = {}
        for index, title in enumerate(RESIZABLE):
            window = self.open(brindle, OPENING_KEYS[title], title)
            place = (60 + 20 * index, 90 + 10 * index, 333, 222)
            places[title] = in_pixels(self.desktop, place)
            self.desktop.screen.move_resize(window.id, *places[title])
            wait_for_value(lambda: self.desktop.screen.place(window.id), places[title],
                           f"{title} moved")
            stays(window.is_shown, "longer than the pause before storing", 0.8)
            # The window manager's frame is 16 to 40 pixels high.
            stored = wait_for(lambda: self.home.stored_place(STORED_NAMES[title]), "its place stored")
            self.assertEqual(stored[2:], place[2:])
            self.assertTrue(0 <= place[0] - stored[0] < 10 and 7 < place[1] - stored[1] < 45,
                            (stored, place))
            self.close(window)
        for round_number in range(2):
            for title in RESIZABLE:
                with self.subTest(window=title, round=round_number):
                    window = self.open(brindle, OPENING_KEYS[title], title)
                    def is_there():
                        return is_close(self.desktop, self.desktop.screen.place(window.id),
                                        places[title])

                    wait_for(is_there, lambda: f"{title} at {places[title]}, was"
                                               f" {self.desktop.screen.place(window.id)}")
                    # It does not wander off either, nor is another place stored.
                    stays(is_there, f"the place of {title}", 0.7)
                    self.close(window)
            if round_number == 0:
                brindle.keys("ctrl+q")
                self.assertEqual(brindle.wait_for_exit(), 0)
                brindle = self.start()


if __name__ == "__main__":
    main()
