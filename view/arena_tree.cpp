#include "view/arena_tree.h"

#include <cstdlib>
#include <cstring>

#include "core/digits.h"

namespace qxview {
namespace {

constexpr uint32_t kFirstLines = 512;
constexpr uint32_t kFirstText = 32768, kFirstEdits = 4096;
constexpr uint32_t kMostText = 0x7FFFFFFF;

// Makes room for `wanted` elements by doubling; false, with nothing changed, when there is no memory.
template <class T>
bool Grow(T*& elements, uint32_t& capacity, uint64_t wanted, uint32_t first) {
  if (wanted > kMostText) return false;
  uint32_t grown = capacity ? capacity : first;
  while (grown < wanted) grown *= 2;
  T* moved = static_cast<T*>(std::realloc(elements, size_t{grown} * sizeof(T)));
  if (!moved) return false;
  elements = moved;
  capacity = grown;
  return true;
}

template <class T>
void Shrink(T*& elements, uint32_t& capacity, uint32_t kept) {
  if (capacity <= kept) return;
  void* const smaller = std::realloc(elements, size_t{kept} * sizeof(T));
  if (!smaller) return;
  elements = static_cast<T*>(smaller);
  capacity = kept;
}

}  // namespace

ArenaTree::~ArenaTree() {
  std::free(lines);
  std::free(text);
  std::free(edits);
  std::free(links_);
}

bool LineStore::Grow(uint32_t more, uint64_t size) {
  if (count + more >= capacity) {
    const bool isFirst = !lines;
    if (!qxview::Grow(lines, capacity, uint64_t{count} + more + 1, kFirstLines)) return wasShort = true, false;
    if (isFirst) lines[0] = Line{};
  }
  const uint64_t wanted = textUsed + size + kBeside;
  if (wanted <= textCapacity || qxview::Grow(text, textCapacity, wanted, kFirstText)) return true;
  wasShort = true;
  return false;
}

bool LineStore::IsOnLastPath(uint32_t line) const {
  uint32_t at = count;
  while (lines[at].depth > lines[line].depth) at = lines[at].parent;
  return at == line;
}

bool LineStore::LinkLast() {
  const auto* const tree = static_cast<ArenaTree*>(this);
  if (tree->linksCapacity_ <= count && !qxview::Grow(tree->links_, tree->linksCapacity_, capacity, kFirstLines)) {
    wasShort = true;
    textUsed = ArenaTree::StartOf(lines[count--]);
    return false;
  }
  tree->LinkLine(count);
  return true;
}

void ArenaTree::LinkLine(uint32_t line) const {
  Links& above = links_[lines[line].parent];
  links_[line] = {above.lastChild, 0, 0, 0};
  (above.lastChild ? links_[above.lastChild].next : above.firstChild) = line;
  above.lastChild = line;
}

bool ArenaTree::Link() const {
  if (isLinked) return true;
  if (linksCapacity_ <= count && !qxview::Grow(links_, linksCapacity_, uint64_t{count} + 1, kFirstLines)) {
    wasShort = true;
    return false;
  }
  links_[0] = Links{};
  for (uint32_t line = 1; line <= count; ++line) LinkLine(line);
  isLinked = true;
  return true;
}

LineHandle ArenaTree::FirstChild(LineHandle line) const {
  if (line > count) return 0;
  if (isInOrder && !isLinked) return line < count && lines[line + 1].parent == line ? line + 1 : 0;
  return Link() ? links_[line].firstChild : 0;
}

LineHandle ArenaTree::LastChild(LineHandle line) const { return line <= count && Link() ? links_[line].lastChild : 0; }

LineHandle ArenaTree::NextSibling(LineHandle line) const {
  if (!Holds(line)) return 0;
  if (isInOrder && !isLinked && stepped_ <= 2 * uint64_t{count}) {
    const uint16_t depth = lines[line].depth;
    LineHandle at = line + 1;
    for (; at + 4 <= count; at += 4) {
      const Line* const next = lines + at;
      if (next[0].depth <= depth || next[1].depth <= depth || next[2].depth <= depth || next[3].depth <= depth) break;
    }
    while (at <= count && lines[at].depth > depth) ++at;
    stepped_ += at - line;
    return at <= count && lines[at].depth == depth ? at : 0;
  }
  return Link() ? links_[line].next : 0;
}

LineHandle ArenaTree::Append(const NewLine& line) {
  const int32_t length = line.length > 0 ? line.length : 0;
  char* const room = Room(line.parent, static_cast<uint32_t>(length));
  if (!room) return 0;
  CopyShort(room, line.text, static_cast<size_t>(length));
  const LineHandle handle = Add(line.parent, room, static_cast<uint32_t>(length), line.image, line.rangeIndex);
  if (line.selected) selected_ = handle;
  return handle;
}

int32_t ArenaTree::GetText(LineHandle line, char* out, int32_t outSize) const {
  if (outSize < 1) return 0;
  const uint32_t length = Holds(line) ? lines[line].length : 0;
  const uint32_t room = static_cast<uint32_t>(outSize - 1);
  const uint32_t copied = length < room ? length : room;
  if (copied) CopyShort(out, TextOf(line).data(), copied);
  out[copied] = 0;
  return static_cast<int32_t>(copied);
}

// Where the line's text stands from now on, of so many bytes; so many of those that it has are kept. Null when there is no memory.
char* ArenaTree::Retext(LineHandle handle, uint32_t wanted, uint32_t kept) {
  const bool isLast = handle == count && !(lines[handle].flags & kIsEdited);
  if (isLast && !Reserve(0, wanted)) return nullptr;   // which may move the texts
  Line& line = lines[handle];
  if (isLast) {   // nothing stands behind it yet
    Lengthen(wanted);
    return text + line.made;
  }
  const bool wasEdited = line.flags & kIsEdited;
  if (!wasEdited || wanted > line.editedRoom) {
    // A line that grows again (a header that collects its fields) is left the more room, the longer it was.
    const uint32_t room = wanted + (wasEdited ? line.editedRoom : line.length);
    const bool atEnd = wasEdited && line.edited + line.editedRoom == editsUsed_;
    const uint32_t offset = atEnd ? line.edited : editsUsed_;
    const uint64_t end = uint64_t{offset} + room + kReadableBehind;
    if (end > editsCapacity_ && !qxview::Grow(edits, editsCapacity_, end, kFirstEdits)) {
      wasShort = true;
      return nullptr;
    }
    if (kept && !atEnd) CopyShort(edits + offset, PlaceOf(line), kept);
    line.edited = offset;
    line.editedRoom = room;
    line.flags = static_cast<uint8_t>((line.flags & ~kIsPrinted) | kIsEdited);
    areAllPrinted = false;
    editsUsed_ = offset + room;
  }
  line.length = wanted;
  return edits + line.edited;
}

void ArenaTree::SetText(LineHandle line, const char* given, int32_t length) {
  if (!Holds(line) || length < 0) return;
  if (char* const place = Retext(line, static_cast<uint32_t>(length), 0)) std::memmove(place, given, static_cast<uint32_t>(length));
}

bool ArenaTree::AppendText(LineHandle line, const char* given, int32_t length, int32_t most) {
  if (!Holds(line) || length < 1) return true;
  const uint32_t used = lines[line].length, limit = static_cast<uint32_t>(most);
  uint32_t added = static_cast<uint32_t>(length);
  if (used + added > limit) {
    if (used + 1 >= limit) return true;
    added = limit - 1 - used;
  }
  if (char* const place = Retext(line, used + added, used)) CopyShort(place + used, given, added);
  return true;
}

std::string_view ArenaTree::PrintedFrom(LineHandle* line) const {
  constexpr LineHandle kLinesAtOnce = 32;
  const LineHandle first = *line, behind = count - first < kLinesAtOnce ? count + 1 : first + kLinesAtOnce;
  LineHandle at = areAllPrinted ? behind : first;
  for (; at + 4 <= behind; at += 4) {
    const Line* const next = lines + at;
    if (!(next[0].flags & next[1].flags & next[2].flags & next[3].flags & kIsPrinted)) break;
  }
  while (at < behind && lines[at].flags & kIsPrinted) ++at;
  *line = at <= count ? at : 0;
  if (at == first) return {};
  const uint32_t start = StartOf(lines[first]), end = at <= count ? StartOf(lines[at]) : textUsed;
  return {text + start, end - start};
}

void ArenaTree::SetRangeIndex(LineHandle line, uint32_t index) {
  if (Holds(line)) lines[line].rangeIndex = index;
}

void ArenaTree::Delete(LineHandle line) {
  if (!Holds(line)) return;
  isInOrder = false;
  if (!Link()) return;   // nobody finds any line then
  const Links& own = links_[line];
  Links& above = links_[lines[line].parent];
  (own.previous ? links_[own.previous].next : above.firstChild) = own.next;
  (own.next ? links_[own.next].previous : above.lastChild) = own.previous;
  for (LineHandle at = selected_; at; at = lines[at].parent) {
    if (at == line) selected_ = 0;
  }
}

// Memory that a frame took and many others did without; what was deleted is not asked for any more.
void ArenaTree::GiveBack() {
  if (!spare_.IsDue(count >= kKeptLines || textUsed > kKeptText - kBeside || editsUsed_ > kKeptText)) return;
  Shrink(lines, capacity, kKeptLines);
  Shrink(links_, linksCapacity_, kKeptLines);
  Shrink(text, textCapacity, kKeptText);
  Shrink(edits, editsCapacity_, kKeptText);
}

void ArenaTree::Clear() {
  if (capacity > kKeptLines || linksCapacity_ > kKeptLines || textCapacity > kKeptText || editsCapacity_ > kKeptText) GiveBack();
  count = textUsed = editsUsed_ = 0;
  stepped_ = 0;
  if (lines) lines[0] = Line{};
  isInOrder = areAllPrinted = true;
  isLinked = anyExpanded_ = false;
  expandedLevels_ = 0;
  selected_ = 0;
}

bool ArenaTree::IsExpanded(LineHandle line) const {
  if (!Holds(line)) return false;
  const Line& node = lines[line];
  if (node.flags & (kIsExpanded | kIsCollapsed)) return node.flags & kIsExpanded;
  return node.depth <= 4 && expandedLevels_ >> node.depth & 1;
}

void ArenaTree::Expand(LineHandle line, bool expanded) {
  if (!Holds(line)) return;
  uint8_t& flags = lines[line].flags;
  flags = static_cast<uint8_t>((flags & ~(kIsExpanded | kIsCollapsed)) | (expanded ? kIsExpanded : kIsCollapsed));
  anyExpanded_ = true;
}

bool ArenaTree::ExpandLevels(const bool (&levels)[3]) {
  if (anyExpanded_) return false;
  for (int32_t i = 0; i < 3; ++i) {
    if (levels[i]) expandedLevels_ = static_cast<uint8_t>(expandedLevels_ | 4 << i);   // a top-level line has depth 1
  }
  return true;
}

}  // namespace qxview
