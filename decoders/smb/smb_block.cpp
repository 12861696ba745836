// The fields of blocks.
#include "decoders/smb/smb_block.h"

#include "core/times.h"

namespace qxview {
namespace {

constexpr int32_t kSmbShownBytes = 64;   // in one line; more is a dump

void AddDosTime(const Place& in, const Field& both, const char* label, bool timeFirst) {
  Cursor c = CursorOver(both);
  const uint32_t first = TakeLittleU16(c).value, second = TakeLittleU16(c).value;
  AddLine(in, both, "%s: %s", label, timeFirst ? DosTimeText(second, first) : DosTimeText(first, second));
}

}  // namespace

Smb ShowSmbRows(const SmbMessage& message, const Place& in, Cursor& c, SmbRowSpan rows) {
  Smb values{&message};
  ShowRows<Smb>(in, c, rows, values);
  return values;
}

void AddSmbRecords(const SmbMessage& message, const Place& in, Cursor& c, const char* title, SmbRowSpan rows,
                   int32_t size, uint32_t most) {
  Loop loop;
  for (uint32_t i = 0; i < most && MoreAt(in, c, loop) && Left(c) >= size; ++i) {
    Cursor record = TakeCursor(c, size);
    ShowSmbRows(message, Under(in, AddSmbTitle(in, Ahead(record, size), title)), record, rows);
  }
}

void ShowSmbChoice(const SmbMessage& message, const Place& in, Cursor& c, SmbChoices choices, uint32_t code,
                   uint32_t flags) {
  Smb values{&message};
  values.flags.value = flags;
  const Choice<Smb>* found = FindChoice<Smb>(choices, code);
  if (found) ShowRows<Smb>(in, c, found->rows, values);
}

void ShowSmbText(const Place& in, Cursor& c, const char* label, Smb& values) {
  AddSmbString(*values.message, in, c, label);
}
void ShowSmbOemText(const Place& in, Cursor& c, const char* label, Smb& values) {
  AddSmbString(*values.message, in, c, label, SmbCharacters::kOem);
}
void ShowSmbCounted(const Place& in, Cursor& c, const char* label, Smb& values) {
  if (Left(c) > 0) AddSmbCounted(*values.message, in, c, values.length.value, label);
}

void ShowSmbTimeDate(const Place& in, const Field& both, const char* label) { AddDosTime(in, both, label, true); }
void ShowSmbDateTime(const Place& in, const Field& both, const char* label) { AddDosTime(in, both, label, false); }

void AddSmbPad(const SmbMessage& message, const Place& in, Cursor& c, int32_t alignment, const char* label) {
  const int32_t beyond = SmbOffset(message, c) % alignment;
  if (beyond == 0 || Left(c) < 1) return;
  const int32_t wanted = alignment - beyond;
  const Field pad = TakeBytes(c, wanted < Left(c) ? wanted : Left(c));
  AddLine(in, pad, "%s: %s", label, HexText(pad));
}

void AddSmbPadTo(const SmbMessage& message, const Place& in, Cursor& c, uint32_t offset, const char* label) {
  const int64_t ahead = static_cast<int64_t>(offset) - SmbOffset(message, c);
  if (ahead < 1 || ahead > Left(c)) return;
  AddSmbBytes(in, c, ahead, label);
}

void AddSmbBytes(const Place& in, Cursor& c, int64_t length, const char* label) {
  const Field bytes = TakeBytes(c, length < Left(c) ? length : Left(c));
  if (bytes.length > kSmbShownBytes) {
    AddBlock(in, bytes, label);
  } else if (bytes.length > 0) {
    AddLine(in, bytes, "%s: %s", label, HexText(bytes));
  }
}

}  // namespace qxview
