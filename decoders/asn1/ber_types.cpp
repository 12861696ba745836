// The types whose value is a number or a short text of its own.
#include "decoders/asn1/ber_element.h"

namespace qxview {
namespace {

// An element whose value line is its number.
int32_t DecodeNumber(const Place& at, Cursor& c, const char* typeName, AsnResult& out) {
  const AsnElement element = OpenElement(at, c, typeName, out);
  if (!element.contents.here) return element.status;
  out.number = BerNumber(CursorOver(element.contents));
  FormatInto(out.text, out.textSize, "%u", out.number);
  AddLine(at, element.contents, "ASN Value : %u", out.number);
  return kAsnDecoded;
}

int32_t DecodeNumberOf(const Place& at, Cursor& c, uint32_t identifier, const char* typeName, AsnResult& out) {
  const int32_t met = MeetIdentifier(c, identifier);
  return met == kAsnDecoded ? DecodeNumber(at, c, typeName, out) : met;
}

// Octets as eight digits each; whole octets and "..." when there is no room for all.
void FormatBits(const Field& contents, char* text, int32_t size) {
  constexpr int32_t kWidth = 9;
  if (!text || size < 1) return;
  const bool isCut = contents.length > size / kWidth;
  const int32_t count = isCut ? (size - 3) / kWidth : contents.length;
  char* out = text;
  Cursor c = CursorOver(contents);
  for (int32_t i = 0; i < count; ++i) {
    if (i > 0) *out++ = ' ';
    const uint32_t octet = TakeU8(c).value;
    for (int32_t bit = 7; bit >= 0; --bit) *out++ = static_cast<char>('0' + (octet >> bit & 1));
  }
  *out = 0;
  if (isCut) AppendString(text, size, "...");
}

int32_t DecodeTruth(const Place& at, Cursor& c, AsnResult& out) {
  const AsnElement element = OpenElement(at, c, "BOOL", out);
  if (!element.contents.here) return element.status;
  out.number = BerNumber(CursorOver(element.contents));
  const char* meaning = out.number == 0 ? "False" : out.number <= 0x7FFFFFFF ? "True" : kUndefined;
  FormatInto(out.text, out.textSize, "[%u] = %s", out.number, meaning);
  AddLine(at, element.contents, "ASN Value : [%u] = %s", out.number, meaning);
  return kAsnDecoded;
}

}  // namespace

int32_t DecodeAsnBoolean(const Place& at, Cursor& c, AsnResult& out) {
  const int32_t met = MeetIdentifier(c, kAsnBoolean);
  return met == kAsnDecoded ? DecodeTruth(at, c, out) : met;
}
int32_t DecodeAsnImplicitBoolean(const Place& at, Cursor& c, AsnResult& out) {
  return Left(c) < 1 ? kAsnTruncated : DecodeTruth(at, c, out);
}
int32_t DecodeAsnImplicitInteger(const Place& at, Cursor& c, AsnResult& out) {
  return Left(c) < 1 ? kAsnTruncated : DecodeNumber(at, c, "INTEGER", out);
}
int32_t DecodeAsnInteger(const Place& at, Cursor& c, AsnResult& out) {
  return DecodeNumberOf(at, c, kAsnInteger, "INTEGER", out);
}
int32_t DecodeAsnNull(const Place& at, Cursor& c, AsnResult& out) {
  return DecodeNumberOf(at, c, kAsnNull, "NULL", out);
}
int32_t DecodeAsnCounter(const Place& at, Cursor& c, AsnResult& out) {
  return DecodeNumberOf(at, c, kAsnCounter, "COUNTER", out);
}
int32_t DecodeAsnGauge(const Place& at, Cursor& c, AsnResult& out) {
  return DecodeNumberOf(at, c, kAsnGauge, "GAUGE", out);
}
int32_t DecodeAsnUnsigned32(const Place& at, Cursor& c, AsnResult& out) {
  return DecodeNumberOf(at, c, kAsnUnsigned32, "UNSIGNED32", out);
}

int32_t DecodeAsnException(const Place& at, Cursor& c, AsnResult& out) {
  if (Left(c) < 1) return kAsnTruncated;
  switch (PeekU8(c)) {
    case kAsnNoSuchObject: return DecodeNumber(at, c, "NO SUCH OBJECT", out);
    case kAsnNoSuchInstance: return DecodeNumber(at, c, "NO SUCH INSTANCE", out);
    case kAsnEndOfMibView: return DecodeNumber(at, c, "END OF MIBVIEW", out);
    default: return kAsnNotThisType;
  }
}

int32_t DecodeAsnEnumerated(const Place& at, Cursor& c, AsnResult& out) {
  const int32_t met = MeetIdentifier(c, kAsnEnumerated);
  if (met != kAsnDecoded) return met;
  const AsnElement element = OpenElement(at, c, "ENUMERATION", out);
  if (!element.contents.here) return element.status;
  out.number = BerNumber(CursorOver(element.contents));
  char digits[11];
  FormatInto(digits, sizeof digits, "%u", out.number);
  CopyString(out.text, out.textSize, digits);
  AddLine(at, element.contents, "Enumeration: %s", static_cast<const char*>(digits));
  return kAsnDecoded;
}

int32_t DecodeAsnCounter64(const Place& at, Cursor& c, AsnResult& out) {
  const int32_t met = MeetIdentifier(c, kAsnCounter64);
  if (met != kAsnDecoded) return met;
  const AsnElement element = OpenElement(at, c, "COUNTER64", out);
  if (!element.contents.here) return element.status;
  uint64_t number = 0;
  for (Cursor rest = CursorOver(element.contents); Left(rest) > 0;) number = number << 8 | TakeU8(rest).value;
  out.number = static_cast<uint32_t>(number);
  FormatInto(out.text, out.textSize, "%I64u", number);
  AddLine(at, element.contents, "ASN Value : %I64u", number);
  return kAsnDecoded;
}

int32_t DecodeAsnBitString(const Place& at, Cursor& c, AsnResult& out) {
  const int32_t met = MeetIdentifier(c, kAsnBitString);
  if (met != kAsnDecoded) return met;
  const AsnElement element = OpenElement(at, c, "BIT STREAM", out);
  if (!element.contents.here) return element.status;
  FormatBits(element.contents, out.text, out.textSize);
  AddLine(at, element.contents, "ASN Value : %s", static_cast<const char*>(out.text));
  return kAsnDecoded;
}

int32_t DecodeAsnNetworkAddress(const Place& at, Cursor& c, AsnResult& out) {
  const int32_t met = MeetIdentifier(c, kAsnNetworkAddress);
  if (met != kAsnDecoded) return met;
  const AsnElement element = OpenElement(at, c, "NetworkAddress", out);
  const Field& octets = element.contents;
  if (!octets.here) return element.status;
  Cursor rest = CursorOver(octets);
  int32_t used = FormatInto(out.text, out.textSize, "%u", TakeU8(rest).value);
  while (Left(rest) > 0 && used < out.textSize - 1) {
    used += FormatInto(out.text + used, out.textSize - used, ".%u", TakeU8(rest).value);
  }
  AddLine(at, octets, "ASN Value : %s", static_cast<const char*>(out.text));
  return kAsnDecoded;
}

int32_t DecodeAsnTimeTicks(const Place& at, Cursor& c, char* longText, int32_t longSize, AsnResult& out) {
  const int32_t met = MeetIdentifier(c, kAsnTimeTicks);
  if (met != kAsnDecoded) return met;
  CopyString(longText, longSize, "");
  const AsnElement element = OpenElement(at, c, "TimeTicks", out);
  if (element.status == kAsnDecoded) CopyString(longText, longSize, out.text);
  if (!element.contents.here) return element.status;
  out.number = BerNumber(CursorOver(element.contents));
  const int32_t ticks = static_cast<int32_t>(out.number);
  const int32_t days = ticks / 8640000, hours = ticks % 8640000 / 360000, minutes = ticks % 360000 / 6000;
  const int32_t seconds = ticks % 6000 / 100, hundredths = ticks % 100;
  char words[128];
  FormatInto(words, sizeof words, "%.01lu days, %.01lu hours, %.01lu minutes, %lu.%.02lu seconds", days, hours,
             minutes, seconds, hundredths);
  CopyString(longText, longSize, words);
  FormatInto(out.text, out.textSize, "%.01lu:%.01lu:%.01lu:%lu.%.02lu", days, hours, minutes, seconds, hundredths);
  AddLine(at, element.contents, "ASN Value : [%u] = %s", out.number, static_cast<const char*>(words));
  return kAsnDecoded;
}

int32_t DecodeAsnUndefined(const Place& at, Cursor& c, AsnResult& out) {
  if (Left(c) < 1) return kAsnTruncated;
  const AsnElement element = OpenElement(at, c, kUndefined, out);
  if (!element.contents.here) return element.status;
  CopyString(out.text, out.textSize, kUndefined);
  AddBlock(at, element.contents, "Undefined Data");
  return kAsnDecoded;
}

}  // namespace qxview
