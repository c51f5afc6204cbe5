# SPDX-License-Identifier: MIT
"""The activation hotkey by the desktop portal, tokens for the front, and desktops without either."""

from gi.repository import GLib

from brindle_e2e import datafile
from brindle_e2e.accessibility import connect
from brindle_e2e.case import PROGRAM, main
from brindle_e2e.portal import INTERFACE, PATH
from brindle_e2e.waiting import stays, wait_for, wait_for_value
from brindle_e2e.wayland import FLOATING
from brindle_e2e.wayland_case import APP_ID, INSTEAD, WaylandTestCase
from brindle_e2e.windows import SETTINGS

TRIGGER = "CTRL+ALT+space"  # as the portals spell shortcuts
# For the main window; what a program opens while it has the front gets the front everywhere.
ONLY_TOKENS_GIVE_FOCUS = (r'no_focus [app_id="(?i)brindle$" title="^Brindle($| \()"]' "\n"
                          "focus_on_window_activation focus\n")


class Hotkey(WaylandTestCase):
    def test_it_brings_the_keyboard_and_gives_it_back(self):
        brindle = self.start_beside()
        brindle.bring_back()
        brindle.go("ctrl+l", "First")
        for round_number in range(5):
            with self.subTest(round=round_number):
                self.desktop.keys("ctrl+a")
                self.desktop.write(f"round {round_number}")
                brindle.expect_text(f"round {round_number}")
                self.press_hotkey()
                brindle.wait_until_hidden()
                self.other_has_keyboard(f"back again {round_number}")
                brindle.bring_back()

    def test_what_is_typed_as_soon_as_the_window_is_there_arrives_in_the_editor(self):
        brindle = self.start_beside()
        brindle.bring_back()
        brindle.go("ctrl+l", "First")
        self.press_hotkey()
        brindle.wait_until_hidden()
        for round_number in range(5):
            self.press_hotkey()
            wait_for(brindle.has_front, "in front, in the compositor's eyes")
            self.desktop.write("x")
            brindle.expect_text("First" + "x" * (round_number + 1))
            self.press_hotkey()
            brindle.wait_until_hidden()
        self.assertEqual(self.other.lines(), [])

    def test_the_portal_is_asked_for_one_shortcut_that_a_user_understands(self):
        self.start()
        self.portal.wait_for_triggers(TRIGGER)
        (created,), = self.portal.calls("CreateSession")
        for name in ("handle_token", "session_handle_token"):
            self.assertRegex(created[name], r"^\w+$")
        (session, shortcuts, parent_window, options), = self.portal.calls("BindShortcuts")
        self.assertEqual(session, self.portal.sessions()[0][0])
        self.assertEqual(parent_window, "")
        self.assertRegex(options["handle_token"], r"^\w+$")
        (_, properties), = shortcuts
        self.assertEqual(properties["preferred_trigger"], TRIGGER)
        self.assertIn("Brindle", properties["description"])

    def test_a_new_key_is_bound_in_a_new_session_and_stays_after_a_restart(self):
        brindle = self.start_on()
        settings = self.open(brindle, "ctrl+comma", SETTINGS)
        field = settings.part("text", "Key of the activation hotkey")
        settings.click(field)
        wait_for(lambda: field.has("focused"), "the field with the keyboard")
        brindle.keys("b")
        wait_for_value(lambda: field.text, "B", "the key in the field")
        settings.press_button("OK")
        settings.wait_until_hidden()
        brindle.wait_until_in_front()
        self.portal.wait_for_triggers("CTRL+ALT+b")
        self.press_hotkey()
        brindle.wait_until_hidden()
        brindle.bring_back()
        brindle.keys("ctrl+q")
        self.assertEqual(brindle.wait_for_exit(), 0)
        wait_for(lambda: self.portal.sessions() == [], "the session ended with the program")
        self.start()
        self.portal.wait_for_triggers("CTRL+ALT+b")

    def test_another_key_chosen_in_the_desktops_settings_is_the_desktops_business(self):
        brindle = self.start_beside()
        self.portal.change_trigger("Press Meta+B")
        brindle.bring_back()
        self.assertEqual(self.notice(brindle), "")
        self.press_hotkey()
        brindle.wait_until_hidden()
        self.assertEqual(len(self.portal.calls("BindShortcuts")), 1)

    def test_only_the_portals_word_on_our_session_and_shortcut_counts(self):
        brindle = self.start_beside()
        session, owner, ((shortcut, _),) = self.portal.sessions()[0]
        self.portal.pretend(owner, f"{PATH}/session/1_1/another", shortcut)
        self.portal.pretend(owner, session, "another")
        stranger = connect(self.desktop.env["DBUS_SESSION_BUS_ADDRESS"])
        self.addCleanup(stranger.close_sync, None)
        stranger.emit_signal(owner, PATH, INTERFACE, "Activated",
                             GLib.Variant("(osta{sv})", (session, shortcut, 1, {})))
        stranger.flush_sync(None)
        stays(lambda: not brindle.is_on_the_screen(), "nothing comes", 1)
        brindle.bring_back()

    def test_a_portal_that_is_late_or_answers_before_the_call_returns_is_no_trouble(self):
        for delay in (2000, -1):
            with self.subTest(delay=delay):
                self.portal.behave(delay=delay)
                brindle = self.start_on(name=f"tasks{delay}.bdl")
                self.portal.wait_for_triggers(TRIGGER)
                self.assertEqual(self.notice(brindle), "")
                self.press_hotkey()
                brindle.wait_until_hidden()
                brindle.bring_back()
                brindle.end()
                wait_for(lambda: self.portal.sessions() == [], "the session ended")


class Tokens(WaylandTestCase):
    """A compositor that gives a window the keyboard for a token only."""

    configuration = FLOATING + ONLY_TOKENS_GIVE_FOCUS

    def test_the_portals_token_gives_the_front(self):
        brindle = self.start_beside()
        for round_number in range(3):
            brindle.bring_back()
            if round_number == 0:
                brindle.go("ctrl+l", "First")
            self.desktop.write("!")
            brindle.expect_text("First" + "!" * (round_number + 1))
            brindle.keys("Escape")
            brindle.wait_until_hidden()
            self.other_has_keyboard(f"back {round_number}")

    def test_without_a_good_token_it_steps_back_after_7_seconds_and_disturbs_nobody(self):
        brindle = self.start_beside()
        for token in ("", "0123456789abcdef0123456789abcdef"):
            with self.subTest(token=token):
                self.assertEqual(self.portal.press(token), 1)
                wait_for(brindle.is_on_the_screen, "the window behind")
                self.other_has_keyboard(f"undisturbed by <{token}>")
                stays(brindle.is_on_the_screen, "as long as the desktop may take", 5)
                brindle.wait_until_hidden(4)
                self.other_has_keyboard("still here")
        brindle.bring_back()


    def test_an_open_box_gets_the_front_by_the_token(self):
        brindle = self.start_beside()
        brindle.bring_back()
        brindle.go("ctrl+l", "First")
        brindle.write_entry("Changed")
        brindle.keys("ctrl+q")
        box = brindle.wait_for_box()
        self.wait_for_front("Save changes?")
        self.desktop.screen.activate(self.other.window)
        brindle.wait_until_hidden()
        self.other_has_keyboard("meanwhile")
        self.press_hotkey()
        self.wait_for_front("Save changes?")
        brindle.keys("Escape")
        wait_for(lambda: not box.node.has("showing"), "the box cancelled by a key")
        brindle.wait_until_in_front()

    def wait_for_front(self, title):
        screen = self.desktop.screen
        wait_for(lambda: screen.title(screen.active_window()) == title, f"{title!r} in front")

    def test_a_command_hands_its_token_on_to_the_running_copy(self):
        brindle = self.start_beside()
        self.call("--toggle", token="")
        wait_for(brindle.is_on_the_screen, "the window behind")
        self.other_has_keyboard("undisturbed")
        self.call("--toggle", token="")
        brindle.wait_until_hidden()
        for option in ("--toggle", "--activate"):
            with self.subTest(option=option):
                self.call(option, self.desktop.activation_token(APP_ID))
                brindle.wait_until_in_front()
                brindle.keys("Escape")
                brindle.wait_until_hidden()
                self.other_has_keyboard(f"back after {option}")

    def call(self, option, token):
        """What a launcher or a key binding of the desktop does."""
        call = self.helper([PROGRAM, option],
                           extra_env={**self.home.env, "XDG_ACTIVATION_TOKEN": token})
        self.assertEqual(call.wait(20), 0)


class NoHotkey(WaylandTestCase):
    """Desktops without the hotkey, for every reason: the settings say so, everything else works."""

    portal_from_the_start = False

    def check_notice(self, brindle):
        text = self.notice(brindle)
        self.assertIn(INSTEAD, text)
        self.assertEqual(brindle.boxes(), [])
        return text

    def check_work(self, brindle):
        brindle.go("ctrl+l", "First")
        brindle.write_entry("Changed")
        brindle.save_and_hide()
        self.assertTrue(brindle.is_running())

    def test_without_a_portal(self):
        brindle = self.start_on()
        self.check_notice(brindle)
        settings = self.open(brindle, "ctrl+comma", SETTINGS)
        self.picture("wayland-settings-without-hotkey")
        self.close(settings)
        self.check_work(brindle)

    def test_a_portal_that_comes_up_later_is_used(self):
        brindle = self.start_on()
        self.check_notice(brindle)
        self.portal.start()
        self.portal.wait_for_triggers(TRIGGER)
        self.assertEqual(self.notice(brindle), "")
        self.press_hotkey()
        brindle.wait_until_hidden()
        brindle.bring_back()

    def test_without_a_session_bus(self):
        for name, address in (("none", ""), ("dead", "unix:path=/nowhere/bus")):
            with self.subTest(bus=name):
                self.check_work_unheard(f"{name}.bdl", {"DBUS_SESSION_BUS_ADDRESS": address})

    def check_work_unheard(self, name, env):
        """No screen reader hears anything without the bus: what counts is what ends in the file."""
        screen = self.desktop.screen
        path = datafile.create(self.home.path(name), "First")
        self.home.remember_files(path)
        brindle = self.launch(env=env)
        brindle.end_splash("space")
        wait_for(lambda: screen.title(screen.active_window()) == f"Brindle ({name})", "in front")
        brindle.keys("ctrl+l", "ctrl+a")
        brindle.write("Typed")
        brindle.keys("ctrl+comma")
        wait_for(lambda: screen.title(screen.active_window()) == SETTINGS, "the settings in front")
        brindle.keys("Escape")
        wait_for(lambda: screen.title(screen.active_window()) == f"Brindle ({name})", "back")
        brindle.keys("Return")
        wait_for(lambda: screen.windows_of(brindle.pid) == [], "hidden")
        wait_for_value(lambda: datafile.texts(path), {"Typed"}, "the saved text")
        brindle.wait_for_log("no hotkey: ")
        brindle.end()

    def test_with_a_portal_that_refuses(self):
        self.portal.start()
        for question in ("create_response", "bind_response"):
            for answer in (1, 2):
                with self.subTest(question=question, answer=answer):
                    self.portal.behave(**{"create_response": 0, "bind_response": 0, question: answer})
                    brindle = self.start()
                    self.check_notice(brindle)
                    brindle.end()

    def test_with_a_portal_that_has_no_global_shortcuts(self):
        self.portal.start(interface="org.freedesktop.portal.Screenshot")
        self.check_notice(self.start())

    def test_with_a_portal_that_never_answers_the_program_works(self):
        self.portal.start(silent=True)
        self.check_work(self.start_on())

    def test_a_portal_that_goes_away_and_comes_back(self):
        self.portal.start()
        brindle = self.start_on()
        self.portal.wait_for_triggers(TRIGGER)
        self.assertEqual(self.notice(brindle), "")
        self.portal.stop()
        self.wait_for_notice(brindle, True)
        self.portal.start()
        self.wait_for_notice(brindle, False)
        self.portal.wait_for_triggers(TRIGGER)
        self.press_hotkey()
        brindle.wait_until_hidden()
        brindle.bring_back()

    def test_a_session_that_the_desktop_ends(self):
        self.portal.start()
        brindle = self.start_on()
        self.portal.wait_for_triggers(TRIGGER)
        self.portal.close_sessions()
        self.wait_for_notice(brindle, True)
        self.check_work(brindle)


if __name__ == "__main__":
    main()
