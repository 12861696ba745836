#include "decoders/smb/smb_mailslot.h"

namespace qxview {
namespace {

constexpr auto kCriteriaBits = SortedNames({
    {0x00000001, "Backup Browser"}, {0x00000002, "Standby Browser"}, {0x00000004, "Master Browser"},
    {0x00000008, "Preferred Master"}, {0x00000020, "WINS Client"}, {0x00000080, "Primary Domain Controller"},
    {0x0000FF00, "Protocol Minor Version"}, {0x00FF0000, "Protocol Major Version"}, {0xFF000000, "Operating System"}});
constexpr auto kResetBits = SortedNames({
    {0x1, "Stop Being Master"}, {0x2, "Clear All"}, {0x4, "Stop Being Browser"}});

void ShowHostName(const Place& in, Cursor& c, const char* label, Smb& values) {
  constexpr int32_t kHostNameSize = 16;
  if (Left(c) >= kHostNameSize) AddSmbCounted(*values.message, in, c, kHostNameSize, label, SmbCharacters::kOem);
}
constexpr auto kUpdate = LittleRows<Smb>({Number(1, "Update Count"), Number(4, "Periodicity (milliseconds)")});
constexpr auto kServer = LittleRows<Smb>({
    Number(1, "OS Version Major"), Number(1, "OS Version Minor"), Flags(4, "Server Type", kSmbServerTypeBits),
    Number(1, "Browser Version Major"), Number(1, "Browser Version Minor"), Hex(2, "Signature")});
constexpr auto kAnnouncement = LittleRows<Smb>({
    SmbTable<kUpdate>(), Shown("Server Name", ShowHostName), SmbTable<kServer>(), SmbOemText("Comment")});
constexpr auto kDomainAnnouncement = LittleRows<Smb>({
    SmbTable<kUpdate>(), Shown("Machine Group", ShowHostName), SmbTable<kServer>(),
    SmbOemText("Local Master Browser Name")});
constexpr auto kAnnouncementRequest = LittleRows<Smb>({Hex(1, "Reserved"), SmbOemText("Response Name")});
constexpr auto kElection = LittleRows<Smb>({
    Number(1, "Version"), Flags(4, "Criteria", kCriteriaBits), Number(4, "Uptime (milliseconds)"),
    Number(4, "Reserved"), SmbOemText("Server Name")});

void ShowBackupServers(const Place& in, Cursor& c, const char* label, Smb& values) {
  for (uint32_t i = 0; i < values.count.value; ++i) ShowSmbOemText(in, c, label, values);
}
constexpr auto kBackupRequest = LittleRows<Smb>({Number(1, "Requested Count"), Hex(4, "Token")});
constexpr auto kBackupResponse = LittleRows<Smb>({
    Number(1, "Backup Server Count").Into(&Smb::count), Hex(4, "Token"), Shown("Backup Server", ShowBackupServers)});
constexpr auto kPromoted = LittleRows<Smb>({SmbOemText("Browser To Promote")});
constexpr auto kMaster = LittleRows<Smb>({SmbOemText("Master Browser Name")});
constexpr auto kReset = LittleRows<Smb>({Flags(1, "Type", kResetBits)});

constexpr auto kCommands = Choices<Smb>({
    {1, "Host Announcement", kAnnouncement},
    {2, "Announcement Request", kAnnouncementRequest},
    {8, "Request Election", kElection},
    {9, "Get Backup List Request", kBackupRequest},
    {10, "Get Backup List Response", kBackupResponse},
    {11, "Become Backup", kPromoted},
    {12, "Domain Announcement", kDomainAnnouncement},
    {13, "Master Announcement", kMaster},
    {14, "Reset State Request", kReset},
    {15, "Local Master Announcement", kAnnouncement}});

constexpr auto kCommand = LittleRows<Smb>({Coded(1, "Command", SmbChoiceName<kCommands>).Note(": %s")});
// The announcements of LAN Manager, whose command is followed by other fields than the browser's.
constexpr auto kLanman = LittleRows<Smb>({
    SmbTable<kCommand>(), Number(1, "Reserved"), Flags(4, "Server Type", kSmbServerTypeBits),
    Number(1, "Version Major"), Number(1, "Version Minor"), Number(2, "Periodicity (seconds)"),
    SmbOemText("Server Name"), SmbOemText("Comment")});

}  // namespace

void BrowserData(SmbTransaction& t, const Place& in, Cursor& c) {
  const uint32_t command = PeekU8(c);
  ShowSmbRows(t.message, in, c, kCommand);
  ShowSmbChoice(t.message, in, c, kCommands, command);
}

void LanmanData(SmbTransaction& t, const Place& in, Cursor& c) {
  if (PeekU8(c) == 1) {
    ShowSmbRows(t.message, in, c, kLanman);
  } else {
    BrowserData(t, in, c);
  }
}

}  // namespace qxview
