// Names: expansion against results worked out by hand, the small text functions, and messages built to be slow.
#include <algorithm>

#include "decoders/app/dns.h"
#include "decoders/app/summaries.h"
#include "tests/support/decoding.h"
#include "tests/support/small_stack.h"

namespace qxview {
int32_t DecodeDns(const Place& at, Cursor c);

namespace testing {
namespace {

struct Expansion {
  const char* what;
  const char* messageHex;   // the header's 12 bytes are left out
  int32_t at;               // offset of the name in the message
  int32_t strict;
  int32_t result;
  const char* text;
  int32_t consumed;
  int32_t type;             // -1: left alone
};

// "www.ab" at 12, its "ab" at 16, a pointer to that at 24.
constexpr const char* kNames = "03 777777 02 6162 00 0001 0001  C010 0005 0001 00";

const Expansion kExpansions[] = {
    {"labels, type and class", kNames, 12, 0, 1, "www.ab", 12, 1},
    {"a name inside a name", kNames, 16, 0, 1, "ab", 8, 1},
    {"a pointer needs 7 bytes for type and class", kNames, 24, 0, 1, "ab", 6, 5},
    {"a pointer with 6", "0161 00 0001 0001 C00C 0005 0001", 19, 0, 1, "a", 2, -1},
    {"the root takes nothing", "00 0001 0001", 12, 0, 1, "", 0, -1},
    {"one byte is no name", "01", 12, 0, 1, "", 0, -1},
    {"a label without its end", "05 6162", 12, 0, 1, "ab", 3, -1},
    {"a zero byte without type and class", "0161 00 0001 00", 12, 0, 1, "a", 2, -1},
    {"a further label of one byte", "0161 01", 12, 0, 1, "a.", 2, -1},
    {"labels end at a zero byte in text", "03 610062 0163 00", 12, 0, 1, "a.c", 6, -1},
    {"a pointer to itself", "C00C 0000 0000 00", 12, 0, 0, "", 0, -1},
    {"a pointer forwards", "C010 0000 0161 00 00", 12, 0, 0, "", 0, -1},
    {"labels, then a pointer to them", "0161 C00C 0000 0000 00", 12, 0, 0, "a.", 2, -1},
    {"bytes 64 to 191 are pointers too", "0161 00 400C 0001 0001 00", 15, 0, 1, "a", 6, 1},
    {"a chain to its end", "0161 00 C00C C00F C011", 19, 0, 1, "a", 2, -1},
    {"a chain with labels on its way", "0161 00 0162 C00C 0163 C00F", 19, 0, 1, "c.b.a", 4, -1},
    {"a rejected pointer behind a good one keeps the text", "0161 C030 0162 C00C 00", 16, 0, 1, "b.a.", 4, -1},
    {"strict: a further label beyond the cursor", "0161 0562", 12, 1, 0, "a", 2, -1},
    {"not strict", "0161 0562", 12, 0, 1, "a.b", 4, -1},
    {"a pointed label may end at the cursor", "0161 0262 C00C 0162", 16, 0, 1, "a.b\xC0", 2, -1},
    {"a pointed label beyond the cursor", "0161 0562 C00C 0162", 16, 0, 1, "a", 2, -1},
};

TEST(DnsNames, Expansion) {
  for (const Expansion& e : kExpansions) {
    const Bytes message = Bytes(12) + Hex(e.messageHex);
    const std::unique_ptr<uint8_t[]> exact(new uint8_t[message.size()]);
    std::copy(message.begin(), message.end(), exact.get());
    char text[kDnsNameSize] = "not emptied";
    uint16_t type = 0xFFFF, recordClass = 0xFFFF;
    int32_t consumed = -1;
    const int32_t available = static_cast<int32_t>(message.size()) - e.at;
    EXPECT_EQ(ExpandDnsName(exact.get(), exact.get() + e.at, available, e.at, 0, e.strict, text, sizeof text, &type,
                            &recordClass, &consumed), e.result) << e.what;
    EXPECT_STREQ(text, e.text) << e.what;
    EXPECT_EQ(consumed, e.consumed) << e.what;
    EXPECT_EQ(type, static_cast<uint16_t>(e.type)) << e.what;
    EXPECT_EQ(recordClass, e.type < 0 ? 0xFFFF : 1) << e.what;
  }
}

TEST(DnsNames, ExpansionArguments) {
  const Bytes message = Bytes(12) + Hex(kNames);
  const uint8_t* name = message.data() + 12;
  char text[8] = "x";
  EXPECT_EQ(ExpandDnsName(message.data(), name, 13, 12, 1, 0, text, 5, nullptr, nullptr, nullptr), 1);
  EXPECT_STREQ(text, "xwww") << "appended when following, within the size";
  EXPECT_EQ(ExpandDnsName(message.data(), message.data() + 24, 7, 24, 1, 1, text, 8, nullptr, nullptr, nullptr), 0)
      << "a name that was pointed to must not be a pointer at the cursor";
  EXPECT_EQ(ExpandDnsName(message.data(), name, 0, 12, 0, 0, text, 8, nullptr, nullptr, nullptr), 1);
  EXPECT_STREQ(text, "");
  EXPECT_EQ(ExpandDnsName(nullptr, nullptr, 5, 0, 0, 0, text, 8, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(ExpandDnsName(message.data(), name, 13, 12, 0, 0, nullptr, 0, nullptr, nullptr, nullptr), 1);
}

TEST(DnsNames, Reversal) {
  const auto reverse = [](const char* name, int32_t size) {
    char out[64] = "?";
    const int32_t result = ReverseDottedName(name, out, size);
    return std::to_string(result) + " " + out;
  };
  EXPECT_EQ(reverse("4.3.2.1.in-addr.arpa", 64), "1 arpa.in-addr.1.2.3.4");
  EXPECT_EQ(reverse("localhost", 64), "1 localhost.");
  EXPECT_EQ(reverse("a.b.", 64), "1 .b.a");
  EXPECT_EQ(reverse("4.3.2.1.in-addr.arpa", 8), "1 arpa.in");
  EXPECT_EQ(reverse("", 64), "0 ");
}

TEST(DnsNames, IPv6TextAndClass) {
  const struct {
    const char* hex;
    const char* text;
    const char* kind;
  } cases[] = {
      {"00000000 00000000 00000000 00000000", "::", "Unspecified"},
      {"00000000 00000000 00000000 00000001", "::01", "Loopback"},
      {"00000000 00000000 00000000 00000002", "::02", "Global Unicast"},
      {"FF020000 00000000 00000000 000000FB", "FF02::FB", "Multicast"},
      {"FE800000 00000000 00000000 00000001", "FE80::01", "Global Unicast"},
      {"FEC00000 00000000 00000000 00000001", "FEC0::01", "Site-local Unicast"},
      {"20010DB8 0a000b00 0c000d00 0e000f00", "20010DB80A::0B::0C::0D::0E::0F::", "Global Unicast"},
      {"01000200 03000400 05000600 07000800", "01::02::03::04::05::06::07::08::", "Global Unicast"},
  };
  for (const auto& c : cases) {
    EXPECT_STREQ(DnsIPv6Text(Hex(c.hex).data()).text, c.text);
    EXPECT_STREQ(DnsIPv6Class(Hex(c.hex).data()), c.kind) << c.hex;
  }
}

Bytes Number(size_t value) { return {static_cast<uint8_t>(value >> 8), static_cast<uint8_t>(value)}; }
Bytes Pointer(size_t target) { return Number(0xC000 | target); }

// A record that holds a chain of pointers up to `end`, then records whose owner and data point at the chain's end.
Bytes ChainMessage(size_t end, size_t size) {
  Bytes message = Hex("0001 8100 0000 FFFF 0000 0000  00 0063 0001 00000000");
  size_t target = 4;
  const size_t links = (end - message.size() - 2) / 2;
  message = message + Number(2 * links);
  for (size_t i = 0; i < links; ++i) {
    const size_t here = message.size();
    const Bytes link = Pointer(target);
    message.insert(message.end(), link.begin(), link.end());
    target = here;
  }
  const Bytes record = Pointer(target) + Hex("0002 0001 00000000 0002") + Pointer(target);
  return message + Repeat(record, (size - message.size()) / record.size());
}

TEST(DnsNames, MessagesBuiltToBeSlow) {
  constexpr size_t kSize = 65535;
  const Bytes query = Hex("0001 0100 FFFF 0000 0000 0000"), response = Hex("0001 8100 FFFF FFFF 0000 0000");
  const Bytes pointers = Repeat(Hex("C00C 0001 0001"), kSize / 6);
  const Bytes longName = Repeat(Bytes{63} + Bytes(63, 'a'), 4) + Hex("00 0001 0001");
  const Bytes chain = ChainMessage(6000, 8000);
  const struct {
    const char* what;
    Bytes payload;
  } cases[] = {
      {"the longest chain", ChainMessage(16380, kSize)},
      {"messages with a chain each", Repeat(chain, kSize / chain.size())},
      {"pointers at many labels", query + Repeat(Hex("0161"), 150) + Hex("00 0001 0001") + pointers},
      {"pointers at long labels", query + longName + pointers},
      {"pointers at long labels of a response", response + longName + pointers},
      {"one name of short labels", query + Repeat(Hex("0161"), kSize / 2)},
      {"names of the root", query + Repeat(Hex("00 0001 0001"), kSize / 5)},
      {"headers alone", Repeat(Hex("0001 8100 0000 0000 0000 0000"), kSize / 12)},
      {"updates that fail", Repeat(Hex("0001 0128 0001 0000 0000 0000 C00F 0000"), kSize / 16)},
  };
  for (const auto& slow : cases) {
    Bytes payload = slow.payload;
    payload.resize(kSize);
    RunOnSmallStack([&] {
      TestView view;
      view.Run(DecodeDns, payload);   // the tree's memory is made once, as in a run over a capture
      EXPECT_LT(BestMilliseconds([&] { view.Run(DecodeDns, payload); }), kMostMilliseconds) << slow.what;
      EXPECT_LT(view.context().rangeCount, 100000u) << slow.what;
      char text[512];
      TextBuffer summary{sizeof text, text};
      EXPECT_LT(BestMilliseconds([&] { DescribeDns(payload.data(), kSize, &summary, 17, 0, 0); }), kMostMilliseconds)
          << slow.what;
    });
  }
}

// Past the bound of hops names stay as they stand; the records are still walked.
TEST(DnsNames, HopsAreBounded) {
  const Bytes message = ChainMessage(16380, 65535);
  int32_t hopsLeft = kMostDnsNameHops;
  DnsMessage source{message.data(), static_cast<int32_t>(message.size()), 0, true, &hopsLeft};
  const int32_t atEnd = static_cast<int32_t>(message.size()) - 14;
  DnsNameText name;
  for (int pass = 0; pass < 100; ++pass) {
    EXPECT_EQ(ExpandNameAt(source, MakeCursor(message.data() + atEnd, atEnd, 14), name), 1);
  }
  EXPECT_LT(hopsLeft, 0);
}

}  // namespace
}  // namespace testing
}  // namespace qxview
