// Rows and elements: the text of every form, the values that come back, bounds, and the keys and values of their lines.
#include "core/elements.h"
#include "core/line_facts.h"
#include "tests/support/decoding.h"

namespace qxview {
namespace {

constexpr auto kKindNames = SortedNames({{1, "First"}, {2, "Second"}});
constexpr auto kMaskNames = SortedNames({{0x01, "Lowest"}, {0x06, "Pair"}, {0x80, "Highest"}});

struct Thing {
  Field kind, count, bits, mode;
  uint64_t wide;
};

constexpr auto kThing = Rows<Thing>({
    Number(1, "Kind", kKindNames).Note(", Kind %u (%s)").Into(&Thing::kind),
    Hex(2, "Code"), Hex(1, "Code", kKindNames), Number(3, "Length", " bytes"), Number(8, "Wide").Into(&Thing::wide),
    Signed(1, "Offset"), Number(2, "Small").Little(), Float(4, "Rate"),
    Word(1), Bits(0, 2, "Mode", kKindNames).Into(&Thing::mode), Bits(2, 3, "Slot", " of 8"), Flag(7, "Last"),
    Number(1, "Bits").Into(&Thing::bits), Bits(4, 4, "Low"),
    Flags(1, "Marks", kMaskNames),
    IPv4("Router"), Mac("Station"), IPv6("Host"), Eui64("Device"),
    UnixTime(4, "Seen"), NtpTime("Sent"), NtpSpan("Delay"), FileTime("Made").Little(),
    Counted(1, Text(0, "Name")), Terminated(Text(0, "Path")), Terminated(Utf16(0, "Title")).Little(),
    Number(1, "Count").Into(&Thing::count), Bytes(0, "Key").SizedBy(&Thing::count),
    Number(2, "Told").Told("told %.04X"), Utf8(0, "Rest")});

int32_t DecodeThing(const Place& at, Cursor c) {
  PacketOf(at).protocol = "thing";
  const Place in = Under(at, AddLine(at, Ahead(c, 1), "Thing"));
  const Thing thing = ShowRows(in, c, kThing);
  AddLine(in, Stated(0, 0), "Values: %u %u %u %u 0x%I64X", thing.kind.value, thing.mode.value, thing.bits.value,
          thing.count.value, thing.wide);
  return 1;
}

constexpr auto kText = Rows<Thing>({Text(0, nullptr).Note(", %s")});
constexpr auto kPair = Rows<Thing>({Number(1, "Left"), Number(1, "Right")});
constexpr auto kChoices = Choices<Thing>({{1, "Name", kText}, {2, "Pair", kPair}});

// In the order that a message names; what is set is noted.
constexpr auto kOrdered = Rows<Thing>({Number(2, "Count").Into(&Thing::count), Number(8, "Wide").Into(&Thing::wide),
                                       Utf16(2, "Text"), Word(2), Flag(15, "Low").NoteWhenSet(", low"),
                                       Flag(0, "High").NoteWhenSet(", high")});

int32_t DecodeOrdered(const Place& at, Cursor c) {
  const ByteOrder order = PeekU8(c) == 1 ? ByteOrder::kLittle : ByteOrder::kAsRows;
  const Field mark = TakeU8(c);
  const Place in = Under(at, AddLine(at, mark, "Thing %u", PeekRows(c, kOrdered, order).count.value));
  const Thing thing = ShowRows(in, c, kOrdered, order);
  AddLine(in, Stated(0, 0), "Values: %u 0x%I64X", thing.count.value, thing.wide);
  return 1;
}

int32_t DecodeFixed(const Place& at, Cursor c) {
  static constexpr auto kFixed = Rows<Thing>({
      Number(1, "First"), Hex(2, "Code", kKindNames), Word(2), Bits(0, 4, "Part"), Flag(15, "Last"), IPv4("Router"),
      Number(1, "Kind").Into(&Thing::kind), Mac("Station"), Bytes(12, "Key"), Number(1, "Marks"), Bits(0, 1, "Low"),
      UnixTime(4, "Seen"), Text(6, "Name")});
  const Place in = Under(at, AddLine(at, Ahead(c, 1), "Fixed"));
  const Thing thing = ShowRows(in, c, kFixed);
  AddLine(in, Stated(0, 0), "Kind: %u; behind: %d", thing.kind.value, c.offset);
  return static_cast<int32_t>(thing.kind.value << 8 | static_cast<uint32_t>(c.offset));
}

}  // namespace
}  // namespace qxview

namespace qxview::testing {
namespace {

// The tree without its ranges.
std::string Decode(DecoderFunction decode, const Bytes& bytes) {
  std::string tree = TreeOfRun(decode, bytes);
  for (size_t end = tree.find("}\n"); end != std::string::npos; end = tree.find("}\n", end)) {
    const size_t start = tree.rfind(" {", end);
    tree.erase(start, end + 1 - start);
    end = start;
  }
  return tree;
}

const Bytes kBytes = Hex(
    "02 0A0B 07 000102 0102030405060708 FE 3412 3FC00000 85 2A 83 C0000201 020000000001 "
    "20010DB8000000000000000000000001 0011223344556677 5F5E1000 E94B3C1880000000 00018000 00803ED5DEB19D01 "
    "03 616263 2F7800 41004200 0000 02 AABB 0102 C3A9E282ACFF");

TEST(Rows, ShowEveryForm) {
  EXPECT_EQ(Decode(DecodeThing, kBytes),
            "Thing, Kind 2 (Second)\n"
            "  Kind: 2 = Second\n"
            "  Code: 0x0A0B\n"
            "  Code: 0x07 = Unknown\n"
            "  Length: 258 bytes\n"
            "  Wide: 72623859790382856\n"
            "  Offset: -2\n"
            "  Small: 4660\n"
            "  Rate: 1.5\n"
            "  10......: Mode = 2 (Second)\n"
            "  ..000...: Slot = 0 of 8\n"
            "  .......1: Last = True\n"
            "  Bits: 42\n"
            "    ....1010: Low = 10\n"
            "  Marks: 0x83\n"
            "    .......1: Lowest = True\n"
            "    .....01.: Pair = 1\n"
            "    1.......: Highest = True\n"
            "  Router: 192.0.2.1\n"
            "  Station: 02:00:00:00:00:01\n"
            "  Host: 2001:db8::1\n"
            "  Device: 00:11:22:33:44:55:66:77\n"
            "  Seen: 2020-09-13 12:26:40\n"
            "  Sent: 2024-01-12 04:18:32.500000000\n"
            "  Delay: 1.500000 seconds\n"
            "  Made: 1970-01-01 00:00:00\n"
            "  Name Length: 3\n"
            "  Name: abc\n"
            "  Path: /x\n"
            "  Title: AB\n"
            "  Count: 2\n"
            "  Key: AA BB\n"
            "  told 0102\n"
            "  Rest: \xE9\x80\xFF\n"
            "  Values: 2 2 42 2 0x102030405060708\n");
}

void TakeCounted(const Place& in, Cursor& c, const char* label, Thing& thing) {
  const Field text = TakeBytes(c, thing.count.value);
  AddLine(in, text, "%s: %s", label, Text(text));
}

TEST(Rows, MayBeTakenByAFunctionBehindOthers) {
  static constexpr auto kRows = LittleRows<Thing>({
      Number(2, "Count").Into(&Thing::count), Shown("Name", TakeCounted),
      Coded(2, "State", kKindNames).Into(&Thing::kind), Coded(1, "Other", kKindNames)});
  EXPECT_EQ(Decode([](const Place& at, Cursor c) {
              AddLine(at, Ahead(c, 0), "Ahead: %u %u", PeekRows(c, kRows).count.value, PeekRows(c, kRows).kind.value);
              ShowRows(at, c, kRows);
              return 1;
            }, Hex("0300 616263 0200 07")),
            "Ahead: 3 0\nCount: 3\nName: abc\nState: [2] = Second\nOther: [7] = Undefined\n");
}

// Rows passed in runs count what they would count one by one, cut anywhere and at every bound of lines.
TEST(Rows, ArePassedAsTheyAreShown) {
  TestView shown, silent;
  Bytes bytes(60);
  for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<uint8_t>(i * 37);
  for (size_t length = 0; length <= bytes.size(); ++length) {
    for (int32_t lines = 1; lines < 20; ++lines) {
      int32_t behind[2], left[2];
      for (const int which : {0, 1}) {
        TestView& view = which ? silent : shown;
        ClearDecodeTree(&view.view(), &view.tree(), true);
        view.context().packet = PacketState{};
        view.context().packet.linesLeft = lines;
        view.context().silent = which == 1;
        const Bytes cut(bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(length));
        behind[which] = DecodeFixed(TopLevel(&view.view(), kFirstLevel), MakeCursor(cut.data(), 0, static_cast<int32_t>(length)));
        left[which] = view.context().packet.linesLeft;
      }
      EXPECT_EQ(behind[0], behind[1]) << length << " bytes, " << lines << " lines";
      EXPECT_EQ(left[0], left[1]) << length << " bytes, " << lines << " lines";
    }
  }
}

TEST(Rows, FollowTheOrderOfTheMessage) {
  EXPECT_EQ(Decode(DecodeOrdered, Hex("00 0002 0000000000000003 0041 0001")),
            "Thing 2, low\n  Count: 2\n  Wide: 3\n  Text: A\n  ........ .......1: Low = True\n"
            "  0....... ........: High = False\n  Values: 2 0x3\n");
  EXPECT_EQ(Decode(DecodeOrdered, Hex("01 0200 0300000000000000 4100 0080")),
            "Thing 2, high\n  Count: 2\n  Wide: 3\n  Text: A\n  ........ .......0: Low = False\n"
            "  1....... ........: High = True\n  Values: 2 0x3\n");
  // Bits of a number that is cut are not those of the one before it.
  EXPECT_EQ(Decode(DecodeOrdered, Hex("00 0002 0000000000000003 0041 00")),
            "Thing 2\n  Count: 2\n  Wide: 3\n  Text: A\n  Values: 2 0x3\n");
}

std::string Elements(const ElementForm& form, const std::string& bytes) {
  static ElementForm current;
  current = form;
  return Decode(
      [](const Place& at, Cursor c) {
        Thing thing{};
        ShowElements<Thing>(at, c, current, "Element", kChoices, thing);
        AddLine(at, Rest(c), "Left Over");
        return 1;
      },
      Hex(bytes));
}

TEST(Elements, AreFramedInEveryWay) {
  EXPECT_EQ(Elements({}, "01 02 6869 09 01 FF"),
            "Element: Name, hi\n  Type: 1 = Name\n  Length: 2\n  Name: hi\n"
            "Element: Unknown\n  Type: 9 = Unknown\n  Length: 1\n  Data\n");
  const auto pair = [](std::string head, const char* tail = "") {
    return head.append("  Left: 7\n  Right: 8\n").append(tail);
  };
  EXPECT_EQ(Elements({.lengthCountsHeader = true}, "02 04 07 08"),
            pair("Element: Pair\n  Type: 2 = Pair\n  Length: 4\n"));
  EXPECT_EQ(Elements({.typeSize = 2, .lengthSize = 2, .padTo = 4, .little = true}, "0200 0200 0708 0000"),
            pair("Element: Pair\n  Type: 2 = Pair\n  Length: 2\n", "  Padding: 00 00\n"));
  EXPECT_EQ(Elements({.typeSize = 2, .typeBits = 7}, "0402 0708"),
            pair("Element: Pair\n  0000010. ........: Type = 2 (Pair)\n  .......0 00000010: Length = 2\n"));
  EXPECT_EQ(Elements({.lengthFirst = true}, "02 02 07 08"), pair("Element: Pair\n  Length: 2\n  Type: 2 = Pair\n"));
  EXPECT_EQ(Elements({.padType = 0, .endType = 255}, "00 02 02 07 08 FF AA"),
            pair("Element: Unknown\n  Type: 0 = Unknown\nElement: Pair\n  Type: 2 = Pair\n  Length: 2\n",
                 "Element: Unknown\n  Type: 255 = Unknown\nLeft Over\n"));
  // A length that leads nowhere ends the list; one that is too long takes what is there.
  EXPECT_EQ(Elements({.lengthCountsHeader = true}, "02 01 07 08"), "Left Over\n");
  EXPECT_EQ(Elements({}, "02 09 07"), "Element: Pair\n  Type: 2 = Pair\n  Length: 9\n  Left: 7\n");
}

std::string Keys(const Bytes& bytes, DecoderFunction decode) {
  TestView view;
  KeepFacts(&view.context(), true);
  view.Run(decode, bytes);
  std::string text;
  for (uint32_t i = 0; i < view.context().rangeCount; ++i) {
    const LineFact* fact = FactOf(&view.context(), i);
    char key[kKeySize];
    if (!fact || !FormatKey(&view.context(), *fact, key, sizeof key)) continue;
    text += key;
    if (fact->kind == ValueKind::kText) {
      text.append("=").append(ValueText(&view.context(), *fact), static_cast<size_t>(fact->valueLength));
    }
    if (fact->kind == ValueKind::kNumber) text.append("=").append(std::to_string(fact->number));
    if (fact->kind == ValueKind::kSigned) text.append("=").append(std::to_string(static_cast<int64_t>(fact->number)));
    text += " ";
  }
  KeepFacts(&view.context(), false);
  return text;
}

TEST(Keys, ComeFromRowsAndTexts) {
  EXPECT_EQ(Keys(kBytes, DecodeThing),
            "thing thing.kind=2 thing.code=2571 thing.code=7 thing.length=258 thing.wide=72623859790382856 "
            "thing.offset=-2 thing.small=4660 thing.rate=1.5 thing.mode=2 thing.slot=0 thing.last=1 thing.bits=42 "
            "thing.low=10 thing.marks=131 thing.lowest=1 thing.pair=1 thing.highest=1 thing.router=192.0.2.1 "
            "thing.station=02:00:00:00:00:01 thing.host=2001:db8::1 thing.device=00:11:22:33:44:55:66:77 "
            "thing.seen=2020-09-13 12:26:40 thing.sent=2024-01-12 04:18:32.500000000 "
            "thing.delay=1.500000 seconds thing.made=1970-01-01 00:00:00 thing.name_length=3 "
            "thing.name=abc thing.path=/x thing.title=AB thing.count=2 thing.key=AA BB thing.told=258 "
            "thing.rest=\xE9\x80\xFF thing.values=2 ");
  EXPECT_EQ(Keys(Hex("C0000201"),
                 [](const Place& at, Cursor c) {
                   PacketOf(at).protocol = "thing";
                   const Field all = Ahead(c, 4);
                   const BitPicture bits = BitsOf(TakeU8(c), 0, 2);
                   AddLine(at, all, "Question Record #%u:%s", 3u, "www.example.com");
                   AddLine(at, all, "%s IP Address: %s", "Source", IPv4Text(all.bytes));
                   AddLine(at, all, "%s: Do Not Fragment = %s", bits.picture, "True");
                   AddLine(at, all, "Sent: %.04u-%.02u-%.02u", 2026u, 1u, 2u);
                   AddLine(at, all, "ID: 0x%.04X (%u)", 18u, 18u);
                   AddLine(at, all, "No value here");
                   AddLine(at, all, "%s: Class", "11......");
                   return 1;
                 }),
            "thing.question_record=www.example.com thing.source_ip_address=192.0.2.1 thing.do_not_fragment=3 "
            "thing.sent=2026-01-02 thing.id=18 thing.no_value_here thing.class=3 ");
}

}  // namespace
}  // namespace qxview::testing
