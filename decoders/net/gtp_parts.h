// What the files of GTP's information elements share.
#pragma once
#include "core/elements.h"
#include "decoders/net/gtp.h"

namespace qxview {

struct GtpElement {
  Field type, length, kind, count;
};

// An address of 4 or 16 bytes, and labels of a length and so many characters; both to the end of the cursor.
void ShowGtpAddress(const Place& in, Cursor& c, GtpElement& element);
void ShowGtpName(const Place& in, Cursor& c, GtpElement& element);

// The elements of mobility, broadcast and later releases; null for another number.
const Choice<GtpElement>* FindGtpContext(uint32_t type);

}  // namespace qxview
