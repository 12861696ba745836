// What a question leaves out, and what it takes without a line (core/line_facts.h).
#include <cstddef>
#include <cstring>
#include <optional>
#include <string_view>

#include "core/decoder.h"
#include "core/label_and_value.h"
#include "core/line_facts.h"

namespace qxview {

using namespace detail;

// A question is asked about a protocol once, and anew where two share a place.
KnownProtocol& detail::FindKnownProtocol(LineQuestion* question, const char* protocol, uint32_t place) {
  for (int32_t i = 0; i < 4 && question->protocols[place].protocol && question->protocols[place].protocol != protocol; ++i) {
    place = (place + 1) % 64;
  }
  KnownProtocol& known = question->protocols[place];
  if (known.protocol == protocol) return known;
  known = {protocol, 0, LinesWanted::kAll, false};
  if (protocol) known.wanted = question->ofProtocol(question->with, protocol, &known.first);
  return known;
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
  if (!ReserveFact(facts, 0, kMostLabel)) return LineFate::kMade;
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
  if (!ReserveFact(facts, 0, kMostLabel)) return false;
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
  if (!label || !ReserveFact(facts, 0, kMostLabel)) return false;
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

}  // namespace qxview
