// Next Hop Resolution Protocol (RFC 2332; private networks: RFC 2735; what tunnels of dynamic multipoint networks add): which
// address of the network below leads to this address?
//
//   families and sizes (20 bytes)   what is asked and by whom   client information entries   extensions: type, length, value
#include "core/internet_checksum.h"
#include "core/rows.h"
#include "decoders/common/checksum_line.h"
#include "decoders/net/quoted.h"
#include "decoders/routing/prefix.h"

namespace qxview {
namespace {

constexpr int32_t kFixedSize = 20, kEntrySize = 12, kExtensionHead = 4, kCapabilitiesSize = 8;
constexpr uint32_t kVersion = 1, kSnap = 0x0080;
constexpr uint32_t kPurge = 5, kPurgeReply = 6, kError = 7, kTrafficIndication = 8, kRegistration = 3;
constexpr uint32_t kRegistrationReply = 4;

constexpr auto kTypeNames = SortedNames({
    {1, "Resolution Request"}, {2, "Resolution Reply"}, {3, "Registration Request"}, {4, "Registration Reply"},
    {5, "Purge Request"}, {6, "Purge Reply"}, {7, "Error Indication"}, {8, "Traffic Indication"},
    {128, "MPOA Cache Imposition Request"}, {129, "MPOA Cache Imposition Reply"},
    {130, "MPOA Egress Cache Purge Request"}, {131, "MPOA Egress Cache Purge Reply"}, {132, "MPOA Keep-Alive"},
    {133, "MPOA Trigger"}, {134, "MPOA Resolution Request"}, {135, "MPOA Resolution Reply"}});
constexpr auto kCodeNames = SortedNames({
    {0, "Success"}, {4, "Administratively Prohibited"}, {5, "Insufficient Resources"},
    {12, "No Internetworking Layer Address to NBMA Address Binding Exists"},
    {13, "Binding Exists but Is Not Unique"}, {14, "Unique Internetworking Layer Address Already Registered"}});
constexpr auto kErrorNames = SortedNames({
    {1, "Unrecognized Extension"}, {3, "NHRP Loop Detected"}, {6, "Protocol Address Unreachable"},
    {7, "Protocol Error"}, {8, "NHRP SDU Size Exceeded"}, {9, "Invalid Extension"},
    {10, "Invalid NHRP Resolution Reply Received"}, {11, "Authentication Failure"}, {15, "Hop Count Exceeded"},
    {16, "VPN Mismatch"}, {17, "VPN Unsupported"}});
constexpr auto kFormNames = SortedNames({{0, "NSAP"}, {1, "E.164"}});

const char* NetworkName(uint32_t ethertype) {
  if (ethertype == kSnap) return "SNAP";
  const char* name = EthertypeName(static_cast<uint16_t>(ethertype));
  return name ? name : kUnknown;
}

struct Nhrp {
  Field family, protocol, extensions, type, addressSize, subaddressSize, sourceSize, targetSize, code, spi;
};

constexpr auto kFixed = Rows<Nhrp>({
    Number(2, "Address Family", AddressFamilyName).Into(&Nhrp::family),
    Hex(2, "Protocol Type", NetworkName).Into(&Nhrp::protocol)});
constexpr auto kSnapType = Rows<Nhrp>({Hex(3, "SNAP OUI"), Hex(2, "SNAP Protocol ID")});
constexpr auto kLongType = Rows<Nhrp>({Bytes(5, "SNAP Protocol Type")});
constexpr auto kSizes = Rows<Nhrp>({Number(1, "Hop Count"), Number(2, "Packet Size")});
constexpr auto kFixedRest = Rows<Nhrp>({
    Number(2, "Extension Offset").Into(&Nhrp::extensions), Number(1, "Version"),
    Number(1, "Packet Type", kTypeNames).Into(&Nhrp::type),
    Word(1), Bits(0, 1, "Reserved"), Bits(1, 1, "Source NBMA Address Type", kFormNames),
    Bits(2, 6, "Source NBMA Address Length").Into(&Nhrp::addressSize),
    Word(1), Bits(0, 1, "Reserved"), Bits(1, 1, "Source NBMA Subaddress Type", kFormNames),
    Bits(2, 6, "Source NBMA Subaddress Length").Into(&Nhrp::subaddressSize)});
constexpr auto kProtocolSizes = Rows<Nhrp>({
    Number(1, "Source Protocol Address Length").Into(&Nhrp::sourceSize),
    Number(1, "Destination Protocol Address Length").Into(&Nhrp::targetSize)});

constexpr auto kResolutionMasks = SortedNames({
    {0x0002, "NAT Supported"}, {0x0800, "Source Binding Is Stable"}, {0x1000, "Unique"},
    {0x2000, "Destination Binding Is Stable"}, {0x4000, "Authoritative"}, {0x8000, "Requester Is a Router"}});
constexpr auto kRegistrationMasks = SortedNames({{0x0002, "NAT Supported"}, {0x8000, "Unique"}});
constexpr auto kPurgeMasks = SortedNames({{0x8000, "No Reply Expected"}});
constexpr auto kResolutionFlags = Rows<Nhrp>({Flags(2, "Flags", kResolutionMasks)});
constexpr auto kRegistrationFlags = Rows<Nhrp>({Flags(2, "Flags", kRegistrationMasks)});
constexpr auto kPurgeFlags = Rows<Nhrp>({Flags(2, "Flags", kPurgeMasks)});
constexpr auto kRequest = Rows<Nhrp>({Number(4, "Request ID").Note(", Request %u")});
constexpr auto kErrorRows = Rows<Nhrp>({
    Number(2, "Unused"), Number(2, "Error Code", kErrorNames).Note(", %s"), Number(2, "Error Offset")});
constexpr auto kIndicationRows = Rows<Nhrp>({Number(2, "Unused"), Number(2, "Traffic Code"), Number(2, "Unused")});

constexpr auto kEntry = Rows<Nhrp>({
    Number(1, "Code", kCodeNames).Into(&Nhrp::code), Number(1, "Prefix Length"), Number(2, "Unused"),
    Number(2, "Maximum Transmission Unit"), Number(2, "Holding Time", " seconds"),
    Word(1), Bits(0, 1, "Reserved"), Bits(1, 1, "Client NBMA Address Type", kFormNames),
    Bits(2, 6, "Client NBMA Address Length").Into(&Nhrp::addressSize),
    Word(1), Bits(0, 1, "Reserved"), Bits(1, 1, "Client NBMA Subaddress Type", kFormNames),
    Bits(2, 6, "Client NBMA Subaddress Length").Into(&Nhrp::subaddressSize),
    Number(1, "Client Protocol Address Length").Into(&Nhrp::sourceSize), Number(1, "Preference")});

constexpr auto kSecurity = Rows<Nhrp>({
    Number(2, "Reserved"), Number(2, "Security Parameter Index").Into(&Nhrp::spi)});
constexpr auto kClearText = Rows<Nhrp>({Text(0, "Clear Text Password")});
constexpr auto kDigest = Rows<Nhrp>({Bytes(0, "Authentication Data")});
constexpr auto kVendor = Rows<Nhrp>({Hex(3, "Vendor ID"), Bytes(0, "Vendor Data")});
constexpr auto kCapabilities = Rows<Nhrp>({
    Hex(4, "Source Capabilities"), Flag(31, "Source Is Aware of VPNs"), Hex(4, "Target Capabilities"),
    Flag(31, "Target Is Aware of VPNs")});

// By its size: what is neither an IPv4 nor an IPv6 address stands in hexadecimal.
void ShowAddress(const Place& in, Cursor& c, const char* label, uint32_t size) {
  if (size == 0) return;
  Cursor address = TakeCursor(c, size);
  const uint32_t family = size == 4 ? kFamilyIPv4 : size == 16 ? kFamilyIPv6 : 0;
  if (Left(address) == static_cast<int32_t>(size)) ShowFamilyAddress(in, address, label, family);
}

void ShowEntries(const Place& in, Cursor& c, const Nhrp& about) {
  Loop loop;
  while (Left(c) >= kEntrySize && MoreAt(in, c, loop)) {
    const uint32_t size = kEntrySize + (PeekU8(c, 8) & 0x3F) + (PeekU8(c, 9) & 0x3F) + PeekU8(c, 10);
    Cursor entry = TakeCursor(c, size);
    Nhrp nhrp = about;
    const Place under = Under(in, AddLine(in, Ahead(entry, Left(entry)), "Client Information Entry: %s",
                                          LookupName(kCodeNames, PeekU8(entry))));
    ShowRows<Nhrp>(under, entry, kEntry, nhrp);
    ShowAddress(under, entry, "Client NBMA Address", nhrp.addressSize.value);
    ShowAddress(under, entry, "Client NBMA Subaddress", nhrp.subaddressSize.value);
    ShowAddress(under, entry, "Client Protocol Address", nhrp.sourceSize.value);
    entry.ranShort = false;   // what is left of an entry that is cut
    AddBlock(under, Rest(entry), "Entry Data");
  }
}

// Index 1 is a password in clear text, without the address that the standard puts in front of a digest.
void ShowAuthentication(const Place& in, Cursor& c, Nhrp& nhrp) {
  constexpr uint32_t kClear = 1;
  ShowRows<Nhrp>(in, c, kSecurity, nhrp);
  if (nhrp.spi.value == kClear) {
    ShowRows<Nhrp>(in, c, kClearText, nhrp);
    return;
  }
  ShowAddress(in, c, "Source Address", nhrp.sourceSize.value);
  ShowRows<Nhrp>(in, c, kDigest, nhrp);
}

// Two extensions have one number; the one about private networks is of a size that no entry has.
void ShowNatOrCapabilities(const Place& in, Cursor& c, Nhrp& nhrp) {
  if (Left(c) == kCapabilitiesSize) {
    ShowRows<Nhrp>(in, c, kCapabilities, nhrp);
  } else {
    ShowEntries(in, c, nhrp);
  }
}

constexpr uint32_t kEnd = 0, kAuthentication = 7, kVendorPrivate = 8, kNatOrCapabilities = 9;
constexpr auto kExtensionNames = SortedNames({
    {kEnd, "End of Extensions"}, {3, "Responder Address"}, {4, "Forward Transit NHS Record"},
    {5, "Reverse Transit NHS Record"}, {kAuthentication, "NHRP Authentication"}, {kVendorPrivate, "Vendor-Private"},
    {kNatOrCapabilities, "NAT Address or Device Capabilities"}, {0x1000, "MPOA DLL Header"},
    {0x1001, "MPOA Egress Cache Tag"}, {0x1002, "MPOA ATM Service Category"}, {0x1003, "MPOA Keep-Alive Lifetime"},
    {0x1004, "MPOA Hop Count"}, {0x1005, "MPOA Original Error Code"}});
constexpr auto kExtensionHeader = Rows<Nhrp>({
    Word(2), Flag(0, "Compulsory"), Bits(1, 1, "Unused"), Bits(2, 14, "Extension Type", kExtensionNames),
    Number(2, "Extension Length")});

void ShowExtension(const Place& in, Cursor c, uint32_t type, Nhrp nhrp) {
  const Place under = Under(in, AddLine(in, Ahead(c, Left(c)), "Extension: %s", LookupName(kExtensionNames, type)));
  ShowRows<Nhrp>(under, c, kExtensionHeader, nhrp);
  switch (type) {
    case 3:
    case 4:
    case 5: ShowEntries(under, c, nhrp); break;
    case kAuthentication: ShowAuthentication(under, c, nhrp); break;
    case kVendorPrivate: ShowRows<Nhrp>(under, c, kVendor, nhrp); break;
    case kNatOrCapabilities: ShowNatOrCapabilities(under, c, nhrp); break;
    default: break;
  }
  c.ranShort = false;   // what is left of an extension that is cut
  AddBlock(under, Rest(c), "Extension Data");
}

void ShowExtensions(const Place& in, Cursor& c, const Nhrp& nhrp) {
  uint32_t type = kEnd + 1;
  Loop loop;
  while (type != kEnd && Left(c) >= kExtensionHead && MoreAt(in, c, loop)) {
    type = PeekU16(c) & 0x3FFF;
    ShowExtension(in, TakeCursor(c, int64_t{PeekU16(c, 2)} + kExtensionHead), type, nhrp);
  }
}

void AddChecksum(const Place& in, Cursor& c, const Field& packet, bool whole) {
  const Field checksum = TakeU16(c);
  const char* why = checksum.value == 0 ? "Not Used" : whole ? nullptr : "Not Checked - Partial Capture";
  AddChecksumLine(in, checksum, "Checksum:", why, why ? 0 : SumWords(0, packet.bytes, packet.length),
                  BadChecksum::kAlone);
}

RowSpan<Nhrp> FlagRows(uint32_t type) {
  if (type == kRegistration || type == kRegistrationReply) return kRegistrationFlags;
  return type == kPurge || type == kPurgeReply ? RowSpan<Nhrp>(kPurgeFlags) : RowSpan<Nhrp>(kResolutionFlags);
}

// What is asked: by whom, for which address. Errors and indications carry the packet that they are about.
void ShowMandatory(const Place& in, Cursor& c, Nhrp& nhrp) {
  const uint32_t type = nhrp.type.value;
  ShowRows<Nhrp>(in, c, kProtocolSizes, nhrp);
  if (type == kError) {
    ShowRows<Nhrp>(in, c, kErrorRows, nhrp);
  } else if (type == kTrafficIndication) {
    ShowRows<Nhrp>(in, c, kIndicationRows, nhrp);
  } else {
    ShowRows<Nhrp>(in, c, FlagRows(type), nhrp);
    ShowRows<Nhrp>(in, c, kRequest, nhrp);
  }
  ShowAddress(in, c, "Source NBMA Address", nhrp.addressSize.value);
  ShowAddress(in, c, "Source NBMA Subaddress", nhrp.subaddressSize.value);
  ShowAddress(in, c, "Source Protocol Address", nhrp.sourceSize.value);
  ShowAddress(in, c, "Destination Protocol Address", nhrp.targetSize.value);
  if (type != kError && type != kTrafficIndication) {
    ShowEntries(in, c, nhrp);
  } else if (PeekU8(c) >> 4 == 4 || PeekU8(c) >> 4 == 6) {
    DecodeQuotedDatagram(Deeper(in), c);
    TakeBytes(c, Left(c));
  }
  c.ranShort = false;   // what is left of an address that is cut
  AddBlock(in, Rest(c), type == kError ? "Packet in Error" : "NHRP Data");
}

}  // namespace

int32_t DecodeNhrp(const Place& at, Cursor c) {
  constexpr int32_t kSizeAt = 10, kVersionAt = 16, kTypeAt = 17;
  const int32_t size = static_cast<int32_t>(PeekU16(c, kSizeAt));
  if (Left(c) < kFixedSize || PeekU8(c, kVersionAt) != kVersion || size < kFixedSize) return 0;
  const bool whole = size <= Left(c) && !PacketOf(at).network.fragmented;
  Cursor packet = TakeCursor(c, size);
  const Field all = Ahead(packet, Left(packet));
  const Place in = Under(at, AddLine(at, all, "NHRP: %s", LookupName(kTypeNames, PeekU8(packet, kTypeAt))));
  Nhrp nhrp = ShowRows(in, packet, kFixed);
  ShowRows<Nhrp>(in, packet, nhrp.protocol.value == kSnap ? RowSpan<Nhrp>(kSnapType) : RowSpan<Nhrp>(kLongType), nhrp);
  ShowRows<Nhrp>(in, packet, kSizes, nhrp);
  AddChecksum(in, packet, all, whole);
  ShowRows<Nhrp>(in, packet, kFixedRest, nhrp);
  const int32_t offset = static_cast<int32_t>(nhrp.extensions.value);
  Cursor mandatory = TakeCursor(packet, offset >= kFixedSize && offset <= size ? offset - kFixedSize : Left(packet));
  ShowMandatory(in, mandatory, nhrp);
  ShowExtensions(in, packet, nhrp);
  packet.ranShort = false;
  AddBlock(in, Rest(packet), "NHRP Data");
  AddRawRest(at, c, "NHRP Data");
  return 1;
}

}  // namespace qxview
