// Every key that lines can have, and the names that users of other tools know them by.
//
// The keys come from the sources of the decoders (scripts/list_keys.py, which the build runs): what a decoder shows is
// listed without being written down twice. The aliases stand in key_aliases.inc.
#pragma once
#include <cstdint>
#include <string_view>

namespace qxview {

// What a key's values are; a key that several lines share may have several kinds.
enum FieldKinds : uint8_t {
  kNumberField = 1, kTextField = 2, kAddressField = 4, kBytesField = 8, kTimeField = 16,
  kNoValueField = 32,   // the line only says that something is there
  kFieldRow = 64,       // not a kind: a row of a table shows it, so that the tests can ask for a case of each
};

struct FieldKey {
  const char* key;     // "ip.time_to_live"; "ssdp.*": names that the packet tells
  const char* label;   // as the lines have it
  uint8_t kinds;
};

struct FieldKeySpan {
  const FieldKey* keys;   // in the order of their keys
  int32_t count;
};
FieldKeySpan FieldKeys();
// Null for a key that no line has. Keys under a parent ("dns.answer_record/dns.ttl") are looked up by their last part.
const FieldKey* FindFieldKey(std::string_view key);
// "number", "text", "address", "bytes", "time", "none": the name of one kind.
const char* FieldKindName(FieldKinds kind);

struct KeyAlias {
  const char* name;   // "ip.addr"
  const char* keys;   // what it stands for: "ip.source,ip.destination"
};

struct KeyAliasSpan {
  const KeyAlias* aliases;   // in the order of their names
  int32_t count;
};
KeyAliasSpan KeyAliases();
const KeyAlias* FindKeyAlias(std::string_view name);

}  // namespace qxview
