// WAN frames: what a synchronous line or a virtual circuit carries between a station (DTE) and its network (DCE).
//
// The capture's link type names the protocol; without one it is told from the first bytes.
#include "decoders/link/medium.h"

namespace qxview {
namespace {

enum LinkType : uint16_t {
  kLinkPpp = 9, kLinkPppHdlc = 50, kLinkCiscoHdlc = 104, kLinkFrameRelay = 107,
  kLinkPppDirection = 204, kLinkCiscoHdlcDirection = 205, kLinkFrameRelayDirection = 206,
};

struct WanProtocol {
  const char* name;
  DecoderFunction decode;
};

constexpr WanProtocol kPpp = {"PPP", DecodePpp}, kCiscoHdlc = {"Cisco HDLC", DecodeCiscoHdlc};
constexpr WanProtocol kFrameRelay = {"Frame Relay", DecodeFrameRelay}, kOther = {kUnknown, nullptr};

WanProtocol ChooseProtocol(const FrameRecord* record, const Cursor& c) {
  switch (HasFullHeader(record) ? record->linkType : 0) {
    case kLinkPpp:
    case kLinkPppHdlc:
    case kLinkPppDirection: return LooksLikeCiscoHdlc(c) ? kCiscoHdlc : kPpp;   // lines that speak either come under both
    case kLinkCiscoHdlc:
    case kLinkCiscoHdlcDirection: return kCiscoHdlc;
    case kLinkFrameRelay:
    case kLinkFrameRelayDirection: return kFrameRelay;
    default: break;
  }
  if (LooksLikeCiscoHdlc(c)) return kCiscoHdlc;
  if (LooksLikePpp(c)) return kPpp;
  return LooksLikeFrameRelay(c) ? kFrameRelay : kOther;
}

void AddTrafficFlow(const Place& in, const Cursor& c, const FrameRecord* record) {
  const WanLink link = ReadWanLink(record);
  if (link.direction == static_cast<uint16_t>(LinkDirection::kSent)) {
    AddLine(in, Ahead(c, Left(c)), "Traffic Flow: DTE -> DCE Link %u", link.number);
  } else if (link.direction == static_cast<uint16_t>(LinkDirection::kReceived)) {
    AddLine(in, Ahead(c, Left(c)), "Traffic Flow: DCE -> DTE Link %u", link.number);
  }
}

}  // namespace

int32_t DecodeWanFrame(const Place& at, Cursor c) {
  const FrameRecord* record = PacketOf(at).frame;
  const bool offered = record->mediaType != static_cast<uint8_t>(Medium::kWanUnoffered);
  if (offered && OfferWanFrame(at, c)) return 1;
  const Cursor frame = c;
  const Field checkSequence = CutCheckSequence(at, c);
  const WanProtocol protocol = ChooseProtocol(record, c);
  const Place in = AddFrameSummary(at, frame);
  AddLine(in, Ahead(frame, Left(frame)), "Network: WAN,  Frame type:  %s", protocol.name);
  AddLine(in, Ahead(frame, Left(frame)), "Frame network size: %lu", WireLength(record));
  AddClosingSummaryLines(in, frame, OriginalNumber::kHidden, checkSequence);
  AddTrafficFlow(in, frame, record);
  AddCaptureLines(in);
  CallDecoder(at, c, protocol.decode, "Raw Data");
  return 1;
}

}  // namespace qxview
