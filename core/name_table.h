// Name tables: coded values and their names.
#pragma once
#include <cstddef>
#include <cstdint>

#include "qxview/qxview_types.h"

namespace qxview {

using ::NameTableEntry;

inline constexpr const char* kUnknown = "Unknown";
inline constexpr const char* kUndefined = "Undefined";

// Binary search in a table sorted by code; the default when the code is not in it or count is below 1.
inline const char* LookupName(const NameTableEntry* table, uint32_t code, int32_t count, const char* defaultName) {
  int32_t lower = 0, upper = count - 1;
  while (lower <= upper) {
    const int32_t middle = (lower + upper) / 2;
    if (table[middle].code == code) return table[middle].name;
    if (table[middle].code < code) {
      lower = middle + 1;
    } else {
      upper = middle - 1;
    }
  }
  return defaultName;
}

// Linear search in a table of any order: the first entry with this code, or the default.
inline const char* FindName(const NameTableEntry* table, uint32_t code, int32_t count, const char* defaultName) {
  for (int32_t i = 0; table && i < count; ++i) {
    if (table[i].code == code) return table[i].name;
  }
  return defaultName;
}

// A decoder's table; made by SortedNames, which refuses to compile rows that are out of order.
template <size_t kRows>
struct NameTable {
  NameTableEntry rows[kRows];
};

void NameTableRowsAreOutOfOrder();   // not defined: the compiler's message

template <size_t kRows>
consteval NameTable<kRows> SortedNames(const NameTableEntry (&rows)[kRows]) {
  NameTable<kRows> table{};
  for (size_t i = 0; i < kRows; ++i) {
    if (i > 0 && rows[i].code <= rows[i - 1].code) NameTableRowsAreOutOfOrder();
    table.rows[i] = rows[i];
  }
  return table;
}

inline constexpr auto kFalseTrueNames = SortedNames({{0, "False"}, {1, "True"}});

template <size_t kRows>
const char* LookupName(const NameTable<kRows>& table, uint32_t code, const char* defaultName = kUnknown) {
  return LookupName(table.rows, code, static_cast<int32_t>(kRows), defaultName);
}

}  // namespace qxview
