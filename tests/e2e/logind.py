# SPDX-License-Identifier: GPL-3.0-or-later
"""A private system bus with a stand-in for logind on it, which announces sleep and waking.

Only the few messages this takes are spoken, as the D-Bus specification lays them out.
"""
import os
import socket
import struct
import subprocess

from harness import need, wait_for

METHOD_CALL, SIGNAL = 1, 4
PATH, INTERFACE, MEMBER, DESTINATION, SIGNATURE = 1, 2, 3, 6, 8
NAME = "org.freedesktop.login1"


def padded(data, alignment):
    return data + bytes(-len(data) % alignment)


def text(value):
    return struct.pack("<I", len(value)) + value.encode() + b"\0"


class Logind:
    def __init__(self, directory):
        need("dbus-daemon")
        path = directory / "bus"
        self.address = f"unix:path={path}"
        self.daemon = subprocess.Popen(
            ["dbus-daemon", "--session", "--nofork", "--nopidfile", f"--address={self.address}"],
            stderr=subprocess.DEVNULL)
        wait_for(path.exists, "the bus")
        self.serial = 0
        self.peer = socket.socket(socket.AF_UNIX)
        self.peer.connect(str(path))
        self.peer.sendall(b"\0AUTH EXTERNAL " + str(os.getuid()).encode().hex().encode() + b"\r\n")
        assert self.peer.recv(256).startswith(b"OK"), "the bus lets us in"
        self.peer.sendall(b"BEGIN\r\n")
        bus = {PATH: "/org/freedesktop/DBus", INTERFACE: "org.freedesktop.DBus",
               DESTINATION: "org.freedesktop.DBus"}
        self._send(METHOD_CALL, bus | {MEMBER: "Hello"})
        self._send(METHOD_CALL, bus | {MEMBER: "RequestName", SIGNATURE: "su"},
                   padded(text(NAME), 4) + struct.pack("<I", 0))

    def _send(self, kind, fields, body=b""):
        self.serial += 1
        header = b""
        for code, value in fields.items():
            kind_of_value = {PATH: "o", SIGNATURE: "g"}.get(code, "s")
            marshalled = bytes([len(value)]) + value.encode() + b"\0" if kind_of_value == "g" else text(value)
            header = padded(header, 8) + bytes([code, 1, ord(kind_of_value), 0]) + marshalled
        start = struct.pack("<cBBBIII", b"l", kind, 0, 1, len(body), self.serial, len(header))
        self.peer.sendall(padded(start + header, 8) + body)

    def prepare_for_sleep(self, starting):
        """Announces that the machine is about to sleep, or that it woke up."""
        self._send(SIGNAL, {PATH: "/org/freedesktop/login1", INTERFACE: NAME + ".Manager",
                            MEMBER: "PrepareForSleep", SIGNATURE: "b"}, struct.pack("<I", starting))

    def close(self):
        self.peer.close()
        self.daemon.terminate()
        self.daemon.wait()
