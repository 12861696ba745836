// The headers that captures have where an interface has none of its own, or a different one each: Linux cooked
// captures,
// version 1 and 2, and the loopback headers of BSD, which hold an address family.
//
//   version 1  0  packet type   2  kind of interface   4  address length   6  address (8)   14  protocol
//   version 2  0  protocol   2  reserved   4  interface   8  kind   10  packet type (1)   11  address length (1)
//              12  address (8)
//   loopback   0  address family, in the order of the machine that captured or, of the second kind, of the network
#include "core/rows.h"
#include "decoders/link/link_frame.h"
#include "decoders/link/linux_names.h"
#include "decoders/link/medium.h"

namespace qxview {
namespace {

constexpr uint32_t kFrameRelayDevice = 770, kNetlinkDevice = 824;
constexpr int32_t kAddressSpace = 8;
constexpr uint32_t kRawFirst = kRawNovell, kRawLlcProtocol = kRawLlc;

constexpr auto kPacketTypeNames = SortedNames({
    {0, "Unicast to Us"}, {1, "Broadcast"}, {2, "Multicast"}, {3, "Unicast to Another Host"}, {4, "Sent by Us"},
    {5, "Multicast or Broadcast Loop"}, {6, "To User Space"}, {7, "To Kernel Space"}});
// Protocols below those of Ethertypes.
constexpr auto kSmallProtocolNames = SortedNames({
    {0x0001, "Novell 802.3"}, {0x0003, "All Packets"}, {0x0004, "802.2 LLC"}, {0x0005, "SNAP"}, {0x0009, "LocalTalk"},
    {0x000C, "CAN"}, {0x000D, "CAN FD"}, {0x000E, "CAN XL"}, {0x0010, "PPP over Anything"}, {0x0019, "Control"}});

struct Cooked {
  Field type, kind, addressLength, protocol;
};

constexpr auto kHeader1 = Rows<Cooked>({
    Number(2, "Packet Type", kPacketTypeNames).Into(&Cooked::type),
    Number(2, "Interface Kind", kInterfaceKindNames).Into(&Cooked::kind),
    Number(2, "Address Length").Into(&Cooked::addressLength)});
constexpr auto kHeader2 = Rows<Cooked>({
    Hex(2, "Protocol").Into(&Cooked::protocol), Number(2, "Reserved"), Number(4, "Interface Index"),
    Number(2, "Interface Kind", kInterfaceKindNames).Into(&Cooked::kind),
    Number(1, "Packet Type", kPacketTypeNames).Into(&Cooked::type),
    Number(1, "Address Length").Into(&Cooked::addressLength)});

void ShowAddress(const Place& in, Cursor& c, uint32_t length) {
  const int32_t used = length < kAddressSpace ? static_cast<int32_t>(length) : kAddressSpace;
  const Field address = TakeBytes(c, used);
  if (used == kMacAddressLength) {
    AddAddress(in, address, "Source");
  } else if (used > 0) {
    AddLine(in, address, "Source: %s", HexText(address));
  }
  const Field unused = TakeBytes(c, kAddressSpace - used);
  if (unused.length > 0) AddLine(in, unused, "Unused: %s", HexText(unused));
}

const char* NameProtocol(const Cooked& cooked) {
  const uint16_t protocol = static_cast<uint16_t>(cooked.protocol.value);
  if (cooked.kind.value == kNetlinkDevice) return "Netlink Family";
  const char* name = EthertypeName(protocol);
  return name ? name : LookupName(kSmallProtocolNames, protocol);
}

// What stands behind the header, for captures whose frames nobody has led to their network header before.
int32_t DecodeCarried(const Place& at, const Cursor& c, const Cooked& cooked) {
  const Place network = Deeper(at);
  const uint32_t protocol = cooked.protocol.value;
  if (cooked.kind.value == kNetlinkDevice) return DecodeNetlinkMessages(network, c, protocol);
  if (cooked.kind.value == kFrameRelayDevice) return CallDecoder(network, c, DecodeFrameRelay, "Raw Data");
  if (protocol == kRawLlcProtocol) return CallDecoder(network, c, DecodeLlc, "Raw Data");
  const int32_t handled =
      DispatchEthertype(network, c, protocol >= kRawFirst ? static_cast<uint16_t>(protocol) : uint16_t{kRawUnknown});
  return handled ? handled : CallDecoder(network, c, nullptr, "Raw Data");
}

constexpr auto kFamilyNames = SortedNames({
    {0, "Unspecified"}, {1, "Unix"}, {2, "IPv4"}, {7, "OSI"}, {10, "IPv6 (Linux)"}, {16, "AppleTalk"}, {17,
    "Link Layer"},
    {23, "IPX"}, {24, "IPv6 (NetBSD, OpenBSD, Windows)"}, {28, "IPv6 (FreeBSD)"}, {30, "IPv6 (Darwin)"}});

int32_t DecodeFamily(const Place& at, Cursor c, bool isNetworkOrder) {
  constexpr uint32_t kMostFamily = 0xFFFF;
  if (Left(c) < 4) return 0;
  const bool little = !isNetworkOrder && PeekU32(c) > kMostFamily;
  const uint32_t family = little ? PeekLittleU32(c) : PeekU32(c);
  const char* name = LookupName(kFamilyNames, family);
  const Place in = Under(at, AddLine(at, Ahead(c, 4), "Loopback Header: %s", name));
  const Field field = TakeBytes(c, 4);
  AddLine(in, field, "Address Family: %u = %s", family, name);
  return Left(c) > 0 ? DecodeBareIp(Deeper(at), c) : 1;
}

}  // namespace

int32_t DecodeBareIp(const Place& at, const Cursor& c) {
  const uint32_t version = PeekU8(c) >> 4;
  const int32_t handled = DispatchEthertype(at, c, version == 4 ? 0x0800 : version == 6 ? 0x86DD :
      uint16_t{kRawUnknown});
  return handled ? handled : CallDecoder(at, c, nullptr, "Raw Data");
}

int32_t DecodeLinuxCooked(const Place& at, Cursor c) {
  constexpr int32_t kHeaderSize = 16;
  if (Left(c) < kHeaderSize) return 0;
  const char* type = LookupName(kPacketTypeNames, PeekU16(c));
  const Place in = Under(at, AddLine(at, Ahead(c, kHeaderSize), "Linux Cooked Header: %s", type));
  Cooked cooked = ShowRows(in, c, kHeader1);
  ShowAddress(in, c, cooked.addressLength.value);
  cooked.protocol = TakeU16(c);
  AddLine(in, cooked.protocol, "Protocol: 0x%.04X = %s", cooked.protocol.value, NameProtocol(cooked));
  return Left(c) > 0 ? DecodeCarried(at, c, cooked) : 1;
}

int32_t DecodeLinuxCooked2(const Place& at, Cursor c) {
  constexpr int32_t kHeaderSize = 20;
  if (Left(c) < kHeaderSize) return 0;
  const char* type = LookupName(kPacketTypeNames, PeekU8(c, 10));
  const Place in = Under(at, AddLine(at, Ahead(c, kHeaderSize), "Linux Cooked Header 2: %s", type));
  const Cooked cooked = ShowRows(in, c, kHeader2);
  ShowAddress(in, c, cooked.addressLength.value);
  return Left(c) > 0 ? DecodeCarried(at, c, cooked) : 1;
}

int32_t DecodeNullLoopback(const Place& at, Cursor c) { return DecodeFamily(at, c, false); }
int32_t DecodeNetworkLoopback(const Place& at, Cursor c) { return DecodeFamily(at, c, true); }

}  // namespace qxview
