// Header extensions of the reliable multicast transports (RFC 5651 section 5.2; RFC 5740 section 4.1): types below 128
// have a length in words of 32 bits, the others are one word.
#pragma once
#include "core/rows.h"

namespace qxview {

struct HeaderExtension {
  uint32_t type;
  Place in;      // under its line
  Cursor body;   // behind type and length, cut to what is there
};

inline HeaderExtension TakeHeaderExtension(const Place& at, Cursor& c, const Names& names) {
  const Cursor start = c;
  const Field type = TakeU8(c);
  const bool isLong = type.value < 128;
  const Field words = isLong ? TakeU8(c) : Field{};
  const int64_t size = isLong ? static_cast<int64_t>(words.value) * 4 - 2 : 3;
  const Cursor body = TakeCursor(c, size < 0 ? Left(c) : size);
  const char* name = names.NameOf(type.value);
  const Place in = Under(at, AddLine(at, Ahead(start, c.offset - start.offset), "Header Extension: %s", name));
  AddLine(in, type, "Type: %u = %s", type.value, name);
  AddLine(in, words, "Length: %u words", words.value);
  return {type.value, in, body};
}

}  // namespace qxview
