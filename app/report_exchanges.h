// Requests and their answers, for reports: who was asked what, how often, and how long it took.
#pragma once
#include <array>
#include <vector>

#include "app/packet_spans.h"
#include "app/response_times.h"
#include "app/statistics.h"

namespace qxview {

// How often answers took how long, in intervals of 1, 2 and 5 times the powers of ten.
class ResponseTimesPlot {
 public:
  static constexpr size_t kBars = 26;   // up to 10 us, 20 us, ... and all above
  void Add(int64_t took, uint64_t packet);
  // Where a bar ends, in nanoseconds.
  static int64_t EndOf(size_t bar);

  uint64_t count = 0;
  int64_t least = 0, most = 0, sum = 0;
  std::array<PacketSpans, kBars> bars;
};

class Exchanges {
 public:
  struct Server {
    uint64_t requests = 0, answers = 0;   // packets
    uint64_t timed = 0;
    int64_t least = 0, most = 0, sum = 0;
  };
  struct Slow {
    int64_t took;
    uint64_t asked, answered;   // packets
    std::string what, server;   // UTF-8
  };
  struct Keys {
    const char* request;        // filters that a packet with one is found by
    const char* answer;
    const char *id, *isAnswer;  // of a message; null: a packet is either
    const char* what;           // of requests
    const char* more;           // in front of it
  };

  Exchanges(const Keys& keys, KeyQuery* query);
  void Take(const StatPacket& packet, const KeyQuery& query, const std::string& source, const std::string& destination);
  // When all packets were taken: requests that nobody answered.
  void Finish();

  const Keys& Filters() const { return keys_; }
  bool IsEmpty() const { return servers_.empty(); }
  const std::map<std::string, Server>& Servers() const { return servers_; }
  uint64_t Merged() const { return merged_; }   // packets of servers that are too many to count
  const ResponseTimesPlot& Times() const { return times_; }
  const std::vector<Slow>& Slowest() const { return slowest_; }
  const PacketSpans& Unanswered() const { return unanswered_; }

 private:
  Server* ServerOf(const std::string& address);
  void Answer(const StatPacket& packet, const std::string& source, uint32_t id);

  Keys keys_;
  int32_t request_, answer_, id_ = -1, isAnswer_ = -1, what_, more_ = -1;
  ResponseTimes waiting_;       // messages with an id
  AnswersInOrder inOrder_;      // others
  ResponseTimesPlot times_;
  std::map<std::string, Server> servers_;
  uint64_t merged_ = 0;
  std::vector<Slow> slowest_;   // the slowest first
  PacketSpans unanswered_;
};

}  // namespace qxview
