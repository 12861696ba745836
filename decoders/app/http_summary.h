// The packet list's text for HTTP.
#pragma once
#include <cstdint>

namespace qxview {

// Writes the summary into `out`, always terminated. Result: 0 for missing arguments, sizes below 1 or an empty first
// line; 1 request, 2 reply, 3 continuation; 1 for a TLS record when `isTls` is set.
int32_t DescribeHttp(const uint8_t* data, int32_t length, char* out, int32_t outSize, int32_t isTls);

}  // namespace qxview
