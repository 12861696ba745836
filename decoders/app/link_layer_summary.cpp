// The packet list's text for what links carry beside IP: ARP (RFC 826), EAPOL (IEEE 802.1X), LLDP (IEEE 802.1AB), CDP,
// slow protocols (IEEE 802.3 annex 57A), PPPoE (RFC 2516), pause frames, spanning tree (IEEE 802.1D), IPX, IS-IS
// (ISO 10589), PPP's control protocols (RFC 1661).
#include "decoders/app/layer_summaries.h"
#include "decoders/app/summaries.h"
#include "decoders/net/ipx.h"

namespace qxview {
namespace {

constexpr auto kEapolNames = SortedNames({
    {0, "EAP Packet"}, {1, "Start"}, {2, "Logoff"}, {3, "Key"}, {4, "Alert"}, {5, "MKA"},
});
constexpr auto kEapCodeNames = SortedNames({{1, "Request"}, {2, "Response"}, {3, "Success"}, {4, "Failure"}});
constexpr auto kEapTypeNames = SortedNames({
    {1, "Identity"}, {2, "Notification"}, {3, "Nak"}, {4, "MD5 Challenge"}, {5, "One-Time Password"},
    {6, "Token Card"}, {13, "TLS"}, {17, "LEAP"}, {18, "SIM"}, {21, "TTLS"}, {23, "AKA"}, {25, "PEAP"},
    {26, "MSCHAPv2"}, {43, "FAST"}, {50, "AKA'"}, {254, "Expanded"},
});

constexpr auto kPppoeNames = SortedNames({
    {0x00, "Session Data"}, {0x07, "PADO (Active Discovery Offer)"}, {0x09, "PADI (Active Discovery Initiation)"},
    {0x19, "PADR (Active Discovery Request)"}, {0x65, "PADS (Active Discovery Session-Confirmation)"},
    {0xA7, "PADT (Active Discovery Terminate)"},
});

constexpr auto kIsIsNames = SortedNames({
    {15, "L1 LAN Hello"}, {16, "L2 LAN Hello"}, {17, "Point-to-Point Hello"}, {18, "L1 Link State PDU"},
    {20, "L2 Link State PDU"}, {24, "L1 Complete Sequence Numbers"}, {25, "L2 Complete Sequence Numbers"},
    {26, "L1 Partial Sequence Numbers"}, {27, "L2 Partial Sequence Numbers"},
});

constexpr auto kPppCodeNames = SortedNames({
    {1, "Configure-Request"}, {2, "Configure-Ack"}, {3, "Configure-Nak"}, {4, "Configure-Reject"},
    {5, "Terminate-Request"}, {6, "Terminate-Ack"}, {7, "Code-Reject"}, {8, "Protocol-Reject"}, {9, "Echo-Request"},
    {10, "Echo-Reply"}, {11, "Discard-Request"}, {12, "Identification"}, {13, "Time-Remaining"},
    {14, "Reset-Request"}, {15, "Reset-Ack"},
});
constexpr auto kPapCodeNames = SortedNames({
    {1, "Authenticate-Request"}, {2, "Authenticate-Ack"}, {3, "Authenticate-Nak"},
});
constexpr auto kChapCodeNames = SortedNames({{1, "Challenge"}, {2, "Response"}, {3, "Success"}, {4, "Failure"}});
constexpr auto kPppProtocolNames = SortedNames({
    {0x8021, "IPCP"}, {0x8023, "OSINLCP"}, {0x8025, "XNSCP"}, {0x8029, "ATCP"}, {0x802B, "IPXCP"}, {0x8031, "BCP"},
    {0x803F, "NBFCP"}, {0x8053, "ECP"}, {0x8057, "IPV6CP"}, {0x80FD, "CCP"}, {0x8207, "CDPCP"}, {0x8281, "MPLSCP"},
    {0xC021, "LCP"}, {0xC023, "PAP"}, {0xC025, "LQR"}, {0xC029, "CBCP"}, {0xC02B, "BACP"}, {0xC02D, "BAP"},
    {0xC223, "CHAP"}, {0xC227, "EAP"},
});

// A text of the elements that LLDP and CDP are made of.
void AddElementText(SummaryText& text, const char* label, const Cursor& element) {
  if (Left(element) < 1) return;
  Add(text, ", %s: ", label);
  AddPrintable(text, element.at, Left(element), 64);
}

}  // namespace

void DescribeEapol(SummaryText& text, Cursor c, const PacketState&) {
  constexpr uint32_t kEapPacket = 0, kWithType = 2;
  const Field version = TakeU8(c), type = TakeU8(c), length = TakeU16(c);
  Add(text, "802.1X EAPOL");
  if (!type.here) return;
  Add(text, " %s, Version: %u", LookupName(kEapolNames, type.value), version.value);
  if (type.value != kEapPacket) {
    if (length.here) Add(text, ", Length: %u", length.value);
    return;
  }
  const Field code = TakeU8(c), identifier = TakeU8(c);
  TakeU16(c);
  if (identifier.here) Add(text, ", %s, ID: %u", LookupName(kEapCodeNames, code.value), identifier.value);
  const Field method = TakeU8(c);
  if (method.here && code.value <= kWithType) Add(text, ", %s", LookupName(kEapTypeNames, method.value));
}

void DescribeLldp(SummaryText& text, Cursor c, const PacketState&) {
  enum Element : uint32_t { kEnd = 0, kChassis = 1, kPort = 2, kLifetime = 3, kSystemName = 5 };
  constexpr uint32_t kMacChassis = 4, kMacPort = 3;
  constexpr int32_t kMostElements = 16;
  Add(text, "LLDP");
  for (int32_t i = 0; i < kMostElements && Left(c) >= 2; ++i) {
    const uint32_t head = TakeU16(c).value;
    Cursor body = TakeCursor(c, head & 0x1FF);
    const uint32_t element = head >> 9;
    if (element == kEnd) return;
    if (element == kLifetime) {
      const Field seconds = TakeU16(body);
      if (seconds.here) Add(text, ", Time To Live: %u", seconds.value);
    } else if (element == kChassis || element == kPort) {
      const uint32_t form = TakeU8(body).value;
      const char* label = element == kChassis ? "Chassis" : "Port";
      if (form == (element == kChassis ? kMacChassis : kMacPort) && Left(body) == 6) {
        Add(text, ", %s: %s", label, MacText(body.at));
      } else {
        AddElementText(text, label, body);
      }
    } else if (element == kSystemName) {
      AddElementText(text, "System", body);
    }
  }
}

void DescribeCdp(SummaryText& text, Cursor c, const PacketState&) {
  enum Element : uint32_t { kDevice = 1, kPort = 3, kPlatform = 6 };
  constexpr int32_t kMostElements = 16;
  const Field version = TakeU8(c), lifetime = TakeU8(c);
  TakeU16(c);   // checksum
  Add(text, "CDP");
  if (lifetime.here) Add(text, " Version: %u, Time To Live: %u", version.value, lifetime.value);
  for (int32_t i = 0; i < kMostElements && Left(c) >= 4; ++i) {
    const uint32_t element = TakeU16(c).value, length = TakeU16(c).value;
    if (length < 4) return;
    const Cursor body = TakeCursor(c, length - 4);
    if (element == kDevice) AddElementText(text, "Device", body);
    if (element == kPort) AddElementText(text, "Port", body);
    if (element == kPlatform) AddElementText(text, "Platform", body);
  }
}

void DescribeSlowProtocol(SummaryText& text, Cursor c, const PacketState&) {
  constexpr auto kNames = SortedNames({{1, "LACP"}, {2, "LACP Marker"}, {3, "OAM"}, {10, "OSSP"}});
  constexpr uint32_t kLacp = 1;
  const Field subtype = TakeU8(c), version = TakeU8(c);
  if (!subtype.here) return Add(text, "Slow Protocols");
  Add(text, "%s", LookupName(kNames, subtype.value, "Slow Protocols"));
  if (subtype.value != kLacp || !version.here) return;
  Add(text, " Version: %u", version.value);
  static constexpr const char* kParties[] = {"Actor", "Partner"};
  for (const char* party : kParties) {
    TakeBytes(c, 4);   // kind, length, system priority
    const Field system = TakeBytes(c, 6), key = TakeU16(c);
    TakeU16(c);        // port priority
    const Field port = TakeU16(c);
    TakeBytes(c, 4);   // state, reserved
    if (port.here) Add(text, ", %s: %s Key %u Port %u", party, MacText(system.bytes), key.value, port.value);
  }
}

void DescribePppoe(SummaryText& text, Cursor c, const PacketState&) {
  TakeU8(c);
  const Field code = TakeU8(c), session = TakeU16(c);
  Add(text, "PPPoE");
  if (code.here) Add(text, " %s", LookupName(kPppoeNames, code.value));
  if (session.here) Add(text, ", Session: 0x%.04X", session.value);
  if (!code.here || code.value != 0) return;
  TakeU16(c);   // length
  const Field protocol = TakeU16(c);
  const char* name = protocol.here ? LookupName(kPppProtocolNames, protocol.value, nullptr) : nullptr;
  if (!name) return;
  Add(text, ", PPP %s", name);
  const Field message = TakeU8(c);
  if (message.here) Add(text, " %s", LookupName(kPppCodeNames, message.value));
}

void DescribePause(SummaryText& text, Cursor c, const PacketState&) {
  const Field operation = TakeU16(c), time = TakeU16(c);
  Add(text, "MAC Control");
  if (operation.here && operation.value == 1 && time.here) return Add(text, " Pause, Quanta: %u", time.value);
  if (operation.here) Add(text, " Operation 0x%.04X", operation.value);
}

void DescribeSpanningTree(SummaryText& text, Cursor c, const PacketState&) {
  constexpr uint32_t kConfiguration = 0x00, kRapid = 0x02, kTopologyChange = 0x80;
  TakeU16(c);   // protocol
  const Field version = TakeU8(c), type = TakeU8(c);
  Add(text, "Spanning Tree");
  if (!type.here) return;
  if (type.value == kTopologyChange) return Add(text, " Topology Change Notification");
  if (type.value != kConfiguration && type.value != kRapid) return Add(text, " Type 0x%.02X", type.value);
  Add(text, type.value == kConfiguration ? " Configuration" : version.value >= 3 ? " MST" : " RST");
  const Field flags = TakeU8(c);
  const Field rootPriority = TakeU16(c), root = TakeBytes(c, 6), cost = TakeU32(c);
  const Field bridgePriority = TakeU16(c), bridge = TakeBytes(c, 6), port = TakeU16(c);
  if (flags.here && flags.value & 1) Add(text, ", Topology Change");
  if (cost.here) Add(text, ", Root: %u/%s, Cost: %u", rootPriority.value, MacText(root.bytes), cost.value);
  if (bridge.here) Add(text, ", Bridge: %u/%s", bridgePriority.value, MacText(bridge.bytes));
  if (port.here) Add(text, ", Port: 0x%.04X", port.value);
}

void DescribeIsIs(SummaryText& text, Cursor c, const PacketState&) {
  constexpr uint32_t kLastHello = 17;
  TakeU32(c);   // discriminator, header length, version, identifier length
  const Field type = TakeU8(c);
  TakeBytes(c, 3);
  Add(text, "IS-IS");
  if (!type.here) return;
  const uint32_t kind = type.value & 31;
  Add(text, " %s", LookupName(kIsIsNames, kind));
  if (kind <= kLastHello) TakeU8(c);   // circuit type
  if (kind > kLastHello) TakeBytes(c, kind < 24 ? 4 : 2);   // lengths and lifetime
  const Field system = TakeBytes(c, 6);
  if (system.here) Add(text, ", System: %s", HexDigits(system));
}

void DescribePppControl(SummaryText& text, Cursor c, const PacketState& packet) {
  constexpr uint32_t kPap = 0xC023, kChap = 0xC223, kEap = 0xC227;
  const uint32_t protocol = packet.reached.key;
  const char* name = LookupName(kPppProtocolNames, protocol, nullptr);
  if (!name) return Add(text, "PPP Protocol 0x%.04X, %d bytes", protocol, Left(c));
  Add(text, "PPP %s", name);
  const Field code = TakeU8(c), identifier = TakeU8(c), length = TakeU16(c);
  if (!code.here) return;
  const char* message = protocol == kPap    ? LookupName(kPapCodeNames, code.value)
                        : protocol == kChap ? LookupName(kChapCodeNames, code.value)
                        : protocol == kEap  ? LookupName(kEapCodeNames, code.value)
                                            : LookupName(kPppCodeNames, code.value);
  Add(text, " %s", message);
  if (identifier.here) Add(text, ", ID: %u", identifier.value);
  if (length.here) Add(text, ", Length: %u", length.value);
}

}  // namespace qxview
