// What object identifiers of certificates and cryptography are called, of a table that needs no MIB.
#pragma once
#include "core/cursor.h"
#include "decoders/common/object_id.h"

namespace qxview {

// The name of an identifier's contents; null for one that has none.
const char* NameOfObject(const Cursor& contents);

// "commonName (2.5.4.3)", or the number alone.
using NamedObject = ShortText<320>;
NamedObject DescribeObject(const Cursor& contents);

}  // namespace qxview
