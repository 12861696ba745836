#include "tests/support/transport.h"

namespace qxview::testing {
namespace {

class UdpTest : public ::testing::Test {
 protected:
  UdpTest() { testNetwork = {}; }
  std::string Tree(const Bytes& datagram) {
    result_ = view_.Run(DecodeUdpOverNetwork, datagram);
    return view_.Text();
  }
  DefinitionsHost host_;
  TestView view_{&host_};
  int32_t result_ = 0;
};

TEST_F(UdpTest, ShowsTheDatagramWithEachVerdict) {
  Bytes datagram = Udp(1025, 161, Hex("01 02 03"));
  EXPECT_EQ(Tree(datagram), R"(UDP, [1025]  -> [161] SNMP {0+8}
  Source port: [1025] {0+2}
  Destination port: [161] {2+2}
  UDP length: 11 {4+2}
  Checksum:  0x0000 (not used) {6+2}
SNMP Data {8:8+3}
)");
  EXPECT_EQ(view_.context().packet.payloadOffset, 8);
  EXPECT_EQ(view_.context().packet.matchedSource, 0u);

  SetChecksum(datagram, 6, 17);
  EXPECT_NE(Tree(datagram).find(" (Good) {6+2}"), std::string::npos);
  datagram[9] ^= 1;
  const std::string bad = Tree(datagram);
  EXPECT_NE(bad.find(" (BAD) {6+2}"), std::string::npos);
  EXPECT_NE(bad.find("SNMP Data {8:8+3}"), std::string::npos) << "a bad checksum does not stop the payload";

  datagram[5] = 200;
  const std::string partial = Tree(datagram);
  EXPECT_NE(partial.find("UDP length: 200,  captured: 11; partial capture or fragmented packet  {4+2}"),
            std::string::npos) << partial;
  EXPECT_NE(partial.find("(partial packet - not able to check)"), std::string::npos);

  testNetwork.fragmented = true;
  const std::string fragment = Tree(datagram);
  EXPECT_EQ(fragment.rfind("UDP First Fragment, [1025]  -> [161] SNMP {0+8}", 0), 0u) << fragment;
  EXPECT_NE(fragment.find("(data fragment - not able to check)"), std::string::npos);
}

TEST_F(UdpTest, LengthsAtTheEdges) {
  EXPECT_EQ(Tree(Bytes(7)), "");
  EXPECT_EQ(result_, 0);
  const std::string empty = Tree(Udp(161, 1025, {}));
  EXPECT_EQ(empty.rfind("UDP, [161] SNMP -> [1025]  {0+8}", 0), 0u) << empty;
  EXPECT_EQ(empty.find("Data"), std::string::npos) << empty;
  Bytes beyond = Udp(1025, 1026, Hex("01 02 03 04"));
  beyond[5] = 9;   // the payload is not cut to the length field
  EXPECT_NE(Tree(beyond).find("UDP Data {8:8+4}"), std::string::npos);
  beyond[5] = 0;
  EXPECT_NE(Tree(beyond).find("UDP length: 00 {4+2}"), std::string::npos);
}

}  // namespace
}  // namespace qxview::testing
