# SPDX-License-Identifier: GPL-3.0-or-later
"""Command line, single instance, order of start and end."""
import datetime
import os
import signal
import time
import unittest

from harness import PATIENCE, Client, Desktop, DesktopTest, wait_for

VERSION = "5.8.3474"
HELP = """Tallyvane client commandline options:
 --help                            : Prints this menu.
 --verbose                         : Be very verbose in the app.log.
 --delaystartup                    : Wait 5 seconds before actually starting the client.
 --closedwindow                    : Don't open MainWindow on startup.

 --version                         : Print the software version number.

 --translationfile ~/yourfile.qm   : Install custom language file.

Client interactions:
 --exit_client  : Exit the already running instance of the client.
 --zurge        : Send a signal to the already running client to zurge.

 --disable-networking : Disables the start of the networking collections.

"""


class WithoutRunningClient(DesktopTest):
    def test_help(self):
        for spelling in ("--help", "-help", "-h"):
            with self.subTest(spelling):
                code, out, err = self.client.run("--verbose", spelling)
                self.assertEqual((code, out, err), (1, "", HELP))
        self.assertFalse(self.client.data.exists(), "help touches no data")

    def test_version(self):
        code, out, err = self.client.run("--version")
        self.assertEqual((code, out, err), (1, VERSION + "\n", ""))
        self.assertFalse(self.client.data.exists(), "the version touches no data")

    def test_help_and_version_need_no_display(self):
        nothing = {"DISPLAY": "", "WAYLAND_DISPLAY": ""}
        self.assertEqual(self.client.run("--help", environment=nothing)[2], HELP)
        self.assertEqual(self.client.run("--version", environment=nothing)[1], VERSION + "\n")

    def test_translation_file(self):
        good = self.client.root / "mine.QM"
        good.write_bytes(b"no translation, but a file of that name")
        wrong = self.client.root / "mine.ts"
        wrong.write_text("")
        for arguments, line in (
                (["--translationfile", "/missing.qm"], "Translation file does not exist! Exiting."),
                (["--translationfile", str(wrong)],
                 "Translation file should end with a .qm extension! Exiting.")):
            with self.subTest(line):
                self.assertEqual(self.client.run(*arguments)[0], 1)
                self.assertIn("error " + line, self.client.log())
        self.client.start_fully("--closedwindow", "--translationfile", str(good))
        self.assertIn(f"info Using a custom translation file: {good}", self.client.log())

    def test_translation_option_without_a_path_is_ignored(self):
        process = self.client.start_fully("--closedwindow", "--translationfile")
        self.assertEqual(self.client.terminate(process), 0)

    def test_requests_start_a_client_where_none_runs(self):
        process = self.client.start_fully("--zurge", "--closedwindow", "--unknown", "-version")
        self.assertEqual(self.client.terminate(process), 0)

    def test_delays(self):
        cases = ((["--delaystartup"], True), (["onstartup"], True), (["-auto_restart"], True),
                 (["auto_restart"], True), (["onstartup", "--closedwindow"], False),
                 (["--auto_restart"], False))
        clients = []
        for arguments, delayed in cases:
            client = Client(self.desktop)
            self.addCleanup(client.close)
            client.start(*arguments)
            clients.append((client, arguments, delayed))
        for client, arguments, delayed in clients:
            with self.subTest(arguments):
                client.wait_for_log("has started")
                waited = client.time_of("Database file:") - client.time_of("Starting Tallyvane")
                self.assertEqual(waited >= datetime.timedelta(seconds=5), delayed)

    def test_missing_tray_is_told(self):
        bare = Desktop(tray=False)
        self.addCleanup(bare.close)
        client = Client(bare)
        self.addCleanup(client.close)
        process = client.start("--closedwindow")
        wait_for(lambda: bare.windows("No system tray"), "the message box")
        bare.press("Return")
        self.assertEqual(process.wait(timeout=PATIENCE), 1)

    def test_missing_tray_is_tolerated_on_wayland(self):
        bare = Desktop(tray=False)
        self.addCleanup(bare.close)
        client = Client(bare)
        self.addCleanup(client.close)
        client.start_fully("--closedwindow", environment={"XDG_SESSION_TYPE": "wayland"})

    def test_private_files(self):
        process = self.client.start_fully("--closedwindow")
        self.assertEqual(os.stat(self.client.data).st_mode & 0o777, 0o700)
        self.assertEqual(self.client.terminate(process), 0)
        for path in self.client.data.iterdir():
            self.assertEqual(path.stat().st_mode & 0o077, 0, path)


class BesideRunningClient(DesktopTest):
    def setUp(self):
        super().setUp()
        self.process = self.client.start_fully("--closedwindow", "--verbose")

    def test_plain_start_opens_the_window(self):
        self.assertEqual(self.desktop.windows("Tallyvane"), [])
        self.assertEqual(self.client.run("--unknown")[0], 0)
        self.client.wait_for_log(
            "Received message from another instance to open our main window!")
        self.desktop.main_window()
        self.assertIn("info Tallyvane is already running! Sending message to running client to bring "
                      "up MainWindow and exiting this instance.", self.client.log())

    def test_exit_request(self):
        self.assertEqual(self.client.run("-exit_client", "--zurge")[0], 0)
        self.assertEqual(self.process.wait(timeout=PATIENCE), 0)
        log = self.client.log()
        self.assertIn("info Sending exit command to running client..", log)
        self.assertIn("info Received message from another instance to exit. Exiting cleanly!", log)
        self.assertNotIn("Sending zurge command", log)

    def test_zurge_request(self):
        for spelling in ("--zurge", "-zurge"):
            self.assertEqual(self.client.run(spelling)[0], 0)
        self.assertEqual(self.client.log().count("info Sending zurge command to running instance"), 2)
        self.assertIsNone(self.process.poll())

    def test_help_sends_nothing(self):
        self.assertEqual(self.client.run("--exit_client", "--help")[0], 1)
        time.sleep(0.5)
        self.assertIsNone(self.process.poll())

    def test_messages_from_outside(self):
        self.assertEqual(self.client.send_message(b"ping\n"), b"ok\n")
        self.client.wait_for_log("debug Received ping from watchdog.")
        for hostile in (b"Open_Window\n", b"exit_client \n", b"\xff\x00\n", b"x" * 100_000, b""):
            self.client.send_message(hostile)
        self.assertEqual(self.client.send_message(b"ping\n"), b"ok\n")
        self.assertIsNone(self.process.poll())

    def test_signals_leave_in_order(self):
        self.assertEqual(self.client.terminate(self.process, signal.SIGINT), 0)
        log = self.client.log()
        order = ["Starting Tallyvane " + VERSION + "...", "Database file:",
                 f"Tallyvane {VERSION} has started", "Starting timers and collector..",
                 "Shutting down client, we've had enough!", "Stopping collector"]
        places = [log.index(line) for line in order]
        self.assertEqual(places, sorted(places))

    def test_crash_does_not_lock_the_user_out(self):
        self.process.kill()
        self.process.wait()
        self.client.start_fully("--closedwindow")


class Races(DesktopTest):
    def test_the_end_can_be_asked_for_while_the_first_is_starting(self):
        first = self.client.start("--delaystartup", "--closedwindow")
        self.client.wait_for_log("Starting Tallyvane")
        time.sleep(0.5)
        asker = self.client.start("-exit_client", devices=False)
        self.assertEqual(first.wait(timeout=PATIENCE), 0)
        self.assertEqual(asker.wait(timeout=PATIENCE), 0)
        self.assertIn("to exit. Exiting cleanly!", self.client.log())

    def test_starts_in_the_same_instant_end_with_one_client(self):
        processes = [self.client.start("--closedwindow") for _ in range(5)]
        wait_for(lambda: sum(p.poll() is None for p in processes) == 1, "all but one to end")
        self.client.wait_for_log("Starting collector")
        time.sleep(1)
        running = [p for p in processes if p.poll() is None]
        self.assertEqual(len(running), 1)
        self.assertEqual([p.returncode for p in processes if p is not running[0]], [0] * 4)
        self.assertEqual(self.client.log().count("has started"), 1)


if __name__ == "__main__":
    unittest.main()
