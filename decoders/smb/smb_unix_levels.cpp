// Levels of CIFS's UNIX extensions that are more than a row of fields.
#include "decoders/smb/smb_info_levels.h"

namespace qxview {
namespace {

constexpr auto kFileTypes = SortedNames({
    {0, "File"}, {1, "Directory"}, {2, "Symbolic Link"}, {3, "Character Device"}, {4, "Block Device"}, {5, "FIFO"},
    {6, "Socket"}, {0xFFFFFFFF, "No Change"}});
constexpr auto kAclTags = SortedNames({
    {0x01, "User Object"}, {0x02, "User"}, {0x04, "Group Object"}, {0x08, "Group"}, {0x10, "Mask"}, {0x20, "Other"}});
constexpr auto kAclPermissions = SortedNames({{0x01, "Execute"}, {0x02, "Write"}, {0x04, "Read"}});
constexpr auto kOpenFlags = SortedNames({
    {0x02, "Request Oplock"}, {0x04, "Request Batch Oplock"}, {0x08, "Open Target Directory"}});
constexpr auto kOpenModes = SortedNames({
    {0x03, "Access (0 Read, 1 Write, 2 Read and Write)"}, {0x10, "Create"}, {0x20, "Exclusive"}, {0x40, "Truncate"},
    {0x80, "Append"}, {0x100, "Synchronous"}, {0x200, "Directory"}, {0x400, "No Follow"}, {0x800, "Direct"}});
constexpr auto kCreateActions = SortedNames({
    {0, "Superseded"}, {1, "Opened"}, {2, "Created"}, {3, "Overwritten"}});
constexpr auto kGuestBits = SortedNames({{0x1, "Guest"}});

constexpr auto kBasicFields = LittleRows<Smb>({
    Number(8, "End of File"), Number(8, "Number Of Bytes"), FileTime("Last Status Change"),
    FileTime("Last Access Time"), FileTime("Last Modification Time"), Number(8, "User ID"), Number(8, "Group ID"),
    Coded(4, "File Type", kFileTypes), Number(8, "Device Major"), Number(8, "Device Minor"), Hex(8, "Unique ID"),
    Hex(8, "Permissions"), Number(8, "Number Of Links")});
constexpr auto kInfo2Fields = LittleRows<Smb>({
    SmbTable<kBasicFields>(), FileTime("Creation Time"), Hex(4, "File Flags"), Hex(4, "File Flags Mask")});
constexpr auto kAclEntry = LittleRows<Smb>({
    Coded(1, "Tag", kAclTags), Flags(1, "Permissions", kAclPermissions), Hex(8, "ID")});
constexpr auto kAcl = LittleRows<Smb>({
    Number(2, "Version"), Number(2, "File Entries"), Number(2, "Default Entries"),
    SmbRecords<kAclEntry, 10>("ACL Entry")});
constexpr auto kOpenFields = LittleRows<Smb>({
    Flags(4, "Open Flags", kOpenFlags), Flags(4, "Open Mode", kOpenModes), Hex(8, "Permissions"),
    SmbLevelOf<kSmbQueryFileLevels>()});
constexpr auto kOpenReply = LittleRows<Smb>({
    Hex(2, "Oplock Flags"), Hex(2, "FID"), Coded(4, "Create Action", kCreateActions), SmbLevelOf<kSmbQueryFileLevels>(),
    Number(2, "Reserved")});

void ShowGroups(const Place& in, Cursor& c, const char* label, Smb& values) {
  Loop loop;
  for (uint32_t i = 0; i < values.count.value && MoreAt(in, c, loop); ++i) {
    const WideField group = TakeLittleU64(c);
    AddLine(in, group, "%s: %I64u", label, group.wide);
  }
}
void ShowSids(const Place& in, Cursor& c, const char* label, Smb&) {
  for (Loop loop; MoreAt(in, c, loop);) AddSmbSid(in, c, label);
}
constexpr auto kWhoAmI = LittleRows<Smb>({
    Flags(4, "Mapping Flags", kGuestBits), Hex(4, "Mapping Mask"), Number(8, "User ID"), Number(8, "Group ID"),
    Number(4, "Supplementary Groups").Into(&Smb::count), Number(4, "SIDs"), Number(4, "SID List Size"),
    Number(4, "Reserved"), Shown("Group ID", ShowGroups), Shown("SID", ShowSids)});

}  // namespace

void ShowSmbUnixBasic(const Place& in, Cursor& c, const char*, Smb& values) {
  ShowRows<Smb>(in, c, kBasicFields, values);
}

void ShowSmbUnixInfo2(const Place& in, Cursor& c, const char*, Smb& values) {
  ShowRows<Smb>(in, c, kInfo2Fields, values);
}

void ShowSmbPosixAcl(const Place& in, Cursor& c, const char*, Smb& values) {
  ShowRows<Smb>(in, c, kAcl, values);
}

void ShowSmbPosixOpen(const Place& in, Cursor& c, const char*, Smb& values) {
  ShowRows<Smb>(in, c, kOpenFields, values);
}

void AddSmbPosixOpenReply(const SmbMessage& message, const Place& in, Cursor& c) {
  const Field level = ShowSmbRows(message, in, c, kOpenReply).level;
  ShowSmbChoice(message, in, c, kSmbQueryFileLevels, level.value);
}

void ShowSmbWhoAmI(const Place& in, Cursor& c, const char*, Smb& values) {
  ShowRows<Smb>(in, c, kWhoAmI, values);
}

}  // namespace qxview
