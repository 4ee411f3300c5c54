# SPDX-License-Identifier: GPL-3.0-or-later
"""The client API, switched on and moved about in the settings, by the keyboard alone."""
import contextlib
import http.client
import socket
import unittest

from client_api import ApiTest, free_ports
from harness import TROUBLE, wait_for

STATUS = "400x40+50+120"  # Of the settings: what the API does now.


class Settings(ApiTest):
    def setUp(self):
        super().setUp()
        self.client.configure(client_api_http_enable=0)
        self.process = self.client.start_fully()
        self.desktop.skip_first_steps()
        self.client.wait_for_log("Creating device listener for /dev/input/event0")

    def open_settings(self):
        """Presses its keys until the main window has the focus and takes them."""
        wait_for(lambda: self.desktop.press("ctrl+comma") or self.desktop.windows("^Settings$"),
                 "the settings")
        self.window, = self.desktop.windows("^Settings$")
        self.desktop.run("xdotool", "windowactivate", "--sync", self.window)

    def press_and_look(self, *keys):
        """Presses KEYS and waits until the settings say something else."""
        before = self.desktop.picture(self.window, STATUS)
        self.desktop.press(*keys)
        wait_for(lambda: self.desktop.picture(self.window, STATUS) != before, f"an answer to {keys}")
        return self.desktop.picture(self.window, STATUS)

    def answers(self, port):
        self.client.port = port
        with contextlib.suppress(OSError, http.client.HTTPException):
            return self.client.ask("GET", "/v1/unzurged")[0] == 200
        return False

    def move_to(self, port):
        """Types another HTTP port."""
        return self.press_and_look("alt+h", "ctrl+a", *str(port), "Return")

    def test_by_the_keyboard(self):
        first, (second, taken) = self.client.port, free_ports(2)
        self.open_settings()
        off = self.desktop.picture(self.window, STATUS)
        on = self.press_and_look("alt+l")
        wait_for(lambda: self.answers(first), "an answer")
        self.move_to(second)
        wait_for(lambda: self.answers(second) and not self.answers(first), "an answer at another port")

        with contextlib.closing(socket.create_server(("0.0.0.0", taken))):
            refused = self.move_to(taken)
            self.assertNotIn(refused, (off, on))
            self.client.wait_for_log(f"ClientApiServer: TCP Server failed to listen on port {taken}")
            self.assertFalse(self.answers(second))
            self.keyboard.type("a", "b")
            wait_for(lambda: self.client.keys_by_profile() == {0: 2}, "two keys")
        self.press_and_look("alt+t")
        wait_for(lambda: self.answers(taken), "an answer once the port is free")

        self.desktop.press("alt+h", "ctrl+a", *str(second), "Escape")  # What was typed, counts.
        wait_for(lambda: not self.desktop.windows("^Settings$"), "the end of the settings")
        self.assertTrue(self.desktop.windows("^Tallyvane$"))
        wait_for(lambda: self.answers(second), "an answer at the port typed last")
        self.open_settings()
        self.press_and_look("alt+l")
        self.assertFalse(self.answers(second))
        self.assertEqual(self.client.terminate(self.process), 0)  # With the settings open.
        troubles = [line for line in self.client.log().splitlines() if f"port {taken}" not in line]
        self.assertNotRegex("\n".join(troubles), TROUBLE)
        self.assertEqual(self.client.query("SELECT value FROM settings WHERE name = 'client_api_http_port'"),
                         [(str(second),)])


if __name__ == "__main__":
    unittest.main()
