// Address families (IANA) and prefixes of addresses as routing protocols carry them: as many octets as the length
// needs.
#pragma once
#include "core/decoder.h"

namespace qxview {

constexpr uint32_t kFamilyIPv4 = 1, kFamilyIPv6 = 2;
const char* AddressFamilyName(uint32_t family);

// A line "label: address/bits" over as many octets as the bits need; bytes for another family.
void ShowPrefix(const Place& in, Cursor& c, const char* label, uint32_t family, uint32_t bits);

// A line of an address of the family; of what is left for another family.
void ShowFamilyAddress(const Place& in, Cursor& c, const char* label, uint32_t family);

}  // namespace qxview
