// Internet Control Message Protocol (RFC 792): errors on the way of a datagram, and questions to hosts and routers.
// Further messages: address masks (RFC 950), router discovery (RFC 1256), traceroute (RFC 1393), datagram conversion
// (RFC 1475), domain names (RFC 1788), Photuris (RFC 2521), mobility (RFC 4065), extended echo (RFC 8335); what error
// messages carry behind the quoted datagram: RFC 4884.
//
//   0  type   1  code   2  checksum   4  by type
//   errors:   4  pointer or unused   5  length of the quote in words   6  next hop's MTU or unused   8  the quote
#include "core/frame_record.h"
#include "core/internet_checksum.h"
#include "core/times.h"
#include "decoders/common/checksum_line.h"
#include "decoders/common/tells_all.h"
#include "decoders/net/icmp_extensions.h"
#include "decoders/net/icmp_names.h"
#include "decoders/net/icmp_router.h"
#include "decoders/net/quoted.h"

namespace qxview {
namespace {

enum IcmpType : uint32_t {
  kEchoReply = 0, kUnreachable = 3, kSourceQuench = 4, kRedirect = 5, kAlternateHost = 6, kEchoRequest = 8,
  kRouterAdvertisement = 9, kRouterSolicitation = 10, kTimeExceeded = 11, kParameterProblem = 12, kTimestamp = 13,
  kTimestampReply = 14, kInformation = 15, kInformationReply = 16, kMask = 17, kMaskReply = 18, kTraceroute = 30,
  kConversionError = 31, kNameRequest = 37, kNameReply = 38, kPhoturis = 40, kMobility = 41, kExtendedEcho = 42,
  kExtendedEchoReply = 43,
};
constexpr uint32_t kFragmentationNeeded = 4;

struct Message {
  Place at;   // of the ICMP section
  Place in;   // under its top line
  uint32_t type, code;
};

void AddChecksum(const Place& in, const Field& checksum, const uint8_t* bytes, int32_t length) {
  const NetworkState& network = PacketOf(in).network;
  const char* unchecked = network.fragmented              ? "Not Checked - More Fragments"
                        : network.offloaded             ? "Not Checked - Segmentation Offload"
                          : network.totalLength > length ? "Not Checked - Partial Capture"
                                                         : nullptr;
  if (!AddChecksumLine(in, checksum, "Checksum:", unchecked, SumWords(0, bytes, length), BadChecksum::kWithRight)) {
    AppendToParent(in, checksum, " (Bad Checksum)");
  }
}

void AddReserved(const Place& in, const Field& reserved) {
  AddLine(in, reserved, "Unused: %s", HexText(reserved));
}

void AddIdentifiers(const Place& in, Cursor& c) {
  const Field identifier = TakeU16(c), sequence = TakeU16(c);
  AddLine(in, identifier, "Identifier: 0x%.04X (%u)", identifier.value, identifier.value);
  AddLine(in, sequence, "Sequence Number: %u", sequence.value);
  AppendToParent(in, sequence, ", Identifier = %u, Sequence Number = %u", identifier.value, sequence.value);
}

// The time that programs put in front of an echo's data to learn how long its way was: seconds and microseconds of 32 bits in
// either order, or of 64 bits. Only a time near the frame's own is one.
void TellSendingTime(const Place& in, const Cursor& c) {
  constexpr int64_t kMillion = 1000000, kDay = 86400;
  if (!TellsAll(in) || !PacketOf(in).frame || Left(c) < 8) return;
  const int64_t now = PacketOf(in).frame->nanoseconds / (1000 * kMillion);
  const auto little = [&c](int32_t at) {
    const uint32_t word = PeekU32(c, at);
    return word >> 24 | (word >> 8 & 0xFF00) | (word << 8 & 0xFF0000) | word << 24;
  };
  const bool isWide = Left(c) >= 16 && little(4) == 0 && little(12) == 0;
  const struct { uint32_t seconds, microseconds; int32_t size; } forms[] = {
      {PeekU32(c), PeekU32(c, 4), 8}, {little(0), little(isWide ? 8 : 4), isWide ? 16 : 8}};
  for (const auto& form : forms) {
    const int64_t distance = int64_t{form.seconds} - now;
    if (distance < -kDay || distance > kDay || form.microseconds >= kMillion) continue;
    AddLine(in, Ahead(c, form.size), "Sending Time: %s", UtcText(form.seconds, form.microseconds * 1000, 6));
    return;
  }
}

// The rest of an error message is a datagram, and behind it may be an extension structure.
void DecodeQuote(const Message& message, Cursor& c, int32_t declared) {
  constexpr int32_t kOldQuoteLength = 128;   // of senders that extend messages but do not say where
  int32_t quoted = Left(c);
  const bool isCut = PacketOf(message.at).network.totalLength > Taken(c) + quoted;
  if (declared > 0 && declared < quoted && HasIcmpExtensionVersion(Behind(c, declared))) {
    quoted = declared;   // some senders leave anything in the byte: the length counts if the rest bears it out
  } else if (declared == 0 && quoted > kOldQuoteLength && HasSummedIcmpExtensions(Behind(c, kOldQuoteLength), isCut)) {
    quoted = kOldQuoteLength;
  }
  Cursor quote = TakeCursor(c, quoted);
  if (Left(quote) < 1) return;
  AddLine(message.in, Ahead(quote, quoted), "Quoted Datagram: %d bytes", quoted);
  if (Left(c) > 0) DecodeIcmpExtensions(message.in, TakeCursor(c, Left(c)));
  DecodeQuotedDatagram(Deeper(message.at), quote);
}

// Errors whose quote may be followed by extensions; `first` says whether byte 4 is a pointer.
void DecodeExtensibleError(const Message& message, Cursor& c) {
  const Field first = TakeU8(c), words = TakeU8(c), last = TakeU16(c);
  if (message.type == kParameterProblem) {
    AddLine(message.in, first, "Pointer: %u", first.value);
    AppendToParent(message.in, first, ", Pointer = %u", first.value);
  } else {
    AddReserved(message.in, first);
  }
  AddLine(message.in, words, "Quoted Datagram Length: %u * 4 = %u bytes", words.value, words.value * 4);
  if (message.type == kUnreachable && message.code == kFragmentationNeeded) {
    AddLine(message.in, last, "Next-Hop MTU: %u", last.value);
    AppendToParent(message.in, last, ", Next-Hop MTU = %u", last.value);
  } else {
    AddReserved(message.in, last);
  }
  DecodeQuote(message, c, static_cast<int32_t>(words.value) * 4);
}

void AddTime(const Place& in, const Field& time, const char* name) {
  constexpr uint32_t kNonStandard = 0x80000000, kDay = 24 * 60 * 60 * 1000;
  const uint32_t ms = time.value;
  if (ms & kNonStandard) {
    AddLine(in, time, "%s Timestamp: %u (not milliseconds since midnight UT)", name, ms & ~kNonStandard);
  } else if (ms >= kDay) {
    AddLine(in, time, "%s Timestamp: %u ms since midnight UT", name, ms);
  } else {
    AddLine(in, time, "%s Timestamp: %u ms since midnight UT (%.2u:%.2u:%.2u.%.3u)", name, ms, ms / 3600000,
            ms / 60000 % 60, ms / 1000 % 60, ms % 1000);
  }
}

void DecodeTimestamps(const Message& message, Cursor& c) {
  constexpr const char* kNames[] = {"Originate", "Receive", "Transmit"};
  AddIdentifiers(message.in, c);
  for (const char* name : kNames) AddTime(message.in, TakeU32(c), name);
}

void DecodeTraceroute(const Message& message, Cursor& c) {
  const Place& in = message.in;
  const Field identifier = TakeU16(c);
  AddLine(in, identifier, "ID Number: %u", identifier.value);
  AddReserved(in, TakeU16(c));
  const Field outbound = TakeU16(c);
  AddLine(in, outbound, "Outbound Hop Count: %u", outbound.value);
  const Field back = TakeU16(c);
  AddLine(in, back, "Return Hop Count: %u", back.value);
  const Field speed = TakeU32(c);
  AddLine(in, speed, "Output Link Speed: %u bytes/second", speed.value);
  const Field mtu = TakeU32(c);
  AddLine(in, mtu, "Output Link MTU: %u", mtu.value);
}

void DecodeExtendedEcho(const Message& message, Cursor& c) {
  constexpr const char* kStates[] = {"Reserved", "Incomplete", "Reachable", "Stale",
                                     "Delay",    "Probe",      "Failed",    "Reserved"};
  const Place& in = message.in;
  const Field identifier = TakeU16(c), sequence = TakeU8(c), flags = TakeU8(c);
  AddLine(in, identifier, "Identifier: 0x%.04X (%u)", identifier.value, identifier.value);
  AddLine(in, sequence, "Sequence Number: %u", sequence.value);
  AppendToParent(in, sequence, ", Identifier = %u, Sequence Number = %u", identifier.value, sequence.value);
  if (message.type == kExtendedEcho) {
    const BitPicture local = BitsOf(flags, 7, 1);
    AddBitLine(in, flags, "%s: Local = %s", local.picture, TrueOrFalse(local.value));
    if (Left(c) > 0) DecodeIcmpExtensions(in, TakeCursor(c, Left(c)));
    return;
  }
  const BitPicture state = BitsOf(flags, 0, 3), active = BitsOf(flags, 5, 1), ipv4 = BitsOf(flags, 6, 1);
  const BitPicture ipv6 = BitsOf(flags, 7, 1);
  AddBitLine(in, flags, "%s: State = %u (%s)", state.picture, state.value, kStates[state.value]);
  AddBitLine(in, flags, "%s: Active = %s", active.picture, TrueOrFalse(active.value));
  AddBitLine(in, flags, "%s: IPv4 Running = %s", ipv4.picture, TrueOrFalse(ipv4.value));
  AddBitLine(in, flags, "%s: IPv6 Running = %s", ipv6.picture, TrueOrFalse(ipv6.value));
}

// The errors that do not say how long their quote is: one field, then the quote to the end.
void DecodePlainError(const Message& message, Cursor& c) {
  const Place& in = message.in;
  if (message.type == kRedirect) {
    const Field gateway = TakeBytes(c, 4);
    if (!gateway.here) return;
    AddLine(in, gateway, "Gateway Address: %s", IPv4Text(gateway.bytes));
    AppendToParent(in, gateway, ", Gateway = %s", IPv4Text(gateway.bytes));
  } else if (message.type == kConversionError) {
    const Field pointer = TakeU32(c);
    AddLine(in, pointer, "Pointer: %u", pointer.value);
  } else if (message.type == kPhoturis) {
    AddReserved(in, TakeU16(c));
    const Field pointer = TakeU16(c);
    AddLine(in, pointer, "Pointer: %u", pointer.value);
  } else {
    AddReserved(in, TakeU32(c));
  }
  DecodeQuote(message, c, Left(c));
}

void DecodeMask(const Message& message, Cursor& c) {
  AddIdentifiers(message.in, c);
  const Field mask = TakeBytes(c, 4);
  if (!mask.here) return;
  AddLine(message.in, mask, "Address Mask: %s", IPv4Text(mask.bytes));
  AppendToParent(message.in, mask, ", Mask = %s", IPv4Text(mask.bytes));
}

void DecodeNameReply(const Message& message, Cursor& c) {
  AddIdentifiers(message.in, c);
  const Field timeToLive = TakeU32(c);
  AddLine(message.in, timeToLive, "Time to Live: %d seconds", static_cast<int32_t>(timeToLive.value));
  AddBlock(message.in, Rest(c), "Names");
}

void DecodeMobility(const Message& message, Cursor& c) {
  const Field subtype = TakeU8(c);
  AddLine(message.in, subtype, "Subtype: %u", subtype.value);
  AddReserved(message.in, TakeU24(c));
}

void DecodeBody(const Message& message, Cursor& c) {
  switch (message.type) {
    case kEchoReply: case kEchoRequest: case kInformation: case kInformationReply: case kNameRequest:
      return AddIdentifiers(message.in, c);
    case kUnreachable: case kTimeExceeded: case kParameterProblem: return DecodeExtensibleError(message, c);
    case kSourceQuench: case kRedirect: case kConversionError: case kPhoturis: return DecodePlainError(message, c);
    case kRouterAdvertisement: return DecodeRouterAdvertisement(message.in, c);
    case kRouterSolicitation: return AddReserved(message.in, TakeU32(c));
    case kTimestamp: case kTimestampReply: return DecodeTimestamps(message, c);
    case kMask: case kMaskReply: return DecodeMask(message, c);
    case kTraceroute: return DecodeTraceroute(message, c);
    case kNameReply: return DecodeNameReply(message, c);
    case kMobility: return DecodeMobility(message, c);
    case kExtendedEcho: case kExtendedEchoReply: return DecodeExtendedEcho(message, c);
    default: return;
  }
}

}  // namespace

int32_t DecodeIcmp(const Place& at, Cursor c) {
  if (Left(c) < 4) return 0;
  const Cursor start = c;
  const Field type = TakeU8(c), code = TakeU8(c), checksum = TakeU16(c);
  const char* typeName = IcmpTypeName(type.value);
  const char* codeName = IcmpCodeName(type.value, code.value);
  const Field whole = Ahead(start, Left(start));
  const bool tellsMore = codeName && (type.value == kUnreachable || type.value == kRedirect ||
                                      type.value == kTimeExceeded || type.value == kParameterProblem);
  const Place in = Under(at, AddLine(at, whole, "ICMP: %s%s%s", typeName, tellsMore ? ", " : "",
                                     tellsMore ? codeName : ""));
  AddLine(in, type, "Type: %u = %s", type.value, typeName);
  AddLine(in, code, "Code: %u%s%s", code.value, codeName ? " = " : "", codeName ? codeName : "");
  AddChecksum(in, checksum, start.at, Left(start));
  DecodeBody({at, in, type.value, code.value}, c);
  if (type.value == kEchoRequest || type.value == kEchoReply) TellSendingTime(in, c);
  AddBlock(in, Rest(c), "ICMP Data");
  return 1;
}

}  // namespace qxview
