// Web Cache Communication Protocol: which caches does a router redirect traffic to? Version 1 (draft-forster-wrec-wccp-v1) and
// 2 (draft-mclaggan-wccp-v2rev1).
//
//   version 2   type (32)   version (16)   length (16)   components: type (16), length (16), value
//   version 1   type (32)   version (32, 4)   fields by the type
#include "core/elements.h"

namespace qxview {
namespace {

constexpr auto kMessageNames = SortedNames({
    {7, "Here I Am"}, {8, "I See You"}, {9, "Assign Buckets"}, {10, "Here I Am"}, {11, "I See You"}, {12,
    "Redirect Assign"},
    {13, "Removal Query"}});
constexpr auto kSecurityNames = SortedNames({{0, "None"}, {1, "MD5"}});
constexpr auto kServiceNames = SortedNames({{0, "Well-Known"}, {1, "Dynamic"}});
constexpr auto kServiceIds = SortedNames({{0, "HTTP"}});
constexpr auto kServiceMasks = SortedNames({
    {0x0001, "Source IP Hash"}, {0x0002, "Destination IP Hash"}, {0x0004, "Source Port Hash"}, {0x0008,
    "Destination Port Hash"},
    {0x0010, "Ports Defined"}, {0x0020, "Ports Are Source Ports"}, {0x0040, "Redirect Only Protocol 0"},
    {0x0100, "Source IP Alternative Hash"}, {0x0200, "Destination IP Alternative Hash"},
    {0x0400, "Source Port Alternative Hash"}, {0x0800, "Destination Port Alternative Hash"}});
constexpr auto kAssignmentNames = SortedNames({{0, "Hash"}, {1, "Mask"}, {2, "None"}, {3, "Extended"}});
constexpr auto kForwardingMasks = SortedNames({{1, "GRE"}, {2, "Layer 2 Rewrite"}});
constexpr auto kAssignmentMasks = SortedNames({{1, "Hash"}, {2, "Mask"}});
constexpr auto kCommandNames = SortedNames({{1, "Shutdown"}, {2, "Shutdown Response"}});
constexpr auto kAlternateNames = SortedNames({{0, "Hash"}, {1, "Mask"}, {2, "Alternate Mask"}});

struct Wccp {
  Field type, length, count, kind, flags;
};
constexpr auto kHeader = Rows<Wccp>({
    Number(4, "Message Type", kMessageNames).Into(&Wccp::type), Hex(2, "Version"), Number(2,
    "Length").Into(&Wccp::length)});
constexpr auto kHeader1 = Rows<Wccp>({Number(4, "Message Type", kMessageNames).Into(&Wccp::type)});
constexpr auto kVersion1 = Rows<Wccp>({Number(4, "Protocol Version")});

constexpr auto kSecurity = Rows<Wccp>({Number(4, "Security Option", kSecurityNames).Note(", %s").Into(&Wccp::kind)});
constexpr auto kChecksum = Rows<Wccp>({Bytes(16, "MD5 Checksum")});
constexpr auto kService = Rows<Wccp>({
    Number(1, "Service Type", kServiceNames), Number(1, "Service ID", kServiceIds), Number(1, "Priority"), Number(1,
    "Protocol"),
    Flags(4, "Service Flags", kServiceMasks)});
constexpr auto kPort = Rows<Wccp>({Number(2, "Port")});
constexpr auto kRouter = Rows<Wccp>({IPv4("Router Address"), Number(4, "Receive ID")});
constexpr auto kSentTo = Rows<Wccp>({IPv4("Sent To Address")});
constexpr auto kTarget = Rows<Wccp>({IPv4("Target Address")});
constexpr auto kReceived = Rows<Wccp>({Number(4, "Received From Addresses").Into(&Wccp::count)});
constexpr auto kReceivedFrom = Rows<Wccp>({IPv4("Received From Address")});
constexpr auto kCache = Rows<Wccp>({
    IPv4("Web Cache Address"), Number(2, "Hash Revision"), Hex(2, "Cache Flags").Into(&Wccp::flags), Flag(12,
    "Version Request"),
    Bits(13, 2, "Assignment Type", kAssignmentNames).Into(&Wccp::kind), Flag(15, "Historical Assignment")});
constexpr auto kWeight = Rows<Wccp>({Number(2, "Assignment Weight"), Number(2, "Status")});
constexpr auto kChange = Rows<Wccp>({Number(4, "Change Number")});
constexpr auto kKey = Rows<Wccp>({IPv4("Assignment Key Address"), Number(4, "Assignment Key Change Number")});
constexpr auto kRouters = Rows<Wccp>({Number(4, "Routers").Into(&Wccp::count)});
constexpr auto kRouterAddress = Rows<Wccp>({IPv4("Router Address")});
constexpr auto kCaches = Rows<Wccp>({Number(4, "Web Caches").Into(&Wccp::count)});
constexpr auto kCacheAddress = Rows<Wccp>({IPv4("Web Cache Address")});
constexpr auto kForwarding = Rows<Wccp>({Flags(4, nullptr, kForwardingMasks)});
constexpr auto kAssignment = Rows<Wccp>({Flags(4, nullptr, kAssignmentMasks)});
constexpr auto kTimer = Rows<Wccp>({Number(2, "Upper Limit"), Number(2, "Lower Limit")});
constexpr auto kCommand = Rows<Wccp>({
    Number(2, "Command", kCommandNames), Number(2, "Command Length"), IPv4("Web Cache Address")});
constexpr auto kAlternate = Rows<Wccp>({Number(2, "Assignment Type", kAlternateNames).Into(&Wccp::kind), Number(2,
    "Assignment Length")});
constexpr auto kSets = Rows<Wccp>({Number(4, "Mask and Value Sets").Into(&Wccp::count)});
constexpr auto kMask = Rows<Wccp>({
    Hex(4, "Source Address Mask"), Hex(4, "Destination Address Mask"), Hex(2, "Source Port Mask"), Hex(2,
    "Destination Port Mask"),
    Number(4, "Value Elements").Into(&Wccp::count)});
constexpr auto kValue = Rows<Wccp>({
    Hex(4, "Source Address Value"), Hex(4, "Destination Address Value"), Hex(2, "Source Port Value"),
    Hex(2, "Destination Port Value"), IPv4("Web Cache Address")});
constexpr auto kTable = Rows<Wccp>({
    Number(2, "Address Family"), Number(2, "Address Length").Into(&Wccp::length), Number(4,
    "Addresses").Into(&Wccp::count)});
constexpr auto kTableIPv4 = Rows<Wccp>({IPv4("Address")});
constexpr auto kTableIPv6 = Rows<Wccp>({IPv6("Address")});

void Repeat(const Place& in, Cursor& c, uint32_t count, RowSpan<Wccp> rows, Wccp& out) {
  Loop loop;
  for (uint32_t i = 0; i < count && MoreAt(in, c, loop); ++i) ShowRows<Wccp>(in, c, rows, out);
}

// A bit for each of 256 buckets, a line for eight.
void ShowBucketBits(const Place& at, Cursor& c) {
  constexpr int32_t kBytes = 32;
  if (Left(c) < kBytes) return;
  const Place in = Under(at, AddLine(at, Ahead(c, kBytes), "Bucket Blocks"));
  for (uint32_t i = 0; i < kBytes; ++i) {
    const Field eight = TakeU8(c);
    AddLine(in, eight, "Buckets: %u to %u, 0x%.02X", i * 8, i * 8 + 7, eight.value);
  }
}
// A byte for each bucket: the number of its web cache, and whether the other hash counts. Runs of the same are one line.
void ShowBucketList(const Place& at, Cursor& c) {
  constexpr uint32_t kUnassigned = 0xFF, kAlternate = 0x80;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "Bucket Assignment"));
  Loop loop;
  for (int32_t first = 0; MoreAt(in, c, loop);) {
    const uint32_t value = PeekU8(c);
    int32_t run = 1;
    while (run < Left(c) && PeekU8(c, run) == value) ++run;
    const Field buckets = TakeBytes(c, run);
    if (value == kUnassigned) {
      AddLine(in, buckets, "Buckets: %d to %d, Unassigned", first, first + run - 1);
    } else {
      AddLine(in, buckets, "Buckets: %d to %d, Web Cache %u%s", first, first + run - 1, value & ~kAlternate,
              value & kAlternate ? ", Alternate Hash" : "");
    }
    first += run;
  }
}

void ShowSecurity(const Place& in, Cursor& c, Wccp& out) {
  if (out.kind.value) ShowRows<Wccp>(in, c, kChecksum, out);
}
void ShowPorts(const Place& in, Cursor& c, Wccp& out) {
  constexpr uint32_t kMostPorts = 8;
  Repeat(in, c, kMostPorts, kPort, out);
}
void ShowRouterIdentity(const Place& in, Cursor& c, Wccp& out) {
  ShowRows<Wccp>(in, c, kRouter, out);
  ShowRows<Wccp>(in, c, kSentTo, out);
  ShowRows<Wccp>(in, c, kReceived, out);
  Repeat(in, c, out.count.value, kReceivedFrom, out);
}
void ShowMasks(const Place& at, Cursor& c, Wccp& out) {
  ShowRows<Wccp>(at, c, kSets, out);
  const uint32_t sets = out.count.value;
  Loop loop;
  for (uint32_t i = 0; i < sets && Left(c) >= 16 && MoreAt(at, c, loop); ++i) {
    const Place in = Under(at, AddLine(at, Ahead(c, 16), "Mask and Value Set %u", i + 1));
    ShowRows<Wccp>(in, c, kMask, out);
    Repeat(in, c, out.count.value, kValue, out);
  }
}
void ShowCache(const Place& at, Cursor& c, Wccp& out) {
  constexpr uint32_t kByHash = 0, kByMask = 1;
  if (Left(c) < 8) return;
  const Place in = Under(at, AddLine(at, Ahead(c, 8), "Web Cache %s", IPv4Text(PeekBytes(c, 0, 4).bytes)));
  ShowRows<Wccp>(in, c, kCache, out);
  if (out.kind.value == kByHash) ShowBucketBits(in, c);
  if (out.kind.value == kByMask) ShowMasks(in, c, out);
  if (out.kind.value <= kByMask) ShowRows<Wccp>(in, c, kWeight, out);
}
void ShowCacheList(const Place& in, Cursor& c, Wccp& out) {
  ShowRows<Wccp>(in, c, kCaches, out);
  const uint32_t count = out.count.value;
  Loop loop;
  for (uint32_t i = 0; i < count && MoreAt(in, c, loop); ++i) ShowCache(in, c, out);
}
void ShowRouterView(const Place& in, Cursor& c, Wccp& out) {
  ShowRows<Wccp>(in, c, kChange, out);
  ShowRows<Wccp>(in, c, kKey, out);
  ShowRows<Wccp>(in, c, kRouters, out);
  Repeat(in, c, out.count.value, kRouterAddress, out);
  ShowCacheList(in, c, out);
}
void ShowCacheView(const Place& in, Cursor& c, Wccp& out) {
  ShowRows<Wccp>(in, c, kChange, out);
  ShowRows<Wccp>(in, c, kRouters, out);
  Repeat(in, c, out.count.value, kRouter, out);
  ShowRows<Wccp>(in, c, kCaches, out);
  Repeat(in, c, out.count.value, kCacheAddress, out);
}
void ShowRouterAssignments(const Place& in, Cursor& c, Wccp& out) {
  ShowRows<Wccp>(in, c, kKey, out);
  ShowRows<Wccp>(in, c, kRouters, out);
  const uint32_t count = out.count.value;
  Loop loop;
  for (uint32_t i = 0; i < count && MoreAt(in, c, loop); ++i) {
    ShowRows<Wccp>(in, c, kRouter, out);
    ShowRows<Wccp>(in, c, kChange, out);
  }
}
void ShowBuckets(const Place& in, Cursor& c, Wccp& out) {
  ShowRows<Wccp>(in, c, kCaches, out);
  Repeat(in, c, out.count.value, kCacheAddress, out);
  if (Left(c) > 0) ShowBucketList(in, c);
}
void ShowAssignmentInfo(const Place& in, Cursor& c, Wccp& out) {
  ShowRouterAssignments(in, c, out);
  ShowBuckets(in, c, out);
}
void ShowAlternate(const Place& in, Cursor& c, Wccp& out) {
  const uint32_t kind = out.kind.value;
  ShowRouterAssignments(in, c, out);
  if (kind == 0) ShowBuckets(in, c, out);
  if (kind == 1) ShowMasks(in, c, out);
}
void ShowQuery(const Place& in, Cursor& c, Wccp& out) {
  ShowRows<Wccp>(in, c, kRouter, out);
  ShowRows<Wccp>(in, c, kSentTo, out);
  ShowRows<Wccp>(in, c, kTarget, out);
}
constexpr ElementForm kForm{.typeSize = 2, .lengthSize = 2};
constexpr auto kCapabilities = Choices<Wccp>({
    {1, "Forwarding Method", kForwarding}, {2, "Assignment Method", kAssignment}, {3, "Return Method", kForwarding},
    {4, "Transmit Interval", kTimer}, {5, "Timer Scale", kTimer}});
void ShowCapabilities(const Place& in, Cursor& c, Wccp& out) {
  ShowElements<Wccp>(in, c, kForm, "Capability", kCapabilities, out);
}
void ShowTable(const Place& in, Cursor& c, Wccp& out) {
  const bool isFour = out.length.value == 4;
  if (isFour || out.length.value == 16) {
    Repeat(in, c, out.count.value, isFour ? RowSpan<Wccp>(kTableIPv4) : RowSpan<Wccp>(kTableIPv6), out);
  }
}

constexpr auto kComponents = Choices<Wccp>({
    {0, "Security Info", kSecurity, ShowSecurity}, {1, "Service Info", kService, ShowPorts},
    {2, "Router Identity Info", {}, ShowRouterIdentity}, {3, "Web-Cache Identity Info", {}, ShowCache},
    {4, "Router View Info", {}, ShowRouterView}, {5, "Web-Cache View Info", {}, ShowCacheView},
    {6, "Redirect Assignment Info", {}, ShowAssignmentInfo}, {7, "Router Query Info", {}, ShowQuery},
    {8, "Capability Info", {}, ShowCapabilities}, {13, "Alternate Assignment", kAlternate, ShowAlternate},
    {14, "Assignment Map", {}, ShowMasks}, {15, "Command Extension", kCommand},
    {16, "Alternate Assignment Map", kAlternate, ShowMasks}, {17, "Address Table", kTable, ShowTable}});

// ---- Version 1.

constexpr auto kRevision = Rows<Wccp>({Number(4, "Hash Revision")});
constexpr auto kHashFlags = Rows<Wccp>({Hex(4, "Hash Flags")});
constexpr auto kReceivedId = Rows<Wccp>({Number(4, "Received ID")});
constexpr auto kSee = Rows<Wccp>({
    Number(4, "Change Number"), Number(4, "Received ID"), Number(4, "Web Caches").Into(&Wccp::count)});
void ShowHash(const Place& in, Cursor& c, Wccp& out) {
  ShowRows<Wccp>(in, c, kRevision, out);
  ShowBucketBits(in, c);
  ShowRows<Wccp>(in, c, kHashFlags, out);
}
constexpr auto kAssign = Rows<Wccp>({Number(4, "Received ID"), Number(4, "Web Caches").Into(&Wccp::count)});

void ShowVersion1(const Place& in, Cursor& c) {
  Wccp out{};
  ShowRows<Wccp>(in, c, kHeader1, out);
  if (out.type.value == 7 || out.type.value == 8) ShowRows<Wccp>(in, c, kVersion1, out);
  if (out.type.value == 7) {
    ShowHash(in, c, out);
    ShowRows<Wccp>(in, c, kReceivedId, out);
  }
  if (out.type.value == 8) {
    ShowRows<Wccp>(in, c, kSee, out);
    Loop loop;
    for (uint32_t i = 0; i < out.count.value && MoreAt(in, c, loop); ++i) {
      ShowRows<Wccp>(in, c, kCacheAddress, out);
      ShowHash(in, c, out);
    }
  }
  if (out.type.value == 9) {
    ShowRows<Wccp>(in, c, kAssign, out);
    Repeat(in, c, out.count.value, kCacheAddress, out);
    if (Left(c) > 0) ShowBucketList(in, c);
  }
}

}  // namespace

int32_t DecodeWccp(const Place& at, Cursor c) {
  constexpr uint32_t kFirst2 = 10;
  const uint32_t type = PeekU32(c);
  if (Left(c) < 8 || !LookupName(kMessageNames, type, nullptr)) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "WCCP: Version %u, %s", type < kFirst2 ? 1 : 2,
                                     LookupName(kMessageNames, type)));
  if (type < kFirst2) {
    ShowVersion1(in, c);
  } else {
    Wccp wccp = ShowRows(in, c, kHeader);
    Cursor body = TakeCursor(c, static_cast<int64_t>(wccp.length.value));
    ShowElements<Wccp>(in, body, kForm, "Component", kComponents, wccp);
    AddBlock(in, Rest(body), "Component Data");
  }
  c.ranShort = false;
  AddBlock(in, Rest(c), "WCCP Data");
  return 1;
}

}  // namespace qxview
