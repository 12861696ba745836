// Transactions (MS-CIFS 2.2.4.33 to 2.2.4.36, 2.2.4.46, 2.2.4.47, 2.2.4.62, 2.2.4.63): three families of commands whose
// blocks look alike. The words say where parameter bytes and data bytes stand; setup words name the function.
//
//   words   counts, offsets and displacements of parameter and data bytes   setup count   setup words
//   bytes   name (of requests)   Pad   parameter bytes   Pad1   data bytes
//
// What a message has no room for goes on in secondary ones, whose bytes have a displacement. Fields are read from the
// part that starts a transaction; the parts behind it are dumps.
#pragma once
#include "decoders/smb/smb_requests.h"

namespace qxview {

struct SmbTransaction {
  SmbBlock& block;
  const SmbMessage& message;
  SmbRequest request;   // of a reply what was learnt, of a request what it says so far
  bool isKnown;         // the request of a reply was seen
  uint32_t parameterCount, parameterOffset, parameterDisplacement;
  uint32_t dataCount, dataOffset, dataDisplacement;
  Cursor setup;
};

// Takes the fields of parameter or data bytes; what is left of the cursor is shown as a dump.
using SmbTransactionPart = void (*)(SmbTransaction& t, const Place& in, Cursor& c);

struct SmbFunction {
  uint32_t code;
  const char* name;
  SmbTransactionPart requestParameters, requestData, replyParameters, replyData;
};

const SmbFunction* FindSmbFunction(std::span<const SmbFunction> functions, uint32_t code);
inline const char* SmbFunctionName(std::span<const SmbFunction> functions, uint32_t code) {
  const SmbFunction* function = FindSmbFunction(functions, code);
  return function ? function->name : kUndefined;
}

// Where the words have what; offsets in bytes, -1 for what this form does not have.
struct SmbTransactionForm {
  int8_t width;   // of counts, offsets and displacements
  int8_t parameters, parameterDisplacement, data, dataDisplacement;   // a count, behind it its offset
  int8_t setupCount, setup;
};

extern const SmbTransactionForm kSmbTransactionRequest, kSmbTransactionReply, kSmbTransactionSecondary;
extern const SmbTransactionForm kSmbNtRequest, kSmbNtReply, kSmbNtSecondary;

// What the block's words say; for replies with the request that they answer.
SmbTransaction ReadSmbTransaction(SmbBlock& block, const SmbTransactionForm& form);

// The words of requests of Trans and Trans2 up to the setup words.
void AddTransactionRequestWords(SmbBlock& block);

// Words that are left, as "Setup Data".
void AddSetupData(SmbBlock& block);

// The parameter and data bytes with their padding, under "NAME Request" or "NAME Reply" when the function is known. A
// request is learnt once its parameters were read.
void AddTransactionBytes(SmbTransaction& t, const SmbFunction* function);

// The part for data of named pipes: it has no heading of its own, for the lines of a protocol that it carries stand at the
// top.
void SmbPipePart(SmbTransaction& t, const Place& in, Cursor& c);

// Up to 7 bytes as "Pad: %s", more as a dump.
void AddSmbFiller(const Place& in, Cursor& c, const char* label = "Pad");

// A part that is one table.
template <const auto& kTable>
void SmbTransactionRows(SmbTransaction& t, const Place& in, Cursor& c) {
  ShowSmbRows(t.message, in, c, kTable);
}

// The parameters of a request that name the information level or the flags of its reply.
template <const auto& kTable>
void SmbRequestRows(SmbTransaction& t, const Place& in, Cursor& c) {
  const Smb values = ShowSmbRows(t.message, in, c, kTable);
  t.request.level = values.level.value;
  t.request.flags = values.flags.value;
}

// The function in the first setup word; UINT32_MAX when there is none.
inline uint32_t SmbSetupFunction(const SmbTransaction& t) {
  return Left(t.setup) >= 2 ? PeekLittleU16(t.setup) : UINT32_MAX;
}

// The next of entries that say how far on the one behind them starts, in their first four bytes. Offsets that would
// make an entry smaller than `smallest`, or are past the end, make it the last one.
Cursor TakeSmbEntry(Cursor& list, int32_t smallest);
// All of them, each under a line with the title; what the rows leave is filler.
void AddSmbEntries(const SmbMessage& message, const Place& in, Cursor& c, const char* title, SmbRowSpan rows,
                   int32_t smallest);
template <const auto& kTable, int32_t kSmallest>
void ShowSmbEntries(const Place& in, Cursor& c, const char* title, Smb& values) {
  AddSmbEntries(*values.message, in, c, title, kTable, kSmallest);
}
template <const auto& kTable, int32_t kSmallest>
consteval Row<Smb> SmbEntries(const char* title) { return Shown(title, ShowSmbEntries<kTable, kSmallest>); }

}  // namespace qxview
