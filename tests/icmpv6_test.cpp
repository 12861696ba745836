#include <cstring>

#include "core/internet_checksum.h"
#include "tests/support/decoding.h"

namespace qxview {
int32_t DecodeIPv6(const Place& at, Cursor c);

namespace testing {
namespace {

constexpr uint8_t kIcmpv6 = 58;

// The message with its checksum made good, for the addresses that IPv6() gives.
Bytes Good(Bytes message) {
  Bytes pseudo = IPv6(kIcmpv6, message);
  const Bytes addresses(pseudo.begin() + 8, pseudo.begin() + 40);
  const uint8_t rest[] = {0, kIcmpv6, pseudo[4], pseudo[5]};
  message[2] = message[3] = 0;
  uint32_t sum = SumWords(0, addresses.data(), 32);
  sum = SumWords(SumWords(sum, rest, 4), message.data(), static_cast<int32_t>(message.size()));
  const uint16_t checksum = static_cast<uint16_t>(~sum);
  std::memcpy(message.data() + 2, &checksum, 2);
  return message;
}

std::string HexOf(uint8_t byte) {
  char text[3];
  FormatInto(text, sizeof text, "%.02X", byte);
  return text;
}

std::string TreeOfMessage(const Bytes& message) {
  const std::string tree = TreeOfRun(DecodeIPv6, IPv6(kIcmpv6, Good(message)));
  const size_t at = tree.find("ICMPv6: ");
  return at == std::string::npos ? tree : tree.substr(at);
}

TEST(Icmpv6, ShowsEchoInItsOwnColour) {
  TestView view;
  view.Run(DecodeIPv6, IPv6(kIcmpv6, Hex("80 00 AB95  1234 0007  6162 63")));
  const std::string tree = view.Text();
  EXPECT_EQ(tree.substr(tree.find("ICMPv6: ")), R"(ICMPv6: Echo Request, Identifier = 4660, Sequence Number = 7 {40+11}
  Type: 128 = Echo Request {40+1}
  Code: 0 {41+1}
  Checksum: 0xAB95 (Good) {42+2}
  Identifier: 0x1234 (4660) {44+2}
  Sequence Number: 7 {46+2}
  Echo Data {48+3}
)");
  const LineHandle top = view.tree().NextSibling(view.tree().FirstChild(0));
  EXPECT_EQ(view.tree().Image(top), LevelImage(8)) << "directly behind the header";
  view.Run(DecodeIPv6, IPv6(60, Hex("3A 00 01 04 00000000  80 00 0000 1234 0007")));
  EXPECT_EQ(view.tree().Image(view.tree().LastChild(0)), LevelImage(4)) << "behind an extension header";
}

TEST(Icmpv6, ChecksWhatIsWhole) {
  const Bytes echo = Good(Hex("81 00 0000  0001 0002"));
  Bytes bad = IPv6(kIcmpv6, echo);
  bad.back() ^= 1;
  const std::string tree = TreeOfRun(DecodeIPv6, bad);
  EXPECT_NE(tree.find("ICMPv6: Echo Reply (Bad Checksum), Identifier = 1, Sequence Number = 3"), std::string::npos);
  const std::string found = HexOf(echo[2]) + HexOf(echo[3]), wanted = HexOf(echo[2]) + HexOf(echo[3] - 1);
  EXPECT_NE(tree.find("0x" + found + " (BAD should be 0x" + wanted + ")"), std::string::npos) << tree;
  Bytes cut = IPv6(kIcmpv6, echo);
  cut.pop_back();
  EXPECT_NE(TreeOfRun(DecodeIPv6, cut).find("(Not Checked - Partial Capture)"), std::string::npos);
  // Bytes behind the packet are not the message's.
  const std::string padded = TreeOfRun(DecodeIPv6, IPv6(kIcmpv6, echo) + Hex("00 00"));
  EXPECT_NE(padded.find("(Good) {42+2}"), std::string::npos) << padded;
  EXPECT_NE(padded.find("Trailing Data {8:48+2}"), std::string::npos) << padded;
  // The ends are those of the routing header and the home address option, not of the fixed header.
  const Bytes ends = Hex(R"(
      2B 02 01 02 0000 C9 10 FE80 0000 0000 0000 0000 0000 0000 0001
      3A 02 02 01 00000000   FF02 0000 0000 0000 0000 0000 0000 0002)");
  Bytes moved = IPv6(60, ends + echo);
  moved[8] = moved[24] = 0x20;
  EXPECT_NE(TreeOfRun(DecodeIPv6, moved).find("(Good)"), std::string::npos);
}

TEST(Icmpv6, ShowsRouterAdvertisementsWithTheirOptions) {
  EXPECT_EQ(TreeOfMessage(Hex(R"(
      86 00 0000  40 88 0708 00000000 000003E8
      03 04 40 C0 FFFFFFFF 00000708 00000000 20010DB8 00010000 00000000 00000000
      18 02 30 18 00000E10 20010DB8 00020000
      19 03 0000 00000064 20010DB8 00000000 00000000 00000053
      1F 03 0000 00000064  03 6C616E 00  02 6774 03 6C616E 00 000000
      26 02 0709 0064FF9B 00000000 00000000)")),
            R"(ICMPv6: Router Advertisement {40+128}
  Type: 134 = Router Advertisement {40+1}
  Code: 0 {41+1}
  Checksum: 0x6EC9 (Good) {42+2}
  Hop Limit: 64 {44+1}
  Flags: 0x88 {45+1}
    1.......: Managed Address Configuration = True {45+1}
    .0......: Other Configuration = False {45+1}
    ..0.....: Home Agent = False {45+1}
    ...01...: Router Preference = High {45+1}
    .....0..: Neighbor Discovery Proxy = False {45+1}
    ......00: Reserved {45+1}
  Router Lifetime: 1800 seconds {46+2}
  Reachable Time: 0 ms (unspecified) {48+4}
  Retransmission Timer: 1000 ms {52+4}
  Option: Prefix Information, 2001:db8:1::/64 {56+32}
    Type: 3 = Prefix Information {56+1}
    Length: 4 (32 bytes) {57+1}
    Prefix Length: 64 {58+1}
    Flags: 0xC0 {59+1}
      1.......: On-Link = True {59+1}
      .1......: Autonomous Address Configuration = True {59+1}
      ..0.....: Router Address = False {59+1}
      ...00000: Reserved {59+1}
    Valid Lifetime: 4294967295 seconds (infinite) {60+4}
    Preferred Lifetime: 1800 seconds {64+4}
    Reserved: 0x00000000 {68+4}
    Prefix: 2001:db8:1:: {72+16}
  Option: Route Information, 2001:db8:2::/48 {88+16}
    Type: 24 = Route Information {88+1}
    Length: 2 (16 bytes) {89+1}
    Prefix Length: 48 {90+1}
    Flags: 0x18 {91+1}
      ...11...: Router Preference = Low {91+1}
    Route Lifetime: 3600 seconds {92+4}
    Prefix: 2001:db8:2:: {96+8}
  Option: Recursive DNS Server, 2001:db8::53 {104+24}
    Type: 25 = Recursive DNS Server {104+1}
    Length: 3 (24 bytes) {105+1}
    Reserved: 0x0000 {106+2}
    Lifetime: 100 seconds {108+4}
    DNS Server: 2001:db8::53 {112+16}
  Option: DNS Search List, lan, gt.lan {128+24}
    Type: 31 = DNS Search List {128+1}
    Length: 3 (24 bytes) {129+1}
    Reserved: 0x0000 {130+2}
    Lifetime: 100 seconds {132+4}
    Domain Name: lan {136+5}
    Domain Name: gt.lan {141+8}
    Padding {149+3}
  Option: PREF64, 64:ff9b::/64 {152+16}
    Type: 38 = PREF64 {152+1}
    Length: 2 (16 bytes) {153+1}
    00000111 00001...: Scaled Lifetime = 225 * 8 = 1800 seconds {154+2}
    ........ .....001: Prefix Length Code 1 = 64 bits {154+2}
    Prefix: 64:ff9b:: {156+12}
)");
}

TEST(Icmpv6, ShowsNeighboursAndOptionsThatLie) {
  EXPECT_EQ(TreeOfMessage(Hex(R"(
      88 00 0000 E0000000 20010DB8 00000000 00000000 00000001
      02 01 020000000001
      0E 00 AABB)")),
            R"(ICMPv6: Neighbor Advertisement of 2001:db8::1 {40+36}
  Type: 136 = Neighbor Advertisement {40+1}
  Code: 0 {41+1}
  Checksum: 0xAFA1 (Good) {42+2}
  Flags: 0xE0000000 {44+4}
    1....... ........ ........ ........: Router = True {44+4}
    .1...... ........ ........ ........: Solicited = True {44+4}
    ..1..... ........ ........ ........: Override = True {44+4}
    ...00000 00000000 00000000 00000000: Reserved {44+4}
  Target Address: 2001:db8::1 {48+16}
  Option: Target Link-Layer Address, 02:00:00:00:00:01 {64+8}
    Type: 2 = Target Link-Layer Address {64+1}
    Length: 1 (8 bytes) {65+1}
    Link-Layer Address: 02:00:00:00:00:01 {66+6}
  Option: Nonce {72+4}
    Type: 14 = Nonce {72+1}
    Length: 0 (0 bytes) invalid {73+1}
    Option Data {74+2}
)");
  // A label that runs past its option leaves the rest of the option as data.
  const std::string cut = TreeOfMessage(Hex("85 00 0000 00000000  1F 02 0000 00000001  02 6162 3F 63646566"));
  EXPECT_NE(cut.find("  Option: DNS Search List {48+16}"), std::string::npos) << cut;
  EXPECT_NE(cut.find("    Option Data {56+8}"), std::string::npos) << cut;
}

TEST(Icmpv6, QuotedPacketsLeaveTheFramesOwnState) {
  Bytes quoted = IPv6(6, Hex("0050 C000 00000001") + Bytes(100));
  quoted.resize(48);
  quoted[8] = 0x20;
  TestView view;
  view.Run(DecodeIPv6, IPv6(kIcmpv6, Good(Hex("02 00 0000 00000500") + quoted)));
  const std::string tree = view.Text();
  EXPECT_NE(tree.find("ICMPv6: Packet Too Big, MTU = 1280 {40+56}"), std::string::npos) << tree;
  EXPECT_NE(tree.find("  Quoted Packet: 48 bytes {48+48}"), std::string::npos) << tree;
  EXPECT_NE(tree.find("IPv6 Section: 2080::1 -> ff02::2, 48 bytes {48+40}"), std::string::npos) << tree;
  EXPECT_NE(tree.find("Source port: [80] {88+2}"), std::string::npos) << tree;
  EXPECT_EQ(view.context().packet.source.address[0], 0xFE);
  EXPECT_EQ(view.context().packet.ipProtocol, kIcmpv6);
  EXPECT_FALSE(view.context().packet.quoted);

  // A quotation of a stated length, and what the error adds behind it.
  const std::string extended = TreeOfMessage(Hex("01 04 0000 05000000") + IPv6(59, {}) + Hex("2000 0000 0004 0101"));
  EXPECT_NE(extended.find("ICMPv6: Destination Unreachable, Port Unreachable {40+56}"), std::string::npos) << extended;
  EXPECT_NE(extended.find("  ICMP Extensions: 8 bytes {88+8}"), std::string::npos) << extended;
  // Errors about errors about errors: the nesting ends.
  Bytes nested = Hex("03 00 0000 00000000");
  for (int i = 0; i < 200; ++i) nested = Hex("03 00 0000 00000000") + IPv6(kIcmpv6, nested);
  view.Run(DecodeIPv6, IPv6(kIcmpv6, nested));
  EXPECT_NE(view.Text().find(" Data {8:"), std::string::npos) << "the rest, undecoded";
}

TEST(Icmpv6, ShowsListeners) {
  const std::string report = TreeOfMessage(Hex(R"(
      8F 00 0000 0000 0002
      04 00 0000 FF020000 00000000 00000001 FF000001
      06 01 0001 FF020000 00000000 00000000 000000FB 20010DB8 00000000 00000000 00000001 01020304)"));
  EXPECT_NE(report.find("  Multicast Address Record: Change to Exclude Mode, ff02::1:ff00:1 {48+20}"),
            std::string::npos) << report;
  EXPECT_NE(report.find("  Multicast Address Record: Block Old Sources, ff02::fb {68+40}"), std::string::npos);
  EXPECT_NE(report.find("    Source Address 1: 2001:db8::1 {88+16}"), std::string::npos);
  EXPECT_NE(report.find("    Auxiliary Data {104+4}"), std::string::npos);
  const Bytes group = Hex("FF020000 00000000 00000000 000000FB");
  const std::string first = TreeOfMessage(Hex("82 00 0000 2710 0000") + group);
  EXPECT_NE(first.find("Maximum Response Delay: 10000 ms {44+2}"), std::string::npos) << first;
  const std::string second = TreeOfMessage(Hex("82 00 0000 8001 0000") + group + Hex("0A 8F 0000"));
  EXPECT_NE(second.find("Maximum Response Code: 32769 (32776 ms) {44+2}"), std::string::npos) << second;
  EXPECT_NE(second.find("Querier's Query Interval Code: 143 (248 seconds) {65+1}"), std::string::npos) << second;
}

}  // namespace
}  // namespace testing
}  // namespace qxview
