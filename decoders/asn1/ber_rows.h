// Messages of the basic encoding rules as tables: a row a field, with its tag, its title and its type.
//
//   constexpr BerRow kChecksumRows[] = {{0xA0, "Checksum Type", &kChecksumType}, {0xA1, "Checksum Value", &kOctets}};
//
// LDAP and Kerberos are walked by ShowBer*, every element as a line with its title and what it says, and under that its
// type, length and value. SPNEGO's rows show themselves; SNMP takes the steps of its messages by rows (snmp.h).
#pragma once
#include <span>

#include "decoders/asn1/ber.h"

namespace qxview {

struct BerType;
struct BerWalk;

struct BerRow {
  uint32_t tag;          // the identifier octet that the field is told by; 0: any
  const char* title;
  const BerType* type;
};

enum class BerForm : uint8_t {
  kNumber,    // INTEGER or ENUMERATED without its sign: of the last four octets
  kInteger,   // with it, in 32 bits
  kBoolean,
  kText,      // any string
  kTime,      // GeneralizedTime
  kBits,      // BIT STRING with a name a bit
  kOctets,    // OCTET STRING; what it holds may hang on the code of the record it stands in
  kGroup,     // rows one after the other, absent ones left out; what follows them is a dump
  kRepeated,  // rows in any order, any number of times
  kRecord,    // rows in any order, each an explicit tag around an element of its type
  kList,      // elements of the type inside, numbered
  kTagged,    // a tag around an element of the type inside
  kChoice,    // a record without an element around it
  kInside,    // an element whose contents `show` takes apart
  kRaw,       // no element: octets that `show` takes apart
  kShown,     // by `show` as a whole
};

// The text that an element is known by, from its contents.
using BerDescribe = void (*)(const Cursor& contents, char* out, int32_t size);
// What an octet string holds; null for octets that are shown as they are.
using BerChoose = const BerType* (*)(const BerWalk& walk, const Cursor& contents);
// Takes what it shows from the cursor, which stands at the element or in its contents, as the form says.
using BerShow = void (*)(BerWalk& walk, const Place& in, Cursor& c, const char* title);

struct BerNames {
  const NameTableEntry* rows = nullptr;
  int32_t count = 0;
  const char* otherwise = kUndefined;
  constexpr BerNames() = default;
  template <size_t kRows>
  constexpr BerNames(const NameTable<kRows>& table, const char* unnamed = kUndefined)   // NOLINT: implicit by design
      : rows(table.rows), count(kRows), otherwise(unnamed) {}
};
inline const char* NameOf(const BerNames& names, uint32_t code) {
  return LookupName(names.rows, code, names.count, names.otherwise);
}

struct BerType {
  BerForm form;
  uint32_t identifier = 0;            // what its elements start with; 0: any
  const char* label = nullptr;        // of a header in place of the title, of an octet string's block, of elements
  std::span<const BerRow> rows = {};
  const BerType* inner = nullptr;     // of a list's elements, of a tagged type
  BerNames names = {};
  const char* const* bits = nullptr;  // 32 names, the first bit's first; null where nothing is assigned
  BerDescribe describe = nullptr;
  BerChoose choose = nullptr;
  BerShow show = nullptr;
};

// What tables are written with.
constexpr BerType NumberOf(const BerNames& names = {}) { return {.form = BerForm::kNumber, .names = names}; }
constexpr BerType TextBy(BerDescribe describe) { return {.form = BerForm::kText, .describe = describe}; }
constexpr BerType GroupOf(std::span<const BerRow> rows, BerDescribe describe = nullptr) {
  return {.form = BerForm::kGroup, .rows = rows, .describe = describe};
}
constexpr BerType Repeated(std::span<const BerRow> rows, BerDescribe describe = nullptr) {
  return {.form = BerForm::kRepeated, .rows = rows, .describe = describe};
}
constexpr BerType RecordOf(std::span<const BerRow> rows, BerDescribe describe = nullptr) {
  return {.form = BerForm::kRecord, .identifier = kAsnSequence, .rows = rows, .describe = describe};
}
constexpr BerType ListOf(const BerType& element, const char* label) {
  return {.form = BerForm::kList, .identifier = kAsnSequence, .label = label, .inner = &element};
}

// What protocols call what has no place in their tables.
struct BerTitles {
  const char* cut;          // what is there of an element that is cut
  const char* further;      // what lies beyond the bound of elements
  int32_t textSize;         // of what a line says of its element, terminator included
};

// The walk over the messages of a payload. Depth is bounded by the depths that lines have images for, work by a number
// of elements a payload; what lies beyond either is a dump.
struct BerWalk {
  const BerTitles* titles;
  int32_t elementsLeft;
  uint32_t code = 0;        // the last one of the record that is walked
  uint32_t context = 0;     // what a protocol's choices hang on besides
  bool isCut = false;       // an element ran past its span
};

// The rows of a type from the cursor on, to its end.
void ShowBerRows(BerWalk& walk, const Place& in, Cursor& c, const BerType& type);
// The element at the cursor when it is the row's: its line, and the element under it. False, and nothing is taken,
// for another one and past the bound of elements.
bool ShowBerRow(BerWalk& walk, const Place& in, Cursor& c, const BerRow& row);
// The element of a type at the cursor, which ends where the span does: its header and what is inside of it.
void ShowBerElement(BerWalk& walk, const Place& in, Cursor c, const BerType& type, const char* title = nullptr);
// What the line of such an element says; empty when it has nothing to say, or is not of the type.
void DescribeBer(const BerWalk& walk, const BerType& type, const BerElement& element, char* out, int32_t size);

// Steps for what no table says. The header of the element at the cursor, which moves on; its contents.
bool EnterBer(BerWalk& walk, const Place& in, Cursor& c, const char* label, Cursor* contents);
// A line with a title and, unless it is empty, a text; the header under it, and the place beside that.
bool EnterBer(BerWalk& walk, const Place& in, Cursor& c, const char* title, const char* text, Place* under,
              Cursor* contents);
// What no row explains, as a dump.
void ShowBerRest(const BerWalk& walk, const Place& in, Cursor& c);

}  // namespace qxview
