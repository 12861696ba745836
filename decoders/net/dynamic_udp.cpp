#include "decoders/net/dynamic_udp.h"

#include <algorithm>

#include "core/cursor.h"
#include "decoders/app/rtcp.h"

namespace qxview {
namespace {

constexpr uint32_t kRtpDetection = 1, kRtcpDetection = 2;

struct Determined {
  int32_t result;
  uint32_t identifier;
  uint16_t subType;
  DynamicRecord record;
};

enum class RtpVerdict { kNo, kYes, kFinal };   // kFinal: the answer stands as it was made

// Payload types that are assigned, or free for negotiation. The range that RTCP's types fall in is not among them.
bool IsRtpPayloadType(uint32_t type) {
  if (type >= 96) return true;
  return !(type >= 35 || (type >= 19 && type <= 24) || type == 27 || type == 29 || type == 30);
}

RtpVerdict TestRtp(const Cursor& c, Determined& out) {
  const uint32_t type = PeekU8(c, 1) & 0x7F;
  if (PeekU8(c) >> 6 != 2 || !IsRtpPayloadType(type)) return RtpVerdict::kNo;
  if (PeekU16(c) == 0x88FA && PeekU8(c, 2) == 'i') {   // another protocol's packets, which pass all tests
    out.identifier = 0;
    out.subType = kNoSubType;
    return RtpVerdict::kFinal;
  }
  const int32_t header = static_cast<int32_t>(12 + 4 * (PeekU8(c) & 0x0F));
  if (header > Left(c)) return RtpVerdict::kNo;
  out = {1, kLearntRtp, static_cast<uint16_t>(type), {1, static_cast<uint16_t>(PeekU16(c, 2)), PeekU32(c, 4)}};
  if ((PeekU8(c) & 0x10) == 0) return RtpVerdict::kYes;
  if (header + 4 > Left(c)) {
    out.result = 0;
    return RtpVerdict::kFinal;
  }
  const int32_t extension = 4 + 4 * static_cast<int32_t>(PeekU16(c, header + 2));
  if (header + extension <= Left(c)) return RtpVerdict::kYes;
  out.result = 0;
  return RtpVerdict::kNo;
}

Determined Determine(const DetectionSettings& settings, uint16_t sourcePort, uint16_t destinationPort,
                     const Cursor& c) {
  Determined out{0, 0, kNoSubType, {0, 0, 0}};
  if ((settings.flags & kRtpDetection) && Left(c) >= 12 && sourcePort > 1024 && destinationPort > 1024 &&
      TestRtp(c, out) != RtpVerdict::kNo) {
    return out;
  }
  out.identifier = 0;
  out.subType = kNoSubType;
  RtcpCompound compound;
  if (!(settings.flags & kRtcpDetection) || !ParseRtcp(c.at, Left(c), &compound)) return out;
  out.result = 1;
  out.identifier = kLearntRtcp;
  out.subType = compound.firstType;
  if (compound.reportBlocks > 0) out.record = {1, compound.highestSequence, compound.greatestJitter};
  return out;
}

template <class T, class V>
void Store(T* out, V value) {
  if (out) *out = value;
}

}  // namespace

int32_t DetermineDynamicUDPPrototol(const DetectionSettings* settings, uint16_t sourcePort, uint16_t destinationPort,
                                    const uint8_t* data, int32_t length, uint32_t* identifier, uint16_t* subType,
                                    uint16_t* zero, DynamicRecord* record) {
  const bool nothing = !settings || !data || length < 1;
  const Determined made = Determine(nothing ? DetectionSettings{} : *settings, sourcePort, destinationPort,
                                    MakeCursor(data, 0, nothing ? 0 : length));
  Store(identifier, made.identifier);
  Store(subType, made.subType);
  Store(zero, uint16_t{0});
  Store(record, made.record);
  return made.result;
}

int32_t AddDynamicFtpDataPort(const char* text, int32_t length, AddressSlot* slot, uint16_t* port) {
  constexpr int32_t kMostText = 300, kNumbers = 6;
  if (!text || !slot || !port || length < 1) return 0;
  const char* end = text + std::min(length, kMostText);
  const char* at = std::find(text, end, '(');
  if (at == end) return 0;
  uint32_t numbers[kNumbers];
  for (uint32_t& number : numbers) {
    if (at == end) return 0;
    const char* start = ++at;   // behind the parenthesis or the character that ended the run before
    number = 0;
    for (; at < end && *at >= '0' && *at <= '9' && number <= 255; ++at) {
      number = number * 10 + static_cast<uint32_t>(*at - '0');
    }
    if (at == start || number > 255) return 0;
  }
  *slot = AddressSlot{};
  slot->kind = 1;
  for (int32_t i = 0; i < 4; ++i) slot->address[12 + i] = static_cast<uint8_t>(numbers[i]);
  *port = static_cast<uint16_t>(numbers[4] << 8 | numbers[5]);
  return 1;
}

}  // namespace qxview
