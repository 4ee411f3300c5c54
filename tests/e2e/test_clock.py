# SPDX-License-Identifier: GPL-3.0-or-later
"""A clock that goes backwards, seen by the real client through libfaketime."""
import datetime
import time
import unittest

from harness import DesktopTest, FakeClock, wait_for


class ClockSetBack(DesktopTest):
    def setUp(self):
        super().setUp()
        self.clock = FakeClock(self.client.root)

    def start(self):
        return self.client.start_fully("--closedwindow", environment=self.clock.environment)

    def add_history(self):
        """Ten days of rows that end today, so that shifted days meet days not yet shifted."""
        today = datetime.date.today()
        self.days = [(today - datetime.timedelta(n)).isoformat() for n in range(10)]
        self.client.execute("".join(
            f"INSERT OR REPLACE INTO keypresses VALUES('{day}', 1, {n + 1}, 0);"
            f"INSERT OR REPLACE INTO keycombo_frequency VALUES('{day}', 1, 'x', {n + 1}, 0);"
            for n, day in enumerate(self.days))
            + "INSERT INTO uptimes VALUES('2026-03-10 12:00:00', '2026-03-10 13:00:00');")

    def counts(self, table):
        return dict(self.client.query(f"SELECT day, count FROM {table} WHERE hour = 1"))

    def shifted(self, days):
        return {(datetime.date.fromisoformat(day) + datetime.timedelta(days)).isoformat(): n + 1
                for n, day in enumerate(self.days)}

    def unshifted(self):
        return {day: n + 1 for n, day in enumerate(self.days)}

    def expect_shift_by_three_days_two_hours(self):
        self.client.wait_for_log("Shifting stats time by -3 days and -7")
        wait_for(lambda: self.counts("keypresses") == self.shifted(-3), "the shifted days")
        self.assertEqual(self.counts("keycombo_frequency"), self.unshifted(), "not a shifted table")
        moved = datetime.datetime.fromisoformat(self.client.query("SELECT boot_time FROM uptimes")[0][0])
        wanted = datetime.datetime(2026, 3, 7, 10)
        self.assertLess(abs((moved - wanted).total_seconds()), 60)

    def test_three_days_and_two_hours_while_running(self):
        process = self.start()
        time.sleep(1)
        self.add_history()
        self.clock.set(-(3 * 86400 + 2 * 3600))
        self.expect_shift_by_three_days_two_hours()
        self.assertEqual(self.client.terminate(process), 0)
        # The next start sees the shifted clock, and shifts no further.
        process = self.start()
        time.sleep(7)
        self.assertEqual(self.client.log().count("Shifting stats time"), 1)
        self.assertEqual(self.counts("keypresses"), self.shifted(-3))
        self.assertEqual(self.client.terminate(process), 0)

    def test_three_days_and_two_hours_while_not_running(self):
        process = self.start()
        time.sleep(1)
        self.add_history()
        self.assertEqual(self.client.terminate(process), 0)
        self.clock.set(-(3 * 86400 + 2 * 3600))
        process = self.start()
        self.expect_shift_by_three_days_two_hours()
        self.assertEqual(self.client.terminate(process), 0)

    def test_three_seconds_and_back_shift_nothing(self):
        process = self.start()
        time.sleep(1)
        self.add_history()
        self.clock.set(-3)
        time.sleep(2)
        self.clock.set(0)
        time.sleep(4)
        self.assertNotIn("Shifting stats time", self.client.log())
        self.assertEqual(self.counts("keypresses"), self.unshifted())
        self.assertEqual(self.client.terminate(process), 0)


if __name__ == "__main__":
    unittest.main()
