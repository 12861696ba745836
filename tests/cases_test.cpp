// The decode cases of tests/cases: every payload gives its tree.
#include "tests/support/cases.h"

namespace qxview::testing {
namespace {

// Where the tree leaves what is expected: the lines between "..." stand together, in their order. Empty when nowhere.
std::string Missing(const std::vector<std::string>& expected, const std::string& tree) {
  size_t from = 0;
  bool anywhere = false;
  std::string part;
  for (size_t i = 0; i <= expected.size(); ++i) {
    if (i < expected.size() && expected[i] != "...") {
      part += expected[i] + "\n";
      continue;
    }
    size_t at = from;
    if (anywhere) {   // the start of a line
      while (at != std::string::npos && tree.compare(at, part.size(), part) != 0) {
        at = tree.find('\n', at);
        if (at != std::string::npos) ++at;
      }
    }
    if (at == std::string::npos || tree.compare(at, part.size(), part) != 0) return part;
    from = at + part.size();
    part.clear();
    anywhere = true;
  }
  const bool openEnd = !expected.empty() && expected.back() == "...";
  return openEnd || from == tree.size() ? "" : "the end";
}

// The tree as case files write it: bytes beyond ASCII as \xNN.
std::string TreeText(const std::string& tree) {
  std::string out;
  for (const char c : tree) {
    char escaped[5] = {c};
    const auto byte = static_cast<uint8_t>(c);
    if (c != '\n' && (byte < 32 || byte > 126)) std::snprintf(escaped, sizeof escaped, "\\x%02X", byte);
    out += escaped;
  }
  return out;
}

class Cases : public ::testing::TestWithParam<std::string> {};

TEST_P(Cases, GiveTheirTrees) {
  if (GetParam() == "quic" && !HasLibcrypto()) GTEST_SKIP() << "no libcrypto here, which opens Initial packets";
  for (const DecodeCase& each : CasesOf(GetParam())) {
    if (each.isSeed || !each.payload.row) continue;
    TestView view;
    RunPayload(view.view(), each.payload);
    const std::string tree = TreeText(view.Text());
    EXPECT_EQ(Missing(each.tree, tree), "") << each.title << " gives\n" << tree;
  }
}

INSTANTIATE_TEST_SUITE_P(All, Cases, ::testing::ValuesIn(CaseFiles()), [](const auto& info) { return info.param; });

}  // namespace
}  // namespace qxview::testing
