// The information elements of IEEE 802.15.4, by their numbers. What is not known is left in the cursor.
#pragma once
#include "core/decoder.h"

namespace qxview {

void ShowWpanVendor(const Place& in, Cursor& c);
void ShowWpanHeaderElement(const Place& in, Cursor& c, uint32_t id);
void ShowWpanNestedElement(const Place& in, Cursor& c, uint32_t id, bool isLong);

}  // namespace qxview
