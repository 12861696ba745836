// The stand-alone decode tree: lines in one array, texts in another, both cleared in constant time. A line's handle is
// its index plus one, so handles stay good while the arrays grow.
#pragma once
#include "view/decode_tree.h"

namespace qxview {

class ArenaTree final : public DecodeTree {
 public:
  ArenaTree() = default;
  ~ArenaTree();
  ArenaTree(const ArenaTree&) = delete;
  ArenaTree& operator=(const ArenaTree&) = delete;

  LineHandle Append(const NewLine& line) override;
  int32_t GetText(LineHandle line, char* out, int32_t outSize) const override;
  void SetText(LineHandle line, const char* text, int32_t length) override;
  uint32_t RangeIndex(LineHandle line) const override { return Holds(line) ? nodes_[line - 1].rangeIndex : 0; }
  void SetRangeIndex(LineHandle line, uint32_t index) override;
  int32_t Image(LineHandle line) const override { return Holds(line) ? nodes_[line - 1].image : 0; }
  LineHandle FirstChild(LineHandle line) const override {
    return line == 0 ? firstTop_ : Holds(line) ? nodes_[line - 1].firstChild : 0;
  }
  LineHandle LastChild(LineHandle line) const override;
  LineHandle NextSibling(LineHandle line) const override { return Holds(line) ? nodes_[line - 1].next : 0; }
  LineHandle Parent(LineHandle line) const override { return Holds(line) ? nodes_[line - 1].parent : 0; }
  bool Holds(LineHandle line) const override { return line >= 1 && line <= nodeCount_; }   // deleted lines too
  bool IsExpanded(LineHandle line) const override { return Holds(line) && nodes_[line - 1].expanded; }
  LineHandle Selected() const override { return selected_; }
  void Delete(LineHandle line) override;
  void Clear() override;
  void Expand(LineHandle line, bool expanded) override;
  void Select(LineHandle line) override { selected_ = line; }
  void ScrollToTop() override {}
  void HoldRedraw(bool) override {}

  // The text in place, terminated; good until the tree changes. Behind it so many bytes more may be read, whatever they are.
  static constexpr uint32_t kReadableBehind = 16;
  const char* TextOf(LineHandle line) const { return text_ + nodes_[line - 1].textOffset; }
  int32_t TextLength(LineHandle line) const { return static_cast<int32_t>(nodes_[line - 1].textLength); }
  uint32_t LineCount() const { return nodeCount_; }   // deleted lines included
  bool WasShort() const { return wasShort_; }         // some text or line found no memory, ever

 private:
  struct Node {
    uint32_t textOffset;
    uint32_t textLength;
    uint32_t textRoom;      // bytes at textOffset, terminator included
    uint32_t rangeIndex;
    uint32_t parent, previous, next, firstChild, lastChild;   // handles
    uint8_t image;
    bool expanded;
  };

  bool ReserveText(uint32_t length);

  Node* nodes_ = nullptr;
  uint32_t nodeCount_ = 0, nodeCapacity_ = 0;
  char* text_ = nullptr;
  uint32_t textUsed_ = 0, textCapacity_ = 0;
  uint32_t firstTop_ = 0, lastTop_ = 0;
  LineHandle selected_ = 0;
  bool wasShort_ = false;
};

}  // namespace qxview
