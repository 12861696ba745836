#include "core/line_facts.h"

#include <cstdlib>
#include <cstring>
#include <optional>
#include <string_view>

#include "core/decoder.h"

namespace qxview {
namespace {

constexpr uint32_t kFirstFacts = 512, kFirstText = 16384;
constexpr int32_t kMostLabel = 120, kMostValue = 512;

bool Reserve(LineFacts* facts, uint32_t index, uint32_t textBytes) {
  if (index >= facts->capacity) {
    uint32_t capacity = facts->capacity * 2;
    while (capacity <= index) capacity *= 2;
    void* grown = std::realloc(facts->of, size_t{capacity} * sizeof(LineFact));
    if (!grown) return false;
    facts->of = static_cast<LineFact*>(grown);
    facts->capacity = capacity;
  }
  if (facts->textUsed + textBytes > facts->textCapacity) {
    void* grown = std::realloc(facts->text, size_t{facts->textCapacity} * 2 + textBytes);
    if (!grown) return false;
    facts->text = static_cast<char*>(grown);
    facts->textCapacity = facts->textCapacity * 2 + textBytes;
  }
  return true;
}

// What stands under the frame's own line tells of the frame, whoever adds it.
bool TellsOfFrame(const View* view, LineHandle line) {
  const LineHandle parent = view->tree->Parent(line);
  const LineFact* fact = parent ? FactOf(view->context, view->tree->RangeIndex(parent)) : nullptr;
  return fact && std::strcmp(fact->protocol, kFrameProtocol) == 0;
}

// What is known of a protocol: the question is asked once, and anew where two protocols share a place.
[[gnu::noinline]] KnownProtocol& FindKnownProtocol(LineQuestion* question, const char* protocol, uint32_t place) {
  for (int32_t i = 0; i < 4 && question->protocols[place].protocol && question->protocols[place].protocol != protocol; ++i) {
    place = (place + 1) % 64;
  }
  KnownProtocol& known = question->protocols[place];
  if (known.protocol == protocol) return known;
  known = {protocol, 0, LinesWanted::kAll, false};
  if (protocol) known.wanted = question->ofProtocol(question->with, protocol, &known.first);
  return known;
}

inline KnownProtocol& KnownProtocolOf(LineQuestion* question, const char* protocol) {
  const uint64_t mixed = reinterpret_cast<uintptr_t>(protocol) * uint64_t{0x9E3779B97F4A7C15};
  const uint32_t place = static_cast<uint32_t>(mixed >> 58);
  KnownProtocol& known = question->protocols[place];
  return known.protocol == protocol ? known : FindKnownProtocol(question, protocol, place);
}

// The place for a new line's fact, with room for its texts; null when there is no memory or no line.
LineFact* NewFact(View* view, LineHandle line) {
  DecodeContext* context = view->context;
  LineFacts* facts = context->facts;
  if (!line || context->outputMode != kDisplayMode || !context->packet.protocol) return nullptr;
  const uint32_t index = view->tree->RangeIndex(line);
  if (index >= context->rangeCount || !Reserve(facts, index, kMostLabel + kMostValue)) return nullptr;
  for (; facts->count < index; ++facts->count) facts->of[facts->count] = LineFact{};
  if (facts->count <= index) facts->count = index + 1;
  LineFact* fact = &facts->of[index];
  *fact = LineFact{};
  fact->protocol = TellsOfFrame(view, line) ? kFrameProtocol : context->packet.protocol;
  fact->label = static_cast<int32_t>(facts->textUsed);
  if (facts->question) KnownProtocolOf(facts->question, fact->protocol).firstIn = facts->question->frame;
  return fact;
}

bool IsSeparator(char c) { return c == ':' || c == '='; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsText(const FormatPiece& piece) { return piece.conversion == static_cast<uint32_t>(Conversion::kText); }
bool IsNone(const FormatPiece& piece) { return piece.conversion == static_cast<uint32_t>(Conversion::kNone); }

void PutLabel(LineFacts* facts, LineFact* fact, const char* text, size_t length) {
  const size_t room = static_cast<size_t>(kMostLabel - fact->labelLength);
  if (length > room) length = room;
  std::memcpy(facts->text + facts->textUsed, text, length);
  facts->textUsed += static_cast<uint32_t>(length);
  fact->labelLength += static_cast<int32_t>(length);
}

// The fact of a line that is there, with room for its texts; null when there is no memory or none.
LineFact* OldFact(View* view, LineHandle line) {
  LineFacts* facts = view->context->facts;
  if (line == kTakenLine && facts->question) facts->question->isUndone = true;
  const uint32_t index = view->tree->RangeIndex(line);
  if (!line || view->context->outputMode != kDisplayMode || !FactOf(view->context, index) ||
      !Reserve(facts, index, kMostLabel + kMostValue)) {
    return nullptr;
  }
  return &facts->of[index];
}

// A label's text, numbers behind '#' left out.
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

// Whether the colons are no separators: an address of IPv6 starts with them, "::1" or "::".
bool StartsAddress(const char* text, int32_t length) {
  if (length < 2 || text[0] != ':' || text[1] != ':') return false;
  const char behind = length > 2 ? static_cast<char>(text[2] | 0x20) : ' ';
  return IsDigit(behind) || (behind >= 'a' && behind <= 'f') || behind == ' ' || behind == '/';
}

// What stands in front of a value and behind it is not of it.
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

// Where the label of a text without conversions ends: at a separator, or at a value in brackets.
int32_t LabelEnd(const char* text, int32_t length) {
  int32_t end = 0;
  while (end < length && !IsSeparator(text[end]) && text[end] != '[') ++end;
  return end;
}

// Takes a picture that was drawn before off a text; whether there was one.
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

// A line without conversions, or whose text was made before.
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

// Takes the label; `behind`: how much of the piece's literal it took, its separator left. The result is how much
// of the label every line of the text has, whatever its arguments: kWholeLabel where they have no part in it.
constexpr int32_t kWholeLabel = INT32_MAX;

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

// Whether an argument behind a label might end it instead.
bool HoldsSeparator(const FormatArgument& argument) {
  const char* given = reinterpret_cast<const char*>(static_cast<uintptr_t>(argument.value));
  return (argument.form & 0xFF) == FormatArgument::kTerminated && given && std::strpbrk(given, ":=");
}

// What a text with conversions starts with.
enum class TextStart { kLabel, kPicture, kMade };

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

// The pieces behind the first one's picture: what stands between it and the label belongs to the picture.
struct BehindPicture {
  FormatPiece pieces[24] = {};
  BehindPicture(TextWalk& walk) {
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

// Whether the value is the number of the walk's piece.
bool IsNumberValue(const TextWalk& walk, uint32_t behind) {
  const FormatPiece& piece = *walk.piece;
  return !IsNone(piece) && !IsText(piece) && !HasWords(walk.text + behind, piece.literalLength - behind) && !IsPartOfNotation(walk);
}

uint64_t NumberOf(const FormatPiece& piece, uint64_t number) {
  if (piece.wide) return number;
  const bool isSigned = piece.conversion == static_cast<uint32_t>(Conversion::kSigned);
  return isSigned ? static_cast<uint64_t>(static_cast<int64_t>(static_cast<int32_t>(number))) : static_cast<uint32_t>(number);
}

ValueKind KindOf(const FormatPiece& piece) {
  return piece.conversion == static_cast<uint32_t>(Conversion::kSigned) ? ValueKind::kSigned : ValueKind::kNumber;
}

uint64_t NumberOfPicture(const FormatArgument& picture) {
  const uint32_t width = picture.form >> 8 & 0xFF, first = picture.form >> 16 & 0xFF, count = picture.form >> 24;
  return picture.value >> (width - first - count) & ((uint64_t{1} << count) - 1);
}

// What the pieces make behind so much of the first one's literal.
int32_t FormatRest(char (&out)[kMostValue], const char* text, const FormatPiece* piece, uint32_t behind,
                   const FormatArgument* argument) {
  FormatPiece first = *piece;
  first.literalLength -= behind;
  FormatPiece pieces[24] = {first};
  for (int32_t i = 0; !IsNone(pieces[i]) && i < 22; ++i) pieces[i + 1] = piece[i + 1];
  pieces[23] = FormatPiece{};
  return FormatPieces(out, sizeof out, text + behind, pieces, argument);
}

// The value that stands behind the label: a number with or without its name, or all that follows as text, of a line that was made
// whole and whose label stands in its first literal that text.
void TakeValue(LineFacts* facts, LineFact* fact, const TextWalk& walk, uint32_t behind, const FormatArgument* picture,
               const char* made = nullptr, int32_t madeLength = 0) {
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

}  // namespace

LineFacts* CreateFacts() {
  auto* made = static_cast<LineFacts*>(std::calloc(1, sizeof(LineFacts)));
  if (!made) return nullptr;
  made->of = static_cast<LineFact*>(std::calloc(kFirstFacts, sizeof(LineFact)));
  made->text = static_cast<char*>(std::malloc(kFirstText));
  made->capacity = kFirstFacts;
  made->textCapacity = kFirstText;
  if (made->of && made->text) return made;
  DestroyFacts(made);
  return nullptr;
}

void DestroyFacts(LineFacts* facts) {
  if (!facts) return;
  std::free(facts->of);
  std::free(facts->text);
  std::free(facts);
}

bool KeepFacts(DecodeContext* context, bool keep) {
  DestroyFacts(context->facts);
  context->facts = keep ? CreateFacts() : nullptr;
  return !keep || context->facts;
}

void NoteFormatted(View* view, LineHandle line, const char* text, const FormatPiece* pieces,
                   const FormatArgument* arguments) {
  LineFacts* facts = view->context->facts;
  LineFact* fact = NewFact(view, line);
  if (!fact) return;
  TextWalk walk{text, pieces, arguments};
  uint32_t behind;
  switch (StartOf(pieces, arguments)) {
    case TextStart::kMade: {
      char made[kMostValue];
      return TakeMade(facts, fact, made, FormatPieces(made, sizeof made, text, pieces, arguments));
    }
    case TextStart::kPicture: {
      const BehindPicture rest(walk);
      TakeLabel(facts, fact, walk, &behind);
      return TakeValue(facts, fact, walk, behind, arguments);
    }
    case TextStart::kLabel: break;
  }
  TakeLabel(facts, fact, walk, &behind);
  constexpr int32_t kNeverCut = 256;   // no line of fewer characters was cut
  char made[kNeverCut + 1];
  if (walk.piece == pieces) {
    const int32_t length = view->tree->GetText(line, made, sizeof made);
    if (length < kNeverCut) return TakeValue(facts, fact, walk, behind, nullptr, made, length);
  }
  TakeValue(facts, fact, walk, behind, nullptr);
}

void AskFrame(LineFacts* facts, LineQuestion* question) {
  facts->question = question;
  if (!question) return;
  ++question->frame;
  question->asksForFrame = KnownProtocolOf(question, kFrameProtocol).wanted != LinesWanted::kNone;
}

bool detail::NobodyAsksFor(const DecodeContext& context, std::initializer_list<const char*> protocols) {
  LineQuestion* question = context.facts->question;
  if (question->asksForFrame) return false;
  for (const char* protocol : protocols) {
    if (KnownProtocolOf(question, protocol).wanted != LinesWanted::kNone) return false;
  }
  return true;
}

void ChooseLines(DecodeContext* context) {
  LineQuestion* question = context->facts->question;
  context->silent = !question->asksForFrame && KnownProtocolOf(question, context->packet.protocol).wanted == LinesWanted::kNone;
}

namespace {

// Whether the protocol alone decides about a line under `parent`; else its label does.
bool IsDecided(View* view, LineHandle parent, KnownProtocol** known, bool* isLeft) {
  LineQuestion* question = view->context->facts->question;
  *known = nullptr;
  *isLeft = parent == kLeftFrameLine;
  if (*isLeft) return true;
  bool isFrame = false;
  if (question->asksForFrame && parent) {
    const LineFact* above = FactOf(view->context, view->tree->RangeIndex(parent));
    isFrame = above && std::strcmp(above->protocol, kFrameProtocol) == 0;
  }
  *known = &KnownProtocolOf(question, isFrame ? kFrameProtocol : view->context->packet.protocol);
  *isLeft = (*known)->wanted == LinesWanted::kNone;
  return (*known)->wanted != LinesWanted::kSome || ((*known)->first && (*known)->firstIn != question->frame);
}

// Whether the label that stands in the fact, or its start, is not asked about; its text is given back. A line without one is
// wanted: it may get its label later.
bool LeavesLabelOf(LineFacts* facts, const KnownProtocol& known, const LineFact& fact, bool isStart = false) {
  facts->textUsed = static_cast<uint32_t>(fact.label);
  if (fact.labelLength == 0) return false;
  const char letter = static_cast<char>(facts->text[fact.label] | 0x20);
  if (letter >= 'a' && letter <= 'z') {
    const char first[2] = {letter, 0};
    if (!facts->question->ofLabel(facts->question->with, known.protocol, first, true)) return true;
  }
  char label[kKeySize];
  FormatKeyLabel(facts->text + fact.label, fact.labelLength, label, sizeof label);
  return !facts->question->ofLabel(facts->question->with, known.protocol, label, isStart);
}

LineFact FactToTry(LineFacts* facts) {
  LineFact fact{};
  fact.label = static_cast<int32_t>(facts->textUsed);
  return fact;
}

// Keeps the answer for the text.
void Note(LineFacts* facts, const char* text, const KnownProtocol& known, bool isPicture, bool isWanted) {
  const bool isAlwaysLeft = !isWanted && !known.first && !facts->question->asksForFrame;
  facts->question->PlaceOf(text) = {text, known.protocol, 0, isPicture, isWanted, isAlwaysLeft, {}, 0, 0, 0, 0, 0};
}

// Notes where the value of such lines stands, if the question does without the lines.
void NoteValuePlace(const LineQuestion& question, const LineFact& label, const char* labelText, const char* text,
                    const FormatPiece* pieces, const FormatArgument* arguments, const TextWalk& walk, uint32_t behind,
                    bool isPicture, KnownLabel* place) {
  if (!question.keysOf || label.labelLength == 0) return;
  char key[kKeySize];
  FormatKeyLabel(labelText, label.labelLength, key, sizeof key);
  const uint64_t keys = question.keysOf(question.with, place->protocol, key);
  if (keys == 0) return;
  const ptrdiff_t piece = walk.argument - arguments, at = walk.text - text;
  if (IsNumberValue(walk, behind)) {
    place->value = ValuePlace::kArgument;
  } else if (isPicture) {
    place->value = ValuePlace::kPicture;
  } else if (!IsNone(*walk.piece) && walk.piece == pieces + piece) {
    place->value = ValuePlace::kText;
  } else {
    return;   // a text that is the same in every such line, or none
  }
  place->keys = keys;
  place->piece = static_cast<uint8_t>(piece);
  place->behind = static_cast<uint16_t>(behind);
  place->at = static_cast<uint16_t>(at);
}

bool IsBehindLabel(const char* text, uint32_t length) {
  for (uint32_t i = 0; i < length; ++i) {
    if (text[i] != ' ' && text[i] != ':' && text[i] != '=' && text[i] != ',') return false;
  }
  return true;
}

// The address that is all of a value; null for other texts.
const uint8_t* AddressIn(const FormatPiece* piece, const char* text, uint32_t behind, const FormatArgument& argument,
                         int32_t* length) {
  if ((argument.form & 0xFF) != FormatArgument::kAddress || !IsText(*piece) || piece->precision != 0 || !IsNone(piece[1]) ||
      piece[1].literalLength != 0 || !IsBehindLabel(text + behind, piece->literalLength - behind)) {
    return nullptr;
  }
  switch (static_cast<AddressForm>(argument.form >> 8)) {
    case AddressForm::kIPv4: *length = 4; break;
    case AddressForm::kMac: *length = 6; break;
    case AddressForm::kIPv6: *length = 16; break;
  }
  return reinterpret_cast<const uint8_t*>(static_cast<uintptr_t>(argument.value));
}

// Whether the question took the value of the line.
bool TakesValue(const View* view, const KnownLabel& place, const char* text, const FormatPiece* pieces,
                const FormatArgument* arguments) {
  const LineQuestion& question = *view->context->facts->question;
  if (place.value == ValuePlace::kNowhere || view->context->packet.linesLeft <= 0) return false;
  GivenValue value{};
  char made[kMostValue];
  const FormatArgument& argument = arguments[place.piece];
  switch (place.value) {
    case ValuePlace::kNowhere: return false;
    case ValuePlace::kArgument:
      value.kind = KindOf(pieces[place.piece]);
      value.number = NumberOf(pieces[place.piece], argument.value);
      break;
    case ValuePlace::kPicture:
      value.kind = ValueKind::kNumber;
      value.number = NumberOfPicture(*arguments);
      break;
    case ValuePlace::kText: {
      const FormatPiece* piece = pieces + place.piece;
      value.kind = ValueKind::kText;
      value.address = AddressIn(piece, text + place.at, place.behind, argument, &value.length);
      if (value.address) break;
      const std::string_view trimmed = TrimValue(made, FormatRest(made, text + place.at, piece, place.behind, &argument));
      if (trimmed.empty()) return false;   // it may get one later
      value.text = trimmed.data();
      value.length = static_cast<int32_t>(trimmed.size());
      break;
    }
  }
  return question.take(question.taker, place.keys, value);
}

}  // namespace

LineFate FateOfFormatted(View* view, LineHandle parent, const char* text, const FormatPiece* pieces,
                         const FormatArgument* arguments) {
  if (!view->context->packet.asked) [[likely]] return LineFate::kMade;
  LineFacts* facts = view->context->facts;
  ++facts->question->undecided;
  const bool isPicture = pieces->literalLength == 0 && IsText(*pieces) && (arguments->form & 0xFF) == FormatArgument::kBits;
  const KnownLabel& place = facts->question->PlaceOf(text);
  const bool isOpen = place.open && place.text == text && HoldsSeparator(arguments[place.open - 1]);
  // Of a protocol some of whose values are taken no line is wanted for being the first.
  if (place.value != ValuePlace::kNowhere && place.text == text && place.protocol == view->context->packet.protocol &&
      place.isPicture == isPicture && !isOpen && parent != kLeftFrameLine && !facts->question->asksForFrame) {
    return TakesValue(view, place, text, pieces, arguments) ? LineFate::kTaken : LineFate::kMade;
  }
  KnownProtocol* known;
  bool isLeft;
  const auto fateOf = [](bool left) { return left ? LineFate::kLeft : LineFate::kMade; };
  if (IsDecided(view, parent, &known, &isLeft)) return fateOf(isLeft);
  if (place.text == text && place.protocol == known->protocol && place.isPicture == isPicture && !isOpen) {
    return TakesValue(view, place, text, pieces, arguments) ? LineFate::kTaken : fateOf(!place.isWanted);
  }
  if (!Reserve(facts, 0, kMostLabel)) return LineFate::kMade;
  LineFact fact = FactToTry(facts);
  TextWalk walk{text, pieces, arguments};
  std::optional<BehindPicture> behindPicture;
  uint32_t behind;
  int32_t fixed = 0;
  switch (StartOf(pieces, arguments)) {
    case TextStart::kMade: return LineFate::kMade;
    case TextStart::kPicture:
      behindPicture.emplace(walk);
      fixed = TakeLabel(facts, &fact, walk, &behind);
      break;
    case TextStart::kLabel: fixed = TakeLabel(facts, &fact, walk, &behind);
  }
  const bool isFixed = fixed == kWholeLabel;
  const bool endsOpen = !isFixed && fixed > 0 && fixed == fact.labelLength && IsText(*walk.piece);
  const bool isOpenNow = endsOpen && !HoldsSeparator(*walk.argument);
  LineFact start = fact;
  start.labelLength = fixed;
  if (!isFixed && fixed > 0 && LeavesLabelOf(facts, *known, start, true)) {
    Note(facts, text, *known, isPicture, false);
    return LineFate::kLeft;
  }
  isLeft = LeavesLabelOf(facts, *known, fact);
  if (isFixed || (isOpenNow && !isLeft)) Note(facts, text, *known, isPicture, !isLeft);
  if (isLeft || (!isFixed && !isOpenNow)) return fateOf(isLeft);
  KnownLabel& noted = facts->question->PlaceOf(text);
  if (isOpenNow) noted.open = static_cast<uint8_t>(walk.argument - arguments + 1);
  NoteValuePlace(*facts->question, fact, facts->text + fact.label, text, pieces, arguments, walk, behind, isPicture, &noted);
  return TakesValue(view, noted, text, pieces, arguments) ? LineFate::kTaken : LineFate::kMade;
}

bool LeavesMade(View* view, LineHandle parent, const char* text, int32_t length, bool isFixed) {
  if (!view->context->packet.asked) [[likely]] return false;
  LineFacts* facts = view->context->facts;
  ++facts->question->undecided;
  KnownProtocol* known;
  bool isLeft;
  if (IsDecided(view, parent, &known, &isLeft)) return isLeft;
  const char* const whole = text;
  const KnownLabel& place = facts->question->PlaceOf(whole);
  if (isFixed && place.text == whole && place.protocol == known->protocol && !place.isPicture) return !place.isWanted;
  if (!Reserve(facts, 0, kMostLabel)) return false;
  uint64_t bits;
  SkipPicture(text, length, &bits);
  LineFact fact = FactToTry(facts);
  PutNumberless(facts, &fact, text, static_cast<uint32_t>(LabelEnd(text, length)));
  isLeft = LeavesLabelOf(facts, *known, fact);
  if (isFixed) Note(facts, whole, *known, false, !isLeft);
  return isLeft;
}

bool LeavesLabel(View* view, LineHandle parent, const char* label, bool isFixed) {
  if (!view->context->packet.asked) [[likely]] return false;
  LineFacts* facts = view->context->facts;
  if (isFixed && parent != kLeftFrameLine && IsKnownToBeLeft(*view->context, label, false)) return true;
  ++facts->question->undecided;
  KnownProtocol* known;
  bool isLeft;
  if (IsDecided(view, parent, &known, &isLeft)) return isLeft;
  const KnownLabel& place = facts->question->PlaceOf(label);
  if (isFixed && place.text == label && place.protocol == known->protocol) return !place.isWanted;
  if (!label || !Reserve(facts, 0, kMostLabel)) return false;
  LineFact fact = FactToTry(facts);
  PutLabel(facts, &fact, label, std::strlen(label));
  isLeft = LeavesLabelOf(facts, *known, fact);
  if (!isFixed) return isLeft;
  Note(facts, label, *known, false, !isLeft);
  const LineQuestion& question = *facts->question;
  if (isLeft || !question.keysOf) return isLeft;
  char key[kKeySize];
  FormatKeyLabel(label, static_cast<int32_t>(std::strlen(label)), key, sizeof key);
  facts->question->PlaceOf(label).keys = question.keysOf(question.with, known->protocol, key);
  return false;
}

bool TakesValueOf(const View* view, const char* label, const GivenValue& value) {
  const DecodeContext& context = *view->context;
  LineQuestion& question = *context.facts->question;
  const KnownLabel& place = question.PlaceOf(label);
  return place.text == label && place.protocol == context.packet.protocol && place.keys && context.packet.linesLeft > 0 &&
         question.keysOf && question.take(question.taker, place.keys, value);
}

bool LeavesOthers(View* view) {
  if (!view->context->packet.asked) [[likely]] return false;
  ++view->context->facts->question->undecided;
  return KnownProtocolOf(view->context->facts->question, view->context->packet.protocol).wanted != LinesWanted::kAll;
}

LineHandle CountLeftLine(View* view, LineHandle parent, LineFate fate) {
  const LineHandle counted = CountLine(view);
  if (counted && fate == LineFate::kTaken) return kTakenLine;
  return counted && parent == kLeftFrameLine ? kLeftFrameLine : counted;
}

void NoteMade(View* view, LineHandle line, const char* text, int32_t length) {
  if (LineFact* fact = NewFact(view, line)) TakeMade(view->context->facts, fact, text, length);
}

void NoteNumber(View* view, LineHandle line, const char* label, uint64_t number, bool isSigned) {
  LineFact* fact = NewFact(view, line);
  if (!fact) return;
  PutLabel(view->context->facts, fact, label, std::strlen(label));
  fact->kind = isSigned ? ValueKind::kSigned : ValueKind::kNumber;
  fact->number = number;
}

void NoteText(View* view, LineHandle line, const char* label, const char* text, int32_t length) {
  LineFact* fact = NewFact(view, line);
  if (!fact) return;
  PutLabel(view->context->facts, fact, label, std::strlen(label));
  PutValue(view->context->facts, fact, text, length);
}

void LabelLine(View* view, LineHandle line, const char* label) {
  LineFact* fact = OldFact(view, line);
  if (!fact) return;
  fact->label = static_cast<int32_t>(view->context->facts->textUsed);
  fact->labelLength = 0;
  PutLabel(view->context->facts, fact, label, std::strlen(label));
}

void NumberLine(View* view, LineHandle line, uint64_t number, bool isSigned) {
  LineFact* fact = OldFact(view, line);
  if (!fact) return;
  fact->kind = isSigned ? ValueKind::kSigned : ValueKind::kNumber;
  fact->number = number;
}

void ValueLine(View* view, LineHandle line, const char* text) {
  LineFact* fact = OldFact(view, line);
  if (fact) PutValue(view->context->facts, fact, text, static_cast<int32_t>(std::strlen(text)));
}

void NoteEdited(View* view, LineHandle line, const char* text, int32_t length) {
  LineFacts* facts = view->context->facts;
  LineFact* fact = OldFact(view, line);
  if (!fact) return;
  if (fact->labelLength == 0 && fact->kind == ValueKind::kNone) {
    fact->label = static_cast<int32_t>(facts->textUsed);
    TakeMade(facts, fact, text, length);
  } else if (fact->kind == ValueKind::kNone || fact->edited) {
    const int32_t end = LabelEnd(text, length);
    PutValue(facts, fact, text + end, length - end);
    fact->edited = true;
  }
}

const LineFact* FactOf(const DecodeContext* context, uint32_t rangeIndex) {
  const LineFacts* facts = context->facts;
  if (!facts || rangeIndex >= facts->count || rangeIndex >= context->rangeCount) return nullptr;
  return facts->of[rangeIndex].protocol ? &facts->of[rangeIndex] : nullptr;
}

int32_t FormatKeyLabel(const char* label, int32_t length, char* out, int32_t size) {
  int32_t used = 0;
  bool gap = false;
  for (int32_t i = 0; i < length && used + 2 < size; ++i) {
    char c = label[i];
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + ('a' - 'A'));
    if ((c < 'a' || c > 'z') && !IsDigit(c)) {
      gap = used > 0;
      continue;
    }
    if (gap) out[used++] = '_';
    gap = false;
    out[used++] = c;
  }
  out[used] = 0;
  return used;
}

int32_t FormatKey(const DecodeContext* context, const LineFact& fact, char* out, int32_t size) {
  char label[kMostLabel + 4];
  const int32_t length = FormatKeyLabel(context->facts->text + fact.label, fact.labelLength, label, sizeof label);
  if (length == 0) {
    out[0] = 0;
    return 0;
  }
  const size_t named = std::strlen(fact.protocol);
  const bool isTop = std::strncmp(label, fact.protocol, named) == 0 &&
                     (label[named] == 0 || std::strcmp(label + named, "v") == 0);   // "SNMPv1"
  if (isTop) return FormatInto(out, size, "%s", fact.protocol);
  return FormatInto(out, size, "%s.%s", fact.protocol, static_cast<const char*>(label));
}

}  // namespace qxview
