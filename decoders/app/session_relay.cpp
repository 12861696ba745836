// Message Session Relay (RFC 4975, with the paths of RFC 4976): words and pieces of files within a session that SIP set up.
//
//   MSRP a786hjs2 SEND
//   To-Path: msrp://b.example:7777/x;tcp
//   Byte-Range: 1-5/5
//
//   hello
//   -------a786hjs2$
#include "decoders/common/header_lines.h"
#include "decoders/message_lengths.h"

namespace qxview {
namespace {

constexpr int32_t kDashes = 7;

const char* FlagName(uint32_t flag) {
  switch (flag) {
    case '$': return "Complete";
    case '+': return "More Follows";
    case '#': return "Aborted";
    default: return kUnknown;
  }
}

// "-------", the transaction, a flag: dashes alone may be what somebody wrote.
bool IsEndLine(const Field& line, const Field& transaction) {
  if (line.length != kDashes + transaction.length + 1 || !StartsWithWord(line, "-------")) return false;
  for (int32_t i = 0; i < transaction.length; ++i) {
    if (PeekU8(line, kDashes + i) != PeekU8(transaction, i)) return false;
  }
  return true;
}

// "msrp://user@host:port/session;transport", one or several with blanks between them.
void ShowPath(const Place& in, Field rest) {
  for (Field uri = TakeWord(rest); uri.here; uri = TakeWord(rest)) {
    const Place under = Under(in, AddTextLine(in, uri, "URI"));
    TakeWord(uri, "/");
    TakeWord(uri, "/");
    Field place = TakeWord(uri, "/");
    const Field session = TakeWord(uri, ";"), transport = TakeWord(uri, ";");
    const bool isIPv6 = PeekU8(place) == '[';
    const Field host = TakeWord(place, isIPv6 ? "]" : ":"), port = TakeWord(place, ":");
    AddTextLine(under, isIPv6 ? Slice(host, 1, host.length - 1) : host, "Host");
    if (port.here) AddTextLine(under, port, "Port");
    if (session.here) AddTextLine(under, session, "Session");
    if (transport.here) AddTextLine(under, transport, "Transport");
  }
}

void ShowValue(const Place& in, const HeaderLine& header) {
  Field rest = header.value;
  if (IsWord(header.name, "To-Path") || IsWord(header.name, "From-Path") || IsWord(header.name, "Use-Path")) {
    ShowPath(in, rest);
  } else if (IsWord(header.name, "Byte-Range")) {
    const Field first = TakeWord(rest, "-"), last = TakeWord(rest, "/"), total = TakeWord(rest);
    AddTextLine(in, first, "First Byte");
    AddTextLine(in, last, "Last Byte");
    AddTextLine(in, total, "Total");
  } else if (IsWord(header.name, "Status")) {
    const Field space = TakeWord(rest), code = TakeWord(rest);
    AddTextLine(in, space, "Namespace");
    AddTextLine(in, code, "Status Code");
    if (Trimmed(rest).length > 0) AddTextLine(in, Trimmed(rest), "Comment");
  }
}

bool ShowMessage(const Place& at, Cursor& c) {
  if (!PeekIs(c, 0, "MSRP ")) return false;
  const Cursor start = c;
  TextLine line;
  TakeLine(c, line);
  Field rest = line.text;
  TakeWord(rest);
  const Field transaction = TakeWord(rest);
  const Field what = Trimmed(rest);
  const Place in = Under(at, AddLine(at, Ahead(start, Left(start)), "MSRP: %s", Text(what)));
  const Place parts = Under(in, AddTextLine(in, line.whole, "Start Line", line.text));
  AddTextLine(parts, transaction, "Transaction ID");
  if (DecimalOf(TakeWord(rest)) >= 0) {
    AddTextLine(parts, Slice(what, 0, 3), "Status Code");
    if (what.length > 4) AddTextLine(parts, Slice(what, 4, what.length - 4), "Comment");
  } else {
    AddTextLine(parts, what, "Method");
  }
  HeaderLine header;
  Loop loop;
  while (MoreAt(in, c, loop) && TakeHeader(c, header)) ShowValue(Under(in, ShowHeader(in, header)), header);
  ShowEndOfHeaders(in, c);
  Loop lines;
  while (MoreAt(in, c, lines) && TakeLine(c, line)) {
    const bool isEnd = IsEndLine(line.text, transaction);
    const LineHandle shown = AddTextLine(in, line.whole, isEnd ? "End Line" : "Content", line.text);
    if (!isEnd) continue;
    const Field flag = Slice(line.text, line.text.length - 1, 1);
    AddTextLine(Under(in, shown), Slice(line.text, kDashes, transaction.length), "Transaction ID");
    AddLine(Under(in, shown), flag, "Continuation: %s (%s)", Text(flag), FlagName(PeekU8(flag)));
    break;
  }
  if (!in.dead) SetRange(in, in.parent, start.offset, c.offset - start.offset);
  return true;
}

}  // namespace

int32_t LengthOfRelayedMessage(const Cursor& c) {
  if (!PeekIs(c, 0, "MSRP ")) return Left(c) < 5 && PeekU8(c) == 'M' ? 0 : kNoMessage;
  Cursor ahead = c;
  TextLine line;
  TakeLine(ahead, line);
  Field rest = line.text;
  TakeWord(rest);
  const Field transaction = TakeWord(rest);
  if (!transaction.here) return Left(ahead) > 0 ? kNoMessage : 0;
  while (Left(ahead) > 0 && TakeLine(ahead, line)) {
    const bool isWhole = line.whole.length > line.text.length;
    if (isWhole && IsEndLine(line.text, transaction)) return ahead.offset - c.offset;
  }
  return Left(c) > kMostRelayMessage ? kNoMessage : 0;
}

int32_t DecodeRelayedMessages(const Place& at, Cursor c) {
  int32_t shown = 0;
  Loop loop;
  while (MoreAt(at, c, loop) && ShowMessage(at, c)) ++shown;
  if (shown == 0) return 0;
  AddRawRest(at, c, "MSRP Data");
  return 1;
}

}  // namespace qxview
