#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Types, clicks, moves, scrolls and switches windows while the program runs on a desktop, and compares
its database with what was done: activity.py TALLYVANE"""
import os
import shutil
import subprocess
import sys
import time
from pathlib import Path

from keystrokes import Desktop, compare, in_guest, inject, tap, wait

# QEMU's name of a button: its index, by which it is counted.
BUTTONS = {"btn:left": 0, "btn:right": 1, "btn:middle": 2, "btn:side": 99}
FIRST = ["btn:left"]
CLICKS = ["btn:left", "btn:right", "btn:middle", "btn:side", "btn:left"]
OTHER_CLICKS = ["btn:left", "btn:right"]
UP, DOWN = 1, 2     # mousescrolls.direction
SCROLLS = {UP: 4, DOWN: 3}
INCH = 96           # pixels on the virtual screen
SETTLED = 0.2       # seconds after which a report stands alone


def total(client, table, column="count"):
    return client.rows(f"SELECT COALESCE(SUM({column}), 0) FROM {table}")[0][0]


def click(client, *buttons):
    wanted = total(client, "mouseclicks_frequency") + len(buttons)
    tap(*buttons)
    wait(lambda: total(client, "mouseclicks_frequency") == wanted, f"{buttons} are stored")


def move_inches(count):
    """Each report lies an inch from the one before it."""
    for number in range(count):
        inject("move", 10 + (0 if number % 2 else INCH), 0)
        time.sleep(SETTLED)


def session(client, desktop, other):
    """Does it all, and ends the client."""
    inject("pointer", "PS/2")
    tap("a")
    wait(lambda: client.counted() == 1, "the key is stored")
    click(client, *FIRST)
    click(client, *CLICKS)
    inject("move", 10, 0)      # only starts the count
    time.sleep(SETTLED)
    move_inches(2)
    wait(lambda: client.rows("SELECT * FROM mousedistance"), "the first travel")
    move_inches(10)
    for _ in range(SCROLLS[UP]):
        tap("btn:wheel-up")
    for _ in range(SCROLLS[DOWN]):
        tap("btn:wheel-down")
    wait(lambda: total(client, "mousescrolls") == sum(SCROLLS.values()), "the scrolls are stored")
    wait(lambda: total(client, "input_per_application", "distance_inches") == 12, "the travel is stored")
    window = desktop.start(other)
    wait(lambda: desktop.front() == window.pid, "the other application in front")
    click(client, *OTHER_CLICKS)
    assert client.end() == 0, "the exit status"


def check(client, application, other):
    clicks = FIRST + CLICKS + OTHER_CLICKS
    buttons = sorted({(BUTTONS[name], sum(BUTTONS[n] == BUTTONS[name] for n in clicks)) for name in clicks})
    inputs = [(application, 1, len(FIRST + CLICKS), 12, sum(SCROLLS.values())),
              (other, 0, len(OTHER_CLICKS), 0, 0)]
    expected = {
        "SELECT button, SUM(count) FROM mouseclicks_frequency GROUP BY button": buttons,
        "SELECT SUM(count) FROM mouseclicks": [(len(clicks) - len(FIRST),)],
        "SELECT COUNT(*), COUNT(DISTINCT x || y) FROM mousepoints": [(len(clicks), 1)],
        "SELECT direction, SUM(count) FROM mousescrolls GROUP BY direction HAVING SUM(count) > 0":
            sorted(SCROLLS.items()),
        "SELECT path, SUM(keys), SUM(clicks), SUM(distance_inches), SUM(scrolls) "
        "FROM input_per_application GROUP BY path": sorted(inputs),
        "SELECT path FROM application_active_hour WHERE seconds_active > 0 ORDER BY path":
            sorted([(application,), (other,)]),
        "SELECT path FROM applications ORDER BY path": sorted([(application,), (other,)]),
        "SELECT COUNT(*) FROM uptimes": [(1,)],
        "SELECT SUM(msec_active) > 5000 FROM uptime_hour": [(1,)],
        "SELECT name, value FROM unzurged_stats WHERE name IN ('clicks', 'keys', 'scrolls') ORDER BY name":
            [("clicks", str(len(clicks))), ("keys", "1"), ("scrolls", str(sum(SCROLLS.values())))],
    }
    print("statement: stored, done")
    return all([compare(statement + "\n", client.rows(statement), wanted)
                for statement, wanted in expected.items()])


def run(client, desktop):
    application = os.path.realpath(f"/proc/{desktop.xterm.pid}/exe")
    other = "/tmp/other-application"
    shutil.copy(application, other)
    session(client, desktop, other)
    return check(client, application, other)


if __name__ == "__main__":
    in_guest(run)
