// ARP over ATM (RFC 2225): the addresses are ATM's, each with a subaddress, and their lengths say which kind they are
// of.
//
//   hardware (2)   protocol (2)   type and length of source address and subaddress (1, 1)   operation (2)   source
// protocol
//   length (1)   type and length of target address and subaddress (1, 1)   target protocol length (1)   addresses
#include "core/rows.h"
#include "decoders/common/hardware_types.h"
#include "decoders/link/arp_names.h"

namespace qxview {
namespace {

struct AtmArp {
  Field operation, sourceLength, sourceSubLength, sourceProtocol, targetLength, targetSubLength, targetProtocol;
};

constexpr auto kAddressKinds = SortedNames({{0, "ATM Forum NSAP"}, {1, "E.164"}});
constexpr auto kHeader = Rows<AtmArp>({
    Number(2, "Hardware Type", kHardwareNames), Hex(2, "Protocol Type"), Word(1), Bits(0, 1, "Reserved"),
    Bits(1, 1, "Source Address Kind", kAddressKinds), Bits(2, 6, "Source Address Length").Into(&AtmArp::sourceLength),
    Word(1),
    Bits(0, 1, "Reserved"), Bits(1, 1, "Source Subaddress Kind", kAddressKinds),
    Bits(2, 6, "Source Subaddress Length").Into(&AtmArp::sourceSubLength),
    Number(2, "Operation", kArpOperationNames).Into(&AtmArp::operation),
    Number(1, "Source Protocol Address Length").Into(&AtmArp::sourceProtocol), Word(1), Bits(0, 1, "Reserved"),
    Bits(1, 1, "Target Address Kind", kAddressKinds), Bits(2, 6, "Target Address Length").Into(&AtmArp::targetLength),
    Word(1),
    Bits(0, 1, "Reserved"), Bits(1, 1, "Target Subaddress Kind", kAddressKinds),
    Bits(2, 6, "Target Subaddress Length").Into(&AtmArp::targetSubLength),
    Number(1, "Target Protocol Address Length").Into(&AtmArp::targetProtocol)});

void ShowStation(const Place& in, Cursor& c, const char* who, uint32_t length, uint32_t subLength,
    uint32_t protocolLength) {
  constexpr uint32_t kIPv4Length = 4;
  if (length) {
    const Field address = TakeBytes(c, length);
    AddLine(in, address, "%s ATM Address: %s", who, HexText(address));
  }
  if (subLength) {
    const Field address = TakeBytes(c, subLength);
    AddLine(in, address, "%s ATM Subaddress: %s", who, HexText(address));
  }
  if (!protocolLength) return;
  const Field address = TakeBytes(c, protocolLength);
  if (protocolLength == kIPv4Length && address.here) {
    AddLine(in, address, "%s IP Address: %s", who, IPv4Text(address.bytes));
    AppendToParent(in, address, ", %s %s", who, IPv4Text(address.bytes));
  } else {
    AddLine(in, address, "%s Protocol Address: %s", who, HexText(address));
  }
}

}  // namespace

int32_t DecodeAtmArp(const Place& at, Cursor c) {
  constexpr int32_t kHeaderSize = 12;
  if (Left(c) < kHeaderSize) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, kHeaderSize), "ATMARP: %s", LookupName(kArpOperationNames, PeekU16(c,
      6))));
  const AtmArp arp = ShowRows(in, c, kHeader);
  ShowStation(in, c, "Source", arp.sourceLength.value, arp.sourceSubLength.value, arp.sourceProtocol.value);
  ShowStation(in, c, "Target", arp.targetLength.value, arp.targetSubLength.value, arp.targetProtocol.value);
  CoverBytes(in, c);
  return 1;
}

}  // namespace qxview
