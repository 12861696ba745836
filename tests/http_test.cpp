#include "decoders/app/http.h"

#include "decoders/app/http_summary.h"
#include "tests/support/http_cases.h"

namespace qxview::testing {
namespace {

TEST(Http, NineThousandChunks) {
  Bytes payload = Ascii("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n") + Repeat(Ascii("1\r\nx\r\n"), 9000);
  RunOnSmallStack([&] {
    TestView view;
    EXPECT_LT(BestMilliseconds([&] { view.Run(DecodeHttpSegment, payload); }), kMostMilliseconds);
    size_t passes = 0;
    for (LineHandle line = view.tree().FirstChild(0); line; line = view.tree().NextSibling(line)) ++passes;
    EXPECT_EQ(passes, 9000u);
  });
}

TEST(Http, ContinuationsAskTheEarlierSegments) {
  const std::string data = "one\r\ntwo";
  HttpHost text;
  text.Sent(Ascii("HTTP/1.1 200 OK\r\ncontent-TYPE:text/plain\r\n\r\nzero\r\n")).Sent(Ascii("half\r\n"));
  EXPECT_EQ(TreeAfter(text, Ascii(data)),
            R"(HTTP - Continuation Data {0+8}
  Http Data: one {0+3}
  Http Data: two {5+3}
)");

  HttpHost image;
  image.Sent(Ascii("HTTP/1.1 200 OK\r\nContent-Type: image/png\r\nContent-Encoding: gzip\r\n\r\n"));
  EXPECT_EQ(TreeAfter(image, Ascii(data)), "HTTP - Continuation Data {0+8}\n  Http Image Data {0+8}\n");

  HttpHost body;
  body.Sent(Ascii("HTTP/1.1 200 OK\r\nServer: x\r\n\r\nContent-Type: text/plain\r\n"));
  EXPECT_EQ(TreeAfter(body, Ascii(data)), "HTTP - Continuation Data {0+8}\n  Encoded Http Data {0+8}\n")
      << "a header line in a body is none";
}

TEST(Http, WhatFollowsAChunkBelongsToItsOwnMessage) {
  HttpHost earlier;
  earlier.Sent(Ascii("HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\n\r\n"));
  const std::string tree =
      TreeAfter(earlier, Ascii("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n1\r\na\r\n0\r\n\r\n"));
  EXPECT_NE(tree.find("Last Chunk: Size = 0 Bytes"), std::string::npos) << tree;
}

TEST(Http, TheSearchIsBounded) {
  const Bytes headers = Ascii("HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\n\r\n");
  for (const int32_t between : {0, 99, 100, 101}) {
    struct Answers : TestHost {
      int32_t between;
      const Bytes* headers;
      int32_t asked = 0;
    } host;
    host.between = between;
    host.headers = &headers;
    host.host.earlierSegment = [](void* user, const AddressSlot*, uint16_t, const AddressSlot*, uint16_t,
                                  int32_t back, QxSegment* out) -> int32_t {
      auto* self = static_cast<Answers*>(static_cast<TestHost*>(user));
      ++self->asked;
      const Bytes& bytes = *self->headers;
      out->payload = bytes.data() + (back <= self->between ? bytes.size() - 2 : 0);
      out->length = back <= self->between ? 2 : static_cast<int32_t>(bytes.size());
      return 1;
    };
    TestView view(&host);
    view.Run(DecodeHttpSegment, Ascii("one"));
    EXPECT_EQ(view.Text().find("Http Data: one") != std::string::npos, between <= 100) << between;
    EXPECT_LE(host.asked, 101);
    host.asked = 0;
    view.Run(DecodeHttpSegment, Ascii("GET"));
    view.Run(DecodeHttp, Ascii("one"));
    EXPECT_EQ(host.asked, 0) << "neither for what starts with a method nor outside TCP";
  }
}

std::string Described(const Bytes& payload, int32_t result, int32_t isTls = 0) {
  char out[512] = "?";
  EXPECT_EQ(DescribeHttp(payload.data(), static_cast<int32_t>(payload.size()), out, sizeof out, isTls), result);
  return out;
}

TEST(HttpSummary, Texts) {
  EXPECT_EQ(Described(Ascii("GET /a?b HTTP/1.1\r\nX-Host: no\r\nHost: www.example\r\n\r\n"), 1),
            "HTTP GET http://www.example/a?b");
  EXPECT_EQ(Described(Ascii("POST /a HTTP/1.1\r\n\r\n"), 1), "HTTP POST  /a") << "made for a method of three letters";
  EXPECT_EQ(Described(Ascii("GET / HTTP/1.1\r\nHost: \r\n\r\n"), 1), "HTTP GET /");
  EXPECT_EQ(Described(Ascii("GET / HTTP/1.1\r\nHost: cut"), 1), "HTTP GET /");
  EXPECT_EQ(Described(Ascii("HTTP/1.1 200 OK\r\nContent-Length: 5\r\nContent-Type: text/html\r\n\r\n"), 2),
            "HTTP Reply Status=200 OK, Content-Type: text/html, Content-Length: 5");
  EXPECT_EQ(Described(Ascii("HTTP/1.1 200 OK\r\nContent-Type: a") + Bytes(1) + Ascii("\r\n"), 2),
            "HTTP Reply Status=200 OK");
  EXPECT_EQ(Described(Ascii("HTTP/1.1 20 OK\r\n\r\n"), 3), "HTTP Continuation");
  EXPECT_EQ(Described(Ascii("\r\nx"), 0), "HTTP ");
  EXPECT_EQ(Described(Hex("16 03 01 00 02 01 00"), 1, 1), "SSL/TLS, TLS 1.0, Handshake");
  EXPECT_EQ(Described(Ascii("GET / HTTP/1.1\r\n\r\n"), 1, 1), "HTTP GET /");
  char out[1] = {'x'};
  EXPECT_EQ(DescribeHttp(nullptr, 5, out, 1, 0), 0);
  EXPECT_EQ(DescribeHttp(Ascii("x").data(), 1, out, 0, 0), 0);
}

TEST(HttpSummary, StaysInsideEverySize) {
  const Bytes payloads[] = {
      Ascii("GET /" + std::string(200, 'u') + " HTTP/1.1\r\nHost: " + std::string(400, 'h') + "\r\n\r\n"),
      Ascii("HTTP/1.1 200 " + std::string(200, 'p') + "\r\nContent-Type: " + std::string(400, 't') +
            "\r\nContent-Length: 5\r\n\r\n"),
      Ascii("more")};
  for (const Bytes& payload : payloads) {
    for (size_t size = 1; size <= 512; ++size) {
      const std::unique_ptr<char[]> out(new char[size]);
      const Bytes cut(payload.begin(), payload.begin() + static_cast<ptrdiff_t>(std::min(size, payload.size())));
      EXPECT_NE(DescribeHttp(cut.data(), static_cast<int32_t>(cut.size()), out.get(), static_cast<int32_t>(size), 0),
                0);
      EXPECT_LT(strnlen(out.get(), size), size);
      EXPECT_NE(DescribeHttp(payload.data(), static_cast<int32_t>(payload.size()), out.get(),
                             static_cast<int32_t>(size), 0),
                0);
      EXPECT_LT(strnlen(out.get(), size), size);
    }
  }
}

}  // namespace
}  // namespace qxview::testing
