#include "app/packet_workers.h"

#include <cstring>

namespace qxview {

bool PacketWorkers::Start(int32_t count, const PacketRun::Prepare& prepare) {
  for (int32_t i = 0; i < count; ++i) {
    auto worker = std::make_unique<Worker>(*this, writer_);
    worker->run = run_.MakeWorker();
    if (!worker->run) return workers_.clear(), false;
    worker->handle = prepare(*worker->run, worker->out);
    workers_.push_back(std::move(worker));
  }
  for (size_t i = 0; i < kBatchesEach * static_cast<size_t>(count); ++i) {
    batches_.push_back(std::make_unique<Batch>());
    free_.push_back(batches_.back().get());
  }
  for (const auto& worker : workers_) {
    const auto run = [](void* with) { static_cast<Worker*>(with)->workers.Work(*static_cast<Worker*>(with)); };
    if (worker->thread.Start(run, worker.get())) continue;
    if (worker == workers_.front()) return workers_.clear(), false;
    break;   // fewer of them do, too
  }
  return true;
}

bool PacketWorkers::BeginPacket() {
  if (!current_) {
    InMonitor inside(monitor_);
    while ((free_.empty() || places_ - writer_.Turn() >= kAheadEach * workers_.size()) && !writer_.Failed()) monitor_.Wait();
    if (writer_.Failed()) return false;
    current_ = free_.back();
    free_.pop_back();
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
  if (current_->packets.size() >= kBatchPackets || records.size() >= kBatchBytes) Ship();
  return !writer_.Failed();
}

void PacketWorkers::Ship() {
  if (!current_) return;
  InMonitor inside(monitor_);
  ready_.push_back(current_);
  current_ = nullptr;
  monitor_.Changed();
}

bool PacketWorkers::Drain() {
  Ship();
  InMonitor inside(monitor_);
  while (writer_.Turn() < places_ && !writer_.Failed()) monitor_.Wait();
  return !writer_.Failed();
}

bool PacketWorkers::Finish() {
  if (workers_.empty()) return true;
  const bool written = Drain();
  {
    InMonitor inside(monitor_);
    closing_ = true;
    monitor_.Changed();
  }
  workers_.clear();
  if (!written) out_.File()->failed = true;
  return written;
}

void PacketWorkers::Work(Worker& worker) {
  for (;;) {
    Batch* batch;
    {
      InMonitor inside(monitor_);
      while (ready_.empty() && !closing_) monitor_.Wait();
      if (ready_.empty()) return;
      batch = ready_.front();
      ready_.pop_front();
    }
    worker.lane.place = batch->place;
    if (!writer_.Failed() && !DecodeBatch(worker, *batch)) writer_.Fail();
    worker.out.Flush();
    writer_.End(worker.lane);
    InMonitor inside(monitor_);
    free_.push_back(batch);
    monitor_.Changed();
  }
}

bool PacketWorkers::DecodeBatch(Worker& worker, Batch& batch) {
  Session& session = worker.run->GetSession();
  StateReplay replay(batch.log, session.GetEngine());
  for (Packet& packet : batch.packets) {
    const auto* record = reinterpret_cast<const FrameRecord*>(batch.records.data() + packet.record);
    replay.Seek(packet.answers);
    worker.run->TakePacket(packet.frame, packet.times, packet.listing.get());
    if (!worker.handle(record, packet.frame, session.Decode(record))) return false;
  }
  return true;
}

}  // namespace qxview
