// Token Ring frames (IEEE 802.5), with source routing.
//
//   0               1              2            8       14
//   access control  frame control  destination  source  routing information (2 to 30), 802.2 or MAC frame
//
// The source's first bit says that routing information follows: a control field of two bytes, which holds the length
// of all, and route designators of a ring (12 bits) and a bridge (4). MAC frames: length (2), classes (1), vector,
// then subvectors: length (1), type (1), data.
#include "core/line_facts.h"
#include "decoders/link/llc.h"
#include "decoders/link/medium.h"

namespace qxview {
namespace {

constexpr int32_t kHeaderLength = 2 + 2 * kMacAddressLength;
constexpr uint8_t kRouted = 0x80;
constexpr uint32_t kMacFrame = 0, kLlcFrame = 1;

constexpr auto kFrameTypes = SortedNames({{0, "MAC"}, {1, "LLC"}});
constexpr auto kMacControls = SortedNames({{0, "Normal Buffer"}, {1, "Express Buffer"}, {2, "Beacon"},
                                           {3, "Claim Token"}, {4, "Ring Purge"}, {5, "Active Monitor Present"},
                                           {6, "Standby Monitor Present"}});
constexpr auto kVectors = SortedNames({
    {0x00, "Response"}, {0x02, "Beacon"}, {0x03, "Claim Token"}, {0x04, "Ring Purge"},
    {0x05, "Active Monitor Present"}, {0x06, "Standby Monitor Present"}, {0x07, "Duplicate Address Test"},
    {0x08, "Lobe Media Test"}, {0x09, "Transmit Forward"}, {0x0B, "Remove Ring Station"},
    {0x0C, "Change Parameters"}, {0x0D, "Initialize Station"}, {0x0E, "Request Station Address"},
    {0x0F, "Request Station State"}, {0x10, "Request Station Attachments"}, {0x20, "Request Initialization"},
    {0x22, "Report Station Address"}, {0x23, "Report Station State"}, {0x24, "Report Station Attachments"},
    {0x25, "Report New Active Monitor"}, {0x26, "Report Stored Upstream Address Change"},
    {0x27, "Report Neighbor Notification Incomplete"}, {0x28, "Report Active Monitor Error"},
    {0x29, "Report Soft Error"}, {0x2A, "Report Transmit Forward"}});
constexpr auto kStationClasses = SortedNames({{0, "Ring Station"}, {4, "Configuration Report Server"},
                                              {5, "Ring Parameter Server"}, {6, "Ring Error Monitor"}});
constexpr auto kSubvectors = SortedNames({
    {0x01, "Beacon Type"}, {0x02, "Upstream Neighbor Address"}, {0x03, "Local Ring Number"},
    {0x04, "Assign Physical Drop Number"}, {0x05, "Error Report Timer"}, {0x06, "Authorized Function Classes"},
    {0x07, "Authorized Access Priority"}, {0x09, "Correlator"}, {0x0A, "Last Neighbor Notification Address"},
    {0x0B, "Physical Drop Number"}, {0x20, "Response Code"}, {0x21, "Individual Address Count"},
    {0x22, "Product Instance"}, {0x23, "Ring Station Version"}, {0x26, "Wrap Data"}, {0x27, "Frame Forward"},
    {0x28, "Station Identifier"}, {0x29, "Ring Station Status"}, {0x2A, "Transmit Status Code"},
    {0x2B, "Group Address"}, {0x2C, "Functional Address"}, {0x2D, "Isolating Error Counts"},
    {0x2E, "Non-Isolating Error Counts"}, {0x2F, "Function Request Identifier"}, {0x30, "Error Code"}});
constexpr auto kBroadcasts = SortedNames({{0, "Specific Route"}, {1, "Specific Route"}, {2, "Specific Route"},
                                          {3, "Specific Route"}, {4, "All Routes"}, {5, "All Routes"},
                                          {6, "Spanning Tree"}, {7, "Spanning Tree"}});
constexpr auto kLargestFrames = SortedNames({{0, "516"}, {1, "1470"}, {2, "2052"}, {3, "4399"}, {4, "8130"},
                                             {5, "11407"}, {6, "17749"}, {7, "Unlimited"}});

void AddControlLines(const Place& in, Cursor& c) {
  const Field access = TakeU8(c);
  AddLine(in, access, "Access Control: 0x%.02X", access.value);
  const BitPicture priority = BitsOf(access, 0, 3), token = BitsOf(access, 3, 1), monitor = BitsOf(access, 4, 1);
  const BitPicture reservation = BitsOf(access, 5, 3);
  AddBitLine(in, access, "%s: Priority = %u", priority.picture, priority.value);
  AddBitLine(in, access, "%s: Token Bit = %s", token.picture, token.value ? "Frame" : "Token");
  AddBitLine(in, access, "%s: Monitor Bit = %u", monitor.picture, monitor.value);
  AddBitLine(in, access, "%s: Reservation = %u", reservation.picture, reservation.value);
  const Field control = TakeU8(c);
  AddLine(in, control, "Frame Control: 0x%.02X", control.value);
  const BitPicture type = BitsOf(control, 0, 2), detail = BitsOf(control, 4, 4);
  AddBitLine(in, control, "%s: Frame Type = %s", type.picture, LookupName(kFrameTypes, type.value, "Reserved"));
  if (type.value == kMacFrame) {
    AddBitLine(in, control, "%s: Control = %s", detail.picture, LookupName(kMacControls, detail.value));
  } else {
    AddBitLine(in, control, "%s: Priority = %u", detail.picture, detail.value & 7);
  }
}

int32_t RoutingLength(const Cursor& c) {
  if (Left(c) < kHeaderLength + 2 || !(PeekU8(c, 2 + kMacAddressLength) & kRouted)) return 0;
  return PeekU8(c, kHeaderLength) & 0x1F;
}

// The source's first bit is not part of its address.
struct Station {
  uint8_t address[kMacAddressLength];
};
Station StationOf(const Field& source) {
  Station station;
  std::memcpy(station.address, source.bytes, sizeof station.address);
  station.address[0] = static_cast<uint8_t>(station.address[0] & ~kRouted);
  return station;
}

void AddSource(const Place& in, const Field& source) {
  if (!source.here) return;
  AddLine(in, source, "Source: %s%s", CheckAlias(in.view, 0, StationOf(source).address),
          PeekU8(source) & kRouted ? " (Source Routed)" : "");
}

// The cursor of exactly the routing information.
void DecodeRouting(const Place& in, Cursor c) {
  const Place routing = Under(in, AddLine(in, Ahead(c, Left(c)), "Routing Information:"));
  const Field control = TakeU16(c);
  const BitPicture broadcast = BitsOf(control, 0, 3), length = BitsOf(control, 3, 5);
  const BitPicture direction = BitsOf(control, 8, 1), largest = BitsOf(control, 9, 3);
  AddLine(routing, control, "Routing Control: 0x%.04X", control.value);
  AddBitLine(routing, control, "%s: Broadcast = %s", broadcast.picture, LookupName(kBroadcasts, broadcast.value));
  AddBitLine(routing, control, "%s: Length = %u", length.picture, length.value);
  AddBitLine(routing, control, "%s: Direction = %s", direction.picture, direction.value ? "Reversed" : "As Listed");
  AddBitLine(routing, control, "%s: Largest Frame = %s bytes", largest.picture,
             LookupName(kLargestFrames, largest.value));
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const Field designator = TakeU16(c);
    AddLine(routing, designator, "Ring 0x%.03X, Bridge 0x%.01X", designator.value >> 4, designator.value & 0x0F);
  }
}

void DecodeSubvector(const Place& at, Cursor& c) {
  const Cursor start = c;
  const Field length = TakeU8(c);
  const Field type = TakeU8(c);
  if (!type.here) return;
  Cursor data = TakeCursor(c, int64_t{length.value} - 2);
  const char* name = LookupName(kSubvectors, type.value);
  const Place in = Under(at, AddLine(at, Ahead(start, 2 + Left(data)), "Subvector: %s", name));
  AddLine(in, length, "Length: %u", length.value);
  AddLine(in, type, "Type: 0x%.02X = %s", type.value, name);
  const Field value = Rest(data);
  AddLine(in, value, "Data: %s", HexText(value));
}

int32_t DecodeMacVector(const Place& at, Cursor c) {
  if (Left(c) < 4) return 0;
  const Cursor start = c;
  const char* name = LookupName(kVectors, PeekU8(c, 3));
  const Place in = Under(at, AddLine(at, Ahead(start, 4), "Token Ring MAC: %s", name));
  const Field length = TakeU16(c);
  AddLine(in, length, "Vector Length: %u", length.value);
  const Field classes = TakeU8(c);
  const BitPicture to = BitsOf(classes, 0, 4), from = BitsOf(classes, 4, 4);
  AddBitLine(in, classes, "%s: Destination Class = %s", to.picture, LookupName(kStationClasses, to.value));
  AddBitLine(in, classes, "%s: Source Class = %s", from.picture, LookupName(kStationClasses, from.value));
  const Field vector = TakeU8(c);
  AddLine(in, vector, "Vector: 0x%.02X = %s", vector.value, name);
  Cursor subvectors = TakeCursor(c, int64_t{length.value} - 4);
  Loop loop;
  while (MoreAt(at, subvectors, loop)) DecodeSubvector(in, subvectors);
  SetRange(in, in.parent, start.offset, subvectors.offset - start.offset);
  return 1;
}

uint32_t FrameTypeOf(const Cursor& c) { return Left(c) >= 2 ? PeekU8(c, 1) >> 6u : 2; }

const char* NameProtocol(Cursor c) {
  if (FrameTypeOf(c) == kMacFrame) {
    return Left(c) >= kHeaderLength + 4 ? LookupName(kVectors, PeekU8(c, kHeaderLength + 3)) : kUnknown;
  }
  TakeBytes(c, int64_t{kHeaderLength} + RoutingLength(c));
  return NameLlcPayload(c);
}

}  // namespace

int32_t DecodeTokenRingHeader(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "tr");
  if (Left(c) < kHeaderLength) return 0;
  const uint32_t frameType = FrameTypeOf(c);
  const int32_t routing = RoutingLength(c);
  const Station source = StationOf(PeekBytes(c, 2 + kMacAddressLength, kMacAddressLength));
  const LineHandle top = AddLine(at, Ahead(c, kHeaderLength), "Token Ring Header:  %s -> %s",
                                 CheckAlias(at.view, 0, source.address),
                                 CheckAlias(at.view, 0, PeekBytes(c, 2, kMacAddressLength).bytes));
  const Place in = Under(at, top);
  AddControlLines(in, c);
  AddAddress(in, TakeBytes(c, kMacAddressLength), "Destination");
  AddSource(in, TakeBytes(c, kMacAddressLength));
  if (routing > 0) {
    Cursor route = TakeCursor(c, routing < 2 ? 2 : routing);
    DecodeRouting(in, route);
    SetRange(in, top, c.begin, Taken(c));
  }
  const Place network = Deeper(at);
  switch (frameType) {
    case kMacFrame: CallDecoder(network, c, DecodeMacVector, "Raw Data"); break;
    case kLlcFrame: CallDecoder(network, c, DecodeLlc, "Raw Data"); break;
    default: CallDecoder(network, c, nullptr, "Raw Data"); break;
  }
  return 1;
}

int32_t DecodeTokenRingFrame(const Place& at, Cursor c) {
  if (OfferFrame(at, c)) return 1;
  const FrameRecord* record = PacketOf(at).frame;
  const Cursor frame = c;
  const Field checkSequence = CutCheckSequence(at, c);
  const Place in = AddFrameSummary(at, frame);
  const Field whole = Ahead(frame, Left(frame));
  AddLine(in, whole, "Network: TokenRing,  Frame type:  %s,  Protocol:  %s",
          LookupName(kFrameTypes, FrameTypeOf(c), kUnknown), NameProtocol(c));
  AddLine(in, whole, "Frame size (including 4 bytes CRC):  %lu", SizeWithCheckSequence(record, 4));
  AddClosingSummaryLines(in, frame, OriginalNumber::kShown, checkSequence);
  AddCaptureLines(in);
  CallDecoder(at, c, DecodeTokenRingHeader, "Raw Data");
  return 1;
}

}  // namespace qxview
