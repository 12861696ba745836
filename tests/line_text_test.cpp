// Texts of lines made of octets that should be UTF-8, and pieces of headers' values: what is taken many at once reads as one by one.
#include "decoders/common/line_text.h"

#include <random>

#include "decoders/common/header_values.h"
#include "tests/support/decoding.h"
#include "tests/support/guarded_memory.h"

namespace qxview::testing {
namespace {

// Whole characters, so that they can be put one by one.
std::vector<std::string> RandomCharacters(std::mt19937& random) {
  constexpr const char* kOthers[] = {"\xC3\xA9", "\xE2\x82\xAC", "\xE2\x82\xB9", "\t", "\r", "\x7F", "\x01", "\xFF"};
  std::vector<std::string> characters(random() % 60);
  const uint32_t others = random() % 3;
  for (std::string& one : characters) {
    one = random() % 10 < others ? kOthers[random() % 8] : std::string(1, "ab ,+\"\\;<=~"[random() % 11]);
  }
  return characters;
}

TEST(LineTexts, PutRunsAsTheirCharacters) {
  using Put = void (*)(LineText&, const Cursor&);
  constexpr Put kWays[] = {[](LineText& out, const Cursor& c) { out.PutReadable(c); },
                           [](LineText& out, const Cursor& c) { out.PutCharacters(c, ""); },
                           [](LineText& out, const Cursor& c) { out.PutCharacters(c, ",+\"\\<>;"); }};
  std::mt19937 random(5);
  const GuardedMemory memory(1024);
  for (int round = 0; round < 4000; ++round) {
    const std::vector<std::string> characters = RandomCharacters(random);
    std::string whole;
    for (const std::string& one : characters) whole += one;
    const int32_t length = static_cast<int32_t>(whole.size()), room = 1 + static_cast<int32_t>(random() % 80);
    uint8_t* const bytes = memory.Room(whole.size());
    std::copy(whole.begin(), whole.end(), bytes);
    char together[100], alone[100];
    const Put put = kWays[round % 3];
    LineText first(together, room), second(alone, room);
    put(first, MakeCursor(bytes, 0, length));
    int32_t at = 0;
    for (const std::string& one : characters) {
      put(second, MakeCursor(bytes + at, 0, static_cast<int32_t>(one.size())));
      at += static_cast<int32_t>(one.size());
    }
    EXPECT_STREQ(together, alone) << "room for " << room;
    EXPECT_EQ(first.IsFull(), second.IsFull());
  }
}

// As RFC 9110 5.6 reads, a character at a time.
int32_t PlainLengthUpTo(const std::string& text, const std::string& ends) {
  bool quoted = false, inBrackets = false;
  for (size_t at = 0; at < text.size(); ++at) {
    if (quoted && text[at] == '\\') ++at;
    else if (text[at] == '"') quoted = !quoted;
    else if (!quoted && (text[at] == '<' || text[at] == '>')) inBrackets = text[at] == '<';
    else if (!quoted && !inBrackets && ends.find(text[at]) != std::string::npos) return static_cast<int32_t>(at);
  }
  return static_cast<int32_t>(text.size());
}

TEST(HeaderValues, EndWhereOneByOneEnds) {
  std::mt19937 random(6);
  const GuardedMemory memory(1024);
  for (int round = 0; round < 20000; ++round) {
    std::string text(random() % 70, 'a');
    for (char& c : text) {
      if (random() % 12 == 0) c = "\"\\<>,;?\0"[random() % 8];
    }
    uint8_t* const bytes = memory.Room(text.size());
    std::copy(text.begin(), text.end(), bytes);
    Cursor c = MakeCursor(bytes, 0, static_cast<int32_t>(text.size()));
    const Field field = TakeBytes(c, Left(c));
    for (const char* ends : {",", ";?"}) EXPECT_EQ(LengthUpTo(field, ends), PlainLengthUpTo(text, ends)) << text;
  }
}

}  // namespace
}  // namespace qxview::testing
