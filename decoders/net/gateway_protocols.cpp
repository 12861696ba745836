// Routing protocols of the early internet: the Exterior Gateway Protocol (RFC 904), the Gateway-to-Gateway Protocol (RFC 823)
// and IGRP, as its maker's paper describes it.
#include "core/internet_checksum.h"
#include "core/rows.h"
#include "decoders/common/checksum_line.h"

namespace qxview {
namespace {

struct Gateway {
  Field version, type, code, count, internal, external, more;
};

bool IsPartial(const Place& in, const Field& message) {
  const NetworkState& network = PacketOf(in).network;
  return !message.bytes || network.fragmented || network.totalLength > message.length;
}
void AddMessageChecksum(const Place& in, Cursor& c, const Field& message) {
  const bool isPartial = IsPartial(in, message);
  AddChecksumLine(in, TakeU16(c), "Checksum:", isPartial ? "Not Checked - Partial Capture" : nullptr,
                  isPartial ? 0 : SumWords(0, message.bytes, message.length), BadChecksum::kAlone);
}

// --- EGP ---

constexpr auto kEgpNames = SortedNames({
    {1, "Update Response/Indication"}, {2, "Poll Command"}, {3, "Neighbor Acquisition"}, {5, "Neighbor Reachability"},
    {8, "Error Response/Indication"}});
constexpr auto kAcquisitionNames = SortedNames({
    {0, "Request Command"}, {1, "Confirm Response"}, {2, "Refuse Response"}, {3, "Cease Command"}, {4, "Cease-Ack Response"}});
constexpr auto kReachabilityNames = SortedNames({{0, "Hello Command"}, {1, "I-H-U Response"}});
constexpr auto kStatusNames = SortedNames({
    {0, "Indeterminate"}, {1, "Up"}, {2, "Down"}, {3, "Insufficient Resources"}, {4, "Administratively Prohibited"},
    {5, "Going Down"}, {6, "Parameter Problem"}, {7, "Protocol Violation"}, {128, "Unsolicited"}});
constexpr auto kReasonNames = SortedNames({
    {0, "Unspecified"}, {1, "Bad EGP Header Format"}, {2, "Bad EGP Data Field Format"}, {3, "Reachability Info Unavailable"},
    {4, "Excessive Polling Rate"}, {5, "No Response"}, {6, "Unsupported Version"}});

constexpr auto kEgpHead = Rows<Gateway>({Number(1, "Version"), Number(1, "Type", kEgpNames).Into(&Gateway::type)});
constexpr auto kEgpAcquisition = Rows<Gateway>({
    Number(1, "Acquisition Code", kAcquisitionNames).Note(", %s"), Number(1, "Status", kStatusNames)});
constexpr auto kEgpReachability = Rows<Gateway>({
    Number(1, "Reachability Code", kReachabilityNames).Note(", %s"), Number(1, "Status", kStatusNames)});
constexpr auto kEgpCode = Rows<Gateway>({Number(1, "Code"), Number(1, "Status", kStatusNames)});
constexpr auto kEgpNumbers = Rows<Gateway>({Number(2, "Autonomous System").Note(", AS %u"), Number(2, "Sequence Number")});
constexpr auto kEgpIntervals = Rows<Gateway>({Number(2, "Hello Interval", " seconds"), Number(2, "Poll Interval", " seconds")});
constexpr auto kEgpPoll = Rows<Gateway>({Hex(2, "Reserved"), IPv4("Source Network")});
constexpr auto kEgpUpdate = Rows<Gateway>({
    Number(1, "Internal Gateways").Into(&Gateway::internal), Number(1, "External Gateways").Into(&Gateway::external),
    IPv4("Source Network")});
constexpr auto kEgpError = Rows<Gateway>({Number(2, "Reason", kReasonNames).Note(", %s"), Bytes(12, "Error Message Header")});

// Gateways by the host part of their addresses, in as many octets as the class of the source network leaves to hosts.
void ShowUpdate(const Place& in, Cursor& c, Gateway& gateway) {
  const uint32_t first = PeekU8(c, 2);
  ShowRows<Gateway>(in, c, kEgpUpdate, gateway);
  const int32_t hostSize = first < 128 ? 3 : first < 192 ? 2 : 1;
  const uint32_t all = gateway.internal.value + gateway.external.value;
  Loop loop;
  for (uint32_t i = 0; i < all && Left(c) > hostSize && MoreAt(in, c, loop); ++i) {
    const Cursor start = c;
    const LineHandle line = AddLine(in, Ahead(c, hostSize), "%s Gateway", i < gateway.internal.value ? "Internal" : "External");
    const Place under = Under(in, line);
    const Field host = TakeBytes(c, hostSize);
    AddLine(under, host, "Host: %s", HexText(host));
    const Field distances = TakeU8(c);
    AddLine(under, distances, "Number of Distances: %u", distances.value);
    Loop eachDistance;
    for (uint32_t j = 0; j < distances.value && Left(c) >= 2 && MoreAt(in, c, eachDistance); ++j) {
      const Field distance = TakeU8(c), networks = TakeU8(c);
      AddLine(under, distance, "Distance: %u", distance.value);
      AddLine(under, networks, "Number of Networks: %u", networks.value);
      Loop each;
      for (uint32_t k = 0; k < networks.value && MoreAt(in, c, each); ++k) {
        const uint32_t octet = PeekU8(c);
        const Field network = TakeBytes(c, octet < 128 ? 1 : octet < 192 ? 2 : 3);
        AddLine(under, network, "Network: %s", HexText(network));
      }
    }
    if (line) SetRange(in, line, start.offset, c.offset - start.offset);
  }
}

// --- GGP ---

constexpr auto kGgpNames = SortedNames({
    {0, "Echo Reply"}, {2, "Acknowledgement"}, {8, "Echo"}, {9, "Network Interface Status"}, {10, "Negative Acknowledgement"},
    {12, "Routing Update"}});
constexpr auto kGgpHead = Rows<Gateway>({Number(1, "GGP Type", kGgpNames).Into(&Gateway::type)});
constexpr auto kGgpSequence = Rows<Gateway>({Hex(1, "Unused"), Number(2, "Sequence Number")});
constexpr auto kGgpUpdate = Rows<Gateway>({Hex(1, "Unused"), Number(2, "Sequence Number"), Number(1, "Need Update"),
                                           Number(1, "Number of Distances")});

// --- IGRP ---

constexpr auto kIgrpNames = SortedNames({{1, "Update"}, {2, "Request"}});
constexpr auto kIgrpHead = Rows<Gateway>({
    Word(1), Bits(0, 4, "Version"), Bits(4, 4, "Opcode", kIgrpNames).Into(&Gateway::type), Number(1, "Edition"),
    Number(2, "Autonomous System").Note(", AS %u"), Number(2, "Interior Routes").Into(&Gateway::internal),
    Number(2, "System Routes").Into(&Gateway::external), Number(2, "Exterior Routes").Into(&Gateway::more)});
constexpr auto kIgrpRoute = Rows<Gateway>({
    Bytes(3, "Network Octets"), Number(3, "Delay", " tens of microseconds"), Number(3, "Bandwidth"), Number(2, "MTU"),
    Number(1, "Reliability"), Number(1, "Load"), Number(1, "Hop Count")});

}  // namespace

int32_t DecodeEgp(const Place& at, Cursor c) {
  enum : uint32_t { kUpdate = 1, kPoll = 2, kAcquisition = 3, kReachability = 5, kError = 8 };
  if (Left(c) < 10) return 0;
  const Field message = Ahead(c, Left(c));
  const Place in = Under(at, AddLine(at, message, "EGP %s", LookupName(kEgpNames, PeekU8(c, 1))));
  Gateway gateway = ShowRows(in, c, kEgpHead);
  const uint32_t type = gateway.type.value;
  ShowRows<Gateway>(in, c, type == kAcquisition    ? RowSpan<Gateway>(kEgpAcquisition)
                           : type == kReachability ? RowSpan<Gateway>(kEgpReachability)
                                                   : RowSpan<Gateway>(kEgpCode), gateway);
  AddMessageChecksum(in, c, message);
  ShowRows<Gateway>(in, c, kEgpNumbers, gateway);
  if (type == kAcquisition && Left(c) >= 4) ShowRows<Gateway>(in, c, kEgpIntervals, gateway);
  if (type == kPoll) ShowRows<Gateway>(in, c, kEgpPoll, gateway);
  if (type == kUpdate) ShowUpdate(in, c, gateway);
  if (type == kError) ShowRows<Gateway>(in, c, kEgpError, gateway);
  c.ranShort = false;
  AddBlock(in, Rest(c), "EGP Data");
  return 1;
}

int32_t DecodeGgp(const Place& at, Cursor c) {
  constexpr uint32_t kRoutingUpdate = 12;
  if (Left(c) < 1) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "GGP %s", LookupName(kGgpNames, PeekU8(c))));
  Gateway gateway = ShowRows(in, c, kGgpHead);
  const bool isUpdate = gateway.type.value == kRoutingUpdate;
  ShowRows<Gateway>(in, c, isUpdate ? RowSpan<Gateway>(kGgpUpdate) : RowSpan<Gateway>(kGgpSequence), gateway);
  c.ranShort = false;
  AddBlock(in, Rest(c), "GGP Data");
  return 1;
}

int32_t DecodeIgrp(const Place& at, Cursor c) {
  constexpr int32_t kHeadSize = 12, kRouteSize = 14;
  if (Left(c) < kHeadSize) return 0;
  const Field message = Ahead(c, Left(c));
  const Place in = Under(at, AddLine(at, message, "IGRP %s", LookupName(kIgrpNames, PeekU8(c) & 15)));
  Gateway gateway = ShowRows(in, c, kIgrpHead);
  AddMessageChecksum(in, c, message);
  const uint32_t interior = gateway.internal.value, system = interior + gateway.external.value;
  Loop loop;
  for (uint32_t i = 0; Left(c) >= kRouteSize && MoreAt(in, c, loop); ++i) {
    const Place under = Under(in, AddLine(in, Ahead(c, kRouteSize), "%s Route", i < interior ? "Interior" : i < system ? "System" : "Exterior"));
    ShowRows<Gateway>(under, c, kIgrpRoute, gateway);
  }
  AddBlock(in, Rest(c), "IGRP Data");
  return 1;
}

}  // namespace qxview
