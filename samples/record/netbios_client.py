#!/usr/bin/env python3
"""Sends the NetBIOS messages that Samba's own programs do not send when they are asked for nothing special.

usage: netbios_client.py OWN-ADDRESS SERVER

To the name server: a name registered, refreshed, claimed for another host (which makes the server ask for time),
queried in a scope, released, and demanded in error. To the datagram service: a direct unique datagram, a query and
an error. To the session service: keep-alives, calls for names that cannot be, a request in two segments, two messages
in one.
"""
import socket
import struct
import sys
import time


def encode(name, suffix, scope=""):
    octets = name.encode().ljust(15) + bytes([suffix])
    labels = [bytes(0x41 + half for octet in octets for half in (octet >> 4, octet & 15)), *scope.encode().split(b".")]
    return b"".join(bytes([len(label)]) + label for label in labels if label) + b"\0"


def use_names(own, server):
    s = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    s.settimeout(4)
    address = socket.inet_aton(own)

    def send(identifier, flags, name, suffix, claim=None, scope="", records=b"\0\1", kind=0x20):
        question = encode(name, suffix, scope) + struct.pack(">HH", kind, 1)
        message = struct.pack(">HHHHHH", identifier, flags, 1, 0, 0, 1 if claim else 0) + question
        if claim:
            message += struct.pack(">HHHIHH", 0xC00C, 0x20, 1, 300000, 6, 0x6000) + claim
        s.sendto(message, (server, 137))

    def receive(count=1):
        try:
            for _ in range(count):
                s.recv(1000)
        except (TimeoutError, socket.timeout):
            pass

    send(1, 0x2900, "QXGHOST", 0x00, address)                       # registration
    receive()
    send(2, 0x4100, "QXGHOST", 0x00, address)                       # refresh
    receive()
    send(3, 0x2900, "QXGHOST", 0x00, socket.inet_aton("192.0.2.77"))
    receive(2)                                                      # wait, then the answer
    send(4, 0x0100, "QXGHOST", 0x00)
    receive()
    send(5, 0x0100, "QXGHOST", 0x00, scope="EXAMPLE.TEST")
    receive()
    send(6, 0x3100, "QXGHOST", 0x00, address)                       # release by a host that has lost it
    receive()
    send(7, 0x2900, "QXSERVER", 0x20, address)                      # the server's own name
    receive()


def use_datagrams(own, server):
    s = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    names = encode("QXCLIENT", 0x00) + encode("QXSERVER", 0x20)
    # Names are answered where datagrams are sent from: the port of the header is what counts.
    head = struct.pack(">BBH4sH", 0x10, 0x02, 77, socket.inet_aton(own), 138)
    s.sendto(head + struct.pack(">HH", len(names) + 5, 0) + names + b"Hello", (server, 138))
    query = struct.pack(">BBH4sH", 0x14, 0x02, 78, socket.inet_aton(own), 138)
    s.sendto(query + encode("QXSERVER", 0x20), (server, 138))
    s.sendto(struct.pack(">BBH4sHB", 0x13, 0x02, 79, socket.inet_aton(own), 138, 0x82), (server, 138))


def use_sessions(server):
    def call(*segments):
        with socket.create_connection((server, 139), timeout=2) as s:
            s.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
            try:
                for segment in segments:
                    s.sendall(segment)
                    time.sleep(0.1)
                s.recv(4000)
                time.sleep(0.1)
            except OSError:
                pass

    def message(kind, body=b""):
        return struct.pack(">BBH", kind, len(body) >> 16, len(body) & 0xFFFF) + body

    negotiate = struct.pack("<4sBIBHH8sHHHHH", b"\xffSMB", 0x72, 0, 0x18, 0xC001, 0, b"", 0, 0, 4711, 0, 1)
    names = b"".join(b"\x02" + name + b"\0" for name in (b"PC NETWORK PROGRAM 1.0", b"NT LM 0.12"))
    negotiate = message(0, negotiate + struct.pack("<BH", 0, len(names)) + names)
    asked = message(0x81, encode("QXSERVER", 0x20) + encode("QXCLIENT", 0x00))
    call(asked, message(0x85), negotiate[:20], negotiate[20:50], negotiate[50:] + message(0x85))
    call(message(0x81, encode("NOBODY", 0x20) + encode("QXCLIENT", 0x00)), message(0x85) + negotiate)
    call(message(0x81, b"\x20" + b"x" * 40), message(0x87))
    call(message(0x84, b"\xC0\0\2\2\0\x8B"))


def main():
    use_names(*sys.argv[1:3])
    use_datagrams(*sys.argv[1:3])
    use_sessions(sys.argv[2])


if __name__ == "__main__":
    main()
