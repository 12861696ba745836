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
};

struct NetlinkAttribute;
struct NetlinkTable {
  const NetlinkAttribute* attributes = nullptr;
  int32_t count = 0;
};
struct NetlinkAttribute {
  uint16_t code;
  NetlinkKind kind;
  const char* name;
  const NetlinkTable* below = nullptr;
  Names names = {};
};
template <size_t kCount>
constexpr NetlinkTable TableOf(const NetlinkAttribute (&attributes)[kCount]) {
  return {attributes, static_cast<int32_t>(kCount)};
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

// What netfilter's log writes of a packet, as netlink and a link type of captures have it.
extern const NetlinkTable kLoggedPacket;

}  // namespace qxview
