// What web servers hand to programs: FastCGI (its public text, 1.0) and SCGI (its public text).
#include "core/elements.h"
#include "decoders/common/ahead_cut.h"
#include "decoders/common/text_lines.h"
#include "decoders/message_lengths.h"

namespace qxview {
namespace {

struct FastCgi { Field type, length, padding; };
constexpr int32_t kHeaderSize = 8;

constexpr auto kTypeNames = SortedNames({
    {1, "Begin Request"}, {2, "Abort Request"}, {3, "End Request"}, {4, "Parameters"}, {5, "Standard Input"},
    {6, "Standard Output"}, {7, "Standard Error"}, {8, "Data"}, {9, "Get Values"}, {10, "Get Values Result"},
    {11, "Unknown Type"}});
constexpr auto kRoleNames = SortedNames({{1, "Responder"}, {2, "Authorizer"}, {3, "Filter"}});
constexpr auto kStatusNames = SortedNames({
    {0, "Request Complete"}, {1, "Cannot Multiplex Connection"}, {2, "Overloaded"}, {3, "Unknown Role"}});
constexpr auto kHeader = Rows<FastCgi>({
    Number(1, "Version"), Number(1, "Type", kTypeNames).Into(&FastCgi::type), Number(2, "Request ID"),
    Number(2, "Content Length").Into(&FastCgi::length), Number(1, "Padding Length").Into(&FastCgi::padding),
    Hex(1, "Reserved")});
constexpr auto kBegin = Rows<FastCgi>({
    Number(2, "Role", kRoleNames), Hex(1, "Flags"), Flag(7, "Keep Connection"), Bytes(5, "Reserved")});
constexpr auto kEnd = Rows<FastCgi>({
    Number(4, "Application Status"), Number(1, "Protocol Status", kStatusNames), Bytes(3, "Reserved")});
constexpr auto kUnknownType = Rows<FastCgi>({Number(1, "Unrecognized Type", kTypeNames), Bytes(7, "Reserved")});

// A length of one octet, or of four where its first bit is set.
uint32_t TakeLength(Cursor& c) {
  return PeekU8(c) < 0x80 ? TakeU8(c).value : TakeU32(c).value & 0x7FFFFFFF;
}

void ShowPairs(const Place& in, Cursor& c, FastCgi&) {
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const int32_t start = c.offset;
    const uint32_t nameLength = TakeLength(c), valueLength = TakeLength(c);
    Cursor nameBytes = TakeCursor(c, nameLength), valueBytes = TakeCursor(c, valueLength);
    const Field name = Ahead(nameBytes, Left(nameBytes)), value = Ahead(valueBytes, Left(valueBytes));
    const Place under = Under(in, AddLine(in, Stated(start, c.offset - start), "Pair: %s = %s", Text(name), Text(value)));
    if (name.length > 0) AddTextLine(under, name, "Name");
    if (value.length > 0) AddTextLine(under, value, "Value");
  }
}

void ShowStream(const Place& in, Cursor& c, FastCgi&) {
  if (IsReadable(c)) ShowLinesOfText(in, c, "Text");
}

constexpr auto kTypes = Choices<FastCgi>({
    {1, "Begin Request", kBegin}, {3, "End Request", kEnd}, {4, "Parameters", {}, ShowPairs},
    {5, "Standard Input", {}, ShowStream}, {6, "Standard Output", {}, ShowStream}, {7, "Standard Error", {}, ShowStream},
    {8, "Data", {}, ShowStream}, {9, "Get Values", {}, ShowPairs}, {10, "Get Values Result", {}, ShowPairs},
    {11, "Unknown Type", kUnknownType}});

bool StartsRecord(const Cursor& c) { return PeekU8(c) == 1 && PeekU8(c, 1) >= 1 && PeekU8(c, 1) <= 11; }
int32_t SizeOfRecord(const Cursor& c) {
  return kHeaderSize + static_cast<int32_t>(PeekU16(c, 4) + PeekU8(c, 6));
}

}  // namespace

int32_t LengthOfFastCgi(const Cursor& c) {
  if (Left(c) < kHeaderSize) return 0;
  return StartsRecord(c) ? SizeOfRecord(c) : kNoMessage;
}

int32_t DecodeFastCgi(const Place& at, Cursor c) {
  if (Left(c) < kHeaderSize || !StartsRecord(c)) return 0;
  Loop loop;
  while (MoreAt(at, c, loop)) {
    if (!StartsRecord(c)) return AddRawRest(at, c, "FastCGI Data");
    const Place in = Under(at, AddLine(at, AheadCut(c, SizeOfRecord(c)), "FastCGI: %s", LookupName(kTypeNames, PeekU8(c, 1))));
    FastCgi record = ShowRows(in, c, kHeader);
    Cursor content = TakeCursor(c, record.length.value);
    ShowChoice<FastCgi>(in, content, FindChoice<FastCgi>(kTypes, record.type.value), record);
    Cursor padding = TakeCursor(c, record.padding.value);
    if (Left(padding) > 0) AddLine(in, Rest(padding), "Padding");
  }
  return 1;
}

// "70:" headers as pairs of texts that zeros end "," body.
int32_t DecodeScgi(const Place& at, Cursor c) {
  const int32_t colon = FindU8(c, ':');
  const int32_t length = colon < 1 ? -1 : DecimalOf(PeekBytes(c, 0, colon));
  if (length < 0 || !PeekIs(c, colon + 1, "CONTENT_LENGTH")) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "SCGI"));
  AddTextLine(in, TakeBytes(c, colon), "Length of Headers");
  TakeBytes(c, 1);
  Cursor headers = TakeCursor(c, length);
  Loop loop;
  while (MoreAt(in, headers, loop)) {
    const int32_t start = headers.offset;
    const Field name = TakeTerminated(headers), value = TakeTerminated(headers);
    const Place under = Under(in, AddLine(in, Stated(start, headers.offset - start), "Header: %s = %s", Text(name), Text(value)));
    if (name.length > 0) AddTextLine(under, name, "Name");
    if (value.length > 0) AddTextLine(under, value, "Value");
  }
  if (PeekU8(c) == ',') TakeBytes(c, 1);
  if (IsReadable(c)) ShowLinesOfText(in, c, "Text");
  AddBlock(in, Rest(c), "Body");
  return 1;
}

}  // namespace qxview
