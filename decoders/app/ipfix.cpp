// NetFlow version 9 (RFC 3954) and IP Flow Information Export (RFC 7011, lists: RFC 6313): which flows did an exporter
// see? Data sets hold records whose fields a template told before, in this message or in an earlier one.
//
//   version 9: version count uptime seconds sequence source-id | set-id length records... | ...
//   IPFIX:     version length seconds sequence domain          | set-id length records... | ...
#include <cstring>

#include "decoders/app/flow_elements.h"
#include "decoders/app/flow_templates.h"
#include "decoders/states.h"

namespace qxview {
namespace {

constexpr uint32_t kVersion9 = 9, kVersionIpfix = 10;
constexpr int32_t kHeader9 = 20, kHeaderIpfix = 16, kSetHeader = 4;
constexpr uint32_t kVariableLength = 0xFFFF;
constexpr uint32_t kEnterpriseBit = 0x8000;
constexpr uint32_t kFirstDataSet = 256;

struct Header {
  Field version, count, domain;
};
constexpr auto kHeaderRows9 = Rows<Header>({
    Number(2, "Version").Into(&Header::version), Number(2, "Count").Into(&Header::count),
    Number(4, "System Uptime", " milliseconds"), UnixTime(4, "Unix Seconds"), Number(4, "Sequence Number"),
    Number(4, "Source ID").Into(&Header::domain)});
constexpr auto kHeaderRowsIpfix = Rows<Header>({
    Number(2, "Version").Into(&Header::version), Number(2, "Length").Into(&Header::count), UnixTime(4, "Export Time"),
    Number(4, "Sequence Number"), Number(4, "Observation Domain ID").Into(&Header::domain)});

constexpr auto kScopeNames = SortedNames({
    {1, "System"}, {2, "Interface"}, {3, "Line Card"}, {4, "Cache"}, {5, "Template"}});
constexpr auto kListSemanticsNames = SortedNames({
    {0, "noneOf"}, {1, "exactlyOneOf"}, {2, "oneOrMoreOf"}, {3, "allOf"}, {4, "ordered"}, {255, "undefined"}});

// One message.
struct Message {
  uint32_t version, domain;
  uint32_t flows;     // shown so far
  int32_t nesting;    // of lists
};

const char* SetName(uint32_t version, uint32_t id) {
  if (id >= kFirstDataSet) return "Data";
  if (version == kVersion9) return id == 0 ? "Template" : id == 1 ? "Options Template" : kUnknown;
  return id == 2 ? "Template" : id == 3 ? "Options Template" : kUnknown;
}

FlowTemplateKey KeyOf(const Place& in, const Message& message, uint32_t templateId) {
  const AddressSlot& source = PacketOf(in).source;
  FlowTemplateKey key{};
  std::memcpy(key.exporter, source.address, sizeof key.exporter);
  key.kind = source.kind;
  key.domain = message.domain;
  key.version = static_cast<uint16_t>(message.version);
  key.templateId = static_cast<uint16_t>(templateId);
  return key;
}

// What a template says of a field.
struct Specifier {
  Field type, length, enterprise;
  uint32_t number, enterpriseNumber;
};
bool TakeSpecifier(Cursor& c, uint32_t version, Specifier& out) {
  out = Specifier{};
  out.type = TakeU16(c);
  out.length = TakeU16(c);
  out.number = out.type.value;
  if (version == kVersionIpfix && out.type.value & kEnterpriseBit) {
    out.number &= ~kEnterpriseBit;
    out.enterprise = TakeU32(c);
    out.enterpriseNumber = out.enterprise.value;
  }
  return !c.ranShort;
}

// The scopes of version 9 have numbers of their own.
ShortText<96> SpecifierName(const Specifier& specifier, uint32_t version, bool isScope) {
  if (version != kVersion9 || !isScope) return FlowFieldName(specifier.enterpriseNumber, specifier.number);
  ShortText<96> name;
  FormatInto(name.text, sizeof name.text, "Scope %s", LookupName(kScopeNames, specifier.number));
  return name;
}

void ShowSpecifier(const Place& in, const Cursor& start, const Specifier& specifier, uint32_t version, bool isScope,
                   const Cursor& end) {
  const auto name = SpecifierName(specifier, version, isScope);
  const Place under = Under(in, AddLine(in, Ahead(start, end.offset - start.offset), "%s: %s",
                                        isScope ? "Scope Field" : "Field", name.text));
  if (version == kVersionIpfix) {
    const BitPicture bit = BitsOf(specifier.type, 0, 1), number = BitsOf(specifier.type, 1, 15);
    AddBitLine(under, specifier.type, "%s: Enterprise = %s", bit.picture, TrueOrFalse(bit.value));
    AddBitLine(under, specifier.type, "%s: Type = %u (%s)", number.picture, number.value, name.text);
  } else {
    AddLine(under, specifier.type, "Type: %u = %s", specifier.number, name.text);
  }
  if (specifier.length.value == kVariableLength && version == kVersionIpfix) {
    AddLine(under, specifier.length, "Length: %u = Variable", specifier.length.value);
  } else {
    AddLine(under, specifier.length, "Length: %u", specifier.length.value);
  }
  AddLine(under, specifier.enterprise, "Enterprise Number: %u = %s", specifier.enterpriseNumber,
          FlowEnterpriseName(specifier.enterpriseNumber));
}

// Shows the fields of a template and remembers it when all of them are there.
void TakeTemplateFields(const Place& in, Cursor& c, const Message& message, uint32_t templateId, FlowTemplate made,
                        uint32_t wanted) {
  const Cursor start = c;
  uint32_t leastLength = 0;
  Loop loop;
  Specifier specifier;
  while (made.fields < wanted && MoreAt(in, c, loop)) {
    const Cursor before = c;
    if (!TakeSpecifier(c, message.version, specifier)) return;
    ShowSpecifier(in, before, specifier, message.version, made.fields < made.scopes, c);
    leastLength += specifier.length.value == kVariableLength ? 1 : specifier.length.value;
    ++made.fields;
  }
  if (made.fields < wanted || leastLength > 0xFFFF || PacketOf(in).quoted) return;
  made.leastLength = static_cast<uint16_t>(leastLength);
  const FlowTemplateKey key = KeyOf(in, message, templateId);
  const StateBytes bytes{start.at, static_cast<uint32_t>(c.offset - start.offset)};
  // Exporters tell their templates over and over: what is known as it is keeps its bytes.
  StateBytes known{};
  const bool isKnown = Recall(in.view, kFlowTemplates, key, 1, &known) && known.length == bytes.length &&
                       std::memcmp(known.data, bytes.data, bytes.length) == 0;
  if (isKnown) {
    Revise(in.view, kFlowTemplates, key, 1, made);
  } else {
    Remember(in.view, kFlowTemplates, key, made, bytes);
  }
}

void DecodeTemplate(const Place& set, Cursor& c, const Message& message, bool isOptions) {
  const Cursor start = c;
  const Field id = TakeU16(c), count = TakeU16(c);
  if (!count.here) return;
  const Place in = Under(set, AddLine(set, Ahead(start, 4), "%sTemplate %u", isOptions ? "Options " : "", id.value));
  AddLine(in, id, "Template ID: %u", id.value);
  FlowTemplate made{};
  made.isOptions = isOptions;
  uint32_t wanted = count.value;
  if (isOptions && message.version == kVersion9) {   // counted in bytes
    const Field options = TakeU16(c);
    AddLine(in, count, "Option Scope Length: %u", count.value);
    AddLine(in, options, "Option Length: %u", options.value);
    made.scopes = static_cast<uint16_t>(count.value / 4);
    wanted = count.value / 4 + options.value / 4;
  } else {
    AddLine(in, count, "Field Count: %u", count.value);
  }
  if (wanted == 0) {
    AddLine(in, Ahead(start, 4), "Template Withdrawal");
    const FlowTemplateKey key = KeyOf(in, message, id.value);
    if (!PacketOf(in).quoted && Recall(in.view, kFlowTemplates, key)) {
      Revise(in.view, kFlowTemplates, key, 1, FlowTemplate{});
    }
    return;
  }
  if (isOptions && message.version == kVersionIpfix) {
    const Field scopes = TakeU16(c);
    AddLine(in, scopes, "Scope Field Count: %u", scopes.value);
    made.scopes = static_cast<uint16_t>(scopes.value);
  }
  AppendToLine(in, in.parent, ", %u fields", wanted);
  TakeTemplateFields(in, c, message, id.value, made, wanted);
  SetRange(in, in.parent, start.offset, c.offset - start.offset);
}

bool RecallTemplate(const Place& in, const Message& message, uint32_t templateId, FlowTemplate* out, Cursor* fields) {
  StateBytes bytes{};
  const FlowTemplate* known = Recall(in.view, kFlowTemplates, KeyOf(in, message, templateId), 1, &bytes);
  if (!known || known->fields == 0) return false;   // withdrawn
  *out = *known;
  *fields = MakeCursor(bytes.data, 0, static_cast<int32_t>(bytes.length));
  return true;
}

void ShowValue(const Place& in, Cursor value, const Specifier& specifier, Message& message, FlowSketch& sketch);

// Records of one template, as many as there are. What is shorter than a record fills up.
void ShowRecords(const Place& in, Cursor& c, const FlowTemplate& known, const Cursor& fields, Message& message,
                 bool isList) {
  Loop loop;
  while (known.leastLength > 0 && Left(c) >= known.leastLength && MoreAt(in, c, loop)) {
    const Cursor start = c;
    const uint32_t number = isList ? 0 : ++message.flows;
    const LineHandle top = isList             ? AddLine(in, Ahead(c, known.leastLength), "Record")
                           : known.isOptions  ? AddLine(in, Ahead(c, known.leastLength), "Options Record %u", number)
                                              : AddLine(in, Ahead(c, known.leastLength), "Flow %u", number);
    const Place under = Under(in, top);
    FlowSketch sketch{};
    Cursor specifiers = fields;
    Specifier specifier;
    Loop each;
    for (uint32_t i = 0; i < known.fields && MoreAt(in, specifiers, each); ++i) {
      if (!TakeSpecifier(specifiers, message.version, specifier)) break;
      uint32_t length = specifier.length.value;
      if (length == kVariableLength && message.version == kVersionIpfix) {
        const Cursor before = c;
        Field prefix = TakeU8(c);
        length = prefix.value;
        if (length == 255) {
          length = TakeU16(c).value;
          prefix = Ahead(before, 3);
        }
        if (c.ranShort) break;
        AddLine(under, prefix, "%s Length: %u", FlowFieldName(specifier.enterpriseNumber, specifier.number).text,
                length);
      }
      if (static_cast<int64_t>(length) > Left(c)) {
        c.ranShort = true;
        break;
      }
      Cursor value = TakeCursor(c, length);
      if (message.version == kVersion9 && i < known.scopes) {
        const Field field = Rest(value);
        AddLine(under, field, "%s: %I64u", SpecifierName(specifier, message.version, true).text,
                detail::NumberOf(field, false));
      } else {
        ShowValue(under, value, specifier, message, sketch);
      }
    }
    if (top) SetRange(under, top, start.offset, c.offset - start.offset);
    if (!known.isOptions) AddFlowSketch(under, sketch);
  }
}

void ShowListRecords(const Place& in, Cursor& c, uint32_t templateId, Message& message) {
  FlowTemplate known;
  Cursor fields;
  if (RecallTemplate(in, message, templateId, &known, &fields)) {
    ShowRecords(in, c, known, fields, message, true);
  } else {
    AddBlock(in, Rest(c), "Records of a Template that Was Not Seen");
  }
}

void ShowBasicList(const Place& in, Cursor& c, Message& message) {
  const Cursor start = c;
  Specifier specifier;
  if (!TakeSpecifier(c, kVersionIpfix, specifier)) return;
  ShowSpecifier(in, start, specifier, kVersionIpfix, false, c);
  FlowSketch ignored{};
  Loop loop;
  while (MoreAt(in, c, loop)) {
    uint32_t length = specifier.length.value;
    if (length == kVariableLength) {
      const Field prefix = TakeU8(c);
      length = prefix.value == 255 ? TakeU16(c).value : prefix.value;
      AddLine(in, prefix, "Length: %u", length);
    }
    Cursor value = TakeCursor(c, length);
    ShowValue(in, value, specifier, message, ignored);
  }
}

// RFC 6313: a semantic and then values of one element, records of one template, or of several.
void ShowList(const Place& at, Cursor value, FlowKind kind, const char* name, Message& message) {
  const Place in = Under(at, AddLine(at, Ahead(value, Left(value)), "%s", name));
  const Field semantic = TakeU8(value);
  AddLine(in, semantic, "Semantic: %u = %s", semantic.value, LookupName(kListSemanticsNames, semantic.value));
  if (kind == FlowKind::kList) {
    ShowBasicList(in, value, message);
  } else if (kind == FlowKind::kTemplateList) {
    const Field id = TakeU16(value);
    AddLine(in, id, "Template ID: %u", id.value);
    ShowListRecords(in, value, id.value, message);
  } else {
    Loop loop;
    while (MoreAt(in, value, loop)) {
      const Field id = TakeU16(value), length = TakeU16(value);
      AddLine(in, id, "Template ID: %u", id.value);
      AddLine(in, length, "Records Length: %u", length.value);
      Cursor records = TakeCursor(value, static_cast<int64_t>(length.value) - 4);
      ShowListRecords(in, records, id.value, message);
    }
  }
  value.ranShort = false;
  AddBlock(in, Rest(value), "List Data");
}

void ShowValue(const Place& in, Cursor value, const Specifier& specifier, Message& message, FlowSketch& sketch) {
  const FlowElement* element = specifier.enterpriseNumber == 0 ? FindFlowElement(specifier.number) : nullptr;
  if (!element || element->kind < FlowKind::kList || Left(value) == 0 || message.nesting >= kDeepestFlowLists) {
    return ShowFlowValue(in, value, specifier.enterpriseNumber, specifier.number, sketch);
  }
  ++message.nesting;
  ShowList(in, value, element->kind, element->name, message);
  --message.nesting;
}

void DecodeSet(const Place& at, Cursor& c, Message& message) {
  const Cursor start = c;
  const Field id = TakeU16(c), length = TakeU16(c);
  const char* name = SetName(message.version, id.value);
  const int32_t told = static_cast<int32_t>(length.value);
  const Field whole = Ahead(start, told < Left(start) ? told : Left(start));
  const Place in = Under(at, id.value >= kFirstDataSet ? AddLine(at, whole, "Data Set: Template %u", id.value)
                                                       : AddLine(at, whole, "%s Set", name));
  AddLine(in, id, "Set ID: %u = %s", id.value, name);
  AddLine(in, length, "Length: %u", length.value);
  // A length below its own header leads nowhere; what follows it cannot be told apart.
  Cursor records = TakeCursor(c, length.value < kSetHeader ? Left(c) : int64_t{length.value} - kSetHeader);
  if (id.value >= kFirstDataSet) {
    FlowTemplate known;
    Cursor fields;
    if (RecallTemplate(in, message, id.value, &known, &fields)) {
      ShowRecords(in, records, known, fields, message, false);
      records.ranShort = false;
      const Field padding = Rest(records);
      if (padding.length <= 8) AddLine(in, padding, "Padding: %s", HexText(padding));
      else AddBlock(in, padding, "Flow Data");
    } else {
      AddBlock(in, Rest(records), "Records of a Template that Was Not Seen");
    }
    return;
  }
  const bool isOptions = id.value == (message.version == kVersion9 ? 1u : 3u);
  if (isOptions || id.value == (message.version == kVersion9 ? 0u : 2u)) {
    Loop loop;
    while (Left(records) >= 4 && MoreAt(in, records, loop)) DecodeTemplate(in, records, message, isOptions);
    records.ranShort = false;
    const Field padding = Rest(records);
    AddLine(in, padding, "Padding: %s", HexText(padding));
  } else {
    AddBlock(in, Rest(records), "Set Data");
  }
}

}  // namespace

int32_t DecodeFlowMessages(const Place& at, Cursor c) {
  bool isFirst = true;
  Loop messages;
  while (MoreAt(at, c, messages)) {
    const uint32_t version = PeekU16(c), length = PeekU16(c, 2);
    const bool isIpfix = version == kVersionIpfix && length >= kHeaderIpfix;
    if (Left(c) < (isIpfix ? kHeaderIpfix : kHeader9) || (!isIpfix && (version != kVersion9 || !isFirst))) {
      if (isFirst) return 0;
      AddRawRest(at, c, "IPFIX Data");
      return 1;
    }
    isFirst = false;
    Cursor body = TakeCursor(c, isIpfix ? static_cast<int64_t>(length) : Left(c));
    body.begin = body.offset;
    const LineHandle top = isIpfix ? AddLine(at, Ahead(body, kHeaderIpfix), "IPFIX: Observation Domain %u, Sequence %u",
                                             PeekU32(body, 12), PeekU32(body, 8))
                                   : AddLine(at, Ahead(body, kHeader9), "NetFlow: Version 9, Source %u, Sequence %u",
                                             PeekU32(body, 16), PeekU32(body, 12));
    const Place in = Under(at, top);
    const Header header = isIpfix ? ShowRows(in, body, kHeaderRowsIpfix) : ShowRows(in, body, kHeaderRows9);
    Message message{version, header.domain.value, 0, 0};
    Loop sets;
    while (Left(body) >= kSetHeader && MoreAt(in, body, sets)) DecodeSet(in, body, message);
    if (message.flows) AppendToLine(in, in.parent, ", %u records", message.flows);
    CoverBytes(in, body);
    body.ranShort = false;
    AddBlock(in, Rest(body), "Flow Data");
  }
  return isFirst ? 0 : 1;
}

int32_t DecodeIpfix(const Place& at, Cursor c) { return PeekU16(c) == kVersionIpfix ? DecodeFlowMessages(at, c) : 0; }

}  // namespace qxview
