// What secrets open: key logs and what is wrong with them, the recorded TLS connections as they are, damaged, reordered and
// under other secrets, RADIUS (RFC 2865, section 7.1) and TACACS+.
#include <gtest/gtest.h>

#include <fstream>

#include "core/crypto.h"
#include "core/frame_entry.h"
#include "core/tls_secrets.h"
#include "decoders/states.h"
#include "files/capture_reader.h"
#include "files/record_builder.h"
#include "host/key_log.h"
#include "tests/support/cases.h"
#include "tests/support/transport.h"

namespace qxview {

int32_t DecodeRadius(const Place& at, Cursor c);
int32_t DecodeTacacsPlus(const Place& at, Cursor c);

namespace testing {
namespace {

bool Contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

int Count(const std::string& text, const std::string& part) {
  int count = 0;
  for (size_t at = 0; (at = text.find(part, at)) != std::string::npos; ++at) ++count;
  return count;
}

TEST(KeyLog, TakesLinesInAnyPieces) {
  TestView test;
  const View* view = &test.view();
  const std::string random(64, 'a'), secret(96, '1');
  const std::string text = "# comment\r\n\r\nCLIENT_RANDOM " + random + " " + secret + "\r\nNEW_LABEL of another day\n" +
                           "CLIENT_TRAFFIC_SECRET_0\t" + random + "  " + std::string(64, '2') + "\nRSA " +
                           std::string(16, 'B') + " " + secret;
  KeyLog log(view);
  for (const char c : text) log.Take({&c, 1});
  EXPECT_EQ(log.Finish(), "");
  const Bytes id(32, 0xAA), other(32, 0xAB), start(8, 0xBB);
  const auto recall = [&](TlsSecretKind kind, const Bytes& of) {
    const TlsSecret found = RecallTlsSecret(view, kind, {of.data(), static_cast<int32_t>(of.size())});
    return Bytes(found.bytes, found.bytes + found.length);
  };
  EXPECT_EQ(recall(TlsSecretKind::kMaster, id), Bytes(48, 0x11));
  EXPECT_EQ(recall(TlsSecretKind::kClientTraffic, id), Bytes(32, 0x22));
  EXPECT_EQ(recall(TlsSecretKind::kEncryptedPremaster, start), Bytes(48, 0x11));
  EXPECT_TRUE(recall(TlsSecretKind::kMaster, other).empty());
  EXPECT_TRUE(recall(TlsSecretKind::kServerTraffic, id).empty());
}

TEST(KeyLog, NamesTheFirstFaultyLine) {
  const std::string random(64, 'a'), secret(96, '1'), good = "CLIENT_RANDOM " + random + " " + secret + "\n";
  const std::pair<std::string, std::string> cases[] = {
      {"", ""},
      {good + good, ""},
      {good + "CLIENT_RANDOM " + random + "\n", "line 2 wants 64 and 96 hexadecimal digits behind CLIENT_RANDOM"},
      {good + "CLIENT_RANDOM " + random + "0 " + secret + "\n\nRSA x y\n",
       "line 2 wants 64 and 96 hexadecimal digits behind CLIENT_RANDOM, the first of 2 faulty lines"},
      {"EXPORTER_SECRET " + random + " " + secret.substr(1) + "\n",
       "line 1 wants 64 and 64 to 128 hexadecimal digits behind EXPORTER_SECRET"},
      {"CLIENT_RANDOM " + random + " " + secret + " more", "line 1 wants 64 and 96 hexadecimal digits behind CLIENT_RANDOM"},
      {std::string(5000, 'x') + "\n" + good, "line 1 is longer than 4096 bytes"},
      {std::string("\0\xFF\n\0", 4), "there is no secret of TLS in it"},
  };
  for (const auto& [text, fault] : cases) {
    TestView test;
    KeyLog log(&test.view());
    log.Take(text);
    EXPECT_EQ(log.Finish(), fault);
  }
}

// The recorded connections: their frames, and the secrets in the capture.
struct Recorded {
  std::vector<std::vector<uint8_t>> records;
  std::string secrets;
};
Recorded ReadRecorded(const char* sample) {
  Recorded recorded;
  std::string message;
  const auto reader = OpenCapture(sample, &message);
  EXPECT_TRUE(reader) << message;
  reader->HandSecretsTo([&](uint32_t kind, const uint8_t* piece, size_t length, bool) {
    EXPECT_EQ(kind, kKeyLogSecrets);
    recorded.secrets.append(reinterpret_cast<const char*>(piece), length);
  });
  const auto builder = std::make_unique<RecordBuilder>();
  CaptureFrame frame;
  while (reader->Next(&frame) == ReadResult::kFrame) {
    const FrameRecord* record = builder->Build(frame);
    const auto* bytes = reinterpret_cast<const uint8_t*>(record);
    recorded.records.emplace_back(bytes, bytes + record->recordLength);
  }
  return recorded;
}

class TlsOpening : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!HasLibcrypto()) GTEST_SKIP() << "no libcrypto here";
    recorded_ = ReadRecorded(QXVIEW_SAMPLES_DIR "/tls_keys.pcapng");
  }
  // All lines, with the secrets and the records as they are given.
  std::string Decode(const std::vector<std::vector<uint8_t>>& records, const std::string& secrets) {
    DefinitionsHost host;
    TestView test(&host);
    KeyLog log(&test.view());
    log.Take(secrets);
    log.Finish();
    std::string text;
    for (const std::vector<uint8_t>& bytes : records) {
      alignas(8) uint8_t record[2048];
      if (bytes.size() > sizeof record) continue;
      std::memcpy(record, bytes.data(), bytes.size());
      ClearDecodeTree(&test.view(), &test.tree(), true);
      DecodeFrame(&test.view(), reinterpret_cast<FrameRecord*>(record), 0, 0, 0);
      text += test.Text();
    }
    return text;
  }
  Recorded recorded_;
};

// Records of DTLS 1.3 by its final form, made by another implementation of what seals them: a long and a short number, one
// that is far from the last, and the epoch behind new keys.
TEST_F(TlsOpening, ShortHeadersOfDtlsAreUncovered) {
  struct Made {
    const char *suite, *first, *far, *updated;
  };
  constexpr Made kMade[] = {
      {"1301", "238093EA09F90B48158E404B0F46F00498B6BC932518D0EE7968", "2F337C00131C2FF30AD3C47C591ED13E00DC113CC85B343C",
       "2CAB0100165625E703FAB5F1A8EF0E939A8AC80C069AFBB006E818"},
      {"1303", "23F3E79EF7684AC1BE32EA5266D95F4C879DD4544D11DFD1F1C3", "2F7F7500139700F365B7152C194AC45C6348BE4A3683435B",
       "2C58D5001689D4F8D299EAC6A0028EBDD013F98753EDF6830349E0"}};
  for (const Made& made : kMade) {
    const auto hello = [&](const char* type, const Bytes& more) {   // of one message, its length in a byte
      const Bytes body = Hex("FEFD") + Bytes(32, 0x5A) + Hex("00") + more;
      const uint8_t size = static_cast<uint8_t>(body.size());
      return Hex("16 FEFD 0000 000000000000 00") + Bytes{static_cast<uint8_t>(size + 12)} + Hex(type) + Bytes{0, 0, size} +
             Hex("0000 000000 0000") + Bytes{size} + body;
    };
    const auto framed = [](const Bytes& payload, bool fromServer) {
      Bytes datagram = IPv4(17, fromServer ? Udp(443, 5000, payload) : Udp(5000, 443, payload));
      if (fromServer) std::swap_ranges(datagram.begin() + 12, datagram.begin() + 16, datagram.begin() + 16);
      return Ethernet(0x0800, datagram);
    };
    std::string digits;
    for (int i = 0; i < 32; ++i) digits += "0123456789abcdef"[i / 16], digits += "0123456789abcdef"[i % 16];
    std::string random, shown;
    for (int i = 0; i < 32; ++i) random += "5a";
    DefinitionsHost host;
    host.settings = {{"IgnoreChecksums", "1"}};
    TestView test(&host);
    KeyLog log(&test.view());
    log.Take("SERVER_TRAFFIC_SECRET_0 " + random + " " + digits + "\n");
    const Bytes server = Hex(made.suite) + Hex("00 0006 002B 0002 FEFC");
    test.Decode(framed(hello("01", Hex("00 0002") + Hex(made.suite) + Hex("0100")), false));
    for (const Bytes& payload : {hello("02", server), Hex(made.first), Hex(made.far), Hex(made.updated), Hex(made.far)}) {
      test.Decode(framed(payload, true));
      shown += test.Text();
    }
    for (const char* text : {"Sequence Number: 0 {", "Padding: 2 bytes", "Sequence Number: 300 {",
                             "Alert Description: 0 = close_notify", "Epoch: 4 {"}) {
      EXPECT_TRUE(Contains(shown, text)) << made.suite << text << shown;
    }
    EXPECT_EQ(Count(shown, "Decrypted Application Data: 5 bytes"), 2) << shown;
    EXPECT_EQ(Count(shown, "Decryption: failed"), 0) << shown;
  }
}

TEST_F(TlsOpening, EveryRecordedRecordOpens) {
  const std::string all = Decode(recorded_.records, recorded_.secrets);
  EXPECT_EQ(Count(all, "Decryption: "), 0);
  EXPECT_EQ(Count(all, "Decrypted Application Data: "), 50);
  EXPECT_GE(Count(all, "Request Line: GET /page HTTP/1.0"), 18);
  for (const char* text : {"Handshake: End of Early Data", "Handshake: Key Update", "Handshake: Encrypted Extensions"}) {
    EXPECT_TRUE(Contains(all, text)) << text;
  }
  const std::string closed = Decode(recorded_.records, "");
  EXPECT_EQ(Count(closed, "Decr"), 0) << "nothing is said of what the user has no secrets for";
}

TEST_F(TlsOpening, OtherSecretsAndDamageOpenNothing) {
  std::string wrong = recorded_.secrets;
  for (size_t at = 0; (at = wrong.find('\n', at)) != std::string::npos; ++at) wrong[at - 1] = wrong[at - 1] == '0' ? '1' : '0';
  const std::string all = Decode(recorded_.records, wrong);
  EXPECT_EQ(Count(all, "Decrypted"), 0);
  EXPECT_GT(Count(all, "Decryption: failed"), 100);
  std::vector<std::vector<uint8_t>> damaged = recorded_.records;
  for (std::vector<uint8_t>& record : damaged) record[record.size() - 1] ^= 1;   // ends records, spares hellos for the most part
  EXPECT_EQ(Count(Decode(damaged, recorded_.secrets), "GET /page"), 0);
}

TEST_F(TlsOpening, SegmentsComeAgainAndAreMissing) {
  std::vector<std::vector<uint8_t>> twice;
  for (const std::vector<uint8_t>& record : recorded_.records) {
    twice.push_back(record);
    twice.push_back(record);
  }
  const std::string again = Decode(twice, recorded_.secrets);
  EXPECT_GE(Count(again, "Request Line: GET /page HTTP/1.0"), 2 * 18);
  const int whole = Count(Decode(recorded_.records, recorded_.secrets), "Status Line: ");
  std::vector<std::vector<uint8_t>> thinned;   // without the requests
  for (const std::vector<uint8_t>& record : recorded_.records) {
    const bool isRequest = Contains(Decode({record}, recorded_.secrets), "Encrypted Application Data") &&
                           record[record.size() - 1] % 2 == 0;
    if (!isRequest) thinned.push_back(record);
  }
  const std::string rest = Decode(thinned, recorded_.secrets);
  EXPECT_GT(Count(rest, "Status Line: "), whole / 3);
}

class QuicOpening : public TlsOpening {
 protected:
  void SetUp() override {
    TlsOpening::SetUp();
    recorded_ = ReadRecorded(QXVIEW_SAMPLES_DIR "/quic.pcap");
    std::ifstream keys(QXVIEW_SAMPLES_DIR "/quic.keys");
    recorded_.secrets.assign(std::istreambuf_iterator<char>(keys), {});
  }
};

TEST_F(QuicOpening, EveryRecordedPacketOpensAndNoDamagedOne) {
  const std::string all = Decode(recorded_.records, recorded_.secrets);
  EXPECT_EQ(Count(all, "Protected Payload: "), 75);
  EXPECT_EQ(Count(all, "Packet Number: "), 75);
  EXPECT_EQ(Count(all, "Key Phase = 1"), 22);
  EXPECT_EQ(Count(all, "Header: :path: /"), 5);
  EXPECT_EQ(Count(all, "Header: :status: 200"), 5);
  EXPECT_EQ(Count(all, "Text: <html><body>Hello over HTTP/3</body></html>"), 3);
  EXPECT_EQ(Count(Decode(recorded_.records, ""), "Packet Number: "), 12) << "Initial packets need no secrets";
  std::string wrong = recorded_.secrets;
  for (size_t at = 0; (at = wrong.find('\n', at)) != std::string::npos; ++at) wrong[at - 1] = wrong[at - 1] == '0' ? '1' : '0';
  const std::string closed = Decode(recorded_.records, wrong);
  EXPECT_EQ(Count(closed, "Packet Number: "), 12);
  EXPECT_EQ(Count(closed, "(the keys do not open it)"), 63);
  std::vector<std::vector<uint8_t>> damaged = recorded_.records;
  for (std::vector<uint8_t>& record : damaged) record[record.size() - 1] ^= 1;
  EXPECT_EQ(Count(Decode(damaged, recorded_.secrets), "HTTP/3: HEADERS"), 0);
}

TEST_F(QuicOpening, PacketsComeAgainAndAreMissing) {
  // Each packet twice gives the same lines twice; without every third, and without the packets around an update of keys, those
  // that are there open all the same.
  std::vector<std::vector<uint8_t>> twice, few, behindUpdate;
  for (size_t i = 0; i < recorded_.records.size(); ++i) {
    twice.insert(twice.end(), 2, recorded_.records[i]);
    if (i % 3 != 2) few.push_back(recorded_.records[i]);
    if (i < 40 || i > 52) behindUpdate.push_back(recorded_.records[i]);
  }
  EXPECT_EQ(Count(Decode(twice, recorded_.secrets), "Header: :path: /"), 10);
  for (const auto& records : {few, behindUpdate}) {
    const std::string text = Decode(records, recorded_.secrets);
    EXPECT_EQ(Count(text, "(the keys do not open it)"), 0);
    EXPECT_GT(Count(text, "Key Phase = 1"), 5);
  }
}

TEST(RadiusSecrets, OpenAndProve) {
  const Bytes request = Hex(
      "01000038 0F403F9473978057BD83D5CB98F4227A 01066E656D6F 02120DBE708D93D413CE3196E43F782A0AEE 0406C0A80110 050600000003");
  const Bytes reply = Hex("02000026 86FE220E7624BA2A1005F6BF9B55E0B2 060600000001 0F0600000000 0E06C0A80103");
  const auto decode = [&](const char* secret, std::vector<Bytes> packets) {
    TestView test;
    std::strcpy(test.view().engine->settings.radiusSecret, secret);
    std::string text;
    for (const Bytes& packet : packets) {
      test.Run(DecodeRadius, packet);
      text += test.Text();
    }
    return text;
  };
  EXPECT_TRUE(Contains(decode("xyzzy5461", {request}), "    User-Password: arctangent {28+10}\n"));
  EXPECT_TRUE(Contains(decode("xyzzy5461", {request, reply}), "  Authenticator Status: Valid {4+16}\n"));
  EXPECT_TRUE(Contains(decode("xyzzy5462", {request, reply}), "  Authenticator Status: Invalid {4+16}\n"));
  EXPECT_TRUE(Contains(decode("xyzzy5461", {reply}), "  Authenticator Status: Not Checked (Request Not Seen) {4+16}\n"));
  EXPECT_FALSE(Contains(decode("", {request, reply}), "Status: "));
  const Bytes cut(reply.begin(), reply.end() - 3);
  EXPECT_TRUE(Contains(decode("xyzzy5461", {request, cut}), "Not Checked (Packet Cut)"));
}

TEST(TacacsSecrets, OpenBodies) {
  const Bytes request = Hex("C00101005AFE0001000000205F95A011B3C7AA0793772E854891955E4F88D73CEAD80B50ED53791E02BA4E33"),
              reply = Hex("C00102005AFE000100000018741B23701727F1D5719AD05BB01159144B67A8081E920F00");
  const auto decode = [&](const char* secret, const Bytes& packet) {
    TestView test;
    std::strcpy(test.view().engine->settings.tacacsSecret, secret);
    test.Run(DecodeTacacsPlus, packet);
    return test.Text();
  };
  ExpectInOrder(decode("sample", request), {"Encrypted Body: ", "Action: 1 = LOGIN {12+1}", "User: alice {20+5}",
                                           "Password: secret {38+6}"});
  ExpectInOrder(decode("sample", reply), {"Status: 2 = FAIL", "Server Message: Access not granted"});
  EXPECT_TRUE(Contains(decode("simple", request), "Body: Not Decrypted (Wrong Secret)"));
  EXPECT_FALSE(Contains(decode("", request), "Decrypted"));
}

}  // namespace
}  // namespace testing
}  // namespace qxview
