// Security identifiers (MS-DTYP 2.4.2): "S-1-5-21-1004336348-1177238915-682003330-512".
//
//   revision (1)   count (1)   authority (6, high byte first)   sub-authorities (4 each, low byte first)
#pragma once
#include "core/cursor.h"

namespace qxview {

using SidText = ShortText<192>;

// The bytes of the identifier at the cursor; 0 for none: it is cut, or counts more sub-authorities than there can be.
int32_t SidSize(const Cursor& c);
SidText TextOfSid(const Field& sid);   // of one that SidSize measured

}  // namespace qxview
