// Bibliographic records for exchange (ISO 2709, MARC 21).
#pragma once
#include "core/decoder.h"

namespace qxview {

// Whether the bytes are a record, by the lengths that its leader has and the octet that ends it.
bool IsMarcRecord(const Cursor& c);
void ShowMarcRecord(const Place& at, Cursor c);

}  // namespace qxview
