# SPDX-License-Identifier: GPL-3.0-or-later
"""What the end-to-end tests share: a desktop of their own, the built client on a data directory of its
own, and named pipes in place of the kernel's input devices.

The client's binary is named by TALLYVANE_BINARY. A test that cannot run here skips with its reason.
"""
import contextlib
import ctypes.util
import datetime
import os
import shutil
import signal
import socket
import sqlite3
import struct
import subprocess
import tempfile
import time
import unittest
from pathlib import Path

BINARY = os.environ.get("TALLYVANE_BINARY", "")
PATIENCE = float(os.environ.get("TALLYVANE_PATIENCE", "30"))  # seconds to wait for what must come

# The hour after noon wherever the tests run, so that no test meets midnight. As the database of zones
# names them: the hours to add to local time for UTC.
ZONE = f"Etc/GMT{datetime.datetime.now(datetime.timezone.utc).hour - 12:+d}"
os.environ["TZ"] = ZONE
time.tzset()

EV_SYN, EV_KEY, EV_REL = 0, 1, 2
# Codes of linux/input-event-codes.h and the key values under which they are stored.
KEYS = {"a": (30, 0x41), "b": (48, 0x42), "c": (46, 0x43), "space": (57, 0x20),
        "enter": (28, 0x01000005), "grave": (41, 0x01FFFFFF)}
# What the program logs where something is amiss. Neither a window in front that is the window manager's
# own, of no process, is any of it, nor packets of the whole machine that go by while others use it.
TROUBLE = (r"(?m)^\S+ \S+ (warn|error|fatal) "
           r"(?!XGetWindowProperty _NET_WM_PID |Packets dropped by the kernel: )")


def wait_for(condition, what, seconds=None):
    """The first true value of CONDITION; fails with WHAT after SECONDS."""
    end = time.monotonic() + (seconds or PATIENCE)
    while not (result := condition()):
        if time.monotonic() > end:
            raise AssertionError(f"timed out: {what}")
        time.sleep(0.05)
    return result


def need(*programs):
    for program in programs:
        if not shutil.which(program):
            raise unittest.SkipTest(f"{program} is not installed")


class Desktop:
    """An X server with a window manager and a system tray."""

    def __init__(self, tray=True, size="1280x800", options=()):
        need("Xvfb", "openbox", "trayer", "xdotool")
        self.processes = []
        self.display = self._start_server(size, options)
        self.environment = {"DISPLAY": self.display, "XDG_SESSION_TYPE": "x11"}
        self._start("openbox")
        wait_for(lambda: self._root_property("_NET_SUPPORTING_WM_CHECK"), "the window manager")
        if tray:
            self._start("trayer", "--align", "right", "--width", "20")
            wait_for(lambda: "not found" not in self.run("xprop", "-root", "_NET_CLIENT_LIST")
                     and self.run("xdotool", "search", "--class", "trayer"), "the tray")
        self.has_tray = tray

    def _start_server(self, size, options):
        read_end, write_end = os.pipe()
        server = subprocess.Popen(["Xvfb", "-displayfd", str(write_end), "-screen", "0", f"{size}x24",
                                   "-nolisten", "tcp", "-noreset", *options], pass_fds=[write_end],
                                  stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(write_end)
        self.server = server
        with os.fdopen(read_end) as answer:
            return ":" + answer.readline().strip()

    def _start(self, *command):
        process = subprocess.Popen(command, env=os.environ | self.environment,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.processes.append(process)
        return process

    def _root_property(self, name):
        return "window id" in self.run("xprop", "-root", name)

    def run(self, *command):
        """What COMMAND prints; nothing where it fails."""
        return subprocess.run(command, env=os.environ | self.environment, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout

    def open_application(self, *command):
        """Starts a program and waits until its window is in front; returns the process."""
        process = self._start(*command)
        wait_for(lambda: self._pid_in_front() == process.pid, f"{command[0]} in front")
        return process

    def _pid_in_front(self):
        text = self.run("xdotool", "getactivewindow", "getwindowpid").strip()
        return int(text) if text.isdigit() else 0

    def windows(self, title):
        return self.run("xdotool", "search", "--onlyvisible", "--name", title).split()

    def main_window(self):
        return wait_for(lambda: self.windows("^Tallyvane$"), "the main window")[0]

    def skip_first_steps(self):
        """Closes the window that the client's first start opens beside the main one."""
        steps = wait_for(lambda: self.windows("^Set up Tallyvane$"), "the first steps")[0]
        self.run("xdotool", "windowactivate", "--sync", steps)
        wait_for(lambda: not self.windows("^Set up Tallyvane$") or self.press("Escape"),
                 "the end of the first steps")
        self.run("xdotool", "windowactivate", "--sync", self.main_window())

    def picture(self, window, area):
        """A part of a window as it looks now, to be compared."""
        need("import")
        return subprocess.run(["import", "-window", window, "-crop", area, "rgb:-"], check=True,
                              env=os.environ | self.environment, stdout=subprocess.PIPE).stdout

    def press_at(self, window, x, y, *keys):
        """Clicks on a place of WINDOW, which takes the focus, and presses KEYS."""
        self.run("xdotool", "mousemove", "--window", window, str(x), str(y), "click", "1")
        for key in keys:
            self.press(key)
            time.sleep(0.3)

    def press(self, *keys):
        self.run("xdotool", "key", *keys)

    def kill_server(self):
        self.server.kill()
        self.server.wait()

    def close(self):
        for process in reversed(self.processes):
            process.terminate()
            process.wait()
        self.server.terminate()
        self.server.wait()


class Device:
    """A named pipe in the place of an input device; records are the kernel's struct input_event."""

    def __init__(self, directory, name):
        self.path = Path(directory, name)
        os.mkfifo(self.path)
        self.descriptor = os.open(self.path, os.O_RDWR)

    def send(self, kind, code, value):
        now = time.time()
        os.write(self.descriptor, struct.pack("@qqHHi", int(now), int(now % 1 * 1e6), kind, code, value))

    def type(self, *names):
        for name in names:
            self.send(EV_KEY, KEYS[name][0], 1)
            self.send(EV_KEY, KEYS[name][0], 0)

    def unplug(self):
        os.close(self.descriptor)
        self.path.unlink()


class Client:
    """The built client, started with a data directory, a runtime directory and devices of its own."""

    def __init__(self, desktop, root=None):
        if not BINARY:
            raise unittest.SkipTest("TALLYVANE_BINARY names no client")
        self.desktop = desktop
        self.root = Path(root or tempfile.mkdtemp(prefix="tallyvane-e2e."))
        self.data = self.root / "share" / "Tallyvane"
        self.devices = self.root / "input"
        self.devices.mkdir(exist_ok=True)
        self.mounts = {}  # What the client sees in the place of directories of the machine.
        (self.root / "runtime").mkdir(mode=0o700, exist_ok=True)
        self.environment = os.environ | (desktop.environment if desktop else {}) | {
            "HOME": str(self.root), "XDG_DATA_HOME": str(self.root / "share"),
            "XDG_CONFIG_HOME": str(self.root / "config"), "XDG_CACHE_HOME": str(self.root / "cache"),
            "XDG_RUNTIME_DIR": str(self.root / "runtime"), "LC_ALL": "C.UTF-8"}
        if not desktop or not desktop.has_tray:
            self.environment.pop("XDG_SESSION_TYPE", None)
        self.processes = []

    def command(self, arguments, devices):
        mounts = self.mounts | ({"/dev/input": self.devices} if devices else {})
        if not mounts:
            return [BINARY, *arguments]
        if os.geteuid() != 0 or not shutil.which("unshare"):
            raise unittest.SkipTest(f"something else in place of {', '.join(mounts)} needs root and "
                                    "a mount namespace")
        script = ('while [ "$1" != -- ]; do mkdir -p "$1" && mount --bind "$2" "$1" || exit; '
                  'shift 2; done; shift; exec "$@"')
        pairs = [str(path) for pair in mounts.items() for path in pair]
        return ["unshare", "--mount", "--propagation", "private", "sh", "-c", script, "sh", *pairs,
                "--", BINARY, *arguments]

    def start(self, *arguments, devices=True, environment=None):
        """Starts the client without waiting for anything; returns the process."""
        process = subprocess.Popen(self.command(arguments, devices), stdin=subprocess.DEVNULL,
                                   env=self.environment | (environment or {}),
                                   stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        self.processes.append(process)
        return process

    def run(self, *arguments, environment=None):
        """Starts the client and waits for its end; returns exit code, standard output and error."""
        result = subprocess.run([BINARY, *arguments], stdin=subprocess.DEVNULL, text=True,
                                env=self.environment | (environment or {}), stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE, timeout=4 * PATIENCE)
        return result.returncode, result.stdout, result.stderr

    def start_fully(self, *arguments, **options):
        """Starts the client and waits until it counts."""
        before = self.log().count("Starting collector")
        process = self.start(*arguments, **options)
        wait_for(lambda: self.log().count("Starting collector") > before, "the start's end")
        return process

    def log(self):
        with contextlib.suppress(FileNotFoundError):
            return (self.data / "app.log").read_text(errors="replace")
        return ""

    def wait_for_log(self, text, count=1):
        wait_for(lambda: self.log().count(text) >= count, f"the log line {text!r}")

    def time_of(self, text):
        """When the first log line with TEXT was written."""
        line = next(line for line in self.log().splitlines() if text in line)
        return datetime.datetime.fromisoformat(line[:23])

    def keys_by_profile(self):
        return dict(self.query(
            "SELECT profile_id, SUM(count) FROM keypress_frequency GROUP BY profile_id"))

    def query(self, statement, *values):
        with contextlib.closing(sqlite3.connect(self.data / "tallyvane.db", timeout=PATIENCE)) as database:
            return database.execute(statement, values).fetchall()

    def execute(self, script):
        with contextlib.closing(sqlite3.connect(self.data / "tallyvane.db", timeout=PATIENCE)) as database:
            database.executescript(script)

    def configure(self, **settings):
        """Sets settings by name; while the client does not run."""
        self.execute("".join(f"INSERT OR REPLACE INTO settings (name, value) VALUES ('{name}', '{value}');"
                             for name, value in settings.items()))

    def device(self, name="event0"):
        return Device(self.devices, name)

    def send_message(self, text):
        """Speaks to the running client as another instance would; returns its answer."""
        path = self.root / "runtime" / f"tallyvane_instance_check-{os.getuid()}.socket"
        with socket.socket(socket.AF_UNIX) as peer:
            peer.settimeout(PATIENCE)
            peer.connect(str(path))
            peer.sendall(text)
            with contextlib.suppress(ConnectionError):
                return peer.recv(16)
        return b""

    def terminate(self, process, number=signal.SIGTERM):
        """Asks the client to end; returns its exit code."""
        process.send_signal(number)
        return process.wait(timeout=PATIENCE)

    def close(self):
        for process in self.processes:
            if process.poll() is None:
                process.kill()
            process.communicate()
        shutil.rmtree(self.root, ignore_errors=True)


class DesktopTest(unittest.TestCase):
    """A test with a desktop for the whole class and a fresh client for each test."""

    @classmethod
    def setUpClass(cls):
        cls.desktop = Desktop()
        cls.addClassCleanup(cls.desktop.close)

    def setUp(self):
        self.client = Client(self.desktop)
        self.addCleanup(self.client.close)


def faketime_library():
    name = "/usr/lib/x86_64-linux-gnu/faketime/libfaketimeMT.so.1"
    return name if os.path.exists(name) else ctypes.util.find_library("faketimeMT")


class FakeClock:
    """A clock of the client's own, beside the machine's; timers keep the machine's pace."""

    def __init__(self, directory):
        library = faketime_library()
        if not library:
            raise unittest.SkipTest("libfaketime is not installed")
        self.path = directory / "clock"
        self.environment = {
            "LD_PRELOAD": library, "FAKETIME_TIMESTAMP_FILE": str(self.path),
            "FAKETIME_NO_CACHE": "1", "FAKETIME_DONT_FAKE_MONOTONIC": "1", "NO_FAKE_STAT": "1"}
        self.set(0)

    def set(self, seconds):
        """Sets the client's clock this far from the machine's."""
        temporary = self.path.with_suffix(".new")
        temporary.write_text(f"{seconds:+d}s\n")
        os.replace(temporary, self.path)
