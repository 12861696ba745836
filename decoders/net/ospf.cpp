// Open Shortest Path First, version 2 (RFC 2328) and 3 (RFC 5340): which routers and networks make up an area, and how far is
// it to each? With cryptographic authentication (RFC 5709, RFC 7166) and link-local signaling (RFC 5613).
//
//   version   type   length (2)   router (4)   area (4)   checksum (2)   version 2: authentication type (2) and data (8)
//                                                                        version 3: instance, 0
#include "decoders/net/ospf.h"

#include "core/internet_checksum.h"
#include "decoders/common/checksum_line.h"
#include "decoders/common/fletcher.h"
#include "decoders/net/ipv6_checksum.h"

namespace qxview {
namespace {

enum OspfType : uint32_t { kHello = 1, kDescription = 2, kRequest = 3, kUpdate = 4, kAcknowledgement = 5 };
constexpr int32_t kHeader2 = 24, kHeader3 = 16, kAdvertisementHeader = 20;
constexpr uint32_t kCryptographic = 2;

constexpr auto kTypeNames = SortedNames({
    {1, "Hello"}, {2, "Database Description"}, {3, "Link State Request"}, {4, "Link State Update"},
    {5, "Link State Acknowledgement"}});
constexpr auto kAuthenticationNames = SortedNames({
    {0, "None"}, {1, "Simple Password"}, {2, "Cryptographic"}, {3, "Cryptographic with Extended Sequence Numbers"}});
constexpr auto kDescriptionMasks = SortedNames({
    {0x01, "Master"}, {0x02, "More"}, {0x04, "Initialize"}, {0x08, "Out-of-Band Resynchronization"}});

constexpr auto kHead = Rows<Ospf>({
    Number(1, "Version").Into(&Ospf::version), Number(1, "Message Type", kTypeNames).Into(&Ospf::type),
    Number(2, "Packet Length").Into(&Ospf::length), IPv4("Router ID").Note(", Router %s"), IPv4("Area ID").Note(", Area %s")});
constexpr auto kAuthentication = Rows<Ospf>({Number(2, "Authentication Type", kAuthenticationNames).Into(&Ospf::kind)});
constexpr auto kPassword = Rows<Ospf>({Text(8, "Authentication Password")});
constexpr auto kNoAuthentication = Rows<Ospf>({Bytes(8, "Authentication Data")});
constexpr auto kCryptographicData = Rows<Ospf>({
    Hex(2, "Reserved"), Number(1, "Authentication Key ID"), Number(1, "Authentication Data Length").Into(&Ospf::size),
    Number(4, "Cryptographic Sequence Number")});
constexpr auto kInstance = Rows<Ospf>({Number(1, "Instance ID"), Hex(1, "Reserved")});

constexpr auto kHello2 = Rows<Ospf>({
    IPv4("Network Mask"), Number(2, "Hello Interval", " seconds"), Flags(1, "Options", kOspfOptionMasks).Into(&Ospf::options),
    Number(1, "Router Priority"), Number(4, "Router Dead Interval", " seconds"), IPv4("Designated Router"),
    IPv4("Backup Designated Router")});
constexpr auto kHello3 = Rows<Ospf>({
    Number(4, "Interface ID"), Number(1, "Router Priority"), Flags(3, "Options", kOspf3OptionMasks).Into(&Ospf::options),
    Number(2, "Hello Interval", " seconds"), Number(2, "Router Dead Interval", " seconds"), IPv4("Designated Router"),
    IPv4("Backup Designated Router")});
constexpr auto kNeighbor = Rows<Ospf>({IPv4("Active Neighbor")});
constexpr auto kDescription2 = Rows<Ospf>({
    Number(2, "Interface MTU"), Flags(1, "Options", kOspfOptionMasks).Into(&Ospf::options),
    Flags(1, "DB Description", kDescriptionMasks), Number(4, "DD Sequence Number")});
constexpr auto kDescription3 = Rows<Ospf>({
    Hex(1, "Reserved"), Flags(3, "Options", kOspf3OptionMasks).Into(&Ospf::options), Number(2, "Interface MTU"),
    Hex(1, "Reserved 2"), Flags(1, "DB Description", kDescriptionMasks), Number(4, "DD Sequence Number")});
constexpr auto kFloodingScopeNames = SortedNames({ {0, "Link-Local"}, {1, "Area"}, {2, "AS"}, {3, "Reserved"}});
constexpr auto kRequest2 = Rows<Ospf>({
    Number(4, "Link State Type", OspfLsaName).Note(", %s"), IPv4("Link State ID").Note(" %s"),
    IPv4("Advertising Router").Note(" of %s")});
constexpr auto kRequest3 = Rows<Ospf>({
    Hex(2, "Reserved"), Hex(2, "Link State Type", Ospf3LsaName).Note(", %s"),
    Flag(0, "Handle Unknown Types"), Bits(1, 2, "Flooding Scope", kFloodingScopeNames), Bits(3, 13, "Function Code"), IPv4("Link State ID").Note(" %s"),
    IPv4("Advertising Router").Note(" of %s")});
constexpr auto kAge = Rows<Ospf>({Hex(2, "Age Word"), Flag(0, "Do Not Age"), Bits(1, 15, "LS Age", " seconds")});
constexpr auto kType2 = Rows<Ospf>({
    Flags(1, "Options", kOspfOptionMasks), Number(1, "LS Type", OspfLsaName).Into(&Ospf::type)});
constexpr auto kType3 = Rows<Ospf>({
    Hex(2, "LS Type", Ospf3LsaName).Into(&Ospf::type), Flag(0, "Handle Unknown Types"), Bits(1, 2, "Flooding Scope", kFloodingScopeNames), Bits(3, 13, "Function Code")});
constexpr auto kId = Rows<Ospf>({IPv4("Link State ID").Into(&Ospf::id)});
constexpr auto kOpaqueId = Rows<Ospf>({
    Number(1, "Opaque Type", OspfOpaqueName).Into(&Ospf::opaque), Number(3, "Opaque ID")});
constexpr auto kSequence = Rows<Ospf>({IPv4("Advertising Router"), Hex(4, "Sequence Number")});
constexpr auto kLength = Rows<Ospf>({Number(2, "Length").Into(&Ospf::length)});

bool IsOpaque(uint32_t type) { return type >= 9 && type <= 11; }

// The header of an advertisement; `whole` where the rest of it follows.
void ShowHeader(const Place& in, Cursor& c, Ospf& ospf, const Field& whole) {
  const bool isThree = ospf.version.value == 3;
  ShowRows<Ospf>(in, c, kAge, ospf);
  ShowRows<Ospf>(in, c, isThree ? RowSpan<Ospf>(kType3) : RowSpan<Ospf>(kType2), ospf);
  const bool isOpaque = !isThree && IsOpaque(ospf.type.value);
  ShowRows<Ospf>(in, c, isOpaque ? RowSpan<Ospf>(kOpaqueId) : RowSpan<Ospf>(kId), ospf);
  ShowRows<Ospf>(in, c, kSequence, ospf);
  const Field checksum = TakeU16(c);
  AddFletcherLine(in, checksum, Slice(whole, 2, whole.length - 2));   // all but the age
  ShowRows<Ospf>(in, c, kLength, ospf);
}

void ShowAdvertisement(const Place& in, Cursor& c, Ospf& ospf, bool withBody) {
  const bool isThree = ospf.version.value == 3;
  const uint32_t type = isThree ? PeekU16(c, 2) : PeekU8(c, 3), length = PeekU16(c, 18);
  const Cursor start = c;
  Cursor part = TakeCursor(c, withBody && length >= kAdvertisementHeader ? static_cast<int32_t>(length) : kAdvertisementHeader);
  const Field id = PeekBytes(start, 4, 4), router = PeekBytes(start, 8, 4);
  const char* name = isThree ? Ospf3LsaName(type) : OspfLsaName(type);
  const Place under = Under(in, AddLine(in, Ahead(part, Left(part)), "%s: %s, ID %s, Router %s", withBody ? "LSA" : "LSA Header",
                                        name, IPv4Text(id.bytes), IPv4Text(router.bytes)));
  const bool isWhole = withBody && Left(part) == static_cast<int32_t>(length);
  ShowHeader(under, part, ospf, isWhole ? PeekBytes(part, 0, Left(part)) : Field{});
  if (withBody) {
    if (isThree) ShowOspf3Advertisement(under, part, ospf);
    else ShowOspfAdvertisement(under, part, ospf);
  }
  part.ranShort = false;
  AddBlock(under, Rest(part), "LSA Data");
}

void ShowAdvertisements(const Place& in, Cursor& c, Ospf& ospf, uint32_t most, bool withBody) {
  Loop loop;
  for (uint32_t i = 0; i < most && Left(c) >= kAdvertisementHeader && MoreAt(in, c, loop); ++i) {
    ShowAdvertisement(in, c, ospf, withBody);
  }
}

void ShowBody(const Place& in, Cursor& c, Ospf& ospf) {
  const bool isThree = ospf.version.value == 3;
  Loop loop;
  switch (ospf.type.value) {
    case kHello:
      ShowRows<Ospf>(in, c, isThree ? RowSpan<Ospf>(kHello3) : RowSpan<Ospf>(kHello2), ospf);
      while (Left(c) >= 4 && MoreAt(in, c, loop)) ShowRows<Ospf>(in, c, kNeighbor, ospf);
      break;
    case kDescription:
      ShowRows<Ospf>(in, c, isThree ? RowSpan<Ospf>(kDescription3) : RowSpan<Ospf>(kDescription2), ospf);
      ShowAdvertisements(in, c, ospf, UINT32_MAX, false);
      break;
    case kRequest:
      while (Left(c) >= 12 && MoreAt(in, c, loop)) {
        const Place under = Under(in, AddLine(in, Ahead(c, 12), "Request"));
        ShowRows<Ospf>(under, c, isThree ? RowSpan<Ospf>(kRequest3) : RowSpan<Ospf>(kRequest2), ospf);
      }
      break;
    case kUpdate: {
      const Field count = TakeU32(c);
      AddLine(in, count, "Number of LSAs: %u", count.value);
      ShowAdvertisements(in, c, ospf, count.value, true);
      break;
    }
    case kAcknowledgement: ShowAdvertisements(in, c, ospf, UINT32_MAX, false); break;
    default: break;
  }
}

// --- behind the packet that the header counts ---

constexpr auto kSignalMasks = SortedNames({{1, "LSDB Resynchronization"}, {2, "Restart Signal"}});
constexpr auto kSignalOptions = Rows<Ospf>({Flags(4, "Extended Options", kSignalMasks)});
constexpr auto kSignalDigest = Rows<Ospf>({Number(4, "Sequence Number"), Bytes(0, "Authentication Data")});
constexpr auto kSignals = Choices<Ospf>({{1, "Extended Options and Flags", kSignalOptions}, {2, "Cryptographic Authentication", kSignalDigest}});

void ShowSignals(const Place& in, Cursor& c, Ospf& ospf) {
  const uint32_t words = PeekU16(c, 2);
  Cursor block = TakeCursor(c, static_cast<int64_t>(words) * 4);
  const Field whole = Ahead(block, Left(block));
  const Place under = Under(in, AddLine(in, whole, "Link-Local Signaling"));
  const Field checksum = TakeU16(block), length = TakeU16(block);
  const bool isPartial = checksum.value == 0 || whole.length != static_cast<int32_t>(words) * 4;
  AddChecksumLine(under, checksum, "Checksum:", isPartial ? "Not Checked" : nullptr,
                  isPartial ? 0 : SumWords(0, whole.bytes, whole.length), BadChecksum::kAlone);
  AddLine(under, length, "Length: %u words, %u bytes", length.value, length.value * 4);
  ShowElements(under, block, kOspfForm, "TLV", kSignals, ospf);
}

constexpr auto kTrailer = Rows<Ospf>({
    Number(2, "Trailer Authentication Type"), Number(2, "Trailer Length").Into(&Ospf::size), Hex(2, "Reserved"),
    Number(2, "Security Association ID"), Number(8, "Trailer Sequence Number")});

void ShowTail(const Place& in, Cursor& c, Ospf& ospf, bool signals, bool trailer) {
  constexpr uint32_t kTrailerHead = 16;
  if (ospf.version.value == 2 && ospf.kind.value >= kCryptographic && ospf.size.value && Left(c)) {
    const int32_t size = static_cast<int32_t>(ospf.size.value);
    const Field digest = TakeBytes(c, size < Left(c) ? size : Left(c));
    AddLine(in, digest, "Message Digest: %s", HexText(digest));
  }
  if (signals && Left(c) >= 4) ShowSignals(in, c, ospf);
  if (trailer && Left(c) >= static_cast<int32_t>(kTrailerHead)) {
    Cursor part = TakeCursor(c, PeekU16(c, 2));
    const Place under = Under(in, AddLine(in, Ahead(part, Left(part)), "Authentication Trailer"));
    ShowRows<Ospf>(under, part, kTrailer, ospf);
    const Field digest = Rest(part);
    AddLine(under, digest, "Trailer Authentication Data: %s", HexText(digest));
  }
  AddBlock(in, Rest(c), "OSPF Data");
}

void AddChecksum(const Place& in, const Field& checksum, const Field& packet, uint32_t version, uint32_t authentication) {
  const NetworkState& network = PacketOf(in).network;
  constexpr int32_t kAuthenticationSize = 8;
  constexpr uint8_t kOspfProtocol = 89;
  const bool isThree = version == 3;
  const char* unchecked = !packet.bytes || network.fragmented ? "Not Checked - Partial Capture"
                          : !isThree && authentication >= kCryptographic ? "Not Used"
                                                                         : nullptr;
  uint32_t sum = 0;
  if (!unchecked && isThree) {
    const PacketState& state = PacketOf(in);   // the packet alone, not what is behind it or a header in front of it
    const uint32_t head = state.source.kind == kIPv6Kind
        ? IPv6PseudoHeadOf(state.source.address, state.destination.address, kOspfProtocol, static_cast<uint32_t>(packet.length))
        : network.pseudoHead;
    sum = SumWords(head, packet.bytes, packet.length);
  } else if (!unchecked) {
    sum = SumWords(0, packet.bytes, kHeader2 - kAuthenticationSize);
    const Field rest = Slice(packet, kHeader2, packet.length - kHeader2);
    if (rest.length) sum = SumWords(sum, rest.bytes, rest.length);
  }
  AddChecksumLine(in, checksum, "Checksum:", unchecked, sum, BadChecksum::kAlone);
}

void ShowAuthentication(const Place& in, Cursor& c, Ospf& ospf) {
  ShowRows<Ospf>(in, c, kAuthentication, ospf);
  const uint32_t kind = ospf.kind.value;
  ShowRows<Ospf>(in, c, kind == 1 ? RowSpan<Ospf>(kPassword) : kind >= kCryptographic ? RowSpan<Ospf>(kCryptographicData)
                                                                                       : RowSpan<Ospf>(kNoAuthentication), ospf);
}

}  // namespace

int32_t DecodeOspf(const Place& at, Cursor c) {
  constexpr uint32_t kSignalBit2 = 0x10, kSignalBit3 = 0x200, kTrailerBit = 0x400;
  const Ospf ahead = PeekRows(c, kHead);
  const bool isThree = ahead.version.value == 3;
  if ((ahead.version.value != 2 && !isThree) || Left(c) < (isThree ? kHeader3 : kHeader2)) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "OSPFv%u %s", ahead.version.value, LookupName(kTypeNames, ahead.type.value)));
  const int32_t header = isThree ? kHeader3 : kHeader2;
  const int32_t length = static_cast<int32_t>(ahead.length.value);
  Cursor packet = TakeCursor(c, length < header ? header : length);
  const Field whole = length >= header && Left(packet) == length ? PeekBytes(packet, 0, length) : Field{};
  Ospf ospf = ShowRows(in, packet, kHead);
  const Field checksum = TakeU16(packet);
  AddChecksum(in, checksum, whole, ospf.version.value, PeekU16(packet));
  if (isThree) ShowRows<Ospf>(in, packet, kInstance, ospf);
  else ShowAuthentication(in, packet, ospf);
  const Ospf outer = ospf;
  ShowBody(in, packet, ospf);
  packet.ranShort = false;
  AddBlock(in, Rest(packet), "OSPF Data");
  Ospf tail = outer;
  const bool hasOptions = outer.type.value == kHello || outer.type.value == kDescription;
  const uint32_t options = hasOptions ? ospf.options.value : 0;
  // Updates and acknowledgements have no options: what is behind them tells itself by its length.
  const bool looksLikeTrailer = PeekU16(c) == 1 && static_cast<int32_t>(PeekU16(c, 2)) == Left(c);
  const bool trailer = isThree && (hasOptions ? (options & kTrailerBit) != 0 : looksLikeTrailer);
  ShowTail(in, c, tail, options & (isThree ? kSignalBit3 : kSignalBit2), trailer);
  return 1;
}

}  // namespace qxview
