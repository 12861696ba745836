// Lists that several levels and functions of transactions hold: extended attributes and quotas.
#include "decoders/common/guid.h"
#include "decoders/smb/smb_info_levels.h"

namespace qxview {
namespace {

constexpr auto kEaBits = SortedNames({{0x80, "Needed"}});

// Flags, lengths, the name with its terminator, and the value.
void AddFullEa(const SmbMessage& message, const Place& in, Cursor& c) {
  constexpr SmbField kFlags[] = {{kSmbFlags8, "EA Flags", kEaBits}};
  AddSmbFields(message, in, c, kFlags);
  const Field nameLength = TakeU8(c);
  AddLine(in, nameLength, "EA Name Length: %u", nameLength.value);
  const Field valueLength = TakeLittleU16(c);
  AddLine(in, valueLength, "EA Value Length: %u", valueLength.value);
  if (!valueLength.here || Left(c) < 1) return;
  AddSmbCounted(message, in, c, nameLength.value + 1, "EA Name", SmbCharacters::kOem);
  Cursor value = TakeCursor(c, valueLength.value);
  AddBlock(in, Rest(value), "EA Value");
}

}  // namespace

void AddSmbEaList(const SmbMessage& message, const Place& in, Cursor& c) {
  const Field size = TakeLittleU32(c);
  AddLine(in, size, "EA List Size: %u", size.value);
  Cursor list = TakeCursor(c, static_cast<int64_t>(size.value) - 4);
  for (Loop loop; MoreAt(in, list, loop);) {
    const LineHandle line = AddLine(in, Ahead(list, 0), "Extended Attribute");
    const int32_t start = list.offset;
    AddFullEa(message, Under(in, line), list);
    SetRange(in, line, start, list.offset - start);
  }
}

void AddSmbEaNames(const SmbMessage& message, const Place& in, Cursor& c) {
  const Field size = TakeLittleU32(c);
  AddLine(in, size, "EA List Size: %u", size.value);
  Cursor list = TakeCursor(c, static_cast<int64_t>(size.value) - 4);
  for (Loop loop; MoreAt(in, list, loop);) {
    const Field length = TakeU8(list);
    AddLine(in, length, "EA Name Length: %u", length.value);
    if (Left(list) > 0) AddSmbCounted(message, in, list, length.value + 1, "EA Name", SmbCharacters::kOem);
  }
}

void AddSmbFullEas(const SmbMessage& message, const Place& in, Cursor& c, uint32_t) {
  for (Loop loop; MoreAt(in, c, loop);) {
    Cursor entry = TakeSmbEntry(c, 8);
    const Place under = Under(in, AddLine(in, Ahead(entry, entry.left), "Extended Attribute"));
    const Field next = TakeLittleU32(entry);
    AddLine(under, next, "Next Entry Offset: %u", next.value);
    AddFullEa(message, under, entry);
    AddSmbFiller(under, entry);
  }
}

void AddSmbQuotas(const Place& in, Cursor& c) {
  constexpr const char* kLabels[] = {"Quota Used", "Quota Threshold", "Quota Limit"};
  for (Loop loop; MoreAt(in, c, loop);) {
    Cursor entry = TakeSmbEntry(c, 40);
    const Place under = Under(in, AddLine(in, Ahead(entry, entry.left), "Quota"));
    const Field next = TakeLittleU32(entry);
    AddLine(under, next, "Next Entry Offset: %u", next.value);
    const Field length = TakeLittleU32(entry);
    AddLine(under, length, "SID Length: %u", length.value);
    const WideField changed = TakeLittleU64(entry);
    AddLine(under, changed, "Change Time: %s", FileTimeText(changed.wide));
    for (const char* label : kLabels) {
      const WideField quota = TakeLittleU64(entry);
      AddLine(under, quota, "%s: %I64u", label, quota.wide);
    }
    AddSmbSid(under, entry, "SID");
    AddSmbFiller(under, entry);
  }
}

void AddSmbGuid(const Place& in, Cursor& c, const char* label) {
  const Field guid = TakeBytes(c, kGuidSize);
  AddLine(in, guid, "%s: {%s}", label, TextOfGuid(guid, GuidOrder::kLittle));
}

}  // namespace qxview
