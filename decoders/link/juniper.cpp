// What Juniper's routers put in front of the frames that they capture: "MGC", flags, fields of the interface where
// there are
// some, and a protocol in place of a link header that was taken off. How a link type goes on is told by its number.
//
//   0                 3      4
//   4D 47 43          flags  extension: length (2), fields of type (1), length (1), value; or what the link carries
#include "core/elements.h"
#include "decoders/link/carried.h"
#include "decoders/link/link_frame.h"
#include "decoders/link/medium.h"

namespace qxview {
namespace {

constexpr uint32_t kMagic = 0x4D4743;
constexpr uint32_t kIncoming = 1, kNoLinkHeader = 2, kExtended = 0x80;

enum JuniperLinkType : uint32_t {
  kMultilinkPpp = 130, kMultilinkFrameRelay = 131, kEncryption = 132, kGgsn = 133, kMfr = 134, kAtm2 = 135,
      kServices = 136,
  kAtm1 = 137, kPppoe = 167, kPppoeAtm = 168, kEthernet = 178, kPpp = 179, kFrameRelay = 180, kCiscoHdlc = 181,
};

constexpr auto kFlagNames = SortedNames({{kIncoming, "Incoming"}, {kNoLinkHeader, "No Link Header"}, {kExtended,
    "Extension"}});
constexpr auto kMediaNames = SortedNames({
    {1, "Other"}, {2, "Ethernet"}, {3, "FDDI"}, {4, "ATM"}, {5, "Frame Relay"}, {6, "PPP"}, {7, "Cisco HDLC"}, {18,
    "GRE"},
    {23, "PPP"}, {32, "Frame Relay"}, {37, "ATM"}});
constexpr auto kEncapsulationNames = SortedNames({
    {1, "ATM SNAP"}, {2, "ATM NLPID"}, {3, "ATM VC Multiplexed"}, {4, "ATM LLC"}, {5, "PPP over ATM VC"},
    {6, "PPP over ATM LLC"}, {8, "PPP over Frame Relay"}, {14, "Ethernet"}, {15, "Cisco HDLC"}, {16, "Frame Relay"},
    {19, "PPP"}});
constexpr auto kProtocolFamilies = SortedNames({{2, "IPv4"}, {3, "OSI"}, {6, "MPLS"}, {7, "ISO"}, {28, "IPv6"}, {57,
    "IPv6"}});

struct Juniper {
  Field flags, extension;
};
constexpr auto kHeader = Rows<Juniper>({
    Bytes(3, "Magic Number"), Flags(1, "Flags", kFlagNames).Into(&Juniper::flags)});
constexpr auto kLength = Rows<Juniper>({Number(2, "Extension Length").Into(&Juniper::extension)});
constexpr auto kIndex1 = Rows<Juniper>({Number(1, nullptr)});
constexpr auto kIndex2 = LittleRows<Juniper>({Number(2, nullptr)});
constexpr auto kIndex4 = LittleRows<Juniper>({Number(4, nullptr)});
constexpr auto kText = Rows<Juniper>({Utf8(0, nullptr).Note(" %s")});
constexpr auto kMedia = Rows<Juniper>({Number(1, nullptr, kMediaNames)});
constexpr auto kMedia4 = LittleRows<Juniper>({Number(4, nullptr, kMediaNames)});
constexpr auto kEncapsulation = Rows<Juniper>({Number(1, nullptr, kEncapsulationNames)});
constexpr auto kEncapsulation4 = LittleRows<Juniper>({Number(4, nullptr, kEncapsulationNames)});

// Numbers have as many bytes as their router's release wrote.
void ShowIndex(const Place& in, Cursor& c, Juniper& juniper) {
  // keys: number Index
  const RowSpan<Juniper> rows = Left(c) >= 4 ? RowSpan<Juniper>(kIndex4) : Left(c) >= 2 ? RowSpan<Juniper>(kIndex2) :
      kIndex1;
  ShowRows<Juniper>(in, c, rows, juniper, "Index");
}
void ShowMedia(const Place& in, Cursor& c, Juniper& juniper) {
  // keys: number Media Type
  ShowRows<Juniper>(in, c, Left(c) >= 4 ? RowSpan<Juniper>(kMedia4) : kMedia, juniper, "Media Type");
}
void ShowEncapsulation(const Place& in, Cursor& c, Juniper& juniper) {
  // keys: number Encapsulation
  ShowRows<Juniper>(in, c, Left(c) >= 4 ? RowSpan<Juniper>(kEncapsulation4) : kEncapsulation, juniper, "Encapsulation");
}
constexpr auto kFields = Choices<Juniper>({
    {1, "Device Interface Index", {}, ShowIndex}, {2, "Device Interface Name", kText}, {3, "Device Media Type", {},
    ShowMedia},
    {4, "Media Type", {}, ShowMedia}, {5, "Interface Encapsulation", {}, ShowEncapsulation}, {6,
    "Logical Interface Index", {}, ShowIndex},
    {7, "Logical Unit Number", {}, ShowIndex}});

int32_t DecodeFamily(const Place& at, const Place& in, Cursor c) {
  const Field family = TakeLittleU32(c);
  AddLine(in, family, "Protocol Family: %u = %s", family.value, LookupName(kProtocolFamilies, family.value));
  const Place network = Deeper(at);
  if (family.value == 6) return CallDecoder(network, c, FindEthertype(0x8847)->decode, "Raw Data");
  return DecodeBareIp(network, c);
}

// ATM interfaces put a cookie in front, whose first bit says that cells are captured as they are.
int32_t DecodeAtmCookie(const Place& at, const Place& in, Cursor c, int32_t size) {
  const Field cookie = TakeBytes(c, size);
  AddLine(in, cookie, "Cookie: %s", HexText(cookie));
  if (!cookie.here) return CallDecoder(Deeper(at), c, nullptr, "Raw Data");
  const uint32_t head = PeekU24(c);
  if (head == 0xAAAA03 || head == 0xFEFE03) return CallDecoder(at, c, DecodeLlc, "Raw Data");
  if (LooksLikePpp(c)) return CallDecoder(at, c, DecodePpp, "Raw Data");
  const uint32_t version = PeekU8(c) >> 4;
  if (version == 4 || version == 6) return DecodeBareIp(Deeper(at), c);
  return CallDecoder(Deeper(at), c, nullptr, "ATM Data");
}

int32_t DecodeServices(const Place& at, const Place& in, Cursor c, uint32_t linkType) {
  const Field cookie = TakeBytes(c, linkType == kGgsn ? 4 : linkType == kEncryption ? 6 : 4);
  AddLine(in, cookie, "Cookie: %s", HexText(cookie));
  if (linkType == kMultilinkPpp && LooksLikePpp(c)) return CallDecoder(at, c, DecodePpp, "Raw Data");
  if (linkType == kMultilinkFrameRelay || linkType == kMfr) return CallDecoder(at, c, DecodeFrameRelay, "Raw Data");
  return DecodeBareIp(Deeper(at), c);
}

int32_t DecodeCarried(const Place& at, const Place& in, const Cursor& c, uint32_t linkType) {
  switch (linkType) {
    case kEthernet: return DecodeCarriedFrame(at, c, Carried::kEthernet);
    case kPpp: return DecodeCarriedFrame(at, c, Carried::kPpp);
    case kFrameRelay: return DecodeCarriedFrame(at, c, Carried::kFrameRelay);
    case kCiscoHdlc: return DecodeCarriedFrame(at, c, Carried::kCiscoHdlc);
    case kAtm1: return DecodeAtmCookie(at, in, c, 4);
    case kAtm2: return DecodeAtmCookie(at, in, c, 8);
    case kPppoe:
    case kPppoeAtm: return DecodeCarriedPacket(Deeper(at), c, 0x8864);
    default: return DecodeServices(at, in, c, linkType);
  }
}

int32_t DecodeJuniperFrame(const Place& at, Cursor c, uint32_t linkType) {
  constexpr int32_t kHeaderSize = 4;
  if (Left(c) < kHeaderSize || PeekU24(c) != kMagic) return 0;
  const uint32_t flags = PeekU8(c, 3);
  const Place in = Under(at, AddLine(at, Ahead(c, kHeaderSize), "Juniper Header: %s", flags & kIncoming ? "In" :
      "Out"));
  Juniper juniper = ShowRows(in, c, kHeader);
  if (flags & kExtended) {
    ShowRows<Juniper>(in, c, kLength, juniper);
    Cursor fields = TakeCursor(c, juniper.extension.value);
    constexpr ElementForm kForm{};
    ShowElements<Juniper>(in, fields, kForm, "Field", kFields, juniper);
    fields.ranShort = false;
    AddBlock(in, Rest(fields), "Extension Data");
  }
  CoverBytes(in, c);
  if (Left(c) < 1) return 1;
  return flags & kNoLinkHeader ? DecodeFamily(at, in, c) : DecodeCarried(at, in, c, linkType);
}

}  // namespace

// The link type is that of the record, or Ethernet's where another header carries the frame.
int32_t DecodeJuniper(const Place& at, Cursor c) {
  const FrameRecord* record = PacketOf(at).frame;
  const uint32_t linkType = record && HasFullHeader(record) ? record->linkType : 0;
  return DecodeJuniperFrame(at, c, linkType >= kMultilinkPpp ? linkType : uint32_t{kEthernet});
}

}  // namespace qxview
