// The stand-alone decode tree: lines in one array, texts in another, both cleared in constant time. A line's handle is
// its index, so handles stay good while the arrays grow.
//
// Texts stand as an indented tree is printed: two blanks a depth, the text, a line feed. While lines come in the order that
// they are shown in, which is nearly always, the whole tree is one text, and what writes it copies runs of it.
#pragma once
#include <string_view>

#include "view/decode_tree.h"

namespace qxview {

class ArenaTree final : public DecodeTree {
 public:
  ArenaTree() = default;
  ~ArenaTree();
  ArenaTree(const ArenaTree&) = delete;
  ArenaTree& operator=(const ArenaTree&) = delete;

  LineHandle Append(const NewLine& line) override;
  char* RoomForText(LineHandle parent, int32_t size) override;
  LineHandle AppendMade(LineHandle parent, int32_t length, int32_t image, uint32_t rangeIndex) override;
  int32_t GetText(LineHandle line, char* out, int32_t outSize) const override;
  void SetText(LineHandle line, const char* text, int32_t length) override;
  uint32_t RangeIndex(LineHandle line) const override { return Holds(line) ? nodes_[line].rangeIndex : 0; }
  void SetRangeIndex(LineHandle line, uint32_t index) override;
  int32_t Image(LineHandle line) const override { return Holds(line) ? nodes_[line].image : 0; }
  LineHandle FirstChild(LineHandle line) const override { return line <= nodeCount_ && nodes_ ? nodes_[line].firstChild : 0; }
  LineHandle LastChild(LineHandle line) const override { return line <= nodeCount_ && nodes_ ? nodes_[line].lastChild : 0; }
  LineHandle NextSibling(LineHandle line) const override { return Holds(line) ? nodes_[line].next : 0; }
  LineHandle Parent(LineHandle line) const override { return Holds(line) ? nodes_[line].parent : 0; }
  bool Holds(LineHandle line) const override { return line >= 1 && line <= nodeCount_; }   // deleted lines too
  bool IsExpanded(LineHandle line) const override;
  LineHandle Selected() const override { return selected_; }
  void Delete(LineHandle line) override;
  void Clear() override;
  void Expand(LineHandle line, bool expanded) override;
  bool ExpandLevels(const bool (&levels)[3]) override;
  void Select(LineHandle line) override { selected_ = line; }
  void ScrollToTop() override {}
  void HoldRedraw(bool) override {}

  // The text in place, not terminated; good until the tree changes. Behind it so many bytes more may be read, whatever they are.
  static constexpr uint32_t kReadableBehind = 16;
  std::string_view TextOf(LineHandle line) const {
    const Node& node = nodes_[line];
    return {node.flags & kIsEdited ? edits_ + node.edited : text_ + node.made, node.textLength};
  }
  uint32_t LineCount() const { return nodeCount_; }   // deleted lines included
  bool WasShort() const { return wasShort_; }         // some text or line found no memory, ever

  // How many lines are above one: 0 for those at the top.
  int32_t DepthOf(LineHandle line) const { return nodes_[line].depth - 1; }
  // Whether the lines are shown in the order of their handles, none of them deleted.
  bool IsInOrder() const { return isInOrder_; }
  // Of a tree in order: the lines from *line on as they are printed, up to the first that something else has to be done for (its
  // text was changed or holds more than printable ASCII, or it stands very deep), which *line is then; 0 at the end.
  std::string_view PrintedFrom(LineHandle* line) const;

 private:
  // Index 0 stands for the top: the parent of the lines there.
  struct Node {
    uint32_t made;          // where the text was made in text_, behind its blanks
    uint32_t textLength;
    uint32_t rangeIndex;
    uint32_t parent, previous, next, firstChild, lastChild;   // handles
    uint32_t edited, editedRoom;   // where the text stands in edits_ if it was changed, and how many bytes are there
    uint16_t depth;         // one more than DepthOf
    uint8_t image;
    uint8_t flags;
  };
  static constexpr uint8_t kIsPrinted = 1;                      // the bytes in text_ are what is to be printed
  static constexpr uint8_t kIsEdited = 2;                       // the text stands in edits_
  static constexpr uint8_t kIsExpanded = 4, kIsCollapsed = 8;   // was told so by itself
  static constexpr uint32_t kDeepestPrinted = 16;   // lines below that stand without blanks
  static constexpr uint16_t kMostDepth = 0xFFFF;

  // The blanks before a line whose parent has this depth.
  static uint32_t BlanksUnder(uint32_t depth) { return depth <= kDeepestPrinted ? 2 * depth : 0; }
  // Where the printed line starts, its blanks included.
  static uint32_t StartOf(const Node& node) { return node.made - BlanksUnder(node.depth - 1u); }
  bool ReserveLine(uint64_t length);
  bool GrowFor(uint64_t length);
  bool IsOnLastPath(uint32_t line) const;

  Node* nodes_ = nullptr;
  uint32_t nodeCount_ = 0, nodeCapacity_ = 0;   // the top's is counted with the capacity alone
  char* text_ = nullptr;
  uint32_t textUsed_ = 0, textCapacity_ = 0;
  char* edits_ = nullptr;
  uint32_t editsUsed_ = 0, editsCapacity_ = 0;
  bool isInOrder_ = true;
  bool anyExpanded_ = false;        // some line was told so by itself
  uint8_t expandedLevels_ = 0;      // a bit for each depth
  LineHandle selected_ = 0;
  bool wasShort_ = false;
};

}  // namespace qxview
