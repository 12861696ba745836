// The names that SMB's summary takes beside those of its decoder: commands of the second version (MS-SMB2 2.2.1).
#pragma once
#include "core/name_table.h"

namespace qxview {

inline constexpr auto kSmb2CommandNames = SortedNames({
    {0x00, "Negotiate"}, {0x01, "Session Setup"}, {0x02, "Logoff"}, {0x03, "Tree Connect"}, {0x04, "Tree Disconnect"},
    {0x05, "Create"}, {0x06, "Close"}, {0x07, "Flush"}, {0x08, "Read"}, {0x09, "Write"}, {0x0A, "Lock"},
    {0x0B, "IOCTL"}, {0x0C, "Cancel"}, {0x0D, "Echo"}, {0x0E, "Query Directory"}, {0x0F, "Change Notify"},
    {0x10, "Query Info"}, {0x11, "Set Info"}, {0x12, "Oplock Break"},
});

}  // namespace qxview
