#!/usr/bin/env python3
"""Looks for every field that tshark shows among qxview's lines: the same bytes, the same value.

usage: oracle.py CAPTURE... [--qxview build/qxview] [--jobs 2] [--told FILE]... [--least [PROTOCOL=]PERCENT]...
                 [--show PROTOCOL|FIELD|all] [--only PROTOCOL,...|--all] [--options "..."] [--tshark "..."]

CAPTURE is a file or a directory of capture files. Of every packet the leaves of tshark's tree are taken whose bytes
stand in the frame; each must have a line over the same bytes that says the same: a number, decimal or hexadecimal, the
name of a value, a text, an address, a time, the bits of a picture. Checksums that tshark finds good or bad must be told
so. Segments and fragments are looked at as they stand, as qxview does, and what a bad checksum covers is left out; the
ports that tshark finds a protocol on are defined for qxview.

A table gives packets, fields, the share of them that have a line, and the share whose value agrees, a protocol of
tshark's a row; --show lists the fields of a protocol that do not agree, each with an example, or every place of one
field. A field that is told otherwise on purpose stands in a file of docs/agreement/ (or of --told) with its reason, a
line "field reason" each; it agrees where it has a line. Exit status 1 when a share of agreement is below --least, of a
protocol or of all.
"""
import collections
import glob
import itertools
import ipaddress
import json
import os
import re
import shlex
import struct
import subprocess
import sys
import xml.etree.ElementTree

from oracle_support import (ROOT, capture_paths, decoded_packets, define, exit_with, for_each_capture, option_parser,
                            tshark_command, walk)

# What qxview decodes, by tshark's names of it.
OURS = set("""
eth vlan ieee8021ad llc isl tr trmac fddi mpls pwethcw atm fr chdlc ppp wlan fc vntag
arp ip ipv6 ipv6.hopopts ipv6.dstopts ipv6.routing ipv6.fraghdr ah mipv6 icmp icmpv6 igmp udp tcp rtp rtcp
dns mdns llmnr http snmp ldap cldap kerberos spnego ntlmssp gss-api
radius eap syslog ntp vrrp tacacs tacplus nat-pmp portcontrol agentx tsp lwres
ipx spx ipxrip ipxsap nbipx nmpi nbns nbdgm nbss netbios smb smb_pipe mailslot browser lanman dcerpc smb_netlogon
dhcp dhcpv6 tftp
stun classicstun turnchannel ssdp db-lsp-disc bjnp wol knxip tzsp auto_rp sip sdp ftp smtp pop imap nntp rtsp mgcp
""".split())
# What is found by port, and by which name it is defined.
DEFINED = {"dns": "DNS", "http": "HTTP", "snmp": "SNMP", "ldap": "LDAP", "cldap": "LDAP", "kerberos": "Kerberos",
           "nbns": "NetBIOS Name Service", "nbdgm": "NetBIOS Datagram Service", "nbss": "NetBIOS Session Service",
           "stun": "STUN", "classicstun": "STUN", "sip": "SIP", "rtsp": "RTSP"}
PREFERENCES = [
    "ip.check_checksum:TRUE", "tcp.check_checksum:TRUE", "udp.check_checksum:TRUE",
    *(f"{name}:FALSE" for name in (
        "tcp.desegment_tcp_streams", "tcp.relative_sequence_numbers", "tcp.analyze_sequence_numbers", "ip.defragment",
        "ipv6.defragment", "ip.use_geoip", "http.decompress_body", "http.dechunk_body", "http.desegment_headers",
        "http.desegment_body", "dns.desegment_dns_messages", "ldap.desegment_ldap_messages", "kerberos.desegment",
        "nbss.desegment_nbss_commands", "netbios.defragment", "smb.trans_reassembly", "smb.dcerpc_reassembly",
        "snmp.desegment"))]

# No fields, but bytes that are handed on, tshark's own reckoning, or a second view of a field that is compared.
NOT_FIELDS = re.compile(
    r"^(_ws\.|data\b|tcp\.segments|(ip|ipv6|eth)\.(addr|host|src_host|dst_host)|eth\.(lg|ig)|(tcp|udp)\.port|.*_resolved$"
    r"|.*\.oui$)|(\.payload|_data|checksum_calculated|\.padding|\.trailer|\.fcs|\.stream|segment|\.analysis.*|\.len_calc"
    r"|\.raw|\.reassembled.*|\.flags\.str|_scalefactor|\.multiplier)$|^tcp\.(seq|ack|nxtseq)$|^eth\.(addr|src|dst)\.")
STATUS = re.compile(r"checksum[._]status$")
MOST_BYTES = 200
WIDER, NARROWER = 8, 4      # bytes that a line may cover beyond a field, and fall short of a long one (line ends)
MONTHS = {name: number for number, name in enumerate(
    "jan feb mar apr may jun jul aug sep oct nov dec".split(), start=1)}
TIME = re.compile(r"([a-z]{3}) +(\d+), (\d{4}) (\d\d:\d\d:\d\d)")
NUMBER = re.compile(r"0x[0-9a-f]+|\d+")
PICTURE = re.compile(r"^([01. ]*[01.]) *[:=] ")

# `bits` is the picture of a field of bits, without blanks.
Field = collections.namedtuple("Field", "name start size show value bits")
Row = collections.Counter   # packets, fields, lined, agreed


# --- tshark ---

def frames_of(path):
    """The bytes of the capture's frames."""
    data = subprocess.run(tshark_command(path, "-F", "pcapng", "-w", "-"), stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL).stdout
    frames, at = [], 0
    while at + 12 <= len(data):
        kind, size = struct.unpack_from("<II", data, at)
        if kind == 6:       # an enhanced packet block
            captured, = struct.unpack_from("<I", data, at + 20)
            frames.append(data[at + 28:at + 28 + captured])
        at += max(size, 12)
    return frames


def bits_of(text):
    """The picture of bits that the text begins with, without blanks."""
    found = PICTURE.match(text)
    return found[1].replace(" ", "") if found else ""


def draws(picture, part):
    """Whether the picture has all bits of the other one, which may be of a longer or shorter word."""
    for shift in (0, 8, 16, 24, -8, -16, -24):
        wide, narrow = (picture[:-shift], part) if shift > 0 else (picture, part[:shift] if shift else part)
        pairs = itertools.zip_longest(reversed(wide), reversed(narrow), fillvalue=".")
        if narrow.strip(".") and (shift >= 0 or not part[shift:].strip(".")) and all(b in (".", a) for a, b in pairs):
            return True
    return False


def leaves(protocol, frame):
    """The fields of a protocol that have nothing below them and stand in the frame, each once; checksum verdicts."""
    met = set()
    for element in protocol.iter("field"):
        name, start, size = element.get("name", ""), int(element.get("pos", -1)), int(element.get("size", 0))
        hidden = element.get("hide") == "yes" and not STATUS.search(name)
        if hidden or element.find("field") is not None:
            continue
        if (name, start, size) in met or not name or NOT_FIELDS.search(name):
            continue
        met.add((name, start, size))
        if STATUS.search(name):
            yield Field(name, start, 2, element.get("show", ""), "", "")
            continue
        masked = element.get("unmaskedvalue")
        value = (masked or element.get("value") or "").lower()
        bits = bits_of(element.get("showname", "")) if masked else ""
        if bits and len(value) == 2 * size:
            words = (int.from_bytes(bytes.fromhex(value), order) for order in ("big", "little"))
            if not any(draws(f"{word:0{8 * size}b}", bits) for word in words):
                continue        # tshark shows bits of other bytes there
        if 0 < size <= MOST_BYTES and len(value) == 2 * size and frame[start:start + size].hex() == value:
            yield Field(name, start, size, element.get("show", ""), value, bits)


def definition(protocols):
    """The protocol of DEFINED that the packet carries, at the lower of its ports: "udp:161=SNMP"."""
    for carrier, carried in zip(protocols, protocols[1:]):
        if carrier.get("name") in ("tcp", "udp") and carried.get("name") in DEFINED:
            ports = [int(f.get("show")) for f in carrier if f.get("name", "").endswith(("srcport", "dstport"))]
            yield f"{carrier.get('name')}:{min(ports)}={DEFINED[carried.get('name')]}"


def peer_packets(path, options, definitions):
    """The protocols of every packet: (name, fields) each. What is found by port is added to the definitions."""
    frames = iter(frames_of(path))
    command = tshark_command(path, *options, "-T", "pdml", preferences=PREFERENCES)
    with subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL) as running:
        try:
            for _, element in xml.etree.ElementTree.iterparse(running.stdout):
                if element.tag == "packet":
                    frame, protocols = next(frames, b""), element.findall("proto")
                    definitions.update(definition(protocols))
                    yield [(protocol.get("name"), list(leaves(protocol, frame))) for protocol in protocols]
                    element.clear()
        except xml.etree.ElementTree.ParseError:
            pass            # tshark itself ended early


# --- values ---

def ways_to_say(field):
    """The numbers and the texts, in lower case, that tell the field's value."""
    show = field.show.strip().lower()
    numbers, texts = set(), {show} if show else set()
    if re.fullmatch(r"-?\d+|0x[0-9a-f]+", show):
        number = int(show, 16 if show.startswith("0x") else 10)
        numbers |= {number, number % (1 << 8 * field.size)}
        if number >= 0:
            texts = {str(number - (1 << 8 * field.size))} if number >> (8 * field.size - 1) else set()
    if show in ("true", "false", "0", "1") and (field.bits or field.size == 1 or not numbers):
        truth = show in ("true", "1")
        numbers.add(int(truth))
        texts |= {"true", "set", "yes"} if truth else {"false", "not set", "no"}
    time = TIME.search(show)
    if time and time[1] in MONTHS:
        texts.add(f"{time[3]}-{MONTHS[time[1]]:02}-{int(time[2]):02} {time[4]}")
    if re.fullmatch(r"([0-9a-f]{2}:)+[0-9a-f]{2}", show):
        texts |= {show.replace(":", " "), show.replace(":", "")}
    if ":" in show:
        try:
            texts.add(str(ipaddress.ip_address(show)))
        except ValueError:
            pass
    if field.value and not field.bits and not numbers:
        octets = bytes.fromhex(field.value)
        texts |= {field.value, " ".join(re.findall("..", field.value)), octets.decode("cp1252", "replace").lower()}
        if not octets.strip(b"\0"):
            numbers.add(0)
            texts.add("<null")      # "<null string>" stands for an empty one
        if len(field.value) in (8, 32):
            texts.add(str(ipaddress.ip_address(bytes.fromhex(field.value))))
    return numbers, texts


def holds(text, part):
    """Whether the part stands in the text with no letter or digit beside it."""
    at = text.find(part)
    while at >= 0:
        end = at + len(part)
        if not (at and text[at - 1].isalnum() and part[0].isalnum()) and \
           not (end < len(text) and text[end].isalnum() and part[-1].isalnum()):
            return True
        at = text.find(part, at + 1)
    return False


def says(text, field):
    """Whether the line's text tells the field's value; where both draw its bits, whether they are the same."""
    ours = bits_of(text) if field.bits else ""
    if ours:
        return draws(ours, field.bits)
    numbers, texts = ways_to_say(field)
    text = PICTURE.sub("", text.lower())
    said = {int(n, 16 if n.startswith("0x") else 10) for n in NUMBER.findall(text)} if numbers else set()
    return bool(said & numbers) or any(holds(text, part) for part in texts)


# --- the comparison ---

def lines_near(field, by_start):
    """The texts of the lines over the field's bytes; of bits and bytes inside a word also those of the word."""
    at = by_start.get(field.start, ())
    least = field.size - NARROWER if field.size > 8 else field.size
    near = [text for size, text in at if least <= size <= field.size + WIDER]
    if field.bits or not any(size == field.size for size, _ in at):
        for back in range(1, 4):
            near += [text for size, text in by_start.get(field.start - back, ()) if back + field.size <= size <= 8]
    if field.bits:
        near += [text for size, text in at if size < field.size]
        for ahead in range(1, field.size):
            near += [text for size, text in by_start.get(field.start + ahead, ()) if ahead + size <= field.size]
    return near


def agrees(field, near, told):
    if STATUS.search(field.name) and field.name not in told:
        verdict = {"0": "bad", "bad": "bad", "1": "good", "good": "good"}[field.show.lower()]
        return any(f"({verdict}" in text.lower() for text in near)
    return field.name in told or any(says(text, field) for text in near)


def compare(options, qxview, path):
    """The table's rows by protocol, and what does not agree of the protocol to be shown."""
    rows, misses = collections.defaultdict(Row), []
    definitions = set()
    peer = list(peer_packets(path, options.tshark, definitions))
    for packet, protocols in zip(decoded_packets(qxview, path, *define(definitions), *options.options), peer):
        by_start = collections.defaultdict(list)
        for line in walk(packet.get("lines", [])):
            by_start[line["offset"]].append((line["length"], line["text"]))
        damaged = False
        for name, fields in protocols:
            if damaged:     # its payload is not looked at
                break
            damaged = any(STATUS.search(field.name) and field.show.lower() in ("0", "bad") for field in fields)
            if options.only and name not in options.only:
                continue
            row = rows[name]
            row["packets"] += 1
            for field in fields:
                if STATUS.search(field.name):
                    if field.show.lower() not in ("0", "1", "bad", "good"):
                        continue
                near = lines_near(field, by_start)
                good = bool(near) and agrees(field, near, options.reasons)
                row.update(fields=1, lined=int(bool(near)), agreed=int(good))
                if not good and options.show in (name, field.name, "all"):
                    place = f"{os.path.basename(path)} {packet['packet']} {field.start}+{field.size}"
                    misses.append((field.name, f"{place} {field.show[:60]!r}: {near[:3]}"))
    return rows, misses


def read_reasons(paths):
    """The names of the fields that are told otherwise."""
    reasons = {}
    for path in paths:
        with open(path, encoding="utf-8") as file:
            for line in file:
                if line.strip() and not line.startswith("#"):
                    name, _, reason = line.strip().partition(" ")
                    if not reason:
                        sys.exit(f"{path}: no reason for {name}")
                    reasons[name] = reason
    return reasons


def below(least, rows):
    """Names the shares that are below what was asked for."""
    for wanted in least:
        name, _, percent = wanted.rpartition("=")
        row = rows[name] if name else sum(rows.values(), Row())
        share = 100 * row["agreed"] / row["fields"] if row["fields"] else 0
        if share < float(percent):
            yield f"{name or 'all'}: {share:.1f} % of the fields agree, fewer than {percent} %"


def main():
    parser = option_parser(__doc__)
    parser.add_argument("--told", action="append", metavar="FILE")
    parser.add_argument("--least", action="append", default=[], metavar="[PROTOCOL=]PERCENT")
    parser.add_argument("--show", metavar="PROTOCOL|FIELD|all")
    parser.add_argument("--only", type=lambda names: set(names.split(",")), default=OURS, metavar="PROTOCOL,...")
    parser.add_argument("--all", action="store_const", const=None, dest="only")
    parser.add_argument("--options", type=shlex.split, default=[], metavar='"..."', help="of qxview decode")
    parser.add_argument("--tshark", type=shlex.split, default=[], metavar='"..."')
    options = parser.parse_args()
    options.paths = capture_paths(options.captures)
    options.reasons = read_reasons(options.told or sorted(glob.glob(os.path.join(ROOT, "docs/agreement/*.txt"))))
    rows, examples = collections.defaultdict(Row), collections.defaultdict(list)
    for _, (found, misses) in for_each_capture(options, lambda qxview, path: compare(options, qxview, path)):
        for name, text in misses:
            examples[name].append(text)
        for name, row in found.items():
            rows[name].update(row)
    for name, texts in sorted(examples.items(), key=lambda item: -len(item[1])):
        for text in texts if name == options.show else texts[:1]:
            print(f"{len(texts):6} {name} {text}")
    for name, row in sorted(rows.items(), key=lambda item: -item[1]["fields"]):
        if row["fields"]:
            shares = f"lined {row['lined'] / row['fields']:6.1%}  agree {row['agreed'] / row['fields']:6.1%}"
            print(f"{name:16} {row['packets']:7} packets {row['fields']:8} fields  {shares}")
    low = list(below(options.least, rows))
    for text in low:
        print(text)
    return 1 if low else 0


if __name__ == "__main__":
    exit_with(main)
