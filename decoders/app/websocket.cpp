// WebSocket (RFC 6455) with permessage-deflate (RFC 7692): frames of messages in both directions, those of the client masked.
//
//   FIN, RSV (3), opcode (4)   mask, length (7), or 126 and 16, or 127 and 64   masking key (32)   payload
//
// A payload is shown as it reads without its mask and its compression, over the octets that it stands in.
#include "decoders/app/websocket.h"

#include <cstring>

#include "core/line_facts.h"
#include "core/rows.h"
#include "decoders/app/http2.h"
#include "decoders/app/http_inflate.h"
#include "decoders/common/text_lines.h"
#include "decoders/message_lengths.h"

namespace qxview {
namespace {

enum Opcode : uint32_t { kContinuation = 0, kText = 1, kBinary = 2, kClose = 8, kPing = 9, kPong = 10 };
constexpr uint32_t kWindow = 32768;

constexpr auto kOpcodeNames = SortedNames({
    {kContinuation, "Continuation"}, {kText, "Text"}, {kBinary, "Binary"}, {kClose, "Close"}, {kPing, "Ping"},
    {kPong, "Pong"}});
constexpr auto kCloseNames = SortedNames({
    {1000, "Normal Closure"}, {1001, "Going Away"}, {1002, "Protocol Error"}, {1003, "Unsupported Data"},
    {1004, "Reserved"}, {1005, "No Status Received"}, {1006, "Abnormal Closure"}, {1007, "Invalid Payload Data"},
    {1008, "Policy Violation"}, {1009, "Message Too Big"}, {1010, "Mandatory Extension"}, {1011, "Internal Error"},
    {1012, "Service Restart"}, {1013, "Try Again Later"}, {1014, "Bad Gateway"}, {1015, "TLS Handshake"},
    {3000, "Unauthorized"}, {3003, "Forbidden"}, {3008, "Timeout"}});
constexpr uint32_t kFirstUnregistered = 4000, kFirstInvalid = 5000;

const char* CloseName(uint32_t code) {
  if (code < 1000 || code >= kFirstInvalid) return "Not Used";
  return LookupName(kCloseNames, code, code < kFirstUnregistered ? kUnknown : "Private Use");
}

struct Frame {
  Field opcode, length, key;
};
constexpr auto kHead = Rows<Frame>({
    Word(1), Flag(0, "Final"), Flag(1, "Compressed"), Bits(2, 2, "Reserved"),
    Bits(4, 4, "Opcode", kOpcodeNames).Into(&Frame::opcode), Word(1), Flag(0, "Masked"),
    Bits(1, 7, "Payload Length").Into(&Frame::length)});
constexpr auto kLength2 = Rows<NoValues>({Number(2, "Extended Payload Length")});
constexpr auto kLength8 = Rows<NoValues>({Number(8, "Extended Payload Length")});
constexpr auto kKey = Rows<Frame>({Hex(4, "Masking Key").Into(&Frame::key)});
constexpr auto kCode = Rows<NoValues>({Number(2, "Close Code", CloseName)});

// The direction's state while its frames are shown.
struct Run : DirectionRun<RequestKey, WebSocketDirection> {
  WebStreamKey pieces;
  bool keepsWindow;
};

// The window behind a message: the last octets of what was there and of what it inflated to.
void KeepWindow(const Place& at, Run& run, const Field& inflated) {
  const uint32_t fresh = static_cast<uint32_t>(inflated.length), total = run.now.length + fresh;
  const uint32_t kept = total < kWindow ? total : kWindow;
  uint8_t* const window = TakeFrameMemory(at.view, kept);
  if (!window) return;
  const uint32_t ofFresh = fresh < kept ? fresh : kept, ofOld = kept - ofFresh;
  if (ofOld) std::memcpy(window, run.now.data + run.now.length - ofOld, ofOld);
  const int32_t last = static_cast<int32_t>(ofFresh);
  std::memcpy(window + ofOld, Slice(inflated, inflated.length - last, last).bytes, ofFresh);
  run.now = {window, kept};
}

// The octets as they were before they were masked.
Field Unmasked(const Place& at, const Field& payload, uint32_t mask, uint32_t passed) {
  uint8_t* const clear = TakeFrameMemory(at.view, payload.length);
  if (!clear) return payload;
  for (int32_t i = 0; i < payload.length; ++i) {
    const uint32_t shift = 24 - 8 * ((passed + static_cast<uint32_t>(i)) & 3);
    clear[i] = static_cast<uint8_t>(PeekU8(payload, i) ^ (mask >> shift & 0xFF));
  }
  return {clear, payload.offset, payload.length, 0, true};
}

void ShowMessage(const Place& in, uint32_t opcode, Cursor c) {
  WebBody body{};
  if (opcode == kClose) {
    if (Left(c) >= 2) ShowRows(in, c, kCode);
    if (Left(c) > 0) AddTextLine(in, Rest(c), "Reason");
  } else if (opcode == kText) {
    body.content = WebContent::kJson;
    if (PeekU8(c) != '{' && PeekU8(c) != '[') body.content = WebContent::kText;
    ShowWebBody(in, c, body);
  } else if (opcode >= kPing && Left(c) > 0 && IsReadable(c)) {
    AddTextLine(in, Rest(c), "Application Data");
  } else {
    AddBlock(in, Rest(c), "Payload");
  }
}

// A message that has come whole: inflated, where it is compressed.
void ShowWhole(const Place& in, const Field& message, Run& run) {
  WebSocketSide& side = run.state.now;
  if (!side.isCompressed) return ShowMessage(in, side.message, CursorOver(message));
  Inflation how;
  const Cursor inflated = InflateInFrame(in, message, Wrapping::kNone, run.now, &how);
  if (Left(inflated) < 1 || how == Inflation::kDamaged) {
    AddBlock(in, message, "Compressed Payload");
    run.now = {};   // what comes behind it refers to what is not known
    return;
  }
  if (run.keepsWindow) KeepWindow(in, run, Ahead(inflated, Left(inflated)));
  if (how == Inflation::kToBound) run.now = {};
  AddLine(in, message, "Inflated Payload: %d bytes%s", Left(inflated), InflationNote(how));
  ShowMessage(in, side.message, inflated);
}

// A piece of a message that is shown when it is whole.
void ShowPiece(const Place& in, const Field& clear, Run& run, bool ends) {
  WebSocketSide& side = run.state.now;
  const bool wasLost = side.pieces.isLost;
  KeepPiece(in, run.pieces, side.pieces, clear);
  AddBlock(in, clear, side.isCompressed ? "Compressed Payload in Part" : "Payload in Part");
  if (side.pieces.isLost && !wasLost) {
    AddLine(in, clear, "Longer than %u bytes or %u pieces: not joined", kMostPiecedBytes, kMostWebPieces);
  }
  if (!ends) return;
  const uint32_t count = side.pieces.count;
  const Cursor whole = JoinPieces(in, run.pieces, side.pieces, clear.offset);
  if (Left(whole) < 1) {
    if (side.isCompressed) run.now = {};
    return;
  }
  const Field message = Ahead(whole, Left(whole));
  const Place under = Under(in, AddLine(in, message, "Message: %s, %d bytes of %u pieces", LookupName(kOpcodeNames, side.message),
                                        message.length, count));
  ShowWhole(under, message, run);
}

// Octets of a frame's payload without their mask.
void ShowPayload(const Place& in, const Field& payload, Run& run, bool isFirst) {
  WebSocketSide& side = run.state.now;
  Field clear = payload;
  const DerivedLines derived(in.view);
  if (side.isMasked) clear = Unmasked(in, payload, side.mask, side.passed);
  side.passed += static_cast<uint32_t>(payload.length);
  const bool isWhole = isFirst && side.left == 0;
  if (side.opcode >= kClose) {   // between the frames of a message
    if (isWhole) return ShowMessage(in, side.opcode, CursorOver(clear));
    AddBlock(in, clear, "Payload in Part");
    return;
  }
  const bool ends = side.isFinal && side.left == 0;
  if (isWhole && ends && side.opcode != kContinuation) return ShowWhole(in, clear, run);
  if (isFirst && side.opcode != kContinuation) {
    side.isJoined = side.isCompressed || !side.isFinal || in.view->engine->settings.reassembly;
    DropPieces(side.pieces);
  }
  if (side.isJoined) {
    ShowPiece(in, clear, run, ends);
  } else {
    ShowMessage(in, side.message, CursorOver(clear));
  }
}

uint64_t PeekLength(const Cursor& c, int32_t* head) {
  const uint32_t length = PeekU8(c, 1) & 0x7F;
  *head = 2 + (length == 126 ? 2 : length == 127 ? 8 : 0) + (PeekU8(c, 1) & 0x80 ? 4 : 0);
  if (length < 126) return length;
  return length == 126 ? PeekU16(c, 2) : static_cast<uint64_t>(PeekU32(c, 2)) << 32 | PeekU32(c, 6);
}

void ShowFrame(const Place& at, Cursor& c, Run& run) {
  int32_t head;
  const uint64_t length = PeekLength(c, &head);
  const uint32_t opcode = PeekU8(c) & 15, extended = PeekU8(c, 1) & 0x7F;
  const int32_t left = Left(c);
  const uint64_t size = length + static_cast<uint64_t>(head);
  const int32_t here = size < static_cast<uint64_t>(left) ? static_cast<int32_t>(size) : left;
  const Place in = Under(at, AddLine(at, Ahead(c, here), "WebSocket: %s%s, %I64u bytes", LookupName(kOpcodeNames, opcode),
                                     PeekU8(c) & 0x80 ? "" : " (more to come)", length));
  Cursor frame = TakeCursor(c, here);
  const bool isFinal = PeekU8(frame) & 0x80, isCompressed = PeekU8(frame) & 0x40, isMasked = PeekU8(frame, 1) & 0x80;
  Frame fields = ShowRows(in, frame, kHead);
  if (extended == 126) ShowRows(in, frame, kLength2);
  if (extended == 127) ShowRows(in, frame, kLength8);
  if (isMasked) ShowRows<Frame>(in, frame, kKey, fields);
  if (frame.ranShort) return;
  WebSocketSide& side = run.state.now;
  const uint64_t toCome = size - static_cast<uint64_t>(here);
  side.left = toCome < INT32_MAX ? static_cast<uint32_t>(toCome) : INT32_MAX;
  side.mask = fields.key.value;
  side.passed = 0;
  side.opcode = static_cast<uint8_t>(opcode);
  side.isMasked = isMasked;
  side.isFinal = isFinal;
  if (opcode != kContinuation && opcode < kClose) {
    side.message = static_cast<uint8_t>(opcode);
    side.isCompressed = isCompressed;
  }
  if (Left(frame) > 0 || (isFinal && opcode == kContinuation && toCome == 0)) ShowPayload(in, Rest(frame), run, true);
}

void ShowRest(const Place& at, Cursor& c, Run& run) {
  WebSocketSide& side = run.state.now;
  const uint32_t left = static_cast<uint32_t>(Left(c)), here = side.left < left ? side.left : left;
  side.left -= here;
  const Field payload = TakeBytes(c, static_cast<int32_t>(here));
  const Place in = Under(at, AddLine(at, payload, "WebSocket: %s Continued, %u bytes, %u to come",
                                     LookupName(kOpcodeNames, side.opcode), here, side.left));
  ShowPayload(in, payload, run, false);
}

// A head that goes on in the next segment.
bool KeepHead(const Place& at, Cursor& c, WebSocketSide& side) {
  int32_t head = 2;
  if (Left(c) >= 2) PeekLength(c, &head);
  if (Left(c) >= head) return false;
  const Field rest = Rest(c);
  std::memcpy(side.head, rest.bytes, static_cast<size_t>(rest.length));
  side.headLength = static_cast<uint8_t>(rest.length);
  AddBlock(Under(at, AddLine(at, rest, "WebSocket: Frame in Part, %d bytes of its head", rest.length)), rest, "Data");
  return true;
}

void ShowFrames(const Place& at, Cursor c, Run& run) {
  WebSocketSide& side = run.state.now;
  const uint32_t kept = side.headLength;
  side.headLength = 0;
  Cursor frames = kept ? JoinInFront(at, {side.head, kept}, 0, c.offset, c) : c;
  Loop loop;
  while (MoreAt(at, frames, loop)) {
    if (side.left > 0) {
      ShowRest(at, frames, run);
    } else if (!KeepHead(at, frames, side)) {
      ShowFrame(at, frames, run);
    }
  }
}

}  // namespace

int32_t LengthOfWebSocket(const Cursor& c) {
  constexpr uint32_t kReserved = 0x30, kMostOfControl = 125;
  int32_t head;
  if (Left(c) < 2) return 0;
  const uint32_t opcode = PeekU8(c) & 15;
  if (PeekU8(c) & kReserved || (opcode > kBinary && opcode < kClose) || opcode > kPong) return kNoMessage;
  const uint64_t length = PeekLength(c, &head);
  if (Left(c) < head) return 0;
  if (opcode >= kClose && length > kMostOfControl) return kNoMessage;
  const uint64_t size = length + static_cast<uint64_t>(head);
  return size < kMessageToTheEnd ? static_cast<int32_t>(size) : kMessageToTheEnd - 1;
}

bool IsWebSocketConnection(const Place& at) {
  return Recall(at.view, kWebSockets, RequestOf(PacketOf(at), 0)) != nullptr;
}

void ShowWebSocketFrames(const Place& at, Cursor& c, uint32_t stream) {
  const KeyedAs keys(PacketOf(at), "websocket");
  int32_t direction;
  const RequestKey connection{ConnectionOf(PacketOf(at), &direction), {stream, 0, 0, 0}};
  const WebSocketConnection* known = Recall(at.view, kWebSockets, connection);
  Run run{};
  run.key = {DirectionOf(PacketOf(at)), {stream, 0, 0, 0}};
  run.pieces = {DirectionOf(PacketOf(at)), stream, kPiecesOfWebSocket, !PacketOf(at).quoted};
  run.keepsWindow = known && known->deflates && known->keepsWindow[direction == known->server ? 0 : 1];
  LoadRun(at, kWebSocketDirections, c, run);
  uint32_t lost = 0;
  if (stream == 0 && FollowSegment(at, run.state.now.trail, run.isOther, Left(c), &lost) == SegmentNews::kSentAgain) {
    const Field again = Rest(c);
    AddBlock(Under(at, AddLine(at, again, "WebSocket: Sent Again, %d bytes", again.length)), again, "Data");
    return;
  }
  if (lost > 0) {   // a message's frames behind the gap begin where the last one's octets end
    WebSocketSide& side = run.state.now;
    if (side.left < lost) side = {side.trail, 0, 0, 0, 0, side.pieces, 0, 0, false, false, false, false, 0, {}};
    if (side.left >= lost) side.left -= lost;
    side.passed += lost;
    side.pieces.isLost = true;
    run.now = {};
  }
  ShowFrames(at, TakeCursor(c, Left(c)), run);
  SaveRun(at, kWebSocketDirections, run);
}

int32_t DecodeWebSocket(const Place& at, Cursor c) {
  if (Left(c) < 2 && !IsWebSocketConnection(at)) return 0;
  ShowWebSocketFrames(at, c, 0);
  return 1;
}

}  // namespace qxview
