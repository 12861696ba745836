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

// For protocols that others call by name: the lines that are added while this is here have keys of the protocol.
class KeyedAs {
 public:
  KeyedAs(PacketState& packet, const char* protocol) : packet_(packet), outer_(packet.protocol) {
    packet.protocol = protocol;
  }
  ~KeyedAs() { packet_.protocol = outer_; }
  KeyedAs(const KeyedAs&) = delete;
  KeyedAs& operator=(const KeyedAs&) = delete;

 private:
  PacketState& packet_;
  const char* outer_;
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

// Facts of the lines by their index in the range table; their texts stand behind one another.
struct LineFacts {
  LineFact* of;
  uint32_t capacity, count;
  char* text;
  uint32_t textCapacity, textUsed;
  // Whether lines of this protocol are wanted: others are counted alone, as if the context were silent. Null: all are.
  bool (*wants)(const void* with, const char* protocol);
  const void* wantsWith;
  const char* lastProtocol;   // that was asked about
  bool lastWanted;
};

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

// For a line whose text has no label, or one that says its value.
void LabelLine(View* view, LineHandle line, const char* label);

// For a line whose text says its number in words.
void NumberLine(View* view, LineHandle line, uint64_t number, bool isSigned);

// For a line whose text says its value in other words, or not at all.
void ValueLine(View* view, LineHandle line, const char* text);

// A line's text was changed: a line that had no value yet has what stands behind its label now.
void NoteEdited(View* view, LineHandle line, const char* text, int32_t length);

inline bool KeepsFacts(const View* view) { return view->context->facts != nullptr; }

// Whether nobody wants the line that is about to be added.
inline bool IsUnwanted(const View* view) {
  LineFacts* facts = view->context->facts;
  if (!facts || !facts->wants) [[likely]] return false;
  const char* protocol = view->context->packet.protocol;
  if (facts->lastProtocol != protocol) {
    facts->lastProtocol = protocol;
    facts->lastWanted = !protocol || facts->wants(facts->wantsWith, protocol);
  }
  return !facts->lastWanted;
}

// Whether a line was counted alone: in the trees that wanted lines go into no handle is this one.
inline bool WasUnwanted(const View* view, LineHandle line) {
  return KeepsFacts(view) && view->context->facts->wants && line == kLineOutsideDisplay;
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
