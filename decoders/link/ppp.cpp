// Point-to-Point Protocol (RFC 1661), also in HDLC-like framing (RFC 1662).
//
//   0     1     2
//   0xFF  0x03  protocol (1 or 2)   payload
//
// Address and control may be left out, and the first byte of a protocol below 256: the byte that ends a protocol is
// odd, all others are even.
#include "core/line_facts.h"
#include "decoders/link/carried.h"
#include "decoders/link/llc.h"
#include "decoders/link/medium.h"
#include "decoders/link/ppp.h"
#include "decoders/link/ppp_compression.h"

namespace qxview {
namespace {

constexpr uint32_t kAllStations = 0xFF, kUnnumberedInformation = 0x03;
constexpr uint32_t kOsi = 0x0023, kBridging = 0x0031, kMultilink = 0x003D, kEncrypted = 0x0053, kCompressed = 0x00FD;

constexpr auto kProtocolNames = SortedNames({
    {0x0001, "Padding"}, {0x0003, "ROHC Small CID"}, {0x0005, "ROHC Large CID"}, {0x0021, "IP"}, {0x0023, "OSI"},
    {0x0025, "XNS IDP"}, {0x0027, "DECnet Phase IV"}, {0x0029, "AppleTalk"}, {0x002B, "NetWare IPX"},
    {0x002D, "Van Jacobson Compressed TCP/IP"}, {0x002F, "Van Jacobson Uncompressed TCP/IP"}, {0x0031, "Bridging PDU"},
    {0x0033, "Stream Protocol"}, {0x0035, "VINES"}, {0x0039, "AppleTalk EDDP"}, {0x003B, "AppleTalk SmartBuffered"},
    {0x003D, "Multilink"}, {0x003F, "NetBIOS"}, {0x0041, "Cisco Systems"}, {0x0043, "Ascom Timeplex"},
    {0x0045, "Fujitsu LBLB"}, {0x0047, "DCA Remote LAN"}, {0x0049, "SDTP"}, {0x004B, "SNA over 802.2"}, {0x004D, "SNA"},
    {0x004F, "IPv6 Header Compression"}, {0x0051, "KNX Bridging Data"}, {0x0053, "Encrypted Data"},
    {0x0055, "Link Encrypted Data"}, {0x0057, "IPv6"}, {0x0059, "PPP Mux"}, {0x005B, "VSNP"},
    {0x005D, "TRILL Network Protocol"}, {0x0061, "RTP Full Header"}, {0x0063, "RTP Compressed TCP"},
    {0x0065, "RTP Compressed Non-TCP"}, {0x0067, "RTP Compressed UDP 8"}, {0x0069, "RTP Compressed RTP 8"},
    {0x006F, "Stampede Bridging"}, {0x0073, "MP+"}, {0x00C1, "NTCITS IPI"}, {0x00FB, "Link Compressed Data"},
    {0x00FD, "Compressed Data"}, {0x0201, "802.1D Hello"}, {0x0203, "IBM Source Routing BPDU"},
    {0x0205, "DEC LAN Bridge"}, {0x0207, "CDP"}, {0x0209, "Netcs Twin Routing"},
    {0x020B, "Scheduled Transfer Protocol"}, {0x020D, "EDP"}, {0x0211, "OSCP"}, {0x0213, "OSCP"}, {0x0231, "Luxcom"},
    {0x0233, "Sigma Network Systems"}, {0x0235, "Apple Client Server Protocol"}, {0x0281, "MPLS Unicast"},
    {0x0283, "MPLS Multicast"}, {0x0285, "IEEE 1284.4 Data"}, {0x0287, "TETRA Network Protocol"},
    {0x0289, "Multichannel Flow Treatment Protocol"}, {0x2063, "RTP Compressed TCP No Delta"},
    {0x2065, "RTP Context State"}, {0x2067, "RTP Compressed UDP 16"}, {0x2069, "RTP Compressed RTP 16"},
    {0x4001, "Cray Communications Control Protocol"}, {0x4003, "CDPD Mobile Network Registration Protocol"},
    {0x4005, "Expand Accelerator Protocol"}, {0x4007, "ODSICP NCP"}, {0x4009, "DOCSIS DLL"},
    {0x400B, "Cetacean Network Detection Protocol"}, {0x4021, "Stacker LZS"}, {0x4023, "RefTek Protocol"},
    {0x4025, "Fibre Channel"}, {0x4027, "OpenDOF"}, {0x405B, "VSP"}, {0x405D, "TRILL Link State Protocol"},
    {0x8021, "IPCP"}, {0x8023, "OSINLCP"}, {0x8025, "XNSCP"}, {0x8027, "DNCP"}, {0x8029, "ATCP"}, {0x802B, "IPXCP"},
    {0x8031, "BCP"}, {0x8033, "Stream Protocol Control Protocol"}, {0x8035, "BVCP"}, {0x803D, "MLCP"},
    {0x803F, "NBFCP"}, {0x8041, "Cisco Systems Control Protocol"}, {0x8043, "Ascom Timeplex Control Protocol"},
    {0x8045, "Fujitsu LBLB Control Protocol"}, {0x8047, "RLNCP"}, {0x8049, "SDCP"}, {0x804B, "SNA802CP"},
    {0x804D, "SNACP"}, {0x804F, "IP6HCCP"}, {0x8051, "KNX Bridging Control Protocol"}, {0x8053, "ECP"},
    {0x8055, "ILECP"}, {0x8057, "IPV6CP"}, {0x8059, "MUXCP"}, {0x805B, "VSNCP"},
    {0x805D, "TRILL Network Control Protocol"}, {0x806F, "Stampede Bridging Control Protocol"},
    {0x8073, "MP+ Control Protocol"}, {0x80C1, "NTCITS IPI Control Protocol"}, {0x80FB, "ILCCP"}, {0x80FD, "CCP"},
    {0x8207, "CDPCP"}, {0x8209, "Netcs Twin Routing Control Protocol"}, {0x820B, "Scheduled Transfer Control Protocol"},
    {0x820D, "EDPCP"}, {0x8235, "Apple Client Server Protocol Control"}, {0x8281, "MPLSCP"},
    {0x8285, "IEEE 1284.4 Protocol Control"}, {0x8287, "TETRA Network Control Protocol"},
    {0x8289, "Multichannel Flow Treatment Control Protocol"}, {0xC021, "LCP"}, {0xC023, "PAP"}, {0xC025, "LQR"},
    {0xC027, "SPAP"}, {0xC029, "CBCP"}, {0xC02B, "BACP"}, {0xC02D, "BAP"}, {0xC05B, "VSAP"},
    {0xC081, "Container Control Protocol"}, {0xC223, "CHAP"}, {0xC225, "RSA Authentication"}, {0xC227, "EAP"},
    {0xC229, "Mitsubishi SIEP"}, {0xC26F, "Stampede Bridging Authorization Protocol"},
    {0xC281, "Proprietary Authentication Protocol"}, {0xC283, "Proprietary Authentication Protocol"},
    {0xC481, "Proprietary Node ID Authentication Protocol"}});

// Network protocols that have an Ethertype.
struct NetworkProtocol {
  uint16_t protocol, ethertype;
};
constexpr NetworkProtocol kNetworkProtocols[] = {
    {0x0021, 0x0800}, {0x0025, 0x0600}, {0x0027, 0x6003}, {0x0029, 0x809B}, {0x002B, 0x8137}, {0x0035, 0x0BAD},
    {0x0057, 0x86DD}, {0x0207, 0x2000}, {0x0281, 0x8847}, {0x0283, 0x8848}};

struct PppHeader {
  Field address, control, protocol;
};

PppHeader TakeHeader(Cursor& c) {
  PppHeader header{};
  if (Left(c) >= 2 && PeekU8(c) == kAllStations) {   // no protocol has this number, so that it cannot be one
    header.address = TakeU8(c);
    header.control = TakeU8(c);
  }
  header.protocol = Left(c) >= 1 && (PeekU8(c) & 1) ? TakeU8(c) : TakeU16(c);
  return header;
}

// Bridged frames (RFC 3518): flags and pad count, the medium, an identifier of the LAN when the flags say so.
int32_t DecodeBridging(const Place& in, const Place& network, Cursor c) {
  constexpr uint32_t kEthernet = 1, kTokenRing = 3, kFddi = 4;
  constexpr auto kMedia = SortedNames({{1, "Ethernet"}, {2, "Token Bus"}, {3, "Token Ring"}, {4, "FDDI"}});
  const Field flags = TakeU8(c);
  const BitPicture checked = BitsOf(flags, 0, 1), identified = BitsOf(flags, 1, 1), filled = BitsOf(flags, 2, 1);
  AddBitLine(in, flags, "%s: LAN Check Sequence = %s", checked.picture, checked.value ? "Present" : "Absent");
  AddBitLine(in, flags, "%s: LAN Identifier = %s", identified.picture, identified.value ? "Present" : "Absent");
  AddBitLine(in, flags, "%s: Zero Filled = %s", filled.picture, TrueOrFalse(filled.value));
  const BitPicture pads = BitsOf(flags, 4, 4);
  AddBitLine(in, flags, "%s: Pad Bytes = %u", pads.picture, pads.value);
  const Field medium = TakeU8(c);
  AddLine(in, medium, "MAC Type: %u = %s", medium.value, LookupName(kMedia, medium.value));
  if (flags.here && identified.value) {
    const Field lan = TakeU32(c);
    AddLine(in, lan, "LAN Identifier: %u", lan.value);
  }
  switch (medium.value) {
    case kEthernet: return DecodeCarriedFrame(network, c, Carried::kEthernet);
    case kTokenRing: return DecodeCarriedFrame(network, c, Carried::kTokenRing);
    case kFddi: {
      TakeU8(c);   // the byte that Token Ring's access control stands in
      return DecodeCarriedFrame(network, c, Carried::kFddi);
    }
    default: return DecodeCarriedFrame(network, c, Carried::kUnknown);
  }
}

// Whether a packet's protocol stands here: of one byte, or of two; none of padding and compressed headers.
bool StartsWithProtocol(const Cursor& c) {
  constexpr uint32_t kFraming = 0xFF03, kIp = 0x0021;
  const uint32_t protocol = PeekU8(c) & 1 ? PeekU8(c) : PeekU16(c);
  return PeekU16(c) == kFraming ||
         (protocol >= kIp && (protocol & 1) && LookupName(kProtocolNames, protocol, nullptr) != nullptr);
}

// Fragments of a bundle (RFC 1990, with the classes of RFC 2686). The links agree on sequence numbers of 24 or 12 bits: a
// fragment that begins a packet shows which, behind others the long ones are taken. What a fragment carries cannot be told
// unless it is a whole packet.
int32_t DecodeMultilink(const Place& in, const Place& network, Cursor c) {
  constexpr uint32_t kBegins = 0x80;
  Cursor behindShort = c, behindLong = c;
  TakeBytes(behindShort, 2);
  TakeBytes(behindLong, 4);
  const bool isShort = (PeekU8(c) & kBegins) && !StartsWithProtocol(behindLong) && StartsWithProtocol(behindShort);
  const Field head = isShort ? TakeU16(c) : TakeU32(c);
  const BitPicture begin = BitsOf(head, 0, 1), end = BitsOf(head, 1, 1);
  const BitPicture priority = BitsOf(head, 2, isShort ? 2 : 4), sequence = BitsOf(head, isShort ? 4 : 8, isShort ? 12 : 24);
  AddBitLine(in, head, "%s: Beginning Fragment = %s", begin.picture, TrueOrFalse(begin.value));
  AddBitLine(in, head, "%s: Ending Fragment = %s", end.picture, TrueOrFalse(end.value));
  AddBitLine(in, head, "%s: Class = %u", priority.picture, priority.value);
  AddBitLine(in, head, "%s: Sequence Number = %u", sequence.picture, sequence.value);
  if (head.here && begin.value && end.value) return DecodeCarriedFrame(network, c, Carried::kPpp);
  return CallDecoder(network, c, nullptr, "Multilink Fragment Data");
}

}  // namespace

const char* PppProtocolName(uint32_t protocol) { return LookupName(kProtocolNames, protocol); }

int32_t DispatchPppProtocol(const Place& in, const Place& network, Cursor c, uint32_t protocol) {
  ReachLayer(network, DispatchTable::kPpp, protocol, c);
  for (const NetworkProtocol& row : kNetworkProtocols) {
    if (row.protocol != protocol) continue;
    return DecodeCarriedPacket(network, c, row.ethertype);
  }
  if (protocol == kOsi) return DispatchNlpid(in, network, c);
  if (protocol == kBridging) return DecodeBridging(in, network, c);
  if (protocol == kMultilink) return DecodeMultilink(in, network, c);
  const char* name = LookupName(kProtocolNames, protocol, nullptr);
  if (!name) return CallDecoder(network, c, nullptr, "Raw Data");
  ShortText<64> title;
  FormatInto(title.text, sizeof title.text, "%s Data", name);
  DecoderFunction decode = FindPppControl(protocol);
  if (!decode) decode = FindPppLink(protocol);
  if (protocol == kCompressed) decode = DecodePppCompressed;
  if (protocol == kEncrypted) decode = DecodePppEncrypted;
  return CallDecoder(network, c, decode, title.text);
}

bool LooksLikePpp(const Cursor& c) {
  if (Left(c) < 2) return false;
  if (PeekU8(c) == kAllStations && PeekU8(c, 1) == kUnnumberedInformation) return true;
  const uint32_t protocol = PeekU16(c);
  return (protocol & 0x0101) == 1 && LookupName(kProtocolNames, protocol, nullptr) != nullptr;
}

int32_t DecodePpp(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "ppp");
  const Cursor start = c;
  const PppHeader header = TakeHeader(c);
  if (!header.protocol.here) return 0;
  const uint32_t protocol = header.protocol.value;
  const char* name = LookupName(kProtocolNames, protocol);
  const Place in = Under(at, AddLine(at, Ahead(start, Taken(c)), "PPP Header:  Protocol = %s", name));
  AddLine(in, header.address, "Address: 0x%.02X = All Stations", header.address.value);
  AddLine(in, header.control, "Control: 0x%.02X = %s", header.control.value,
          header.control.value == kUnnumberedInformation ? "Unnumbered Information" : kUnknown);
  AddLine(in, header.protocol, "Protocol: 0x%.04X = %s", protocol, name);
  DispatchPppProtocol(in, Deeper(at), c, protocol);
  return 1;
}

}  // namespace qxview
