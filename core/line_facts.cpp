#include "core/line_facts.h"

#include <cstdlib>
#include <cstring>

#include "core/decoder.h"
#include "core/label_and_value.h"

namespace qxview {

using namespace detail;

bool detail::ReserveFact(LineFacts* facts, uint32_t index, uint32_t textBytes) {
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

namespace {

constexpr uint32_t kFirstFacts = 512, kFirstText = 16384;

// What stands under the frame's own line tells of the frame, whoever adds it.
bool TellsOfFrame(const View* view, LineHandle line) {
  const LineHandle parent = view->tree->Parent(line);
  const LineFact* fact = parent ? FactOf(view->context, view->tree->RangeIndex(parent)) : nullptr;
  return fact && std::strcmp(fact->protocol, kFrameProtocol) == 0;
}

// The place for a new line's fact, with room for its texts; null when there is no memory or no line.
LineFact* NewFact(View* view, LineHandle line) {
  DecodeContext* context = view->context;
  LineFacts* facts = context->facts;
  if (!line || context->outputMode != kDisplayMode || !context->packet.protocol) return nullptr;
  const uint32_t index = view->tree->RangeIndex(line);
  if (index >= context->rangeCount || !ReserveFact(facts, index, kMostLabel + kMostValue)) return nullptr;
  for (; facts->count < index; ++facts->count) facts->of[facts->count] = LineFact{};
  if (facts->count <= index) facts->count = index + 1;
  LineFact* fact = &facts->of[index];
  *fact = LineFact{};
  fact->protocol = TellsOfFrame(view, line) ? kFrameProtocol : context->packet.protocol;
  fact->label = static_cast<int32_t>(facts->textUsed);
  if (facts->question) KnownProtocolOf(facts->question, fact->protocol).firstIn = facts->question->frame;
  return fact;
}

// The fact of a line that is there, with room for its texts; null when there is no memory or none.
LineFact* OldFact(View* view, LineHandle line) {
  LineFacts* facts = view->context->facts;
  if (line == kTakenLine && facts->question) facts->question->isUndone = true;
  const uint32_t index = view->tree->RangeIndex(line);
  if (!line || view->context->outputMode != kDisplayMode || !FactOf(view->context, index) ||
      !ReserveFact(facts, index, kMostLabel + kMostValue)) {
    return nullptr;
  }
  return &facts->of[index];
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
