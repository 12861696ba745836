#include "app/packet_workers.h"

#include <cstring>
#include <exception>

namespace qxview {
namespace {

constexpr int32_t kCacheLine = 64;
constexpr int32_t kMostAhead = 512;   // bytes of a record

// What another processor wrote, or read last, comes from there while this one is at something else.
void FetchToRead(const void* first, size_t size) {
  for (size_t at = 0; at < size; at += kCacheLine) __builtin_prefetch(static_cast<const uint8_t*>(first) + at);
}
void FetchToWrite(const void* first, size_t size) {
  for (size_t at = 0; at < size; at += kCacheLine) __builtin_prefetch(static_cast<const uint8_t*>(first) + at, 1);
}

}  // namespace

bool PacketWorkers::AddWorker(const PacketRun::Prepare& prepare, bool isOwn) {
  auto worker = std::make_unique<Worker>(*this, writer_);
  worker->run = run_.MakeWorker(isOwn);
  if (!worker->run) return false;
  worker->handle = prepare(*worker->run, worker->lane.out);
  workers_.push_back(std::move(worker));
  return true;
}

bool PacketWorkers::Start(int32_t count, const PacketRun::Prepare& prepare) {
  for (int32_t i = 0; i < count; ++i) {
    if (!AddWorker(prepare, i == 0)) return workers_.clear(), false;
  }
  own_ = prepare(run_, workers_.front()->lane.out);
  most_ = run_.MakesRows() ? kOfRows : kOfLines;
  for (size_t i = 0; i < kBatchesEach * static_cast<size_t>(count); ++i) {
    batches_.push_back(std::make_unique<Batch>());
    free_.push_back(batches_.back().get());
  }
  size_t started = 1;
  for (; started < workers_.size(); ++started) {
    const auto run = [](void* with) { static_cast<Worker*>(with)->workers.Work(*static_cast<Worker*>(with)); };
    if (!workers_[started]->thread.Start(run, workers_[started].get())) break;   // fewer of them do, too
  }
  if (started == 1) workers_.clear();
  return started > 1;
}

// With much of its text held this thread rather helps with what that waits for: text that stays in the processor's cache until it
// is written costs less, and without a buffer it would wait.
bool PacketWorkers::HandsOn() {
  if (current_ || ownBegan_) return !ownBegan_;
  Worker& first = *workers_.front();
  {
    InMonitor inside(monitor_);
    while (free_.empty() && !ready_.empty() && first.lane.Filled() > kFewFilled && !writer_.Failed()) DecodeNext(first);
    if (!free_.empty()) {
      current_ = free_.back();
      free_.pop_back();
    }
  }
  if (!current_) {
    ownBegan_ = true;
    first.lane.place = places_++;
    return false;
  }
  current_->place = places_++;
  current_->records.clear();
  current_->packets.clear();
  current_->headers.clear();
  current_->log.Clear();
  return true;
}

bool PacketWorkers::HandleOwn(const FrameRecord* record, const CaptureFrame& frame, int32_t handled) {
  ++ownPackets_;
  ownBytes_ += record->recordLength;
  if (!own_(record, frame, handled)) writer_.Fail();
  if (ownPackets_ >= most_.packets || ownBytes_ >= most_.bytes) EndOwn();
  return !writer_.Failed();
}

void PacketWorkers::EndOwn() {
  if (!ownBegan_) return;
  ownBegan_ = false;
  ownPackets_ = ownBytes_ = 0;
  writer_.End(workers_.front()->lane);
}

bool PacketWorkers::BeginPacket(const FrameRecord* record, const CaptureFrame& frame) {
  if (writer_.Failed()) return false;
  constexpr size_t kAlignment = 8;
  std::vector<uint8_t>& records = current_->records;
  Packet& packet = current_->packets.emplace_back();
  packet.frame = frame;
  packet.frame.data = nullptr;   // the reader's, like these
  packet.frame.record = nullptr;
  packet.frame.interface = nullptr;
  packet.frame.options = {};
  packet.times = run_.Times();
  packet.record = (records.size() + kAlignment - 1) / kAlignment * kAlignment;
  packet.answers = current_->log.End();
  records.resize(packet.record);
  const auto* bytes = reinterpret_cast<const uint8_t*>(record);
  records.insert(records.end(), bytes, bytes + record->recordLength);
  FetchToWrite(records.data() + records.size(), kMostAhead);
  FetchToWrite(&packet + 1, sizeof packet);
  current_->log.Record(run_.GetSession().GetEngine());
  return true;
}

// Bytes that are not the record's own, since something was opened for them, are put behind it.
void PacketWorkers::TakeAlong(const uint8_t** bytes, int32_t length) {
  const uintptr_t first = reinterpret_cast<uintptr_t>(current_->headers.back().frame);
  std::vector<uint8_t>& records = current_->records;
  const size_t place = records.size() - current_->packets.back().record;
  records.insert(records.end(), *bytes, *bytes + length);
  *bytes = reinterpret_cast<const uint8_t*>(first + place);
}

void PacketWorkers::NoteHeaders() {
  PacketState& packet = current_->headers.emplace_back(run_.GetSession().Context().packet);
  FetchToWrite(&packet + 1, sizeof packet);
  const uintptr_t first = reinterpret_cast<uintptr_t>(packet.frame);
  const uint32_t most = packet.frame->recordLength;
  const auto take = [&](const uint8_t*& bytes, int32_t length) {
    const uintptr_t at = reinterpret_cast<uintptr_t>(bytes) - first;
    const bool isOwn = at <= most && static_cast<uint32_t>(length) <= most - at;
    if (!isOwn && bytes && length >= 0) TakeAlong(&bytes, length);
  };
  take(packet.payload, packet.payloadLength);
  take(packet.segment.payload, packet.segment.length);
  take(packet.reached.bytes, packet.reached.length);
  take(packet.carrier.bytes, packet.carrier.length);
  current_->packets.back().answers = current_->log.End();
}

bool PacketWorkers::EndPacket() {
  current_->log.Record(nullptr);
  if (!current_->log.Complete()) return Tell("no memory for what the packets' look-ups gave"), writer_.Fail(), false;
  const bool isFull = current_->packets.size() >= most_.packets || current_->records.size() >= most_.bytes;
  if (isFull || current_->log.End() >= kBatchAnswers) Ship();
  return !writer_.Failed();
}

void PacketWorkers::Ship() {
  if (!current_) return;
  InMonitor inside(monitor_);
  ready_.push_back(current_);
  current_ = nullptr;
  if (ready_.size() >= kBatchesToWake) work_.ChangedForOne();   // fewer are this thread's, if nobody takes them
}

bool PacketWorkers::Drain() {
  EndOwn();
  Ship();
  InMonitor inside(monitor_);
  while (writer_.Turn() < places_ && !writer_.Failed()) {
    if (ready_.empty()) moved_.Wait(); else DecodeNext(*workers_.front());
  }
  return !writer_.Failed();
}

// Where memory has ended in this thread, the turn that it had never ends.
PacketWorkers::~PacketWorkers() {
  if (std::uncaught_exceptions() > 0) writer_.Fail();
  Finish();
}

bool PacketWorkers::Finish() {
  if (workers_.empty()) return true;
  const bool written = Drain();
  for (const auto& worker : workers_) {
    if (written) run_.NoteShort(worker->run->GetSession());   // else it may be at work still
  }
  {
    InMonitor inside(monitor_);
    closing_ = true;
    work_.Changed();
  }
  workers_.clear();
  if (!written) out_.File()->failed = true;
  return written;
}

void PacketWorkers::Work(Worker& worker) {
  InMonitor inside(monitor_);
  for (;;) {
    while (ready_.empty() && !closing_) work_.Wait();
    if (ready_.empty()) return;
    DecodeNext(worker);
  }
}

namespace {

class OutsideMonitor {
 public:
  explicit OutsideMonitor(Monitor& monitor) : monitor_(monitor) { monitor_.Leave(); }
  ~OutsideMonitor() { monitor_.Enter(); }
  OutsideMonitor(const OutsideMonitor&) = delete;
  OutsideMonitor& operator=(const OutsideMonitor&) = delete;

 private:
  Monitor& monitor_;
};

}  // namespace

// Inside the monitor, which is left meanwhile.
void PacketWorkers::DecodeNext(Worker& worker) {
  Batch* const batch = ready_.front();
  ready_.pop_front();
  {
    const OutsideMonitor outside(monitor_);
    worker.lane.place = batch->place;
    if (!writer_.Failed() && !DecodeBatch(worker, *batch)) writer_.Fail();
    writer_.End(worker.lane);
  }
  free_.push_back(batch);
  moved_.Changed();
}

bool PacketWorkers::Make(PacketRun& run, const Batch& batch, size_t at, const FrameRecord* record, StateReplay& replay,
                         int32_t* handled) {
  const Packet& packet = batch.packets[at];
  run.TakePacket(packet.frame, packet.times);
  replay.Seek(packet.answers);
  *handled = 0;
  if (!batch.headers.empty()) return run.GetSession().TakeHeaders(batch.headers[at], record), true;
  return run.Make(record, packet.frame, handled);
}

bool PacketWorkers::DecodeBatch(Worker& worker, Batch& batch) {
  StateReplay replay(batch.log, worker.run->GetSession().GetEngine());
  for (size_t i = 0; i < batch.packets.size(); ++i) {
    const Packet& packet = batch.packets[i];
    const auto* record = reinterpret_cast<const FrameRecord*>(batch.records.data() + packet.record);
    if (i + 1 < batch.packets.size()) FetchToRead(batch.records.data() + batch.packets[i + 1].record, kMostAhead);
    if (i + 1 < batch.headers.size()) FetchToRead(&batch.headers[i + 1], sizeof(PacketState));
    int32_t handled;
    if (!Make(*worker.run, batch, i, record, replay, &handled) || !worker.handle(record, packet.frame, handled)) return false;
  }
  return true;
}

}  // namespace qxview
