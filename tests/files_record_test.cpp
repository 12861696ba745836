#include <gtest/gtest.h>

#include "files/record_builder.h"
#include "tests/capture_bytes.h"

namespace qxview {
namespace {

class RecordBuilderTest : public testing::Test {
 protected:
  const FrameRecord* Build(uint16_t linkType, const Bytes& bytes) {
    frame_.linkType = linkType;
    bytes_ = bytes;
    frame_.data = bytes_.data();
    frame_.dataLength = frame_.capturedLength = static_cast<uint32_t>(bytes_.size());
    if (frame_.wireLength < frame_.capturedLength) frame_.wireLength = frame_.capturedLength;
    return builder_->Build(frame_);
  }
  static Bytes DataOf(const FrameRecord* record) {
    return Bytes(FrameData(record), FrameData(record) + record->capturedLength);
  }
  static Bytes ExtensionOf(const FrameRecord* record, uint16_t tag) {
    int32_t length;
    const uint8_t* data = FindExtension(record, tag, &length);
    return data ? Bytes(data, data + length) : Bytes();
  }

  std::unique_ptr<RecordBuilder> builder_ = std::make_unique<RecordBuilder>();
  CaptureFrame frame_{};
  Bytes bytes_;
};

TEST_F(RecordBuilderTest, FillsTheWholeHeader) {
  frame_.number = 0x123456789A;
  frame_.nanoseconds = -5;
  frame_.wireLength = 1514;
  frame_.receiveErrors = kReceiveCrc;
  frame_.direction = LinkDirection::kSent;
  const FrameRecord* record = Build(1, CountingBytes(60));
  EXPECT_EQ(record->nanoseconds, -5);
  EXPECT_EQ(record->packetNumber, 0x123456789Au);
  EXPECT_EQ(record->capturedLength, 60);
  EXPECT_EQ(record->recordLength, kRecordHeader + 60);
  EXPECT_EQ(WireLength(record), 1514u);
  EXPECT_EQ(record->linkType, 1);
  EXPECT_EQ(record->receiveErrors, kReceiveCrc);
  EXPECT_EQ(record->direction, 2);
  EXPECT_EQ(record->flags, 0);
  EXPECT_EQ(record->partial, 0);  // cut on capture is not cut on saving
  EXPECT_EQ(DataOf(record), CountingBytes(60));
}

TEST_F(RecordBuilderTest, GivesEveryLinkTypeItsMedium) {
  struct Case {
    uint16_t linkType;
    const char* medium;
  };
  char scratch[kMediumNameScratch];
  for (Case c : {Case{1, "Ethernet"}, Case{6, "TokenRing"}, Case{10, "FDDI"}, Case{9, "WAN"}, Case{50, "WAN"},
                 Case{104, "WAN"}, Case{107, "WAN"}, Case{204, "WAN"}, Case{100, "ATM"}, Case{224, "FibreChannel"},
                 Case{225, "FibreChannel"}, Case{105, "802.11"}, Case{101, "RawIP"}, Case{177, "Medium5"}}) {
    EXPECT_STREQ(MediumName(Build(c.linkType, Bytes(40)), scratch), c.medium) << c.linkType;
    Build(c.linkType, {});  // nothing at all is no trouble either
  }
  FrameRecord bare{};
  bare.mediaType = 255;
  EXPECT_STREQ(MediumName(&bare, scratch), "Medium255");
  bare.mediaType = 14;
  EXPECT_STREQ(MediumName(&bare, scratch), "Medium14");
  EXPECT_STREQ(LinkTypeName(1), "LINKTYPE_ETHERNET");
  EXPECT_STREQ(LinkTypeName(231), "LINKTYPE_DBUS");
  EXPECT_STREQ(LinkTypeName(60000), "unknown");
}

TEST_F(RecordBuilderTest, FindsTheNetworkHeaderOfRawFrames) {
  const Bytes rest(30);
  auto cooked = [&](uint8_t type, uint16_t hardware, uint16_t protocol) {
    CaptureWriter write{true};
    return write.U16(type) + write.U16(hardware) + Bytes(10) + write.U16(protocol) + rest;
  };
  auto cooked2 = [&](uint8_t type, uint16_t protocol) {
    CaptureWriter write{true};
    return write.U16(protocol) + Bytes(6) + write.U16(1) + Bytes({type}) + Bytes(9) + rest;
  };
  struct Case {
    uint16_t linkType;
    Bytes bytes;
    int skip, ethertype, direction;
  };
  // clang-format off
  for (const Case& c : {
      Case{101, Bytes({0x45}) + rest, 0, 0x0800, 0}, Case{101, Bytes({0x60}) + rest, 0, 0x86DD, 0},
      Case{101, Bytes({0x10}) + rest, 0, kRawUnknown, 0}, Case{101, {}, 0, kRawUnknown, 0},
      Case{228, Bytes({0x60}) + rest, 0, 0x0800, 0}, Case{229, Bytes({0x45}) + rest, 0, 0x86DD, 0},
      Case{0, Bytes({2, 0, 0, 0}) + rest, 4, 0x0800, 0}, Case{0, Bytes({0, 0, 0, 2}) + rest, 4, 0x0800, 0},
      Case{0, Bytes({24, 0, 0, 0}) + rest, 4, 0x86DD, 0}, Case{0, Bytes({0, 0, 0, 28}) + rest, 4, 0x86DD, 0},
      Case{0, Bytes({30, 0, 0, 0}) + rest, 4, 0x86DD, 0}, Case{0, Bytes({0, 1, 2, 3}) + rest, 4, kRawUnknown, 0},
      Case{0, {2, 0, 0}, 3, kRawUnknown, 0}, Case{108, Bytes({0, 0, 0, 24}) + rest, 4, 0x86DD, 0},
      Case{113, cooked(0, 1, 0x0800), 16, 0x0800, 1}, Case{113, cooked(4, 1, 0x0004), 16, kRawLlc, 2},
      Case{113, cooked(3, 1, 0x0001), 16, kRawNovell, 0}, Case{113, cooked(4, 824, 0x0800), 16, kRawUnknown, 2},
      Case{113, cooked(0, 1, 0), 16, kRawUnknown, 1}, Case{113, Bytes(15), 15, kRawUnknown, 0},
      Case{276, cooked2(4, 0x86DD), 20, 0x86DD, 2}, Case{276, Bytes(19), 19, kRawUnknown, 0},
  }) {
    // clang-format on
    const FrameRecord* record = Build(c.linkType, c.bytes);
    EXPECT_EQ(record->mediaType, 0);
    EXPECT_EQ(record->rawSkip, c.skip) << c.linkType;
    EXPECT_EQ(record->rawEthertype, c.ethertype) << c.linkType;
    EXPECT_EQ(record->direction, c.direction) << c.linkType;
    EXPECT_EQ(DataOf(record), c.bytes);
  }
}

TEST_F(RecordBuilderTest, MovesRadioHeadersOutOfTheFrame) {
  CaptureWriter little{false}, big{true};
  const Bytes frame = CountingBytes(30, 0x80);
  auto radiotap = [&](const Bytes& present, const Bytes& fields) {
    return Bytes({0, 0}) + little.U16(4 + present.size() + fields.size()) + present + fields;
  };
  struct Case {
    uint16_t linkType;
    Bytes header;
    int checkSequence;
    uint32_t errors;
  };
  for (const Case& c : {
           Case{127, radiotap(little.U32(0), {}), 0, 0},
           Case{127, radiotap(little.U32(2), {0x10}), 4, 0},
           Case{127, radiotap(little.U32(2), {0x50}), 4, kReceiveCrc},
           Case{127, radiotap(little.U32(2), {}), 0, 0},
           Case{127, radiotap(little.U32(3), CountingBytes(8) + Bytes({0x10})), 4, 0},
           // Two further words: the time stamp is aligned from the header's start.
           Case{127,
                radiotap(little.U32(0x80000003) + little.U32(0x80000000) + little.U32(0), Bytes(8) + Bytes({0x40})),
                0, kReceiveCrc},
           Case{127, radiotap(little.U32(0x80000002) + little.U32(0x80000000), {}), 0, 0},
           Case{163, big.U32(0x80211001) + big.U32(64) + Bytes(56), 0, 0},
           Case{119, big.U32(0x80211002) + big.U32(64) + Bytes(56), 0, 0},
           Case{119, little.U32(0x44) + little.U32(144) + Bytes(136), 0, 0},
           Case{119, big.U32(0x44) + big.U32(144) + Bytes(136), 0, 0},
           Case{192,
                Bytes({0, 0}) + little.U16(32) + little.U32(105) + little.U16(2) + little.U16(20) + Bytes(8) +
                    little.U16(5) + Bytes(10),
                4, kReceiveCrc},
           Case{192, Bytes({0, 0}) + little.U16(12) + little.U32(105) + little.U16(2) + little.U16(2000), 0, 0},
       }) {
    frame_.wireLength = static_cast<uint32_t>(c.header.size() + frame.size());
    const FrameRecord* record = Build(c.linkType, c.header + frame);
    EXPECT_EQ(record->mediaType, 9) << c.linkType;
    EXPECT_EQ(ExtensionOf(record, kExtensionMedium), c.header) << c.linkType;
    EXPECT_EQ(MovedHeaderLength(record), static_cast<int32_t>(c.header.size()));
    EXPECT_EQ(DataOf(record), frame) << c.linkType;
    EXPECT_EQ(record->wireLength, frame.size());
    EXPECT_EQ(record->checkSequenceLength, c.checkSequence) << c.linkType;
    EXPECT_EQ(record->receiveErrors, c.errors) << c.linkType;
  }
}

TEST_F(RecordBuilderTest, OtherHeadersAndHeadersThatLie) {
  for (uint16_t linkType : {127, 192, 119, 163}) {
    for (const Bytes& bytes : {Bytes({0, 0, 200, 0, 105, 0, 0, 0}), Bytes({0, 0, 3, 0, 105, 0, 0, 0}), Bytes(5)}) {
      const FrameRecord* record = Build(linkType, bytes);
      EXPECT_EQ(record->capturedLength, 0) << linkType;
      EXPECT_EQ(ExtensionOf(record, kExtensionMedium), bytes) << linkType;
    }
  }
  const Bytes ethernetInside = Bytes({0, 0, 8, 0, 1, 0, 0, 0}) + CountingBytes(20);
  const FrameRecord* record = Build(192, ethernetInside);
  EXPECT_EQ(record->mediaType, 5);
  EXPECT_EQ(DataOf(record), ethernetInside);

  frame_.wireLength = 3;
  record = Build(206, {1, 0x18, 0x41});  // Frame Relay with its direction
  EXPECT_EQ(record->mediaType, 3);
  EXPECT_EQ(ExtensionOf(record, kExtensionMedium), Bytes({2, 0, 0, 0, 1}));
  EXPECT_EQ(Bytes(MovedHeader(record), MovedHeader(record) + MovedHeaderLength(record)), Bytes({1}));
  EXPECT_EQ(record->wireLength, 2u);
  EXPECT_EQ(DataOf(record), Bytes({0x18, 0x41}));

  record = Build(123, {0x82, 1, 0, 35, 7});  // SunATM
  EXPECT_EQ(record->mediaType, 6);
  EXPECT_EQ(ExtensionOf(record, kExtensionAtm), Bytes({0x82, 1, 0, 35}));
  EXPECT_EQ(record->direction, 2);
  EXPECT_EQ(DataOf(record), Bytes({7}));
}

TEST_F(RecordBuilderTest, CutsWhatDoesNotFit) {
  const size_t most = kMaxRecord - kRecordHeader;
  const FrameRecord* record = Build(1, Bytes(most));
  EXPECT_EQ(record->recordLength, kMaxRecord);
  EXPECT_EQ(record->flags, 0);
  record = Build(1, CountingBytes(most + 1));
  EXPECT_EQ(record->capturedLength, most);
  EXPECT_EQ(record->wireLength, most + 1);
  EXPECT_EQ(record->flags, kRecordCutToFit);
  EXPECT_EQ(record->partial, 1);
  EXPECT_EQ(builder_->CutFrames(), 1u);

  // A radio header of the largest length, in a frame of the largest size.
  record = Build(127, Bytes({0, 0, 0xFF, 0xFF}) + Bytes(262140));
  EXPECT_EQ(record->recordLength, kMaxRecord);
  EXPECT_EQ(record->capturedLength, 0);
  EXPECT_EQ(record->flags, kRecordCutToFit);
  EXPECT_EQ(builder_->CutFrames(), 2u);
}

TEST_F(RecordBuilderTest, CountsTheCheckSequenceThatIsThere) {
  for (uint32_t missing = 0; missing < 7; ++missing) {
    frame_.checkSequenceLength = 4;
    frame_.wireLength = 64;
    EXPECT_EQ(Build(1, Bytes(64 - missing))->checkSequenceLength, missing < 4 ? 4 - missing : 0);
  }
}

}  // namespace
}  // namespace qxview
