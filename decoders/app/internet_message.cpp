// Internet message format (RFC 5322) with the headers of MIME (RFC 2045, 2183) and of netnews: what mail protocols carry.
#include "decoders/app/internet_message.h"

#include "decoders/common/header_lines.h"

namespace qxview {
namespace {

bool HoldsAddresses(const Field& name) {
  constexpr const char* kNames[] = {"From", "To", "Cc", "Bcc", "Sender", "Reply-To", "Return-Path", "Resent-From",
                                    "Resent-To", "Delivered-To", "Disposition-Notification-To"};
  for (const char* each : kNames) {
    if (IsWord(name, each)) return true;
  }
  return false;
}

bool HoldsParameters(const Field& name) { return IsWord(name, "Content-Type") || IsWord(name, "Content-Disposition"); }

// How much of a list stands in front of the next `end` that is in no quotation marks and no brackets.
int32_t LengthUpTo(const Field& text, uint8_t end) {
  bool quoted = false;
  int32_t brackets = 0;
  for (int32_t at = 0; at < text.length; ++at) {
    const uint8_t c = PeekU8(text, at);
    if (quoted && c == '\\') ++at;
    else if (c == '"') quoted = !quoted;
    else if (!quoted && (c == '<' || c == '(')) ++brackets;
    else if (!quoted && brackets > 0 && (c == '>' || c == ')')) --brackets;
    else if (!quoted && brackets == 0 && c == end) return at;
  }
  return text.length;
}

Field WithoutSpace(Field text) {
  while (text.length > 0 && IsSpace(PeekU8(text))) text = Slice(text, 1, text.length - 1);
  while (text.length > 0 && IsSpace(PeekU8(text, text.length - 1))) text = Slice(text, 0, text.length - 1);
  return text;
}

Field TakePiece(Field& rest, uint8_t end) {
  const int32_t length = LengthUpTo(rest, end);
  const Field piece = WithoutSpace(Slice(rest, 0, length));
  const int32_t behind = length < rest.length ? length + 1 : length;
  rest = Slice(rest, behind, rest.length - behind);
  return piece;
}

// "Name" <local@domain>, each of a list.
void ShowAddresses(const Place& in, Field rest) {
  Loop loop;
  while (rest.length > 0 && MoreAt(in, CursorOver(rest), loop)) {
    const Field item = TakePiece(rest, ',');
    if (item.length == 0) continue;
    const Place under = Under(in, AddTextLine(in, item, "Mailbox"));
    int32_t open = item.length;
    while (open > 0 && PeekU8(item, open - 1) != '<') --open;
    const int32_t close = item.length - (PeekU8(item, item.length - 1) == '>');
    if (open > 1) AddTextLine(under, WithoutSpace(Slice(item, 0, open - 1)), "Display Name");
    AddTextLine(under, Slice(item, open, close - open), "Address");
  }
}

void ShowParameters(const Place& in, Field rest) {
  AddTextLine(in, TakePiece(rest, ';'), "Type");
  Loop loop;
  while (rest.length > 0 && MoreAt(in, CursorOver(rest), loop)) {
    const Field parameter = TakePiece(rest, ';');
    if (parameter.length > 0) AddTextLine(in, parameter, "Parameter");
  }
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

void ShowMessageText(const Place& in, Cursor& c, bool takesDot) {
  TextLine line;
  Loop loop;
  while (MoreAt(in, c, loop) && TakeLine(c, line)) {
    if (takesDot && line.text.length == 1 && PeekU8(line.text) == '.') {
      AddLine(in, line.whole, "End of Message");
      return;
    }
    AddTextLine(in, line.whole, "Text", line.text);
  }
}

void ShowInternetMessage(const Place& in, Cursor& c, bool takesDot) {
  const int32_t start = c.offset;
  const LineHandle title = AddLine(in, Ahead(c, Left(c)), "Internet Message");
  const Place at = Under(in, title);
  HeaderLine header;
  Loop loop;
  while (MoreAt(at, c, loop) && TakeHeader(c, header)) {
    const Place under = Under(at, ShowHeader(at, header));
    AddTextLine(under, header.name, "Name");
    const Place value = Under(under, AddTextLine(under, header.value, "Value"));
    if (HoldsAddresses(header.name)) ShowAddresses(value, header.value);
    if (HoldsParameters(header.name)) ShowParameters(value, header.value);
    if (IsWord(header.name, "Subject")) AppendToLine(in, title, ", Subject: %s", Text(header.value));
  }
  ShowEndOfHeaders(at, c);
  ShowMessageText(at, c, takesDot);
  if (!at.dead) SetRange(in, title, start, c.offset - start);
}

}  // namespace qxview
