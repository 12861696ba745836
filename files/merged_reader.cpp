// Several captures as one, by time.
#include <algorithm>

#include "files/capture_reader.h"

namespace qxview {

namespace {

class MergedReader : public CaptureReader {
 public:
  explicit MergedReader(std::vector<std::unique_ptr<CaptureReader>> readers)
      : CaptureReader(nullptr, (readers[0]->FileName() + " and others").c_str()), readers_(std::move(readers)), frames_(readers_.size()) {}

  void HandSecretsTo(const SecretsHandler& handler) override {
    for (const auto& reader : readers_) reader->HandSecretsTo(handler);
  }
  bool Keep(const CaptureFrame& frame, KeptBytes* kept) noexcept override {
    return readers_[frame.capture]->Keep(frame, kept);
  }
  uint64_t FilePosition() const override {
    uint64_t sum = 0;
    for (const auto& reader : readers_) sum += reader->FilePosition();
    return sum;
  }
  uint64_t FileSize() const override {
    uint64_t sum = 0;
    for (const auto& reader : readers_) {
      if (reader->FileSize() == 0) return 0;
      sum += reader->FileSize();
    }
    return sum;
  }

 private:
  // The order of the heap: whether the next frame of one capture comes behind that of another.
  auto Later() const {
    return [this](uint32_t a, uint32_t b) {
      const int64_t timeA = frames_[a].nanoseconds, timeB = frames_[b].nanoseconds;
      return timeA != timeB ? timeA > timeB : a > b;
    };
  }

 protected:
  // The captures have judged what was cut by themselves.
  bool IsInterrupted() const override { return false; }

  // The heap holds the captures whose next frame is there, but for the one whose frame was given last: that frame is
  // good until it is asked for the next.
  ReadResult ReadFrame(CaptureFrame* frame) override {
    if (!started_) {
      for (uint32_t i = 0; i < readers_.size(); ++i) Advance(i);
      started_ = true;
    } else if (given_ != kNone) {
      Advance(given_);
    }
    given_ = kNone;
    if (heap_.empty()) return message_.empty() ? ReadResult::kEnd : DamagedAs(message_);
    std::pop_heap(heap_.begin(), heap_.end(), Later());
    given_ = heap_.back();
    heap_.pop_back();
    *frame = frames_[given_];
    return ReadResult::kFrame;
  }

 private:
  static constexpr uint32_t kNone = UINT32_MAX;

  void Advance(uint32_t index) {
    const ReadResult result = readers_[index]->Next(&frames_[index]);
    if (result == ReadResult::kDamaged) message_ += (message_.empty() ? "" : "; ") + readers_[index]->Message();
    if (result != ReadResult::kFrame) return;
    frames_[index].capture = index;
    heap_.push_back(index);
    std::push_heap(heap_.begin(), heap_.end(), Later());
  }

  std::vector<std::unique_ptr<CaptureReader>> readers_;
  std::vector<CaptureFrame> frames_;   // of each capture the next one
  std::vector<uint32_t> heap_;
  std::string message_;
  uint32_t given_ = kNone;
  bool started_ = false;
};

}  // namespace

std::unique_ptr<CaptureReader> MergeCaptures(std::vector<std::unique_ptr<CaptureReader>> readers) {
  return std::make_unique<MergedReader>(std::move(readers));
}

}  // namespace qxview
