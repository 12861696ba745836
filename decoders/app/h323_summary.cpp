// The packet list's text for H.323: call signalling (Q.931 messages as H.225.0 carries them), the gatekeeper's RAS
// messages and H.245 control. The last two are packed encoding rules (ITU-T X.691), of which the first bits are read.
//
//   call signalling:  TPKT (3, 0, length (2))   8   reference length   reference   message type   elements
//   RAS:              choice (6 bits), extension bit, a bit an optional field, to the byte, request number (2)
//   H.245:            TPKT, choice of four (3 bits), choice within (extension bit and 3 to 5 bits)
#include "decoders/app/h323_names.h"
#include "decoders/app/summaries.h"
#include "decoders/app/summary_text.h"

namespace qxview {
namespace {

constexpr uint32_t kTpktVersion = 3;
constexpr int32_t kTpktHeader = 4;
constexpr uint32_t kQ931 = 8;

// Steps over the transport header that these protocols stand in on TCP (RFC 1006, RFC 2126); tunnelled ones have none.
void SkipTpkt(Cursor& c) {
  if (Left(c) < kTpktHeader || PeekU8(c) != kTpktVersion || PeekU8(c, 1) != 0) return;
  const uint32_t length = PeekU16(c, 2);
  TakeBytes(c, kTpktHeader);
  if (length >= kTpktHeader) c = TakeCursor(c, length - kTpktHeader);
}

enum Element : uint32_t {
  kFirstSingle = 0x80, kCause = 0x08, kDisplay = 0x28, kCallingNumber = 0x6C, kCalledNumber = 0x70, kUserUser = 0x7E,
};

// A party number behind its octets of type and presentation, the last of which has its top bit set.
TextSlice PartyNumber(Cursor c) {
  while (Left(c) > 0 && !(TakeU8(c).value & 0x80)) continue;
  return TextOf(c.at, Left(c));
}

void DescribeElement(SummaryText& text, uint32_t type, Cursor body) {
  switch (type) {
    case kCause: {
      while (Left(body) > 1 && !(TakeU8(body).value & 0x80)) continue;
      const Field cause = TakeU8(body);
      if (cause.here) Add(text, ", Cause: %s", LookupName(kQ931CauseNames, cause.value & 0x7F));
      return;
    }
    case kDisplay: return AddValue(text, "Display", TextOf(body.at, Left(body)));
    case kCallingNumber: return AddValue(text, "Calling", PartyNumber(body));
    case kCalledNumber: return AddValue(text, "Called", PartyNumber(body));
    default: return;
  }
}

void DescribeElements(SummaryText& text, Cursor c) {
  Loop loop;
  while (More(c, loop)) {
    const uint32_t type = TakeU8(c).value;
    if (type >= kFirstSingle) continue;   // an element of one octet
    if (type == kUserUser) return;        // H.225.0's own part comes last
    const uint32_t length = TakeU8(c).value;
    DescribeElement(text, type, TakeCursor(c, length));
  }
}

// The leading bits of a packed encoding, most significant first.
struct Bits {
  Cursor c;
  int32_t used;   // of the bits from c.at on
};

uint32_t TakeBits(Bits& bits, int32_t count) {
  uint32_t value = 0;
  for (; count > 0; --count, ++bits.used) {
    const int32_t byte = bits.used / 8;
    const uint32_t bit = byte < Left(bits.c) ? PeekU8(bits.c, byte) >> (7 - bits.used % 8) & 1u : 0u;
    value = value << 1 | bit;
  }
  return value;
}

// The index of a choice that has an extension marker: one of `roots` in `width` bits, or a small number behind them.
uint32_t TakeChoice(Bits& bits, int32_t width, uint32_t roots) {
  if (TakeBits(bits, 1) == 0) return TakeBits(bits, width);
  TakeBits(bits, 1);   // set for extensions past the 64th, of which there are none
  return roots + TakeBits(bits, 6);
}

template <size_t kRows>
const char* NameAt(const char* const (&names)[kRows], uint32_t index) {
  return index < kRows ? names[index] : nullptr;
}

}  // namespace

int32_t DescribeH323HostCall(const uint8_t* data, int32_t length, char* out, int32_t outSize) {
  constexpr uint32_t kFlag = 0x80, kMostReference = 4;
  SummaryText text;
  if (!BeginSummary(text, data, length, out, outSize)) return 0;
  Add(text, "H.323 Host Call/H.225.0/Q.931 ");
  Cursor c = MakeCursor(data, 0, length);
  SkipTpkt(c);
  if (Left(c) == 0 && c.offset == kTpktHeader) return Add(text, "Keep-Alive"), 1;
  if (Left(c) < 3 || TakeU8(c).value != kQ931) return Add(text, "Data"), 1;
  const uint32_t referenceLength = TakeU8(c).value & 15;
  uint32_t reference = 0, flag = 0;
  for (uint32_t i = 0; i < referenceLength; ++i) {
    const uint32_t octet = TakeU8(c).value;
    if (i == 0) flag = octet & kFlag;
    if (i < kMostReference) reference = reference << 8 | (i == 0 ? octet & ~kFlag : octet);
  }
  const Field type = TakeU8(c);
  if (!type.here) return Add(text, "Data"), 1;
  if (const char* name = LookupName(kQ931MessageNames, type.value, nullptr)) {
    Add(text, name);
  } else {
    Add(text, "Message 0x%.02X", type.value);
  }
  Add(text, ", Call Reference: %u%s", reference, flag ? " (to the originator)" : "");
  DescribeElements(text, c);
  return 1;
}

int32_t DescribeH323Gatekeeper(const uint8_t* data, int32_t length, char* out, int32_t outSize, int32_t flag) {
  constexpr int32_t kChoiceBits = 5;
  constexpr uint32_t kRoots = 25, kInfoRequestResponse = 22;
  SummaryText text;
  if (!BeginSummary(text, data, length, out, outSize)) return 0;
  Add(text, "H.225.0/H.323 Gatekeeper");
  const Cursor c = MakeCursor(data, 0, length);
  Bits bits{c, 0};
  const uint32_t message = TakeChoice(bits, kChoiceBits, kRoots);
  const char* name = NameAt(kRasMessageNames, message);
  if (!name) return Add(text, " Data"), 1;
  Add(text, " %s", name);
  if (!flag || message >= kRoots) return 1;   // an extension's message stands in a field of its own length
  TakeBits(bits, 1);   // extensions
  const uint32_t optional = TakeBits(bits, kRasOptionalFields[message]);
  if (message == kInfoRequestResponse && optional & 4) return 1;   // its nonStandardData stand before the number
  const int32_t at = (bits.used + 7) / 8;
  if (at + 2 <= length) Add(text, ", Request Number: %u", PeekU16(c, at) + 1);
  return 1;
}

int32_t DescribeH245(const uint8_t* data, int32_t length, char* out, int32_t outSize) {
  SummaryText text;
  if (!BeginSummary(text, data, length, out, outSize)) return 0;
  Add(text, "H.245");
  Cursor c = MakeCursor(data, 0, length);
  SkipTpkt(c);
  if (Left(c) < 1) return Add(text, c.offset == kTpktHeader ? " Keep-Alive" : " Data"), 1;
  Bits bits{c, 0};
  constexpr uint32_t kNone = 4;
  const uint32_t kind = TakeBits(bits, 1) ? kNone : TakeBits(bits, 2);
  const char* name = nullptr;
  switch (kind) {
    case 0: name = NameAt(kH245RequestNames, TakeChoice(bits, 4, 11)); break;
    case 1: name = NameAt(kH245ResponseNames, TakeChoice(bits, 5, 19)); break;
    case 2: name = NameAt(kH245CommandNames, TakeChoice(bits, 3, 7)); break;
    case 3: name = NameAt(kH245IndicationNames, TakeChoice(bits, 4, 14)); break;
    default: break;
  }
  constexpr const char* kKinds[] = {"Request", "Response", "Command", "Indication"};
  if (!name) return Add(text, " Data"), 1;
  Add(text, " %s: %s", kKinds[kind], name);
  return 1;
}

}  // namespace qxview
