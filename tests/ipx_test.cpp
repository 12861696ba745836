// IPX and what it carries: every socket that has a decoder, lengths that lie, and the forms that share a socket.
#include "decoders/net/ipx.h"

#include "tests/support/decoding.h"

namespace qxview::testing {
namespace {

constexpr int32_t kHeader = 30;

// A packet from station 2 of network 10 to station 1 of network 11; `excess` is what its length says too much.
Bytes Ipx(uint8_t type, uint16_t destination, uint16_t source, const Bytes& payload, int32_t excess = 0) {
  const auto word = [](size_t value) { return Bytes{static_cast<uint8_t>(value >> 8), static_cast<uint8_t>(value)}; };
  return Hex("FFFF") + word(static_cast<size_t>(static_cast<int32_t>(payload.size()) + kHeader + excess)) +
         Bytes{1, type} + Hex("00000011 020000000001") + word(destination) +
         Hex("00000010 020000000002") + word(source) + payload;
}

const Bytes kHost = Hex("484F5354202020202020202020202020"), kGroup = Hex("47524F55502020202020202020 20201D");
const Bytes kNetworks = Hex("00000010 00000012") + Bytes(24);
const Bytes kSmb = Hex("FF534D42 72 00000000 18 0140 0000 78563412 0201 0C00 0300 0000 0100 0000 0000 00 0000");
const Bytes kService = Hex("0004") + Hex("465331") + Bytes(45) + Hex("00000010 000000000001 0451 0001");
const std::string kNegotiate = "CIFS: Client Request - Negotiate Protocol";

TEST(Ipx, ShowsItsHeaderAndBoundsItsPayload) {
  EXPECT_EQ(TreeOfRun(DecodeIpx, Ipx(17, 0x0451, 0x4003, Hex("2222 01"), -1)),
            R"(IPX: NCP, 00000010.020000000002.4003 -> 00000011.020000000001.0451 {0+30}
  Checksum: 0xFFFF = Not Used {0+2}
  Length: 32 {2+2}
  Transport Control: 1 Hops {4+1}
  Packet Type: 17 = NCP {5+1}
  Destination Network: 00000011 {6+4}
  Destination Node: 02:00:00:00:00:01 {10+6}
  Destination Socket: 0x0451 = NCP {16+2}
  Source Network: 00000010 {18+4}
  Source Node: 02:00:00:00:00:02 {22+6}
  Source Socket: 0x4003 = Dynamic {28+2}
  Padding {32+1}
NCP Data {8:30+2}
)");
  // A length that is too long takes what is there, one that is too short leaves nothing.
  ExpectInOrder(TreeOfRun(DecodeIpx, Ipx(0, 0x5000, 0x9999, Hex("01 02"), 100)),
                {"0x5000 = Dynamic", "0x9999 = Unknown", "IPX Data {8:30+2}"});
  ExpectInOrder(TreeOfRun(DecodeIpx, Ipx(17, 0x0451, 0x4003, Hex("01 02"), -3)),
                {"Length: 29 (less than the header's)", "Padding {30+2}"});
  EXPECT_EQ(TreeOfRun(DecodeIpx, Ipx(0, 0, 0, {})).find("Data"), std::string::npos);
  EXPECT_EQ(TreeOfRun(DecodeIpx, Bytes(29)), "");
  EXPECT_EQ(TreeOf(Ethernet(0x8137, Bytes(29))).substr(TreeOf(Ethernet(0x8137, Bytes(29))).find("Raw")),
            "Raw Data {8:14+29}\n");
}

struct CarriedCase {
  uint8_t type;
  uint16_t destination, source;
  Bytes payload;
  std::vector<std::string> texts;
};

const CarriedCase kCases[] = {
    // Routes and services, what is short or too long of them, and answers that come from the service's socket.
    {1, 0x453, 0x453, Hex("0001 FFFFFFFF FFFF FFFF"), {"RIP: Request {30+10}", "Route: FFFFFFFF (all), 65535 Hops"}},
    {1, 0x4005, 0x453, Hex("0002 00000010 0010 0002 0000"),
     {"Route: 00000010, 16", "16 = Unreachable", "Extra Data {40+2}"}},
    {4, 0x452, 0x4003, Hex("0003 0004"),
     {"SAP: Nearest Service Query, File Server {30+4}", "Type: 0x0004 = File Server {32+2}"}},
    {4, 0x452, 0x4003, Hex("0001 00"), {"General Service Query {30+2}", "Extra Data {32+1}"}},
    {4, 0x4003, 0x452, Hex("0002") + kService + kService + Bytes(63),
     {"Response {30+130}", "Service: FS1, File Server {32+64}", "Name: FS1 {34+48}", "Network: 00000010 {82+4}",
      "Node: 00:00:00:00:00:01 {86+6}", "Socket: 0x0451 = NCP {92+2}", "Hops: 1 {94+2}", "FS1, File Server {96+64}",
      "Extra Data {160+63}"}},
    {0, 0x456, 0x4003, Hex("02 020000000001 0200"),
     {"Configuration Request {30+7}", "Excluded Node: 02:", "Extra Data {37+2}"}},
    {0, 0x4003, 0x456, Hex("0101 4002 03 00 06 01 00 00000010 000000000001 FE"),
     {"Configuration Response {30+20}", "SPX Diagnostic Socket: 0x4002", "0 = IPX/SPX {35+1}",
      "6 = File Server/Router {36+13}", "Local Network: 00000010 {38+11}", "0 = Network Card", "254 = Unknown {49+1}"}},
    {0, 0x4003, 0x456, Hex("0101 4002 02 05 02 00 000000"), {"Configuration Response", "Extra Data {37+4}"}},
    {0, 0x457, 0x457, Hex("01 02"), {"Serialization Data {8:30+2}"}},
    {4, 0x900F, 0x4003, Hex("3026020100 04067075626C6963 A019 020200AB 020100 020100 300D300B 06072B060102010101 0500"),
     {"SNMPv1: public, Get Request"}},
    // Both versions of SPX, whatever the sockets.
    {5, 0x451, 0x8104, Hex("50 00 1234 5678 0001 0002 0009 41"),
     {"SPX: Connection 4660 -> 22136, Sequence 1, Acknowledgement 2 {30+12}",
      ".1......: Acknowledgement Required = True", "0x00 = Client-Defined", "Allocation Number: 9 {40+2}",
      "SPX Data {8:42+1}"}},
    {5, 0x451, 0x8104, Hex("4C FE 1234 5678 0001 0002 0009 0578"),
     {"{30+14}", "End of Connection", "Size: 1400 {42+2}"}},
    {5, 0x451, 0x8104, Hex("4C FE 1234 5678 0001 0002 0009 05"), {"{30+12}", "SPX Data {8:42+1}"}},
    // NetBIOS: broadcasts have networks in front; name messages to one station have room for them.
    {20, 0x455, 0x455, kNetworks + Hex("84 01") + kHost,
     {"Find Name, HOST<20> {30+50}", "Network: 00000012 {34+4}", "1.......: Group Name = True",
      "Name Registered = True", "Name: HOST<20> = Internet Group {64+16}"}},
    {20, 0x5000, 0x5000, kNetworks + Hex("00 05") + kHost, {"Deregister Name, HOST<20>"}},
    {4, 0x455, 0x455, kNetworks + Hex("44 02") + kHost, {"Name Recognized, HOST<20> {30+50}"}},
    {20, 0x455, 0x455, kNetworks + Hex("00 0B") + kGroup + kHost + kSmb,
     {"Directed Datagram, HOST<20> -> GROUP<1D> {30+66}", "Networks Passed", kNegotiate}},
    {4, 0x455, 0x455, Hex("00 0B") + kGroup + kHost + Bytes(40), {"Directed Datagram", "{30+34}", "User Data {64+40}"}},
    {4, 0x455, 0x455, Hex("50 06 2301 5604 0300 2300 0000 2300 0400 0500") + kSmb + Hex("00"),
     {"Session Data, Connection 0x0123 -> 0x0456 {30+18}", "Send Sequence Number: 3", "Total Data Length: 35 {38+2}",
      "Data Length: 35 {42+2}", "Bytes Received: 5 {46+2}", "Extra Data {83+1}", kNegotiate}},
    {4, 0x455, 0x455, Hex("50 06 2301 5604 0300 D007 7805 0200 0400 0500 4142"),
     {"Offset: 1400", "CIFS: Continuation Data, 2 bytes {48+2}"}},
    {4, 0x455, 0x455, Hex("C0 06 2301 FFFF 0000 0300 0000 0300 0000 0000 414243"), {"User Data {48+3}"}},
    {4, 0x455, 0x455, Hex("80 07 2301 5604 0300 0000 0000 FFFF 0400 0500"), {"Session End, Connection", "{30+18}"}},
    {4, 0x455, 0x455, Hex("00 0A 01"), {"Status Response {30+2}", "Status Data {32+1}"}},
    {4, 0x455, 0x455, Hex("00 20 01"), {"0x20 = Unknown", "Extra Data {32+1}"}},
    {4, 0x455, 0x455, Hex("00"), {"NetBIOS Data {8:30+1}"}},
    // SMB without NetBIOS, and the names that go with it.
    {4, 0x550, 0x552, kSmb,
     {"SMB over IPX: Connection 258, Sequence 12 {44+10}", "Key: 0x12345678 {44+4}", "Group ID: 3 {52+2}", kNegotiate}},
    {4, 0x4010, 0x550, Bytes(80, 'x'), {"SMB Data {8:30+80}"}},
    {4, 0x552, 0x551, kNetworks + Hex("F4 01 0180") + kGroup + kHost,
     {"NMPI: Name Found, HOST<20> -> GROUP<1D> {30+68}", "Name Type: 1 = Machine", "Message ID: 0x8001 {64+2}"}},
    {20, 0x553, 0x553, kNetworks + Hex("FC 02 0000") + kGroup + kHost + kSmb, {"NMPI: Mailslot Write", kNegotiate}},
    {20, 0x553, 0x553, kNetworks + Hex("FD 02 0000") + kGroup + kHost + Hex("41"), {"Extra Data {98+1}"}},
};

TEST(Ipx, CarriesServicesConnectionsNamesAndSmb) {
  for (const CarriedCase& each : kCases) {
    const Bytes packet = Ipx(each.type, each.destination, each.source, each.payload);
    ExpectInOrder(TreeOfRun(DecodeIpx, packet), each.texts);
  }
}

}  // namespace
}  // namespace qxview::testing
