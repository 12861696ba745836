// Netlink's attributes as data: a table for each list, by the attribute's number.
#pragma once
#include "core/rows.h"

namespace qxview {

enum class NetlinkKind : uint8_t {
  kFlag,       // there or not, without a value
  kNumber,     // of 1 to 8 bytes, in the order of the machine
  kNetwork,    // the same in network order
  kSigned,
  kText,
  kAddress,    // by its size: IPv4, IPv6, a hardware address
  kBytes,
  kNested,     // attributes of the table below
  kList,       // attributes whose numbers count them, each with attributes of the table below
  kRecord,     // numbers and addresses in a row: the table below has their sizes in place of numbers
  kWideRecord, // the same of 8 bytes each
  kHops,       // next hops: a record each, with attributes of the table below behind it
  kOfKind,     // attributes of the link's kind, which a text of the same list has named
  kOfSlave,    // the same of the kind that it is a slave to
};

struct NetlinkAttribute;
struct NetlinkTable {
  const NetlinkAttribute* attributes = nullptr;
  int32_t count = 0;
  const NetlinkTable* more = nullptr;   // where what is not found here is looked for
};
struct NetlinkAttribute {
  uint16_t code;
  NetlinkKind kind;
  const char* name;
  const NetlinkTable* below = nullptr;
  Names names = {};
};
template <size_t kCount>
constexpr NetlinkTable TableOf(const NetlinkAttribute (&attributes)[kCount], const NetlinkTable* more = nullptr) {
  return {attributes, static_cast<int32_t>(kCount), more};
}

// A family's messages: the header behind netlink's own, and the attributes that follow it.
struct NetlinkMessage {
  uint32_t type, flags;
  bool little;
};
void ShowNetlinkAttributes(const Place& in, Cursor& c, const NetlinkTable& table, bool little);

const char* NameRouteMessage(uint32_t type);
void ShowRouteMessage(const Place& in, Cursor& c, const NetlinkMessage& message);
const char* NameGenericMessage(uint32_t type);
void ShowGenericMessage(const Place& in, Cursor& c, const NetlinkMessage& message);
const char* NameFilterMessage(uint32_t type);
void ShowFilterMessage(const Place& in, Cursor& c, const NetlinkMessage& message);
const char* NameDiagnosisMessage(uint32_t type);
void ShowDiagnosisMessage(const Place& in, Cursor& c, const NetlinkMessage& message);

// What a link's kind ("bridge", "vlan") tells of itself and of its slaves; null for kinds that are not known.
const NetlinkTable* FindLinkKind(const Field& kind, bool ofSlave);

// The records and the families' own attributes of links, addresses, routes, neighbours and queues (netlink_links.cpp).
extern const NetlinkTable kLinkCounters, kLinkMap, kLinkFamilies, kIpv6Link, kBridgePort, kBridgeLink,
    kAddressCache, kNeighbourCache, kRouteCache, kMulticastCounters, kTrafficCounters, kTrafficRate, kTrafficCounters2,
    kUserRange, kPortRange;

// What netfilter's log writes of a packet, as netlink and a link type of captures have it.
extern const NetlinkTable kLoggedPacket;

}  // namespace qxview
