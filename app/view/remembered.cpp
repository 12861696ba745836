#include "app/view/remembered.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>

#include "platform/new_file.h"

namespace qxview {
namespace {

std::string StateFolder() {
  const char* state = std::getenv("XDG_STATE_HOME");
  const char* home = std::getenv("HOME");
  if (state && state[0] == '/') return std::string(state) + "/vantrell";
  return home && home[0] == '/' ? std::string(home) + "/.local/state/vantrell" : "";
}

void MakeFolders(const std::string& path) {
  for (size_t at = 1; at <= path.size(); ++at) {
    if (at == path.size() || path[at] == '/') mkdir(path.substr(0, at).c_str(), 0700);
  }
}

void TakeNumber(const std::string& value, int32_t least, int32_t most, int32_t* number) {
  const int32_t given = std::atoi(value.c_str());
  if (given >= least && given <= most) *number = given;
}

}  // namespace

std::string UserSettingsPath(const std::string& present) {
  const char* config = std::getenv("XDG_CONFIG_HOME");
  const char* home = std::getenv("HOME");
  if (!present.empty()) return present;
  if (!(config && config[0]) && !(home && home[0])) return {};
  const std::string folder = (config && config[0] ? config : std::string(home) + "/.config") + std::string("/vantrell");
  MakeFolders(folder);
  return folder + "/view.ini";
}

void Remembered::Load() {
  const std::string folder = StateFolder();
  if (folder.empty()) return;
  std::ifstream file(folder + "/view");
  constexpr size_t kMost = 50, kLongest = 16384;
  for (std::string line; std::getline(file, line);) {
    const size_t equals = line.find('=');
    if (equals == line.npos || line.size() > kLongest) continue;
    const std::string name = line.substr(0, equals), value = line.substr(equals + 1);
    int32_t form = static_cast<int32_t>(time);
    if (name == "time") TakeNumber(value, 0, static_cast<int32_t>(TimeForm::kIso), &form), time = static_cast<TimeForm>(form);
    if (name == "list") TakeNumber(value, 1, 100, &shares[0]);
    if (name == "tree") TakeNumber(value, 1, 100, &shares[1]);
    if (name == "bytes") TakeNumber(value, 1, 100, &shares[2]);
    if (name == "beside") beside = value == "1";
    if (name == "columns" && !value.empty()) columns = value;
    if (name == "theme") theme = value;
    if (name == "filter" && filters.size() < kMost) filters.push_back(value);
    if (name == "search" && searches.size() < kMost) searches.push_back(value);
  }
}

void Remembered::Save() const {
  const std::string folder = StateFolder();
  if (folder.empty()) return;
  MakeFolders(folder);
  std::string text = std::string("time=") + std::to_string(static_cast<int32_t>(time)) + "\nlist=" + std::to_string(shares[0]) +
                     std::string("\ntree=") + std::to_string(shares[1]) + "\nbytes=" + std::to_string(shares[2]) +
                     "\nbeside=" + (beside ? "1" : "0") + "\ncolumns=" + columns + "\ntheme=" + theme + "\n";
  for (const std::string& filter : filters) text += "filter=" + filter + "\n";
  for (const std::string& search : searches) text += "search=" + search + "\n";
  NewFile file;
  std::string message;   // nobody waits for it, and nothing is lost but habits
  if (!file.Create(folder + "/view", &message)) return;
  const OutputSink sink = file.Sink();
  if (sink.write(sink.handle, text.data(), static_cast<int32_t>(text.size())) == 1) file.Keep(&message);
}

}  // namespace qxview
