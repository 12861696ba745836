// Requests that wait for their answers, and the conversation that the two have in common.
#pragma once
#include <cstdint>
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

}  // namespace qxview
