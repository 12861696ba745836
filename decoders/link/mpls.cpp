// Multiprotocol label switching (RFC 3032): a stack of labels, then a payload that nothing names.
//
//   0  label (20 bits), traffic class (3), bottom of stack (1), time to live (8)
//
// What follows the stack is told by its first nibble: 4 and 6 are IP; a control word (nibble 0, RFC 4385) or a MAC
// header stands in front of a carried Ethernet frame.
#include "core/decoder.h"

namespace qxview {
namespace {

constexpr uint16_t kEthertypeIPv4 = 0x0800, kEthertypeIPv6 = 0x86DD;
constexpr int32_t kMacHeaderLength = 14, kControlWordLength = 4, kMacAddressLength = 6;

constexpr auto kReservedLabels = SortedNames({{0, "IPv4 Explicit NULL"}, {1, "Router Alert"},
                                              {2, "IPv6 Explicit NULL"}, {3, "Implicit NULL"}, {7, "Entropy Label"},
                                              {13, "GAL"}, {14, "OAM Alert"}, {15, "Extension"}});

enum class Carried { kNothing = -1, kUnknown = 0, kEthernet = 1, kIPv4 = 4, kIPv6 = 6 };

// A type that has a decoder or a length that fits, and a source that is a station: groups send nothing.
bool LooksLikeMacHeader(const Cursor& c) {
  if (Left(c) < kMacHeaderLength || (PeekU8(c, kMacAddressLength) & 1)) return false;
  constexpr int32_t kLeastLlc = 3, kMostLength = 1500;
  const int32_t type = static_cast<int32_t>(PeekU16(c, 2 * kMacAddressLength));
  if (type <= kMostLength) return type >= kLeastLlc && type <= Left(c) - kMacHeaderLength;
  return FindEthertype(static_cast<uint16_t>(type)) != nullptr;
}

// One label's lines; false behind the bottom of the stack or when the bytes end.
bool DecodeLabel(const Place& at, Cursor& c) {
  const Field entry = TakeU32(c);
  if (!entry.here) return false;
  const BitPicture label = BitsOf(entry, 0, 20), trafficClass = BitsOf(entry, 20, 3), bottom = BitsOf(entry, 23, 1);
  const BitPicture timeToLive = BitsOf(entry, 24, 8);
  const char* reserved = LookupName(kReservedLabels, label.value, nullptr);
  const Place in = Under(at, AddLine(at, entry, "MPLS:  Label = %u, TTL = %u%s", label.value, timeToLive.value,
                                     bottom.value ? ", Bottom of Stack" : ""));
  if (reserved) {
    AddBitLine(in, entry, "%s: Label = %u (%s)", label.picture, label.value, reserved);
  } else {
    AddBitLine(in, entry, "%s: Label = %u", label.picture, label.value);
  }
  AddBitLine(in, entry, "%s: Traffic Class = %u", trafficClass.picture, trafficClass.value);
  AddBitLine(in, entry, "%s: Bottom of Stack = %s", bottom.picture, TrueOrFalse(bottom.value));
  AddBitLine(in, entry, "%s: Time to Live = %u", timeToLive.picture, timeToLive.value);
  return bottom.value == 0;
}

struct Payload {
  Carried carried;
  bool controlWord;
};

Payload TellPayload(const Cursor& c) {
  if (Left(c) < 1) return {Carried::kNothing, false};
  const uint32_t nibble = PeekU8(c) >> 4u;
  if (nibble == 4) return {Carried::kIPv4, false};
  if (nibble == 6) return {Carried::kIPv6, false};
  const bool bare = LooksLikeMacHeader(c);
  Cursor behind = c;
  TakeBytes(behind, kControlWordLength);
  const bool behindWord = nibble == 0 && LooksLikeMacHeader(behind);
  // Where both fit: the control word of a carried Ethernet frame starts with reserved bits, which are zero.
  if (behindWord && (!bare || PeekU16(c) == 0)) return {Carried::kEthernet, true};
  return {bare ? Carried::kEthernet : Carried::kUnknown, false};
}

int32_t DecodePayload(const Place& network, Cursor c) {
  const Payload payload = TellPayload(c);
  if (payload.controlWord) {
    const Field word = TakeU32(c);
    AddLine(network, word, "Pseudowire Control Word: Sequence Number = %u", word.value & 0xFFFF);
  }
  switch (payload.carried) {
    case Carried::kNothing: return 1;
    case Carried::kIPv4: return CallDecoder(network, c, FindEthertype(kEthertypeIPv4)->decode, "Raw Data");
    case Carried::kIPv6: return CallDecoder(network, c, FindEthertype(kEthertypeIPv6)->decode, "Raw Data");
    case Carried::kEthernet: return CallDecoder(network, c, DecodeMacHeader, "Raw Data");
    case Carried::kUnknown: break;
  }
  return CallDecoder(network, c, nullptr, "Raw Data");
}

}  // namespace

int32_t DecodeMpls(const Place& at, Cursor c) {
  if (Left(c) < 4) return 0;
  // Every label is a header that carries the next one: it counts as a decoder that is called on carried data.
  int32_t& nesting = PacketOf(at).nesting;
  const int32_t outerNesting = nesting;
  bool more = true;
  Loop loop;
  while (more && nesting < kMostNesting && MoreAt(at, c, loop)) {
    more = DecodeLabel(at, c);
    ++nesting;
  }
  if (more) {
    CallDecoder(Deeper(at), c, nullptr, "Raw Data");
  } else {
    DecodePayload(Deeper(at), c);
  }
  nesting = outerNesting;
  return 1;
}

}  // namespace qxview
