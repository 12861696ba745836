// IPX, the network protocol of NetWare (over PPP: RFC 1552). Numbers are big-endian.
//
//   0         2       4                  5     6                                       18               30
//   checksum  length  transport control  type  destination network (4) node (6) socket (2)   source ...   payload
//
// The length counts the header in; Ethernet pads what is shorter than a frame, and some stations pad to an even length.
#include "decoders/net/ipx.h"

#include "core/line_facts.h"
#include "decoders/asn1/snmp.h"

namespace qxview {
namespace {

constexpr uint32_t kSmbMarker = 0xFF534D42, kSmbIndex = 0x65;   // the index of its decoder
constexpr int32_t kHeaderSize = 30;
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

constexpr auto kChecksumNotes = SortedNames({{kNoChecksum, " = Not Used"}});
const char* LengthNote(uint32_t length) { return length < kHeaderSize ? " (less than the header's)" : ""; }

struct IpxHeader {
  Field length, type;
  Field destination, destinationNode, destinationSocket;
  Field source, sourceNode, sourceSocket;
};
constexpr auto kHeader = Rows<IpxHeader>({
    Hex(2, "Checksum", NamesOr(kChecksumNotes, "")).Told("Checksum: 0x%.04X%s"),
    Number(2, "Length", LengthNote).Told("Length: %u%s").Into(&IpxHeader::length),
    Number(1, "Transport Control", " Hops"), Number(1, "Packet Type", kTypeNames).Into(&IpxHeader::type),
    IpxNetwork("Destination Network").Into(&IpxHeader::destination),
    Mac("Destination Node").Into(&IpxHeader::destinationNode),
    Hex(2, "Destination Socket", IpxSocketText).Into(&IpxHeader::destinationSocket),
    IpxNetwork("Source Network").Into(&IpxHeader::source), Mac("Source Node").Into(&IpxHeader::sourceNode),
    Hex(2, "Source Socket", IpxSocketText).Into(&IpxHeader::sourceSocket)});

// What is carried: its decoder, and the title of its bytes where there is none.
struct Carried {
  DecoderFunction decode;
  const char* title;
};

int32_t DecodeIpxSnmp(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "snmp");
  return DecodeSnmpPayload(at, c);
}

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

}  // namespace

const char* IpxSocketName(uint32_t socket) { return LookupName(kSocketNames, socket, nullptr); }

const char* IpxSocketText(uint32_t socket) {
  const char* name = IpxSocketName(socket);
  return name ? name : socket >= kFirstDynamic && socket < kFirstAssigned ? "Dynamic" : kUnknown;
}

void AddIpxNetworkLine(const Place& in, const Field& network, const char* label) {
  AddLine(in, network, "%s: %s", label, HexDigits(network));
}

int32_t DecodeIpx(const Place& at, Cursor c) {
  if (Left(c) < kHeaderSize) return 0;
  const IpxHeader header = PeekRows(c, kHeader);
  const Place in = Under(at, AddLine(at, Ahead(c, kHeaderSize), "IPX: %s, %s.%s.%.04X -> %s.%s.%.04X",
                                     LookupName(kTypeNames, header.type.value), HexDigits(header.source),
                                     HexDigits(header.sourceNode), header.sourceSocket.value, HexDigits(header.destination),
                                     HexDigits(header.destinationNode), header.destinationSocket.value));
  ShowRows(in, c, kHeader);
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
