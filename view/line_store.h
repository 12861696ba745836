// The lines of a tree in memory, in the order that they were added in: a record each, and their texts one behind another. The
// engine adds to it without asking a tree; ArenaTree (view/arena_tree.h) is the tree over it. A line's handle is its index, so
// handles stay good while the store grows.
//
// Texts stand as an indented tree is printed: two blanks a depth, the text, a line feed. While lines come in the order that
// they are shown in, which is nearly always, the whole tree is one text, and what writes it copies runs of it.
#pragma once
#include <cstdint>

#include "core/sixteen.h"
#include "view/decode_tree.h"

namespace qxview {

struct LineStore {
  struct Line {
    uint32_t made;          // where the text was made in `text`, behind its blanks
    uint32_t length;
    uint32_t rangeIndex;
    uint32_t parent;        // handle
    uint16_t depth;         // 1 for a line at the top
    uint8_t image;
    uint8_t flags;
    uint32_t edited, editedRoom;   // where the text stands in `edits` if it was changed, and how many bytes are there
    uint32_t unused;               // a power of two
  };
  static_assert(sizeof(Line) == 32);
  static constexpr uint8_t kIsPrinted = 1;                      // stands as it is printed: not deep, not edited
  static constexpr uint8_t kIsEdited = 2;                       // the text stands in `edits`
  static constexpr uint8_t kIsExpanded = 4, kIsCollapsed = 8;   // was told so by itself
  static constexpr uint32_t kDeepestPrinted = 16;   // lines below that stand without blanks
  static constexpr uint16_t kMostDepth = 0xFFFF;
  // Beside a line's text: its blanks, its line feed, and whole steps of sixteen behind it.
  static constexpr uint32_t kBeside = 64;
  static_assert(kBeside >= 2 * kDeepestPrinted + 1 + kSixteen && 2 * kDeepestPrinted == 2 * kSixteen);

  Line* lines = nullptr;                // index 0 stands for the top
  uint32_t count = 0, capacity = 0;     // the top's is counted with the capacity alone
  char* text = nullptr;
  uint32_t textUsed = 0, textCapacity = 0;
  char* edits = nullptr;                // texts that were changed
  bool isInOrder = true;                // the lines are shown in the order of their handles, none of them deleted
  bool areAllPrinted = true;            // no line is deep or edited
  mutable bool isLinked = false;        // the tree keeps links, which every further line needs
  mutable bool wasShort = false;  // some text or line found no memory, ever

  const char* PlaceOf(const Line& line) const { return line.flags & kIsEdited ? edits + line.edited : text + line.made; }
  // The blanks before a line whose parent has this depth.
  static uint32_t BlanksUnder(uint32_t depth) { return depth <= kDeepestPrinted ? 2 * depth : 0; }

  static uint8_t FirstFlags(uint32_t depthAbove) { return depthAbove <= kDeepestPrinted ? kIsPrinted : uint8_t{0}; }

  // Room for a text of `size` bytes and its terminator, of the line that is added next under `parent`; null where there is none.
  // What is written there is a line once Add says so, with nothing else done between the two.
  char* Room(LineHandle parent, uint32_t size) {
    if (parent > count || !Reserve(1, size)) [[unlikely]] return nullptr;
    const uint32_t depth = lines[parent].depth;
    if (depth == kMostDepth) [[unlikely]] return nullptr;
    char* const line = text + textUsed;
    PutBlanks(line);
    PutBlanks(line + kSixteen);
    return line + BlanksUnder(depth);
  }

  // The line whose text of so many characters stands in the room that was given for it.
  LineHandle Add(LineHandle parentLine, char* room, uint32_t length, int32_t image, uint32_t rangeIndex) {
    const uint32_t parent = static_cast<uint32_t>(parentLine), added = count + 1, depth = lines[parent].depth;
    ComeUnder(parent);
    room[length] = '\n';
    const uint32_t made = static_cast<uint32_t>(room - text);
    textUsed = made + length + 1;
    count = added;
    Line& line = lines[added];
    line.made = made;
    line.length = length;
    line.rangeIndex = rangeIndex;
    line.parent = parent;
    line.depth = static_cast<uint16_t>(depth + 1);
    line.image = static_cast<uint8_t>(image);
    line.flags = FirstFlags(depth);
    if (depth > kDeepestPrinted) [[unlikely]] areAllPrinted = false;
    return isLinked && !LinkLast() ? 0 : added;
  }

  // The same for a line that has room (HasRoom), is not deep and has no links to be made: its text goes where Begin says, up to
  // where End is told.
  struct Begun {
    Line& line;
    char* room;
  };
  Begun Begin(uint32_t parent, int32_t image, uint32_t rangeIndex) {
    const uint32_t depth = lines[parent].depth, made = textUsed + 2 * depth;
    char* const start = text + textUsed;
    Line& line = lines[count + 1];
    ComeUnder(parent);
    line.made = made;
    line.rangeIndex = rangeIndex;
    line.parent = parent;
    line.depth = static_cast<uint16_t>(depth + 1);
    line.image = static_cast<uint8_t>(image);
    line.flags = kIsPrinted;
    PutBlanks(start);
    PutBlanks(start + kSixteen);
    return {line, start + 2 * depth};
  }
  LineHandle End(const Begun& begun, char* end) {
    *end = '\n';
    const uint32_t length = static_cast<uint32_t>(end - begun.room);
    begun.line.length = length;
    textUsed = begun.line.made + length + 1;
    return ++count;
  }

  // What is appended to the last line's text, which was not edited, is written in place where `size` bytes have room. AppendedAt
  // gives where, null for other lines; Lengthen says how long the text is then.
  char* AppendedAt(LineHandle line, uint32_t size) {
    if (line != count || line == 0 || lines[line].flags & kIsEdited || !HasRoom(0, size)) return nullptr;
    return text + lines[line].made + lines[line].length;
  }
  void Lengthen(uint32_t length) {
    Line& line = lines[count];
    line.length = length;
    textUsed = line.made + length + 1;
    text[textUsed - 1] = '\n';
  }

  bool HasRoom(uint32_t more, uint64_t size) const { return count + more < capacity && textUsed + size + kBeside <= textCapacity; }
  // Room for so many lines with so many bytes of text, beside that of the last one.
  bool Reserve(uint32_t more, uint64_t size) {
    if (HasRoom(more, size)) [[likely]] return true;
    return Grow(more, size);
  }
  // A line comes behind all others and under this one.
  void ComeUnder(uint32_t parent) {
    if (parent == count) return;
    const uint32_t above = lines[count].parent;
    if (parent != above && parent != lines[above].parent && isInOrder) [[unlikely]] isInOrder = IsOnLastPath(parent);
  }

  bool Grow(uint32_t more, uint64_t size);
  bool LinkLast();   // false when there is no memory: the line is taken back
  bool IsOnLastPath(uint32_t line) const;   // whether a line that comes under this one is the last of all
};

}  // namespace qxview
