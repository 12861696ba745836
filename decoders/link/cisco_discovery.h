// What the discovery protocols of the CDP family share: a head of version, hold time and checksum, and elements of type and
// length, which counts them.
#pragma once
#include "core/elements.h"

namespace qxview {

struct Discovery {
  Field version, kind, size, count, organization, protocol;
};

inline constexpr ElementForm kDiscoveryForm{.typeSize = 2, .lengthSize = 2, .lengthCountsHeader = true};

// A number of addresses (4), each with its protocol and length.
void ShowDiscoveryAddresses(const Place& in, Cursor& c, Discovery& out);
// The whole message under a top line of this title.
int32_t ShowDiscovery(const Place& at, Cursor c, const char* title, ChoiceSpan<Discovery> elements);

}  // namespace qxview
