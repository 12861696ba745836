#include "app/packet_ends.h"

#include <cstring>

#include "app/record_writer.h"
#include "host/packet_addresses.h"

namespace qxview {
namespace {

PacketEnd MakeEnd(const AddressSlot& slot, uint16_t port) {
  PacketEnd end{};
  std::memcpy(end.address, slot.address, sizeof end.address);
  end.kind = static_cast<uint16_t>(slot.kind);
  end.port = port;
  return end;
}

}  // namespace

PacketEnd SourceEnd(const PacketState& packet) { return MakeEnd(packet.source, packet.sourcePort); }
PacketEnd DestinationEnd(const PacketState& packet) { return MakeEnd(packet.destination, packet.destinationPort); }

std::string BytesOf(const PacketEnd& end) { return {reinterpret_cast<const char*>(&end), sizeof end}; }

PacketEnd EndOf(const std::string& bytes, size_t at) {
  PacketEnd end;
  std::memcpy(&end, bytes.data() + at, sizeof end);
  return end;
}

std::string AddressTextOf(const PacketEnd& end, const QxHost* host) {
  AddressSlot slot{};
  std::memcpy(slot.address, end.address, sizeof slot.address);
  slot.kind = end.kind;
  char text[kAddressTextSize];
  FormatEndAddress(slot, host, text);
  return ToUtf8(text);
}

std::string EndTextOf(const PacketEnd& end, const QxHost* host) {
  std::string made = AddressTextOf(end, host);
  if (end.kind == kIPv6Kind && made.find(':') != made.npos) made.insert(0, 1, '[').push_back(']');
  return made + ":" + std::to_string(end.port);
}

EndPair::EndPair(const PacketEnd& from, const PacketEnd& to) {
  const std::string one = BytesOf(from), other = BytesOf(to);
  swapped = other < one;
  bytes = swapped ? other + one : one + other;
}

}  // namespace qxview
