#include <cstring>

#include "decoders/net/dynamic_udp.h"
#include "platform/platform.h"
#include "tests/support/transport.h"

namespace qxview::testing {
namespace {

Bytes Ascii(const std::string& text) { return Bytes(text.begin(), text.end()); }

const Bytes kMsrpc = Hex("05 00 00 83 00000000 0018 0000 00000001 00000000 0000 0005");
const Bytes kTds = Hex("06 01 0008 0000 01 00");
const Bytes kTns = Hex("0008 0000 0B 00 0000");
const Bytes kReply = Hex("7A3F0001 00000001 00000000 00000000 00000000 00000000");
const Bytes kFix = Ascii("8=FIX.4.2\0019=5\001");
const Bytes kSip = Ascii("SIP/2.0 200 OK\r\nVia: x\r\n\r\n");
const Bytes kGiop = Ascii("GIOP") + Hex("01 00 00 05 00000000");
const Bytes kFcip = Hex("01 01 FE FE  01 01 FE FE  00 00 FF FF  0013 FFEC") + Bytes(60);
const Bytes kHandshake = Hex("13") + Ascii("BitTorrent protocol");
const Bytes kRtp = Hex("80 00 0007 00000009 00000001 D5D5");
const Bytes kReceiverReport = Hex(R"(
  82 C9 000D 00000001
  00000002 00 000000 0001 1234 00000009 00000000 00000000
  00000003 00 000000 0009 0234 00000007 00000000 00000000)");

struct Learnt {
  uint32_t transport;
  int32_t identifier;
  uint8_t lastOctet;
  uint16_t port;
  int32_t port2, port3;
  bool extra;
  DynamicRecord record;
};

// A host that notes what is learnt beside learning it.
class Detection : public ::testing::Test {
 protected:
  void SetUp() override {
    testNetwork = TestNetwork{};
    learnt_.clear();
    host_.host.learn = [](void* user, uint32_t transport, int32_t identifier, const AddressSlot* address,
                          uint16_t port, int32_t port2, int32_t port3, const DynamicRecord* extra) {
      learnt_.push_back({transport, identifier, address->address[15], port, port2, port3, extra != nullptr,
                         extra ? *extra : DynamicRecord{}});
      DefinitionsHost::DefinitionsOf(user).Learn(transport, identifier, address, port, extra);
    };
  }
  TestView& View() {
    if (!view_) {
      view_ = std::make_unique<TestView>(&host_);
      view_->loader = PlatformLibraryLoader();
    }
    return *view_;
  }
  // The top-level lines behind the transport's own, as one text.
  std::string OverTcp(const Bytes& payload, uint16_t source = 40001, uint16_t destination = 40002) {
    const TcpParts parts{.sourcePort = source, .destinationPort = destination, .payload = payload};
    return Tail(View().Run(DecodeTcpOverNetwork, Tcp(parts)));
  }
  std::string OverUdp(const Bytes& payload, uint16_t source = 5004, uint16_t destination = 5006) {
    return Tail(View().Run(DecodeUdpOverNetwork, Udp(source, destination, payload)));
  }
  std::string Tail(int32_t result) {
    EXPECT_EQ(result, 1);
    std::string tail;
    const DecodeTree& tree = View().tree();
    for (LineHandle line = tree.NextSibling(tree.FirstChild(0)); line; line = tree.NextSibling(line)) {
      if (!tail.empty()) tail += '|';
      tail += View().LineText(line);
    }
    return tail;
  }
  int32_t LastLearnt() const { return learnt_.empty() ? 0 : learnt_.back().identifier; }

  DefinitionsHost host_;
  static inline std::vector<Learnt> learnt_;
  std::unique_ptr<TestView> view_;
};

TEST_F(Detection, EveryRowOverTcpLearnsItsIdentifier) {
  const struct {
    Bytes payload;
    int32_t identifier;
  } rows[] = {{kMsrpc, 0x1050080}, {kTds, 0x1030061}, {kTns, 0x1030060}, {Hex("80000018") + kReply, 0x1010063},
              {kFix, 0x105009A}, {kSip, 0x1010064}, {kGiop, 0x10500B1}, {kFcip, 0x1010070}, {kHandshake, 0x101007E},
              {Hex("00 000023 FF534D42 72 00000000 18 53C8") + Bytes(23), 0x1010065}};
  uint16_t source = 40001;
  for (const auto& row : rows) {
    EXPECT_NE(OverTcp(row.payload, source), "TCP Data");
    ASSERT_FALSE(learnt_.empty());
    const Learnt& learnt = learnt_.back();
    EXPECT_EQ(learnt.transport, 0x1000000u);
    EXPECT_EQ(learnt.identifier, row.identifier);
    EXPECT_EQ(learnt.port, source) << "the source's";
    EXPECT_EQ(learnt.lastOctet, 1) << "the source's";
    EXPECT_TRUE(learnt.port2 == -1 && learnt.port3 == -1 && !learnt.extra);
    ++source;
  }
  EXPECT_EQ(learnt_.size(), std::size(rows));
}

TEST_F(Detection, PayloadsWithoutDecoderAreOneBlockUnderTheirName) {
  EXPECT_EQ(OverTcp(kTns, 40003), "Oracle TNS Data");
  EXPECT_EQ(OverTcp(Bytes(20), 40005), "TCP Data");
  EXPECT_EQ(OverUdp(kReply, 40006), "ONC RPC Data");
  host_.host.protocolDisplayName = nullptr;
  EXPECT_EQ(OverTcp(kTns, 40007), "Oracle TNS Data") << "a host without names";
}

TEST_F(Detection, TheFirstRowThatKnowsThePayloadHasIt) {
  const Bytes sipOverFix = kSip + kFix;
  OverTcp(sipOverFix, 40001);
  EXPECT_EQ(LastLearnt(), 0x105009A) << "FIX stands before SIP";
  OverTcp(kTds + kFix, 40002);
  EXPECT_EQ(LastLearnt(), 0x1030061) << "TDS stands before FIX";
  view_.reset();
  host_.settings = {{"DetectionFlags", "0"}};
  OverTcp(sipOverFix, 40003);
  EXPECT_EQ(LastLearnt(), 0x1010064) << "FIX is off";
}

TEST_F(Detection, SettingsSwitchRowsOff) {
  host_.settings = {{"DetectionFlags", "0"}, {"DetectionFlags2", "0xFFFFFBFF"}, {"TdsDetectionOff", "1"}};
  for (const Bytes& payload : {kMsrpc, kFix, kGiop, kTds}) EXPECT_EQ(OverTcp(payload), "TCP Data");
  EXPECT_EQ(OverUdp(kRtp), "UDP Data");
  EXPECT_EQ(OverUdp(kReceiverReport), "UDP Data");
  EXPECT_TRUE(learnt_.empty());
  EXPECT_NE(OverTcp(kHandshake), "TCP Data");
  EXPECT_NE(OverUdp(kReply), "UDP Data") << "the others have no switch";
  view_.reset();
  host_.settings = {{"DynamicDetection", "0"}};
  EXPECT_EQ(OverTcp(kHandshake, 40009), "TCP Data");
}

TEST_F(Detection, OverUdpTheRecordIsLearntToo) {
  EXPECT_EQ(OverUdp(kRtp), "RTP: PCMU(G.711), Sequence: 7, Time: 9, SSRC: 1|RTP Payload");
  ASSERT_EQ(learnt_.size(), 1u);
  EXPECT_EQ(learnt_[0].transport, 0x2000000u);
  EXPECT_EQ(learnt_[0].identifier, 0x2050059);
  EXPECT_EQ(learnt_[0].port, 5004);
  EXPECT_TRUE(learnt_[0].extra && learnt_[0].record.found == 1 && learnt_[0].record.first == 7 &&
              learnt_[0].record.second == 9);
  OverUdp(kReceiverReport, 6001);
  ASSERT_EQ(learnt_.size(), 2u);
  EXPECT_EQ(learnt_[1].identifier, 0x205005A);
  EXPECT_EQ(learnt_[1].record.first, 0x1234u) << "highest sequence number";
  EXPECT_EQ(learnt_[1].record.second, 9u) << "greatest jitter";
  OverUdp(kReply, 6002);
  EXPECT_TRUE(learnt_.back().identifier == 0x201008E && !learnt_.back().extra && learnt_.back().port == 6002);
}

TEST_F(Detection, WhatWasLearntResolvesWithoutDetection) {
  OverUdp(kRtp);
  const Bytes otherVersion = Hex("00") + Bytes(kRtp.begin() + 1, kRtp.end());
  EXPECT_EQ(OverUdp(otherVersion), "RTP Data") << "resolved, declined by the decoder";
  EXPECT_EQ(OverUdp(kRtp), "RTP: PCMU(G.711), Sequence: 7, Time: 9, SSRC: 1|RTP Payload");
  EXPECT_EQ(learnt_.size(), 1u) << "and not detected again";
  EXPECT_EQ(OverUdp(otherVersion, 5005), "UDP Data") << "another port";
  std::swap(testNetwork.source, testNetwork.destination);
  EXPECT_EQ(OverUdp(otherVersion, 7000, 5004), "RTP Data") << "the way back";
}

TEST_F(Detection, TheExternalPluginIsAskedOnItsPortInItsPlace) {
  const std::string plugin = std::string(QXVIEW_PLUGIN_DIR) + "/external_decoder" QXVIEW_PLUGIN_SUFFIX;
  host_.settings = {{"ExternalDecoder", plugin}, {"ExternalDecoderPort", "4242"}};
  const Bytes own = Hex("EE 01 02");
  EXPECT_EQ(OverTcp(own, 4242, 40000), "External: 3 bytes, depth 4, 4242 -> 40000");
  EXPECT_EQ(OverTcp(own, 40000, 4242), "External: 3 bytes, depth 4, 40000 -> 4242");
  EXPECT_EQ(OverTcp(own, 4241, 4243), "TCP Data");
  EXPECT_EQ(OverTcp(Hex("DD"), 4242, 40000), "TCP Data") << "declined";
  EXPECT_TRUE(learnt_.empty());
  EXPECT_EQ(OverTcp(kHandshake, 4242, 40000).find("External"), 0u) << "before BitTorrent";
  OverTcp(kSip, 4242, 40000);
  EXPECT_EQ(LastLearnt(), 0x1010064) << "behind SIP";
  view_.reset();
  host_.settings[0].second = "missing.so";
  EXPECT_EQ(OverTcp(own, 4243, 4242), "TCP Data");
}

struct Determined {
  int32_t result;
  uint32_t identifier = 7;
  uint16_t subType = 7, zero = 7;
  DynamicRecord record{7, 7, 7};
};
Determined Determine(const Bytes& payload, uint32_t flags = 3, uint16_t source = 5004, uint16_t destination = 5006) {
  Determined made{};
  const DetectionSettings settings{flags, 0, 0};
  const std::unique_ptr<uint8_t[]> exact(new uint8_t[payload.size() + 1]);
  std::copy(payload.begin(), payload.end(), exact.get());
  made.result = DetermineDynamicUDPPrototol(&settings, source, destination, exact.get(),
                                            static_cast<int32_t>(payload.size()), &made.identifier, &made.subType,
                                            &made.zero, &made.record);
  EXPECT_EQ(made.zero, 0);
  return made;
}
void ExpectNone(const Determined& made) {
  EXPECT_EQ(made.result, 0);
  EXPECT_EQ(made.identifier, 0u);
  EXPECT_EQ(made.subType, 0xFFFF);
}
Bytes RtpOf(const std::string& start) { return Hex(start) + Hex("0007 00000009 00000001"); }

TEST(DetermineDynamicUdp, PortsAndTypesOfRtp) {
  const Determined made = Determine(RtpOf("80 00"));
  EXPECT_EQ(made.result, 1);
  EXPECT_EQ(made.identifier, 0x2050059u);
  EXPECT_EQ(made.subType, 0);
  EXPECT_TRUE(made.record.found == 1 && made.record.first == 7 && made.record.second == 9);
  ExpectNone(Determine(RtpOf("80 00"), 3, 1024, 5006));
  ExpectNone(Determine(RtpOf("80 00"), 3, 5004, 1024));
  EXPECT_EQ(Determine(RtpOf("80 00"), 3, 1025, 1025).result, 1);
  ExpectNone(Determine(RtpOf("80 00"), 2));
  ExpectNone(Determine(RtpOf("40 00")));
  ExpectNone(Determine(Hex("80 00 0007 00000009 000000"), 3));
  for (int type = 0; type < 256; ++type) {
    const int low = type & 0x7F;
    const bool passes = low >= 96 || low <= 18 || low == 25 || low == 26 || low == 28 || (low >= 31 && low <= 34);
    Bytes payload = RtpOf("80 00");
    payload[1] = static_cast<uint8_t>(type);
    EXPECT_EQ(Determine(payload, 1).result, passes ? 1 : 0) << type;
    EXPECT_EQ(Determine(payload, 1).subType, passes ? low : 0xFFFF);
  }
}

TEST(DetermineDynamicUdp, HeaderAndExtensionMustFit) {
  const Determined refused = Determine(Hex("88 FA 69") + Bytes(60));
  ExpectNone(refused);
  EXPECT_EQ(refused.record.found, 0);
  EXPECT_EQ(Determine(Hex("88 FA 68") + Bytes(60)).result, 1);
  ExpectNone(Determine(RtpOf("81 60") + Bytes(3)));
  EXPECT_EQ(Determine(RtpOf("81 60") + Bytes(4)).result, 1);
  // A cut extension header leaves what the fixed header said.
  const Determined cut = Determine(RtpOf("90 60") + Bytes(3));
  EXPECT_TRUE(cut.result == 0 && cut.identifier == 0x2050059 && cut.subType == 96 && cut.record.found == 1);
  ExpectNone(Determine(RtpOf("90 60") + Hex("BEDE 0001") + Bytes(3)));
  EXPECT_EQ(Determine(RtpOf("90 60") + Hex("BEDE 0001") + Bytes(4)).result, 1);
  ExpectNone(Determine(RtpOf("90 60") + Hex("BEDE FFFF") + Bytes(40)));
}

TEST(DetermineDynamicUdp, Rtcp) {
  const Determined made = Determine(kReceiverReport, 3, 80, 80);
  EXPECT_TRUE(made.result == 1 && made.identifier == 0x205005A && made.subType == 201) << "on any ports";
  EXPECT_TRUE(made.record.found == 1 && made.record.first == 0x1234 && made.record.second == 9);
  ExpectNone(Determine(kReceiverReport, 1));
  const Bytes goodbye = Hex("81 CB 0001 00000001"), description = Hex("81 CA 0002 00000001 00000000");
  const Determined noReports = Determine(Hex("80 C9 0001 00000001") + goodbye);
  EXPECT_TRUE(noReports.result == 1 && noReports.record.found == 0);
  EXPECT_EQ(Determine(description + goodbye).subType, 202);
  EXPECT_EQ(Determine(Hex("81 CC 0002 00000001 61626364") + Hex("81 CD 0002 00000001 00000002")).subType, 204);
  EXPECT_EQ(Determine(goodbye + Hex("A0 C9 0002 00000001 00000004")).result, 1) << "padding on the last";
  for (const char* broken : {
           "41 CB 0001 00000001",                               // version
           "81 CD 0002 00000001 00000002",                      // feedback alone
           "81 C8 0001 00000001",                               // no room for the sender's part
           "81 C9 0001 00000001",                               // no room for the block
           "82 CB 0001 00000001",                               // no room for the sources
           "80 CB 0001 00000000", "81 CB 0002 00000001 00000001",   // a reason that is none, filling that is not zero
           "81 CB 0002 00000001 04616263",                      // a reason past the packet
           "81 CB 0001 00000001 00",                            // half a packet behind
           "81 CB 0002 00000001",                               // longer than the payload
           "81 CA 0002 00000001 00000001",                      // filling that is not zero
           "81 CA 0002 00000001 01010101",                      // a chunk without an end
           "81 CA 0003 00000001 00000000 00000000",             // more than its chunks
           "81 CC 0002 00000001 61626300",                      // a name that is not printable
           "A0 C9 0002 00000001 00000004 81 CB 0001 00000001",  // padding before the last
           "A0 C9 0002 00000001 00000003", "A0 C9 0002 00000001 0000000C", "A0 C9 0002 00000001 00000000"}) {
    ExpectNone(Determine(Hex(broken)));
  }
}

TEST(DetermineDynamicUdp, MissingArguments) {
  const DetectionSettings settings{3, 0, 0};
  uint32_t identifier = 7;
  const auto ask = [&](const DetectionSettings* by, const uint8_t* data, int32_t length, uint32_t* out) {
    return DetermineDynamicUDPPrototol(by, 5004, 5006, data, length, out, nullptr, nullptr, nullptr);
  };
  EXPECT_EQ(ask(&settings, kRtp.data(), 14, nullptr), 1);
  EXPECT_EQ(ask(nullptr, kRtp.data(), 14, &identifier), 0);
  EXPECT_EQ(identifier, 0u);
  EXPECT_EQ(ask(&settings, nullptr, 14, nullptr), 0);
  EXPECT_EQ(ask(&settings, kRtp.data(), -1, nullptr), 0);
}

TEST(AddDynamicFtpDataPort, ReadsSixNumbersBehindTheFirstParenthesis) {
  const auto read = [](const std::string& text) -> std::string {
    AddressSlot slot;
    std::memset(&slot, 0xAA, sizeof slot);
    uint16_t port = 7;
    if (!AddDynamicFtpDataPort(text.data(), static_cast<int32_t>(text.size()), &slot, &port)) {
      EXPECT_TRUE(port == 7 && slot.kind == 0xAAAAAAAA) << "nothing is written";
      return "none";
    }
    EXPECT_EQ(slot.kind, 1u);
    for (int i = 0; i < 12; ++i) EXPECT_EQ(slot.address[i], 0);
    char address[kIPv4TextSize];
    FormatIPv4(slot.address + 12, address);
    std::string made = address;
    return made.append(":").append(std::to_string(port));
  };
  EXPECT_EQ(read("227 Entering Passive Mode (10,0,0,1,4,1).\r\n"), "10.0.0.1:1025");
  EXPECT_EQ(read("(192,168,255,0,255,255"), "192.168.255.0:65535");
  EXPECT_EQ(read("(1.2.3.4.0.21,99)"), "1.2.3.4:21") << "any character ends a number";
  EXPECT_EQ(read("(1,2,3,4,0)"), "none");
  EXPECT_EQ(read("(1,2,3,4,0,)"), "none");
  EXPECT_EQ(read("(1,2,3,4,0,"), "none");
  EXPECT_EQ(read("(1,2,3,4,0"), "none");
  EXPECT_EQ(read("(1, 2, 3, 4, 0, 21)"), "none") << "a blank ends an empty number";
  EXPECT_EQ(read("(256,2,3,4,0,21)"), "none");
  EXPECT_EQ(read("(99999999999999999999,2,3,4,0,21)"), "none");
  EXPECT_EQ(read("(x (1,2,3,4,0,21)"), "none") << "the first parenthesis";
  EXPECT_EQ(read("1,2,3,4,0,21"), "none");
  EXPECT_EQ(read(std::string(285, ' ') + "(1,2,3,4,0,21)"), "1.2.3.4:21");
  EXPECT_EQ(read(std::string(288, ' ') + "(1,2,3,4,0,21)"), "1.2.3.4:2") << "cut at 300 characters";
  EXPECT_EQ(AddDynamicFtpDataPort(nullptr, 5, nullptr, nullptr), 0);
}

}  // namespace
}  // namespace qxview::testing
