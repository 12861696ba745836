// The names of NT status values (MS-ERREF 2.3.1), which SMB, Kerberos, RPC and others carry.
#pragma once
#include <cstdint>

namespace qxview {

const char* NtStatusName(uint32_t status);   // "STATUS_LOGON_FAILURE"; null for one that has none

}  // namespace qxview
