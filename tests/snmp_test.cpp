#include "decoders/asn1/snmp.h"

#include "tests/support/decoding.h"
#include "tests/support/small_stack.h"

namespace qxview {
int32_t DecodeSnmpPayload(const Place& at, Cursor c);

namespace testing {
namespace {

// An element around its contents; lengths up to 127.
Bytes Wrap(uint8_t identifier, const Bytes& contents) {
  return Bytes{identifier, static_cast<uint8_t>(contents.size())} + contents;
}
Bytes Message(const std::string& version, const Bytes& pdu) {
  return Wrap(0x30, Hex("02 01" + version + "04 06 7075626C6963") + pdu);
}
Bytes Binding(const Bytes& value) { return Wrap(0x30, Hex("06 08 2B06010201010100") + value); }
Bytes Request(uint8_t type, const Bytes& bindings, const char* fields = "02 01 2A  02 01 00  02 01 00") {
  return Wrap(type, Hex(fields) + Wrap(0x30, bindings));
}

std::string Tree(const Bytes& payload) { return TreeOfRun(DecodeSnmpPayload, payload); }

// The lines without those of the elements themselves, as "text" of depth 0 to 2.
std::string Outline(const Bytes& payload, TestHost* host = nullptr) {
  TestView view(host);
  view.Run(DecodeSnmpPayload, payload);
  std::string tree = view.Text(), kept;
  for (size_t at = 0; at < tree.size();) {
    const size_t end = tree.find('\n', at);
    const std::string line = tree.substr(at, end - at);
    const size_t text = line.find_first_not_of(' ');
    const std::string body = line.substr(text);
    const bool isPart = body.rfind("ASN Type", 0) == 0 || body.rfind("ASN Length", 0) == 0 ||
                        body.rfind("ASN Value", 0) == 0 || body[0] == '.' || body[0] == '0' || body[0] == '1';
    if (!isPart) kept += line + "\n";
    at = end + 1;
  }
  return kept;
}

TEST(Snmp, GetOfVersion1) {
  EXPECT_EQ(Outline(Message("00", Request(0xA0, Binding(Hex("05 00"))))),
            R"(SNMPv1: public, Get Request, ID=42, No Error, EI=0 {0+40}
  ASN Object Identifier: 0x30 (SNMP Message) {0+1}
  SNMP Length: 38 Bytes {1+1}
  SNMP Version: 1 {2+3}
  Name: public public {5+8}
  PDU: Get Request {13+1}
    PDU Type: [0xA0] = Get Request {13+1}
  PDU Length: 25 Bytes {14+1}
  Request ID: 42 {15+3}
  Error Status: [0] = No Error {18+3}
  Error Index: 0 {21+3}
  ASN Sequence Identifier: 0x30 (SNMP binding) {24+1}
  Binding Sequence Length: 14 Bytes {25+1}
  Sequence #1: = <NULL> {26+14}
    Sequence Marker: 0x30 (ASN Object) {26+1}
    Sequence Length: 12 Bytes {27+1}
    Object Name  : 1.3.6.1.2.1.1.1.0 {28+10}
    Object Value : <NULL> {38+2}
)");
}

TEST(Snmp, TrapOfVersion1) {
  const Bytes trap = Wrap(0xA4, Hex("06 05 2B06010401  40 04 0A000005  02 01 06  02 01 11  43 03 83D601") +
                                    Wrap(0x30, Binding(Hex("43 03 83D601"))));
  EXPECT_EQ(Outline(Message("00", trap)),
            R"(SNMPv1: public, Trap, E=1.3.6.1.4.1, A=10.0.0.5, GT=Enterprise Specific, ST=17 {0+58}
  ASN Object Identifier: 0x30 (SNMP Message) {0+1}
  SNMP Length: 56 Bytes {1+1}
  SNMP Version: 1 {2+3}
  Name: public public {5+8}
  PDU: Trap {13+1}
    PDU Type: [0xA4] = Trap {13+1}
  PDU Length: 43 Bytes {14+1}
  Enterprise: 1.3.6.1.4.1 {15+7}
  Agent Address: 10.0.0.5 {22+6}
  Generic Trap: [6] = Enterprise Specific {28+3}
  Specific Trap: 17 {31+3}
  Time Ticks: [8640001] = 1 days, 0 hours, 0 minutes, 0.01 seconds {34+5}
  ASN Sequence Identifier: 0x30 (SNMP binding) {39+1}
  Binding Sequence Length: 17 Bytes {40+1}
  Sequence #1: = 1:0:0:0.01 {41+17}
    Sequence Marker: 0x30 (ASN Object) {41+1}
    Sequence Length: 15 Bytes {42+1}
    Object Name  : 1.3.6.1.2.1.1.1.0 {43+10}
    Object Value : 1:0:0:0.01 {53+5}
)");
}

TEST(Snmp, ObjectIdentifiersMayBeEmpty) {
  const Bytes trap = Wrap(0xA4, Hex("06 00  40 04 0A000005  02 01 06  02 01 11  43 01 01") +
                                    Wrap(0x30, Wrap(0x30, Hex("06 00  05 00"))));
  ExpectInOrder(Outline(Message("00", trap)),
                {"Trap, E=<NULL>, A=", "  Enterprise: <NULL> {15+2}", "    Object Name  : <NULL> {"});
}

TEST(Snmp, BulkAndResponseOfVersion2) {
  ExpectInOrder(Outline(Message("01", Request(0xA5, Binding(Hex("05 00")), "02 01 09  02 01 01  02 01 0A"))),
                {"SNMPv2: public, Get Bulk Request, ID=9, NR=1, MR=10 {", "  Request ID: 9 {", "  Non-Repeaters: 1 {",
                 "  Max-Repetitions: 10 {", "  Sequence #1: = <NULL> {"});
  const Bytes values = Binding(Hex("04 03 616263")) + Binding(Hex("06 03 2B0601")) + Binding(Hex("82 00"));
  const std::string response = Outline(Message("01", Request(0xA2, values, "02 02 0100  02 01 12  02 01 02")));
  ExpectInOrder(response, {"SNMPv2: public, Response, ID=256, Inconsistant Name, EI=2 {",
                           "  Error Status: [18] = Inconsistant Name {", "  Sequence #1: = abc {",
                           "    Object Value : abc {", "  Sequence #2: = 1.3.6.1 {", "    Object Value : 1.3.6.1 {",
                           "  Sequence #3: = <NULL> {"});
  const std::string others = Outline(Message("01", Request(0xA2, Binding(Hex("0A 01 05")) + Binding(Hex("46 01 07")))));
  ExpectInOrder(others, {"  Sequence #1: = Undefined {", "    Object Value : Undefined {", "      Undefined Data {",
                         "  Sequence #2: = 7 {"});
}

TEST(Snmp, NamesOfTheMib) {
  TestHost host;
  host.host.findMibEntry = [](void*, const char*, QxMibEntry* out) -> int32_t {
    snprintf(out->path, sizeof out->path, "iso.org.dod.internet.mgmt.sysDescr");
    snprintf(out->suffix, sizeof out->suffix, "0");
    return 1;
  };
  ExpectInOrder(Outline(Message("00", Request(0xA2, Binding(Hex("06 01 2B")))), &host),
                {"  Sequence #1: = 1.3 (mgmt.sysDescr.0) {", "    Object Name  : 1.3.6.1.2.1.1.1.0 (mgmt.sysDescr.0) {",
                 "    Object Value : 1.3 (mgmt.sysDescr.0) {"});
}

int32_t ResultOf(const Bytes& payload) {
  TestView view;
  return view.Run(DecodeSnmpPayload, payload);
}

TEST(Snmp, WhatIsNotSnmp) {
  EXPECT_EQ(ResultOf(Hex("30 04 02 02 0001")), 0) << "a version of two octets";
  EXPECT_EQ(ResultOf(Hex("31 03 02 01 00")), 0);
  EXPECT_EQ(ResultOf(Hex("30 03 02 01 02")), 0) << "version 2 was another protocol";
  const Bytes second = Hex("30 84 00000010 02 01 01");
  EXPECT_EQ(PeekSnmpVersion(MakeCursor(second.data(), 0, 9)), 1);
  EXPECT_EQ(Tree(Hex("30 03 02 01 02")), "");

  const Bytes odd = Message("00", Wrap(0xA9, Hex("02 01 01")));
  EXPECT_EQ(ResultOf(odd), 0);
  EXPECT_NE(Outline(odd).find("PDU: Undefined"), std::string::npos) << "lines that were added stay";
  EXPECT_EQ(ResultOf(Message("00", Wrap(0xA0, Hex("04 01 01")))), 0);
  EXPECT_EQ(ResultOf(Message("00", Wrap(0xA0, Hex("02 84 FFFFFFFF")))), 0);
  EXPECT_EQ(ResultOf(Message("00", Wrap(0xA0, Hex("02 01")))), 2);
  EXPECT_EQ(ResultOf(Message("00", {})), 2);
}

// The microseconds of one decode on a small stack.
double TimeOnSmallStack(const Bytes& payload) {
  double best = 0;
  RunOnSmallStack([&] {
    TestView view;
    best = BestMilliseconds([&] {
      ClearDecodeTree(&view.view(), &view.tree(), true);
      view.Run(DecodeSnmpPayload, payload);
    }, 3);
  });
  return 1000 * best;
}

TEST(Snmp, HostilePayloadsAreBounded) {
  const Bytes head = Hex("30 82 FFFF 02 01 01 04 00 A2 82 FFF0 02 01 01 02 01 00 02 01 00 30 82 FFE0");
  constexpr double kMostMicroseconds = 500000;   // far above what it takes, far below a quadratic walk
  const double bindings = TimeOnSmallStack(head + Repeat(Hex("30 04 06 00 05 00"), 10000));
  EXPECT_LT(bindings, kMostMicroseconds);
  const double empty = TimeOnSmallStack(head + Repeat(Hex("30 00"), 30000));
  EXPECT_LT(empty, 50000);
  const double nested = TimeOnSmallStack(Hex("30 80 02 01 01 04 00 A2 80") + Repeat(Hex("30 80"), 10000));
  EXPECT_LT(nested, 50000);
  const double named = TimeOnSmallStack(head + Hex("30 00 06 82 EA60") + Bytes(60000, 0x81));
  EXPECT_LT(named, 50000);
}

}  // namespace
}  // namespace testing
}  // namespace qxview
