# SPDX-License-Identifier: GPL-3.0-or-later
"""The API's page in a browser, and pages of others, which must not reach the API."""
import contextlib
import http.server
import json
import os
import socket
import threading
import time
import unittest
from pathlib import Path

from browser import Browser
from client_api import ApiTest
from harness import wait_for

PICTURES = Path(os.environ["TALLYVANE_SCREENSHOTS"])
FOREIGN = "elsewhere.test"  # A web site that lies on this machine, so that a browser gets to it here.
CALL = "#operations-Profiles-activateProfile"
# Whether a page's script gets at a thing, and whether at a WebSocket.
FETCH = "fetch({address}, {options}).then(answer => 'answered ' + answer.status, () => 'kept away')"
CONNECT = ("new Promise(end => {{ const socket = new WebSocket({address});"
           "socket.onopen = () => end('connected'); socket.onerror = () => end('kept away'); }})")
# What the script of a frame comes to that keeps its page's origin from whom it asks.
FRAME = """new Promise(end => {
    onmessage = event => end(event.data);
    const frame = document.createElement('iframe');
    frame.sandbox = 'allow-scripts';
    frame.srcdoc = `<script>
        fetch('%(http)s/v1/zurge', {method: 'POST', mode: 'no-cors'}).finally(() => {
            const socket = new WebSocket('%(websocket)s');
            socket.onopen = () => socket.send('{"source": "plugin", "action": "zurge"}');
            socket.onclose = event => parent.postMessage(event.code, '*');
        });
    </` + `script>`;
    document.body.append(frame);
})"""


@contextlib.contextmanager
def web_site():
    """Serves an empty page; yields its port."""
    class Page(http.server.BaseHTTPRequestHandler):
        def do_GET(self):
            self.send_response(200)
            self.send_header("Content-Type", "text/html")
            self.end_headers()
            self.wfile.write(b"<!DOCTYPE html><title>Elsewhere</title>")

        def log_message(self, *_):
            pass

    with http.server.ThreadingHTTPServer(("127.0.0.1", 0), Page) as server:
        threading.Thread(target=server.serve_forever, daemon=True).start()
        yield server.server_address[1]
        server.shutdown()


class BrowserTest(ApiTest):
    def setUp(self):
        self.browser = Browser([FOREIGN])
        self.addCleanup(self.browser.close)
        super().setUp()
        self.process = self.start()
        self.address = f"http://127.0.0.1:{self.client.port}"
        self.websocket_address = f"ws://127.0.0.1:{self.client.websocket_port}/"


class OwnPage(BrowserTest):
    def take_pictures(self, name):
        for scheme in "light", "dark":
            self.browser.prefer(scheme)
            time.sleep(0.5)  # Colours change gently.
            self.browser.take_picture(PICTURES / f"client-api-{name}-{scheme}.png")

    def test_a_call_through_the_page(self):
        self.browser.open(self.address + "/")
        self.browser.wait_for("document.querySelectorAll('.opblock').length == 15", "the endpoints")
        self.take_pictures("page")
        self.browser.click(f"{CALL} .opblock-summary-control")
        self.browser.click(f"{CALL} .try-out__btn")
        self.type_body(json.dumps({"profile_id": self.profile}))
        self.browser.click(f"{CALL} .execute")
        self.browser.wait_for(f"!!document.querySelector('{CALL} .live-responses-table .microlight')",
                              "the answer")
        shown = self.browser.evaluate(
            f"document.querySelector('{CALL} .live-responses-table .response').innerText")
        for text in "200", '"msg": "Profile \'gaming \'activated."', "server: Tallyvane Client API":
            self.assertIn(text, shown)
        self.browser.evaluate(f"document.querySelector('{CALL} .responses-inner').scrollIntoView()")
        self.take_pictures("answer")
        self.client.wait_for_log(f"Activating profile: gaming with ID: {self.profile}")

        # It took nothing from elsewhere, and its policy let all of it be.
        self.assertEqual({address.startswith(self.address + "/") for address in self.browser.requested()},
                         {True})
        self.assertEqual(self.browser.complaints(), [])
        self.finish(self.process)

    def test_by_its_other_addresses(self):
        for host in ("localhost", "[::1]") if socket.has_dualstack_ipv6() else ("localhost",):
            address = f"http://{host}:{self.client.port}"
            self.browser.open(address)
            script = FETCH.format(address=json.dumps(address + "/v1/zurge"), options='{"method": "POST"}')
            self.assertEqual(self.browser.evaluate(script), "answered 200")
        self.finish(self.process)

    def type_body(self, text):
        """In the place of the one that the page proposes."""
        self.browser.click(f"{CALL} textarea")
        self.browser.evaluate(f"document.querySelector('{CALL} textarea').select()")
        self.browser.call("Input.insertText", text=text)


class PagesOfOthers(BrowserTest):
    def check(self, page):
        """That what the page's script asks is refused, by the server rather than by the browser alone."""
        self.browser.open(page)
        for path, options in (("/v1/all-stats", {}), ("/v1/zurge", {"method": "POST", "mode": "no-cors"})):
            address = self.address + path
            script = FETCH.format(address=json.dumps(address), options=json.dumps(options))
            # Of a refusal that its browser lets it have, a page learns the status 0.
            self.assertIn(self.browser.evaluate(script), ("kept away", "answered 0"))
            self.expect_refusal(address)
        script = CONNECT.format(address=json.dumps(self.websocket_address))
        self.assertEqual(self.browser.evaluate(script), "kept away")
        self.expect_nothing_done()

    def expect_nothing_done(self):
        for line in "Zurging on the request", "New connection from":
            self.assertNotIn(line, self.client.log())

    def expect_refusal(self, address):
        self.assertEqual(wait_for(lambda: self.browser.statuses(address), f"an answer of {address}"), [403])

    def test_a_web_site(self):
        with web_site() as port:
            self.check(f"http://{FOREIGN}:{port}/")

    def test_a_frame_that_hides_its_page(self):
        with web_site() as port:
            self.browser.open(f"http://{FOREIGN}:{port}/")
            script = FRAME % {"http": self.address, "websocket": self.websocket_address}
            self.assertEqual(self.browser.evaluate(script), 1008)
        self.client.wait_for_log("Refused a request of a web page from 127.0.0.1 (Host: "
                                 f"127.0.0.1:{self.client.port}, Origin: null)")
        self.client.wait_for_log("Refused a connection from the web page null")
        self.expect_nothing_done()

    def test_another_server_of_this_machine(self):
        with web_site() as port:
            self.check(f"http://127.0.0.1:{port}/")

    def test_a_name_that_was_made_to_lead_here(self):
        address = f"http://{FOREIGN}:{self.client.port}/v1/all-stats"
        self.browser.open(address)
        self.expect_refusal(address)
        self.assertNotIn("unzurged", self.browser.evaluate("document.documentElement.innerText"))


if __name__ == "__main__":
    unittest.main()
