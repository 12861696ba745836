// Trans (MS-CIFS 2.2.5): named pipes, mailslots and the remote administration calls. The name in the request tells
// which; the setup words of the first two name the function and the file or the priority.
#include "decoders/smb/smb_commands.h"
#include "decoders/smb/smb_mailslot.h"
#include "decoders/smb/smb_rap.h"
#include "decoders/smb/smb_transaction.h"

namespace qxview {
namespace {

constexpr auto kPipeState = LittleRows<Smb>({Flags(2, "Pipe State", kSmbPipeStateBits)});
constexpr auto kPipeLevel = LittleRows<Smb>({Number(2, "Level")});
constexpr auto kPipeInfo = LittleRows<Smb>({
    Number(2, "Output Buffer Size"), Number(2, "Input Buffer Size"), Number(1, "Maximum Instances"),
    Number(1, "Current Instances"), Number(1, "Pipe Name Length"), SmbText("Pipe Name")});
constexpr auto kPeek = LittleRows<Smb>({
    Number(2, "Read Data Available"), Number(2, "Message Bytes Length"), Flags(2, "Pipe State", kSmbPipeStateBits)});
constexpr auto kWritten = LittleRows<Smb>({Number(2, "Bytes Written")});

constexpr uint32_t kWaitPipe = 0x53, kCallPipe = 0x54;
constexpr SmbFunction kPipeFunctions[] = {
    {0x01, "Set Named Pipe State", SmbTransactionRows<kPipeState>, nullptr, nullptr, nullptr},
    {0x11, "Raw Read Named Pipe", nullptr, nullptr, nullptr, SmbPipePart},
    {0x21, "Query Named Pipe State", nullptr, nullptr, SmbTransactionRows<kPipeState>, nullptr},
    {0x22, "Query Named Pipe Info", SmbTransactionRows<kPipeLevel>, nullptr, nullptr,
     SmbTransactionRows<kPipeInfo>},
    {0x23, "Peek Named Pipe", nullptr, nullptr, SmbTransactionRows<kPeek>, SmbPipePart},
    {0x26, "Transact Named Pipe", nullptr, SmbPipePart, nullptr, SmbPipePart},
    {0x31, "Raw Write Named Pipe", nullptr, SmbPipePart, SmbTransactionRows<kWritten>, nullptr},
    {0x36, "Read Named Pipe", nullptr, nullptr, nullptr, SmbPipePart},
    {0x37, "Write Named Pipe", nullptr, SmbPipePart, SmbTransactionRows<kWritten>, nullptr},
    {kWaitPipe, "Wait Named Pipe", nullptr, nullptr, nullptr, nullptr},
    {kCallPipe, "Call Named Pipe", nullptr, SmbPipePart, nullptr, SmbPipePart},
};

constexpr auto kMailslotFunctions = SortedNames({{1, "Write Mailslot"}});
constexpr auto kMailslotClasses = SortedNames({{1, "Reliable"}, {2, "Unreliable"}});
const char* NameOfFunction(uint32_t code) { return SmbFunctionName(kPipeFunctions, code); }

constexpr auto kMailslotSetup = LittleRows<Smb>({
    Coded(2, "Function", kMailslotFunctions), Number(2, "Priority"), Coded(2, "Class", kMailslotClasses)});
constexpr auto kPipeSetup = LittleRows<Smb>({Coded(2, "Function", NameOfFunction), Hex(2, "FID")});
constexpr auto kPipeNameSetup = LittleRows<Smb>({Coded(2, "Function", NameOfFunction), Number(2, "Priority")});

// Letters in either case; the first backslash may be missing. What follows the prefix, null for another name.
const char* Behind(const char* name, const char* prefix) {
  if (*name == '\\') ++name;
  for (; *prefix; ++name, ++prefix) {
    const char upper = *name >= 'a' && *name <= 'z' ? static_cast<char>(*name - 'a' + 'A') : *name;
    if (upper != *prefix) return nullptr;
  }
  return name;
}
bool IsMailslot(const char* name) { return Behind(name, "MAILSLOT\\") != nullptr; }
bool IsRapPipe(const char* name) {
  const char* behind = Behind(name, "PIPE\\LANMAN");
  return behind && !*behind;
}

// Answers of logon servers go to mailslots like \MAILSLOT\NET\GETDC123.
SmbTransactionPart MailslotPart(const char* name) {
  if (Behind(name, "MAILSLOT\\BROWSE")) return BrowserData;
  if (Behind(name, "MAILSLOT\\LANMAN")) return LanmanData;
  if (Behind(name, "MAILSLOT\\NET\\") || Behind(name, "MAILSLOT\\TEMP\\NETLOGON")) return NetlogonData;
  return nullptr;
}

constexpr uint32_t kMailslot = 0x10000;   // a function of our own: mailslots have no replies

// The name of a request, which stands behind the byte count that follows the words.
SmbString NameOf(const SmbBlock& block) {
  const int32_t behind = block.allWords.offset + block.allWords.left + 2 - block.message->whole.begin;
  Cursor c = SmbCursor(*block.message, static_cast<uint32_t>(behind), 2 * kSmbTextSize);
  return TakeSmbString(*block.message, c);
}

const SmbFunction* PipeFunction(const SmbTransaction& t) {
  return FindSmbFunction(kPipeFunctions, t.request.function);
}

}  // namespace

void TransRequestWords(SmbBlock& block) {
  AddTransactionRequestWords(block);
  SmbTransaction t = ReadSmbTransaction(block, kSmbTransactionRequest);
  if (Left(t.setup) < 2) return;
  const Place in = Under(block.in, AddLine(block.in, Ahead(t.setup, t.setup.left), "Setup Data"));
  const uint32_t function = SmbSetupFunction(t);
  const bool namesPipe = function == kWaitPipe || function == kCallPipe;
  const SmbRowSpan rows = IsMailslot(NameOf(block).text) ? SmbRowSpan(kMailslotSetup)
                          : namesPipe                    ? SmbRowSpan(kPipeNameSetup)
                                                         : SmbRowSpan(kPipeSetup);
  ShowSmbRows(t.message, in, block.words, rows);
  AddBlock(in, Rest(block.words), "Setup Data");
}

void TransRequestData(SmbBlock& block) {
  SmbTransaction t = ReadSmbTransaction(block, kSmbTransactionRequest);
  const SmbString name = NameOf(block);
  AddSmbString(t.message, block.in, block.data, "Name");
  t.request.function = SmbSetupFunction(t);
  if (IsMailslot(name.text)) {
    t.request.function = kMailslot;
    const SmbFunction mailslot = {kMailslot, "Mailslot Write", nullptr, MailslotPart(name.text), nullptr, nullptr};
    AddTransactionBytes(t, &mailslot);
  } else if (IsRapPipe(name.text)) {
    AddRapRequest(t);
  } else {
    AddTransactionBytes(t, PipeFunction(t));
  }
}

void TransReplyData(SmbBlock& block) {
  SmbTransaction t = ReadSmbTransaction(block, kSmbTransactionReply);
  if (t.isKnown && t.request.isRap) {
    AddRapReply(t);
  } else {
    AddTransactionBytes(t, t.isKnown ? PipeFunction(t) : nullptr);
  }
}

}  // namespace qxview
