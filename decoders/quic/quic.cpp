// QUIC (RFC 9000, RFC 9369, invariants: RFC 8999), its drafts, and what came before them: packets, coalesced ones among
// them, in a datagram.
//
//   long header:   1 F T T x x P P   version (4)   DCID length, DCID   SCID length, SCID   [token]   length   packet number
//   short header:  0 F S x x K P P   DCID                                                                     packet number
//
// What x, K, P and the packet number hold is under the header protection. Where the keys are known, and those of Initial
// packets always are, the frames within are shown; elsewhere what is protected is a line.
#include "decoders/quic/quic.h"

#include <cstring>

#include "decoders/quic/quic_frames.h"
#include "decoders/quic/quic_secrets.h"
#include "decoders/states.h"

namespace qxview {
namespace {

constexpr uint32_t kLongForm = 0x80, kFixedBit = 0x40;
constexpr uint32_t kLastDraftWithNibbles = 21;    // the lengths of both IDs in one byte
constexpr uint32_t kLastDraftWithOriginal = 24;   // Retry says the first ID in place of a tag over it

constexpr auto kFormNames = SortedNames({{0, "Short Header"}, {1, "Long Header"}});
constexpr auto kTypeNames = SortedNames({{0, "Initial"}, {1, "0-RTT"}, {2, "Handshake"}, {3, "Retry"}});
constexpr auto kType2Names = SortedNames({{0, "Retry"}, {1, "Initial"}, {2, "0-RTT"}, {3, "Handshake"}});
constexpr auto kNumberSizeNames = SortedNames({{0, "1 byte"}, {1, "2 bytes"}, {2, "3 bytes"}, {3, "4 bytes"}});
constexpr auto kFirst = Rows<NoValues>({
    Word(1), Bits(0, 1, "Header Form", kFormNames), Flag(1, "Fixed Bit"), Bits(2, 2, "Packet Type", kTypeNames)});
constexpr auto kFirst2 = Rows<NoValues>({
    Word(1), Bits(0, 1, "Header Form", kFormNames), Flag(1, "Fixed Bit"), Bits(2, 2, "Packet Type", kType2Names)});
constexpr auto kOpenedBits = Rows<NoValues>({
    Word(1), Bits(4, 2, "Reserved"), Bits(6, 2, "Packet Number Length", kNumberSizeNames)});
constexpr auto kRetryBits = Rows<NoValues>({Word(1), Bits(4, 4, "Unused")});
constexpr auto kFirstShort = Rows<NoValues>({
    Word(1), Bits(0, 1, "Header Form", kFormNames), Flag(1, "Fixed Bit"), Flag(2, "Spin Bit")});
constexpr auto kFirstNegotiation = Rows<NoValues>({
    Word(1), Bits(0, 1, "Header Form", kFormNames), Bits(1, 7, "Unused")});

// A long header up to the version's own part.
struct LongHeader {
  uint32_t version;
  QuicKind kind;
  bool hasNibbles;
  Field first, versionField, nibbles, destinationLength, destination, sourceLength, source;
};

QuicKind KindOf(uint32_t version, uint32_t first) {
  constexpr QuicKind kKinds[] = {QuicKind::kInitial, QuicKind::kZeroRtt, QuicKind::kHandshake, QuicKind::kRetry};
  const uint32_t type = first >> 4 & 3;
  if (version == 0) return QuicKind::kNegotiation;
  return kKinds[version == kQuicVersion2 ? (type + 3) % 4 : type];
}
const char* NameOf(QuicKind kind) {
  constexpr const char* kNames[] = {"Initial", "0-RTT", "Handshake", "Retry", "1-RTT", "Version Negotiation"};
  return kNames[static_cast<int32_t>(kind)];
}

// The connection of the packet, or a new one of the end that it came from.
QuicSession FindSession(const Place& at) {
  QuicSession session{};
  session.key = ConnectionOf(PacketOf(at), &session.sender);
  const QuicConnection* known = Recall(at.view, kQuicConnections, session.key);
  session.known = known != nullptr;
  if (known) {
    session.state = *known;
  } else {
    session.state.client = static_cast<uint8_t>(session.sender);
    session.state.idLength[0] = session.state.idLength[1] = kQuicIdUnknown;
  }
  return session;
}

QuicIdKey IdKeyOf(const Field& id) {
  const QuicId own = QuicIdOf(id);
  QuicIdKey key{{}, own.length};
  std::memcpy(key.octets, own.octets, own.length);
  return key;
}

// A short header between ports that no long one was seen of: a client that moved. Its ID leads to the connection.
bool FindMoved(const Place& at, const Cursor& c, QuicSession& session) {
  constexpr int32_t kLeast = 4;
  for (int32_t length = kMostQuicId; length >= kLeast; --length) {
    const Field id = PeekBytes(c, 1, length);
    if (!id.here) continue;
    const QuicIdOwner* owner = Recall(at.view, kQuicIds, IdKeyOf(id));
    if (!owner) continue;
    session.key = owner->connection;
    session.sender = 1 - owner->end;
    const QuicConnection* known = Recall(at.view, kQuicConnections, session.key);
    if (!known) return false;
    session.state = *known;
    session.known = true;
    return true;
  }
  return false;
}

bool TakeLongHeader(Cursor& c, LongHeader& out) {
  out.first = TakeU8(c);
  out.versionField = TakeU32(c);
  out.version = out.versionField.value;
  out.kind = KindOf(out.version, out.first.value);
  const uint32_t draft = QuicDraftOf(out.version);
  out.hasNibbles = draft > 0 && draft <= kLastDraftWithNibbles;
  if (out.hasNibbles) {
    const auto sizeOf = [](uint32_t nibble) { return nibble ? nibble + 3 : 0; };
    out.nibbles = TakeU8(c);
    out.destination = TakeBytes(c, sizeOf(out.nibbles.value >> 4));
    out.source = TakeBytes(c, sizeOf(out.nibbles.value & 15));
  } else {
    out.destinationLength = TakeU8(c);
    out.destination = TakeBytes(c, out.destinationLength.value);
    out.sourceLength = TakeU8(c);
    out.source = TakeBytes(c, out.sourceLength.value);
  }
  return !c.ranShort;
}

// What a long header tells of its connection.
void LearnFrom(const Place& at, const LongHeader& header, QuicSession& session) {
  QuicConnection& state = session.state;
  if (!session.known) {
    if (header.kind == QuicKind::kNegotiation || header.kind == QuicKind::kRetry) {
      state.client = static_cast<uint8_t>(1 - session.sender);
    }
    session.known = session.changed = true;
  }
  if (header.kind != QuicKind::kNegotiation && state.version != header.version) {
    state.version = header.version;
    session.changed = true;
  }
  if (header.source.length <= kMostQuicId && state.idLength[session.sender] != header.source.length) {
    state.idLength[session.sender] = static_cast<uint8_t>(header.source.length);
    session.changed = true;
    RememberQuicId(at, header.source, session);
  }
  const bool fromClient = session.sender == state.client;
  if (fromClient && state.original.length == 0 && header.kind == QuicKind::kInitial) {
    state.original = QuicIdOf(header.destination);
    session.changed = true;
  }
}

// --- lines ---

// The byte that the header protection was taken off, where the first byte stands in the frame.
Cursor OpenedFirst(const Field& first, const uint8_t& opened) { return MakeCursor(&opened, first.offset, 1); }

void ShowFirst(const Place& in, const Cursor& c, const LongHeader& header, const QuicOpened* opened) {
  Cursor first = c;
  if (header.kind == QuicKind::kNegotiation) {
    ShowRows(in, first, kFirstNegotiation);
    return;
  }
  if (header.version == kQuicVersion2) {
    ShowRows(in, first, kFirst2);
  } else {
    ShowRows(in, first, kFirst);
  }
  if (opened) {
    const uint8_t byte = static_cast<uint8_t>(opened->first);
    Cursor bits = OpenedFirst(header.first, byte);
    ShowRows(in, bits, kOpenedBits);
  } else if (header.kind == QuicKind::kRetry) {
    Cursor bits = c;
    ShowRows(in, bits, kRetryBits);
  } else {
    const BitPicture bits = BitsOf(header.first, 4, 4);
    AddBitLine(in, header.first, "%s: Protected Bits = %u", bits.picture, bits.value);
  }
}

void ShowIds(const Place& in, const LongHeader& header) {
  ShowQuicVersion(in, header.versionField);
  if (header.hasNibbles) {
    const BitPicture to = BitsOf(header.nibbles, 0, 4), from = BitsOf(header.nibbles, 4, 4);
    AddBitLine(in, header.nibbles, "%s: Destination Connection ID Length = %u", to.picture, to.value);
    AddBitLine(in, header.nibbles, "%s: Source Connection ID Length = %u", from.picture, from.value);
  }
  AddLine(in, header.destinationLength, "Destination Connection ID Length: %u", header.destinationLength.value);
  if (header.destination.length) AddLine(in, header.destination, "Destination Connection ID: %s", HexDigits(header.destination));
  AddLine(in, header.sourceLength, "Source Connection ID Length: %u", header.sourceLength.value);
  if (header.source.length) AddLine(in, header.source, "Source Connection ID: %s", HexDigits(header.source));
}

// What is under the protection: the packet number and the frames, or a line that says how much it is.
void ShowProtected(const Place& in, Cursor& c, const QuicPacket& packet, Opening how, const QuicOpened& opened,
                   QuicSession& session) {
  if (how != Opening::kOpened) {
    const Field rest = Rest(c);
    if (how == Opening::kWrong && !packet.cut) {
      AddLine(in, rest, "Protected Payload: %d bytes (the keys do not open it)", rest.length);
    } else {
      AddLine(in, rest, "Protected Payload: %d bytes", rest.length);
    }
    return;
  }
  const Field number = TakeBytes(c, opened.numberLength);
  AddLine(in, number, "Packet Number: %I64u", opened.number);
  AppendToParent(in, number, ", Packet %I64u", opened.number);
  session.packetLine = in.parent;
  const Field payload = TakeBytes(c, opened.length);
  const Place under = Under(in, AddLine(in, payload, "Protected Payload: %d bytes", payload.length));
  {
    const DerivedLines derived(in.view);
    ShowQuicFrames(under, payload, opened, packet.kind, session);
  }
  const Field tag = Rest(c);
  AddLine(in, tag, "Authentication Tag: %s", HexDigits(tag));
}

void ShowRetry(const Place& in, Cursor& c, const QuicPacket& packet, const QuicSession& session) {
  const uint32_t draft = QuicDraftOf(packet.version);
  if (draft > 0 && draft <= kLastDraftWithOriginal) {
    const Field length = TakeU8(c);
    AddLine(in, length, "Original Destination Connection ID Length: %u", length.value);
    const Field original = TakeBytes(c, draft <= kLastDraftWithNibbles ? (length.value & 15) + 3 : length.value);
    AddLine(in, original, "Original Destination Connection ID: %s", HexDigits(original));
    const Field token = Rest(c);
    AddLine(in, token, "Retry Token: %s", HexDigits(token));
    return;
  }
  const Field token = TakeBytes(c, packet.cut ? Left(c) : Left(c) - kQuicTagLength);
  if (token.length) AddLine(in, token, "Retry Token: %s", HexDigits(token));
  const Field tag = Rest(c);
  const Opening holds = session.state.original.length ? CheckRetryTag(in.view, packet, session.state.original)
                                                      : Opening::kUnavailable;
  AddLine(in, tag, "Retry Integrity Tag: %s%s", HexDigits(tag),
          holds == Opening::kOpened ? " (Good)" : holds == Opening::kWrong ? " (BAD)" : "");
}

// A packet with a long header; takes its bytes. False when there is none.
bool ShowLong(const Place& at, Cursor& c, QuicSession& session) {
  const Cursor whole = c;
  LongHeader header{};
  if (!TakeLongHeader(c, header)) return false;
  LearnFrom(at, header, session);
  QuicPacket packet{header.kind, header.version, whole, 0, false};

  // The version's own part tells where the packet ends.
  Cursor ahead = c;
  WideField tokenLength{}, length{};
  Field token{};
  const bool hasNumber = header.kind != QuicKind::kNegotiation && header.kind != QuicKind::kRetry;
  if (header.kind == QuicKind::kInitial) {
    tokenLength = TakeQuicNumber(ahead);
    const uint64_t most = static_cast<uint64_t>(Left(ahead));
    token = TakeBytes(ahead, static_cast<int64_t>(tokenLength.wide < most ? tokenLength.wide : most));
    packet.cut = tokenLength.wide > most;
  }
  if (hasNumber) {
    length = TakeQuicNumber(ahead);
    packet.numberAt = ahead.offset - whole.offset;
    if (ahead.ranShort || length.wide > static_cast<uint64_t>(Left(ahead))) packet.cut = true;
  }
  if (PacketOf(at).network.fragmented) packet.cut = true;
  Cursor rest = packet.cut || !hasNumber ? ahead : TakeCursor(ahead, static_cast<int64_t>(length.wide));
  rest.ranShort = false;
  packet.whole = MakeCursor(whole.at, whole.offset, rest.offset + Left(rest) - whole.offset);

  OpenedBytes room(at.view, hasNumber && !packet.cut ? Left(rest) : 0);
  QuicOpened opened{};
  const Opening how = hasNumber && !packet.cut ? OpenWithKnownKeys(at, packet, session, header.destination, room.data, opened)
                                               : Opening::kUnavailable;

  const Place in = Under(at, AddLine(at, Ahead(whole, packet.whole.left), "QUIC: %s, %s, DCID %s, SCID %s", NameOf(header.kind),
                                     header.version ? QuicVersionText(header.version) : ShortText<24>{"from the server"},
                                     HexDigits(header.destination), HexDigits(header.source)));
  ShowFirst(in, whole, header, how == Opening::kOpened ? &opened : nullptr);
  ShowIds(in, header);
  AddLine(in, tokenLength, "Token Length: %I64u", tokenLength.wide);
  if (token.length) AddLine(in, token, "Token: %s", HexDigits(token));
  AddLine(in, length, "Length: %I64u", length.wide);
  if (header.kind == QuicKind::kNegotiation) {
    ShowSupportedVersions(in, rest);
  } else if (header.kind == QuicKind::kRetry) {
    ShowRetry(in, rest, packet, session);
  } else {
    ShowProtected(in, rest, packet, how, opened, session);
  }
  c = packet.cut || !hasNumber ? rest : ahead;
  return true;
}

// A packet with a short header, which ends with the datagram.
void ShowShort(const Place& at, Cursor& c, QuicSession& session) {
  const Cursor whole = c;
  const uint8_t idLength = session.known ? session.state.idLength[1 - session.sender] : kQuicIdUnknown;
  const Field first = TakeU8(c);
  const Field destination = idLength == kQuicIdUnknown ? Field{} : TakeBytes(c, idLength);
  QuicPacket packet{QuicKind::kOneRtt, session.state.version, whole, c.offset - whole.offset, false};
  packet.cut = c.ranShort || PacketOf(at).network.fragmented;
  c.ranShort = false;

  OpenedBytes room(at.view, destination.here && !packet.cut ? Left(c) : 0);
  QuicOpened opened{};
  const Opening how = destination.here && !packet.cut
                          ? OpenWithKnownKeys(at, packet, session, destination, room.data, opened)
                          : Opening::kUnavailable;
  const Place in = Under(at, AddLine(at, Ahead(whole, Left(whole)), "QUIC: %s%s%s", NameOf(QuicKind::kOneRtt),
                                     idLength == kQuicIdUnknown ? ", Connection Unknown" : destination.length ? ", DCID " : "",
                                     HexDigits(destination)));
  Cursor bits = whole;
  ShowRows(in, bits, kFirstShort);
  if (how == Opening::kOpened) {
    Field bare = first;
    bare.value = opened.first;
    const BitPicture unused = BitsOf(bare, 3, 2), phase = BitsOf(bare, 5, 1), size = BitsOf(bare, 6, 2);
    AddBitLine(in, first, "%s: Reserved = %u", unused.picture, unused.value);
    AddBitLine(in, first, "%s: Key Phase = %u", phase.picture, phase.value);
    AddBitLine(in, first, "%s: Packet Number Length = %u (%s)", size.picture, size.value,
               LookupName(kNumberSizeNames, size.value));
  } else {
    const BitPicture hidden = BitsOf(first, 3, 5);
    AddBitLine(in, first, "%s: Protected Bits = %u", hidden.picture, hidden.value);
  }
  if (destination.length) AddLine(in, destination, "Destination Connection ID: %s", HexDigits(destination));
  ShowProtected(in, c, packet, how, opened, session);
}

// Whether a datagram may be QUIC at all. A short header tells nothing but its fixed bit, which connections may agree to clear
// (RFC 9287).
bool StartsQuic(const Cursor& c, const QuicSession& session) {
  constexpr int32_t kLeastShort = 21;
  const uint32_t first = PeekU8(c);
  if (!(first & kLongForm)) return session.known || ((first & kFixedBit) && Left(c) >= kLeastShort);
  LongHeader header{};
  Cursor ahead = c;
  if (!TakeLongHeader(ahead, header)) return false;
  const bool isNegotiation = header.version == 0 && header.destination.length <= kMostQuicId;
  return session.known || isNegotiation || header.hasNibbles || LooksLikeQuic(c);
}

}  // namespace

WideField TakeQuicNumber(Cursor& c) {
  const int32_t size = 1 << (PeekU8(c) >> 6);
  WideField number{TakeBytes(c, Left(c) ? size : 1), 0};
  if (!number.here) return number;
  Cursor bytes = CursorOver(number);
  for (int32_t i = 0; i < size; ++i) number.wide = number.wide << 8 | TakeU8(bytes).value;
  number.wide &= ~(uint64_t{3} << (8 * size - 2));
  number.value = static_cast<uint32_t>(number.wide);
  return number;
}

uint64_t ShowQuicNumber(const Place& in, Cursor& c, const char* label) {
  const WideField number = TakeQuicNumber(c);
  AddLine(in, number, "%s: %I64u", label, number.wide);
  return number.here ? number.wide : 0;
}

QuicId QuicIdOf(const Field& field) {
  QuicId id{};
  if (!field.here || field.length > kMostQuicId) return id;
  id.length = static_cast<uint8_t>(field.length);
  for (int32_t i = 0; i < field.length; ++i) id.octets[i] = static_cast<uint8_t>(PeekU8(field, i));
  return id;
}

void RememberQuicId(const Place& at, const Field& id, const QuicSession& session) {
  if (!id.here || id.length < 1 || id.length > kMostQuicId || PacketOf(at).quoted) return;
  Remember(at.view, kQuicIds, IdKeyOf(id), {session.key, static_cast<uint8_t>(session.sender)});
}

bool IsQuicConnection(const Place& at) {
  int32_t sender;
  return Recall(at.view, kQuicConnections, ConnectionOf(PacketOf(at), &sender)) != nullptr;
}

int32_t DecodeQuic(const Place& at, Cursor c) {
  QuicSession session = FindSession(at);
  if (!session.known && !(PeekU8(c) & kLongForm)) FindMoved(at, c, session);
  if (StartsGoogleQuic(c, session)) {
    if (!DecodeGoogleQuic(at, c, session)) return 0;
  } else {
    if (!StartsQuic(c, session)) return 0;
    Loop loop;
    while (MoreAt(at, c, loop)) {
      const uint32_t first = PeekU8(c);
      if (first == 0 && c.offset > c.begin) break;   // zeros that fill a datagram up
      if (!(first & kLongForm)) {
        ShowShort(at, c, session);
        break;
      }
      if (!ShowLong(at, c, session)) break;
    }
  }
  c.ranShort = false;
  AddRawRest(at, c, "Data behind the Packets");
  if (session.changed && !PacketOf(at).quoted) Remember(at.view, kQuicConnections, session.key, session.state);
  return 1;
}

}  // namespace qxview
