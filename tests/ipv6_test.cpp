#include <cstring>

#include "decoders/net/ipv6_checksum.h"
#include "tests/support/decoding.h"
#include "tests/support/small_stack.h"

namespace qxview {
int32_t DecodeIPv6(const Place& at, Cursor c);

namespace testing {
namespace {

constexpr uint8_t kHopByHop = 0, kFragment = 44, kNone = 59, kDestination = 60,
                  kUnknownNext = 253;

// What follows the 9 lines of the fixed header.
std::string Behind(uint8_t nextHeader, const Bytes& payload) {
  const std::string tree = TreeOfRun(DecodeIPv6, IPv6(nextHeader, payload));
  const std::string last = "Destination address: ff02::2 {24+16}\n";
  const size_t end = tree.find(last);
  return end == std::string::npos ? tree : tree.substr(end + last.size());
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
