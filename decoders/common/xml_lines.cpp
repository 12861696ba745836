#include "decoders/common/xml_lines.h"

#include <cstring>

#include "decoders/common/header_lines.h"
#include "decoders/common/line_text.h"
#include "decoders/common/tells_all.h"

namespace qxview {
namespace {

// The bytes up to a mark, which is taken, too; all that are left where there is none.
Field TakeUpTo(Cursor& c, const char* mark) {
  const int32_t length = static_cast<int32_t>(std::strlen(mark));
  const uint8_t first = static_cast<uint8_t>(mark[0]);
  for (int32_t at = FindU8(c, first); at >= 0; at = FindU8(c, first, at + 1)) {
    const Field there = PeekBytes(c, at, length);
    if (!there.here || std::memcmp(there.bytes, mark, static_cast<size_t>(length)) != 0) continue;
    const Field inside = TakeBytes(c, at);
    TakeBytes(c, length);
    return inside;
  }
  return TakeBytes(c, Left(c));
}

// A declaration up to its ">", with what stands in brackets within.
Field TakeDeclaration(Cursor& c) {
  const Cursor start = c;
  const int32_t bracket = FindU8(c, '['), end = FindU8(c, '>');
  if (bracket >= 0 && bracket < end) TakeUpTo(c, "]");
  TakeUpTo(c, ">");
  const int32_t taken = c.offset - start.offset;
  return Ahead(start, taken > 0 && PeekU8(start, taken - 1) == '>' ? taken - 1 : taken);
}

// Character data in front of the next markup, blanks at both ends left out.
Field TakeText(Cursor& c) {
  const int32_t markup = FindU8(c, '<');
  const Field all = TakeBytes(c, markup < 0 ? Left(c) : markup);
  int32_t start = 0, end = all.length;
  while (start < end && IsSpace(PeekU8(all, start))) ++start;
  while (end > start && IsSpace(PeekU8(all, end - 1))) --end;
  return Slice(all, start, end - start);
}

Field TakeName(Cursor& c) {
  int32_t end = 0;
  while (end < Left(c) && !IsSpace(PeekU8(c, end)) && !std::strchr("<>/=\"'", PeekU8(c, end))) ++end;
  return TakeBytes(c, end);
}

// "&lt;", "&#65;", "&#x41;": the character, 0 for what is none of the five and no number.
uint32_t CharacterOfEntity(const Field& name) {
  constexpr struct {
    const char* name;
    char character;
  } kEntities[] = {{"lt", '<'}, {"gt", '>'}, {"amp", '&'}, {"quot", '"'}, {"apos", '\''}};
  for (const auto& entity : kEntities) {
    if (IsWord(name, entity.name)) return static_cast<uint8_t>(entity.character);
  }
  if (name.length < 2 || PeekU8(name) != '#') return 0;
  const bool isHex = PeekU8(name, 1) == 'x';
  uint32_t code = 0;
  for (int32_t i = isHex ? 2 : 1; i < name.length; ++i) {
    const uint8_t c = PeekU8(name, i);
    const uint32_t digit = c >= '0' && c <= '9' ? c - '0' : (c | 0x20) >= 'a' && (c | 0x20) <= 'f' ? (c | 0x20) - 87u : 99;
    if (digit >= (isHex ? 16u : 10u) || code > 0x10FFFF) return 0;
    code = code * (isHex ? 16 : 10) + digit;
  }
  return code;
}

ValueText TextOf(const Field& data) {
  constexpr int32_t kMostEntity = 8;
  ValueText made;
  LineText out(made.text, sizeof made.text);
  Cursor c = CursorOver(data);
  Loop loop;
  while (More(c, loop) && !out.IsFull()) {
    int32_t plain = 0;
    while (plain < Left(c) && PeekU8(c, plain) != '&') ++plain;
    out.PutReadable(CursorOver(TakeBytes(c, plain)));
    if (Left(c) < 1) break;
    int32_t end = 1;
    while (end < Left(c) && end <= kMostEntity && PeekU8(c, end) != ';') ++end;
    const bool isClosed = PeekU8(c, end) == ';';
    const uint32_t code = isClosed ? CharacterOfEntity(Slice(Ahead(c, end), 1, end - 1)) : 0;
    if (code) {
      TakeBytes(c, end + 1);
      out.PutCode(code);
    } else {
      out.PutCode(TakeU8(c).value);
    }
  }
  return made;
}

void AddDataLine(const Place& in, const Field& whole, const char* label, const Field& data) {
  if (!whole.here || !data.here) return;
  AddLine(in, whole, "%s: %s", label, TextOf(data));
}

// An element that is open.
struct OpenElement {
  Place under;
  Field name;
  int32_t start;
};

struct Walk {
  const XmlVocabulary* vocabulary;
  OpenElement open[kDeepestMarkup];
  int32_t depth;
  int32_t deeper;   // elements that are open and were not given a place of their own
};

const Place& PlaceIn(const Place& in, const Walk& walk) { return walk.depth ? walk.open[walk.depth - 1].under : in; }

bool SameName(const Field& a, const Field& b) {
  return a.length == b.length && std::memcmp(a.bytes, b.bytes, static_cast<size_t>(a.length)) == 0;
}

void CloseInnermost(Walk& walk, int32_t end) {
  const OpenElement& element = walk.open[--walk.depth];
  if (element.under.dead) return;
  SetRange(element.under, element.under.parent, element.start, end - element.start);
}

// "</name>": what it ends, and everything in that which has no end of its own.
void TakeEndTag(const Place& in, Walk& walk, Cursor& c) {
  const Cursor start = c;
  TakeBytes(c, 2);
  const Field name = TakeName(c);
  TakeUpTo(c, ">");
  if (walk.deeper > 0) {
    --walk.deeper;
    return;
  }
  for (int32_t depth = walk.depth; depth > 0; --depth) {
    if (!SameName(walk.open[depth - 1].name, name)) continue;
    while (walk.depth > depth) CloseInnermost(walk, start.offset);
    if (TellsAll(in)) AddDataLine(walk.open[depth - 1].under, Ahead(start, c.offset - start.offset), "End Tag", name);
    CloseInnermost(walk, c.offset);
    return;
  }
  AddDataLine(PlaceIn(in, walk), Ahead(start, c.offset - start.offset), "End Without Start", name);
}

// A line over the attribute's value, and all of it below where all is asked for.
void ShowAttribute(const Place& under, Cursor& c, const XmlVocabulary* vocabulary) {
  const Cursor start = c;
  const Field name = TakeName(c);
  if (!name.here || name.length == 0) {
    TakeBytes(c, 1);   // no attribute: passed over
    return;
  }
  SkipSpace(c);
  if (PeekU8(c) != '=') {
    AddDataLine(under, name, "Attribute", name);
    return;
  }
  TakeBytes(c, 1);
  SkipSpace(c);
  const uint32_t mark = PeekU8(c);
  Field value;
  if (mark == '"' || mark == '\'') {
    TakeBytes(c, 1);
    value = TakeUpTo(c, mark == '"' ? "\"" : "'");
  } else {
    value = TakeName(c);
  }
  const ValueText label = TextOf(name);
  const Place at = Under(under, AddLine(under, value, "%s = %s", label, TextOf(value)));
  if (vocabulary) vocabulary->showAttribute(at, name, value);
  if (!TellsAll(under)) return;
  const Field whole = Ahead(start, c.offset - start.offset);
  AddTextLine(at, whole, "Attribute", whole);
}

void ShowAttributes(const Place& under, Cursor c, const XmlVocabulary* vocabulary) {
  SkipSpace(c);
  Loop loop;
  while (MoreAt(under, c, loop)) {
    ShowAttribute(under, c, vocabulary);
    SkipSpace(c);
  }
}

// The text of an element that holds nothing else, from behind its start tag; not here for any other.
Field SoleText(Cursor c) {
  const Field text = TakeText(c);
  return text.length > 0 && StartsWithText(c, "</") ? text : Field{};
}

// Where the start tag's ">" stands, attributes' values passed over; all that is left where it has none.
Cursor BehindStartTag(Cursor c) {
  uint8_t mark = 0;
  while (Left(c) > 0) {
    const uint8_t at = static_cast<uint8_t>(TakeU8(c).value);
    if (mark) {
      if (at == mark) mark = 0;
    } else if (at == '"' || at == '\'') {
      mark = at;
    } else if (at == '>') {
      break;
    }
  }
  return c;
}

void TakeStartTag(const Place& in, Walk& walk, Cursor& c) {
  const Cursor start = c;
  const Cursor behind = BehindStartTag(c);
  const Field tag = Ahead(start, behind.offset - start.offset);
  const bool isEmpty = tag.length > 2 && PeekU8(tag, tag.length - 2) == '/';
  TakeBytes(c, 1);
  const Field name = TakeName(c);
  const Field sole = isEmpty ? Field{} : SoleText(behind);
  const ValueText label = TextOf(name);
  const Place& at = PlaceIn(in, walk);
  const LineHandle line =
      sole.here ? AddLine(at, tag, "%s: %s", label, TextOf(sole))
                : AddLine(at, tag, "%s", label);
  const Place under = Under(at, line);
  if (TellsAll(in)) AddDataLine(under, Ahead(start, c.offset - start.offset), "Tag", name);
  ShowAttributes(under, TakeCursor(c, behind.offset - c.offset - (isEmpty ? 2 : 1)), walk.vocabulary);
  if (sole.here && walk.vocabulary) walk.vocabulary->showText(under, name, sole);
  c = behind;
  if (isEmpty) return;
  if (walk.depth == kDeepestMarkup) {
    if (walk.deeper++ == 0) AddLine(under, name, "Nested Too Deeply: elements within stand beside one another");
  } else {
    walk.open[walk.depth++] = {under, name, start.offset};
  }
}

// What a document type declaration names: the root element, where its grammar stands, and what of it stands here.
void ShowDocumentType(const Place& in, const Field& declaration) {
  Cursor c = CursorOver(declaration);
  TakeName(c);
  SkipSpace(c);
  AddTextLine(in, TakeName(c), "Document Type");
  SkipSpace(c);
  const Field kind = TakeName(c);
  bool isPublic = IsWord(kind, "PUBLIC");
  Loop loop;
  while (MoreAt(in, c, loop)) {
    SkipSpace(c);
    const uint32_t mark = PeekU8(c);
    if (mark == '[') AddTextLine(in, Rest(c), "Internal Subset");
    if (mark != '"' && mark != '\'') return;
    TakeBytes(c, 1);
    AddTextLine(in, TakeUpTo(c, mark == '"' ? "\"" : "'"), isPublic ? "Public Identifier" : "System Identifier");
    isPublic = false;
  }
}

void TakeMarkup(const Place& in, Walk& walk, Cursor& c) {
  const Place& at = PlaceIn(in, walk);
  const Cursor start = c;
  const auto show = [&](const char* opening, const char* closing, const char* label) {
    TakeBytes(c, static_cast<int64_t>(std::strlen(opening)));
    const Field inside = closing ? TakeUpTo(c, closing) : TakeDeclaration(c);
    return Under(at, AddTextLine(at, Ahead(start, c.offset - start.offset), label, inside));
  };
  if (StartsWithText(c, "<?xml ")) {
    const Place under = show("<?xml ", "?>", "XML Declaration");
    return ShowAttributes(under, CursorOver(Slice(Ahead(start, c.offset - start.offset), 6, c.offset - start.offset - 8)), nullptr);
  }
  if (StartsWithText(c, "<?")) return (void)show("<?", "?>", "Processing Instruction");
  if (StartsWithText(c, "<!--")) return (void)show("<!--", "-->", "Comment");
  if (StartsWithText(c, "<![CDATA[")) return (void)show("<![CDATA[", "]]>", "Character Data");
  if (StartsWithText(c, "<!DOCTYPE ") && TellsAll(in)) {
    const Place under = show("<!", nullptr, "Declaration");
    return ShowDocumentType(under, Slice(Ahead(start, c.offset - start.offset), 2, c.offset - start.offset - 3));
  }
  if (StartsWithText(c, "<!")) return (void)show("<!", nullptr, "Declaration");
  if (StartsWithText(c, "</")) return TakeEndTag(in, walk, c);
  TakeStartTag(in, walk, c);
}

constexpr char kByteOrderMark[] = "\xEF\xBB\xBF";

}  // namespace

bool StartsXml(const Cursor& c) {
  Cursor start = c;
  if (StartsWithText(start, kByteOrderMark)) TakeBytes(start, 3);
  SkipSpace(start);
  const uint32_t next = PeekU8(start, 1);
  return PeekU8(start) == '<' && (next == '?' || next == '!' || next == '_' || ((next | 0x20) >= 'a' && (next | 0x20) <= 'z'));
}

void ShowXml(const Place& in, Cursor& c, const XmlVocabulary* vocabulary) {
  if (StartsWithText(c, kByteOrderMark)) AddLine(in, TakeBytes(c, 3), "Byte Order Mark");
  Walk walk{vocabulary, {}, 0, 0};
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const Field text = TakeText(c);
    if (text.length > 0) AddDataLine(PlaceIn(in, walk), text, "Text", text);
    if (Left(c) > 0) TakeMarkup(in, walk, c);
  }
  while (walk.depth > 0) CloseInnermost(walk, c.offset);
}

bool TakeXmlTag(Cursor& c, XmlTag& out) {
  out = {};
  Loop loop;
  while (More(c, loop)) {
    TakeText(c);
    const Cursor start = c;
    if (StartsWithText(c, "<!--")) {
      TakeUpTo(c, "-->");
    } else if (StartsWithText(c, "<![CDATA[")) {
      TakeUpTo(c, "]]>");
    } else if (StartsWithText(c, "<?")) {
      TakeUpTo(c, "?>");
    } else if (StartsWithText(c, "<!")) {
      TakeDeclaration(c);
    } else if (Left(c) > 0) {
      out.isEnd = PeekU8(c, 1) == '/';
      const Cursor behind = out.isEnd ? c : BehindStartTag(c);
      TakeBytes(c, out.isEnd ? 2 : 1);
      out.name = TakeName(c);
      if (out.isEnd) {
        TakeUpTo(c, ">");
      } else {
        const int32_t left = behind.offset - c.offset;
        out.isEmpty = left > 1 && PeekU8(c, left - 2) == '/';
        out.attributes = TakeBytes(c, left > 1 ? left - (out.isEmpty ? 2 : 1) : 0);
        c = behind;
        if (!out.isEmpty) out.text = SoleText(c);
      }
      out.whole = Ahead(start, c.offset - start.offset);
      return true;
    }
  }
  return false;
}

bool TakeXmlAttribute(Cursor& c, Field& name, Field& value) {
  SkipSpace(c);
  name = TakeName(c);
  SkipSpace(c);
  value = {};
  if (PeekU8(c) == '=') {
    TakeBytes(c, 1);
    SkipSpace(c);
    const uint32_t mark = PeekU8(c);
    if (mark == '"' || mark == '\'') {
      TakeBytes(c, 1);
      value = TakeUpTo(c, mark == '"' ? "\"" : "'");
    } else {
      value = TakeName(c);
    }
  }
  return name.length > 0;
}

}  // namespace qxview
