#include "app/stream_order.h"

#include <algorithm>
#include <cstddef>

namespace qxview {

void SegmentOrder::Take(uint32_t sequence, const uint8_t* bytes, size_t length, size_t cut, uint64_t packet) {
  if (!started_) Start(sequence);
  isTakenUp_ = true;
  waiting_.push_back({sequence, std::string(reinterpret_cast<const char*>(bytes), length), cut, packet});
  held_ += length + cut;
  Release();
  constexpr size_t kMostSegments = 256, kMostHeld = 4 << 20;
  while (waiting_.size() > kMostSegments || held_ > kMostHeld) SkipGap();
}

void SegmentOrder::Acknowledge(uint32_t sequence) {
  isTakenUp_ |= started_ && sequence == next_;
  while (!waiting_.empty() && SequenceDistance(next_, sequence) > 0) SkipGap();
}

void SegmentOrder::Finish() {
  while (!waiting_.empty()) SkipGap();
}

// Writes what follows on what was written.
void SegmentOrder::Release() {
  for (bool found = true; found;) {
    found = false;
    for (size_t i = 0; i < waiting_.size(); ++i) {
      const Segment& segment = waiting_[i];
      const int32_t ahead = SequenceDistance(next_, segment.sequence);
      if (ahead > 0) continue;
      const Segment taken = std::move(waiting_[i]);
      waiting_.erase(waiting_.begin() + static_cast<ptrdiff_t>(i));
      held_ -= taken.bytes.size() + taken.cut;
      const size_t known = static_cast<size_t>(-static_cast<int64_t>(ahead));
      const size_t all = taken.bytes.size() + taken.cut;
      if (known < taken.bytes.size()) {
        target_.Put(isSecond_, taken.packet, reinterpret_cast<const uint8_t*>(taken.bytes.data()) + known,
                    taken.bytes.size() - known);
      }
      if (taken.cut && known < all) target_.PutGap(isSecond_, taken.packet, all - std::max(known, taken.bytes.size()));
      if (known < all) next_ += static_cast<uint32_t>(all - known);
      found = true;
      break;
    }
  }
}

// Gives up the bytes in front of the segment that comes first.
void SegmentOrder::SkipGap() {
  const Segment* first = &waiting_.front();
  for (const Segment& segment : waiting_) {
    if (SequenceDistance(segment.sequence, first->sequence) > 0) first = &segment;
  }
  const int32_t gap = SequenceDistance(next_, first->sequence);
  if (gap > 0) target_.PutGap(isSecond_, first->packet, static_cast<uint64_t>(gap));
  next_ = first->sequence;
  Release();
}

uint64_t Streams::NumberOf(const PacketState& packet, const TcpHeader* tcp) {
  constexpr size_t kMost = 2000000;
  const auto [at, isNew] = streams_.try_emplace(EndPair(SourceEnd(packet), DestinationEnd(packet)).bytes);
  if (isNew && streams_.size() > kMost) return streams_.erase(at), UINT64_MAX;
  Stream& stream = at->second;
  const bool isSyn = tcp && (tcp->flags & (kTcpSyn | kTcpAck)) == kTcpSyn;
  if (isNew || (isSyn && stream.hasStart && stream.start != tcp->sequence)) stream.number = count_++;
  if (isSyn) {
    stream.hasStart = true;
    stream.start = tcp->sequence;
  }
  return stream.number;
}

bool IsUdpPacket(const PacketState& packet) {
  constexpr uint32_t kUdp = 17;
  return packet.carrier.table == DispatchTable::kIpProtocol && packet.carrier.key == kUdp;
}

bool StreamSides::Of(const PacketState& packet, const QxHost* host) {
  const std::string from = BytesOf(SourceEnd(packet));
  if (first_.empty()) first_ = from;
  const bool isSecond = from != first_;
  target_.Name(isSecond, EndTextOf(SourceEnd(packet), host));
  target_.Name(!isSecond, EndTextOf(DestinationEnd(packet), host));
  return isSecond;
}

void FollowedRecords::Note(const OpenedRecord& record) {
  constexpr size_t kMostNoted = 4096;
  if (noted_.size() >= kMostNoted) return;
  noted_.push_back({record.how, record.isData, record.keys, record.sequence, {}, static_cast<uint64_t>(record.length), 0});
  if (record.how == OpenedRecord::kOpened && record.isData && record.length > 0) {
    noted_.back().bytes.assign(reinterpret_cast<const char*>(record.bytes), static_cast<size_t>(record.length));
  }
}

void FollowedRecords::Take(const PacketState& packet, uint64_t number, const QxHost* host) {
  const bool isSecond = sides_.Of(packet, host);
  for (Record& record : noted_) {
    record.packet = number;
    TakeOne(isSecond, std::move(record));
  }
  noted_.clear();
}

// Records that were not opened have no number: they follow on what was there.
void FollowedRecords::TakeOne(bool isSecond, Record record) {
  Way& way = ways_[isSecond];
  if (record.how != OpenedRecord::kOpened) {
    ++(record.how == OpenedRecord::kFailed ? failed_ : withoutSecrets_);
    Release(isSecond, true);
    ++way.next;
    return;
  }
  ++opened_;
  if (!way.started || way.keys != record.keys) {
    Release(isSecond, true);
    way.started = true;
    way.keys = record.keys;
    way.next = 0;
  }
  if (record.sequence < way.next) return;   // it was there before
  const uint64_t sequence = record.sequence;
  const size_t length = record.bytes.size();
  if (way.waiting.try_emplace(sequence, std::move(record)).second) way.held += length;
  Release(isSecond, false);
  constexpr size_t kMostRecords = 256, kMostHeld = 4 << 20;
  if (way.waiting.size() > kMostRecords || way.held > kMostHeld) Release(isSecond, true);
}

// What follows on what was put; `all`: also what stands behind records that did not come.
void FollowedRecords::Release(bool isSecond, bool all) {
  Way& way = ways_[isSecond];
  while (!way.waiting.empty() && (all || way.waiting.begin()->first == way.next)) {
    const auto first = way.waiting.begin();
    const Record& record = first->second;
    if (!record.bytes.empty()) {
      target_.Put(isSecond, record.packet, reinterpret_cast<const uint8_t*>(record.bytes.data()), record.bytes.size());
    }
    way.held -= record.bytes.size();
    way.next = first->first + 1;
    way.waiting.erase(first);
  }
}

void FollowedRecords::Finish() {
  for (const bool isSecond : {false, true}) Release(isSecond, true);
}

void FollowedStream::TakeAsItComes(const PacketState& packet, bool isTcp, uint64_t number, const QxHost* host) {
  const bool isSecond = sides_.Of(packet, host);
  constexpr int32_t kUdpHeader = 8;
  const uint8_t* bytes = packet.segment.payload;
  int32_t length = packet.segment.length;
  if (!isTcp) {
    bytes = packet.carrier.bytes + kUdpHeader;
    length = packet.carrier.length - kUdpHeader;
    const int32_t told = length >= 0 ? bytes[-4] << 8 | bytes[-3] : 0;   // behind it may be trailers; 0: it is a jumbogram's
    if (told) length = std::min(length, told - kUdpHeader);
  }
  if (length > 0) target_.Put(isSecond, number, bytes, static_cast<size_t>(length));
}

void FollowedStream::Take(const PacketState& packet, const TcpHeader* tcp, uint64_t number, const QxHost* host) {
  if (!tcp) return TakeAsItComes(packet, false, number, host);
  const bool isSecond = sides_.Of(packet, host);
  SegmentOrder& way = ways_[isSecond];
  if (tcp->flags & kTcpSyn) way.Start(tcp->sequence + 1);
  if (tcp->flags & kTcpAck) ways_[!isSecond].Acknowledge(tcp->acknowledgement);
  const TcpSegment& segment = packet.segment;
  if (segment.length + segment.cut > 0) {
    const uint32_t first = tcp->sequence + (tcp->flags & kTcpSyn ? 1 : 0);   // the SYN takes a number of its own
    way.Take(first, segment.payload, static_cast<size_t>(segment.length), static_cast<size_t>(segment.cut), number);
  }
}

void FollowedStream::Finish() {
  for (SegmentOrder& way : ways_) way.Finish();
}

}  // namespace qxview
