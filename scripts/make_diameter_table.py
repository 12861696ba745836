#!/usr/bin/env python3
"""Makes the dictionary of Diameter: decoders/app/diameter_table.inc.

  scripts/make_diameter_table.py [INCLUDE-FOLDER]

AVP codes, names, types and enumerated values are read from the dictionaries that freeDiameter's extensions load (Debian:
freediameter-extensions, libfreediameter-dev, whose headers may stand in a folder of their own): a small program is
compiled that loads them and prints what they hold. What the standards have beyond that stands in LATER below.
"""
import os
import re
import subprocess
import sys
import tempfile

TABLE = os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "decoders", "app",
                     "diameter_table.inc")
EXTENSIONS = "/usr/lib/freeDiameter"
LOADED = ["nasreq", "eap", "dcca", "rfc5777", "sip", "mip6i", "mip6a", "nas_mipv6", "dcca_3gpp"]
PROGRAM = r"""
#include <freeDiameter/freeDiameter-host.h>
#include <freeDiameter/libfdcore.h>
#include <dlfcn.h>
int main(int argc, char **argv) {
  char *text = NULL;
  size_t size = 0, used = 0;
  if (fd_core_initialize()) return 1;
  for (int i = 1; i < argc; i++) {
    void *extension = dlopen(argv[i], RTLD_NOW | RTLD_GLOBAL);
    int (*start)(int, int, char *) = extension ? dlsym(extension, "fd_ext_init") : NULL;
    if (!start || start(1, 2, NULL)) return 2;
  }
  fd_dict_dump(&text, &size, &used, fd_g_config->cnf_dict);
  fwrite(text, 1, used, stdout);
  return 0;
}
"""
HEAD = """\
// AVPs of Diameter by vendor and code, and the values of enumerated ones: QX_AVP(vendor, code, name, type),
// QX_AVP_VALUE(vendor, code, value, name). Made by scripts/make_diameter_table.py; do not edit. Source: the
// dictionaries of freeDiameter 1.2.1 (Debian freediameter-extensions, BSD-3-clause; RFC 6733, 4005, 4006, 4072, 4740,
// 5447, 5777, 7155; 3GPP TS 29.061, 29.212, 29.214, 29.229, 29.272, 29.273, 29.329, 32.299), and what later issues of
// these standards, RFC 5580, 6942 and 8506 added.
"""
# vendor, code: name, type
LATER = {
    (0, 126): ("Operator-Name", "Octets"), (0, 127): ("Location-Information", "Octets"),
    (0, 128): ("Location-Data", "Octets"), (0, 129): ("Basic-Location-Policy-Rules", "Octets"),
    (0, 130): ("Extended-Location-Policy-Rules", "Octets"), (0, 131): ("Location-Capable", "Octets"),
    (0, 132): ("Requested-Location-Info", "Octets"), (0, 123): ("Delegated-IPv6-Prefix", "Octets"),
    (0, 52): ("Acct-Input-Gigawords", "Unsigned32"),
    (0, 53): ("Acct-Output-Gigawords", "Unsigned32"), (0, 89): ("Chargeable-User-Identity", "Octets"),
    (0, 495): ("Time-Of-Day-Condition", "Grouped"), (0, 496): ("Treatment-Action", "Enumerated"),
    (0, 595): ("QoS-Authorization-Data", "Grouped"),
    (0, 580): ("ERP-Realm", "Identity"), (0, 581): ("ERP-RK-Request", "Grouped"),
    (0, 582): ("Key", "Grouped"), (0, 583): ("Key-Type", "Enumerated"), (0, 584): ("Keying-Material", "Octets"),
    (0, 585): ("Key-Lifetime", "Unsigned32"), (0, 586): ("Key-SPI", "Unsigned32"), (0, 587): ("Key-Name", "Octets"),
    (0, 621): ("OC-Supported-Features", "Grouped"), (0, 622): ("OC-Feature-Vector", "Unsigned64"),
    (0, 623): ("OC-OLR", "Grouped"), (0, 624): ("OC-Sequence-Number", "Unsigned64"),
    (0, 625): ("OC-Validity-Duration", "Unsigned32"), (0, 626): ("OC-Report-Type", "Enumerated"),
    (0, 627): ("OC-Reduction-Percentage", "Unsigned32"),
    (0, 650): ("Load", "Grouped"), (0, 651): ("Load-Type", "Enumerated"), (0, 652): ("Load-Value", "Unsigned64"),
    (0, 301): ("DRMP", "Enumerated"),
    # RFC 8506
    (0, 655): ("User-Equipment-Info-Extension", "Grouped"), (0, 656): ("User-Equipment-Info-IMEISV", "Octets"),
    (0, 657): ("User-Equipment-Info-MAC", "Octets"), (0, 658): ("User-Equipment-Info-EUI64", "Octets"),
    (0, 659): ("User-Equipment-Info-ModifiedEUI64", "Octets"), (0, 660): ("User-Equipment-Info-IMEI", "Octets"),
    (0, 661): ("Subscription-Id-Extension", "Grouped"), (0, 662): ("Subscription-Id-E164", "Text"),
    (0, 663): ("Subscription-Id-IMSI", "Text"), (0, 664): ("Subscription-Id-SIP-URI", "Text"),
    (0, 665): ("Subscription-Id-NAI", "Text"), (0, 666): ("Subscription-Id-Private", "Text"),
    (0, 667): ("Redirect-Server-Extension", "Grouped"), (0, 668): ("Redirect-Address-IPAddress", "Address"),
    (0, 669): ("Redirect-Address-URL", "Text"), (0, 670): ("Redirect-Address-SIP-URI", "Text"),
    (0, 671): ("QoS-Final-Unit-Indication", "Grouped"),
    # 3GPP TS 29.272
    (10415, 1664): ("LCS-Capabilities-Sets", "Unsigned32"), (10415, 1663): ("DL-Buffering-Suggested-Packet-Count", "Integer32"),
    (10415, 1665): ("Group-PLMN-Id", "Octets"), (10415, 1666): ("Local-Group-Id", "Octets"),
    (10415, 1667): ("AESE-Error-Report", "Grouped"), (10415, 1668): ("AIR-Flags", "Unsigned32"),
    (10415, 1669): ("UE-Usage-Type", "Unsigned32"), (10415, 1670): ("Non-IP-PDN-Type-Indicator", "Enumerated"),
    (10415, 1671): ("Non-IP-Data-Delivery-Mechanism", "Unsigned32"), (10415, 1672): ("Additional-Context-Identifier", "Unsigned32"),
    (10415, 1673): ("SCEF-Realm", "Identity"), (10415, 1674): ("Subscription-Data-Deletion", "Grouped"),
    (10415, 1675): ("Preferred-Data-Mode", "Unsigned32"), (10415, 1676): ("Emergency-Info", "Grouped"),
    (10415, 1677): ("V2X-Subscription-Data", "Grouped"), (10415, 1678): ("V2X-Permission", "Unsigned32"),
    (10415, 1679): ("PDN-Connection-Continuity", "Unsigned32"), (10415, 1680): ("eDRX-Cycle-Length", "Grouped"),
    (10415, 1681): ("eDRX-Cycle-Length-Value", "Octets"), (10415, 1682): ("UE-PC5-AMBR", "Unsigned32"),
    (10415, 1683): ("MBSFN-Area", "Grouped"), (10415, 1684): ("MBSFN-Area-ID", "Unsigned32"),
    (10415, 1685): ("Carrier-Frequency", "Unsigned32"), (10415, 1686): ("RDS-Indicator", "Enumerated"),
    (10415, 1687): ("Service-Gap-Time", "Unsigned32"), (10415, 1688): ("Aerial-UE-Subscription-Information", "Unsigned32"),
    (10415, 1689): ("Broadcast-Location-Assistance-Data-Types", "Unsigned64"),
    (10415, 1690): ("Paging-Time-Window", "Grouped"), (10415, 1691): ("Operation-Mode", "Unsigned32"),
    (10415, 1692): ("Paging-Time-Window-Length", "Octets"), (10415, 1693): ("Core-Network-Restrictions", "Unsigned32"),
    (10415, 1694): ("eDRX-Related-RAT", "Grouped"), (10415, 1695): ("Interworking-5GS-Indicator", "Enumerated"),
}
# Enumerated values that the dictionaries do not hold: (vendor, code): {value: name}
VALUES = {
    (10415, 1032): {0: "WLAN", 1: "VIRTUAL", 1000: "UTRAN", 1001: "GERAN", 1002: "GAN", 1003: "HSPA_EVOLUTION",
                    1004: "EUTRAN", 1005: "EUTRAN-NB-IoT", 1006: "NR", 1007: "LTE-M", 1008: "NR-U", 2000: "CDMA2000_1X",
                    2001: "HRPD", 2002: "UMB", 2003: "EHRPD"},
    (10415, 1420): {0: "MME_UPDATE_PROCEDURE", 1: "SGSN_UPDATE_PROCEDURE", 2: "SUBSCRIPTION_WITHDRAWAL",
                    3: "UPDATE_PROCEDURE_IWF", 4: "INITIAL_ATTACH_PROCEDURE"},
    (10415, 1424): {0: "SERVICE_GRANTED", 1: "OPERATOR_DETERMINED_BARRING"},
    (10415, 1456): {0: "IPv4", 1: "IPv6", 2: "IPv4v6", 3: "IPv4_OR_IPv6"},
    (10415, 1438): {0: "STATIC", 1: "DYNAMIC"},
}
TYPES = {"UNSIGNED32": "Unsigned32", "UNSIGNED64": "Unsigned64", "INTEGER32": "Integer32", "INTEGER64": "Integer64",
         "FLOAT32": "Float32", "FLOAT64": "Float64", "GROUPED": "Grouped", "OCTETSTRING": "Octets"}
DERIVED = {"UTF8String": "Text", "Time": "Time", "Address": "Address", "DiameterIdentity": "Identity",
           "DiameterURI": "Text", "IPFilterRule": "Text", "QoSFilterRule": "Text"}
IPV4 = {(0, code) for code in (4, 8, 9, 14)}   # four octets of an address, no family in front (RFC 7155)


def dump(include):
    with tempfile.TemporaryDirectory() as folder:
        source, program = os.path.join(folder, "dump.c"), os.path.join(folder, "dump")
        with open(source, "w", encoding="ascii") as file:
            file.write(PROGRAM)
        subprocess.run(["gcc", "-w", f"-I{include}", source, "-o", program, "-l:libfdcore.so.6", "-l:libfdproto.so.6", "-ldl"],
                       check=True)
        loaded = [f"{EXTENSIONS}/dict_{name}.fdx" for name in LOADED]
        return subprocess.run([program, *loaded], check=True, capture_output=True, text=True).stdout


def read(text):
    """({(vendor, code): (name, type)}, {(vendor, code): {value: name}})"""
    types, values, avps, vendor = {}, {}, {}, None
    for line in text.splitlines():
        if found := re.search(r"dictobj}\(@(\S+)\): TYPE p:\S+ data: (\w+)\s+\"(.*)\"", line):
            types[found[1]] = found[3]
        elif found := re.search(r'ENUMVAL p:(\S+) data: \(\w+\s*\) "(.*)" -> (-?\d+)', line):
            name = re.sub(r"\s*\[RFC\d+\]|\s{2,}", "", found[2]).replace('"', "'")   # some name their standard
            values.setdefault(found[1], {})[int(found[3]) & 0xFFFFFFFF] = name
    enums = {}
    for line in text.splitlines():
        if found := re.search(r"VENDOR p:\S+ data: (\d+)", line):
            vendor = int(found[1])
        elif found := re.search(r'\bAVP p:(\S+) data: v/m:\S+,\s+(\w+), (\d+)\s+"(.*)"', line):
            key = vendor, int(found[3])
            kind = DERIVED.get(types.get(found[1]), TYPES[found[2]])
            if kind in ("Integer32", "Unsigned32") and found[1] in types:
                kind = "Enumerated"
                enums[key] = values.get(found[1], {})
            avps[key] = found[4], "IPv4" if key in IPV4 else kind
    return avps, enums


def read_values():
    """{(vendor, code): {value: name}} of the list that stands beside the table"""
    values = {}
    with open(os.path.join(os.path.dirname(TABLE), "diameter_values.txt"), encoding="ascii") as file:
        for line in file:
            if line.startswith("#"):
                continue
            code, *names = line.split()
            rows = values.setdefault((10415, int(code)), {})
            for place, name in enumerate(names):
                number, equals, rest = name.partition("=")
                rows[int(number) if equals else place] = rest if equals else name
    return values


def main():
    avps, enums = read(dump(sys.argv[1] if len(sys.argv) > 1 else "/usr/include"))
    for key, row in LATER.items():
        avps.setdefault(key, row)
    for key, names in (read_values() | VALUES).items():
        enums[key] = names | enums.get(key, {})
        avps[key] = avps[key][0], "Enumerated"
    with open(TABLE, "w", encoding="ascii") as out:
        out.write(HEAD)
        for (vendor, code), (name, kind) in sorted(avps.items()):
            out.write(f'QX_AVP({vendor}, {code}, "{name}", {kind})\n')
        for (vendor, code), names in sorted(enums.items()):
            for value, name in sorted(names.items()):
                out.write(f'QX_AVP_VALUE({vendor}, {code}, {value}u, "{name}")\n')


if __name__ == "__main__":
    main()
