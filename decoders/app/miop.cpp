// Unreliable Multicast Inter-ORB Protocol (OMG MIOP 1.0): a GIOP message in one or more datagrams to a group.
#include "core/rows.h"

namespace qxview {
namespace {

constexpr int32_t kHeader = 20;
constexpr uint32_t kMagic = 0x4D494F50, kMostId = 252, kGiop = 0xB1;

struct Miop {
  Field packet, count, idLength;
};
constexpr auto kFirst = Rows<Miop>({
    Text(4, "Magic"), Word(1), Bits(0, 4, "Major Version"), Bits(4, 4, "Minor Version"), Word(1), Bits(0, 6, "Reserved"),
    Flag(6, "Last Packet"), Flag(7, "Little Endian")});
constexpr auto kBig = Rows<Miop>({
    Number(2, "Packet Length"), Number(4, "Packet Number").Into(&Miop::packet),
    Number(4, "Number of Packets").Into(&Miop::count), Number(4, "Unique ID Length").Into(&Miop::idLength),
    Bytes(0, "Unique ID").SizedBy(&Miop::idLength)});
constexpr auto kLittle = Rows<Miop>({
    Number(2, "Packet Length").Little(), Number(4, "Packet Number").Little().Into(&Miop::packet),
    Number(4, "Number of Packets").Little().Into(&Miop::count), Number(4, "Unique ID Length").Little().Into(&Miop::idLength),
    Bytes(0, "Unique ID").SizedBy(&Miop::idLength)});

}  // namespace

int32_t DecodeMiop(const Place& at, Cursor c) {
  if (Left(c) < kHeader || PeekU32(c) != kMagic) return 0;
  const bool isLittle = PeekU8(c, 5) & 1;
  const RowSpan<Miop> rows = isLittle ? RowSpan<Miop>(kLittle) : RowSpan<Miop>(kBig);
  const uint32_t idLength = isLittle ? PeekLittleU32(c, 16) : PeekU32(c, 16);
  if (idLength > kMostId) return 0;
  const uint32_t packet = isLittle ? PeekLittleU32(c, 8) : PeekU32(c, 8);
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "MIOP: Packet %u of %u", packet,
                                     isLittle ? PeekLittleU32(c, 12) : PeekU32(c, 12)));
  Miop miop = ShowRows(in, c, kFirst);
  ShowRows<Miop>(in, c, rows, miop);
  const int32_t padding = -Taken(c) & 7;
  if (padding && Left(c) >= padding) AddLine(in, TakeBytes(c, padding), "Padding");
  CoverBytes(in, c);
  if (Left(c) == 0) return 1;
  const DecoderRow* giop = packet == 0 ? FindBuiltinDecoder(kGiop) : nullptr;
  return CallDecoder(Deeper(at), c, giop ? giop->decode : nullptr, packet == 0 ? "GIOP Data" : "MIOP Data");
}

}  // namespace qxview
