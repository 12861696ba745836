// Where a line's text has its label and where its value: what keys and values are made of (core/line_facts.h).
#pragma once
#include <cstdint>
#include <cstring>
#include <string_view>

#include "core/formatter.h"
#include "core/line_facts.h"

namespace qxview::detail {

constexpr int32_t kMostLabel = 120, kMostValue = 512;   // characters

inline bool IsSeparator(char c) { return c == ':' || c == '='; }
inline bool IsDigit(char c) { return c >= '0' && c <= '9'; }
inline bool IsText(const FormatPiece& piece) { return piece.conversion == static_cast<uint32_t>(Conversion::kText); }
inline bool IsNone(const FormatPiece& piece) { return piece.conversion == static_cast<uint32_t>(Conversion::kNone); }

// Walks a text with conversions: where its label ends and what its value is.
struct TextWalk {
  const char* text;   // the literal run of the piece
  const FormatPiece* piece;
  const FormatArgument* argument;

  void Next() {
    text += piece->literalLength + piece->conversionLength;
    ++piece;
    ++argument;
  }
  // Whether the conversion of a piece, whose literal starts at `at`, is no value but counts lines of one label: "Option
  // #%u", "Block %u: ".
  static bool Counts(const char* at, const FormatPiece& p) {
    const char before = p.literalLength ? at[p.literalLength - 1] : 0;
    if (before == '#') return true;
    return before == ' ' && !IsText(p) && IsSeparator(at[p.literalLength + p.conversionLength]);
  }
  bool CountsLine() const { return Counts(text, *piece); }
  // Whether a separator follows behind the piece's conversion, so that the conversion belongs to the label.
  bool SeparatorFollows() const {
    const char* at = text + piece->literalLength + piece->conversionLength;
    for (const FormatPiece* p = piece + 1;; ++p) {
      for (uint32_t i = 0; i < p->literalLength; ++i) {
        if (IsSeparator(at[i])) return true;
      }
      if (IsNone(*p) || (!IsText(*p) && !Counts(at, *p))) return false;
      at += p->literalLength + p->conversionLength;
    }
  }
};

// What a text with conversions starts with.
enum class TextStart { kLabel, kPicture, kMade };

// The pieces behind the first one's picture: what stands between it and the label belongs to the picture.
struct BehindPicture {
  FormatPiece pieces[24] = {};
  explicit BehindPicture(TextWalk& walk) {
    walk.Next();
    uint32_t skipped = 0;
    while (skipped < walk.piece->literalLength && (walk.text[skipped] == ':' || walk.text[skipped] == ' ')) ++skipped;
    pieces[0] = *walk.piece;
    pieces[0].literalLength -= skipped;
    for (int32_t i = 0; !IsNone(pieces[i]) && i < 22; ++i) pieces[i + 1] = walk.piece[i + 1];
    walk.text += skipped;
    walk.piece = pieces;
  }
};

// These put a label's or a value's characters behind the facts' texts, where there is room for the longest (ReserveFact). A label
// without the numbers behind '#' is put by PutNumberless.
inline void PutLabel(LineFacts* facts, LineFact* fact, const char* text, size_t length) {
  const size_t room = static_cast<size_t>(kMostLabel - fact->labelLength);
  if (length > room) length = room;
  std::memcpy(facts->text + facts->textUsed, text, length);
  facts->textUsed += static_cast<uint32_t>(length);
  fact->labelLength += static_cast<int32_t>(length);
}
void PutNumberless(LineFacts* facts, LineFact* fact, const char* text, uint32_t length);
void PutValue(LineFacts* facts, LineFact* fact, const char* text, int32_t length);
// What stands in front of a value and behind it is not of it.
std::string_view TrimValue(const char* text, int32_t length);

// Where the label of a text without conversions ends: at a separator, or at a value in brackets.
int32_t LabelEnd(const char* text, int32_t length);
// Takes a picture that was drawn before off a text; whether there was one.
bool SkipPicture(const char*& text, int32_t& length, uint64_t* bits);
// A line without conversions, or whose text was made before.
void TakeMade(LineFacts* facts, LineFact* fact, const char* text, int32_t length);

TextStart StartOf(const FormatPiece* pieces, const FormatArgument* arguments);

// Takes the label; `behind`: how much of the piece's literal it took, its separator left. The result is how much
// of the label every line of the text has, whatever its arguments: kWholeLabel where they have no part in it.
constexpr int32_t kWholeLabel = INT32_MAX;
int32_t TakeLabel(LineFacts* facts, LineFact* fact, TextWalk& walk, uint32_t* behind);
// Whether an argument behind a label might end it instead.
bool HoldsSeparator(const FormatArgument& argument);

// Whether the value is the number of the walk's piece.
bool IsNumberValue(const TextWalk& walk, uint32_t behind);
inline uint64_t NumberOf(const FormatPiece& piece, uint64_t number) {
  if (piece.wide) return number;
  const bool isSigned = piece.conversion == static_cast<uint32_t>(Conversion::kSigned);
  return isSigned ? static_cast<uint64_t>(static_cast<int64_t>(static_cast<int32_t>(number))) : static_cast<uint32_t>(number);
}
inline ValueKind KindOf(const FormatPiece& piece) {
  return piece.conversion == static_cast<uint32_t>(Conversion::kSigned) ? ValueKind::kSigned : ValueKind::kNumber;
}
inline uint64_t NumberOfPicture(const FormatArgument& picture) {
  const uint32_t width = picture.form >> 8 & 0xFF, first = picture.form >> 16 & 0xFF, count = picture.form >> 24;
  return picture.value >> (width - first - count) & ((uint64_t{1} << count) - 1);
}
// What the pieces make behind so much of the first one's literal.
int32_t FormatRest(char (&out)[kMostValue], const char* text, const FormatPiece* piece, uint32_t behind,
                   const FormatArgument* argument);
// The value that stands behind the label: a number with or without its name, or all that follows as text, of a line that was made
// whole and whose label stands in its first literal that text.
void TakeValue(LineFacts* facts, LineFact* fact, const TextWalk& walk, uint32_t behind, const FormatArgument* picture,
               const char* made = nullptr, int32_t madeLength = 0);

// Room for a fact of this index and so many bytes of text; false when there is no memory.
bool ReserveFact(LineFacts* facts, uint32_t index, uint32_t textBytes);

}  // namespace qxview::detail
