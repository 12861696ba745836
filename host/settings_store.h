// The stand-alone host's settings: `Name = Value` lines under [View] in an INI file, and single settings laid over them.
// The same file's [Protocols] section holds protocol definitions, a line each, handed on as they stand.
#pragma once
#include <cstdint>
#include <istream>
#include <string>
#include <vector>

namespace qxview {

struct SettingsLine {
  std::string text;
  std::string place;   // "FILE, line N"
};

struct NamedValue {
  std::string name, value;
};

// Where the user's own settings are: in a file, empty where there is none, or already read from a store of the platform's.
struct UserSettings {
  std::string file;
  std::string hidden;                 // where they may be and may not be looked for, with the reason
  std::string place;                  // of the values, for messages
  std::vector<NamedValue> values;
  std::vector<SettingsLine> protocols;
};

class SettingsStore {
 public:
  // Reads a settings file; false with a message that names the file and the line. Nothing of a file that cannot be
  // read wholly is taken.
  bool ReadFile(const std::string& path, std::string* message);
  // The same for a file's text; `path` stands for it in messages.
  bool ReadText(std::istream& file, const std::string& path, std::string* message);

  // Takes values that the platform read; false with a message for one that is not of its kind. Names that are no
  // settings are passed over: the analyzer keeps values of its own in that place.
  bool Take(const UserSettings& settings, std::string* message);

  // One setting as "NAME=VALUE"; false with a message for an unknown name or a value that is not of its kind.
  bool Set(const std::string& assignment, std::string* message);

  // The value of a name (case ignored); null when it has none.
  const std::string* Find(const std::string& name) const;

  const std::vector<SettingsLine>& ProtocolLines() const { return protocolLines_; }

 private:
  bool Check(const std::string& name, const std::string& value, const std::string& place, std::string* message) const;
  void Put(const std::string& name, const std::string& value);

  std::vector<NamedValue> values_;
  std::vector<SettingsLine> protocolLines_;
};

}  // namespace qxview
