# SPDX-License-Identifier: GPL-3.0-or-later
"""The main window on a history of some weeks."""
import os
import subprocess
import time
import unittest

from harness import DesktopTest, wait_for

MAKE_HISTORY = os.environ.get("TALLYVANE_MAKE_HISTORY", "")
TITLE = "500x64+200+0"  # of the view, with the days shown


class MainWindow(DesktopTest):
    def setUp(self):
        super().setUp()
        if not MAKE_HISTORY:
            self.skipTest("TALLYVANE_MAKE_HISTORY names no maker of histories")
        self.client.data.mkdir(mode=0o700, parents=True)
        subprocess.run([MAKE_HISTORY, "--days", "40", str(self.client.data)], check=True,
                       stderr=subprocess.DEVNULL)
        self.client.device()
        self.process = self.client.start_fully()
        self.window = self.desktop.main_window()

    def press_and_look(self, *keys):
        """Presses KEYS and waits for another title; returns it."""
        before = self.desktop.picture(self.window, TITLE)
        self.desktop.press(*keys)
        wait_for(lambda: self.desktop.picture(self.window, TITLE) != before, f"an answer to {keys}")
        time.sleep(0.5)  # The view asks for its figures meanwhile, and draws them.
        self.assertEqual(self.client.send_message(b"ping\n"), b"ok\n")
        return self.desktop.picture(self.window, TITLE)

    def test_a_walk_through_the_views(self):
        rollup = self.client.data / "tallyvane-rollup.db"
        wait_for(rollup.exists, "the prepared sums")
        views = [self.press_and_look(f"ctrl+{view}") for view in (2, 3, 4, 5, 6, 7, 1)]
        self.assertEqual(len(set(views)), 7)
        before = self.desktop.picture(self.window, TITLE)
        # The range's button; "All time" is the seventh of its menu.
        self.desktop.press_at(self.window, 812, 32, *7 * ["Down"], "Return")
        wait_for(lambda: self.desktop.picture(self.window, TITLE) != before, "other days")
        self.press_and_look("ctrl+6")
        self.press_and_look("alt+Left")
        self.assertEqual(self.client.terminate(self.process), 0)
        self.assertNotRegex(self.client.log(), r"(?m)^\S+ \S+ (warn|error|fatal) ")
        self.assertEqual(rollup.stat().st_mode & 0o777, 0o600)


if __name__ == "__main__":
    unittest.main()
