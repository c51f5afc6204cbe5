# SPDX-License-Identifier: MIT
"""What must hold for every data file at any time, whatever was done to the program; and its contents."""

import sqlite3
import urllib.parse
from contextlib import closing

# What has gone wrong when a query gives rows.
_FAULTS = (
    ("there is not exactly one root, at parent -1 and sequence 0",
     "SELECT COUNT(*), MIN(sequence) FROM entry WHERE parentid = -1"
     " HAVING COUNT(*) <> 1 OR MIN(sequence) <> 0"),
    ("an entry's parent doesn't exist",
     "SELECT id, parentid FROM entry WHERE parentid <> -1 AND parentid NOT IN (SELECT id FROM entry)"),
    ("an entry is its own ancestor",
     "WITH RECURSIVE below(id) AS (SELECT id FROM entry WHERE parentid = -1"
     " UNION SELECT entry.id FROM entry JOIN below ON entry.parentid = below.id)"
     " SELECT id, parentid FROM entry WHERE id NOT IN (SELECT id FROM below)"
     " AND parentid IN (SELECT id FROM entry)"),
    ("an entry has no text row", "SELECT id FROM entry WHERE id NOT IN (SELECT docid FROM entrybody)"),
    ("a text row has no entry", "SELECT docid FROM entrybody WHERE docid NOT IN (SELECT id FROM entry)"),
    ("siblings share a sequence",
     "SELECT parentid, sequence, COUNT(*) FROM entry GROUP BY parentid, sequence HAVING COUNT(*) > 1"),
    ("an entry's state may not stand under its parent's",
     "SELECT child.id, child.state, parent.id, parent.state FROM entry child"
     " LEFT JOIN entry parent ON parent.id = child.parentid"
     " WHERE NOT EXISTS (SELECT 1 FROM statecombo WHERE childstate = child.state"
     " AND parentstate = IFNULL(parent.state, -1))"),
    ("entries share a place on the to-do list",
     "SELECT todolistseq, COUNT(*) FROM entry WHERE todolistseq IS NOT NULL"
     " GROUP BY todolistseq HAVING COUNT(*) > 1"),
    ("entries share a shortcut key",
     "SELECT hotkey, COUNT(*) FROM entry WHERE hotkey IS NOT NULL GROUP BY hotkey HAVING COUNT(*) > 1"),
)


def faults(path):
    """What is wrong with a file that nobody has open, as texts; as any program opens it, it is first
    rolled back to the last state that was saved."""
    found = []
    try:
        with closing(_opened(path, "rw")) as connection:
            answers = connection.execute("PRAGMA integrity_check").fetchall()
            if answers != [("ok",)]:
                return [f"SQLite finds the file damaged: {answers}"]
            for what, query in _FAULTS:
                rows = connection.execute(query).fetchall()
                if rows:
                    found.append(f"{what}: {rows}")
    except sqlite3.Error as error:
        found.append(f"the file can't be read: {error}")
    return found


def contents(path, beside_program=False):
    """Everything that was saved, to be compared. Beside the program nothing is written, come what may."""
    with closing(_opened(path, "ro" if beside_program else "rw")) as connection:
        return {
            "entries": connection.execute("SELECT * FROM entry ORDER BY id").fetchall(),
            "texts": connection.execute("SELECT docid, content FROM entrybody ORDER BY docid").fetchall(),
            "meta": connection.execute("SELECT name, value FROM meta ORDER BY name").fetchall(),
        }


def difference(before, after):
    """The rows that are in one of two contents only."""
    return {kind: {"gone": [row for row in before[kind] if row not in after[kind]],
                   "new": [row for row in after[kind] if row not in before[kind]]}
            for kind in before if before[kind] != after[kind]}


def _opened(path, mode):
    # A file's name may hold what means something in an address.
    return sqlite3.connect(f"file:{urllib.parse.quote(path)}?mode={mode}", uri=True, timeout=30)
