// The remote administration protocol (MS-RAP), in Trans on \PIPE\LANMAN: calls whose descriptors say how parameters and
// data are laid out, a letter a field with a count behind it where it repeats.
//
//   request   function (2)   parameter descriptor   data descriptor   parameters   [auxiliary descriptor]
//   reply     status (2)   converter (2)   returned parameters
//   data      structures; strings stand behind them: where a field points to, less the converter
//
// A reply names neither function nor descriptors: they are its request's.
#pragma once
#include "decoders/smb/smb_transaction.h"

namespace qxview {

constexpr uint32_t kRapUserLogon = 132, kRapUserLogoff = 133;

struct RapCall {
  uint32_t code;
  const char* name;
  const char* parameters;   // labels, '|' between them
  const char* reply;
};

struct RapStructure {
  const char* descriptor;
  const char* labels;
};

void AddRapRequest(SmbTransaction& t);
void AddRapReply(SmbTransaction& t);

// smb_rap_data.cpp: `count` structures of t.request.data, each with its auxiliary ones, and their strings.
void AddRapStructures(SmbTransaction& t, const Place& in, Cursor& c, uint32_t count, uint32_t converter);

// A letter of a descriptor and its count, 1 without one. False at the descriptor's end.
struct RapItem {
  char code;
  bool isCounted;
  int32_t count;
};
bool TakeRapItem(const char*& descriptor, RapItem& item);
// The next label of a list; empty behind the last.
TextSlice TakeRapLabel(const char*& labels);

// A number or bytes of `size` with a label whose sign says the form. An empty label gives the letter's: the "kind"
// is "Parameter (word)" or the like.
struct RapLabel {
  TextSlice text;
  char code;
  const char* word;   // "Parameter" or "Field"
  const char* kind;
};
void AddRapNumber(const SmbMessage& message, const Place& in, Cursor& c, int32_t size, const RapLabel& label);
void AddRapBytes(const SmbMessage& message, const Place& in, Cursor& c, int64_t size, const RapLabel& label);
void AddRapText(const SmbMessage& message, const Place& in, Cursor& c, const RapLabel& label);

// smb_rap_names.cpp
const RapCall* FindRapCall(uint32_t code);
const char* RapStructureLabels(const char* descriptor);   // empty for one that is not known
const char* RapStatusName(uint32_t status);
const char* RapParameterKind(char code);
const char* RapFieldKind(char code);

}  // namespace qxview
