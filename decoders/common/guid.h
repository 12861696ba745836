// Globally unique identifiers (RFC 4122), 16 bytes: "6BA7B810-9DAD-11D1-80B4-00C04FD430C8".
#pragma once
#include "core/rows.h"

namespace qxview {

constexpr int32_t kGuidSize = 16;
using GuidText = ShortText<37>;

// How the first three numbers stand: high byte first as the RFC has them, or low byte first (MS-DTYP 2.3.4.2).
enum class GuidOrder { kBig, kLittle };
enum class GuidLetters { kUpper, kLower };

// Empty for a field that is not of this size.
GuidText TextOfGuid(const Field& guid, GuidOrder order, GuidLetters letters = GuidLetters::kUpper);

// The row of one with its low bytes first: "Label: {6BA7B810-9DAD-11D1-80B4-00C04FD430C8}".
void ShowLittleGuid(const Place& in, const Field& guid, const char* label);
consteval RowData LittleGuid(const char* label) { return Shown(kGuidSize, label, ShowLittleGuid); }

}  // namespace qxview
