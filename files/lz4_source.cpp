// LZ4 frames as byte sources, where the library was there when this was built.
#include "files/compressed_formats.h"
#ifdef QXVIEW_HAS_LZ4
#include <lz4frame.h>

#include "files/inflating_source.h"

namespace qxview {

namespace {

class Lz4Source : public InflatingSource {
 public:
  explicit Lz4Source(std::unique_ptr<ByteSource> compressed) : InflatingSource(std::move(compressed), "lz4") {}
  ~Lz4Source() override { LZ4F_freeDecompressionContext(context_); }

  bool Start() { return !LZ4F_isError(LZ4F_createDecompressionContext(&context_, LZ4F_VERSION)); }

 protected:
  size_t Inflate(const uint8_t* input, size_t length, uint8_t* out, size_t room) override {
    const size_t result = LZ4F_decompress(context_, out, &room, input, &length, nullptr);
    if (LZ4F_isError(result)) {
      Stop(LZ4F_getErrorName(result));
      return 0;
    }
    compressed_->Skip(length);
    betweenFrames_ = result == 0;
    return room;
  }

 private:
  LZ4F_dctx* context_ = nullptr;
};

}  // namespace

std::unique_ptr<ByteSource> MakeLz4Source(std::unique_ptr<ByteSource> compressed, std::string* reason) {
  return StartInflating<Lz4Source>(std::move(compressed), reason);
}

}  // namespace qxview
#endif
