# SPDX-License-Identifier: GPL-3.0-or-later
"""The road of a key: from a device's record to the rows of the database."""
import collections
import random
import signal
import time
import unittest

from harness import EV_KEY, KEYS, PATIENCE, Client, DesktopTest, need, wait_for

XTERM = "/usr/bin/xterm"


class Counting(DesktopTest):
    def setUp(self):
        super().setUp()
        need("xterm")
        self.window = self.desktop.open_application("xterm")
        self.addCleanup(self.window.wait)
        self.addCleanup(self.window.terminate)
        self.keyboard = self.client.device("event0")

    def start(self, *arguments, **options):
        process = self.client.start_fully("--closedwindow", *arguments, **options)
        self.client.wait_for_log(f"Creating device listener for /dev/input/event0")
        return process

    def totals(self, table, column="count"):
        return self.client.query(f"SELECT COALESCE(SUM({column}), 0) FROM {table}")[0][0]

    def counts_per_key(self, table="keypress_frequency"):
        return dict(self.client.query(f"SELECT key, SUM(count) FROM {table} GROUP BY key"))

    def test_every_released_key_is_filed_exactly(self):
        process = self.start()
        first = ["a", "b", "space", "a", "grave"]
        self.keyboard.type(*first)
        # Repeats of a held key, a press without a release and other records count nothing.
        self.keyboard.send(EV_KEY, KEYS["b"][0], 2)
        self.keyboard.send(EV_KEY, KEYS["c"][0], 1)
        self.keyboard.send(4, 4, 30)
        wait_for(lambda: sum(self.counts_per_key().values()) == 4, "the first batch")
        self.keyboard.type("enter", "a")
        wait_for(lambda: sum(self.counts_per_key().values()) == 6, "the second batch")
        self.assertEqual(self.client.terminate(process), 0)

        self.assertEqual(self.counts_per_key(), {0x41: 3, 0x42: 1, 0x20: 1, 0x01000005: 1})
        self.assertEqual(self.counts_per_key("keypress_frequency_application"), self.counts_per_key())
        self.assertEqual(self.client.query("SELECT DISTINCT path FROM keypress_frequency_application"),
                         [(XTERM,)])
        self.assertEqual(self.client.query("SELECT path, SUM(keys) FROM input_per_application"),
                         [(XTERM, 7)])
        rows = self.client.query("SELECT count, profile_id FROM keypresses")
        if len(rows) == 1:  # else the hour changed in the midst of the test
            self.assertEqual(rows, [(2, 0)], "the first batch of an hour only makes the row")
        self.assertEqual(self.client.query("SELECT value FROM unzurged_stats WHERE name = 'keys'"),
                         [("7",)])
        self.assertEqual(self.client.query("SELECT path, keys FROM pending_applications_stats"),
                         [(XTERM, 7)])

    def test_keys_released_just_before_the_end_are_stored(self):
        process = self.start()
        self.keyboard.type("a")
        wait_for(lambda: self.totals("keypress_frequency") == 1, "the first key")
        self.keyboard.type("b", "c", "b")
        time.sleep(0.4)
        self.assertEqual(self.client.terminate(process), 0)
        self.assertEqual(self.counts_per_key(), {0x41: 1, 0x42: 2, 0x43: 1})

    def test_the_end_of_the_display_loses_nothing(self):
        for arguments in (["--closedwindow"], []):
            with self.subTest(arguments):
                desktop = type(self.desktop)()
                self.addCleanup(desktop.close)
                client = Client(desktop)
                self.addCleanup(client.close)
                keyboard = client.device("event0")
                process = client.start_fully(*arguments)
                client.wait_for_log("Creating device listener for")
                if not arguments:
                    desktop.main_window()
                keyboard.type("a", "b", "c")
                time.sleep(0.3)
                desktop.kill_server()
                self.assertEqual(process.wait(timeout=PATIENCE), 0)
                self.assertEqual(client.query("SELECT SUM(count) FROM keypress_frequency"), [(3,)])
                self.assertEqual(
                    client.query("SELECT value FROM unzurged_stats WHERE name = 'keys'"), [("3",)])

    def test_unzurged_counts_outlive_a_restart(self):
        for expected in (2, 4):
            process = self.start()
            self.keyboard.type("a", "b")
            time.sleep(0.3)
            self.assertEqual(self.client.terminate(process), 0)
            self.assertEqual(
                self.client.query("SELECT value FROM unzurged_stats WHERE name = 'keys'"),
                [(str(expected),)])

    def test_what_is_typed_during_a_pause_is_not_counted(self):
        process = self.client.start_fully()
        self.desktop.skip_first_steps()
        window = self.desktop.main_window()
        self.client.wait_for_log("Creating device listener for /dev/input/event0")

        def click_counting_button():  # at the right of the bar above the view
            self.desktop.run("xdotool", "mousemove", "--window", window, "1024", "32", "click", "1")

        self.keyboard.type("a")
        time.sleep(0.2)
        click_counting_button()
        self.client.wait_for_log("Pausing collector")
        self.client.wait_for_log("Closing device listener for /dev/input/event0")
        self.assertEqual(self.counts_per_key(), {0x41: 1}, "written before the pause")
        self.keyboard.type("b", "b")
        time.sleep(0.5)
        click_counting_button()
        self.client.wait_for_log("Creating device listener for /dev/input/event0", count=2)
        self.keyboard.type("c")
        time.sleep(0.5)
        self.assertEqual(self.client.terminate(process), 0)
        counts = self.counts_per_key()
        counts.pop(0x42, None)  # a pipe keeps what nobody read; a device does not
        self.assertEqual(counts, {0x41: 1, 0x43: 1})

    def test_devices_come_and_go(self):
        process = self.start()
        second = self.client.device("event7")
        self.client.wait_for_log("Creating device listener for /dev/input/event7")
        second.type("b")
        self.keyboard.type("a")
        wait_for(lambda: self.totals("keypress_frequency") == 2, "both keyboards")
        second.unplug()
        third = self.client.device("event8")
        self.client.wait_for_log("Creating device listener for /dev/input/event8")
        third.type("c")
        wait_for(lambda: self.totals("keypress_frequency") == 3, "the third keyboard")
        self.assertEqual(self.client.terminate(process), 0)

    def test_killing_at_any_instant_keeps_what_was_written(self):
        """Counts never go backwards, tables agree, and at most one interval of typing is lost."""
        generator = random.Random(2026)
        typed = 0
        stored = 0
        for _ in range(6):
            process = self.start()
            lost_at_most = 0
            end = time.monotonic() + generator.uniform(0.5, 8)
            times = collections.deque()
            while time.monotonic() < end:
                self.keyboard.type("a")
                typed += 1
                times.append(time.monotonic())
                time.sleep(0.02)
            process.send_signal(signal.SIGKILL)
            process.wait()
            lost_at_most = sum(1 for moment in times if moment > end - 6.5)
            now_stored = self.totals("keypress_frequency")
            self.assertGreaterEqual(now_stored, stored)
            self.assertGreaterEqual(now_stored, stored + len(times) - lost_at_most)
            self.assertEqual(self.totals("keypress_frequency_application"), now_stored)
            self.assertEqual(self.client.query("PRAGMA integrity_check"), [("ok",)])
            stored = now_stored
        self.assertLessEqual(stored, typed)

    def test_killing_loses_at_most_a_minute_of_unzurged_counts(self):
        process = self.start()
        self.keyboard.type(*["a"] * 10)
        wait_for(lambda: self.client.query("SELECT value FROM unzurged_stats WHERE name = 'keys'")
                 == [("10",)], "the minute's copy", seconds=90)
        process.kill()
        process.wait()
        process = self.start()
        self.keyboard.type("a")
        time.sleep(0.3)
        self.assertEqual(self.client.terminate(process), 0)
        self.assertEqual(self.client.query("SELECT value FROM unzurged_stats WHERE name = 'keys'"),
                         [("11",)])


class WithoutDevices(DesktopTest):
    def test_no_device_is_told(self):
        self.client.start_fully("--closedwindow")
        self.client.wait_for_log(
            "info No input devices (/dev/input/*) found! Tallyvane cannot count your keys/clicks.")

    def test_switched_off_keyboard_is_not_counted(self):
        process = self.client.start_fully("--closedwindow")
        self.assertEqual(self.client.terminate(process), 0)
        keyboard = self.client.device("event0")
        for setting in ("stat_keyboard_enable", "stats_input_enable"):
            self.client.execute(f"UPDATE settings SET value = '0' WHERE name = '{setting}'")
            process = self.client.start_fully("--closedwindow")
            keyboard.type("a", "b")
            time.sleep(1)
            self.assertEqual(self.client.terminate(process), 0)
            # Opened in the first run alone, for the mouse.
            self.assertEqual(self.client.log().count("Creating device listener for /dev/input/event0"), 1)
            self.assertEqual(self.client.query("SELECT * FROM keypress_frequency"), [])


if __name__ == "__main__":
    unittest.main()
