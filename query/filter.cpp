#include "query/filter.h"

#include <algorithm>
#include <utility>

#include "core/bounded_text.h"
#include "core/budgets.h"
#include "host/text.h"

namespace qxview {
namespace {

enum class TokenKind : uint8_t {
  kEnd, kWord, kText, kComparison, kAnd, kOr, kNot, kIn, kOpen, kClose, kOpenSet, kCloseSet, kComma, kTo
};

struct Token {
  TokenKind kind = TokenKind::kEnd;
  Comparison comparison{};
  size_t at = 0, length = 0;
  std::string text;   // of a word as it stands, of a quoted text without quotes and escapes
};

bool IsWordCharacter(char c) {
  return (c >= '0' && c <= '9') || ((c | 0x20) >= 'a' && (c | 0x20) <= 'z') || c == '_' || c == '.' || c == '-' || c == ':' ||
         c == '/' || c == '*' || static_cast<unsigned char>(c) >= 0x80;
}

struct Sign {
  std::string_view spelling;
  TokenKind kind;
  Comparison comparison;
};

// Longer ones first.
constexpr Sign kSigns[] = {
    {"==", TokenKind::kComparison, Comparison::kEqual},
    {"!=", TokenKind::kComparison, Comparison::kUnequal},
    {"<=", TokenKind::kComparison, Comparison::kLessOrEqual},
    {">=", TokenKind::kComparison, Comparison::kGreaterOrEqual},
    {"&&", TokenKind::kAnd, {}},
    {"||", TokenKind::kOr, {}},
    {"..", TokenKind::kTo, {}},
    {"<", TokenKind::kComparison, Comparison::kLess},
    {">", TokenKind::kComparison, Comparison::kGreater},
    {"~", TokenKind::kComparison, Comparison::kMatches},
    {"!", TokenKind::kNot, {}},
    {"(", TokenKind::kOpen, {}},
    {")", TokenKind::kClose, {}},
    {"{", TokenKind::kOpenSet, {}},
    {"}", TokenKind::kCloseSet, {}},
    {",", TokenKind::kComma, {}},
};

constexpr Sign kWords[] = {
    {"and", TokenKind::kAnd, {}},
    {"or", TokenKind::kOr, {}},
    {"not", TokenKind::kNot, {}},
    {"in", TokenKind::kIn, {}},
    {"contains", TokenKind::kComparison, Comparison::kContains},
    {"matches", TokenKind::kComparison, Comparison::kMatches},
    {"eq", TokenKind::kComparison, Comparison::kEqual},
    {"ne", TokenKind::kComparison, Comparison::kUnequal},
    {"lt", TokenKind::kComparison, Comparison::kLess},
    {"le", TokenKind::kComparison, Comparison::kLessOrEqual},
    {"gt", TokenKind::kComparison, Comparison::kGreater},
    {"ge", TokenKind::kComparison, Comparison::kGreaterOrEqual},
};

int32_t HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  c = static_cast<char>(c | 0x20);
  return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

}  // namespace

class FilterParser {
 public:
  FilterParser(std::string_view text, Filter* filter, FilterFault* fault) : text_(text), filter_(*filter), fault_(*fault) {}

  bool Parse() {
    if (text_.size() > kMostExpression) return Fail(0, 1, "a filter has up to 16384 characters");
    if (!Next()) return false;
    if (token_.kind == TokenKind::kEnd) return Fail(0, 1, "a filter is wanted, for example tcp.port == 80");
    filter_.root_ = ParseOr();
    if (filter_.root_ < 0) return false;
    return token_.kind == TokenKind::kEnd || FailHere("and or or is missing in front of this");
  }

 private:
  using NodeKind = Filter::NodeKind;

  bool Fail(size_t at, size_t length, std::string message) {
    fault_ = {at, std::max<size_t>(length, 1), std::move(message)};
    return false;
  }
  bool FailHere(std::string message) { return Fail(token_.at, token_.length, std::move(message)); }

  bool Next() {
    while (at_ < text_.size() && (text_[at_] == ' ' || text_[at_] == '\t' || text_[at_] == '\n')) ++at_;
    token_ = {};
    token_.at = at_;
    if (at_ == text_.size()) return true;
    if (text_[at_] == '"' || text_[at_] == '\'') return TakeQuoted();
    for (const Sign& sign : kSigns) {
      if (text_.substr(at_).starts_with(sign.spelling)) return TakeSign(sign, sign.spelling.size());
    }
    size_t end = at_;
    while (end < text_.size() && IsWordCharacter(text_[end]) && text_.substr(end, 2) != "..") ++end;
    if (end == at_) return Fail(at_, 1, "this character starts nothing in a filter");
    token_.text = text_.substr(at_, end - at_);
    for (const Sign& word : kWords) {
      if (word.spelling == token_.text) return TakeSign(word, end - at_);
    }
    token_.kind = TokenKind::kWord;
    token_.length = end - at_;
    at_ = end;
    return true;
  }
  bool TakeSign(const Sign& sign, size_t length) {
    token_.kind = sign.kind;
    token_.comparison = sign.comparison;
    token_.length = length;
    at_ += length;
    return true;
  }
  // Behind \ stand the quotation mark, \, n, r, t, and xNN; others stand for themselves, with the \ (a regular expression's).
  bool TakeQuoted() {
    const char quote = text_[at_];
    const size_t first = at_++;
    for (; at_ < text_.size() && text_[at_] != quote; ++at_) {
      if (text_[at_] != '\\' || at_ + 1 == text_.size()) {
        token_.text += text_[at_];
        continue;
      }
      const char escaped = text_[++at_];
      if (escaped == quote) {
        token_.text += escaped;
      } else if (escaped == 'x' && at_ + 2 < text_.size() && HexDigit(text_[at_ + 1]) >= 0 && HexDigit(text_[at_ + 2]) >= 0) {
        const uint32_t code = static_cast<uint32_t>(HexDigit(text_[at_ + 1]) * 16 + HexDigit(text_[at_ + 2]));
        if (code >= 0x80) token_.text += static_cast<char>(0xC0 | code >> 6);
        token_.text += static_cast<char>(code >= 0x80 ? 0x80 | (code & 0x3F) : code);
        at_ += 2;
      } else {
        if (escaped == '\\') token_.text += isPattern_ ? "\\" : "";
        if (escaped != '\\') token_.text += '\\';
        token_.text += escaped;
      }
    }
    if (at_ == text_.size()) return Fail(first, 1, "this text is not closed");
    token_.kind = TokenKind::kText;
    token_.length = ++at_ - first;
    return true;
  }

  int32_t Add(NodeKind kind, int32_t left, int32_t right) {
    filter_.nodes_.push_back({kind, {}, left, right, 0, 0, false});
    return static_cast<int32_t>(filter_.nodes_.size() - 1);
  }

  // Binary ones of one kind: each stands above the one before it.
  int32_t ParseOr() {
    int32_t left = ParseAnd();
    while (left >= 0 && token_.kind == TokenKind::kOr) {
      if (!Next()) return -1;
      const int32_t right = ParseAnd();
      left = right < 0 ? -1 : Add(NodeKind::kOr, left, right);
    }
    return left;
  }
  int32_t ParseAnd() {
    int32_t left = ParseNot();
    while (left >= 0 && token_.kind == TokenKind::kAnd) {
      if (!Next()) return -1;
      const int32_t right = ParseNot();
      left = right < 0 ? -1 : Add(NodeKind::kAnd, left, right);
    }
    return left;
  }
  int32_t ParseNot() {
    if (++nesting_ > kMostBrackets) return FailHere("this is nested too deep"), -1;
    int32_t node = -1;
    if (token_.kind == TokenKind::kNot) {
      node = Next() ? ParseNot() : -1;
      if (node >= 0) node = Add(NodeKind::kNot, node, 0);
    } else if (token_.kind == TokenKind::kOpen) {
      const size_t open = token_.at;
      node = Next() ? ParseOr() : -1;
      if (node >= 0 && token_.kind != TokenKind::kClose) {
        node = token_.kind == TokenKind::kEnd ? (Fail(open, 1, "this ( is not closed"), -1)
                                              : (FailHere("and, or or ) is wanted here"), -1);
      } else if (node >= 0 && !Next()) {
        node = -1;
      }
    } else {
      node = ParseTest();
    }
    --nesting_;
    return node;
  }

  int32_t ParseTest() {
    if (token_.kind != TokenKind::kWord) {
      return FailHere(token_.kind == TokenKind::kEnd ? "a key is wanted behind this" : "a key is wanted here"), -1;
    }
    std::string wrong;
    const int32_t key = token_.text == "line" ? filter_.keys_.AskEveryLine() : filter_.keys_.Ask(token_.text, &wrong);
    if (key < 0) return FailHere(wrong), -1;
    const bool isLine = token_.text == "line";
    const Token named = token_;
    isPattern_ = true;   // an escaped \ in what follows stays one for the pattern; others take it back
    if (!Next()) return -1;
    if (token_.kind == TokenKind::kIn) return Next() ? ParseSet(key) : -1;
    if (token_.kind != TokenKind::kComparison) {
      if (isLine) return Fail(named.at, named.length, "line wants contains or matches behind it"), -1;
      return Add(NodeKind::kPresent, key, 0);
    }
    const Comparison comparison = token_.comparison;
    if (isLine && comparison != Comparison::kContains && comparison != Comparison::kMatches) {
      return FailHere("a line is asked with contains or matches"), -1;
    }
    isPattern_ = comparison == Comparison::kMatches;
    if (!Next()) return -1;
    if (token_.kind == TokenKind::kWord && comparison != Comparison::kContains && comparison != Comparison::kMatches &&
        token_.text.find('.') != token_.text.npos && KeyQuery::IsKey(token_.text)) {
      const int32_t other = filter_.keys_.Ask(token_.text, &wrong);
      const int32_t node = Next() ? Add(NodeKind::kCompareKeys, key, other) : -1;
      if (node >= 0) filter_.nodes_[static_cast<size_t>(node)].comparison = comparison;
      return node;
    }
    const uint32_t first = static_cast<uint32_t>(filter_.literals_.size());
    if (!TakeLiteral(comparison == Comparison::kMatches)) return -1;
    const int32_t node = Add(NodeKind::kCompare, key, 0);
    Filter::Node& made = filter_.nodes_[static_cast<size_t>(node)];
    made.comparison = comparison;
    made.first = first;
    made.count = 1;
    return node;
  }

  bool TakeLiteral(bool isPattern) {
    if (token_.kind != TokenKind::kWord && token_.kind != TokenKind::kText) {
      return FailHere(token_.kind == TokenKind::kEnd ? "a value is wanted behind this" : "a value is wanted here");
    }
    Literal literal;
    std::string wrong;
    if (!(isPattern ? literal.TakePattern(token_.text, &wrong) : literal.Take(token_.text, &wrong))) return FailHere(wrong);
    filter_.literals_.push_back(std::move(literal));
    return Next();
  }

  // "{80, 443, 8000..8080}"; blanks do in place of commas.
  int32_t ParseSet(int32_t key) {
    if (token_.kind != TokenKind::kOpenSet) return FailHere("{ is wanted here, as in tcp.port in {80, 443, 8000..8080}"), -1;
    const size_t open = token_.at;
    isPattern_ = false;
    if (!Next()) return -1;
    const uint32_t first = static_cast<uint32_t>(filter_.literals_.size());
    while (token_.kind != TokenKind::kCloseSet) {
      if (token_.kind == TokenKind::kEnd) return Fail(open, 1, "this { is not closed"), -1;
      if (!TakeLiteral(false)) return -1;
      if (token_.kind == TokenKind::kTo) {
        if (!Next() || !TakeLiteral(false)) return -1;
      } else {
        const Literal same = filter_.literals_.back();
        filter_.literals_.push_back(same);
      }
      if (token_.kind == TokenKind::kComma && !Next()) return -1;
    }
    const uint32_t count = static_cast<uint32_t>(filter_.literals_.size()) - first;
    if (count == 0) return FailHere("nothing is in these braces"), -1;
    if (!Next()) return -1;
    const int32_t node = Add(NodeKind::kIn, key, 0);
    Filter::Node& made = filter_.nodes_[static_cast<size_t>(node)];
    made.first = first;
    made.count = count;
    return node;
  }

  std::string_view text_;
  Filter& filter_;
  FilterFault& fault_;
  size_t at_ = 0;
  Token token_;
  int32_t nesting_ = 0;
  bool isPattern_ = false;
};

std::unique_ptr<Filter> Filter::Parse(std::string_view expression, FilterFault* fault) {
  auto filter = std::make_unique<Filter>();
  filter->takes_ = true;
  return filter->Add(expression, fault) < 0 ? nullptr : std::move(filter);
}

int32_t Filter::Add(std::string_view expression, FilterFault* fault) {
  const int32_t root = FilterParser(expression, this, fault).Parse() ? root_ : -1;
  if (takes_) PrepareTaking();
  return root;
}

// Numbers are compared with numbers without their lines, which names want.
void Filter::PrepareTaking() {
  taking_.assign(static_cast<size_t>(keys_.Count()), {});
  for (uint32_t i = 0; i < nodes_.size(); ++i) {
    const Node& node = nodes_[i];
    const bool isOfKeys = node.kind == NodeKind::kCompareKeys;
    if (node.kind != NodeKind::kPresent && node.kind != NodeKind::kCompare && node.kind != NodeKind::kIn && !isOfKeys) continue;
    Taking& taking = taking_[static_cast<size_t>(node.left)];
    if (isOfKeys) {
      taking.mayTake = taking_[static_cast<size_t>(node.right)].mayTake = false;
      continue;
    }
    taking.tests.push_back(i);
    const bool isOfText = node.kind == NodeKind::kCompare &&
                          (node.comparison == Comparison::kContains || node.comparison == Comparison::kMatches);
    taking.wantsNumbersLines |= isOfText;
    for (uint32_t literal = node.first; literal < node.first + node.count; ++literal) {
      taking.wantsNumbersLines |= !literals_[literal].IsQuantity();
    }
  }
  hasTaken_ = false;
  keys_.HandValuesTo(this);
}

void Filter::ForgetTaken() {
  if (!hasTaken_) return;
  hasTaken_ = false;
  for (Taking& taking : taking_) taking.seen = false;
  for (Node& node : nodes_) node.held = false;
}

// Of keys that somebody else asks for the values are wanted.
bool Filter::MayTake(int32_t asked) const {
  const size_t at = static_cast<size_t>(asked);
  return at < taking_.size() && taking_[at].mayTake && !taking_[at].tests.empty();
}

bool Filter::CanTake(int32_t asked, const GivenValue& value) const {
  return value.kind == ValueKind::kText || !taking_[static_cast<size_t>(asked)].wantsNumbersLines;
}

bool Filter::TestHolds(const Node& node, const AskedValue& value) const {
  const Literal& literal = literals_[node.first];
  if (node.kind == NodeKind::kCompare) {
    if (node.comparison == Comparison::kContains) return literal.IsIn(value);
    if (node.comparison == Comparison::kMatches) return literal.Matches(value);
    return literal.Holds(node.comparison, value);
  }
  for (uint32_t i = node.first; i < node.first + node.count; i += 2) {
    const Literal& from = literals_[i];
    const Literal& to = literals_[i + 1];
    if (from.Text() == to.Text() ? from.Holds(Comparison::kEqual, value)
                                 : from.Holds(Comparison::kGreaterOrEqual, value) && to.Holds(Comparison::kLessOrEqual, value)) {
      return true;
    }
  }
  return false;
}

// The same of an address by its bytes, where these say it.
bool Filter::HoldsOfAddress(const Node& node, const GivenValue& value, bool* isTold) const {
  if (node.kind == NodeKind::kCompare && node.comparison != Comparison::kContains && node.comparison != Comparison::kMatches) {
    return literals_[node.first].HoldsOfAddress(node.comparison, value.address, value.length, isTold);
  }
  return *isTold = false;
}

void Filter::Take(int32_t asked, const GivenValue& value) {
  Taking& taking = taking_[static_cast<size_t>(asked)];
  taking.seen = hasTaken_ = true;
  AskedValue told;
  char made[kIPv6TextSize];
  const auto tell = [&] {
    told.number = value.number;
    told.kind = value.kind == ValueKind::kNumber ? AskedKind::kNumber : AskedKind::kSigned;
    if (value.kind != ValueKind::kText) return;
    told.kind = AskedKind::kText;
    if (!value.address) {
      told.text = {value.text, static_cast<size_t>(value.length)};
    } else {
      const int32_t length = value.length == 4   ? FormatIPv4(value.address, made)
                             : value.length == 6 ? FormatMac(value.address, made)
                                                 : FormatIPv6(value.address, made);
      told.text = {made, static_cast<size_t>(length)};
    }
  };
  for (const uint32_t test : taking.tests) {
    Node& node = nodes_[test];
    if (node.held || node.kind == NodeKind::kPresent) continue;
    bool isTold = false;
    if (value.address) node.held = HoldsOfAddress(node, value, &isTold);
    if (isTold) continue;
    if (told.kind == AskedKind::kNone) tell();
    node.held = TestHolds(node, told);
  }
}

bool Filter::HasSeen(int32_t key) const {
  const size_t at = static_cast<size_t>(key);
  return !keys_.ValuesOf(key).empty() || (at < taking_.size() && taking_[at].seen);
}

// "Unequal" holds where there is a value and none is equal: "not one of the addresses", for keys of several values.
bool Filter::ComparisonHolds(const Node& node) const {
  const std::vector<AskedValue>& values = keys_.ValuesOf(node.left);
  const bool holds =
      node.held || std::any_of(values.begin(), values.end(), [&](const AskedValue& value) { return TestHolds(node, value); });
  if (node.kind == NodeKind::kCompare && node.comparison == Comparison::kUnequal) return !holds && HasSeen(node.left);
  return holds;
}

bool Filter::HoldsAt(int32_t index) const {
  const Node& node = nodes_[static_cast<size_t>(index)];
  switch (node.kind) {
    case NodeKind::kAnd: return HoldsAt(node.left) && HoldsAt(node.right);
    case NodeKind::kOr: return HoldsAt(node.left) || HoldsAt(node.right);
    case NodeKind::kNot: return !HoldsAt(node.left);
    case NodeKind::kPresent: return HasSeen(node.left);
    case NodeKind::kCompare:
    case NodeKind::kIn: return ComparisonHolds(node);
    case NodeKind::kCompareKeys: break;
  }
  const std::vector<AskedValue>&left = keys_.ValuesOf(node.left), &right = keys_.ValuesOf(node.right);
  const auto holds = [&](const AskedValue& a) {
    return std::any_of(right.begin(), right.end(), [&](const AskedValue& b) { return Compare(node.comparison, a, b); });
  };
  if (node.comparison == Comparison::kUnequal) {
    return !left.empty() && !right.empty() && std::none_of(left.begin(), left.end(), holds);
  }
  return std::any_of(left.begin(), left.end(), holds);
}

}  // namespace qxview
