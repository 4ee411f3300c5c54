# SPDX-License-Identifier: GPL-3.0-or-later
"""Databases that cannot be used, met by the real client."""
import time
import unittest

from harness import PATIENCE, DesktopTest, wait_for


class Damage(DesktopTest):
    def setUp(self):
        super().setUp()
        process = self.client.start_fully("--closedwindow")
        self.client.wait_for_log("Starting timers and collector..")
        self.assertEqual(self.client.terminate(process), 0)
        self.database = self.client.data / "tallyvane.db"

    def box(self, title):
        wait_for(lambda: self.desktop.windows(title), f"the message box {title!r}")

    def kept_aside(self):
        return [path for path in self.client.data.iterdir()
                if ".damaged-" in path.name and not path.name.endswith("-journal")]

    def test_newer_database_is_left_alone(self):
        self.client.execute("PRAGMA user_version = 12")
        before = self.database.read_bytes()
        process = self.client.start("--closedwindow")
        self.box("Version")
        # Too early for the window; never too early for the end.
        self.client.send_message(b"open_window\n")
        time.sleep(0.5)
        self.assertNotIn("to open our main window!", self.client.log())
        self.client.send_message(b"exit_client\n")
        self.assertEqual(process.wait(timeout=PATIENCE), 0)
        self.assertEqual(self.database.read_bytes(), before)

    def test_newer_database_ends_the_client(self):
        self.client.execute("PRAGMA user_version = 12")
        process = self.client.start("--closedwindow")
        self.box("Version")
        self.desktop.press("Return")
        self.assertEqual(process.wait(timeout=PATIENCE), 0)
        self.assertIn("Database version (12) is higher then supported (11). This is very bad and I "
                      "will now reset the database to be safe!", self.client.log())

    def test_fresh_database_keeps_the_unzurged_counts(self):
        keyboard = self.client.device("event0")
        process = self.client.start_fully("--closedwindow")
        self.client.wait_for_log("Creating device listener for")
        keyboard.type("a", "b", "c")
        time.sleep(0.3)
        self.assertEqual(self.client.terminate(process), 0)
        damaged = b"not a database at all" * 500
        self.database.write_bytes(damaged)
        self.client.data.joinpath("tallyvane.db.backup").write_bytes(damaged)

        process = self.client.start("--closedwindow")
        self.client.wait_for_log("Unable to recover from database backup file!")
        self.box("Database failure")
        self.desktop.press("Tab", "space")  # from "Leave everything as it is" to the other one
        wait_for(lambda: self.client.log().count("Starting collector") == 3, "the start's end")
        self.assertEqual(self.client.terminate(process), 0)
        self.assertEqual(self.client.query("SELECT value FROM unzurged_stats WHERE name = 'keys'"),
                         [("3",)])
        self.assertIn(damaged, [path.read_bytes() for path in self.kept_aside()])

    def test_declining_a_fresh_database_changes_nothing(self):
        damaged = b"not a database at all" * 500
        self.database.write_bytes(damaged)
        self.client.data.joinpath("tallyvane.db.backup").write_bytes(damaged)
        process = self.client.start("--closedwindow")
        self.box("Database failure")
        self.desktop.press("Return")
        self.client.wait_for_log("User declined fresh database")
        wait_for(lambda: process.poll() is not None or self.desktop.press("Return"), "the end")
        self.assertEqual(process.returncode, 1)
        self.assertIn(damaged, [path.read_bytes() for path in (self.database, *self.kept_aside())
                                if path.exists()])

    def test_backup_is_put_in_place_of_a_damaged_database(self):
        good = self.database.read_bytes()
        self.client.data.joinpath("tallyvane.db.backup").write_bytes(good)
        self.database.write_bytes(good[:5000])
        process = self.client.start("--closedwindow")
        self.client.wait_for_log("Recovered database from backup file!")
        self.client.wait_for_log("Starting collector", count=2)
        self.assertEqual(self.client.terminate(process), 0)
        self.assertEqual([path.stat().st_size for path in self.kept_aside()], [5000])

    def test_damage_to_a_large_database_is_found_after_the_start(self):
        self.client.execute("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE "
                            "i < 90000) INSERT INTO applications (path, name) "
                            "SELECT '/opt/' || i, hex(randomblob(200)) FROM n")
        good = self.database.read_bytes()
        self.client.data.joinpath("tallyvane.db.backup").write_bytes(good)
        middle = len(good) // 2 // 4096 * 4096
        self.database.write_bytes(good[:middle] + bytes(4096) + good[middle + 4096:])
        process = self.client.start("--closedwindow")
        # It restarts by itself, as another process.
        self.assertEqual(process.wait(timeout=PATIENCE), 0)
        try:
            self.client.wait_for_log("Recovered database from backup file!")
            self.client.wait_for_log("Starting collector", count=3)
            self.assertEqual(self.client.query("SELECT COUNT(*) FROM applications"), [(90000,)])
            self.assertEqual(len(self.kept_aside()), 1)
        finally:
            self.client.send_message(b"exit_client\n")
            wait_for(lambda: self.client.log().count("Stopping collector") == 3, "the end")


if __name__ == "__main__":
    unittest.main()
