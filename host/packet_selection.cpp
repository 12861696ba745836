#include "host/packet_selection.h"

#include <algorithm>
#include <charconv>

#include "host/text.h"

namespace qxview {
namespace {

bool ParsePacketNumber(const std::string& text, uint64_t* number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), *number);
  return !text.empty() && error == std::errc() && end == text.data() + text.size() && *number > 0;
}

}  // namespace

bool PacketSelection::Parse(const std::string& list, std::string* wrong) {
  spans_.clear();
  text_ = list;
  for (size_t at = 0; at <= list.size();) {
    const size_t comma = std::min(list.find(',', at), list.size());
    const std::string piece = list.substr(at, comma - at);
    const size_t dash = piece.find('-');
    uint64_t first = 0, last = 0;
    bool good = ParsePacketNumber(piece.substr(0, dash), &first);
    if (dash == std::string::npos) {
      last = first;
    } else if (dash + 1 == piece.size()) {
      last = UINT64_MAX;
    } else {
      good = good && ParsePacketNumber(piece.substr(dash + 1), &last);
    }
    if (!good || last < first) {
      *wrong = QuoteValue(piece) +
               (good ? " ends before it begins" : " is no packet number from 1, nor a span like 3-9 or 12-");
      return false;
    }
    spans_.push_back({first, last});
    at = comma + 1;
  }
  return true;
}

bool PacketSelection::Holds(uint64_t number) const {
  return spans_.empty() || std::any_of(spans_.begin(), spans_.end(), [&](const auto& span) {
           return number >= span.first && number <= span.second;
         });
}

uint64_t PacketSelection::Last() const {
  uint64_t last = spans_.empty() ? UINT64_MAX : 0;
  for (const auto& span : spans_) last = std::max(last, span.second);
  return last;
}

}  // namespace qxview
