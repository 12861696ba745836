#include "decoders/app/rtp_codec_table.h"
#include "decoders/app/rtp_summary.h"
#include "tests/support/decoding.h"

namespace qxview {

namespace testing {
namespace {

const Bytes kRtp = Hex("80 88 6FAE 000004D8 3796CB71 D5D5D5D5");

const Bytes kSenderReport = Hex(R"(
  81 C8 000C 5D931534  DD3AC170 80000000 00007D00 00000005 00000320
  01932DB4 40 FFFFFE 0001BEC2 00000007 C1704D61 0004051C)");
const Bytes kDescription = Hex("81 CA 0004 5D931534 01 03 612E62 02 01 63 00000000");

const Bytes kGoodbye = Hex("82 CB 0004 00000001 00000002 03 627965 00000000");

std::string Described(const Bytes& packet, const RtpStream* stream = nullptr, int32_t showSsrc = 0) {
  char out[200];
  return DescribeRtp(packet.data(), static_cast<int32_t>(packet.size()), stream, showSsrc, out, sizeof out) ? out : "0";
}
Bytes OfType(uint8_t type) { return Hex("80") + Bytes{type} + Hex("0001 00000002 FFFFFFFF"); }

TEST(RtpSummary, OfStaticAndNegotiatedTypes) {
  EXPECT_EQ(Described(kRtp), "RTP Payload: PCMA(G.711) Audio at 8000 Hz, Sequence: 28590, Time: 1240");
  EXPECT_EQ(Described(OfType(33), nullptr, 1),
            "RTP Payload: MP2T Audio/Video at 90000 Hz, Sequence: 1, Time: 2, SSRC: 4294967295");
  EXPECT_EQ(Described(OfType(9)), "RTP Payload: G.722 64K Audio at 7000 Hz, Sequence: 1, Time: 2");
  EXPECT_EQ(Described(OfType(101)), "RTP Payload: Dynamic, Sequence: 1, Time: 2");
  const RtpMedia media[] = {{96, "X-MSRTA", 8000}, {97, "x-msrta", 16000}, {98, "speex", 8000}, {99, nullptr, 0},
                            {0, "iLBC", 8000}, {101, "Telephone-Event", 8000}, {102, "dvi4", 1}, {103, "H224", 4800}};
  const RtpStream stream{8, media};
  EXPECT_EQ(Described(OfType(96), &stream), "RTP Payload: MS RTAudio 8K Audio at 8000 Hz, Sequence: 1, Time: 2");
  EXPECT_EQ(Described(OfType(97), &stream), "RTP Payload: MS RTAudio 16K Audio at 16000 Hz, Sequence: 1, Time: 2");
  EXPECT_EQ(Described(OfType(98), &stream), "RTP Payload: Dynamic, Sequence: 1, Time: 2") << "unknown to the table";
  EXPECT_EQ(Described(OfType(99), &stream), "RTP Payload: Dynamic, Sequence: 1, Time: 2");
  EXPECT_EQ(Described(OfType(101), &stream), "RTP Payload: Telephony Event Audio at 8000 Hz, Sequence: 1, Time: 2");
  EXPECT_EQ(Described(OfType(102), &stream), "RTP Payload: DVI4 8K Audio at 8000 Hz, Sequence: 1, Time: 2");
  EXPECT_EQ(Described(OfType(103), &stream), "RTP Payload: H.224 Data, Sequence: 1, Time: 2") << "no rate to tell";
  EXPECT_EQ(Described(OfType(0), &stream).substr(0, 24), "RTP Payload: PCMU(G.711)") << "static types stay";
}

TEST(RtpSummary, RefusesAndCuts) {
  EXPECT_EQ(Described(OfType(19)), "0");
  EXPECT_EQ(Described(OfType(95)), "0");
  EXPECT_EQ(Described(Hex("40") + Bytes(11)), "0");
  EXPECT_EQ(Described(Hex("80") + Bytes(10)), "0");
  char out[8] = "before";
  EXPECT_EQ(DescribeRtp(kRtp.data(), 16, nullptr, 0, out, sizeof out), 1);
  EXPECT_STREQ(out, "RTP Pay");
  EXPECT_EQ(DescribeRtp(nullptr, 16, nullptr, 0, out, sizeof out), 0);
  EXPECT_STREQ(out, "");
  EXPECT_EQ(DescribeRtp(kRtp.data(), 16, nullptr, 0, out, 0), 0);
  EXPECT_EQ(DescribeRtp(kRtp.data(), 16, nullptr, 0, nullptr, 8), 0);
}

TEST(RtpSummary, CodecNames) {
  EXPECT_STREQ(RtpCodecName(18), "G.729 8K");
  EXPECT_STREQ(RtpCodecName(127), "Dynamic");
  for (const int32_t none : {-1, 19, 35, 95, 128, 255, 256}) EXPECT_STREQ(RtpCodecName(none), "") << none;
  // Places in the table that others count from.
  EXPECT_STREQ(RtpCodecAt(27).name, "G.711 (a-Law) 64K");
  EXPECT_STREQ(RtpCodecAt(59).name, "Telephony Event");
  EXPECT_STREQ(RtpCodecAt(63).name, "8 Bit Linear");
  EXPECT_STREQ(RtpCodecAt(70).name, "IS11172");
  EXPECT_STREQ(RtpCodecAt(84).name, "T.38 Fax");
  EXPECT_STREQ(RtpCodecAt(86).name, "MS RTAudio 8K");
}

std::string DescribedRtcp(const Bytes& packet, int32_t size = 200) {
  std::vector<char> out(static_cast<size_t>(size), 'x');
  const int32_t result = DescribeRtcp(packet.data(), static_cast<int32_t>(packet.size()), out.data(), size);
  return result ? out.data() : "0";
}

TEST(RtcpSummary, FirstPacketAndTheNameOfTheSecond) {
  EXPECT_EQ(DescribedRtcp(kSenderReport + kDescription + kGoodbye),
            "RTCP Sender Report, NTP Time: 3711615344.2147483648, Jitter: 7, Delay: 4.19958 sec, Source Description")
      << "millionths without leading zeros";
  EXPECT_EQ(DescribedRtcp(Hex("80 C9 0001 00000001")), "RTCP Receiver Report");
  EXPECT_EQ(DescribedRtcp(kGoodbye + Hex("80 CD 0002 0000000100000002")), "RTCP Goodbye") << "feedback adds no name";
  EXPECT_EQ(DescribedRtcp(Hex("80 CD 0000") + kGoodbye), "RTCP , Goodbye");
  EXPECT_EQ(DescribedRtcp(Hex("40 C8 0000")), "RTCP ");
  EXPECT_EQ(DescribedRtcp(kSenderReport, 9), "RTCP Sen");
  EXPECT_EQ(DescribedRtcp(Hex("81 C9 0001 00000001")), "0") << "no room for the block that it counts";
  EXPECT_EQ(DescribedRtcp(Hex("80 C9 0002 00000001")), "0") << "more than there is";
  EXPECT_EQ(DescribedRtcp(Hex("80 C9 00")), "0");
  EXPECT_EQ(DescribedRtcp({}), "0");
}

}  // namespace
}  // namespace testing
}  // namespace qxview
