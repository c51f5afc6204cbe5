# SPDX-License-Identifier: MIT
"""Every rule that the random keys are checked by finds a file that breaks it."""

import os
import sqlite3
import tempfile
import unittest
from contextlib import closing

from brindle_e2e import datafile, soundness
from brindle_e2e.datafile import CATEGORY, DONE, Entry

BREAKING = {
    "there is not exactly one root": (
        "UPDATE entry SET sequence = 1 WHERE parentid = -1",
        "INSERT INTO entry (parentid, body, sequence, state) VALUES (-1, '', 1, 3)",
        "DELETE FROM entry WHERE parentid = -1"),
    "an entry's parent doesn't exist": ("UPDATE entry SET parentid = 99 WHERE id = 3",),
    "an entry is its own ancestor": ("UPDATE entry SET parentid = 3 WHERE id = 2",
                                     "UPDATE entry SET parentid = 4 WHERE id = 4"),
    "an entry has no text row": ("DELETE FROM entrybody WHERE docid = 3",),
    "a text row has no entry": ("INSERT INTO entrybody (docid, content) VALUES (99, 'lost')",),
    "siblings share a sequence": ("UPDATE entry SET sequence = 0 WHERE id = 4",),
    "an entry's state may not stand under its parent's": (
        "UPDATE entry SET state = 2 WHERE id = 2", "UPDATE entry SET state = -1 WHERE id = 1"),
    "entries share a place on the to-do list": (
        "DROP INDEX entrytodolistseqidx; UPDATE entry SET todolistseq = 5 WHERE id IN (2, 3)",),
}


class Soundness(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.path = os.path.join(folder.name, "file.bdl")
        datafile.create(self.path, Entry("A", "B"), Entry("C", state=DONE), Entry("D", state=CATEGORY))

    def change(self, statements):
        with closing(sqlite3.connect(self.path)) as connection:
            connection.executescript(statements)

    def test_a_sound_file_has_no_faults(self):
        self.assertEqual(soundness.faults(self.path), [])

    def test_each_rule_is_looked_at(self):
        with open(self.path, "rb") as file:
            sound = file.read()
        for fault, ways in BREAKING.items():
            for statements in ways:
                with self.subTest(statements):
                    with open(self.path, "wb") as file:
                        file.write(sound)
                    self.change(statements)
                    self.assertTrue(any(found.startswith(fault) for found in soundness.faults(self.path)),
                                    soundness.faults(self.path))

    def test_two_entries_with_one_shortcut_key(self):
        # Only a table without the rule can hold them.
        self.change("CREATE TABLE copy AS SELECT * FROM entry; DROP TABLE entry; ALTER TABLE copy RENAME TO entry;"
                    " UPDATE entry SET hotkey = 65 WHERE id IN (2, 3)")
        self.assertRegex(" ".join(soundness.faults(self.path)), "entries share a shortcut key")

    def test_a_damaged_and_an_unreadable_file(self):
        with open(self.path, "r+b") as file:
            file.seek(4096)
            file.write(b"\xff" * 4096)
        self.assertNotEqual(soundness.faults(self.path), [])
        with open(self.path, "wb") as file:
            file.write(b"no database at all, but long enough to be looked at" * 100)
        self.assertRegex(" ".join(soundness.faults(self.path)), "can't be read")

        os.remove(self.path)
        self.assertRegex(" ".join(soundness.faults(self.path)), "can't be read")
        self.assertFalse(os.path.exists(self.path))

    def test_any_name(self):
        path = os.path.join(os.path.dirname(self.path), "100% #1?.bdl")
        os.rename(self.path, path)
        self.assertEqual(soundness.faults(path), [])

    def test_the_difference_of_two_contents(self):
        before = soundness.contents(self.path)
        self.change("UPDATE entrybody SET content = 'b' WHERE docid = 3")
        self.assertEqual(soundness.difference(before, soundness.contents(self.path)),
                         {"texts": {"gone": [(3, "B")], "new": [(3, "b")]}})


if __name__ == "__main__":
    unittest.main(verbosity=2)
