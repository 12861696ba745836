// DFS referrals (MS-DFSC 2.2.4): which servers hold the files of a path.
#include "decoders/smb/smb_info_levels.h"

namespace qxview {
namespace {

constexpr auto kHeaderBits = SortedNames({
    {0x1, "Referral Servers"}, {0x2, "Storage Servers"}, {0x4, "Target Fail Back"}});
constexpr auto kServerTypes = SortedNames({{0, "Non-Root"}, {1, "Root"}});
constexpr auto kEntryBits = SortedNames({{0x0002, "Name List Referral"}, {0x0004, "Target Set Boundary"}});
constexpr uint32_t kNameList = 0x0002;

constexpr SmbField kHeader[] = {
    {kSmbNumber16, "Path Consumed"}, {kSmbNumber16, "Number Of Referrals"},
    {kSmbFlags32, "Referral Header Flags", kHeaderBits}};
constexpr SmbField kEntry[] = {
    {kSmbNumber16, "Version"}, {kSmbNumber16, "Size"}, {kSmbName16, "Server Type", kServerTypes},
    {kSmbFlags16, "Referral Entry Flags", kEntryBits}};
constexpr SmbField kProximity[] = {{kSmbNumber32, "Proximity"}};
constexpr SmbField kTimeToLive[] = {{kSmbNumber32, "Time To Live"}};

// An offset from the entry's start, and the text that it leads to.
void AddText(const SmbMessage& message, const Place& in, Cursor& c, const Cursor& entry, const char* label,
             int32_t* end) {
  const Field offset = TakeLittleU16(c);
  AddLine(in, offset, "%s Offset: %u", label, offset.value);
  if (!offset.here || offset.value == 0 || static_cast<int32_t>(offset.value) >= Left(entry)) return;
  Cursor text = entry;
  TakeBytes(text, offset.value);
  if (text.left > 2 * kSmbTextSize) text.left = 2 * kSmbTextSize;
  AddSmbString(message, in, text, label, SmbCharacters::kUnaligned);
  if (text.offset > *end) *end = text.offset;
}

// One referral at the cursor; `end` grows to the end of its texts.
void AddReferral(const SmbMessage& message, const Place& at, Cursor& c, int32_t* end) {
  const Cursor entry = c;
  const uint32_t version = ReadLittleU16(c.at), flags = ReadLittleU16(c.at + 6);
  const uint32_t size = ReadLittleU16(c.at + 2);
  Cursor fixed = TakeCursor(c, size < 8 ? 8 : size);
  const Place in = Under(at, AddLine(at, Ahead(fixed, fixed.left), "Referral"));
  AddSmbFields(message, in, fixed, kEntry);
  if (version == 1) {
    AddSmbString(message, in, fixed, "Share Name");
  } else {
    if (version == 2) AddSmbFields(message, in, fixed, kProximity);
    AddSmbFields(message, in, fixed, kTimeToLive);
    if (version > 2 && (flags & kNameList)) {
      AddText(message, in, fixed, entry, "Special Name", end);
      const Field names = TakeLittleU16(fixed);
      AddLine(in, names, "Number Of Expanded Names: %u", names.value);
      AddText(message, in, fixed, entry, "Expanded Name", end);
    } else {
      AddText(message, in, fixed, entry, "DFS Path", end);
      AddText(message, in, fixed, entry, "DFS Alternate Path", end);
      AddText(message, in, fixed, entry, "Network Address", end);
      if (version > 2) AddSmbGuid(in, fixed, "Service Site GUID");
    }
  }
  AddSmbFiller(in, fixed);
  if (c.offset > *end) *end = c.offset;
}

}  // namespace

void AddSmbDfsReferral(SmbTransaction& t, const Place& in, Cursor& c) {
  int32_t end = c.offset;
  if (Left(c) >= 8) AddReferral(t.message, in, c, &end);
  if (end > c.offset) TakeBytes(c, end - c.offset);
}

void AddSmbDfsReferrals(SmbTransaction& t, const Place& in, Cursor& c) {
  const uint32_t count = Left(c) >= 4 ? ReadLittleU16(c.at + 2) : 0;
  AddSmbFields(t.message, in, c, kHeader);
  int32_t end = c.offset;
  Loop loop;
  for (uint32_t i = 0; i < count && MoreAt(in, c, loop) && Left(c) >= 8; ++i) AddReferral(t.message, in, c, &end);
  if (end > c.offset) TakeBytes(c, end - c.offset);
}

}  // namespace qxview
