// Globally unique identifiers (RFC 4122), 16 bytes: "6BA7B810-9DAD-11D1-80B4-00C04FD430C8".
#pragma once
#include "core/cursor.h"

namespace qxview {

constexpr int32_t kGuidSize = 16;
using GuidText = ShortText<37>;

// How the first three numbers stand: high byte first as the RFC has them, or low byte first (MS-DTYP 2.3.4.2).
enum class GuidOrder { kBig, kLittle };
enum class GuidLetters { kUpper, kLower };

// Empty for a field that is not of this size.
GuidText TextOfGuid(const Field& guid, GuidOrder order, GuidLetters letters = GuidLetters::kUpper);

}  // namespace qxview
