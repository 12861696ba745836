// Simple Service Discovery Protocol (UPnP Device Architecture 2.0, 1.2 and 1.3): HTTP's lines in datagrams, by which
// devices announce themselves and are searched for.
#include "decoders/common/header_lines.h"

namespace qxview {
namespace {

// What the top line says beside the method: what a notification is and what it or a search is about.
struct Subject {
  Field notification, target;
};

Subject SubjectOf(Cursor c) {
  Subject subject{};
  HeaderLine header;
  Loop loop;
  while (More(c, loop) && TakeHeader(c, header)) {
    if (IsWord(header.name, "NTS")) subject.notification = header.value;
    if (IsWord(header.name, "NT") || IsWord(header.name, "ST")) subject.target = header.value;
  }
  return subject;
}

}  // namespace

int32_t DecodeSsdp(const Place& at, Cursor c) {
  const Field message = Ahead(c, Left(c));
  StartLine start;
  if (!TakeStartLine(c, "HTTP/", start)) return 0;
  const Subject subject = SubjectOf(c);
  const LineHandle line = AddLine(at, message, "SSDP: %s", start.isRequest ? Text(start.method) : Text(start.phrase));
  if (subject.notification.here) AppendToLine(at, line, " %s", Text(subject.notification));
  if (subject.target.here) AppendToLine(at, line, ", %s", Text(subject.target));
  const Place in = Under(at, line);
  ShowStartLine(in, start);
  ShowHeaders(in, c);
  AddBlock(in, Rest(c), "SSDP Data");
  return 1;
}

}  // namespace qxview
