#include "core/name_table.h"
#include "decoders/app/rtcp.h"

namespace qxview {
namespace {

constexpr auto kTypeNames = SortedNames({{192, "Full Intra-Frame Request"},
                                         {193, "Negative Acknowledgement"},
                                         {194, "SMPTE Time Code"},
                                         {195, "Extended Inter-Arrival Jitter Report"},
                                         {kRtcpSenderReport, "Sender Report"},
                                         {kRtcpReceiverReport, "Receiver Report"},
                                         {kRtcpSourceDescription, "Source Description"},
                                         {kRtcpGoodbye, "Goodbye"},
                                         {kRtcpApplication, "Application-defined"},
                                         {kRtcpTransportFeedback, "Transport Layer Feedback"},
                                         {kRtcpPayloadFeedback, "Payload-Specific Feedback"},
                                         {kRtcpExtendedReport, "Extended Report"},
                                         {208, "AVB RTCP Packet"},
                                         {209, "Receiver Summary Information"},
                                         {210, "Port Mapping"},
                                         {211, "IDMS Settings"},
                                         {212, "Reporting Group Reporting Sources"},
                                         {213, "Splicing Notification"}});

// Up to three zero bytes that fill the last word.
bool IsFilling(const Field& filling) {
  if (!filling.here || filling.length > 3) return false;
  for (int32_t i = 0; i < filling.length; ++i) {
    if (PeekU8(filling, i) != 0) return false;
  }
  return true;
}

// A chunk: its source, items up to a zero one, zero bytes up to the next word.
bool TakeChunk(Cursor& c) {
  const int32_t start = c.offset;
  TakeU32(c);
  Loop loop;
  while (More(c, loop)) {
    if (TakeU8(c).value == 0) return IsFilling(TakeBytes(c, -(c.offset - start) & 3));
    TakeBytes(c, TakeU8(c).value);
  }
  return false;
}

bool IsSourceDescription(Cursor c, uint32_t chunks) {
  for (uint32_t i = 0; i < chunks; ++i) {
    if (!TakeChunk(c)) return false;
  }
  return Left(c) == 0;
}

bool IsGoodbye(Cursor c, uint32_t sources) {
  if (!TakeBytes(c, 4 * sources).here) return false;
  if (Left(c) == 0) return sources > 0;
  const Field length = TakeU8(c);
  return length.value > 0 && TakeBytes(c, length.value).here && IsFilling(TakeBytes(c, Left(c)));
}

bool IsApplication(Cursor c) {
  TakeU32(c);
  const Field name = TakeBytes(c, 4);
  for (int32_t i = 0; i < name.length; ++i) {
    if (PeekU8(name, i) < ' ' || PeekU8(name, i) > '~') return false;
  }
  return name.here;
}

// Whether the body, padding taken off, has room for what the header counts.
bool IsRtcpBody(const RtcpHeader& header, Cursor c) {
  switch (header.type) {
    case kRtcpSenderReport: return Left(c) >= 24 + kRtcpReportBlock * header.count;
    case kRtcpReceiverReport: return Left(c) >= 4 + kRtcpReportBlock * header.count;
    case kRtcpSourceDescription: return IsSourceDescription(c, header.count);
    case kRtcpGoodbye: return IsGoodbye(c, header.count);
    case kRtcpApplication: return IsApplication(c);
    case kRtcpTransportFeedback:
    case kRtcpPayloadFeedback: return Left(c) >= 8;
    case kRtcpExtendedReport: return Left(c) >= 4;
    default: return false;
  }
}

// What the report blocks of the first packet say.
void ReadReports(const RtcpHeader& header, Cursor c, RtcpCompound* out) {
  const bool sender = header.type == kRtcpSenderReport;
  *out = {header.type, 0, 0, 0};
  if (!sender && header.type != kRtcpReceiverReport) return;
  out->reportBlocks = header.count;
  TakeBytes(c, sender ? 24 : 4);
  for (uint32_t i = 0; i < header.count; ++i) {
    const Field block = TakeBytes(c, kRtcpReportBlock);
    if (!block.here) return;
    const uint16_t sequence = static_cast<uint16_t>(PeekU16(block, 10));
    const uint32_t jitter = PeekU32(block, 12);
    if (sequence > out->highestSequence) out->highestSequence = sequence;
    if (jitter > out->greatestJitter) out->greatestJitter = jitter;
  }
}

}  // namespace

const char* RtcpTypeName(uint32_t type) { return LookupName(kTypeNames, type, nullptr); }

bool ReadRtcpHeader(const Cursor& c, RtcpHeader* out) {
  if (Left(c) < 4) return false;
  const uint8_t first = PeekU8(c);
  *out = {static_cast<uint8_t>(first >> 6), (first & 0x20) != 0, static_cast<uint8_t>(first & 0x1F),
          static_cast<uint8_t>(PeekU8(c, 1)),
          4 + 4 * static_cast<int32_t>(PeekU16(c, 2))};
  return true;
}

bool ParseRtcp(const uint8_t* data, int32_t length, RtcpCompound* out) {
  if (!data || length < 8) return false;
  Cursor c = MakeCursor(data, 0, length);
  RtcpHeader header;
  for (bool first = true; Left(c) > 0; first = false) {
    if (!ReadRtcpHeader(c, &header) || header.version != 2 || header.length > Left(c)) return false;
    if (first && (header.type < kRtcpSenderReport || header.type > kRtcpApplication)) return false;
    Cursor body = TakeCursor(c, header.length);
    TakeU32(body);
    if (header.padding) {
      const int32_t padding = Left(body) > 0 ? PeekU8(body, Left(body) - 1) : 0;
      if (Left(c) > 0 || padding == 0 || padding % 4 != 0 || padding > Left(body)) return false;
      body.left -= padding;
    }
    if (!IsRtcpBody(header, body)) return false;
    if (first) ReadReports(header, body, out);
  }
  return true;
}

bool IsRtcpHeader(const RtcpHeader& header) { return header.version == 2 && header.type >= 192 && header.type <= 223; }

int32_t SrtcpIndexAt(const Cursor& c) {
  constexpr int32_t kClear = 8, kIndex = 4;
  constexpr uint32_t kEncrypted = 0x800;   // and eleven bits of the index
  RtcpHeader header;
  if (!ReadRtcpHeader(c, &header) || !IsRtcpHeader(header) || header.length < kClear || header.length > Left(c)) return 0;
  Cursor walk = c;
  while (ReadRtcpHeader(walk, &header) && IsRtcpHeader(header) && header.length <= Left(walk)) TakeBytes(walk, header.length);
  if (Left(walk) == 0) return 0;
  constexpr int32_t kTags[] = {10, 0, 4};
  for (const int32_t tag : kTags) {
    const int32_t at = Left(c) - tag - kIndex;
    if (at >= kClear && PeekU32(c, at) >> 20 == kEncrypted) return at;
  }
  return 0;
}

}  // namespace qxview
