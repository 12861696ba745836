#include "browse/tree_lines.h"

#include <algorithm>
#include <cstdio>

#include "core/line_facts.h"
#include "core/lines.h"

namespace qxview {
namespace {

// As filters take text: in quotation marks, with what is no printable ASCII by its code.
std::string Quoted(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') {
      quoted += '\\';
      quoted += c;
    } else if (c >= ' ' && c < 0x7F) {
      quoted += c;
    } else {
      char code[8];
      std::snprintf(code, sizeof code, "\\x%02X", static_cast<unsigned>(static_cast<uint8_t>(c)));
      quoted += code;
    }
  }
  return quoted + '"';
}

}  // namespace

// A tree gives a text into a buffer and not its length; it fitted when a byte was left over.
std::string TreeLines::TextOf(LineHandle line) const {
  std::string text(512, 0);
  int32_t length = 0;
  while (line && (length = tree_->GetText(line, text.data(), static_cast<int32_t>(text.size()))) ==
                     static_cast<int32_t>(text.size()) - 1) {
    text.resize(text.size() * 2);
  }
  text.resize(static_cast<size_t>(length));
  return text;
}

FrameBytes TreeLines::BytesOf(LineHandle line) const {
  if (!line) return {};
  const DecodeContext* context = view_->context;
  const ByteRange range = RangeInFrame(context, RangeOfLine(context, tree_, line));
  const int32_t captured = context->packet.frame ? context->packet.frame->capturedLength : 0;
  const int32_t offset = std::clamp(RangeOffset(range), 0, captured);
  const auto length = static_cast<int32_t>(std::min(RangeLength(range), static_cast<uint32_t>(captured - offset)));
  return {offset, length};
}

LineHandle TreeLines::LineAt(int32_t offset) const {
  LineHandle best = 0;
  int32_t shortest = INT32_MAX;
  for (LineHandle line = tree_->FirstChild(0); line; line = Next(line)) {
    const FrameBytes bytes = BytesOf(line);
    if (offset < bytes.offset || offset >= bytes.offset + bytes.length || bytes.length > shortest) continue;
    bool isInner = bytes.length < shortest;
    for (LineHandle at = tree_->Parent(line); at && !isInner; at = tree_->Parent(at)) isInner = at == best;
    if (!isInner) continue;
    best = line;
    shortest = bytes.length;
  }
  return best;
}

const LineFact* TreeLines::FactOfLine(LineHandle line) const {
  return line && view_->context->facts ? FactOf(view_->context, tree_->RangeIndex(line)) : nullptr;
}

std::string TreeLines::KeyOf(LineHandle line) const {
  const LineFact* fact = FactOfLine(line);
  char key[kKeySize];
  const int32_t length = fact ? FormatKey(view_->context, *fact, key, sizeof key) : 0;
  return {key, static_cast<size_t>(length)};
}

std::string TreeLines::ValueOf(LineHandle line) const {
  const LineFact* fact = FactOfLine(line);
  if (!fact || fact->kind == ValueKind::kNone) return TextOf(line);
  if (fact->kind == ValueKind::kNumber) return std::to_string(fact->number);
  if (fact->kind == ValueKind::kSigned) return std::to_string(static_cast<int64_t>(fact->number));
  return {ValueText(view_->context, *fact), static_cast<size_t>(fact->valueLength)};
}

std::string TreeLines::FilterOf(LineHandle line) const {
  const std::string key = KeyOf(line);
  const LineFact* fact = key.empty() ? nullptr : FactOfLine(line);
  if (!fact || fact->kind == ValueKind::kNone) return key;
  const std::string value = ValueOf(line);
  return key + " == " + (fact->kind == ValueKind::kText ? Quoted(value) : value);
}

LineHandle TreeLines::Next(LineHandle line) const {
  if (const LineHandle child = tree_->FirstChild(line)) return child;
  for (; line; line = tree_->Parent(line)) {
    if (const LineHandle next = tree_->NextSibling(line)) return next;
  }
  return 0;
}

bool TreeLines::Holds(const Literal& text, LineHandle line) const {
  const std::string read = TextOf(line);
  AskedValue value;
  value.line = read;
  return text.IsPattern() ? text.Matches(value) : text.IsIn(value);
}

LineHandle TreeLines::Find(const Literal& text, LineHandle from, bool backward) const {
  if (!backward) {
    LineHandle line = from ? Next(from) : tree_->FirstChild(0);
    while (line && !Holds(text, line)) line = Next(line);
    return line;
  }
  LineHandle last = 0;
  for (LineHandle line = tree_->FirstChild(0); line && line != from; line = Next(line)) {
    if (Holds(text, line)) last = line;
  }
  return last;
}

}  // namespace qxview
