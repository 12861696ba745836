// Finding a logon server by mailslot (MS-ADTS 6.3.1 to 6.3.5): requests to \MAILSLOT\NET\NETLOGON, answers to a
// mailslot that the request names. Texts end in a zero; those in two-byte characters are aligned to the data's start.
#include "decoders/common/guid.h"
#include "decoders/common/logon_response.h"
#include "decoders/smb/smb_info_levels.h"
#include "decoders/smb/smb_mailslot.h"

namespace qxview {
namespace {

// Two-byte characters start at an even place from the data's start.
void ShowWide(const Place& in, Cursor& c, const char* label, Smb& values) {
  if (Left(c) < 1) return;
  if (Taken(c) % 2 != 0) AddSmbBytes(in, c, 1, "Pad");
  SmbMessage own = *values.message;
  own.whole.begin = c.begin;   // for the alignment that the text's reader sees to
  AddSmbString(own, in, c, label, SmbCharacters::kUnicode);
}
consteval Row<Smb> Wide(const char* label) { return Shown(label, ShowWide); }

void ShowDomainSid(const Place& in, Cursor& c, const char* label, Smb& values) {
  const uint32_t size = values.length.value;
  if (size == 0 || size > static_cast<uint32_t>(Left(c))) return;
  const int32_t beyond = Taken(c) % 4;
  if (beyond != 0 && static_cast<int32_t>(size) + 4 - beyond <= Left(c)) AddSmbBytes(in, c, 4 - beyond, "Pad");
  Cursor sid = TakeCursor(c, size);
  AddSmbSid(in, sid, label);
  AddSmbFiller(in, sid);
}

void ShowVersions(const Place& in, Cursor& c, const char*, Smb&) { AddLogonVersions(in, c); }

constexpr auto kLogon = LittleRows<Smb>({
    SmbOemText("Computer Name"), SmbOemText("User Name"), SmbOemText("Mailslot Name"), Number(1, "Request Count"),
    Hex(2, "LM NT Token"), Hex(2, "LM 2.0 Token")});
constexpr auto kLogonResponse = LittleRows<Smb>({SmbOemText("Logon Server"), Hex(2, "LM 2.0 Token")});
constexpr auto kQuery = LittleRows<Smb>({
    SmbOemText("Computer Name"), SmbOemText("Mailslot Name"), Wide("Computer Name"), Shown(nullptr, ShowVersions)});
constexpr auto kPrimary = LittleRows<Smb>({
    SmbOemText("Primary DC Name"), Wide("Primary DC Name"), Wide("Domain Name"), Shown(nullptr, ShowVersions)});

constexpr auto kDatabase = LittleRows<Smb>({
    Number(4, "Database Index"), Number(8, "Large Serial Number"), FileTime("Date and Time")});
void ShowDatabases(const Place& in, Cursor& c, const char* title, Smb& values) {
  AddSmbRecords(*values.message, in, c, title, kDatabase, 20, values.count.value);
}
constexpr auto kChange = LittleRows<Smb>({
    Number(4, "Low Serial Number"), UnixTime(4, "Date and Time"), Number(4, "Pulse"), Number(4, "Random"),
    SmbOemText("Primary DC Name"), SmbOemText("Domain Name"), Wide("Primary DC Name"), Wide("Domain Name"),
    Number(4, "Database Count").Into(&Smb::count), Shown("Database", ShowDatabases), SmbLength("Domain SID Size"),
    Shown("Domain SID", ShowDomainSid), Shown(nullptr, ShowVersions)});

constexpr auto kSamLogonRequest = LittleRows<Smb>({
    Number(2, "Request Count"), Wide("Computer Name"), Wide("User Name"), SmbOemText("Mailslot Name"),
    Hex(4, "Allowable Account Control Bits"), SmbLength("Domain SID Size"), Shown("Domain SID", ShowDomainSid),
    Shown(nullptr, ShowVersions)});

constexpr auto kSamGuids = LittleRows<Smb>({LittleGuid("Domain GUID"), LittleGuid("Null GUID")});
constexpr auto kSamAddress = LittleRows<Smb>({IPv4("DC IP Address")});
// A name that is cut leaves the rest.
void ShowSamServer(const Place& in, Cursor& c, const char*, Smb& values) {
  constexpr const char* kNames[] = {"DNS Forest Name", "DNS Domain Name", "DNS Host Name"};
  if (Left(c) > kLogonVersionsSize) {
    ShowRows<Smb>(in, c, kSamGuids, values);
    for (const char* name : kNames) {
      if (!AddLogonName(in, c, name)) return;
    }
    ShowRows<Smb>(in, c, kSamAddress, values);
    AddLogonFlags(in, c);
  }
  AddLogonVersions(in, c);
}
constexpr auto kSamServer = LittleRows<Smb>({
    Wide("Logon Server"), Wide("User Name"), Wide("Domain Name"), Shown(nullptr, ShowSamServer)});

void ShowExtendedResponse(const Place& in, Cursor& c, const char*, Smb&) {
  if (AddLogonResponse(in, c)) AddLogonVersions(in, c);
}
constexpr auto kExtended = LittleRows<Smb>({Shown(nullptr, ShowExtendedResponse)});

constexpr auto kCommand = LittleRows<Smb>({Coded(2, "Command", LogonCommandName).Note(": %s")});

SmbRowSpan RowsOf(uint32_t command) {
  switch (command) {
    case kLogonRequest: return kLogon;
    case kLogonResponse1:
    case kLogonResponse2: return kLogonResponse;
    case kPrimaryQuery: return kQuery;
    case kAnnounceChange: return kChange;
    case kPrimaryResponse: return kPrimary;
    case kSamLogon: return kSamLogonRequest;
    case kSamResponse:
    case kSamPaused:
    case kSamUnknownUser: return kSamServer;
    case kExtendedResponse:
    case kExtendedPaused:
    case kExtendedUnknownUser: return kExtended;
    default: return {};
  }
}

}  // namespace

void NetlogonData(SmbTransaction& t, const Place& in, Cursor& c) {
  const uint32_t command = PeekLittleU16(c);
  ShowSmbRows(t.message, in, c, kCommand);
  ShowSmbRows(t.message, in, c, RowsOf(command));
}

}  // namespace qxview
