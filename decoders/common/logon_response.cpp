#include "decoders/common/logon_response.h"

#include "decoders/common/guid.h"
#include "decoders/common/line_text.h"
#include "decoders/common/name_labels.h"

namespace qxview {
namespace {

constexpr auto kCommandNames = SortedNames({
    {kLogonRequest, "LM Logon Request"}, {kLogonResponse1, "LM 1.0 Logon Response"},
    {kLogonResponse2, "LM 2.0 Logon Response"}, {kPrimaryQuery, "Query For Primary DC"},
    {kAnnounceChange, "Announce Change"}, {kPrimaryResponse, "Response From Primary DC"},
    {kSamLogon, "SAM Logon Request"}, {kSamResponse, "SAM Logon Response"}, {kSamPaused, "SAM Logon Paused"},
    {kSamUnknownUser, "SAM Logon User Unknown"}, {kExtendedResponse, "SAM Logon Response EX"},
    {kExtendedPaused, "SAM Logon Paused EX"}, {kExtendedUnknownUser, "SAM Logon User Unknown EX"}});

constexpr auto kServerBits = SortedNames({
    {0x00000001, "Primary Domain Controller"}, {0x00000004, "Global Catalog"}, {0x00000008, "LDAP Server"},
    {0x00000010, "Directory Service"}, {0x00000020, "Key Distribution Center"}, {0x00000040, "Time Server"},
    {0x00000080, "In Client's Site"}, {0x00000100, "Writable"}, {0x00000200, "Good Time Server"},
    {0x00000400, "Only Application Directory"}, {0x00000800, "Read Only With Selected Secrets"},
    {0x00001000, "Full Secrets"}, {0x00002000, "Web Services"}, {0x00004000, "2012 Or Later"},
    {0x00008000, "2012 R2 Or Later"}, {0x00010000, "2016 Or Later"}, {0x20000000, "DNS Host Name"},
    {0x40000000, "DNS Domain Name"}, {0x80000000, "DNS Forest Name"}});
constexpr auto kVersionBits = SortedNames({
    {0x00000001, "V1"}, {0x00000002, "V5"}, {0x00000004, "V5EX"}, {0x00000008, "V5EX With IP"},
    {0x00000010, "V5EX With Closest Site"}, {0x01000000, "Avoid NT4 Emulation"}, {0x10000000, "PDC"},
    {0x20000000, "IP"}, {0x40000000, "Local"}, {0x80000000, "GC"}});

constexpr auto kFlags = LittleRows<NoValues>({Flags(4, "Flags", kServerBits)});
constexpr auto kVersions = LittleRows<NoValues>({
    Flags(4, "NT Version", kVersionBits), Hex(2, "LM NT Token"), Hex(2, "LM 2.0 Token")});
constexpr auto kHead = LittleRows<NoValues>({
    Number(2, "Reserved"), Flags(4, "Flags", kServerBits), LittleGuid("Domain GUID")});
constexpr auto kAddress = Rows<NoValues>({
    Number(2, "Address Family").Little(), Number(2, "Port"), IPv4("DC IP Address"), Bytes(0, "Reserved")});

void AddSocketAddress(const Place& in, Cursor& c) {
  const Field size = TakeU8(c);
  AddLine(in, size, "DC Socket Address Size: %u", size.value);
  Cursor address = TakeCursor(c, size.value);
  ShowRows(in, address, kAddress);
}

}  // namespace

const char* LogonCommandName(uint32_t command) { return LookupName(kCommandNames, command, kUndefined); }

bool AddLogonName(const Place& in, Cursor& c, const char* label) {
  constexpr int32_t kTextSize = 260;
  char shown[kTextSize];
  LineText text(shown, sizeof shown);
  const Cursor start = c;
  TakeNameLabels(c, WholeOf(c), [&](const Field& part) {
    if (!text.IsEmpty()) text.Put(".");
    text.PutValue(CursorOver(part));
    return !text.IsFull();
  });
  if (c.ranShort) {
    c = start;
    return false;
  }
  if (text.IsEmpty()) text.Put("<null string>");
  AddLine(in, Ahead(start, c.offset - start.offset), "%s: %s", label, static_cast<const char*>(shown));
  return true;
}

void AddLogonFlags(const Place& in, Cursor& c) { ShowRows(in, c, kFlags); }
void AddLogonVersions(const Place& in, Cursor& c) { ShowRows(in, c, kVersions); }

bool AddLogonResponse(const Place& in, Cursor& c) {
  constexpr const char* kNames[] = {
      "DNS Forest Name", "DNS Domain Name", "DNS Host Name", "NetBIOS Domain Name", "NetBIOS Computer Name",
      "User Name", "DC Site Name", "Client Site Name"};
  ShowRows(in, c, kHead);
  for (const char* name : kNames) {
    if (!AddLogonName(in, c, name)) return false;
  }
  if (Left(c) > kLogonVersionsSize) AddSocketAddress(in, c);
  return Left(c) <= kLogonVersionsSize || AddLogonName(in, c, "Next Closest Site Name");
}

}  // namespace qxview
