// Requests that wait for their answers, and the conversation that the two have in common.
#pragma once
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>

#include "app/packet_ends.h"
#include "app/time_sums.h"

namespace qxview {

// The conversation from the end that asked: the same bytes for request and answer; `more` tells those of one apart.
inline std::string RequestKey(const PacketState& packet, bool isAnswer, uint32_t more) {
  const PacketEnd source = SourceEnd(packet), destination = DestinationEnd(packet);
  const std::string key = isAnswer ? BytesOf(destination) + BytesOf(source) : BytesOf(source) + BytesOf(destination);
  return key + std::string(reinterpret_cast<const char*>(&more), sizeof more);
}

class ResponseTimes {
 public:
  struct Request {
    int64_t nanoseconds;
    uint64_t packet;
    std::string what;
  };

  // Asked again: the first time counts.
  void Ask(const std::string& key, Request request) {
    constexpr size_t kMostWaiting = 65536;
    if (waiting_.size() >= kMostWaiting) waiting_.erase(waiting_.begin());
    waiting_.try_emplace(key, std::move(request));
  }
  // The request that is answered; none when nobody asked.
  std::optional<Request> Answer(const std::string& key) {
    const auto found = waiting_.find(key);
    if (found == waiting_.end()) return std::nullopt;
    std::optional<Request> request(std::move(found->second));
    waiting_.erase(found);
    return request;
  }
  const std::map<std::string, Request>& Waiting() const { return waiting_; }

 private:
  std::map<std::string, Request> waiting_;
};

// Requests of connections that answer them one after another.
class AnswersInOrder {
 public:
  using Request = ResponseTimes::Request;

  // `sequence`: of the segment, by which it is known when it comes again.
  void Ask(const std::string& key, uint32_t sequence, Request request) {
    constexpr size_t kMostConnections = 65536, kMostWaiting = 64;
    if (connections_.size() >= kMostConnections && !connections_.contains(key)) connections_.erase(connections_.begin());
    Connection& c = connections_[key];
    if (c.lastPacket != 0 && c.lastPacket != request.packet && c.lastSequence == sequence) return;
    c.lastPacket = request.packet;
    c.lastSequence = sequence;
    if (c.state == State::kUnknownAnswer) c.waiting.clear();
    c.state = State::kAsked;
    if (c.waiting.size() < kMostWaiting) c.waiting.push_back(std::move(request));
  }
  // The other end sends what is no answer's start: the capture lacks it, or an answer goes on.
  void Data(const std::string& key) {
    const auto found = connections_.find(key);
    if (found != connections_.end() && found->second.state == State::kAsked) found->second.state = State::kUnknownAnswer;
  }
  // The request that is answered; none when nobody asked.
  std::optional<Request> Answer(const std::string& key) {
    const auto found = connections_.find(key);
    if (found == connections_.end()) return std::nullopt;
    Connection& c = found->second;
    c.state = State::kAnswered;
    if (c.waiting.empty()) return std::nullopt;
    std::optional<Request> request(std::move(c.waiting.front()));
    c.waiting.pop_front();
    return request;
  }
  template <typename Use>
  void ForEachWaiting(const Use& use) const {
    for (const auto& [key, connection] : connections_) {
      for (const Request& request : connection.waiting) use(request);
    }
  }

 private:
  enum class State : uint8_t { kAsked, kAnswered, kUnknownAnswer };
  struct Connection {
    std::deque<Request> waiting;
    State state = State::kAsked;   // since the last request
    uint32_t lastSequence = 0;
    uint64_t lastPacket = 0;
  };
  std::map<std::string, Connection> connections_;
};

}  // namespace qxview
