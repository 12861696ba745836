#include "browse/search.h"

#include <algorithm>

namespace qxview {

SearchRun::SearchRun(ViewedCapture& capture, SearchText search, uint64_t fromNumber, bool backward)
    : capture_(capture), search_(std::move(search)), place_(capture.PlaceOf(fromNumber)), backward_(backward) {
  lines_.AskEveryLine();
}

bool SearchRun::Holds(uint64_t number) {
  if (search_.in == SearchIn::kBytes) {
    const uint8_t* bytes;
    int32_t length;
    return capture_.ReadBytes(number, &bytes, &length) && FindBytes(search_, bytes, length) >= 0;
  }
  if (search_.in == SearchIn::kList) {
    PacketRow row;
    if (!capture_.ReadRow(number, &row)) return false;
    for (const std::string* cell : {&row.source, &row.destination, &row.protocol, &row.summary}) {
      if (IsIn(search_, *cell)) return true;
    }
    return false;
  }
  if (!capture_.Asks(lines_, number)) return false;
  const std::vector<AskedValue>& values = lines_.ValuesOf(0);
  return std::any_of(values.begin(), values.end(), [&](const AskedValue& value) { return IsIn(search_, value.line); });
}

SearchRun::State SearchRun::Advance(int32_t packets) {
  for (int32_t i = 0; i < packets; ++i) {
    const uint64_t count = capture_.ShownCount();
    if (looked_++ >= count) return State::kNotFound;
    if (backward_) {
      wrapped_ |= place_ == 0;
      place_ = place_ == 0 ? count - 1 : std::min(place_, count) - 1;
    } else {
      wrapped_ |= place_ + 1 >= count;
      place_ = place_ + 1 >= count ? 0 : place_ + 1;
    }
    number_ = capture_.NumberAt(place_);
    if (Holds(number_)) return State::kFound;
  }
  return State::kGoesOn;
}

}  // namespace qxview
