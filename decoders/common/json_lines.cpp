#include "decoders/common/json_lines.h"

#include "decoders/common/header_lines.h"
#include "decoders/common/line_text.h"
#include "decoders/common/tells_all.h"

namespace qxview {
namespace {

// A string with its quotation marks; one whose end is missing goes as far as the bytes.
Field TakeString(Cursor& c) {
  int32_t end = 1;
  while (end < Left(c) && PeekU8(c, end) != '"') end += PeekU8(c, end) == '\\' ? 2 : 1;
  return TakeBytes(c, end < Left(c) ? end + 1 : Left(c));
}

// A number or a word.
Field TakeBare(Cursor& c) {
  int32_t end = 0;
  while (end < Left(c)) {
    const uint8_t at = PeekU8(c, end);
    if (at <= ' ' || at == ',' || at == ']' || at == '}' || at == ':' || at == '"' || at == '{' || at == '[') break;
    ++end;
  }
  return TakeBytes(c, end);
}

uint32_t HexDigitOf(uint8_t c) {
  return c >= '0' && c <= '9' ? c - '0' : (c | 0x20) >= 'a' && (c | 0x20) <= 'f' ? (c | 0x20) - 'a' + 10u : 16u;
}

// "\u0041" at the cursor; 0 for anything else.
uint32_t PeekEscapedCode(const Cursor& c) {
  if (PeekU16(c) != 0x5C75 || Left(c) < 6) return 0;
  uint32_t code = 0;
  for (int32_t i = 2; i < 6; ++i) {
    const uint32_t digit = HexDigitOf(PeekU8(c, i));
    if (digit > 15) return 0;
    code = code << 4 | digit;
  }
  return code;
}

// What stands between the quotation marks, with characters in place of their escapes; line ends and tabs stay escaped.
void PutString(LineText& out, const Field& string) {
  const bool isClosed = string.length > 1 && PeekU8(string, string.length - 1) == '"';
  Cursor c = CursorOver(Slice(string, 1, string.length - (isClosed ? 2 : 1)));
  Loop loop;
  while (More(c, loop) && !out.IsFull()) {
    int32_t plain = 0;
    while (plain < Left(c) && PeekU8(c, plain) != '\\') ++plain;
    out.PutReadable(CursorOver(TakeBytes(c, plain)));
    if (Left(c) < 1) return;
    const uint8_t escaped = static_cast<uint8_t>(PeekU8(c, 1));
    if (const uint32_t code = PeekEscapedCode(c)) {
      TakeBytes(c, 6);
      if (code < 0xDC00 || code >= 0xE000) out.PutCode(code);   // the second half of a pair has no character
    } else if (escaped == '"' || escaped == '\\' || escaped == '/') {
      TakeBytes(c, 2);
      out.PutCode(escaped);
    } else {
      out.PutReadable(CursorOver(TakeBytes(c, Left(c) < 2 ? 1 : 2)));
    }
  }
}

ValueText TextOf(const Field& scalar) {
  ValueText made;
  LineText out(made.text, sizeof made.text);
  if (scalar.length > 0 && PeekU8(scalar) == '"') {
    PutString(out, scalar);
  } else {
    out.PutReadable(CursorOver(scalar));
  }
  return made;
}

bool ShowContainer(const Place& in, Cursor& c, int32_t depth);

bool StartsContainer(const Cursor& c) { return PeekU8(c) == '{' || PeekU8(c) == '['; }
const char* KindOf(const Cursor& c) { return PeekU8(c) == '{' ? "Object" : "Array"; }

Field TakeScalar(Cursor& c) { return PeekU8(c) == '"' ? TakeString(c) : TakeBare(c); }

bool ShowMember(const Place& in, Cursor& c, int32_t depth) {
  const Cursor start = c;
  if (PeekU8(c) != '"') return false;
  const Field key = TakeString(c);
  const ValueText name = TextOf(key);
  SkipSpace(c);
  if (PeekU8(c) != ':') return false;
  TakeBytes(c, 1);
  SkipSpace(c);
  if (StartsContainer(c)) {
    const Place under = Under(in, AddLine(in, key, "%s: %s", name, KindOf(c)));
    AddLine(under, TellsAll(in) ? Ahead(start, c.offset + 1 - start.offset) : key, "Key: %s", name);
    const bool isWhole = ShowContainer(under, c, depth + 1);
    SetRange(under, under.parent, start.offset, c.offset - start.offset);
    return isWhole;
  }
  const Field value = TakeScalar(c);
  if (!value.here || value.length == 0) return false;
  const ValueText text = TextOf(value);
  const Field whole = Ahead(start, c.offset - start.offset);
  const Place under = Under(in, AddLine(in, whole, "%s: %s", name,
                                        text));
  AddLine(under, key, "Key: %s", name);
  AddLine(under, value, "Value: %s", text);
  return true;
}

bool ShowItem(const Place& in, Cursor& c, int32_t depth, int32_t number) {
  if (StartsContainer(c)) {
    const Cursor start = c;
    const Place under = Under(in, AddLine(in, Ahead(c, 1), "Item #%u: %s", number, KindOf(c)));
    const bool isWhole = ShowContainer(under, c, depth + 1);
    SetRange(under, under.parent, start.offset, c.offset - start.offset);
    return isWhole;
  }
  const Field value = TakeScalar(c);
  if (!value.here || value.length == 0) return false;
  AddLine(in, value, "Item #%u: %s", number, TextOf(value));
  return true;
}

// An object's members or an array's items, from the bracket on. `depth` bounds the recursion.
bool ShowContainer(const Place& in, Cursor& c, int32_t depth) {
  if (depth >= kDeepestMarkup) {
    AddLine(in, Ahead(c, 1), "Nested Too Deeply");
    return false;
  }
  const bool isObject = PeekU8(c) == '{';
  const uint8_t end = isObject ? '}' : ']';
  TakeBytes(c, 1);
  Loop loop;
  for (int32_t number = 0; MoreAt(in, c, loop); ++number) {
    SkipSpace(c);
    if (PeekU8(c) != end) {
      if (!(isObject ? ShowMember(in, c, depth) : ShowItem(in, c, depth, number))) return false;
      SkipSpace(c);
    }
    if (PeekU8(c) == ',') {
      TakeBytes(c, 1);
    } else if (PeekU8(c) == end) {
      const Field bracket = TakeBytes(c, 1);
      // keys: none End of Object, End of Array
      if (TellsAll(in)) AddLine(in, bracket, "%s", isObject ? "End of Object" : "End of Array");
      return true;
    } else {
      return false;
    }
  }
  return false;
}

}  // namespace

bool StartsJson(const Cursor& c) {
  Cursor start = c;
  SkipSpace(start);
  return StartsContainer(start);
}

bool ShowJson(const Place& in, Cursor& c) {
  SkipSpace(c);
  if (StartsContainer(c)) return ShowContainer(in, c, 0);
  const Field value = TakeScalar(c);
  if (!value.here || value.length == 0) return false;
  AddLine(in, value, "Value: %s", TextOf(value));
  return true;
}

// A value as a whole: brackets are counted, whatever is within.
Field TakeJsonValue(Cursor& c) {
  if (!StartsContainer(c)) return TakeScalar(c);
  const Cursor start = c;
  Loop loop;
  for (int32_t depth = 0; More(c, loop);) {
    const uint32_t at = PeekU8(c);
    if (at == '"') {
      TakeString(c);
      continue;
    }
    TakeBytes(c, 1);
    if (at == '{' || at == '[') ++depth;
    if ((at == '}' || at == ']') && --depth == 0) break;
  }
  return Ahead(start, c.offset - start.offset);
}

bool TakeJsonMember(Cursor& c, JsonMember& out) {
  out = {};
  const bool isFirst = Taken(c) == 0;
  SkipSpace(c);
  if (isFirst ? StartsContainer(c) : PeekU8(c) == ',') TakeBytes(c, 1);
  SkipSpace(c);
  out.value = TakeJsonValue(c);
  SkipSpace(c);
  if (PeekU8(c) == ':') {
    TakeBytes(c, 1);
    SkipSpace(c);
    out.name = out.value;
    out.value = TakeJsonValue(c);
  }
  return out.value.here && out.value.length > 0;
}

}  // namespace qxview
