#include "app/protocol_fields.h"

#include <algorithm>
#include <cctype>
#include <string_view>

#include "app/json_writer.h"
#include "core/dispatch.h"
#include "keys/field_keys.h"

namespace qxview {
namespace {

std::string_view ProtocolOfKey(std::string_view key) { return key.substr(0, key.find('.')); }

bool IsSame(std::string_view one, std::string_view other) {
  return std::equal(one.begin(), one.end(), other.begin(), other.end(), [](char a, char b) {
    return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
  });
}

bool IsWanted(std::string_view key, const std::vector<std::string>& protocols) {
  const std::string_view protocol = ProtocolOfKey(key);
  return protocols.empty() || std::find(protocols.begin(), protocols.end(), protocol) != protocols.end();
}

std::vector<const char*> KindNames(const FieldKey& row) {
  std::vector<const char*> names;
  for (int32_t kind = kNumberField; kind <= kNoValueField; kind <<= 1) {
    if (row.kinds & kind) names.push_back(FieldKindName(static_cast<FieldKinds>(kind)));
  }
  return names;
}

std::vector<std::string_view> KeysOfAlias(const KeyAlias& alias) {
  std::vector<std::string_view> keys;
  std::string_view rest = alias.keys;
  while (!rest.empty()) {
    const size_t end = std::min(rest.find(','), rest.size());
    keys.push_back(rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return keys;
}

void PutNames(Output& out, const char* member, const auto& names) {
  out.Put(",\"");
  out.Put(member);
  out.Put("\":[");
  bool first = true;
  for (const auto& name : names) {
    if (!first) out.Put(',');
    first = false;
    PutJsonText(out, name);
  }
  out.Put(']');
}

void PutKeyAsJson(Output& out, const FieldKey& row) {
  std::vector<std::string_view> aliases;
  for (int32_t i = 0; i < KeyAliases().count; ++i) {
    const KeyAlias& alias = KeyAliases().aliases[i];
    const std::vector<std::string_view> keys = KeysOfAlias(alias);
    if (std::find(keys.begin(), keys.end(), row.key) != keys.end()) aliases.push_back(alias.name);
  }
  out.Put("{\"key\":");
  PutJsonText(out, row.key);
  out.Put(",\"protocol\":");
  PutJsonText(out, ProtocolOfKey(row.key));
  out.Put(",\"label\":");
  PutJsonText(out, row.label);
  PutNames(out, "kinds", KindNames(row));
  PutNames(out, "aliases", aliases);
  out.Put("}\n");
}

void PutRow(Output& out, std::string_view key, std::string kinds, const char* label, size_t width) {
  std::string name(key);
  name.resize(std::max(width, name.size()), ' ');
  kinds.resize(std::max<size_t>(kinds.size(), 8), ' ');
  out.Put(name);
  out.Put("  ");
  out.Put(kinds);
  out.Put("  ");
  out.Put(label);
  out.Put('\n');
}

}  // namespace

std::string ProtocolOfName(const std::string& name) {
  for (int32_t i = 0; const ProtocolRow* row = RegistryProtocol(i); ++i) {
    if (IsSame(row->name, name)) return row->key;
  }
  for (int32_t i = 0; i < FieldKeys().count; ++i) {
    const std::string_view protocol = ProtocolOfKey(FieldKeys().keys[i].key);
    if (IsSame(protocol, name)) return std::string(protocol);
  }
  for (int32_t i = 0; const ProtocolRow* row = RegistryProtocol(i); ++i) {
    if (IsSame(row->key, name)) return row->key;
  }
  return {};
}

void PutFields(Output& out, const std::vector<std::string>& protocols, bool asJson) {
  const FieldKeySpan keys = FieldKeys();
  const KeyAliasSpan aliases = KeyAliases();
  size_t width = 0;
  for (int32_t i = 0; i < keys.count; ++i) {
    if (IsWanted(keys.keys[i].key, protocols)) width = std::max(width, std::string_view(keys.keys[i].key).size());
  }
  width = std::min<size_t>(width, 44);
  for (int32_t i = 0; i < keys.count; ++i) {
    const FieldKey& row = keys.keys[i];
    if (!IsWanted(row.key, protocols)) continue;
    if (asJson) {
      PutKeyAsJson(out, row);
      continue;
    }
    std::string kinds;
    for (const char* kind : KindNames(row)) kinds.append(kinds.empty() ? "" : ",").append(kind);
    PutRow(out, row.key, kinds, row.label, width);
  }
  for (int32_t i = 0; i < aliases.count; ++i) {
    const KeyAlias& alias = aliases.aliases[i];
    if (!IsWanted(alias.keys, protocols)) continue;
    if (!asJson) {
      PutRow(out, alias.name, "alias", alias.keys, width);
      continue;
    }
    out.Put("{\"alias\":");
    PutJsonText(out, alias.name);
    PutNames(out, "keys", KeysOfAlias(alias));
    out.Put("}\n");
  }
}

}  // namespace qxview
