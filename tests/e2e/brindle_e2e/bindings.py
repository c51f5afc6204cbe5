# SPDX-License-Identifier: MIT
"""What each bound key does, as checks on the screen and in the data file.

Every check starts on one entry of the same small outline. The places are reached through entry
shortcut keys that stand on the same physical key in every keyboard layout (hence the key codes).
"""

from dataclasses import dataclass
from typing import Callable

from . import datafile
from .datafile import DONE, Entry
from .waiting import wait_for

ROOT, THREE, ONE_B, FIVE = "root", "Three", "One b", "Five"
_PLACES = {THREE: "alt+54", ONE_B: "alt+56", FIVE: "alt+55"}  # the keys C, B and V


def create_outline(path):
    return datafile.create(
        path,
        Entry("One", "One a", Entry(ONE_B, key=ord("B"), key_text="B"), "One c"),
        Entry("Two", "Two a"),
        Entry(THREE, key=ord("C"), key_text="C"),
        Entry("Four"),
        Entry(FIVE, state=DONE, done_date="2020-05-04T03:02:01", key=ord("V"), key_text="V"))


def go_to(brindle, place):
    """From the root, where the program starts, to a place of the outline."""
    if place != ROOT:
        brindle.go(_PLACES[place], place)


# The effects. Each gets the running program at its place, and presses the keys.

def shows(**wanted):
    def check(brindle, keys):
        brindle.keys(keys)
        brindle.expect(**wanted)
        brindle.wait_until_in_front()

    return check


def opens(title):
    """The window comes to the front, and Escape gives the keyboard back to the entry."""
    def check(brindle, keys):
        text = brindle.text
        brindle.keys(keys)
        screen = brindle.desktop.screen
        wait_for(lambda: screen.active_window() == screen.find(brindle.pid, title),
                 f"{title!r} in front")
        wait_for(lambda: brindle.dialog(title) and brindle.dialog(title).has("active"),
                 f"{title!r} with the keyboard")
        brindle.keys("Escape")
        wait_for(lambda: not brindle.dialog(title), f"{title!r} hidden")
        brindle.expect_text(text)
        brindle.wait_until_in_front()

    return check


def exits(brindle, keys):
    brindle.keys(keys)
    assert brindle.wait_for_exit() == 0, brindle.process.returncode


def discards(brindle, keys):
    text = brindle.text
    brindle.write_entry("Will be gone")
    brindle.go("ctrl+j", "Four")
    brindle.go("ctrl+k", "Will be gone")
    brindle.keys(keys)
    brindle.expect_text(text)
    brindle.wait_until_in_front()


def binds_shortcut(brindle, keys):
    brindle.keys(keys, "g")
    brindle.expect(key="G", text=THREE)
    brindle.wait_until_in_front()


def saves_and_hides(brindle, keys):
    path = brindle.home.path("keys.bdl")
    brindle.write_entry("Kept")
    assert datafile.row(path, "Kept") is None
    brindle.keys(keys)
    brindle.wait_until_hidden()
    assert datafile.row(path, "Kept") is not None


def hides(brindle, keys):
    path = brindle.home.path("keys.bdl")
    brindle.write_entry("Still in the editor")
    brindle.keys(keys)
    brindle.wait_until_hidden()
    assert datafile.row(path, "Still in the editor") is None
    brindle.bring_back()
    brindle.expect_text("Still in the editor")


def commits_edit(brindle, keys):
    # Two blanks at the end (65 is the space bar): the text that is written has none.
    text = brindle.text
    brindle.keys("End", "65", "65")
    brindle.expect_text(text + "  ")
    brindle.keys(keys)
    brindle.expect_text(text)
    brindle.wait_until_in_front()


@dataclass
class Binding:
    number: int
    keys: str
    place: str
    what: str
    check: Callable


BINDINGS = [
    Binding(1, "ctrl+r", THREE, "opens the report dialog", opens("Create Report")),
    Binding(2, "ctrl+comma", THREE, "opens the settings dialog", opens("Settings")),
    Binding(3, "ctrl+q", THREE, "quits", exits),
    Binding(4, "ctrl+e", THREE, "opens the to-do list", opens("To-do List")),
    Binding(5, "ctrl+f", THREE, "opens the find window", opens("Find")),
    Binding(6, "ctrl+slash", THREE, "opens the help", opens("Brindle Help")),
    Binding(7, "ctrl+shift+slash", THREE, "opens the help", opens("Brindle Help")),
    Binding(8, "ctrl+shift+Delete", THREE, "discards", discards),
    Binding(9, "ctrl+shift+BackSpace", THREE, "discards", discards),
    Binding(10, "ctrl+h", ONE_B, "goes to the parent", shows(text="One", following="Two")),
    Binding(11, "ctrl+bracketleft", THREE, "goes to the first", shows(text="One", preceding="")),
    Binding(12, "ctrl+k", THREE, "goes to the previous", shows(text="Two", preceding="One")),
    Binding(13, "ctrl+j", THREE, "goes to the next", shows(text="Four", following="Five")),
    Binding(14, "ctrl+bracketright", THREE, "goes to the last", shows(text="Five", following="")),
    Binding(15, "ctrl+l", ROOT, "goes to the child", shows(text="One", parent="keys.bdl")),
    Binding(16, "ctrl+n", THREE, "makes a sibling",
            shows(text="", preceding="Three", following="Four", state="to-do")),
    Binding(17, "ctrl+d", THREE, "marks done and goes on",
            shows(text="Four", preceding="Three", preceding_state="done")),
    Binding(18, "ctrl+t", FIVE, "marks to-do",
            shows(text="Five", state="to-do", done_date=None)),
    Binding(19, "ctrl+shift+d", THREE, "marks won't do", shows(text="Three", state="won't do")),
    Binding(20, "ctrl+o", THREE, "marks as category", shows(text="Three", state="category")),
    Binding(21, "ctrl+shift+h", ONE_B, "moves to the parent's level",
            shows(text="One b", parent="keys.bdl", preceding="One", following="Two")),
    Binding(22, "ctrl+shift+bracketleft", THREE, "moves to the top",
            shows(text="Three", preceding="", following="One")),
    Binding(23, "ctrl+shift+k", THREE, "moves up",
            shows(text="Three", preceding="One", following="Two")),
    Binding(24, "ctrl+shift+j", THREE, "moves down",
            shows(text="Three", preceding="Four", following="Five")),
    Binding(25, "ctrl+shift+bracketright", THREE, "moves to the bottom",
            shows(text="Three", preceding="Five", following="")),
    Binding(26, "ctrl+shift+l", THREE, "moves below the preceding entry",
            shows(text="Three", parent="Two", preceding="Two a", following="")),
    Binding(27, "ctrl+s", THREE, "binds a shortcut key", binds_shortcut),
    Binding(28, "ctrl+equal", THREE, "adds to the to-do list", opens("To-do List")),
    Binding(29, "ctrl+shift+equal", THREE, "adds to the to-do list", opens("To-do List")),
    Binding(30, "Return", THREE, "saves and hides", saves_and_hides),
    Binding(31, "KP_Enter", THREE, "saves and hides", saves_and_hides),
    Binding(32, "Escape", THREE, "hides", hides),
    Binding(33, "ctrl+w", THREE, "hides", hides),
    Binding(34, "ctrl+period", THREE, "writes the edited text", commits_edit),
]


def binding(number):
    return BINDINGS[number - 1]


def check_binding(brindle, number, keys=None):
    """Presses the binding's keys, or others that must mean the same, and checks the effect."""
    row = binding(number)
    wait_for(lambda: brindle.text == "keys.bdl", "the root of the file")
    go_to(brindle, row.place)
    row.check(brindle, keys or row.keys)
