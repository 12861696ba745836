// Control and provisioning of wireless access points: a controller's messages and the stations' frames that go through it
// (CAPWAP, RFC 5415, with the elements of IEEE 802.11, RFC 5416).
//
//   preamble   header length, radio, binding, flags   fragment   [radio's address]   [wireless information]   then
//   control: message type, sequence, length, flags, elements      data: an 802.11 frame, an Ethernet frame, or a keepalive
//
// Control is DTLS but for discovery. Many access points send the two bytes of the frame control in the other order.
#include <cstring>

#include "core/elements.h"
#include "decoders/common/ahead_cut.h"
#include "decoders/link/carried.h"
#include "decoders/link/medium.h"
#include "decoders/net/capwap.h"

namespace qxview {
namespace {

constexpr uint32_t kWireless = 1;

constexpr auto kPreambleNames = SortedNames({{0, "CAPWAP Header"}, {1, "CAPWAP DTLS Header"}});
constexpr auto kBindingNames = SortedNames({
    {0, "Reserved"}, {1, "IEEE 802.11"}, {2, "Reserved"}, {3, "EPCGlobal"}});
constexpr auto kPayloadNames = SortedNames({{0, "IEEE 802.3"}, {1, "Native Frame of the Binding"}});

struct Header {
  Field length, binding, native, fragment, wireless, radio, keepAlive;
};
constexpr auto kPreamble = Rows<Header>({
    Word(1), Bits(0, 4, "Preamble Version"), Bits(4, 4, "Preamble Type", kPreambleNames)});
constexpr auto kSecured = Rows<Header>({Hex(3, "Reserved")});
constexpr auto kHeader = Rows<Header>({
    Word(3), Bits(0, 5, "Header Length", " words").Into(&Header::length), Bits(5, 5, "Radio ID"),
    Bits(10, 5, "Wireless Binding ID", kBindingNames).Into(&Header::binding),
    Bits(15, 1, "Payload Type", kPayloadNames).Into(&Header::native), Flag(16, "Fragment").Into(&Header::fragment),
    Flag(17, "Last Fragment"), Flag(18, "Wireless Information Present").Into(&Header::wireless),
    Flag(19, "Radio MAC Address Present").Into(&Header::radio), Flag(20, "Keep-Alive").Into(&Header::keepAlive),
    Bits(21, 3, "Reserved"), Number(2, "Fragment ID"), Word(2), Bits(0, 13, "Fragment Offset", " x 8 bytes"),
    Bits(13, 3, "Reserved")});
constexpr auto kRadioLength = Rows<Header>({Number(1, "Radio MAC Length")});
constexpr auto kRadio6 = Rows<Header>({Mac("Radio MAC Address")});
constexpr auto kRadio8 = Rows<Header>({Eui64("Radio MAC Address")});
constexpr auto kWirelessLength = Rows<Header>({Number(1, "Wireless Information Length")});
constexpr auto kFrameInformation = Rows<Header>({
    Signed(1, "RSSI", " dBm"), Signed(1, "SNR", " dB"), Number(2, "Data Rate", " x 0.1 Mbit/s")});

void AddPadding(const Place& in, Cursor& c) {
  const int32_t size = (4 - Taken(c) % 4) % 4;
  if (size == 0) return;
  const Field padding = TakeBytes(c, size);
  AddLine(in, padding, "Padding: %s", HexText(padding));
}

void ShowOptional(const Place& in, Cursor& c, Header& header) {
  if (header.radio.value) {
    const int32_t length = static_cast<int32_t>(PeekU8(c));
    ShowRows<Header>(in, c, kRadioLength, header);
    Cursor address = TakeCursor(c, length);
    if (length == 6 || length == 8) {
      ShowRows<Header>(in, address, length == 6 ? RowSpan<Header>(kRadio6) : RowSpan<Header>(kRadio8), header);
    }
    AddBlock(in, Rest(address), "Radio MAC Address");
    AddPadding(in, c);
  }
  if (header.wireless.value) {
    const int32_t length = static_cast<int32_t>(PeekU8(c));
    ShowRows<Header>(in, c, kWirelessLength, header);
    Cursor information = TakeCursor(c, length);
    if (length == 4) ShowRows<Header>(in, information, kFrameInformation, header);
    AddBlock(in, Rest(information), "Wireless Information");
    AddPadding(in, c);
  }
}

DecoderFunction FindDtls() {
  const DecoderRowSpan rows = RegistryTable(DoorKind::kApplication);
  for (int32_t i = 0; i < rows.count; ++i) {
    if (std::strcmp(rows.rows[i].name, "DTLS") == 0) return rows.rows[i].decode;
  }
  return nullptr;
}

// The preamble and the header of both channels. False for what goes no further: the cursor is shown to its end then.
bool OpenHeader(const Place& at, Cursor& c, const char* channel, Header& header, Place& in) {
  const bool isSecured = (PeekU8(c) & 15) == 1;
  const Cursor start = c;
  in = Under(at, AddLine(at, AheadCut(c, isSecured ? 4 : 8), "CAPWAP %s%s", channel, isSecured ? ": DTLS" : ""));
  ShowRows<Header>(in, c, kPreamble, header);
  if (isSecured) {
    ShowRows<Header>(in, c, kSecured, header);
    CallDecoder(Deeper(at), c, FindDtls(), "DTLS Data");
    return false;
  }
  ShowRows<Header>(in, c, kHeader, header);
  const int32_t left = static_cast<int32_t>(header.length.value) * 4 - Taken(c);
  Cursor rest = TakeCursor(c, left);
  rest.begin = start.offset;
  ShowOptional(in, rest, header);
  rest.ranShort = false;
  AddBlock(in, Rest(rest), "Header Data");
  CoverBytes(in, c);
  if (!header.fragment.value) return true;
  CallDecoder(Deeper(at), c, nullptr, "CAPWAP Fragment Data");
  return false;
}

// A frame control whose version is not 0 has its bytes in the other order.
bool IsSwapped(const Cursor& c) { return (PeekU8(c) & 3) != 0 && (PeekU8(c, 1) & 3) == 0; }

}  // namespace

int32_t DecodeTunnelledWireless(const Place& network, const Cursor& c) {
  if (!IsSwapped(c)) return DecodeCarriedFrame(network, c, Carried::kWireless, "802.11 Data");
  CallDecoder(network, c, DecodeSwappedWirelessHeader, "802.11 Data");
  return 1;
}

int32_t DecodeCapwapData(const Place& at, Cursor c) {
  if (Left(c) < 4 || PeekU8(c) > 1) return 0;
  Header header{};
  Place in{};
  if (!OpenHeader(at, c, "Data", header, in)) return 1;
  if (header.keepAlive.value) {
    const Field length = TakeU16(c);
    AddLine(in, length, "Message Element Length: %u", length.value);
    ShowCapwapElements(in, c);
    CoverBytes(in, c);
    return 1;
  }
  if (!header.native.value) return DecodeCarriedFrame(Deeper(at), c, Carried::kEthernet, "CAPWAP Data");
  if (header.binding.value == kWireless) return DecodeTunnelledWireless(Deeper(at), c);
  return DecodeCarriedFrame(Deeper(at), c, Carried::kUnknown, "CAPWAP Data");
}

int32_t DecodeCapwapControl(const Place& at, Cursor c) {
  if (Left(c) < 4 || PeekU8(c) > 1) return 0;
  Header header{};
  Place in{};
  if (!OpenHeader(at, c, "Control", header, in)) return 1;
  ShowCapwapMessage(in, c);
  CoverBytes(in, c);
  return 1;
}

}  // namespace qxview
