// Header fields of HTTP's compressed forms (QPACK of HTTP/3, HPACK of HTTP/2): what one is while it is shown, and the entries
// of the tables that connections fill.
#pragma once
#include <cstring>

#include "core/decoder.h"
#include "decoders/quic/qpack.h"

namespace qxview {

constexpr int32_t kFieldNameRoom = 256, kFieldValueRoom = 1024;

struct StaticField {
  const char *name, *value;
};

// A field line's name and value, wherever they stand; "?" for what is not known.
struct FieldLine {
  TextSlice name = {"?", 1}, value = {"?", 1};
  char nameRoom[kFieldNameRoom], valueRoom[kFieldValueRoom];
};

inline TextSlice SliceOf(const char* text) { return {text, static_cast<int32_t>(std::strlen(text))}; }
inline void ReadStaticField(const StaticField& field, bool withValue, FieldLine& out) {
  out.name = SliceOf(field.name);
  if (withValue) out.value = SliceOf(field.value);
}

// An entry of a table, copied, for the next look-up may take its place; nothing where it is not known.
void ReadFieldEntry(const Place& in, const QpackKey& key, bool withValue, FieldLine& out);
void KeepFieldEntry(const Place& in, const QpackKey& key, const FieldLine& line);

// The line of a name and a value, with what its bytes say under it; `form` tells how they are written, `said` where it is said.
Place AddFieldLine(const Place& in, const Field& whole, const FieldLine& line, const char* form, const Field& said);

}  // namespace qxview
