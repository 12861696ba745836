#!/usr/bin/env python3
"""Compares what qxview and tshark open of TLS and DTLS records with the same secrets, packet by packet.

    scripts/oracle_tls.py [--key-log FILE] [--jobs N] [--verbose] CAPTURE...

Without a key log the secrets are those that the captures hold themselves. What is compared: the types of handshake messages
and the descriptions of alerts, in clear or opened, and HTTP's methods and codes inside. A packet where tshark tells nothing that
qxview tells counts by itself: ciphers that only one of them opens. The exit status is 1 when qxview opens less.
"""
import oracle_support as oracle

# What is compared: tshark's fields, qxview's keys.
PAIRS = {
    "handshake messages": (("tls.handshake.type", "dtls.handshake.type"), ("tls.handshake_type", "dtls.handshake_type")),
    "alerts": (("tls.alert_message.desc", "dtls.alert_message.desc"), ("tls.alert_description", "dtls.alert_description")),
    "HTTP codes": (("http.response.code",), ("http.code",)),
    "HTTP methods": (("http.request.method",), ("http.method",)),
}
FIELDS = ["frame.number", *(field for fields, _ in PAIRS.values() for field in fields)]
KEYS = {key: name for name, (_, keys) in PAIRS.items() for key in keys}
PORTS = (9443, 8443)   # of the recordings; what others have there


def read_theirs(path, key_log):
    preferences = ("tls.desegment_ssl_records:FALSE", "tls.desegment_ssl_application_data:FALSE", "tcp.desegment_tcp_streams:FALSE")
    if key_log:
        preferences += ("tls.keylog_file:" + key_log,)
    told = {}
    ports = ("udp.port==4433,dtls", *(f"tcp.port=={port},tls" for port in PORTS))
    for values in oracle.tshark_fields(path, FIELDS, preferences=preferences, decode_as=ports):
        at = 1
        for name, (fields, _) in PAIRS.items():
            found = [v for value in values[at:at + len(fields)] for v in value.split(oracle.AGGREGATOR) if v]
            at += len(fields)
            told[int(values[0]), name] = sorted(found)
    return told


def read_ours(qxview, path, key_log):
    options = ["--keys", *(f"--decode-as=tcp:{port}=TLS" for port in PORTS)]
    if key_log:
        options += ["--set", "TlsKeyLog=" + key_log]
    told = {}
    for packet in oracle.decoded_packets(qxview, path, *options):
        for line in oracle.walk(packet["lines"]):
            name = KEYS.get(line.get("key"))
            if name:
                told.setdefault((packet["packet"], name), []).append(str(line["value"]))
    return {place: sorted(values) for place, values in told.items()}


def main():
    parser = oracle.option_parser(__doc__, "print each packet that differs")
    parser.add_argument("--key-log")
    options = parser.parse_args()
    tally = oracle.Tally()
    for path in oracle.capture_paths(options.captures):
        theirs, ours = read_theirs(path, options.key_log), read_ours(options.qxview, path, options.key_log)
        for place in sorted(set(theirs) | set(ours)):
            a, b = theirs.get(place, []), ours.get(place, [])
            if not a and not b:
                continue
            if a == b:
                tally.agree(place[1], len(a))
            elif all(b.count(value) >= a.count(value) for value in a):
                tally.agree(place[1], len(a))
                tally.order("opened by qxview alone", len(b) - len(a))
            else:
                tally.other(place[1], f"{path} packet {place[0]}: {place[1]}: tshark {a}, qxview {b}")
    tally.print()
    return oracle.print_others(tally.others if options.verbose else tally.others[:5])


if __name__ == "__main__":
    oracle.exit_with(main)
