// The list of keys: what lines have is in it, as what it says; what is in it is shown by some case or sample.
#include "keys/field_keys.h"

#include <cstdio>
#include <fstream>
#include <map>
#include <sstream>

#include "core/line_facts.h"
#include "query/key_query.h"
#include "tests/support/cases.h"
#include "tests/support/samples.h"

namespace qxview::testing {
namespace {

using SeenKeys = std::map<std::string, uint32_t>;   // with the kinds of their values, a bit each

void NoteKeys(const DecodeContext& context, SeenKeys* seen) {
  for (uint32_t i = 0; i < context.rangeCount; ++i) {
    const LineFact* fact = FactOf(&context, i);
    char key[kKeySize];
    if (fact && FormatKey(&context, *fact, key, sizeof key)) (*seen)[key] |= 1u << static_cast<uint32_t>(fact->kind);
  }
}

// The keys of all lines of all cases and samples.
const SeenKeys& AllKeys() {
  static SeenKeys seen;
  if (!seen.empty()) return seen;
  NamingHost host;
  TestView view(&host);
  KeepFacts(&view.context(), true);
  for (const std::string& file : CaseFiles()) {
    for (const DecodeCase& each : CasesOf(file)) {
      if (!each.payload.row) continue;
      RunPayload(view.view(), each.payload);
      NoteKeys(view.context(), &seen);
    }
  }
  for (const std::string& sample : Samples()) {
    ForEachRecord(sample, [&](const FrameRecord* record) {
      ClearDecodeTree(&view.view(), &view.tree(), true);
      DecodeFrame(&view.view(), record, 0, 0, 0);
      NoteKeys(view.context(), &seen);
    });
  }
  KeepFacts(&view.context(), false);
  return seen;
}

constexpr uint32_t KindBit(ValueKind kind) { return 1u << static_cast<uint32_t>(kind); }

TEST(FieldKeys, HoldEveryKeyThatLinesHaveAsWhatItIs) {
  constexpr uint32_t kNumbers = KindBit(ValueKind::kNumber) | KindBit(ValueKind::kSigned);
  std::string unlisted, ofOtherKinds;
  for (const auto& [key, kinds] : AllKeys()) {
    const FieldKey* row = FindFieldKey(key);
    if (!row) {
      unlisted += " " + key;
      continue;
    }
    const bool isNumber = !(kinds & kNumbers) || row->kinds & kNumberField;
    // A text may come later, and be empty.
    const bool isText = !(kinds & KindBit(ValueKind::kText)) || row->kinds & ~(kNumberField | kFieldRow);
    if (!isNumber || !isText) ofOtherKinds += " " + key;
  }
  EXPECT_EQ(ofOtherKinds, "") << "are listed with kinds that their lines do not have";
  EXPECT_EQ(unlisted, "") << "scripts/list_keys.py --open says which labels it cannot read; a comment \"// keys: text Label, "
                             "Other Label\" in front of the line tells them";
}

TEST(FieldKeys, StandOnceAndInOrder) {
  const FieldKeySpan keys = FieldKeys();
  for (int32_t i = 1; i < keys.count; ++i) {
    EXPECT_LT(std::string_view(keys.keys[i - 1].key), std::string_view(keys.keys[i].key));
  }
}

TEST(KeyAliases, LeadToKeys) {
  const KeyAliasSpan aliases = KeyAliases();
  for (int32_t i = 0; i < aliases.count; ++i) {
    EXPECT_FALSE(FindFieldKey(aliases.aliases[i].name) &&
                 FindFieldKey(aliases.aliases[i].name)->key == std::string_view(aliases.aliases[i].name))
        << aliases.aliases[i].name << " is a key";
    std::stringstream keys(aliases.aliases[i].keys);
    for (std::string key; std::getline(keys, key, ',');) {
      std::stringstream parts(key);
      for (std::string part; std::getline(parts, part, '/');) {
        EXPECT_TRUE(KeyQuery::IsKey(part)) << aliases.aliases[i].name << " leads to " << part;
      }
    }
  }
  EXPECT_STREQ(FindKeyAlias("ip.addr")->keys, "ip.source,ip.destination");
}

// The rows that no case and no sample shows are counted for each protocol: tests/rows_without_a_case.txt holds the most
// that there may be, none where it names nothing. Whoever adds cases lowers the number there.
TEST(FieldKeys, OfRowsAreShownByCasesOrSamples) {
  if (!HasLibcrypto()) GTEST_SKIP() << "no libcrypto here, which opens some samples";
  std::ifstream file(std::string(QXVIEW_CASES_DIR) + "/../rows_without_a_case.txt");
  std::map<std::string, int32_t> most, without;
  for (std::string line; std::getline(file, line);) {
    std::stringstream words(line.substr(0, line.find('#')));
    std::string protocol;
    if (int32_t count = 0; words >> protocol >> count) most[protocol] = count;
  }
  std::map<std::string, std::string> names;
  for (int32_t i = 0; i < FieldKeys().count; ++i) {
    const FieldKey& row = FieldKeys().keys[i];
    if (!(row.kinds & kFieldRow) || AllKeys().count(row.key)) continue;
    const std::string protocol = std::string(row.key).substr(0, std::string_view(row.key).find('.'));
    ++without[protocol];
    names[protocol] += std::string(" ") + row.key;
  }
  for (const auto& [protocol, count] : without) {
    EXPECT_LE(count, most[protocol]) << "no case and no sample shows" << names[protocol];
  }
  for (const auto& [protocol, count] : most) {
    EXPECT_GE(without[protocol], count) << "tests/rows_without_a_case.txt: fewer of " << protocol << " by now";
  }
}

}  // namespace
}  // namespace qxview::testing
