// Session Description Protocol (RFC 8866; attributes of RFC 3264, 3605, 4566, 4568, 8839 and others): which media a session
// has, where they go, and how they are coded. A line each: a letter, "=", a value.
#include "core/times.h"
#include "decoders/app/rtp_codec_table.h"
#include "decoders/common/header_lines.h"

namespace qxview {
namespace {

struct Shown {
  const char* label;
  const char* parts[8];   // of the value's words; the last takes what is left. None: the value is one
};

constexpr struct {
  char letter;
  Shown shown;
} kLines[] = {
    {'v', {"Version", {}}},
    {'o', {"Origin", {"Username", "Session ID", "Session Version", "Network Type", "Address Type", "Address"}}},
    {'s', {"Session Name", {}}},
    {'i', {"Information", {}}},
    {'u', {"URI", {}}},
    {'e', {"Email Address", {}}},
    {'p', {"Phone Number", {}}},
    {'c', {"Connection", {"Network Type", "Address Type", "Address"}}},
    {'r', {"Repeat Times", {"Repeat Interval", "Active Duration", "Offsets"}}},
    {'z', {"Time Zone Adjustments", {}}},
    {'k', {"Encryption Key", {}}},
};

// Attributes whose values have parts.
constexpr struct {
  const char* name;
  Shown shown;
} kAttributes[] = {
    {"candidate", {nullptr, {"Foundation", "Component ID", "Transport", "Priority", "Address", "Port", "Candidate Type"}}},
    {"crypto", {nullptr, {"Tag", "Crypto Suite", "Key Parameters"}}},
    {"fingerprint", {nullptr, {"Hash Function", "Fingerprint"}}},
    {"fmtp", {nullptr, {"Format", "Parameters"}}},
    {"rtcp", {nullptr, {"Port", "Network Type", "Address Type", "Address"}}},
    {"rtcp-fb", {nullptr, {"Format", "Feedback"}}},
    {"ssrc", {nullptr, {"SSRC", "Source Attribute"}}},
};

void ShowParts(const Place& in, Field value, const Shown& shown) {
  for (const char* const* part = shown.parts; *part; ++part) {
    const Field word = part[1] ? TakeWord(value) : Trimmed(value);
    if (word.here && word.length > 0) AddTextLine(in, word, *part);
  }
}

// Seconds since 1900; 0 stands for no bound.
void ShowTime(const Place& in, const Field& word, const char* label) {
  constexpr int64_t kTo1970 = 2208988800;
  int64_t seconds = 0;
  for (int32_t i = 0; i < word.length && seconds < 100000000000; ++i) {
    if (PeekU8(word, i) < '0' || PeekU8(word, i) > '9') return (void)AddTextLine(in, word, label);
    seconds = seconds * 10 + (PeekU8(word, i) - '0');
  }
  if (seconds < kTo1970) {
    AddTextLine(in, word, label);
  } else {
    AddLine(in, word, "%s: %s (%s)", label, Text(word), UtcText(seconds - kTo1970));
  }
}

// "audio 49170/2 RTP/AVP 0 8 97".
void ShowMedia(const Place& in, Field value) {
  AddTextLine(in, TakeWord(value), "Media Type");
  Field ports = TakeWord(value);
  AddTextLine(in, TakeWord(ports, "/"), "Port");
  if (ports.length > 0) AddTextLine(in, ports, "Number of Ports");
  const Field protocol = TakeWord(value);
  AddTextLine(in, protocol, "Protocol");
  const bool isRtp = StartsWithWord(protocol, "RTP/") || StartsWithWord(protocol, "UDP/TLS/RTP/");
  Loop loop;
  while (value.length > 0 && MoreAt(in, CursorOver(value), loop)) {
    const Field format = TakeWord(value);
    const RtpCodec* codec = isRtp && format.here ? FindRtpCodec(DecimalOf(format)) : nullptr;
    if (codec) {
      AddLine(in, format, "Format: %s = %s", Text(format), codec->name);
    } else {
      AddTextLine(in, format, "Format");
    }
  }
}

// "name" or "name:value"; "rtpmap:97 iLBC/8000/1" names a format.
void ShowAttribute(const Place& in, Field value) {
  const Field name = TakeWord(value, ":");
  AddTextLine(in, name, "Attribute Name");
  if (value.length == 0) return;
  const Place under = Under(in, AddTextLine(in, value, "Attribute Value"));
  if (IsWord(name, "rtpmap")) {
    AddTextLine(under, TakeWord(value), "Format");
    AddTextLine(under, TakeWord(value, "/"), "Encoding Name");
    AddTextLine(under, TakeWord(value, "/"), "Clock Rate");
    if (value.length > 0) AddTextLine(under, value, "Channels");
    return;
  }
  for (const auto& row : kAttributes) {
    if (IsWord(name, row.name)) ShowParts(under, value, row.shown);
  }
}

void ShowLine(const Place& in, const TextLine& line, uint8_t letter, Field value) {
  switch (letter) {
    case 't': {
      const Place under = Under(in, AddTextLine(in, line.whole, "Time", value));
      ShowTime(under, TakeWord(value), "Start Time");
      ShowTime(under, TakeWord(value), "Stop Time");
      return;
    }
    case 'b': {
      const Place under = Under(in, AddTextLine(in, line.whole, "Bandwidth", value));
      AddTextLine(under, TakeWord(value, ":"), "Bandwidth Type");
      AddTextLine(under, value, "Bandwidth Value");
      return;
    }
    case 'a': return ShowAttribute(Under(in, AddTextLine(in, line.whole, "Attribute", value)), value);
    default: break;
  }
  for (const auto& row : kLines) {
    if (static_cast<uint8_t>(row.letter) != letter) continue;
    ShowParts(Under(in, AddTextLine(in, line.whole, row.shown.label, value)), value, row.shown);
    return;
  }
  AddTextLine(in, line.whole, kUnknown, line.text);
}

}  // namespace

int32_t DecodeSdp(const Place& at, Cursor c) {
  if (!StartsWithText(c, "v=")) return 0;
  const LineHandle title = AddLine(at, Ahead(c, Left(c)), "SDP");
  const Place in = Under(at, title);
  Place level = in;   // the session's lines, then each medium's
  TextLine line;
  Loop loop;
  while (MoreAt(in, c, loop) && TakeLine(c, line)) {
    if (line.text.length < 2 || PeekU8(line.text, 1) != '=') {
      if (line.text.length > 0) AddTextLine(level, line.whole, "Text", line.text);
      continue;
    }
    const Field value = Slice(line.text, 2, line.text.length - 2);
    if (PeekU8(line.text) == 'm') {
      level = Under(in, AddTextLine(in, line.whole, "Media", value));
      AppendToLine(at, title, ", %s", Text(value));
      ShowMedia(level, value);
    } else {
      ShowLine(level, line, PeekU8(line.text), value);
    }
  }
  return 1;
}

}  // namespace qxview
