# SPDX-License-Identifier: MIT
"""Hands that press keys at random: everything that is bound, text, and what fits the window in front."""

import time

from .bindings import BINDINGS
from .waiting import NotReached, wait_for

FILE_DIALOGS = ("Create a new file", "Open an existing file")
BUTTONS = ("Open file", "Create file", "Close")
CLOSE = "Close"

_WORDS = ("milk", "call Ann", "roof", "A", "done?", "  two  blanks ", "100%", "it's", "a;b", "'", "\"x\"",
          "<b>bold</b>", "&amp;", "SELECT *", "--", "very " * 12 + "long")
_UNICODE = ("Käse", "naïve", "Ελλάς", "снег", "漢字", "€ → ∞", "🙂", "e\u0301", "\u202eright", "\u00a0")
_LETTERS = "abcdefghijklmnopqrstuvwxyz0123456789"
_MOVES = ("Left", "Right", "Up", "Down", "Home", "End", "Prior", "Next", "ctrl+Left", "ctrl+Right",
          "ctrl+Home", "ctrl+End", "shift+Left", "shift+End", "shift+Up")
_EDITS = ("BackSpace", "Delete", "ctrl+BackSpace", "ctrl+Delete", "ctrl+a", "ctrl+c", "ctrl+x", "ctrl+v",
          "ctrl+z", "ctrl+shift+z", "shift+Return", "ctrl+Return", "space", "Tab", "shift+Tab", "F1", "F10",
          "Insert", "Menu", "ctrl+space", "alt+Down", "ctrl+m", "ctrl+Tab")
_HELD = ("Return", "Escape", "a", "ctrl+j", "ctrl+l", "ctrl+h", "ctrl+n", "ctrl+d", "ctrl+s", "ctrl+f", "ctrl+e",
         "ctrl+shift+j", "ctrl+shift+l", "ctrl+shift+Delete", "ctrl+equal", "ctrl+period", "BackSpace", "Down",
         "Tab", "ctrl+z", "ctrl+shift+equal", "KP_Enter", "ctrl+slash", "ctrl+r")
_BOUND = tuple(row.keys for row in BINDINGS if row.keys != "ctrl+q")

# What the hands do, and how often, in the main window …
_MAIN = {"bound": 100, "burst": 40, "word": 40, "move": 20, "edit": 25, "jump": 20, "register": 12, "save": 10,
         "hold": 8, "clear": 8, "button": 6, "unicode": 5, "hotkey": 3, "quit": 2}
# … in a dialog for files, where nobody's files may be deleted …
_FILES = {"word": 3, "letter": 3, "move": 4, "Tab": 3, "Return": 3, "Escape": 4}
# … and in any other window or box.
_OTHER = {"word": 20, "letter": 20, "move": 35, "edit": 20, "Tab": 15, "Return": 25, "Escape": 35, "jump": 15,
          "bound": 25, "burst": 10, "space": 10, "hold": 8, "unicode": 4, "hotkey": 4, "quit": 1}


class Hands:
    """Presses keys as the given random numbers say, and remembers them.

    When the hotkey doesn't bring the program forward, activate() has to. Hands that may not quit leave
    the program running.
    """

    def __init__(self, brindle, random, activate, may_quit):
        self._brindle = brindle
        self._desktop = brindle.desktop
        self._random = random
        self._activate = activate
        self._may_quit = may_quit
        self.pressed = []  # as xdotool spells them; texts in quotes, what isn't a key in brackets
        self.count = 0  # of key presses, held ones once
        self.clicked_close = False

    def act(self):
        """One thing that a user may do now."""
        if not self.bring_forward():
            return
        screen = self._desktop.screen
        front = screen.active_window()
        if front == self._brindle.window:
            chances = _MAIN
        elif screen.title(front) in FILE_DIALOGS:
            chances = _FILES
        else:
            chances = _OTHER
        what, = self._random.choices(list(chances), list(chances.values()))
        action = getattr(self, f"_{what}", None)
        if action:
            action()
        else:
            self.press(what)

    def press(self, *names):
        for name in names:
            self.pressed.append(name)
            self.count += 1
            self._desktop.keys(name)

    def bring_forward(self):
        """Sees to it that a window of the program has the keyboard; not when the program has ended."""
        if self._waits_for_front(0.3):
            return True
        for _ in range(3):
            if not self._brindle.is_running():
                return False
            self.press("ctrl+alt+space")
            if self._waits_for_front(2):
                return True
        # Its hotkey may have been changed: this is the way around it.
        self.pressed.append("[--activate]")
        self._activate()
        wait_for(lambda: self._has_front() or not self._brindle.is_running(),
                 "the program in front, after the hotkey and --activate")
        return self._brindle.is_running()

    def _has_front(self):
        # The desktop may go on naming a window that was hidden.
        screen = self._desktop.screen
        front = screen.active_window()
        return screen.is_managed(front) and screen.pid(front) == self._brindle.pid

    def _waits_for_front(self, seconds):
        try:
            wait_for(lambda: self._has_front() or not self._brindle.is_running(), "", seconds)
        except NotReached:
            return False
        return self._brindle.is_running()

    # What there is to do.

    def _pick(self, choices):
        return self._random.choice(choices)

    def _bound(self):
        self.press(self._pick(_BOUND))

    def _burst(self):
        """Keys faster than the program can show what they do."""
        keys = [self._pick((*_BOUND, *_MOVES, *_LETTERS[:13])) for _ in range(self._random.randrange(4, 16))]
        self.pressed += keys
        self.count += len(keys)
        self._desktop.keys_at_once(*keys)

    def _move(self):
        self.press(self._pick(_MOVES))

    def _edit(self):
        self.press(self._pick(_EDITS))

    def _letter(self):
        self.press(self._pick(_LETTERS))

    def _jump(self):
        self.press("alt+" + self._pick(_LETTERS))

    def _register(self):
        self.press("ctrl+s", self._pick((*_LETTERS, "Escape", "Delete", "shift+a", "Return", "Left")))

    def _clear(self):
        self.press("ctrl+a", "Delete")

    def _save(self):
        self.press(self._pick(("Return", "KP_Enter")))

    def _hotkey(self):
        self.press("ctrl+alt+space")

    def _word(self):
        self._write(self._pick(_WORDS))

    def _unicode(self):
        self._write(self._pick(_UNICODE))

    def _write(self, text):
        self.pressed.append(repr(text))
        self.count += len(text)
        self._desktop.write(text)

    def _hold(self):
        key = self._pick(_HELD)
        self.pressed.append(f"[held] {key}")
        self.count += 1
        self._desktop.press(key)
        try:
            # Long enough for the X server to repeat the key.
            time.sleep(self._random.uniform(0.7, 1.2))
        finally:
            self._desktop.release(key)

    def _quit(self):
        """Asks to quit with something unsaved, and mostly thinks better of it."""
        if not self._may_quit:
            return
        self.press("x", "ctrl+q", *self._pick((("Escape",), ("alt+c", "Escape"), ("Tab", "Escape"),
                                               ("w", "Escape"), ("Escape", "Left"),
                                               ("Left", "space"), ("Return",), ("alt+d",))))

    def _button(self):
        name = self._pick(BUTTONS)
        if self._brindle.button(name) is None:
            return
        self.pressed.append(f"[click] {name}")
        self.clicked_close = self.clicked_close or name == CLOSE
        try:
            self._brindle.click_button(name)
        except (NotReached, AttributeError):
            pass  # keys still on their way took the button from the screen
