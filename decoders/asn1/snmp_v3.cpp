// Messages of version 3: the header that tells how the rest is protected, the user-based security model's parameters
// and the scoped data.
#include "decoders/asn1/snmp.h"

namespace qxview {
namespace {

constexpr auto kModelNames = SortedNames({{1, "SNMPv1"}, {2, "SNMPv2"}, {3, "USM"}});

constexpr BerType kNumber = NumberOf(), kModel = NumberOf(kModelNames);
constexpr BerType kId{.form = BerForm::kText, .label = "ID"}, kName{.form = BerForm::kText, .label = "Name"},
                  kParameters{.form = BerForm::kText, .label = "Parameters"};

// "Gloabal" is how users know this line.
constexpr BerRow kGlobalFields[] = {
    {kAsnInteger, "Message ID:", &kNumber}, {kAsnInteger, "Message Max Size:", &kNumber}};
constexpr BerType kGlobalData{.form = BerForm::kGroup, .label = "Gloabal Data Message", .rows = kGlobalFields};
constexpr BerRow kMessageFields[] = {
    {kAsnInteger, "SNMP Version:", &kNumber}, {kAsnSequence, "Global Data Sequence Length:", &kGlobalData}};
constexpr BerType kMessage{.form = BerForm::kGroup, .label = "SNMP Message", .rows = kMessageFields};
constexpr BerRow kMessageRow[] = {{kAsnSequence, "SNMP Sequence Length:", &kMessage}};
constexpr BerRow kModelRow[] = {{kAsnInteger, "Security Model:", &kModel}};

constexpr BerRow kUserFields[] = {
    {kAsnOctetString, "Authoritative Engine ID:", &kId}, {kAsnInteger, "Authoritative Engine Boots:", &kNumber},
    {kAsnInteger, "Authoritative Engine Time:", &kNumber}, {kAsnOctetString, "User Name:", &kName},
    {kAsnOctetString, "Authentication Parameters:", &kParameters},
    {kAsnOctetString, "Privacy Parameters:", &kParameters}};
constexpr BerType kUser{.form = BerForm::kGroup, .label = "User Security Management", .rows = kUserFields};
constexpr BerRow kUserRow[] = {{kAsnSequence, "User Security Management Sequence Length:", &kUser}};

constexpr BerRow kContextFields[] = {
    {kAsnOctetString, "Context Engine ID:", &kId}, {kAsnOctetString, "Context Name:", &kName}};
constexpr BerType kScoped{.form = BerForm::kGroup, .label = "Parameters"};
constexpr BerRow kScopedRow[] = {{kAsnSequence, "Parameters Sequence Length:", &kScoped}};

// Flags are a string of one octet; its bits stand behind the string's own lines.
int32_t DecodeFlags(SnmpWalk& walk, bool& isPrivate) {
  const Cursor contents = PeekBer(walk.c).contents;
  SnmpStep step;
  const int32_t status = StepString(walk, "Flags:", nullptr, step);
  if (status != kAsnDecoded || step.value.number == kAsnNoValue) return status;
  Cursor c = contents;
  const Field flags = TakeU8(c);
  if (!flags.here) return status;
  const BitPicture reserved = BitsOf(flags, 0, 5), reportable = BitsOf(flags, 5, 1);
  const BitPicture privacy = BitsOf(flags, 6, 1), authorization = BitsOf(flags, 7, 1);
  const Place bits = Beneath(walk.in, step.line);
  AddLine(bits, flags, "%s: Reserved", reserved.picture);
  AddLine(bits, flags, "%s: Reportable = %s", reportable.picture, TrueOrFalse(reportable.value));
  AddLine(bits, flags, "%s: Privacy = %s", privacy.picture, TrueOrFalse(privacy.value));
  AddLine(bits, flags, "%s: Authorization = %s", authorization.picture, TrueOrFalse(authorization.value));
  AppendToLine(walk.in, step.line, " Reportable = %s", TrueOrFalse(reportable.value));
  AppendToLine(walk.in, step.line, ", Privacy = %s", TrueOrFalse(privacy.value));
  AppendToLine(walk.in, step.line, ", Authorization = %s", TrueOrFalse(authorization.value));
  isPrivate = privacy.value != 0;
  return status;
}

int32_t DecodeUsmParts(SnmpWalk& walk) {
  const Field type = TakeU8(walk.c);
  AddLine(walk.in, type, "Storage Type: [0x%.02X] = OCTET STRING", type.value);
  const int32_t status = StepLength(walk, "Security Parameters Length:");
  return status == kAsnDecoded ? StepRows(walk, kUserRow) : status;
}

int32_t DecodeScopedData(SnmpWalk& walk, bool isPrivate) {
  int32_t status = StepRows(walk, kScopedRow);
  if (status != kAsnDecoded) return status;
  if (isPrivate) {
    const Field encrypted = Rest(walk.c);
    AddBlock(walk.in, encrypted, "Encrypted SNMP Data");
    return encrypted.here ? kAsnDecoded : kAsnTruncated;
  }
  status = StepRows(walk, kContextFields);
  return status == kAsnDecoded ? DecodeSnmpPdu(walk) : status;
}

}  // namespace

int32_t DecodeSnmpUsm(SnmpWalk& walk) {
  if (Left(walk.c) < 1) return kAsnTruncated;
  const int32_t start = walk.c.offset;
  const LineHandle line = AddLine(walk.in, Ahead(walk.c, 0), "Security Parameters:");
  SnmpWalk parts{Beneath(walk.in, line), walk.root, walk.c};
  const int32_t status = DecodeUsmParts(parts);
  walk.c = parts.c;
  SetRange(walk.in, line, start, walk.c.offset - start);
  return status;
}

int32_t DecodeSnmpV3Message(const Place& at, Cursor c) {
  if (PeekU8(c) != kAsnSequence) return kAsnNotThisType;
  SnmpWalk walk = BeginSnmp(at, c);
  AppendToLine(walk.in, walk.root, "3:");
  bool isPrivate = false;
  int32_t status = StepRows(walk, kMessageRow);
  if (status == kAsnDecoded) status = DecodeFlags(walk, isPrivate);
  if (status == kAsnDecoded) status = StepRows(walk, kModelRow);
  if (status == kAsnDecoded) status = DecodeSnmpUsm(walk);
  return status == kAsnDecoded ? DecodeScopedData(walk, isPrivate) : status;
}

}  // namespace qxview
