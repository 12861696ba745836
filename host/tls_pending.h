// What the TLS records of each connection and direction left for the next ones, for the packet list's summaries.
#pragma once
#include <cstdint>
#include <cstring>
#include <unordered_map>

#include "core/context.h"
#include "core/tls_stream.h"

namespace qxview {

class TlsPending {
 public:
  // That of the current packet's connection and direction; nothing for a new one. Good until the next call.
  TlsStream* Find(const PacketState& packet) {
    if (streams_.size() >= kMostConnections) streams_.clear();
    return &streams_[Key{packet.source, packet.destination, packet.sourcePort, packet.destinationPort}];
  }

 private:
  static constexpr size_t kMostConnections = 65536;

  struct Key {
    AddressSlot source, destination;
    uint16_t sourcePort, destinationPort;
    bool operator==(const Key& other) const {
      return sourcePort == other.sourcePort && destinationPort == other.destinationPort &&
             std::memcmp(&source, &other.source, sizeof source) == 0 &&
             std::memcmp(&destination, &other.destination, sizeof destination) == 0;
    }
  };
  struct Hash {
    size_t operator()(const Key& key) const {
      uint64_t parts[5];
      std::memcpy(parts, key.source.address, 16);
      std::memcpy(parts + 2, key.destination.address, 16);
      parts[4] = static_cast<uint64_t>(key.sourcePort) << 16 | key.destinationPort;
      uint64_t mixed = 0;
      for (uint64_t part : parts) mixed = (mixed ^ part) * 0x9E3779B97F4A7C15u + (mixed >> 29);
      return static_cast<size_t>(mixed ^ mixed >> 32);
    }
  };
  std::unordered_map<Key, TlsStream, Hash> streams_;
};

}  // namespace qxview
