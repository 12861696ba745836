// Tags and headers of bridged networks in front of a carried Ethertype or frame: provider backbone bridges (IEEE 802.1Q clause 9,
// once 802.1ah), port extenders (IEEE 802.1BR), TRILL (RFC 6325), FabricPath's tag, seamless redundancy (HSR and PRP,
// IEC 62439-3), security group tags and times of capture that switches put in.
#include "core/elements.h"
#include "core/line_facts.h"
#include "decoders/link/carried.h"
#include "decoders/link/medium.h"

namespace qxview {
namespace {

struct Tag {
  Field words, type, version;
};

constexpr auto kServiceTag = Rows<Tag>({
    Word(4), Bits(0, 3, "Priority"), Flag(3, "Drop Eligible"), Flag(4, "Use Customer Addresses"), Bits(5, 1,
    "Reserved 1"),
    Bits(6, 2, "Reserved 2"), Bits(8, 24, "Service Instance (I-SID)").Note(", Service %u")});
constexpr auto kExtenderTag = Rows<Tag>({
    Word(2), Bits(0, 3, "Priority"), Flag(3, "Drop Eligible"), Bits(4, 12, "Ingress E-CID Base"), Word(2),
    Bits(0, 2, "Reserved"), Bits(2, 2, "Group"), Bits(4, 12, "E-CID Base").Note(", Channel %u"),
    Number(1, "Ingress E-CID Extension"), Number(1, "E-CID Extension")});
constexpr auto kTrill = Rows<Tag>({
    Word(2), Bits(0, 2, "Version"), Bits(2, 2, "Reserved"), Flag(4, "Multi-Destination"),
    Bits(5, 5, "Option Length", " words").Into(&Tag::words), Bits(10, 6, "Hop Count"), Hex(2,
    "Egress RBridge Nickname"),
    Hex(2, "Ingress RBridge Nickname")});
constexpr auto kFabric = Rows<Tag>({Word(2), Bits(0, 10, "Forwarding Tag (FTag)").Note(", FTag %u"), Bits(10, 6,
    "Time to Live")});

constexpr auto kPathNames = SortedNames({
    {0, "PRP Supervision"}, {2, "HSR Ring A, Network 1"}, {3, "HSR Ring B, Network 1"}, {10, "LAN A"}, {11, "LAN B"}});
constexpr auto kRedundancy = Rows<Tag>({
    Word(2), Bits(0, 4, "Path"), Bits(4, 12, "LSDU Size"), Number(2, "Sequence Number").Note(", Sequence %u")});
constexpr auto kSupervision = Rows<Tag>({
    Word(2), Bits(0, 4, "Path", kPathNames), Bits(4, 12, "Version"), Number(2,
    "Supervision Sequence Number").Note(", Sequence %u")});
constexpr auto kNode = Rows<Tag>({Mac("Source MAC Address").Note(": %s")});
constexpr auto kNodeB = Rows<Tag>({Mac("Source MAC Address B")});
constexpr auto kRedBox = Rows<Tag>({Mac("RedBox MAC Address").Note(": %s")});
constexpr auto kProxied = Rows<Tag>({Mac("VDAN MAC Address").Note(": %s")});
void ShowSecond(const Place& in, Cursor& c, Tag& tag) {
  if (Left(c) >= 6) ShowRows<Tag>(in, c, kNodeB, tag);
}
constexpr ElementForm kForm{.endType = 0};
constexpr auto kNodes = Choices<Tag>({
    {0, "End"}, {20, "PRP Node, Duplicate Discard", kNode, ShowSecond}, {21, "PRP Node, Duplicate Accept", kNode,
    ShowSecond},
    {22, "Reserved"}, {23, "HSR Node", kNode}, {30, "RedBox", kRedBox}, {31, "VDAN", kProxied}});
constexpr auto kTrailer = Rows<Tag>({
    Number(2, "Sequence Number").Note(", Sequence %u"), Word(2), Bits(0, 4, "LAN", kPathNames), Bits(4, 12,
    "LSDU Size"),
    Hex(2, "Suffix")});

constexpr auto kMetaData = Rows<Tag>({
    Number(1, "Version"), Number(1, "Length").Into(&Tag::words), Word(2), Bits(0, 4, "Option Length"), Bits(4, 12,
    "Option Type"),
    Number(2, "Security Group Tag").Note(", Group %u")});

constexpr auto kStampNames = SortedNames({
    {0x0010, "TAI, 64 Bits"}, {0x0020, "TAI, 48 Bits"}, {0x0110, "UTC, 64 Bits"}, {0x0120, "UTC, 48 Bits"}});
constexpr auto kStamp = Rows<Tag>({Number(2, "Subtype"), Hex(2, "Version", kStampNames).Into(&Tag::version)});
constexpr auto kStamp64 = Rows<Tag>({UnixTime(4, "Seconds"), Number(4, "Nanoseconds")});
constexpr auto kStamp48 = Rows<Tag>({Number(2, "Seconds, Low Part"), Number(4, "Nanoseconds")});

}  // namespace

int32_t DecodeBackboneTag(const Place& at, Cursor c) {
  if (Left(c) < 4) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, 4), "Provider Backbone Bridging Tag"));
  ShowRows(in, c, kServiceTag);
  return DecodeCarriedFrame(Deeper(at), c, Carried::kEthernet);
}

int32_t DecodeExtenderTag(const Place& at, Cursor c) {
  if (Left(c) < 8) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, 8), "802.1BR E-Tag"));
  ShowRows(in, c, kExtenderTag);
  return DecodeEthernetHeader(in, c);
}

int32_t DecodeTrill(const Place& at, Cursor c) {
  constexpr int32_t kHeader = 6;
  if (Left(c) < kHeader) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, kHeader), "TRILL: Ingress 0x%.04X, Egress 0x%.04X", PeekU16(c, 4),
                                     PeekU16(c, 2)));
  const Tag trill = ShowRows(in, c, kTrill);
  const Field options = TakeBytes(c, int64_t{trill.words.value} * 4);
  if (options.length > 0) AddLine(in, options, "Options: %s", HexText(options));
  CoverBytes(in, c);
  return DecodeCarriedFrame(Deeper(at), c, Carried::kEthernet);
}

int32_t DecodeFabricTag(const Place& at, Cursor c) {
  if (Left(c) < 2) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, 2), "FabricPath Tag"));
  ShowRows(in, c, kFabric);
  return DecodeCarriedFrame(Deeper(at), c, Carried::kEthernet);
}

int32_t DecodeHsrTag(const Place& at, Cursor c) {
  if (Left(c) < 6) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, 6), "HSR Tag"));
  ShowRows(in, c, kRedundancy);
  return DecodeEthernetHeader(in, c);
}

int32_t DecodeRedundancySupervision(const Place& at, Cursor c) {
  if (Left(c) < 4) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "HSR/PRP Supervision"));
  Tag tag = ShowRows(in, c, kSupervision);
  ShowElements<Tag>(in, c, kForm, "TLV", kNodes, tag);
  CoverBytes(in, c);
  const Field rest = Rest(c);
  if (rest.here) AddLine(in, rest, "Padding: %s", HexText(rest));
  return 1;
}

// The last six bytes of a frame, where they count what stands in front of them.
void DecodeRedundancyTrailer(const Place& at, Cursor& c) {
  constexpr int32_t kSize = 6, kHeader = 14;
  constexpr uint32_t kSuffix = 0x88FB, kLanA = 10, kLanB = 11;
  const int32_t start = Left(c) - kSize;
  if (start < kHeader || PeekU16(c, start + 4) != kSuffix) return;
  const uint32_t lan = PeekU16(c, start + 2) >> 12, size = PeekU16(c, start + 2) & 0xFFF;
  const int32_t declared = static_cast<int32_t>(size), counted = Left(c) - kHeader;
  if ((lan != kLanA && lan != kLanB) || declared > counted || declared + 4 < counted) return;   // a VLAN tag is not counted
  const KeyedAs keys(PacketOf(at), "prp");
  const Field trailer = CutTail(c, kSize);
  Cursor bytes = CursorOver(trailer);
  const Place in = Under(at, AddLine(at, trailer, "PRP Trailer: LAN %s", lan == kLanA ? "A" : "B"));
  ShowRows(in, bytes, kTrailer);
}

int32_t DecodeMetaData(const Place& at, Cursor c) {
  if (Left(c) < 8) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, 8), "Cisco MetaData"));
  ShowRows(in, c, kMetaData);
  return DecodeEthernetHeader(in, c);
}

int32_t DecodeSwitchTimestamp(const Place& at, Cursor c) {
  constexpr uint32_t kShortMask = 0x0020;
  const bool isShort = PeekU16(c, 2) & kShortMask;
  const int32_t size = isShort ? 12 : 14;
  if (Left(c) < size || PeekU16(c) != 1) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, size), "Arista Timestamp: %s", LookupName(kStampNames, PeekU16(c,
      2))));
  Tag tag = ShowRows(in, c, kStamp);
  ShowRows<Tag>(in, c, isShort ? RowSpan<Tag>(kStamp48) : RowSpan<Tag>(kStamp64), tag);
  return DecodeEthernetHeader(in, c);
}

}  // namespace qxview
