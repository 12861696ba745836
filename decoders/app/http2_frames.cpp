// Frames of HTTP/2 (RFC 9113 section 6) and of its extensions: other services (RFC 7838), origins (RFC 8336), extended CONNECT
// (RFC 8441), priorities (RFC 9218).
#include "core/elements.h"
#include "decoders/app/http2.h"
#include "decoders/app/websocket.h"

namespace qxview {
namespace {

enum FrameType : uint32_t {
  kData = 0, kHeaders = 1, kPriority = 2, kReset = 3, kSettings = 4, kPromise = 5, kPing = 6, kGoAway = 7, kWindow = 8,
  kContinuation = 9,
};
constexpr int32_t kSettingSize = 6;
constexpr uint32_t kEndStream = 0x01, kPadded = 0x08, kWithPriority = 0x20;

constexpr auto kErrorNames = SortedNames({
    {0, "NO_ERROR"}, {1, "PROTOCOL_ERROR"}, {2, "INTERNAL_ERROR"}, {3, "FLOW_CONTROL_ERROR"}, {4, "SETTINGS_TIMEOUT"},
    {5, "STREAM_CLOSED"}, {6, "FRAME_SIZE_ERROR"}, {7, "REFUSED_STREAM"}, {8, "CANCEL"}, {9, "COMPRESSION_ERROR"},
    {10, "CONNECT_ERROR"}, {11, "ENHANCE_YOUR_CALM"}, {12, "INADEQUATE_SECURITY"}, {13, "HTTP_1_1_REQUIRED"}});
constexpr auto kSettingNames = SortedNames({
    {1, "HEADER_TABLE_SIZE"}, {2, "ENABLE_PUSH"}, {3, "MAX_CONCURRENT_STREAMS"}, {4, "INITIAL_WINDOW_SIZE"},
    {5, "MAX_FRAME_SIZE"}, {6, "MAX_HEADER_LIST_SIZE"}, {8, "ENABLE_CONNECT_PROTOCOL"}, {9, "NO_RFC7540_PRIORITIES"},
    {16, "TLS_RENEG_PERMITTED"}, {0x4D44, "ENABLE_METADATA"}});

constexpr auto kHead = Rows<NoValues>({Number(3, "Length"), Number(1, "Frame Type", Http2FrameName)});
constexpr auto kStream = Rows<NoValues>({Word(4), Bits(0, 1, "Reserved"), Bits(1, 31, "Stream Identifier")});
constexpr auto kPlainFlags = Rows<NoValues>({Hex(1, "Flags")});
constexpr auto kDataFlags = Rows<NoValues>({Hex(1, "Flags"), Flag(4, "Padded"), Flag(7, "End Stream")});
constexpr auto kHeadersFlags = Rows<NoValues>({
    Hex(1, "Flags"), Flag(2, "Priority"), Flag(4, "Padded"), Flag(5, "End Headers"), Flag(7, "End Stream")});
constexpr auto kAckFlags = Rows<NoValues>({Hex(1, "Flags"), Flag(7, "Acknowledgment")});
constexpr auto kPromiseFlags = Rows<NoValues>({Hex(1, "Flags"), Flag(4, "Padded"), Flag(5, "End Headers")});
constexpr auto kContinuationFlags = Rows<NoValues>({Hex(1, "Flags"), Flag(5, "End Headers")});

void ShowWeight(const Place& in, const Field& weight, const char* label) {
  AddLine(in, weight, "%s: %u (sent as %u)", label, PeekU8(weight) + 1u, PeekU8(weight));
}

constexpr auto kPadLength = Rows<Http2Frame>({Number(1, "Pad Length").Into(&Http2Frame::padding)});
constexpr auto kPriorityRows = Rows<Http2Frame>({
    Word(4), Flag(0, "Exclusive"), Bits(1, 31, "Stream Dependency"), Shown(1, "Weight", ShowWeight)});
constexpr auto kResetRows = Rows<Http2Frame>({Number(4, "Error Code", kErrorNames)});
constexpr auto kSettingRows = Rows<NoValues>({
    Number(2, "Identifier", kSettingNames), Number(4, "Value")});
constexpr auto kPromisedRows = Rows<Http2Frame>({Word(4), Bits(0, 1, "Reserved"), Bits(1, 31, "Promised Stream")});
constexpr auto kPingRows = Rows<Http2Frame>({Bytes(8, "Opaque Data")});
constexpr auto kGoAwayRows = Rows<Http2Frame>({
    Word(4), Bits(0, 1, "Reserved"), Bits(1, 31, "Last Stream"), Number(4, "Error Code", kErrorNames)});
constexpr auto kWindowRows = Rows<Http2Frame>({Word(4), Bits(0, 1, "Reserved"), Bits(1, 31, "Window Size Increment")});
constexpr auto kServiceRows = Rows<Http2Frame>({Counted(2, Text(0, "Origin")), Text(0, "Alternative Service")});
constexpr auto kOriginRows = Rows<Http2Frame>({Counted(2, Text(0, "Origin"))});
constexpr auto kUpdateRows = Rows<Http2Frame>({
    Word(4), Bits(0, 1, "Reserved"), Bits(1, 31, "Prioritized Stream"), Text(0, "Priority Field Value")});

// The content of a frame that may be padded; the padding behind it is left for the caller, as far as it is here.
Cursor TakePadded(const Place& in, Cursor& c, Http2Frame& frame) {
  frame.padding.value = 0;
  if (frame.flags & kPadded) ShowRows<Http2Frame>(in, c, kPadLength, frame);
  const uint32_t toCome = frame.side->bodyLeft, stated = frame.padding.value;
  const int32_t padding = stated > toCome ? static_cast<int32_t>(stated - toCome) : 0;
  frame.side->bodyPadding = stated;
  return TakeCursor(c, padding < Left(c) ? Left(c) - padding : 0);
}

void ShowBlock(const Place& in, Cursor& c, Http2Frame& frame) { ShowHpackFields(in, c, frame); }

void ShowData(const Place& in, Cursor& c, Http2Frame& frame) {
  Cursor content = TakePadded(in, c, frame);
  ShowHttp2Body(in, content, frame);
}
void ShowHeaders(const Place& in, Cursor& c, Http2Frame& frame) {
  Cursor content = TakePadded(in, c, frame);
  if (frame.flags & kWithPriority) ShowRows<Http2Frame>(in, content, kPriorityRows, frame);
  ShowBlock(in, content, frame);
}
void ShowSettings(const Place& in, Cursor& c, Http2Frame&) {
  for (Loop loop; Left(c) >= kSettingSize && MoreAt(in, c, loop);) ShowHttp2Setting(in, c);
}
void ShowPromise(const Place& in, Cursor& c, Http2Frame& frame) {
  Cursor content = TakePadded(in, c, frame);
  ShowRows<Http2Frame>(in, content, kPromisedRows, frame);
  ShowBlock(in, content, frame);
}
void ShowOrigins(const Place& in, Cursor& c, Http2Frame& frame) {
  for (Loop loop; MoreAt(in, c, loop);) ShowRows<Http2Frame>(in, c, kOriginRows, frame);
}

constexpr auto kFrames = Choices<Http2Frame>({
    {kData, "DATA", {}, ShowData}, {kHeaders, "HEADERS", {}, ShowHeaders}, {kPriority, "PRIORITY", kPriorityRows},
    {kReset, "RST_STREAM", kResetRows}, {kSettings, "SETTINGS", {}, ShowSettings}, {kPromise, "PUSH_PROMISE", {}, ShowPromise},
    {kPing, "PING", kPingRows}, {kGoAway, "GOAWAY", kGoAwayRows}, {kWindow, "WINDOW_UPDATE", kWindowRows},
    {kContinuation, "CONTINUATION", {}, ShowBlock}, {0x0A, "ALTSVC", kServiceRows}, {0x0B, "BLOCKED"},
    {0x0C, "ORIGIN", {}, ShowOrigins}, {0x10, "PRIORITY_UPDATE", kUpdateRows}, {0x4D, "METADATA"}});

RowSpan<NoValues> FlagsOf(uint32_t type) {
  switch (type) {
    case kData: return kDataFlags;
    case kHeaders: return kHeadersFlags;
    case kSettings: case kPing: return kAckFlags;
    case kPromise: return kPromiseFlags;
    case kContinuation: return kContinuationFlags;
    default: return kPlainFlags;
  }
}

// A direction of a stream; the state that it stands in when this frame begins.
Http2Stream StreamOf(const Place& in, const Http2Frame& frame, bool isOther, RequestKey* key) {
  int32_t direction;
  const ConnectionKey connection = ConnectionOf(PacketOf(in), &direction);
  *key = {connection, {frame.stream, static_cast<uint32_t>(isOther ? 1 - direction : direction), 0, 0}};
  Http2Stream stream{};
  if (const Http2Stream* known = Recall(in.view, kHttp2Streams, *key)) stream = *known;
  if (stream.packet != frame.packet) {
    stream.before = stream.now;
  } else if (stream.pass != frame.pass) {
    stream.now = stream.before;   // the packet is looked at again
  }
  stream.packet = frame.packet;
  stream.pass = frame.pass;
  return stream;
}

// Both directions of a stream go over to WebSocket.
void BeginTunnel(const Place& in, const Http2Frame& frame, bool isOther) {
  RequestKey key;
  Http2Stream stream = StreamOf(in, frame, isOther, &key);
  stream.now.content = WebContent::kWebSocket;
  Remember(in.view, kHttp2Streams, key, stream);
}

}  // namespace

const char* Http2FrameName(uint32_t type) {
  const Choice<Http2Frame>* known = FindChoice<Http2Frame>(kFrames, type);
  return known ? known->name : kUnknown;
}

void ShowHttp2Head(const Place& in, Cursor& c, uint32_t type) {
  NoValues none;
  ShowRows<NoValues>(in, c, kHead, none);
  ShowRows<NoValues>(in, c, FlagsOf(type), none);
  ShowRows<NoValues>(in, c, kStream, none);
}

void ShowHttp2Payload(const Place& in, Cursor& c, Http2Frame& frame) {
  const Choice<Http2Frame>* choice = FindChoice<Http2Frame>(kFrames, frame.type);
  if (choice) {
    if (choice->rows.count) ShowRows<Http2Frame>(in, c, choice->rows, frame);
    if (choice->show) choice->show(in, c, frame);
  }
  c.ranShort = false;
  AddBlock(in, Rest(c), frame.flags & kPadded && frame.padding.value ? "Padding" : "Data");
}

void ShowHttp2Setting(const Place& in, Cursor& c) {
  const uint32_t number = PeekU16(c), value = PeekU32(c, 2);
  const Place under =
      Under(in, AddLine(in, Ahead(c, kSettingSize), "Setting: %s = %u", LookupName(kSettingNames, number), value));
  NoValues none;
  ShowRows<NoValues>(under, c, kSettingRows, none);
}

void ShowHttp2Body(const Place& in, Cursor& c, Http2Frame& frame) {
  RequestKey key;
  Http2Stream stream = StreamOf(in, frame, false, &key);
  if (stream.now.content == WebContent::kWebSocket) return ShowWebSocketFrames(in, c, frame.stream);
  const WebStreamKey pieces{DirectionOf(PacketOf(in)), frame.stream, kPiecesOfHttp2, frame.keeps};
  ShowWebBody(in, c, stream.now, (frame.flags & kEndStream) && frame.side->bodyLeft == 0, &pieces);
  if (frame.keeps) Remember(in.view, kHttp2Streams, key, stream);
}

Http2Notes BeginHttp2Notes(const Place& in, const Http2Frame& frame) {
  Http2Notes notes{};
  RequestKey key;
  if (frame.type == kContinuation) notes.body = StreamOf(in, frame, false, &key).now;
  return notes;
}

void KeepHttp2Notes(const Place& in, Http2Frame& frame, const Http2Notes& notes) {
  RequestKey key;
  Http2Stream stream = StreamOf(in, frame, false, &key);
  if (notes.isTunnel && frame.keeps) {
    BeginTunnel(in, frame, false);
    return BeginTunnel(in, frame, true);
  }
  if (stream.now.content == WebContent::kWebSocket) {
    if (notes.deflates && frame.keeps) {
      int32_t direction;
      const RequestKey socket{ConnectionOf(PacketOf(in), &direction), {frame.stream, 0, 0, 0}};
      Remember(in.view, kWebSockets, socket,
               {true, {!notes.serverForgets, !notes.clientForgets}, static_cast<uint8_t>(direction)});
    }
    return;
  }
  if (frame.flags & kEndStream) {   // trailers: the body is whole
    Cursor none = MakeCursor(nullptr, frame.end, 0);
    const WebStreamKey pieces{DirectionOf(PacketOf(in)), frame.stream, kPiecesOfHttp2, frame.keeps};
    if (stream.now.hasBegun) ShowWebBody(in, none, stream.now, true, &pieces);
  } else if (notes.body.content != WebContent::kUnknown || notes.body.isCompressed) {
    const uint32_t number = stream.now.pieces.body;
    stream.now = notes.body;
    stream.now.pieces.body = number + 1;
  } else {
    return;
  }
  if (frame.keeps) Remember(in.view, kHttp2Streams, key, stream);
}

}  // namespace qxview
