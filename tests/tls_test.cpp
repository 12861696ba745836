// TLS over a stream: records and messages over segments, in order and not, connections that go over to it, and detection.
#include "decoders/tls/tls.h"

#include "core/dispatch.h"
#include "tests/support/transport.h"

namespace qxview::testing {
namespace {


Bytes Record16(uint8_t type, const Bytes& body) {
  return Bytes{type, 3, 3, static_cast<uint8_t>(body.size() >> 8), static_cast<uint8_t>(body.size())} + body;
}
Bytes ServerHello() {
  return Hex("02 000026 0303") + Bytes(32, 7) + Hex("00 C02F 00");
}
Bytes Part(const Bytes& bytes, size_t from, size_t to) {
  return Bytes(bytes.begin() + static_cast<ptrdiff_t>(from), bytes.begin() + static_cast<ptrdiff_t>(to));
}

class TlsStreamTest : public ::testing::Test {
 protected:
  TlsStreamTest() { host_.definitions.AddDefinition("tcp:992=TLS"); }

  std::string Segment(const Bytes& payload, uint32_t sequence, uint16_t source = 992, uint16_t destination = 40000) {
    view_.Run(DecodeTcpOverNetwork,
              Tcp({.sourcePort = source, .destinationPort = destination, .sequence = sequence, .payload = payload}));
    const std::string tree = view_.Text();
    const size_t at = tree.find("\nSSL/TLS");
    return at == std::string::npos ? "" : tree.substr(at + 1);
  }

  DefinitionsHost host_;
  TestView view_{&host_};
};

TEST_F(TlsStreamTest, FindsRecordsAndMessagesOverSegments) {
  const Bytes certificate = Hex("0B 000100") + Bytes(256, 1), done = Hex("0E 000000");
  const Bytes first = Record16(22, ServerHello() + Part(certificate, 0, 100));   // the message goes on in the next record
  const Bytes stream = first + Record16(22, Part(certificate, 100, certificate.size()) + done) + Record16(20, Hex("01")) +
                       Record16(22, Bytes(40, 9)) + Record16(23, Bytes(300, 8)) + Record16(21, Hex("0100"));
  const size_t cut = first.size() + 3;   // in the second record's header
  ExpectInOrder(Segment(Part(stream, 0, cut), 1000),
                {"Server Hello", "Handshake: Certificate", "[Missing: 160 of 256 bytes]", "TLS Record: start of a header"});
  const std::string second = Segment(Part(stream, cut, 500), 1000 + static_cast<uint32_t>(cut));
  ExpectInOrder(second, {"TLS Record: rest of a header, Handshake, TLS 1.2, 164 bytes",
                         "TLS Record Continuation: Handshake, 164 of 164 bytes",
                         "Handshake Continuation: Certificate, 160 of 160 bytes", "Handshake: Server Hello Done",
                         "Change Cipher Spec", "Encrypted Handshake: 40 bytes", "Application Data, TLS 1.2, 300 bytes (cut)"});
  EXPECT_EQ(Segment(Part(stream, cut, 500), 1000 + static_cast<uint32_t>(cut)), second) << "a segment that comes again";
  const std::string third = Segment(Part(stream, 500, stream.size()), 1500);
  ExpectInOrder(third, {"TLS Record Continuation: Application Data", "Alert Description: 0 = close_notify"});
  EXPECT_EQ(Segment(Part(stream, 500, stream.size()), 1700), "") << "behind a gap";
}

TEST_F(TlsStreamTest, GoesOverToTlsBehindAStartInClear) {
  host_.definitions.AddDefinition("tcp:25=SMTP");
  const Bytes hello = Record16(22, ServerHello());
  EXPECT_EQ(Segment(Hex("32 32 30 20 6F 6B 0D 0A"), 100, 25), "");
  ExpectInOrder(Segment(hello, 108, 25), {"SSL/TLS", "Server Hello"});
  ExpectInOrder(Segment(Record16(23, Bytes(30, 1)), 108 + static_cast<uint32_t>(hello.size()), 25),
                {"Encrypted Application Data: 30 bytes"});
  EXPECT_EQ(Segment(Record16(23, Bytes(30, 1)), 5, 25, 50000), "") << "another connection";
}

TEST_F(TlsStreamTest, GoesThroughAProxyWhereConnectionsAreFollowed) {
  host_.definitions.AddDefinition("tcp:8080=HTTP");
  EXPECT_EQ(Segment(Record16(22, ServerHello()), 100, 8080), "");
  host_.settings = {{"Reassembly", "1"}};
  TestView following(&host_);
  const Bytes segment = Tcp({.sourcePort = 8080, .destinationPort = 40000, .sequence = 100,
                             .payload = Record16(22, ServerHello())});
  following.Run(DecodeTcpOverNetwork, segment);
  ExpectInOrder(following.Text(), {"SSL/TLS", "Server Hello"});
}

TEST(Tls, IsRecognisedByHellosAlone) {
  const auto starts = [](const Bytes& bytes) {
    return StartsTlsHello(MakeCursor(bytes.data(), 0, static_cast<int32_t>(bytes.size())));
  };
  const Bytes hello = Record16(22, ServerHello());
  EXPECT_TRUE(starts(hello));
  for (size_t size = 0; size < 11; ++size) EXPECT_FALSE(starts(Part(hello, 0, size))) << size;
  EXPECT_FALSE(starts(Record16(23, ServerHello())));
  EXPECT_FALSE(starts(Record16(22, Hex("02 000002 0303") + Bytes(40, 1)))) << "too short for a hello";
  EXPECT_FALSE(starts(Record16(22, Hex("02 000026 4242") + Bytes(40, 1)))) << "of no version";
}

}  // namespace
}  // namespace qxview::testing
