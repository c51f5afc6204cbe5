# SPDX-License-Identifier: MIT
"""Presses keys at random in the real program, kills it now and then, and checks that nothing breaks.

A run is one start of the program with some hundreds of keys; it ends by SIGKILL, SIGTERM or Ctrl+Q. The
keys follow from the seed and from the window that has the keyboard, so a repetition is alike, but for
the moments at which keys arrive. Findings:

  - the program crashes, ends unasked, can't be brought forward or quit, or doesn't answer
  - the log has a sanitizer's report, "exception in", "file error", or a warning that isn't known as harmless
  - after a run SQLite finds a data file damaged, or an outline breaks one of its rules
  - after Return the editor's text is not in its file; after SIGKILL a file doesn't hold what was last saved
  - the settings don't name a file that nobody closed

The first finding ends it with exit status 1; what was seen is kept in build/monkey, in
a folder of its own.
"""

import argparse
import itertools
import os
import random
import re
import signal
import sqlite3
import subprocess
import sys
import tempfile
import time

from brindle_e2e import datafile, evidence, soundness
from brindle_e2e.brindle import Brindle
from brindle_e2e.datafile import CATEGORY, DONE, Entry
from brindle_e2e.desktop import Desktop
from brindle_e2e.home import Home
from brindle_e2e.monkey_hands import Hands
from brindle_e2e.waiting import NotReached, wait_for, wait_until_stays

REPOSITORY = os.path.abspath(os.path.join(os.path.dirname(__file__), "..", ".."))
PROGRAM = os.path.join(REPOSITORY, "build", "release", "src", "app", "brindle")
EVIDENCE = os.path.abspath(os.environ.get("BRINDLE_E2E_ARTIFACTS", os.path.join(REPOSITORY, "build", "monkey")))
SHORTEST_RUN, LONGEST_RUN = 200, 500  # keys
SHOWN_KEYS = 60

SUSPICIOUS = re.compile(
    r"exception in |file error|AddressSanitizer|LeakSanitizer|UndefinedBehaviorSanitizer|runtime error:"
    r"|terminate called|^brindle: |^\s*[\d.]+ (warning|critical|fatal) ", re.MULTILINE)
# A file's own entry must have a text; ended while it has none, the program says that it keeps the old one.
HARMLESS = re.compile(r"^brindle: the text of the current entry could not be saved$")
SAVE_COMMAND = "brindle.ui.commands: command 15\n"
EXIT_COMMAND = "brindle.ui.commands: command 28\n"


class Finding(Exception):
    """Something that must not happen."""


class Monkey:
    """Runs on one desktop, with one user whose three files live from run to run."""

    def __init__(self, desktop, arguments):
        self._desktop = desktop
        self._program = arguments.program
        self._seed = arguments.seed
        self._kill_every = arguments.kill_every
        self._seconds = arguments.seconds
        self._home = Home(tempfile.mkdtemp(prefix="monkey-", dir=desktop.folder))
        self._files = [datafile.create(self._home.path(name), *_outline())
                       for name in ("work.bdl", "home.bdl", "ideas.bdl")]
        self._end = None
        self.runs = self.kills = self.keys = 0

    def go(self):
        """Starts run after run until the time is over."""
        self._end = time.monotonic() + self._seconds
        while time.monotonic() < self._end:
            self.runs += 1
            run = Run(self._desktop, self._program, self._home, self._files,
                      random.Random(f"{self._seed}/{self.runs}"))
            try:
                ending = run.go(self.runs % self._kill_every == 0, self._end)
            except (Finding, NotReached, sqlite3.Error) as finding:
                self.keys += run.hands.count if run.hands else 0
                self._report(run, finding)
                raise
            finally:
                run.brindle.end()
            self.kills += ending.startswith("SIGKILL")
            self.keys += run.hands.count
            print(f"run {self.runs}: {run.hands.count} keys, {run.saves} times saved, ended by {ending}",
                  flush=True)

    def _report(self, run, finding):
        what = f"SQLite says: {finding}" if isinstance(finding, sqlite3.Error) else str(finding)
        print(f"\nFINDING in run {self.runs}, seed {self._seed}: {what}\n", flush=True)
        folder = _new_folder(f"seed-{self._seed}-run-{self.runs}")
        evidence.keep(folder, self._desktop, self._home, [run.brindle])
        pressed = run.hands.pressed if run.hands else []
        with open(os.path.join(folder, "keys.txt"), "w", encoding="utf-8") as file:
            file.write("".join(f"{key}\n" for key in pressed))
        with open(os.path.join(folder, "finding.txt"), "w", encoding="utf-8") as file:
            file.write(f"{what}\n")
        print(f"What was seen is kept in {folder}")
        print(f"The last of {len(pressed)} keys: {' '.join(pressed[-SHOWN_KEYS:])}")
        print("The log ends with:\n" + "".join(run.brindle.log().splitlines(keepends=True)[-15:]))


def _new_folder(name):
    """A folder for evidence beside that of earlier findings, which is kept."""
    for number in itertools.count(1):
        folder = os.path.join(EVIDENCE, name if number == 1 else f"{name}-{number}")
        try:
            os.makedirs(folder)
            return folder
        except FileExistsError:
            continue


class Run:
    """One start of the program."""

    def __init__(self, desktop, program, home, files, chance):
        self._desktop = desktop
        self._program = program
        self._home = home
        self._files = files
        self._chance = chance
        self.brindle = Brindle(desktop, program, home, env={
            "QT_MESSAGE_PATTERN": "%{time process} %{type} %{category}: %{message}"})
        self.hands = None
        self.saves = 0
        self._keys_looked_at = 0
        self._saved = None  # what the files held after the last saving; None when that isn't known
        self._seen = 0  # how much of the log was looked at

    def go(self, kill, end):
        """Presses keys, ends the program and looks at what it left; says how it was ended."""
        self._home.remember_files(*self._files)
        self.brindle.start()
        self.hands = Hands(self.brindle, self._chance, self._activate, may_quit=not kill)
        self._saved = self._contents()
        keys = self._chance.randrange(SHORTEST_RUN, LONGEST_RUN)
        while self.hands.count < keys and time.monotonic() < end and self.brindle.is_running():
            self.hands.act()
            self._look()
        if not self.brindle.is_running():
            ending = self._ended_by_keys()
        elif kill:
            ending = self._kill()
        else:
            ending = self._chance.choice((self._terminate, self._quit))()
        self._look_at_log()
        self._look_at_files()
        return ending

    # Ends of a run.

    def _ended_by_keys(self):
        status = self.brindle.wait_for_exit()
        if status != 0 or EXIT_COMMAND not in self.brindle.log():
            raise Finding(f"the program ended with status {status}")
        return "Ctrl+Q among the keys"

    def _kill(self):
        self._settle()
        if not self.brindle.is_running():
            return self._ended_by_keys()
        before = self._contents()
        if self._saved is not None and before != self._saved:
            raise Finding(f"the files changed without being saved: {self._differences(self._saved, before)}")
        while_saving = self._chance.random() < 0.3 and self.hands.bring_forward()
        if while_saving:
            self.hands.press("Return")
            time.sleep(self._chance.uniform(0, 0.05))
        self.brindle.send(signal.SIGKILL)
        self.brindle.wait_for_exit()
        if while_saving:
            return "SIGKILL just after Return"
        after = self._contents(beside_program=False)
        if after != before:
            raise Finding(f"SIGKILL changed what was saved: {self._differences(before, after)}")
        return "SIGKILL"

    def _terminate(self):
        self.brindle.send(signal.SIGTERM)
        self._wait_for_end("SIGTERM")
        return "SIGTERM"

    def _quit(self):
        """Leaves whatever is open, then quits as a user does."""
        for _ in range(10):
            if self.hands.bring_forward():
                self.hands.press("Escape")
                self._look()
            # Quitting is refused while a file's own entry is without text.
            if self.hands.bring_forward():
                self.hands.press("x", "ctrl+q")
            if self._is_asked_about_saving():
                self.hands.press("Return")
            try:
                wait_for(lambda: not self.brindle.is_running(), "", 2)
                break
            except NotReached:
                pass
        self._wait_for_end("Ctrl+Q, ten times")
        return "Ctrl+Q"

    def _is_asked_about_saving(self):
        """Waits for the question, which may not come. What is typed before it has the keyboard is lost."""
        screen = self._desktop.screen

        def is_asked():
            return screen.title(screen.active_window()) == "Save changes?"

        try:
            wait_for(lambda: is_asked() or not self.brindle.is_running(), "", 2)
        except NotReached:
            return False
        return self.brindle.is_running()

    def _wait_for_end(self, what):
        try:
            status = self.brindle.wait_for_exit()
        except NotReached:
            raise Finding(f"{what} didn't end the program") from None
        if status != 0:
            raise Finding(f"after {what} the program ended with status {status}")

    # Looking.

    def _look(self):
        """After each action: the log, and what was saved."""
        self._look_at_log()
        keys = self.hands.pressed[self._keys_looked_at:]
        self._keys_looked_at = len(self.hands.pressed)
        saves = self.brindle.log().count(SAVE_COMMAND)
        if saves == self.saves:
            return
        self.saves = saves
        self._saved = None
        try:
            # A refused saving leaves the window there; otherwise it hides when all is on the disk.
            wait_for(lambda: not self.brindle.is_on_the_screen() or not self.brindle.is_running(), "", 3)
        except NotReached:
            return
        self._settle()
        if self.brindle.log().count(SAVE_COMMAND) == self.saves:
            self._saved = self._contents()
            # What comes after Return may still reach the editor, and is not saved then; and of two
            # the first may be the one that saved.
            returns = [key for key in keys if key.endswith(("Return", "KP_Enter"))]
            if returns == keys[-1:]:
                self._look_for_current_text()

    def _look_for_current_text(self):
        """What the editor shows was written; only blanks at its ends and the kind of line breaks may differ."""
        text = self.brindle.text_when_hidden()
        paths = {*self._files, *(path for _, path in self._home.loaded_files())}
        saved = {_words(row[1]) for path in paths for row in soundness.contents(path, True)["texts"]}
        if text and text.strip() and _words(text) not in saved:
            raise Finding(f"{text!r} was not saved")

    def _settle(self):
        """Waits until the program has dealt with all that was pressed."""
        size = [None]

        def is_quiet():
            before, size[0] = size[0], os.path.getsize(self.brindle.log_path)
            return size[0] == before and (not self.brindle.is_running() or self.brindle.answers())

        wait_until_stays(is_quiet, "an answer of the program", 0.3)

    def _look_at_log(self):
        log = self.brindle.log()
        new, self._seen = log[self._seen:], log.rfind("\n") + 1
        for line in new.splitlines():
            if SUSPICIOUS.search(line) and not HARMLESS.search(line):
                raise Finding(f"the log says: {line}")

    def _look_at_files(self):
        remembered = [path for _, path in self._home.loaded_files()]
        for path in self._files:
            if path not in remembered and not self.hands.clicked_close:
                raise Finding(f"the settings don't name {path} any more, but {remembered}")
        for path in dict.fromkeys([*self._files, *remembered]):
            faults = soundness.faults(path)
            if faults:
                raise Finding(f"{path}: " + "; ".join(faults))

    def _contents(self, beside_program=True):
        return {path: soundness.contents(path, beside_program) for path in self._files}

    @staticmethod
    def _differences(before, after):
        return {path: soundness.difference(before[path], after[path])
                for path in before if before[path] != after[path]}

    def _activate(self):
        asking = self._desktop.run([self._program, "--activate"], self._home.env, cwd=self._home.folder,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        try:
            wait_for(lambda: asking.poll() is not None or not self.brindle.is_running(),
                     "the end of brindle --activate")
        finally:
            self._desktop.end(asking)


def _words(text):
    return " ".join(text.split())


def _outline():
    """Something to walk in: every state, to-dos below to-dos, a finished branch."""
    return (Entry("Groceries", "Bread", Entry("Cheese", "hard", "soft"), state=CATEGORY),
            Entry("Repairs", Entry("Roof", "Tiles", Entry("Nails", state=DONE, done_date="2024-05-06T07:08:09")),
                  "Door"),
            Entry("Moved in", Entry("Keys", state=DONE, done_date="2020-01-02T03:04:05"), state=DONE,
                  done_date="2020-01-02T03:04:06"),
            "Call Ann")


def parse_arguments():
    parser = argparse.ArgumentParser(prog="scripts/monkey", description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--seconds", type=int, default=300, metavar="S", help="how long (default: 300)")
    parser.add_argument("--seed", type=int, metavar="N", help="which keys (default: another every time)")
    parser.add_argument("--program", default=os.environ.get("BRINDLE_PROGRAM"), metavar="PATH",
                        help="the program to press keys in (default: the asan build, made when needed)")
    parser.add_argument("--kill-every", type=int, default=3, metavar="N",
                        help="end every Nth run by SIGKILL (default: 3)")
    arguments = parser.parse_args()
    if arguments.seconds < 1 or arguments.kill_every < 1:
        parser.error("--seconds and --kill-every must be at least 1")
    arguments.program = os.path.abspath(arguments.program or PROGRAM)
    if not os.access(arguments.program, os.X_OK):
        parser.error(f"there is no program at {arguments.program}")
    if arguments.seed is None:
        arguments.seed = random.SystemRandom().randrange(10**6)
    return arguments


def main():
    arguments = parse_arguments()
    os.environ.setdefault("UBSAN_OPTIONS", "print_stacktrace=1")
    # What talks to the desktop is kept until the process ends; leaks are looked for in the unit tests.
    os.environ.setdefault("ASAN_OPTIONS", "detect_leaks=0")
    print(f"seed {arguments.seed}, {arguments.seconds} s, {arguments.program}", flush=True)
    with Desktop() as desktop:
        monkey = Monkey(desktop, arguments)
        try:
            monkey.go()
            status = 0
        except (Finding, NotReached, sqlite3.Error):
            status = 1
    print(f"{monkey.keys} keys in {monkey.runs} runs, {monkey.kills} of them killed; "
          f"{'1 finding' if status else 'no finding'}")
    return status


if __name__ == "__main__":
    sys.exit(main())
