# SPDX-License-Identifier: GPL-3.0-or-later
"""A headless Chromium that a test drives as its user would, by the DevTools protocol over pipes.

It knows no name but those a test gives it, and so reaches nothing beyond this machine.
"""
import base64
import fcntl
import json
import os
import select
import shutil
import subprocess
import tempfile
import time
import unittest

from harness import PATIENCE, wait_for

PROGRAMS = ("chromium", "chromium-browser", "google-chrome")
OPTIONS = ("--headless", "--no-sandbox", "--disable-gpu", "--no-first-run", "--disable-extensions",
           "--disable-background-networking", "--disable-component-update", "--disable-sync",
           "--password-store=basic", "--no-proxy-server", "--remote-debugging-pipe")


class Pipes:
    """The messages of the protocol, each ended by a zero byte: the browser reads them from its descriptor
    3 and writes them to 4."""

    def __init__(self, command):
        theirs_in, self._out = self._pipe()
        self._in, theirs_out = self._pipe()
        self.process = subprocess.Popen(
            ["bash", "-c", f'exec "$@" 3<&{theirs_in} 4>&{theirs_out}', "bash", *command],
            pass_fds=[theirs_in, theirs_out], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL)
        os.close(theirs_in)
        os.close(theirs_out)
        self._rest = b""

    @staticmethod
    def _pipe():
        """Both ends, beyond the descriptors that the browser is to have."""
        ends = os.pipe()
        high = [fcntl.fcntl(end, fcntl.F_DUPFD_CLOEXEC, 10) for end in ends]
        for end in ends:
            os.close(end)
        return high

    def send(self, message):
        data = json.dumps(message).encode() + b"\0"
        while data:
            data = data[os.write(self._out, data):]

    def receive(self, seconds):
        """The next message; None where none comes in time."""
        end = time.monotonic() + seconds
        while b"\0" not in self._rest:
            if not select.select([self._in], [], [], max(0, end - time.monotonic()))[0]:
                return None
            data = os.read(self._in, 1 << 16)
            if not data:
                raise AssertionError("the browser ended")
            self._rest += data
        text, _, self._rest = self._rest.partition(b"\0")
        return json.loads(text)

    def close(self):
        """Without anyone to speak to, the browser ends."""
        os.close(self._out)
        os.close(self._in)
        try:
            self.process.wait(PATIENCE)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()


class Browser:
    """One window, with what it asked for and what it complained of."""

    def __init__(self, names=(), options=(), width=1200, height=1000):
        """NAMES are those of hosts that lead to this machine, beside the usual ones; OPTIONS the
        browser's own, beside those it always has."""
        program = next((path for name in PROGRAMS if (path := shutil.which(name))), None)
        if not program:
            raise unittest.SkipTest(f"none of {', '.join(PROGRAMS)} is installed")
        self.directory = tempfile.mkdtemp(prefix="tallyvane-browser.")
        rules = [*(f"MAP {name} 127.0.0.1" for name in names),
                 "MAP * ~NOTFOUND", "EXCLUDE 127.0.0.1", "EXCLUDE localhost", "EXCLUDE ::1"]
        self.pipes = Pipes([program, *OPTIONS, *options, f"--user-data-dir={self.directory}",
                            f"--host-resolver-rules={','.join(rules)}",
                            f"--window-size={width},{height}"])
        self.session = None
        self.last = 0
        self.events = []
        target = self.call("Target.createTarget", url="about:blank")["targetId"]
        self.session = self.call("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]
        for domain in "Page", "Runtime", "Network", "Log":
            self.call(f"{domain}.enable")

    def call(self, method, **parameters):
        """Calls a method of the protocol and waits for its result."""
        self.last += 1
        message = {"id": self.last, "method": method, "params": parameters}
        self.pipes.send(message | ({"sessionId": self.session} if self.session else {}))
        end = time.monotonic() + PATIENCE
        while (answer := self.pipes.receive(end - time.monotonic())) is not None:
            if answer.get("id") == self.last:
                if "error" in answer:
                    raise AssertionError(f"{method}: {answer['error']['message']}")
                return answer["result"]
            self.events.append(answer)
        raise AssertionError(f"timed out: {method}")

    def open(self, address):
        """Goes there and waits until the page is loaded."""
        result = self.call("Page.navigate", url=address)
        if "errorText" in result:
            raise AssertionError(f"{address}: {result['errorText']}")
        wait_for(lambda: self.evaluate("document.readyState === 'complete' && location.href !== 'about:blank'"),
                 f"the page {address}")

    def evaluate(self, expression):
        """The value of an expression of JavaScript, or of the promise that it is."""
        answer = self.call("Runtime.evaluate", expression=expression, awaitPromise=True,
                           returnByValue=True)
        if "exceptionDetails" in answer:
            raise AssertionError(f"{expression}: {answer['exceptionDetails']}")
        return answer["result"].get("value")

    def wait_for(self, expression, what):
        return wait_for(lambda: self.evaluate(expression), what)

    def click(self, selector):
        """Moves the pointer to the middle of what SELECTOR finds first, once it is there, and clicks."""
        name = json.dumps(selector)
        self.wait_for(f"!!document.querySelector({name})", selector)
        x, y = self.evaluate(
            f"(element => {{ element.scrollIntoView({{block: 'center', behavior: 'instant'}});"
            "const box = element.getBoundingClientRect();"
            f"return [box.x + box.width / 2, box.y + box.height / 2]; }})(document.querySelector({name}))")
        for kind in "mouseMoved", "mousePressed", "mouseReleased":
            self.call("Input.dispatchMouseEvent", type=kind, x=x, y=y, clickCount=1,
                      button="none" if kind == "mouseMoved" else "left")

    def prefer(self, scheme):
        """Shows pages as on a desktop whose colours are "light" or "dark"."""
        self.call("Emulation.setEmulatedMedia",
                  features=[{"name": "prefers-color-scheme", "value": scheme}])

    def take_picture(self, path):
        path.parent.mkdir(parents=True, exist_ok=True)
        data = self.call("Page.captureScreenshot", format="png")["data"]
        path.write_bytes(base64.b64decode(data))

    def messages(self, method):
        """What the protocol told of one kind so far."""
        self.call("Runtime.evaluate", expression="0")
        return [event["params"] for event in self.events if event["method"] == method]

    def requested(self):
        """The addresses of all that pages asked for over the network."""
        addresses = [event["request"]["url"] for event in self.messages("Network.requestWillBeSent")]
        return [address for address in addresses if not address.startswith(("data:", "blob:", "about:"))]

    def statuses(self, address):
        """Those of the answers to requests of ADDRESS, also of answers that the page did not get."""
        requests = {event["requestId"] for event in self.messages("Network.requestWillBeSent")
                    if event["request"]["url"] == address}
        return [event["statusCode"] for event in self.messages("Network.responseReceivedExtraInfo")
                if event["requestId"] in requests]

    def complaints(self):
        """Errors of scripts, and what the browser refused to do."""
        entries = [event["entry"]["text"] for event in self.messages("Log.entryAdded")
                   if event["entry"]["level"] == "error"]
        return entries + [event["exceptionDetails"]["text"]
                          for event in self.messages("Runtime.exceptionThrown")]

    def close(self):
        self.pipes.close()
        shutil.rmtree(self.directory, ignore_errors=True)
