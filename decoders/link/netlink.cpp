// Netlink (RFC 3549): what programs and Linux's kernel say to each other of interfaces, routes, filters and sockets.
// Numbers
// are in the order of the machine, which the first message's length tells.
//
//   length (4)   type (2)   flags (2)   sequence (4)   port (4)   the family's header   attributes: length (2), type
// (2), value
#include "decoders/link/netlink.h"

#include "core/line_facts.h"
#include "decoders/link/link_frame.h"
#include "decoders/link/linux_names.h"

namespace qxview {
namespace {

enum Family : uint32_t { kRoute = 0, kDiagnosis = 4, kFilter = 12, kGeneric = 16 };
enum ControlType : uint32_t { kNoOperation = 1, kError = 2, kDone = 3, kOverrun = 4, kLeastFamilyType = 16 };
constexpr int32_t kHeaderSize = 16;

constexpr auto kFamilyNames = SortedNames({
    {0, "Route"}, {1, "Unused"}, {2, "User Sockets"}, {3, "Firewall"}, {4, "Socket Diagnosis"}, {5, "Netfilter Log"},
    {6, "IPsec"}, {7, "SELinux"}, {8, "iSCSI"}, {9, "Audit"}, {10, "Forwarding Look-up"}, {11, "Connector"}, {12,
    "Netfilter"},
    {13, "IPv6 Firewall"}, {14, "DECnet Routing"}, {15, "Kernel Events"}, {16, "Generic"}, {18, "SCSI Transport"},
    {19, "eCryptfs"}, {20, "RDMA"}, {21, "Crypto"}, {22, "SMC"}});
constexpr auto kControlNames = SortedNames({{1, "No Operation"}, {2, "Error"}, {3, "Done"}, {4, "Overrun"}});
constexpr auto kPacketTypeNames = SortedNames({{0, "To Us"}, {4, "Outgoing"}, {6, "To User Space"}, {7,
    "To Kernel Space"}});
constexpr auto kFlagNames = SortedNames({
    {0x0001, "Request"}, {0x0002, "Multipart"}, {0x0004, "Acknowledge"}, {0x0008, "Echo"}, {0x0010, "Dump Interrupted"},
    {0x0020, "Dump Filtered"}, {0x0100, "Root or Replace"}, {0x0200, "Match or Exclusive"}, {0x0400,
    "Atomic or Create"},
    {0x0800, "Append"}});
constexpr auto kErrorNumbers = SortedNames({
    {0, "Acknowledged"}, {1, "EPERM"}, {2, "ENOENT"}, {3, "ESRCH"}, {4, "EINTR"}, {11, "EAGAIN"}, {12, "ENOMEM"}, {13,
    "EACCES"},
    {14, "EFAULT"}, {16, "EBUSY"}, {17, "EEXIST"}, {19, "ENODEV"}, {22, "EINVAL"}, {28, "ENOSPC"}, {34, "ERANGE"}, {95,
    "EOPNOTSUPP"},
    {97, "EAFNOSUPPORT"}, {98, "EADDRINUSE"}, {99, "EADDRNOTAVAIL"}, {100, "ENETDOWN"}, {101, "ENETUNREACH"}, {105,
    "ENOBUFS"},
    {106, "EISCONN"}, {107, "ENOTCONN"}, {113, "EHOSTUNREACH"}, {114, "EALREADY"}});

struct Netlink {
  Field length, type, flags;
};
constexpr auto kCooked = Rows<Netlink>({
    Number(2, "Packet Type", kPacketTypeNames), Number(2, "Interface Kind", kInterfaceKindNames), Bytes(10, "Unused"),
    Number(2, "Family", kFamilyNames)});
constexpr auto kLengthRow = Rows<Netlink>({Number(4, "Length").Into(&Netlink::length)});
constexpr auto kRest = Rows<Netlink>({
    Flags(2, "Flags", kFlagNames).Into(&Netlink::flags), Number(4, "Sequence"), Number(4, "Port ID")});

const NetlinkAttribute kErrorAttributes[] = {
    {1, NetlinkKind::kText, "Message"}, {2, NetlinkKind::kNumber, "Offset of the Faulty Attribute"},
    {3, NetlinkKind::kBytes, "Cookie"}, {4, NetlinkKind::kBytes, "Policy"}, {5, NetlinkKind::kNumber,
    "Missing Attribute Type"},
    {6, NetlinkKind::kNumber, "Offset of the Missing Nest"}};
const NetlinkTable kErrors = TableOf(kErrorAttributes);
const NetlinkTable kNoAttributes{};

const char* NameMessage(uint32_t family, uint32_t type) {
  if (type < kLeastFamilyType) return LookupName(kControlNames, type);
  switch (family) {
    case kRoute: return NameRouteMessage(type);
    case kDiagnosis: return NameDiagnosisMessage(type);
    case kFilter: return NameFilterMessage(type);
    case kGeneric: return NameGenericMessage(type);
    default: return kUnknown;
  }
}

const NetlinkAttribute* FindAttribute(const NetlinkTable& table, uint32_t code) {
  for (int32_t i = 0; i < table.count; ++i) {
    if (table.attributes[i].code == code) return &table.attributes[i];
  }
  return table.more ? FindAttribute(*table.more, code) : nullptr;
}

// The number's line alone, and what it says beside its label for the line of the attribute.
void AddNumber(const Place& in, const Field& field, const NetlinkAttribute& attribute, bool little) {
  const uint64_t number = detail::NumberOf(field, little);
  // keys: tables decoders/link/netlink*.cpp
  if (attribute.kind == NetlinkKind::kSigned) {
    const int32_t shift = 64 - 8 * field.length;
    AddLine(in, field, "%s: %I64d", attribute.name, static_cast<int64_t>(number << shift) >> shift);
  } else if (attribute.names.Here()) {
    AddLine(in, field, "%s: %I64u = %s", attribute.name, number, attribute.names.NameOf(static_cast<uint32_t>(number)));
  } else {
    AddLine(in, field, "%s: %I64u", attribute.name, number);
  }
}

void ShowNumber(const Place& in, const Field& field, const NetlinkAttribute& attribute, bool little) {
  const uint64_t number = detail::NumberOf(field, little);
  AddNumber(in, field, attribute, little);
  if (attribute.names.Here() && attribute.kind != NetlinkKind::kSigned) {
    return AppendToParent(in, field, ", %s", attribute.names.NameOf(static_cast<uint32_t>(number)));
  }
  AppendToParent(in, field, ", %I64u", number);
}

void AddAddress(const Place& in, const Field& field, const char* name) {
  switch (field.length) {
    case 4: return AddLine(in, field, "%s: %s", name, IPv4Text(field.bytes)), void();
    case 16: return AddLine(in, field, "%s: %s", name, IPv6Text(field.bytes)), void();
    case 6: return AddLine(in, field, "%s: %s", name, MacText(field.bytes)), void();
    default: AddLine(in, field, "%s: %s", name, HexText(field));
  }
}

void ShowAddress(const Place& in, const Field& field, const char* name) {
  AddAddress(in, field, name);
  switch (field.length) {
    case 4: return AppendToParent(in, field, ", %s", IPv4Text(field.bytes));
    case 16: return AppendToParent(in, field, ", %s", IPv6Text(field.bytes));
    case 6: return AppendToParent(in, field, ", %s", MacText(field.bytes));
    default: return;
  }
}

// Older kernels end a record earlier, newer ones later: what there is.
void ShowRecord(const Place& in, Cursor& c, const NetlinkTable& table, bool little, bool isWide) {
  constexpr int32_t kWide = 8;
  for (int32_t i = 0; i < table.count; ++i) {
    const NetlinkAttribute& piece = table.attributes[i];
    const int32_t size = isWide ? kWide : piece.code;
    if (Left(c) < size) return;
    const Field field = TakeBytes(c, size);
    switch (piece.kind) {
      case NetlinkKind::kFlag: break;   // padding
      case NetlinkKind::kAddress: AddAddress(in, field, piece.name); break;
      case NetlinkKind::kBytes: AddLine(in, field, "%s: %s", piece.name, HexText(field)); break;
      default: AddNumber(in, field, piece, little && piece.kind != NetlinkKind::kNetwork);
    }
  }
}

struct Within {
  bool little;
  int32_t depth;
  Field kind;   // the text that the list named last
};
void ShowList(const Place& in, Cursor& c, const NetlinkTable& table, bool little, int32_t depth);

constexpr auto kHopFlags = SortedNames({
    {0x01, "Dead"}, {0x02, "Pervasive"}, {0x04, "On Link"}, {0x08, "Offload"}, {0x10, "Link Down"}, {0x20, "Unresolved"},
    {0x40, "Trap"}});
struct Hop {
  Field length;
};
constexpr auto kHop = Rows<Hop>({
    Number(2, "Hop Length").Into(&Hop::length), Flags(1, "Hop Flags", kHopFlags), Number(1, "Hops"),
    Number(4, "Output Interface")});

void ShowHops(const Place& in, Cursor& c, const NetlinkTable& below, bool little, int32_t depth) {
  constexpr int32_t kHopSize = 8;
  Loop loop;
  while (Left(c) >= kHopSize && MoreAt(in, c, loop)) {
    const int32_t length = static_cast<int32_t>(little ? PeekLittleU16(c) : PeekU16(c));
    Cursor hop = TakeCursor(c, length < kHopSize ? kHopSize : length);
    const Place under = Under(in, AddLine(in, Ahead(hop, Left(hop)), "Next Hop"));
    Hop out{};
    ShowRows<Hop>(under, hop, kHop, out, nullptr, little ? ByteOrder::kLittle : ByteOrder::kAsRows);
    ShowList(under, hop, below, little, depth + 1);
    TakeCursor(c, (4 - length % 4) % 4);
  }
}

void ShowValue(const Place& in, Cursor& c, const NetlinkAttribute& attribute, const Within& within) {
  const bool little = within.little;
  const int32_t depth = within.depth;
  constexpr int32_t kMostShown = 64;
  const NetlinkTable& below = attribute.below ? *attribute.below : kNoAttributes;
  switch (attribute.kind) {
    case NetlinkKind::kFlag: return;
    case NetlinkKind::kNested: return ShowList(in, c, below, little, depth + 1);
    case NetlinkKind::kRecord: return ShowRecord(in, c, below, little, false);
    case NetlinkKind::kWideRecord: return ShowRecord(in, c, below, little, true);
    case NetlinkKind::kHops: return ShowHops(in, c, below, little, depth);
    case NetlinkKind::kOfKind:
    case NetlinkKind::kOfSlave: {
      const NetlinkTable* kind = FindLinkKind(within.kind, attribute.kind == NetlinkKind::kOfSlave);
      return ShowList(in, c, kind ? *kind : kNoAttributes, little, depth + 1);
    }
    case NetlinkKind::kList: {
      const NetlinkAttribute item{0, NetlinkKind::kNested, "Item", &below};
      Loop loop;
      while (Left(c) >= 4 && MoreAt(in, c, loop)) {
        const uint32_t length = little ? PeekLittleU16(c) : PeekU16(c);
        const Place under = Under(in, AddLine(in, Ahead(c, length < static_cast<uint32_t>(Left(c)) ?
            static_cast<int32_t>(length) : Left(c)), "Item"));
        const Field size = TakeBytes(c, 2), number = TakeBytes(c, 2);
        AddLine(under, size, "Length: %u", length);
        AddLine(under, number, "Number: %u", static_cast<uint32_t>(detail::NumberOf(number, little)) & 0x3FFF);
        if (length < 4) return;
        Cursor value = TakeCursor(c, length - 4);
        ShowValue(under, value, item, {little, depth + 1, {}});
        TakeCursor(c, (4 - length % 4) % 4);
      }
      return;
    }
    default: break;
  }
  const Field field = Rest(c);
  if (!field.here) return;
  const bool isNumber = field.length <= 2 || field.length == 4 || field.length == 8;
  switch (attribute.kind) {
    case NetlinkKind::kNumber:
    case NetlinkKind::kSigned:
      if (isNumber) return ShowNumber(in, field, attribute, little);
      break;
    case NetlinkKind::kNetwork:
      if (isNumber) return ShowNumber(in, field, attribute, false);
      break;
    case NetlinkKind::kText:
      AddLine(in, field, "%s: %s", attribute.name, Text(field));
      return AppendToParent(in, field, ", %s", Text(field));
    case NetlinkKind::kAddress: return ShowAddress(in, field, attribute.name);
    default: break;
  }
  if (field.length <= kMostShown) {
    AddLine(in, field, "%s: %s", attribute.name, HexText(field));
  } else {
    AddBlock(in, field, attribute.name);
  }
}

void ShowList(const Place& in, Cursor& c, const NetlinkTable& table, bool little, int32_t depth) {
  Within within{little, depth, {}};
  Loop loop;
  while (Left(c) >= 4 && depth < kDeepestNetlink && MoreAt(in, c, loop)) {
    const uint32_t length = little ? PeekLittleU16(c) : PeekU16(c), word = little ? PeekLittleU16(c, 2) : PeekU16(c, 2);
    if (length < 4) break;
    const NetlinkAttribute* attribute = FindAttribute(table, word & 0x3FFF);
    const int32_t whole = length < static_cast<uint32_t>(Left(c)) ? static_cast<int32_t>(length) : Left(c);
    const char* name = attribute ? attribute->name : kUnknown;
    const Place under = Under(in, AddLine(in, Ahead(c, whole), "Attribute: %s", name));
    const Field size = TakeBytes(c, 2);
    Field type = TakeBytes(c, 2);
    type.value = word;
    AddLine(under, size, "Length: %u", length);
    const LineHandle line = AddLine(under, type, "Type: 0x%.04X = %s", word, name);
    if (word & 0xC000) {
      const Place bits = Under(under, line);
      const BitPicture nested = BitsOf(type, 0, 1), network = BitsOf(type, 1, 1);
      AddBitLine(bits, type, "%s: Nested = %s", nested.picture, TrueOrFalse(nested.value));
      AddBitLine(bits, type, "%s: Network Byte Order = %s", network.picture, TrueOrFalse(network.value));
    }
    Cursor value = TakeCursor(c, length - 4);
    if (attribute) {
      if (attribute->kind == NetlinkKind::kText) within.kind = PeekBytes(value, 0, Left(value));
      ShowValue(under, value, *attribute, within);
    } else if (word & 0x8000) {
      ShowList(under, value, kNoAttributes, little, depth + 1);
    }
    value.ranShort = false;
    AddBlock(under, Rest(value), "Data");
    const int32_t padding = static_cast<int32_t>((4 - length % 4) % 4);
    if (padding && Left(c) >= padding) TakeBytes(c, padding);
  }
  AddBlock(in, Rest(c), "Data");
}

void ShowError(const Place& in, Cursor& c, const NetlinkMessage& message) {
  constexpr uint32_t kCapped = 0x100, kExtended = 0x200;
  const Field code = TakeBytes(c, 4);
  const int32_t number = static_cast<int32_t>(detail::NumberOf(code, message.little));
  const char* name = LookupName(kErrorNumbers, static_cast<uint32_t>(number < 0 ? -static_cast<int64_t>(number) :
      number));
  AddLine(in, code, "Error: %d = %s", number, name);
  AppendToParent(in, code, ", %s", name);
  if (message.type != kError || Left(c) < kHeaderSize) return AddBlock(in, Rest(c), "Data"), void();
  const uint32_t length = message.little ? PeekLittleU32(c) : PeekU32(c);
  const Place under = Under(in, AddLine(in, Ahead(c, kHeaderSize), "Message in Error"));
  Netlink out{};
  const ByteOrder order = message.little ? ByteOrder::kLittle : ByteOrder::kAsRows;
  ShowRows<Netlink>(under, c, kLengthRow, out, nullptr, order);
  const Field type = TakeBytes(c, 2);
  AddLine(under, type, "Message Type: %u", static_cast<uint32_t>(detail::NumberOf(type, message.little)));
  ShowRows<Netlink>(under, c, kRest, out, nullptr, order);
  if (!(message.flags & kCapped) && number != 0 && length > static_cast<uint32_t>(kHeaderSize)) {
    Cursor rest = TakeCursor(c, length - static_cast<uint32_t>(kHeaderSize));
    AddBlock(under, Rest(rest), "Message Data");
  }
  if (message.flags & kExtended) ShowList(in, c, kErrors, message.little, 0);
}

void ShowBody(const Place& in, Cursor& c, uint32_t family, const NetlinkMessage& message) {
  if (message.type == kError || message.type == kDone) {
    if (Left(c) >= 4) ShowError(in, c, message);
    return;
  }
  if (message.type < kLeastFamilyType) return;
  switch (family) {
    case kRoute: return ShowRouteMessage(in, c, message);
    case kDiagnosis: return ShowDiagnosisMessage(in, c, message);
    case kFilter: return ShowFilterMessage(in, c, message);
    case kGeneric: return ShowGenericMessage(in, c, message);
    default: return;
  }
}

}  // namespace

void ShowNetlinkAttributes(const Place& in, Cursor& c, const NetlinkTable& table, bool little) {
  ShowList(in, c, table, little, 0);
}

int32_t DecodeNetlinkMessages(const Place& at, Cursor c, uint32_t family) {
  const KeyedAs keys(PacketOf(at), "netlink");
  if (Left(c) < kHeaderSize) return CallDecoder(at, c, nullptr, "Raw Data");
  const uint32_t left = static_cast<uint32_t>(Left(c)), asLittle = PeekLittleU32(c);
  const bool little = asLittle >= static_cast<uint32_t>(kHeaderSize) && (asLittle <= left || PeekU32(c) > left);
  Loop loop;
  while (Left(c) >= kHeaderSize && MoreAt(at, c, loop)) {
    const uint32_t length = little ? PeekLittleU32(c) : PeekU32(c), type = little ? PeekLittleU16(c, 4) : PeekU16(c, 4);
    Cursor message = TakeCursor(c, length < static_cast<uint32_t>(kHeaderSize) ? kHeaderSize : length);
    const char* name = NameMessage(family, type);
    const Place in = Under(at, AddLine(at, Ahead(message, Left(message)), "Netlink %s: %s", LookupName(kFamilyNames,
        family), name));
    Netlink out{};
    const ByteOrder order = little ? ByteOrder::kLittle : ByteOrder::kAsRows;
    ShowRows<Netlink>(in, message, kLengthRow, out, nullptr, order);
    const Field typeField = TakeBytes(message, 2);
    AddLine(in, typeField, "Message Type: %u = %s", type, name);
    ShowRows<Netlink>(in, message, kRest, out, nullptr, order);
    ShowBody(in, message, family, {type, out.flags.value, little});
    message.ranShort = false;
    AddBlock(in, Rest(message), "Netlink Data");
    TakeCursor(c, (4 - length % 4) % 4);
  }
  AddBlock(at, Rest(c), "Netlink Data");
  return 1;
}

int32_t DecodeNetlink(const Place& at, Cursor c) {
  if (Left(c) < kHeaderSize) return 0;
  const uint32_t family = PeekU16(c, 14);
  const Place in = Under(at, AddLine(at, Ahead(c, kHeaderSize), "Linux Cooked Header: %s", LookupName(kFamilyNames,
      family)));
  ShowRows(in, c, kCooked);
  return Left(c) > 0 ? DecodeNetlinkMessages(Deeper(at), c, family) : 1;
}

}  // namespace qxview
