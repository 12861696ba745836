// Messages of EAP's methods over several packets (RFC 5216 section 2.1.5), joined where the setting Reassembly asks for it.
#include "decoders/common/eap.h"
#include "decoders/net/ip_fragments.h"

namespace qxview {
namespace {

constexpr int32_t kMostPieces = 64;   // an EAP packet of 16 KB in attributes of RADIUS

// The pieces that the cursor's bytes come from: those of the packet without what stands in front.
int32_t PiecesOf(const Place& in, const Cursor& c, const Eap& eap, BytePiece (&pieces)[kMostPieces]) {
  if (!eap.carrier || !eap.carrier->pieceCount) {
    pieces[0] = {in.view->context->packetNumber, c.offset, Left(c)};
    return 1;
  }
  int32_t skip = c.offset - eap.begin, left = Left(c), count = 0;
  for (int32_t i = 0; i < eap.carrier->pieceCount && left > 0 && count < kMostPieces; ++i) {
    BytePiece piece = eap.carrier->pieces[i];
    const int32_t front = skip < piece.length ? skip : piece.length;
    skip -= front;
    piece.offset += front;
    piece.length = piece.length - front < left ? piece.length - front : left;
    if (piece.length > 0) pieces[count++] = piece;
    left -= piece.length;
  }
  return left > 0 ? 0 : count;
}

}  // namespace

bool JoinEapFragment(const Place& in, Cursor& c, const Eap& eap, bool hasTotal, bool moreFollow, Cursor* message) {
  constexpr uint32_t kEapKey = 0x45415000;
  // A packet that is cut is no fragment: what it lacks would be missing in the middle.
  if (!JoinsFragments(in) || Left(c) < 1 || c.offset + Left(c) < eap.begin + static_cast<int32_t>(eap.length.value)) return false;
  BytePiece pieces[kMostPieces];
  const int32_t count = PiecesOf(in, c, eap, pieces);
  if (count == 0) return false;
  const EapCarrier* carrier = eap.carrier;
  const RequestKey key{DirectionOf(PacketOf(in)), {carrier ? carrier->conversation[0] : 0, carrier ? carrier->conversation[1] : 0,
      eap.code.value << 8 | eap.type, kEapKey}};
  const NextFragment fragment{pieces, count, static_cast<uint8_t>(eap.identifier.value), hasTotal ? eap.total.value : 0,
                              moreFollow};
  const FragmentRun run = TakeNextFragment(in, c, key, fragment, message);
  if (run.length == 0 && run.kept == 0) return false;
  TellFragments(in, c, run);
  if (Left(*message) == 0) AddBlock(in, PeekBytes(c, 0, Left(c)), "Fragment");
  TakeBytes(c, Left(c));
  return true;
}

}  // namespace qxview
