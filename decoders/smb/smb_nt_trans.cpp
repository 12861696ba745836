// NT Transaction (MS-CIFS 2.2.7, MS-SMB 2.2.7): what NT servers add to the transactions: files with security
// descriptors, file system controls, notification of changes, quotas.
#include "decoders/smb/smb_commands.h"
#include "decoders/smb/smb_info_levels.h"
#include "decoders/smb/smb_open_names.h"

namespace qxview {
namespace {

enum Function : uint32_t {
  kCreate = 1, kIoctl, kSetSecurity, kNotifyChange, kRename, kQuerySecurity, kQueryQuota, kSetQuota,
};

constexpr auto kInformationBits = SortedNames({
    {0x1, "Owner"}, {0x2, "Group"}, {0x4, "DACL"}, {0x8, "SACL"}, {0x10, "Label"}});
constexpr auto kFilterBits = SortedNames({
    {0x001, "File Name"}, {0x002, "Directory Name"}, {0x004, "Attributes"}, {0x008, "Size"}, {0x010, "Last Write"},
    {0x020, "Last Access"}, {0x040, "Creation"}, {0x080, "EA"}, {0x100, "Security"}, {0x200, "Stream Name"},
    {0x400, "Stream Size"}, {0x800, "Stream Write"}});
constexpr auto kChangeActions = SortedNames({
    {1, "Added"}, {2, "Removed"}, {3, "Modified"}, {4, "Renamed Old Name"}, {5, "Renamed New Name"},
    {6, "Added Stream"}, {7, "Removed Stream"}, {8, "Modified Stream"}, {9, "Removed By Delete"},
    {10, "ID Not Tunnelled"}, {11, "Tunnelled ID Collision"}});

constexpr auto kPart = LittleRows<Smb>({
    Bytes(3, "Reserved"), Number(4, "Total Parameter Count"), Number(4, "Total Data Count"),
    Number(4, "Parameter Count"), Number(4, "Parameter Offset"), Number(4, "Parameter Displacement"),
    Number(4, "Data Count"), Number(4, "Data Offset"), Number(4, "Data Displacement")});
constexpr auto kReply = LittleRows<Smb>({SmbTable<kPart>(), Number(1, "Setup Count")});
constexpr auto kSecondary = LittleRows<Smb>({SmbTable<kPart>(), Number(1, "Reserved")});

constexpr auto kCreateRequest = LittleRows<Smb>({
    SmbTable<kSmbNtOpen>(), Number(4, "Security Descriptor Length"), Number(4, "EA Length"), SmbLength("Name Length"),
    SmbTable<kSmbNtSecurity>()});
constexpr int32_t kDescriptorLengthAt = 36;
constexpr auto kCreateReply = LittleRows<Smb>({
    Coded(1, "Opportunistic Lock Level", kSmbOplockLevelNames), Number(1, "Reserved"), Hex(2, "FID"),
    Coded(4, "Create Action", kSmbCreateActionNames), Number(4, "EA Error Offset"), SmbTable<kSmbNtOpened>()});
constexpr auto kSecurityRequest = LittleRows<Smb>({
    Hex(2, "FID"), Number(2, "Reserved"), Flags(4, "Security Information", kInformationBits)});
constexpr auto kLengthNeeded = LittleRows<Smb>({Number(4, "Length Needed")});
constexpr auto kNotifySetup = LittleRows<Smb>({
    Flags(4, "Completion Filter", kFilterBits), Hex(2, "FID"), Number(1, "Watch Tree"), Number(1, "Reserved")});
constexpr auto kRenameRequest = LittleRows<Smb>({Hex(2, "FID"), Hex(2, "Flags"), SmbText("New Name")});
constexpr auto kQuotaRequest = LittleRows<Smb>({
    Hex(2, "FID"), Number(1, "Return Single Entry"), Number(1, "Restart Scan"), Number(4, "SID List Length"),
    Number(4, "Start SID Length"), Number(4, "Start SID Offset")});
constexpr auto kDataLength = LittleRows<Smb>({Number(4, "Data Length")});
constexpr auto kFid = LittleRows<Smb>({Hex(2, "FID")});

void ShowChangedName(const Place& in, Cursor& c, const char* label, Smb& values) {
  const uint32_t length = values.length.value;
  if (Left(c) > 0) AddSmbCounted(*values.message, in, c, length, label, SmbCharacters::kUnicode);
}
constexpr auto kChange = LittleRows<Smb>({
    Number(4, "Next Entry Offset"), Coded(4, "Action", kChangeActions), SmbLength("File Name Length"),
    Shown("File Name", ShowChangedName)});
constexpr auto kChanges = LittleRows<Smb>({SmbEntries<kChange, 12>("Change")});
constexpr auto kSid = LittleRows<Smb>({Number(4, "Next Entry Offset"), Number(4, "SID Length"), SmbSid("SID")});
constexpr auto kSids = LittleRows<Smb>({SmbEntries<kSid, 16>("SID Entry")});

void CreateRequest(SmbTransaction& t, const Place& in, Cursor& c) {
  const Field length = ShowSmbRows(t.message, in, c, kCreateRequest).length;
  if (t.message.isUnicode) AddSmbPad(t.message, in, c, 2);
  if (Left(c) > 0) AddSmbCounted(t.message, in, c, length.value, "File Name");
  AddSmbFiller(in, c);
}

void CreateData(SmbTransaction& t, const Place& in, Cursor& c) {
  const uint32_t length = PeekLittleU32(SmbCursor(t.message, t.parameterOffset + kDescriptorLengthAt, 4));
  if (length > 0) {
    Cursor descriptor = TakeCursor(c, length);
    AddSmbSecurityDescriptor(in, descriptor);
    AddSmbFiller(in, descriptor);
  }
  ShowSmbRows(t.message, in, c, kSmbFullEas);
}

void SecurityData(SmbTransaction&, const Place& in, Cursor& c) { AddSmbSecurityDescriptor(in, c); }

constexpr SmbFunction kFunctions[] = {
    {kCreate, "NT Transact Create", CreateRequest, CreateData, SmbTransactionRows<kCreateReply>, nullptr},
    {kIoctl, "NT Transact IOCTL", nullptr, SmbIoctlRequest, nullptr, SmbIoctlReply},
    {kSetSecurity, "NT Transact Set Security Descriptor", SmbTransactionRows<kSecurityRequest>, SecurityData, nullptr,
     nullptr},
    {kNotifyChange, "NT Transact Notify Change", nullptr, nullptr, SmbTransactionRows<kChanges>, nullptr},
    {kRename, "NT Transact Rename", SmbTransactionRows<kRenameRequest>, nullptr, nullptr, nullptr},
    {kQuerySecurity, "NT Transact Query Security Descriptor", SmbTransactionRows<kSecurityRequest>, nullptr,
     SmbTransactionRows<kLengthNeeded>, SecurityData},
    {kQueryQuota, "NT Transact Query Quota", SmbTransactionRows<kQuotaRequest>, SmbTransactionRows<kSids>,
     SmbTransactionRows<kDataLength>, SmbTransactionRows<kSmbQuotas>},
    {kSetQuota, "NT Transact Set Quota", SmbTransactionRows<kFid>, SmbTransactionRows<kSmbQuotas>, nullptr, nullptr},
};

constexpr int32_t kFunctionAt = 36;   // in the words of a request
const char* NameOfFunction(uint32_t code) { return SmbFunctionName(kFunctions, code); }
constexpr auto kRequest = LittleRows<Smb>({
    Number(1, "Max Setup Count"), Number(2, "Reserved"), Number(4, "Total Parameter Count"),
    Number(4, "Total Data Count"), Number(4, "Max Parameter Count"), Number(4, "Max Data Count"),
    Number(4, "Parameter Count"), Number(4, "Parameter Offset"), Number(4, "Data Count"), Number(4, "Data Offset"),
    Number(1, "Setup Count"), Coded(2, "Function", NameOfFunction)});

}  // namespace

void NtTransRequestWords(SmbBlock& block) {
  ShowSmbRows(block, block.words, kRequest);
  const uint32_t code = PeekLittleU16(block.allWords, kFunctionAt);
  if (Left(block.words) < 1 || !FindSmbFunction(kFunctions, code)) {
    AddSetupData(block);
    return;
  }
  const Place in = Under(block.in, AddLine(block.in, Ahead(block.words, block.words.left), "Setup Data"));
  if (code == kIoctl) AddSmbIoctlSetup(*block.message, in, block.words);
  if (code == kNotifyChange) ShowSmbRows(*block.message, in, block.words, kNotifySetup);
  AddBlock(in, Rest(block.words), "Setup Data");
}

void NtTransRequestData(SmbBlock& block) {
  SmbTransaction t = ReadSmbTransaction(block, kSmbNtRequest);
  t.request.function = PeekLittleU16(block.allWords, kFunctionAt);
  if (t.request.function == kIoctl) t.request.level = PeekLittleU32(t.setup);
  AddTransactionBytes(t, FindSmbFunction(kFunctions, t.request.function));
}

void NtTransReplyWords(SmbBlock& block) {
  ShowSmbRows(block, block.words, kReply);
  AddSetupData(block);
}

void NtTransReplyData(SmbBlock& block) {
  SmbTransaction t = ReadSmbTransaction(block, kSmbNtReply);
  AddTransactionBytes(t, t.isKnown ? FindSmbFunction(kFunctions, t.request.function) : nullptr);
}

void NtTransSecondaryWords(SmbBlock& block) { ShowSmbRows(block, block.words, kSecondary); }

void NtTransSecondaryData(SmbBlock& block) {
  SmbTransaction t = ReadSmbTransaction(block, kSmbNtSecondary);
  AddTransactionBytes(t, nullptr);
}

}  // namespace qxview
