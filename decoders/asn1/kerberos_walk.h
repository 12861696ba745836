// The walk over a message: tables in, lines out. Depth is bounded by the depths that lines have, work by a number of
// elements a payload; what lies beyond either is shown as data.
#pragma once
#include "core/decoder.h"
#include "decoders/asn1/kerberos_types.h"

namespace qxview {

struct KrbWalk {
  int32_t elementsLeft;   // of the payload
  bool isReply;           // the message answers; tells what fast armor holds
  bool isPassword;        // of the change-password protocol; tells what the data of KRB-ERROR holds
  bool isCut;             // an element ran past its span
};

constexpr int32_t kMostKrbElements = 4000;   // ten times what the largest of real messages hold

// Shows the element at the cursor, which ends where the element's span does: its header, and what is inside of it by
// the type. `code` is the last code of the record that it stands in; an element that is a code leaves itself there.
void ShowKrbElement(KrbWalk& walk, const AsnPlace& at, Cursor c, const KrbType& type, uint32_t& code);

// The text of an element in its label's line; empty when it has none, or is not of the type.
void DescribeKrbElement(const KrbWalk& walk, const KrbType& type, const Cursor& c, uint32_t code, char* out,
                        int32_t outSize);

// Reading without lines. Each is empty, or 0, when the element is not there; records are searched for a field over
// their first elements only.
Cursor ContentsOf(Cursor c, uint32_t identifier);             // of the element at the cursor
Cursor FindKrbField(Cursor fields, uint32_t tag);             // the element inside of the tag
uint32_t KrbCodeOf(const Cursor& fields, uint32_t tag);       // of an INTEGER field; sign-extended
TextSlice KrbTextOf(const Cursor& fields, uint32_t tag);      // of a GeneralString field

}  // namespace qxview
