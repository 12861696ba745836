// The decode tree as the engine sees it: a list of lines with children, behind which stands an arena in memory or a
// tree control of the platform.
#pragma once
#include <cstdint>

namespace qxview {

using LineHandle = uintptr_t;   // 0 is no line; as a parent, the top level

struct NewLine {
  LineHandle parent;
  const char* text;       // `length` characters and a terminator
  int32_t length;
  int32_t image;          // for the normal and the selected state
  uint32_t rangeIndex;    // the line's tag: its index in the context's range table
  bool selected;
};

struct LineStore;

class DecodeTree {
 public:
  // Where the lines are kept in memory that the engine adds to on its own (view/line_store.h); null for other trees.
  LineStore* Lines() const { return lines_; }
  // Appends as the last child; 0 when there is no memory for it.
  virtual LineHandle Append(const NewLine& line) = 0;
  // Copies the text out, cut to outSize - 1 characters and terminated; returns the length copied.
  virtual int32_t GetText(LineHandle line, char* out, int32_t outSize) const = 0;
  virtual void SetText(LineHandle line, const char* text, int32_t length) = 0;
  // Appends to the text, which becomes `most` - 1 characters long where both were longer than `most`. False, with nothing done,
  // by a tree that is told whole texts.
  virtual bool AppendText(LineHandle /*line*/, const char* /*text*/, int32_t /*length*/, int32_t /*most*/) { return false; }
  virtual uint32_t RangeIndex(LineHandle line) const = 0;
  virtual void SetRangeIndex(LineHandle line, uint32_t index) = 0;
  virtual int32_t Image(LineHandle line) const = 0;

  // 0 where there is none; FirstChild(0) is the first top-level line.
  virtual LineHandle FirstChild(LineHandle line) const = 0;
  virtual LineHandle LastChild(LineHandle line) const = 0;
  virtual LineHandle NextSibling(LineHandle line) const = 0;
  virtual LineHandle Parent(LineHandle line) const = 0;

  virtual bool Holds(LineHandle line) const = 0;   // whether this is a line of the tree
  virtual bool IsExpanded(LineHandle line) const = 0;
  virtual LineHandle Selected() const = 0;         // 0: none

  virtual void Delete(LineHandle line) = 0;   // with its subtree
  virtual void Clear() = 0;

  virtual void Expand(LineHandle line, bool expanded) = 0;
  // Every line of levels[i] is below i + 1 others. False, with nothing done, by a tree that is told line by line.
  virtual bool ExpandLevels(const bool (&/*levels*/)[3]) { return false; }
  virtual void Select(LineHandle line) = 0;   // 0: none
  virtual void ScrollToTop() = 0;             // caret to the first line, then to none
  virtual void HoldRedraw(bool held) = 0;     // while lines are added
  // What user decoder libraries are handed as the tree; null when it has no form of its own.
  virtual void* NativeHandle() { return nullptr; }

 protected:
  ~DecodeTree() = default;
  LineStore* lines_ = nullptr;
};

}  // namespace qxview
