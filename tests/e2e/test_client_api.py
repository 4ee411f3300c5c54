# SPDX-License-Identifier: GPL-3.0-or-later
"""The local API as another program uses it: every endpoint, both servers, and what they change."""
import asyncio
import json
import socket
import unittest

from client_api import STRANGER, ApiTest, receive, send
from description import Description
from harness import wait_for

NOT_ALLOWED = {"error": "This IP address is not allowed to connect. Please check the allowed IPs settings."}
NO_WEB_PAGES = {"error": "Requests from web pages are not allowed."}
ENDPOINTS = {
    ("GET", "/"), ("GET", "/swagger-ui"), ("GET", "/swagger-ui.css"), ("GET", "/swagger-ui-bundle.js"),
    ("GET", "/swagger-ui-standalone-preset.js"), ("GET", "/tallyvane-api-spec.json"),
    ("GET", "/tallyvane-api-spec.yaml"), ("GET", "/v1/account-totals"), ("GET", "/v1/realtime"),
    ("GET", "/v1/unzurged"), ("GET", "/v1/all-stats"), ("GET", "/v1/profiles"), ("POST", "/v1/zurge"),
    ("POST", "/v1/open-window"), ("POST", "/v1/profiles/activate")}


class Described(ApiTest):
    """Answers, held against the description that the client itself serves."""

    def setUp(self):
        super().setUp()
        self.process = self.start()
        self.description = Description(json.loads(self.client.ask("GET", "/tallyvane-api-spec.json")[2]))

    def expect(self, status, method, path, body=None, **options):
        """Asks, and returns what the body of the answer says."""
        answer = self.client.ask(method, path, body, **options)
        self.assertEqual(answer[0], status, (method, path, options))
        return self.description.check_answer(method, path, *answer)

    def test_every_endpoint(self):
        self.assertEqual(set(self.description.operations()), ENDPOINTS)
        for method, path in ENDPOINTS:
            body = {"profile_id": self.profile} if path.endswith("activate") else None
            self.expect(200, method, path, body)
            self.assertEqual(self.expect(401, method, path, body, source=STRANGER), NOT_ALLOWED)
            for headers in {"Host": "tallyvane.example"}, {"Origin": "https://tallyvane.example"}:
                self.assertEqual(self.expect(403, method, path, body, headers=headers), NO_WEB_PAGES)
            for origin in "null", "file://", f"http://127.0.0.1:{self.client.port}":
                self.expect(200, method, path, body, headers={"Origin": origin})
        for method, path in (("GET", "/v1/zurge"), ("GET", "/V1/realtime"), ("GET", "/v1/realtime/"),
                             ("POST", "/v1/realtime"), ("POST", "/"), ("GET", "/index.html")):
            self.assertEqual(self.client.ask(method, path)[0], 404, (method, path))
        self.assertEqual(self.client.ask("POST", "/v1/realtime")[2], b"")
        self.assertEqual(self.client.terminate(self.process), 0)

    def test_what_was_counted(self):
        self.keyboard.type(*"abcab")
        wait_for(lambda: self.expect(200, "GET", "/v1/unzurged")["keys"] == 5, "five keys")
        everything = self.expect(200, "GET", "/v1/all-stats")
        self.assertEqual(everything["unzurged"]["keys_formatted"], "5")
        self.assertEqual(everything["account-totals"]["ranks"]["rank_keys_formatted"], "0th")
        self.finish(self.process)

    def test_activating_a_profile(self):
        ways = {400: ["", "{}", "no json", "[]", '{"profile_id": "1"}', '{"profile_id": 1.5}',
                      '{"profile_id": 2147483648}'],
                404: ['{"profile_id": 999}', '{"profile_id": -1}']}
        for status, bodies in ways.items():
            for body in bodies:
                self.expect(status, "POST", "/v1/profiles/activate", body)
        for profile, text in (self.profile, "Profile 'gaming 'activated."), (0, "Default profile activated."):
            answer = self.expect(200, "POST", "/v1/profiles/activate", {"profile_id": profile})
            self.assertEqual(answer, {"msg": text})
            profiles = self.expect(200, "GET", "/v1/profiles")["profiles"]
            self.assertEqual([one["id"] for one in profiles if one["active"]], [profile])
        self.assertEqual(profiles[1]["created_at"], "2024-05-08T10:47:09.000")
        self.finish(self.process)

    def test_ipv6(self):
        if not socket.has_dualstack_ipv6():
            self.skipTest("there is no IPv6 here")
        self.assertEqual(self.client.ask("GET", "/v1/realtime", address="::1")[0], 200)
        self.finish(self.process)

    def test_asking_it_to_act(self):
        self.assertFalse(self.desktop.windows("^Tallyvane$"))
        self.expect(200, "POST", "/v1/open-window")
        self.desktop.main_window()
        self.client.wait_for_log("ClientApiResponder: Opening main window on the request of the Client API "
                                 "from IP: 127.0.0.1")
        self.expect(200, "POST", "/v1/zurge")
        self.client.wait_for_log("ClientApiResponder: Zurging on the request of the Client API from IP: "
                                 "127.0.0.1")
        self.finish(self.process)

    def test_updates_by_websocket(self):
        async def converse():
            async with self.client.connect() as plugin:
                await send(plugin, action="identify", source="unknown")
                await send(plugin, action="identify", identifier="Test")
                first, second = await receive(plugin), await receive(plugin)
                await send(plugin, action="open-window")
                self.desktop.main_window()
            return first, second

        for update in asyncio.run(converse()):
            self.assertEqual((list(update), update["action"]), (["action", "data"], "update-status"))
            self.description.check("AllStats", update["data"])
        self.assertEqual(self.client.terminate(self.process), 0)


class Profiles(ApiTest):
    def test_the_next_rows_carry_the_profile(self):
        process = self.start()

        def expect_rows(**keys):
            wait_for(lambda: self.client.keys_by_profile() == keys_by_id(keys), f"the keys {keys}")

        def keys_by_id(keys):
            return {0 if name == "general" else self.profile: count for name, count in keys.items()}

        async def choose(**name):
            async with self.client.connect() as plugin:
                await send(plugin, action="activate-profile", **name)
                return await receive(plugin)

        self.keyboard.type("a")
        expect_rows(general=1)
        self.client.ask("POST", "/v1/profiles/activate", {"profile_id": self.profile})
        self.keyboard.type("a", "b")
        expect_rows(general=1, gaming=2)
        self.assertEqual(asyncio.run(choose(profile_name="Gaming")), {"status": 404})
        self.assertEqual(asyncio.run(choose(profile_name="gaming")), {"status": 200})  # The active one: back to none.
        self.keyboard.type("a", "b", "c")
        expect_rows(general=4, gaming=2)
        self.assertEqual(asyncio.run(choose(profile_name="gaming")), {"status": 200})
        self.keyboard.type("a")
        expect_rows(general=4, gaming=3)
        self.assertEqual(asyncio.run(choose()), {"status": 400})
        self.assertEqual(self.client.terminate(process), 0)


if __name__ == "__main__":
    unittest.main()
