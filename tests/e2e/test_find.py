# SPDX-License-Identifier: MIT
"""Finding with real keys: while typing, in the chosen file, with the mistakes that people make."""

import contextlib

from brindle_e2e import datafile
from brindle_e2e.brindle import middle
from brindle_e2e.case import main
from brindle_e2e.datafile import Entry
from brindle_e2e.waiting import stays, wait_for, wait_for_value
from brindle_e2e.windows import FIND, TODO_LIST, Window, WindowsTestCase

ERROR = "there is an error in your query"
LONG = "Zucchini " + "and many more words " * 8


class FindTestCase(WindowsTestCase):
    def start_with_garden(self, *more_paths):
        self.path = datafile.create(
            self.home.path("garden.bdl"),
            Entry("Beds", "Plant carrots", "Plant onions", "Water the planters"),
            Entry("Tools", "Oil the spade"), LONG)
        return self.start_quietly(self.path, *more_paths)

    def open_find(self, brindle):
        return self.open(brindle, "ctrl+f", FIND)

    def query(self, find):
        return find.part("text").text

    def search(self, find, text):
        """Replaces the query by typing and waits until it stands there."""
        find.brindle.keys("ctrl+a", "BackSpace")
        find.brindle.write(text)
        wait_for_value(lambda: self.query(find), text, "the query")


    @contextlib.contextmanager
    def held(self, key):
        self.desktop.press(key)
        try:
            yield
        finally:
            self.desktop.release(key)


class Searching(FindTestCase):
    def test_every_letter_typed_finds_and_the_last_word_is_a_prefix(self):
        brindle = self.start_with_garden()
        find = self.open_find(brindle)
        self.assertTrue(find.part("text").has("focused"))
        for text, count in (("pl", 3), ("plan", 3), ("plant ", 2), ("plant car", 1), ("plantx", 0)):
            with self.subTest(query=text):
                self.search(find, text)
                wait_for_value(lambda: len(find.rows()), count, f"the results of {text!r}")
        self.search(find, "plant car")
        find.expect(["{Plant} {carrots}"], "{Plant} {carrots}")
        self.picture("find")
        self.search(find, "PLANT")
        wait_for_value(lambda: len(find.rows()), 2, "capital letters are whole words")
        self.search(find, "zucch")
        row = wait_for(find.rows, "the long result")[0]
        self.assertTrue(row.startswith("{Zucchini} and many"), row)
        self.assertTrue(row.endswith(" ..."), row)
        self.assertEqual(len(row), 84)

    def test_return_held_jumps_and_goes_no_further(self):
        brindle = self.start_with_garden()
        find = self.open_find(brindle)
        with self.held("s"):
            wait_for(lambda: self.query(find).startswith("sss"), "a keyboard that repeats keys")
        self.search(find, "spade")
        find.expect(["Oil the {spade}"], "Oil the {spade}")
        with self.held("Return"):
            brindle.expect_text("Oil the spade")
            stays(brindle.is_shown, "the main window", 1.5)
        brindle.wait_until_in_front()
        brindle.save_and_hide()

    def test_a_malformed_query_gives_one_grey_row_that_cannot_be_taken(self):
        brindle = self.start_with_garden()
        find = self.open_find(brindle)
        for text in ('"plant', "plant AND", "(plant"):
            with self.subTest(query=text):
                self.search(find, "plant")
                wait_for_value(lambda: len(find.rows()), 3, "results before")
                self.search(find, text)
                find.expect([ERROR])
                self.assertEqual(find.selected(), [])
                brindle.keys("Down", "Up", "Return")
                find.stays_shown(0.4)
                self.assertEqual(find.selected(), [])
        self.assertTrue(self.shows_darkgray(find))
        self.picture("find-error")
        self.search(find, "spade")
        find.expect(["Oil the {spade}"], "Oil the {spade}")

    def shows_darkgray(self, find):
        x, y, width, height = find.spot(find.items()[0])
        colours = {self.desktop.screen.colour_at(column, y + height // 2 + row)
                   for column in range(x, x + 200) for row in (-2, 0, 2)}
        return "#a9a9a9" in colours

    def test_arrows_choose_and_return_the_keypads_enter_and_a_double_click_jump(self):
        brindle = self.start_with_garden()
        for how in ("Return", "KP_Enter", "double click"):
            with self.subTest(how=how):
                find = self.open_find(brindle)
                self.search(find, "plan")
                rows = wait_for(lambda: len(find.rows()) == 3 and find.rows(), "three results")
                # Beyond both ends the selection stays.
                brindle.keys("Up")
                find.expect(rows, rows[0])
                brindle.keys("Down", "Down", "Down", "Up")
                find.expect(rows, rows[1])
                self.take(find, find.items()[1], how)
                find.wait_until_hidden()
                brindle.wait_until_in_front()
                brindle.expect(text=rows[1].replace("{", "").replace("}", ""), parent="Beds")
                brindle.go("ctrl+h", "Beds")

    def take(self, find, item, how):
        if how != "double click":
            find.brindle.keys(how)
            return
        x, y, _, height = find.spot(item)
        self.desktop._xdotool("mousemove", str(x + 10), str(y + height // 2),
                              "click", "--repeat", "2", "--delay", "60", "1")
        self.desktop.park_pointer()

    def test_nothing_found_and_nothing_typed_leave_return_without_effect(self):
        brindle = self.start_with_garden()
        find = self.open_find(brindle)
        brindle.keys("Return")
        find.stays_shown(0.4)
        self.search(find, "nowhere")
        find.expect([])
        brindle.keys("Return", "Down", "Up")
        find.stays_shown(0.4)
        self.close(find)


class TheQueryLine(FindTestCase):
    def test_bound_keys_are_not_taken_by_the_lines_own_editing(self):
        brindle = self.start_with_garden()
        find = self.open_find(brindle)
        self.search(find, "plant car")
        brindle.keys("Home", "ctrl+k", "ctrl+d", "ctrl+h", "ctrl+j", "ctrl+o", "ctrl+t", "ctrl+w")
        stays(lambda: self.query(find) == "plant car" and find.is_shown(), "the query", 0.5)
        # Ctrl+E means the to-do list here, not the end of the line.
        brindle.keys("ctrl+e")
        Window(brindle, TODO_LIST).wait_until_in_front()
        brindle.keys("ctrl+f")
        find.wait_until_in_front()
        self.assertEqual(self.query(find), "plant car")
        # The line's other keys are its own.
        brindle.keys("End", "ctrl+BackSpace")
        wait_for_value(lambda: self.query(find), "plant ", "the query without its last word")

    def test_opened_again_its_query_is_selected_and_searched_again(self):
        brindle = self.start_with_garden()
        brindle.go("ctrl+l", "Beds")
        find = self.open_find(brindle)
        self.search(find, "spade")
        find.expect(["Oil the {spade}"])
        self.close(find)
        brindle.go("ctrl+j", "Tools")
        brindle.go("ctrl+l", "Oil the spade")
        brindle.write_entry("Sell the spade")
        brindle.go("ctrl+h", "Tools")
        self.open_find(brindle)
        find.expect(["Sell the {spade}"])
        brindle.write("carr")
        wait_for_value(lambda: self.query(find), "carr", "what was typed in place of the old query")
        find.expect(["Plant {carrots}"])


class Files(FindTestCase):
    def choose(self, find, name):
        """Opens the file menu with the mouse and takes a file, in one go."""
        def shown():
            for part in find.brindle._application().children_or_none():
                for item in part.shown():
                    if item.role == "list item" and item.name == name:
                        return item
            return None

        # A click could be slow to the program, and so end the menu that it opens.
        self.desktop.hold_button(*middle(find.spot(find.part("combo box"))))
        item = wait_for(shown, f"{name} in the menu")
        self.desktop.let_button_go(*middle(item.extents))

    def test_with_two_files_the_chosen_one_is_searched(self):
        second = datafile.create(self.home.path("work.bdl"), "Plant a seed of doubt", "Call")
        brindle = self.start_with_garden(second)
        find = self.open_find(brindle)
        self.search(find, "plant")
        self.choose(find, "work.bdl")
        find.expect(["{Plant} a seed of doubt"])
        self.picture("find-two-files")
        self.assertTrue(find.part("text").has("focused"))
        brindle.keys("Return")
        find.wait_until_hidden()
        brindle.expect(text="Plant a seed of doubt", parent="work.bdl")
        self.open_find(brindle)
        self.choose(find, "garden.bdl")
        wait_for_value(lambda: len(find.rows()), 3, "the results in the other file")

    def test_without_a_file_it_finds_nothing_and_is_quiet(self):
        brindle = self.start_quietly()
        find = self.open_find(brindle)
        self.search(find, "plant")
        find.expect([])
        brindle.keys("Return")
        find.stays_shown(0.4)
        self.assertEqual([part for part in find.node.shown() if part.role == "combo box"], [])
        self.close(find)


if __name__ == "__main__":
    main()
