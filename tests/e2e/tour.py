# SPDX-License-Identifier: MIT
"""A walk through Brindle with real keys on a virtual display, with a picture of every step.

Usage: tour.py PROGRAM FOLDER. Prints one line per step with what was checked; the first step that
fails ends the tour with exit status 1 and a last picture.
"""

import os
import shutil
import sys
import tempfile

from brindle_e2e import datafile
from brindle_e2e.brindle import Brindle
from brindle_e2e.desktop import Desktop
from brindle_e2e.home import Home
from brindle_e2e.waiting import wait_for, wait_for_value
from brindle_e2e.windows import FIND, HELP, REPORT, REPORT_RANGE, SETTINGS, TODO_LIST, Window


class Tour:
    def __init__(self, desktop, program, folder):
        self.desktop = desktop
        self.program = program
        self.folder = folder
        self.home = Home(tempfile.mkdtemp(prefix="tour-", dir=desktop.folder))
        self.path = self.home.path("groceries.bdl")
        self.brindle = None
        self.other = None
        self.number = 0

    def step(self, name, checked):
        """Takes the picture of a step that went well and says what was checked."""
        self.number += 1
        self.desktop.picture(os.path.join(self.folder, f"{self.number:02}-{name}.png"))
        print(f"{self.number:2}  {checked}", flush=True)

    def walk(self):
        self.splash_and_main_window()
        self.create_file()
        self.write_outline()
        self.reorder()
        self.change_states()
        self.clear_an_entry()
        self.bind_and_jump()
        self.save_and_discard()
        self.keep_a_todo_list()
        self.find()
        self.report()
        self.help_and_settings()
        self.from_another_program_and_back()
        self.quit_and_start_again()

    def splash_and_main_window(self):
        brindle = self.brindle = Brindle(self.desktop, self.program, self.home).launch()
        wait_for(brindle.splash, "the splash screen")
        self.step("splash", "the splash screen is on the screen")
        brindle.end_splash("space")
        brindle.wait_for_main_window()
        brindle.expect(title="Brindle", panel=True, text=None)
        assert brindle.button("Create file") is not None
        self.step("main-window", "a key ended it; the main window offers \"Open file\" and \"Create file\"")

    def create_file(self):
        brindle, title = self.brindle, "Create a new file"
        brindle.click_button("Create file")
        wait_for(lambda: brindle.dialog(title), "the save dialog")
        wait_for(lambda: self.desktop.screen.title(self.desktop.screen.active_window()) == title,
                 "the save dialog in front")
        brindle.keys("ctrl+a")
        brindle.write(self.path.removesuffix(".bdl"))
        self.step("save-dialog", "\"Create file\" opened the save dialog, the name is typed")
        brindle.keys("Return")
        brindle.expect(title="Brindle (groceries.bdl)", text="groceries.bdl", state="category")
        brindle.wait_until_in_front()
        assert self.home.loaded_files() == [("0", self.path)], self.home.loaded_files()
        self.step("file", "the new file is open and remembered, the editor has the keyboard")

    def write_outline(self):
        brindle = self.brindle
        for keys, text in (("ctrl+l", "Shopping"), ("ctrl+l", "Market"), ("ctrl+l", "Apples"),
                           ("ctrl+j", "Bread"), ("ctrl+j", "Cheese")):
            brindle.go(keys, "")
            brindle.write_entry(text)
        brindle.expect(parent="Market", preceding="Bread", following="")
        self.step("third-level", "three levels written by keyboard: Shopping, Market, and three things there")
        brindle.go("ctrl+h", "Market")
        brindle.go("ctrl+n", "")
        brindle.write_entry("Chemist")
        brindle.go("ctrl+h", "Shopping")
        brindle.go("ctrl+n", "")
        brindle.write_entry("Letters")
        brindle.go("ctrl+n", "")
        brindle.write_entry("Taxes")
        brindle.expect(parent="groceries.bdl", preceding="Letters")
        self.step("first-level", "siblings on the upper levels, parent and neighbours around the entry")

    def reorder(self):
        brindle = self.brindle
        brindle.keys("ctrl+shift+k")
        brindle.expect(text="Taxes", preceding="Shopping", following="Letters")
        brindle.keys("ctrl+shift+bracketleft")
        brindle.expect(text="Taxes", preceding="", following="Shopping")
        brindle.keys("ctrl+shift+bracketright")
        brindle.expect(text="Taxes", preceding="Letters", following="")
        self.step("reordered", "moved up, to the top and to the bottom; the neighbours follow")

    def change_states(self):
        brindle = self.brindle
        brindle.keys("ctrl+o")
        brindle.expect(text="Taxes", state="category")
        brindle.go("ctrl+bracketleft", "Shopping")
        brindle.go("ctrl+l", "Market")
        brindle.go("ctrl+l", "Apples")
        brindle.go("ctrl+d", "Bread")
        brindle.expect(preceding="Apples", preceding_state="done")
        brindle.keys("ctrl+shift+d")
        brindle.expect(text="Bread", state="won't do")
        wait_for(lambda: brindle.colour_of_state_bar() == "#ffcc44", "the yellow bar of won't do")
        self.step("states", "category; done went on to the next entry; won't do has its yellow bar")

    def clear_an_entry(self):
        brindle = self.brindle
        brindle.go("ctrl+j", "Cheese")
        brindle.write_entry("")
        brindle.go("ctrl+k", "Bread")
        brindle.expect(following="")
        self.step("cleared", "the entry whose text was cleared is gone")

    def bind_and_jump(self):
        brindle = self.brindle
        brindle.go("ctrl+h", "Market")
        brindle.go("ctrl+j", "Chemist")
        brindle.keys("ctrl+s", "c")
        brindle.expect(text="Chemist", key="C")
        brindle.go("ctrl+h", "Shopping")
        brindle.go("alt+c", "Chemist")
        self.step("shortcut-key", "Ctrl+S, C bound the key C to an entry, Alt+C jumped to it")

    def save_and_discard(self):
        brindle = self.brindle
        assert datafile.texts(self.path) == set(), datafile.texts(self.path)
        brindle.save_and_hide()
        saved = {"Shopping", "Market", "Apples", "Bread", "Chemist", "Letters", "Taxes"}
        assert datafile.texts(self.path) == saved, datafile.texts(self.path)
        self.step("saved", "nothing was on disk before, everything after Return; the window is hidden")
        brindle.bring_back()
        brindle.expect_text("Chemist")
        brindle.write_entry("A mistake")
        brindle.keys("ctrl+period", "ctrl+shift+BackSpace")
        brindle.expect_text("Chemist")
        self.step("discarded", "Ctrl+Alt+Space brought it back; a change was discarded")

    def open_window(self, keys, title):
        self.brindle.keys(keys)
        return Window(self.brindle, title).wait_until_in_front()

    def close_window(self, window):
        self.brindle.keys("Escape")
        window.wait_until_hidden()
        self.brindle.wait_until_in_front()

    def keep_a_todo_list(self):
        brindle = self.brindle
        todo = self.open_window("ctrl+equal", TODO_LIST)
        todo.expect(["Chemist"], "Chemist")
        self.close_window(todo)
        brindle.go("ctrl+h", "Shopping")
        brindle.go("ctrl+j", "Letters")
        todo = self.open_window("ctrl+equal", TODO_LIST)
        todo.expect(["Letters", "Chemist"], "Letters")
        self.step("to-do-list", "Ctrl+= put two entries on the to-do list, the newest on top")
        todo.drag("Letters", "Chemist", "below")
        todo.expect(["Chemist", "Letters"])
        brindle.keys("Home", "Return")
        todo.wait_until_hidden()
        brindle.wait_until_in_front()
        brindle.expect_text("Chemist")
        self.step("jumped", "a row was dragged down with the mouse; Enter went to the top row's entry")

    def find(self):
        find = self.open_window("ctrl+f", FIND)
        self.brindle.write("brea")
        find.expect(["{Bread}"], "{Bread}")
        self.step("find", "Ctrl+F found an entry by the beginning of its word")
        self.brindle.keys("Return")
        find.wait_until_hidden()
        self.brindle.wait_until_in_front()
        self.brindle.expect_text("Bread")

    def report(self):
        dialog = self.open_window("ctrl+r", REPORT_RANGE)
        dialog.press_button("Today")
        dialog.press_button("OK")
        report = Window(self.brindle, REPORT).wait_until_in_front()
        lines = report.part("text").text.splitlines()
        texts = [line.split(" | ", 1)[1] for line in lines]
        wanted = ["groceries.bdl", "  Shopping", "    Market", "      Apples"]
        assert texts == wanted, texts
        self.step("report", "Ctrl+R reported what was done today, below its parents")
        self.close_window(report)

    def help_and_settings(self):
        window = self.open_window("ctrl+slash", HELP)
        shown = [part.name for part in window.node.shown() if part.role == "label"]
        assert "Ctrl+Shift+D" in shown and "Ctrl+F" in shown, shown
        self.step("help", "Ctrl+/ shows the keys that are bound")
        self.close_window(window)
        window = self.open_window("ctrl+comma", SETTINGS)
        self.step("settings", "Ctrl+, shows the settings")
        self.close_window(window)
        brindle = self.brindle
        brindle.keys("ctrl+h")
        brindle.go("ctrl+j", "Chemist")

    def from_another_program_and_back(self):
        brindle = self.brindle
        other = self.other = self.desktop.other_program("Terminal")
        brindle.wait_until_hidden()
        self.desktop.write("written in the terminal\n")
        wait_for_value(other.lines, ["written in the terminal"], "the terminal's lines")
        self.step("other-program", "another program is in front and has the keyboard, Brindle is hidden")
        brindle.bring_back()
        self.desktop.keys("End")
        self.desktop.write("'s")
        brindle.expect_text("Chemist's")
        self.step("brought-back", "Ctrl+Alt+Space: Brindle is in front, what is typed is in its editor")
        self.desktop.keys("Escape")
        brindle.wait_until_hidden()
        wait_for(lambda: self.desktop.screen.active_window() == other.window, "the terminal in front")
        self.desktop.write("and again\n")
        wait_for_value(other.lines, ["written in the terminal", "and again"], "the terminal's lines")
        self.step("given-back", "Escape gave the keyboard back to the other program")

    def move_window(self):
        """Gives the window another place and size, and says what has to be the same later."""
        wanted = (200, 150, 560, 240)
        self.desktop.screen.move_resize(self.brindle.window, *wanted)
        wait_for_value(self.place, wanted, "the moved window")
        wait_for(lambda: (self.home.stored_place() or ())[2:] == wanted[2:], "the stored place")
        return wanted

    def place(self):
        return self.desktop.screen.place(self.brindle.window)

    def quit_and_start_again(self):
        brindle = self.brindle
        brindle.bring_back()
        place = self.move_window()
        brindle.keys("ctrl+h")
        brindle.expect_text("Shopping")
        self.step("moved", "the window stands where it was moved to")
        code = brindle.quit()
        assert code == 0, f"exit status {code}"
        saved = datafile.outline(self.path)
        wanted = [["groceries.bdl", [["Shopping", [["Market", [["Apples", []], ["Bread", []]]],
                                                   ["Chemist's", []]]],
                                     ["Letters", []], ["Taxes", []]]]]
        assert saved == wanted, saved
        print("    Return and Ctrl+Q: saved, and the process ended", flush=True)
        brindle = self.brindle = Brindle(self.desktop, self.program, self.home).start()
        brindle.expect(title="Brindle (groceries.bdl)", text="groceries.bdl")
        for keys, text in (("ctrl+l", "Shopping"), ("ctrl+j", "Letters"), ("ctrl+j", "Taxes")):
            brindle.go(keys, text)
        wait_for_value(self.place, place, "the window's place")
        self.step("started-again", "started again: same file, same order, same window place")
        brindle.keys("ctrl+q")
        code = brindle.wait_for_exit()
        assert code == 0, f"exit status {code}"


def main():
    program, folder = (os.path.abspath(argument) for argument in sys.argv[1:3])
    shutil.rmtree(folder, ignore_errors=True)
    os.makedirs(folder)
    with Desktop() as desktop:
        tour = Tour(desktop, program, folder)
        try:
            tour.walk()
        except AssertionError as failure:
            picture = os.path.join(folder, f"{tour.number + 1:02}-failed.png")
            desktop.picture(picture)
            print(f"{tour.number + 1:2}  FAILED: {failure}\n    see {picture}", flush=True)
            return 1
    print(f"The tour went well; its {tour.number} pictures are in {folder}", flush=True)
    return 0


if __name__ == "__main__":
    sys.exit(main())
