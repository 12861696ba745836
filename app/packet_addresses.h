// The source and destination columns of the packet list.
#pragma once
#include "core/context.h"
#include "host/alias_table.h"

namespace qxview {

constexpr int32_t kAddressTextSize = 80;

struct PacketAddresses {
  char source[kAddressTextSize];
  char destination[kAddressTextSize];
};

// The addresses of the innermost datagram, or where there is none those of the medium; each by its name in the alias
// table when it has one there. Empty for media without addresses.
void FormatPacketAddresses(const PacketState& packet, const AliasTable& aliases, PacketAddresses* out);

}  // namespace qxview
