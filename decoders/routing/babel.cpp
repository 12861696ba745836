// Babel (RFC 8966; authentication: RFC 8967, source-specific routes: RFC 9079, IPv4 by way of IPv6: RFC 9229, delays:
// RFC 9616): distance vector routing without loops, for wired and mesh networks.
//
//   magic (1)   version (1)   body length (2)   body and trailer: TLVs of type (1), length (1), value
//
// Prefixes leave out the octets that an earlier update of the packet has told for their encoding.
#include "core/elements.h"

namespace qxview {
namespace {

constexpr uint32_t kMagic = 42;
constexpr uint32_t kIPv4Encoding = 1, kIPv6Encoding = 2, kLinkLocalEncoding = 3, kIPv4ViaIPv6Encoding = 4;
constexpr int32_t kEncodings = 5;

constexpr auto kEncodingNames = SortedNames({
    {0, "Wildcard"}, {1, "IPv4"}, {2, "IPv6"}, {3, "Link-Local IPv6"}, {4, "IPv4 via IPv6"}});

struct Babel {
  Field encoding, flags, length, omitted;
  uint8_t told[kEncodings][16];   // the prefix that later ones of an encoding go on from
};

constexpr auto kHead = Rows<Babel>({Number(1, "Magic"), Number(1, "Version"), Number(2, "Body Length")});
constexpr auto kZeros = Rows<Babel>({Bytes(0, "Padding")});
constexpr auto kAsking = Rows<Babel>({
    Hex(2, "Reserved"), Hex(2, "Opaque"), Number(2, "Interval", " centiseconds").Note(", %u centiseconds")});
constexpr auto kAnswer = Rows<Babel>({Hex(2, "Opaque")});
constexpr auto kHello = Rows<Babel>({
    Hex(2, "Flags"), Flag(0, "Unicast"), Bits(1, 15, "Reserved"), Number(2, "Sequence Number").Note(", Number %u"),
    Number(2, "Interval", " centiseconds").Note(", %u centiseconds")});
constexpr auto kHeard = Rows<Babel>({
    Number(1, "Address Encoding", kEncodingNames).Into(&Babel::encoding), Hex(1, "Reserved"),
    Number(2, "Receive Cost").Note(", Cost %u"), Number(2, "Interval", " centiseconds")});
constexpr auto kRouter = Rows<Babel>({Hex(2, "Reserved"), Eui64("Router ID").Note(", %s")});
constexpr auto kNextHop = Rows<Babel>({
    Number(1, "Address Encoding", kEncodingNames).Into(&Babel::encoding), Hex(1, "Reserved")});
constexpr auto kUpdate = Rows<Babel>({
    Number(1, "Address Encoding", kEncodingNames).Into(&Babel::encoding), Hex(1, "Flags").Into(&Babel::flags),
    Flag(0, "Prefix Is Default"), Flag(1, "Router ID from Address"), Bits(2, 6, "Reserved"),
    Number(1, "Prefix Length").Into(&Babel::length), Number(1, "Omitted Octets").Into(&Babel::omitted),
    Number(2, "Interval", " centiseconds"), Number(2, "Sequence Number"), Number(2, "Metric").Note(", Metric %u")});
constexpr auto kRequest = Rows<Babel>({
    Number(1, "Address Encoding", kEncodingNames).Into(&Babel::encoding),
    Number(1, "Prefix Length").Into(&Babel::length)});
constexpr auto kNumberRequest = Rows<Babel>({
    Number(1, "Address Encoding", kEncodingNames).Into(&Babel::encoding),
    Number(1, "Prefix Length").Into(&Babel::length), Number(2, "Sequence Number"), Number(1, "Hop Count"),
    Hex(1, "Reserved"), Eui64("Router ID")});
constexpr auto kSourceUpdate = Rows<Babel>({
    Number(1, "Address Encoding", kEncodingNames).Into(&Babel::encoding),
    Number(1, "Prefix Length").Into(&Babel::length), Number(1, "Source Prefix Length").Into(&Babel::flags),
    Number(1, "Omitted Octets").Into(&Babel::omitted), Number(2, "Interval", " centiseconds"),
    Number(2, "Sequence Number"), Number(2, "Metric").Note(", Metric %u")});
constexpr auto kSourceRequest = Rows<Babel>({
    Number(1, "Address Encoding", kEncodingNames).Into(&Babel::encoding),
    Number(1, "Prefix Length").Into(&Babel::length), Number(1, "Source Prefix Length").Into(&Babel::flags)});
constexpr auto kSourceNumberRequest = Rows<Babel>({
    Number(1, "Address Encoding", kEncodingNames).Into(&Babel::encoding),
    Number(1, "Prefix Length").Into(&Babel::length), Number(2, "Sequence Number"), Number(1, "Hop Count"),
    Number(1, "Source Prefix Length").Into(&Babel::flags), Eui64("Router ID")});
constexpr auto kOldCounter = Rows<Babel>({Number(2, "Packet Counter"), UnixTime(4, "Timestamp")});
constexpr auto kOldDigest = Rows<Babel>({Number(2, "Key ID"), Bytes(0, "Digest")});
constexpr auto kMac = Rows<Babel>({Bytes(0, "MAC")});
constexpr auto kCounter = Rows<Babel>({Number(4, "Packet Counter").Note(", %u"), Bytes(0, "Index")});
constexpr auto kNonce = Rows<Babel>({Bytes(0, "Nonce")});
constexpr auto kChannels = Rows<Babel>({Bytes(0, "Channels")});
constexpr auto kSent = Rows<Babel>({Number(4, "Transmit Timestamp", " microseconds")});
constexpr auto kEchoed = Rows<Babel>({
    Number(4, "Origin Timestamp", " microseconds"), Number(4, "Receive Timestamp", " microseconds")});

int32_t AddressSize(uint32_t encoding) {
  return encoding == kIPv4Encoding || encoding == kIPv4ViaIPv6Encoding ? 4
         : encoding == kIPv6Encoding                                   ? 16
         : encoding == kLinkLocalEncoding                              ? 8
                                                                       : 0;
}
// An address as it is written; those of the link have the prefix fe80::/64 in front.
void AddText(const Place& in, const Field& line, const char* label, const uint8_t* address, uint32_t encoding) {
  if (AddressSize(encoding) == 4) {
    AddLine(in, line, "%s: %s", label, IPv4Text(address));
    AppendToParent(in, line, ", %s", IPv4Text(address));
  } else {
    AddLine(in, line, "%s: %s", label, IPv6Text(address));
    AppendToParent(in, line, ", %s", IPv6Text(address));
  }
}
void MakeLinkLocal(const Field& interface, uint8_t (&address)[16]) {
  address[0] = 0xFE;
  address[1] = 0x80;
  for (int32_t i = 0; i < 8; ++i) address[8 + i] = static_cast<uint8_t>(PeekU8(interface, i));
}

void ShowAddress(const Place& in, Cursor& c, Babel& babel) {
  const uint32_t encoding = babel.encoding.value;
  const int32_t size = AddressSize(encoding);
  if (!size) return;
  const Field taken = TakeBytes(c, size);
  if (!taken.here) return;
  uint8_t local[16] = {};
  if (encoding == kLinkLocalEncoding) MakeLinkLocal(taken, local);
  AddText(in, taken, "Address", encoding == kLinkLocalEncoding ? local : taken.bytes, encoding);   // keys: text Address
}

// A prefix behind `omitted` octets of the one that was told before.
void ShowShortPrefix(const Place& in, Cursor& c, const char* label, uint32_t bits, uint32_t omitted, Babel& babel) {
  const uint32_t encoding = babel.encoding.value;
  const int32_t wanted = static_cast<int32_t>((bits + 7) / 8), known = static_cast<int32_t>(omitted);
  if (!AddressSize(encoding)) return;
  const Field taken = TakeBytes(c, wanted > known ? wanted - known : 0);
  if (!taken.here) return;
  uint8_t prefix[16] = {};
  if (encoding == kLinkLocalEncoding) {
    MakeLinkLocal(taken, prefix);
  } else {
    for (int32_t i = 0; i < known && i < 16 && omitted; ++i) prefix[i] = babel.told[encoding][i];
    for (int32_t i = 0; i < taken.length && known + i < 16; ++i) prefix[known + i] = static_cast<uint8_t>(PeekU8(taken, i));
  }
  const Field line = taken.length ? taken : Stated(c.offset, 0);
  if (AddressSize(encoding) == 4) {
    AddLine(in, line, "%s: %s/%u", label, IPv4Text(prefix), bits);
    AppendToParent(in, line, ", %s/%u", IPv4Text(prefix), bits);
  } else {
    AddLine(in, line, "%s: %s/%u", label, IPv6Text(prefix), bits);
    AppendToParent(in, line, ", %s/%u", IPv6Text(prefix), bits);
  }
  constexpr uint32_t kIsDefault = 0x80;
  if (babel.omitted.here && babel.flags.value & kIsDefault) {
    for (int32_t i = 0; i < 16; ++i) babel.told[encoding][i] = prefix[i];
  }
}
void ShowTold(const Place& in, Cursor& c, Babel& babel) {
  ShowShortPrefix(in, c, "Prefix", babel.length.value, babel.omitted.value, babel);   // keys: text Prefix
}
void ShowAsked(const Place& in, Cursor& c, Babel& babel) { ShowShortPrefix(in, c, "Prefix", babel.length.value, 0, babel); }
void ShowWithSource(const Place& in, Cursor& c, Babel& babel) {
  const uint32_t omitted = babel.omitted.value, source = babel.flags.value;
  babel.omitted.here = false;
  ShowShortPrefix(in, c, "Prefix", babel.length.value, omitted, babel);
  ShowShortPrefix(in, c, "Source Prefix", source, 0, babel);   // keys: text Source Prefix
}

void ShowSourcePrefix(const Place& in, Cursor& c, Babel& babel) {
  const Field bits = TakeU8(c);
  AddLine(in, bits, "Source Prefix Length: %u", bits.value);
  Babel source = babel;
  source.omitted.here = false;
  ShowShortPrefix(in, c, "Source Prefix", bits.value, 0, source);
}
void ShowTimes(const Place& in, Cursor& c, Babel& babel) {
  ShowRows<Babel>(in, c, Left(c) >= 8 ? RowSpan<Babel>(kEchoed) : RowSpan<Babel>(kSent), babel);
}

constexpr ElementForm kForm{.padType = 0};
constexpr auto kSubTlvs = Choices<Babel>({
    {0, "Pad1"}, {1, "PadN", kZeros}, {2, "Diversity", kChannels}, {3, "Timestamp", {}, ShowTimes},
    {128, "Source Prefix", {}, ShowSourcePrefix}});

void ShowSubs(const Place& in, Cursor& c, Babel& babel) {
  ShowElements<Babel>(in, c, kForm, "Sub-TLV", kSubTlvs, babel);
}
template <void (*show)(const Place& in, Cursor& c, Babel& babel)>
void ShowAndSubs(const Place& in, Cursor& c, Babel& babel) {
  show(in, c, babel);
  ShowSubs(in, c, babel);
}

constexpr auto kTlvs = Choices<Babel>({
    {0, "Pad1"}, {1, "PadN", kZeros}, {2, "Acknowledgment Request", kAsking, ShowSubs},
    {3, "Acknowledgment", kAnswer, ShowSubs}, {4, "Hello", kHello, ShowSubs}, {5, "IHU", kHeard, ShowAndSubs<ShowAddress>},
    {6, "Router-Id", kRouter, ShowSubs}, {7, "Next Hop", kNextHop, ShowAndSubs<ShowAddress>},
    {8, "Update", kUpdate, ShowAndSubs<ShowTold>}, {9, "Route Request", kRequest, ShowAndSubs<ShowAsked>},
    {10, "Seqno Request", kNumberRequest, ShowAndSubs<ShowAsked>}, {11, "TS/PC", kOldCounter}, {12, "HMAC", kOldDigest},
    {13, "Source-Specific Update", kSourceUpdate, ShowWithSource},
    {14, "Source-Specific Request", kSourceRequest, ShowWithSource},
    {15, "Source-Specific Seqno Request", kSourceNumberRequest, ShowWithSource}, {16, "MAC", kMac}, {17, "PC", kCounter},
    {18, "Challenge Request", kNonce}, {19, "Challenge Reply", kNonce}});

// Values of one TLV are none of the next, but prefixes stay told.
void ShowTlvs(const Place& in, Cursor& c, Babel& babel) {
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const int32_t size = PeekU8(c) == 0 ? 1 : 2 + static_cast<int32_t>(PeekU8(c, 1));
    Cursor one = TakeCursor(c, size);
    babel.encoding = babel.flags = babel.length = babel.omitted = Field{};
    ShowElements<Babel>(in, one, kForm, "TLV", kTlvs, babel);
    one.ranShort = false;   // a type without its length
    AddBlock(in, Rest(one), "Babel Data");
  }
}

}  // namespace

int32_t DecodeBabel(const Place& at, Cursor c) {
  constexpr int32_t kHeaderSize = 4;
  if (Left(c) < kHeaderSize || PeekU8(c) != kMagic) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "Babel: Version %u", PeekU8(c, 1)));
  const uint32_t size = PeekU16(c, 2);
  Babel babel = ShowRows(in, c, kHead);
  Cursor body = TakeCursor(c, size);
  ShowTlvs(in, body, babel);
  if (Left(c)) {
    const Place trailer = Under(in, AddLine(in, Ahead(c, Left(c)), "Packet Trailer: %d bytes", Left(c)));
    ShowTlvs(trailer, c, babel);
  }
  return 1;
}

}  // namespace qxview
