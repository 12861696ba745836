// Multiprotocol label switching (RFC 3032): a stack of labels, then a payload that nothing names.
//
//   0  label (20 bits), traffic class (3), bottom of stack (1), time to live (8)
//
// What follows the stack is told by its first nibble: 4 and 6 are IP; a control word (nibble 0, RFC 4385) or a MAC
// header stands in front of a carried Ethernet frame.
#include "core/decoder.h"
#include "decoders/link/pseudowire.h"

namespace qxview {
namespace {

constexpr auto kReservedLabels = SortedNames({{0, "IPv4 Explicit NULL"}, {1, "Router Alert"},
                                              {2, "IPv6 Explicit NULL"}, {3, "Implicit NULL"}, {7, "Entropy Label"},
                                              {13, "GAL"}, {14, "OAM Alert"}, {15, "Extension"}});

// One label's lines; false behind the bottom of the stack or when the bytes end.
bool DecodeLabel(const Place& at, Cursor& c) {
  const Field entry = TakeU32(c);
  if (!entry.here) return false;
  const BitPicture label = BitsOf(entry, 0, 20), trafficClass = BitsOf(entry, 20, 3), bottom = BitsOf(entry, 23, 1);
  const BitPicture timeToLive = BitsOf(entry, 24, 8);
  const char* reserved = LookupName(kReservedLabels, label.value, nullptr);
  const Place in = Under(at, AddLine(at, entry, "MPLS:  Label = %u, TTL = %u%s", label.value, timeToLive.value,
                                     bottom.value ? ", Bottom of Stack" : ""));
  if (reserved) {
    AddBitLine(in, entry, "%s: Label = %u (%s)", label.picture, label.value, reserved);
  } else {
    AddBitLine(in, entry, "%s: Label = %u", label.picture, label.value);
  }
  AddBitLine(in, entry, "%s: Traffic Class = %u", trafficClass.picture, trafficClass.value);
  AddBitLine(in, entry, "%s: Bottom of Stack = %s", bottom.picture, TrueOrFalse(bottom.value));
  AddBitLine(in, entry, "%s: Time to Live = %u", timeToLive.picture, timeToLive.value);
  return bottom.value == 0;
}

}  // namespace

int32_t DecodeMpls(const Place& at, Cursor c) {
  if (Left(c) < 4) return 0;
  // Every label is a header that carries the next one: it counts as a decoder that is called on carried data.
  int32_t& nesting = PacketOf(at).nesting;
  const int32_t outerNesting = nesting;
  bool more = true;
  Loop loop;
  while (more && nesting < kMostNesting && MoreAt(at, c, loop)) {
    more = DecodeLabel(at, c);
    ++nesting;
  }
  if (more) {
    CallDecoder(Deeper(at), c, nullptr, "Raw Data");
  } else {
    DecodeLabelledPayload(Deeper(at), c);
  }
  nesting = outerNesting;
  return 1;
}

}  // namespace qxview
