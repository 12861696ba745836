#include "app/tree_writer.h"

#include <algorithm>
#include <cstring>

#include "app/colors.h"
#include "app/fast_text.h"
#include "app/printed_lines.h"
#include "core/frame_rows.h"
#include "core/line_facts.h"
#include "core/safe_text.h"

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

constexpr size_t kDumpCharacters = 58;   // the column where the characters of a dump's row start

// "0010  41 42 ...   AB": four digits, two blanks, and as many characters as bytes.
bool IsDumpRow(Session& session, LineHandle line) {
  const ArenaTree& tree = session.Tree();
  const std::string_view text = tree.TextOf(line);
  return tree.Image(line) == kBitFieldImage && text.size() > kDumpCharacters && text.size() <= kDumpCharacters + 16 &&
         text.substr(4, 2) == "  " && text.substr(55, 3) == "   ";
}

// Terminals give the soft hyphen no cell, one, or a line break.
void PutDumpRow(Output& out, std::string_view text) {
  constexpr uint8_t kSoftHyphen = 0xAD;
  std::string row(text);
  for (size_t i = kDumpCharacters; i < row.size(); ++i) {
    const uint8_t c = static_cast<uint8_t>(row[i]);
    if (IsControlCharacter(c) || c == kSoftHyphen) row[i] = '.';
  }
  PutSafeText(out, row);
}

bool IsPlain(const TreeStyle& style) {
  return !style.colors && !style.ranges && !style.keys && !style.markColumn && !style.cells;
}

// Indent and text of a tree's line, for the style that nearly all lines are written in. False for a text that is too long for that.
bool PutPlainLine(Output& out, std::string_view text, size_t depth) {
  const size_t room = 2 * depth + kLongestEscape * text.size() + kWrittenAhead;
  if (room > Output::kMostRoom) return false;
  char* at = out.Room(room);
  for (size_t i = 0; i < 2 * depth; i += 8) std::memset(at + i, ' ', 8);
  at = PutEscaped<false, true>(at + 2 * depth, text);
  *at++ = '\n';
  out.Took(at);
  return true;
}

void PutLine(Output& out, Session& session, LineHandle line, int32_t depth, const TreeStyle& style) {
  const ArenaTree& tree = session.Tree();
  if (IsPlain(style) && PutPlainLine(out, tree.TextOf(line), static_cast<size_t>(depth))) {
    return;
  }
  if (style.markColumn) out.Put(line == style.marked ? '>' : ' ');
  for (int32_t i = 0; i < depth; ++i) out.Put("  ");
  const char* color = style.colors ? ColorOf(tree.Image(line), depth == 0) : kNoColor;
  out.Put(color);
  const std::string_view text = tree.TextOf(line);
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

// Lines that stand as they are printed but for some characters; false, with nothing written, where they hold more controls than
// their line feeds.
bool PutLines(Output& out, std::string_view lines, size_t count) {
  if (CountOthersQuickly(lines.data(), lines.size()) == count) return out.Put(lines), true;
  if (CountControls(lines.data(), lines.size()) != count) return false;
  constexpr size_t kPiece = 8192;
  for (; !lines.empty(); lines.remove_prefix(std::min(kPiece, lines.size()))) {
    out.Took(PutLegible(out.Room(kLongestOfLegible * kPiece + kWrittenAhead), lines.substr(0, kPiece)));
  }
  return true;
}

// What nearly all trees are: runs of lines as they stand there, and between them those that are changed or escaped.
void WriteInOrder(Output& out, Session& session, const TreeStyle& style) {
  const ArenaTree& tree = session.Tree();
  for (LineHandle line = tree.FirstChild(0); line;) {
    const LineHandle first = line;
    const std::string_view lines = tree.PrintedFrom(&line);
    const LineHandle behind = line ? line : tree.LineCount() + 1;
    if (behind > first && PutLines(out, lines, behind - first)) continue;
    const LineHandle last = behind > first ? behind - 1 : first;
    for (LineHandle one = first; one <= last; ++one) PutLine(out, session, one, tree.DepthOf(one), style);
    line = tree.Holds(last + 1) ? last + 1 : 0;
  }
}

}  // namespace

void PutSafeText(Output& out, std::string_view text) {
  constexpr size_t kPiece = 4096;
  for (; !text.empty(); text.remove_prefix(std::min(kPiece, text.size()))) {
    out.Took(PutEscaped<false>(out.Room(kLongestEscape * kPiece + kWrittenAhead), text.substr(0, kPiece)));
  }
}

int32_t CellsOf(std::string_view text) {
  constexpr int32_t kEscape = 4;   // "\\xNN"
  int32_t cells = 0;
  for (const char c : text) cells += IsControlCharacter(static_cast<uint8_t>(c)) ? kEscape : 1;
  return cells;
}

void WriteTree(Output& out, Session& session, const TreeStyle& style) {
  const ArenaTree& tree = session.Tree();
  if (IsPlain(style) && !style.shape.IsUsed() && tree.IsInOrder()) return WriteInOrder(out, session, style);
  int32_t depth = 0;
  const TreeWalk walk(session, style.shape);
  for (LineHandle line = walk.FirstUnder(0, 0); line;) {
    PutLine(out, session, line, depth, style);
    if (const LineHandle child = walk.FirstUnder(line, depth + 1)) {
      line = child;
      ++depth;
      continue;
    }
    LineHandle next;
    while (!(next = walk.Next(line)) && (line = tree.Parent(line))) --depth;
    line = next;
  }
}

void WriteFrameBytes(Output& out, const FrameRecord* record) {
  for (int32_t at = 0; at < record->capturedLength; at += kFrameRowBytes) {
    char row[kFrameRowSize];
    const int32_t count = std::min<int32_t>(kFrameRowBytes, record->capturedLength - at);
    out.Put({row, static_cast<size_t>(FormatFrameRow(row, at, FrameData(record) + at, count))});
    out.Put('\n');
  }
}

}  // namespace qxview
