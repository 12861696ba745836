#include "decoders/net/window_scales.h"

#include "core/decoder.h"
#include "decoders/states.h"

namespace qxview {
namespace {

constexpr int32_t kHighestExponent = 14;   // RFC 7323 section 2.3: more is taken as this

}  // namespace

void RecordSynSegment(const Place& at, uint32_t sequence, bool acknowledges, int32_t exponent) {
  int32_t from;
  const ConnectionKey key = ConnectionOf(PacketOf(at), &from);
  const WindowScales* known = Recall(at.view, kWindowScales, key);
  WindowScales scales = known ? *known : WindowScales{};
  WindowScales::Direction& own = scales.directions[from];
  const bool repeated = own.synSeen && own.synSequence == sequence;
  if (!acknowledges && !repeated) scales.directions[1 - from] = {};
  own.synSeen = true;
  own.answers = acknowledges;
  own.synSequence = sequence;
  own.exponent = static_cast<int8_t>(exponent > kHighestExponent ? kHighestExponent : exponent);
  Remember(at.view, kWindowScales, key, scales);
}

int32_t FindWindowScale(const Place& at) {
  int32_t from;
  const ConnectionKey key = ConnectionOf(PacketOf(at), &from);
  const WindowScales* scales = Recall(at.view, kWindowScales, key);
  if (!scales) return kNoWindowScale;
  const WindowScales::Direction& own = scales->directions[from];
  const WindowScales::Direction& other = scales->directions[1 - from];
  if (!own.synSeen || own.exponent < 0) return kNoWindowScale;
  // An answer holds the option only where the SYN did, so that a SYN from before the capture is known of too.
  const bool otherSent = other.synSeen ? other.exponent >= 0 : own.answers;
  return otherSent ? own.exponent : kNoWindowScale;
}

}  // namespace qxview
