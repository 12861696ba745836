// Data of DNS records by type: RFC 1035, RFC 1183, RFC 1876, RFC 2163, RFC 2782, RFC 3123, RFC 3403, RFC 6742, RFC 7043,
// RFC 7553, RFC 8659, RFC 9460 and others; the types are those of dns_types.inc.
#include "decoders/app/dns_data.h"

#include "core/bounded_loop.h"
#include "decoders/app/dns_service.h"
#include "decoders/app/dnscrypt.h"
#include "decoders/net/ip_protocol_names.h"

namespace qxview {
namespace {

constexpr auto kClassNames = SortedNames({
    {0, "Reserved"}, {1, "Internet"}, {3, "Chaos"}, {4, "Hesiod"}, {254, "None"}, {255, "Any"}});
constexpr auto kDatabaseNames = SortedNames({{1, "AFS Cell Database Server"}, {2, "DCE Name Server"}});
constexpr auto kAtmNames = SortedNames({{0, "ATM End System Address"}, {1, "E.164"}});
constexpr auto kClientNames = SortedNames({
    {0, "Hardware Type and Address"}, {1, "Client Identifier Option"}, {2, "DUID"}});
constexpr auto kHashNames = SortedNames({{0, "Reserved"}, {1, "SHA-256"}});
constexpr auto kSchemeNames = SortedNames({{0, "Reserved"}, {1, "SIMPLE"}});
constexpr auto kZoneHashNames = SortedNames({{0, "Reserved"}, {1, "SHA-384"}, {2, "SHA-512"}});
constexpr auto kNotifyNames = SortedNames({{0, "Null"}, {1, "NOTIFY"}});
constexpr auto kFamilyNames = SortedNames({{1, "IPv4"}, {2, "IPv6"}});
constexpr auto kRelayNames = SortedNames({{0, "None"}, {1, "IPv4"}, {2, "IPv6"}, {3, "Domain Name"}});

const char* ProtocolNumberName(uint32_t protocol) { return IpProtocolName(static_cast<uint8_t>(protocol)); }

constexpr auto kName = Rows<DnsData>({Shown("Name", ShowDnsName)});
constexpr auto kAddresses = Rows<DnsData>({IPv4("Host Address").Note(", %s")});
constexpr auto kAddress6 = Rows<DnsData>({IPv6("IPv6 Address").Note(", %s")});
constexpr auto kBytes = Rows<DnsData>({Bytes(0, "Data")});
constexpr auto kNumber = Rows<DnsData>({Number(4, "Identifier").Note(", %u")});
constexpr auto kNodeNumber = Rows<DnsData>({Number(8, "Node Number")});
constexpr auto kWellKnown = Rows<DnsData>({IPv4("Host Address").Note(", %s"), Number(1, "Protocol", ProtocolNumberName)});
constexpr auto kHost = Rows<DnsData>({
    Counted(1, Text(0, "CPU")).Note(", %s"), Counted(1, Text(0, "Operating System")).Note(", %s")});
constexpr auto kMailbox = Rows<DnsData>({Shown("Responsible Mailbox", ShowDnsName), Shown("Error Mailbox", ShowDnsName)});
constexpr auto kExchange = Rows<DnsData>({Number(2, "Preference").Note(", %u"), Shown("Mail Exchange", ShowDnsName)});
constexpr auto kPerson = Rows<DnsData>({Shown("Mailbox", ShowDnsName), Shown("Text Record", ShowDnsName)});
constexpr auto kDatabase = Rows<DnsData>({Number(2, "Subtype", kDatabaseNames), Shown("Host Name", ShowDnsName)});
constexpr auto kX25 = Rows<DnsData>({Counted(1, Text(0, "PSDN Address")).Note(", %s")});
constexpr auto kIsdn = Rows<DnsData>({Counted(1, Text(0, "ISDN Address")).Note(", %s")});
constexpr auto kRoute = Rows<DnsData>({Number(2, "Preference"), Shown("Intermediate Host", ShowDnsName)});
constexpr auto kMapping = Rows<DnsData>({
    Number(2, "Preference"), Shown("RFC 822 Domain", ShowDnsName), Shown("X.400 Domain", ShowDnsName)});
constexpr auto kPosition = Rows<DnsData>({
    Counted(1, Text(0, "Longitude")).Note(", %s"), Counted(1, Text(0, "Latitude")).Note(", %s"),
    Counted(1, Text(0, "Altitude")).Note(", %s")});
constexpr auto kNext = Rows<DnsData>({Shown("Next Domain Name", ShowDnsName)});
constexpr auto kService = Rows<DnsData>({
    Number(2, "Priority").Note(", Priority %u"), Number(2, "Weight").Note(", Weight %u"), Number(2, "Port").Note(", Port %u"),
    Shown("Target", ShowDnsName)});
constexpr auto kAtm = Rows<DnsData>({Number(1, "Format", kAtmNames), Bytes(0, "Address")});
constexpr auto kAuthority = Rows<DnsData>({
    Number(2, "Order").Note(", %u"), Number(2, "Preference").Note(" %u"), Counted(1, Text(0, "Flags")).Note(", %s"),
    Counted(1, Text(0, "Services")).Note(", %s"), Counted(1, Text(0, "Regular Expression")).Note(", %s"),
    Shown("Replacement", ShowDnsName)});
constexpr auto kExchanger = Rows<DnsData>({Number(2, "Preference"), Shown("Key Exchanger", ShowDnsName)});
constexpr auto kSink = Rows<DnsData>({Number(1, "Coding"), Number(1, "Subcoding"), Bytes(0, "Data")});
constexpr auto kClient = Rows<DnsData>({
    Number(2, "Identifier Type", kClientNames), Number(1, "Digest Type", kHashNames), Bytes(0, "Digest")});
constexpr auto kLink = Rows<DnsData>({Shown("Previous Name", ShowDnsName), Shown("Next Name", ShowDnsName)});
constexpr auto kSynchronization = Rows<DnsData>({
    Number(4, "Serial Number"), Hex(2, "Flags"), Flag(14, "SOA Minimum"), Flag(15, "Immediate")});
constexpr auto kZoneDigest = Rows<DnsData>({
    Number(4, "Serial Number"), Number(1, "Scheme", kSchemeNames), Number(1, "Hash Algorithm", kZoneHashNames),
    Bytes(0, "Digest")});
constexpr auto kBinding = Rows<DnsData>({Number(2, "Priority").Note(", Priority %u"), Shown("Target", ShowDnsName)});
constexpr auto kEndpoint = Rows<DnsData>({
    Number(2, "Record Type", DnsTypeName), Number(1, "Scheme", kNotifyNames), Number(2, "Port"), Shown("Target", ShowDnsName)});
constexpr auto kNode = Rows<DnsData>({Number(2, "Preference"), Eui64("Identifier").Note(", %s")});
constexpr auto kLocator32 = Rows<DnsData>({Number(2, "Preference"), IPv4("Locator").Note(", %s")});
constexpr auto kPointer = Rows<DnsData>({Number(2, "Preference"), Shown("Locator Name", ShowDnsName)});
constexpr auto kMac = Rows<DnsData>({Mac("Hardware Address").Note(", %s")});
constexpr auto kEui64 = Rows<DnsData>({Eui64("Hardware Address").Note(", %s")});
constexpr auto kIdentifier = Rows<DnsData>({Number(2, "Priority"), Number(2, "Weight"), Text(0, "Target").Note(", %s")});
constexpr auto kAuthorization = Rows<DnsData>({
    Hex(1, "Flags"), Flag(0, "Issuer Critical"), Counted(1, Text(0, "Tag")).Note(", %s"), Text(0, "Value").Note(" %s")});
constexpr auto kObject = Rows<DnsData>({
    Number(4, "Enterprise"), Number(4, "Type"), Number(1, "Location"), Counted(1, Text(0, "Media Type")), Bytes(0, "Data")});
constexpr auto kWins = Rows<DnsData>({
    Hex(4, "Mapping Flag"), Number(4, "Lookup Timeout", " seconds"), Number(4, "Cache Timeout", " seconds"),
    Number(4, "Server Count")});
constexpr auto kWinsReverse = Rows<DnsData>({
    Hex(4, "Mapping Flag"), Number(4, "Lookup Timeout", " seconds"), Number(4, "Cache Timeout", " seconds"),
    Shown("Result Domain", ShowDnsName)});

// Bits that stand for ports, or for types, from the first on.
void ShowServiceMap(const Place& in, Cursor& c, DnsData&) {
  const Field bits = Rest(c);
  if (!bits.here) return;
  const Place under = Under(in, AddLine(in, bits, "Bit Map: %u bytes", bits.length));
  for (int32_t i = 0; i < 8 * bits.length && GoesOn(in); ++i) {
    const Field octet = Slice(bits, i / 8, 1);
    if (octet.bytes[0] >> (7 - i % 8) & 1) AddLine(under, octet, "Bit: %u", i);
  }
}

// A size of base and power of ten in half an octet each, in centimetres.
void ShowSize(const Place& in, Cursor& c, const char* label) {
  const Field size = TakeU8(c);
  if (!size.here) return;
  uint32_t power = size.value & 0x0F;
  uint64_t centimetres = size.value >> 4;
  for (; power > 0; --power) centimetres *= 10;
  AddLine(in, size, "%s: %I64u.%02u m", label, centimetres / 100, static_cast<uint32_t>(centimetres % 100));
}

// Thousandths of a second of arc from the equator or the prime meridian, which are 2^31.
void ShowAngle(const Place& in, Cursor& c, const char* label, const char* above, const char* below) {
  constexpr uint32_t kOrigin = 0x80000000;
  const Field angle = TakeU32(c);
  if (!angle.here) return;
  const uint32_t size = angle.value >= kOrigin ? angle.value - kOrigin : kOrigin - angle.value;
  const char* side = angle.value >= kOrigin ? above : below;
  AddLine(in, angle, "%s: %u %u %u.%03u %s (%u)", label, size / 3600000, size / 60000 % 60, size / 1000 % 60, size % 1000,
          side, angle.value);
  AppendToParent(in, angle, ", %u %u %u.%03u %s", size / 3600000, size / 60000 % 60, size / 1000 % 60, size % 1000, side);
}

void ShowLocation(const Place& in, Cursor& c, DnsData& data) {
  constexpr int64_t kGround = 10000000;   // centimetres below the reference, from which altitudes count
  static constexpr auto kVersion = Rows<DnsData>({Number(1, "Version")});
  ShowRows<DnsData>(in, c, kVersion, data);
  ShowSize(in, c, "Size");
  ShowSize(in, c, "Horizontal Precision");
  ShowSize(in, c, "Vertical Precision");
  ShowAngle(in, c, "Latitude", "N", "S");
  ShowAngle(in, c, "Longitude", "E", "W");
  const Field altitude = TakeU32(c);
  const int64_t height = int64_t{altitude.value} - kGround, size = height < 0 ? -height : height;
  AddLine(in, altitude, "Altitude: %s%I64d.%02u m (%u)", height < 0 ? "-" : "", size / 100,
          static_cast<uint32_t>(size % 100), altitude.value);
}

// RFC 2874: the bits of the address that the prefix does not give, and the prefix's name.
void ShowAddressParts(const Place& in, Cursor& c, DnsData& data) {
  const Field length = TakeU8(c);
  AddLine(in, length, "Prefix Length: %u", length.value);
  if (length.value > 128) return;
  const Field suffix = TakeBytes(c, (128 - static_cast<int32_t>(length.value) + 7) / 8);
  if (suffix.length) {
    uint8_t address[16] = {};
    for (int32_t i = 0; i < suffix.length && i < 16; ++i) address[16 - suffix.length + i] = suffix.bytes[i];
    AddLine(in, suffix, "Address Suffix: %s", IPv6Text(address));
  }
  if (length.value > 0) ShowDnsName(in, c, "Prefix Name", data);
}

void ShowPrefixes(const Place& in, Cursor& c, DnsData& data) {
  static constexpr auto kItem = Rows<DnsData>({
      Number(2, "Address Family", kFamilyNames).Into(&DnsData::code), Number(1, "Prefix Length").Into(&DnsData::flags),
      Word(1), Flag(0, "Negation"), Bits(1, 7, "Address Length").Into(&DnsData::length)});
  constexpr uint32_t kFour = 1;
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) {
    ShowRows<DnsData>(in, c, kItem, data);
    const Field part = TakeBytes(c, data.length.value);
    uint8_t address[16] = {};
    for (int32_t i = 0; i < part.length && i < 16; ++i) address[i] = part.bytes[i];
    if (data.code.value == kFour) {
      AddLine(in, part, "Address: %s/%u", IPv4Text(address), data.flags.value);
    } else {
      AddLine(in, part, "Address: %s/%u", IPv6Text(address), data.flags.value);
    }
  }
}

void ShowParameters(const Place& in, Cursor& c, DnsData&) { ShowServiceParameters(in, c); }

void ShowRelay(const Place& in, Cursor& c, DnsData& data) {
  static constexpr auto kHead = Rows<DnsData>({
      Number(1, "Precedence"), Word(1), Flag(0, "Discovery Optional"),
      Bits(1, 7, "Relay Type", kRelayNames).Into(&DnsData::code)});
  ShowRows<DnsData>(in, c, kHead, data);
  if (data.code.value == 1) ShowRows<DnsData>(in, c, kAddresses, data);
  if (data.code.value == 2) ShowRows<DnsData>(in, c, kAddress6, data);
  if (data.code.value == 3) ShowDnsName(in, c, "Relay", data);
}

void ShowWinsServers(const Place& in, Cursor& c, DnsData& data) {
  static constexpr auto kServer = Rows<DnsData>({IPv4("WINS Server").Note(", %s")});
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) ShowRows<DnsData>(in, c, kServer, data);
}

constexpr auto kTypes = Choices<DnsData>({
#include "decoders/app/dns_types.inc"
});

}  // namespace

const char* DnsTypeName(uint32_t type) {
  const Choice<DnsData>* choice = FindChoice<DnsData>(kTypes, type);
  return choice ? choice->name : kUndefined;
}

const char* DnsClassName(uint32_t recordClass) { return LookupName(kClassNames, recordClass, "Unassigned"); }

// Behind a comma on the record's own line, where the name's text goes as well.
void ShowDnsName(const Place& in, Cursor& c, const char* label, DnsData& data) {
  if (!Left(c) || data.failed) return;
  AppendToLine(in, in.parent, ", ");
  if (DecodeDnsNameField(in, c, *data.message, label)) return;
  data.failed = true;
  c.ranShort = true;
}

void ShowDnsStrings(const Place& in, Cursor& c, DnsData& data) {
  static constexpr auto kString = Rows<DnsData>({Counted(1, Text(0, "Text")).Note(", %s")});
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const int32_t length = static_cast<int32_t>(PeekU8(c));
    Cursor text = c;
    TakeU8(text);
    text = TakeCursor(text, length);
    if (!StartsDnscryptCertificate(text)) {
      ShowRows<DnsData>(in, c, kString, data);
      continue;
    }
    const Field size = TakeU8(c);
    AddLine(in, size, "Text Length: %u", size.value);
    ShowDnscryptCertificate(in, text);
    TakeBytes(c, length);
  }
}

void ShowDnsTypeMap(const Place& in, Cursor& c, DnsData&) {
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) {
    const Field window = TakeU8(c), length = TakeU8(c);
    AddLine(in, window, "Window Block: %u", window.value);
    AddLine(in, length, "Bit Map Length: %u", length.value);
    const Field bits = TakeBytes(c, length.value);
    const Place under = Under(in, AddLine(in, bits, "Type Bit Map: %s", HexText(bits)));
    for (int32_t i = 0; i < 8 * bits.length && GoesOn(in); ++i) {
      const Field octet = Slice(bits, i / 8, 1);
      if (!(octet.bytes[0] >> (7 - i % 8) & 1)) continue;
      const uint32_t type = window.value << 8 | static_cast<uint32_t>(i);
      AddLine(under, octet, "Type: %u = %s", type, DnsTypeName(type));
    }
  }
}

int32_t DecodeDnsData(const Place& in, Cursor& c, DnsMessage& message, uint32_t type) {
  DnsData data;
  data.message = &message;
  ShowChoice(in, c, FindChoice<DnsData>(kTypes, type), data);
  return data.failed ? 0 : 1;
}

}  // namespace qxview
