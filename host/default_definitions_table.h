// The ports that IANA assigns to the protocols of the built-in decoders, on the transports that each runs over.
// Detection and the user's definitions add the rest: RTP and RTCP have an assigned pair of ports that few applications
// keep, so their bytes decide; H.245, Minet, UNIStim and others have no port of their own.
#pragma once
#include <cstdint>

namespace qxview {

enum DefaultTransport : uint8_t { kOverTcp = 1, kOverUdp = 2, kOverBoth = 3 };

struct DefaultDefinition {
  const char* name;   // as the decoder's row has it
  DefaultTransport transport;
  uint16_t port;
};

inline constexpr DefaultDefinition kDefaultDefinitions[] = {
    {"FTP Data", kOverTcp, 20},
    {"FTP", kOverTcp, 21},
    {"Telnet", kOverTcp, 23},
    {"SMTP", kOverTcp, 25},
    {"DNS", kOverBoth, 53},
    {"HTTP", kOverTcp, 80},
    {"Kerberos", kOverBoth, 88},
    {"POP3", kOverTcp, 110},
    {"ONC RPC", kOverBoth, 111},
    {"MSRPC", kOverTcp, 135},
    {"NetBIOS Name Service", kOverUdp, 137},
    {"NetBIOS Datagram Service", kOverUdp, 138},
    {"NetBIOS Session Service", kOverTcp, 139},
    {"SNMP", kOverUdp, 161},
    {"SNMP", kOverUdp, 162},
    {"LDAP", kOverBoth, 389},
    {"HTTPS", kOverTcp, 443},
    {"SMB", kOverTcp, 445},
    {"Kerberos", kOverBoth, 464},   // changing passwords
    {"TLS", kOverTcp, 465},      // submission over TLS
    {"LPD", kOverTcp, 515},
    {"RTSP", kOverTcp, 554},
    {"SMTP", kOverTcp, 587},     // message submission
    {"TLS", kOverTcp, 636},      // LDAP over TLS
    {"GIOP", kOverTcp, 683},     // CORBA IIOP
    {"TLS", kOverTcp, 853},      // DNS over TLS
    {"TLS", kOverTcp, 989},      // FTP data over TLS
    {"TLS", kOverTcp, 990},      // FTP control over TLS
    {"TLS", kOverTcp, 992},      // Telnet over TLS
    {"TLS", kOverTcp, 993},      // IMAP over TLS
    {"TLS", kOverTcp, 995},      // POP3 over TLS
    {"TDS", kOverTcp, 1433},
    {"RAS", kOverUdp, 1718},     // gatekeeper discovery
    {"RAS", kOverUdp, 1719},
    {"H.225", kOverTcp, 1720},
    {"SCCP", kOverTcp, 2000},
    {"MGCP", kOverUdp, 2427},
    {"Oracle TNS", kOverTcp, 2483},
    {"MGCP", kOverUdp, 2727},
    {"GIOP", kOverTcp, 2809},    // CORBA locator
    {"Megaco", kOverBoth, 2944},
    {"FCIP", kOverTcp, 3225},
    {"IAX2", kOverUdp, 4569},
    {"SIP", kOverBoth, 5060},
    {"TLS", kOverTcp, 5061},     // SIP over TLS
    {"MDNS", kOverUdp, 5353},
    {"LLMNR", kOverBoth, 5355},
};

}  // namespace qxview
