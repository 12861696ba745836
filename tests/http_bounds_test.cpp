// What hostile messages of HTTP may cost where all is asked for: each bound is kept, and said once.
#include <zlib.h>

#include "tests/support/cases.h"
#include "tests/support/http_cases.h"

namespace qxview::testing {
namespace {

Bytes Gzipped(size_t zeros) {
  const Bytes plain(zeros);
  z_stream stream{};
  EXPECT_EQ(deflateInit2(&stream, 9, Z_DEFLATED, 31, 8, Z_DEFAULT_STRATEGY), Z_OK);
  Bytes out(deflateBound(&stream, plain.size()));
  stream.next_in = const_cast<Bytef*>(plain.data());
  stream.avail_in = static_cast<uInt>(plain.size());
  stream.next_out = out.data();
  stream.avail_out = static_cast<uInt>(out.size());
  EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
  out.resize(stream.total_out);
  deflateEnd(&stream);
  return out;
}

size_t CountOf(const std::string& text, const std::string& piece) {
  size_t count = 0;
  for (size_t at = text.find(piece); at != std::string::npos; at = text.find(piece, at + 1)) ++count;
  return count;
}

TEST(HttpBounds, AreKeptAndSaid) {
  const auto body = [](const std::string& headers, const Bytes& bytes) {
    return Ascii("HTTP/1.1 200 OK\r\n" + headers + "\r\n\r\n") + bytes;
  };
  const struct {
    const char* said;
    Bytes bytes;
  } kMessages[] = {
      {"End Headers (blank line)", Ascii("HTTP/1.1 200 OK\r\n") + Repeat(Ascii("X: v\r\n"), 10000) + Ascii("\r\n")},
      {"Header in Part", Ascii("HTTP/1.1 200 OK\r\nCookie: ") + Repeat(Ascii("=;"), 30000)},
      {"URI Query", Ascii("GET /?") + Repeat(Ascii("&%=%"), 15000) + Ascii(" HTTP/1.1\r\n\r\n")},
      {"Nested Too Deeply", body("Content-Type: text/xml", Repeat(Ascii("<a>"), 20000))},
      {"Vocabulary: SOAP", body("Content-Type: text/xml",
                                Ascii("<Envelope xmlns='http://schemas.xmlsoap.org/soap/envelope/'>") + Repeat(Ascii("<a b='>"), 8000))},
      {"Nested Too Deeply", body("Content-Type: application/json", Repeat(Ascii("["), 60000))},
      {"Nested Too Deeply", body("Content-Type: application/json", Ascii("{\"id\":1,\"error\":") + Repeat(Ascii("{\"a\":"), 12000))},
      {"more are not joined", body("Transfer-Encoding: chunked", Repeat(Ascii("1\r\nx\r\n"), 9000))},
      {"more is not inflated", body("Content-Encoding: gzip\r\nContent-Type: text/plain", Gzipped(50'000'000))},
  };
  RunOnSmallStack([&] {
    TestView view;
    for (const auto& message : kMessages) {
      Payload payload{.row = RowNamed("application HTTP"), .overTcp = true, .modern = true, .bytes = message.bytes};
      EXPECT_LE(RunPayload(view.view(), payload).lines, MostLinesOf(static_cast<int32_t>(message.bytes.size())) + 1) << message.said;
      EXPECT_EQ(CountOf(view.Text(), message.said), 1u) << message.said;
    }
  });
}

}  // namespace
}  // namespace qxview::testing
