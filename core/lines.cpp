#include "core/lines.h"

#include <cstdlib>
#include <cstring>

#include "core/byte_origins.h"
#include "core/engine.h"
#include "core/line_facts.h"
#include "core/line_group.h"
#include "core/made_line.h"
#include "core/output_file.h"

namespace qxview {
namespace {

bool InDisplay(const View* view, const DecodeTree* tree) {
  return view && view->context && tree && view->context->outputMode == kDisplayMode;
}

// User decoder libraries choose their lines' tags and count in the table themselves.
ByteRange* StoredRange(const DecodeContext* context, uint32_t index) {
  return index < context->rangeCount && index < context->rangeCapacity ? &context->rangeTable[index] : nullptr;
}

LineHandle AppendToTree(DecodeContext* context, LineHandle parent, const char* text, int32_t length, int32_t image,
                        DecodeTree* tree, uint32_t tag) {
  const bool selected = context->findFound && std::strcmp(text, context->findLine) == 0;
  const LineHandle line = tree->Append({parent, text, length, image, tag, selected});
  if (!line || !context->findFound) return line;
  if (selected) context->foundLineHandle = line;
  if (context->packet.linesLeft == context->findLinesLeft &&
      std::strncmp(text, context->findLine, sizeof context->findLine - 1) == 0) {
    context->matchedLine = line;
  }
  return line;
}

LineHandle ShowLine(DecodeContext* context, LineHandle parent, const char* text, int32_t length, int32_t image,
                    DecodeTree* tree, ByteRange range) {
  if (!StoreRange(context, range)) return 0;
  const LineHandle line = AppendToTree(context, parent, text, length, image, tree, context->rangeCount);
  if (line) ++context->rangeCount;
  return line;
}

bool OutsideRangeFilter(const DecodeContext* context, ByteRange range) {
  if (!context->rangeFilterOn) return false;
  const int64_t offset = RangeOffset(RangeInFrame(context, range));
  return offset < context->rangeFilterStart ||
         offset >= int64_t{context->rangeFilterStart} + context->rangeFilterLength;
}

// A line in the print or the text file: nested lines are indented by four blanks whatever their depth.
void WriteTextLine(Engine* engine, OutputFile* file, const char* text, int32_t length, bool nested) {
  ++engine->textLinesWritten;
  if (length == 0) return;
  if (file) {
    if (nested) WriteOutput(file, "    ", 4);
    WriteOutput(file, text, length);
    WriteOutput(file, "\r\n", 2);
  }
  if (engine->trackWrittenBytes) engine->bytesSinceMark += static_cast<uint32_t>(length + 2 + (nested ? 4 : 0));
}

void SearchLine(DecodeContext* context, const char* text) {
  if (context->findText[0] && std::strstr(text, context->findText)) {
    const int32_t counter = context->findLineCounter;
    const bool wanted = context->findBounded
                            ? context->findLineIndex < counter && counter < context->findLineLimit
                            : !context->findFound && counter > context->findLineIndex;
    if (wanted) {
      context->findFound = 1;
      const size_t kept = strnlen(text, sizeof context->findLine - 1);
      std::memcpy(context->findLine, text, kept);
      context->findLine[kept] = 0;
      context->findPacketNumber = context->packetNumber;
      context->findLineIndex = counter;
      context->findLinesLeft = context->packet.linesLeft;
    }
  }
  if ((context->findBounded || !context->findFound) && context->findLineCounter < INT32_MAX) {
    ++context->findLineCounter;
  }
}

void EmitTextLine(View* view, const char* text, int32_t length, LineHandle parentLine) {
  DecodeContext* context = view->context;
  if (context->outputMode == kFindMode) {
    SearchLine(context, text);
  } else {
    WriteTextLine(view->engine, context->outputFile, text, length, parentLine != 0);
  }
}

// Outside display the line goes on to the file or the find, unless the range filter drops it.
LineHandle RouteLine(View* view, LineHandle parentLine, const char* text, int32_t length, int32_t image,
                     DecodeTree* tree, ByteRange range) {
  DecodeContext* context = view->context;
  if (context->outputMode == kDisplayMode) return ShowLine(context, parentLine, text, length, image, tree, range);
  if (!OutsideRangeFilter(context, range)) EmitTextLine(view, text, length, parentLine);
  return kLineOutsideDisplay;
}

LineHandle ReachLimit(View* view, LineHandle parentLine, int32_t image, DecodeTree* tree, ByteRange range) {
  PacketState& packet = view->context->packet;
  if (packet.limitReached) return 0;
  packet.limitReached = true;
  packet.linesLeft = -1;
  if (!view->context->silent) RouteLine(view, parentLine, "Decode limit reached", 20, image, tree, range);
  return 0;
}

void GiveBackRanges(DecodeContext* context) {
  if (!context->spareRanges.IsDue(context->rangeCount >= kKeptLines)) return;
  void* const kept = std::realloc(context->rangeTable, size_t{kKeptLines} * sizeof(ByteRange));
  if (!kept) return;
  context->rangeTable = static_cast<ByteRange*>(kept);
  context->rangeCapacity = kKeptLines;
}

}  // namespace

// The table is grown before it is full, so that the entry at `rangeCount` always exists.
bool GrowRangeTable(DecodeContext* context) {
  const uint32_t capacity = context->rangeCapacity * 2;
  auto* grown = static_cast<ByteRange*>(std::realloc(context->rangeTable, size_t{capacity} * sizeof(ByteRange)));
  if (!grown) return context->rangeCount < context->rangeCapacity;
  std::memset(grown + context->rangeCapacity, 0, size_t{capacity - context->rangeCapacity} * sizeof(ByteRange));
  context->rangeTable = grown;
  context->rangeCapacity = capacity;
  return true;
}

DecodeContext* CreateDecodeContext() {
  auto* context = static_cast<DecodeContext*>(std::calloc(1, sizeof(DecodeContext)));
  if (!context) return nullptr;
  context->rangeTable = static_cast<ByteRange*>(std::calloc(kFirstRangeCapacity, sizeof(ByteRange)));
  context->origins = CreateByteOrigins();
  context->groups = CreateKeptGroups();
  if (!context->rangeTable || !context->origins) {
    DestroyDecodeContext(context);
    return nullptr;
  }
  context->rangeCapacity = kFirstRangeCapacity;
  context->outputMode = kDisplayMode;
  context->packet.linesLeft = kMostLines;
  return context;
}

void DestroyDecodeContext(DecodeContext* context) {
  if (!context) return;
  KeepFacts(context, false);
  DestroyByteOrigins(context->origins);
  std::free(context->rangeTable);
  std::free(context->derived);
  DestroyKeptGroups(context->groups);
  std::free(context);
}

int64_t CurrentPacketNumber(const View* view) { return view && view->context ? view->context->packetNumber : -1; }

LineHandle ReachLineLimit(View* view) { return ReachLimit(view, 0, kBitFieldImage, view->tree, 0); }

LineHandle AddDecodeLineOf(View* view, LineHandle parentLine, const char* text, int32_t length, int32_t image,
                           DecodeTree* tree, ByteRange range) {
  if (!view || !view->context || !tree || !text) return 0;
  int32_t& linesLeft = view->context->packet.linesLeft;
  if (linesLeft <= 0) return ReachLimit(view, parentLine, image, tree, range);
  --linesLeft;
  if (view->context->silent || OnlyTells(view)) return kLineOutsideDisplay;
  return RouteLine(view, parentLine, text, length, image, tree, range);
}

char* RoomForLine(const View* view, LineHandle parentLine, DecodeTree* tree, int32_t size) {
  LineStore* const lines = OpenLines(view->context, tree);
  return lines ? lines->Room(parentLine, static_cast<uint32_t>(size)) : nullptr;
}

LineHandle AddMadeInPlace(DecodeContext* context, LineHandle parentLine, char* room, int32_t length, int32_t image,
                          DecodeTree* tree, ByteRange range) {
  return AddMadeLineOf(context, tree->Lines(), parentLine, room, length, image, range);
}

LineHandle AddDecodeLine(View* view, LineHandle parentLine, const char* text, int32_t image, DecodeTree* tree,
                         ByteRange range) {
  if (!view || !view->context || !text) return 0;
  const int32_t length = static_cast<int32_t>(std::strlen(text));
  if (RangeKind(range) == kFieldKind ? LeavesMade(view, parentLine, text, length) : LeavesOthers(view)) {
    return CountLeftLine(view, parentLine);
  }
  const LineHandle line = AddDecodeLineOf(view, parentLine, text, length, image, tree, range);
  if (line && KeepsFacts(view) && RangeKind(range) == kFieldKind) [[unlikely]] NoteMade(view, line, text, length);
  return line;
}

LineHandle AddTaggedLine(View* view, LineHandle parentLine, const char* text, int32_t image, uint32_t tag) {
  if (!text || !InDisplay(view, view->tree) || view->context->packet.linesLeft <= 0) return 0;
  --view->context->packet.linesLeft;
  return AppendToTree(view->context, parentLine, text, static_cast<int32_t>(std::strlen(text)), image, view->tree, tag);
}

void AppendToDecodeLine(View* view, DecodeTree* tree, LineHandle line, const char* text) {
  if (!InDisplay(view, tree) || !line || !text || !text[0]) return;
  if (!KeepsFacts(view) && tree->AppendText(line, text, static_cast<int32_t>(std::strlen(text)), kMostJoinedText)) return;
  char joined[kMostJoinedText + 1];
  const int32_t used = tree->GetText(line, joined, sizeof joined);
  size_t added = std::strlen(text);
  if (static_cast<size_t>(used) + added > kMostJoinedText) {
    if (used >= kMostJoinedText - 1) return;
    added = static_cast<size_t>(kMostJoinedText - 1 - used);
  }
  std::memcpy(joined + used, text, added);
  joined[static_cast<size_t>(used) + added] = 0;
  tree->SetText(line, joined, used + static_cast<int32_t>(added));
  if (KeepsFacts(view)) [[unlikely]] NoteEdited(view, line, joined, used + static_cast<int32_t>(added));
}

void SetDecodeLineText(View* view, DecodeTree* tree, LineHandle line, const char* text) {
  if (!InDisplay(view, tree) || !line || !text) return;
  tree->SetText(line, text, static_cast<int32_t>(std::strlen(text)));
  if (KeepsFacts(view)) [[unlikely]] NoteEdited(view, line, text, static_cast<int32_t>(std::strlen(text)));
}

int32_t GetDecodeLineText(View* view, DecodeTree* tree, LineHandle line, char* buffer, int32_t bufferLength) {
  if (!buffer || bufferLength < 1) return 0;
  buffer[0] = 0;
  return InDisplay(view, tree) ? tree->GetText(line, buffer, bufferLength) : 0;
}

void SetDecodeLineRange(View* view, DecodeTree* tree, LineHandle line, ByteRange range) {
  if (!InDisplay(view, tree) || !line) return;
  if (ByteRange* stored = StoredRange(view->context, tree->RangeIndex(line))) *stored = range;
}

ByteRange ExtendDecodeLineRange(View* view, DecodeTree* tree, LineHandle line, int32_t extraLength) {
  if (!InDisplay(view, tree) || !line || extraLength == 0) return 0;
  ByteRange* stored = StoredRange(view->context, tree->RangeIndex(line));
  if (!stored) return 0;
  *stored = MakeByteRange(RangeKind(*stored), RangeOffset(*stored),
                          static_cast<int32_t>(RangeLength(*stored) + static_cast<uint32_t>(extraLength)));
  return RangeInFrame(view->context, *stored);
}

int32_t GetDecodeLineRange(View* view, DecodeTree* tree, LineHandle line, ByteRange* out) {
  if (out) *out = 0;
  if (!InDisplay(view, tree) || !line || !out) return 0;
  const uint32_t index = tree->RangeIndex(line);
  const ByteRange* stored = index == 0 ? nullptr : StoredRange(view->context, index);
  if (!stored) return 0;
  *out = RangeInFrame(view->context, *stored);
  return 1;
}

ByteRange RangeOfLine(const DecodeContext* context, const DecodeTree* tree, LineHandle line) {
  const ByteRange* stored = StoredRange(context, tree->RangeIndex(line));
  return stored ? RangeInFrame(context, *stored) : 0;
}

OwnRange OwnRangeOfLine(const DecodeContext* context, const DecodeTree* tree, LineHandle line, BytePiece* earlier,
                        int32_t mostEarlier) {
  const ByteRange* stored = StoredRange(context, tree->RangeIndex(line));
  if (!stored) return {};
  return FindOwnRange(context, *stored, earlier, mostEarlier);
}

DerivedLines::DerivedLines(const View* view) : context_(view->context), first_(context_->rangeCount) {
  ++context_->derivedDepth;
}

// Such data within such data is of the outer run, and a run goes on where the one before it ended.
DerivedLines::~DerivedLines() {
  DecodeContext& c = *context_;
  if (--c.derivedDepth > 0 || c.rangeCount <= first_) return;
  if (c.derivedCount && c.derived[c.derivedCount - 1].end == first_) {
    c.derived[c.derivedCount - 1].end = c.rangeCount;
    return;
  }
  if (c.derivedCount == c.derivedCapacity) {
    const uint32_t capacity = c.derivedCapacity ? c.derivedCapacity * 2 : 64;
    void* grown = std::realloc(c.derived, size_t{capacity} * sizeof(LineRun));
    if (!grown) return;
    c.derived = static_cast<LineRun*>(grown);
    c.derivedCapacity = capacity;
  }
  c.derived[c.derivedCount++] = {first_, c.rangeCount};
}

bool IsDerived(const DecodeContext* context, uint32_t rangeIndex) {
  uint32_t low = 0, high = context->derivedCount;
  while (low < high) {
    const uint32_t middle = (low + high) / 2;
    if (rangeIndex >= context->derived[middle].end) low = middle + 1; else high = middle;
  }
  return low < context->derivedCount && rangeIndex >= context->derived[low].first;
}

LineHandle GetLastDecodeLine(View* view, DecodeTree* tree) {
  if (!InDisplay(view, tree)) return 0;
  LineHandle line = tree->LastChild(0);
  while (line) {
    const LineHandle child = tree->LastChild(line);
    if (!child) break;
    line = child;
  }
  return line;
}

int32_t GetLastDecodeLineRange(View* view, DecodeTree* tree, ByteRange* out) {
  return GetDecodeLineRange(view, tree, GetLastDecodeLine(view, tree), out);
}

int32_t CountTopLevelLines(View* view, DecodeTree* tree) {
  if (!InDisplay(view, tree)) return 0;
  int32_t count = 1;
  for (LineHandle line = tree->FirstChild(0); line && count < 14; line = tree->NextSibling(line)) ++count;
  return count;
}

void DeleteDecodeLine(View* view, DecodeTree* tree, LineHandle line) {
  if (!view || !view->context) return;
  if (view->context->outputMode == kSaveMode) {
    Engine* engine = view->engine;
    if (view->context->outputFile) MoveOutputBack(view->context->outputFile, engine->bytesSinceMark);
    engine->bytesSinceMark = 0;
    return;
  }
  if (InDisplay(view, tree) && line) tree->Delete(line);
}

void DeleteDecodeChildren(View* view, DecodeTree* tree, LineHandle line) {
  if (!InDisplay(view, tree)) return;
  while (LineHandle child = tree->FirstChild(line)) tree->Delete(child);
  if (line) tree->Delete(line);
}

void ClearDecodeTree(View* view, DecodeTree* tree, bool fast) {
  if (!view || !view->context) return;
  if (view->context->rangeCapacity > kKeptLines) GiveBackRanges(view->context);
  view->context->rangeCount = view->context->derivedCount = 0;
  ForgetFacts(view->context);
  if (!InDisplay(view, tree)) return;
  if (fast) {
    tree->Clear();
  } else {
    DeleteDecodeChildren(view, tree, 0);
  }
}

}  // namespace qxview
