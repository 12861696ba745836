// The stack that decoding takes: every packet of the samples as it is, and at the end of headers nested in each other up
// to and past the bound of nesting. A folder named by QXVIEW_CAPTURES is measured as well.
#include <cstdlib>
#include <filesystem>

#include "files/capture_reader.h"
#include "files/record_builder.h"
#include "tests/support/decoding.h"
#include "tests/support/small_stack.h"

namespace qxview::testing {
namespace {

namespace fs = std::filesystem;

Bytes Ethertype(uint16_t type) {
  return Hex("020000000001 020000000002") + Bytes{static_cast<uint8_t>(type >> 8), static_cast<uint8_t>(type)};
}

// The packet behind `count` headers of IPv4, or of IPv4 and IPv6 in turn.
Bytes Nest(Bytes packet, int count, bool mixed) {
  bool six = packet[0] >> 4 == 6;
  for (int i = 0; i < count; ++i) {
    const bool asSix = mixed && i % 2 != 0;
    Bytes header = asSix ? Hex("60000000 0000 00 40") + Bytes(32, 0x20) : Hex("4500 0000 0000 0000 40 00 0000") + Bytes(8, 10);
    const size_t length = packet.size() + (asSix ? 0 : header.size());
    header[asSix ? 4 : 2] = static_cast<uint8_t>(length >> 8);
    header[asSix ? 5 : 3] = static_cast<uint8_t>(length);
    header[asSix ? 6 : 9] = six ? 41 : 4;
    packet = header + packet;
    six = asSix;
  }
  return Ethertype(six ? 0x86DD : 0x0800) + packet;
}

// Decodes a packet as it is and, where it holds an IP datagram, that nested at several depths.
void DecodeNested(TestView& view, const FrameRecord* record) {
  DecodeFrame(&view.view(), record, 0, 0, 0);
  ClearDecodeTree(&view.view(), &view.tree(), true);
  const uint8_t* frame = FrameData(record);
  if (record->mediaType != 0 || record->capturedLength < 34 || record->capturedLength > 1514) return;
  const int type = frame[12] << 8 | frame[13];
  if (type != 0x0800 && type != 0x86DD) return;
  const Bytes packet(frame + 14, frame + record->capturedLength);
  for (const int count : {20, 30, 55, 60, 62, 63, 64, 66}) view.Decode(Nest(packet, count, count % 2 == 0));
}

void DecodeFile(const fs::path& path) {
  std::string message;
  const auto reader = OpenCapture(path.string().c_str(), &message);
  if (!reader) return;
  const auto builder = std::make_unique<RecordBuilder>();
  TestView view;
  CaptureFrame frame;
#if defined(_WIN32) || defined(__SANITIZE_ADDRESS__)   // a sample: it is slow there
  constexpr uint64_t kMostFrames = 25;
#else
  constexpr uint64_t kMostFrames = UINT64_MAX;
#endif
  while (reader->Next(&frame) == ReadResult::kFrame && frame.number <= kMostFrames) {
    DecodeNested(view, frame.record ? frame.record : builder->Build(frame));
  }
}

TEST(Stack, OfTheDeepestDecodeIsSmall) {
  std::vector<fs::path> folders = {QXVIEW_SAMPLES_DIR};
  if (const char* more = std::getenv("QXVIEW_CAPTURES")) folders.push_back(more);
  size_t files = 0;
  for (const fs::path& folder : folders) {
    for (const auto& entry : fs::directory_iterator(folder)) {
      if (entry.path().string().find(".pcap") == std::string::npos && folder == folders[0]) continue;
      const size_t before = DeepestStack();
      RunOnSmallStack([&] { DecodeFile(entry.path()); });
      if (DeepestStack() > before) RecordProperty("deepest", entry.path().filename().string());
      ++files;
    }
  }
  EXPECT_GT(files, 5u);
  RecordProperty("stackBytes", static_cast<int>(DeepestStack()));
  std::printf("the deepest decode took %zu bytes of stack\n", DeepestStack());
}

}  // namespace
}  // namespace qxview::testing
