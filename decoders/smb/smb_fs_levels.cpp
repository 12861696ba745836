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

constexpr SmbField kAllocation[] = {
    {kSmbNumber32, "File System ID"}, {kSmbNumber32, "Sectors Per Unit"}, {kSmbNumber32, "Total Units"},
    {kSmbNumber32, "Available Units"}, {kSmbNumber16, "Bytes Per Sector"}};
constexpr SmbField kVolumeLabel[] = {{kSmbHex32, "Volume Serial Number"}, {kSmbNumber8, "Volume Label Length"}};
constexpr SmbField kLabel[] = {{kSmbNumber32, "Volume Label Length"}};
constexpr SmbField kVolume[] = {
    {kSmbFileTime, "Volume Creation Time"}, {kSmbHex32, "Volume Serial Number"}, {kSmbNumber32, "Volume Label Length"}};
constexpr SmbField kSupportsObjects = {kSmbNumber8, "Supports Objects"};
constexpr SmbField kReserved8 = {kSmbNumber8, "Reserved"};
constexpr SmbField kSize[] = {
    {kSmbNumber64, "Total Allocation Units"}, {kSmbNumber64, "Free Allocation Units"},
    {kSmbNumber32, "Sectors Per Allocation Unit"}, {kSmbNumber32, "Bytes Per Sector"}};
constexpr SmbField kDevice[] = {
    {kSmbName32, "Device Type", kDeviceTypes}, {kSmbFlags32, "Device Characteristics", kDeviceBits}};
constexpr SmbField kAttribute[] = {
    {kSmbFlags32, "File System Attributes", kFileSystemBits}, {kSmbNumber32, "Max File Name Length"},
    {kSmbNumber32, "File System Name Length"}};
constexpr SmbField kFullSize[] = {
    {kSmbNumber64, "Total Allocation Units"}, {kSmbNumber64, "Caller Available Allocation Units"},
    {kSmbNumber64, "Actual Available Allocation Units"}, {kSmbNumber32, "Sectors Per Allocation Unit"},
    {kSmbNumber32, "Bytes Per Sector"}};
constexpr SmbField kControl[] = {
    {kSmbNumber64, "Free Space Start Filtering"}, {kSmbNumber64, "Free Space Threshold"},
    {kSmbNumber64, "Free Space Stop Filtering"}, {kSmbNumber64, "Default Quota Threshold"},
    {kSmbNumber64, "Default Quota Limit"}, {kSmbFlags32, "File System Control Flags", kQuotaBits},
    {kSmbNumber32, "Padding"}};
constexpr SmbField kObjectId[] = {{kSmbBytes, "Object ID", {}, 16}, {kSmbBytes, "Extended Info", {}, 48}};
constexpr SmbField kUnixInfo[] = {
    {kSmbNumber16, "Major Version"}, {kSmbNumber16, "Minor Version"},
    {kSmbFlags32, "Capabilities", kUnixCapabilities}, {kSmbHex32, "Capabilities High"}};
constexpr SmbField kPosixInfo[] = {
    {kSmbNumber32, "Optimal Transfer Size"}, {kSmbNumber32, "Block Size"}, {kSmbNumber64, "Total Blocks"},
    {kSmbNumber64, "Blocks Available"}, {kSmbNumber64, "User Blocks Available"}, {kSmbNumber64, "Total File Nodes"},
    {kSmbNumber64, "Free File Nodes"}, {kSmbHex64, "File System Identifier"}};

void AddLabel(const SmbMessage& message, const Place& in, Cursor& c, uint32_t length) {
  if (Left(c) > 0) AddSmbCounted(message, in, c, length, "Volume Label");
}

// The length is of the characters, and a terminator may follow them.
void AddShortLabel(const SmbMessage& message, const Place& in, Cursor& c, uint32_t) {
  AddSmbString(message, in, c, "Volume Label", SmbCharacters::kUnaligned);
}

void AddVolume(const SmbMessage& message, const Place& in, Cursor& c, uint32_t length) {
  AddSmbField(message, in, c, kSupportsObjects);
  AddSmbField(message, in, c, kReserved8);
  AddLabel(message, in, c, length);
}

void AddFsName(const SmbMessage& message, const Place& in, Cursor& c, uint32_t length) {
  if (Left(c) > 0) AddSmbCounted(message, in, c, length, "File System Name");
}

constexpr SmbLevel kQueryLevels[] = {
    {0x001, "Info Allocation", kAllocation, nullptr},
    {0x002, "Info Volume", kVolumeLabel, AddShortLabel},
    {0x101, "Query FS Label Info", kLabel, AddLabel},
    {0x102, "Query FS Volume Info", kVolume, AddVolume},
    {0x103, "Query FS Size Info", kSize, nullptr},
    {0x104, "Query FS Device Info", kDevice, nullptr},
    {0x105, "Query FS Attribute Info", kAttribute, AddFsName},
    {0x200, "CIFS UNIX Info", kUnixInfo, nullptr},
    {0x201, "POSIX FS Info", kPosixInfo, nullptr},
    {0x202, "POSIX Who Am I", {}, AddSmbWhoAmI},
    {0x203, "Request Transport Encryption", {}, nullptr},
    {0x301, "Mac Support", {}, nullptr},
    {1001, "FS Volume Information", kVolume, AddVolume},
    {1002, "FS Label Information", kLabel, AddLabel},
    {1003, "FS Size Information", kSize, nullptr},
    {1004, "FS Device Information", kDevice, nullptr},
    {1005, "FS Attribute Information", kAttribute, AddFsName},
    {1006, "FS Control Information", kControl, nullptr},
    {1007, "FS Full Size Information", kFullSize, nullptr},
    {1008, "FS Object ID Information", kObjectId, nullptr}};

constexpr SmbLevel kSetLevels[] = {
    {0x200, "CIFS UNIX Info", kUnixInfo, nullptr},
    {0x203, "Request Transport Encryption", {}, nullptr},
    {1002, "FS Label Information", kLabel, AddLabel},
    {1006, "FS Control Information", kControl, nullptr},
    {1008, "FS Object ID Information", kObjectId, nullptr}};

}  // namespace

const SmbLevels kSmbQueryFsLevels = kQueryLevels;
const SmbLevels kSmbSetFsLevels = kSetLevels;

}  // namespace qxview
