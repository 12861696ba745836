#include <zlib.h>

#include "tests/support/http_cases.h"

namespace qxview::testing {
namespace {

// The text as raw deflate data, or as windowBits has it wrapped.
Bytes Deflate(const std::string& text, int windowBits = -15) {
  z_stream stream{};
  EXPECT_EQ(deflateInit2(&stream, 9, Z_DEFLATED, windowBits, 8, Z_DEFAULT_STRATEGY), Z_OK);
  Bytes out(deflateBound(&stream, text.size()) + 64);
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
  stream.avail_in = static_cast<uInt>(text.size());
  stream.next_out = out.data();
  stream.avail_out = static_cast<uInt>(out.size());
  EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
  out.resize(stream.total_out);
  deflateEnd(&stream);
  return out;
}

// A member header without optional fields; its extra flags have a name, so all of its lines are shown.
const Bytes kPlainHeader = Hex("1F 8B 08 00 5F 5E 10 00 02 03");
const Bytes kHeaders = Ascii("HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\n\r\n");
const Bytes kChunkedHeaders =
    Ascii("HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\nTransfer-Encoding: chunked\r\n\r\n");

std::string BodyTree(const Bytes& body) {
  const std::string tree = TreeOfRun(DecodeHttpSegment, kHeaders + body);
  const size_t end = tree.find("  End Headers");
  return end == std::string::npos ? tree : tree.substr(tree.find('\n', end) + 1);
}

// The texts of the inflated lines, without the rest of the tree.
std::string InflatedOf(const std::string& tree) {
  std::string text;
  size_t at = 0;
  while (at < tree.size()) {
    const size_t end = tree.find('\n', at);
    const std::string line = tree.substr(at, end - at);
    const std::string label = "  Inflated gzip Data : ";
    if (line.starts_with(label)) text += line.substr(label.size(), line.rfind(" {") - label.size()) + "\n";
    if (line.starts_with("  Blank Line : ")) text += "\n";
    at = end + 1;
  }
  return text;
}

TEST(HttpGzip, MemberHeaderWithEveryOptionalField) {
  const Bytes header = Hex(R"(
    1F 8B 08 1F  00 00 00 00  04 0B
    0A 00  41 70 00 02 CA FE  42 00 00 00   # two subfields
  )") + Ascii("page.html") +
                       Bytes(1) + Ascii("no comment") + Bytes(1) + Hex("34 12");
  EXPECT_EQ(BodyTree(header + Deflate("one\r\n\n" + std::string(250, 'x') + "\nlast")),
            R"(  Identification 1 : 0x1F {43+1}
  Identification 2 : 0x8B {44+1}
  Compression Method : 8  (deflate) {45+1}
  Flags {46+1}
    000..... : Reserved {46+1}
    ...1.... : FCOMMENT: TRUE {46+1}
    ....1... : FNAME: TRUE {46+1}
    .....1.. : FEXTRA: TRUE {46+1}
    ......1. : FHCRC: TRUE {46+1}
    .......1 : FTEXT: TRUE {46+1}
  MTIME : 0x0  (No time stamp is available) {47+4}
  Extra Flags : 4  (Compressor used fastest algorithm) {51+1}
  Operating System : 11  (NTFS filesystem  (NT)) {52+1}
  Extra Field {53+12}
    XLEN : 0xA {53+2}
    SI1 : 0x41  ('A') {55+1}
    SI2 : 0x70  ('p') {56+1}
    Length : 2 {57+2}
    Subfield Data {59+2}
    SI1 : 0x42  ('B') {61+1}
    SI2 : 0x0  ('.') {62+1}
    Length : 0 {63+2}
  Original File Name : page.html {65+10}
  File Comment : no comment {75+11}
  Cyclic Redundancy Check  [CRC] : 4660 {86+2}
  Inflated gzip Data : one {88+16}
  Blank Line :  {88+16}
  Inflated gzip Data : )" +
                std::string(199, 'x') + R"( {88+16}
  Inflated gzip Data : last {88+16}
)");
}

TEST(HttpGzip, HeadersThatEndEarly) {
  const Bytes data = Deflate("text\n");
  EXPECT_EQ(BodyTree(Hex("1F 8B 08 08 00 00 00 01 00 03 61 00") + data),
            R"(  Identification 1 : 0x1F {43+1}
  Identification 2 : 0x8B {44+1}
  Compression Method : 8  (deflate) {45+1}
  Flags {46+1}
    000..... : Reserved {46+1}
    ...0.... : FCOMMENT: FALSE {46+1}
    ....1... : FNAME: TRUE {46+1}
    .....0.. : FEXTRA: FALSE {46+1}
    ......0. : FHCRC: FALSE {46+1}
    .......0 : FTEXT: FALSE {46+1}
  MTIME : 0x1 {47+4}
  Extra Flags : 0  (Unknown) {51+1}
  Inflated gzip Data : text {55+7}
)") << "extra flags without a name end the lines, not the header";
  const std::string longName = BodyTree(Hex("1F 8B 09 08 00 00 00 01 02 FE") + Bytes(512, 'n') + Bytes(1) + data);
  EXPECT_EQ(longName.find("Original File Name"), std::string::npos);
  EXPECT_NE(longName.find("Compression Method : 9  (Unknown)"), std::string::npos);
  EXPECT_NE(longName.find("Operating System : 254  (Unknown)"), std::string::npos);
  EXPECT_EQ(InflatedOf(longName), "text\n");
  EXPECT_EQ(InflatedOf(BodyTree(Hex("1F 8B 08 04 00 00 00 01 02 03 FF FF") + data)), "");
}

TEST(HttpGzip, FormsOfTheBody) {
  const std::string text = "one\ntwo\n";
  EXPECT_EQ(InflatedOf(BodyTree(Deflate(text))), text) << "raw deflate";
  EXPECT_EQ(InflatedOf(BodyTree(Deflate(text, 15))), text) << "zlib's wrapping";
  EXPECT_EQ(InflatedOf(BodyTree(Ascii("junk") + kPlainHeader + Deflate(text))), text) << "bytes before the magic";
  EXPECT_EQ(InflatedOf(BodyTree(kPlainHeader + Deflate(text, 15 + 16))), text) << "a member in a member";
  Bytes broken = kPlainHeader + Deflate(text + std::string(1000, 'x') + text);
  broken.resize(broken.size() - 4);
  EXPECT_EQ(InflatedOf(BodyTree(broken)).substr(0, 8), text) << "what was inflated before the end is shown";
  EXPECT_EQ(InflatedOf(BodyTree(Deflate("one\r"))), "one\r\n") << "a CR before no LF";
  EXPECT_EQ(BodyTree(Ascii("not compressed")), "");
}

TEST(HttpGzip, FirstChunkOfAChunkedBody) {
  const Bytes body = kPlainHeader + Deflate("first\n");
  const std::string tree = TreeOfRun(DecodeHttpSegment, kChunkedHeaders + Ascii("1c;x=y\r\n") + body +
                                                            Bytes(28 - body.size()) + Ascii("\r\n0\r\n\r\n"));
  EXPECT_EQ(InflatedOf(tree), "first\n");
  EXPECT_EQ(tree.find("Chunk Data Length"), std::string::npos) << "gzip comes before chunks";

  // A stored block that announces more than the chunk holds: the next chunk's size line is not part of the text.
  const Bytes cut = kPlainHeader + Hex("01 20 00 DF FF") + Ascii("ab\n");
  HttpHost host;
  host.Sent(kChunkedHeaders + Ascii("12\r\n") + cut + Ascii("\r\n20\r\n"));
  EXPECT_EQ(InflatedOf(TreeAfter(host, Ascii("next chunk"))), "ab\n");
}

TEST(HttpGzip, SegmentsAreJoinedInOrder) {
  std::string text;
  for (int i = 0; i < 2000; ++i) text += std::to_string(i * 7919) + "\n";
  const Bytes message = kHeaders + kPlainHeader + Deflate(text);
  const Bytes starts[] = {kHeaders, kHeaders + Bytes(kPlainHeader.begin(), kPlainHeader.begin() + 1),
                          kHeaders + kPlainHeader, Bytes(message.begin(), message.begin() + 500)};
  for (const Bytes& start : starts) {
    HttpHost host;
    host.Sent(start);
    size_t at = start.size();
    for (; message.size() - at > 1000; at += 1000) {
      host.Sent(
          Bytes(message.begin() + static_cast<ptrdiff_t>(at), message.begin() + static_cast<ptrdiff_t>(at) + 1000));
    }
    const std::string tree = TreeAfter(host, Bytes(message.begin() + static_cast<ptrdiff_t>(at), message.end()));
    EXPECT_EQ(InflatedOf(tree), text) << "the first segment has " << start.size() << " bytes";
    EXPECT_NE(tree.find("HTTP - Gzip Continuation Data {0+"), std::string::npos);
    EXPECT_NE(tree.find("Operating System : 3  (Unix) {0+0}"), std::string::npos) << "not a byte of this frame";
  }
}

TEST(HttpGzip, KeptBodiesReadAsNewOnes) {
  std::string text;
  for (int i = 0; i < 300; ++i) text += std::to_string(i * 7919) + "\n";
  Bytes broken = kPlainHeader + Deflate(text);
  broken[broken.size() / 2] ^= 0x55;
  const Bytes bodies[] = {kPlainHeader + Deflate(text), Deflate(text), Deflate(text, 15), broken,
                          kPlainHeader + Deflate(text, 15 + 16), Ascii("1f4\r\n") + kPlainHeader + Deflate(text)};
  for (const Bytes& body : bodies) {
    for (const size_t step : {13u, 101u, 10u}) {
      HttpHost host;
      TestView kept(&host);
      const Bytes message = kHeaders + body;
      for (size_t at = 0, next = 20; at < message.size() && host.packets < 95; at = next, next += step) {
        const Bytes segment(message.begin() + static_cast<ptrdiff_t>(at),
                            message.begin() + static_cast<ptrdiff_t>(std::min(next, message.size())));
        kept.context().packetNumber = host.packets + 1;
        kept.Run(DecodeHttpSegment, segment);
        ASSERT_EQ(kept.Text(), TreeAfter(host, segment)) << at;
        host.Sent(segment);
      }
    }
  }
}

TEST(HttpGzip, AnEarlierFinKeepsTheBodyAsItIs) {
  HttpHost host;
  host.Sent(kHeaders + kPlainHeader, 1);
  EXPECT_EQ(TreeAfter(host, Deflate("one\n")), "HTTP - Gzip Continuation Data {0+6}\n  Encoded Http Data {0+6}\n");
}

// The decoder's result is the number of allocations that it made.
int32_t CountWhileDecoding(const Place& at, Cursor c) {
  const uint64_t before = CountAllocations();
  DecodeHttpSegment(at, c);
  return static_cast<int32_t>(CountAllocations() - before);
}

TEST(HttpGzip, AllocatesOnceAnEngine) {
  TestView view;
  const Bytes payload = kHeaders + kPlainHeader + Deflate("one\n");
  view.Run(CountWhileDecoding, payload);   // the tree grows, too
  EXPECT_EQ(view.Run(CountWhileDecoding, payload), 0);
  view.Run(DecodeHttpSegment, kHeaders + Ascii("x"));
  EXPECT_EQ(view.Run(CountWhileDecoding, payload), 0);
}

TEST(HttpGzip, NothingIsLeftForTheNextPayload) {
  TestView view;
  view.Run(DecodeHttpSegment, kHeaders + kPlainHeader + Deflate("one\n"));
  EXPECT_EQ(InflatedOf(view.Text()), "one\n");
  const std::string value[] = {"gzip", "chunked", "text/plain", "image/png"};
  for (const std::string& each : value) {
    view.Run(DecodeHttpSegment, Ascii("HTTP/1.1 200 OK\r\nContent-Type: " + each + "\r\n\r\n"));
    view.Run(DecodeHttpSegment, kPlainHeader + Deflate("two\n"));
    EXPECT_EQ(view.Text(), "HTTP - Continuation Data {0+16}\n  Encoded Http Data {0+16}\n") << each;
  }
}

// 62 MB of zeros that end on a byte: the bytes can be repeated and go on inflating.
Bytes DeflatedZeros() {
  z_stream stream{};
  EXPECT_EQ(deflateInit2(&stream, 9, Z_DEFLATED, -15, 8, Z_DEFAULT_STRATEGY), Z_OK);
  Bytes out(70000), zeros(1 << 20);
  stream.next_out = out.data();
  stream.avail_out = static_cast<uInt>(out.size());
  for (int megabyte = 0; megabyte < 62; ++megabyte) {
    stream.next_in = zeros.data();
    stream.avail_in = static_cast<uInt>(zeros.size());
    EXPECT_EQ(deflate(&stream, megabyte < 61 ? Z_NO_FLUSH : Z_FULL_FLUSH), Z_OK);
  }
  EXPECT_LT(stream.total_out, 65000u);
  out.resize(stream.total_out);
  deflateEnd(&stream);
  return out;
}

TEST(HttpGzip, InflationStopsAtItsBuffer) {
  const Bytes zeros = DeflatedZeros();
  HttpHost fourGigabytes;
  fourGigabytes.Sent(kHeaders + kPlainHeader);
  for (int i = 0; i < 66; ++i) fourGigabytes.Sent(zeros);
  HttpHost none;
  const Bytes lines = kHeaders + kPlainHeader + Deflate(std::string(1000000, '\n'));
  RunOnSmallStack([&] {
    TestView view(&fourGigabytes);
    const double bomb = BestMilliseconds([&] { view.Run(DecodeHttpSegment, zeros); });
    EXPECT_LT(bomb, kMostMilliseconds);
    EXPECT_EQ(InflatedOf(view.Text()), "\n") << "zeros end the line's text";
    TestView blank(&none);
    const double blanks = BestMilliseconds([&] { blank.Run(DecodeHttpSegment, lines); });
    EXPECT_LT(blanks, kMostMilliseconds) << "900,000 lines, of which few are shown";
    EXPECT_LT(blank.context().rangeCount, 30000u);
    std::printf("4 GB: %.2f ms, 900,000 lines: %.2f ms\n", bomb, blanks);
  });
}

TEST(HttpGzip, AStreamGoesOnAtAnyLength) {
  HttpHost host;
  host.Sent(kHeaders + kPlainHeader);
  const Bytes data = Deflate("one\r\ntwo\nthree three three");
  for (size_t length = 1; length <= data.size(); ++length) {
    EXPECT_NE(TreeAfter(host, Bytes(data.begin(), data.begin() + static_cast<ptrdiff_t>(length))), "");
  }
}

}  // namespace
}  // namespace qxview::testing
