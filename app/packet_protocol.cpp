#include "app/packet_protocol.h"

#include <cstring>

#include "app/colors.h"
#include "core/dispatch.h"
#include "decoders/link/llc.h"
#include "decoders/net/ip_protocol_names.h"

namespace qxview {
namespace {

struct ShortName {
  std::string_view name;
  const char* shortName;
};

// Names that are longer than a column is wide.
constexpr ShortName kShortNames[] = {
    {"802.1X EAPOL", "EAPOL"},
    {"AppleTalk ARP", "AARP"},
    {"AppleTalk DDP", "DDP"},
    {"Cisco VNTag", "VNTag"},
    {"Connectivity Fault Management", "CFM"},
    {"DEC LAN Bridge", "DEC Bridge"},
    {"DEC MOP Remote Console", "MOP"},
    {"DECnet Phase IV", "DECnet"},
    {"MS Network Load Balancing", "MS NLB"},
    {"NetBIOS Datagram Service", "NBDS"},
    {"NetBIOS Name Service", "NBNS"},
    {"NetBIOS Session Service", "NBSS"},
    {"NetWare IPX", "IPX"},
    {"OSI Network Layer", "OSI"},
    {"OSI Null Layer", "OSI"},
    {"Oracle TNS", "TNS"},
    {"PPPoE Discovery", "PPPoE"},
    {"PPPoE Session", "PPPoE"},
    {"Service VLAN", "VLAN"},
    {"Slow Protocols", "Slow"},
    {"Spanning Tree BPDU", "STP"},
    {"Switch Link Management", "Switch"},
    {"Wireless IDS", "WIDS"},
};

const char* Shorten(const char* name) {
  for (const ShortName& row : kShortNames) {
    if (row.name == name) return row.shortName;
  }
  return name;
}

const char* IpName(uint32_t protocol, bool isSix) {
  const uint8_t key = static_cast<uint8_t>(protocol);
  const DecoderRow* row = isSix ? FindIPv6NextHeader(key) : FindIpProtocol(key);
  if (!row) row = isSix ? FindIpProtocol(key) : FindIPv6NextHeader(key);
  return row ? row->name : IpProtocolName(protocol, isSix ? "IPv6" : "IPv4");
}

const char* LinkName(const PacketState& packet) {
  const uint32_t key = packet.reached.key;
  if (packet.reached.table == DispatchTable::kPpp) return "PPP";
  if (packet.reached.table == DispatchTable::kLlc) {
    const DecoderRow* row = key < 0x100 ? FindLlcService(static_cast<LlcService>(key)) : nullptr;
    return row ? row->name : "LLC";
  }
  if (key > 0xFFFF) return "SLARP";
  const DecoderRow* row = FindEthertype(static_cast<uint16_t>(key));
  const char* name = row ? row->name : EthertypeName(static_cast<uint16_t>(key));
  return name ? name : "Ethertype";
}

struct Family {
  const char* color;
  std::string_view protocols;   // each between bars
};

constexpr Family kFamilies[] = {
    {kGreen, "|HTTP|HTTPS|TLS|"},
    {kBlue, "|DNS|LLMNR|MDNS|NBNS|DHCP|DHCPv6|NTP|SNMP|Syslog|RADIUS|"},
    {kViolet, "|SMB|LDAP|Kerberos|NBSS|NBDS|NetBIOS|ONC RPC|MSRPC|TNS|TDS|FIX|GIOP|IPX|"},
    {kMagenta, "|SIP|RTP|RTCP|RTSP|SCCP|MGCP|Megaco|H.225|RAS|H.245|CGP|IAX2|Minet|UNIStim|"},
    {kTeal, "|FTP|FTP Data|SMTP|POP3|Telnet|LPD|BitTorrent|FCIP|SSH|IMAP|"},
    {kNoColor, "|TCP|UDP|SCTP|IPv4|IPv6|"},
};

struct Trouble {
  std::string_view start, told;   // the summary starts with the one and holds the other behind it
};

constexpr Trouble kTroubles[] = {
    {"TCP", " RST"},
    {"TCP", "Bad Checksum"},
    {"IPv4", "Bad Header Checksum"},
    {"ICMP", "Unreachable"},
    {"ICMP", "Exceeded"},
    {"ICMP", "Packet Too Big"},
    {"ICMP", "Parameter Problem"},
    {"SCTP", "ABORT"},
    {"DNS Response", "Does Not Exist"},
    {"DNS Response", "Failure"},
    {"DNS Response", "Error"},
    {"DNS Response", "Refused"},
    {"SSL/TLS", "Alert: "},
    {"HTTP Reply Status=4", ""},
    {"HTTP Reply Status=5", ""},
    {"SIP Status: 4", ""},
    {"SIP Status: 5", ""},
    {"SIP Status: 6", ""},
    {"FTP Reply Code: 4", ""},
    {"FTP Reply Code: 5", ""},
    {"SMTP Reply: 4", ""},
    {"SMTP Reply: 5", ""},
    {"POP3 Response: -ERR", ""},
    {"SMB/CIFS", "STATUS_ACCESS"},
    {"SMB/CIFS", "NOT_FOUND"},
    {"SMB/CIFS", "DENIED"},
};

bool TellsTrouble(std::string_view summary) {
  for (const Trouble& trouble : kTroubles) {
    if (!summary.starts_with(trouble.start)) continue;
    if (summary.find(trouble.told, trouble.start.size()) != summary.npos) return true;
  }
  return false;
}

}  // namespace

const char* ProtocolNameOf(const PacketState& packet, char* scratch) {
  const ReachedLayer& reached = packet.reached;
  const bool isSix = packet.source.kind == kIPv6Kind;
  switch (reached.table) {
    case DispatchTable::kNone: return MediumName(packet.frame, scratch);
    case DispatchTable::kEthertype:
    case DispatchTable::kLlc:
    case DispatchTable::kPpp: return Shorten(LinkName(packet));
    case DispatchTable::kIpProtocol: return Shorten(IpName(reached.key, isSix));
    case DispatchTable::kIpFragment: return Shorten(IpName(reached.key & 0xFF, isSix));
    case DispatchTable::kApplication: break;
  }
  const DecoderRow* row = reached.key == kNoApplication ? nullptr : FindBuiltinDecoder(reached.key);
  return Shorten(row ? row->name : IpName(packet.carrier.key, isSix));
}

const char* ColorOfPacket(std::string_view protocol, std::string_view summary) {
  if (TellsTrouble(summary)) return kBoldRed;
  for (const Family& family : kFamilies) {
    const size_t at = family.protocols.find(protocol);
    if (protocol.empty() || at == family.protocols.npos || at == 0) continue;
    if (family.protocols[at - 1] == '|' && family.protocols[at + protocol.size()] == '|') return family.color;
  }
  return kBrown;   // links, routing and control
}

}  // namespace qxview
