#include "platform/mib_modules.h"

namespace qxview {

bool ReadMibModules(const std::string&, const std::vector<std::string>& modules, std::vector<MibObject>*,
                    std::string* message) {
  *message = "MibModules: module " + modules.front() +
             ": modules beside the built-in names are not available on Windows";
  return false;
}

}  // namespace qxview
