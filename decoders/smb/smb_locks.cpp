// Locking ranges of a file (MS-CIFS 2.2.4.13, 2.2.4.14 and 2.2.4.32).
//
// Locking AndX has its ranges in the data bytes, the ones to unlock first:
//   0    2       6       10                      0    2    4            8           12           16          20
//   PID  offset  length           or, of 64 bits  PID  pad  offset high  offset low  length high  length low
#include "decoders/smb/smb_commands.h"

namespace qxview {
namespace {

constexpr uint32_t kLargeFiles = 0x10;

constexpr auto kLockTypeBits = SortedNames({
    {0x01, "Shared Lock"}, {0x02, "Opportunistic Lock Released"}, {0x04, "Change Lock Type"}, {0x08, "Cancel Lock"},
    {0x10, "Large Files"}});
constexpr auto kOplockLevels = SortedNames({{0, "None"}, {1, "Level II"}});

constexpr auto kLock = LittleRows<Smb>({Hex(2, "FID"), Number(4, "Length"), Number(4, "Offset")});

constexpr auto kLocking = LittleRows<Smb>({
    Hex(2, "FID"), Flags(1, "Type of Lock", kLockTypeBits), Coded(1, "New Opportunistic Lock Level", kOplockLevels),
    Number(4, "Timeout"), Number(2, "Number of Unlocks"), Number(2, "Number of Locks")});

constexpr auto kRange = LittleRows<Smb>({Number(2, "PID"), Number(4, "Offset"), Number(4, "Length")});

// The high half of these numbers stands first.
void ShowLargeNumber(const Place& in, const Field& both, const char* label) {
  Cursor c = CursorOver(both);
  const uint64_t high = TakeLittleU32(c).value;
  AddLine(in, both, "%s: %I64u", label, high << 32 | TakeLittleU32(c).value);
}
constexpr auto kLargeRange = LittleRows<Smb>({
    Number(2, "PID"), Bytes(2, "Pad"), Shown(8, "Offset", ShowLargeNumber), Shown(8, "Length", ShowLargeNumber)});

void AddRanges(SmbBlock& block, uint32_t count, bool large, const char* title) {
  const SmbRowSpan rows = large ? SmbRowSpan(kLargeRange) : kRange;
  AddSmbRecords(*block.message, block.in, block.data, title, rows, large ? 20 : 10, count);
}

}  // namespace

void LockRequestWords(SmbBlock& block) { ShowSmbRows(block, block.words, kLock); }
void LockingRequestWords(SmbBlock& block) { ShowSmbRows(block, block.words, kLocking); }

void LockingRequestData(SmbBlock& block) {
  const bool large = (PeekU8(block.allWords, 6) & kLargeFiles) != 0;
  AddRanges(block, SmbWord(block, 6), large, "Unlock");
  AddRanges(block, SmbWord(block, 7), large, "Lock");
}

}  // namespace qxview
