// Internet Security Association and Key Management Protocol (RFC 2408) with the Internet Key Exchange, version 1
// (RFC 2409, RFC 2407) and 2 (RFC 7296), its passage through address translators (RFC 3947, RFC 3948), over TCP
// (RFC 8229, RFC 9329) and for groups (RFC 6407): who are we, and which keys and algorithms shall protect what we send?
#include "decoders/ipsec/isakmp.h"

#include "decoders/ipsec/esp.h"

namespace qxview {
namespace {

constexpr int32_t kHeaderSize = 28, kPayloadHeader = 4;
constexpr uint32_t kQuickMode = 32, kSealed = 46, kSealedFragment = 53;
constexpr uint32_t kEncrypted = 0x01;

constexpr auto kExchangeNames = SortedNames({
    {0, "None"}, {1, "Base"}, {2, "Identity Protection (Main Mode)"}, {3, "Authentication Only"}, {4, "Aggressive"},
    {5, "Informational"}, {6, "Transaction (Configuration)"}, {32, "Quick Mode"}, {33, "New Group Mode"},
    {34, "IKE_SA_INIT"}, {35, "IKE_AUTH"}, {36, "CREATE_CHILD_SA"}, {37, "INFORMATIONAL"},
    {38, "IKE_SESSION_RESUME"}, {39, "GSA_AUTH"}, {40, "GSA_REGISTRATION"}, {41, "GSA_REKEY"},
    {42, "GSA_INBAND_REKEY"}, {43, "IKE_INTERMEDIATE"}, {44, "IKE_FOLLOWUP_KE"}});

const char* NameOf(ChoiceSpan<Ike> payloads, uint32_t type) {
  if (type == 0) return "None";
  const Choice<Ike>* choice = FindChoice<Ike>(payloads, type);
  return choice ? choice->name : kUnknown;
}
const char* PayloadName1(uint32_t type) { return NameOf(IkePayloads1(), type); }
const char* PayloadName2(uint32_t type) { return NameOf(IkePayloads2(), type); }

constexpr auto kSpis = Rows<Ike>({Hex(8, "Initiator SPI"), Hex(8, "Responder SPI")});
constexpr auto kNext1 = Rows<Ike>({Number(1, "Next Payload", PayloadName1).Into(&Ike::next)});
constexpr auto kNext2 = Rows<Ike>({Number(1, "Next Payload", PayloadName2).Into(&Ike::next)});
constexpr auto kVersion = Rows<Ike>({
    Hex(1, "Version").Into(&Ike::version), Bits(0, 4, "Major Version"), Bits(4, 4, "Minor Version"),
    Number(1, "Exchange Type", kExchangeNames).Into(&Ike::exchange)});
constexpr auto kFlags1 = Rows<Ike>({
    Hex(1, "Flags").Into(&Ike::flags), Bits(0, 5, "Reserved"), Flag(5, "Authentication Only"), Flag(6, "Commit"),
    Flag(7, "Encryption")});
constexpr auto kFlags2 = Rows<Ike>({
    Hex(1, "Flags").Into(&Ike::flags), Bits(0, 2, "Reserved"), Flag(2, "Response"), Flag(3, "Higher Version Possible"),
    Flag(4, "Initiator"), Bits(5, 3, "Reserved")});
constexpr auto kHeaderRest = Rows<Ike>({
    Hex(4, "Message ID").Into(&Ike::messageId), Number(4, "Length").Into(&Ike::length)});

constexpr auto kPayload1 = Rows<Ike>({
    Number(1, "Next Payload", PayloadName1), Number(1, "Reserved"), Number(2, "Payload Length")});
constexpr auto kPayload2 = Rows<Ike>({
    Number(1, "Next Payload", PayloadName2), Word(1), Flag(0, "Critical"), Bits(1, 7, "Reserved"),
    Number(2, "Payload Length")});

// Each payload names the next one; an encrypted one names the first that is in it.
void ShowPayloads(const Place& in, Cursor& c, uint32_t first, Ike& ike) {
  const ChoiceSpan<Ike> payloads = ike.isSecond ? IkePayloads2() : IkePayloads1();
  uint32_t type = first;
  Loop loop;
  while (type != 0 && Left(c) >= kPayloadHeader && PeekU16(c, 2) >= kPayloadHeader && MoreAt(in, c, loop)) {
    const uint32_t following = PeekU8(c);
    Cursor payload = TakeCursor(c, PeekU16(c, 2));
    const Choice<Ike>* choice = FindChoice<Ike>(payloads, type);
    const Place under = Under(in, AddLine(in, Ahead(payload, Left(payload)), "Payload: %s",
                                          choice ? choice->name : kUnknown));
    ShowRows<Ike>(under, payload, ike.isSecond ? RowSpan<Ike>(kPayload2) : RowSpan<Ike>(kPayload1), ike);
    ShowChoice<Ike>(under, payload, choice, ike);   // keys: none Data
    if (ike.isSecond && (type == kSealed || type == kSealedFragment)) break;
    type = following;
  }
}

// "IKEv2 IKE_SA_INIT Request"
void AppendKind(const Place& in, const Ike& ike) {
  if (ike.isSecond) {
    constexpr uint32_t kResponse = 0x20;
    AppendToParent(in, ike.flags, ", %s", ike.flags.value & kResponse ? "Response" : "Request");
  } else if (ike.flags.value & kEncrypted) {
    AppendToParent(in, ike.flags, ", Encrypted");
  }
}

int32_t DecodeMessage(const Place& at, Cursor& c) {
  const Cursor start = c;
  const uint32_t version = PeekU8(c, 17), exchange = PeekU8(c, 18), length = PeekU32(c, 24);
  if (Left(c) < kHeaderSize || length < kHeaderSize) return 0;
  Cursor message = TakeCursor(c, length);
  const Place in = Under(at, AddLine(at, Ahead(start, Left(message)), "ISAKMP: IKEv%u, %s", version >> 4,
                                     LookupName(kExchangeNames, exchange)));
  if (version >> 4 < 2 && !Displaying(in) && NobodyWants(in, {"x509", "ocsp"})) return 1;   // of the second EAP's fragments are kept
  Ike ike{};
  ike.isSecond = version >> 4 >= 2;
  ike.isQuick = exchange == kQuickMode;
  ShowRows<Ike>(in, message, kSpis, ike);
  ShowRows<Ike>(in, message, ike.isSecond ? RowSpan<Ike>(kNext2) : RowSpan<Ike>(kNext1), ike);
  const uint32_t first = ike.next.value;
  ShowRows<Ike>(in, message, kVersion, ike);
  ShowRows<Ike>(in, message, ike.isSecond ? RowSpan<Ike>(kFlags2) : RowSpan<Ike>(kFlags1), ike);
  ShowRows<Ike>(in, message, kHeaderRest, ike);
  AppendKind(in, ike);
  if (!ike.isSecond && (ike.flags.value & kEncrypted)) {
    const Field sealed = Rest(message);
    AddLine(in, sealed, "Encrypted Data: %d bytes", sealed.length);
    return 1;
  }
  ShowPayloads(in, message, first, ike);
  message.ranShort = false;   // what is left of a header that is cut
  AddBlock(in, Rest(message), "ISAKMP Data");
  return 1;
}

// RFC 3948: what stands where an SPI would, or an octet alone.
int32_t DecodeBehindTranslator(const Place& at, Cursor& c) {
  constexpr int32_t kMarker = 4;
  constexpr uint8_t kKeepalive = 0xFF;
  if (Left(c) == 1) {
    const Field octet = PeekBytes(c, 0, 1);
    if (PeekU8(octet) != kKeepalive) return 0;
    AddLine(at, octet, "IPsec UDP Encapsulation: NAT-Keepalive");
    return 1;
  }
  if (Left(c) <= kMarker) return 0;
  if (PeekU32(c) != 0) return TryDecoder(at, c, DecodeEsp, nullptr);
  if (Left(c) < kMarker + kHeaderSize) return 0;
  AddLine(at, TakeU32(c), "IPsec UDP Encapsulation: Non-ESP Marker");
  c.begin = c.offset;
  return DecodeMessage(at, c);
}

}  // namespace

int32_t DecodeIsakmp(const Place& at, Cursor c) {
  if (!DecodeMessage(at, c)) return 0;
  AddRawRest(at, c, "ISAKMP Data");
  return 1;
}

int32_t DecodeIpsecOverUdp(const Place& at, Cursor c) {
  const int32_t result = DecodeBehindTranslator(at, c);
  if (result && PeekU32(c) == 0 && Taken(c) > 0) AddRawRest(at, c, "ISAKMP Data");
  return result;
}

// A stream of messages, each behind its length; the first one stands behind a mark.
int32_t DecodeIpsecOverTcp(const Place& at, Cursor c) {
  constexpr int32_t kMarkSize = 6, kLengthSize = 2;
  const bool starts = PeekIs(c, 0, "IKETCP");
  if (!starts && (Left(c) < kLengthSize + kHeaderSize || PeekU16(c) < kLengthSize)) return 0;
  if (starts) AddLine(at, TakeBytes(c, kMarkSize), "IPsec TCP Encapsulation: Stream Prefix");
  Loop loop;
  while (Left(c) > kLengthSize && PeekU16(c) >= kLengthSize && MoreAt(at, c, loop)) {
    const Field length = TakeU16(c);
    const int64_t stated = int64_t{length.value} - kLengthSize;
    AddLine(at, length, "IPsec TCP Encapsulation: Length %u", length.value);
    Cursor message = TakeCursor(c, stated);
    message.begin = message.offset;
    if (!DecodeBehindTranslator(at, message)) AddRawRest(at, message, "IPsec TCP Encapsulation Data");
  }
  AddRawRest(at, c, "IPsec TCP Encapsulation Data");
  return 1;
}

}  // namespace qxview
