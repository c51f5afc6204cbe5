# SPDX-License-Identifier: MIT
"""Data files written and read with plain SQLite, independent of the program under test."""

import os
import re
import sqlite3
from contextlib import closing

STATE_TODO, WONT_DO, DONE, CATEGORY = 0, 1, 2, 3

_SCHEMA = """
CREATE TABLE entry ( id INTEGER PRIMARY KEY NOT NULL, parentid INTEGER NOT NULL REFERENCES entry (id),
    body TEXT NOT NULL, sequence INTEGER NOT NULL, state INTEGER NOT NULL, donedate INTEGER,
    hotkey INTEGER UNIQUE, hotkeytext TEXT, todolistseq INTEGER );
CREATE INDEX entrysequenceidx ON entry ( parentid, sequence );
CREATE UNIQUE INDEX entrytodolistseqidx ON entry (todolistseq);
CREATE VIRTUAL TABLE entrybody USING fts3(content, tokenize=simple);
CREATE TABLE statecombo ( id INTEGER PRIMARY KEY NOT NULL, parentstate INTEGER NOT NULL,
    childstate INTEGER NOT NULL );
CREATE TABLE meta ( name TEXT UNIQUE NOT NULL, value TEXT NOT NULL );
"""
_STATE_COMBOS = [(-1, 0), (-1, 2), (-1, 3), (-1, 1), (0, 0), (0, 2), (0, 1), (2, 2), (2, 1),
                 (3, 0), (3, 2), (3, 3), (3, 1), (1, 0), (1, 2), (1, 1)]


class Entry:
    """One entry of an outline to be written: its text, its children and what sets it apart."""

    def __init__(self, text, *children, state=STATE_TODO, key=None, key_text=None, done_date=None):
        self.text = text
        self.children = children
        self.state = state
        self.key = key
        self.key_text = key_text
        self.done_date = done_date


def create(path, *entries, version=4, root_text=None):
    """Writes a data file whose root holds the given entries (Entry objects or plain texts)."""
    if root_text is None:
        root_text = re.sub(r"[^\w.]", "", os.path.basename(path)) or "file"
    with closing(sqlite3.connect(path)) as connection:
        connection.executescript(_SCHEMA)
        connection.executemany("INSERT INTO statecombo (parentstate, childstate) VALUES (?, ?)",
                               _STATE_COMBOS)
        connection.execute("INSERT INTO meta (name, value) VALUES ('dbschema', ?)", (str(version),))
        _insert(connection, Entry(root_text, *entries, state=CATEGORY), -1, 0)
        connection.commit()
    return path


def _insert(connection, entry, parent_id, sequence):
    if isinstance(entry, str):
        entry = Entry(entry)
    cursor = connection.execute(
        "INSERT INTO entry (parentid, body, sequence, state, donedate, hotkey, hotkeytext)"
        " VALUES (?, '', ?, ?, ?, ?, ?)",
        (parent_id, sequence, entry.state, entry.done_date, entry.key, entry.key_text))
    entry_id = cursor.lastrowid
    connection.execute("INSERT INTO entrybody (docid, content) VALUES (?, ?)", (entry_id, entry.text))
    for index, child in enumerate(entry.children):
        _insert(connection, child, entry_id, index)


def _read_only(path):
    return sqlite3.connect(f"file:{path}?mode=ro", uri=True, timeout=10)


def rows(path):
    """Every entry as a dict with text, parent (its text), state, sequence, key, key_text, done_date."""
    query = """
        SELECT b.content, (SELECT content FROM entrybody WHERE docid = e.parentid), e.state,
               e.sequence, e.hotkey, e.hotkeytext, e.donedate
        FROM entry e JOIN entrybody b ON b.docid = e.id ORDER BY e.parentid, e.sequence"""
    names = ("text", "parent", "state", "sequence", "key", "key_text", "done_date")
    with closing(_read_only(path)) as connection:
        return [dict(zip(names, row)) for row in connection.execute(query)]


def row(path, text):
    """The one entry with this text, or None."""
    found = [entry for entry in rows(path) if entry["text"] == text]
    assert len(found) < 2, f"{text!r} stands {len(found)} times in {path}"
    return found[0] if found else None


def texts(path):
    """The texts of all entries below the root."""
    return {entry["text"] for entry in rows(path) if entry["parent"] is not None}


def children(path, parent_text):
    """The texts below the entry with that text, in their order."""
    found = [entry for entry in rows(path) if entry["parent"] == parent_text]
    return [entry["text"] for entry in sorted(found, key=lambda entry: entry["sequence"])]


def outline(path):
    """The outline under the root as nested lists: [text, [children…]]."""
    def below(entry_id):
        found = connection.execute(
            "SELECT e.id, b.content FROM entry e JOIN entrybody b ON b.docid = e.id"
            " WHERE e.parentid = ? ORDER BY e.sequence", (entry_id,)).fetchall()
        return [[text, below(child_id)] for child_id, text in found]

    with closing(_read_only(path)) as connection:
        return below(-1)


def schema_version(path):
    with closing(_read_only(path)) as connection:
        return int(connection.execute("SELECT value FROM meta WHERE name = 'dbschema'").fetchone()[0])


def integrity(path):
    """'ok' when SQLite finds nothing wrong with the file."""
    with closing(_read_only(path)) as connection:
        return connection.execute("PRAGMA integrity_check").fetchone()[0]
