// Data channels (RFC 8831, RFC 8832): SCTP's streams that a browser or a telepresence system opens, and the texts in them,
// among these CLUE's messages (RFC 8847).
#include "core/rows.h"
#include "decoders/common/header_lines.h"
#include "decoders/common/json_lines.h"
#include "decoders/common/xml_lines.h"

namespace qxview {
namespace {

constexpr uint32_t kAcknowledgement = 2, kOpen = 3;
constexpr auto kMessageNames = SortedNames({{kAcknowledgement, "DATA_CHANNEL_ACK"}, {kOpen, "DATA_CHANNEL_OPEN"}});
constexpr auto kChannelNames = SortedNames({
    {0x00, "Reliable"}, {0x01, "Partially Reliable, Retransmissions"}, {0x02, "Partially Reliable, Time"},
    {0x80, "Reliable, Unordered"}, {0x81, "Partially Reliable, Retransmissions, Unordered"},
    {0x82, "Partially Reliable, Time, Unordered"}});
constexpr auto kPriorityNames = SortedNames({{128, "Below Normal"}, {256, "Normal"}, {512, "High"}, {1024, "Extra High"}});

struct Channel { Field label, protocol; };
constexpr auto kType = Rows<Channel>({Number(1, "Message Type", kMessageNames)});
constexpr auto kOpening = Rows<Channel>({
    Number(1, "Channel Type", kChannelNames), Number(2, "Priority", kPriorityNames), Number(4, "Reliability Parameter"),
    Number(2, "Label Length").Into(&Channel::label), Number(2, "Protocol Length").Into(&Channel::protocol)});

// The name of the first element, without its prefix.
Field FindRoot(Cursor c) {
  Loop loop;
  while (More(c, loop)) {
    const int32_t open = FindU8(c, '<');
    if (open < 0) return {};
    TakeBytes(c, open + 1);
    const uint32_t next = PeekU8(c);
    if (next == '?' || next == '!') continue;
    Field rest = Rest(c), name = TakeWord(rest, " \t\r\n/>");
    Field local = name;
    TakeWord(local, ":");
    return local.length > 0 ? local : name;
  }
  return {};
}

bool IsConferencing(const Cursor& c) {
  constexpr int32_t kFarthest = 1024;
  for (int32_t i = 0; i < Left(c) && i < kFarthest; ++i) {
    if (PeekU8(c, i) == 'u' && PeekIs(c, i, "urn:ietf:params:xml:ns:clue-protocol")) return true;
  }
  return false;
}

}  // namespace

int32_t DecodeDataChannel(const Place& at, Cursor c) {
  const uint32_t type = PeekU8(c);
  if (type != kAcknowledgement && type != kOpen) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "Data Channel: %s", LookupName(kMessageNames, type)));
  ShowRows(in, c, kType);
  if (type == kOpen) {
    const Channel channel = ShowRows(in, c, kOpening);
    const Field label = TakeBytes(c, channel.label.value), protocol = TakeBytes(c, channel.protocol.value);
    AddTextLine(in, label, "Label");
    AddTextLine(in, protocol, "Protocol");
    c.ranShort = false;   // what is there of a text that is longer
  }
  AddBlock(in, Rest(c), "Channel Data");
  return 1;
}

int32_t DecodeChannelText(const Place& at, Cursor c) {
  if (Left(c) == 0) return 0;
  const bool isXml = StartsXml(c);
  const Field root = isXml && IsConferencing(c) ? FindRoot(c) : Field{};
  const Field whole = Ahead(c, Left(c));
  const Place in = Under(at, root.here ? AddLine(at, whole, "CLUE: %s", Text(root))
                                       : AddLine(at, whole, "Data Channel: Text, %d bytes", Left(c)));
  TextLine line;
  Loop loop;
  if (isXml) ShowXml(in, c);
  else if (StartsJson(c)) ShowJson(in, c);
  else while (MoreAt(in, c, loop) && TakeLine(c, line)) AddTextLine(in, line.whole, "Text", line.text);
  AddBlock(in, Rest(c), "Text Data");
  return 1;
}

}  // namespace qxview
