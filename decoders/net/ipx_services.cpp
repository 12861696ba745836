// What NetWare routers and servers tell each other and are asked over IPX: routes (RIP), services (SAP), and the
// configuration of stations (Diagnostics). Numbers are big-endian.
//
//   RIP          operation (2)   networks: network (4)  hops (2)  ticks (2)
//   SAP          operation (2)   a request: service type (2)
//                                a response: service type (2)  name (48)  network (4)  node (6)  socket (2)  hops (2)
//   Diagnostics  a request: exclusion count (1)   nodes (6 each) that need not answer
//                a response: version (2)  SPX socket (2)  component count (1)   component (1), of routers and servers
//                with their networks: count (1)   type (1)  network (4)  node (6)
#include "decoders/net/ipx.h"

namespace qxview {
namespace {

constexpr int32_t kRouteSize = 8, kServiceSize = 64, kServiceNameSize = 48, kLocalNetworkSize = 11;
constexpr uint32_t kUnreachable = 16, kAllNetworks = 0xFFFFFFFF;
constexpr uint32_t kGeneralQuery = 1, kNearestQuery = 3;
constexpr uint32_t kFirstWithNetworks = 5, kLastWithNetworks = 7;

constexpr auto kRipNames = SortedNames({{1, "Request"}, {2, "Response"}});
constexpr auto kSapNames = SortedNames({
    {kGeneralQuery, "General Service Query"}, {2, "General Service Response"}, {kNearestQuery, "Nearest Service Query"},
    {4, "Nearest Service Response"},
});
constexpr auto kServiceNames = SortedNames({
    {0x0000, "Unknown"}, {0x0001, "User"}, {0x0002, "User Group"}, {0x0003, "Print Queue"}, {0x0004, "File Server"},
    {0x0005, "Job Server"}, {0x0006, "Gateway"}, {0x0007, "Print Server"}, {0x0008, "Archive Queue"},
    {0x0009, "Archive Server"}, {0x000A, "Job Queue"}, {0x000B, "Administration"}, {0x0017, "Diagnostics"},
    {0x0020, "NetBIOS"}, {0x0021, "SNA Gateway"}, {0x0023, "Asynchronous Gateway"}, {0x0024, "Remote Bridge"},
    {0x0026, "Bridge Server"}, {0x0027, "TCP/IP Gateway"}, {0x002D, "Time Synchronization Server"},
    {0x0047, "Advertising Print Server"}, {0x0053, "Print Queue User"}, {0x0098, "Access Server"},
    {0x009A, "Named Pipe Server"}, {0x0107, "Remote Console"}, {0x0111, "Test Server"},
    {0x0133, "Name Service Domain"}, {0x0135, "Name Service Profile"}, {0x0137, "Print Queue"},
    {0x0166, "Management"}, {0x0233, "Management Agent"}, {0x0237, "Network Discovery"},
    {0x026A, "Management Console"}, {0x026B, "Time Synchronization Server"}, {0x0278, "Directory Server"},
    {0x027B, "Management Agent"}, {0x0280, "File and Print Sharing"}, {0x030C, "Network Printer"},
    {0x0640, "RPC Server"}, {0xFFFF, "Any"},
});
constexpr auto kComponentNames = SortedNames({
    {0, "IPX/SPX"}, {1, "Router Driver"}, {2, "LAN Driver"}, {3, "Shell"}, {4, "Value-Added Process Shell"},
    {5, "Router"}, {6, "File Server/Router"}, {7, "Nondedicated File Server/Router"},
});
constexpr auto kNetworkTypeNames = SortedNames({{0, "Network Card"}, {1, "Virtual Board"}, {2, "Remote Line"}});

void AddHops(const Place& in, const Field& hops) {
  AddLine(in, hops, "Hops: %u%s", hops.value, hops.value >= kUnreachable ? " = Unreachable" : "");
}

void AddServiceType(const Place& in, const Field& type) {
  AddLine(in, type, "Service Type: 0x%.04X = %s", type.value, LookupName(kServiceNames, type.value));
}

void AddService(const Place& at, Cursor& c) {
  const Place in = Under(at, AddLine(at, Ahead(c, kServiceSize), "Service"));
  const Field type = TakeU16(c);
  AddServiceType(in, type);
  const Field name = TakeBytes(c, kServiceNameSize);
  AddLine(in, name, "Name: %s", Text(name));
  AppendToParent(in, name, ": %s, %s", Text(name), LookupName(kServiceNames, type.value));
  AddIpxNetworkLine(in, "Network", TakeBytes(c, 4));
  const Field node = TakeBytes(c, 6);
  AddLine(in, node, "Node: %s", MacText(node.bytes));
  const Field socket = TakeU16(c);
  AddLine(in, socket, "Socket: 0x%.04X = %s", socket.value, IpxSocketText(socket.value));
  AddHops(in, TakeU16(c));
}

// False when they do not fit.
bool AddLocalNetworks(const Place& at, Cursor& c) {
  const Field count = TakeU8(c);
  AddLine(at, count, "Local Network Count: %u", count.value);
  for (uint32_t i = 0; i < count.value; ++i) {
    if (Left(c) < kLocalNetworkSize) return false;
    const Place in = Under(at, AddLine(at, Ahead(c, kLocalNetworkSize), "Local Network"));
    const Field type = TakeU8(c);
    AddLine(in, type, "Type: %u = %s", type.value, LookupName(kNetworkTypeNames, type.value));
    const Field network = TakeBytes(c, 4);
    AddIpxNetworkLine(in, "Network", network);
    AppendToParent(in, network, ": %s", IpxNetworkText(network.bytes));
    const Field node = TakeBytes(c, 6);
    AddLine(in, node, "Node: %s", MacText(node.bytes));
  }
  return count.here;
}

}  // namespace

int32_t DecodeIpxRip(const Place& at, Cursor c) {
  if (Left(c) < 2) return 0;
  const Field operation = TakeU16(c);
  const char* name = LookupName(kRipNames, operation.value);
  const Place in = Under(at, AddLine(at, operation, "IPX RIP: %s", name));
  AddLine(in, operation, "Operation: %u = %s", operation.value, name);
  for (Loop loop; Left(c) >= kRouteSize && MoreAt(in, c, loop);) {
    const LineHandle line = AddLine(in, Ahead(c, kRouteSize), "Route");
    const Place route = Under(in, line);
    const Field network = TakeBytes(c, 4), hops = TakeU16(c), ticks = TakeU16(c);
    const bool all = ReadU32(network.bytes) == kAllNetworks;
    AppendToLine(in, line, ": %s%s, %u Hops, %u Ticks", IpxNetworkText(network.bytes), all ? " (all)" : "", hops.value,
                 ticks.value);
    AddIpxNetworkLine(route, "Network", network);
    AddHops(route, hops);
    AddLine(route, ticks, "Ticks: %u", ticks.value);
  }
  CoverBytes(in, c);
  AddBlock(in, Rest(c), "Extra Data");
  return 1;
}

int32_t DecodeIpxSap(const Place& at, Cursor c) {
  if (Left(c) < 2) return 0;
  const Field operation = TakeU16(c);
  const char* name = LookupName(kSapNames, operation.value);
  const Place in = Under(at, AddLine(at, operation, "IPX SAP: %s", name));
  AddLine(in, operation, "Operation: %u = %s", operation.value, name);
  const bool isQuery = operation.value == kGeneralQuery || operation.value == kNearestQuery;
  if (isQuery && Left(c) >= 2) {
    const Field type = TakeU16(c);
    AddServiceType(in, type);
    AppendToParent(in, type, ", %s", LookupName(kServiceNames, type.value));
  }
  for (Loop loop; !isQuery && Left(c) >= kServiceSize && MoreAt(in, c, loop);) AddService(in, c);
  CoverBytes(in, c);
  AddBlock(in, Rest(c), "Extra Data");
  return 1;
}

int32_t DecodeIpxDiagnosticRequest(const Place& at, Cursor c) {
  if (Left(c) < 1) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, 1), "IPX Diagnostics: Configuration Request"));
  const Field count = TakeU8(c);
  AddLine(in, count, "Exclusion Count: %u", count.value);
  for (uint32_t i = 0; i < count.value && Left(c) >= 6; ++i) {
    const Field node = TakeBytes(c, 6);
    AddLine(in, node, "Excluded Node: %s", MacText(node.bytes));
  }
  CoverBytes(in, c);
  AddBlock(in, Rest(c), "Extra Data");
  return 1;
}

int32_t DecodeIpxDiagnosticResponse(const Place& at, Cursor c) {
  constexpr int32_t kFixedSize = 5;
  if (Left(c) < kFixedSize) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, kFixedSize), "IPX Diagnostics: Configuration Response"));
  const Field major = TakeU8(c), minor = TakeU8(c);
  AddLine(in, major, "Major Version: %u", major.value);
  AddLine(in, minor, "Minor Version: %u", minor.value);
  const Field socket = TakeU16(c);
  AddLine(in, socket, "SPX Diagnostic Socket: 0x%.04X", socket.value);
  const Field count = TakeU8(c);
  AddLine(in, count, "Component Count: %u", count.value);
  bool fits = true;
  for (uint32_t i = 0; i < count.value && fits && Left(c) > 0; ++i) {
    const Field component = TakeU8(c);
    const LineHandle line =
        AddLine(in, component, "Component: %u = %s", component.value, LookupName(kComponentNames, component.value));
    if (component.value >= kFirstWithNetworks && component.value <= kLastWithNetworks) {
      fits = AddLocalNetworks(Under(in, line), c);
      SetRange(in, line, component.offset, c.offset - component.offset);
    }
  }
  CoverBytes(in, c);
  c.ranShort = false;
  AddBlock(in, Rest(c), "Extra Data");
  return 1;
}

}  // namespace qxview
