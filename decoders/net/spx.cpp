// SPX, the connections of NetWare over IPX, and its second version. Numbers are big-endian.
//
//   0        1     2                    4                         6         8                10          12
//   control  type  source connection ID  destination connection ID  sequence  acknowledgement  allocation  data
//   control  system, acknowledge, attention, end of message, version 2, negotiate size, reserved, extended header
//
// Packets of the second version have two more bytes: the packet size that is negotiated.
#include "core/line_facts.h"
#include "decoders/net/ipx.h"

namespace qxview {
namespace {

constexpr int32_t kHeaderSize = 12;
constexpr uint32_t kSecondVersion = 0x08;

constexpr auto kTypeNames = SortedNames({
    {0xFC, "Orderly Release Request"}, {0xFD, "Orderly Release Acknowledgement"}, {0xFE, "End of Connection"},
    {0xFF, "End of Connection Acknowledgement"},
});
// Types below those with names are the user's.
const char* TypeName(uint32_t type) { return LookupName(kTypeNames, type, "Client-Defined"); }

struct Spx {
  Field control, source, destination, sequence, acknowledgement;
};
constexpr auto kHeader = Rows<Spx>({
    Hex(1, "Connection Control").Into(&Spx::control), Flag(0, "System Packet"), Flag(1, "Acknowledgement Required"),
    Flag(2, "Attention"), Flag(3, "End of Message"), Flag(4, "SPX II"), Flag(5, "Negotiate Size"), Flag(6, "Reserved"),
    Flag(7, "Extended Header"),
    Hex(1, "Datastream Type", TypeName), Number(2, "Source Connection ID").Into(&Spx::source),
    Number(2, "Destination Connection ID").Into(&Spx::destination), Number(2, "Sequence Number").Into(&Spx::sequence),
    Number(2, "Acknowledgement Number").Into(&Spx::acknowledgement), Number(2, "Allocation Number")});
constexpr auto kNegotiation = Rows<NoValues>({Number(2, "Negotiation Size")});

}  // namespace

int32_t DecodeSpx(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "spx");
  if (Left(c) < kHeaderSize) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, kHeaderSize), "SPX:"));
  const Spx spx = ShowRows(in, c, kHeader);
  if (spx.control.value & kSecondVersion && Left(c) >= 2) ShowRows(in, c, kNegotiation);
  AppendToLine(at, in.parent, " Connection %u -> %u, Sequence %u, Acknowledgement %u", spx.source.value,
               spx.destination.value, spx.sequence.value, spx.acknowledgement.value);
  CoverBytes(in, c);
  if (Left(c) > 0) CallDecoder(Deeper(at), c, nullptr, "SPX Data");
  return 1;
}

}  // namespace qxview
