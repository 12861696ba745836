// Discovery by structured texts in datagrams: Dropbox's search for peers on the LAN (a JSON object), and Web Services
// Dynamic Discovery (OASIS WS-Discovery 1.1: SOAP 1.2 envelopes over UDP).
#include "decoders/common/digits.h"
#include "decoders/common/header_lines.h"
#include "decoders/common/json_lines.h"
#include "decoders/common/xml_lines.h"

namespace qxview {
namespace {

// The last part of an action: "Probe" of "http://schemas.xmlsoap.org/ws/2005/04/discovery/Probe". It is the text of the
// element Action, whatever its prefix.
Field ActionOf(Cursor c) {
  constexpr char kName[] = "Action";
  constexpr int32_t kMostTag = 200;
  Loop loop;
  while (More(c, loop)) {
    int32_t at = 0;
    while (at < Left(c) && PeekU8(c, at) != '<') ++at;
    TakeBytes(c, at < Left(c) ? at + 1 : at);
    const Field tag = Ahead(c, Left(c));
    for (at = 0; at < tag.length && at < kMostTag && PeekU8(tag, at) != '>' && PeekU8(tag, at) != '<'; ++at) {
    }
    if (at >= kMostTag || PeekU8(tag, at) != '>') continue;   // none with an end
    Field name = Slice(tag, 0, at);
    name = TakeWord(name);
    int32_t local = name.length;
    while (local > 0 && PeekU8(name, local - 1) != ':') --local;
    if (!name.here || !IsWord(Slice(name, local, name.length - local), kName)) continue;
    Field text = Slice(tag, at + 1, tag.length - at - 1);
    text = TakeWord(text, "< \r\n");
    int32_t last = text.length;
    while (last > 0 && PeekU8(text, last - 1) != '/') --last;
    return Slice(text, last, text.length - last);
  }
  return {};
}

}  // namespace

int32_t DecodeLanSyncDiscovery(const Place& at, Cursor c) {
  // Other programs that use the port put octets of their own in front of the object.
  constexpr int32_t kMostInFront = 64;
  Cursor object = c;
  const int32_t inFront = StartsJson(c) ? 0 : FindU8(c, '{');
  if (inFront < 0 || inFront > kMostInFront) return 0;
  TakeBytes(object, inFront);
  if (!StartsJson(object)) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "Dropbox LAN Sync Discovery"));
  if (inFront > 0) ShowDigits(in, TakeBytes(c, inFront), "In Front");
  ShowJson(in, c);
  AddBlock(in, Rest(c), "Data");
  return 1;
}

int32_t DecodeWsDiscovery(const Place& at, Cursor c) {
  if (!StartsXml(c)) return 0;
  const Field action = ActionOf(c);
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "WS-Discovery: %s", action.here ? Text(action) : TextSlice{"Message", 7}));
  ShowXml(in, c);
  return 1;
}

}  // namespace qxview
