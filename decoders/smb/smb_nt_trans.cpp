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

constexpr SmbField kRequestFields[] = {
    {kSmbNumber8, "Max Setup Count"}, {kSmbNumber16, "Reserved"}, {kSmbNumber32, "Total Parameter Count"},
    {kSmbNumber32, "Total Data Count"}, {kSmbNumber32, "Max Parameter Count"}, {kSmbNumber32, "Max Data Count"},
    {kSmbNumber32, "Parameter Count"}, {kSmbNumber32, "Parameter Offset"}, {kSmbNumber32, "Data Count"},
    {kSmbNumber32, "Data Offset"}, {kSmbNumber8, "Setup Count"}};
constexpr SmbField kPartFields[] = {
    {kSmbBytes, "Reserved", {}, 3}, {kSmbNumber32, "Total Parameter Count"}, {kSmbNumber32, "Total Data Count"},
    {kSmbNumber32, "Parameter Count"}, {kSmbNumber32, "Parameter Offset"}, {kSmbNumber32, "Parameter Displacement"},
    {kSmbNumber32, "Data Count"}, {kSmbNumber32, "Data Offset"}, {kSmbNumber32, "Data Displacement"}};
constexpr SmbField kSetupCount[] = {{kSmbNumber8, "Setup Count"}};
constexpr SmbField kReserved8[] = {{kSmbNumber8, "Reserved"}};

constexpr SmbField kCreateRequest[] = {
    {kSmbFlags32, "Flags", kSmbNtOpenFlagBits}, {kSmbHex32, "Root Directory FID"},
    {kSmbFlags32, "Desired Access", kSmbAccessMaskBits}, {kSmbNumber64, "Allocation Size"},
    {kSmbFlags32, "File Attributes", kSmbAttributeBits}, {kSmbFlags32, "Share Access", kSmbShareAccessBits},
    {kSmbName32, "Create Disposition", kSmbDispositionNames}, {kSmbFlags32, "Create Options", kSmbCreateOptionBits},
    {kSmbNumber32, "Security Descriptor Length"}, {kSmbNumber32, "EA Length"}, {kSmbNumber32, "Name Length"},
    {kSmbName32, "Impersonation Level", kSmbImpersonationNames},
    {kSmbFlags8, "Security Flags", kSmbSecurityFlagBits}};
constexpr int32_t kDescriptorLengthAt = 36, kNameLengthAt = 44;
constexpr SmbField kCreateReply[] = {
    {kSmbName8, "Opportunistic Lock Level", kSmbOplockLevelNames}, {kSmbNumber8, "Reserved"}, {kSmbHex16, "FID"},
    {kSmbName32, "Create Action", kSmbCreateActionNames}, {kSmbNumber32, "EA Error Offset"},
    {kSmbFileTime, "Creation Time"},
    {kSmbFileTime, "Last Access Time"}, {kSmbFileTime, "Last Write Time"}, {kSmbFileTime, "Change Time"},
    {kSmbFlags32, "File Attributes", kSmbAttributeBits}, {kSmbNumber64, "Allocation Size"},
    {kSmbNumber64, "End of File"}, {kSmbName16, "File Type", kSmbFileTypeNames},
    {kSmbFlags16, "Pipe State", kSmbPipeStateBits},
    {kSmbName8, "Directory", kFalseTrueNames}};
constexpr SmbField kCreateExtended[] = {
    {kSmbBytes, "Volume GUID", {}, 16}, {kSmbHex64, "File ID"},
    {kSmbFlags32, "Maximal Access Rights", kSmbAccessMaskBits},
    {kSmbFlags32, "Guest Maximal Access Rights", kSmbAccessMaskBits}};
constexpr SmbField kSecurityRequest[] = {
    {kSmbHex16, "FID"}, {kSmbNumber16, "Reserved"}, {kSmbFlags32, "Security Information", kInformationBits}};
constexpr SmbField kLengthNeeded[] = {{kSmbNumber32, "Length Needed"}};
constexpr SmbField kNotifySetup[] = {
    {kSmbFlags32, "Completion Filter", kFilterBits}, {kSmbHex16, "FID"}, {kSmbNumber8, "Watch Tree"},
    {kSmbNumber8, "Reserved"}};
constexpr SmbField kRenameRequest[] = {{kSmbHex16, "FID"}, {kSmbHex16, "Flags"}, {kSmbText, "New Name"}};
constexpr SmbField kQuotaRequest[] = {
    {kSmbHex16, "FID"}, {kSmbNumber8, "Return Single Entry"}, {kSmbNumber8, "Restart Scan"},
    {kSmbNumber32, "SID List Length"}, {kSmbNumber32, "Start SID Length"}, {kSmbNumber32, "Start SID Offset"}};
constexpr SmbField kDataLength[] = {{kSmbNumber32, "Data Length"}};
constexpr SmbField kFid[] = {{kSmbHex16, "FID"}};

uint32_t CreateParameter(const SmbTransaction& t, int32_t offset) {
  const Field at = SmbRange(t.message, t.parameterOffset + static_cast<uint32_t>(offset), 4);
  return at.here ? ReadLittleU32(at.bytes) : 0;
}

void CreateRequest(SmbTransaction& t, const Place& in, Cursor& c) {
  const uint32_t length = Left(c) >= kNameLengthAt + 4 ? ReadLittleU32(c.at + kNameLengthAt) : 0;
  AddSmbFields(t.message, in, c, kCreateRequest);
  if (t.message.isUnicode) AddSmbPad(t.message, in, c, 2);
  if (Left(c) > 0) AddSmbCounted(t.message, in, c, length, "File Name");
  AddSmbFiller(in, c);
}

void CreateData(SmbTransaction& t, const Place& in, Cursor& c) {
  const uint32_t length = CreateParameter(t, kDescriptorLengthAt);
  if (length > 0) {
    Cursor descriptor = TakeCursor(c, length);
    AddSmbSecurityDescriptor(in, descriptor);
    AddSmbFiller(in, descriptor);
  }
  AddSmbFullEas(t.message, in, c, 0);
}

void CreateReply(SmbTransaction& t, const Place& in, Cursor& c) {
  AddSmbFields(t.message, in, c, kCreateReply);
  AddSmbFields(t.message, in, c, kCreateExtended);
}

void SecurityData(SmbTransaction&, const Place& in, Cursor& c) { AddSmbSecurityDescriptor(in, c); }
void QuotaData(SmbTransaction&, const Place& in, Cursor& c) { AddSmbQuotas(in, c); }

void NotifyReply(SmbTransaction& t, const Place& in, Cursor& c) {
  constexpr SmbField kFields[] = {
      {kSmbNumber32, "Next Entry Offset"}, {kSmbName32, "Action", kChangeActions}, {kSmbNumber32, "File Name Length"}};
  for (Loop loop; MoreAt(in, c, loop);) {
    Cursor entry = TakeSmbEntry(c, 12);
    const Place under = Under(in, AddLine(in, Ahead(entry, entry.left), "Change"));
    const uint32_t length = AddSmbFields(t.message, under, entry, kFields);
    if (Left(entry) > 0) AddSmbCounted(t.message, under, entry, length, "File Name", SmbCharacters::kUnicode);
    AddSmbFiller(under, entry);
  }
}

// SIDs to ask for, each behind how far on the next one starts and its length.
void QuotaRequestData(SmbTransaction& t, const Place& in, Cursor& c) {
  constexpr SmbField kFields[] = {{kSmbNumber32, "Next Entry Offset"}, {kSmbNumber32, "SID Length"}};
  for (Loop loop; MoreAt(in, c, loop);) {
    Cursor entry = TakeSmbEntry(c, 16);
    const Place under = Under(in, AddLine(in, Ahead(entry, entry.left), "SID Entry"));
    AddSmbFields(t.message, under, entry, kFields);
    AddSmbSid(under, entry, "SID");
    AddSmbFiller(under, entry);
  }
}

constexpr SmbFunction kFunctions[] = {
    {kCreate, "NT Transact Create", CreateRequest, CreateData, CreateReply, nullptr},
    {kIoctl, "NT Transact IOCTL", nullptr, SmbIoctlRequest, nullptr, SmbIoctlReply},
    {kSetSecurity, "NT Transact Set Security Descriptor", SmbTransactionFields<kSecurityRequest>, SecurityData,
     nullptr,
     nullptr},
    {kNotifyChange, "NT Transact Notify Change", nullptr, nullptr, NotifyReply, nullptr},
    {kRename, "NT Transact Rename", SmbTransactionFields<kRenameRequest>, nullptr, nullptr, nullptr},
    {kQuerySecurity, "NT Transact Query Security Descriptor", SmbTransactionFields<kSecurityRequest>, nullptr,
     SmbTransactionFields<kLengthNeeded>, SecurityData},
    {kQueryQuota, "NT Transact Query Quota", SmbTransactionFields<kQuotaRequest>, QuotaRequestData,
     SmbTransactionFields<kDataLength>, QuotaData},
    {kSetQuota, "NT Transact Set Quota", SmbTransactionFields<kFid>, QuotaData, nullptr, nullptr},
};

}  // namespace

void NtTransRequestWords(SmbBlock& block) {
  AddSmbFields(block, block.words, kRequestFields);
  const Field code = TakeLittleU16(block.words);
  const SmbFunction* function = FindSmbFunction(kFunctions, code.value);
  AddLine(block.in, code, "Function: [%u] = %s", code.value, function ? function->name : kUndefined);
  if (Left(block.words) < 1 || !function) {
    AddSetupData(block);
    return;
  }
  const Place in = Under(block.in, AddLine(block.in, Ahead(block.words, block.words.left), "Setup Data"));
  if (code.value == kIoctl) AddSmbIoctlSetup(*block.message, in, block.words);
  if (code.value == kNotifyChange) AddSmbFields(*block.message, in, block.words, kNotifySetup);
  AddBlock(in, Rest(block.words), "Setup Data");
}

void NtTransRequestData(SmbBlock& block) {
  constexpr int32_t kFunctionAt = 36;
  SmbTransaction t = ReadSmbTransaction(block, kSmbNtRequest);
  t.request.function = SmbByte(block, kFunctionAt) | SmbByte(block, kFunctionAt + 1) << 8;
  if (t.request.function == kIoctl && Left(t.setup) >= 4) t.request.level = ReadLittleU32(t.setup.at);
  AddTransactionBytes(t, FindSmbFunction(kFunctions, t.request.function));
}

void NtTransReplyWords(SmbBlock& block) {
  AddSmbFields(block, block.words, kPartFields);
  AddSmbFields(block, block.words, kSetupCount);
  AddSetupData(block);
}

void NtTransReplyData(SmbBlock& block) {
  SmbTransaction t = ReadSmbTransaction(block, kSmbNtReply);
  AddTransactionBytes(t, t.isKnown ? FindSmbFunction(kFunctions, t.request.function) : nullptr);
}

void NtTransSecondaryWords(SmbBlock& block) {
  AddSmbFields(block, block.words, kPartFields);
  AddSmbFields(block, block.words, kReserved8);
}

void NtTransSecondaryData(SmbBlock& block) {
  SmbTransaction t = ReadSmbTransaction(block, kSmbNtSecondary);
  AddTransactionBytes(t, nullptr);
}

}  // namespace qxview
