// NetBIOS names: their text, pointers followed, and their lines.
#include "decoders/netbios/netbios.h"

#include <cstring>

#include "core/digits.h"
#include "decoders/common/name_labels.h"

namespace qxview {
namespace {

constexpr uint32_t kEncodedLength = 2 * kNetBiosNameLength;

constexpr auto kSuffixNames = SortedNames({
    {0x00, "Workstation/Redirector"}, {0x01, "Messenger Service"}, {0x02, "Forwarded Name"},
    {0x03, "Messenger Service"}, {0x06, "RAS Server Service"}, {0x1B, "Domain Master Browser"},
    {0x1C, "Domain Controllers"}, {0x1D, "Master Browser"}, {0x1E, "Browser Service Elections"},
    {0x1F, "NetDDE Service"}, {0x20, "File Server Service"}, {0x21, "RAS Client Service"},
    {0x22, "Mail Interchange"}, {0x23, "Mail Store"}, {0x24, "Mail Directory"}, {0x2B, "Notes Server"},
    {0x2F, "Notes Group"}, {0x30, "Modem Sharing Server"}, {0x31, "Modem Sharing Client"}, {0x33, "Notes Group"},
    {0x42, "Anti-Virus"}, {0x43, "Remote Control Client"}, {0x44, "Remote Control Administrator"},
    {0x45, "Remote Chat Client"}, {0x46, "Remote Transfer Client"}, {0x4C, "TCP/IP Service"},
    {0x52, "TCP/IP Service"}, {0x6A, "Mail Connector"}, {0x87, "Mail Transfer Agent"},
    {0xBE, "Network Monitor Agent"}, {0xBF, "Network Monitor Application"},
});
constexpr auto kGroupSuffixNames = SortedNames({
    {0x00, "Domain/Workgroup"}, {0x01, "Master Browser List"}, {0x03, "Messenger Service"},
    {0x1C, "Domain Controllers"}, {0x1D, "Master Browser"}, {0x1E, "Browser Service Elections"},
    {0x20, "Internet Group"},
});

template <int32_t kSize>
struct TextBuilder {
  ShortText<kSize>& made;   // all zeros at first, so that the text is always terminated
  int32_t used;

  bool IsFull() const { return used == kSize - 1; }
  void Add(char c) {
    if (!IsFull()) made.text[used++] = c;
  }
  void AddByte(uint8_t byte) {
    if (byte >= 0x20 && byte < 0x7F) return Add(static_cast<char>(byte));
    const char* digits = kHexPairs + 2 * byte;
    const char escape[] = {'<', digits[0], digits[1], '>'};
    const int32_t room = kSize - 1 - used;
    if (room >= 4) {
      std::memcpy(made.text + used, escape, sizeof escape);
      used += 4;
    } else {
      for (int32_t i = 0; i < room; ++i) Add(escape[i]);
    }
  }
};
using NameText = TextBuilder<kNetBiosTextSize>;

// 15 bytes of a name without the blanks and zeros that fill it up.
template <int32_t kSize>
void AddPlainName(TextBuilder<kSize>& text, const Cursor& name) {
  int32_t length = kNetBiosNameLength - 1;
  while (length > 0 && (PeekU8(name, length - 1) == ' ' || PeekU8(name, length - 1) == 0)) --length;
  for (int32_t i = 0; i < length; ++i) text.AddByte(static_cast<uint8_t>(PeekU8(name, i)));
}

void AddSuffix(NameText& text, uint8_t suffix) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  text.Add('<');
  text.Add(kDigits[suffix >> 4]);
  text.Add(kDigits[suffix & 15]);
  text.Add('>');
}

// Letters to bytes; false when one is not of the encoding.
bool DecodeLetters(const Cursor& letters, uint8_t* name) {
  for (int32_t i = 0; i < kNetBiosNameLength; ++i) {
    const uint32_t high = PeekU8(letters, 2 * i) - 'A', low = PeekU8(letters, 2 * i + 1) - 'A';
    if (high > 15 || low > 15) return false;
    name[i] = static_cast<uint8_t>(high << 4 | low);
  }
  return true;
}

// One label into the text; the first may be a name in first-level encoding.
void AddLabel(NameText& text, NetBiosName& name, const Field& label, bool isFirst) {
  uint8_t plain[kNetBiosNameLength];
  if (isFirst && label.length == static_cast<int32_t>(kEncodedLength) && DecodeLetters(CursorOver(label), plain)) {
    name.form = NetBiosName::kEncoded;
    name.suffix = plain[kNetBiosNameLength - 1];
    AddPlainName(text, MakeCursor(plain, 0, kNetBiosNameLength));
    AddSuffix(text, name.suffix);
    return;
  }
  if (!isFirst) text.Add('.');
  for (int32_t i = 0; i < label.length && !text.IsFull(); ++i) text.AddByte(PeekU8(label, i));
}

// The parts of a name, a line each, as far as they stand here.
void AddPartLines(const Place& in, const NetBiosName& name, bool isGroup) {
  Cursor c = CursorOver(name.field);
  const bool isEncoded = name.form == NetBiosName::kEncoded;
  bool isFirst = isEncoded;
  for (Loop loop; MoreAt(in, c, loop);) {
    if (PeekU8(c) > kLongestLabel) {
      const Field pointer = TakeU16(c);
      AddLine(in, pointer, "Compression Pointer: Offset %u", pointer.value & 0x3FFF);
      continue;
    }
    const Field length = TakeU8(c);
    if (length.value == 0) {
      AddLine(in, length, "End of Name");
      continue;
    }
    AddLine(in, length, "Label Length: %u", length.value);
    const Field label = TakeBytes(c, length.value);
    if (isFirst) {
      ShortText<64> plain{};
      TextBuilder<64> text{plain, 0};
      uint8_t bytes[kNetBiosNameLength];
      if (label.here && DecodeLetters(CursorOver(label), bytes)) {
        AddPlainName(text, MakeCursor(bytes, 0, kNetBiosNameLength));
      }
      AddLine(in, Slice(label, 0, 30), "Name: %s", plain);
      AddLine(in, Slice(label, 30, 2), "Suffix: <%.02X> = %s", name.suffix, NetBiosSuffixName(name.suffix, isGroup));
    } else {
      AddLine(in, label, "%s: %s", isEncoded ? "Scope Label" : "Label", Text(label));
    }
    isFirst = false;
  }
}

}  // namespace

NetBiosName TakeNetBiosName(Cursor& c, const Field& message) {
  NetBiosName name{};
  NameText text{name.text, 0};
  const Cursor start = c;
  bool isFirst = true;
  TakeNameLabels(c, message, [&](const Field& label) {
    AddLabel(text, name, label, isFirst);
    isFirst = false;
    return !text.IsFull();
  });
  if (!c.ranShort) name.field = {start.at, start.offset, c.offset - start.offset, 0, true};
  return name;
}

NetBiosName TakePlainNetBiosName(Cursor& c) {
  NetBiosName name{};
  name.field = TakeBytes(c, kNetBiosNameLength);
  if (!name.field.here) return name;
  name.form = NetBiosName::kPlain;
  NameText text{name.text, 0};
  AddPlainName(text, CursorOver(name.field));
  name.suffix = PeekU8(name.field, kNetBiosNameLength - 1);
  AddSuffix(text, name.suffix);
  return name;
}

LineHandle AddNetBiosNameLine(const Place& in, const char* label, const NetBiosName& name, bool isGroup) {
  const LineHandle line =
      name.form == NetBiosName::kLabels
          ? AddLine(in, name.field, "%s: %s (not in first-level encoding)", label, name.text)
          : AddLine(in, name.field, "%s: %s = %s", label, name.text, NetBiosSuffixName(name.suffix, isGroup));
  if (name.form != NetBiosName::kPlain) AddPartLines(Under(in, line), name, isGroup);
  return line;
}

const char* NetBiosSuffixName(uint32_t suffix, bool isGroup) {
  const char* known = isGroup ? LookupName(kGroupSuffixNames, suffix, nullptr) : nullptr;
  return known ? known : LookupName(kSuffixNames, suffix);
}

}  // namespace qxview
