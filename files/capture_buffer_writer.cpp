// Writer of new capture buffer files; their records are made of the frames.
#include "files/capture_buffer.h"
#include "files/packet_writer.h"
#include "files/record_builder.h"

namespace qxview {
namespace {

class CaptureBufferFileWriter : public PacketWriter {
 public:
  CaptureBufferFileWriter(const OutputSink& sink, const char* localTime) : PacketWriter(sink) {
    SaveRequest request{};
    request.file = {this, nullptr, [](void* writer, const uint8_t* bytes, int32_t length) {
                      static_cast<CaptureBufferFileWriter*>(writer)->PutBytes(bytes, static_cast<size_t>(length));
                      return int32_t{1};
                    }};
    request.name = "";
    request.localTime = localTime;
    request.firstNumber = 1;
    buffer_.Begin(request);
  }
  void Announce(const CaptureFrame&) override {}
  void Flush() override {
    buffer_.Finish();
    PacketWriter::Flush();
  }
  bool Finish() override {
    buffer_.Finish();
    return PacketWriter::Finish();
  }

 protected:
  bool Put(const CaptureFrame& frame, uint32_t captured) override {
    CaptureFrame cut = frame;
    cut.dataLength = captured;
    if (captured < frame.capturedLength) cut.capturedLength = captured;
    return buffer_.Add(frame.record ? frame.record : builder_.Build(cut)) == kSaved;
  }

 private:
  CaptureBufferWriter buffer_;
  RecordBuilder builder_;
};

}  // namespace

std::unique_ptr<PacketWriter> MakeCaptureBufferFileWriter(const OutputSink& sink, const char* localTime) {
  return std::make_unique<CaptureBufferFileWriter>(sink, localTime);
}

}  // namespace qxview
