#include "host/mib_database.h"

#include <algorithm>
#include <charconv>
#include <cstring>

#include "host/mib_table.h"

namespace qxview {
namespace {

constexpr int32_t kInternetDepth = 4;   // 1.3.6.1
constexpr size_t kArcSize = 11;         // of a number's text

// Reads the number at `text` and moves behind the dot that follows it; false when there is none.
bool TakeArc(const char*& text, uint32_t* arc) {
  if (*text < '0' || *text > '9') return false;
  uint32_t number = 0;
  while (*text >= '0' && *text <= '9') number = number * 10 + static_cast<uint32_t>(*text++ - '0');
  *arc = number;
  if (*text == '.') ++text;
  return true;
}

// A text that grows inside a buffer, as long as it fits.
struct BoundedText {
  char* out;
  size_t size;
  size_t used = 0;

  bool Append(const char* text, size_t length) {
    if (used + length >= size) return false;
    std::memcpy(out + used, text, length);
    used += length;
    return true;
  }
};

void WriteNumber(uint32_t number, char* out, size_t size) { *std::to_chars(out, out + size - 1, number).ptr = 0; }

template <size_t N>
bool Copy(char (&out)[N], const char* text) {
  const size_t length = std::strlen(text);
  if (length >= N) return false;
  std::memcpy(out, text, length + 1);
  return true;
}

}  // namespace

const MibDatabase::Node* MibDatabase::FindChild(const Node& node, uint32_t arc) {
  const auto at = std::lower_bound(node.children.begin(), node.children.end(), arc,
                                   [](const Node& child, uint32_t a) { return child.arc < a; });
  return at != node.children.end() && at->arc == arc ? &*at : nullptr;
}

void MibDatabase::Add(const std::vector<MibObject>& objects) {
  for (const MibObject& object : objects) {
    Node* node = &added_;
    for (const uint32_t arc : object.number) {
      const auto at = std::lower_bound(node->children.begin(), node->children.end(), arc,
                                       [](const Node& child, uint32_t a) { return child.arc < a; });
      node = at != node->children.end() && at->arc == arc ? &*at : &*node->children.insert(at, Node{arc, {}, {}});
    }
    node->object = object;
  }
}

int32_t MibDatabase::Find(const char* dotted, QxMibEntry* out) const {
  const MibRow* row = MibRoot();
  const Node* node = &added_;
  BoundedText path{out->path, sizeof out->path};
  const char *suffix = dotted, *type = nullptr, *access = nullptr, *rest = dotted;
  uint32_t ownArc = 0;
  int32_t depth = 0;
  size_t pathLength = 0;   // up to the deepest arc with a name
  for (uint32_t arc; TakeArc(rest, &arc);) {
    row = row ? FindMibChild(*row, arc) : nullptr;
    node = node ? FindChild(*node, arc) : nullptr;
    if (!row && !node) break;
    ++depth;
    const bool isAdded = node && !node->object.name.empty();
    const char* name = isAdded ? node->object.name.c_str() : row ? MibName(*row) : "";
    char digits[kArcSize];
    if (!*name) WriteNumber(arc, digits, sizeof digits);
    const char* step = *name ? name : digits;
    if ((path.used > 0 && !path.Append(".", 1)) || !path.Append(step, std::strlen(step))) return 0;
    if (!*name) continue;
    pathLength = path.used;
    type = isAdded ? node->object.type.c_str() : MibType(*row);
    access = isAdded ? node->object.access.c_str() : MibAccess(*row);
    ownArc = arc;
    suffix = rest;
  }
  if (pathLength == 0 || (depth < kInternetDepth && *suffix)) return 0;
  out->path[pathLength] = 0;
  WriteNumber(ownArc, out->nodeNumber, sizeof out->nodeNumber);
  return Copy(out->suffix, suffix) && Copy(out->type, type) && Copy(out->access, access) ? 1 : 0;
}

}  // namespace qxview
