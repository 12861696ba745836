#!/usr/bin/env python3
"""Compares the HTTP that qxview decodes with tshark and gzip.

usage: oracle_http.py CAPTURE... [--qxview build/qxview] [--jobs 2] [--verbose]

CAPTURE is a file or a directory of capture files. Two tables are printed:

- request and status lines: for every TCP segment whose first line tshark or qxview takes for a request or a status line,
  method, URI and version, or version, code and phrase. tshark looks at segments as they stand, as qxview does
  (reassembly is switched off), and the ports that it found HTTP on are defined as HTTP for qxview.
- inflated bodies: the segments of a message are joined in the order of the frames, what follows the gzip magic is given
  to gzip, and its output is cut into lines as qxview cuts them: at LF, without a CR before it, 199 characters, up to a
  zero byte, 900,000 bytes in all.

What differs by order stands in the table with its reason. Exit status 1 when anything else differs.
"""
import collections
import os
import re
import subprocess
import sys
import zlib

from oracle_support import (AGGREGATOR, Tally, children, decoded_packets, define, exit_with, for_each_capture,
                            print_others, read_options, tshark_fields, value_of, windows_1252)

METHODS = (b"GET", b"HEAD", b"POST", b"PUT", b"DELETE", b"TRACE", b"CONNECT", b"HTTP/")
MOST_SEGMENTS = 100
OUTPUT = 900000
SHOWN = 199
LINE = 511

TSHARK_OPTIONS = ["tcp.desegment_tcp_streams:FALSE", "http.desegment_headers:FALSE", "http.desegment_body:FALSE",
                  "ip.defragment:FALSE", "ipv6.defragment:FALSE", "tcp.no_subdissector_on_error:FALSE",
                  "tcp.check_checksum:TRUE", "http.decompress_body:FALSE", "http.dechunk_body:FALSE"]
FIELDS = ["frame.number", "frame.protocols", "ip.src", "ipv6.src", "ip.dst", "ipv6.dst", "tcp.srcport", "tcp.dstport",
          "tcp.flags.fin", "tcp.checksum.status", "tcp.payload", "http.request.method", "http.request.uri",
          "http.request.version", "http.response.version", "http.response.code", "http.response.phrase"]
Segment = collections.namedtuple("Segment", [f.replace(".", "_") for f in FIELDS])


def read_peer(path):
    """The TCP data segments of the capture as tshark sees them, in the order of the frames."""
    for values in tshark_fields(path, FIELDS, TSHARK_OPTIONS, "tcp.payload"):
        yield Segment(*values)


def decode(qxview, path, ports, packets):
    """What qxview shows of the packets: {number: list of top-level lines}."""
    for packet in decoded_packets(qxview, path, "--packets", packets, *define(f"tcp:{port}=HTTP" for port in ports)):
        yield packet["packet"], packet.get("lines", [])


def last(text):
    """Of a field that tunnels repeat, the innermost."""
    return text.split(AGGREGATOR)[-1]


def first(text):
    return text.split(AGGREGATOR)[0]


def payload_of(segment):
    return bytes.fromhex(last(segment.tcp_payload).replace(":", ""))


def flow_of(segment):
    return (last(segment.ip_src), last(segment.ipv6_src), last(segment.ip_dst), last(segment.ipv6_dst),
            last(segment.tcp_srcport), last(segment.tcp_dstport))


# --- request and status lines ---

def line_of_peer(segment):
    if segment.http_request_method:
        return ("request", first(segment.http_request_method), first(segment.http_request_uri),
                first(segment.http_request_version))
    if segment.http_response_code:
        return ("status", first(segment.http_response_version), first(segment.http_response_code),
                first(segment.http_response_phrase))
    return None


def http_lines(lines):
    """The HTTP lines of a packet at the top level."""
    return [line for line in lines if line["text"].startswith(("HTTP - ", "Chunked HTTP Data - "))]


def line_of_ours(lines):
    for line in http_lines(lines)[:1]:
        for child in children(line)[:1]:
            parts = children(child)
            if child["text"].startswith("Request Line: "):
                return ("request", *(value_of(parts, label) for label in ("Method: ", "Request uri: ", "Version: ")))
            if child["text"].startswith("Status Line: "):
                return ("status", *(value_of(parts, label) for label in ("Version: ", "Code: ", "Phrase: ")))
    return None


def plain(text):
    """Characters outside ASCII are shown in another character set by each, control characters as escapes."""
    return re.sub(r"(\\[a-z0-9]+|[^\x20-\x7e])+", "?", text or "")


def same_line(ours, theirs):
    if not ours or not theirs or ours[0] != theirs[0]:
        return False
    labels = (8, 13, 9) if ours[0] == "request" else (9, 6, 8)
    for mine, other, label in zip(ours[1:], theirs[1:], labels):
        mine, other = plain(mine), plain(other)
        if mine != other and not (label + len(mine) >= LINE - 8 and other.startswith(mine[:LINE - 20])):
            return False
    return True


def is_first_line(payload):
    """Whether the payload's first line is a request or a status line as qxview reads them."""
    tokens = [t for t in payload.split(b"\r\n")[0].lstrip(b" ").split(b" ", 2)]
    while len(tokens) < 3:
        tokens.append(b"")
    version, rest = tokens[0], tokens[2].lstrip(b" ")
    if len(rest) > 5 and rest.startswith(b"HTTP/"):
        return True
    return len(version) > 5 and version.startswith(b"HTTP/") and re.fullmatch(rb"[0-9]{3}", tokens[1]) is not None


# Links that carry datagrams and have no decoder.
UNDECODED_LINKS = {"pppoes": "PPPoE", "arcnet": "ARCNET"}


def why_not_reached(segment, lines):
    """Why the payload was never given to the HTTP decoder; None when that is not known."""
    titles = [line["text"] for line in lines]
    if any("(Bad TCP Checksum)" in title for title in titles):
        return "a bad TCP checksum: the payload is shown and not decoded"
    if any("(Bad IP Checksum)" in title for title in titles):
        return "a bad IP checksum: the payload is shown and not decoded"
    if any(value_of(children(line), "Total IP length: ") == "0" for line in lines):
        return "a total length of 0, which offloading leaves: nothing is left to decode"
    for protocol, name in UNDECODED_LINKS.items():
        if protocol in segment.frame_protocols.split(":"):
            return f"carried by {name}, which has no decoder"
    return None


def why_lines_differ(segment, payload, lines, ours, theirs):
    """The reason of a difference that is ordered; None when there is none."""
    if not http_lines(lines):
        return why_not_reached(segment, lines)
    line = payload.split(b"\r\n")[0]
    if theirs and not ours and not is_first_line(payload):
        if not line:
            return "an empty line in front of the message: it starts none here"
        return "no version of HTTP behind the URI, or no code of three digits: continuation data here"
    if ours and not theirs and is_first_line(payload):
        if "http" not in segment.frame_protocols.split(":"):
            return "tshark gives the segment to another protocol of its ports"
        return "any word is a method here; tshark knows a list"
    if ours and theirs and ours[0] == theirs[0] and b"  " in line:
        return "a run of blanks parts two words here; tshark ends a word at each blank"
    return None


# --- inflated bodies ---

def cut_lines(data):
    lines = data.split(b"\n")
    ended = lines[:-1]
    texts = [line[:-1] if line.endswith(b"\r") else line for line in ended]
    if lines[-1]:
        texts.append(lines[-1])
    return [text[:SHOWN].split(b"\0")[0] if text else None for text in texts]


def shown_lines(lines):
    """The inflated lines of a packet, an empty one as None."""
    found = []
    for line in http_lines(lines):
        for child in children(line):
            if child["text"].startswith("Inflated gzip Data : "):
                found.append(windows_1252(child["text"][len("Inflated gzip Data : "):]))
            elif child["text"] == "Blank Line : ":
                found.append(None)
    return found


def gunzip(data):
    """gzip's output for a whole member; for one that is cut, which gzip gives nothing for, zlib's through Python."""
    done = subprocess.run(["gzip", "-dc"], input=data, capture_output=True)
    if done.returncode == 0 or (done.stdout and b"trailing garbage" in done.stderr):
        return done.stdout, "gzip"
    inflater = zlib.decompressobj(31)
    out = bytearray()
    try:
        for at in range(0, len(data), 16):
            out += inflater.decompress(data[at:at + 16])
    except zlib.error:
        pass
    return bytes(out), "zlib"


def header_value(headers, name):
    found = re.search(rb"\r\n" + name + rb":[ \t]*([^\r\n]*)", headers, re.I)
    return found.group(1) if found else b""


Body = collections.namedtuple("Body", "data reason")


def body_of(history, segment, payload):
    """The gzip data that the packet's tree is to show, or None for a packet of no gzip body."""
    joined = [payload]
    fin = False
    if not is_first_line(payload):
        if payload.startswith(METHODS):
            return None
        for back, (earlier, flags) in enumerate(reversed(history)):
            if back > MOST_SEGMENTS:
                return Body(b"", "the headers are more than 100 segments back")
            joined.insert(0, earlier)
            fin = fin or flags
            if earlier.startswith(METHODS):
                break
        else:
            return None
    headers, separator, _ = joined[0].partition(b"\r\n\r\n")
    if not header_value(headers, b"Content-Encoding").startswith(b"gzip") or not separator:
        return None
    if fin:
        return Body(b"", "a segment with FIN came earlier: the body is not inflated")
    data = b"".join(joined)[len(headers) + 4:]
    magic = data.find(b"\x1f\x8b")
    if magic < 0:
        return Body(b"", "no gzip magic in the body so far: its start was lost, comes later or is not sent yet") if data else None
    size = re.fullmatch(rb"([0-9A-Fa-f]+)[ \t]*(?:[;=].*)?\r\n", data[:magic])
    data = data[magic:]
    return Body(data[:int(size.group(1), 16)] if size else data, None)


def compare_body(history, segment, payload, lines):
    """Returns (kind, key): agreement, ordered difference or other; None when there is nothing to compare."""
    ours = shown_lines(lines)
    body = body_of(history, segment, payload)
    if body is None:
        return ("other", "inflated lines that are not expected") if ours else None
    if body.reason:
        return ("other", "inflated lines in spite of: " + body.reason) if ours else ("ordered", body.reason)
    if not http_lines(lines):
        return None   # told among the first lines
    text, reader = gunzip(body.data)
    expected = cut_lines(text[:OUTPUT])
    if ours == expected:
        return ("agreed", f"{'whole body' if reader == 'gzip' else 'body so far'}, as {reader} has it")
    return ("other", f"{len(ours)} lines, {reader} has {len(expected)}")


def compare(qxview, path):
    """Returns two counters {(kind, key): packets} and the list of other differences."""
    first_lines, bodies, others = collections.Counter(), collections.Counter(), []
    segments = list(read_peer(path))
    ports = set()
    wanted = []
    for segment in segments:
        line = line_of_peer(segment)
        if line:
            ports.add(last(segment.tcp_dstport if line[0] == "request" else segment.tcp_srcport))
    ports.add("80")
    for segment in segments:
        if last(segment.tcp_srcport) in ports or last(segment.tcp_dstport) in ports:
            wanted.append(segment)
    if not wanted:
        return first_lines, bodies, others
    trees = dict(decode(qxview, path, sorted(ports), f"1-{wanted[-1].frame_number}"))
    histories = collections.defaultdict(lambda: collections.deque(maxlen=MOST_SEGMENTS + 1))
    for segment in wanted:
        number = int(segment.frame_number)
        lines, payload = trees.get(number, []), payload_of(segment)
        ours, theirs = line_of_ours(lines), line_of_peer(segment)
        where = f"{os.path.basename(path)} packet {number}"
        if ours or theirs:
            if same_line(ours, theirs):
                first_lines["agreed", ours[0] + " line"] += 1
            elif reason := why_lines_differ(segment, payload, lines, ours, theirs):
                first_lines["ordered", reason] += 1
            else:
                first_lines["other", "first line"] += 1
                others.append(f"{where}: ours {ours}, tshark {theirs}")
        history = histories[flow_of(segment)]
        if verdict := compare_body(history, segment, payload, lines):
            bodies[verdict] += 1
            if verdict[0] == "other":
                others.append(f"{where}: {verdict[1]}")
        history.append((payload, segment.tcp_flags_fin in ("1", "True")))
    return first_lines, bodies, others


def main():
    options = read_options(__doc__, verbose="name the captures as they are compared")
    first_lines, bodies, files = Tally(), Tally(), 0
    for path, (lines, inflated, others) in for_each_capture(options, compare):
        if options.verbose:
            print(path, dict(lines), dict(inflated), file=sys.stderr)
        files += bool(lines)
        first_lines.counts += lines
        bodies.counts += inflated
        bodies.others += others
    print(f"{len(options.paths)} captures, {files} with HTTP")
    first_lines.print("request and status lines")
    bodies.print("inflated bodies")
    return print_others(bodies.others)


if __name__ == "__main__":
    exit_with(main)
