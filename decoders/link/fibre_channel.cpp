// Fibre Channel frames at the FC-2 level (FC-FS): the header of every frame of a sequence.
//
//   0      1            4        5          8     9              12      13      14        16     18     20
//   R_CTL  destination  CS_CTL   source     type  frame control  SEQ_ID  DF_CTL  SEQ_CNT   OX_ID  RX_ID  parameter
//   (1)    (3)          (1)      (3)        (1)   (3)            (1)     (1)     (2)       (2)    (2)    (4)
//
// Extended headers may stand in front, optional ones (DF_CTL) behind. Captures with delimiters hold the ordered sets
// of the start (4 bytes) and the end (4), and the check sequence (4) in front of the end.
#include "decoders/link/fibre_channel_names.h"
#include "decoders/link/llc.h"
#include "decoders/link/medium.h"

namespace qxview {
namespace {

constexpr uint16_t kLinkWithDelimiters = 225;
constexpr int32_t kHeaderLength = 24, kDelimiterLength = 4, kCheckSequenceLength = 4;
constexpr uint32_t kVirtualFabric = 0x50, kInterFabric = 0x51;
constexpr uint32_t kTypeLlc = 0x04, kTypeIp = 0x05;
constexpr uint32_t kSecurityHeader = 0x40, kNetworkHeader = 0x20, kAssociationHeader = 0x10;

bool HasDelimiters(const FrameRecord* record) {
  return HasFullHeader(record) && record->linkType == kLinkWithDelimiters;
}

void AddPortAddress(const Place& in, const Field& address, const char* label) {
  if (!address.here) return;
  const char* known = WellKnownAddressName(address.value);
  AddLine(in, address, "%s: %.02X.%.02X.%.02X%s%s%s", label, address.bytes[0], address.bytes[1], address.bytes[2],
          known ? " (" : "", known ? known : "", known ? ")" : "");
}

struct ControlBit {
  int32_t first, count;   // counted from the most significant bit of 24
  const char* name;
};
constexpr ControlBit kControlBits[] = {
    {0, 1, "Exchange Context (1 = Responder)"}, {1, 1, "Sequence Context (1 = Recipient)"}, {2, 1, "First Sequence"},
    {3, 1, "Last Sequence"}, {4, 1, "End Sequence"}, {6, 1, "Priority Enable"}, {7, 1, "Sequence Initiative"},
    {10, 2, "ACK Form"}, {14, 1, "Retransmitted Sequence"}, {15, 1, "Unidirectional Transmit"},
    {16, 2, "Continue Sequence Condition"}, {18, 2, "Abort Sequence Condition"}, {20, 1, "Relative Offset Present"},
    {22, 2, "Fill Bytes"}};

// Headers in front of the frame's own: tags of virtual fabrics and of fabrics that are routed between.
void DecodeExtendedHeaders(const Place& at, Cursor& c) {
  Loop loop;
  while (MoreAt(at, c, loop) && (c.at[0] == kVirtualFabric || c.at[0] == kInterFabric)) {
    if (Left(c) < 8) return;
    const bool virtualFabric = c.at[0] == kVirtualFabric;
    const char* title = virtualFabric ? "Virtual Fabric Tagging Header" : "Inter-Fabric Routing Header";
    const Place in = Under(at, AddLine(at, Ahead(c, 8), "%s", title));
    const Field head = TakeU32(c);
    const Field tail = TakeU32(c);
    AddLine(in, Slice(head, 0, 1), "R_CTL: 0x%.02X", head.value >> 24);
    if (virtualFabric) {
      const BitPicture priority = BitsOf(head, 16, 3), fabric = BitsOf(head, 19, 12), hops = BitsOf(tail, 0, 8);
      AddBitLine(in, head, "%s: Priority = %u", priority.picture, priority.value);
      AddBitLine(in, head, "%s: Virtual Fabric = %u", fabric.picture, fabric.value);
      AddBitLine(in, tail, "%s: Hop Count = %u", hops.picture, hops.value);
    } else {
      AddLine(in, head, "Destination Fabric: %u", head.value & 0xFFF);
      AddLine(in, tail, "Source Fabric: %u", tail.value >> 16 & 0xFFF);
    }
  }
}

struct FrameHeader {
  uint32_t routingControl, type, frameControl, dataControl, sequenceCount;
};

FrameHeader AddHeaderLines(const Place& in, Cursor& c) {
  const Field routing = TakeU8(c);
  AddLine(in, routing, "R_CTL: 0x%.02X = %s, %s", routing.value, RoutingName(routing.value),
          InformationName(routing.value));
  AddPortAddress(in, TakeU24(c), "Destination");
  const Field classControl = TakeU8(c);
  AddLine(in, classControl, "CS_CTL: 0x%.02X", classControl.value);
  AddPortAddress(in, TakeU24(c), "Source");
  const Field type = TakeU8(c);
  AddLine(in, type, "Type: 0x%.02X = %s", type.value, DataTypeName(type.value));
  const Field control = TakeU24(c);
  const Place bits = Under(in, AddLine(in, control, "F_CTL: 0x%.06X", control.value));
  for (const ControlBit& row : kControlBits) {
    const BitPicture bit = BitsOf(control, row.first, row.count);
    AddBitLine(bits, control, "%s: %s = %u", bit.picture, row.name, bit.value);
  }
  const Field sequence = TakeU8(c);
  AddLine(in, sequence, "SEQ_ID: 0x%.02X", sequence.value);
  const Field dataControl = TakeU8(c);
  AddLine(in, dataControl, "DF_CTL: 0x%.02X", dataControl.value);
  const Field count = TakeU16(c);
  AddLine(in, count, "SEQ_CNT: %u", count.value);
  const Field originator = TakeU16(c);
  AddLine(in, originator, "OX_ID: 0x%.04X", originator.value);
  const Field responder = TakeU16(c);
  AddLine(in, responder, "RX_ID: 0x%.04X", responder.value);
  const Field parameter = TakeU32(c);
  AddLine(in, parameter, "Parameter: 0x%.08X", parameter.value);
  return {routing.value, type.value, control.value, dataControl.value, count.value};
}

void DecodeOptionalHeaders(const Place& in, Cursor& c, uint32_t dataControl) {
  if (dataControl & kSecurityHeader) {
    const Field security = TakeU32(c);
    AddLine(in, security, "Security Parameters Index: 0x%.08X", security.value);
    const Field sequence = TakeU32(c);
    AddLine(in, sequence, "Security Sequence Number: %u", sequence.value);
  }
  if (dataControl & kNetworkHeader) {
    const Field destination = TakeBytes(c, 8);
    AddLine(in, destination, "Network Destination: %s", HexText(destination));
    const Field source = TakeBytes(c, 8);
    AddLine(in, source, "Network Source: %s", HexText(source));
  }
  if (dataControl & kAssociationHeader) AddBlock(in, TakeBytes(c, 32), "Association Header");
  constexpr int32_t kDeviceHeader[] = {0, 16, 32, 64};
  const int32_t device = kDeviceHeader[dataControl & 3];
  if (device) AddBlock(in, TakeBytes(c, device), "Device Header");
}

int32_t DecodeHeader(const Place& at, Cursor c) {
  DecodeExtendedHeaders(at, c);
  if (Left(c) < kHeaderLength) return CallDecoder(at, c, nullptr, "Raw Data");
  c.begin = c.offset;
  const LineHandle top = AddLine(at, Ahead(c, kHeaderLength),
                                 "Fibre Channel Header:  %.02X.%.02X.%.02X -> %.02X.%.02X.%.02X", c.at[5], c.at[6],
                                 c.at[7], c.at[1], c.at[2], c.at[3]);
  const Place in = Under(at, top);
  const FrameHeader header = AddHeaderLines(in, c);
  DecodeOptionalHeaders(in, c, header.dataControl);
  SetRange(in, top, c.begin, Taken(c));
  const int32_t fill = static_cast<int32_t>(header.frameControl & 3);
  if (fill && Left(c) >= fill) c.left -= fill;
  const Place network = Deeper(at);
  const bool deviceData = header.routingControl >> 4 == 0;
  const bool isLlc = deviceData && (header.type == kTypeIp || header.type == kTypeLlc) && header.sequenceCount == 0;
  if (isLlc) return CallDecoder(network, c, DecodeLlc, "Raw Data");
  ShortText<64> title;
  FormatInto(title.text, sizeof title.text, "%s Data", DataTypeName(header.type));
  CallDecoder(network, c, nullptr, title.text);
  return 1;
}

// The delimiters around the frame; the cursor is left on what stands between them.
void DecodeDelimiters(const Place& at, Cursor& c) {
  const bool whole = WireLength(PacketOf(at).frame) == PacketOf(at).frame->capturedLength;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "Frame Delimiters"));
  const Field start = TakeU32(c);
  AddLine(in, start, "Start of Frame: 0x%.08X = %s", start.value, StartOfFrameName(start.value));
  constexpr int32_t kTail = kCheckSequenceLength + kDelimiterLength;
  if (!whole || Left(c) < kTail) return;
  c.left -= kTail;
  Cursor tail = MakeCursor(c.at + c.left, c.offset + c.left, kTail);
  const Field check = TakeU32(tail);
  AddLine(in, check, "CRC: 0x%.08X", check.value);
  const Field end = TakeU32(tail);
  AddLine(in, end, "End of Frame: 0x%.08X = %s", end.value, EndOfFrameName(end.value));
}

}  // namespace

int32_t DecodeFibreChannelFrame(const Place& at, Cursor c) {
  const FrameRecord* record = PacketOf(at).frame;
  const bool delimited = HasDelimiters(record);
  const char* frameClass = delimited && Left(c) >= kDelimiterLength ? FrameClassName(ReadU32(c.at)) : "";
  const Place in = AddFrameSummary(at, c);
  const Field whole = Ahead(c, Left(c));
  AddLine(in, whole, "Network: Fibre Channel%s FC-2", frameClass);
  AddLine(in, whole, "Frame network size: %lu%s", WireLength(record),
          delimited ? " (including SOF, CRC and EOF)" : "");
  AddClosingSummaryLines(in, c, OriginalNumber::kShown, Field{});
  AddCaptureLines(in);
  if (delimited) DecodeDelimiters(at, c);
  CallDecoder(at, c, DecodeHeader, "Raw Data");
  return 1;
}

}  // namespace qxview
