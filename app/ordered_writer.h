// What several threads write, in the order of their work's places: whose turn it is writes through, what others write is held
// until theirs comes, in the buffers that it was put in.
#pragma once
#include <atomic>
#include <map>
#include <memory>
#include <string_view>
#include <vector>

#include "app/output.h"
#include "platform/threads.h"

namespace qxview {

class OrderedWriter {
 public:
  // What `out` holds is written in front of it all. `moved` is told when a turn ends, or nothing more is written.
  OrderedWriter(Output& out, Monitor& monitor, News& moved) : out_(out), monitor_(monitor), moved_(moved) {
    out_.Flush();
    failed_ = out_.Failed();
  }

  static constexpr size_t kMostBuffers = 32;   // of a lane beside its Output's own; without one it waits for its turn

  // A buffer and how much is in it.
  struct Piece {
    char* buffer;
    int32_t used;
  };

  // Of one thread: the place of its present work, from 0 without gaps over all of them, and the Output that it writes to.
  struct Lane {
    explicit Lane(OrderedWriter& all) : writer(all), out({this, Write, MoveBack, -1}) { spare.reserve(kMostBuffers + 1); }
    size_t Filled() const { return buffers.size() - spare.size(); }   // inside the monitor: the Output has one of them all
    OrderedWriter& writer;
    uint64_t place = 0;
    Output out;
    std::vector<Piece> held;   // of its present work
    // Buffers come back to whoever filled them: another core would have to fetch them first.
    std::vector<std::unique_ptr<char[]>> buffers;
    std::vector<char*> spare;   // changed inside the monitor
  };

  // The lane's work is written.
  void End(Lane& lane);

  // Whose turn it is.
  uint64_t Turn() const { return turn_; }

  // Nothing more is written: a write failed, or somebody gave up.
  bool Failed() const { return failed_; }
  void Fail();

 private:
  struct Ended {
    Lane* lane;
    std::vector<Piece> pieces;
  };
  static int32_t Write(void* lane, const char* bytes, int32_t length);
  // Only user decoder libraries take back what was written, and with them there is one thread.
  static int32_t MoveBack(void*, int64_t) { return 0; }
  bool LeaveBehind(Lane& lane);
  bool Hold(Lane& lane, std::string_view bytes);
  char* TakeBuffer(Lane& lane);
  void WritePieces(Lane& lane, std::vector<Piece>& pieces);
  bool WriteThrough(std::string_view bytes);

  Output& out_;
  Monitor& monitor_;
  News& moved_;
  std::atomic<uint64_t> turn_{0};
  std::map<uint64_t, Ended> ended_;   // what was held of work whose turn has not come
  std::atomic<bool> failed_{false};
};

}  // namespace qxview
