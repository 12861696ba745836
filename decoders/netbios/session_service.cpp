// The NetBIOS session service (RFC 1002 4.3): calls from name to name over TCP, then messages until the connection
// ends.
//
//   0      1                      2
//   type   0 (7 bits), E (1 bit)  length (16 bits, E is their seventeenth)   ...
//   session message      SMB
//   session request      called name   calling name
//   negative response    error code (1)
//   retarget response    address (4)   port (2)
//
// A segment may hold several messages, and a message several segments; nothing in a later one tells where its message
// ends, so all of it is shown as the rest of that message.
#include "core/rows.h"
#include "decoders/netbios/netbios.h"
#include "decoders/smb/smb.h"

namespace qxview {
namespace {

constexpr int32_t kHeaderSize = 4;
enum Type : uint32_t {
  kMessage = 0x00, kRequest = 0x81, kPositive = 0x82, kNegative = 0x83, kRetarget = 0x84, kKeepAlive = 0x85
};

constexpr auto kTypeNames = SortedNames({
    {kMessage, "Session Message"}, {kRequest, "Session Request"}, {kPositive, "Positive Session Response"},
    {kNegative, "Negative Session Response"}, {kRetarget, "Retarget Session Response"},
    {kKeepAlive, "Session Keep-Alive"},
});
constexpr auto kErrorNames = SortedNames({
    {0x80, "Not Listening on Called Name"}, {0x81, "Not Listening for Calling Name"},
    {0x82, "Called Name Not Present"}, {0x83, "Called Name Present, but Insufficient Resources"},
    {0x8F, "Unspecified Error"},
});

struct Session {
  Field address, port;
};
constexpr auto kHeader = Rows<NoValues>({
    Hex(1, "Message Type", kTypeNames), Hex(1, "Flags"), Bits(0, 7, "Reserved").Told("%s: Reserved"),
    Bits(7, 1, "Length Extension")});
constexpr auto kErrorCode = Rows<NoValues>({Hex(1, "Error Code", kErrorNames).Note(", %s")});
constexpr auto kRetargetRows = Rows<Session>({IPv4("Retarget Address").Into(&Session::address),
                                              Number(2, "Retarget Port").Into(&Session::port)});

uint32_t LengthOf(const Cursor& c) { return PeekU24(c, 1) & 0x1FFFF; }

// SMB of any version begins with FF, FE, FD or FC in front of "SMB".
bool HasSmbMarker(const Cursor& c) { return PeekU8(c) >= 0xFC && PeekIs(c, 1, "SMB"); }

bool IsHeader(const Cursor& c) {
  if (Left(c) < kHeaderSize || PeekU8(c, 1) > 1) return false;
  const uint32_t length = LengthOf(c), left = static_cast<uint32_t>(Left(c) - kHeaderSize);
  switch (PeekU8(c)) {
    case kMessage: return length > 0;
    case kRequest: return length > 1 && (left == 0 || PeekU8(c, kHeaderSize) == 2 * kNetBiosNameLength || length == left);
    case kPositive:
    case kKeepAlive: return length == 0;
    case kNegative: return length == 1;
    case kRetarget: return length == 6;
    default: return false;
  }
}

int32_t DecodeMessageBody(const Place& at, Cursor c) {
  if (Left(c) <= kSmbHeaderSize && !HasSmbMarker(c)) return DecodeSmbContinuation(at, c);
  const int32_t result = DecodeSmb(at, c, true);
  return Left(c) > kSmbHeaderSize ? result : kSmbNotDecoded;
}

// Another version's messages are no continuation of anything.
bool IsLaterSmb(const Cursor& body) { return HasSmbMarker(body) && PeekU8(body) != 0xFF; }

void DecodeMessage(const Place& at, const Place& in, const Cursor& body, uint32_t length) {
  if (static_cast<uint32_t>(Left(body)) < length) {
    AppendToLine(at, in.parent, ", %u of %u bytes", Left(body), length);
  } else {
    AppendToLine(at, in.parent, ", %u bytes", length);
  }
  if (Left(body) < 1) return;
  if (IsLaterSmb(body) || !TryDecoder(Deeper(at), body, DecodeMessageBody, nullptr)) {
    AddBlock(in, Ahead(body, Left(body)), IsLaterSmb(body) ? "SMB 2 Message" : "Session Data");
  }
}

void DecodeRequest(const Place& in, Cursor& c) {
  const Field message = Ahead(c, Left(c));
  const NetBiosName called = TakeNetBiosName(c, message);
  AddNetBiosNameLine(in, "Called Name", called);
  const NetBiosName calling = TakeNetBiosName(c, message);
  AddNetBiosNameLine(in, "Calling Name", calling);
  AppendToParent(in, calling.field, ", %s ->", calling.text);
  AppendToParent(in, called.field, " %s", called.text);
}

void DecodeControl(const Place& in, Cursor& c, uint32_t type) {
  if (type == kRequest) {
    DecodeRequest(in, c);
  } else if (type == kNegative) {
    ShowRows(in, c, kErrorCode);
  } else if (type == kRetarget) {
    const Session retarget = ShowRows(in, c, kRetargetRows);
    AppendToParent(in, retarget.port, ", %s port %u", IPv4Text(retarget.address.bytes), retarget.port.value);
  }
  AddBlock(in, Ahead(c, Left(c)), "Extra Data");
}

void DecodeOne(const Place& at, Cursor& c) {
  const int32_t start = c.offset;
  const uint32_t length = LengthOf(c), type = PeekU8(c);
  const LineHandle line =
      AddLine(at, Stated(start, kHeaderSize), "NetBIOS Session Service: %s", NetBiosSessionTypeName(type));
  const Place in = Under(at, line);
  ShowRows(in, c, kHeader);
  const Field low = TakeU16(c);
  if (length != low.value) {
    AddLine(in, low, "Length: %u (%u with the extension)", low.value, length);
  } else {
    AddLine(in, low, "Length: %u", low.value);
  }
  Cursor body = TakeCursor(c, length);
  if (type == kMessage) return DecodeMessage(at, in, body, length);
  DecodeControl(in, body, type);
  SetRange(at, line, start, c.offset - start);
}

}  // namespace

const char* NetBiosSessionTypeName(uint32_t type) { return LookupName(kTypeNames, type); }

bool StartsNetBiosSessionMessage(const Cursor& c) {
  if (!IsHeader(c)) return false;
  if (PeekU8(c) != kMessage) return true;
  // File data has many zeros, too: the message must look like one.
  Cursor behind = c;
  TakeBytes(behind, kHeaderSize);
  if (Left(behind) == 0 || HasSmbMarker(behind)) return true;
  const uint32_t length = LengthOf(c), left = static_cast<uint32_t>(Left(behind));
  if (length >= left) return length == left;
  TakeBytes(behind, length);
  return IsHeader(behind);
}

int32_t DecodeNetBiosSession(const Place& at, Cursor c) {
  if (Left(c) < 1) return 0;
  for (Loop loop; MoreAt(at, c, loop);) {
    if (!StartsNetBiosSessionMessage(c)) {
      c.begin = c.offset;
      CallDecoder(Deeper(at), c, DecodeMessageBody, "Session Data");
      break;
    }
    DecodeOne(at, c);
  }
  return 1;
}

}  // namespace qxview
