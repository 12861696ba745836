// The messages of gQUIC's own handshake (crypto document): a tag, and entries of a tag and where its value ends, low byte
// first; the values behind all entries.
#include "core/rows.h"
#include "decoders/quic/gquic.h"
#include "decoders/quic/gquic_names.h"

namespace qxview {
namespace {

enum class Form : uint8_t { kBytes, kText, kTags, kHashes, kNumber, kSeconds, kMicroseconds, kTime, kReasons, kAddress, kMessage,
                            kPublicValues };

struct Tag {
  uint32_t code;
  const char* name;
  Form form;
};
constexpr Tag kTags[] = {
#define QX_TAG(code, name, form) {code, name, Form::form},
#include "decoders/quic/gquic_tags.inc"
#undef QX_TAG
};

const Tag* FindTag(uint32_t code) {
  size_t lower = 0, upper = sizeof kTags / sizeof kTags[0];
  while (lower < upper) {
    const size_t middle = (lower + upper) / 2;
    if (kTags[middle].code == code) return &kTags[middle];
    if (kTags[middle].code < code) {
      lower = middle + 1;
    } else {
      upper = middle;
    }
  }
  return nullptr;
}

constexpr auto kMessageNames = SortedNames({
    {0x43484C4F, "Client Hello"}, {0x50525354, "Public Reset"}, {0x52454A00, "Rejection"}, {0x53434647, "Server Config"},
    {0x53435550, "Server Config Update"}, {0x53484C4F, "Server Hello"}, {0x5352454A, "Stateless Rejection"}});
constexpr auto kTime = LittleRows<NoValues>({UnixTime(8, "Value")});
constexpr auto kFamilyNames = SortedNames({{2, "IPv4"}, {10, "IPv6"}});

// A tag's characters without what fills it up.
TextSlice TagText(const Field& tag) {
  int32_t length = tag.length;
  while (length > 0 && (PeekU8(tag, length - 1) == 0 || PeekU8(tag, length - 1) == 0xFF)) --length;
  return Text(Slice(tag, 0, length));
}

uint64_t LittleNumber(const Field& value) {
  uint64_t number = 0;
  for (int32_t i = value.length < 8 ? value.length : 8; i-- > 0;) number = number << 8 | PeekU8(value, i);
  return number;
}

// The line of a list, under which its elements have lines of their own.
Place AddList(const Place& at, const Field& value) { return Under(at, AddLine(at, value, "Value: %s", HexDigits(value))); }

void ShowTags(const Place& at, const Field& value) {
  if (value.length == 4) return static_cast<void>(AddLine(at, value, "Value: %s", TagText(value)));
  const Place in = AddList(at, value);
  Cursor c = CursorOver(value);
  Loop loop;
  while (MoreAt(in, c, loop) && Left(c) >= 4) {
    const Field tag = TakeBytes(c, 4);
    AddLine(in, tag, "Element: %s", TagText(tag));
  }
  AddBlock(in, Rest(c), "Data");
}

void ShowHashes(const Place& at, const Field& value) {
  const Place in = AddList(at, value);
  Cursor c = CursorOver(value);
  Loop loop;
  while (MoreAt(in, c, loop) && Left(c) >= 8) {
    const WideField hash = TakeLittleU64(c);
    AddLine(in, hash, "Hash: 0x%.016I64X", hash.wide);
  }
  AddBlock(in, Rest(c), "Data");
}

// Behind a length of three bytes each, in the order of the key exchange algorithms.
void ShowPublicValues(const Place& at, const Field& value) {
  const Place in = AddList(at, value);
  Cursor c = CursorOver(value);
  Loop loop;
  while (MoreAt(in, c, loop) && Left(c) >= 3) {
    const WideField length = TakeGoogleNumber(c, 3, false);
    AddLine(in, length, "Public Value Length: %u", length.value);
    const Field key = TakeBytes(c, length.value);
    AddLine(in, key, "Public Value: %s", HexDigits(key));
  }
  c.ranShort = false;
  AddBlock(in, Rest(c), "Data");
}

void ShowReasons(const Place& in, const Field& value) {
  Cursor c = CursorOver(value);
  Loop loop;
  while (MoreAt(in, c, loop) && Left(c) >= 4) {
    const Field reason = TakeLittleU32(c);
    AddLine(in, reason, "Value: %u = %s", reason.value, LookupName(kGoogleRejectionNames, reason.value));
  }
  AddBlock(in, Rest(c), "Data");
}

void ShowAddress(const Place& in, const Field& value) {
  constexpr uint32_t kFamily4 = 2, kFamily6 = 10;
  Cursor c = CursorOver(value);
  const Field family = TakeLittleU16(c);
  AddLine(in, family, "Address Family: %u = %s", family.value, LookupName(kFamilyNames, family.value));
  if (family.value == kFamily4) {
    const Field address = TakeBytes(c, 4);
    AddLine(in, address, "IPv4 Address: %s", IPv4Text(address.bytes));
  } else if (family.value == kFamily6) {
    const Field address = TakeBytes(c, 16);
    AddLine(in, address, "IPv6 Address: %s", IPv6Text(address.bytes));
  }
  if (Left(c) >= 2) {
    const Field port = TakeLittleU16(c);
    AddLine(in, port, "Port: %u", port.value);
  }
  AddBlock(in, Rest(c), "Data");
}

void ShowNumber(const Place& in, const Field& value, const char* unit) {
  if (value.length > 8) return static_cast<void>(AddLine(in, value, "Value: %s", HexDigits(value)));
  AddLine(in, value, "Value: %I64u%s", LittleNumber(value), unit);
}

void ShowValue(const Place& in, const Field& value, Form form) {
  if (!value.here || value.length == 0) return;
  switch (form) {
    case Form::kText: AddLine(in, value, "Value: %s", Text(value)); break;
    case Form::kTags: ShowTags(in, value); break;
    case Form::kHashes: ShowHashes(in, value); break;
    case Form::kNumber: ShowNumber(in, value, ""); break;
    case Form::kSeconds: ShowNumber(in, value, " seconds"); break;
    case Form::kMicroseconds: ShowNumber(in, value, " microseconds"); break;
    case Form::kTime: {
      Cursor c = CursorOver(value);
      ShowRows(in, c, kTime);
      break;
    }
    case Form::kReasons: ShowReasons(in, value); break;
    case Form::kAddress: ShowAddress(in, value); break;
    case Form::kMessage: {
      Cursor c = CursorOver(value);
      ShowGoogleMessage(in, c);
      AddBlock(in, Rest(c), "Data");
      break;
    }
    case Form::kPublicValues: ShowPublicValues(in, value); break;
    default: AddLine(in, value, "Value: %s", HexDigits(value));
  }
}

// Padding is the one tag whose characters stand in its last places.
constexpr uint32_t kPaddingTag = 0x50414400;

}  // namespace

void ShowGoogleMessage(const Place& at, Cursor& c) {
  constexpr int32_t kHeader = 8, kEntry = 8;
  if (Left(c) < kHeader || !LookupName(kMessageNames, PeekU32(c), nullptr)) return;
  if (++PacketOf(at).nesting > kMostNesting) {
    --PacketOf(at).nesting;
    return;
  }
  const Cursor whole = c;
  const Field tag = TakeU32(c);
  const char* name = LookupName(kMessageNames, tag.value);
  const Place in = Under(at, AddLine(at, Ahead(whole, Left(whole)), "Message: %s = %s", TagText(tag), name));
  AppendToParent(at, tag, ", %s", name);
  AddLine(in, tag, "Message Tag: %s = %s", TagText(tag), name);
  const Field count = TakeLittleU16(c);
  AddLine(in, count, "Number of Tags: %u", count.value);
  const Field padding = TakeU16(c);
  AddLine(in, padding, "Padding: %u", padding.value);
  // A cursor for the entries, one for the values behind them.
  Cursor values = c;
  const int32_t entriesSize = static_cast<int32_t>(count.value) * kEntry;
  TakeBytes(values, entriesSize);
  values.begin = values.offset;
  Cursor entries = TakeCursor(c, entriesSize);
  uint32_t start = 0;
  Loop loop;
  while (MoreAt(in, entries, loop) && Left(entries) >= kEntry) {
    const Field entry = TakeU32(entries);
    const Field end = TakeLittleU32(entries);
    const Tag* known = FindTag(entry.value);
    const char* title = known ? known->name : entry.value == kPaddingTag ? "Padding" : kUnknown;
    const Place under = Under(in, AddLine(in, Stated(entry.offset, kEntry), "Tag: %s = %s", TagText(entry), title));
    AddLine(under, entry, "Tag Type: %s", TagText(entry));
    AddLine(under, end, "End Offset: %u", end.value);
    if (end.value < start) break;
    AddLine(under, end, "Length: %u", end.value - start);
    const Field value = TakeBytes(values, end.value - start);
    start = end.value;
    if (entry.value == kPaddingTag) {
      if (value.length) AddLine(under, value, "Value: %d bytes", value.length);
    } else {
      ShowValue(under, value, known ? known->form : Form::kBytes);
    }
    if (!value.here) AddBlock(under, Rest(values), "Value");
  }
  c = values;
  c.ranShort = false;
  c.begin = whole.begin;
  --PacketOf(at).nesting;
}

}  // namespace qxview
