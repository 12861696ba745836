// libFuzzer target: the input is a capture file; its frames are decoded.
#include <memory>

#include "files/capture_reader.h"
#include "files/record_builder.h"
#include "host/session.h"

namespace {

// The input as a source of bytes.
class MemorySource : public qxview::ByteSource {
 public:
  MemorySource(const uint8_t* data, size_t size) {
    window_ = cursor_ = data;
    limit_ = data + size;
  }

 protected:
  void Refill(size_t) override {}
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace qxview;
  static const std::unique_ptr<Session> session = Session::Create(nullptr, {});
  static const auto builder = std::make_unique<RecordBuilder>();
  std::string message;
  const auto reader = OpenCapture(std::make_unique<MemorySource>(data, size), "fuzz", &message);
  CaptureFrame frame;
  while (reader && reader->Next(&frame) == ReadResult::kFrame) {
    session->Decode(frame.record ? frame.record : builder->Build(frame));
  }
  return 0;
}
