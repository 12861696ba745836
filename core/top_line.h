// A tree that keeps the first top-level line alone, with what is appended to it: what a packet list shows of a protocol.
#pragma once
#include "view/decode_tree.h"

namespace qxview {

struct DecodeContext;

class TopLineTree : public DecodeTree {
 public:
  static constexpr int32_t kTextSize = 512;

  // Lines behind the first are counted and not formatted: the context falls silent.
  explicit TopLineTree(DecodeContext* context) : context_(context) {}
  const char* Text() const { return text_; }

  LineHandle Append(const NewLine& line) override;
  int32_t GetText(LineHandle line, char* out, int32_t outSize) const override;
  void SetText(LineHandle line, const char* text, int32_t length) override;
  uint32_t RangeIndex(LineHandle line) const override { return line == kTop ? range_ : UINT32_MAX; }
  void SetRangeIndex(LineHandle, uint32_t) override {}
  int32_t Image(LineHandle) const override { return 0; }
  LineHandle FirstChild(LineHandle line) const override { return line == 0 && taken_ ? kTop : 0; }
  LineHandle LastChild(LineHandle line) const override { return FirstChild(line); }
  LineHandle NextSibling(LineHandle) const override { return 0; }
  LineHandle Parent(LineHandle) const override { return 0; }
  bool Holds(LineHandle line) const override { return line == kTop; }
  bool IsExpanded(LineHandle) const override { return false; }
  LineHandle Selected() const override { return 0; }
  void Delete(LineHandle) override {}
  void Clear() override {}
  void Expand(LineHandle, bool) override {}
  void Select(LineHandle) override {}
  void ScrollToTop() override {}
  void HoldRedraw(bool) override {}

 private:
  static constexpr LineHandle kTop = 1;
  DecodeContext* context_;
  char text_[kTextSize] = "";
  bool taken_ = false;
  uint32_t range_ = 0;
};

}  // namespace qxview
