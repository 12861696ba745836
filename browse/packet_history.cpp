#include "browse/packet_history.h"

#include <algorithm>
#include <cstring>

namespace qxview {

std::unique_ptr<PacketHistory> PacketHistory::Create(const HostOptions& options, const LibraryLoader& loader, AskPacket ask,
                                                     std::string* message) {
  std::unique_ptr<PacketHistory> history(new PacketHistory);
  bool fileFault = false;
  history->host_ = StandaloneHost::Create(options, message, &fileFault);
  if (!history->host_) return nullptr;
  history->session_ = Session::Create(history->host_->Record(), loader);
  if (!history->session_) return *message = "no memory for a view", nullptr;
  history->host_->Attach(history->session_.get());
  const char* path = history->session_->GetEngine()->settings.tlsKeyLog;
  if (path[0] && !ReadKeyLog(history->session_->GetView(), path, message)) return nullptr;
  history->keyLog_ = std::make_unique<KeyLog>(history->session_->GetView());
  history->ask_ = std::move(ask);
  history->chunks_.push_back(0);
  return history;
}

bool PacketHistory::Open(const PacketIndex& index) {
  std::string message;
  reader_ = index.OpenReader(&message);
  if (!reader_) return false;
  reader_->HandSecretsTo([this](uint32_t kind, const uint8_t* piece, size_t length, bool isLast) {
    if (kind != kKeyLogSecrets) return;
    keyLog_->Take({reinterpret_cast<const char*>(piece), length});
    if (!isLast) return;
    keyLog_->Finish();
    *keyLog_ = KeyLog(session_->GetView());
  });
  return true;
}

bool PacketHistory::Learn(const CaptureFrame& frame) {
  if (starts_.empty()) current_.Record(session_->GetEngine());
  const FrameRecord* record = frame.record ? frame.record : builder_.Build(frame);
  Starts starts{static_cast<uint32_t>(current_.End()), 0};
  session_->Pass(record);
  starts.row = static_cast<uint32_t>(current_.End());
  ask_(*session_, record, frame.number);
  host_->FinishPacket();
  if (!current_.Complete() || current_.End() > UINT32_MAX) return false;
  starts_.push_back(starts);
  ++known_;
  return starts_.size() < kChunk || Keep();
}

// Moves the chunk out of the log that is recorded to.
bool PacketHistory::Keep() {
  current_.Record(nullptr);
  std::vector<uint8_t> bytes(starts_.size() * sizeof(Starts));
  std::memcpy(bytes.data(), starts_.data(), bytes.size());
  bytes.insert(bytes.end(), current_.Bytes().begin(), current_.Bytes().end());
  current_.Clear();
  starts_.clear();
  const uint64_t end = chunks_.back() + bytes.size();
  if (!file_ && end > kMostInMemory) {
    std::string reason;
    file_ = TemporaryFile::Create(&reason);
    if (!file_) return known_ -= kChunk, false;
  }
  if (!file_) {
    memory_.insert(memory_.end(), bytes.begin(), bytes.end());
  } else if (!file_->Append(bytes.data(), bytes.size())) {
    return known_ -= kChunk, false;
  }
  chunks_.push_back(end);
  return true;
}

bool PacketHistory::Advance(const PacketIndex& index, int32_t packets) {
  if (!whole_ || known_ >= index.Count()) return false;
  if (!reader_ && !Open(index)) return whole_ = false;
  CaptureFrame frame;
  for (int32_t i = 0; i < packets && known_ < index.Count(); ++i) {
    if (reader_->Next(&frame) != ReadResult::kFrame || !Learn(frame)) return whole_ = false;
  }
  return true;
}

bool PacketHistory::Read(uint64_t at, uint8_t* out, size_t length) const {
  if (at >= memory_.size()) return file_ && file_->ReadAt(at - memory_.size(), out, length) == length;
  std::memcpy(out, memory_.data() + at, length);
  return true;
}

PacketHistory::Answers PacketHistory::Find(uint64_t number) {
  if (number < 1 || number > known_) return {};
  const uint64_t chunk = (number - 1) / kChunk;
  const size_t place = (number - 1) % kChunk;
  if (chunk + 1 == chunks_.size()) return {&current_, starts_[place].tree, starts_[place].row};
  Loaded* oldest = loaded_;
  for (Loaded& loaded : loaded_) {
    if (loaded.used < oldest->used) oldest = &loaded;
    if (loaded.chunk == chunk) {
      oldest = &loaded;
      break;
    }
  }
  oldest->used = ++uses_;
  if (oldest->chunk != chunk) {
    std::vector<uint8_t> bytes(static_cast<size_t>(chunks_[chunk + 1] - chunks_[chunk]));
    oldest->chunk = UINT64_MAX;
    if (!Read(chunks_[chunk], bytes.data(), bytes.size())) return {};
    constexpr size_t kStarts = kChunk * sizeof(Starts);
    oldest->starts.resize(kChunk);
    std::memcpy(oldest->starts.data(), bytes.data(), kStarts);
    oldest->log.Take({bytes.begin() + kStarts, bytes.end()});
    oldest->chunk = chunk;
  }
  return {&oldest->log, oldest->starts[place].tree, oldest->starts[place].row};
}

}  // namespace qxview
