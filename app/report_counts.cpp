#include "app/report_counts.h"

#include <algorithm>

#include "app/record_writer.h"

namespace qxview {
namespace {

constexpr int64_t kSecond = 1000000000, kDay = 86400 * kSecond;

// Each is a whole part of the next.
constexpr int64_t kFine[] = {1000,        10000,        100000,        1000000,        10000000,        100000000,
                             kSecond,     10 * kSecond, 60 * kSecond,  600 * kSecond,  3600 * kSecond,  kDay,
                             10 * kDay,   100 * kDay,   1000 * kDay,   10000 * kDay};
constexpr size_t kMostFine = 16384;

// Both ends as the protocol's keys for addresses and ports have them; one order for both directions.
std::string ConversationKey(const char* transport, const std::string& one, const std::string& onePort, const std::string& other,
                            const std::string& otherPort, bool* swapped) {
  const std::string a = one + "\n" + onePort + "\n", b = other + "\n" + otherPort + "\n";
  *swapped = b < a;
  return std::string(transport) + "\n" + (*swapped ? b + a : a + b);
}

constexpr Exchanges::Keys kDnsKeys = {"dns.qr_query_response == 0", "dns.qr_query_response == 1", "dns.transaction_id",
                                      "dns.qr_query_response", "dns.question_record/dns.domain_name", nullptr};
constexpr Exchanges::Keys kHttpKeys = {"http.request_line/http.method", "http.status_line/http.code", nullptr, nullptr,
                                       "http.request_uri", "http.request_line/http.method"};

}  // namespace

int64_t RoundInterval(int64_t least, int64_t of) {
  constexpr int64_t kMinute = 60 * kSecond, kHour = 60 * kMinute;
  static constexpr int64_t kRound[] = {
      kSecond,      2 * kSecond, 5 * kSecond, 10 * kSecond, 15 * kSecond, 30 * kSecond, kMinute,     2 * kMinute,
      5 * kMinute,  10 * kMinute, 15 * kMinute, 30 * kMinute, kHour,     2 * kHour,    3 * kHour,   6 * kHour,
      12 * kHour,   kDay,        2 * kDay,    5 * kDay};
  const auto fits = [&](int64_t interval) { return interval >= least && interval % of == 0; };
  for (int64_t power = 1; power < kSecond; power *= 10) {
    for (const int64_t step : {1, 2, 5}) {
      if (fits(step * power)) return step * power;
    }
  }
  for (const int64_t interval : kRound) {
    if (fits(interval)) return interval;
  }
  for (int64_t power = 10 * kDay;; power *= 10) {
    for (const int64_t step : {1, 2, 5}) {
      if (fits(step * power) || power > INT64_MAX / 100) return step * power;
    }
  }
}

void RateCounts::Lengthen() {
  const auto factor = static_cast<size_t>(kFine[level_ + 1] / kFine[level_]);
  for (size_t i = 0; i < counts_.size(); ++i) {
    const Traffic moved = std::exchange(counts_[i], {});
    counts_[i / factor] += moved;
  }
  counts_.resize((counts_.size() + factor - 1) / factor);
  ++level_;
}

void RateCounts::Take(int64_t since, uint64_t bytes) {
  if (since < 0) {
    ++early_;
    return;
  }
  constexpr int64_t kLongest = 90000 * kDay;   // of the 106,751 days that can be told
  since = std::min(since, kLongest);
  while (static_cast<size_t>(since / kFine[level_]) >= kMostFine && level_ + 1 < std::size(kFine)) Lengthen();
  const auto at = static_cast<size_t>(since / kFine[level_]);
  if (at >= counts_.size()) counts_.resize(at + 1);
  counts_[at] += {1, bytes};
}

std::vector<Traffic> RateCounts::Rounded(size_t most, int64_t* interval) const {
  const int64_t fine = kFine[level_];
  const uint64_t all = counts_.size() * static_cast<uint64_t>(fine);
  *interval = RoundInterval(std::max<int64_t>(static_cast<int64_t>((all + most - 1) / most), fine), fine);
  const auto length = static_cast<uint64_t>(*interval);
  std::vector<Traffic> rounded(static_cast<size_t>((all + length - 1) / length));
  for (size_t i = 0; i < counts_.size(); ++i) rounded[i / static_cast<size_t>(*interval / fine)] += counts_[i];
  return rounded;
}

ReportCounts::ReportCounts()
    : dns(kDnsKeys, &query_), http(kHttpKeys, &query_), findings(&filter_), names(&query_), owners(&query_) {
  constexpr const char* kKeys[] = {"frame.source_address", "frame.destination_address", "frame.source",   "frame.destination",
                                   "frame.source_port",    "frame.destination_port",    "frame.protocols"};
  std::string wrong;
  for (size_t i = 0; i < kAskedCount; ++i) asked_[i] = query_.Ask(kKeys[i], &wrong);
}

std::string ReportCounts::PairKey(std::string_view source, std::string_view destination) {
  return std::string(source) + "\n" + std::string(destination) + "\n";
}

std::vector<std::string> ReportCounts::Split(const std::string& key) {
  std::vector<std::string> parts;
  for (size_t at = 0, end; (end = key.find('\n', at)) != key.npos; at = end + 1) parts.push_back(key.substr(at, end - at));
  return parts;
}

std::string ReportCounts::ValueOf(Asked asked) const {
  const std::vector<AskedValue>& values = query_.ValuesOf(asked_[asked]);
  return values.empty() ? "" : ToUtf8(TextOfValue(values[0]));
}

void ReportCounts::TakeHosts(const std::string& source, const std::string& destination, uint64_t bytes) {
  const Traffic one{1, bytes};
  const auto host = [&](const std::string& address, Asked name) -> HostCount& {
    bool isNew = false;
    HostCount& count = hosts.Of(address, [](const HostCount& h) { return h.all.packets; }, &isNew);
    if (isNew) count.name = ValueOf(name);
    return count;
  };
  if (!source.empty()) {
    HostCount& from = host(source, kSourceName);
    from.all += one;
    from.sent += one;
  }
  if (!destination.empty()) {
    HostCount& to = host(destination, kDestinationName);
    if (destination != source) to.all += one;
    to.received += one;
  }
  if (source.empty() || destination.empty()) return;
  pairs.Of(PairKey(source, destination), [](const Traffic& traffic) { return traffic.packets; }) += one;
}

void ReportCounts::TakePorts(const StatPacket& packet, const std::string& source, const std::string& destination,
                             size_t transport) {
  const std::string sourcePort = ValueOf(kSourcePort), destinationPort = ValueOf(kDestinationPort);
  if (transport == kTransports.size() || sourcePort.empty() || destinationPort.empty()) return;
  const Traffic one{1, packet.length};
  if (ports.empty()) ports.resize(65536);
  const auto countPort = [&](uint16_t port) {
    ports[port].all += one;
    ports[port].transports |= static_cast<uint8_t>(1u << transport);
  };
  countPort(packet.packet.sourcePort);
  if (destinationPort != sourcePort) countPort(packet.packet.destinationPort);
  bool swapped = false, isNew = false;
  const std::string key = ConversationKey(kTransports[transport], source, sourcePort, destination, destinationPort, &swapped);
  TwoWays& count = conversations.Of(key, PacketsOf, &isNew);
  count.Add(isNew, swapped, TimeBetween(first, packet.nanoseconds), packet.length);
}

void ReportCounts::TakeTcp(const StatPacket& packet) {
  const TcpTrouble trouble = tcp.Take(packet);
  if (trouble.again) again.Add(packet.number);
  if (trouble.outOfOrder) outOfOrder.Add(packet.number);
  if (trouble.missing) missing.Add(packet.number);
  if (trouble.duplicates) duplicates.Add(packet.number);
}

void ReportCounts::Take(const StatPacket& packet, uint32_t capturedBytes, uint16_t linkType) {
  if (all.packets == 0) first = earliest = latest = packet.nanoseconds;
  earliest = std::min(earliest, packet.nanoseconds);
  latest = std::max(latest, packet.nanoseconds);
  all += {1, packet.length};
  captured += capturedBytes;
  lastNumber = packet.number;
  linkTypes.insert(linkType);
  rate.Take(TimeBetween(first, packet.nanoseconds), packet.length);
  size_t length = 0;
  while (length + 1 < kLengthsFrom.size() && packet.length >= kLengthsFrom[length + 1]) ++length;
  lengths[length] += {1, packet.length};

  const std::string path = ValueOf(kProtocols), source = ValueOf(kSource), destination = ValueOf(kDestination);
  std::vector<std::string_view> way;
  size_t transport = kTransports.size();   // the innermost one
  for (size_t at = 0, end; at < path.size(); at = end + 1) {
    end = std::min(path.find(':', at), path.size());
    way.push_back(std::string_view(path).substr(at, end - at));
    for (size_t i = 0; i < kTransports.size(); ++i) {
      if (way.back() == kTransports[i]) transport = i;
    }
  }
  protocols.Add(way, packet.length);
  TakeHosts(source, destination, packet.length);
  TakePorts(packet, source, destination, transport);
  TakeTcp(packet);
  dns.Take(packet, query_, source, destination);
  http.Take(packet, query_, source, destination);
  findings.Take(filter_, packet.number, packet.length);
  names.Take(query_, destination);
  owners.Take(query_);
}

void ReportCounts::Finish() {
  std::map<uint64_t, const TcpConnections::Connection*> opened;   // by the packet of the first attempt
  for (const auto& [key, connection] : tcp.All().All()) {
    if (connection.firstSyn) opened[connection.firstSyn] = &connection;
    tcpSegments += connection.packets;
  }
  tcpSegments += tcp.All().Others().packets;
  for (const auto& [number, connection] : opened) {
    if (!connection->isAnswered) unanswered.Add(number);
    if (connection->handshake >= 0) handshakes.Add(connection->handshake, number);
  }
  dns.Finish();
  http.Finish();
}

}  // namespace qxview
