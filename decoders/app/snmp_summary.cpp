// The packet list's text for SNMP (RFC 1157, RFC 3416, RFC 3412): version, community or user, PDU, request, error, the
// first object.
//
//   SEQUENCE { version, community, PDU { request, error, error index, SEQUENCE { SEQUENCE { object, value } ... } } }
//   SEQUENCE { 3, SEQUENCE { message, size, flags, model }, security, SEQUENCE { engine, context, PDU } or encrypted }
#include "decoders/app/ber_reader.h"
#include "decoders/app/summaries.h"
#include "decoders/app/summary_text.h"

namespace qxview {
namespace {

constexpr uint32_t kFirstPdu = 0xA0, kTrapV1 = 0xA4;

constexpr auto kPduNames = SortedNames({
    {0xA0, "GetRequest"}, {0xA1, "GetNextRequest"}, {0xA2, "GetResponse"}, {0xA3, "SetRequest"}, {0xA4, "Trap"},
    {0xA5, "GetBulkRequest"}, {0xA6, "InformRequest"}, {0xA7, "SNMPv2-Trap"}, {0xA8, "Report"},
});

constexpr auto kErrorNames = SortedNames({
    {1, "tooBig"}, {2, "noSuchName"}, {3, "badValue"}, {4, "readOnly"}, {5, "genErr"}, {6, "noAccess"},
    {7, "wrongType"}, {8, "wrongLength"}, {9, "wrongEncoding"}, {10, "wrongValue"}, {11, "noCreation"},
    {12, "inconsistentValue"}, {13, "resourceUnavailable"}, {14, "commitFailed"}, {15, "undoFailed"},
    {16, "authorizationError"}, {17, "notWritable"}, {18, "inconsistentName"},
});

constexpr auto kGenericTrapNames = SortedNames({
    {0, "coldStart"}, {1, "warmStart"}, {2, "linkDown"}, {3, "linkUp"}, {4, "authenticationFailure"},
    {5, "egpNeighborLoss"}, {6, "enterpriseSpecific"},
});

// An object identifier in dotted numbers.
void AddObject(SummaryText& text, const char* label, const BerElement& object) {
  constexpr int32_t kMostNumbers = 40;
  if (!object.here || object.tag != kBerObject) return;
  Cursor c = object.body;
  uint32_t number = 0;
  bool first = true;
  Add(text, label);
  for (int32_t shown = 0; shown < kMostNumbers && Left(c) > 0;) {
    const uint32_t octet = TakeU8(c).value;
    number = number << 7 | (octet & 0x7F);
    if (octet & 0x80) continue;
    if (first) {
      const uint32_t root = number < 80 ? number / 40 : 2;
      Add(text, "%u.%u", root, number - 40 * root);
    } else {
      Add(text, ".%u", number);
    }
    first = false;
    number = 0;
    ++shown;
  }
}

// The first object of a list of bindings.
void AddFirstBinding(SummaryText& text, Cursor& pdu) {
  BerElement list = TakeBer(pdu);
  BerElement binding = TakeBer(list.body);
  if (list.here && binding.here) AddObject(text, ", Object: ", TakeBer(binding.body));
}

void DescribeTrap(SummaryText& text, Cursor c) {
  AddObject(text, ", Enterprise: ", TakeBer(c));
  TakeBer(c);   // agent's address
  const BerElement generic = TakeBer(c), specific = TakeBer(c);
  if (generic.here) {
    Add(text, ", Generic: %s", LookupName(kGenericTrapNames, static_cast<uint32_t>(BerNumber(generic))));
  }
  if (specific.here) Add(text, ", Specific: %d", BerNumber(specific));
}

void DescribePdu(SummaryText& text, const BerElement& pdu) {
  constexpr uint32_t kGetBulk = 0xA5;
  if (!pdu.here || pdu.tag < kFirstPdu) return Add(text, " Data");
  Add(text, " %s", LookupName(kPduNames, pdu.tag));
  Cursor c = pdu.body;
  if (pdu.tag == kTrapV1) return DescribeTrap(text, c);
  const BerElement request = TakeBer(c), error = TakeBer(c), index = TakeBer(c);
  if (request.here) Add(text, ", Request ID: %d", BerNumber(request));
  if (pdu.tag == kGetBulk) {
    if (index.here) Add(text, ", Non-Repeaters: %d, Repetitions: %d", BerNumber(error), BerNumber(index));
  } else if (error.here && BerNumber(error) != 0) {
    Add(text, ", Error: %s, Index: %d", LookupName(kErrorNames, static_cast<uint32_t>(BerNumber(error))),
        BerNumber(index));
  }
  AddFirstBinding(text, c);
}

// The user of the user-based security model, inside the security parameters' octets.
void AddUser(SummaryText& text, Cursor security) {
  BerElement parameters = TakeBer(security);
  TakeBer(parameters.body);   // engine
  TakeBer(parameters.body);   // boots
  TakeBer(parameters.body);   // time
  const BerElement user = TakeBer(parameters.body);
  if (user.here && user.tag == kBerOctets) AddValue(text, "User", BerText(user));
}

void DescribeVersion3(SummaryText& text, Cursor c) {
  BerElement header = TakeBer(c);
  const BerElement message = TakeBer(header.body);
  const BerElement security = TakeBer(c);
  BerElement scoped = TakeBer(c);
  if (scoped.here && scoped.tag == kBerSequence) {
    TakeBer(scoped.body);   // engine
    TakeBer(scoped.body);   // context name
    DescribePdu(text, TakeBer(scoped.body));
  } else if (scoped.here) {
    Add(text, " Encrypted");
  }
  if (message.here) Add(text, ", Message ID: %d", BerNumber(message));
  if (security.here) AddUser(text, security.body);
}

}  // namespace

int32_t DescribeSnmp(const uint8_t* data, int32_t length, char* out, int32_t outSize) {
  enum Version : int32_t { kVersion1 = 0, kVersion2 = 1, kVersion3 = 3 };
  SummaryText text;
  if (!BeginSummary(text, data, length, out, outSize)) return 0;
  Add(text, "SNMP");
  Cursor c = MakeCursor(data, 0, length);
  BerElement message = TakeBer(c);
  const BerElement version = TakeBer(message.body);
  const int32_t number = version.here && version.tag == kBerInteger ? BerNumber(version) : -1;
  if (!message.here || message.tag != kBerSequence || number < 0 || number > kVersion3) {
    return Add(text, " Data"), 1;
  }
  Add(text, number == kVersion1 ? "v1" : number == kVersion3 ? "v3" : "v2");
  if (number == kVersion3) return DescribeVersion3(text, message.body), 1;
  const BerElement community = TakeBer(message.body);
  DescribePdu(text, TakeBer(message.body));
  if (community.here) AddValue(text, "Community", BerText(community));
  return 1;
}

}  // namespace qxview
