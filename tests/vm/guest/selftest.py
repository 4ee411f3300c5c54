#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The part of selftest.sh that runs in the guest."""
import errno
import glob
import os
import select
import socket
import subprocess
import time

import evdev
from evdev import ecodes as e


def nodes():
    return set(glob.glob("/dev/input/event*"))


def wait(condition, what, seconds=20):
    end = time.monotonic() + seconds
    while not (result := condition()):
        assert time.monotonic() < end, f"timeout: {what}"
        time.sleep(0.02)
    return result


def device(name, among=nodes):
    """The open device whose name contains NAME."""
    def find():
        return next((d for d in map(evdev.InputDevice, sorted(among())) if name in d.name), None)
    return wait(find, name)


def read(dev, count, seconds=20):
    """The next COUNT key, relative or absolute events, as (type, code, value)."""
    got, end = [], time.monotonic() + seconds
    while len(got) < count:
        ready, _, _ = select.select([dev], [], [], max(0, end - time.monotonic()))
        assert ready, f"{dev.name}: only {got}"
        got += [(v.type, v.code, v.value) for v in dev.read()
                if v.type in (e.EV_KEY, e.EV_REL, e.EV_ABS)]
    return got


def gone(dev):
    try:
        dev.read_one()
    except OSError as error:
        return error.errno == errno.ENODEV
    return False


def inject(*request):
    return subprocess.run(["inject", *map(str, request)], check=True,
                          stdout=subprocess.PIPE, text=True).stdout


def expect(got, wanted):
    assert got == wanted, f"{got} != {wanted}"


def test_nodes():
    for path in sorted(nodes()):
        print(f"    {path}: {evdev.InputDevice(path).name}")
    assert len(nodes()) >= 3 and os.path.exists("/dev/uinput")


def test_uinput():
    before = nodes()
    capabilities = {e.EV_KEY: [e.KEY_A, e.BTN_LEFT], e.EV_REL: [e.REL_X, e.REL_Y, e.REL_WHEEL]}
    with evdev.UInput(capabilities, name="selftest") as out:
        node = device("selftest", lambda: nodes() - before)
        events = [(e.EV_KEY, e.KEY_A, 1), (e.EV_KEY, e.KEY_A, 0), (e.EV_KEY, e.BTN_LEFT, 1),
                  (e.EV_KEY, e.BTN_LEFT, 0), (e.EV_REL, e.REL_X, 7), (e.EV_REL, e.REL_WHEEL, -1)]
        for event in events:
            out.write(*event)
            out.syn()
        expect(read(node, len(events)), events)
    wait(lambda: nodes() == before, "the uinput node vanishes")


def test_ps2_keyboard():
    keyboard = device("AT Translated")
    inject("tap", "a", "shift+b")
    expect([(code, value) for _, code, value in read(keyboard, 6)],
           [(e.KEY_A, 1), (e.KEY_A, 0), (e.KEY_LEFTSHIFT, 1), (e.KEY_B, 1), (e.KEY_B, 0),
            (e.KEY_LEFTSHIFT, 0)])


def test_held_key():
    keyboard = device("AT Translated")
    inject("down", "x")
    expect([value for _, _, value in read(keyboard, 4)], [1, 2, 2, 2])
    inject("up", "x")


def test_ps2_mouse():
    mouse = device("Explorer Mouse")
    inject("move", 10, -5)
    expect(read(mouse, 2), [(e.EV_REL, e.REL_X, 10), (e.EV_REL, e.REL_Y, -5)])
    inject("pointer", "mouse")
    inject("tap", "btn:left", "btn:wheel-down")
    expect(read(mouse, 3), [(e.EV_KEY, e.BTN_LEFT, 1), (e.EV_KEY, e.BTN_LEFT, 0),
                            (e.EV_REL, e.REL_WHEEL, -1)])


def test_usb_tablet():
    tablet = device("Tablet")
    inject("to", 1000, 2000)
    expect(read(tablet, 2), [(e.EV_ABS, e.ABS_X, 1000), (e.EV_ABS, e.ABS_Y, 2000)])
    inject("pointer", "tablet")
    inject("tap", "btn:right")
    expect(read(tablet, 2), [(e.EV_KEY, e.BTN_RIGHT, 1), (e.EV_KEY, e.BTN_RIGHT, 0)])


def test_hotplug():
    before = nodes()
    inject("plug", "usb-mouse", "m1")
    mouse = device("USB Mouse", lambda: nodes() - before)
    inject("pointer", "HID Mouse")
    inject("move", 3, 4)
    expect(read(mouse, 2), [(e.EV_REL, e.REL_X, 3), (e.EV_REL, e.REL_Y, 4)])
    inject("unplug", "m1")
    wait(lambda: nodes() == before, "the USB mouse's node vanishes")
    wait(lambda: gone(mouse), "reading the unplugged mouse fails with ENODEV")


def test_bad_request():
    assert subprocess.run(["inject", "tap", "no-such-key"], stdout=subprocess.PIPE).returncode == 1
    assert "running" in inject("qmp", '{"execute": "query-status"}')


def test_packet_socket():
    with socket.socket(socket.AF_PACKET, socket.SOCK_RAW, socket.htons(3)) as packets:
        packets.bind(("lo", 0))
        packets.settimeout(20)
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as datagrams:
            datagrams.sendto(b"selftest", ("127.0.0.1", 9))
        assert b"selftest" in packets.recv(2048)


def output(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          text=True).stdout


def test_x_server():
    assert "version number" in output("xvfb-run", "-a", "xdpyinfo")


def test_qt():
    programs = glob.glob("/usr/lib/qt6/bin/qtdiag*")
    if not programs:
        return "skipped: no qtdiag of Qt 6"
    assert '"xcb"' in output("xvfb-run", "-a", "env", "QT_QPA_PLATFORM=xcb", programs[0])


for name, test in list(globals().items()):
    if name.startswith("test_"):
        start = time.monotonic()
        print(f"{name[5:]}: {test() or 'OK'} ({time.monotonic() - start:.1f} s)", flush=True)
