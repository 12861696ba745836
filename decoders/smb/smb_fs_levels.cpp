// Information levels of file systems.
#include "decoders/smb/smb_info_levels.h"

namespace qxview {
namespace {

constexpr auto kDeviceTypes = SortedNames({
    {0x01, "Beep"}, {0x02, "CD-ROM"}, {0x03, "CD-ROM File System"}, {0x04, "Controller"}, {0x05, "Data Link"},
    {0x06, "DFS"}, {0x07, "Disk"}, {0x08, "Disk File System"}, {0x09, "File System"}, {0x0A, "Input Port"},
    {0x0B, "Keyboard"}, {0x0C, "Mailslot"}, {0x0D, "MIDI In"}, {0x0E, "MIDI Out"}, {0x0F, "Mouse"},
    {0x10, "Multiple UNC Provider"}, {0x11, "Named Pipe"}, {0x12, "Network"}, {0x13, "Network Browser"},
    {0x14, "Network File System"}, {0x15, "Null"}, {0x16, "Parallel Port"}, {0x17, "Physical Network Card"},
    {0x18, "Printer"}, {0x19, "Scanner"}, {0x1A, "Serial Mouse Port"}, {0x1B, "Serial Port"}, {0x1C, "Screen"},
    {0x1D, "Sound"}, {0x1E, "Streams"}, {0x1F, "Tape"}, {0x20, "Tape File System"}, {0x21, "Transport"},
    {0x22, "Unknown"}, {0x23, "Video"}, {0x24, "Virtual Disk"}});

constexpr auto kDeviceBits = SortedNames({
    {0x01, "Removable Media"}, {0x02, "Read Only Device"}, {0x04, "Floppy Diskette"}, {0x08, "Write Once Media"},
    {0x10, "Remote Device"}, {0x20, "Mounted"}, {0x40, "Virtual Volume"}});

constexpr auto kFileSystemBits = SortedNames({
    {0x00000001, "Case Sensitive Search"}, {0x00000002, "Case Preserved Names"}, {0x00000004, "Unicode On Disk"},
    {0x00000008, "Persistent ACLs"}, {0x00000010, "File Compression"}, {0x00000020, "Volume Quotas"},
    {0x00000040, "Sparse Files"}, {0x00000080, "Reparse Points"}, {0x00000100, "Remote Storage"},
    {0x00008000, "Volume Is Compressed"}, {0x00010000, "Object IDs"}, {0x00020000, "Encryption"},
    {0x00040000, "Named Streams"}, {0x00080000, "Read Only Volume"}});

constexpr auto kUnixCapabilities = SortedNames({
    {0x01, "Advisory Byte-Range Locks"}, {0x02, "POSIX ACLs"}, {0x04, "Extended Attributes"},
    {0x08, "UNIX Attribute Flags"}, {0x10, "POSIX Path Names"}, {0x20, "POSIX Path Operations"},
    {0x40, "Large Reads"}, {0x80, "Large Writes"}, {0x100, "Encryption"}, {0x200, "Mandatory Encryption"}});

constexpr auto kQuotaBits = SortedNames({
    {0x01, "Quotas Tracked"}, {0x02, "Quotas Enforced"}, {0x08, "Content Index Disabled"},
    {0x10, "Log Quota Threshold"}, {0x20, "Log Quota Limit"}, {0x40, "Log Volume Threshold"},
    {0x80, "Log Volume Limit"}, {0x100, "Quotas Incomplete"}, {0x200, "Quotas Rebuilding"}});

constexpr auto kAllocation = LittleRows<Smb>({
    Number(4, "File System ID"), Number(4, "Sectors Per Unit"), Number(4, "Total Units"), Number(4, "Available Units"),
    Number(2, "Bytes Per Sector")});

// The length is of the characters, and a terminator may follow them.
void ShowShortLabel(const Place& in, Cursor& c, const char* label, Smb& values) {
  AddSmbString(*values.message, in, c, label, SmbCharacters::kUnaligned);
}
constexpr auto kVolumeLabel = LittleRows<Smb>({
    Hex(4, "Volume Serial Number"), Number(1, "Volume Label Length"), Shown("Volume Label", ShowShortLabel)});

constexpr auto kLabel = LittleRows<Smb>({SmbLength("Volume Label Length"), SmbCounted("Volume Label")});
constexpr auto kVolume = LittleRows<Smb>({
    FileTime("Volume Creation Time"), Hex(4, "Volume Serial Number"), SmbLength("Volume Label Length"),
    Number(1, "Supports Objects"), Number(1, "Reserved"), SmbCounted("Volume Label")});
constexpr auto kSize = LittleRows<Smb>({
    Number(8, "Total Allocation Units"), Number(8, "Free Allocation Units"), Number(4, "Sectors Per Allocation Unit"),
    Number(4, "Bytes Per Sector")});
constexpr auto kDevice = LittleRows<Smb>({
    Coded(4, "Device Type", kDeviceTypes), Flags(4, "Device Characteristics", kDeviceBits)});
constexpr auto kAttribute = LittleRows<Smb>({
    Flags(4, "File System Attributes", kFileSystemBits), Number(4, "Max File Name Length"),
    SmbLength("File System Name Length"), SmbCounted("File System Name")});
constexpr auto kFullSize = LittleRows<Smb>({
    Number(8, "Total Allocation Units"), Number(8, "Caller Available Allocation Units"),
    Number(8, "Actual Available Allocation Units"), Number(4, "Sectors Per Allocation Unit"),
    Number(4, "Bytes Per Sector")});
constexpr auto kControl = LittleRows<Smb>({
    Number(8, "Free Space Start Filtering"), Number(8, "Free Space Threshold"), Number(8, "Free Space Stop Filtering"),
    Number(8, "Default Quota Threshold"), Number(8, "Default Quota Limit"),
    Flags(4, "File System Control Flags", kQuotaBits), Number(4, "Padding")});
constexpr auto kObjectId = LittleRows<Smb>({Bytes(16, "Object ID"), Bytes(48, "Extended Info")});
constexpr auto kUnixInfo = LittleRows<Smb>({
    Number(2, "Major Version"), Number(2, "Minor Version"), Flags(4, "Capabilities", kUnixCapabilities),
    Hex(4, "Capabilities High")});
constexpr auto kPosixInfo = LittleRows<Smb>({
    Number(4, "Optimal Transfer Size"), Number(4, "Block Size"), Number(8, "Total Blocks"),
    Number(8, "Blocks Available"), Number(8, "User Blocks Available"), Number(8, "Total File Nodes"),
    Number(8, "Free File Nodes"), Hex(8, "File System Identifier")});

constexpr auto kWhoAmI = LittleRows<Smb>({Shown(nullptr, ShowSmbWhoAmI)});

constexpr auto kQueryLevels = Choices<Smb>({
    {0x001, "Info Allocation", kAllocation},
    {0x002, "Info Volume", kVolumeLabel},
    {0x101, "Query FS Label Info", kLabel},
    {0x102, "Query FS Volume Info", kVolume},
    {0x103, "Query FS Size Info", kSize},
    {0x104, "Query FS Device Info", kDevice},
    {0x105, "Query FS Attribute Info", kAttribute},
    {0x200, "CIFS UNIX Info", kUnixInfo},
    {0x201, "POSIX FS Info", kPosixInfo},
    {0x202, "POSIX Who Am I", kWhoAmI},
    {0x203, "Request Transport Encryption"},
    {0x301, "Mac Support"},
    {1001, "FS Volume Information", kVolume},
    {1002, "FS Label Information", kLabel},
    {1003, "FS Size Information", kSize},
    {1004, "FS Device Information", kDevice},
    {1005, "FS Attribute Information", kAttribute},
    {1006, "FS Control Information", kControl},
    {1007, "FS Full Size Information", kFullSize},
    {1008, "FS Object ID Information", kObjectId}});

constexpr auto kSetLevels = Choices<Smb>({
    {0x200, "CIFS UNIX Info", kUnixInfo},
    {0x203, "Request Transport Encryption"},
    {1002, "FS Label Information", kLabel},
    {1006, "FS Control Information", kControl},
    {1008, "FS Object ID Information", kObjectId}});

}  // namespace

const SmbChoices kSmbQueryFsLevels = kQueryLevels;
const SmbChoices kSmbSetFsLevels = kSetLevels;

}  // namespace qxview
