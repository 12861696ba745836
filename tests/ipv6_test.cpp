#include <cstring>

#include "decoders/net/ipv6_checksum.h"
#include "tests/support/decoding.h"
#include "tests/support/small_stack.h"

namespace qxview {
int32_t DecodeIPv6(const Place& at, Cursor c);

namespace testing {
namespace {

constexpr uint8_t kHopByHop = 0, kRouting = 43, kFragment = 44, kEsp = 50, kAh = 51, kNone = 59, kDestination = 60,
                  kMobility = 135, kUnknownNext = 253;

// What follows the 9 lines of the fixed header.
std::string Behind(uint8_t nextHeader, const Bytes& payload) {
  const std::string tree = TreeOfRun(DecodeIPv6, IPv6(nextHeader, payload));
  const std::string last = "Destination address: ff02::2 {24+16}\n";
  const size_t end = tree.find(last);
  return end == std::string::npos ? tree : tree.substr(end + last.size());
}

TEST(IPv6, ShowsTheFixedHeaderAndWhatItCannotDecode) {
  Bytes packet = IPv6(kUnknownNext, Hex("AB CD"));
  packet[0] = 0x6A;
  packet[1] = 0xB1;
  packet[3] = 0x07;
  EXPECT_EQ(TreeOfRun(DecodeIPv6, packet),
            R"(IPv6 Section: fe80::1 -> ff02::2, 42 bytes {0+40}
  IP Version   : (0110.... ........ ........ ........) 6  {0+1}
  Traffic Class: (....1010 1011.... ........ ........) 171  {0+2}
  Flow label   : (........ ....0001 00000000 00000111) 65543  {1+3}
  Payload length: 2 {4+2}
  Next Header: 253 (unknown header type) {6+1}
  Hop limit: 64 {7+1}
  Source address: fe80::1 {8+16}
  Destination address: ff02::2 {24+16}
IPv6 Data {8:40+2}
)");
}

TEST(IPv6, EndsQuietly) {
  EXPECT_EQ(TreeOfRun(DecodeIPv6, Bytes(19, 0x60)), "");
  EXPECT_EQ(Behind(kNone, Hex("01 02 03")), "");
  EXPECT_EQ(Behind(kHopByHop, Hex("3B 00 01 04 00 00 00 00  DE AD")).find("DE AD"), std::string::npos);

  TestView view;
  Bytes cut = IPv6(kUnknownNext, {});
  cut.resize(25);
  EXPECT_EQ(view.Run(DecodeIPv6, cut), 0);
  const std::string tree = view.Text();
  EXPECT_NE(tree.find("IPv6 Section: fe80::1 -> ff00::, 25 bytes {0+40}"), std::string::npos) << tree;
  EXPECT_NE(tree.find("Source address: fe80::1 {8+16}"), std::string::npos) << tree;
  EXPECT_EQ(tree.find("Destination address"), std::string::npos) << tree;
}

TEST(IPv6, LeavesTheStateForItsPayload) {
  TestView view;
  const Bytes payload = Hex("FD 00 01 04 00 00 00 00") + Bytes(12);
  Bytes packet = IPv6(kDestination, payload);
  ASSERT_EQ(view.Run(DecodeIPv6, packet + Bytes(3)), 1);
  const PacketState& packetState = view.context().packet;
  EXPECT_EQ(packetState.ipHeaderSeen, 1u);
  EXPECT_EQ(packetState.ipProtocol, kUnknownNext);
  EXPECT_EQ(packetState.network.totalLength, 12) << "the extension header is not the payload's";
  EXPECT_EQ(packetState.network.pseudoHead, CalculateIPv6PseudoChecksum(packet.data()));
  EXPECT_EQ(packetState.source.kind, 2u);
  EXPECT_EQ(packetState.source.address[15], 1);
  EXPECT_EQ(packetState.destination.address[0], 0xFF);

  view.Run(DecodeIPv6, IPv6(kFragment, Hex("11 00 05 A9 00 00 00 01  AA")));
  EXPECT_TRUE(view.context().packet.network.fragmented && view.context().packet.network.moreFragments);
  EXPECT_EQ(view.context().packet.network.fragmentOffset, 1448u);
}

TEST(IPv6, PseudoChecksumIsThatOfTheFixedHeader) {
  // Added up by hand: FE80 + 0001 + FF02 + 0002 = 1FD85, folded FD86; + 17 + 8 = FD9F.
  uint8_t inMemory[2];
  const uint16_t sum = CalculateIPv6PseudoChecksum(IPv6(17, Bytes(8)).data());
  std::memcpy(inMemory, &sum, 2);
  EXPECT_EQ(inMemory[0], 0xFD);
  EXPECT_EQ(inMemory[1], 0x9F);
  // An extension header in front of the datagram changes both.
  const uint16_t behindOptions = CalculateIPv6PseudoChecksum(IPv6(kDestination, Bytes(16)).data());
  std::memcpy(inMemory, &behindOptions, 2);
  EXPECT_EQ(inMemory[1], 0x86 + 60 + 16);
  // FFFF is kept, as every fold over 65535 leaves it.
  Bytes full(40);
  full[8] = full[9] = 0xFF;
  EXPECT_EQ(CalculateIPv6PseudoChecksum(full.data()), 0xFFFF);
}

TEST(IPv6, ShowsOptions) {
  EXPECT_EQ(Behind(kHopByHop, Hex(R"(
      3C 01  05 02 0000  01 01 00  00  E3 02 ABCD  00  77     # the last byte has no length
      FD 02  01 02 0000  C9 10 20010DB8 00000000 00000000 00000009
      AA)")),
            R"(IPv6 Hop-By-Hop Options Header: 16 bytes {40+16}
  Next Header: 60 (IPv6-Opts) {40+1}
  Length of header in 8-byte units excluding first 8 bytes: 1 {41+1}
  Option 5 - Router Alert {42+4}
    00...... : option type 0 = skip option {42+1}
    ..0..... : option data does not en-route {42+1}
    ...00101 : reserved {42+1}
    Option size: 2 {43+1}
    Option Data: {44+2}
  Option 1 - PadN {46+3}
    Length : 1 bytes {47+1}
    Padding {48+1}
  Option 0 - Pad1 {49+1}
    Type : 0  (padding) {49+1}
  Option 227 - Unknown {50+4}
    11...... : option type 3 = discard packet, send ICMP unless multicast {50+1}
    ..1..... : option data may change en-route {50+1}
    ...00011 : reserved {50+1}
    Option size: 2 {51+1}
    Option Data: {52+2}
  Option 0 - Pad1 {54+1}
    Type : 0  (padding) {54+1}
  Option Padding: 0x77 {55+1}
IPv6 Destination Options Header: 24 bytes {56+24}
  Next Header: 253 (unknown header type) {56+1}
  Length of header in 8-byte units excluding first 8 bytes: 2 {57+1}
  Option 1 - PadN {58+4}
    Length : 2 bytes {59+1}
    Padding {60+2}
  Option 201 - Home Address {62+18}
    11...... : option type 3 = discard packet, send ICMP unless multicast {62+1}
    ..0..... : option data does not en-route {62+1}
    ...01001 : reserved {62+1}
    Option size: 16 {63+1}
    Mobility Support Home Address Option {64+16}
      Home Address : 2001:db8::9 {64+16}
IPv6 Data {8:80+1}
)");
}

TEST(IPv6, ShowsRoutes) {
  EXPECT_EQ(Behind(kRouting, Hex(R"(
      2B 04 00 01  00000005  20010DB8 00000000 00000000 00000001  20010DB8 00000000 00000000 00000002
      2B 02 02 01  00000000  20010DB8 00000000 00000000 00000003
      3B 00 09 00  01020304)")),
            R"(IPv6 Routing Header: 40 bytes {40+40}
  Next Header: 43 (IPv6-Route) {40+1}
  Length of the header excluding first 8 octets: 4 {41+1}
  Routing type: 0 {42+1}
  Segments left: 1 {43+1}
  Reserved: 0x00000005 {44+4}
  Address  1: 2001:db8::1 {48+16}
  Address  2: 2001:db8::2 {64+16}
IPv6 Routing Header: 24 bytes {80+24}
  Next Header: 43 (IPv6-Route) {80+1}
  Length of the header excluding first 8 octets: 2 {81+1}
  Routing type: 2 {82+1}
  Segments left: 1 {83+1}
  Reserved : 0x00000000 {84+4}
  Address : 2001:db8::3 {88+16}
IPv6 Routing Header: 8 bytes {104+8}
  Next Header: 59 (IPv6-NoNxt) {104+1}
  Length of the header excluding first 8 octets: 0 {105+1}
  Routing type: 9 {106+1}
  Segments left: 0 {107+1}
  IPv6 Routing Header Data {108+4}
)");
}

TEST(IPv6, ShowsFragmentsAndProtectedPayloads) {
  EXPECT_EQ(Behind(kFragment, Hex("11 07 05AB DEADBEEF  0102")),
            R"(IPv6 Fragment Header: 8 bytes {40+8}
  Next Header: 17 (UDP) {40+1}
  Reserved: 0x07 {41+1}
  Fragment Offset: (00000101 10101...) 181 * 8 = 1448 bytes {42+2}
  Reserved       : (........ .....01.) 1 {42+2}
  More Fragments : (........ .......1) 1 = True {42+2}
  Identification : 0xDEADBEEF {44+4}
Fragment Data {8:48+2}
)");
  EXPECT_EQ(Behind(kAh, Hex("32 04 0000 00000064 00000007 000102030405060708090A0B  00000001 00000002 AABB")),
            R"(AH - Authentication Header: 24 bytes, SPI = 0x00000064, Sequence Number = 7 {40+24}
  Next Header: 50 = ESP {40+1}
  Payload Length: 4 (24 bytes) {41+1}
  Reserved: 0x0000 {42+2}
  Security Parameters Index (SPI): 0x00000064 (100) {44+4}
  Sequence Number: 7 {48+4}
  Integrity Check Value (ICV) {52+12}
IPv6 Encapsulating Security Payload (ESP) {64+8}
  Security Parameters Index (SPI): 1 {64+4}
  Sequence Number: 2 {68+4}
  ESP Payload and Authentication Data {72+2}
)");
}

TEST(IPv6, ShowsMobilityMessagesAndOptions) {
  EXPECT_EQ(Behind(kMobility, Hex(R"(
      3B 06 00 00 1234  0005
      02 02 000A   04 04 0001 0002   01 01 00   00   05 02 ABCD   09 02 0708
      03 10 20010DB8 00000000 00000000 00000007
      03 10 000000000000                             # runs past its header
      AA)")),
            R"(IPv6 Mobility Header: 56 bytes {40+56}
  Next Header: 59 (IPv6-NoNxt) {40+1}
  Length of the header excluding first 8 octets: 6 {41+1}
  Mobility Header Type: 0 = Binding Refresh Request {42+1}
  Reserved: 0 {43+1}
  Checksum: 0x1234 {44+2}
  Binding Refresh Request Message {46+50}
    Reserved : 5 {46+2}
    Mobility Options {48+48}
      Binding Refresh Advice {48+4}
        Refresh Interval : 10 (in 4-second time units = 40 seconds) {50+2}
      Nonce Indices {52+6}
        Home Nonce Index : 1 {54+2}
        Care-of Nonce Index : 2 {56+2}
      PadN {58+3}
        Length : 1 bytes {59+1}
        Padding {60+1}
      Pad1 {61+1}
        Type : 0  (padding) {61+1}
      Binding Authorization Data {62+4}
        Authenticator {64+2}
      Mobility Option Data {66+4}
        Type : 9 {66+1}
        Length : 2 {67+1}
        Data {68+2}
      Alternate Care-of Address {70+18}
        Alternate Care-of Address : 2001:db8::7 {72+16}
      Mobility Support Options Data {88+8}
)");
  const std::string init = Behind(kMobility, Hex("3B 01 01 00 0000 0000  0102030405060708"));
  EXPECT_NE(init.find("Home Test Init Message {46+10}\n    Home Init Cookie : 72623859790382856 {48+8}\n"),
            std::string::npos) << init;
  const std::string update = Behind(kMobility, Hex("3B 01 05 00 0000 0007  C000 0003 01 02 0000"));
  EXPECT_NE(update.find("Sequence : 7 {46+2}"), std::string::npos) << update;
  EXPECT_NE(update.find("1....... ........: Acknowledge = True {48+2}"), std::string::npos) << update;
  EXPECT_NE(update.find("Lifetime : 3 (in 4-second time units = 12 seconds) {50+2}"), std::string::npos) << update;
}

TEST(IPv6, ChainsThatLieEndWithTheBytes) {
  // Every header declares more than there is, or nothing: each of these must end, the longest in time.
  const Bytes optionsInOptions = Repeat(Hex("3C 00 01 04 00000000"), 8000);
  TestView view;
  EXPECT_EQ(view.Run(DecodeIPv6, IPv6(kDestination, optionsInOptions)), 1);
  EXPECT_EQ(view.context().rangeCount, 9u + 8000 * 7);
}

// 2,000 Pad1 options: with PadN the header can hold no more than 2,046 bytes of them.
TEST(IPv6, ManyPadsAreQuickOnASmallStack) {
  const Bytes packet = IPv6(kHopByHop, Hex("3B FA") + Bytes(2006));
  double best = 0;
  RunOnSmallStack([&] {
    TestView view;
    best = BestMilliseconds([&] { view.Run(DecodeIPv6, packet); });
    EXPECT_EQ(view.context().rangeCount, 9u + 3 + 2 * 2006);
  });
  EXPECT_LT(best, kMostMilliseconds);
  RecordProperty("microseconds", static_cast<int>(best * 1e3));
}

}  // namespace
}  // namespace testing
}  // namespace qxview
