# SPDX-License-Identifier: GPL-3.0-or-later
"""A backup from the main window to the service, and from there back through the first steps."""
import contextlib
import io
import os
import shutil
import sqlite3
import subprocess
import unittest
import zipfile

from account import AccountTest, Wizard
from harness import TROUBLE

MAKE_HISTORY = os.environ.get("TALLYVANE_MAKE_HISTORY", "")
NAME = "tallyvane.db"


def tables(path):
    """Every row of every table of a database, as a multitude per table."""
    with contextlib.closing(sqlite3.connect(path)) as database:
        names = [name for name, in database.execute(
            "SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite_%'")]
        return {name: sorted(database.execute(f'SELECT * FROM "{name}"'), key=repr) for name in names}


class Restoring(AccountTest):
    # What each run writes of itself.
    NOTES = {"online_backup_enabled", "online_backup_last", "time_series_last_sent", "history_stamp"}
    # What time adds to while the client runs: the rows of the present hour, of one application or two.
    TIMES = {"uptimes", "uptime_hour", "application_uptime", "application_active_hour"}
    UNZURGED = {"unzurged_stats", "pending_applications_stats"}

    def setUp(self):
        super().setUp()
        if not MAKE_HISTORY:
            self.skipTest("TALLYVANE_MAKE_HISTORY names no maker of histories")

    def archive(self):
        """The database in the backup that the service keeps, unpacked."""
        (content,), = self.service.query("SELECT content FROM backups")
        with zipfile.ZipFile(io.BytesIO(content)) as archive:
            self.assertEqual(archive.namelist(), [NAME])
            return archive.extract(NAME, self.service.root)

    def back_up(self):
        """Lets the client make a backup, which was due long ago, and returns what lies in it."""
        self.client.configure(online_backup_enabled=1, online_backup_last="2020-01-01 00:00:00")
        process = self.start()
        self.client.wait_for_log("info Successfully completed database backup!")
        self.type(5)  # Counting goes on, and these come too late for the backup.
        self.assertEqual(self.client.terminate(process), 0)
        return tables(self.archive())

    def test_a_wiped_computer_gets_everything_back(self):
        self.client.data.mkdir(mode=0o700, parents=True)
        subprocess.run([MAKE_HISTORY, "--days", "40", str(self.client.data)], check=True,
                       stderr=subprocess.DEVNULL)
        self.client.execute("DELETE FROM settings WHERE name = 'first_steps_due'")  # They are.
        self.link_and_end(stats_net_enable=0)  # Whatever crosses the machine's wires.
        self.filed = self.client.counted()
        process = self.start()
        self.type(12)
        self.click(4)
        self.assertEqual(self.client.terminate(process), 0)
        history = tables(self.client.data / NAME)
        before = self.back_up()
        self.assert_alike(before, history)

        shutil.rmtree(self.client.data)
        process, _ = self.link()
        self.assertEqual(self.client.counted(), {"keys": 0, "clicks": 0})
        self.desktop.press("Return")  # on the newest backup, which the list has chosen
        self.client.wait_for_log("info The restored database takes its place at the next start.")
        self.assertEqual(tables(self.client.data / "tallyvane-restore.db"), before)
        self.assertEqual(self.client.terminate(process), 0)
        process = self.client.start_fully()
        self.client.wait_for_log("info Successfully renamed restored database")
        self.desktop.main_window()
        self.assertEqual(self.desktop.windows(Wizard.TITLE), [], "it was done before")
        self.assertEqual(self.client.terminate(process), 0)
        self.assert_alike(tables(self.client.data / NAME), before)
        self.assertTrue((self.client.data / "tallyvane-before-restore.db").exists())
        # They may have been sent since the backup was made, which nobody here can know any more.
        self.assertEqual(self.client.unzurged()["keys"], 0, "what the backup holds as unzurged")
        self.assertEqual(self.service.violations(), [])
        self.assertNotRegex(self.client.log(), TROUBLE)

    def assert_alike(self, tables, expected):
        """Every row is there, and none was added but by the time that the client runs."""
        self.assertEqual(tables.keys(), expected.keys())
        for name, rows in expected.items():
            with self.subTest(name):
                if name == "settings":
                    self.assertEqual(*([row for row in setting if row[0] not in self.NOTES]
                                       for setting in (tables[name], rows)))
                elif name in self.TIMES:
                    self.assertLessEqual(len(set(rows) - set(tables[name])), 2)
                    self.assertGreaterEqual(len(tables[name]), len(rows))
                elif name not in self.UNZURGED:
                    self.assertEqual(tables[name], rows)


if __name__ == "__main__":
    unittest.main()
