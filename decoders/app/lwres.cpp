// The lightweight resolver protocol (BIND 9 Administrator Reference Manual): a program asks the resolver of its own
// host for names, addresses and records.
//
//   length (4)   version (2)   flags (2)   serial (4)   operation (4)   result (4)   longest reply (4)
//   authentication type (2) and length (2)   what the operation says
#include "core/rows.h"
#include "decoders/common/line_text.h"

namespace qxview {
namespace {

constexpr int32_t kHeaderSize = 28;
constexpr uint32_t kNoop = 0, kAddressesByName = 0x10001, kNameByAddress = 0x10002, kRecordsByName = 0x10003;

constexpr auto kOperationNames = SortedNames({
    {0, "NOOP"}, {0x10001, "GETADDRSBYNAME"}, {0x10002, "GETNAMEBYADDR"}, {0x10003, "GETRDATABYNAME"}});
constexpr auto kResultNames = SortedNames({
    {0, "Success"}, {1, "No Memory"}, {2, "Timeout"}, {3, "Not Found"}, {4, "Unexpected End of Input"},
    {5, "Generic Failure"}, {6, "Input/Output Error"}, {7, "Not Implemented"}, {8, "Unexpected"}, {9, "Trailing Data"},
    {10, "Incomplete"}, {11, "Retry"}, {12, "Type Not Found"}, {13, "Too Large"}});
constexpr auto kFlagNames = SortedNames({{0x0001, "Response"}});
constexpr auto kFamilyNames = SortedNames({{1, "IPv4"}, {2, "IPv6"}});
constexpr auto kFamilyFlags = SortedNames({{1, "IPv4"}, {2, "IPv6"}});
constexpr auto kClassNames = SortedNames({{1, "IN"}, {3, "CH"}, {4, "HS"}, {255, "ANY"}});
constexpr auto kTypeNames = SortedNames({
    {1, "A"}, {2, "NS"}, {5, "CNAME"}, {6, "SOA"}, {12, "PTR"}, {15, "MX"}, {16, "TXT"}, {28, "AAAA"}, {33, "SRV"},
    {255, "ANY"}});

struct Lwres {
  Field length, flags, operation, aliases, addresses, records, signatures, type;
};
constexpr auto kHeader = Rows<Lwres>({
    Number(4, "Length").Into(&Lwres::length), Number(2, "Version"),
    Flags(2, "Packet Flags", kFlagNames).Into(&Lwres::flags),
    Hex(4, "Serial"), Number(4, "Operation", kOperationNames).Into(&Lwres::operation),
    Number(4, "Result", kResultNames).Note(", %s"), Number(4, "Receive Length"), Number(2, "Authentication Type"),
    Number(2, "Authentication Length")});
constexpr auto kData = Rows<Lwres>({Counted(2, Bytes(0, "Data"))});
constexpr auto kQueryFlags = Rows<Lwres>({Hex(4, "Flags")});
constexpr auto kAddressTypes = Rows<Lwres>({Flags(4, "Address Types", kFamilyFlags)});
constexpr auto kName = Rows<Lwres>({Counted(2, Text(0, "Name")).Note(", %s"), Number(1, "Terminator")});
constexpr auto kAlias = Rows<Lwres>({Counted(2, Text(0, "Alias")), Number(1, "Terminator")});
constexpr auto kCounts = Rows<Lwres>({
    Number(2, "Number of Aliases").Into(&Lwres::aliases), Number(2, "Number of Addresses").Into(&Lwres::addresses)});
constexpr auto kAliasCount = Rows<Lwres>({Number(2, "Number of Aliases").Into(&Lwres::aliases)});
constexpr auto kClassAndType = Rows<Lwres>({
    Number(2, "Class", kClassNames), Number(2, "Type", kTypeNames).Into(&Lwres::type)});
constexpr auto kRecordCounts = Rows<Lwres>({
    Number(4, "Time to Live", " seconds"), Number(2, "Number of Records").Into(&Lwres::records),
    Number(2, "Number of Signatures").Into(&Lwres::signatures)});
constexpr auto kPreference = Rows<Lwres>({Number(2, "Preference")});
constexpr auto kService = Rows<Lwres>({Number(2, "Priority"), Number(2, "Weight"), Number(2, "Port")});
constexpr auto kOctets = Rows<Lwres>({Bytes(0, "Data")});
constexpr auto kIPv4Address = Rows<Lwres>({IPv4("Address")});
constexpr auto kIPv6Address = Rows<Lwres>({IPv6("Address")});

void ShowAddress(const Place& in, Cursor& c, Lwres& lwres) {
  constexpr auto kHead = Rows<Lwres>({Number(4, "Address Family", kFamilyNames)});
  ShowRows<Lwres>(in, c, kHead, lwres);
  const Field length = TakeU16(c);
  AddLine(in, length, "Address Length: %u", length.value);
  Cursor address = TakeCursor(c, length.value);
  if (Left(address) == 4) return ShowRows<Lwres>(in, address, kIPv4Address, lwres);
  if (Left(address) == 16) return ShowRows<Lwres>(in, address, kIPv6Address, lwres);
  if (Left(address) > 0) ShowRows<Lwres>(in, address, kOctets, lwres);
}

// Names of records as DNS writes them, without compression.
void ShowDnsName(const Place& in, Cursor& c, const char* label) {
  char text[260];
  LineText name(text, sizeof text);
  const Cursor start = c;
  Loop loop;
  while (More(c, loop)) {
    const Field part = TakeBytes(c, TakeU8(c).value);
    if (!part.here || part.length == 0) break;
    if (!name.IsEmpty()) name.Put(".");
    name.PutCharacters(CursorOver(part), "");
  }
  AddLine(in, Ahead(start, c.offset - start.offset), "%s: %s", label, static_cast<const char*>(text));
}

void ShowRecord(const Place& at, Cursor& c, Lwres& lwres, const char* title) {
  constexpr uint32_t kA = 1, kNs = 2, kCname = 5, kPtr = 12, kMx = 15, kAaaa = 28, kSrv = 33;
  const Cursor start = c;
  const Field length = TakeU16(c);
  Cursor data = TakeCursor(c, length.value);
  const Place in = Under(at, AddLine(at, Ahead(start, c.offset - start.offset), "%s", title));
  AddLine(in, length, "Length: %u", length.value);
  const uint32_t type = lwres.type.value;
  if (title[0] != 'R' || Left(data) < 1) {
    if (Left(data) > 0) ShowRows<Lwres>(in, data, kOctets, lwres);
  } else if (type == kA && Left(data) == 4) {
    ShowRows<Lwres>(in, data, kIPv4Address, lwres);
  } else if (type == kAaaa && Left(data) == 16) {
    ShowRows<Lwres>(in, data, kIPv6Address, lwres);
  } else if (type == kNs || type == kCname || type == kPtr) {
    ShowDnsName(in, data, "Name");
  } else if (type == kMx) {
    ShowRows<Lwres>(in, data, kPreference, lwres);
    ShowDnsName(in, data, "Exchange");
  } else if (type == kSrv) {
    ShowRows<Lwres>(in, data, kService, lwres);
    ShowDnsName(in, data, "Target");
  } else {
    ShowRows<Lwres>(in, data, kOctets, lwres);
  }
}

void ShowAliases(const Place& in, Cursor& c, Lwres& lwres) {
  Loop loop;
  for (uint32_t i = 0; i < lwres.aliases.value && MoreAt(in, c, loop); ++i) ShowRows<Lwres>(in, c, kAlias, lwres);
}

void ShowRequest(const Place& in, Cursor& c, Lwres& lwres, uint32_t operation) {
  ShowRows<Lwres>(in, c, kQueryFlags, lwres);
  if (operation == kNameByAddress) return ShowAddress(in, c, lwres);
  if (operation == kAddressesByName) ShowRows<Lwres>(in, c, kAddressTypes, lwres);
  if (operation == kRecordsByName) ShowRows<Lwres>(in, c, kClassAndType, lwres);
  ShowRows<Lwres>(in, c, kName, lwres);
}

void ShowResponse(const Place& in, Cursor& c, Lwres& lwres, uint32_t operation) {
  ShowRows<Lwres>(in, c, kQueryFlags, lwres);
  if (operation == kRecordsByName) {
    ShowRows<Lwres>(in, c, kClassAndType, lwres);
    ShowRows<Lwres>(in, c, kRecordCounts, lwres);
    ShowRows<Lwres>(in, c, kName, lwres);
    Loop records, signatures;
    const uint32_t recordCount = lwres.records.value, signatureCount = lwres.signatures.value;
    for (uint32_t i = 0; i < recordCount && MoreAt(in, c, records); ++i) ShowRecord(in, c, lwres, "Record");
    for (uint32_t i = 0; i < signatureCount && MoreAt(in, c, signatures); ++i) ShowRecord(in, c, lwres, "Signature");
    return;
  }
  const bool hasAddresses = operation == kAddressesByName;
  ShowRows<Lwres>(in, c, hasAddresses ? RowSpan<Lwres>(kCounts) : RowSpan<Lwres>(kAliasCount), lwres);
  ShowRows<Lwres>(in, c, kName, lwres);
  ShowAliases(in, c, lwres);
  Loop loop;
  for (uint32_t i = 0; hasAddresses && i < lwres.addresses.value && MoreAt(in, c, loop); ++i) ShowAddress(in, c, lwres);
}

}  // namespace

int32_t DecodeLwres(const Place& at, Cursor c) {
  const Lwres ahead = PeekRows(c, kHeader);
  if (Left(c) < kHeaderSize || ahead.length.value < kHeaderSize) return 0;
  const bool isResponse = ahead.flags.value & 1;
  const uint32_t operation = ahead.operation.value;
  const Place in = Under(at, AddLine(at, Ahead(c, kHeaderSize), "LWRES: %s %s", LookupName(kOperationNames, operation),
                                     isResponse ? "Response" : "Request"));
  Lwres lwres = ShowRows(in, c, kHeader);
  Cursor body = TakeCursor(c, int64_t{lwres.length.value} - kHeaderSize);
  CoverBytes(in, c);
  if (operation == kNoop) {
    if (Left(body) > 0) ShowRows<Lwres>(in, body, kData, lwres);
  } else if (operation >= kAddressesByName && operation <= kRecordsByName && Left(body) > 0) {
    isResponse ? ShowResponse(in, body, lwres, operation) : ShowRequest(in, body, lwres, operation);
  }
  body.ranShort = false;   // what is left of a field that is cut
  AddBlock(in, Rest(body), "Data");
  AddBlock(in, Rest(c), "Trailing Data");
  return 1;
}

}  // namespace qxview
