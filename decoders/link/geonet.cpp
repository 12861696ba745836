// GeoNetworking (ETSI EN 302 636-4-1, and version 0 of ETSI TS 102 636-4-1) with the Basic Transport Protocol (ETSI EN 302
// 636-5-1): vehicles send to places.
//
//   version 1   basic: version, next (4 bits each)   reserved (1)   lifetime (1)   hops left (1)
//               common: next, reserved   type, subtype   traffic class   flags (1)   length (2)   hops (1)   reserved (1)
//   version 0   version, next   type, subtype   reserved (1)   flags (1)   length (2)   traffic class (1)   hops (1)   sender
//   both        what the type says: numbers, positions of nodes, an area
#include "core/line_facts.h"
#include "core/rows.h"
#include "decoders/link/carried.h"

namespace qxview {
namespace {

enum : uint32_t { kBeacon = 1, kUnicast = 2, kAnycast = 3, kBroadcast = 4, kTopology = 5, kLocation = 6 };
constexpr uint32_t kCommonNext = 1, kSecuredNext = 2, kBtpA = 1, kBtpB = 2, kIPv6Next = 3;
constexpr uint16_t kIPv6Type = 0x86DD;

constexpr auto kBasicNextNames = SortedNames({{0, "Any"}, {1, "Common Header"}, {2, "Secured Packet"}});
constexpr auto kNextNames = SortedNames({{0, "Any"}, {1, "BTP-A"}, {2, "BTP-B"}, {3, "IPv6"}});
constexpr auto kTypeNames = SortedNames({
    {0, "Any"}, {1, "Beacon"}, {2, "GeoUnicast"}, {3, "GeoAnycast"}, {4, "GeoBroadcast"}, {5, "Topologically Scoped Broadcast"},
    {6, "Location Service"}});
// Type and subtype.
constexpr auto kSubtypeNames = SortedNames({
    {0x00, "Unspecified"}, {0x10, "Unspecified"}, {0x20, "Unspecified"}, {0x30, "Circle"}, {0x31, "Rectangle"}, {0x32, "Ellipse"},
    {0x40, "Circle"}, {0x41, "Rectangle"}, {0x42, "Ellipse"}, {0x50, "Single Hop"}, {0x51, "Multi-Hop"}, {0x60, "Request"},
    {0x61, "Reply"}});
constexpr auto kBaseNames = SortedNames({{0, "50 ms"}, {1, "1 s"}, {2, "10 s"}, {3, "100 s"}});
constexpr auto kStationNames = SortedNames({
    {0, "Unknown"}, {1, "Pedestrian"}, {2, "Cyclist"}, {3, "Moped"}, {4, "Motorcycle"}, {5, "Passenger Car"}, {6, "Bus"},
    {7, "Light Truck"}, {8, "Heavy Truck"}, {9, "Trailer"}, {10, "Special Vehicle"}, {11, "Tram"}, {15, "Road Side Unit"}});
constexpr auto kPortNames = SortedNames({
    {2001, "CAM"}, {2002, "DENM"}, {2003, "MAPEM"}, {2004, "SPATEM"}, {2005, "SAEM"}, {2006, "IVIM"}, {2007, "SREM"},
    {2008, "SSEM"}, {2009, "CPM"}, {2010, "EVCSN POI"}, {2011, "TPG"}, {2012, "EV-RSR"}, {2013, "RTCMEM"}, {2014, "CTLM"},
    {2015, "CRLM"}, {2016, "EC/AT Request"}, {2017, "MCDM"}, {2018, "VAM"}, {2019, "IMZM"}});

struct Geo {
  Field next, kind, length;
};

constexpr auto kBasic = Rows<Geo>({
    Word(1), Bits(0, 4, "Version"), Bits(4, 4, "Next Header", kBasicNextNames).Into(&Geo::next), Hex(1, "Reserved"),
    Hex(1, "Lifetime"), Bits(0, 6, "Lifetime Multiplier"), Bits(6, 2, "Lifetime Base", kBaseNames),
    Number(1, "Remaining Hop Limit")});

const char* BareTypeName(uint32_t type) { return LookupName(kTypeNames, type); }
constexpr auto kCommon = Rows<Geo>({
    Word(1), Bits(0, 4, "Next Header", kNextNames).Into(&Geo::next), Bits(4, 4, "Reserved"), Word(1).Into(&Geo::kind),
    Bits(0, 4, "Header Type", BareTypeName), Bits(4, 4, "Header Subtype"), Hex(1, "Traffic Class"), Flag(0, "Store-Carry-Forward"),
    Flag(1, "Channel Offload"), Bits(2, 6, "Traffic Class ID"), Hex(1, "Flags"), Flag(0, "Mobile"), Bits(1, 7, "Reserved"),
    Number(2, "Payload Length").Into(&Geo::length), Number(1, "Maximum Hop Limit"), Hex(1, "Reserved")});
constexpr auto kCommon0 = Rows<Geo>({
    Word(1), Bits(0, 4, "Version"), Bits(4, 4, "Next Header", kNextNames).Into(&Geo::next), Word(1).Into(&Geo::kind),
    Bits(0, 4, "Header Type", BareTypeName), Bits(4, 4, "Header Subtype"), Hex(1, "Reserved"), Hex(1, "Flags"),
    Number(2, "Payload Length").Into(&Geo::length), Hex(1, "Traffic Class"), Number(1, "Hop Limit")});

// In tenths of millionths of a degree.
void ShowDegrees(const Place& in, const Field& field, const char* label) {
  const int64_t value = static_cast<int32_t>(PeekU32(field));
  const uint32_t all = static_cast<uint32_t>(value < 0 ? -value : value);
  AddLine(in, field, "%s: %s%u.%.07u degrees", label, value < 0 ? "-" : "", all / 10000000, all % 10000000);
}
// keys: number Latitude, Longitude
constexpr auto kAddress = Rows<Geo>({
    Word(2), Flag(0, "Manually Configured"), Bits(1, 5, "Station Type", kStationNames), Bits(6, 10, "Reserved"),
    Mac("Node Address").Note(", %s")});
constexpr auto kPlace = Rows<Geo>({
    Number(4, "Timestamp", " milliseconds"), Shown(4, "Latitude", ShowDegrees), Shown(4, "Longitude", ShowDegrees)});
void ShowSpeed(const Place& in, const Field& field, const char*) {
  const Field word{field.bytes, field.offset, field.length, PeekU16(field), field.here};
  const BitPicture accurate = BitsOf(word, 0, 1);
  const int32_t speed = static_cast<int32_t>(word.value << 17) >> 17;   // of 15 bits, backwards as well
  AddBitLine(in, word, "%s: Position Accurate = %s", accurate.picture, accurate.value ? "True" : "False");
  AddBitLine(in, word, "%s: Speed = %d cm/s", BitsOf(word, 1, 15).picture, speed);
}
// keys: number Position Accurate, Speed
constexpr auto kMotion = Rows<Geo>({Shown(2, "Speed", ShowSpeed), Number(2, "Heading", " / 10 degrees")});
constexpr auto kMotion0 = Rows<Geo>({
    Signed(2, "Speed", " cm/s"), Number(2, "Heading", " / 10 degrees"), Signed(2, "Altitude", " metres"), Word(2),
    Bits(0, 4, "Time Accuracy"), Bits(4, 4, "Position Accuracy"), Bits(8, 3, "Speed Accuracy"), Bits(11, 3, "Heading Accuracy"),
    Bits(14, 2, "Altitude Accuracy")});
constexpr auto kNumber = Rows<Geo>({Number(2, "Sequence Number").Note(", Number %u"), Hex(2, "Reserved")});
constexpr auto kNumber0 = Rows<Geo>({Number(2, "Sequence Number").Note(", Number %u"), Hex(1, "Lifetime"), Hex(1, "Reserved")});
constexpr auto kArea = Rows<Geo>({
    Shown(4, "Latitude", ShowDegrees), Shown(4, "Longitude", ShowDegrees), Number(2, "Distance A", " metres"),
    Number(2, "Distance B", " metres"), Number(2, "Angle", " degrees"), Hex(2, "Reserved")});
// Of radio by IEEE 802.11 (ETSI TS 102 636-4-2).
constexpr auto kMediaData = Rows<Geo>({
    Number(1, "Local Channel Busy Ratio", " / 255"), Number(1, "One-Hop Channel Busy Ratio", " / 255"), Word(1),
    Bits(0, 5, "Output Power", " dBm"), Bits(5, 3, "Reserved"), Hex(1, "Reserved")});
constexpr auto kBtpARows = Rows<Geo>({
    Number(2, "Destination Port", kPortNames).Note(", %s"), Number(2, "Source Port", kPortNames)});
constexpr auto kBtpBRows = Rows<Geo>({
    Number(2, "Destination Port", kPortNames).Note(", %s"), Number(2, "Destination Port Info")});

enum class Vector : uint8_t { kLong, kShort, kAddress };
void ShowVector(const Place& at, Cursor& c, const char* label, Vector vector, uint32_t version) {
  const int32_t size = vector == Vector::kAddress ? 8 : vector == Vector::kShort ? 20 : version == 0 ? 28 : 24;
  Cursor node = TakeCursor(c, size);
  if (!Left(node)) return;
  const Place in = Under(at, AddLine(at, Ahead(node, Left(node)), "%s", label));
  ShowRows(in, node, kAddress);
  if (vector != Vector::kAddress) ShowRows(in, node, kPlace);
  Geo geo{};
  if (vector == Vector::kLong) ShowRows<Geo>(in, node, version == 0 ? RowSpan<Geo>(kMotion0) : RowSpan<Geo>(kMotion), geo);
}

void ShowExtended(const Place& in, Cursor& c, uint32_t kind, uint32_t version) {
  constexpr uint32_t kSingleHop = 0x50, kReply = 0x61;
  const uint32_t type = kind >> 4;
  Geo geo{};
  const bool isNumbered = type >= kUnicast && type <= kLocation && kind != kSingleHop;
  if (isNumbered) ShowRows<Geo>(in, c, version == 0 ? RowSpan<Geo>(kNumber0) : RowSpan<Geo>(kNumber), geo);
  const bool hasSource = version != 0 ? type >= kBeacon && type <= kLocation : isNumbered;
  if (hasSource) ShowVector(in, c, "Source", Vector::kLong, version);
  if (type == kUnicast || kind == kReply) ShowVector(in, c, "Destination", Vector::kShort, version);
  if (type == kLocation && kind != kReply) ShowVector(in, c, "Requested Node", Vector::kAddress, version);
  if (type == kAnycast || type == kBroadcast) {
    const Field all = Ahead(c, Left(c) < 16 ? Left(c) : 16);
    ShowRows(Under(in, AddLine(in, all, "Destination Area: %s", LookupName(kSubtypeNames, kind))), c, kArea);
  }
  if (kind == kSingleHop && version != 0) ShowRows<Geo>(in, c, kMediaData, geo);
}

void ShowPayload(const Place& at, Cursor& c, uint32_t next) {
  if (next == kIPv6Next && Left(c)) {
    DecodeCarriedPacket(at, c, kIPv6Type);
    return;
  }
  if ((next == kBtpA || next == kBtpB) && Left(c) >= 4) {
    const KeyedAs keys(PacketOf(at), "btp");
    const Place in = Under(at, AddLine(at, Ahead(c, 4), "BTP-%s", next == kBtpA ? "A" : "B"));
    Geo geo{};
    ShowRows<Geo>(in, c, next == kBtpA ? RowSpan<Geo>(kBtpARows) : RowSpan<Geo>(kBtpBRows), geo);
  }
  AddRawRest(at, c, "GeoNetworking Payload");
}

}  // namespace

int32_t DecodeGeoNetworking(const Place& at, Cursor c) {
  constexpr int32_t kCommonSize = 8;
  const uint32_t version = PeekU8(c) >> 4;
  if (version > 1 || Left(c) < kCommonSize) return 0;
  const Cursor start = c;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "GeoNetworking: Version %u", version));
  Geo geo{};
  if (version == 1) {
    ShowRows<Geo>(in, c, kBasic, geo);
    if (geo.next.value > kCommonNext) {
      AddBlock(in, Rest(c), geo.next.value == kSecuredNext ? "Secured Packet" : "GeoNetworking Data");
      return 1;
    }
  }
  ShowRows<Geo>(in, c, version == 1 ? RowSpan<Geo>(kCommon) : RowSpan<Geo>(kCommon0), geo);
  const uint32_t kind = geo.kind.value;
  AppendToParent(in, geo.kind, ", %s", LookupName(kTypeNames, kind >> 4));
  if (kind & 15 || kind >> 4 >= kAnycast) AppendToParent(in, geo.kind, " %s", LookupName(kSubtypeNames, kind));
  if (version == 0) ShowVector(in, c, "Sender", Vector::kLong, version);
  ShowExtended(in, c, kind, version);
  if (!in.dead) SetRange(in, in.parent, start.offset, c.offset - start.offset);
  Cursor payload = TakeCursor(c, geo.length.value);
  ShowPayload(Deeper(at), payload, geo.next.value);
  AddRawRest(at, c, "Trailing Data");   // padding of the frame
  return 1;
}

}  // namespace qxview
