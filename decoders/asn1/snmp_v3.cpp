// Messages of version 3: the header that tells how the rest is protected, the user-based security model's parameters
// and the scoped data.
#include "decoders/asn1/snmp.h"

namespace qxview {
namespace {

const char* ModelName(uint32_t model) {
  switch (model) {
    case 1: return "SNMPv1";
    case 2: return "SNMPv2";
    case 3: return "USM";
    default: return kUndefined;
  }
}

int32_t StepPlainNumber(SnmpWalk& walk, const char* title) {
  SnmpStep step;
  const int32_t status = StepNumber(walk, title, DecodeAsnInteger, step);
  if (status == kAsnDecoded) AppendToLine(LinesOf(walk), step.line, " %u", step.value.number);
  return status;
}

int32_t StepLabelled(SnmpWalk& walk, const char* title, const char* label) {
  SnmpStep step;
  return StepString(walk, title, label, step);
}

// Flags are a string of one octet; its bits stand behind the string's own lines.
int32_t DecodeFlags(SnmpWalk& walk, bool& isPrivate) {
  const Place in = LinesOf(walk);
  const Cursor start = walk.c;
  SnmpStep step;
  const int32_t status = StepString(walk, "Flags:", nullptr, step);
  if (status != kAsnDecoded || step.value.number == kAsnNoValue) return status;
  // The contents are the last octets of what was taken; how many they are the length octets say.
  Cursor c = start;
  TakeBytes(c, 1);
  AsnResult length{};
  DecodeAsnLength(AsnPlace{}, c, length);
  TakeBytes(c, length.consumed);
  const Field flags = TakeU8(c);
  if (!flags.here) return status;
  const BitPicture reserved = BitsOf(flags, 0, 5), reportable = BitsOf(flags, 5, 1);
  const BitPicture privacy = BitsOf(flags, 6, 1), authorization = BitsOf(flags, 7, 1);
  const Place bits = LinesOf(Beneath(walk.at, step.line));
  AddLine(bits, flags, "%s: Reserved", reserved.picture);
  AddLine(bits, flags, "%s: Reportable = %s", reportable.picture, TrueOrFalse(reportable.value));
  AddLine(bits, flags, "%s: Privacy = %s", privacy.picture, TrueOrFalse(privacy.value));
  AddLine(bits, flags, "%s: Authorization = %s", authorization.picture, TrueOrFalse(authorization.value));
  AppendToLine(in, step.line, " Reportable = %s", TrueOrFalse(reportable.value));
  AppendToLine(in, step.line, ", Privacy = %s", TrueOrFalse(privacy.value));
  AppendToLine(in, step.line, ", Authorization = %s", TrueOrFalse(authorization.value));
  isPrivate = privacy.value != 0;
  return status;
}

int32_t DecodeGlobalData(SnmpWalk& walk, bool& isPrivate) {
  const Place in = LinesOf(walk);
  const Field marker = TakeU8(walk.c);
  if (!marker.here) return kAsnTruncated;
  // "Gloabal" is how users know this line.
  AddLine(in, marker, "ASN Sequence Identifier: 0x%.02X (Gloabal Data Message)", marker.value);
  int32_t status = StepLength(walk, "Global Data Sequence Length:");
  if (status == kAsnDecoded) status = StepPlainNumber(walk, "Message ID:");
  if (status == kAsnDecoded) status = StepPlainNumber(walk, "Message Max Size:");
  if (status == kAsnDecoded) status = DecodeFlags(walk, isPrivate);
  if (status != kAsnDecoded) return status;
  SnmpStep step;
  status = StepNumber(walk, "Security Model:", DecodeAsnInteger, step);
  if (status != kAsnDecoded) return status;
  AppendToLine(in, step.line, " [%u] = %s", step.value.number, ModelName(step.value.number));
  return kAsnDecoded;
}

int32_t DecodeUsmParts(SnmpWalk& walk) {
  const Place in = LinesOf(walk);
  const Field type = TakeU8(walk.c);
  AddLine(in, type, "Storage Type: [0x%.02X] = OCTET STRING", type.value);
  int32_t status = StepLength(walk, "Security Parameters Length:");
  if (status != kAsnDecoded) return status;
  const Field marker = TakeU8(walk.c);
  if (!marker.here) return kAsnTruncated;
  AddLine(in, marker, "ASN Sequence Identifier: 0x%.02X (User Security Management)", marker.value);
  status = StepLength(walk, "User Security Management Sequence Length:");
  if (status == kAsnDecoded) status = StepLabelled(walk, "Authoritative Engine ID:", "ID");
  if (status == kAsnDecoded) status = StepPlainNumber(walk, "Authoritative Engine Boots:");
  if (status == kAsnDecoded) status = StepPlainNumber(walk, "Authoritative Engine Time:");
  if (status == kAsnDecoded) status = StepLabelled(walk, "User Name:", "Name");
  if (status == kAsnDecoded) status = StepLabelled(walk, "Authentication Parameters:", "Parameters");
  if (status == kAsnDecoded) status = StepLabelled(walk, "Privacy Parameters:", "Parameters");
  return status;
}

int32_t DecodeScopedData(SnmpWalk& walk, bool isPrivate) {
  const Place in = LinesOf(walk);
  const Field marker = TakeU8(walk.c);
  if (!marker.here) return kAsnTruncated;
  AddLine(in, marker, "ASN Sequence Identifier: 0x%.02X (Parameters)", marker.value);
  int32_t status = StepLength(walk, "Parameters Sequence Length:");
  if (status != kAsnDecoded) return status;
  if (isPrivate) {
    const Field encrypted = Rest(walk.c);
    AddBlock(in, encrypted, "Encrypted SNMP Data");
    return encrypted.here ? kAsnDecoded : kAsnTruncated;
  }
  status = StepLabelled(walk, "Context Engine ID:", "ID");
  if (status == kAsnDecoded) status = StepLabelled(walk, "Context Name:", "Name");
  return status == kAsnDecoded ? DecodeSnmpPdu(walk) : status;
}

}  // namespace

int32_t DecodeSnmpUsm(SnmpWalk& walk) {
  if (Left(walk.c) < 1) return kAsnTruncated;
  const Place in = LinesOf(walk);
  const int32_t start = walk.c.offset;
  const LineHandle line = AddLine(in, Ahead(walk.c, 0), "Security Parameters:");
  SnmpWalk parts{Beneath(walk.at, line), walk.root, walk.c};
  const int32_t status = DecodeUsmParts(parts);
  walk.c = parts.c;
  SetRange(in, line, start, walk.c.offset - start);
  return status;
}

int32_t DecodeSnmpV3Message(const Place& at, Cursor c) {
  if (Left(c) < 1 || c.at[0] != kAsnSequence) return kAsnNotThisType;
  LineHandle parents[kAsnDepths];
  SnmpWalk walk = BeginSnmp(at, c, parents);
  const Place in = LinesOf(walk);
  AppendToLine(in, walk.root, "3:");
  const Field marker = TakeU8(walk.c);
  AddLine(in, marker, "ASN Sequence Identifier: 0x%.02X (SNMP Message)", marker.value);
  int32_t status = StepLength(walk, "SNMP Sequence Length:");
  if (status == kAsnDecoded) status = StepPlainNumber(walk, "SNMP Version:");
  bool isPrivate = false;
  if (status == kAsnDecoded) status = DecodeGlobalData(walk, isPrivate);
  if (status == kAsnDecoded) status = DecodeSnmpUsm(walk);
  return status == kAsnDecoded ? DecodeScopedData(walk, isPrivate) : status;
}

}  // namespace qxview
