// One line for a whole frame: the application's summary, or that of the layer which the decode reached.
#include "decoders/app/packet_summaries.h"
#include "tests/support/summary_cases.h"
#include "tests/support/transport.h"

namespace qxview::testing {
namespace {

// A view that decodes headers only, with the definitions that the stand-alone host is born with.
class ListView {
 public:
  ListView() : view_(&host_) {
    DecodeContext& context = view_.context();
    context.outputMode = kFindMode;
    context.silent = context.headersOnly = true;
  }
  std::string Summary(const Bytes& frame, uint8_t medium = 0) {
    Record record(frame, medium);   // what the decode leaves points into it
    view_.Decode(record);
    GuardedBytes output(kSummarySize);
    char* out = reinterpret_cast<char*>(output.At(kSummarySize));
    SummarizePacket(&view_.view(), out, kSummarySize);
    return out;
  }
  DefinitionsHost& Host() { return host_; }

 private:
  DefinitionsHost host_;
  TestView view_;
};

const Bytes kSyn = Hex("C000 00B3 00000001 00000000 5002 2000 0000 0000");
const Bytes kQuoted = IPv4(17, Udp(40000, 53, Ascii("x")));

Bytes Llc(const std::string& rest) {
  const Bytes payload = Hex(rest);
  return Ethernet(static_cast<uint16_t>(payload.size()), payload);
}

// A datagram whose fragment field is `fragment`, with its checksum left out.
Bytes Fragment(uint8_t high, uint8_t low) {
  Bytes datagram = IPv4(17, Bytes(32));
  datagram[6] = high;
  datagram[7] = low;
  datagram[10] = datagram[11] = 0;
  return datagram;
}

struct FrameCase {
  Bytes frame;
  std::string text;
  uint8_t medium = 0;
};

std::vector<FrameCase> Frames() {
  return {
      {Ethernet(0x0806, Hex("0001 0800 06 04 0001 001122334455 0A000001 000000000000 0A000002")),
       "ARP: Request, Source 10.0.0.1, Target 10.0.0.2"},
      {Ethernet(0x0806, Hex("0001 0800 06 04 0002 001122334455 0A000001 00AABBCCDDEE 0A000002")),
       "ARP: Reply, Source 10.0.0.1, Target 10.0.0.2"},
      {Ethernet(0x0806, Hex("0001 0800")), "ARP, 4 bytes"},
      {Ethernet(0x0800, IPv4(1, Hex("08 00 0000 0001 0002 4142"))), "ICMP: Echo Request (Bad Checksum), Identifier = 1, Sequence Number = 2"},
      {Ethernet(0x0800, IPv4(1, Hex("03 03 0000 00000000") + kQuoted)),
       "ICMP: Destination Unreachable, Port Unreachable (Bad Checksum), Quoted: UDP 10.0.0.1 port 40000 -> 10.0.0.2 "
       "port 53"},
      {Ethernet(0x0800, IPv4(6, kSyn)),
       "TCP SYN, Port: 49152 -> 179 (BGP), Sequence: 1, Window: 8192, Length: 0"},
      {Ethernet(0x0800, IPv4(17, Udp(68, 67, Bytes(20)))), "UDP, Port: 68 -> 67 (DHCP), Length: 20"},
      {Ethernet(0x0800, IPv4(17, Udp(40000, 53, Hex("0001 0100 0001 0000 0000 0000 0161 00 0001 0001")))),
       "DNS Query: Standard Query - a, QU=1 AN=0 AU=0 AD=0"},
      {Ethernet(0x0800, Fragment(0x00, 0x02)), "IPv4 Fragment: UDP, Offset: 16, 32 bytes"},
      {Ethernet(0x0800, IPv4(89, Hex("02 01 002C 0A000001 00000000"))),
       "OSPFv2 Hello, Router: 10.0.0.1, Area: 0.0.0.0"},
      {Ethernet(0x0800, IPv4(99, Bytes(7))), "Private Encryption Scheme (99), 7 bytes"},
      {Ethernet(0x86DD, IPv6(58, Hex("87 00 0000 00000000 20010DB8000000000000000000000001"))),
       "ICMPv6: Neighbor Solicitation (Bad Checksum) for 2001:db8::1"},
      {Llc("42 42 03 0000 00 00 00 8000 001122334455 00000004 8001 00AABBCCDDEE 8002 0000 1400 0200 0F00"),
       "Spanning Tree Configuration, Root: 32768/00:11:22:33:44:55, Cost: 4, Bridge: 32769/00:AA:BB:CC:DD:EE, "
       "Port: 0x8002"},
      {Llc("AA AA 03 00000C 2000 02 B4 0000 0001 0007 737731"), "CDP Version: 2, Time To Live: 180, Device: sw1"},
      {Llc("AA AA 03 00000C 0111 00000000"), "UDLD: Reserved"},
      {Llc("F0 F0 03 0000"), "NetBIOS, 2 bytes"},
      {Llc("E0 E0 03 FFFF 0022 00 04 00000011 020000000001 0452 00000010 020000000002 4003 0003 0004"),
       "IPX: Packet Exchange, 00000010.020000000002.4003 -> 00000011.020000000001.0452"},
      {Llc("E0 E0 03 FFFF 0041 00 04 00000011 020000000001 4003 00000010 020000000002 0550 FF534D42 2B 00000000 80 0000"
           "0000 0000000000000000 0000 0100 0200 0300 0400 00 0000"),
       "SMB/CIFS Echo Response, Status: Success, TID: 1, UID: 3, MID: 4"},
      {Ethernet(0x888E, Hex("01 00 0005 02 07 0005 01 00")),
       "802.1X EAPOL EAP Packet, Version: 1, Response, ID: 7, Identity"},
      {Ethernet(0x88CC, Hex("0207 04 001122334455 0403 05 7031 0602 0078 0A02 7377 0000")),
       "LLDP, Chassis: 00:11:22:33:44:55, Port: p1, Time To Live: 120, System: sw"},
      {Ethernet(0x88F7, Bytes(10)), "PTP, 10 bytes"},
      {Ethernet(0x7777, Bytes(10)), "Ethertype 0x7777, 10 bytes"},
      {Hex("8000 0000 FFFFFFFFFFFF 001122334455 001122334455 1000 0000000000000000 6400 0104 0003 616263"),
       "802.11 Beacon, Sequence: 1, Fragment: 0, SSID: abc", 9},
      {Hex("D400 0000 001122334455"), "802.11 Acknowledgement", 9},
      {Hex("AABB"), "Ethernet Frame, 2 bytes"},
  };
}

TEST(PacketSummaries, NameTheLayerThatWasReached) {
  ListView view;
  for (const FrameCase& each : Frames()) EXPECT_EQ(view.Summary(each.frame, each.medium), each.text);
}

TEST(PacketSummaries, TellABadHeaderChecksum) {
  Bytes datagram = IPv4(17, Udp(1, 2, Bytes(4)));
  datagram[10] ^= 1;
  EXPECT_EQ(ListView().Summary(Ethernet(0x0800, datagram)), "IPv4 UDP, Bad Header Checksum, 32 bytes");
}

TEST(PacketSummaries, TellABadSegmentChecksum) {
  Bytes segment = Tcp({.payload = Ascii("GET / HTTP/1.1\r\n\r\n")});
  ListView view;
  EXPECT_EQ(view.Summary(Ethernet(0x0800, IPv4(6, segment))), "HTTP GET /");
  segment[16] ^= 1;
  EXPECT_EQ(view.Summary(Ethernet(0x0800, IPv4(6, segment))),
            "TCP PSH ACK, Port: 1025 -> 80, Sequence: 1000, Acknowledgement: 2000, Window: 512, Length: 18, "
            "Bad Checksum");
}

// What no summary takes falls back to the transport's line.
TEST(PacketSummaries, FallBackToTheTransport) {
  ListView view;
  view.Host().definitions.AddDefinition("udp:5060=SIP");
  EXPECT_EQ(view.Summary(Ethernet(0x0800, IPv4(17, Udp(5060, 5060, Ascii("\r\n\r\n"))))),
            "UDP, Port: 5060 -> 5060, Length: 4");
}

TEST(PacketSummaries, TakeAnyFrame) {
  ListView view;
  for (const FrameCase& each : Frames()) {
    for (size_t length = 0; length <= each.frame.size(); ++length) {
      EXPECT_NE(view.Summary(Bytes(each.frame.begin(), each.frame.begin() + static_cast<int64_t>(length)), each.medium),
                "");
    }
    for (size_t at = 0; at < each.frame.size(); ++at) {
      Bytes damaged = each.frame;
      for (uint8_t value : {0x00, 0x01, 0x80, 0xFF}) {
        damaged[at] = value;
        EXPECT_NE(view.Summary(damaged, each.medium), "");
      }
    }
  }
}

// Headers alone learn what a whole decode learns, and show nothing.
TEST(PacketSummaries, HeadersAloneStillLearn) {
  DefinitionsHost host;
  int32_t learnt = 0;
  static int32_t* counter;
  counter = &learnt;
  host.host.learn = [](void*, uint32_t, int32_t, const AddressSlot*, uint16_t, int32_t, int32_t,
                       const DynamicRecord*) { ++*counter; };
  TestView view(&host);
  view.context().outputMode = kFindMode;
  view.context().silent = view.context().headersOnly = true;
  TcpParts parts;
  parts.destinationPort = 49152;
  parts.payload = Ascii("8=FIX.4.2\0019=5\00135=0\00110=000\001");
  view.Decode(Ethernet(0x0800, IPv4(6, Tcp(parts))));
  EXPECT_EQ(learnt, 1);
  EXPECT_EQ(view.context().packet.reached.table, DispatchTable::kApplication);
  EXPECT_EQ(view.context().packet.reached.key, 0x9Au);
  EXPECT_EQ(view.context().rangeCount, 0u);
  EXPECT_EQ(view.tree().FirstChild(0), 0u);
}

}  // namespace
}  // namespace qxview::testing
