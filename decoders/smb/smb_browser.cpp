#include "decoders/smb/smb_mailslot.h"

namespace qxview {
namespace {

constexpr int32_t kHostNameSize = 16;

constexpr auto kServerTypes = SortedNames({
    {0x00000001, "Workstation"}, {0x00000002, "Server"}, {0x00000004, "SQL Server"},
    {0x00000008, "Domain Controller"}, {0x00000010, "Backup Domain Controller"}, {0x00000020, "Time Source"},
    {0x00000040, "Apple File Protocol"}, {0x00000080, "Novell"}, {0x00000100, "Domain Member"},
    {0x00000200, "Print Queue Server"}, {0x00000400, "Dial-In Server"}, {0x00000800, "UNIX Server"},
    {0x00001000, "NT Workstation"}, {0x00002000, "Windows For Workgroups"}, {0x00004000, "NetWare File and Print"},
    {0x00008000, "NT Server"}, {0x00010000, "Potential Browser"}, {0x00020000, "Backup Browser"},
    {0x00040000, "Master Browser"}, {0x00080000, "Domain Master Browser"}, {0x00100000, "OSF"}, {0x00200000, "VMS"},
    {0x00400000, "Windows 95 Or Later"}, {0x00800000, "DFS Root"}, {0x01000000, "Cluster"},
    {0x02000000, "Terminal Server"}, {0x10000000, "DCE Cell Directory Server"}, {0x20000000, "Alternate Transport"},
    {0x40000000, "Local List Only"}, {0x80000000, "Domain Enumeration"}});

constexpr auto kCommandNames = SortedNames({
    {1, "Host Announcement"}, {2, "Announcement Request"}, {8, "Request Election"}, {9, "Get Backup List Request"},
    {10, "Get Backup List Response"}, {11, "Become Backup"}, {12, "Domain Announcement"},
    {13, "Master Announcement"}, {14, "Reset State Request"}, {15, "Local Master Announcement"}});

constexpr auto kCriteriaBits = SortedNames({
    {0x00000001, "Backup Browser"}, {0x00000002, "Standby Browser"}, {0x00000004, "Master Browser"},
    {0x00000008, "Preferred Master"}, {0x00000020, "WINS Client"}, {0x00000080, "Primary Domain Controller"},
    {0x0000FF00, "Protocol Minor Version"}, {0x00FF0000, "Protocol Major Version"}, {0xFF000000, "Operating System"}});
constexpr auto kResetBits = SortedNames({
    {0x1, "Stop Being Master"}, {0x2, "Clear All"}, {0x4, "Stop Being Browser"}});

constexpr SmbField kAnnouncement[] = {{kSmbNumber8, "Update Count"}, {kSmbNumber32, "Periodicity (milliseconds)"}};
constexpr SmbField kAnnounced[] = {
    {kSmbNumber8, "OS Version Major"}, {kSmbNumber8, "OS Version Minor"}, {kSmbFlags32, "Server Type", kServerTypes},
    {kSmbNumber8, "Browser Version Major"}, {kSmbNumber8, "Browser Version Minor"}, {kSmbHex16, "Signature"}};
constexpr SmbField kComment[] = {{kSmbOemText, "Comment"}};
constexpr SmbField kLocalMaster[] = {{kSmbOemText, "Local Master Browser Name"}};
constexpr SmbField kAnnouncementRequest[] = {{kSmbHex8, "Reserved"}, {kSmbOemText, "Response Name"}};
constexpr SmbField kElection[] = {
    {kSmbNumber8, "Version"}, {kSmbFlags32, "Criteria", kCriteriaBits}, {kSmbNumber32, "Uptime (milliseconds)"},
    {kSmbNumber32, "Reserved"}, {kSmbOemText, "Server Name"}};
constexpr SmbField kBackupRequest[] = {{kSmbNumber8, "Requested Count"}, {kSmbHex32, "Token"}};
constexpr SmbField kBackupResponse[] = {{kSmbNumber8, "Backup Server Count"}, {kSmbHex32, "Token"}};
constexpr SmbField kBackupServer[] = {{kSmbOemText, "Backup Server"}};
constexpr SmbField kPromoted[] = {{kSmbOemText, "Browser To Promote"}};
constexpr SmbField kMaster[] = {{kSmbOemText, "Master Browser Name"}};
constexpr SmbField kReset[] = {{kSmbFlags8, "Type", kResetBits}};
constexpr SmbField kLanmanFields[] = {
    {kSmbNumber8, "Reserved"}, {kSmbFlags32, "Server Type", kServerTypes}, {kSmbNumber8, "Version Major"},
    {kSmbNumber8, "Version Minor"}, {kSmbNumber16, "Periodicity (seconds)"}, {kSmbOemText, "Server Name"},
    {kSmbOemText, "Comment"}};

void AddAnnouncement(const SmbMessage& message, const Place& in, Cursor& c, bool isDomain) {
  AddSmbFields(message, in, c, kAnnouncement);
  if (Left(c) >= kHostNameSize) {
    AddSmbCounted(message, in, c, kHostNameSize, isDomain ? "Machine Group" : "Server Name", SmbCharacters::kOem);
  }
  AddSmbFields(message, in, c, kAnnounced);
  AddSmbFields(message, in, c, isDomain ? kLocalMaster : kComment);
}

void AddBackupList(const SmbMessage& message, const Place& in, Cursor& c) {
  const uint32_t count = Left(c) > 0 ? c.at[0] : 0;
  AddSmbFields(message, in, c, kBackupResponse);
  for (uint32_t i = 0; i < count; ++i) AddSmbFields(message, in, c, kBackupServer);
}

Field AddCommand(const Place& in, Cursor& c) {
  const Field command = TakeU8(c);
  const char* name = LookupName(kCommandNames, command.value, kUndefined);
  AddLine(in, command, "Command: [%u] = %s", command.value, name);
  AppendToParent(in, command, ": %s", name);
  return command;
}

}  // namespace

const SmbNames kSmbServerTypeBits = kServerTypes;

void BrowserData(SmbTransaction& t, const Place& in, Cursor& c) {
  switch (AddCommand(in, c).value) {
    case 1:
    case 15: AddAnnouncement(t.message, in, c, false); break;
    case 2: AddSmbFields(t.message, in, c, kAnnouncementRequest); break;
    case 8: AddSmbFields(t.message, in, c, kElection); break;
    case 9: AddSmbFields(t.message, in, c, kBackupRequest); break;
    case 10: AddBackupList(t.message, in, c); break;
    case 11: AddSmbFields(t.message, in, c, kPromoted); break;
    case 12: AddAnnouncement(t.message, in, c, true); break;
    case 13: AddSmbFields(t.message, in, c, kMaster); break;
    case 14: AddSmbFields(t.message, in, c, kReset); break;
    default: break;
  }
}

// The announcements of LAN Manager, whose command is followed by other fields than the browser's.
void LanmanData(SmbTransaction& t, const Place& in, Cursor& c) {
  if (Left(c) > 0 && c.at[0] > 1) {
    BrowserData(t, in, c);
  } else if (AddCommand(in, c).value == 1) {
    AddSmbFields(t.message, in, c, kLanmanFields);
  }
}

}  // namespace qxview
