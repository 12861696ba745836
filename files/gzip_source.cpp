// gzip streams (RFC 1952) as byte sources.
#define ZLIB_CONST  // zlib then takes its input as pointer to const
#include <zlib.h>

#include "files/inflating_source.h"

namespace qxview {

namespace {

uInt Clamped(size_t length) { return static_cast<uInt>(length < UINT_MAX ? length : UINT_MAX); }

class GzipSource : public InflatingSource {
 public:
  explicit GzipSource(std::unique_ptr<ByteSource> compressed) : InflatingSource(std::move(compressed), "gzip") {}
  ~GzipSource() override { inflateEnd(&stream_); }

  bool Start() { return inflateInit2(&stream_, MAX_WBITS + 16) == Z_OK; }

 protected:
  size_t Inflate(const uint8_t* input, size_t length, uint8_t* out, size_t room) override {
    stream_.next_in = input;
    stream_.avail_in = Clamped(length);
    stream_.next_out = out;
    stream_.avail_out = Clamped(room);
    const int result = inflate(&stream_, Z_NO_FLUSH);
    compressed_->Skip(static_cast<uint64_t>(stream_.next_in - input));
    if (result == Z_STREAM_END) {
      StartNextMember();
    } else if (result != Z_OK) {
      Stop(stream_.msg ? stream_.msg : "the compressed data are damaged");
    }
    return static_cast<size_t>(stream_.next_out - out);
  }

 private:
  // What follows a member and is no further one is padding (zeros of a tape block, say) and ends the data.
  void StartNextMember() {
    const uint8_t* magic = compressed_->Peek(2);
    if (magic && magic[0] == 0x1F && magic[1] == 0x8B && inflateReset(&stream_) == Z_OK) return;
    Stop(nullptr);
  }

  z_stream stream_{};
};

}  // namespace

std::unique_ptr<ByteSource> MakeGzipSource(std::unique_ptr<ByteSource> compressed, std::string* reason) {
  return StartInflating<GzipSource>(std::move(compressed), reason);
}

}  // namespace qxview
