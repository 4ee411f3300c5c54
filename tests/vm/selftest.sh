#!/bin/bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Check evdev-vm itself: exit status, output, share, timeout, and (in the guest,
# guest/selftest.py) input devices, injection, hot-plug, X, Qt, packet sockets.
set -euo pipefail
cd "$(dirname "$0")"

needed=(python3-evdev xvfb xauth x11-utils)
if ! dpkg -s "${needed[@]}" >/dev/null 2>&1; then
    if [ "$(id -u)" != 0 ]; then
        echo "please install: ${needed[*]}" >&2
        exit 1
    fi
    DEBIAN_FRONTEND=noninteractive apt-get install -qy --no-install-recommends "${needed[@]}" >/dev/null
fi

share=$(mktemp -d)
trap 'rm -rf "$share"' EXIT
check() {
    if [ "$2" = "$3" ]; then echo "$1: OK"; else echo "$1: '$2' is not '$3'"; exit 1; fi
}

./evdev-vm -- true                      # first use downloads what it needs
start=$(date +%s%N)
# shellcheck disable=SC2016  # expanded in the guest
./evdev-vm --share "$share" -- sh -c 'cut -d" " -f1 /proc/uptime >"$1"' - "$share/up"
echo "whole run of an empty command: $((($(date +%s%N) - start) / 1000000)) ms," \
     "command started $(cat "$share/up") s after the kernel"

status=0
# shellcheck disable=SC2016  # expanded in the guest
./evdev-vm --share "$share" -- sh -c 'echo "$1"; echo err >&2; cp /proc/version "$2"; touch /usr/lost; exit 42' \
    - "a  b'c" "$share/version" >"$share/out" 2>"$share/err" || status=$?
check "exit status" $status 42
check "arguments, stdout" "$(cat "$share/out")" "a  b'c"
check "stderr" "$(cat "$share/err")" err
check "read-write share" "$(cut -d' ' -f1 "$share/version")" Linux
check "read-only root" "$(ls /usr/lost 2>/dev/null || true)" ""

status=0
./evdev-vm --timeout 6 -- sleep 60 2>/dev/null || status=$?
check "timeout" $status 124

check "udev" "$(./evdev-vm --udev -- stat -c %G /dev/input/event0)" input

./evdev-vm -- /usr/bin/python3 "$PWD/guest/selftest.py"
echo "selftest: OK"
