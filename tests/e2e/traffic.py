# SPDX-License-Identifier: GPL-3.0-or-later
"""One end of known traffic, run as a program of its own by the tests of the network.

  traffic.py serve (tcp|udp) ADDRESS PORT ...       answers the callers
  traffic.py call TASK ...                          does the tasks in turn
      tcp,ADDRESS,PORT,UP,DOWN[,SOURCE-PORT]        sends UP bytes, then receives DOWN bytes
      udp,ADDRESS,PORT,SIZE,COUNT,ANSWER-SIZE       COUNT datagrams, each of which is answered
      listen,ADDRESS,PORT                           lets one caller in and answers it

"ready" is printed when callers may come, "done" when every task is over. All sockets stay open until
standard input ends: so long their owner can be told.
"""
import socket
import struct
import sys
import threading
import time

TCP_HEADER = struct.Struct("!QQ")
UDP_HEADER = struct.Struct("!H")
PATIENCE = 60
# So many datagrams may be on their way at once: fewer than any buffer here holds.
WINDOW = 20


def open_socket(kind, address):
    family = socket.AF_INET6 if ":" in address else socket.AF_INET
    opened = socket.socket(family, kind)
    opened.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
    opened.settimeout(PATIENCE)
    return opened


def receive(peer, count):
    parts = bytearray()
    while len(parts) < count:
        part = peer.recv(min(count - len(parts), 1 << 16))
        if not part:
            raise ConnectionError("the peer hung up")
        parts += part
    return bytes(parts)


def answer_tcp(peer):
    up, down = TCP_HEADER.unpack(receive(peer, TCP_HEADER.size))
    receive(peer, up - TCP_HEADER.size)
    peer.sendall(bytes(down))
    return peer


def serve_tcp(listener):
    while True:
        try:
            peer, _ = listener.accept()
        except TimeoutError:
            continue
        threading.Thread(target=lambda: answer_tcp(peer).recv(1), daemon=True).start()


def serve_udp(server):
    while True:
        try:
            datagram, peer = server.recvfrom(1 << 16)
        except TimeoutError:
            continue
        server.sendto(bytes(UDP_HEADER.unpack_from(datagram)[0]), peer)


def serve(arguments):
    for kind, address, port in zip(*[iter(arguments)] * 3):
        tcp = kind == "tcp"
        server = open_socket(socket.SOCK_STREAM if tcp else socket.SOCK_DGRAM, address)
        server.bind((address, int(port)))
        if tcp:
            server.listen()
        threading.Thread(target=serve_tcp if tcp else serve_udp, args=[server], daemon=True).start()


def call_tcp(address, port, up, down, source_port=None):
    peer = open_socket(socket.SOCK_STREAM, address)
    if source_port:
        peer.bind(("", int(source_port)))
    peer.connect((address, int(port)))
    peer.sendall(TCP_HEADER.pack(int(up), int(down)) + bytes(int(up) - TCP_HEADER.size))
    receive(peer, int(down))
    return peer


def call_udp(address, port, size, count, answer_size):
    peer = open_socket(socket.SOCK_DGRAM, address)
    peer.connect((address, int(port)))
    datagram = UDP_HEADER.pack(int(answer_size)).ljust(int(size), b"\0")
    for begin in range(0, int(count), WINDOW):
        window = min(WINDOW, int(count) - begin)
        for _ in range(window):
            peer.send(datagram)
        for _ in range(window):
            peer.recv(1 << 16)
        time.sleep(0.001)
    return peer


def call_listen(address, port):
    listener = open_socket(socket.SOCK_STREAM, address)
    listener.bind((address, int(port)))
    listener.listen()
    print("ready", flush=True)
    return listener, answer_tcp(listener.accept()[0])


def call(arguments):
    calls = {"tcp": call_tcp, "udp": call_udp, "listen": call_listen}
    still_open = []
    for task in arguments:
        kind, *rest = task.split(",")
        still_open.append(calls[kind](*rest))
    print("done", flush=True)
    return still_open


def main():
    if sys.argv[1] == "serve":
        still_open = serve(sys.argv[2:])
        print("ready", flush=True)
    else:
        still_open = call(sys.argv[2:])
    sys.stdin.read()
    return still_open


if __name__ == "__main__":
    main()
