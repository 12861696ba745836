// HTTP: what other files may ask of its decoder.
#pragma once
#include "core/decoder.h"

namespace qxview {

constexpr int32_t kHttpRequest = 1, kHttpResponse = 2, kHttpContinuation = 3;

// Shows the payload of one TCP segment in top-level lines of `level`. Result: 0 when `length` is below 1, else 1.
int32_t DecodeHttpPayload(View* view, const uint8_t* payload, int32_t frameOffset, int32_t length, int32_t level,
                          bool isTls);

// What the first line makes the payload: kHttpRequest, kHttpResponse, or kHttpContinuation for anything else.
int32_t ClassifyHttpFirstLine(const uint8_t* data, int32_t length);

// The row whose messages the packet's connection has gone over to from HTTP; the row itself for any other, and for bytes that
// start a message of HTTP.
const DecoderRow& RowBehindUpgrade(const Place& at, const DecoderRow& row, const Cursor& c);

}  // namespace qxview
