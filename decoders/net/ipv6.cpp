// Internet Protocol, version 6 (RFC 8200): from which address to which does this packet travel, and what does it carry?
//
//   0   version (4), traffic class (8), flow label (20)
//   4   payload length (16)   next header (8)   hop limit (8)
//   8   source address (128)
//   24  destination address (128)
//   40  extension headers, each naming the next, then the payload
#include <cstring>

#include "core/line_facts.h"
#include "decoders/net/ah.h"
#include "decoders/net/ip_protocol_names.h"
#include "decoders/net/ipv6_checksum.h"
#include "decoders/net/ipv6_extensions.h"
#include "decoders/net/quoted.h"

namespace qxview {
namespace {

constexpr int32_t kHeaderSize = 40, kLeastSize = 20;
constexpr int32_t kSource = 8, kDestination = 24, kAddressSize = 16;
constexpr int16_t kIcmpv6Level = 8;   // directly behind the header ICMPv6 has a colour of its own

void RecordAddress(AddressSlot& slot, const uint8_t* address) {
  std::memcpy(slot.address, address, kAddressSize);
  slot.kind = kIPv6Kind;
}

// The fields of the fixed header, as far as they are there.
void ShowHeader(const Place& in, Cursor& c) {
  if (Silent(in) && Left(c) >= kHeaderSize) {
    constexpr int32_t kLines = 8;
    CountLines(in, kLines);
    TakeBytes(c, kHeaderSize);
    return;
  }
  const Field word = TakeU32(c);
  const BitPicture version = BitsOf(word, 0, 4);
  AddBitLine(in, Slice(word, 0, 1), "IP Version   : (%s) %u ", version.picture, version.value);
  const BitPicture trafficClass = BitsOf(word, 4, 8);
  AddBitLine(in, Slice(word, 0, 2), "Traffic Class: (%s) %u ", trafficClass.picture, trafficClass.value);
  const BitPicture flowLabel = BitsOf(word, 12, 20);
  AddBitLine(in, Slice(word, 1, 3), "Flow label   : (%s) %u ", flowLabel.picture, flowLabel.value);
  const Field payloadLength = TakeU16(c);
  AddLine(in, payloadLength, "Payload length: %u", payloadLength.value);
  const Field nextHeader = TakeU8(c);
  AddLine(in, nextHeader, "Next Header: %u (%s)", nextHeader.value, NextHeaderName(nextHeader.value));
  const Field hopLimit = TakeU8(c);
  AddLine(in, hopLimit, "Hop limit: %u", hopLimit.value);
  const Field source = TakeBytes(c, kAddressSize);
  if (source.here) AddLine(in, source, "Source address: %s", IPv6Text(source.bytes));
  const Field destination = TakeBytes(c, kAddressSize);
  if (destination.here) AddLine(in, destination, "Destination address: %s", IPv6Text(destination.bytes));
}

// Hands over to the protocol behind the last extension header.
void DispatchPayload(const Place& at, const Cursor& c, const HeaderChain& chain, bool atOnce) {
  PacketState& packet = PacketOf(at);
  const int64_t declared = chain.payloadLength > 0 ? chain.payloadLength - Taken(c) : Left(c);
  packet.ipProtocol = static_cast<uint8_t>(chain.nextHeader);
  packet.network.totalLength = declared < 0 ? 0 : declared > INT32_MAX ? INT32_MAX : static_cast<int32_t>(declared);
  Place carried = Deeper(at);
  if (chain.nextHeader == kIcmpv6) {
    packet.network.pseudoHead = IPv6PseudoHeadOf(chain.source, chain.destination, kIcmpv6,
                                                 static_cast<uint32_t>(packet.network.totalLength));
    if (atOnce) carried.level = kIcmpv6Level;
  }
  if (packet.quoted && ShowQuotedTransport(carried, c, packet.ipProtocol)) return;
  ReachLayer(at, DispatchTable::kIpProtocol, packet.ipProtocol, c);
  const DecoderRow* row = FindIPv6NextHeader(packet.ipProtocol);
  CallDecoder(carried, c, row ? row->decode : nullptr, "IPv6 Data");
}

bool DecodeAuthentication(const Place& at, Cursor& c, HeaderChain& chain) {
  uint8_t nextHeader = 0;
  if (!DecodeAh(at, c, &nextHeader)) return false;
  chain.nextHeader = nextHeader;
  return true;
}

// The walk from header to header. Every one takes at least 8 bytes, so the packet's size bounds it.
void WalkNextHeaders(const Place& at, Cursor c, HeaderChain chain) {
  for (bool goOn = true, atOnce = true; goOn && Left(c) > 0; atOnce = false) {
    switch (chain.nextHeader) {
      case kHopByHopHeader: goOn = DecodeOptionsHeader(at, c, chain, "Hop-By-Hop"); break;
      case kDestinationOptionsHeader: goOn = DecodeOptionsHeader(at, c, chain, "Destination"); break;
      case kRoutingHeader: goOn = DecodeRoutingHeader(at, c, chain); break;
      case kFragmentHeader: goOn = DecodeFragmentHeader(at, c, chain); break;
      case kEspHeader: goOn = DecodeEspHeader(at, c); break;
      case kAhHeader: goOn = DecodeAuthentication(at, c, chain); break;
      case kMobilityHeader: goOn = DecodeMobilityHeader(at, c, chain); break;
      case kNoNextHeader: return;
      case kDraftMobilityHeader:
        if (!IsDraftMobilityHeader(c)) return DispatchPayload(at, c, chain, atOnce);
        goOn = DecodeMobilityHeader(at, c, chain);
        break;
      default: return DispatchPayload(at, c, chain, atOnce);
    }
  }
}

}  // namespace

int32_t DecodeIPv6(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "ipv6");
  const int32_t left = Left(c);
  if (left < kLeastSize) return 0;
  uint8_t header[kHeaderSize] = {};   // address bytes that are missing count as zero
  const Field there = PeekBytes(c, 0, left < kHeaderSize ? left : kHeaderSize);
  std::memcpy(header, there.bytes, static_cast<size_t>(there.length));

  PacketState& packet = PacketOf(at);
  BeginDatagram(packet);
  packet.ipProtocol = static_cast<uint8_t>(PeekU8(c, 6));
  packet.network.pseudoHead = CalculateIPv6PseudoChecksum(header);
  RecordAddress(packet.source, header + kSource);
  RecordAddress(packet.destination, header + kDestination);

  const LineHandle top = AddLine(at, Stated(c.offset, kHeaderSize), "IPv6 Section: %s -> %s, %u bytes",
                                 IPv6Text(header + kSource), IPv6Text(header + kDestination), left);
  ShowHeader(Under(at, top), c);
  if (left < kHeaderSize) return 0;
  HeaderChain chain{PeekU8(there, 6), PeekU16(there, 4), header + kSource, header + kDestination};
  c.begin = c.offset;   // what the payload length counts starts here
  WalkNextHeaders(at, c, chain);
  return 1;
}

}  // namespace qxview
