// Internet Content Adaptation Protocol (RFC 3507): HTTP messages handed to a server that changes them.
#include "decoders/common/header_lines.h"

namespace qxview {

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
