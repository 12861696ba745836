// IEEE 802.11 frames.
//
//   0              2         4          10         16         22        then, as the frame control says
//   frame control  duration  address 1  address 2  address 3  sequence  address 4, QoS control (2), HT control (4)
//
// Numbers are little-endian. What the addresses are depends on whether the frame goes to or comes from the wired
// side; control frames have one or two. Data frames carry an 802.2 header, or several frames with headers of their
// own (A-MSDU: destination, source, length, filled up to a multiple of four).
#include "core/line_facts.h"
#include "core/rows.h"
#include "decoders/link/llc.h"
#include "decoders/link/medium.h"

namespace qxview {
namespace {

enum FrameType : uint32_t { kManagement = 0, kControl = 1, kData = 2, kExtension = 3 };
enum ControlSubtype : uint32_t {
  kReportPoll = 4, kAnnouncement = 5, kWrapper = 7, kBlockAckRequest = 8, kBlockAck = 9, kPsPoll = 10, kRts = 11,
  kCts = 12, kAck = 13,
};
enum DataSubtypeBit : uint32_t { kNoData = 4, kQos = 8 };
enum ControlFlag : uint32_t {
  kToDs = 0x01, kFromDs = 0x02, kMoreFragments = 0x04, kProtected = 0x40, kOrder = 0x80,
};
constexpr uint32_t kAggregate = 0x80, kMeshControl = 0x100;   // in the QoS control

constexpr auto kTypes = SortedNames({{0, "Management"}, {1, "Control"}, {2, "Data"}, {3, "Extension"}});

// By type and subtype.
constexpr auto kSubtypes = SortedNames({
    {0x00, "Association Request"}, {0x01, "Association Response"}, {0x02, "Reassociation Request"},
    {0x03, "Reassociation Response"}, {0x04, "Probe Request"}, {0x05, "Probe Response"},
    {0x06, "Timing Advertisement"}, {0x08, "Beacon"}, {0x09, "ATIM"}, {0x0A, "Disassociation"},
    {0x0B, "Authentication"}, {0x0C, "Deauthentication"}, {0x0D, "Action"}, {0x0E, "Action No Ack"},
    {0x12, "Trigger"}, {0x13, "TACK"}, {0x14, "Beamforming Report Poll"}, {0x15, "NDP Announcement"},
    {0x16, "Control Frame Extension"}, {0x17, "Control Wrapper"}, {0x18, "Block Ack Request"}, {0x19, "Block Ack"},
    {0x1A, "PS-Poll"}, {0x1B, "RTS"}, {0x1C, "CTS"}, {0x1D, "ACK"}, {0x1E, "CF-End"}, {0x1F, "CF-End + CF-Ack"},
    {0x20, "Data"}, {0x21, "Data + CF-Ack"}, {0x22, "Data + CF-Poll"}, {0x23, "Data + CF-Ack + CF-Poll"},
    {0x24, "Null"}, {0x25, "CF-Ack"}, {0x26, "CF-Poll"}, {0x27, "CF-Ack + CF-Poll"}, {0x28, "QoS Data"},
    {0x29, "QoS Data + CF-Ack"}, {0x2A, "QoS Data + CF-Poll"}, {0x2B, "QoS Data + CF-Ack + CF-Poll"},
    {0x2C, "QoS Null"}, {0x2E, "QoS CF-Poll"}, {0x2F, "QoS CF-Ack + CF-Poll"}, {0x30, "DMG Beacon"},
    {0x31, "S1G Beacon"}});

constexpr auto kAckPolicies = SortedNames({{0, "Normal Ack"}, {1, "No Ack"}, {2, "No Explicit Ack"},
                                           {3, "Block Ack"}});

struct FrameControl {
  uint32_t type, subtype, flags;
};

const char* SubtypeName(const FrameControl& control) {
  return LookupName(kSubtypes, control.type << 4 | control.subtype, "Reserved");
}

// Some access points hand frames on with the two bytes of the frame and sequence controls in the other order.
enum class ByteSwap { kNone, kControl };

FrameControl ControlOf(const Cursor& c, ByteSwap swap = ByteSwap::kNone) {
  if (Left(c) < 2) return {kExtension, 0x0F, 0};
  const int32_t at = swap == ByteSwap::kControl ? 1 : 0;
  const uint32_t first = PeekU8(c, at), flags = PeekU8(c, 1 - at);
  return {first >> 2 & 3, first >> 4, flags};
}

constexpr auto kFlagRows = Rows<NoValues>({
    Word(1), Bits(0, 1, "Order or HT Control"), Bits(1, 1, "Protected"), Bits(2, 1, "More Data"),
    Bits(3, 1, "Power Management"), Bits(4, 1, "Retry"), Bits(5, 1, "More Fragments"), Bits(6, 1, "From DS"),
    Bits(7, 1, "To DS")});

void AddFrameControl(const Place& in, Cursor& c, ByteSwap swap) {
  const FrameControl control = ControlOf(c, swap);
  const bool isSwapped = swap == ByteSwap::kControl;
  const Field both = Ahead(c, 2);
  const Place bits = Under(in, AddLine(in, both, "Frame Control: 0x%.04X = %s%s",
      isSwapped ? PeekU16(c) : PeekLittleU16(c),
                                       SubtypeName(control), isSwapped ? " (bytes swapped)" : ""));
  Cursor flags = c;
  if (isSwapped) TakeU8(c);
  const Field first = TakeU8(c);
  if (!isSwapped) flags = c;
  const BitPicture subtype = BitsOf(first, 0, 4), type = BitsOf(first, 4, 2), version = BitsOf(first, 6, 2);
  AddBitLine(bits, first, "%s: Subtype = %u (%s)", subtype.picture, subtype.value, SubtypeName(control));
  AddBitLine(bits, first, "%s: Type = %u (%s)", type.picture, type.value, LookupName(kTypes, type.value));
  AddBitLine(bits, first, "%s: Protocol Version = %u", version.picture, version.value);
  ShowRows(bits, flags, kFlagRows);
  if (!isSwapped) c = flags;
}

void AddDuration(const Place& in, Cursor& c, bool isAssociation) {
  const Field duration = TakeLittleU16(c);
  if (isAssociation) {
    AddLine(in, duration, "Association ID: %u", duration.value & 0x3FFF);
  } else {
    AddLine(in, duration, "Duration: %u microseconds", duration.value);
  }
}

// Frame addresses under the names that they have by the direction.
struct AddressNames {
  const char* names[4];
};
constexpr AddressNames kAddressNames[] = {
    {{"Destination", "Source", "BSSID", nullptr}},               // within a cell
    {{"BSSID", "Source", "Destination", nullptr}},               // to the wired side
    {{"Destination", "BSSID", "Source", nullptr}},               // from it
    {{"Receiver", "Transmitter", "Destination", "Source"}}};     // between access points

// What the header tells of what follows it.
struct WirelessHeader {
  bool whole;
  uint32_t fragment, qos;
};

struct DataHeader {
  Field fragment, qos;
};
constexpr auto kSequence = Rows<DataHeader>({
    Hex(2, "Sequence Control").Little(), Bits(0, 12, "Sequence Number"),
    Bits(12, 4, "Fragment Number").Into(&DataHeader::fragment)});
constexpr auto kSwappedSequence = Rows<DataHeader>({
    Hex(2, "Sequence Control"), Bits(0, 12, "Sequence Number"), Bits(12, 4,
    "Fragment Number").Into(&DataHeader::fragment)});
constexpr auto kQosRows = Rows<DataHeader>({
    Hex(2, "QoS Control").Little().Into(&DataHeader::qos), Bits(0, 8, "TXOP or Queue Size"), Flag(8, "A-MSDU Present"),
    Bits(9, 2, "Ack Policy", kAckPolicies).Told("%s: Ack Policy = %s"), Bits(11, 1, "End of Service Period"),
    Bits(12, 4, "Traffic Identifier")});

void AddSequence(const Place& in, Cursor& c, uint32_t* fragment, ByteSwap swap) {
  *fragment = (swap == ByteSwap::kNone ? ShowRows(in, c, kSequence) : ShowRows(in, c, kSwappedSequence)).fragment.value;
}

uint32_t AddQosControl(const Place& in, Cursor& c) { return ShowRows(in, c, kQosRows).qos.value; }

void AddHtControl(const Place& in, Cursor& c) {
  const Field control = TakeLittleU32(c);
  AddLine(in, control, "HT Control: 0x%.08X", control.value);
}

WirelessHeader AddDataHeader(const Place& in, Cursor& c, const FrameControl& control, ByteSwap swap) {
  WirelessHeader header{};
  // Management frames have three addresses whatever their flags say.
  const AddressNames& names = kAddressNames[control.type == kData ? control.flags & (kToDs | kFromDs) : 0];
  AddDuration(in, c, false);
  for (int32_t i = 0; i < 3; ++i) AddAddress(in, TakeBytes(c, kMacAddressLength), names.names[i]);
  AddSequence(in, c, &header.fragment, swap);
  if (names.names[3]) AddAddress(in, TakeBytes(c, kMacAddressLength), names.names[3]);
  const bool qos = control.type == kData && (control.subtype & kQos);
  if (qos) header.qos = AddQosControl(in, c);
  if ((control.flags & kOrder) && (qos || control.type == kManagement)) AddHtControl(in, c);
  header.whole = !c.ranShort;
  return header;
}

// Control frames: a receiver, most a transmitter.
void AddControlHeader(const Place& in, Cursor& c, const FrameControl& control) {
  const bool isPoll = control.subtype == kPsPoll;
  AddDuration(in, c, isPoll);
  if (control.subtype == kWrapper) {
    AddAddress(in, TakeBytes(c, kMacAddressLength), "Receiver");
    const Field carried = TakeLittleU16(c);
    AddLine(in, carried, "Carried Frame Control: 0x%.04X", carried.value);
    return AddHtControl(in, c);
  }
  AddAddress(in, TakeBytes(c, kMacAddressLength), isPoll ? "BSSID" : "Receiver");
  if (control.subtype != kCts && control.subtype != kAck && control.subtype > 1) {
    AddAddress(in, TakeBytes(c, kMacAddressLength), "Transmitter");
  }
}

// Frames of a mesh have a header of their own in front of the 802.2 one: flags, time to live, sequence and up to two
// addresses. The bit that announces it means other things outside a mesh, so it is told by what stands behind it.
void DecodeMeshControl(const Place& in, Cursor& c, uint32_t qos) {
  if (!(qos & kMeshControl) || Left(c) < 8 || PeekU16(c) == 0xAAAA) return;
  const int32_t addresses = PeekU8(c) & 3;
  const int32_t length = 6 + kMacAddressLength * addresses;
  if (addresses == 3 || Left(c) < length + 2 || PeekU16(c, length) != 0xAAAA) return;
  const Place mesh = Under(in, AddLine(in, Ahead(c, length), "Mesh Control:"));
  const Field flags = TakeU8(c);
  AddLine(mesh, flags, "Flags: 0x%.02X", flags.value);
  const Field timeToLive = TakeU8(c);
  AddLine(mesh, timeToLive, "Time to Live: %u", timeToLive.value);
  const Field sequence = TakeLittleU32(c);
  AddLine(mesh, sequence, "Sequence Number: %u", sequence.value);
  for (int32_t i = 0; i < addresses; ++i) AddAddress(mesh, TakeBytes(c, kMacAddressLength), "Address");
}

void DecodeAggregate(const Place& at, Cursor c) {
  constexpr int32_t kSubframeHeader = 2 * kMacAddressLength + 2;
  Loop loop;
  while (MoreAt(at, c, loop)) {
    if (Left(c) < kSubframeHeader) {
      AddRawRest(at, c, "Raw Data");
      return;
    }
    const int32_t before = c.offset;
    const auto source = CheckAlias(at.view, 0, PeekBytes(c, kMacAddressLength, kMacAddressLength).bytes);
    const Place in = Under(at, AddLine(at, Ahead(c, kSubframeHeader), "A-MSDU Subframe:  %s -> %s", source,
                                       CheckAlias(at.view, 0, PeekBytes(c, 0, kMacAddressLength).bytes)));
    AddAddress(in, TakeBytes(c, kMacAddressLength), "Destination");
    AddAddress(in, TakeBytes(c, kMacAddressLength), "Source");
    const Field length = TakeU16(c);
    AddLine(in, length, "Length: %u", length.value);
    CallDecoder(Deeper(at), TakeCursor(c, length.value), DecodeLlc, "Raw Data");
    TakeCursor(c, (4 - (c.offset - before) % 4) % 4);
  }
}

// What a data frame carries. `in` is the place under its header.
void DecodeDataBody(const Place& at, const Place& in, Cursor c, const FrameControl& control,
                    const WirelessHeader& header) {
  if (control.subtype & kNoData) return;
  if (control.flags & kProtected) {
    AddBlock(in, Rest(c), "Protected Data");
  } else if (header.fragment > 0) {
    AddBlock(in, Rest(c), "Fragment Data");
  } else if ((control.subtype & kQos) && (header.qos & kAggregate)) {
    DecodeAggregate(at, c);
  } else {
    if (control.subtype & kQos) DecodeMeshControl(in, c, header.qos);
    CallDecoder(Deeper(at), c, DecodeLlc, "Raw Data");
  }
}

// The filling behind a header whose length is no multiple of four, which some receivers leave in.
void SkipHeaderPadding(const Place& in, Cursor& c) {
  const int32_t padding = (4 - Taken(c) % 4) % 4;
  if (!padding || !HasHeaderPadding(PacketOf(in).frame)) return;
  const Field pad = TakeBytes(c, padding);
  AddLine(in, pad, "Header Padding: %s", HexText(pad));
}

int32_t DecodeHeader(const Place& at, Cursor c, ByteSwap swap) {
  const KeyedAs keys(PacketOf(at), "wlan");
  if (Left(c) < 2) return 0;
  const FrameControl control = ControlOf(c, swap);
  const Place in = Under(at, AddLine(at, Ahead(c, 2), "802.11 Header:  %s", SubtypeName(control)));
  AddFrameControl(in, c, swap);
  if (control.type == kControl) {
    AddControlHeader(in, c, control);
    CoverBytes(in, c);
    AddBlock(in, Rest(c), "Control Frame Body");
    return 1;
  }
  if (control.type == kExtension) {
    AddBlock(in, Rest(c), "Extension Frame Body");
    return 1;
  }
  const WirelessHeader header = AddDataHeader(in, c, control, swap);
  if (control.type == kData) SkipHeaderPadding(in, c);
  CoverBytes(in, c);
  if (!header.whole) return 1;
  if (control.type == kData) {
    DecodeDataBody(at, in, c, control, header);
  } else {
    AddBlock(in, Rest(c), control.flags & kProtected ? "Protected Data" : "Management Frame Body");
  }
  return 1;
}

}  // namespace

int32_t DecodeWirelessHeader(const Place& at, Cursor c) { return DecodeHeader(at, c, ByteSwap::kNone); }
int32_t DecodeSwappedWirelessHeader(const Place& at, Cursor c) { return DecodeHeader(at, c, ByteSwap::kControl); }

int32_t DecodeWirelessFrame(const Place& at, Cursor c) {
  if (OfferWirelessFrame(at, c)) return 1;
  const FrameRecord* record = PacketOf(at).frame;
  const Cursor frame = c;
  const Field checkSequence = CutCheckSequence(at, c);
  const Place in = AddFrameSummary(at, frame);
  const Field whole = Ahead(frame, Left(frame));
  AddLine(in, whole, "Network: Wireless 802.11, Frame Type: %s", Left(c) < 2 ? kUnknown : SubtypeName(ControlOf(c)));
  AddLine(in, whole, "Frame network size: %lu (including 4 bytes CRC)", SizeWithCheckSequence(record, 4));
  AddClosingSummaryLines(in, frame, OriginalNumber::kShown, checkSequence);
  AddCaptureLines(in);
  DecodeRadioHeader(at);
  CallDecoder(at, c, DecodeWirelessHeader, "Raw Data");
  return 1;
}

}  // namespace qxview
