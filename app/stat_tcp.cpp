// Connections with what went wrong in them: segments sent again, out of order or missing, windows of zero, resets; and how long
// the handshake took.
#include <cstring>

#include "app/bounded_counts.h"
#include "app/packet_ends.h"
#include "app/statistics.h"
#include "app/tcp_header.h"

namespace qxview {
namespace {

constexpr size_t kMostConnections = 100000;
constexpr size_t kMostGaps = 8;   // of a direction that are remembered

struct Gap {
  uint32_t first, end;
};

struct Direction {
  bool started = false;
  uint32_t next = 0;               // the sequence number behind all that was seen
  Gap gaps[kMostGaps];
  uint32_t gapCount = 0;
  uint32_t acknowledged = 0, window = 0;
  bool hasAcknowledged = false;
};

struct Connection {
  uint64_t packets = 0, bytes = 0;
  uint64_t again = 0, outOfOrder = 0, missing = 0, duplicates = 0, zeroWindows = 0, resets = 0;
  int64_t synAt = -1, answeredAt = -1, handshake = -1;
  bool firstIsSecond = false;
  Direction of[2];   // from the first end of the key, from the second

  Connection& operator+=(const Connection& other) {
    packets += other.packets;
    bytes += other.bytes;
    again += other.again;
    outOfOrder += other.outOfOrder;
    missing += other.missing;
    return *this;
  }
};

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
    ++connection->missing;
    if (way->gapCount == kMostGaps) std::memmove(way->gaps, way->gaps + 1, sizeof(Gap) * --way->gapCount);
    way->gaps[way->gapCount++] = {way->next, sequence};
  } else if (ahead < 0) {
    constexpr uint32_t kProbe = 1;   // a byte that keeps the connection alive is no data sent again
    for (uint32_t i = 0; i < way->gapCount; ++i) {
      Gap& gap = way->gaps[i];
      if (SequenceDistance(gap.first, sequence) < 0 || SequenceDistance(gap.end, sequence) >= 0) continue;
      ++connection->outOfOrder;
      if (sequence == gap.first) gap.first = end; else gap.end = sequence;
      if (SequenceDistance(gap.first, gap.end) <= 0) gap = way->gaps[--way->gapCount];
      return;
    }
    if (length > kProbe || ahead != -1) ++connection->again;
  }
  if (SequenceDistance(way->next, end) > 0) way->next = end;
}

class Tcp final : public Statistic {
 public:
  void Take(const StatPacket& p) override {
    TcpHeader header;
    const PacketState& packet = p.packet;
    if (packet.quoted || !ReadTcpHeader(packet, &header)) return;
    host_ = p.host;
    const EndPair pair(SourceEnd(packet), DestinationEnd(packet));
    bool isNew = false;
    Connection& c = connections_.Of(pair.bytes, [](const Connection& x) { return x.packets; }, &isNew);
    if (isNew) c.firstIsSecond = pair.swapped;
    Count(&c, &c.of[pair.swapped], header, packet.segment, p);
  }

  void LetHostGo() override { host_ = nullptr; }

  std::vector<StatTable> Tables() override {
    StatTable table("TCP connections", {{"a", "A", false},
                                        {"b", "B", false},
                                        {"packets", "Packets", true},
                                        {"bytes", "Data", true},
                                        {"retransmissions", "Again", true},
                                        {"out_of_order", "Late", true},
                                        {"missing", "Gaps", true},
                                        {"duplicate_acks", "Dup ACK", true},
                                        {"zero_windows", "Zero win", true},
                                        {"resets", "RST", true},
                                        {"handshake", "Handshake", true}});
    for (const auto& [key, c] : connections_.All()) {
      const std::string one = EndTextOf(EndPair::First(key), host_), two = EndTextOf(EndPair::Second(key), host_);
      table.Text(c.firstIsSecond ? two : one).Text(c.firstIsSecond ? one : two);
      table.Number(c.packets).Number(c.bytes).Number(c.again).Number(c.outOfOrder).Number(c.missing).Number(c.duplicates);
      table.Number(c.zeroWindows).Number(c.resets);
      if (c.handshake >= 0) table.Seconds(c.handshake); else table.Nothing();
    }
    table.Sort("a");
    table.Sort("packets");
    table.Sort("retransmissions");
    if (connections_.Merged()) {
      table.Remark("others: " + std::to_string(connections_.Merged()) + " connections of few packets, with " +
                   std::to_string(connections_.Others().packets) + " packets");
    }
    return {table};
  }

 private:
  static void Count(Connection* c, Direction* way, const TcpHeader& header, const TcpSegment& segment, const StatPacket& p) {
    const uint32_t length = static_cast<uint32_t>(segment.length + segment.cut);
    const bool isSyn = header.flags & kTcpSyn, isAck = header.flags & kTcpAck;
    ++c->packets;
    c->bytes += length;
    if (isSyn && !isAck) c->synAt = p.nanoseconds;
    if (isSyn && isAck && c->synAt >= 0) c->answeredAt = p.nanoseconds;
    if (!isSyn && isAck && c->answeredAt >= 0 && c->handshake < 0) c->handshake = p.nanoseconds - c->synAt;
    if (header.flags & kTcpReset) ++c->resets;
    const bool isPlain = !(header.flags & (kTcpSyn | kTcpFin | kTcpReset));
    if (header.window == 0 && isPlain) ++c->zeroWindows;
    if (isAck && isPlain && length == 0) {
      if (way->hasAcknowledged && way->acknowledged == header.acknowledgement && way->window == header.window &&
          header.window != 0 && way->started && header.sequence == way->next) {
        ++c->duplicates;
      }
    }
    if (isAck) {
      way->hasAcknowledged = true;
      way->acknowledged = header.acknowledgement;
      way->window = header.window;
    }
    const uint32_t taken = length + (isSyn ? 1 : 0) + (header.flags & kTcpFin ? 1 : 0);
    if (isSyn) {   // a connection starts, or its first segment comes again
      if (way->started && way->next == header.sequence + 1) ++c->again;
      way->started = true;
      way->next = header.sequence + taken;
      way->gapCount = 0;
    } else if (taken > 0) {
      TakeData(c, way, header.sequence, taken);
    } else if (!way->started) {
      way->started = true;
      way->next = header.sequence;
    }
  }

  const QxHost* host_ = nullptr;
  BoundedCounts<Connection> connections_{kMostConnections};
};

}  // namespace

std::unique_ptr<Statistic> MakeTcp() { return std::make_unique<Tcp>(); }

}  // namespace qxview
