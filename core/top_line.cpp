#include "core/top_line.h"

#include <cstring>

#include "core/context.h"

namespace qxview {

// A block of data is no line of a protocol.
LineHandle TopLineTree::Append(const NewLine& line) {
  context_->silent = true;
  if (taken_) return 0;
  taken_ = true;
  range_ = line.rangeIndex;
  if (RangeKind(context_->rangeTable[line.rangeIndex]) == kFieldKind) SetText(kTop, line.text, line.length);
  return kTop;
}

int32_t TopLineTree::GetText(LineHandle line, char* out, int32_t outSize) const {
  int32_t length = line == kTop ? static_cast<int32_t>(std::strlen(text_)) : 0;
  if (length > outSize - 1) length = outSize - 1;
  std::memcpy(out, text_, static_cast<size_t>(length));
  out[length] = 0;
  return length;
}

void TopLineTree::SetText(LineHandle line, const char* text, int32_t length) {
  if (line != kTop) return;
  if (length > kTextSize - 1) length = kTextSize - 1;
  std::memcpy(text_, text, static_cast<size_t>(length));
  text_[length] = 0;
}

}  // namespace qxview
