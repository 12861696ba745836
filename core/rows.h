// Rows: the fields of a header as data. A row says how many bytes a field has, what its line says, and under which name
// its value comes back.
//
//   struct Vrrp { Field version, router, count; };
//   constexpr auto kHeader = Rows<Vrrp>({
//       Word(1), Bits(0, 4, "Version").Into(&Vrrp::version), Bits(4, 4, "Type", kTypeNames),
//       Number(1, "Virtual Router ID").Note(", Router %u").Into(&Vrrp::router),
//       Number(1, "Priority", kPriorityNames).Note(", Priority %u"),
//       Number(1, "Address Count").Into(&Vrrp::count)});
//
//   const Vrrp vrrp = ShowRows(in, c, kHeader);   // the lines and the values
//   const Vrrp vrrp = ReadRows(c, kHeader);       // the values alone
//
// A row is written by its label, and its form makes the text: "Label: 5", with names "Label: 5 = Name", "Label: 0x0005",
// bits under their word "..10....: Label = 2 (Name)", flags "...1....: Label = True", bytes "Label: 00 01", texts,
// addresses and times "Label: ...". A label of null is the title of the element that the rows stand in. Texts of their
// own are given with Told; what does not fit its row does not compile. A field that is not here adds nothing.
#pragma once
#include "core/decoder.h"

namespace qxview {

// A table of names as rows refer to it, or a function in place of a table. Values without a name are `unnamed`.
struct Names {
  const NameTableEntry* rows = nullptr;
  const char* (*of)(uint32_t value) = nullptr;
  const char* unnamed = kUnknown;
  int32_t count = 0;
  bool here = false;   // compilers that check addresses do not compare them with null at compile time
  constexpr Names() = default;
  constexpr Names(const char* (*name)(uint32_t)) : of(name), here(true) {}   // NOLINT: implicit by design
  template <size_t kRows>
  constexpr Names(const NameTable<kRows>& table) : rows(table.rows), count(kRows), here(true) {}   // NOLINT: implicit by design
  constexpr Names(const NameTableEntry* table, int32_t entries, const char* other)
      : rows(table), unnamed(other), count(entries), here(true) {}
  constexpr bool Here() const { return here; }
  const char* NameOf(uint32_t value) const { return of ? of(value) : LookupName(rows, value, count, unnamed); }
};
template <size_t kRows>
constexpr Names NamesOr(const NameTable<kRows>& table, const char* unnamed) {
  return {table.rows, static_cast<int32_t>(kRows), unnamed};
}

enum class RowForm : uint8_t {
  kNumber, kSigned, kFloat,   // of 1 to 8 bytes; of 4 or 8
  kBits,                      // of the number before; they hang under its line, or beside where it has none
  kFlags,                     // a number, and under it a line for each name, whose code is a mask
  kBytes, kText, kUtf8, kUtf16,
  kAddress,                   // by its size: IPv4, MAC, EUI-64, IPv6
  kUnixTime,                  // seconds since 1970
  kUnixMilliseconds,
  kNtpTime, kNtpSpan,         // since 1900 and a span, seconds and their fraction, half of the field each
  kFileTime,                  // 100 ns since 1601
  kShown,                     // by a function of the decoder
};
constexpr bool IsNumber(RowForm form) { return form <= RowForm::kFlags; }

// What a conversion of a row's text takes.
enum class RowValue : uint8_t { kLabel, kNumber, kName, kPicture, kValue, kUnit };

// A text taken apart.
struct RowText {
  const char* text = nullptr;
  FormatPiece pieces[5]{};
  RowValue takes[4]{};
};

// Not defined: the compiler's messages.
void RowTextTakesANameButTheRowHasNone();
void RowTextHasMoreConversionsThanARowCanHold();
void RowTextConvertsANumberButTheRowHasNone();
void RowsHoldBitsThatDoNotFitTheirWord();
void RowsHoldBitsThatOverlap();
void RowsHoldNamesThatTheirBitsCannotTake();
void RowHasASizeThatItsFormCannotTake();

namespace detail {

// The text of a form: what its conversions take is told.
template <size_t kSize>
constexpr RowText FormText(const char (&literal)[kSize], RowValue first, RowValue second = RowValue::kValue,
                           RowValue third = RowValue::kName, RowValue fourth = RowValue::kUnit) {
  RowText made{literal, {}, {first, second, third, fourth}};
  int32_t count = 0, start = 0, at = 0;
  while (literal[at]) {
    if (literal[at] != '%') {
      ++at;
      continue;
    }
    if (count == 4) RowTextHasMoreConversionsThanARowCanHold();
    made.pieces[count].literalLength = static_cast<uint32_t>(at - start);
    at = start = ReadConversion(literal, at + 1, made.pieces[count++]);
  }
  made.pieces[count].literalLength = static_cast<uint32_t>(at - start);
  return made;
}

// A text that a decoder gives: numbers take the row's value and %s its name; of a bit row the first %s is the picture.
template <size_t kSize>
constexpr RowText ToldText(const char (&literal)[kSize], RowForm form, bool isNamed, bool hasPicture) {
  RowText made = FormText(literal, RowValue::kNumber);
  for (int32_t i = 0; made.pieces[i].conversion; ++i) {
    if (made.pieces[i].conversion != static_cast<uint32_t>(Conversion::kText)) {
      if (!IsNumber(form)) RowTextConvertsANumberButTheRowHasNone();
      made.takes[i] = RowValue::kNumber;
    } else if (hasPicture) {
      made.takes[i] = RowValue::kPicture;
      hasPicture = false;
    } else if (IsNumber(form) && form != RowForm::kFloat) {
      if (!isNamed) RowTextTakesANameButTheRowHasNone();
      made.takes[i] = RowValue::kName;
    } else {
      made.takes[i] = RowValue::kValue;
    }
  }
  return made;
}

constexpr RowText NumberText(bool isNamed, bool hasUnit) {
  if (isNamed && hasUnit) return FormText("%s: %I64u%s", RowValue::kLabel, RowValue::kNumber, RowValue::kUnit);
  if (hasUnit) return FormText("%s: %I64u%s", RowValue::kLabel, RowValue::kNumber, RowValue::kUnit);
  if (isNamed) return FormText("%s: %I64u = %s", RowValue::kLabel, RowValue::kNumber, RowValue::kName);
  return FormText("%s: %I64u", RowValue::kLabel, RowValue::kNumber);
}
constexpr RowText CodedText() {
  return FormText("%s: [%I64u] = %s", RowValue::kLabel, RowValue::kNumber, RowValue::kName);
}
constexpr RowText SignedText(bool hasUnit) {
  if (hasUnit) return FormText("%s: %I64d%s", RowValue::kLabel, RowValue::kNumber, RowValue::kUnit);
  return FormText("%s: %I64d", RowValue::kLabel, RowValue::kNumber);
}
constexpr RowText HexText(uint8_t size, bool isNamed) {
  RowText made = isNamed ? FormText("%s: 0x%I64X = %s", RowValue::kLabel, RowValue::kNumber, RowValue::kName)
                         : FormText("%s: 0x%I64X", RowValue::kLabel, RowValue::kNumber);
  made.pieces[1].precision = 2u * size;
  return made;
}
constexpr RowText BitsText(bool isNamed, bool hasUnit) {
  RowText made = isNamed   ? FormText("%s: %s = %u (%s)", RowValue::kPicture, RowValue::kLabel, RowValue::kNumber)
                 : hasUnit ? FormText("%s: %s = %u%s", RowValue::kPicture, RowValue::kLabel, RowValue::kNumber)
                           : FormText("%s: %s = %u", RowValue::kPicture, RowValue::kLabel, RowValue::kNumber);
  made.takes[3] = isNamed ? RowValue::kName : RowValue::kUnit;
  return made;
}
constexpr RowText FlagText() {
  return FormText("%s: %s = %s", RowValue::kPicture, RowValue::kLabel, RowValue::kName);
}
constexpr RowText ValueText() { return FormText("%s: %s", RowValue::kLabel, RowValue::kValue); }

}  // namespace detail

using RowShow = void (*)(const Place& in, const Field& field, const char* label);

template <class T>
struct Row;

struct RowData {
  const char* label = nullptr;
  RowText line{}, note{};   // the line's text, and what is appended to the place's line
  Names names{};
  const char* unit = nullptr;
  RowShow show = nullptr;
  RowForm form = RowForm::kNumber;
  uint8_t size = 0;          // bytes; 0: all that are left
  uint8_t countSize = 0;     // of a number in front that counts the field's bytes; it has a line of its own
  bool little = false;
  bool terminated = false;   // texts: up to a zero character, which belongs to the field
  bool quiet = false;        // no line for a field of no bytes
  bool noteWhenSet = false;  // no note of a value of 0
  uint8_t firstBit = 0, bitCount = 0;
  // Of this row and those behind it that only make lines: how many they are, of how many bytes and lines. 0: not told.
  uint8_t runRows = 0, runLines = 0;
  uint16_t runBytes = 0;

  // A text in place of the form's.
  template <size_t kSize>
  consteval RowData Told(const char (&text)[kSize]) const {
    RowData told = *this;
    told.line = detail::ToldText(text, form, names.Here(), form == RowForm::kBits);
    return told;
  }
  // What is appended to the line that the rows stand under.
  template <size_t kSize>
  consteval RowData Note(const char (&text)[kSize]) const {
    RowData noted = *this;
    noted.note = detail::ToldText(text, form, names.Here(), false);
    return noted;
  }
  // The same where the value is not 0: ", Truncated".
  template <size_t kSize>
  consteval RowData NoteWhenSet(const char (&text)[kSize]) const {
    RowData noted = *this;
    noted.note = detail::ToldText(text, form, names.Here(), false);
    noted.noteWhenSet = true;
    return noted;
  }
  consteval RowData Little() const {
    RowData row = *this;
    row.little = true;
    return row;
  }
  consteval RowData Hex() const {
    RowData row = *this;
    row.line = detail::HexText(size, names.Here());
    return row;
  }
  template <class T>
  consteval Row<T> Into(Field T::*member) const;
  template <class T>
  consteval Row<T> Into(uint64_t T::*member) const;
  // The field's bytes are counted by a value that a row before has brought.
  template <class T>
  consteval Row<T> SizedBy(Field T::*member) const;
};

// A row that takes its bytes itself, and may keep values and see those of the rows before it.
template <class T>
using RowTake = void (*)(const Place& in, Cursor& c, const char* label, T& out);

template <class T>
struct Row : RowData {
  RowTake<T> take = nullptr;
  Field T::*into = nullptr;
  uint64_t T::*intoWide = nullptr;
  Field T::*sizedBy = nullptr;
  constexpr Row() = default;
  constexpr Row(const RowData& data) : RowData(data) {}   // NOLINT: implicit by design
  template <class U>
    requires(!std::is_same_v<T, U>)
  Row(const Row<U>&) = delete;   // another decoder's record

  // These go before Into and SizedBy: they would lose the member.
  template <size_t kSize>
  void Told(const char (&text)[kSize]) const = delete;
  template <size_t kSize>
  void Note(const char (&text)[kSize]) const = delete;
  template <size_t kSize>
  void NoteWhenSet(const char (&text)[kSize]) const = delete;
  void Little() const = delete;
  void Hex() const = delete;

  consteval Row Into(Field T::*member) const {
    Row row = *this;
    row.into = member;
    return row;
  }
  consteval Row Into(uint64_t T::*member) const {
    Row row = *this;
    row.intoWide = member;
    return row;
  }
  consteval Row SizedBy(Field T::*member) const {
    Row row = *this;
    row.sizedBy = member;
    return row;
  }
};
template <class T>
consteval Row<T> RowData::Into(Field T::*member) const { return Row<T>(*this).Into(member); }
template <class T>
consteval Row<T> RowData::Into(uint64_t T::*member) const { return Row<T>(*this).Into(member); }
template <class T>
consteval Row<T> RowData::SizedBy(Field T::*member) const { return Row<T>(*this).SizedBy(member); }

// What rows are written with. Sizes are bytes; a size of 0 takes all that is left.
consteval RowData Number(uint8_t size, const char* label, Names names = {}) {
  if (size < 1 || size > 8) RowHasASizeThatItsFormCannotTake();
  return {.label = label, .line = detail::NumberText(names.Here(), false), .names = names, .size = size};
}
// With a unit or another text right behind the number: Number(2, "Hold Time", " seconds").
template <size_t kSize>
consteval RowData Number(uint8_t size, const char* label, const char (&unit)[kSize]) {
  return {.label = label, .line = detail::NumberText(false, true), .unit = unit, .size = size};
}
// "Label: [5] = Name", "Undefined" for a value without one.
consteval RowData Coded(uint8_t size, const char* label, Names names) {
  RowData row = Number(size, label, names);
  row.line = detail::CodedText();
  row.names.unnamed = kUndefined;
  return row;
}
consteval RowData Hex(uint8_t size, const char* label, Names names = {}) { return Number(size, label, names).Hex(); }
consteval RowData Signed(uint8_t size, const char* label, const char* unit = nullptr) {
  return {.label = label, .line = detail::SignedText(unit != nullptr), .unit = unit, .form = RowForm::kSigned,
          .size = size};
}
consteval RowData Float(uint8_t size, const char* label) {
  if (size != 4 && size != 8) RowHasASizeThatItsFormCannotTake();
  return {.label = label, .line = detail::ValueText(), .form = RowForm::kFloat, .size = size};
}
// A number without a line of its own: the bits behind it are all its lines. Also bytes that are passed over.
consteval RowData Word(uint8_t size) { return {.size = size}; }

consteval RowData Bits(uint8_t first, uint8_t count, const char* label, Names names = {}) {
  return {.label = label, .line = detail::BitsText(names.Here(), false), .names = names, .form = RowForm::kBits,
          .firstBit = first, .bitCount = count};
}
template <size_t kSize>
consteval RowData Bits(uint8_t first, uint8_t count, const char* label, const char (&unit)[kSize]) {
  return {.label = label, .line = detail::BitsText(false, true), .unit = unit, .form = RowForm::kBits,
          .firstBit = first, .bitCount = count};
}
consteval RowData Flag(uint8_t bit, const char* label, Names names = kFalseTrueNames) {
  return {.label = label, .line = detail::FlagText(), .names = names, .form = RowForm::kBits, .firstBit = bit,
          .bitCount = 1};
}
// A word in hexadecimal and a line for each name, whose code is the mask of its bits.
consteval RowData Flags(uint8_t size, const char* label, Names masks) {
  if (size < 1 || size > 4) RowHasASizeThatItsFormCannotTake();
  return {.label = label, .line = detail::HexText(size, false), .names = masks, .form = RowForm::kFlags, .size = size};
}

consteval RowData ValueRow(RowForm form, uint8_t size, const char* label) {
  return {.label = label, .line = detail::ValueText(), .form = form, .size = size};
}
consteval RowData Bytes(uint8_t size, const char* label) { return ValueRow(RowForm::kBytes, size, label); }
consteval RowData Text(uint8_t size, const char* label) { return ValueRow(RowForm::kText, size, label); }
consteval RowData Utf8(uint8_t size, const char* label) { return ValueRow(RowForm::kUtf8, size, label); }
consteval RowData Utf16(uint8_t size, const char* label) { return ValueRow(RowForm::kUtf16, size, label); }
// Behind a number of `countSize` bytes that counts them.
consteval RowData Counted(uint8_t countSize, RowData row) {
  row.countSize = countSize;
  return row;
}
consteval RowData Terminated(RowData row) {
  row.terminated = true;
  return row;
}
consteval RowData IPv4(const char* label) { return ValueRow(RowForm::kAddress, 4, label); }
consteval RowData IPv6(const char* label) { return ValueRow(RowForm::kAddress, 16, label); }
consteval RowData Mac(const char* label) { return ValueRow(RowForm::kAddress, 6, label); }
consteval RowData Eui64(const char* label) { return ValueRow(RowForm::kAddress, 8, label); }
consteval RowData UnixTime(uint8_t size, const char* label) { return ValueRow(RowForm::kUnixTime, size, label); }
consteval RowData UnixMilliseconds(const char* label) { return ValueRow(RowForm::kUnixMilliseconds, 8, label); }
consteval RowData NtpTime(const char* label) { return ValueRow(RowForm::kNtpTime, 8, label); }
consteval RowData NtpSpan(const char* label) { return ValueRow(RowForm::kNtpSpan, 4, label); }
consteval RowData FileTime(const char* label) { return ValueRow(RowForm::kFileTime, 8, label); }
consteval RowData Shown(uint8_t size, const char* label, RowShow show) {
  return {.label = label, .show = show, .form = RowForm::kShown, .size = size};
}

// A field or several that a function of the decoder takes from the cursor: texts, lists, what other values decide.
template <class T>
constexpr Row<T> Shown(const char* label, void (*take)(const Place& in, Cursor& c, const char* label, T& out)) {
  Row<T> row;
  row.label = label;
  row.form = RowForm::kShown;
  row.take = take;
  return row;
}

// A decoder's table, checked when it compiles: bits lie in their word, overlap nowhere, have names that fit.
template <class T, size_t kRows>
struct RowTable {
  Row<T> rows[kRows];
};

template <class T>
consteval void CheckBits(const Row<T>* rows, size_t count) {
  uint64_t taken = 0;
  uint32_t width = 0;
  for (size_t at = 0; at < count; ++at) {
    const Row<T>& row = rows[at];
    if (row.form != RowForm::kBits) {
      taken = 0;
      width = 8u * row.size;
      continue;
    }
    if (width > 32 || row.bitCount == 0 || row.firstBit + row.bitCount > width) RowsHoldBitsThatDoNotFitTheirWord();
    const uint64_t mask = ((uint64_t{1} << row.bitCount) - 1) << (width - row.firstBit - row.bitCount);
    if (taken & mask) RowsHoldBitsThatOverlap();
    taken |= mask;
    for (int32_t i = 0; i < row.names.count; ++i) {
      if (uint64_t{row.names.rows[i].code} >> row.bitCount) RowsHoldNamesThatTheirBitsCannotTake();
    }
  }
}

// Whether a row makes one line or none of a size that is always the same, and does nothing else.
template <class T>
consteval bool OnlyMakesLines(const Row<T>& row) {
  constexpr uint8_t kMostShownBytes = 160;   // more is a dump
  if (row.into || row.intoWide || row.sizedBy || row.note.text || row.countSize || row.terminated) return false;
  if (row.form == RowForm::kFlags || row.form == RowForm::kShown) return false;   // the latter takes what it shows
  return row.form == RowForm::kBits || (row.size > 0 && row.size <= kMostShownBytes);
}

// Tells each run of such rows at its first one, so that it is passed in one step where nobody wants the lines. Bits stay with the
// number that they are of.
template <class T, size_t kRows>
consteval void TellRuns(Row<T> (&rows)[kRows]) {
  for (size_t first = 0; first < kRows;) {
    if (rows[first].form == RowForm::kBits) {
      ++first;
      continue;
    }
    size_t end = first;
    while (end < kRows && end - first < 100 && OnlyMakesLines(rows[end])) ++end;
    const size_t behind = end > first ? end : first + 1;
    if (end < kRows && rows[end].form == RowForm::kBits) {
      while (end > first && rows[end].form == RowForm::kBits) --end;
    }
    if (end > first + 1) {
      for (size_t i = first; i < end; ++i) {
        rows[first].runLines = static_cast<uint8_t>(rows[first].runLines + (rows[i].line.text ? 1 : 0));
        rows[first].runBytes = static_cast<uint16_t>(rows[first].runBytes + (rows[i].form == RowForm::kBits ? 0 : rows[i].size));
      }
      rows[first].runRows = static_cast<uint8_t>(end - first);
    }
    first = behind;
  }
}

template <class T, size_t kRows>
consteval RowTable<T, kRows> Rows(const Row<T> (&rows)[kRows]) {
  CheckBits(rows, kRows);
  RowTable<T, kRows> table{};
  for (size_t i = 0; i < kRows; ++i) table.rows[i] = rows[i];
  TellRuns(table.rows);
  return table;
}

// Of a protocol whose numbers have their low byte first.
template <class T, size_t kRows>
consteval RowTable<T, kRows> LittleRows(const Row<T> (&rows)[kRows]) {
  CheckBits(rows, kRows);
  RowTable<T, kRows> table{};
  for (size_t i = 0; i < kRows; ++i) {
    table.rows[i] = rows[i];
    table.rows[i].little = true;
  }
  TellRuns(table.rows);
  return table;
}

template <class T>
struct RowSpan {
  const Row<T>* rows = nullptr;
  size_t count = 0;
  constexpr RowSpan() = default;
  template <size_t kRows>
  constexpr RowSpan(const RowTable<T, kRows>& table) : rows(table.rows), count(kRows) {}   // NOLINT: implicit by design
};

namespace detail {
constexpr int32_t kOwnSize = -1;
struct RowWalk {
  const Place& at;
  const char* title;     // the label of rows that have none
  Field word;            // the number that bits are of
  LineHandle parent;     // of their lines
  bool little;           // every number of the rows
};
Field TakeRow(RowWalk& walk, Cursor& c, const RowData& row, int32_t size);
Field ShowRow(RowWalk& walk, Cursor& c, const RowData& row, int32_t size);
// Passes the row's run; false, with nothing done, where its lines are wanted or not all of it is there.
bool PassRun(RowWalk& walk, Cursor& c, const RowData& row);
uint64_t NumberOf(const Field& field, bool little);

template <class T>
inline int32_t SizeOf(const Row<T>& row, const T& out) {
  if constexpr (std::is_empty_v<T>) return kOwnSize;
  if (!row.sizedBy) return kOwnSize;
  const uint32_t size = (out.*row.sizedBy).value;
  return size > INT32_MAX ? INT32_MAX : static_cast<int32_t>(size);
}
template <class T>
inline void Keep(const RowWalk& walk, const Row<T>& row, const Field& field, T& out) {
  if constexpr (std::is_empty_v<T>) return;
  if (row.into) out.*row.into = field;
  if (row.intoWide) out.*row.intoWide = field.here && field.bytes ? NumberOf(field, row.little || walk.little) : 0;
}
}  // namespace detail

// The order of protocols whose messages say which one they are in.
enum class ByteOrder : uint8_t { kAsRows, kLittle };

// Shows the fields one after the other and keeps their values.
template <class T>
void ShowRows(const Place& in, Cursor& c, std::type_identity_t<RowSpan<T>> rows, T& out, const char* title = nullptr,
              ByteOrder order = ByteOrder::kAsRows) {
  detail::RowWalk walk{in, title, {}, in.parent, order == ByteOrder::kLittle};
  for (size_t i = 0; i < rows.count; ++i) {
    const Row<T>& row = rows.rows[i];
    if (row.runRows && detail::PassRun(walk, c, row)) {
      i += row.runRows - 1u;
    } else if (row.take) {
      row.take(in, c, row.label ? row.label : title, out);
    } else {
      detail::Keep(walk, row, detail::ShowRow(walk, c, row, detail::SizeOf(row, out)), out);
    }
  }
}
template <class T, size_t kRows>
T ShowRows(const Place& in, Cursor& c, const RowTable<T, kRows>& table, ByteOrder order = ByteOrder::kAsRows) {
  T out{};
  ShowRows<T>(in, c, table, out, nullptr, order);
  return out;
}

// Keeps the values and shows nothing, up to a row that takes its bytes itself.
template <class T, size_t kRows>
T ReadRows(Cursor& c, const RowTable<T, kRows>& table, ByteOrder order = ByteOrder::kAsRows) {
  T out{};
  const Place nowhere{};
  detail::RowWalk walk{nowhere, nullptr, {}, 0, order == ByteOrder::kLittle};
  for (const Row<T>& row : table.rows) {
    if (row.take) break;
    detail::Keep(walk, row, detail::TakeRow(walk, c, row, detail::SizeOf(row, out)), out);
  }
  return out;
}
// The same for what a top line says before the fields are shown: nothing is taken.
template <class T, size_t kRows>
T PeekRows(Cursor c, const RowTable<T, kRows>& table, ByteOrder order = ByteOrder::kAsRows) {
  return ReadRows(c, table, order);
}

// For decoders that need no values.
struct NoValues {};

}  // namespace qxview
