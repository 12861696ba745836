// Packets decoded on several threads, and what a command writes of them in the packets' order.
//
// The thread that reads passes packets through in order, without lines, for what later ones need of them; what a packet's look-ups
// of state gave goes with it to whoever decodes it (host/state_log.h). So the workers' lines are those that one thread would have
// made. Packets travel in batches; there are so many of these, and what is written ahead of its turn is held to a bound, so memory
// does not grow with the capture. While no batch is free the reading thread decodes the next packets at once, as it would alone,
// and no pass of them is needed: so many jobs are so many threads, and none of them waits for another while there is work.
#pragma once
#include <deque>
#include <memory>
#include <vector>

#include "app/ordered_writer.h"
#include "app/packet_run.h"
#include "host/state_log.h"

namespace qxview {

class PacketWorkers {
 public:
  // The run whose packets they are; what `prepare` makes writes to `out`.
  PacketWorkers(PacketRun& run, Output& out)
      : run_(run), out_(out), moved_(monitor_), writer_(out, monitor_, moved_), work_(monitor_) {}
  ~PacketWorkers();

  // So many threads with this one. False when there is no memory, or no thread: then nothing was started.
  bool Start(int32_t count, const PacketRun::Prepare& prepare);

  // Whether the next packet is one to hand on. Else the run decodes it, and then calls HandleOwn.
  bool HandsOn();
  bool HandleOwn(const FrameRecord* record, const CaptureFrame& frame, int32_t handled);

  // Around the pass of a packet, whose look-ups are noted: it is handed on. False when nothing more can be written.
  bool BeginPacket(const CaptureFrame& frame);
  bool EndPacket();
  // The look-ups of the packet so far are of no use.
  void ForgetAnswers() { current_->log.Cut(current_->packets.back().answers); }
  // In place of EndPacket: it is not handed on. The run makes of it what it wants, and then calls HandleOwn.
  void TakeBack();

  // Decodes and writes what was handed on; false when it could not be written.
  bool Drain();
  bool Finish();

 private:
  // What a packet has of its own: a cache line, which another core fetches.
  struct alignas(64) Packet {
    const uint8_t* data;   // the batch's; null: it has a record there
    uint64_t number;
    int64_t nanoseconds, before, shownBefore;
    uint32_t dataLength, wireLength;
    uint32_t record, answers, text;   // where they begin in the batch; the text stands in front of the packet and ends there
    uint32_t like;                    // the packet's others
  };
  // What it has in common with those before it.
  struct Others {
    CaptureFrame frame;   // without what is the packet's own
    uint32_t missing;     // of the captured bytes, at `data`
    int64_t first;        // of the times
  };
  struct Batch {
    uint64_t place = 0;
    size_t count = 0, bytes = 0;   // of packets, those that this thread made rows of among them
    KeptBytes kept;
    std::vector<uint8_t> records;
    std::vector<Packet> packets;
    std::vector<Others> others;
    std::vector<char> text;   // the rows that this thread made
    StateLog log;
  };
  struct Worker {
    Worker(PacketWorkers& all, OrderedWriter& writer) : workers(all), lane(writer) {}
    PacketWorkers& workers;
    OrderedWriter::Lane lane;
    std::unique_ptr<PacketRun> run;
    PacketRun::Handler handle;
    Thread thread;
  };

  // Few enough that what is written of them stays in the processor's own cache, and so many that one is worth a thread's waking.
  struct BatchSize {
    size_t packets, bytes;
  };
  static constexpr BatchSize kOfLines = {32, 16u << 10}, kOfRows = {512, 256u << 10};
  static constexpr size_t kBatchAnswers = 64u << 10;
  static constexpr size_t kBatchesEach = 5;   // of a thread
  static constexpr size_t kBatchesToWake = 3;   // for one alone a thread would soon sleep again
  static constexpr size_t kFewFilled = OrderedWriter::kMostBuffers / 2;

  bool AddWorker(const PacketRun::Prepare& prepare, bool isOwn);
  void Work(Worker& worker);
  void DecodeNext(Worker& worker);
  bool DecodeBatch(Worker& worker, Batch& batch);
  void Ship();
  void EndOwn();
  bool EndsBatch(size_t bytes);
  uint32_t PlaceOfOthers(const CaptureFrame& frame);
  static CaptureFrame FrameOf(const Packet& packet, const Others& others);
  void AddRecord(const FrameRecord* record);
  static int32_t PutRows(void* workers, const char* bytes, int32_t length);

  PacketRun& run_;
  Output& out_;
  Monitor monitor_;
  News moved_;   // a turn ended, or a batch is free
  OrderedWriter writer_;
  News work_;   // to workers: there is a batch, or none comes any more
  std::vector<std::unique_ptr<Batch>> batches_;   // all there are
  std::vector<Batch*> free_;
  std::deque<Batch*> ready_;
  bool closing_ = false;
  BatchSize most_{};
  Batch* current_ = nullptr;   // being filled
  uint64_t places_ = 0;        // given out
  std::vector<std::unique_ptr<Worker>> workers_;   // the first is the thread that reads, for batches that nobody took
  // Of this thread's run, for what is not handed on. Rows go into the batch where one is being filled; else, like lines, where the
  // first worker writes.
  PacketRun::Handler own_;
  Output rows_{{this, PutRows, [](void*, int64_t) { return int32_t{0}; }, -1}};
  bool ownBegan_ = false;
  size_t ownPackets_ = 0, ownBytes_ = 0;   // since then
};

}  // namespace qxview
