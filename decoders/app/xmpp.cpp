// Extensible Messaging and Presence Protocol (RFC 6120, 6121, 7590): streams of XML, of which a segment holds some elements.
// And the Internet Content Adaptation Protocol (RFC 3507): HTTP messages handed to a server that changes them.
#include "decoders/common/header_lines.h"
#include "decoders/common/xml_lines.h"

namespace qxview {
namespace {

// The name of the first tag that is no declaration: "stream:stream", "iq".
Field FirstTag(Cursor c) {
  Loop loop;
  while (More(c, loop)) {
    while (Left(c) > 0 && c.at[0] != '<') TakeBytes(c, 1);
    if (Left(c) < 2) break;
    TakeBytes(c, 1);
    if (c.at[0] == '?' || c.at[0] == '!') continue;
    Field rest = Ahead(c, Left(c));
    return TakeWord(rest, " \t\r\n>");
  }
  return {};
}

}  // namespace

int32_t DecodeXmpp(const Place& at, Cursor c) {
  Cursor text = c;
  SkipSpace(text);
  if (Left(text) == 0 && Left(c) > 0) {
    AddLine(at, Ahead(c, Left(c)), "XMPP: Keep-Alive");
    return 1;
  }
  const bool isEnd = StartsWithText(text, "</");
  if (!StartsXml(c) && !isEnd) return 0;
  const Field tag = FirstTag(c);
  if (!tag.here) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "XMPP: %s", Text(tag)));
  ShowXml(in, c);
  return 1;
}

int32_t DecodeIcap(const Place& at, Cursor c) {
  const Field message = Ahead(c, Left(c));
  StartLine start;
  if (!TakeStartLine(c, "ICAP/", start)) return 0;
  const Place in = Under(at, start.isRequest ? AddLine(at, message, "ICAP: %s %s", Text(start.method), Text(start.target))
                                             : AddLine(at, message, "ICAP: %s %s", Text(start.code), Text(start.phrase)));
  ShowStartLine(in, start);
  ShowHeaders(in, c);
  // What is encapsulated: the heads of HTTP messages, then a body in chunks.
  StartLine carried;
  Loop loop;
  while (MoreAt(in, c, loop) && TakeStartLine(c, "HTTP/", carried)) {
    const Place head = Under(in, AddLine(in, carried.line, "Encapsulated HTTP Header"));
    ShowStartLine(head, carried);
    ShowHeaders(head, c);
  }
  AddBlock(in, Rest(c), "Encapsulated Body");
  return 1;
}

}  // namespace qxview
