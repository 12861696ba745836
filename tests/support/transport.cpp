#include "tests/support/transport.h"

#include "core/internet_checksum.h"

namespace qxview {
int32_t DecodeTcp(const Place& at, Cursor c);
int32_t DecodeUdp(const Place& at, Cursor c);

namespace testing {
namespace {

uint32_t PseudoSum(uint8_t ipProtocol, int32_t length) {
  const uint8_t rest[] = {0, ipProtocol, static_cast<uint8_t>(length >> 8), static_cast<uint8_t>(length)};
  uint32_t sum = SumWords(0, testNetwork.source.address, 16);
  sum = SumWords(sum, testNetwork.destination.address, 16);
  return SumWords(sum, rest, sizeof rest);
}

void SetNetwork(const Place& at, const Cursor& c, uint8_t ipProtocol) {
  PacketState& packet = PacketOf(at);
  packet.source = testNetwork.source;
  packet.destination = testNetwork.destination;
  const int32_t total = Left(c) + testNetwork.missing;
  packet.network = {testNetwork.withPseudoHead ? PseudoSum(ipProtocol, total) : 0, testNetwork.fragmentOffset, total,
                    testNetwork.fragmented, testNetwork.moreFragments, false};
}

void Put(Bytes& bytes, uint32_t number, int width) {
  for (int i = width - 1; i >= 0; --i) bytes.push_back(static_cast<uint8_t>(number >> 8 * i));
}

}  // namespace

TestNetwork testNetwork;

AddressSlot IPv4Slot(uint32_t address) {
  AddressSlot slot{{}, 1};
  for (int i = 0; i < 4; ++i) slot.address[12 + i] = static_cast<uint8_t>(address >> (24 - 8 * i));
  return slot;
}

int32_t DecodeTcpOverNetwork(const Place& at, Cursor c) {
  SetNetwork(at, c, 6);
  return DecodeTcp(at, c);
}

int32_t DecodeUdpOverNetwork(const Place& at, Cursor c) {
  SetNetwork(at, c, 17);
  return DecodeUdp(at, c);
}

Bytes Tcp(const TcpParts& parts) {
  Bytes options = parts.options;
  while (options.size() % 4) options.push_back(0);
  Bytes segment;
  Put(segment, parts.sourcePort, 2);
  Put(segment, parts.destinationPort, 2);
  Put(segment, parts.sequence, 4);
  Put(segment, parts.acknowledgement, 4);
  Put(segment, static_cast<uint32_t>(5 + options.size() / 4) << 12 | parts.flags, 2);
  Put(segment, parts.window, 2);
  Put(segment, 0, 4);
  segment = segment + options + parts.payload;
  SetChecksum(segment, 16, 6);
  return segment;
}

void SetChecksum(Bytes& data, size_t place, uint8_t ipProtocol) {
  data[place] = data[place + 1] = 0;
  const int32_t length = static_cast<int32_t>(data.size());
  const uint32_t checksum = RightChecksum(SumWords(PseudoSum(ipProtocol, length), data.data(), length), 0);
  data[place] = static_cast<uint8_t>(checksum >> 8);
  data[place + 1] = static_cast<uint8_t>(checksum);
}

}  // namespace testing
}  // namespace qxview
