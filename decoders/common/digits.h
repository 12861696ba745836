// Octets that nothing explains, in one line however many they are: keys, tickets, signatures, what is encrypted.
#pragma once
#include "core/rows.h"

namespace qxview {

inline void ShowDigits(const Place& in, const Field& field, const char* label) {
  if (field.length > 0) AddLine(in, field, "%s: %s", label, HexDigits(field));
}

consteval RowData Digits(const char* label) { return Shown(0, label, ShowDigits); }

}  // namespace qxview
