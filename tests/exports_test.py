#!/usr/bin/env python3
"""The exported functions, called as any program calls them: through the shared library."""
import ctypes
import mmap
import os
import re
import subprocess
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
LIBRARY = os.environ.get("QXVIEW_LIBRARY", os.path.join(ROOT, "build", "libqxview.so"))
DLL = os.environ.get("QXVIEW_DLL")      # checked where it has been built
SYSTEM_LIBRARIES = {"kernel32.dll", "user32.dll", "gdi32.dll", "comctl32.dll", "comdlg32.dll", "advapi32.dll", "msvcrt.dll"}
os.environ["XDG_CONFIG_HOME"] = os.path.join(ROOT, "tests", "no-such-folder")   # the defaults, whoever runs this
LIB = ctypes.CDLL(LIBRARY)
LIBC = ctypes.CDLL(None, use_errno=True)
LIBC.mmap.restype = ctypes.c_void_p
LIBC.mmap.argtypes = [ctypes.c_void_p, ctypes.c_size_t, ctypes.c_int, ctypes.c_int, ctypes.c_int, ctypes.c_long]
LIBC.mprotect.argtypes = [ctypes.c_void_p, ctypes.c_size_t, ctypes.c_int]

INT = ctypes.c_int32


class TextBuffer(ctypes.Structure):
    _fields_ = [("capacity", ctypes.c_uint16), ("text", ctypes.c_void_p)]


class AddressSlot(ctypes.Structure):
    _fields_ = [("address", ctypes.c_uint8 * 16), ("kind", ctypes.c_uint32)]


class DetectionSettings(ctypes.Structure):
    _fields_ = [("flags", ctypes.c_uint32), ("flags2", ctypes.c_uint32), ("tdsDetectionOff", INT)]


class DynamicRecord(ctypes.Structure):
    _fields_ = [("found", INT), ("first", ctypes.c_uint32), ("second", ctypes.c_uint32)]


class Guarded:
    """Memory whose last byte stands right before a page that cannot be touched."""

    def __init__(self, size):
        self.size = (size + mmap.PAGESIZE - 1) // mmap.PAGESIZE * mmap.PAGESIZE
        base = LIBC.mmap(None, self.size + mmap.PAGESIZE, mmap.PROT_READ | mmap.PROT_WRITE,
                         mmap.MAP_PRIVATE | mmap.MAP_ANONYMOUS, -1, 0)
        self.end = base + self.size
        if LIBC.mprotect(self.end, mmap.PAGESIZE, 0) != 0:
            raise OSError(ctypes.get_errno(), "mprotect")

    def put(self, data):
        """The address of the data, which end at the guard page."""
        ctypes.memmove(self.end - len(data), data, len(data))
        return self.end - len(data)


INPUT, OUTPUT = Guarded(2048), Guarded(512)
NAME, QUESTION = b"\x03www\x07example\x00", b"\x12\x34\x01\x00\x00\x01" + bytes(6)
HELLO = bytes.fromhex("160301002f0100002b0303") + bytes(32) + bytes.fromhex("00000213010100") + b"\x00\x00"
GIOP = bytes.fromhex("47494f5001000100280000000000000005000000010000000400000041424344 05000000") + b"ping\x00"

# name: (form, arguments behind the output (or for RTP in front of it), a real message, the text it gives)
MEMBERS = {
    "GetDNSDescription": ("B", [INT(17), ctypes.c_uint16(100), INT(0)], QUESTION + NAME + b"\x00\x01\x00\x01",
                          "DNS Query: Standard Query - www.example, QU=1 AN=0 AU=0 AD=0"),
    "GetHTTPDescription": ("A", [INT(0)], b"GET /a HTTP/1.1\r\nHost: h.example\r\n\r\n", "HTTP GET http://h.example/a"),
    "GetSSLTLSDescription": ("A", [INT(443), None], HELLO[:-2] + b"\x00\x00",
                             "SSL/TLS, TLS 1.0, Handshake: Client Hello, Version: TLS 1.2"),
    "GetFTPDescription": ("A", [INT(-1), INT(0)], b"331 Password required\r\n",
                          "FTP Reply Code: 331, Message: Password required"),
    "GetSMTPDescription": ("A", [INT(-1)], b"MAIL FROM:<a@b>\r\n", "SMTP Command: MAIL FROM:, Message: <a@b>"),
    "GetPOP3Description": ("A", [], b"RETR 1\r\n", "POP3 Command: RETR 1"),
    "GetTelnetDescription": ("A", [INT(-1), INT(80), INT(1)], b"login: \r\n", "TELNET Data: login: "),
    "GetTDSDescription": ("A", [INT(0)], bytes.fromhex("0101000e00000100") + "abc".encode("utf-16-le"),
                          "TDS-SQL SQL Batch: abc"),
    "GetTNSDescription": ("A", [], bytes.fromhex("00100000060000000000"), "Oracle TNS Data, Length: 16"),
    "GetRTPDescription": ("RTP", [None, INT(1)], bytes.fromhex("800000010000000200000003") + b"abcd",
                          "RTP Payload: PCMU(G.711) Audio at 8000 Hz, Sequence: 1, Time: 2, SSRC: 3"),
    "GetRTCPDescription": ("A", [], bytes.fromhex("80c9000100000001"), "RTCP Receiver Report"),
    "GetRTSPDescription": ("A", [], b"PLAY rtsp://h/a RTSP/1.0\r\nCSeq: 2\r\n\r\n", "RTSP PLAY rtsp://h/a, CSeq: 2"),
    "GetSIPDescription": ("A", [INT(0)], b"SIP/2.0 200 OK\r\nCSeq: 1 INVITE\r\n\r\n", "SIP Status: 200 OK, CSeq: 1 INVITE"),
    "GetSCCPDescription": ("A", [], bytes.fromhex("040000000000000006000000"), "Cisco SCCP Off Hook"),
    "GetMGCPDescription": ("B", [], b"200 12 OK\r\n", "MGCP Response: 200 OK, Transaction: 12"),
    "GetMegacoH248Description": ("A", [], b"!/1 <gw> P=9{C=1}", "Megaco H.248 Text - Reply = 9, Context = 1, From: <gw>"),
    "GetSNMPDescription": ("CONTEXT", [], bytes.fromhex("302902010004067075626c6963a01c02041a2b3c4d020100020100300e"
                                                        "300c06082b060102010101000500"),
                           "SNMPv1 GetRequest, Request ID: 439041101, Object: 1.3.6.1.2.1.1.1.0, Community: public"),
    "GetLDAPDescription": ("A", [], bytes.fromhex("30050201044200"), "LDAP Unbind Request, ID: 4"),
    "GetH323HostCallDescription": ("A", [], bytes.fromhex("080200015a"),
                                   "H.323 Host Call/H.225.0/Q.931 RELEASE COMPLETE, Call Reference: 1"),
    "GetH323GatekeeperDescription": ("A", [INT(1)], bytes.fromhex("0e400001060008914a0002"),
                                     "H.225.0/H.323 Gatekeeper registrationRequest, Request Number: 2"),
    "GetH245Description": ("A", [], bytes.fromhex("0300000802700106"), "H.245 Request: terminalCapabilitySet"),
    "GetSMBDescription": ("A", [INT(0), INT(0)], bytes.fromhex("ff534d427200000000180128") + bytes(12) +
                          bytes.fromhex("0100feff02000300"), "SMB/CIFS Negotiate Protocol Request, TID: 1, UID: 2, MID: 3"),
    "GetCGPDescription": ("A", [], b"\x1aCGP/01", "Citrix CGP Hello, Version: 01 [Partial: 7 bytes of 27 pending]"),
    "GetIAX2Description": ("A", [], bytes.fromhex("00010014aabb"), "IAX2 Mini Voice, Source Call: 1, Time: 20, 2 bytes"),
    "GetBitTorrentDescription": ("A", [], bytes.fromhex("0000000502"), "BitTorrent Data: Interested"),
    "GetCiscoWIDSDescription": ("A", [], bytes.fromhex("000201020304050600" "0b00000000000000400018") + bytes(8),
                                "Cisco Wireless IDS Version: 2, Channel: 11, Length: 64"),
    "GetFixDescription": ("FIX", [], b"8=FIX.4.4\x019=5\x0135=A\x0134=1\x01", "Logon, Sequence: 1"),
    "GetGIOPDescription": ("B", [], GIOP, "GIOP 1.0 Request, Request: 5, Operation: ping, Size: 40"),
    "GetLpdLprDescription": ("A", [], b"\x02lp0\n", "LPD Receive Job: lp0"),
    "GetMinetDescription": ("A", [INT(0)], bytes.fromhex("0102"), "Minet Message 0x0102"),
    "GetUNIStimDescriptionPublicDecode": ("A", [], bytes.fromhex("0000000501"), "Nortel UNIStim ACK, Sequence: 5"),
}


def call(name, data, length, out, size):
    """Calls a member with raw addresses (None for a null one)."""
    form, extra, _, _ = MEMBERS[name]
    function = getattr(LIB, name)
    payload = [ctypes.c_void_p(data), INT(length)]
    if form == "B":
        buffer = TextBuffer(size, out)
        return function(*payload, ctypes.byref(buffer), *extra)
    if form == "RTP":
        return function(*payload, *extra, ctypes.c_void_p(out), INT(size))
    if form == "CONTEXT":
        return function(None, *payload, ctypes.c_void_p(out), INT(size))
    if form == "FIX":
        return function(*payload, ctypes.c_void_p(out), ctypes.c_uint16(size))
    return function(*payload, ctypes.c_void_p(out), INT(size), *extra)


def describe(name, message, size=512):
    """The result and the text in a buffer of that size; the buffer and the message end at guard pages."""
    out = OUTPUT.put(b"\xAA" * size)
    result = call(name, INPUT.put(message), len(message), out, size)
    raw = ctypes.string_at(out, size)
    return result, raw.split(b"\0")[0].decode("cp1252") if b"\0" in raw else None


def names_in(path, pattern):
    with open(os.path.join(ROOT, path), encoding="utf-8") as file:
        return re.findall(pattern, file.read(), re.M)


def what_a_dll_names(dll, start, pattern):
    """The names in a table of a DLL's headers."""
    told = subprocess.run(["i686-w64-mingw32-objdump", "-p", dll], capture_output=True, text=True, check=True).stdout
    return re.findall(pattern, told[told.index(start):], re.M)


class Symbols(unittest.TestCase):
    def test_are_those_of_the_header(self):
        declared = names_in("include/qxview/qxview.h", r"^QXVIEW_EXPORT\s[^;]*?\b(\w+)\(")
        for path, pattern in (("exports/libqxview.map", r"^    (\w+);"), ("exports/qxview.def", r"^    (\w+)$")):
            self.assertEqual(sorted(names_in(path, pattern)), sorted(declared), path)
        listed = subprocess.run(["nm", "-D", "--defined-only", LIBRARY], capture_output=True, text=True, check=True)
        declared = set(declared)
        exported = [line.split()[-1].split("@@") for line in listed.stdout.splitlines()]
        self.assertEqual({name for name, *version in exported if version}, declared)
        self.assertTrue(all(version or re.fullmatch(r"QXVIEW_7\.\d", name) for name, *version in exported), exported)
        self.assertTrue(set(MEMBERS) < declared)
        if DLL:
            exported = what_a_dll_names(DLL, "[Ordinal/Name Pointer] Table", r"^\t\[ *\d+\] (\S+)$")
            self.assertEqual(set(exported), declared, "by their plain names")
            imported = {name.lower() for name in what_a_dll_names(DLL, "Import Tables", r"^\tDLL Name: (\S+)$")}
            self.assertLessEqual(imported, SYSTEM_LIBRARIES, "nothing that not every Windows has")
        summaries = {name for name in declared if re.search(r"Description(PublicDecode)?$", name)}
        self.assertEqual(summaries - set(MEMBERS), {"GetRtpCodecDescription"}, "every summary is tested")


class FunctionTypes(unittest.TestCase):
    def test_are_those_of_the_header(self):
        made = subprocess.run([os.path.join(ROOT, "scripts", "make_function_types.py"), "--check"], check=False)
        self.assertEqual(made.returncode, 0, "scripts/make_function_types.py writes them anew")


class Windows(unittest.TestCase):
    def test_there_are_none_off_windows(self):
        LIB.QxView_CreateView.restype = LIB.CreateViewWindow.restype = ctypes.c_void_p
        for view in (None, LIB.QxView_CreateView(None)):
            at = ctypes.c_void_p(view)
            self.assertIsNone(LIB.CreateViewWindow(at, None, 0, 0, 0, 0))
            self.assertEqual((LIB.CorrectView(at), LIB.SetFocusOnDecodeList(at)), (0, 0))
            LIB.QxView_DestroyView(at)


MESSAGE = ctypes.CFUNCTYPE(None, ctypes.c_void_p, INT, ctypes.c_char_p)


class ViewOptions(ctypes.Structure):
    _fields_ = [("size", ctypes.c_uint32), ("host", ctypes.c_void_p), ("settings", ctypes.c_char_p),
                ("message", MESSAGE), ("user", ctypes.c_void_p)]


class Views(unittest.TestCase):
    def test_options_that_end_within_a_member_do_not_have_it(self):
        told = []
        options = ViewOptions(settings=b"", message=MESSAGE(lambda _, kind, text: told.append(text)))
        LIB.QxView_CreateViewWith.restype = ctypes.c_void_p
        whole = ViewOptions.message.offset + ViewOptions.message.size
        for size in range(ctypes.sizeof(options) + 1):
            options.size = size
            view = ctypes.c_void_p(LIB.QxView_CreateViewWith(ctypes.byref(options)))
            self.assertTrue(view, size)
            told.clear()
            LIB.QxView_DecodeBytes(view, 7, b"\0" * 60, 60, 60, ctypes.c_int64(0))   # of a medium without a decoder
            self.assertEqual(bool(told), size >= whole, size)
            LIB.QxView_DestroyView(view)


class Summaries(unittest.TestCase):
    def test_texts(self):
        for name, (_, _, message, text) in MEMBERS.items():
            with self.subTest(name):
                result, given = describe(name, message)
                self.assertEqual(given, text)
                self.assertNotEqual(result, 0)

    def test_sizes(self):
        for name, (_, _, message, text) in MEMBERS.items():
            for size in (1, 2, 16, 512):
                with self.subTest(name, size=size):
                    self.assertEqual(describe(name, message, size)[1], text[:size - 1])

    def test_missing_arguments(self):
        for name, (_, _, message, _) in MEMBERS.items():
            with self.subTest(name):
                data, length = INPUT.put(message), len(message)
                for wrong in ((None, length), (data, 0), (data, -1)):
                    out = OUTPUT.put(b"\xAA" * 8)
                    self.assertEqual(call(name, *wrong, out, 8), 0)
                    self.assertEqual(ctypes.string_at(out, 1), b"\0")
                self.assertEqual(call(name, data, length, None, 8), 0)
                out = OUTPUT.put(b"\xAA" * 8)
                call(name, data, length, out, 0)
                self.assertEqual(ctypes.string_at(out, 8), b"\xAA" * 8, "no room for anything")

    def test_every_prefix(self):
        for name, (_, _, message, _) in MEMBERS.items():
            for length in range(1, len(message) + 1):
                with self.subTest(name, length=length):
                    self.assertIsNotNone(describe(name, message[:length])[1])

    def test_kinds_of_http(self):
        self.assertEqual(describe("GetHTTPDescription", b"GET / HTTP/1.1\r\n")[0], 1)
        self.assertEqual(describe("GetHTTPDescription", b"HTTP/1.1 200 OK\r\n")[0], 2)
        self.assertEqual(describe("GetHTTPDescription", b"body\r\n")[0], 3)

    def test_codecs(self):
        LIB.GetRtpCodecDescription.restype = ctypes.c_char_p
        names = [LIB.GetRtpCodecDescription(INT(kind)) for kind in (0, 18, 96, 127, -1, 128, 77)]
        self.assertEqual(names, [b"PCMU(G.711)", b"G.729 8K", b"Dynamic", b"Dynamic", b"", b"", b""])


class Helpers(unittest.TestCase):
    def test_pseudo_heads(self):
        header = bytes.fromhex("450000280001000040060000c0000201c0000202")
        LIB.PseudoHead.restype = ctypes.c_uint32
        found = LIB.PseudoHead(ctypes.c_void_p(INPUT.put(header)))
        words = [int.from_bytes(header[i:i + 2], "little") for i in (12, 14, 16, 18)] + [6 << 8, 20 << 8]
        total = sum(words)
        while total > 0xFFFF:
            total = (total & 0xFFFF) + (total >> 16)
        self.assertEqual(found, total)
        self.assertEqual(LIB.PseudoHead(None), 0)
        LIB.CalculateIPv6PseudoChecksum.restype = ctypes.c_uint16
        header = bytes.fromhex("60000000000c3a40") + bytes(15) + b"\x01" + bytes(15) + b"\x02"
        found = LIB.CalculateIPv6PseudoChecksum(ctypes.c_void_p(INPUT.put(header)))
        self.assertEqual(found.to_bytes(2, "little"), (1 + 2 + 0x0C + 0x3A).to_bytes(2, "big"))
        self.assertEqual(LIB.CalculateIPv6PseudoChecksum(None), 0)

    def test_passive_ports(self):
        slot, port = AddressSlot(), ctypes.c_uint16()
        text = b"227 Entering Passive Mode (192,0,2,1,4,2)\r\n"
        where = ctypes.c_void_p(INPUT.put(text))
        self.assertEqual(LIB.AddDynamicFtpDataPort(where, INT(len(text)), ctypes.byref(slot), ctypes.byref(port)), 1)
        self.assertEqual((bytes(slot.address[12:]), slot.kind, port.value), (bytes([192, 0, 2, 1]), 1, 1026))
        for length in range(len(text) - 5):
            where = ctypes.c_void_p(INPUT.put(text[:length]))
            LIB.AddDynamicFtpDataPort(where, INT(length), ctypes.byref(slot), ctypes.byref(port))
        self.assertEqual(LIB.AddDynamicFtpDataPort(None, INT(9), ctypes.byref(slot), ctypes.byref(port)), 0)

    def test_detection(self):
        settings, record = DetectionSettings(0x1B, 0x400, 0), DynamicRecord()
        identifier, kind, zero = ctypes.c_uint32(), ctypes.c_uint16(), ctypes.c_uint16(9)
        packet = bytes.fromhex("800000010000000200000003") + bytes(range(0x60, 0x74))

        def determine(data, length):
            return LIB.DetermineDynamicUDPPrototol(
                ctypes.byref(settings), ctypes.c_uint16(40000), ctypes.c_uint16(40002), ctypes.c_void_p(data),
                INT(length), ctypes.byref(identifier), ctypes.byref(kind), ctypes.byref(zero), ctypes.byref(record))

        for length in range(len(packet) + 1):
            found = determine(INPUT.put(packet[:length]), length)
        self.assertEqual((found, identifier.value, kind.value, zero.value), (1, 0x2050059, 0, 0))
        self.assertEqual((record.found, record.first, record.second), (1, 1, 2))
        self.assertEqual(determine(None, 5), 0)


if __name__ == "__main__":
    unittest.main()
