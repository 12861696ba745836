// What a report tells of a run, counted in one pass and in bounded memory. All but the state of TCP's connections is counted by
// the values of keys, so that a filter over the same keys gives the same packets again.
#pragma once
#include <array>
#include <map>
#include <memory>
#include <set>

#include "app/packet_spans.h"
#include "app/protocol_tree.h"
#include "app/report_exchanges.h"
#include "app/report_findings.h"
#include "app/tcp_connections.h"
#include "app/traffic.h"
#include "query/filter.h"

namespace qxview {

// Packets by time since the first one: fine intervals, made longer when there are too many.
class RateCounts {
 public:
  void Take(int64_t since, uint64_t bytes);
  uint64_t Early() const { return early_; }   // packets in front of the first one: the clock was set back
  // The counts in round intervals, at most `most` of them.
  std::vector<Traffic> Rounded(size_t most, int64_t* interval) const;

 private:
  void Lengthen();
  size_t level_ = 0;
  uint64_t early_ = 0;
  std::vector<Traffic> counts_;
};

// Round lengths of time in nanoseconds: the shortest that is at least this long, and a multiple of `of`.
int64_t RoundInterval(int64_t least, int64_t of = 1);

struct HostCount {
  Traffic all, sent, received;   // all: what a host sends itself counts once
  std::string name;              // where it is not shown by its address
  HostCount& operator+=(const HostCount& other) {
    all += other.all;
    return *this;
  }
};

struct PortCount {
  Traffic all;
  uint8_t transports = 0;   // a bit each of kTransports
};
constexpr std::array<const char*, 3> kTransports = {"tcp", "udp", "sctp"};

class ReportCounts {
  Filter filter_;
  KeyQuery& query_ = filter_.Keys();

 public:
  ReportCounts();

  // What is to be asked of every packet before it is taken.
  KeyQuery& Query() { return query_; }
  void Take(const StatPacket& packet, uint32_t captured, uint16_t linkType);
  // When all packets were taken.
  void Finish();

  // Keys of the maps: the two addresses; transport, address, port, address, port; each with a line feed behind it.
  static std::string PairKey(std::string_view source, std::string_view destination);
  static std::vector<std::string> Split(const std::string& key);

  Traffic all;
  uint64_t captured = 0;   // bytes
  int64_t first = 0, earliest = 0, latest = 0;
  uint64_t lastNumber = 0;
  std::set<uint16_t> linkTypes;
  RateCounts rate;
  static constexpr std::array<uint32_t, 10> kLengthsFrom = {0, 20, 40, 80, 160, 320, 640, 1280, 2560, 5120};
  std::array<Traffic, kLengthsFrom.size()> lengths{};
  ProtocolTree protocols;
  BoundedCounts<HostCount> hosts{kMostKeys};
  BoundedCounts<Traffic> pairs{kMostKeys};   // from the first to the second
  BoundedCounts<TwoWays> conversations{kMostKeys};
  std::vector<PortCount> ports;   // by their numbers; empty while there are none
  Exchanges dns, http;
  ResponseTimesPlot handshakes;
  Findings findings;
  LearntNames names;
  HardwareOwners owners;
  TcpConnections tcp;
  uint64_t tcpSegments = 0;
  PacketSpans again, outOfOrder, missing, duplicates, unanswered;   // the last: attempts to connect

 private:
  static constexpr size_t kMostKeys = 100000;
  enum Asked : size_t { kSource, kDestination, kSourceName, kDestinationName, kSourcePort, kDestinationPort, kProtocols,
                       kAskedCount };
  std::string ValueOf(Asked asked) const;
  void TakeHosts(const std::string& source, const std::string& destination, uint64_t bytes);
  void TakePorts(const StatPacket& packet, const std::string& source, const std::string& destination, size_t transport);
  void TakeTcp(const StatPacket& packet);

  std::array<int32_t, kAskedCount> asked_{};
};

}  // namespace qxview
