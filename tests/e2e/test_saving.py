# SPDX-License-Identifier: MIT
"""What reaches the disk, and when: saving, discarding, quitting, and other programs on the files."""

import os
import shutil
import signal
import sys
import time

from brindle_e2e import datafile
from brindle_e2e.case import BrindleTestCase, main
from brindle_e2e.datafile import Entry
from brindle_e2e.waiting import stays, wait_for

SAVE_PROMPT = "Some of your changes have not been saved. What would you like to do?"

# Another program at work on a data file: it runs a statement in a transaction, says so in a file,
# holds on for some seconds and ends without having changed anything.
HOLDER = """
import sqlite3, sys, time
path, begin, statement, seconds, ready = sys.argv[1:]
connection = sqlite3.connect(path, timeout=30, isolation_level=None)
connection.execute(begin)
connection.execute(statement).fetchall()
open(ready, "w").close()
time.sleep(float(seconds))
connection.execute("ROLLBACK")
"""


class SavingTestCase(BrindleTestCase):
    def make_file(self, name, *entries):
        return datafile.create(self.home.path(name), *(entries or ("First", "Second")))

    def start_and_type(self, path, text="Typed"):
        """Starts on the file's first entry and replaces its text, without writing it."""
        brindle = self.start_with(path)
        brindle.go("ctrl+l", "First")
        brindle.write_entry(text)
        return brindle

    def hold(self, path, begin, statement, seconds):
        ready = os.path.join(self.home.folder, "holder-is-ready")
        process = self.helper([sys.executable, "-c", HOLDER, path, begin, statement, str(seconds),
                               ready])
        wait_for(lambda: os.path.exists(ready), "the other program's lock")
        return process


class Saving(SavingTestCase):
    def test_nothing_is_on_disk_before_return_and_everything_after(self):
        path = self.make_file("tasks.bdl")
        brindle = self.start_with(path)
        brindle.go("ctrl+l", "First")
        brindle.write_entry("First, changed")
        brindle.go("ctrl+j", "Second")
        brindle.keys("ctrl+d")
        brindle.expect(state="done")
        brindle.go("ctrl+n", "")
        brindle.write_entry("Third")
        brindle.go("ctrl+l", "")
        brindle.write_entry("Below third")
        self.assertEqual(datafile.texts(path), {"First", "Second"})
        self.assertEqual(datafile.row(path, "Second")["state"], datafile.STATE_TODO)

        brindle.save_and_hide()
        self.assertEqual(datafile.outline(path)[0][1],
                         [["First, changed", []], ["Second", []], ["Third", [["Below third", []]]]])
        self.assertEqual(datafile.row(path, "Second")["state"], datafile.DONE)
        self.assertRegex(datafile.row(path, "Second")["done_date"],
                         r"^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d$")
        self.assertEqual(datafile.integrity(path), "ok")

    def test_text_cleared_and_saved_deletes_the_entry(self):
        path = self.make_file("tasks.bdl")
        brindle = self.start_with(path)
        brindle.go("ctrl+l", "First")
        brindle.write_entry("")
        brindle.go("ctrl+j", "Second")
        brindle.expect(preceding="")
        brindle.save_and_hide()
        self.assertEqual(datafile.texts(path), {"Second"})

    def test_discard_brings_back_what_is_on_the_disk(self):
        path = self.make_file("tasks.bdl")
        brindle = self.start_with(path)
        brindle.go("ctrl+l", "First")
        brindle.write_entry("Wrong")
        brindle.go("ctrl+j", "Second")
        brindle.keys("ctrl+d", "ctrl+shift+k")
        brindle.expect(text="Second", state="done", following="Wrong")
        brindle.keys("ctrl+shift+BackSpace")
        brindle.expect(text="Second", state="to-do", preceding="First", following="")
        brindle.save_and_hide()
        self.assertEqual(datafile.children(path, "tasks.bdl"), ["First", "Second"])
        self.assertEqual(datafile.row(path, "Second")["state"], datafile.STATE_TODO)

    def test_discarding_a_new_entry_goes_to_its_parent(self):
        path = self.make_file("tasks.bdl")
        brindle = self.start_with(path)
        brindle.go("ctrl+l", "First")
        brindle.go("ctrl+n", "")
        brindle.write_entry("New")
        brindle.keys("ctrl+period", "ctrl+shift+Delete")
        brindle.expect(text="tasks.bdl", parent=None)


class Quitting(SavingTestCase):
    def test_with_nothing_to_save_it_asks_nothing_and_the_process_really_ends(self):
        brindle = self.start_with(self.make_file("tasks.bdl"))
        self.assertTrue(brindle.is_shown())
        brindle.keys("ctrl+q")
        self.assertEqual(brindle.wait_for_exit(), 0)

    def test_cancel_keeps_running_with_the_changes_still_unsaved(self):
        path = self.make_file("tasks.bdl")
        brindle = self.start_and_type(path)
        brindle.keys("ctrl+q")
        box = brindle.wait_for_box(SAVE_PROMPT)
        self.assertEqual(box.title, "Save changes?")
        self.assertEqual(sorted(box.buttons), ["Cancel", "Discard", "Save"])
        brindle.answer(box, "Cancel")
        brindle.wait_until_in_front()
        brindle.expect_text("Typed")
        self.assertEqual(datafile.texts(path), {"First", "Second"})
        brindle.keys("ctrl+q")
        brindle.wait_for_box(SAVE_PROMPT)

    def test_escape_in_the_prompt_is_cancel(self):
        brindle = self.start_and_type(self.make_file("tasks.bdl"))
        brindle.keys("ctrl+q")
        brindle.wait_for_box(SAVE_PROMPT)
        brindle.keys("Escape")
        wait_for(lambda: not brindle.boxes(), "the box gone")
        brindle.wait_until_in_front()

    def test_save_writes_also_the_text_that_is_only_in_the_editor(self):
        path = self.make_file("tasks.bdl")
        brindle = self.start_and_type(path)
        brindle.keys("ctrl+q")
        brindle.answer(brindle.wait_for_box(SAVE_PROMPT), "Save")
        self.assertEqual(brindle.wait_for_exit(), 0)
        self.assertEqual(datafile.texts(path), {"Typed", "Second"})

    def test_discard_leaves_the_disk_as_it_was(self):
        path = self.make_file("tasks.bdl")
        brindle = self.start_and_type(path)
        brindle.keys("ctrl+q")
        brindle.answer(brindle.wait_for_box(SAVE_PROMPT), "Discard")
        self.assertEqual(brindle.wait_for_exit(), 0)
        self.assertEqual(datafile.texts(path), {"First", "Second"})

    def test_the_keys_held_down_ask_once(self):
        brindle = self.start_and_type(self.make_file("tasks.bdl"))
        self.desktop.press("ctrl", "q")
        self.addCleanup(self.desktop.release, "q", "ctrl")
        brindle.wait_for_box(SAVE_PROMPT)
        stays(lambda: len(brindle.boxes()) == 1, "one prompt", 2)
        self.desktop.release("q", "ctrl")
        brindle.answer(brindle.boxes()[0], "Cancel")
        brindle.wait_until_in_front()
        self.assertEqual(brindle.boxes(), [])

    def test_discard_keys_do_nothing_under_an_open_prompt(self):
        path = self.make_file("tasks.bdl")
        brindle = self.start_and_type(path)
        brindle.keys("ctrl+q")
        box = brindle.wait_for_box(SAVE_PROMPT)
        brindle.keys("ctrl+shift+BackSpace", "ctrl+q")
        brindle.answer(box, "Save")
        self.assertEqual(brindle.wait_for_exit(), 0)
        self.assertEqual(datafile.texts(path), {"Typed", "Second"})

    def test_a_root_whose_text_was_cleared_is_refused_and_quits_nothing(self):
        path = self.make_file("tasks.bdl")
        brindle = self.start_with(path)
        brindle.write_entry("")
        brindle.keys("ctrl+q")
        brindle.wait_for_log("brindle.ui.commands: command 28\n")
        brindle.write("tasks.bdl")
        brindle.expect_text("tasks.bdl")
        self.assertEqual(brindle.boxes(), [])
        self.assertTrue(brindle.is_running())

    def test_a_file_that_cannot_be_saved_stops_the_quitting_and_says_so(self):
        path = self.make_file("tasks.bdl")
        brindle = self.start_and_type(path)
        brindle.go("ctrl+j", "Second")
        os.unlink(path)
        brindle.keys("ctrl+q")
        brindle.answer(brindle.wait_for_box(SAVE_PROMPT), "Save")
        box = brindle.wait_for_box("There was an error")
        self.assertTrue(box.text.endswith(" This file has been closed."), box.text)
        self.assertTrue(brindle.is_running())
        self.assertIn(path, box.details)
        brindle.answer(box, "OK")
        wait_for(lambda: brindle.view() and brindle.view().panel, "the open/create panel")

    def test_termination_signals_save_even_the_text_in_the_editor(self):
        for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            with self.subTest(signal=number.name):
                path = self.make_file(f"{number.name}.bdl")
                brindle = self.start_and_type(path)
                brindle.send(number)
                self.assertEqual(brindle.wait_for_exit(), 0)
                self.assertEqual(datafile.texts(path), {"Typed", "Second"})

    def test_a_termination_signal_while_hidden_saves_what_is_in_the_editor(self):
        path = self.make_file("tasks.bdl")
        brindle = self.start_and_type(path)
        brindle.keys("Escape")
        brindle.wait_until_hidden()
        self.assertEqual(datafile.texts(path), {"First", "Second"})
        brindle.send(signal.SIGTERM)
        self.assertEqual(brindle.wait_for_exit(), 0)
        self.assertEqual(datafile.texts(path), {"Typed", "Second"})

    def test_a_termination_signal_under_an_open_prompt_saves_too(self):
        path = self.make_file("tasks.bdl")
        brindle = self.start_and_type(path)
        brindle.keys("ctrl+q")
        brindle.wait_for_box(SAVE_PROMPT)
        brindle.send(signal.SIGTERM)
        self.assertEqual(brindle.wait_for_exit(), 0)
        self.assertEqual(datafile.texts(path), {"Typed", "Second"})


class OtherProgramsOnTheFile(SavingTestCase):
    def test_a_reader_that_holds_the_file_for_8_seconds_while_saving_loses_nothing(self):
        path = self.make_file("tasks.bdl")
        brindle = self.start_and_type(path)
        reader = self.hold(path, "BEGIN", "SELECT count(*) FROM entry", 8)
        started = time.monotonic()
        brindle.keys("Return")
        wait_for(lambda: self.desktop.screen.find(brindle.pid, "Please wait"), "the notice")
        brindle.wait_until_hidden(40)
        self.assertGreater(time.monotonic() - started, 4, "the reader was not in the way at all")
        self.assertIsNone(self.desktop.screen.find(brindle.pid, "Please wait"))
        wait_for(lambda: reader.poll() is not None, "the end of the reader")
        self.assertEqual(datafile.texts(path), {"Typed", "Second"})
        self.assertEqual(brindle.boxes(), [])
        brindle.bring_back()
        brindle.expect_text("Typed")

    def test_a_writer_in_the_way_for_3_seconds_costs_nothing(self):
        path = self.make_file("tasks.bdl")
        brindle = self.start_and_type(path)
        self.hold(path, "BEGIN IMMEDIATE", "SELECT count(*) FROM entry", 3)
        brindle.go("ctrl+j", "Second")
        brindle.expect(preceding="Typed")
        brindle.save_and_hide()
        self.assertEqual(datafile.texts(path), {"Typed", "Second"})

    def test_a_signal_during_a_wait_saves_the_text_once(self):
        path = self.make_file("tasks.bdl")
        brindle = self.start_with(path)
        brindle.go("ctrl+l", "First")
        brindle.keys("ctrl+n")
        brindle.expect(preceding="First", text="")
        brindle.write_entry("New")
        self.hold(path, "BEGIN IMMEDIATE", "SELECT count(*) FROM entry", 4)
        brindle.keys("Return")
        wait_for(lambda: self.desktop.screen.find(brindle.pid, "Please wait"), "the notice")
        brindle.send(signal.SIGTERM)
        self.assertEqual(brindle.wait_for_exit(), 0)
        self.assertEqual(datafile.children(path, "tasks.bdl"), ["First", "New", "Second"])

    def test_a_file_replaced_under_us_is_an_error_and_the_new_file_stays_as_it_is(self):
        path = self.make_file("tasks.bdl")
        newer = datafile.create(self.home.path("newer"), "From elsewhere", root_text="tasks.bdl")
        brindle = self.start_and_type(path)
        os.replace(newer, path)
        brindle.keys("Return")
        box = brindle.wait_for_box("There was an error accessing file tasks.bdl.")
        self.assertTrue(box.text.endswith(" This file has been closed."), box.text)
        self.assertIn(f"file path: {path}", box.details)
        self.assertIn("app version: 0.3", box.details)
        # Nothing was saved, so nothing steps back: the message stands in front of the window.
        self.assertTrue(brindle.is_shown())
        self.assertEqual(self.desktop.screen.active_pid(), brindle.pid)
        brindle.answer(box, "OK")
        wait_for(lambda: not self.home.loaded_files(), "the file gone from the settings")
        self.assertEqual(datafile.texts(path), {"From elsewhere"})
        self.assertEqual(datafile.integrity(path), "ok")

    def test_a_file_replaced_after_changes_were_made_is_an_error_too(self):
        path = self.make_file("tasks.bdl")
        newer = datafile.create(self.home.path("newer"), "From elsewhere", root_text="tasks.bdl")
        brindle = self.start_and_type(path)
        brindle.go("ctrl+j", "Second")
        os.replace(newer, path)
        brindle.keys("Return")
        box = brindle.wait_for_box("There was an error")
        self.assertTrue(box.text.endswith(" This file has been closed."), box.text)
        self.assertIn(path, box.details)
        brindle.answer(box, "OK")
        self.assertEqual(datafile.texts(path), {"From elsewhere"})
        self.assertEqual(datafile.integrity(path), "ok")

    def test_a_file_deleted_under_us_is_an_error_and_not_saved_into_nowhere(self):
        path = self.make_file("tasks.bdl")
        brindle = self.start_and_type(path)
        os.unlink(path)
        brindle.keys("Return")
        box = brindle.wait_for_box("There was an error accessing file tasks.bdl.")
        brindle.answer(box, "OK")
        self.assertTrue(brindle.is_running())

    def test_a_failing_file_closes_alone_and_the_other_keeps_everything(self):
        good = self.make_file("good.bdl")
        bad = self.make_file("bad.bdl")
        copy = self.home.path("copy")
        shutil.copy(bad, copy)
        brindle = self.start_with(good, bad)
        brindle.go("ctrl+j", "bad.bdl")
        brindle.go("ctrl+l", "First")
        brindle.write_entry("Lost with its file")
        brindle.go("ctrl+h", "bad.bdl")
        brindle.go("ctrl+k", "good.bdl")
        brindle.go("ctrl+l", "First")
        brindle.write_entry("Typed")
        os.replace(copy, bad)
        brindle.keys("Return")
        box = brindle.wait_for_box("There was an error")
        self.assertIn(bad, box.details)
        brindle.answer(box, "OK")
        self.assertEqual(datafile.texts(good), {"Typed", "Second"})
        self.assertEqual(datafile.texts(bad), {"First", "Second"})
        wait_for(lambda: self.home.loaded_files() == [("0", good)], "only the good file in the settings")
        if not brindle.is_shown():
            brindle.bring_back()
        brindle.expect(text="Typed", parent="good.bdl", following="Second")

    def test_text_being_typed_survives_the_closing_of_another_file(self):
        good = self.make_file("good.bdl")
        bad = self.make_file("bad.bdl", Entry("Jump", key=ord("J"), key_text="J"))
        brindle = self.start_with(good, bad)
        brindle.go("ctrl+l", "First")
        brindle.write_entry("Only in the editor")
        # The other file is closed by way of its root: the text here was never saved.
        brindle.go("alt+j", "Jump")
        brindle.go("ctrl+h", "bad.bdl")
        brindle.click_button("Close")
        brindle.answer(brindle.wait_for_box(SAVE_PROMPT), "Discard")
        brindle.expect(text="good.bdl", following="")
        brindle.go("ctrl+l", "Only in the editor")
        self.assertEqual(datafile.texts(good), {"First", "Second"})
        brindle.save_and_hide()
        self.assertEqual(datafile.texts(good), {"Only in the editor", "Second"})


class ClosingAFile(SavingTestCase):
    def test_cancel_keeps_it_open_save_saves_it(self):
        path = self.make_file("tasks.bdl")
        brindle = self.start_and_type(path)
        brindle.go("ctrl+h", "tasks.bdl")
        brindle.click_button("Close")
        box = brindle.wait_for_box(SAVE_PROMPT)
        brindle.answer(box, "Cancel")
        brindle.wait_until_in_front()
        brindle.expect_text("tasks.bdl")
        brindle.click_button("Close")
        brindle.answer(brindle.wait_for_box(SAVE_PROMPT), "Save")
        brindle.expect(title="Brindle", panel=True, text=None)
        self.assertEqual(datafile.texts(path), {"Typed", "Second"})
        self.assertEqual(self.home.loaded_files(), [])

    def test_with_nothing_to_save_it_asks_nothing(self):
        brindle = self.start_with(self.make_file("tasks.bdl"))
        brindle.click_button("Close")
        brindle.expect(title="Brindle", panel=True, text=None)
        self.assertEqual(brindle.boxes(), [])


if __name__ == "__main__":
    main()
