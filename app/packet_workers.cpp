#include "app/packet_workers.h"

#include <cstring>
#include <exception>

namespace qxview {
namespace {

void Prefetch(const uint8_t* record) {
  constexpr int32_t kLines = 6, kLineSize = 64;
  for (int32_t i = 0; i < kLines; ++i) __builtin_prefetch(record + i * kLineSize);
}

}  // namespace

bool PacketWorkers::AddWorker(const PacketRun::Prepare& prepare, bool isOwn) {
  auto worker = std::make_unique<Worker>(*this, writer_);
  worker->run = run_.MakeWorker(isOwn);
  if (!worker->run) return false;
  worker->handle = prepare(*worker->run, worker->out);
  workers_.push_back(std::move(worker));
  return true;
}

bool PacketWorkers::Start(int32_t count, const PacketRun::Prepare& prepare) {
  for (int32_t i = 0; i < count; ++i) {
    if (!AddWorker(prepare, i == 0)) return workers_.clear(), false;
  }
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

// Takes a batch to fill; false when nothing more can be written.
bool PacketWorkers::AwaitBatch() {
  InMonitor inside(monitor_);
  while (free_.empty() && !writer_.Failed()) {
    if (ready_.empty()) moved_.Wait(); else DecodeNext(*workers_.front());
  }
  if (writer_.Failed()) return false;
  current_ = free_.back();
  free_.pop_back();
  return true;
}

bool PacketWorkers::BeginPacket() {
  if (!current_) {
    if (!AwaitBatch()) return false;
    current_->place = places_++;
    current_->records.clear();
    current_->packets.clear();
    current_->log.Clear();
  }
  Packet packet{};
  packet.answers = current_->log.End();
  current_->packets.push_back(std::move(packet));
  current_->log.Record(run_.GetSession().GetEngine());
  return true;
}

bool PacketWorkers::EndPacket(const FrameRecord* record, const CaptureFrame& frame, const PacketListing* listing) {
  current_->log.Record(nullptr);
  if (!current_->log.Complete()) return Tell("no memory for what the packets' look-ups gave"), writer_.Fail(), false;
  constexpr size_t kAlignment = 8;
  Packet& packet = current_->packets.back();
  packet.frame = frame;
  packet.frame.data = nullptr;   // the reader's, like these
  packet.frame.record = nullptr;
  packet.frame.interface = nullptr;
  packet.frame.options = {};
  packet.times = run_.Times();
  if (listing) packet.listing = std::make_unique<PacketListing>(*listing);
  std::vector<uint8_t>& records = current_->records;
  packet.record = (records.size() + kAlignment - 1) / kAlignment * kAlignment;
  records.resize(packet.record);
  const auto* bytes = reinterpret_cast<const uint8_t*>(record);
  records.insert(records.end(), bytes, bytes + record->recordLength);
  const bool isFull = current_->packets.size() >= kBatchPackets || records.size() >= kBatchBytes;
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
    worker.out.Flush();
    writer_.End(worker.lane);
  }
  free_.push_back(batch);
  moved_.Changed();
}

bool PacketWorkers::DecodeBatch(Worker& worker, Batch& batch) {
  Session& session = worker.run->GetSession();
  StateReplay replay(batch.log, session.GetEngine());
  for (size_t i = 0; i < batch.packets.size(); ++i) {
    Packet& packet = batch.packets[i];
    const auto* record = reinterpret_cast<const FrameRecord*>(batch.records.data() + packet.record);
    // Another processor wrote it.
    if (i + 1 < batch.packets.size()) Prefetch(batch.records.data() + batch.packets[i + 1].record);
    replay.Seek(packet.answers);
    worker.run->TakePacket(packet.frame, packet.times, packet.listing.get());
    if (!worker.handle(record, packet.frame, session.Decode(record))) return false;
  }
  return true;
}

}  // namespace qxview
