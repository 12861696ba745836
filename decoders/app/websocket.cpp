// WebSocket (RFC 6455) with permessage-deflate (RFC 7692): frames of messages in both directions, those of the client masked.
//
//   FIN, RSV (3), opcode (4)   mask, length (7), or 126 and 16, or 127 and 64   masking key (32)   payload
//
// A payload is shown as it reads without its mask and its compression, over the octets that it stands in.
#include "decoders/app/websocket.h"

#include <cstring>

#include "core/byte_origins.h"
#include "core/line_facts.h"
#include "core/rows.h"
#include "decoders/app/http2.h"
#include "decoders/app/http_inflate.h"
#include "decoders/common/header_lines.h"
#include "decoders/states.h"

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
    {1012, "Service Restart"}, {1013, "Try Again Later"}, {1014, "Bad Gateway"}, {1015, "TLS Handshake"}});

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
constexpr auto kCode = Rows<NoValues>({Number(2, "Close Code", kCloseNames)});

// The direction's state while its frames are shown.
struct Run {
  ConnectionKey key;
  WebSocketDirection state;
  QuicTurn turn;
  StateBytes before, now;   // the windows
  bool keepsWindow;
};

void Load(const Place& at, Run& run) {
  StateBytes bytes{};
  const WebSocketDirection* known = Recall(at.view, kWebSocketDirections, run.key, 1, &bytes);
  if (!known) return;
  run.state = *known;
  const bool isSame = known->turn.packet == run.turn.packet, isAgain = isSame && run.turn.frame <= known->turn.frame;
  const uint32_t first = known->before.window, second = known->now.window;
  TakeTurn(run.turn, run.state.turn, run.state.before, run.state.now);
  uint8_t* const copy = bytes.length && first + second <= bytes.length ? TakeFrameMemory(at.view, bytes.length) : nullptr;
  if (!copy) return;
  std::memcpy(copy, bytes.data, bytes.length);
  run.before = isSame ? StateBytes{copy, first} : StateBytes{copy + first, second};
  run.now = isSame && !isAgain ? StateBytes{copy + first, second} : run.before;
}

void Save(const Place& at, Run& run) {
  if (PacketOf(at).quoted) return;
  const uint32_t length = run.before.length + run.now.length;
  run.state.turn = run.turn;
  run.state.before.window = run.before.length;
  run.state.now.window = run.now.length;
  uint8_t* const bytes = length ? TakeFrameMemory(at.view, length) : nullptr;
  if (length && !bytes) return;
  if (run.before.length) std::memcpy(bytes, run.before.data, run.before.length);
  if (run.now.length) std::memcpy(bytes + run.before.length, run.now.data, run.now.length);
  Remember(at.view, kWebSocketDirections, run.key, run.state, {bytes, length});
}

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
  } else {
    AddBlock(in, Rest(c), "Payload");
  }
}

// Octets of a payload, whole or not, without their mask and their compression.
void ShowPayload(const Place& in, const Field& payload, Run& run, bool isWhole) {
  WebSocketSide& side = run.state.now;
  Field clear = payload;
  const DerivedLines derived(in.view);
  if (side.isMasked) clear = Unmasked(in, payload, side.mask, side.passed);
  side.passed += static_cast<uint32_t>(payload.length);
  if (side.isCompressed && isWhole) {
    const Cursor inflated = InflateInFrame(in, clear, Wrapping::kNone, run.now);
    if (Left(inflated) > 0) {
      if (run.keepsWindow) KeepWindow(in, run, Ahead(inflated, Left(inflated)));
      AddLine(in, payload, "Inflated Payload: %d bytes", Left(inflated));
      return ShowMessage(in, side.opcode, inflated);
    }
  }
  if (side.isCompressed) {
    AddBlock(in, clear, "Compressed Payload");
  } else {
    ShowMessage(in, side.opcode, CursorOver(clear));
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
  const bool isCompressed = PeekU8(frame) & 0x40, isMasked = PeekU8(frame, 1) & 0x80;
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
  side.isCompressed = isCompressed;
  if (Left(frame) > 0) ShowPayload(in, Rest(frame), run, toCome == 0);
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

}  // namespace

bool IsWebSocketConnection(const Place& at) {
  int32_t direction;
  return Recall(at.view, kWebSockets, ConnectionOf(PacketOf(at), &direction)) != nullptr;
}

int32_t DecodeWebSocket(const Place& at, Cursor c) {
  if (Left(c) < 2) return 0;
  const KeyedAs keys(PacketOf(at), "websocket");
  int32_t direction;
  const WebSocketConnection* known = Recall(at.view, kWebSockets, ConnectionOf(PacketOf(at), &direction));
  const bool keeps = known && known->deflates && known->keepsWindow[direction == known->server ? 0 : 1];
  Run run{DirectionOf(PacketOf(at)), {}, {static_cast<uint64_t>(at.view->context->packetNumber) + 1, TurnPlaceOf(c)}, {}, {},
          keeps};
  Load(at, run);
  Loop loop;
  while (MoreAt(at, c, loop)) {
    if (run.state.now.left > 0) {
      ShowRest(at, c, run);
    } else if (Left(c) < 2) {
      AddBlock(Under(at, AddLine(at, Ahead(c, Left(c)), "WebSocket: Frame in Part")), Rest(c), "Data");
    } else {
      ShowFrame(at, c, run);
    }
  }
  Save(at, run);
  return 1;
}

}  // namespace qxview
