// The bounds of core/budgets.h that hold for every decoder, each reached and kept: nesting, lines, texts, dumps, bytes that
// are joined for a frame, and every table of state between frames. Those of one protocol are reached in its own tests.
#include <functional>

#include "core/byte_origins.h"
#include "core/engine.h"
#include "core/states.h"
#include "decoders/app/web_body.h"
#include "tests/support/cases.h"
#include "tests/support/samples.h"
#include "tests/support/small_stack.h"

namespace qxview::testing {
namespace {

constexpr int32_t kBytesOfARow = 16;

int32_t DeepestOf(View& view, LineHandle line, int32_t depth) {
  int32_t deepest = depth;
  for (LineHandle each = view.tree->FirstChild(line); each; each = view.tree->NextSibling(each)) {
    deepest = std::max(deepest, DeepestOf(view, each, depth + 1));
  }
  return deepest;
}

TEST(Bounds, OfNestingEndsInARawBlock) {
  for (const int32_t headers : {kMostNesting - 2, kMostNesting, 3 * kMostNesting}) {
    Bytes packet = Udp(9, 9, Bytes(8, 'x'));
    for (int32_t i = 0; i < headers; ++i) packet = IPv4(i ? 4 : 17, packet);
    TestHost host;
    TestView view(&host);
    RunOnSmallStack([&] { view.Decode(Ethernet(0x0800, packet)); });
    const std::string text = view.Text();
    size_t shown = 0;
    for (size_t at = 0; (at = text.find("IP: ", at)) != std::string::npos; ++at) ++shown;
    EXPECT_LE(shown, static_cast<size_t>(kMostNesting)) << headers;
    EXPECT_GT(shown, static_cast<size_t>(kMostNesting) / 2) << headers;
    EXPECT_EQ(text.find("UDP, [9]") != std::string::npos, headers < kMostNesting - 1) << headers;
    EXPECT_LT(DeepestOf(view.view(), 0, 0), 2 * kMostNesting);
    EXPECT_EQ(view.context().packet.nesting, 0);
  }
}

// A decoder that has no end of its own.
int32_t ShowForever(const Place& at, Cursor c) {
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "Forever:"));
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const Field byte = TakeU8(c);
    for (int i = 0; i < 100; ++i) AddLine(in, byte, "Line: %u", byte.value);
  }
  return 1;
}

TEST(Bounds, OfLinesGrowWithTheFrameAndAreTold) {
  for (const int32_t size : {1, 60, 1514, 65000}) {
    Record record(Bytes(static_cast<size_t>(size), 'x'));
    for (const bool silent : {false, true}) {
      TestView view;
      view.context().silent = silent;
      view.context().packet = PacketState{};
      view.context().packet.frame = record.get();
      view.context().packet.linesLeft = MostLinesOf(size);
      ShowForever(TopLevel(&view.view(), kFirstLevel), MakeCursor(FrameData(record.get()), 0, size));
      const bool isReached = int64_t{100} * size + 1 > MostLinesOf(size);
      EXPECT_EQ(view.context().packet.limitReached, isReached) << size;
      const int32_t lines = silent ? 0 : isReached ? MostLinesOf(size) + 1 : 100 * size + 1;
      EXPECT_EQ(view.context().rangeCount, static_cast<uint32_t>(lines));
    }
  }
  EXPECT_EQ(MostLinesOf(INT32_MAX), kMostLines);
}

// What headers leave for later packets and for the packet list.
std::string StateOf(const PacketState& packet, const FrameRecord* record) {
  const auto end = [](const AddressSlot& slot, uint16_t port) {
    std::string text = std::to_string(slot.kind) + "/";
    for (const uint8_t byte : slot.address) text += std::to_string(byte) + ".";
    return text + ":" + std::to_string(port);
  };
  const auto place = [&](const uint8_t* bytes) { return std::to_string(bytes ? bytes - FrameData(record) : -1); };
  const NetworkState& network = packet.network;
  const TcpSegment& segment = packet.segment;
  std::string text = end(packet.source, packet.sourcePort) + " " + end(packet.destination, packet.destinationPort);
  for (const int64_t number : {int64_t{packet.ipProtocol}, int64_t{packet.ipHeaderSeen}, int64_t{network.pseudoHead},
                               int64_t{network.fragmentOffset}, int64_t{network.totalLength}, int64_t{network.fragmented},
                               int64_t{network.offloaded}, int64_t{segment.here}, int64_t{segment.length}, int64_t{segment.sequence},
                               int64_t{segment.flags}, int64_t{segment.cut}, int64_t{segment.acknowledgment},
                               int64_t{packet.payloadLength}, int64_t{packet.payloadOffset}, int64_t{packet.nesting},
                               static_cast<int64_t>(packet.carrier.table), int64_t{packet.carrier.key}, int64_t{packet.carrier.length}}) {
    text += " " + std::to_string(number);
  }
  return text + " " + place(segment.payload) + " " + place(packet.payload) + " " + place(packet.carrier.bytes);
}

// Headers are passed over at once where nobody wants their lines: they count as many as are shown, and leave the same.
TEST(Bounds, AreReachedInSilenceByHeadersAsInDisplay) {
  TestHost hosts[2];
  TestView shown(&hosts[0]), silent(&hosts[1]);
  silent.context().outputMode = kFindMode;
  silent.context().silent = true;
  int32_t count = 0, ofVersion6 = 0;
  const auto compare = [&](const FrameRecord* record) {
    ClearDecodeTree(&shown.view(), shown.view().tree, true);
    for (TestView* view : {&shown, &silent}) DecodeFrame(&view->view(), record, 0, 0, 0);
    ASSERT_EQ(silent.context().packet.linesLeft, shown.context().packet.linesLeft) << shown.Text();
    ASSERT_EQ(StateOf(silent.context().packet, record), StateOf(shown.context().packet, record)) << shown.Text();
    ++count;
  };
  // Segments without a payload.
  for (const std::string& sample : Samples()) {
    ForEachRecord(sample, [&](const FrameRecord* record) {
      const uint8_t* frame = FrameData(record);
      const int32_t size = record->capturedLength;
      if (record->mediaType != 0 || size < 54) return;
      const bool is6 = frame[12] == 0x86 && frame[13] == 0xDD && frame[20] == 6;
      const bool is4 = frame[12] == 8 && frame[13] == 0 && frame[23] == 6;
      const int32_t header = is6 ? 40 : 4 * (frame[14] & 15);
      const int32_t length = is6 ? 40 + (frame[18] << 8 | frame[19]) : frame[16] << 8 | frame[17];
      if ((!is4 && !is6) || size < 14 + length || header + 20 > length || header + 4 * (frame[14 + header + 12] >> 4) != length) return;
      ofVersion6 += is6;
      compare(record);
    });
  }
  EXPECT_GT(count, 500);
  EXPECT_GT(ofVersion6, 10);
  // What is not as plain as most goes its own way.
  Bytes options = Ethernet(0x0800, IPv4(17, Udp(9, 9, {'x'})));
  for (const auto& [at, bits] : {std::pair<size_t, int>{14, 0x46 ^ 0x45}, {20, 0x20}, {21, 1}, {24, 1}, {17, 1}, {17, 0x40}, {23, 1}}) {
    Bytes changed = options;
    changed[at] = static_cast<uint8_t>(changed[at] ^ bits);
    compare(Record(changed).get());
  }
  compare(Record(Ethernet(0x0800, IPv4(17, Udp(9, 9, {})))).get());
  compare(Record(Ethernet(0x86DD, IPv6(17, Udp(9, 9, Bytes(40, 'x'))))).get());
}

TEST(Bounds, OfTextsAndDumps) {
  TestView view;
  const std::string word(5000, 'w');
  const Place at = TopLevel(&view.view(), kFirstLevel);
  const Bytes bytes(kMostDumped + 100, 'b');
  Cursor c = MakeCursor(bytes.data(), 0, static_cast<int32_t>(bytes.size()));
  const Field all = Ahead(c, Left(c));
  view.context().packet.linesLeft = kMostLines;
  const LineHandle line = AddLine(at, all, "Text: %s", word.c_str());
  EXPECT_LT(view.LineText(line).size(), size_t{kLineSize});
  EXPECT_GT(view.LineText(line).size(), kMostJoinedText / 2u);
  for (int i = 0; i < 5; ++i) AppendToLine(at, line, " and %s", word.c_str());
  EXPECT_LT(view.LineText(line).size(), size_t{kLineSize});
  const uint32_t before = view.context().rangeCount;
  AddBlock(Under(at, line), all, "Dump");
  EXPECT_EQ(view.context().rangeCount - before, 1u + kMostDumped / kBytesOfARow);
}

TEST(Bounds, OfMemoryAndRegionsOfAFrame) {
  TestView view;
  int64_t taken = 0;
  while (TakeFrameMemory(&view.view(), 100000)) taken += 100000;
  EXPECT_GT(taken, kMostFrameMemory / 2);
  EXPECT_LE(taken, kMostFrameMemory);
  EXPECT_EQ(TakeFrameMemory(&view.view(), int64_t{1} << 40), nullptr);
  EXPECT_EQ(TakeFrameMemory(&view.view(), 0), nullptr);
  ForgetOrigins(view.context().origins);
  const uint8_t byte = 0;
  const BytePiece piece{1, 0, 1};
  int32_t regions = 0;
  while (Left(JoinedBytes(&view.view(), &byte, 1, &piece, 1, 0)) == 1) ++regions;
  EXPECT_EQ(regions, kMostRegions);
  ForgetOrigins(view.context().origins);
  EXPECT_EQ(Left(JoinedBytes(&view.view(), &byte, 1, &piece, 1, 0)), 1) << "the next frame has its own";
}

// Each of the formats goes on in one another further than it is shown: what is deeper adds no level, and is not left out in silence.
TEST(Bounds, OfLevelsInOneAnother) {
  const auto length2 = [](const Bytes& bytes) {
    return Bytes{static_cast<uint8_t>(bytes.size() >> 8), static_cast<uint8_t>(bytes.size())};
  };
  const auto sized = [](const Bytes& head, const Bytes& bytes, size_t more) {   // a length of one byte behind it
    return head + Bytes{static_cast<uint8_t>(bytes.size() + more)} + bytes;
  };
  const auto update = [&](const std::string& family, const Bytes& routes) {
    const Bytes reach = Hex(family) + Hex("04 C0000201 00") + routes, attribute = Hex("90 0E") + length2(reach) + reach;
    const Bytes body = Hex("02 0000") + length2(attribute) + attribute;
    return Bytes(16, 0xFF) + length2(Bytes(18) + body) + body;
  };
  const auto der = [&](const std::string& tag, const Bytes& contents) { return Hex(tag) + Hex("82") + length2(contents) + contents; };
  const auto signedContent = [&](const Bytes& content) {
    return der("30", Hex("06092A864886F70D010702") + der("A0", der("30", Hex("020101 3100") + content + Hex("3100"))));
  };
  struct Format {
    const char* row;
    bool overTcp;
    int32_t deepest;
    std::function<Bytes(const Bytes& inner)> wrap;
    Bytes innermost;
    std::function<Bytes(const Bytes& nested)> message;
  };
  const Format formats[] = {
      {"application Diameter", true, kDeepestDiameter,
       [&](const Bytes& inner) { return Hex("000001C8 40 00") + length2(Bytes(8) + inner) + inner; }, {},
       [&](const Bytes& nested) {
         return Hex("01 00") + length2(Bytes(20) + nested) + Hex("C0 000110 00000004 00000001 00000002") + nested;
       }},
      {"application DHCPv6", false, kDeepestDhcpv6,
       [&](const Bytes& inner) { return Hex("0C00") + Bytes(32) + Hex("0009") + length2(inner) + inner; }, Hex("01 000001"),
       [](const Bytes& nested) { return nested; }},
      {"application HNCP", true, kDeepestHncp,
       [&](const Bytes& inner) { return Hex("0021") + length2(inner) + inner; }, Hex("0029 0001 61 000000"),
       [](const Bytes& nested) { return nested; }},
      {"application LISP", true, kDeepestLisp,
       [&](const Bytes& inner) { return Hex("4003 0000 0100") + length2(inner) + inner; }, Hex("0001 C0000201"),
       [](const Bytes& nested) { return Hex("3A000001 0000000000000000 0001 0004 AABBCCDD 000005A0 0020 1000 0000") + nested; }},
      {"application BFCP", true, kDeepestConferencing, [&](const Bytes& inner) { return sized(Hex("1E"), Hex("0001") + inner, 2); }, {},
       [&](const Bytes& nested) { return sized(Hex("2004 00"), {}, nested.size() / 4) + Hex("00000007 0001 0002") + nested; }},
      {"application BGP", true, kDeepestBgp, [&](const Bytes& inner) { return sized(Hex("04"), inner, 0); }, Hex("01 00"),
       [&](const Bytes& nested) { return update("0001 05", nested); }},
      {"application BGP", true, kDeepestBgp, [&](const Bytes& inner) { return sized(Hex("0B"), inner, 0); }, Hex("03 00"),
       [&](const Bytes& nested) { return update("0019 46", nested); }},
      {"application IPFIX", false, kDeepestFlowLists,   // a basic list of basic lists
       [&](const Bytes& inner) {
         const Bytes list = Hex("03 0123 FFFF") + inner;
         return Hex("FF") + length2(list) + list;
       }, Hex("06 03 0004 0001 06"),
       [&](const Bytes& nested) {
         const Bytes sets = Hex("0002 000C 0100 0001 0123 FFFF 0100") + length2(Bytes(4) + nested) + nested;
         return Hex("000A") + length2(Bytes(16) + sets) + Hex("65000000 00000001 00000001") + sets;
       }},
      {"encapsulation Netlink", false, kDeepestNetlink,
       [](const Bytes& inner) {
         return Bytes{static_cast<uint8_t>(inner.size() + 4), static_cast<uint8_t>((inner.size() + 4) >> 8)} + Hex("FF83") + inner;
       }, Hex("0500 FF03 01"),
       [](const Bytes& nested) {
         return Hex("0004 0338 0000000000000000 0000 0000") +
                Bytes{static_cast<uint8_t>(nested.size() + 32), static_cast<uint8_t>((nested.size() + 32) >> 8)} +
                Hex("0000 1000 0200 07000000 00000000 0000 0100 02000000 03100000 FFFFFFFF") + nested;
       }},
      {"IP protocol OSPF", false, kDeepestLinkAttributes,   // members of bundles
       [&](const Bytes& inner) { return Hex("0018") + length2(Bytes(4) + inner) + Hex("00000001") + inner; }, {},
       [&](const Bytes& nested) {
         const Bytes link = Hex("0001") + length2(Bytes(12) + nested) + Hex("01000000 0A000001 0A000002") + nested;
         return Hex("0204") + length2(Bytes(48) + link) + Hex("01010101 00000000 0000 0000 0000000000000000 00000001") +
                Hex("0001 02 0A 08000001 01010101 80000001 0000") + length2(Bytes(20) + link) + link;
       }},
      {"LLC IS-IS", false, kDeepestLinkAttributes,   // attributes of applications
       [&](const Bytes& inner) { return sized(Hex("10"), Hex("0000") + inner, 0); }, Hex("12 04 4B989680"),
       [&](const Bytes& nested) {
         return Hex("831B010012010000") + length2(Bytes(38) + nested) + Hex("04B0 000000000001 0000 00000001 0000 03") +
                sized(Hex("16"), sized(Hex("00000000000200 00000A"), nested, 0), 0);
       }},
      {"application HTTP", true, kDeepestContent,   // signed messages
       [&](const Bytes& inner) {
         return signedContent(der("30", Hex("06092A864886F70D010702") + der("A0", der("04", inner))));
       }, signedContent(Hex("300B 06092A864886F70D010701")),
       [](const Bytes& nested) {
         const std::string head = "HTTP/1.1 200 OK\r\nContent-Type: application/pkcs7-mime; smime-type=signed-data\r\n"
                                  "Content-Length: " + std::to_string(nested.size()) + "\r\n\r\n";
         return Bytes(head.begin(), head.end()) + nested;
       }},
  };
  for (const Format& format : formats) {
    TestView view;
    bool isLastShown = false;
    const auto depthOf = [&](int32_t levels) {
      Bytes nested = format.innermost;
      for (int32_t i = 0; i < levels; ++i) nested = format.wrap(nested);
      const Payload payload{.row = RowNamed(format.row), .overTcp = format.overTcp, .modern = true, .bytes = format.message(nested)};
      RunPayload(view.view(), payload);
      isLastShown = false;
      for (LineHandle line = 1; line <= view.context().rangeCount; ++line) {
        const ByteRange range = RangeOfLine(&view.context(), &view.tree(), line);
        const int64_t end = int64_t{RangeOffset(range)} + RangeLength(range);
        isLastShown |= !view.tree().FirstChild(line) && end == static_cast<int64_t>(payload.bytes.size());
      }
      return DeepestOf(view.view(), 0, 0);
    };
    ASSERT_TRUE(RowNamed(format.row)) << format.row;
    const int32_t half = depthOf(format.deepest / 2 - 1), over = depthOf(2 * format.deepest);
    EXPECT_LT(half, over) << format.row;
    EXPECT_EQ(depthOf(3 * format.deepest), over) << format.row;
    EXPECT_TRUE(isLastShown) << format.row;
  }
  TestView view;
  const Place at = TopLevel(&view.view(), kFirstLevel);
  Bytes nested = Hex("08 01");
  for (int32_t i = 0; i < 3 * kDeepestProtobuf; ++i) nested = sized(Hex("0A"), nested, 0);
  view.context().packet.linesLeft = kMostLines;
  Cursor c = MakeCursor(nested.data(), 0, static_cast<int32_t>(nested.size()));
  ShowProtobuf(at, c);
  size_t messages = 0;
  const std::string text = view.Text();
  for (size_t found = 0; (found = text.find("Value: Message of", found)) != std::string::npos; ++found) ++messages;
  EXPECT_EQ(messages, static_cast<size_t>(kDeepestProtobuf));
}

TEST(Bounds, OfLinesInLists) {
  const Bytes elements(64000, 0);   // of two bytes and three lines each
  const Payload payload{.row = RowNamed("LLC IS-IS"),
                        .bytes = Hex("831B010012010000 FA1B 04B0 000000000001 0000 00000001 0000 03") + elements};
  TestView view;
  const PayloadRun run = RunPayload(view.view(), payload);
  EXPECT_GT(run.lines, kLinesOfLists);
  EXPECT_LT(run.lines, kLinesOfLists + kMostDumped / kBytesOfARow + 10);   // with the dump of what is left
  EXPECT_NE(view.Text().find("Further Elements"), std::string::npos);
}

TEST(Bounds, OfSampledFrames) {
  constexpr uint8_t kMore = kMostSampledHeaders + 6, kRecord = 8 + 32;
  Bytes records;
  for (int i = 0; i < kMore; ++i) {
    records = records + Hex("00000001 00000020 00000001 00000040 00000000 0000000E 000000000002 000000000003 88B5 0000");
  }
  const uint32_t size = 32 + kMore * kRecord;
  const Payload payload{.row = RowNamed("application sFlow"),
                        .bytes = Hex("00000005 00000001 C0000209 00000000 00000001 00000001 00000001 00000001 0000") +
                                 Bytes{static_cast<uint8_t>(size >> 8), static_cast<uint8_t>(size)} +
                                 Hex("00000001 00000002 00000064 00000064 00000000 00000001 00000002 000000") + Bytes{kMore} + records};
  TestView view;
  ASSERT_TRUE(RunPayload(view.view(), payload).takes);
  const std::string text = view.Text();
  const auto count = [&](const std::string& words) {
    int32_t found = 0;
    for (size_t at = 0; (at = text.find(words, at)) != std::string::npos; ++at) ++found;
    return found;
  };
  EXPECT_EQ(count("Header: 14 bytes, shown behind the datagram"), kMostSampledHeaders);
  EXPECT_EQ(count("Header Length: 14"), kMore) << text;
}

// What searches for slow payloads found: looked through to their end once for each element.
TEST(Bounds, OfTimeHoldForWhatComesAgainAndAgain) {
  struct Slow {
    const char* row;
    bool overTcp;
    Bytes start, again;
  };
  const Slow all[] = {
      {"application TSP Setup", true, Hex("56455253494F4E3D322E302E300D0A"), Hex("0A")},
      {"application LPD", true, {}, Hex("0A 00")},
  };
  for (const Slow& slow : all) {
    Payload payload{.row = RowNamed(slow.row), .overTcp = slow.overTcp, .bytes = slow.start};
    ASSERT_TRUE(payload.row) << slow.row;
    while (payload.bytes.size() < 65000) payload.bytes.insert(payload.bytes.end(), slow.again.begin(), slow.again.end());
    TestView view;
    EXPECT_LT(BestMilliseconds([&] { RunPayload(view.view(), payload); }, 3), kMostMilliseconds) << slow.row;
  }
}

// Every table is told of more keys, values and bytes than it holds.
TEST(Bounds, OfEveryTableOfState) {
  int32_t rows;
  const StateRow* row = StateRows(&rows);
  const HashSecret secret = MakeHashSecret(7);
  const Bytes some(3000, 's');
  for (int32_t i = 0; i < rows; ++i, ++row) {
    const StateBounds& bounds = row->bounds;
    if (bounds.mostKeys == 0) continue;   // kept by the host, and recorded alone
    StateMemory memory{0, SIZE_MAX};
    StateTable table(*row, memory, secret);
    Bytes key(row->keySize), value(row->valueSize, 'v');
    const StateBytes bytes{some.data(), bounds.mostBytes ? static_cast<uint32_t>(some.size()) : 0};
    const uint32_t keys = bounds.mostKeys + 100;
    for (uint32_t number = 1; number <= keys; ++number) {
      std::memcpy(key.data(), &number, sizeof number);
      table.Remember(key.data(), value.data(), bytes);
      ASSERT_LE(table.Count(), bounds.mostKeys) << row->name;
      ASSERT_LE(table.BytesHeld(), bounds.mostBytes ? bounds.mostBytes : SIZE_MAX) << row->name;
    }
    EXPECT_NE(table.Recall(key.data(), 1, nullptr), nullptr) << row->name;
    EXPECT_GE(table.Count(), bounds.mostBytes ? std::min<size_t>(bounds.mostKeys, bounds.mostBytes / 8000) : bounds.mostKeys)
        << row->name;
    for (uint32_t told = 0; told < bounds.depth + 10u; ++told) table.Remember(key.data(), value.data(), {nullptr, 0});
    EXPECT_EQ(table.Recall(key.data(), bounds.depth + 1, nullptr), nullptr) << row->name;
    EXPECT_TRUE(bounds.mostBytes || table.Recall(key.data(), bounds.depth, nullptr)) << row->name;
    table.Clear();
    EXPECT_EQ(memory.used, 0u) << row->name;
  }
}

}  // namespace
}  // namespace qxview::testing
