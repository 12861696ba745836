// Encapsulated remote switch port analysis: mirrored frames, as GRE carries them.
#pragma once
#include "core/decoder.h"

namespace qxview {

// Type II and III (GRE with a sequence number, Ethertype 0x22EB for type III), from the ERSPAN header on.
int32_t DecodeErspan(const Place& at, Cursor c);
// Type I: no header at all, the frame follows GRE at once.
int32_t DecodeErspanPlain(const Place& at, Cursor c);

}  // namespace qxview
