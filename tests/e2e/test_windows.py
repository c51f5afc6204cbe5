# SPDX-License-Identifier: MIT
"""Reports, help and settings, and all windows as a family: keys, places, hiding, the keyboard."""

import re

from brindle_e2e import datafile
from brindle_e2e.case import main
from brindle_e2e.datafile import DONE, WONT_DO, Entry
from brindle_e2e.waiting import stays, wait_for, wait_for_value
from brindle_e2e.windows import (FIND, HELP, OPENING_KEYS, REPORT, REPORT_RANGE, SETTINGS, TODO_LIST, Window,
                                 WindowsTestCase)

HIDE_WITH_THE_APPLICATION = (TODO_LIST, FIND)


class Reports(WindowsTestCase):
    def test_today_reports_what_was_done_just_now_with_the_hierarchy_around_it(self):
        path = datafile.create(
            self.home.path("work.bdl"),
            Entry("House", Entry("Roof", "Buy tiles", "Nail them"), Entry("Door", Entry("Paint it", state=WONT_DO))),
            Entry("Long ago", state=DONE, done_date="2020-05-04T03:02:01"))
        quiet = datafile.create(self.home.path("quiet.bdl"), "Nothing done")
        brindle = self.start_quietly(path, quiet)
        for keys, text in (("ctrl+l", "House"), ("ctrl+l", "Roof")):
            brindle.go(keys, text)
        brindle.go("ctrl+j", "Door")
        brindle.keys("ctrl+d")
        brindle.expect(text="Door", state="done")
        brindle.go("ctrl+k", "Roof")
        brindle.go("ctrl+l", "Buy tiles")
        # Files know the second only; within one the order is the file's.
        stays(brindle.is_running, "a later second", 1.1)
        brindle.keys("ctrl+d")
        brindle.expect(text="Nail them", preceding_state="done")
        dialog = self.open(brindle, "ctrl+r", REPORT_RANGE)
        self.picture("create-report")
        dialog.press_button("Today")
        dialog.press_button("OK")
        dialog.wait_until_hidden()
        report = Window(brindle, REPORT).wait_until_in_front()
        self.picture("report")
        lines = report.part("text").text.splitlines()
        self.check_report(lines)
        brindle.keys("ctrl+w")
        report.wait_until_hidden()
        brindle.wait_until_in_front()

    def check_report(self, lines):
        self.assertEqual(len({line.index(" | ") for line in lines}), 1, lines)
        texts = [line.split(" | ", 1)[1] for line in lines]
        # A file without anything done comes first, the branch with the latest work last.
        self.assertEqual(texts, ["...", "work.bdl", "  House", "    Door", "      ...", "    Roof",
                                 "      Buy tiles"])
        dated = [text.strip() for line, text in zip(lines, texts) if line.split(" | ")[0].strip()]
        self.assertEqual(dated, ["Door", "Buy tiles"])
        self.assertRegex(lines[3], r"^[A-Z][a-z]{2} .*\d\d?:\d\d")

    def test_since_last_goes_on_a_second_later_and_a_wrong_order_is_refused(self):
        path = datafile.create(self.home.path("work.bdl"), "One", "Two")
        brindle = self.start_quietly(path)
        dialog = self.open(brindle, "ctrl+r", REPORT_RANGE)
        # Nothing was reported yet: the range stays.
        dialog.press_button("Since last")
        dialog.stays_shown(0.4)
        dialog.press_button("Yesterday")
        dialog.press_button("OK")
        report = Window(brindle, REPORT).wait_until_in_front()
        stored = self.home.settings("General")
        self.assertIn("reportfromdatetime", stored)
        self.assertIn("reporttodatetime", stored)
        brindle.keys("Escape")
        report.wait_until_hidden()
        brindle.wait_until_in_front()
        dialog = self.open(brindle, "ctrl+r", REPORT_RANGE)
        dialog.press_button("Since last")
        dialog.press_button("OK")
        report.wait_until_in_front()
        wait_for(lambda: self.home.settings("General") != stored, "the new range stored")
        brindle.keys("Escape")
        report.wait_until_hidden()
        brindle.wait_until_in_front()
        dialog = self.open(brindle, "ctrl+r", REPORT_RANGE)
        before = self.home.settings("General")
        dialog.press_button("Today")
        editors = [part for part in dialog.node.shown() if part.role == "spin box"]
        dialog.click(editors[0])
        # Every part of the first date goes up, whatever their order.
        brindle.keys("Home")
        for _ in range(3):
            brindle.keys("Up", "Up", "ctrl+Right")
        dialog.press_button("OK")
        box = brindle.wait_for_box("The \"from\" date must be before the \"to\" date.")
        self.assertEqual(box.title, "Date Error")
        self.picture("date-error")
        brindle.answer(box, "OK")
        dialog.stays_shown(0.4)
        self.assertFalse(report.is_shown())
        self.assertEqual(self.home.settings("General"), before)
        dialog.press_button("Cancel")
        dialog.wait_until_hidden()
        brindle.wait_until_in_front()


class HelpWindow(WindowsTestCase):
    def test_it_states_the_keys_that_are_bound(self):
        brindle = self.start_quietly(datafile.create(self.home.path("work.bdl"), "One"))
        help_window = self.open(brindle, "ctrl+slash", HELP)
        self.picture("help-keys")
        texts = [part.name for part in help_window.node.everything() if part.role == "label"]
        for what, keys in (("Scroll up", "Ctrl+K"), ("Scroll right (to child, creating if necessary)",
                           "Ctrl+L"), ("Move current entry to top", "Ctrl+Shift+["),
                           ("Add current entry to todo list", "Ctrl+="), ("Show this help", "Ctrl+/"),
                           ("Settings", "Ctrl+,"), ("Save changes and hide", "Return"),
                           ("Discard changes", "Ctrl+Shift+Del"), ("Quit", "Ctrl+Q"),
                           ("Invoke shortcut", "Alt+<em>key</em>")):
            with self.subTest(row=what):
                self.assertIn(what, texts)
                self.assertEqual(re.sub(r"</?\w+>", "", texts[texts.index(what) + 1]),
                                 re.sub(r"</?\w+>", "", keys))
        self.assertFalse([text for text in texts if "[" in text.replace("+[", "")], texts)
        for key in ("a", "Return", "Tab", "F1", "ctrl+a"):
            brindle.keys(key)
        help_window.stays_shown(0.4)
        self.check_guide(help_window)
        self.close(help_window, "ctrl+w")
        self.close(self.open(brindle, "ctrl+shift+slash", HELP), "Escape")

    def check_guide(self, help_window):
        tab = help_window.part("page tab", "User Guide")
        help_window.click(tab)
        guide = wait_for(lambda: next((part for part in help_window.node.shown()
                                       if part.role == "label" and "Introduction" in part.text),
                                      None), "the guide")
        text = guide.text
        self.picture("help-guide")
        for section in ("Introduction", "The Main Window", "Activation and Deactivation",
                        "Searching for Entries", "To-do Lists", "Reports", "Shortcut Keys"):
            self.assertIn(section, text)
        self.assertIn("Ctrl+Alt+Space", text)
        self.assertNotRegex(text, r"[{}]")


class SettingsDialog(WindowsTestCase):
    def start_on_one(self):
        return self.start_quietly(datafile.create(self.home.path("work.bdl"), "One"))

    def open_settings(self, brindle):
        return self.open(brindle, "ctrl+comma", SETTINGS)

    def field(self, settings):
        return settings.part("text", "Key of the activation hotkey")

    def press_in_field(self, settings, *keys):
        settings.click(self.field(settings))
        wait_for(lambda: self.field(settings).has("focused"), "the field with the keyboard")
        settings.brindle.keys(*keys)

    def expect_key(self, settings, name):
        wait_for_value(lambda: self.field(settings).text, name, "the key in the field")

    def hotkey_toggles(self, brindle, keys):
        """The hotkey hides the application and brings it back."""
        self.desktop.keys(keys)
        brindle.wait_until_hidden()
        stays(lambda: brindle.window not in self.desktop.screen.windows(), "hidden", 0.3)
        self.desktop.keys(keys)
        wait_for(lambda: brindle.window in self.desktop.screen.windows(), f"back by {keys}")
        brindle.wait_until_in_front()

    def test_a_new_key_works_at_once_and_the_old_one_no_longer_and_after_a_restart(self):
        brindle = self.start_on_one()
        settings = self.open_settings(brindle)
        self.picture("settings")
        self.expect_key(settings, "Space")
        self.press_in_field(settings, "shift+a", "ctrl+b")
        self.expect_key(settings, "Space")
        self.press_in_field(settings, "a", "b")
        self.expect_key(settings, "B")
        settings.press_button("OK")
        settings.wait_until_hidden()
        brindle.wait_until_in_front()
        self.hotkey_toggles(brindle, "ctrl+alt+b")
        self.desktop.keys("ctrl+alt+space")
        stays(lambda: brindle.window in self.desktop.screen.windows(), "the old key means nothing", 1)
        brindle.keys("ctrl+q")
        self.assertEqual(brindle.wait_for_exit(), 0)
        self.hotkey_toggles(self.start(), "ctrl+alt+b")

    def test_cancel_and_escape_keep_the_old_key(self):
        brindle = self.start_on_one()
        before = None
        for leave in ("Cancel", "Escape"):
            with self.subTest(leave=leave):
                settings = self.open_settings(brindle)
                before = before or self.home.settings("General")
                self.press_in_field(settings, "F9")
                self.expect_key(settings, "F9")
                if leave == "Cancel":
                    settings.press_button("Cancel")
                    settings.wait_until_hidden()
                    brindle.wait_until_in_front()
                else:
                    # In the field Escape would be the key; elsewhere it leaves the dialog.
                    settings.click(settings.part("check box", "Check for updates"))
                    self.close(settings)
                self.assertEqual(self.home.settings("General"), before)
                self.hotkey_toggles(brindle, "ctrl+alt+space")
                settings = self.open_settings(brindle)
                self.expect_key(settings, "Space")
                settings.press_button("Cancel")
                settings.wait_until_hidden()

    def test_tab_can_be_taken_and_locks_and_modifiers_alone_cannot(self):
        brindle = self.start_on_one()
        settings = self.open_settings(brindle)
        self.press_in_field(settings, "Shift_L", "Control_L", "Caps_Lock", "Caps_Lock", "Num_Lock",
                            "Num_Lock")
        self.expect_key(settings, "Space")
        self.desktop.keys("Tab")
        self.expect_key(settings, "Tab")
        self.assertTrue(self.field(settings).has("focused"))
        settings.press_button("OK")
        settings.wait_until_hidden()
        brindle.wait_until_in_front()
        # Window managers keep Ctrl+Alt+Tab for themselves: what is stored must do here.
        self.assertEqual(self.home.settings("General")["activationhotkey"], str(0x01000001))
        settings = self.open_settings(brindle)
        self.expect_key(settings, "Tab")
        self.press_in_field(settings, "j")
        settings.press_button("OK")
        settings.wait_until_hidden()
        brindle.wait_until_in_front()
        self.hotkey_toggles(brindle, "ctrl+alt+j")

    def test_the_rest_is_stored_by_ok_only(self):
        brindle = self.start_on_one()
        settings = self.open_settings(brindle)
        updates = settings.part("check box", "Check for updates")
        timer = settings.part("check box", "Automatically activate every")
        minutes = settings.part("spin box")
        # As the test's settings are: no checks for updates, no timer.
        self.assertFalse(updates.has("checked"))
        self.assertFalse(timer.has("checked"))
        self.assertFalse(minutes.has("enabled"))
        settings.click(updates)
        settings.click(timer)
        wait_for(lambda: minutes.has("enabled"), "the minutes can be changed")
        settings.click(minutes)
        brindle.keys("ctrl+a")
        brindle.write("45")
        settings.press_button("OK")
        settings.wait_until_hidden()
        stored = self.home.settings("General")
        self.assertNotIn("dontcheckforupdates", stored)
        self.assertEqual((stored["automaticactivation"], stored["automaticactivationdelay"]),
                         ("true", "45"))
        settings = self.open_settings(brindle)
        self.assertTrue(settings.part("check box", "Check for updates").has("checked"))
        settings.click(settings.part("check box", "Check for updates"))
        settings.press_button("OK")
        settings.wait_until_hidden()
        wait_for_value(lambda: self.home.settings("General").get("dontcheckforupdates"), "true",
                       "no checks for updates stored")


class FamilyTestCase(WindowsTestCase):
    def start_family(self, more_settings=""):
        path = datafile.create(self.home.path("work.bdl"), "One", "Two", "Three")
        return self.start_quietly(path, more_settings=more_settings)

    def hide(self, window):
        brindle = window.brindle
        self.desktop.screen.activate(window.id)
        window.wait_until_in_front()
        brindle.keys("Escape")
        window.wait_until_hidden()


class Family(FamilyTestCase):
    def test_each_command_works_from_each_window(self):
        brindle = self.start_family()
        for source, source_keys in OPENING_KEYS.items():
            for target, target_keys in OPENING_KEYS.items():
                if source == target:
                    continue
                with self.subTest(source=source, target=target):
                    window = self.open(brindle, source_keys, source)
                    other = self.open(brindle, target_keys, target)
                    window.stays_shown(0.1)
                    # Again: the same window, no second one.
                    brindle.keys(target_keys)
                    other.wait_until_in_front()
                    self.hide(other)
                    # The main window takes the front when another one closes.
                    brindle.wait_until_in_front()
                    self.hide(window)
                    brindle.wait_until_in_front()
        self.check_query_untouched(brindle)

    def check_query_untouched(self, brindle):
        find = self.open(brindle, "ctrl+f", FIND)
        self.assertEqual(find.part("text").text, "")
        self.close(find)

    def test_discarding_works_from_each_window(self):
        brindle = self.start_family()
        brindle.go("ctrl+l", "One")
        for title, keys in OPENING_KEYS.items():
            with self.subTest(window=title):
                brindle.write_entry("Changed")
                brindle.keys("ctrl+period")
                window = self.open(brindle, keys, title)
                brindle.keys("ctrl+shift+BackSpace")
                brindle.expect_text("One")
                window.stays_shown(0.1)
                self.close(window)

    def test_quitting_works_from_each_window(self):
        for title, keys in OPENING_KEYS.items():
            with self.subTest(window=title):
                path = self.home.path("work.bdl")
                brindle = self.start() if self.programs else self.start_family()
                self.open(brindle, keys, title)
                brindle.keys("ctrl+q")
                self.assertEqual(brindle.wait_for_exit(), 0)
                self.assertEqual(datafile.integrity(path), "ok")


class ToolWindows(FamilyTestCase):
    """What depends on the window manager: who is in front of whom, and who has the keyboard."""

    def test_each_is_in_front_of_the_main_window_and_has_the_keyboard(self):
        brindle = self.start_family()
        screen = self.desktop.screen
        for title, keys in OPENING_KEYS.items():
            with self.subTest(window=title):
                window = self.open(brindle, keys, title)
                wait_for(lambda: screen.stacking().index(window.id)
                         > screen.stacking().index(brindle.window), f"{title} above the main window")
                stays(lambda: screen.active_window() == window.id, f"{title} in front", 0.5)
                self.assertTrue(brindle.is_shown())
                if title == FIND:
                    brindle.write("tw")
                    wait_for_value(lambda: window.part("text").text, "tw", "the query")
                self.close(window)
                self.assertEqual(brindle.text, "work.bdl")

    def test_a_click_on_the_main_window_leaves_the_lists_in_front_of_it(self):
        brindle = self.start_family()
        screen = self.desktop.screen
        for title in HIDE_WITH_THE_APPLICATION:
            with self.subTest(window=title):
                window = self.open(brindle, OPENING_KEYS[title], title)
                overlap = self.lay_over_main_window(window)
                x, y, width, height = screen.place(brindle.window)
                self.desktop.click(x + width // 8, y + height // 2)
                wait_for(lambda: screen.active_window() == brindle.window, "the main window in front")
                brindle.keys("End", "x")
                wait_for(lambda: brindle.text.endswith("x"), "the keyboard in the editor")
                if self.desktop.manager.keeps_families_in_order:
                    stays(lambda: screen.stacking().index(window.id)
                          > screen.stacking().index(brindle.window), f"{title} above", 0.5)
                    # Who lies on top there gets the click.
                    self.desktop.click(*overlap)
                else:
                    brindle.keys(OPENING_KEYS[title])
                window.wait_until_in_front()
                self.close(window)

    def lay_over_main_window(self, window):
        """Puts a window partly over the main window, unless it lies inside; a spot of both."""
        screen = self.desktop.screen
        main_window = window.brindle.window
        x, y, width, height = screen.place(main_window)
        if not self.desktop.manager.tiles:
            wanted = (x + width // 2, y + height // 4, width, height)
            screen.move_resize(window.id, *wanted)
            wait_for_value(lambda: screen.place(window.id), wanted, f"{window.title} moved")
        left, top, tool_width, tool_height = screen.place(window.id)
        return ((max(x, left) + min(x + width, left + tool_width)) // 2,
                (max(y, top) + min(y + height, top + tool_height)) // 2)

    def test_escape_hides_and_gives_the_keyboard_back_and_ctrl_w_where_it_is_said(self):
        brindle = self.start_family()
        brindle.go("ctrl+l", "One")
        typed = "One"
        for title, keys in OPENING_KEYS.items():
            with self.subTest(window=title):
                window = self.open(brindle, keys, title)
                brindle.keys("ctrl+w")
                if title == HELP:
                    window.wait_until_hidden()
                    brindle.wait_until_in_front()
                    window = self.open(brindle, keys, title)
                else:
                    window.stays_shown(0.4)
                self.close(window)
                brindle.keys("End", "x")
                typed += "x"
                brindle.expect_text(typed)

    def test_the_frames_cross_hides_too(self):
        brindle = self.start_family()
        for title, keys in OPENING_KEYS.items():
            with self.subTest(window=title):
                window = self.open(brindle, keys, title)
                self.desktop.screen.close_window(window.id)
                window.wait_until_hidden()
                brindle.wait_until_in_front()

    def test_with_the_application_the_lists_hide_and_the_dialogs_stay(self):
        brindle = self.start_family()
        for title, keys in OPENING_KEYS.items():
            with self.subTest(window=title):
                window = self.open(brindle, keys, title)
                other = self.other_program(f"other-{title}".replace(" ", "-"))
                brindle.wait_until_hidden()
                if title in HIDE_WITH_THE_APPLICATION:
                    window.wait_until_hidden()
                else:
                    window.stays_shown()
                self.assertEqual(self.desktop.screen.active_window(), other.window)
                self.desktop.keys("ctrl+alt+space")
                # Not before it has come, or it would take the front from the window activated next.
                brindle.wait_until_in_front()
                self.desktop.end(other.process)
                if title in HIDE_WITH_THE_APPLICATION:
                    # Coming back shows the main window only.
                    stays(lambda: not window.is_shown(), f"{title} stays hidden", 0.4)
                else:
                    self.hide(window)
                brindle.wait_until_in_front()


if __name__ == "__main__":
    main()
