// Finding a logon server by mailslot (MS-ADTS 6.3.1 to 6.3.5): requests to \MAILSLOT\NET\NETLOGON, answers to a
// mailslot that the request names. Texts end in a zero; those in two-byte characters are aligned to the data's start.
#include "decoders/common/logon_response.h"
#include "decoders/smb/smb_info_levels.h"
#include "decoders/smb/smb_mailslot.h"

namespace qxview {
namespace {

constexpr SmbField kLogon[] = {
    {kSmbOemText, "Computer Name"}, {kSmbOemText, "User Name"}, {kSmbOemText, "Mailslot Name"},
    {kSmbNumber8, "Request Count"}, {kSmbHex16, "LM NT Token"}, {kSmbHex16, "LM 2.0 Token"}};
constexpr SmbField kLogonResponse[] = {{kSmbOemText, "Logon Server"}, {kSmbHex16, "LM 2.0 Token"}};
constexpr SmbField kQuery[] = {{kSmbOemText, "Computer Name"}, {kSmbOemText, "Mailslot Name"}};
constexpr SmbField kPrimary[] = {{kSmbOemText, "Primary DC Name"}};
constexpr SmbField kChange[] = {
    {kSmbNumber32, "Low Serial Number"}, {kSmbTime32, "Date and Time"}, {kSmbNumber32, "Pulse"},
    {kSmbNumber32, "Random"}, {kSmbOemText, "Primary DC Name"}, {kSmbOemText, "Domain Name"}};
constexpr SmbField kDatabase[] = {
    {kSmbNumber32, "Database Index"}, {kSmbNumber64, "Large Serial Number"}, {kSmbFileTime, "Date and Time"}};
constexpr SmbField kRequestCount[] = {{kSmbNumber16, "Request Count"}};
constexpr SmbField kSamMailslot[] = {{kSmbOemText, "Mailslot Name"}, {kSmbHex32, "Allowable Account Control Bits"}};
constexpr SmbField kSidSize[] = {{kSmbNumber32, "Domain SID Size"}};

// Two-byte characters start at an even place from the data's start.
void AddWide(const SmbMessage& message, const Place& in, Cursor& c, const char* label) {
  if (Left(c) < 1) return;
  if ((c.offset - c.begin) % 2 != 0) {
    const Field pad = TakeU8(c);
    AddLine(in, pad, "Pad: %s", HexText(pad));
  }
  SmbMessage own = message;
  own.whole.begin = c.begin;   // for the alignment that the text's reader sees to
  AddSmbString(own, in, c, label, SmbCharacters::kUnicode);
}

void AddDomainSid(const SmbMessage& message, const Place& in, Cursor& c) {
  const Field size = AddSmbField(message, in, c, kSidSize[0]);
  if (!size.here || size.value == 0 || size.value > static_cast<uint32_t>(Left(c))) return;
  const int32_t beyond = (c.offset - c.begin) % 4;
  if (beyond != 0 && static_cast<int32_t>(size.value) + 4 - beyond <= Left(c)) {
    const Field pad = TakeBytes(c, 4 - beyond);
    AddLine(in, pad, "Pad: %s", HexText(pad));
  }
  Cursor sid = TakeCursor(c, size.value);
  AddSmbSid(in, sid, "Domain SID");
  AddSmbFiller(in, sid);
}

void AddSamLogon(const SmbMessage& message, const Place& in, Cursor& c) {
  AddSmbFields(message, in, c, kRequestCount);
  AddWide(message, in, c, "Computer Name");
  AddWide(message, in, c, "User Name");
  AddSmbFields(message, in, c, kSamMailslot);
  AddDomainSid(message, in, c);
}

// Result: whether the versions follow.
bool AddSamResponse(const SmbMessage& message, const Place& in, Cursor& c) {
  constexpr const char* kNames[] = {"DNS Forest Name", "DNS Domain Name", "DNS Host Name"};
  AddWide(message, in, c, "Logon Server");
  AddWide(message, in, c, "User Name");
  AddWide(message, in, c, "Domain Name");
  if (Left(c) <= kLogonVersionsSize) return true;
  AddLogonGuid(in, c, "Domain GUID");
  AddLogonGuid(in, c, "Null GUID");
  for (const char* name : kNames) {
    if (!AddLogonName(in, c, name)) return false;
  }
  const Field address = TakeBytes(c, 4);
  AddLine(in, address, "DC IP Address: %s", IPv4Text(address.bytes));
  AddLogonFlags(in, c);
  return true;
}

void AddChange(const SmbMessage& message, const Place& in, Cursor& c) {
  AddSmbFields(message, in, c, kChange);
  AddWide(message, in, c, "Primary DC Name");
  AddWide(message, in, c, "Domain Name");
  const Field count = TakeLittleU32(c);
  AddLine(in, count, "Database Count: %u", count.value);
  Loop loop;
  for (uint32_t i = 0; i < count.value && MoreAt(in, c, loop) && Left(c) >= 20; ++i) {
    AddSmbFields(message, Under(in, AddLine(in, Ahead(c, 20), "Database")), c, kDatabase);
  }
  AddDomainSid(message, in, c);
}

}  // namespace

void NetlogonData(SmbTransaction& t, const Place& in, Cursor& c) {
  const Field opcode = TakeLittleU16(c);
  const char* name = LogonCommandName(opcode.value);
  AddLine(in, opcode, "Command: [%u] = %s", opcode.value, name);
  AppendToParent(in, opcode, ": %s", name);
  const SmbMessage& message = t.message;
  switch (opcode.value) {
    case kLogonRequest: AddSmbFields(message, in, c, kLogon); return;
    case kLogonResponse1:
    case kLogonResponse2: AddSmbFields(message, in, c, kLogonResponse); return;
    case kPrimaryQuery:
      AddSmbFields(message, in, c, kQuery);
      AddWide(message, in, c, "Computer Name");
      break;
    case kAnnounceChange: AddChange(message, in, c); break;
    case kPrimaryResponse:
      AddSmbFields(message, in, c, kPrimary);
      AddWide(message, in, c, "Primary DC Name");
      AddWide(message, in, c, "Domain Name");
      break;
    case kSamLogon: AddSamLogon(message, in, c); break;
    case kSamResponse:
    case kSamPaused:
    case kSamUnknownUser:
      if (!AddSamResponse(message, in, c)) return;
      break;
    case kExtendedResponse:
    case kExtendedPaused:
    case kExtendedUnknownUser:
      if (!AddLogonResponse(in, c)) return;
      break;
    default: return;
  }
  AddLogonVersions(in, c);
}

}  // namespace qxview
