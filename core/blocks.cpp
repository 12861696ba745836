#include "core/blocks.h"

#include <cstring>

#include "core/bounded_text.h"
#include "core/byte_origins.h"
#include "core/digits.h"
#include "core/engine.h"
#include "core/line_facts.h"
#include "core/made_line.h"
#include "core/pieces_line.h"
#include "core/sixteen.h"

namespace qxview {
namespace {

constexpr int32_t kRowBytes = 16;
constexpr int32_t kCharacterColumn = 58;   // counted from 0
constexpr int32_t kRowSize = kCharacterColumn + kRowBytes + 1;

inline void PutHexPair(char* out, uint8_t byte) { std::memcpy(out, kHexPairs + size_t{byte} * 2, 2); }

// What a row starts as: its offset, and blanks up to the characters.
inline void PutRowStart(char* out, int32_t rowOffset) {
  static_assert(4 * kSixteen >= kCharacterColumn && 4 * kSixteen <= kRowSize);
  std::memset(out, ' ', 4 * kSixteen);
  PutHexPair(out, static_cast<uint8_t>(rowOffset >> 8));
  PutHexPair(out + 2, static_cast<uint8_t>(rowOffset));
}

// "0010  41 42 ...  43 44 ...   AB..CD": one row; returns its length.
int32_t FormatDumpRow(char* out, int32_t rowOffset, const uint8_t* bytes, int32_t count, const uint8_t* translation) {
  PutRowStart(out, rowOffset);
  char* at = out + 6;
  for (int32_t i = 0; i < count; ++i, at += 3) {
    if (i == 8) ++at;
    PutHexPair(at, bytes[i]);
  }
  at = out + kCharacterColumn;
  for (int32_t i = 0; i < count; ++i) {
    const uint8_t shown = translation ? translation[bytes[i]] : bytes[i];
    at[i] = shown < 32 ? '.' : static_cast<char>(shown);
  }
  at[count] = 0;
  return kCharacterColumn + count;
}

// The same of sixteen bytes without a translation, which nearly all rows are; returns its end.
inline char* FormatWholeRow(char* out, int32_t rowOffset, const uint8_t* bytes) {
  PutRowStart(out, rowOffset);
  for (int32_t i = 0; i < 8; ++i) PutHexPair(out + 6 + 3 * i, bytes[i]);
  for (int32_t i = 8; i < kRowBytes; ++i) PutHexPair(out + 7 + 3 * i, bytes[i]);
  CopyShownSixteen(out + kCharacterColumn, bytes);
  return out + kCharacterColumn + kRowBytes;
}

// As many whole rows as can be added at once where lines are kept in memory; returns how many bytes they show.
int32_t AddWholeRows(DecodeContext* context, DecodeTree* tree, LineHandle parent, const uint8_t* data, int32_t first, int32_t last,
                     int32_t offset) {
  LineStore* const lines = OpenLines(context, tree);
  const int32_t rows = (last - first) / kRowBytes;
  const uint32_t more = static_cast<uint32_t>(rows);
  if (rows < 1 || !lines || parent < 1 || parent > lines->count || context->packet.linesLeft <= rows ||
      context->rangeCount + more >= context->rangeCapacity ||
      !lines->Reserve(more, more * (kRowSize + uint64_t{LineStore::BlanksUnder(lines->lines[parent].depth)})) ||
      !HasRoomForLine(*context, *lines, parent, 0)) {
    return 0;
  }
  context->packet.linesLeft -= rows;
  for (const int32_t end = first + rows * kRowBytes; first < end; first += kRowBytes) {
    const uint32_t index = context->rangeCount++;
    context->rangeTable[index] = MakeByteRange(kRawDataKind, offset + first, kRowBytes);
    const LineStore::Begun line = lines->Begin(static_cast<uint32_t>(parent), kBitFieldImage, index);
    lines->End(line, FormatWholeRow(line.room, first, data + first));
  }
  return rows * kRowBytes;
}

struct Span {
  int64_t first, last;   // of a block, counted from its start; last is exclusive
};

// The rows of a block that overlap the range filter; its first byte when none does.
Span TrimToRangeFilter(const DecodeContext* context, int32_t offset, int32_t length) {
  Span span{0, length};
  if (!context->rangeFilterOn) return span;
  offset = RangeOffset(RangeInFrame(context, MakeByteRange(kFieldKind, offset, length)));
  const int64_t start = context->rangeFilterStart, end = start + context->rangeFilterLength;
  if (offset < start - (kRowBytes - 1)) span.first = (start - offset) / kRowBytes * kRowBytes;
  if (int64_t{offset} + length > end) {
    const int64_t inside = end - offset;   // bytes of the block before the span's end
    span.last = inside <= 0 ? 0 : (inside + kRowBytes - 1) / kRowBytes * kRowBytes;
    if (span.last > length) span.last = length;
  }
  if (span.first >= span.last) span = {0, 1};
  return span;
}

// Rows that nobody wants count towards the frame's bound, too.
void CountRows(PacketState* packet, int32_t rows) {
  packet->limitReached |= rows > packet->linesLeft;
  packet->linesLeft = rows > packet->linesLeft ? 0 : packet->linesLeft - rows;
}

}  // namespace

void AddHexDumpLines(View* view, DecodeTree* tree, LineHandle parentLine, const uint8_t* data, int32_t offset,
                     int32_t length) {
  if (!view || !view->context || !data || length < 1) return;
  if (length > kMostDumped) length = kMostDumped;
  const uint8_t* translation = view->engine->settings.characterSet ? view->characterTable : nullptr;
  const Span span = TrimToRangeFilter(view->context, offset, length);
  if (view->context->silent || OnlyTells(view) || LeavesOthers(view)) {
    CountRows(&view->context->packet, static_cast<int32_t>((span.last - span.first + kRowBytes - 1) / kRowBytes));
    return;
  }
  int32_t at = static_cast<int32_t>(span.first);
  if (!translation) at += AddWholeRows(view->context, tree, parentLine, data, at, static_cast<int32_t>(span.last), offset);
  for (; at < span.last; at += kRowBytes) {
    const int32_t left = static_cast<int32_t>(span.last) - at;
    const int32_t count = left < kRowBytes ? left : kRowBytes;
    const ByteRange range = MakeByteRange(kRawDataKind, offset + at, count);
    LineHandle line;
    if (char* const room = RoomForLine(view, parentLine, tree, kRowSize)) {
      line = AddMadeInPlace(view->context, parentLine, room, FormatDumpRow(room, at, data + at, count, translation),
                            kBitFieldImage, tree, range);
    } else {
      char row[kRowSize];
      const int32_t rowLength = FormatDumpRow(row, at, data + at, count, translation);
      line = AddDecodeLineOf(view, parentLine, row, rowLength, kBitFieldImage, tree, range);
    }
    if (!line) return;
  }
}

LineHandle AddDataBlock(View* view, LineHandle parentLine, const uint8_t* data, int32_t offset, int32_t length,
                        const char* title, int32_t imageNumber) {
  if (!view || length < 1 || !parentLine) return 0;
  const LineHandle line =
      AddDecodeLine(view, parentLine, title, imageNumber, view->tree, MakeByteRange(kFieldKind, offset, length));
  if (line) AddHexDumpLines(view, view->tree, line, data, offset, length);
  return line;
}

LineHandle AddDataBlockClampedOut(View* view, LineHandle parentLine, const uint8_t* data, int32_t offset,
                                  int32_t available, int32_t declared, const char* title, int32_t imageNumber,
                                  int32_t* used) {
  const int32_t shown = available < declared ? available : declared;
  if (used) *used = shown > 0 ? shown : 0;
  return AddDataBlock(view, parentLine, data, offset, shown, title, imageNumber);
}

LineHandle AddDataBlockClamped(View* view, LineHandle parentLine, const uint8_t* data, int32_t offset,
                               int32_t available, int32_t declared, const char* title, int32_t imageNumber) {
  return AddDataBlockClampedOut(view, parentLine, data, offset, available, declared, title, imageNumber, nullptr);
}

int32_t AddRawData(View* view, const uint8_t* data, int32_t offset, int32_t length, const char* title) {
  if (!view || length < 1) return 0;
  const LineHandle line =
      AddDecodeLine(view, 0, title, kRawDataImage, view->tree, MakeByteRange(kRawDataKind, offset, length));
  if (line) AddHexDumpLines(view, view->tree, line, data, offset, length);
  return 1;
}

void AddBitRows(View* view, LineHandle parentLine, const uint8_t* data, int32_t offset, int32_t length,
                const char* label, int32_t level) {
  constexpr int32_t kBytes = 32;
  if (!view || !parentLine || !data || !label) return;
  const bool isLeft = view->context->silent || LeavesLabel(view, parentLine, label, false);
  for (int32_t at = 0; at < length; at += kBytes) {
    if (isLeft) {
      if (!CountLeftLine(view, parentLine)) return;
      continue;
    }
    const int32_t count = length - at < kBytes ? length - at : kBytes;
    const HexSlice bytes{data + at, count, ' '};
    char text[512];
    const int32_t textLength = length <= kBytes ? FormatInto(text, sizeof text, "%s: %s", label, bytes)
                                                : FormatInto(text, sizeof text, "%s %.04X: %s", label, at, bytes);
    const LineHandle line = AddDecodeLineOf(view, parentLine, text, textLength, LevelImage(level), view->tree,
                                            MakeByteRange(level & 0xFF, offset + at, count));
    if (!line) return;
    if (KeepsFacts(view)) [[unlikely]] {
      const int32_t shown = 3 * count - 1;
      NoteText(view, line, label, text + textLength - shown, shown);
    }
  }
}

namespace {

// A line that has no fact but what is noted of it elsewhere.
template <class... Args>
LineHandle AddPiece(const Place& at, const Field& field, int32_t image, FormatText<std::type_identity_t<Args>...> text,
                    const Args&... args) {
  const FormatArguments<sizeof...(Args)> arguments = {{ArgumentOf(args)...}};
  return detail::AddPiecesLine(at, at.parent, field, image, text.text, text.pieces, arguments.of);
}

}  // namespace

LineHandle AddWrappedTextLines(View* view, LineHandle parentLine, const char* text, int32_t length, const char* label,
                               int32_t image, DecodeTree* tree, int32_t frameOffset, bool numbered) {
  constexpr int32_t kMostCharacters = 80, kLookAhead = 10;
  if (!text || !label || !tree) return 0;
  const bool isLeft = view->context->silent || LeavesLabel(view, parentLine, label, false);
  LineHandle line = 0;
  int32_t at = 0, piece = 1;
  do {
    int32_t cut = length - at < kMostCharacters ? length - at : kMostCharacters;
    if (at + cut < length && text[at + cut] != ' ' && length - at - cut >= kLookAhead) {
      for (int32_t ahead = 0; ahead < kLookAhead; ++ahead) {
        if (text[at + cut + ahead] == ' ') {
          cut += ahead + 1;
          break;
        }
      }
    }
    if (isLeft) {
      line = CountLeftLine(view, parentLine);
      at += cut;
      continue;
    }
    const TextSlice slice{text + at, cut};
    const Field field{reinterpret_cast<const uint8_t*>(slice.text), frameOffset + at, cut, 0, true};
    const Place under{view, tree, parentLine, 0, kLineSize, false};
    if (piece == 1) {
      line = numbered && cut < length ? AddPiece(under, field, image, "%s pt 1: %s", label, slice)
                                      : AddPiece(under, field, image, "%s: %s", label, slice);
    } else {
      line = numbered ? AddPiece(under, field, image, "%s pt %i : %s", label, piece, slice)
                      : AddPiece(under, field, image, "%s : %s", label, slice);
    }
    if (piece == 1 && KeepsFacts(view)) [[unlikely]] NoteText(view, line, label, text, length);
    at += cut;
    ++piece;
  } while (line && at < length);
  return line;
}

namespace {

// The counted string's text as it is shown: one byte of each character, at most three of them.
void CopyShown(char* out, int32_t outSize, const uint8_t* text, int32_t length, CountedCharacters characters) {
  constexpr int32_t kCopySize = 4;   // whatever the caller's buffer: this is how the field has always appeared
  char shown[kCopySize];
  if (characters == CountedCharacters::kSingleByte) {
    CopyTextN(shown, kCopySize, reinterpret_cast<const char*>(text), length);
  } else {
    int32_t count = 0;
    for (; count < kCopySize - 1 && 2 * count + 1 < length; ++count) {
      const uint8_t* character = text + 2 * count;
      shown[count] = static_cast<char>(character[0] ? character[0] : character[1]);
    }
    shown[count] = 0;
  }
  CopyString(out, outSize < kCopySize ? outSize : kCopySize, shown);
}

}  // namespace

int32_t AddCountedString(View* view, const uint8_t* data, int32_t available, int32_t frameOffset,
                         LineHandle parentLine, int32_t level, const char* label, char* valueBuffer,
                         int32_t valueBufferSize, CountedCharacters characters) {
  constexpr int32_t kMostAsText = 128;
  if (!view || !view->tree || !data || !label || available < 2) return 0;
  DecodeTree* tree = view->tree;
  const int32_t declared = data[0] << 8 | data[1];
  const int32_t remaining = available - 2;
  const uint8_t* text = data + 2;
  const int32_t childImage = LevelImage(level + 1);
  char none[4];
  if (!valueBuffer || valueBufferSize < 1) {
    valueBuffer = none;
    valueBufferSize = sizeof none;
  }
  char out[512];
  const LineHandle line =
      AddDecodeLine(view, parentLine, label, LevelImage(level), tree, MakeByteRange(0, frameOffset, 2));
  FormatInto(out, sizeof out, "String Length: %u", declared);
  AddDecodeLine(view, line, out, childImage, tree, MakeByteRange(0, frameOffset, 2));
  const ByteRange textRange = MakeByteRange(0, frameOffset + 2, declared);
  int32_t taken = 2 + declared;
  if (remaining < declared) {
    taken = available;
    if (remaining >= 1) {
      CopyShown(valueBuffer, valueBufferSize, text, remaining, characters);
      FormatInto(out, sizeof out, "%s: %s (truncated string)", label, static_cast<const char*>(valueBuffer));
      AddDecodeLine(view, line, out, childImage, tree, textRange);
      // The label line has no colon in the truncated form.
      FormatInto(out, sizeof out, "%s %s (truncated string)", label, static_cast<const char*>(valueBuffer));
      SetDecodeLineText(view, tree, line, out);
    }
  } else if (declared == 0) {
    CopyString(valueBuffer, valueBufferSize, "<null string>");
    FormatInto(out, sizeof out, "%s: <null string>", label);
    AddDecodeLine(view, line, out, childImage, tree, MakeByteRange(0, frameOffset, 2));
    SetDecodeLineText(view, tree, line, out);
  } else if (declared > kMostAsText) {
    AddDataBlockClamped(view, line, text, frameOffset + 2, remaining, declared, label, childImage);
  } else {
    CopyShown(valueBuffer, valueBufferSize, text, declared, characters);
    FormatInto(out, sizeof out, "%s: %s", label, static_cast<const char*>(valueBuffer));
    AddDecodeLine(view, line, out, childImage, tree, textRange);
    SetDecodeLineText(view, tree, line, out);
  }
  SetDecodeLineRange(view, tree, line, MakeByteRange(0, frameOffset, taken));
  return taken;
}

}  // namespace qxview
