#include "host/mib_table.h"

#include <algorithm>
#include <iterator>

namespace qxview {
namespace {

#include "host/mib_table.inc"

static_assert(std::size(kMibRows) <= 0xFFFF && sizeof kMibNames <= 0xFFFF, "references are 16 bits wide");

}  // namespace

const MibRow* MibRoot() { return kMibRows; }

const MibRow* FindMibChild(const MibRow& row, uint32_t arc) {
  const MibRow* first = kMibRows + row.firstChild;
  const MibRow* end = first + row.childCount;
  if (first == end || arc < first->arc) return nullptr;
  // Arcs mostly follow one another.
  const uint32_t distance = arc - first->arc;
  if (distance < row.childCount && first[distance].arc == arc) return first + distance;
  const auto isBefore = [](const MibRow& child, uint32_t a) { return child.arc < a; };
  const MibRow* found = std::lower_bound(first, end, arc, isBefore);
  return found != end && found->arc == arc ? found : nullptr;
}

const char* MibName(const MibRow& row) { return kMibNames + row.name; }
const char* MibType(const MibRow& row) { return kMibTypes[row.type]; }
const char* MibAccess(const MibRow& row) { return kMibAccesses[row.access]; }

}  // namespace qxview
