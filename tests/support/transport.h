// Transport decoders under test: a host with protocol definitions, segments with good checksums, and the network state
// that an IP decoder would leave.
#pragma once
#include "host/protocol_definitions.h"
#include "tests/support/decoding.h"
#include "tests/support/small_stack.h"

namespace qxview::testing {

struct DefinitionsHost : TestHost {
  DefinitionsHost() { LendDefinitions<&DefinitionsOf>(&host); }
  static ProtocolDefinitions& DefinitionsOf(void* user) {
    return static_cast<DefinitionsHost*>(static_cast<TestHost*>(user))->definitions;
  }
  ProtocolDefinitions definitions;
};

AddressSlot IPv4Slot(uint32_t address);

// What the network layer says of the next transport data; the defaults are a whole datagram from 10.0.0.1 to 10.0.0.2.
struct TestNetwork {
  AddressSlot source = IPv4Slot(0x0A000001), destination = IPv4Slot(0x0A000002);
  int32_t missing = 0;            // bytes of the datagram that were not captured
  uint32_t fragmentOffset = 0;
  bool fragmented = false, moreFragments = false;
  bool withPseudoHead = true;
};
extern TestNetwork testNetwork;

// Decoders that set the packet's network state from testNetwork first.
int32_t DecodeTcpOverNetwork(const Place& at, Cursor c);
int32_t DecodeUdpOverNetwork(const Place& at, Cursor c);

struct TcpParts {
  uint16_t sourcePort = 1025, destinationPort = 80;
  uint32_t sequence = 1000, acknowledgement = 2000;
  uint8_t flags = 0x18;
  uint16_t window = 512;
  Bytes options{};                // padded to whole words with zeros
  Bytes payload{};
};
// A segment with a good checksum for testNetwork's addresses.
Bytes Tcp(const TcpParts& parts);
// Sets the two bytes at `place` so that the checksum over the pseudo-header of testNetwork is good.
void SetChecksum(Bytes& data, size_t place, uint8_t ipProtocol);

}  // namespace qxview::testing
