// Information levels of files, asked for or set by path or by FID.
#include "decoders/smb/smb_info_levels.h"
#include "decoders/smb/smb_open_names.h"

namespace qxview {
namespace {

constexpr auto kCompressionNames = SortedNames({{0, "None"}, {2, "LZNT1"}});
constexpr auto kFileTypeBits = SortedNames({{1, "Message Mode"}});
constexpr auto kPipeConfigurations = SortedNames({{0, "Inbound"}, {1, "Outbound"}, {2, "Full Duplex"}});
constexpr auto kPipeStates = SortedNames({{1, "Disconnected"}, {2, "Listening"}, {3, "Connected"}, {4, "Closing"}});
constexpr auto kFlagWords = SortedNames({{0x0001, "Directory"}});

constexpr SmbField kDated[] = {
    {kSmbDosDateTime, "Creation Date and Time"}, {kSmbDosDateTime, "Last Access Date and Time"},
    {kSmbDosDateTime, "Last Write Date and Time"}, {kSmbNumber32, "File Data Size"},
    {kSmbNumber32, "Allocation Size"}, {kSmbFlags16, "Attributes", kSmbAttributeBits}, {kSmbNumber32, "EA Size"}};
constexpr SmbField kSetDated[] = {
    {kSmbDosDateTime, "Creation Date and Time"}, {kSmbDosDateTime, "Last Access Date and Time"},
    {kSmbDosDateTime, "Last Write Date and Time"}, {kSmbBytes, "Reserved", {}, 10}};
constexpr SmbField kBasic[] = {
    {kSmbFileTime, "Creation Time"}, {kSmbFileTime, "Last Access Time"}, {kSmbFileTime, "Last Write Time"},
    {kSmbFileTime, "Change Time"}, {kSmbFlags32, "File Attributes", kSmbAttributeBits},
    {kSmbNumber32, "Reserved"}};
constexpr SmbField kStandard[] = {
    {kSmbNumber64, "Allocation Size"}, {kSmbNumber64, "End of File"}, {kSmbNumber32, "Number Of Links"},
    {kSmbName8, "Delete Pending", kFalseTrueNames}, {kSmbName8, "Directory", kFalseTrueNames},
    {kSmbNumber16, "Reserved"}};
constexpr SmbField kEa[] = {{kSmbNumber32, "EA Size"}};
constexpr SmbField kName[] = {{kSmbNumber32, "File Name Length"}};
constexpr SmbField kAll[] = {
    {kSmbFileTime, "Creation Time"}, {kSmbFileTime, "Last Access Time"}, {kSmbFileTime, "Last Write Time"},
    {kSmbFileTime, "Change Time"}, {kSmbFlags32, "File Attributes", kSmbAttributeBits},
    {kSmbNumber32, "Reserved"}, {kSmbNumber64, "Allocation Size"}, {kSmbNumber64, "End of File"},
    {kSmbNumber32, "Number Of Links"}, {kSmbName8, "Delete Pending", kFalseTrueNames},
    {kSmbName8, "Directory", kFalseTrueNames},
    {kSmbNumber16, "Reserved"}, {kSmbNumber32, "EA Size"}, {kSmbNumber32, "File Name Length"}};
constexpr SmbField kCompression[] = {
    {kSmbNumber64, "Compressed File Size"}, {kSmbName16, "Compression Format", kCompressionNames},
    {kSmbNumber8, "Compression Unit Shift"}, {kSmbNumber8, "Chunk Shift"}, {kSmbNumber8, "Cluster Shift"},
    {kSmbBytes, "Reserved", {}, 3}};
constexpr SmbField kInternal[] = {{kSmbHex64, "Index Number"}};
constexpr SmbField kAccess[] = {{kSmbFlags32, "Access Flags", kSmbAccessMaskBits}};
constexpr SmbField kPosition[] = {{kSmbNumber64, "Current Byte Offset"}};
constexpr SmbField kMode[] = {{kSmbHex32, "Mode"}};
constexpr SmbField kAlignment[] = {{kSmbHex32, "Alignment Requirement"}};
constexpr SmbField kPipe[] = {
    {kSmbFlags32, "Read Mode", kFileTypeBits}, {kSmbNumber32, "Completion Mode"}};
constexpr SmbField kPipeLocal[] = {
    {kSmbFlags32, "Named Pipe Type", kFileTypeBits}, {kSmbName32, "Named Pipe Configuration", kPipeConfigurations},
    {kSmbNumber32, "Maximum Instances"}, {kSmbNumber32, "Current Instances"}, {kSmbNumber32, "Inbound Quota"},
    {kSmbNumber32, "Read Data Available"}, {kSmbNumber32, "Outbound Quota"}, {kSmbNumber32, "Write Quota Available"},
    {kSmbName32, "Named Pipe State", kPipeStates}, {kSmbNumber32, "Named Pipe End"}};
constexpr SmbField kPipeRemote[] = {{kSmbFileTime, "Collect Data Time"}, {kSmbNumber32, "Maximum Collection Count"}};
constexpr SmbField kNetworkOpen[] = {
    {kSmbFileTime, "Creation Time"}, {kSmbFileTime, "Last Access Time"}, {kSmbFileTime, "Last Write Time"},
    {kSmbFileTime, "Change Time"}, {kSmbNumber64, "Allocation Size"}, {kSmbNumber64, "End of File"},
    {kSmbFlags32, "File Attributes", kSmbAttributeBits}, {kSmbNumber32, "Reserved"}};
constexpr SmbField kAttributeTag[] = {{kSmbFlags32, "File Attributes", kSmbAttributeBits}, {kSmbHex32, "Reparse Tag"}};
constexpr SmbField kDisposition[] = {{kSmbName8, "Delete Pending", kFalseTrueNames}};
constexpr SmbField kAllocationSize[] = {{kSmbNumber64, "Allocation Size"}};
constexpr SmbField kEndOfFile[] = {{kSmbNumber64, "End of File"}};
constexpr SmbField kValidDataLength[] = {{kSmbNumber64, "Valid Data Length"}};
constexpr SmbField kRename[] = {
    {kSmbNumber8, "Replace If Exists"}, {kSmbBytes, "Reserved", {}, 3}, {kSmbHex32, "Root Directory"},
    {kSmbNumber32, "File Name Length"}};
constexpr SmbField kAttributeFlags[] = {{kSmbHex64, "Attribute Mask"}, {kSmbHex64, "Attribute Flags"}};
constexpr SmbField kPosixLock[] = {
    {kSmbNumber16, "Lock Type"}, {kSmbNumber16, "Wait"}, {kSmbNumber32, "Process ID"}, {kSmbNumber64, "Start"},
    {kSmbNumber64, "Length"}};
constexpr SmbField kPosixUnlink[] = {{kSmbFlags16, "Flags", kFlagWords}};
constexpr SmbField kLinkTarget[] = {{kSmbText, "Link Target"}};

void AddFileName(const SmbMessage& message, const Place& in, Cursor& c, uint32_t length) {
  if (Left(c) > 0) AddSmbCounted(message, in, c, length, "File Name");
}

void AddEas(const SmbMessage& message, const Place& in, Cursor& c, uint32_t) { AddSmbEaList(message, in, c); }

void AddStreams(const SmbMessage& message, const Place& in, Cursor& c, uint32_t) {
  constexpr SmbField kFields[] = {
      {kSmbNumber32, "Next Entry Offset"}, {kSmbNumber32, "Stream Name Length"}, {kSmbNumber64, "Stream Size"},
      {kSmbNumber64, "Stream Allocation Size"}};
  for (Loop loop; MoreAt(in, c, loop);) {
    Cursor entry = TakeSmbEntry(c, 24);
    const Place under = Under(in, AddLine(in, Ahead(entry, entry.left), "Stream"));
    const uint32_t length = entry.left >= 8 ? ReadLittleU32(entry.at + 4) : 0;
    AddSmbFields(message, under, entry, kFields);
    if (Left(entry) > 0) AddSmbCounted(message, under, entry, length, "Stream Name");
    AddSmbFiller(under, entry);
  }
}

// FILE_ALL_INFORMATION: the fields of several of the levels above, one behind the other. Some servers leave out those
// that the older level of all information lacks; the length of the name, which is the last field, tells.
void AddAllInformation(const SmbMessage& message, const Place& in, Cursor& c, uint32_t) {
  constexpr int32_t kNameLengthAt = 96;
  const bool isWhole = Left(c) >= kNameLengthAt + 4 &&
                       ReadLittleU32(c.at + kNameLengthAt) <= static_cast<uint32_t>(Left(c) - kNameLengthAt - 4);
  AddSmbFields(message, in, c, kBasic);
  AddSmbFields(message, in, c, kStandard);
  if (isWhole) AddSmbFields(message, in, c, kInternal);
  AddSmbFields(message, in, c, kEa);
  if (isWhole) {
    AddSmbFields(message, in, c, kAccess);
    AddSmbFields(message, in, c, kPosition);
    AddSmbFields(message, in, c, kMode);
    AddSmbFields(message, in, c, kAlignment);
  }
  const uint32_t length = AddSmbFields(message, in, c, kName);
  AddFileName(message, in, c, length);
}

constexpr SmbLevel kQueryLevels[] = {
    {0x001, "Info Standard", kDated, nullptr},
    {0x002, "Info Query EA Size", kDated, nullptr},
    {0x003, "Info Query EAs From List", {}, AddEas},
    {0x004, "Info Query All EAs", {}, AddEas},
    {0x006, "Info Is Name Valid", {}, nullptr},
    {0x101, "Query File Basic Info", kBasic, nullptr},
    {0x102, "Query File Standard Info", kStandard, nullptr},
    {0x103, "Query File EA Info", kEa, nullptr},
    {0x104, "Query File Name Info", kName, AddFileName},
    {0x105, "Query File Allocation Info", kAllocationSize, nullptr},
    {0x106, "Query File End of File Info", kEndOfFile, nullptr},
    {0x107, "Query File All Info", kAll, AddFileName},
    {0x108, "Query File Alternate Name Info", kName, AddFileName},
    {0x109, "Query File Stream Info", {}, AddStreams},
    {0x10B, "Query File Compression Info", kCompression, nullptr},
    {0x200, "Query File UNIX Basic", {}, AddSmbUnixBasic},
    {0x201, "Query File UNIX Link", kLinkTarget, nullptr},
    {0x204, "Query POSIX ACL", {}, AddSmbPosixAcl},
    {0x205, "Query Extended Attributes", {}, AddEas},
    {0x206, "Query Attribute Flags", kAttributeFlags, nullptr},
    {0x207, "Query POSIX Permission", {}, nullptr},
    {0x208, "Query POSIX Lock", kPosixLock, nullptr},
    {0x20B, "Query File UNIX Info 2", {}, AddSmbUnixInfo2},
    {1004, "File Basic Information", kBasic, nullptr},
    {1005, "File Standard Information", kStandard, nullptr},
    {1006, "File Internal Information", kInternal, nullptr},
    {1007, "File EA Information", kEa, nullptr},
    {1008, "File Access Information", kAccess, nullptr},
    {1009, "File Name Information", kName, AddFileName},
    {1014, "File Position Information", kPosition, nullptr},
    {1015, "File Full EA Information", {}, AddSmbFullEas},
    {1016, "File Mode Information", kMode, nullptr},
    {1017, "File Alignment Information", kAlignment, nullptr},
    {1018, "File All Information", {}, AddAllInformation},
    {1021, "File Alternate Name Information", kName, AddFileName},
    {1022, "File Stream Information", {}, AddStreams},
    {1023, "File Pipe Information", kPipe, nullptr},
    {1024, "File Pipe Local Information", kPipeLocal, nullptr},
    {1025, "File Pipe Remote Information", kPipeRemote, nullptr},
    {1028, "File Compression Information", kCompression, nullptr},
    {1034, "File Network Open Information", kNetworkOpen, nullptr},
    {1035, "File Attribute Tag Information", kAttributeTag, nullptr},
    {0xFFFF, "None", {}, nullptr}};

constexpr SmbLevel kSetLevels[] = {
    {0x001, "Info Standard", kSetDated, nullptr},
    {0x002, "Info Set EAs", {}, AddEas},
    {0x004, "Info All EAs", {}, AddEas},
    {0x101, "Set File Basic Info", kBasic, nullptr},
    {0x102, "Set File Disposition Info", kDisposition, nullptr},
    {0x103, "Set File Allocation Info", kAllocationSize, nullptr},
    {0x104, "Set File End of File Info", kEndOfFile, nullptr},
    {0x200, "Set File UNIX Basic", {}, AddSmbUnixBasic},
    {0x201, "Set File UNIX Link", kLinkTarget, nullptr},
    {0x203, "Set File UNIX Hard Link", kLinkTarget, nullptr},
    {0x204, "Set POSIX ACL", {}, AddSmbPosixAcl},
    {0x205, "Set Extended Attributes", {}, AddEas},
    {0x206, "Set Attribute Flags", kAttributeFlags, nullptr},
    {0x208, "Set POSIX Lock", kPosixLock, nullptr},
    {0x209, "POSIX Path Open", {}, AddSmbPosixOpen},
    {0x20A, "POSIX Path Unlink", kPosixUnlink, nullptr},
    {0x20B, "Set File UNIX Info 2", {}, AddSmbUnixInfo2},
    {1004, "File Basic Information", kBasic, nullptr},
    {1010, "File Rename Information", kRename, AddFileName},
    {1011, "File Link Information", kRename, AddFileName},
    {1013, "File Disposition Information", kDisposition, nullptr},
    {1014, "File Position Information", kPosition, nullptr},
    {1015, "File Full EA Information", {}, AddSmbFullEas},
    {1016, "File Mode Information", kMode, nullptr},
    {1019, "File Allocation Information", kAllocationSize, nullptr},
    {1020, "File End of File Information", kEndOfFile, nullptr},
    {1023, "File Pipe Information", kPipe, nullptr},
    {1025, "File Pipe Remote Information", kPipeRemote, nullptr},
    {1039, "File Valid Data Length Information", kValidDataLength, nullptr},
    {1040, "File Short Name Information", kName, AddFileName}};

const SmbLevel* FindLevel(SmbLevels levels, uint32_t level) {
  for (const SmbLevel& row : levels) {
    if (row.level == level) return &row;
  }
  return nullptr;
}

}  // namespace

const SmbLevels kSmbQueryFileLevels = kQueryLevels;
const SmbLevels kSmbSetFileLevels = kSetLevels;

uint32_t AddSmbLevelLine(const Place& in, Cursor& c, SmbLevels levels) {
  const Field level = TakeLittleU16(c);
  const SmbLevel* row = FindLevel(levels, level.value);
  AddLine(in, level, "Information Level: [%u] = %s", level.value, row ? row->name : kUndefined);
  return level.value;
}

void AddSmbLevel(const SmbMessage& message, const Place& in, Cursor& c, SmbLevels levels, uint32_t level) {
  const SmbLevel* row = FindLevel(levels, level);
  if (!row) return;
  const uint32_t last = AddSmbFields(message, in, c, row->fields);
  if (row->rest) row->rest(message, in, c, last);
}

}  // namespace qxview
