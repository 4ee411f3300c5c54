# SPDX-License-Identifier: GPL-3.0-or-later
"""Mouse, applications and uptime: from what was done to the rows of the database."""
import datetime
import os
import shutil
import time
import unittest

from harness import EV_KEY, EV_REL, DesktopTest, need, wait_for

XTERM = "/usr/bin/xterm"
# Codes of linux/input-event-codes.h.
LEFT, RIGHT, MIDDLE, SIDE = 0x110, 0x111, 0x112, 0x113
REL_X, REL_Y, REL_HWHEEL, REL_WHEEL = 0, 1, 6, 8
UP, DOWN, SCROLLED_LEFT = 1, 2, 3  # mousescrolls.direction
INCH = 96  # pixels on the virtual screen


class Activity(DesktopTest):
    def setUp(self):
        super().setUp()
        need("xterm")
        self.other = str(self.client.root / "other-application")
        shutil.copy(XTERM, self.other)
        self.open_application(XTERM)
        self.mouse = self.client.device("event0")
        self.began = time.monotonic()
        self.process = self.client.start_fully("--closedwindow")
        self.client.wait_for_log("Creating device listener for /dev/input/event0")

    def open_application(self, path):
        window = self.desktop.open_application(path)
        self.addCleanup(window.wait)
        self.addCleanup(window.terminate)

    def end(self):
        self.assertEqual(self.client.terminate(self.process), 0)
        return time.monotonic() - self.began

    def sum(self, expression, table):
        return self.client.query(f"SELECT COALESCE(SUM({expression}), 0) FROM {table}")[0][0]

    def click(self, *buttons):
        before = self.sum("count", "mouseclicks_frequency")
        for button in buttons:
            self.mouse.send(EV_KEY, button, 1)
            self.mouse.send(EV_KEY, button, 0)
        wait_for(lambda: self.sum("count", "mouseclicks_frequency") == before + len(buttons), "clicks")

    def test_mouse_is_filed_exactly(self):
        self.desktop.run("xdotool", "mousemove", "320", "200")
        self.click(LEFT)
        self.click(LEFT, RIGHT, MIDDLE, SIDE)
        # Each report is an inch from the one before it; the first one starts the count.
        self.mouse.send(EV_REL, REL_X, 10)
        self.mouse.send(EV_REL, REL_X, 10 + INCH)
        wait_for(lambda: self.client.query("SELECT * FROM mousedistance"), "the first travel")
        for _ in range(5):
            self.mouse.send(EV_REL, REL_X, 10)
            self.mouse.send(EV_REL, REL_X, 10 + INCH)
        for code, value, steps in ((REL_WHEEL, 1, 3), (REL_WHEEL, -1, 2), (REL_HWHEEL, 1, 1)):
            for _ in range(steps):
                self.mouse.send(EV_REL, code, value)
        wait_for(lambda: self.sum("distance_inches", "mousedistance") == 10, "the travel")
        wait_for(lambda: self.sum("count", "mousescrolls") == 6, "the scrolls")
        self.open_application(self.other)
        self.click(LEFT, LEFT)
        self.end()

        self.assertEqual(self.client.query("SELECT button, SUM(count) FROM mouseclicks_frequency "
                                           "GROUP BY button"), [(0, 4), (1, 1), (2, 1), (99, 1)])
        self.assertEqual(self.client.query("SELECT path, button, SUM(count) FROM "
                                           "mouseclicks_frequency_application GROUP BY path, button"),
                         sorted([(XTERM, 0, 2), (XTERM, 1, 1), (XTERM, 2, 1), (XTERM, 99, 1),
                                 (self.other, 0, 2)]))
        self.assertEqual(self.client.query("SELECT x, y, COUNT(*) FROM mousepoints GROUP BY x, y"),
                         [(0.25, 0.25, 7)])
        self.assertEqual(self.client.query("SELECT direction, SUM(count) FROM mousescrolls "
                                           "WHERE count > 0 GROUP BY direction"),
                         [(UP, 3), (DOWN, 2), (SCROLLED_LEFT, 1)])
        self.assertEqual(self.client.query("SELECT path, SUM(clicks), SUM(distance_inches), "
                                           "SUM(scrolls) FROM input_per_application GROUP BY path"),
                         sorted([(XTERM, 5, 11, 6), (self.other, 2, 0, 0)]))
        if len(self.client.query("SELECT * FROM mouseclicks")) == 1:  # else the hour changed
            self.assertEqual(self.sum("count", "mouseclicks"), 6, "all but the first batch")
        unzurged = dict(self.client.query("SELECT name, value FROM unzurged_stats"))
        self.assertEqual({name: unzurged[name] for name in ("clicks", "distance_inches", "scrolls")},
                         {"clicks": "7", "distance_inches": "11", "scrolls": "6"})

    def test_applications_and_uptime_are_filed(self):
        time.sleep(6)
        self.open_application(self.other)
        time.sleep(6)
        lasted = self.end()

        names = dict(self.client.query("SELECT path, name FROM applications"))
        self.assertEqual(set(names) & {XTERM, self.other}, {XTERM, self.other})
        self.assertTrue(all(names.values()))
        front = dict(self.client.query("SELECT path, SUM(seconds_active) FROM application_active_hour "
                                       "GROUP BY path"))
        self.assertEqual(set(front), {XTERM, self.other})
        # Looked at every five seconds: the first look at an application is good for one of them.
        self.assertTrue(5 <= front[XTERM] <= lasted - 5, f"{front} of {lasted}")
        self.assertTrue(1 <= front[self.other] <= 8, f"{front} of {lasted}")
        self.assertEqual(dict(self.client.query("SELECT path, uptime FROM pending_applications_stats")),
                         front)
        running = dict(self.client.query("SELECT path, time FROM application_uptime "
                                         "WHERE last_used > datetime('now', '-60 seconds')"))
        self.assertEqual(set(running), {XTERM})  # the other had no row yet while it was in front
        self.assertTrue(10 <= running[XTERM] <= lasted + 2)
        self.assertTrue(10_000 <= self.sum("msec_active", "uptime_hour") <= lasted * 1000)
        self.check_boot()

    def check_boot(self):
        with open("/proc/stat", encoding="ascii") as stat:
            seconds = next(int(line.split()[1]) for line in stat if line.startswith("btime"))
        boot = datetime.datetime.fromtimestamp(seconds)
        [(boot_time, end_time)] = self.client.query("SELECT boot_time, end_time FROM uptimes")
        self.assertEqual(len(boot_time), len("2026-03-14 12:00:00"))
        stored = datetime.datetime.fromisoformat(boot_time)
        self.assertLessEqual(abs((stored - boot).total_seconds()), 1)  # the kernel's rounding
        end = datetime.datetime.fromisoformat(end_time).replace(tzinfo=datetime.timezone.utc)
        self.assertLess(abs(end.timestamp() - time.time()), 60)


if __name__ == "__main__":
    unittest.main()
