// The structures that remote administration calls send and return.
#include "decoders/smb/smb_rap.h"

#include "core/times.h"

namespace qxview {
namespace {

constexpr int32_t kMostCount = 65535, kShownBytes = 64, kPointerSize = 4, kSmallestShown = 4;

constexpr auto kShareTypes = SortedNames({{0, "Disk"}, {1, "Print Queue"}, {2, "Communication Device"}, {3, "IPC"}});

constexpr auto kServerType = LittleRows<Smb>({Flags(4, nullptr, kSmbServerTypeBits)});

// The data bytes of a message, for fields that point into them.
struct Buffer {
  Cursor whole;
  uint32_t converter;
  int32_t begin, end;   // frame offsets of the first and behind the last text that a field pointed to
  int32_t room;         // bytes of text that may still be shown: fields may all point to the same ones
};

int32_t SizeOf(const RapItem& item) {
  switch (item.code) {
    case 'B':
    case 'F': return item.count;
    case 'W': return item.count <= kMostCount / 2 ? 2 * item.count : kMostCount;
    case 'D': return item.count <= kMostCount / 4 ? 4 * item.count : kMostCount;
    case 'N': return 2;
    case 'z':
    case 'b':
    case 'l':
    case 'd':
    case 'w':
    case 'K': return kPointerSize;
    default: return 0;
  }
}

int32_t SizeOf(const char* descriptor) {
  int32_t size = 0;
  for (RapItem item{}; TakeRapItem(descriptor, item) && size <= kMostCount;) size += SizeOf(item);
  return size;
}

// A pointer and what it points to, when that is in the data.
void AddPointer(const SmbMessage& message, const Place& in, Cursor& c, Buffer& buffer, const RapItem& item,
                const RapLabel& label) {
  const Field pointer = TakeLittleU32(c);
  if (label.text.length > 0) {
    AddLine(in, pointer, "%s Offset: %u", label.text, pointer.value);
  } else {
    AddLine(in, pointer, "%c %s (%s): %u", label.code, label.word, label.kind, pointer.value);
  }
  // Only the low half says where; the null pointer's is 0, and no converter is.
  const uint32_t offset = (pointer.value - buffer.converter) & 0xFFFF;
  const bool isThere = pointer.here && pointer.value != 0 && offset < static_cast<uint32_t>(Left(buffer.whole));
  if (!isThere || buffer.room < 1) return;
  Cursor there = buffer.whole;
  TakeBytes(there, offset);
  const int32_t most = item.code == 'z' ? kSmbTextSize - 1 : kShownBytes;
  if (there.left > most) there.left = most;
  if (item.code == 'z') {
    AddRapText(message, in, there, label);
  } else if (item.code == 'b') {
    AddRapBytes(message, in, there, item.count, label);
  }
  const int32_t start = buffer.whole.offset + static_cast<int32_t>(offset);
  buffer.room -= there.offset - start;
  if (start < buffer.begin) buffer.begin = start;
  if (there.offset > buffer.end) buffer.end = there.offset;
}

// Result: the auxiliary structures that follow, when the field counts them.
uint32_t AddStructureField(const SmbMessage& message, const Place& in, Cursor& c, Buffer& buffer, const RapItem& item,
                           const char*& labels) {
  RapLabel label{TakeRapLabel(labels), item.code, "Field", RapFieldKind(item.code)};
  switch (item.code) {
    case 'B':
      if (item.isCounted) {
        AddRapBytes(message, in, c, item.count, label);
      } else {
        AddRapNumber(message, in, c, 1, label);
      }
      break;
    case 'F': AddRapBytes(message, in, c, item.count, label); break;
    case 'W':
    case 'D':
      for (int32_t i = 0; i < item.count && i < kShownBytes && Left(c) > 0; ++i) {
        AddRapNumber(message, in, c, item.code == 'W' ? 2 : 4, label);
      }
      break;
    case 'N': {
      const uint32_t count = PeekLittleU16(c);
      AddRapNumber(message, in, c, 2, label);
      return count;
    }
    default:
      if (SizeOf(item) == kPointerSize) AddPointer(message, in, c, buffer, item, label);
  }
  return 0;
}

bool IsSign(char c) { return c == '@' || c == '#' || c == '&' || c == '~'; }

uint32_t AddStructure(const SmbMessage& message, const Place& at, Cursor& c, Buffer& buffer, const char* descriptor,
                      const char* labels, const char* title) {
  Cursor fields = TakeCursor(c, SizeOf(descriptor));
  const Place in = Under(at, AddSmbTitle(at, Ahead(fields, fields.left), title));
  if (*descriptor == 'B' && *labels && !IsSign(*labels)) {   // it starts with its name
    Cursor name = fields;
    NameSmbEntry(in, TakeSmbString(message, name, SmbCharacters::kOem));
  }
  uint32_t auxiliary = 0;
  for (RapItem item{}; TakeRapItem(descriptor, item) && Left(fields) > 0;) {
    auxiliary += AddStructureField(message, in, fields, buffer, item, labels);
  }
  AddBlock(in, Rest(fields), "Structure Data");
  return auxiliary;
}

struct SignedLabel {
  char sign;
  TextSlice text;
};
SignedLabel SignOf(const RapLabel& label) {
  if (label.text.length < 1 || !IsSign(label.text.text[0])) return {0, label.text};
  return {label.text.text[0], {label.text.text + 1, label.text.length - 1}};
}

}  // namespace

bool TakeRapItem(const char*& descriptor, RapItem& item) {
  if (!*descriptor) return false;
  item = {*descriptor++, false, 0};
  for (; *descriptor >= '0' && *descriptor <= '9'; ++descriptor) {
    item.isCounted = true;
    item.count = 10 * item.count + (*descriptor - '0');
    if (item.count > kMostCount) item.count = kMostCount;
  }
  if (!item.isCounted) item.count = 1;
  return true;
}

TextSlice TakeRapLabel(const char*& labels) {
  const char* start = labels;
  while (*labels && *labels != '|') ++labels;
  const TextSlice label{start, static_cast<int32_t>(labels - start)};
  if (*labels) ++labels;
  return label;
}

void AddRapNumber(const SmbMessage& message, const Place& in, Cursor& c, int32_t size, const RapLabel& label) {
  const SignedLabel how = SignOf(label);
  const Field number = size == 1 ? TakeU8(c) : size == 2 ? TakeLittleU16(c) : TakeLittleU32(c);
  if (how.text.length < 1) {
    AddLine(in, number, "%c %s (%s): %u", label.code, label.word, label.kind, number.value);
  } else if (how.sign == '@') {
    AddLine(in, number, "%s: %s", how.text, UnixTimeText(number.value));
  } else if (how.sign == '&') {
    AddLine(in, number, "%s: [%u] = %s", how.text, number.value, LookupName(kShareTypes, number.value, kUndefined));
  } else if (how.sign == '#' && number.here) {
    Cursor again = CursorOver(number);
    ShortText<40> name;
    FormatInto(name.text, sizeof name.text, "%s", how.text);
    Smb values{&message};
    ShowRows<Smb>(in, again, kServerType, values, name.text);
  } else {
    AddLine(in, number, "%s: %u", how.text, number.value);
  }
}

void AddRapBytes(const SmbMessage& message, const Place& in, Cursor& c, int64_t size, const RapLabel& label) {
  const SignedLabel how = SignOf(label);
  if (size < 1 || Left(c) < 1) return;
  const Field bytes = TakeBytes(c, size < Left(c) ? size : Left(c));
  ShortText<60> title;
  if (how.text.length > 0) {
    FormatInto(title.text, sizeof title.text, "%s", how.text);
  } else {
    FormatInto(title.text, sizeof title.text, "%c %s (%s)", label.code, label.word, label.kind);
  }
  if (bytes.length > kShownBytes) {
    AddBlock(in, bytes, title.text);
  } else if (how.sign == '~' || how.text.length < 1) {
    AddLine(in, bytes, "%s: %s", title, HexText(bytes));
  } else {
    Cursor text = CursorOver(bytes);
    AddSmbCounted(message, in, text, size, title.text, SmbCharacters::kOem);
  }
}

void AddRapText(const SmbMessage& message, const Place& in, Cursor& c, const RapLabel& label) {
  const SignedLabel how = SignOf(label);
  const SmbString string = TakeSmbString(message, c, SmbCharacters::kOem);
  const char* text = string.text[0] ? string.text : "<null string>";
  if (how.text.length > 0) {
    AddLine(in, string.field, "%s: %s", how.text, text);
  } else {
    AddLine(in, string.field, "%c %s (%s): %s", label.code, label.word, label.kind, text);
  }
}

void AddRapStructures(SmbTransaction& t, const Place& in, Cursor& c, uint32_t count, uint32_t converter) {
  const int32_t size = SizeOf(t.request.data), auxiliarySize = SizeOf(t.request.auxiliary);
  Buffer buffer{c, converter, INT32_MAX, c.offset, kShowAgain * Left(c)};
  const char* labels = RapStructureLabels(t.request.data);
  const char* auxiliaryLabels = RapStructureLabels(t.request.auxiliary);
  Loop loop;
  for (uint32_t i = 0; i < count && size >= kSmallestShown && MoreAt(in, c, loop); ++i) {
    const uint32_t more = AddStructure(t.message, in, c, buffer, t.request.data, labels, "Entry");
    Loop inner;
    for (uint32_t k = 0; k < more && auxiliarySize >= kSmallestShown && MoreAt(in, c, inner); ++k) {
      AddStructure(t.message, in, c, buffer, t.request.auxiliary, auxiliaryLabels, "Auxiliary Entry");
    }
  }
  if (buffer.end <= c.offset) return;
  Cursor unused = TakeCursor(c, buffer.begin > c.offset ? buffer.begin - c.offset : 0);
  AddSmbFiller(in, unused);
  TakeBytes(c, buffer.end - c.offset);
}

}  // namespace qxview
