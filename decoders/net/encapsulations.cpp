// The thin encapsulations of IP and UDP, which add a word or nothing at all: IP in IP by its older numbers (4, 94), Ethernet
// in IP (RFC 3378), MPLS in IP (RFC 4023) and in UDP (RFC 7510), foo over UDP (any protocol of IP behind UDP), generic UDP
// encapsulation (draft-ietf-intarea-gue) and the tunnels of transition: Teredo (RFC 4380, 6081), AYIYA (draft-massar-v6ops-ayiya).
#include "core/elements.h"
#include "decoders/common/ahead_cut.h"
#include "decoders/link/carried.h"
#include "decoders/net/ip_protocol_names.h"

namespace qxview {
namespace {

const char* NameProtocol(uint32_t protocol) { return IpProtocolName(protocol); }

struct Encapsulation {
  Field control, words, protocol, flags, size;
};
constexpr auto kEtherIp = Rows<Encapsulation>({Word(2), Bits(0, 4, "Version"), Bits(4, 12, "Reserved")});

constexpr auto kControlNames = SortedNames({{0, "Data"}, {1, "Control"}});
constexpr auto kGue = Rows<Encapsulation>({
    Word(1), Bits(0, 2, "Version"), Bits(2, 1, "Message Type", kControlNames).Into(&Encapsulation::control),
    Bits(3, 5, "Header Length", " words").Into(&Encapsulation::words)});
constexpr auto kGueData = Rows<Encapsulation>({
    Number(1, "Protocol", NameProtocol).Note(", %s").Into(&Encapsulation::protocol)});
constexpr auto kGueControl = Rows<Encapsulation>({Number(1, "Control Type").Into(&Encapsulation::protocol)});
constexpr auto kGueFlags = Rows<Encapsulation>({
    Hex(2, "Flags").Into(&Encapsulation::flags), Flag(0, "Group Identifier"), Bits(1, 3, "Security"),
    Flag(4, "Fragmentation"), Flag(5, "Payload Transform"), Flag(6, "Remote Checksum Offload"), Flag(7, "Checksum"),
    Flag(15, "Private or Extended Fields")});

// Optional fields, in the order of their flags (draft-ietf-intarea-gue-extensions).
constexpr auto kGroupRow = Rows<Encapsulation>({Hex(4, "Group Identifier")});
constexpr auto kFragmentRow = Rows<Encapsulation>({
    Word(2), Bits(0, 13, "Fragment Offset", " x 8 bytes"), Bits(13, 2, "Reserved"), Flag(15, "More Fragments"),
    Number(1, "Original Protocol", NameProtocol), Hex(5, "Identification")});
constexpr auto kTransformRow = Rows<Encapsulation>({
    Number(1, "Transform Type"), Number(1, "Payload Protocol", NameProtocol), Hex(2, "Transform Data")});
constexpr auto kRemoteRow = Rows<Encapsulation>({Number(2, "Checksum Start"), Number(2, "Checksum Offset")});
constexpr auto kChecksumRow = Rows<Encapsulation>({Hex(2, "Checksum"), Number(2, "Payload Coverage", " bytes")});
constexpr auto kPrivateRow = Rows<Encapsulation>({Hex(4, "Private Flags")});

constexpr auto kDiscoveryNames = SortedNames({{0, "Discovery Solicitation"}, {1, "Discovery Advertisement"}});
constexpr auto kNonceTrailer = Rows<Encapsulation>({Hex(4, nullptr)});
constexpr auto kReservedTrailer = Rows<Encapsulation>({Hex(2, "Reserved")});
constexpr auto kAlternate = Rows<Encapsulation>({IPv4("Alternate Address"), Number(2, "Alternate Port")});
constexpr auto kNeighbourTrailer = Rows<Encapsulation>({
    Number(1, "Discovery Type", kDiscoveryNames), Hex(3, "Reserved")});
constexpr auto kPortTrailer = Rows<Encapsulation>({Number(2, nullptr)});
void ShowAlternates(const Place& in, Cursor& c, Encapsulation& out) {
  Loop loop;
  while (Left(c) >= 6 && MoreAt(in, c, loop)) ShowRows<Encapsulation>(in, c, kAlternate, out);
}
constexpr auto kTrailers = Choices<Encapsulation>({
    {1, "Nonce", kNonceTrailer}, {3, "Alternate Address", kReservedTrailer, ShowAlternates},
    {4, "Neighbor Discovery Option", kNeighbourTrailer}, {5, "Random Port", kPortTrailer}});

constexpr auto kConfirmationNames = SortedNames({{0, "Secure"}, {1, "Key Needs Refreshing"}});
constexpr auto kTeredoAuthentication = Rows<Encapsulation>({
    Hex(2, "Indicator"), Number(1, "Client ID Length"), Number(1, "Authentication Length")});
constexpr auto kTeredoNonce = Rows<Encapsulation>({
    Bytes(8, "Nonce"), Number(1, "Confirmation", kConfirmationNames)});
constexpr auto kTeredoOrigin = Rows<Encapsulation>({Hex(2, "Indicator")});

constexpr auto kIdentityNames = SortedNames({
    {0, "None"}, {1, "Integer"}, {2, "ASCII Text"}, {3, "Reserved"}});
constexpr auto kHashNames = SortedNames({{0, "None"}, {1, "MD5"}, {2, "SHA-1"}});
constexpr auto kSignerNames = SortedNames({{0, "None"}, {1, "Shared Secret"}, {2, "Public and Private Key"}});
constexpr auto kOperationNames = SortedNames({
    {0, "No Operation or Heartbeat"}, {1, "Forward"}, {2, "Echo Request"}, {3, "Echo Request and Forward"},
    {4, "Echo Response"}, {5, "MOTD"}, {6, "Query Request"}, {7, "Query Response"}});
constexpr auto kAyiya = Rows<Encapsulation>({
    Word(2), Bits(0, 4, "Identity Length", " (power of two)"), Bits(4, 4, "Identity Type", kIdentityNames),
    Bits(8, 4, "Signature Length", " words"), Bits(12, 4, "Hash Method", kHashNames), Word(1),
    Bits(0, 4, "Authentication Method", kSignerNames),
    Bits(4, 4, "Operation", kOperationNames), Number(1, "Next Header", NameProtocol).Into(&Encapsulation::protocol),
    UnixTime(4, "Epoch Time")});

void ShowGueOptions(const Place& in, Cursor c, Encapsulation& gue) {
  constexpr uint32_t kGroup = 0x8000, kSecurity = 0x7000, kFragmentation = 0x0800, kTransform = 0x0400, kRemote = 0x0200,
                     kChecksum = 0x0100, kPrivate = 0x0001;
  const uint32_t flags = gue.flags.value, security = (flags & kSecurity) >> 12;
  const auto show = [&](uint32_t flag, RowSpan<Encapsulation> rows) {
    if (flags & flag) ShowRows<Encapsulation>(in, c, rows, gue);
  };
  show(kGroup, kGroupRow);
  if (security > 0 && security < 4) {   // 8, 16 or 32 bytes
    const Field cookie = TakeBytes(c, 4 << security);
    AddLine(in, cookie, "Security: %s", HexText(cookie));
  }
  show(kFragmentation, kFragmentRow);
  show(kTransform, kTransformRow);
  show(kRemote, kRemoteRow);
  show(kChecksum, kChecksumRow);
  show(kPrivate, kPrivateRow);
  c.ranShort = false;
  const Field rest = Rest(c);
  if (rest.length > 0) AddLine(in, rest, "Optional Fields: %s", HexText(rest));
}

int32_t DecodeNext(const Place& network, const Cursor& c, uint32_t protocol, const char* title) {
  if (protocol == 4 || protocol == 41) return DecodeCarriedFrame(network, c, Carried::kIp, title);
  PacketOf(network).ipProtocol = static_cast<uint8_t>(protocol);
  PacketOf(network).network.totalLength = Left(c);
  ReachLayer(network, DispatchTable::kIpProtocol, protocol, c);
  const DecoderRow* row = FindIpProtocol(static_cast<uint8_t>(protocol));
  if (!row) row = FindIPv6NextHeader(static_cast<uint8_t>(protocol));
  CallDecoder(network, c, row ? row->decode : nullptr, title);
  return 1;
}

// The authentication of Teredo's qualification: identifier and value of told lengths, a nonce.
void ShowTeredoAuthentication(const Place& at, Cursor& c) {
  const int32_t client = static_cast<int32_t>(PeekU8(c, 2)), value = static_cast<int32_t>(PeekU8(c, 3));
  const Place in = Under(at, AddLine(at, AheadCut(c, 13 + client + value), "Teredo Authentication"));
  ShowRows(in, c, kTeredoAuthentication);
  const Field identifier = TakeBytes(c, client), authentication = TakeBytes(c, value);
  if (client > 0) AddLine(in, identifier, "Client ID: %s", HexText(identifier));
  if (value > 0) AddLine(in, authentication, "Authentication Value: %s", HexText(authentication));
  ShowRows(in, c, kTeredoNonce);
}

// Port and address as the server saw them, their bits turned so that no translator changes them.
void ShowTeredoOrigin(const Place& at, Cursor& c) {
  const Place in = Under(at, AddLine(at, Ahead(c, 8), "Teredo Origin Indication"));
  ShowRows(in, c, kTeredoOrigin);
  const Field port = TakeU16(c), address = TakeU32(c);
  AddLine(in, port, "Origin UDP Port: %u", port.value ^ 0xFFFF);
  const uint32_t turned = ~address.value;
  AddLine(in, address, "Origin IPv4 Address: %u.%u.%u.%u", turned >> 24, turned >> 16 & 255, turned >> 8 & 255,
          turned & 255);
}

}  // namespace

int32_t DecodeIpInIp(const Place& at, Cursor c) {
  return PeekU8(c) >> 4 == 4 || PeekU8(c) >> 4 == 6 ? DecodeCarriedFrame(at, c, Carried::kIp, "Data") : 0;
}

int32_t DecodeEtherIp(const Place& at, Cursor c) {
  if (Left(c) < 2) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, 2), "EtherIP: Version %u", PeekU8(c) >> 4));
  ShowRows(in, c, kEtherIp);
  return DecodeCarriedFrame(Deeper(at), c, Carried::kEthernet, "EtherIP Data");
}

// In UDP a label stack follows at once, which has to end within the datagram.
int32_t DecodeMplsInUdp(const Place& at, Cursor c) {
  bool ends = false;
  for (int32_t label = 0; !ends && 4 * label + 4 <= Left(c) && label < kMostNesting; ++label) {
    ends = PeekU8(c, 4 * label + 2) & 1;
  }
  return ends ? DecodeCarriedFrame(at, c, Carried::kMpls, "MPLS Data") : 0;
}

// Behind UDP a protocol of IP that the port stands for; IP and GRE show which by their first bits.
int32_t DecodeFooOverUdp(const Place& at, Cursor c) {
  constexpr uint32_t kIpIp = 4, kGre = 47;
  const uint32_t nibble = PeekU8(c) >> 4;
  if (Left(c) < 4) return 0;
  const bool isIp = nibble == 4 || nibble == 6;
  if (!isIp && (PeekU8(c, 1) & 7) > 1) return 0;
  AddLine(at, Ahead(c, 0), "Foo over UDP: %s", isIp ? "IP" : "GRE");
  return DecodeNext(Deeper(at), c, isIp ? kIpIp : kGre, "FOU Data");
}

int32_t DecodeGue(const Place& at, Cursor c) {
  constexpr int32_t kHeader = 4;
  const uint32_t version = PeekU8(c) >> 6;
  if (Left(c) < kHeader || version > 1) return 0;
  if (version == 1) {   // no header: the first bits are those of IP's own version
    AddLine(at, Ahead(c, 0), "GUE: Version 1, IP");
    return DecodeCarriedFrame(Deeper(at), c, Carried::kIp, "GUE Data");
  }
  const bool isControl = PeekU8(c) & 0x20;
  const Place in = Under(at, AddLine(at, Ahead(c, kHeader), "GUE: Version 0%s", isControl ? ", Control" : ""));
  Encapsulation gue{};
  ShowRows<Encapsulation>(in, c, kGue, gue);
  ShowRows<Encapsulation>(in, c, isControl ? RowSpan<Encapsulation>(kGueControl) : RowSpan<Encapsulation>(kGueData), gue);
  ShowRows<Encapsulation>(in, c, kGueFlags, gue);
  ShowGueOptions(in, TakeCursor(c, int64_t{gue.words.value} * 4), gue);
  CoverBytes(in, c);
  if (isControl) {
    AddBlock(in, Rest(c), "Control Data");
    return 1;
  }
  return DecodeNext(Deeper(at), c, gue.protocol.value, "GUE Data");
}

int32_t DecodeTeredo(const Place& at, Cursor c) {
  constexpr uint32_t kAuthentication = 0x0001, kOrigin = 0x0000;
  constexpr int64_t kIpv6Header = 40;
  const uint32_t first = PeekU16(c);
  if (Left(c) < 8 || (first != kAuthentication && first != kOrigin && PeekU8(c) >> 4 != 6)) return 0;
  const Cursor start = c;
  const Place in = Under(at, AddLine(at, Ahead(c, 0), "Teredo: IPv6 over UDP%s%s",
                                     first == kAuthentication ? ", Authentication" : "",
                                     first == kOrigin ? ", Origin Indication" : ""));
  if (first == kAuthentication) ShowTeredoAuthentication(in, c);
  if (Left(c) >= 8 && PeekU16(c) == kOrigin) ShowTeredoOrigin(in, c);
  if (in.parent && c.offset > start.offset) CoverBytes(in, c);
  Cursor packet = TakeCursor(c, kIpv6Header + static_cast<int64_t>(PeekU16(c, 4)));
  DecodeCarriedFrame(Deeper(at), packet, Carried::kIp, "Teredo Data");
  if (Left(c) < 2) return 1;
  const Place trailers = Under(at, AddLine(at, Ahead(c, Left(c)), "Teredo Trailers"));
  constexpr ElementForm kTrailerForm{};
  Encapsulation out{};
  ShowElements<Encapsulation>(trailers, c, kTrailerForm, "Trailer", kTrailers, out);
  AddBlock(trailers, Rest(c), "Trailer Data");
  return 1;
}

int32_t DecodeAyiya(const Place& at, Cursor c) {
  constexpr int32_t kHeader = 8;
  if (Left(c) < kHeader) return 0;
  const int32_t identity = 1 << (PeekU8(c) >> 4), signature = static_cast<int32_t>(PeekU8(c, 1) >> 4) * 4;
  if (Left(c) < kHeader + identity + signature) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, kHeader), "AYIYA: %s, %s", LookupName(kOperationNames, PeekU8(c, 2) & 15),
                                     IpProtocolName(PeekU8(c, 3))));
  const Encapsulation ayiya = ShowRows(in, c, kAyiya);
  const Field name = TakeBytes(c, identity), sign = TakeBytes(c, signature);
  AddLine(in, name, "Identity: %s", HexText(name));
  if (signature > 0) AddLine(in, sign, "Signature: %s", HexText(sign));
  CoverBytes(in, c);
  return DecodeNext(Deeper(at), c, ayiya.protocol.value, "AYIYA Data");
}

}  // namespace qxview
