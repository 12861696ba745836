// Ad hoc On-Demand Distance Vector routing (RFC 3561; over IPv6 with longer addresses, and with the messages of the AODVv6
// draft, where the sequence numbers stand in front): mobile nodes ask for a route when they need one.
//
//   request   type (1)   flags (2)   hops (1)   identifier (4)   destination, its number, originator, its number
//   reply     type (1)   flags and prefix size (2)   hops (1)   destination, its number, originator   lifetime (4)
//   error     type (1)   flags (2)   count (1)   destinations that are out of reach, with their numbers
#include "core/elements.h"

namespace qxview {
namespace {

constexpr uint32_t kRequest = 1, kReply = 2, kError = 3, kAcknowledgement = 4, kFirstOfDraft = 16;

constexpr auto kTypeNames = SortedNames({
    {1, "Route Request"}, {2, "Route Reply"}, {3, "Route Error"}, {4, "Route Reply Acknowledgment"},
    {16, "IPv6 Route Request"}, {17, "IPv6 Route Reply"}, {18, "IPv6 Route Error"},
    {19, "IPv6 Route Reply Acknowledgment"}});

struct Aodv {
  Field count;
};

constexpr auto kType = Rows<Aodv>({Number(1, "Type", kTypeNames)});
constexpr auto kRequestHead = Rows<Aodv>({
    Hex(2, "Flags"), Flag(0, "Join"), Flag(1, "Repair"), Flag(2, "Gratuitous RREP"), Flag(3, "Destination Only"),
    Flag(4, "Unknown Sequence Number"), Bits(5, 11, "Reserved"), Number(1, "Hop Count"), Number(4, "RREQ ID")});
constexpr auto kReplyHead = Rows<Aodv>({
    Hex(2, "Flags"), Flag(0, "Repair"), Flag(1, "Acknowledgment Required"), Bits(2, 9, "Reserved"),
    Bits(11, 5, "Prefix Size"), Number(1, "Hop Count")});
constexpr auto kReplyHead6 = Rows<Aodv>({
    Hex(2, "Flags"), Flag(0, "Repair"), Flag(1, "Acknowledgment Required"), Bits(2, 7, "Reserved"),
    Bits(9, 7, "Prefix Size"), Number(1, "Hop Count")});
constexpr auto kErrorHead = Rows<Aodv>({
    Hex(2, "Flags"), Flag(0, "No Delete"), Bits(1, 15, "Reserved"), Number(1, "Destination Count").Into(&Aodv::count)});
constexpr auto kLifetime = Rows<Aodv>({Number(4, "Lifetime", " milliseconds")});
constexpr auto kReserved = Rows<Aodv>({Hex(1, "Reserved")});

constexpr auto kInterval = Rows<Aodv>({Number(4, "Hello Interval", " milliseconds")});
constexpr auto kExtensions = Choices<Aodv>({{1, "Hello Interval", kInterval}});

// An address, wide or not, and a sequence number that stands behind or in front of it.
struct Layout {
  bool isSix, numberFirst;
};
void ShowAddress(const Place& in, Cursor& c, bool isSix, const char* label) {
  const Field address = TakeBytes(c, isSix ? 16 : 4);
  if (!address.here) return;
  if (isSix) {
    AddLine(in, address, "%s Address: %s", label, IPv6Text(address.bytes));
    AppendToParent(in, address, ", %s %s", label, IPv6Text(address.bytes));
  } else {
    AddLine(in, address, "%s Address: %s", label, IPv4Text(address.bytes));
    AppendToParent(in, address, ", %s %s", label, IPv4Text(address.bytes));
  }
}
void ShowNumber(const Place& in, Cursor& c, const char* label) {
  const Field number = TakeU32(c);
  AddLine(in, number, "%s Sequence Number: %u", label, number.value);
}
// keys: text Destination Address, Originator Address, Unreachable Address
// keys: number Destination Sequence Number, Originator Sequence Number, Unreachable Sequence Number
void ShowNode(const Place& in, Cursor& c, Layout layout, const char* label) {
  if (layout.numberFirst) ShowNumber(in, c, label);
  ShowAddress(in, c, layout.isSix, label);
  if (!layout.numberFirst) ShowNumber(in, c, label);
}

void ShowBody(const Place& in, Cursor& c, uint32_t type, Layout layout) {
  Aodv aodv{};
  switch (type) {
    case kRequest:
      ShowRows<Aodv>(in, c, kRequestHead, aodv);
      if (layout.numberFirst) {
        ShowNumber(in, c, "Destination");
        ShowNumber(in, c, "Originator");
        ShowAddress(in, c, layout.isSix, "Destination");
        ShowAddress(in, c, layout.isSix, "Originator");
        break;
      }
      ShowNode(in, c, layout, "Destination");
      ShowNode(in, c, layout, "Originator");
      break;
    case kReply:
      ShowRows<Aodv>(in, c, layout.isSix ? RowSpan<Aodv>(kReplyHead6) : RowSpan<Aodv>(kReplyHead), aodv);
      ShowNode(in, c, layout, "Destination");
      ShowAddress(in, c, layout.isSix, "Originator");
      ShowRows<Aodv>(in, c, kLifetime, aodv);
      break;
    case kError: {
      ShowRows<Aodv>(in, c, kErrorHead, aodv);
      Loop loop;
      for (uint32_t i = 0; i < aodv.count.value && MoreAt(in, c, loop); ++i) ShowNode(in, c, layout, "Unreachable");
      break;
    }
    case kAcknowledgement: ShowRows<Aodv>(in, c, kReserved, aodv); break;
    default: break;
  }
}

}  // namespace

int32_t DecodeAodv(const Place& at, Cursor c) {
  constexpr ElementForm kForm{};
  const uint32_t type = PeekU8(c);
  if (Left(c) < 2 || !LookupName(kTypeNames, type, nullptr)) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "AODV: %s", LookupName(kTypeNames, type)));
  Aodv aodv = ShowRows(in, c, kType);
  const bool ofDraft = type >= kFirstOfDraft;
  const Layout layout{ofDraft || PacketOf(at).source.kind == kIPv6Kind, ofDraft};
  ShowBody(in, c, ofDraft ? type - kFirstOfDraft + 1 : type, layout);
  ShowElements<Aodv>(in, c, kForm, "Extension", kExtensions, aodv);
  c.ranShort = false;   // what is left of a field that is cut
  AddBlock(in, Rest(c), "AODV Data");
  return 1;
}

}  // namespace qxview
