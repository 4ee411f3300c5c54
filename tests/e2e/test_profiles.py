# SPDX-License-Identifier: GPL-3.0-or-later
"""A profile from its adding to its end, by the main window's table of profiles."""
import time
import unittest

from harness import DesktopTest, wait_for


class Profiles(DesktopTest):
    def setUp(self):
        super().setUp()
        self.keyboard = self.client.device()
        self.process = self.client.start_fully()
        self.desktop.skip_first_steps()
        self.window = self.desktop.main_window()
        self.client.wait_for_log("Creating device listener for /dev/input/event0")
        self.desktop.press("ctrl+7")
        time.sleep(0.5)

    def press_in_table(self, *keys):
        """Clicks below the rows of the table of profiles, and presses KEYS."""
        self.desktop.press_at(self.window, 500, 242, *keys)

    def dialog(self, title):
        return wait_for(lambda: self.desktop.windows(f"^{title}$"), f"the dialog {title!r}")

    def test_life_of_a_profile(self):
        self.keyboard.type("a")
        wait_for(lambda: self.client.keys_by_profile() == {0: 1}, "a key under no profile")
        self.press_in_table("Menu", "Down", "Return")
        self.dialog("Add profile")
        self.desktop.run("xdotool", "type", "Work")
        self.desktop.press("Return")
        (profile,), = wait_for(lambda: self.client.query("SELECT id FROM profiles WHERE name = 'Work'"),
                               "the profile")
        self.press_in_table("ctrl+End", "Return")
        self.client.wait_for_log(f"Activating profile: Work with ID: {profile}")

        self.keyboard.type("a", "b", "c")
        wait_for(lambda: self.client.keys_by_profile() == {0: 1, profile: 3}, "keys under the profile")

        self.press_in_table("ctrl+End", "Menu", "Up", "Return")
        self.dialog("Delete profile")
        self.desktop.press("Tab", "space")
        wait_for(lambda: self.client.keys_by_profile() == {0: 4}, "the keys under no profile")
        self.assertEqual(self.client.query("SELECT * FROM profiles"), [])
        self.keyboard.type("b")
        wait_for(lambda: self.client.keys_by_profile() == {0: 5}, "another key under no profile")
        self.assertEqual(self.client.terminate(self.process), 0)
        self.assertNotRegex(self.client.log(), r"(?m)^\S+ \S+ (warn|error|fatal) ")


if __name__ == "__main__":
    unittest.main()
