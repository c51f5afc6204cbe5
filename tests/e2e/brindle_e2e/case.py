# SPDX-License-Identifier: MIT
"""The base of every end-to-end test: a desktop per test class, a user per test, evidence on failure."""

import contextlib
import os
import shutil
import tempfile
import types
import unittest

from . import evidence
from .brindle import Brindle
from .desktop import Desktop
from .home import Home

_REPOSITORY = os.path.abspath(os.path.join(os.path.dirname(__file__), "..", "..", ".."))
PROGRAM = os.path.abspath(os.environ.get(
    "BRINDLE_PROGRAM", os.path.join(_REPOSITORY, "build", "release", "src", "app", "brindle")))
ARTIFACTS = os.path.abspath(os.environ.get(
    "BRINDLE_E2E_ARTIFACTS", os.path.join(_REPOSITORY, "build", "e2e-artifacts")))


class BrindleTestCase(unittest.TestCase):
    """Tests start programs with self.start(); everything ends with the test."""

    longMessage = True
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        if not os.access(PROGRAM, os.X_OK):
            raise RuntimeError(f"there is no program to test at {PROGRAM}")
        cls.desktop = cls.make_desktop().start()
        cls.addClassCleanup(cls.desktop.stop)

    @classmethod
    def make_desktop(cls):
        """The desktop that the tests of a class share."""
        return Desktop()

    def __init__(self, method_name="runTest"):
        super().__init__(method_name)
        setattr(self, method_name, self._keeping_evidence(getattr(self, method_name)))

    def setUp(self):
        self.home = Home(tempfile.mkdtemp(prefix="home-", dir=self.desktop.folder))
        self.programs = []
        self._helpers = []
        self.addCleanup(self._clean_up)

    @contextlib.contextmanager
    def subTest(self, *arguments, **values):
        with super().subTest(*arguments, **values):
            try:
                yield
            except Exception:
                self._keep_evidence(*values.values())
                raise

    def launch(self, *arguments, env=None, wrapper=()):
        """Starts the program and returns at once, before anything is on the screen."""
        brindle = Brindle(self.desktop, PROGRAM, self.home, arguments, env, wrapper)
        self.programs.append(brindle)
        return brindle.launch()

    def start(self, *arguments, splash="click"):
        """Starts the program and waits until its main window has the keyboard."""
        brindle = self.launch(*arguments)
        brindle.end_splash(splash)
        brindle.wait_for_main_window()
        return brindle

    def start_with(self, *paths):
        """The same, with these files open."""
        self.home.remember_files(*paths)
        return self.start()

    def other_program(self, name="other"):
        other = self.desktop.other_program(name)
        self._helpers.append(other.process)
        return other

    def helper(self, command, **options):
        """Starts another process that ends with the test."""
        process = self.desktop.run(command, **options)
        self._helpers.append(process)
        return process

    def _clean_up(self):
        for brindle in self.programs:
            brindle.end()
        for process in self._helpers:
            self.desktop.end(process)
        shutil.rmtree(self.home.folder, ignore_errors=True)

    def _keeping_evidence(self, method):
        def run(self):
            try:
                method()
            except BaseException:
                self._keep_evidence()
                raise

        return types.MethodType(run, self)

    def _keep_evidence(self, *details):
        name = "-".join([self.id().replace("__main__.", ""), *map(str, details)])
        folder = os.path.join(ARTIFACTS, "".join(c if c.isalnum() or c in "-_." else "_" for c in name))
        evidence.keep(folder, self.desktop, self.home, self.programs)


def main():
    unittest.main(verbosity=2)
