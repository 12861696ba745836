// Kerberos version 4 (Project Athena Technical Plan, section E.2.1): who asks for which ticket, and what was the
// answer? The type's last bit says in which byte order the sender writes numbers.
//
//   version (1)   type and byte order (1)   name, instance and realm, terminated each   and by the type: times, tickets
#include "core/rows.h"

namespace qxview {
namespace {

constexpr uint32_t kVersion = 4;
constexpr uint32_t kTicketRequest = 1, kTicketReply = 2, kApplication = 3, kMutual = 4, kErrorReply = 5, kPrivate = 6,
                   kSafe = 7, kApplicationError = 8, kDie = 63;

constexpr auto kTypeNames = SortedNames({
    {1, "Ticket Request"}, {2, "Ticket Reply"}, {3, "Application Request"}, {4, "Application Request (Mutual)"},
    {5, "Error Reply"}, {6, "Private Message"}, {7, "Safe Message"}, {8, "Application Error"}, {63, "Die"}});
constexpr auto kOrderNames = SortedNames({{0, "Big-Endian"}, {1, "Little-Endian"}});
constexpr auto kErrorNames = SortedNames({
    {0, "OK"}, {1, "Principal Expired"}, {2, "Service Expired"}, {3, "Authentication Expired"},
    {4, "Protocol Version Unknown"}, {5, "Wrong Master Key Version of Principal"},
    {6, "Wrong Master Key Version of Service"}, {7, "Byte Order Unknown"}, {8, "Principal Unknown"},
    {9, "Principal Not Unique"}, {10, "Null Key"}, {20, "Generic Error"}, {31, "Cannot Decode Authenticator"},
    {32, "Ticket Expired"}, {33, "Ticket Not Yet Valid"}, {34, "Repeated Request"}, {35, "Ticket Is Not for Us"},
    {36, "Request Is Inconsistent"}, {37, "Clock Skew Too Great"}, {38, "Incorrect Network Address"},
    {39, "Protocol Version Mismatch"}, {40, "Invalid Message Type"}, {41, "Message Stream Modified"},
    {42, "Message out of Order"}, {43, "Unauthorized Request"}});

struct Kerberos4 {
  Field type, ticket, authenticator, length;
};

// A lifetime counts five minutes; from 128 on the values follow a table that grows by the same factor each.
void ShowLifetime(const Place& in, const Field& field, const char* label) {
  const uint32_t value = PeekU8(field);
  constexpr uint32_t kFirstOfTable = 128;
  if (value < kFirstOfTable) {
    AddLine(in, field, "%s: %u (%u minutes)", label, value, value * 5);
  } else {
    AddLine(in, field, "%s: %u", label, value);
  }
}

constexpr auto kHeader = Rows<Kerberos4>({
    Number(1, "Version"), Word(1), Bits(0, 7, "Message Type", kTypeNames).Into(&Kerberos4::type),
    Bits(7, 1, "Byte Order", kOrderNames)});
constexpr auto kPrincipal = Rows<Kerberos4>({
    Terminated(Text(0, "Name")).Note(", %s"), Terminated(Text(0, "Instance")), Terminated(Text(0, "Realm"))});
constexpr auto kAsked = Rows<Kerberos4>({
    UnixTime(4, "Time"), Shown(1, "Lifetime", ShowLifetime), Terminated(Text(0, "Service Name")).Note(" for %s"),
    Terminated(Text(0, "Service Instance"))});
constexpr auto kGiven = Rows<Kerberos4>({
    UnixTime(4, "Time"), Number(1, "Number of Tickets"), UnixTime(4, "Expiration"),
    Number(1, "Master Key Version of Principal"), Number(2, "Encrypted Length").Into(&Kerberos4::length),
    Bytes(0, "Encrypted Data").SizedBy(&Kerberos4::length)});
constexpr auto kPresented = Rows<Kerberos4>({
    Number(1, "Master Key Version of Service"), Terminated(Text(0, "Realm")),
    Number(1, "Ticket Length").Into(&Kerberos4::ticket),
    Number(1, "Authenticator Length").Into(&Kerberos4::authenticator),
    Bytes(0, "Ticket").SizedBy(&Kerberos4::ticket), Bytes(0, "Authenticator").SizedBy(&Kerberos4::authenticator)});
constexpr auto kFailed = Rows<Kerberos4>({
    UnixTime(4, "Time"), Number(4, "Error Code", kErrorNames).Note(", %s"), Terminated(Text(0, "Error Text"))});
constexpr auto kRefused = Rows<Kerberos4>({
    Number(4, "Error Code", kErrorNames).Note(", %s"), Terminated(Text(0, "Error Text"))});
constexpr auto kSealed = Rows<Kerberos4>({
    Number(4, "Encrypted Length").Into(&Kerberos4::length), Bytes(0, "Encrypted Data").SizedBy(&Kerberos4::length)});
constexpr auto kOpen = Rows<Kerberos4>({
    Number(4, "Data Length").Into(&Kerberos4::length), Bytes(0, "Application Data").SizedBy(&Kerberos4::length),
    Number(1, "Time of 5 Milliseconds"), IPv4("Sender's Address"), UnixTime(4, "Time"), Bytes(16, "Checksum")});

RowSpan<Kerberos4> RowsOf(uint32_t type) {
  switch (type) {
    case kTicketRequest: return kAsked;
    case kTicketReply: return kGiven;
    case kApplication:
    case kMutual: return kPresented;
    case kErrorReply: return kFailed;
    case kApplicationError: return kRefused;
    case kPrivate: return kSealed;
    case kSafe: return kOpen;
    default: return {};
  }
}

}  // namespace

int32_t DecodeKerberos4(const Place& at, Cursor c) {
  const uint32_t type = PeekU8(c, 1) >> 1;
  const bool isType = (type >= kTicketRequest && type <= kApplicationError) || type == kDie;
  if (Left(c) < 3 || PeekU8(c) != kVersion || !isType) return 0;
  const ByteOrder order = PeekU8(c, 1) & 1 ? ByteOrder::kLittle : ByteOrder::kAsRows;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "Kerberos 4: %s", LookupName(kTypeNames, type)));
  Kerberos4 kerberos = ShowRows(in, c, kHeader);
  const bool hasPrincipal = type == kTicketRequest || type == kTicketReply || type == kErrorReply;
  if (hasPrincipal) ShowRows<Kerberos4>(in, c, kPrincipal, kerberos);
  ShowRows<Kerberos4>(in, c, RowsOf(type), kerberos, nullptr, order);
  c.ranShort = false;   // what is left of a field that is cut
  AddBlock(in, Rest(c), "Kerberos 4 Data");
  return 1;
}

}  // namespace qxview
