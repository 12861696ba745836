// A capture file. Its frames are decoded, written to every format and read back from there: what a format keeps must come
// back, and a reader that goes back to a frame must give it again.
#include <vector>

#include "files/capture_formats.h"
#include "files/capture_reader.h"
#include "files/packet_writer.h"
#include "files/record_builder.h"
#include "files/xml_export.h"
#include "fuzz/stations.h"
#include "fuzz/targets.h"

namespace qxview::fuzz {
namespace {

constexpr size_t kMostDecoded = 60, kMostKept = 400;

class MemorySource final : public ByteSource {
 public:
  explicit MemorySource(const Piece& piece) : bytes_(piece) {
    window_ = cursor_ = bytes_.data();
    limit_ = window_ + bytes_.size();
  }
  bool Seek(uint64_t position) override {
    if (position > bytes_.size()) return false;
    cursor_ = window_ + position;
    return true;
  }
  uint64_t FileSize() const override { return bytes_.size(); }

 protected:
  void Refill(size_t) override {}

 private:
  ExactBytes bytes_;
};

struct KeptFrame {
  uint64_t position, number;
  int64_t nanoseconds;
  uint32_t capturedLength, wireLength;
  uint16_t linkType;
  std::string bytes;
};

std::unique_ptr<CaptureReader> Open(const Piece& file, std::string* message) {
  return OpenCapture(std::make_unique<MemorySource>(file), "fuzz", message);
}

KeptFrame Keep(const CaptureReader& reader, const CaptureFrame& frame) {
  return {reader.FramePosition(), frame.number,   frame.nanoseconds, frame.capturedLength, frame.wireLength,
          frame.linkType,         {reinterpret_cast<const char*>(frame.data), frame.dataLength}};
}

int32_t AppendText(void* text, const char* bytes, int32_t length) {
  static_cast<std::string*>(text)->append(bytes, static_cast<size_t>(length));
  return 1;
}
int32_t MoveTextBack(void* text, int64_t bytes) {
  auto& written = *static_cast<std::string*>(text);
  written.resize(written.size() - static_cast<size_t>(bytes));
  return 1;
}
OutputSink SinkOf(std::string* text) { return {text, AppendText, MoveTextBack, -1}; }

Piece PieceOf(const std::string& text) { return {reinterpret_cast<const uint8_t*>(text.data()), text.size()}; }

// Whether a frame that was written came back; times to the microsecond in pcap.
void CheckSame(const KeptFrame& was, const CaptureFrame& is, bool isPcap) {
  Expect(is.capturedLength == was.capturedLength, "a written frame keeps its captured length");
  Expect(std::string_view(reinterpret_cast<const char*>(is.data), is.dataLength) == was.bytes, "a written frame keeps its bytes");
  // Records of a capture buffer hold whatever number was written there.
  Expect(is.linkType == NormalizeLinkType(was.linkType), "a written frame keeps its link type");
  if (!isPcap) Expect(is.nanoseconds == was.nanoseconds, "a written frame keeps its time");
}

// Writes the capture again and reads that.
void CheckWriter(const Piece& file, std::unique_ptr<PacketWriter> writer, const std::string& written, bool isPcap, bool keeps) {
  std::string message;
  const auto reader = Open(file, &message);
  if (!reader) return;
  writer->BeginCapture();
  std::vector<KeptFrame> kept;
  CaptureFrame frame;
  bool announced = false;
  while (kept.size() < kMostKept && reader->Next(&frame) == ReadResult::kFrame) {
    if (!announced) writer->Announce(frame);
    announced = true;
    if (!writer->Add(frame, UINT32_MAX)) {
      Expect(!writer->Message().empty(), "a frame that is refused is told why");
      break;
    }
    if (frame.dataLength == frame.capturedLength) kept.push_back(Keep(*reader, frame));
    else keeps = false;
  }
  Expect(writer->Finish(), "a file in memory is written");
  if (!announced) return;
  const auto again = Open(PieceOf(written), &message);
  if (!again) Fail("what is written is a capture", message.c_str());
  size_t count = 0;
  ReadResult result;
  for (; (result = again->Next(&frame)) == ReadResult::kFrame; ++count) {
    if (keeps && count < kept.size()) CheckSame(kept[count], frame, isPcap);
  }
  if (result != ReadResult::kEnd) Fail("what is written is whole", again->Message().c_str());
  Expect(count == writer->Written(), "every frame is written");
}

void WriteXml(const Piece& file) {
  std::string message, text;
  const auto reader = Open(file, &message);
  if (!reader) return;
  XmlExport document(SinkOf(&text), [](int64_t seconds) { return seconds % 3 * 900; });
  const auto builder = std::make_unique<RecordBuilder>();
  document.Begin();
  CaptureFrame frame;
  for (size_t i = 0; i < kMostDecoded && reader->Next(&frame) == ReadResult::kFrame; ++i) {
    document.AddFrame(frame.number, frame.record ? frame.record : builder->Build(frame));
  }
  document.AddAnalysis(1, 0, "<\x80&\"", "");
  const uint8_t hardware[6] = {0, 1, 2, 3, 4, 5};
  const XmlAlias alias{hardware, "10.0.0.1", nullptr, "a & b", nullptr};
  Expect(document.Finish(&alias, 1, 1000), "an XML document in memory is written");
}

void CheckSeek(const Piece& file, const std::vector<KeptFrame>& frames) {
  std::string message;
  const auto reader = Open(file, &message);
  if (!reader || frames.empty()) return;
  reader->KeepForSeek();
  CaptureFrame frame;
  for (size_t i = 0; i < frames.size(); ++i) reader->Next(&frame);
  for (size_t i = frames.size(); i-- > 0; i = i > 20 ? i - i / 8 : i) {
    if (!reader->Seek(frames[i].position, frames[i].number)) continue;
    if (reader->Next(&frame) != ReadResult::kFrame) Fail("a frame that was read is read again", reader->Message().c_str());
    const KeptFrame again = Keep(*reader, frame);
    Expect(again.number == frames[i].number && again.bytes == frames[i].bytes && again.nanoseconds == frames[i].nanoseconds &&
               again.linkType == frames[i].linkType && again.wireLength == frames[i].wireLength,
           "a frame that is gone back to is the same");
  }
}

void CheckMerge(const Piece& file, size_t frames) {
  std::vector<std::unique_ptr<CaptureReader>> readers;
  for (int i = 0; i < 2; ++i) {
    std::string message;
    readers.push_back(Open(file, &message));
  }
  const auto merged = MergeCaptures(std::move(readers));
  CaptureFrame frame;
  size_t count = 0;
  while (count < 2 * kMostKept && merged->Next(&frame) == ReadResult::kFrame) ++count;
  Expect(count == 2 * kMostKept || count == 2 * frames, "a merge has the frames of all");
}

}  // namespace

void RunCapture(const uint8_t* data, size_t size) {
  const Piece file{data, size};
  std::string message;
  const auto reader = Open(file, &message);
  if (!reader) return Expect(!message.empty() && message.find('\n') == std::string::npos, "a file that is refused is told why");
  std::string secrets;
  reader->HandSecretsTo([&](uint32_t, const uint8_t* piece, size_t length, bool) {
    secrets.append(reinterpret_cast<const char*>(piece), length);
  });
  Station station(kReassembly, kDisplayMode);
  const auto builder = std::make_unique<RecordBuilder>();
  std::vector<KeptFrame> frames;
  CaptureFrame frame;
  ReadResult result;
  while ((result = reader->Next(&frame)) == ReadResult::kFrame) {
    if (frames.size() < kMostKept) frames.push_back(Keep(*reader, frame));
    Expect(frame.dataLength <= frame.capturedLength, "a frame has no more bytes than it says");
    if (frame.number > kMostDecoded) continue;
    const ExactRecord record(frame.record ? frame.record : builder->Build(frame));
    station.session->Decode(record.get());
    station.host->FinishPacket();
  }
  Expect(result == ReadResult::kEnd || !reader->Message().empty(), "damage is told");
  Expect(reader->Next(&frame) == result, "the end stays the end");
  std::string written;
  CheckWriter(file, MakePcapWriter(SinkOf(&written)), written, true, true);
  written.clear();
  CheckWriter(file, MakePcapngWriter(SinkOf(&written), size % 2), written, false, true);
  written.clear();
  // A record of a capture buffer holds 64 KB, and no header in front of the medium's.
  CheckWriter(file, MakeCaptureBufferFileWriter(SinkOf(&written), "Sun Nov 15 00:52:38 2026\n"), written, false, false);
  WriteXml(file);
  CheckSeek(file, frames);
  if (frames.size() < kMostKept) CheckMerge(file, frames.size());
}

}  // namespace qxview::fuzz
