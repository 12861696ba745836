#!/usr/bin/env python3
"""A server of TACACS+ (RFC 8907) for recordings, where "open sesame" lets in, by ASCII (name and password asked for) and PAP.

usage: tacacs_server.py SECRET

Distributions have clients of TACACS+ and no server; what this one says is what a client accepts.
"""
import hashlib
import socketserver
import struct
import sys

SECRET = sys.argv[1].encode()
PASSWORD = b"open sesame"
START, PASS, FAIL, GETUSER, GETPASS = 1, 1, 2, 4, 5
ASCII = 1


def hidden(header, body):
    """The body under a pad of MD5 digests: session, secret, version, sequence, and the digest before."""
    version, _, sequence, _, session, _ = struct.unpack("!BBBBII", header)
    key = struct.pack("!I", session) + SECRET + bytes([version, sequence])
    pad = block = b""
    while len(pad) < len(body):
        block = hashlib.md5(key + block).digest()
        pad += block
    return bytes(a ^ b for a, b in zip(body, pad))


class Client(socketserver.BaseRequestHandler):
    def take(self, count):
        data = b""
        while len(data) < count:
            more = self.request.recv(count - len(data))
            if not more:
                raise EOFError
            data += more
        return data

    def handle(self):
        try:
            while True:
                header = self.take(12)
                self.answer(header, hidden(header, self.take(struct.unpack("!I", header[8:])[0])))
        except EOFError:
            pass

    def answer(self, header, body):
        sequence = header[2]
        if sequence == START:
            user, port, remote, size = body[4:8]
            if body[2] == ASCII:
                return self.say(header, GETUSER, b"Username: ")
            given = body[8 + user + port + remote:][:size]
        else:
            given = body[5:][:struct.unpack("!H", body[:2])[0]]
            if sequence == START + 2:
                return self.say(header, GETPASS, b"Password: ", no_echo=1)
        good = given == PASSWORD
        self.say(header, PASS if good else FAIL, b"Welcome" if good else b"Access not granted")

    def say(self, header, status, message, no_echo=0):
        body = struct.pack("!BBHH", status, no_echo, len(message), 0) + message
        header = header[:2] + bytes([header[2] + 1]) + header[3:8] + struct.pack("!I", len(body))
        self.request.sendall(header + hidden(header, body))


socketserver.TCPServer.allow_reuse_address = True
socketserver.ThreadingTCPServer(("", 49), Client).serve_forever()
