#include "core/rows.h"

#include <charconv>
#include <cstring>

#include "core/characters.h"
#include "core/line_facts.h"
#include "core/pieces_line.h"
#include "core/times.h"

namespace qxview::detail {
namespace {

constexpr int32_t kMostShownBytes = 160;   // in one line; more is a dump
constexpr uint64_t kMostSeconds = uint64_t{1} << 56;   // keeps years in the range that dates are made for

char CharacterOf(uint32_t code) {
  const uint8_t character = Windows1252Of(code);
  return character || code == 0 ? static_cast<char>(character) : '?';
}

int32_t CopyUtf8(const Field& field, char* out, int32_t size) {
  int32_t used = 0;
  for (int32_t at = 0; at < field.length && used < size - 1;) {
    const Utf8Character next = Utf8At(field.bytes + at, field.length - at);
    if (next.octets > 0 && next.code == 0) break;
    // What is no UTF-8 is shown as it is.
    out[used++] = next.octets ? CharacterOf(next.code) : static_cast<char>(field.bytes[at]);
    at += next.octets ? next.octets : 1;
  }
  out[used] = 0;
  return used;
}

int32_t CopyUtf16(const Field& field, bool little, char* out, int32_t size) {
  int32_t used = 0;
  for (int32_t at = 0; at + 1 < field.length && used < size - 1; at += 2) {
    const uint32_t code = little ? ReadLittleU16(field.bytes + at) : ReadU16(field.bytes + at);
    if (code == 0) break;
    if (code >= 0xDC00 && code < 0xE000) continue;   // the second half of a pair, which the first one stands for
    out[used++] = CharacterOf(code);
  }
  out[used] = 0;
  return used;
}

int32_t CopyFloat(const Field& field, bool little, char* out, int32_t size) {
  const uint64_t bits = NumberOf(field, little);
  std::to_chars_result result{};
  if (field.length == 4) {
    const uint32_t half = static_cast<uint32_t>(bits);
    float number;
    std::memcpy(&number, &half, sizeof number);
    result = std::to_chars(out, out + size - 1, number);
  } else {
    double number;
    std::memcpy(&number, &bits, sizeof number);
    result = std::to_chars(out, out + size - 1, number);
  }
  *result.ptr = 0;
  return static_cast<int32_t>(result.ptr - out);
}

int32_t CopyTime(const TimeText& time, char* out, int32_t size) {
  return FormatInto(out, size, "%s", time);
}

bool IsLittle(const RowWalk& walk, const RowData& row) { return row.little || walk.little; }

// The value of a field that is no number, made in `scratch` where it is not taken from the frame.
FormatArgument ValueOf(const RowWalk& walk, const RowData& row, const Field& field, char* scratch, int32_t size) {
  const bool little = IsLittle(walk, row);
  const uint64_t number = field.length <= 8 && field.length > 0 ? NumberOf(field, little) : 0;
  switch (row.form) {
    case RowForm::kText: return ArgumentOf(qxview::Text(field));
    case RowForm::kUtf8: return {reinterpret_cast<uintptr_t>(scratch), CopyUtf8(field, scratch, size), FormatArgument::kSlice};
    case RowForm::kUtf16:
      return {reinterpret_cast<uintptr_t>(scratch), CopyUtf16(field, little, scratch, size), FormatArgument::kSlice};
    case RowForm::kFloat: CopyFloat(field, little, scratch, size); break;
    case RowForm::kUnixTime:
      CopyTime(field.length <= 4 ? UnixTimeText(static_cast<uint32_t>(number))
                                 : UtcText(static_cast<int64_t>(number < kMostSeconds ? number : kMostSeconds)),
               scratch, size);
      break;
    case RowForm::kUnixMilliseconds:
      CopyTime(UtcText(static_cast<int64_t>(number / 1000), static_cast<uint32_t>(number % 1000) * 1000000, 3), scratch, size);
      break;
    case RowForm::kNtpTime: CopyTime(NtpTimeText(number), scratch, size); break;
    case RowForm::kNtpSpan: CopyTime(NtpSpanText(static_cast<uint32_t>(number)), scratch, size); break;
    case RowForm::kFileTime: CopyTime(FileTimeText(number), scratch, size); break;
    case RowForm::kAddress:
      if (field.length == 4) return ArgumentOf(IPv4Text(field.bytes));
      if (field.length == 6) return ArgumentOf(MacText(field.bytes));
      if (field.length == 16) return ArgumentOf(IPv6Text(field.bytes));
      return {reinterpret_cast<uintptr_t>(field.bytes), field.length,
              FormatArgument::kHex | static_cast<uint32_t>(':') << 8};
    default: return ArgumentOf(qxview::HexText(field));
  }
  return ArgumentOf(static_cast<const char*>(scratch));
}

uint64_t ShownNumber(const RowWalk& walk, const RowData& row, const Field& field) {
  if (row.form == RowForm::kBits) return field.value;
  const uint64_t number = field.length <= 4 ? field.value : NumberOf(field, IsLittle(walk, row));
  if (row.form != RowForm::kSigned) return number;
  const int32_t shift = 64 - 8 * field.length;
  return static_cast<uint64_t>(static_cast<int64_t>(number << shift) >> shift);
}

struct RowArguments {
  FormatArgument of[4];
  char scratch[kLineSize];
};

void Arrange(RowArguments& out, const RowText& text, const RowData& row, const RowWalk& walk, const Field& field) {
  for (int32_t i = 0; text.pieces[i].conversion; ++i) {
    switch (text.takes[i]) {
      case RowValue::kLabel: out.of[i] = ArgumentOf(row.label ? row.label : walk.title); break;
      case RowValue::kNumber: out.of[i] = {ShownNumber(walk, row, field), 0, FormatArgument::kNumber}; break;
      case RowValue::kName: out.of[i] = ArgumentOf(row.names.NameOf(field.value)); break;
      case RowValue::kPicture:
        out.of[i] = ArgumentOf(BitSlice{walk.word.value, static_cast<uint8_t>(8 * walk.word.length), row.firstBit,
                                        row.bitCount});
        break;
      case RowValue::kValue: out.of[i] = ValueOf(walk, row, field, out.scratch, sizeof out.scratch); break;
      case RowValue::kUnit: out.of[i] = ArgumentOf(row.unit); break;
    }
  }
}

// Which bytes a text of the row takes: up to its terminator, or all that are left.
int32_t LengthOf(const Cursor& c, const RowData& row) {
  if (!row.terminated) return c.left;
  const int32_t step = row.form == RowForm::kUtf16 ? 2 : 1;
  for (int32_t at = 0; at + step <= c.left; at += step) {
    if (c.at[at] == 0 && (step == 1 || c.at[at + 1] == 0)) return at + step;
  }
  return c.left;
}

void NoteRow(const RowWalk& walk, LineHandle line, const RowData& row, const Field& field) {
  View* view = walk.at.view;
  const char* label = row.label ? row.label : walk.title;
  if (!label) return;
  if (IsNumber(row.form) && row.form != RowForm::kFloat) {
    return NoteNumber(view, line, label, ShownNumber(walk, row, field), row.form == RowForm::kSigned);
  }
  char scratch[kLineSize], value[kLineSize];
  const FormatPiece pieces[2] = {{0, 0, 0, 0, 0, 0, static_cast<uint32_t>(Conversion::kText)}, {}};
  const FormatArgument argument = ValueOf(walk, row, field, scratch, sizeof scratch);
  NoteText(view, line, label, value, FormatPieces(value, sizeof value, "", pieces, &argument));
}

// Numbers and addresses are handed over without their lines where a question takes them.
bool QuestionTakes(const RowWalk& walk, const RowData& row, const Field& field) {
  if (!PacketOf(walk.at).asked || !row.label) return false;
  GivenValue value{};
  if (IsNumber(row.form) && row.form != RowForm::kFloat) {
    value.kind = row.form == RowForm::kSigned ? ValueKind::kSigned : ValueKind::kNumber;
    value.number = ShownNumber(walk, row, field);
  } else if (row.form == RowForm::kAddress && (field.length == 4 || field.length == 6 || field.length == 16)) {
    value.kind = ValueKind::kText;
    value.address = field.bytes;
    value.length = field.length;
  } else {
    return false;
  }
  return TakesValueOf(walk.at.view, row.label, value);
}

LineHandle AddRowLine(const RowWalk& walk, const RowData& row, const Field& field) {
  const Place& at = walk.at;
  if (row.form == RowForm::kBytes && field.length > kMostShownBytes) {
    return AddBlock(at, field, row.label ? row.label : walk.title);
  }
  if (Silent(at) || OnlyTells(at.view)) return CountSilentLine(at);
  const LineHandle parent = row.form == RowForm::kBits ? walk.parent : at.parent;
  if (LeavesLabel(at.view, parent, row.label ? row.label : walk.title, row.label != nullptr)) return CountLeftLine(at.view, parent);
  if (QuestionTakes(walk, row, field)) return CountLeftLine(at.view, parent, LineFate::kTaken);
  RowArguments arguments;
  Arrange(arguments, row.line, row, walk, field);
  const int32_t image = row.form == RowForm::kBits ? kBitFieldImage : LevelImage(at.level);
  const LineHandle line = AddPiecesLine(at, parent, field, image, row.line.text, row.line.pieces, arguments.of);
  if (KeepsFacts(at.view)) [[unlikely]] NoteRow(walk, line, row, field);
  return line;
}

// A line for each named mask of a word.
void AddFlagLines(const RowWalk& walk, const RowData& row, const Field& field) {
  const Place under{walk.at.view, walk.at.tree, walk.parent, walk.at.level, walk.at.lineSize, walk.at.dead};
  const int32_t width = 8 * field.length;
  for (int32_t i = 0; i < row.names.count; ++i) {
    const NameTableEntry& mask = row.names.rows[i];
    if (mask.code == 0 || (width < 32 && mask.code >> width != 0)) continue;
    const int32_t lowest = __builtin_ctz(mask.code);
    const int32_t count = 32 - __builtin_clz(mask.code) - lowest;
    const BitPicture bits = BitsOf(field, width - lowest - count, count);
    if (count == 1) {
      AddBitLine(under, field, "%s: %s = %s", bits.picture, mask.name, bits.value ? "True" : "False");
    } else {
      AddBitLine(under, field, "%s: %s = %u", bits.picture, mask.name, bits.value);
    }
  }
}

// The number in front of a counted field, in a line of its own; -1 when it is not there.
int32_t TakeCount(RowWalk& walk, Cursor& c, const RowData& row, bool shows) {
  Field count = TakeBytes(c, row.countSize);
  if (!count.here) return -1;
  const uint64_t number = NumberOf(count, IsLittle(walk, row));
  const char* label = row.label ? row.label : walk.title;
  if (shows && label) AddLine(walk.at, count, "%s Length: %I64u", label, number);
  return number > INT32_MAX ? INT32_MAX : static_cast<int32_t>(number);
}

// What the next rows see of a field.
inline Field NoteTaken(RowWalk& walk, const RowData& row, Field field) {
  if (field.here && IsNumber(row.form)) field.value = static_cast<uint32_t>(NumberOf(field, IsLittle(walk, row)));
  walk.word = field.length <= 4 ? field : Field{};   // bits of a number that is not here are not here either
  return field;
}

[[gnu::noinline]] Field TakeVariable(RowWalk& walk, Cursor& c, const RowData& row, int32_t size, bool shows) {
  const bool variable = row.size == 0, isOwn = size == kOwnSize;
  if (isOwn) size = row.size;
  if (row.countSize) size = TakeCount(walk, c, row, shows);
  else if (variable && isOwn) size = Left(c) ? LengthOf(c, row) : -1;
  // A length that says more than is there takes what is there.
  if (variable && size > Left(c)) size = Left(c);
  return NoteTaken(walk, row, TakeBytes(c, size));
}

inline Field TakeSized(RowWalk& walk, Cursor& c, const RowData& row, int32_t size, bool shows) {
  if (row.form == RowForm::kBits) {
    Field bits = walk.word;
    const int32_t behind = 8 * walk.word.length - row.firstBit - row.bitCount;
    bits.value = static_cast<uint32_t>(uint64_t{walk.word.value} >> (behind & 31) & ((uint64_t{1} << row.bitCount) - 1));
    return bits;
  }
  if (size == kOwnSize && row.size != 0 && row.countSize == 0) [[likely]] return NoteTaken(walk, row, TakeBytes(c, row.size));
  return TakeVariable(walk, c, row, size, shows);
}

void AddNote(const RowWalk& walk, const RowData& row, const Field& field) {
  const Place& at = walk.at;
  if (!Displaying(at) || IsUnmade(at, at.parent) || (row.noteWhenSet && field.value == 0)) return;
  RowArguments arguments;
  Arrange(arguments, row.note, row, walk, field);
  AppendFormatted(at, at.parent, row.note.text, row.note.pieces, arguments.of);
}

// The row where nobody wants its line; a top line may take its note.
[[gnu::noinline]] Field PassRow(RowWalk& walk, Cursor& c, const RowData& row, int32_t size) {
  const Field field = TakeSized(walk, c, row, size, true);
  const Place& at = walk.at;
  if (!field.here || at.dead) return field;
  if (row.form == RowForm::kShown) {
    row.show(at, field, row.label ? row.label : walk.title);
  } else if (row.line.text && (field.length > 0 || !row.quiet)) {
    const bool isDump = row.form == RowForm::kBytes && field.length > kMostShownBytes;
    if (isDump) AddBlock(at, field, row.label ? row.label : walk.title); else CountSilentLine(at);
  }
  if (row.form != RowForm::kBits) walk.parent = kLineOutsideDisplay;
  if (row.form == RowForm::kFlags) AddFlagLines(walk, row, field);
  if (row.note.text) AddNote(walk, row, field);
  return field;
}

[[gnu::noinline]] Field MakeRow(RowWalk& walk, Cursor& c, const RowData& row, int32_t size) {
  const Field field = TakeSized(walk, c, row, size, true);
  const Place& at = walk.at;
  if (!field.here || at.dead) return field;
  const bool isBits = row.form == RowForm::kBits;
  LineHandle line = 0;
  if (row.form == RowForm::kShown) {
    row.show(at, field, row.label ? row.label : walk.title);
  } else if (row.line.text && (field.length > 0 || !row.quiet)) {
    line = AddRowLine(walk, row, field);
  }
  if (!isBits) walk.parent = line ? line : at.parent;
  if (row.form == RowForm::kFlags) AddFlagLines(walk, row, field);
  if (row.note.text) AddNote(walk, row, field);
  return field;
}

}  // namespace

uint64_t NumberOf(const Field& field, bool little) {
  if (field.length == 1) return field.bytes[0];
  if (field.length == 2) return little ? ReadLittleU16(field.bytes) : ReadU16(field.bytes);
  if (field.length == 4) return little ? ReadLittleU32(field.bytes) : ReadU32(field.bytes);
  uint64_t number = 0;
  const int32_t length = field.length > 8 ? 8 : field.length;
  for (int32_t i = 0; i < length; ++i) number = number << 8 | field.bytes[little ? length - 1 - i : i];
  return number;
}

Field TakeRow(RowWalk& walk, Cursor& c, const RowData& row, int32_t size) {
  return TakeSized(walk, c, row, size, false);
}

bool PassRun(RowWalk& walk, Cursor& c, const RowData& row) {
  if (!Silent(walk.at) || walk.at.dead || c.ranShort || Left(c) < row.runBytes) return false;
  if (row.runLines >= PacketOf(walk.at).linesLeft) return false;
  CountLines(walk.at, row.runLines);
  TakeBytes(c, row.runBytes);
  walk.parent = kLineOutsideDisplay;
  return true;
}

Field ShowRow(RowWalk& walk, Cursor& c, const RowData& row, int32_t size) {
  return Silent(walk.at) ? PassRow(walk, c, row, size) : MakeRow(walk, c, row, size);
}

}  // namespace qxview::detail
