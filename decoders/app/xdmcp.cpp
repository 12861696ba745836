// X Display Manager Control Protocol (X.Org: XDMCP, version 1): may this display have a login?
//
//   version (2)   operation code (2)   length of what follows (2)
#include "core/rows.h"

namespace qxview {
namespace {

constexpr int32_t kHeaderSize = 6;
constexpr auto kOperationNames = SortedNames({
    {1, "BroadcastQuery"}, {2, "Query"}, {3, "IndirectQuery"}, {4, "ForwardQuery"}, {5, "Willing"}, {6, "Unwilling"},
    {7, "Request"}, {8, "Accept"}, {9, "Decline"}, {10, "Manage"}, {11, "Refuse"}, {12, "Failed"}, {13, "KeepAlive"},
    {14, "Alive"}});
constexpr auto kConnectionNames = SortedNames({
    {0, "Internet"}, {1, "DECnet"}, {2, "Chaos"}, {6, "Internet, Version 6"}});

struct Xdmcp {
  Field operation;
};

// An array of octets behind its length of two bytes: a line over both with the length below, in the form of its kind.
struct Array {
  Field whole, length, octets;
};
Array TakeArray(Cursor& c) {
  const Cursor start = c;
  Array array{};
  array.length = TakeU16(c);
  Cursor inner = TakeCursor(c, array.length.value);
  array.octets = Ahead(inner, Left(inner));
  array.whole = Ahead(start, c.offset - start.offset);
  array.whole.here = array.length.here;
  return array;
}
Place AddLength(const Place& in, LineHandle line, const Array& array) {
  const Place under = Under(in, line);
  AddLine(under, array.length, "Length: %u", array.length.value);
  return under;
}

void ShowText(const Place& in, Cursor& c, const char* label, Xdmcp&) {
  // keys: text Authentication Name, Authorization Name, Display Class, Host Name, Manufacturer Display ID, Status
  const Array array = TakeArray(c);
  const Place under = AddLength(in, AddLine(in, array.whole, "%s: %s", label, Text(array.octets)), array);
  if (array.octets.length > 0) AddLine(under, array.octets, "Text: %s", Text(array.octets));
}
void ShowBytes(const Place& in, Cursor& c, const char* label, Xdmcp&) {
  // keys: bytes Authentication Data, Authorization Data
  const Array array = TakeArray(c);
  const Place under = AddLength(in, AddLine(in, array.whole, "%s: %s", label, HexText(array.octets)), array);
  if (array.octets.length > 0) AddLine(under, array.octets, "Octets: %s", HexText(array.octets));
}
void ShowAddress(const Place& in, Cursor& c, const char* label, Xdmcp&) {
  // keys: number Client Address Length, Connection Address Length, Client Port
  // keys: address Client Address, Connection Address
  const Array array = TakeArray(c);
  const Field& address = array.octets;
  AddLine(in, array.length, "%s Length: %u", label, array.length.value);
  if (!array.length.here || address.length == 0) return;
  if (address.length == 4) {
    AddLine(in, address, "%s: %s", label, IPv4Text(address.bytes));
  } else if (address.length == 16) {
    AddLine(in, address, "%s: %s", label, IPv6Text(address.bytes));
  } else {
    AddLine(in, address, "%s: %s", label, HexText(address));
  }
}
void ShowPort(const Place& in, Cursor& c, const char* label, Xdmcp&) {
  const Array array = TakeArray(c);
  AddLength(in, array.octets.length == 2 ? AddLine(in, array.whole, "%s: %u", label, ReadU16(array.octets.bytes))
                                         : AddLine(in, array.whole, "%s: %s", label, HexText(array.octets)), array);
}

// Arrays of these behind their count of one byte.
void ShowTexts(const Place& in, Cursor& c, const char* label, Xdmcp& xdmcp) {
  // keys: number Authentication Names, Authorization Names, Connection Types, Connection Type
  const Field count = TakeU8(c);
  AddLine(in, count, "%ss: %u", label, count.value);
  Loop loop;
  for (uint32_t i = 0; i < count.value && MoreAt(in, c, loop); ++i) ShowText(in, c, label, xdmcp);
}
void ShowAddresses(const Place& in, Cursor& c, const char* label, Xdmcp& xdmcp) {
  const Field count = TakeU8(c);
  AddLine(in, count, "Connection Addresses: %u", count.value);
  Loop loop;
  for (uint32_t i = 0; i < count.value && MoreAt(in, c, loop); ++i) ShowAddress(in, c, label, xdmcp);
}
void ShowTypes(const Place& in, Cursor& c, const char* label, Xdmcp&) {
  const Field count = TakeU8(c);
  AddLine(in, count, "%ss: %u", label, count.value);
  Loop loop;
  for (uint32_t i = 0; i < count.value && MoreAt(in, c, loop); ++i) {
    const Field type = TakeU16(c);
    AddLine(in, type, "%s: %u = %s", label, type.value, LookupName(kConnectionNames, type.value));
  }
}

consteval Row<Xdmcp> TextOf(const char* label) { return Shown<Xdmcp>(label, ShowText); }
consteval Row<Xdmcp> BytesOf(const char* label) { return Shown<Xdmcp>(label, ShowBytes); }
consteval Row<Xdmcp> TextsOf(const char* label) { return Shown<Xdmcp>(label, ShowTexts); }

constexpr auto kHeader = Rows<Xdmcp>({
    Number(2, "Version"), Number(2, "Operation Code", kOperationNames).Into(&Xdmcp::operation), Number(2, "Length")});
constexpr auto kQuery = Rows<Xdmcp>({TextsOf("Authentication Name")});
constexpr auto kForward = Rows<Xdmcp>({
    Shown<Xdmcp>("Client Address", ShowAddress), Shown<Xdmcp>("Client Port", ShowPort),
    TextsOf("Authentication Name")});
constexpr auto kWilling = Rows<Xdmcp>({TextOf("Authentication Name"), TextOf("Host Name"), TextOf("Status")});
constexpr auto kUnwilling = Rows<Xdmcp>({TextOf("Host Name"), TextOf("Status")});
constexpr auto kRequest = Rows<Xdmcp>({
    Number(2, "Display Number"), Shown<Xdmcp>("Connection Type", ShowTypes),
    Shown<Xdmcp>("Connection Address", ShowAddresses), TextOf("Authentication Name"), BytesOf("Authentication Data"),
    TextsOf("Authorization Name"), TextOf("Manufacturer Display ID")});
constexpr auto kAccept = Rows<Xdmcp>({
    Hex(4, "Session ID"), TextOf("Authentication Name"), BytesOf("Authentication Data"), TextOf("Authorization Name"),
    BytesOf("Authorization Data")});
constexpr auto kDecline = Rows<Xdmcp>({
    TextOf("Status"), TextOf("Authentication Name"), BytesOf("Authentication Data")});
constexpr auto kManage = Rows<Xdmcp>({Hex(4, "Session ID"), Number(2, "Display Number"), TextOf("Display Class")});
constexpr auto kRefuse = Rows<Xdmcp>({Hex(4, "Session ID")});
constexpr auto kFailed = Rows<Xdmcp>({Hex(4, "Session ID"), TextOf("Status")});
constexpr auto kKeepAlive = Rows<Xdmcp>({Number(2, "Display Number"), Hex(4, "Session ID")});
constexpr auto kAlive = Rows<Xdmcp>({Number(1, "Session Running", kFalseTrueNames), Hex(4, "Session ID")});

RowSpan<Xdmcp> BodyOf(uint32_t operation) {
  switch (operation) {
    case 1: case 2: case 3: return kQuery;
    case 4: return kForward;
    case 5: return kWilling;
    case 6: return kUnwilling;
    case 7: return kRequest;
    case 8: return kAccept;
    case 9: return kDecline;
    case 10: return kManage;
    case 11: return kRefuse;
    case 12: return kFailed;
    case 13: return kKeepAlive;
    case 14: return kAlive;
    default: return {};
  }
}

}  // namespace

int32_t DecodeXdmcp(const Place& at, Cursor c) {
  if (Left(c) < kHeaderSize || PeekU16(c) != 1) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, kHeaderSize), "XDMCP: %s", LookupName(kOperationNames,
    PeekU16(c, 2))));
  Xdmcp xdmcp = ShowRows(in, c, kHeader);
  ShowRows<Xdmcp>(in, c, BodyOf(xdmcp.operation.value), xdmcp);
  CoverBytes(in, c);
  c.ranShort = false;
  AddBlock(in, Rest(c), "XDMCP Data");
  return 1;
}

}  // namespace qxview
