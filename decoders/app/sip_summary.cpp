// The packet list's text for SIP (RFC 3261) and RTSP (RFC 2326, RFC 7826): method or status, and the headers that tell
// one message from the next.
//
//   INVITE sip:bob@example.org SIP/2.0 CR LF       SIP/2.0 200 OK CR LF
//   SETUP rtsp://example.org/a RTSP/1.0 CR LF      RTSP/1.0 200 OK CR LF
#include "decoders/app/summaries.h"
#include "decoders/app/summary_text.h"

namespace qxview {
namespace {

struct StartLine {
  enum Kind { kNeither, kRequest, kReply } kind;
  TextSlice first, rest;   // method and URI; code and phrase
};

// `protocol` is "SIP/" or "RTSP/". A request ends in the protocol's version, a reply starts with it.
StartLine ReadStartLine(const TextSlice& line, const char* protocol) {
  StartLine read{StartLine::kNeither, {line.text, 0}, {line.text, 0}};
  TextSlice rest;
  const TextSlice first = FirstWord(line, &rest);
  if (StartsWith(first, protocol)) {
    read.first = FirstWord(rest, &read.rest);
    read.kind = read.first.length == 3 && IsDigit(read.first.text[0]) ? StartLine::kReply : StartLine::kNeither;
    return read;
  }
  read.first = first;
  read.rest = rest;
  int32_t at = rest.length;
  while (at > 0 && rest.text[at - 1] != ' ') --at;
  if (at == 0 || !StartsWith({rest.text + at, rest.length - at}, protocol)) return read;
  while (at > 0 && rest.text[at - 1] == ' ') --at;
  read.rest.length = at;
  read.kind = first.length > 0 && at > 0 ? StartLine::kRequest : StartLine::kNeither;
  return read;
}

// "Bob <sip:bob@example.org>;tag=1": the address between the angle brackets, or up to the parameters.
TextSlice PartyOf(TextSlice value) {
  const void* open = value.length > 0 ? std::memchr(value.text, '<', static_cast<size_t>(value.length)) : nullptr;
  char end = ';';
  if (open) {
    const int32_t skip = static_cast<int32_t>(static_cast<const char*>(open) - value.text) + 1;
    value = {value.text + skip, value.length - skip};
    end = '>';
  }
  const void* close = value.length > 0 ? std::memchr(value.text, end, static_cast<size_t>(value.length)) : nullptr;
  if (close) value.length = static_cast<int32_t>(static_cast<const char*>(close) - value.text);
  return value;
}

// The method that a reply answers, and its number: "1 INVITE".
void AddSequence(SummaryText& text, const uint8_t* data, int32_t length) {
  AddValue(text, "CSeq", HeaderValue(data, length, "CSeq", 0));
}

}  // namespace

int32_t DescribeSip(const uint8_t* data, int32_t length, char* out, int32_t outSize, int32_t flag) {
  SummaryText text;
  if (!BeginSummary(text, data, length, out, outSize)) return 0;
  const StartLine start = ReadStartLine(FirstLine(data, length), "SIP/");
  if (start.kind == StartLine::kNeither) return 0;
  if (start.kind == StartLine::kRequest) {
    Add(text, "SIP %s %s", start.first, start.rest);
  } else {
    Add(text, "SIP Status: %s %s", start.first, start.rest);
  }
  AddValue(text, "From", PartyOf(HeaderValue(data, length, "From", 'f')));
  AddValue(text, "To", PartyOf(HeaderValue(data, length, "To", 't')));
  AddSequence(text, data, length);
  if (flag) AddValue(text, "Call-ID", HeaderValue(data, length, "Call-ID", 'i'));
  return 1;
}

int32_t DescribeRtsp(const uint8_t* data, int32_t length, char* out, int32_t outSize) {
  constexpr uint8_t kInterleaved = '$';   // RTP or RTCP carried in the connection: '$', channel, length (2)
  SummaryText text;
  if (!BeginSummary(text, data, length, out, outSize)) return 0;
  const Cursor c = MakeCursor(data, 0, length);
  if (PeekU8(c) == kInterleaved && length >= 4) {
    Add(text, "RTSP Interleaved Data, Channel: %u, Length: %u", PeekU8(c, 1), PeekU16(c, 2));
    return 1;
  }
  const TextSlice line = FirstLine(data, length);
  if (line.length == 0) return 0;
  const StartLine start = ReadStartLine(line, "RTSP/");
  if (start.kind == StartLine::kNeither) return Add(text, "RTSP Data"), 1;
  Add(text, start.kind == StartLine::kRequest ? "RTSP " : "RTSP Status: ");
  Add(text, "%s %s", start.first, start.rest);
  AddSequence(text, data, length);
  AddValue(text, "Session", HeaderValue(data, length, "Session", 0));
  return 1;
}

}  // namespace qxview
