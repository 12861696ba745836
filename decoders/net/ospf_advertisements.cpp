// The link state advertisements of OSPF version 2 (RFC 2328 annex A.4, RFC 3101, RFC 1584).
#include "decoders/net/ospf.h"

namespace qxview {
namespace {

constexpr auto kLsaNames = SortedNames({
    {1, "Router"}, {2, "Network"}, {3, "Summary (IP Network)"}, {4, "Summary (ASBR)"}, {5, "AS External"},
    {6, "Group Membership"}, {7, "NSSA External"}, {8, "External Attributes"}, {9, "Opaque, Link-Local Scope"},
    {10, "Opaque, Area-Local Scope"}, {11, "Opaque, AS Scope"}});
constexpr auto kLinkNames = SortedNames({
    {1, "Point-to-Point"}, {2, "Transit Network"}, {3, "Stub Network"}, {4, "Virtual Link"}});
constexpr auto kRouterMasks = SortedNames({
    {0x01, "Area Border Router"}, {0x02, "AS Boundary Router"}, {0x04, "Virtual Link Endpoint"},
    {0x08, "Wild-Card Multicast Receiver"}, {0x10, "NSSA Translator"}, {0x80, "Host"}});
constexpr auto kVertexNames = SortedNames({{1, "Router"}, {2, "Network"}});
constexpr auto kMetricTypeNames = SortedNames({{0, "Type 1"}, {1, "Type 2"}});

constexpr auto kRouter = Rows<Ospf>({
    Flags(1, "Router Flags", kRouterMasks), Hex(1, "Reserved"), Number(2, "Number of Links").Into(&Ospf::count)});
constexpr auto kLink = Rows<Ospf>({
    IPv4("Link ID").Note(", ID %s"), IPv4("Link Data").Note(", Data %s"), Number(1, "Link Type", kLinkNames).Note(", %s"),
    Number(1, "Number of TOS Metrics").Into(&Ospf::size), Number(2, "Metric").Note(", Metric %u")});
constexpr auto kTosMetric = Rows<Ospf>({Number(1, "TOS"), Hex(1, "Reserved"), Number(2, "TOS Metric")});
constexpr auto kMask = Rows<Ospf>({IPv4("Network Mask")});
constexpr auto kAttached = Rows<Ospf>({IPv4("Attached Router")});
constexpr auto kSummary = Rows<Ospf>({Number(1, "TOS"), Number(3, "Metric").Note(", Metric %u")});
constexpr auto kExternal = Rows<Ospf>({
    Word(1), Bits(0, 1, "External Metric Type", kMetricTypeNames), Bits(1, 7, "TOS"), Number(3, "Metric").Note(", Metric %u"),
    IPv4("Forwarding Address"), Number(4, "External Route Tag")});
constexpr auto kMember = Rows<Ospf>({Number(4, "Vertex Type", kVertexNames), IPv4("Vertex ID")});

void ShowLinks(const Place& in, Cursor& c, Ospf& ospf) {
  constexpr int32_t kLinkSize = 12;
  ShowRows<Ospf>(in, c, kRouter, ospf);
  const uint32_t count = ospf.count.value;
  Loop loop;
  for (uint32_t i = 0; i < count && Left(c) >= kLinkSize && MoreAt(in, c, loop); ++i) {
    const int32_t size = kLinkSize + 4 * static_cast<int32_t>(PeekU8(c, 9));
    Cursor link = TakeCursor(c, size);
    const Place under = Under(in, AddLine(in, Ahead(link, Left(link)), "Link"));
    ShowRows<Ospf>(under, link, kLink, ospf);
    Loop metrics;
    while (Left(link) >= 4 && MoreAt(in, link, metrics)) ShowRows<Ospf>(under, link, kTosMetric, ospf);
  }
}

void ShowAll(const Place& in, Cursor& c, RowSpan<Ospf> rows, int32_t size, Ospf& ospf) {
  Loop loop;
  while (Left(c) >= size && MoreAt(in, c, loop)) ShowRows<Ospf>(in, c, rows, ospf);
}

}  // namespace

const char* OspfLsaName(uint32_t type) { return LookupName(kLsaNames, type); }

void ShowOspfAdvertisement(const Place& in, Cursor& c, Ospf& ospf) {
  constexpr int32_t kExternalSize = 12;
  switch (ospf.type.value) {
    case 1: ShowLinks(in, c, ospf); break;
    case 2:
      ShowRows<Ospf>(in, c, kMask, ospf);
      ShowAll(in, c, kAttached, 4, ospf);
      break;
    case 3: case 4:
      ShowRows<Ospf>(in, c, kMask, ospf);
      ShowAll(in, c, kSummary, 4, ospf);
      break;
    case 5: case 7:
      ShowRows<Ospf>(in, c, kMask, ospf);
      ShowAll(in, c, kExternal, kExternalSize, ospf);
      break;
    case 6: ShowAll(in, c, kMember, 8, ospf); break;
    case 9: case 10: case 11: ShowOspfOpaque(in, c, ospf); break;
    default: break;
  }
}

}  // namespace qxview
