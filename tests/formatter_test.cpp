#include "core/formatter.h"

#include <cinttypes>
#include <cstdarg>
#include <cstdio>
#include <random>

#include "app/printed_lines.h"
#include "core/bits.h"
#include "core/bounded_text.h"
#include "core/levels.h"
#include "core/name_table.h"
#include "core/piece_writer.h"
#include "tests/support/decoding.h"
#include "tests/support/guarded_memory.h"

namespace qxview::testing {
namespace {

template <class... Args>
std::string Formatted(FormatText<std::type_identity_t<Args>...> text, const Args&... args) {
  char out[600];
  const int32_t length = FormatInto(out, sizeof out, text, args...);
  EXPECT_EQ(static_cast<size_t>(length), std::strlen(out));
  return out;
}

std::string ByLibrary(const char* format, ...) {
  char out[600];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(out, sizeof out, format, arguments);
  va_end(arguments);
  return out;
}

TEST(Formatter, AgreesWithTheLibraryWhereBothReadAlike) {
  std::mt19937 random(1);
  for (int i = 0; i < 20000; ++i) {
    const uint32_t number = random() >> (random() % 32);
    const int32_t sign = static_cast<int32_t>(number);
    const uint64_t wide = uint64_t{random()} << 32 | number;
    EXPECT_EQ(Formatted("%u|%d|%X|%x|%c", number, sign, number, number, 'A' + i % 26),
              ByLibrary("%u|%d|%X|%x|%c", number, sign, number, number, 'A' + i % 26));
    EXPECT_EQ(Formatted("%.02X|%.04X|%04X|%08x|%.2d|%.01d", number, number, number, number, sign, sign),
              ByLibrary("%.02X|%.04X|%04X|%08x|%.2d|%.01d", number, number, number, number, sign, sign));
    EXPECT_EQ(Formatted("%4u|%2d|%12d|%08d|%10X|", number, sign, sign, sign, number),
              ByLibrary("%4u|%2d|%12d|%08d|%10X|", number, sign, sign, sign, number));
    for (const uint64_t value : {wide, uint64_t{number}}) {
      EXPECT_EQ(Formatted("%I64u|%I64d|%I64X|%.4I64X", value, static_cast<int64_t>(value), value, value),
                ByLibrary("%" PRIu64 "|%" PRId64 "|%" PRIX64 "|%.4" PRIX64, value, value, value, value));
    }
  }
  EXPECT_EQ(Formatted("%12s|%s|", "right", ""), "       right||");
}

TEST(Formatter, ReadsTheSizesAlikeOnEveryPlatform) {
  EXPECT_EQ(Formatted("%lu %.01lu %4lu %ld", 4294967295u, 7u, 12u, -1), "4294967295 7   12 -1");
  EXPECT_EQ(Formatted("%d %u", uint8_t{200}, int16_t{-1}), "200 4294967295") << "an argument's own signedness is kept";
  EXPECT_EQ(Formatted("0x%.02X.02X.02X", 0xABu), "0xAB.02X.02X") << "one conversion, the rest is text";
}

TEST(Formatter, TakesTextsOfAllKinds) {
  const uint8_t bytes[6] = {0x00, 0x7F, 0xFF};
  EXPECT_EQ(Formatted("%s", HexSlice{bytes, 3, ' '}), "00 7F FF");
  EXPECT_EQ(Formatted("%s", HexSlice{bytes, 3, 0}), "007FFF");
  EXPECT_EQ(Formatted("[%s]", TextSlice{"ab\0cd", 5}), "[ab]") << "a text ends at its first zero byte";
  EXPECT_EQ(Formatted("[%s]", TextSlice{"abcd", 2}), "[ab]");
  EXPECT_EQ(Formatted("[%s]", static_cast<const char*>(nullptr)), "[]");
  EXPECT_EQ(Formatted("[%.3s] [%5.3s] [%.8s]", "abcdef", TextSlice{"abcdef", 6}, "ab"), "[abc] [  abc] [ab]");
  EXPECT_EQ(Formatted("[%.4s] [%.3s]", HexSlice{bytes, 3, ' '}, MacText(bytes)), "[00 7] [00:]");
}

// A text may end with the last page that there is, at any place of the line.
TEST(Formatter, TakesTextsOfEveryLengthFromTheEndOfAPage) {
  const GuardedMemory page(4096);
  const std::string letters = "The quick brown fox jumps over the lazy dog, and once more";
  for (size_t length = 0; length <= letters.size(); ++length) {
    char* const text = reinterpret_cast<char*>(page.Room(length + 1));
    std::memcpy(text, letters.data(), length);
    text[length] = 0;
    const std::string expected = letters.substr(0, length);
    EXPECT_EQ(Formatted("%s", text), expected);
    EXPECT_EQ(Formatted("A literal that is longer than thirty-two characters: %s|%s", text, text),
              "A literal that is longer than thirty-two characters: " + expected + "|" + expected);
  }
}

TEST(Formatter, DrawsBitsOfEveryWidthAsTheirPicture) {
  const uint32_t value = 0x9A5C3F17;
  for (uint8_t width = 8; width <= 32; width = static_cast<uint8_t>(width + 8)) {
    for (uint8_t first = 0; first <= width; ++first) {
      for (uint8_t count = 0; count <= width + 1; ++count) {
        char picture[kBitPictureSize];
        FormatBits(value, width, picture, first, count);
        EXPECT_EQ(Formatted("%s!", BitSlice{value, width, first, count}), std::string(picture) + "!");
      }
    }
  }
}

TEST(Formatter, CountsDigitsAtTheirBorders) {
  for (uint64_t power = 1; power <= 1000000000; power *= 10) {
    for (const uint64_t number : {power - 1, power, power + 1, 4 * power, uint64_t{UINT32_MAX}}) {
      const uint32_t value = static_cast<uint32_t>(number);
      EXPECT_EQ(Formatted("%u", value), std::to_string(value));
    }
  }
}

TEST(Formatter, NeverPassesItsBuffer) {
  const uint8_t address[] = {255, 255, 255, 255, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
  const std::string whole = "Text name of 4000000000 and           -5, 255.255.255.255, ff ABCD 00AB 7 ........ ....1010: " +
                            std::string("FF FF FF FF 01 02-FF-FF-01020304, ffff:ffff:102:304:506:708:90a:b0c");
  for (int32_t size = 1; size < 180; ++size) {
    std::vector<char> out(static_cast<size_t>(size) + 1, '#');
    const int32_t length =
        FormatInto(out.data(), size, "Text %s of %u and %12d, %s, %x %X %.04X %u %s: %s-%.5s-%s, %s", "name", 4000000000u, -5,
                   IPv4Text(address), 255u, 0xABCDu, 0xABu, 7u, BitSlice{10, 16, 12, 4}, HexSlice{address, 6, ' '},
                   HexSlice{address, 6, '-'}, HexSlice{address + 4, 4, 0}, IPv6Text(address));
    EXPECT_EQ(length, std::min<int32_t>(size - 1, static_cast<int32_t>(whole.size())));
    EXPECT_EQ(out[static_cast<size_t>(length)], 0);
    EXPECT_EQ(out[static_cast<size_t>(size)], '#');
    EXPECT_EQ(std::string(out.data()), whole.substr(0, static_cast<size_t>(length)));
  }
  for (int32_t size = 1; size < 60; ++size) {
    std::vector<char> out(static_cast<size_t>(size) + 1, '#');
    const int32_t length = FormatInto(out.data(), size, "Text %s of %u and %12d, %s", "name", 4000000000u, -5,
                                      IPv4Text(address));
    EXPECT_EQ(out[static_cast<size_t>(length)], 0);
    EXPECT_EQ(out[static_cast<size_t>(size)], '#');
    EXPECT_EQ(std::string(out.data()),
              std::string("Text name of 4000000000 and           -5, 255.255.255.255").substr(0, static_cast<size_t>(length)));
  }
  EXPECT_EQ(FormatInto(nullptr, 5, "x"), 0);
  char full[4] = "abc";
  EXPECT_EQ(AppendFormat(full, sizeof full, "%u", 1u), 3);
}

// What the quick loop writes beside what is written piece by piece, in room of every size.
template <class... Args>
void ExpectTheSamePieces(FormatText<std::type_identity_t<Args>...> text, const Args&... args) {
  const FormatArguments<sizeof...(Args)> arguments = {{ArgumentOf(args)...}};
  const GuardedMemory memory(4096);
  for (size_t size = 1; size < 400; size += 1 + size / 40) {
    char slowly[400], *const quickly = reinterpret_cast<char*>(memory.Room(size));
    const char* const slowEnd = detail::PutPieces(slowly, slowly + size - 1, text.text, text.pieces, arguments.of);
    const std::string expected(slowly, static_cast<size_t>(slowEnd - slowly));
    const char* const end = detail::WritePieces(quickly, quickly + size - 1, text.text, text.pieces, arguments.of);
    ASSERT_EQ(std::string(quickly, static_cast<size_t>(end - quickly)), expected) << text.text << " in " << size;
  }
}

TEST(Formatter, WritesQuicklyWhatItWritesPieceByPiece) {
  const uint8_t bytes[16] = {192, 0, 2, 1, 0xFE, 0x80, 0, 0, 0, 0, 9};
  const std::string letters(90, 'q');
  for (size_t length = 0; length <= letters.size(); length = length < 35 ? length + 1 : length + 7) {
    const char* const name = letters.c_str() + letters.size() - length;
    const TextSlice slice{name, static_cast<int32_t>(length)};
    ExpectTheSamePieces("Name: %s", name);
    ExpectTheSamePieces("%s%s, %s and a literal that takes more than thirty-two characters%s", name, slice, name, name);
    ExpectTheSamePieces("%12s %.5s %20.3s|%s", name, name, slice, static_cast<const char*>(nullptr));
    std::string cut = letters;
    cut[length * 7 % letters.size()] = 0;
    ExpectTheSamePieces("[%s]", TextSlice{cut.c_str(), static_cast<int32_t>(length)});
  }
  std::mt19937 random(3);
  for (int32_t i = 0; i < 3000; ++i) {
    const uint64_t wide = (uint64_t{random()} << 32 | random()) >> random() % 64;
    const uint32_t number = random() >> random() % 32;
    const int32_t sign = static_cast<int32_t>(number) * (i % 2 ? -1 : 1);
    ExpectTheSamePieces("%u %d %u %d %lu, %ld", number, sign, sign, number, number, sign);
    ExpectTheSamePieces("%I64u %I64d %I64X %c|%I64u", wide, wide, wide, number & 0x7F, number);
    ExpectTheSamePieces("%02u:%02u %2u %04u 0x%.04X %.02X %04X %02X %X %x %.08X", number % 120, number, number, number, number, number,
                        number, number, number, number, number);
    ExpectTheSamePieces("%s = %s; %s (%s) %s", BitSlice{number, static_cast<uint8_t>(8 << i % 3), static_cast<uint8_t>(i % 9), 4}, "x",
                        IPv4Text(bytes + i % 4), MacText(bytes), HexSlice{bytes, i % 16, i % 2 ? ' ' : '\0'});
  }
}

// From the end of a page, so that what is read behind the text would be seen.
TEST(Sixteen, CountsAndCopiesTextsOfEveryLength) {
  const GuardedMemory memory(16384);
  std::mt19937 random(4);
  for (size_t length = 0; length < 9000; length = length < 200 ? length + 1 : length * 5 / 4) {
    char* const text = reinterpret_cast<char*>(memory.Room(length + kSixteen));
    for (const uint32_t kinds : {1u, 3u, 256u}) {
      size_t others = 0, controls = 0;
      for (size_t i = 0; i < length; ++i) {
        text[i] = random() % 40 < kinds ? static_cast<char>(random()) : 'a';
        others += text[i] < ' ' || text[i] > '~';
        controls += static_cast<uint8_t>(text[i]) < ' ';
      }
      std::memset(text + length, '\n', kSixteen);
      EXPECT_EQ(CountOthers(text, length), others) << length;
      EXPECT_EQ(CountOthersQuickly(text, length), others) << length;
      EXPECT_EQ(CountControls(text, length), controls) << length;
    }
    std::memset(text, '\n', length);
    EXPECT_EQ(CountOthers(text, length), length);
    char* const slice = reinterpret_cast<char*>(memory.Room(length));
    std::vector<char> copied(length + kSixteen);
    for (size_t zero = 0; zero <= length; zero = zero < 70 ? zero + 1 : zero * 2) {
      std::memset(slice, 'a', length);
      if (zero < length) slice[zero] = 0;
      EXPECT_EQ(CopySlice(copied.data(), slice, length) - copied.data(), static_cast<ptrdiff_t>(std::min(zero, length)));
      EXPECT_EQ(std::memcmp(copied.data(), slice, std::min(zero, length)), 0);
    }
  }
}

// Lines written together stand as they would one by one, of any lengths and with other characters anywhere.
TEST(Sixteen, WritesLinesTogetherAsOneByOne) {
  const GuardedMemory memory(8192);
  std::mt19937 random(9);
  for (int round = 0; round < 2000; ++round) {
    std::string lines, wanted;
    for (uint32_t count = random() % 8; count > 0; --count) {
      std::string line(random() % 100, 'a');
      const uint32_t others = random() % 30;
      for (char& c : line) {
        if (random() % 30 < others) c = "\x20\x7E\x7F\x80\x81\x99\xA0\xFF"[random() % 8];
      }
      char out[1000];
      wanted.append(out, PutEscaped<false>(out, line)) += '\n';
      lines += line + '\n';
    }
    char* const text = reinterpret_cast<char*>(memory.Room(lines.size()));
    std::copy(lines.begin(), lines.end(), text);
    std::vector<char> out(kLongestOfLegible * lines.size() + kWrittenAhead);
    for (const auto put : {PutLegible, PutLegibleBySixteen}) {
      EXPECT_EQ(std::string(out.data(), put(out.data(), {text, lines.size()})), wanted);
    }
  }
}

TEST(Names, BinaryLookUpAgreesWithALinearOne) {
  std::mt19937 random(2);
  for (int32_t count = 0; count < 40; ++count) {
    std::vector<NameTableEntry> rows;
    uint32_t code = 0;
    for (int32_t i = 0; i < count; ++i) rows.push_back({code += 1 + random() % 3, "name"});
    for (uint32_t wanted = 0; wanted < code + 3; ++wanted) {
      EXPECT_EQ(LookupName(rows.data(), wanted, count, "none"), FindName(rows.data(), wanted, count, "none"));
    }
  }
  const NameTableEntry twice[] = {{7, "first"}, {7, "second"}, {0xFFFFFFFF, "last"}};
  EXPECT_STREQ(FindName(twice, 7, 3, ""), "first");
  EXPECT_STREQ(FindName(twice, 0xFFFFFFFF, 3, ""), "last");
  EXPECT_STREQ(FindName(twice, 7, 0, "none"), "none");
}

TEST(BitPictures, DrawTheFieldAndGiveItsValue) {
  char picture[80];
  EXPECT_EQ(FormatBitField8(0xA5, picture, 2, 3), 4u);
  EXPECT_STREQ(picture, "..100...");
  EXPECT_EQ(FormatBitField8(0xFF, picture, 6, 4), 0xCu) << "what runs past the byte is not there";
  EXPECT_STREQ(picture, "......1100");
  EXPECT_EQ(FormatBitField32(0x80000001, picture, 0, 32), 0x80000001u);
  EXPECT_STREQ(picture, "10000000 00000000 00000000 00000001");
  EXPECT_EQ(FormatBits(0x4001, 16, picture, 1, 9), 0x100u);
  EXPECT_STREQ(picture, ".1000000 00......");
  for (int32_t first = 0; first <= 8; ++first) {
    for (int32_t count = 0; first + count <= 8; ++count) {
      for (uint32_t value = 0; value < 256; value += 5) {
        EXPECT_EQ(FormatBitField8(value, picture, first, count), value >> (8 - first - count) & ((1u << count) - 1));
        for (int32_t i = 0; i < 8; ++i) {
          EXPECT_EQ(picture[i], i < first || i >= first + count ? '.' : value >> (7 - i) & 1 ? '1' : '0');
        }
      }
    }
  }
}

TEST(Levels, Cycle) {
  EXPECT_EQ(NextLevel(5), 2);
  EXPECT_EQ(NextLevel(8), 2);
  EXPECT_EQ(PrevLevel(2), 5);
  EXPECT_EQ(BitMask(15), 0x8000u);
  EXPECT_EQ(BitMask(16), 0u);
  EXPECT_EQ(Log2Floor(1), 0);
  EXPECT_EQ(Log2Floor(8), 3);
}

TEST(BoundedText, KeepsItsBounds) {
  char out[4] = "zz";
  EXPECT_EQ(CopyTextN(out, 4, nullptr, 2), nullptr);
  EXPECT_STREQ(out, "zz") << "a null source leaves the destination alone";
  CopyTextN(out, 4, "abcdef", 6);
  EXPECT_STREQ(out, "abc");
  EXPECT_EQ(CopyBounded(out, 4, nullptr, 2), nullptr);
  EXPECT_STREQ(out, "") << "a null source empties it";
  EXPECT_EQ(CopyString(out, 4, ""), nullptr);
  CopyString(out, 4, "a");
  AppendBounded(out, 4, "bcdef", 5);
  EXPECT_STREQ(out, "abc");
  AppendString(out, 4, "g");
  EXPECT_STREQ(out, "abc");
  EXPECT_EQ(AppendString(out, 4, nullptr), nullptr);
  const uint8_t bytes[10] = {0xAB};
  char hex[20];
  TextBuffer buffer{20, hex};
  ByteHexToString(bytes, 10, &buffer);
  EXPECT_STREQ(hex, "AB 00 00 00 00 00") << "a capacity of 20 takes six bytes";
  ByteHexToString(bytes, 0, &buffer);
  EXPECT_STREQ(hex, "");
}

TEST(Addresses, AreWrittenAsTheirStandardsSay) {
  const auto ipv6 = [](const std::string& hex) {
    char out[64];
    const Bytes bytes = Hex(hex);
    FormatInto(out, sizeof out, "%s", IPv6Text(bytes.data()));
    return std::string(out);
  };
  EXPECT_EQ(ipv6("00000000000000000000000000000000"), "::");
  EXPECT_EQ(ipv6("00000000000000000000000000000001"), "::1");
  EXPECT_EQ(ipv6("20010db8000000000001000000000001"), "2001:db8::1:0:0:1") << "the first of equal runs is shortened";
  EXPECT_EQ(ipv6("20010db8000000010001000100010001"), "2001:db8:0:1:1:1:1:1") << "a single group is not";
  EXPECT_EQ(ipv6("20010db8000000000000000000000000"), "2001:db8::");
  EXPECT_EQ(ipv6("00000000000000000000ffffc0000201"), "::ffff:192.0.2.1");
  EXPECT_EQ(ipv6("fe8000000000000002aabbfffeccddee"), "fe80::2aa:bbff:fecc:ddee");
  char out[24];
  FormatEightByteAddress(Hex("A1 00 01 02 03 04 05 FF").data(), out);
  EXPECT_STREQ(out, "1:00:01:02:03:04:05:FF");
}

}  // namespace
}  // namespace qxview::testing
