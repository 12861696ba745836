// Bodies of HTTP by their content type: JSON (RFC 8259), XML (RFC 7303), forms (WHATWG URL standard), text, parts (RFC 2046),
// images and the messages of gRPC.
#include "decoders/app/web_body.h"

#include <cstring>

#include "core/line_facts.h"
#include "decoders/app/http_inflate.h"
#include "decoders/common/header_lines.h"
#include "decoders/common/json_lines.h"
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
    WebBody body{};
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

// Messages of gRPC: whether compressed (8), length (32), the message. One that goes on behind the frame is told.
void ShowGrpc(const Place& in, Cursor& c, WebBody& body) {
  constexpr int32_t kHead = 5;
  Loop loop;
  while (MoreAt(in, c, loop)) {
    if (body.messageLeft > 0) {
      const uint32_t left = static_cast<uint32_t>(Left(c));
      const uint32_t here = body.messageLeft < left ? body.messageLeft : left;
      AddBlock(in, TakeBytes(c, static_cast<int32_t>(here)), "Message Continued");
      body.messageLeft -= here;
      continue;
    }
    if (Left(c) < kHead) {
      AddBlock(in, Rest(c), "Message in Part");
      return;
    }
    const uint32_t size = PeekU32(c, 1), left = static_cast<uint32_t>(Left(c) - kHead);
    const int32_t here = kHead + static_cast<int32_t>(size < left ? size : left);
    const Place under = Under(in, AddLine(in, Ahead(c, here), "gRPC Message: %u bytes", size));
    Cursor message = TakeCursor(c, here);
    const Field compressed = TakeU8(message), length = TakeU32(message);
    AddLine(under, compressed, "Compressed: %u = %s", compressed.value, TrueOrFalse(compressed.value != 0));
    AddLine(under, length, "Message Length: %u", length.value);
    if (size > left) body.messageLeft = size - left;
    if (compressed.value || size > left) {
      AddBlock(under, Rest(message), compressed.value ? "Compressed Message" : "Message in Part");
    } else if (size > 0) {
      ShowProtobuf(under, message);
    }
  }
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

void ShowWebBody(const Place& in, Cursor& c, WebBody& body, bool isWhole) {
  const KeyedAs keys(PacketOf(in), "web");
  const bool isFirst = !body.hasBegun;
  if (Left(c) < 1) return;
  body.hasBegun = true;
  const Field whole = Ahead(c, Left(c));
  if (body.isCompressed && body.content != WebContent::kGrpc) {
    const bool isOpen = isWhole && isFirst && (body.isGzip || body.isDeflate);
    Cursor content = MakeCursor(nullptr, whole.offset, 0);
    if (isOpen) content = InflateInFrame(in, whole, body.isGzip ? Wrapping::kGzip : Wrapping::kZlib);
    if (Left(content) < 1) {
      AddBlock(in, Rest(c), "Encoded Content");
      return;
    }
    const DerivedLines derived(in.view);
    const Place under = Under(in, AddLine(in, whole, "Inflated Content: %d bytes", Left(content)));
    WebBody plain{body.content, false, false, false, false, 0};
    ShowWebBody(under, content, plain, true);
    Rest(c);
  } else if (body.content == WebContent::kGrpc) {
    ShowGrpc(in, c, body);
  } else if (body.content == WebContent::kText) {
    ShowText(in, c);
  } else if (isFirst && body.content == WebContent::kJson && StartsJson(c)) {
    ShowJson(Under(in, AddLine(in, whole, "JSON: %d bytes", whole.length)), c);
    SkipSpace(c);
  } else if (isFirst && body.content == WebContent::kXml && StartsXml(c)) {
    ShowXml(Under(in, AddLine(in, whole, "XML: %d bytes", whole.length)), c);
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
