# SPDX-License-Identifier: MIT
"""Only one copy owns the data files: what a second start says and does, with two real programs."""

import os
import pwd
import signal

from brindle_e2e import datafile
from brindle_e2e.beside import BesideAnotherProgram
from brindle_e2e.case import BrindleTestCase, main
from brindle_e2e.waiting import stays, wait_for

QUESTION = "Brindle is already running. What would you like to do?"
ACTIVATE = "Activate existing instance"
SERVING = "starting server for this instance"


class SecondStart(BesideAnotherProgram, BrindleTestCase):
    def start_first(self):
        """The first copy, stepped back behind another program."""
        return self.start_beside("First")

    def check_question(self, second):
        """The one box of a second start; nothing else of it is on the screen."""
        box = second.wait_for_box("Brindle is already")
        self.assertEqual((box.title, box.text, sorted(box.buttons)),
                         ("Brindle is already running", QUESTION, [ACTIVATE, "Cancel"]))
        self.assertEqual(len(second.boxes()), 1)
        # No splash screen, no main window.
        window = self.window_of(second)
        self.assertEqual(self.desktop.screen.windows_of(second.pid), [window])
        return box

    def check_opened_no_file(self, process):
        opened = os.listdir(f"/proc/{process.pid}/fd")
        targets = []
        for number in opened:
            try:
                targets.append(os.readlink(f"/proc/{process.pid}/fd/{number}"))
            except FileNotFoundError:
                pass
        self.assertTrue(targets)
        self.assertEqual([target for target in targets if target.endswith(".bdl")], [])

    def test_activate_ends_the_second_and_brings_the_first_forward(self):
        first = self.start_first()
        second = self.launch()
        box = self.check_question(second)
        self.check_opened_no_file(second)
        self.assertFalse(first.is_shown())
        second.desktop.screen.activate(self.window_of(second))
        second.keys("Return")  # the button is the default
        self.assertEqual(second.wait_for_exit(), 0)
        first.wait_for_main_window()
        self.desktop.write("!")
        wait_for(lambda: "!" in (first.text or ""), "the keyboard in the first copy")
        self.assertFalse(box.node.has("showing"))

    def test_after_activating_escape_gives_the_keyboard_to_the_program_before(self):
        first = self.start_first()
        second = self.launch()
        second.answer(self.check_question(second), ACTIVATE)
        self.assertEqual(second.wait_for_exit(), 0)
        first.wait_for_main_window()
        first.keys("Escape")
        first.wait_until_hidden()
        self.other_has_keyboard("still here")

    def test_cancel_ends_only_the_second(self):
        first = self.start_first()
        for way in ("button", "Escape", "cross"):
            with self.subTest(way=way):
                mark = first.log_mark()
                second = self.launch()
                box = self.check_question(second)
                window = self.window_of(second)
                if way == "button":
                    second.answer(box, "Cancel")
                elif way == "cross":
                    self.desktop.screen.close_window(window)
                else:
                    self.desktop.screen.activate(window)
                    second.keys("Escape")
                self.assertEqual(second.wait_for_exit(), 0)
                stays(lambda: not first.is_shown(), "the first copy stays behind", 0.5)
                self.assertIn("sending version information", first.log()[mark:])
                self.assertNotIn("received", first.log()[mark:])
        first.bring_back()

    def test_a_start_with_another_runtime_folder_or_none_finds_the_first(self):
        first = self.start_first()
        other = os.path.join(self.home.folder, "other-runtime")
        os.mkdir(other, 0o700)
        for name, folder in (("another", other), ("none", "")):
            with self.subTest(runtime_folder=name):
                before = self.home.settings_bytes()
                second = self.launch(env={"XDG_RUNTIME_DIR": folder,
                                          "TMPDIR": os.path.join(self.home.folder, "files")})
                second.answer(self.check_question(second), ACTIVATE)
                self.assertEqual(second.wait_for_exit(), 0)
                first.wait_for_main_window()
                self.assertEqual(self.home.settings_bytes(), before)
                first.keys("Escape")
                first.wait_until_hidden()

    def test_files_of_a_second_start_are_not_opened(self):
        first = self.start_first()
        more = datafile.create(self.home.path("more.bdl"), "More")
        second = self.launch(more)
        second.answer(self.check_question(second), ACTIVATE)
        self.assertEqual(second.wait_for_exit(), 0)
        first.wait_for_main_window()
        self.assertEqual(self.home.loaded_files(), [("0", self.path)])

    def test_while_a_start_is_held_up_by_a_box_an_activation_waits(self):
        # A file of its own gives the main window a title that the splash screen hasn't.
        self.home.remember_files(datafile.create(self.home.path("tasks.bdl"), "First"),
                                 self.home.path("missing.bdl"))
        first = self.launch()
        box = first.wait_for_box()
        second = self.launch()
        second.answer(self.check_question(second), ACTIVATE)
        self.assertEqual(second.wait_for_exit(), 0)
        stays(lambda: not first.is_shown(), "no main window beside the box", 0.5)
        first.answer(box, "OK")
        first.wait_for_main_window()

    def window_of(self, brindle):
        return wait_for(lambda: self.desktop.screen.find(brindle.pid, "Brindle is already"),
                        "the question's window")


class NoOtherCopy(BrindleTestCase):
    def test_after_a_crash_the_next_start_asks_nothing_and_serves(self):
        first = self.start()
        first.send(signal.SIGKILL)
        first.wait_for_exit()
        left = os.listdir(self.home.env["XDG_RUNTIME_DIR"])
        self.assertEqual([name for name in left if name.endswith(".Brindle")],
                         ["example.osterlane.Brindle"])
        next_one = self.start()
        self.assertEqual(next_one.boxes(), [])
        self.assertIn("removing it", next_one.log())
        self.assertIn(SERVING, next_one.log())
        second = self.launch()
        second.answer(second.wait_for_box(QUESTION), "Cancel")
        self.assertEqual(second.wait_for_exit(), 0)

    def test_without_a_usable_runtime_folder_it_says_so_and_serves_nobody(self):
        self.home.remember_files(datafile.create(self.home.path("tasks.bdl"), "First"))
        before = self.home.settings_bytes()
        # Somebody else was quicker to make the folder that is used when none is named.
        user = pwd.getpwuid(os.geteuid()).pw_name
        with open(self.home.path(f"runtime-{user}"), "w", encoding="utf-8"):
            pass
        copy = self.launch(env={"XDG_RUNTIME_DIR": "",
                                "TMPDIR": os.path.join(self.home.folder, "files")})
        box = copy.wait_for_box("Brindle can't make sure")
        self.assertIn("XDG_RUNTIME_DIR", box.text)
        copy.answer(box, "OK")
        self.assertEqual(copy.wait_for_exit(), 1)
        self.assertNotIn(SERVING, copy.log())
        self.assertEqual(self.home.settings_bytes(), before)

    def test_after_an_ordinary_end_the_next_start_asks_nothing(self):
        first = self.start()
        first.keys("ctrl+q")
        self.assertEqual(first.wait_for_exit(), 0)
        self.assertEqual(self.start().boxes(), [])

    def test_two_runtime_folders_do_not_see_each_other(self):
        first = self.start()
        other_runtime = os.path.join(self.home.folder, "other-runtime")
        os.mkdir(other_runtime, 0o700)
        second = self.launch(env={"XDG_RUNTIME_DIR": other_runtime,
                                  "XDG_CONFIG_HOME": self.home.other_config("config2")})
        second.end_splash()
        second.wait_for_main_window()
        self.assertIn(SERVING, second.log())
        self.assertEqual(first.boxes() + second.boxes(), [])
        self.assertTrue(first.is_running())

    def test_a_frozen_copy_ends_the_new_one_without_a_box(self):
        first = self.start()
        first.send(signal.SIGSTOP)
        self.addCleanup(first.send, signal.SIGCONT)
        second = self.launch()
        self.assertEqual(second.wait_for_exit(), 1)
        self.assertIn("failed waiting for server response", second.log())

    def test_two_starts_at_the_same_moment_give_one_server_and_one_client(self):
        self.home.remember_files(datafile.create(self.home.path("tasks.bdl"), "First"))
        before = self.home.loaded_files()
        for round_number in range(5):
            with self.subTest(round=round_number):
                both = [self.launch(), self.launch()]
                wait_for(lambda: any(one.boxes() for one in both), "the question")
                client = next(one for one in both if one.boxes())
                server = next(one for one in both if one is not client)
                self.assertEqual([box.text for box in client.boxes()], [QUESTION])
                client.answer(client.boxes()[0], "Cancel")
                self.assertEqual(client.wait_for_exit(), 0)
                self.assertNotIn(SERVING, client.log())
                self.assertIn(SERVING, server.log())
                server.wait_for_main_window(30)
                server.expect(panel=False)
                self.assertEqual(server.boxes(), [])
                self.assertEqual(self.home.loaded_files(), before)
                server.end()


if __name__ == "__main__":
    main()
