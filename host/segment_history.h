// The last data segments of each TCP connection and direction, for decoders whose messages span segments.
#pragma once
#include "core/budgets.h"
#include "core/context.h"
#include "host/state.h"
#include "qxview/qxview_host.h"

namespace qxview {

class SegmentHistory {
 public:
  explicit SegmentHistory(uint32_t mostMemory = kMostHistoryMemory);

  // Keeps a copy of the segment's payload, or of so many of its bytes as are wanted, after its frame was decoded. Segments
  // without data are passed over; retransmissions are kept as they came. Past the memory bound, towards which all bytes of a
  // segment count, the connections that were silent longest are forgotten.
  void Record(const AddressSlot& source, uint16_t sourcePort, const AddressSlot& destination,
              uint16_t destinationPort, const TcpSegment& segment, int64_t packetNumber) noexcept;

  // The segment `back` (from 1) before the next one from this source to this destination. Its bytes stay good until
  // the next Record.
  bool Find(const AddressSlot& source, uint16_t sourcePort, const AddressSlot& destination, uint16_t destinationPort,
            int32_t back, QxSegment* out) noexcept;

  void Clear() noexcept { state_.table.Clear(); }
  size_t MemoryUsed() const { return state_.table.BytesHeld(); }

 private:
  HostState state_;
};

}  // namespace qxview
