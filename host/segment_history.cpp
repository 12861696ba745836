#include "host/segment_history.h"

#include <cstring>
#include <new>
#include <utility>

namespace qxview {
namespace {

// What the containers take beside the payload, roughly: it bounds captures of very many tiny segments or connections.
constexpr size_t kSegmentOverhead = 64;
constexpr size_t kFlowOverhead = 1024;

bool SameAddress(const AddressSlot& a, const AddressSlot& b) {
  return a.kind == b.kind && std::memcmp(a.address, b.address, sizeof a.address) == 0;
}

uint64_t Mix(uint64_t hash, uint64_t word) {
  hash = (hash ^ word) * 0x9E3779B97F4A7C15u;
  return hash ^ hash >> 29;
}

uint64_t MixAddress(uint64_t hash, const AddressSlot& slot) {
  uint64_t words[2];
  std::memcpy(words, slot.address, sizeof words);
  return Mix(Mix(Mix(hash, words[0]), words[1]), slot.kind);
}

}  // namespace

bool SegmentHistory::Key::operator==(const Key& other) const {
  return sourcePort == other.sourcePort && destinationPort == other.destinationPort &&
         SameAddress(source, other.source) && SameAddress(destination, other.destination);
}

size_t SegmentHistory::KeyHash::operator()(const Key& key) const {
  const uint64_t ports = uint64_t{key.sourcePort} << 16 | key.destinationPort;
  return static_cast<size_t>(Mix(MixAddress(MixAddress(0, key.source), key.destination), ports));
}

void SegmentHistory::Charge(Flow& flow, const Segment& segment) {
  const size_t size = segment.payload.capacity() + kSegmentOverhead;
  flow.memory += size;
  memoryUsed_ += size;
}

void SegmentHistory::Release(Flow& flow, const Segment& segment) {
  const size_t size = segment.payload.capacity() + kSegmentOverhead;
  flow.memory -= size;
  memoryUsed_ -= size;
}

void SegmentHistory::ForgetLast() {
  const Flow& last = flows_.back();
  memoryUsed_ -= last.memory;
  index_.erase(last.key);
  flows_.pop_back();
}

SegmentHistory::Flow& SegmentHistory::FindOrAdd(const Key& key) {
  const auto found = index_.find(key);
  if (found != index_.end()) {
    flows_.splice(flows_.begin(), flows_, found->second);
    return flows_.front();
  }
  flows_.push_front(Flow{key, {}, kFlowOverhead});
  memoryUsed_ += kFlowOverhead;
  index_.emplace(key, flows_.begin());
  return flows_.front();
}

void SegmentHistory::Keep(Flow& flow, const TcpSegment& segment, int64_t packetNumber) {
  Segment kept{};
  if (flow.segments.size() >= kMostSegments) {   // the oldest one's memory serves the newest
    Release(flow, flow.segments.front());
    kept = std::move(flow.segments.front());
    flow.segments.pop_front();
  }
  // A large buffer is not kept for small segments.
  const size_t length = static_cast<size_t>(segment.length);
  if (kept.payload.capacity() > 4 * length) kept.payload = {};
  kept.payload.assign(segment.payload, segment.payload + length);
  kept.sequence = segment.sequence;
  kept.flags = segment.flags;
  kept.packetNumber = packetNumber;
  flow.segments.push_back(std::move(kept));
  Charge(flow, flow.segments.back());
}

void SegmentHistory::Record(const AddressSlot& source, uint16_t sourcePort, const AddressSlot& destination,
                            uint16_t destinationPort, const TcpSegment& segment, int64_t packetNumber) noexcept {
  if (!segment.here || !segment.payload || segment.length < 1) return;
  asked_ = nullptr;
  try {
    Keep(FindOrAdd({source, destination, sourcePort, destinationPort}), segment, packetNumber);
    while (memoryUsed_ > mostMemory_ && !flows_.empty()) ForgetLast();
  } catch (const std::bad_alloc&) {
    Clear();
  }
}

bool SegmentHistory::Find(const AddressSlot& source, uint16_t sourcePort, const AddressSlot& destination,
                          uint16_t destinationPort, int32_t back, QxSegment* out) noexcept {
  const Key key{source, destination, sourcePort, destinationPort};
  if (!asked_ || !(asked_->key == key)) {
    const auto found = index_.find(key);
    if (found == index_.end()) return false;
    asked_ = &*found->second;
  }
  if (back < 1 || static_cast<size_t>(back) > asked_->segments.size()) return false;
  const Segment& segment = asked_->segments[asked_->segments.size() - static_cast<size_t>(back)];
  out->payload = segment.payload.data();
  out->length = static_cast<int32_t>(segment.payload.size());
  out->sequence = segment.sequence;
  out->flags = segment.flags;
  out->packetNumber = segment.packetNumber;
  return true;
}

void SegmentHistory::Clear() noexcept {
  asked_ = nullptr;
  index_.clear();
  flows_.clear();
  memoryUsed_ = 0;
}

}  // namespace qxview
