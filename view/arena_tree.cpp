#include "view/arena_tree.h"

#include <cstdlib>
#include <cstring>

#include "core/digits.h"
#include "core/sixteen.h"

namespace qxview {
namespace {

constexpr uint32_t kFirstNodes = 512;
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

// Beside a line's text: its blanks, its line feed, and whole steps of sixteen behind it.
constexpr uint32_t kBeside = 64;

}  // namespace

ArenaTree::~ArenaTree() {
  std::free(nodes_);
  std::free(text_);
  std::free(edits_);
}

bool ArenaTree::GrowFor(uint64_t length) {
  if (nodeCount_ + 1 >= nodeCapacity_) {
    const bool isFirst = !nodes_;
    if (!Grow(nodes_, nodeCapacity_, uint64_t{nodeCount_} + 2, kFirstNodes)) return wasShort_ = true, false;
    if (isFirst) nodes_[0] = Node{};
  }
  const uint64_t wanted = textUsed_ + length + kBeside;
  if (wanted <= textCapacity_ || Grow(text_, textCapacity_, wanted, kFirstText)) return true;
  wasShort_ = true;
  return false;
}

inline bool ArenaTree::ReserveLine(uint64_t length) {
  static_assert(kBeside >= 2 * kDeepestPrinted + 1 + kSixteen && kReadableBehind <= kSixteen);
  if (nodeCount_ + 1 < nodeCapacity_ && textUsed_ + length + kBeside <= textCapacity_) [[likely]] return true;
  return GrowFor(length);
}

char* ArenaTree::RoomForText(LineHandle parent, int32_t size) {
  if (parent > nodeCount_ || !ReserveLine(static_cast<uint32_t>(size))) return nullptr;
  static_assert(2 * kDeepestPrinted == 2 * kSixteen);
  char* const line = text_ + textUsed_;
  PutBlanks(line);
  PutBlanks(line + kSixteen);
  return line + BlanksUnder(nodes_[parent].depth);
}

// Whether a line that comes under this one is the last of all.
bool ArenaTree::IsOnLastPath(uint32_t line) const {
  uint32_t at = nodeCount_;
  while (nodes_[at].depth > nodes_[line].depth) at = nodes_[at].parent;
  return at == line;
}

LineHandle ArenaTree::AppendMade(LineHandle parentLine, int32_t textLength, int32_t image, uint32_t rangeIndex) {
  const uint32_t parent = static_cast<uint32_t>(parentLine), length = static_cast<uint32_t>(textLength), last = nodeCount_;
  Node& above = nodes_[parent];
  const uint32_t depth = above.depth;
  if (depth == kMostDepth) return 0;
  if (parent != last && parent != nodes_[last].parent && isInOrder_) isInOrder_ = IsOnLastPath(parent);
  const uint32_t made = textUsed_ + BlanksUnder(depth);
  char* const text = text_ + made;
  PutBlanks(text + length);
  const bool isPrinted = IsPrintable(text, length) && depth <= kDeepestPrinted;
  text[length] = '\n';
  textUsed_ = made + length + 1;
  nodeCount_ = last + 1;
  Node& node = (&nodes_[last])[1];
  node.made = made;
  node.textLength = length;
  node.rangeIndex = rangeIndex;
  node.parent = parent;
  node.next = node.firstChild = node.lastChild = 0;
  node.depth = static_cast<uint16_t>(depth + 1);
  node.image = static_cast<uint8_t>(image);
  node.flags = isPrinted ? kIsPrinted : uint8_t{0};
  const uint32_t previous = above.lastChild;
  node.previous = previous;
  above.lastChild = last + 1;
  (previous ? nodes_[previous].next : above.firstChild) = last + 1;
  return last + 1;
}

LineHandle ArenaTree::Append(const NewLine& line) {
  const int32_t length = line.length > 0 ? line.length : 0;
  char* const text = RoomForText(line.parent, length);
  if (!text) return 0;
  CopyShort(text, line.text, static_cast<size_t>(length));
  const LineHandle handle = AppendMade(line.parent, length, line.image, line.rangeIndex);
  if (line.selected) selected_ = handle;
  return handle;
}

int32_t ArenaTree::GetText(LineHandle line, char* out, int32_t outSize) const {
  if (outSize < 1) return 0;
  const uint32_t length = Holds(line) ? nodes_[line].textLength : 0;
  const uint32_t room = static_cast<uint32_t>(outSize - 1);
  const uint32_t copied = length < room ? length : room;
  if (copied) CopyShort(out, TextOf(line).data(), copied);
  out[copied] = 0;
  return static_cast<int32_t>(copied);
}

void ArenaTree::SetText(LineHandle line, const char* text, int32_t length) {
  if (!Holds(line) || length < 0) return;
  const uint32_t wanted = static_cast<uint32_t>(length);
  const bool isLast = line == nodeCount_ && !(nodes_[line].flags & kIsEdited);
  if (isLast && !ReserveLine(wanted)) return;   // which may move the nodes
  Node& node = nodes_[line];
  if (isLast) {   // nothing stands behind it yet
    char* const place = text_ + node.made;
    std::memmove(place, text, wanted);
    PutBlanks(place + wanted);
    const bool isPrinted = IsPrintable(place, wanted) && node.depth <= kDeepestPrinted + 1;
    place[wanted] = '\n';
    node.flags = static_cast<uint8_t>((node.flags & ~kIsPrinted) | (isPrinted ? kIsPrinted : 0));
    node.textLength = wanted;
    textUsed_ = node.made + wanted + 1;
    return;
  }
  const bool wasEdited = node.flags & kIsEdited;
  if (!wasEdited || wanted > node.editedRoom) {
    // A line that grows again (a header that collects its fields) is left the more room, the longer it was.
    const uint32_t room = wanted + (wasEdited ? node.editedRoom : node.textLength);
    const bool atEnd = wasEdited && node.edited + node.editedRoom == editsUsed_;
    const uint32_t offset = atEnd ? node.edited : editsUsed_;
    const uint64_t end = uint64_t{offset} + room + kReadableBehind;
    if (end > editsCapacity_ && !Grow(edits_, editsCapacity_, end, kFirstEdits)) {
      wasShort_ = true;
      return;
    }
    node.edited = offset;
    node.editedRoom = room;
    node.flags = static_cast<uint8_t>((node.flags & ~kIsPrinted) | kIsEdited);
    editsUsed_ = offset + room;
  }
  std::memmove(edits_ + node.edited, text, wanted);
  node.textLength = wanted;
}

std::string_view ArenaTree::PrintedFrom(LineHandle* line) const {
  const LineHandle first = *line;
  LineHandle at = first;
  while (at <= nodeCount_ && nodes_[at].flags & kIsPrinted) ++at;
  *line = at <= nodeCount_ ? at : 0;
  if (at == first) return {};
  const uint32_t start = StartOf(nodes_[first]), end = at <= nodeCount_ ? StartOf(nodes_[at]) : textUsed_;
  return {text_ + start, end - start};
}

void ArenaTree::SetRangeIndex(LineHandle line, uint32_t index) {
  if (Holds(line)) nodes_[line].rangeIndex = index;
}

void ArenaTree::Delete(LineHandle line) {
  if (!Holds(line)) return;
  const Node& node = nodes_[line];
  Node& above = nodes_[node.parent];
  (node.previous ? nodes_[node.previous].next : above.firstChild) = node.next;
  (node.next ? nodes_[node.next].previous : above.lastChild) = node.previous;
  isInOrder_ = false;
  for (LineHandle at = selected_; at; at = nodes_[at].parent) {
    if (at == line) selected_ = 0;
  }
}

void ArenaTree::Clear() {
  nodeCount_ = textUsed_ = editsUsed_ = 0;
  if (nodes_) nodes_[0] = Node{};
  isInOrder_ = true;
  anyExpanded_ = false;
  expandedLevels_ = 0;
  selected_ = 0;
}

bool ArenaTree::IsExpanded(LineHandle line) const {
  if (!Holds(line)) return false;
  const Node& node = nodes_[line];
  if (node.flags & (kIsExpanded | kIsCollapsed)) return node.flags & kIsExpanded;
  return node.depth <= 4 && expandedLevels_ >> node.depth & 1;
}

void ArenaTree::Expand(LineHandle line, bool expanded) {
  if (!Holds(line)) return;
  uint8_t& flags = nodes_[line].flags;
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
