# SPDX-License-Identifier: MIT
"""The windows around the main window, as their user meets them, and the to-do list in data files."""

import os
import sqlite3
from contextlib import closing

from .brindle import middle
from .case import BrindleTestCase
from .waiting import stays, wait_for, wait_for_value

TODO_LIST, FIND, REPORT_RANGE, REPORT = "To-do List", "Find", "Create Report", "Report"
SETTINGS, HELP = "Settings", "Brindle Help"
OPENING_KEYS = {TODO_LIST: "ctrl+e", FIND: "ctrl+f", REPORT_RANGE: "ctrl+r",
                SETTINGS: "ctrl+comma", HELP: "ctrl+slash"}


class Window:
    """One window of the running program, by its title."""

    def __init__(self, brindle, title):
        self.brindle = brindle
        self.title = title
        self._desktop = brindle.desktop

    def is_shown(self):
        return self.id is not None

    @property
    def id(self):
        """Its id on the screen, None while it is hidden."""
        screen = self._desktop.screen
        for window_id in screen.windows_of(self.brindle.pid):
            if screen.title(window_id) == self.title:
                return window_id
        return None

    @property
    def node(self):
        return wait_for(lambda: self.brindle.dialog(self.title), f"{self.title!r} on the screen")

    def wait_until_in_front(self):
        wait_for(lambda: self.id and self._desktop.screen.active_window() == self.id
                 and self.node.has("active"), f"{self.title!r} in front")
        return self

    def wait_until_hidden(self):
        wait_for(lambda: not self.is_shown(), f"{self.title!r} hidden")

    def stays_shown(self, seconds=0.7):
        stays(self.is_shown, f"{self.title!r} stays", seconds)

    def part(self, role, name=None):
        """The first shown part of that role and name."""
        def find():
            for part in self.node.shown():
                if part.role == role and name in (None, part.name.replace("&", "")):
                    return part
            return None

        return wait_for(find, lambda: f"{role} {name!r} in {self.title!r}: {self.node.dump()}")

    def click(self, part):
        self._desktop.click(*middle(self.spot(part)))

    def press_button(self, name):
        """Clicks a button with the mouse."""
        self.click(self.part("push button", name))

    # Lists.

    def rows(self):
        """The texts in the window's list, from the top."""
        return [item.name for item in self.items()]

    def items(self):
        return [item for item in self.part("list").children_or_none() if item.role == "list item"]

    def selected(self):
        return [item.name for item in self.items() if item.has("selected")]

    def expect(self, rows, selected=None):
        """Waits until the list shows these rows, and this one of them is selected (if given)."""
        wanted = (list(rows), [selected]) if selected is not None else list(rows)
        wait_for_value(lambda: (self.rows(), self.selected()) if selected is not None
                       else self.rows(), wanted, f"the list in {self.title!r}")

    def drag(self, text, target, where):
        """Drags a row with the mouse: to the upper edge, middle or lower edge of the target row."""
        def extents(wanted):
            return self.spot(next(item for item in self.items() if item.name == wanted))

        x, y, width, height = extents(text)
        start = (x + 20, y + height // 2)
        x, y, width, height = extents(target)
        end = (x + 40, {"above": y + 1, "on": y + height // 2, "below": y + height - 1}[where])
        self._desktop.drag(start, end)

    def spot(self, part):
        """(x, y, width, height) of a part, on the screen."""
        window_id = wait_for(lambda: self.id, f"{self.title!r} on the screen")
        return self._desktop.screen.spot(window_id, self.node, part)


class WindowsTestCase(BrindleTestCase):
    """Starts the program on prepared files, without looking for updates."""

    def start_quietly(self, *paths, more_settings=""):
        self.home.remember_files(*paths)
        with open(self.home.settings_path, encoding="utf-8") as file:
            text = file.read()
        self.home.write_settings(text.replace("[General]\n", "[General]\ndontcheckforupdates=true\n")
                                 + more_settings)
        return self.start()

    def open(self, brindle, keys, title):
        """Opens a window by its keys, from the window that is in front."""
        brindle.keys(keys)
        return Window(brindle, title).wait_until_in_front()

    def close(self, window, keys="Escape"):
        """Hides a window by keys; the editor has the keyboard again then."""
        window.brindle.keys(keys)
        window.wait_until_hidden()
        window.brindle.wait_until_in_front()

    def picture(self, name):
        """Keeps a picture of the screen when a folder for pictures is given."""
        folder = os.environ.get("BRINDLE_E2E_PICTURES")
        if folder:
            self.desktop.picture(os.path.join(folder, f"{name}.png"))


def put_on_list(path, *texts):
    """Puts entries of a data file on the to-do list, before the program opens it."""
    with closing(sqlite3.connect(path)) as connection:
        for index, text in enumerate(texts):
            found = connection.execute(
                "UPDATE entry SET todolistseq = ? WHERE id ="
                " (SELECT docid FROM entrybody WHERE content = ?)", (1000 * (index + 1), text))
            assert found.rowcount == 1, text
        connection.commit()
    return path


def todo_list(path):
    """The to-do list as the data file has it."""
    with closing(sqlite3.connect(f"file:{path}?mode=ro", uri=True, timeout=10)) as connection:
        return [text for text, in connection.execute(
            "SELECT b.content FROM entry e JOIN entrybody b ON b.docid = e.id"
            " WHERE e.todolistseq IS NOT NULL ORDER BY e.todolistseq")]
