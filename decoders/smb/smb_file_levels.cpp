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

constexpr auto kDated = LittleRows<Smb>({
    SmbDateTime("Creation Date and Time"), SmbDateTime("Last Access Date and Time"),
    SmbDateTime("Last Write Date and Time"), Number(4, "File Data Size"), Number(4, "Allocation Size"),
    Flags(2, "Attributes", kSmbAttributeBits), Number(4, "EA Size")});
constexpr auto kSetDated = LittleRows<Smb>({
    SmbDateTime("Creation Date and Time"), SmbDateTime("Last Access Date and Time"),
    SmbDateTime("Last Write Date and Time"), Bytes(10, "Reserved")});
constexpr auto kBasic = LittleRows<Smb>({
    FileTime("Creation Time"), FileTime("Last Access Time"), FileTime("Last Write Time"), FileTime("Change Time"),
    Flags(4, "File Attributes", kSmbAttributeBits), Number(4, "Reserved")});
constexpr auto kStandard = LittleRows<Smb>({
    Number(8, "Allocation Size"), Number(8, "End of File"), Number(4, "Number Of Links"),
    Coded(1, "Delete Pending", kFalseTrueNames), Coded(1, "Directory", kFalseTrueNames), Number(2, "Reserved")});
constexpr auto kEa = LittleRows<Smb>({Number(4, "EA Size")});
constexpr auto kName = LittleRows<Smb>({SmbLength("File Name Length"), SmbCounted("File Name")});
constexpr auto kAll = LittleRows<Smb>({SmbTable<kBasic>(), SmbTable<kStandard>(), SmbTable<kEa>(), SmbTable<kName>()});
constexpr auto kCompression = LittleRows<Smb>({
    Number(8, "Compressed File Size"), Coded(2, "Compression Format", kCompressionNames),
    Number(1, "Compression Unit Shift"), Number(1, "Chunk Shift"), Number(1, "Cluster Shift"), Bytes(3, "Reserved")});
constexpr auto kInternal = LittleRows<Smb>({Hex(8, "Index Number")});
constexpr auto kAccess = LittleRows<Smb>({Flags(4, "Access Flags", kSmbAccessMaskBits)});
constexpr auto kPosition = LittleRows<Smb>({Number(8, "Current Byte Offset")});
constexpr auto kMode = LittleRows<Smb>({Hex(4, "Mode")});
constexpr auto kAlignment = LittleRows<Smb>({Hex(4, "Alignment Requirement")});
constexpr auto kPipe = LittleRows<Smb>({Flags(4, "Read Mode", kFileTypeBits), Number(4, "Completion Mode")});
constexpr auto kPipeLocal = LittleRows<Smb>({
    Flags(4, "Named Pipe Type", kFileTypeBits), Coded(4, "Named Pipe Configuration", kPipeConfigurations),
    Number(4, "Maximum Instances"), Number(4, "Current Instances"), Number(4, "Inbound Quota"),
    Number(4, "Read Data Available"), Number(4, "Outbound Quota"), Number(4, "Write Quota Available"),
    Coded(4, "Named Pipe State", kPipeStates), Number(4, "Named Pipe End")});
constexpr auto kPipeRemote = LittleRows<Smb>({Number(8, "Collect Data Time", " x 100 ns"), Number(4, "Maximum Collection Count")});
constexpr auto kNetworkOpen = LittleRows<Smb>({
    FileTime("Creation Time"), FileTime("Last Access Time"), FileTime("Last Write Time"), FileTime("Change Time"),
    Number(8, "Allocation Size"), Number(8, "End of File"), Flags(4, "File Attributes", kSmbAttributeBits),
    Number(4, "Reserved")});
constexpr auto kAttributeTag = LittleRows<Smb>({Flags(4, "File Attributes", kSmbAttributeBits), Hex(4, "Reparse Tag")});
constexpr auto kDisposition = LittleRows<Smb>({Coded(1, "Delete Pending", kFalseTrueNames)});
constexpr auto kAllocationSize = LittleRows<Smb>({Number(8, "Allocation Size")});
constexpr auto kEndOfFile = LittleRows<Smb>({Number(8, "End of File")});
constexpr auto kValidDataLength = LittleRows<Smb>({Number(8, "Valid Data Length")});
constexpr auto kRename = LittleRows<Smb>({
    Number(1, "Replace If Exists"), Bytes(3, "Reserved"), Hex(4, "Root Directory"), SmbLength("File Name Length"),
    SmbCounted("File Name")});
constexpr auto kAttributeFlags = LittleRows<Smb>({Hex(8, "Attribute Mask"), Hex(8, "Attribute Flags")});
constexpr auto kPosixLock = LittleRows<Smb>({
    Number(2, "Lock Type"), Number(2, "Wait"), Number(4, "Process ID"), Number(8, "Start"), Number(8, "Length")});
constexpr auto kPosixUnlink = LittleRows<Smb>({Flags(2, "Flags", kFlagWords)});
constexpr auto kLinkTarget = LittleRows<Smb>({SmbText("Link Target")});

constexpr auto kStream = LittleRows<Smb>({
    Number(4, "Next Entry Offset"), SmbLength("Stream Name Length"), Number(8, "Stream Size"),
    Number(8, "Stream Allocation Size"), SmbCounted("Stream Name")});
constexpr auto kStreams = LittleRows<Smb>({SmbEntries<kStream, 24>("Stream")});
constexpr auto kUnixBasic = LittleRows<Smb>({Shown(nullptr, ShowSmbUnixBasic)});
constexpr auto kUnixInfo2 = LittleRows<Smb>({Shown(nullptr, ShowSmbUnixInfo2)});
constexpr auto kPosixAcl = LittleRows<Smb>({Shown(nullptr, ShowSmbPosixAcl)});
constexpr auto kPosixOpen = LittleRows<Smb>({Shown(nullptr, ShowSmbPosixOpen)});

// FILE_ALL_INFORMATION: the fields of several of the levels above, one behind the other. Some servers leave out those
// that the older level of all information lacks; the length of the name, which is the last field, tells.
constexpr auto kAllWhole = LittleRows<Smb>({
    SmbTable<kBasic>(), SmbTable<kStandard>(), SmbTable<kInternal>(), SmbTable<kEa>(), SmbTable<kAccess>(),
    SmbTable<kPosition>(), SmbTable<kMode>(), SmbTable<kAlignment>(), SmbTable<kName>()});
void ShowAllInformation(const Place& in, Cursor& c, const char*, Smb& values) {
  constexpr int32_t kNameLengthAt = 96, kNameAt = kNameLengthAt + 4;
  const uint32_t length = PeekLittleU32(c, kNameLengthAt);
  const bool isWhole = Left(c) >= kNameAt && length <= static_cast<uint32_t>(Left(c) - kNameAt);
  ShowRows<Smb>(in, c, isWhole ? SmbRowSpan(kAllWhole) : kAll, values);
}
constexpr auto kAllInformation = LittleRows<Smb>({Shown(nullptr, ShowAllInformation)});

constexpr auto kQueryLevels = Choices<Smb>({
    {0x001, "Info Standard", kDated},
    {0x002, "Info Query EA Size", kDated},
    {0x003, "Info Query EAs From List", kSmbEaList},
    {0x004, "Info Query All EAs", kSmbEaList},
    {0x006, "Info Is Name Valid"},
    {0x101, "Query File Basic Info", kBasic},
    {0x102, "Query File Standard Info", kStandard},
    {0x103, "Query File EA Info", kEa},
    {0x104, "Query File Name Info", kName},
    {0x105, "Query File Allocation Info", kAllocationSize},
    {0x106, "Query File End of File Info", kEndOfFile},
    {0x107, "Query File All Info", kAll},
    {0x108, "Query File Alternate Name Info", kName},
    {0x109, "Query File Stream Info", kStreams},
    {0x10B, "Query File Compression Info", kCompression},
    {0x200, "Query File UNIX Basic", kUnixBasic},
    {0x201, "Query File UNIX Link", kLinkTarget},
    {0x204, "Query POSIX ACL", kPosixAcl},
    {0x205, "Query Extended Attributes", kSmbEaList},
    {0x206, "Query Attribute Flags", kAttributeFlags},
    {0x207, "Query POSIX Permission"},
    {0x208, "Query POSIX Lock", kPosixLock},
    {0x20B, "Query File UNIX Info 2", kUnixInfo2},
    {1004, "File Basic Information", kBasic},
    {1005, "File Standard Information", kStandard},
    {1006, "File Internal Information", kInternal},
    {1007, "File EA Information", kEa},
    {1008, "File Access Information", kAccess},
    {1009, "File Name Information", kName},
    {1014, "File Position Information", kPosition},
    {1015, "File Full EA Information", kSmbFullEas},
    {1016, "File Mode Information", kMode},
    {1017, "File Alignment Information", kAlignment},
    {1018, "File All Information", kAllInformation},
    {1021, "File Alternate Name Information", kName},
    {1022, "File Stream Information", kStreams},
    {1023, "File Pipe Information", kPipe},
    {1024, "File Pipe Local Information", kPipeLocal},
    {1025, "File Pipe Remote Information", kPipeRemote},
    {1028, "File Compression Information", kCompression},
    {1034, "File Network Open Information", kNetworkOpen},
    {1035, "File Attribute Tag Information", kAttributeTag},
    {0xFFFF, "None"}});

constexpr auto kSetLevels = Choices<Smb>({
    {0x001, "Info Standard", kSetDated},
    {0x002, "Info Set EAs", kSmbEaList},
    {0x004, "Info All EAs", kSmbEaList},
    {0x101, "Set File Basic Info", kBasic},
    {0x102, "Set File Disposition Info", kDisposition},
    {0x103, "Set File Allocation Info", kAllocationSize},
    {0x104, "Set File End of File Info", kEndOfFile},
    {0x200, "Set File UNIX Basic", kUnixBasic},
    {0x201, "Set File UNIX Link", kLinkTarget},
    {0x203, "Set File UNIX Hard Link", kLinkTarget},
    {0x204, "Set POSIX ACL", kPosixAcl},
    {0x205, "Set Extended Attributes", kSmbEaList},
    {0x206, "Set Attribute Flags", kAttributeFlags},
    {0x208, "Set POSIX Lock", kPosixLock},
    {0x209, "POSIX Path Open", kPosixOpen},
    {0x20A, "POSIX Path Unlink", kPosixUnlink},
    {0x20B, "Set File UNIX Info 2", kUnixInfo2},
    {1004, "File Basic Information", kBasic},
    {1010, "File Rename Information", kRename},
    {1011, "File Link Information", kRename},
    {1013, "File Disposition Information", kDisposition},
    {1014, "File Position Information", kPosition},
    {1015, "File Full EA Information", kSmbFullEas},
    {1016, "File Mode Information", kMode},
    {1019, "File Allocation Information", kAllocationSize},
    {1020, "File End of File Information", kEndOfFile},
    {1023, "File Pipe Information", kPipe},
    {1025, "File Pipe Remote Information", kPipeRemote},
    {1039, "File Valid Data Length Information", kValidDataLength},
    {1040, "File Short Name Information", kName}});

}  // namespace

const SmbChoices kSmbQueryFileLevels = kQueryLevels;
const SmbChoices kSmbSetFileLevels = kSetLevels;

}  // namespace qxview
