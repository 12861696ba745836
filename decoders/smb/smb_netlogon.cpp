// Finding a logon server by mailslot (MS-ADTS 6.3.1 to 6.3.5): requests to \MAILSLOT\NET\NETLOGON, answers to a
// mailslot that the request names. Texts end in a zero; those in two-byte characters are aligned to the data's start.
#include "decoders/smb/smb_info_levels.h"
#include "decoders/smb/smb_mailslot.h"

namespace qxview {
namespace {

enum Opcode : uint32_t {
  kLogonRequest = 0x00, kLogonResponse1 = 0x04, kLogonResponse2 = 0x06, kPrimaryQuery = 0x07, kAnnounceChange = 0x0A,
  kPrimaryResponse = 0x0C, kSamLogon = 0x12, kSamResponse = 0x13, kSamPaused = 0x14, kSamUnknownUser = 0x15,
  kExtendedResponse = 0x17, kExtendedPaused = 0x18, kExtendedUnknownUser = 0x19,
};

constexpr auto kOpcodeNames = SortedNames({
    {kLogonRequest, "LM Logon Request"}, {kLogonResponse1, "LM 1.0 Logon Response"},
    {kLogonResponse2, "LM 2.0 Logon Response"}, {kPrimaryQuery, "Query For Primary DC"},
    {kAnnounceChange, "Announce Change"}, {kPrimaryResponse, "Response From Primary DC"},
    {kSamLogon, "SAM Logon Request"}, {kSamResponse, "SAM Logon Response"}, {kSamPaused, "SAM Logon Paused"},
    {kSamUnknownUser, "SAM Logon User Unknown"}, {kExtendedResponse, "SAM Logon Response EX"},
    {kExtendedPaused, "SAM Logon Paused EX"}, {kExtendedUnknownUser, "SAM Logon User Unknown EX"}});

constexpr auto kVersionBits = SortedNames({
    {0x00000001, "V1"}, {0x00000002, "V5"}, {0x00000004, "V5EX"}, {0x00000008, "V5EX With IP"},
    {0x00000010, "V5EX With Closest Site"}, {0x01000000, "Avoid NT4 Emulation"}, {0x10000000, "PDC"},
    {0x20000000, "IP"}, {0x40000000, "Local"}, {0x80000000, "GC"}});
constexpr auto kServerBits = SortedNames({
    {0x001, "PDC"}, {0x004, "GC"}, {0x008, "LDAP"}, {0x010, "DS"}, {0x020, "KDC"}, {0x040, "Time Service"},
    {0x080, "Closest"}, {0x100, "Writable"}, {0x200, "Good Time Service"}, {0x400, "Non-Domain NC"},
    {0x800, "Select Secret Domain 6"}, {0x1000, "Full Secret Domain 6"}, {0x2000, "Web Service"}});

constexpr SmbField kVersions[] = {
    {kSmbFlags32, "NT Version", kVersionBits}, {kSmbHex16, "LM NT Token"}, {kSmbHex16, "LM 2.0 Token"}};
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
constexpr SmbField kServerFlags[] = {{kSmbFlags32, "Flags", kServerBits}};

constexpr int32_t kVersionsSize = 8;
constexpr int32_t kMostLabels = 64, kMostJumps = 8;

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

// A name of labels as DNS writes them, with jumps back to an earlier label of the data.
void AddCompressedName(const Place& in, Cursor& c, const char* label) {
  if (Left(c) < 1) return;
  const uint8_t* data = c.at - (c.offset - c.begin);
  const int32_t size = c.offset - c.begin + c.left;
  int32_t at = c.offset - c.begin, end = -1, jumps = 0;
  ShortText<kSmbTextSize> name{};
  for (int32_t labels = 0; labels < kMostLabels && at < size && data[at] != 0;) {
    const int32_t length = data[at];
    if ((length & 0xC0) == 0xC0) {
      if (at + 1 >= size || ++jumps > kMostJumps) break;
      if (end < 0) end = at + 2;
      at = (length & 0x3F) << 8 | data[at + 1];
      continue;
    }
    if (at + 1 + length > size) break;
    const TextSlice text{reinterpret_cast<const char*>(data + at + 1), length};
    AppendFormat(name.text, sizeof name.text, "%s%s", labels ? "." : "", text);
    at += 1 + length;
    ++labels;
  }
  if (end < 0) end = at + 1 < size ? at + 1 : size;
  const Field field = TakeBytes(c, end - (c.offset - c.begin));
  AddLine(in, field, "%s: %s", label, name.text[0] ? name.text : "<null string>");
}

void AddSamLogon(const SmbMessage& message, const Place& in, Cursor& c) {
  AddSmbFields(message, in, c, kRequestCount);
  AddWide(message, in, c, "Computer Name");
  AddWide(message, in, c, "User Name");
  AddSmbFields(message, in, c, kSamMailslot);
  AddDomainSid(message, in, c);
}

void AddSamResponse(const SmbMessage& message, const Place& in, Cursor& c) {
  AddWide(message, in, c, "Logon Server");
  AddWide(message, in, c, "User Name");
  AddWide(message, in, c, "Domain Name");
  if (Left(c) <= kVersionsSize) return;
  AddSmbGuid(in, c, "Domain GUID");
  AddSmbGuid(in, c, "Null GUID");
  AddCompressedName(in, c, "DNS Forest Name");
  AddCompressedName(in, c, "DNS Domain Name");
  AddCompressedName(in, c, "DNS Host Name");
  const Field address = TakeBytes(c, 4);
  AddLine(in, address, "DC IP Address: %s", IPv4Text(address.bytes));
  AddSmbFields(message, in, c, kServerFlags);
}

void AddExtendedResponse(const SmbMessage& message, const Place& in, Cursor& c) {
  constexpr const char* kNames[] = {
      "DNS Forest Name", "DNS Domain Name", "DNS Host Name", "NetBIOS Domain Name", "NetBIOS Computer Name",
      "User Name", "DC Site Name", "Client Site Name"};
  const Field reserved = TakeLittleU16(c);
  AddLine(in, reserved, "Reserved: %u", reserved.value);
  AddSmbFields(message, in, c, kServerFlags);
  AddSmbGuid(in, c, "Domain GUID");
  for (const char* name : kNames) AddCompressedName(in, c, name);
  if (Left(c) <= kVersionsSize) return;
  const Field size = TakeU8(c);
  AddLine(in, size, "DC Socket Address Size: %u", size.value);
  Cursor address = TakeCursor(c, size.value);
  const Field bytes = Rest(address);
  AddLine(in, bytes, "DC Socket Address: %s", HexText(bytes));
  if (Left(c) > kVersionsSize) AddCompressedName(in, c, "Next Closest Site Name");
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
  const char* name = LookupName(kOpcodeNames, opcode.value, kUndefined);
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
    case kSamUnknownUser: AddSamResponse(message, in, c); break;
    case kExtendedResponse:
    case kExtendedPaused:
    case kExtendedUnknownUser: AddExtendedResponse(message, in, c); break;
    default: return;
  }
  AddSmbFields(message, in, c, kVersions);
}

}  // namespace qxview
