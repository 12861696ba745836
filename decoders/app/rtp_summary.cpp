#include "decoders/app/rtp_summary.h"

#include "core/bounded_text.h"
#include "decoders/app/rtcp.h"
#include "decoders/app/rtp_codec_table.h"

namespace qxview {
namespace {

const char* KindText(MediaKind kind) {
  constexpr const char* kTexts[] = {"",      " Audio",       " Video",   " Audio/Video", " Data",
                                    " Application", " Control", " Text", " Message"};
  const uint32_t index = static_cast<uint32_t>(kind);
  return index < sizeof kTexts / sizeof kTexts[0] ? kTexts[index] : "";
}

// What was negotiated for a type: null when nothing was, or when the table does not know the encoding.
const RtpCodec* FindNegotiated(const RtpStream* stream, int32_t payloadType) {
  for (int32_t i = 0; stream && stream->media && i < stream->count; ++i) {
    const RtpMedia& media = stream->media[i];
    if (media.payloadType == payloadType) return FindRtpEncoding(media.encodingName, media.clockRate);
  }
  return nullptr;
}

bool IsSummarised(const RtcpHeader& header) {
  return header.version == 2 && header.type >= kRtcpSenderReport && header.type <= kRtcpApplication;
}

// A packet that is wholly there, with room for the reports that it counts.
bool TakeRtcpPacket(Cursor& c, RtcpHeader* header, Cursor* packet) {
  if (!ReadRtcpHeader(c, header) || header->length > Left(c)) return false;
  *packet = TakeCursor(c, header->length);
  if (!IsSummarised(*header)) return true;
  if (header->type == kRtcpSenderReport) return header->length >= 28 + kRtcpReportBlock * header->count;
  if (header->type == kRtcpReceiverReport) return header->length >= 8 + kRtcpReportBlock * header->count;
  return true;
}

void AppendReport(const RtcpHeader& header, Cursor packet, char* out, int32_t outSize) {
  const bool sender = header.type == kRtcpSenderReport;
  if (sender) AppendFormat(out, outSize, ", NTP Time: %u.%u", PeekU32(packet, 8), PeekU32(packet, 12));
  if (header.count == 0) return;
  TakeBytes(packet, sender ? 28 : 8);
  const uint32_t delay = PeekU32(packet, 20);   // in 1/65536 of a second
  AppendFormat(out, outSize, ", Jitter: %u", PeekU32(packet, 12));
  AppendFormat(out, outSize, ", Delay: %u.%u sec", delay >> 16,
               static_cast<uint32_t>(uint64_t{delay & 0xFFFF} * 1000000 >> 16));
}

}  // namespace

int32_t DescribeRtp(const uint8_t* data, int32_t length, const RtpStream* stream, int32_t showSsrc, char* out,
                    int32_t outSize) {
  if (!out || outSize < 1) return 0;
  out[0] = 0;
  const Cursor c = MakeCursor(data, 0, data ? length : 0);
  if (Left(c) < 12 || PeekU8(c) >> 6 != 2) return 0;
  const int32_t payloadType = PeekU8(c, 1) & 0x7F;
  const RtpCodec* codec = FindRtpCodec(payloadType);
  if (!codec) return 0;
  if (codec == &RtpCodecAt(kDynamicCodec)) {
    if (const RtpCodec* negotiated = FindNegotiated(stream, payloadType)) codec = negotiated;
  }
  FormatInto(out, outSize, "RTP Payload: %s%s", codec->name, KindText(codec->kind));
  if (codec->clockRate != 0) AppendFormat(out, outSize, " at %u Hz", codec->clockRate);
  AppendFormat(out, outSize, ", Sequence: %u, Time: %u", PeekU16(c, 2), PeekU32(c, 4));
  if (showSsrc) AppendFormat(out, outSize, ", SSRC: %u", PeekU32(c, 8));
  return 1;
}

const char* RtpCodecName(int32_t payloadType) {
  const RtpCodec* codec = FindRtpCodec(payloadType);
  return codec ? codec->name : "";
}

int32_t DescribeRtcp(const uint8_t* data, int32_t length, char* out, int32_t outSize) {
  if (!out || outSize < 1) return 0;
  out[0] = 0;
  if (!data || length < 1) return 0;
  Cursor c = MakeCursor(data, 0, length), packet;
  RtcpHeader header;
  if (!TakeRtcpPacket(c, &header, &packet)) return 0;
  CopyString(out, outSize, "RTCP ");
  if (IsSummarised(header)) {
    AppendString(out, outSize, RtcpTypeName(header.type));
    const bool report = header.type == kRtcpSenderReport || header.type == kRtcpReceiverReport;
    if (report) AppendReport(header, packet, out, outSize);
  }
  if (TakeRtcpPacket(c, &header, &packet) && IsSummarised(header)) {
    AppendFormat(out, outSize, ", %s", RtcpTypeName(header.type));
  }
  return 1;
}

}  // namespace qxview
