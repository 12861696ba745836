// What a line says, as data: its key ("ip.time_to_live") and its value. Kept beside the range table in display mode, and
// only while somebody asks, so that it costs nothing otherwise.
//
// A key is the protocol's short name and the line's label: the text before the first ':', '=' or value, a bit picture with
// its colon left out first; lower case, every run of other characters one underscore, numbers behind '#' left out. A label
// that is an argument of the text is taken from the text. The line whose label is the protocol's name has that as its key.
#pragma once
#include <cstdint>

#include "core/context.h"
#include "core/formatter.h"

namespace qxview {

// The first line of a packet and those under it have keys of the frame.
inline constexpr char kFrameProtocol[] = "frame";

// Another protocol's lines are added from now on, of which a question may want none.
void ChooseLines(DecodeContext* context);

// For protocols that others call by name: the lines that are added while this is here have keys of the protocol.
class KeyedAs {
 public:
  KeyedAs(PacketState& packet, const char* protocol) : packet_(packet), outer_(packet.protocol) {
    packet.protocol = protocol;
    if (!packet.asked) [[likely]] return;
    outerSilent_ = packet.asked->silent;
    ChooseLines(packet.asked);
  }
  ~KeyedAs() {
    packet_.protocol = outer_;
    if (packet_.asked) [[unlikely]] packet_.asked->silent = outerSilent_;
  }
  KeyedAs(const KeyedAs&) = delete;
  KeyedAs& operator=(const KeyedAs&) = delete;

 private:
  PacketState& packet_;
  const char* outer_;
  bool outerSilent_ = false;
};

enum class ValueKind : uint8_t { kNone, kNumber, kSigned, kText };

struct LineFact {
  const char* protocol;    // the key's first half; null: the line has no key
  int32_t label, labelLength;
  int32_t value, valueLength;   // kText
  uint64_t number;              // kNumber, kSigned
  ValueKind kind;
  bool edited;                  // the line was: what it got since is its value
};

// What a question wants of a protocol's lines.
enum class LinesWanted : uint8_t { kNone, kSome, kAll };

struct KnownProtocol {
  const char* protocol;
  uint64_t firstIn;   // the frame in which its first line was made
  LinesWanted wanted;
  bool first;
};

// A value that a question takes without the line: what LineFact would say of it. An address is given by its bytes alone.
struct GivenValue {
  ValueKind kind;
  uint64_t number;
  const uint8_t* address;   // null: a text's characters
  const char* text;
  int32_t length;           // of either
};

// Where the value of a line stands that was made of a text with conversions.
enum class ValuePlace : uint8_t { kNowhere, kArgument, kPicture, kText };

// Answers for the texts whose labels no argument changes.
struct KnownLabel {
  const char *text, *protocol;
  uint64_t keys;       // under which the question takes values; 0: it wants the line
  bool isPicture, isWanted;
  bool isAlwaysLeft;   // wherever such a line stands: its protocol's first line is not wanted either
  ValuePlace value;
  uint8_t piece;       // with which the value starts
  uint16_t behind;     // so much of that piece's literal,
  uint16_t at;         // which stands there in the text
  uint8_t open;        // the argument behind such a label, one more: a text that ends with a separator would be of the label
  uint8_t lines;       // of a group of lines that has this name (core/line_group.h)
};

// Who asks for some lines alone: the others are counted as if the context were silent. The answers are kept, so they must not
// change.
struct LineQuestion {
  // `first`: of kSome, whether the protocol's first line of a frame is wanted whatever its label.
  LinesWanted (*ofProtocol)(const void* with, const char* protocol, bool* first);
  // Whether the line of this label is wanted, which is as keys have it and terminated; of a label's start whether one may be.
  bool (*ofLabel)(const void* with, const char* protocol, const char* label, bool isStart);
  // The keys that lines of this label have, where their values do without the lines: then they are handed over, with those. None:
  // the lines are wanted. Null: all are.
  uint64_t (*keysOf)(const void* with, const char* protocol, const char* label);
  // Takes a value; false: its line is wanted all the same.
  bool (*take)(void* taker, uint64_t keys, const GivenValue& value);
  const void* with;
  void* taker;
  bool isUndone;       // a line that was taken got another value: the frame is to be asked anew, by a question that takes none

  uint64_t frame;      // counts those that were asked
  bool asksForFrame;   // for lines of the frame itself
  uint64_t undecided;  // counts lines whose text alone did not say that they are left
  KnownProtocol protocols[64];
  KnownLabel labels[1024];

  // The text's own place, or the one that it is to take. Texts lie close to each other: a place of their own alone is not enough.
  KnownLabel& PlaceOf(const char* text) {
    const uint64_t mixed = reinterpret_cast<uintptr_t>(text) * uint64_t{0x9E3779B97F4A7C15};
    const uint32_t first = static_cast<uint32_t>(mixed >> 54);
    for (uint32_t i = first; i < first + 4; ++i) {
      KnownLabel& place = labels[i % 1024];
      if (place.text == text || !place.text) return place;
    }
    return labels[first];
  }
};

namespace detail {
KnownProtocol& FindKnownProtocol(LineQuestion* question, const char* protocol, uint32_t place);
}

// What the question wants of a protocol.
inline KnownProtocol& KnownProtocolOf(LineQuestion* question, const char* protocol) {
  const uint64_t mixed = reinterpret_cast<uintptr_t>(protocol) * uint64_t{0x9E3779B97F4A7C15};
  const uint32_t place = static_cast<uint32_t>(mixed >> 58);
  KnownProtocol& known = question->protocols[place];
  return known.protocol == protocol ? known : detail::FindKnownProtocol(question, protocol, place);
}

// Facts of the lines by their index in the range table; their texts stand behind one another.
struct LineFacts {
  LineFact* of;
  uint32_t capacity, count;
  char* text;
  uint32_t textCapacity, textUsed;
  // Told of the protocol of each line, and of the same one in a row once: no line is made. Null: they are made.
  void (*tell)(void* with, const char* protocol);
  void* tellWith;
  const char* lastProtocol;   // that was told

  LineQuestion* question;     // null: all lines are wanted
};

// The next frame is asked this, whose answers are empty at first; null: its lines are all wanted.
void AskFrame(LineFacts* facts, LineQuestion* question);

// Starts to keep facts, or lets them go; false when there is no memory.
bool KeepFacts(DecodeContext* context, bool keep);

// Facts of one's own to put into a context for some frames, and what lets them go; null when there is no memory.
LineFacts* CreateFacts();
void DestroyFacts(LineFacts* facts);

// The tree was cleared.
inline void ForgetFacts(DecodeContext* context) {
  if (context->facts) context->facts->count = context->facts->textUsed = 0;
}

// A new line: made of a text with conversions, of a text that was made before, of a label and a number or a text.
void NoteFormatted(View* view, LineHandle line, const char* text, const FormatPiece* pieces,
                   const FormatArgument* arguments);
void NoteMade(View* view, LineHandle line, const char* text, int32_t length);
void NoteNumber(View* view, LineHandle line, const char* label, uint64_t number, bool isSigned);
void NoteText(View* view, LineHandle line, const char* label, const char* text, int32_t length);

// For a line whose text starts with a value, so that it has no label.
void LabelLine(View* view, LineHandle line, const char* label);

// For a line whose text says its number in words.
void NumberLine(View* view, LineHandle line, uint64_t number, bool isSigned);

// For a line whose text says its value in other words, or not at all.
void ValueLine(View* view, LineHandle line, const char* text);

// A line's text was changed: a line that had no value yet has what stands behind its label now.
void NoteEdited(View* view, LineHandle line, const char* text, int32_t length);

inline bool KeepsFacts(const View* view) { return view->context->facts != nullptr; }

// Whether lines are told of and none is made.
inline bool OnlyTells(const View* view) {
  LineFacts* facts = view->context->facts;
  if (!facts || !facts->tell) [[likely]] return false;
  const char* protocol = view->context->packet.protocol;
  if (facts->lastProtocol != protocol) {
    facts->lastProtocol = protocol;
    if (protocol) facts->tell(facts->tellWith, protocol);
  }
  return true;
}

// What becomes of a line that is about to be added.
enum class LineFate : uint8_t { kMade, kLeft, kTaken };

// Whether a question leaves the line out that is about to be added: one made of a text with conversions, of a text that was
// made before, of a label of its own (`isFixed`: wherever it stands, that text never changes), or without a fact.
LineFate FateOfFormatted(View* view, LineHandle parent, const char* text, const FormatPiece* pieces,
                         const FormatArgument* arguments);
bool LeavesMade(View* view, LineHandle parent, const char* text, int32_t length, bool isFixed = false);
bool LeavesLabel(View* view, LineHandle parent, const char* label, bool isFixed);
// Whether the question takes the value of a line that LeavesLabel does not leave, whose label never changes.
bool TakesValueOf(const View* view, const char* label, const GivenValue& value);
bool LeavesOthers(View* view);

// Counts a line that is left out towards the frame's bound; the parent of its children.
LineHandle CountLeftLine(View* view, LineHandle parent, LineFate fate = LineFate::kLeft);

// Whether a question was asked about a line of this text before, which is left out wherever it stands: all that most lines of a
// protocol of which something is asked about need.
inline bool IsKnownToBeLeft(const DecodeContext& context, const char* text, bool isPicture) {
  const KnownLabel& place = context.facts->question->PlaceOf(text);
  return place.text == text && place.isAlwaysLeft && place.protocol == context.packet.protocol && place.isPicture == isPicture;
}

// Whether a line is not in the tree: those that a question or a count left out.
inline bool WasLeft(const View* view, LineHandle line) {
  const LineFacts* facts = view->context->facts;
  return facts && (facts->question || facts->tell) && line >= kLineOutsideDisplay && line <= kTakenLine;
}

// The fact of a line's index in the range table; null when there is none.
const LineFact* FactOf(const DecodeContext* context, uint32_t rangeIndex);

constexpr int32_t kKeySize = 160;
// Writes the key, terminated, and returns its length; 0 for a line without one.
int32_t FormatKey(const DecodeContext* context, const LineFact& fact, char* out, int32_t size);
// A key's second half from a label; the length written.
int32_t FormatKeyLabel(const char* label, int32_t length, char* out, int32_t size);
// The value's text (Windows-1252) for kText.
inline const char* ValueText(const DecodeContext* context, const LineFact& fact) {
  return context->facts->text + fact.value;
}

}  // namespace qxview
