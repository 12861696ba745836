// Protocol data units and their variable bindings: the same in every version.
#include "decoders/asn1/snmp.h"

namespace qxview {
namespace {

constexpr uint32_t kTrap = 164, kGetBulk = 165;

constexpr auto kPduNames = SortedNames({
    {160, "Get Request"}, {161, "Get Next Request"}, {162, "Response"}, {163, "Set Request"}, {164, "Trap"},
    {165, "Get Bulk Request"}, {166, "Inform Request"}, {167, "SNMPv2 Trap"}, {168, "Report"}});

// "Inconsistant" is the spelling that users search for.
constexpr auto kErrorNames = SortedNames({
    {0, "No Error"}, {1, "Too Big"}, {2, "No Such Name"}, {3, "Bad Value"}, {4, "Read Only"}, {5, "Gen Error"},
    {6, "No Access"}, {7, "Wrong Type"}, {8, "Wrong Length"}, {9, "Wrong Encoding"}, {10, "Wrong Value"},
    {11, "No Creation"}, {12, "Inconsistant Value"}, {13, "Resource Unavailable"}, {14, "Commit Failed"},
    {15, "Undo Failed"}, {16, "Authorization Error"}, {17, "Not Writeable"}, {18, "Inconsistant Name"}});

constexpr auto kTrapNames = SortedNames({
    {0, "Cold Start"}, {1, "Warm Start"}, {2, "Link Down"}, {3, "Link Up"}, {4, "Authentication Failure"},
    {5, "EGP Neighbor Loss"}, {6, "Enterprise Specific"}});

// What the root line puts in front of a number's value or name.
constexpr BerType Noted(const char* note, const BerNames& names = {}) {
  return {.form = BerForm::kNumber, .label = note, .names = names};
}
constexpr BerType kRequestId = Noted(", ID="), kErrorStatus = Noted(", ", kErrorNames), kErrorIndex = Noted(", EI="),
                  kMaxRepetitions = Noted(", MR="), kGenericTrap = Noted(", GT=", kTrapNames),
                  kSpecificTrap = Noted(", ST=");
constexpr BerRow kRequestRow{kAsnInteger, "Request ID:", &kRequestId};
constexpr BerRow kRequestFields[] = {
    kRequestRow, {kAsnInteger, "Error Status:", &kErrorStatus}, {kAsnInteger, "Error Index:", &kErrorIndex}};
constexpr BerRow kRepetitionFields[] = {{kAsnInteger, "Max-Repetitions:", &kMaxRepetitions}};
constexpr BerRow kTrapFields[] = {
    {kAsnInteger, "Generic Trap:", &kGenericTrap}, {kAsnInteger, "Specific Trap:", &kSpecificTrap}};

// An object identifier under a titled line. Result: 1 also for one that the MIB does not know.
int32_t StepObjectId(SnmpWalk& walk, const char* title, AsnObjectNames& names, LineHandle& line) {
  if (Left(walk.c) < 1) return kAsnTruncated;
  line = AddLine(walk.in, Ahead(walk.c, 0), "%s", title);
  AsnResult out{};
  const int32_t start = walk.c.offset;
  const int32_t status = DecodeAsnObjectId(Beneath(walk.in, line), walk.c, names, out);
  SetRange(walk.in, line, start, walk.c.offset - start);
  return status == kAsnUnnamed ? kAsnDecoded : status;
}

int32_t DecodeBulkFields(SnmpWalk& walk) {
  SnmpStep step;
  int32_t status = StepRows(walk, {&kRequestRow, 1});
  if (status != kAsnDecoded) return status;
  status = StepNumber(walk, "Non-Repeaters:", DecodeAsnInteger, step);
  if (status != kAsnDecoded) return status;
  AppendToLine(walk.in, step.line, " %u", step.value.number);
  AppendToLine(walk.in, walk.root, ", NR=%s", static_cast<const char*>(step.text));
  return StepRows(walk, kRepetitionFields);
}

// What a trap of version 1 is about: who sent it.
int32_t DecodeTrapSender(SnmpWalk& walk) {
  const Place in = walk.in;
  AsnObjectNames names;
  LineHandle line = 0;
  int32_t status = StepObjectId(walk, "Enterprise:", names, line);
  if (status != kAsnDecoded) return status;
  const char* dotted = names.dotted;
  const char* name = names.name;
  if (name[0]) {
    AppendToLine(in, line, " [%s] = %s", dotted, name);
    AppendToLine(in, walk.root, ", E=%s", name);
  } else {
    AppendToLine(in, line, " %s", dotted);
    AppendToLine(in, walk.root, ", E=%s", dotted);
  }
  SnmpStep step;
  status = StepNumber(walk, "Agent Address:", DecodeAsnNetworkAddress, step);
  if (status != kAsnDecoded) return status;
  AppendToLine(in, step.line, " %s", static_cast<const char*>(step.text));
  AppendToLine(in, walk.root, ", A=%s", static_cast<const char*>(step.text));
  return kAsnDecoded;
}

int32_t DecodeTrapFields(SnmpWalk& walk) {
  int32_t status = DecodeTrapSender(walk);
  if (status == kAsnDecoded) status = StepRows(walk, kTrapFields);
  if (status != kAsnDecoded) return status;
  SnmpStep step;
  status = StepTicks(walk, "Time Ticks:", step);
  if (status != kAsnDecoded) return status;
  AppendToLine(walk.in, step.line, " [%u] = %s", step.value.number, static_cast<const char*>(step.longText));
  return kAsnDecoded;
}

int32_t DecodeBindings(SnmpWalk& walk) {
  const Place in = walk.in;
  const Field marker = TakeU8(walk.c);
  if (!marker.here) return kAsnTruncated;
  AddLine(in, marker, "ASN Sequence Identifier: 0x%.02X (SNMP binding)", marker.value);
  if (const int32_t status = StepLength(walk, "Binding Sequence Length:"); status != kAsnDecoded) return status;
  Loop loop;
  for (uint32_t number = 1; MoreAt(in, walk.c, loop) && PeekU8(walk.c) == kAsnSequence; ++number) {
    const int32_t status = DecodeSnmpVarBind(walk, number);
    if (status != kAsnDecoded && status != kAsnUnnamed) return status;
  }
  return kAsnDecoded;
}

// The element of a binding's value. What the list of types does not name is "Undefined", also where the encoding
// knows it.
int32_t DecodeBindingValue(const Place& at, Cursor& c, AsnResult& out) {
  char shortText[kAsnShortTextSize];
  const AsnStringForm form{nullptr, shortText, sizeof shortText, false};
  switch (PeekU8(c)) {
    case kAsnBoolean: return DecodeAsnBoolean(at, c, out);
    case kAsnInteger: return DecodeAsnInteger(at, c, out);
    case kAsnOctetString: return DecodeAsnOctetString(at, c, form, out);
    case kAsnNull: return DecodeAsnNull(at, c, out);
    case kAsnObjectId: {
      AsnObjectNames names;
      const int32_t status = DecodeAsnObjectId(at, c, names, out);
      if (names.name[0]) {
        FormatInto(out.text, out.textSize, "%s (%s)", static_cast<const char*>(names.dotted),
                   static_cast<const char*>(names.name));
      }
      return status;
    }
    case kAsnNetworkAddress: return DecodeAsnNetworkAddress(at, c, out);
    case kAsnCounter: return DecodeAsnCounter(at, c, out);
    case kAsnGauge: return DecodeAsnGauge(at, c, out);
    case kAsnTimeTicks: return DecodeAsnTimeTicks(at, c, nullptr, 0, out);
    case kAsnOpaque: return DecodeAsnOpaque(at, c, form, out);
    case kAsnCounter64: return DecodeAsnCounter64(at, c, out);
    case kAsnUnsigned32: return DecodeAsnUnsigned32(at, c, out);
    case kAsnNoSuchObject:
    case kAsnNoSuchInstance:
    case kAsnEndOfMibView: return DecodeAsnException(at, c, out);
    default: return DecodeAsnUndefined(at, c, out);
  }
}

int32_t DecodeBindingParts(SnmpWalk& walk) {
  const Place in = walk.in;
  const Field marker = TakeU8(walk.c);
  AddLine(in, marker, "Sequence Marker: 0x%.02X (ASN Object)", marker.value);
  if (const int32_t status = StepLength(walk, "Sequence Length:"); status != kAsnDecoded) return status;

  {
    AsnObjectNames names;
    LineHandle line = 0;
    const int32_t status = StepObjectId(walk, "Object Name  :", names, line);
    if (status != kAsnDecoded) return status;
    const char* dotted = names.dotted;
    const char* name = names.name;
    if (name[0]) {
      AppendToLine(in, line, " %s (%s)", dotted, name);
    } else {
      AppendToLine(in, line, " %s", dotted);
    }
  }
  if (Left(walk.c) < 1) return kAsnTruncated;
  SnmpStep step;
  const int32_t status = StepNumber(walk, "Object Value :", DecodeBindingValue, step);
  if (status != kAsnDecoded && status != kAsnUnnamed) return status;
  AppendToLine(in, step.line, " %s", static_cast<const char*>(step.text));
  AppendToLine(in, walk.root, " = %s", static_cast<const char*>(step.text));
  return kAsnDecoded;
}

}  // namespace

int32_t DecodeSnmpVarBind(SnmpWalk& walk, uint32_t number) {
  const Place in = walk.in;
  const LineHandle line = AddLine(in, Ahead(walk.c, 0), "Sequence #%u:", number);
  SnmpWalk binding{Beneath(walk.in, line), line, walk.c};
  const int32_t start = walk.c.offset;
  const int32_t status = DecodeBindingParts(binding);
  walk.c = binding.c;
  SetRange(in, line, start, walk.c.offset - start);
  return status;
}

int32_t DecodeSnmpPdu(SnmpWalk& walk) {
  const Place in = walk.in;
  const Field type = TakeU8(walk.c);
  if (!type.here) return kAsnTruncated;
  const char* name = LookupName(kPduNames, type.value, kUndefined);
  const LineHandle line = AddLine(in, type, "PDU:");
  AppendToLine(in, walk.root, ", %s", name);
  AppendToLine(in, line, " %s", name);
  AddLine(Beneath(walk.in, line), type, "PDU Type: [0x%.02X] = %s", type.value, name);
  if (const int32_t status = StepLength(walk, "PDU Length:"); status != kAsnDecoded) return status;
  if (type.value < 160 || type.value > 168) return kAsnNotThisType;
  const int32_t status = type.value == kTrap ? DecodeTrapFields(walk)
                         : type.value == kGetBulk ? DecodeBulkFields(walk)
                                                  : StepRows(walk, kRequestFields);
  return status == kAsnDecoded ? DecodeBindings(walk) : status;
}

}  // namespace qxview
