// A header line's range for a length that the bytes say: cut to what is there.
#pragma once
#include "core/cursor.h"

namespace qxview {

inline Field AheadCut(const Cursor& c, int64_t length) {
  const int64_t cut = length < 0 ? 0 : length < Left(c) ? length : Left(c);
  return Ahead(c, static_cast<int32_t>(cut));
}

}  // namespace qxview
