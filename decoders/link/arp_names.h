// The operations of ARP's registry, which all its kinds share.
#pragma once
#include "core/name_table.h"

namespace qxview {

inline constexpr auto kArpOperationNames = SortedNames({
    {1, "Request"}, {2, "Reply"}, {3, "Reverse Request"}, {4, "Reverse Reply"}, {5, "DRARP Request"},
    {6, "DRARP Reply"}, {7, "DRARP Error"}, {8, "Inverse Request"}, {9, "Inverse Reply"}, {10, "ARP NAK"},
    {11, "MARS Request"}, {12, "MARS Multi"}, {13, "MARS MServ"}, {14, "MARS Join"}, {15, "MARS Leave"}, {16,
    "MARS NAK"},
    {17, "MARS Unserv"}, {18, "MARS SJoin"}, {19, "MARS SLeave"}, {20, "MARS Grouplist Request"}, {21,
    "MARS Grouplist Reply"},
    {22, "MARS Redirect Map"}, {23, "MAPOS UNARP"}, {24, "Experimental 1"}, {25, "Experimental 2"}});

}  // namespace qxview
