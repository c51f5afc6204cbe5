# SPDX-License-Identifier: MIT
"""How the program starts: splash, settings good and bad, files good and bad, the command line."""

import contextlib
import hashlib
import os
import sqlite3
import subprocess
import sys
import time

from brindle_e2e import datafile
from brindle_e2e.case import BrindleTestCase, PROGRAM, main
from brindle_e2e.waiting import stays, wait_for

NOT_ACCESSIBLE = "File could not be accessed. It will be skipped."

# Keeps a data file locked against everybody until it is ended.
LOCKER = """
import sqlite3, sys, time
connection = sqlite3.connect(sys.argv[1], isolation_level=None)
connection.execute("BEGIN EXCLUSIVE")
open(sys.argv[2], "w").close()
time.sleep(600)
"""


def digest(path):
    with open(path, "rb") as file:
        return hashlib.sha256(file.read()).hexdigest()


class Splash(BrindleTestCase):
    def test_a_key_ends_it_at_once(self):
        started = time.monotonic()
        brindle = self.start(splash="space")
        self.assertLess(time.monotonic() - started, 6)
        brindle.expect(title="Brindle", panel=True)

    def test_a_click_ends_it_at_once(self):
        started = time.monotonic()
        brindle = self.start(splash="click")
        self.assertLess(time.monotonic() - started, 6)
        brindle.expect(title="Brindle", panel=True)

    def test_left_alone_it_stays_for_8_seconds_and_takes_no_longer(self):
        self.launch()
        brindle = self.programs[0]
        wait_for(brindle.splash, "the splash screen")
        started = time.monotonic()
        stays(lambda: brindle.splash() and not brindle.is_shown(), "the splash alone", 7)
        brindle.wait_for_main_window()
        self.assertLess(time.monotonic() - started, 9.5)


class WithoutFiles(BrindleTestCase):
    def test_only_the_two_buttons_show(self):
        brindle = self.start()
        view = brindle.view()
        self.assertEqual((view.title, view.panel, view.text, view.parent, view.file),
                         ("Brindle", True, None, None, None))
        self.assertIsNotNone(brindle.button("Create file"))
        self.assertIsNone(brindle.button("Close"))

    def test_a_file_made_through_the_save_dialog_gets_the_suffix_and_is_remembered(self):
        brindle = self.start()
        brindle.click_button("Create file")
        self.type_into_dialog(brindle, "Create a new file", self.home.path("My tasks"))
        path = self.home.path("My tasks.bdl")
        brindle.expect(title="Brindle (Mytasks.bdl)", text="Mytasks.bdl", state="category",
                       panel=False)
        brindle.wait_until_in_front()
        self.assertIn("My tasks.bdl", brindle.view().file)
        self.assertEqual(self.home.loaded_files(), [("0", path)])
        self.assertEqual(datafile.schema_version(path), 4)

    def test_replacing_a_file_is_asked_and_no_means_no(self):
        path = datafile.create(self.home.path("old.bdl"), "Precious")
        brindle = self.start()
        brindle.click_button("Create file")
        # Typed without the suffix: the question must be asked about the file that would be hit.
        self.type_into_dialog(brindle, "Create a new file", self.home.path("old"))
        box = brindle.wait_for_box()
        self.assertIn("old.bdl", box.text)
        brindle.answer(box, "No")
        brindle.keys("Escape")
        brindle.wait_until_in_front()
        brindle.expect(panel=True)
        self.assertEqual(datafile.texts(path), {"Precious"})

    def test_opening_a_file_through_the_dialog_and_once_more_under_another_name(self):
        path = datafile.create(self.home.path("tasks.bdl"), "Here")
        link = self.home.path("link.bdl")
        os.symlink(path, link)
        brindle = self.start()
        brindle.click_button("Open file")
        self.type_into_dialog(brindle, "Open an existing file", path)
        brindle.expect(text="tasks.bdl")
        for other in (path, link):
            with self.subTest(other=other):
                brindle.keys("ctrl+n")
                brindle.expect(panel=True)
                brindle.click_button("Open file")
                self.type_into_dialog(brindle, "Open an existing file", other)
                box = brindle.wait_for_box("That file is already open.")
                self.assertEqual(box.title, "File Already Open")
                brindle.answer(box, "OK")
                brindle.expect(panel=True, preceding="tasks.bdl", following="")
                brindle.go("ctrl+k", "tasks.bdl")
        self.assertEqual(self.home.loaded_files(), [("0", path)])
        brindle.go("ctrl+l", "Here")

    def type_into_dialog(self, brindle, title, path):
        wait_for(lambda: brindle.dialog(title), f"the dialog {title!r}")
        wait_for(lambda: self.desktop.screen.title(self.desktop.screen.active_window()) == title,
                 f"the dialog {title!r} in front")
        brindle.keys("ctrl+a")
        brindle.write(path)
        name = next(part for part in brindle.dialog(title).shown() if part.role == "text")
        wait_for(lambda: name.text == path, "the path in the dialog")
        brindle.keys("Return")


class CorruptSettings(BrindleTestCase):
    def check_refused(self, settings, reason):
        self.home.write_settings(settings)
        before = self.home.settings_bytes()
        brindle = self.launch()
        box = brindle.wait_for_box()
        self.assertIn(self.home.settings_path, box.text + box.details)
        brindle.answer(box, "OK")
        self.assertEqual(brindle.wait_for_exit(), 1)
        self.assertEqual(self.home.settings_bytes(), before)
        self.assertIn(reason, brindle.log())

    def test_an_index_that_is_no_number(self):
        self.check_refused("[loadfiles]\nx=/tmp/a.bdl\n", "illegal index string")

    def test_the_same_index_twice(self):
        self.check_refused("[loadfiles]\n1=/tmp/a.bdl\n01=/tmp/b.bdl\n", "duplicate file index")

    def test_the_old_setting_beside_the_new_ones(self):
        self.check_refused("[General]\ndbpath=/tmp/a.bdl\n\n[loadfiles]\n0=/tmp/b.bdl\n",
                           "illegal settings state")


class RememberedFiles(BrindleTestCase):
    def roots_in_order(self, brindle):
        """The files' roots from the first to the last, as the user walks over them."""
        brindle.keys("ctrl+bracketleft")
        wait_for(lambda: brindle.view().preceding == "", "the first file")
        roots = [brindle.text]
        while brindle.view().following:
            following = brindle.view().following
            brindle.go("ctrl+j", following)
            roots.append(following)
        return roots

    def test_numbers_with_gaps_are_read_in_order_and_kept_until_the_list_changes(self):
        paths = [datafile.create(self.home.path(f"{name}.bdl")) for name in ("b", "a", "c")]
        self.home.write_settings("[loadfiles]\n"
                                 f"10={paths[2]}\n2={paths[0]}\n7={paths[1]}\n")
        brindle = self.start()
        self.assertEqual(self.roots_in_order(brindle), ["b.bdl", "a.bdl", "c.bdl"])
        self.assertEqual(set(self.home.settings("loadfiles")), {"2", "7", "10"})
        brindle.keys("ctrl+shift+k")
        brindle.expect(text="c.bdl", following="a.bdl")
        wait_for(lambda: dict(self.home.loaded_files())
                 == {"0": paths[0], "1": paths[2], "2": paths[1]}, "the list rewritten")

    def test_the_old_single_file_setting_is_taken_over(self):
        path = datafile.create(self.home.path("a.bdl"))
        self.home.write_settings(f"[General]\ndbpath={path}\nappstarted=true\n")
        brindle = self.start()
        brindle.expect(text="a.bdl")
        self.assertEqual(self.home.loaded_files(), [("0", path)])
        self.assertNotIn(b"dbpath", self.home.settings_bytes())
        self.assertNotIn(b"appstarted", self.home.settings_bytes())

    def test_the_order_of_two_files_survives_a_restart(self):
        paths = [datafile.create(self.home.path(f"{name}.bdl"), name) for name in ("a", "b")]
        brindle = self.start_with(*paths)
        brindle.keys("ctrl+shift+j")
        brindle.expect(text="a.bdl", preceding="b.bdl")
        self.assertEqual(brindle.quit(), 0)
        brindle = self.start()
        self.assertEqual(self.roots_in_order(brindle), ["b.bdl", "a.bdl"])
        self.assertEqual(self.home.loaded_files(), [("0", paths[1]), ("1", paths[0])])

    def test_one_file_under_two_spellings_opens_once(self):
        path = datafile.create(self.home.path("a.bdl"))
        link = self.home.path("link.bdl")
        os.symlink(path, link)
        self.home.remember_files(path, path.replace("/files/", "/./files//"), link, path)
        brindle = self.start()
        self.assertEqual(self.roots_in_order(brindle), ["a.bdl"])
        brindle.go("ctrl+l", "")
        brindle.write_entry("Saved")
        brindle.save_and_hide()
        self.assertEqual(datafile.texts(path), {"Saved"})

    def test_loading_alone_changes_nothing_and_quitting_asks_nothing(self):
        path = datafile.create(self.home.path("a.bdl"), "no-break\u00a0space", "\u2028separator",
                               "  untrimmed ")
        brindle = self.start_with(path)
        brindle.keys("ctrl+l")
        wait_for(lambda: (brindle.view().parent or "") == "a.bdl", "the first entry")
        brindle.keys("ctrl+j", "ctrl+j")
        wait_for(lambda: "untrimmed" in (brindle.text or ""), "the last entry")
        brindle.keys("ctrl+q")
        self.assertEqual(brindle.wait_for_exit(), 0)
        self.assertEqual(datafile.texts(path),
                         {"no-break\u00a0space", "\u2028separator", "  untrimmed "})


class BadFiles(BrindleTestCase):
    """Each bad file is named in a message, the good ones open, nothing on the disk is damaged."""

    def make_files(self):
        path = self.home.path
        self.good = [datafile.create(path("good1.bdl"), "One"),
                     datafile.create(path("good2.bdl"), "Two")]
        newer = datafile.create(path("newer.bdl"), "From the future", version=5)
        garbage = path("garbage.bdl")
        with open(garbage, "wb") as file:
            file.write(bytes(range(256)) * 64)
        truncated = datafile.create(path("truncated.bdl"), *(f"Entry {i}" for i in range(400)))
        os.truncate(truncated, os.path.getsize(truncated) // 2 // 4096 * 4096 + 100)
        folder = path("folder.bdl")
        os.mkdir(folder)
        locked = datafile.create(path("locked.bdl"), "Locked")
        read_only = datafile.create(path("readonly.bdl"), "Read only")
        os.chmod(read_only, 0o444)
        missing = path("missing.bdl")
        rootless = datafile.create(path("rootless.bdl"), "Orphan")
        with contextlib.closing(sqlite3.connect(rootless)) as connection:
            connection.execute("DELETE FROM entry WHERE parentid = -1")
            connection.commit()
        accessing = "There was an error accessing file {}. This file will be skipped."
        newer_text = ("There was an error: File (newer.bdl) is incompatible with this version of "
                      "Brindle. Consider upgrading your copy and trying again.. "
                      "This file will be skipped.")
        self.bad = {newer: newer_text, garbage: accessing.format("garbage.bdl"),
                    truncated: accessing.format("truncated.bdl"),
                    folder: accessing.format("folder.bdl"), locked: accessing.format("locked.bdl"),
                    read_only: NOT_ACCESSIBLE, missing: NOT_ACCESSIBLE,
                    rootless: "There was an error: root entry not found; every file should have "
                              "a root entry. This file will be skipped."}
        self.locked = locked

    def as_ordinary_user(self):
        """Root may write any file; without this power it is told the truth about permissions."""
        if os.geteuid() != 0:
            return ()
        return ("setpriv", "--bounding-set", "-dac_override,-dac_read_search", "--")

    def test_bad_files_are_named_and_the_good_ones_open(self):
        self.make_files()
        ready = os.path.join(self.home.folder, "locked")
        locker = self.helper([sys.executable, "-c", LOCKER, self.locked, ready])
        wait_for(lambda: os.path.exists(ready), "the lock")
        files = [path for path in self.bad if os.path.isfile(path)]
        before = {path: digest(path) for path in files}
        self.home.remember_files(self.good[0], *self.bad, self.good[1])

        brindle = self.launch(wrapper=self.as_ordinary_user())
        for path, text in self.bad.items():
            with self.subTest(file=os.path.basename(path)):
                box = wait_for(lambda: next(iter(brindle.boxes()), None),
                               f"a message about {path}", 60)
                self.assertEqual(box.text, text)
                self.assertIn(path, box.details)
                self.assertEqual([button for button in box.buttons if "Details" not in button], ["OK"])
                box.node.press_button("OK")
                wait_for(lambda: not box.node.has("showing"), "the message gone")
        if brindle.splash():
            brindle.end_splash()
        brindle.wait_for_main_window()
        brindle.expect(text="good1.bdl", following="good2.bdl")
        brindle.go("ctrl+j", "good2.bdl")
        brindle.expect(following="")
        # The one that another program is at work on is there again next time.
        self.assertEqual(dict(self.home.loaded_files()),
                         {"0": self.good[0], str(list(self.bad).index(self.locked) + 1): self.locked,
                          str(len(self.bad) + 1): self.good[1]})
        self.desktop.end(locker)
        self.assertEqual({path: digest(path) for path in files}, before)


class CommandLine(BrindleTestCase):
    def answer(self, *arguments):
        """Runs the program without any display, as in a terminal far away."""
        env = {name: value for name, value in {**self.desktop.env, **self.home.env}.items()
               if name not in ("DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM")}
        return subprocess.run([PROGRAM, *arguments], env=env, capture_output=True, text=True,
                              timeout=30, stdin=subprocess.DEVNULL)

    def test_version_needs_no_display(self):
        answer = self.answer("--version")
        self.assertEqual((answer.returncode, answer.stdout.strip()), (0, "Brindle 0.3\nLicence: MIT"))

    def test_help_needs_no_display(self):
        answer = self.answer("--help")
        self.assertEqual(answer.returncode, 0)
        self.assertIn("[FILE…]", answer.stdout)

    def test_files_named_there_open_beside_the_known_ones_each_once(self):
        known = datafile.create(self.home.path("known.bdl"))
        new = datafile.create(self.home.path("new.bdl"), "Found")
        self.home.remember_files(known)
        # Relative to the folder where the program is started.
        brindle = self.start("files/new.bdl", "files/../files/known.bdl", new)
        brindle.expect(text="new.bdl", preceding="known.bdl", following="")
        self.assertEqual(self.home.loaded_files(), [("0", known), ("1", new)])
        self.assertEqual(brindle.boxes(), [])

    def test_a_file_named_only_by_signs_works_like_any_other(self):
        path = self.home.path("!!!")
        open(path, "wb").close()
        brindle = self.start(path)
        brindle.expect(title="Brindle (file)", text="file", panel=False)
        brindle.go("ctrl+l", "")
        brindle.write_entry("Below it")
        brindle.save_and_hide()
        self.assertEqual(datafile.outline(path), [["file", [["Below it", []]]]])


if __name__ == "__main__":
    main()
