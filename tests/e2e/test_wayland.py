# SPDX-License-Identifier: MIT
"""The program on a Wayland desktop: native windows, the keyboard, stepping back, its own windows."""

import os
import signal
import time

from brindle_e2e import datafile
from brindle_e2e.brindle import Brindle, middle
from brindle_e2e.case import PROGRAM, main
from brindle_e2e.desktop import Desktop
from brindle_e2e.waiting import stays, wait_for, wait_for_value
from brindle_e2e.wayland import BACKGROUND
from brindle_e2e.wayland_case import APP_ID, WaylandTestCase
from brindle_e2e.windows import FIND, HELP, REPORT_RANGE, SETTINGS, TODO_LIST
from tour import Tour

SAVE_PROMPT = "Some of your changes have not been saved."


class StartUp(WaylandTestCase):
    def check_native(self, brindle):
        self.assertEqual(self.desktop.screen.shell(brindle.window), "xdg_shell")

    def test_its_windows_bear_the_name_of_its_desktop_file(self):
        brindle = self.start_on()
        self.assertEqual(self.desktop.screen.app_id(brindle.window), APP_ID)

    def test_it_is_a_native_window_and_has_the_keyboard_at_once(self):
        brindle = self.start_on()
        self.check_native(brindle)
        # No look at the program in between: what is typed must not get lost.
        self.desktop.keys("ctrl+l", "ctrl+a")
        self.desktop.write("Typed")
        brindle.expect_text("Typed")
        self.assertNotIn("qt.qpa", brindle.log())

    def test_it_comes_up_with_the_keyboard_beside_another_program(self):
        self.other_program()
        brindle = self.start_on()
        brindle.go("ctrl+l", "First")

    def test_the_splash_screen_ends_by_a_click(self):
        brindle = self.launch()
        spot = middle(self.desktop.screen.place(wait_for(brindle.splash, "the splash screen")))
        # Nobody clicks on what has not been painted yet.
        wait_for(lambda: self.desktop.screen.colour_at(*spot) != BACKGROUND, "the picture")
        started = time.monotonic()
        self.desktop.click(*spot)
        brindle.wait_for_main_window()
        brindle.expect(title="Brindle", panel=True)
        self.assertLess(time.monotonic() - started, 7, "it ended by itself")

    def test_the_splash_screen_ends_by_itself_after_8_seconds(self):
        brindle = self.launch()
        wait_for(brindle.splash, "the splash screen")
        started = time.monotonic()
        stays(lambda: brindle.splash() and not brindle.is_shown(), "the splash alone", 7)
        brindle.wait_for_main_window()
        self.assertLess(time.monotonic() - started, 20)

    def test_beside_an_x_server_it_stays_native_unless_the_toolkit_is_told_otherwise(self):
        with Desktop() as x:
            # The toolkit by itself would go to the X server on some desktops.
            for desktop, session in (("sway", "wayland"), ("GNOME", "wayland"), ("", "")):
                brindle = self.launch(env={"DISPLAY": x.env["DISPLAY"], "XDG_SESSION_TYPE": session,
                                           "XDG_CURRENT_DESKTOP": desktop})
                brindle.end_splash("space")
                brindle.wait_for_main_window()
                self.check_native(brindle)
                brindle.end()
            chosen = Brindle(x, PROGRAM, self.home, env={
                "WAYLAND_DISPLAY": self.desktop.env["WAYLAND_DISPLAY"],
                "XDG_SESSION_TYPE": "wayland", "QT_QPA_PLATFORM": "xcb"})
            chosen.start()
            self.assertEqual(self.desktop.screen.windows(), [])
            chosen.keys("Escape")
            chosen.wait_until_hidden()
            # The hotkey is the X server's then.
            chosen.bring_back()
            self.assertEqual(self.portal.sessions(), [])

    def test_without_any_screen_nothing_is_shown(self):
        brindle = self.launch(env={"QT_QPA_PLATFORM": "offscreen"})
        brindle.wait_for_log("starting server for this instance")
        brindle.stays_running(1)
        self.assertEqual(self.desktop.screen.windows(), [])
        self.assertEqual(self.portal.sessions(), [])

    def test_a_desktop_that_is_not_there_is_said_and_ends_the_program(self):
        brindle = self.launch(env={"WAYLAND_DISPLAY": "/nowhere/wayland-0"})
        self.assertEqual(brindle.wait_for_exit(), 1)
        self.assertIn("there is no display", brindle.log())


class SteppingBack(WaylandTestCase):
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

    def test_return_escape_and_the_frames_cross_give_the_keyboard_back(self):
        brindle = self.start_beside()
        for way in ("Return", "Escape", "cross"):
            with self.subTest(way=way):
                brindle.bring_back()
                if way == "cross":
                    self.desktop.screen.close_window(brindle.window)
                else:
                    brindle.keys(way)
                brindle.wait_until_hidden()
                self.other_has_keyboard(way)
        brindle.bring_back()

    def test_our_own_windows_never_step_back(self):
        brindle = self.start_beside()
        brindle.bring_back()
        brindle.go("ctrl+l", "First")
        for title, keys in ((TODO_LIST, "ctrl+e"), (FIND, "ctrl+f"), (REPORT_RANGE, "ctrl+r"),
                            (SETTINGS, "ctrl+comma"), (HELP, "ctrl+slash")):
            with self.subTest(window=title):
                window = self.open(brindle, keys, title)
                stays(brindle.is_on_the_screen, "the main window behind it", 0.7)
                self.close(window)

    def test_our_own_boxes_and_file_dialogs_never_step_back(self):
        brindle = self.start_beside()
        brindle.bring_back()
        brindle.go("ctrl+l", "First")
        brindle.write_entry("Changed")
        brindle.keys("ctrl+q")
        box = brindle.wait_for_box(SAVE_PROMPT)
        stays(brindle.is_on_the_screen, "the main window behind the prompt", 1)
        self.picture("wayland-prompt")
        brindle.answer(box, "Cancel")
        brindle.wait_until_in_front()
        brindle.go("ctrl+h", "tasks.bdl")
        brindle.keys("ctrl+n")
        brindle.expect(panel=True)
        for button, title in (("Create file", "Create a new file"),
                              ("Open file", "Open an existing file")):
            with self.subTest(dialog=title):
                brindle.click_button(button)
                wait_for(lambda: brindle.dialog(title), title)
                wait_for(lambda: self.desktop.screen.title(self.desktop.screen.active_window())
                         == title, "the dialog in front")
                stays(brindle.is_on_the_screen, "the main window behind the dialog", 1)
                self.picture("wayland-" + button.replace(" ", "-"))
                brindle.keys("Escape")
                wait_for(lambda: not brindle.dialog(title), "the dialog gone")
                brindle.wait_until_in_front()

    def test_an_open_box_comes_forward_with_the_main_window(self):
        brindle = self.start_beside()
        brindle.bring_back()
        brindle.go("ctrl+l", "First")
        brindle.write_entry("Changed")
        brindle.keys("ctrl+q")
        box = brindle.wait_for_box(SAVE_PROMPT)
        self.desktop.screen.activate(self.other.window)
        brindle.wait_until_hidden()
        self.other_has_keyboard("meanwhile")
        self.press_hotkey()
        wait_for(lambda: self.desktop.screen.title(self.desktop.screen.active_window())
                 == "Save changes?", "the box in front")
        wait_for(brindle.is_on_the_screen, "the main window, too")
        brindle.keys("Escape")
        wait_for(lambda: not box.node.has("showing"), "the box cancelled by a key")
        brindle.wait_until_in_front()
        brindle.expect_text("Changed")


class AutomaticActivation(WaylandTestCase):
    def test_after_the_delay_the_window_comes_by_itself_with_the_keyboard(self):
        path = datafile.create(self.home.path("tasks.bdl"), "First")
        self.home.remember_files(path, automatic_activation="true")
        brindle = self.start()
        brindle.go("ctrl+l", "First")
        self.other = self.other_program()
        brindle.wait_until_hidden()
        hidden_since = time.monotonic()
        self.other_has_keyboard("typing on")
        stays(lambda: self.desktop.screen.active_window() == self.other.window, "left alone", 50)
        brindle.wait_until_in_front(30)
        self.assertAlmostEqual(time.monotonic() - hidden_since, 60, delta=8)
        self.desktop.write("!")
        brindle.expect_text("First!")
        brindle.keys("Escape")
        brindle.wait_until_hidden()
        self.other_has_keyboard("and on")


class Sizes(WaylandTestCase):
    def size(self, brindle):
        return self.desktop.screen.place(brindle.window)[2:]

    def test_twenty_rounds_of_hiding_and_a_restart_change_no_size_and_invent_no_place(self):
        path = datafile.create(self.home.path("tasks.bdl"), "First")
        self.home.remember_files(path)
        with open(self.home.settings_path, encoding="utf-8") as file:
            self.home.write_settings(file.read() + "\n[HierarchyWindow]\npos=@Point(137 191)\n"
                                     "size=@Size(431 277)\n")
        brindle = self.start()
        self.assertEqual(self.size(brindle), (431, 277))
        self.desktop.screen.move_resize(brindle.window, 60, 50, 560, 300)
        wanted = wait_for(lambda: self.size(brindle) not in ((431, 277),) and self.size(brindle),
                          "the user's size")
        wait_for_value(self.home.stored_size, wanted, "the stored size")
        for round_number in range(20):
            brindle.keys("Escape")
            brindle.wait_until_hidden()
            brindle.bring_back()
            self.assertEqual(self.size(brindle), wanted, f"in round {round_number}")
        self.assertEqual(brindle.quit(), 0)
        # Where the window stood nobody says on this desktop; under X11 the place counts again.
        self.assertEqual(self.home.stored_place(), (137, 191, *wanted))
        brindle = self.start()
        stays(lambda: self.size(brindle) == wanted, "the size after the restart", 1)
        self.assertEqual(self.home.stored_place(), (137, 191, *wanted))


class Tiled(WaylandTestCase):
    """The same compositor as its users mostly have it: it gives each window its place and size."""

    configuration = ""

    def test_hotkey_and_windows_work_where_the_compositor_chooses_the_size(self):
        brindle = self.start_beside()
        for round_number in range(3):
            brindle.bring_back()
            self.desktop.keys("ctrl+l") if round_number == 0 else None
            self.desktop.keys("ctrl+a")
            self.desktop.write(f"round {round_number}")
            brindle.expect_text(f"round {round_number}")
            self.desktop.keys("Return")
            brindle.wait_until_hidden()
            self.other_has_keyboard(f"back {round_number}")
        self.assertEqual(datafile.texts(self.path), {"round 2", "Second"})
        brindle.bring_back()
        for title, keys in ((FIND, "ctrl+f"), (SETTINGS, "ctrl+comma"), (HELP, "ctrl+slash")):
            window = self.open(brindle, keys, title)
            self.picture(f"wayland-tiled-{title}")
            self.close(window)


class OneInstance(WaylandTestCase):
    QUESTION = "Brindle is already running. "

    def test_a_second_start_asks_and_brings_the_first_forward_when_told(self):
        first = self.start_beside()
        second = self.launch()
        box = second.wait_for_box(self.QUESTION)
        self.picture("wayland-question")
        second.answer(box, "Cancel")
        self.assertEqual(second.wait_for_exit(), 0)
        stays(lambda: not first.is_on_the_screen(), "the first stays behind", 0.5)
        second = self.launch()
        second.answer(second.wait_for_box(self.QUESTION), "Activate existing instance")
        self.assertEqual(second.wait_for_exit(), 0)
        first.wait_until_in_front()


    def test_a_file_is_handed_to_the_running_copy_which_comes_forward(self):
        first = self.start_beside()
        other_file = datafile.create(self.home.path("other.bdl"), "Elsewhere")
        second = self.launch("--activate", other_file)
        self.assertEqual(second.wait_for_exit(), 0)
        first.wait_until_in_front()
        first.expect_text("other.bdl")


class KeyOfTheDesktop(WaylandTestCase):
    """What the settings name where there is no hotkey: a key that the compositor itself looks after."""

    portal_from_the_start = False

    def test_a_key_bound_to_the_toggling_command_works_there_and_back(self):
        self.path = datafile.create(self.home.path("tasks.bdl"), "First")
        self.home.remember_files(self.path)
        self._helpers.append(self.desktop.bind_key("Ctrl+Alt+b", [PROGRAM, "--toggle"], self.home.env))
        brindle = self.start()
        brindle.go("ctrl+l", "First")
        self.other = self.other_program()
        brindle.wait_until_hidden()
        for round_number in range(3):
            self.desktop.keys("ctrl+alt+b")
            wait_for(brindle.has_front, "in front by the desktop's key")
            brindle.wait_until_in_front()
            self.desktop.write("!")
            brindle.expect_text("First" + "!" * (round_number + 1))
            self.desktop.keys("ctrl+alt+b")
            brindle.wait_until_hidden()
            self.other_has_keyboard(f"back {round_number}")


class WaylandTour(Tour):
    """The tour on a desktop where only the size of a window is the program's to keep."""

    def place(self):
        return super().place()[2:]

    def move_window(self):
        before = self.place()
        self.desktop.screen.move_resize(self.brindle.window, 200, 150, 560, 260)
        wait_for(lambda: self.place() != before, "the window's other size")
        wait_for(lambda: self.home.stored_size() == self.place(), "the stored size")
        # Where the window stands nobody says on this desktop, so nothing is remembered of it.
        assert self.home.stored_place() is None, self.home.stored_place()
        return self.place()


class MainWork(WaylandTestCase):
    def test_a_tour_through_everything(self):
        pictures = os.environ.get("BRINDLE_E2E_PICTURES") or self.home.folder
        tour = WaylandTour(self.desktop, PROGRAM, os.path.join(pictures, "wayland-tour"))
        self.home = tour.home
        try:
            tour.walk()
        finally:
            self.programs.append(tour.brindle)
            self._helpers += [tour.other.process] if tour.other else []


class Ending(WaylandTestCase):
    def test_a_termination_signal_saves_while_shown_and_while_hidden(self):
        for hidden in (False, True):
            with self.subTest(hidden=hidden):
                brindle = self.start_on(name=f"tasks-{hidden}.bdl")
                brindle.go("ctrl+l", "First")
                brindle.write_entry("Typed")
                if hidden:
                    brindle.keys("Escape")
                    brindle.wait_until_hidden()
                brindle.send(signal.SIGTERM)
                self.assertEqual(brindle.wait_for_exit(), 0)
                self.assertEqual(datafile.texts(self.path), {"Typed", "Second"})


if __name__ == "__main__":
    main()
