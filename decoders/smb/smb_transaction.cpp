// What all transactions share: their words, and where their parameter and data bytes stand.
#include "decoders/smb/smb_transaction.h"

#include "decoders/smb/smb_commands.h"
#include "decoders/smb/smb_pipe.h"

namespace qxview {
namespace {

constexpr int32_t kFillerSize = 7;

constexpr auto kTransactionFlags = SortedNames({{0x0001, "Disconnect TID"}, {0x0002, "No Response"}});

constexpr SmbField kRequestFields[] = {
    {kSmbNumber16, "Total Parameter Count"}, {kSmbNumber16, "Total Data Count"}, {kSmbNumber16, "Max Parameter Count"},
    {kSmbNumber16, "Max Data Count"}, {kSmbNumber8, "Max Setup Count"}, {kSmbNumber8, "Reserved"},
    {kSmbFlags16, "Flags", kTransactionFlags}, {kSmbNumber32, "Timeout"}, {kSmbNumber16, "Reserved"},
    {kSmbNumber16, "Parameter Count"}, {kSmbNumber16, "Parameter Offset"}, {kSmbNumber16, "Data Count"},
    {kSmbNumber16, "Data Offset"}, {kSmbNumber8, "Setup Count"}, {kSmbNumber8, "Reserved"}};

constexpr SmbField kReplyFields[] = {
    {kSmbNumber16, "Total Parameter Count"}, {kSmbNumber16, "Total Data Count"}, {kSmbNumber16, "Reserved"},
    {kSmbNumber16, "Parameter Count"}, {kSmbNumber16, "Parameter Offset"}, {kSmbNumber16, "Parameter Displacement"},
    {kSmbNumber16, "Data Count"}, {kSmbNumber16, "Data Offset"}, {kSmbNumber16, "Data Displacement"},
    {kSmbNumber8, "Setup Count"}, {kSmbNumber8, "Reserved"}};

constexpr SmbField kSecondaryFields[] = {
    {kSmbNumber16, "Total Parameter Count"}, {kSmbNumber16, "Total Data Count"}, {kSmbNumber16, "Parameter Count"},
    {kSmbNumber16, "Parameter Offset"}, {kSmbNumber16, "Parameter Displacement"}, {kSmbNumber16, "Data Count"},
    {kSmbNumber16, "Data Offset"}, {kSmbNumber16, "Data Displacement"}, {kSmbHex16, "FID"}};

uint32_t NumberAt(const SmbBlock& block, int32_t offset, int32_t width) {
  if (offset < 0) return 0;
  uint32_t number = 0;
  for (int32_t i = 0; i < width; ++i) number |= SmbByte(block, offset + i) << (8 * i);
  return number;
}

// The bytes at a stated place: empty when it is not in the rest of the block's bytes.
Cursor TakePiece(SmbTransaction& t, const Place& in, uint32_t offset, uint32_t count, const char* pad) {
  Cursor& bytes = t.block.data;
  const int64_t ahead = static_cast<int64_t>(offset) - SmbOffset(t.message, bytes);
  if (count == 0 || ahead < 0 || ahead > Left(bytes)) return MakeCursor(bytes.at, bytes.offset, 0);
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
  const Place under = Under(in, AddLine(in, Ahead(c, c.left), "%s", title));
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
  if (form.setup >= 0 && block.allWords.length > form.setup) {
    t.setup = CursorOver(Slice(block.allWords, form.setup, block.allWords.length - form.setup));
    t.setup = TakeCursor(t.setup, 2 * SmbByte(block, form.setupCount));
  }
  t.isKnown = t.message.isResponse && FindSmbRequest(block.in, t.message, &t.request);
  return t;
}

void AddTransactionRequestWords(SmbBlock& block) { AddSmbFields(block, block.words, kRequestFields); }

void TransactionReplyWords(SmbBlock& block) {
  AddSmbFields(block, block.words, kReplyFields);
  AddSetupData(block);
}

void TransactionSecondaryWords(SmbBlock& block) { AddSmbFields(block, block.words, kSecondaryFields); }

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
  if (Left(list) < 4) return TakeCursor(list, Left(list));
  const uint32_t next = ReadLittleU32(list.at);
  const bool goesOn = next >= static_cast<uint32_t>(smallest) && next < static_cast<uint32_t>(list.left);
  return TakeCursor(list, goesOn ? static_cast<int32_t>(next) : list.left);
}

}  // namespace qxview
