// Header fields of HTTP's compressed forms (RFC 7541, RFC 9204): the entries of tables, and their lines.
#include "decoders/quic/field_table.h"

#include "decoders/states.h"

namespace qxview {

void ReadFieldEntry(const Place& in, const QpackKey& key, bool withValue, FieldLine& out) {
  StateBytes bytes{};
  const QpackEntry* entry = Recall(in.view, kQpackEntries, key, 1, &bytes);
  if (!entry || entry->nameLength > bytes.length) return;
  const auto copy = [](const uint8_t* from, uint32_t length, char* room, int32_t size) {
    const int32_t kept = length < static_cast<uint32_t>(size) ? static_cast<int32_t>(length) : size;
    std::memcpy(room, from, static_cast<size_t>(kept));
    return TextSlice{room, kept};
  };
  const uint32_t valueLength = bytes.length - entry->nameLength;
  out.name = copy(bytes.data, entry->nameLength, out.nameRoom, kFieldNameRoom);
  if (withValue) out.value = copy(bytes.data + entry->nameLength, valueLength, out.valueRoom, kFieldValueRoom);
}

void KeepFieldEntry(const Place& in, const QpackKey& key, const FieldLine& line) {
  uint8_t bytes[kFieldNameRoom + kFieldValueRoom];
  const auto cut = [](int32_t length, int32_t most) { return length < most ? length : most; };
  const int32_t name = cut(line.name.length, kFieldNameRoom), value = cut(line.value.length, kFieldValueRoom);
  std::memcpy(bytes, line.name.text, static_cast<size_t>(name));
  std::memcpy(bytes + name, line.value.text, static_cast<size_t>(value));
  Remember(in.view, kQpackEntries, key, {static_cast<uint32_t>(name)}, {bytes, static_cast<uint32_t>(name + value)});
}

Place AddFieldLine(const Place& in, const Field& whole, const FieldLine& line, const char* form, const Field& said) {
  const Place under = Under(in, AddLine(in, whole, "Header: %s: %s", line.name, line.value));
  AddLine(under, said, "Representation: %s", form);
  AddLine(under, whole, "Name: %s", line.name);
  AddLine(under, whole, "Value: %s", line.value);
  return under;
}

}  // namespace qxview
