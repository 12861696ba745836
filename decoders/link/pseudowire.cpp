// Pseudowires over MPLS: control words (RFC 4385), associated channels, and what they emulate: Ethernet (RFC 4448), Frame Relay
// (RFC 4619), ATM (RFC 4717), PPP and HDLC (RFC 4618), bit streams (SAToP, RFC 4553; CESoPSN, RFC 5086).
//
//   control word         0 (4 bits)   flags (4)   fragmentation (2)   length (6)   sequence number (16)
//   associated channel   1 (4 bits)   version (4)   reserved (8)   channel type (16)
//
// No field says what a pseudowire carries: its ends have agreed on it. Ethernet and the protocols of lines are told by their
// own headers, cells and bit streams by their sizes; such a guess says that it is one.
#include "decoders/link/pseudowire.h"

#include "core/rows.h"
#include "decoders/link/associated_channel.h"
#include "decoders/link/carried.h"
#include "decoders/link/medium.h"

namespace qxview {
namespace {

constexpr int32_t kControlWordLength = 4;

constexpr auto kFragmentNames = SortedNames({
    {0, "Whole Payload"}, {1, "First Fragment"}, {2, "Last Fragment"}, {3, "Intermediate Fragment"}});

constexpr auto kControlWord = Rows<NoValues>({
    Word(2), Bits(0, 4, "Zero"), Bits(4, 4, "Flags"), Bits(8, 2, "Fragmentation", kFragmentNames),
    Bits(10, 6, "Length"), Number(2, "Sequence Number")});
constexpr auto kCell = Rows<NoValues>({
    Word(4), Bits(0, 12, "Virtual Path (VPI)"), Bits(12, 16, "Virtual Channel (VCI)"), Bits(28, 3, "Payload Type"),
    Flag(31, "Cell Loss Priority"), Bytes(48, "Cell Payload")});
constexpr auto kRtp = Rows<NoValues>({
    Word(2), Bits(0, 2, "RTP Version"), Bits(2, 6, "RTP Flags"), Bits(8, 1, "RTP Marker"), Bits(9, 7, "RTP Payload Type"),
    Number(2, "RTP Sequence Number"), Number(4, "RTP Timestamp"), Hex(4, "RTP Synchronization Source")});

constexpr int32_t kCellSize = 52, kRtpSize = 12;

// Of a bit stream in the sizes that RFC 4553 5.1 orders for T1, E1, E3 and T3; 0 for another number of bytes.
int32_t StreamSize(const Cursor& c) {
  constexpr int32_t kSizes[] = {192, 256, 1024};
  for (const int32_t size : kSizes) {
    if (Left(c) == size || (Left(c) == size + kRtpSize && PeekU8(c) >> 6 == 2)) return size;
  }
  return 0;
}

bool LooksLikeFrameRelayPayload(const Cursor& c) {   // a control byte and an identifier, no address
  const uint32_t first = PeekU16(c);
  return first == 0x03CC || first == 0x038E || first == 0x0380;
}

enum class Emulated { kNothing, kEthernet, kCiscoHdlc, kPpp, kFrameRelay, kStream, kCells };
Emulated GuessEmulated(const Cursor& c) {
  if (LooksLikeMacHeader(c)) return Emulated::kEthernet;
  if (LooksLikeCiscoHdlc(c)) return Emulated::kCiscoHdlc;
  if (LooksLikePpp(c)) return Emulated::kPpp;
  if (LooksLikeFrameRelayPayload(c)) return Emulated::kFrameRelay;
  if (StreamSize(c)) return Emulated::kStream;
  return Left(c) > 0 && Left(c) % kCellSize == 0 ? Emulated::kCells : Emulated::kNothing;
}

int32_t ShowStream(const Place& network, Cursor c) {
  const int32_t size = StreamSize(c);
  const Place in = Under(network, AddLine(network, Ahead(c, Left(c)), "Bit Stream: %d bytes (a guess by their number)", size));
  if (Left(c) > size) ShowRows(in, c, kRtp);
  AddBlock(in, Rest(c), "Bit Stream Data");
  return 1;
}

int32_t ShowCells(const Place& network, Cursor c) {
  Loop loop;
  while (MoreAt(network, c, loop)) {
    const Place in = Under(network, AddLine(network, Ahead(c, kCellSize), "ATM Cell: %u/%u (a guess by the size)",
                                            PeekU16(c) >> 4, PeekU32(c) >> 4 & 0xFFFF));
    ShowRows(in, c, kCell);
  }
  return 1;
}

int32_t ShowFrameRelay(const Place& network, Cursor c) {
  const Field control = TakeU8(c);
  const Place in = Under(network, AddLine(network, control, "Frame Relay Payload: Control 0x%.02X", control.value));
  DispatchNlpid(in, network, c);
  return 1;
}

int32_t ShowEmulated(const Place& network, const Cursor& c, Emulated emulated) {
  switch (emulated) {
    case Emulated::kEthernet: return DecodeCarriedFrame(network, c, Carried::kEthernet);
    case Emulated::kCiscoHdlc: return DecodeCarriedFrame(network, c, Carried::kCiscoHdlc);
    case Emulated::kPpp: return DecodeCarriedFrame(network, c, Carried::kPpp);
    case Emulated::kFrameRelay: return ShowFrameRelay(network, c);
    case Emulated::kStream: return ShowStream(network, c);
    case Emulated::kCells: return ShowCells(network, c);
    case Emulated::kNothing: break;
  }
  return DecodeCarriedFrame(network, c, Carried::kUnknown);
}

}  // namespace

int32_t DecodeLabelledPayload(const Place& network, Cursor c) {
  if (Left(c) < 1) return 1;
  const uint32_t nibble = PeekU8(c) >> 4u;
  if (nibble == 4 || nibble == 6) return DecodeCarriedFrame(network, c, Carried::kIp);
  if (nibble == 1 && Left(c) >= kControlWordLength && AssociatedChannelName(PeekU16(c, 2))) {
    return CallDecoder(network, c, DecodeAssociatedChannel, "Raw Data");
  }
  const bool bare = LooksLikeMacHeader(c);
  Cursor behind = c;
  TakeBytes(behind, kControlWordLength);
  const Emulated emulated = nibble == 0 ? GuessEmulated(behind) : Emulated::kNothing;
  // Where both fit: the control word of a carried Ethernet frame starts with reserved bits, which are zero.
  if (bare && (emulated != Emulated::kEthernet || PeekU16(c) != 0)) {
    return DecodeCarriedFrame(network, c, Carried::kEthernet);
  }
  if (emulated == Emulated::kNothing) return DecodeCarriedFrame(network, c, Carried::kUnknown);
  const Place in = Under(network, AddLine(network, Ahead(c, kControlWordLength),
                                          "Pseudowire Control Word: Sequence Number = %u%s", PeekU16(c, 2),
                                          emulated == Emulated::kEthernet ? "" : ", carrying by a guess:"));
  ShowRows(in, c, kControlWord);
  return ShowEmulated(network, c, emulated);
}

}  // namespace qxview
