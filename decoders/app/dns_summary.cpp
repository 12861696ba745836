// The packet list's line for a DNS, LLMNR or multicast DNS message: what was asked, what was answered.
#include "decoders/app/dns.h"
#include "decoders/app/summaries.h"

namespace qxview {
namespace {

constexpr int32_t kTcp = 6;

// A message as the summary reads it; names share their hops as those of a decode do.
struct SummarySource {
  const uint8_t* message;
  int32_t length;
  int32_t hopsLeft;
};

struct NamedEntry {
  DnsNameText name;
  uint32_t type;
  int32_t next;   // offset behind name, type and class; the name's own offset when the walk cannot go on
};

// The name at `offset` with the type behind it.
NamedEntry ReadEntry(SummarySource& source, int32_t offset) {
  NamedEntry entry{};
  entry.next = offset;
  const int32_t left = source.length - offset;
  if (left < 1) return entry;
  const uint8_t* at = source.message + offset;
  if (at[0] == 0) {   // the root has no labels to expand; type and class follow all the same
    if (left < 5) return entry;
    entry.type = ReadU16(at + 1);
    entry.next = offset + 5;
    return entry;
  }
  DnsNameTail tail;
  ExpandName({source.message, source.length, at, left, offset, false, false, &source.hopsLeft}, entry.name.text,
             kDnsNameSize, &tail);
  if (!tail.typed) return entry;
  entry.type = tail.type;
  entry.next = offset + tail.consumed;
  return entry;
}

// What the first answer gives: an address, a name, or nothing.
DnsNameText ReadFirstAnswer(SummarySource& source, int32_t offset) {
  constexpr int32_t kTtlAndLength = 6;
  const NamedEntry owner = ReadEntry(source, offset);
  const int32_t data = owner.next + kTtlAndLength;
  DnsNameText answer{};
  switch (owner.type) {
    case kDnsTypeA:
      if (source.length - data >= 4) FormatInto(answer.text, kDnsNameSize, "%s", IPv4Text(source.message + data));
      break;
    case kDnsTypeNs:
    case kDnsTypeCname:
    case kDnsTypePtr:
      return ReadEntry(source, data).name;
    default:
      break;
  }
  return answer;
}

uint32_t CountAt(const SummarySource& source, int32_t section) { return ReadU16(source.message + 4 + 2 * section); }

void DescribeQuery(SummarySource& source, char* out, int32_t size) {
  const uint32_t result = source.message[3] & 15;
  const char* kind = result ? LookupName(kDnsResultNames, result, kUndefined)
                            : LookupName(kDnsOperationNames, DnsDispatchValue(source.message), kUndefined);
  AppendFormat(out, size, " %s - ", kind);
  if (CountAt(source, 0) == 0) return;
  const NamedEntry question = ReadEntry(source, kDnsHeaderSize);
  if (!question.name.text[0]) return;
  DnsNameText shown = question.name;
  if (question.type == kDnsTypePtr) ReverseDottedName(question.name.text, shown.text, kDnsNameSize);
  AppendFormat(out, size, "%s", shown);
}

void DescribeResponse(SummarySource& source, char* out, int32_t size) {
  DnsNameText first{};
  int32_t answers = kDnsHeaderSize;
  bool found = CountAt(source, 1) > 0;
  for (uint32_t i = 0, count = CountAt(source, 0); i < count; ++i) {
    const NamedEntry question = ReadEntry(source, answers);
    if (i == 0) first = question.name;
    if (question.next == answers) {   // a broken question hides the answers
      found = false;
      break;
    }
    answers = question.next;
  }
  if (const uint32_t result = source.message[3] & 15) {
    AppendFormat(out, size, " %s", LookupName(kDnsResultNames, result, "Error"));
    if (first.text[0]) AppendFormat(out, size, " - %s", first);
  } else if (found) {
    const DnsNameText answer = ReadFirstAnswer(source, answers);
    if (answer.text[0]) AppendFormat(out, size, ": %s", answer);
  }
}

// The message behind the length prefix of TCP; null when the summary is the title alone.
const uint8_t* FindMessage(const uint8_t* data, int32_t* length, int32_t transport, uint16_t lengthHint) {
  if (transport == kTcp && *length >= kDnsHeaderSize) {
    if (int32_t{lengthHint} - 4 < static_cast<int32_t>(ReadU16(data))) return nullptr;
    data += 2;
    *length -= 2;
  }
  return *length >= kDnsHeaderSize ? data : nullptr;
}

}  // namespace

int32_t DescribeDns(const uint8_t* data, int32_t length, TextBuffer* summary, int32_t transport, uint16_t lengthHint,
                    int32_t variant) {
  if (!summary || !summary->text) return 0;
  char* out = summary->text;
  const int32_t size = summary->capacity;
  if (size > 0) out[0] = out[size - 1] = 0;
  if (!data || length < 1) return 0;
  if (size < 1) return 1;
  const uint8_t* message = FindMessage(data, &length, transport, lengthHint);
  if (!message) {
    FormatInto(out, size, "%s", DnsTitle(variant));
    return 1;
  }
  const bool isResponse = (message[2] & 0x80) != 0;
  const bool named = variant == kDnsLinkLocal || variant == kDnsMulticast;
  FormatInto(out, size, "%s", named ? DnsTitle(variant) : isResponse ? "DNS Response:" : "DNS Query:");
  if (!LookupName(kDnsOperationNames, DnsDispatchValue(message), nullptr)) return 1;
  SummarySource source{message, length, kMostDnsNameHops};
  if (isResponse) {
    DescribeResponse(source, out, size);
  } else {
    DescribeQuery(source, out, size);
  }
  AppendFormat(out, size, ", QU=%u AN=%u AU=%u AD=%u", CountAt(source, 0), CountAt(source, 1), CountAt(source, 2),
               CountAt(source, 3));
  return 1;
}

}  // namespace qxview
