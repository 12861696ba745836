// Remote procedure calls: DCE RPC (C706, connection-oriented) and ONC RPC (RFC 5531).
//
// DCE RPC, version 5:
//   0     1      2     3      4               8          10         12
//   vers  minor  type  flags  representation  fragment   auth       call id     then by type
//
// ONC RPC, all words big-endian:
//   call:   xid, 0, 2, program, version, procedure, credential (flavour, length, bytes), verifier (the same), arguments
//   reply:  xid, 1, 0 accepted, verifier, status, ...    or    xid, 1, 1 denied, status, ...
// Over a stream each record has a word of its own in front: the top bit for the last fragment, 31 bits of length.
#include "decoders/net/recognisers.h"

namespace qxview {
namespace {

constexpr int32_t kDceHeader = 16;
constexpr uint32_t kDceRequest = 0, kDceResponse = 2, kDceFault = 3, kDceBind = 11, kDceBindAck = 12,
                   kDceBindNak = 13, kDceAlter = 14, kDceAlterResponse = 15, kDceAuth3 = 16, kDceShutdown = 17,
                   kDceCancel = 18, kDceOrphaned = 19;

// The bytes that a fragment of a type has at least, header included; 0 for types that connections do not carry.
uint32_t LeastDceFragment(uint32_t type) {
  switch (type) {
    case kDceRequest: case kDceResponse: return 24;
    case kDceFault: return 28;
    case kDceBind: case kDceAlter: return 28 + 44;
    case kDceBindAck: case kDceAlterResponse: return 26;
    case kDceBindNak: return 18;
    case kDceAuth3: return 20;
    case kDceShutdown: case kDceCancel: case kDceOrphaned: return 16;
    default: return 0;
  }
}

// A number of the fragment, in the order that its representation names.
uint32_t PeekDceU16(const Cursor& c, int32_t at) {
  return PeekU8(c, 4) & 0x10 ? PeekLittleU16(c, at) : PeekU16(c, at);
}

// The representation's nibbles and its two reserved bytes.
bool IsDceRepresentation(uint32_t form) { return (form & 0xEE00FFFF) == 0 && (form >> 16 & 0xFF) <= 3; }

// The list of presentation contexts that a bind or an alter-context offers.
bool IsDceContextList(const Cursor& c) {
  if (Left(c) < 28 + 4) return true;   // cut by the segment
  return PeekU8(c, 24) >= 1 && PeekU24(c, 25) == 0 && PeekU8(c, 30) >= 1 && PeekU8(c, 31) == 0 &&
         PeekDceU16(c, 16) >= 64;
}

// Flavours: none, AUTH_SYS, short, DH, Kerberos 4, RSA, RPCSEC_GSS, TLS. Bodies end at 400 bytes.
constexpr uint32_t kNoAuthentication = 0, kSystemAuthentication = 1, kLastFlavour = 7, kLongestAuthentication = 400;
constexpr uint32_t kFirstProgram = 100000, kLastProgram = 0x5FFFFFFF, kLargestNumber = 0xFFFF;

// Stamp, machine name, user, group and up to 16 further groups, which fill the credential exactly.
bool IsSystemCredential(Cursor c) {
  TakeU32(c);
  const Field nameLength = TakeU32(c);
  if (!nameLength.here || nameLength.value > 255) return false;
  TakeBytes(c, static_cast<int32_t>(nameLength.value + 3) & ~3);
  TakeBytes(c, 8);
  const Field groups = TakeU32(c);
  if (!groups.here || groups.value > 16) return false;
  return TakeBytes(c, 4 * groups.value).here && Left(c) == 0;
}

// A flavour with its length and bytes; takes them.
bool TakeAuthentication(Cursor& c, bool isCredential) {
  const Field flavour = TakeU32(c);
  const Field length = TakeU32(c);
  if (!length.here || flavour.value > kLastFlavour || length.value > kLongestAuthentication) return false;
  if (flavour.value == kNoAuthentication && length.value != 0) return false;
  const Field body = TakeBytes(c, static_cast<int32_t>(length.value + 3) & ~3);
  if (!body.here) return false;
  if (!isCredential || flavour.value != kSystemAuthentication) return true;
  return IsSystemCredential(CursorOver(Slice(body, 0, static_cast<int32_t>(length.value))));
}

bool IsOncCall(Cursor c) {
  const Field version = TakeU32(c);
  const Field program = TakeU32(c);
  const Field programVersion = TakeU32(c);
  const Field procedure = TakeU32(c);
  return procedure.here && version.value == 2 && program.value >= kFirstProgram && program.value <= kLastProgram &&
         programVersion.value <= kLargestNumber && procedure.value <= kLargestNumber && TakeAuthentication(c, true) &&
         TakeAuthentication(c, false);
}

// A pair of lowest and highest version that ends the message.
bool IsVersionRange(Cursor& c) {
  const Field low = TakeU32(c);
  const Field high = TakeU32(c);
  return high.here && low.value <= high.value && high.value <= kLargestNumber && Left(c) == 0;
}

bool IsOncReply(Cursor c) {
  const Field state = TakeU32(c);
  if (!state.here || state.value > 1) return false;
  if (state.value == 1) {   // denied: the version or the authentication
    const Field reason = TakeU32(c);
    if (!reason.here || reason.value > 1) return false;
    if (reason.value == 0) return IsVersionRange(c);
    const Field why = TakeU32(c);
    return why.here && why.value >= 1 && why.value <= 14 && Left(c) == 0;
  }
  if (!TakeAuthentication(c, false)) return false;
  const Field status = TakeU32(c);
  if (!status.here || status.value > 5) return false;
  if (status.value == 0) return true;   // the results follow
  return status.value == 2 ? IsVersionRange(c) : Left(c) == 0;
}

// A message from its xid on. Clients draw xids from a counter or at random; a zero one would let zero-filled data in.
bool IsOncMessage(Cursor c) {
  const Field xid = TakeU32(c);
  const Field direction = TakeU32(c);
  if (!direction.here || xid.value == 0 || direction.value > 1) return false;
  return direction.value == 0 ? IsOncCall(c) : IsOncReply(c);
}

}  // namespace

bool LooksLikeMsrpc(const Cursor& c) {
  if (Left(c) < kDceHeader) return false;
  if (PeekU8(c) != 5 || PeekU8(c, 1) > 1 || !IsDceRepresentation(PeekU32(c, 4))) return false;
  const uint32_t type = PeekU8(c, 2), least = LeastDceFragment(type);
  const uint32_t fragment = PeekDceU16(c, 8), authentication = PeekDceU16(c, 10);
  if (least == 0 || fragment < least) return false;
  if (authentication != 0 && authentication + 8 + least > fragment) return false;   // 8: the trailer's own header
  if ((type == kDceBind || type == kDceAlter) && !IsDceContextList(c)) return false;
  const int32_t end = static_cast<int32_t>(fragment);
  return Left(c) <= end || (PeekU8(c, end) == 5 && PeekU8(c, end + 1) <= 1);   // the next fragment
}

bool LooksLikeOncRpc(const Cursor& c) { return Left(c) % 4 == 0 && IsOncMessage(c); }

bool LooksLikeOncRpcRecord(const Cursor& c) {
  constexpr uint32_t kLeastRecord = 20, kLargestRecord = 0x400000;
  Cursor in = c;
  const Field marker = TakeU32(in);
  const uint32_t length = marker.value & 0x7FFFFFFF;
  if (!marker.here || length < kLeastRecord || length > kLargestRecord || length % 4 != 0) return false;
  return IsOncMessage(TakeCursor(in, length));
}

}  // namespace qxview
