// What the decoders of SMB's commands are written with: the block of one command and the rows of the fields in it.
//
//   constexpr auto kClose = LittleRows<Smb>({Hex(2, "FID"), UnixTime(4, "Last Write Time")});
//   void CloseRequestWords(SmbBlock& block) { ShowSmbRows(block, block.words, kClose); }
//
// Fields that the words or the data bytes have no room for add nothing; what no field took is shown as a dump.
#pragma once
#include <cstring>
#include <span>

#include "core/elements.h"
#include "decoders/smb/smb.h"
#include "decoders/smb/smb_names.h"

namespace qxview {

// The message that the blocks belong to.
struct SmbMessage {
  Cursor whole;          // from the header's first byte to the end of the message
  uint32_t command;      // of the header
  uint32_t status;
  uint32_t tid, pid, uid, mid;   // the PID with its high half
  bool isResponse, isUnicode;
};

struct SmbCommand;

// A block while it is decoded. Decoders take from `words` and `data`; both end where the block's counts say or where
// the message does.
struct SmbBlock {
  const SmbMessage* message;
  const SmbCommand* command;
  Place in;              // under "SMB - %s"
  LineHandle line;       // the heading itself
  uint32_t wordCount;    // as stated
  Cursor words;          // of AndX commands behind the AndX group
  uint32_t byteCount;    // as stated
  Cursor data;           // empty until the words are done
  Cursor allWords;       // the words from the first on, for what stands in the data bytes
};

// The words of a block by number, the first is 0 (of AndX commands the first of the AndX group); 0 for one that is not
// there.
inline uint32_t SmbWord(const SmbBlock& block, int32_t number) { return PeekLittleU16(block.allWords, 2 * number); }

using SmbPart = void (*)(SmbBlock& block);

// How a command's blocks are read. A null part takes nothing, so all of it is shown as a dump.
struct SmbCommand {
  uint8_t code;
  const char* name;
  bool isAndX;
  SmbPart requestWords, requestData, responseWords, responseData;
};

// By code; null for a code that no command has.
const SmbCommand* FindSmbCommand(uint32_t code);

// The bytes of an offset that counts from the header's first byte and a length, both as stated; not here unless all of
// them lie in the message.
Field SmbRange(const SmbMessage& message, uint32_t offset, uint32_t length);
// The cursor over what of such a range is in the message.
Cursor SmbCursor(const SmbMessage& message, uint32_t offset, uint32_t length);
inline int32_t SmbOffset(const SmbMessage& message, const Cursor& c) { return c.offset - message.whole.begin; }

// --- rows ---

// What rows are shown with: the message, which says what characters texts are in. And what they bring for what stands
// behind them: the length of a text, the count of a list, an information level, flags.
struct Smb {
  const SmbMessage* message = nullptr;
  Field length{}, count{}, level{}, flags{};
};
using SmbRowSpan = RowSpan<Smb>;

Smb ShowSmbRows(const SmbMessage& message, const Place& in, Cursor& c, SmbRowSpan rows);
inline Smb ShowSmbRows(const SmbBlock& block, Cursor& c, SmbRowSpan rows) {
  return ShowSmbRows(*block.message, block.in, c, rows);
}

// Texts to their terminator or the end: in the message's characters; of one byte a character whatever the message says.
// Of as many bytes as the length of a row before; of one byte a character in a field of this size.
void ShowSmbText(const Place& in, Cursor& c, const char* label, Smb& values);
void ShowSmbOemText(const Place& in, Cursor& c, const char* label, Smb& values);
void ShowSmbCounted(const Place& in, Cursor& c, const char* label, Smb& values);
template <int32_t kSize>
void ShowSmbOemName(const Place& in, Cursor& c, const char* label, Smb& values);
consteval Row<Smb> SmbText(const char* label) { return Shown(label, ShowSmbText); }
consteval Row<Smb> SmbOemText(const char* label) { return Shown(label, ShowSmbOemText); }
consteval Row<Smb> SmbCounted(const char* label) { return Shown(label, ShowSmbCounted); }
template <int32_t kSize>
consteval Row<Smb> SmbOemName(const char* label) { return Shown(label, ShowSmbOemName<kSize>); }
consteval Row<Smb> SmbLength(const char* label) { return Number(4, label).Into(&Smb::length); }

// Two 16-bit words of local time.
void ShowSmbTimeDate(const Place& in, const Field& both, const char* label);
void ShowSmbDateTime(const Place& in, const Field& both, const char* label);
consteval RowData SmbTimeDate(const char* label) { return Shown(4, label, ShowSmbTimeDate); }
consteval RowData SmbDateTime(const char* label) { return Shown(4, label, ShowSmbDateTime); }

// In front of core texts and blocks in the data bytes.
inline constexpr RowData kSmbBufferFormat = Coded(1, "Buffer Format", kSmbBufferFormatNames);

// Rows that several tables hold.
template <const auto& kTable>
void ShowSmbTable(const Place& in, Cursor& c, const char*, Smb& values) {
  ShowRows<Smb>(in, c, kTable, values);
}
template <const auto& kTable>
consteval Row<Smb> SmbTable() { return Shown(nullptr, ShowSmbTable<kTable>); }

// Up to `most` records of `size` bytes each, under a line with the title.
void AddSmbRecords(const SmbMessage& message, const Place& in, Cursor& c, const char* title, SmbRowSpan rows,
                   int32_t size, uint32_t most = UINT32_MAX);
template <const auto& kTable, int32_t kSize>
void ShowSmbRecords(const Place& in, Cursor& c, const char* title, Smb& values) {
  AddSmbRecords(*values.message, in, c, title, kTable, kSize);
}
template <const auto& kTable, int32_t kSize>
consteval Row<Smb> SmbRecords(const char* title) { return Shown(title, ShowSmbRecords<kTable, kSize>); }

// What a code selects, when it is in the table.
using SmbChoices = ChoiceSpan<Smb>;
void ShowSmbChoice(const SmbMessage& message, const Place& in, Cursor& c, SmbChoices choices, uint32_t code,
                   uint32_t flags = 0);
template <const auto& kChoices>
const char* SmbChoiceName(uint32_t code) {
  const Choice<Smb>* found = FindChoice<Smb>(kChoices, code);
  return found ? found->name : kUndefined;
}

// A line that is a title alone.
inline LineHandle AddSmbTitle(const Place& at, const Field& field, const char* title) {
  return AddMadeLine(at, field, title, static_cast<int32_t>(std::strlen(title)));
}
// Up to `length` bytes as they are: "Label: 00 01", or a dump when they are too many for a line. Nothing for none.
void AddSmbBytes(const Place& in, Cursor& c, int64_t length, const char* label);

// --- texts ---

// As flags 2 say, one byte each, two bytes each, as flags 2 say but wherever the text starts.
enum class SmbCharacters { kMessage, kOem, kUnicode, kUnaligned };

constexpr int32_t kSmbTextSize = 260;
struct SmbString {
  char text[kSmbTextSize];   // Windows-1252, cut to the buffer; characters that it lacks are '?'
  Field field;               // with its terminator
};

// A text up to its terminator or the end of the cursor. Two-byte characters are aligned to the header's first byte;
// the padding byte is taken, and shown as "Pad: %s" by the second form.
SmbString TakeSmbString(const SmbMessage& message, Cursor& c, SmbCharacters characters = SmbCharacters::kMessage);
SmbString AddSmbString(const SmbMessage& message, const Place& in, Cursor& c, const char* label,
                       SmbCharacters characters = SmbCharacters::kMessage);
// A text of `length` bytes, terminated or not.
SmbString AddSmbCounted(const SmbMessage& message, const Place& in, Cursor& c, int64_t length, const char* label,
                        SmbCharacters characters = SmbCharacters::kMessage);
template <int32_t kSize>
void ShowSmbOemName(const Place& in, Cursor& c, const char* label, Smb& values) {
  if (Left(c) > 0) AddSmbCounted(*values.message, in, c, kSize, label, SmbCharacters::kOem);
}
// Shows on the line that `in` is the place under what the entry is called.
void NameSmbEntry(const Place& in, const SmbString& name);
void AddSmbPad(const SmbMessage& message, const Place& in, Cursor& c, int32_t alignment, const char* label = "Pad");
// The padding in front of what stands at an offset from the header's first byte; nothing for one that is behind the
// cursor or past its end.
void AddSmbPadTo(const SmbMessage& message, const Place& in, Cursor& c, uint32_t offset, const char* label = "Pad");

const char* SmbDosClassName(uint32_t errorClass);
const char* SmbDosErrorName(uint32_t errorClass, uint32_t code);

}  // namespace qxview
