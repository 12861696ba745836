// The display filter: an expression over keys and values, as docs/filters.md tells it.
#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "query/key_query.h"

namespace qxview {

// What is wrong with an expression: `length` bytes of it, from `at`.
struct FilterFault {
  size_t at = 0, length = 0;
  std::string message;
};

class Filter {
 public:
  // Null with what is wrong.
  static std::unique_ptr<Filter> Parse(std::string_view expression, FilterFault* fault);

  // Adds an expression whose keys are collected together with those of the others: its number for HoldsFor; -1 with what is
  // wrong.
  int32_t Add(std::string_view expression, FilterFault* fault);
  bool HoldsFor(int32_t expression) const { return HoldsAt(expression); }

  KeyQuery& Keys() { return keys_; }
  // Of the values that were collected last.
  bool Holds() const { return HoldsAt(root_); }

 private:
  friend class FilterParser;
  enum class NodeKind : uint8_t { kAnd, kOr, kNot, kPresent, kCompare, kCompareKeys, kIn };
  struct Node {
    NodeKind kind;
    Comparison comparison;
    int32_t left, right;     // nodes; keys that were asked for; of kIn the left key
    uint32_t first, count;   // literals, in pairs of kIn: from and to
  };

  bool HoldsAt(int32_t node) const;
  bool ComparisonHolds(const Node& node) const;
  bool IsIn(const Node& node) const;

  KeyQuery keys_;
  std::vector<Node> nodes_;
  std::vector<Literal> literals_;
  int32_t root_ = 0;
};

}  // namespace qxview
