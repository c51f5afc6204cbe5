# SPDX-License-Identifier: MIT
"""brindle --activate and --toggle, and what a desktop asks over the session bus."""

import os
import re
import signal
import socket
import struct
import subprocess
import threading

from brindle_e2e import datafile
from brindle_e2e.case import PROGRAM, BrindleTestCase, main
from brindle_e2e.waiting import stays, wait_for
from gi.repository import Gio, GLib

NAME = "example.osterlane.Brindle"
PATH = "/example/osterlane/Brindle"
INTERFACE = "org.freedesktop.Application"
TEMPLATE = os.path.join(os.path.dirname(__file__), "..", "..", "packaging", "brindle.desktop.in")


def connect_to_bus(address):
    flags = (Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT
             | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION)
    return Gio.DBusConnection.new_for_address_sync(address, flags, None, None)


class CommandLineTestCase(BrindleTestCase):
    def setUp(self):
        super().setUp()
        self.bus = connect_to_bus(self.desktop.env["DBUS_SESSION_BUS_ADDRESS"])
        self.addCleanup(self.bus.close_sync, None)

    def environment(self, **changes):
        """That of a terminal without any display: the client shows nothing."""
        env = {**self.desktop.env, **self.home.env, "QT_LOGGING_RULES": "*.debug=false",
               **changes}
        return {name: value for name, value in env.items() if name != "DISPLAY" and value is not None}

    def ask(self, *arguments, cwd=None, **changes):
        """Runs the program as a client to its end: (exit status, all that it printed)."""
        done = subprocess.run([PROGRAM, *arguments], env=self.environment(**changes), text=True,
                              cwd=cwd or self.home.folder, stdin=subprocess.DEVNULL, timeout=60,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        return done.returncode, done.stdout

    def start_behind(self, **options):
        """A running copy with the file tasks.bdl, stepped back behind another program."""
        self.path = datafile.create(self.home.path("tasks.bdl"), "First")
        self.home.remember_files(self.path)
        brindle = self.launch(**options)
        brindle.end_splash()
        brindle.wait_for_main_window()
        self.other = self.other_program()
        brindle.wait_until_hidden()
        return brindle

    def start_unread(self, env):
        """The same where there is no session bus, and so no accessibility bus to read it by."""
        self.path = datafile.create(self.home.path("tasks.bdl"), "First")
        self.home.remember_files(self.path)
        brindle = self.launch(env=env)
        brindle.end_splash()
        brindle.window = wait_for(lambda: self.desktop.screen.find(brindle.pid, "Brindle (tasks"),
                                  "the main window")
        self.wait_until_in_front(brindle)
        self.other = self.other_program()
        brindle.wait_until_hidden()
        return brindle

    def start_bus(self):
        """Another session bus: (process, address)."""
        bus, address = self.desktop.run_bus("--session")
        self._helpers.append(bus)
        return bus, address

    def wait_until_in_front(self, brindle):
        wait_for(lambda: self.desktop.screen.active_window() == brindle.window,
                 "the main window in front")

    def check_in_front(self, brindle):
        """The main window has come, without a box, and what is typed goes there."""
        brindle.wait_for_main_window()
        self.assertEqual(brindle.boxes(), [])
        before = brindle.text
        self.desktop.write("x")
        wait_for(lambda: brindle.text not in (before, None), "what was typed in the editor")
        self.desktop.keys("BackSpace")
        brindle.expect_text(before)

    def check_stepped_back(self, brindle):
        brindle.wait_until_hidden()
        wait_for(lambda: self.desktop.screen.active_window() == self.other.window,
                 "the other program in front")

    def call(self, method, arguments, expects=None):
        """Calls the running program as a desktop does; never starts one."""
        return self.bus.call_sync(NAME, PATH, INTERFACE, method, arguments, expects,
                                  Gio.DBusCallFlags.NO_AUTO_START, 10000, None)

    def activate(self, **data):
        self.call("Activate", GLib.Variant("(a{sv})", (texts(data),)))

    def open(self, *uris):
        self.call("Open", GLib.Variant("(asa{sv})", (uris, {})))

    def action(self, name, *parameters):
        self.call("ActivateAction", GLib.Variant("(sava{sv})", (name, parameters, {})))


def texts(data):
    return {name: GLib.Variant("s", value) for name, value in data.items()}


class Activate(CommandLineTestCase):
    def test_it_brings_the_running_copy_forward_with_the_keyboard_and_without_a_box(self):
        brindle = self.start_behind()
        for _ in range(3):
            self.assertEqual(self.ask("--activate"), (0, ""))
            self.check_in_front(brindle)
            brindle.keys("Escape")
            self.check_stepped_back(brindle)

    def test_in_front_already_nothing_changes(self):
        brindle = self.start_behind()
        brindle.bring_back()
        self.assertEqual(self.ask("--activate"), (0, ""))
        stays(brindle.is_shown, "the main window", 0.5)
        self.check_in_front(brindle)
        brindle.keys("Escape")
        self.check_stepped_back(brindle)

    def test_with_none_running_it_starts_one(self):
        brindle = self.start("--activate")
        self.assertEqual(brindle.boxes(), [])
        brindle.expect(panel=True)

    def test_with_none_running_it_starts_one_with_the_files_open(self):
        datafile.create(self.home.path("new.bdl"), "Found")
        brindle = self.start("--activate", "files/new.bdl")
        brindle.expect(text="new.bdl")
        self.assertEqual(self.home.loaded_files(), [("0", self.home.path("new.bdl"))])

    def test_with_none_running_and_no_display_it_says_so(self):
        for option in ("--activate", "--toggle"):
            status, said = self.ask(option)
            self.assertEqual(status, 1)
            self.assertIn("there is no display", said)

    def test_after_a_crash_it_starts_a_new_copy_without_a_question(self):
        first = self.start()
        first.send(signal.SIGKILL)
        first.wait_for_exit()
        self.assertEqual(self.start("--activate").boxes(), [])

    def test_two_at_the_same_moment_give_one_program_and_no_box(self):
        for round_number in range(3):
            with self.subTest(round=round_number):
                both = [self.launch("--activate"), self.launch("--activate")]
                wait_for(lambda: any(not one.is_running() for one in both), "the end of one", 30)
                client = next(one for one in both if not one.is_running())
                server = next(one for one in both if one is not client)
                self.assertEqual(client.wait_for_exit(), 0, client.log())
                server.wait_for_main_window(30)
                self.assertEqual(server.boxes(), [])
                server.end()

    def test_two_with_files_at_the_same_moment_open_both_in_one_program(self):
        paths = [datafile.create(self.home.path(name), "Here") for name in ("a.bdl", "b.bdl")]
        both = [self.launch("--activate", path) for path in paths]
        wait_for(lambda: any(not one.is_running() for one in both), "the end of one", 30)
        client = next(one for one in both if not one.is_running())
        server = next(one for one in both if one is not client)
        self.assertEqual(client.wait_for_exit(), 0, client.log())
        server.wait_for_main_window(30)
        wait_for(lambda: sorted(path for _, path in self.home.loaded_files()) == paths, "both files")
        self.assertEqual(server.boxes(), [])

    def test_while_a_start_is_held_up_by_a_box_it_waits(self):
        datafile.create(self.home.path("tasks.bdl"), "First")
        new = datafile.create(self.home.path("new.bdl"), "Found")
        self.home.remember_files(self.home.path("tasks.bdl"), self.home.path("missing.bdl"))
        brindle = self.launch()
        box = brindle.wait_for_box()
        self.assertEqual(self.ask("--activate", new), (0, ""))
        stays(lambda: not brindle.is_shown(), "no main window beside the box", 0.5)
        brindle.answer(box, "OK")
        brindle.wait_for_main_window()
        brindle.expect(text="new.bdl")

    def test_a_copy_that_hangs_gives_an_error(self):
        brindle = self.start_behind()
        brindle.send(signal.SIGSTOP)
        self.addCleanup(brindle.send, signal.SIGCONT)
        for arguments in (("--activate",), ("--toggle",), ("--activate", self.path)):
            with self.subTest(arguments=arguments):
                status, said = self.ask(*arguments)
                self.assertEqual((status, said), (1, "brindle: the running copy doesn't answer\n"))

    def test_a_startup_notification_id_comes_along(self):
        brindle = self.start_behind()
        self.assertEqual(self.ask("--activate", DESKTOP_STARTUP_ID="launcher_TIME123456"), (0, ""))
        self.check_in_front(brindle)


class Toggle(CommandLineTestCase):
    def test_there_and_back(self):
        brindle = self.start_behind()
        for _ in range(3):
            self.assertEqual(self.ask("--toggle"), (0, ""))
            self.check_in_front(brindle)
            self.assertEqual(self.ask("--toggle"), (0, ""))
            self.check_stepped_back(brindle)

    def test_with_none_running_it_starts_one(self):
        self.assertEqual(self.start("--toggle").boxes(), [])

    def test_two_at_the_same_moment_leave_one_in_front(self):
        both = [self.launch("--toggle"), self.launch("--toggle")]
        wait_for(lambda: any(not one.is_running() for one in both), "the end of one", 30)
        client = next(one for one in both if not one.is_running())
        server = next(one for one in both if one is not client)
        self.assertEqual(client.wait_for_exit(), 0, client.log())
        server.wait_for_main_window(30)


class Files(CommandLineTestCase):
    def test_one_is_opened_in_the_running_copy_which_goes_to_its_root(self):
        brindle = self.start_behind()
        name = "100% new #1?&ü.bdl"
        new = datafile.create(self.home.path(name), "Found")
        self.assertEqual(self.ask("--activate", name, cwd=os.path.dirname(new)), (0, ""))
        brindle.wait_for_main_window()
        brindle.expect(panel=False, preceding="tasks.bdl", following="")
        brindle.go("ctrl+l", "Found")
        self.assertEqual(self.home.loaded_files(), [("0", self.path), ("1", new)])

    def test_one_that_is_open_already_is_gone_to(self):
        brindle = self.start_behind()
        new = datafile.create(self.home.path("new.bdl"), "Found")
        self.assertEqual(self.ask("--activate", new), (0, ""))
        brindle.expect(text="new.bdl")
        self.assertEqual(self.ask("--activate", "files/../files/tasks.bdl"), (0, ""))
        brindle.expect(text="tasks.bdl")
        self.assertEqual(brindle.boxes(), [])
        self.assertEqual(self.home.loaded_files(), [("0", self.path), ("1", new)])

    def test_one_that_is_missing_is_told_of_and_the_others_open(self):
        brindle = self.start_behind()
        new = datafile.create(self.home.path("new.bdl"), "Found")
        self.assertEqual(self.ask("--activate", "missing.bdl", new), (0, ""))
        box = brindle.wait_for_box("File could not be accessed")
        brindle.answer(box, "OK")
        brindle.expect(text="new.bdl")

    def test_one_that_is_no_data_file_is_told_of(self):
        brindle = self.start_behind()
        with open(self.home.path("bad.bdl"), "wb") as file:
            file.write(b"no database" * 100)
        self.assertEqual(self.ask("--activate", self.home.path("bad.bdl")), (0, ""))
        brindle.answer(brindle.wait_for_box(), "OK")
        brindle.wait_until_in_front()
        brindle.expect(text="tasks.bdl")
        self.assertEqual(self.home.loaded_files(), [("0", self.path)])

    def test_what_is_half_typed_survives(self):
        brindle = self.start_behind()
        brindle.bring_back()
        brindle.go("ctrl+l", "First")
        brindle.write_entry("Half a thou")
        new = datafile.create(self.home.path("new.bdl"), "Found")
        self.assertEqual(self.ask("--activate", new), (0, ""))
        brindle.expect(text="new.bdl")
        brindle.save_and_hide()
        self.assertEqual(datafile.texts(self.path), {"Half a thou"})

    def test_while_a_question_is_open_they_wait(self):
        brindle = self.start_behind()
        new = datafile.create(self.home.path("new.bdl"), "Found")
        brindle.bring_back()
        brindle.go("ctrl+l", "First")
        brindle.write_entry("Changed")
        brindle.keys("ctrl+q")
        box = brindle.wait_for_box()
        self.desktop.screen.activate(self.other.window)
        self.assertEqual(self.ask("--activate", new), (0, ""))
        stays(lambda: self.home.loaded_files() == [("0", self.path)], "no file opens", 0.7)
        # The question has come forward, not the window that it blocks.
        wait_for(lambda: self.desktop.screen.active_pid() == brindle.pid, "the question in front")
        brindle.answer(box, "Cancel")
        brindle.expect(text="new.bdl")
        self.assertEqual(self.home.loaded_files(), [("0", self.path), ("1", new)])


class WithoutABus(CommandLineTestCase):
    DEAD = "unix:path=/nonexistent/bus"

    def check_fallbacks(self, brindle, **changes):
        self.assertEqual(self.ask("--activate", **changes), (0, ""))
        self.check_in_front(brindle)
        brindle.keys("Escape")
        self.check_stepped_back(brindle)
        self.assertEqual(self.ask("--activate", XDG_ACTIVATION_TOKEN="token", **changes), (0, ""))
        self.check_in_front(brindle)
        status, said = self.ask("--toggle", **changes)
        self.assertEqual(status, 0)
        self.assertRegex(said, r"\Abrindle: .*session bus.*it came forward\n\Z")
        stays(brindle.is_shown, "the main window", 0.5)
        brindle.keys("Escape")
        self.check_stepped_back(brindle)
        status, said = self.ask("--activate", self.path, **changes)
        self.assertEqual(status, 1)
        self.assertRegex(said, r"\Abrindle: .*session bus to open files\n\Z")
        self.check_in_front(brindle)

    def test_the_client_has_none(self):
        brindle = self.start_behind()
        self.check_fallbacks(brindle, DBUS_SESSION_BUS_ADDRESS=None)

    def test_the_clients_bus_is_dead(self):
        brindle = self.start_behind()
        self.check_fallbacks(brindle, DBUS_SESSION_BUS_ADDRESS=self.DEAD)

    def test_the_client_has_another(self):
        brindle = self.start_behind()
        self.check_fallbacks(brindle, DBUS_SESSION_BUS_ADDRESS=self.start_bus()[1])

    def test_the_running_copy_has_none(self):
        # Nor has it an accessibility bus then; the window manager says what is in front.
        brindle = self.start_unread({"DBUS_SESSION_BUS_ADDRESS": self.DEAD})
        self.assertIn("no session bus", brindle.log())
        self.assertEqual(self.ask("--activate"), (0, ""))
        self.wait_until_in_front(brindle)
        brindle.keys("Escape")
        self.check_stepped_back(brindle)
        self.assertEqual(self.ask("--toggle")[0], 0)
        self.wait_until_in_front(brindle)
        self.assertEqual(self.ask("--activate", self.path)[0], 1)

    def test_the_name_is_taken(self):
        self.bus.call_sync("org.freedesktop.DBus", "/", "org.freedesktop.DBus", "RequestName",
                           GLib.Variant("(su)", (NAME, 0)), None, 0, 10000, None)
        brindle = self.start_behind()
        self.assertIn("can't be had on the session bus", brindle.log())
        self.check_fallbacks(brindle)

    def test_the_bus_found_in_the_runtime_folder_is_used(self):
        address = self.desktop.env["DBUS_SESSION_BUS_ADDRESS"]
        path = re.search(r"unix:(?:path|abstract)=([^,]+)", address)
        if address.startswith("unix:path"):
            os.symlink(path[1], os.path.join(self.home.env["XDG_RUNTIME_DIR"], "bus"))
        brindle = self.start_behind()
        self.assertEqual(self.ask("--toggle", DBUS_SESSION_BUS_ADDRESS=None), (0, ""))
        self.check_in_front(brindle)
        self.assertEqual(self.ask("--toggle", DBUS_SESSION_BUS_ADDRESS=None), (0, ""))
        self.check_stepped_back(brindle)


class OverTheBus(CommandLineTestCase):
    def test_activate(self):
        brindle = self.start_behind()
        self.activate()
        self.check_in_front(brindle)
        self.activate(**{"activation-token": "token", "desktop-startup-id": "id_TIME1"})
        stays(brindle.is_shown, "the main window", 0.5)

    def test_open(self):
        brindle = self.start_behind()
        new = datafile.create(self.home.path("new file.bdl"), "Found")
        self.open("file://" + new.replace(" ", "%20"))
        brindle.wait_for_main_window()
        brindle.expect(text="newfile.bdl")
        self.assertEqual(self.home.loaded_files(), [("0", self.path), ("1", new)])

    def test_the_action_toggle(self):
        brindle = self.start_behind()
        self.action("toggle")
        self.check_in_front(brindle)
        self.action("toggle")
        self.check_stepped_back(brindle)

    def test_the_interface_is_what_desktops_expect(self):
        self.start_behind()
        answer = self.bus.call_sync(NAME, PATH, "org.freedesktop.DBus.Introspectable", "Introspect",
                                    None, None, 0, 10000, None).unpack()[0]
        info = Gio.DBusNodeInfo.new_for_xml(answer).lookup_interface(INTERFACE)
        found = {method.name: [argument.signature for argument in method.in_args]
                 for method in info.methods}
        self.assertEqual(found, {"Activate": ["a{sv}"], "Open": ["as", "a{sv}"],
                                 "ActivateAction": ["s", "av", "a{sv}"]})

    def test_hostile_arguments_do_no_harm(self):
        brindle = self.start_behind()
        with self.assertRaises(GLib.Error):
            self.action("no such action", GLib.Variant("i", 7))
        self.action("toggle", GLib.Variant("s", "unwanted"), GLib.Variant("as", ["more"]))
        self.check_in_front(brindle)
        self.open("http://osterlane.example/a.bdl", "file://elsewhere/a.bdl", "a.bdl", "", "file:",
                  "file:relative.bdl", "file:///a%00b.bdl", "file:///%zz", "\u0001", "x" * 100000)
        self.open(*["https://osterlane.example/"] * 20000)
        self.activate(**{"activation-token": "x" * 1000000})
        self.call("Activate", GLib.Variant("(a{sv})", ({
            "activation-token": GLib.Variant("i", 7),
            "desktop-startup-id": GLib.Variant("aas", [["_TIME"]])},)))
        self.activate(**{"desktop-startup-id": "a_TIME99999999999999999999"})
        with self.assertRaises(GLib.Error):
            self.call("Activate", GLib.Variant("(s)", ("wrong type",)))
        with self.assertRaises(GLib.Error):
            self.call("Reveal", None)
        self.check_in_front(brindle)
        self.assertEqual(self.home.loaded_files(), [("0", self.path)])

    def test_very_many_files_open_one_after_the_other_up_to_a_limit(self):
        brindle = self.start_behind()
        self.open(*["file://" + self.path] * 50000)
        brindle.wait_for_main_window()
        self.assertIn("the rest is ignored", brindle.log())
        self.check_in_front(brindle)

    def test_it_goes_on_when_the_bus_goes_away(self):
        bus, address = self.start_bus()
        brindle = self.start_unread({"DBUS_SESSION_BUS_ADDRESS": address})
        self.assertEqual(self.ask("--toggle", DBUS_SESSION_BUS_ADDRESS=address), (0, ""))
        self.wait_until_in_front(brindle)
        self.assertEqual(self.ask("--toggle", DBUS_SESSION_BUS_ADDRESS=address), (0, ""))
        self.check_stepped_back(brindle)
        self.desktop.end(bus)
        brindle.stays_running()
        self.assertEqual(self.ask("--activate"), (0, ""))
        self.wait_until_in_front(brindle)

    def test_a_call_to_the_name_starts_the_program(self):
        services = os.path.join(self.desktop.env["XDG_DATA_HOME"], "dbus-1", "services")
        os.makedirs(services, exist_ok=True)
        with open(os.path.join(services, f"{NAME}.service"), "w", encoding="utf-8") as file:
            file.write(f"[D-BUS Service]\nName={NAME}\nExec={PROGRAM} --activate\n")
        self.addCleanup(os.remove, file.name)
        self.daemon("ReloadConfig", None)
        self.daemon("UpdateActivationEnvironment", GLib.Variant("(a{ss})", (
            {**self.home.env, "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1"},)))
        new = datafile.create(self.home.path("new.bdl"), "Found")
        self.bus.call_sync(NAME, PATH, INTERFACE, "Open",
                           GLib.Variant("(asa{sv})", (["file://" + new], {})), None, 0, 30000, None)
        brindle = self.adopt(self.daemon("GetConnectionUnixProcessID", GLib.Variant("(s)", (NAME,)))[0])
        brindle.wait_for_main_window()
        brindle.expect(text="new.bdl")
        self.assertEqual(brindle.boxes(), [])

    def daemon(self, method, arguments):
        return self.bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                  "org.freedesktop.DBus", method, arguments, None, 0, 10000,
                                  None).unpack()

    def adopt(self, pid):
        """A program that another process has started."""
        brindle = self.launch("--version")
        brindle.wait_for_exit()
        brindle.process = Adopted(pid)
        self.addCleanup(brindle.process.kill)
        return brindle


class Adopted:
    def __init__(self, pid):
        self.pid = pid

    def poll(self):
        with open(f"/proc/{self.pid}/stat", encoding="utf-8") as file:
            return None if file.read().rsplit(")", 1)[1].split()[0] != "Z" else 0

    def kill(self):
        os.kill(self.pid, signal.SIGKILL)


class WhatTheClientSends(CommandLineTestCase):
    """The running copy is played by the test."""

    def listen(self, major, minor):
        """A copy of that version on the socket; gives the list that gets the numbers sent to it."""
        received = []
        server = socket.socket(socket.AF_UNIX)
        server.bind(os.path.join(self.home.env["XDG_RUNTIME_DIR"], NAME))
        server.listen(5)
        self.addCleanup(server.close)

        def serve():
            try:
                client, _ = server.accept()
            except OSError:
                return
            with client:
                while len(number := client.recv(4, socket.MSG_WAITALL)) == 4:
                    received.append(struct.unpack(">i", number)[0])
                    if received[-1] == 1:
                        client.sendall(struct.pack(">ii", major, minor))
            received.append("end")

        thread = threading.Thread(target=serve, daemon=True)
        thread.start()
        return received

    def test_older_and_newer_copies_are_told_to_come_forward_without_a_question(self):
        for version in ((0, 2), (-1, 9), (0, 3), (0, 4), (7, 0)):
            for option in ("--activate", "--toggle"):
                with self.subTest(version=version, option=option):
                    received = self.listen(*version)
                    status, _ = self.ask(option)
                    self.assertEqual(status, 0)
                    wait_for(lambda: received[-1:] == ["end"], "the client's end")
                    self.assertEqual(received, [1, 2, "end"])
                    os.remove(os.path.join(self.home.env["XDG_RUNTIME_DIR"], NAME))

    def ask_over_bus(self, *arguments, **changes):
        """What the client sends, with a copy that owns the name: (numbers, calls)."""
        calls = []
        received = self.listen(0, 3)
        bus = connect_to_bus(self.desktop.env["DBUS_SESSION_BUS_ADDRESS"])
        info = Gio.DBusNodeInfo.new_for_xml(
            f"<node><interface name='{INTERFACE}'>"
            "<method name='Activate'><arg type='a{sv}' direction='in'/></method>"
            "<method name='Open'><arg type='as' direction='in'/>"
            "<arg type='a{sv}' direction='in'/></method>"
            "<method name='ActivateAction'><arg type='s' direction='in'/>"
            "<arg type='av' direction='in'/><arg type='a{sv}' direction='in'/></method>"
            "</interface></node>")

        def answer(_bus, _sender, _path, _interface, method, parameters, invocation):
            calls.append((method, *parameters.unpack()))
            invocation.return_value(None)

        bus.register_object(PATH, info.interfaces[0], answer, None, None)
        bus.call_sync("org.freedesktop.DBus", "/", "org.freedesktop.DBus", "RequestName",
                      GLib.Variant("(su)", (NAME, 4)), None, 0, 10000, None)
        client = subprocess.Popen([PROGRAM, *arguments], env=self.environment(**changes),
                                  cwd=self.home.folder, stdin=subprocess.DEVNULL)
        try:
            wait_for(lambda: GLib.MainContext.default().iteration(False) or client.poll() is not None,
                     "a call", 30)
            while client.poll() is None:
                GLib.MainContext.default().iteration(False)
            self.assertEqual(client.returncode, 0)
            wait_for(lambda: received[-1:] == ["end"], "the client's end")
        finally:
            client.kill()
            bus.close_sync(None)
            os.remove(os.path.join(self.home.env["XDG_RUNTIME_DIR"], NAME))
        return received[:-1], calls

    def test_what_the_socket_can_say_goes_there_alone(self):
        self.assertEqual(self.ask_over_bus("--activate"), ([1, 2], []))

    def test_the_rest_goes_over_the_bus(self):
        self.assertEqual(self.ask_over_bus("--toggle"), ([1], [("ActivateAction", "toggle", [], {})]))
        uri = "file://" + self.home.folder
        self.assertEqual(
            self.ask_over_bus("--activate", "a b%#?.bdl", "//tmp/x", "../ü.bdl"),
            ([1], [("Open", [uri + "/a%20b%25%23%3F.bdl", "file:///tmp/x",
                             "file://" + os.path.dirname(self.home.folder) + "/%C3%BC.bdl"], {})]))

    def test_the_tokens_of_the_environment_go_along(self):
        both = {"XDG_ACTIVATION_TOKEN": "a-token", "DESKTOP_STARTUP_ID": "an-id_TIME7"}
        data = {"activation-token": "a-token", "desktop-startup-id": "an-id_TIME7"}
        self.assertEqual(self.ask_over_bus("--activate", **both), ([1], [("Activate", data)]))
        self.assertEqual(self.ask_over_bus("--toggle", DESKTOP_STARTUP_ID="an-id"),
                         ([1], [("ActivateAction", "toggle", [], {"desktop-startup-id": "an-id"})]))
        self.assertEqual(self.ask_over_bus("--activate", "/a", XDG_ACTIVATION_TOKEN="a-token"),
                         ([1], [("Open", ["file:///a"], {"activation-token": "a-token"})]))


class Texts(CommandLineTestCase):
    def test_the_help_names_both(self):
        status, said = self.ask("--help")
        self.assertEqual(status, 0)
        said = " ".join(said.split())
        self.assertIn("--activate Bring the running Brindle forward, with the FILEs opened in it; "
                      "start Brindle when none runs.", said)
        self.assertIn("--toggle Bring the running Brindle forward, or send it back when it is in "
                      "front; start Brindle when none runs.", said)

    def test_arguments_that_do_not_go_together_are_refused(self):
        brindle = self.start_behind()
        for arguments, words in ((("--activate", "--toggle"), "together"),
                                 (("--toggle", "--activate", "a.bdl"), "together"),
                                 (("--toggle", "a.bdl"), "takes no FILE")):
            with self.subTest(arguments=arguments):
                status, said = self.ask(*arguments)
                self.assertEqual(status, 1)
                self.assertRegex(said, rf"\Abrindle: [^\n]*{words}[^\n]*\n\Z")
        stays(lambda: not brindle.is_shown(), "the running copy stays behind", 0.5)

    def test_an_unknown_option_is_refused(self):
        second = self.launch("--activate", "--bogus")
        self.assertEqual(second.wait_for_exit(), 1)
        self.assertIn("bogus", second.log())

    def test_an_option_of_the_toolkit_may_stand_beside_it(self):
        brindle = self.start_behind()
        second = self.launch("-platform", "xcb", "--activate")
        self.assertEqual(second.wait_for_exit(), 0)
        self.check_in_front(brindle)

    def test_after_two_hyphens_it_is_the_name_of_a_file(self):
        path = datafile.create(os.path.join(self.home.folder, "--toggle"), "Inside")
        brindle = self.start("--", "--toggle")
        brindle.go("ctrl+l", "Inside")
        self.assertEqual(self.home.loaded_files(), [("0", path)])

    def test_the_menu_entry_names_the_class_of_the_windows(self):
        brindle = self.start()
        with open(TEMPLATE, encoding="utf-8") as file:
            named = re.search(r"^StartupWMClass=(.*)$", file.read(), re.M)[1]
        window = self.desktop.screen._window(brindle.window)
        self.assertEqual(window.get_wm_class()[1], named)


if __name__ == "__main__":
    main()
