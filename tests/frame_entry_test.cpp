#include "tests/support/transport.h"

namespace qxview::testing {
namespace {

TEST(ReceiveErrors, FirstMatchWins) {
  const std::pair<uint32_t, const char*> notes[] = {
      {0, ""},           {0x03, "[Alignment+CRC])"}, {0x07, "[Alignment+CRC])"}, {0x01, "[Alignment error]"},
      {0x06, "[CRC error]"}, {0x04, "[Frame Too Small]"}, {0x0C, "[Frame Too Small]"}, {0x08, "[Frame Too Big]"},
      {0x40, "[Abort error]"}, {0x80, "[RBit error]"},   {0x10, "[Undefined error]"}, {0x100, "[Undefined error]"}};
  for (const auto& [errors, note] : notes) EXPECT_STREQ(ReceiveErrorNote(errors), note) << errors;
  TestView view;
  Record record(Ethernet(0x0806, Bytes(46)));
  record->receiveErrors = 0x42;
  view.Decode(record);
  EXPECT_EQ(view.Text().substr(0, 41), "Packet 1:  60 bytes captured  [CRC error]");
}

TEST(FrameEntry, MediaWithoutADecoderGiveNothing) {
  for (const uint8_t medium : {5, 7, 10, 14, 255}) {
    TestView view;
    EXPECT_EQ(view.Decode(Bytes(60), medium), 0);
    EXPECT_EQ(view.Text(), "");
  }
}

TEST(FrameEntry, SkippedBytesKeepOffsetsOfTheFrame) {
  TestView view;
  Record record(Bytes(4) + Ethernet(0x0806, Hex("0001 0800 06 04 0001") + Bytes(38)));
  view.Decode(record, 4);
  EXPECT_NE(view.Text().find("Ethertype: 0x0806 = ARP {16+2}"), std::string::npos) << view.Text();
}

TEST(FrameEntry, PartialRecordsSaySo) {
  TestView view;
  Record record(Ethernet(0x0806, Bytes(10)));
  record->partial = 1;
  record->wireLength = 1514;
  view.Decode(record);
  EXPECT_NE(view.Text().find("  Frame network size: 1518 (including 4 bytes CRC) {0+24}\n"
                             "  Saved partial packet size:  24 {0+24}\n"),
            std::string::npos)
      << view.Text();
}

struct Forced {
  const char* choice;
  const char* start;
  size_t skip;
  const char* line;
};

TEST(ForcedDecoding, StartsWhereTheSettingSays) {
  const Bytes arp = Hex("0001 0800 06 04 0001") + Bytes(20);
  const Forced cases[] = {
      {"0", "6", 3, "ARP: Request, Source 0.0.0.0, Target 0.0.0.0 {3+28}"},
      {"0", "99", 3, "Raw Data {8:3+28}"},
      {"9", "6", 3, "Raw Data {8:3+28}"},
  };
  for (const Forced& forced : cases) {
    TestHost host;
    host.settings = {{"ForcedDecoding", "1"}, {"ForcedProtocolChoice", forced.choice},
                     {"ForcedStartProtocol", forced.start}, {"ForcedSkipBytes", std::to_string(forced.skip)}};
    TestView view(&host);
    view.Decode(Bytes(forced.skip) + arp);
    EXPECT_NE(view.Text().find(forced.line), std::string::npos) << view.Text();
    EXPECT_EQ(view.Text().find("Packet 1:"), 0u);
  }
  TestHost host;
  host.settings = {{"ForcedDecoding", "1"}, {"ForcedProtocolChoice", "15"}, {"ForcedSkipBytes", "2"}};
  TestView view(&host);
  view.Decode(Bytes(2) + Hex("0806") + arp);
  EXPECT_NE(view.Text().find("Ethertype: 0x0806 = ARP {2+2}"), std::string::npos) << view.Text();
  host.settings = {{"ForcedDecoding", "1"}, {"ForcedStartProtocol", "17"}, {"ForcedSkipBytes", "2"}};
  TestView frames(&host);
  frames.Decode(Bytes(2) + Ethernet(0x0806, arp));
  EXPECT_NE(frames.Text().find("Ethertype: 0x0806 = ARP {14+2}"), std::string::npos) << frames.Text();
}

TEST(ForcedDecoding, OfATransportTellsApplicationsWhichItIs) {
  const Bytes query = Hex("0001 0100 0001 0000 0000 0000 0161 00 0001 0001");
  DefinitionsHost host;
  host.settings = {{"ForcedDecoding", "1"}, {"ForcedStartProtocol", "4"}};
  TestView view(&host);
  Bytes segment = Tcp({.destinationPort = 53, .payload = Hex("0013") + query});
  segment[16] = segment[17] = 0;   // not checked
  view.Decode(segment);
  EXPECT_NE(view.Text().find("DNS Length: 19"), std::string::npos) << view.Text();
}

// What is expanded and selected is the tree's matter.
class Shown : public ::testing::TestWithParam<TreeKind> {};
INSTANTIATE_TEST_SUITE_P(Trees, Shown, ::testing::ValuesIn(TreeKinds()), TreeName);

TEST_P(Shown, ExpansionFollowsTheMaskAndTheOptions) {
  TestHost host;
  host.settings = {{"Expand2ndLevel", "0"}, {"Expand3rdLevel", "1"}};
  TestView view(&host, GetParam());
  view.view().expansionMask = BitMask(kFieldKind);
  view.Decode(Ethernet(0x8100, Hex("0001 1234") + Bytes(40)));
  const DecodeTree& tree = view.tree();
  const LineHandle summary = tree.FirstChild(0);
  EXPECT_TRUE(tree.IsExpanded(summary));
  EXPECT_FALSE(tree.IsExpanded(tree.FirstChild(summary)));
  const LineHandle block = tree.FirstChild(tree.LastChild(0));
  EXPECT_FALSE(tree.IsExpanded(block)) << "a line of the second level";
}

TEST_P(Shown, SelectionIsKeptFromPacketToPacket) {
  TestView view(nullptr, GetParam());
  view.Decode(Ethernet(0x0806, Hex("0001 0800 06 04 0001") + Bytes(38)));
  EXPECT_EQ(view.view().selectionPath[0], 0) << "the first packet starts the path";
  view.view().selectionPath[0] = 2;
  view.view().selectionPath[1] = 1;
  view.view().selectionPath[2] = -1;
  view.Decode(Ethernet(0x0806, Hex("0001 0800 06 04 0002") + Bytes(38)));
  EXPECT_EQ(view.LineText(view.tree().Selected()), "Protocol Type: 0x0800 = IP");
  view.Decode(Ethernet(0x9999, Bytes(2)));
  EXPECT_EQ(view.tree().Selected(), 0u) << "a tree with fewer lines selects nothing";
}

TEST(FrameEntry, AllocatesNothingOutsideTheTree) {
  TestView view;
  const Bytes frame = Ethernet(0x8100, Hex("0001 0806 0001 0800 06 04 0001") + Bytes(38));
  Record record(frame);
  view.Decode(record);
  const uint64_t before = CountAllocations();
  view.Decode(record);
  view.context().outputMode = kPrintMode;
  DecodeFrame(&view.view(), record.get(), 0, 0, 0);
  view.context().outputMode = kDisplayMode;
  EXPECT_EQ(CountAllocations(), before);
}

}  // namespace
}  // namespace qxview::testing
