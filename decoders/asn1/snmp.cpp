// Messages of versions 1 and 2c, and the steps that every version is walked with.
#include "decoders/asn1/snmp.h"

#include "core/line_facts.h"

namespace qxview {
namespace {

constexpr int32_t kDeepestBase = 2;   // the lengths of a binding's values still have an image of their own

// A titled line that grows over what `decode` takes.
template <class Decode>
int32_t Step(SnmpWalk& walk, const char* title, SnmpStep& step, Decode decode) {
  step.text[0] = step.longText[0] = 0;
  step.value = {kAsnNoValue, step.text, sizeof step.text};
  if (Left(walk.c) < 1) return kAsnTruncated;
  step.line = AddLine(walk.in, Ahead(walk.c, 0), "%s", title);
  const int32_t start = walk.c.offset;
  const int32_t status = decode(Beneath(walk.in, step.line), walk.c, step.value);
  SetRange(walk.in, step.line, start, walk.c.offset - start);
  return status;
}

int32_t StepInteger(SnmpWalk& walk, const BerRow& row) {
  SnmpStep step;
  const int32_t status = StepNumber(walk, row.title, DecodeAsnInteger, step);
  if (status != kAsnDecoded) return status;
  const BerType& type = *row.type;
  const uint32_t number = step.value.number;
  if (type.names.rows) {
    const char* name = NameOf(type.names, number);
    AppendToLine(walk.in, step.line, " [%u] = %s", number, name);
    if (type.label) AppendToLine(walk.in, walk.root, "%s%s", type.label, name);
  } else {
    AppendToLine(walk.in, step.line, " %u", number);
    if (type.label) AppendToLine(walk.in, walk.root, "%s%u", type.label, number);
  }
  if (KeepsFacts(walk.in.view)) [[unlikely]] NumberLine(walk.in.view, step.line, number, false);
  return status;
}

int32_t StepRow(SnmpWalk& walk, const BerRow& row) {
  SnmpStep step;
  switch (row.type->form) {
    case BerForm::kNumber: return StepInteger(walk, row);
    case BerForm::kText: return StepString(walk, row.title, row.type->label, step);
    default: break;
  }
  const Field marker = Left(walk.c) > 0 ? TakeU8(walk.c) : Field{};
  if (!marker.here) return kAsnTruncated;
  AddLine(walk.in, marker, "ASN Sequence Identifier: 0x%.02X (%s)", marker.value, row.type->label);
  const int32_t status = StepLength(walk, row.title);
  return status == kAsnDecoded ? StepRows(walk, row.type->rows) : status;
}

}  // namespace

SnmpWalk BeginSnmp(const Place& at, const Cursor& c) {
  Place top = at;
  if (top.level > kDeepestBase) top.level = kDeepestBase;
  const LineHandle root = AddLine(top, Ahead(c, Left(c)), "SNMPv");
  return {Beneath(top, root), root, c};
}

int32_t StepLength(SnmpWalk& walk, const char* title) { return DecodeAsnLengthLine(walk.in, walk.c, title); }

int32_t StepNumber(SnmpWalk& walk, const char* title, SnmpNumber decode, SnmpStep& step) {
  return Step(walk, title, step, decode);
}

int32_t StepString(SnmpWalk& walk, const char* title, const char* label, SnmpStep& step) {
  char shortText[kAsnShortTextSize];
  const AsnStringForm form{label, shortText, sizeof shortText, false};
  return Step(walk, title, step, [&](const Place& under, Cursor& c, AsnResult& out) {
    return DecodeAsnOctetString(under, c, form, out);
  });
}

int32_t StepTicks(SnmpWalk& walk, const char* title, SnmpStep& step) {
  return Step(walk, title, step, [&](const Place& under, Cursor& c, AsnResult& out) {
    return DecodeAsnTimeTicks(under, c, step.longText, sizeof step.longText, out);
  });
}

int32_t StepRows(SnmpWalk& walk, std::span<const BerRow> rows) {
  int32_t status = kAsnDecoded;
  for (const BerRow& row : rows) {
    if ((status = StepRow(walk, row)) != kAsnDecoded) break;
  }
  return status;
}

int32_t PeekSnmpVersion(Cursor c) {
  if (TakeU8(c).value != kAsnSequence) return -1;
  if (!TakeBerLength(c).here) return -1;
  const Field version = TakeU24(c);
  return version.here && version.value >> 8 == 0x0201 ? static_cast<int32_t>(version.value & 0xFF) : -1;
}

int32_t DecodeSnmpMessage(const Place& at, Cursor c) {
  if (PeekU8(c) != kAsnSequence) return kAsnNotThisType;
  SnmpWalk walk = BeginSnmp(at, c);
  const Place in = walk.in;
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

int32_t DecodeSnmpPayload(const Place& at, Cursor c) {
  switch (PeekSnmpVersion(c)) {
    case 0:
    case 1: return DecodeSnmpMessage(at, c);
    case 3: return DecodeSnmpV3Message(at, c);
    default: return 0;
  }
}

}  // namespace qxview
