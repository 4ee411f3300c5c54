# SPDX-License-Identifier: GPL-3.0-or-later
"""An account service of the test's own, and a client that knows no other one.

The service's program is named by TALLYVANE_DEV_SERVICE; tests/service/README.md tells its commands.
"""
import contextlib
import json
import os
import shutil
import sqlite3
import subprocess
import tempfile
import time
import unittest
import urllib.request
from pathlib import Path

from harness import EV_KEY, PATIENCE, Client, DesktopTest, wait_for

SERVICE = os.environ.get("TALLYVANE_DEV_SERVICE", "")
MINUTE = 60 + PATIENCE  # To wait for what the client does each minute.
PAUSE = 10.5  # Seconds from the beginning of a zurge until another one may begin.
COUNTERS = ("keys", "clicks", "download", "upload", "uptime", "scrolls", "distance_inches")
LEFT_BUTTON = 0x110  # linux/input-event-codes.h


class Service:
    """The account service of the tests, as a program of its own, on a directory of its own."""

    def __init__(self, prefix=()):
        if not SERVICE:
            raise unittest.SkipTest("TALLYVANE_DEV_SERVICE names no account service")
        self.root = Path(tempfile.mkdtemp(prefix="tallyvane-service."))
        self.authority = self.root / "authority.pem"
        self.process = subprocess.Popen([*prefix, SERVICE, str(self.root)], stdin=subprocess.DEVNULL,
                                        stdout=subprocess.PIPE, text=True)
        self.addresses = {}
        self.control = ""
        for line in self.process.stdout:
            kind, name, *rest = line.split()
            if kind == "export":
                variable, _, address = name.partition("=")
                self.addresses[variable] = address
            elif name == "control:":
                self.control = rest[0]
                break
        if not self.control:
            self.close()
            raise AssertionError("the account service did not start")
        # Whatever proxy the machine is set to, this one is here.
        self.opener = urllib.request.build_opener(urllib.request.ProxyHandler({}))

    def ask(self, command, **fields):
        """Gives a command; returns the answer."""
        text = json.dumps({"command": command} | fields).encode()
        with self.opener.open(self.control, text, timeout=PATIENCE) as reply:
            answer = json.load(reply)
        if "error" in answer:
            raise AssertionError(f"the service refused {command}: {answer['error']}")
        return answer

    def requests(self, kind=None):
        """What came to the API address, as the service tells it; of one type, where KIND is given."""
        return [request for request in self.ask("state")["requests"] if kind in (None, request["type"])]

    def violations(self):
        """How the client departed from the protocol."""
        return self.ask("state")["violations"]

    def query(self, statement, *values):
        with contextlib.closing(sqlite3.connect(self.root / "service.db", timeout=PATIENCE)) as database:
            return database.execute(statement, values).fetchall()

    def totals(self, user):
        """The account's, by counter, in the service's units."""
        row, = self.query(f"SELECT {', '.join(COUNTERS)} FROM accounts WHERE username = ?", user)
        return dict(zip(COUNTERS, row))

    def zurges(self):
        """Those that were taken."""
        return self.query("SELECT COUNT(*) FROM zurges")[0][0]

    def close(self):
        self.process.terminate()
        self.process.communicate()
        shutil.rmtree(self.root, ignore_errors=True)


class AccountClient(Client):
    """A client that finds and trusts the service alone. Its browser notes the addresses it is given."""

    def __init__(self, desktop, service, root=None):
        super().__init__(desktop, root)
        self.service = service
        authorities = self.root / "authorities"
        programs = self.root / "programs"
        self.visited = self.root / "visited"
        for directory in authorities, programs:
            directory.mkdir()
        shutil.copy(service.authority, authorities)
        self.mounts["/etc/ssl/certs"] = authorities
        browser = programs / "xdg-open"
        browser.write_text('#!/bin/sh\necho "$1" >> "${0%/*}/../visited"\n')
        browser.chmod(0o755)
        for name in "http_proxy", "https_proxy", "all_proxy", "no_proxy":
            self.environment.pop(name, None)
            self.environment.pop(name.upper(), None)
        self.environment |= service.addresses | {"PATH": f"{programs}:{os.environ['PATH']}"}

    def zurge_by_hand(self):
        """As the command line does it."""
        assert self.run("--zurge")[0] == 0

    def unzurged(self):
        """As the database tells it, in whole units."""
        return {name: int(value) for name, value in self.query(
            "SELECT name, value FROM unzurged_stats") if name in COUNTERS}

    def counted(self):
        """Keys and clicks, as the tables of their statistics tell them."""
        return {name: self.query(f"SELECT COALESCE(SUM(count), 0) FROM {table}")[0][0]
                for name, table in (("keys", "keypress_frequency"), ("clicks", "mouseclicks_frequency"))}


class Wizard:
    """The window of the first steps, on the desktop of its client."""

    TITLE = "^Set up Tallyvane$"
    HEADING = "680x80+0+0"  # The page's title, in the window.

    def __init__(self, desktop):
        self.desktop = desktop
        self.window = wait_for(lambda: desktop.windows(self.TITLE), "the first steps")[0]
        desktop.run("xdotool", "windowactivate", "--sync", self.window)
        time.sleep(0.5)  # Until it has the keyboard as well.

    def picture(self, area=HEADING):
        return self.desktop.picture(self.window, area)

    def turn_page(self, *keys):
        """Presses KEYS and waits for a page of another title."""
        before = self.picture()
        self.desktop.press(*keys)
        wait_for(lambda: self.picture() != before, f"another page after {keys}")
        time.sleep(0.3)  # It takes the focus.

    def go_to_account(self):
        for _ in "welcome", "what is counted", "permissions":
            self.turn_page("Return")

    def link(self):
        """From the page of the account, whose focus is on staying local."""
        self.turn_page("shift+Tab", "Return")

    def finish(self):
        """From the last page."""
        self.desktop.press("Return")
        wait_for(lambda: not self.desktop.windows(self.TITLE), "the end of the first steps")


class AccountTest(DesktopTest):
    """A test with a service and a client of its own."""

    USER, COMPUTER = "ann", "desk"

    def setUp(self):
        super().setUp()
        self.service = self.make_service()
        self.addCleanup(self.service.close)
        self.client = self.make_client()
        self.keyboard = self.client.device("event0")
        self.filed = {"keys": 0, "clicks": 0}

    def make_service(self):
        return Service()

    def make_client(self):
        client = AccountClient(self.desktop, self.service)
        self.addCleanup(client.close)
        return client

    def link(self, client=None):
        """Starts a client for the first time and links it in the browser, whose user agrees at once.
        Returns the process, and the wizard at the page that follows."""
        client = client or self.client
        self.service.ask("agree_at_once", username=self.USER, computer=self.COMPUTER)
        process = client.start_fully()
        wizard = Wizard(self.desktop)
        wizard.go_to_account()
        wizard.link()
        waiting = wizard.picture()
        client.wait_for_log("Client authorized!")
        wait_for(lambda: wizard.picture() != waiting, "the page after the authorisation")
        time.sleep(0.3)
        return process, wizard

    def link_and_end(self, **settings):
        """Leaves a client that is linked and does not run, with these settings."""
        process, wizard = self.link()
        wizard.finish()
        self.assertEqual(self.client.terminate(process), 0)
        # What goes out by itself, unless the test wants it to.
        self.client.configure(**{f"auto_zurge_{name}_enabled": 0
                                 for name in ("keys", "clicks", "uptime", "download", "upload", "time")}
                              | {"online_backup_enabled": 0} | settings)

    def start(self):
        """The client, without its window, once it listens to the keyboard."""
        before = self.client.log().count("Creating device listener for /dev/input/event0")
        process = self.client.start_fully("--closedwindow")
        self.client.wait_for_log("Creating device listener for /dev/input/event0", before + 1)
        return process

    def type(self, count):
        """Presses so many keys and waits until they are filed."""
        self.keyboard.type(*["a"] * count)
        self.expect_filed("keys", count)

    def click(self, count):
        for _ in range(count):
            self.keyboard.send(EV_KEY, LEFT_BUTTON, 1)
            self.keyboard.send(EV_KEY, LEFT_BUTTON, 0)
        self.expect_filed("clicks", count)

    def expect_filed(self, counter, count):
        self.filed[counter] += count
        wait_for(lambda: self.client.counted() == self.filed, f"{count} {counter}")

    def expect_total(self, keys, seconds=None):
        """Waits until the client has been told that the account's keys are so many."""
        wait_for(lambda: self.client.query("SELECT value FROM settings WHERE name = 'online_total_keys'")
                 == [(str(keys),)], f"a total of {keys} keys", seconds)
