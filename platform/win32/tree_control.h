// The decode tree over a tree view control of the common controls. The control owns the lines: a line's handle is its
// item handle, its tag is the item's data, so that user decoder libraries may add items of their own. Texts are in the
// system's ANSI code page, as is everything that the module shows.
//
// Items are slow, and are made on the thread that the user waits for: of a frame with very many lines, or one that takes
// too long, the rest is left out. One line says how many those are and stands for each of them.
#pragma once
#include "view/decode_tree.h"

namespace qxview {

constexpr int32_t kImageWidth = 15;
constexpr int32_t kImageHeight = 16;
constexpr uint32_t kMostItems = 10000;
constexpr uint32_t kMostItemMilliseconds = 1000;

class TreeControl final : public DecodeTree {
 public:
  // control: the handle of a tree view control, which stays the caller's. To be used on the thread that made it.
  explicit TreeControl(void* control) : control_(control) {}

  LineHandle Append(const NewLine& line) override;
  int32_t GetText(LineHandle line, char* out, int32_t outSize) const override;
  void SetText(LineHandle line, const char* text, int32_t length) override;
  uint32_t RangeIndex(LineHandle line) const override;
  void SetRangeIndex(LineHandle line, uint32_t index) override;
  int32_t Image(LineHandle line) const override;
  LineHandle FirstChild(LineHandle line) const override;
  LineHandle LastChild(LineHandle line) const override;
  LineHandle NextSibling(LineHandle line) const override;
  LineHandle Parent(LineHandle line) const override;
  bool Holds(LineHandle line) const override;
  bool IsExpanded(LineHandle line) const override;
  LineHandle Selected() const override;
  void Delete(LineHandle line) override;
  void Clear() override;
  void Expand(LineHandle line, bool expanded) override;
  void Select(LineHandle line) override;
  void ScrollToTop() override;
  void HoldRedraw(bool held) override;
  void* NativeHandle() override { return control_; }

 private:
  bool LeavesOut();
  LineHandle Insert(const NewLine& line);

  void* control_;
  uint32_t items_ = 0;      // of the frame
  uint32_t started_ = 0;    // the system's milliseconds when the frame began
  LineHandle leftOut_ = 0;  // the line for those that were left out
  uint32_t leftOutCount_ = 0;
  LineHandle marked_ = 0;   // was appended as the selected line and is until another one is selected
  bool held_ = false;
};

// A tree view control with the level images of a screen's size, as a child of `parent`; null when it cannot be made or an
// image is missing.
void* CreateTreeControl(void* parent, uint32_t dotsPerInch = 96);

// The window came to a screen of other dots.
void ScaleTreeControl(void* control, uint32_t dotsPerInch);

// The image list of a control that CreateTreeControl made goes with it; the caller destroys the control first.
void DestroyTreeControl(void* control);

}  // namespace qxview
