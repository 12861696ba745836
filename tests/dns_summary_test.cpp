#include "decoders/app/dns.h"
#include "decoders/app/summaries.h"
#include "tests/support/decoding.h"

namespace qxview::testing {
namespace {

std::string Summary(const Bytes& data, int32_t variant = 0, int32_t transport = 17, uint16_t lengthHint = 0) {
  char text[512] = "not emptied";
  TextBuffer summary{sizeof text, text};
  EXPECT_EQ(DescribeDns(data.data(), static_cast<int32_t>(data.size()), &summary, transport, lengthHint, variant), 1);
  return text;
}

const Bytes kQuestion = Hex("03 777777 02 6162 00 0001 0001");
const Bytes kQuery = Hex("1234 0100 0001 0000 0000 0000") + kQuestion;

Bytes Response(const char* answer, uint8_t secondFlags = 0x80) {
  Bytes header = Hex("1234 8180 0001 0001 0000 0001");
  header[3] = secondFlags;
  return header + kQuestion + Hex(answer);
}

TEST(DnsSummary, Queries) {
  EXPECT_EQ(Summary(kQuery), "DNS Query: Standard Query - www.ab, QU=1 AN=0 AU=0 AD=0");
  EXPECT_EQ(Summary(kQuery, 1), "Microsoft LLMNR: Standard Query - www.ab, QU=1 AN=0 AU=0 AD=0");
  EXPECT_EQ(Summary(Hex("0000 0000 0001 0000 0000 0000") +
                        Hex("0134 0133 0132 0131 07696E2D61646472 0461727061 00 000C 0001"), 2),
            "Multicast DNS: Standard Query - arpa.in-addr.1.2.3.4, QU=1 AN=0 AU=0 AD=0");
  EXPECT_EQ(Summary(Hex("0000 0004 0000 0000 0000 0000")), "DNS Query: Bad Operation Code - , QU=0 AN=0 AU=0 AD=0");
  EXPECT_EQ(Summary(Hex("0000 0010 0000 0000 0000 0000")), "DNS Query: Server Status Query - , QU=0 AN=0 AU=0 AD=0")
      << "the operation is the dispatch value";
  EXPECT_EQ(Summary(Hex("0000 0020 0000 0000 0000 0000 01")), "DNS Query: Notify - , QU=0 AN=0 AU=0 AD=0");
  EXPECT_EQ(Summary(Hex("0000 8018 0000 0000 0000 0000")), "DNS Response:") << "3 has no name";
  EXPECT_EQ(Summary(Hex("0000 8018 0000 0000 0000 0000"), 2), "Multicast DNS:");
}

TEST(DnsSummary, Responses) {
  const std::string counts = ", QU=1 AN=1 AU=0 AD=1";
  EXPECT_EQ(Summary(Response("C00C 0001 0001 0000003C 0004 5DB8D822")), "DNS Response:: 93.184.216.34" + counts);
  EXPECT_EQ(Summary(Response("C00C 0005 0001 0000003C 0006 03 637331 C010")), "DNS Response:: cs1.ab" + counts);
  EXPECT_EQ(Summary(Response("00 0002 0001 0000003C 0002 C010")), "DNS Response:: ab" + counts) << "the root's server";
  EXPECT_EQ(Summary(Response("C00C 001C 0001 0000003C 0004 5DB8D822")), "DNS Response:" + counts);
  EXPECT_EQ(Summary(Response("C00C 0001 0001 0000003C 0004 5DB8D8")), "DNS Response:" + counts) << "cut";
  EXPECT_EQ(Summary(Response("", 0x83)), "DNS Response: Name Does Not Exist - www.ab" + counts);
  EXPECT_EQ(Summary(Hex("0000 818F 0000 0000 0000 0000")), "DNS Response: Error, QU=0 AN=0 AU=0 AD=0");
  EXPECT_EQ(Summary(Hex("0000 8187 0000 0000 0000 0000")), "DNS Response: Errant RR Exists, QU=0 AN=0 AU=0 AD=0");
  EXPECT_EQ(Summary(Hex("0000 8180 0002 0001 0000 0000 C00C 0001 0001 C00C 0001 0001")),
            "DNS Response:, QU=2 AN=1 AU=0 AD=0") << "a broken question hides the answers";
}

TEST(DnsSummary, LengthsAndTcp) {
  EXPECT_EQ(Summary(Bytes(11)), "DNS:");
  EXPECT_EQ(Summary(Bytes(11), 1), "Microsoft LLMNR:");
  const Bytes framed = Hex("0018") + kQuery;
  const std::string whole = "DNS Query: Standard Query - www.ab, QU=1 AN=0 AU=0 AD=0";
  EXPECT_EQ(Summary(framed, 0, 6, 28), whole);
  EXPECT_EQ(Summary(framed, 0, 6, 27), "DNS:");
  EXPECT_EQ(Summary(framed, 0, 6, 0), "DNS:") << "signed: nothing is at most -4";
  EXPECT_EQ(Summary(Hex("0000") + Bytes(11), 2, 6, 28), "Multicast DNS:");
  char text[4] = "x";
  TextBuffer summary{4, text}, none{4, nullptr};
  EXPECT_EQ(DescribeDns(nullptr, 5, &summary, 17, 0, 0), 0);
  EXPECT_EQ(DescribeDns(framed.data(), 0, &summary, 17, 0, 0), 0);
  EXPECT_EQ(DescribeDns(framed.data(), 5, nullptr, 17, 0, 0), 0);
  EXPECT_EQ(DescribeDns(framed.data(), 5, &none, 17, 0, 0), 0);
  EXPECT_STREQ(text, "") << "the output is emptied first";
}

// Whatever fits of the text, at every capacity and for every prefix; the buffer has its exact size, so that a byte
// written behind it is the sanitizer's.
TEST(DnsSummary, EveryCapacityAndPrefix) {
  const Bytes message = Response("C00C 0005 0001 0000003C 0006 03 637331 C010");
  const std::string whole = Summary(message);
  for (uint16_t capacity = 0; capacity <= 512; ++capacity) {
    const std::unique_ptr<char[]> exact(new char[capacity + size_t{1}]);
    std::fill_n(exact.get(), capacity + size_t{1}, '#');
    TextBuffer summary{capacity, exact.get()};
    EXPECT_EQ(DescribeDns(message.data(), static_cast<int32_t>(message.size()), &summary, 17, 0, 0), 1);
    EXPECT_EQ(exact[capacity], '#') << "the guard at capacity " << capacity;
    if (capacity == 0) continue;
    EXPECT_EQ(std::string(exact.get()), whole.substr(0, capacity - size_t{1}));
    EXPECT_EQ(exact[capacity - size_t{1}], 0);
  }
  for (size_t length = 1; length < message.size(); ++length) {
    for (const int32_t transport : {6, 17}) {
      const std::unique_ptr<uint8_t[]> prefix(new uint8_t[length]);
      std::copy_n(message.begin(), length, prefix.get());
      char text[16];
      TextBuffer summary{sizeof text, text};
      EXPECT_EQ(DescribeDns(prefix.get(), static_cast<int32_t>(length), &summary, transport, 0xFFFF, 0), 1);
    }
  }
}

}  // namespace
}  // namespace qxview::testing
