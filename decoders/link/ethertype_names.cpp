// The names of Ethertypes (IEEE registration authority).
#include "core/dispatch.h"
#include "core/name_table.h"

namespace qxview {
namespace {

constexpr auto kEthertypeNames = SortedNames({
    {0x0800, "IP"}, {0x0806, "ARP"}, {0x8035, "Reverse ARP"}, {0x8100, "VLAN"}, {0x86DD, "IPv6"},
    {0x8847, "MPLS Unicast"}, {0x8848, "MPLS Multicast"}, {0x88A8, "Service VLAN"}});

}  // namespace

const char* EthertypeName(uint16_t ethertype) { return LookupName(kEthertypeNames, ethertype, nullptr); }

}  // namespace qxview
