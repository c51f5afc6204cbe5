# SPDX-License-Identifier: MIT
"""The dialogs that open and create files, beside files that are open with unsaved changes."""

import os
import sqlite3
from contextlib import closing

from brindle_e2e import datafile
from brindle_e2e.case import BrindleTestCase, main
from brindle_e2e.waiting import wait_for

DIALOGS = (("Open file", "Open an existing file"), ("Create file", "Create a new file"))


def can_be_written_by_others(path):
    """Whether another process gets the write lock of the file; it gives it back at once."""
    with closing(sqlite3.connect(path, timeout=0, isolation_level=None)) as connection:
        try:
            connection.execute("BEGIN IMMEDIATE")
        except sqlite3.OperationalError as error:
            assert str(error) == "database is locked", error
            return False
        return True


class Locks(BrindleTestCase):
    def test_a_dialog_shown_and_cancelled_leaves_the_open_files_locked(self):
        # In the folder that the dialogs show. Qt would look into each: no name tells it enough.
        names = ("work.bdl", "notes.db", "plain")
        paths = [datafile.create(os.path.join(self.home.folder, name), "First") for name in names]
        brindle = self.start_with(*paths)
        for name in names:
            brindle.expect_text(name)
            brindle.go("ctrl+l", "First")
            brindle.write_entry(f"Typed in {name}")
            brindle.keys("ctrl+h")
            brindle.expect_text(name)
            if name != names[-1]:
                brindle.keys("ctrl+j")
        brindle.keys("ctrl+n")
        brindle.expect(panel=True)
        for button, title in DIALOGS:
            self.show_and_cancel(brindle, button, title, names)
            for path in paths:
                with self.subTest(dialog=title, path=path):
                    self.assertFalse(can_be_written_by_others(path))
        brindle.save_and_hide()
        for name, path in zip(names, paths):
            self.assertEqual(datafile.texts(path), {f"Typed in {name}"})
            self.assertEqual(datafile.integrity(path), "ok")
            self.assertTrue(can_be_written_by_others(path))

    def show_and_cancel(self, brindle, button, title, names):
        brindle.click_button(button)
        wait_for(lambda: brindle.dialog(title), f"the dialog {title!r}")
        wait_for(lambda: self.desktop.screen.title(self.desktop.screen.active_window()) == title,
                 f"the dialog {title!r} in front")
        wait_for(lambda: any(part.name == names[0] for part in brindle.dialog(title).shown()),
                 "the file in the dialog")
        brindle.keys("Escape")
        wait_for(lambda: not brindle.dialog(title), "the dialog gone")
        brindle.wait_until_in_front()


if __name__ == "__main__":
    main()
