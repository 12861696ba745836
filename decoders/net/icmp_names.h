// Names of ICMP types and codes (IANA, ICMP Parameters).
#pragma once
#include <cstdint>

namespace qxview {

const char* IcmpTypeName(uint32_t type);                  // "Unassigned" for a type without one
const char* IcmpCodeName(uint32_t type, uint32_t code);   // null for a code without one

}  // namespace qxview
