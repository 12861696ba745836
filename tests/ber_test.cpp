#include "decoders/asn1/ber.h"

#include "tests/support/decoding.h"

namespace qxview::testing {
namespace {

using ElementDecoder = int32_t (*)(const Place&, Cursor&, AsnResult&);

struct Outcome {
  int32_t status;
  uint32_t number;
  int32_t consumed;
  std::string text, more, tree;
};

// One element under a line "Element", by any callable (place, cursor, result, string for further texts).
template <class Decode>
Outcome RunElement(const Bytes& bytes, Decode decode, TestHost* host = nullptr, bool silent = false) {
  TestView view(host);
  view.Decode({});
  view.tree().Clear();
  const Place top = TopLevel(&view.view(), 2);
  Place at = Beneath(top, AddLine(top, Stated(0, 0), "Element"));
  at.dead = silent;
  char text[kAsnTextSize] = "";
  AsnResult out{0, text, sizeof text};
  Outcome outcome{};
  const Bytes exact(bytes);   // a heap block of its own: a read behind it is seen
  Cursor c = MakeCursor(exact.data(), 0, static_cast<int32_t>(exact.size()));
  outcome.status = decode(at, c, out, outcome.more);
  outcome.number = out.number;
  outcome.consumed = Taken(c);
  outcome.text = text;
  outcome.tree = view.Text();
  return outcome;
}

Outcome RunPlain(ElementDecoder decode, const Bytes& bytes, bool silent = false) {
  return RunElement(bytes, [&](auto& at, Cursor& c, AsnResult& out, std::string&) { return decode(at, c, out); },
                    nullptr, silent);
}

Outcome RunString(const Bytes& bytes, bool forceHex = false) {
  return RunElement(bytes, [&](auto& at, Cursor& c, AsnResult& out, std::string& more) {
    char shortText[kAsnShortTextSize] = "";
    const int32_t status = DecodeAsnOctetString(at, c, {"Name", shortText, sizeof shortText, forceHex}, out);
    more = shortText;
    return status;
  });
}

Outcome RunObject(const Bytes& bytes, TestHost* host = nullptr) {
  return RunElement(bytes, [](auto& at, Cursor& c, AsnResult& out, std::string& more) {
    AsnObjectNames names;
    const int32_t status = DecodeAsnObjectId(at, c, names, out);
    more = names.dotted;
    return status;
  }, host);
}

Outcome RunValue(const Bytes& bytes, const char* label = nullptr) {
  return RunElement(bytes, [&](auto& at, Cursor& c, AsnResult& out, std::string&) {
    return DecodeAsnValue(at, c, label, out);
  });
}

Bytes TextBytes(const std::string& text) { return Bytes(text.begin(), text.end()); }

TEST(Ber, ElementIsTypeLengthAndValue) {
  EXPECT_EQ(RunPlain(DecodeAsnInteger, Hex("02 01 FF  05 00")).tree, R"(Element {0+0}
  ASN Type  : [Universal 2] = INTEGER {0+1}
    00......:  Class [0] = Universal {0+1}
    ..0.....: Constructed = False {0+1}
    ...00010: Tag Number = 2 {0+1}
  ASN Length: 1 {1+1}
    0.......: Multi-Byte Length Flag = False {1+1}
    .0000001: Length = 1 Bytes {1+1}
  ASN Value : 255 {2+1}
)");
  EXPECT_EQ(RunPlain(DecodeAsnException, Hex("81 82 0000")).tree, R"(Element {0+0}
  ASN Type: [Context-Specific 1] = NO SUCH INSTANCE {0+1}
    10......: Class [2] = Context-Specific {0+1}
    ..0.....: Constructed = False {0+1}
    ...00001: Tag Number = 1 {0+1}
  ASN Length: 0 {1+3}
    1.......: Multi-Byte Length Flag = True {1+1}
    .0000010: Number of Bytes = 2 {1+1}
    Length  : 0 Bytes {2+2}
  ASN Value : <NULL> {4+0}
)");
}

TEST(Ber, NumbersKeepTheirLastOctetsWithoutASign) {
  EXPECT_EQ(RunPlain(DecodeAsnInteger, Hex("02 01 FF")).number, 255u);
  EXPECT_EQ(RunPlain(DecodeAsnInteger, Hex("02 05 0100000002")).text, "2");
  EXPECT_EQ(RunPlain(DecodeAsnCounter64, Hex("46 09 01FFFFFFFFFFFFFFFE")).text, "18446744073709551614");
  const Outcome empty = RunPlain(DecodeAsnCounter, Hex("41 00 FF"));
  EXPECT_EQ(empty.status, 1);
  EXPECT_EQ(empty.number, kAsnNoValue);
  EXPECT_EQ(empty.text, "<NULL>");
  EXPECT_EQ(empty.consumed, 2);
  EXPECT_EQ(RunPlain(DecodeAsnBoolean, Hex("01 01 00")).text, "[0] = False");
  EXPECT_EQ(RunPlain(DecodeAsnBoolean, Hex("01 04 7FFFFFFF")).text, "[2147483647] = True");
  EXPECT_EQ(RunPlain(DecodeAsnBoolean, Hex("01 04 80000000")).text, "[2147483648] = Undefined");
  EXPECT_EQ(RunPlain(DecodeAsnNull, Hex("05 01 07")).text, "7");
  EXPECT_NE(RunPlain(DecodeAsnEnumerated, Hex("0A 01 03")).tree.find("  Enumeration: 3 {2+1}"), std::string::npos);
  EXPECT_EQ(RunPlain(DecodeAsnNetworkAddress, Hex("40 05 0A000001FF")).text, "10.0.0.1.255");
  const std::string address = RunPlain(DecodeAsnNetworkAddress, Hex("40 82 0200") + Bytes(512, 255)).text;
  EXPECT_EQ(address.size(), 1023u) << "cut to the buffer";
}

TEST(Ber, ShortAndLyingElements) {
  EXPECT_EQ(RunPlain(DecodeAsnInteger, {}).status, 2);
  EXPECT_EQ(RunPlain(DecodeAsnInteger, Hex("04 01 00")).tree, "Element {0+0}\n") << "not this type: nothing is added";
  const Outcome alone = RunPlain(DecodeAsnInteger, Hex("02"));
  EXPECT_EQ(alone.status, 1);
  EXPECT_EQ(alone.consumed, 1);
  EXPECT_EQ(alone.number, kAsnNoValue);
  EXPECT_EQ(RunPlain(DecodeAsnInteger, Hex("02 02 01")).status, 2);
  EXPECT_EQ(RunPlain(DecodeAsnInteger, Hex("02 82 01")).status, 2);
  EXPECT_EQ(RunPlain(DecodeAsnInteger, Hex("02 84 FFFFFFFF 00")).status, 0) << "negative before too long";
  EXPECT_EQ(RunPlain(DecodeAsnInteger, Hex("02 84 7FFFFFFF 00")).status, 2);
  const Outcome silent = RunPlain(DecodeAsnInteger, Hex("02 01 2A"), true);
  EXPECT_EQ(silent.number, 42u);
  EXPECT_EQ(silent.tree, "Element {0+0}\n");
}

TEST(Ber, LengthForms) {
  const auto decode = [](const Bytes& bytes) {
    return RunElement(bytes, [](auto& at, Cursor& c, AsnResult& out, auto&) {
      return DecodeAsnLength(at, c, &out.number);
    });
  };
  const Outcome two = decode(Hex("82 0100"));
  EXPECT_EQ(two.number, 256u);
  EXPECT_EQ(two.consumed, 3);
  const Outcome many = decode(Hex("86 0102 00000007"));
  EXPECT_EQ(many.number, 7u) << "the first octets are pushed out";
  EXPECT_EQ(many.consumed, 7);
  EXPECT_EQ(decode(Hex("80")).status, 2);
  const Outcome indefinite = decode(Hex("80 05"));
  EXPECT_EQ(indefinite.status, 1);
  EXPECT_EQ(indefinite.number, 5u);
  EXPECT_EQ(indefinite.consumed, 1);
  EXPECT_NE(RunPlain(DecodeAsnInteger, Hex("02 80 02 09")).tree.find("ASN Value : 521 {2+2}"), std::string::npos)
      << "the contents start at the octet that was read as the length";
}

TEST(Ber, ImplicitTagsHideTheType) {
  const Outcome number = RunPlain(DecodeAsnImplicitInteger, Hex("50 01 05"));
  EXPECT_EQ(number.number, 5u);
  EXPECT_NE(number.tree.find("ASN Type: [Application 16] = INTEGER {0+1}"), std::string::npos);
  EXPECT_EQ(RunPlain(DecodeAsnImplicitBoolean, Hex("84 01 FF")).text, "[255] = True");
  const auto decode = [](auto& at, Cursor& c, AsnResult& out, std::string&) {
    return DecodeAsnImplicitString(at, c, {}, out);
  };
  EXPECT_NE(RunElement(Hex("87 02 636E"), decode).tree.find("ASN Type: [Context-Specific 7] = OCTET STRING {0+1}"),
            std::string::npos);
  EXPECT_EQ(RunElement({}, decode).status, 2);
  EXPECT_EQ(RunPlain(DecodeAsnImplicitInteger, {}).status, 2);
  EXPECT_EQ(RunPlain(DecodeAsnImplicitBoolean, Hex("84 02 01")).status, 2);
}

TEST(Ber, StringsAtTheirLimits) {
  const auto octets = [](size_t count, char first = 'a') {
    return Hex("04 81") + Bytes{static_cast<uint8_t>(count)} + TextBytes(first + std::string(count - 1, 'a'));
  };
  const Outcome text = RunString(Hex("04 03") + TextBytes("abc"));
  EXPECT_NE(text.tree.find("Name: abc {0+0}"), std::string::npos) << "the parent line is rewritten";
  EXPECT_EQ(RunString(octets(63)).more, std::string(63, 'a'));
  EXPECT_EQ(RunString(octets(64)).more, std::string(60, 'a') + "...");
  const Bytes broken = Hex("04 40") + TextBytes("ab\r\ncd") + Bytes(58, 'x');
  EXPECT_EQ(RunString(broken).more, "ab...");

  EXPECT_NE(RunString(octets(80)).tree.find("  ASN Value : aaaa"), std::string::npos);
  const std::string dumped = RunString(octets(81)).tree;
  EXPECT_NE(dumped.find("  ASN Value: " + std::string(60, 'a') + "... {3+81}"), std::string::npos) << dumped;

  const Outcome binary = RunString(Hex("04 04 8000 6161"));
  EXPECT_EQ(binary.more, "80 00 61 61");
  EXPECT_EQ(binary.text, "\x80") << "the full text ends at its first zero";
  EXPECT_NE(binary.tree.find("Element {0+0}"), std::string::npos) << "no rewriting in hexadecimal";
  const Outcome zero = RunString(Hex("04 02 0061"));
  EXPECT_EQ(zero.text + zero.more, "<NULL><NULL>");
  EXPECT_EQ(RunString(octets(21), true).more.size(), 62u);
  EXPECT_EQ(RunString(octets(22), true).more.size(), 62u) << "without dots, as the limit has it";
  EXPECT_EQ(RunString(octets(23), true).more.substr(56), " 61...");
}

TEST(Ber, BitStringsAndTicks) {
  EXPECT_EQ(RunPlain(DecodeAsnBitString, Hex("03 02 05A0")).text, "00000101 10100000");
  const std::string bits = RunPlain(DecodeAsnBitString, Hex("03 81 80") + Bytes(128, 1)).text;
  EXPECT_EQ(bits.substr(bits.size() - 12), " 00000001...");
  EXPECT_LT(bits.size(), static_cast<size_t>(kAsnTextSize));
  const auto ticks = [](const Bytes& bytes) {
    return RunElement(bytes, [](auto& at, Cursor& c, AsnResult& out, std::string& more) {
      char words[128];
      const int32_t status = DecodeAsnTimeTicks(at, c, words, sizeof words, out);
      more = words;
      return status;
    });
  };
  const Outcome day = ticks(Hex("43 03 83D601"));
  EXPECT_EQ(day.more, "1 days, 0 hours, 0 minutes, 0.01 seconds");
  EXPECT_EQ(day.text, "1:0:0:0.01");
  EXPECT_NE(day.tree.find("ASN Value : [8640001] = 1 days, "), std::string::npos);
  EXPECT_EQ(ticks(Hex("43 04 FFFFFFFF")).text, "0:0:0:0.4294967295") << "divided as a signed number";
}

int32_t FindSystem(void*, const char* dotted, QxMibEntry* out) {
  const bool isInstance = std::string(dotted) == "1.3.6.1.2.1.1.1.0";
  if (!isInstance && std::string(dotted) != "1.3.6.1") return 0;
  snprintf(out->path, sizeof out->path, "iso.org.dod.internet%s", isInstance ? ".mgmt.mib-2.system.sysDescr" : "");
  snprintf(out->nodeNumber, sizeof out->nodeNumber, "1");
  snprintf(out->suffix, sizeof out->suffix, "%s", isInstance ? "0" : "");
  snprintf(out->type, sizeof out->type, "DisplayString");
  snprintf(out->access, sizeof out->access, "read-only");
  return 1;
}

TEST(Ber, ObjectIdentifiers) {
  EXPECT_EQ(RunObject(Hex("06 05 2B06010201")).more, "1.3.6.1.2.1");
  EXPECT_EQ(RunObject(Hex("06 05 2B06010201")).status, 1);
  EXPECT_EQ(RunObject(Hex("06 05 2B06010201 05")).status, 5) << "bytes follow";
  EXPECT_EQ(RunObject(Hex("06 00")).more, "<NULL>");
  EXPECT_EQ(RunObject(Hex("06 01 78")).more, "3.0");
  EXPECT_EQ(RunObject(Hex("06 04 2B 8137 81")).more, "1.3.183.1") << "the last octet ends it";
  EXPECT_EQ(RunObject(Hex("06 07 2B 8FFFFFFFFF7F")).more, "1.3.4294967295");
  const Outcome big = RunObject(Hex("06 82 04B0") + Bytes(1200, 0x81));
  EXPECT_EQ(big.status, 1);
  EXPECT_EQ(big.consumed, 1204);
  EXPECT_LT(RunObject(Hex("06 82 04B0") + Bytes(1200, 0x7F)).more.size(), static_cast<size_t>(kAsnTextSize));

  TestHost host;
  host.host.findMibEntry = FindSystem;
  const Outcome named = RunObject(Hex("06 08 2B06010201010100 05"), &host);
  EXPECT_EQ(named.status, 1);
  EXPECT_EQ(named.text, "mgmt.mib-2.system.sysDescr.0");
  ExpectInOrder(named.tree, {
      "  ASN Value : mgmt.mib-2.system.sysDescr.0, DisplayString, read-only (1.3.6.1.2.1.1.1.0) {2+8}\n",
      "    Object ID: 1.0 {2+8}\n", "    Object Name: mgmt.mib-2.system.sysDescr.0 {2+8}\n",
      "    Type: DisplayString {2+8}\n", "    Access: read-only {2+8}\n"});
  EXPECT_EQ(RunObject(Hex("06 03 2B0601"), &host).text, "iso.org.dod.internet");
}

TEST(Ber, ValuesAreChosenByTheirIdentifier) {
  const std::string undefined = RunValue(Hex("0A 01 05")).tree;
  ExpectInOrder(undefined, {"  ASN1 Value :  {0+3}\n", "    ASN Type: [Universal 10] = Undefined {0+1}\n",
                            "    Undefined Data {2+1}\n"});
  EXPECT_NE(RunValue(Hex("06 01 2B")).tree.find("= Undefined"), std::string::npos);
  EXPECT_NE(RunValue(Hex("04 01 61"), "Key").tree.find("  Key:  {0+3}\n"), std::string::npos) << "forced hexadecimal";
  EXPECT_NE(RunValue(Hex("1B 01 61"), "Key").tree.find("  ASN Value: a {0+3}\n"), std::string::npos);
  const Outcome element = RunElement(Hex("A1 03 02 01 07"), [](auto& at, Cursor& c, AsnResult& out, auto&) {
    const int32_t status = DecodeAsnHeader(at, c, "Kind");
    return status == kAsnDecoded ? DecodeAsnValue(at, c, "Kind", out) : status;
  });
  ExpectInOrder(element.tree, {"  Kind Type: {0+1}\n", "    ..1.....: Constructed = True",
                               "  Kind Length: 3 Bytes {1+1}\n",
                               "  Kind:  {2+3}\n", "    ASN Value : 7 {4+1}\n"});
  EXPECT_EQ(element.consumed, 5);
}

TEST(Ber, DeepPlacesShareTheLastImage) {
  const Outcome deep = RunElement(Hex("02 01 01"), [](const Place& at, Cursor& c, AsnResult& out, auto&) {
    Place place = at;
    for (int i = 0; i < 100; ++i) place = Beneath(place, place.parent);
    EXPECT_EQ(LevelImage(place.level), kImageCount - 2);
    return DecodeAsnInteger(place, c, out);
  });
  EXPECT_EQ(deep.status, 1);
  EXPECT_NE(deep.tree.find("  ASN Value : 1 {2+1}"), std::string::npos);
}

}  // namespace
}  // namespace qxview::testing
