// The NetBIOS datagram service (RFC 1002 4.4).
//
//   0      1       2             4                10            12
//   type   flags   datagram ID   source address   source port   ...
//   datagram   length (2)   offset (2)   source name   destination name   user data (SMB)
//   error      error code (1)
//   query      destination name
//   flags      0 0 0 0  source node type (2)  first (1)  more (1), most significant first; the names within as sent
#include "core/rows.h"
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
constexpr auto kNodeTypes = SortedNames({{0, "B-Node"}, {1, "P-Node"}, {2, "M-Node"}, {3, "Datagram Distribution Server"}});

struct Datagram {
  Field length, offset;
};
constexpr auto kHeader = Rows<NoValues>({
    Hex(1, "Message Type", kTypeNames),
    Hex(1, "Flags"), Bits(0, 4, "Reserved").Told("%s: Reserved"),
    Bits(4, 2, "Source Node Type", kNodeTypes).Told("%s: Source Node Type = [%u] %s"),
    Flag(6, "First Fragment"), Flag(7, "More Fragments"),
    Hex(2, "Datagram ID"), IPv4("Source Address"), Number(2, "Source Port")});
constexpr auto kPlace = Rows<Datagram>({Number(2, "Datagram Length").Into(&Datagram::length),
                                        Number(2, "Packet Offset").Into(&Datagram::offset)});
constexpr auto kErrorCode = Rows<NoValues>({Hex(1, "Error Code", kErrorNames).Note(", %s")});

// The names and the user data of a datagram. Only the first of its fragments holds the head of an SMB message.
void DecodeDatagram(const Place& at, const Place& in, Cursor& c, const Field& message, uint32_t type) {
  const Datagram datagram = ShowRows(in, c, kPlace);
  Cursor inside = TakeCursor(c, datagram.length.value);
  const NetBiosName source = TakeNetBiosName(inside, message);
  AddNetBiosNameLine(in, "Source Name", source);
  const NetBiosName destination = TakeNetBiosName(inside, message);
  AddNetBiosNameLine(in, "Destination Name", destination, type > kDirectUnique && destination.suffix != 0x1D);
  if (source.field.here) AppendToLine(at, in.parent, ", %s", source.text);
  if (destination.field.here) AppendToLine(at, in.parent, " -> %s", destination.text);
  SetRange(at, in.parent, message.offset, inside.offset - message.offset);
  if (Left(inside) < 1) return;
  inside.begin = inside.offset;
  if (datagram.offset.value != 0 || !TryDecoder(Deeper(at), inside, DecodeSmbDatagram, nullptr)) {
    AddBlock(in, Ahead(inside, Left(inside)), "User Data");
  }
}

}  // namespace

const char* NetBiosDatagramTypeName(uint32_t type) { return LookupName(kTypeNames, type); }

int32_t DecodeNetBiosDatagram(const Place& at, Cursor c) {
  if (Left(c) < kHeaderSize) return 0;
  const Field message = Ahead(c, Left(c));
  const uint32_t type = PeekU8(c);
  const Place in = Under(at, AddLine(at, message, "NetBIOS Datagram Service: %s", NetBiosDatagramTypeName(type)));
  ShowRows(in, c, kHeader);
  if (type >= kDirectUnique && type <= kBroadcast) {
    DecodeDatagram(at, in, c, message, type);
  } else if (type == kError) {
    ShowRows(in, c, kErrorCode);
  } else if (type >= kQuery && type <= kNegativeResponse) {
    const NetBiosName name = TakeNetBiosName(c, message);
    AddNetBiosNameLine(in, "Destination Name", name);
    AppendToParent(in, name.field, ", %s", name.text);
  }
  AddBlock(in, Ahead(c, Left(c)), "Extra Data");
  return 1;
}

}  // namespace qxview
