// Every frame of the samples damaged where its structure is: cut at every length, every byte and every 16-bit field set to
// what lengths and counts go wrong with, slices twice. Behind the frame stands a page that cannot be touched. Display mode and
// the silent pass end, within the bounds of lines and time. A test run takes some of the damage; QXVIEW_LONG=1 all.
#include <gtest/gtest.h>

#include <cstdlib>
#include <set>

#include "files/capture_reader.h"
#include "files/record_builder.h"
#include "tests/support/guarded_memory.h"
#include "tests/support/samples.h"
#include "tests/support/small_stack.h"

namespace qxview::testing {
namespace {

#ifdef _WIN32   // a sample: the decoders are the same, and slower there
constexpr size_t kMostFrames = 6, kMostPlaces = 12;
#elif defined(__SANITIZE_ADDRESS__)
constexpr size_t kMostFrames = 12, kMostPlaces = 12;
#else
constexpr size_t kMostFrames = 60, kMostPlaces = 40;
#endif
constexpr size_t kLongestFrame = 4000;

bool IsLong() { return std::getenv("QXVIEW_LONG") != nullptr; }

struct Kept {
  std::vector<uint8_t> header;   // the record up to the frame's bytes
  std::vector<uint8_t> bytes;
};

// Frames of a sample that differ in what stands where decoders choose.
std::vector<Kept> FramesOf(const std::string& sample) {
  std::vector<Kept> frames;
  std::set<std::vector<uint8_t>> shapes;
  ForEachRecord(sample, [&](const FrameRecord* record) {
    const auto* start = reinterpret_cast<const uint8_t*>(record);
    const uint8_t* data = FrameData(record);
    const size_t size = record->capturedLength;
    if (size > kLongestFrame || frames.size() == (IsLong() ? 2000 : kMostFrames)) return;
    std::vector<uint8_t> shape{static_cast<uint8_t>(size / 16)};
    for (const size_t at : {12, 13, 20, 23, 35, 37, 42, 54, 55}) shape.push_back(at < size ? data[at] : 0);
    if (shapes.insert(shape).second) frames.push_back({{start, data}, {data, data + size}});
  });
  return frames;
}

class Damage : public ::testing::TestWithParam<std::string> {
 protected:
  Damage() {
    for (NamingHost* host : {&hosts_[0], &hosts_[1]}) host->settings = {{"Reassembly", "1"}, {"IgnoreChecksums", "1"}};
    silent_.context().outputMode = kFindMode;
    silent_.context().silent = true;
  }

  // Decodes the bytes behind the header, at the end of what may be read.
  void Decode(const Kept& frame, const std::vector<uint8_t>& bytes) {
    const size_t header = frame.header.size(), size = std::min(bytes.size(), kMaxRecord - header);
    uint8_t* const at = memory_.Room(header + size);
    std::memcpy(at, frame.header.data(), header);
    if (size) std::memcpy(at + header, bytes.data(), size);
    FrameRecord record;
    std::memcpy(&record, at, sizeof record);
    record.capturedLength = static_cast<uint16_t>(size);
    record.recordLength = static_cast<uint16_t>(header + size);
    record.packetNumber = ++number_;
    std::memcpy(at, &record, sizeof record);
    const auto* moved = reinterpret_cast<const FrameRecord*>(at);
    int32_t left[2];
    for (const int which : {0, 1}) {
      View& view = which ? silent_.view() : shown_.view();
      if (!which) ClearDecodeTree(&view, view.tree, true);
      DecodeFrame(&view, moved, 0, 0, 0);
      left[which] = view.context->packet.linesLeft;
      ASSERT_EQ(view.context->packet.nesting, 0);
    }
    // A silent pass leaves out what is made for lines alone, and counts none of that.
    ASSERT_LE(left[0], left[1]) << "of the display and the silent pass; packet " << number_;
  }

  void DecodeDamaged(const Kept& frame) {
    const size_t size = frame.bytes.size(), step = IsLong() ? 1 : size / kMostPlaces + 1;
    std::vector<uint8_t> bytes = frame.bytes;
    for (size_t at = number_ % step; at < size; at += step) {
      Decode(frame, {frame.bytes.begin(), frame.bytes.begin() + static_cast<ptrdiff_t>(at)});
      for (const uint8_t value : {0x00, 0x01, 0x7F, 0x80, 0xFF}) {
        bytes[at] = value;
        Decode(frame, bytes);
      }
      bytes[at] = frame.bytes[at];
      if (at + 1 < size) {
        for (const uint32_t value : {0x0000u, 0x0001u, 0xFFFFu}) {
          bytes[at] = static_cast<uint8_t>(value >> 8);
          bytes[at + 1] = static_cast<uint8_t>(value);
          Decode(frame, bytes);
        }
        bytes[at] = frame.bytes[at];
        bytes[at + 1] = frame.bytes[at + 1];
      }
      for (const size_t length : {size_t{1}, size_t{4}, size_t{64}}) {   // a slice that stands twice
        if (at + length > size) break;
        std::vector<uint8_t> twice = frame.bytes;
        const auto from = frame.bytes.begin() + static_cast<ptrdiff_t>(at);
        twice.insert(twice.begin() + static_cast<ptrdiff_t>(at), from, from + static_cast<ptrdiff_t>(length));
        Decode(frame, twice);
      }
      if (HasFatalFailure()) return;
    }
    Decode(frame, frame.bytes);
  }

  GuardedMemory memory_{kMaxRecord};
  NamingHost hosts_[2];
  TestView shown_{&hosts_[0]}, silent_{&hosts_[1]};
  uint64_t number_ = 0;
};

TEST_P(Damage, EndsInLines) {
  const std::vector<Kept> frames = FramesOf(GetParam());
  ASSERT_FALSE(frames.empty());
  for (const Kept& frame : frames) {
    DecodeDamaged(frame);
    if (HasFatalFailure()) return;
  }
  RecordProperty("frames", static_cast<int>(frames.size()));
  RecordProperty("decodes", static_cast<int>(2 * number_));
}

INSTANTIATE_TEST_SUITE_P(Samples, Damage, ::testing::ValuesIn(Samples()), [](const auto& info) {
  std::string name = info.param;
  for (char& c : name) c = std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
  return name;
});

}  // namespace
}  // namespace qxview::testing
