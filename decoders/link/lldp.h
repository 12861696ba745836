// What the parts of LLDP's decoder share.
#pragma once
#include "core/elements.h"

namespace qxview {

struct Lldp {
  Field subtype, size, kind, count;
};

// What an organization's element holds, by its code and subtype.
constexpr uint32_t LldpCode(uint32_t oui, uint32_t subtype) { return oui << 8 | subtype; }
const Choice<Lldp>* FindLldpOrganization(uint32_t code);
const char* LldpOrganizationName(uint32_t oui);

// How stations and ports are named; an identifier is an address where its subtype says so, otherwise a text or octets.
inline constexpr auto kLldpChassisNames = SortedNames({
    {0, "Reserved"}, {1, "Chassis Component"}, {2, "Interface Alias"}, {3, "Port Component"}, {4, "MAC Address"},
    {5, "Network Address"}, {6, "Interface Name"}, {7, "Locally Assigned"}});
inline constexpr auto kLldpPortNames = SortedNames({
    {0, "Reserved"}, {1, "Interface Alias"}, {2, "Port Component"}, {3, "MAC Address"}, {4, "Network Address"},
    {5, "Interface Name"}, {6, "Agent Circuit ID"}, {7, "Locally Assigned"}});
void ShowLldpIdentifier(const Place& in, const Field& id, bool isMac, const char* label);

// A text of several lines gets one for each.
void ShowTextLines(const Place& in, Cursor& c, const char* label);

// An address behind its family (IANA's address family numbers), to the end.
void ShowLldpAddress(const Place& in, Cursor& c, const char* label);
const char* LldpFamilyName(uint32_t family);

// The organizations of files of their own.
const Choice<Lldp>* FindLldpExchange(uint32_t code);   // of data centre bridging

}  // namespace qxview
