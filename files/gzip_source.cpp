// gzip streams (RFC 1952) as byte sources.
#define ZLIB_CONST  // zlib then takes its input as pointer to const
#include <zlib.h>

#include <climits>
#include <new>

#include "files/byte_source.h"

namespace qxview {

namespace {

class GzipSource : public BufferedSource {
 public:
  explicit GzipSource(std::unique_ptr<ByteSource> compressed) : compressed_(std::move(compressed)) {}
  ~GzipSource() override { inflateEnd(&stream_); }

  bool Start() { return inflateInit2(&stream_, MAX_WBITS + 16) == Z_OK; }
  uint64_t FilePosition() const override { return compressed_->FilePosition(); }
  uint64_t FileSize() const override { return compressed_->FileSize(); }
  bool IsCompressed() const override { return true; }
  bool IsInterrupted() const override { return compressed_->IsInterrupted(); }

 protected:
  size_t ReadSome(uint8_t* out, size_t size) override {
    stream_.next_out = out;
    stream_.avail_out = static_cast<uInt>(size < UINT_MAX ? size : UINT_MAX);
    const uInt room = stream_.avail_out;
    while (stream_.avail_out == room && !ended_) InflateSome();
    return room - stream_.avail_out;
  }

 private:
  void InflateSome() {
    const uint8_t* input = compressed_->Peek(1);
    if (!input) {
      Stop(compressed_->Failure().empty() ? "the compressed data end early" : compressed_->Failure().c_str());
      return;
    }
    size_t length = compressed_->Remaining();
    stream_.next_in = input;
    stream_.avail_in = static_cast<uInt>(length < UINT_MAX ? length : UINT_MAX);
    int result = inflate(&stream_, Z_NO_FLUSH);
    compressed_->Skip(static_cast<uint64_t>(stream_.next_in - input));
    if (result == Z_STREAM_END) {
      StartNextMember();
    } else if (result != Z_OK) {
      Stop(stream_.msg ? stream_.msg : "the compressed data are damaged");
    }
  }

  // What follows a member and is no further one is padding (zeros of a tape block, say) and ends the data.
  void StartNextMember() {
    const uint8_t* magic = compressed_->Peek(2);
    if (magic && magic[0] == 0x1F && magic[1] == 0x8B && inflateReset(&stream_) == Z_OK) return;
    ended_ = true;
  }

  void Stop(const char* reason) {
    failure_ = std::string("gzip: ") + reason;
    ended_ = true;
  }

  std::unique_ptr<ByteSource> compressed_;
  z_stream stream_{};
  bool ended_ = false;
};

}  // namespace

std::unique_ptr<ByteSource> MakeGzipSource(std::unique_ptr<ByteSource> compressed, std::string* reason) {
  std::unique_ptr<GzipSource> source(new (std::nothrow) GzipSource(std::move(compressed)));
  if (source && source->Start()) return source;
  *reason = "out of memory";
  return nullptr;
}

}  // namespace qxview
