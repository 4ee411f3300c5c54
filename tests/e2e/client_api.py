# SPDX-License-Identifier: GPL-3.0-or-later
"""A client whose API is switched on, at ports of its own, and programs that ask it."""
import asyncio
import contextlib
import http.client
import json
import socket
import unittest

from harness import PATIENCE, TROUBLE, Client, DesktopTest

try:
    import websockets
except ImportError as error:
    raise unittest.SkipTest(f"python3-websockets is not installed: {error}") from error

STRANGER = "127.0.0.2"  # An address of this machine that is not on the list of those allowed.


def free_ports(count):
    """So many ports that nothing listens on."""
    with contextlib.ExitStack() as stack:
        sockets = [stack.enter_context(socket.socket(socket.AF_INET6)) for _ in range(count)]
        for one in sockets:
            one.bind(("::", 0))
        return [one.getsockname()[1] for one in sockets]


class ApiClient(Client):
    """Writes its settings into the database of a first start, which ends before they are read."""

    def __init__(self, desktop):
        super().__init__(desktop)
        self.port, self.websocket_port = free_ports(2)
        process = self.start_fully("--closedwindow")
        if self.terminate(process) != 0:
            raise AssertionError("the first start did not end well")
        self.configure(client_api_http_enable=1, client_api_http_port=self.port,
                       client_api_websocket_port=self.websocket_port)

    def start_api(self, *arguments, **options):
        """Starts the client and waits until its API answers."""
        line = f"ClientApiServer: Running on ws://127.0.0.1:{self.websocket_port}/"
        before = self.log().count(line)
        process = self.start_fully(*arguments, **options)
        self.wait_for_log(line, before + 1)
        return process

    def add_profile(self, name):
        """While the client does not run; returns the profile's id."""
        self.execute(f"INSERT INTO profiles (name, created_at) VALUES ('{name}', '2024-05-08 10:47:09')")
        return self.query("SELECT id FROM profiles WHERE name = ?", name)[0][0]

    def ask(self, method, path, body=None, headers=None, address="127.0.0.1", source=None):
        """Sends one request, from the address SOURCE; returns status, headers and body of the answer."""
        connection = http.client.HTTPConnection(address, self.port, timeout=PATIENCE,
                                                source_address=source and (source, 0))
        with contextlib.closing(connection):
            data = body if body is None or isinstance(body, (bytes, str)) else json.dumps(body)
            connection.request(method, path, data, headers or {})
            answer = connection.getresponse()
            return answer.status, answer.headers, answer.read()

    @contextlib.asynccontextmanager
    async def connect(self):
        """A WebSocket."""
        async with websockets.connect(f"ws://127.0.0.1:{self.websocket_port}/",
                                      open_timeout=PATIENCE) as socket_:
            yield socket_


async def send(socket_, **message):
    await socket_.send(json.dumps({"source": "plugin"} | message))


async def receive(socket_):
    return json.loads(await asyncio.wait_for(socket_.recv(), PATIENCE))


class ApiTest(DesktopTest):
    """A test with a client that was started once, and has its API switched on for the next start."""

    def setUp(self):
        self.client = ApiClient(self.desktop)
        self.addCleanup(self.client.close)
        self.keyboard = self.client.device()

    def start(self):
        """With the profile "gaming", and once it listens to the keyboard."""
        self.profile = self.client.add_profile("gaming")
        process = self.client.start_api("--closedwindow")
        self.client.wait_for_log("Creating device listener for /dev/input/event0")
        return process

    def finish(self, process):
        self.assertEqual(self.client.terminate(process), 0)
        self.assertNotRegex(self.client.log(), TROUBLE)
