// The line of an Internet checksum (RFC 1071): "Checksum: 0x1234 (Good)".
#pragma once
#include "core/decoder.h"

namespace qxview {

// How a bad one is told: "BAD", or "BAD should be 0x1235".
enum class BadChecksum { kAlone, kWithRight };

// `sum` is of all that the checksum covers, itself included; `unchecked` says why it tells nothing, and is null where it
// does; `label` is a literal. Result: false for a bad one.
bool AddChecksumLine(const Place& in, const Field& checksum, const char* label, const char* unchecked, uint32_t sum,
                     BadChecksum form);

}  // namespace qxview
