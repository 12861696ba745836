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
  bool BeginPacket(const FrameRecord* record, const CaptureFrame& frame);
  bool EndPacket();
  // Between these, where headers were read: what they told goes with the packet in place of the look-ups so far.
  void NoteHeaders();

  // Decodes and writes what was handed on; false when it could not be written.
  bool Drain();
  bool Finish();

 private:
  struct Packet {
    CaptureFrame frame;
    PacketTimes times;
    size_t record, answers;   // where they begin in the batch
  };
  struct Batch {
    uint64_t place = 0;
    std::vector<uint8_t> records;
    std::vector<Packet> packets;
    std::vector<PacketState> headers;   // of each packet, where they are noted; pointers are as far from the frame as in `records`
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
  static bool Make(PacketRun& run, const Batch& batch, size_t at, const FrameRecord* record, StateReplay& replay, int32_t* handled);
  void Ship();
  void EndOwn();
  void TakeAlong(const uint8_t** bytes, int32_t length);

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
  PacketRun::Handler own_;   // of this thread's run, for what is not handed on; it writes where the first worker does
  bool ownBegan_ = false;
  size_t ownPackets_ = 0, ownBytes_ = 0;   // since then
};

}  // namespace qxview
