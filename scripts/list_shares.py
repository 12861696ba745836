#!/usr/bin/env python3
"""How often `qxview list` names the top protocol that tshark names, protocol by protocol.

  scripts/list_shares.py [--threshold N] CAPTURE...

Both look at each packet by itself: tshark runs without reassembly (of TCP streams and of IP fragments), because a summary
is made from one payload alone. A packet counts as named when its summary matches the pattern of the protocol in tshark's
column; a protocol without a pattern here has to stand in the summary by its own name. The table shows the protocols with
at least N packets (default 1), and for those whose share is low why it is.
"""
import argparse
import collections
import os
import re
import subprocess
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
QXVIEW = os.environ.get("QXVIEW", os.path.join(ROOT, "build", "qxview"))
ALONE = [option for name in ("tcp.desegment_tcp_streams", "ip.defragment", "ipv6.defragment")
         for option in ("-o", name + ":FALSE")]

# What tshark calls it: a pattern over the summary, where its own name does not stand in it.
PATTERNS = {
    "802.11": r"^802\.11|^802\.1X",
    "ARP": r"^ARP", "RARP": r"^ARP Reverse",
    "BACnet-APDU": "BACnet", "BACnet-NPDU": "BACnet",
    "BFD Control": "BFD", "BOOTP": "DHCP", "BROWSER": "NetBIOS Datagram", "CHDLC": "SLARP|IPv4|CDP",
    "CLASSIC-STUN": "STUN", "DB-LSP-DISC": "Dropbox", "DCERPC": "MSRPC", "DNS": r"^DNS", "EAP": "EAPOL EAP",
    "ESIS": "ES-IS", "ESP": r"^ESP|IPsec NAT-T", "FIX": r"^FIX|, (Sequence|Sender|Target): |^(Heartbeat|Test Request|Logon)", "FTP": r"^FTP (Command|Reply|Data)",
    "FTP-DATA": r"^FTP Data ", "GQUIC": "QUIC", "GEONW": "GeoNetworking", "GTP": r"GTP", "H.225.0": r"H\.225", "HART_IP": "HART-IP", "HTTP": r"^HTTP", "HTTP3": "QUIC",
    "ICMP": r"^ICMP ", "IGMP": r"^IGMP", "IPv4": r"^IPv4", "IPv6": r"^IPv6|^Hop-by-Hop", "IPX": "IPX", "ISAKMP": "ISAKMP|IPsec",
    "ISIS": "IS-IS", "KRB5": "Kerberos", "LLC": r"^802\.2|LLC|^(OSI|CLNP|ES-IS|IS-IS|SNA|NetBIOS|XID|VINES)",
    "LLMNR": r"^Microsoft LLMNR", "MDNS": r"^Multicast DNS", "MIPv6": "IPv6 Mobility", "MPTCP": r"^TCP",
    "Modbus/TCP": "Modbus", "NBDS": "NetBIOS Datagram", "NBIPX": "IPX", "NBNS": "NetBIOS Name Service",
    "NBSS": r"NetBIOS Session|SMB/CIFS", "NFS": "ONC RPC", "NMPI": "IPX", "OMRON": "OMRON", "OSPF": r"^OSPF",
    "PGSQL": "PostgreSQL", "PIMv1": "PIM", "PIMv2": "PIM", "PNIO-CM": "PROFINET", "AMQP": "AMQP", "POP": r"^POP3", "PPPoED": "PPPoE",
    "PTPv2": "PTP", "Portmap": "ONC RPC", "Q.931": r"Q\.931", "RTCP": r"^RTCP", "RTP": r"^RTP", "SIP": r"^SIP",
    "SKINNY": "SCCP", "SLARP": "SLARP", "SMB": r"^SMB/CIFS (?!SMB2)", "SMB2": r"^SMB/CIFS SMB2", "SMTP": r"^SMTP",
    "SNMP": r"^SNMP", "SRVLOC": "SLP", "SSH": "SSH", "SSHv2": "SSH", "SSL": r"^SSL/TLS", "SSLv2": r"^SSL/TLS",
    "SSLv3": r"^SSL/TLS", "STP": "Spanning Tree|PVST", "TCP": r"^TCP", "TDS": r"^TDS", "TELNET": r"^TELNET", "TLS": r"^SSL/TLS",
    "TLSv1": r"^SSL/TLS", "TLSv1.1": r"^SSL/TLS", "TLSv1.2": r"^SSL/TLS", "TLSv1.3": r"^SSL/TLS", "TNS": r"^Oracle TNS",
    "UDP": r"^UDP", "UDPENCAP": "IPsec", "VRRP": "VRRP", "XMPP": "XMPP",
    "AoE": "ATA over Ethernet", "TPKT": r"H\.225|TPKT", "PPP IPCP": "PPP IPCP", "PPP LCP": "PPP LCP", "PPP PAP": "PPP PAP",
    "EAPOL": "EAPOL", "MSNLB": "Load Balancing", "MS NLB": "Load Balancing", "HSRPv2": "HSRP", "RIPv1": "RIP", "RIPv2": "RIP",
    "IEC 60870-5-104": "IEC 60870", "IEC 60870-5 ASDU": "IEC 60870", "Ethernet": r"Frame, |^Ethertype|LLC|Loopback",
    "BitTorrent": r"^BitTorrent", "DTLS": "DTLS", "AARP": "AppleTalk", "DDP": "AppleTalk", "CFM": "Connectivity Fault",
    "ERSPAN": r"GRE", "NHRP": r"NHRP|GRE", "BFD Echo": "BFD Echo", "LISP": "LISP", "MPLS ECHO": "MPLS",
    "DVMRP": "DVMRP", "CIP": "EtherNet/IP", "CIP CM": "EtherNet/IP", "ENIP": "EtherNet/IP", "IGMPv1": "IGMP", "IGMPv2": "IGMP",
    "IGMPv3": "IGMP", "MEMCACHE": "Memcached", "RESP": "Redis", "CQL": "Cassandra", "ISO": "ISO-TSAP", "RSH": "Rsh",
}

# Why a share is low.
NO_PORT = "no decoder here, and no port of its own: tshark recognises the payload or follows a conversation"
NO_DECODER = "no decoder here: the summary is that of the layer which carries it"
PORT_ONLY = "no decoder here: named where it stands on its assigned port"
DAMAGED = "damaged headers: the decode stops where tshark goes on"
REASONS = {
    "TCP": "segments of ports with a decoder, which tshark leaves unnamed for want of whole messages",
    "UDP": "media of calls: detection here finds RTP by its payload, tshark by default only where a call was seen",
    "TLS": "TLS on ports without a definition, which tshark recognises on any port; bad checksums; inside VXLAN",
    "HTTP": "HTTP on ports without a definition; bad checksums",
    "DNS": "inside VXLAN, on link types without a decoder, bad checksums", "ICMP": "inside GRE; ARCNET; bad checksums",
    "ARP": "ARCNET, which has no decoder here", "CHDLC": "frames of a header alone: the medium is named", "VNC": "port 6900, which is not VNC's",
    "QUIC": "ports that are not QUIC's: tshark recognises the payload",
    "STUN": "ports that are not STUN's: tshark recognises the payload",
    "RTCP": "a profile of feedback packets behind STUN; tshark follows the conversation",
    "FTP-DATA": "passive data ports: tshark follows the control connection", "H.245": "on the port that the call set up",
    "SMB": "over NetBEUI and NetBIOS over IPX, which have no summary here", "BROWSER": "over NetBEUI, which has no summary here",
    "OMRON": "looks like RTP and is named so by detection", "BACnet-APDU": "looks like RTP and is named so by detection",
    "RakNet": "no port of its own; some looks like RTP", "L2TP": "bad header checksums", "IPv6": DAMAGED, "MIPv6": DAMAGED,
}


def rows_of(command):
    """The lines that a command writes, whatever its exit status."""
    result = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=False, timeout=300)
    return result.stdout.decode("utf-8", "replace").split("\n")[:-1]


def names_of(capture):
    """What tshark's column says of each packet."""
    return rows_of(["tshark", "-n", "-r", capture, *ALONE, "-T", "fields", "-e", "_ws.col.Protocol"])


def summary_of(row):
    """The summary column of a line of the list, behind number, time, two addresses and length."""
    found = re.match(r" *\d+ +-?[\d.]+  (?:\S+)? +(?:\S+)? +\d+  (.*)", row)
    return found[1] if found else row


def summaries_of(capture):
    return [summary_of(row) for row in rows_of([QXVIEW, "list", capture])]


def base_name(name):
    """The protocol's own name without its content's: "HTTP/JSON" is HTTP, "GTP <TCP>" is GTP."""
    if name in PATTERNS:
        return name
    name = re.sub(r" <.*>$", "", name)
    name = re.sub(r"^(DTLS).*", r"\1", name)
    name = re.sub(r"^ISIS .*", "ISIS", name)
    return name.split("/")[0] if name.split("/")[0] in PATTERNS else name


def is_named(name, summary):
    """Whether the summary names the protocol."""
    pattern = PATTERNS.get(name)
    if pattern is None:
        pattern = r"(?<![\w.])" + re.escape(name) + r"(?!\w)"
    return re.search(pattern, summary, re.I) is not None


def reason_for(name, packets, named):
    """Why the share is what it is; nothing for a good one."""
    if named >= 0.95 * packets:
        return ""
    if name in REASONS:
        return REASONS[name]
    if name.startswith(("TLS", "SSL")):
        return REASONS["TLS"]
    return PORT_ONLY if named else NO_PORT


def print_table(counts, threshold):
    """counts: name to [packets, named]."""
    total = [sum(count[i] for count in counts.values()) for i in (0, 1)]
    print("| tshark says | packets | named | share | |\n|---|---:|---:|---:|---|")
    for name, (packets, named) in sorted(counts.items(), key=lambda item: -item[1][0]):
        if packets >= threshold:
            print(f"| {name} | {packets} | {named} | {named / packets:.1%} | {reason_for(name, packets, named)} |")
    print(f"| all {len(counts)} | {total[0]} | {total[1]} | {total[1] / max(1, total[0]):.1%} | |")


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--threshold", type=int, default=1, metavar="N")
    parser.add_argument("captures", nargs="+", metavar="CAPTURE")
    arguments = parser.parse_args()
    counts, uneven = collections.defaultdict(lambda: [0, 0]), 0
    for capture in arguments.captures:
        names, summaries = names_of(capture), summaries_of(capture)
        uneven += len(names) != len(summaries)
        for name, summary in zip(names, summaries):
            count = counts[base_name(name)]
            count[0] += 1
            count[1] += is_named(base_name(name), summary)
    print_table(counts, arguments.threshold)
    if uneven:
        print(f"\n{uneven} captures have packets that only one of the two reads (damaged files, other blocks).")
    return 0 if counts else 1


if __name__ == "__main__":
    sys.exit(main())
