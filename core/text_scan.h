// Searches in the texts of frames, many characters at once.
#pragma once
#include <string_view>

#include "core/cursor.h"

namespace qxview {

// Where the first of a few characters stands, from `at` on; the text's length without one.
int32_t FindAny(const Field& text, int32_t at, std::string_view wanted);

// How many characters of printable ASCII come next.
int32_t CountPlain(const Cursor& c);

}  // namespace qxview
