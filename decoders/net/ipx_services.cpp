// What NetWare routers and servers tell each other and are asked over IPX: routes (RIP), services (SAP), and the
// configuration of stations (Diagnostics). Numbers are big-endian.
//
//   RIP          operation (2)   networks: network (4)  hops (2)  ticks (2)
//   SAP          operation (2)   a request: service type (2)
//                                a response: service type (2)  name (48)  network (4)  node (6)  socket (2)  hops (2)
//   Diagnostics  a request: exclusion count (1)   nodes (6 each) that need not answer
//                a response: version (2)  SPX socket (2)  component count (1)   component (1), of routers and servers
//                with their networks: count (1)   type (1)  network (4)  node (6)
#include "core/line_facts.h"
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

const char* HopsNote(uint32_t hops) { return hops >= kUnreachable ? " = Unreachable" : ""; }
constexpr RowData kHops = Number(2, "Hops", HopsNote).Told("Hops: %u%s");

struct Route {
  Field network, hops, ticks;
};
constexpr auto kRouteRows = Rows<Route>({IpxNetwork("Network").Into(&Route::network), kHops.Into(&Route::hops),
                                         Number(2, "Ticks").Into(&Route::ticks)});

struct Service {
  Field type, name;
};
constexpr auto kServiceRows = Rows<Service>({
    Hex(2, "Service Type", kServiceNames).Into(&Service::type), Text(kServiceNameSize, "Name").Into(&Service::name),
    IpxNetwork("Network"), Mac("Node"), Hex(2, "Socket", IpxSocketText), kHops});
constexpr auto kQueryRows = Rows<NoValues>({Hex(2, "Service Type", kServiceNames).Note(", %s")});

struct List {
  Field count;
};
struct LocalNetwork {
  Field network;
};
constexpr auto kConfigurationRows = Rows<List>({
    Number(1, "Major Version"), Number(1, "Minor Version"), Hex(2, "SPX Diagnostic Socket"),
    Number(1, "Component Count").Into(&List::count)});
constexpr auto kNetworkCount = Rows<List>({Number(1, "Local Network Count").Into(&List::count)});
constexpr auto kNetworkRows = Rows<LocalNetwork>({
    Number(1, "Type", kNetworkTypeNames), IpxNetwork("Network").Into(&LocalNetwork::network), Mac("Node")});
constexpr auto kExclusions = Rows<List>({Number(1, "Exclusion Count").Into(&List::count)});
constexpr auto kExcluded = Rows<NoValues>({Mac("Excluded Node")});

void AddService(const Place& at, Cursor& c) {
  const Place in = Under(at, AddLine(at, Ahead(c, kServiceSize), "Service"));
  const Service service = ShowRows(in, c, kServiceRows);
  AppendToParent(in, service.name, ": %s, %s", Text(service.name), LookupName(kServiceNames, service.type.value));
}

// False when they do not fit.
bool AddLocalNetworks(const Place& at, Cursor& c) {
  const Field count = ShowRows(at, c, kNetworkCount).count;
  for (uint32_t i = 0; i < count.value; ++i) {
    if (Left(c) < kLocalNetworkSize) return false;
    const Place in = Under(at, AddLine(at, Ahead(c, kLocalNetworkSize), "Local Network"));
    const Field network = ShowRows(in, c, kNetworkRows).network;
    AppendToParent(in, network, ": %s", HexDigits(network));
  }
  return count.here;
}

}  // namespace

int32_t DecodeIpxRip(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "ipxrip");
  if (Left(c) < 2) return 0;
  const Field operation = TakeU16(c);
  const char* name = LookupName(kRipNames, operation.value);
  const Place in = Under(at, AddLine(at, operation, "IPX RIP: %s", name));
  AddLine(in, operation, "Operation: %u = %s", operation.value, name);
  for (Loop loop; Left(c) >= kRouteSize && MoreAt(in, c, loop);) {
    const Place under = Under(in, AddLine(in, Ahead(c, kRouteSize), "Route"));
    const Route route = ShowRows(under, c, kRouteRows);
    AppendToParent(under, route.ticks, ": %s%s, %u Hops, %u Ticks", HexDigits(route.network),
                   PeekU32(route.network) == kAllNetworks ? " (all)" : "", route.hops.value, route.ticks.value);
  }
  CoverBytes(in, c);
  AddBlock(in, Rest(c), "Extra Data");
  return 1;
}

int32_t DecodeIpxSap(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "ipxsap");
  if (Left(c) < 2) return 0;
  const Field operation = TakeU16(c);
  const char* name = LookupName(kSapNames, operation.value);
  const Place in = Under(at, AddLine(at, operation, "IPX SAP: %s", name));
  AddLine(in, operation, "Operation: %u = %s", operation.value, name);
  const bool isQuery = operation.value == kGeneralQuery || operation.value == kNearestQuery;
  if (isQuery && Left(c) >= 2) ShowRows(in, c, kQueryRows);
  for (Loop loop; !isQuery && Left(c) >= kServiceSize && MoreAt(in, c, loop);) AddService(in, c);
  CoverBytes(in, c);
  AddBlock(in, Rest(c), "Extra Data");
  return 1;
}

int32_t DecodeIpxDiagnosticRequest(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "ipxdiag");
  if (Left(c) < 1) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, 1), "IPX Diagnostics: Configuration Request"));
  const uint32_t count = ShowRows(in, c, kExclusions).count.value;
  for (uint32_t i = 0; i < count && Left(c) >= 6; ++i) ShowRows(in, c, kExcluded);
  CoverBytes(in, c);
  AddBlock(in, Rest(c), "Extra Data");
  return 1;
}

int32_t DecodeIpxDiagnosticResponse(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "ipxdiag");
  constexpr int32_t kFixedSize = 5;
  if (Left(c) < kFixedSize) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, kFixedSize), "IPX Diagnostics: Configuration Response"));
  const uint32_t count = ShowRows(in, c, kConfigurationRows).count.value;
  bool fits = true;
  for (uint32_t i = 0; i < count && fits && Left(c) > 0; ++i) {
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
