#include <gtest/gtest.h>

#include "tests/capture_bytes.h"

namespace qxview {
namespace {

TEST(PcapReader, ReadsEveryByteOrderAndResolution) {
  struct Kind {
    uint32_t magic;
    int64_t nanosecondsPerTick;
    size_t extra;
  };
  for (bool bigEndian : {false, true}) {
    for (Kind kind : {Kind{0xA1B2C3D4, 1000, 0}, Kind{0xA1B23C4D, 1, 0}, Kind{0xA1B2CD34, 1000, 8}}) {
      CaptureWriter write{bigEndian};
      Bytes more = kind.extra ? write.U32(7) + write.U32(0) : Bytes();
      ReadOutcome read =
          ReadAll(write.PcapHeader(kind.magic) + write.PcapPacket(0xFFFFFFFF, 999999, 1500, CountingBytes(61), more) +
                  write.PcapPacket(1, 5, 0, {}, more));
      ASSERT_EQ(read.result, ReadResult::kEnd) << read.message;
      ASSERT_EQ(read.frames.size(), 2u);
      EXPECT_EQ(read.frames[0].number, 1u);
      EXPECT_EQ(read.frames[0].nanoseconds, 4294967295000000000 + 999999 * kind.nanosecondsPerTick);
      EXPECT_EQ(read.frames[0].capturedLength, 61u);
      EXPECT_EQ(read.frames[0].wireLength, 1500u);
      EXPECT_EQ(read.frames[0].bytes, CountingBytes(61));
      EXPECT_EQ(read.frames[0].interfaceIndex, kind.extra ? 7u : 0u);
      EXPECT_EQ(read.frames[1].number, 2u);
      EXPECT_EQ(read.frames[1].nanoseconds, 1000000000 + 5 * kind.nanosecondsPerTick);
      EXPECT_EQ(read.frames[1].capturedLength, 0u);
    }
  }
}

TEST(PcapReader, CarriesAFractionAboveASecond) {
  CaptureWriter write;
  ReadOutcome read = ReadAll(write.PcapHeader(0xA1B2C3D4) + write.PcapPacket(10, 0xFFFFFFFF, 1, {1}));
  EXPECT_EQ(read.frames.at(0).nanoseconds, 10000000000 + 4294967295000);
}

TEST(PcapReader, TakesLengthsOfOldVersionsTheirWay) {
  struct Case {
    int major, minor;
    uint32_t first, second, captured, wire;
  };
  for (Case c : {Case{2, 4, 4, 9, 4, 9}, Case{2, 4, 4, 2, 4, 2}, Case{2, 2, 9, 4, 4, 9}, Case{2, 3, 9, 4, 4, 9},
                 Case{2, 3, 4, 9, 4, 9}, Case{543, 0, 9, 4, 4, 9}}) {
    CaptureWriter write;
    ReadOutcome read = ReadAll(write.PcapHeader(0xA1B2C3D4, 1, c.minor, c.major) + write.U32(0) + write.U32(0) +
                               write.U32(c.first) + write.U32(c.second) + CountingBytes(4));
    ASSERT_EQ(read.result, ReadResult::kEnd) << c.major << '.' << c.minor;
    EXPECT_EQ(read.frames.at(0).capturedLength, c.captured);
    EXPECT_EQ(read.frames.at(0).wireLength, c.wire);
  }
  CaptureWriter write;
  EXPECT_EQ(ReadAll(write.PcapHeader(0xA1B2C3D4, 1, 4, 3)).message,
            "t.cap: packet 1, byte 0: pcap version 3.4 is not known");
}

TEST(PcapReader, TakesTheLinkTypeWordApart) {
  struct Case {
    uint32_t word;
    uint16_t linkType;
    uint8_t checkSequence;
  };
  for (Case c :
       {Case{1, 1, 0}, Case{0x24000001, 1, 4}, Case{0x14000001, 1, 2}, Case{0x20000001, 1, 0}, Case{0x44000001, 1, 4},
        Case{12, 101, 0}, Case{14, 101, 0}, Case{101, 101, 0}, Case{11, 100, 0}, Case{0x2400010C, 268, 4}}) {
    CaptureWriter write{true};
    ReadOutcome read = ReadAll(write.PcapHeader(0xA1B2C3D4, c.word) + write.PcapPacket(0, 0, 1, {0}));
    EXPECT_EQ(read.frames.at(0).linkType, c.linkType) << std::hex << c.word;
    EXPECT_EQ(read.frames.at(0).checkSequenceLength, c.checkSequence) << std::hex << c.word;
  }
}

TEST(PcapReader, LengthThatLiesIsDamageThatSaysWhere) {
  CaptureWriter write;
  Bytes good = write.PcapHeader(0xA1B2C3D4) + write.PcapPacket(1, 1, 60, CountingBytes(60));
  for (uint32_t length : {262145u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
    ReadOutcome read = ReadAll(good + write.U32(0) + write.U32(0) + write.U32(length) + write.U32(60) + Bytes(60));
    ASSERT_EQ(read.frames.size(), 1u);
    EXPECT_EQ(read.result, ReadResult::kDamaged);
    EXPECT_EQ(read.message, "t.cap: packet 2, byte 100: a captured length of " + std::to_string(length) +
                                " bytes is more than the 262144 a packet can have");
  }
  ReadOutcome largest = ReadAll(write.PcapHeader(0xA1B2C3D4) + write.PcapPacket(1, 1, 262144, Bytes(262144)));
  EXPECT_EQ(largest.result, ReadResult::kEnd);
  EXPECT_EQ(largest.frames.at(0).dataLength, 262144u);
}

TEST(PcapReader, MessageFramesLargerThanTheWindowAreShownInPart) {
  CaptureWriter write;
  const size_t large = (1u << 20) + 4711;
  Bytes file = write.PcapHeader(0xA1B2C3D4, 231) + write.PcapPacket(1, 1, large, CountingBytes(large)) +
               write.PcapPacket(2, 2, 3, {1, 2, 3});
  ReadOutcome read = ReadAll(file, 100000);
  ASSERT_EQ(read.frames.size(), 2u) << read.message;
  EXPECT_EQ(read.frames[0].capturedLength, large);
  EXPECT_EQ(read.frames[0].dataLength, (1u << 20) - 16);
  EXPECT_EQ(read.frames[1].bytes, Bytes({1, 2, 3}));
  EXPECT_EQ(ReadAll(Bytes(file.begin(), file.end() - 1000)).result, ReadResult::kDamaged);
}

}  // namespace
}  // namespace qxview
