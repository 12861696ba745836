#include "decoders/common/checksum_line.h"

#include "core/internet_checksum.h"
#include "core/line_facts.h"

namespace qxview {

bool AddChecksumLine(const Place& in, const Field& checksum, const char* label, const char* unchecked, uint32_t sum,
                     BadChecksum form) {
  const bool isBad = !unchecked && sum != 0xFFFF;
  if (checksum.here && LeavesLabel(in.view, in.parent, label, true)) return CountLines(in, 1), !isBad;
  if (isBad && form == BadChecksum::kWithRight) {
    AddLine(in, checksum, "%s 0x%.04X (BAD should be 0x%.04X)", label, checksum.value,
            RightChecksum(sum, checksum.value));
  } else {
    AddLine(in, checksum, "%s 0x%.04X (%s)", label, checksum.value, unchecked ? unchecked : isBad ? "BAD" : "Good");
  }
  return !isBad;
}

}  // namespace qxview
