// What values of headers are made of, in mail's family of protocols: words parted by commas or semicolons, parameters, texts in
// quotation marks (RFC 9110 5.6, RFC 3261 25.1).
#pragma once
#include "core/decoder.h"

namespace qxview {

// How much of a text stands in front of the first of `ends` that is in no quotation marks and no angle brackets.
int32_t LengthUpTo(const Field& text, const char* ends);
// The piece up to one of `ends`, trimmed; the rest starts behind it.
Field TakePiece(Field& rest, const char* ends);
// Without its quotation marks, where it has both.
Field Unquoted(const Field& text);

// The value of a parameter behind ';', without quotation marks; not here when it is not given.
Field ParameterOf(const Field& value, const char* name);

// "name=value" or "name", separated by `separator`. A line stands over its value.
void ShowParameters(const Place& in, Field rest, const char* separator);
// "INVITE, ACK" or "presence;id=1": each word under the label, and the parameters behind it.
void ShowItems(const Place& in, const char* label, Field rest, bool isList);

}  // namespace qxview
