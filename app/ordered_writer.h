// What several threads write, in the order of their work's places: whose turn it is writes through, what others write is held
// until theirs comes.
#pragma once
#include <atomic>
#include <map>
#include <string>
#include <vector>

#include "app/output.h"
#include "platform/threads.h"

namespace qxview {

class OrderedWriter {
 public:
  // What `out` holds is written in front of it all. `moved` is told when a turn ends, or nothing more is written.
  OrderedWriter(Output& out, Monitor& monitor, News& moved) : out_(out), monitor_(monitor), moved_(moved) {
    spare_.reserve(kMostSpare);   // so that nothing goes wrong where a turn ends
    out_.Flush();
    failed_ = out_.Failed();
  }

  // Of one thread: the place of its present work, from 0 without gaps over all of them.
  struct Lane {
    explicit Lane(OrderedWriter& all) : writer(all) {}
    OrderedWriter& writer;
    uint64_t place = 0;
    std::string held;
  };
  static OutputSink SinkOf(Lane* lane);

  // The lane's work is written as far as its Output is flushed.
  void End(Lane& lane);

  // Whose turn it is.
  uint64_t Turn() const { return turn_; }

  // Nothing more is written: a write failed, or somebody gave up.
  bool Failed() const { return failed_; }
  void Fail();

 private:
  static constexpr size_t kMostHeld = 1u << 20, kMostEnded = 1u << 20;   // then a lane waits for its turn
  static constexpr size_t kMostSpare = 8, kMostSpareSize = 256u << 10;
  int32_t Write(Lane& lane, std::string_view bytes);
  bool LeaveBehind(Lane& lane);
  static bool Hold(Lane& lane, std::string_view bytes);
  static void Clear(std::string* text);
  bool WriteThrough(std::string_view bytes);

  Output& out_;
  Monitor& monitor_;
  News& moved_;
  std::atomic<uint64_t> turn_{0};
  std::map<uint64_t, std::string> ended_;   // what was held of work whose turn has not come
  size_t endedBytes_ = 0;
  std::vector<std::string> spare_;          // their memory, when they are written
  std::atomic<bool> failed_{false};
};

}  // namespace qxview
