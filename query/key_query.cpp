#include "query/key_query.h"

#include <algorithm>
#include <iterator>
#include <atomic>
#include <cstring>

#include "host/nearest_name.h"
#include "host/text.h"
#include "keys/field_keys.h"

namespace qxview {
namespace {

constexpr size_t kMostParts = 64;   // bits of a mask

void Say(std::string* wrong, const char* text) {
  if (wrong) *wrong = text;
}

uint64_t NewVersion() {
  static std::atomic<uint64_t> versions{0};
  return ++versions;
}

std::string_view ProtocolOf(std::string_view key) { return key.substr(0, key.find('.')); }

// Whether some line has a key of this protocol.
bool IsProtocol(std::string_view name) {
  const FieldKeySpan keys = FieldKeys();
  const FieldKey* const end = keys.keys + keys.count;
  const FieldKey* found = std::lower_bound(keys.keys, end, name,
                                           [](const FieldKey& row, std::string_view wanted) { return row.key < wanted; });
  return found != end && ProtocolOf(found->key) == name;
}

std::string Lower(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + ('a' - 'A'));
  }
  return lower;
}

// The keys of a protocol, or all of them, and the aliases.
std::vector<std::string_view> NamesOf(std::string_view protocol, bool all) {
  std::vector<std::string_view> names;
  for (int32_t i = 0; i < FieldKeys().count; ++i) {
    const std::string_view key = FieldKeys().keys[i].key;
    if (all || ProtocolOf(key) == protocol) names.push_back(key);
  }
  for (int32_t i = 0; i < KeyAliases().count; ++i) names.push_back(KeyAliases().aliases[i].name);
  return names;
}

std::string UnknownKey(std::string_view name) {
  const std::string_view protocol = ProtocolOf(name);
  const bool known = IsProtocol(protocol);
  std::string text = "there is no key " + QuoteValue(name) + NearestHint(std::string(name), NamesOf(protocol, !known));
  if (known) text += "; qxview protocols --fields " + std::string(protocol) + " lists those of " + std::string(protocol);
  return text;
}

}  // namespace

KeyQuery::Own KeyQuery::OwnOf(std::string_view key) {
  static constexpr std::pair<std::string_view, Own> kOwn[] = {
      {"frame.number", Own::kNumber},           {"frame.time", Own::kTime},
      {"frame.length", Own::kLength},           {"frame.captured", Own::kCaptured},
      {"frame.source", Own::kSource},           {"frame.destination", Own::kDestination},
      {"frame.protocol", Own::kProtocol},       {"frame.summary", Own::kSummary},
      {"frame.source_address", Own::kSourceAddress}, {"frame.destination_address", Own::kDestinationAddress},
      {"frame.source_port", Own::kSourcePort},  {"frame.destination_port", Own::kDestinationPort},
      {"frame.protocols", Own::kProtocols}};
  for (const auto& [name, own] : kOwn) {
    if (name == key) return own;
  }
  return Own::kNo;
}

uint32_t KeyQuery::PartOf(std::string_view protocol, std::string_view label) {
  for (uint32_t i = 0; i < parts_.size(); ++i) {
    if (parts_[i].protocol == protocol && parts_[i].label == label) return i;
  }
  if (label.empty()) wholeProtocols_ |= uint64_t{1} << parts_.size();
  parts_.push_back({std::string(protocol), std::string(label)});
  byProtocol_.clear();
  version_ = NewVersion();
  return static_cast<uint32_t>(parts_.size() - 1);
}

bool KeyQuery::AddPath(std::string_view path, Asked* asked, std::string* wrong) {
  if (const Own own = OwnOf(path); own != Own::kNo) {
    asksForProtocols_ |= own == Own::kProtocols;
    asksForSummary_ |= own == Own::kSummary;
    asksForHeaders_ |= own >= Own::kSource && own <= Own::kDestinationPort;
    return asked->own.push_back(own), true;
  }
  Path parts;
  for (std::string_view rest = path; !rest.empty();) {
    const size_t end = std::min(rest.find('/'), rest.size());
    const std::string_view key = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    const size_t dot = key.find('.');
    const FieldKey* known = dot == key.npos ? nullptr : FindFieldKey(key);
    if (known && known->key != key) toldByPackets_.emplace_back(key);
    if (!(dot == key.npos ? IsProtocol(key) : known != nullptr)) {
      if (wrong) *wrong = UnknownKey(key);
      return false;
    }
    if (parts_.size() >= kMostParts) return Say(wrong, "more than 64 keys are asked for"), false;
    parts.push_back(PartOf(key.substr(0, dot), dot == key.npos ? std::string_view{} : key.substr(dot + 1)));
  }
  if (parts.empty()) return Say(wrong, "a key is wanted"), false;
  for (const uint32_t part : parts) parts_[part].isOnPath |= parts.size() > 1;
  asked->parts |= uint64_t{1} << parts.back();
  return asked->paths.push_back(std::move(parts)), true;
}

bool KeyQuery::IsKey(std::string_view name) {
  return KeyQuery().Ask(name, nullptr) >= 0;
}

int32_t KeyQuery::Ask(std::string_view name, std::string* wrong) {
  for (int32_t i = 0; i < Count(); ++i) {
    if (asked_[static_cast<size_t>(i)].name == name && i != everyLine_) return i;
  }
  Asked asked{std::string(name), {}, {}, {}, 0};
  const KeyAlias* alias = FindKeyAlias(name);
  const std::string lower = Lower(name);
  if (!alias) alias = FindKeyAlias(lower);
  for (std::string_view rest = alias ? std::string_view(alias->keys) : std::string_view(lower); !rest.empty();) {
    const size_t end = std::min(rest.find(','), rest.size());
    if (!AddPath(rest.substr(0, end), &asked, wrong)) return -1;
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  if (asked.paths.empty() && asked.own.empty()) return Say(wrong, "a key is wanted"), -1;
  asked_.push_back(std::move(asked));
  return Count() - 1;
}

// Labels alone are compared: what stands in front of them is right.
std::string KeyQuery::DoubtfulKeys() const {
  std::string text;
  for (const std::string& key : toldByPackets_) {
    const std::string_view protocol = ProtocolOf(key);
    std::vector<std::string_view> labels;
    for (const std::string_view name : NamesOf(protocol, false)) {
      if (ProtocolOf(name) == protocol && name.size() > protocol.size() && !name.ends_with('*')) {
        labels.push_back(name.substr(protocol.size() + 1));
      }
    }
    const std::string_view nearest = NearestName(std::string_view(key).substr(protocol.size() + 1), labels);
    if (nearest.empty()) continue;
    text += (text.empty() ? "" : "; ") + QuoteValue(key) + " is asked for as a name that packets may tell; the nearest known key is " +
            std::string(protocol) + "." + std::string(nearest);
  }
  return text;
}

int32_t KeyQuery::AskEveryLine() {
  if (everyLine_ < 0) {
    everyLine_ = Count();
    asked_.push_back({});
  }
  return everyLine_;
}

// Of the frame and of lines that stand under one another all are wanted: what a line is under has to be there, too.
bool KeyQuery::AsksForHeadersAlone() const {
  static constexpr std::string_view kHeaders[] = {"arp", "eth", "icmp", "ip", "ipv6", "tcp", "udp", "vlan"};
  return everyLine_ < 0 && std::all_of(parts_.begin(), parts_.end(), [](const Part& part) {
           return std::find(std::begin(kHeaders), std::end(kHeaders), part.protocol) != std::end(kHeaders);
         });
}

LinesWanted KeyQuery::Wants(const char* protocol, bool* first) const {
  if (everyLine_ >= 0) return LinesWanted::kAll;
  LinesWanted wanted = LinesWanted::kNone;
  for (const Part& part : parts_) {
    if (part.protocol != protocol) continue;
    if (part.isOnPath || part.protocol == kFrameProtocol) return LinesWanted::kAll;
    wanted = LinesWanted::kSome;
    *first |= part.label.empty();
  }
  return wanted;
}

// Of a whole protocol those that may have its name as their key: see Note.
bool KeyQuery::WantsLabel(const char* protocol, const char* label, bool isStart) const {
  const std::string_view given(label);
  for (const Part& part : parts_) {
    if (part.protocol != protocol) continue;
    const std::string_view wanted = part.label.empty() ? std::string_view(part.protocol) : part.label;
    if (part.label.empty() ? given.starts_with(wanted) : given == wanted) return true;
    if (isStart && wanted.starts_with(given)) return true;
  }
  return false;
}

void KeyQuery::HandValuesTo(ValueTaker* taker) {
  taker_ = taker;
  version_ = NewVersion();   // what was known of labels may be known otherwise
}

// Of a whole protocol one line is wanted, whatever its label.
uint64_t KeyQuery::KeysToTake(const char* protocol, const char* label) const {
  if (!taker_ || everyLine_ >= 0) return 0;
  uint64_t keys = 0;
  for (uint32_t i = 0; i < parts_.size(); ++i) {
    const Part& part = parts_[i];
    if (part.protocol != protocol) continue;
    if (part.label.empty() || part.isOnPath) return 0;
    if (part.label == label) keys |= uint64_t{1} << i;
  }
  for (int32_t i = 0; i < Count(); ++i) {
    if ((asked_[static_cast<size_t>(i)].parts & keys) && !taker_->MayTake(i)) return 0;
  }
  return keys;
}

bool KeyQuery::Take(uint64_t keys, const GivenValue& value) {
  if (Count() == 1) return taker_->CanTake(0, value) && (taker_->Take(0, value), true);
  for (int32_t i = 0; i < Count(); ++i) {
    if ((asked_[static_cast<size_t>(i)].parts & keys) && !taker_->CanTake(i, value)) return false;
  }
  for (int32_t i = 0; i < Count(); ++i) {
    if (asked_[static_cast<size_t>(i)].parts & keys) taker_->Take(i, value);
  }
  return true;
}

const std::vector<uint32_t>& KeyQuery::PartsOf(const char* protocol) {
  for (const ProtocolParts& known : byProtocol_) {
    if (known.protocol == protocol) return known.parts;
  }
  ProtocolParts made{protocol, {}};
  for (uint32_t i = 0; i < parts_.size(); ++i) {
    if (parts_[i].protocol == protocol) made.parts.push_back(i);
  }
  return byProtocol_.emplace_back(std::move(made)).parts;
}

// The parts that the line's key is.
uint64_t KeyQuery::Match(const DecodeContext& context, const LineFact& fact) {
  const std::vector<uint32_t>& parts = PartsOf(fact.protocol);
  if (parts.empty()) return 0;
  char label[kKeySize];
  FormatKeyLabel(context.facts->text + fact.label, fact.labelLength, label, sizeof label);
  uint64_t matched = 0;
  for (const uint32_t part : parts) {
    if (parts_[part].label.empty() || parts_[part].label == label) matched |= uint64_t{1} << part;
  }
  return matched;
}

namespace {

AskedValue ValueOf(const DecodeContext& context, const LineFact* fact, std::string_view line) {
  AskedValue value;
  value.line = line;
  if (!fact) return value;
  value.number = fact->number;
  switch (fact->kind) {
    case ValueKind::kNone: break;
    case ValueKind::kNumber: value.kind = AskedKind::kNumber; break;
    case ValueKind::kSigned: value.kind = AskedKind::kSigned; break;
    case ValueKind::kText:
      value.kind = AskedKind::kText;
      value.text = {ValueText(&context, *fact), static_cast<size_t>(fact->valueLength)};
      break;
  }
  return value;
}

}  // namespace

// Of a whole protocol the first line stands for its header, and every line that has the protocol's name as its key.
void KeyQuery::Note(const DecodeContext& context, const LineFact* fact, std::string_view line, uint64_t matched) {
  for (Asked& asked : asked_) {
    for (const Path& path : asked.paths) {
      const uint64_t own = uint64_t{1} << path.back();
      if (!(matched_.back() & own) || !(matched & own)) continue;
      if (wholeProtocols_ & own) {
        char key[kKeySize];
        const int32_t length = FormatKey(&context, *fact, key, sizeof key);
        const bool isTop = parts_[path.back()].protocol == std::string_view(key, static_cast<size_t>(length));
        if (!isTop && (wholeSeen_ & own)) continue;
        wholeSeen_ |= own;
      }
      // The lines that it is under, the nearest first, have the path's other keys.
      size_t left = path.size() - 1;
      for (size_t depth = matched_.size() - 1; left > 0 && depth-- > 0;) {
        if (matched_[depth] & uint64_t{1} << path[left - 1]) --left;
      }
      if (left > 0) continue;
      asked.values.push_back(ValueOf(context, fact, line));
      break;
    }
  }
}

void KeyQuery::TakeProtocols(const std::vector<const char*>& protocols) {
  protocols_.clear();
  for (const char* protocol : protocols) protocols_.append(protocols_.empty() ? "" : ":").append(protocol);
}

void KeyQuery::CollectOwn(PacketTold& told) {
  const auto number = [](AskedKind kind, uint64_t n) { return AskedValue{kind, n, {}, {}}; };
  const auto text = [](std::string_view t) { return AskedValue{AskedKind::kText, 0, t, t}; };
  const auto port = [&](Asked* asked, int32_t p) {
    if (p >= 0) asked->values.push_back(number(AskedKind::kNumber, static_cast<uint64_t>(p)));
  };
  for (Asked& asked : asked_) {
    for (const Own own : asked.own) {
      switch (own) {
        case Own::kNo: break;
        case Own::kNumber: asked.values.push_back(number(AskedKind::kNumber, told.Number())); break;
        case Own::kTime: asked.values.push_back(number(AskedKind::kTime, static_cast<uint64_t>(told.Nanoseconds()))); break;
        case Own::kLength: asked.values.push_back(number(AskedKind::kNumber, told.Length())); break;
        case Own::kCaptured: asked.values.push_back(number(AskedKind::kNumber, told.Captured())); break;
        case Own::kSource: asked.values.push_back(text(told.Source())); break;
        case Own::kDestination: asked.values.push_back(text(told.Destination())); break;
        case Own::kProtocol: asked.values.push_back(text(told.Protocol())); break;
        case Own::kSummary: asked.values.push_back(text(told.Summary())); break;
        case Own::kSourceAddress: asked.values.push_back(text(told.SourceAddress())); break;
        case Own::kDestinationAddress: asked.values.push_back(text(told.DestinationAddress())); break;
        case Own::kSourcePort: port(&asked, told.SourcePort()); break;
        case Own::kDestinationPort: port(&asked, told.DestinationPort()); break;
        case Own::kProtocols: asked.values.push_back(text(protocols_)); break;
      }
    }
  }
}

void KeyQuery::Collect(const DecodeContext& context, const ArenaTree& tree, PacketTold& told) {
  for (Asked& asked : asked_) asked.values.clear();
  CollectOwn(told);
  if (!AsksForLines()) return;
  matched_.clear();
  wholeSeen_ = 0;
  for (LineHandle line = tree.FirstChild(0); line;) {
    const LineFact* fact = FactOf(&context, tree.RangeIndex(line));
    const std::string_view text = tree.TextOf(line);
    const uint64_t matched = fact ? Match(context, *fact) : 0;
    matched_.push_back(matched);
    if (matched) Note(context, fact, text, matched);
    if (everyLine_ >= 0) asked_[static_cast<size_t>(everyLine_)].values.push_back(ValueOf(context, nullptr, text));
    if (const LineHandle child = tree.FirstChild(line)) {
      line = child;
      continue;
    }
    for (matched_.pop_back(); line && !tree.NextSibling(line); line = tree.Parent(line)) {
      if (tree.Parent(line)) matched_.pop_back();
    }
    if (line) line = tree.NextSibling(line);
  }
}

}  // namespace qxview
