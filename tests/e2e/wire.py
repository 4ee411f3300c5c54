# SPDX-License-Identifier: GPL-3.0-or-later
"""A virtual wire between two network namespaces, and what crosses it. Needs root."""
import collections
import contextlib
import ctypes
import os
import socket
import struct
import subprocess
import threading
import time
import unittest

from harness import need

CLONE_NEWNET = 0x40000000
ETH_P_ALL, ETH_P_IP, ETH_P_IPV6 = 0x0003, 0x0800, 0x86DD
SOL_PACKET, PACKET_OUTGOING, PACKET_STATISTICS = 263, 4, 6  # linux/if_packet.h
SO_RCVBUFFORCE = 33  # asm-generic/socket.h
TCP, UDP = 6, 17

Flow = collections.namedtuple("Flow", "upload protocol remote remote_port local_port")


class Wire:
    """Two namespaces, "here" and "there", each with an interface "wire0" that is the other's peer."""

    def __init__(self, addresses_here, addresses_there):
        need("ip", "setpriv")
        if os.geteuid() != 0:
            raise unittest.SkipTest("network namespaces need root")
        self.here, self.there = (f"tallyvane-{os.getpid()}-{end}" for end in ("here", "there"))
        self.stack = contextlib.ExitStack()
        try:
            for namespace, addresses in (self.here, addresses_here), (self.there, addresses_there):
                self._ip("netns", "add", namespace)
                self.stack.callback(self._ip, "netns", "delete", namespace)
                # Nothing crosses a wire without IPv6 until somebody sends.
                if not any(":" in address for address in addresses):
                    self.run(namespace, "sh", "-c",
                             "echo 1 > /proc/sys/net/ipv6/conf/default/disable_ipv6")
            self._ip("-n", self.here, "link", "add", "wire0", "type", "veth",
                     "peer", "name", "wire0", "netns", self.there)
            for namespace, addresses in (self.here, addresses_here), (self.there, addresses_there):
                for address in addresses:
                    option = ["nodad"] if ":" in address else []
                    self._ip("-n", namespace, "address", "add", address, "dev", "wire0", *option)
                for interface in "lo", "wire0":
                    self._ip("-n", namespace, "link", "set", interface, "up")
        except subprocess.CalledProcessError as error:
            self.close()
            raise unittest.SkipTest(f"no network namespaces here: {error.stderr.strip()}") from error
        self.hardware_address = self._sysfs("address").strip().upper()

    @staticmethod
    def _ip(*arguments):
        subprocess.run(["ip", *arguments], check=True, text=True, capture_output=True)

    @staticmethod
    def command(namespace, user=None):
        """Runs what follows in NAMESPACE, as an ordinary user where one is given."""
        prefix = ["ip", "netns", "exec", namespace]
        if user is None:
            return prefix
        return [*prefix, "setpriv", f"--reuid={user}", f"--regid={user}", "--clear-groups",
                "--inh-caps=-all"]

    def run(self, namespace, *command):
        return subprocess.run([*self.command(namespace), *command], check=True, text=True,
                              capture_output=True).stdout

    def _sysfs(self, name):
        return self.run(self.here, "cat", f"/sys/class/net/wire0/{name}")

    def counters(self):
        """What the kernel counts here: bytes received and sent, whatever they carried."""
        return tuple(int(self._sysfs(f"statistics/{name}")) for name in ("rx_bytes", "tx_bytes"))

    def close(self):
        self.stack.close()


@contextlib.contextmanager
def inside(namespace):
    """The sockets that this thread makes within a with-block belong to NAMESPACE."""
    library = ctypes.CDLL(None, use_errno=True)
    with open("/proc/thread-self/ns/net") as home, open(f"/run/netns/{namespace}") as there:
        if library.setns(there.fileno(), CLONE_NEWNET) != 0:
            raise OSError(ctypes.get_errno(), "setns")
        try:
            yield
        finally:
            library.setns(home.fileno(), CLONE_NEWNET)


class Sniffer:
    """Every frame that crosses the wire's end here, summed up by flow, as long as a with-block runs."""

    def __init__(self, namespace):
        self.flows = collections.Counter()
        self.received = self.sent = 0  # Bytes.
        self.frames = self.delivered = 0  # Handled here, and handed over by the kernel.
        self.socket = self._open(namespace)
        self.thread = threading.Thread(target=self._listen)

    @staticmethod
    def _open(namespace):
        with inside(namespace):
            opened = socket.socket(socket.AF_PACKET, socket.SOCK_RAW, 0)
        opened.setsockopt(socket.SOL_SOCKET, SO_RCVBUFFORCE, 64 << 20)
        opened.bind(("wire0", ETH_P_ALL))
        opened.settimeout(0.3)
        return opened

    def __enter__(self):
        self.is_over = False
        self.thread.start()
        return self

    def __exit__(self, *_):
        """Ends once nothing came for a while."""
        self.is_over = True
        self.thread.join()
        self._ask_kernel()
        self.socket.close()

    def _listen(self):
        frame = bytearray(128)
        while True:
            try:
                # The frame's whole length, of which the beginning is kept.
                size, (_, protocol, kind, _, _) = self.socket.recvfrom_into(frame, len(frame),
                                                                            socket.MSG_TRUNC)
            except TimeoutError:
                if self.is_over:
                    return
                continue
            self._add(frame, size, protocol, kind == PACKET_OUTGOING)
            self.frames += 1

    def _add(self, frame, size, protocol, upload):
        if upload:
            self.sent += size
        else:
            self.received += size
        if protocol == ETH_P_IP:
            transport, ports = frame[23], 14 + 4 * (frame[14] & 15)
            source, destination = (socket.inet_ntop(socket.AF_INET, frame[at:at + 4])
                                   for at in (26, 30))
        elif protocol == ETH_P_IPV6:
            transport, ports = frame[20], 54
            source, destination = (socket.inet_ntop(socket.AF_INET6, frame[at:at + 16])
                                   for at in (22, 38))
        else:
            return
        if transport not in (TCP, UDP):
            return
        source_port, destination_port = struct.unpack_from("!HH", frame, ports)
        if upload:
            flow = Flow(True, transport, destination, destination_port, source_port)
        else:
            flow = Flow(False, transport, source, source_port, destination_port)
        self.flows[flow] += size

    def settled(self, counters):
        """What COUNTERS tells, and what was seen here, at one moment when nothing is on its way."""
        while True:
            told = counters()
            time.sleep(0.05)
            self._ask_kernel()
            frames, seen = self.frames, (self.received, self.sent)
            if frames == self.delivered and counters() == told:
                return told, seen

    def _ask_kernel(self):
        delivered, dropped = struct.unpack(
            "II", self.socket.getsockopt(SOL_PACKET, PACKET_STATISTICS, 8))
        self.delivered += delivered
        assert dropped == 0, f"{dropped} frames of the test's own count were lost"

    def sums(self, key):
        """By what KEY tells of a flow: bytes received and bytes sent; flows without a key left out."""
        result = collections.defaultdict(lambda: [0, 0])
        for flow, size in self.flows.items():
            if (name := key(flow)) is not None:
                result[name][flow.upload] += size
        return {name: tuple(sizes) for name, sizes in result.items()}
