#include <gtest/gtest.h>

#include <limits>

#include "files/capture_formats.h"
#include "tests/capture_bytes.h"

namespace qxview {
namespace {

TEST(PcapngReader, SectionsHaveTheirOwnOrderAndInterfaces) {
  CaptureWriter little{false}, big{true};
  Bytes file;
  for (const CaptureWriter& write : {little, big, little}) {
    file = file + write.Section() + write.Interface(1, 0, write.Option(9, {9})) +
           write.Block(5, CountingBytes(40)) +  // interface statistics
           write.Interface(12, 96, write.Option(2, {'e', 't', 'h'}) + write.Option(9, {3}) + write.Option(0, {})) +
           write.Packet(1, 0x123456789A, 200, CountingBytes(5)) +
           write.Packet(0, 0x123456789A, 60, CountingBytes(60)) + write.SimplePacket(7, CountingBytes(7)) +
           write.ObsoletePacket(1, 1500, CountingBytes(9));
  }
  ReadOutcome read = ReadAll(file, 13);
  ASSERT_EQ(read.result, ReadResult::kEnd) << read.message;
  ASSERT_EQ(read.frames.size(), 12u);
  for (size_t i = 0; i < 12; i += 4) {
    const ReadFrameCopy* frame = &read.frames[i];
    EXPECT_EQ(frame[0].number, i + 1);
    EXPECT_EQ(frame[0].linkType, 101);
    EXPECT_EQ(frame[0].interfaceIndex, 1u);
    EXPECT_EQ(frame[0].nanoseconds, 0x123456789A * 1000000);
    EXPECT_EQ(frame[0].wireLength, 200u);
    EXPECT_EQ(frame[0].bytes, CountingBytes(5));
    EXPECT_EQ(frame[1].linkType, 1);
    EXPECT_EQ(frame[1].nanoseconds, 0x123456789A);
    EXPECT_EQ(frame[1].bytes, CountingBytes(60));
    EXPECT_EQ(frame[2].nanoseconds, 0);
    EXPECT_EQ(frame[2].bytes, CountingBytes(7));
    EXPECT_EQ(frame[3].nanoseconds, 1500000000);
    EXPECT_EQ(frame[3].bytes, CountingBytes(9));
  }
}

TEST(PcapngReader, ScalesTicks) {
  constexpr uint64_t kAll = std::numeric_limits<uint64_t>::max();
  constexpr int64_t kMost = std::numeric_limits<int64_t>::max() / 1000 * 1000;   // whole microseconds
  constexpr int64_t kLeast = std::numeric_limits<int64_t>::min() / 1000 * 1000;
  struct Case {
    uint64_t ticks;
    uint8_t resolution;
    int64_t offset, nanoseconds;
  };
  // clang-format off
  for (Case c : {
      Case{1234567, 6, 0, 1234567000}, Case{3, 0, 0, 3000000000}, Case{3, 0, -5, -2000000000},
      Case{1700000000123456789, 9, 0, 1700000000123456789}, Case{1700000000123456789, 10, 0, 170000000012345678},
      Case{1700000000123456789, 12, 1000, 1701000000123456}, Case{kAll, 19, 0, 1844674407},
      Case{kAll, 20, 0, 184467440}, Case{kAll, 28, 0, 1}, Case{kAll, 29, 0, 0}, Case{kAll, 127, 0, 0},
      Case{kAll, 6, 0, kMost}, Case{kAll, 9, std::numeric_limits<int64_t>::max(), kMost},
      Case{0, 9, std::numeric_limits<int64_t>::min(), kLeast},
      Case{5, 0x80, 0, 5000000000}, Case{3, 0x81, 0, 1500000000},
      Case{(uint64_t{7} << 20) + (1 << 19), 0x94, 0, 7500000000},
      Case{(uint64_t{7} << 32) + (1u << 30), 0xA0, 0, 7250000000},
      Case{(uint64_t{7} << 60) + (uint64_t{1} << 59), 0xBC, 1, 8500000000}, Case{kAll, 0xBF, 0, 1999999999},
      Case{kAll, 0xC0, 0, 999999999}, Case{kAll, 0xC1, 0, 499999999}, Case{kAll, 0xFF, 0, 0},
  }) {
    // clang-format on
    EXPECT_EQ(TicksToNanoseconds(c.ticks, {c.resolution, c.offset}), c.nanoseconds)
        << c.ticks << " at " << int{c.resolution} << " plus " << c.offset;
  }
}

TEST(PcapngReader, UsesInterfaceAndPacketOptions) {
  for (bool bigEndian : {false, true}) {
    CaptureWriter write{bigEndian};
    auto flags = [&](uint32_t value) { return write.Option(1, {'x'}) + write.Option(2, write.U32(value)); };
    Bytes file = write.Section() +
                 write.Interface(1, 0, write.Option(13, {4}) + write.Option(14, write.Number(-100, 8))) +
                 write.Interface(1, 0, write.Option(13, {32})) + write.Packet(0, 1, 9, Bytes(9), flags(1)) +
                 write.Packet(0, 1, 9, Bytes(9), flags(2 | 2 << 5 | 1u << 24 | 1u << 28)) +
                 write.ObsoletePacket(1, 1, Bytes(9), flags(3 | 1u << 25 | 1u << 26 | 1u << 31)) +
                 write.Packet(1, 1, 9, Bytes(9), write.U16(2) + write.U16(400));  // an option that lies
    ReadOutcome read = ReadAll(file);
    ASSERT_EQ(read.frames.size(), 4u) << read.message;
    EXPECT_EQ(read.frames[0].nanoseconds, -99999999000);
    EXPECT_EQ(read.frames[0].direction, LinkDirection::kReceived);
    EXPECT_EQ(read.frames[0].receiveErrors, 0u);
    EXPECT_EQ(read.frames[0].checkSequenceLength, 4);
    EXPECT_EQ(read.frames[1].direction, LinkDirection::kSent);
    EXPECT_EQ(read.frames[1].receiveErrors, kReceiveCrc | kReceiveAlignment);
    EXPECT_EQ(read.frames[1].checkSequenceLength, 2);
    EXPECT_EQ(read.frames[2].direction, LinkDirection::kUnknown);
    EXPECT_EQ(read.frames[2].receiveErrors, kReceiveTooBig | kReceiveTooSmall | kReceiveOther);
    EXPECT_EQ(read.frames[2].checkSequenceLength, 4);
    EXPECT_EQ(read.frames[3].receiveErrors, 0u);
  }
}

TEST(PcapngReader, SimplePacketsAreCutAndPaddedAsTheirWritersDid) {
  CaptureWriter write;
  Bytes uncounted = write.SimplePacket(5, CountingBytes(5));  // a length without the padding
  uncounted[4] = uncounted[uncounted.size() - 4] = 21;
  ReadOutcome read = ReadAll(write.Section() + write.Interface(1, 10) + write.SimplePacket(1000, CountingBytes(10)) +
                             uncounted + write.SimplePacket(4, CountingBytes(4)));
  ASSERT_EQ(read.frames.size(), 3u) << read.message;
  EXPECT_EQ(read.frames[0].bytes, CountingBytes(10));
  EXPECT_EQ(read.frames[0].wireLength, 1000u);
  EXPECT_EQ(read.frames[1].bytes, CountingBytes(5));
  EXPECT_EQ(read.frames[2].bytes, CountingBytes(4));
}

TEST(PcapngReader, PassesOverLargeBlocksAndShowsLargeFramesInPart) {
  CaptureWriter write;
  const size_t large = 3u << 20;
  Bytes start = write.Section() + write.Interface(231);
  Bytes file = start + write.Block(0x0BAD, Bytes(large)) + write.Packet(0, 1, large, Bytes(large)) +
               write.Packet(0, 2, 3, {1, 2, 3});
  ReadOutcome read = ReadAll(file, 70000);
  ASSERT_EQ(read.frames.size(), 2u) << read.message;
  EXPECT_EQ(read.frames[0].dataLength, (1u << 20) - 28);
  EXPECT_EQ(read.frames[0].capturedLength, large);
  EXPECT_EQ(read.frames[1].bytes, Bytes({1, 2, 3}));

  file[start.size() + large + 8] ^= 1;  // the closing length of the large block
  read = ReadAll(file);
  EXPECT_EQ(read.frames.size(), 0u);
  EXPECT_EQ(read.message,
            "t.cap: packet 1, byte 48: a block begins with a length of 3145740 bytes and ends with one "
            "of 3145744");
}

TEST(PcapngReader, StructuresThatLieAreDamage) {
  CaptureWriter write;
  const Bytes good = write.Section() + write.Interface(1) + write.Packet(0, 1, 8, Bytes(8));
  const Bytes noRoom = write.Block(6, write.U32(0) + Bytes(8) + write.U32(9) + write.U32(9) + Bytes(8));
  Bytes badEnd = write.Packet(0, 1, 8, Bytes(8));
  badEnd.back() = 1;
  Bytes badOrder = write.Section();
  badOrder[8] = 0;
  struct Case {
    Bytes block;
    const char* reason;
  };
  for (const Case& c : {
           Case{noRoom, "a captured length of 9 bytes in a block with room for 8"},
           Case{badEnd, "a block begins with a length of 40 bytes and ends with one of 16777256"},
           Case{badOrder, "a section header without a byte-order magic"},
           Case{write.Section(2), "pcapng version 2.0 is not known"},
           Case{write.Packet(1, 1, 8, Bytes(8)), "a packet of interface 1 in a section with 1"},
           Case{write.Section() + write.SimplePacket(1, {1}), "a packet of interface 0 in a section with 0"},
           Case{write.Block(6, Bytes(16)), "a packet block with a length of 28 bytes"},
           Case{write.Block(1, Bytes(4)), "an interface description with a length of 16 bytes"},
           Case{write.U32(5) + write.U32(0) + Bytes(20), "a block with a length of 0 bytes"},
           Case{write.U32(5) + write.U32(0xFFFFFFFC) + Bytes(20), "a block with a length of 4294967292 bytes"},
           Case{write.U32(5) + write.U32(0x00800000) + Bytes(20), "the file ends inside a block"},
           Case{write.SimplePacket(9, Bytes(8)), "a captured length of 9 bytes in a block with room for 8"},
       }) {
    ReadOutcome read = ReadAll(good + c.block);
    EXPECT_EQ(read.frames.size(), 1u) << c.reason;
    EXPECT_EQ(read.result, ReadResult::kDamaged);
    EXPECT_NE(read.message.find(c.reason), std::string::npos) << read.message;
    EXPECT_EQ(read.message.rfind("t.cap: packet 2, byte ", 0), 0u) << read.message;
  }
}

TEST(PcapngReader, InterfacesAreBounded) {
  CaptureWriter write;
  const Bytes interface = write.Interface(1);
  Bytes file = write.Section();
  for (int i = 0; i < 65537; ++i) file.insert(file.end(), interface.begin(), interface.end());
  EXPECT_NE(ReadAll(file).message.find("more than 65536 interfaces"), std::string::npos);
}

}  // namespace
}  // namespace qxview
