#include "tests/support/decoding.h"
#include "tests/support/small_stack.h"

namespace qxview::testing {
namespace {

const Bytes kAddresses = Hex("02 00 00 00 00 01  02 00 00 00 00 02");
const Bytes kArp = Hex("0001 0800 06 04 0001  02 00 00 00 00 02  0A 00 00 01  00 00 00 00 00 00  0A 00 00 02");

// An 802.3 frame: the length is that of the payload.
Bytes Ieee(const Bytes& payload) {
  return kAddresses + Bytes{static_cast<uint8_t>(payload.size() >> 8), static_cast<uint8_t>(payload.size())} +
         payload;
}

TEST(Ethernet, TheTypeFieldIsALengthUpTo1500) {
  const Bytes payload = Hex("42 42 03") + Bytes(2000);
  ExpectInOrder(
      TreeOf(kAddresses + Hex("05DC") + payload),
      {"Length: 1500 {12+2}", "802.2 Header: Protocol = Spanning Tree BPDU {14+3}", "Raw Data {8:17+1497}"});
  ExpectInOrder(TreeOf(kAddresses + Hex("05DD") + payload),
                {"Ethertype: 0x05DD = Unknown {12+2}", "Raw Packet {8:14"});
  // A length beyond the bytes takes what is there; one within them leaves the padding out.
  ExpectInOrder(TreeOf(kAddresses + Hex("0100 42 42 03 01 02")), {"Length: 256", "Raw Data {8:17+2}"});
  ExpectInOrder(TreeOf(kAddresses + Hex("0005 42 42 03 01 02 00 00 00")), {"Length: 5", "Raw Data {8:17+2}"});
  EXPECT_EQ(TreeOf(kAddresses + Hex("0000") + Bytes(46)).find("Raw Data"), std::string::npos);
}

TEST(Ethernet, ShortFramesShowWhatTheyHold) {
  ExpectInOrder(TreeOf(Hex("02 00 00 00 00 01 02 00 00 00 00")), {"Frame type:  Unknown", "Raw Data {8:0+11}"});
  ExpectInOrder(TreeOf(kAddresses), {"Ethernet Header:", "{0+12}", "Source: 02:00:00:00:00:02 {6+6}"});
  const std::string three = TreeOf(kAddresses + Hex("0800 45 00 00"));  // too few for any network header
  ExpectInOrder(three, {"Ethertype: 0x0800 = IP {12+2}"});
  EXPECT_EQ(three.find("Raw"), std::string::npos) << three;
}

TEST(Ethernet, FrameTypeIsNamedBehindTheTags) {
  const auto name = [](const std::string& rest) {
    const std::string tree = TreeOf(kAddresses + Hex(rest) + Bytes(40));
    const size_t at = tree.find("Frame type:  ") + 13;
    return tree.substr(at, tree.find(" {", at) - at);
  };
  EXPECT_EQ(name("0800"), "Ethernet II");
  EXPECT_EQ(name("0020 FFFF"), "Novell-EtherFrame");
  EXPECT_EQ(name("0020 AAAA 03"), "IEEE 802.3 SNAP");
  EXPECT_EQ(name("0020 4242 03"), "IEEE 802.3");
  EXPECT_EQ(name("8926 0000 0000 0020 AAAA"), "IEEE 802.3 SNAP");
  EXPECT_EQ(name("8926 0000 0000 8100 0001 0020 FFFF"), "Novell-EtherFrame");
}

TEST(Ethernet, NovellFramesNeedAWholeIpxHeader) {
  ExpectInOrder(TreeOf(Ieee(Hex("FFFF") + Bytes(28))), {"Length: 30", "IPX: Regular, ", "{14+30}"});
  ExpectInOrder(TreeOf(Ieee(Hex("FFFF") + Bytes(27))), {"Length: 29", "Raw Data {8:14+29}"});
}

TEST(Ethernet, CheckSequenceOfTheCaptureIsNoPayload) {
  Record record(kAddresses + Hex("88B5 01 02 03 04 05 DE AD BE EF"));
  record->checkSequenceLength = 4;
  ExpectInOrder(TreeOf(record), {"Frame network size: 23 (including 4 bytes CRC) {0+23}",
                                 "Frame Check Sequence: DE AD BE EF {19+4}", "Raw Packet {8:14+5}"});
  record->wireLength = 25;
  record->partial = 1;   // two bytes were cut when it was saved
  ExpectInOrder(TreeOf(record), {"Frame network size: 25 (including 4 bytes CRC) {0+23}",
                                 "Frame Check Sequence: BE EF {21+2}", "Raw Packet {8:14+7}"});
}

TEST(Llc, FirstMatchOfTheServiceTableWins) {
  const auto header = [](const std::string& start) {
    const std::string tree = TreeOf(Ieee(Hex(start) + Bytes(30)));
    const size_t at = tree.find("802.2 Header");
    return tree.substr(at, tree.find(" {", at) - at);
  };
  EXPECT_EQ(header("FE FE AF"), "802.2 Header: Protocol = XID/TEST");
  EXPECT_EQ(header("42 42 F3"), "802.2 Header: Protocol = XID/TEST");
  EXPECT_EQ(header("FE FE 03 00"), "802.2 Header: Protocol = OSI Null Layer");
  EXPECT_EQ(header("FE FE 03 81"), "802.2 Header: Protocol = CLNP");
  EXPECT_EQ(header("FE FE 03 82"), "802.2 Header: Protocol = ES-IS");
  EXPECT_EQ(header("FE FE 03 83"), "802.2 Header: Protocol = IS-IS");
  EXPECT_EQ(header("E0 E0 03"), "802.2 Header: Protocol = NetWare IPX");
  EXPECT_EQ(header("F0 F1 03"), "802.2 Header: Protocol = NetBIOS");
  EXPECT_EQ(header("04 F0 03"), "802.2 Header: Protocol = NetBIOS");
  EXPECT_EQ(header("BC BC 03 BA"), "802.2 Header: Protocol = VINES");
  EXPECT_EQ(header("42 42 03"), "802.2 Header: Protocol = Spanning Tree BPDU");
  EXPECT_EQ(header("08 04 03"), "802.2 Header: Protocol = SNA");
  EXPECT_EQ(header("06 06 03"), "802.2 Header");
  EXPECT_EQ(header("AA AA 00 00"), "802.2 Header") << "numbered frames are not SNAP";
  // Other OSI protocols add nothing, and short IPX is raw data.
  EXPECT_EQ(TreeOf(Ieee(Hex("FE FE 03 99") + Bytes(9))).find("Raw"), std::string::npos);
  ExpectInOrder(TreeOf(Ieee(Hex("E0 E0 03") + Bytes(29))), {"802.2 Header {14+3}", "Raw Data {8:17+29}"});
}

TEST(Llc, NumberedControlFieldsHaveTwoBytes) {
  ExpectInOrder(TreeOf(Ieee(Hex("F0 F1 08 0B 55 66"))),
                {"802.2 Header: Protocol = NetBIOS {14+4}", "DSAP: 0xF0 = NetBIOS {14+1}",
                 "SSAP: 0xF1 = NetBIOS (Response) {15+1}", "Control: 0x080B = Information, N(S) = 4, N(R) = 5 {16+2}",
                 "Raw Data {8:18+2}"});
  ExpectInOrder(TreeOf(Ieee(Hex("F0 F0 05 0A"))), {"Control: 0x050A = Supervisory, RNR, N(R) = 5 {16+2}"});
}

TEST(Snap, NamesTheProtocolAndItsOwner) {
  const std::string tree = TreeOf(Ieee(Hex("AA AA 03 00 00 00 08 06") + kArp));
  ExpectInOrder(tree, {"802.2 SNAP Header: Ethertype = ARP {14+8}", "DSAP: 0xAA = SNAP {14+1}",
                       "SSAP: 0xAA = SNAP (Command) {15+1}", "Control: 0x03 = Unnumbered, UI {16+1}",
                       "Organizational Code: 0x000000 = Default {17+3}", "Ethertype: [0x0806] = ARP {20+2}",
                       "ARP: Request, Source 10.0.0.1, Target 10.0.0.2 {22+28}"});
  ExpectInOrder(TreeOf(Ieee(Hex("AA AA 03 00 00 0C 01 99 01 02 03 04"))),
                {"802.2 SNAP Header: {14+8}", "0x00000C = Cisco", "Protocol: 0x0199 {20+2}", "Raw Packet {8:22+4}"});
  ExpectInOrder(TreeOf(Ieee(Hex("AA AA 03 08 00 07 80 9B 01"))),
                {"0x080007 = Vendor Specific", "Raw Packet {8:22+1}"});
  // The dispatcher declines fewer than four bytes.
  ExpectInOrder(TreeOf(Ieee(Hex("AA AA 03 00 00 00 08 00 01 02 03"))), {"Ethertype: [0x0800]", "Raw Data {8:22+3}"});
}

TEST(Snap, BridgedFramesArePassedOverTo) {
  const Bytes carried = Bytes(16) + Hex("0806") + kArp;
  const Bytes header = Hex("AA AA 03 00 80 C2");
  ExpectInOrder(TreeOf(Ieee(header + Hex("0007") + carried)),
                {"802.2 SNAP Header: {", "Organizational Code: 0x0080C2 = Routed LAN Traffic {17+3}",
                 "Network Type: 0x0007 - Ethernet {20+2}", "ARP: Request, Source 10.0.0.1, Target 10.0.0.2 {40+28}"});
  ExpectInOrder(TreeOf(Ieee(header + Hex("0003") + carried)), {"Network Type: 0x0003 - Token Ring", "ARP: Request"});
  ExpectInOrder(TreeOf(Ieee(header + Hex("000A") + carried)), {"Network Type: 0x000A - FDDI", "ARP: Request"});
  const std::string other = TreeOf(Ieee(header + Hex("000E 01 02")));
  ExpectInOrder(other, {"Routed LAN Traffic", "Raw Data {8:22+2}"});
  EXPECT_EQ(other.find("Network Type"), std::string::npos);
}

TEST(Tags, EachIsALineWithItsInnerType) {
  const std::string tree = TreeOf(kAddresses + Hex("88A8 A064 8100 100A 0806") + kArp);
  ExpectInOrder(tree, {R"(  Ethertype: 0x88A8 = Service VLAN {12+2}
802.1Qad Service VLAN Tag {14+4}
  101..... ........: Priority = 5 {14+2}
  ...0.... ........: Drop Eligible = False {14+2}
  ....0000 01100100: VLAN ID = 100 {14+2}
  Ethertype: 0x8100 = VLAN {16+2}
VLAN Tag {18+4}
  000..... ........: Priority = 0 {18+2}
  ...1.... ........: Drop Eligible = True {18+2}
  ....0000 00001010: VLAN ID = 10 {18+2}
  Ethertype: 0x0806 = ARP {20+2}
ARP: Request)"});
  ExpectInOrder(TreeOf(kAddresses + Hex("8926 8005 0007 0806") + kArp),
                {"Cisco VNTag {14+6}", "1....... ........: Direction = From Bridge {14+2}",
                 "..000000 00000101: Destination Virtual Interface = 5 {14+2}",
                 "....0000 00000111: Source Virtual Interface = 7 {16+2}", "Ethertype: 0x0806 = ARP {18+2}", "ARP:"});
}

TEST(Mpls, TellsThePayloadByItsFirstBytes) {
  const Bytes stack = Hex("0001 00 40  0002 01 40");
  ExpectInOrder(TreeOf(Ethernet(0x8847, stack + Hex("60") + Bytes(3))),
                {"MPLS:  Label = 16, TTL = 64 {14+4}", "MPLS:  Label = 32, TTL = 64, Bottom of Stack {18+4}",
                 "00000000 00000010 0000.... ........: Label = 32 {18+4}"});
  const Bytes carried = Ethernet(0x0806, kArp);
  ExpectInOrder(TreeOf(Ethernet(0x8848, stack + carried)), {"Ethernet Header:", "{22+14}", "ARP: Request"});
  ExpectInOrder(
      TreeOf(Ethernet(0x8847, stack + Hex("0000 0009") + carried)),
      {"Pseudowire Control Word: Sequence Number = 9 {22+4}", "Ethernet Header:", "{26+14}", "ARP: Request"});
  ExpectInOrder(TreeOf(Ethernet(0x8847, stack + Bytes(40))), {"Bottom of Stack", "Raw Data {8:22+40}"});
}

TEST(SimpleEthertypes, ShowTheirTitledBlocks) {
  ExpectInOrder(TreeOf(Ethernet(0x1234, Hex("ABCD 01 02 03"))),
                {"DCA Multicast {14+5}", "Sequence ID: 0xABCD {14+2}", "Multicast Data {16+3}"});
  ExpectInOrder(TreeOf(Ethernet(0x885A, Bytes(5))), {"Foundry Proprietary Data {8:14+5}"});
  ExpectInOrder(TreeOf(Ethernet(0x886F, Bytes(5))),
                {"MS Network Load Balancing Heartbeat {14+5}", "Heartbeat Data {14+5}"});
  ExpectInOrder(TreeOf(Ethernet(0x3C00, Bytes(5))), {"\n3Com NBP {14+5}"});
  ExpectInOrder(TreeOf(Ethernet(0x3C0D, Bytes(5))), {"\n3Com NBP {14+5}"});
  ExpectInOrder(TreeOf(Ethernet(0x3C0E, Bytes(5))), {"Raw Packet {8:14+5}"});
}

// ISL headers with this type byte, in front of a carried frame.
Bytes Isl(const std::string& destinationAndType, const Bytes& carried, uint16_t length) {
  return Hex(destinationAndType + "02 00 00 00 00 09") + Bytes{uint8_t(length >> 8), uint8_t(length)} +
         Hex("AA AA 03 00 00 0C 0065 0003") + carried;
}

TEST(Isl, CarriesWholeFrames) {
  const Bytes carried = Hex("0000") + Ethernet(0x0806, kArp);
  const Bytes frame = Isl("01 00 0C 00 00 00", carried + Hex("DEADBEEF"), static_cast<uint16_t>(carried.size() + 10));
  ExpectInOrder(
      TreeOf(frame),
      {"Network: Ethernet,  Frame type:  ISL", "Encapsulation: ISL {0+26}", "0000....: Type = 0 (Ethernet) {5+1}",
       "Source: 02:00:00:00:00:09 {6+6}", "Length: 54 {12+2}", "00000000 0110010.: VLAN ID = 50 {20+2}",
       "Spanning Tree or Discovery = True {20+2}", "Ethernet Header:", "{26+14}", "ARP: Request"});
  // Token Ring frames start in the reserved bytes.
  const Bytes ring = Hex("10 40 02 00 00 00 00 01 02 00 00 00 00 02 AA AA 03 00 00 00 08 06") + kArp;
  ExpectInOrder(TreeOf(Isl("03 00 0C 00 00 10", ring, static_cast<uint16_t>(ring.size() + 10))),
                {"Type = 1 (Token Ring)", "Token Ring Header:", "{24+14}", "802.2 SNAP Header", "ARP: Request"});
}

TEST(Isl, IsToldByItsAddressAndItsSnapHeader) {
  const Bytes frame = Isl("01 00 0C 00 00 55", Hex("0000"), 12);  // the sixth byte is not looked at
  ASSERT_EQ(frame.size(), 26u);
  EXPECT_NE(TreeOf(frame).find("Encapsulation: ISL"), std::string::npos);
  const Bytes cut(frame.begin(), frame.end() - 1);
  EXPECT_EQ(TreeOf(cut).find("Encapsulation: ISL"), std::string::npos) << "25 bytes are too few";
  Record bad(frame);
  bad->receiveErrors = 2;
  EXPECT_EQ(TreeOf(bad).find("Encapsulation: ISL"), std::string::npos) << "frames with receive errors are not";
}

// What a decode of hostile nesting costs: 60,000 bytes decode on a small stack and in milliseconds.
double DecodeOnSmallStack(const Bytes& frame, std::string* tree) {
  double best = 0;
  TestView view;
  RunOnSmallStack([&] {
    Record record(frame);
    best = BestMilliseconds([&] { view.Decode(record); });
  });
  *tree = view.Text();
  return best;
}

TEST(Hostile, SixtyThousandBytesOfNestingAreQuickOnASmallStack) {
  const struct {
    const char* name;
    Bytes frame;
    const char* shown;
  } cases[] = {
      {"VLAN tags", kAddresses + Repeat(Hex("8100 0001"), 15000), "Raw Packet {8:"},
      {"service tags and VNTags", kAddresses + Repeat(Hex("88A8 0001 8926 0000 0000"), 6000), "Raw Packet {8:"},
      {"MPLS labels", Ethernet(0x8847, Repeat(Hex("0001 0040"), 15000)), "Raw Data {8:"},
      {"MPLS in Ethernet in MPLS", Repeat(Ethernet(0x8847, Hex("0001 0140 0000 0000")), 2700), "Raw"},
      {"lying lengths", kAddresses + Repeat(Hex("05DC AA AA 03 00 80 C2 0007 FFFF"), 5000), "Raw"},
  };
  for (const auto& c : cases) {
    std::string tree;
    const double milliseconds = DecodeOnSmallStack(c.frame, &tree);
    EXPECT_LT(milliseconds, kMostMilliseconds) << c.name;
    EXPECT_NE(tree.find(c.shown), std::string::npos) << c.name;
    RecordProperty(c.name, std::to_string(milliseconds));
  }
}

}  // namespace
}  // namespace qxview::testing
