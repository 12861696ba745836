// Names of DNS messages: their lines label by label, their dotted text with compression pointers followed, and the
// texts of IPv6 addresses in records.
#include <cstring>

#include "core/digits.h"
#include "core/line_facts.h"
#include "decoders/app/dns.h"

namespace qxview {
namespace {

constexpr int32_t kLongestLabel = 63;   // greater length bytes are the first of a pointer
constexpr size_t kLongestTitle = 40;

// Text that is built within a buffer. Labels end at their first zero byte, as every text of a line does.
struct BoundedName {
  char* out;
  int32_t size;
  int32_t used;
};

bool IsFull(const BoundedName& name) { return name.used >= name.size - 1; }

void Terminate(const BoundedName& name) {
  if (name.size > 0) name.out[name.used] = 0;
}

// The innermost step of a message built to be slow: short labels byte by byte, without a call.
void Append(BoundedName& name, const char* text, int32_t length) {
  constexpr int32_t kShort = 12;
  const int32_t room = name.size - 1 - name.used;
  if (length > room) length = room;
  if (length > kShort) {
    const size_t added = strnlen(text, static_cast<size_t>(length));
    std::memcpy(name.out + name.used, text, added);
    name.used += static_cast<int32_t>(added);
  } else {
    for (int32_t i = 0; i < length && text[i] != 0; ++i) name.out[name.used++] = text[i];
  }
  Terminate(name);
}

void AppendDot(BoundedName& name) {
  if (!IsFull(name)) name.out[name.used++] = '.';
  Terminate(name);
}

BoundedName OpenName(char* out, int32_t size, bool append) {
  if (!out || size < 1) return {nullptr, 0, 0};
  if (!append) out[0] = 0;
  return {out, size, append ? static_cast<int32_t>(strnlen(out, static_cast<size_t>(size))) : 0};
}

uint32_t PointerTarget(const uint8_t* pointer) { return ReadU16(pointer) & 0x3FFF; }

}  // namespace

// A pointed name is one more pass of the same loop: pointers lead strictly backwards, so the passes end, and neither
// the stack nor the time grows with what a message says.
int32_t ExpandName(const DnsNameSource& source, char* out, int32_t outSize, DnsNameTail* tail) {
  BoundedName name = OpenName(out, outSize, source.following);
  const uint8_t* at = source.cursor;
  int32_t left = source.available;
  uint32_t nameOffset = source.nameOffset > 0 ? static_cast<uint32_t>(source.nameOffset) : 0;
  bool strict = source.strict, pointed = false;
  const auto storeTail = [&](const uint8_t* typeAndClass, int32_t taken) {
    if (pointed || source.following) return;
    tail->type = static_cast<uint16_t>(ReadU16(typeAndClass));
    tail->recordClass = static_cast<uint16_t>(ReadU16(typeAndClass + 2));
    tail->typed = true;
    tail->consumed += taken;
  };

  while (left >= 2 && at[0] != 0) {
    if (pointed && --*source.hopsLeft < 0) return 1;
    if (at[0] > kLongestLabel) {
      const uint32_t target = PointerTarget(at);
      const bool rejected = target >= nameOffset || ((source.following || pointed) && at == source.cursor);
      if (rejected) return pointed;   // once a pointer was good, the name is good as far as it was read
      if (!pointed) tail->consumed += 2;
      if (left >= 7) storeTail(at + 2, 4);
      pointed = strict = true;
      nameOffset = target;
      at = source.message + target;
      left = source.messageLength - static_cast<int32_t>(target);
      continue;
    }
    const int32_t length = at[0] < left - 1 ? at[0] : left - 1;
    Append(name, reinterpret_cast<const char*>(at + 1), length);
    at += length + 1;
    left -= length + 1;
    if (!pointed) tail->consumed += length + 1;
    if (left < 1 || at[0] == 0) {
      if (left >= 5) storeTail(at + 1, 5);
      return 1;
    }
    if (strict && at[0] <= kLongestLabel && at[0] > source.cursor - at) return pointed;
    AppendDot(name);
    if (pointed && IsFull(name)) return 1;   // the rest of the chain can change nothing
  }
  return 1;
}

int32_t ExpandDnsName(const uint8_t* message, const uint8_t* cursor, int32_t available, int32_t nameOffset,
                      int32_t following, int32_t strict, char* out, int32_t outSize, uint16_t* typeOut,
                      uint16_t* classOut, int32_t* consumedOut) {
  if (consumedOut) *consumedOut = 0;
  if (!message || !cursor) return 0;
  int32_t hopsLeft = kMostDnsNameHops;
  const int64_t end = int64_t{cursor - message} + available;
  const int32_t messageLength = end < INT32_MAX ? static_cast<int32_t>(end) : INT32_MAX;
  DnsNameTail tail;
  const int32_t result = ExpandName({message, messageLength, cursor, available, nameOffset, following != 0,
                                     strict != 0, &hopsLeft}, out, outSize, &tail);
  if (tail.typed && typeOut) *typeOut = tail.type;
  if (tail.typed && classOut) *classOut = tail.recordClass;
  if (consumedOut) *consumedOut = tail.consumed;
  return result;
}

// Where all records are taken apart, a name that is rejected ends no message: it is known how many bytes it has.
int32_t ExpandNameAt(const DnsMessage& message, const Cursor& c, DnsNameText& name) {
  DnsNameTail tail;
  const int32_t result = ExpandName({message.start, message.length, c.at, c.left, static_cast<int32_t>(c.at - message.start), false,
                                     false, message.hopsLeft}, name.text, kDnsNameSize, &tail);
  return result || message.hasAllRecords;
}

namespace {

void AppendToBoth(const Place& at, LineHandle nameLine, const TextSlice& text) {
  AppendToLine(at, at.parent, "%s", text);
  AppendToLine(at, nameLine, "%s", text);
}

// The pointer that ends a name. `nameStart` is the whole name's: a pointer into its own labels is rejected.
int32_t DecodePointer(const Place& at, LineHandle nameLine, Cursor& c, DnsMessage& message, const uint8_t* nameStart) {
  DnsNameText name;
  DnsNameTail tail;
  if (!ExpandName({message.start, message.length, c.at, c.left, static_cast<int32_t>(nameStart - message.start), false,
                   true, message.hopsLeft}, name.text, kDnsNameSize, &tail)) {
    if (!message.hasAllRecords) return 0;
    const Field pointer = TakeU16(c);
    AddLine(Under(at, nameLine), pointer, "Name Pointer: [0x%.04X] Not Valid", pointer.value);
    return 1;
  }
  AppendToBoth(at, nameLine, {name.text, kDnsNameSize});
  const Field pointer = TakeU16(c);
  AddLine(Under(at, nameLine), pointer, "Name Pointer: [0x%.04X] = %s", pointer.value, name);
  return 1;
}

int32_t DecodeNameParts(const Place& at, LineHandle nameLine, Cursor& c, DnsMessage& message) {
  const Place in = Under(at, nameLine);
  const uint8_t* nameStart = c.at;
  while (c.left > 0 && !PacketOf(at).limitReached) {
    const int32_t lead = PeekU8(c);
    if (lead == 0) {
      AddLine(in, TakeU8(c), "Name Terminator: 0x%.02X", 0);
      return 1;
    }
    if (lead > kLongestLabel && c.left < 2) return 1;
    if (c.at != nameStart) AppendToBoth(at, nameLine, {".", 1});
    if (lead > kLongestLabel) return DecodePointer(at, nameLine, c, message, nameStart);
    const Field label = TakeBytes(c, lead < c.left ? lead + 1 : c.left);
    const TextSlice text = Text(Slice(label, 1, label.length - 1));
    AppendToBoth(at, nameLine, text);
    AddLine(in, label, "Name Section: %s", text);
  }
  return 1;
}

}  // namespace

int32_t DecodeDnsNameField(const Place& at, Cursor& c, DnsMessage& message, const char* title) {
  if (!title || std::strlen(title) > kLongestTitle) title = "Name Field";
  const int32_t begin = c.offset;
  const LineHandle line = AddLine(at, Ahead(c, 0), "%s:", title);
  const int32_t result = DecodeNameParts(at, line, c, message);
  SetRange(at, line, begin, c.offset - begin);
  const bool isRoot = result && c.offset - begin == 1;   // its length of zero alone
  if (isRoot && KeepsFacts(at.view)) [[unlikely]] ValueLine(at.view, line, ".");
  return result;
}

int32_t ReverseDottedName(const char* name, char* out, int32_t outSize) {
  BoundedName reversed = OpenName(out, outSize, false);
  if (!name || !name[0]) return 0;
  const char* end = name + std::strlen(name);
  const bool dotted = std::strchr(name, '.') != nullptr;
  for (const char* part = end;; --part) {
    if (part != name && part[-1] != '.') continue;
    Append(reversed, part, static_cast<int32_t>(end - part));
    if (part == name) break;
    AppendDot(reversed);
    end = part - 1;
  }
  if (!dotted) AppendDot(reversed);   // one part is put in front of an empty text, with the dot between
  return 1;
}

ShortText<kDnsIPv6TextSize> DnsIPv6Text(const uint8_t* address) {
  ShortText<kDnsIPv6TextSize> made;
  char* at = made.text;
  for (int32_t i = 0; i < 16; ++i) {
    if (address[i] == 0 && i > 0 && address[i - 1] == 0) continue;
    std::memcpy(at, address[i] ? kHexPairs + 2 * address[i] : "::", 2);
    at += 2;
  }
  *at = 0;
  return made;
}

const char* DnsIPv6Class(const uint8_t* address) {
  int32_t zeros = 0;
  while (zeros < 16 && address[zeros] == 0) ++zeros;
  if (zeros == 16) return "Unspecified";
  if (zeros == 15 && address[15] == 1) return "Loopback";
  if (address[0] == 0xFF) return "Multicast";
  // FE80::/10 has always been shown as global, so there is no class for link-local addresses.
  return address[0] == 0xFE && (address[1] & 0xC0) == 0xC0 ? "Site-local Unicast" : "Global Unicast";
}

}  // namespace qxview
