# SPDX-License-Identifier: GPL-3.0-or-later
"""The examples of docs/client-api.md, cut out of it and run as they stand there, but for the places that
are each user's own: ports and the data directory."""
import json
import os
import re
import subprocess
import sys
import threading
import unittest
from pathlib import Path

from browser import Browser
from client_api import ApiTest
from description import Description
from harness import PATIENCE, need, wait_for

DOCUMENT = Path(__file__).parents[2] / "docs" / "client-api.md"
BLOCKS = re.findall(r"^```(\w+)\n(.*?)^```$", DOCUMENT.read_text(), re.M | re.S)


class Examples(ApiTest):
    def setUp(self):
        super().setUp()
        self.environment = os.environ | {"no_proxy": "*"}

    def examples(self, language):
        return [self.adapted(text) for kind, text in BLOCKS if kind == language]

    def adapted(self, text):
        for place, own in (("~/.local/share/Tallyvane", self.client.data), (":3490/", f":{self.client.port}/"),
                           (":3489/", f":{self.client.websocket_port}/")):
            text = text.replace(place, str(own))
        return text

    def type_and_wait(self, count):
        self.keyboard.type(*count * "a")
        wait_for(lambda: json.loads(self.client.ask("GET", "/v1/unzurged")[2])["keys"] == count, f"{count} keys")

    def run_command(self, *command):
        result = subprocess.run(command, env=self.environment, capture_output=True, text=True,
                                timeout=PATIENCE)
        self.assertEqual(result.returncode, 0, result.stderr)
        return result.stdout

    def test_the_shell(self):
        need("curl", "sqlite3")
        self.client.configure(client_api_http_enable=0)
        switching_on, *_ = self.examples("sh")
        self.run_command("sh", "-ec", switching_on)
        process = self.start()
        description = Description(json.loads(self.client.ask("GET", "/tallyvane-api-spec.json")[2]))
        operations = description.operations()
        asked = set()
        for (kind, command), (following, told) in zip(BLOCKS, BLOCKS[1:]):
            if kind != "sh" or following != "json":
                continue
            path = re.search(r":3490(/\S+)", command)[1]
            method = "POST" if "--json" in command or "-X POST" in command else "GET"
            answer = json.loads(self.run_command("sh", "-ec", self.adapted(command)))
            told = json.loads(told)
            schema = operations[method, path]["responses"]["200"]["content"]["application/json"]["schema"]
            for body in answer, told:
                description.check_schema(schema, body)
            if "msg" in told:
                self.assertEqual(answer, told)
            self.assertEqual(list(answer), list(told))
            asked.add(path)
        self.assertEqual(asked, {path for _, path in operations if path.startswith("/v1/")} - {"/v1/all-stats"})
        self.finish(process)

    def test_python(self):
        process = self.start()
        self.type_and_wait(3)
        by_http, by_websocket = self.examples("python")
        self.assertRegex(self.run_command(sys.executable, "-c", by_http), r"^3 keys, \d+,\d\d per second\n$")

        with subprocess.Popen([sys.executable, "-c", by_websocket], env=self.environment,
                              stdout=subprocess.PIPE, text=True) as program:
            deadline = threading.Timer(PATIENCE, program.kill)
            deadline.start()
            self.addCleanup(deadline.cancel)
            self.assertEqual(program.stdout.readline(), "{'status': 200}\n")
            for _ in range(2):
                self.assertRegex(program.stdout.readline(), r"^\{.*'keys': '\d+,\d\d'.*\}\n$")
            program.terminate()
        self.assertEqual(self.client.query("SELECT name FROM profiles WHERE active"), [("gaming",)])
        self.finish(process)

    def test_javascript(self):
        browser = Browser(options=["--allow-file-access-from-files"])  # As a plug-in's page has it.
        self.addCleanup(browser.close)
        process = self.start()
        html, = self.examples("html")
        page = self.client.root / "keys.html"
        page.write_text(html)
        browser.open(page.as_uri())
        self.type_and_wait(3)
        browser.wait_for("document.getElementById('keys').value == '3'", "the count in the page")
        self.assertRegex(browser.evaluate("document.getElementById('rate').value"), r"^\d+,\d\d$")
        browser.click("#open")
        self.desktop.main_window()
        self.assertEqual(browser.complaints(), [])
        self.finish(process)


if __name__ == "__main__":
    unittest.main()
