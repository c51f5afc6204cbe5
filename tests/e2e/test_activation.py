# SPDX-License-Identifier: MIT
"""Coming to the front and stepping back: the hotkey, the keyboard, other programs, boxes in the way."""

import os
import signal
import time

from brindle_e2e import managers
from brindle_e2e.beside import BesideAnotherProgram
from brindle_e2e.brindle import middle
from brindle_e2e.case import BrindleTestCase, main
from brindle_e2e.desktop import Desktop
from brindle_e2e.waiting import stays, wait_for, wait_until_stays

HOTKEY = "ctrl+alt+space"
SAVE_PROMPT = "Some of your changes have not been saved."


class ActivationTestCase(BesideAnotherProgram, BrindleTestCase):
    def go_to_second_workspace(self):
        self.addCleanup(self.desktop.go_to_first_workspace)
        self.desktop.go_to_second_workspace()

    def open_prompt(self, brindle):
        """Brings the window back and has it ask about unsaved changes: the box, and its window."""
        brindle.bring_back()
        brindle.go("ctrl+l", "First")
        brindle.write_entry("Changed")
        brindle.keys("ctrl+q")
        box = brindle.wait_for_box(SAVE_PROMPT)
        window = wait_for(lambda: self.desktop.screen.find(brindle.pid, "Save changes?"), "the box")
        wait_for(lambda: self.desktop.screen.active_window() == window and box.node.has("active"),
                 "the box in front")
        return box, window

    def check_box_comes_forward(self, brindle, box, window, workspace=0):
        """The hotkey brings the box and its main window, and the box has the keyboard."""
        self.desktop.keys(HOTKEY)
        wait_until_stays(lambda: self.desktop.screen.active_window() == window
                         and box.node.has("active"), "the box in front, with the keyboard", 0.1)
        self.assertFalse(self.desktop.screen.is_minimised(window))
        wait_for(lambda: brindle.window in self.desktop.screen.windows(), "the main window, too")
        self.assertFalse(self.desktop.screen.is_minimised(brindle.window))
        self.assertEqual(self.desktop.screen.current_workspace(), workspace)
        for ours in (brindle.window, window):
            self.assertEqual(self.desktop.screen.workspace(ours), workspace)
        brindle.keys("Escape")
        wait_for(lambda: not box.node.has("showing"), "the box cancelled by a key")
        brindle.wait_until_in_front()
        brindle.expect_text("Changed")


class Hotkey(ActivationTestCase):
    def test_it_brings_the_keyboard_and_escape_gives_it_back(self):
        brindle = self.start_beside()
        for round_number in range(5):
            with self.subTest(round=round_number):
                brindle.bring_back()
                self.desktop.keys("ctrl+a")
                self.desktop.write(f"round {round_number}")
                brindle.expect_text(f"round {round_number}")
                self.desktop.keys("Escape")
                brindle.wait_until_hidden()
                self.other_has_keyboard(f"back again {round_number}")

    def test_the_hotkey_itself_gives_the_keyboard_back_too(self):
        brindle = self.start_beside()
        brindle.bring_back()
        self.desktop.keys(HOTKEY)
        brindle.wait_until_hidden()
        self.other_has_keyboard("hello")

    def test_return_gives_the_keyboard_back_too(self):
        brindle = self.start_beside()
        brindle.bring_back()
        brindle.save_and_hide()
        self.other_has_keyboard("hello")

    def test_what_is_typed_as_soon_as_the_window_is_there_arrives_in_the_editor(self):
        brindle = self.start_beside()
        brindle.bring_back()
        brindle.go("ctrl+l", "First")
        self.desktop.keys("Escape")
        brindle.wait_until_hidden()
        for round_number in range(5):
            self.desktop.keys(HOTKEY)
            # No look at the editor before typing: only the window manager's word that we are in front.
            wait_for(lambda: self.desktop.screen.active_window() == brindle.window, "in front")
            self.desktop.write("x")
            brindle.expect_text("First" + "x" * (round_number + 1))
            self.desktop.keys("Escape")
            brindle.wait_until_hidden()
        self.assertEqual(self.other.lines(), [])

    def test_pressed_twice_as_fast_as_can_be_it_leaves_the_window_with_the_keyboard(self):
        brindle = self.start_beside()
        brindle.bring_back()
        for _ in range(3):
            self.desktop.keys(HOTKEY, HOTKEY)
            # It is there before the presses have had their effect, too.
            wait_until_stays(lambda: brindle.has_front() and brindle.has_keyboard(),
                             "the window in front, with the keyboard", 0.5)

    def test_it_works_whatever_the_lock_keys_are(self):
        brindle = self.start_beside()
        for locks in (["Num_Lock"], ["Caps_Lock"], ["Num_Lock", "Caps_Lock"], ["Scroll_Lock"]):
            with self.subTest(locks=locks):
                self.desktop.keys(*locks)
                try:
                    self.desktop.press("ctrl", "alt")
                    self.desktop.keys("65")  # the space bar
                    self.desktop.release("alt", "ctrl")
                    wait_for(lambda: brindle.is_shown(), "the main window")
                    brindle.wait_until_in_front()
                    self.desktop.keys("Escape")
                    brindle.wait_until_hidden()
                finally:
                    self.desktop.keys(*locks)

    def test_it_works_after_the_keyboard_layout_has_changed(self):
        brindle = self.start_beside()
        self.addCleanup(self.desktop.layout, "-layout", "us", "-option", "")
        for layout in ("de", "ru", "us"):
            with self.subTest(layout=layout):
                self.desktop.layout("-layout", layout)
                self.desktop.keys("ctrl+alt+65")
                wait_for(lambda: brindle.is_shown(), "the main window")
                brindle.wait_until_in_front()
                self.desktop.keys("ctrl+alt+65")
                brindle.wait_until_hidden()

    def test_held_down_it_counts_once(self):
        brindle = self.start_beside()
        self.desktop.press("ctrl", "alt", "space")
        self.addCleanup(self.desktop.release, "space", "alt", "ctrl")
        brindle.wait_until_in_front()
        stays(brindle.is_shown, "the main window stays while the hotkey is held", 2)
        self.desktop.release("space", "alt", "ctrl")
        brindle.wait_until_in_front()
        self.desktop.press("ctrl", "alt", "space")
        brindle.wait_until_hidden()
        stays(lambda: not brindle.is_shown(), "it stays hidden while the hotkey is held", 2)

    def test_another_programs_grab_is_only_logged(self):
        # A second copy with its own settings cannot have the hotkey that the first one holds.
        self.start_beside()
        second = self.launch(env={"XDG_RUNTIME_DIR": os.path.join(self.home.folder, "data"),
                                  "XDG_CONFIG_HOME": self.home.other_config("config2")})
        second.end_splash()
        second.wait_for_main_window()
        self.assertEqual(second.boxes(), [])
        second.wait_for_log("brindle.platform")


class SteppingBack(ActivationTestCase):
    def test_going_to_another_program_hides_the_window_and_keeps_the_text(self):
        brindle = self.start_beside()
        brindle.bring_back()
        brindle.go("ctrl+l", "First")
        brindle.write_entry("Half a thou")
        self.desktop.screen.activate(self.other.window)
        brindle.wait_until_hidden()
        self.other_has_keyboard("hello")
        brindle.bring_back()
        brindle.expect_text("Half a thou")

    def test_a_click_into_another_program_hides_the_window_too(self):
        brindle = self.start_beside()
        brindle.bring_back()
        x, y, _, height = self.desktop.screen.place(self.other.window)
        self.desktop.click(x + 5, y + height - 5)
        brindle.wait_until_hidden()
        self.other_has_keyboard("hello")

    def test_the_hotkey_right_after_a_click_into_another_program_brings_the_window(self):
        brindle = self.start_beside()
        # Meanwhile the program gives the other one some time to pass by, then the toolkit notices
        # the loss, then the window is hidden: the press comes before, between and after.
        for pause in (0, 0.04, 0.06, 0.08, 0.12, 0.3):
            with self.subTest(pause=pause):
                brindle.bring_back()
                self.desktop.screen.activate(self.other.window)
                wait_for(lambda: self.desktop.screen.active_window() == self.other.window,
                         "the other one")
                time.sleep(pause)
                self.desktop.keys(HOTKEY)
                wait_for(lambda: self.desktop.screen.active_window() == brindle.window, "in front")
                brindle.wait_until_in_front()
                stays(brindle.is_shown, "the main window stays", 2.5 if pause == 0.08 else 0.3)
                self.desktop.keys("Escape")
                brindle.wait_until_hidden()
        self.other_has_keyboard("hello")

    def test_the_frames_cross_hides_and_ends_nothing(self):
        brindle = self.start_beside()
        brindle.bring_back()
        self.desktop.screen.close_window(brindle.window)
        brindle.wait_until_hidden()
        self.other_has_keyboard("hello")
        self.assertTrue(brindle.is_running())
        brindle.bring_back()

    def test_our_own_boxes_and_file_dialogs_never_step_back(self):
        brindle = self.start_beside()
        brindle.bring_back()
        brindle.go("ctrl+l", "First")
        brindle.write_entry("Changed")
        brindle.keys("ctrl+q")
        box = brindle.wait_for_box(SAVE_PROMPT)
        stays(brindle.is_shown, "the main window behind the prompt", 1.5)
        brindle.answer(box, "Cancel")
        stays(brindle.is_shown, "the main window after the prompt", 1)
        brindle.wait_until_in_front()
        brindle.go("ctrl+h", "tasks.bdl")
        brindle.keys("ctrl+n")
        brindle.expect(panel=True)
        for button, title in (("Create file", "Create a new file"),
                              ("Open file", "Open an existing file")):
            with self.subTest(dialog=title):
                brindle.click_button(button)
                wait_for(lambda: brindle.dialog(title), title)
                stays(brindle.is_shown, "the main window behind the dialog", 1.5)
                wait_for(lambda: self.desktop.screen.title(self.desktop.screen.active_window())
                         == title, "the dialog in front")
                brindle.keys("Escape")
                wait_for(lambda: not brindle.dialog(title), "the dialog gone")
                stays(brindle.is_shown, "the main window after the dialog", 1)
                brindle.wait_until_in_front()


class Minimised(ActivationTestCase):
    """A manager without icons ignores the wish to be one: then the window simply stays as it is."""

    def minimise(self, window, possible):
        self.desktop.screen.minimise(window)
        if possible:
            wait_for(lambda: self.desktop.screen.is_minimised(window), "the window minimised")
        else:
            wait_until_stays(lambda: not self.desktop.screen.is_minimised(window), "not minimised", 1)

    def go_to_the_other_program(self, brindle):
        self.desktop.screen.activate(self.other.window)
        wait_for(lambda: self.desktop.screen.active_window() == self.other.window, "the other one")
        wait_for(lambda: not brindle.is_shown(), "the main window out of sight")
        brindle.wait_until_hidden()

    def test_the_main_window_comes_back_by_the_hotkey(self):
        brindle = self.start_beside()
        brindle.bring_back()
        brindle.go("ctrl+l", "First")
        self.minimise(brindle.window, self.desktop.manager.minimises)
        self.go_to_the_other_program(brindle)
        self.desktop.keys(HOTKEY)
        wait_for(lambda: self.desktop.screen.active_window() == brindle.window, "in front")
        self.assertFalse(self.desktop.screen.is_minimised(brindle.window))
        self.desktop.write("!")
        brindle.expect_text("First!")

    def start_with_prompt(self):
        brindle = self.start_beside()
        return (brindle, *self.open_prompt(brindle))

    def test_a_box_that_was_minimised_alone_comes_forward_with_the_main_window(self):
        brindle, box, window = self.start_with_prompt()
        self.minimise(window, self.desktop.manager.minimises_boxes)
        self.go_to_the_other_program(brindle)
        self.check_box_comes_forward(brindle, box, window)

    def test_a_box_that_was_minimised_with_the_main_window_comes_forward_too(self):
        brindle, box, window = self.start_with_prompt()
        self.minimise(brindle.window, self.desktop.manager.minimises)
        self.go_to_the_other_program(brindle)
        self.check_box_comes_forward(brindle, box, window)


class BoxesInTheWay(ActivationTestCase):
    def test_an_open_box_comes_forward_with_the_main_window(self):
        brindle = self.start_beside()
        box, window = self.open_prompt(brindle)
        self.desktop.screen.activate(self.other.window)
        wait_for(lambda: self.desktop.screen.active_window() == self.other.window, "the other one")
        brindle.wait_until_hidden()
        self.check_box_comes_forward(brindle, box, window)

    def test_one_that_is_on_another_workspace_comes_to_the_one_in_sight(self):
        brindle = self.start_beside()
        box, window = self.open_prompt(brindle)
        self.go_to_second_workspace()
        brindle.wait_until_hidden()
        self.check_box_comes_forward(brindle, box, window, workspace=1)
        brindle.keys("Escape")
        brindle.wait_until_hidden()
        self.assertEqual(self.desktop.screen.current_workspace(), 1)


class Workspaces(ActivationTestCase):
    def test_the_window_comes_to_the_workspace_in_sight_and_leaves_when_the_user_does(self):
        brindle = self.start_beside()
        brindle.bring_back()
        brindle.go("ctrl+l", "First")
        self.go_to_second_workspace()
        brindle.wait_until_hidden()
        other = self.other_program("on-the-second")
        self.desktop.keys(HOTKEY)
        wait_for(lambda: self.desktop.screen.active_window() == brindle.window, "in front")
        self.assertEqual(self.desktop.screen.workspace(brindle.window), 1)
        self.assertEqual(self.desktop.screen.current_workspace(), 1)
        self.desktop.write("!")
        brindle.expect_text("First!")
        self.desktop.keys("Escape")
        brindle.wait_until_hidden()
        wait_for(lambda: self.desktop.screen.active_window() == other.window, "the one over there")
        self.assertEqual(self.desktop.screen.current_workspace(), 1)


class FocusFollowsPointer(ActivationTestCase):
    """Pointing at a window gives it the keyboard."""

    @classmethod
    def make_desktop(cls):
        return Desktop(manager=managers.chosen().following_the_pointer())

    def start_and_point_at_the_window(self):
        self.desktop.point_at(640, 20)
        brindle = self.start_beside()
        brindle.bring_back()
        brindle.go("ctrl+l", "First")
        self.here = middle(self.desktop.screen.place(brindle.window))
        self.there = self.spot_of_the_other_program(brindle)
        self.desktop.point_at(*self.here)
        brindle.wait_until_in_front()
        return brindle

    def spot_of_the_other_program(self, brindle):
        """A place where the other program isn't covered: its lower right corner."""
        x, y, width, height = self.desktop.screen.place(self.other.window)
        return x + width - 10, y + height - 10

    def test_the_pointer_may_cross_another_window(self):
        brindle = self.start_and_point_at_the_window()
        for _ in range(3):
            with self.desktop.screen.front_changes() as changes:
                self.desktop.cross(self.there, self.here, pause=0.08)
                wait_for(lambda: changes() >= 2, "the front going there and coming back")
            stays(lambda: self.desktop.screen.is_managed(brindle.window), "the main window stays", 0.6)
        brindle.wait_until_in_front()
        self.desktop.write("!")
        brindle.expect_text("First!")

    def test_left_in_another_window_the_pointer_hides_ours(self):
        brindle = self.start_and_point_at_the_window()
        self.desktop.point_at(*self.there)
        brindle.wait_until_hidden()
        self.other_has_keyboard("hello")
        self.desktop.keys(HOTKEY)
        wait_for(lambda: self.desktop.screen.active_window() == brindle.window, "in front")
        brindle.wait_until_in_front()
        stays(lambda: self.desktop.screen.active_window() == brindle.window,
              "in front although the pointer is elsewhere", 1)
        self.desktop.keys("Escape")
        brindle.wait_until_hidden()
        self.other_has_keyboard("hello again")


class Confirmation(ActivationTestCase):
    def test_an_activation_that_did_not_take_is_given_up_after_7_seconds(self):
        brindle = self.start_beside()
        manager = self.desktop.window_manager
        manager.send_signal(signal.SIGSTOP)
        try:
            self.desktop.keys(HOTKEY)
            # The window manager sleeps, so the window cannot come to the front.
            started = time.monotonic()
            stays(lambda: self.desktop.screen.active_window() == self.other.window,
                  "the other program in front", 8.5)
            self.assertGreater(time.monotonic() - started, 8)
        finally:
            manager.send_signal(signal.SIGCONT)
        # It now does what it was asked for meanwhile: it shows the window, and takes it away again.
        wait_until_stays(lambda: self.desktop.screen.windows() == [self.other.window]
                         and self.desktop.screen.active_window() == self.other.window,
                         "the other program alone, and in front", 2)
        self.other_has_keyboard("still here")
        # One press brings the window: the program knows that it is not in front.
        brindle.bring_back()

    def test_given_up_it_tries_again_soon_however_the_others_changed_places(self):
        brindle = self.start_beside()
        self.home.write_settings("[General]\nautomaticactivation=true\n"
                                 "automaticactivationdelay=30\n\n"
                                 f"[loadfiles]\n0={self.path}\n")
        manager = self.desktop.window_manager
        mark = brindle.log_mark()
        manager.send_signal(signal.SIGSTOP)
        try:
            self.desktop.keys(HOTKEY)
            started = time.monotonic()
            # Other programs have the front in turn while ours waits for it.
            for _ in range(3):
                self.desktop.screen.claim_front(0)
                self.desktop.screen.claim_front(self.other.window)
                time.sleep(0.2)
            brindle.wait_for_log("coming forward by itself", mark)
            self.assertGreater(time.monotonic() - started, 6.5)
        finally:
            manager.send_signal(signal.SIGCONT)
        self.assertIn("did not bring the application to the front", brindle.log()[mark:])
        self.assertIn("coming forward by itself in 2 minutes", brindle.log()[mark:])

    def test_one_that_took_stays(self):
        brindle = self.start_beside()
        brindle.bring_back()
        stays(lambda: self.desktop.screen.active_window() == brindle.window, "in front", 8.5)
        brindle.wait_until_in_front()


if __name__ == "__main__":
    main()
