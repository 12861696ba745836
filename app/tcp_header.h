// What statistics and streams read of a TCP header that the packet state does not keep (RFC 9293, 3.1).
#pragma once
#include <cstdint>

#include "core/context.h"

namespace qxview {

struct TcpHeader {
  uint32_t sequence = 0, acknowledgement = 0, window = 0, flags = 0;
};
enum TcpFlags : uint32_t { kTcpFin = 1, kTcpSyn = 2, kTcpReset = 4, kTcpAck = 16 };

// The header of the packet's innermost segment; false where it carries none, or not all of it.
inline bool ReadTcpHeader(const PacketState& packet, TcpHeader* out) {
  constexpr uint32_t kTcp = 6;
  constexpr int32_t kLeast = 16;
  const ReachedLayer& carried = packet.carrier;
  if (!packet.segment.here || carried.table != DispatchTable::kIpProtocol || carried.key != kTcp || carried.length < kLeast) {
    return false;
  }
  const uint8_t* b = carried.bytes;
  const auto word = [b](int32_t at) {
    return uint32_t{b[at]} << 24 | uint32_t{b[at + 1]} << 16 | uint32_t{b[at + 2]} << 8 | b[at + 3];
  };
  *out = {word(4), word(8), uint32_t{b[14]} << 8 | b[15], b[13]};
  return true;
}

// Whether a sequence number stands behind another one, both within half of the space.
inline int32_t SequenceDistance(uint32_t from, uint32_t to) { return static_cast<int32_t>(to - from); }

}  // namespace qxview
