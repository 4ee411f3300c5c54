#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Reads real input devices through the program's listener: listener.py PROBE (see ListenerProbe.cpp)"""
import contextlib
import fcntl
import os
import queue
import shutil
import struct
import subprocess
import sys
import tempfile
import threading
import time
import unittest
from pathlib import Path

PATIENCE = 30       # seconds; the guest may be emulated
SETTLED = 1         # seconds in which what must not come would have come

EV_SYN, EV_KEY, EV_MSC = 0, 1, 4
KEY_A, MSC_SCAN = 30, 4
UI_SET_EVBIT, UI_SET_KEYBIT, UI_SET_MSCBIT = 0x40045564, 0x40045565, 0x40045568
UI_DEV_SETUP, UI_DEV_CREATE, UI_DEV_DESTROY = 0x405c5503, 0x5501, 0x5502


def inject(*request):
    subprocess.run(["inject", *map(str, request)], check=True, stdout=subprocess.DEVNULL)


def wait(condition, what):
    end = time.monotonic() + PATIENCE
    while not (result := condition()):
        if time.monotonic() > end:
            raise AssertionError(f"timeout: {what}")
        time.sleep(0.02)
    return result


def node(name):
    """The event node of the device whose name contains NAME, or None."""
    for text in Path("/sys/class/input").glob("event*/device/name"):
        with contextlib.suppress(OSError):
            if name in text.read_text():
                return f"/dev/input/{text.parts[4]}"
    return None


class Keyboard:
    """A device made through uinput, with the key A and scan codes."""

    def __init__(self, name):
        self.fd = os.open("/dev/uinput", os.O_WRONLY)
        for event_type in (EV_KEY, EV_MSC):
            fcntl.ioctl(self.fd, UI_SET_EVBIT, event_type)
        fcntl.ioctl(self.fd, UI_SET_KEYBIT, KEY_A)
        fcntl.ioctl(self.fd, UI_SET_MSCBIT, MSC_SCAN)
        fcntl.ioctl(self.fd, UI_DEV_SETUP, struct.pack("<4H80sI", 3, 1, 1, 1, name.encode(), 0))
        fcntl.ioctl(self.fd, UI_DEV_CREATE)

    def write(self, *events):
        for event in (*events, (EV_SYN, 0, 0)):
            os.write(self.fd, struct.pack("<qqHHi", 0, 0, *event))

    def tap(self):
        self.write((EV_KEY, KEY_A, 1))
        self.write((EV_KEY, KEY_A, 0))

    def unplug(self):
        fcntl.ioctl(self.fd, UI_DEV_DESTROY)
        os.close(self.fd)


class Probe:
    """The listener at work. Lines it printed are in `seen` until they are expected."""

    def __init__(self, *prefix, binary):
        self.process = subprocess.Popen([*prefix, binary], stdin=subprocess.PIPE, text=True,
                                        stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                        env=os.environ | {"QT_QPA_PLATFORM": "offscreen"})
        self.lines, self.seen, self.log = queue.Queue(), [], []
        self.threads = [threading.Thread(target=self.copy, args=to, daemon=True) for to in
                        ((self.process.stdout, self.lines.put), (self.process.stderr, self.log.append))]
        for thread in self.threads:
            thread.start()
        self.screen = tuple(map(int, self.next_line().split()[1:]))
        self.state = self.next_line()

    @staticmethod
    def copy(stream, add):
        for line in stream:
            add(line.rstrip("\n"))

    def next_line(self):
        return self.lines.get(timeout=PATIENCE)

    def gather(self):
        with contextlib.suppress(queue.Empty):
            while True:
                self.seen.append(self.lines.get_nowait())
        return self.seen

    def total(self, what):
        return sum(int(line.split()[1]) for line in self.gather() if line.split()[0] == what)

    def expect(self, *wanted):
        """Waits for as many lines, and compares them."""
        wait(lambda: len(self.gather()) >= len(wanted), f"{wanted}, got {self.seen}")
        got, self.seen = self.seen[:len(wanted)], self.seen[len(wanted):]
        assert got == list(wanted), f"{got} != {list(wanted)}"

    def expect_nothing(self):
        time.sleep(SETTLED)
        assert not self.gather(), self.seen

    def expect_travel(self, pixels):
        wait(lambda: self.total("travel") >= pixels, f"{pixels} pixels, got {self.seen}")
        assert self.total("travel") == pixels, self.seen
        self.seen = []

    def expect_log(self, text):
        wait(lambda: any(text in line for line in self.log), f"{text}\n" + "\n".join(self.log))

    def resources(self):
        self.process.stdin.write("?\n")
        self.process.stdin.flush()
        line = self.next_line()
        assert line.startswith("resources "), line
        return line

    def wake_ups(self, device):
        """How often the thread that reads DEVICE has begun to wait."""
        for task in Path(f"/proc/{self.process.pid}/task").iterdir():
            if (task / "comm").read_text().strip() == Path(device).name:
                status = (task / "status").read_text()
                return int(status.split("\nvoluntary_ctxt_switches:")[1].split()[0])
        raise AssertionError(f"no thread reads {device}")

    def end(self):
        """Seconds until the process has ended once it was told to."""
        start = time.monotonic()
        self.process.stdin.close()
        assert self.process.wait(PATIENCE) == 0
        needed = time.monotonic() - start
        for thread in self.threads:
            thread.join()
        self.process.stdout.close()
        self.process.stderr.close()
        return needed


class ListenerTest(unittest.TestCase):
    def setUp(self):
        self.probe = Probe(binary=PROBE)
        self.assertEqual(self.probe.state, "reading")

    def tearDown(self):
        self.assertLess(self.probe.end(), 30, "a device that is silent held up the end")

    def test_keyboard(self):
        inject("tap", "a", "shift+b", "kp_7", "left", "alt_r", "grave_accent")
        self.probe.expect("key 41", "key 42", "key 1000020", "key 100125e", "key 1000012",
                          "key 1001256", "key 1ffffff")

    def test_held_key_counts_once(self):
        inject("down", "x")
        self.probe.expect_nothing()
        inject("up", "x")
        self.probe.expect("key 58")
        self.probe.expect_nothing()

    def test_mouse(self):
        inject("pointer", "PS/2")
        inject("tap", "btn:left", "btn:right", "btn:middle", "btn:side")
        self.probe.expect("click 0", "click 1", "click 2", "click 99")
        inject("tap", "btn:wheel-up")
        self.probe.expect("up 1")
        inject("tap", "btn:wheel-down")
        self.probe.expect("down 1")
        for x, y in ((10, -5), (30, -5), (30, -9)):
            inject("move", x, y)
            time.sleep(0.2)         # one report each
        self.probe.expect_travel(20 + 4)

    def test_tablet(self):
        inject("pointer", "tablet")
        positions = ((1000, 2000), (17000, 2000), (17000, 30000))
        for position in positions:
            inject("to", *position)
        width, height = self.probe.screen

        def pixel(value, extent):
            return int(value / (32767 / (extent - 1)))

        self.probe.expect_travel(pixel(17000, width) - pixel(1000, width)
                                 + pixel(30000, height) - pixel(2000, height))
        inject("tap", "btn:right")
        self.probe.expect("click 1")

    def test_hot_plug(self):
        before = self.probe.resources()
        for number in range(3):
            inject("plug", "usb-kbd", f"k{number}")
            path = wait(lambda: node("USB Keyboard"), "the keyboard's node")
            self.probe.expect_log(f"Creating device listener for {path}")
            self.assertNotEqual(self.probe.resources(), before)
            inject("tap", "c")                                # the keyboard plugged in last
            self.probe.expect("key 43")
            inject("unplug", f"k{number}")
            self.probe.expect_log("error Bad read from device! error: No such device")
            self.probe.expect_log(f"info Removing device listener for {path}")
            wait(lambda: self.probe.resources() == before, "its thread and its descriptors are gone")
            self.probe.log.clear()
        inject("tap", "d")
        self.probe.expect("key 44")

    def test_hot_plug_mouse(self):
        inject("plug", "usb-mouse", "m1")
        path = wait(lambda: node("USB Mouse"), "the mouse's node")
        self.probe.expect_log(f"Creating device listener for {path}")
        inject("pointer", "HID Mouse")
        inject("tap", "btn:left")
        self.probe.expect("click 0")
        inject("unplug", "m1")
        self.probe.expect_log(f"Removing device listener for {path}")

    def test_thirty_devices(self):
        before = self.probe.resources()
        for _ in range(3):
            devices = [Keyboard(f"burst {number}") for number in range(30)]
            wait(lambda: sum("Creating device" in line for line in self.probe.log) >= 33, "30 listeners")
            for device in devices:
                device.tap()
            self.probe.expect(*["key 41"] * len(devices))
            for device in devices:
                device.unplug()
            wait(lambda: sum("Removing device" in line for line in self.probe.log) >= 30, "30 removals")
            self.probe.log[:] = ["Creating device"] * 3
        for _ in range(10):             # too short for most of them to be opened at all
            for device in [Keyboard(f"short {number}") for number in range(30)]:
                device.unplug()
        wait(lambda: self.probe.resources() == before, "their threads and descriptors are gone")

    def test_only_counted_events_wake(self):
        device = Keyboard("scan codes")
        path = wait(lambda: node("scan codes"), "the device's node")
        self.probe.expect_log(f"Creating device listener for {path}")
        device.tap()
        self.probe.expect("key 41")
        before = self.probe.wake_ups(path)
        for code in range(500):
            device.write((EV_MSC, MSC_SCAN, code))
        time.sleep(SETTLED)
        self.assertEqual(self.probe.wake_ups(path), before)
        device.unplug()


class PermissionTest(unittest.TestCase):
    def test_device_without_permission(self):
        with tempfile.TemporaryDirectory() as directory:
            os.chmod(directory, 0o755)
            probe = Probe("setpriv", "--reuid=nobody", "--regid=nogroup", "--clear-groups",
                          binary=shutil.copy(PROBE, directory))
            self.assertEqual(probe.state, "nothing to read")
            path = node("AT Translated")
            probe.expect_log(f"error Couldn't open device {path}! error: Permission denied")
            probe.expect_log("error Make sure you have permission to read that file.")
            probe.expect_log("info No input devices (/dev/input/*) found! "
                             "Tallyvane cannot count your keys/clicks.")
            inject("tap", "a")
            probe.expect_nothing()
            # As the device manager does it, a moment after the node has appeared.
            shutil.chown(path, group="nogroup")
            os.chmod(path, 0o640)
            time.sleep(SETTLED)
            inject("tap", "b")
            probe.expect("key 42")
            self.assertEqual(sum("Couldn't open" in line for line in probe.log),
                             len(list(Path("/dev/input").glob("event*"))), "each said once")
            os.chmod(path, 0o600)
            probe.end()


if __name__ == "__main__":
    if "EVDEV_VM" not in os.environ:
        sys.exit("to be run by run-in-vm")
    PROBE = sys.argv.pop(1)
    unittest.main(verbosity=2)
