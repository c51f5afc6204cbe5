# SPDX-License-Identifier: MIT
"""The program under test, as its user meets it: keys go in, the screen comes out."""

import itertools
import os
import signal
from dataclasses import dataclass

from .waiting import stays, wait_for, wait_for_value

HUMAN_PAUSE = 0.15


# What a screen reader hears as the description of a part, and the field of View that it fills.
_LABELS = {"Parent entry": "parent", "Preceding entry": "preceding", "Following entry": "following",
           "Shortcut key of the parent entry": "parent_key",
           "Shortcut key of the current entry": "key",
           "When the current entry was done": "done_date", "File of the current entry": "file"}
_STATES = {"Parent entry": "parent_state", "Preceding entry": "preceding_state",
           "Current entry": "state", "Following entry": "following_state"}


def middle(spot):
    """The point in the middle of (x, y, width, height)."""
    x, y, width, height = spot
    return x + width // 2, y + height // 2


@dataclass
class View:
    """What the main window shows. A text is None when its row is hidden, '' when it is empty."""

    title: str
    panel: bool  # the "Open file" and "Create file" buttons stand in the editor's place
    text: str = None
    has_children: bool = False
    parent: str = None
    preceding: str = None
    following: str = None
    key: str = None
    parent_key: str = None
    done_date: str = None
    file: str = None
    parent_state: str = None
    preceding_state: str = None
    state: str = None
    following_state: str = None


@dataclass
class Box:
    """A message box on the screen."""

    node: object
    title: str
    text: str
    details: str
    buttons: list


class Brindle:
    """Start with start(); end() is safe at any time."""

    def __init__(self, desktop, program, home, arguments=(), env=None, wrapper=()):
        self.desktop = desktop
        self.home = home
        self._command = [*wrapper, program, *arguments]
        self._env = env or {}
        self.process = None
        self.window = 0
        self.log_path = None
        self._root = None

    # Starting and ending.

    def launch(self):
        """Starts the process and returns at once."""
        count = len([name for name in os.listdir(self.home.folder) if name.startswith("log-")])
        self.log_path = os.path.join(self.home.folder, f"log-{count}.txt")
        env = {**self.home.env, "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
               "QT_FORCE_STDERR_LOGGING": "1", "QT_LOGGING_RULES": "brindle.*=true;default.debug=true",
               "QT_MESSAGE_PATTERN": "%{time process} %{category}: %{message}", **self._env}
        with open(self.log_path, "wb") as log:
            self.process = self.desktop.run(self._command, env, stdout=log,
                                            stderr=log, cwd=self.home.folder)
        return self

    def start(self, splash="click"):
        """Starts the program and waits until its main window has the keyboard."""
        self.launch()
        self.end_splash(splash)
        self.wait_for_main_window()
        return self

    def splash(self):
        """Id of the splash screen's window, or None."""
        for window_id in self.desktop.screen.windows_of(self.pid):
            if self.desktop.screen.title(window_id).lower() == "brindle" and not self._main_node():
                return window_id
        return None

    def end_splash(self, how="click"):
        """Ends the splash screen by a click or by a key; 'wait' lets it take its time."""
        window = wait_for(lambda: self._check_alive() and self.splash(), "the splash screen")
        if how == "click":
            self.desktop.click(*middle(self.desktop.screen.place(window)))
        elif how != "wait":
            wait_for(lambda: self.desktop.screen.active_window() == window, "the splash in front")
            self.desktop.keys(how)

    def wait_for_main_window(self, timeout=None):
        wait_for(lambda: self._check_alive() and self.is_shown(), "the main window", timeout)
        node = self._main_node()
        wait_for(lambda: self._find_window(node), "the main window's frame")
        self.window = self._find_window(node)
        self.wait_until_in_front()

    def wait_until_in_front(self, timeout=None):
        wait_for(lambda: self.has_front() and self.has_keyboard(),
                 "the main window in front, with the keyboard", timeout)

    def has_front(self):
        """Whether the main window is the one in front, in the desktop's eyes."""
        return self.is_on_the_screen() and self.desktop.screen.active_window() == self.window

    def is_on_the_screen(self):
        """Whether the desktop has the main window; it knows, also while the program is busy."""
        if not self.desktop.screen.is_managed(self.window):
            # Not every desktop knows a window again that was hidden.
            self.window = self.desktop.screen.shown_again(self.window, self.pid)
        return self.desktop.screen.is_managed(self.window)

    def wait_until_hidden(self, timeout=None):
        def hidden():
            return not self.is_on_the_screen()

        wait_for(hidden, "the main window hidden", timeout)
        # Nobody's hands are quicker than this; what happens to quicker ones has a test of its own.
        stays(hidden, "the main window hidden", HUMAN_PAUSE)

    def wait_for_exit(self, timeout=None):
        """Waits until the process has ended and returns its exit code."""
        wait_for(lambda: self.process.poll() is not None, "the end of the program", timeout)
        return self.process.returncode

    def quit(self):
        """Saves, then ends the program as a user does; gives the exit code."""
        self.save_and_hide()
        self.bring_back()
        self.keys("ctrl+q")
        return self.wait_for_exit()

    def end(self):
        if self.process is not None:
            self.desktop.end(self.process)

    def send(self, signal_number=signal.SIGTERM):
        os.kill(self.pid, signal_number)

    # What a user does.

    def keys(self, *names):
        self.desktop.keys(*names)

    def write(self, text):
        self.desktop.write(text)

    def write_entry(self, text):
        """Replaces the editor's text by typing, and waits until it stands there."""
        self.keys("ctrl+a", "Delete") if not text else self.keys("ctrl+a")
        self.write(text)
        self.expect_text(text)

    def save_and_hide(self):
        self.keys("Return")
        self.wait_until_hidden()

    def bring_back(self):
        self.desktop.press_hotkey()
        wait_for(self.is_shown, "the main window after the hotkey")
        self.wait_until_in_front()

    def go(self, key, text):
        """Presses a key combination and waits until the editor shows that text."""
        self.keys(key)
        self.expect_text(text, f"the editor after {key}")

    def click_button(self, name):
        """Clicks the middle of a button of the main window with the mouse."""
        button = wait_for(lambda: self.button(name), f"the button {name!r}")
        self.desktop.click(*self._middle(self.window, self._main_node(), button))

    # What a user sees.

    @property
    def pid(self):
        return self.process.pid

    def is_shown(self):
        return self._main_node() is not None

    def is_running(self):
        return self.process.poll() is None

    def answers(self):
        """Whether the program answers a question on the accessibility bus, be it hidden or not."""
        root = self._application()
        return root is not None and root.role == "application"

    def has_keyboard(self):
        """Whether the keyboard is where it belongs: in the editor, or in the panel's window."""
        node = self._main_node()
        if node is None:
            return False
        editor = self._editor(node)
        return editor.has("focused") if editor else node.has("active")

    @property
    def text(self):
        """The editor's text; None when there is no editor on the screen."""
        node = self._main_node()
        editor = self._editor(node) if node else None
        return editor.text if editor else None

    def text_when_hidden(self):
        """What the editor of the hidden main window holds; None at the panel, or when it can't be told."""
        root = self._application()
        for node in (root.children_or_none() if root else ()):
            # The panel has no entry to name.
            if node.role == "dialog" and node.name.startswith("Brindle (") and not node.has("showing"):
                return next((part.text for part in node.everything() if part.role == "text"), None)
        return None

    @property
    def title(self):
        node = self._main_node()
        return node.name if node else None

    def expect_text(self, wanted, what="the editor's text"):
        wait_for_value(lambda: self.text, wanted, what)

    def expect(self, **wanted):
        """Waits until the main window shows these values (the fields of View)."""
        def read():
            view = self.view()
            return {name: getattr(view, name) for name in wanted} if view else None

        wait_for_value(read, wanted, "the main window")

    def button(self, name):
        node = self._main_node()
        for part in node.shown() if node else ():
            if part.role == "push button" and part.name == name:
                return part
        return None

    def view(self):
        """Everything that the main window shows now; None when it is hidden."""
        node = self._main_node()
        if node is None:
            return None
        view = View(title=node.name, panel=False)
        for part in node.shown():
            self._read_part(view, part)
        return view

    @staticmethod
    def _read_part(view, part):
        role, name = part.role, part.name
        if role == "text":
            view.text = part.text
        elif role == "push button":
            view.panel = view.panel or name == "Open file"
        elif name.startswith("State: "):
            setattr(view, _STATES[part.description], name.removeprefix("State: "))
        elif role == "label" and part.description in _LABELS:
            setattr(view, _LABELS[part.description], name)
        elif name == "Has children":
            view.has_children = True

    def boxes(self):
        """The message boxes on the screen, oldest first."""
        root = self._application()
        found = []
        for node in (root.children_or_none() if root else ()):
            if node.has("showing") and node.role in ("alert", "alert message", "message box"):
                found.append(_read_box(node))
        return found

    def wait_for_box(self, text_start=""):
        def find():
            for box in self.boxes():
                if box.text.startswith(text_start):
                    return box
            return None

        return wait_for(find, lambda: f"a message box {text_start!r}; there are "
                                      f"{[box.text for box in self.boxes()]}")

    def answer(self, box, button):
        """Presses a button of a message box with the mouse and waits until the box has gone."""
        node = next(part for part in box.node.shown()
                    if part.role == "push button" and part.name.replace("&", "") == button)
        window = wait_for(lambda: self._find_window(box.node), "the message box's frame")
        self.desktop.screen.activate(window)
        wait_for(lambda: self.desktop.screen.active_window() == window, "the message box in front")
        self.desktop.click(*self._middle(window, box.node, node))
        wait_for(lambda: not box.node.has("showing"), f"the message box gone after {button}")

    def stays_running(self, seconds=1.0):
        stays(self.is_running, "the program runs", seconds)

    def dialog(self, title):
        """The node of another window of the program, or None."""
        root = self._application()
        for node in (root.children_or_none() if root else ()):
            if node.name == title and node.has("showing"):
                return node
        return None

    def colour_of_state_bar(self, whose="Current entry"):
        """The colour of a state bar as it is on the screen."""
        node = self._main_node()
        bar = next(part for part in node.shown()
                   if part.name.startswith("State: ") and part.description == whose)
        return self.desktop.screen.colour_at(*self._middle(self.window, node, bar))

    # What the program says in its debug output.

    def log(self):
        with open(self.log_path, encoding="utf-8", errors="replace") as file:
            return file.read()

    def log_mark(self):
        """A place in the debug output, to look only at what comes later."""
        return len(self.log())

    def wait_for_log(self, text, mark=0):
        wait_for(lambda: text in self.log()[mark:],
                 lambda: f"{text!r} in the debug output; it says: {self.log()[mark:]!r}")

    def report(self):
        """A readable account of what is on the screen, for failures."""
        root = self._application()
        return root.dump() if root else "(not on the accessibility bus)"

    # Inside.

    def _check_alive(self):
        if self.process.poll() is not None:
            raise AssertionError(f"the program ended with {self.process.returncode}: {self.log()}")
        return True

    def _application(self):
        """The program's node on the accessibility bus; the same for the life of the process."""
        if self._root is None and self.process is not None:
            self._root = self.desktop.bus.application(self.pid)
        return self._root

    def _main_node(self):
        root = self._application()
        if root is None or self.process.poll() is not None:
            return None
        for node in root.children_or_none():
            if (node.role == "dialog" and node.name.startswith("Brindle")
                    and node.name != "Brindle Help" and node.has("showing")):
                return node
        return None

    def _find_window(self, node):
        """The window that shows this node: same process, same place, or at least same title."""
        screen = self.desktop.screen
        windows = screen.windows_of(self.pid)
        # A message box can have the title of the dialog below it, or the program's name.
        named = [window_id for window_id in windows if screen.title(window_id) == node.name]
        return next(itertools.chain(
            (window_id for window_id in windows if screen.shows(window_id, node)),
            (window_id for window_id in named if screen.fits(window_id, node)),
            named), None)

    def _middle(self, window, window_node, node):
        return middle(self.desktop.screen.spot(window, window_node, node))

    @staticmethod
    def _editor(node):
        for part in node.shown():
            if part.role == "text":
                return part
        return None


def _read_box(node):
    texts, details, buttons = [], "", []
    for part in node.shown():
        if part.role == "label" and part.name:
            texts.append(part.name)
        elif part.role == "push button":
            buttons.append(part.name.replace("&", ""))
    for part in node.everything():
        if part.role == "text":
            details = part.text
    return Box(node, node.name, texts[0] if texts else "", details, buttons)
