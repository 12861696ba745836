// Session Description Protocol (RFC 8866; attributes of RFC 3264, 3605, 4566, 4568, 8839 and others): which media a session
// has, where they go, and how they are coded. A line each: a letter, "=", a value.
#include "decoders/app/sdp.h"

#include <algorithm>

#include "core/engine.h"
#include "core/line_facts.h"
#include "core/times.h"
#include "decoders/app/media_sessions.h"
#include "decoders/app/rtp_extension_names.h"
#include "decoders/common/header_lines.h"
#include "decoders/net/dynamic_udp.h"
#include "decoders/net/learn.h"

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
    {"acap", {nullptr, {"Capability Number", "Attribute Capability"}}},
    {"acfg", {nullptr, {"Configuration Number", "Actual Configuration"}}},
    {"candidate", {nullptr, {"Foundation", "Component ID", "Transport", "Priority", "Address", "Port", "Candidate Type"}}},
    {"conf", {nullptr, {"Precondition Type", "Status Type", "Direction"}}},
    {"crypto", {nullptr, {"Tag", "Crypto Suite", "Key Parameters"}}},
    {"curr", {nullptr, {"Precondition Type", "Status Type", "Direction"}}},
    {"dcmap", {nullptr, {"Stream ID", "Parameters"}}},
    {"dcsa", {nullptr, {"Stream ID", "Stream Attribute"}}},
    {"depend", {nullptr, {"Format", "Dependency"}}},
    {"des", {nullptr, {"Precondition Type", "Strength", "Status Type", "Direction"}}},
    {"extmap", {nullptr, {"Extension ID", "URI", "Extension Attributes"}}},
    {"fingerprint", {nullptr, {"Hash Function", "Fingerprint"}}},
    {"floorid", {nullptr, {"Floor ID", "Media Streams"}}},
    {"fmtp", {nullptr, {"Format", "Parameters"}}},
    {"framesize", {nullptr, {"Format", "Frame Size"}}},
    {"group", {nullptr, {"Semantics", "Identification Tags"}}},
    {"imageattr", {nullptr, {"Format", "Image Attributes"}}},
    {"key-mgmt", {nullptr, {"Key Management Protocol", "Key Management Data"}}},
    {"mpd", {nullptr, {"Format", "Parameters"}}},
    {"msid", {nullptr, {"Stream ID", "Track ID"}}},
    {"msid-semantic", {nullptr, {"Semantics", "Stream IDs"}}},
    {"pcfg", {nullptr, {"Configuration Number", "Potential Configuration"}}},
    {"remote-candidates", {nullptr, {"Component ID", "Address", "Port", "Further Candidates"}}},
    {"rid", {nullptr, {"RID", "Direction", "Restrictions"}}},
    {"rtcp", {nullptr, {"Port", "Network Type", "Address Type", "Address"}}},
    {"rtcp-fb", {nullptr, {"Format", "Feedback"}}},
    {"sctpmap", {nullptr, {"Port", "Application", "Streams"}}},
    {"simulcast", {nullptr, {"Direction", "Streams", "Further Direction", "Further Streams"}}},
    {"source-filter", {nullptr, {"Filter Mode", "Network Type", "Address Type", "Destination", "Sources"}}},
    {"ssrc", {nullptr, {"SSRC", "Source Attribute"}}},
    {"ssrc-group", {nullptr, {"Semantics", "SSRCs"}}},
    {"tcap", {nullptr, {"Capability Number", "Transport Protocols"}}},
    {"zrtp-hash", {nullptr, {"Version", "Hash"}}},
};

// What a description announces of a medium, for the packets to come.
enum class Carriage : uint8_t { kNone, kRtp, kUdptl, kMsrp, kBfcp };
struct Announced {
  AddressSlot sessionAddress{}, address{};
  uint16_t port = 0, controlPort = 0;
  bool isMedium = false, isMuxed = false;
  Carriage carriage = Carriage::kNone;
  MediaSession session{};
  MediaSession shared{};   // of all media whose port is 0
};

// What the last part of an attribute is made of: "typ host raddr 192.0.2.1 rport 9", "mode=20;x=1", "inline:key|2^20|1:4".
void ShowPart(const Place& in, const char* label, Field value) {
  const bool isCandidate = std::strcmp(label, "Candidate Type") == 0;
  const bool isList = std::strcmp(label, "Parameters") == 0 || std::strcmp(label, "Restrictions") == 0;
  const bool isKey = std::strcmp(label, "Key Parameters") == 0;
  if (!isCandidate && !isList && !isKey) return;
  Loop loop;
  while (value.length > 0 && MoreAt(in, value, loop)) {
    if (isCandidate) {
      Field pair = value;
      const Field name = TakeWord(value), setting = TakeWord(value);
      pair.length = setting.here ? setting.offset + setting.length - pair.offset : name.length;
      if (name.here) AddLine(in, Slice(pair, 0, pair.length), "%s: %s", Text(name), Text(setting));   // keys: none
      continue;
    }
    const Field each = Trimmed(TakeWord(value, isKey ? "; \t" : ";"));
    if (!each.here || each.length == 0) continue;
    const Place under = Under(in, AddTextLine(in, each, "Parameter"));
    Field rest = each;
    if (!isKey || !StartsWithWord(each, "inline:")) continue;
    TakeWord(rest, ":");
    AddTextLine(under, TakeWord(rest, "|"), "Key and Salt");
    const Field lifetime = TakeWord(rest, "|"), identifier = TakeWord(rest, "|");
    if (lifetime.here && lifetime.length > 0) AddTextLine(under, lifetime, "Lifetime");
    if (identifier.here && identifier.length > 0) AddTextLine(under, identifier, "Master Key Identifier");
  }
}

void ShowParts(const Place& in, Field value, const Shown& shown) {
  for (const char* const* part = shown.parts; *part; ++part) {
    const Field word = part[1] ? TakeWord(value) : Trimmed(value);
    if (word.here && word.length > 0) ShowPart(Under(in, AddTextLine(in, word, *part)), *part, word);
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
  while (value.length > 0 && MoreAt(in, value, loop)) {
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

MediaFormat* FormatOf(MediaSession& session, int32_t payloadType) {
  if (payloadType < 0 || payloadType > 127) return nullptr;
  for (int32_t i = 0; i < session.formats; ++i) {
    if (session.format[i].payloadType == payloadType) return &session.format[i];
  }
  if (session.formats == kMostMediaFormats) return nullptr;
  MediaFormat& made = session.format[session.formats++];
  made = {};
  made.payloadType = static_cast<uint8_t>(payloadType);
  return &made;
}

// What of a format's parameters decides how its payload is framed.
uint8_t ModeOf(Field parameters) {
  for (int32_t i = 0; i < 32 && parameters.length > 0; ++i) {
    Field each = Trimmed(TakeWord(parameters, ";"));
    const Field name = Trimmed(TakeWord(each, "="));
    const bool isMode = IsWord(name, "octet-align") || IsWord(name, "sizelength") || IsWord(name, "mode");
    const int32_t value = isMode ? DecimalOf(Trimmed(each)) : -1;
    if (value >= 0 && value < 256) return static_cast<uint8_t>(value);
  }
  return 0;
}

void NoteAttribute(Announced& announced, Field value) {
  const Field name = TakeWord(value, ":");
  MediaSession& session = announced.session;
  if (IsWord(name, "rtcp-mux")) announced.isMuxed = true;
  if (IsWord(name, "rtcp")) announced.controlPort = static_cast<uint16_t>(std::max(0, DecimalOf(TakeWord(value))));
  if (IsWord(name, "rtpmap")) {
    MediaFormat* format = FormatOf(session, DecimalOf(TakeWord(value)));
    const Field encoding = TakeWord(value, "/");
    if (!format || !encoding.here) return;
    const int32_t length = std::min<int32_t>(encoding.length, sizeof format->encoding - 1);
    for (int32_t i = 0; i < length; ++i) format->encoding[i] = static_cast<char>(PeekU8(encoding, i));
    format->encoding[length] = 0;
    format->clockRate = static_cast<uint32_t>(std::max(0, DecimalOf(TakeWord(value, "/"))));
  }
  if (IsWord(name, "fmtp")) {
    MediaFormat* format = FormatOf(session, DecimalOf(TakeWord(value)));
    if (format) format->mode = ModeOf(value);
  }
  if (IsWord(name, "extmap") && session.extensions < kMostMediaExtensions) {
    Field identifier = TakeWord(value);
    const int32_t id = DecimalOf(TakeWord(identifier, "/"));
    const uint8_t uri = RtpExtensionOf(TakeWord(value));
    if (id > 0 && id < 256 && uri) session.extension[session.extensions++] = {static_cast<uint8_t>(id), uri};
  }
}

void NoteMedia(Announced& announced, Field value) {
  const Field kind = TakeWord(value);
  Field ports = TakeWord(value);
  const int32_t port = DecimalOf(TakeWord(ports, "/"));
  const Field protocol = TakeWord(value);
  announced.isMedium = true;
  announced.isMuxed = false;
  announced.address = announced.sessionAddress;
  announced.port = static_cast<uint16_t>(port > 0 && port < 65536 ? port : 0);
  announced.controlPort = 0;
  announced.session = {};
  announced.session.kind = IsWord(kind, "video") ? MediaKind::kVideo : IsWord(kind, "audio") ? MediaKind::kAudio : MediaKind::kData;
  announced.session.isProtected = false;
  announced.carriage = Carriage::kNone;
  for (int32_t at = 0; at < protocol.length; ++at) {
    const Field rest = Slice(protocol, at, protocol.length - at);
    if (StartsWithWord(rest, "AVP")) announced.carriage = Carriage::kRtp;
    if (StartsWithWord(rest, "SAVP")) announced.session.isProtected = true;
  }
  if (IsWord(protocol, "udptl")) announced.carriage = Carriage::kUdptl;
  if (IsWord(protocol, "TCP/MSRP")) announced.carriage = Carriage::kMsrp;
  if (IsWord(protocol, "UDP/BFCP") || IsWord(protocol, "TCP/BFCP")) announced.carriage = Carriage::kBfcp;
}

void NoteLine(Announced& announced, uint8_t letter, Field value) {
  if (letter == 'c') {
    TakeWord(value);
    TakeWord(value);
    ReadAddressText(TakeWord(value, "/"), announced.isMedium ? &announced.address : &announced.sessionAddress);
  }
  if (letter == 'a') NoteAttribute(announced, value);
}

// A description without ports leaves them to the protocol that carries it: they follow under its sender.
void Announce(const Place& at, Announced& announced) {
  constexpr uint32_t kUdptl = 0x103B0, kMsrp = 0x103B8, kBfcp = 0x103B9;
  if (!announced.isMedium || PacketOf(at).quoted) return;
  const uint16_t port = announced.port;
  if (port == 0) {
    if (announced.carriage != Carriage::kRtp) return;
    for (int32_t i = 0; i < announced.session.formats; ++i) {
      const MediaFormat& format = announced.session.format[i];
      if (MediaFormat* made = FormatOf(announced.shared, format.payloadType)) *made = format;
    }
    for (int32_t i = 0; i < announced.session.extensions && announced.shared.extensions < kMostMediaExtensions; ++i) {
      announced.shared.extension[announced.shared.extensions++] = announced.session.extension[i];
    }
    return AnnounceMedia(at, PacketOf(at).source, 0, announced.shared);
  }
  if (announced.address.kind == 0) return;
  const auto learn = [&](uint32_t transport, uint32_t identifier, uint16_t where) {
    Learn(at.view, transport, static_cast<int32_t>(transport | identifier), announced.address, where, -1, -1, nullptr);
  };
  switch (announced.carriage) {
    case Carriage::kRtp: {
      AnnounceMedia(at, announced.address, port, announced.session);
      learn(QX_OVER_UDP, kLearntRtp, port);
      const uint16_t control = announced.controlPort ? announced.controlPort : static_cast<uint16_t>(port + 1);
      if (!announced.isMuxed && control != port && control != 0) learn(QX_OVER_UDP, kLearntRtcp, control);
      return;
    }
    case Carriage::kUdptl: return learn(QX_OVER_UDP, kUdptl, port);
    case Carriage::kMsrp: return learn(QX_OVER_TCP, kMsrp, port);
    case Carriage::kBfcp:
      learn(QX_OVER_UDP, kBfcp, port);
      return learn(QX_OVER_TCP, kBfcp, port);
    case Carriage::kNone: return;
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
  Announced announced;
  TextLine line;
  Loop loop;
  while (MoreAt(in, c, loop) && TakeLine(c, line)) {
    if (line.text.length < 2 || PeekU8(line.text, 1) != '=') {
      if (line.text.length > 0) AddTextLine(level, line.whole, "Text", line.text);
      continue;
    }
    const Field value = Slice(line.text, 2, line.text.length - 2);
    if (PeekU8(line.text) == 'm') {
      Announce(at, announced);
      NoteMedia(announced, value);
      level = Under(in, AddTextLine(in, line.whole, "Media", value));
      AppendToLine(at, title, ", %s", Text(value));
      ShowMedia(level, value);
    } else {
      NoteLine(announced, static_cast<uint8_t>(PeekU8(line.text)), value);
      ShowLine(level, line, static_cast<uint8_t>(PeekU8(line.text)), value);
    }
  }
  Announce(at, announced);
  return 1;
}

void ShowSdpValue(const Place& in, uint8_t type, const Field& value) {
  const KeyedAs keys(PacketOf(in), "sdp");
  if (type == 'm') return ShowMedia(Under(in, AddTextLine(in, value, "Media")), value);
  ShowLine(in, {value, value}, type, value);
}

void AnnounceSdp(const Place& at, Cursor description) {
  Announced announced;
  TextLine line;
  Loop loop;
  while (More(description, loop) && TakeLine(description, line)) {
    if (line.text.length < 2 || PeekU8(line.text, 1) != '=') continue;
    const Field value = Slice(line.text, 2, line.text.length - 2);
    if (PeekU8(line.text) == 'm') {
      Announce(at, announced);
      NoteMedia(announced, value);
    } else {
      NoteLine(announced, static_cast<uint8_t>(PeekU8(line.text)), value);
    }
  }
  Announce(at, announced);
}

}  // namespace qxview
