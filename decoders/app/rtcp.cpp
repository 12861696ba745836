// RTP Control Protocol (RFC 3550; feedback RFC 4585, extended reports RFC 3611): how well a stream is received, and by
// whom. A datagram carries a compound of packets, each a multiple of four bytes.
//
//   0                     1     2                     4
//   V(2) P(1) count(5)    type  length in words - 1   source, then by type
//
// Report block: source (4), fraction lost (1), packets lost (3), highest sequence (4), jitter (4), last report (4),
// delay since (4).
#include "decoders/app/rtcp.h"

#include "core/rows.h"
#include "decoders/app/rtcp_feedback.h"
#include "decoders/common/tells_all.h"
#include "decoders/common/text_lines.h"

namespace qxview {
namespace {

constexpr auto kItemNames = SortedNames({{0, "END"}, {1, "CNAME"}, {2, "NAME"}, {3, "EMAIL"}, {4, "PHONE"}, {5, "LOC"},
                                         {6, "TOOL"}, {7, "NOTE"}, {8, "PRIV"}, {9, "H323-CADDR"}, {10, "APSI"}, {11, "RGRP"},
                                         {12, "RtpStreamId"}, {13, "RepairedRtpStreamId"}, {14, "CCID"}, {15, "MID"}});
constexpr auto kTransportFeedbackNames = SortedNames({{1, "Generic NACK"}, {3, "TMMBR"}, {4, "TMMBN"},
                                                      {5, "RTCP-SR-REQ"}, {6, "RAMS"}, {7, "TLLEI"},
                                                      {8, "RTCP-ECN-FB"}, {9, "PAUSE-RESUME"}, {10, "DBI"}, {11, "CCFB"},
                                                      {15, "Transport-Wide"}});
constexpr auto kPayloadFeedbackNames = SortedNames({{1, "PLI"}, {2, "SLI"}, {3, "RPSI"}, {4, "FIR"}, {5, "TSTR"},
                                                    {6, "TSTN"}, {7, "VBCM"}, {8, "PSLEI"}, {9, "ROI"},
                                                    {10, "LRR"}, {15, "Application Layer Feedback"}});
uint32_t Millionths(uint32_t fraction) { return static_cast<uint32_t>(uint64_t{fraction} * 1000000 >> 32); }

constexpr auto kTime = Rows<NoValues>({NtpTime("UTC")});
constexpr auto kTimeParts = Rows<NoValues>({Number(4, "Seconds"), Number(4, "Fraction")});
constexpr auto kItem = Rows<NoValues>({Number(1, "Type", kItemNames), Number(1, "Length"), Utf8(0, "Text")});
constexpr auto kPrivateItem = Rows<NoValues>({
    Number(1, "Type", kItemNames), Number(1, "Length"), Counted(1, Utf8(0, "Prefix")), Utf8(0, "Text")});

constexpr auto kReason = Rows<NoValues>({Number(1, "Length"), Utf8(0, "Text")});

void AddSource(const Place& in, Cursor& c, const char* who) {
  const Field source = TakeU32(c);
  AddLine(in, source, "%s: 0x%.08X (%u)", who, source.value, source.value);
}

void DecodeSenderInformation(const Place& in, Cursor& c) {
  const Field time = TakeBytes(c, 8);
  if (time.here) {
    const uint32_t seconds = PeekU32(time), fraction = PeekU32(time, 4);
    const Place under = Under(in, AddLine(in, time, "NTP Time: %u.%.06u seconds (0x%.08X %.08X)", seconds,
                                          Millionths(fraction), seconds, fraction));
    Cursor parts = CursorOver(time), whole = parts;
    ShowRows(under, whole, kTime);
    ShowRows(under, parts, kTimeParts);
  }
  const Field timestamp = TakeU32(c);
  AddLine(in, timestamp, "RTP Timestamp: %u", timestamp.value);
  const Field packets = TakeU32(c);
  AddLine(in, packets, "Sender's Packet Count: %u", packets.value);
  const Field octets = TakeU32(c);
  AddLine(in, octets, "Sender's Octet Count: %u", octets.value);
}

void DecodeReportBlock(const Place& at, Cursor c, uint32_t number) {
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "Report Block %u:", number));
  AddSource(in, c, "SSRC");
  const Field fraction = TakeU8(c);
  AddLine(in, fraction, "Fraction Lost: %u / 256", fraction.value);
  const Field lost = TakeU24(c);
  const int32_t signedLost = static_cast<int32_t>(lost.value << 8) >> 8;   // duplicates make it negative
  AddLine(in, lost, "Cumulative Packets Lost: %d", signedLost);
  const Field highest = TakeU32(c);
  AddLine(in, highest, "Extended Highest Sequence: %u (Cycles: %u, Sequence: %u)", highest.value, highest.value >> 16,
          highest.value & 0xFFFF);
  const Field jitter = TakeU32(c);
  AddLine(in, jitter, "Interarrival Jitter: %u", jitter.value);
  const Field last = TakeU32(c);
  AddLine(in, last, "Last Sender Report Timestamp: 0x%.08X", last.value);
  const Field delay = TakeU32(c);
  AddLine(in, delay, "Delay Since Last Sender Report: %u (%u.%.06u seconds)", delay.value, delay.value >> 16,
          Millionths(delay.value << 16));
}

void DecodeReport(const Place& in, Cursor& c, const RtcpHeader& header) {
  const bool sender = header.type == kRtcpSenderReport;
  AddSource(in, c, "Sender SSRC");
  if (sender) DecodeSenderInformation(in, c);
  Loop loop;
  for (uint32_t i = 1; i <= header.count && MoreAt(in, c, loop); ++i) {
    DecodeReportBlock(in, TakeCursor(c, kRtcpReportBlock), i);
  }
  AddBlock(in, Rest(c), "Profile-Specific Extension");
}

// A chunk's items; the zero one that ends it is filled up to the next word.
void DecodeChunk(const Place& at, Cursor& c, uint32_t number) {
  constexpr uint32_t kPrivate = 8;
  const int32_t start = c.offset;
  const Place in = Under(at, AddLine(at, Ahead(c, 0), "Chunk %u:", number));
  AddSource(in, c, "SSRC");
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const Cursor item = c;
    const Field type = TakeU8(c);
    if (type.value == 0) {
      const int32_t filling = -(c.offset - start) & 3;
      TakeBytes(c, filling < Left(c) ? filling : Left(c));
      AddLine(in, Ahead(item, Taken(c) - Taken(item)), "Item: 0 = END");
      break;
    }
    const Field length = TakeU8(c);
    const Field text = TakeBytes(c, length.value);
    if (text.here) {
      const Place under = Under(in, AddLine(in, Ahead(item, 2 + text.length), "Item: %u = %s, \"%s\"", type.value,
                                            LookupName(kItemNames, type.value), Text(text)));
      Cursor parts = CursorOver(PeekBytes(item, 0, 2 + text.length));
      if (type.value == kPrivate) ShowRows(under, parts, kPrivateItem);
      else ShowRows(under, parts, kItem);
    }
  }
  if (!in.dead) SetRange(in, in.parent, start, c.offset - start);
}

void DecodeSourceDescription(const Place& in, Cursor& c, uint32_t chunks) {
  Loop loop;
  for (uint32_t i = 1; i <= chunks && MoreAt(in, c, loop); ++i) DecodeChunk(in, c, i);
}

void DecodeGoodbye(const Place& in, Cursor& c, uint32_t sources) {
  Loop loop;
  for (uint32_t i = 0; i < sources && MoreAt(in, c, loop); ++i) AddSource(in, c, "SSRC");
  if (Left(c) < 1) return;
  const Cursor reason = c;
  const Field text = TakeBytes(c, TakeU8(c).value);
  if (text.here) {
    const Place under = Under(in, AddLine(in, Ahead(reason, 1 + text.length), "Reason: \"%s\"", Text(text)));
    Cursor parts = CursorOver(PeekBytes(reason, 0, 1 + text.length));
    ShowRows(under, parts, kReason);
  }
  if (text.here && Left(c) < 4) TakeBytes(c, Left(c));   // up to the next word
}

void DecodeApplication(const Place& in, Cursor& c) {
  AddSource(in, c, "SSRC");
  const Field name = TakeBytes(c, 4);
  if (name.here) AddLine(in, name, "Name: %s", Text(name));
  if (TellsAll(in) && Left(c) > 0 && IsReadable(c)) {
    AddLine(in, Ahead(c, Left(c)), "Application Text: %s", Text(Ahead(c, Left(c))));
  }
  AddBlock(in, Rest(c), "Application Data");
}

void DecodeFeedback(const Place& in, Cursor& c, const RtcpHeader& header) {
  AddSource(in, c, "Sender SSRC");
  const bool hasStreams = header.type == kRtcpTransportFeedback && header.count == kRtcpCongestionFeedback;
  if (!hasStreams) AddSource(in, c, "Media Source SSRC");
  DecodeRtcpFeedback(in, c, header.type, header.count);
  AddBlock(in, Rest(c), "Feedback Control Information");
}

void DecodeExtendedReport(const Place& in, Cursor& c) {
  AddSource(in, c, "SSRC");
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const int32_t words = Left(c) >= 4 ? static_cast<int32_t>(PeekU16(c, 2)) : 0;
    DecodeRtcpReport(in, TakeCursor(c, 4 + 4 * words));
  }
}

const char* CountName(uint32_t type) {
  switch (type) {
    case kRtcpSenderReport:
    case kRtcpReceiverReport: return "Reception Report Count";
    case kRtcpSourceDescription:
    case kRtcpGoodbye: return "Source Count";
    case kRtcpApplication: return "Subtype";
    case kRtcpTransportFeedback:
    case kRtcpPayloadFeedback: return "Feedback Message Type";
    case 195: return "Item Count";
    case 210: return "Sub-Message Type";
    case 212: return "Reporting Source Count";
    default: return "Reserved";
  }
}

const char* FeedbackName(const RtcpHeader& header) {
  if (header.type == kRtcpTransportFeedback) return LookupName(kTransportFeedbackNames, header.count);
  if (header.type == kRtcpPayloadFeedback) return LookupName(kPayloadFeedbackNames, header.count);
  return nullptr;
}

void AddHeaderLines(const Place& in, Cursor& c, const RtcpHeader& header) {
  const Field first = TakeU8(c);
  const Place bits = Under(in, AddLine(in, first, "Header: 0x%.02X", first.value));
  const auto version = BitsOf(first, 0, 2), padding = BitsOf(first, 2, 1), count = BitsOf(first, 3, 5);
  AddBitLine(bits, first, "%s : Version = %u", version.picture, version.value);
  AddBitLine(bits, first, "%s : Padding = %s", padding.picture, SetOrNotSet(padding.value));
  if (const char* feedback = FeedbackName(header)) {
    AddBitLine(bits, first, "%s : %s = %u = %s", count.picture, CountName(header.type), count.value, feedback);
  } else {
    AddBitLine(bits, first, "%s : %s = %u", count.picture, CountName(header.type), count.value);
  }
  const Field type = TakeU8(c);
  const char* name = RtcpTypeName(type.value);
  AddLine(in, type, "Packet Type: %u = %s", type.value, name ? name : kUnknown);
  const Field length = TakeU16(c);
  AddLine(in, length, "Length: %u words (%u bytes)", length.value, header.length);
}

void DecodeBody(const Place& in, Cursor& c, const RtcpHeader& header) {
  switch (header.type) {
    case kRtcpSenderReport:
    case kRtcpReceiverReport: DecodeReport(in, c, header); break;
    case kRtcpSourceDescription: DecodeSourceDescription(in, c, header.count); break;
    case kRtcpGoodbye: DecodeGoodbye(in, c, header.count); break;
    case kRtcpApplication: DecodeApplication(in, c); break;
    case kRtcpTransportFeedback:
    case kRtcpPayloadFeedback: DecodeFeedback(in, c, header); break;
    case kRtcpExtendedReport: DecodeExtendedReport(in, c); break;
    default: DecodeRtcpOther(in, c, header.type, header.count); break;
  }
  AddBlock(in, Rest(c), "Packet Data");
}

// One packet of the compound; its padding is counted by its last byte.
void DecodePacket(const Place& at, Cursor c, const RtcpHeader& header) {
  const char* name = RtcpTypeName(header.type);
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "RTCP: %s", name ? name : kUnknown));
  const bool whole = Left(c) == header.length;
  AddHeaderLines(in, c, header);
  const int32_t padding = header.padding && whole && Left(c) > 0 ? PeekU8(c, Left(c) - 1) : 0;
  Cursor body = TakeCursor(c, padding <= Left(c) ? Left(c) - padding : Left(c));
  DecodeBody(in, body, header);
  AddBlock(in, Rest(c), "Padding");
}

// Header and first source in clear, the rest encrypted, the index, a tag (RFC 3711 3.4; RFC 7714 has the tag in front of
// the index, where it belongs to the ciphertext).
int32_t DecodeProtected(const Place& at, Cursor c, int32_t indexAt) {
  static constexpr auto kIndex = Rows<NoValues>({Word(4), Flag(0, "Encrypted"), Bits(1, 31, "SRTCP Index")});
  RtcpHeader header;
  ReadRtcpHeader(c, &header);
  const char* name = RtcpTypeName(header.type);
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "SRTCP: %s", name ? name : kUnknown));
  AddHeaderLines(in, c, header);
  AddSource(in, c, "Sender SSRC");
  const int32_t encrypted = indexAt - Taken(c);
  const Field data = TakeBytes(c, encrypted);
  if (encrypted > 0) AddBlock(in, data, "Encrypted Data");
  ShowRows(in, c, kIndex);
  const Field tag = Rest(c);
  if (tag.here) AddLine(in, tag, "Authentication Tag: %s", HexText(tag));
  return 1;
}

}  // namespace

int32_t DecodeRtcp(const Place& at, Cursor c) {
  RtcpHeader header;
  if (!ReadRtcpHeader(c, &header) || !IsRtcpHeader(header)) return 0;
  if (const int32_t index = SrtcpIndexAt(c); index > 0) return DecodeProtected(at, c, index);
  Loop loop;
  while (MoreAt(at, c, loop)) {
    if (!ReadRtcpHeader(c, &header) || !IsRtcpHeader(header)) break;
    DecodePacket(at, TakeCursor(c, header.length), header);
  }
  AddRawRest(at, c, "RTCP Data");
  return 1;
}

}  // namespace qxview
