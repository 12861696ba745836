#include "decoders/link/carried.h"

#include "decoders/link/medium.h"

namespace qxview {
namespace {

constexpr uint16_t kEthertypeIPv4 = 0x0800, kEthertypeIPv6 = 0x86DD, kEthertypeMpls = 0x8847;
constexpr int32_t kMacHeaderLength = 14;

int32_t ShowIp(const Place& network, const Cursor& c, const char* title) {
  const uint32_t version = PeekU8(c) >> 4;
  const uint16_t ethertype = version == 6 ? kEthertypeIPv6 : kEthertypeIPv4;
  if (version != 4 && version != 6) return CallDecoder(network, c, nullptr, title);
  ReachLayer(network, DispatchTable::kEthertype, ethertype, c);
  return CallDecoder(network, c, FindEthertype(ethertype)->decode, title);
}

}  // namespace

int32_t DecodeCarriedFrame(const Place& network, const Cursor& c, Carried link, const char* title) {
  if (Left(c) < 1) return 1;
  DecoderFunction decode = nullptr;
  switch (link) {
    case Carried::kIp: ShowIp(network, c, title); return 1;
    case Carried::kMpls: return DecodeCarriedPacket(network, c, kEthertypeMpls, title);
    case Carried::kEthernet: decode = DecodeMacHeader; break;
    case Carried::kTokenRing: decode = DecodeTokenRingHeader; break;
    case Carried::kFddi: decode = DecodeFddiHeader; break;
    case Carried::kWireless: decode = DecodeWirelessHeader; break;
    case Carried::kPpp: decode = DecodePpp; break;
    case Carried::kCiscoHdlc: decode = DecodeCiscoHdlc; break;
    case Carried::kFrameRelay: decode = DecodeFrameRelay; break;
    case Carried::kLlc: decode = DecodeLlc; break;
    case Carried::kUnknown: break;
  }
  CallDecoder(network, c, decode, title);
  return 1;
}

int32_t DecodeCarriedPacket(const Place& network, const Cursor& c, uint16_t ethertype, const char* title) {
  if (Left(c) < 1) return 1;
  if (!DispatchEthertype(network, c, ethertype)) CallDecoder(network, c, nullptr, title);
  return 1;
}

bool LooksLikeMacHeader(const Cursor& c) {
  if (Left(c) < kMacHeaderLength || (PeekU8(c, kMacAddressLength) & 1)) return false;
  constexpr int32_t kLeastLlc = 3, kMostLength = 1500;
  const int32_t type = static_cast<int32_t>(PeekU16(c, 2 * kMacAddressLength));
  if (type <= kMostLength) return type >= kLeastLlc && type <= Left(c) - kMacHeaderLength;
  return FindEthertype(static_cast<uint16_t>(type)) != nullptr;
}

Carried GuessCarried(const Cursor& c) {
  const uint32_t nibble = PeekU8(c) >> 4;
  const bool isFour = nibble == 4 && Left(c) >= 20 && (PeekU8(c) & 15) >= 5;
  if (isFour || (nibble == 6 && Left(c) >= 40)) return Carried::kIp;
  return LooksLikeMacHeader(c) ? Carried::kEthernet : Carried::kUnknown;
}

}  // namespace qxview
