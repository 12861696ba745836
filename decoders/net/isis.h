// What the parts of the decoder of IS-IS share, and addresses as OSI protocols write them.
#pragma once
#include "core/elements.h"
#include "core/formatter.h"

namespace qxview {

struct Isis {
  Field type, idLength, headerLength, length, size, count, flags, kind, control, topology;
};

inline constexpr ElementForm kIsisForm{};   // an octet of type and one of length, of elements and those in them alike

// An identifier of a system: "0000.0000.0001", with what stands behind it, "0000.0000.0001.02-00"; a network address
// likewise, its first octet alone.
using OsiText = ShortText<96>;
OsiText SystemIdText(const Field& id);
OsiText OsiAddressText(const Field& address);

void ShowIsisElements(const Place& in, Cursor& c, Isis& isis);
// The elements within those of links, prefixes and capabilities of a router.
void ShowIsisLinkElements(const Place& in, Cursor& c, Isis& isis);
void ShowIsisPrefixElements(const Place& in, Cursor& c, Isis& isis);
void ShowIsisCapabilities(const Place& in, Cursor& c, Isis& isis);

}  // namespace qxview
