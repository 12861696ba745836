// Files cut at every byte, corrupted, compressed, and read from pipes.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <cstdio>
#include <fstream>

#include "files/record_builder.h"
#include "tests/capture_bytes.h"
#ifndef _WIN32
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace qxview {
namespace {

// A file in pieces: each ends where a reader may find the regular end of the file.
struct BuiltFile {
  std::vector<Bytes> pieces;
  std::vector<bool> isPacket;

  void Add(const Bytes& piece, bool packet = false) {
    pieces.push_back(piece);
    isPacket.push_back(packet);
  }
  Bytes All() const {
    Bytes all;
    for (const Bytes& piece : pieces) all = all + piece;
    return all;
  }
};

BuiltFile BuildPcap(bool bigEndian) {
  CaptureWriter write{bigEndian};
  BuiltFile file;
  file.Add(write.PcapHeader(0xA1B23C4D, 127));
  file.Add(write.PcapPacket(1, 2, 60, Bytes({0, 0, 9, 0, 2, 0, 0, 0, 0x10}) + CountingBytes(21)), true);
  file.Add(write.PcapPacket(3, 4, 0, {}), true);
  file.Add(write.PcapPacket(5, 6, 10, CountingBytes(10)), true);
  return file;
}

BuiltFile BuildPcapng(bool bigEndian) {
  CaptureWriter write{bigEndian};
  BuiltFile file;
  file.Add(write.Section());
  file.Add(write.Interface(113, 40, write.Option(9, {0x8A}) + write.Option(14, write.Number(5, 8))));
  file.Add(write.Packet(0, 77, 100, CountingBytes(33), write.Option(2, write.U32(0x01000001))), true);
  file.Add(write.Block(4, CountingBytes(24)));
  file.Add(write.SimplePacket(21, CountingBytes(21)), true);
  file.Add(CaptureWriter{!bigEndian}.Section());
  file.Add(CaptureWriter{!bigEndian}.Interface(192));
  file.Add(CaptureWriter{!bigEndian}.ObsoletePacket(0, 5, Bytes({0, 0, 8, 0, 105, 0, 0, 0, 1})), true);
  return file;
}

std::vector<BuiltFile> BuildAll() {
  return {BuildPcap(false), BuildPcap(true), BuildPcapng(false), BuildPcapng(true)};
}

bool SamePrefix(const ReadOutcome& part, const ReadOutcome& whole) {
  if (part.frames.size() > whole.frames.size()) return false;
  for (size_t i = 0; i < part.frames.size(); ++i) {
    if (part.frames[i].bytes != whole.frames[i].bytes) return false;
    if (part.frames[i].nanoseconds != whole.frames[i].nanoseconds) return false;
  }
  return true;
}

TEST(DamagedCapture, EveryCutDeliversThePacketsBeforeIt) {
  for (const BuiltFile& file : BuildAll()) {
    const Bytes all = file.All();
    const ReadOutcome whole = ReadAll(all);
    ASSERT_EQ(whole.result, ReadResult::kEnd) << whole.message;
    size_t piece = 0, pieceEnd = 0, packets = 0;
    for (size_t cut = 0; cut <= all.size(); ++cut) {
      while (piece < file.pieces.size() && pieceEnd + file.pieces[piece].size() <= cut) {
        pieceEnd += file.pieces[piece].size();
        packets += file.isPacket[piece++];
      }
      ReadOutcome read = ReadAll(Bytes(all.begin(), all.begin() + cut), 1 + cut % 7);
      ASSERT_EQ(read.frames.size(), packets) << "cut at " << cut;
      ASSERT_TRUE(SamePrefix(read, whole)) << "cut at " << cut;
      const bool regularEnd = cut == pieceEnd && cut > 0;
      ASSERT_EQ(read.result, regularEnd ? ReadResult::kEnd : ReadResult::kDamaged) << "cut at " << cut;
      if (regularEnd) continue;
      const std::string where = "packet " + std::to_string(packets + 1) + ", byte " + std::to_string(pieceEnd) + ": ";
      ASSERT_EQ(read.message.rfind("t.cap: ", 0), 0u);
      ASSERT_TRUE(cut < 4 || read.message.find(where) != std::string::npos) << read.message;
    }
  }
}

TEST(DamagedCapture, RandomCorruptionStaysWithinBounds) {
  RecordBuilder* builder = new RecordBuilder;
  uint64_t state = 0x9E3779B97F4A7C15;
  auto random = [&state](size_t below) {
    state ^= state << 13;
    state ^= state >> 7;
    state ^= state << 17;
    return static_cast<size_t>(state % below);
  };
  uint64_t checksum = 0;
  for (const BuiltFile& file : BuildAll()) {
    for (bool compressed : {false, true}) {
      const Bytes good = compressed ? Gzip(file.All()) : file.All();
      for (int round = 0; round < 4000; ++round) {
        Bytes bad = good;
        for (size_t i = random(6) + 1; i > 0; --i) {
          const uint8_t values[] = {0, 0xFF, 0x7F, 0x80, 1, static_cast<uint8_t>(random(256))};
          bad[random(4) + random(bad.size() - 3)] = values[random(6)];
        }
        if (random(4) == 0) bad.resize(random(bad.size()));
        ReadOutcome read = ReadAll(bad, 1 + random(200));
        ASSERT_EQ(read.message.empty(), read.result == ReadResult::kEnd);
        ASSERT_LE(read.frames.size(), 4000u);
        for (ReadFrameCopy& frame : read.frames) {
          ASSERT_LE(frame.dataLength, frame.capturedLength);
          frame.data = frame.bytes.data();
          frame.linkType = static_cast<uint16_t>(random(3) ? frame.linkType : random(300));
          const FrameRecord* record = builder->Build(frame);
          ASSERT_EQ(record->recordLength, record->dataOffset + record->capturedLength);
          ASSERT_LE(record->rawSkip, record->capturedLength);
          ASSERT_LE(MovedHeaderLength(record) + kRecordHeader, record->dataOffset);
          for (uint32_t i = 0; i < record->recordLength; ++i) checksum += reinterpret_cast<const uint8_t*>(record)[i];
        }
      }
    }
  }
  EXPECT_NE(checksum, 0u);
  delete builder;
}

TEST(GzipCapture, ReadsMembersAndIgnoresPadding) {
  const Bytes plain = BuildPcap(false).All();
  const ReadOutcome whole = ReadAll(plain);
  const Bytes first(plain.begin(), plain.begin() + 50), second(plain.begin() + 50, plain.end());
  for (size_t step : {size_t{1}, size_t{17}, SIZE_MAX}) {
    for (const Bytes& file :
         {Gzip(plain), Gzip(first) + Gzip(second), Gzip(first) + Gzip({}) + Gzip(second) + Bytes(512)}) {
      ReadOutcome read = ReadAll(file, step);
      EXPECT_EQ(read.result, ReadResult::kEnd) << read.message;
      EXPECT_EQ(read.frames.size(), 3u);
      EXPECT_TRUE(SamePrefix(read, whole));
    }
  }
}

TEST(GzipCapture, EveryCutAndABadChecksumAreDamage) {
  const Bytes plain = BuildPcapng(true).All();
  const ReadOutcome whole = ReadAll(plain);
  Bytes packed = Gzip(plain);
  for (size_t cut = 0; cut < packed.size(); ++cut) {
    ReadOutcome read = ReadAll(Bytes(packed.begin(), packed.begin() + cut));
    EXPECT_EQ(read.result, ReadResult::kDamaged) << "cut at " << cut;
    EXPECT_TRUE(SamePrefix(read, whole)) << "cut at " << cut;
  }
  packed[packed.size() - 8] ^= 1;
  ReadOutcome read = ReadAll(packed);
  EXPECT_EQ(read.frames.size(), whole.frames.size());
  EXPECT_EQ(read.message, "t.cap: packet 4, byte " + std::to_string(plain.size()) +
                              " of the uncompressed data: gzip: incorrect data check");
}

TEST(OpenCapture, SaysWhatIsNoCapture) {
  std::string message;
  EXPECT_EQ(OpenCapture("no/such/file", &message), nullptr);
  EXPECT_EQ(message.find("no/such/file: "), 0u) << message << ", and what the system says";
  EXPECT_EQ(ReadAll({}).message, "t.cap: the file is empty");
  EXPECT_EQ(ReadAll({'P', 'K', 3, 4}).message, "t.cap: not a capture file (pcap, pcapng or BFR)");
  EXPECT_EQ(ReadAll(Gzip({'x'})).message, "t.cap: not a capture file (pcap, pcapng or BFR)");
  EXPECT_EQ(OpenCapture(".", &message), nullptr);
  EXPECT_EQ(message, ".: Is a directory");
}

#ifndef _WIN32
class TemporaryDirectory {
 public:
  TemporaryDirectory() : path_(testing::TempDir() + "qxviewXXXXXX") {
    if (!mkdtemp(path_.data())) std::abort();
  }
  ~TemporaryDirectory() {
    std::remove(File().c_str());
    rmdir(path_.c_str());
  }
  std::string File() const { return path_ + "/capture"; }

 private:
  std::string path_;
};

TEST(OpenCapture, ReadsFilesAndStandardInputFromWhereItStands) {
  TemporaryDirectory directory;
  const Bytes all = BuildPcapng(false).All();
  const Bytes file = Bytes({'s', 'k', 'i', 'p'}) + all;
  std::ofstream(directory.File(), std::ios::binary).write(reinterpret_cast<const char*>(file.data()), file.size());
  const int saved = dup(0);
  const int input = open(directory.File().c_str(), O_RDONLY);
  ASSERT_EQ(lseek(input, 4, SEEK_SET), 4);
  dup2(input, 0);
  close(input);
  std::string message;
  std::unique_ptr<CaptureReader> reader = OpenCapture("-", &message);
  ASSERT_NE(reader, nullptr) << message;
  CaptureFrame frame;
  ASSERT_EQ(reader->Next(&frame), ReadResult::kFrame);
  EXPECT_GT(reader->Percent(), 0);
  EXPECT_LE(reader->Percent(), 100);
  ReadOutcome rest = ReadToEnd(std::move(reader), message);
  dup2(saved, 0);
  close(saved);
  EXPECT_EQ(rest.result, ReadResult::kEnd);
  EXPECT_EQ(rest.frames.size(), 2u);
}

TEST(OpenCapture, PipeDeliversPacketsAsTheyCome) {
  TemporaryDirectory directory;
  ASSERT_EQ(mkfifo(directory.File().c_str(), 0600), 0);
  const int pipe = open(directory.File().c_str(), O_RDWR);
  const BuiltFile file = BuildPcap(false);
  auto send = [&](size_t piece) {
    const Bytes& bytes = file.pieces[piece];
    ASSERT_EQ(write(pipe, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  };
  send(0);
  std::string message;
  std::unique_ptr<CaptureReader> reader = OpenCapture(directory.File().c_str(), &message);
  ASSERT_NE(reader, nullptr) << message;
  EXPECT_EQ(reader->Percent(), -1);
  CaptureFrame frame;
  for (size_t piece = 1; piece < file.pieces.size(); ++piece) {
    send(piece);
    ASSERT_EQ(reader->Next(&frame), ReadResult::kFrame);  // would wait for ever if it asked for more
    EXPECT_EQ(frame.number, piece);
  }
  close(pipe);
  EXPECT_EQ(reader->Next(&frame), ReadResult::kEnd);
}
#endif

}  // namespace
}  // namespace qxview
