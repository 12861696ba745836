// RTP Control Protocol (RFC 3550): the parser of compound packets, which detection and summaries share with it.
#pragma once
#include <cstdint>

#include "core/cursor.h"

namespace qxview {

constexpr uint8_t kRtcpSenderReport = 200, kRtcpReceiverReport = 201, kRtcpSourceDescription = 202, kRtcpGoodbye = 203,
                  kRtcpApplication = 204, kRtcpTransportFeedback = 205, kRtcpPayloadFeedback = 206,
                  kRtcpExtendedReport = 207;
constexpr int32_t kRtcpReportBlock = 24;

struct RtcpHeader {
  uint8_t version;
  bool padding;
  uint8_t count;      // of reports, chunks or sources; or a subtype
  uint8_t type;
  int32_t length;     // bytes that the packet declares, header included
};

// The four bytes that every packet starts with; false when they are not all there.
bool ReadRtcpHeader(const Cursor& c, RtcpHeader* out);

struct RtcpCompound {
  uint8_t firstType;
  uint8_t reportBlocks;       // of the first packet, when that is a sender or receiver report
  uint16_t highestSequence;   // among these blocks: the greatest low half of the highest sequence number received
  uint32_t greatestJitter;
};

// Whether `length` bytes are a compound packet and nothing else: each packet of version 2 with room for what it counts,
// the first of types 200 to 204, padding on the last alone.
bool ParseRtcp(const uint8_t* data, int32_t length, RtcpCompound* out);

// Types 192 to 223 are RTCP's (RFC 5761).
bool IsRtcpHeader(const RtcpHeader& header);

// Where the index of SRTCP stands in what is no compound in clear: before a tag of 10 or 4 bytes, or last (RFC 3711 3.4,
// RFC 7714 9); 0 where none is seen. The index counts packets, so its high bits are taken to be unset.
int32_t SrtcpIndexAt(const Cursor& c);

// "Sender Report" for 200 and so on; null for a type that has no name.
const char* RtcpTypeName(uint32_t type);

}  // namespace qxview
