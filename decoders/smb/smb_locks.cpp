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

constexpr SmbField kLock[] = {{kSmbHex16, "FID"}, {kSmbNumber32, "Length"}, {kSmbNumber32, "Offset"}};

constexpr SmbField kLocking[] = {
    {kSmbHex16, "FID"}, {kSmbFlags8, "Type of Lock", kLockTypeBits},
    {kSmbName8, "New Opportunistic Lock Level", kOplockLevels}, {kSmbNumber32, "Timeout"},
    {kSmbNumber16, "Number of Unlocks"}, {kSmbNumber16, "Number of Locks"}};

constexpr SmbField kRange[] = {{kSmbNumber16, "PID"}, {kSmbNumber32, "Offset"}, {kSmbNumber32, "Length"}};

// The high half of these numbers stands first.
void AddLargeNumber(const Place& in, Cursor& c, const char* label) {
  const Field field = TakeBytes(c, 8);
  if (!field.here) return;
  const uint64_t value = static_cast<uint64_t>(ReadLittleU32(field.bytes)) << 32 | ReadLittleU32(field.bytes + 4);
  AddLine(in, field, "%s: %I64u", label, value);
}

void AddRanges(SmbBlock& block, uint32_t count, bool large, const char* title) {
  const int32_t size = large ? 20 : 10;
  for (uint32_t i = 0; i < count && Left(block.data) >= size && !PacketOf(block.in).limitReached; ++i) {
    Cursor range = TakeCursor(block.data, size);
    const Place in = Under(block.in, AddLine(block.in, Ahead(range, size), "%s", title));
    if (!large) {
      AddSmbFields(*block.message, in, range, kRange);
      continue;
    }
    const Field pid = TakeLittleU16(range);
    AddLine(in, pid, "PID: %u", pid.value);
    const Field pad = TakeBytes(range, 2);
    AddLine(in, pad, "Pad: %s", HexText(pad));
    AddLargeNumber(in, range, "Offset");
    AddLargeNumber(in, range, "Length");
  }
}

}  // namespace

void LockRequestWords(SmbBlock& block) { AddSmbFields(block, block.words, kLock); }
void LockingRequestWords(SmbBlock& block) { AddSmbFields(block, block.words, kLocking); }

void LockingRequestData(SmbBlock& block) {
  const bool large = (SmbByte(block, 6) & kLargeFiles) != 0;
  AddRanges(block, SmbWord(block, 6), large, "Unlock");
  AddRanges(block, SmbWord(block, 7), large, "Lock");
}

}  // namespace qxview
