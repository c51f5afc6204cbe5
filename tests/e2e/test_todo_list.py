# SPDX-License-Identifier: MIT
"""The to-do list with real keys and a real mouse: adding, dragging, removing, jumping, finishing."""

from brindle_e2e import datafile
from brindle_e2e.case import main
from brindle_e2e.datafile import Entry
from brindle_e2e.waiting import stays, wait_for_value
from brindle_e2e.windows import (TODO_LIST, Window, WindowsTestCase, put_on_list,
                                 todo_list)

ROWS = ["Bread", "Cheese", "Tea", "Salt", "Rice"]


class TodoListTestCase(WindowsTestCase):
    def start_with_list(self, *rows):
        self.path = datafile.create(self.home.path("shop.bdl"), *ROWS)
        put_on_list(self.path, *rows)
        return self.start_quietly(self.path)

    def open_list(self, brindle):
        return self.open(brindle, "ctrl+e", TODO_LIST)

    def bring_back_and_quit(self, brindle):
        stays(lambda: not brindle.is_shown(), "hidden for the time that hands need", 0.3)
        brindle.bring_back()
        brindle.keys("ctrl+q")
        self.assertEqual(brindle.wait_for_exit(), 0)


class Adding(TodoListTestCase):
    def test_an_entry_is_put_on_top_and_shown_and_a_second_time_changes_nothing(self):
        brindle = self.start_with_list()
        todo = Window(brindle, TODO_LIST)
        brindle.go("ctrl+l", "Bread")
        for keys, text, rows in (("ctrl+equal", "Bread", ["Bread"]),
                                 ("ctrl+shift+equal", "Cheese", ["Cheese", "Bread"]),
                                 ("ctrl+equal", "Tea", ["Tea", "Cheese", "Bread"])):
            with self.subTest(keys=keys, entry=text):
                brindle.expect_text(text)
                brindle.keys(keys)
                todo.wait_until_in_front().expect(rows, text)
                self.close(todo)
                brindle.keys("ctrl+j")
        brindle.go("ctrl+bracketleft", "Bread")
        brindle.keys("ctrl+equal")
        todo.wait_until_in_front().expect(["Tea", "Cheese", "Bread"], "Bread")
        self.close(todo)
        brindle.save_and_hide()
        self.assertEqual(todo_list(self.path), ["Tea", "Cheese", "Bread"])

    def test_the_text_just_typed_is_what_the_list_shows_and_follows_later_changes(self):
        brindle = self.start_with_list()
        todo = Window(brindle, TODO_LIST)
        brindle.go("ctrl+l", "Bread")
        brindle.write_entry("Rye bread")
        brindle.keys("ctrl+equal")
        todo.wait_until_in_front().expect(["Rye bread"], "Rye bread")
        self.close(todo)
        brindle.write_entry("Wheat bread")
        brindle.go("ctrl+j", "Cheese")
        self.open_list(brindle).expect(["Wheat bread"], "Wheat bread")

    def test_an_empty_list_takes_every_key_quietly(self):
        brindle = self.start_with_list()
        todo = self.open_list(brindle)
        brindle.keys("Delete", "BackSpace", "Up", "Down", "Return")
        todo.stays_shown()
        todo.expect([])
        self.assertEqual(brindle.boxes(), [])
        self.close(todo)


class Dragging(TodoListTestCase):
    def drop(self, todo, text, target, where, rows):
        """Drags a row and finds the rows in the wanted order with the dragged one selected."""
        todo.drag(text, target, where)
        todo.expect(rows, text)

    def test_rows_go_where_they_are_dropped_and_stay_there(self):
        brindle = self.start_with_list(*ROWS)
        todo = self.open_list(brindle)
        todo.expect(ROWS, "Bread")
        self.picture("todo-list")
        for text, target, where, rows in (
                # Onto itself and to both of its own edges: nothing moves.
                ("Cheese", "Cheese", "on", ROWS),
                ("Cheese", "Cheese", "above", ROWS),
                ("Cheese", "Cheese", "below", ROWS),
                ("Cheese", "Tea", "above", ROWS),
                ("Tea", "Cheese", "below", ROWS),
                # To both ends and back, over one row and over several.
                ("Tea", "Bread", "above", ["Tea", "Bread", "Cheese", "Salt", "Rice"]),
                ("Tea", "Rice", "below", ["Bread", "Cheese", "Salt", "Rice", "Tea"]),
                ("Bread", "Salt", "below", ["Cheese", "Salt", "Bread", "Rice", "Tea"]),
                ("Tea", "Salt", "above", ["Cheese", "Tea", "Salt", "Bread", "Rice"]),
                ("Rice", "Cheese", "above", ["Rice", "Cheese", "Tea", "Salt", "Bread"])):
            with self.subTest(row=text, target=target, where=where):
                self.drop(todo, text, target, where, rows)
        # The selection is the dragged row for the keys, too.
        brindle.keys("Down")
        todo.expect(["Rice", "Cheese", "Tea", "Salt", "Bread"], "Cheese")
        self.close(todo)
        brindle.save_and_hide()
        self.assertEqual(todo_list(self.path), ["Rice", "Cheese", "Tea", "Salt", "Bread"])
        self.assertEqual(datafile.integrity(self.path), "ok")
        self.bring_back_and_quit(brindle)
        again = self.start()
        self.open_list(again).expect(["Rice", "Cheese", "Tea", "Salt", "Bread"], "Rice")

    def test_into_the_empty_room_below_the_rows_nothing_is_lost(self):
        brindle = self.start_with_list(*ROWS)
        todo = self.open_list(brindle)
        x, y, width, height = todo.spot(todo.items()[-1])
        first = todo.spot(todo.items()[0])
        self.desktop.drag((first[0] + 20, first[1] + first[3] // 2), (x + 40, y + height + 20))
        stays(lambda: sorted(todo.rows()) == sorted(ROWS), "each row once", 0.5)
        self.assertEqual(todo.selected(), ["Bread"])


class Keys(TodoListTestCase):
    def test_delete_and_backspace_take_rows_off_and_leave_the_entries(self):
        brindle = self.start_with_list(*ROWS)
        todo = self.open_list(brindle)
        for keys, rows, selected in (
                (["Down", "Delete"], ["Bread", "Tea", "Salt", "Rice"], "Tea"),
                (["BackSpace"], ["Bread", "Salt", "Rice"], "Salt"),
                (["shift+Delete"], ["Bread", "Salt", "Rice"], "Salt"),
                (["Home", "Delete"], ["Salt", "Rice"], "Salt")):
            with self.subTest(keys=keys):
                brindle.keys(*keys)
                todo.expect(rows, selected)
        brindle.keys("Down", "Delete")
        todo.expect(["Salt"])
        self.assertEqual(todo.selected(), [])
        brindle.keys("Return")
        todo.stays_shown()
        self.close(todo)
        # Each showing selects a row, so that Enter works at once.
        self.open_list(brindle).expect(["Salt"], "Salt")
        self.close(todo)
        brindle.save_and_hide()
        self.assertEqual(todo_list(self.path), ["Salt"])
        self.assertEqual(datafile.children(self.path, "shop.bdl"), ROWS)

    def test_return_the_keypads_enter_and_a_double_click_jump_and_hide(self):
        brindle = self.start_with_list(*ROWS)
        brindle.go("ctrl+l", "Bread")
        for how, text in (("Return", "Tea"), ("KP_Enter", "Salt")):
            with self.subTest(how=how):
                todo = self.open_list(brindle)
                brindle.keys("Home", *["Down"] * ROWS.index(text))
                todo.expect(ROWS, text)
                brindle.keys(how)
                todo.wait_until_hidden()
                brindle.wait_until_in_front()
                brindle.expect_text(text)
        todo = self.open_list(brindle)
        x, y, width, height = todo.spot(todo.items()[1])
        self.desktop.click(x + 20, y + height // 2)
        todo.expect(ROWS, "Cheese")
        self.desktop._xdotool("mousemove", str(x + 20), str(y + height // 2),
                              "click", "--repeat", "2", "--delay", "60", "1")
        todo.wait_until_hidden()
        brindle.wait_until_in_front()
        brindle.expect_text("Cheese")

    def test_a_jump_to_the_entry_just_cleared_leaves_the_program_usable(self):
        brindle = self.start_with_list(*ROWS)
        brindle.go("ctrl+l", "Bread")
        brindle.write_entry("")
        self.open_list(brindle)
        brindle.keys("Home", "Return")
        wait_for_value(lambda: Window(brindle, TODO_LIST).is_shown(), False, "the list")
        brindle.wait_until_in_front()
        brindle.stays_running()
        self.assertEqual(brindle.boxes(), [])


class Finishing(TodoListTestCase):
    def test_the_top_one_done_brings_up_the_next_and_any_other_one_nothing(self):
        brindle = self.start_with_list("Bread", "Cheese", "Tea", "Salt")
        todo = Window(brindle, TODO_LIST)
        brindle.go("ctrl+l", "Bread")
        brindle.keys("ctrl+d")
        todo.wait_until_in_front().expect(["Cheese", "Tea", "Salt"], "Cheese")
        brindle.keys("Return")
        todo.wait_until_hidden()
        brindle.wait_until_in_front()
        brindle.expect_text("Cheese")
        brindle.go("ctrl+j", "Tea")
        brindle.keys("ctrl+d")
        brindle.expect(preceding="Tea", preceding_state="done")
        stays(lambda: not todo.is_shown(), "the list stays hidden", 1)
        brindle.go("ctrl+bracketleft", "Bread")
        brindle.go("ctrl+j", "Cheese")
        brindle.keys("ctrl+shift+d")
        brindle.expect(state="won't do")
        stays(lambda: not todo.is_shown(), "the list stays hidden after won't do", 1)
        self.open_list(brindle).expect(["Salt"], "Salt")

    def test_discarding_brings_the_lists_old_state_back(self):
        brindle = self.start_with_list("Bread", "Cheese", "Tea")
        todo = self.open_list(brindle)
        brindle.keys("Delete")
        todo.expect(["Cheese", "Tea"], "Cheese")
        brindle.keys("ctrl+shift+BackSpace")
        todo.expect(["Bread", "Cheese", "Tea"])

    def test_rows_of_two_files_stand_in_one_list_and_jump_to_theirs(self):
        work = put_on_list(datafile.create(self.home.path("work.bdl"), "Report", "Call"), "Call")
        home = put_on_list(datafile.create(self.home.path("home.bdl"), Entry("Garden", "Mow")), "Mow")
        brindle = self.start_quietly(work, home)
        todo = self.open_list(brindle)
        # Both files use the same number.
        wait_for_value(lambda: sorted(todo.rows()), ["Call", "Mow"], "the rows of both files")
        order = todo.rows()
        brindle.keys(*(["Down"] if order[0] == "Call" else []), "Return")
        todo.wait_until_hidden()
        brindle.expect(text="Mow", parent="Garden")
        todo = self.open_list(brindle)
        brindle.keys("Home")
        todo.drag(order[0], order[1], "below")
        todo.expect(order[::-1], order[0])
        self.close(todo)
        brindle.save_and_hide()
        self.bring_back_and_quit(brindle)
        self.open_list(self.start()).expect(order[::-1], order[1])


if __name__ == "__main__":
    main()
