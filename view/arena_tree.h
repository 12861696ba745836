// The stand-alone decode tree: lines and their texts in arrays, all cleared in constant time.
#pragma once
#include <string_view>

#include "core/spare_memory.h"
#include "view/line_store.h"

namespace qxview {

class ArenaTree final : public DecodeTree, private LineStore {
 public:
  ArenaTree() { lines_ = this; }
  ~ArenaTree();
  ArenaTree(const ArenaTree&) = delete;
  ArenaTree& operator=(const ArenaTree&) = delete;

  LineHandle Append(const NewLine& line) override;
  int32_t GetText(LineHandle line, char* out, int32_t outSize) const override;
  void SetText(LineHandle line, const char* text, int32_t length) override;
  bool AppendText(LineHandle line, const char* text, int32_t length, int32_t most) override;
  uint32_t RangeIndex(LineHandle line) const override { return Holds(line) ? lines[line].rangeIndex : 0; }
  void SetRangeIndex(LineHandle line, uint32_t index) override;
  int32_t Image(LineHandle line) const override { return Holds(line) ? lines[line].image : 0; }
  LineHandle FirstChild(LineHandle line) const override;
  LineHandle LastChild(LineHandle line) const override;
  LineHandle NextSibling(LineHandle line) const override;
  LineHandle Parent(LineHandle line) const override { return Holds(line) ? lines[line].parent : 0; }
  bool Holds(LineHandle line) const override { return line >= 1 && line <= count; }   // deleted lines too
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
  std::string_view TextOf(LineHandle line) const { return {PlaceOf(lines[line]), lines[line].length}; }
  uint32_t LineCount() const { return count; }   // deleted lines included
  bool WasShort() const { return wasShort; }     // some text or line found no memory, ever

  // How many lines are above one: 0 for those at the top.
  int32_t DepthOf(LineHandle line) const { return lines[line].depth - 1; }
  // Whether the lines are shown in the order of their handles, none of them deleted.
  bool IsInOrder() const { return isInOrder; }
  // Of a tree in order: some lines from *line on as they stand one behind the other, with blanks and line feeds, up to the first
  // that was changed or stands very deep; none where that is the first. *line is the one behind them then, 0 at the end. Sixteen
  // bytes behind the text may be read.
  std::string_view PrintedFrom(LineHandle* line) const;

 private:
  friend struct LineStore;
  // Made when somebody first steps along them and the lines alone do not tell quickly enough.
  struct Links {
    uint32_t previous, next, firstChild, lastChild;   // handles
  };

  // Where the printed line starts, its blanks included.
  static uint32_t StartOf(const Line& line) { return line.made - BlanksUnder(line.depth - 1u); }
  bool Link() const;
  void LinkLine(uint32_t line) const;
  char* Retext(LineHandle line, uint32_t wanted, uint32_t kept);
  void GiveBack();

  uint32_t editsUsed_ = 0, editsCapacity_ = 0;
  mutable Links* links_ = nullptr;
  mutable uint32_t linksCapacity_ = 0;
  mutable uint64_t stepped_ = 0;         // lines that were passed over for want of links
  bool anyExpanded_ = false;        // some line was told so by itself
  uint8_t expandedLevels_ = 0;      // a bit for each depth
  LineHandle selected_ = 0;
  SpareMemory spare_;
};

}  // namespace qxview
