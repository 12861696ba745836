// Generalized packets of mobile networks (RFC 5444) with what neighbourhood discovery (RFC 6130, RFC 7188), times (RFC 5497),
// OLSR version 2 (RFC 7181) and checks of integrity (RFC 7182) put into them.
//
//   packet    version, flags (4 bits each)   [number (2)]   [TLV block]   messages
//   message   type (1)   flags, address length less 1 (4 bits each)   size with all (2)   [originator] [hops to live]
//             [hops] [number]   TLV block   address blocks, each with a TLV block
#include "core/rows.h"

namespace qxview {
namespace {

enum class Scope : uint8_t { kPacket, kMessage, kAddress };

constexpr auto kMessageNames = SortedNames({{0, "HELLO"}, {1, "TC"}});
constexpr auto kTlvNames = SortedNames({
    {0, "INTERVAL_TIME"}, {1, "VALIDITY_TIME"}, {5, "ICV"}, {6, "TIMESTAMP"}, {7, "MPR_WILLING"}, {8, "CONT_SEQ_NUM"}});
constexpr auto kAddressTlvNames = SortedNames({
    {0, "INTERVAL_TIME"}, {1, "VALIDITY_TIME"}, {2, "LOCAL_IF"}, {3, "LINK_STATUS"}, {4, "OTHER_NEIGHB"}, {5, "ICV"},
    {6, "TIMESTAMP"}, {7, "LINK_METRIC"}, {8, "MPR"}, {9, "NBR_ADDR_TYPE"}, {10, "GATEWAY"}});
constexpr auto kInterfaceNames = SortedNames({{0, "This Interface"}, {1, "Other Interface"}});
constexpr auto kLinkNames = SortedNames({{0, "Lost"}, {1, "Symmetric"}, {2, "Heard"}});
constexpr auto kRelayNames = SortedNames({{1, "Flooding"}, {2, "Routing"}, {3, "Flooding and Routing"}});
constexpr auto kAddressTypeNames = SortedNames({{1, "Originator"}, {2, "Routable"}, {3, "Routable Originator"}});
constexpr auto kHashNames = SortedNames({
    {0, "None"}, {1, "SHA-1"}, {2, "SHA-224"}, {3, "SHA-256"}, {4, "SHA-384"}, {5, "SHA-512"}});
constexpr auto kCipherNames = SortedNames({
    {0, "None"}, {1, "RSA"}, {2, "DSA"}, {3, "HMAC"}, {4, "3DES"}, {5, "AES"}, {6, "ECDSA"}, {7, "ECDSA-XEDDSA"}});

constexpr uint32_t kIntervalTime = 0, kValidityTime = 1, kLocalInterface = 2, kLinkStatus = 3, kOtherNeighbor = 4, kCheck = 5,
                   kTimestamp = 6, kWilling = 7, kMetric = 7, kContentNumber = 8, kRelay = 8, kAddressType = 9;

struct Bb {
  Field flags, size, length, count, headSize, tailSize, extension;
  int32_t addressSize;
};

constexpr auto kPacketHead = Rows<Bb>({
    Word(1).Into(&Bb::flags), Bits(0, 4, "Version"), Flag(4, "Has Sequence Number"), Flag(5, "Has TLV Block"),
    Bits(6, 2, "Reserved")});
constexpr auto kPacketNumber = Rows<Bb>({Number(2, "Packet Sequence Number")});
constexpr auto kMessageHead = Rows<Bb>({
    Number(1, "Message Type", kMessageNames), Word(1).Into(&Bb::flags), Flag(0, "Has Originator"),
    Flag(1, "Has Hop Limit"), Flag(2, "Has Hop Count"), Flag(3, "Has Sequence Number"), Bits(4, 4, "Address Length Less 1"),
    Number(2, "Message Size")});
constexpr auto kHopLimit = Rows<Bb>({Number(1, "Hop Limit")});
constexpr auto kHopCount = Rows<Bb>({Number(1, "Hop Count")});
constexpr auto kMessageNumber = Rows<Bb>({Number(2, "Message Sequence Number").Note(", Number %u")});
constexpr auto kBlockLength = Rows<Bb>({Number(2, "TLV Block Length").Into(&Bb::length)});
constexpr auto kTlvFlags = Rows<Bb>({
    Word(1).Into(&Bb::flags), Flag(0, "Has Type Extension"), Flag(1, "Has Single Index"), Flag(2, "Has Multiple Indices"),
    Flag(3, "Has Value"), Flag(4, "Has Extended Length"), Flag(5, "Has Multiple Values"), Bits(6, 2, "Reserved")});
constexpr auto kExtension = Rows<Bb>({Number(1, "Type Extension").Into(&Bb::extension)});
constexpr auto kStart = Rows<Bb>({Number(1, "Index Start")});
constexpr auto kStop = Rows<Bb>({Number(1, "Index Stop")});
constexpr auto kLength = Rows<Bb>({Number(1, "Length").Into(&Bb::length)});
constexpr auto kLongLength = Rows<Bb>({Number(2, "Length").Into(&Bb::length)});
constexpr auto kAddressHead = Rows<Bb>({
    Number(1, "Number of Addresses").Into(&Bb::count), Word(1).Into(&Bb::flags), Flag(0, "Has Head"),
    Flag(1, "Has Full Tail"), Flag(2, "Has Zero Tail"), Flag(3, "Has Single Prefix Length"),
    Flag(4, "Has Multiple Prefix Lengths"), Bits(5, 3, "Reserved")});
constexpr auto kHead = Rows<Bb>({Number(1, "Head Length").Into(&Bb::headSize), Bytes(0, "Head").SizedBy(&Bb::headSize)});
constexpr auto kFullTail = Rows<Bb>({Number(1, "Tail Length").Into(&Bb::tailSize), Bytes(0, "Tail").SizedBy(&Bb::tailSize)});
constexpr auto kZeroTail = Rows<Bb>({Number(1, "Tail Length").Into(&Bb::tailSize)});
constexpr auto kPrefixLength = Rows<Bb>({Number(1, "Prefix Length").Note("/%u")});

constexpr auto kLocalRow = Rows<Bb>({Number(1, "Local Interface", kInterfaceNames).Note(", %s")});
constexpr auto kStatusRow = Rows<Bb>({Number(1, "Link Status", kLinkNames).Note(", %s")});
constexpr auto kOtherRow = Rows<Bb>({Number(1, "Other Neighbor", kLinkNames).Note(", %s")});
constexpr auto kRelayRow = Rows<Bb>({Number(1, "Multipoint Relay", kRelayNames).Note(", %s")});
constexpr auto kAddressTypeRow = Rows<Bb>({Number(1, "Neighbor Address Type", kAddressTypeNames).Note(", %s")});
constexpr auto kGatewayRow = Rows<Bb>({Number(1, "Gateway Distance").Note(", %u")});
constexpr auto kWillingRow = Rows<Bb>({Word(1), Bits(0, 4, "Willingness to Flood"), Bits(4, 4, "Willingness to Route")});
constexpr auto kContentRow = Rows<Bb>({Number(2, "Content Sequence Number").Note(", %u")});
constexpr auto kMetricRow = Rows<Bb>({
    Word(2), Flag(0, "Incoming Link"), Flag(1, "Outgoing Link"), Flag(2, "Incoming Neighbor"), Flag(3, "Outgoing Neighbor"),
    Bits(4, 4, "Exponent"), Bits(8, 8, "Mantissa")});
constexpr auto kCheckHead = Rows<Bb>({
    Number(1, "Hash Function", kHashNames), Number(1, "Cryptographic Function", kCipherNames),
    Counted(1, Bytes(0, "Key ID"))});
constexpr auto kCheckRow = Rows<Bb>({Bytes(0, "Integrity Check Value")});
constexpr auto kUnixRow = Rows<Bb>({UnixTime(4, "Timestamp").Note(", %s")});
constexpr auto kNtpRow = Rows<Bb>({NtpTime("Timestamp").Note(", %s")});
constexpr auto kMonotonicRow = Rows<Bb>({Bytes(0, "Monotonic Timestamp")});
constexpr auto kValueRow = Rows<Bb>({Bytes(0, "Value")});

// Of 1/1024 s: a mantissa of eighths and an exponent.
void ShowTime(const Place& in, Cursor& c) {
  const Field code = TakeU8(c);
  const uint64_t milliseconds = code.value == 0 ? 0 : (uint64_t{8 + (code.value & 7)} << (code.value >> 3)) * 1000 / 8192;
  AddLine(in, code, "Time: %I64u.%.03u seconds", milliseconds / 1000, static_cast<uint32_t>(milliseconds % 1000));
  AppendToParent(in, code, ", %I64u.%.03u seconds", milliseconds / 1000, static_cast<uint32_t>(milliseconds % 1000));
}

void ShowEach(const Place& in, Cursor& c, RowSpan<Bb> rows, Bb& bb) {
  Loop loop;
  while (MoreAt(in, c, loop)) ShowRows<Bb>(in, c, rows, bb);
}

void ShowCheck(const Place& in, Cursor& c, Bb& bb) {
  if (bb.extension.value) ShowRows<Bb>(in, c, kCheckHead, bb);
  ShowRows<Bb>(in, c, kCheckRow, bb);
}
void ShowTimestamp(const Place& in, Cursor& c, Bb& bb) {
  constexpr uint32_t kUnix = 1, kNtp = 2;
  const uint32_t kind = bb.extension.value;
  ShowRows<Bb>(in, c, kind == kUnix && Left(c) == 4  ? RowSpan<Bb>(kUnixRow)
                      : kind == kNtp && Left(c) == 8 ? RowSpan<Bb>(kNtpRow)
                                                     : RowSpan<Bb>(kMonotonicRow), bb);
}

void ShowValue(const Place& in, Cursor& c, uint32_t type, Scope scope, Bb& bb) {
  const bool ofAddress = scope == Scope::kAddress;
  if (type == kIntervalTime || type == kValidityTime) {
    Loop loop;
    while (MoreAt(in, c, loop)) ShowTime(in, c);
  } else if (type == kCheck) {
    ShowCheck(in, c, bb);
  } else if (type == kTimestamp) {
    ShowTimestamp(in, c, bb);
  } else if (scope == Scope::kMessage && type == kWilling) {
    ShowRows<Bb>(in, c, kWillingRow, bb);
  } else if (scope == Scope::kMessage && type == kContentNumber) {
    ShowRows<Bb>(in, c, kContentRow, bb);
  } else if (ofAddress && type >= kLocalInterface && type <= 10) {
    ShowEach(in, c, type == kLocalInterface   ? RowSpan<Bb>(kLocalRow)
                    : type == kLinkStatus     ? RowSpan<Bb>(kStatusRow)
                    : type == kOtherNeighbor  ? RowSpan<Bb>(kOtherRow)
                    : type == kMetric         ? RowSpan<Bb>(kMetricRow)
                    : type == kRelay          ? RowSpan<Bb>(kRelayRow)
                    : type == kAddressType    ? RowSpan<Bb>(kAddressTypeRow)
                                              : RowSpan<Bb>(kGatewayRow), bb);
  } else {
    ShowRows<Bb>(in, c, kValueRow, bb);
  }
}

void ShowTlv(const Place& at, Cursor& c, Scope scope, Bb& bb) {
  constexpr uint32_t kHasExtension = 0x80, kSingle = 0x40, kMultiple = 0x20, kHasValue = 0x10, kIsLong = 0x08;
  const Cursor start = c;
  const Field type = TakeU8(c);
  const char* name = scope == Scope::kAddress ? LookupName(kAddressTlvNames, type.value) : LookupName(kTlvNames, type.value);
  const Place in = Under(at, AddLine(at, Ahead(start, Left(start)), "TLV: %s", name));
  AddLine(in, type, "Type: %u = %s", type.value, name);
  bb.extension = bb.length = Field{};
  ShowRows<Bb>(in, c, kTlvFlags, bb);
  const uint32_t flags = bb.flags.value;
  if (flags & kHasExtension) ShowRows<Bb>(in, c, kExtension, bb);
  if (flags & (kSingle | kMultiple)) ShowRows<Bb>(in, c, kStart, bb);
  if (flags & kMultiple) ShowRows<Bb>(in, c, kStop, bb);
  if (flags & kHasValue) {
    ShowRows<Bb>(in, c, flags & kIsLong ? RowSpan<Bb>(kLongLength) : RowSpan<Bb>(kLength), bb);
    Cursor value = TakeCursor(c, bb.length.value);
    ShowValue(in, value, type.value, scope, bb);
    value.ranShort = false;   // what is left of a value that is cut
    AddBlock(in, Rest(value), "Value Data");
  }
  if (!in.dead) SetRange(in, in.parent, start.offset, c.offset - start.offset);
}

void ShowTlvBlock(const Place& at, Cursor& c, Scope scope, Bb& bb) {
  if (!Left(c)) return;
  const int32_t size = 2 + static_cast<int32_t>(PeekU16(c));
  Cursor block = TakeCursor(c, size);
  const Place in = Under(at, AddLine(at, Ahead(block, Left(block)), "TLV Block: %d bytes", size - 2));
  ShowRows<Bb>(in, block, kBlockLength, bb);
  Loop loop;
  while (MoreAt(in, block, loop)) ShowTlv(in, block, scope, bb);
}

void AddAddress(const Place& in, const Field& line, const char* label, const uint8_t* address, int32_t size) {
  constexpr int32_t kIPv4Size = 4, kMacSize = 6, kIPv6Size = 16;
  if (size == kIPv4Size) AddLine(in, line, "%s: %s", label, IPv4Text(address));
  else if (size == kIPv6Size) AddLine(in, line, "%s: %s", label, IPv6Text(address));
  else if (size == kMacSize) AddLine(in, line, "%s: %s", label, MacText(address));
  else AddLine(in, line, "%s: %s", label, HexText(line));
}
// keys: text Originator Address, Address

// Addresses share their heads and tails; what is their own stands between.
void ShowAddresses(const Place& at, Cursor& c, Bb& bb) {
  constexpr uint32_t kHasHead = 0x80, kHasFullTail = 0x40, kHasZeroTail = 0x20, kHasOneLength = 0x10, kHasLengths = 0x08;
  const Cursor start = c;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "Address Block: %u addresses", PeekU8(c)));
  bb.headSize = bb.tailSize = Field{};
  ShowRows<Bb>(in, c, kAddressHead, bb);
  const uint32_t flags = bb.flags.value, count = bb.count.value;
  uint8_t address[16] = {};
  if (flags & kHasHead) ShowRows<Bb>(in, c, kHead, bb);
  const int32_t head = static_cast<int32_t>(bb.headSize.value), size = bb.addressSize;
  for (int32_t i = 0; i < head && i < 16; ++i) address[i] = static_cast<uint8_t>(PeekU8(start, 3 + i));
  const Cursor tail = c;
  if (flags & kHasFullTail) ShowRows<Bb>(in, c, kFullTail, bb);
  else if (flags & kHasZeroTail) ShowRows<Bb>(in, c, kZeroTail, bb);
  const int32_t tailSize = static_cast<int32_t>(bb.tailSize.value), own = size - head - tailSize;
  if (own < 0) return;
  for (int32_t i = 0; i < tailSize && flags & kHasFullTail; ++i) {
    address[size - tailSize + i] = static_cast<uint8_t>(PeekU8(tail, 1 + i));
  }
  Loop loop;
  for (uint32_t number = 0; number < count && (own == 0 || MoreAt(in, c, loop)); ++number) {
    const Field middle = TakeBytes(c, own);
    for (int32_t i = 0; i < middle.length; ++i) address[head + i] = static_cast<uint8_t>(PeekU8(middle, i));
    AddAddress(in, middle.length ? middle : Stated(c.offset, 0), "Address", address, size);
    if (own == 0) break;
  }
  if (flags & (kHasOneLength | kHasLengths)) {
    Loop lengths;
    const uint32_t all = flags & kHasLengths ? count : 1;
    for (uint32_t i = 0; i < all && MoreAt(in, c, lengths); ++i) ShowRows<Bb>(in, c, kPrefixLength, bb);
  }
  ShowTlvBlock(in, c, Scope::kAddress, bb);
  if (!in.dead) SetRange(in, in.parent, start.offset, c.offset - start.offset);
}

void ShowMessage(const Place& at, Cursor& c) {
  constexpr uint32_t kHasOriginator = 0x80, kHasLimit = 0x40, kHasCount = 0x20, kHasNumber = 0x10;
  Cursor message = TakeCursor(c, PeekU16(c, 2));
  const Place in = Under(at, AddLine(at, Ahead(message, Left(message)), "Message: %s",
                                     LookupName(kMessageNames, PeekU8(message))));
  Bb bb = ShowRows(in, message, kMessageHead);
  const uint32_t flags = bb.flags.value;
  bb.addressSize = static_cast<int32_t>(flags & 15) + 1;
  if (flags & kHasOriginator) {
    const Field originator = TakeBytes(message, bb.addressSize);
    if (originator.here) AddAddress(in, originator, "Originator Address", originator.bytes, bb.addressSize);
  }
  if (flags & kHasLimit) ShowRows<Bb>(in, message, kHopLimit, bb);
  if (flags & kHasCount) ShowRows<Bb>(in, message, kHopCount, bb);
  if (flags & kHasNumber) ShowRows<Bb>(in, message, kMessageNumber, bb);
  ShowTlvBlock(in, message, Scope::kMessage, bb);
  Loop loop;
  while (MoreAt(in, message, loop)) ShowAddresses(in, message, bb);
  message.ranShort = false;   // what is left of a message that is cut
  AddBlock(in, Rest(message), "Message Data");
}

}  // namespace

int32_t DecodePacketBb(const Place& at, Cursor c) {
  constexpr uint32_t kHasNumber = 0x08, kHasTlvs = 0x04, kLeastMessage = 4;
  if (Left(c) < 1 || PeekU8(c) >> 4 != 0) return 0;
  const LineHandle line = AddLine(at, Ahead(c, Left(c)), "MANET Packet: Version %u", PeekU8(c) >> 4);
  const Place in = Under(at, line);
  Bb bb = ShowRows(in, c, kPacketHead);
  const uint32_t flags = bb.flags.value;
  if (flags & kHasNumber) ShowRows<Bb>(in, c, kPacketNumber, bb);
  if (flags & kHasTlvs) ShowTlvBlock(in, c, Scope::kPacket, bb);
  Loop loop;
  while (Left(c) >= 4 && PeekU16(c, 2) >= kLeastMessage && MoreAt(in, c, loop)) ShowMessage(in, c);
  c.ranShort = false;
  AddBlock(in, Rest(c), "MANET Data");
  return 1;
}

}  // namespace qxview
