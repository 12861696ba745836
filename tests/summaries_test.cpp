// The summaries of the packet list: their texts, and that they stay inside every buffer and every payload.
#ifdef _WIN32
#include <windows.h>
#else
#include <sys/mman.h>
#endif

#include "decoders/app/packet_summaries.h"
#include "decoders/app/summaries.h"
#include "tests/support/summary_cases.h"

namespace qxview {
int32_t DeclineData(const Place& at, Cursor c);
}

namespace qxview::testing {

GuardedBytes::GuardedBytes(size_t size) {
  constexpr size_t kPage = 4096;
  mapped_ = (size + kPage - 1) / kPage * kPage + kPage;
#ifdef _WIN32
  base_ = static_cast<uint8_t*>(VirtualAlloc(nullptr, mapped_, MEM_RESERVE, PAGE_NOACCESS));
  VirtualAlloc(base_, mapped_ - kPage, MEM_COMMIT, PAGE_READWRITE);
#else
  base_ = static_cast<uint8_t*>(mmap(nullptr, mapped_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
  mprotect(base_ + mapped_ - kPage, kPage, PROT_NONE);
#endif
  end_ = base_ + mapped_ - kPage;
}

GuardedBytes::~GuardedBytes() {
#ifdef _WIN32
  VirtualFree(base_, 0, MEM_RELEASE);
#else
  munmap(base_, mapped_);
#endif
}

namespace {

std::vector<SummaryCase> AllCases() {
  std::vector<SummaryCase> cases = TextProtocolCases();
  for (SummaryCase& each : BinaryProtocolCases()) cases.push_back(std::move(each));
  return cases;
}

std::string TitleOf(const SummaryCase& each, size_t number) {
  return each.protocol + " case " + std::to_string(number) + " (" + each.text + ")";
}

TEST(Summaries, Texts) {
  size_t number = 0;
  for (const SummaryCase& each : AllCases()) {
    char out[kSummarySize] = "before";
    const int32_t result =
        each.describe(each.message.data(), static_cast<int32_t>(each.message.size()), out, sizeof out);
    EXPECT_EQ(out, each.text) << TitleOf(each, number);
    EXPECT_EQ(result, each.result) << TitleOf(each, number);
    ++number;
  }
}

TEST(Summaries, WantTheirArguments) {
  for (const SummaryCase& each : AllCases()) {
    const Bytes& message = each.message;
    const int32_t length = static_cast<int32_t>(message.size());
    char out[8] = "before";
    EXPECT_EQ(each.describe(nullptr, length, out, sizeof out), 0) << each.protocol;
    EXPECT_EQ(out[0], 0) << each.protocol;
    EXPECT_EQ(each.describe(message.data(), 0, out, sizeof out), 0) << each.protocol;
    EXPECT_EQ(each.describe(message.data(), -5, out, sizeof out), 0) << each.protocol;
    EXPECT_EQ(each.describe(message.data(), length, nullptr, 8), 0) << each.protocol;
  }
  char out[4] = "abc";
  EXPECT_EQ(DescribePop3(Ascii("STAT").data(), 4, out, 0), 0);
  EXPECT_STREQ(out, "abc") << "a size of 0 has room for nothing";
  TextBuffer none{0, out};
  EXPECT_EQ(DescribeGiop(Ascii("x").data(), 1, &none), 1);
  EXPECT_STREQ(out, "abc");
  EXPECT_EQ(DescribeMgcp(Ascii("x").data(), 1, nullptr), 0);
}

// A smaller buffer gets the start of the text, and nothing is written behind it.
TEST(Summaries, AreCutToEverySize) {
  GuardedBytes output(kSummarySize), input(2048);
  for (const SummaryCase& each : AllCases()) {
    const size_t length = each.message.size();
    uint8_t* data = input.At(length);
    std::copy(each.message.begin(), each.message.end(), data);
    for (int32_t size = 1; size <= kSummarySize; ++size) {
      char* out = reinterpret_cast<char*>(output.At(static_cast<size_t>(size)));
      each.describe(data, static_cast<int32_t>(length), out, size);
      ASSERT_LT(strnlen(out, static_cast<size_t>(size)), static_cast<size_t>(size)) << TitleOf(each, 0);
      ASSERT_EQ(each.text.substr(0, static_cast<size_t>(size - 1)), out) << TitleOf(each, 0) << " in " << size;
    }
  }
}

TEST(Summaries, ReadNothingBehindThePayload) {
  GuardedBytes input(2048);
  char out[kSummarySize];
  for (const SummaryCase& each : AllCases()) {
    const uint64_t before = CountAllocations();
    for (size_t length = 1; length <= each.message.size(); ++length) {
      uint8_t* data = input.At(length);
      std::copy_n(each.message.begin(), length, data);
      each.describe(data, static_cast<int32_t>(length), out, sizeof out);
      ASSERT_NE(std::memchr(out, 0, sizeof out), nullptr);
      for (size_t at = 0; at < length && length == each.message.size(); ++at) {
        for (uint8_t value : {0x00, 0x01, 0x7F, 0x80, 0xFF}) {
          const uint8_t kept = data[at];
          data[at] = value;
          each.describe(data, static_cast<int32_t>(length), out, sizeof out);
          data[at] = kept;
        }
      }
    }
    ASSERT_EQ(CountAllocations(), before) << each.protocol << " allocates";
  }
}

TEST(Summaries, TlsTellsWhatIsPending) {
  char out[kSummarySize];
  TlsStream stream{};
  int32_t& pending = stream.pending;
  const Bytes start = Hex("17 0303 0010 AABB");
  DescribeTls(start.data(), static_cast<int32_t>(start.size()), out, sizeof out, 443, &stream);
  EXPECT_EQ(pending, 14);
  const Bytes middle(9);
  DescribeTls(middle.data(), 9, out, sizeof out, 443, &stream);
  EXPECT_STREQ(out, "SSL/TLS [Continuation: 9 bytes of 14 pending]");
  EXPECT_EQ(pending, 5);
  DescribeTls(middle.data(), 5, out, sizeof out, 443, &stream);
  EXPECT_STREQ(out, "SSL/TLS [Continuation: 5 bytes of 5 pending]");
  EXPECT_EQ(pending, 0);
  pending = 77;   // a payload that starts with a record starts afresh
  const Bytes alert = Hex("15 0303 0002 0100");
  DescribeTls(alert.data(), 7, out, sizeof out, 443, &stream);
  EXPECT_STREQ(out, "SSL/TLS, TLS 1.2, Alert: Warning, Close Notify");
  EXPECT_EQ(pending, 0);
}

TEST(Summaries, TlsOfAStreamStaysEncrypted) {
  char out[kSummarySize];
  TlsStream stream{};
  const Bytes change = Hex("14 0303 0001 01"), done = Hex("16 0303 0004 0E000000");
  for (const char* name : {"Server Hello Done", "Encrypted Message"}) {
    DescribeTls(done.data(), 9, out, sizeof out, 1, &stream);
    EXPECT_EQ(std::string(out), std::string("SSL/TLS, TLS 1.2, Handshake: ") + name);
    DescribeTls(change.data(), 6, out, sizeof out, 1, &stream);
  }
}

// What has no decoder has a summary, so that the list names it.
TEST(Summaries, StandForEveryBuiltinDecoder) {
  const DecoderRowSpan rows = RegistryTable(DoorKind::kApplication);
  ASSERT_GT(rows.count, 40);
  const Bytes noise = Repeat(Hex("9C"), 40);
  for (int32_t i = 0; i < rows.count; ++i) {
    const ProtocolRow& protocol = *rows.rows[i].protocol;
    EXPECT_TRUE(protocol.summary || protocol.decode != DeclineData) << protocol.name;
    if (!protocol.summary) continue;
    SummaryInput input{};
    char out[kSummarySize] = "";
    input.data = noise.data();
    input.length = 40;
    protocol.summary(input, out, sizeof out);
    EXPECT_LT(std::strlen(out), sizeof out);
  }
}

}  // namespace
}  // namespace qxview::testing
