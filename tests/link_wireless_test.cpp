#include "tests/support/decoding.h"

namespace qxview::testing {
namespace {

constexpr uint8_t kWireless = 9;
constexpr uint16_t kLinkPrism = 119, kLinkRadiotap = 127, kLinkAvs = 163, kLinkPpi = 192;

const Bytes kArp = Hex("0001 0800 06 04 0001  02 00 00 00 00 02  0A 00 00 01  00 00 00 00 00 00  0A 00 00 02");
const Bytes kSnapArp = Hex("AA AA 03 00 00 00 08 06") + kArp;
const std::string kThreeAddresses = "020000000001 020000000002 020000000003";

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
