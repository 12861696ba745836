// MIB modules beside the built-in names.
#pragma once
#include "host/mib_database.h"

namespace qxview {

// A MibModuleReader: libsmi, where it is there, in a process of its own.
bool ReadMibModules(const std::string& path, const std::vector<std::string>& modules, std::vector<MibObject>* objects,
                    std::string* message);

}  // namespace qxview
