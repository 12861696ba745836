// What the sources of compressed captures have in common: their input is another source.
#pragma once
#include <algorithm>
#include <climits>
#include <new>

#include "files/byte_source.h"

namespace qxview {

class InflatingSource : public BufferedSource {
 public:
  InflatingSource(std::unique_ptr<ByteSource> compressed, const char* format)
      : compressed_(std::move(compressed)), format_(format) {}

  uint64_t FilePosition() const override { return compressed_->FilePosition(); }
  uint64_t FileSize() const override { return compressed_->FileSize(); }
  bool IsCompressed() const override { return true; }
  bool IsInterrupted() const override { return compressed_->IsInterrupted(); }

 protected:
  // Takes input, moves over what it has used, and writes up to `room` bytes, which it counts. Stop() ends the data.
  virtual size_t Inflate(const uint8_t* input, size_t length, uint8_t* out, size_t room) = 0;
  // What is still held when the input has ended.
  virtual size_t Drain(uint8_t*, size_t) { return 0; }
  // Whether the data may end here.
  bool betweenFrames_ = false;

  size_t ReadSome(uint8_t* out, size_t size) final {
    size_t written = 0;
    while (written == 0 && !stopped_) {
      const uint8_t* input = compressed_->Peek(1);
      if (input) {
        written = Inflate(input, compressed_->Remaining(), out, size);
      } else if (!compressed_->Failure().empty()) {
        Stop(compressed_->Failure().c_str());
      } else if ((written = Drain(out, size)) == 0) {
        Stop(betweenFrames_ ? nullptr : "the compressed data end early");
      }
    }
    return written;
  }

  void Stop(const char* reason) {
    if (reason) failure_ = std::string(format_) + ": " + reason;
    stopped_ = true;
  }

  std::unique_ptr<ByteSource> compressed_;

 private:
  const char* format_;
  bool stopped_ = false;
};

// A `Source` over the compressed bytes, started; null with the reason.
template <typename Source>
std::unique_ptr<ByteSource> StartInflating(std::unique_ptr<ByteSource> compressed, std::string* reason) {
  std::unique_ptr<Source> source(new (std::nothrow) Source(std::move(compressed)));
  if (source && source->Start()) return source;
  *reason = "out of memory";
  return nullptr;
}

}  // namespace qxview
