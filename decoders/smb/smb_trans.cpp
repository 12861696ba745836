// Trans (MS-CIFS 2.2.5): named pipes, mailslots and the remote administration calls. The name in the request tells
// which; the setup words of the first two name the function and the file or the priority.
#include "decoders/smb/smb_commands.h"
#include "decoders/smb/smb_mailslot.h"
#include "decoders/smb/smb_rap.h"
#include "decoders/smb/smb_transaction.h"

namespace qxview {
namespace {

constexpr SmbField kPipeState[] = {{kSmbFlags16, "Pipe State", kSmbPipeStateBits}};
constexpr SmbField kPipeLevel[] = {{kSmbNumber16, "Level"}};
constexpr SmbField kPipeInfo[] = {
    {kSmbNumber16, "Output Buffer Size"}, {kSmbNumber16, "Input Buffer Size"}, {kSmbNumber8, "Maximum Instances"},
    {kSmbNumber8, "Current Instances"}, {kSmbNumber8, "Pipe Name Length"}, {kSmbText, "Pipe Name"}};
constexpr SmbField kPeek[] = {
    {kSmbNumber16, "Read Data Available"}, {kSmbNumber16, "Message Bytes Length"},
    {kSmbFlags16, "Pipe State", kSmbPipeStateBits}};
constexpr SmbField kWritten[] = {{kSmbNumber16, "Bytes Written"}};

constexpr uint32_t kWaitPipe = 0x53, kCallPipe = 0x54;
constexpr SmbFunction kPipeFunctions[] = {
    {0x01, "Set Named Pipe State", SmbTransactionFields<kPipeState>, nullptr, nullptr, nullptr},
    {0x11, "Raw Read Named Pipe", nullptr, nullptr, nullptr, SmbPipePart},
    {0x21, "Query Named Pipe State", nullptr, nullptr, SmbTransactionFields<kPipeState>, nullptr},
    {0x22, "Query Named Pipe Info", SmbTransactionFields<kPipeLevel>, nullptr, nullptr,
     SmbTransactionFields<kPipeInfo>},
    {0x23, "Peek Named Pipe", nullptr, nullptr, SmbTransactionFields<kPeek>, SmbPipePart},
    {0x26, "Transact Named Pipe", nullptr, SmbPipePart, nullptr, SmbPipePart},
    {0x31, "Raw Write Named Pipe", nullptr, SmbPipePart, SmbTransactionFields<kWritten>, nullptr},
    {0x36, "Read Named Pipe", nullptr, nullptr, nullptr, SmbPipePart},
    {0x37, "Write Named Pipe", nullptr, SmbPipePart, SmbTransactionFields<kWritten>, nullptr},
    {kWaitPipe, "Wait Named Pipe", nullptr, nullptr, nullptr, nullptr},
    {kCallPipe, "Call Named Pipe", nullptr, SmbPipePart, nullptr, SmbPipePart},
};

constexpr auto kMailslotFunctions = SortedNames({{1, "Write Mailslot"}});
constexpr auto kMailslotClasses = SortedNames({{1, "Reliable"}, {2, "Unreliable"}});
constexpr SmbField kMailslotSetup[] = {
    {kSmbName16, "Function", kMailslotFunctions}, {kSmbNumber16, "Priority"},
    {kSmbName16, "Class", kMailslotClasses}};
constexpr SmbField kPipeFid[] = {{kSmbHex16, "FID"}};
constexpr SmbField kPipePriority[] = {{kSmbNumber16, "Priority"}};

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
  const int32_t behind = block.allWords.offset + block.allWords.length + 2 - block.message->whole.begin;
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
  if (IsMailslot(NameOf(block).text)) {
    AddSmbFields(t.message, in, block.words, kMailslotSetup);
  } else {
    const Field code = TakeLittleU16(block.words);
    const SmbFunction* function = FindSmbFunction(kPipeFunctions, code.value);
    AddLine(in, code, "Function: [%u] = %s", code.value, function ? function->name : kUndefined);
    const bool hasFid = code.value != kWaitPipe && code.value != kCallPipe;
    AddSmbFields(t.message, in, block.words, hasFid ? std::span<const SmbField>(kPipeFid) : kPipePriority);
  }
  AddBlock(in, Rest(block.words), "Setup Data");
}

void TransRequestData(SmbBlock& block) {
  SmbTransaction t = ReadSmbTransaction(block, kSmbTransactionRequest);
  const SmbString name = NameOf(block);
  AddSmbString(t.message, block.in, block.data, "Name");
  t.request.function = Left(t.setup) >= 2 ? ReadLittleU16(t.setup.at) : UINT32_MAX;
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
