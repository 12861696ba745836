// Service Location Protocol, version 1 (RFC 2165) and 2 (RFC 2608): where is a service of this type?
//
//   version 2: version (1) function (1) length (3) flags (2) next extension (3) XID (2) language tag
//   version 1: version (1) function (1) length (2) flags (1) dialect (1) language (2) encoding (2) XID (2)
#include "core/rows.h"

namespace qxview {
namespace {

constexpr auto kFunctionNames = SortedNames({
    {1, "Service Request"}, {2, "Service Reply"}, {3, "Service Registration"}, {4, "Service Deregister"},
    {5, "Service Acknowledge"}, {6, "Attribute Request"}, {7, "Attribute Reply"}, {8, "DA Advertisement"},
    {9, "Service Type Request"}, {10, "Service Type Reply"}, {11, "SA Advertisement"}});
constexpr auto kErrorNames1 = SortedNames({
    {0, "Success"}, {1, "LANGUAGE_NOT_SUPPORTED"}, {2, "PROTOCOL_PARSE_ERROR"}, {3, "INVALID_REGISTRATION"},
    {4, "SCOPE_NOT_SUPPORTED"}, {5, "CHARSET_NOT_UNDERSTOOD"}, {6, "AUTHENTICATION_ABSENT"},
    {7, "AUTHENTICATION_FAILED"}});
constexpr auto kErrorNames2 = SortedNames({
    {0, "Success"}, {1, "LANGUAGE_NOT_SUPPORTED"}, {2, "PARSE_ERROR"}, {3, "INVALID_REGISTRATION"},
    {4, "SCOPE_NOT_SUPPORTED"}, {5, "AUTHENTICATION_UNKNOWN"}, {6, "AUTHENTICATION_ABSENT"},
    {7, "AUTHENTICATION_FAILED"}, {9, "VER_NOT_SUPPORTED"}, {10, "INTERNAL_ERROR"}, {11, "DA_BUSY_NOW"},
    {12, "OPTION_NOT_UNDERSTOOD"}, {13, "INVALID_UPDATE"}, {14, "MSG_NOT_SUPPORTED"}, {15, "REFRESH_REJECTED"}});
constexpr auto kEncodingNames = SortedNames({
    {3, "US-ASCII"}, {4, "ISO-8859-1"}, {6, "ISO-8859-3"}, {17, "Shift_JIS"}, {106, "UTF-8"}, {1000, "ISO-10646-UCS-2"},
    {1001, "ISO-10646-UCS-4"}});

struct Slp {
  Field version, function, authentications;
};

constexpr auto kHeader1 = Rows<Slp>({
    Number(1, "Version").Into(&Slp::version), Number(1, "Function", kFunctionNames).Into(&Slp::function),
    Number(2, "Length"), Hex(1, "Flags"), Flag(0, "Overflow"), Flag(1, "Monolingual"), Flag(2, "URL Authentication"),
    Flag(3, "Attribute Authentication"), Flag(4, "Fresh"), Bits(5, 3, "Reserved"), Number(1, "Dialect"),
    Text(2, "Language Code"), Number(2, "Character Encoding", kEncodingNames), Number(2, "XID")});
constexpr auto kHeader2 = Rows<Slp>({
    Number(1, "Version").Into(&Slp::version), Number(1, "Function", kFunctionNames).Into(&Slp::function),
    Number(3, "Length"), Hex(2, "Flags"), Flag(0, "Overflow"), Flag(1, "Fresh"), Flag(2, "Multicast Request"),
    Bits(3, 13, "Reserved"), Number(3, "Next Extension Offset"), Number(2, "XID"), Counted(2,
    Utf8(0, "Language Tag"))});

// Blocks of authentication: what is signed, and by whom.
void ShowAuthentications(const Place& in, Cursor& c, const char*, Slp&) {
  constexpr auto kBlock = Rows<Slp>({
      Hex(2, "Block Structure Descriptor"), Number(2, "Block Length"), UnixTime(4, "Timestamp"),
      Counted(2, Utf8(0, "SPI"))});
  const Field count = TakeU8(c);
  AddLine(in, count, "Authentication Blocks: %u", count.value);
  Loop loop;
  for (uint32_t i = 0; i < count.value && MoreAt(in, c, loop); ++i) {
    const uint32_t length = PeekU16(c, 2);
    Cursor block = TakeCursor(c, length < 10 ? Left(c) : static_cast<int32_t>(length));
    const Place under = Under(in, AddLine(in, Ahead(block, Left(block)), "Authentication Block"));
    Slp ignored{};
    ShowRows<Slp>(under, block, kBlock, ignored);
    const Field signature = Rest(block);
    AddLine(under, signature, "Signature: %s", HexText(signature));
  }
}

void ShowUrl2(const Place& in, Cursor& c, const char* label, Slp& slp) {
  constexpr auto kUrl = Rows<Slp>({
      Number(1, "Reserved"), Number(2, "Lifetime", " seconds"), Counted(2, Utf8(0, "URL")).Note(", %s")});
  const Cursor start = c;
  const LineHandle line = AddLine(in, Ahead(c, Left(c) < 5 ? Left(c) : 5), "%s", label);
  const Place under = Under(in, line);
  ShowRows<Slp>(under, c, kUrl, slp);
  ShowAuthentications(under, c, label, slp);
  if (line) SetRange(under, line, start.offset, c.offset - start.offset);
}
void ShowUrl1(const Place& in, Cursor& c, const char* label, Slp& slp) {
  constexpr auto kUrl = Rows<Slp>({Number(2, "Lifetime", " seconds"), Counted(2, Utf8(0, "URL")).Note(", %s")});
  const Cursor start = c;
  const LineHandle line = AddLine(in, Ahead(c, Left(c) < 4 ? Left(c) : 4), "%s", label);
  ShowRows<Slp>(Under(in, line), c, kUrl, slp);
  if (line) SetRange(in, line, start.offset, c.offset - start.offset);
}
void ShowUrls(const Place& in, Cursor& c, const char* label, Slp& slp) {
  const Field count = TakeU16(c);
  AddLine(in, count, "URL Entries: %u", count.value);
  Loop loop;
  for (uint32_t i = 0; i < count.value && MoreAt(in, c, loop); ++i) {
    if (slp.version.value == 1) {
      ShowUrl1(in, c, label, slp);
    } else {
      ShowUrl2(in, c, label, slp);
    }
  }
}
void ShowServiceTypes(const Place& in, Cursor& c, const char* label, Slp& slp) {
  constexpr auto kType = Rows<Slp>({Counted(2, Utf8(0, "Service Type"))});
  const Field count = TakeU16(c);
  AddLine(in, count, "%ss: %u", label, count.value);
  Loop loop;
  for (uint32_t i = 0; i < count.value && MoreAt(in, c, loop); ++i) ShowRows<Slp>(in, c, kType, slp);
}
// No authority, an own one, or with all ones any.
void ShowAuthority(const Place& in, Cursor& c, const char* label, Slp&) {
  // keys: number Naming Authority Length, Service Types
  // keys: text Naming Authority, URL Entry
  const Field length = TakeU16(c);
  if (length.value == 0xFFFF) {
    AddLine(in, length, "%s Length: %u = Any", label, length.value);
    return;
  }
  AddLine(in, length, "%s Length: %u", label, length.value);
  Cursor inner = TakeCursor(c, length.value);
  const Field authority = Rest(inner);
  AddLine(in, authority, "%s: %s", label, Text(authority));
}

consteval RowData String(const char* label) { return Counted(2, Utf8(0, label)); }
consteval RowData Error1() { return Number(2, "Error Code", kErrorNames1).Note(", %s"); }
consteval RowData Error2() { return Number(2, "Error Code", kErrorNames2).Note(", %s"); }

constexpr auto kRequest1 = Rows<Slp>({String("Previous Responders"), String("Predicate").Note(", %s")});
constexpr auto kReply1 = Rows<Slp>({Error1(), Shown<Slp>("URL Entry", ShowUrls)});
constexpr auto kRegistration1 = Rows<Slp>({Shown<Slp>("URL Entry", ShowUrl1), String("Attribute List")});
constexpr auto kDeregister1 = Rows<Slp>({String("URL").Note(", %s"), String("Tag List")});
constexpr auto kAcknowledge1 = Rows<Slp>({Error1()});
constexpr auto kAttributeRequest1 = Rows<Slp>({
    String("Previous Responders"), String("URL").Note(", %s"), String("Scope"), String("Select List")});
constexpr auto kAttributeReply1 = Rows<Slp>({Error1(), String("Attribute List")});
constexpr auto kDirectory1 = Rows<Slp>({Error1(), String("URL").Note(", %s"), String("Scope List")});
constexpr auto kTypeRequest1 = Rows<Slp>({
    String("Previous Responders"), Shown<Slp>("Naming Authority", ShowAuthority), String("Scope")});
constexpr auto kTypeReply1 = Rows<Slp>({Error1(), Shown<Slp>("Service Type", ShowServiceTypes)});

constexpr auto kRequest2 = Rows<Slp>({
    String("Previous Responders"), String("Service Type").Note(", %s"), String("Scope List"), String("Predicate"),
    String("SLP SPI")});
constexpr auto kReply2 = Rows<Slp>({Error2(), Shown<Slp>("URL Entry", ShowUrls)});
constexpr auto kRegistration2 = Rows<Slp>({
    Shown<Slp>("URL Entry", ShowUrl2), String("Service Type").Note(", %s"), String("Scope List"),
    String("Attribute List"), Shown<Slp>(nullptr, ShowAuthentications)});
constexpr auto kDeregister2 = Rows<Slp>({String("Scope List"), Shown<Slp>("URL Entry", ShowUrl2), String("Tag List")});
constexpr auto kAcknowledge2 = Rows<Slp>({Error2()});
constexpr auto kAttributeRequest2 = Rows<Slp>({
    String("Previous Responders"), String("URL").Note(", %s"), String("Scope List"), String("Tag List"),
    String("SLP SPI")});
constexpr auto kAttributeReply2 = Rows<Slp>({
    Error2(), String("Attribute List"), Shown<Slp>(nullptr, ShowAuthentications)});
constexpr auto kDirectory2 = Rows<Slp>({
    Error2(), UnixTime(4, "Stateless Boot Timestamp"), String("URL").Note(", %s"), String("Scope List"),
    String("Attribute List"), String("SLP SPI List"), Shown<Slp>(nullptr, ShowAuthentications)});
constexpr auto kTypeRequest2 = Rows<Slp>({
    String("Previous Responders"), Shown<Slp>("Naming Authority", ShowAuthority), String("Scope List")});
constexpr auto kTypeReply2 = Rows<Slp>({Error2(), String("Service Type List").Note(", %s")});
constexpr auto kService2 = Rows<Slp>({
    String("URL").Note(", %s"), String("Scope List"), String("Attribute List"),
    Shown<Slp>(nullptr, ShowAuthentications)});

constexpr RowSpan<Slp> kBodies[2][12] = {
    {{}, kRequest1, kReply1, kRegistration1, kDeregister1, kAcknowledge1, kAttributeRequest1, kAttributeReply1,
     kDirectory1, kTypeRequest1, kTypeReply1, {}},
    {{}, kRequest2, kReply2, kRegistration2, kDeregister2, kAcknowledge2, kAttributeRequest2, kAttributeReply2,
     kDirectory2, kTypeRequest2, kTypeReply2, kService2}};

}  // namespace

int32_t DecodeSlp(const Place& at, Cursor c) {
  const uint32_t version = PeekU8(c), function = PeekU8(c, 1);
  const int32_t header = version == 1 ? 12 : 14;
  if ((version != 1 && version != 2) || function < 1 || function > 11 || Left(c) < header) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, header), "SLP: Version %u, %s", version,
                                     LookupName(kFunctionNames, function)));
  Slp slp = version == 1 ? ShowRows(in, c, kHeader1) : ShowRows(in, c, kHeader2);
  ShowRows<Slp>(in, c, kBodies[version - 1][function], slp);
  CoverBytes(in, c);
  c.ranShort = false;
  AddBlock(in, Rest(c), "SLP Data");
  return 1;
}

}  // namespace qxview
