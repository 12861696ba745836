// How much of a tree is shown: details of some protocols alone, so many levels, or no rows of dumps.
#pragma once
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "host/session.h"

namespace qxview {

class Command;

struct TreeShape {
  std::vector<std::string> only;   // short names of protocols; none: all. Needs the facts of the lines
  int32_t depth = std::numeric_limits<int32_t>::max();
  bool noDumps = false;

  bool IsUsed() const { return !only.empty() || noDumps || depth != std::numeric_limits<int32_t>::max(); }
  // Zero where there is none: the first line under one at this depth (from 1; of the packet with 0, at depth 0), the next one.
  LineHandle FirstUnder(Session& session, LineHandle line, int32_t depthOfLine) const;
  LineHandle Next(Session& session, LineHandle line) const;
};

// The steps through a tree in some shape.
class TreeWalk {
 public:
  TreeWalk(Session& session, const TreeShape& shape) : session_(session), shape_(shape), isWhole_(!shape.IsUsed()) {}
  LineHandle FirstUnder(LineHandle line, int32_t depthOfLine) const {
    return isWhole_ ? session_.Tree().FirstChild(line) : shape_.FirstUnder(session_, line, depthOfLine);
  }
  LineHandle Next(LineHandle line) const { return isWhole_ ? session_.Tree().NextSibling(line) : shape_.Next(session_, line); }

 private:
  Session& session_;
  const TreeShape& shape_;
  const bool isWhole_;
};

// --only, --depth and --no-dumps.
void AddShapeOptions(Command* command, TreeShape* shape);

}  // namespace qxview
