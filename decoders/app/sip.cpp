// Session Initiation Protocol (RFC 3261, with the headers of RFC 3262, 3265, 3311, 3325, 3326, 3327, 3515, 3608, 3903, 4028,
// 6665 and others): who calls whom, how, and what became of it. Messages over UDP, one after the other over TCP.
#include <cstring>

#include "core/rows.h"
#include "decoders/common/header_lines.h"
#include "decoders/common/json_lines.h"
#include "decoders/common/xml_lines.h"

namespace qxview {

int32_t DecodeSdp(const Place& at, Cursor c);

namespace {

// What a header's value is made of.
enum class Form { kText, kAddress, kVia, kCredentials, kSequence };

struct HeaderRow {
  const char* name;
  char compact;   // the short name (RFC 3261 7.3.3)
  Form form = Form::kText;
};
constexpr HeaderRow kHeaders[] = {
    {"Accept-Contact", 'a'}, {"Allow-Events", 'u'}, {"Authorization", 0, Form::kCredentials}, {"Call-ID", 'i'},
    {"Contact", 'm', Form::kAddress}, {"Content-Encoding", 'e'}, {"Content-Length", 'l'}, {"Content-Type", 'c'},
    {"CSeq", 0, Form::kSequence}, {"Diversion", 0, Form::kAddress}, {"Event", 'o'}, {"From", 'f', Form::kAddress},
    {"History-Info", 0, Form::kAddress}, {"Identity", 'y'}, {"Identity-Info", 'n'},
    {"P-Asserted-Identity", 0, Form::kAddress}, {"P-Associated-URI", 0, Form::kAddress},
    {"P-Called-Party-ID", 0, Form::kAddress}, {"P-Preferred-Identity", 0, Form::kAddress}, {"Path", 0, Form::kAddress},
    {"Proxy-Authenticate", 0, Form::kCredentials}, {"Proxy-Authorization", 0, Form::kCredentials},
    {"Record-Route", 0, Form::kAddress}, {"Refer-To", 'r', Form::kAddress}, {"Referred-By", 'b', Form::kAddress},
    {"Reject-Contact", 'j'}, {"Remote-Party-ID", 0, Form::kAddress}, {"Reply-To", 0, Form::kAddress},
    {"Request-Disposition", 'd'}, {"Route", 0, Form::kAddress}, {"Service-Route", 0, Form::kAddress},
    {"Session-Expires", 'x'}, {"Subject", 's'}, {"Supported", 'k'}, {"To", 't', Form::kAddress}, {"Via", 'v', Form::kVia},
    {"WWW-Authenticate", 0, Form::kCredentials}};

const HeaderRow* FindHeader(const Field& name) {
  for (const HeaderRow& row : kHeaders) {
    if (IsWord(name, row.name)) return &row;
    if (row.compact && name.length == 1 && (PeekU8(name) | 0x20) == static_cast<uint8_t>(row.compact)) return &row;
  }
  return nullptr;
}

// How much of a text stands in front of the first of `ends` that is in no quotation marks and no angle brackets.
int32_t LengthUpTo(const Field& text, const char* ends) {
  bool quoted = false, inBrackets = false;
  for (int32_t at = 0; at < text.length; ++at) {
    const uint8_t c = PeekU8(text, at);
    if (quoted && c == '\\') {
      ++at;
    } else if (c == '"') {
      quoted = !quoted;
    } else if (!quoted && (c == '<' || c == '>')) {
      inBrackets = c == '<';
    } else if (!quoted && !inBrackets && std::strchr(ends, c) && c) {
      return at;
    }
  }
  return text.length;
}

// The piece up to one of `ends`, trimmed; the rest starts behind it.
Field TakePiece(Field& rest, const char* ends) {
  const int32_t length = LengthUpTo(rest, ends);
  const Field piece = Trimmed(Slice(rest, 0, length));
  const int32_t behind = length < rest.length ? length + 1 : length;
  rest = Slice(rest, behind, rest.length - behind);
  return piece;
}

int32_t FindByte(const Field& text, uint8_t wanted) {
  for (int32_t at = 0; at < text.length; ++at) {
    if (PeekU8(text, at) == wanted) return at;
  }
  return -1;
}

// Where the address opens; a name in quotation marks may hold a bracket of its own.
int32_t FindBracket(const Field& text) {
  bool quoted = false;
  for (int32_t at = 0; at < text.length; ++at) {
    if (quoted && PeekU8(text, at) == '\\') ++at;
    else if (PeekU8(text, at) == '"') quoted = !quoted;
    else if (!quoted && PeekU8(text, at) == '<') return at;
  }
  return -1;
}

// "name=value" or "name", separated by `separator`. A line stands over its value.
void ShowParameters(const Place& in, Field rest, const char* separator) {
  Loop loop;
  while (rest.length > 0 && MoreAt(in, CursorOver(rest), loop)) {
    const Field parameter = TakePiece(rest, separator);
    if (parameter.length == 0) continue;
    const int32_t equals = FindByte(parameter, '=');
    if (equals < 0) {
      AddLine(in, parameter, "%s", Text(parameter));
    } else {
      const Field value = Trimmed(Slice(parameter, equals + 1, parameter.length - equals - 1));
      AddLine(in, value, "%s=%s", Text(Trimmed(Slice(parameter, 0, equals))), Text(value));
    }
  }
}

// "host", "host:port", "[2001:db8::1]:port".
void ShowHostPort(const Place& in, const Field& text) {
  const int32_t bracket = FindByte(text, ']');
  const Field behind = bracket < 0 ? text : Slice(text, bracket, text.length - bracket);
  const int32_t colon = FindByte(behind, ':');
  if (colon < 0) {
    AddTextLine(in, text, "Host");
    return;
  }
  const int32_t host = text.length - behind.length + colon;
  AddTextLine(in, Slice(text, 0, host), "Host");
  AddTextLine(in, Slice(text, host + 1, text.length - host - 1), "Port");
}

// "sip:user:password@host:port;parameter?header".
void ShowUriParts(const Place& in, const Field& uri) {
  Field rest = uri;
  const int32_t scheme = FindByte(rest, ':');
  if (scheme < 0) return;
  rest = Slice(rest, scheme + 1, rest.length - scheme - 1);
  const int32_t sign = FindByte(rest, '@');
  if (sign >= 0) {
    Field user = Slice(rest, 0, sign);
    AddTextLine(in, TakePiece(user, ":"), "User");
    if (user.length > 0) AddTextLine(in, user, "Password");
    rest = Slice(rest, sign + 1, rest.length - sign - 1);
  }
  const Field host = TakePiece(rest, ";?");
  if (StartsWithWord(uri, "tel:")) {
    AddTextLine(in, host, "Telephone Number");
  } else {
    ShowHostPort(in, host);
  }
  ShowParameters(in, rest, ";");
}

// "Name" <uri>;parameter or uri;parameter, each of a list. The parameters of a bare address are the header's.
void ShowAddresses(const Place& in, Field rest) {
  Loop loop;
  while (rest.length > 0 && MoreAt(in, CursorOver(rest), loop)) {
    Field parameters = TakePiece(rest, ",");
    Field address = TakePiece(parameters, ";");
    if (address.length == 0) continue;
    const int32_t bracket = FindBracket(address);
    if (bracket >= 0) {
      const Field name = Trimmed(Slice(address, 0, bracket));
      if (name.length > 0) AddTextLine(in, name, "Display Name");
      address = Slice(address, bracket + 1, address.length - bracket - 1);
      const int32_t end = FindByte(address, '>');
      if (end >= 0) address = Slice(address, 0, end);
    }
    ShowUriParts(Under(in, AddTextLine(in, address, "URI")), address);
    ShowParameters(in, parameters, ";");
  }
}

// "SIP/2.0/UDP host:port;branch=..." for each hop.
void ShowVia(const Place& in, Field rest) {
  Loop loop;
  while (rest.length > 0 && MoreAt(in, CursorOver(rest), loop)) {
    Field parameters = TakePiece(rest, ",");
    Field first = TakePiece(parameters, ";");
    const Field protocol = TakeWord(first);
    int32_t slash = protocol.length;
    while (slash > 0 && PeekU8(protocol, slash - 1) != '/') --slash;
    AddTextLine(in, Slice(protocol, slash, protocol.length - slash), "Transport");
    ShowHostPort(in, Trimmed(first));
    ShowParameters(in, parameters, ";");
  }
}

void ShowValue(const Place& in, Form form, Field value) {
  switch (form) {
    case Form::kAddress: return ShowAddresses(in, value);
    case Form::kVia: return ShowVia(in, value);
    case Form::kCredentials:
      AddTextLine(in, TakeWord(value), "Scheme");
      return ShowParameters(in, value, ",");
    case Form::kSequence:
      AddTextLine(in, TakeWord(value), "Sequence Number");
      AddTextLine(in, TakeWord(value), "Method");
      return;
    case Form::kText: return;
  }
}

struct Sip {
  Field type, method, callId;
  int32_t length = -1;   // of the body; -1: not told
};

void NoteHeader(Sip& sip, const Field& name, const Field& value) {
  const HeaderRow* row = FindHeader(name);
  if (!row) return;
  const Field title{reinterpret_cast<const uint8_t*>(row->name), 0, static_cast<int32_t>(std::strlen(row->name)), 0, true};
  if (IsWord(title, "Content-Type")) sip.type = value;
  if (IsWord(title, "Content-Length")) sip.length = DecimalOf(value);
  if (IsWord(title, "CSeq")) {
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

void ShowBody(const Place& at, const Place& in, Cursor& body, const Field& type) {
  if (Left(body) == 0) return;
  if (StartsWithWord(type, "application/sdp")) {
    CallDecoder(Deeper(at), body, DecodeSdp, "SDP Data");
    return;
  }
  const Place under = Under(in, AddLine(in, Ahead(body, Left(body)), "Message Body"));
  if (StartsXml(body)) {
    ShowXml(under, body);
  } else if (StartsJson(body)) {
    ShowJson(under, body);
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
  if (first.isRequest) ShowUriParts(parts, first.target);
  HeaderLine header;
  Loop loop;
  while (MoreAt(in, c, loop) && TakeHeader(c, header)) {
    const HeaderRow* row = FindHeader(header.name);
    const Place under = Under(in, ShowHeader(in, header, row ? row->name : nullptr));
    if (row) ShowValue(under, row->form, header.value);
  }
  ShowEndOfHeaders(in, c);
  Cursor body = TakeCursor(c, sip.length >= 0 && sip.length < Left(c) ? sip.length : Left(c));
  if (!in.dead) SetRange(in, in.parent, start.offset, c.offset - start.offset);
  ShowBody(at, in, body, sip.type);
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
