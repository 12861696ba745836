// AJP version 1.3 (its public text): what a web server hands to the one behind it, requests, bodies and answers in packets.
//
//   0        2        4
//   12 34    length   code, or a body's chunk     to the container; "AB" in front from it
#include "core/elements.h"
#include "decoders/common/ahead_cut.h"
#include "decoders/common/header_lines.h"
#include "decoders/message_lengths.h"

namespace qxview {
namespace {

struct Ajp { Field magic, length, code, count; };

constexpr uint32_t kToContainer = 0x1234, kFromContainer = 0x4142;
constexpr int32_t kHeaderSize = 4;

constexpr auto kCodeNames = SortedNames({
    {2, "Forward Request"}, {3, "Send Body Chunk"}, {4, "Send Headers"}, {5, "End Response"}, {6, "Get Body Chunk"},
    {7, "Shutdown"}, {8, "Ping"}, {9, "CPong"}, {10, "CPing"}});
constexpr auto kMethodNames = SortedNames({
    {1, "OPTIONS"}, {2, "GET"}, {3, "HEAD"}, {4, "POST"}, {5, "PUT"}, {6, "DELETE"}, {7, "TRACE"}, {8, "PROPFIND"},
    {9, "PROPPATCH"}, {10, "MKCOL"}, {11, "COPY"}, {12, "MOVE"}, {13, "LOCK"}, {14, "UNLOCK"}, {15, "ACL"}, {16, "REPORT"},
    {17, "VERSION-CONTROL"}, {18, "CHECKIN"}, {19, "CHECKOUT"}, {20, "UNCHECKOUT"}, {21, "SEARCH"}, {22, "MKWORKSPACE"},
    {23, "UPDATE"}, {24, "LABEL"}, {25, "MERGE"}, {26, "BASELINE-CONTROL"}, {27, "MKACTIVITY"}});
constexpr auto kRequestHeaderNames = SortedNames({
    {0xA001, "Accept"}, {0xA002, "Accept-Charset"}, {0xA003, "Accept-Encoding"}, {0xA004, "Accept-Language"},
    {0xA005, "Authorization"}, {0xA006, "Connection"}, {0xA007, "Content-Type"}, {0xA008, "Content-Length"},
    {0xA009, "Cookie"}, {0xA00A, "Cookie2"}, {0xA00B, "Host"}, {0xA00C, "Pragma"}, {0xA00D, "Referer"},
    {0xA00E, "User-Agent"}});
constexpr auto kResponseHeaderNames = SortedNames({
    {0xA001, "Content-Type"}, {0xA002, "Content-Language"}, {0xA003, "Content-Length"}, {0xA004, "Date"},
    {0xA005, "Last-Modified"}, {0xA006, "Location"}, {0xA007, "Set-Cookie"}, {0xA008, "Set-Cookie2"},
    {0xA009, "Servlet-Engine"}, {0xA00A, "Status"}, {0xA00B, "WWW-Authenticate"}});
constexpr auto kAttributeNames = SortedNames({
    {1, "Context"}, {2, "Servlet Path"}, {3, "Remote User"}, {4, "Authentication Type"}, {5, "Query String"}, {6, "Route"},
    {7, "SSL Certificate"}, {8, "SSL Cipher"}, {9, "SSL Session"}, {10, "Request Attribute"}, {11, "SSL Key Size"},
    {12, "Secret"}, {13, "Stored Method"}, {255, "End of Attributes"}});

// The text's bytes with its length and the zero behind it; a length of 65535 stands for none.
struct AjpText { Field whole, text; };
AjpText TakeString(Cursor& c) {
  const uint32_t length = PeekU16(c);
  const int32_t size = length == 0xFFFF ? 2 : static_cast<int32_t>(length) + 3;
  const Field whole = AheadCut(c, size);
  const Cursor all = TakeCursor(c, size);
  const int32_t most = whole.length - 2 < 0 ? 0 : whole.length - 2, wanted = length == 0xFFFF ? 0 : static_cast<int32_t>(length);
  return {whole, PeekBytes(all, 2, most < wanted ? most : wanted)};
}

// The text with the zero behind it.
Field BehindLength(const AjpText& string) { return Slice(string.whole, 2, string.whole.length - 2); }

void ShowString(const Place& in, Cursor& c, const char* label, Ajp&) {
  if (Left(c) < 2) return;
  const AjpText string = TakeString(c);
  const Place under = Under(in, AddTextLine(in, string.whole, label, string.text));
  AddLine(under, Slice(string.whole, 0, 2), "Length: %u", PeekU16(string.whole));
  if (string.text.length > 0) AddTextLine(under, BehindLength(string), "Text", string.text);
}

constexpr auto kHeader = Rows<Ajp>({Hex(2, "Magic").Into(&Ajp::magic), Number(2, "Length").Into(&Ajp::length)});
constexpr auto kCode = Rows<Ajp>({Number(1, "Code", kCodeNames).Into(&Ajp::code)});
constexpr auto kRequest = Rows<Ajp>({
    Number(1, "Method", kMethodNames), Shown<Ajp>("Protocol", ShowString), Shown<Ajp>("Request URI", ShowString),
    Shown<Ajp>("Remote Address", ShowString), Shown<Ajp>("Remote Host", ShowString),
    Shown<Ajp>("Server Name", ShowString), Number(2, "Server Port"), Number(1, "Is SSL", kFalseTrueNames),
    Number(2, "Header Count").Into(&Ajp::count)});
constexpr auto kHeaders = Rows<Ajp>({
    Number(2, "Status"), Shown<Ajp>("Status Message", ShowString), Number(2, "Header Count").Into(&Ajp::count)});
constexpr auto kEnd = Rows<Ajp>({Number(1, "Reuse", kFalseTrueNames)});
constexpr auto kGetBody = Rows<Ajp>({Number(2, "Requested Length")});
constexpr auto kBody = Rows<Ajp>({Number(2, "Body Length").Into(&Ajp::count)});

// A name, in words or by its code, and a value.
template <class Names>
void ShowHeaderLines(const Place& at, Cursor& c, uint32_t count, const Names& names) {
  Loop loop;
  for (uint32_t i = 0; i < count && MoreAt(at, c, loop); ++i) {
    Cursor ahead = c;
    const bool isCoded = PeekU8(c) == 0xA0;
    const uint32_t code = PeekU16(c);
    const AjpText named = isCoded ? AjpText{TakeU16(ahead), {}} : TakeString(ahead);
    const Field name = isCoded ? named.whole : named.text;
    const AjpText value = TakeString(ahead);
    const Field whole = Ahead(c, ahead.offset - c.offset);
    Place in = at;
    if (isCoded) {
      in = Under(at, AddTextLine(at, whole, LookupName(names, code), value.text));   // keys: text Host, Cookie, Accept
      AddLine(in, name, "Header: 0x%04X = %s", code, LookupName(names, code));
    } else {
      in = Under(at, AddLine(at, whole, "Header: %s: %s", Text(name), Text(value.text)));
      AddLine(in, Slice(named.whole, 0, 2), "Name Length: %u", code);
      AddTextLine(in, BehindLength(named), "Name", name);
    }
    AddLine(in, Slice(value.whole, 0, 2), "Value Length: %u", PeekU16(value.whole));
    if (value.text.length > 0) AddTextLine(in, BehindLength(value), "Value", value.text);
    c = ahead;
  }
}

void ShowAttributes(const Place& at, Cursor& c, Ajp& ajp) {
  Loop loop;
  while (MoreAt(at, c, loop)) {
    const Field code = TakeU8(c);
    const Place in = Under(at, AddLine(at, code, "Attribute: %u = %s", code.value, LookupName(kAttributeNames, code.value)));
    if (code.value == 0xFF) break;
    if (code.value == 10) ShowString(in, c, "Name", ajp);
    if (code.value != 11) {
      ShowString(in, c, "Value", ajp);
      continue;
    }
    const Field size = TakeU16(c);
    AddLine(in, size, "Key Size: %u", size.value);
  }
}

void ShowBody(const Place& in, Cursor& c, Ajp& ajp) {
  ShowRows<Ajp>(in, c, kBody, ajp);
  Cursor body = TakeCursor(c, ajp.count.value);
  AddBlock(in, Rest(body), "Body");
  if (Left(c) == 1) AddLine(in, TakeU8(c), "Terminator");
}

bool IsChunk(const Cursor& c) {
  return PeekU16(c) == kToContainer && PeekU16(c, 2) > 2 && PeekU16(c, 4) == PeekU16(c, 2) - 2;
}

void ShowPacket(const Place& in, Cursor& c) {
  const bool isChunk = IsChunk(c);
  Ajp ajp = ShowRows(in, c, kHeader);
  Cursor body = TakeCursor(c, ajp.length.value);
  if (isChunk) return ShowBody(in, body, ajp);
  ShowRows<Ajp>(in, body, kCode, ajp);
  switch (ajp.code.value) {
    case 2:
      ShowRows<Ajp>(in, body, kRequest, ajp);
      ShowHeaderLines(in, body, ajp.count.value, kRequestHeaderNames);
      ShowAttributes(in, body, ajp);
      break;
    case 3: ShowBody(in, body, ajp); break;
    case 4:
      ShowRows<Ajp>(in, body, kHeaders, ajp);
      ShowHeaderLines(in, body, ajp.count.value, kResponseHeaderNames);
      break;
    case 5: ShowRows<Ajp>(in, body, kEnd, ajp); break;
    case 6: ShowRows<Ajp>(in, body, kGetBody, ajp); break;
    default: break;
  }
  body.ranShort = false;
  AddBlock(in, Rest(body), "Data");
}

bool StartsPacket(const Cursor& c) { return PeekU16(c) == kToContainer || PeekU16(c) == kFromContainer; }

}  // namespace

int32_t LengthOfAjp(const Cursor& c) {
  if (Left(c) < kHeaderSize) return 0;
  return StartsPacket(c) ? kHeaderSize + static_cast<int32_t>(PeekU16(c, 2)) : kNoMessage;
}

int32_t DecodeAjp(const Place& at, Cursor c) {
  if (Left(c) < kHeaderSize || !StartsPacket(c)) return 0;
  Loop loop;
  while (MoreAt(at, c, loop)) {
    if (Left(c) < kHeaderSize || !StartsPacket(c)) return AddRawRest(at, c, "AJP Data");
    const Field whole = AheadCut(c, kHeaderSize + static_cast<int32_t>(PeekU16(c, 2)));
    ShowPacket(Under(at, AddLine(at, whole, "AJP: %s", IsChunk(c) ? "Body Chunk" : LookupName(kCodeNames, PeekU8(c, 4)))), c);
  }
  return 1;
}

}  // namespace qxview
