// Bodies of HTTP by their content type: JSON (RFC 8259), XML (RFC 7303), forms (WHATWG URL standard), text, parts (RFC 2046),
// images and the messages of gRPC.
#include "decoders/app/web_body.h"

#include <cstring>

#include "core/line_facts.h"
#include "decoders/app/http_inflate.h"
#include "decoders/app/playlist.h"
#include "decoders/app/web_vocabulary.h"
#include "decoders/common/header_lines.h"
#include "decoders/common/header_values.h"
#include "decoders/common/json_lines.h"
#include "decoders/common/text_lines.h"
#include "decoders/common/transfer_text.h"
#include "decoders/common/xml_lines.h"

namespace qxview {
namespace {

constexpr int32_t kMostShown = 1024;

bool EndsWith(const Field& text, const char* end) {
  const int32_t length = static_cast<int32_t>(std::strlen(end));
  return text.length >= length && IsWord(Slice(text, text.length - length, length), end);
}

struct ContentName {
  const char* start;
  WebContent content;
};
constexpr ContentName kContents[] = {
    {"application/grpc", WebContent::kGrpc}, {"application/json", WebContent::kJson},
    {"application/x-www-form-urlencoded", WebContent::kForm}, {"application/xml", WebContent::kXml},
    {"application/soap+xml", WebContent::kXml}, {"application/protobuf", WebContent::kProtobuf},
    {"application/x-protobuf", WebContent::kProtobuf}, {"application/x-ndjson", WebContent::kJson},
    {"application/javascript", WebContent::kText}, {"application/x-javascript", WebContent::kText},
    {"application/vnd.apple.mpegurl", WebContent::kText}, {"application/x-mpegurl", WebContent::kText},
    {"audio/mpegurl", WebContent::kText}, {"audio/x-mpegurl", WebContent::kText},
    {"application/graphql", WebContent::kText}, {"multipart/", WebContent::kParts}, {"text/xml", WebContent::kXml},
    {"text/json", WebContent::kJson}, {"text/", WebContent::kText}, {"image/svg+xml", WebContent::kXml},
    {"image/", WebContent::kImage}};

// The characters that "+" and "%41" stand for, as they are; cut at the room.
TextSlice Unescaped(const Field& text, char* room, int32_t size) {
  const auto digit = [&text](int32_t at) -> int32_t {
    const uint32_t c = PeekU8(text, at), lower = c | 0x20;
    if (c >= '0' && c <= '9') return static_cast<int32_t>(c - '0');
    return lower >= 'a' && lower <= 'f' ? static_cast<int32_t>(lower - 'a' + 10) : -1;
  };
  int32_t used = 0;
  for (int32_t at = 0; at < text.length && used < size; ++at) {
    uint32_t character = PeekU8(text, at);
    if (character == '+') character = ' ';
    if (character == '%' && at + 2 < text.length && digit(at + 1) >= 0 && digit(at + 2) >= 0) {
      character = static_cast<uint32_t>(digit(at + 1) * 16 + digit(at + 2));
      at += 2;
    }
    room[used++] = static_cast<char>(character);
  }
  return {room, used};
}

void ShowForm(const Place& in, Cursor& c) {
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const int32_t end = FindU8(c, '&');
    const Field item = TakeBytes(c, end < 0 ? Left(c) : end);
    if (end >= 0) TakeU8(c);
    const int32_t equals = FindU8(CursorOver(item), '=');
    const Field name = Slice(item, 0, equals < 0 ? item.length : equals);
    const Field value = Slice(item, equals < 0 ? item.length : equals + 1, equals < 0 ? 0 : item.length - equals - 1);
    char nameRoom[256], valueRoom[kMostShown];
    const TextSlice nameText = Unescaped(name, nameRoom, sizeof nameRoom);
    const TextSlice valueText = Unescaped(value, valueRoom, sizeof valueRoom);
    const Place under = Under(in, AddLine(in, item, "Form Item: %s = %s", nameText, valueText));
    AddLine(under, name, "Name: %s", nameText);
    if (equals >= 0) AddLine(under, value, "Value: %s", valueText);
  }
}

void ShowText(const Place& in, Cursor& c) {
  Loop loop;
  TextLine line;
  while (MoreAt(in, c, loop) && TakeLine(c, line)) AddTextLine(in, line.whole, "Text", line.text);
}

WebBody BodyOf(WebContent content, bool isCompressed = false) {
  WebBody body{};
  body.content = content;
  body.isCompressed = isCompressed;
  return body;
}

// "--" and the boundary, and two more dashes behind the last part.
bool IsBoundary(const Field& line, const Field& boundary) {
  if (line.length < boundary.length + 2 || PeekU16(line) != 0x2D2D) return false;
  return std::memcmp(Slice(line, 2, boundary.length).bytes, boundary.bytes, static_cast<size_t>(boundary.length)) == 0;
}

struct PartHead {
  WebContent content;
  Field boundary, encoding;
};

PartHead ShowPartHead(const Place& in, Cursor& part) {
  PartHead head{WebContent::kUnknown, {}, {}};
  HeaderLine header;
  Loop loop;
  while (MoreAt(in, part, loop) && TakeHeader(part, header)) {
    ShowHeader(in, header);
    if (IsWord(header.name, "Content-Transfer-Encoding")) head.encoding = Trimmed(header.value);
    if (!IsWord(header.name, "Content-Type")) continue;
    head.content = WebContentOf(Text(header.value));
    head.boundary = ParameterOf(header.value, "boundary");
  }
  ShowEndOfHeaders(in, part);
  if (head.content == WebContent::kUnknown) head.content = WebContent::kText;   // where nothing is said
  return head;
}

void ShowPartContent(const Place& in, Cursor& c, const PartHead& head, int32_t depth) {
  if (head.content == WebContent::kParts) return ShowWebParts(in, c, head.boundary, depth + 1);
  WebBody body = BodyOf(head.content);
  ShowWebBody(in, c, body, true);
}

void ShowPart(const Place& in, Cursor part, int32_t depth) {
  const PartHead head = ShowPartHead(in, part);
  const bool isBase64 = IsWord(head.encoding, "base64");
  if (Left(part) == 0) return;
  if (!isBase64 && !IsWord(head.encoding, "quoted-printable")) return ShowPartContent(in, part, head, depth);
  const Field text = Rest(part);
  Cursor octets = isBase64 ? DecodeBase64(in, text) : DecodeQuotedPrintable(in, text);
  if (Left(octets) == 0) return (void)AddBlock(in, text, "Encoded Content");
  const DerivedLines derived(in.view);
  const Place under = Under(in, AddLine(in, text, "Decoded Content: %d bytes in %s", Left(octets), Text(head.encoding)));
  ShowPartContent(under, octets, head, depth);
}

// What the octets inflate to, under a line of its own; false where they do not.
bool ShowInflatedBody(const Place& in, const Field& whole, const WebBody& body, WebContent content) {
  Inflation how;
  if (!body.isGzip && !body.isDeflate) return false;
  Cursor plain = InflateInFrame(in, whole, body.isGzip ? Wrapping::kGzip : Wrapping::kZlib, {}, &how);
  if (Left(plain) < 1) return false;
  const DerivedLines derived(in.view);
  const Place under = Under(in, AddLine(in, whole, "Inflated Content: %d bytes%s", Left(plain), InflationNote(how)));
  WebBody inflated = BodyOf(content);
  ShowWebBody(under, plain, inflated, true);
  return true;
}

constexpr int32_t kGrpcHead = 5;

void ShowGrpcMessage(const Place& in, Cursor message, const WebBody& body) {
  const Field compressed = TakeU8(message), length = TakeU32(message);
  AddLine(in, compressed, "Compressed: %u = %s", compressed.value, TrueOrFalse(compressed.value != 0));
  AddLine(in, length, "Message Length: %u", length.value);
  if (length.value > static_cast<uint32_t>(Left(message))) {
    AddBlock(in, Rest(message), compressed.value ? "Compressed Message" : "Message in Part");
  } else if (compressed.value) {
    const Field whole = Rest(message);
    if (!ShowInflatedBody(in, whole, body, WebContent::kProtobuf)) AddBlock(in, whole, "Compressed Message");
  } else if (length.value > 0) {
    ShowProtobuf(in, message);
  }
}

// A piece of a message that began in a frame before this one; the message, when that makes it whole.
void ShowGrpcPiece(const Place& in, Cursor& c, WebBody& body, const WebStreamKey& key) {
  constexpr uint32_t kHead = kGrpcHead;
  const bool hadHead = body.pieces.length >= kHead;
  const uint32_t lacks = hadHead ? body.messageLeft : kHead - body.pieces.length, left = static_cast<uint32_t>(Left(c));
  const Field piece = TakeBytes(c, static_cast<int32_t>(lacks < left ? lacks : left));
  KeepPiece(in, key, body.pieces, piece);
  AddBlock(in, piece, "Message Continued");
  if (hadHead) body.messageLeft -= static_cast<uint32_t>(piece.length);
  if (!hadHead && body.pieces.length >= kHead) {
    WebPieces look = body.pieces;
    body.messageLeft = PeekU32(JoinPieces(in, key, look, piece.offset), 1);
  }
  if (body.pieces.length < kHead || body.messageLeft > 0) return;
  const uint32_t count = body.pieces.count;
  const Cursor joined = JoinPieces(in, key, body.pieces, piece.offset);
  if (Left(joined) < 1) return;
  const Field whole = Ahead(joined, Left(joined));
  ShowGrpcMessage(Under(in, AddLine(in, whole, "gRPC Message: %d bytes, joined of %u pieces", whole.length - kGrpcHead, count)),
                  joined, body);
}

// Messages of gRPC: whether compressed (8), length (32), the message. One that goes on behind the frame is told.
void ShowGrpc(const Place& in, Cursor& c, WebBody& body, const WebStreamKey* key) {
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const uint32_t left = static_cast<uint32_t>(Left(c));
    if (key && body.pieces.count > 0 && !body.pieces.isLost) {
      ShowGrpcPiece(in, c, body, *key);
      continue;
    }
    if (body.messageLeft > 0) {
      const uint32_t here = body.messageLeft < left ? body.messageLeft : left;
      AddBlock(in, TakeBytes(c, static_cast<int32_t>(here)), "Message Continued");
      body.messageLeft -= here;
      if (body.messageLeft == 0) DropPieces(body.pieces);
      continue;
    }
    if (Left(c) < kGrpcHead) {
      const Field head = Rest(c);
      if (key) KeepPiece(in, *key, body.pieces, head);
      AddBlock(in, head, "Message in Part");
      return;
    }
    const uint32_t size = PeekU32(c, 1), there = left - kGrpcHead;
    const int32_t here = kGrpcHead + static_cast<int32_t>(size < there ? size : there);
    const Place under = Under(in, AddLine(in, Ahead(c, here), "gRPC Message: %u bytes", size));
    const Cursor message = TakeCursor(c, here);
    if (size > there) body.messageLeft = size - there;
    if (size > there && key) {
      if (size > kMostPiecedBytes) {
        AddLine(under, Ahead(message, 0), "Longer than %u bytes: shown as it comes", kMostPiecedBytes);
        body.pieces.isLost = true;
      } else {
        KeepPiece(in, *key, body.pieces, Ahead(message, here));
      }
    }
    ShowGrpcMessage(under, message, body);
  }
}

bool IsJoined(const Place& in, const WebBody& body) {
  return in.view->engine->settings.reassembly &&
         (body.isCompressed || (body.content != WebContent::kUnknown && body.content != WebContent::kOther));
}

// A body of more than one piece: each as it comes, and all when the last is here.
void ShowInPieces(const Place& in, Cursor& c, WebBody& body, bool ends, const WebStreamKey& key) {
  const Field piece = Rest(c);
  if (piece.length > 0) {
    const bool wasLost = body.pieces.isLost;
    KeepPiece(in, key, body.pieces, piece);
    AddBlock(in, piece, body.hasBegun ? "Content Continued" : "Content in Part");
    if (body.pieces.isLost && !wasLost) {
      AddLine(in, piece, "Longer than %u bytes or %u pieces: not joined", kMostPiecedBytes, kMostWebPieces);
    }
    body.hasBegun = true;
  }
  const uint32_t count = body.pieces.count;
  if (!ends || count == 0) return;
  const Cursor joined = JoinPieces(in, key, body.pieces, piece.offset);
  if (Left(joined) < 1) return;
  Cursor all = joined;
  const Place under = Under(in, AddLine(in, Ahead(all, Left(all)), "Joined Content: %d bytes of %u pieces", Left(all), count));
  WebBody whole = body;
  whole.hasBegun = false;
  ShowWebBody(under, all, whole, true);
}

}  // namespace

WebContent WebContentOf(const TextSlice& type) {
  Field text{reinterpret_cast<const uint8_t*>(type.text), 0, type.length, 0, true};
  const int32_t end = FindU8(CursorOver(text), ';');
  text = Trimmed(Slice(text, 0, end < 0 ? text.length : end));
  for (const ContentName& row : kContents) {
    if (StartsWithWord(text, row.start)) return row.content;
  }
  if (EndsWith(text, "+json")) return WebContent::kJson;
  if (EndsWith(text, "+xml")) return WebContent::kXml;
  return WebContent::kOther;
}

void NoteContentCoding(const TextSlice& coding, WebBody& body) {
  const Field text{reinterpret_cast<const uint8_t*>(coding.text), 0, coding.length, 0, true};
  body.isCompressed = !IsWord(text, "identity");
  body.isGzip = IsWord(text, "gzip") || IsWord(text, "x-gzip");
  body.isDeflate = IsWord(text, "deflate");
}

void NoteBodyField(const TextSlice& name, const TextSlice& value, WebBody& body) {
  const Field word{reinterpret_cast<const uint8_t*>(name.text), 0, name.length, 0, true};
  if (IsWord(word, "content-type")) {
    body.content = WebContentOf(value);
  } else if (IsWord(word, "content-encoding")) {
    NoteContentCoding(value, body);
  } else if (IsWord(word, "capsule-protocol") && value.length >= 2 && value.text[1] == '1') {   // "?1"
    body.content = WebContent::kCapsules;
  } else if (IsWord(word, ":protocol")) {
    const Field protocol{reinterpret_cast<const uint8_t*>(value.text), 0, value.length, 0, true};
    const bool isTunnel = IsWord(protocol, "connect-udp") || IsWord(protocol, "connect-ip");
    if (isTunnel) body.content = WebContent::kCapsules;
    if (IsWord(protocol, "webtransport")) body.content = WebContent::kSessionCapsules;
  } else if (IsWord(word, "grpc-encoding")) {
    const Field coding{reinterpret_cast<const uint8_t*>(value.text), 0, value.length, 0, true};
    body.isGzip = IsWord(coding, "gzip");
    body.isDeflate = IsWord(coding, "deflate");
  }
}

void ShowWebBody(const Place& in, Cursor& c, WebBody& body, bool ends, const WebStreamKey* key) {
  const KeyedAs keys(PacketOf(in), "web");
  const bool isFirst = !body.hasBegun, joins = key && IsJoined(in, body);
  if (body.content == WebContent::kCapsules || body.content == WebContent::kSessionCapsules) {
    body.hasBegun = true;
    return ShowCapsules(in, c, body);
  }
  if (body.content == WebContent::kGrpc) {
    body.hasBegun = true;
    ShowGrpc(in, c, body, joins ? key : nullptr);
    return;
  }
  if (joins && !(isFirst && ends)) return ShowInPieces(in, c, body, ends, *key);
  if (Left(c) < 1) return;
  body.hasBegun = true;
  const Field whole = Ahead(c, Left(c));
  if (body.isCompressed) {
    if (!isFirst || !ends || !ShowInflatedBody(in, whole, body, body.content)) AddBlock(in, whole, "Encoded Content");
    Rest(c);
    return;
  } else if (isFirst && StartsPlaylist(c)) {
    ShowPlaylist(Under(in, AddLine(in, whole, "Playlist: %d bytes", whole.length)), c);
  } else if (body.content == WebContent::kText || (body.content == WebContent::kUnknown && IsReadable(c))) {
    ShowText(in, c);
  } else if (isFirst && body.content == WebContent::kJson && StartsJson(c)) {
    const Place under = Under(in, AddLine(in, whole, "JSON: %d bytes", whole.length));
    ShowJsonVocabulary(under, c);
    ShowJson(under, c);
    SkipSpace(c);
  } else if (isFirst && body.content == WebContent::kXml && StartsXml(c)) {
    const Place under = Under(in, AddLine(in, whole, "XML: %d bytes", whole.length));
    ShowXmlVocabulary(under, c);
    ShowXml(under, c);
  } else if (isFirst && body.content == WebContent::kForm) {
    ShowForm(Under(in, AddLine(in, whole, "Form: %d bytes", whole.length)), c);
  } else if (isFirst && body.content == WebContent::kParts) {
    ShowWebParts(in, c, {}, 0);
  } else if (isFirst && body.content == WebContent::kImage) {
    ShowImage(in, c);
  } else if (isFirst && body.content == WebContent::kProtobuf) {
    ShowProtobuf(Under(in, AddLine(in, whole, "Protocol Buffers: %d bytes", whole.length)), c);
  }
  c.ranShort = false;
  AddBlock(in, Rest(c), isFirst ? "Content" : "Content Continued");
}

// Each part stands behind a line of two dashes and the boundary, which the first such line tells where nothing else does.
void ShowWebParts(const Place& in, Cursor& c, const Field& told, int32_t depth) {
  TextLine line;
  Cursor look = c;
  if (depth > kDeepestBodyParts) return (void)AddBlock(in, Rest(c), "Parts nest too deeply to be shown");
  const bool hasLine = TakeLine(look, line) && line.text.length > 2 && PeekU16(line.text) == 0x2D2D;
  const Field boundary = told.length > 0 ? told : hasLine ? Trimmed(Slice(line.text, 2, line.text.length - 2)) : Field{};
  uint32_t number = 0;
  bool isOver = boundary.length == 0;
  Loop loop;
  while (!isOver && MoreAt(in, c, loop)) {
    TakeLine(c, line);
    if (!IsBoundary(line.text, boundary)) {   // in front of the first part
      AddTextLine(in, line.whole, "Text", line.text);
      continue;
    }
    AddTextLine(in, line.whole, "Boundary", line.text);
    isOver = PeekIs(CursorOver(line.text), boundary.length + 2, "--");
    look = c;
    int32_t length = 0;
    Loop lines;
    while (!isOver && More(look, lines) && TakeLine(look, line) && !IsBoundary(line.text, boundary)) {
      length = look.offset - c.offset;
    }
    if (length == 0) continue;
    const Cursor part = TakeCursor(c, length);
    ShowPart(Under(in, AddLine(in, Ahead(part, length), "Part %u: %d bytes", ++number, length)), part, depth);
  }
  while (isOver && boundary.length > 0 && MoreAt(in, c, loop) && TakeLine(c, line)) AddTextLine(in, line.whole, "Text", line.text);
}

}  // namespace qxview
