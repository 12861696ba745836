#include "app/tcp_connections.h"

#include <cstring>

#include "app/time_sums.h"

namespace qxview {
namespace {

using Connection = TcpConnections::Connection;
using Direction = TcpConnections::Direction;
using Gap = TcpConnections::Gap;
constexpr size_t kMostGaps = TcpConnections::kMostGaps;

// What keeps a connection alive: the last byte once more, or none in its place. It is no data sent again, and what answers it no
// acknowledgement once more.
bool IsProbe(const TcpHeader& header, const Direction& way, uint32_t length) {
  constexpr uint32_t kMost = 1;
  return !(header.flags & (kTcpSyn | kTcpFin | kTcpReset)) && length <= kMost && way.started &&
         SequenceDistance(header.sequence, way.next) == 1;
}

// A segment with data: whether it fills a gap, was there before, or leaves a gap in front of it.
void TakeData(Connection* connection, Direction* way, uint32_t sequence, uint32_t length) {
  const uint32_t end = sequence + length;
  if (!way->started) {
    way->started = true;
    way->next = end;
    return;
  }
  const int32_t ahead = SequenceDistance(way->next, sequence);
  if (ahead > 0) {
    ++connection->trouble.missing;
    if (way->gapCount == kMostGaps) std::memmove(way->gaps, way->gaps + 1, sizeof(Gap) * --way->gapCount);
    way->gaps[way->gapCount++] = {way->next, sequence};
  } else if (ahead < 0) {
    for (uint32_t i = 0; i < way->gapCount; ++i) {
      Gap& gap = way->gaps[i];
      if (SequenceDistance(gap.first, sequence) < 0 || SequenceDistance(gap.end, sequence) >= 0) continue;
      ++connection->trouble.outOfOrder;
      if (sequence == gap.first) gap.first = end; else gap.end = sequence;
      if (SequenceDistance(gap.first, gap.end) <= 0) gap = way->gaps[--way->gapCount];
      return;
    }
    if (!way->probed) ++connection->trouble.again;
  }
  if (SequenceDistance(way->next, end) > 0) way->next = end;
}

// Whether a SYN starts its direction: not when the other end went on with an earlier one, and this is no connection anew.
bool StartsWay(const TcpHeader& header, const Direction& way, const Direction& back) {
  return !(header.flags & kTcpAck) || !way.hasStart || way.start == header.sequence || !back.hasAcknowledged ||
         SequenceDistance(way.start, back.acknowledged) <= 0;
}

void Count(Connection* c, Direction* way, Direction* back, const TcpHeader& header, const TcpSegment& segment,
           const StatPacket& p) {
  const uint32_t length = static_cast<uint32_t>(segment.length + segment.cut);
  const bool isSyn = header.flags & kTcpSyn, isAck = header.flags & kTcpAck;
  ++c->packets;
  c->bytes += length;
  if (isSyn && !isAck) {
    c->synAt = p.nanoseconds;
    if (c->firstSyn == 0) c->firstSyn = p.number;
  }
  if (isSyn && isAck && c->firstSyn) c->isAnswered = true;
  if (!isSyn && isAck && c->isAnswered && c->handshake == INT64_MIN) c->handshake = TimeBetween(c->synAt, p.nanoseconds);
  if (header.flags & kTcpReset) ++c->trouble.resets;
  const bool isPlain = !(header.flags & (kTcpSyn | kTcpFin | kTcpReset));
  if (header.window == 0 && isPlain) ++c->trouble.zeroWindows;
  if (isAck && isPlain && length == 0) {
    if (!back->probed && way->hasAcknowledged && way->acknowledged == header.acknowledgement && way->window == header.window &&
        header.window != 0 && way->started && header.sequence == way->next) {
      ++c->trouble.duplicates;
    }
  }
  if (isAck) {
    way->hasAcknowledged = true;
    way->acknowledged = header.acknowledgement;
    way->window = header.window;
  }
  way->probed = IsProbe(header, *way, length);
  const uint32_t taken = length + (isSyn ? 1 : 0) + (header.flags & kTcpFin ? 1 : 0);
  if (isSyn) {   // a connection starts, or its first segment comes again
    if (!StartsWay(header, *way, *back)) return;
    if (way->hasStart && way->start == header.sequence) {
      ++c->trouble.again;
      return;
    }
    if (!isAck && way->hasStart) *back = Direction{};
    way->started = way->hasStart = true;
    way->start = header.sequence;
    way->next = header.sequence + taken;
    way->gapCount = 0;
  } else if (taken > 0) {
    TakeData(c, way, header.sequence, taken);
  } else if (!way->started) {
    way->started = true;
    way->next = header.sequence;
  }
}

}  // namespace

TcpConnections::Connection& TcpConnections::Connection::operator+=(const Connection& other) {
  packets += other.packets;
  bytes += other.bytes;
  return *this;
}

TcpTrouble TcpConnections::Take(const StatPacket& p) {
  TcpHeader header;
  const PacketState& packet = p.packet;
  if (packet.quoted || !ReadTcpHeader(packet, &header)) return {};
  const EndPair pair(SourceEnd(packet), DestinationEnd(packet));
  bool isNew = false;
  Connection& c = connections_.Of(pair.bytes, [](const Connection& x) { return x.packets; }, &isNew);
  if (isNew) c.firstIsSecond = pair.swapped;
  const TcpTrouble before = c.trouble;
  Count(&c, &c.of[pair.swapped], &c.of[!pair.swapped], header, packet.segment, p);
  const TcpTrouble& now = c.trouble;
  return {now.again - before.again, now.outOfOrder - before.outOfOrder, now.missing - before.missing,
          now.duplicates - before.duplicates, now.zeroWindows - before.zeroWindows, now.resets - before.resets};
}

}  // namespace qxview
