#include "app/packet_protocol.h"

#include <cstring>

#include "app/colors.h"
#include "core/dispatch.h"
#include "decoders/link/llc.h"
#include "decoders/net/ip_protocol_names.h"

namespace qxview {
namespace {

constexpr size_t kColumn = 9;   // longer names are shown by the short one

bool IsAlphanumeric(char c) { return (c >= '0' && c <= '9') || ((c | 0x20) >= 'a' && (c | 0x20) <= 'z'); }

// Whether the short name only spells the name otherwise: "bittorrent".
bool Spells(const char* key, const char* name) {
  for (; *name; ++name) {
    if (!IsAlphanumeric(*name)) continue;
    while (*key && !IsAlphanumeric(*key)) ++key;
    if (!*key || (*key++ | 0x20) != (*name | 0x20)) return false;
  }
  return *key == 0;
}

// The protocol's name, or where it is too long for a column its short name in capitals, made in `scratch`.
const char* Shorten(const DecoderRow* row, const char* name, char* scratch) {
  if (!row || std::strlen(row->name) <= kColumn || Spells(row->protocol->key, row->name)) return row ? row->name : name;
  char* out = scratch;
  for (const char* key = row->protocol->key; *key && out < scratch + kMediumNameScratch - 1; ++key) {
    *out++ = *key >= 'a' && *key <= 'z' ? static_cast<char>(*key - ('a' - 'A')) : *key == '_' ? '-' : *key;
  }
  *out = 0;
  return scratch;
}

const char* IpName(uint32_t protocol, bool isSix, char* scratch) {
  const uint8_t key = static_cast<uint8_t>(protocol);
  const DecoderRow* row = isSix ? FindIPv6NextHeader(key) : FindIpProtocol(key);
  if (!row) row = isSix ? FindIpProtocol(key) : FindIPv6NextHeader(key);
  return Shorten(row, row ? nullptr : IpProtocolName(protocol, isSix ? "IPv6" : "IPv4"), scratch);
}

const char* LinkName(const PacketState& packet, char* scratch) {
  const uint32_t key = packet.reached.key;
  if (packet.reached.table == DispatchTable::kPpp) return "PPP";
  if (packet.reached.table == DispatchTable::kLlc) {
    const DecoderRow* row = key < 0x100 ? FindLlcService(static_cast<LlcService>(key)) : nullptr;
    return Shorten(row, "LLC", scratch);
  }
  if (key > 0xFFFF) return "SLARP";
  const DecoderRow* row = FindEthertype(static_cast<uint16_t>(key));
  const char* name = EthertypeName(static_cast<uint16_t>(key));
  return Shorten(row, name ? name : "Ethertype", scratch);
}

struct Family {
  const char* color;
  std::string_view protocols;   // each between bars
};

constexpr Family kFamilies[] = {
    {kGreen, "|HTTP|HTTPS|TLS|"},
    {kBlue, "|DNS|LLMNR|MDNS|NBNS|DHCP|DHCPv6|NTP|SNMP|Syslog|RADIUS|"},
    {kViolet, "|SMB|LDAP|Kerberos|NBSS|NBDGM|NetBIOS|ONC RPC|MSRPC|TNS|TDS|FIX|GIOP|IPX|"},
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
    case DispatchTable::kPpp: return LinkName(packet, scratch);
    case DispatchTable::kIpProtocol: return IpName(reached.key, isSix, scratch);
    case DispatchTable::kIpFragment: return IpName(reached.key & 0xFF, isSix, scratch);
    case DispatchTable::kApplication: break;
  }
  const DecoderRow* row = reached.key == kNoApplication ? nullptr : FindBuiltinDecoder(reached.key);
  return row ? Shorten(row, nullptr, scratch) : IpName(packet.carrier.key, isSix, scratch);
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
