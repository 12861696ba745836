// Session Traversal Utilities for NAT (RFC 8489, 5389; classic: RFC 3489) with its usages: TURN (RFC 8656, 6062, 8016), ICE
// (RFC 8445), discovery of NAT behaviour (RFC 5780). How do others see me, who relays for me, which path works?
//
//   0  M M M M M C M M M C M M M M   message type: method and class       length of what follows the header
//   magic cookie 0x2112A442
//   transaction ID (96 bits)
//   attributes: type, length, value, padding to 4 bytes
//
// Channel data share the port: channel number, length, data (RFC 8656 12.4). Over TCP a message may stand behind its length
// (RFC 4571).
#include "decoders/app/stun.h"

#include "core/rows.h"

namespace qxview {
namespace {

constexpr auto kMethodNames = SortedNames({
    {0x000, "Reserved"}, {0x001, "Binding"}, {0x002, "Shared Secret"}, {0x003, "Allocate"}, {0x004, "Refresh"},
    {0x006, "Send"}, {0x007, "Data"}, {0x008, "CreatePermission"}, {0x009, "ChannelBind"}, {0x00A, "Connect"},
    {0x00B, "ConnectionBind"}, {0x00C, "ConnectionAttempt"}, {0x080, "GOOG-PING"}});
constexpr auto kClassNames = SortedNames({
    {0, "Request"}, {1, "Indication"}, {2, "Success Response"}, {3, "Error Response"}});
constexpr auto kAssignmentNames = SortedNames({{0, "IETF Review"}, {1, "Designated Expert"}});
constexpr auto kClassicTypeNames = SortedNames({
    {0x0001, "Binding Request"}, {0x0002, "Shared Secret Request"}, {0x0003, "Allocate Request"}, {0x0004, "Send Request"},
    {0x0006, "Set Active Destination Request"}, {0x0101, "Binding Response"}, {0x0102, "Shared Secret Response"},
    {0x0103, "Allocate Response"}, {0x0104, "Send Response"}, {0x0106, "Set Active Destination Response"},
    {0x0111, "Binding Error Response"}, {0x0112, "Shared Secret Error Response"}, {0x0113, "Allocate Error Response"},
    {0x0114, "Send Error Response"}, {0x0115, "Data Indication"}, {0x0116, "Set Active Destination Error Response"}});

constexpr uint32_t ClassOf(uint32_t type) { return (type >> 7 & 2) | (type >> 4 & 1); }
constexpr uint32_t MethodOf(uint32_t type) { return (type >> 2 & 0xF80) | (type >> 1 & 0x70) | (type & 0xF); }

constexpr auto kHeader = Rows<NoValues>({
    Number(2, "Message Length"), Hex(4, "Magic Cookie"), Bytes(12, "Transaction ID")});
constexpr auto kClassicHeader = Rows<NoValues>({Number(2, "Message Length"), Bytes(16, "Transaction ID")});
struct Channel {
  Field number, length;
};
constexpr auto kChannel = Rows<Channel>({
    Hex(2, "Channel Number").Into(&Channel::number), Number(2, "Length").Into(&Channel::length)});

// The picture of the bits of `mask`, wherever they stand in the word.
ShortText<18> MaskPicture(uint32_t word, uint32_t mask) {
  ShortText<18> picture{};
  for (int32_t bit = 0; bit < 16; ++bit) {
    const uint32_t at = 0x8000u >> bit;
    picture.text[bit + bit / 8] = !(mask & at) ? '.' : word & at ? '1' : '0';
  }
  picture.text[8] = ' ';
  return picture;
}

void ShowType(const Place& in, const Field& type, bool isClassic) {
  const uint32_t method = MethodOf(type.value), kind = ClassOf(type.value);
  if (isClassic) {
    AddLine(in, type, "Message Type: 0x%.04X = %s", type.value, LookupName(kClassicTypeNames, type.value));
    return;
  }
  const Place bits = Under(in, AddLine(in, type, "Message Type: 0x%.04X = %s %s", type.value,
                                       LookupName(kMethodNames, method), LookupName(kClassNames, kind)));
  AddBitLine(bits, type, "%s: Class = %u (%s)", MaskPicture(type.value, 0x0110), kind, LookupName(kClassNames, kind));
  AddBitLine(bits, type, "%s: Method = %u (%s)", MaskPicture(type.value, 0x3EEF), method,
             LookupName(kMethodNames, method));
  const BitPicture assignment = BitsOf(type, 2, 1);
  AddBitLine(bits, type, "%s: Method Assignment = %u (%s)", assignment.picture, assignment.value,
             LookupName(kAssignmentNames, assignment.value));
}

bool HasCookie(const Cursor& c) {
  return Left(c) >= kStunHeaderSize && (PeekU8(c) & 0xC0) == 0 && PeekU32(c, 4) == kStunCookie;
}
bool IsClassic(const Cursor& c) {
  return Left(c) >= kStunHeaderSize && kStunHeaderSize + PeekU16(c, 2) <= static_cast<uint32_t>(Left(c)) &&
         LookupName(kClassicTypeNames, PeekU16(c), nullptr);
}
// A classic message has no cookie: its length and those of its attributes must be those of the payload to the byte.
bool IsWholeClassic(const Cursor& c) {
  if (!IsClassic(c) || kStunHeaderSize + static_cast<int32_t>(PeekU16(c, 2)) != Left(c)) return false;
  int32_t at = kStunHeaderSize;
  while (Left(c) - at >= 4) at += 4 + static_cast<int32_t>(PeekU16(c, at + 2));
  return at == Left(c) && at > kStunHeaderSize;
}
bool IsFramed(const Cursor& c) {
  return Left(c) >= kStunHeaderSize + 2 && (PeekU8(c, 2) & 0xC0) == 0 && PeekU32(c, 6) == kStunCookie;
}
bool IsChannelData(const Cursor& c) {
  const int32_t data = static_cast<int32_t>(PeekU16(c, 2));
  return Left(c) >= 4 && PeekU8(c) >= 0x40 && PeekU8(c) < 0x80 && data <= Left(c) - 4;
}

void DecodeMessage(const Place& at, Cursor& c, bool isFramed, int32_t depth) {
  const Cursor start = c;
  const Field frameLength = isFramed ? TakeU16(c) : Field{};
  const uint32_t type = PeekU16(c);
  const bool isClassic = !HasCookie(c);
  const int32_t declared = kStunHeaderSize + static_cast<int32_t>(PeekU16(c, 2));
  Stun stun{};
  stun.isClassic = isClassic;
  stun.depth = depth;
  stun.mask = PeekBytes(c, 4, 16);
  stun.message = Ahead(c, declared < Left(c) ? declared : Left(c));
  const Field whole = Ahead(start, stun.message.length + (isFramed ? 2 : 0));
  const LineHandle line =
      isClassic ? AddLine(at, whole, "STUN: %s (RFC 3489)", LookupName(kClassicTypeNames, type))
                : AddLine(at, whole, "STUN: %s %s", LookupName(kMethodNames, MethodOf(type)),
                          LookupName(kClassNames, ClassOf(type)));
  const Place in = Under(at, line);
  stun.top = in;
  AddLine(in, frameLength, "Frame Length: %u", frameLength.value);
  ShowType(in, TakeU16(c), isClassic);
  NoValues none;
  ShowRows<NoValues>(in, c, isClassic ? RowSpan<NoValues>(kClassicHeader) : RowSpan<NoValues>(kHeader), none);
  Cursor attributes = TakeCursor(c, declared - kStunHeaderSize);
  ShowStunAttributes(in, attributes, stun);
  AddBlock(in, Rest(attributes), "Data");
}

void DecodeChannelData(const Place& at, Cursor& c) {
  const Channel ahead = PeekRows(c, kChannel);
  const int32_t length = static_cast<int32_t>(ahead.length.value);
  const Place in = Under(at, AddLine(at, Ahead(c, length + 4), "TURN ChannelData: Channel 0x%.04X, %u bytes", ahead.number.value, length));
  ShowRows(in, c, kChannel);
  Cursor data = TakeCursor(c, length);
  AddBlock(in, Rest(data), "Application Data");
  const int32_t padding = -length & 3;
  if (padding && Left(c) >= padding) AddLine(in, TakeBytes(c, padding), "Padding: %u", padding);
}

}  // namespace

// Lengths are multiples of 4; some phones' are not.
bool LooksLikeStun(const Cursor& c) {
  const int32_t length = static_cast<int32_t>(PeekU16(c, 2));
  return HasCookie(c) ? length % 4 == 0 || kStunHeaderSize + length == Left(c) : IsWholeClassic(c);
}

bool LooksLikeStunOverTcp(const Cursor& c) {
  const bool isFramed = !HasCookie(c) && IsFramed(c);
  return (isFramed || HasCookie(c)) && PeekU16(c, isFramed ? 4 : 2) % 4 == 0;
}

bool StartsStun(const Cursor& c) { return HasCookie(c) || IsFramed(c) || IsChannelData(c) || IsClassic(c); }

void ShowStunMessages(const Place& in, Cursor c, int32_t depth) {
  Loop loop;
  while (MoreAt(in, c, loop) && StartsStun(c)) {
    const bool isFramed = !HasCookie(c) && IsFramed(c);
    if (!HasCookie(c) && !isFramed && IsChannelData(c)) {
      DecodeChannelData(in, c);
    } else {
      DecodeMessage(in, c, isFramed, depth);
    }
  }
  AddRawRest(in, c, "STUN Data");
}

int32_t DecodeStun(const Place& at, Cursor c) {
  if (!StartsStun(c)) return 0;
  ShowStunMessages(at, c, 0);
  return 1;
}

}  // namespace qxview
