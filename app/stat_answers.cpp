// What was asked and answered: values of a key, names and pages with their codes and response times.
#include <algorithm>
#include <map>

#include "app/bounded_counts.h"
#include "app/packet_ends.h"
#include "app/packet_protocol.h"
#include "app/response_times.h"
#include "app/record_writer.h"
#include "app/statistics.h"
#include "core/frame_record.h"

namespace qxview {
namespace {

constexpr size_t kMostValues = 100000;

class Values final : public Statistic {
 public:
  explicit Values(const std::string& key) : key_(key) {
    std::string wrong;
    asked_ = query_.Ask(key, &wrong);
  }
  KeyQuery* Query() override { return &query_; }

  void Take(const StatPacket& p) override {
    const std::vector<AskedValue>& values = query_.ValuesOf(asked_);
    for (const AskedValue& value : values) {
      const std::string text = value.kind == AskedKind::kNone ? std::string(value.line) : TextOfValue(value);
      Count& count = counts_.Of(text, [](const Count& c) { return c.values; });
      ++count.values;
      if (count.lastPacket != p.number) ++count.packets;
      count.lastPacket = p.number;
      ++all_;
    }
  }

  std::vector<StatTable> Tables() override {
    StatTable table("Values of " + key_, {{"value", "Value", false},
                                          {"count", "Count", true},
                                          {"percent", "Percent", true},
                                          {"packets", "Packets", true}});
    for (const auto& [text, count] : counts_.All()) {
      table.Text(ToUtf8(text)).Number(count.values).Percent(count.values, all_).Number(count.packets);
    }
    table.Sort("value");
    table.Sort("count");
    if (counts_.Merged()) {
      table.Remark("others: " + std::to_string(counts_.Merged()) + " values that counted least, " +
                   std::to_string(counts_.Others().values) + " times");
    }
    return {table};
  }

 private:
  struct Count {
    uint64_t values = 0, packets = 0, lastPacket = 0;
    Count& operator+=(const Count& other) {
      values += other.values;
      packets += other.packets;
      return *this;
    }
  };
  std::string key_;
  KeyQuery query_;
  int32_t asked_;
  BoundedCounts<Count> counts_{kMostValues};
  uint64_t all_ = 0;
};

struct Times {
  uint64_t count = 0;
  int64_t least = 0, most = 0, sum = 0;
  void Add(int64_t from, int64_t to) {
    const int64_t time = TimeBetween(from, to);
    if (time < 0) return;   // the clock was set back
    least = count == 0 ? time : std::min(least, time);
    most = count == 0 ? time : std::max(most, time);
    sum = TimeBehind(sum, time);
    ++count;
  }
};

void PutTimes(StatTable* table, const Times& times) {
  if (times.count == 0) {
    table->Nothing().Nothing().Nothing();
  } else {
    table->Seconds(times.least).Seconds(times.sum / static_cast<int64_t>(times.count)).Seconds(times.most);
  }
}

std::string ServerOf(const StatPacket& p, bool isAnswer) {
  return AddressTextOf(isAnswer ? SourceEnd(p.packet) : DestinationEnd(p.packet), p.host);
}

// Servers with what they were asked and how soon they answered, and how often each code.
class Servers {
 public:
  struct Server {
    uint64_t requests = 0, answers = 0;
    Times times;
  };
  Server& Of(const std::string& server) {
    constexpr size_t kMostServers = 10000;
    if (servers_.size() >= kMostServers && !servers_.contains(server)) return servers_["others"];
    return servers_[server];
  }
  void Count(const std::string& kind, const std::string& code) {
    constexpr size_t kMostCodes = 1000;
    if (codes_.size() < kMostCodes || codes_.contains({kind, code})) ++codes_[{kind, code}];
  }

  std::vector<StatTable> Tables(const char* title) const {
    StatTable servers(std::string(title) + ": servers", {{"server", "Server", false},
                                                         {"requests", "Requests", true},
                                                         {"answers", "Answers", true},
                                                         {"least", "Least", true},
                                                         {"average", "Average", true},
                                                         {"most", "Most", true}});
    for (const auto& [name, server] : servers_) {
      servers.Text(name).Number(server.requests).Number(server.answers);
      PutTimes(&servers, server.times);
    }
    servers.Sort("requests");
    StatTable codes(std::string(title) + ": what was asked and answered",
                    {{"kind", "Kind", false}, {"code", "Code", false}, {"count", "Count", true}});
    for (const auto& [code, count] : codes_) codes.Text(code.first).Text(code.second).Number(count);
    codes.Sort("count");
    return {servers, codes};
  }

 private:
  std::map<std::string, Server> servers_;
  std::map<std::pair<std::string, std::string>, uint64_t> codes_;
};

// Domain names, by the headers of their messages (RFC 1035, 4.1.1).
class Dns final : public Statistic {
 public:
  void Take(const StatPacket& p) override {
    char scratch[kMediumNameScratch];
    const PacketState& packet = p.packet;
    const std::string_view protocol = ProtocolNameOf(packet, scratch);
    if ((protocol != "DNS" && protocol != "LLMNR" && protocol != "MDNS") || !packet.payload) return;
    const uint8_t* message = packet.payload;
    int32_t length = packet.payloadLength;
    if (packet.segment.here) {   // behind its length
      message += 2;
      length -= 2;
    }
    constexpr int32_t kHeader = 12;
    if (length < kHeader) return;
    const uint32_t id = static_cast<uint32_t>(message[0]) << 8 | message[1];
    const bool isAnswer = message[2] & 0x80;
    const uint32_t operation = message[2] >> 3 & 0xF, code = message[3] & 0xF;
    Servers::Server& server = servers_.Of(ServerOf(p, isAnswer));
    const std::string key = RequestKey(packet, isAnswer, id);
    if (!isAnswer) {
      ++server.requests;
      servers_.Count("operation", NameIn(kOperations, operation));
      return times_.Ask(key, {p.nanoseconds, p.number, {}});
    }
    ++server.answers;
    servers_.Count("result", NameIn(kResults, code));
    if (const auto asked = times_.Answer(key)) server.times.Add(asked->nanoseconds, p.nanoseconds);
  }
  std::vector<StatTable> Tables() override { return servers_.Tables("DNS"); }

 private:
  // The registries' names (IANA, Domain Name System Parameters).
  static constexpr const char* kOperations[] = {"Query", "IQuery", "Status", nullptr, "Notify", "Update", "DSO"};
  static constexpr const char* kResults[] = {"NoError", "FormErr", "ServFail", "NXDomain", "NotImp", "Refused",
                                             "YXDomain", "YXRRSet", "NXRRSet", "NotAuth", "NotZone", "DSOTYPENI"};
  template <size_t size>
  static std::string NameIn(const char* const (&names)[size], uint32_t code) {
    return code < size && names[code] ? names[code] : std::to_string(code);
  }
  ResponseTimes times_;
  Servers servers_;
};

class Http final : public Statistic {
 public:
  Http() {
    std::string wrong;
    method_ = query_.Ask("http.request_line/http.method", &wrong);
    code_ = query_.Ask("http.status_line/http.code", &wrong);
  }
  KeyQuery* Query() override { return &query_; }

  void Take(const StatPacket& p) override {
    for (const AskedValue& method : query_.ValuesOf(method_)) {
      ++servers_.Of(ServerOf(p, false)).requests;
      servers_.Count("method", ToUtf8(TextOfValue(method)));
      times_.Ask(RequestKey(p.packet, false, 0), p.packet.segment.sequence, {p.nanoseconds, p.number, {}});
    }
    if (p.packet.segment.length > 0 && query_.ValuesOf(code_).empty() && query_.ValuesOf(method_).empty()) {
      times_.Data(RequestKey(p.packet, true, 0));
    }
    for (const AskedValue& code : query_.ValuesOf(code_)) {
      Servers::Server& server = servers_.Of(ServerOf(p, true));
      ++server.answers;
      servers_.Count("code", ToUtf8(TextOfValue(code)));
      if (const auto asked = times_.Answer(RequestKey(p.packet, true, 0))) server.times.Add(asked->nanoseconds, p.nanoseconds);
    }
  }
  std::vector<StatTable> Tables() override { return servers_.Tables("HTTP"); }

 private:
  KeyQuery query_;
  int32_t method_, code_;
  AnswersInOrder times_;
  Servers servers_;
};

}  // namespace

std::unique_ptr<Statistic> MakeValues(const std::string& key) { return std::make_unique<Values>(key); }
std::unique_ptr<Statistic> MakeDns() { return std::make_unique<Dns>(); }
std::unique_ptr<Statistic> MakeHttp() { return std::make_unique<Http>(); }

}  // namespace qxview
