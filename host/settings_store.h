// The stand-alone host's settings: `Name = Value` lines under [View] in an INI file, and single settings laid over them.
// The same file's [Protocols] section holds protocol definitions, a line each, handed on as they stand.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace qxview {

struct SettingsLine {
  std::string text;
  std::string place;   // "FILE, line N"
};

class SettingsStore {
 public:
  // Reads a settings file; false with a message that names the file and the line. Nothing of a file that cannot be
  // read wholly is taken.
  bool ReadFile(const std::string& path, std::string* message);

  // One setting as "NAME=VALUE"; false with a message for an unknown name or a value that is not of its kind.
  bool Set(const std::string& assignment, std::string* message);

  // The value of a name (case ignored); null when it has none.
  const std::string* Find(const std::string& name) const;

  const std::vector<SettingsLine>& ProtocolLines() const { return protocolLines_; }

 private:
  struct Value {
    std::string name, value;
  };
  bool Check(const std::string& name, const std::string& value, const std::string& place, std::string* message) const;
  void Put(const std::string& name, const std::string& value);

  std::vector<Value> values_;
  std::vector<SettingsLine> protocolLines_;
};

// The user's own settings file: $XDG_CONFIG_HOME/vantrell/view.ini, or .config/vantrell/view.ini under $HOME. Empty
// when neither is set.
std::string DefaultSettingsPath();

}  // namespace qxview
