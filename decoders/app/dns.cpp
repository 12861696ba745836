// DNS payloads and messages: the framing of TCP, the loop over messages, headers and sections.
#include "decoders/app/dns.h"
#include "decoders/app/dns_data.h"

#include <cstring>

namespace qxview {
namespace {

constexpr int32_t kTcp = 6;
constexpr uint16_t kDnsPort = 53;
constexpr uint32_t kHighestOperation = 5, kHighestResult = 10;
constexpr uint32_t kUpdateDispatch = kDnsUpdate, kHighestStandardDispatch = 2;
constexpr const char* kLeftoverTitle = "DNS Data";
constexpr const char* kContinuationTitle = "DNS Continuation Data";

// The names of the four counts.
constexpr const char* kStandardCounts[] = {"Question Record", "Answer Record", "Authority Record",
                                           "Additional Record"};
constexpr const char* kUpdateCounts[] = {"Zone Entry", "Prerequisite Record", "Update Record", "Additional Record"};

// A flag of one bit: a letter for it in the "Flags:" text, and its own line over its octet.
void AddFlag(const Place& in, const Field& octet, int32_t bit, const char* code, const char* name,
             const char* equals = "=") {
  const auto [picture, value] = BitsOf(octet, bit, 1);
  AddBitLine(in, octet, "%s: (%s) %s = %s", picture, code, name, TrueOrFalse(value));
  AppendToParent(in, octet, ", %s%s%s", code, equals, value ? "T" : "F");
}

void AddReserved(const Place& in, const Field& octet, int32_t firstBit, int32_t bitCount) {
  AddBitLine(in, octet, "%s: Reserved", BitsOf(octet, firstBit, bitCount).picture);
}

const char* OperationName(uint32_t operation, bool isModern) {
  if (isModern && operation == kDnsStateful) return "Stateful Operation";
  return LookupName(kDnsOperationNames, operation, kUndefined);
}

const char* ResultName(uint32_t result, bool isModern) {
  constexpr uint32_t kNoStatefulType = 11;
  if (isModern && result == kNoStatefulType) return "Type of Stateful Operation Not Implemented";
  return LookupName(kDnsResultNames, result, kUndefined);
}

// The flags, each over the octet that holds it. Both multicast protocols use LLMNR's layout.
void AddFlagLines(const Place& at, const Field& flags, DnsMessage& message, bool multicastLayout) {
  const Place in = Under(at, AddLine(at, flags, "Flags:"));
  Cursor octets = CursorOver(flags);
  const Field high = TakeU8(octets), low = TakeU8(octets);

  const auto [queryPicture, isResponse] = BitsOf(high, 0, 1);
  message.isResponse = isResponse != 0;
  const char* kind = isResponse ? "Response" : "Query";
  if (high.here) AppendToLine(at, message.topLine, " %s", kind);
  AppendToParent(in, high, " QR=%s", kind);
  AddBitLine(in, high, "%s: (QR) Query/Response = %s", queryPicture, kind);

  const auto [operationPicture, operation] = BitsOf(high, 1, 4);
  const char* operationName = OperationName(operation, message.hasAllRecords);
  AppendToParent(in, high, ", OPCODE=%s", operationName);
  AddBitLine(in, high, "%s: (OPCODE) Operation Code [%u] = %s", operationPicture, operation, operationName);

  if (multicastLayout) {
    AddFlag(in, high, 5, "C", "Conflict", " = ");   // the blanks have always set this one apart
    AddFlag(in, high, 6, "TC", "Truncation");
    AddFlag(in, high, 7, "T", "Tentative");
    AddReserved(in, low, 0, 4);
  } else {
    AddFlag(in, high, 5, "AA", "Authoritative Answer");
    AddFlag(in, high, 6, "TC", "Truncation");
    AddFlag(in, high, 7, "RD", "Recursion Desired");
    AddFlag(in, low, 0, "RA", "Recursion Available");
    if (message.hasAllRecords) {
      AddReserved(in, low, 1, 1);
      AddFlag(in, low, 2, "AD", "Authentic Data");
      AddFlag(in, low, 3, "CD", "Checking Disabled");
    } else {
      AddReserved(in, low, 1, 3);
    }
  }

  const auto [resultPicture, result] = BitsOf(low, 4, 4);
  const char* resultName = ResultName(result, message.hasAllRecords);
  AppendToParent(in, low, ", RCODE=%s", resultName);
  AddBitLine(in, low, "%s: (RCODE) Result Code [%u] = %s", resultPicture, result, resultName);
}

struct SectionCounts {
  uint32_t entries[4];
};

SectionCounts DecodeHeader(const Place& at, Cursor& c, DnsMessage& message, bool multicastLayout,
                           const char* const (&countNames)[4]) {
  const Field identifier = TakeU16(c);
  AddLine(at, identifier, "Transaction ID: 0x%04X", identifier.value);
  AddFlagLines(at, TakeU16(c), message, multicastLayout);
  SectionCounts counts{};
  for (int32_t i = 0; i < 4; ++i) {
    const Field count = TakeU16(c);
    AddLine(at, count, "%s Count: %d", countNames[i], count.value);
    counts.entries[i] = count.value;
  }
  return counts;
}

// The entries of a section, each on a cursor of its own: one that fails is not stepped over, nor is one that has fewer
// than `shortest` bytes, whose lines stay. One that ran short leaves the message's cursor short, so that the sections
// behind it stay empty.
template <class DecodeEntry>
int32_t DecodeSection(const Place& at, Cursor& c, uint32_t count, int32_t shortest, DecodeEntry decodeEntry) {
  Loop loop;
  for (uint32_t number = 1; number <= count && MoreAt(at, c, loop); ++number) {
    Cursor entry = c;
    if (!decodeEntry(entry, number)) return 0;
    if (c.left < shortest) {
      c.ranShort = true;
      break;
    }
    if (entry.offset <= c.offset) break;
    c = entry;
  }
  return 1;
}

int32_t DecodeQuestions(const Place& at, Cursor& c, DnsMessage& message, uint32_t count, const char* section) {
  return DecodeSection(at, c, count, 1, [&](Cursor& entry, uint32_t number) {
    return DecodeDnsQuestion(at, entry, message, section, number);
  });
}

int32_t DecodeRecords(const Place& at, Cursor& c, DnsMessage& message, uint32_t count, const char* section) {
  return DecodeSection(at, c, count, 1, [&](Cursor& entry, uint32_t number) {
    return DecodeDnsResourceRecord(at, entry, message, section, number, false);
  });
}

// Answers have a least size, and those of a response are repeated on the message's top line.
int32_t DecodeAnswers(const Place& at, Cursor& c, DnsMessage& message, uint32_t count) {
  constexpr int32_t kShortestAnswer = 6;
  return DecodeSection(at, c, count, kShortestAnswer, [&](Cursor& entry, uint32_t number) {
    return DecodeDnsResourceRecord(at, entry, message, "Answer", number, message.isResponse);
  });
}

int32_t DecodeSections(const Place& at, Cursor& c, DnsMessage& message, const SectionCounts& counts,
                       const char* questionSection) {
  if (Left(c) < 2) return 1;
  return DecodeQuestions(at, c, message, counts.entries[0], questionSection) &&
         DecodeAnswers(at, c, message, counts.entries[1]) &&
         DecodeRecords(at, c, message, counts.entries[2], "Authority") &&
         DecodeRecords(at, c, message, counts.entries[3], "Additional");
}

// Stateful operations have no entries, and their own data behind the counts.
int32_t DecodeStatefulMessage(const Place& at, Cursor& c, DnsMessage& message) {
  DecodeHeader(at, c, message, false, kStandardCounts);
  DecodeDnsStateful(at, c, message);
  return 1;
}

}  // namespace

const char* DnsTitle(int32_t variant) {
  return variant == kDnsLinkLocal ? "Microsoft LLMNR:" : variant == kDnsMulticast ? "Multicast DNS:" : "DNS:";
}

int32_t DecodeDnsMessage(const Place& at, Cursor& c, DnsMessage& message, int32_t variant) {
  // Multicast DNS has the layout of DNS (RFC 6762 18), which its told lines never had.
  const bool multicastLayout = variant == kDnsLinkLocal || (variant == kDnsMulticast && !message.hasAllRecords);
  return DecodeSections(at, c, message, DecodeHeader(at, c, message, multicastLayout, kStandardCounts), "Question");
}

// Prerequisite and update records keep the labels of answers and authority records.
int32_t DecodeDnsUpdateMessage(const Place& at, Cursor& c, DnsMessage& message) {
  return DecodeSections(at, c, message, DecodeHeader(at, c, message, false, kUpdateCounts), "Zone");
}

namespace {

bool WantsAllRecords(const View* view) { return view->engine && view->engine->settings.dnsRecords; }

// Whether a TCP segment starts a message: later segments of a long one must not be read as headers.
bool StartsTcpMessage(const Place& at, const Cursor& c) {
  constexpr uint32_t kRecursionDesired = 0x0100, kRecursionAvailable = 0x0080;
  if (c.left < 6) return false;
  const uint32_t prefix = PeekU16(c), flags = PeekU16(c, 4);
  const PacketState& packet = PacketOf(at);
  const uint16_t clientPort = flags & 0x8000 ? packet.destinationPort : packet.sourcePort;
  const uint32_t more = WantsAllRecords(at.view) ? 1 : 0;   // stateful operations and the result of those not known
  if (clientPort == kDnsPort || (flags >> 11 & 15) > kHighestOperation + more || (flags & 15) > kHighestResult + more) {
    return false;
  }
  return prefix <= static_cast<uint32_t>(c.left) || ((flags & kRecursionDesired) && (flags & kRecursionAvailable));
}

// The state of a payload's message loop.
struct PayloadWalk {
  Place at;               // of top lines
  Cursor c;               // behind the last message that was taken
  LineHandle topLine;     // the last one
  int32_t topOffset;
  int32_t hopsLeft;
  int32_t failedUpdates;
};

// The 12 bytes that the top line starts with count again among what the message took: the highlight has always reached
// that far.
void ExtendTopLine(const PayloadWalk& walk, int32_t taken) {
  ExtendDecodeLineRange(walk.at.view, walk.at.tree, walk.topLine, taken);
}

// A message that the dispatch value knows nothing of, to the payload's end.
void DumpMessage(PayloadWalk& walk) {
  const Field data = Rest(walk.c);
  AddDataBlock(walk.at.view, walk.topLine, data.bytes, data.offset, data.length, kLeftoverTitle,
               LevelImage(walk.at.level));
  SetRange(walk.at, walk.topLine, walk.topOffset, data.length);
}

// One message, its top line first. Result: whether the loop goes on.
bool DecodeNextMessage(PayloadWalk& walk, int32_t transport, int32_t variant) {
  Cursor& c = walk.c;
  const LineHandle topLine = AddLine(walk.at, Ahead(c, kDnsHeaderSize), "%s", DnsTitle(variant));
  if (!topLine) return false;
  walk.topLine = topLine;
  walk.topOffset = c.offset;
  if (walk.at.level > 3) walk.at.level = kFirstLevel;
  const Place in = Under(walk.at, topLine);
  int32_t size = c.left;
  const bool isModern = WantsAllRecords(walk.at.view);
  if (transport == kTcp && c.left >= 2) {
    const Field length = TakeU16(c);
    AddLine(in, length, "DNS Length: %u", length.value);
    size = c.left;
    if (isModern && length.value >= kDnsHeaderSize && static_cast<int32_t>(length.value) < size) {
      size = static_cast<int32_t>(length.value);
    }
  }
  if (c.left < kDnsHeaderSize) return false;

  const uint32_t kind = isModern ? c.at[2] >> 3 & 15 : DnsDispatchValue(c.at);
  if (!isModern && kind > kHighestStandardDispatch && kind != kUpdateDispatch) {
    DumpMessage(walk);
    return false;
  }
  DnsMessage message{c.at, size, topLine, false, &walk.hopsLeft, isModern, variant == kDnsMulticast};
  Cursor rest = MakeCursor(c.at, c.offset, size);
  const bool isUpdate = kind == kDnsUpdate;
  const int32_t result = isUpdate                        ? DecodeDnsUpdateMessage(in, rest, message)
                         : isModern && kind == kDnsStateful ? DecodeStatefulMessage(in, rest, message)
                                                            : DecodeDnsMessage(in, rest, message, variant);
  ExtendTopLine(walk, Taken(rest));
  if (!result && (!isUpdate || ++walk.failedUpdates > kMostFailedDnsUpdates)) return false;
  c = MakeCursor(rest.at, rest.offset, c.left - (rest.offset - c.offset));
  return Taken(rest) > 0;
}

}  // namespace

int32_t DecodeDnsPayload(View* view, const uint8_t* payload, int32_t frameOffset, int32_t length, int32_t level,
                         int32_t transport, int32_t variant) {
  if (!view || !view->context || !payload) return 1;
  PayloadWalk walk{TopLevel(view, level), MakeCursor(payload, frameOffset, length), 0, frameOffset, kMostDnsNameHops,
                   0};
  walk.at.lineSize = kShortLineSize;
  if (transport != kTcp || StartsTcpMessage(walk.at, walk.c)) {
    while (walk.c.left > 0 && DecodeNextMessage(walk, transport, variant)) {
    }
  }
  const Field leftover = Rest(walk.c);
  if (!leftover.here) return 1;
  if (walk.topLine) {
    AddDataBlock(view, walk.topLine, leftover.bytes, leftover.offset, leftover.length, kLeftoverTitle,
                 LevelImage(walk.at.level));
  } else {
    AddRawData(view, leftover.bytes, leftover.offset, leftover.length, kContinuationTitle);
  }
  return 1;
}

namespace {

int32_t DecodeVariant(const Place& at, const Cursor& c, DnsVariant variant) {
  return DecodeDnsPayload(at.view, c.at, c.offset, Left(c), at.level, PacketOf(at).ipProtocol, variant);
}

}  // namespace

int32_t DecodeDns(const Place& at, Cursor c) { return DecodeVariant(at, c, kDnsStandard); }
int32_t DecodeLlmnr(const Place& at, Cursor c) { return DecodeVariant(at, c, kDnsLinkLocal); }
int32_t DecodeMdns(const Place& at, Cursor c) { return DecodeVariant(at, c, kDnsMulticast); }

}  // namespace qxview
