// Path Computation Element communication Protocol: what its files share.
#pragma once
#include "core/elements.h"

namespace qxview {

struct Pcep {
  Field flags, type, length, code, count;
};

// The TLVs that objects end in; they take all that is left.
void ShowPcepTlvs(const Place& in, Cursor& c, Pcep& pcep);

const char* PcepErrorName(uint32_t type);
const char* PcepErrorValueName(uint32_t type, uint32_t value);
const char* PcepObjectiveName(uint32_t code);
const char* PcepAssociationName(uint32_t type);

}  // namespace qxview
