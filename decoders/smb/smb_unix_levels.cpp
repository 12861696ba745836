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

constexpr SmbField kBasicFields[] = {
    {kSmbNumber64, "End of File"}, {kSmbNumber64, "Number Of Bytes"}, {kSmbFileTime, "Last Status Change"},
    {kSmbFileTime, "Last Access Time"}, {kSmbFileTime, "Last Modification Time"}, {kSmbNumber64, "User ID"},
    {kSmbNumber64, "Group ID"}, {kSmbName32, "File Type", kFileTypes}, {kSmbNumber64, "Device Major"},
    {kSmbNumber64, "Device Minor"}, {kSmbHex64, "Unique ID"}, {kSmbHex64, "Permissions"},
    {kSmbNumber64, "Number Of Links"}};
constexpr SmbField kInfo2Fields[] = {
    {kSmbFileTime, "Creation Time"}, {kSmbHex32, "File Flags"}, {kSmbHex32, "File Flags Mask"}};
constexpr SmbField kAclFields[] = {{kSmbNumber16, "Version"}, {kSmbNumber16, "File Entries"},
                                   {kSmbNumber16, "Default Entries"}};
constexpr SmbField kAclEntry[] = {
    {kSmbName8, "Tag", kAclTags}, {kSmbFlags8, "Permissions", kAclPermissions}, {kSmbHex64, "ID"}};
constexpr SmbField kOpenFields[] = {
    {kSmbFlags32, "Open Flags", kOpenFlags}, {kSmbFlags32, "Open Mode", kOpenModes}, {kSmbHex64, "Permissions"}};
constexpr SmbField kOpenReply[] = {
    {kSmbHex16, "Oplock Flags"}, {kSmbHex16, "FID"}, {kSmbName32, "Create Action", kCreateActions}};
constexpr SmbField kReserved[] = {{kSmbNumber16, "Reserved"}};
constexpr SmbField kWhoAmI[] = {
    {kSmbFlags32, "Mapping Flags", kGuestBits}, {kSmbHex32, "Mapping Mask"}, {kSmbNumber64, "User ID"},
    {kSmbNumber64, "Group ID"}};
constexpr SmbField kWhoAmICounts[] = {
    {kSmbNumber32, "Supplementary Groups"}, {kSmbNumber32, "SIDs"}, {kSmbNumber32, "SID List Size"},
    {kSmbNumber32, "Reserved"}};

}  // namespace

void AddSmbUnixBasic(const SmbMessage& message, const Place& in, Cursor& c, uint32_t) {
  AddSmbFields(message, in, c, kBasicFields);
}

void AddSmbUnixInfo2(const SmbMessage& message, const Place& in, Cursor& c, uint32_t) {
  AddSmbFields(message, in, c, kBasicFields);
  AddSmbFields(message, in, c, kInfo2Fields);
}

void AddSmbPosixAcl(const SmbMessage& message, const Place& in, Cursor& c, uint32_t) {
  AddSmbFields(message, in, c, kAclFields);
  for (Loop loop; MoreAt(in, c, loop) && Left(c) >= 10;) {
    AddSmbFields(message, Under(in, AddLine(in, Ahead(c, 10), "ACL Entry")), c, kAclEntry);
  }
}

void AddSmbPosixOpen(const SmbMessage& message, const Place& in, Cursor& c, uint32_t) {
  AddSmbFields(message, in, c, kOpenFields);
  AddSmbLevelLine(in, c, kSmbQueryFileLevels);
}

void AddSmbPosixOpenReply(const SmbMessage& message, const Place& in, Cursor& c, uint32_t) {
  AddSmbFields(message, in, c, kOpenReply);
  const uint32_t level = AddSmbLevelLine(in, c, kSmbQueryFileLevels);
  AddSmbFields(message, in, c, kReserved);
  AddSmbLevel(message, in, c, kSmbQueryFileLevels, level);
}

void AddSmbWhoAmI(const SmbMessage& message, const Place& in, Cursor& c, uint32_t) {
  AddSmbFields(message, in, c, kWhoAmI);
  const uint32_t groups = Left(c) >= 4 ? ReadLittleU32(c.at) : 0;
  AddSmbFields(message, in, c, kWhoAmICounts);
  Loop loop;
  for (uint32_t i = 0; i < groups && MoreAt(in, c, loop); ++i) {
    const WideField group = TakeLittleU64(c);
    AddLine(in, group, "Group ID: %I64u", group.wide);
  }
  for (Loop sids; MoreAt(in, c, sids);) AddSmbSid(in, c, "SID");
}

}  // namespace qxview
