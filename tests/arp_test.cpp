#include "tests/support/decoding.h"

namespace qxview {
int32_t DecodeArp(const Place& at, Cursor c);

namespace testing {
namespace {

const Bytes kRequest = Hex(R"(
  0001 0800 06 04 0001
  02 00 00 00 00 01  0A 00 00 01   # source
  00 00 00 00 00 00  0A 00 00 02   # target
)");

TEST(Arp, ShowsBothStationsAndCoversWhatItRead) {
  EXPECT_EQ(TreeOf(Ethernet(0x0806, kRequest + Bytes(18))),
            R"(Packet 1:  60 bytes captured {0+60}
  Network: Ethernet,  Frame type:  Ethernet II {0+60}
  Frame network size: 64 (including 4 bytes CRC) {0+60}
Ethernet Header:  02:00:00:00:00:02 -> 02:00:00:00:00:01 {0+14}
  Destination: 02:00:00:00:00:01 {0+6}
  Source: 02:00:00:00:00:02 {6+6}
  Ethertype: 0x0806 = ARP {12+2}
ARP: Request, Source 10.0.0.1, Target 10.0.0.2 {14+28}
  Hardware Type: 1 = Ethernet {14+2}
  Protocol Type: 0x0800 = IP {16+2}
  Hardware Address Length: 6 {18+1}
  Protocol Address Length: 4 {19+1}
  Operation: 1 = Request {20+2}
  Source Hardware Address: 02:00:00:00:00:01 {22+6}
  Source IP Address: 10.0.0.1 {28+4}
  Target Hardware Address: 00:00:00:00:00:00 {32+6}
  Target IP Address: 10.0.0.2 {38+4}
)");
}

TEST(Arp, AddressesOfOtherLengthsAreBytes) {
  const std::string tree = TreeOfRun(DecodeArp, Hex("000F 86DD 02 10 0008  AB CD") + Bytes(15));
  EXPECT_NE(tree.find("Source Hardware Address: AB CD {8+2}"), std::string::npos) << tree;
  EXPECT_EQ(tree.find("Source Protocol Address"), std::string::npos) << "the address is cut:\n" << tree;
}

}  // namespace
}  // namespace testing
}  // namespace qxview
