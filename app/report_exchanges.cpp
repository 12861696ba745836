#include "app/report_exchanges.h"

#include <algorithm>

#include "app/record_writer.h"

namespace qxview {

int64_t ResponseTimesPlot::EndOf(size_t bar) {
  constexpr int64_t kFirst = 10000;   // nanoseconds
  constexpr int64_t kSteps[] = {1, 2, 5};
  int64_t end = kFirst;
  for (size_t decade = 0; decade < bar / 3; ++decade) end *= 10;
  return end * kSteps[bar % 3];
}

void ResponseTimesPlot::Add(int64_t took, uint64_t packet) {
  least = count == 0 ? took : std::min(least, took);
  most = count == 0 ? took : std::max(most, took);
  sum = TimeBehind(sum, took);
  ++count;
  size_t bar = 0;
  while (bar + 1 < kBars && took > EndOf(bar)) ++bar;
  bars[bar].Add(packet);
}

Exchanges::Exchanges(const Keys& keys, KeyQuery* query) : keys_(keys) {
  std::string wrong;
  const auto ask = [&](const char* key) { return key ? query->Ask(key, &wrong) : -1; };
  request_ = ask(keys.isAnswer ? nullptr : keys.request);
  answer_ = ask(keys.isAnswer ? nullptr : keys.answer);
  id_ = ask(keys.id);
  isAnswer_ = ask(keys.isAnswer);
  what_ = ask(keys.what);
  more_ = ask(keys.more);
}

Exchanges::Server* Exchanges::ServerOf(const std::string& address) {
  constexpr size_t kMostServers = 10000;
  if (servers_.size() < kMostServers || servers_.contains(address)) return &servers_[address];
  ++merged_;
  return nullptr;
}

void Exchanges::Answer(const StatPacket& packet, const std::string& source, uint32_t id) {
  const std::string key = RequestKey(packet.packet, true, id);
  const auto asked = id_ >= 0 ? waiting_.Answer(key) : inOrder_.Answer(key);
  const int64_t took = asked ? TimeBetween(asked->nanoseconds, packet.nanoseconds) : -1;
  if (took < 0) return;
  times_.Add(took, packet.number);
  if (const auto server = servers_.find(source); server != servers_.end()) {
    Server& s = server->second;
    s.least = s.timed == 0 ? took : std::min(s.least, took);
    s.most = std::max(s.most, took);
    s.sum = TimeBehind(s.sum, took);
    ++s.timed;
  }
  constexpr size_t kMostSlow = 10;
  const auto place = std::find_if(slowest_.begin(), slowest_.end(), [&](const Slow& slow) { return slow.took < took; });
  if (place == slowest_.end() && slowest_.size() >= kMostSlow) return;
  slowest_.insert(place, {took, asked->packet, packet.number, asked->what, source});
  if (slowest_.size() > kMostSlow) slowest_.pop_back();
}

void Exchanges::Take(const StatPacket& packet, const KeyQuery& query, const std::string& source,
                     const std::string& destination) {
  const auto textOf = [&](int32_t asked, size_t at) {
    return asked < 0 || query.ValuesOf(asked).size() <= at ? "" : ToUtf8(TextOfValue(query.ValuesOf(asked)[at]));
  };
  uint64_t requests = 0;
  const auto ask = [&](uint32_t id, size_t at) {
    const std::string more = textOf(more_, at);
    const std::string key = RequestKey(packet.packet, false, id);
    ResponseTimes::Request request{packet.nanoseconds, packet.number, (more.empty() ? "" : more + " ") + textOf(what_, at)};
    if (id_ >= 0) waiting_.Ask(key, std::move(request)); else inOrder_.Ask(key, packet.packet.segment.sequence, std::move(request));
    ++requests;
  };
  std::vector<uint32_t> answered;
  if (id_ >= 0) {
    const std::vector<AskedValue>&ids = query.ValuesOf(id_), &kinds = query.ValuesOf(isAnswer_);
    for (size_t i = 0; i < ids.size() && i < kinds.size(); ++i) {
      const auto id = static_cast<uint32_t>(ids[i].number);
      if (kinds[i].number) answered.push_back(id); else ask(id, i);
    }
  } else {
    for (size_t i = 0; i < query.ValuesOf(request_).size(); ++i) ask(0, i);
    answered.resize(query.ValuesOf(answer_).size());
    const bool isOther = requests == 0 && answered.empty() && packet.packet.segment.length > 0;
    if (isOther) inOrder_.Data(RequestKey(packet.packet, true, 0));
  }
  if (Server* server = requests ? ServerOf(destination) : nullptr) ++server->requests;
  if (Server* server = answered.empty() ? nullptr : ServerOf(source)) ++server->answers;
  for (const uint32_t id : answered) Answer(packet, source, id);
}

void Exchanges::Finish() {
  std::vector<uint64_t> numbers;
  for (const auto& [key, request] : waiting_.Waiting()) numbers.push_back(request.packet);
  inOrder_.ForEachWaiting([&](const ResponseTimes::Request& request) { numbers.push_back(request.packet); });
  std::sort(numbers.begin(), numbers.end());
  for (const uint64_t number : numbers) unanswered_.Add(number);
}

}  // namespace qxview
