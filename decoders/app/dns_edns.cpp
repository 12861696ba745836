// Extension mechanisms of DNS (RFC 6891) with the options of IANA's registry, and stateful operations (RFC 8490,
// RFC 8765).
#include "decoders/app/dns_data.h"

namespace qxview {
namespace {

constexpr ElementForm kOptionForm{.typeSize = 2, .lengthSize = 2, .typeLabel = "Option Code"};
constexpr ElementForm kStatefulForm{.typeSize = 2, .lengthSize = 2};

constexpr auto kErrorNames = SortedNames({
    {0, "Other Error"}, {1, "Unsupported DNSKEY Algorithm"}, {2, "Unsupported DS Digest Type"}, {3, "Stale Answer"},
    {4, "Forged Answer"}, {5, "DNSSEC Indeterminate"}, {6, "DNSSEC Bogus"}, {7, "Signature Expired"},
    {8, "Signature Not Yet Valid"}, {9, "DNSKEY Missing"}, {10, "RRSIGs Missing"}, {11, "No Zone Key Bit Set"},
    {12, "NSEC Missing"}, {13, "Cached Error"}, {14, "Not Ready"}, {15, "Blocked"}, {16, "Censored"}, {17, "Filtered"},
    {18, "Prohibited"}, {19, "Stale NXDomain Answer"}, {20, "Not Authoritative"}, {21, "Not Supported"},
    {22, "No Reachable Authority"}, {23, "Network Error"}, {24, "Invalid Data"}, {25, "Signature Expired Before Valid"},
    {26, "Too Early"}, {27, "Unsupported NSEC3 Iterations Value"}, {28, "Unable to Conform to Policy"}, {29, "Synthesized"},
    {30, "Invalid Query Type"}, {31, "Rate Limited"}, {32, "Over Quota"}});
constexpr auto kFamilyNames = SortedNames({{0, "None"}, {1, "IPv4"}, {2, "IPv6"}});
constexpr auto kQueryNames = SortedNames({{1, "LLQ-SETUP"}, {2, "LLQ-REFRESH"}, {3, "LLQ-EVENT"}});
constexpr auto kQueryErrorNames = SortedNames({
    {0, "NO-ERROR"}, {1, "SERV-FULL"}, {2, "STATIC"}, {3, "FORMAT-ERR"}, {4, "NO-SUCH-LLQ"}, {5, "BAD-VERS"},
    {6, "UNKNOWN-ERR"}});
constexpr auto kVersionNames = SortedNames({{0, "SOA-SERIAL"}});

constexpr auto kLongQuery = Rows<DnsData>({
    Number(2, "Version"), Number(2, "LLQ Operation", kQueryNames), Number(2, "Error Code", kQueryErrorNames),
    Hex(8, "LLQ ID"), Number(4, "Lease Life", " seconds")});
constexpr auto kLease = Rows<DnsData>({Number(4, "Lease", " seconds").Note(", %u seconds")});
constexpr auto kIdentifier = Rows<DnsData>({Bytes(0, "Name Server Identifier")});
constexpr auto kOwner = Rows<DnsData>({Number(1, "Version"), Number(1, "Sequence"), Mac("Primary MAC Address").Note(", %s")});
constexpr auto kExpire = Rows<DnsData>({Number(4, "Expire", " seconds")});
constexpr auto kClientCookie = Rows<DnsData>({Bytes(8, "Client Cookie")});
constexpr auto kServerCookie = Rows<DnsData>({Bytes(0, "Server Cookie")});
constexpr auto kIdle = Rows<DnsData>({Number(2, "Timeout", " tenths of a second")});
constexpr auto kPadding = Rows<DnsData>({Bytes(0, "Padding")});
constexpr auto kTrust = Rows<DnsData>({Shown("Closest Trust Point", ShowDnsName)});
constexpr auto kError = Rows<DnsData>({Number(2, "Info Code", kErrorNames).Note(", %s")});
constexpr auto kErrorText = Rows<DnsData>({Utf8(0, "Extra Text").Note(", %s")});
constexpr auto kTag = Rows<DnsData>({Hex(2, "Tag")});
constexpr auto kAgent = Rows<DnsData>({Shown("Agent Domain", ShowDnsName)});
constexpr auto kVersion = Rows<DnsData>({
    Number(1, "Label Count"), Number(1, "Version Type", kVersionNames), Bytes(0, "Version")});
constexpr auto kData = Rows<DnsData>({Bytes(0, "Data")});

// Empty in queries of a client, from which servers leave it out.
template <const auto& kRows>
void ShowIfHere(const Place& in, Cursor& c, DnsData& data) {
  if (Left(c)) ShowRows<DnsData>(in, c, kRows, data);
}

// RFC 9664: a lease of keys may stand behind the one of other records.
void ShowLeases(const Place& in, Cursor& c, DnsData& data) {
  static constexpr auto kKeyLease = Rows<DnsData>({Number(4, "Key Lease", " seconds")});
  ShowRows<DnsData>(in, c, kLease, data);
  if (Left(c)) ShowRows<DnsData>(in, c, kKeyLease, data);
}

// What sleeping hosts tell of themselves by multicast.
void ShowOwner(const Place& in, Cursor& c, DnsData& data) {
  static constexpr auto kWakeup = Rows<DnsData>({Mac("Wakeup MAC Address")});
  static constexpr auto kPassword = Rows<DnsData>({Bytes(0, "Password")});
  ShowRows<DnsData>(in, c, kOwner, data);
  if (Left(c) >= 6) ShowRows<DnsData>(in, c, kWakeup, data);
  if (Left(c)) ShowRows<DnsData>(in, c, kPassword, data);
}

void ShowCodes(const Place& in, Cursor& c, DnsData& data) {
  static constexpr auto kCode = Rows<DnsData>({Number(1, "Algorithm").Note(", %u")});
  Loop loop;
  while (MoreAt(in, c, loop)) ShowRows<DnsData>(in, c, kCode, data);
}

void ShowKeyTags(const Place& in, Cursor& c, DnsData& data) {
  static constexpr auto kKeyTag = Rows<DnsData>({Number(2, "Key Tag").Note(", %u")});
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) ShowRows<DnsData>(in, c, kKeyTag, data);
}

// RFC 7871: as many octets of the address as its prefix asks for.
void ShowSubnet(const Place& in, Cursor& c, DnsData& data) {
  constexpr uint32_t kFour = 1;
  static constexpr auto kHead = Rows<DnsData>({
      Number(2, "Family", kFamilyNames).Into(&DnsData::code), Number(1, "Source Prefix Length").Into(&DnsData::length),
      Number(1, "Scope Prefix Length")});
  ShowRows<DnsData>(in, c, kHead, data);
  const Field part = Rest(c);
  if (!part.here) return;
  uint8_t address[16] = {};
  for (int32_t i = 0; i < part.length && i < 16; ++i) address[i] = part.bytes[i];
  if (data.code.value == kFour) {
    AddLine(in, part, "Address: %s", IPv4Text(address));
    AppendToParent(in, part, ", %s/%u", IPv4Text(address), data.length.value);
  } else {
    AddLine(in, part, "Address: %s", IPv6Text(address));
    AppendToParent(in, part, ", %s/%u", IPv6Text(address), data.length.value);
  }
}

constexpr auto kOptions = Choices<DnsData>({
    {0, "Reserved", {}, ShowIfHere<kData>}, {1, "LLQ", kLongQuery}, {2, "Update Lease", {}, ShowLeases},
    {3, "NSID", {}, ShowIfHere<kIdentifier>}, {4, "Owner (reserved)", {}, ShowOwner}, {5, "DAU", {}, ShowCodes},
    {6, "DHU", {}, ShowCodes}, {7, "N3U", {}, ShowCodes}, {8, "edns-client-subnet", {}, ShowSubnet},
    {9, "EDNS EXPIRE", {}, ShowIfHere<kExpire>}, {10, "COOKIE", kClientCookie, ShowIfHere<kServerCookie>},
    {11, "edns-tcp-keepalive", {}, ShowIfHere<kIdle>}, {12, "Padding", {}, ShowIfHere<kPadding>},
    {13, "CHAIN", kTrust}, {14, "edns-key-tag", {}, ShowKeyTags},
    {15, "Extended DNS Error", kError, ShowIfHere<kErrorText>}, {16, "EDNS-Client-Tag", kTag},
    {17, "EDNS-Server-Tag", kTag}, {18, "Report-Channel", kAgent}, {19, "ZONEVERSION", {}, ShowIfHere<kVersion>},
    {20292, "Umbrella Ident", {}, ShowIfHere<kData>}, {26946, "DeviceID", {}, ShowIfHere<kData>}});

}  // namespace

void ShowDnsOptions(const Place& in, Cursor& c, DnsData& data) {
  ShowElements(in, c, kOptionForm, "Option", kOptions, data);
}

void DecodeDnsOptHead(const Place& in, Cursor& c) {
  static constexpr auto kHead = Rows<DnsData>({
      Number(2, "UDP Payload Size").Note(", UDP Payload Size=%u"), Number(1, "Extended Result Code"),
      Number(1, "EDNS Version").Note(", EDNS Version=%u"), Hex(2, "EDNS Flags"), Flag(0, "DNSSEC Records Wanted (DO)"),
      Flag(1, "Compact Answers Understood (CO)"), Bits(2, 14, "Reserved")});
  DnsData data;
  ShowRows<DnsData>(in, c, kHead, data);
}

namespace {

void ShowSubscription(const Place& in, Cursor& c, DnsData& data) {
  static constexpr auto kQuestion = Rows<DnsData>({
      Shown("Name", ShowDnsName), Number(2, "Type", DnsTypeName), Number(2, "Class", DnsClassName)});
  ShowRows<DnsData>(in, c, kQuestion, data);
}

void ShowRecords(const Place& in, Cursor& c, DnsData& data) {
  Loop loop;
  for (uint32_t number = 1; MoreAt(in, c, loop); ++number) {
    if (!DecodeDnsResourceRecord(in, c, *data.message, "Pushed", number, false)) {
      data.failed = true;
      return;
    }
  }
}

constexpr auto kKeepalive = Rows<DnsData>({
    Number(4, "Inactivity Timeout", " milliseconds"), Number(4, "Keepalive Interval", " milliseconds")});
constexpr auto kDelay = Rows<DnsData>({Number(4, "Retry Delay", " milliseconds")});
constexpr auto kSubscriber = Rows<DnsData>({Hex(2, "Message ID")});
constexpr auto kStateful = Choices<DnsData>({
    {1, "KeepAlive", kKeepalive}, {2, "RetryDelay", kDelay}, {3, "EncryptionPadding", {}, ShowIfHere<kPadding>},
    {0x40, "SUBSCRIBE", {}, ShowSubscription}, {0x41, "PUSH", {}, ShowRecords}, {0x42, "UNSUBSCRIBE", kSubscriber},
    {0x43, "RECONFIRM", {}, ShowSubscription}});

}  // namespace

void DecodeDnsStateful(const Place& in, Cursor& c, DnsMessage& message) {
  DnsData data;
  data.message = &message;
  ShowElements(in, c, kStatefulForm, "DSO-TLV", kStateful, data);
}

}  // namespace qxview
