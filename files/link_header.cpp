#include "files/link_header.h"

namespace qxview {

namespace {

constexpr uint16_t kIpv4 = 0x0800;
constexpr uint16_t kIpv6 = 0x86DD;

uint32_t Load16(const uint8_t* at) { return static_cast<uint32_t>(at[0] << 8 | at[1]); }
uint32_t Load32(const uint8_t* at) { return Load16(at) << 16 | Load16(at + 2); }

void SetRaw(uint32_t skip, uint16_t ethertype, LinkHeader* link) {
  link->medium = Medium::kEthernet;
  link->rawSkip = static_cast<uint8_t>(skip);
  link->rawEthertype = ethertype;
}

// The whole of a frame that is too short for its link header is that header.
bool HasHeader(const CaptureFrame& frame, uint32_t header, LinkHeader* link) {
  if (frame.dataLength >= header) return true;
  SetRaw(frame.dataLength, kRawUnknown, link);
  return false;
}

void ReadRawIp(const CaptureFrame& frame, LinkHeader* link) {
  uint8_t version = frame.dataLength ? frame.data[0] >> 4 : 0;
  SetRaw(0, version == 4 ? kIpv4 : version == 6 ? kIpv6 : uint16_t{kRawUnknown}, link);
}

// BSD loopback: an address family in the byte order of the machine that captured, or (LINKTYPE_LOOP) of the network.
// No family is above 16 bits, so the bytes tell their order. Every system has its own number for IPv6.
void ReadLoopback(const CaptureFrame& frame, LinkHeader* link) {
  if (!HasHeader(frame, 4, link)) return;
  uint32_t family = Load32(frame.data);
  if (family > 0xFFFF) family = __builtin_bswap32(family);
  uint16_t ethertype = kRawUnknown;
  switch (family) {
    case 2:
      ethertype = kIpv4;
      break;
    case 10:  // Linux
    case 24:  // NetBSD, OpenBSD, Npcap
    case 28:  // FreeBSD
    case 30:  // Darwin
      ethertype = kIpv6;
      break;
    case 16:
      ethertype = 0x809B;
      break;  // AppleTalk
    case 23:
      ethertype = 0x8137;
      break;  // IPX
  }
  SetRaw(4, ethertype, link);
}

LinkDirection CookedDirection(uint32_t packetType) {
  if (packetType == 4) return LinkDirection::kSent;
  return packetType <= 2 ? LinkDirection::kReceived : LinkDirection::kUnknown;  // 3 is a frame between others
}

// The protocol of a cooked frame is an Ethertype or a RawProtocol, but for some kinds of interface.
uint16_t CookedProtocol(uint32_t hardware, uint32_t protocol) {
  switch (hardware) {
    case 770:  // Frame Relay, with its header
    case 803:  // 802.11 with radiotap
    case 824:  // netlink
      return kRawUnknown;
    default:
      return protocol ? static_cast<uint16_t>(protocol) : uint16_t{kRawUnknown};
  }
}

void ReadCooked(const CaptureFrame& frame, LinkHeader* link) {
  if (!HasHeader(frame, 16, link)) return;
  SetRaw(16, CookedProtocol(Load16(frame.data + 2), Load16(frame.data + 14)), link);
  link->direction = CookedDirection(Load16(frame.data));
}

void ReadCooked2(const CaptureFrame& frame, LinkHeader* link) {
  if (!HasHeader(frame, 20, link)) return;
  SetRaw(20, CookedProtocol(Load16(frame.data + 8), Load16(frame.data)), link);
  link->direction = CookedDirection(frame.data[10]);
}

// An octet in front of the frame: 0 for one that was received, anything else for one that was sent.
void ReadWanDirection(const CaptureFrame& frame, LinkHeader* link) {
  link->medium = Medium::kWan;
  link->moved = frame.dataLength < 1 ? 0 : 1;
  if (link->moved) link->direction = frame.data[0] ? LinkDirection::kSent : LinkDirection::kReceived;
}

// Four bytes: direction and kind, VPI, VCI.
void ReadSunAtm(const CaptureFrame& frame, LinkHeader* link) {
  link->medium = Medium::kAtm;
  link->extensionTag = kExtensionAtm;
  link->moved = frame.dataLength < 4 ? frame.dataLength : 4;
  if (link->moved) link->direction = frame.data[0] & 0x80 ? LinkDirection::kSent : LinkDirection::kReceived;
}

}  // namespace

LinkHeader ReadLinkHeader(const CaptureFrame& frame) {
  LinkHeader link;
  link.checkSequenceLength = frame.checkSequenceLength;
  switch (frame.linkType) {
    case 1:
      link.medium = Medium::kEthernet;
      break;
    case 6:
      link.medium = Medium::kTokenRing;
      break;
    case 10:
      link.medium = Medium::kFddi;
      break;
    case 9:    // PPP
    case 50:   // PPP in HDLC-like framing
    case 104:  // Cisco HDLC
    case 107:  // Frame Relay
      link.medium = Medium::kWan;
      break;
    case 204:  // PPP, Cisco HDLC and Frame Relay with their direction
    case 205:
    case 206:
      ReadWanDirection(frame, &link);
      break;
    case 100:
      link.medium = Medium::kAtm;
      break;
    case 123:
      ReadSunAtm(frame, &link);
      break;
    case 224:  // FC-2
    case 225:  // FC-2 with frame delimiters
      link.medium = Medium::kFibreChannel;
      break;
    case 105:
      link.medium = Medium::kWireless;
      break;
    case 119:  // Prism; its drivers wrote AVS headers under the same number
    case 163:  // AVS
      ReadPrismOrAvs(frame.data, frame.dataLength, &link);
      break;
    case 127:
      ReadRadiotap(frame.data, frame.dataLength, &link);
      break;
    case 192:
      ReadPerPacketInformation(frame.data, frame.dataLength, &link);
      break;
    case 0:
    case 108:
      ReadLoopback(frame, &link);
      break;
    case 101:
      ReadRawIp(frame, &link);
      break;
    case 228:
      SetRaw(0, kIpv4, &link);
      break;
    case 229:
      SetRaw(0, kIpv6, &link);
      break;
    case 113:
      ReadCooked(frame, &link);
      break;
    case 276:
      ReadCooked2(frame, &link);
      break;
    default:
      break;
  }
  if (frame.direction != LinkDirection::kUnknown) link.direction = frame.direction;
  if (link.medium == Medium::kWan && link.direction != LinkDirection::kUnknown) {
    link.extensionTag = kExtensionMedium;
    link.hasWanLink = true;
  }
  return link;
}

}  // namespace qxview
