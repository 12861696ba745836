// Trans2 (MS-CIFS 2.2.6): searches, and the information levels of files and file systems.
#include "decoders/smb/smb_commands.h"
#include "decoders/smb/smb_info_levels.h"
#include "decoders/smb/smb_open_names.h"

namespace qxview {
namespace {

constexpr auto kSearchBits = SortedNames({
    {0x0001, "Close After Request"}, {0x0002, "Close At End Of Search"}, {0x0004, "Return Resume Keys"},
    {0x0008, "Continue From Last"}, {0x0010, "Backup Intent"}});
constexpr auto kStorageTypes = SortedNames({
    {0x00, "Any File"}, {0x01, "Directory File"}, {0x40, "Non-Directory File"}});
constexpr SmbField kOpenFlags[] = {{kSmbFlags16, "Flags", kSmbOpenFlagBits}};
constexpr SmbField kOpenAttributes[] = {
    {kSmbFlags16, "Search Attributes", kSmbSearchBits}, {kSmbFlags16, "File Attributes", kSmbAttributeBits},
    {kSmbTime32, "Creation Time"}};
constexpr SmbField kOpenRest[] = {
    {kSmbNumber32, "Allocation Size"}, {kSmbBytes, "Reserved", {}, 10}, {kSmbText, "File Name"}};
constexpr SmbField kOpened[] = {
    {kSmbHex16, "FID"}, {kSmbFlags16, "File Attributes", kSmbAttributeBits}, {kSmbTime32, "Creation Time"},
    {kSmbNumber32, "File Size"}};
constexpr SmbField kOpenedType[] = {
    {kSmbName16, "File Type", kSmbFileTypeNames}, {kSmbFlags16, "Pipe State", kSmbPipeStateBits}};
constexpr SmbField kOpenedRest[] = {
    {kSmbHex32, "Server FID"}, {kSmbNumber16, "EA Error Offset"}, {kSmbNumber32, "EA Length"}};
constexpr SmbField kFindFirst[] = {
    {kSmbFlags16, "Search Attributes", kSmbSearchBits}, {kSmbNumber16, "Search Count"},
    {kSmbFlags16, "Flags", kSearchBits}};
constexpr SmbField kFindFirstName[] = {{kSmbName32, "Search Storage Type", kStorageTypes}, {kSmbText, "File Name"}};
constexpr SmbField kFindNext[] = {{kSmbHex16, "SID"}, {kSmbNumber16, "Search Count"}};
constexpr SmbField kFindNextName[] = {
    {kSmbNumber32, "Resume Key"}, {kSmbFlags16, "Flags", kSearchBits}, {kSmbText, "File Name"}};
constexpr SmbField kFindNextReply[] = {
    {kSmbNumber16, "Search Count"}, {kSmbNumber16, "End Of Search"}, {kSmbNumber16, "EA Error Offset"},
    {kSmbNumber16, "Last Name Offset"}};
constexpr SmbField kSid[] = {{kSmbHex16, "SID"}};
constexpr SmbField kFid[] = {{kSmbHex16, "FID"}};
constexpr SmbField kEaErrorOffset[] = {{kSmbNumber16, "EA Error Offset"}};
constexpr SmbField kPath[] = {{kSmbNumber32, "Reserved"}, {kSmbText, "File Name"}};
constexpr SmbField kReserved[] = {{kSmbNumber16, "Reserved"}};
constexpr SmbField kDirectory[] = {{kSmbNumber32, "Reserved"}, {kSmbText, "Directory Name"}};
constexpr SmbField kNotifyFirst[] = {
    {kSmbFlags16, "Search Attributes", kSmbSearchBits}, {kSmbNumber16, "Change Count"}};
constexpr SmbField kNotifyPath[] = {{kSmbNumber32, "Reserved"}, {kSmbText, "Path Name"}};
constexpr SmbField kNotifyNext[] = {{kSmbHex16, "Monitor Handle"}, {kSmbNumber16, "Change Count"}};
constexpr SmbField kNotifyFirstReply[] = {
    {kSmbHex16, "Monitor Handle"}, {kSmbNumber16, "Change Count"}, {kSmbNumber16, "EA Error Offset"}};
constexpr SmbField kNotifyNextReply[] = {{kSmbNumber16, "Change Count"}, {kSmbNumber16, "EA Error Offset"}};
constexpr SmbField kIoctl[] = {{kSmbHex16, "FID"}, {kSmbHex16, "Category"}, {kSmbHex16, "Function"}};
constexpr SmbField kDfsRequest[] = {{kSmbNumber16, "Max Referral Level"}, {kSmbText, "Request File Name"}};
constexpr SmbField kDfsName[] = {{kSmbText, "Request File Name"}};

constexpr uint32_t kEasFromList = 3;

void AddEas(SmbTransaction& t, const Place& in, Cursor& c) { AddSmbEaList(t.message, in, c); }

void OpenRequest(SmbTransaction& t, const Place& in, Cursor& c) {
  AddSmbFields(t.message, in, c, kOpenFlags);
  AddSmbBits(in, c, "Access Mode", kSmbAccessModeBits);
  AddSmbFields(t.message, in, c, kOpenAttributes);
  AddSmbBits(in, c, "Open Function", kSmbOpenFunctionBits);
  AddSmbFields(t.message, in, c, kOpenRest);
}

void OpenReply(SmbTransaction& t, const Place& in, Cursor& c) {
  AddSmbFields(t.message, in, c, kOpened);
  AddSmbBits(in, c, "Access Mode", kSmbAccessModeBits);
  AddSmbFields(t.message, in, c, kOpenedType);
  AddSmbBits(in, c, "Open Results", kSmbOpenResultBits);
  AddSmbFields(t.message, in, c, kOpenedRest);
}

// --- searches ---

void FindFirstRequest(SmbTransaction& t, const Place& in, Cursor& c) {
  t.request.flags = AddSmbFields(t.message, in, c, kFindFirst);
  t.request.level = AddSmbFindLevelLine(in, c);
  AddSmbFields(t.message, in, c, kFindFirstName);
}

void FindNextRequest(SmbTransaction& t, const Place& in, Cursor& c) {
  AddSmbFields(t.message, in, c, kFindNext);
  t.request.level = AddSmbFindLevelLine(in, c);
  t.request.flags = Left(c) >= 6 ? ReadLittleU16(c.at + 4) : 0;
  AddSmbFields(t.message, in, c, kFindNextName);
}

void FindRequestData(SmbTransaction& t, const Place& in, Cursor& c) {
  if (t.request.level == kEasFromList) AddSmbEaNames(t.message, in, c);
}

void FindFirstReply(SmbTransaction& t, const Place& in, Cursor& c) {
  AddSmbFields(t.message, in, c, kSid);
  AddSmbFields(t.message, in, c, kFindNextReply);
}

void FindReplyData(SmbTransaction& t, const Place& in, Cursor& c) {
  AddSmbFindEntries(t.message, in, c, t.request.level, t.request.flags);
}

// --- information levels ---

void QueryFsRequest(SmbTransaction& t, const Place& in, Cursor& c) {
  t.request.level = AddSmbLevelLine(in, c, kSmbQueryFsLevels);
}
void QueryFsReply(SmbTransaction& t, const Place& in, Cursor& c) {
  AddSmbLevel(t.message, in, c, kSmbQueryFsLevels, t.request.level);
}
void SetFsRequest(SmbTransaction& t, const Place& in, Cursor& c) {
  AddSmbFields(t.message, in, c, kFid);
  t.request.level = AddSmbLevelLine(in, c, kSmbSetFsLevels);
}
void SetFsData(SmbTransaction& t, const Place& in, Cursor& c) {
  AddSmbLevel(t.message, in, c, kSmbSetFsLevels, t.request.level);
}

void QueryPathRequest(SmbTransaction& t, const Place& in, Cursor& c) {
  t.request.level = AddSmbLevelLine(in, c, kSmbQueryFileLevels);
  AddSmbFields(t.message, in, c, kPath);
}
void QueryFileRequest(SmbTransaction& t, const Place& in, Cursor& c) {
  AddSmbFields(t.message, in, c, kFid);
  t.request.level = AddSmbLevelLine(in, c, kSmbQueryFileLevels);
}
void QueryRequestData(SmbTransaction& t, const Place& in, Cursor& c) {
  constexpr uint32_t kPosixLock = 0x208;
  if (t.request.level == kEasFromList) AddSmbEaNames(t.message, in, c);
  if (t.request.level == kPosixLock) AddSmbLevel(t.message, in, c, kSmbQueryFileLevels, kPosixLock);
}
void QueryReplyData(SmbTransaction& t, const Place& in, Cursor& c) {
  AddSmbLevel(t.message, in, c, kSmbQueryFileLevels, t.request.level);
}

void SetPathRequest(SmbTransaction& t, const Place& in, Cursor& c) {
  t.request.level = AddSmbLevelLine(in, c, kSmbSetFileLevels);
  AddSmbFields(t.message, in, c, kPath);
}
void SetFileRequest(SmbTransaction& t, const Place& in, Cursor& c) {
  AddSmbFields(t.message, in, c, kFid);
  t.request.level = AddSmbLevelLine(in, c, kSmbSetFileLevels);
  AddSmbFields(t.message, in, c, kReserved);
}
void SetData(SmbTransaction& t, const Place& in, Cursor& c) {
  AddSmbLevel(t.message, in, c, kSmbSetFileLevels, t.request.level);
}
void SetReplyData(SmbTransaction& t, const Place& in, Cursor& c) {
  constexpr uint32_t kPosixOpen = 0x209;
  if (t.request.level == kPosixOpen) AddSmbPosixOpenReply(t.message, in, c, 0);
}

void NotifyFirstRequest(SmbTransaction& t, const Place& in, Cursor& c) {
  AddSmbFields(t.message, in, c, kNotifyFirst);
  t.request.level = AddSmbFindLevelLine(in, c);
  AddSmbFields(t.message, in, c, kNotifyPath);
}

constexpr SmbFunction kFunctions[] = {
    {0x00, "Open2", OpenRequest, AddEas, OpenReply, nullptr},
    {0x01, "Find First2", FindFirstRequest, FindRequestData, FindFirstReply, FindReplyData},
    {0x02, "Find Next2", FindNextRequest, FindRequestData, SmbTransactionFields<kFindNextReply>, FindReplyData},
    {0x03, "Query FS Information", QueryFsRequest, nullptr, nullptr, QueryFsReply},
    {0x04, "Set FS Information", SetFsRequest, SetFsData, nullptr, nullptr},
    {0x05, "Query Path Information", QueryPathRequest, QueryRequestData, SmbTransactionFields<kEaErrorOffset>,
     QueryReplyData},
    {0x06, "Set Path Information", SetPathRequest, SetData, SmbTransactionFields<kEaErrorOffset>, SetReplyData},
    {0x07, "Query File Information", QueryFileRequest, QueryRequestData, SmbTransactionFields<kEaErrorOffset>,
     QueryReplyData},
    {0x08, "Set File Information", SetFileRequest, SetData, SmbTransactionFields<kEaErrorOffset>, SetReplyData},
    {0x09, "FSCTL", SmbTransactionFields<kIoctl>, nullptr, nullptr, nullptr},
    {0x0A, "IOCTL2", SmbTransactionFields<kIoctl>, nullptr, nullptr, nullptr},
    {0x0B, "Find Notify First", NotifyFirstRequest, nullptr, SmbTransactionFields<kNotifyFirstReply>, nullptr},
    {0x0C, "Find Notify Next", SmbTransactionFields<kNotifyNext>, nullptr, SmbTransactionFields<kNotifyNextReply>,
     nullptr},
    {0x0D, "Create Directory", SmbTransactionFields<kDirectory>, AddEas, SmbTransactionFields<kEaErrorOffset>,
     nullptr},
    {0x0E, "Session Setup", nullptr, nullptr, nullptr, nullptr},
    {0x10, "Get DFS Referral", SmbTransactionFields<kDfsRequest>, nullptr, nullptr, AddSmbDfsReferrals},
    {0x11, "Report DFS Inconsistency", SmbTransactionFields<kDfsName>, AddSmbDfsReferral, nullptr, nullptr},
};

uint32_t FunctionOf(SmbTransaction& t) { return Left(t.setup) >= 2 ? ReadLittleU16(t.setup.at) : UINT32_MAX; }

}  // namespace

void Trans2RequestWords(SmbBlock& block) {
  AddTransactionRequestWords(block);
  SmbTransaction t = ReadSmbTransaction(block, kSmbTransactionRequest);
  if (Left(t.setup) < 2) return;
  const SmbFunction* function = FindSmbFunction(kFunctions, FunctionOf(t));
  const Place in = Under(block.in, AddLine(block.in, Ahead(t.setup, t.setup.left), "Setup Data"));
  const Field code = TakeLittleU16(block.words);
  AddLine(in, code, "Subcommand: [%u] = %s", code.value, function ? function->name : kUndefined);
  AddBlock(in, Rest(block.words), "Setup Data");
}

void Trans2RequestData(SmbBlock& block) {
  SmbTransaction t = ReadSmbTransaction(block, kSmbTransactionRequest);
  t.request.function = FunctionOf(t);
  // A name of one byte, whatever the message's characters are; nothing uses it.
  const int64_t ahead = static_cast<int64_t>(t.parameterOffset) - SmbOffset(t.message, block.data);
  if (ahead > 0 && Left(block.data) > 0 && block.data.at[0] == 0) {
    const Field name = TakeBytes(block.data, 1);
    AddLine(block.in, name, "Name: <null string>");
  }
  AddTransactionBytes(t, FindSmbFunction(kFunctions, t.request.function));
}

void Trans2ReplyData(SmbBlock& block) {
  SmbTransaction t = ReadSmbTransaction(block, kSmbTransactionReply);
  AddTransactionBytes(t, t.isKnown ? FindSmbFunction(kFunctions, t.request.function) : nullptr);
}

void TransactionSecondaryData(SmbBlock& block) {
  SmbTransaction t = ReadSmbTransaction(block, kSmbTransactionSecondary);
  AddTransactionBytes(t, nullptr);
}

}  // namespace qxview
