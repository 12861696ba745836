// What a view is asked to look for, looked for: in the rows of the list, in lines of trees, or in the packets' bytes.
#pragma once
#include <cstdint>

#include "browse/search_text.h"
#include "browse/viewed_capture.h"

namespace qxview {

// A search over the packets that are shown, from behind one of them on around to itself, in steps.
class SearchRun {
 public:
  SearchRun(ViewedCapture& capture, SearchText search, uint64_t fromNumber, bool backward);
  enum class State { kGoesOn, kFound, kNotFound };
  State Advance(int32_t packets);
  uint64_t Found() const { return number_; }
  bool Wrapped() const { return wrapped_; }
  const SearchText& Text() const { return search_; }
  uint64_t Looked() const { return looked_; }

 private:
  bool Holds(uint64_t number);

  ViewedCapture& capture_;
  SearchText search_;
  uint64_t place_, looked_ = 0, number_ = 0;
  bool backward_, wrapped_ = false;
  KeyQuery lines_;
};

}  // namespace qxview
