// The built-in objects: a tree in an array, the children of an object one behind the other in the order of their arcs.
// scripts/make_mib_table.py makes mib_table.inc from mib_objects.txt. The array holds no pointers, so that it costs
// nothing at start-up.
#pragma once
#include <cstdint>

namespace qxview {

struct MibRow {
  uint32_t arc;
  uint16_t firstChild;   // row number
  uint16_t childCount;
  uint16_t name;         // in kMibNames; 0 for an arc without a name
  uint8_t type;          // in kMibTypes
  uint8_t access;        // in kMibAccesses
};

// Row 0 is the root, which has no arc and no name.
const MibRow* MibRoot();
// The child of a row; null when it has none of this arc.
const MibRow* FindMibChild(const MibRow& row, uint32_t arc);
const char* MibName(const MibRow& row);
const char* MibType(const MibRow& row);
const char* MibAccess(const MibRow& row);

}  // namespace qxview
