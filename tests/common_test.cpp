// What several protocols carry: times, identifiers, characters.
#include "core/characters.h"
#include "core/times.h"
#include "decoders/common/guid.h"
#include "decoders/common/object_id.h"
#include "decoders/common/sid.h"
#include "tests/support/decoding.h"

namespace qxview::testing {
namespace {

Cursor Over(const Bytes& bytes) { return MakeCursor(bytes.data(), 0, static_cast<int32_t>(bytes.size())); }

std::string Written(const TimeText& time) {
  char out[kMostDeferred];
  FormatInto(out, sizeof out, "%s", time);
  return out;
}

TEST(Common, TimesCountFromTheirOwnYears) {
  EXPECT_EQ(Written(UnixTimeText(0xFFFFFFFE)), "2106-02-07 06:28:14");
  EXPECT_EQ(Written(UnixTimeText(0xFFFFFFFF)), "Not set");
  EXPECT_EQ(Written(FileTimeText(1)), "1601-01-01 00:00:00.0000001");
  EXPECT_EQ(Written(FileTimeText(INT64_MAX)), "30828-09-14 02:48:05.4775807");
  EXPECT_EQ(Written(NtpTimeText(0xFFFFFFFF'80000000)), "2036-02-07 06:28:15.500000000");
  EXPECT_EQ(Written(NtpTimeText(0x00000001'00000000)), "2036-02-07 06:28:17") << "the era after that";
  EXPECT_EQ(Written(UtcText(-1, 987654321, 3)), "1969-12-31 23:59:59.987");
  EXPECT_EQ(Written(DosTimeText(0xFFFF, 0xFFFF)), "2107-15-31 31:63:62") << "shown as it stands";
}

TEST(Common, IdentifiersHoldWhatTheySay) {
  const Bytes sid = Hex("01 02 000000000005 20000000 20020000"), many = Hex("01 10 000000000005") + Bytes(64, 1);
  EXPECT_EQ(SidSize(Over(sid)), 16);
  EXPECT_EQ(SidSize(Over(Bytes(sid.begin(), sid.end() - 1))), 0) << "cut";
  EXPECT_EQ(SidSize(Over(many)), 0) << "more sub-authorities than there can be";
  const Bytes guid = Hex("00112233 4455 6677 8899 AABBCCDDEEFF");
  EXPECT_STREQ(TextOfGuid({guid.data(), 0, 16, 0, true}, GuidOrder::kLittle, GuidLetters::kLower).text,
               "33221100-5544-7766-8899-aabbccddeeff");
  EXPECT_STREQ(TextOfGuid({}, GuidOrder::kBig).text, "");
  EXPECT_STREQ(TextOfObjectId(Over(Hex("88 37 86 F7 0D 81"))).text, "2.999.113549") << "the last number is cut";
  const ObjectIdText longest = TextOfObjectId(Over(Bytes(2000, 0x7F)));
  EXPECT_EQ(std::string(longest.text).substr(std::strlen(longest.text) - 7), ".127...");
}

TEST(Common, CharactersOfOneEncodingFindTheirPlaceInTheOther) {
  for (uint32_t i = 1; i < 256; ++i) {
    const uint8_t character = static_cast<uint8_t>(i);
    if (CodeOfWindows1252(character) == i && i >= 0x80 && i < 0xA0) continue;   // left open
    EXPECT_EQ(Windows1252Of(CodeOfWindows1252(character)), character);
  }
  EXPECT_EQ(Windows1252Of(0x20B9), 0);
  const Bytes faulty = Hex("ED A0 80  C0 80  F4 90 80 80  E2 82");   // a surrogate, an overlong form, past the end, cut
  for (const int at : {0, 3, 5, 9}) {
    EXPECT_EQ(Utf8At(faulty.data() + at, static_cast<int32_t>(faulty.size()) - at).octets, 0) << at;
  }
}

}  // namespace
}  // namespace qxview::testing
