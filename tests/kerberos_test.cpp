#include "decoders/asn1/kerberos.h"

#include "tests/support/transport.h"

namespace qxview::testing {
namespace {

Bytes Wrap(uint8_t identifier, const Bytes& contents) {
  const size_t size = contents.size();
  if (size < 128) return Bytes{identifier, static_cast<uint8_t>(size)} + contents;
  return Bytes{identifier, 0x82, static_cast<uint8_t>(size >> 8), static_cast<uint8_t>(size)} + contents;
}
Bytes Text(uint8_t identifier, const char* text) { return Wrap(identifier, Bytes(text, text + strlen(text))); }
Bytes Tag(int number, const Bytes& element) { return Wrap(static_cast<uint8_t>(0xA0 | number), element); }
Bytes Sequence(const Bytes& contents) { return Wrap(0x30, contents); }
Bytes Number(const char* hex) { return Wrap(0x02, Hex(hex)); }
Bytes Octets(const Bytes& contents) { return Wrap(0x04, contents); }
Bytes Realm(const char* text) { return Text(0x1B, text); }
Bytes Time(const char* text) { return Text(0x18, text); }
Bytes Name(const char* first, const char* second = nullptr) {
  return Sequence(Tag(0, Number("01")) + Tag(1, Sequence(Realm(first) + (second ? Realm(second) : Bytes{}))));
}
Bytes Encrypted(const char* etype, const Bytes& cipher) {
  return Sequence(Tag(0, Number(etype)) + Tag(2, Octets(cipher)));
}
// A message with its first two fields, which requests number from 1.
Bytes Message(int number, const Bytes& fields, int firstTag = 0) {
  const char type[] = {"0123456789ABCDEF"[number >> 4], "0123456789ABCDEF"[number & 15], 0};
  return Wrap(static_cast<uint8_t>(0x60 | number),
              Sequence(Tag(firstTag, Number("05")) + Tag(firstTag + 1, Number(type)) + fields));
}
Bytes PaData(const char* type, const Bytes& value) {
  return Sequence(Tag(1, Wrap(0x02, Hex(type))) + Tag(2, Octets(value)));
}
Bytes Request(const Bytes& padata) {
  return Message(10, Tag(3, Sequence(padata)) + Tag(4, Sequence(Tag(1, Name("user")) + Tag(2, Realm("A.TEST")))), 1);
}
Bytes Error(const char* code, const Bytes& data) {
  return Message(30, Tag(6, Number(code)) + Tag(9, Realm("A.TEST")) + Tag(10, Name("krbtgt", "A.TEST")) +
                         Tag(12, Octets(data)));
}
Bytes Marked(const Bytes& message) {
  const size_t size = message.size();
  return Bytes{0, 0, static_cast<uint8_t>(size >> 8), static_cast<uint8_t>(size)} + message;
}

// The lines that are not an element's own.
std::string Outline(const std::string& tree) {
  std::string kept;
  for (size_t at = 0, end; at < tree.size(); at = end + 1) {
    end = tree.find('\n', at);
    const std::string line = tree.substr(at, end - at);
    const std::string body = line.substr(line.find_first_not_of(' '));
    const std::string title = body.substr(0, body.find(':'));
    const bool isPart = title.ends_with(" Type") || title.find(" Type ") != std::string::npos ||
                        title.ends_with(" Length") || std::string(".01").find(body[0]) != std::string::npos ||
                        body.starts_with("Length  :") || body.starts_with("ASN Value");
    const bool isField = body.find("] = ") != std::string::npos && body.find('[') == body.find(": ") + 2;
    if (!isPart || (isField && !body.starts_with("ASN"))) kept += line + "\n";
  }
  return kept;
}
std::string OutlineOf(const Bytes& payload) { return Outline(TreeOfRun(DecodeKerberos, payload)); }

int32_t ResultOf(const Bytes& payload) {
  TestView view;
  return view.Run(DecodeKerberos, payload);
}

int32_t DecodeSegment(const Place& at, Cursor c) {
  PacketOf(at).ipProtocol = 6;
  return DecodeKerberos(at, c);
}

// Messages that no sample holds, and parts that are encrypted in all of them.
TEST(Kerberos, Messages) {
  const Bytes address = Sequence(Tag(0, Number("14")) + Tag(1, Octets(Hex("484F5354 20202020"))));
  const Bytes body = Sequence(Tag(0, Octets(Hex("0001"))) + Tag(1, Time("20260102030405Z")) + Tag(2, Number("0F423F")) +
                              Tag(3, Number("00FFFFFFFF")) + Tag(4, address));
  const Bytes checksum = Sequence(Tag(0, Number("FF76")) + Tag(1, Octets(Hex("DEADBEEF"))));
  ExpectInOrder(OutlineOf(Message(20, Tag(2, body) + Tag(3, checksum))),
                {"Kerberos: KRB-SAFE {", "  Safe Body: {", "    User Data: 00 01 {", "      User Data {",
                 "    Timestamp: 2026-01-02 03:04:05 UTC {", "    Microseconds: 999999 {",
                 "    Sequence Number: 4294967295 {", "    Sender Address: HOST {",
                 "  Checksum: [-138] = hmac-md5 {", "    Checksum Value: DE AD BE EF {"});

  const Bytes ticket = Wrap(0x61, Sequence(Tag(0, Number("05")) + Tag(1, Realm("A.TEST")) +
                                           Tag(2, Name("host", "b")) + Tag(3, Encrypted("12", Hex("00")))));
  const Bytes part = Wrap(0x7D, Sequence(Tag(0, Sequence(Sequence(
      Tag(0, Sequence(Tag(0, Number("12")) + Tag(1, Octets(Hex("0102"))))) + Tag(3, Wrap(0x03, Hex("00 40800001"))) +
      Tag(4, Time("yesterday")))))));
  ExpectInOrder(OutlineOf(Message(22, Tag(2, Sequence(ticket + ticket)) + Tag(3, Encrypted("00", part)))),
                {"Kerberos: KRB-CRED, Server=host/b@A.TEST {", "    Ticket #2: host/b@A.TEST {",
                 "  Encrypted Part: [0] = NULL {", "      Ticket Information:", "        Ticket Information #1:",
                 "          Key: [18] = aes256-cts-hmac-sha1-96 {", "            Key Value: 01 02 {",
                 "          Ticket Flags: Forwardable, Renewable {", "          Authentication Time: yesterday {"});
  EXPECT_NE(TreeOfRun(DecodeKerberos, Message(22, Tag(3, Encrypted("00", part))))
                .find("........ ........ ........ .......1: Reserved = True"), std::string::npos);

  // Authorization data hold more of them, as deep as lines go.
  const Bytes inner = Sequence(Sequence(Tag(0, Number("81")) + Tag(1, Octets(Sequence(Number("11"))))) +
                               Sequence(Tag(0, Number("0080")) + Tag(1, Octets(Hex("00 01")))));
  const Bytes relevant = Sequence(Sequence(Tag(0, Number("01")) + Tag(1, Octets(inner))));
  ExpectInOrder(OutlineOf(Wrap(0x62, Sequence(Tag(2, Name("user")) + Tag(8, relevant)))),
                {"Kerberos: Authenticator {", "  Client Name: user {", "  Authorization Data: {",
                 "    Authorization Data #1: [1] = AD-IF-RELEVANT {", "      Data: {",
                 "        Authorization Data #1: [-127] = Undefined {",
                 "        Authorization Data #2: [128] = AD-WIN2K-PAC {", "          Data: 00 01 {"});
}

TEST(Kerberos, PreAuthenticationData) {
  const struct {
    const char* type;
    Bytes value;
    std::vector<std::string> lines;
  } cases[] = {
      {"0B", Sequence(Sequence(Tag(0, Number("03")) + Tag(1, Octets(Hex("53414C54"))))),
       {"[11] = PA-ETYPE-INFO {", "ETYPE-INFO #1: [3] = des-cbc-md5 {", "Salt: SALT {"}},
      {"03", Hex("53414C54"), {"[3] = PA-PW-SALT {", "Data Value: SALT {"}},
      {"03", Hex("340200C0 00000000 01000000"), {"[3] = PA-PW-SALT {", "Status: [0xC0000234] = STATUS_ACCOUNT_LOCKED_OUT {"}},
      {"0080", Sequence(Tag(0, Wrap(0x01, Hex("FF")))), {"[128] = PA-PAC-REQUEST {", "Include PAC: True {"}},
      {"14", Sequence(Tag(0, Realm("B.TEST")) + Tag(1, Name("user"))),
       {"[20] = PA-SVR-REFERRAL-INFO {", "Referred Realm: B.TEST {", "Referred Name: user {"}},
      {"00A1", Sequence(Number("12") + Number("80")),
       {"PA-KERB-KEY-LIST-REQ {", "Encryption Type #1: [18] = aes256", "Encryption Type #2: [-128] = rc4-md4 {"}},
      {"00A5", Hex("1C 00 00 00"), {"[165] = PA-SUPPORTED-ENCTYPES {"}},
      {"00A7", Sequence(Tag(0, Wrap(0x03, Hex("00 40000000")))), {"PA-PAC-OPTIONS {", "PAC Options: Branch Aware {"}},
      {"10", Sequence(Hex("80 01 2A")), {"[16] = PA-PK-AS-REQ {", "Data Value: 30 03 80 01 2A {"}},
      {"00 86", Sequence(Sequence(Tag(0, Number("02")) + Tag(1, Octets(Hex("01"))))),
       {"PA-AUTHENTICATION-SET {", "Authentication Set #1:", "Data Type: [2] = PA-ENC-TIMESTAMP {", "Hint: 01 {"}},
      {"02", Number("05"), {"[2] = PA-ENC-TIMESTAMP {", "Data Value: 02 01 05 {"}},   // not what it should hold
      {"63", Hex(""), {"[99] = Undefined {", "Data Value: {"}},
  };
  for (const auto& one : cases) ExpectInOrder(OutlineOf(Request(PaData(one.type, one.value))), one.lines);
  EXPECT_NE(TreeOfRun(DecodeKerberos, Request(PaData("00A5", Hex("1C 00 00 00"))))
                .find("........ ........ ........ ...1....: aes256-cts-hmac-sha1-96 = True"), std::string::npos);
}

TEST(Kerberos, DataOfErrors) {
  ExpectInOrder(OutlineOf(Error("44", Sequence(PaData("02", {})))),
                {"Kerberos: KRB-ERROR, KDC_ERR_WRONG_REALM, Server=krbtgt/A.TEST@A.TEST {",
                 "  Error Code: [68] = KDC_ERR_WRONG_REALM {", "    PA-DATA #1: [2] = PA-ENC-TIMESTAMP {"});
  const Bytes typed = Sequence(Sequence(Tag(0, Number("67")) + Tag(1, Octets(Realm("B.TEST")))));
  ExpectInOrder(OutlineOf(Error("3E", typed)), {"    TYPED-DATA #1: [103] = TD-KRB-REALM {", "Data Value: B.TEST {"});
  const Bytes extended = Sequence(Tag(1, Number("03")) + Tag(2, Octets(Hex("720000C0 00000000 01000000"))));
  ExpectInOrder(OutlineOf(Error("12", extended)), {"    Data Type: [3] = Extended {",
                "      Status: [0xC0000072] = STATUS_ACCOUNT_DISABLED {", "      Reserved: 0x0", "      Flags: 0x00000001 {"});
  ExpectInOrder(OutlineOf(Error("7F", Hex("0001"))), {"  Error Code: [127] = Undefined {", "  Error Data: 00 01 {"});
}

TEST(Kerberos, ChangePassword) {
  const Bytes ap = Message(14, {}), priv = Message(21, {}), error = Error("3C", Hex("0004 6E6F"));
  const auto framed = [](uint8_t high, uint8_t low, const Bytes& first, const Bytes& all) {
    const size_t size = 6 + all.size();
    return Bytes{static_cast<uint8_t>(size >> 8), static_cast<uint8_t>(size), high, low, 0,
                 static_cast<uint8_t>(first.size())} + all;
  };
  const Bytes request = framed(0xFF, 0x80, ap, ap + priv);
  ExpectInOrder(OutlineOf(request), {"Kerberos: Set Password Request {0+6}\n", "  Protocol Version: 0xFF80 {2+2}\n",
                                     "Kerberos: AP-REQ {6+", "Kerberos: KRB-PRIV {"});
  EXPECT_EQ(ResultOf(request), 1);
  ExpectInOrder(OutlineOf(framed(0, 1, {}, error)),
                {"Kerberos: Change Password Reply {", "Kerberos: KRB-ERROR, KRB_ERR_GENERIC, ",
                 "    Result Code: [4] = Soft Error {", "    Result String: no {"});
  ExpectInOrder(TreeOfRun(DecodeSegment, Marked(request)), {"Kerberos: Set Password Request {0+10}", "Record Length"});
  EXPECT_EQ(ResultOf(Hex("0006 0001 0000")), 0);
}

TEST(Kerberos, Framing) {
  const Bytes message = Request({});
  EXPECT_EQ(ResultOf(message), 1);
  EXPECT_EQ(ResultOf(Bytes(message.begin(), message.end() - 1)), 2);
  ExpectInOrder(OutlineOf(Bytes(message.begin(), message.end() - 1)),
                {"Kerberos: AS-REQ, Client=user@A.TES", "    Realm: A.TES {", "      Truncated Data {"});
  ExpectInOrder(OutlineOf(message + Hex("00")), {"Kerberos: AS-REQ, Client=user@A.TEST {", "\nKerberos Data {8:"});
  for (const char* other : {"00", "006A", "006A00FF"}) EXPECT_EQ(TreeOfRun(DecodeKerberos, Hex(other)), "");
  EXPECT_EQ(ResultOf(Hex("6A 03 02 01 05")), 0) << "no SEQUENCE";
  EXPECT_EQ(ResultOf(Hex("6A 84 FFFFFFFF 30")), 0);

  const auto segment = [](const Bytes& bytes) { return Outline(TreeOfRun(DecodeSegment, bytes)); };
  const std::string two = segment(Marked(message) + Marked(message));
  ExpectInOrder(two, {"Kerberos: AS-REQ, Client=user@A.TEST {0+", "\nKerberos: AS-REQ, Client=user@A.TEST {"});
  const Bytes marked = Marked(message);
  ExpectInOrder(segment(marked + Bytes(marked.begin(), marked.end() - 3)), {"Kerberos: AS-REQ, Client=user@A.TEST {0+",
                "\nKerberos: AS-REQ", "Truncated Data {"});
  const Bytes tail(message.begin() + 9, message.end());
  EXPECT_EQ(segment(tail).rfind("Kerberos Continuation Data {8:0+", 0), 0U);
  EXPECT_EQ(segment(Hex("00000040")), "Kerberos: Record Mark {0+4}\n");
  EXPECT_EQ(segment(message).rfind("Kerberos: AS-REQ, Client=user@A.TEST {0+", 0), 0U) << "the mark went ahead";
  EXPECT_EQ(TreeOfRun(DecodeKerberosMessage, message + Hex("2A")), TreeOfRun(DecodeKerberos, message));

  char text[kKerberosTextSize];
  DescribeKerberosPayload(MakeCursor(marked.data(), 0, static_cast<int32_t>(marked.size())), true, text, sizeof text);
  EXPECT_STREQ(text, "AS-REQ, Client=user@A.TEST");
  DescribeKerberosPayload(MakeCursor(tail.data(), 0, static_cast<int32_t>(tail.size())), true, text, sizeof text);
  EXPECT_STREQ(text, "Data");
}

// What is not as it should be is shown by what it is, and the walk goes on behind it.
TEST(Kerberos, Malformed) {
  const Bytes version = Tag(0, Number("05")), end = Tag(9, Realm("END"));
  const auto outline = [&](const Bytes& field) { return OutlineOf(Wrap(0x7E, Sequence(version + field + end))); };
  ExpectInOrder(outline(Tag(4, Number("05"))), {"  Server Time: {", "    Undefined:  {", "  Server Realm: END {"});
  ExpectInOrder(outline(Tag(15, Number("05"))), {"  Undefined Field: {", "  Server Realm: END {"});
  ExpectInOrder(outline(Number("05")), {"  Undefined Field: {", "  Server Realm: END {"});
  ExpectInOrder(outline(Tag(5, {})), {"  Server Microseconds: {", "  Server Realm: END {"});
  ExpectInOrder(outline(Tag(5, Number("01") + Number("02"))), {"  Server Microseconds: 1 {", "    Undefined Data {",
                                                               "  Server Realm: END {"});
  ExpectInOrder(outline(Tag(7, Hex("1B 05 41"))),
                {"  Client Realm: A {", "    Truncated Data {", "  Server Realm: END {"});
  ExpectInOrder(outline(Hex("A7 84 FFFFFFFF")), {"  Protocol Version: 5 {", "  Truncated Data {"});
  ExpectInOrder(outline(Tag(7, Hex("1B 84 FFFFFFFF"))),
                {"  Client Realm: {", "    Truncated Data {", "  Server Realm: END {"});
}

TEST(Kerberos, HostilePayloadsAreBounded) {
  const auto filled = [](const char* headers, const char* element, size_t times) {
    return Hex(headers) + Repeat(Hex(element), times);
  };
  Bytes nested;   // authorization data of authorization data, the innermost first
  for (int i = 0; i < 3000; ++i) nested = Sequence(Sequence(Tag(0, Number("01")) + Tag(1, Octets(nested))));
  EXPECT_NE(OutlineOf(Wrap(0x62, Sequence(Tag(8, nested)))).find("Nested Data {"), std::string::npos);
  const char* error = "7E 82 FFF8 30 82 FFF0";
  const struct {
    const char* what;
    Bytes payload;
    bool isTcp = false;
  } cases[] = {
      {"nested headers", filled("6A 80", "30 80", 30000)},
      {"nested tags", filled(error, "A4 82 FFFF", 10000)},
      {"nested authorization", Wrap(0x62, Sequence(Tag(8, nested)))},
      {"lengths", filled(error, "A4 84 FFFFFFFF", 10000)},
      {"empty fields", filled(error, "A0 00", 30000)},
      {"empty names", filled("7E 82 FFF8 30 82 FFF0 AA 82 FFE8 30 82 FFE0 A1 82 FFD8 30 82 FFD0", "1B 00", 30000)},
      {"empty codes", filled("6A 82 FFF8 30 82 FFF0 A4 82 FFE8 30 82 FFE0 A8 82 FFD8 30 82 FFD0", "02 00", 30000)},
      {"empty addresses", filled("6A 82 FFF8 30 82 FFF0 A4 82 FFE8 30 82 FFE0 A9 82 FFD8 30 82 FFD0", "30 00", 30000)},
      {"empty PA-DATA", filled("6A 82 FFF8 30 82 FFF0 A3 82 FFE8 30 82 FFE0", "30 00", 30000)},
      {"empty tickets", filled("76 82 FFF8 30 82 FFF0 A2 82 FFE8 30 82 FFE0", "61 00", 30000)},
      {"empty messages", Repeat(Marked(Hex("6A 00")), 10000), true},
  };
  for (const auto& one : cases) {
    double best = 1e9;
    for (int round = 0; round < 3; ++round) {
      TestView view;
      const DecoderFunction decode = one.isTcp ? DecodeSegment : DecodeKerberos;
      best = std::min(best, RunOnSmallStack([&] { view.Run(decode, one.payload); }));
    }
    if (getenv("QXVIEW_SHOW_TIMES")) printf("%-32s %6.2f ms\n", one.what, best);
#if !defined(__SANITIZE_ADDRESS__)
    EXPECT_LT(best, 50) << one.what;   // far below a quadratic walk
#endif
  }
}

}  // namespace
}  // namespace qxview::testing
