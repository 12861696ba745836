// The last data segments of each TCP connection and direction, for decoders whose messages span segments.
#pragma once
#include <cstdint>
#include <deque>
#include <list>
#include <unordered_map>
#include <vector>

#include "core/context.h"
#include "qxview/qxview_host.h"

namespace qxview {

class SegmentHistory {
 public:
  static constexpr size_t kMostSegments = 100;            // of one connection and direction
  static constexpr size_t kMostMemory = 10u << 20;        // bytes in all, bookkeeping included

  explicit SegmentHistory(size_t mostMemory = kMostMemory) : mostMemory_(mostMemory) {}

  // Keeps a copy of the segment's payload, after its frame was decoded. Segments without data are passed over;
  // retransmissions are kept as they came. Past the memory bound, the connections that were silent longest are
  // forgotten; when there is no memory at all, everything is.
  void Record(const AddressSlot& source, uint16_t sourcePort, const AddressSlot& destination,
              uint16_t destinationPort, const TcpSegment& segment, int64_t packetNumber) noexcept;

  // The segment `back` (from 1) before the next one from this source to this destination. Its bytes stay good until
  // the next Record.
  bool Find(const AddressSlot& source, uint16_t sourcePort, const AddressSlot& destination, uint16_t destinationPort,
            int32_t back, QxSegment* out) noexcept;

  void Clear() noexcept;
  size_t MemoryUsed() const { return memoryUsed_; }

 private:
  struct Key {
    AddressSlot source, destination;
    uint16_t sourcePort, destinationPort;
    bool operator==(const Key& other) const;
  };
  struct KeyHash {
    size_t operator()(const Key& key) const;
  };
  struct Segment {
    std::vector<uint8_t> payload;
    uint32_t sequence;
    uint32_t flags;
    int64_t packetNumber;
  };
  struct Flow {
    Key key;
    std::deque<Segment> segments;   // oldest first
    size_t memory;
  };
  using Flows = std::list<Flow>;    // the one that sent last comes first

  Flow& FindOrAdd(const Key& key);
  void Keep(Flow& flow, const TcpSegment& segment, int64_t packetNumber);
  void Charge(Flow& flow, const Segment& segment);
  void Release(Flow& flow, const Segment& segment);
  void ForgetLast();

  size_t mostMemory_;
  size_t memoryUsed_ = 0;
  Flows flows_;
  std::unordered_map<Key, Flows::iterator, KeyHash> index_;
  const Flow* asked_ = nullptr;     // the flow of the last Find: a decoder asks for one flow a hundred times
};

}  // namespace qxview
