#!/usr/bin/env python3
"""Inputs of the fuzz targets: seeds made of the project's samples and decode cases, a dictionary, and packs of many inputs in
one file.

  scripts/fuzz_corpus.py seeds FOLDER [--build build]        FOLDER/TARGET/..., of what `fuzz_run --rows` lists
  scripts/fuzz_corpus.py dictionary FILE [--build build]     names and keys of the registry, words of text protocols
  scripts/fuzz_corpus.py pack PACK FOLDER|FILE... [--most BYTES]    one file of several inputs, the smallest ones first
  scripts/fuzz_corpus.py unpack PACK FOLDER

How inputs are laid out stands at the top of each target's source. docs/fuzzing.md tells the rest.
"""
import argparse
import glob
import hashlib
import os
import random
import re
import struct
import subprocess
import sys
import tempfile

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
PACK_MARK = b"QXPACK1\n"
MODERN, REASSEMBLY, KEYS, EVERY_MODE, REPAIRED, PREFIXES, UNUSUAL, HEADERS = (1 << bit for bit in range(8))
WISHES = [MODERN | REASSEMBLY | KEYS, REPAIRED | EVERY_MODE, MODERN | EVERY_MODE, REASSEMBLY | HEADERS, UNUSUAL | KEYS]
MOST_FRAMES = 60        # of a sample, as single frames
MOST_LENGTH = 3000      # of a frame or payload


def read_capture(path):
    """Link type and bytes of each packet of a pcap or pcapng file in this machine's order."""
    with open(path, "rb") as file:
        data = file.read()
    if data[:4] == b"\x0a\x0d\x0d\x0a":
        at, links = 0, []
        while at + 12 <= len(data):
            kind, length = struct.unpack_from("<II", data, at)
            if kind == 1:
                links.append(struct.unpack_from("<H", data, at + 8)[0])
            elif kind == 6:
                interface, captured = struct.unpack_from("<I8xI", data, at + 8)
                yield links[interface], data[at + 28:at + 28 + captured]
            at += length
        return
    order = "<" if data[0] in (0xD4, 0x4D, 0x34) else ">"
    link = struct.unpack_from(order + "I", data, 20)[0] & 0xFFFF
    at = 24
    while at + 16 <= len(data):
        captured = struct.unpack_from(order + "I", data, at + 8)[0]
        yield link, data[at + 16:at + 16 + captured]
        at += 16 + captured


def samples():
    return sorted(glob.glob(os.path.join(ROOT, "samples", "*.pcap*")))


class Rows:
    """The registry, as fuzz_run lists it."""

    def __init__(self, build):
        text = subprocess.run([os.path.join(build, "fuzz_run"), "--rows"], capture_output=True, text=True, check=True).stdout
        self.rows = [line.split("\t") for line in text.splitlines()]
        self.by_name = {}
        for table, table_name, key, name in self.rows:
            self.by_name.setdefault(f"{table_name} {name}", (int(table), int(key)))

    def names(self):
        return sorted({row[3] for row in self.rows})


def case_bytes(line):
    """A line of a decode case: digits, texts, repeated bytes; a note."""
    out, at = b"", 0
    while at < len(line) and line[at] != "#":
        if line[at] == " ":
            at += 1
            continue
        wide = line[at] == "u"
        if line[at] == '"' or wide:
            at += 1 + wide
            while at < len(line) and line[at] != '"':
                if line[at] == "\\":
                    at += 1
                    if line[at] == "x":
                        byte = int(line[at + 1:at + 3], 16)
                        at += 2
                    else:
                        byte = {"r": 13, "n": 10, "0": 0}.get(line[at], ord(line[at]))
                else:
                    byte = ord(line[at]) & 255
                out += bytes([byte]) + (b"\0" if wide else b"")
                at += 1
            at += 1
        else:
            word = line[at:].split(" ")[0]
            times, _, digits = word.rpartition("*")
            out += bytes.fromhex(digits) * int(times or 1)
            at += len(word)
    return out


def cases():
    """Name of the row, options, payload."""
    for path in sorted(glob.glob(os.path.join(ROOT, "tests", "cases", "*.txt"))):
        head, payload, is_payload = None, b"", False
        with open(path, encoding="latin-1") as file:
            for line in [*file.read().split("\n"), "= end"]:
                if line.startswith("= "):
                    if head:
                        yield head, payload
                    head, payload, is_payload = line[2:], b"", True
                elif line == "-":
                    is_payload = False
                elif is_payload and head and line:
                    payload += case_bytes(line)


class Seeds:
    """Writes each input once."""

    def __init__(self, folder):
        self.folder = folder
        self.count = 0

    def add(self, target, data):
        folder = os.path.join(self.folder, target)
        os.makedirs(folder, exist_ok=True)
        with open(os.path.join(folder, hashlib.sha1(data).hexdigest()), "wb") as file:
            file.write(data)
        self.count += 1


def add_payloads(seeds, rows):
    for number, (head, payload) in enumerate(cases()):
        name = re.split(r": | \[", head)[0]
        if name not in rows.by_name or len(payload) > MOST_LENGTH:
            continue
        table, key = rows.by_name[name]
        options = dict(word.partition("=")[::2] for word in
                       (re.search(r"\[([^]]*)\]", head.split(": ")[0]) or [None, ""])[1].split())
        extension = bytes.fromhex(options.get("extension", ""))
        wishes = WISHES[number % len(WISHES)] & ~REPAIRED | (MODERN if "modern" in options else 0)
        tail = struct.pack("<BHHB", "tcp" in options, int(options.get("to", 0)), int(options.get("link", 0)), len(extension))
        seeds.add("payload", struct.pack("<BBI", wishes | (PREFIXES if len(payload) < 80 else 0), table, key) + tail +
                  extension + payload)


def add_bare_rows(seeds, rows):
    """Every row once, for decoders that have no case."""
    some = bytes(range(64)) + bytes(64) + b"\xff" * 16
    for table, _, key, _ in rows.rows:
        if int(table) <= 6:
            seeds.add("payload", struct.pack("<BBIBHHB", KEYS, int(table), int(key), 0, 0, 0, 0) + some)


def spread(items, most):
    return items if len(items) <= most else [items[i * len(items) // most] for i in range(most)]


def add_frames(seeds):
    for number, path in enumerate(samples()):
        frames = [(link, frame) for link, frame in read_capture(path) if len(frame) <= MOST_LENGTH]
        shapes = {}
        for link, frame in frames:   # of frames that begin and end alike one
            shapes.setdefault((link, len(frame) // 16, frame[12:14], frame[23:24], frame[34:38], frame[42:46], frame[54:57]),
                              (link, frame))
        for index, (link, frame) in enumerate(spread(list(shapes.values()), MOST_FRAMES)):
            seeds.add("frame", struct.pack("<BBHB", WISHES[(number + index) % len(WISHES)], 0x80, link, index & 6) + frame)
    for medium in range(11):
        seeds.add("frame", struct.pack("<BBHB", EVERY_MODE, medium, 0x0800, 0x10) + bytes(80))


def ends(frame):
    """Both ends and the transport's payload of an Ethernet frame of TCP or UDP."""
    at = 12
    while frame[at:at + 2] in (b"\x81\0", b"\x88\xa8"):
        at += 4
    kind, at = frame[at:at + 2], at + 2
    if kind == b"\x08\0":
        protocol, size = frame[at + 9], 4 * (frame[at] & 15)
        addresses, total = (frame[at + 12:at + 16], frame[at + 16:at + 20]), struct.unpack_from(">H", frame, at + 2)[0]
        body = frame[at + size:at + total]
    elif kind == b"\x86\xdd":
        protocol, addresses = frame[at + 6], (frame[at + 8:at + 24], frame[at + 24:at + 40])
        body = frame[at + 40:at + 40 + struct.unpack_from(">H", frame, at + 4)[0]]
    else:
        return None
    if protocol not in (6, 17, 132) or len(body) < 8:
        return None
    ports = struct.unpack_from(">HH", body)
    payload = body[4 * (body[12] >> 4):] if protocol == 6 and len(body) >= 20 else body[8:]
    return protocol, (addresses[0], ports[0]), (addresses[1], ports[1]), payload, len(addresses[0]) == 16


def packet(form, from_server, six, what, number, payload):
    return struct.pack("<BBH", form | from_server << 3 | six << 4 | what << 5, number, len(payload)) + payload


def add_conversations(seeds):
    draw = random.Random(1)
    for path in samples():
        talks, others = {}, []
        for link, frame in read_capture(path):
            if link != 1 or len(frame) < 34 or len(frame) > MOST_LENGTH:
                continue
            told = ends(frame)
            if not told:
                others.append(frame)
                continue
            protocol, source, destination, payload, six = told
            if payload and len(payload) < 3000:
                talks.setdefault((protocol, *sorted((source, destination))), []).append((source, destination, payload, six))
        kept = sorted(talks.items(), key=lambda talk: -len(talk[1]))[:12]
        for index, ((protocol, *_), packets) in enumerate(kept):
            server = packets[0][1]
            form = {6: 0, 17: 1, 132: 2}[protocol]
            for variant in range(2 if index < 6 else 1):
                wishes = WISHES[(index + variant) % len(WISHES)] | REASSEMBLY
                data = struct.pack("<BH", wishes & ~PREFIXES, server[1])
                for source, _, payload, six in packets[:14]:
                    if len(data) + len(payload) > 12000:
                        break
                    what = draw.choice([0, 0, 0, 1, 2, 3, 4]) if variant else 0
                    if variant and form == 0 and len(payload) > 8:   # in segments
                        cut = draw.randrange(1, len(payload))
                        data += packet(form, source == server, six, 0, 0, payload[:cut])
                        payload = payload[cut:]
                    data += packet(form + (draw.random() < 0.1 and form < 2) * 5, source == server, six, what, draw.randrange(8), payload)
                seeds.add("conversation", data)
        for first in range(0, min(len(others), 48), 12):
            data = struct.pack("<BH", KEYS | EVERY_MODE, 0)
            for frame in others[first:first + 12]:
                data += packet(3, 0, 0, 0, 0, frame[:3900])
            seeds.add("conversation", data)


def add_captures(seeds, build):
    program = os.path.join(build, "qxview")
    with tempfile.TemporaryDirectory() as folder:
        for number, path in enumerate(samples()):
            for ending in ("pcap", "pcapng", "bfr"):
                if ending != "pcap" and number % 4:
                    continue
                out = os.path.join(folder, "seed." + ending)
                subprocess.run([program, "save", path, out, "--packets", "1-3", "--format", ending, "--partial", "200"],
                               capture_output=True, check=False)
                if not os.path.exists(out):
                    continue
                with open(out, "rb") as file:
                    seeds.add("capture", file.read())
                for tool in ("gzip", "zstd", "lz4"):
                    if number % 12 == 0:
                        packed = subprocess.run([tool, "-c", out], capture_output=True, check=False).stdout
                        if packed:
                            seeds.add("capture", packed)
                os.remove(out)
        with open(os.path.join(ROOT, "samples", "tls_keys.pcapng"), "rb") as file:
            seeds.add("capture", file.read(6000))
    header = struct.pack(">IHHiIII", 0xA1B2CD34, 2, 4, 0, 0, 65535, 1)
    seeds.add("capture", header + struct.pack(">IIIIIHBB", 1, 2, 60, 60, 1, 0, 0, 0) + bytes(60))


def add_filters(seeds, rows):
    frames = [frame for path in samples()[::5] for link, frame in read_capture(path) if link == 1 and len(frame) < 400]
    text = ""
    for name in ("tests/query_test.cpp", "tests/questions_test.py", "docs/filters.md"):
        with open(os.path.join(ROOT, name), encoding="utf-8") as file:
            text += file.read()
    expressions = {match.replace('\\"', '"').replace("\\\\", "\\") for match in re.findall(r'"((?:[^"\\\n]|\\.)+)"', text)}
    expressions |= set(re.findall(r"`([^`\n]+)`", text))
    for number, expression in enumerate(sorted(expressions)):
        seeds.add("filter", expression.encode() + b"\0" + frames[number % len(frames)])


def add_settings(seeds, rows):
    with open(os.path.join(ROOT, "docs", "settings.md"), encoding="utf-8") as file:
        names = re.findall(r"^\| `(\w+)`", file.read(), re.M)
    for name in names:
        for value in ("1", "0x1B", "text", "4294967296", ""):
            seeds.add("settings", f"\0[View]\n{name} = {value}\n; a note\n".encode())
    for text in ("[Protocols]\ntcp:8080=HTTP\n", "[View]\n\n[Other]\nx\n", "[View\n", "\xef\xbb\xbf[View]\r\nModern=1\r\n"):
        seeds.add("settings", b"\0" + text.encode())
    for text in ("tcp:8080=HTTP", "udp:10.0.0.1:5000=SNMP", "tcp:[2001:db8::1]:0=http", "tcp:80=none", "sctp:1=x", "tcp:70000=HTTP",
                 " UDP : 53 = dns ", *(f"udp:1={name}" for name in rows.names()[::9])):
        seeds.add("settings", b"\1" + text.encode())
    for text in ("10.0.0.1", "00:1B:21:AA:BB:CC", "00-1b-21-aa-bb-cc", "2001:db8::1", "::ffff:1.2.3.4", "fe80::1%eth0"):
        seeds.add("settings", b"\2" + text.encode())
        seeds.add("settings", b"\3" + f"# names\n{text}   printer  # second floor\n\n".encode())
    with open(os.path.join(ROOT, "samples", "quic.keys"), "rb") as file:
        log = file.read(2000)
    for step in (b"\x01", b"\x40", b"\xff"):
        seeds.add("settings", b"\4" + step + log)
    seeds.add("settings", b"\4\x20RSA 0011223344556677 " + b"ab" * 48 + b"\nCLIENT_RANDOM 12\n# note\n")
    for text in ("1.3.6.1.2.1.1.1.0", "1.3.6.1.4.1.99999.1", "1.3", "4294967296.1", "1..3", ""):
        seeds.add("settings", b"\5" + text.encode())
    for text in ("7", "3-9", "12-", "1,2,5-6,18446744073709551615", "9-3", ",", "1-2-3"):
        seeds.add("settings", b"\6" + text.encode())
    seeds.add("settings", b"\7\x09\1\3\6\1\4\1\x63\1\2thing\0Integer32\0read-only\0\x04\1\3\6\1internet\0OBJECT IDENTIFIER\0\0")


def add_calls(seeds):
    draw = random.Random(2)
    frames = [frame for path in samples() for link, frame in read_capture(path) if link == 1 and len(frame) < 250]
    payloads = [told[3] for told in map(ends, frames) if told and 0 < len(told[3]) < 250]

    def block(data):
        return bytes([len(data)]) + data

    for _ in range(400):
        data = bytes([0, 0, draw.choice([0, 16, 32, 48]) | 6])
        for _ in range(draw.randrange(3, 24)):
            call = draw.choice([2, 2, 5, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 20, 21, 22])
            data += bytes([call])
            if call == 2:
                data += b"\0\0" + block(draw.choice(frames)) + struct.pack("<BHI", 0, 1500, draw.randrange(1 << 31))
            elif call == 5:
                data += struct.pack("<BH", 0, draw.choice([1, 101, 113, 105, 127])) + block(draw.choice(frames)) + b"\0\x40\0"
            elif call == 7:
                data += bytes([draw.randrange(15)]) + block(draw.choice(payloads)) + bytes([draw.choice([0, 1, 2, 40, 250, 254, 255]), 0, 0])
            elif call == 8:
                data += bytes([draw.randrange(18)]) + block(draw.choice(payloads)) + bytes(
                    [draw.choice([0, 1, 2, 40, 250, 254, 255]), 0, 0, draw.randrange(256), 3, 0])
            elif call >= 20:
                data += bytes([draw.randrange(8), 0, draw.choice([128, 129, 192, 1, 2]), draw.choice([0, 1, 20, 200, 255]), 0])
            else:
                data += bytes(draw.randrange(256) for _ in range(draw.randrange(6)))
        seeds.add("exports", data)
    for mode in range(6):
        data = bytes([0, 0, 6, 13, 0, mode, 1])
        for frame in frames[:3]:
            data += b"\2\0\0" + block(frame) + struct.pack("<BHI", 0, 1500, 7)
        seeds.add("exports", data)


def make_seeds(folder, build):
    rows, seeds = Rows(build), Seeds(folder)
    add_payloads(seeds, rows)
    add_bare_rows(seeds, rows)
    add_frames(seeds)
    add_conversations(seeds)
    add_captures(seeds, build)
    add_filters(seeds, rows)
    add_settings(seeds, rows)
    add_calls(seeds)
    print(f"{seeds.count} seeds")


def make_dictionary(path, build):
    words = {word for word in Rows(build).names() if len(word) < 40}
    with open(os.path.join(build, "generated", "field_keys.inc"), encoding="utf-8") as file:
        keys = re.findall(r'^\{"([a-z0-9_.]+)"', file.read(), re.M)
    words.update(draw for draw in random.Random(3).sample(keys, 600))
    words.update(("==", "!=", "contains", "matches", " in {", "..", " and ", " or ", "not ", "line ", "[View]", "[Protocols]",
                  "HTTP/1.1 200 OK\r\n", "Content-Length: ", "Transfer-Encoding: chunked\r\n", "Content-Encoding: gzip\r\n", "\r\n\r\n",
                  "\r\n.\r\n", "STARTTLS\r\n", "BEGIN:", "<?xml ", "multipart/", "boundary=", "\x16\x03\x03", "\x17\x03\x03"))
    with open(os.path.join(ROOT, "docs", "settings.md"), encoding="utf-8") as file:
        words.update(re.findall(r"^\| `(\w+)`", file.read(), re.M))
    with open(path, "w", encoding="ascii") as file:
        for word in sorted(words):
            text = "".join(c if c.isalnum() or c in " .:/_=!-" else f"\\x{ord(c) & 255:02X}" for c in word)
            file.write(f'"{text}"\n')
    print(f"{len(words)} words")


def pack(path, sources, most):
    inputs, count = set(), 0
    for source in sources:
        for name in glob.glob(os.path.join(source, "*")) if os.path.isdir(source) else [source]:
            with open(name, "rb") as file:
                inputs.add(file.read())
    with open(path, "wb") as file:
        file.write(PACK_MARK)
        for data in sorted(inputs, key=lambda data: (len(data), data)):
            if most and file.tell() + 4 + len(data) > most:
                break
            file.write(struct.pack("<I", len(data)) + data)
            count += 1
    print(f"{count} of {len(inputs)} inputs, {os.path.getsize(path)} bytes")


def unpack(path, folder):
    with open(path, "rb") as file:
        data = file.read()
    if not data.startswith(PACK_MARK):
        sys.exit(f"{path}: no pack")
    os.makedirs(folder, exist_ok=True)
    at, count = len(PACK_MARK), 0
    while at + 4 <= len(data):
        length = struct.unpack_from("<I", data, at)[0]
        piece = data[at + 4:at + 4 + length]
        with open(os.path.join(folder, hashlib.sha1(piece).hexdigest()), "wb") as file:
            file.write(piece)
        at += 4 + length
        count += 1
    print(f"{count} inputs")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("what", choices=("seeds", "dictionary", "pack", "unpack"))
    parser.add_argument("path")
    parser.add_argument("sources", nargs="*")
    parser.add_argument("--most", type=int, default=0)
    parser.add_argument("--build", default=os.path.join(ROOT, "build"))
    arguments = parser.parse_args()
    if arguments.what == "seeds":
        make_seeds(arguments.path, arguments.build)
    elif arguments.what == "dictionary":
        make_dictionary(arguments.path, arguments.build)
    elif arguments.what == "pack":
        pack(arguments.path, arguments.sources, arguments.most)
    else:
        unpack(arguments.path, arguments.sources[0])


if __name__ == "__main__":
    main()
