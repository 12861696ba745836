// Fibre Channel frames at the FC-2 level (FC-FS): the header of every frame of a sequence.
//
//   0      1            4        5          8     9              12      13      14        16     18     20
//   R_CTL  destination  CS_CTL   source     type  frame control  SEQ_ID  DF_CTL  SEQ_CNT   OX_ID  RX_ID  parameter
//   (1)    (3)          (1)      (3)        (1)   (3)            (1)     (1)     (2)       (2)    (2)    (4)
//
// Extended headers may stand in front, optional ones (DF_CTL) behind. Captures with delimiters hold the ordered sets
// of the start (4 bytes) and the end (4), and the check sequence (4) in front of the end.
#include "core/rows.h"
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

void ShowRouting(const Place& in, const Field& routing, const char* label) {
  const uint32_t value = PeekU8(routing);
  AddLine(in, routing, "%s: 0x%.02X = %s, %s", label, value, RoutingName(value), InformationName(value));
}

void ShowPortAddress(const Place& in, const Field& address, const char* label) {
  const char* known = WellKnownAddressName(PeekU24(CursorOver(address)));
  AddLine(in, address, "%s: %.02X.%.02X.%.02X%s%s%s", label, PeekU8(address), PeekU8(address, 1), PeekU8(address, 2),
          known ? " (" : "", known ? known : "", known ? ")" : "");
}

struct FrameHeader {
  Field routingControl, type, frameControl, dataControl, sequenceCount;
};
constexpr auto kHeader = Rows<FrameHeader>({
    Shown(1, "R_CTL", ShowRouting).Into(&FrameHeader::routingControl), Shown(3, "Destination", ShowPortAddress),
    Hex(1, "CS_CTL"), Shown(3, "Source", ShowPortAddress), Hex(1, "Type", DataTypeName).Into(&FrameHeader::type),
    Hex(3, "F_CTL").Into(&FrameHeader::frameControl), Bits(0, 1, "Exchange Context (1 = Responder)"),
    Bits(1, 1, "Sequence Context (1 = Recipient)"), Bits(2, 1, "First Sequence"), Bits(3, 1, "Last Sequence"),
    Bits(4, 1, "End Sequence"), Bits(6, 1, "Priority Enable"), Bits(7, 1, "Sequence Initiative"),
    Bits(10, 2, "ACK Form"), Bits(14, 1, "Retransmitted Sequence"), Bits(15, 1, "Unidirectional Transmit"),
    Bits(16, 2, "Continue Sequence Condition"), Bits(18, 2, "Abort Sequence Condition"),
    Bits(20, 1, "Relative Offset Present"), Bits(22, 2, "Fill Bytes"),
    Hex(1, "SEQ_ID"), Hex(1, "DF_CTL").Into(&FrameHeader::dataControl),
    Number(2, "SEQ_CNT").Into(&FrameHeader::sequenceCount), Hex(2, "OX_ID"), Hex(2, "RX_ID"), Hex(4, "Parameter")});
constexpr auto kSecurity = Rows<NoValues>({Hex(4, "Security Parameters Index"), Number(4, "Security Sequence Number")});
constexpr auto kNetworkAddresses = Rows<NoValues>({Bytes(8, "Network Destination"), Bytes(8, "Network Source")});
constexpr auto kStartRow = Rows<NoValues>({Hex(4, "Start of Frame", StartOfFrameName)});
constexpr auto kEndRows = Rows<NoValues>({Hex(4, "CRC"), Hex(4, "End of Frame", EndOfFrameName)});

// Headers in front of the frame's own: tags of virtual fabrics and of fabrics that are routed between.
void DecodeExtendedHeaders(const Place& at, Cursor& c) {
  Loop loop;
  while (MoreAt(at, c, loop) && (PeekU8(c) == kVirtualFabric || PeekU8(c) == kInterFabric)) {
    if (Left(c) < 8) return;
    const bool virtualFabric = PeekU8(c) == kVirtualFabric;
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

void DecodeOptionalHeaders(const Place& in, Cursor& c, uint32_t dataControl) {
  if (dataControl & kSecurityHeader) ShowRows(in, c, kSecurity);
  if (dataControl & kNetworkHeader) ShowRows(in, c, kNetworkAddresses);
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
                                 "Fibre Channel Header:  %.02X.%.02X.%.02X -> %.02X.%.02X.%.02X", PeekU8(c, 5),
                                 PeekU8(c, 6), PeekU8(c, 7), PeekU8(c, 1), PeekU8(c, 2), PeekU8(c, 3));
  const Place in = Under(at, top);
  const FrameHeader header = ShowRows(in, c, kHeader);
  DecodeOptionalHeaders(in, c, header.dataControl.value);
  SetRange(in, top, c.begin, Taken(c));
  const int32_t fill = static_cast<int32_t>(header.frameControl.value & 3);
  CutTail(c, fill);
  const Place network = Deeper(at);
  const bool deviceData = PeekU8(header.routingControl) >> 4 == 0;
  const uint32_t type = header.type.value;
  const bool isLlc = deviceData && (type == kTypeIp || type == kTypeLlc) && header.sequenceCount.value == 0;
  if (isLlc) return CallDecoder(network, c, DecodeLlc, "Raw Data");
  ShortText<64> title;
  FormatInto(title.text, sizeof title.text, "%s Data", DataTypeName(type));
  CallDecoder(network, c, nullptr, title.text);
  return 1;
}

// The delimiters around the frame; the cursor is left on what stands between them.
void DecodeDelimiters(const Place& at, Cursor& c) {
  const bool whole = WireLength(PacketOf(at).frame) == PacketOf(at).frame->capturedLength;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "Frame Delimiters"));
  ShowRows(in, c, kStartRow);
  constexpr int32_t kTail = kCheckSequenceLength + kDelimiterLength;
  if (!whole || Left(c) < kTail) return;
  Cursor tail = CursorOver(CutTail(c, kTail));
  ShowRows(in, tail, kEndRows);
}

}  // namespace

int32_t DecodeFibreChannelFrame(const Place& at, Cursor c) {
  const FrameRecord* record = PacketOf(at).frame;
  const bool delimited = HasDelimiters(record);
  const char* frameClass = delimited && Left(c) >= kDelimiterLength ? FrameClassName(PeekU32(c)) : "";
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
