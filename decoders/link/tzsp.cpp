// TaZmen Sniffer Protocol: frames that a sensor heard, carried to an analyser over UDP, behind tagged fields of the radio.
// There is no standard; the fields are those that senders and readers of it agree on.
#include "core/elements.h"
#include "decoders/link/carried.h"

namespace qxview {
namespace {

constexpr uint32_t kTransmit = 1;
constexpr uint32_t kEthernet = 1, kTokenRing = 2, kPpp = 4, kFddi = 5, kRawIp = 7, kWireless = 18;

constexpr auto kTypeNames = SortedNames({
    {0, "Received Tag List"}, {1, "Packet for Transmit"}, {2, "Reserved"}, {3, "Configuration"}, {4, "Keepalive"},
    {5, "Port Opener"}});
constexpr auto kProtocolNames = SortedNames({
    {1, "Ethernet"}, {2, "Token Ring"}, {3, "SLIP"}, {4, "PPP"}, {5, "FDDI"}, {7, "Raw IP"}, {18, "IEEE 802.11"},
    {119, "IEEE 802.11 with Prism Header"}, {126, "IEEE 802.11 with Radiotap Header"}, {127, "IEEE 802.11 with AVS Header"}});
constexpr auto kFrameNames = SortedNames({
    {0, "Normal"}, {1, "RFC 1042 Encoded"}, {2, "Bridge-Tunnel Encoded"}, {4, "802.11 Management Frame"}});
constexpr auto kRateNames = SortedNames({
    {2, "1 Mbit/s"}, {4, "2 Mbit/s"}, {10, "1 Mbit/s"}, {11, "5.5 Mbit/s"}, {12, "6 Mbit/s"}, {18, "9 Mbit/s"},
    {20, "2 Mbit/s"}, {22, "11 Mbit/s"}, {24, "12 Mbit/s"}, {36, "18 Mbit/s"}, {48, "24 Mbit/s"}, {55, "5.5 Mbit/s"},
    {72, "36 Mbit/s"}, {96, "48 Mbit/s"}, {108, "54 Mbit/s"}, {110, "11 Mbit/s"}});

struct Tzsp {
  Field type, protocol;
};
constexpr auto kHeader = Rows<Tzsp>({
    Number(1, "Version"), Number(1, "Type", kTypeNames).Into(&Tzsp::type),
    Number(2, "Encapsulated Protocol", kProtocolNames).Into(&Tzsp::protocol)});

constexpr auto kSignal = Rows<Tzsp>({Signed(1, nullptr, " dBm").Note(", %d dBm")});
constexpr auto kRatio = Rows<Tzsp>({Signed(1, nullptr, " dB").Note(", %d dB")});
constexpr auto kRate = Rows<Tzsp>({Number(1, "Data Rate", kRateNames).Note(", %s")});
constexpr auto kTime = Rows<Tzsp>({Number(4, "Timestamp", " microseconds")});
constexpr auto kFrameType = Rows<Tzsp>({Number(1, "Type", kFrameNames)});
constexpr auto kFlag = Rows<Tzsp>({Number(1, nullptr, kFalseTrueNames)});
constexpr auto kCheck = Rows<Tzsp>({Number(1, "Frame Check Sequence Error", kFalseTrueNames)});
constexpr auto kChannel = Rows<Tzsp>({Number(1, "Channel").Note(", %u")});
constexpr auto kNumber = Rows<Tzsp>({Number(4, nullptr)});
constexpr auto kLength = Rows<Tzsp>({Number(2, "Original Length", " bytes")});
constexpr auto kText = Rows<Tzsp>({Utf8(0, nullptr).Note(", %s")});
constexpr auto kAddress = Rows<Tzsp>({Mac("Sensor Address").Note(", %s")});
constexpr auto kStamp = Rows<Tzsp>({UnixTime(4, "Seconds"), Number(4, "Microseconds")});

constexpr ElementForm kForm{.padType = 0, .endType = 1, .typeLabel = "Tag"};
constexpr auto kTags = Choices<Tzsp>({
    {0, "Padding"}, {1, "End"}, {10, "Raw RSSI", kSignal}, {11, "SNR", kRatio}, {12, "Data Rate", kRate},
    {13, "Timestamp", kTime}, {14, "Frame Type", kFrameType}, {15, "Contention Free", kFlag}, {16, "Decrypted", kFlag},
    {17, "Frame Check Sequence", kCheck}, {18, "Receive Channel", kChannel}, {40, "Packet Count", kNumber},
    {41, "Receive Frame Length", kLength}, {60, "WLAN Radio Header", kAddress}, {80, "Device Name", kText},
    {81, "Capture Location", kText}, {82, "Time Stamp", kStamp}, {83, "Information", kText}, {84, "Capture ID", kNumber}});

struct CarriedLink {
  Carried link;
  const char* title;
};
CarriedLink LinkOf(uint32_t protocol) {
  switch (protocol) {
    case kEthernet: return {Carried::kEthernet, "Ethernet Data"};
    case kTokenRing: return {Carried::kTokenRing, "Token Ring Data"};
    case kPpp: return {Carried::kPpp, "PPP Data"};
    case kFddi: return {Carried::kFddi, "FDDI Data"};
    case kWireless: return {Carried::kWireless, "802.11 Data"};
    case kRawIp: return {Carried::kIp, "Raw IP Data"};
    default: return {Carried::kUnknown, "Captured Frame"};
  }
}

}  // namespace

int32_t DecodeTzsp(const Place& at, Cursor c) {
  constexpr int32_t kHeaderSize = 4;
  if (Left(c) < kHeaderSize || PeekU8(c) != 1) return 0;
  const Tzsp ahead = PeekRows(c, kHeader);
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "TZSP: %s, %s", LookupName(kTypeNames, ahead.type.value),
                                     LookupName(kProtocolNames, ahead.protocol.value)));
  Tzsp tzsp = ShowRows(in, c, kHeader);
  if (tzsp.type.value > kTransmit && tzsp.type.value != 3) {
    AddBlock(in, Rest(c), "Data");
    return 1;
  }
  ShowElements<Tzsp>(in, c, kForm, "Tag", kTags, tzsp);
  CoverBytes(in, c);
  const CarriedLink carried = LinkOf(tzsp.protocol.value);
  return DecodeCarriedFrame(Deeper(at), c, carried.link, carried.title);
}

}  // namespace qxview
