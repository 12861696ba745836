// Hypertext Transfer Protocol (RFC 9110, RFC 9112; HTTP/1.0 in RFC 1945): requests and responses over TCP.
//
//   GET /index.html HTTP/1.1 CR LF       or       HTTP/1.1 200 OK CR LF
//   name: value CR LF                             ...
//   CR LF
//   body: plain, in chunks (size CR LF data CR LF ... 0 CR LF CR LF), gzip-compressed (RFC 1952)
//
// A segment is decoded as it stands. One that starts no message belongs to a body whose headers are looked for in the
// earlier segments of the connection.
#include "decoders/app/http_message.h"

#include <cstdlib>

#include "decoders/app/http2.h"
#include "decoders/app/http_fields.h"
#include "decoders/app/tls_record.h"
#include "decoders/app/websocket.h"
#include "decoders/states.h"
#include "decoders/tls/ssl2.h"

namespace qxview {
namespace {

// The token and the bytes behind it that belong to it, as far as the message has them.
Field Covering(const Field& message, const TextToken& token, int32_t behind) {
  const int32_t left = message.length - token.offset;
  const int32_t wanted = token.length + behind;
  return Slice(message, token.offset, wanted < left ? wanted : left);
}

TextSlice TextOf(const Field& message, const TextToken& token) { return Text(Slice(message, token.offset, token.length)); }

void ShowFirstLine(const Place& in, const Field& message, const HttpFirstLine& first) {
  const int32_t shown = first.length < kMostFirstLineShown ? first.length : kMostFirstLineShown;
  const Field line = Slice(message, 0, shown);
  const TextToken* tokens = first.tokens;
  if (first.kind == kHttpRequest) {
    const Place parts = Under(in, AddLine(in, line, "Request Line: %s", Text(line)));
    AddLine(parts, Covering(message, tokens[0], 1), "Method: %s", TextOf(message, tokens[0]));
    const LineHandle uri = AddLine(parts, Covering(message, tokens[1], 1), "Request uri: %s", TextOf(message, tokens[1]));
    if (TellsAll(in)) ShowHttpTarget(Under(parts, uri), Slice(message, tokens[1].offset, tokens[1].length));
    AddLine(parts, Covering(message, tokens[2], 1), "Version: %s", TextOf(message, tokens[2]));
  } else {
    const Place parts = Under(in, AddLine(in, line, "Status Line: %s", Text(line)));
    AddLine(parts, Covering(message, tokens[0], 1), "Version: %s", TextOf(message, tokens[0]));
    AddLine(parts, Covering(message, tokens[1], 1), "Code: %s", TextOf(message, tokens[1]));
    AddLine(parts, Covering(message, tokens[2], 2), "Phrase: %s", TextOf(message, tokens[2]));
  }
}

const char* TitleOf(int32_t kind, const HttpFlags& flags) {
  switch (kind) {
    case kHttpRequest: return flags.chunked ? "Chunked HTTP Data - HTTP Request" : "HTTP - Request";
    case kHttpResponse: return flags.chunked ? "Chunked HTTP Data - HTTP Response" : "HTTP - Response";
    default: return flags.chunked || flags.gzip ? "HTTP - Gzip Continuation Data" : "HTTP - Continuation Data";
  }
}

void NoteContext(const Place& at, HttpState& state, const Field& message) {
  switch (FindHttpHeaderContext(at.view, message.bytes, message.length, kMostEarlierSegments, &state.history)) {
    case kTextContext: state.flags.text = true; break;
    case kImageContext: state.flags.image = true; break;
    case kGzipContext: state.flags.gzip = true; break;
    default: break;
  }
}

// The answer that lets a connection go over to another protocol, from its next byte on.
bool GoesOver(const Place& at, const HttpFlags& flags, const Field& message, const HttpFirstLine& first) {
  const Field code = Slice(message, first.tokens[1].offset, first.tokens[1].length);
  if (first.kind != kHttpResponse || !PeekIs(CursorOver(code), 0, "101") || (!flags.toWebSocket && !flags.toHttp2)) return false;
  int32_t direction;
  const ConnectionKey key = ConnectionOf(PacketOf(at), &direction);
  if (PacketOf(at).quoted) return false;
  if (flags.toHttp2) {
    Remember(at.view, kHttp2Connections, key, {true});
  } else {
    const bool keeps[] = {!flags.serverForgets, !flags.clientForgets};
    Remember(at.view, kWebSockets, {key, {}}, {flags.deflates, {keeps[0], keeps[1]}, static_cast<uint8_t>(direction)});
  }
  return true;
}

// Answers of some codes have none, whatever their headers say (RFC 9112 6.3).
bool HasBody(const Field& message, const HttpFirstLine& first) {
  const Cursor code = CursorOver(Slice(message, first.tokens[1].offset, first.tokens[1].length));
  return first.kind != kHttpResponse || (PeekU8(code) != '1' && !PeekIs(code, 0, "204") && !PeekIs(code, 0, "304"));
}

// One pass: a message, or the continuation of one, from its first line on. Result: whether another pass follows.
bool DecodeMessage(const Place& at, HttpState& state, Cursor& c) {
  const Field message = Ahead(c, Left(c));
  const HttpFirstLine first = SplitHttpFirstLine(message.bytes, message.length);
  // What follows a chunk belongs to the message that this payload started: only a payload's own start is asked for.
  if (first.kind == kHttpContinuation && Taken(c) == 0) NoteContext(at, state, message);
  const Place in = Under(at, AddLine(at, message, "%s", TitleOf(first.kind, state.flags)));
  if (first.kind != kHttpContinuation) {
    ShowFirstLine(in, message, first);
    TakeBytes(c, first.taken);
    WalkHttpHeaders(in, state.flags, c);
    if (GoesOver(at, state.flags, message, first)) {
      if (Left(c) > 0) CallDecoder(at, TakeCursor(c, Left(c)), state.flags.toHttp2 ? DecodeHttp2 : DecodeWebSocket, "HTTP Data");
      return false;
    }
  }
  if (Left(c) < 1) return false;
  if (first.kind == kHttpContinuation || !TellsAll(in)) return DecodeHttpBody(in, state, first.kind, c);
  return ShowHttpContent(at, in, state.flags, HasBody(message, first), c);
}

void ShowTls(const Place& at, Cursor c) {
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "HTTP - TLS/SSL"));
  if (StartsTlsRecord(c) || StartsSsl2Hello(c)) return ShowTlsUnder(in, c);
  PassTls(in, c);
  AddBlock(in, Rest(c), "HTTPS Continuation Data");
}

}  // namespace

void* CreateHttpState() { return std::calloc(1, sizeof(HttpState)); }

void DestroyHttpState(void* state) {
  DestroyHttpInflater(static_cast<HttpState*>(state)->inflater);
  std::free(state);
}

int32_t DecodeHttpPayload(View* view, const uint8_t* payload, int32_t frameOffset, int32_t length, int32_t level,
                          bool isTls) {
  if (length < 1) return 0;
  const Place at = TopLevel(view, level);
  Cursor c = MakeCursor(payload, frameOffset, length);
  if (isTls) {
    ShowTls(at, c);
    return 1;
  }
  PacketOf(at).segment.wanted = PacketOf(at).segment.length;   // where its headers may be looked for
  HttpState& state = *StateOf<HttpState>(view->engine, DecoderState::kHttp);
  Loop loop;
  while (MoreAt(at, c, loop) && DecodeMessage(at, state, c)) {
  }
  state.flags = {};
  state.history.count = 0;   // the segments are the host's until the next frame
  state.history.finished = false;
  return 1;
}

int32_t DecodeHttp(const Place& at, Cursor c) {
  if (StartsHttp2(c)) return DecodeHttp2(at, c);
  if (ClassifyHttpFirstLine(c.at, Left(c)) == kHttpContinuation) {
    if (IsHttp2Connection(at) || StartsHttp2Settings(c)) return DecodeHttp2(at, c);
    if (IsWebSocketConnection(at)) return DecodeWebSocket(at, c);
  }
  return DecodeHttpPayload(at.view, c.at, c.offset, Left(c), at.level, false);
}

const DecoderRow& RowBehindUpgrade(const Place& at, const DecoderRow& row, const Cursor& c) {
  if (row.decode != DecodeHttp || ClassifyHttpFirstLine(c.at, Left(c)) != kHttpContinuation) return row;
  const int32_t protocol = IsWebSocketConnection(at) ? kWebSocketProtocol : IsHttp2Connection(at) ? kHttp2Protocol : 0;
  const DecoderRow* behind = protocol ? FindBuiltinDecoder(protocol & 0xFFFF) : nullptr;
  return behind ? *behind : row;
}

int32_t DecodeHttps(const Place& at, Cursor c) {
  return DecodeHttpPayload(at.view, c.at, c.offset, Left(c), at.level, true);
}

}  // namespace qxview
