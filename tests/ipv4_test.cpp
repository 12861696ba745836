#include "core/internet_checksum.h"
#include "decoders/net/ip_protocol_names.h"
#include "decoders/net/ipv4.h"
#include "decoders/net/pseudo_head.h"
#include "qxview/custom_decoder.h"
#include "tests/support/decoding.h"
#include "tests/support/small_stack.h"

namespace qxview::testing {
namespace {

// An IPv4 header of these options (padded to words) without a checksum, then the payload.
Bytes HeaderWith(const Bytes& options, uint8_t protocol = 253, const Bytes& payload = {}) {
  const size_t words = 5 + (options.size() + 3) / 4;
  Bytes header = Hex("40 00 0000 0001 0000 40 00 0000 0A000001 0A000002") + options;
  header.resize(words * 4);
  header[0] = static_cast<uint8_t>(header[0] | words);
  header[2] = static_cast<uint8_t>((header.size() + payload.size()) >> 8);
  header[3] = static_cast<uint8_t>(header.size() + payload.size());
  header[9] = protocol;
  return header + payload;
}

// The lines of a tree from the first one that starts with `from` up to the first one that starts with `to`.
std::string Between(const std::string& tree, const std::string& from, const std::string& to) {
  const size_t start = ("\n" + tree).find("\n" + from);
  if (start == std::string::npos) return "no such line in\n" + tree;
  const size_t end = tree.find("\n" + to, start);
  return tree.substr(start, end == std::string::npos ? end : end + 1 - start);
}

bool Has(const std::string& tree, const std::string& line) { return tree.find(line) != std::string::npos; }

TEST(Ipv4, TypeOfServiceHasFourReadings) {
  struct {
    const char* mode;
    uint8_t service;
    const char* lines;
  } const cases[] = {
      {"0", 0xE2, "  Type of Service: NetworkControl Precedence, Normal Delay, Normal Throughput, Normal Reliability, "
                  "ECN (0x02) = Not ECT(1) {1+1}\n"},
      {"9", 0x07, "  Type of Service: Routine Precedence, Normal Delay, Normal Throughput, High Reliability, "
                  "ECN (0x03) = EC {1+1}\n"},
      {"1", 0x5A, "  Type of Service: Immediate Precedence {1+1}\n    010.....: Precedence = Immediate {1+1}\n"
                  "    ...110.. : OSPF V2 = 6 {1+1}\n    ......1. : Cost = 1 {1+1}\n"
                  "    .......0 : Reserved = 0 {1+1}\n"},
      {"2", 0xC0, "  Type of Service: DSCP = 48 ,  ECN = (0) Not Used  {1+1}\n    110000..: CS6 (Precedence 6) {1+1}\n"
                  "    ......00 : Explicit Congestion Notification  (ECN) = Not Used {1+1}\n"},
      {"2", 0x4A, "  Type of Service: DSCP = 18 ,  ECN = (2) ECT(0)  {1+1}\n"
                  "    010010..: AF21 Class 2 Low Drop Prec {1+1}\n"
                  "    ......10 : Explicit Congestion Notification  (ECN) = ECT(0) {1+1}\n"},
      {"2", 0xBB, "  Type of Service: DSCP = 46 ,  ECN = (3) CE - Congestion  {1+1}\n"
                  "    101110..: Unknown/User defined Assured Forwarding {1+1}\n"
                  "    ......11 : Explicit Congestion Notification  (ECN) = CE - Congestion {1+1}\n"},
      {"2", 0x05, "  Type of Service: DSCP = 1 ,  ECN = (1) ECT(1)  {1+1}\n"
                  "    000001..: Unknown/User defined Assured Forwarding {1+1}\n"},
      {"3", 0xB9, "  Type of Service: {1+1}\n    101..... : Class = 5 {1+1}\n    ...1100. : Colour = 12 {1+1}\n"
                  "    .......1 :  = 1 {1+1}\n"},
  };
  for (const auto& one : cases) {
    TestHost host;
    host.settings = {{"TypeOfServiceMode", one.mode}, {"TypeOfServiceFieldMask", "0x91"},
                     {"TypeOfServiceFieldName0", "Class"}, {"TypeOfServiceFieldName3", "Colour"}};
    TestView view(&host);
    Bytes datagram = HeaderWith({});
    datagram[1] = one.service;
    view.Run(DecodeIPv4, datagram);
    EXPECT_TRUE(Has(view.Text(), one.lines)) << one.lines << view.Text();
  }
}

TEST(Ipv4, ABadChecksumStopsThePayload) {
  Bytes datagram = IPv4(4, IPv4(253, Hex("01")));
  EXPECT_TRUE(Has(TreeOfRun(DecodeIPv4, datagram), " (Good) {10+2}"));
  datagram[8] ^= 1;
  TestView view;
  EXPECT_EQ(view.Run(DecodeIPv4, datagram + Bytes(3)), 1);
  EXPECT_EQ(Between(view.Text(), "  Header", "  IP"), "  Header checksum: 0x26CE (BAD) {10+2}\n");
  EXPECT_TRUE(Has(view.Text(), "IP Data: (Bad IP Checksum) {8:20+24}\n")) << view.Text();
  EXPECT_EQ(view.context().packet.destination.address[15], 2);
}

TEST(Ipv4, VersionsAndHeadersThatAreNone) {
  TestView view;
  EXPECT_EQ(view.Run(DecodeIPv4, Bytes(19, 0x45)), 0);
  EXPECT_EQ(view.Text(), "");
  Bytes datagram = HeaderWith({}, 253, Hex("AA"));
  datagram[0] = 0x57;
  EXPECT_EQ(view.Run(DecodeIPv4, datagram), 0);
  EXPECT_EQ(view.Text(), "IP - Unknown Version {0+21}\n"
                         "  Status: Version = 5 (Unknown), IP Header Length = 28 Bytes {0+1}\nUnknown Data {8:1+20}\n");
  EXPECT_EQ(view.context().packet.ipHeaderSeen, 0u);
  datagram[0] = 0x46;   // longer than what is there: up to the checksum
  EXPECT_EQ(view.Run(DecodeIPv4, datagram), 0);
  EXPECT_TRUE(Has(view.Text(), "IP:    10.0.0.1 -> 10.0.0.2 {0+24}\n")) << view.Text();
  EXPECT_TRUE(Has(view.Text(), "Protocol: 253")) << view.Text();
  EXPECT_FALSE(Has(view.Text(), "checksum")) << view.Text();
  datagram[0] = 0x43;   // shorter than the fixed header: the payload follows that
  EXPECT_EQ(view.Run(DecodeIPv4, datagram), 1);
  EXPECT_TRUE(Has(view.Text(), "Data {8:20+1}\n")) << view.Text();
}

TEST(Ipv4, TotalLengthsThatLie) {
  for (const uint8_t total : {1, 19, 20}) {
    Bytes datagram = HeaderWith({}, 253, Hex("AA"));
    datagram[3] = total;
    EXPECT_FALSE(Has(TreeOfRun(DecodeIPv4, datagram), "\nData")) << total;
  }
  Bytes datagram = HeaderWith({}, 253, Hex("AABB"));
  datagram[2] = 0xFF;
  TestView view;
  view.Run(DecodeIPv4, datagram);
  EXPECT_TRUE(Has(view.Text(), "\nData {8:20+2}\n")) << view.Text();
  EXPECT_EQ(view.context().packet.network.totalLength, 0xFF16 - 20);
}

TEST(Ipv4, ATunnelLeavesTheInnermostDatagramsState) {
  TestView view;
  Bytes inner = HeaderWith({}, 17, Udp(53, 53, Hex("01")));
  inner[15] = 9;
  inner[6] = 0x20;
  view.Run(DecodeIPv4, HeaderWith({}, 4, inner));
  const PacketState& packet = view.context().packet;
  EXPECT_EQ(packet.source.address[15], 9);
  EXPECT_EQ(packet.source.kind, 1u);
  EXPECT_EQ(packet.ipProtocol, 17);
  EXPECT_TRUE(packet.network.fragmented && packet.network.moreFragments);
  EXPECT_EQ(packet.network.totalLength, 9);
  EXPECT_EQ(packet.nesting, 0);
}

TEST(Ipv4, AuthenticationHeadersAreDecodedInPlace) {
  const Bytes ah = Hex("06 04 0000 00000101 00000007") + Bytes(12, 0xEE);
  Bytes segment = Hex("0050 1234 00000001 00000002 5002 1000 0000 0000");
  TestView view;
  view.Run(DecodeIPv4, HeaderWith({}, 51, ah + segment));
  EXPECT_TRUE(Has(view.Text(), R"(
AH - Authentication Header: 24 bytes, SPI = 0x00000101, Sequence Number = 7 {20+24}
  Next Header: 6 = TCP {20+1}
  Payload Length: 4 (24 bytes) {21+1}
  Reserved: 0x0000 {22+2}
  Security Parameters Index (SPI): 0x00000101 (257) {24+4}
  Sequence Number: 7 {28+4}
  Integrity Check Value (ICV): EE EE EE EE EE EE EE EE EE EE EE EE {32+12}
)")) << view.Text();
  // The transport's sum starts from what the transport is told, as if the header in front were not there.
  const NetworkState network = view.context().packet.network;
  EXPECT_EQ(network.totalLength, 20);
  const Bytes plain = HeaderWith({}, 6, segment);
  EXPECT_EQ(network.pseudoHead, PseudoHead(plain.data()));
  const uint32_t right = RightChecksum(SumWords(network.pseudoHead, segment.data(), 20), 0);
  segment[16] = static_cast<uint8_t>(right >> 8);
  segment[17] = static_cast<uint8_t>(right);
  EXPECT_EQ(SumWords(network.pseudoHead, segment.data(), 20), 0xFFFFu);

  for (const char* bad : {"06 00 0000 00000101 00000007", "06", "06 04 0000 0000"}) {
    const std::string tree = TreeOfRun(DecodeIPv4, HeaderWith({}, 51, Hex(bad)));
    EXPECT_FALSE(Has(tree, "\nTCP") || Has(tree, "\nData")) << tree;
  }
}

int32_t TakeAll(QxLine, const uint8_t*, int32_t length, int32_t, int32_t, uint32_t, void*, uint32_t*, uint32_t*,
                uint64_t**, CustomDecodeBlock*) {
  return length == 8;
}

TEST(Ipv4, UserLibrariesAreOfferedWholePayloadsFirst) {
  TestHost host;
  host.settings = {{"CustomLibrary0", "/library"}};
  TestView view(&host);
  view.loader.load = [](const char*) -> void* { return reinterpret_cast<void*>(&TakeAll); };
  view.loader.find = [](void*, const char* name) -> void* {
    return std::string(name) == "CustomDecodeIP" ? reinterpret_cast<void*>(&TakeAll) : nullptr;
  };
  view.loader.release = [](void*) {};
  Bytes datagram = HeaderWith({}, 253, Bytes(8));
  EXPECT_EQ(view.Run(DecodeIPv4, datagram + Bytes(5)), 1);
  EXPECT_FALSE(Has(view.Text(), "\nData")) << view.Text();
  view.Run(DecodeIPv4, HeaderWith({}, 253, Bytes(9)));
  EXPECT_TRUE(Has(view.Text(), "\nData {8:20+9}")) << view.Text();
  datagram[7] = 1;
  view.Run(DecodeIPv4, datagram);
  EXPECT_TRUE(Has(view.Text(), "Fragment, Offset 8, Last Fragment {8:20+8}")) << view.Text();
}

// Decodes on a small stack; the best of three runs in milliseconds.
double TimeOnSmallStack(const Bytes& datagram) {
  double best = 0;
  RunOnSmallStack([&] {
    TestView view;
    best = BestMilliseconds([&] { view.Run(DecodeIPv4, datagram); }, 3);
  });
  return best;
}

// `count` headers inside each other. The lengths of outer ones lie where the datagram is longer than they can tell.
Bytes Nested(size_t count, const Bytes& options) {
  const Bytes header = HeaderWith(options, 4);
  Bytes nested = Repeat(header, count);
  for (size_t at = 0; at < nested.size(); at += header.size()) {
    nested[at + 2] = static_cast<uint8_t>((nested.size() - at) >> 8);
    nested[at + 3] = static_cast<uint8_t>(nested.size() - at);
  }
  return nested;
}

TEST(Ipv4, NestingIsBoundedInTimeAndStack) {
  const Bytes options = Hex("44 24 25 01") + Bytes(32) + Hex("83 04 04 FF");
  const double deep = TimeOnSmallStack(Nested(3000, {})), full = TimeOnSmallStack(Nested(64, options));
  const double noOperations = TimeOnSmallStack(Nested(64, Bytes(40, 1)));
  RecordProperty("nested60000Microseconds", static_cast<int>(deep * 1000));
  RecordProperty("nestedOptionsMicroseconds", static_cast<int>(full * 1000));
  RecordProperty("nestedNoOperationsMicroseconds", static_cast<int>(noOperations * 1000));
  EXPECT_LT(deep, kMostMilliseconds);
  EXPECT_LT(full, kMostMilliseconds);
  EXPECT_LT(noOperations, kMostMilliseconds);
  TestView view;
  view.Run(DecodeIPv4, Nested(3000, {}));
  EXPECT_TRUE(Has(view.Text(), "Data {8:1300+58700}")) << "the decoder that is run and 64 more";
}

TEST(Ipv4, PseudoHeadSumsWhatTheTransportIsToldAndLeavesTheHeader) {
  const Bytes header = Hex("46 00 0028 0001 4000 40 06 BEEF C0A80001 C0A80002 01010100");
  uint32_t sum = 0x0006 + (0x28 - 24) + 0xC0A8 + 0x0001 + 0xC0A8 + 0x0002;
  sum = (sum & 0xFFFF) + (sum >> 16);
  const uint16_t words[] = {static_cast<uint16_t>(PseudoHead(header.data()))};
  EXPECT_EQ(ReadU16(reinterpret_cast<const uint8_t*>(words)), sum);
}

TEST(Ipv4, ProtocolNames) {
  EXPECT_STREQ(IpProtocolName(134), "RSVP-E2E-IGNORE");
  EXPECT_STREQ(IpProtocolName(135), "Unassigned");
  EXPECT_STREQ(IpProtocolName(255), "Reserved");
  EXPECT_STREQ(NextHeaderName(133), "FC");
  EXPECT_STREQ(NextHeaderName(134), "unknown header type");
  EXPECT_STREQ(NextHeaderName(255), "unknown header type");
}

}  // namespace
}  // namespace qxview::testing
