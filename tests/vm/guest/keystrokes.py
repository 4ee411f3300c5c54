#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Types on a real keyboard while the program runs on a desktop, ends it half a second after the last
key, and compares its database with what was typed: keystrokes.py TALLYVANE"""
import collections
import os
import shutil
import signal
import sqlite3
import subprocess
import sys
import time
from pathlib import Path

PATIENCE = 120      # seconds; the guest may be emulated
DISPLAY = ":7"
UNKNOWN = 0x01ffffff
PROGRAMS = ("Xvfb", "xdpyinfo", "xprop", "openbox", "trayer", "xterm")

# QEMU's name of a key: the value under which it is counted.
KEYS = {
    "a": 0x41, "h": 0x48, "e": 0x45, "l": 0x4c, "o": 0x4f, "1": 0x31, "spc": 0x20, "ret": 0x01000005,
    "shift": 0x01000020, "ctrl": 0x01000021, "alt_r": 0x01001256, "esc": 0x01000000, "f5": 0x01000034,
    "left": 0x01000012, "home": 0x01000010, "kp_7": 0x0100125e, "kp_9": 0xa8, "kp_add": 0x010000d4,
    "minus": 0x2d, "grave_accent": UNKNOWN, "meta_l": UNKNOWN,
}
FIRST = ["a"]
TEXT = ["h", "e", "l", "l", "o", "spc", "shift+a", "1", "minus", "kp_7", "kp_9", "kp_add", "left", "home",
        "esc", "f5", "alt_r", "ctrl+l", "grave_accent", "meta_l", "ret"]
LAST = ["l", "o", "o"]


class Desktop:
    """An X server with a window manager, a tray and one application in front."""

    def __init__(self, home):
        self.environment = os.environ | {"DISPLAY": DISPLAY, "HOME": str(home),
                                         "XDG_DATA_HOME": str(home / "data"),
                                         "XDG_SESSION_TYPE": "x11"}
        self.children = []
        # Without the option the server starts over, and ends its clients, when the last one has gone:
        # the one that asks whether it is there.
        self.start("Xvfb", DISPLAY, "-screen", "0", "1280x800x24", "-noreset")
        wait(lambda: self.succeeds("xdpyinfo"), "the X server")
        self.start("openbox")
        wait(lambda: "window id" in self.output("xprop", "-root", "_NET_SUPPORTING_WM_CHECK"),
             "the window manager")
        self.start("trayer", "--edge", "bottom")
        self.xterm = self.start("xterm")
        wait(lambda: self.front() == self.xterm.pid, "xterm in front")

    def start(self, *command):
        self.children.append(subprocess.Popen(command, env=self.environment, stdin=subprocess.DEVNULL,
                                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL))
        return self.children[-1]

    def output(self, *command):
        return subprocess.run(command, env=self.environment, capture_output=True, text=True).stdout

    def succeeds(self, *command):
        return subprocess.run(command, env=self.environment, capture_output=True).returncode == 0

    def front(self):
        """The process whose window is in front, or None."""
        window = self.output("xprop", "-root", "_NET_ACTIVE_WINDOW").split()[-1:]
        answer = self.output("xprop", "-id", *window, "_NET_WM_PID") if window else ""
        return int(answer.split()[-1]) if answer.strip()[-1:].isdigit() else None

    def end(self):
        for child in reversed(self.children):
            child.kill()
            child.wait()


class Client:
    """The program under test."""

    def __init__(self, binary, desktop, home):
        self.data = home / "data" / "Tallyvane"
        self.errors = open(home / "stderr", "w", encoding="utf-8")
        self.process = subprocess.Popen([binary, "--closedwindow"], env=desktop.environment,
                                        stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                        stderr=self.errors)

    def log(self):
        path = self.data / "app.log"
        return path.read_text(encoding="utf-8") if path.exists() else ""

    def rows(self, statement):
        """Rows of the database as it is now; none while there is no such table."""
        try:
            with sqlite3.connect(f"file:{self.data}/tallyvane.db?mode=ro", uri=True, timeout=20) as database:
                return database.execute(statement).fetchall()
        except sqlite3.OperationalError:
            return []

    def counted(self):
        return sum(count for count, in self.rows("SELECT count FROM keypress_frequency"))

    def end(self):
        self.process.send_signal(signal.SIGTERM)
        return self.process.wait(PATIENCE)


def wait(condition, what):
    end = time.monotonic() + PATIENCE
    while not condition():
        if time.monotonic() > end:
            raise AssertionError(f"timeout: {what}")
        time.sleep(0.1)


def inject(*request):
    subprocess.run(["inject", *map(str, request)], check=True, stdout=subprocess.DEVNULL)


def tap(*chords):
    inject("tap", *chords)


def wait_for_devices(client):
    devices = len(list(Path("/dev/input").glob("event*")))
    wait(lambda: client.log().count("Creating device listener for") == devices, "the devices are read")


def counts_of(chords):
    return collections.Counter(KEYS[name] for chord in chords for name in chord.split("+"))


def known(counts):
    return {key: count for key, count in counts.items() if key != UNKNOWN}


def session(client, desktop):
    """Types, ends the client, and returns what was typed."""
    # The first batch of an hour only opens its row of totals: one key makes that batch exactly known.
    tap(*FIRST)
    wait(lambda: client.counted() == len(FIRST), "the first key is stored")
    tap(*TEXT)
    wait(lambda: client.counted() == sum(known(counts_of(FIRST + TEXT)).values()), "the text is stored")
    assert desktop.front() == desktop.xterm.pid, "another window came in front"
    tap(*LAST)
    time.sleep(0.4)
    assert client.end() == 0, "the exit status"
    return counts_of(FIRST + TEXT + LAST)


def compare(what, got, wanted):
    print(f"{what:<34} {got!s:>12} {wanted!s:>12}  {'' if got == wanted else 'DIFFERENT'}")
    return got == wanted


def check(client, typed, application):
    total = sum(typed.values())
    frequency = dict(client.rows("SELECT key, sum(count) FROM keypress_frequency GROUP BY key"))
    per_application = dict(client.rows(
        f"SELECT key, sum(count) FROM keypress_frequency_application WHERE path = '{application}' GROUP BY key"))
    print(f"{'key':<34} {'stored':>12} {'typed':>12}")
    good = [compare(f"{key:#010x}", frequency.get(key, 0), typed.get(key, 0))
            for key in sorted(known(typed) | frequency)]
    good += [compare(f"{key:#010x} in {Path(application).name}", per_application.get(key, 0), typed.get(key, 0))
             for key in sorted(known(typed) | per_application)]
    good.append(compare("keypresses, but for the first batch",
                        client.rows("SELECT sum(count) FROM keypresses"), [(total - len(FIRST),)]))
    good.append(compare("input_per_application",
                        client.rows("SELECT path, sum(keys) FROM input_per_application GROUP BY path"),
                        [(application, total)]))
    good.append(compare("keys named in the log", client.log().count("key down"), 0))
    return all(good)


def run(client, desktop):
    application = os.path.realpath(f"/proc/{desktop.xterm.pid}/exe")
    return check(client, session(client, desktop), application)


def main(test):
    """Runs TEST, given the program on its desktop once it reads the devices; returns the exit status."""
    missing = [program for program in PROGRAMS if not shutil.which(program)]
    if missing:
        print(f"skipped: not installed: {' '.join(missing)}")
        return 77
    subprocess.run(["date", "-s", "12:05"], check=True, stdout=subprocess.DEVNULL)    # far from a new hour
    home = Path("/tmp/home")
    home.mkdir()
    desktop = Desktop(home)
    client = Client(sys.argv[1], desktop, home)
    try:
        wait_for_devices(client)
        good = test(client, desktop)
    except AssertionError as failure:
        print(failure)
        good = False
    finally:
        client.process.kill()
        desktop.end()
    if not good:
        print(client.log() or (home / "stderr").read_text(encoding="utf-8"))
    return 0 if good else 1


def in_guest(test):
    if "EVDEV_VM" not in os.environ:
        sys.exit("to be run by run-in-vm")
    sys.exit(main(test))


if __name__ == "__main__":
    in_guest(run)
