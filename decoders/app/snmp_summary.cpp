// The packet list's text for SNMP (RFC 1157, RFC 3416, RFC 3412): version, community or user, PDU, request, error, the
// first object.
//
//   SEQUENCE { version, community, PDU { request, error, error index, SEQUENCE { SEQUENCE { object, value } ... } } }
//   SEQUENCE { 3, SEQUENCE { message, size, flags, model }, security, SEQUENCE { engine, context, PDU } or encrypted }
#include "decoders/app/summaries.h"
#include "decoders/app/summary_text.h"
#include "decoders/common/ber_reader.h"
#include "decoders/common/object_id.h"

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

void AddObject(SummaryText& text, const char* label, const BerElement& object) {
  if (!object.here || object.identifier != kAsnObjectId) return;
  if (Left(object.contents) < 1) return Add(text, "%s<NULL>", label);
  Add(text, "%s%s", label, TextOfObjectId(object.contents));
}

// The first object of a list of bindings.
void AddFirstBinding(SummaryText& text, Cursor& pdu) {
  BerElement list = TakeBer(pdu);
  BerElement binding = TakeBer(list.contents);
  if (list.here && binding.here) AddObject(text, ", Object: ", TakeBer(binding.contents));
}

void DescribeTrap(SummaryText& text, Cursor c) {
  AddObject(text, ", Enterprise: ", TakeBer(c));
  TakeBer(c);   // agent's address
  const BerElement generic = TakeBer(c), specific = TakeBer(c);
  if (generic.here) {
    Add(text, ", Generic: %s", LookupName(kGenericTrapNames, static_cast<uint32_t>(BerInteger(generic.contents))));
  }
  if (specific.here) Add(text, ", Specific: %d", BerInteger(specific.contents));
}

void DescribePdu(SummaryText& text, const BerElement& pdu) {
  constexpr uint32_t kGetBulk = 0xA5;
  if (!pdu.here || pdu.identifier < kFirstPdu) return Add(text, " Data");
  Add(text, " %s", LookupName(kPduNames, pdu.identifier));
  Cursor c = pdu.contents;
  if (pdu.identifier == kTrapV1) return DescribeTrap(text, c);
  const BerElement request = TakeBer(c), error = TakeBer(c), index = TakeBer(c);
  if (request.here) Add(text, ", Request ID: %d", BerInteger(request.contents));
  if (pdu.identifier == kGetBulk) {
    if (index.here) Add(text, ", Non-Repeaters: %d", BerInteger(error.contents));
    if (index.here) Add(text, ", Repetitions: %d", BerInteger(index.contents));
  } else if (error.here && BerInteger(error.contents) != 0) {
    Add(text, ", Error: %s, Index: %d", LookupName(kErrorNames, static_cast<uint32_t>(BerInteger(error.contents))),
        BerInteger(index.contents));
  }
  AddFirstBinding(text, c);
}

// The user of the user-based security model, inside the security parameters' octets.
void AddUser(SummaryText& text, Cursor security) {
  BerElement parameters = TakeBer(security);
  TakeBer(parameters.contents);   // engine
  TakeBer(parameters.contents);   // boots
  TakeBer(parameters.contents);   // time
  const BerElement user = TakeBer(parameters.contents);
  if (user.here && user.identifier == kAsnOctetString) AddValue(text, "User", BerText(user.contents));
}

void DescribeVersion3(SummaryText& text, Cursor c) {
  BerElement header = TakeBer(c);
  const BerElement message = TakeBer(header.contents);
  const BerElement security = TakeBer(c);
  BerElement scoped = TakeBer(c);
  if (scoped.here && scoped.identifier == kAsnSequence) {
    TakeBer(scoped.contents);   // engine
    TakeBer(scoped.contents);   // context name
    DescribePdu(text, TakeBer(scoped.contents));
  } else if (scoped.here) {
    Add(text, " Encrypted");
  }
  if (message.here) Add(text, ", Message ID: %d", BerInteger(message.contents));
  if (security.here) AddUser(text, security.contents);
}

}  // namespace

int32_t DescribeSnmp(const uint8_t* data, int32_t length, char* out, int32_t outSize) {
  enum Version : int32_t { kVersion1 = 0, kVersion2 = 1, kVersion3 = 3 };
  SummaryText text;
  if (!BeginSummary(text, data, length, out, outSize)) return 0;
  Add(text, "SNMP");
  Cursor c = MakeCursor(data, 0, length);
  BerElement message = TakeBer(c);
  const BerElement version = TakeBer(message.contents);
  const int32_t number = version.here && version.identifier == kAsnInteger ? BerInteger(version.contents) : -1;
  if (!message.here || message.identifier != kAsnSequence || number < 0 || number > kVersion3) {
    return Add(text, " Data"), 1;
  }
  Add(text, number == kVersion1 ? "v1" : number == kVersion3 ? "v3" : "v2");
  if (number == kVersion3) return DescribeVersion3(text, message.contents), 1;
  const BerElement community = TakeBer(message.contents);
  DescribePdu(text, TakeBer(message.contents));
  if (community.here) AddValue(text, "Community", BerText(community.contents));
  return 1;
}

}  // namespace qxview
