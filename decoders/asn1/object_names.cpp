#include "decoders/asn1/object_names.h"

#include <cstring>
#include <iterator>

namespace qxview {
namespace {

#include "decoders/asn1/object_names.inc"

// Below 0, 0 or above 0, as the identifier stands before the entry, is it, or stands behind.
int32_t Compare(const Cursor& contents, const char* entry) {
  const int32_t size = static_cast<uint8_t>(entry[0]), left = Left(contents);
  for (int32_t i = 0; i < size && i < left; ++i) {
    const int32_t difference = static_cast<int32_t>(PeekU8(contents, i)) - static_cast<uint8_t>(entry[1 + i]);
    if (difference != 0) return difference;
  }
  return left - size;
}

}  // namespace

const char* NameOfObject(const Cursor& contents) {
  size_t lower = 0, upper = std::size(kObjectStarts);
  while (lower < upper) {
    const size_t middle = (lower + upper) / 2;
    const char* entry = kObjectBytes + kObjectStarts[middle];
    const int32_t order = Compare(contents, entry);
    if (order == 0) return entry + 1 + static_cast<uint8_t>(entry[0]);
    if (order > 0) {
      lower = middle + 1;
    } else {
      upper = middle;
    }
  }
  return nullptr;
}

NamedObject DescribeObject(const Cursor& contents) {
  NamedObject made;
  const char* name = NameOfObject(contents);
  const ObjectIdText number = TextOfObjectId(contents);
  if (name) FormatInto(made.text, sizeof made.text, "%s (%s)", name, number);
  else FormatInto(made.text, sizeof made.text, "%s", number);
  return made;
}

}  // namespace qxview
