// What hostile messages of mail, calls, gateways and streams may cost: bounds are kept, and said where something is left out.
#include <ctime>

#include "tests/support/cases.h"
#include "tests/support/http_cases.h"
#include "tests/support/transport.h"

namespace qxview::testing {
namespace {

size_t CountOf(const std::string& text, const std::string& piece) {
  size_t count = 0;
  for (size_t at = text.find(piece); at != std::string::npos; at = text.find(piece, at + 1)) ++count;
  return count;
}
double Seconds() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

std::string Base64(const std::string& text) {
  constexpr const char* kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string out;
  for (size_t at = 0; at < text.size(); at += 3) {
    uint32_t word = 0;
    for (size_t i = 0; i < 3; ++i) word = word << 8 | (at + i < text.size() ? static_cast<uint8_t>(text[at + i]) : 0);
    for (size_t i = 0; i < 4; ++i) out += at + i > text.size() ? '=' : kDigits[word >> (18 - 6 * i) & 63];
    if (out.size() % 76 == 0) out += "\r\n";
  }
  return out;
}
Bytes Times(const std::string& text, size_t times) { return Repeat(Ascii(text), times); }

// Each part opens another one.
std::string PartsInParts(int count, const std::string& head) {
  std::string out;
  for (int i = 0; i < count; ++i) {
    const std::string boundary = "c" + std::to_string(1000 + i);   // none begins as another one
    out += head + "Content-Type: multipart/mixed; boundary=" + boundary + "\r\n\r\n--" + boundary + "\r\n";
  }
  return out;
}
std::string MessagesInBase64(int count) {
  std::string out = "Subject: x\r\n\r\nthe innermost\r\n";
  for (int i = 0; i < count; ++i) {
    out = "Content-Type: message/rfc822\r\nContent-Transfer-Encoding: base64\r\n\r\n" + Base64(out) + "\r\n";
  }
  return out;
}

struct Hostile {
  const char* row;
  const char* said;   // once; null where nothing is left out
  Bytes bytes;
};

void ExpectBounded(const std::vector<Hostile>& messages) {
  constexpr double kMostSeconds = 2;
  RunOnSmallStack([&] {
    TestView view;
    for (const Hostile& message : messages) {
      Payload payload{.row = RowNamed(std::string("application ") + message.row), .overTcp = true, .modern = true,
                      .bytes = message.bytes};
      ASSERT_NE(payload.row, nullptr) << message.row;
      const size_t number = static_cast<size_t>(&message - messages.data());
      const double before = Seconds();
      const PayloadRun run = RunPayload(view.view(), payload);
      EXPECT_LE(Seconds() - before, kMostSeconds * kSlowness) << message.row << " " << number;
      EXPECT_LE(run.lines, MostLinesOf(static_cast<int32_t>(message.bytes.size())) + 1) << message.row << " " << number;
      EXPECT_GT(run.lines, 0) << message.row << " " << number;
      if (!message.said) continue;
      EXPECT_EQ(CountOf(view.Text(), message.said), 1u) << message.row << " " << message.said;
    }
  });
}

TEST(TextBounds, OfMailAreKeptAndSaid) {
  const auto mail = [](const Bytes& headers) { return Ascii("+OK\r\nFrom: a@b\r\n") + headers + Ascii("\r\n\r\nx\r\n.\r\n"); };
  const auto text = [](const std::string& rest) { return Ascii("+OK\r\nFrom: a@b\r\n" + rest + ".\r\n"); };
  ExpectBounded({
      {"POP3", nullptr, mail(Times("Subject: x\r\n", 5000))},
      {"POP3", nullptr, mail(Ascii("Subject: x") + Times("\r\n y", 15000))},
      {"POP3", nullptr, mail(Ascii("To: ") + Times("<a@b>,", 10000))},
      {"POP3", nullptr, mail(Ascii("To: ") + Times("\"", 60000))},
      {"POP3", nullptr, mail(Ascii("Content-Type: a/b") + Times(";x*0*=''%", 7000))},
      {"POP3", nullptr, mail(Ascii("Received: ") + Times("from by ", 8000))},
      {"POP3", nullptr, mail(Ascii("Subject: ") + Times("=?utf-8?B?QQ==?= ", 3800))},
      {"POP3", nullptr, mail(Ascii("DKIM-Signature: ") + Times("b=;", 20000))},
      {"POP3", nullptr, text("Content-Type: multipart/mixed; boundary=b\r\n\r\n" + std::string(60000, '-') + "\r\n")},
      {"POP3", "Parts nest too deeply to be shown", text(PartsInParts(1000, ""))},
      {"POP3", "Parts nest too deeply to be shown", text(MessagesInBase64(16))},
      {"POP3", nullptr, text("Content-Transfer-Encoding: quoted-printable\r\n\r\n" + std::string(60000, '='))},
      {"POP3", nullptr, text("\r\nbegin 644 x\r\n" + std::string(60000, '`') + "\r\nend\r\n")},
      {"SMTP", nullptr, Times("MAIL FROM:<\r\n", 5000)},
      {"SMTP", nullptr, Times("250-x\r\n", 9000)},
      {"IMAP", "Lists nest too deeply to be shown", Ascii("* 1 FETCH ") + Times("(", 60000)},
      {"Subversion", "Lists nest too deeply to be shown", Times("( ", 30000)},
      {"HTTP", "Parts nest too deeply to be shown",
       Ascii("HTTP/1.1 200 OK\r\nContent-Type: multipart/mixed; boundary=b\r\n\r\n--b\r\n" + PartsInParts(1000, ""))},
      {"IMAP", nullptr, Ascii("* LIST ") + Times("\"\\", 30000)},
      {"IMAP", nullptr, Times("a x {1}\r\n", 7000)},
      {"IMAP", nullptr, Times("* OK [", 10000)},
  });
}

TEST(TextBounds, OfSignedMailAreKept) {
  // Elements without a length in one another, a set of many, signatures of signatures.
  const auto body = [](const Bytes& content) {
    return Ascii("HTTP/1.1 200 OK\r\nContent-Type: application/cms\r\n\r\n") + Hex("30 80 06 09 2A864886F70D010702 A0 80") + content;
  };
  ExpectBounded({
      {"HTTP", nullptr, body(Times("0\x80", 30000))},
      {"HTTP", nullptr, body(Hex("30 80 02 01 01 31 80") + Repeat(Hex("30 80"), 30000))},
      {"HTTP", nullptr, body(Hex("30 80 02 01 01 31 00 30 80 06 09 2A864886F70D010701 A0 80 24 80") + Repeat(Hex("04 01 41"), 20000))},
      {"HTTP", nullptr, body(Hex("30 80 02 01 01 31 00 30 00 31 80") +
                             Repeat(Hex("30 80 02 01 01 A1 80 30 80 06 09 2A864886F70D010906 31 80"), 2000))},
  });
}

TEST(TextBounds, OfCallsAreKeptAndSaid) {
  const auto sip = [](const Bytes& rest) { return Ascii("INVITE sip:a@b SIP/2.0\r\n") + rest; };
  const auto body = [&sip](const std::string& type, const Bytes& content) {
    return sip(Ascii("Content-Type: " + type + "\r\n\r\n") + content);
  };
  ExpectBounded({
      {"SIP", nullptr, sip(Times("Via: SIP/2.0/UDP h\r\n", 3000) + Ascii("\r\n"))},
      {"SIP", nullptr, sip(Ascii("v: ") + Times("a,", 30000))},
      {"SIP", nullptr, sip(Ascii("m: ") + Times("<a>;b=\"", 9000))},
      {"SIP", nullptr, sip(Ascii("Allow: x") + Times("\r\n ,", 15000))},
      {"SIP", nullptr, sip(Ascii("Authorization: Digest ") + Times("a=\"\\\",", 10000))},
      {"SIP", nullptr, sip(Ascii("Content-Length: 999999999\r\n\r\n"))},
      {"SIP", nullptr, Times("SIP/2.0 200 OK\r\n\r\n", 3500)},
      {"SIP", "Nested Parts", body("multipart/mixed;boundary=b", Ascii("--b\r\n" + PartsInParts(1000, "")))},
      {"SIP", nullptr, body("multipart/mixed;boundary=b", Times("--b\r\n", 12000))},
      {"SIP", "Nested Too Deeply", body("application/pidf+xml", Times("<a>", 20000))},
      {"SIP", "Nested Too Deeply", body("application/json", Times("[", 60000))},
      {"SIP", nullptr, body("application/sdp", Ascii("v=0\r\n") + Times("m=audio 1 RTP/AVP 0\r\n", 3000))},
      {"SIP", nullptr, body("application/sdp", Ascii("v=0\r\na=fmtp:") + Times("1 ;", 20000))},
      {"SIP", nullptr, body("message/sipfrag", Times("Via: x\r\n", 8000))},
  });
}

TEST(TextBounds, OfGatewaysAreKeptAndSaid) {
  const Bytes deepest = Hex("30 80 a1 80 a2 80 a1 80 a0 80 a1 80 30 80 a3 80 30 80 a0 80 a0 80 a1 80 a3 80 a1 80 30 80 a2 80 a2 80 a1 80 30 80");
  ExpectBounded({
      {"Megaco", "Nested Items", Ascii("MEGACO/1 [192.0.2.1] ") + Times("T=1{", 15000)},
      {"Megaco", nullptr, Ascii("MEGACO/1 [192.0.2.1] T=1{") + Times("C=1,", 15000)},
      {"Megaco", nullptr, Ascii("MEGACO/1 [192.0.2.1] T=1{C=1{A=a{M{L{") + Times("m=audio 1 RTP/AVP 0\r\n", 3000)},
      {"Megaco", nullptr, Ascii("MEGACO/1 [192.0.2.1] T=1{C=1{A=a{E=1{") + Times("x/y,", 15000)},
      {"Megaco", nullptr, Ascii("MEGACO/1 [192.0.2.1] ") + Times("\"", 60000)},
      {"Megaco", nullptr, Ascii("MEGACO/1 [192.0.2.1] ") + Times("}", 60000)},
      {"Megaco (binary)", "Nested Data", deepest + Repeat(Hex("a2 80 a3 80 a1 80 a0 80 a1 80 30 80"), 5000)},
      {"Megaco (binary)", nullptr, Hex("30 80 a1 80 a2 80 a1 80") + Repeat(Hex("a0 00"), 30000)},
      {"Megaco (binary)", nullptr, Hex("30 84 7fffffff a1 84 7fffffff") + Repeat(Hex("a2 84 7fffffff"), 8000)},
      {"MGCP", nullptr, Ascii("RQNT 1 a@b MGCP 1.0\r\nR: ") + Times("a/b(x),", 8000)},
      {"MGCP", nullptr, Ascii("RQNT 1 a@b MGCP 1.0\r\nR: ") + Times("(", 60000)},
  });
}

TEST(TextBounds, OfStreamsAreKeptAndSaid) {
  // A chunk of a message of the type that takes up all that follows.
  const auto message = [](uint8_t type, const Bytes& content) {
    const size_t size = content.size();
    return Hex("02 000000 000004 01 00000000 0000FFFF") + Hex("03 000000") +
           Bytes{static_cast<uint8_t>(size >> 16), static_cast<uint8_t>(size >> 8), static_cast<uint8_t>(size), type} + Bytes(4) + content;
  };
  const Bytes name = Hex("02 0001 61");
  ExpectBounded({
      {"RTMP", "Nested Values", message(20, name + Repeat(Hex("03 0001 61"), 15000))},
      {"RTMP", "Nested Values", message(20, name + Repeat(Hex("0A 00000001"), 12000))},
      {"RTMP", "Nested Values", message(20, name + Repeat(Hex("08 00000001 0001 61"), 7000))},
      {"RTMP", nullptr, message(20, name + Hex("0A FFFFFFFF") + Bytes(60000, 5))},
      {"RTMP", "Nested Values", message(17, Hex("00") + name + Hex("11") + Repeat(Hex("09 03 01"), 20000))},
      {"RTMP", nullptr, message(17, Hex("00") + name + Hex("11 0A FF FF FF FF") + Bytes(60000, 1))},
      {"RTMP", nullptr, message(22, Repeat(Hex("16 000000 000000 00 000000"), 5000))},
      {"RTMP", nullptr, Repeat(Hex("02 000000 000004 01 00000000 00000001"), 3500)},
      {"RTMP", nullptr, Hex("03 000000 FFFFFF 14 00000000") + Repeat(Bytes(128, 5) + Hex("C3"), 400)},
      {"RTMP", nullptr, Repeat(Hex("00 FF 000000 000001 08 00000000 41  01 FFFF 000000 000001 08 00000000 41"), 2000)},
  });
}

// What a line, a literal or a message of a megabyte leaves behind each of its segments.
TEST(TextBounds, OfLinesOverSegmentsAreKept) {
  struct ReassemblingHost : DefinitionsHost {
    ReassemblingHost() {
      settings = {{"Reassembly", "1"}, {"IgnoreChecksums", "1"}, {"DnsRecords", "1"}};
      definitions.AddDefinition("tcp:25=SMTP");
      definitions.AddDefinition("tcp:143=IMAP");
      definitions.AddDefinition("tcp:5060=SIP");
      definitions.AddDefinition("tcp:2944=Megaco");
      definitions.AddDefinition("tcp:1935=RTMP");
    }
  };
  const struct {
    uint16_t port;
    Bytes first;
  } kTalks[] = {{25, Ascii("DATA\r\nSubject: ")}, {25, Ascii("Subject: x\r\nTo: a@b\r\n\r\n")}, {143, Ascii("a APPEND x {1000000}\r\n")},
                {143, Ascii("* LIST (")}, {5060, Ascii("INVITE sip:a SIP/2.0\r\nContent-Length: 1000000\r\n\r\n")},
                {5060, Ascii("INVITE sip:a SIP/2.0\r\nVia: ")}, {2944, Ascii("MEGACO/1 [192.0.2.1] T=1{")},
                {1935, Hex("03 000000 0F4240 14 00000000 02 0001 61")}};
  constexpr int kSegments = 700, kSize = 1460;
  constexpr double kMostSeconds = 4;
  for (const auto& talk : kTalks) {
    ReassemblingHost host;
    TestView view{&host};
    uint32_t next = 1000;
    const double before = Seconds();
    for (int i = 0; i <= kSegments; ++i) {
      const Bytes payload = i == 0 ? talk.first : Bytes(kSize, 'x');
      Record record(Ethernet(0x0800, IPv4(6, Tcp({.sourcePort = 40000, .destinationPort = talk.port, .sequence = next, .payload = payload}))));
      record->packetNumber = static_cast<uint64_t>(i) + 1;
      next += static_cast<uint32_t>(payload.size());
      view.Decode(record);
      if (i % 100 > 0) continue;
      EXPECT_LE(view.Text().size(), 200'000u) << talk.port << " " << i;
    }
    EXPECT_LE(Seconds() - before, kMostSeconds * kSlowness) << talk.port;
  }
}

}  // namespace
}  // namespace qxview::testing
