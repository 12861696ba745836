// What the decoders of SMB's commands are written with: the block of one command and the fields in it.
//
//   constexpr SmbField kCloseRequest[] = {{kFid, "FID"}, {kSmbTime32, "Last Write Time"}};
//   void CloseRequestWords(SmbBlock& block) { AddSmbFields(block, block.words, kCloseRequest); }
//
// Fields that the words or the data bytes have no room for add nothing; what no field took is shown as a dump.
#pragma once
#include <span>

#include "core/times.h"
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
  Field allWords;        // the words from the first on, for what stands in the data bytes
};

// The words of a block by number, the first is 0 (of AndX commands the first of the AndX group); 0 for one that is not
// there. SmbLong is two of them. Offsets of odd fields are SmbByte's.
uint32_t SmbByte(const SmbBlock& block, int32_t offset);
inline uint32_t SmbWord(const SmbBlock& block, int32_t number) {
  return SmbByte(block, 2 * number) | SmbByte(block, 2 * number + 1) << 8;
}
inline uint32_t SmbLong(const SmbBlock& block, int32_t number) {
  return SmbWord(block, number) | SmbWord(block, number + 1) << 16;
}

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

// --- fields ---

enum SmbForm : uint8_t {
  kSmbNumber8, kSmbNumber16, kSmbNumber32, kSmbNumber64,   // "Label: 5"
  kSmbHex8, kSmbHex16, kSmbHex32, kSmbHex64,               // "Label: 0x0005"
  kSmbName8, kSmbName16, kSmbName32,                       // "Label: [5] = Name", "Undefined" for a value without one
  kSmbFlags8, kSmbFlags16, kSmbFlags32,                    // "Label: 0x05" and a bit line for each name's mask
  kSmbTime32,          // "Label: date": seconds since 1970
  kSmbFileTime,        // 64 bits, 100 ns since 1601
  kSmbDosTimeDate, kSmbDosDateTime,                        // two 16-bit words in this order
  kSmbBytes,           // "Label: 00 01": `size` bytes
  kSmbText,            // in the message's characters, to its terminator or the end: "Label: text"
  kSmbOemText,         // one byte a character whatever the message says
  kSmbFormattedText,   // a buffer format byte, then text
  kSmbFormattedOem,
  kSmbSigned16, kSmbSigned32,   // "Label: -5"
};

struct SmbField {
  SmbForm form;
  const char* label;
  SmbNames names = {};
  int32_t size = 0;
};

// Takes the fields from the cursor one after the other. The first overload returns the last number taken.
uint32_t AddSmbFields(SmbBlock& block, Cursor& c, std::span<const SmbField> fields);
uint32_t AddSmbFields(const SmbMessage& message, const Place& in, Cursor& c, std::span<const SmbField> fields);
Field AddSmbField(const SmbMessage& message, const Place& in, Cursor& c, const SmbField& field);
// Up to `length` bytes as they are: "Label: 00 01", or a dump when they are too many for a line. Nothing for none.
void AddSmbBytes(const Place& in, Cursor& c, int64_t length, const char* label);

// Parts that are one table.
template <const auto& kFields>
void SmbWords(SmbBlock& block) { AddSmbFields(block, block.words, kFields); }
template <const auto& kFields>
void SmbData(SmbBlock& block) { AddSmbFields(block, block.data, kFields); }

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
// Shows on the line that `in` is the place under what the entry is called.
void NameSmbEntry(const Place& in, const SmbString& name);
void AddSmbPad(const SmbMessage& message, const Place& in, Cursor& c, int32_t alignment, const char* label = "Pad");
// The padding in front of what stands at an offset from the header's first byte; nothing for one that is behind the
// cursor or past its end.
void AddSmbPadTo(const SmbMessage& message, const Place& in, Cursor& c, uint32_t offset, const char* label = "Pad");

const char* SmbDosClassName(uint32_t errorClass);
const char* SmbDosErrorName(uint32_t errorClass, uint32_t code);

}  // namespace qxview
