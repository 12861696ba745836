// The exports over the lines of a view: stepping through them, visiting them all, their texts and ranges.
#include <cstring>

#include "core/bounded_text.h"
#include "core/characters.h"
#include "core/line_facts.h"
#include "exports/exported_view.h"

using namespace qxview;

namespace {

// A tree gives a text into a buffer and not its length; it fitted when a byte was left over.
std::string_view TextOf(ExportedView* view, uintptr_t line) {
  std::vector<char>& text = view->text;
  if (text.empty()) text.resize(512);
  int32_t length = 0;
  while ((length = TreeOf(view).GetText(line, text.data(), static_cast<int32_t>(text.size()))) ==
         static_cast<int32_t>(text.size()) - 1) {
    text.resize(text.size() * 2);
  }
  return {text.data(), static_cast<size_t>(length)};
}

// What the line says, as data; null without a key.
const LineFact* FactOfLine(void* view, uintptr_t line, char (&key)[kKeySize]) {
  if (!view || !TreeOf(view).Holds(line)) return nullptr;
  const DecodeContext& context = ViewOf(view)->session->Context();
  const LineFact* fact = context.facts ? FactOf(&context, TreeOf(view).RangeIndex(line)) : nullptr;
  return fact && FormatKey(&context, *fact, key, kKeySize) > 0 ? fact : nullptr;
}

void FillValue(ExportedView* view, const LineFact& fact, QxValue* value) {
  *value = {};
  value->size = sizeof *value;
  switch (fact.kind) {
    case ValueKind::kNone: return;
    case ValueKind::kNumber: value->kind = QXVIEW_NUMBER; break;
    case ValueKind::kSigned: value->kind = QXVIEW_SIGNED; break;
    case ValueKind::kText: {
      const std::string_view text{ValueText(&view->session->Context(), fact), static_cast<size_t>(fact.valueLength)};
      value->kind = QXVIEW_TEXT;
      view->valueText.resize(text.size() * kMostUtf8Octets + 1);
      ConvertToUtf8(text, view->valueText.data(), static_cast<int32_t>(view->valueText.size()));
      value->text = view->valueText.c_str();
      return;
    }
  }
  value->number = fact.number;
}

// Fills everything of a line but its depth and its key. The text stays good until the next line is filled.
void FillLine(ExportedView* view, uintptr_t line, QxLineInfo* info) {
  const std::string_view text = TextOf(view, line);
  view->utf8.resize(text.size() * kMostUtf8Octets + 1);
  info->textLength = ConvertToUtf8(text, view->utf8.data(), static_cast<int32_t>(view->utf8.size()));
  info->text = view->utf8.data();
  info->line = line;
  info->image = TreeOf(view).Image(line);
  info->offset = info->kind = 0;
  info->length = 0;
  QxView_LineRange(view, line, &info->offset, &info->length, &info->kind);
}

}  // namespace

uintptr_t QxView_FirstLine(void* view) { return view ? TreeOf(view).FirstChild(0) : 0; }

uintptr_t QxView_NextLine(void* view, uintptr_t line) {
  return view && line ? TreeOf(view).NextSibling(line) : 0;
}

uintptr_t QxView_FirstChild(void* view, uintptr_t line) {
  return view && line ? TreeOf(view).FirstChild(line) : 0;
}

int32_t QxView_LineText(void* view, uintptr_t line, char* out, int32_t outSize) {
  if (!out || outSize < 1) return 0;
  out[0] = 0;
  return view ? TreeOf(view).GetText(line, out, outSize) : 0;
}

int32_t QxView_LineTextUtf8(void* view, uintptr_t line, char* out, int32_t outSize) try {
  ForgetError();
  if (out && outSize > 0) out[0] = 0;
  if (!view || !TreeOf(view).Holds(line)) return Fail("there is no such line"), -1;
  return ConvertToUtf8(TextOf(ViewOf(view), line), out, outSize);
} catch (...) {
  return Fail("out of memory"), -1;
}

int32_t QxView_LineRange(void* view, uintptr_t line, int32_t* offset, uint32_t* length, int32_t* kind) {
  const bool held = view && TreeOf(view).Holds(line);
  const uint32_t index = held ? TreeOf(view).RangeIndex(line) : 0;
  // A line that a user decoder library added may have any index.
  ByteRange own;
  const ByteRange* range = nullptr;
  if (held && index < ViewOf(view)->session->Context().rangeCount) {
    const DecodeContext& context = ViewOf(view)->session->Context();
    own = RangeInFrame(&context, context.rangeTable[index]);
    range = &own;
  }
  SplitByteRange(range, kind, offset, length);
  return range != nullptr;
}

int32_t QxView_LineImage(void* view, uintptr_t line) {
  return view && TreeOf(view).Holds(line) ? TreeOf(view).Image(line) : -1;
}

int32_t QxView_KeepKeys(void* view, int32_t keep) {
  ForgetError();
  if (!view) return Fail("there is no view");
  return KeepFacts(&ViewOf(view)->session->Context(), keep != 0) ? 1 : Fail("out of memory");
}

int32_t QxView_LineKey(void* view, uintptr_t line, char* out, int32_t outSize) {
  char key[kKeySize];
  if (out && outSize > 0) out[0] = 0;
  if (!FactOfLine(view, line, key)) return 0;
  if (out && outSize > 0) CopyString(out, outSize, key);
  return static_cast<int32_t>(std::strlen(key));
}

int32_t QxView_LineValue(void* view, uintptr_t line, QxValue* value) try {
  ForgetError();
  char key[kKeySize];
  const LineFact* fact = FactOfLine(view, line, key);
  QxValue filled{};
  if (fact) FillValue(ViewOf(view), *fact, &filled);
  return GiveRecord(value, filled) && fact ? 1 : 0;
} catch (...) {
  return Fail("out of memory");
}

int32_t QxView_VisitLines(void* view, QxLineVisitor visit, void* user) try {
  ForgetError();
  if (!view || !visit) return Fail(view ? "there is no visitor" : "there is no view"), -1;
  const DecodeTree& tree = TreeOf(view);
  QxLineInfo info{};
  info.size = sizeof info;
  char key[kKeySize];
  QxValue value;
  int32_t count = 0;
  for (uintptr_t line = tree.FirstChild(0); line;) {
    FillLine(ViewOf(view), line, &info);
    const LineFact* fact = FactOfLine(view, line, key);
    if (fact) FillValue(ViewOf(view), *fact, &value);
    info.key = fact ? key : nullptr;
    info.value = fact ? &value : nullptr;
    ++count;
    if (visit(user, &info) != 0) break;
    if (const uintptr_t child = tree.FirstChild(line)) {
      line = child;
      ++info.depth;
      continue;
    }
    while (line && !tree.NextSibling(line)) {
      line = tree.Parent(line);
      --info.depth;
    }
    if (line) line = tree.NextSibling(line);
  }
  return count;
} catch (...) {
  return Fail("out of memory"), -1;
}
