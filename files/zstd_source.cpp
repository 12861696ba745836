// Zstandard streams (RFC 8878) as byte sources, where the library was there when this was built.
#include "files/compressed_formats.h"
#ifdef QXVIEW_HAS_ZSTD
#include <zstd.h>

#include "files/inflating_source.h"

namespace qxview {

namespace {

class ZstdSource : public InflatingSource {
 public:
  explicit ZstdSource(std::unique_ptr<ByteSource> compressed) : InflatingSource(std::move(compressed), "zstd") {}
  ~ZstdSource() override { ZSTD_freeDStream(stream_); }

  bool Start() { return (stream_ = ZSTD_createDStream()) != nullptr; }

 protected:
  size_t Inflate(const uint8_t* input, size_t length, uint8_t* out, size_t room) override {
    ZSTD_inBuffer from{input, length, 0};
    ZSTD_outBuffer to{out, room, 0};
    const size_t result = ZSTD_decompressStream(stream_, &to, &from);
    compressed_->Skip(from.pos);
    if (ZSTD_isError(result)) Stop(ZSTD_getErrorName(result));
    betweenFrames_ = result == 0;
    return to.pos;
  }
  size_t Drain(uint8_t* out, size_t room) override { return betweenFrames_ ? 0 : Inflate(nullptr, 0, out, room); }

 private:
  ZSTD_DStream* stream_ = nullptr;
};

}  // namespace

std::unique_ptr<ByteSource> MakeZstdSource(std::unique_ptr<ByteSource> compressed, std::string* reason) {
  return StartInflating<ZstdSource>(std::move(compressed), reason);
}

}  // namespace qxview
#endif
