// What the summaries of SNMP and LDAP read of the basic encoding rules (ITU-T X.690): identifiers of one octet, definite
// lengths, the header of one element at a time.
#pragma once
#include "core/cursor.h"

namespace qxview {

enum BerTag : uint32_t { kBerInteger = 2, kBerOctets = 4, kBerObject = 6, kBerEnumerated = 10, kBerSequence = 0x30 };

struct BerElement {
  uint32_t tag;
  Cursor body;     // cut to what is there
  bool here;
};

// The next element; the cursor stands behind it. Not here when its header is cut or its length has no definite form.
inline BerElement TakeBer(Cursor& c) {
  const Field tag = TakeU8(c);
  const Field first = TakeU8(c);
  uint32_t length = first.value;
  bool good = first.here;
  if (length > 0x80 && length <= 0x84) {
    const uint32_t octets = length - 0x80;
    length = 0;
    for (uint32_t i = 0; i < octets; ++i) length = length << 8 | TakeU8(c).value;
    good = !c.ranShort;
  } else if (length >= 0x80) {
    good = false;
  }
  return {tag.value, TakeCursor(c, good ? static_cast<int64_t>(length) : 0), good};
}

// The value of an INTEGER or ENUMERATED of up to four octets.
inline int32_t BerNumber(const BerElement& element) {
  Cursor c = element.body;
  uint32_t value = Left(c) > 0 && c.at[0] & 0x80 ? 0xFFFFFFFF : 0;
  for (int32_t i = 0; i < 4 && Left(c) > 0; ++i) value = value << 8 | TakeU8(c).value;
  return static_cast<int32_t>(value);
}

inline TextSlice BerText(const BerElement& element) {
  return {reinterpret_cast<const char*>(element.body.at), Left(element.body)};
}

}  // namespace qxview
