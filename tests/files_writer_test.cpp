// What pcapng and pcap files keep of other captures.
#include <gtest/gtest.h>

#include <deque>
#include <set>

#include "files/packet_writer.h"
#include "files/pcapng_options.h"
#include "tests/capture_bytes.h"

namespace qxview {
namespace {

struct MemoryFile {
  Bytes bytes;
  OutputSink Sink() {
    return {&bytes,
            [](void* handle, const char* from, int32_t length) {
              static_cast<Bytes*>(handle)->insert(static_cast<Bytes*>(handle)->end(), from, from + length);
              return 1;
            },
            nullptr, -1};
  }
};

// Saves a capture; what the writer refused stands in *message.
Bytes Save(const Bytes& capture, bool toPcap, std::string* message = nullptr) {
  MemoryFile file;
  std::string opening;
  auto reader = OpenCapture(std::make_unique<TrickleSource>(capture, SIZE_MAX), "t.cap", &opening);
  auto writer = toPcap ? MakePcapWriter(file.Sink()) : MakePcapngWriter(file.Sink(), false);
  CaptureFrame frame;
  while (reader->Next(&frame) == ReadResult::kFrame && writer->Add(frame, 1000)) continue;
  EXPECT_TRUE(writer->Finish());
  if (message) *message = writer->Message();
  return file.bytes;
}

// Every frame with all that is told of it, options in this machine's order.
std::string Told(const Bytes& capture) {
  std::string text, message;
  auto reader = OpenCapture(std::make_unique<TrickleSource>(capture, SIZE_MAX), "t.cap", &message);
  CaptureFrame frame;
  const auto add = [&](const FileOptions& options) {
    ForEachOption(options, [&](uint16_t code, uint16_t length, const uint8_t* value) {
      if (options.at == frame.interface->options.at && (code == kInterfaceResolution || code == kInterfaceTimeOffset)) return;
      text.append(1, ' ').append(std::to_string(code)).append(1, '=');
      const bool number = length == 4 || length == 8;
      for (int i = 0; i < length; ++i) {
        const uint8_t byte = value[number && !options.swapped ? length - 1 - i : i];
        text.append(number ? std::to_string(byte) : std::string(1, static_cast<char>(byte)));
      }
    });
    text += ";";
  };
  while (reader->Next(&frame) == ReadResult::kFrame) {
    text += std::to_string(frame.nanoseconds) + " " + std::to_string(frame.linkType) + " " +
            std::to_string(frame.wireLength) + "/" + std::to_string(frame.capturedLength) + " " +
            std::to_string(static_cast<int>(frame.direction)) + std::to_string(frame.checkSequenceLength) + " " +
            std::to_string(frame.interface->timeDigits);
    for (uint32_t i = 0; i < frame.dataLength; ++i) text.append(1, ',').append(std::to_string(frame.data[i]));
    add(frame.interface->sectionOptions);
    add(frame.interface->options);
    add(frame.options);
    text += "\n";
  }
  return text + reader->Message();
}

Bytes Text(const char* text) { return Bytes(text, text + std::strlen(text)); }

TEST(PacketWriter, PcapngKeepsWhatEitherByteOrderTells) {
  for (const bool bigEndian : {false, true}) {
    const CaptureWriter write{bigEndian};
    const Bytes comments = write.Option(1, Text("first")) + write.Option(1, Text("second one")) +
                           write.Option(2, write.U32(0x81000002)) + write.Option(4, write.Number(7, 8));
    const Bytes capture =
        write.Block(0x0A0D0D0A, write.U32(0x1A2B3C4D) + write.U16(1) + write.U16(0) + write.U32(0xFFFFFFFF) +
                                    write.U32(0xFFFFFFFF) + write.Option(4, Text("Tool 1")) + write.Option(1, Text("all"))) +
        write.Interface(1, 96, write.Option(2, Text("eth01")) + write.Option(8, write.Number(10'000'000'000, 8)) +
                                   write.Option(14, write.Number(static_cast<uint64_t>(-1000), 8))) +
        write.Interface(1, 0, write.Option(9, {9}) + write.Option(13, {4}) + write.Option(0, {})) +
        write.Packet(0, 1'700'000'000'123'456, 60, CountingBytes(5), comments) + write.Packet(0, 5, 60, {}) +
        write.Packet(1, 1'700'000'000'123'456'789, 61, CountingBytes(7), write.Option(1, {})) + write.SimplePacket(9, CountingBytes(9)) +
        write.Section() + write.Interface(101) + write.Packet(0, 1, 3, CountingBytes(3));
    const Bytes saved = Save(capture, false);
    EXPECT_EQ(Told(saved), Told(capture));
    EXPECT_NE(Told(saved).find("-999999995000 1 60/0 00 6"), std::string::npos) << Told(saved);
    EXPECT_EQ(Save(saved, false), saved);
  }
}

TEST(PacketWriter, PcapRefusesWhatItCannotHold) {
  const CaptureWriter write;
  const Bytes start = write.Section() + write.Interface(1, 0, write.Option(14, write.Number(static_cast<uint64_t>(-1), 8))) +
                      write.Interface(101, 0, write.Option(14, write.Number(1u << 31, 8)));
  std::string message;
  const Bytes good = start + write.Packet(0, 1'000'001, 60, CountingBytes(5), write.Option(1, Text("note")));
  EXPECT_EQ(ReadAll(Save(good, true, &message)).frames.at(0).nanoseconds, 1000);
  EXPECT_EQ(message, "");
  Save(good + write.Packet(1, 1, 60, {}), true, &message);
  EXPECT_EQ(message, "t.cap: packet 2 is of link type 101 (LINKTYPE_RAW) behind others of 1, and a pcap file has one: "
                     "--format pcapng");
  for (const Bytes& outside : {write.Packet(0, 0, 60, {}), write.Packet(1, uint64_t{1} << 52, 60, {})}) {
    Save(start + outside, true, &message);
    EXPECT_EQ(message, "t.cap: packet 1 is of a time outside 1970 to 2106, which pcap cannot hold: --format pcapng");
  }
}

TEST(MergeCaptures, GivesTheFramesByTimeAndTellsDamageAtTheEnd) {
  const CaptureWriter write;
  const auto capture = [&](std::vector<uint32_t> seconds, const Bytes& rest) {
    Bytes bytes = write.PcapHeader(0xA1B2C3D4);
    for (const uint32_t second : seconds) bytes = bytes + write.PcapPacket(second, 0, 60, {static_cast<uint8_t>(second)});
    return bytes + rest;
  };
  std::vector<std::unique_ptr<CaptureReader>> readers;
  std::string message;
  int32_t name = 0;
  for (const Bytes& bytes : {capture({5, 7, 7, 20}, {}), capture({1, 7, 9}, Bytes(3)), capture({}, {})}) {
    readers.push_back(OpenCapture(std::make_unique<TrickleSource>(bytes, 9), std::to_string(name++).c_str(), &message));
  }
  const auto reader = MergeCaptures(std::move(readers));
  std::string order;
  CaptureFrame frame;
  while (reader->Next(&frame) == ReadResult::kFrame) {
    order.append(std::to_string(frame.number)).append(1, ':').append(std::to_string(frame.data[0]));
    order.append(frame.file).append(1, ' ');
  }
  EXPECT_EQ(order, "1:11 2:50 3:70 4:70 5:71 6:91 7:200 ");
  EXPECT_EQ(reader->Message(), "1: packet 4, byte 75: the file ends inside a packet header");
}

// As threads keep frames: in batches, of which some are at work while the next ones are read. Kept bytes change with nothing that is
// read behind them, and those of batches that have gone are used again.
TEST(KeptFrames, StayAsTheyAre) {
  const CaptureWriter write;
  Bytes small = write.PcapHeader(0xA1B2C3D4), large = small;
  const auto add = [](Bytes& to, const Bytes& more) { to.insert(to.end(), more.begin(), more.end()); };
  for (uint32_t i = 0; i < 4000; ++i) {
    add(small, write.PcapPacket(2 * i, 0, 200, Bytes(i % 190, static_cast<uint8_t>(i))));
    if (i % 20 == 0) add(large, write.PcapPacket(2 * i + 1, 0, 9000, Bytes(9000 + i * 60, static_cast<uint8_t>(i + 7))));
  }
  for (const size_t step : {size_t{700}, size_t{70000}, SIZE_MAX}) {
    std::string message;
    std::vector<std::unique_ptr<CaptureReader>> readers;
    for (const Bytes& bytes : {small, large}) {
      readers.push_back(OpenCapture(std::make_unique<TrickleSource>(bytes, step), "t.cap", &message));
    }
    const auto reader = MergeCaptures(std::move(readers));
    struct Batch {
      KeptBytes kept;
      std::vector<std::pair<const uint8_t*, Bytes>> frames;
    };
    std::deque<Batch> batches;
    std::set<const uint8_t*> buffers;
    size_t checked = 0;
    const auto finish = [&] {
      for (const auto& [at, bytes] : batches.front().frames) checked += Bytes(at, at + bytes.size()) == bytes;
      batches.pop_front();
    };
    CaptureFrame frame;
    while (reader->Next(&frame) == ReadResult::kFrame) {
      if (batches.empty() || batches.back().frames.size() == 50) batches.emplace_back();
      Batch& batch = batches.back();
      ASSERT_TRUE(reader->Keep(frame, &batch.kept));
      buffers.insert(batch.kept.back().Bytes());
      batch.frames.emplace_back(frame.data, Bytes(frame.data, frame.data + frame.dataLength));
      if (batches.size() > 6) finish();
    }
    while (!batches.empty()) finish();
    EXPECT_EQ(checked, 4200u) << step;
    EXPECT_LT(buffers.size(), 60u) << step;
  }
}

}  // namespace
}  // namespace qxview
