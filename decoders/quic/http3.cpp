// HTTP/3 (RFC 9114): requests and responses as frames on streams of their own, settings and QPACK's tables on
// unidirectional ones. Extensions: datagrams (RFC 9297), extended CONNECT (RFC 9220), priorities (RFC 9218), origins
// (RFC 9412), WebTransport's settings and streams.
//
//   frame: type   length   payload        unidirectional stream: type   what the type says
#include "decoders/quic/http3.h"

#include "core/elements.h"
#include "core/line_facts.h"
#include "decoders/quic/qpack.h"

namespace qxview {

int32_t DecodeDns(const Place& at, Cursor c);

namespace {

enum StreamType : uint32_t { kControl = 0, kPush = 1, kEncoder = 2, kDecoder = 3 };
constexpr uint64_t kData = 0;

constexpr auto kStreamTypeNames = SortedNames({
    {0x00, "Control Stream"}, {0x01, "Push Stream"}, {0x02, "QPACK Encoder Stream"}, {0x03, "QPACK Decoder Stream"},
    {0x54, "WebTransport Stream"}});
constexpr auto kErrorNames = SortedNames({
    {0x33, "H3_DATAGRAM_ERROR"}, {0x100, "H3_NO_ERROR"}, {0x101, "H3_GENERAL_PROTOCOL_ERROR"}, {0x102, "H3_INTERNAL_ERROR"},
    {0x103, "H3_STREAM_CREATION_ERROR"}, {0x104, "H3_CLOSED_CRITICAL_STREAM"}, {0x105, "H3_FRAME_UNEXPECTED"},
    {0x106, "H3_FRAME_ERROR"}, {0x107, "H3_EXCESSIVE_LOAD"}, {0x108, "H3_ID_ERROR"}, {0x109, "H3_SETTINGS_ERROR"},
    {0x10A, "H3_MISSING_SETTINGS"}, {0x10B, "H3_REQUEST_REJECTED"}, {0x10C, "H3_REQUEST_CANCELLED"},
    {0x10D, "H3_REQUEST_INCOMPLETE"}, {0x10E, "H3_MESSAGE_ERROR"}, {0x10F, "H3_CONNECT_ERROR"},
    {0x110, "H3_VERSION_FALLBACK"}, {0x200, "QPACK_DECOMPRESSION_FAILED"}, {0x201, "QPACK_ENCODER_STREAM_ERROR"},
    {0x202, "QPACK_DECODER_STREAM_ERROR"}});
constexpr auto kSettingNames = SortedNames({
    {0x00, "Reserved"}, {0x01, "QPACK_MAX_TABLE_CAPACITY"}, {0x02, "Reserved (HTTP/2)"}, {0x03, "Reserved (HTTP/2)"},
    {0x04, "Reserved (HTTP/2)"}, {0x05, "Reserved (HTTP/2)"}, {0x06, "MAX_FIELD_SECTION_SIZE"},
    {0x07, "QPACK_BLOCKED_STREAMS"}, {0x08, "ENABLE_CONNECT_PROTOCOL"}, {0x33, "H3_DATAGRAM"}, {0x276, "H3_DATAGRAM (draft)"},
    {0x4D44, "ENABLE_METADATA"}, {0xFFD277, "H3_DATAGRAM (draft 4)"}, {0x2B603742, "ENABLE_WEBTRANSPORT"},
    {0x2B603743, "WEBTRANSPORT_MAX_SESSIONS (draft)"}, {0xC671706A, "WEBTRANSPORT_MAX_SESSIONS"}});

// A frame while it is shown.
struct Frame {
  const QuicSession* session;
  WebBody* body;
  Field text;
};
void ShowValue(const Place& in, Cursor& c, const char* label, Frame&) { ShowQuicNumber(in, c, label); }
constexpr Row<Frame> Value(const char* label) { return Shown<Frame>(label, ShowValue); }

// Numbers of the form 31 n + 33 mean nothing: they keep readers used to what they do not know.
bool IsGrease(uint64_t number) { return number >= 33 && (number - 33) % 31 == 0; }

void ShowSettings(const Place& in, Cursor& c, const char*, Frame&) {
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const WideField id = TakeQuicNumber(c);
    const WideField value = TakeQuicNumber(c);
    const char* name = id.wide >> 32 ? nullptr : LookupName(kSettingNames, id.value, nullptr);
    if (!name) name = IsGrease(id.wide) ? "Reserved (GREASE)" : kUnknown;
    const Place under = Under(in, AddLine(in, Stated(id.offset, c.offset - id.offset), "Setting: %s = %I64u", name, value.wide));
    AddLine(under, id, "Identifier: 0x%I64X = %s", id.wide, name);
    AddLine(under, value, "Value: %I64u", value.wide);
  }
}
void ShowFields(const Place& in, Cursor& c, const char*, Frame& frame) {
  WebBody body{};
  ShowFieldSection(in, c, *frame.session, body);
  if (frame.body->hasBegun) return;   // trailers
  body.pieces.body = frame.body->pieces.body + 1;
  *frame.body = body;
}
void ShowText(const Place& in, Cursor& c, const char* label, Frame& frame) {
  frame.text = Rest(c);
  AddLine(in, frame.text, "%s: %s", label, Text(frame.text));
}
void ShowOrigins(const Place& in, Cursor& c, const char* label, Frame&) {
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const Field length = TakeU16(c);
    const Field origin = TakeBytes(c, length.value);
    AddLine(in, length, "%s Length: %u", label, length.value);
    AddLine(in, origin, "%s: %s", label, Text(origin));
  }
}

constexpr auto kHeadersRows = Rows<Frame>({Shown<Frame>("Headers", ShowFields)});
constexpr auto kPushIdRows = Rows<Frame>({Value("Push ID")});
constexpr auto kSettingsRows = Rows<Frame>({Shown<Frame>("Settings", ShowSettings)});
constexpr auto kPromiseRows = Rows<Frame>({Value("Push ID"), Shown<Frame>("Headers", ShowFields)});
constexpr auto kGoAwayRows = Rows<Frame>({Value("Stream or Push ID")});
constexpr auto kOriginRows = Rows<Frame>({Shown<Frame>("Origin", ShowOrigins)});
constexpr auto kPriorityRows = Rows<Frame>({Value("Prioritized Element ID"), Shown<Frame>("Priority Field Value", ShowText)});

constexpr auto kFrames = Choices<Frame>({
    {0x00, "DATA"}, {0x01, "HEADERS", kHeadersRows}, {0x02, "Reserved (HTTP/2 PRIORITY)"}, {0x03, "CANCEL_PUSH", kPushIdRows},
    {0x04, "SETTINGS", kSettingsRows}, {0x05, "PUSH_PROMISE", kPromiseRows}, {0x06, "Reserved (HTTP/2 PING)"},
    {0x07, "GOAWAY", kGoAwayRows}, {0x08, "Reserved (HTTP/2 WINDOW_UPDATE)"}, {0x09, "Reserved (HTTP/2 CONTINUATION)"},
    {0x0C, "ORIGIN", kOriginRows}, {0x0D, "MAX_PUSH_ID", kPushIdRows}, {0x41, "WEBTRANSPORT_STREAM"}, {0x4D, "METADATA"},
    {0xF0700, "PRIORITY_UPDATE (request)", kPriorityRows}, {0xF0701, "PRIORITY_UPDATE (push)", kPriorityRows},
});

const char* FrameName(const Choice<Frame>* choice, uint64_t type) {
  if (choice) return choice->name;
  return IsGrease(type) ? "Reserved (GREASE)" : kUnknown;
}

// A stream while its frames are shown.
struct Stream {
  QuicStreamPart& part;
  const QuicSession& session;
  WebStreamKey key;
  bool isLast;             // it ends behind what is here
};

// The part that is here of a payload that is not waited for. What a header block said nothing of is not looked into.
void ShowBody(const Place& in, Cursor& c, Stream& stream) {
  QuicStreamPart& part = stream.part;
  const int32_t left = Left(c);
  const int32_t here = part.bodyLeft < static_cast<uint64_t>(left) ? static_cast<int32_t>(part.bodyLeft) : left;
  part.bodyLeft -= static_cast<uint64_t>(here);
  Cursor piece = TakeCursor(c, here);
  if (part.isBody && (part.body.content != WebContent::kUnknown || part.body.isCompressed)) {
    return ShowWebBody(in, piece, part.body, stream.isLast && part.bodyLeft == 0 && Left(c) == 0, &stream.key);
  }
  AddBlock(in, Rest(piece), "Data");
}

// A body whose end comes behind its last piece: the stream's, or the trailers in front of it.
void EndBody(const Place& in, Cursor c, Stream& stream) {
  Cursor none = TakeCursor(c, 0);
  if (stream.part.body.pieces.count > 0) ShowWebBody(in, none, stream.part.body, true, &stream.key);
}

// A frame; false when its bytes are not all here.
bool ShowFrame(const Place& in, Cursor& c, Stream& stream) {
  const Cursor start = c;
  const WideField type = TakeQuicNumber(c);
  const WideField length = TakeQuicNumber(c);
  const bool isBody = type.wide == kData || length.wide > kMostKeptFrame;
  if (c.ranShort || (!isBody && length.wide > static_cast<uint64_t>(Left(c)))) {
    c = start;
    return false;
  }
  const Choice<Frame>* choice = type.wide >> 32 ? nullptr : FindChoice<Frame>(kFrames, type.value);
  const char* name = FrameName(choice, type.wide);
  const int32_t header = c.offset - start.offset;
  const uint64_t left = static_cast<uint64_t>(Left(c));
  const int32_t here = static_cast<int32_t>(length.wide < left ? length.wide : left);
  const Place under = Under(in, AddLine(in, Ahead(start, header + here), "HTTP/3: %s, %I64u bytes", name, length.wide));
  AddLine(under, type, "Frame Type: 0x%I64X = %s", type.wide, name);
  AddLine(under, length, "Length: %I64u", length.wide);
  if (isBody) {
    stream.part.bodyLeft = length.wide;
    stream.part.isBody = type.wide == kData;
    ShowBody(under, c, stream);
    return true;
  }
  Cursor payload = TakeCursor(c, static_cast<int64_t>(length.wide));
  Frame frame{&stream.session, &stream.part.body, {}};
  ShowChoice<Frame>(under, payload, choice, frame);
  return true;
}

void ShowFrames(const Place& in, Cursor& c, Stream& stream) {
  Loop loop;
  while (MoreAt(in, c, loop)) {
    if (stream.part.bodyLeft > 0) {
      ShowBody(in, c, stream);
    } else if (!ShowFrame(in, c, stream)) {
      AddLine(in, Ahead(c, Left(c)), "Frame in Part: %d bytes", Left(c));
      return;
    }
  }
  if (stream.isLast) EndBody(in, c, stream);
}

// The streams of one direction say first what they are for.
void ShowUnidirectional(const Place& in, Cursor& c, Stream& of) {
  QuicStreamPart& stream = of.part;
  if (stream.type == 0) {
    const Cursor start = c;
    const WideField type = TakeQuicNumber(c);
    if (c.ranShort) {
      c = start;
      return;
    }
    stream.type = type.wide < INT32_MAX ? type.value + 1 : INT32_MAX;
    AddLine(in, type, "Stream Type: 0x%I64X = %s", type.wide,
            IsGrease(type.wide) ? "Reserved (GREASE)" : LookupName(kStreamTypeNames, type.wide >> 32 ? UINT32_MAX : type.value));
    if (type.wide == kPush) {
      const WideField push = TakeQuicNumber(c);
      AddLine(in, push, "Push ID: %I64u", push.wide);
    }
  }
  switch (stream.type - 1) {
    case kControl:
    case kPush: ShowFrames(in, c, of); break;
    case kEncoder: ShowEncoderInstructions(in, c, of.session); break;
    case kDecoder: ShowDecoderInstructions(in, c); break;
    default: AddBlock(in, Rest(c), "Stream Data");
  }
}

// DNS: a message of each direction behind its length.
void ShowDns(const Place& in, Cursor& c) {
  Loop loop;
  while (MoreAt(in, c, loop)) {
    if (Left(c) < 2 || static_cast<int32_t>(PeekU16(c)) > Left(c) - 2) return;
    const Field length = TakeU16(c);
    AddLine(in, length, "Message Length: %u", length.value);
    CallDecoder(Deeper(in), TakeCursor(c, length.value), DecodeDns, "DNS Data");
  }
}

}  // namespace

void ShowHttp3Datagram(const Place& in, Cursor c, const char* label) {
  const KeyedAs keys(PacketOf(in), "http3");
  const WideField quarter = TakeQuicNumber(c);
  AddLine(in, quarter, "Quarter Stream ID: %I64u (stream %I64u)", quarter.wide, quarter.wide * 4);
  if (Left(c) > 0) AddBlock(in, Rest(c), label);
}

const char* Http3ErrorName(uint32_t code) { return LookupName(kErrorNames, code, nullptr); }

int32_t ShowHttp3Stream(const Place& in, Cursor c, bool isLast, uint64_t id, QuicStreamPart& stream, QuicSession& session) {
  const int32_t all = Left(c);
  if (session.state.content == QuicContent::kDns) {
    ShowDns(in, c);
  } else {
    const KeyedAs keys(PacketOf(in), "http3");
    const uint32_t kind = kPiecesOfHttp3 | static_cast<uint32_t>(session.sender) << 8 | static_cast<uint32_t>(id >> 32) << 16;
    Stream shown{stream, session, {session.key, static_cast<uint32_t>(id), kind, !PacketOf(in).quoted}, isLast};
    if (id & 2) {
      ShowUnidirectional(in, c, shown);
    } else {
      ShowFrames(in, c, shown);
    }
  }
  return isLast ? all : all - Left(c);
}

}  // namespace qxview
