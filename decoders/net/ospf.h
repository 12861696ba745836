// What the parts of OSPF's decoder share.
#pragma once
#include "core/elements.h"

namespace qxview {

struct Ospf {
  Field version, type, length, options, count, id, size, kind, flags, opaque;
  int32_t nesting;   // of attributes in one another
};

inline constexpr ElementForm kOspfForm{.typeSize = 2, .lengthSize = 2, .padTo = 4, .valueLines = true};

// The body of an advertisement behind its header, by its type; of version 3 with the bits that say how it is flooded.
void ShowOspfAdvertisement(const Place& in, Cursor& c, Ospf& ospf);
void ShowOspf3Advertisement(const Place& in, Cursor& c, Ospf& ospf);
// Those that carry elements: by the opaque type, and of version 3 by the function code.
void ShowOspfOpaque(const Place& in, Cursor& c, Ospf& ospf);
void ShowOspfTraffic(const Place& in, Cursor& c, Ospf& ospf);
void ShowOspfRouterInformation(const Place& in, Cursor& c, Ospf& ospf);
void ShowOspfGrace(const Place& in, Cursor& c, Ospf& ospf);
void ShowOspfLinkAttributes(const Place& in, Cursor& c, Ospf& ospf);
// One of them, by its number in version 2.
void ShowOspfLinkAttribute(const Place& in, Cursor& c, uint32_t code, Ospf& ospf);
// The masks of the applications that attributes are for (RFC 9492).
void ShowOspfApplications(const Place& in, Cursor& c, Ospf& ospf);
void ShowOspf3Extended(const Place& in, Cursor& c, Ospf& ospf);

const char* OspfLsaName(uint32_t type);
const char* Ospf3LsaName(uint32_t type);
const char* OspfOpaqueName(uint32_t type);

// An address prefix of version 3: as many words as its length needs.
void ShowOspf3Prefix(const Place& in, Cursor& c, uint32_t bits, const char* label);

// The options of version 3, where they are 24 bits.
inline constexpr auto kOspf3OptionMasks = SortedNames({
    {0x000001, "V6"}, {0x000002, "External Routing"}, {0x000004, "Multicast"}, {0x000008, "NSSA"}, {0x000010, "Router"},
    {0x000020, "Demand Circuits"}, {0x000100, "Address Families"}, {0x000200, "Link-Local Signaling"},
    {0x000400, "Authentication Trailer"}});
inline constexpr auto kOspfOptionMasks = SortedNames({
    {0x01, "Multi-Topology"}, {0x02, "External Routing"}, {0x04, "Multicast"}, {0x08, "NSSA"}, {0x10, "Link-Local Signaling"},
    {0x20, "Demand Circuits"}, {0x40, "Opaque"}, {0x80, "DN"}});

}  // namespace qxview
