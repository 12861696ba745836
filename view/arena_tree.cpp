#include "view/arena_tree.h"

#include <cstdlib>
#include <cstring>

#include "core/digits.h"

namespace qxview {
namespace {

constexpr uint32_t kFirstNodes = 512;
constexpr uint32_t kFirstText = 32768;
constexpr uint32_t kMostText = 0x7FFFFFFF;

// Makes room for `wanted` elements by doubling; false, with nothing changed, when there is no memory.
template <class T>
bool Grow(T*& elements, uint32_t& capacity, uint32_t wanted, uint32_t first) {
  if (wanted > kMostText) return false;
  uint32_t grown = capacity ? capacity : first;
  while (grown < wanted) grown *= 2;
  T* moved = static_cast<T*>(std::realloc(elements, size_t{grown} * sizeof(T)));
  if (!moved) return false;
  elements = moved;
  capacity = grown;
  return true;
}

}  // namespace

ArenaTree::~ArenaTree() {
  std::free(nodes_);
  std::free(text_);
}

bool ArenaTree::ReserveText(uint32_t length) {
  const uint64_t wanted = uint64_t{textUsed_} + length + kReadableBehind;
  if (wanted <= textCapacity_) return true;
  if (wanted <= kMostText && Grow(text_, textCapacity_, static_cast<uint32_t>(wanted), kFirstText)) return true;
  wasShort_ = true;
  return false;
}

LineHandle ArenaTree::Append(const NewLine& line) {
  const uint32_t length = line.length > 0 ? static_cast<uint32_t>(line.length) : 0;
  if (line.parent != 0 && !Holds(line.parent)) return 0;
  if (nodeCount_ == nodeCapacity_ && !Grow(nodes_, nodeCapacity_, nodeCount_ + 1, kFirstNodes)) return wasShort_ = true, 0;
  if (!ReserveText(length + 1)) return 0;
  const uint32_t handle = ++nodeCount_;
  const uint32_t parent = static_cast<uint32_t>(line.parent);
  uint32_t& first = parent ? nodes_[parent - 1].firstChild : firstTop_;
  uint32_t& last = parent ? nodes_[parent - 1].lastChild : lastTop_;
  nodes_[handle - 1] = {textUsed_, length, length + 1, line.rangeIndex, parent, last, 0, 0, 0,
                        static_cast<uint8_t>(line.image), false};
  CopyShort(text_ + textUsed_, line.text, length);
  text_[textUsed_ + length] = 0;
  textUsed_ += length + 1;
  if (last) {
    nodes_[last - 1].next = handle;
  } else {
    first = handle;
  }
  last = handle;
  if (line.selected) selected_ = handle;
  return handle;
}

int32_t ArenaTree::GetText(LineHandle line, char* out, int32_t outSize) const {
  if (outSize < 1) return 0;
  const uint32_t length = Holds(line) ? nodes_[line - 1].textLength : 0;
  const uint32_t room = static_cast<uint32_t>(outSize - 1);
  const uint32_t copied = length < room ? length : room;
  if (copied) CopyShort(out, TextOf(line), copied);
  out[copied] = 0;
  return static_cast<int32_t>(copied);
}

void ArenaTree::SetText(LineHandle line, const char* text, int32_t length) {
  if (!Holds(line) || length < 0) return;
  Node& node = nodes_[line - 1];
  const uint32_t wanted = static_cast<uint32_t>(length) + 1;
  if (wanted > node.textRoom) {
    // A line that grows again (a header that collects its fields) is left the more room, the longer it was.
    const uint32_t room = wanted + node.textRoom;
    const bool atEnd = node.textOffset + node.textRoom == textUsed_;
    if (!ReserveText(room)) return;
    if (!atEnd) node.textOffset = textUsed_;
    textUsed_ = node.textOffset + room;
    node.textRoom = room;
  }
  std::memmove(text_ + node.textOffset, text, static_cast<size_t>(length));
  text_[node.textOffset + static_cast<uint32_t>(length)] = 0;
  node.textLength = static_cast<uint32_t>(length);
}

void ArenaTree::SetRangeIndex(LineHandle line, uint32_t index) {
  if (Holds(line)) nodes_[line - 1].rangeIndex = index;
}
LineHandle ArenaTree::LastChild(LineHandle line) const {
  return line == 0 ? lastTop_ : Holds(line) ? nodes_[line - 1].lastChild : 0;
}

void ArenaTree::Delete(LineHandle line) {
  if (!Holds(line)) return;
  const Node& node = nodes_[line - 1];
  uint32_t& first = node.parent ? nodes_[node.parent - 1].firstChild : firstTop_;
  uint32_t& last = node.parent ? nodes_[node.parent - 1].lastChild : lastTop_;
  (node.previous ? nodes_[node.previous - 1].next : first) = node.next;
  (node.next ? nodes_[node.next - 1].previous : last) = node.previous;
  for (LineHandle at = selected_; at; at = nodes_[at - 1].parent) {
    if (at == line) selected_ = 0;
  }
}

void ArenaTree::Clear() {
  nodeCount_ = textUsed_ = firstTop_ = lastTop_ = 0;
  selected_ = 0;
}

void ArenaTree::Expand(LineHandle line, bool expanded) {
  if (Holds(line)) nodes_[line - 1].expanded = expanded;
}

}  // namespace qxview
