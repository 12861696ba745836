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

// For those who look for members without lines: the next one of the object, or item of the array, whose bracket is next or was
// taken. Names and texts have their quotation marks; an item has no name. False where none follows.
struct JsonMember {
  Field name, value;
};
bool TakeJsonMember(Cursor& c, JsonMember& out);

}  // namespace qxview
