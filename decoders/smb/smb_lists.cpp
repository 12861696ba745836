// Lists that several levels and functions of transactions hold: extended attributes and quotas.
#include "decoders/smb/smb_info_levels.h"

namespace qxview {
namespace {

constexpr auto kEaBits = SortedNames({{0x80, "Needed"}});

// With its terminator.
void ShowEaName(const Place& in, Cursor& c, const char* label, Smb& values) {
  if (Left(c) > 0) AddSmbCounted(*values.message, in, c, values.length.value + 1, label, SmbCharacters::kOem);
}
void ShowEaValue(const Place& in, Cursor& c, const char* label, Smb& values) {
  Cursor value = TakeCursor(c, values.count.value);
  AddBlock(in, Rest(value), label);
}
constexpr auto kEa = LittleRows<Smb>({
    Flags(1, "EA Flags", kEaBits), Number(1, "EA Name Length").Into(&Smb::length),
    Number(2, "EA Value Length").Into(&Smb::count), Shown("EA Name", ShowEaName), Shown("EA Value", ShowEaValue)});
constexpr auto kFullEa = LittleRows<Smb>({Number(4, "Next Entry Offset"), SmbTable<kEa>()});
constexpr auto kEaName = LittleRows<Smb>({
    Number(1, "EA Name Length").Into(&Smb::length), Shown("EA Name", ShowEaName)});
constexpr auto kListSize = LittleRows<Smb>({SmbLength("EA List Size")});

// Lists count their size with them.
Cursor TakeList(const SmbMessage& message, const Place& in, Cursor& c) {
  const int64_t size = ShowSmbRows(message, in, c, kListSize).length.value;
  return TakeCursor(c, size - 4);
}

constexpr auto kQuota = LittleRows<Smb>({
    Number(4, "Next Entry Offset"), Number(4, "SID Length"), FileTime("Change Time"), Number(8, "Quota Used"),
    Number(8, "Quota Threshold"), Number(8, "Quota Limit"), SmbSid("SID")});

}  // namespace

void ShowSmbEaList(const Place& in, Cursor& c, const char*, Smb& values) {
  Cursor list = TakeList(*values.message, in, c);
  for (Loop loop; MoreAt(in, list, loop);) {
    const LineHandle line = AddLine(in, Ahead(list, 0), "Extended Attribute");
    const int32_t start = list.offset;
    ShowSmbRows(*values.message, Under(in, line), list, kEa);
    SetRange(in, line, start, list.offset - start);
  }
}

void AddSmbEaNames(const SmbMessage& message, const Place& in, Cursor& c) {
  Cursor list = TakeList(message, in, c);
  for (Loop loop; MoreAt(in, list, loop);) ShowSmbRows(message, in, list, kEaName);
}

void ShowSmbFullEas(const Place& in, Cursor& c, const char* title, Smb& values) {
  AddSmbEntries(*values.message, in, c, title, kFullEa, 8);
}

void ShowSmbQuotas(const Place& in, Cursor& c, const char* title, Smb& values) {
  AddSmbEntries(*values.message, in, c, title, kQuota, 40);
}

}  // namespace qxview
