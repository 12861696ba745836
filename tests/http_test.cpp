#include "decoders/app/http.h"

#include "decoders/app/http_summary.h"
#include "tests/support/http_cases.h"

namespace qxview::testing {
namespace {

int32_t DecodeHttpsPayload(const Place& at, Cursor c) {
  return DecodeHttpPayload(at.view, c.at, c.offset, Left(c), at.level, true);
}

std::string TreeOfText(const std::string& text) { return TreeOfRun(DecodeHttpSegment, Ascii(text)); }

TEST(Http, RequestWithHeaders) {
  EXPECT_EQ(TreeOfText("GET /a%20b HTTP/1.1\r\nHost: example\r\nEmpty:\r\n\r\n"),
            R"(HTTP - Request {0+46}
  Request Line: GET /a%20b HTTP/1.1 {0+19}
    Method: GET {0+4}
    Request uri: /a%20b {4+7}
    Version: HTTP/1.1 {11+9}
  Header: Host: example {21+13}
    Name: Host {21+4}
    Sep: : {25+1}
    Value: example {27+7}
  Header: Empty: {36+6}
    Name: Empty {36+5}
    Sep: : {41+1}
    Value:  {42+0}
  End Headers (blank line) {44+2}
)");
  const std::string options = TreeOfText("OPTIONS / HTTP/1.1\r\n\r\n");
  EXPECT_NE(options.find("HTTP - Request {0+22}\n  Request Line: OPTIONS / HTTP/1.1 {0+18}\n"), std::string::npos)
      << options;
  EXPECT_EQ(TreeOfText("GET / HTTP/1.1"),
            R"(HTTP - Request {0+14}
  Request Line: GET / HTTP/1.1 {0+14}
    Method: GET {0+4}
    Request uri: / {4+2}
    Version: HTTP/1.1 {6+8}
)") << "cut behind the version: the ranges stay inside the frame";
  EXPECT_EQ(TreeOfText("GET / HTP/1.1\r\n\r\n"),
            R"(HTTP - Continuation Data {0+17}
  Encoded Http Data {0+17}
)");
  const std::string longUri = "GET /" + std::string(600, 'x') + " HTTP/1.1\r\n\r\n";
  const std::string cut = TreeOfText(longUri);
  EXPECT_NE(cut.find("Request Line: " + longUri.substr(0, 300) + " {0+300}\n"), std::string::npos) << cut;
  EXPECT_NE(cut.find("Version: HTTP/1.1 {606+9}\n"), std::string::npos) << cut;
}

TEST(Http, ResponsesAndTheirBodies) {
  EXPECT_EQ(
      TreeOfText("HTTP/1.1 404 Not Found\r\nContent-Type: text/html\r\n\r\none\r\n\r\n" + std::string(201, 'x')),
      R"(HTTP - Response {0+259}
  Status Line: HTTP/1.1 404 Not Found {0+22}
    Version: HTTP/1.1 {0+9}
    Code: 404 {9+4}
    Phrase: Not Found {13+11}
  Header: Content-Type: text/html {24+23}
    Name: Content-Type {24+12}
    Sep: : {36+1}
    Value: text/html {38+9}
  End Headers (blank line) {49+2}
  Http Data: one {51+3}
  Http Data:  {56+0}
  Http Data: )" +
          std::string(200, 'x') + R"( {58+200}
)");
  EXPECT_EQ(TreeOfText("HTTP/1.0 200\r\nContent-Type: image/png\r\n\r\n\x89PNG"),
            R"(HTTP - Response {0+45}
  Status Line: HTTP/1.0 200 {0+12}
    Version: HTTP/1.0 {0+9}
    Code: 200 {9+4}
    Phrase:  {12+2}
  Header: Content-Type: image/png {14+23}
    Name: Content-Type {14+12}
    Sep: : {26+1}
    Value: image/png {28+9}
  End Headers (blank line) {39+2}
  Http Image Data {41+4}
)") << "no phrase";
  EXPECT_EQ(TreeOfText("HTTP/1.1 20 OK\r\nContent-Type: text/html\r\n\r\n"),
            R"(HTTP - Continuation Data {0+43}
  Encoded Http Data {0+43}
)") << "a code of two digits";
}

TEST(Http, HeadersThatAreOdd) {
  // Only names in their usual capitals tell of the body; a line without a colon ends the headers.
  EXPECT_EQ(TreeOfText("HTTP/1.1 200 OK\r\ncontent-type: text/html\r\nno colon\r\n\r\n"),
            R"(HTTP - Response {0+54}
  Status Line: HTTP/1.1 200 OK {0+15}
    Version: HTTP/1.1 {0+9}
    Code: 200 {9+4}
    Phrase: OK {13+4}
  Header: content-type: text/html {17+23}
    Name: content-type {17+12}
    Sep: : {29+1}
    Value: text/html {31+9}
  Encoded Http Data {42+12}
)");
  const std::string nameless = TreeOfText("HTTP/1.1 200 OK\r\n: x\r\n\r\n");
  EXPECT_EQ(nameless.find("Header"), std::string::npos) << nameless;
  const std::string words = "Cookie: " + std::string(70, 'a') + "bcdef " + std::string(90, 'c');
  EXPECT_EQ(TreeOfText("HTTP/1.1 200 OK\r\n" + words + "\r\n\r\n"),
            R"(HTTP - Response {0+195}
  Status Line: HTTP/1.1 200 OK {0+15}
    Version: HTTP/1.1 {0+9}
    Code: 200 {9+4}
    Phrase: OK {13+4}
  Header: Cookie: aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaabcdef  {17+84}
  Header : cccccccccccccccccccccccccccccccccccccccccccccccccccccccccccccccccccccccccccccccc {101+80}
  Header : cccccccccc {181+10}
    Name: Cookie {17+6}
    Sep: : {23+1}
    Value: aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaabcdef cccc {25+80}
    Value : cccccccccccccccccccccccccccccccccccccccccccccccccccccccccccccccccccccccccccccccc {105+80}
    Value : cccccc {185+6}
  End Headers (blank line) {193+2}
)");
}

TEST(Http, Chunks) {
  EXPECT_EQ(TreeOfText("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n3;a=b\r\nyou\r\n0\r\n\r\n"
                       "HTTP/1.1 204 No Content\r\n\r\n"),
            R"(HTTP - Response {0+101}
  Status Line: HTTP/1.1 200 OK {0+15}
    Version: HTTP/1.1 {0+9}
    Code: 200 {9+4}
    Phrase: OK {13+4}
  Header: Transfer-Encoding: chunked {17+26}
    Name: Transfer-Encoding {17+17}
    Sep: : {34+1}
    Value: chunked {36+7}
  End Headers (blank line) {45+2}
  Http Chunk Data: Size = 5 Bytes {47+10}
    Chunk Data Length: 5 {47+1}
    Http Chunk Data {50+5}
HTTP - Gzip Continuation Data {57+44}
  Http Chunk Data: Size = 3 Bytes {57+12}
    Chunk Data Length: 3 {57+1}
    Chunk Header: 3;a=b {57+5}
    Http Chunk Data {64+3}
HTTP - Gzip Continuation Data {69+32}
  Last Chunk: Size = 0 Bytes {69+5}
    Chunk Data Length: 0 = End of Chunked Http Data Indicator {69+1}
Chunked HTTP Data - HTTP Response {74+27}
  Status Line: HTTP/1.1 204 No Content {74+23}
    Version: HTTP/1.1 {74+9}
    Code: 204 {83+4}
    Phrase: No Content {87+12}
  End Headers (blank line) {99+2}
)");
  EXPECT_EQ(TreeOfText("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nFFFFFFFFF\r\nhello"),
            R"(HTTP - Response {0+63}
  Status Line: HTTP/1.1 200 OK {0+15}
    Version: HTTP/1.1 {0+9}
    Code: 200 {9+4}
    Phrase: OK {13+4}
  Header: Transfer-Encoding: chunked {17+26}
    Name: Transfer-Encoding {17+17}
    Sep: : {34+1}
    Value: chunked {36+7}
  End Headers (blank line) {45+2}
  Http Chunk Data: Size = 2147483647 Bytes {47+16}
    Chunk Data Length: 2147483647 {47+9}
    Http Chunk Data {58+5}
)");
  EXPECT_EQ(TreeOfText("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n1\r\na\r\nxyz\r\n"),
            R"(HTTP - Response {0+58}
  Status Line: HTTP/1.1 200 OK {0+15}
    Version: HTTP/1.1 {0+9}
    Code: 200 {9+4}
    Phrase: OK {13+4}
  Header: Transfer-Encoding: chunked {17+26}
    Name: Transfer-Encoding {17+17}
    Sep: : {34+1}
    Value: chunked {36+7}
  End Headers (blank line) {45+2}
  Http Chunk Data: Size = 1 Bytes {47+6}
    Chunk Data Length: 1 {47+1}
    Http Chunk Data {50+1}
HTTP - Gzip Continuation Data {53+5}
  Encoded Http Data {53+5}
)");
}

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

TEST(Http, Tls) {
  EXPECT_EQ(TreeOfRun(DecodeHttpsPayload, Hex("16 03 01 00 02 01 00")),
            "HTTP - TLS/SSL {0+7}\n  SSL/TLS Data {0+7}\n");
  EXPECT_EQ(TreeOfRun(DecodeHttpsPayload, Ascii("GET / HTTP/1.1\r\n\r\n")),
            "HTTP - TLS/SSL {0+18}\n  HTTPS Continuation Data {0+18}\n");
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
