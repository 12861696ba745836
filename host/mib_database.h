// What object identifiers are called: the objects of the standard management trees, which are always known, and those
// of further MIB modules.
//
// An identifier is named by the deepest object that it starts with; what follows is the instance. So that a name tells
// something, that object stands at or below "internet" (1.3.6.1), or is the identifier itself.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "qxview/qxview_host.h"

namespace qxview {

// An object as a module defines it.
struct MibObject {
  std::vector<uint32_t> number;   // 1, 3, 6, 1, 2, 1, 1, 1
  std::string name;               // "sysDescr"
  std::string type;               // as the module names it: "DisplayString"; of a table "SEQUENCE OF"; of what has no
                                  // value the macro that defines it
  std::string access;             // "read-only"; "not-accessible" for what has no value
};

// Reads modules and those that they import from the directories of a path (empty: the reader's own path). False with a
// message that names the module, and the file and line where there is one.
using MibModuleReader = bool (*)(const std::string& path, const std::vector<std::string>& modules,
                                 std::vector<MibObject>* objects, std::string* message);

class MibDatabase {
 public:
  // Adds objects; where one is known already the new one holds.
  void Add(const std::vector<MibObject>& objects);

  // 1 when the dotted number has an entry. Texts that do not fit the entry make it none.
  int32_t Find(const char* dotted, QxMibEntry* out) const;

 private:
  struct Node {
    uint32_t arc = 0;
    MibObject object;              // without a name for an arc that leads to others only
    std::vector<Node> children;    // in the order of their arcs
  };
  static const Node* FindChild(const Node& node, uint32_t arc);

  Node added_;
};

}  // namespace qxview
