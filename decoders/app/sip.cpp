// Session Initiation Protocol (RFC 3261, with the headers of RFC 3262, 3265, 3311, 3325, 3326, 3327, 3515, 3608, 3903, 4028,
// 6665 and others): who calls whom, how, and what became of it. Messages over UDP, one after the other over TCP.
#include "decoders/app/sip_headers.h"
#include "decoders/asn1/cms.h"
#include "decoders/common/header_lines.h"
#include "decoders/common/header_values.h"
#include "decoders/common/json_lines.h"
#include "decoders/common/xml_lines.h"

namespace qxview {

int32_t DecodeSdp(const Place& at, Cursor c);

namespace {

struct Sip {
  Field type, method, callId;
  int32_t length = -1;   // of the body; -1: not told
};

bool IsHeader(const Field& name, const char* word, const char* compact) {
  return IsWord(name, word) || (compact && IsWord(name, compact));
}

void NoteHeader(Sip& sip, const Field& name, const Field& value) {
  if (IsHeader(name, "Content-Type", "c")) sip.type = value;
  if (IsHeader(name, "Content-Length", "l")) sip.length = DecimalOf(value);
  if (IsHeader(name, "CSeq", nullptr)) {
    Field rest = value;
    TakeWord(rest);
    sip.method = TakeWord(rest);
  }
}

Sip ReadHeaders(Cursor c) {
  Sip sip{};
  HeaderLine header;
  Loop loop;
  while (More(c, loop) && TakeHeader(c, header)) NoteHeader(sip, header.name, header.value);
  return sip;
}

// A message or its beginning that another one carries (RFC 3420): the answer to a reference, as a rule.
void ShowFragment(const Place& in, Cursor& body) {
  StartLine first;
  if (TakeStartLine(body, "SIP/", first)) ShowStartLine(in, first);
  HeaderLine header;
  Loop loop;
  while (MoreAt(in, body, loop) && TakeHeader(body, header)) {
    const SipHeader* row = FindSipHeader(header.name);
    const Place under = Under(in, ShowHeader(in, header));
    if (row) ShowSipHeader(under, *row, header);
  }
  ShowEndOfHeaders(in, body);
}

void ShowBody(const Place& at, const Place& in, Cursor& body, const Field& type, int32_t depth);

// The parts of a multipart body stand between lines of two dashes and the boundary (RFC 2046 5.1).
void ShowParts(const Place& at, const Place& in, Cursor& body, const Field& boundary, int32_t depth) {
  const auto isBoundary = [&boundary](const Field& line) {
    if (line.length < boundary.length + 2 || PeekU16(line) != 0x2D2D) return false;
    int32_t at = 0;
    while (at < boundary.length && PeekU8(line, 2 + at) == PeekU8(boundary, at)) ++at;
    return at == boundary.length;
  };
  TextLine line;
  Loop loop;
  while (MoreAt(in, body, loop) && TakeLine(body, line)) {
    const bool isEnd = isBoundary(line.text) && PeekU16(line.text, boundary.length + 2) == 0x2D2D;
    if (!isBoundary(line.text) || isEnd) {
      if (line.text.length > 0) AddTextLine(in, line.whole, isEnd ? "End of Parts" : "Text", line.text);
      continue;
    }
    AddTextLine(in, line.whole, "Boundary", line.text);
    Cursor ahead = body;
    int32_t length = 0;
    TextLine each;
    Loop lines;
    while (More(ahead, lines) && TakeLine(ahead, each) && !isBoundary(each.text)) length = ahead.offset - body.offset;
    Cursor part = TakeCursor(body, length);
    const Place under = Under(in, AddLine(in, Ahead(part, length), "Body Part"));
    Field type{};
    HeaderLine header;
    Loop headers;
    while (MoreAt(under, part, headers) && TakeHeader(part, header)) {
      const SipHeader* row = FindSipHeader(header.name);
      const Place value = Under(under, ShowHeader(under, header));
      if (row) ShowSipHeader(value, *row, header);
      if (IsHeader(header.name, "Content-Type", "c")) type = header.value;
    }
    ShowEndOfHeaders(under, part);
    ShowBody(at, under, part, type, depth + 1);
  }
}

void ShowBody(const Place& at, const Place& in, Cursor& body, const Field& type, int32_t depth) {
  if (Left(body) == 0) return;
  if (StartsWithWord(type, "application/sdp")) {
    CallDecoder(Deeper(at), body, DecodeSdp, "SDP Data");
    return;
  }
  const Place under = Under(in, AddLine(in, Ahead(body, Left(body)), "Message Body"));
  const Field boundary = StartsWithWord(type, "multipart/") ? ParameterOf(type, "boundary") : Field{};
  const bool hasParts = boundary.here && boundary.length > 0;
  if (hasParts && depth >= kDeepestSipParts) return (void)AddBlock(under, Rest(body), "Nested Parts");
  if (hasParts) {
    ShowParts(at, under, body, boundary, depth);
  } else if (StartsWithWord(type, "application/pkcs7-") && PeekU8(body) == kAsnSequence) {
    ShowCms(under, body, {});
  } else if (StartsXml(body)) {
    ShowXml(under, body);
  } else if (StartsJson(body)) {
    ShowJson(under, body);
  } else if (StartsWithWord(type, "message/sip") && depth < kDeepestSipParts) {
    ShowFragment(under, body);
  } else if (StartsWithWord(type, "text/") || StartsWithWord(type, "message/") || StartsWithWord(type, "application/dtmf")) {
    TextLine line;
    Loop loop;
    while (MoreAt(under, body, loop) && TakeLine(body, line)) AddTextLine(under, line.whole, "Text", line.text);
  }
  AddBlock(under, Rest(body), "Body Data");
}

bool DecodeMessage(const Place& at, Cursor& c) {
  const Cursor start = c;
  StartLine first;
  if (!TakeStartLine(c, "SIP/", first)) return false;
  const Sip sip = ReadHeaders(c);
  const LineHandle line =
      first.isRequest ? AddLine(at, Ahead(start, Left(start)), "SIP: %s %s", Text(first.method), Text(first.target))
                      : AddLine(at, Ahead(start, Left(start)), "SIP: %s %s", Text(first.code), Text(first.phrase));
  if (!first.isRequest && sip.method.here) AppendToLine(at, line, " (%s)", Text(sip.method));
  const Place in = Under(at, line);
  const Place parts = ShowStartLine(in, first);
  if (first.isRequest) ShowSipUri(parts, first.target);
  HeaderLine header;
  Loop loop;
  const bool passes = NobodyWants(in);   // what the body announces is kept
  while (passes && More(c, loop) && TakeHeader(c, header)) {
  }
  while (!passes && MoreAt(in, c, loop) && TakeHeader(c, header)) {
    const SipHeader* row = FindSipHeader(header.name);
    const Place under = Under(in, ShowHeader(in, header, row && header.name.length == 1 ? row->name : nullptr));
    if (row) ShowSipHeader(under, *row, header);
  }
  ShowEndOfHeaders(in, c);
  Cursor body = TakeCursor(c, sip.length >= 0 && sip.length < Left(c) ? sip.length : Left(c));
  if (!in.dead) SetRange(in, in.parent, start.offset, c.offset - start.offset);
  ShowBody(at, in, body, sip.type, 0);
  return true;
}

}  // namespace

int32_t DecodeSip(const Place& at, Cursor c) {
  int32_t messages = 0;
  Loop loop;
  while (MoreAt(at, c, loop)) {
    Cursor next = c;
    SkipSpace(next);   // keep-alives, and line ends between messages
    if (!DecodeMessage(at, next)) break;
    c = next;
    ++messages;
  }
  if (messages == 0) {
    Cursor blank = c;
    SkipSpace(blank);
    if (Left(c) == 0 || Left(blank) > 0) return 0;
    AddLine(at, Ahead(c, Left(c)), "SIP: Keep-Alive");
    return 1;
  }
  AddRawRest(at, c, "SIP Data");
  return 1;
}

}  // namespace qxview
