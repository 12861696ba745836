#include "keys/field_keys.h"

#include <algorithm>
#include <iterator>

namespace qxview {
namespace {

constexpr FieldKey kKeys[] = {
#include "field_keys.inc"
};

constexpr KeyAlias kAliases[] = {
#define QX_ALIAS(name, keys) {name, keys},
#include "keys/key_aliases.inc"
#undef QX_ALIAS
};

constexpr bool AliasesAreInOrder() {
  for (size_t i = 1; i < std::size(kAliases); ++i) {
    if (std::string_view(kAliases[i - 1].name) >= kAliases[i].name) return false;
  }
  return true;
}
static_assert(AliasesAreInOrder(), "key_aliases.inc is not in the order of its names");

const FieldKey* FindExactly(std::string_view key) {
  const FieldKey* found = std::lower_bound(std::begin(kKeys), std::end(kKeys), key,
                                           [](const FieldKey& row, std::string_view wanted) { return row.key < wanted; });
  return found != std::end(kKeys) && found->key == key ? found : nullptr;
}

}  // namespace

FieldKeySpan FieldKeys() { return {kKeys, static_cast<int32_t>(std::size(kKeys))}; }

const FieldKey* FindFieldKey(std::string_view key) {
  if (const size_t parent = key.rfind('/'); parent != key.npos) key.remove_prefix(parent + 1);
  if (const FieldKey* found = FindExactly(key)) return found;
  const std::string_view protocol = key.substr(0, key.find('.'));
  char open[64];
  if (protocol.size() + 2 > sizeof open) return nullptr;
  size_t length = protocol.copy(open, protocol.size());
  open[length++] = '.';
  open[length++] = '*';
  return FindExactly({open, length});
}

const char* FieldKindName(FieldKinds kind) {
  switch (kind) {
    case kNumberField: return "number";
    case kTextField: return "text";
    case kAddressField: return "address";
    case kBytesField: return "bytes";
    case kTimeField: return "time";
    case kNoValueField:
    case kFieldRow: break;
  }
  return "none";
}

KeyAliasSpan KeyAliases() { return {kAliases, static_cast<int32_t>(std::size(kAliases))}; }

const KeyAlias* FindKeyAlias(std::string_view name) {
  const KeyAlias* found = std::lower_bound(std::begin(kAliases), std::end(kAliases), name,
                                           [](const KeyAlias& row, std::string_view wanted) { return row.name < wanted; });
  return found != std::end(kAliases) && found->name == name ? found : nullptr;
}

}  // namespace qxview
