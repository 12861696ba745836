// DFS referrals (MS-DFSC 2.2.4): which servers hold the files of a path.
#include "decoders/common/guid.h"
#include "decoders/smb/smb_info_levels.h"

namespace qxview {
namespace {

constexpr auto kHeaderBits = SortedNames({
    {0x1, "Referral Servers"}, {0x2, "Storage Servers"}, {0x4, "Target Fail Back"}});
constexpr auto kServerTypes = SortedNames({{0, "Non-Root"}, {1, "Root"}});
constexpr auto kEntryBits = SortedNames({{0x0002, "Name List Referral"}, {0x0004, "Target Set Boundary"}});
constexpr uint32_t kNameList = 0x0002;

constexpr auto kHeader = LittleRows<Smb>({
    Number(2, "Path Consumed"), Number(2, "Number Of Referrals").Into(&Smb::count),
    Flags(4, "Referral Header Flags", kHeaderBits)});
constexpr auto kEntry = LittleRows<Smb>({
    Number(2, "Version"), Number(2, "Size"), Coded(2, "Server Type", kServerTypes),
    Flags(2, "Referral Entry Flags", kEntryBits)});
constexpr auto kProximity = LittleRows<Smb>({Number(4, "Proximity")});
constexpr auto kTimeToLive = LittleRows<Smb>({Number(4, "Time To Live")});
constexpr auto kExpandedNames = LittleRows<Smb>({Number(2, "Number Of Expanded Names")});
constexpr auto kSite = LittleRows<Smb>({LittleGuid("Service Site GUID")});

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
  const uint32_t version = PeekLittleU16(c), size = PeekLittleU16(c, 2), flags = PeekLittleU16(c, 6);
  Cursor fixed = TakeCursor(c, size < 8 ? 8 : size);
  const Place in = Under(at, AddLine(at, Ahead(fixed, fixed.left), "Referral"));
  ShowSmbRows(message, in, fixed, kEntry);
  if (version == 1) {
    AddSmbString(message, in, fixed, "Share Name");
  } else {
    if (version == 2) ShowSmbRows(message, in, fixed, kProximity);
    ShowSmbRows(message, in, fixed, kTimeToLive);
    if (version > 2 && (flags & kNameList)) {
      AddText(message, in, fixed, entry, "Special Name", end);
      ShowSmbRows(message, in, fixed, kExpandedNames);
      AddText(message, in, fixed, entry, "Expanded Name", end);
    } else {
      AddText(message, in, fixed, entry, "DFS Path", end);
      AddText(message, in, fixed, entry, "DFS Alternate Path", end);
      AddText(message, in, fixed, entry, "Network Address", end);
      if (version > 2) ShowSmbRows(message, in, fixed, kSite);
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
  const uint32_t count = ShowSmbRows(t.message, in, c, kHeader).count.value;
  int32_t end = c.offset;
  Loop loop;
  for (uint32_t i = 0; i < count && MoreAt(in, c, loop) && Left(c) >= 8; ++i) AddReferral(t.message, in, c, &end);
  if (end > c.offset) TakeBytes(c, end - c.offset);
}

}  // namespace qxview
