// Object identifiers as the basic encoding rules hold them (ITU-T X.690 8.19): numbers of seven bits an octet, the
// first two in one.
#pragma once
#include "core/cursor.h"

namespace qxview {

using ObjectIdText = ShortText<256>;

// The next number; false at the end, and for one that is cut there.
bool TakeObjectIdNumber(Cursor& c, uint32_t* number);
// "1.2.840.113554.1.2.2" of an element's contents, ending in "..." where there is no room for all.
ObjectIdText TextOfObjectId(Cursor contents);

}  // namespace qxview
