# SPDX-License-Identifier: GPL-3.0-or-later
"""The road of a count to its account: from a key press to the service's total, exactly once."""
import socket
import subprocess
import sys
import time
import unittest
from pathlib import Path

from account import MINUTE, PAUSE, AccountClient, AccountTest, Service, Wizard
from harness import TROUBLE, wait_for
from wire import Wire, inside

TRAFFIC = Path(__file__).with_name("traffic.py")
MIB = 1 << 20


class Linking(AccountTest):
    def test_the_browser_links_the_computer(self):
        process, wizard = self.link()
        uid = self.service.requests("client_init_authorization")[0]["envelope"]["data"]["client_uid"]
        website = self.service.addresses["TALLYVANE_WEBSITE_URL"]
        self.assertEqual(self.client.visited.read_text(),
                         f"{website}/dashboard/my/client/{uid}?id={uid}&name={socket.gethostname()}\n")
        wizard.finish()
        self.assertEqual(self.client.terminate(process), 0)
        self.assertEqual(self.service.violations(), [])
        self.assertNotRegex(self.client.log(), TROUBLE)
        # The account's proof lies in the encrypted file, and nowhere else.
        (secret,), = self.service.query("SELECT password_hash FROM computers")
        for path in self.client.data.rglob("*"):
            if path.is_file():
                self.assertNotIn(secret.encode(), path.read_bytes(), path)

        # The next start knows the account, and asks nothing.
        self.service.ask("forget_requests")
        self.start()
        self.type(3)
        self.client.zurge_by_hand()
        self.expect_total(3)
        self.assertEqual(self.desktop.windows(Wizard.TITLE), [])
        self.assertEqual(self.service.requests("client_init_authorization"), [])


class Zurging(AccountTest):
    def test_a_threshold_sends_its_amount(self):
        began = time.monotonic()
        self.link_and_end(auto_zurge_keys_enabled=1, auto_zurge_keys_unit=20)
        process = self.start()
        self.click(3)
        self.type(25)
        self.expect_total(20, MINUTE)
        self.assertEqual(self.client.terminate(process), 0)

        totals, unzurged = self.service.totals(self.USER), self.client.unzurged()
        self.assertEqual((totals["keys"], unzurged["keys"]), (20, 5))
        self.assertEqual((totals["clicks"], unzurged["clicks"]), (3, 0))
        self.assertEqual(self.client.counted(), {"keys": 25, "clicks": 3})
        uptime = totals["uptime"] + unzurged["uptime"]
        self.assertTrue(55 <= uptime <= time.monotonic() - began, f"{uptime} seconds")
        self.assertEqual(self.service.query("SELECT mechanism FROM zurges"), [("auto",)])
        self.assertEqual(self.service.violations(), [])
        self.assertNotRegex(self.client.log(), TROUBLE)

    def test_a_second_instance_zurges(self):
        self.link_and_end()
        process = self.start()
        self.type(7)
        self.client.zurge_by_hand()
        self.client.wait_for_log("info Received message from another instance to zurge. Zurging!")
        self.expect_total(7)
        self.assertEqual(self.service.query("SELECT mechanism FROM zurges"), [("manual",)])
        # The hour goes along, and says the same.
        self.assertEqual(self.service.query("SELECT SUM(keys) FROM time_series WHERE hour LIKE '%_totals'"),
                         self.client.query("SELECT SUM(count) FROM keypresses"))
        self.assertEqual(self.client.terminate(process), 0)
        self.assertEqual(self.client.unzurged()["keys"], 0)
        self.assertEqual(self.service.violations(), [])


class ServiceInside(Service):
    """In a network namespace, whose loopback interface is another one."""

    def __init__(self, wire):
        self.namespace = wire.here
        super().__init__(wire.command(wire.here))

    def ask(self, command, **fields):
        with inside(self.namespace):
            return super().ask(command, **fields)


class ClientInside(AccountClient):
    def __init__(self, desktop, service, wire):
        super().__init__(desktop, service)
        self.wire = wire

    def command(self, arguments, devices):
        return [*self.wire.command(self.wire.here), *super().command(arguments, devices)]


class ZurgingTraffic(AccountTest):
    PEER = "198.51.100.2"  # Of the internet, as far as the client can tell.

    def setUp(self):
        self.wire = Wire(["198.51.100.1/24"], [self.PEER + "/24"])
        self.addCleanup(self.wire.close)
        super().setUp()

    def make_service(self):
        return ServiceInside(self.wire)

    def make_client(self):
        client = ClientInside(self.desktop, self.service, self.wire)
        self.addCleanup(client.close)
        return client

    def exchange(self, sent, received):
        command = [sys.executable, "-I", str(TRAFFIC)]
        server = subprocess.Popen([*self.wire.command(self.wire.there), *command, "serve", "tcp",
                                   self.PEER, "443"],
                                  stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        self.addCleanup(server.communicate)
        self.assertEqual(server.stdout.readline(), "ready\n")
        self.wire.run(self.wire.here, *command, "call", f"tcp,{self.PEER},443,{sent},{received}")

    def test_a_threshold_sends_its_amount(self):
        self.link_and_end(auto_zurge_download_enabled=1, auto_zurge_download_unit=4)
        process = self.start()
        self.client.wait_for_log("Network capture: packet ring", 2)
        self.exchange(sent=5 * MIB // 2, received=6 * MIB)
        wait_for(lambda: self.service.zurges() == 1, "the zurge", MINUTE)
        self.client.wait_for_log("info Autozurge on download: 6")
        self.assertEqual(self.client.terminate(process), 0)

        totals, unzurged = self.service.totals(self.USER), self.client.unzurged()
        self.assertEqual((totals["download"], totals["upload"]), (4, 2))
        filed, = self.client.query("SELECT SUM(download), SUM(upload) FROM network_interface_bandwidth")
        self.assertEqual((totals["download"] * MIB + unzurged["download"],
                          totals["upload"] * MIB + unzurged["upload"]), filed)
        self.assertGreater(filed, (6 * MIB, 5 * MIB // 2))
        self.assertEqual(self.service.violations(), [])
        self.assertNotRegex(self.client.log(), TROUBLE)


class Killed(AccountTest):
    """Between the sending of a zurge and its answer."""

    def check(self, taken):
        began = time.monotonic()
        self.link_and_end()
        process = self.start()
        self.type(5)
        self.service.ask("fault", type="zurge", kind="hang", act=taken)
        self.client.zurge_by_hand()
        wait_for(lambda: self.service.requests("zurge"), "the zurge at the service")
        process.kill()
        process.wait()
        self.assertEqual(self.service.totals(self.USER)["keys"], 5 if taken else 0)

        sent = time.monotonic()
        process = self.start()
        self.assertRegex(self.client.log(), r"warn The last run ended before the service answered to a "
                         r"zurge: sent at \S+, it is uncertain whether the service has taken keys 5,")
        self.type(3)
        time.sleep(max(0, PAUSE - (time.monotonic() - sent)))
        self.client.zurge_by_hand()
        self.client.wait_for_log(f"info The service has {'' if taken else 'not '}taken the last zurge")
        if not taken:
            self.expect_total(5)
            time.sleep(PAUSE)
            self.client.zurge_by_hand()
        self.expect_total(8)
        self.assertEqual(self.client.terminate(process), 0)

        self.assertEqual(self.service.query("SELECT keys FROM zurges"), [(5,), (3,)])
        totals, unzurged = self.service.totals(self.USER), self.client.unzurged()
        self.assertEqual((totals["keys"], unzurged["keys"]), (8, 0))
        self.assertEqual(self.client.counted()["keys"], 8)
        self.assertLessEqual(totals["uptime"] + unzurged["uptime"], time.monotonic() - began)
        self.assertEqual(self.service.violations(), [])

    def test_what_was_taken_is_not_sent_again(self):
        self.check(taken=True)

    def test_what_was_not_taken_is_sent_again(self):
        self.check(taken=False)


class Silence(AccountTest):
    def test_nothing_is_sent_offline_or_without_an_account(self):
        """One client that works offline, and one that nobody linked; both have what others would send."""
        self.link_and_end(work_offline=1, auto_zurge_keys_enabled=1, auto_zurge_keys_unit=2)
        self.service.ask("forget_requests")
        stranger = self.make_client()
        door = socket.create_server(("127.0.0.1", 0))
        self.addCleanup(door.close)
        door.setblocking(False)
        address = f"https://127.0.0.1:{door.getsockname()[1]}"
        stranger.environment |= {"TALLYVANE_API_URL": address + "/api", "TALLYVANE_WEBSITE_URL": address}
        strangers = self.start_stranger(stranger)
        process = self.start()
        self.type(5)
        self.client.zurge_by_hand()
        self.client.wait_for_log("Received message from another instance to zurge. Zurging!")
        wait_for(lambda: "Autozurge on keys: 5" in self.client.log(), "the check of each minute", MINUTE)
        # The other one's was before it.
        self.assertEqual(self.client.terminate(process), 0)
        self.assertEqual(stranger.terminate(strangers), 0)

        self.assertEqual(self.service.requests(), [])
        self.assertEqual(self.client.unzurged()["keys"], 5)
        with self.assertRaises(BlockingIOError):
            door.accept()
        self.assertEqual(stranger.unzurged()["keys"], 5)
        self.assertFalse(stranger.visited.exists())
        self.assertNotRegex(stranger.log(), TROUBLE)
        self.assertNotIn("Autozurge", stranger.log())
        self.assertNotIn("not logged in", stranger.log())

    @staticmethod
    def start_stranger(stranger):
        keyboard = stranger.device("event0")
        process = stranger.start_fully("--closedwindow")
        assert stranger.terminate(process) == 0
        stranger.configure(auto_zurge_keys_enabled=1, auto_zurge_keys_unit=2)
        process = stranger.start_fully("--closedwindow")
        stranger.wait_for_log("Creating device listener for /dev/input/event0", 2)
        keyboard.type(*"abcab")
        stranger.zurge_by_hand()
        return process


if __name__ == "__main__":
    unittest.main()
