# SPDX-License-Identifier: GPL-3.0-or-later
"""A backup from the main window to the service, and from there back through the first steps."""
import contextlib
import io
import os
import shutil
import sqlite3
import subprocess
import time
import unittest
import zipfile

from account import AccountTest, Wizard
from harness import PATIENCE, TROUBLE

MAKE_HISTORY = os.environ.get("TALLYVANE_MAKE_HISTORY", "")
NAME = "tallyvane.db"


def tables(path):
    """Every row of every table of a database, as a multitude per table."""
    with contextlib.closing(sqlite3.connect(path)) as database:
        names = [name for name, in database.execute(
            "SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite_%'")]
        return {name: sorted(database.execute(f'SELECT * FROM "{name}"'), key=repr) for name in names}


class BackupTest(AccountTest):
    def archive(self):
        """The database in the newest backup that the service keeps, unpacked."""
        (content,), = self.service.query("SELECT content FROM backups ORDER BY id DESC LIMIT 1")
        with zipfile.ZipFile(io.BytesIO(content)) as archive:
            self.assertEqual(archive.namelist(), [NAME])
            return archive.extract(NAME, self.service.root)

    def keep(self, content):
        """Makes CONTENT the account's one backup at the service."""
        path = self.service.root / "service.db"
        with contextlib.closing(sqlite3.connect(path, timeout=PATIENCE)) as database, database:
            database.execute("DELETE FROM backups")
            database.execute("INSERT INTO backups (account_id, filename, created_at, content) "
                             "SELECT id, 'one.zip', '2026-01-02 03:04:05', ? FROM accounts", [content])


class Restoring(BackupTest):
    # What each run writes of itself.
    NOTES = {"online_backup_enabled", "online_backup_last", "time_series_last_sent", "history_stamp"}
    # What time adds to while the client runs: the rows of the present hour, of one application or two.
    TIMES = {"uptimes", "uptime_hour", "application_uptime", "application_active_hour"}
    UNZURGED = {"unzurged_stats", "pending_applications_stats"}

    def setUp(self):
        super().setUp()
        if not MAKE_HISTORY:
            self.skipTest("TALLYVANE_MAKE_HISTORY names no maker of histories")

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


class Refusing(BackupTest):
    def packed(self, version=None):
        """The client's database in an archive, as a backup holds it."""
        copy = self.service.root / NAME
        with contextlib.closing(sqlite3.connect(self.client.data / NAME)) as source:
            with contextlib.closing(sqlite3.connect(copy)) as target:
                source.backup(target)
                if version:
                    target.execute(f"PRAGMA user_version = {version}")
        content = io.BytesIO()
        with zipfile.ZipFile(content, "w", zipfile.ZIP_DEFLATED) as archive:
            archive.write(copy, NAME)
        copy.unlink()
        return content.getvalue()

    def refused(self, content):
        """Lets the wizard restore CONTENT; returns what it says against that."""
        self.keep(content)
        said = "error Unable to restore the database: "
        before = self.client.log().count(said)
        self.desktop.press("Return")  # on the backup, which the list has chosen
        self.client.wait_for_log(said, before + 1)
        time.sleep(0.5)  # The list is back, with the focus.
        return self.client.log().rpartition(said)[2].splitlines()[0]

    def test_what_is_unfit_replaces_nothing(self):
        self.service.ask("computer", username=self.USER, computer=self.COMPUTER)
        self.keep(b"")
        process, _ = self.link()
        self.type(3)
        good = self.packed()
        middle = len(good) // 2
        flipped = good[:middle] + bytes([good[middle] ^ 1]) + good[middle + 1:]
        for name, content, reason in (
                ("cut", good[:middle], "The archive is damaged."),
                ("flipped", flipped, "The archive is damaged."),
                ("other", b"no archive at all" * 99,
                 "The file is neither a database nor a zip archive of one."),
                ("newer", self.packed(version=99),
                 "The database comes from a newer version of Tallyvane. Please install the latest version "
                 "and try again.")):
            with self.subTest(name):
                self.assertEqual(self.refused(content), reason)
                self.assertEqual(list(self.client.data.glob("tallyvane-*restore*")), [])
        self.keep(good)
        self.desktop.press("Return")
        self.client.wait_for_log("info The restored database takes its place at the next start.")
        self.client.data.joinpath("tallyvane-restore.db").unlink()
        self.assertEqual(self.client.terminate(process), 0)
        process = self.start()
        self.type(2)
        self.assertEqual(self.client.terminate(process), 0)
        self.assertEqual(self.client.counted()["keys"], 5)


if __name__ == "__main__":
    unittest.main()
