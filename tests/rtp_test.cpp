#include "decoders/app/rtp_codec_table.h"
#include "decoders/app/rtp_summary.h"
#include "tests/support/decoding.h"

namespace qxview {
int32_t DecodeRtp(const Place& at, Cursor c);
int32_t DecodeRtcp(const Place& at, Cursor c);

namespace testing {
namespace {

const Bytes kRtp = Hex("80 88 6FAE 000004D8 3796CB71 D5D5D5D5");

TEST(Rtp, ShowsTheFixedHeaderAndThePayload) {
  EXPECT_EQ(TreeOfRun(DecodeRtp, kRtp), R"(RTP: PCMA(G.711), Sequence: 28590, Time: 1240, SSRC: 932629361 {0+12}
  Header: 0x80 {0+1}
    10...... : Version = 2 {0+1}
    ..0..... : Padding = Not Set {0+1}
    ...0.... : Extension = Not Set {0+1}
    ....0000 : CSRC Count = 0 {0+1}
  Payload Type: 8 = PCMA(G.711) {1+1}
    1....... : Marker = Set {1+1}
    .0001000 : Payload Type = 8 {1+1}
  Sequence: 28590 {2+2}
  Time: 1240 {4+4}
  SSRC: 0x3796CB71 (932629361) {8+4}
RTP Payload {8:12+4}
)");
}

// Two contributing sources, an extension, four bytes of padding.
Bytes Extended(const std::string& extension) {
  return Hex("B2 60 0001 00000002 00000003  0000000A 0000000B " + extension + " AABB 00000004");
}

TEST(Rtp, SourcesExtensionsAndPadding) {
  const std::string tree = TreeOfRun(DecodeRtp, Extended("BEDE 0002  10FF 00 21 ABCD 0000"));
  EXPECT_NE(tree.find(R"(  CSRC 1: 0x0000000A (10) {12+4}
  CSRC 2: 0x0000000B (11) {16+4}
  Header Extension: Profile 0xBEDE, 2 words {20+12}
    Profile: 0xBEDE {20+2}
    Length: 2 words {22+2}
    Element: ID 1, 1 bytes: FF {24+2}
    Element: ID 2, 2 bytes: AB CD {27+3}
  Padding: 4 bytes {34+4}
RTP Payload {8:32+2}
)"), std::string::npos) << tree;
  EXPECT_NE(tree.find("SSRC: 3 {0+32}\n"), std::string::npos) << "the top line covers the header\n" << tree;

  const std::string two = TreeOfRun(DecodeRtp, Extended("1003 0002  0500 0702 1122 0001"));
  EXPECT_NE(two.find("    Element: ID 5, 0 bytes:  {24+2}\n    Element: ID 7, 2 bytes: 11 22 {26+4}\n"),
            std::string::npos) << two;
  const std::string other = TreeOfRun(DecodeRtp, Extended("0001 0001 01020304"));
  EXPECT_NE(other.find("    Extension Data {24+4}\n"), std::string::npos) << other;
  EXPECT_EQ(TreeOfRun(DecodeRtp, Extended("BEDE 0001 F0112233")).find("Element"), std::string::npos)
      << "15 ends the list";
}

TEST(Rtp, LengthsThatLie) {
  const std::string padded = TreeOfRun(DecodeRtp, Hex("A0 00 0001 00000002 00000003 AA 09"));
  EXPECT_NE(padded.find("RTP Payload {8:12+2}"), std::string::npos) << "more padding than bytes\n" << padded;
  const std::string cut = TreeOfRun(DecodeRtp, Hex("90 00 0001 00000002 00000003 BEDE FFFF 10AA"));
  EXPECT_NE(cut.find("Header Extension: Profile 0xBEDE, 65535 words {12+6}"), std::string::npos) << cut;
  EXPECT_EQ(TreeOfRun(DecodeRtp, Hex("40 00 0001 00000002 00000003")), "") << "another version";
}

const Bytes kSenderReport = Hex(R"(
  81 C8 000C 5D931534  DD3AC170 80000000 00007D00 00000005 00000320
  01932DB4 40 FFFFFE 0001BEC2 00000007 C1704D61 0004051C)");
const Bytes kDescription = Hex("81 CA 0004 5D931534 01 03 612E62 02 01 63 00000000");

TEST(Rtcp, SenderReportAndDescription) {
  EXPECT_EQ(TreeOfRun(DecodeRtcp, kSenderReport + kDescription), R"(RTCP: Sender Report {0+52}
  Header: 0x81 {0+1}
    10...... : Version = 2 {0+1}
    ..0..... : Padding = Not Set {0+1}
    ...00001 : Reception Report Count = 1 {0+1}
  Packet Type: 200 = Sender Report {1+1}
  Length: 12 words (52 bytes) {2+2}
  Sender SSRC: 0x5D931534 (1569920308) {4+4}
  NTP Time: 3711615344.500000 seconds (0xDD3AC170 80000000) {8+8}
  RTP Timestamp: 32000 {16+4}
  Sender's Packet Count: 5 {20+4}
  Sender's Octet Count: 800 {24+4}
  Report Block 1: {28+24}
    SSRC: 0x01932DB4 (26422708) {28+4}
    Fraction Lost: 64 / 256 {32+1}
    Cumulative Packets Lost: -2 {33+3}
    Extended Highest Sequence: 114370 (Cycles: 1, Sequence: 48834) {36+4}
    Interarrival Jitter: 7 {40+4}
    Last Sender Report Timestamp: 0xC1704D61 {44+4}
    Delay Since Last Sender Report: 263452 (4.019958 seconds) {48+4}
RTCP: Source Description {52+20}
  Header: 0x81 {52+1}
    10...... : Version = 2 {52+1}
    ..0..... : Padding = Not Set {52+1}
    ...00001 : Source Count = 1 {52+1}
  Packet Type: 202 = Source Description {53+1}
  Length: 4 words (20 bytes) {54+2}
  Chunk 1: {56+16}
    SSRC: 0x5D931534 (1569920308) {56+4}
    Item: 1 = CNAME, "a.b" {60+5}
    Item: 2 = NAME, "c" {65+3}
    Item: 0 = END {68+4}
)");
}

// The lines of a packet behind its header's.
std::string BodyOf(const Bytes& packet) {
  const std::string tree = TreeOfRun(DecodeRtcp, packet);
  const size_t length = tree.find("  Length: ");
  return length == std::string::npos ? tree : tree.substr(tree.find('\n', length) + 1);
}

const Bytes kGoodbye = Hex("82 CB 0004 00000001 00000002 03 627965 00000000");
const Bytes kExtended = Hex("80 CF 0004 00000001 04 00 0002 0102030405060708");

TEST(Rtcp, OtherTypes) {
  EXPECT_EQ(BodyOf(Hex("80 C9 0002 00000001 AABBCCDD")),
            "  Sender SSRC: 0x00000001 (1) {4+4}\n  Profile-Specific Extension {8+4}\n");
  EXPECT_EQ(BodyOf(kGoodbye), "  SSRC: 0x00000001 (1) {4+4}\n  SSRC: 0x00000002 (2) {8+4}\n"
                              "  Reason: \"bye\" {12+4}\n  Packet Data {16+4}\n");
  EXPECT_EQ(BodyOf(Hex("A3 CC 0004 00000001 74657374 00000007 00000004")),
            "  SSRC: 0x00000001 (1) {4+4}\n  Name: test {8+4}\n  Application Data {12+4}\n  Padding {16+4}\n");
  EXPECT_EQ(BodyOf(Hex("8F CD 0003 00000001 00000002 01020304")),
            "  Sender SSRC: 0x00000001 (1) {4+4}\n  Media Source SSRC: 0x00000002 (2) {8+4}\n"
            "  Feedback Control Information {12+4}\n");
  EXPECT_NE(TreeOfRun(DecodeRtcp, Hex("81 CE 0002 00000001 00000002")).find("Feedback Message Type = 1 = PLI"),
            std::string::npos);
  EXPECT_EQ(BodyOf(kExtended), "  SSRC: 0x00000001 (1) {4+4}\n"
                               "  Report Block: 4 = Receiver Reference Time, 12 bytes {8+12}\n"
                               "    Report Block Data {12+8}\n");
  EXPECT_EQ(BodyOf(Hex("80 D0 0001 00000001")), "  Packet Data {4+4}\n") << "a type without a name";
}

TEST(Rtcp, WhatIsNoPacket) {
  EXPECT_EQ(TreeOfRun(DecodeRtcp, Hex("41 C8 0000")), "") << "another version";
  EXPECT_EQ(TreeOfRun(DecodeRtcp, Hex("81 48 0000")), "") << "a type of RTP";
  EXPECT_NE(TreeOfRun(DecodeRtcp, kGoodbye + Hex("01020304")).find("RTCP Data {8:20+4}\n"), std::string::npos);
  EXPECT_NE(TreeOfRun(DecodeRtcp, Hex("9F C8 FFFF 00000001")).find("RTCP: Sender Report {0+8}\n"), std::string::npos);
}

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
