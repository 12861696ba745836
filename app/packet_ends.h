// The ends of what packets are part of: addresses with their ports, as keys of counts and as text.
#pragma once
#include <cstdint>
#include <string>

#include "core/context.h"
#include "qxview/qxview_host.h"

namespace qxview {

struct PacketEnd {
  uint8_t address[16];
  uint16_t kind;   // of the address: AddressSlot's; 0 is a hardware address
  uint16_t port;
};
static_assert(sizeof(PacketEnd) == 20);   // its bytes are keys: there is nothing between them

// Of the innermost datagram.
PacketEnd SourceEnd(const PacketState& packet);
PacketEnd DestinationEnd(const PacketState& packet);

std::string BytesOf(const PacketEnd& end);
PacketEnd EndOf(const std::string& bytes, size_t at = 0);

// The address by its name, or as it is written, in UTF-8; behind it the port: "example:80", "[2001:db8::1]:80".
std::string AddressTextOf(const PacketEnd& end, const QxHost* host);
std::string EndTextOf(const PacketEnd& end, const QxHost* host);

// Two ends in an order of their own: the same bytes for both directions.
struct EndPair {
  EndPair(const PacketEnd& from, const PacketEnd& to);
  static PacketEnd First(const std::string& bytes) { return EndOf(bytes); }
  static PacketEnd Second(const std::string& bytes) { return EndOf(bytes, sizeof(PacketEnd)); }

  std::string bytes;
  bool swapped;   // `from` stands second
};

}  // namespace qxview
