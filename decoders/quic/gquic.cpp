// What QUIC was before IETF's version (Q001 to Q049): public headers, frames and the handshake's tagged messages, of which
// the first ones go in clear under a hash. Documented by Google's wire layout and crypto documents
// (draft-tsvwg-quic-protocol-02, draft-hamilton-early-deployment-quic-00).
//
//   public flags   connection ID (8)   version (4)   diversification nonce (32)   packet number (1 to 6)
//   hash (12)   private flags up to Q033   frames
//
// Numbers have their low byte first up to Q038; tags and what they hold keep that order. From Q044 on headers have the
// forms of IETF's drafts.
#include <cstring>

#include "core/crypto.h"
#include "core/line_facts.h"
#include "decoders/quic/gquic.h"

namespace qxview {
namespace {

enum PublicFlags : uint32_t {
  kHasVersion = 0x01, kIsReset = 0x02, kHasNonce = 0x04, kHasId = 0x08, kIdBits = 0x0C, kNumberBits = 0x30, kIsMultipath = 0x40,
  kReservedFlag = 0x80,
};
constexpr uint32_t kFirstWithNonce = 33, kFirstWithNewAck = 34, kFirstBigEndian = 39, kFirstWithPerspective = 37,
                   kFirstLongHeader = 44, kFirstWithFixedBit = 46;
constexpr int32_t kHashSize = 12;

constexpr auto kIdLengthNames = SortedNames({{0, "0 bytes"}, {1, "1 byte"}, {2, "4 bytes"}, {3, "8 bytes"}});
constexpr auto kNumberNames = SortedNames({{0, "1 byte"}, {1, "2 bytes"}, {2, "4 bytes"}, {3, "6 bytes"}});
constexpr auto kPublicFlags = Rows<NoValues>({
    Hex(1, "Public Flags"), Flag(0, "Reserved"), Flag(1, "Multipath"), Bits(2, 2, "Packet Number Length", kNumberNames),
    Bits(4, 2, "Connection ID Length", kIdLengthNames), Flag(6, "Reset"), Flag(7, "Version")});
constexpr auto kPublicFlags33 = Rows<NoValues>({
    Hex(1, "Public Flags"), Flag(0, "Reserved"), Flag(1, "Multipath"), Bits(2, 2, "Packet Number Length", kNumberNames),
    Flag(4, "Connection ID"), Flag(5, "Diversification Nonce"), Flag(6, "Reset"), Flag(7, "Version")});
constexpr auto kPrivateFlags = Rows<NoValues>({
    Hex(1, "Private Flags"), Bits(0, 5, "Reserved"), Flag(5, "FEC"), Flag(6, "FEC Group"), Flag(7, "Entropy")});

constexpr auto kFormNames = SortedNames({{0, "Short Header"}, {1, "Long Header"}});
constexpr auto kLongTypeNames = SortedNames({{0, "Initial"}, {1, "0-RTT Protected"}, {2, "Handshake"}, {3, "Retry"}});
constexpr auto kOldLongTypeNames = SortedNames({
    {0x7C, "0-RTT Protected"}, {0x7D, "Handshake"}, {0x7E, "Retry"}, {0x7F, "Initial"}});
constexpr auto kSizeNames = SortedNames({{0, "1 byte"}, {1, "2 bytes"}, {2, "3 bytes"}, {3, "4 bytes"}});
constexpr auto kLongFirst = Rows<NoValues>({
    Word(1), Bits(0, 1, "Header Form", kFormNames), Flag(1, "Fixed Bit"), Bits(2, 2, "Packet Type", kLongTypeNames),
    Bits(4, 2, "Reserved"), Bits(6, 2, "Packet Number Length", kSizeNames)});
constexpr auto kOldLongFirst = Rows<NoValues>({
    Word(1), Bits(0, 1, "Header Form", kFormNames), Bits(1, 7, "Packet Type", kOldLongTypeNames)});
constexpr auto kShortFirst = Rows<NoValues>({
    Word(1), Bits(0, 1, "Header Form", kFormNames), Flag(1, "Fixed Bit"), Bits(2, 4, "Reserved"),
    Bits(6, 2, "Packet Number Length", kSizeNames)});

// The number in a version's name: 46 of "Q046".
uint32_t NumberOf(uint32_t version) {
  uint32_t number = 0;
  for (int32_t shift = 16; shift >= 0; shift -= 8) {
    const uint32_t digit = (version >> shift & 0xFF) - '0';
    if (digit > 9) return 0;
    number = 10 * number + digit;
  }
  return number;
}

// --- the hash over a packet in clear: FNV-1a of 128 bits, cut to 96 ---

struct Fnv {
  uint64_t high = 0x6C62272E07BB0142, low = 0x62B821756295C58D;
  void Add(const ByteSpan& bytes) {
    for (int32_t i = 0; i < bytes.length; ++i) {
      low ^= bytes.data[i];
      // times 2^88 + 0x13B
#ifdef __SIZEOF_INT128__
      const unsigned __int128 product = static_cast<unsigned __int128>(low) * 0x13B;
      high = high * 0x13B + static_cast<uint64_t>(product >> 64) + (low << 24);
      low = static_cast<uint64_t>(product);
#else
      const uint64_t bottom = (low & 0xFFFFFFFF) * 0x13B, top = (low >> 32) * 0x13B + (bottom >> 32);
      high = high * 0x13B + (top >> 32) + (low << 24);
      low = top << 32 | (bottom & 0xFFFFFFFF);
#endif
    }
  }
  bool Is(const Field& hash) const {
    for (int32_t i = 0; i < kHashSize; ++i) {
      const uint64_t octet = i < 8 ? low >> 8 * i : high >> 8 * (i - 8);
      if (PeekU8(hash, i) != (octet & 0xFF)) return false;
    }
    return true;
  }
};

bool HashHolds(const Field& header, const Field& hash, const Field& frames, uint32_t version, bool fromClient) {
  constexpr uint8_t kSides[2][6] = {{'S', 'e', 'r', 'v', 'e', 'r'}, {'C', 'l', 'i', 'e', 'n', 't'}};
  Fnv fnv;
  fnv.Add(BytesOf(header));
  fnv.Add(BytesOf(frames));
  if (version >= kFirstWithPerspective) fnv.Add({kSides[fromClient], 6});
  return fnv.Is(hash);
}

// --- packets ---

struct Header {
  uint32_t flags;
  bool fromServer;
  Field first;
  Field versionField, nonce;
  WideField id, number;
};

// What is behind the header: the hash and frames in clear, or what is encrypted.
void ShowBody(const Place& in, Cursor& c, const Cursor& whole, uint32_t version, bool fromClient, int32_t numberLength) {
  if (NobodyWants(in)) return static_cast<void>(Rest(c));
  const Field header = PeekBytes(whole, 0, c.offset - whole.offset);
  const Field hash = PeekBytes(c, 0, kHashSize), frames = PeekBytes(c, kHashSize, Left(c) - kHashSize);
  // A cut packet has no hash to hold: what its frames look like tells.
  const bool holds = HashHolds(header, hash, frames, version, fromClient);
  const bool isOpen = holds || (hash.here && (PacketOf(in).network.fragmented || StartsGoogleHandshake(frames, version)));
  if (!hash.here || frames.length < 1 || !isOpen) {
    const Field rest = Rest(c);
    AddLine(in, rest, "Protected Payload: %d bytes", rest.length);
    return;
  }
  const Field taken = TakeBytes(c, kHashSize);
  AddLine(in, taken, "Message Authentication Hash: %s%s", HexDigits(taken), holds ? " (Good)" : "");
  if (version < kFirstWithNewAck) {
    const uint32_t flags = PeekU8(c);
    ShowRows(in, c, kPrivateFlags);
    if (flags & 2) {
      const Field group = TakeU8(c);
      AddLine(in, group, "FEC Group Offset: %u", group.value);
    }
  }
  GoogleFrames shown{version, numberLength, version >= kFirstBigEndian};
  ShowGoogleFrames(in, c, shown);
}

void ShowReset(const Place& in, Cursor& c) {
  ShowGoogleMessage(in, c);
  AddBlock(in, Rest(c), "Data");
}

const char* KindName(const Header& header) {
  if (header.flags & kIsReset) return "Public Reset";
  return header.fromServer && (header.flags & kHasVersion) ? "Version Negotiation" : "Packet";
}

int32_t DecodePublic(const Place& at, Cursor& c, QuicSession& session) {
  const Cursor whole = c;
  Header header{};
  header.first = TakeU8(c);
  header.flags = header.first.value;
  // What the client sent first says its version; a server answers.
  const bool bringsVersion = header.flags & kHasVersion && !(header.flags & kIsReset);
  const uint32_t ahead = PeekU32(c, header.flags & kHasId ? 8 : 0);
  if (bringsVersion && !session.known) {
    session.state.version = ahead;
    session.state.client = static_cast<uint8_t>(session.sender);
    session.known = session.changed = true;
  }
  const uint32_t version = NumberOf(session.state.version);
  const bool isBig = version >= kFirstBigEndian;
  header.fromServer = session.sender != session.state.client;
  if (bringsVersion && !header.fromServer && session.state.version != ahead) {
    session.state.version = ahead;
    session.changed = true;
  }
  constexpr uint8_t kOldIds[] = {0, 1, 4, 8};
  const int32_t idLength = version < kFirstWithNonce ? kOldIds[(header.flags & kIdBits) >> 2] : header.flags & kHasId ? 8 : 0;
  header.id = TakeGoogleNumber(c, idLength, isBig);
  if (c.ranShort) return 0;
  const bool isPlain = !(header.flags & kIsReset) && !(header.fromServer && bringsVersion);
  if (isPlain && bringsVersion) header.versionField = TakeU32(c);
  if (isPlain && header.fromServer && version >= kFirstWithNonce && header.flags & kHasNonce) header.nonce = TakeBytes(c, 32);
  constexpr uint8_t kNumbers[] = {1, 2, 4, 6};
  const int32_t numberLength = kNumbers[(header.flags & kNumberBits) >> 4];
  if (isPlain) header.number = TakeGoogleNumber(c, numberLength, isBig);

  const Place in = Under(at, AddLine(at, Ahead(whole, Left(whole)), "gQUIC: %s, %s", KindName(header),
                                     QuicVersionText(session.state.version)));
  Cursor flags = whole;
  if (version < kFirstWithNonce) {
    ShowRows(in, flags, kPublicFlags);
  } else {
    ShowRows(in, flags, kPublicFlags33);
  }
  if (idLength) AddLine(in, header.id, "Connection ID: %I64u", header.id.wide);
  ShowQuicVersion(in, header.versionField);
  AddLine(in, header.nonce, "Diversification Nonce: %s", HexDigits(header.nonce));
  AddLine(in, header.number, "Packet Number: %I64u", header.number.wide);
  AppendToParent(in, header.number, ", Packet %I64u", header.number.wide);
  const bool isShort = c.ranShort;
  c.ranShort = false;
  if (isShort) {
    AddBlock(in, Rest(c), "Data");
  } else if (header.flags & kIsReset) {
    ShowReset(in, c);
  } else if (!isPlain) {
    ShowSupportedVersions(in, c);
  } else {
    ShowBody(in, c, whole, version, !header.fromServer, numberLength);
  }
  return 1;
}

// Q044 to Q049: IETF's headers of their time, without protection of the packet number.
int32_t DecodeLong(const Place& at, Cursor& c, QuicSession& session) {
  const Cursor whole = c;
  const Field first = TakeU8(c);
  const Field versionField = TakeU32(c);
  const uint32_t version = NumberOf(versionField.value);
  const Field lengths = TakeU8(c);
  const auto sizeOf = [](uint32_t nibble) { return nibble ? static_cast<int32_t>(nibble) + 3 : 0; };
  const WideField to = TakeGoogleNumber(c, sizeOf(lengths.value >> 4), true);
  const WideField from = TakeGoogleNumber(c, sizeOf(lengths.value & 15), true);
  if (c.ranShort) return 0;
  if (!session.known) {
    session.state.client = static_cast<uint8_t>(to.length ? session.sender : 1 - session.sender);
    session.known = session.changed = true;
  }
  if (session.state.version != versionField.value) {
    session.state.version = versionField.value;
    session.changed = true;
  }
  const bool fromClient = session.sender == session.state.client;
  const int32_t numberLength = version < kFirstWithFixedBit ? 4 : static_cast<int32_t>(first.value & 3) + 1;
  const WideField number = TakeGoogleNumber(c, numberLength, true);
  const char* type = version < kFirstWithFixedBit ? LookupName(kOldLongTypeNames, first.value & 0x7F)
                                                  : LookupName(kLongTypeNames, first.value >> 4 & 3);
  const Place in = Under(at, AddLine(at, Ahead(whole, Left(whole)), "gQUIC: %s, %s", type, QuicVersionText(versionField.value)));
  Cursor bits = whole;
  if (version < kFirstWithFixedBit) {
    ShowRows(in, bits, kOldLongFirst);
  } else {
    ShowRows(in, bits, kLongFirst);
  }
  ShowQuicVersion(in, versionField);
  const BitPicture toBits = BitsOf(lengths, 0, 4), fromBits = BitsOf(lengths, 4, 4);
  AddBitLine(in, lengths, "%s: Destination Connection ID Length = %u", toBits.picture, toBits.value);
  AddBitLine(in, lengths, "%s: Source Connection ID Length = %u", fromBits.picture, fromBits.value);
  if (to.length) AddLine(in, to, "Connection ID: %I64u", to.wide);
  if (from.length) AddLine(in, from, "Connection ID: %I64u", from.wide);
  AddLine(in, number, "Packet Number: %I64u", number.wide);
  AppendToParent(in, number, ", Packet %I64u", number.wide);
  Field nonce{};
  if (!fromClient && (first.value >> 4 & 3) == 1 && version >= kFirstWithFixedBit) {
    nonce = TakeBytes(c, 32);
    AddLine(in, nonce, "Diversification Nonce: %s", HexDigits(nonce));
  }
  c.ranShort = false;
  ShowBody(in, c, whole, version, fromClient, numberLength);
  return 1;
}

int32_t DecodeShort(const Place& at, Cursor& c, const QuicSession& session) {
  const Cursor whole = c;
  const uint32_t version = NumberOf(session.state.version);
  const Field first = TakeU8(c);
  const bool fromClient = session.sender == session.state.client;
  const WideField id = TakeGoogleNumber(c, fromClient ? 8 : 0, true);
  constexpr uint8_t kOldNumbers[] = {1, 2, 4, 4};
  const uint32_t code = first.value & 3;
  const int32_t numberLength = version < kFirstWithFixedBit ? kOldNumbers[code] : static_cast<int32_t>(code) + 1;
  const WideField number = TakeGoogleNumber(c, numberLength, true);
  if (c.ranShort) return 0;
  const Place in = Under(at, AddLine(at, Ahead(whole, Left(whole)), "gQUIC: %s, %s", "Short Header",
                                     QuicVersionText(session.state.version)));
  Cursor bits = whole;
  ShowRows(in, bits, kShortFirst);
  if (id.length) AddLine(in, id, "Connection ID: %I64u", id.wide);
  AddLine(in, number, "Packet Number: %I64u", number.wide);
  AppendToParent(in, number, ", Packet %I64u", number.wide);
  ShowBody(in, c, whole, version, fromClient, numberLength);
  return 1;
}

}  // namespace

WideField TakeGoogleNumber(Cursor& c, int32_t size, bool isBig) {
  WideField number{TakeBytes(c, size), 0};
  for (int32_t i = 0; number.here && i < size; ++i) {
    const uint64_t octet = PeekU8(number, isBig ? i : size - 1 - i);
    number.wide = number.wide << 8 | octet;
  }
  number.value = static_cast<uint32_t>(number.wide);
  return number;
}

bool StartsGoogleQuic(const Cursor& c, const QuicSession& session) {
  const uint32_t first = PeekU8(c);
  const bool isKnown = session.known && IsGoogleQuicVersion(session.state.version);
  if (first & kReservedFlag) {
    const uint32_t version = PeekU32(c, 1);
    return IsGoogleQuicVersion(version) && NumberOf(version) >= kFirstLongHeader;
  }
  if (isKnown) return Left(c) > 1;
  if (first & kIsMultipath) return false;
  // Without its connection a packet says what it is by its version, a reset by its message.
  if (!(first & kHasId)) return false;
  if (first & kIsReset) return PeekIs(c, 9, "PRST");
  return (first & kHasVersion) && IsGoogleQuicVersion(PeekU32(c, 9));
}

int32_t DecodeGoogleQuic(const Place& at, Cursor& c, QuicSession& session) {
  const KeyedAs keys(PacketOf(at), "gquic");
  const uint32_t first = PeekU8(c);
  if (first & kReservedFlag) return DecodeLong(at, c, session);
  const bool hasShort = session.known && NumberOf(session.state.version) >= kFirstLongHeader;
  if (hasShort && !(first & kIsReset)) return DecodeShort(at, c, session);
  return DecodePublic(at, c, session);
}

}  // namespace qxview
