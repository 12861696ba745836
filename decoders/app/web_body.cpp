// Bodies of HTTP by their content type: JSON (RFC 8259), XML (RFC 7303), forms (WHATWG URL standard), text, parts (RFC 2046),
// images and the messages of gRPC.
#include "decoders/app/web_body.h"

#include <cstring>

#include "core/line_facts.h"
#include "decoders/app/http_inflate.h"
#include "decoders/app/playlist.h"
#include "decoders/app/web_vocabulary.h"
#include "decoders/common/header_lines.h"
#include "decoders/common/json_lines.h"
#include "decoders/common/text_lines.h"
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

// Parts of a body: each behind a line of two dashes and the boundary, which the first such line tells.
void ShowParts(const Place& in, Cursor& c) {
  TextLine line;
  Cursor look = c;
  if (!PeekIs(c, 0, "--") || !TakeLine(look, line)) return;
  const Field boundary = Trimmed(line.text);
  const auto isBoundary = [&boundary](const Cursor& at, int32_t ahead) {
    const Field there = PeekBytes(at, ahead, boundary.length);
    return there.here && std::memcmp(there.bytes, boundary.bytes, static_cast<size_t>(boundary.length)) == 0;
  };
  Loop loop;
  for (uint32_t number = 1; MoreAt(in, c, loop) && isBoundary(c, 0); ++number) {
    TakeLine(c, line);
    AddTextLine(in, line.whole, "Boundary", line.text);
    if (Left(c) < 1) return;
    Cursor part = c;
    int32_t size = Left(c);
    for (int32_t at = 0; at >= 0; at = FindU8(c, '\n', at + 1)) {
      const int32_t start = at == 0 ? 0 : at + 1;
      if (!isBoundary(c, start)) continue;
      size = start;
      break;
    }
    part = TakeCursor(c, size);
    const Place under = Under(in, AddLine(in, Ahead(part, Left(part)), "Part %u: %d bytes", number, Left(part)));
    WebBody body = BodyOf(WebContent::kUnknown);
    HeaderLine header;
    Loop headers;
    while (MoreAt(under, part, headers) && TakeHeader(part, header)) {
      ShowHeader(under, header);
      if (IsWord(header.name, "Content-Type")) body.content = WebContentOf(Text(header.value));
      if (IsWord(header.name, "Content-Transfer-Encoding")) body.isCompressed = IsWord(header.value, "base64");
    }
    ShowEndOfHeaders(under, part);
    if (body.content == WebContent::kUnknown) body.content = WebContent::kText;   // where nothing is said
    if (body.content == WebContent::kParts) body.content = WebContent::kOther;
    if (Left(part) > 0) ShowWebBody(under, part, body);
  }
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
      AddLine(in, piece, "Longer than %u bytes or %u pieces: not joined", kMostPiecedBytes, kMostPieces);
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
  } else if (IsWord(word, "grpc-encoding")) {
    const Field coding{reinterpret_cast<const uint8_t*>(value.text), 0, value.length, 0, true};
    body.isGzip = IsWord(coding, "gzip");
    body.isDeflate = IsWord(coding, "deflate");
  }
}

void ShowWebBody(const Place& in, Cursor& c, WebBody& body, bool ends, const WebStreamKey* key) {
  const KeyedAs keys(PacketOf(in), "web");
  const bool isFirst = !body.hasBegun, joins = key && IsJoined(in, body);
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
    ShowParts(in, c);
  } else if (isFirst && body.content == WebContent::kImage) {
    ShowImage(in, c);
  } else if (isFirst && body.content == WebContent::kProtobuf) {
    ShowProtobuf(Under(in, AddLine(in, whole, "Protocol Buffers: %d bytes", whole.length)), c);
  }
  c.ranShort = false;
  AddBlock(in, Rest(c), isFirst ? "Content" : "Content Continued");
}

}  // namespace qxview
