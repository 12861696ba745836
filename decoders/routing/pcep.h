// Path Computation Element communication Protocol: what its files share.
#pragma once
#include "core/elements.h"

namespace qxview {

struct Pcep {
  Field flags, type, length, code, count, afi, reverse;
};

// The TLVs that objects end in; they take all that is left.
void ShowPcepTlvs(const Place& in, Cursor& c, Pcep& pcep);

// What RSVP says by a class and a C-Type, without its head.
void ShowPcepRsvpObject(const Place& in, Cursor& c, uint32_t kind);

const char* PcepErrorName(uint32_t type);
const char* PcepErrorValueName(uint32_t type, uint32_t value);
const char* PcepObjectiveName(uint32_t code);
const char* PcepAssociationName(uint32_t type);

}  // namespace qxview
