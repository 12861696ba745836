#include "browse/packet_index.h"

#include <algorithm>

namespace qxview {
namespace {

// What a compressed capture holds, for the temporary file.
class InflatedInput final : public CaptureInput {
 public:
  explicit InflatedInput(std::unique_ptr<ByteSource> source) : source_(std::move(source)) {}
  Given Take(uint8_t* out, size_t size, size_t* length) override {
    const uint8_t* bytes = source_->Peek(1);
    if (!bytes) return Given::kEnd;
    *length = std::min(size, source_->Remaining());
    std::copy(bytes, bytes + *length, out);
    source_->Skip(*length);
    return Given::kSome;
  }
  std::string Failure() const override { return source_->Failure(); }

 private:
  std::unique_ptr<ByteSource> source_;
};

}  // namespace

bool PacketIndex::Open(const std::string& path, std::unique_ptr<CaptureInput> input, std::string* message) {
  path_ = name_ = path;
  input_ = std::move(input);
  if (input_) name_ = path == "-" ? "standard input" : path;
  if (!input_) {
    std::unique_ptr<ByteSource> source = OpenFileSource(path.c_str(), message);
    if (source) source = OpenInflated(std::move(source), message);
    if (!source) return *message = name_ + ": " + *message, false;
    if (source->IsCompressed() || !source->Seek(0)) {
      input_ = std::make_unique<InflatedInput>(std::move(source));
    }
  }
  if (input_) {
    kept_ = TemporaryFile::Create(message);
    return kept_ != nullptr;
  }
  reader_ = OpenReader(message);
  if (reader_) reader_->KeepForSeek();
  return reader_ != nullptr;
}

std::unique_ptr<CaptureReader> PacketIndex::OpenReader(std::string* message) const {
  return kept_ ? OpenCapture(OpenTemporary(kept_), name_.c_str(), message) : OpenCapture(path_.c_str(), message);
}

// Keeps what the input has; true when there was something.
bool PacketIndex::TakeInput() {
  uint8_t bytes[65536];
  size_t length = 0;
  bool some = false;
  for (int32_t pieces = 0; input_ && pieces < 16; ++pieces) {
    const CaptureInput::Given given = input_->Take(bytes, sizeof bytes, &length);
    if (given == CaptureInput::Given::kNothingNow) break;
    if (given == CaptureInput::Given::kSome && kept_->Append(bytes, length)) {
      some = true;
      continue;
    }
    fault_ = given == CaptureInput::Given::kEnd ? input_->Failure() : "the temporary file takes no more";
    if (!fault_.empty()) fault_ = name_ + ": " + fault_;
    input_ = nullptr;
    some = true;   // the end is something to look at
  }
  return some;
}

// Opens the reader once the kind of the capture can be told.
bool PacketIndex::Begin() {
  std::string message;
  reader_ = OpenReader(&message);
  if (reader_) reader_->KeepForSeek();
  if (!reader_ && !input_) {
    if (fault_.empty()) fault_ = message;
    ended_ = caughtUp_ = true;
  }
  return reader_ != nullptr;
}

// Brings the reader to what follows the last packet; also behind an end that was one for a while.
bool PacketIndex::GoOn() {
  CaptureFrame frame;
  if (positions_.Count() == 0) return !caughtUp_ || reader_->Seek(reader_->FramePosition(), 1);
  if (!moved_ && !caughtUp_) return true;
  return reader_->Seek(positions_.Last(), positions_.Count()) && reader_->Next(&frame) == ReadResult::kFrame;
}

bool PacketIndex::Advance(int32_t packets) {
  if (ended_) return false;
  const bool took = TakeInput();
  if (kept_ && !took && caughtUp_) return false;
  if (!reader_ && !Begin()) return took;
  if (!GoOn()) {
    fault_ = reader_->Message();
    return ended_ = caughtUp_ = true, false;
  }
  moved_ = caughtUp_ = false;
  CaptureFrame frame;
  for (int32_t i = 0; i < packets; ++i) {
    const ReadResult result = reader_->Next(&frame);
    readUntil_ = reader_->FilePosition();
    if (result == ReadResult::kFrame) {
      positions_.Add(reader_->FramePosition());
      continue;
    }
    caughtUp_ = true;
    const bool mayGoOn = input_ != nullptr;
    if (!mayGoOn || result == ReadResult::kEnd) fault_ = fault_.empty() || !kept_ ? reader_->Message() : fault_;
    ended_ = kept_ && !mayGoOn;
    return took;
  }
  return true;
}

int PacketIndex::Percent() const {
  if (caughtUp_) return 100;
  const uint64_t size = reader_ ? reader_->FileSize() : 0;
  if (size == 0 || input_) return -1;
  return static_cast<int>(std::min<uint64_t>(readUntil_ * 100 / size, 100));
}

bool PacketIndex::Fetch(uint64_t number, CaptureFrame* frame) {
  if (number < 1 || number > positions_.Count()) return false;
  const bool follows = moved_ && lastFetched_ + 1 == number;
  moved_ = true;
  lastFetched_ = number;
  return (follows || reader_->Seek(positions_.At(number - 1), number)) && reader_->Next(frame) == ReadResult::kFrame;
}

}  // namespace qxview
