#include <random>

#include "core/line_group.h"
#include "core/output_file.h"
#include "tests/support/decoding.h"

namespace qxview::testing {
namespace {

TEST(ByteRanges, PackAndReadBack) {
  int32_t kind, offset;
  uint32_t length;
  ByteRange range = MakeByteRange(0, 0x8000000, 4);
  EXPECT_EQ(SplitByteRange(&range, &kind, &offset, &length), 1u);
  EXPECT_EQ(offset, 0) << "offsets have 27 bits";
  range = MakeByteRange(0, 0x4000000, 1);
  SplitByteRange(&range, nullptr, &offset, nullptr);
  EXPECT_EQ(offset, -67108864);
  range = MakeByteRange(8, 14, 20);
  EXPECT_EQ(SplitByteRange(&range, &kind, &offset, &length), 256u);
  EXPECT_EQ(length, 20u);
  range = MakeByteRange(-1, 0, 0);
  EXPECT_EQ(SplitByteRange(&range, &kind, nullptr, nullptr), 0x80000000u);
  EXPECT_EQ(kind, -1);
  EXPECT_EQ(SplitByteRange(nullptr, &kind, &offset, &length), 0u);
  EXPECT_EQ(kind, 0);
}

class Lines : public ::testing::TestWithParam<TreeKind> {
 protected:
  View* view() { return &view_.view(); }
  DecodeContext& context() { return view_.context(); }
  LineHandle Add(LineHandle parent, const char* text, int32_t offset = 0, int32_t length = 1) {
    return AddDecodeLine(view(), parent, text, 9, &view_.tree(), MakeByteRange(0, offset, length));
  }
  void SetUp() override { view(); }
  TestView view_{nullptr, GetParam()};
};
INSTANTIATE_TEST_SUITE_P(Trees, Lines, ::testing::ValuesIn(TreeKinds()), TreeName);

TEST_P(Lines, TableShrinksBehindFramesThatDoWithout) {
  for (int i = 0; i < 3; ++i) {
    for (uint32_t line = 0; line < 2 * kKeptLines; ++line) Add(0, "line", static_cast<int32_t>(line));
    for (uint32_t frame = 0; frame < kFramesWithout; ++frame) {
      ClearDecodeTree(view(), &view_.tree(), true);
      EXPECT_GT(context().rangeCapacity, 2 * kKeptLines);
      for (int32_t line = 0; line < 3; ++line) Add(0, "line", 100 + line);
    }
    ClearDecodeTree(view(), &view_.tree(), true);
    EXPECT_EQ(context().rangeCapacity, kKeptLines);
    Add(0, "first", 5);   // which has no range
    const LineHandle line = Add(0, "line", 7);
    ByteRange range;
    GetDecodeLineRange(view(), &view_.tree(), line, &range);
    EXPECT_EQ(RangeOffset(range), 7);
  }
}

TEST_P(Lines, TableGrowsBeforeItIsFullAndTheFirstLineHasNoRange) {
  const LineHandle first = Add(0, "first", 5);
  for (int i = 1; i < 511; ++i) Add(first, "line", i);
  EXPECT_EQ(context().rangeCapacity, 512u);
  const LineHandle last = Add(first, "the 512th", 511, 7);
  EXPECT_EQ(context().rangeCapacity, 1024u);
  ByteRange range;
  EXPECT_EQ(GetDecodeLineRange(view(), &view_.tree(), first, &range), 0);
  EXPECT_EQ(GetLastDecodeLine(view(), &view_.tree()), last);
  EXPECT_EQ(GetLastDecodeLineRange(view(), &view_.tree(), &range), 1);
  EXPECT_EQ(RangeOffset(range), 511);
  ExtendDecodeLineRange(view(), &view_.tree(), last, 3);
  GetDecodeLineRange(view(), &view_.tree(), last, &range);
  EXPECT_EQ(RangeLength(range), 10u);
  EXPECT_EQ(AddDecodeLine(view(), 0, nullptr, 9, &view_.tree(), 0), 0u);
  EXPECT_EQ(AddDecodeLine(view(), 0, "no tree", 9, nullptr, 0), 0u);
  EXPECT_EQ(AddDecodeLine(nullptr, 0, "no view", 9, &view_.tree(), 0), 0u);
  EXPECT_EQ(CurrentPacketNumber(nullptr), -1);
}

TEST_P(Lines, OfLibrariesMayHaveAnyTag) {
  const LineHandle first = Add(0, "first", 5), own = AddTaggedLine(view(), 0, "own", 9, 100000);
  EXPECT_EQ(RangeOffset(RangeOfLine(&context(), &view_.tree(), first)), 5);
  EXPECT_EQ(RangeOfLine(&context(), &view_.tree(), own), 0u);
  SetDecodeLineRange(view(), &view_.tree(), own, MakeByteRange(0, 1, 1));
  context().packet.linesLeft = 0;
  EXPECT_EQ(AddTaggedLine(view(), 0, "one too many", 9, 1), 0u);
}

TEST_P(Lines, AppendedTextsAreCappedAndLongLinesKept) {
  const LineHandle line = Add(0, std::string(290, 'a').c_str());
  AppendToDecodeLine(view(), &view_.tree(), line, "0123456789");
  EXPECT_EQ(view_.LineText(line).size(), 300u) << "a joined text of exactly 300 is whole";
  AppendToDecodeLine(view(), &view_.tree(), line, "x");
  EXPECT_EQ(view_.LineText(line).size(), 300u) << "no room is left";
  const LineHandle other = Add(0, std::string(290, 'b').c_str());
  AppendToDecodeLine(view(), &view_.tree(), other, "01234567890");
  EXPECT_EQ(view_.LineText(other).size(), 299u);
  const LineHandle longer = Add(0, std::string(1100, 'c').c_str());
  EXPECT_EQ(view_.LineText(longer).size(), 1100u);
  char text[16];
  SetDecodeLineText(view(), &view_.tree(), line, "short");
  EXPECT_EQ(GetDecodeLineText(view(), &view_.tree(), line, text, sizeof text), 5);
  EXPECT_STREQ(text, "short");
}

TEST_P(Lines, AreDeletedWithTheirChildren) {
  const LineHandle a = Add(0, "a"), b = Add(0, "b"), c = Add(0, "c");
  Add(b, "b1");
  Add(Add(b, "b2"), "b21");
  EXPECT_EQ(CountTopLevelLines(view(), &view_.tree()), 4);
  DeleteDecodeChildren(view(), &view_.tree(), b);
  EXPECT_EQ(view_.Text(), "a {0+1}\nc {0+1}\n");
  Add(a, "a1");
  DeleteDecodeLine(view(), &view_.tree(), c);
  EXPECT_EQ(view_.Text(), "a {0+1}\n  a1 {0+1}\n");
  DeleteDecodeChildren(view(), &view_.tree(), 0);
  EXPECT_EQ(CountTopLevelLines(view(), &view_.tree()), 1);
  for (int i = 0; i < 40; ++i) Add(0, "many");
  EXPECT_EQ(CountTopLevelLines(view(), &view_.tree()), 14);
  ClearDecodeTree(view(), &view_.tree(), true);
  EXPECT_EQ(context().rangeCount, 0u);
  EXPECT_EQ(view_.Text(), "");
}

// An output whose bytes a test can read.
struct Written {
  explicit Written(DecodeContext& to) : context(to), file(std::make_unique<OutputFile>()) {
    OpenOutput(file.get(), {&text,
                            [](void* handle, const char* bytes, int32_t length) {
                              static_cast<std::string*>(handle)->append(bytes, static_cast<size_t>(length));
                              return 1;
                            },
                            [](void* handle, int64_t bytes) {
                              auto* held = static_cast<std::string*>(handle);
                              held->resize(held->size() - static_cast<size_t>(bytes));
                              return 1;
                            },
                            -1});
    context.outputFile = file.get();
  }
  std::string Take() {
    FlushOutput(file.get());
    return std::move(text);
  }
  ~Written() {
    context.outputFile = nullptr;
    context.outputMode = kDisplayMode;
  }
  DecodeContext& context;
  std::string text;
  std::unique_ptr<OutputFile> file;
};

TEST_P(Lines, GoToTheFileByteForByte) {
  Written written(context());
  for (const char mode : {kPrintMode, kSaveMode}) {
    context().outputMode = mode;
    EXPECT_EQ(Add(0, "top"), kLineOutsideDisplay);
    EXPECT_EQ(Add(kLineOutsideDisplay, "nested"), kLineOutsideDisplay);
    const uint32_t before = view()->engine->textLinesWritten;
    Add(0, "");
    EXPECT_EQ(view()->engine->textLinesWritten, before + 1) << "an empty line counts and writes nothing";
    Add(0, std::string(1100, 'x').c_str());
    EXPECT_EQ(written.Take(), "top\r\n    nested\r\n" + std::string(1100, 'x') + "\r\n");
  }
}

TEST_P(Lines, RangeFilterDropsLinesOutsideDisplayAlone) {
  Written written(context());
  context().rangeFilterOn = 1;
  context().rangeFilterStart = 14;
  context().rangeFilterLength = 20;
  context().outputMode = kPrintMode;
  for (const int32_t offset : {13, 14, 33, 34}) EXPECT_EQ(Add(0, std::to_string(offset).c_str(), offset), kLineOutsideDisplay);
  EXPECT_EQ(written.Take(), "14\r\n33\r\n");
  context().outputMode = kDisplayMode;
  Add(0, "13", 13);
  EXPECT_EQ(view_.Text(), "13 {13+1}\n");
}

TEST_P(Lines, SaveModeTakesBackWhatCameSinceTheMark) {
  Written written(context());
  context().outputMode = kSaveMode;
  Add(0, "kept");
  FlushOutput(written.file.get());
  view()->engine->trackWrittenBytes = true;
  view()->engine->bytesSinceMark = 0;
  Add(0, "taken back");
  FlushOutput(written.file.get());
  Add(kLineOutsideDisplay, "this too");
  DeleteDecodeLine(view(), &view_.tree(), kLineOutsideDisplay);
  view()->engine->trackWrittenBytes = false;
  Add(0, "behind");
  EXPECT_EQ(written.Take(), "kept\r\nbehind\r\n");
}

TEST_P(Lines, FindTakesTheFirstForwardAndTheLastInABound) {
  const auto pass = [&](bool bounded, int32_t start, int32_t limit) {
    context().outputMode = kFindMode;
    CopyString(context().findText, sizeof context().findText, "match");
    context().findFound = 0;
    context().findBounded = bounded;
    context().findLineIndex = start;
    context().findLineLimit = limit;
    context().findLineCounter = 0;
    context().findLine[0] = 0;
    context().packetNumber = 3;
    for (const char* text : {"match 0", "other", "match 2", "Match 3", "match 4"}) Add(0, text);
  };
  pass(false, -1, 0);
  EXPECT_STREQ(context().findLine, "match 0");
  EXPECT_EQ(context().findLineCounter, 0) << "the counter stays at the match";
  EXPECT_EQ(context().findPacketNumber, 3);
  pass(false, 0, 0);
  EXPECT_STREQ(context().findLine, "match 2");
  EXPECT_EQ(context().findLineIndex, 2);
  pass(true, -1, 4);
  EXPECT_STREQ(context().findLine, "match 2") << "the limit is exclusive";
  EXPECT_EQ(context().findLineCounter, 5);
  pass(true, -1, 9);
  EXPECT_STREQ(context().findLine, "match 4");
  context().outputMode = kDisplayMode;
  Add(0, "match");
  const LineHandle found = Add(0, "match 4");
  EXPECT_EQ(context().foundLineHandle, found) << "the found line is selected when it is shown again";
  EXPECT_EQ(view_.tree().Selected(), found);
}

TEST_P(Lines, FoundLineIsToldFromItsLikes) {
  context().rangeFilterOn = 1;
  context().rangeFilterStart = 10;
  context().rangeFilterLength = 10;
  CopyString(context().findText, sizeof context().findText, "line");
  context().findLineIndex = -1;
  const auto decode = [&](char mode) {
    context().outputMode = mode;
    context().packet.linesLeft = 3;
    std::vector<LineHandle> lines;
    for (int32_t offset : {5, 15, 16, 17}) lines.push_back(Add(0, "line", offset));
    return lines;
  };
  decode(kFindMode);
  const LineHandle second = decode(kDisplayMode)[1];
  EXPECT_EQ(context().matchedLine, second) << "the filter dropped the first one";
}

TEST_P(Lines, AreBoundedInAFrame) {
  context().packet.linesLeft = 3;
  const LineHandle parent = Add(0, "parent");
  Add(parent, "child");
  Add(parent, "child");
  EXPECT_EQ(Add(parent, "too many"), 0u);
  EXPECT_EQ(Add(parent, "too many"), 0u);
  EXPECT_EQ(view_.Text(), "parent {0+1}\n  child {0+1}\n  child {0+1}\n  Decode limit reached {0+1}\n");
  EXPECT_EQ(MostLinesOf(0), 10000);
  EXPECT_EQ(MostLinesOf(1500), 34000);
  EXPECT_EQ(MostLinesOf(65535), kMostLines);
}

TEST_P(Lines, HexDumpsHaveTheirColumns) {
  Bytes data;
  for (int i = 0; i < 35; ++i) data.push_back(static_cast<uint8_t>(i + 0x1A));
  EXPECT_EQ(AddDataBlock(view(), 0, data.data(), 0, 35, "no parent", 9), 0u);
  AddDataBlock(view(), Add(0, "parent"), data.data(), 100, 35, "Title", 10);
  EXPECT_EQ(view_.Text(true),
            "parent {0+1}\n"
            "  Title {100+35}\n"
            "    0000  1A 1B 1C 1D 1E 1F 20 21  22 23 24 25 26 27 28 29    ...... !\"#$%&'() {8:100+16}\n"
            "    0010  2A 2B 2C 2D 2E 2F 30 31  32 33 34 35 36 37 38 39    *+,-./0123456789 {8:116+16}\n"
            "    0020  3A 3B 3C                                            :;< {8:132+3}\n");
  const Bytes large(40000);
  ClearDecodeTree(view(), &view_.tree(), true);
  EXPECT_EQ(AddRawData(view(), large.data(), 0, 40000, "Raw Data"), 1);
  EXPECT_EQ(context().rangeCount, 1u + 2048u) << "a dump shows 32768 bytes";
  EXPECT_EQ(AddRawData(view(), large.data(), 0, 0, "Raw Data"), 0);
}

TEST_P(Lines, RangeFilterTrimsDumpsToRows) {
  const Bytes data(100);
  const auto rows = [&](int32_t start, int32_t length, int32_t blockOffset) {
    context().rangeFilterOn = 1;
    context().rangeFilterStart = start;
    context().rangeFilterLength = length;
    ClearDecodeTree(view(), &view_.tree(), true);
    AddHexDumpLines(view(), &view_.tree(), 0, data.data(), blockOffset, 100);
    std::string seen;
    for (LineHandle line = view_.tree().FirstChild(0); line; line = view_.tree().NextSibling(line)) {
      seen += view_.LineText(line).substr(0, 4) + "+" +
              std::to_string(RangeLength(context().rangeTable[view_.tree().RangeIndex(line)])) + " ";
    }
    return seen;
  };
  EXPECT_EQ(rows(0, 1000, 10), "0000+16 0010+16 0020+16 0030+16 0040+16 0050+16 0060+4 ");
  EXPECT_EQ(rows(50, 1, 10), "0020+16 ") << "byte 40 of the block is in its third row";
  EXPECT_EQ(rows(25, 2, 10), "0000+16 0010+16 ") << "a start within 15 bytes of the span stays";
  EXPECT_EQ(rows(5000, 10, 10), "0000+1 ") << "nothing in the span: the first byte alone";
  EXPECT_EQ(rows(0, 5, 10), "0000+1 ");
}

TEST_P(Lines, BitRowsAndWrappedTextsCarryTheirOwnSlices) {
  const LineHandle parent = Add(0, "p");
  const Bytes data(40, 0xAB);
  AddBitRows(view(), parent, data.data(), 7, 3, "Key", 4);
  AddBitRows(view(), parent, data.data(), 7, 33, "Key", 4);
  const std::string text = std::string(79, 'a') + "bcd efgh " + std::string(20, 'c');
  AddWrappedTextLines(view(), parent, text.c_str(), static_cast<int32_t>(text.size()), "Header", 10, &view_.tree(), 50, true);
  AddWrappedTextLines(view(), parent, "short", 5, "Value", 10, &view_.tree(), 9, true);
  std::string row;
  for (int i = 0; i < 32; ++i) row += i ? " AB" : "AB";
  EXPECT_EQ(view_.Text(), "p {0+1}\n"
                          "  Key: AB AB AB {4:7+3}\n"
                          "  Key 0000: " + row + " {4:7+32}\n"
                          "  Key 0020: AB {4:39+1}\n"
                          "  Header pt 1: " + std::string(79, 'a') + "bcd  {50+83}\n"
                          "  Header pt 2 : efgh " + std::string(20, 'c') + " {133+25}\n"
                          "  Value: short {9+5}\n");
}

TEST_P(Lines, CountedStringsShowThreeCharacters) {
  const LineHandle parent = Add(0, "p");
  char value[40];
  const auto run = [&](const std::string& hex, CountedCharacters characters = CountedCharacters::kSingleByte) {
    const Bytes bytes = Hex(hex);
    return AddCountedString(view(), bytes.data(), static_cast<int32_t>(bytes.size()), 100, parent, 3, "Name", value,
                            sizeof value, characters);
  };
  EXPECT_EQ(run("00"), 0);
  EXPECT_EQ(run("0005 414243"), 5);
  EXPECT_STREQ(value, "ABC");
  EXPECT_EQ(run("0004 41424344 45"), 6);
  EXPECT_EQ(run("0000"), 2);
  EXPECT_STREQ(value, "<null string>");
  EXPECT_EQ(run("0004 0041 0042", CountedCharacters::kTwoByte), 6);
  run("0082 " + std::string(2 * 0x82, '3'));
  EXPECT_EQ(view_.Text(),
            "p {0+1}\n"
            "  Name ABC (truncated string) {100+5}\n"
            "    String Length: 5 {100+2}\n"
            "    Name: ABC (truncated string) {102+5}\n"
            "  Name: ABC {100+6}\n"
            "    String Length: 4 {100+2}\n"
            "    Name: ABC {102+4}\n"
            "  Name: <null string> {100+2}\n"
            "    String Length: 0 {100+2}\n"
            "    Name: <null string> {100+2}\n"
            "  Name: AB {100+6}\n"
            "    String Length: 4 {100+2}\n"
            "    Name: AB {102+4}\n"
            "  Name {100+132}\n"
            "    String Length: 130 {100+2}\n"
            "    Name {102+130}\n");
  const Bytes none = Hex("0005");
  EXPECT_EQ(AddCountedString(view(), none.data(), 2, 0, parent, 3, "Cut", nullptr, 0), 2);
}

// The last line's text grows where it stands, others' texts elsewhere: both are cut alike, and lines behind them stay.
TEST(AppendedTexts, AreCutWhereverTheyGrow) {
  TestView view;
  const Place top = TopLevel(&view.view(), kFirstLevel);
  const Field field{nullptr, 1, 2, 0, true};
  for (const size_t used : {0, 1, 40, 250, 298, 299, 300, 301, 420}) {
    for (const size_t added : {0, 1, 2, 49, 50, 51, 300, 480}) {
      for (const bool isLast : {true, false}) {
        ClearDecodeTree(&view.view(), &view.tree(), true);
        AddLine(top, field, "Before");
        const std::string text(used, 'a'), more(added, 'b');
        const LineHandle line = AddLine(top, field, "%s", text.c_str());
        if (!isLast) AddLine(top, field, "Between");
        AppendToLine(top, line, "%s%c", more.c_str(), 0);
        AddLine(top, field, "Behind");
        std::string expected = text + more;
        if (expected.size() > 300) expected.resize(std::max<size_t>(used, 299));
        EXPECT_EQ(view.Text(), "Before {1+2}\n" + expected + " {1+2}\n" + (isLast ? "" : "Between {1+2}\n") + "Behind {1+2}\n")
            << used << " and " << added;
      }
    }
  }
}

// Lines under one another and beside one another, some of which are changed when others stand behind them.
void AddTestGroup(const Place& in, const Field& told, int* made) {
  AddToldGroup(in, told, "test group", [&] {
    ++*made;
    const LineHandle head = AddLine(in, told, "Group %u:", told.value);
    const Place under = Under(in, head);
    AddBitLine(under, told, "%s: Bits", BitsOf(told, 1, 3).picture);
    const Place deeper = Under(under, AddLine(under, Slice(told, told.length - 1, 1), "Last byte"));
    for (uint32_t i = 0; i < told.value % 5; ++i) AddLine(deeper, told, "Element %u", i);
    if (told.value % 3) AppendToLine(in, head, " and %u more", told.value % 5);
    if (told.value % 7 == 0) AddLine(in, told, "A control character: %c", 7);
  });
}

// A group of many bytes, and a line under the first one of it.
void AddTestLines(const Place& in, const Field& told, int* made) {
  const LineHandle head = AddToldLines(in, told, "test lines", [&] {
    ++*made;
    const LineHandle first = AddLine(in, told, "Lines: %s", HexText(told));
    AddLine(Under(in, first), Slice(told, 3, 4), "Part: %s", HexText(Slice(told, 3, 4)));
    return first;
  });
  AddLine(Under(in, head), told, "Behind them");
}

// Two views get the same groups in the same places, one of which keeps none: they read alike, wherever a group stands.
TEST(ToldGroups, AreCopiedAsTheyWouldBeAdded) {
  TestView keeping, plain;
  DestroyKeptGroups(plain.context().groups);
  plain.context().groups = nullptr;
  std::mt19937 random(3);
  Bytes bytes(64);
  for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random() % 3);
  int copied = 0;
  for (int round = 0; round < 300; ++round) {
    const uint32_t seed = random();
    int made[2] = {0, 0};
    std::string texts[2];
    TestView* const views[2] = {&keeping, &plain};
    for (int v = 0; v < 2; ++v) {
      TestView& view = *views[v];
      std::mt19937 steps(seed);
      ClearDecodeTree(&view.view(), &view.tree(), true);
      view.context().packet = PacketState{};
      view.context().packet.linesLeft = steps() % 8 == 0 ? static_cast<int32_t>(steps() % 40) : 1000;
      std::vector<Place> path{TopLevel(&view.view(), kFirstLevel)};
      for (uint32_t i = steps() % 12; i > 0; --i) {
        if (steps() % 3 == 0) path.push_back(Under(path.back(), AddLine(path.back(), Field{nullptr, 1, 2, 0, true}, "A line")));
        if (steps() % 4 == 0) path.resize(1 + steps() % path.size());
        if (steps() % 3 == 0) {
          const int32_t place = static_cast<int32_t>(steps() % 9) * 4;   // few, so that they come again
          AddTestLines(path.back(), PeekBytes(MakeCursor(bytes.data(), 0, 64), place, 7 + place / 4), &made[v]);
        }
        const int32_t offset = static_cast<int32_t>(steps() % 60), length = 1 + static_cast<int32_t>(steps() % 2);
        Cursor c = MakeCursor(bytes.data() + offset, offset, 4);
        const Field told = length == 1 ? TakeU8(c) : TakeU16(c);
        AddTestGroup(path.back(), told, &made[v]);
        if (steps() % 20 == 0) DeleteDecodeLine(&view.view(), &view.tree(), GetLastDecodeLine(&view.view(), &view.tree()));
      }
      texts[v] = view.Text() + std::to_string(view.context().packet.linesLeft) + "," + std::to_string(view.context().rangeCount);
    }
    EXPECT_EQ(texts[0], texts[1]);
    EXPECT_LE(made[0], made[1]);
    copied += made[1] - made[0];
  }
  EXPECT_GT(copied, 200);   // which groups share a place depends on where names stand
}

}  // namespace
}  // namespace qxview::testing
