// What the element decoders are made of: the lines in front of an element's contents.
#pragma once
#include "decoders/asn1/ber.h"

namespace qxview {

// An element whose type and length were shown.
struct AsnElement {
  Field contents;   // here and not empty: to be shown by the type's rule; otherwise all is said
  int32_t status;
};

// Whether the cursor stands on this identifier: 1, 0 for another one, 2 at the end of the span.
inline int32_t MeetIdentifier(const Cursor& c, uint32_t identifier) {
  if (Left(c) < 1) return kAsnTruncated;
  return PeekU8(c) == identifier ? kAsnDecoded : kAsnNotThisType;
}

// The type and length lines of the element at the cursor, which is not at its end; empty contents are shown as well.
AsnElement OpenElement(const Place& at, Cursor& c, const char* typeName, AsnResult& out);

}  // namespace qxview
