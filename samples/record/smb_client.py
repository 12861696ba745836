#!/usr/bin/env python3
"""A small SMB client for recordings: it sends what no client of today sends any more.

usage: smb_client.py SERVER

It asks a server that takes guests for the share "files" (and "printer", "IPC$"), first in NT LM 0.12 with Unicode names
and NT status codes, then with OEM names and DOS errors, then as a client of LANMAN 1.0 and of the core protocol.
Answers are read for what the next request needs of them (TID, UID, FID) and otherwise let be: refusals are as welcome
as successes.
"""
import socket
import struct
import sys
import time

ANDX = {0x24, 0x2D, 0x2E, 0x2F, 0x73, 0x74, 0x75, 0xA2}
NT1 = ["PC NETWORK PROGRAM 1.0", "MICROSOFT NETWORKS 1.03", "LANMAN1.0", "LM1.2X002", "NT LM 0.12"]


class Session:
    """One connection, and the numbers that the server gave it."""

    def __init__(self, server, dialects, unicode_names, nt_status=True):
        self.socket = socket.create_connection((server, 445), timeout=3)
        self.socket.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        self.unicode_names = unicode_names
        self.flags2 = 0x0001 | (0x8000 if unicode_names else 0) | (0x4000 if nt_status else 0)
        self.tid = self.uid = self.fid = self.mid = 0
        self.server = server
        self.ask(0x72, b"", b"".join(b"\x02" + name.encode() + b"\0" for name in dialects))

    def send_message(self, message):
        self.socket.sendall(struct.pack(">I", len(message)) + message)

    def receive_message(self):
        def take(count):
            taken = b""
            while len(taken) < count:
                part = self.socket.recv(count - len(taken))
                if not part:
                    raise ConnectionError("the server hung up")
                taken += part
            return taken
        return take(struct.unpack(">I", take(4))[0] & 0x1FFFF)

    def head(self, command):
        self.mid += 1
        return struct.pack("<4sBIBHH8sHHHHH", b"\xffSMB", command, 0, 0x18, self.flags2, 0, b"", 0, self.tid, 4711,
                           self.uid, self.mid)

    def text(self, text, at=0):
        """A terminated name; `at` is the parity of its place, for the pad octet of Unicode names."""
        if not self.unicode_names:
            return text.encode("cp850") + b"\0"
        return b"\0" * (at & 1) + (text + "\0").encode("utf-16-le")

    def ask(self, command, words=b"", data=b"", *chain, answer=True):
        """Sends a message, further (command, words, data) chained behind it; gives the words and data of the answer."""
        blocks = [(command, words, data), *chain]
        message = self.head(command)
        for place, (this, words, data) in enumerate(blocks):
            if callable(data):   # names whose pad octets depend on where they stand
                data = data(len(message) + 1 + len(words) + (4 if this in ANDX else 0) + 2)
            end = len(message) + 1 + len(words) + (4 if this in ANDX else 0) + 2 + len(data)
            if this in ANDX:
                following = blocks[place + 1][0] if place + 1 < len(blocks) else 0xFF
                words = struct.pack("<BBH", following, 0, 0 if following == 0xFF else end) + words
            message += struct.pack("<B", len(words) // 2) + words + struct.pack("<H", len(data)) + data
        self.send_message(message)
        return self.answer() if answer else None

    def answer(self):
        try:
            reply = self.receive_message()
        except (TimeoutError, socket.timeout):
            return b"", b""
        if len(reply) < 33 or reply[:4] != b"\xffSMB":
            return b"", reply
        if reply[4] == 0x24 and not reply[9] & 0x80:   # the server wants an oplock back
            self.ask(0x24, struct.pack("<HBBIHH", struct.unpack_from("<H", reply, 37)[0], 2, 0, 0, 0, 0), answer=False)
            return self.answer()
        self.tid = struct.unpack_from("<H", reply, 24)[0] or self.tid
        self.uid = struct.unpack_from("<H", reply, 28)[0] or self.uid
        count = 2 * reply[32]
        return reply[33:33 + count], reply[35 + count:]

    def log_on(self, share):
        """Session setup as nobody the server knows, with the tree connect in the same message."""
        names = self.text("bob") + self.text("QXGROUP") + self.text("A system") + self.text("A client")
        setup = struct.pack("<HHHIHHII", 16644, 10, 1, 0, 1, 0, 0, 0x5C if self.unicode_names else 0x58)
        self.ask(0x73, setup, b"\0" + names, self.connection(share))

    def connection(self, share):
        path = f"\\\\{self.server}\\{share}".upper()
        return 0x75, struct.pack("<HH", 8, 1), lambda at: b"\0" + self.text(path, at + 1) + b"?????\0"

    def connect(self, share):
        self.ask(*self.connection(share))

    def path(self, command, words, *names):
        """A request of the core protocol: names that are each told by a format octet."""
        data = b""
        for name in names:
            data += b"\x04"
            data += self.text(name, len(data) + 1)
        return self.ask(command, words, data)

    def open(self, name, access=0x42):
        words, _ = self.path(0x02, struct.pack("<HH", access, 0x16), name)
        self.fid = struct.unpack_from("<H", words)[0] if len(words) >= 2 else 0
        return self.fid

    def create(self, name, access=0x2019F, options=0x40, disposition=3):
        name = self.text(name)
        words = struct.pack("<BHIIIQIIIIIB", 0, len(name), 0x10, 0, access, 0, 0x80, 7, disposition, options, 2, 3)
        words, _ = self.ask(0xA2, words, b"\0" * self.unicode_names + name)
        self.fid = struct.unpack_from("<H", words, 5)[0] if len(words) >= 7 else 0
        return self.fid

    def transact(self, command, setup, parameters=b"", data=b"", name=None, most=(64, 4000), split=0, answer=True):
        """Trans and Trans2; `split` bytes of the data are left to a secondary request."""
        lead = self.text(name, 1) if name is not None else b"\0"
        at = 32 + 1 + 28 + len(setup) + 2 + len(lead)
        pad = -at % 4
        after = -(at + pad + len(parameters)) % 4
        sent = len(data) - split
        first = at + pad
        second = first + len(parameters) + after
        words = struct.pack("<HHHHBBHIHHHHHBB", len(parameters), len(data), *most, 0, 0, 0, 0, 0, len(parameters),
                            first, sent, second, len(setup) // 2, 0) + setup
        reply = self.ask(command, words, lead + b"\0" * pad + parameters + b"\0" * after + data[:sent],
                         answer=answer and not split)
        if split:
            self.answer()   # the interim one
            self.mid -= 1
            words = struct.pack("<HHHHHHHH", len(parameters), len(data), 0, 0, 0, split, 32 + 1 + 18 + 2 + 1, sent)
            words += struct.pack("<H", self.fid) if command == 0x32 else b""
            reply = self.ask(command + 1, words, b"\0" + data[sent:])
        return reply

    def trans2(self, subcommand, parameters, data=b"", **more):
        return self.transact(0x32, struct.pack("<H", subcommand), parameters, data, **more)

    def remote(self, call, parameters, **more):
        """A call of remote administration."""
        parameters = struct.pack("<H", call) + parameters
        return self.transact(0x25, b"", parameters, name="\\PIPE\\LANMAN", most=(8, 1000), **more)

    def nt_trans(self, function, setup=b"", parameters=b"", data=b"", answer=True, split=0):
        at = 32 + 1 + 38 + len(setup) + 2
        pad = -at % 4
        after = -(at + pad + len(parameters)) % 4
        first = at + pad
        second = first + len(parameters) + after
        sent = len(data) - split
        words = struct.pack("<BHIIIIIIIIBH", 4, 0, len(parameters), len(data), 64, 4000, len(parameters), first, sent,
                            second, len(setup) // 2, function) + setup
        reply = self.ask(0xA0, words, b"\0" * pad + parameters + b"\0" * after + data[:sent],
                         answer=answer and not split)
        if split:
            self.answer()
            self.mid -= 1
            words = b"\0\0\0" + struct.pack("<IIIIIIIIB", len(parameters), len(data), 0, 0, 0, split,
                                            32 + 1 + 36 + 2 + 1, sent, 0)
            reply = self.ask(0xA1, words, b"\0" + data[sent:])
        return reply


def use_core_commands(s):
    """Every command of the core protocol and of the first extensions that a server may still know."""
    s.path(0x00, b"", "old")                                           # create directory
    s.path(0x10, b"", "old")                                           # check directory
    s.path(0x01, b"", "old")
    words, _ = s.path(0x03, struct.pack("<HI", 0x20, 1767323045), "core.txt")   # create
    s.fid = struct.unpack("<H", words)[0] if words else 0
    fid = struct.pack("<H", s.fid)
    s.ask(0x0B, fid + struct.pack("<HIH", 12, 0, 12), b"\x01" + struct.pack("<H", 12) + b"Hello world.")
    s.ask(0x05, fid)
    s.ask(0x0A, fid + struct.pack("<HIH", 5, 6, 5))
    s.ask(0x12, fid + struct.pack("<Hi", 2, -3))
    s.ask(0x0C, fid + struct.pack("<II", 4, 2))
    s.ask(0x0D, fid + struct.pack("<II", 4, 2))
    s.ask(0x13, fid + struct.pack("<HIH", 4, 0, 4))                    # lock and read
    s.ask(0x14, fid + struct.pack("<HIH", 4, 0, 4), b"\x01" + struct.pack("<H", 4) + b"help")
    s.ask(0x2C, fid + struct.pack("<HII", 2, 10, 0), b"\0so")          # write and close
    s.path(0x08, b"", "core.txt")
    s.path(0x09, struct.pack("<HI", 0x20, 1767323045) + b"\0" * 10, "core.txt")
    fid = struct.pack("<H", s.open("core.txt"))
    s.ask(0x23, fid)
    s.ask(0x22, fid + struct.pack("<HHHHHH", 0x5C22, 0x1862, 0x5C22, 0x1862, 0x5C22, 0x1862))
    s.ask(0x1A, fid + struct.pack("<IHHIH", 0, 64, 0, 0, 0))           # read raw: the bytes alone
    words, _ = s.ask(0x1D, fid + struct.pack("<HHIIHIHH", 8, 0, 0, 0, 1, 0, 0, 59))   # write raw
    if len(words) == 2:
        s.send_message(b"Good day")
        s.answer()
    s.ask(0x1B, fid + struct.pack("<IHHIH", 0, 64, 0, 0, 0))
    s.ask(0x1E, fid + struct.pack("<HHIIHIHH", 4, 0, 0, 0, 1, 1, 4, 59), b"four")
    s.ask(0x27, fid + struct.pack("<HHHHHHIHHHHHH", 0x53, 0x60, 0, 32, 0, 32, 0, 0, 0, 0, 0, 0, 0))
    s.ask(0x24, fid + struct.pack("<BBIHH", 0, 0, 0, 1, 1), struct.pack("<HII", 4711, 0, 4) * 2)
    s.ask(0x2E, fid + struct.pack("<IHHIH", 0, 64, 0, 0, 0))
    s.ask(0x2F, fid + struct.pack("<IIHHHHH", 0, 0, 0, 0, 0, 2, 59), b"OK")
    s.ask(0x2F, fid + struct.pack("<IIHHHHHI", 1, 0, 0, 0, 0, 3, 64, 0), b"\0end")
    s.ask(0x04, fid + struct.pack("<I", 1767323045))
    s.path(0x0E, struct.pack("<HI", 0x20, 0), "")                      # create temporary
    s.path(0x0F, struct.pack("<HI", 0x22, 0), "core.txt")              # make new: it is there already
    name = s.text("core.txt")
    opened = struct.pack("<HHHHIHIII", 7, 0x42, 0x16, 0x20, 0, 0x11, 0, 0, 0)
    reading = (0x2E, struct.pack("<HIHHIH", 0, 0, 16, 0, 0, 0), b"")
    words, _ = s.ask(0x2D, opened, b"\0" * s.unicode_names + name, reading)
    s.open("core.txt")                                                 # has the server take the oplock back
    for fid in (struct.pack("<H", s.fid), words[4:6]):
        s.ask(0x04, fid + b"\xFF" * 4)
    s.path(0x29, struct.pack("<HHH", s.tid, 0x11, 1), "core.txt", "copy.txt")    # copy
    s.path(0x2A, struct.pack("<HHH", s.tid, 0x11, 1), "core.txt", "moved.txt")   # move
    s.path(0x07, struct.pack("<H", 0x16), "core.txt", "renamed.txt")
    s.path(0xA5, struct.pack("<HHI", 0x16, 0x103, 0), "renamed.txt", "linked.txt")
    s.path(0x06, struct.pack("<H", 0x16), "linked.txt")
    s.ask(0x80)
    search(s)
    s.ask(0x2B, struct.pack("<H", 2), b"Echo")
    s.answer()
    s.ask(0x11)
    s.path(0x70, b"", f"\\\\{s.server}\\FILES", "", "?????")           # tree connect
    s.ask(0x71)


def search(s):
    """The four requests of searching before there was Trans2, with their resume keys."""
    for command in (0x81, 0x82, 0x83):
        lead = b"\x04" + s.text("*.*", 2)
        _, data = s.ask(command, struct.pack("<HH", 2, 0x16), lead + b"\x05\0\0")
        if command != 0x83 and len(data) >= 3 + 43:
            key = b"\x05" + struct.pack("<H", 21) + data[3:24]
            _, data = s.ask(command, struct.pack("<HH", 2, 0x16), b"\x04" + s.text("", 2) + key)
    s.ask(0x84, struct.pack("<HH", 1, 0x16), b"\x04" + s.text("", 2) + b"\x05" + struct.pack("<H", 21) + b"\0" * 21)


def use_transactions(s):
    """The levels of Trans2, asked one after the other."""
    root = s.text("\\*")
    for level in (1, 2, 3, 0x101, 0x102, 0x103, 0x104, 0x105, 0x106, 0x202):
        eas = struct.pack("<I", 4) if level == 3 else b""
        words, data = s.trans2(1, struct.pack("<HHHHI", 0x16, 2, 4, level, 0) + root, eas)
        if level in (1, 0x104) and len(words) >= 20:
            offset = struct.unpack_from("<H", words, 8)[0] - 32 - 3 - len(words)
            handle = struct.unpack_from("<H", data, offset)[0]
            s.trans2(2, struct.pack("<HHHIH", handle, 2, level, 0, 0x0A) + s.text("hello.txt"))
            s.ask(0x34, struct.pack("<H", handle))
            s.ask(0x35, struct.pack("<H", handle))
    for level in (1, 2, 0x100, 0x101, 0x102, 0x103, 0x104, 0x105, 0x200, 0x3EF):
        s.trans2(3, struct.pack("<H", level))
    levels = (1, 2, 3, 4, 6, 0x101, 0x102, 0x103, 0x104, 0x106, 0x107, 0x108, 0x109, 0x10B, 0x200, 0x201, 1004, 1005,
              1006, 1007, 1008, 1009, 1016, 1017, 1018, 1021, 1022, 1028, 1034, 1035)
    for level in levels:
        eas = struct.pack("<I", 4) if level == 3 else b""
        s.trans2(5, struct.pack("<HI", level, 0) + s.text("hello.txt"), eas)
    s.create("levels.txt", disposition=5)
    for level in (0x101, 0x102, 0x107, 1004, 1014):
        s.trans2(7, struct.pack("<HH", s.fid, level))
    set_levels(s)
    s.trans2(0x0E, struct.pack("<HH", 0, 1) + s.text("nowhere"))
    s.trans2(0x0D, struct.pack("<I", 0) + s.text("made"), struct.pack("<I", 4))
    s.trans2(0, struct.pack("<HHHHIHI", 0, 0x42, 0x16, 0x20, 0, 0x11, 0) + b"\0" * 10 + s.text("opened.txt"),
             struct.pack("<I", 4))
    s.trans2(0x0B, struct.pack("<HHH", 0, 1, 1) + b"\0" * 4 + s.text("folder"))


def set_levels(s):
    tick = 133800000000000000
    levels = [(1, struct.pack("<HHHHHHIIH", 0x5C22, 0x1862, 0x5C22, 0x1862, 0x5C22, 0x1862, 0, 0, 0x20)),
              (2, struct.pack("<IBBH", 16, 0, 4, 3) + b"note\0new"),
              (0x101, struct.pack("<QQQQII", *[tick] * 4, 0x80, 0)),
              (0x102, b"\0"), (0x103, struct.pack("<Q", 64)), (0x104, struct.pack("<Q", 20)),
              (1004, struct.pack("<QQQQII", 0, 0, tick, 0, 0x20, 0)), (1019, struct.pack("<Q", 64)),
              (1020, struct.pack("<Q", 10)), (0x200, struct.pack("<QQQQQQQIQQQQQ", 10, *[2**64 - 1] * 6, 2**32 - 1,
                                                               *[2**64 - 1] * 4, 0o100644))]
    for level, data in levels:
        s.trans2(8, struct.pack("<HHH", s.fid, level, 0), data)
    name = "again.txt".encode("utf-16-le")
    s.trans2(8, struct.pack("<HHH", s.fid, 1010, 0), struct.pack("<III", 1, 0, len(name)) + name)
    s.trans2(8, struct.pack("<HHH", s.fid, 1013, 0), b"\x01", split=1)
    s.trans2(6, struct.pack("<HI", 1004, 0) + s.text("hello.txt"), levels[6][1])
    s.ask(0x04, struct.pack("<HI", s.fid, 0))


def use_nt_commands(s):
    """Locks, NT transactions, notifications and pipes."""
    s.create("locked.txt", disposition=5)
    fid = struct.pack("<H", s.fid)
    s.ask(0x24, fid + struct.pack("<BBIHH", 0x10, 0, 100, 0, 2), struct.pack("<HHIIII", 4711, 0, 0, 0, 0, 10) +
          struct.pack("<HHIIII", 4711, 0, 1, 0, 0, 10))
    s.ask(0x24, fid + struct.pack("<BBIHH", 0x10, 0, 100, 2, 0), struct.pack("<HHIIII", 4711, 0, 0, 0, 0, 10) +
          struct.pack("<HHIIII", 4711, 0, 1, 0, 0, 10))
    s.ask(0x24, fid + struct.pack("<BBIHH", 0x11, 0, 0, 0, 1), struct.pack("<HHIIII", 4711, 0, 0, 5, 0, 1))
    s.nt_trans(6, b"", fid + b"\0\0" + struct.pack("<I", 7))           # query security descriptor
    descriptor = bytes.fromhex("0100048000000000000000000000000014000000 0200300002000000"
                               "00001400ff011f0001010000000000010000 0000 00001400 89001200 0101000000000005 07000000")
    s.nt_trans(3, b"", fid + b"\0\0" + struct.pack("<I", 4), descriptor, split=16)
    s.nt_trans(2, struct.pack("<IHBB", 0x900C4, s.fid, 1, 0), b"", b"")           # get object identifier
    s.nt_trans(2, struct.pack("<IHBB", 0x144064, s.fid, 1, 0), b"", b"")          # shadow copies
    s.nt_trans(5, b"", fid + b"\0\0")                                  # rename
    s.nt_trans(7, b"", fid + struct.pack("<BBII", 0, 1, 0, 0))         # quota
    name = s.text("by transaction.txt")[:-2]
    creation = struct.pack("<IIIQIIIIIIIIB", 0x10, 0, 0x2019F, 0, 0x80, 7, 3, 0x40, 0, 0, len(name), 2, 0)
    s.nt_trans(1, b"", creation + name)
    s.ask(0x04, fid + struct.pack("<I", 0))
    folder = s.create("folder", access=0x120089, options=1, disposition=1)
    s.nt_trans(4, struct.pack("<IHBB", 0x17, folder, 1, 0), answer=False)   # notify change
    waiting = s.mid
    s.path(0x00, b"", "folder\\changed")
    s.answer()
    s.nt_trans(4, struct.pack("<IHBB", 0x17, folder, 1, 0), answer=False)
    s.mid = s.mid - 1
    s.ask(0xA4, answer=False)                                          # cancel it
    s.answer()
    s.mid = max(s.mid, waiting) + 2
    s.path(0x01, b"", "folder\\changed")
    s.ask(0x04, struct.pack("<HI", folder, 0))


def use_pipes_and_calls(s):
    s.connect("IPC$")
    s.create("\\srvsvc", disposition=1, options=0)
    fid = struct.pack("<H", s.fid)
    bind = bytes.fromhex("05000b03100000004800000001000000b810b8100000000001000000 00000100"
                         "c84f324b7016d30112785a47bf6ee18803000000 045d888aeb1cc9119fe808002b10486002000000")
    s.transact(0x25, struct.pack("<HH", 0x01, s.fid), struct.pack("<H", 0x4100), name="\\PIPE\\")
    s.transact(0x25, struct.pack("<HH", 0x26, s.fid), b"", bind, name="\\PIPE\\")
    for function in (0x21, 0x22, 0x23, 0x11, 0x31, 0x36):
        parameters = struct.pack("<H", 1) if function == 0x22 else b""
        data = b"x" if function == 0x31 else b""
        s.transact(0x25, struct.pack("<HH", function, s.fid), parameters, data, name="\\PIPE\\")
    s.transact(0x25, struct.pack("<HH", 0x53, 0), name="\\PIPE\\srvsvc")
    s.transact(0x25, struct.pack("<HH", 0x54, 0), b"", bind, name="\\PIPE\\srvsvc")
    s.ask(0x2F, fid + struct.pack("<IIHHHHHI", 0, 0, 8, len(bind), 0, len(bind), 64, 0), b"\0" + bind)
    s.ask(0x04, fid + struct.pack("<I", 0))
    s.remote(0, b"WrLeh\0B13BWz\0" + struct.pack("<HH", 1, 1000))                  # share enumeration
    s.remote(1, b"zWrLh\0B13BWz\0FILES\0" + struct.pack("<HH", 1, 1000))           # one share
    s.remote(13, b"WrLh\0B16BBDz\0" + struct.pack("<HH", 1, 1000))                 # the server
    s.remote(63, b"WrLh\0zzzBBzz\0" + struct.pack("<HH", 10, 1000))                # the workstation
    s.remote(104, b"WrLehDz\0B16BBDz\0" + struct.pack("<HHI", 1, 1000, 0xFFFFFFFF) + b"QXGROUP\0")
    s.remote(104, b"WrLehDO\0B16\0" + struct.pack("<HHI", 0, 1000, 0x80000000))
    s.remote(215, b"WrLehDzz\0B16BBDz\0" + struct.pack("<HHI", 1, 1000, 0xFFFFFFFF) + b"QXGROUP\0QXSERVER\0")
    s.remote(56, b"zWrLh\0B21BzzzWDDzzDDWWzWzDWb21W\0games\0" + struct.pack("<HH", 2, 1000))
    s.remote(56, b"zWrLh\0B21Bzzz\0games\0" + struct.pack("<HH", 10, 1000))
    s.remote(53, b"WrLeh\0B21\0" + struct.pack("<HH", 0, 1000))
    s.remote(47, b"WrLeh\0B21\0" + struct.pack("<HH", 0, 1000))
    s.remote(59, b"zWrLeh\0B21\0games\0" + struct.pack("<HH", 0, 1000))
    s.remote(6, b"WrLeh\0zzWWWDDDz\0" + struct.pack("<HH", 2, 1000))
    s.remote(69, b"WrLeh\0B13BWWWzzzzzWW\0" + struct.pack("<HH", 1, 1000))
    s.remote(70, b"zWrLh\0B13BWWWzzzzzWW\0printer\0" + struct.pack("<HH", 1, 1000))
    s.remote(76, b"zWrLeh\0WB21BB16B10zWWzDDz\0printer\0" + struct.pack("<HH", 1, 1000))
    s.remote(132, b"OOWb54WrLh\0WB21BWDWWDDDDDDDzzzD\0" + struct.pack("<H", 1) + b"games".ljust(21, b"\0") + b"\0" +
             b"\0" * 16 + b"QXCLIENT".ljust(16, b"\0") + struct.pack("<HHI", 54, 1000, 0))
    s.remote(133, b"zzWb38WrLh\0WDW\0games\0QXCLIENT\0" + struct.pack("<H", 1) + b"games".ljust(21, b"\0") + b"\0" +
             b"QXCLIENT".ljust(16, b"\0") + struct.pack("<HH", 38, 1000))
    s.remote(214, b"zsT\0B516B16\0games\0" + struct.pack("<H", 532), data=b"\xA5" * 532)
    s.ask(0x71)


def print_a_page(s):
    s.connect("PRINTER")
    words, _ = s.path(0xC0, struct.pack("<HH", 0, 1), "page")
    fid = words[:2] if len(words) >= 2 else b"\0\0"
    s.ask(0xC1, fid, b"\x01" + struct.pack("<H", 8) + b"A page.\n")
    s.ask(0xC2, fid)
    s.ask(0xC3, struct.pack("<HH", 10, 0))
    s.ask(0x71)


def be_a_client_of_today(server):
    s = Session(server, NT1, unicode_names=True)
    s.log_on("files")
    use_transactions(s)
    use_nt_commands(s)
    use_core_commands(s)
    use_pipes_and_calls(s)
    print_a_page(s)
    s.ask(0x74)


def be_a_client_of_yesterday(server):
    """OEM names and DOS errors, as Windows for Workgroups."""
    s = Session(server, NT1, unicode_names=False, nt_status=False)
    s.log_on("files")
    use_core_commands(s)
    s.connect("files")
    s.trans2(1, struct.pack("<HHHHI", 0x16, 2, 5, 1, 0) + b"\\*\0")
    s.trans2(5, struct.pack("<HI", 1, 0) + b"hello.txt\0")
    s.trans2(5, struct.pack("<HI", 0x107, 0) + b"hello.txt\0")
    s.path(0x06, struct.pack("<H", 0x16), "not there")
    s.ask(0x5E)                                                        # a command that nobody defined
    s.ask(0xD8)
    print_a_page(s)
    s.ask(0x74)


def be_a_client_of_lan_manager(server):
    s = Session(server, NT1[:3], unicode_names=False, nt_status=False)
    s.ask(0x73, struct.pack("<HHHIHI", 16644, 2, 1, 0, 1, 0), b"\0bob\0QXGROUP\0A system\0A client\0")
    s.connect("files")
    fid = struct.pack("<H", s.open("hello.txt", 0x40))
    s.ask(0x2E, fid + struct.pack("<IHHIH", 0, 64, 0, 0, 0))
    s.ask(0x04, fid + struct.pack("<I", 0))
    s.ask(0x71)


def be_a_client_of_the_first_day(server):
    s = Session(server, NT1[:1], unicode_names=False, nt_status=False)
    s.path(0x70, b"", f"\\\\{server}\\files".upper(), "", "A:")
    s.open("hello.txt", 0x40)
    s.ask(0x0A, struct.pack("<HHIH", s.fid, 22, 0, 0))
    s.ask(0x04, struct.pack("<HI", s.fid, 0))
    s.ask(0x71)


def main():
    for client in (be_a_client_of_today, be_a_client_of_yesterday, be_a_client_of_lan_manager,
                   be_a_client_of_the_first_day):
        try:
            client(sys.argv[1])
        except (ConnectionError, TimeoutError) as problem:
            print(f"{client.__name__}: {problem}")
        time.sleep(0.1)


if __name__ == "__main__":
    main()
