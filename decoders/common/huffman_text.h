// Texts of HTTP's field compression (RFC 7541, section 5.2, for HTTP/2; RFC 9204, section 4.1, for HTTP/3): integers behind
// a prefix, and strings of bytes as they are or in a Huffman code.
#pragma once
#include "core/cursor.h"

namespace qxview {

// An integer that starts in the low `prefixBits` bits of a byte and goes on in further ones while they are full. The field
// is not here when the bytes end, or the value is wider than 62 bits.
WideField TakePrefixedNumber(Cursor& c, int32_t prefixBits);

// The characters that the code's bits stand for, as many as fit, cut at what is no code. Their number.
int32_t ReadHuffmanText(const Field& coded, char* out, int32_t size);

// A string: its code flag stands in front of the prefix of its length.
struct CompressedText {
  Field whole;           // with its length
  TextSlice text;        // in the frame's bytes, or in `room`
  bool isCoded, here;
};
CompressedText TakeCompressedText(Cursor& c, int32_t prefixBits, char* room, int32_t size);

}  // namespace qxview
