// Ethernet frames (IEEE 802.3): Ethernet II and 802.3 with 802.2 or without.
//
//   0            6            12           14
//   destination  source       type/length  payload
//
// A type/length of at most 1500 is the length of an 802.2 payload; anything above is an Ethertype.
#include "core/engine.h"
#include "core/line_facts.h"
#include "core/line_group.h"
#include "decoders/link/medium.h"
#include "decoders/net/ipv4.h"

namespace qxview {
namespace {

constexpr uint16_t kMostLength = 1500;
constexpr uint16_t kEthertypeIPv4 = 0x0800, kEthertypeVlan = 0x8100, kEthertypeVnTag = 0x8926, kEthertypeIpx = 0x8137;
constexpr int32_t kFrameLines = 3;   // of the frame itself, in any case
constexpr uint32_t kNovellRaw = 0xFFFF;   // IPX without an 802.2 header starts with a checksum of all ones

// ISL trunks address their frames to 01-00-0C-00-00 or 03-00-0C-00-00; the sixth byte is not looked at.
bool IsIslFrame(const Cursor& c) {
  constexpr uint8_t kTail[] = {0x00, 0x0C, 0x00, 0x00};
  constexpr uint8_t kSnap[] = {0xAA, 0xAA, 0x03};
  return Left(c) > 25 && (PeekU8(c) == 1 || PeekU8(c) == 3) && PeekIs(c, 1, kTail) && PeekIs(c, 14, kSnap);
}

// Tagged frames are named by the type behind their tags.
const char* NameFrameType(const Cursor& c) {
  int32_t at = 2 * kMacAddressLength;
  const auto typeAt = [&](int32_t place) { return PeekU16(c, place); };
  if (typeAt(at) == kEthertypeVnTag) at += 6;
  if (typeAt(at) == kEthertypeVlan) at += 4;
  if (at + 2 > Left(c)) return kUnknown;
  if (typeAt(at) > kMostLength) return "Ethernet II";
  const uint32_t saps = typeAt(at + 2);
  return saps == kNovellRaw ? "Novell-EtherFrame" : saps == 0xAAAA ? "IEEE 802.3 SNAP" : "IEEE 802.3";
}

// Top-level lines of another protocol behind a header whose fields stand at `in`.
Place NetworkPlace(const Place& in) {
  Place network = in;
  network.parent = 0;
  network.dead = false;
  return network;
}

// Nobody wants a line of the frame, and it is as most are: nothing around it, and a plain datagram in it. What that leaves for
// later packets is left in one step.
bool PassPlainFrame(const Place& at, const Cursor& c) {
  constexpr int32_t kHeader = 2 * kMacAddressLength + 2;
  constexpr uint32_t kTrailerSuffix = 0x88FB;   // what may be a trailer is for DecodeRedundancyTrailer to tell
  if (!Silent(at) || PacketOf(at).asked || PeekU16(c, 2 * kMacAddressLength) != kEthertypeIPv4) return false;
  const FrameRecord* record = PacketOf(at).frame;
  if (record->receiveErrors || HeldCheckSequence(record) || at.view->engine->libraries.count) return false;
  if (PeekU16(c, Left(c) - 2) == kTrailerSuffix) return false;
  Cursor datagram = c;
  TakeBytes(datagram, kHeader);
  const int32_t linesLeft = PacketOf(at).linesLeft;
  constexpr int32_t kLines = kFrameLines + 4;   // and those of the header
  CountLines(at, kLines + (record->partial == 1));
  AddCaptureLines(at);
  if (PassPlainDatagram(at, datagram)) return true;
  PacketOf(at).linesLeft = linesLeft;
  return false;
}

void AddTypeLine(const Place& in, const Field& type) {
  if (type.value <= kMostLength) {
    AddLine(in, type, "Length: %u", type.value);
    return;
  }
  const char* name = Silent(in) ? nullptr : EthertypeName(static_cast<uint16_t>(type.value));
  AddLine(in, type, "Ethertype: 0x%.04X = %s", type.value, name ? name : kUnknown);
}

int32_t DecodeBehindType(const Place& in, const Field& type, Cursor c) {
  const Place network = NetworkPlace(in);
  if (type.value > kMostLength) {
    if (Left(c) < 4) return 1;
    const int32_t handled = DispatchEthertype(network, c, static_cast<uint16_t>(type.value));
    return handled ? handled : CallDecoder(network, c, nullptr, "Raw Data");
  }
  Cursor payload = TakeCursor(c, type.value);
  if (Left(payload) >= 2 && PeekU16(payload) == kNovellRaw) {
    ReachLayer(network, DispatchTable::kEthertype, kEthertypeIpx, payload);
    return CallDecoder(network, payload, FindEthertype(kEthertypeIpx)->decode, "Raw Data");
  }
  return CallDecoder(network, payload, DecodeLlc, "Raw Data");
}

}  // namespace

int32_t DecodeEthernetHeader(const Place& in, Cursor c) {
  if (Left(c) < 2) return 0;
  const Field type = TakeU16(c);
  AddTypeLine(in, type);
  return DecodeBehindType(in, type, c);
}

int32_t DecodeMacHeader(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "eth");
  if (Left(c) < 2 * kMacAddressLength) return 0;
  if (Silent(at)) {
    constexpr int32_t kLines = 3;
    CountLines(at, kLines);
    TakeBytes(c, 2 * kMacAddressLength);
    DecodeEthernetHeader(Under(at, kLineOutsideDisplay), c);
    return 1;
  }
  constexpr int32_t kHeaderLength = 14;
  const bool isWhole = Left(c) >= kHeaderLength;
  const Field header = Ahead(c, isWhole ? kHeaderLength : Left(c));
  const Field destination = TakeBytes(c, kMacAddressLength), source = TakeBytes(c, kMacAddressLength), type = TakeU16(c);
  const auto add = [&] {
    const LineHandle top = AddLine(at, header, "Ethernet Header:  %s -> %s", NamedMac(at.view, source.bytes),
                                   NamedMac(at.view, destination.bytes));
    const Place in = Under(at, top);
    AddLine(in, destination, "Destination: %s", NamedMac(in.view, destination.bytes));
    AddLine(in, source, "Source: %s", NamedMac(in.view, source.bytes));
    AddTypeLine(in, type);
    return top;
  };
  const bool hasNames = QXVIEW_HOST_FUNCTION(at.view->engine->host, addressAlias);
  const LineHandle top = isWhole && !hasNames ? AddToldLines(at, header, "ethernet header", add) : add();
  if (isWhole) DecodeBehindType(Under(at, top), type, c);
  return 1;
}

int32_t DecodeEthernetFrame(const Place& at, Cursor c) {
  if (PassPlainFrame(at, c)) return 1;
  const FrameRecord* record = PacketOf(at).frame;
  constexpr uint32_t kUnsafeToOffer = kReceiveAlignment | kReceiveCrc;
  if (!(record->receiveErrors & kUnsafeToOffer) && Left(c) >= 4 && OfferFrame(at, c)) return 1;
  if (record->receiveErrors == 0 && IsIslFrame(c)) {
    return TryDecoder(at, c, FindLinkEncapsulation(kIslKey)->decode, nullptr);
  }

  const Cursor frame = c;
  const Field checkSequence = CutCheckSequence(at, c);
  if (NobodyWants(at, {kFrameProtocol})) {
    CountLines(at, kFrameLines + (record->partial == 1) + checkSequence.here);
    AddCaptureLines(at);
  } else {
    const Place in = AddFrameSummary(at, frame);
    const Field whole = Ahead(frame, Left(frame));
    AddLine(in, whole, "Network: Ethernet,  Frame type:  %s", Silent(in) ? kUnknown : NameFrameType(c));
    AddLine(in, whole, "Frame network size: %lu (including 4 bytes CRC)", SizeWithCheckSequence(record, 4));
    AddClosingSummaryLines(in, frame, OriginalNumber::kHidden, checkSequence);
    AddCaptureLines(in);
  }
  DecodeRedundancyTrailer(at, c);
  if (!DecodeMacHeader(at, c)) AddRawRest(at, c, "Raw Data");
  return 1;
}

}  // namespace qxview
