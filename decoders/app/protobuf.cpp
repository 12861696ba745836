// Protocol buffers without their description (protobuf.dev, Encoding): fields by their numbers. What stands behind a length is
// text, a message or octets: that is told by likeness.
//
//   key: field number, wire type (3 bits)   value: number of variable length, 8 or 4 octets, or length and octets
#include "core/elements.h"
#include "core/line_facts.h"
#include "decoders/app/web_body.h"

namespace qxview {
namespace {

constexpr uint32_t kVarint = 0, kFixed64 = 1, kLength = 2, kStartGroup = 3, kEndGroup = 4, kFixed32 = 5;
constexpr auto kWireNames = SortedNames({
    {kVarint, "VARINT"}, {kFixed64, "I64"}, {kLength, "LEN"}, {kStartGroup, "SGROUP"}, {kEndGroup, "EGROUP"},
    {kFixed32, "I32"}});

// A number in groups of seven bits, the lowest first. Not here when it does not end.
WideField TakeVarint(Cursor& c) {
  constexpr int32_t kMostOctets = 10;
  uint64_t value = 0;
  for (int32_t length = 0; length < kMostOctets && length < Left(c); ++length) {
    const uint32_t octet = PeekU8(c, length);
    value |= static_cast<uint64_t>(octet & 0x7F) << (7 * length);
    if (octet & 0x80) continue;
    WideField taken{};
    static_cast<Field&>(taken) = TakeBytes(c, length + 1);
    taken.wide = value;
    return taken;
  }
  c.ranShort = true;
  return {};
}

// Whether all of the octets are fields, one after the other.
bool IsMessage(Cursor c) {
  if (Left(c) < 2) return false;
  Loop loop;
  while (More(c, loop)) {
    const WideField key = TakeVarint(c);
    if (c.ranShort || key.wide >> 3 == 0 || key.wide >> 32) return false;
    switch (key.wide & 7) {
      case kVarint: TakeVarint(c); break;
      case kFixed64: TakeBytes(c, 8); break;
      case kFixed32: TakeBytes(c, 4); break;
      case kLength: {
        const WideField length = TakeVarint(c);
        if (c.ranShort || length.wide > static_cast<uint64_t>(Left(c))) return false;
        TakeBytes(c, static_cast<int32_t>(length.wide));
        break;
      }
      default: return false;
    }
    if (c.ranShort) return false;
  }
  return true;
}

bool IsText(const Field& octets) {
  for (int32_t at = 0; at < octets.length; ++at) {
    const uint32_t c = PeekU8(octets, at);
    if ((c < ' ' && c != '\n' && c != '\r' && c != '\t') || c == 0x7F) return false;
  }
  return octets.length > 0;
}

void ShowLength(const Place& in, Cursor& c, int32_t depth) {
  const WideField length = TakeVarint(c);
  AddLine(in, length, "Length: %I64u", length.wide);
  const Field value = TakeBytes(c, length.wide < INT32_MAX ? static_cast<int32_t>(length.wide) : INT32_MAX);
  if (!value.here || value.length < 1) return;
  if (depth < kDeepestProtobuf && IsMessage(CursorOver(value)) && !(IsText(value) && PeekU8(value) >= ' ')) {
    Cursor message = CursorOver(value);
    return ShowProtobuf(Under(in, AddLine(in, value, "Value: Message of %d bytes", value.length)), message, depth + 1);
  }
  if (IsText(value)) {
    AddLine(in, value, "Value: %s", Text(value));
  } else {
    AddBlock(in, value, "Value");
  }
}

// The octets of a field's value.
int32_t ValueLength(Cursor c, uint32_t wire) {
  const int32_t left = Left(c);
  if (wire == kFixed64 || wire == kFixed32) return wire == kFixed64 ? 8 : 4;
  if (wire != kVarint && wire != kLength) return 0;
  const WideField number = TakeVarint(c);
  if (c.ranShort) return left;
  const uint64_t behind = wire == kLength ? number.wide : 0;
  return number.length + static_cast<int32_t>(behind < static_cast<uint64_t>(Left(c)) ? behind : static_cast<uint64_t>(Left(c)));
}

void ShowVarint(const Place& in, const WideField& value) { AddLine(in, value, "Value: %I64u", value.wide); }

void ShowFixed(const Place& in, Cursor& c, int32_t size) {
  static constexpr auto kLong = LittleRows<NoValues>({Number(8, "Value")});
  static constexpr auto kShort = LittleRows<NoValues>({Number(4, "Value")});
  static constexpr auto kDouble = LittleRows<NoValues>({Float(8, "Value as Floating-Point")});
  static constexpr auto kFloat = LittleRows<NoValues>({Float(4, "Value as Floating-Point")});
  Cursor again = c;
  NoValues none;
  ShowRows<NoValues>(in, c, size == 8 ? RowSpan<NoValues>(kLong) : RowSpan<NoValues>(kShort), none);
  ShowRows<NoValues>(in, again, size == 8 ? RowSpan<NoValues>(kDouble) : RowSpan<NoValues>(kFloat), none);
}

}  // namespace

void ShowProtobuf(const Place& in, Cursor& c, int32_t depth) {
  const KeyedAs keys(PacketOf(in), "protobuf");
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const Cursor start = c;
    const WideField key = TakeVarint(c);
    const uint32_t wire = static_cast<uint32_t>(key.wide & 7);
    if (c.ranShort || key.wide >> 3 == 0 || wire > kFixed32) {
      c = start;
      return;
    }
    const int32_t value = ValueLength(c, wire), left = Left(c);
    const Field whole = Stated(key.offset, key.length + (value < left ? value : left));
    const Place under = Under(in, AddLine(in, whole, "Field %I64u: %s", key.wide >> 3, LookupName(kWireNames, wire)));
    AddLine(under, key, "Field Number: %I64u", key.wide >> 3);
    AddLine(under, key, "Wire Type: %u = %s", wire, LookupName(kWireNames, wire));
    switch (wire) {
      case kVarint: ShowVarint(under, TakeVarint(c)); break;
      case kFixed64: ShowFixed(under, c, 8); break;
      case kFixed32: ShowFixed(under, c, 4); break;
      case kLength: ShowLength(under, c, depth); break;
      default: break;   // groups: their fields stand between
    }
    if (c.ranShort) return;
  }
}

}  // namespace qxview
