// The types whose contents are characters or any octets.
#include "decoders/asn1/ber_element.h"

namespace qxview {
namespace {

constexpr int32_t kLongestLine = 80;   // longer contents are dumped

bool IsPrintable(const Field& contents) {
  for (Cursor c = CursorOver(contents); Left(c) > 0;) {
    const uint32_t octet = TakeU8(c).value;
    if ((octet < 0x20 || octet > 0x7E) && octet != '\r' && octet != '\n') return false;
  }
  return true;
}

// Whole octets only. The limit counts no blank behind the last octet: at one length the last one is dropped undotted.
void FormatShortHex(const Field& contents, char* out, int32_t size) {
  const bool isCut = int64_t{3} * contents.length - 3 >= size;
  const int32_t room = isCut ? (size - 3) / 3 : size / 3;
  const int32_t count = contents.length < room ? contents.length : room;
  FormatInto(out, size, "%s", HexText(Slice(contents, 0, count)));
  if (isCut) AppendString(out, size, "...");
}

void FormatShortText(const Field& contents, char* out, int32_t size) {
  const char* text = reinterpret_cast<const char*>(contents.bytes);
  if (contents.length < size) {
    CopyTextN(out, size, text, contents.length);
    return;
  }
  int32_t count = 0;
  while (count < size - 4 && text[count] != '\r' && text[count] != '\n') ++count;
  CopyTextN(out, size, text, count);
  AppendString(out, size, "...");
}

int32_t DecodeString(const Place& at, Cursor& c, uint32_t identifier, const char* typeName,
                     const AsnStringForm& form, AsnResult& out) {
  const int32_t met = MeetIdentifier(c, identifier);
  if (met != kAsnDecoded) return met;
  CopyString(form.shortText, form.shortSize, "");
  const AsnElement element = OpenElement(at, c, typeName, out);
  const Field& contents = element.contents;
  if (!contents.here) {
    if (element.status == kAsnDecoded) CopyString(form.shortText, form.shortSize, out.text);
    return element.status;
  }
  char* shortText = form.shortText;
  if (form.forceHex || !IsPrintable(contents)) {
    FormatShortHex(contents, shortText, form.shortSize);
  } else {
    FormatShortText(contents, shortText, form.shortSize);
    if (form.label && !at.dead) {
      SetLine(at, at.parent, "%s: %s", form.label, static_cast<const char*>(shortText));
    }
  }
  CopyTextN(out.text, out.textSize, reinterpret_cast<const char*>(contents.bytes), contents.length);
  if (out.text && out.textSize > 0 && out.text[0] == 0) {
    FormatInto(out.text, out.textSize, "<NULL>");
    FormatInto(shortText, form.shortSize, "<NULL>");
  }
  if (contents.length > kLongestLine) {
    char title[kLineSize];
    FormatInto(title, sizeof title, "ASN Value: %s", static_cast<const char*>(shortText));
    AddBlock(at, contents, title);
  } else {
    AddLine(at, contents, "ASN Value : %s", static_cast<const char*>(out.text));
  }
  return kAsnDecoded;
}

}  // namespace

int32_t DecodeAsnOctetString(const Place& at, Cursor& c, const AsnStringForm& form, AsnResult& out) {
  return DecodeString(at, c, kAsnOctetString, "OCTET STRING", form, out);
}
int32_t DecodeAsnImplicitString(const Place& at, Cursor& c, const AsnStringForm& form, AsnResult& out) {
  return DecodeString(at, c, PeekU8(c), "OCTET STRING", form, out);
}
int32_t DecodeAsnGeneralizedTime(const Place& at, Cursor& c, const AsnStringForm& form, AsnResult& out) {
  return DecodeString(at, c, kAsnGeneralizedTime, "GENERALIZED TIME", form, out);
}
int32_t DecodeAsnGeneralString(const Place& at, Cursor& c, const AsnStringForm& form, AsnResult& out) {
  return DecodeString(at, c, kAsnGeneralString, "GENERAL STRING", form, out);
}
int32_t DecodeAsnOpaque(const Place& at, Cursor& c, const AsnStringForm& form, AsnResult& out) {
  return DecodeString(at, c, kAsnOpaque, "OPAQUE", form, out);
}

}  // namespace qxview
