#include "app/colors.h"

#include <cstdlib>
#include <string_view>

#include "platform/platform.h"

namespace qxview {

bool UsesColor(ColorChoice choice) {
  if (choice != ColorChoice::kAuto) return choice == ColorChoice::kAlways;
  const char* noColor = std::getenv("NO_COLOR");
  const char* terminal = std::getenv("TERM");
  return IsTerminal(StandardOutputFile()) && !(noColor && noColor[0]) &&
         !(terminal && std::string_view(terminal) == "dumb");
}

}  // namespace qxview
