// How far a long pass is, for a person: one line on standard error that is written over and goes away.
#pragma once
#include <chrono>
#include <cstdint>

namespace qxview {

class Progress {
 public:
  // Now and then, with how much of the input is read and its size, 0 where that is not known.
  void Show(uint64_t read, uint64_t size);

 private:
  using Clock = std::chrono::steady_clock;
  Clock::time_point start_ = Clock::now();
  Clock::time_point shown_ = start_;
};

// In front of whatever else is written to the terminal.
void EraseProgress();

// Data go to this file from now on: there is no progress on a terminal that shows them.
void YieldTerminal(int64_t file);

}  // namespace qxview
