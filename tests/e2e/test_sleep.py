# SPDX-License-Identifier: GPL-3.0-or-later
"""An hour asleep, announced as logind does it."""
import signal
import time
import unittest

from harness import DesktopTest, FakeClock, need, wait_for
from logind import Logind

HOUR = 3600


class Sleep(DesktopTest):
    def setUp(self):
        super().setUp()
        need("xterm")
        window = self.desktop.open_application("xterm")
        self.addCleanup(window.wait)
        self.addCleanup(window.terminate)
        self.clock = FakeClock(self.client.root)
        self.logind = Logind(self.client.root)
        self.addCleanup(self.logind.close)
        self.keyboard = self.client.device("event0")

    def state(self):
        """Milliseconds up, seconds in front, keys."""
        return tuple(self.client.query(f"SELECT COALESCE(SUM({column}), 0) FROM {table}")[0][0]
                     for column, table in (("msec_active", "uptime_hour"),
                                           ("seconds_active", "application_active_hour"),
                                           ("count", "keypress_frequency")))

    def sleep_an_hour(self, process):
        """Returns what was filed before it."""
        before = self.state()
        self.keyboard.type("a")
        time.sleep(0.3)
        self.logind.prepare_for_sleep(True)
        wait_for(lambda: self.state()[2] == before[2] + 1, "what was counted is written before sleep")
        asleep = self.state()  # read now: a stopped client may hold the database
        process.send_signal(signal.SIGSTOP)
        self.clock.set(HOUR)
        process.send_signal(signal.SIGCONT)
        self.logind.prepare_for_sleep(False)
        return asleep

    def test_an_hour_asleep_counts_one_second(self):
        environment = self.clock.environment | {"DBUS_SYSTEM_BUS_ADDRESS": self.logind.address}
        process = self.client.start_fully("--closedwindow", environment=environment)
        self.client.wait_for_log("Creating device listener for /dev/input/event0")
        time.sleep(2)
        up, front, keys = self.sleep_an_hour(process)
        wait_for(lambda: self.state()[0] > up, "the first update after waking")
        self.assertEqual(self.state(), (up + 1000, front + 1, keys))
        awake = time.monotonic()
        self.keyboard.type("b", "b")
        wait_for(lambda: self.state()[2] == keys + 2, "counting goes on")
        self.assertEqual(self.client.terminate(process), 0)
        passed = time.monotonic() - awake
        counted = (self.state()[0] - up) / 1000 - 1
        self.assertTrue(0 < counted < passed + 2, f"{counted} of {passed}")
        self.assertEqual(self.client.query("SELECT MAX(unixepoch(end_time)) - unixepoch('now') > 3000 "
                                           "FROM uptimes"), [(1,)], "the boot lasts until now")

    def test_sleep_ends_the_profile(self):
        environment = {"DBUS_SYSTEM_BUS_ADDRESS": self.logind.address}
        process = self.client.start_fully(environment=environment)
        self.client.wait_for_log("Creating device listener for /dev/input/event0")
        profile = self.begin_profile("Work")
        self.keyboard.type("a", "b")
        time.sleep(0.3)
        self.logind.prepare_for_sleep(True)
        self.client.wait_for_log("Resetting to default profile because we're going to sleep")
        # The line comes before the change; the next key belongs to the profile at that very moment.
        wait_for(lambda: self.client.query("SELECT SUM(active) FROM profiles") == [(0,)], "no profile")
        self.assertEqual(self.client.keys_by_profile(), {profile: 2}, "what was counted until now")
        self.logind.prepare_for_sleep(False)
        self.keyboard.type("a")
        wait_for(lambda: self.client.keys_by_profile() == {profile: 2, 0: 1}, "a key under no profile")
        self.assertEqual(self.client.terminate(process), 0)

    def begin_profile(self, name):
        """Adds a profile by the window's table and counts under it; returns its id."""
        self.desktop.skip_first_steps()
        window = self.desktop.main_window()
        self.desktop.run("xdotool", "windowactivate", "--sync", window)
        self.desktop.press("ctrl+7")
        time.sleep(1)
        self.press_in_table(window, "Menu", "Down", "Return")
        wait_for(lambda: self.desktop.windows("^Add profile$"), "the dialog for the name")
        self.desktop.run("xdotool", "type", name)
        self.desktop.press("Return")
        (profile,), = wait_for(
            lambda: self.client.query("SELECT id FROM profiles WHERE name = ?", name), "the profile")
        wait_for(lambda: not self.desktop.windows("^Add profile$"), "the end of the dialog")
        time.sleep(1)
        self.press_in_table(window, "Return")
        self.client.wait_for_log(f"Activating profile: {name} with ID: {profile}")
        return profile

    def press_in_table(self, window, *keys):
        """Clicks on the second row of the table of profiles, or below the first, and presses KEYS."""
        self.desktop.press_at(window, 500, 230, *keys)

if __name__ == "__main__":
    unittest.main()
