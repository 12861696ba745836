#!/usr/bin/env python3
"""Compares the Kerberos that qxview decodes with tshark, packet by packet and field by field.

usage: oracle_kerberos.py CAPTURE... [--qxview build/qxview] [--jobs 2]

CAPTURE is a file or a directory of capture files. For every packet in which tshark sees Kerberos the values of the
fields in FIELDS are compared in their order, those of messages inside of messages too: message types and versions, realms,
principal names and their types, encryption types and key versions, error codes and texts, nonces, times, options,
pre-authentication data types, salts, addresses, checksums, ciphers, armor, SPAKE. TCP segments are compared as they
stand, none put together. What differs by order stands with its reason. Exit status 1 when anything else differs.
"""
import collections
import datetime
import os
import re

from oracle_support import (Tally, children, decoded_packets, exit_with, for_each_capture, print_others, read_options,
                            tshark_fields, walk)

PORTS = {"88", "464"}
NUMBER, TIME, TRUTH, OCTETS, FLAGS, TEXT, IPV4, IPV6 = range(8)
# tshark's field, how its values are read, and the labels that ours stand under: "parent/label" or "label".
FIELDS = [
    ("kerberos.rm.length", NUMBER, r"Kerberos: (?!\w+ Password).*/Message Length|Record Length"),
    ("kerberos.pvno", NUMBER, r"Protocol Version"),
    ("kerberos.tkt_vno", NUMBER, r"Ticket Version"),
    ("kerberos.msg_type", NUMBER, r"Message Type"),
    ("kerberos.error_code", NUMBER, r"Error Code"),
    ("kerberos.e_text", TEXT, r"Error Text"),
    ("kerberos.realm", TEXT, r"(Request Body|Ticket( #\d+)?|Kerberos: KRB-ERROR.*|Data Value)/(Server |User )?Realm"),
    ("kerberos.crealm", TEXT, r"Client Realm|User ID/User Realm"),
    ("kerberos.name_type", NUMBER, r"Name Type"),
    ("kerberos.CNameString", TEXT, r"Client Name/Name String/Name #\d+"),
    ("kerberos.SNameString", TEXT, r"Server Name/Name String/Name #\d+"),
    ("kerberos.KerberosString", TEXT, r"User Name/Name String/Name #\d+"),
    ("kerberos.etype", NUMBER, r"Encryption Type"),
    ("kerberos.ENCTYPE", NUMBER, r"Encryption Type #\d+"),
    ("kerberos.kvno", NUMBER, r"Key Version Number"),
    ("kerberos.cipher", OCTETS, r"Cipher"),
    ("kerberos.padata_type", NUMBER, r"(PA-DATA|TYPED-DATA) #\d+/Data Type"),
    ("kerberos.nonce", NUMBER, r"Nonce"),
    ("kerberos.from", TIME, r"From"),
    ("kerberos.till", TIME, r"Till"),
    ("kerberos.rtime", TIME, r"Renew Time"),
    ("kerberos.ctime", TIME, r"Client Time"),
    ("kerberos.cusec", NUMBER, r"Client Microseconds"),
    ("kerberos.stime", TIME, r"Server Time"),
    ("kerberos.susec", NUMBER, r"Server Microseconds"),
    ("kerberos.kdc_options", FLAGS, r"KDC Options"),
    ("kerberos.ap_options", FLAGS, r"AP Options"),
    ("kerberos.options", FLAGS, r"User ID/Options"),
    ("kerberos.addr_type", NUMBER, r"Address Type"),
    ("kerberos.addr_ip", IPV4, r"Address #\d+"),
    ("kerberos.addr_ipv6", IPV6, r"Address #\d+"),
    ("kerberos.cksumtype", NUMBER, r"Checksum Type"),
    ("kerberos.checksum", OCTETS, r"Checksum Value"),
    ("kerberos.info_salt", OCTETS, r"ETYPE-INFO #\d+/Salt"),
    ("kerberos.info2_salt", TEXT, r"ETYPE-INFO2 #\d+/Salt"),
    ("kerberos.s2kparams", OCTETS, r"String-to-Key Parameters"),
    ("kerberos.include_pac", TRUTH, r"Include PAC"),
    ("kerberos.auth", TEXT, r"Authentication Package"),
    ("kerberos.armor_type", NUMBER, r"Armor Type"),
    ("kerberos.SPAKEGroup", NUMBER, r"Group #\d+"),
    ("kerberos.group", NUMBER, r"Group"),
    ("kerberos.pubkey", OCTETS, r"Public Key"),
    ("kpasswd.message_len", NUMBER, r"Kerberos: \w+ Password \w+/Message Length"),
    ("kpasswd.version", NUMBER, r"Kerberos: \w+ Password \w+/Protocol Version"),
    ("kpasswd.ap_req_len", NUMBER, r"Kerberos: \w+ Password \w+/AP-RE[QP] Length"),
]
LABELS = [(name, kind, re.compile(f"/(?:{label})$")) for name, kind, label in FIELDS]
HEADER_FIELDS = {name for name, *_ in FIELDS if name.startswith(("kerberos.rm", "kpasswd"))}   # of single lines
FRAME = ["frame.number", "frame.len", "frame.cap_len", "frame.protocols", "tcp.srcport", "tcp.dstport", "udp.srcport",
         "udp.dstport"]


def as_ours(kind, value):
    """A value of tshark's as ours is kept."""
    if kind == NUMBER:
        return str(int(value, 0))
    if kind == TIME:
        return datetime.datetime.strptime(value[:21].strip(), "%b %d, %Y %H:%M:%S").strftime("%Y-%m-%d %H:%M:%S")
    if kind in (OCTETS, FLAGS):
        return value.replace(":", "").upper()
    return {"1": "True", "0": "False"}.get(value, value) if kind == TRUTH else value


def read_peer(path):
    names = [name for name, *_ in FIELDS]
    preferences = ("kerberos.desegment:FALSE", "tcp.desegment_tcp_streams:FALSE", "kpasswd.desegment:FALSE")
    packets = {}
    for values in tshark_fields(path, FRAME + names, preferences, "kerberos || kpasswd"):
        frame = dict(zip(FRAME, values))
        found = {}
        for (name, kind, _), text in zip(FIELDS, values[len(FRAME):]):
            found[name] = [as_ours(kind, value) for value in text.split("\x01") if value] if text else []
        packets[int(frame["frame.number"])] = frame, found
    return packets


def octets_of(text, line):
    """The octets of a line: those of the dump below it; without one those in its text, or the text itself."""
    rows = [row["text"][6:55] for row in walk(children(line)) if row["kind"] == 8]
    if rows:
        return "".join(rows).replace(" ", "")
    if re.fullmatch(r"[0-9A-F]{2}( [0-9A-F]{2})*", text):
        return text.replace(" ", "")
    return text.encode("latin-1").hex().upper()


def flags_of(line):
    """The octets behind the count of unused bits."""
    value = next(child["text"] for child in children(line) if child["text"].startswith("ASN Value : "))
    return "".join(f"{int(bits, 2):02X}" for bits in value[12:].split()[1:])


def read_value(kind, text, line):
    if kind == NUMBER:
        return str(int(re.match(r"\[?(-?(?:0x[0-9A-F]+|\d+))", text)[1], 0))
    if kind == TIME:
        return text.removesuffix(" UTC")
    if kind == OCTETS:
        return octets_of(text, line)
    if kind in (IPV4, IPV6):
        return text if re.fullmatch(r"[0-9.]+" if kind == IPV4 else r"[0-9a-f:]*:[0-9a-f:]*", text) else None
    return flags_of(line) if kind == FLAGS else text


def collect(lines, path, found):
    for line in lines:
        label, _, text = line["text"].partition(":")
        if label == "Kerberos":   # a top line
            label = line["text"]
        here = f"{path}/{label}"
        for name, kind, pattern in LABELS if text else ():
            if pattern.search(here) and (children(line) or name in HEADER_FIELDS):
                value = read_value(kind, text.strip(), line)
                if value is not None:
                    found["error data" if "/Error Data/" in here else "message"][name].append(value)
        collect(children(line), here, found)


def read_ours(qxview, path, wanted):
    """By packet number: the titles of the lines, the values, and those in the data of an error."""
    packets = {}
    for packet in decoded_packets(qxview, path):
        if packet["packet"] not in wanted:
            continue
        found = collections.defaultdict(lambda: collections.defaultdict(list))
        tops = [line for line in packet.get("lines", []) if line["text"].startswith("Kerberos")]
        collect(tops, "", found)
        packets[packet["packet"]] = {line["text"] for line in walk(tops)}, found["message"], found["error data"]
    return packets


def reason(frame, titles):
    """Why a packet may differ by order; None when it may not."""
    if not PORTS & {frame[name] for name in FRAME if name.endswith("port")}:
        return "carried in a security token of another protocol"
    if titles == {"Kerberos Continuation Data"} or "Kerberos Continuation Data" in titles:
        return "a segment that goes on with a message"
    if frame["frame.len"] != frame["frame.cap_len"]:
        return "cut by the capture"
    if "Truncated Data" in titles:
        return "a message cut by its segment: tshark stops, we show what is there"
    return None


def compare(qxview, path):
    tally = Tally()
    peers = read_peer(path)
    ours = read_ours(qxview, path, peers) if peers else {}
    for number, (frame, theirs) in peers.items():
        titles, mine, in_error = ours.get(number, (set(), collections.defaultdict(list), {}))
        if in_error and not theirs["kerberos.padata_type"]:
            tally.order("data of an error whose code tells tshark nothing of them", sum(map(len, in_error.values())))
        else:
            for name, values in in_error.items():   # they end a message
                mine[name] += values
        differing = [name for name, *_ in FIELDS if mine[name] != theirs[name]]
        why = reason(frame, titles) if differing else None
        for name, *_ in FIELDS:
            if name not in differing:
                tally.agree(name, len(theirs[name]))
            elif not why:
                tally.other(name, f"{os.path.basename(path)} packet {number}: {name} ours {mine[name]}, "
                                  f"tshark {theirs[name]}")
        if why:
            tally.order(f"{why} (packets)")
    return tally


def main():
    options = read_options(__doc__)
    whole = Tally()
    for _, tally in for_each_capture(options, compare):
        whole.add(tally)
    whole.print("values")
    return print_others(whole.others)


if __name__ == "__main__":
    exit_with(main)
