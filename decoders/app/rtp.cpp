// Real-time Transport Protocol (RFC 3550; payload types RFC 3551, extension elements RFC 8285): sound and pictures.
//
//   0                             1                2         4          8       12
//   V(2) P(1) X(1) CSRC count(4)  M(1) type(7)     sequence  timestamp  SSRC    CSRC (4 each)
//   header extension: profile (2), words (2), data          payload             padding, its last byte the count
#include "core/decoder.h"
#include "decoders/app/media_sessions.h"
#include "decoders/app/rtp_codec_table.h"
#include "decoders/app/rtp_extension_names.h"
#include "decoders/app/rtp_payloads.h"

namespace qxview {
namespace {

constexpr uint32_t kOneByteElements = 0xBEDE, kTwoByteElements = 0x1000;
constexpr uint32_t kLastOneByteId = 15;   // ends a list of one-byte elements

// A type that was announced has that name, as far as types are free for it.
const char* CodecName(uint32_t payloadType, const MediaFormat* format) {
  const RtpCodec* codec = FindRtpCodec(static_cast<int32_t>(payloadType));
  const bool isFree = !codec || codec == &RtpCodecAt(kDynamicCodec);
  if (!isFree || !format || !format->encoding[0]) return codec ? codec->name : kUnknown;
  const RtpCodec* announced = FindRtpEncoding(format->encoding, format->clockRate);
  return announced ? announced->name : format->encoding;
}

// What a payload is coded as, in the words of session descriptions; null when nothing tells.
const char* EncodingOf(uint32_t payloadType, const MediaFormat* format) {
  if (format && format->encoding[0]) return format->encoding;
  const RtpCodec* codec = FindRtpCodec(static_cast<int32_t>(payloadType));
  return codec ? codec->encodingName : nullptr;
}

void AddFlagLines(const Place& in, const Field& first, const Field& second, const MediaFormat* format) {
  const Place flags = Under(in, AddLine(in, first, "Header: 0x%.02X", first.value));
  const auto version = BitsOf(first, 0, 2), padding = BitsOf(first, 2, 1), extension = BitsOf(first, 3, 1),
             sources = BitsOf(first, 4, 4);
  AddBitLine(flags, first, "%s : Version = %u", version.picture, version.value);
  AddBitLine(flags, first, "%s : Padding = %s", padding.picture, SetOrNotSet(padding.value));
  AddBitLine(flags, first, "%s : Extension = %s", extension.picture, SetOrNotSet(extension.value));
  AddBitLine(flags, first, "%s : CSRC Count = %u", sources.picture, sources.value);
  const auto marker = BitsOf(second, 0, 1), type = BitsOf(second, 1, 7);
  const char* name = CodecName(type.value, format);
  const Place payload = Under(in, AddLine(in, second, "Payload Type: %u = %s", type.value, name));
  AddBitLine(payload, second, "%s : Marker = %s", marker.picture, SetOrNotSet(marker.value));
  AddBitLine(payload, second, "%s : Payload Type = %u", type.picture, type.value);
}

// Elements of an identifier and a length in one byte (the length less one) or in two; zero bytes are filling.
void DecodeElements(const Place& in, Cursor c, bool twoBytes, const MediaSession* session) {
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const Cursor element = c;
    const Field first = TakeU8(c);
    if (first.value == 0) continue;
    const uint32_t id = twoBytes ? first.value : first.value >> 4;
    if (!twoBytes && id == kLastOneByteId) return;
    const uint32_t length = twoBytes ? TakeU8(c).value : (first.value & 0x0F) + 1;
    const Field data = TakeBytes(c, length);
    if (!data.here) continue;
    const Place under = Under(in, AddLine(in, Ahead(element, Taken(c) - Taken(element)), "Element: ID %u, %u bytes: %s", id,
                                          length, HexText(data)));
    for (int32_t i = 0; session && i < session->extensions; ++i) {
      if (session->extension[i].id != id) continue;
      AddLine(under, data, "Extension: %s", RtpExtensionName(session->extension[i].uri));
      ShowRtpExtension(under, CursorOver(data), session->extension[i].uri);
    }
  }
}

void DecodeExtension(const Place& in, Cursor& c, const MediaSession* session) {
  const Cursor start = c;
  const Field profile = TakeU16(c);
  const Field words = TakeU16(c);
  if (!words.here) return;
  const Cursor data = TakeCursor(c, 4 * words.value);
  const Place under = Under(in, AddLine(in, Ahead(start, 4 + Left(data)), "Header Extension: Profile 0x%.04X, %u words",
                                        profile.value, words.value));
  AddLine(under, profile, "Profile: 0x%.04X", profile.value);
  AddLine(under, words, "Length: %u words", words.value);
  const bool twoBytes = (profile.value & 0xFFF0) == kTwoByteElements;
  if (twoBytes || profile.value == kOneByteElements) {
    DecodeElements(under, data, twoBytes, session);
  } else {
    Cursor rest = data;
    AddBlock(under, Rest(rest), "Extension Data");
  }
}

}  // namespace

int32_t DecodeRtp(const Place& at, Cursor c) {
  constexpr int32_t kHeader = 12;
  if (Left(c) < kHeader || PeekU8(c) >> 6 != 2) return 0;
  const uint32_t flags = PeekU8(c), payloadType = PeekU8(c, 1) & 0x7F;
  const MediaSession* session = FindMedia(at.view);
  const MediaFormat* format = FindMediaFormat(session, payloadType);
  const Place in = Under(at, AddLine(at, Ahead(c, kHeader), "RTP: %s, Sequence: %u, Time: %u, SSRC: %u",
                                     CodecName(payloadType, format), PeekU16(c, 2), PeekU32(c, 4),
                                     PeekU32(c, 8)));
  const Field first = TakeU8(c);
  const Field second = TakeU8(c);
  AddFlagLines(in, first, second, format);
  const Field sequence = TakeU16(c);
  AddLine(in, sequence, "Sequence: %u", sequence.value);
  const Field timestamp = TakeU32(c);
  AddLine(in, timestamp, "Time: %u", timestamp.value);
  const Field source = TakeU32(c);
  AddLine(in, source, "SSRC: 0x%.08X (%u)", source.value, source.value);
  for (uint32_t i = 1; i <= (flags & 0x0F); ++i) {
    const Field contributing = TakeU32(c);
    AddLine(in, contributing, "CSRC %u: 0x%.08X (%u)", i, contributing.value, contributing.value);
  }
  if (flags & 0x10) DecodeExtension(in, c, session);
  if (!in.dead) SetRange(in, in.parent, c.begin, Taken(c));
  const int32_t padding = (flags & 0x20) && Left(c) > 0 ? PeekU8(c, Left(c) - 1) : 0;
  Cursor payload = TakeCursor(c, padding <= Left(c) ? Left(c) - padding : Left(c));
  AddLine(in, Rest(c), "Padding: %u bytes", padding);
  if (session && session->isProtected) {   // whose payload is encrypted, with a tag behind it
    AddRawRest(at, payload, "SRTP Payload");
    return 1;
  }
  const char* encoding = EncodingOf(payloadType, format);
  if (encoding && ShowRtpPayload(at, payload, encoding, format)) return 1;
  AddRawRest(at, payload, "RTP Payload");
  return 1;
}

}  // namespace qxview
