#include "decoders/net/port_dispatch.h"

#include "core/custom_libraries.h"
#include "decoders/net/learn.h"
#include "tests/support/transport.h"

namespace qxview::testing {
namespace {

constexpr int32_t kNone = -1, kHttp = 0x10004, kSnmp = 0x10006, kFtp = 0x1000C;

class PortDispatchTest : public ::testing::Test {
 protected:
  PortDispatchTest() { testNetwork = {}; }
  // The protocol and, behind a '<', the mark of a match on the source side.
  std::string Resolve(const AddressSlot& source, uint16_t sourcePort, const AddressSlot& destination,
                      uint16_t destinationPort, uint8_t ipProtocol = kIpProtocolTcp) {
    bool matchedSource = true;
    const int32_t found = ResolveProtocol(&view_.view(), ipProtocol, source, sourcePort, destination, destinationPort,
                                          &matchedSource);
    return std::to_string(found) + (matchedSource ? "<" : "");
  }
  std::string Ports(uint16_t sourcePort, uint16_t destinationPort, uint8_t ipProtocol = kIpProtocolTcp) {
    return Resolve(kA, sourcePort, kB, destinationPort, ipProtocol);
  }
  std::string Is(int32_t identifier, const char* mark = "") { return std::to_string(identifier) + mark; }

  const AddressSlot kA = IPv4Slot(0x0A000001), kB = IPv4Slot(0x0A000002), kEmpty{};
  DefinitionsHost host_;
  TestView view_{&host_};
};

TEST_F(PortDispatchTest, TheLowerPortIsTriedFirst) {
  host_.definitions.AddDefinition("tcp:1025=FTP");
  EXPECT_EQ(Ports(1025, 80), Is(kHttp));
  EXPECT_EQ(Ports(80, 1025), Is(kHttp, "<"));
  EXPECT_EQ(Ports(1025, 9999), Is(kFtp, "<"));
  EXPECT_EQ(Ports(9999, 1025), Is(kFtp));
  EXPECT_EQ(Ports(6, 1025), Is(kFtp)) << "the higher one where the lower has none";
  EXPECT_EQ(Ports(1025, 6), Is(kFtp, "<"));
  EXPECT_EQ(Ports(80, 80), Is(kHttp)) << "the destination wins between equal ports";
  EXPECT_EQ(Ports(0, 80), Is(kHttp));
  EXPECT_EQ(Ports(80, 0), Is(kHttp, "<"));
  EXPECT_EQ(Ports(0, 0), Is(kNone));
  EXPECT_EQ(Ports(9998, 9999), Is(kNone));
  EXPECT_EQ(Ports(80, 161, kIpProtocolUdp), Is(kSnmp)) << "UDP has tables of its own";
}

TEST_F(PortDispatchTest, AddressesComeBeforePortsAndTheSourceBeforeTheDestination) {
  const auto define = [&](const char* text) { ASSERT_FALSE(host_.definitions.AddDefinition(text)) << text; };
  define("tcp:10.0.0.2:5000=SNMP");
  EXPECT_EQ(Resolve(kA, 80, kB, 5000), Is(kSnmp));
  EXPECT_EQ(Resolve(kB, 5000, kA, 80), Is(kSnmp, "<"));
  define("tcp:10.0.0.2:0=FTP");
  EXPECT_EQ(Resolve(kA, 80, kB, 5000), Is(kFtp)) << "any port of the address before one port of it";
  EXPECT_EQ(Resolve(kA, 80, kB, 0), Is(kFtp));
  define("tcp:10.0.0.1:80=SNMP");
  EXPECT_EQ(Resolve(kA, 80, kB, 5000), Is(kSnmp, "<"));
  EXPECT_EQ(Resolve(kB, 5000, kA, 80), Is(kFtp, "<"));
  define("tcp:[::]:700=FTP");
  AddressSlot unspecified{{}, 2};
  EXPECT_EQ(Resolve(unspecified, 700, kEmpty, 80), Is(kFtp, "<")) << "an empty source is looked up with its port";
  EXPECT_EQ(Resolve(kEmpty, 80, unspecified, 700), Is(kHttp, "<")) << "an empty destination is not";
  EXPECT_EQ(Resolve(kA, 1, kB, 2, kIpProtocolUdp), Is(kNone));
}

TEST_F(PortDispatchTest, LocksAddressLookUpsAndDoesWithoutTables) {
  struct Watched {
    int depth = 0, locks = 0, wrong = 0;
    bool addresses = true, ports = true;
  } watched;
  QxHost host{};
  host.size = sizeof host;
  host.user = &watched;
  host.definitionTable = [](void* user, int32_t which) -> void* {
    auto* mine = static_cast<Watched*>(user);
    return (which >= QX_TCP_ADDRESSES ? mine->addresses : mine->ports) ? user : nullptr;
  };
  host.hashFind = [](void* user, void*, uint16_t port, int32_t* identifier) {
    static_cast<Watched*>(user)->wrong += static_cast<Watched*>(user)->depth != 0;
    *identifier = kHttp;
    return port == 80 ? 1 : 0;
  };
  host.hashFindGenericIPPort = [](void* user, void*, const AddressSlot*, uint16_t port, int32_t* identifier) {
    static_cast<Watched*>(user)->wrong += static_cast<Watched*>(user)->depth != 1;
    *identifier = kFtp;
    return port == 21 ? 1 : 0;
  };
  host.lockTable = [](void* user, void*) { ++static_cast<Watched*>(user)->depth, ++static_cast<Watched*>(user)->locks; };
  host.unlockTable = [](void* user, void*) { --static_cast<Watched*>(user)->depth; };
  view_.view().engine->host = &host;
  EXPECT_EQ(Ports(21, 1025), Is(kFtp, "<"));
  EXPECT_EQ(Ports(80, 1025), Is(kHttp, "<"));
  watched.addresses = false;
  EXPECT_EQ(Ports(21, 80), Is(kHttp));
  watched.ports = false;
  EXPECT_EQ(Ports(80, 1025), Is(kNone));
  host.lockTable = host.unlockTable = nullptr;
  EXPECT_EQ(watched.locks, 2);
  EXPECT_EQ(watched.depth + watched.wrong, 0);
  host.definitionTable = nullptr;
  EXPECT_EQ(Ports(80, 1025), Is(kNone));
  view_.view().engine->host = nullptr;
  EXPECT_EQ(Ports(80, 1025), Is(kNone));
}

// Identifiers for the next payload; its decoder's fallback block tells where it went.
int32_t nextIdentifier;
int32_t DispatchNext(const Place& at, Cursor c) { return DispatchTcpPayload(at, c, nextIdentifier, true); }

TEST_F(PortDispatchTest, FallbackTitles) {
  const auto title = [&](int32_t identifier) {
    nextIdentifier = identifier;
    EXPECT_EQ(view_.Run(DispatchNext, Hex("EE EE")), 1);
    const std::string tree = view_.Text();
    return tree.substr(0, tree.find(" {"));
  };
  EXPECT_EQ(title(-1), "TCP Data");
  EXPECT_EQ(title(0), "TCP Data");
  EXPECT_EQ(title(0x1010070), "FCIP Data");
  EXPECT_EQ(title(0x100B2), "TCP Data") << "as many as there are decoders is one too many";
  EXPECT_EQ(title(0x10040), "TCP Data") << "a hole of the table";
  EXPECT_EQ(title(4), "TCP Data") << "not a built-in decoder";
  host_.host.protocolDisplayName = [](void*, int32_t, char* out, int32_t outSize) -> int32_t {
    return CopyString(out, outSize, "Plumbing") ? 1 : 0;
  };
  EXPECT_EQ(title(4), "Plumbing Data");
  EXPECT_EQ(title(0x100B2), "Plumbing Data");
  EXPECT_EQ(view_.context().packet.matchedSource, 1u);
}

TEST_F(PortDispatchTest, StunOverTcpIsKnownByItsCookieAlone) {
  const auto top = [&](const std::string& hex) {
    nextIdentifier = 0;
    view_.Run(DispatchNext, Hex(hex));
    return view_.Text().substr(0, 4);
  };
  EXPECT_EQ(top("0001 0000 2112A442 000000000000000000000001"), "STUN");
  EXPECT_EQ(top("0014 0001 0000 2112A442 000000000000000000000001"), "STUN") << "behind a length";
  EXPECT_EQ(top("0001 0002 2112A442 000000000000000000000001 0000"), "TCP ") << "no whole words";
  EXPECT_EQ(top("0001 0000 2112A443 000000000000000000000001"), "TCP ");
}

int32_t DispatchNextUdp(const Place& at, Cursor c) { return DispatchUdpPayload(at, c, nextIdentifier); }

TEST_F(PortDispatchTest, MediaPortsAreSortedByTheFirstBytes) {
  const auto top = [&](int32_t identifier, const std::string& hex) {
    nextIdentifier = identifier;
    view_.Run(DispatchNextUdp, Hex(hex));
    const std::string tree = view_.Text();
    return tree.substr(0, tree.find_first_of(":, "));
  };
  const std::string rtp = "8000 0001 00000002 00000003 AABB", control = "81CE 0002 00000001 00000002";
  for (const int32_t learnt : {0x2050059, 0x205005A}) {
    EXPECT_EQ(top(learnt, rtp), "RTP");
    EXPECT_EQ(top(learnt, control), "RTCP") << "feedback alone";
    EXPECT_EQ(top(learnt, "0001 0000 2112A442 000000000000000000000001"), "STUN");
    EXPECT_EQ(top(learnt, "4000 0004 01020304"), "TURN");
    EXPECT_EQ(top(learnt, "16 FEFD 0000 000000000001 000C 01 000000 0000 000000 000000"), "DTLS");
  }
}

TEST_F(PortDispatchTest, ADecoderThatDeclinesGivesWay) {
  const auto tree = [&](uint16_t source, uint16_t destination, const std::string& hex) {
    testNetwork = {};
    view_.Run(DecodeUdpOverNetwork, Udp(source, destination, Hex(hex)));
    const std::string text = view_.Text();
    return text.substr(text.find("Checksum"));
  };
  const std::string stun = "0001 0000 2112A442 000000000000000000000001";
  EXPECT_NE(tree(4739, 3478, stun).find("STUN"), std::string::npos) << "the other port's";
  EXPECT_NE(tree(4739, 40000, stun).find("STUN"), std::string::npos) << "detected";
  EXPECT_NE(tree(4739, 40000, "EEEE").find("IPFIX Data"), std::string::npos);
  EXPECT_NE(tree(161, 3478, "EEEE").find("SNMP Data"), std::string::npos);
}

TEST_F(PortDispatchTest, DnscryptIsKnownByItsResolver) {
  const auto top = [&](uint16_t source, uint16_t destination, const Bytes& payload) {
    testNetwork = {};
    if (source < destination) std::swap(testNetwork.source, testNetwork.destination);   // from the resolver
    view_.Run(DecodeUdpOverNetwork, Udp(source, destination, payload));
    testNetwork = {};
    const std::string text = view_.Text();
    const size_t at = text.find('\n', text.find("Checksum")) + 1;
    return text.substr(at, text.find('\n', at) - at);
  };
  const Bytes query = Hex("6D616769636B6523") + Bytes(400, 0x55), other = Hex("6D616769636B6524") + Bytes(400, 0x55);
  const Bytes response = Hex("7236666E76576A38") + Bytes(100, 0x66);
  const std::string unknown = top(4000, 443, query);
  EXPECT_TRUE(unknown.starts_with("QUIC: 1-RTT")) << unknown;
  EXPECT_TRUE(top(443, 4000, response).starts_with("DNSCrypt: Response"));
  EXPECT_TRUE(top(4000, 443, query).starts_with("DNSCrypt: Query"));
  EXPECT_TRUE(top(4001, 443, query).starts_with("DNSCrypt: Query")) << "another client";
  EXPECT_TRUE(top(4000, 443, other).starts_with("QUIC: 1-RTT")) << "another magic";
  EXPECT_TRUE(top(4000, 5443, query).starts_with("UDP Data")) << "another resolver";
  const std::string name = "\1" "2\15dnscrypt-cert";
  const Bytes question = Hex("0000 8180 0001 0001 0000 0000") + Bytes(name.begin(), name.end()) + Hex("00 0010 0001");
  const Bytes certificate = Hex("C00C 0010 0001 00000E10 007D 7C 444E5343 00020000") + Bytes(96, 0x77) + Hex("6D616769636B6524") +
                            Bytes(12, 0);
  EXPECT_TRUE(top(5443, 4000, question + certificate).starts_with("DNS: Response"));
  EXPECT_TRUE(top(4000, 5443, other).starts_with("DNSCrypt: Query"));
}

TEST_F(PortDispatchTest, WhatIsLearntResolvesBothDirections) {
  View* view = &view_.view();
  Learn(view, QX_OVER_TCP, 0x1010065, kA, 4000, -1, -1, nullptr);
  EXPECT_EQ(Resolve(kA, 4000, kB, 1025), Is(0x1010065, "<"));
  EXPECT_EQ(Resolve(kB, 1025, kA, 4000), Is(0x1010065));
  EXPECT_EQ(Resolve(kA, 4000, kB, 1025, kIpProtocolUdp), Is(kNone));
  Learn(view, 0, 0x1010065, kA, 4001, -1, -1, nullptr);
  Learn(view, QX_OVER_UDP, 0, kA, 4001, -1, -1, nullptr);
  host_.host.definitionTable = [](void*, int32_t) -> void* { return nullptr; };
  Learn(view, QX_OVER_TCP, 0x1010065, kA, 4002, -1, -1, nullptr);
  EXPECT_EQ(host_.definitions.CountLearnt(QX_OVER_TCP), 1u);
  EXPECT_EQ(host_.definitions.CountLearnt(QX_OVER_UDP), 0u);
}

// Libraries that take every payload and count what they are offered.
int offered;
int32_t TakePayload(QxLine, const uint8_t*, int32_t, int32_t, int32_t, uint32_t, void*, uint32_t*, uint32_t*, uint64_t**,
                    CustomDecodeBlock*) {
  ++offered;
  return 1;
}

TEST_F(PortDispatchTest, UserLibrariesSeePayloadsFirst) {
  static const char* const kHooks[] = {"CustomDecodeTCP", "CustomDecodeUDP"};
  host_.settings = {{"CustomLibrary0", "library"}};
  view_.loader = {[](const char*) -> void* { return &offered; },
                  [](void*, const char* name) -> void* {
                    const bool known = name == std::string(kHooks[0]) || name == std::string(kHooks[1]);
                    return known ? reinterpret_cast<void*>(&TakePayload) : nullptr;
                  },
                  [](void*) {}, [](const char*) { return false; }, nullptr};
  offered = 0;
  view_.Run(DecodeTcpOverNetwork, Tcp({}));
  EXPECT_EQ(offered, 0) << "an empty payload is not offered";
  view_.Run(DecodeTcpOverNetwork, Tcp({.payload = Hex("01")}));
  EXPECT_EQ(offered, 1);
  EXPECT_EQ(view_.Text().find("HTTP Data"), std::string::npos);
  view_.Run(DecodeUdpOverNetwork, Udp(1025, 161, Hex("01")));
  EXPECT_EQ(offered, 2);
}

}  // namespace
}  // namespace qxview::testing
