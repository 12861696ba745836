// What the view was last used with, kept for the next time.
#pragma once
#include <string>
#include <vector>

#include "app/list_time.h"

namespace qxview {

struct Remembered {
  TimeForm time = TimeForm::kRelative;
  int32_t shares[3] = {8, 10, 6};   // of the panes in the height
  bool beside = false;              // the bytes beside the tree
  std::string columns = "number time source destination protocol length summary";
  std::string theme = "auto";
  std::vector<std::string> filters, searches, places;   // typed, the newest first

  // $XDG_STATE_HOME/vantrell/view, or .local/state/vantrell/view under $HOME. A file that is not there or not to be read leaves
  // everything as it is.
  void Load();
  void Save() const;
};

// Where the user's settings file is, or would be; its folder is made. Empty where nobody knows.
std::string UserSettingsPath(const std::string& present);

}  // namespace qxview
