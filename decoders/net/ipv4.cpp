// Internet Protocol, version 4 (RFC 791): datagrams between hosts, and the entry of both IP versions.
//
//   0  version (4 bits), header length in words (4)   1  type of service      2  total length
//   4  identification                                 6  reserved, do not fragment, more fragments, offset (13 bits)
//   8  time to live   9  protocol   10  header checksum   12  source   16  destination   20  options, payload
#include "decoders/net/ipv4.h"

#include <cstring>

#include "core/custom_libraries.h"
#include "core/internet_checksum.h"
#include "core/line_facts.h"
#include "core/line_group.h"
#include "decoders/common/checksum_line.h"
#include "decoders/net/ah.h"
#include "decoders/net/ip_protocol_names.h"
#include "decoders/net/ip_fragments.h"
#include "decoders/net/ipv4_parts.h"
#include "decoders/net/pseudo_head.h"
#include "decoders/net/quoted.h"

namespace qxview {
namespace {

constexpr uint16_t kEthertypeIPv6 = 0x86DD;
constexpr uint8_t kProtocolAh = 51;

// What the header says to its payload.
struct Header {
  Cursor start;
  int32_t length;            // as declared: less than the fixed header's 20 bytes when it lies
  int32_t payloadLength;     // as declared; 0 or less when the total length leaves nothing
  uint32_t fragmentOffset;   // bytes
  uint8_t protocol;
  bool moreFragments;
  bool offloaded;            // no total length: the adapter is to cut the datagram into segments
  bool checksumGood;
};

Header ReadHeader(const Cursor& c) {
  Header header{};
  header.start = c;
  header.length = static_cast<int32_t>(PeekU8(c) & 15) * 4;
  const int32_t start = header.length > kIPv4HeaderLength ? header.length : kIPv4HeaderLength;
  header.payloadLength = static_cast<int32_t>(PeekU16(c, 2)) - start;
  header.offloaded = PeekU16(c, 2) == 0 && Left(c) > start;
  if (header.offloaded) header.payloadLength = Left(c) - start;
  header.moreFragments = (PeekU8(c, 6) & 0x20) != 0;
  header.fragmentOffset = (PeekU16(c, 6) & 0x1FFF) * 8;
  header.protocol = static_cast<uint8_t>(PeekU8(c, 9));
  return header;
}

void RecordAddress(AddressSlot& slot, const Field& address) {
  slot = AddressSlot{};
  std::memcpy(slot.address + 12, address.bytes, 4);
  slot.kind = kIPv4Kind;
}

void RecordDatagram(PacketState& packet, const Header& header) {
  BeginDatagram(packet);
  packet.ipProtocol = header.protocol;
  RecordAddress(packet.source, PeekBytes(header.start, 12, 4));
  RecordAddress(packet.destination, PeekBytes(header.start, 16, 4));
}

// Datagrams inside each other stand on the stack together: the functions that make lines are kept out of line, so that
// each holds little.
[[gnu::noinline]] int32_t ShowUnknownVersion(const Place& at, Cursor c) {
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "IP - Unknown Version"));
  const Field status = TakeU8(c);
  AddLine(in, status, "Status: Version = %u (Unknown), IP Header Length = %d Bytes", status.value >> 4,
          (status.value & 15) * 4);
  AddRawRest(at, c, "Unknown Data");
  return 0;
}

void AddStatus(const Place& in, const Field& status) {
  const BitPicture version = BitsOf(status, 0, 4), words = BitsOf(status, 4, 4);
  const Place bits = Under(in, AddLine(in, status, "Status: Version = %u, IP Header Length = %d Bytes", version.value,
                                       words.value * 4));
  AddBitLine(bits, status, "%s: Version = %u", version.picture, version.value);
  AddBitLine(bits, status, "%s: IP Header Length = [%u] 32 Bit Words = %u Bytes", words.picture, words.value,
             words.value * 4);
}

void AddFragment(const Place& in, const Field& fragment) {
  const BitPicture reserved = BitsOf(fragment, 0, 1), whole = BitsOf(fragment, 1, 1), more = BitsOf(fragment, 2, 1);
  const BitPicture offset = BitsOf(fragment, 3, 13);
  const Place bits = Under(in, AddLine(in, fragment, "Fragment:"));
  AddBitLine(bits, fragment, "%s: Reserved", reserved.picture);
  AddBitLine(bits, fragment, "%s: Do Not Fragment = %s", whole.picture, TrueOrFalse(whole.value));
  AddBitLine(bits, fragment, "%s: More Fragments = %s", more.picture, TrueOrFalse(more.value));
  AddBitLine(bits, fragment, "%s: Fragment Offset [%u] * 8 = %u Bytes", offset.picture, offset.value,
             offset.value * 8);
  if (!whole.value && (more.value || offset.value)) {
    const char* place = !more.value ? "Last" : offset.value ? "Middle" : "First";
    AppendToParent(bits, fragment, " %s Fragment, Offset = %u", place, offset.value * 8);
  } else {
    // Said of every datagram in one piece, whether or not it forbids fragments.
    AppendToParent(bits, fragment, " Fragmentation Not Allowed");
  }
}

void AddAddresses(const Place& in, const Field& addresses) {
  const auto source = IPv4Text(addresses.bytes), destination = IPv4Text(Slice(addresses, 4, 4).bytes);
  const Place both =
      Under(in, AddLine(in, addresses, "IP Addresses: Source = %s,  Destination = %s", source, destination));
  AddLine(both, Slice(addresses, 0, 4), "Source: %s", source);
  AddLine(both, Slice(addresses, 4, 4), "Destination: %s", destination);
}

// Whether the header's own words agree with its checksum; none counts as agreement.
bool AddChecksum(const Place& in, const Field& checksum, const Header& header) {
  return AddChecksumLine(in, checksum, "Header checksum:", checksum.value == 0 ? "Not Present" : nullptr,
                         SumWords(0, header.start.at, header.length), BadChecksum::kAlone);
}

[[gnu::noinline]] LineHandle AddTopLine(const Place& at, const Cursor& c, const Header& header) {
  return AddLine(at, Ahead(c, header.length), "IP:    %s -> %s", IPv4Text(PeekBytes(c, 12, 4).bytes),
                 IPv4Text(PeekBytes(c, 16, 4).bytes));
}

// The same fields where nobody wants their lines, of a header that has all its bytes.
void PassHeader(const Place& in, Cursor& c, Header& header) {
  constexpr int32_t kLines = 16;   // but those of the type of service
  CountLines(in, kLines);
  AddTypeOfService(in, PeekBytes(c, 1, 1));
  const uint32_t sum = PeekU16(c, 10) == 0 ? 0xFFFF : SumWords(0, header.start.at, header.length);
  header.checksumGood = sum == 0xFFFF;
  TakeBytes(c, kIPv4HeaderLength);
  if (header.length > kIPv4HeaderLength) DecodeIPv4Options(in, TakeCursor(c, header.length - kIPv4HeaderLength));
}

// The lines under the top line. False when the header is longer than the bytes; the cursor stands behind it otherwise.
[[gnu::noinline]] bool DecodeHeader(const Place& in, Cursor& c, Header& header) {
  const bool cut = header.length > Left(c);
  if (Silent(in) && !cut && header.length >= kIPv4HeaderLength) return PassHeader(in, c, header), true;
  const Field both = PeekBytes(c, 0, 2), status = TakeU8(c), service = TakeU8(c);
  const auto addBoth = [&] {
    AddGroup(in, "ip status", [&] { AddStatus(in, status); });
    AddTypeOfService(in, service);
  };
  if (in.view->engine->settings.typeOfService.mode == 0) {
    AddToldGroup(in, both, "ip status and service", addBoth);
  } else {
    addBoth();
  }
  const Field total = TakeU16(c), identification = TakeU16(c);
  AddGroup(in, "ip length", [&] {
    AddLine(in, total, "Total IP length: %u", total.value);
    AddLine(in, identification, "ID: 0x%.04X (%d)", identification.value, identification.value);
  });
  const Field behind = PeekBytes(c, 0, 4), fragment = TakeU16(c), timeToLive = TakeU8(c), protocol = TakeU8(c);
  AddToldGroup(in, behind, "ip fragment and protocol", [&] {
    AddGroup(in, "ip fragment", [&] { AddFragment(in, fragment); });
    AddLine(in, timeToLive, "Time to live: %d", timeToLive.value);
    AddLine(in, protocol, "Protocol: %d = %s", protocol.value, IpProtocolName(protocol.value));
  });
  if (cut) return false;
  header.checksumGood = AddChecksum(in, TakeU16(c), header);
  const Field addresses = TakeBytes(c, 8);
  AddToldGroup(in, addresses, "ip addresses", [&] { AddAddresses(in, addresses); });
  if (header.length > kIPv4HeaderLength) DecodeIPv4Options(in, TakeCursor(c, header.length - kIPv4HeaderLength));
  return true;
}

[[gnu::noinline]] int32_t ShowFragment(const Place& at, Cursor c, const Header& header) {
  ReachLayer(at, DispatchTable::kIpFragment, header.protocol | header.fragmentOffset << 8, c);
  char title[80];
  FormatInto(title, sizeof title, "%s Fragment, Offset %u, %s", IpProtocolName(header.protocol), header.fragmentOffset,
             header.moreFragments ? "More Fragments to Follow" : "Last Fragment");
  AddRawRest(at, c, title);
  return 1;
}

void RecordNetwork(PacketState& packet, const Header& header) {
  NetworkState& network = packet.network;
  network.pseudoHead = PseudoHead(header.start.at);
  network.fragmentOffset = header.fragmentOffset;
  network.totalLength = header.payloadLength;
  network.moreFragments = header.moreFragments;
  network.offloaded = header.offloaded;
  network.fragmented = header.moreFragments || header.fragmentOffset > 0;
}

// The payload of the whole datagram for that of its fragment; false while fragments are missing.
[[gnu::noinline]] bool JoinFragments(const Place& at, Cursor& payload, const Header& header) {
  const uint32_t identification = PeekU16(header.start, 4);
  Cursor joined;
  const FragmentRun run = TakeIpFragment(at, payload, identification, header.protocol, header.fragmentOffset,
                                         header.moreFragments, &joined);
  TellFragments(Deeper(at), payload, run);
  if (Left(joined) < 1) {
    ReachLayer(at, DispatchTable::kIpFragment, header.protocol | header.fragmentOffset << 8, payload);
    return false;
  }
  payload = joined;
  NetworkState& network = PacketOf(at).network;
  network.fragmented = network.moreFragments = false;
  network.fragmentOffset = 0;
  network.totalLength = run.length;
  network.pseudoHead = PseudoHeadOf(header.start.at, header.protocol, static_cast<uint32_t>(run.length) & 0xFFFF);
  return true;
}

// Authentication headers stand in front of the transport and are none of its data: its pseudo-header has its own
// protocol and length. False when nothing may follow.
[[gnu::noinline]] bool DecodeAuthentication(const Place& at, Cursor& c, const Header& header, uint8_t& protocol) {
  NetworkState& network = PacketOf(at).network;
  while (protocol == kProtocolAh && !PacketOf(at).limitReached) {
    const int32_t before = Left(c);
    if (!DecodeAh(at, c, &protocol) || Left(c) < 1) return false;
    network.totalLength -= before - Left(c);
    network.pseudoHead = PseudoHeadOf(header.start.at, protocol, static_cast<uint32_t>(network.totalLength) & 0xFFFF);
  }
  return true;
}

int32_t DecodePayload(const Place& at, Cursor c, const Header& header) {
  PacketState& packet = PacketOf(at);
  // Routers change headers that they quote and leave the checksum as it was.
  if (!header.checksumGood && !packet.quoted && !at.view->engine->settings.ignoreChecksums) {
    AddRawRest(at, c, "IP Data: (Bad IP Checksum)");
    return 1;
  }
  Cursor payload = TakeCursor(c, header.payloadLength);
  if (Left(payload) < 1) return 1;
  payload.begin = payload.offset;
  const bool isFragment = header.moreFragments || header.fragmentOffset > 0;
  const bool joins = isFragment && JoinsFragments(at) && Left(payload) == header.payloadLength;
  if (header.fragmentOffset > 0 && !joins) return ShowFragment(at, payload, header);
  RecordNetwork(packet, header);
  if (joins && !JoinFragments(at, payload, header)) return 1;
  if (!packet.quoted && OfferPayload(at, PayloadHook::kIp, payload)) return 1;
  uint8_t protocol = header.protocol;
  const Place deeper = Deeper(at);
  if (!DecodeAuthentication(deeper, payload, header, protocol)) return 1;
  if (packet.quoted && ShowQuotedTransport(deeper, payload, protocol)) return 1;
  ReachLayer(at, DispatchTable::kIpProtocol, protocol, payload);
  const DecoderRow* row = FindIpProtocol(protocol);
  return CallDecoder(deeper, payload, row ? row->decode : nullptr, "Data");
}

}  // namespace

int32_t DecodeIPv6InIPv4(const Place& at, Cursor c) { return FindEthertype(kEthertypeIPv6)->decode(at, c); }

int32_t DecodeIpDatagram(const Place& at, Cursor c, const char* label) {
  const KeyedAs keys(PacketOf(at), "ip");
  constexpr int32_t kVersion4 = 4, kVersion6 = 6;
  if (Left(c) < kIPv4HeaderLength) return 0;
  const int32_t version = PeekU8(c) >> 4;
  if (version == kVersion6) return DecodeIPv6InIPv4(at, c);
  if (version != kVersion4) return ShowUnknownVersion(at, c);
  Header header = ReadHeader(c);
  RecordDatagram(PacketOf(at), header);
  const LineHandle top = AddTopLine(at, c, header);
  if (!DecodeHeader(Under(at, top), c, header)) return 0;
  const int32_t result = DecodePayload(at, c, header);
  if (label && label[0]) AppendToLine(at, top, " %s", label);
  return result;
}

int32_t DecodeIPv4(const Place& at, Cursor c) { return DecodeIpDatagram(at, c, nullptr); }

bool PassPlainDatagram(const Place& at, Cursor c) {
  constexpr uint8_t kTcp = 6, kUdp = 17;
  constexpr int32_t kDecoders = 2;   // IP's own, and the transport's
  PacketState& packet = PacketOf(at);
  if (packet.quoted || packet.nesting + kDecoders > kMostNesting || !IsPlainIPv4(c)) return false;
  const Header header = ReadHeader(c);
  if (header.protocol != kTcp && header.protocol != kUdp) return false;
  constexpr int32_t kLines = 17;   // but those of the type of service
  CountLines(at, kLines);
  AddTypeOfService(at, PeekBytes(c, 1, 1));
  RecordDatagram(packet, header);
  RecordNetwork(packet, header);
  TakeBytes(c, kIPv4HeaderLength);
  Cursor payload = TakeCursor(c, header.payloadLength);
  payload.begin = payload.offset;
  ReachLayer(at, DispatchTable::kIpProtocol, header.protocol, payload);
  packet.nesting += kDecoders;
  FindIpProtocol(header.protocol)->decode(Deeper(at), payload);
  packet.nesting -= kDecoders;
  return true;
}

}  // namespace qxview
