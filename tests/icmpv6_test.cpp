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

}  // namespace
}  // namespace testing
}  // namespace qxview
