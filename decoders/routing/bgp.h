// The Border Gateway Protocol: what its files share.
#pragma once
#include "core/rows.h"
#include "decoders/net/connection_key.h"

namespace qxview {

// What the OPEN messages of both ends said, by ends: numbers of systems in four octets, families whose prefixes have path
// identifiers in front (bits of BgpFamilyBit), sent or received.
struct BgpSession {
  uint8_t seen[2], wide[2];
  uint32_t sendsPaths[2], receivesPaths[2];
};
uint32_t BgpFamilyBit(uint32_t afi, uint32_t safi);

struct Bgp {
  Field type, length, flags, code, afi, safi, count;
  BgpSession session;
  int32_t direction;      // the end that sends
  bool known;             // both opens were seen
  bool isWidthTold;       // by what carries the message
  bool hasPaths;          // the routes that are shown have path identifiers
  int32_t nesting;        // of attributes within one another
};

// Whole messages, one behind the other, that another protocol carries.
void ShowBgpMessages(const Place& in, Cursor& c, Bgp& bgp);

// The path attributes of an UPDATE; they take all that is left.
void ShowBgpAttributes(const Place& in, Cursor& c, Bgp& bgp);

// Routes of a family, one after the other, each labelled "Prefix" or "Withdrawn Prefix" and the like by `what`.
void ShowBgpRoutes(const Place& in, Cursor& c, uint32_t afi, uint32_t safi, const char* what, Bgp& bgp);
void ShowBgpEvpnRoutes(const Place& in, Cursor& c, Bgp& bgp);
void ShowBgpServiceChains(const Place& in, Cursor& c, Bgp& bgp);
void ShowBgpColorRoutes(const Place& in, Cursor& c, uint32_t afi, bool isVpn, Bgp& bgp);
void ShowBgpEdges(const Place& in, Cursor& c, Bgp& bgp);
void ShowBgpPolicies(const Place& in, Cursor& c, uint32_t afi, Bgp& bgp);
void ShowBgpMobileRoutes(const Place& in, Cursor& c, uint32_t afi, Bgp& bgp);
void ShowBgpPseudowires(const Place& in, Cursor& c, Bgp& bgp);
void ShowBgpEndpoints(const Place& in, Cursor& c, uint32_t afi, Bgp& bgp);
// The path identifier in front of a route, where the session has them.
Field TakeBgpPath(Cursor& c, const Bgp& bgp);
void ShowBgpPath(const Place& in, const Field& path);
void ShowBgpMulticastRoutes(const Place& in, Cursor& c, Bgp& bgp);
void ShowBgpFlows(const Place& in, Cursor& c, uint32_t afi, uint32_t safi, Bgp& bgp);
// What a component of a flow rule compares, behind its type.
void ShowBgpFlowComponent(const Place& in, Cursor& c, uint32_t type, uint32_t afi);
const char* BgpFlowComponentName(uint32_t type);
void ShowBgpLinkStates(const Place& in, Cursor& c, uint32_t safi, Bgp& bgp);
void ShowBgpLinkStateAttribute(const Place& in, Cursor& c, Bgp& bgp);

void ShowBgpExtendedCommunities(const Place& in, Cursor& c, Bgp& bgp);
void ShowBgpCommunities6(const Place& in, Cursor& c, Bgp& bgp);
void ShowBgpTunnels(const Place& in, Cursor& c, Bgp& bgp);
void ShowBgpPrefixSid(const Place& in, Cursor& c, Bgp& bgp);
void ShowBgpContainers(const Place& in, Cursor& c, Bgp& bgp);
void ShowBgpServicePath(const Place& in, Cursor& c, Bgp& bgp);
void ShowBgpHopCharacteristics(const Place& in, Cursor& c, Bgp& bgp);
void ShowBgpSignatures(const Place& in, Cursor& c, Bgp& bgp);

// A route distinguisher and a label, as lines and in the line above.
void ShowRouteDistinguisher(const Place& in, Cursor& c);
void ShowMplsLabel(const Place& in, Cursor& c, const char* label);
// An address behind its length in bits; nothing where that is 0.
void ShowCountedAddress(const Place& in, Cursor& c, const char* label);

}  // namespace qxview
