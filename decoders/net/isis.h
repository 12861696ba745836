// What the parts of the decoder of IS-IS share, and addresses as OSI protocols write them.
#pragma once
#include "core/elements.h"
#include "core/formatter.h"

namespace qxview {

struct Isis {
  Field type, idLength, headerLength, length, size, count, flags, kind, control, topology;
  int32_t nesting;   // of elements in one another
};

// An octet of type and one of length, of elements and those in them alike.
inline constexpr ElementForm kIsisForm{.valueLines = true};

// An identifier of a system: "0000.0000.0001", with what stands behind it, "0000.0000.0001.02-00"; a network address
// likewise, its first octet alone.
using OsiText = ShortText<96>;
OsiText SystemIdText(const Field& id);
OsiText OsiAddressText(const Field& address);

// How far PDUs of a scope are flooded (RFC 7356).
inline constexpr auto kIsisScopeNames = SortedNames({
    {1, "Level 1 Circuit"}, {2, "Level 2 Circuit"}, {3, "Level 1"}, {4, "Level 2"}, {5, "Domain"},
    {64, "Level 1 Circuit, Extended"},
    {65, "Level 2 Circuit, Extended"}, {66, "Level 1, Extended"}, {67, "Level 2, Extended"}, {68, "Domain, Extended"}});

void ShowIsisElements(const Place& in, Cursor& c, Isis& isis);
// The elements within those of links, prefixes and capabilities of a router.
void ShowIsisLinkElements(const Place& in, Cursor& c, Isis& isis);
void ShowIsisPrefixElements(const Place& in, Cursor& c, Isis& isis);
void ShowIsisCapabilities(const Place& in, Cursor& c, Isis& isis);
void ShowIsisSidElements(const Place& in, Cursor& c, Isis& isis);
// Masks of the applications that attributes of a link are for (RFC 9479).
void ShowIsisApplications(const Place& in, Cursor& c, Isis& isis);

// What bridges tell one another: their ports, trees and services, groups, neighbors, addresses behind them, abilities.
void ShowIsisPort(const Place& in, Cursor& c, Isis& isis);
void ShowIsisBridge(const Place& in, Cursor& c, Isis& isis);
void ShowIsisGroups(const Place& in, Cursor& c, Isis& isis);
void ShowIsisMacs(const Place& in, Cursor& c, Isis& isis);
void ShowIsisBridgeNeighbors(const Place& in, Cursor& c, Isis& isis);
void ShowIsisBridgeCapability(const Place& in, Cursor& c, uint32_t type, Isis& isis);

}  // namespace qxview
