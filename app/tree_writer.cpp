#include "app/tree_writer.h"

#include <cstring>

#include "app/colors.h"
#include "core/digits.h"
#include "core/line_facts.h"

namespace qxview {
namespace {

// Top-level lines stand out, levels cycle through quiet colours, dumps and bit fields are dim.
const char* ColorOf(int32_t image, bool topLevel) {
  if (topLevel) return kBoldText;
  switch (image) {
    case LevelImage(2): return kTeal;
    case LevelImage(3): return kGreen;
    case LevelImage(4): return kBrown;
    case LevelImage(5): return kMagenta;
    case kBitFieldImage: return kFaintText;
    default: return kNoColor;
  }
}

// "  {ip.time_to_live = 64}"
void PutFact(Output& out, const DecodeContext& context, uint32_t rangeIndex) {
  const LineFact* fact = FactOf(&context, rangeIndex);
  char key[kKeySize], value[24];
  if (!fact || FormatKey(&context, *fact, key, sizeof key) == 0) return;
  out.Put("  {");
  out.Put(key);
  if (fact->kind != ValueKind::kNone) out.Put(" = ");
  if (fact->kind == ValueKind::kText) {
    PutSafeText(out, {ValueText(&context, *fact), static_cast<size_t>(fact->valueLength)});
  } else if (fact->kind == ValueKind::kSigned) {
    FormatInto(value, sizeof value, "%I64d", fact->number);
    out.Put(value);
  } else if (fact->kind == ValueKind::kNumber) {
    FormatInto(value, sizeof value, "%I64u", fact->number);
    out.Put(value);
  }
  out.Put('}');
}

bool IsControl(uint8_t c) {
  char scratch[8];
  const std::string_view shown = Utf8Of(c, scratch);
  return c < 0x20 || c == 0x7F ||
         (shown.size() == 2 && static_cast<uint8_t>(shown[0]) == 0xC2 && static_cast<uint8_t>(shown[1]) < 0xA0);
}

constexpr size_t kDumpCharacters = 58;   // the column where the characters of a dump's row start

// "0010  41 42 ...   AB": four digits, two blanks, and as many characters as bytes.
bool IsDumpRow(Session& session, LineHandle line) {
  const ArenaTree& tree = session.Tree();
  const size_t length = static_cast<size_t>(tree.TextLength(line));
  return tree.Image(line) == kBitFieldImage && length > kDumpCharacters && length <= kDumpCharacters + 16 &&
         std::memcmp(tree.TextOf(line) + 4, "  ", 2) == 0 && std::memcmp(tree.TextOf(line) + 55, "   ", 3) == 0;
}

// Where the first character from `at` on stands that is not printable ASCII. Most lines have none: eight are looked at at once.
size_t EndOfPlain(std::string_view text, size_t at) {
  constexpr uint64_t kOnes = 0x0101010101010101, kTop = 0x80 * kOnes;
  for (; at + 8 <= text.size(); at += 8) {
    uint64_t c;
    std::memcpy(&c, text.data() + at, 8);
    const bool isAny = (c | (c + kOnes)) & kTop;                 // from 7F on
    if (isAny || ((c + 0x60 * kOnes) & kTop) != kTop) break;     // below 20
  }
  while (at < text.size() && text[at] >= 0x20 && text[at] < 0x7F) ++at;
  return at;
}

// Terminals give the soft hyphen no cell, one, or a line break.
void PutDumpRow(Output& out, std::string_view text) {
  constexpr uint8_t kSoftHyphen = 0xAD;
  std::string row(text);
  for (size_t i = kDumpCharacters; i < row.size(); ++i) {
    const uint8_t c = static_cast<uint8_t>(row[i]);
    if (IsControl(c) || c == kSoftHyphen) row[i] = '.';
  }
  PutSafeText(out, row);
}

void PutLine(Output& out, Session& session, LineHandle line, int32_t depth, const TreeStyle& style) {
  const ArenaTree& tree = session.Tree();
  if (style.markColumn) out.Put(line == style.marked ? '>' : ' ');
  for (int32_t i = 0; i < depth; ++i) out.Put("  ");
  const char* color = style.colors ? ColorOf(tree.Image(line), depth == 0) : kNoColor;
  out.Put(color);
  const std::string_view text{tree.TextOf(line), static_cast<size_t>(tree.TextLength(line))};
  if (style.cells && IsDumpRow(session, line)) {
    PutDumpRow(out, text);
  } else {
    PutSafeText(out, text);
  }
  if (color[0]) out.Put(kPlainText);
  if (style.ranges) {
    int32_t kind, offset;
    uint32_t length;
    const ByteRange range = RangeOfLine(&session.Context(), &tree, line);
    SplitByteRange(&range, &kind, &offset, &length);
    char text[48];
    FormatInto(text, sizeof text, "  [%d, %u]", offset, length);
    out.Put(text);
  }
  if (style.keys) PutFact(out, session.Context(), tree.RangeIndex(line));
  out.Put('\n');
}

}  // namespace

void PutSafeText(Output& out, std::string_view text) {
  size_t plain = 0;
  for (size_t i = 0; (i = EndOfPlain(text, i)) < text.size(); ++i) {
    const uint8_t c = static_cast<uint8_t>(text[i]);
    out.Put(text.substr(plain, i - plain));
    plain = i + 1;
    char scratch[8];
    if (IsControl(c)) {
      out.Put("\\x");
      out.Put({kHexPairs + 2 * c, 2});
    } else {
      out.Put(Utf8Of(c, scratch));
    }
  }
  out.Put(text.substr(plain));
}

int32_t CellsOf(std::string_view text) {
  constexpr int32_t kEscape = 4;   // "\\xNN"
  int32_t cells = 0;
  for (const char c : text) cells += IsControl(static_cast<uint8_t>(c)) ? kEscape : 1;
  return cells;
}

void WriteTree(Output& out, Session& session, const TreeStyle& style) {
  const ArenaTree& tree = session.Tree();
  int32_t depth = 0;
  const TreeShape& shape = style.shape;
  for (LineHandle line = shape.FirstUnder(session, 0, 0); line;) {
    PutLine(out, session, line, depth, style);
    if (const LineHandle child = shape.FirstUnder(session, line, depth + 1)) {
      line = child;
      ++depth;
      continue;
    }
    LineHandle next;
    while (!(next = shape.Next(session, line)) && (line = tree.Parent(line))) --depth;
    line = next;
  }
}

void WriteFrameBytes(Output& out, const FrameRecord* record) {
  const uint8_t* data = FrameData(record);
  for (int32_t at = 0; at < record->capturedLength; at += 16) {
    const int32_t count = std::min<int32_t>(16, record->capturedLength - at);
    char row[80];
    int32_t length = FormatInto(row, sizeof row, "%.04X  ", at);
    char characters[17];
    for (int32_t i = 0; i < 16; ++i) {
      if (i == 8) row[length++] = ' ';
      if (i < count) {
        std::memcpy(row + length, kHexPairs + 2 * data[at + i], 2);
        characters[i] = data[at + i] >= 0x20 && data[at + i] < 0x7F ? static_cast<char>(data[at + i]) : '.';
      } else {
        row[length] = row[length + 1] = ' ';
      }
      row[length + 2] = ' ';
      length += 3;
    }
    out.Put({row, static_cast<size_t>(length)});
    out.Put("  ");
    out.Put({characters, static_cast<size_t>(count)});
    out.Put('\n');
  }
}

}  // namespace qxview
