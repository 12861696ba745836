// Packets decoded on several threads, and what a command writes of them in the packets' order.
//
// The thread that reads passes every packet through in order, without lines, for what later ones need of it; what that packet's
// look-ups of state gave goes with the packet to whoever decodes it (host/state_log.h). So the workers' lines are those that one
// thread would have made. Packets travel in batches; there are so many of these, and what is written ahead of its turn is held to a
// bound, so memory does not grow with the capture. While no batch is free the reading thread decodes one itself: so many jobs are
// so many threads, and none of them waits for another while there is work.
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

  // Around the pass of a packet: its look-ups are noted, and it is handed on with its listing, where it has one. False when
  // nothing more can be written.
  bool BeginPacket();
  bool EndPacket(const FrameRecord* record, const CaptureFrame& frame, const PacketListing* listing);

  // Decodes and writes what was handed on; false when it could not be written.
  bool Drain();
  bool Finish();

 private:
  struct Packet {
    CaptureFrame frame;
    PacketTimes times;
    size_t record, answers;   // where they begin in the batch
    std::unique_ptr<PacketListing> listing;
  };
  struct Batch {
    uint64_t place = 0;
    std::vector<uint8_t> records;
    std::vector<Packet> packets;
    StateLog log;
  };
  struct Worker {
    Worker(PacketWorkers& all, OrderedWriter& writer) : workers(all), lane(writer), out(OrderedWriter::SinkOf(&lane)) {}
    PacketWorkers& workers;
    OrderedWriter::Lane lane;
    Output out;
    std::unique_ptr<PacketRun> run;
    PacketRun::Handler handle;
    Thread thread;
  };

  // Few enough that what is written of them stays in the processor's own cache.
  static constexpr size_t kBatchPackets = 32, kBatchBytes = 16u << 10, kBatchAnswers = 64u << 10;
  static constexpr size_t kBatchesEach = 5;   // of a thread
  static constexpr size_t kBatchesToWake = 3;   // for one alone a thread would soon sleep again

  bool AddWorker(const PacketRun::Prepare& prepare, bool isOwn);
  void Work(Worker& worker);
  void DecodeNext(Worker& worker);
  bool DecodeBatch(Worker& worker, Batch& batch);
  bool AwaitBatch();
  void Ship();

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
  Batch* current_ = nullptr;   // being filled
  uint64_t places_ = 0;        // given out
  std::vector<std::unique_ptr<Worker>> workers_;   // the first is the thread that reads
};

}  // namespace qxview
