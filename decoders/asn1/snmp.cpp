// Messages of versions 1 and 2c, and the steps that every version is walked with.
#include "decoders/asn1/snmp.h"

namespace qxview {
namespace {

constexpr int32_t kDeepestBase = 2;   // the lengths of a binding's values still have an image of their own

// A titled line that grows over what `decode` takes.
template <class Decode>
int32_t Step(SnmpWalk& walk, const char* title, SnmpStep& step, Decode decode) {
  step.text[0] = step.longText[0] = 0;
  step.value = {kAsnNoValue, step.text, sizeof step.text, 0};
  if (Left(walk.c) < 1) return kAsnTruncated;
  const Place lines = LinesOf(walk);
  step.line = AddLine(lines, Ahead(walk.c, 0), "%s", title);
  const int32_t status = decode(Beneath(walk.at, step.line), walk.c, step.value);
  SetRange(lines, step.line, walk.c.offset, step.value.consumed);
  TakeBytes(walk.c, step.value.consumed);
  return status;
}

}  // namespace

SnmpWalk BeginSnmp(const Place& at, const Cursor& c, LineHandle* parents) {
  Place top = at;
  if (top.level > kDeepestBase) top.level = kDeepestBase;
  parents[0] = AddLine(top, Ahead(c, Left(c)), "SNMPv");
  return {{at.view, at.tree, parents, top.level, 0}, parents[0], c};
}

int32_t StepLength(SnmpWalk& walk, const char* title) {
  AsnResult length{};
  const int32_t status = DecodeAsnLengthLine(walk.at, walk.c, title, length);
  TakeBytes(walk.c, length.consumed);
  return status;
}

int32_t StepNumber(SnmpWalk& walk, const char* title, SnmpNumber decode, SnmpStep& step) {
  return Step(walk, title, step, decode);
}

int32_t StepString(SnmpWalk& walk, const char* title, const char* label, SnmpStep& step) {
  char shortText[kAsnShortTextSize];
  const AsnStringForm form{label, shortText, sizeof shortText, false};
  return Step(walk, title, step, [&](const AsnPlace& under, const Cursor& c, AsnResult& out) {
    return DecodeAsnOctetString(under, c, form, out);
  });
}

int32_t PeekSnmpVersion(const uint8_t* data, int32_t length) {
  Cursor c = MakeCursor(data, 0, length);
  if (TakeU8(c).value != kAsnSequence) return -1;
  AsnResult header{};
  if (DecodeAsnLength(AsnPlace{}, c, header) != kAsnDecoded) return -1;
  TakeBytes(c, header.consumed);
  const Field version = TakeU24(c);
  return version.here && version.value >> 8 == 0x0201 ? static_cast<int32_t>(version.value & 0xFF) : -1;
}

int32_t DecodeSnmpMessage(const Place& at, Cursor c) {
  if (Left(c) < 1 || c.at[0] != kAsnSequence) return kAsnNotThisType;
  LineHandle parents[kAsnDepths];
  SnmpWalk walk = BeginSnmp(at, c, parents);
  const Place in = LinesOf(walk);
  const Field marker = TakeU8(walk.c);
  AddLine(in, marker, "ASN Object Identifier: 0x%.02X (SNMP Message)", marker.value);
  if (const int32_t status = StepLength(walk, "SNMP Length:"); status != kAsnDecoded) return status;

  SnmpStep step;
  int32_t status = StepNumber(walk, "SNMP Version:", DecodeAsnInteger, step);
  if (status != kAsnDecoded) return status;
  AppendToLine(in, step.line, " %u", step.value.number + 1);
  AppendToLine(in, walk.root, "%u:", step.value.number + 1);

  status = StepString(walk, "SNMP Community Name:", "Name", step);
  if (status != kAsnDecoded) return status;
  if (step.value.number != kAsnNoValue) {
    AppendToLine(in, step.line, " %s", static_cast<const char*>(step.text));
    AppendToLine(in, walk.root, " %s", static_cast<const char*>(step.text));
  }
  return DecodeSnmpPdu(walk);
}

int32_t DecodeSnmp(const Place& at, const uint8_t* data, int32_t frameOffset, int32_t length) {
  const Cursor c = MakeCursor(data, frameOffset, length);
  switch (PeekSnmpVersion(data, length)) {
    case 0:
    case 1: return DecodeSnmpMessage(at, c);
    case 3: return DecodeSnmpV3Message(at, c);
    default: return 0;
  }
}

int32_t DecodeSnmpPayload(const Place& at, Cursor c) { return DecodeSnmp(at, c.at, c.offset, Left(c)); }

}  // namespace qxview
