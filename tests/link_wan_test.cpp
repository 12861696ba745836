// PPP, Cisco HDLC and Frame Relay.
#include "tests/support/decoding.h"

namespace qxview::testing {
namespace {

constexpr uint8_t kWan = 3;
constexpr uint16_t kLinkPpp = 9, kLinkPppHdlc = 50, kLinkCiscoHdlc = 104, kLinkFrameRelay = 107;

const Bytes kArp = Hex("0001 0800 06 04 0001  02 00 00 00 00 02  0A 00 00 01  00 00 00 00 00 00  0A 00 00 02");

Record Linked(const Bytes& frame, uint16_t linkType) {
  Record record(frame, kWan);
  record->linkType = linkType;
  return record;
}

std::string FrameTypeOf(const std::string& tree) {
  const size_t at = tree.find("Frame type:  ") + 13;
  return tree.substr(at, tree.find(" {", at) - at);
}

TEST(Wan, ProtocolIsToldByTheLinkTypeOrTheFirstBytes) {
  EXPECT_EQ(FrameTypeOf(TreeOf(Linked(Hex("0F00 0806"), kLinkPpp))), "Cisco HDLC") << "lines that speak both";
  EXPECT_EQ(FrameTypeOf(TreeOf(Linked(Hex("C021 01"), kLinkPppHdlc))), "PPP");
  EXPECT_EQ(FrameTypeOf(TreeOf(Linked(Hex("FF03 C021"), kLinkFrameRelay))), "Frame Relay");
  EXPECT_EQ(FrameTypeOf(TreeOf(Hex("FF03 C021 01 01 0004"), kWan)), "PPP");
  EXPECT_EQ(FrameTypeOf(TreeOf(Hex("8057 01 01 0004"), kWan)), "PPP");
  EXPECT_EQ(FrameTypeOf(TreeOf(Hex("8F00 8035 0000"), kWan)), "Cisco HDLC");
  EXPECT_EQ(FrameTypeOf(TreeOf(Hex("1841 03 CC 45"), kWan)), "Frame Relay");
  EXPECT_EQ(FrameTypeOf(TreeOf(Hex("1841 0800 45"), kWan)), "Frame Relay");
  ExpectInOrder(TreeOf(Hex("01 3F 22"), kWan), {"Frame type:  Unknown", "Raw Data {8:0+3}"});
  EXPECT_EQ(FrameTypeOf(TreeOf(Hex("1841 03 55 01"), kWan)), "Unknown") << "no identifier has this number";
}

TEST(Wan, TrafficFlowAndErrorsStandInTheSummary) {
  Record record = Linked(Hex("FF03 C021 01 01 0004"), kLinkPpp);
  record->direction = static_cast<uint8_t>(LinkDirection::kSent);
  record->linkNumber = 3;
  record->receiveErrors = kReceiveAbort;
  record->partial = 1;
  ExpectInOrder(TreeOf(record), {"[Abort error] {", "Network: WAN,  Frame type:  PPP {", "Frame network size: 8 {",
                                 "Saved partial packet size:  8 {", "Traffic Flow: DTE -> DCE Link 3 {0+8}"});
  record->direction = static_cast<uint8_t>(LinkDirection::kReceived);
  record->mediaType = 4;
  ExpectInOrder(TreeOf(record), {"Traffic Flow: DCE -> DTE Link 3 {0+8}"});
  record->direction = 0;
  EXPECT_EQ(TreeOf(record).find("Traffic Flow"), std::string::npos);
}

TEST(Ppp, HeaderMayLeaveOutWhatItCan) {
  ExpectInOrder(TreeOf(Linked(Hex("FF03 C021 01 02 0004"), kLinkPpp)),
                {"PPP Header:  Protocol = LCP {0+4}", "Address: 0xFF = All Stations {0+1}",
                 "Control: 0x03 = Unnumbered Information {1+1}", "Protocol: 0xC021 = LCP {2+2}", "LCP: Configure-Request, Identifier 2 {4+4}"});
  ExpectInOrder(TreeOf(Linked(Hex("21") + Bytes(20), kLinkPpp)),
                {"PPP Header:  Protocol = IP {0+1}", "0x0021 = IP {0+1}"});
  ExpectInOrder(TreeOf(Linked(Hex("0281 00010140 40"), kLinkPpp)),
                {"Protocol: 0x0281 = MPLS Unicast", "MPLS:  Label = 16"});
  ExpectInOrder(TreeOf(Linked(Hex("3031 01 02"), kLinkPpp)), {"Protocol = Unknown", "Raw Data {8:2+2}"});
  ExpectInOrder(TreeOf(Linked(Hex("0023 83 1B"), kLinkPpp)), {"NLPID: 0x83 = IS-IS {2+1}", "Raw Data {8:2+2}"});
}

TEST(Ppp, CarriesBridgedFramesAndBundles) {
  ExpectInOrder(TreeOf(Linked(Hex("0031 40 01 00000007") + Ethernet(0x0806, kArp), kLinkPpp)),
                {".1......: LAN Identifier = Present {2+1}", "MAC Type: 1 = Ethernet {3+1}",
                 "LAN Identifier: 7 {4+4}", "Ethernet Header:", "{8+14}", "ARP: Request"});
  ExpectInOrder(TreeOf(Linked(Hex("003D C0000009 C021 01020304"), kLinkPpp)),
                {"Sequence Number = 9 {2+4}", "PPP Header:  Protocol = LCP {6+2}"});
  ExpectInOrder(TreeOf(Linked(Hex("003D 80000009 C021 0102"), kLinkPpp)), {"Multilink Fragment Data {8:6+4}"});
}

TEST(CiscoHdlc, CarriesEthertypesAndItsLineProtocol) {
  ExpectInOrder(TreeOf(Linked(Hex("0F00 0806") + kArp, kLinkCiscoHdlc)),
                {"Cisco HDLC Header:  Protocol = ARP {0+4}", "Address: 0x0F = Unicast {0+1}", "Control: 0x00 {1+1}",
                 "Ethertype: 0x0806 = ARP {2+2}", "ARP: Request"});
  ExpectInOrder(TreeOf(Linked(Hex("8F00 8035 00000002 00000005 00000004 FFFF 00010000"), kLinkCiscoHdlc)),
                {"Protocol = SLARP {0+4}", "Address: 0x8F = Multicast", "SLARP: Keepalive {4+18}",
                 "Code: 2 = Keepalive {4+4}", "My Sequence Number: 5 {8+4}", "Your Sequence Number: 4 {12+4}",
                 "Reliability: 0xFFFF {16+2}", "Time Up: 65536 milliseconds {18+4}"});
  ExpectInOrder(TreeOf(Linked(Hex("8F00 8035 00000001 0A000001 FFFFFF00 0000"), kLinkCiscoHdlc)),
                {"SLARP: Reply {4+14}", "Address: 10.0.0.1 {8+4}", "Mask: 255.255.255.0 {12+4}"});
  ExpectInOrder(TreeOf(Linked(Hex("0F00 FEFE 03 83 1B 01"), kLinkCiscoHdlc)),
                {"Protocol = OSI", "Padding: 0x03 {4+1}", "NLPID: 0x83 = IS-IS {5+1}", "Raw Data {8:5+3}"});
}

TEST(FrameRelay, AddressesHaveTwoToFourBytes) {
  ExpectInOrder(TreeOf(Linked(Hex("48E7 0806") + kArp, kLinkFrameRelay)), {R"(
Frame Relay Header:  DLCI = 302 {0+2}
  Address: DLCI = 302 {0+2}
    010010..: Upper DLCI = 18 {0+1}
    ......0.: Command/Response = 0 {0+1}
    .......0: Address Extension = More Bytes {0+1}
    1110....: Lower DLCI = 14 {1+1}
    ....0...: Forward Congestion (FECN) = 0 {1+1}
    .....1..: Backward Congestion (BECN) = 1 {1+1}
    ......1.: Discard Eligibility (DE) = 1 {1+1}
    .......1: Address Extension = Last Byte {1+1}
  Ethertype: 0x0806 = ARP {2+2}
ARP: Request)"});
  ExpectInOrder(TreeOf(Linked(Hex("80EA9D 0800 45"), kLinkFrameRelay)),
                {"DLCI = 33703 {0+3}", "Control Indication (D/C) = 0"});
  ExpectInOrder(TreeOf(Linked(Hex("04100205 0800 45"), kLinkFrameRelay)),
                {"DLCI = 139329 {0+4}", "0000001.: Third DLCI = 1 {2+1}", "000001..: Lower DLCI = 1 {3+1}",
                 "Control Indication (D/C) = 0"});
  ExpectInOrder(TreeOf(Linked(Hex("04100207 0800 45"), kLinkFrameRelay)),
                {"DLCI = 2177 {0+4}", "000001..: DL-CORE Control = 1 {3+1}", "Control Indication (D/C) = 1"});
  ExpectInOrder(TreeOf(Linked(Hex("00000000 01"), kLinkFrameRelay)), {"Raw Data {8:0+5}"});
}

TEST(FrameRelay, FindsWhatTheIdentifierNames) {
  ExpectInOrder(TreeOf(Linked(Hex("1841 03 CC 45 00"), kLinkFrameRelay)),
                {"Control: 0x03 = Unnumbered, UI {2+1}", "NLPID: 0xCC = IP {3+1}"});
  ExpectInOrder(TreeOf(Linked(Hex("1841 03 00 80 000000 0806") + kArp, kLinkFrameRelay)),
                {"Padding: 0x00 {3+1}", "NLPID: 0x80 = SNAP {4+1}", "Organizational Code: 0x000000 = Default {5+3}",
                 "Ethertype: [0x0806] = ARP {8+2}", "ARP: Request"});
  ExpectInOrder(
      TreeOf(Linked(Hex("1841 03 00 80 0080C2 0007") + Ethernet(0x0806, kArp), kLinkFrameRelay)),
      {"Routed LAN Traffic {5+3}", "Network Type: 0x0007 - Ethernet {8+2}", "Ethernet Header:", "{10+14}", "ARP:"});
  ExpectInOrder(
      TreeOf(Linked(Hex("1841 2200 82 11 01"), kLinkFrameRelay)),
      {"Control: 0x2200 = Information, N(S) = 17, N(R) = 0 {2+2}", "NLPID: 0x82 = ES-IS {4+1}", "Raw Data {8:4+3}"});
  ExpectInOrder(TreeOf(Linked(Hex("1841 1236 55 01"), kLinkFrameRelay)), {"Ethertype: 0x1236 = Unknown {2+2}"});
}

TEST(FrameRelay, ShowsLinkManagement) {
  const Bytes ansi = Hex("0001 03 08 00 7D 95 0101 00 0302 0A0B 0703 1A 88 02");
  const std::string tree = TreeOf(Linked(ansi, kLinkFrameRelay));
  ExpectInOrder(tree, {"NLPID: 0x08 = Q.933 {3+1}", R"(Q.931 LMI Status Message - Control Type Status {3+16}
  Protocol Discriminator: 0x08 = Q.931 {3+1}
  Call Reference: 0x00 {4+1}
  Message Type: 0x7D = Status {5+1}
  Locking Shift: 0x95 = Codeset 5 {6+1}
  Report Type: Full Status {7+3}
    Element: 0x01 = Report Type {7+1}
    Length: 1 {8+1}
    Report Type: 0 = Full Status {9+1}
  Keepalive {10+4}
    Element: 0x03 = Keepalive {10+1}
    Length: 2 {11+1}
    Send Sequence Number: 10 {12+1}
    Receive Sequence Number: 11 {13+1}
  PVC Status, DLCI = 417 {14+5})"});
  ExpectInOrder(TreeOf(Linked(Hex("FCF1 03 09 00 75 0101 01"), kLinkFrameRelay)),
                {"DLCI = 1023", "NLPID: 0x09 = LMI", "Control Type Status Enquiry {3+6}",
                 "Report Type: 1 = Link Integrity Verification"});
  ExpectInOrder(TreeOf(Linked(Hex("0001 03 08 00 7D 5706 1A 08 08 00 81 02"), kLinkFrameRelay)), {"PVC Status"});
  ExpectInOrder(TreeOf(Linked(Hex("0001 03 08 01 81 05"), kLinkFrameRelay)), {"Q.931 Data {8:3+4}"});
}

}  // namespace
}  // namespace qxview::testing
