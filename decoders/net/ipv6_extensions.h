// The headers that may stand between the IPv6 header and what it carries. Each function shows the header that the
// cursor stands on under a top line at the place, takes it and stores its next header in the chain. Result: whether the
// chain goes on behind it; when not, what was left has been shown.
#pragma once
#include "core/decoder.h"

namespace qxview {

constexpr uint32_t kHopByHopHeader = 0, kRoutingHeader = 43, kFragmentHeader = 44, kEspHeader = 50, kAhHeader = 51,
                   kIcmpv6 = 58, kNoNextHeader = 59, kDestinationOptionsHeader = 60, kDraftMobilityHeader = 62,
                   kMobilityHeader = 135;

// What the walk from header to header knows.
struct HeaderChain {
  uint32_t nextHeader;
  int64_t payloadLength;         // bytes behind the fixed header, as declared there or by a jumbo payload option
  const uint8_t* source;         // 16 bytes each: the ends as checksums of carried protocols count them, where
  const uint8_t* destination;    // options and routing headers name others than the fixed header
};

// Hop-by-hop and destination options; `kind` names which in the top line.
bool DecodeOptionsHeader(const Place& at, Cursor& c, HeaderChain& chain, const char* kind);
bool DecodeRoutingHeader(const Place& at, Cursor& c, HeaderChain& chain);
// The fragment's place in its packet goes to the packet's network state; its data ends the chain.
bool DecodeFragmentHeader(const Place& at, Cursor& c, HeaderChain& chain);
bool DecodeEspHeader(const Place& at, Cursor& c);
bool DecodeMobilityHeader(const Place& at, Cursor& c, HeaderChain& chain);
void DecodeMobilityOptions(const Place& in, Cursor& c);
// Drafts of mobility had a number that is another protocol's now; whether the bytes are such a header.
bool IsDraftMobilityHeader(const Cursor& c);

// What an option holds, behind its length; false for one that has no fields of its own. And the ways of the later routing headers
// (ipv6_options.cpp).
bool ShowIPv6Option(const Place& in, uint32_t type, Cursor& c);
void ShowSegmentRoute(const Place& in, Cursor& c, HeaderChain& chain, uint32_t segmentsLeft);
void ShowCompactRoute(const Place& in, Cursor& c, bool isWide);

// The size in bytes that a header of the common form (next header, length in units of 8 bytes beyond the first 8)
// declares; 0 when the cursor holds less than those two bytes.
int32_t DeclaredHeaderSize(const Cursor& c);

// As much of a declared size as was captured, for a top line.
Field CapturedPart(const Cursor& c, int32_t size);

// Shows what is left as data without a decoder. Result: false.
bool EndChain(const Place& at, Cursor& c);

// The next-header field with its line, stored in the chain.
void TakeNextHeader(const Place& in, Cursor& c, HeaderChain& chain);

}  // namespace qxview
