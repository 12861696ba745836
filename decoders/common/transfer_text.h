// Octets that mail writes as characters: base64 (RFC 4648), quoted-printable (RFC 2045 6.7), encoded words in headers (RFC
// 2047).
#pragma once
#include "core/decoder.h"

namespace qxview {

// Decodes base64, passing over line ends and blanks, up to what is none. Result: the octets written, `size` at most.
int32_t ReadBase64(Cursor c, uint8_t* out, int32_t size);

// The same into memory of the frame: a cursor over the octets that stands where the characters do. Lines made of it are
// derived (DerivedLines). Empty for what is no base64 or too much.
Cursor DecodeBase64(const Place& in, const Field& text);

// Lines of quoted-printable in the same way, joined where a line goes on in the next.
Cursor DecodeQuotedPrintable(const Place& in, const Field& text);

// One line of quoted-printable without its end. Result: the octets written. "_" is a blank in encoded words.
int32_t ReadQuotedPrintable(const Field& line, bool isWord, uint8_t* out, int32_t size);

// Octets that "%C3" stands for (RFC 3986 2.1, RFC 2231), and others as they are. Result: the octets written.
int32_t ReadPercentText(const Field& text, uint8_t* out, int32_t size);

// Lines of uuencode behind "begin 644 name", without their count and their end. Result: the octets written.
int32_t ReadUuLine(const Field& line, uint8_t* out, int32_t size);

// A text with its encoded words decoded; false when it has none.
bool ReadEncodedWords(const Field& text, uint8_t* out, int32_t size, int32_t* used);
// A line that says it, where there are encoded words.
void ShowEncodedWords(const Place& in, const Field& text, const char* label);

}  // namespace qxview
