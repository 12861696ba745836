// Distinguished names (RFC 5280 4.1.2.4) and general names (4.2.1.6).
#include "decoders/asn1/x509.h"

namespace qxview {
namespace {

// What names are written with (RFC 4514 3, and those in common use).
constexpr auto kShortOfX520 = SortedNames({
    {3, "CN"}, {4, "SN"}, {5, "serialNumber"}, {6, "C"}, {7, "L"}, {8, "ST"}, {9, "STREET"}, {10, "O"}, {11, "OU"},
    {12, "title"}, {13, "description"}, {15, "businessCategory"}, {17, "postalCode"}, {42, "GN"}, {43, "initials"},
    {44, "generationQualifier"}, {46, "dnQualifier"}, {65, "pseudonym"}, {97, "organizationIdentifier"}});

const char* ShortName(const Cursor& id) {
  constexpr uint8_t kX520[] = {0x55, 0x04};
  constexpr uint8_t kDomain[] = {0x09, 0x92, 0x26, 0x89, 0x93, 0xF2, 0x2C, 0x64, 0x01, 0x19};
  const char* name = NameOfObject(id);
  if (Left(id) == 3 && PeekIs(id, 0, kX520)) return LookupName(kShortOfX520, PeekU8(id, 2), name ? name : kUnknown);
  if (PeekIs(id, 0, kDomain)) return "DC";
  return name;
}

struct Attribute {
  BerElement whole, id, value;
};
// The next attribute of a relative name.
bool TakeAttribute(Cursor& c, Attribute& out) {
  if (!TakeDer(c, kAsnSequence, &out.whole)) return false;
  Cursor inner = out.whole.contents;
  if (!TakeDer(inner, kAsnObjectId, &out.id)) return false;
  out.value = TakeBer(inner);
  return true;
}

DerText TextOfAttribute(const Attribute& attribute) {
  DerText made, value = attribute.value.here ? DerStringText(attribute.value) : DerText{""};
  const char* name = ShortName(attribute.id.contents);
  const TextSlice shown{value.text, kLineSize};
  if (name) FormatInto(made.text, sizeof made.text, "%s=%s", name, shown);
  else FormatInto(made.text, sizeof made.text, "%s=%s", TextOfObjectId(attribute.id.contents), shown);
  return made;
}

// Attributes of a relative name, which stands in a set of its own.
void ShowRelative(const Place& in, Cursor& c) {
  Loop loop;
  Attribute attribute;
  while (MoreAt(in, c, loop) && TakeAttribute(c, attribute)) {
    const Place under = Under(in, AddLine(in, WholeOf(attribute.whole), "Attribute: %s", TextOfAttribute(attribute)));
    ShowDerObject(under, attribute.id, "Attribute Type");
    if (attribute.value.here) ShowDerString(under, attribute.value, "Value");
  }
  c.ranShort = false;
  AddBlock(in, Rest(c), "Data");
}

}  // namespace

DerText X509NameText(Cursor name) {
  DerText made{""};
  BerElement sequence, set;
  if (!TakeDer(name, kAsnSequence, &sequence)) return made;
  Cursor sets = sequence.contents;
  constexpr int32_t kMostRelatives = 16;
  for (int32_t i = 0; i < kMostRelatives && TakeDer(sets, kDerSet, &set); ++i) {
    Cursor relative = set.contents;
    Attribute attribute;
    for (int32_t j = 0; j < kMostRelatives && TakeAttribute(relative, attribute); ++j) {
      if (made.text[0]) AppendFormat(made.text, sizeof made.text, ", ");
      AppendFormat(made.text, sizeof made.text, "%s", TextOfAttribute(attribute));
    }
  }
  return made;
}

void ShowX509Name(const Place& in, Cursor& c, const char* title) {
  BerElement name, set;
  if (Left(c) < 1) return;
  const Cursor start = c;
  if (!TakeDer(c, kAsnSequence, &name)) return;
  const Place under = Under(in, AddLine(in, WholeOf(name), "%s: %s", title, in.dead ? DerText{""} : X509NameText(start)));
  Cursor sets = name.contents;
  Loop loop;
  while (MoreAt(under, sets, loop) && TakeDer(sets, kDerSet, &set)) {
    Cursor relative = set.contents;
    ShowRelative(under, relative);
  }
  sets.ranShort = false;
  AddBlock(under, Rest(sets), "Data");
}

void ShowGeneralName(const Place& in, Cursor& c, const char* title) {
  const Cursor start = c;
  const BerElement name = TakeBer(c);
  if (!name.here) {
    c = start;
    return static_cast<void>(AddBlock(in, Rest(c), "Data"));
  }
  const Field contents = ContentsOf(name);
  Cursor inner = name.contents;
  switch (name.identifier) {
    case DerContext(1): AddLine(in, contents, "%s: email:%s", title, Text(contents)); return;
    case DerContext(2): AddLine(in, contents, "%s: DNS:%s", title, Text(contents)); return;
    case DerContext(6): AddLine(in, contents, "%s: URI:%s", title, Text(contents)); return;
    case DerContext(7):
      if (contents.length == 4) AddLine(in, contents, "%s: IP:%s", title, IPv4Text(contents.bytes));
      else if (contents.length == 16) AddLine(in, contents, "%s: IP:%s", title, IPv6Text(contents.bytes));
      else AddLine(in, contents, "%s: IP:%s", title, HexText(contents));   // with a mask, of constraints
      return;
    case DerContext(8): ShowDerObject(in, name, "Registered ID"); return;
    case DerExplicit(4): ShowX509Name(in, inner, "Directory Name"); break;
    case DerExplicit(0): {
      const Place under = Under(in, AddLine(in, WholeOf(name), "Other Name:"));
      BerElement id;
      if (TakeDer(inner, kAsnObjectId, &id)) ShowDerObject(under, id, "Name Type");
      return ShowDerValues(under, inner);
    }
    default: return ShowDerValues(Under(in, AddLine(in, WholeOf(name), "Name: [%u]", name.identifier & 0x1F)), inner);
  }
  AddBlock(in, Rest(inner), "Data");
}

void ShowGeneralNames(const Place& in, Cursor& c) {
  Loop loop;
  while (MoreAt(in, c, loop)) ShowGeneralName(in, c, "General Name");
}

}  // namespace qxview
