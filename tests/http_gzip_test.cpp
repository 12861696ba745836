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

// Of a body that is not compressed the host keeps no more than tells where its message starts.
TEST(HttpGzip, SegmentsThatNobodyJoinsAreKeptAsTheyStart) {
  std::string text;
  for (int i = 0; i < 2000; ++i) text += std::to_string(i * 7919) + "\n";
  const struct {
    const char* headers;
    Bytes body;
    bool isJoined;
  } kMessages[] = {
      {"HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n\r\n", Ascii(text), false},
      {"HTTP/1.1 200 OK\r\nContent-Type: image/png\r\n\r\n", Ascii(text), false},
      {"HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\n\r\n", kPlainHeader + Deflate(text), true},
      {"HTTP/1.1 200 OK\r\nContent-Length: 20000\r\n\r\n", Ascii(text), false},
      {"", Ascii(text), false},
  };
  HttpHost whole, kept;
  for (const auto& message : kMessages) {
    const Bytes bytes = Ascii(message.headers) + message.body;
    for (size_t at = 0; at < bytes.size() && at < 20000; at += 700) {
      const Bytes segment(bytes.begin() + static_cast<ptrdiff_t>(at),
                          bytes.begin() + static_cast<ptrdiff_t>(std::min(at + 700, bytes.size())));
      TestView view(&kept);
      view.Run(DecodeHttpSegment, segment);
      ASSERT_EQ(view.Text(), TreeAfter(whole, segment)) << message.headers << at;
      const int32_t wanted = view.context().packet.segment.wanted;
      EXPECT_EQ(wanted, (at == 0 && message.headers[0]) || message.isJoined ? static_cast<int32_t>(segment.size()) : kMessageStart)
          << message.headers << at;
      whole.Sent(segment);
      kept.Sent(Bytes(segment.begin(), segment.begin() + wanted));
    }
  }
}

TEST(HttpGzip, LargeBodiesReadTheSameBehindOthers) {
  std::string large;
  for (int i = 0; i < 30000; ++i) large += std::to_string(i * 7919) + "\n";
  const Bytes message = kHeaders + kPlainHeader + Deflate(large);
  ASSERT_GT(large.size(), static_cast<size_t>(kKeptInflated));
  TestView view;
  std::string first;
  for (int round = 0; round < 8; ++round) {   // more than are kept at once
    view.context().packetNumber = round + 1;
    view.Run(DecodeHttpSegment, message);
    if (round == 0) first = view.Text();
    EXPECT_EQ(view.Text(), first);
    view.context().packetNumber = 100 + round;
    view.Run(DecodeHttpSegment, kHeaders + kPlainHeader + Deflate("small\n"));
    EXPECT_EQ(InflatedOf(view.Text()), "small\n");
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
