// Multicast Source Discovery Protocol (RFC 3618): rendezvous points tell each other which sources send to which groups.
//
//   type (1)   length with both (2)   what the type says
#include "core/rows.h"
#include "decoders/link/carried.h"

namespace qxview {
namespace {

constexpr int32_t kHeaderSize = 3, kEntrySize = 12;
constexpr uint32_t kActive = 1, kRequest = 2, kResponse = 3, kNotification = 5, kLastType = 7;
constexpr uint16_t kIPv4Type = 0x0800;

constexpr auto kTypeNames = SortedNames({
    {1, "Source-Active"}, {2, "Source-Active Request"}, {3, "Source-Active Response"}, {4, "KeepAlive"},
    {5, "Notification"}, {6, "Traceroute in Progress"}, {7, "Traceroute Reply"}});
constexpr auto kErrorNames = SortedNames({
    {1, "Message Header Error"}, {2, "SA-Request Error"}, {3, "SA-Message/SA-Response Error"}, {4, "Hold Timer Expired"},
    {5, "Finite State Machine Error"}, {6, "Notification"}, {7, "Cease"}});
// Code and subcode.
constexpr auto kSuberrorNames = SortedNames({
    {0x102, "Bad Message Length"}, {0x103, "Bad Message Type"}, {0x201, "Invalid Group"}, {0x301, "Invalid Entry Count"},
    {0x302, "Invalid RP Address"}, {0x303, "Invalid Group Address"}, {0x304, "Invalid Source Address"},
    {0x305, "Invalid Sprefix Length"}, {0x306, "Looping SA (Self is RP)"}, {0x307, "Unknown Encapsulation"},
    {0x308, "Administrative Scope Boundary Violated"}, {0x501, "Unexpected Message Type FSM Error"}});

struct Msdp {
  Field count, code, rest;
};

constexpr auto kHead = Rows<Msdp>({Number(1, "Type", kTypeNames), Number(2, "Length")});
constexpr auto kActiveRows = Rows<Msdp>({
    Number(1, "Entry Count").Into(&Msdp::count), IPv4("RP Address").Note(", RP %s")});
constexpr auto kEntry = Rows<Msdp>({
    Hex(3, "Reserved"), Number(1, "Sprefix Length"), IPv4("Group Address").Note(", %s"),
    IPv4("Source Address").Note(" from %s")});
constexpr auto kRequestRows = Rows<Msdp>({Hex(1, "Reserved"), IPv4("Group Address").Note(", %s")});
constexpr auto kErrorRows = Rows<Msdp>({
    Word(1), Flag(0, "Open"), Bits(1, 7, "Error Code", kErrorNames).Note(", %s").Into(&Msdp::code)});

void ShowActive(const Place& in, Cursor& c) {
  Msdp msdp = ShowRows(in, c, kActiveRows);
  Loop loop;
  for (uint32_t i = 0; i < msdp.count.value && Left(c) >= kEntrySize && MoreAt(in, c, loop); ++i) {
    ShowRows<Msdp>(Under(in, AddLine(in, Ahead(c, kEntrySize), "Entry %u", i + 1)), c, kEntry, msdp);
  }
}

// Behind the code stands what the error is about: groups, or a number and an address.
void ShowNotification(const Place& in, Cursor& c) {
  const Msdp msdp = ShowRows(in, c, kErrorRows);
  const Field sub = TakeU8(c);
  const uint32_t key = msdp.code.value << 8 | sub.value;
  AddLine(in, sub, "Error Subcode: %u = %s", sub.value,
          LookupName(kSuberrorNames, key, sub.value ? kUnknown : "Unspecific"));
  const Field data = Rest(c);
  AddLine(in, data, "Error Data: %s", HexText(data));
}

}  // namespace

int32_t DecodeMsdp(const Place& at, Cursor c) {
  const auto starts = [](const Cursor& next) {
    return PeekU8(next) >= kActive && PeekU8(next) <= kLastType && PeekU16(next, 1) >= kHeaderSize;
  };
  if (Left(c) < kHeaderSize || !starts(c)) return 0;
  Loop loop;
  while (Left(c) >= kHeaderSize && starts(c) && MoreAt(at, c, loop)) {
    const uint32_t type = PeekU8(c);
    const bool isCut = static_cast<int32_t>(PeekU16(c, 1)) > Left(c);
    Cursor message = TakeCursor(c, PeekU16(c, 1));
    const Place in = Under(at, AddLine(at, Ahead(message, Left(message)), "MSDP: %s%s", LookupName(kTypeNames, type),
                                       isCut ? ", continued in a later segment" : ""));
    ShowRows(in, message, kHead);
    Cursor carried = MakeCursor(nullptr, 0, 0);
    if (type == kActive || type == kResponse) {
      ShowActive(in, message);
      if (Left(message) && PeekU8(message) >> 4 == 4) {
        AddLine(in, Ahead(message, Left(message)), "Encapsulated Packet: %d bytes", Left(message));
        carried = TakeCursor(message, Left(message));
      }
    }
    if (type == kRequest) ShowRows(in, message, kRequestRows);
    if (type == kNotification) ShowNotification(in, message);
    message.ranShort = false;   // what is left of a message that is cut
    AddBlock(in, Rest(message), "Message Data");
    if (Left(carried)) DecodeCarriedPacket(Deeper(at), carried, kIPv4Type);
  }
  AddRawRest(at, c, "MSDP Data");
  return 1;
}

}  // namespace qxview
