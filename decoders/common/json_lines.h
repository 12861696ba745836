// JSON (RFC 8259) as lines: each member "name: value" over its bytes, with the name and the value under it; what an object
// or an array holds under its line.
#pragma once
#include "core/decoder.h"

namespace qxview {

// Whether an object or an array begins here, behind blanks.
bool StartsJson(const Cursor& c);

// Shows one value's members under `in`, and takes it with the blanks in front. What breaks the grammar, or nests too
// deeply, ends it: the cursor stands there. Result: whether the value was whole.
bool ShowJson(const Place& in, Cursor& c);

}  // namespace qxview
