#include "core/internet_checksum.h"
#include "decoders/net/ipv4.h"
#include "tests/support/decoding.h"

namespace qxview {

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

TEST(Icmp, TellsWhenAnEchoWasSent) {
  TestHost host;
  host.settings = {{"Modern", "1"}};
  TestView view(&host);
  const auto show = [&view](const std::string& data) {
    Record record(Ethernet(0x0800, IPv4(1, Summed(Hex("08 00 0000 00010001" + data)))));
    record->nanoseconds = 1581189012'300000000;   // 2020-02-08 19:10:12.3
    view.Decode(record);
    return view.Text();
  };
  const std::string sent = "  Sending Time: 2020-02-08 19:10:12.231493";
  EXPECT_TRUE(Has(show("94073F5E00000000 4588030000000000 1011"), sent)) << view.Text();   // 64 bits, the low octet first
  EXPECT_TRUE(Has(show("94073F5E 45880300 1011"), sent)) << view.Text();
  EXPECT_TRUE(Has(show("5E3F0794 00038845 1011"), sent)) << view.Text();
  EXPECT_FALSE(Has(show("5E310794 00038845 1011"), "Sending Time")) << "another day";
  EXPECT_FALSE(Has(show("5E3F0794 0F438845 1011"), "Sending Time")) << "no microseconds";
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

}  // namespace
}  // namespace testing
}  // namespace qxview
