#include "tests/support/decoding.h"

namespace qxview::testing {
namespace {

constexpr uint8_t kWireless = 9;
constexpr uint16_t kLinkPrism = 119, kLinkRadiotap = 127, kLinkAvs = 163, kLinkPpi = 192;

const Bytes kArp = Hex("0001 0800 06 04 0001  02 00 00 00 00 02  0A 00 00 01  00 00 00 00 00 00  0A 00 00 02");
const Bytes kSnapArp = Hex("AA AA 03 00 00 00 08 06") + kArp;
const std::string kThreeAddresses = "020000000001 020000000002 020000000003";

TEST(Wireless, AddressesHaveTheirMeaningByTheDirection) {
  ExpectInOrder(TreeOf(Hex("0802 2C00" + kThreeAddresses + "3412") + kSnapArp, kWireless), {R"(
  Network: Wireless 802.11, Frame Type: Data {0+60}
  Frame network size: 64 (including 4 bytes CRC) {0+60}
802.11 Header:  Data {0+24}
  Frame Control: 0x0208 = Data {0+2}
    0000....: Subtype = 0 (Data) {0+1}
    ....10..: Type = 2 (Data) {0+1}
    ......00: Protocol Version = 0 {0+1}
    0.......: Order or HT Control = 0 {1+1}
    .0......: Protected = 0 {1+1}
    ..0.....: More Data = 0 {1+1}
    ...0....: Power Management = 0 {1+1}
    ....0...: Retry = 0 {1+1}
    .....0..: More Fragments = 0 {1+1}
    ......1.: From DS = 1 {1+1}
    .......0: To DS = 0 {1+1}
  Duration: 44 microseconds {2+2}
  Destination: 02:00:00:00:00:01 {4+6}
  BSSID: 02:00:00:00:00:02 {10+6}
  Source: 02:00:00:00:00:03 {16+6}
  Sequence Control: 0x1234 {22+2}
    00010010 0011....: Sequence Number = 291 {22+2}
    ........ ....0100: Fragment Number = 4 {22+2}
  Fragment Data {24+36})"});
  ExpectInOrder(TreeOf(Hex("0801 2C00" + kThreeAddresses + "3012") + kSnapArp, kWireless),
                {"BSSID: 02:00:00:00:00:01", "Source: 02:00:00:00:00:02", "Destination: 02:00:00:00:00:03",
                 "802.2 SNAP Header: Ethertype = ARP {24+8}", "ARP: Request"});
  ExpectInOrder(TreeOf(Hex("0803 2C00" + kThreeAddresses + "3012 020000000004") + kSnapArp, kWireless),
                {"802.11 Header:  Data {0+30}", "Receiver: 02:00:00:00:00:01", "Transmitter: 02:00:00:00:00:02",
                 "Destination: 02:00:00:00:00:03", "Source: 02:00:00:00:00:04 {24+6}", "ARP: Request"});
}

TEST(Wireless, QosFramesAggregateAndMesh) {
  const Bytes subframe = Hex("020000000001 020000000002 0024") + kSnapArp;
  const Bytes aggregate = Hex("8801 2C00" + kThreeAddresses + "0000 8600") + subframe + Hex("0000") + subframe;
  ExpectInOrder(TreeOf(aggregate, kWireless),
                {"QoS Data {0+26}", "QoS Control: 0x0086 {24+2}", "........ 1.......: A-MSDU Present = True",
                 "........ ....0110: Traffic Identifier = 6",
                 "A-MSDU Subframe:  02:00:00:00:00:02 -> 02:00:00:00:00:01 {26+14}", "Length: 36 {38+2}",
                 "ARP: Request", "A-MSDU Subframe:", "{78+14}", "ARP: Request"});
  ExpectInOrder(TreeOf(Hex("8881 2C00" + kThreeAddresses + "0000 0000 01020304") + kSnapArp, kWireless),
                {"QoS Data {0+30}", "HT Control: 0x04030201 {26+4}", "ARP: Request"});
  const Bytes mesh =
      Hex("8803 2C00" + kThreeAddresses + "0000 020000000004 0001  01 1F 07000000 020000000005") + kSnapArp;
  ExpectInOrder(TreeOf(mesh, kWireless),
                {"Mesh Control: {32+12}", "Time to Live: 31 {33+1}", "Sequence Number: 7 {34+4}",
                 "Address: 02:00:00:00:00:05 {38+6}", "ARP: Request"});
}

TEST(Wireless, BodiesWithoutAnLlcHeaderAreBlocks) {
  ExpectInOrder(TreeOf(Hex("0841 2C00" + kThreeAddresses + "0000 01020304 AABB"), kWireless),
                {"Protected Data {24+6}"});
  EXPECT_EQ(TreeOf(Hex("4801 2C00" + kThreeAddresses + "0000 0102"), kWireless).find("Raw"), std::string::npos)
      << "frames without data carry nothing";
  ExpectInOrder(TreeOf(Hex("8000 0000" + kThreeAddresses + "0000 01020304"), kWireless),
                {"Frame Type: Beacon {", "Destination: 02:00:00:00:00:01", "BSSID: 02:00:00:00:00:03",
                 "Management Frame Body {24+4}"});
  ExpectInOrder(TreeOf(Hex("B400 3A01 020000000001 020000000002"), kWireless),
                {"802.11 Header:  RTS {0+16}", "Duration: 314 microseconds {2+2}", "Receiver:", "Transmitter:"});
  ExpectInOrder(TreeOf(Hex("D400 0000 020000000001"), kWireless), {"802.11 Header:  ACK {0+10}", "Receiver:"});
  ExpectInOrder(TreeOf(Hex("A400 01C0 020000000001 020000000002"), kWireless), {"Association ID: 1 {2+2}", "BSSID:"});
  ExpectInOrder(TreeOf(Hex("9400 0000 020000000001 020000000002 0500 1000 FFFF"), kWireless),
                {"Block Ack {0+16}", "Control Frame Body {16+6}"});
  ExpectInOrder(TreeOf(Hex("80"), kWireless), {"Frame Type: Unknown", "Raw Data {8:0+1}"});
}

Record Radio(const Bytes& frame, uint16_t linkType, const Bytes& header) {
  Record record(frame, kWireless, kExtensionMedium, header);
  record->linkType = linkType;
  return record;
}

const Bytes kAck = Hex("D400 0000 020000000001");

TEST(RadioHeader, Radiotap) {
  // Two words of fields: time stamp, flags, rate, channel, signal, and one antenna's signal.
  const Bytes header = Hex(R"(00 00 2600  2F 00 00 A0  20 08 00 00   00000000
                              0100000000000000 10 0C 6C09 A000 D6  D5 02  0000 0000 00)");
  ExpectInOrder(
      TreeOf(Radio(kAck, kLinkRadiotap, header)),
      {"Radio Information: Radiotap, 38 bytes {0+0}", "MAC Time: 1 microseconds", "Flags: 0x10 Check Sequence at End",
       "Data Rate: 6.0 Mbit/s", "Channel Frequency: 2412 MHz", "Channel Flags: 0x00A0 CCK 2.4 GHz", "Signal: -42 dBm",
       "Signal: -43 dBm", "Antenna: 2", "802.11 Header:  ACK"});
  // A header filled up to four bytes.
  const Bytes padded = Hex("00 00 0900 02000000 20");
  ExpectInOrder(
      TreeOf(Radio(Hex("8801 2C00" + kThreeAddresses + "0000 0000 0000") + kSnapArp, kLinkRadiotap, padded)),
      {"Header Padding: 00 00 {26+2}", "802.2 SNAP Header: Ethertype = ARP {28+8}"});
}

TEST(RadioHeader, OtherKinds) {
  ExpectInOrder(TreeOf(Radio(kAck, kLinkPpi,
                             Hex("00 00 2000 69000000  0200 1400  0200000000000000 0100 0B00 6C09 A000 0000 D6 A0"))),
                {"Radio Information: PPI", "Data Rate: 5.5 Mbit/s", "Channel Frequency: 2412 MHz", "Signal: -42 dBm",
                 "Noise: -96 dBm"});
  const Bytes avs = Hex("80211001 00000040 0000000000000001 0000000000000002 00000004 0000000B 0000006E 00000001") +
                    Hex("00000000 00000002 FFFFFFD6 FFFFFFA0 00000000 00000000");
  ExpectInOrder(TreeOf(Radio(kAck, kLinkAvs, avs)), {"Radio Information: AVS", "Channel: 11",
                                                     "Data Rate: 11.0 Mbit/s", "Signal: -42 dBm", "Noise: -96 dBm"});
  const Bytes prism =
      Hex("44000000 30000000") + Bytes(16) + Hex("44000300 0000 0400 0B000000  44000800 0000 0400 16000000");
  ExpectInOrder(TreeOf(Radio(kAck, kLinkPrism, prism)), {"Radio Information: Prism", "Channel: 11", "Data Rate: 22"});
}

// Radio headers are not the frame's bytes, so the frame properties do not reach them: every prefix and changed byte.
TEST(RadioHeader, AnyBytes) {
  const Bytes headers[] = {Hex("00 00 2600 2F0000A0 20080000 00000000 0100000000000000 100C6C09A000D6D5020000000000"),
                           Hex("00 01 2000 69000000 0200 1400") + Bytes(20)};
  for (const uint16_t linkType : {kLinkRadiotap, kLinkPpi, kLinkAvs, kLinkPrism}) {
    for (const Bytes& header : headers) {
      for (size_t length = 0; length <= header.size(); ++length) {
        TreeOf(Radio(Bytes{}, linkType, Bytes(header.begin(), header.begin() + static_cast<ptrdiff_t>(length))));
      }
      for (size_t at = 0; at < header.size(); ++at) {
        for (const uint8_t value : {0x00, 0x01, 0x80, 0xFF}) {
          Bytes changed = header;
          changed[at] = value;
          TreeOf(Radio(Bytes{}, linkType, changed));
        }
      }
    }
  }
}

}  // namespace
}  // namespace qxview::testing
