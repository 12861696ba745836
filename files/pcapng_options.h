// The options of pcapng blocks, as the reader finds and the writer copies them.
//
//    0 2 code | 2 2 length | value, padded to 4; code 0 ends them
#pragma once
#include "files/capture_formats.h"

namespace qxview {

enum PcapngOption : uint16_t {
  kOptionComment = 1,
  kInterfaceName = 2, kInterfaceDescription = 3, kInterfaceResolution = 9, kInterfaceCheckSequence = 13,
  kInterfaceFilter = 11, kInterfaceSystem = 12, kInterfaceTimeOffset = 14,
  kSectionSystem = 3, kSectionApplication = 4,
  kPacketFlags = 2,
};

// Visits each option with its code, length and value.
template <typename Visit>
void ForEachOption(const FileOptions& options, Visit visit) {
  const FileOrder order{options.swapped};
  const uint8_t* at = options.at;
  const uint8_t* const end = at + options.length;
  while (end - at >= 4) {
    const uint16_t code = order.Load16(at);
    const uint16_t length = order.Load16(at + 2);
    if (code == 0 || end - at - 4 < length) return;
    visit(code, length, at + 4);
    const size_t step = 4 + ((size_t{length} + 3) & ~size_t{3});
    if (static_cast<size_t>(end - at) < step) return;
    at += step;
  }
}

}  // namespace qxview
