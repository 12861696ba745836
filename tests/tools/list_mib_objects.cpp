// Prints the objects of MIB modules in the form of host/mib_objects.txt: list_mib_objects PATH MODULE...
#include <cstdio>

#include "platform/mib_modules.h"

int main(int argc, char** argv) {
  std::vector<qxview::MibObject> objects;
  std::string message;
  if (argc < 3 || !qxview::ReadMibModules(argv[1], {argv + 2, argv + argc}, &objects, &message)) {
    std::fprintf(stderr, "%s\n", argc < 3 ? "usage: list_mib_objects PATH MODULE..." : message.c_str());
    return 1;
  }
  for (const qxview::MibObject& object : objects) {
    for (size_t i = 0; i < object.number.size(); ++i) std::printf(i > 0 ? ".%u" : "%u", object.number[i]);
    std::printf(" %s %s %s\n", object.name.c_str(), object.access.c_str(), object.type.c_str());
  }
  return 0;
}
