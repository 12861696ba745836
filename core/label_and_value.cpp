#include "core/label_and_value.h"

#include <cstring>

namespace qxview::detail {

void PutNumberless(LineFacts* facts, LineFact* fact, const char* text, uint32_t length) {
  while (const void* found = std::memchr(text, '#', length)) {
    const uint32_t before = static_cast<uint32_t>(static_cast<const char*>(found) - text);
    PutLabel(facts, fact, text, before);
    text += before + 1;
    length -= before + 1;
    while (length > 0 && IsDigit(*text)) {
      ++text;
      --length;
    }
  }
  PutLabel(facts, fact, text, length);
}

namespace {

// Whether the colons are no separators: an address of IPv6 starts with them, "::1" or "::".
bool StartsAddress(const char* text, int32_t length) {
  if (length < 2 || text[0] != ':' || text[1] != ':') return false;
  const char behind = length > 2 ? static_cast<char>(text[2] | 0x20) : ' ';
  return IsDigit(behind) || (behind >= 'a' && behind <= 'f') || behind == ' ' || behind == '/';
}

}  // namespace

std::string_view TrimValue(const char* text, int32_t length) {
  while (length > 0 && (*text == ' ' || *text == ':' || *text == '=' || *text == ',') && !StartsAddress(text, length)) {
    ++text;
    --length;
  }
  while (length > 0 && text[length - 1] == ' ') --length;
  if (length > kMostValue) length = kMostValue;
  return {text, static_cast<size_t>(length)};
}

void PutValue(LineFacts* facts, LineFact* fact, const char* text, int32_t length) {
  const std::string_view value = TrimValue(text, length);
  if (value.empty()) return;
  fact->kind = ValueKind::kText;
  fact->value = static_cast<int32_t>(facts->textUsed);
  fact->valueLength = static_cast<int32_t>(value.size());
  std::memcpy(facts->text + facts->textUsed, value.data(), value.size());
  facts->textUsed += static_cast<uint32_t>(value.size());
}

namespace {

// A bit picture that was drawn before: its length, and the value of its digits; 0 for any other text.
int32_t PictureLength(const char* text, int32_t length, uint64_t* value) {
  int32_t at = 0, digits = 0;
  *value = 0;
  for (; at < length && (text[at] == '.' || text[at] == ' ' || text[at] == '0' || text[at] == '1'); ++at) {
    if (text[at] != '0' && text[at] != '1') continue;
    *value = *value << 1 | static_cast<uint64_t>(text[at] == '1');
    ++digits;
  }
  return at >= 8 && digits > 0 ? at : 0;
}

}  // namespace

int32_t LabelEnd(const char* text, int32_t length) {
  int32_t end = 0;
  while (end < length && !IsSeparator(text[end]) && text[end] != '[') ++end;
  return end;
}

bool SkipPicture(const char*& text, int32_t& length, uint64_t* bits) {
  const int32_t picture = PictureLength(text, length, bits);
  if (!picture) return false;
  text += picture;
  length -= picture;
  while (length > 0 && (*text == ':' || *text == ' ')) {
    ++text;
    --length;
  }
  return true;
}

void TakeMade(LineFacts* facts, LineFact* fact, const char* text, int32_t length) {
  uint64_t bits;
  const bool picture = SkipPicture(text, length, &bits);
  const int32_t end = LabelEnd(text, length);
  PutNumberless(facts, fact, text, static_cast<uint32_t>(end));
  if (picture) {
    fact->kind = ValueKind::kNumber;
    fact->number = bits;
  } else {
    PutValue(facts, fact, text + end, length - end);
  }
}

int32_t TakeLabel(LineFacts* facts, LineFact* fact, TextWalk& walk, uint32_t* behind) {
  int32_t fixed = kWholeLabel;
  for (*behind = 0;; walk.Next()) {
    const uint32_t length = walk.piece->literalLength;
    for (*behind = 0; *behind < length && !IsSeparator(walk.text[*behind]);) ++*behind;
    PutNumberless(facts, fact, walk.text, *behind);
    if (*behind < length || IsNone(*walk.piece)) return fixed;
    if (walk.CountsLine()) continue;
    if (IsText(*walk.piece) && fixed == kWholeLabel) fixed = fact->labelLength;
    const uint32_t form = walk.argument->form & 0xFF;
    // Texts of the frame are values wherever they stand.
    const char* given = reinterpret_cast<const char*>(static_cast<uintptr_t>(walk.argument->value));
    if (!IsText(*walk.piece) || form != FormatArgument::kTerminated || !given) return fixed;
    const size_t givenLength = std::strlen(given), end = std::strcspn(given, ":=");
    const bool holdsSeparator = end < givenLength && std::strspn(given + end + 1, " ") == givenLength - end - 1;
    const bool isAll = fact->labelLength == 0 && IsNone(walk.piece[1]) && walk.piece[1].literalLength == 0;
    if (!holdsSeparator && !isAll && !walk.SeparatorFollows()) return fixed;
    PutNumberless(facts, fact, given, static_cast<uint32_t>(holdsSeparator ? end : givenLength));
    if (holdsSeparator) {
      walk.Next();
      *behind = 0;
      return fixed;
    }
  }
}

bool HoldsSeparator(const FormatArgument& argument) {
  const char* given = reinterpret_cast<const char*>(static_cast<uintptr_t>(argument.value));
  return (argument.form & 0xFF) == FormatArgument::kTerminated && given && std::strpbrk(given, ":=");
}

TextStart StartOf(const FormatPiece* pieces, const FormatArgument* arguments) {
  const FormatPiece& first = *pieces;
  if (first.literalLength > 0 || !IsText(first)) return TextStart::kLabel;
  const uint32_t form = arguments->form & 0xFF;
  if (form == FormatArgument::kBits) return TextStart::kPicture;
  const char* given = reinterpret_cast<const char*>(static_cast<uintptr_t>(arguments->value));
  if (form != FormatArgument::kTerminated || !given) return TextStart::kLabel;
  // A text that is one argument, or starts with a picture that was drawn before.
  uint64_t bits;
  const bool isAlone = IsNone(pieces[1]) && pieces[1].literalLength == 0;
  const bool isMade = isAlone || PictureLength(given, static_cast<int32_t>(std::strlen(given)), &bits);
  return isMade ? TextStart::kMade : TextStart::kLabel;
}

namespace {

// Whether words stand in front of the conversion: "Version 4" is a text, "[4]" and "0x04" are numbers.
bool HasWords(const char* text, uint32_t length) {
  for (uint32_t i = 0; i < length; ++i) {
    const char c = static_cast<char>(text[i] | 0x20);
    if (c >= 'a' && c <= 'z' && !(c == 'x' && i > 0 && text[i - 1] == '0')) return true;
  }
  return false;
}

// Whether the number and the one behind it are parts of one notation: "2026-01-02", "12:30:05", "3.5".
bool IsPartOfNotation(const TextWalk& walk) {
  const FormatPiece& next = walk.piece[1];
  if (IsNone(next) || IsText(next) || next.literalLength != 1) return false;
  const char between = walk.text[walk.piece->literalLength + walk.piece->conversionLength];
  return between == '-' || between == ':' || between == '.' || between == '/';
}

}  // namespace

bool IsNumberValue(const TextWalk& walk, uint32_t behind) {
  const FormatPiece& piece = *walk.piece;
  return !IsNone(piece) && !IsText(piece) && !HasWords(walk.text + behind, piece.literalLength - behind) && !IsPartOfNotation(walk);
}

int32_t FormatRest(char (&out)[kMostValue], const char* text, const FormatPiece* piece, uint32_t behind,
                   const FormatArgument* argument) {
  FormatPiece first = *piece;
  first.literalLength -= behind;
  FormatPiece pieces[24] = {first};
  for (int32_t i = 0; !IsNone(pieces[i]) && i < 22; ++i) pieces[i + 1] = piece[i + 1];
  pieces[23] = FormatPiece{};
  return FormatPieces(out, sizeof out, text + behind, pieces, argument);
}

void TakeValue(LineFacts* facts, LineFact* fact, const TextWalk& walk, uint32_t behind, const FormatArgument* picture,
               const char* made, int32_t madeLength) {
  const FormatPiece* piece = walk.piece;
  if (IsNumberValue(walk, behind)) {
    fact->kind = KindOf(*piece);
    fact->number = NumberOf(*piece, walk.argument->value);
    return;
  }
  if (picture) {
    fact->kind = ValueKind::kNumber;
    fact->number = NumberOfPicture(*picture);
    return;
  }
  if (made) {
    const int32_t label = static_cast<int32_t>(behind);
    return PutValue(facts, fact, made + label, madeLength - label);
  }
  char value[kMostValue];
  PutValue(facts, fact, value, FormatRest(value, walk.text, piece, behind, walk.argument));
}

}  // namespace qxview::detail
