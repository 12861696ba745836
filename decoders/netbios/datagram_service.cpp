// The NetBIOS datagram service (RFC 1002 4.4).
//
//   0      1       2             4                10            12
//   type   flags   datagram ID   source address   source port   ...
//   datagram   length (2)   offset (2)   source name   destination name   user data (SMB)
//   error      error code (1)
//   query      destination name
//   flags      0 0 0 0  source node type (2)  first (1)  more (1), most significant first; the names within as sent
#include "decoders/netbios/netbios.h"
#include "decoders/smb/smb.h"

namespace qxview {
namespace {

constexpr int32_t kHeaderSize = 10;
enum Type : uint32_t {
  kDirectUnique = 0x10, kBroadcast = 0x12, kError = 0x13, kQuery = 0x14, kNegativeResponse = 0x16
};

constexpr auto kTypeNames = SortedNames({
    {0x10, "Direct Unique Datagram"}, {0x11, "Direct Group Datagram"}, {0x12, "Broadcast Datagram"},
    {0x13, "Datagram Error"}, {0x14, "Query Request"}, {0x15, "Positive Query Response"},
    {0x16, "Negative Query Response"},
});
constexpr auto kErrorNames = SortedNames({{0x82, "Destination Name Not Present"}, {0x83, "Invalid Source Name Format"},
                                          {0x84, "Invalid Destination Name Format"}});
constexpr const char* kNodeTypes[] = {"B-Node", "P-Node", "M-Node", "Datagram Distribution Server"};

void AddFlagLines(const Place& in, const Field& flags) {
  const Place under = Under(in, AddLine(in, flags, "Flags: 0x%.02X", flags.value));
  const BitPicture node = BitsOf(flags, 4, 2), first = BitsOf(flags, 6, 1), more = BitsOf(flags, 7, 1);
  AddBitLine(under, flags, "%s: Reserved", BitsOf(flags, 0, 4).picture);
  AddBitLine(under, flags, "%s: Source Node Type = [%u] %s", node.picture, node.value, kNodeTypes[node.value]);
  AddBitLine(under, flags, "%s: First Fragment = %s", first.picture, TrueOrFalse(first.value));
  AddBitLine(under, flags, "%s: More Fragments = %s", more.picture, TrueOrFalse(more.value));
}

// The names and the user data of a datagram. Only the first of its fragments holds the head of an SMB message.
void DecodeDatagram(const Place& at, const Place& in, Cursor& c, const Field& message, uint32_t type) {
  const Field length = TakeU16(c);
  AddLine(in, length, "Datagram Length: %u", length.value);
  const Field offset = TakeU16(c);
  AddLine(in, offset, "Packet Offset: %u", offset.value);
  Cursor inside = TakeCursor(c, length.value);
  const NetBiosName source = TakeNetBiosName(inside, message);
  AddNetBiosNameLine(in, "Source Name", source);
  const NetBiosName destination = TakeNetBiosName(inside, message);
  AddNetBiosNameLine(in, "Destination Name", destination, type > kDirectUnique && destination.suffix != 0x1D);
  if (source.field.here) AppendToLine(at, in.parent, ", %s", source.text);
  if (destination.field.here) AppendToLine(at, in.parent, " -> %s", destination.text);
  SetRange(at, in.parent, message.offset, inside.offset - message.offset);
  if (Left(inside) < 1) return;
  inside.begin = inside.offset;
  if (offset.value != 0 || !TryDecoder(Deeper(at), inside, DecodeSmbDatagram, nullptr)) {
    AddBlock(in, Ahead(inside, Left(inside)), "User Data");
  }
}

}  // namespace

const char* NetBiosDatagramTypeName(uint32_t type) { return LookupName(kTypeNames, type); }

int32_t DecodeNetBiosDatagram(const Place& at, Cursor c) {
  if (Left(c) < kHeaderSize) return 0;
  const Field message = Ahead(c, Left(c));
  const Field type = TakeU8(c);
  const Place in = Under(at, AddLine(at, message, "NetBIOS Datagram Service: %s", NetBiosDatagramTypeName(type.value)));
  AddLine(in, type, "Message Type: 0x%.02X = %s", type.value, NetBiosDatagramTypeName(type.value));
  AddFlagLines(in, TakeU8(c));
  const Field identifier = TakeU16(c);
  AddLine(in, identifier, "Datagram ID: 0x%.04X", identifier.value);
  const Field address = TakeBytes(c, 4);
  AddLine(in, address, "Source Address: %s", IPv4Text(address.bytes));
  const Field port = TakeU16(c);
  AddLine(in, port, "Source Port: %u", port.value);
  if (type.value >= kDirectUnique && type.value <= kBroadcast) {
    DecodeDatagram(at, in, c, message, type.value);
  } else if (type.value == kError) {
    const Field code = TakeU8(c);
    AddLine(in, code, "Error Code: 0x%.02X = %s", code.value, LookupName(kErrorNames, code.value));
    AppendToParent(in, code, ", %s", LookupName(kErrorNames, code.value));
  } else if (type.value >= kQuery && type.value <= kNegativeResponse) {
    const NetBiosName name = TakeNetBiosName(c, message);
    AddNetBiosNameLine(in, "Destination Name", name);
    AppendToParent(in, name.field, ", %s", name.text);
  }
  AddBlock(in, Ahead(c, Left(c)), "Extra Data");
  return 1;
}

}  // namespace qxview
