#include "decoders/app/internet_message.h"

#include "decoders/app/web_body.h"
#include "decoders/asn1/cms.h"
#include "decoders/asn1/x509.h"
#include "decoders/common/text_lines.h"
#include "decoders/common/transfer_text.h"

namespace qxview {
namespace {

constexpr uint8_t kInHeaders = 1, kInBody = 2;
constexpr uint8_t kPlain = 0, kQuotedPrintable = 1, kBase64 = 2;

// How a body ends, and how it goes on in the segments behind.
struct Body {
  MessageEnd end;
  bool isEnded;
  StreamNote note;
};

uint8_t EncodingOf(const Field& name) {
  return IsWord(name, "quoted-printable") ? kQuotedPrintable : IsWord(name, "base64") ? kBase64 : kPlain;
}

bool IsDot(const Field& line) { return line.length == 1 && PeekU8(line) == '.'; }

// "--boundary" or "--boundary--".
bool IsBoundary(const Field& line, const Field& boundary) {
  const int32_t length = boundary.length;
  if (!boundary.here || length == 0 || line.length < length + 2 || !StartsWithText(CursorOver(line), "--")) return false;
  for (int32_t i = 0; i < length; ++i) {
    if (PeekU8(line, i + 2) != PeekU8(boundary, i)) return false;
  }
  return true;
}

// How far the next line stands that is a boundary or ends the message.
int32_t LengthOfPart(Cursor c, const Field& boundary, bool takesDot) {
  const int32_t start = c.offset;
  TextLine line;
  while (Left(c) > 0) {
    const int32_t at = c.offset - start;
    TakeLine(c, line);
    if (IsBoundary(line.text, boundary) || (takesDot && IsDot(line.text))) return at;
  }
  return c.offset - start;
}

void ShowEntity(const Place& in, Cursor& c, Body& body, int32_t depth);

// The entity that was signed or compressed.
void ShowSignedEntity(const Place& in, Cursor& c, int32_t depth) {
  Body inner{};
  ShowEntity(in, c, inner, depth + 1);
}

// Signed and enveloped messages, signatures and certificates (S/MIME, RFC 8551); false for other types, and for what is no DER.
bool ShowSecured(const Place& in, Cursor& c, const Field& type, int32_t depth) {
  constexpr const char* kMessages[] = {"application/pkcs7-mime", "application/x-pkcs7-mime", "application/pkcs7-signature",
                                       "application/x-pkcs7-signature"};
  constexpr const char* kCertificates[] = {"application/pkix-cert", "application/x-x509-ca-cert"};
  if (PeekU8(c) != kAsnSequence) return false;
  for (const char* each : kCertificates) {
    if (IsWord(type, each)) return ShowX509Certificate(in, c), true;
  }
  for (const char* each : kMessages) {
    if (IsWord(type, each)) return ShowCms(in, c, {ShowSignedEntity, depth, nullptr}), true;
  }
  return false;
}

// JSON, XML and pictures as what they are; false for other types.
bool ShowStructured(const Place& in, Cursor& c, const Field& type, bool isBinary) {
  WebBody body{};
  body.content = type.here ? WebContentOf(Text(type)) : WebContent::kUnknown;
  const bool isImage = body.content == WebContent::kImage && isBinary;
  if (!isImage && body.content != WebContent::kJson && body.content != WebContent::kXml) return false;
  ShowWebBody(in, c, body, true);
  return true;
}

void ShowBase64(const Place& at, Cursor& c, const MimeEntity& entity, int32_t depth) {
  const Field text = Rest(c);
  if (!text.here) return;
  Cursor octets = DecodeBase64(at, text);
  const Place in = Under(at, AddLine(at, text, "Content: %u bytes in base64", static_cast<uint32_t>(Left(octets))));
  const DerivedLines derived(at.view);
  Body inner{};
  if (IsWord(entity.type, "message/rfc822")) return ShowEntity(in, octets, inner, depth + 1);
  if (ShowSecured(in, octets, entity.type, depth)) return;
  if (ShowStructured(in, octets, entity.type, true)) return;
  if (StartsWithWord(entity.type, "text/") || IsReadable(octets)) return ShowLinesOfText(in, octets, "Text");
  AddBlock(in, Rest(octets), "Decoded Data");
}

// "begin 644 name", lines of up to 45 octets each, "end".
bool StartsUuencoded(const Field& line) {
  return line.length > 10 && StartsWithText(CursorOver(line), "begin ") && DecimalOf(Slice(line, 6, 3)) >= 0 && PeekU8(line, 9) == ' ';
}

void ShowUuencoded(const Place& at, const TextLine& begin, Cursor& c) {
  const Cursor start = c;
  uint8_t* const octets = TakeFrameMemory(at.view, Left(c));
  int32_t used = 0;
  TextLine line;
  Cursor next = c;
  while (octets && TakeLine(next, line) && !IsWord(line.text, "end") && PeekU8(line.text) >= ' ' && PeekU8(line.text) <= '`') {
    used += ReadUuLine(line.text, octets + used, Left(start) - used);
    c = next;
  }
  const Field text = Ahead(start, c.offset - start.offset);
  AddTextLine(at, begin.whole, "Encoded File", Slice(begin.text, 10, begin.text.length - 10));
  if (text.length == 0) return;
  const Place in = Under(at, AddLine(at, text, "Content: %u bytes in uuencode", static_cast<uint32_t>(used)));
  const DerivedLines derived(at.view);
  Cursor decoded = MakeCursor(octets, text.offset, used);
  if (IsReadable(decoded)) ShowLinesOfText(in, decoded, "Text");
  else AddBlock(in, Rest(decoded), "Decoded Data");
}

void ShowPlain(const Place& in, Cursor& c, uint8_t encoding) {
  TextLine line;
  Loop loop;
  while (MoreAt(in, c, loop) && TakeLine(c, line)) {
    if (encoding == kPlain && StartsUuencoded(line.text)) {
      ShowUuencoded(in, line, c);
      continue;
    }
    if (encoding != kQuotedPrintable) {
      AddTextLine(in, line.whole, "Text", line.text);
      continue;
    }
    uint8_t octets[kLineSize];
    const int32_t used = ReadQuotedPrintable(line.text, false, octets, kLineSize);
    AddTextLine(in, line.whole, "Text", Field{octets, line.whole.offset, used, 0, true});
  }
}

// The line end in front of a boundary belongs to it (RFC 2046 5.1.1).
Field WithLineEnd(const Field& all, const Field& line) {
  constexpr uint32_t kLineEnd = 0x0D0A;
  const int32_t at = line.offset - all.offset;
  return at >= 2 && PeekU16(all, at - 2) == kLineEnd ? Slice(all, at - 2, line.length + 2) : line;
}

void ShowParts(const Place& in, Cursor& c, const Field& boundary, Body& body, int32_t depth) {
  const Field all = Ahead(c, Left(c));
  TextLine line;
  Loop loop;
  while (MoreAt(in, c, loop)) {
    Cursor next = c;
    if (!TakeLine(next, line) || !IsBoundary(line.text, boundary)) {
      Cursor text = TakeCursor(c, LengthOfPart(c, boundary, false));
      ShowPlain(in, text, body.note.detail);
      continue;
    }
    c = next;
    const int32_t behind = boundary.length + 2;
    const bool isLast = line.text.length >= behind + 2 && PeekU8(line.text, behind) == '-';
    AddTextLine(in, WithLineEnd(all, line.whole), isLast ? "Last Boundary" : "Boundary", line.text);
    Cursor part = TakeCursor(c, LengthOfPart(c, boundary, false));
    if (Left(part) == 0) continue;
    if (isLast) ShowPlain(in, part, kPlain);
    else ShowEntity(Under(in, AddLine(in, Ahead(part, Left(part)), "Part")), part, body, depth + 1);
  }
}

// Bodies that are groups of headers: what was delivered and displayed, and headers that come back alone (RFC 3464, 8098, 6522).
bool HoldsFields(const Field& type) {
  constexpr const char* kTypes[] = {"message/delivery-status", "message/disposition-notification", "message/feedback-report",
                                    "text/rfc822-headers", "message/global-delivery-status", "message/global-headers"};
  for (const char* each : kTypes) {
    if (IsWord(type, each)) return true;
  }
  return false;
}

void ShowFieldGroups(const Place& in, Cursor& c) {
  MimeEntity unused{};
  Loop loop;
  while (MoreAt(in, c, loop)) {
    HeaderLine header;
    TextLine line;
    if (TakeHeader(c, header)) ShowMessageHeader(in, header, unused);
    else if (TakeLine(c, line)) AddTextLine(in, line.whole, line.text.length ? "Text" : "Empty Line", line.text);
  }
}

// Structures that are quoted, or stand as they are.
bool ShowQuotedStructure(const Place& in, Cursor& c, const Field& type, uint8_t encoding) {
  if (encoding != kQuotedPrintable) return ShowStructured(in, c, type, false);
  const WebContent content = type.here ? WebContentOf(Text(type)) : WebContent::kUnknown;
  if (content != WebContent::kJson && content != WebContent::kXml) return false;
  const Field text = Rest(c);
  Cursor octets = DecodeQuotedPrintable(in, text);
  const Place under = Under(in, AddLine(in, text, "Content: %u bytes in quoted-printable", static_cast<uint32_t>(Left(octets))));
  const DerivedLines derived(in.view);
  return ShowStructured(under, octets, type, false);
}

// A body whose end is known, or the part of it that is here.
void ShowBody(const Place& in, Cursor& c, const MimeEntity& entity, Body& body, int32_t depth) {
  body.note.phase = kInBody;
  body.note.detail = EncodingOf(entity.encoding);
  if (depth > kDeepestMail) {
    AddLine(in, Rest(c), "Parts nest too deeply to be shown");
  } else if (entity.boundary.length > 0) {
    PutText(body.note, entity.boundary);
    ShowParts(in, c, entity.boundary, body, depth);
    PutText(body.note, entity.boundary);
  } else if (body.note.detail == kBase64) {
    ShowBase64(in, c, entity, depth);
  } else if (ShowSecured(in, c, entity.type, depth)) {
    return;
  } else if (ShowQuotedStructure(in, c, entity.type, body.note.detail)) {
    return;
  } else if (HoldsFields(entity.type)) {
    ShowFieldGroups(in, c);
  } else if (IsWord(entity.type, "message/rfc822") || IsWord(entity.type, "message/global")) {
    ShowEntity(Under(in, AddLine(in, Ahead(c, Left(c)), "Internet Message")), c, body, depth + 1);
  } else {
    ShowPlain(in, c, body.note.detail);
  }
}

void ShowHeadersOf(const Place& at, Cursor& c, MimeEntity& entity, Body& body, LineHandle title) {
  HeaderLine header;
  Loop loop;
  while (MoreAt(at, c, loop) && TakeHeader(c, header)) {
    ShowMessageHeader(at, header, entity);
    if (title && IsWord(header.name, "Subject")) AppendToLine(at, title, ", Subject: %s", Text(header.value));
  }
  const bool isCut = Left(c) > 0 && FindU8(c, '\n') < 0;   // in front of its colon
  if (isCut) AddTextLine(at, Rest(c), "Header, Cut");
  body.note.phase = Left(c) > 0 ? kInBody : kInHeaders;
  PutText(body.note, entity.boundary);
  body.note.detail = entity.isAtType;
  ShowEndOfHeaders(at, c);
}

void ShowEntity(const Place& in, Cursor& c, Body& body, int32_t depth) {
  MimeEntity entity{};
  ShowHeadersOf(in, c, entity, body, 0);
  if (Left(c) > 0) ShowBody(in, c, entity, body, depth);
}

// The body up to its end.
void ShowToEnd(const Place& at, Cursor& c, const MimeEntity& entity, Body& body) {
  Cursor text = TakeCursor(c, body.end.takesDot ? LengthOfPart(c, {}, true) : Left(c));
  if (Left(text) > 0) ShowBody(at, text, entity, body, 0);
  TextLine line;
  if (!body.end.takesDot || !TakeLine(c, line)) return;
  AddLine(at, line.whole, "End of Message");
  body.isEnded = true;
}

void NoteRest(const Place& at, const Cursor& c, const Cursor& before, Body& body) {
  if (body.isEnded || Left(c) > 0 || (body.end.isCounted && body.end.lacking == 0)) return;
  const int32_t size = c.offset - before.offset;
  body.note.isMidLine = size > 0 && PeekU8(before, size - 1) != '\n';
  body.note.lacking = body.end.lacking;
  LeaveNote(at, c, body.note);
}

// The line that an earlier segment's headers ended in, or one that is folded behind them. A boundary that was cut goes on in it.
void ShowHeaderRest(const Place& at, Cursor& c, StreamNote& note) {
  TextLine line;
  Cursor next = c;
  const bool isFolded = PeekU8(c) == ' ' || PeekU8(c) == '\t';
  if ((!note.isMidLine && !isFolded) || !TakeLine(next, line)) return;
  AddTextLine(at, line.whole, "Rest of Header", line.text);
  const int32_t end = FindU8(CursorOver(line.text), '"');
  if (note.isMidLine && note.detail && end >= 0 && note.textLength > 0) AppendText(note, Slice(line.text, 0, end));
  c = next;
}

void ShowWhole(const Place& in, Cursor& c, const MessageEnd& end, StreamNote note, const char* name) {
  constexpr uint8_t kQuotedPrintableName[] = {'q', 'u', 'o', 't', 'e', 'd', '-', 'p', 'r', 'i', 'n', 't', 'a', 'b', 'l', 'e'};
  Body body{end, false, note};
  MimeEntity entity{};
  const Cursor before = c;
  // keys: none Internet Message, Continued Message, Counted Octets
  const LineHandle title = AddLine(in, Ahead(c, Left(c)), "%s", name);
  const Place at = Under(in, title);
  if (note.phase == kInHeaders) ShowHeaderRest(at, c, note);
  entity.boundary = TextOf(note);
  if (note.phase == kInBody) {
    if (note.detail == kQuotedPrintable) entity.encoding = {kQuotedPrintableName, 0, sizeof kQuotedPrintableName, 0, true};
  } else {
    ShowHeadersOf(at, c, entity, body, title);
  }
  ShowToEnd(at, c, entity, body);
  NoteRest(in, c, before, body);
  if (!at.dead) SetRange(in, title, before.offset, c.offset - before.offset);
}

}  // namespace

bool StartsInternetMessage(const Cursor& c) {
  constexpr const char* kFirst[] = {"Return-Path", "Received", "Delivered-To", "From", "To", "Subject", "Date", "Message-ID",
                                    "MIME-Version", "Content-Type", "X-Mailer", "Path", "Newsgroups"};
  Cursor next = c;
  HeaderLine first, second;
  if (!TakeHeader(next, first)) return false;
  for (const char* each : kFirst) {
    if (IsWord(first.name, each)) return true;
  }
  return TakeHeader(next, second);
}

void ShowMessageText(const Place& in, Cursor& c, const MessageEnd& end) {
  Body body{end, false, {}};
  const Cursor before = c;
  ShowToEnd(in, c, {}, body);
  body.note.phase = kInBody;
  NoteRest(in, c, before, body);
}

void ShowInternetMessage(const Place& in, Cursor& c, const MessageEnd& end) {
  ShowWhole(in, c, end, {}, "Internet Message");
}

bool ShowMessageRest(const Place& in, Cursor& c) {
  const StreamNote note = RecallNote(in, c);
  if (note.phase == 0) return false;
  if (note.lacking == 0) {
    ShowWhole(in, c, kAtDot, note, "Continued Message");
    return true;
  }
  Cursor counted = TakeCursor(c, note.lacking);
  ShowWhole(in, counted, {false, true, note.lacking - static_cast<uint32_t>(Left(counted))}, note, "Counted Octets");
  return true;
}

}  // namespace qxview
