// Frames of an ATM virtual circuit, reassembled from their cells (AAL5).
//
// How a circuit carries protocols is agreed when it is set up (RFC 2684, RFC 2364): behind an 802.2 header, or one
// protocol with nothing in front of it; the capture's cell information may name it. The cell information is the four
// bytes of a SunATM header:
//
//   0                                   1    2
//   direction (1 bit), traffic (low 4)  VPI  VCI
#include "decoders/link/llc.h"
#include "decoders/link/medium.h"

namespace qxview {
namespace {

enum Traffic : uint32_t {
  kRaw = 0, kLanEmulation = 1, kLlc = 2, kLocalManagement = 5, kSignalling = 6,
  kUnstated = 0xFFFFFFFF,
};

constexpr auto kTraffic = SortedNames({{0, "Raw"}, {1, "LAN Emulation"}, {2, "LLC Multiplexed"}, {3, "MARS"},
                                       {4, "IFMP"}, {5, "ILMI"}, {6, "Signalling"}});

constexpr uint16_t kEthertypeIPv4 = 0x0800, kEthertypeIPv6 = 0x86DD;
constexpr uint16_t kLaneControl = 0xFF00;

enum class Framing {
  kUnknown, kLlc, kSnap, kNlpid, kIPv4, kIPv6, kPpp, kBridged, kLanEmulation, kManagement, kSignalling,
};

const char* NameFraming(Framing framing) {
  switch (framing) {
    case Framing::kLlc: return "LLC";
    case Framing::kSnap: return "LLC/SNAP";
    case Framing::kNlpid: return "LLC/NLPID";
    case Framing::kIPv4: return "VC Multiplexed IP";
    case Framing::kIPv6: return "VC Multiplexed IPv6";
    case Framing::kPpp: return "VC Multiplexed PPP";
    case Framing::kBridged: return "VC Multiplexed Ethernet";
    case Framing::kLanEmulation: return "LAN Emulation";
    case Framing::kManagement: return "ILMI";
    case Framing::kSignalling: return "Signalling";
    case Framing::kUnknown: break;
  }
  return kUnknown;
}

// A whole IP packet with nothing in front: the version and a length that the frame can hold.
bool LooksLikeIp(const Cursor& c) {
  if (Left(c) < 20) return false;
  if (PeekU8(c) >> 4 == 4) return (PeekU8(c) & 15) >= 5 && PeekU16(c, 2) >= 20;
  return PeekU8(c) >> 4 == 6 && Left(c) >= 40;
}

Framing TellFraming(const Cursor& c, uint32_t traffic) {
  if (traffic == kLanEmulation) return Framing::kLanEmulation;
  if (traffic == kLocalManagement) return Framing::kManagement;
  if (traffic == kSignalling) return Framing::kSignalling;
  if (Left(c) < 3) return Framing::kUnknown;
  const uint32_t head = PeekU24(c);
  if (head == 0xAAAA03) return Framing::kSnap;
  if (head == 0xFEFE03) return Framing::kNlpid;
  if (traffic == kLlc) return Framing::kLlc;
  if (LooksLikeIp(c)) return PeekU8(c) >> 4 == 4 ? Framing::kIPv4 : Framing::kIPv6;
  if (LooksLikePpp(c)) return Framing::kPpp;
  const bool sourceIsStation = Left(c) >= 16 && !(PeekU8(c, 2 + kMacAddressLength) & 1);   // a group sends nothing
  if (PeekU16(c) == 0 && sourceIsStation) return Framing::kBridged;
  return Framing::kLlc;
}

struct CellInformation {
  bool here;
  bool sent;
  uint32_t traffic, path, channel;
};

CellInformation FindCellInformation(const FrameRecord* record) {
  int32_t length;
  const uint8_t* bytes = FindExtension(record, kExtensionAtm, &length);
  const Cursor cell = MakeCursor(bytes, 0, bytes ? length : 0);
  if (Left(cell) < 4) return {false, false, kUnstated, 0, 0};
  return {true, (PeekU8(cell) & 0x80) != 0, PeekU8(cell) & 0x0F, PeekU8(cell, 1), PeekU16(cell, 2)};
}

void AddCellLines(const Place& at, const CellInformation& cell) {
  if (!cell.here) return;
  const Field outside = Stated(0, 0);   // the information stands in the record, not in the frame
  const Place in = Under(at, AddLine(at, outside, "ATM Header:  VPI = %u, VCI = %u", cell.path, cell.channel));
  AddLine(in, outside, "Direction: %s", cell.sent ? "Transmitted" : "Received");
  AddLine(in, outside, "Traffic Type: %u = %s", cell.traffic, LookupName(kTraffic, cell.traffic));
  AddLine(in, outside, "Virtual Path Identifier: %u", cell.path);
  AddLine(in, outside, "Virtual Channel Identifier: %u", cell.channel);
}

// An 802.2 header whose lines are made here: what it carries is framed as on no LAN.
Place AddLlcHeader(const Place& at, Cursor& c, int32_t length, const char* title) {
  const Place in = Under(at, AddLine(at, Ahead(c, length), "%s", title));
  const Field head = TakeU24(c);
  AddLine(in, head, "DSAP, SSAP, Control: 0x%.06X", head.value);
  return in;
}

int32_t DecodeSnap(const Place& at, Cursor c) {
  constexpr int32_t kBridgedPadding = 2;
  constexpr uint32_t kBridgedLanOui = 0x0080C2;
  if (Left(c) < 8 || PeekU24(c, 3) != kBridgedLanOui) return DecodeLlc(at, c);
  const Place in = AddLlcHeader(at, c, 8, "802.2 SNAP Header:");
  return DecodeEncapsulatedSnap(in, Deeper(at), c, kBridgedPadding);
}

int32_t DecodeOsiNlpid(const Place& at, Cursor c) {
  if (Left(c) < 4) return DecodeLlc(at, c);
  const Place in = AddLlcHeader(at, c, 3, "802.2 Header: Protocol = OSI Network Layer");
  return DispatchNlpid(in, Deeper(at), c);
}

// LAN emulation: the sender's identifier, then an Ethernet frame; a control frame has a marker in its place.
int32_t DecodeLanEmulation(const Place& at, Cursor c) {
  if (Left(c) < 2) return 0;
  const bool isControl = PeekU16(c) == kLaneControl;
  const Place in = Under(at, AddLine(at, Ahead(c, 2), "LAN Emulation Header:"));
  const Field head = TakeU16(c);
  if (isControl) {
    AddLine(in, head, "Marker: 0x%.04X = Control", head.value);
    return CallDecoder(Deeper(at), c, nullptr, "LAN Emulation Control Data");
  }
  AddLine(in, head, "LAN Emulation Client: %u", head.value);
  return CallDecoder(Deeper(at), c, DecodeMacHeader, "Raw Data");
}

int32_t DecodeBridged(const Place& at, Cursor c) {
  const Place in = Under(at, AddLine(at, Ahead(c, 2), "Bridged Ethernet:"));
  const Field pad = TakeU16(c);
  AddLine(in, pad, "Padding: 0x%.04X", pad.value);
  return CallDecoder(Deeper(at), c, DecodeMacHeader, "Raw Data");
}

int32_t DecodeFraming(const Place& at, const Cursor& c, Framing framing) {
  switch (framing) {
    case Framing::kLlc: return CallDecoder(at, c, DecodeLlc, "Raw Data");
    case Framing::kSnap: return CallDecoder(at, c, DecodeSnap, "Raw Data");
    case Framing::kNlpid: return CallDecoder(at, c, DecodeOsiNlpid, "Raw Data");
    case Framing::kIPv4: return CallDecoder(Deeper(at), c, FindEthertype(kEthertypeIPv4)->decode, "Raw Data");
    case Framing::kIPv6: return CallDecoder(Deeper(at), c, FindEthertype(kEthertypeIPv6)->decode, "Raw Data");
    case Framing::kPpp: return CallDecoder(at, c, DecodePpp, "Raw Data");
    case Framing::kBridged: return CallDecoder(at, c, DecodeBridged, "Raw Data");
    case Framing::kLanEmulation: return CallDecoder(at, c, DecodeLanEmulation, "Raw Data");
    case Framing::kManagement: return CallDecoder(Deeper(at), c, nullptr, "ILMI Data");
    case Framing::kSignalling: return CallDecoder(Deeper(at), c, nullptr, "Signalling Data");
    case Framing::kUnknown: break;
  }
  return CallDecoder(Deeper(at), c, nullptr, "Raw Data");
}

}  // namespace

int32_t DecodeAtmFrame(const Place& at, Cursor c) {
  const FrameRecord* record = PacketOf(at).frame;
  const Cursor frame = c;
  const Field checkSequence = CutCheckSequence(at, c);
  const CellInformation cell = FindCellInformation(record);
  const Framing framing = TellFraming(c, cell.traffic);
  const Place in = AddFrameSummary(at, frame);
  AddLine(in, Ahead(frame, Left(frame)), "Network: ATM, Frame Type: %s", NameFraming(framing));
  AddLine(in, Ahead(frame, Left(frame)), "Frame network size: %lu", WireLength(record));
  AddClosingSummaryLines(in, frame, OriginalNumber::kHidden, checkSequence);
  AddCaptureLines(in);
  AddCellLines(at, cell);
  DecodeFraming(at, c, framing);
  return 1;
}

}  // namespace qxview
