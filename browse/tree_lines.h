// The lines of a packet's tree for whoever shows them: their texts, bytes, keys and filters, and which one a byte or a text is
// found in. Of any tree, in memory or in a control of the platform.
#pragma once
#include <cstdint>
#include <string>

#include "core/context.h"
#include "query/value.h"

namespace qxview {

struct LineFact;

// A line's bytes in the frame; none where it has no length.
struct FrameBytes {
  int32_t offset = 0;
  int32_t length = 0;
};

class TreeLines {
 public:
  TreeLines(const View* view, const DecodeTree* tree) : view_(view), tree_(tree) {}

  std::string TextOf(LineHandle line) const;
  FrameBytes BytesOf(LineHandle line) const;
  // The innermost line that has the byte, of lines with the same bytes the first one under the others; 0 for none.
  LineHandle LineAt(int32_t offset) const;
  // The line's key; empty for none.
  std::string KeyOf(LineHandle line) const;
  // The line's value alone, as a filter or a user writes it; its text where it has none.
  std::string ValueOf(LineHandle line) const;
  // A filter that the line's key and value give ("dns.type == 1"); empty for a line without a key.
  std::string FilterOf(LineHandle line) const;

  // The next line in the tree's order, whatever is expanded; 0 behind the last one.
  LineHandle Next(LineHandle line) const;
  // The next line behind `from` (0: from the start), or the one before, that holds the text.
  LineHandle Find(const Literal& text, LineHandle from, bool backward) const;

 private:
  const LineFact* FactOfLine(LineHandle line) const;
  bool Holds(const Literal& text, LineHandle line) const;

  const View* view_;
  const DecodeTree* tree_;
};

}  // namespace qxview
