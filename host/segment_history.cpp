#include "host/segment_history.h"

namespace qxview {
namespace {

struct KeptSegment {
  int64_t packetNumber;
  uint32_t sequence, flags;
};

constexpr uint32_t kMostConnections = 65536;   // more than the memory has room for

HashKey KeyOf(const AddressSlot& source, uint16_t sourcePort, const AddressSlot& destination,
              uint16_t destinationPort) {
  return MakeHashKey(HashKeyForm::kEndPair, {source, sourcePort}, {destination, destinationPort}, 0);
}

}  // namespace

SegmentHistory::SegmentHistory(uint32_t mostMemory)
    : state_({"TCP segments", sizeof(HashKey), sizeof(KeptSegment),
              {.mostKeys = kMostConnections, .depth = kMostHistorySegments, .mostBytes = mostMemory}}) {}

void SegmentHistory::Record(const AddressSlot& source, uint16_t sourcePort, const AddressSlot& destination,
                            uint16_t destinationPort, const TcpSegment& segment, int64_t packetNumber) noexcept {
  if (!segment.here || !segment.payload || segment.length < 1) return;
  const HashKey key = KeyOf(source, sourcePort, destination, destinationPort);
  const KeptSegment kept{packetNumber, segment.sequence, segment.flags};
  const bool isPart = segment.wanted > 0 && segment.wanted < segment.length;
  state_.table.Remember(&key, &kept, {segment.payload, static_cast<uint32_t>(isPart ? segment.wanted : segment.length)},
                        static_cast<uint32_t>(segment.length));
}

bool SegmentHistory::Find(const AddressSlot& source, uint16_t sourcePort, const AddressSlot& destination,
                          uint16_t destinationPort, int32_t back, QxSegment* out) noexcept {
  const HashKey key = KeyOf(source, sourcePort, destination, destinationPort);
  StateBytes payload{};
  const auto* kept = static_cast<const KeptSegment*>(state_.table.Recall(&key, back, &payload));
  if (!kept) return false;
  out->payload = payload.data;
  out->length = static_cast<int32_t>(payload.length);
  out->sequence = kept->sequence;
  out->flags = kept->flags;
  out->packetNumber = kept->packetNumber;
  return true;
}

}  // namespace qxview
