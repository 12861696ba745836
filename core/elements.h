// Elements: lists of fields that say what they are and how long: options, attributes, TLVs.
//
//   constexpr ElementForm kAttributeForm{.lengthCountsHeader = true};
//   constexpr auto kAttributes = Choices<Radius>({{1, "User-Name", kText}, {4, "NAS-IP-Address", kAddress}, ...});
//   ShowElements(in, c, kAttributeForm, "Attribute", kAttributes, radius);
//
// Every element is a line of its own, "Attribute: User-Name", with its type, its length and what it holds under it. What
// a type selects is a row of the table of choices; what nothing explains is a block of data.
#pragma once
#include "core/rows.h"

namespace qxview {

// How a list's elements are framed.
struct ElementForm {
  uint8_t typeSize = 1, lengthSize = 1;   // bytes; a length of 0 bytes: the choice's rows tell the size
  uint8_t unit = 1;                       // bytes that the length counts in
  uint8_t padTo = 1;                      // the next element starts at a multiple of this, counted from the first
  uint8_t typeBits = 0;                   // type and length share one word of typeSize bytes: the type's bits
  bool lengthCountsHeader = false;
  bool lengthFirst = false;
  bool little = false;
  bool valueLines = false;                // what nothing explains is lines "Value: 00 01", not a block
  uint32_t typeMask = 0xFFFFFFFF;         // of the type's word: what selects
  int32_t padType = -1;                   // an element of one byte without length
  int32_t endType = -1;                   // the same; it ends the list
  const char* typeLabel = "Type";
  const char* lengthLabel = "Length";
};

struct Element {
  Field type, length;
  Field whole;        // header and value, as far as they are there
  Cursor value;       // cut to what is there
  Field padding;      // behind it
  uint32_t code;      // the type, masked
  bool single;        // no length and no value
};

// The next element. False when its header is not there, or a length leads nowhere; the cursor stands where it stood.
bool TakeElement(Cursor& c, const ElementForm& form, Element& out);

// What an element of a type holds: rows, and then what a function of the decoder makes of the rest.
template <class T>
struct Choice {
  uint32_t code;
  const char* name;
  RowSpan<T> rows = {};
  void (*show)(const Place& in, Cursor& c, T& out) = nullptr;
};

template <class T, size_t kCount>
struct ChoiceTable {
  Choice<T> choices[kCount];
};

void ChoicesAreOutOfOrder();   // not defined: the compiler's message

template <class T, size_t kCount>
consteval ChoiceTable<T, kCount> Choices(const Choice<T> (&choices)[kCount]) {
  ChoiceTable<T, kCount> table{};
  for (size_t i = 0; i < kCount; ++i) {
    if (i > 0 && choices[i].code <= choices[i - 1].code) ChoicesAreOutOfOrder();
    table.choices[i] = choices[i];
  }
  return table;
}

template <class T>
struct ChoiceSpan {
  const Choice<T>* choices = nullptr;
  size_t count = 0;
  constexpr ChoiceSpan() = default;
  template <size_t kCount>
  constexpr ChoiceSpan(const ChoiceTable<T, kCount>& table)   // NOLINT: implicit by design
      : choices(table.choices), count(kCount) {}
};

template <class T>
const Choice<T>* FindChoice(std::type_identity_t<ChoiceSpan<T>> table, uint32_t code) {
  size_t lower = 0, upper = table.count;
  while (lower < upper) {
    const size_t middle = (lower + upper) / 2;
    if (table.choices[middle].code == code) return &table.choices[middle];
    if (table.choices[middle].code < code) {
      lower = middle + 1;
    } else {
      upper = middle;
    }
  }
  return nullptr;
}

// What a choice says of the cursor's bytes: its rows, its function, and a block of what is left.
template <class T>
void ShowChoice(const Place& in, Cursor& c, const Choice<T>* choice, T& out) {
  if (choice) {
    if (choice->rows.count) ShowRows<T>(in, c, choice->rows, out, choice->name);
    if (choice->show) choice->show(in, c, out);
  }
  c.ranShort = false;   // what is left of a field that is cut
  AddBlock(in, Rest(c), "Data");
}

namespace detail {
// The element's line with its type and length; the place for what it holds.
Place AddElementHead(const Place& in, const Element& element, const ElementForm& form, const char* title,
                     const char* name);
void AddElementTail(const Place& in, const Element& element, const ElementForm& form);
// The bytes of an element of an unknown type as lines.
void AddElementValue(const Place& in, Cursor& value);
// An element whose length leads nowhere, with all that is left.
void AddLostElement(const Place& in, Cursor& c, Element& element, const ElementForm& form, const char* title,
                    const char* name);
}  // namespace detail

// `unnamed` names a type without a choice.
template <class T>
void ShowElements(const Place& in, Cursor& c, const ElementForm& form, const char* title,
                  std::type_identity_t<ChoiceSpan<T>> choices, T& out, const char* unnamed = kUnknown) {
  Loop loop;
  Element element;
  while (MoreAt(in, c, loop)) {
    const bool isTaken = TakeElement(c, form, element);
    const Choice<T>* choice = FindChoice<T>(choices, element.code);
    const char* name = choice ? choice->name : unnamed;
    if (!isTaken) {
      if (form.valueLines) detail::AddLostElement(in, c, element, form, title, name);
      break;
    }
    const Place under = detail::AddElementHead(in, element, form, title, name);
    if (!element.single) {
      const bool isExplained = choice && (choice->rows.count || choice->show);
      if (form.valueLines && !isExplained) detail::AddElementValue(under, element.value);
      ShowChoice(under, element.value, choice, out);
      detail::AddElementTail(under, element, form);
    }
    if (element.single && static_cast<int32_t>(element.code) == form.endType) break;
  }
}

}  // namespace qxview
