// The lines that a question wants, of a frame whose other lines are counted alone: those stand nowhere, and what is under them
// stands at the top.
#pragma once
#include "core/context.h"
#include "view/arena_tree.h"

namespace qxview {

class PartialTree final : public DecodeTree {
 public:
  const ArenaTree& Lines() const { return lines_; }

  LineHandle Append(const NewLine& line) override {
    NewLine inner = line;
    inner.parent = Inner(line.parent);
    return Outer(lines_.Append(inner));
  }
  int32_t GetText(LineHandle line, char* out, int32_t outSize) const override {
    return lines_.GetText(Inner(line), out, outSize);
  }
  void SetText(LineHandle line, const char* text, int32_t length) override {
    if (Inner(line)) lines_.SetText(Inner(line), text, length);
  }
  uint32_t RangeIndex(LineHandle line) const override { return Inner(line) ? lines_.RangeIndex(Inner(line)) : UINT32_MAX; }
  void SetRangeIndex(LineHandle line, uint32_t index) override {
    if (Inner(line)) lines_.SetRangeIndex(Inner(line), index);
  }
  int32_t Image(LineHandle line) const override { return Inner(line) ? lines_.Image(Inner(line)) : 0; }

  LineHandle FirstChild(LineHandle line) const override { return IsElsewhere(line) ? 0 : Outer(lines_.FirstChild(Inner(line))); }
  LineHandle LastChild(LineHandle line) const override { return IsElsewhere(line) ? 0 : Outer(lines_.LastChild(Inner(line))); }
  LineHandle NextSibling(LineHandle line) const override { return Inner(line) ? Outer(lines_.NextSibling(Inner(line))) : 0; }
  LineHandle Parent(LineHandle line) const override { return Inner(line) ? Outer(lines_.Parent(Inner(line))) : 0; }

  bool Holds(LineHandle line) const override { return Inner(line) && lines_.Holds(Inner(line)); }
  bool IsExpanded(LineHandle) const override { return false; }
  LineHandle Selected() const override { return 0; }

  void Delete(LineHandle line) override {
    if (Inner(line)) lines_.Delete(Inner(line));
  }
  void Clear() override { lines_.Clear(); }

  void Expand(LineHandle, bool) override {}
  void Select(LineHandle) override {}
  void ScrollToTop() override {}
  void HoldRedraw(bool) override {}

 private:
  // Above kLineOutsideDisplay and what stands behind it, the handles of lines that are not here.
  static constexpr LineHandle kFirst = LineHandle{1} << 16;
  static_assert(kFirst > kTakenLine);
  static LineHandle Outer(LineHandle inner) { return inner ? inner + kFirst : 0; }
  static LineHandle Inner(LineHandle outer) { return outer > kFirst ? outer - kFirst : 0; }
  static bool IsElsewhere(LineHandle line) { return line != 0 && Inner(line) == 0; }

  ArenaTree lines_;
};

}  // namespace qxview
