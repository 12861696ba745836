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
  own_ = prepare(run_, run_.Summarizes() ? rows_ : workers_.front()->lane.out);
  most_ = run_.MakesRows() ? kOfRows : kOfLines;
  for (size_t i = 0; i < kBatchesEach * static_cast<size_t>(count); ++i) {
    batches_.push_back(std::make_unique<Batch>());
    batches_.back()->packets.reserve(most_.packets);
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
  current_->count = current_->bytes = 0;
  current_->records.clear();
  current_->packets.clear();
  current_->others.clear();
  current_->text.clear();
  current_->log.Clear();
  return true;
}

int32_t PacketWorkers::PutRows(void* workers, const char* bytes, int32_t length) {
  PacketWorkers& self = *static_cast<PacketWorkers*>(workers);
  Output& out = self.workers_.front()->lane.out;
  if (!self.current_) return out.PutPrefixed({bytes, static_cast<size_t>(length)}), !out.Failed();
  try {
    self.current_->text.insert(self.current_->text.end(), bytes, bytes + length);
  } catch (const std::bad_alloc&) {
    return 0;
  }
  return 1;
}

bool PacketWorkers::HandleOwn(const FrameRecord* record, const CaptureFrame& frame, int32_t handled) {
  if (current_) {
    if (!own_(record, frame, handled)) writer_.Fail();
    rows_.Flush();
    return EndsBatch(record->recordLength);
  }
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
  rows_.Flush();
  writer_.End(workers_.front()->lane);
}

// Those of the packet before, most of the time.
uint32_t PacketWorkers::PlaceOfOthers(const CaptureFrame& frame) {
  std::vector<Others>& others = current_->others;
  const uint32_t missing = frame.capturedLength - frame.dataLength;
  const int64_t first = run_.Times().first;
  if (!others.empty()) {
    const CaptureFrame& last = others.back().frame;
    if (last.linkType == frame.linkType && last.interfaceIndex == frame.interfaceIndex && last.direction == frame.direction &&
        last.receiveErrors == frame.receiveErrors && last.checkSequenceLength == frame.checkSequenceLength &&
        last.capture == frame.capture && last.file == frame.file && others.back().missing == missing &&
        others.back().first == first) {
      return static_cast<uint32_t>(others.size() - 1);
    }
  }
  Others& added = others.emplace_back(Others{frame, missing, first});
  added.frame.record = nullptr;   // the reader's, like these
  added.frame.interface = nullptr;
  added.frame.options = {};
  return static_cast<uint32_t>(others.size() - 1);
}

CaptureFrame PacketWorkers::FrameOf(const Packet& packet, const Others& others) {
  CaptureFrame frame = others.frame;
  frame.number = packet.number;
  frame.nanoseconds = packet.nanoseconds;
  frame.data = packet.data;
  frame.dataLength = packet.dataLength;
  frame.capturedLength = packet.dataLength + others.missing;
  frame.wireLength = packet.wireLength;
  return frame;
}

bool PacketWorkers::BeginPacket(const CaptureFrame& frame) {
  if (writer_.Failed()) return false;
  const PacketTimes& times = run_.Times();
  const auto answers = static_cast<uint32_t>(current_->log.End()), text = static_cast<uint32_t>(current_->text.size());
  const Packet& packet = current_->packets.emplace_back(Packet{
      frame.data, frame.number, times.now, times.before, times.shownBefore, frame.dataLength, frame.wireLength, 0, answers, text,
      PlaceOfOthers(frame)});
  if (!run_.Keep(frame, &current_->kept)) AddRecord(run_.RecordToShow(frame));
  FetchToWrite(&packet + 1, sizeof packet);
  current_->log.Record(run_.GetSession().GetEngine());
  return true;
}

void PacketWorkers::AddRecord(const FrameRecord* record) {
  constexpr size_t kAlignment = 8;
  std::vector<uint8_t>& records = current_->records;
  records.resize((records.size() + kAlignment - 1) / kAlignment * kAlignment);
  current_->packets.back().record = static_cast<uint32_t>(records.size());
  current_->packets.back().data = nullptr;
  const auto* bytes = reinterpret_cast<const uint8_t*>(record);
  records.insert(records.end(), bytes, bytes + record->recordLength);
}

bool PacketWorkers::EndPacket() {
  current_->log.Record(nullptr);
  if (!current_->log.Complete()) return Tell("no memory for what the packets' look-ups gave"), writer_.Fail(), false;
  return EndsBatch(current_->packets.back().dataLength);
}

void PacketWorkers::TakeBack() {
  current_->log.Record(nullptr);
  ForgetAnswers();
  current_->packets.pop_back();
}

// With a packet of so many bytes more.
bool PacketWorkers::EndsBatch(size_t bytes) {
  current_->bytes += bytes;
  const bool isFull = ++current_->count >= most_.packets || current_->bytes >= most_.bytes;
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
    batch->kept.clear();
    writer_.End(worker.lane);
  }
  free_.push_back(batch);
  moved_.Changed();
}

bool PacketWorkers::DecodeBatch(Worker& worker, Batch& batch) {
  PacketRun& run = *worker.run;
  StateReplay replay(batch.log, run.GetSession().GetEngine());
  size_t text = 0;
  const auto putText = [&](size_t end) {
    if (end > text) worker.lane.out.PutPrefixed({batch.text.data() + text, end - text});
    text = end;
  };
  for (size_t i = 0; i < batch.packets.size(); ++i) {
    const Packet& packet = batch.packets[i];
    const Others& others = batch.others[packet.like];
    if (i + 1 < batch.packets.size()) FetchToRead(batch.packets[i + 1].data, kMostAhead);
    putText(packet.text);
    const CaptureFrame frame = FrameOf(packet, others);
    run.TakePacket(frame, {packet.nanoseconds, others.first, packet.before, packet.shownBefore});
    replay.Seek(packet.answers);
    const uint8_t* const copy = packet.data ? nullptr : batch.records.data() + packet.record;
    const FrameRecord* const record = copy ? reinterpret_cast<const FrameRecord*>(copy) : run.BuildRecord(frame);
    int32_t handled;
    if (!run.Make(record, frame, &handled) || !worker.handle(record, frame, handled)) return false;
  }
  putText(batch.text.size());
  return true;
}

}  // namespace qxview
