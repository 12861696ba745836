#include "core/internet_checksum.h"
#include "decoders/net/ipv4.h"
#include "tests/support/decoding.h"

namespace qxview {
int32_t DecodeIcmp(const Place& at, Cursor c);
int32_t DecodeIgmp(const Place& at, Cursor c);

namespace testing {
namespace {

// The message with the checksum of its bytes 2 and 3 filled in.
Bytes Summed(Bytes message) {
  const uint32_t right = RightChecksum(SumWords(0, message.data(), static_cast<int32_t>(message.size())), 0);
  message[2] = static_cast<uint8_t>(right >> 8);
  message[3] = static_cast<uint8_t>(right);
  return message;
}

bool Has(const std::string& tree, const std::string& lines) { return tree.find(lines) != std::string::npos; }

std::string Lines(const std::string& tree, const std::string& from, const std::string& to) {
  const size_t start = tree.find(from);
  return start == std::string::npos ? tree : tree.substr(start, tree.find(to, start) - start);
}

const Bytes kQuotedUdp = Hex("45 00 001C 0001 0000 01 11 0000 0A000001 0A000002  8235 829A 0008 0000");

TEST(Icmp, EchoesAndTheirChecksums) {
  const Bytes echo = Summed(Hex("08 00 0000 1234 0002 4142 43"));
  EXPECT_EQ(TreeOfRun(DecodeIcmp, echo), R"(ICMP: Echo Request, Identifier = 4660, Sequence Number = 2 {0+11}
  Type: 8 = Echo Request {0+1}
  Code: 0 {1+1}
  Checksum: 0x6187 (Good) {2+2}
  Identifier: 0x1234 (4660) {4+2}
  Sequence Number: 2 {6+2}
  ICMP Data {8+3}
)");
  Bytes bad = echo;
  bad[3] ^= 0xFF;
  EXPECT_TRUE(Has(TreeOfRun(DecodeIcmp, bad), "  Checksum: 0x6178 (BAD should be 0x6187) {2+2}\n"));
  Bytes fragment = IPv4(1, echo);
  fragment[6] = 0x20;
  fragment[10] = fragment[11] = 0;
  EXPECT_TRUE(Has(TreeOfRun(DecodeIPv4, fragment), "(Not Checked - More Fragments) {22+2}\n"));
  Bytes cut = IPv4(1, echo);
  cut.pop_back();
  EXPECT_TRUE(Has(TreeOfRun(DecodeIPv4, cut), "(Not Checked - Partial Capture) {22+2}\n"));
  EXPECT_EQ(TreeOfRun(DecodeIcmp, Hex("080000")), "");
}

TEST(Icmp, QuotesEndWhereTheExtensionsStart) {
  const Bytes extensions = Summed(Hex("2000 0000  0008 01 01 00016 101"));
  struct {
    uint8_t words;      // as the message says
    size_t quoteBytes;
    bool extended;
  } const cases[] = {{0, 128, true}, {33, 132, true}, {0, 132, false}, {7, 128, false}};
  for (const auto& one : cases) {
    Bytes quote = kQuotedUdp;
    quote.resize(one.quoteBytes);
    Bytes message = Hex("0B 00 0000 00 00 0000");
    message[5] = one.words;
    const std::string tree = TreeOfRun(DecodeIcmp, Summed(message + quote + extensions));
    EXPECT_EQ(Has(tree, "  ICMP Extensions: 12 bytes"), one.extended) << int{one.words} << tree;
    EXPECT_TRUE(Has(tree, "\nIP:    10.0.0.1 -> 10.0.0.2 (quoted) {8+20}\n")) << tree;
  }
  const std::string tree = TreeOfRun(DecodeIcmp, Summed(Hex("0B 00 0000 00 07 0000") + kQuotedUdp + extensions));
  EXPECT_EQ(Lines(tree, "ICMP", "IP:"), R"(ICMP: Time Exceeded, Time to Live Exceeded in Transit {0+48}
  Type: 11 = Time Exceeded {0+1}
  Code: 0 = Time to Live Exceeded in Transit {1+1}
  Checksum: 0x95EF (Good) {2+2}
  Unused: 00 {4+1}
  Quoted Datagram Length: 7 * 4 = 28 bytes {5+1}
  Unused: 00 00 {6+2}
  Quoted Datagram: 28 bytes {8+28}
  ICMP Extensions: 12 bytes {36+12}
    0010.... ........: Version = 2 {36+2}
    ....0000 00000000: Reserved {36+2}
    Checksum: 0x7DF4 (Good) {38+2}
    Object 1: MPLS Label Stack {40+8}
      Length: 8 {40+2}
      Class: 1 = MPLS Label Stack {42+1}
      Type: 1 {43+1}
      Label Stack Entry 1: Label = 22, TTL = 1 {44+4}
        00000000 00000001 0110.... ........: Label = 22 {44+4}
        ........ ........ ....000. ........: Traffic Class = 0 {44+4}
        ........ ........ .......1 ........: Bottom of Stack = True {44+4}
        ........ ........ ........ 00000001: Time to Live = 1 {44+4}
)");
}

TEST(Icmp, ExtensionObjectsNameInterfaces) {
  const Bytes objects = Hex(R"(
    0020 02 0F  00000007  0001 0000 0A000009  0C 65746830 00000000000000  000005DC
    000C 03 03  0001 04 00 0A000009
    0006 09 01  AABB
    0001 01 01
  )");
  const std::string tree = TreeOfRun(DecodeIcmp, Summed(Hex("2A 00 0000 0001 07 01  2000 0000") + objects));
  EXPECT_EQ(Lines(tree, "    Object 1", "end"), R"(    Object 1: Interface Information {12+32}
      Length: 32 {12+2}
      Class: 2 = Interface Information {14+1}
      Type: 15 {15+1}
      00......: Interface Role = Incoming IP Interface {15+1}
      ....1...: Index Included = True {15+1}
      .....1..: Address Included = True {15+1}
      ......1.: Name Included = True {15+1}
      .......1: MTU Included = True {15+1}
      Interface Index: 7 {16+4}
      Address Family: 1 = IPv4 {20+2}
      IP Address: 10.0.0.9 {24+4}
      Interface Name Length: 12 {28+1}
      Interface Name: eth0 {29+11}
      Interface MTU: 1500 {40+4}
    Object 2: Interface Identification {44+12}
      Length: 12 {44+2}
      Class: 3 = Interface Identification {46+1}
      Type: 3 {47+1}
      Address Family: 1 = IPv4 {48+2}
      Address Length: 4 {50+1}
      IP Address: 10.0.0.9 {52+4}
    Object 3: Unknown {56+6}
      Length: 6 {56+2}
      Class: 9 = Unknown {58+1}
      Type: 1 {59+1}
      Object Data {60+2}
    Object 4: MPLS Label Stack {62+4}
      Length: 1 {62+2}
      Class: 1 = MPLS Label Stack {64+1}
      Type: 1 {65+1}
)");
}

TEST(Icmp, AQuoteLeavesTheFramesOwnStateAlone) {
  // A segment of 8 bytes, as routers quote them, of a datagram whose checksum a router has not put right.
  const Bytes quote = Hex("45 00 05DC 0001 4000 40 06 BEEF 0A000007 0A000008  C000 0050 00000001");
  TestView view;
  view.Run(DecodeIPv4, IPv4(1, Summed(Hex("03 04 0000 00 00 0578") + quote)));
  EXPECT_EQ(Lines(view.Text(), "ICMP:", "  Type"),
            "ICMP: Destination Unreachable, Fragmentation Needed and Do Not Fragment Set, Next-Hop MTU = 1400 "
            "{20+36}\n");
  EXPECT_TRUE(Has(view.Text(), R"(
TCP (quoted), [49152] -> [80] {48+8}
  Source port: [49152] {48+2}
  Destination port: [80] {50+2}
  Sequence number: 1 {52+4}
)")) << view.Text();
  const PacketState& packet = view.context().packet;
  EXPECT_EQ(packet.source.address[15], 1);
  EXPECT_EQ(packet.ipProtocol, 1);
  EXPECT_EQ(packet.network.totalLength, 36);
  EXPECT_FALSE(packet.quoted);
  EXPECT_EQ(packet.nesting, 0);
  EXPECT_LT(packet.linesLeft, MostLinesOf(56) - 50) << "lines of the quote count";
}

TEST(Icmp, QuestionsAndReports) {
  struct {
    const char* message;
    const char* lines;
  } const cases[] = {
      {"0D 00 0000 0001 0002 03A2BE0F FFFFFFFF 06000000",
       "  Originate Timestamp: 60997135 ms since midnight UT (16:56:37.135) {8+4}\n"
       "  Receive Timestamp: 2147483647 (not milliseconds since midnight UT) {12+4}\n"
       "  Transmit Timestamp: 100663296 ms since midnight UT {16+4}\n"},
      {"12 00 0000 0001 0002 FFFFFF00", "  Address Mask: 255.255.255.0 {8+4}\n"},
      {"1E 00 0000 0001 0000 0005 FFFF 00000064 000005DC",
       "  ID Number: 1 {4+2}\n  Unused: 00 00 {6+2}\n  Outbound Hop Count: 5 {8+2}\n"
       "  Return Hop Count: 65535 {10+2}\n  Output Link Speed: 100 bytes/second {12+4}\n"
       "  Output Link MTU: 1500 {16+4}\n"},
      {"2B 00 0000 0001 07 46", "  010.....: State = 2 (Reachable) {7+1}\n  .....1..: Active = True {7+1}\n"},
      {"05 01 0000 0A000003 60", "  Gateway Address: 10.0.0.3 {4+4}\n  Quoted Datagram: 1 bytes {8+1}\n"
                                 "Quoted Data {8:8+1}\n"},
      {"0C 00 0000 14 00 0000", "  Pointer: 20 {4+1}\n  Quoted Datagram Length: 0 * 4 = 0 bytes {5+1}\n"},
      {"28 02 0000 0000 0004", "  Code: 2 = Decompression Failed {1+1}\n"},
      {"26 00 0000 0001 0002 FFFFFFFF 00", "  Time to Live: -1 seconds {8+4}\n  Names {12+1}\n"},
      {"09 10 0000 02 02 0708  0A000001 80000000  0A000002 00000001  10 06 0005 00C8 B180  13 01 18  00",
       "  Lifetime: 1800 seconds {6+2}\n  Router 1: 10.0.0.1 {8+8}\n    Router Address: 10.0.0.1 {8+4}\n"
       "    Preference Level: -2147483648 {12+4}\n  Router 2: 10.0.0.2 {16+8}\n"},
      {"09 10 0000 00 02 0708  10 06 0005 00C8 B180  13 01 18  00",
       "      ........ .0......: Revocation Support = False {14+2}\n  Extension: 19 = Prefix-Lengths {16+3}\n"
       "    Length: 1 {17+1}\n    Prefix Lengths {18+1}\n  One-byte Padding {19+1}\n"},
      {"07 00 0000 AABB", "  Type: 7 = Unassigned {0+1}\n"},
  };
  for (const auto& one : cases) {
    const std::string tree = TreeOfRun(DecodeIcmp, Summed(Hex(one.message)));
    EXPECT_TRUE(Has(tree, one.lines)) << tree;
  }
}

TEST(Igmp, QueriesAndReports) {
  EXPECT_EQ(TreeOfRun(DecodeIgmp, Summed(Hex("11 8F 0000 E0000009 0B 8F 0002 C0A814DE C0A8"))),
            R"(IGMP: Version 3 Membership Query, Group = 224.0.0.9 {0+18}
  Type: 0x11 = Membership Query {0+1}
  Maximum Response Time: 24.8 seconds {1+1}
  Checksum: 0x6CA6 (Good) {2+2}
  Group Address: 224.0.0.9 {4+4}
  ....1...: Suppress Router-Side Processing = True {8+1}
  .....011: Querier's Robustness Variable = 3 {8+1}
  Querier's Query Interval: 248 seconds {9+1}
  Number of Sources: 2 {10+2}
  Source Address 1: 192.168.20.222 {12+4}
)");
  const Bytes report = Hex(R"(22 00 0000 0000 0002
    04 01 0001 EF010203 0A000001 AABBCCDD
    03 00 0005 EF010204 0A)");
  const std::string tree = TreeOfRun(DecodeIgmp, report);
  EXPECT_EQ(Lines(tree, "  Number of Group", "end"), R"(  Number of Group Records: 2 {6+2}
  Group Record: Change to Exclude Mode, 239.1.2.3 {8+16}
    Record Type: 4 = Change to Exclude Mode {8+1}
    Auxiliary Data Length: 1 * 4 = 4 bytes {9+1}
    Number of Sources: 1 {10+2}
    Group Address: 239.1.2.3 {12+4}
    Source Address 1: 10.0.0.1 {16+4}
    Auxiliary Data {20+4}
  Group Record: Change to Include Mode, 239.1.2.4 {24+8}
    Record Type: 3 = Change to Include Mode {24+1}
    Auxiliary Data Length: 0 * 4 = 0 bytes {25+1}
    Number of Sources: 5 {26+2}
    Group Address: 239.1.2.4 {28+4}
)");
  EXPECT_TRUE(Has(TreeOfRun(DecodeIgmp, Hex("11 00 EEFF 00000000")), "IGMP: Version 1 Membership Query, Group = 0."));
  EXPECT_TRUE(Has(TreeOfRun(DecodeIgmp, Hex("11 64 EE9B 00000000")), "IGMP: Version 2 Membership Query, Group = 0."));
  EXPECT_TRUE(Has(TreeOfRun(DecodeIgmp, Hex("16 00 FA04 EFFFFFFA")), "  Checksum: 0xFA04 (Good) {2+2}\n"));
}

}  // namespace
}  // namespace testing
}  // namespace qxview
