// What the parts of PIM's decoder share.
#pragma once
#include "core/elements.h"

namespace qxview {

struct Pim {
  Field type, kind, count, size, groups, joins, prunes;
};

// Addresses as PIM encodes them (RFC 7761 4.9.1): a family and an encoding in front, of groups and sources with flags and a
// mask length, of sources with attributes (RFC 5384) where the encoding says so.
void ShowPimUnicast(const Place& in, Cursor& c, const char* label);
void ShowPimGroup(const Place& in, Cursor& c, const char* label);
void ShowPimSource(const Place& in, Cursor& c, const char* label);

// Version 1, which IGMP carries (type 0x14), from the octet behind IGMP's checksum on.
void ShowPim1(const Place& in, Cursor& c, uint32_t code);
const char* Pim1Name(uint32_t code);

}  // namespace qxview
