// Megaco in its binary form: H.248's messages by the basic encoding rules (ITU-T H.248.1 Annex A, X.690), walked by the tables
// of megaco_syntax.h. A line each over what an element holds; of what has members, over the whole element.
#include "decoders/app/megaco.h"

#include <cstring>

#include "core/rows.h"
#include "decoders/app/megaco_names.h"
#include "decoders/app/megaco_syntax.h"
#include "decoders/app/sdp.h"
#include "decoders/asn1/der.h"
#include "decoders/common/text_lines.h"

namespace qxview {
namespace {

constexpr uint32_t kClass = 0xC0, kContext = 0x80, kConstructed = 0x20, kTag = 0x1F;
constexpr uint32_t kAnyPackage = 0xFFFF;

struct Walk {
  int32_t depth = 0;
  uint32_t item = 0;   // the package and item that parameters belong to
  uint8_t* description = nullptr;   // the lines of a session description that a group of properties holds
  int32_t described = 0;
};

// The element at the cursor. Of one without a definite length the contents run to the end of what is left: they end where
// two zero octets stand.
struct Element {
  uint32_t identifier;
  Cursor whole, contents;
  bool isIndefinite, here;
};

Element TakeElement(Cursor& c) {
  constexpr uint32_t kIndefinite = 0x80;
  Element element{PeekU8(c), c, c, PeekU8(c, 1) == kIndefinite && (PeekU8(c) & kConstructed), false};
  if (element.isIndefinite) {
    TakeBytes(element.contents, 2);
    element.here = true;
    return element;
  }
  const BerElement known = TakeBer(c);
  element.here = known.here;
  element.whole = known.whole;
  element.contents = known.contents;
  return element;
}

bool IsEnd(const Cursor& c) { return Left(c) >= 2 && PeekU16(c) == 0; }
Field Over(const Cursor& c) { return Ahead(c, Left(c)); }

// --- what has no members ---

constexpr auto kWildcardNames = SortedNames({{0, "Choose"}, {1, "All"}});
constexpr auto kLevelNames = SortedNames({{0, "This One"}, {1, "This One and Below"}});
constexpr auto kWildcard = Rows<NoValues>({
    Word(1), Bits(0, 1, "Wildcard", kWildcardNames), Bits(1, 1, "Levels", kLevelNames), Bits(2, 6, "Bit Position")});
constexpr const char* kTokens[] = {"Mux", "Modem", "Media", "Events", "Signals", "Digit Map", "Statistics", "Observed Events",
                                   "Packages", "Event Buffer"};
constexpr const char* kCompletions[] = {"Time-Out", "Interrupted by Event", "Interrupted by New Signals Descriptor",
                                        "Other Reason", "Iteration"};

// A package and what it holds: four octets, all ones for any.
void ShowPackaged(Walk& walk, const Place& in, const Cursor& contents, const char* label, const Names& names) {
  const uint32_t both = PeekU32(contents), package = both >> 16, item = both & 0xFFFF;
  if (Left(contents) != 4) return (void)AddLine(in, Over(contents), "%s: %s", label, HexDigits(Over(contents)));
  walk.item = both;
  const Place under = Under(in, AddLine(in, Over(contents), "%s: %s/%s", label,
                                        package == kAnyPackage ? "Any" : LookupName(kMegacoPackageNames, package),
                                        item == kAnyPackage ? "Any" : names.NameOf(both)));
  Cursor parts = contents;
  const Field first = TakeU16(parts), second = TakeU16(parts);
  AddLine(under, first, "Package: 0x%.04X", first.value);
  AddLine(under, second, "Item: 0x%.04X", second.value);
}

void ShowParameterName(const Walk& walk, const Place& in, const Cursor& contents, const char* label, const Names& names) {
  const uint32_t parameter = PeekU16(contents);
  if (Left(contents) != 2) return (void)AddLine(in, Over(contents), "%s: %s", label, HexDigits(Over(contents)));
  const bool isBase = walk.item < 0x00FF0000 && (walk.item & 0xFFFF) < 0x100;
  const uint32_t code = (walk.item & 0xFFFF0000) << 8 | (walk.item & 0xFF) << 16 | parameter;
  AddLine(in, Over(contents), "%s: 0x%.04X = %s", label, parameter, isBase ? names.NameOf(code) : kUnknown);
}

constexpr int32_t kMostDescribed = 4096;
constexpr uint32_t kFirstSdp = 0xB001, kLastSdp = 0xB00F;

// Properties that stand for lines of session descriptions (ITU-T H.248.1 Annex C.11).
void ShowSessionLine(Walk& walk, const Place& in, const Field& value) {
  constexpr char kTypes[] = "vosiuepcbzkatrm";
  const uint8_t type = static_cast<uint8_t>(kTypes[walk.item - kFirstSdp]);
  ShowSdpValue(in, type, value);
  if (!walk.description) walk.description = TakeFrameMemory(in.view, kMostDescribed);
  constexpr int32_t kAround = 4;   // the type, "=", the line's end
  if (!walk.description || walk.described + value.length + kAround > kMostDescribed) return;
  uint8_t* const line = walk.description + walk.described;
  line[0] = type;
  line[1] = '=';
  std::memcpy(line + 2, value.bytes, static_cast<size_t>(value.length));
  line[value.length + 2] = '\r';
  line[value.length + 3] = '\n';
  walk.described += value.length + kAround;
}

void EndDescription(Walk& walk, const Place& in) {
  if (walk.described > 0) AnnounceSdp(in, MakeCursor(walk.description, 0, walk.described));
  walk.described = 0;
}

// An octet string that holds an element of a universal type: that, too. keys: text Value
void ShowValue(Walk& walk, const Place& in, const Cursor& contents, const char* label) {
  const LineHandle line = AddLine(in, Over(contents), "%s: %s", label, HexDigits(Over(contents)));
  const BerElement inner = PeekBer(contents);
  const bool isUniversal = inner.here && (inner.identifier & kClass) == 0 && inner.identifier != 0;
  const bool isWrapped = isUniversal && inner.size == Left(contents);
  if (walk.item >= kFirstSdp && walk.item <= kLastSdp) {
    const Cursor value = isWrapped ? inner.contents : contents;
    if (Left(value) > 0 && IsReadable(value)) return ShowSessionLine(walk, Under(in, line), Over(value));
  }
  if (!isWrapped) return;
  Cursor c = contents;
  ShowDerValues(Under(in, line), c);
}

void ShowTerminationName(const Place& in, const Cursor& contents, const char* label) {
  bool isRoot = Left(contents) > 0;
  for (int32_t i = 0; i < Left(contents); ++i) isRoot = isRoot && PeekU8(contents, i) == 0xFF;
  AddLine(in, Over(contents), "%s: %s%s", label, HexDigits(Over(contents)), isRoot ? " (Root)" : "");
}

void ShowNamed(const Place& in, const Cursor& contents, const char* label, const Names& names) {
  AddLine(in, Over(contents), "%s: %u = %s", label, BerNumber(contents), names.NameOf(BerNumber(contents)));
}

const char* ContextName(uint32_t context) {
  switch (context) {
    case 0: return " (Null)";
    case 0xFFFFFFFE: return " (Choose)";
    case 0xFFFFFFFF: return " (All)";
    default: return "";
  }
}

void ShowAddress(const Place& in, const Cursor& contents, const char* label, int32_t size) {
  if (Left(contents) != size) return (void)AddLine(in, Over(contents), "%s: %s", label, HexDigits(Over(contents)));
  Cursor c = contents;
  const Field address = TakeBytes(c, size);
  if (size == 4) AddLine(in, address, "%s: %s", label, IPv4Text(address.bytes));
  else AddLine(in, address, "%s: %s", label, IPv6Text(address.bytes));
}

void ShowLeaf(Walk& walk, const Place& in, const Element& element, MegacoType type, const char* label) {
  const Cursor& contents = element.contents;
  const Field all = Over(contents);
  const BerElement plain{element.identifier, element.whole, contents, Left(element.whole), true};
  Cursor parts = contents;
  switch (type) {
    case kMegacoNumber: return (void)AddLine(in, all, "%s: %u", label, BerNumber(contents));
    case kMegacoBoolean: return ShowDerBoolean(in, plain, label);
    case kMegacoNull: return (void)AddLine(in, Over(element.whole), "%s: Null", label);
    case kMegacoText: return (void)AddLine(in, all, "%s: %s", label, Text(all));
    case kMegacoIPv4: return ShowAddress(in, contents, label, 4);
    case kMegacoIPv6: return ShowAddress(in, contents, label, 16);
    case kMegacoObject: return ShowDerObject(in, plain, label);
    case kMegacoContextId:
      return (void)AddLine(in, all, "%s: %u%s", label, BerNumber(contents), ContextName(BerNumber(contents)));
    case kMegacoErrorCode: return ShowNamed(in, contents, label, kMegacoErrorNames);
    case kMegacoPackageName:
      return (void)AddLine(in, all, "%s: 0x%.04X = %s", label, PeekU16(contents), LookupName(kMegacoPackageNames, PeekU16(contents)));
    case kMegacoPropertyName: return ShowPackaged(walk, in, contents, label, kMegacoPropertyNames);
    case kMegacoEventName: return ShowPackaged(walk, in, contents, label, kMegacoEventNames);
    case kMegacoSignalName: return ShowPackaged(walk, in, contents, label, kMegacoSignalNames);
    case kMegacoStatisticName: return ShowPackaged(walk, in, contents, label, kMegacoStatisticNames);
    case kMegacoEventParameterName: return ShowParameterName(walk, in, contents, label, kMegacoEventParameterNames);
    case kMegacoSignalParameterName: return ShowParameterName(walk, in, contents, label, kMegacoSignalParameterNames);
    case kMegacoTerminationName: return ShowTerminationName(in, contents, label);
    case kMegacoWildcard: return (void)ShowRows(in, parts, kWildcard);
    case kMegacoValue: return ShowValue(walk, in, contents, label);
    case kMegacoAuditTokens: return ShowDerFlags(in, plain, label, kTokens, sizeof kTokens / sizeof *kTokens);
    case kMegacoCompletionBits: return ShowDerFlags(in, plain, label, kCompletions, sizeof kCompletions / sizeof *kCompletions);
    default: break;
  }
  if (type >= kMegacoTopologyDirection) return ShowNamed(in, contents, label, kMegacoEnumerations[type - kMegacoTopologyDirection]);
  AddLine(in, all, "%s: %s", label, HexDigits(all));
}

// --- what has ---

void ShowElement(Walk& walk, const Place& in, Cursor& c, const Element& element, MegacoType type, const char* label);

const MegacoTable& TableOf(MegacoType type) { return kMegacoTables[type - kMegacoMessage]; }

const MegacoMember* FindTagged(const MegacoTable& table, uint32_t identifier) {
  if ((identifier & kClass) != kContext) return nullptr;
  for (int32_t i = 0; i < table.count; ++i) {
    if (table.members[i].tag == (identifier & kTag)) return &table.members[i];
  }
  return nullptr;
}

// Of lists of a choice the alternatives stand without an element around them.
const MegacoMember* FindMember(const MegacoTable& table, uint32_t identifier) {
  if (table.form != MegacoForm::kList) return FindTagged(table, identifier);
  const MegacoType each = table.members->type;
  const bool isChoice = each >= kMegacoMessage && TableOf(each).form == MegacoForm::kChoice;
  return isChoice ? FindTagged(TableOf(each), identifier) : table.members;
}

// What is left of an element; one without a definite length ends here, and what it stands in goes on behind it.
void EndElement(const Place& under, Cursor& c, const Element& element, Cursor& contents) {
  if (!element.isIndefinite) return (void)AddBlock(under, Rest(contents), "Element Data");
  const Field end = TakeBytes(contents, IsEnd(contents) ? 2 : 0);
  if (end.length == 2) AddLine(under, end, "End of Contents: %s", HexText(end));
  c = contents;
  if (!under.dead) SetRange(under, under.parent, element.whole.offset, c.offset - element.whole.offset);
}

// keys: tables decoders/app/megaco_syntax.h
// keys: text Audit Tokens, Notify Completion, Choice
void ShowMembers(Walk& walk, const Place& in, Cursor& c, const MegacoTable& table) {
  if (walk.depth >= kDeepestBinaryMegaco) return (void)AddBlock(in, Rest(c), "Nested Data");
  ++walk.depth;
  const uint32_t outer = walk.item;
  Loop loop;
  while (MoreAt(in, c, loop) && !IsEnd(c)) {
    const Cursor start = c;
    const Element element = TakeElement(c);
    if (!element.here) {
      c = start;
      AddBlock(in, Rest(c), "Element Data");
      break;
    }
    const MegacoMember* member = FindMember(table, element.identifier);
    if (member) {
      ShowElement(walk, in, c, element, member->type, member->label);
    } else {
      const Place under = Under(in, AddLine(in, Over(element.whole), "Unknown Element: [%u]", element.identifier & kTag));
      Cursor contents = element.contents;
      AddBlock(under, Rest(contents), "Element Data");
      if (element.isIndefinite) c = contents;
    }
  }
  walk.item = outer;
  --walk.depth;
}

void ShowElement(Walk& walk, const Place& in, Cursor& c, const Element& element, MegacoType type, const char* label) {
  if (type < kMegacoMessage) return ShowLeaf(walk, in, element, type, label);
  const LineHandle line = AddLine(in, Over(element.whole), "%s:", label);
  const Place under = Under(in, line);
  Cursor contents = element.contents;
  ShowMembers(walk, under, contents, TableOf(type));
  if (type == kMegacoProperties) EndDescription(walk, under);
  EndElement(under, c, element, contents);
}

// "Transaction Request 7" of the first transaction, where lengths are definite.
void NameMessage(const Place& at, LineHandle line, const Cursor& message) {
  Cursor list = FindBerContents(FindBerContents(FindBerContents(message, 0xA1), 0xA2), 0xA1);
  const BerElement first = TakeBer(list);
  const MegacoMember* member = first.here ? FindTagged(TableOf(kMegacoTransaction), first.identifier) : nullptr;
  if (!member) return;
  AppendToLine(at, line, ": %s", member->label);
  if (member->type != kMegacoTransactionAcks) AppendToLine(at, line, " %u", BerNumber(TakeBerContents(first.contents, kContext)));
}

}  // namespace

bool IsBinaryMegaco(const Cursor& c) {
  if (PeekU8(c) != kAsnSequence || Left(c) < 8) return false;
  Cursor walk = c;
  Element message = TakeElement(walk);
  const uint32_t first = PeekU8(message.contents);
  return message.here && (first == 0xA0 || first == 0xA1);   // the header of its authentication, or the message
}

int32_t DecodeBinaryMegaco(const Place& at, Cursor c) {
  if (!IsBinaryMegaco(c)) return 0;
  Walk walk;
  const Element message = TakeElement(c);
  const LineHandle line = AddLine(at, Over(message.whole), "Megaco");
  NameMessage(at, line, message.contents);
  const Place in = Under(at, line);
  Cursor contents = message.contents;
  ShowMembers(walk, in, contents, TableOf(kMegacoMessage));
  EndElement(in, c, message, contents);
  AddRawRest(at, c, "Megaco Data");
  return 1;
}

}  // namespace qxview
