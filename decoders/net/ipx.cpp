// IPX, the network protocol of NetWare (over PPP: RFC 1552). Numbers are big-endian.
//
//   0         2       4                  5     6                                       18               30
//   checksum  length  transport control  type  destination network (4) node (6) socket (2)   source ...   payload
//
// The length counts the header in; Ethernet pads what is shorter than a frame, and some stations pad to an even length.
#include "decoders/net/ipx.h"

#include "decoders/asn1/snmp.h"

namespace qxview {
namespace {

constexpr uint32_t kSmbMarker = 0xFF534D42, kSmbIndex = 0x65;   // the index of its decoder
constexpr int32_t kHeaderSize = 30, kDestinationOffset = 6, kSourceOffset = 18;
constexpr uint32_t kNoChecksum = 0xFFFF, kFirstDynamic = 0x4000, kFirstAssigned = 0x8000;
enum PacketType : uint32_t { kSpx = 5, kNcp = 17, kNetBiosBroadcast = 20 };
enum Socket : uint32_t {
  kNcpSocket = 0x0451, kSapSocket, kRipSocket, kNetBiosSocket = 0x0455, kDiagnosticSocket, kSerializationSocket,
  kSnmpSocket = 0x900F, kSnmpTrapSocket = 0x9010
};

constexpr auto kTypeNames = SortedNames({
    {0, "Regular"}, {1, "RIP"}, {2, "Echo"}, {3, "Error"}, {4, "Packet Exchange"}, {kSpx, "SPX"}, {kNcp, "NCP"},
    {kNetBiosBroadcast, "NetBIOS Broadcast"},
});

constexpr auto kSocketNames = SortedNames({
    {kNcpSocket, "NCP"}, {kSapSocket, "SAP"}, {kRipSocket, "RIP"}, {kNetBiosSocket, "NetBIOS"},
    {kDiagnosticSocket, "Diagnostics"}, {kSerializationSocket, "Serialization"}, {0x0550, "NWLink SMB Server"},
    {0x0551, "NWLink SMB Name Query"}, {0x0552, "NWLink SMB Redirector"}, {0x0553, "NWLink SMB Datagram"},
    {0x0554, "NWLink SMB Messenger"}, {0x0555, "NWLink SMB Browse"}, {0x8104, "Remote Console"}, {0x85BE, "EIGRP"},
    {0x9001, "NLSP"}, {0x9004, "IPXWAN"}, {kSnmpSocket, "SNMP"}, {kSnmpTrapSocket, "SNMP Trap"}, {0x9086, "Ping"},
    {0x9091, "TCP Tunnel"}, {0x9092, "UDP Tunnel"},
});

struct IpxHeader {
  Field type, destinationSocket, sourceSocket;
  Field length;
};

// What is carried: its decoder, and the title of its bytes where there is none.
struct Carried {
  DecoderFunction decode;
  const char* title;
};

int32_t DecodeIpxSnmp(const Place& at, Cursor c) { return DecodeSnmpPayload(at, c); }

// Null decoder and title for a socket that tells nothing.
Carried FindSocket(uint32_t socket, bool isDestination, uint32_t type) {
  if (IsNwlinkSmbSocket(socket)) return {DecodeNwlinkSmb, "SMB Data"};
  switch (socket) {
    case kNcpSocket: return {nullptr, "NCP Data"};
    case kSapSocket: return {DecodeIpxSap, "SAP Data"};
    case kRipSocket: return {DecodeIpxRip, "RIP Data"};
    case kNetBiosSocket:
      return {type == kNetBiosBroadcast ? DecodeIpxNetBiosBroadcast : DecodeIpxNetBios, "NetBIOS Data"};
    case kDiagnosticSocket:
      return {isDestination ? DecodeIpxDiagnosticRequest : DecodeIpxDiagnosticResponse, "Diagnostic Data"};
    case kSerializationSocket: return {nullptr, "Serialization Data"};
    case kSnmpSocket:
    case kSnmpTrapSocket: return {DecodeIpxSnmp, "SNMP Data"};
    default: return {nullptr, nullptr};
  }
}

// Services are asked at their socket and answer from it.
Carried FindCarried(const IpxHeader& header) {
  const uint32_t type = header.type.value;
  if (type == kSpx) return {DecodeSpx, "SPX Data"};
  Carried carried = FindSocket(header.destinationSocket.value, true, type);
  if (!carried.title) carried = FindSocket(header.sourceSocket.value, false, type);
  if (carried.title) return carried;
  if (type == kNcp) return {nullptr, "NCP Data"};
  if (type == kNetBiosBroadcast) return {DecodeIpxNetBiosBroadcast, "NetBIOS Data"};
  return {nullptr, "IPX Data"};
}

Field AddAddressLines(const Place& in, Cursor& c, const char* label) {
  const Field network = TakeBytes(c, 4), node = TakeBytes(c, 6), socket = TakeU16(c);
  AddLine(in, network, "%s Network: %s", label, IpxNetworkText(network.bytes));
  AddLine(in, node, "%s Node: %s", label, MacText(node.bytes));
  AddLine(in, socket, "%s Socket: 0x%.04X = %s", label, socket.value, IpxSocketText(socket.value));
  return socket;
}

IpxHeader AddHeaderLines(const Place& in, Cursor& c) {
  IpxHeader header;
  const Field checksum = TakeU16(c);
  AddLine(in, checksum, "Checksum: 0x%.04X%s", checksum.value, checksum.value == kNoChecksum ? " = Not Used" : "");
  header.length = TakeU16(c);
  AddLine(in, header.length, "Length: %u%s", header.length.value,
          header.length.value < kHeaderSize ? " (less than the header's)" : "");
  const Field control = TakeU8(c);
  AddLine(in, control, "Transport Control: %u Hops", control.value);
  header.type = TakeU8(c);
  AddLine(in, header.type, "Packet Type: %u = %s", header.type.value, LookupName(kTypeNames, header.type.value));
  header.destinationSocket = AddAddressLines(in, c, "Destination");
  header.sourceSocket = AddAddressLines(in, c, "Source");
  return header;
}

}  // namespace

const char* IpxSocketName(uint32_t socket) { return LookupName(kSocketNames, socket, nullptr); }

const char* IpxSocketText(uint32_t socket) {
  const char* name = IpxSocketName(socket);
  return name ? name : socket >= kFirstDynamic && socket < kFirstAssigned ? "Dynamic" : kUnknown;
}

void AddIpxNetworkLine(const Place& in, const char* label, const Field& network) {
  AddLine(in, network, "%s: %s", label, IpxNetworkText(network.bytes));
}

int32_t DecodeIpx(const Place& at, Cursor c) {
  if (Left(c) < kHeaderSize) return 0;
  const uint8_t* source = c.at + kSourceOffset;
  const uint8_t* destination = c.at + kDestinationOffset;
  const Place in = Under(at, AddLine(at, Ahead(c, kHeaderSize), "IPX: %s, %s.%s.%.04X -> %s.%s.%.04X",
                                     LookupName(kTypeNames, c.at[5]), IpxNetworkText(source),
                                     HexSlice{source + 4, 6, '\0'}, ReadU16(source + 10), IpxNetworkText(destination),
                                     HexSlice{destination + 4, 6, '\0'}, ReadU16(destination + 10)));
  const IpxHeader header = AddHeaderLines(in, c);
  Cursor payload = TakeCursor(c, static_cast<int64_t>(header.length.value) - kHeaderSize);
  if (at.view->context->headersOnly) {
    const bool isSmbSocket = IsNwlinkSmbSocket(header.destinationSocket.value) ||
                             IsNwlinkSmbSocket(header.sourceSocket.value);
    if (isSmbSocket && PeekU32(payload) == kSmbMarker) ReachLayer(at, DispatchTable::kApplication, kSmbIndex, payload);
    return 1;
  }
  AddBlock(in, Rest(c), "Padding");
  const Carried carried = FindCarried(header);
  if (Left(payload) > 0) CallDecoder(Deeper(at), payload, carried.decode, carried.title);
  return 1;
}

}  // namespace qxview
