// RPKI to Router protocol, version 0 (RFC 6810), 1 (RFC 8210) and 2: a cache tells routers which autonomous systems may
// announce which prefixes, whose keys sign paths, and which systems provide for others.
//
//   version (1)   type (1)   session, error code or flags (2)   length with all (4)   what the type says
#include "core/rows.h"
#include "decoders/message_lengths.h"

namespace qxview {
namespace {

constexpr int32_t kHeaderSize = 8;
enum : uint32_t {
  kSerialNotify = 0, kSerialQuery = 1, kResetQuery = 2, kCacheResponse = 3, kIPv4Prefix = 4, kIPv6Prefix = 6,
  kEndOfData = 7, kCacheReset = 8, kRouterKey = 9, kErrorReport = 10, kAspa = 11,
};

constexpr auto kTypeNames = SortedNames({
    {0, "Serial Notify"}, {1, "Serial Query"}, {2, "Reset Query"}, {3, "Cache Response"}, {4, "IPv4 Prefix"},
    {6, "IPv6 Prefix"}, {7, "End of Data"}, {8, "Cache Reset"}, {9, "Router Key"}, {10, "Error Report"}, {11, "ASPA"}});
constexpr auto kErrorNames = SortedNames({
    {0, "Corrupt Data"}, {1, "Internal Error"}, {2, "No Data Available"}, {3, "Invalid Request"},
    {4, "Unsupported Protocol Version"}, {5, "Unsupported PDU Type"}, {6, "Withdrawal of Unknown Record"},
    {7, "Duplicate Announcement Received"}, {8, "Unexpected Protocol Version"}, {9, "ASPA Provider List Error"},
    {10, "Transport Failed"}, {11, "Ordering Error"}});
constexpr auto kAnnounceNames = SortedNames({{0, "Withdrawal"}, {1, "Announcement"}});

struct Rtr {
  Field version, length, size;
};

constexpr auto kHead = Rows<Rtr>({Number(1, "Version").Into(&Rtr::version), Number(1, "Type", kTypeNames)});
constexpr auto kSession = Rows<Rtr>({Hex(2, "Session ID"), Number(4, "Length").Into(&Rtr::length)});
constexpr auto kZero = Rows<Rtr>({Hex(2, "Reserved"), Number(4, "Length").Into(&Rtr::length)});
constexpr auto kFlagged = Rows<Rtr>({
    Word(1), Bits(0, 7, "Reserved"), Bits(7, 1, "Announcement", kAnnounceNames).Note(", %s"), Hex(1, "Reserved"),
    Number(4, "Length").Into(&Rtr::length)});
constexpr auto kErrorHead = Rows<Rtr>({
    Number(2, "Error Code", kErrorNames).Note(", %s"), Number(4, "Length").Into(&Rtr::length)});
constexpr auto kSerial = Rows<Rtr>({Number(4, "Serial Number").Note(", Serial %u")});
constexpr auto kTimes = Rows<Rtr>({
    Number(4, "Refresh Interval", " seconds"), Number(4, "Retry Interval", " seconds"),
    Number(4, "Expire Interval", " seconds")});
constexpr auto kPrefix4 = Rows<Rtr>({
    Word(1), Bits(0, 7, "Reserved"), Bits(7, 1, "Announcement", kAnnounceNames).Note(", %s"),
    Number(1, "Prefix Length").Into(&Rtr::size), Number(1, "Maximum Length"), Hex(1, "Reserved"),
    IPv4("IPv4 Prefix").Note(", %s"), Number(4, "AS Number").Note(", AS %u")});
constexpr auto kPrefix6 = Rows<Rtr>({
    Word(1), Bits(0, 7, "Reserved"), Bits(7, 1, "Announcement", kAnnounceNames).Note(", %s"), Number(1, "Prefix Length"),
    Number(1, "Maximum Length"), Hex(1, "Reserved"), IPv6("IPv6 Prefix").Note(", %s"),
    Number(4, "AS Number").Note(", AS %u")});
constexpr auto kKey = Rows<Rtr>({
    Bytes(20, "Subject Key Identifier"), Number(4, "AS Number").Note(", AS %u"), Bytes(0, "Subject Public Key Info")});
constexpr auto kCustomer = Rows<Rtr>({Number(4, "Customer AS Number").Note(", AS %u")});
constexpr auto kProvider = Rows<Rtr>({Number(4, "Provider AS Number").Note(", Provider AS %u")});
constexpr auto kFaulty = Rows<Rtr>({
    Number(4, "Encapsulated PDU Length").Into(&Rtr::size), Bytes(0, "Erroneous PDU").SizedBy(&Rtr::size)});
constexpr auto kErrorText = Rows<Rtr>({
    Number(4, "Error Text Length").Into(&Rtr::size), Utf8(0, "Error Text").SizedBy(&Rtr::size)});

void ShowBody(const Place& in, Cursor& c, uint32_t type, Rtr& rtr) {
  const auto show = [&](RowSpan<Rtr> rows) { ShowRows<Rtr>(in, c, rows, rtr); };
  const bool isFlagged = type == kRouterKey || type == kAspa;
  const bool isZero = type == kResetQuery || type == kIPv4Prefix || type == kIPv6Prefix || type == kCacheReset;
  show(isFlagged               ? RowSpan<Rtr>(kFlagged)
       : type == kErrorReport  ? RowSpan<Rtr>(kErrorHead)
       : isZero                ? RowSpan<Rtr>(kZero)
                               : RowSpan<Rtr>(kSession));
  switch (type) {
    case kSerialNotify: case kSerialQuery: show(kSerial); break;
    case kIPv4Prefix: show(kPrefix4); break;
    case kIPv6Prefix: show(kPrefix6); break;
    case kEndOfData:
      show(kSerial);
      if (Left(c)) show(kTimes);   // since version 1
      break;
    case kRouterKey: show(kKey); break;
    case kErrorReport:
      show(kFaulty);
      show(kErrorText);
      break;
    case kAspa: {
      show(kCustomer);
      Loop loop;
      while (Left(c) >= 4 && MoreAt(in, c, loop)) show(kProvider);
      break;
    }
    default: break;
  }
}

// A message of a version to come or of an unknown type is as long as its head says, if that is sensible.
int32_t LengthOfAny(const Cursor& c) {
  constexpr uint32_t kMost = 1 << 16;
  const int32_t known = LengthOfRpkiRtr(c);
  const uint32_t length = PeekU32(c, 4);
  return known != kNoMessage || length < kHeaderSize || length > kMost ? known : static_cast<int32_t>(length);
}

}  // namespace

int32_t DecodeRpkiRtr(const Place& at, Cursor c) {
  constexpr uint32_t kLastVersion = 2;
  if (Left(c) < kHeaderSize || LengthOfAny(c) == kNoMessage) return 0;
  Loop loop;
  while (Left(c) >= kHeaderSize && LengthOfAny(c) != kNoMessage && MoreAt(at, c, loop)) {
    const uint32_t type = PeekU8(c, 1);
    Cursor message = TakeCursor(c, LengthOfAny(c));
    const Place in = Under(at, AddLine(at, Ahead(message, Left(message)), "RPKI-RTR: %s", LookupName(kTypeNames, type)));
    Rtr rtr = ShowRows(in, message, kHead);
    if (rtr.version.value > kLastVersion) AppendToParent(in, rtr.version, ", Unknown Version %u", rtr.version.value);
    ShowBody(in, message, type, rtr);
    message.ranShort = false;   // what is left of a message that is cut
    AddBlock(in, Rest(message), "Message Data");
  }
  AddRawRest(at, c, "RPKI-RTR Data");
  return 1;
}

}  // namespace qxview
