// The headers of messages that have a structure (RFC 5322 3.4 and 3.6, RFC 2045, RFC 2183, RFC 6376): addresses, parameters,
// identifiers, the stations of a message's way.
#include <iterator>

#include "decoders/app/internet_message.h"
#include "decoders/common/transfer_text.h"

namespace qxview {
namespace {

template <size_t kCount>
bool IsAmong(const Field& name, const char* const (&names)[kCount]) {
  for (const char* each : names) {
    if (IsWord(name, each)) return true;
  }
  return false;
}

bool HoldsAddresses(const Field& name) {
  constexpr const char* kNames[] = {"From", "To", "Cc", "Bcc", "Sender", "Reply-To", "Return-Path", "Resent-From",
                                    "Resent-To", "Delivered-To", "Disposition-Notification-To", "Resent-Cc", "Resent-Bcc",
                                    "Resent-Sender", "Envelope-To", "X-Original-To", "Errors-To"};
  return IsAmong(name, kNames);
}

bool HoldsParameters(const Field& name) {
  constexpr const char* kNames[] = {"Content-Type", "Content-Disposition"};
  return IsAmong(name, kNames);
}

bool HoldsTags(const Field& name) {
  constexpr const char* kNames[] = {"DKIM-Signature", "ARC-Seal", "ARC-Message-Signature", "ARC-Authentication-Results",
                                    "Authentication-Results", "DomainKey-Signature", "Autocrypt"};
  return IsAmong(name, kNames);
}

bool HoldsIdentifiers(const Field& name) {
  constexpr const char* kNames[] = {"References", "In-Reply-To"};
  return IsAmong(name, kNames);
}

// How much of a list stands in front of the next `end` that is in no quotation marks and no brackets.
int32_t LengthUpTo(const Field& text, uint8_t end) {
  bool quoted = false;
  int32_t brackets = 0;
  for (int32_t at = 0; at < text.length; ++at) {
    const uint32_t c = PeekU8(text, at);
    if (quoted && c == '\\') ++at;
    else if (c == '"') quoted = !quoted;
    else if (!quoted && (c == '<' || c == '(')) ++brackets;
    else if (!quoted && brackets > 0 && (c == '>' || c == ')')) --brackets;
    else if (!quoted && brackets == 0 && (c == end || (end == ' ' && IsSpace(c)))) return at;   // a blank: any space
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
    if (open > 1) {
      const Field name = WithoutSpace(Slice(item, 0, open - 1));
      ShowEncodedWords(Under(under, AddTextLine(under, name, "Display Name")), name, "Decoded Name");
    }
    AddTextLine(under, Slice(item, open, close - open), "Address");
  }
}

void ShowParameters(const Place& in, Field rest) {
  AddTextLine(in, TakePiece(rest, ';'), "Type");
  Loop loop;
  while (rest.length > 0 && MoreAt(in, CursorOver(rest), loop)) {
    const Field parameter = TakePiece(rest, ';');
    if (parameter.length > 0) ShowEncodedWords(Under(in, AddTextLine(in, parameter, "Parameter")), parameter, "Decoded Parameter");
  }
}

void ShowTags(const Place& in, Field rest) {
  Loop loop;
  while (rest.length > 0 && MoreAt(in, CursorOver(rest), loop)) {
    const Field tag = TakePiece(rest, ';');
    if (tag.length > 0) AddTextLine(in, tag, "Tag");
  }
}

void ShowIdentifiers(const Place& in, Field rest) {
  Loop loop;
  while (rest.length > 0 && MoreAt(in, CursorOver(rest), loop)) {
    rest = WithoutSpace(rest);
    Field ahead = rest;
    const Field identifier = TakeWord(ahead, " \t\r\n");
    AddTextLine(in, identifier, "Message Identifier");
    rest = ahead;
  }
}

// "from a (b) by c with SMTP id d for <e>; date": a line for each clause.
void ShowStation(const Place& in, Field rest) {
  constexpr const char* kClauses[] = {"from", "by", "via", "with", "id", "for"};
  constexpr const char* kLabels[] = {"From", "By", "Via", "With", "Identifier", "For"};
  Field clauses = TakePiece(rest, ';');
  const char* label = nullptr;
  Field clause = Slice(clauses, 0, 0);
  Loop loop;
  while (clauses.length > 0 && MoreAt(in, CursorOver(clauses), loop)) {
    const int32_t before = clauses.length;
    const Field word = TakePiece(clauses, ' ');
    const char* next = nullptr;
    for (size_t i = 0; i < std::size(kClauses); ++i) {
      if (IsWord(word, kClauses[i])) next = kLabels[i];
    }
    if (next) {
      if (label) AddTextLine(in, WithoutSpace(clause), label);   // keys: text From, By, Via, With, Identifier, For
      label = next;
      clause = clauses;
      clause.length = 0;
    } else {
      clause.length += before - clauses.length;
    }
  }
  if (label) AddTextLine(in, WithoutSpace(clause), label);
  const Field time = WithoutSpace(rest);
  if (time.length > 0) AddTextLine(in, time, "Date");
}

// The value of a parameter without its quotation marks.
Field ParameterOf(Field rest, const char* name) {
  TakePiece(rest, ';');
  while (rest.length > 0) {
    Field parameter = TakePiece(rest, ';');
    const Field own = Trimmed(TakePiece(parameter, '='));
    if (!IsWord(own, name)) continue;
    if (PeekU8(parameter) != '"') return parameter;
    const int32_t close = FindU8(CursorOver(parameter), '"', 1);   // none: the header is cut
    return Slice(parameter, 1, (close < 0 ? parameter.length : close) - 1);
  }
  return {};
}

}  // namespace

void ShowMessageHeader(const Place& at, const HeaderLine& header, MimeEntity& entity) {
  const Place under = Under(at, ShowHeader(at, header));
  AddTextLine(under, header.name, "Name");
  const Place value = Under(under, AddTextLine(under, header.value, "Value"));
  if (HoldsAddresses(header.name)) {
    ShowAddresses(value, header.value);
  } else if (HoldsParameters(header.name)) {
    ShowParameters(value, header.value);
  } else if (HoldsTags(header.name)) {
    ShowTags(value, header.value);
  } else if (HoldsIdentifiers(header.name)) {
    ShowIdentifiers(value, header.value);
  } else if (IsWord(header.name, "Received")) {
    ShowStation(value, header.value);
  } else {
    ShowEncodedWords(value, header.value, "Decoded Text");
  }
  entity.isAtType = IsWord(header.name, "Content-Type");
  if (IsWord(header.name, "Content-Transfer-Encoding")) entity.encoding = header.value;
  if (!entity.isAtType) return;
  Field rest = header.value;
  entity.type = TakePiece(rest, ';');
  entity.boundary = ParameterOf(header.value, "boundary");
}

}  // namespace qxview
