// The source and destination columns of the packet list.
#pragma once
#include "core/context.h"
#include "qxview/qxview_host.h"

namespace qxview {

constexpr int32_t kAddressTextSize = 80;

struct PacketAddresses {
  char source[kAddressTextSize];
  char destination[kAddressTextSize];
};

// The addresses of the innermost datagram, or where there is none those of the medium; each by the name
// that the host has for it. Empty for media without addresses.
void FormatPacketAddresses(const PacketState& packet, const QxHost* host, PacketAddresses* out);

// One address by its name, or as it is written; of no kind: a hardware address in its first six bytes.
void FormatEndAddress(const AddressSlot& slot, const QxHost* host, char (&out)[kAddressTextSize]);

}  // namespace qxview
