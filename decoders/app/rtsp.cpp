// Real Time Streaming Protocol (RFC 2326, RFC 7826): remote control of media servers, with the media inside the connection
// where the client asks for that.
//
//   '$'  channel  length (2)  RTP or RTCP                       (RFC 2326 10.12)
#include "core/rows.h"
#include "decoders/common/header_lines.h"
#include "decoders/net/dynamic_udp.h"
#include "decoders/net/learn.h"

namespace qxview {

int32_t DecodeSdp(const Place& at, Cursor c);

namespace {

struct Interleaved {
  Field channel, length;
};
constexpr auto kInterleaved = Rows<Interleaved>({
    Text(1, "Magic"), Number(1, "Channel").Into(&Interleaved::channel), Number(2, "Length").Into(&Interleaved::length)});

// "RTP/AVP;unicast;client_port=8000-8001": each part a line.
void ShowParts(const Place& in, const Field& title, Field rest) {
  AddTextLine(in, title, "Name");
  Loop loop;
  while (rest.length > 0 && MoreAt(in, rest, loop)) {
    Field part = TakeWord(rest, ";");
    if (!part.here) continue;
    const Field whole = part;
    const Field name = TakeWord(part, "=");
    if (part.length > 0) {
      AddLine(in, whole, "%s=%s", Text(name), Text(part));
    } else {
      AddLine(in, whole, "%s", Text(whole));
    }
  }
}

// The ports that both ends agreed on: the reply tells them, from the server to the client.
void LearnPorts(const Place& at, Field rest) {
  const PacketState& packet = PacketOf(at);
  for (int32_t i = 0; i < 32 && rest.length > 0; ++i) {
    Field part = TakeWord(rest, ";,");
    const Field name = TakeWord(part, "=");
    const bool isClient = IsWord(name, "client_port");
    if (!isClient && !IsWord(name, "server_port")) continue;
    const int32_t media = DecimalOf(TakeWord(part, "-")), control = DecimalOf(part);
    const AddressSlot& address = isClient ? packet.destination : packet.source;
    const auto learn = [&](uint32_t identifier, int32_t port) {
      if (port < 1 || port > 65535) return;
      Learn(at.view, QX_OVER_UDP, static_cast<int32_t>(identifier), address, static_cast<uint16_t>(port), -1, -1, nullptr);
    };
    learn(kLearntRtp, media);
    learn(kLearntRtcp, control);
  }
}

bool DecodeMessage(const Place& at, Cursor& c) {
  const Cursor begin = c;
  StartLine start;
  if (!TakeStartLine(c, "RTSP/", start)) return false;
  const Place in = Under(at, start.isRequest
                                 ? AddLine(at, Ahead(begin, Left(begin)), "RTSP: %s %s", Text(start.method), Text(start.target))
                                 : AddLine(at, Ahead(begin, Left(begin)), "RTSP: %s %s", Text(start.code), Text(start.phrase)));
  ShowStartLine(in, start);
  int32_t length = 0;
  bool isSession = false;
  HeaderLine header;
  Loop loop;
  while (MoreAt(in, c, loop) && TakeHeader(c, header)) {
    const Place under = Under(in, ShowHeader(in, header));
    if (IsWord(header.name, "Transport") || IsWord(header.name, "Session")) ShowParts(under, header.name, header.value);
    if (!start.isRequest && IsWord(header.name, "Transport")) LearnPorts(at, header.value);
    if (IsWord(header.name, "Content-Length")) length = DecimalOf(header.value);
    if (IsWord(header.name, "Content-Type")) isSession = StartsWithWord(header.value, "application/sdp");
  }
  ShowEndOfHeaders(in, c);
  Cursor body = TakeCursor(c, length);
  if (!in.dead) SetRange(in, in.parent, begin.offset, c.offset - begin.offset);
  if (Left(body) == 0) return true;
  if (isSession) {
    CallDecoder(Deeper(at), body, DecodeSdp, "SDP Data");
  } else {
    TextLine line;
    Loop lines;
    while (MoreAt(in, body, lines) && TakeLine(body, line)) AddTextLine(in, line.whole, "Body", line.text);
  }
  return true;
}

bool DecodeInterleaved(const Place& at, Cursor& c) {
  if (Left(c) < 4 || PeekU8(c) != '$') return false;
  const Interleaved ahead = PeekRows(c, kInterleaved);
  const Place in = Under(at, AddLine(at, Ahead(c, 4), "RTSP: Interleaved Frame, Channel %u, %u bytes", ahead.channel.value,
                                     ahead.length.value));
  ShowRows(in, c, kInterleaved);
  Cursor data = TakeCursor(c, ahead.length.value);
  if (Left(data) == 0) return true;
  // Even channels carry media as a rule, odd ones their control; types 200 to 207 tell for certain.
  const uint32_t type = PeekU8(data, 1);
  const uint32_t protocol = type >= 200 && type <= 207 ? kLearntRtcp : kLearntRtp;
  const DecoderRow* row = FindBuiltinDecoder(protocol & 0xFFFF);
  CallDecoder(Deeper(at), data, row ? row->decode : nullptr, "Media Data");
  return true;
}

}  // namespace

int32_t DecodeRtsp(const Place& at, Cursor c) {
  int32_t shown = 0;
  Loop loop;
  while (MoreAt(at, c, loop) && (DecodeInterleaved(at, c) || DecodeMessage(at, c))) ++shown;
  if (shown == 0) return 0;
  AddRawRest(at, c, "RTSP Data");
  return 1;
}

}  // namespace qxview
