// What is counted over a capture: a statistic takes packets one by one and gives tables in the end.
#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "app/list_time.h"
#include "app/stat_table.h"
#include "core/context.h"
#include "query/key_query.h"
#include "qxview/qxview_host.h"

namespace qxview {

struct StatPacket {
  const PacketState& packet;   // of its headers
  const FrameRecord* record;
  uint64_t number;
  int64_t nanoseconds, first;   // when it was captured, and the run's first
  uint32_t length;              // on the wire
  const QxHost* host;           // for names
};

class Statistic {
 public:
  virtual ~Statistic() = default;
  // What is asked of every packet; null: its headers are enough.
  virtual KeyQuery* Query() { return nullptr; }
  // Whether the short names of its protocols are wanted, the outer ones first.
  virtual bool WantsProtocols() const { return false; }
  virtual void TakeProtocols(const std::vector<const char*>&) {}
  virtual void Take(const StatPacket& packet) = 0;
  // The host of the packets taken so far ends, others' may follow.
  virtual void LetHostGo() {}
  virtual std::vector<StatTable> Tables() = 0;
};

std::unique_ptr<Statistic> MakeEndpoints();
std::unique_ptr<Statistic> MakeConversations();
std::unique_ptr<Statistic> MakePorts();
std::unique_ptr<Statistic> MakeRate(int64_t nanoseconds);   // of an interval
std::unique_ptr<Statistic> MakeLengths();
std::unique_ptr<Statistic> MakeProtocols();
std::unique_ptr<Statistic> MakeValues(const std::string& key);
std::unique_ptr<Statistic> MakeDns();
std::unique_ptr<Statistic> MakeHttp();
std::unique_ptr<Statistic> MakeTcp();

}  // namespace qxview
