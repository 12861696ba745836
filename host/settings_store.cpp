#include "host/settings_store.h"

#include "host/nearest_name.h"
#include "host/text.h"
#include "host/text_file.h"

namespace qxview {
namespace {

enum class Kind { kText, kNumber };

struct KnownSetting {
  const char* name;
  Kind kind;
  int64_t most;   // of a number, the least is 0; of a text its bytes, 0 for any number of them
};

constexpr int64_t kAny = 0xFFFFFFFF;
constexpr int64_t kLibrary = 127, kPath = 1023, kSecret = 255;
constexpr KnownSetting kKnown[] = {
    {"CustomLibrary0", Kind::kText, kLibrary},     {"CustomLibrary1", Kind::kText, kLibrary},
    {"CustomLibrary2", Kind::kText, kLibrary},     {"CustomLibrary3", Kind::kText, kLibrary},
    {"CustomLibrary4", Kind::kText, kLibrary},     {"CustomLibrary5", Kind::kText, kLibrary},
    {"CustomLibrary6", Kind::kText, kLibrary},     {"CustomLibrary7", Kind::kText, kLibrary},
    {"TypeOfServiceMode", Kind::kNumber, kAny},   {"TypeOfServiceFieldMask", Kind::kNumber, 255},
    {"TypeOfServiceFieldName0", Kind::kText, 0},  {"TypeOfServiceFieldName1", Kind::kText, 0},
    {"TypeOfServiceFieldName2", Kind::kText, 0},  {"TypeOfServiceFieldName3", Kind::kText, 0},
    {"TypeOfServiceFieldName4", Kind::kText, 0},  {"TypeOfServiceFieldName5", Kind::kText, 0},
    {"TypeOfServiceFieldName6", Kind::kText, 0},  {"TypeOfServiceFieldName7", Kind::kText, 0},
    {"DynamicDetection", Kind::kNumber, kAny},    {"DetectionFlags", Kind::kNumber, kAny},
    {"DetectionFlags2", Kind::kNumber, kAny},     {"TdsDetectionOff", Kind::kNumber, kAny},
    {"ForcedDecoding", Kind::kNumber, kAny},      {"ForcedStartProtocol", Kind::kNumber, kAny},
    {"ForcedProtocolChoice", Kind::kNumber, kAny}, {"ForcedSkipBytes", Kind::kNumber, 65535},
    {"Expand2ndLevel", Kind::kNumber, kAny},      {"Expand3rdLevel", Kind::kNumber, kAny},
    {"Expand4thLevel", Kind::kNumber, kAny},      {"RangeFilterOn", Kind::kNumber, kAny},
    {"RangeFilterStart", Kind::kNumber, 0x7FFFFFFF}, {"RangeFilterLength", Kind::kNumber, 0x7FFFFFFF},
    {"ExternalDecoder", Kind::kText, kLibrary},   {"ExternalDecoderPort", Kind::kNumber, 65535},
    {"CleanText", Kind::kNumber, kAny},           {"AliasFile", Kind::kText, 0},
    {"CharacterSet", Kind::kNumber, kAny},        {"MibPath", Kind::kText, 0},
    {"MibModules", Kind::kText, 0},               {"Modern", Kind::kNumber, kAny},
    {"DnsRecords", Kind::kNumber, kAny},          {"IgnoreChecksums", Kind::kNumber, kAny},
    {"Reassembly", Kind::kNumber, kAny},          {"TlsKeyLog", Kind::kText, kPath},
    {"RadiusSecret", Kind::kText, kSecret},       {"TacacsSecret", Kind::kText, kSecret},
};

const KnownSetting* FindKnown(const std::string& name) {
  for (const KnownSetting& known : kKnown) {
    if (EqualsIgnoringCase(name, known.name)) return &known;
  }
  return nullptr;
}

}  // namespace

bool SettingsStore::Check(const std::string& name, const std::string& value, const std::string& place,
                          std::string* message) const {
  const KnownSetting* known = FindKnown(name);
  if (!known) {
    std::vector<std::string_view> names;
    for (const KnownSetting& setting : kKnown) names.push_back(setting.name);
    *message = place + ": there is no setting " + QuoteValue(name) + NearestHint(name, names);
    return false;
  }
  if (known->kind == Kind::kText && known->most > 0 && value.size() > static_cast<size_t>(known->most)) {
    *message = place + ": " + known->name + " has at most " + std::to_string(known->most) + " bytes, not " +
               std::to_string(value.size());
    return false;
  }
  int64_t number = 0;
  if (known->kind == Kind::kNumber && !value.empty() && !ParseNumber(value, &number)) {
    *message = place + ": " + known->name + " wants a number (decimal, or hexadecimal after 0x), not " +
               QuoteValue(value);
    return false;
  }
  if (known->kind == Kind::kNumber && (number < 0 || number > known->most)) {
    *message = place + ": " + known->name + " is at most " + std::to_string(known->most) + ", not " + QuoteValue(value);
    return false;
  }
  return true;
}

void SettingsStore::Put(const std::string& name, const std::string& value) {
  for (NamedValue& held : values_) {
    if (EqualsIgnoringCase(held.name, name)) {
      held.value = value;
      return;
    }
  }
  values_.push_back({name, value});
}

bool SettingsStore::ReadFile(const std::string& path, std::string* message) {
  std::istringstream file;
  std::string reason;
  if (!ReadTextFile(path, &file, &reason)) return *message = path + ": the settings file: " + reason, false;
  return ReadText(file, path, message);
}

bool SettingsStore::ReadText(std::istream& file, const std::string& path, std::string* message) {
  std::vector<NamedValue> values;
  std::vector<SettingsLine> protocols;
  std::string line, section;
  for (int number = 1; std::getline(file, line); ++number) {
    const std::string place = path + ", line " + std::to_string(number);
    const std::string text = Trim(line);
    if (text.empty() || text[0] == ';' || text[0] == '#') continue;
    if (text[0] == '[') {
      if (text.back() != ']') {
        return *message = place + ": the section " + QuoteValue(text) + " has no closing bracket", false;
      }
      section = Trim(text.substr(1, text.size() - 2));
      if (!EqualsIgnoringCase(section, "View") && !EqualsIgnoringCase(section, "Protocols")) {
        return *message = place + ": there is no section " + QuoteValue(section) + ", only View and Protocols", false;
      }
      continue;
    }
    if (EqualsIgnoringCase(section, "Protocols")) {
      protocols.push_back({text, place});
      continue;
    }
    const size_t equals = text.find('=');
    if (section.empty()) {
      return *message = place + ": " + QuoteValue(text) + " stands in front of the first section", false;
    }
    if (equals == std::string::npos) return *message = place + ": " + QuoteValue(text) + " is not Name = Value", false;
    const std::string name = Trim(text.substr(0, equals)), value = Trim(text.substr(equals + 1));
    if (!Check(name, value, place, message)) return false;
    values.push_back({name, value});
  }
  for (const NamedValue& value : values) Put(value.name, value.value);
  protocolLines_.insert(protocolLines_.end(), protocols.begin(), protocols.end());
  return true;
}

bool SettingsStore::Take(const UserSettings& settings, std::string* message) {
  for (const NamedValue& value : settings.values) {
    if (!FindKnown(value.name)) continue;
    if (!Check(value.name, value.value, settings.place, message)) return false;
    Put(value.name, value.value);
  }
  protocolLines_.insert(protocolLines_.end(), settings.protocols.begin(), settings.protocols.end());
  return true;
}

bool SettingsStore::Set(const std::string& assignment, std::string* message) {
  const size_t equals = assignment.find('=');
  if (equals == std::string::npos) {
    *message = "--set " + QuoteValue(assignment) + ": NAME=VALUE is wanted";
    return false;
  }
  const std::string name = Trim(assignment.substr(0, equals)), value = Trim(assignment.substr(equals + 1));
  if (!Check(name, value, "--set " + QuoteValue(assignment), message)) return false;
  Put(name, value);
  return true;
}

const std::string* SettingsStore::Find(const std::string& name) const {
  for (const NamedValue& held : values_) {
    if (EqualsIgnoringCase(held.name, name)) return &held.value;
  }
  return nullptr;
}

}  // namespace qxview
