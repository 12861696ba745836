// The packet list's text for routing protocols that IP carries: OSPF (RFC 2328, RFC 5340), EIGRP (RFC 7868), PIM
// (RFC 7761), RSVP (RFC 2205).
#include "decoders/app/layer_summaries.h"

namespace qxview {
namespace {

constexpr auto kOspfNames = SortedNames({
    {1, "Hello"}, {2, "Database Description"}, {3, "Link State Request"}, {4, "Link State Update"},
    {5, "Link State Acknowledgement"},
});

constexpr auto kEigrpNames = SortedNames({
    {1, "Update"}, {2, "Request"}, {3, "Query"}, {4, "Reply"}, {5, "Hello"}, {6, "IPX SAP"}, {10, "SIA Query"},
    {11, "SIA Reply"},
});

constexpr auto kPimNames = SortedNames({
    {0, "Hello"}, {1, "Register"}, {2, "Register-Stop"}, {3, "Join/Prune"}, {4, "Bootstrap"}, {5, "Assert"},
    {6, "Graft"}, {7, "Graft-Ack"}, {8, "Candidate-RP-Advertisement"}, {9, "State Refresh"}, {10, "DF Election"},
});

constexpr auto kRsvpNames = SortedNames({
    {1, "Path"}, {2, "Resv"}, {3, "PathErr"}, {4, "ResvErr"}, {5, "PathTear"}, {6, "ResvTear"}, {7, "ResvConf"},
    {12, "Bundle"}, {13, "Ack"}, {15, "Srefresh"}, {20, "Hello"}, {21, "Notify"},
});

}  // namespace

void DescribeOspf(SummaryText& text, Cursor c, const PacketState&) {
  const Field version = TakeU8(c), type = TakeU8(c);
  TakeU16(c);   // length
  const Field router = TakeBytes(c, 4), area = TakeBytes(c, 4);
  Add(text, "OSPF");
  if (!type.here) return;
  Add(text, "v%u %s", version.value, LookupName(kOspfNames, type.value));
  if (router.here) Add(text, ", Router: %s", IPv4Text(router.bytes));
  if (area.here) Add(text, ", Area: %s", IPv4Text(area.bytes));
}

void DescribeEigrp(SummaryText& text, Cursor c, const PacketState&) {
  const Field version = TakeU8(c), type = TakeU8(c);
  TakeBytes(c, 6);   // checksum, flags
  const Field sequence = TakeU32(c), acknowledgement = TakeU32(c);
  TakeU16(c);        // virtual router
  const Field system = TakeU16(c);
  Add(text, "EIGRP");
  if (!type.here) return;
  const bool isAck = acknowledgement.here && acknowledgement.value != 0 && type.value == 5;
  Add(text, " %s", isAck ? "Acknowledgement" : LookupName(kEigrpNames, type.value));
  Add(text, ", Version: %u", version.value);
  if (sequence.here) Add(text, ", Sequence: %u", sequence.value);
  if (acknowledgement.here) Add(text, ", Acknowledgement: %u", acknowledgement.value);
  if (system.here) Add(text, ", Autonomous System: %u", system.value);
}

void DescribePim(SummaryText& text, Cursor c, const PacketState&) {
  const Field first = TakeU8(c);
  Add(text, "PIM");
  if (first.here) Add(text, "v%u %s", first.value >> 4, LookupName(kPimNames, first.value & 15));
}

void DescribeRsvp(SummaryText& text, Cursor c, const PacketState&) {
  TakeU8(c);    // version, flags
  const Field type = TakeU8(c);
  Add(text, "RSVP");
  if (type.here) Add(text, " %s", LookupName(kRsvpNames, type.value));
}

}  // namespace qxview
