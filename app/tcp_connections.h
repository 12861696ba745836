// Connections with what went wrong in them: segments sent again, out of order or missing, windows of zero, resets; and how long
// the handshake took.
#pragma once
#include "app/bounded_counts.h"
#include "app/packet_ends.h"
#include "app/statistics.h"
#include "app/tcp_header.h"

namespace qxview {

struct TcpTrouble {
  uint64_t again = 0, outOfOrder = 0, missing = 0, duplicates = 0, zeroWindows = 0, resets = 0;
};

class TcpConnections {
 public:
  static constexpr size_t kMostGaps = 8;   // of a direction that are remembered
  struct Gap {
    uint32_t first, end;
  };
  struct Direction {
    bool started = false, hasStart = false, probed = false;   // the last: by its last segment
    uint32_t start = 0;              // the number of its SYN
    uint32_t next = 0;               // the sequence number behind all that was seen
    Gap gaps[kMostGaps];
    uint32_t gapCount = 0;
    uint32_t acknowledged = 0, window = 0;
    bool hasAcknowledged = false;
  };
  struct Connection {
    uint64_t packets = 0, bytes = 0;
    TcpTrouble trouble;
    uint64_t firstSyn = 0;   // packet of the first attempt to connect; 0: none was seen
    bool isAnswered = false;
    int64_t synAt = 0;
    int64_t handshake = INT64_MIN;   // nanoseconds; below 0: not seen, or the clock was set back
    bool firstIsSecond = false;
    Direction of[2];   // from the first end of the key, from the second

    Connection& operator+=(const Connection& other);
  };

  // Counts a segment; what it adds to the trouble of its connection. Other packets are passed by.
  TcpTrouble Take(const StatPacket& packet);

  // By the bytes of their pair of ends.
  const BoundedCounts<Connection>& All() const { return connections_; }
  // The end that sent first, and the other one.
  static PacketEnd FirstEnd(const std::string& key, const Connection& c) {
    return c.firstIsSecond ? EndPair::Second(key) : EndPair::First(key);
  }
  static PacketEnd OtherEnd(const std::string& key, const Connection& c) {
    return c.firstIsSecond ? EndPair::First(key) : EndPair::Second(key);
  }

 private:
  static constexpr size_t kMostConnections = 100000;
  BoundedCounts<Connection> connections_{kMostConnections};
};

}  // namespace qxview
