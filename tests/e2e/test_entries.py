# SPDX-License-Identifier: MIT
"""Working on entries by keyboard: outlines, states, shortcut keys, where the keyboard is."""

from brindle_e2e import datafile
from brindle_e2e.case import BrindleTestCase, main
from brindle_e2e.datafile import CATEGORY, DONE, Entry
from brindle_e2e.waiting import stays, wait_for
from brindle_e2e.windows import FIND, HELP, REPORT_RANGE, SETTINGS, TODO_LIST, Window

BLUE, GREY, YELLOW = "#4466ff", "#888888", "#ffcc44"


class Outlines(BrindleTestCase):
    def test_three_levels_by_keyboard_alone(self):
        path = datafile.create(self.home.path("tasks.bdl"))
        brindle = self.start_with(path)
        brindle.go("ctrl+l", "")
        brindle.write_entry("Garden")
        brindle.go("ctrl+l", "")
        brindle.write_entry("Beans")
        brindle.go("ctrl+l", "")
        brindle.write_entry("Dig")
        brindle.go("ctrl+j", "")
        brindle.write_entry("Sow")
        brindle.go("ctrl+h", "Beans")
        brindle.expect(has_children=True)
        brindle.go("ctrl+n", "")
        brindle.write_entry("Peas")
        brindle.go("ctrl+k", "Beans")
        brindle.go("ctrl+k", "")  # a new one above the first
        brindle.write_entry("Fence")
        brindle.save_and_hide()
        self.assertEqual(datafile.outline(path)[0][1],
                         [["Garden", [["Fence", []], ["Beans", [["Dig", []], ["Sow", []]]],
                                      ["Peas", []]]]])

    def test_an_empty_new_entry_leaves_no_trace(self):
        path = datafile.create(self.home.path("tasks.bdl"), "First")
        brindle = self.start_with(path)
        brindle.go("ctrl+l", "First")
        brindle.go("ctrl+j", "")
        brindle.go("ctrl+k", "First")
        brindle.expect(following="")
        brindle.keys("ctrl+q")
        self.assertEqual(brindle.wait_for_exit(), 0)
        self.assertEqual(datafile.texts(path), {"First"})

    def test_marking_done_goes_to_the_next_open_one_and_at_last_to_the_parent(self):
        path = datafile.create(self.home.path("tasks.bdl"), Entry("Parent", "A", "B"))
        brindle = self.start_with(path)
        brindle.go("ctrl+l", "Parent")
        brindle.go("ctrl+l", "A")
        brindle.go("ctrl+d", "B")
        brindle.go("ctrl+d", "Parent")
        brindle.go("ctrl+l", "B")
        view = brindle.view()
        self.assertEqual((view.state, view.preceding_state), ("done", "done"))
        self.assertTrue(view.done_date)

    def test_the_state_bars_have_the_colours_of_the_states(self):
        path = datafile.create(self.home.path("tasks.bdl"), "Open")
        brindle = self.start_with(path)
        brindle.go("ctrl+l", "Open")
        for key, state, colour in (("ctrl+d", "done", GREY), ("ctrl+shift+d", "won't do", YELLOW),
                                   ("ctrl+t", "to-do", BLUE)):
            brindle.keys(key)
            brindle.expect(state=state)
            wait_for(lambda: brindle.colour_of_state_bar() == colour, f"{colour} for {state}")

    def test_texts_that_look_like_markup_are_shown_as_typed(self):
        tricky = "<b>bold</b> & <i>co</i> &amp; <br>"
        path = datafile.create(self.home.path("a&b <u>x.bdl"),
                               Entry(tricky + "1", tricky + "c"), tricky + "2", tricky + "3")
        brindle = self.start_with(path)
        self.assertIn("a&b <u>x.bdl", brindle.view().file)
        brindle.go("ctrl+l", tricky + "1")
        brindle.go("ctrl+j", tricky + "2")
        brindle.expect(preceding=tricky + "1", following=tricky + "3")
        brindle.go("ctrl+k", tricky + "1")
        brindle.go("ctrl+l", tricky + "c")
        brindle.expect(parent=tricky + "1")

    def test_refused_commands_change_nothing(self):
        path = datafile.create(self.home.path("tasks.bdl"), Entry("Only", "Child"))
        brindle = self.start_with(path)
        brindle.go("ctrl+l", "Only")
        before = brindle.view()
        for key in ("ctrl+t", "ctrl+shift+h", "ctrl+shift+k", "ctrl+shift+j", "ctrl+shift+l",
                    "ctrl+shift+bracketleft", "ctrl+shift+bracketright"):
            mark = brindle.log_mark()
            brindle.keys(key)
            brindle.wait_for_log("brindle.ui.commands", mark)
            self.assertEqual(brindle.view(), before, key)
        # An entry with children cannot be deleted by clearing it.
        brindle.keys("ctrl+a", "Delete", "ctrl+j")
        brindle.expect(text="", parent="tasks.bdl")
        brindle.write("Only")
        brindle.expect_text("Only")
        brindle.keys("ctrl+q")
        self.assertEqual(brindle.wait_for_exit(), 0)


class ShortcutKeys(BrindleTestCase):
    def start_on_first(self, *entries):
        self.path = datafile.create(self.home.path("tasks.bdl"), *(entries or ("First", "Second")))
        brindle = self.start_with(self.path)
        brindle.go("ctrl+l", "First")
        return brindle

    def enter_register_mode(self, brindle):
        mark = brindle.log_mark()
        brindle.keys("ctrl+s")
        brindle.wait_for_log("brindle.ui.commands: command 21\n", mark)

    def check_typing_works(self, brindle, text="First", key=""):
        """The mode is over: a letter goes into the text."""
        brindle.write("z")
        brindle.expect(text=text + "z", key=key)
        brindle.keys("BackSpace")
        brindle.expect_text(text)

    def test_bind_jump_rebind_and_remove(self):
        brindle = self.start_on_first(Entry("First", "Below"), "Second")
        self.enter_register_mode(brindle)
        brindle.keys("f")
        brindle.expect(key="F", text="First")
        brindle.go("ctrl+j", "Second")
        brindle.go("alt+f", "Below")  # to the bound entry's first open child
        brindle.expect(parent="First", parent_key="F")
        brindle.go("ctrl+h", "First")
        self.enter_register_mode(brindle)
        brindle.keys("F5")
        brindle.expect(key="F5")
        brindle.go("ctrl+j", "Second")
        brindle.go("alt+F5", "Below")
        brindle.go("ctrl+h", "First")
        self.enter_register_mode(brindle)
        brindle.keys("BackSpace")
        brindle.expect(key="", text="First")
        brindle.save_and_hide()
        self.assertIsNone(datafile.row(self.path, "First")["key"])

    def test_shift_alone_is_not_bound_and_shift_with_a_letter_cancels(self):
        brindle = self.start_on_first()
        for modifier in ("Shift_L", "Control_R", "Alt_L", "Caps_Lock", "Num_Lock"):
            with self.subTest(modifier=modifier):
                self.enter_register_mode(brindle)
                brindle.keys(modifier, modifier, "Escape")  # twice: locks are off again
                self.check_typing_works(brindle)
        self.enter_register_mode(brindle)
        brindle.keys("shift+x")
        self.check_typing_works(brindle)
        # The mode goes on after a modifier's press and release.
        self.enter_register_mode(brindle)
        brindle.keys("Shift_L", "x")
        brindle.expect(key="X", text="First")

    def test_escape_cancels(self):
        brindle = self.start_on_first()
        self.enter_register_mode(brindle)
        brindle.keys("Escape")
        self.check_typing_works(brindle)
        self.assertTrue(brindle.is_shown())

    def test_the_keys_held_down_leave_the_mode_on(self):
        brindle = self.start_on_first()
        mark = brindle.log_mark()
        self.desktop.press("ctrl", "s")
        self.addCleanup(self.desktop.release, "s", "ctrl")
        brindle.wait_for_log("brindle.ui.commands: command 21\n", mark)
        stays(lambda: brindle.text == "First", "nothing typed", 1.5)
        self.desktop.release("s", "ctrl")
        brindle.keys("k")
        brindle.expect(key="K", text="First")

    def test_a_key_that_another_entry_holds_is_refused_and_the_next_is_taken(self):
        brindle = self.start_on_first("First", Entry("Second", key=ord("Q"), key_text="Q"))
        self.enter_register_mode(brindle)
        brindle.keys("q", "w")
        brindle.expect(key="W", text="First")
        brindle.go("alt+q", "Second")
        brindle.go("alt+w", "First")

    def test_a_jump_to_a_key_that_nothing_holds_changes_nothing(self):
        brindle = self.start_on_first()
        brindle.keys("alt+j")
        self.check_typing_works(brindle)

    def test_return_and_letters_with_meaning_elsewhere_can_be_bound(self):
        brindle = self.start_on_first()
        self.enter_register_mode(brindle)
        brindle.keys("Return")
        brindle.expect(key="Return", text="First")
        brindle.go("ctrl+j", "Second")
        brindle.go("alt+Return", "First")

    def test_a_key_bound_in_two_files_asks_which_one_is_meant(self):
        paths = [datafile.create(self.home.path(f"{name}.bdl"),
                                 Entry(f"Salt & {name}, and very long", key=ord("S"), key_text="S"))
                 for name in ("pepper", "oil")]
        brindle = self.start_with(*paths)
        brindle.keys("alt+s")
        box = brindle.wait_for_box("That shortcut is bound to entries in multiple files.")
        names = [part.name for part in box.node.shown() if part.role == "push button"]
        self.assertIn("Cancel", [name.replace("&", "") for name in names])
        self.assertEqual(len(names), 3)
        salt = [part for part in box.node.shown() if part.name.startswith("Salt ")]
        self.assertEqual(len(salt), 2)
        brindle.keys("Escape")
        wait_for(lambda: not box.node.has("showing"), "the box gone")
        brindle.expect_text("pepper.bdl")
        brindle.keys("alt+s")
        box = brindle.wait_for_box("That shortcut is bound to entries in multiple files.")
        brindle.answer(box, next(name for name in box.buttons if "oil" in name))
        brindle.expect_text("Salt & oil, and very long")
        brindle.wait_until_in_front()


WINDOWS = {"ctrl+e": TODO_LIST, "ctrl+f": FIND, "ctrl+r": REPORT_RANGE, "ctrl+comma": SETTINGS,
           "ctrl+slash": HELP}


class Keyboard(BrindleTestCase):
    """Where the keyboard is: in the editor, after every command and every click."""

    def test_the_editor_has_it_after_every_command_of_a_long_walk(self):
        path = datafile.create(self.home.path("tasks.bdl"),
                               Entry("Group", "A", Entry("B", state=DONE), "C", state=CATEGORY), "D")
        brindle = self.start_with(path)
        for key in ("ctrl+l", "ctrl+l", "ctrl+j", "ctrl+t", "ctrl+shift+d", "ctrl+d", "ctrl+o",
                    "ctrl+shift+k", "ctrl+shift+j", "ctrl+shift+bracketright",
                    "ctrl+shift+bracketleft", "ctrl+bracketright", "ctrl+bracketleft", "ctrl+k",
                    "ctrl+n", "ctrl+h", "ctrl+shift+l", "ctrl+shift+h", "ctrl+equal", "ctrl+r",
                    "ctrl+comma", "ctrl+e", "ctrl+f", "ctrl+slash", "ctrl+period",
                    "ctrl+shift+BackSpace"):
            mark = brindle.log_mark()
            brindle.keys(key)
            brindle.wait_for_log("brindle.ui.commands: command", mark)
            with self.subTest(key=key):
                if key in WINDOWS:
                    # They have the keyboard until they go.
                    window = Window(brindle, WINDOWS[key]).wait_until_in_front()
                    brindle.keys("Escape")
                    window.wait_until_hidden()
                brindle.wait_until_in_front(5)

    def test_the_buttons_never_take_it(self):
        path = datafile.create(self.home.path("tasks.bdl"), "First")
        brindle = self.start_with(path)
        brindle.keys("ctrl+n")
        brindle.expect(panel=True)
        for name, title in (("Open file", "Open an existing file"),
                            ("Create file", "Create a new file")):
            brindle.click_button(name)
            wait_for(lambda: brindle.dialog(title), title)
            wait_for(lambda: self.desktop.screen.title(self.desktop.screen.active_window())
                     == title, "the dialog in front")
            brindle.keys("Escape")
            brindle.wait_until_in_front()
            self.assertFalse(brindle.button(name).has("focused"), name)
        brindle.go("ctrl+k", "tasks.bdl")
        for keys in (["Tab"], ["shift+Tab"], ["Tab", "Tab", "Tab"]):
            brindle.keys(*keys)
            brindle.wait_until_in_front()
        brindle.write_entry("tasks.bdl")
        brindle.click_button("Close")
        brindle.expect(panel=True)

    def test_keys_pressed_at_the_panel_change_nothing_hidden(self):
        path = datafile.create(self.home.path("tasks.bdl"), "First")
        brindle = self.start_with(path)
        brindle.keys("ctrl+n")
        brindle.expect(panel=True)
        brindle.write("invisible")
        brindle.go("ctrl+k", "tasks.bdl")
        brindle.keys("ctrl+q")
        self.assertEqual(brindle.wait_for_exit(), 0)
        self.assertEqual(datafile.texts(path), {"First"})


if __name__ == "__main__":
    main()
