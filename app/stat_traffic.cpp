// Who talks to whom, and how much: endpoints, conversations, ports, rate and lengths.
#include <algorithm>
#include <array>
#include <cstring>

#include "app/bounded_counts.h"
#include "app/packet_ends.h"
#include "app/statistics.h"
#include "app/time_sums.h"
#include "app/traffic.h"
#include "core/bounded_text.h"
#include "core/frame_record.h"

namespace qxview {
namespace {

constexpr size_t kMostKeys = 200000;   // of a layer; conversations of three layers take 800 MB with that

enum Layer : uint8_t { kLinkLayer, kIPv4Layer, kIPv6Layer, kTcpLayer, kUdpLayer, kSctpLayer, kLayers };
constexpr const char* kLayerNames[] = {"Ethernet", "IPv4", "IPv6", "TCP", "UDP", "SCTP"};

// The ends of a packet at each of its layers.
template <typename Use>
void ForEachLayer(const StatPacket& p, const Use& use) {
  const PacketState& packet = p.packet;
  constexpr uint32_t kTcp = 6, kUdp = 17, kSctp = 132;
  constexpr int32_t kMacs = 12;
  if (p.record->mediaType == 0 && !IsRawFrame(p.record) && p.record->capturedLength >= kMacs) {
    PacketEnd source{}, destination{};
    std::memcpy(destination.address, FrameData(p.record), 6);
    std::memcpy(source.address, FrameData(p.record) + 6, 6);
    use(kLinkLayer, source, destination);
  }
  PacketEnd source = SourceEnd(packet), destination = DestinationEnd(packet);
  if (source.kind != kIPv4Kind && source.kind != kIPv6Kind) return;
  source.port = destination.port = 0;
  use(source.kind == kIPv4Kind ? kIPv4Layer : kIPv6Layer, source, destination);
  if (packet.carrier.table != DispatchTable::kIpProtocol) return;
  const uint32_t carried = packet.carrier.key;
  const Layer layer = carried == kTcp ? kTcpLayer : carried == kUdp ? kUdpLayer : carried == kSctp ? kSctpLayer : kLayers;
  if (layer != kLayers) use(layer, SourceEnd(packet), DestinationEnd(packet));
}

std::string TextOf(Layer layer, const PacketEnd& end, const QxHost* host) {
  return layer < kTcpLayer ? AddressTextOf(end, host) : EndTextOf(end, host);
}

void RemarkMerged(StatTable& table, uint64_t merged, const Traffic& others, const char* what) {
  if (merged == 0) return;
  table.Remark("others: " + std::to_string(merged) + " " + what + " that counted least, with " + std::to_string(others.packets) +
               " packets of " + std::to_string(others.bytes) + " bytes");
}

class Endpoints final : public Statistic {
 public:
  void Take(const StatPacket& p) override {
    host_ = p.host;
    ForEachLayer(p, [&](Layer layer, const PacketEnd& source, const PacketEnd& destination) {
      counts_[layer].Of(BytesOf(source), PacketsOf).there += {1, p.length};
      counts_[layer].Of(BytesOf(destination), PacketsOf).back += {1, p.length};
    });
  }

  void LetHostGo() override { host_ = nullptr; }

  std::vector<StatTable> Tables() override {
    StatTable table("Endpoints", {{"layer", "Layer", false},
                                  {"address", "Address", false},
                                  {"packets", "Packets", true},
                                  {"bytes", "Bytes", true},
                                  {"packets_sent", "Sent", true},
                                  {"bytes_sent", "Bytes", true},
                                  {"packets_received", "Received", true},
                                  {"bytes_received", "Bytes", true}});
    for (int32_t i = 0; i < kLayers; ++i) {
      const BoundedCounts<TwoWays>& layer = counts_[i];
      for (const auto& [key, count] : layer.All()) {
        table.Text(kLayerNames[i]).Text(TextOf(static_cast<Layer>(i), EndOf(key), host_)).Number(PacketsOf(count));
        table.Number(BytesOf(count)).Number(count.there.packets).Number(count.there.bytes);
        table.Number(count.back.packets).Number(count.back.bytes);
      }
      Traffic others = layer.Others().there;
      RemarkMerged(table, layer.Merged(), others += layer.Others().back, "endpoints");
    }
    table.Sort("address");
    table.Sort("packets");
    return {table};
  }

 private:
  const QxHost* host_ = nullptr;
  std::vector<BoundedCounts<TwoWays>> counts_{kLayers, BoundedCounts<TwoWays>(kMostKeys)};
};

class Conversations final : public Statistic {
 public:
  void Take(const StatPacket& p) override {
    host_ = p.host;
    ForEachLayer(p, [&](Layer layer, const PacketEnd& source, const PacketEnd& destination) {
      const EndPair pair(source, destination);
      bool isNew = false;
      TwoWays& count = counts_[layer].Of(pair.bytes, PacketsOf, &isNew);
      count.Add(isNew, pair.swapped, TimeBetween(p.first, p.nanoseconds), p.length);
    });
  }

  void LetHostGo() override { host_ = nullptr; }

  std::vector<StatTable> Tables() override {
    StatTable table("Conversations", {{"layer", "Layer", false},
                                      {"a", "A", false},
                                      {"b", "B", false},
                                      {"packets", "Packets", true},
                                      {"bytes", "Bytes", true},
                                      {"packets_a_to_b", "A to B", true},
                                      {"bytes_a_to_b", "Bytes", true},
                                      {"packets_b_to_a", "B to A", true},
                                      {"bytes_b_to_a", "Bytes", true},
                                      {"first", "First", true},
                                      {"last", "Last", true},
                                      {"duration", "Duration", true}});
    for (int32_t i = 0; i < kLayers; ++i) {
      const BoundedCounts<TwoWays>& layer = counts_[i];
      for (const auto& [key, count] : layer.All()) {
        const std::string one = TextOf(static_cast<Layer>(i), EndPair::First(key), host_);
        const std::string two = TextOf(static_cast<Layer>(i), EndPair::Second(key), host_);
        table.Text(kLayerNames[i]).Text(count.firstIsSecond ? two : one).Text(count.firstIsSecond ? one : two);
        table.Number(PacketsOf(count)).Number(BytesOf(count));
        table.Number(count.there.packets).Number(count.there.bytes);
        table.Number(count.back.packets).Number(count.back.bytes);
        table.Seconds(count.first).Seconds(count.last).Seconds(TimeBetween(count.first, count.last));
      }
      Traffic others = layer.Others().there;
      RemarkMerged(table, layer.Merged(), others += layer.Others().back, "conversations");
    }
    table.Sort("a");
    table.Sort("packets");
    return {table};
  }

 private:
  const QxHost* host_ = nullptr;
  std::vector<BoundedCounts<TwoWays>> counts_{kLayers, BoundedCounts<TwoWays>(kMostKeys)};
};

class Ports final : public Statistic {
 public:
  void Take(const StatPacket& p) override {
    ForEachLayer(p, [&](Layer layer, const PacketEnd& source, const PacketEnd& destination) {
      if (layer < kTcpLayer) return;
      Count(layer, source.port, p.length);
      if (destination.port != source.port) Count(layer, destination.port, p.length);
    });
  }

  std::vector<StatTable> Tables() override {
    StatTable table("Ports", {{"transport", "Transport", false},
                              {"port", "Port", true},
                              {"packets", "Packets", true},
                              {"bytes", "Bytes", true}});
    for (size_t layer = 0; layer < 3; ++layer) {
      for (uint64_t port = 0; port < counts_[layer].size(); ++port) {
        const Traffic& count = counts_[layer][port];
        if (count.packets == 0) continue;
        table.Text(kLayerNames[kTcpLayer + layer]).Number(port).Number(count.packets).Number(count.bytes);
      }
    }
    table.Sort("packets");
    return {table};
  }

 private:
  void Count(Layer layer, uint16_t port, uint32_t length) {
    std::vector<Traffic>& of = counts_[layer - kTcpLayer];
    if (of.empty()) of.resize(65536);
    of[port] += {1, length};
  }

  std::array<std::vector<Traffic>, 3> counts_;   // TCP, UDP, SCTP
};

// Packets by interval. When there are too many intervals, two are made one.
class Rate final : public Statistic {
 public:
  explicit Rate(int64_t interval) : interval_(interval), asked_(interval) {}

  void Take(const StatPacket& p) override {
    constexpr uint64_t kMost = 100000;
    const int64_t since = TimeBetween(p.first, p.nanoseconds);
    if (since < 0) {
      ++early_;   // in front of the first packet: clocks are set back
      return;
    }
    while (static_cast<uint64_t>(since / interval_) >= kMost) {
      interval_ *= 2;
      for (size_t i = 0; i < counts_.size(); ++i) {
        const Traffic moved = std::exchange(counts_[i], {});
        counts_[i / 2] += moved;
      }
      counts_.resize((counts_.size() + 1) / 2);
    }
    const size_t at = static_cast<size_t>(since / interval_);
    if (at >= counts_.size()) counts_.resize(at + 1);
    counts_[at] += {1, p.length};
  }

  std::vector<StatTable> Tables() override {
    StatTable table("Rate, by " + SecondsText(interval_) + " s", {{"start", "Start", true},
                                                                  {"end", "End", true},
                                                                  {"packets", "Packets", true},
                                                                  {"bytes", "Bytes", true}});
    for (size_t i = 0; i < counts_.size(); ++i) {
      const int64_t start = static_cast<int64_t>(i) * interval_;
      table.Seconds(start).Seconds(TimeBehind(start, interval_)).Number(counts_[i].packets).Number(counts_[i].bytes);
    }
    if (interval_ != asked_) table.Remark("the interval was made longer: the capture is too long for that many");
    if (early_) table.Remark(std::to_string(early_) + " packets are earlier than the first one and not counted");
    return {table};
  }

 private:
  int64_t interval_, asked_;
  uint64_t early_ = 0;
  std::vector<Traffic> counts_;
};

class Lengths final : public Statistic {
 public:
  void Take(const StatPacket& p) override {
    size_t row = 0;
    while (row + 1 < kFrom.size() && p.length >= kFrom[row + 1]) ++row;
    Span& span = spans_[row];
    span.least = span.packets == 0 ? p.length : std::min(span.least, p.length);
    span.most = std::max(span.most, p.length);
    ++span.packets;
    span.bytes += p.length;
    ++all_;
  }

  std::vector<StatTable> Tables() override {
    StatTable table("Packet lengths", {{"from", "From", true},
                                       {"to", "To", true},
                                       {"packets", "Packets", true},
                                       {"percent", "Percent", true},
                                       {"least", "Least", true},
                                       {"average", "Average", true},
                                       {"most", "Most", true}});
    for (size_t i = 0; i < kFrom.size(); ++i) {
      table.Number(kFrom[i]);
      if (i + 1 < kFrom.size()) table.Number(kFrom[i + 1] - 1); else table.Nothing();
      table.Number(spans_[i].packets).Percent(spans_[i].packets, all_);
      if (spans_[i].packets == 0) {
        table.Nothing().Nothing().Nothing();
      } else {
        table.Number(spans_[i].least).Number(spans_[i].bytes / spans_[i].packets).Number(spans_[i].most);
      }
    }
    return {table};
  }

 private:
  static constexpr std::array<uint32_t, 10> kFrom = {0, 20, 40, 80, 160, 320, 640, 1280, 2560, 5120};
  struct Span {
    uint64_t packets = 0, bytes = 0;
    uint32_t least = 0, most = 0;
  };
  std::array<Span, kFrom.size()> spans_{};
  uint64_t all_ = 0;
};

}  // namespace

std::unique_ptr<Statistic> MakeEndpoints() { return std::make_unique<Endpoints>(); }
std::unique_ptr<Statistic> MakeConversations() { return std::make_unique<Conversations>(); }
std::unique_ptr<Statistic> MakePorts() { return std::make_unique<Ports>(); }
std::unique_ptr<Statistic> MakeRate(int64_t nanoseconds) { return std::make_unique<Rate>(nanoseconds); }
std::unique_ptr<Statistic> MakeLengths() { return std::make_unique<Lengths>(); }

}  // namespace qxview
