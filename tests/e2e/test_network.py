# SPDX-License-Identifier: GPL-3.0-or-later
"""Traffic of known size and origin, and what the client files of it. Needs root for a wire of its own;
the client and the programs that make the traffic run as an ordinary user.
"""
import os
import shutil
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

from harness import BINARY, Client, Desktop, need, wait_for
from wire import TCP, UDP, Sniffer, Wire

USER = 1501  # Needs no name; sockets of ids below 501 are attributed to no application.
TRAFFIC = Path(__file__).with_name("traffic.py")
# Knows 16.0.0.0/4 as US and 128.0.0.0/1 as IE.
COUNTRIES = Path(__file__).parent.parent / "fuzz/corpus/country_database/nested-ipv4"
UNDESCRIBED_PORT = 40001  # No service has it.
NAMES = {TCP: "TCP", UDP: "UDP"}  # As they are filed.


class UserClient(Client):
    """The client at one end of a wire, as a user would have it: with no rights but what its file has."""

    def __init__(self, desktop, wire, capability=None):
        super().__init__(desktop)
        self.wire = wire
        self.binary = self.root / "tallyvane"
        shutil.copy(BINARY, self.binary)
        subprocess.run(["chown", "-R", f"{USER}:{USER}", self.root], check=True)
        if capability and subprocess.run(["setcap", capability, self.binary], check=False,
                                         stderr=subprocess.DEVNULL).returncode:
            self.close()
            raise unittest.SkipTest("files here bear no capabilities")

    def command(self, arguments, devices):
        return [*self.wire.command(self.wire.here, USER), str(self.binary), *arguments]


class Program:
    """One end of known traffic, as an application with a path of its own."""

    def __init__(self, wire, namespace, directory, name, *arguments):
        interpreter = Path(directory, name)
        shutil.copy(os.path.realpath(sys.executable), interpreter)
        interpreter.chmod(0o755)
        self.path = str(interpreter)
        user = USER if namespace == wire.here else None
        self.process = subprocess.Popen(
            [*wire.command(namespace, user), self.path, "-I", str(directory / TRAFFIC.name), *arguments],
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)

    def expect(self, line):
        answer = self.process.stdout.readline().strip()
        assert answer == line, f"{self.path} said {answer!r} and not {line!r}"

    def owns(self, wire, local_port):
        """Whether it holds a socket bound to the port."""
        text = wire.run(wire.here, "ss", "-Htunap", f"sport = {local_port}")
        return f"pid={self.process.pid}," in text

    def close(self):
        self.process.communicate()


class NetworkTest(unittest.TestCase):
    """A desktop for the class; a wire, a client and programs for each test."""

    HERE = ["192.168.77.1/24", "198.51.100.1/24", "2001:db8::1/64", "fd77::1/64"]
    THERE = ["192.168.77.2/24", "198.51.100.2/24", "2001:db8::2/64", "fd77::2/64", "16.1.1.2/32"]

    @classmethod
    def setUpClass(cls):
        need("setcap", "ss")
        cls.desktop = Desktop(options=["-ac"])
        cls.addClassCleanup(cls.desktop.close)

    def setUp(self):
        self.wire = Wire(self.HERE, self.THERE)
        self.addCleanup(self.wire.close)
        self.wire.run(self.wire.here, "ip", "route", "add", "16.1.1.2/32", "dev", "wire0")
        self.programs = Path(tempfile.mkdtemp(prefix="tallyvane-programs."))
        self.addCleanup(shutil.rmtree, self.programs)
        self.programs.chmod(0o755)
        shutil.copy(TRAFFIC, self.programs)

    def start_client(self, capability=None):
        client = UserClient(self.desktop, self.wire, capability)
        self.addCleanup(client.close)
        client.data.mkdir(parents=True)
        shutil.copy(COUNTRIES, client.data / "GeoIP.dat")
        subprocess.run(["chown", "-R", f"{USER}:{USER}", client.root / "share"], check=True)
        process = client.start_fully(devices=False)
        client.wait_for_log("Network capture: ")
        return client, process

    def program(self, namespace, name, *arguments):
        program = Program(self.wire, namespace, self.programs, name, *arguments)
        self.addCleanup(program.close)
        return program

    def serve(self):
        server = self.program(self.wire.there, "server", "serve", "tcp", "192.168.77.2", "443",
                              "udp", "198.51.100.2", "53", "tcp", "2001:db8::2", "80",
                              "udp", "fd77::2", "123", "udp", "2001:db8::2", "123",
                              "tcp", "16.1.1.2", "22")
        server.expect("ready")

    def exchange_traffic(self):
        """Three programs one after the other, and a caller from outside. Returns them by what they did."""
        self.serve()
        alpha = self.program(self.wire.here, "alpha", "call", "tcp,192.168.77.2,443,3000000,1000000",
                             "tcp,16.1.1.2,22,100000,2000000")
        alpha.expect("done")
        beta = self.program(self.wire.here, "beta", "call", "udp,198.51.100.2,53,1000,400,500",
                            "udp,fd77::2,123,1232,300,48")
        beta.expect("done")
        gamma = self.program(self.wire.here, "gamma", "call", "tcp,2001:db8::2,80,50,4000000",
                             "udp,2001:db8::2,123,64,100,1400", "listen,198.51.100.1,7000")
        gamma.expect("ready")
        caller = self.program(self.wire.there, "caller", "call",
                              f"tcp,198.51.100.1,7000,600000,300000,{UNDESCRIBED_PORT}")
        caller.expect("done")
        gamma.expect("done")
        return alpha, beta, gamma


class CaptureTest(NetworkTest):
    def test_every_byte_is_filed_where_it_belongs(self):
        client, process = self.start_client("cap_net_raw+ep")
        self.assertIn("Network capture: packet ring\n", client.log())
        with Sniffer(self.wire.here) as sniffer:
            before = sniffer.settled(self.wire.counters)
            programs = self.exchange_traffic()
            after = sniffer.settled(self.wire.counters)
        # The test's own count is complete: the kernel's has grown by as much.
        told, seen = ([late - early for late, early in zip(*pair)] for pair in zip(after, before))
        self.assertEqual(told, seen)
        self.assert_datagrams(sniffer)
        owners = {flow.local_port: program.path for flow in sniffer.flows for program in programs
                  if program.owns(self.wire, flow.local_port)}
        # The programs still hold their sockets: what was not yet attributed is at the end.
        self.assertEqual(client.terminate(process), 0)
        self.assert_filed(client, sniffer, owners)
        self.assertNotIn(" error ", client.log())

    def assert_datagrams(self, sniffer):
        """Each carries a header of Ethernet, of IP and of UDP."""
        sizes = sniffer.sums(lambda flow: flow.remote if flow.protocol == UDP else None)
        ipv4, ipv6 = 14 + 20 + 8, 14 + 40 + 8
        self.assertEqual(sizes, {"198.51.100.2": (400 * (500 + ipv4), 400 * (1000 + ipv4)),
                                 "fd77::2": (300 * (48 + ipv6), 300 * (1232 + ipv6)),
                                 "2001:db8::2": (100 * (1400 + ipv6), 100 * (64 + ipv6))})

    def assert_filed(self, client, sniffer, owners):
        countries = {"192.168.77.2": "LAN", "fd77::2": "LAN", "16.1.1.2": "US", "198.51.100.2": "IE",
                     "2001:db8::2": "??"}
        expected = {
            "network_interface_bandwidth": ("mac_address", lambda flow: (self.wire.hardware_address,)),
            "application_bandwidth": ("path", lambda flow: (owners[flow.local_port],)),
            "country_bandwidth": ("country", lambda flow: (countries[flow.remote],)),
            "network_protocol_bandwidth": (
                "port_number, protocol", lambda flow: (flow.remote_port, NAMES[flow.protocol])
                if flow.remote_port != UNDESCRIBED_PORT else None)}
        for table, (columns, key) in expected.items():
            with self.subTest(table=table):
                rows = client.query(f"SELECT {columns}, SUM(download), SUM(upload) FROM {table} "
                                    f"GROUP BY {columns}")
                self.assertEqual({row[:-2]: row[-2:] for row in rows}, sniffer.sums(key))
        internet = sniffer.sums(lambda flow: not flow.remote.startswith("192.168."))[True]
        unzurged = dict(client.query("SELECT name, value FROM unzurged_stats"))
        self.assertEqual((int(unzurged["download"]), int(unzurged["upload"])), internet)


class FallbackTest(NetworkTest):
    # Nothing but what the test sends crosses the wire.
    HERE = ["192.168.77.1/24"]
    THERE = ["192.168.77.2/24"]

    def serve(self):
        server = self.program(self.wire.there, "server", "serve", "tcp", "192.168.77.2", "443")
        server.expect("ready")

    def test_counts_totals_without_any_permission(self):
        client, process = self.start_client()
        for line in ("PF_PACKET is not available.",
                     "Fallback to ProcNetworkTrafficMonitor. Only interface statistics available.",
                     "Network capture: interface totals only. This program may not open packet sockets.",
                     f"sudo setcap cap_net_raw+ep {client.binary}"):
            self.assertIn(line, client.log())
        began = time.monotonic()
        self.serve()
        self.program(self.wire.here, "alpha", "call",
                     "tcp,192.168.77.2,443,5000000,3000000").expect("done")
        crossed = self.wire.counters()
        # At each of its takes, one a second, the client leaves out the twentieth part and a fraction.
        takes = time.monotonic() - began + 3
        wait_for(lambda: self.filed(client) and
                 self.filed(client)[0][1] > 0.95 * crossed[0] - takes, "the totals")
        self.assertEqual(client.terminate(process), 0)
        (address, *filed), = self.filed(client)
        self.assertEqual(address, self.wire.hardware_address)
        for bytes_filed, least, most in zip(filed, crossed, self.wire.counters()):
            self.assertGreaterEqual(bytes_filed, 0.95 * least - takes)
            self.assertLessEqual(bytes_filed, 0.95 * most)
        for table in "application_bandwidth", "country_bandwidth", "network_protocol_bandwidth":
            self.assertEqual(client.query(f"SELECT * FROM {table}"), [])

    @staticmethod
    def filed(client):
        return client.query("SELECT mac_address, SUM(download), SUM(upload) "
                            "FROM network_interface_bandwidth GROUP BY mac_address")


if __name__ == "__main__":
    unittest.main()
