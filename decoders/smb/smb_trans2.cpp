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

constexpr auto kOpen = LittleRows<Smb>({
    Flags(2, "Flags", kSmbOpenFlagBits), SmbTable<kSmbAccessMode>(), Flags(2, "Search Attributes", kSmbSearchBits),
    Flags(2, "File Attributes", kSmbAttributeBits), UnixTime(4, "Creation Time"), SmbTable<kSmbOpenFunction>(),
    Number(4, "Allocation Size"), Bytes(10, "Reserved"), SmbText("File Name")});
constexpr auto kOpened = LittleRows<Smb>({
    Hex(2, "FID"), Flags(2, "File Attributes", kSmbAttributeBits), UnixTime(4, "Creation Time"), Number(4, "File Size"),
    SmbTable<kSmbAccessMode>(), Coded(2, "File Type", kSmbFileTypeNames), Flags(2, "Pipe State", kSmbPipeStateBits),
    SmbTable<kSmbOpenResults>(), Hex(4, "Server FID"), Number(2, "EA Error Offset"), Number(4, "EA Length")});

constexpr auto kFindFirst = LittleRows<Smb>({
    Flags(2, "Search Attributes", kSmbSearchBits), Number(2, "Search Count"),
    Flags(2, "Flags", kSearchBits).Into(&Smb::flags), SmbLevelOf<kSmbFindLevels>(),
    Coded(4, "Search Storage Type", kStorageTypes), SmbText("File Name")});
constexpr auto kFindNext = LittleRows<Smb>({
    Hex(2, "SID"), Number(2, "Search Count"), SmbLevelOf<kSmbFindLevels>(), Number(4, "Resume Key"),
    Flags(2, "Flags", kSearchBits).Into(&Smb::flags), SmbText("File Name")});
constexpr auto kFound = LittleRows<Smb>({
    Number(2, "Search Count"), Number(2, "End Of Search"), Number(2, "EA Error Offset"),
    Number(2, "Last Name Offset")});
constexpr auto kFoundFirst = LittleRows<Smb>({Hex(2, "SID"), SmbTable<kFound>()});

constexpr auto kQueryFs = LittleRows<Smb>({SmbLevelOf<kSmbQueryFsLevels>()});
constexpr auto kSetFs = LittleRows<Smb>({Hex(2, "FID"), SmbLevelOf<kSmbSetFsLevels>()});
constexpr auto kQueryPath = LittleRows<Smb>({
    SmbLevelOf<kSmbQueryFileLevels>(), Number(4, "Reserved"), SmbText("File Name")});
constexpr auto kQueryFile = LittleRows<Smb>({Hex(2, "FID"), SmbLevelOf<kSmbQueryFileLevels>()});
constexpr auto kSetPath = LittleRows<Smb>({
    SmbLevelOf<kSmbSetFileLevels>(), Number(4, "Reserved"), SmbText("File Name")});
constexpr auto kSetFile = LittleRows<Smb>({Hex(2, "FID"), SmbLevelOf<kSmbSetFileLevels>(), Number(2, "Reserved")});
constexpr auto kEaErrorOffset = LittleRows<Smb>({Number(2, "EA Error Offset")});

constexpr auto kDirectory = LittleRows<Smb>({Number(4, "Reserved"), SmbText("Directory Name")});
constexpr auto kNotifyFirst = LittleRows<Smb>({
    Flags(2, "Search Attributes", kSmbSearchBits), Number(2, "Change Count"), SmbLevelOf<kSmbFindLevels>(),
    Number(4, "Reserved"), SmbText("Path Name")});
constexpr auto kNotifyNext = LittleRows<Smb>({Hex(2, "Monitor Handle"), Number(2, "Change Count")});
constexpr auto kNotifyReply = LittleRows<Smb>({Number(2, "Change Count"), Number(2, "EA Error Offset")});
constexpr auto kNotifyFirstReply = LittleRows<Smb>({Hex(2, "Monitor Handle"), SmbTable<kNotifyReply>()});
constexpr auto kIoctl = LittleRows<Smb>({Hex(2, "FID"), Hex(2, "Category"), Hex(2, "Function")});
constexpr auto kDfsRequest = LittleRows<Smb>({Number(2, "Max Referral Level"), SmbText("Request File Name")});
constexpr auto kDfsName = LittleRows<Smb>({SmbText("Request File Name")});

constexpr uint32_t kEasFromList = 3, kPosixLock = 0x208, kPosixOpen = 0x209;

void FindRequestData(SmbTransaction& t, const Place& in, Cursor& c) {
  if (t.request.level == kEasFromList) AddSmbEaNames(t.message, in, c);
}
void FindReplyData(SmbTransaction& t, const Place& in, Cursor& c) {
  ShowSmbChoice(t.message, in, c, kSmbFindLevels, t.request.level, t.request.flags);
}

template <const SmbChoices& kLevels>
void LevelData(SmbTransaction& t, const Place& in, Cursor& c) {
  ShowSmbChoice(t.message, in, c, kLevels, t.request.level);
}
void QueryRequestData(SmbTransaction& t, const Place& in, Cursor& c) {
  if (t.request.level == kEasFromList) AddSmbEaNames(t.message, in, c);
  if (t.request.level == kPosixLock) ShowSmbChoice(t.message, in, c, kSmbQueryFileLevels, kPosixLock);
}
void SetReplyData(SmbTransaction& t, const Place& in, Cursor& c) {
  if (t.request.level == kPosixOpen) AddSmbPosixOpenReply(t.message, in, c);
}

constexpr SmbFunction kFunctions[] = {
    {0x00, "Open2", SmbTransactionRows<kOpen>, SmbTransactionRows<kSmbEaList>, SmbTransactionRows<kOpened>, nullptr},
    {0x01, "Find First2", SmbRequestRows<kFindFirst>, FindRequestData, SmbTransactionRows<kFoundFirst>, FindReplyData},
    {0x02, "Find Next2", SmbRequestRows<kFindNext>, FindRequestData, SmbTransactionRows<kFound>, FindReplyData},
    {0x03, "Query FS Information", SmbRequestRows<kQueryFs>, nullptr, nullptr, LevelData<kSmbQueryFsLevels>},
    {0x04, "Set FS Information", SmbRequestRows<kSetFs>, LevelData<kSmbSetFsLevels>, nullptr, nullptr},
    {0x05, "Query Path Information", SmbRequestRows<kQueryPath>, QueryRequestData, SmbTransactionRows<kEaErrorOffset>,
     LevelData<kSmbQueryFileLevels>},
    {0x06, "Set Path Information", SmbRequestRows<kSetPath>, LevelData<kSmbSetFileLevels>,
     SmbTransactionRows<kEaErrorOffset>, SetReplyData},
    {0x07, "Query File Information", SmbRequestRows<kQueryFile>, QueryRequestData, SmbTransactionRows<kEaErrorOffset>,
     LevelData<kSmbQueryFileLevels>},
    {0x08, "Set File Information", SmbRequestRows<kSetFile>, LevelData<kSmbSetFileLevels>,
     SmbTransactionRows<kEaErrorOffset>, SetReplyData},
    {0x09, "FSCTL", SmbTransactionRows<kIoctl>, nullptr, nullptr, nullptr},
    {0x0A, "IOCTL2", SmbTransactionRows<kIoctl>, nullptr, nullptr, nullptr},
    {0x0B, "Find Notify First", SmbRequestRows<kNotifyFirst>, nullptr, SmbTransactionRows<kNotifyFirstReply>, nullptr},
    {0x0C, "Find Notify Next", SmbTransactionRows<kNotifyNext>, nullptr, SmbTransactionRows<kNotifyReply>, nullptr},
    {0x0D, "Create Directory", SmbTransactionRows<kDirectory>, SmbTransactionRows<kSmbEaList>,
     SmbTransactionRows<kEaErrorOffset>, nullptr},
    {0x0E, "Session Setup", nullptr, nullptr, nullptr, nullptr},
    {0x10, "Get DFS Referral", SmbTransactionRows<kDfsRequest>, nullptr, nullptr, AddSmbDfsReferrals},
    {0x11, "Report DFS Inconsistency", SmbTransactionRows<kDfsName>, AddSmbDfsReferral, nullptr, nullptr},
};

const char* NameOfFunction(uint32_t code) { return SmbFunctionName(kFunctions, code); }
constexpr auto kSetup = LittleRows<Smb>({Coded(2, "Subcommand", NameOfFunction)});

}  // namespace

void Trans2RequestWords(SmbBlock& block) {
  AddTransactionRequestWords(block);
  SmbTransaction t = ReadSmbTransaction(block, kSmbTransactionRequest);
  if (Left(t.setup) < 2) return;
  const Place in = Under(block.in, AddLine(block.in, Ahead(t.setup, t.setup.left), "Setup Data"));
  ShowSmbRows(t.message, in, block.words, kSetup);
  AddBlock(in, Rest(block.words), "Setup Data");
}

void Trans2RequestData(SmbBlock& block) {
  SmbTransaction t = ReadSmbTransaction(block, kSmbTransactionRequest);
  t.request.function = SmbSetupFunction(t);
  // A name of one byte, whatever the message's characters are; nothing uses it.
  const int64_t ahead = static_cast<int64_t>(t.parameterOffset) - SmbOffset(t.message, block.data);
  if (ahead > 0 && Left(block.data) > 0 && PeekU8(block.data) == 0) {
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
