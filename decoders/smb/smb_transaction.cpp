// What all transactions share: their words, and where their parameter and data bytes stand.
#include "decoders/smb/smb_transaction.h"

#include "decoders/smb/smb_commands.h"
#include "decoders/smb/smb_pipe.h"

namespace qxview {
namespace {

constexpr int32_t kFillerSize = 7;

constexpr auto kTransactionFlags = SortedNames({{0x0001, "Disconnect TID"}, {0x0002, "No Response"}});

constexpr auto kRequestFields = LittleRows<Smb>({
    Number(2, "Total Parameter Count"), Number(2, "Total Data Count"), Number(2, "Max Parameter Count"),
    Number(2, "Max Data Count"), Number(1, "Max Setup Count"), Number(1, "Reserved"),
    Flags(2, "Flags", kTransactionFlags), Number(4, "Timeout"), Number(2, "Reserved"), Number(2, "Parameter Count"),
    Number(2, "Parameter Offset"), Number(2, "Data Count"), Number(2, "Data Offset"), Number(1, "Setup Count"),
    Number(1, "Reserved")});

constexpr auto kReplyFields = LittleRows<Smb>({
    Number(2, "Total Parameter Count"), Number(2, "Total Data Count"), Number(2, "Reserved"),
    Number(2, "Parameter Count"), Number(2, "Parameter Offset"), Number(2, "Parameter Displacement"),
    Number(2, "Data Count"), Number(2, "Data Offset"), Number(2, "Data Displacement"), Number(1, "Setup Count"),
    Number(1, "Reserved")});

constexpr auto kSecondaryFields = LittleRows<Smb>({
    Number(2, "Total Parameter Count"), Number(2, "Total Data Count"), Number(2, "Parameter Count"),
    Number(2, "Parameter Offset"), Number(2, "Parameter Displacement"), Number(2, "Data Count"),
    Number(2, "Data Offset"), Number(2, "Data Displacement"), Hex(2, "FID")});

uint32_t NumberAt(const SmbBlock& block, int32_t offset, int32_t width) {
  return width == 2 ? PeekLittleU16(block.allWords, offset) : PeekLittleU32(block.allWords, offset);
}

// The bytes at a stated place: empty when it is not in the rest of the block's bytes.
Cursor TakePiece(SmbTransaction& t, const Place& in, uint32_t offset, uint32_t count, const char* pad) {
  Cursor& bytes = t.block.data;
  const int64_t ahead = static_cast<int64_t>(offset) - SmbOffset(t.message, bytes);
  if (count == 0 || ahead < 0 || ahead > Left(bytes)) return TakeCursor(bytes, 0);
  AddSmbPadTo(t.message, in, bytes, offset, pad);
  return TakeCursor(bytes, count);
}

void AddPiece(SmbTransaction& t, const Place& in, Cursor& c, SmbTransactionPart part, const char* title) {
  if (Left(c) < 1) return;
  if (!part) {
    AddBlock(in, Rest(c), title);
    return;
  }
  if (part == SmbPipePart) {
    part(t, in, c);
    return;
  }
  const Place under = Under(in, AddSmbTitle(in, Ahead(c, c.left), title));
  part(t, under, c);
  AddBlock(under, Rest(c), title);
}

}  // namespace

const SmbTransactionForm kSmbTransactionRequest = {2, 18, -1, 22, -1, 26, 28};
const SmbTransactionForm kSmbTransactionReply = {2, 6, 10, 12, 16, 18, 20};
const SmbTransactionForm kSmbTransactionSecondary = {2, 4, 8, 10, 14, -1, -1};
const SmbTransactionForm kSmbNtRequest = {4, 19, -1, 27, -1, 35, 38};
const SmbTransactionForm kSmbNtReply = {4, 11, 19, 23, 31, 35, 36};
const SmbTransactionForm kSmbNtSecondary = {4, 11, 19, 23, 31, -1, -1};

const SmbFunction* FindSmbFunction(std::span<const SmbFunction> functions, uint32_t code) {
  for (const SmbFunction& function : functions) {
    if (function.code == code) return &function;
  }
  return nullptr;
}

SmbTransaction ReadSmbTransaction(SmbBlock& block, const SmbTransactionForm& form) {
  SmbTransaction t{block, *block.message, {}, false, 0, 0, 0, 0, 0, 0, {}};
  t.parameterCount = NumberAt(block, form.parameters, form.width);
  t.parameterOffset = NumberAt(block, form.parameters + form.width, form.width);
  t.parameterDisplacement = NumberAt(block, form.parameterDisplacement, form.width);
  t.dataCount = NumberAt(block, form.data, form.width);
  t.dataOffset = NumberAt(block, form.data + form.width, form.width);
  t.dataDisplacement = NumberAt(block, form.dataDisplacement, form.width);
  if (form.setup >= 0) {
    Cursor words = block.allWords;
    TakeCursor(words, form.setup);
    t.setup = TakeCursor(words, 2 * PeekU8(block.allWords, form.setupCount));
  }
  t.isKnown = t.message.isResponse && FindSmbRequest(block.in, t.message, &t.request);
  return t;
}

void AddTransactionRequestWords(SmbBlock& block) { ShowSmbRows(block, block.words, kRequestFields); }

void TransactionReplyWords(SmbBlock& block) {
  ShowSmbRows(block, block.words, kReplyFields);
  AddSetupData(block);
}

void TransactionSecondaryWords(SmbBlock& block) { ShowSmbRows(block, block.words, kSecondaryFields); }

void AddSetupData(SmbBlock& block) { AddBlock(block.in, Rest(block.words), "Setup Data"); }

void AddTransactionBytes(SmbTransaction& t, const SmbFunction* function) {
  Cursor& bytes = t.block.data;
  const bool isReply = t.message.isResponse;
  Place in = t.block.in;
  if (function && Left(bytes) > 0) {
    in = Under(in, AddLine(in, Ahead(bytes, Left(bytes)), "%s %s", function->name, isReply ? "Reply" : "Request"));
  }
  const bool dataFirst = t.dataCount > 0 && t.dataOffset < t.parameterOffset;
  Cursor data{}, parameters;
  if (dataFirst) data = TakePiece(t, in, t.dataOffset, t.dataCount, "Pad");
  parameters = TakePiece(t, in, t.parameterOffset, t.parameterCount, dataFirst ? "Pad1" : "Pad");

  SmbTransactionPart parameterPart = nullptr, dataPart = nullptr;
  if (function && t.parameterDisplacement == 0) {
    parameterPart = isReply ? function->replyParameters : function->requestParameters;
  }
  if (function && t.dataDisplacement == 0) dataPart = isReply ? function->replyData : function->requestData;
  AddPiece(t, in, parameters, parameterPart, "Parameter Bytes");
  if (!isReply) LearnSmbRequest(in, t.message, t.request);
  if (!dataFirst) data = TakePiece(t, in, t.dataOffset, t.dataCount, "Pad1");
  AddPiece(t, in, data, dataPart, "Data Bytes");
  if (Left(bytes) <= kFillerSize) AddSmbFiller(in, bytes, "Pad1");
}

void SmbPipePart(SmbTransaction&, const Place& in, Cursor& c) { AddSmbPipeData(in, c, "Data Bytes"); }

void AddSmbFiller(const Place& in, Cursor& c, const char* label) {
  const Field rest = Rest(c);
  if (rest.length > kFillerSize) {
    AddBlock(in, rest, label);
  } else {
    AddLine(in, rest, "%s: %s", label, HexText(rest));
  }
}

Cursor TakeSmbEntry(Cursor& list, int32_t smallest) {
  const uint32_t next = PeekLittleU32(list);
  const bool goesOn = next >= static_cast<uint32_t>(smallest) && next < static_cast<uint32_t>(list.left);
  return TakeCursor(list, goesOn ? static_cast<int32_t>(next) : list.left);
}

void AddSmbEntries(const SmbMessage& message, const Place& in, Cursor& c, const char* title, SmbRowSpan rows,
                   int32_t smallest) {
  for (Loop loop; MoreAt(in, c, loop);) {
    Cursor entry = TakeSmbEntry(c, smallest);
    const Place under = Under(in, AddSmbTitle(in, Ahead(entry, entry.left), title));
    ShowSmbRows(message, under, entry, rows);
    AddSmbFiller(under, entry);
  }
}

}  // namespace qxview
