// Bounded copies and appends, byte strings and address notations: the shared routines that turn field bytes into text.
// None writes past the size it is given; null pointers and sizes below 1 are accepted as told at each.
#pragma once
#include <cstdint>

#include "core/formatter.h"
#include "qxview/qxview_types.h"

namespace qxview {

using ::TextBuffer;

// Copies min(count, size - 1) characters and terminates. A null source gives null and leaves the destination alone;
// a size or count below 1 gives an empty destination.
char* CopyTextN(char* destination, int32_t size, const char* source, int32_t count);

// As CopyTextN, but a null source empties the destination and gives null, as do a null destination and a size below 1.
char* CopyBounded(char* destination, int32_t size, const char* source, int32_t length);

// CopyBounded of the whole source; null for a null or empty source.
char* CopyString(char* destination, int32_t size, const char* source);

// Appends at most `length` characters and never more than fit in size - 1 in total. A null destination or source
// gives null; a size or length below 1 leaves the destination as it is.
char* AppendBounded(char* destination, int32_t size, const char* source, int32_t length);

// AppendBounded of the whole source; null for a null or empty source.
char* AppendString(char* destination, int32_t size, const char* source);

// "%.02X" for the first byte and " %.02X" for each further one. A capacity below three times the count cuts the
// count to capacity / 3; a count below 1 gives an empty text.
void ByteHexToString(const uint8_t* bytes, int32_t count, TextBuffer* out);

constexpr int32_t kIPv4TextSize = 16;
constexpr int32_t kMacTextSize = 18;
constexpr int32_t kOuiTextSize = 7;
constexpr int32_t kEightByteTextSize = 24;
constexpr int32_t kIPv6TextSize = 46;

// Each writes a terminated text into a buffer of its size above and returns its length.
int32_t FormatIPv4(const uint8_t* address, char* out);              // "%d.%d.%d.%d"
int32_t FormatMac(const uint8_t* address, char* out);               // "%.2X:%.2X:%.2X:%.2X:%.2X:%.2X"
int32_t FormatOui(const uint8_t* oui, char* out);                   // "%.2X%.2X%.2X"
int32_t FormatEightByteAddress(const uint8_t* address, char* out);  // the first byte's low four bits, then ":%.2X"
int32_t FormatIPv6(const uint8_t* address, char* out);              // RFC 5952

// The same as arguments of a line's text. The bytes of an address must last until the line is formatted.
inline AddressBytes<AddressForm::kIPv4> IPv4Text(const uint8_t* address) { return {address}; }
inline AddressBytes<AddressForm::kMac> MacText(const uint8_t* address) { return {address}; }
inline AddressBytes<AddressForm::kIPv6> IPv6Text(const uint8_t* address) { return {address}; }
ShortText<kOuiTextSize> OuiText(const uint8_t* oui);

}  // namespace qxview
