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

class Filter final : private ValueTaker {
 public:
  Filter() = default;
  Filter(const Filter&) = delete;
  Filter& operator=(const Filter&) = delete;

  // Null with what is wrong. Where such a filter's keys are asked, their values are compared as they come and not kept.
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
    bool held = false;       // for a value that was taken
  };
  // What the tests of a key that was asked for do with values that are taken.
  struct Taking {
    std::vector<uint32_t> tests;
    bool mayTake = true, wantsNumbersLines = false;
    bool seen = false;       // a value
  };

  bool HoldsAt(int32_t node) const;
  bool ComparisonHolds(const Node& node) const;
  bool TestHolds(const Node& node, const AskedValue& value) const;
  bool HoldsOfAddress(const Node& node, const GivenValue& value, bool* isTold) const;
  bool HasSeen(int32_t key) const;
  void PrepareTaking();

  void ForgetTaken() override;
  bool MayTake(int32_t asked) const override;
  bool CanTake(int32_t asked, const GivenValue& value) const override;
  void Take(int32_t asked, const GivenValue& value) override;

  KeyQuery keys_;
  std::vector<Node> nodes_;
  std::vector<Literal> literals_;
  std::vector<Taking> taking_;   // by the key's number; none where values are collected
  bool takes_ = false, hasTaken_ = false;
  int32_t root_ = 0;
};

}  // namespace qxview
