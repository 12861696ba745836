// The headers of messages that have a structure (RFC 5322 3.4 and 3.6, RFC 2045, RFC 2183, RFC 6376): addresses, parameters,
// identifiers, the stations of a message's way.
#include <iterator>

#include "decoders/app/internet_message.h"
#include "decoders/common/header_lines.h"
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
  constexpr const char* kNames[] = {"References", "In-Reply-To", "Message-ID", "Content-ID", "Resent-Message-ID", "Original-Message-ID"};
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

// local@domain, of which the first may stand in quotation marks and hold an "@", too.
void ShowParts(const Place& in, const Field& text, const char* first) {
  int32_t at = text.length - 1;
  while (at >= 0 && PeekU8(text, at) != '@') --at;
  if (at < 1 || at + 1 >= text.length) return;
  AddTextLine(in, Slice(text, 0, at), first);
  AddTextLine(in, Slice(text, at + 1, text.length - at - 1), "Domain");
}

void ShowAddress(const Place& in, const Field& address) {
  const Place under = Under(in, AddTextLine(in, address, "Address"));
  const Cursor c = CursorOver(address);
  const int32_t open = FindU8(c, '('), close = open < 0 ? -1 : FindU8(c, ')', open);
  ShowParts(under, open < 0 ? address : WithoutSpace(Slice(address, 0, open)), "Local Part");
  if (close > open + 1) AddTextLine(under, Slice(address, open + 1, close - open - 1), "Comment");
}

// "Fri, 02 Jan 2026 03:04:05 +0000 (UTC)" (RFC 5322 3.3).
void ShowDate(const Place& in, Field rest) {
  constexpr const char* kLabels[] = {"Day", "Month", "Year", "Time", "Zone"};
  Field word = TakeWord(rest, " \t\r\n");
  if (word.length > 1 && PeekU8(word, word.length - 1) == ',') {
    AddTextLine(in, Slice(word, 0, word.length - 1), "Day of Week");
    word = TakeWord(rest, " \t\r\n");
  }
  if (DecimalOf(word) < 0) return;
  for (size_t i = 0; i < std::size(kLabels) && word.length > 0; ++i) {
    AddTextLine(in, word, kLabels[i]);   // keys: text Day, Month, Year, Time, Zone
    word = TakeWord(rest, " \t\r\n");
  }
  if (word.length > 0) AddTextLine(in, word, "Zone Name");
}

// "Name" <local@domain>, each of a list.
void ShowAddresses(const Place& in, Field rest) {
  Loop loop;
  while (rest.length > 0 && MoreAt(in, rest, loop)) {
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
    ShowAddress(under, Slice(item, open, close - open));
  }
}

// "utf-8'en'%c2%a3 rates": octets of an extended value behind its character set and language, which the first section has
// (RFC 2231 4).
void ShowExtendedValue(const Place& in, const Field& value, bool isFirst) {
  constexpr int32_t kMost = 400;
  const Cursor c = CursorOver(value);
  const int32_t set = isFirst ? FindU8(c, '\'') : -1, language = set < 0 ? -1 : FindU8(c, '\'', set + 1);
  if (language >= 0) {
    if (set > 0) AddTextLine(in, Slice(value, 0, set), "Character Set");
    if (language > set + 1) AddTextLine(in, Slice(value, set + 1, language - set - 1), "Language");
  }
  uint8_t octets[kMost];
  const Field text = Slice(value, language + 1, value.length - language - 1);
  const int32_t used = ReadPercentText(text, octets, kMost);
  AddTextLine(in, text, "Decoded Value", Field{octets, text.offset, used, 0, true});
}

// name=value; name*=charset'language'octets; name*0*=, name*1= ... of one that is divided.
// `whole`: with the blanks in front.
void ShowParameter(const Place& at, const Field& whole, const Field& parameter) {
  const Place in = Under(at, AddTextLine(at, whole, "Parameter", parameter));
  ShowEncodedWords(in, parameter, "Decoded Parameter");
  Field value = parameter;
  Field name = Trimmed(TakePiece(value, '='));
  if (value.length == 0) return;
  const bool isExtended = name.length > 1 && PeekU8(name, name.length - 1) == '*';
  AddTextLine(in, name, "Parameter Name");
  value = Trimmed(value);
  if (PeekU8(value) == '"') value = Slice(value, 1, value.length - 1 - (PeekU8(value, value.length - 1) == '"' && value.length > 1));
  const Place under = Under(in, AddTextLine(in, value, "Parameter Value"));
  if (isExtended) name.length -= 1;
  const int32_t star = FindU8(CursorOver(name), '*');
  const int32_t section = star < 0 ? 0 : DecimalOf(Slice(name, star + 1, name.length - star - 1));
  if (star >= 0 && section >= 0) AddLine(in, Slice(name, star + 1, name.length - star - 1), "Section: %u", static_cast<uint32_t>(section));
  if (isExtended) ShowExtendedValue(under, value, section == 0);
}

void ShowParameters(const Place& in, const Field& value) {
  Field rest = value;
  AddTextLine(in, TakePiece(rest, ';'), "Type");
  Loop loop;
  while (rest.length > 0 && MoreAt(in, rest, loop)) {
    const int32_t start = rest.offset - value.offset;
    const Field parameter = TakePiece(rest, ';');
    const int32_t end = parameter.offset + parameter.length - value.offset;
    if (parameter.length > 0) ShowParameter(in, Slice(value, start, end - start), parameter);
  }
}

// Tags of signatures (RFC 6376 3.5, RFC 8617 4.1).
constexpr struct { const char* tag; const char* name; } kTagNames[] = {
    {"v", "Version"}, {"a", "Signing Algorithm"}, {"b", "Signature"}, {"bh", "Body Hash"}, {"c", "Canonicalization"},
    {"d", "Signing Domain"}, {"h", "Signed Headers"}, {"i", "Agent or Instance"}, {"l", "Body Length"}, {"q", "Query Methods"},
    {"s", "Selector"}, {"t", "Signed At"}, {"x", "Expires At"}, {"z", "Copied Headers"}, {"cv", "Chain Validation"},
    {"addr", "Address"}, {"prefer-encrypt", "Encryption Preference"}, {"keydata", "Key"}};

void ShowTags(const Place& in, Field rest) {
  Loop loop;
  while (rest.length > 0 && MoreAt(in, rest, loop)) {
    const Field tag = TakePiece(rest, ';');
    if (tag.length == 0) continue;
    const Place under = Under(in, AddTextLine(in, tag, "Tag"));
    Field value = tag;
    const Field name = Trimmed(TakePiece(value, '='));
    if (value.length == 0) continue;
    const char* label = "Tag Value";
    for (const auto& each : kTagNames) {
      if (IsWord(name, each.tag)) label = each.name;
    }
    AddTextLine(under, name, "Tag Name");
    // keys: text Tag Value, Version, Signing Algorithm, Signature, Body Hash, Canonicalization, Signing Domain, Signed Headers
    // keys: text Agent or Instance, Body Length, Query Methods, Selector, Signed At, Expires At, Copied Headers, Chain Validation
    // keys: text Address, Encryption Preference, Key
    AddTextLine(under, Trimmed(value), label);
  }
}

// <left@right>, or several.
void ShowIdentifiers(const Place& in, Field rest) {
  Loop loop;
  while (rest.length > 0 && MoreAt(in, rest, loop)) {
    rest = WithoutSpace(rest);
    Field ahead = rest;
    const Field identifier = TakeWord(ahead, " \t\r\n");
    const bool isBracketed = identifier.length > 2 && PeekU8(identifier) == '<';
    const Field inner = isBracketed ? Slice(identifier, 1, identifier.length - 2) : identifier;
    ShowParts(Under(in, AddTextLine(in, identifier, "Message Identifier")), inner, "Identifier");
    rest = ahead;
  }
}

// "from a (b) by c with SMTP id d for <e>; date": a line for each clause.
void ShowStation(const Place& in, Field rest) {
  constexpr const char* kClauses[] = {"from", "by", "via", "with", "id", "for"};
  constexpr const char* kLabels[] = {"From", "By", "Via", "With", "Identifier", "For"};
  Field clauses = TakePiece(rest, ';');
  const char* label = nullptr;
  Field keyword = Slice(clauses, 0, 0), clause = keyword;
  const auto show = [&] {   // over the clause with its word
    const Field text = WithoutSpace(clause);
    const int32_t front = text.offset - keyword.offset;
    if (!label || text.length == 0 || front < 0) return;
    // keys: text Comment, From, By, Via, With, Identifier, For
    AddTextLine(in, Field{keyword.bytes, keyword.offset, front + text.length, 0, true}, label, text);
  };
  Loop loop;
  while (clauses.length > 0 && MoreAt(in, clauses, loop)) {
    const int32_t before = clauses.length;
    const Field word = TakePiece(clauses, ' ');
    const char* next = nullptr;
    for (size_t i = 0; i < std::size(kClauses); ++i) {
      if (IsWord(word, kClauses[i])) next = kLabels[i];
    }
    if (next) {
      if (!label) label = "Comment";
      show();
      label = next;
      keyword = word;
      clause = clauses;
      clause.length = 0;
    } else {
      clause.length += before - clauses.length;
    }
  }
  show();
  const Field time = WithoutSpace(rest);
  if (time.length > 0) ShowDate(Under(in, AddTextLine(in, time, "Date")), time);
}

bool HoldsDate(const Field& name) {
  constexpr const char* kNames[] = {"Date", "Resent-Date", "NNTP-Posting-Date", "Expires", "Expiry-Date", "Last-Attempt-Date",
                                    "Arrival-Date", "Will-Retry-Until", "Delivery-Date", "Injection-Date"};
  return IsAmong(name, kNames);
}

// <mailto:a@b>, <https://...> (RFC 2369), and names with an identifier (RFC 2919).
void ShowLinks(const Place& in, Field rest) {
  Loop loop;
  while (rest.length > 0 && MoreAt(in, rest, loop)) {
    const Field item = TakePiece(rest, ',');
    const Cursor c = CursorOver(item);
    const int32_t open = FindU8(c, '<'), close = open < 0 ? -1 : FindU8(c, '>', open);
    if (close > open + 1) AddTextLine(in, Slice(item, open + 1, close - open - 1), "Link");
  }
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
  } else if (HoldsDate(header.name)) {
    ShowDate(value, header.value);
  } else if (StartsWithWord(header.name, "List-")) {
    ShowLinks(value, header.value);
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
