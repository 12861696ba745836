#include "decoders/app/summaries.h"
#include "tests/support/summary_cases.h"

namespace qxview::testing {
namespace {

using Data = const uint8_t*;

SummaryMember Tls(int32_t port, int32_t lacking = 0) {
  return [=](Data d, int32_t n, char* out, int32_t size) {
    TlsStream stream{lacking, false};
    return DescribeTls(d, n, out, size, port, &stream);
  };
}
SummaryMember Tds(int32_t flag) {
  return [=](Data d, int32_t n, char* out, int32_t size) { return DescribeTds(d, n, out, size, flag); };
}
SummaryMember Gatekeeper(int32_t flag) {
  return [=](Data d, int32_t n, char* out, int32_t size) { return DescribeH323Gatekeeper(d, n, out, size, flag); };
}
SummaryMember Smb(int32_t direct, int32_t continuation) {
  return [=](Data d, int32_t n, char* out, int32_t size) {
    return DescribeSmb(d, n, out, size, direct, continuation);
  };
}
SummaryMember Minet(int32_t flag) {
  return [=](Data d, int32_t n, char* out, int32_t size) { return DescribeMinet(d, n, out, size, flag); };
}
SummaryMember Giop() {
  return [](Data d, int32_t n, char* out, int32_t size) {
    TextBuffer buffer{static_cast<uint16_t>(size), out};
    return DescribeGiop(d, n, &buffer);
  };
}

const Bytes kRandom = Repeat(Hex("5A"), 32);

// A hello's handshake message around its body, in one record.
Bytes Hello(const std::string& type, const Bytes& body) {
  const size_t length = body.size();
  const Bytes message = Hex(type) + Bytes{0, static_cast<uint8_t>(length >> 8), static_cast<uint8_t>(length)} + body;
  const size_t whole = message.size();
  return Hex("16 0301") + Bytes{static_cast<uint8_t>(whole >> 8), static_cast<uint8_t>(whole)} + message;
}

void AddTls(std::vector<SummaryCase>& cases) {
  const auto add = [&](SummaryMember member, const Bytes& message, const std::string& text) {
    cases.push_back({"TLS", std::move(member), message, text});
  };
  const Bytes name = Ascii("www.example.org");
  const Bytes serverName = Hex("0000 0014 0012 00 000F") + name;
  const Bytes versions = Hex("002B 0007 06 7A7A 0304 0303");
  const Bytes client = Hex("0303") + kRandom + Hex("00 0002 1301 01 00 0023") + serverName + versions;
  add(Tls(443), Hello("01", client),
      "SSL/TLS, TLS 1.0, Handshake: Client Hello, Version: TLS 1.3, Server Name: www.example.org");
  const Bytes server = Hex("0303") + kRandom + Hex("00 1301 00 0006 002B 0002 0304");
  add(Tls(443), Hello("02", server) + Hex("14 0303 0001 01") + Hex("17 0303 0002 AABB 17 0303 0001 CC"),
      "SSL/TLS, TLS 1.0, Handshake: Server Hello, Version: TLS 1.3, Change Cipher Spec, Application Data (HTTP), "
      "2 bytes");
  add(Tls(1), Hex("15 0303 0002 0228"), "SSL/TLS, TLS 1.2, Alert: Fatal, Handshake Failure");
  add(Tls(1), Hex("15 0303 0003 112233"), "SSL/TLS, TLS 1.2, Encrypted Alert");
  add(Tls(1), Hex("16 0303 0006 998877665544"), "SSL/TLS, TLS 1.2, Handshake: Encrypted Message");
  const Bytes exchange = Hex("16 0303 0006 10000002 AABB");
  add(Tls(1), exchange + Hex("14 0303 0001 01 16 0303 000A 00000000 00000000 AABB"),
      "SSL/TLS, TLS 1.2, Handshake: Client Key Exchange, Change Cipher Spec, Handshake: Encrypted Message");
  add(Tls(1), Hex("16 0303 000A 00000000 00000000 AABB"), "SSL/TLS, TLS 1.2, Handshake: Encrypted Message");
  add(Tls(1), Hex("16 0303 0006 0B000004 AABB 16 0303 0006 CCDD 0E000000"),
      "SSL/TLS, TLS 1.2, Handshake: Certificate, Handshake: Continuation, Server Hello Done");
  add(Tls(1), Hex("14 0303 0001 01") + Hello("01", Hex("0303") + kRandom + Hex("00 0002 1301 01 00")) + exchange,
      "SSL/TLS, TLS 1.2, Change Cipher Spec, Handshake: Client Hello, Version: TLS 1.2, Handshake: Client Key Exchange");
  add(Tls(1), Hex("16 0303 0010 0B00 000C 0E00"), "SSL/TLS, TLS 1.2, Handshake: Certificate "
      "[Partial: 11 bytes of 21 pending]");
  add(Tls(993), Hex("17 0303 0010 AABB"), "SSL/TLS, TLS 1.2, Application Data (IMAP), 16 bytes "
      "[Partial: 7 bytes of 21 pending]");
  add(Tls(1, 100), Hex("AABBCC"), "SSL/TLS [Continuation: 3 bytes of 100 pending]");
  add(Tls(1, 2), Hex("AABB 15 0303 0002 0100"),
      "SSL/TLS [Continuation: 2 bytes of 2 pending], TLS 1.2, Alert: Warning, Close Notify");
  add(Tls(1), Hex("AABBCC"), "SSL/TLS Continuation Data");
  add(Tls(1), Hex("80 2E 01 0301 0015 0000 0010"),
      "SSL/TLS, SSL 2.0, Handshake: Client Hello, Version: TLS 1.0");
}

Bytes Wide(const std::string& text) {
  Bytes made;
  for (char c : text) made.insert(made.end(), {static_cast<uint8_t>(c), 0});
  return made;
}

void AddDatabases(std::vector<SummaryCase>& cases) {
  const auto tds = [&](int32_t flag, const Bytes& message, const std::string& text) {
    cases.push_back({"TDS", Tds(flag), message, text});
  };
  tds(1, Hex("01 01 002E 0033 01 00 16000000 12000000 0200 0000000000000000 01000000") + Wide("select 1"),
      "TDS-SQL SQL Batch: select 1, SPID: 51, Packet: 1, Length: 46");
  tds(0, Hex("01 01 0018 0000 01 00") + Wide("select 1"), "TDS-SQL SQL Batch: select 1");
  tds(0, Hex("03 01 000E 0000 01 00 FFFF 0A00 0000"), "TDS-SQL RPC: Sp_ExecuteSql");
  tds(0, Hex("03 01 0012 0000 01 00 0400") + Wide("proc"), "TDS-SQL RPC: proc");
  tds(0, Hex("04 01 0020 0000 01 00 AA 1000 15480000 01 0E 0200") + Wide("no"), "TDS-SQL Response: Error 18453, no");
  tds(0, Hex("10 01 006A 0000 01 00") + Repeat(Hex("00"), 40) + Hex("5E00 0200") + Repeat(Hex("00"), 50) + Wide("sa"),
      "TDS-SQL Login7, User: sa");
  tds(1, Hex("02"), "TDS-SQL Data");
  tds(1, Hex("77 01 0010 0000 01 00 00"), "TDS-SQL Data");
  const auto tns = [&](const Bytes& message, const std::string& text) {
    cases.push_back({"TNS", DescribeTns, message, text});
  };
  tns(Hex("0030 0000 01 00 0000 0136 012C 0000 0800 7FFF 4F98 0000 0001 000A 0024 0000 0000 0000") +
          Ascii("00") + Ascii("(SID=orcl)"),
      "Oracle TNS Connect, Version: 310, (SID=orcl)");
  tns(Hex("0020 0000 02 00 0000 0136"), "Oracle TNS Accept, Version: 310");
  tns(Hex("0010 0000 04 00 0000 22 01 0004") + Ascii("ERR1"), "Oracle TNS Refuse, Reason: 34, 1, ERR1");
  tns(Hex("0010 0000 06 00 0000 0000"), "Oracle TNS Data, Length: 16");
  tns(Hex("AABB"), "Oracle TNS Data");
}

void AddPhones(std::vector<SummaryCase>& cases) {
  const auto add = [&](const std::string& protocol, SummaryMember member, const Bytes& message,
                       const std::string& text) { cases.push_back({protocol, std::move(member), message, text}); };
  add("SCCP", DescribeSccp,
      Hex("04000000 00000000 06000000  10000000 00000000 11010000 05000000 01000000 07000000"),
      "Cisco SCCP Off Hook, Call State Connected, Line: 1, Call: 7");
  add("SCCP", DescribeSccp, Hex("08000000 00000000 03000000 0F000000"), "Cisco SCCP Keypad Button #");
  add("SCCP", DescribeSccp, Hex("04000000 00000000 FF0F0000"), "Cisco SCCP Message 0x0FFF");
  add("SCCP", DescribeSccp, Hex("FFFFFFFF 00000000 FF0F0000"), "Cisco SCCP Data");
  add("Q.931", DescribeH323HostCall,
      Hex("0300 0020 08 02 0001 05 04 03 8090A3 6C 05 00 80 313233 70 03 81 3939 7E 0000"),
      "H.323 Host Call/H.225.0/Q.931 SETUP, Call Reference: 1, Calling: 123, Called: 99");
  add("Q.931", DescribeH323HostCall, Hex("08 02 8001 5A 08 02 8090"),
      "H.323 Host Call/H.225.0/Q.931 RELEASE COMPLETE, Call Reference: 1 (to the originator), "
      "Cause: Normal call clearing");
  add("Q.931", DescribeH323HostCall, Hex("0300 0004"), "H.323 Host Call/H.225.0/Q.931 Keep-Alive");
  add("Q.931", DescribeH323HostCall, Hex("41"), "H.323 Host Call/H.225.0/Q.931 Data");
  add("RAS", Gatekeeper(1), Hex("0E 40 0001 06 0008914A0002"), "H.225.0/H.323 Gatekeeper registrationRequest, "
      "Request Number: 2");
  add("RAS", Gatekeeper(0), Hex("2A 00 0FFF"), "H.225.0/H.323 Gatekeeper admissionConfirm");
  add("RAS", Gatekeeper(1), Hex("80 05 000102"), "H.225.0/H.323 Gatekeeper requestInProgress");
  add("RAS", Gatekeeper(1), Hex("BF"), "H.225.0/H.323 Gatekeeper Data");
  add("H.245", DescribeH245, Hex("0300 0008 02 70 0106"), "H.245 Request: terminalCapabilitySet");
  add("H.245", DescribeH245, Hex("21 80"), "H.245 Response: terminalCapabilitySetAck");
  add("H.245", DescribeH245, Hex("FF"), "H.245 Data");
  add("IAX2", DescribeIax2, Hex("8001 0000 00000003 00 00 06 01 01 03 313233 02 02 3939"),
      "IAX2 NEW, Source Call: 1, Destination Call: 0, Time: 3, Out: 0, In: 0, Called: 123, Calling: 99");
  add("IAX2", DescribeIax2, Hex("8001 8002 00000003 01 02 02 04"),
      "IAX2 Voice: G.711 mu-law, Source Call: 1, Destination Call: 2, Time: 3, Out: 1, In: 2, Retransmission");
  add("IAX2", DescribeIax2, Hex("0001 0014 AABB"), "IAX2 Mini Voice, Source Call: 1, Time: 20, 2 bytes");
  add("IAX2", DescribeIax2, Hex("0000 0102"), "IAX2 Meta Trunk");
  add("IAX2", DescribeIax2, Hex("80"), "IAX2 Data");
  add("UNIStim", DescribeUnistim, Hex("00000005 02 02 01020304 99 03 04 96 03 02"),
      "Nortel UNIStim Payload, Sequence: 5, Terminal: 1.2.3.4, Phone Key: Off Hook, Phone Audio: Headset Connected");
  add("UNIStim", DescribeUnistim, Hex("00000005 01"), "Nortel UNIStim ACK, Sequence: 5");
  add("UNIStim", DescribeUnistim, Hex("00000005 02 01 17 03 99"),
      "Nortel UNIStim Payload, Sequence: 5, Switch Display: Command 0x99");
  add("UNIStim", DescribeUnistim, Hex("0000"), "Nortel UNIStim Data");
  add("Minet", Minet(1), Hex("0102 03"), "Minet Message 0x0102, 3 bytes");
  add("Minet", Minet(0), Hex("01"), "Minet Data");
}

void AddManagement(std::vector<SummaryCase>& cases) {
  const auto snmp = [&](const Bytes& message, const std::string& text) {
    cases.push_back({"SNMP", DescribeSnmp, message, text});
  };
  snmp(Hex("302902010004067075626C6963A01C02041A2B3C4D020100020100300E300C06082B060102010101000500"),
       "SNMPv1 GetRequest, Request ID: 439041101, Object: 1.3.6.1.2.1.1.1.0, Community: public");
  snmp(Hex("301B020101040170A2130201050201020201013008 300606022B060500"),
       "SNMPv2 GetResponse, Request ID: 5, Error: noSuchName, Index: 1, Object: 1.3.6, Community: p");
  snmp(Hex("302002010004067075626C6963A41306052B06010401 4004 7F000001 020106 020103"),
       "SNMPv1 Trap, Enterprise: 1.3.6.1.4.1, Generic: enterpriseSpecific, Specific: 3, Community: public");
  const Bytes version3 = Hex("020103 300D 020177 02020FFF 040101 020103 0412 3010 0400 020100 020100 0402 6162 0400 0400");
  snmp(Hex("302A") + version3 + Hex("0402 AABB"), "SNMPv3 Encrypted, Message ID: 119, User: ab");
  snmp(Hex("3038") + version3 + Hex("3010 0400 0400 A10A 020109 020100 020100 3000"),
       "SNMPv3 GetNextRequest, Request ID: 9, Message ID: 119, User: ab");
  snmp(Hex("3003020109"), "SNMP Data");
  snmp(Hex("04"), "SNMP Data");
  const auto ldap = [&](const Bytes& message, const std::string& text) {
    cases.push_back({"LDAP", DescribeLdap, message, text});
  };
  ldap(Hex("3012 020101 600D 020103 0404 636E3D61 8002 7077"),
       "LDAP Bind Request, ID: 1, Version: 3, Name: cn=a, Simple");
  ldap(Hex("300C 020102 6507 0A0120 0400 0400"), "LDAP Search Result Done, ID: 2, Result: No Such Object");
  ldap(Hex("3013 020103 630E 0404 64633D78 0A0102 0A0100 020100"),
       "LDAP Search Request, ID: 3, Base: dc=x, Scope: Subtree");
  ldap(Hex("3005 020104 4200"), "LDAP Unbind Request, ID: 4");
  ldap(Hex("00000004 AABBCCDD"), "LDAP SASL Data");
  ldap(Hex("41"), "LDAP Continuation");
  const auto smb = [&](SummaryMember member, const Bytes& message, const std::string& text, int32_t result = 1) {
    cases.push_back({"SMB", std::move(member), message, text, result});
  };
  const Bytes first = Hex("FF534D42 72 00000000 18 0128 0000 0000000000000000 0000 0100 FEFF 0200 0300");
  smb(Smb(0, 0), first, "SMB/CIFS Negotiate Protocol Request, TID: 1, UID: 2, MID: 3");
  smb(Smb(1, 0), Hex("00 000020") + first, "SMB/CIFS Negotiate Protocol Request, TID: 1, UID: 2, MID: 3");
  smb(Smb(0, 0), Hex("FF534D42 75 220000C0 98 0140"), "SMB/CIFS Tree Connect AndX Response, Status: STATUS_ACCESS_DENIED");
  smb(Smb(0, 0), Hex("FF534D42 75 01EEFFC0 98 0140"), "SMB/CIFS Tree Connect AndX Response, Status: 0xC0FFEE01");
  smb(Smb(0, 0), Hex("FF534D42 02 01000500 88 0100"), "SMB/CIFS Open File Response, Error Class: 1 = ERRDOS, Code: 5 = ERRnoaccess");
  smb(Smb(1, 0), Hex("00000040 FE534D42 4000 0100 03010000 0F00 0100 01000000 00000000 0700000000000000"),
      "SMB/CIFS SMB2 Change Notify Response, Status: Pending, Message ID: 7");
  smb(Smb(1, 0), Hex("85000000"), "SMB/CIFS Session Keep-Alive");
  smb(Smb(0, 1), Hex("AABB"), "SMB/CIFS Continuation");
  smb(Smb(0, 0), Hex("AABB"), "", 0);
}

void AddOthers(std::vector<SummaryCase>& cases) {
  const auto add = [&](const std::string& protocol, SummaryMember member, const Bytes& message,
                       const std::string& text) { cases.push_back({protocol, std::move(member), message, text}); };
  add("BitTorrent", DescribeBitTorrent,
      Hex("13") + Ascii("BitTorrent protocol") + Bytes(8) + Repeat(Hex("AB"), 20) + Ascii("-QX0001-") +
          Repeat(Hex("01"), 12),
      "BitTorrent Handshake, Info Hash: ABABABABABABABABABABABABABABABABABABABAB, Peer: -QX0001-");
  add("BitTorrent", DescribeBitTorrent, Hex("0000000D 06 00000005 00004000 00004000"),
      "BitTorrent Data: Request, Piece: 5, Offset: 16384, Length: 16384");
  add("BitTorrent", DescribeBitTorrent, Hex("00000000"), "BitTorrent Data: Keep Alive");
  add("BitTorrent", DescribeBitTorrent, Hex("FFFFFFFF 06"), "BitTorrent Data");
  add("CGP", DescribeCgp, Hex("1A") + Ascii("CGP/01"), "Citrix CGP Hello, Version: 01 [Partial: 7 bytes of 27 pending]");
  add("CGP", DescribeCgp, Hex("AABB"), "Citrix CGP Data, 2 bytes");
  add("WIDS", DescribeWirelessIds,
      Hex("0002 010203040506 00 0B 000000000000 0040 0018 0000000000000000 8000 0000 FFFFFFFFFFFF 001122334455"),
      "Cisco Wireless IDS Version: 2, Channel: 11, Length: 64, Beacon, 00:11:22:33:44:55 -> FF:FF:FF:FF:FF:FF");
  add("WIDS", DescribeWirelessIds, Hex("0002"), "Cisco Wireless IDS Data");
  add("GIOP", Giop(), Hex("47494F50 0100 01 00 28000000 00000000 05000000 01 000000 04000000 4B455931 05000000") +
          Ascii("ping") + Hex("00"),
      "GIOP 1.0 Request, Request: 5, Operation: ping, Size: 40");
  add("GIOP", Giop(), Hex("47494F50 0102 00 00 00000024 00000007 03 000000 0000 0000 00000002 4B31 0000 00000003") +
          Ascii("go") + Hex("00"),
      "GIOP 1.2 Request, Request: 7, Operation: go, Size: 36");
  add("GIOP", Giop(), Hex("47494F50 0102 00 01 0000000C 00000007 00000002"),
      "GIOP 1.2 Reply, Request: 7, Status: System Exception, Size: 12");
  add("GIOP", Giop(), Hex("47494F50 0102 02 05 00000000"), "GIOP 1.2 Close Connection, Size: 0, Fragmented");
  add("GIOP", Giop(), Hex("AABB"), "GIOP Continuation Data");
}

}  // namespace

std::vector<SummaryCase> BinaryProtocolCases() {
  std::vector<SummaryCase> cases;
  AddTls(cases);
  AddDatabases(cases);
  AddPhones(cases);
  AddManagement(cases);
  AddOthers(cases);
  return cases;
}

}  // namespace qxview::testing
