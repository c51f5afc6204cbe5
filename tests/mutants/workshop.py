# SPDX-License-Identifier: MIT
"""Where mutants are made: a copy of the sources with a build of its own, and the tests' runs.

Nothing of the copy is changed for a mutant. Its one changed file is compiled aside and linked with the
library's other objects to a second shared library, which the tests load in the first one's place: one
compilation and one link for a mutant, and several mutants can be tried at the same time.
"""

import contextlib
import dataclasses
import filecmp
import functools
import json
import os
import re
import shlex
import shutil
import signal
import subprocess
import tempfile
import threading
import time

# What timeout(1) gives after it had to kill, and what we see when it took itself along.
_KILLED = (128 + signal.SIGKILL, -signal.SIGKILL)


class WorkshopError(Exception):
    """The copy can't be built, or the tests don't pass on it as it is."""


@dataclasses.dataclass
class Test:
    """A test program as ctest knows it, and the seconds that it takes when nothing is wrong."""

    name: str
    folder: str  # relative to the sources
    command: list
    environment: dict
    seconds: float = 0.0


@dataclasses.dataclass
class Run:
    passed: bool
    timed_out: bool
    seconds: float
    output: str


class Workshop:
    """Works below one folder, which is kept between runs."""

    def __init__(self, repository, folder, jobs):
        self.repository = repository
        self.sources = os.path.join(folder, "src")
        self.build = os.path.join(folder, "build")
        self.jobs = jobs
        self._running = set()
        self._lock = threading.Lock()
        self._closing = False
        self._compile_commands = {}

    # The copy and its build.

    def copy_sources(self):
        """Brings the copy up to date. What didn't change stays untouched, so it isn't built anew."""
        listed = subprocess.run(
            ["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
            cwd=self.repository, check=True, capture_output=True, text=True).stdout
        wanted = {name for name in listed.split("\0") if name
                  and os.path.isfile(os.path.join(self.repository, name))}
        for folder, _, names in os.walk(self.sources):
            for name in names:
                path = os.path.join(folder, name)
                if os.path.relpath(path, self.sources) not in wanted:
                    os.remove(path)
        for name in wanted:
            source, copy = os.path.join(self.repository, name), os.path.join(self.sources, name)
            if not (os.path.isfile(copy) and filecmp.cmp(source, copy, shallow=False)):
                os.makedirs(os.path.dirname(copy), exist_ok=True)
                shutil.copy(source, copy)

    def configure(self):
        """A build that compiles and links quickly: nothing optimised, no debug information."""
        self._build_step([
            "cmake", "-S", self.sources, "-B", self.build, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug",
            "-DCMAKE_CXX_FLAGS_DEBUG=-O0 -Werror=return-type", "-DBRINDLE_SHARED_LIBRARIES=ON",
            "-DCMAKE_SHARED_LINKER_FLAGS=-Wl,--enable-new-dtags",
            "-DCMAKE_EXE_LINKER_FLAGS=-Wl,--enable-new-dtags",
            "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON", "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON"], "configure.log")

    def build_tests(self, folders, libraries):
        """Builds the test programs of these folders and all that they need; gives the tests."""
        names = {name for folder in folders for name in self._names_of_tests(folder)}
        if not names:
            raise WorkshopError(f"there are no tests in {', '.join(folders)}")
        self._build_step(["cmake", "--build", self.build, "-j", str(self.jobs), "--target",
                          *libraries, *sorted(names)], "build.log")
        self._read_compile_commands()
        # Only now ctest knows where the programs are.
        listed = subprocess.run(["ctest", "--test-dir", self.build, "--show-only=json-v1"], check=True,
                                capture_output=True, text=True).stdout
        return [self._test(entry) for entry in json.loads(listed)["tests"] if entry["name"] in names]

    def _names_of_tests(self, folder):
        with open(os.path.join(self.build, folder, "CTestTestfile.cmake"), encoding="utf-8") as file:
            return re.findall(r"^add_test\((?:\[=*\[)?(\w+)", file.read(), re.MULTILINE)

    def _test(self, entry):
        values = {item["name"]: item["value"] for item in entry["properties"]}
        environment = dict(item.split("=", 1) for item in values.get("ENVIRONMENT", []))
        folder = os.path.relpath(os.path.dirname(entry["command"][0]), self.build)
        return Test(entry["name"], folder, entry["command"], environment)

    def _read_compile_commands(self):
        with open(os.path.join(self.build, "compile_commands.json"), encoding="utf-8") as file:
            for entry in json.load(file):
                self._compile_commands.setdefault(entry["file"], []).append(entry["command"])

    def _build_step(self, command, log_name):
        log = os.path.join(os.path.dirname(self.build), log_name)
        with open(log, "w", encoding="utf-8") as output:
            status = self._run(command, stdout=output, stderr=subprocess.STDOUT)
        if status != 0:
            with open(log, encoding="utf-8") as file:
                raise WorkshopError("".join(file.readlines()[-30:]) + f"(the whole account: {log})")

    # Running tests.

    def run_test(self, test, timeout, library_folder=None):
        """Runs one test in a home folder of its own; whatever a mutant does stays in there."""
        with _scratch_home() as (home, environment):
            environment |= test.environment
            if library_folder:
                environment["LD_LIBRARY_PATH"] = library_folder
            start = time.monotonic()
            log = os.path.join(home, "output")
            with open(log, "wb") as output:
                status = self._run(["timeout", "--signal=KILL", str(timeout), *test.command],
                                   env=environment, cwd=home, stdout=output, stderr=output)
            with open(log, encoding="utf-8", errors="replace") as file:
                file.seek(max(0, os.path.getsize(log) - 4000))
                text = file.read()
        seconds = time.monotonic() - start
        # A test that kills itself looks the same, but has not used up its time.
        return Run(status == 0, status in _KILLED and seconds >= timeout, seconds, text)

    def _run(self, command, **options):
        with self._lock:
            if self._closing:
                raise KeyboardInterrupt
            process = subprocess.Popen(command, stdin=subprocess.DEVNULL, start_new_session=True,
                                       **options)
            self._running.add(process)
        try:
            return process.wait()
        finally:
            with self._lock:
                self._running.discard(process)
            with contextlib.suppress(ProcessLookupError):
                os.killpg(process.pid, signal.SIGKILL)  # what a test left behind

    def close(self):
        """Ends everything that runs; nothing new starts."""
        with self._lock:
            self._closing = True
            for process in self._running:
                with contextlib.suppress(ProcessLookupError):
                    os.killpg(process.pid, signal.SIGTERM)

    # Mutants.

    def make_mutant(self, library, source, text, folder):
        """Builds the library with other contents of one source file into the folder.

        Says whether that could be compiled and linked.
        """
        original = os.path.join(self.sources, source)
        command, compiled = self._compile_command(original, library)
        changed, changed_object = (os.path.join(folder, name) for name in ("mutant.cpp", "mutant.o"))
        with open(changed, "w", encoding="utf-8") as file:
            file.write(text)
        command = _replaced(command, {compiled: changed_object, original: changed})
        beside = ["-iquote", os.path.dirname(original)]
        if self._run([*command, *beside], cwd=self.build, stdout=subprocess.DEVNULL,
                     stderr=subprocess.DEVNULL) != 0:
            return False
        linking, linked = self._link_command(library)
        linking = _replaced(linking, {compiled: changed_object,
                                      linked: os.path.join(folder, os.path.basename(linked))})
        return self._run(linking, cwd=self.build, stdout=subprocess.DEVNULL,
                         stderr=subprocess.DEVNULL) == 0

    def _compile_command(self, source, library):
        """The words of the command that compiles a source for a library, and its object file."""
        for command in self._compile_commands.get(source, []):
            words = shlex.split(command)
            compiled = words[words.index("-o") + 1]
            if f"/{library}.dir/" in compiled:
                return words, compiled
        raise WorkshopError(f"{source} is no part of {library}")

    @functools.cache
    def _link_command(self, library):
        """The words of the command that links a library, and the library's file."""
        commands = subprocess.run(["ninja", "-C", self.build, "-t", "commands", library], check=True,
                                  capture_output=True, text=True).stdout
        linking = next(line for line in commands.splitlines()
                       if re.search(rf" -o \S*/lib{library}\.so ", line))
        # Ninja's line surrounds the command with what is done before and after it: nothing.
        words = shlex.split(linking.split("&&")[1])
        return words, words[words.index("-o") + 1]

    def has_source(self, source, library):
        """Whether a source file is compiled for a library here."""
        try:
            self._compile_command(os.path.join(self.sources, source), library)
            return True
        except WorkshopError:
            return False


def _replaced(words, replacements):
    return [replacements.get(word, word) for word in words]


@contextlib.contextmanager
def _scratch_home():
    with tempfile.TemporaryDirectory(prefix="brindle-mutant-", ignore_cleanup_errors=True) as home:
        environment = {name: value for name, value in os.environ.items()
                       if name not in ("DISPLAY", "WAYLAND_DISPLAY", "DBUS_SESSION_BUS_ADDRESS")}
        # A test that gives up its rights still looks into its home.
        os.chmod(home, 0o755)
        for variable, name in (("XDG_CONFIG_HOME", "config"), ("XDG_DATA_HOME", "data"),
                               ("XDG_CACHE_HOME", "cache"), ("XDG_RUNTIME_DIR", "runtime"),
                               ("TMPDIR", "tmp")):
            environment[variable] = os.path.join(home, name)
            os.mkdir(environment[variable], 0o700 if name == "runtime" else 0o755)
        environment["HOME"] = home
        yield home, environment
