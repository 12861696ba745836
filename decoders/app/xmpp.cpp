// Extensible Messaging and Presence Protocol (RFC 6120, 6121, 7590, 7622): streams of XML, of which a segment holds some
// elements, or a piece of one.
#include "decoders/app/command_arguments.h"
#include "decoders/app/stream_note.h"
#include "decoders/common/xml_lines.h"
#include "decoders/message_lengths.h"

namespace qxview {
namespace {

// Where the walk over a stream's characters stands, so that it can go on in the next segment.
enum Standing : uint8_t { kInText, kAtTag, kInStartTag, kBehindSlash, kInEndTag, kInDeclaration };
struct Scan {
  Standing standing;
  uint8_t quote;      // the mark that the attribute's value began with
  bool isStream;      // the start tag is the stream's own
  uint32_t depth;     // elements that are open in the stream
};

// Takes a character; true where it ends an element of the stream, the stream's start or its end.
bool EndsElement(Scan& scan, uint32_t character, bool isStreamName) {
  switch (scan.standing) {
    case kInText:
      if (character == '<') scan.standing = kAtTag;
      return false;
    case kAtTag:
      scan.isStream = isStreamName;
      scan.standing = character == '/' ? kInEndTag : character == '?' || character == '!' ? kInDeclaration : kInStartTag;
      return false;
    case kBehindSlash:
      scan.standing = kInStartTag;
      if (character == '>') {
        scan.standing = kInText;
        return scan.depth == 0;
      }
      [[fallthrough]];
    case kInStartTag:
      if (scan.quote) {
        if (character == scan.quote) scan.quote = 0;
      } else if (character == '"' || character == '\'') {
        scan.quote = static_cast<uint8_t>(character);
      } else if (character == '/') {
        scan.standing = kBehindSlash;
      } else if (character == '>') {
        scan.standing = kInText;
        if (scan.isStream) return true;
        ++scan.depth;
      }
      return false;
    case kInEndTag:
      if (character != '>') return false;
      scan.standing = kInText;
      if (scan.depth > 0) --scan.depth;
      return scan.depth == 0;
    case kInDeclaration:
      if (character == '>') scan.standing = kInText;
      return false;
  }
  return false;
}

// Behind the element that stands first, or the rest of one; -1 where it goes on behind the cursor's bytes.
int32_t EndOfElement(const Cursor& c, Scan& scan) {
  const bool isBlank = scan.standing == kInText && scan.depth == 0 && IsSpace(PeekU8(c));
  for (int32_t at = 0; at < Left(c); ++at) {
    if (isBlank && !IsSpace(PeekU8(c, at))) return at;
    if (EndsElement(scan, PeekU8(c, at), scan.standing == kAtTag && PeekIs(c, at, "stream:stream"))) return at + 1;
  }
  return isBlank ? Left(c) : -1;
}

// The name of the first tag that is no declaration: "stream:stream", "iq".
Field FirstTag(Cursor c) {
  Loop loop;
  while (More(c, loop)) {
    while (Left(c) > 0 && PeekU8(c) != '<') TakeBytes(c, 1);
    if (Left(c) < 2) break;
    TakeBytes(c, 1);
    if (PeekU8(c) == '?' || PeekU8(c) == '!') continue;
    Field rest = Ahead(c, Left(c));
    const Field name = TakeWord(rest, " \t\r\n>");
    const bool isEmpty = name.length > 1 && PeekU8(name, name.length - 1) == '/';
    return isEmpty ? Slice(name, 0, name.length - 1) : name;
  }
  return {};
}

// "local@domain/resource" (RFC 7622).
void ShowAddress(const Place& in, const Field& address) {
  if (address.length < 1) return;
  const Cursor c = CursorOver(address);
  const int32_t slash = FindU8(c, '/'), bare = slash < 0 ? address.length : slash;
  const int32_t at = FindU8(CursorOver(Slice(address, 0, bare)), '@');
  if (at < 0 && slash < 0) return;   // a domain alone
  if (at > 0) AddTextLine(in, Slice(address, 0, at), "Local Part");
  AddTextLine(in, Slice(address, at + 1, bare - at - 1), "Domain");
  if (slash >= 0) AddTextLine(in, Slice(address, slash + 1, address.length - slash - 1), "Resource");
}

// What the namespaces are, of the core, of the instant messages and of the extensions that are in wide use.
constexpr struct { const char* uri; const char* name; } kNamespaces[] = {
    {"jabber:client", "Client"}, {"jabber:server", "Server"}, {"jabber:server:dialback", "Server Dialback"},
    {"jabber:component:accept", "Component"}, {"http://etherx.jabber.org/streams", "Stream"},
    {"jabber:iq:roster", "Roster"}, {"jabber:iq:auth", "Older Authentication"}, {"jabber:iq:private", "Private Storage"},
    {"jabber:iq:register", "Registration"}, {"jabber:iq:version", "Software Version"}, {"jabber:iq:last", "Last Activity"},
    {"jabber:iq:privacy", "Privacy Lists"}, {"jabber:iq:search", "Search"}, {"jabber:iq:time", "Older Time"},
    {"jabber:x:data", "Data Form"}, {"jabber:x:delay", "Older Delay"}, {"jabber:x:oob", "Out-of-Band Data"},
    {"jabber:x:conference", "Invitation"}, {"urn:ietf:params:xml:ns:xmpp-tls", "STARTTLS"},
    {"urn:ietf:params:xml:ns:xmpp-sasl", "SASL"}, {"urn:xmpp:sasl:2", "SASL 2"},
    {"urn:ietf:params:xml:ns:xmpp-bind", "Resource Binding"}, {"urn:ietf:params:xml:ns:xmpp-session", "Session"},
    {"urn:ietf:params:xml:ns:xmpp-stanzas", "Stanza Error"}, {"urn:ietf:params:xml:ns:xmpp-streams", "Stream Error"},
    {"urn:ietf:params:xml:ns:xmpp-framing", "WebSocket Framing"}, {"urn:xmpp:features:rosterver", "Roster Versioning"},
    {"urn:xmpp:features:pre-approval", "Subscription Pre-Approval"}, {"http://jabber.org/features/compress", "Compression"},
    {"http://jabber.org/protocol/compress", "Compression"}, {"http://jabber.org/features/iq-auth", "Older Authentication"},
    {"http://jabber.org/features/iq-register", "Registration"}, {"http://jabber.org/protocol/disco#info", "Service Discovery: Information"},
    {"http://jabber.org/protocol/disco#items", "Service Discovery: Items"}, {"http://jabber.org/protocol/caps", "Entity Capabilities"},
    {"http://jabber.org/protocol/chatstates", "Chat States"}, {"http://jabber.org/protocol/muc", "Multi-User Chat"},
    {"http://jabber.org/protocol/muc#user", "Multi-User Chat: User"}, {"http://jabber.org/protocol/muc#admin", "Multi-User Chat: Administrator"},
    {"http://jabber.org/protocol/muc#owner", "Multi-User Chat: Owner"}, {"http://jabber.org/protocol/pubsub", "Publish and Subscribe"},
    {"http://jabber.org/protocol/pubsub#event", "Publish and Subscribe: Event"}, {"http://jabber.org/protocol/pubsub#owner", "Publish and Subscribe: Owner"},
    {"http://jabber.org/protocol/commands", "Ad-Hoc Commands"}, {"http://jabber.org/protocol/ibb", "In-Band Bytestream"},
    {"http://jabber.org/protocol/bytestreams", "SOCKS5 Bytestream"}, {"http://jabber.org/protocol/si", "Stream Initiation"},
    {"http://jabber.org/protocol/httpbind", "BOSH"}, {"http://jabber.org/protocol/xhtml-im", "XHTML Message"}, {"http://jabber.org/protocol/nick", "Nickname"},
    {"vcard-temp", "vCard"}, {"vcard-temp:x:update", "vCard Avatar"}, {"urn:ietf:params:xml:ns:vcard-4.0", "vCard 4"},
    {"urn:xmpp:ping", "Ping"}, {"urn:xmpp:time", "Entity Time"}, {"urn:xmpp:delay", "Delayed Delivery"},
    {"urn:xmpp:receipts", "Delivery Receipts"}, {"urn:xmpp:carbons:2", "Message Carbons"}, {"urn:xmpp:forward:0", "Forwarding"},
    {"urn:xmpp:mam:2", "Message Archive"}, {"urn:xmpp:sm:2", "Stream Management"}, {"urn:xmpp:sm:3", "Stream Management"},
    {"urn:xmpp:csi:0", "Client State"}, {"urn:xmpp:blocking", "Blocking"}, {"urn:xmpp:jingle:1", "Jingle"},
    {"urn:xmpp:jingle:apps:rtp:1", "Jingle: RTP"}, {"urn:xmpp:jingle:transports:ice-udp:1", "Jingle: ICE"},
    {"urn:xmpp:jingle:transports:raw-udp:1", "Jingle: Raw UDP"}, {"urn:xmpp:http:upload:0", "HTTP Upload"},
    {"urn:xmpp:sid:0", "Stanza Identifiers"}, {"urn:xmpp:push:0", "Push"}, {"urn:xmpp:bidi", "Bidirectional Server Streams"}};

bool IsSame(const Field& value, const char* text) {
  return IsWord(value, text) && StartsWithText(CursorOver(value), text);
}

void ShowAttributeOf(const Place& under, const Field& name, const Field& value) {
  constexpr const char* kAddresses[] = {"from", "to", "jid", "by", "owner", "initiator", "responder"};
  for (const char* each : kAddresses) {
    if (IsSame(name, each)) return ShowAddress(under, value);
  }
  if (!IsWord(name, "xmlns") && !StartsWithWord(name, "xmlns:")) return;
  for (const auto& row : kNamespaces) {
    if (IsSame(value, row.uri)) AddLine(under, value, "Namespace: %s", row.name);
  }
}

void ShowTextOf(const Place& under, const Field& element, const Field& text) {
  constexpr const char* kSaslElements[] = {"auth", "challenge", "response", "success", "initial-response", "additional-data", "password"};
  for (const char* each : kSaslElements) {
    if (IsSame(element, each)) return ShowSasl(under, text);
  }
  if (IsSame(element, "jid")) ShowAddress(under, text);
}

constexpr XmlVocabulary kVocabulary{ShowAttributeOf, ShowTextOf};

// What the bytes leave open is noted for the segment behind them.
void NoteCut(const Place& in, Cursor c, Scan scan) {
  const Cursor behind = [&] { Cursor end = c; TakeBytes(end, Left(c)); return end; }();
  Loop loop;
  while (More(c, loop)) {
    const int32_t end = EndOfElement(c, scan);
    if (end < 0) break;
    TakeBytes(c, end);
    scan = {};
  }
  if (Left(c) == 0) return;
  StreamNote note{};
  note.phase = static_cast<uint8_t>(scan.standing + 1);
  note.detail = scan.quote;
  note.isMidLine = scan.isStream;
  note.lacking = scan.depth;
  LeaveNote(in, behind, note);
}

// A piece of an element from an earlier segment, up to where markup begins.
void ShowRestOfTag(const Place& in, Cursor& c, const Scan& scan) {
  if (scan.standing == kInText) return;
  const int32_t end = FindU8(c, '>');
  const Field rest = TakeBytes(c, end < 0 ? Left(c) : end + 1);
  AddTextLine(in, rest, "Rest of Tag");
}

}  // namespace

int32_t LengthOfXmpp(const Cursor& c) {
  constexpr int32_t kMostStanza = 256 * 1024;   // a longer one is shown segment by segment
  if (PeekU8(c) != '<' && !IsSpace(PeekU8(c))) return kNoMessage;
  Scan scan{};
  const int32_t end = EndOfElement(c, scan);
  return end > 0 ? end : Left(c) > kMostStanza ? kNoMessage : 0;
}

int32_t DecodeXmpp(const Place& at, Cursor c) {
  const StreamNote note = RecallNote(at, c);
  Scan scan{};
  if (note.phase) {
    scan = {static_cast<Standing>(note.phase - 1), note.detail, note.isMidLine != 0, note.lacking};
    const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "XMPP: Continued Element"));
    NoteCut(at, c, scan);
    ShowRestOfTag(in, c, scan);
    ShowXml(in, c, &kVocabulary);
    return 1;
  }
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
  NoteCut(at, c, scan);
  ShowXml(in, c, &kVocabulary);
  return 1;
}

}  // namespace qxview
