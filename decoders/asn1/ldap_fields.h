// What tables of LDAP's fields are written with.
#pragma once
#include "decoders/asn1/ldap.h"

namespace qxview {

constexpr LdapField Text(uint32_t identifier, const char* title, LdapDescribe describe = nullptr) {
  return {identifier, LdapField::kText, title, describe};
}
constexpr LdapField Flag(uint32_t identifier, const char* title) { return {identifier, LdapField::kFlag, title}; }
constexpr LdapField Number(uint32_t identifier, const char* title, LdapName name = nullptr) {
  return {identifier, LdapField::kNumber, title, nullptr, nullptr, name};
}
constexpr LdapField Group(uint32_t identifier, const char* title, LdapDescribe describe, const LdapGrammar* inner) {
  return {identifier, LdapField::kGroup, title, describe, inner};
}
template <size_t kCount>
constexpr LdapGrammar Fields(const LdapField (&fields)[kCount]) {
  return {fields, static_cast<int32_t>(kCount), false};
}
template <size_t kCount>
constexpr LdapGrammar Repeated(const LdapField (&fields)[kCount]) {
  return {fields, static_cast<int32_t>(kCount), true};
}

}  // namespace qxview
